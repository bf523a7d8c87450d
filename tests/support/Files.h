#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QString>

/// What a file holds; a text that no test writes if it can't be read.
inline QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no such file)");
}

/// Makes a file, and the folders that it lies in.
inline bool writeFile(const QString& path, const QByteArray& contents)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly)
        && file.write(contents) == contents.size();
}
