#pragma once

#include "Files.h"

#include <QCoreApplication>
#include <QProcess>
#include <QString>
#include <QStringList>

#include <cstdio>

/// Runs this program with arguments in a process of its own, which is to call printPeakMemory(),
/// and tells what that printed; -1 if it crashed.
inline qint64 peakMemoryOf(const QStringList& arguments)
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), arguments);
    if (!process.waitForFinished(120000) || process.exitStatus() != QProcess::NormalExit)
        return -1;
    return process.readAllStandardOutput().simplified().toLongLong();
}

/// Prints how many KiB of memory this process had at most.
inline void printPeakMemory()
{
    // Not getrusage(), which counts the process before it became this program as well.
    const QList<QByteArray> lines = readFile(QStringLiteral("/proc/self/status")).split('\n');
    for (const QByteArray& line : lines) {
        if (line.startsWith("VmHWM:"))
            std::printf("%lld\n", line.mid(6).chopped(2).trimmed().toLongLong());
    }
}
