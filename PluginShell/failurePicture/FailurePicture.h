#pragma once

#include <QImage>
#include <QObject>
#include <QString>

/// Saves what the screens show when an acceptance script of this process fails: at the failure
/// itself, before the script's clean-up and the closing of a modal dialog.
class FailurePicture : public QObject
{
    Q_OBJECT

public:
    explicit FailurePicture(const QString& path);

    /// All screens as they are now, with the windows painted up to date. Where the system gives no
    /// picture of a screen, and for a window that it doesn't show yet, the window is drawn there.
    static QImage ofAllScreens();

private:
    void observe();

    QString m_path;
};
