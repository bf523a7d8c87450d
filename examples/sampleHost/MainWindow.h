#pragma once

#include "Corrections.h"

#include <QMainWindow>

class BusyBar;
class CQRunnableItem;
class CorrectionHandles;
class CorrectionHistory;
class PictureDescription;
class PictureView;
class QAction;
class QFrame;
class QMenu;
class QPushButton;
class QToolButton;
class ToolPanel;

/// The sample host's window: a picture, and the controls that mend and save it. Scripts find every
/// control by its object name.
///
/// While the full picture is being corrected or written, or an archive unpacked, the window stays
/// alive, but for what needs the picture; closing it stops the work.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;

    /// Shows the picture and asks nothing. False, with a notice in its place, if it can't be read.
    bool openPicture(const QString& path);

    /// Opens a picture for somebody else than the user, as soon as no work and no dialog is in the
    /// way, and asks what open() asks.
    void openOnRequest(const QString& path);

public Q_SLOTS:
    void open();
    bool save();
    void exportPicture();
    void exportArchive();
    void importArchive();
    void showInFileManager();
    void moveToTrash();
    void reset();
    void undo();
    void editPreferences();
    void about();

protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private Q_SLOTS:
    void openRequested();
    void applyCorrections();
    void recordUndoStep(const QString& slider);
    void recordHandMadeSteps();
    void showGrid(bool visible);
    void showHandles(bool visible);
    void placeHandles();
    void updateState();

private:
    QFrame* createHeader();
    QToolButton* createToolButton(const char* name, QAction* action);
    void createActions();
    QAction* createAction(const char* name, const QKeySequence& shortcut,
                          const char* icon = nullptr);
    void createMenus();
    void retranslate();
    void showPlaceholder();
    void connectControls();
    void restoreSettings();
    void openAfterQuestions(const QString& path);
    void showPicture(const QImage& picture, const QString& path);
    bool isChanged() const;
    bool mayDiscardPicture();
    void closePicture();
    bool canUsePicture() const;
    bool correct(QImage* corrected);
    bool writeCorrected(const QString& path, const QString& title);
    void complainAboutSaving(const QString& path);

    PictureView* m_view = nullptr;
    ToolPanel* m_panel = nullptr;
    BusyBar* m_busyBar = nullptr;
    CorrectionHistory* m_history = nullptr;
    PictureDescription* m_description = nullptr;
    CorrectionHandles* m_handles = nullptr;
    QPushButton* m_openButton = nullptr;
    QPushButton* m_preferencesButton = nullptr;
    QPushButton* m_aboutButton = nullptr;
    QMenu* m_fileMenu = nullptr;
    QMenu* m_editMenu = nullptr;
    QMenu* m_viewMenu = nullptr;
    QMenu* m_helpMenu = nullptr;
    QAction* m_openAction = nullptr;
    QAction* m_saveAction = nullptr;
    QAction* m_exportAction = nullptr;
    QAction* m_exportArchiveAction = nullptr;
    QAction* m_importAction = nullptr;
    QAction* m_showInFileManagerAction = nullptr;
    QAction* m_moveToTrashAction = nullptr;
    QAction* m_quitAction = nullptr;
    QAction* m_undoAction = nullptr;
    QAction* m_resetAction = nullptr;
    QAction* m_preferencesAction = nullptr;
    QAction* m_gridAction = nullptr;
    QAction* m_handlesAction = nullptr;
    QAction* m_aboutAction = nullptr;

    QImage m_picture;
    QString m_path;
    QString m_unreadableName; ///< what a notice in the picture's place names
    QString m_requestedPath; ///< waits for its opening
    QString m_savedTitle;
    Corrections m_savedCorrections;
    bool m_handMadeStep = false; ///< a slider was moved by hand and its step isn't recorded yet
};
