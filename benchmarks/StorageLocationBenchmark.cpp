// A path that is known costs the question whether its folder is there, and no more. A path that
// never asks costs the copy of a string: the call across the library's border and the guard of a
// static may add what they are, some nanoseconds.

#include "Benchmarks.h"
#include "storageLocation.h"

#include <benchmark/benchmark.h>

#include <QDir>

using VEK_NAMESPACE::CStorageLocation;

namespace {

PairedTimes ensuredPath()
{
    const QString path = CStorageLocation::loggerFilesPath();
    return pairedCalls([] { benchmark::DoNotOptimize(CStorageLocation::loggerFilesPath()); },
                       [&] { benchmark::DoNotOptimize(QDir().exists(path)); });
}

PairedTimes fixedPath()
{
    const QString path = CStorageLocation::getPreferencesFilePath();
    return pairedCalls([] { benchmark::DoNotOptimize(CStorageLocation::getPreferencesFilePath()); },
                       [&] { benchmark::DoNotOptimize(QString(path)); });
}

} // namespace

void addStorageLocation(Benchmarks& benchmarks)
{
    benchmarks.figures.push_back({QStringLiteral("storage: a path whose folder is ensured"),
                                  QStringLiteral("QDir::exists()"), atMostTimes(1.1), ensuredPath});
    benchmarks.figures.push_back({QStringLiteral("storage: a fixed path"),
                                  QStringLiteral("copy of a QString"), atMostOver(5e-9),
                                  fixedPath});
}
