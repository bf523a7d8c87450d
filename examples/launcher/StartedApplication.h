#pragma once

#include <QString>

/// An application started without arguments, detached and in this process's current folder, which
/// then goes on by itself.
class StartedApplication
{
public:
    /// False if it can't be started.
    bool start(const QString& program);

    /// Whether \a process belongs to it. An application starts in a session of its own, which
    /// whatever it executes or spawns shares, so a wrapper script may stand before the program
    /// proper. Only a descendant that has left for another session isn't recognised.
    bool owns(qint64 process) const;

private:
    int m_session = -1;
};
