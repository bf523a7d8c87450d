// Two equal files of 1 GiB are compared at no less than 0.9 of the speed of cmp; a tree of 100,000
// files is emptied at no more than what find needs. The starts of the two programs aren't counted.

#include "BenchmarkFiles.h"
#include "Benchmarks.h"
#include "CommonConstants.h"
#include "FileHelpers.h"
#include "Scripting.h"

#include <benchmark/benchmark.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

bool isEqual(const QString& file1, const QString& file2)
{
    return VEK_NAMESPACE::CScripting::instance().isEqualFiles(file1, file2);
}

PairedTimes compareLargeFiles()
{
    const QTemporaryDir folder;
    const QString file1 = folder.filePath(QStringLiteral("first.dat"));
    const QString file2 = folder.filePath(QStringLiteral("second.dat"));
    require(writeLargeFile(file1) && writeLargeFile(file2), "a file can't be written");
    const QString cmp = QStringLiteral("cmp");
    return pairedTurns(
        15,
        [&] {
            return cpuTimeOf(
                [&] { require(isEqual(file1, file2), "equal files were found to differ"); });
        },
        [&] {
            return cpuTimeOfWork({cmp, file1, file2}, {cmp, QStringLiteral("--version")});
        });
}

/// The comparison as one would write it down, of pieces as cmp takes them.
bool isEqualByHand(const QString& path1, const QString& path2)
{
    QFile file1(path1);
    QFile file2(path2);
    const auto mode = QIODevice::ReadOnly | QIODevice::Unbuffered;
    if (!file1.open(mode) || !file2.open(mode) || file1.size() != file2.size())
        return false;
    std::vector<char> piece1(131072);
    std::vector<char> piece2(piece1.size());
    while (true) {
        const qint64 size = file1.read(piece1.data(), qint64(piece1.size()));
        if (size != file2.read(piece2.data(), qint64(piece2.size())))
            return false;
        if (size <= 0)
            return size == 0;
        if (std::memcmp(piece1.data(), piece2.data(), size_t(size)) != 0)
            return false;
    }
}

PairedTimes compareFiles(int kibibytes)
{
    const QTemporaryDir folder;
    const QString paths[] = {folder.filePath(QStringLiteral("first.dat")),
                             folder.filePath(QStringLiteral("second.dat"))};
    for (const QString& path : paths) {
        QFile file(path);
        bool written = file.open(QIODevice::WriteOnly);
        for (int i = 0; i < kibibytes; ++i)
            written =
                written && file.write(mixedData().constData() + i % 8192 * 1024, 1024) == 1024;
        require(written && file.flush(), "a file can't be written");
    }
    return pairedCalls(
        [&] { require(isEqual(paths[0], paths[1]), "equal files were found to differ"); },
        [&] { require(isEqualByHand(paths[0], paths[1]), "equal files were found to differ"); });
}

/// New trees of so many files, several of them if they are small.
class Trees
{
public:
    explicit Trees(int files)
    {
        for (int i = 0; i < std::max(1, 1000 / files); ++i) {
            m_folders << m_folder.filePath(QStringLiteral("tree%1").arg(i));
            require(writeTree(m_folders.last(), files), "a tree can't be written");
        }
    }

    /// The time of \a empty, which has to leave nothing but folders, for one tree.
    template <typename Empty>
    double timeOf(Empty empty) const
    {
        const double time = empty(m_folders) / m_folders.size();
        const QDirIterator files(m_folder.path(), QDir::Files | QDir::Hidden | QDir::System,
                                 QDirIterator::Subdirectories);
        require(!files.hasNext(), "files are left");
        return time;
    }

private:
    const QTemporaryDir m_folder;
    QStringList m_folders;
};

double removeContents(const QStringList& folders)
{
    return cpuTimeOf([&] {
        for (const QString& folder : folders)
            VEK_NAMESPACE::removeDirectoryContent(QDir(folder));
    });
}

double findAndDelete(const QStringList& folders)
{
    const QString find = QStringLiteral("find");
    const QStringList files{QStringLiteral("-type"), QStringLiteral("f"),
                            QStringLiteral("-delete")};
    return cpuTimeOfWork(QStringList(find) + folders + files, {find, QStringLiteral("--version")});
}

PairedTimes emptyTrees(int files, int turns)
{
    return pairedTurns(
        turns, [files] { return Trees(files).timeOf(removeContents); },
        [files] { return Trees(files).timeOf(findAndDelete); });
}

} // namespace

void addFiles(Benchmarks& benchmarks)
{
    const QString find = QStringLiteral("find -type f -delete");
    benchmarks.figures.push_back({QStringLiteral("files: compare two of 1 GiB"),
                                  QStringLiteral("cmp"), atMostTimes(1 / 0.9), compareLargeFiles});
    benchmarks.figures.push_back({QStringLiteral("files: empty a tree of 100,000"), find,
                                  atMostTimes(1.0), [] { return emptyTrees(100000, 5); }});
    benchmarks.growths.push_back({QStringLiteral("files: compare two, by KiB"),
                                  QStringLiteral("read() and memcmp()"), compareFiles});
    benchmarks.growths.push_back(
        {QStringLiteral("files: empty a tree, by files"), find,
         [](int files) { return emptyTrees(files, files < 100000 ? 31 : 3); }});
}
