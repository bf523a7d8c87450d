#pragma once

#include <QMainWindow>

class PictureView;
class QCheckBox;
class QFrame;
class QLabel;
class QSlider;

/// The sample host's window: a picture, and the controls that straighten it. Scripts find every
/// control by its object name.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);

    /// Shows the picture. False, with a notice in its place, if it can't be read.
    bool openPicture(const QString& path);

public Q_SLOTS:
    void resetCorrections();

private Q_SLOTS:
    void showAngle(int tenthsOfDegree);
    void showGrid(bool visible);

private:
    QFrame* createToolPanel();
    void restoreSettings();

    PictureView* m_view = nullptr;
    QSlider* m_horizonSlider = nullptr;
    QLabel* m_angleLabel = nullptr;
    QCheckBox* m_gridCheckBox = nullptr;
    QLabel* m_fileNameLabel = nullptr;
    QLabel* m_imageSizeLabel = nullptr;
};
