#include "FuzzTarget.h"

#include "Archives.h"
#include "CommonConstants.h"
#include "Files.h"
#include "FolderContents.h"

#include <QSet>
#include <QTemporaryDir>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <vector>

#include <zlib.h>

// ZIP archives: ExtractArchive(), and the two functions for the product's own ones.

using namespace VEK_NAMESPACE;

namespace {

constexpr std::size_t mostUnpacked = 256 << 10;

// The fields of an archive that are put right, by their place behind a signature.
constexpr std::size_t localHeaderSize = 30;
constexpr std::size_t directoryEntrySize = 46;
constexpr std::size_t endSize = 22;

class ArchiveBytes
{
public:
    ArchiveBytes(std::uint8_t* data, std::size_t size)
        : m_data(data)
        , m_size(size)
    {}

    /// Where that signature is next, m_size if nowhere.
    std::size_t find(const char* signature, std::size_t from) const
    {
        const auto* begin = reinterpret_cast<const std::uint8_t*>(signature);
        return std::size_t(
            std::search(m_data + std::min(from, m_size), m_data + m_size, begin, begin + 4)
            - m_data);
    }

    std::size_t number(std::size_t at, int width) const
    {
        std::size_t value = 0;
        for (int i = width - 1; i >= 0; --i)
            value = value << 8 | m_data[at + std::size_t(i)];
        return value;
    }

    void setNumber(std::size_t at, std::size_t value, int width)
    {
        for (int i = 0; i < width; ++i)
            m_data[at + std::size_t(i)] = std::uint8_t(value >> (8 * i));
    }

    /// Puts places, sizes and check sums right, without which little of a changed archive is looked
    /// at.
    void mend()
    {
        const std::size_t directory = find("PK\1\2", 0);
        const std::size_t end = find("PK\5\6", directory);
        if (end + endSize > m_size)
            return;
        std::size_t entries = 0;
        std::size_t local = find("PK\3\4", 0);
        for (std::size_t at = directory; at + directoryEntrySize <= end;
             at = find("PK\1\2", at + directoryEntrySize)) {
            ++entries;
            if (local + localHeaderSize > directory)
                continue;
            const std::size_t next = std::min(find("PK\3\4", local + localHeaderSize), directory);
            setNumber(at + 42, local, 4);
            mendEntry(at, local, next);
            local = next;
        }
        setNumber(end + 8, entries, 2);
        setNumber(end + 10, entries, 2);
        setNumber(end + 12, end - directory, 4);
        setNumber(end + 16, directory, 4);
    }

private:
    void mendEntry(std::size_t entry, std::size_t local, std::size_t next)
    {
        const std::size_t start =
            local + localHeaderSize + number(local + 26, 2) + number(local + 28, 2);
        if (start > next)
            return;
        std::size_t packed = next - start;
        std::vector<std::uint8_t> content(m_data + start, m_data + next);
        if (number(entry + 10, 2) == Z_DEFLATED)
            content = inflated(start, &packed);
        const std::size_t sum = crc32(0, content.data(), uInt(content.size()));
        for (const std::size_t at : {entry + 16, local + 14}) {
            setNumber(at, sum, 4);
            setNumber(at + 4, packed, 4);
            setNumber(at + 8, content.size(), 4);
        }
    }

    std::vector<std::uint8_t> inflated(std::size_t start, std::size_t* packed) const
    {
        std::vector<std::uint8_t> content(mostUnpacked);
        z_stream stream = {};
        inflateInit2(&stream, -MAX_WBITS);
        stream.next_in = m_data + start;
        stream.avail_in = uInt(*packed);
        stream.next_out = content.data();
        stream.avail_out = uInt(content.size());
        inflate(&stream, Z_FINISH);
        *packed = stream.total_in;
        content.resize(stream.total_out);
        inflateEnd(&stream);
        return content;
    }

    std::uint8_t* m_data;
    std::size_t m_size;
};

/// No link leads out of the folder, and no more than \a limit bytes are in its files.
void requireContained(const QString& folder, quint64 limit)
{
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path top = fs::canonical(QFile::encodeName(folder).constData(), error);
    if (error)
        return; // it wasn't made
    quint64 size = 0;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(top, error)) {
        if (entry.is_symlink(error)) {
            const fs::path place = fs::canonical(entry.path(), error);
            const auto parts = std::mismatch(top.begin(), top.end(), place.begin(), place.end());
            require(error || parts.first == top.end(), "no link leads out of the destination");
            require(fs::read_symlink(entry.path(), error).is_relative(), "each link is relative");
        } else if (entry.is_regular_file(error)) {
            size += entry.file_size(error);
        }
    }
    require(size <= limit, "no more is written than the limit says");
}

QStringList filesIn(const QString& folder)
{
    QStringList files = contentsOf(folder);
    const auto isFolder = [](const QString& entry) { return entry.endsWith(QLatin1Char('/')); };
    files.erase(std::remove_if(files.begin(), files.end(), isFolder), files.end());
    return files;
}

/// What becomes of an archive that ExtractArchive() accepts.
struct Extraction
{
    ArchiveResult result;
    bool isExamined = false; ///< nothing that it declares was refused
    bool hasSpecialNames = false;
    quint64 entries = 0;
};

Extraction extract(const QString& archive, const QString& destination, const ArchiveLimits& limits)
{
    Extraction extraction;
    QSet<QString> names;
    extraction.result =
        ExtractArchive(archive, destination, limits, [&](const ArchiveProgress& progress) {
            require(progress.bytes <= limits.totalSize, "progress stays below the limit of bytes");
            require(progress.entries <= progress.totalEntries, "progress ends with the last entry");
            extraction.isExamined = true;
            extraction.entries = progress.totalEntries;
            // To Qt a name with a colon in it may mean something else than a file.
            if (progress.entry.contains(QLatin1Char(':')))
                extraction.hasSpecialNames = true;
            return true;
        });
    return extraction;
}

void requireConsistent(const Extraction& extraction, const QString& destination)
{
    const ArchiveResult& result = extraction.result;
    const bool succeeded = bool(result);
    require(succeeded == result.reason.isEmpty(), "a failure has a reason, and nothing else has");
    require(!succeeded || result.extractedEntries == extraction.entries,
            "all entries are extracted if there is no error");
    require(result.extractedEntries <= extraction.entries, "no entry is extracted twice");
    require(extraction.isExamined || !QFileInfo::exists(destination),
            "an archive that is refused leaves no trace");
    require(result.error != ArchiveError::Stopped, "nobody stopped it");
}

} // namespace

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t maxSize);

#ifdef UTILSDLL_LIBFUZZER
extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t maxSize, unsigned seed)
{
    const std::size_t mutated = LLVMFuzzerMutate(data, size, maxSize);
    if (seed % 4 != 0)
        ArchiveBytes(data, mutated).mend();
    return mutated;
}
#endif

int LLVMFuzzerInitialize(int*, char***)
{
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const QTemporaryDir folder;
    static int run = 0;
    const QString outside = folder.filePath(QStringLiteral("outside"));
    if (run == 0)
        require(writeFile(outside, "stays"), "the file outside can be written");
    const QString archive = folder.filePath(QStringLiteral("archive.zip"));
    require(writeFile(archive, bytesOf(data, size)), "the archive can be written");
    const QString destination = folder.filePath(QString::number(++run));

    ArchiveLimits limits;
    limits.totalSize = mostUnpacked;
    limits.entryCount = 64;
    const Extraction first = extract(archive, destination + QStringLiteral("a"), limits);
    requireConsistent(first, destination + QStringLiteral("a"));
    requireContained(destination + QStringLiteral("a"), limits.totalSize);

    if (first.result) {
        const QStringList contents = contentsOf(destination + QStringLiteral("a"));
        const Extraction again = extract(archive, destination + QStringLiteral("a"), limits);
        require(bool(again.result), "it can be extracted once more into the same place");
        require(contentsOf(destination + QStringLiteral("a")) == contents,
                "it gives the same a second time");
    }

    // These write wherever a name says, so they only get archives of which that is known.
    if (first.isExamined) {
        VEK_NAMESPACE::DecompressFiles(archive, destination + QStringLiteral("b"));
        const bool isComplete = ::DecompressFiles(
            archive.toStdWString(), (destination + QStringLiteral("c")).toStdWString());
        const QStringList files = filesIn(destination + QStringLiteral("a"));
        if (first.result && !first.hasSpecialNames
            && quint64(files.filter(QStringLiteral(" = ")).size()) == first.entries) {
            require(isComplete, "plain files are extracted by the other function, too");
            require(filesIn(destination + QStringLiteral("c")) == files,
                    "both extract the same files");
        }
    }

    require(readFile(outside) == "stays", "nothing is written to the files outside");
    QStringList left = QDir(folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    for (const char* name : {"a", "b", "c"}) {
        left.removeOne(QString::number(run) + QLatin1String(name));
        QDir(destination + QLatin1String(name)).removeRecursively();
    }
    require(left == QStringList({QStringLiteral("archive.zip"), QStringLiteral("outside")}),
            "nothing is written outside of the destination");
    return 0;
}
