#pragma once

#include "Files.h"

#include <QByteArray>
#include <QDir>
#include <QDirIterator>
#include <QString>
#include <QStringList>

#include <sys/stat.h>
#include <unistd.h>

/// Permission bits of a file, or of a link itself, set-uid and the like included; -1 if there is
/// nothing.
inline int modeOf(const QString& path)
{
    struct stat status = {};
    return lstat(QFile::encodeName(path).constData(), &status) == 0 ? int(status.st_mode & 07777)
                                                                    : -1;
}

/// All that lies below a folder, in order: "folder/", "folder/file = its content", "link ->
/// target", "pipe |". Of a content above 100 bytes only the size is told.
inline QStringList contentsOf(const QString& folder)
{
    QStringList contents;
    QDirIterator it(folder, QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                    QDirIterator::Subdirectories);
    while (it.hasNext()) {
        const QString path = it.next();
        const QString name = path.mid(folder.size() + 1);
        struct stat status = {};
        lstat(QFile::encodeName(path).constData(), &status);
        if (S_ISLNK(status.st_mode)) {
            char target[4096];
            const ssize_t size =
                readlink(QFile::encodeName(path).constData(), target, sizeof target);
            contents += name + QStringLiteral(" -> ")
                + QFile::decodeName(QByteArray(target, int(qMax<ssize_t>(size, 0))));
        } else if (S_ISDIR(status.st_mode)) {
            contents += name + QLatin1Char('/');
        } else if (!S_ISREG(status.st_mode)) {
            contents += name + QStringLiteral(" |");
        } else if (status.st_size > 100) {
            contents += name + QStringLiteral(" = %1 bytes").arg(qint64(status.st_size));
        } else {
            contents += name + QStringLiteral(" = ") + QString::fromUtf8(readFile(path));
        }
    }
    contents.sort();
    return contents;
}
