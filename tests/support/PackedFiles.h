#pragma once

#include "Files.h"

#include <QProcess>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

#include <map>

/// Runs a program of the build to its end, which has to be a good one.
inline void execute(const char* program, const QStringList& arguments)
{
    QProcess process;
    process.start(QString::fromUtf8(program), arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit
        || process.exitCode() != 0)
        qFatal("%s failed: %s", program, process.readAllStandardError().constData());
}

/// Packs files, which are given by their names below \a prefix, into the file \a packed, which
/// QResource::registerResource() takes.
inline void packFiles(const QString& prefix, const std::map<QString, QByteArray>& files,
                      const QString& packed)
{
    const QTemporaryDir folder;
    QString list;
    for (const auto& file : files) {
        const QString path = folder.filePath(file.first);
        if (!writeFile(path, file.second))
            qFatal("can't write %s", qPrintable(path));
        list += QStringLiteral("<file>%1</file>").arg(file.first.toHtmlEscaped());
    }
    const QString description =
        QStringLiteral("<RCC><qresource prefix=\"%1\">%2</qresource></RCC>").arg(prefix, list);
    writeFile(folder.filePath("list.qrc"), description.toUtf8());
    execute(RCC, {"--binary", folder.filePath("list.qrc"), "--output", packed});
}
