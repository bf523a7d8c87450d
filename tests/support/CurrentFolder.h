#pragma once

#include <QDir>
#include <QString>

/// The process's current folder while it lives; then the one before is it again.
class CurrentFolder
{
public:
    explicit CurrentFolder(const QString& path) { QDir::setCurrent(path); }
    ~CurrentFolder() { QDir::setCurrent(m_previous); }

private:
    Q_DISABLE_COPY(CurrentFolder)

    const QString m_previous = QDir::currentPath();
};
