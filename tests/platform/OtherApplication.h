#pragma once

#include "WindowProperties.h"

#include <QProcess>

/// Another program with a window, which gets the focus when it starts. Tests that use it are
/// compiled with OTHER_APPLICATION, its path.
class OtherApplication
{
public:
    OtherApplication() = default;
    ~OtherApplication()
    {
        m_process.closeWriteChannel();
        m_process.waitForFinished();
    }

    /// Waits until it has taken the focus.
    bool start()
    {
        m_process.start(QStringLiteral(OTHER_APPLICATION), QStringList());
        if (!QTest::qWaitFor([this] { return m_process.canReadLine(); }, 20000))
            return false;
        m_window = m_process.readLine().trimmed().toULongLong();
        return waitForFocus();
    }

    WId window() const { return m_window; }

    /// Takes the focus once more.
    bool takeFocus()
    {
        m_taskbar.requestFocus(m_window);
        return waitForFocus();
    }

private:
    Q_DISABLE_COPY(OtherApplication)

    bool waitForFocus() const
    {
        return QTest::qWaitFor([this] { return focusedWindow() == m_window; }, 10000);
    }

    QProcess m_process;
    Taskbar m_taskbar;
    WId m_window = 0;
};
