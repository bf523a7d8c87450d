// Unpacking 10,000 small files, and one of 1 GiB, costs no more than with unzip and with KArchive,
// by the plain function and by the one for archives that come from elsewhere: counter "ratio", of
// CPU time. unzip's start isn't counted, and neither is the removal of what was unpacked.
//
// On the large file nearly all is zlib's work, on both sides. KArchive doesn't compare check sums,
// some 6 percent of that work, and unpacks in pieces of 1 MiB; the plain function's pieces of
// 4096 bytes cost it another 3 to 5 percent, so it comes out just above KArchive there.

#include "Archives.h"
#include "BenchmarkFiles.h"
#include "PairedRounds.h"

#include <benchmark/benchmark.h>

#include <KZip>

#include <QDir>
#include <QDirIterator>
#include <QProcess>
#include <QTemporaryDir>

namespace {

struct FilesAndBytes
{
    int files = 0;
    qint64 bytes = 0;

    bool operator==(const FilesAndBytes& other) const
    {
        return files == other.files && bytes == other.bytes;
    }
};

FilesAndBytes contentOf(const QString& folder)
{
    FilesAndBytes content;
    QDirIterator files(folder, QDir::Files, QDirIterator::Subdirectories);
    while (files.hasNext()) {
        files.next();
        ++content.files;
        content.bytes += files.fileInfo().size();
    }
    return content;
}

/// An archive, made by zip, and the place to unpack it.
class Archive
{
public:
    explicit Archive(bool (*writeFiles)(const QString& folder))
    {
        const QString folder = m_folder.filePath(QStringLiteral("packed"));
        QProcess zip;
        zip.setWorkingDirectory(folder);
        if (!QDir().mkpath(folder) || !writeFiles(folder))
            return;
        m_content = contentOf(folder);
        zip.start(QStringLiteral("zip"),
                  {QStringLiteral("-q"), QStringLiteral("-r"), QStringLiteral("-D"), path(),
                   QStringLiteral(".")});
        m_valid = zip.waitForFinished(-1) && zip.exitStatus() == QProcess::NormalExit
            && zip.exitCode() == 0 && QDir(folder).removeRecursively();
    }

    bool isValid() const { return m_valid; }
    QString path() const { return m_folder.filePath(QStringLiteral("archive.zip")); }

    /// The times of \a extract, which has to give all files, into a new folder.
    Times times(Times (*extract)(const QString& zipPath, const QString& destination)) const
    {
        const QString destination = m_folder.filePath(QStringLiteral("unpacked"));
        Times times = extract(path(), destination);
        times.succeeded = times.succeeded && contentOf(destination) == m_content
            && QDir(destination).removeRecursively();
        return times;
    }

private:
    const QTemporaryDir m_folder{folderTemplate()};
    FilesAndBytes m_content;
    bool m_valid = false;
};

const Archive& smallFiles()
{
    static const Archive archive(writeSmallFiles);
    return archive;
}

const Archive& largeFile()
{
    static const Archive archive([](const QString& folder) {
        return writeLargeFile(folder + QStringLiteral("/large.dat"));
    });
    return archive;
}

Times decompressFiles(const QString& zipPath, const QString& destination)
{
    return timesOf(
        [&] { return DecompressFiles(zipPath.toStdWString(), destination.toStdWString()); });
}

Times extractArchive(const QString& zipPath, const QString& destination)
{
    return timesOf([&] { return bool(VEK_NAMESPACE::ExtractArchive(zipPath, destination)); });
}

Times unzip(const QString& zipPath, const QString& destination)
{
    const QString program = QStringLiteral("unzip");
    return timesOfWork({program, QStringLiteral("-q"), QStringLiteral("-o"), zipPath,
                        QStringLiteral("-d"), destination},
                       {program, QStringLiteral("-v")});
}

Times copyFromKArchive(const QString& zipPath, const QString& destination)
{
    return timesOf([&] {
        KZip zip(zipPath);
        return zip.open(QIODevice::ReadOnly) && zip.directory()->copyTo(destination);
    });
}

void unpack(benchmark::State& state, const Archive& (*archive)(), decltype(&unzip) library,
            decltype(&unzip) peer)
{
    if (!archive().isValid()) {
        state.SkipWithError("there is no archive");
        return;
    }
    PairedRounds rounds;
    for (auto _ : state) {
        if (!rounds.measure(
                state, [&] { return archive().times(library); },
                [&] { return archive().times(peer); })) {
            state.SkipWithError("the files were not unpacked");
            return;
        }
    }
    rounds.count(state);
}

#define UNPACK(name, archive, library, peer, rounds)                                               \
    BENCHMARK_CAPTURE(unpack, name, archive, library, peer)                                        \
        ->Iterations(rounds)                                                                       \
        ->UseManualTime()                                                                          \
        ->Unit(benchmark::kMillisecond)

UNPACK(small files beside unzip, smallFiles, decompressFiles, unzip, 9);
UNPACK(small files beside KArchive, smallFiles, decompressFiles, copyFromKArchive, 9);
UNPACK(small files of others beside unzip, smallFiles, extractArchive, unzip, 9);
UNPACK(small files of others beside KArchive, smallFiles, extractArchive, copyFromKArchive, 9);
UNPACK(large file beside unzip, largeFile, decompressFiles, unzip, 3);
UNPACK(large file beside KArchive, largeFile, decompressFiles, copyFromKArchive, 7);
UNPACK(large file of others beside unzip, largeFile, extractArchive, unzip, 3);
UNPACK(large file of others beside KArchive, largeFile, extractArchive, copyFromKArchive, 7);

#undef UNPACK

} // namespace
