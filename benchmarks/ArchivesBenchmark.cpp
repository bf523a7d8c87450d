// Unpacking 10,000 small files, and one of 1 GiB, costs no more than with unzip and with KArchive,
// by the plain function and by the one for archives that come from elsewhere. unzip's start isn't
// counted, and neither is the removal of what was unpacked.

#include "Archives.h"
#include "BenchmarkFiles.h"
#include "Benchmarks.h"

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

using Unpack = double (*)(const QString& zipPath, const QString& destination);

/// An archive, made by zip, and the place to unpack it.
class Archive
{
public:
    explicit Archive(const std::function<bool(const QString& folder)>& writeFiles)
    {
        const QString folder = m_folder.filePath(QStringLiteral("packed"));
        require(QDir().mkpath(folder) && writeFiles(folder), "a file can't be written");
        m_content = contentOf(folder);
        QProcess zip;
        zip.setWorkingDirectory(folder);
        zip.start(QStringLiteral("zip"),
                  {QStringLiteral("-q"), QStringLiteral("-r"), QStringLiteral("-D"), path(),
                   QStringLiteral(".")});
        require(zip.waitForFinished(-1) && zip.exitStatus() == QProcess::NormalExit
                    && zip.exitCode() == 0 && QDir(folder).removeRecursively(),
                "there is no archive");
    }

    QString path() const { return m_folder.filePath(QStringLiteral("archive.zip")); }

    /// The time of \a unpack, which has to give all files, into a new folder.
    double timeOf(Unpack unpack) const
    {
        const QString destination = m_folder.filePath(QStringLiteral("unpacked"));
        const double time = unpack(path(), destination);
        require(contentOf(destination) == m_content && QDir(destination).removeRecursively(),
                "the files were not unpacked");
        return time;
    }

    PairedTimes paired(int turns, Unpack ours, Unpack peer) const
    {
        return pairedTurns(
            turns, [&] { return timeOf(ours); }, [&] { return timeOf(peer); });
    }

private:
    const QTemporaryDir m_folder;
    FilesAndBytes m_content;
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

double decompressFiles(const QString& zipPath, const QString& destination)
{
    return cpuTimeOf([&] {
        require(DecompressFiles(zipPath.toStdWString(), destination.toStdWString()),
                "the archive can't be unpacked");
    });
}

double extractArchive(const QString& zipPath, const QString& destination)
{
    return cpuTimeOf([&] {
        require(bool(VEK_NAMESPACE::ExtractArchive(zipPath, destination)),
                "the archive can't be unpacked");
    });
}

double unzip(const QString& zipPath, const QString& destination)
{
    const QString program = QStringLiteral("unzip");
    return cpuTimeOfWork({program, QStringLiteral("-q"), QStringLiteral("-o"), zipPath,
                          QStringLiteral("-d"), destination},
                         {program, QStringLiteral("-v")});
}

double copyFromKArchive(const QString& zipPath, const QString& destination)
{
    return cpuTimeOf([&] {
        KZip zip(zipPath);
        require(zip.open(QIODevice::ReadOnly) && zip.directory()->copyTo(destination),
                "KArchive can't unpack the archive");
    });
}

/// Beside unzip, as KArchive doesn't read archives of more than 65,535 entries.
PairedTimes unpackEntries(int entries, Unpack ours)
{
    const Archive archive([entries](const QString& folder) { return writeTree(folder, entries); });
    return archive.paired(entries < 1000 ? 301 : (entries < 100000 ? 31 : 3), ours, unzip);
}

PairedTimes unpackFile(int kib, Unpack ours)
{
    const Archive archive([kib](const QString& folder) {
        return writeMixedFile(folder + QStringLiteral("/file.dat"), kib);
    });
    return archive.paired(kib < 100000 ? 101 : 5, ours, copyFromKArchive);
}

} // namespace

void addArchives(Benchmarks& benchmarks)
{
    struct Function
    {
        QString name;
        Unpack unpack;
        Reason besideKArchive; ///< on a large file
    };
    const QString noCheckSums = QStringLiteral(
        "Nearly all of it is zlib's work, on both sides. KArchive doesn't compare check sums, some "
        "6 percent of that work");
    const Function functions[] = {
        {QStringLiteral("DecompressFiles"),
         decompressFiles,
         {noCheckSums
              + QStringLiteral(", and unpacks in pieces of 1 MiB; the pieces of 4,096 bytes, which "
                               "are fixed here, cost another 3 to 5 percent."),
          1.15}},
        {QStringLiteral("ExtractArchive"), extractArchive, {noCheckSums + QLatin1Char('.'), 1.1}}};
    const QString unzipName = QStringLiteral("unzip");
    const QString kArchive = QStringLiteral("KArchive");
    for (const Function& function : functions) {
        const Unpack ours = function.unpack;
        const QString small = QStringLiteral("%1: 10,000 small files").arg(function.name);
        const QString large = QStringLiteral("%1: a file of 1 GiB").arg(function.name);
        const auto unpacked = [ours](const Archive& (*archive)(), int turns, Unpack peer) {
            return [=] { return archive().paired(turns, ours, peer); };
        };
        benchmarks.figures.push_back(
            {small, unzipName, atMostTimes(1.0), unpacked(smallFiles, 9, unzip)});
        benchmarks.figures.push_back(
            {small, kArchive, atMostTimes(1.0), unpacked(smallFiles, 9, copyFromKArchive)});
        benchmarks.figures.push_back(
            {large, unzipName, atMostTimes(1.0), unpacked(largeFile, 3, unzip)});
        benchmarks.figures.push_back({large, kArchive, atMostTimes(1.0),
                                      unpacked(largeFile, 5, copyFromKArchive),
                                      function.besideKArchive});
        benchmarks.growths.push_back({QStringLiteral("%1: by entries").arg(function.name),
                                      unzipName,
                                      [=](int entries) { return unpackEntries(entries, ours); }});
        benchmarks.growths.push_back({QStringLiteral("%1: a file, by KiB").arg(function.name),
                                      kArchive, [=](int kib) { return unpackFile(kib, ours); }});
    }
}
