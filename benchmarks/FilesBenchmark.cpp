// Two equal files of 1 GiB are compared at no less than 0.9 of the speed of cmp, which is a "ratio"
// of CPU times of at most 1.11; a tree of 100,000 files is emptied at no more than what find needs.
// The starts of the two programs aren't counted.

#include "BenchmarkFiles.h"
#include "CommonConstants.h"
#include "FileHelpers.h"
#include "PairedRounds.h"
#include "Scripting.h"

#include <benchmark/benchmark.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

namespace {

void compareEqualFiles(benchmark::State& state)
{
    const QTemporaryDir folder(folderTemplate());
    const QString file1 = folder.filePath(QStringLiteral("first.dat"));
    const QString file2 = folder.filePath(QStringLiteral("second.dat"));
    if (!writeLargeFile(file1) || !writeLargeFile(file2)) {
        state.SkipWithError("a file can't be written");
        return;
    }
    auto& scripting = VEK_NAMESPACE::CScripting::instance();
    const QString cmp = QStringLiteral("cmp");

    PairedRounds rounds;
    for (auto _ : state) {
        if (!rounds.measure(
                state,
                [&] { return timesOf([&] { return scripting.isEqualFiles(file1, file2); }); },
                [&] {
                    return timesOfWork({cmp, file1, file2}, {cmp, QStringLiteral("--version")});
                })) {
            state.SkipWithError("the files are equal, and were not found to be");
            return;
        }
    }
    rounds.count(state);
}
BENCHMARK(compareEqualFiles)->Iterations(15)->UseManualTime()->Unit(benchmark::kMillisecond);

bool writeTree(const QString& folder)
{
    for (int i = 0; i < 100000; ++i) {
        const QDir part(folder + QStringLiteral("/folder%1").arg(i / 1000));
        QFile file(part.filePath(QStringLiteral("file%1.txt").arg(i)));
        if ((i % 1000 == 0 && !part.mkpath(QStringLiteral(".")))
            || !file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)
            || file.write("0123456789abcdef") != 16) {
            return false;
        }
    }
    return true;
}

/// The times of \a removeFiles, which has to leave nothing but folders, in a new tree.
template <typename RemoveFiles>
Times timesInNewTree(RemoveFiles removeFiles)
{
    const QTemporaryDir folder(folderTemplate());
    if (!writeTree(folder.path()))
        return {};
    Times times = removeFiles(folder.path());
    const QDirIterator files(folder.path(), QDir::Files | QDir::Hidden | QDir::System,
                             QDirIterator::Subdirectories);
    times.succeeded = times.succeeded && !files.hasNext();
    return times;
}

void emptyTree(benchmark::State& state)
{
    const QString find = QStringLiteral("find");
    PairedRounds rounds;
    for (auto _ : state) {
        if (!rounds.measure(
                state,
                [&] {
                    return timesInNewTree([](const QString& folder) {
                        return timesOf(
                            [&] { return VEK_NAMESPACE::removeDirectoryContent(QDir(folder)); });
                    });
                },
                [&] {
                    return timesInNewTree([&](const QString& folder) {
                        return timesOfWork({find, folder, QStringLiteral("-type"),
                                            QStringLiteral("f"), QStringLiteral("-delete")},
                                           {find, QStringLiteral("--version")});
                    });
                })) {
            state.SkipWithError("files are left");
            return;
        }
    }
    rounds.count(state);
}
BENCHMARK(emptyTree)->Iterations(7)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
