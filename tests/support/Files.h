#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

/// What a file holds; a text that no test writes if it can't be read.
inline QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(no such file)");
}
