#include "StartedApplication.h"

#include <QDir>
#include <QProcess>

#include <unistd.h>

bool StartedApplication::start(const QString& program)
{
    qint64 process = 0;
    if (!QProcess::startDetached(program, QStringList(), QDir::currentPath(), &process))
        return false;

    m_session = getsid(pid_t(process));
    return true;
}

bool StartedApplication::owns(qint64 process) const
{
    // The session stays unknown if the application has ended at once; a wrapper may do that.
    return m_session == -1 || getsid(pid_t(process)) == m_session;
}
