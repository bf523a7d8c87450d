#pragma once

#include "BaseDialog.h"

#include <QList>
#include <QMessageBox>
#include <QScopedPointer>

class QIcon;
class QPushButton;
class Ui_CMessageBox;

/// The product's message box: an icon, a wrapped text and one to three buttons, offered through
/// static functions that block and return what was pressed. A box that is closed in another way, by
/// Escape too, counts as cancelled.
///
/// In scripting mode nothing is shown: the functions that return something take the script's next
/// answer, oldest first, and fail the test if there is none. Some record their text for
/// CScripting::isMessageBoxShown(), which serves events for a second.
///
/// A script loads the answers to message boxes through the global "messageBoxes", which a host
/// makes with initializeScripting().
///
/// Boxes are 520 pixels wide and \a height pixels high. GUI thread.
class UTILSDLL_EXPORT CMessageBox : public VEK_NAMESPACE::CBaseDialog
{
    Q_OBJECT

public:
    ~CMessageBox() override;

    /// Save, Discard, or Cancel. In scripting mode the text is recorded.
    static QMessageBox::StandardButton saveDiscardCancelMessage(QWidget* parent,
                                                                const QString& text, int height);
    /// Whether to rotate.
    static bool rotateQuestion(QWidget* parent, const QString& text, int height);

    /// Yes or No.
    static QMessageBox::StandardButton yesNoMessage(QWidget* parent, const QString& text,
                                                    int height);

    /// Discard to quit without saving, or Cancel. Can't be used in scripting mode, where it logs an
    /// assertion and returns Cancel.
    static QMessageBox::StandardButton backgroundProcessingCancelMessage(QWidget* parent,
                                                                         const QString& text);

    /// \name Boxes with one button
    /// In scripting mode the text is recorded; an empty one fails the test.
    /// @{

    /// What the user should know.
    static void information(QWidget* parent, const QString& text, int height);

    /// What went wrong.
    static void critical(QWidget* parent, const QString& text, int height);

    /// The same box as critical(), which is meant.
    static void warning(QWidget* parent, const QString& text, int height);

    /// A box with an icon and a button of the caller's.
    static void showSimpleMessageBox(QWidget* parent, const QString& text, const QIcon& icon,
                                     const QString& buttonText, int height);

    /// @}

    /// Makes the global "messageBoxes" of the script. Call it once before a test starts.
    static void initializeScripting();

    /// \name Answers, for scripts
    /// Each question takes the oldest answer that was loaded for its kind.
    /// @{

    /// Loads an answer to rotateQuestion(): whether to rotate.
    Q_INVOKABLE void setRotateQuestion(bool predefinedValue);

    /// Loads an answer to yesNoMessage(): `true` for Yes, `false` for No.
    Q_INVOKABLE void setYesNoMessage(bool predefinedButtonPressed);

    /// Does nothing: no box has a check box.
    Q_INVOKABLE void setYesNoMessageWithCheckBox(bool predefinedButtonPressed,
                                                 bool predefinedCheckBox);

    /// Loads an answer to saveDiscardCancelMessage(): 2048 for Save, 8388608 for Discard, 4194304
    /// for Cancel; any other value fails the test.
    Q_INVOKABLE void setSaveDiscardCancelMessage(int predefinedValue);

    /// @}

private Q_SLOTS:
    void onButtonClicked();

private:
    enum class IconSize
    {
        Natural,
        Small ///< 34 by 34
    };
    class ButtonRow;

    explicit CMessageBox(QWidget* parent);

    void prepareContentWidget(const QString& text);
    void setIcon(const QIcon& icon, IconSize size);
    ButtonRow createButtonLayout(bool besideIcon);
    void execWithHeight(int height);

    QScopedPointer<Ui_CMessageBox> m_ui;
    QPushButton* m_clickedButton = nullptr;
    QList<QMessageBox::StandardButton> m_saveDiscardCancelAnswers;
    QList<QMessageBox::StandardButton> m_yesNoAnswers;
    QList<bool> m_rotateAnswers;

    static QScopedPointer<CMessageBox> m_scriptingInstance;
};
