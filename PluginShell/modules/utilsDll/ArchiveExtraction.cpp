#include "Archives.h"

#include "ArchiveBzip2_p.h"
#include "ArchiveFile_p.h"
#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <quazip/quazip.h>
#include <quazip/quazipfile.h>
#include <quazip/quazipfileinfo.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QSet>

#include <algorithm>
#include <array>
#include <utility>

namespace VEK_NAMESPACE {

namespace {

constexpr quint64 sizeOfAnyRatio = 1 << 20;
constexpr qint64 longestPath = 4096;

enum Method
{
    Stored = 0,
    Deflated = 8,
    Bzip2 = 12
};

enum UnixFileType
{
    Unknown = 0,
    Folder = 0040000,
    Regular = 0100000,
    Link = 0120000,
    FileTypeMask = 0170000
};

quint32 unixFileType(const QuaZipFileInfo64& info)
{
    return (info.externalAttr >> 16) & FileTypeMask;
}

bool isFolder(const QuaZipFileInfo64& info)
{
    return info.name.endsWith(QLatin1Char('/')) || unixFileType(info) == Folder;
}

/// Where an entry belongs, below the destination; empty if that can't be said of its name.
QString relativePath(const QString& name)
{
    const auto isSeparator = [](QChar c) {
        return c == QLatin1Char('/') || c == QLatin1Char('\\');
    };
    if (name.isEmpty() || name.size() > longestPath || isSeparator(name.at(0))
        || name.contains(QChar::Null))
        return {};
    QString parts = name;
    parts.replace(QLatin1Char('\\'), QLatin1Char('/'));
    return parts.split(QLatin1Char('/')).contains(QStringLiteral("..")) ? QString()
                                                                        : QDir::cleanPath(name);
}

/// Whether a link at that relative path leads to a place in the destination. The way goes up before
/// it goes down: what lies behind another link may be somewhere else than it seems.
bool staysInside(const QString& path, const QString& target)
{
    if (target.isEmpty() || target.startsWith(QLatin1Char('/')) || target.contains(QChar::Null))
        return false;
    int above = path.count(QLatin1Char('/'));
    bool down = false;
    const QStringList parts = target.split(QLatin1Char('/'));
    for (const QString& part : parts) {
        if (part == QLatin1String("..")) {
            if (down || --above < 0)
                return false;
        } else if (!part.isEmpty() && part != QLatin1String(".")) {
            down = true;
        }
    }
    return true;
}

bool exceedsRatio(quint64 unpacked, quint64 packed, quint64 ratio)
{
    ratio = qMax<quint64>(ratio, 1);
    return unpacked > sizeOfAnyRatio
        && (unpacked / ratio > packed || (unpacked / ratio == packed && unpacked % ratio != 0));
}

class Extraction
{
public:
    Extraction(const QString& zipPath, const QString& destination, const ArchiveLimits& limits,
               const ArchiveProgressHandler& onProgress)
        : m_file(zipPath)
        , m_zip(&m_file)
        , m_destination(destination)
        , m_limits(limits)
        , m_onProgress(onProgress)
    {}

    ArchiveResult run()
    {
        if (m_zip.open(QuaZip::mdUnzip)) {
            if (examine())
                extract();
            m_zip.close();
        } else {
            fail(ArchiveError::NotAnArchive, {},
                 QStringLiteral("It can't be opened as an archive"));
        }
        return m_result;
    }

private:
    bool fail(ArchiveError error, const QString& entry, const QString& reason)
    {
        m_result.error = error;
        m_result.entry = entry;
        m_result.reason = reason;
        return false;
    }

    bool examine();
    bool examine(const QuaZipFileInfo64& info);
    bool examineLink(const QuaZipFileInfo64& info, const QString& path);
    bool examineLinks();
    bool isBelowLink(const QString& path);

    bool extract();
    bool extract(const QuaZipFileInfo64& info);
    bool copy(QuaZipFile& entry, QFile& target, const QuaZipFileInfo64& info);
    bool openNew(QFile& target, const QString& entry);
    bool makeFolder(const QString& path, const QString& entry);
    bool makeRoom(const QString& path, const QString& entry);
    bool makeLinks();
    bool report(const QString& entry);

    /// Put together by hand: to Qt a name may mean a resource or one of the program's search paths.
    QString place(const QString& path) const
    {
        const QString destination = m_destination.absolutePath();
        return path == QLatin1String(".") ? destination : destination + QLatin1Char('/') + path;
    }

    struct StoredLink
    {
        QString entry;
        QString path;
        QString target;
        quint64 size;
    };

    ArchiveFile m_file;
    QuaZip m_zip;
    const QDir m_destination;
    const ArchiveLimits m_limits;
    const ArchiveProgressHandler& m_onProgress;

    ArchiveResult m_result;
    ArchiveProgress m_progress;
    quint64 m_packed = 0; ///< bytes of the entries so far
    QSet<QString> m_realFolders; ///< below the destination, and no links, or not there yet
    QSet<QString> m_madeFolders;
    QList<StoredLink> m_links;
    QList<std::pair<QString, QFile::Permissions>> m_folderPermissions;
};

bool Extraction::examine()
{
    quint64 entries = 0;
    for (bool more = m_zip.goToFirstFile(); more; more = m_zip.goToNextFile()) {
        if (++entries > m_limits.entryCount) {
            return fail(ArchiveError::TooManyEntries, {},
                        QStringLiteral("It has more than %1 entries").arg(m_limits.entryCount));
        }
        QuaZipFileInfo64 info;
        if (!m_zip.getCurrentFileInfo(&info))
            return fail(ArchiveError::Damaged, {},
                        QStringLiteral("Its table of contents is damaged"));
        if (!examine(info))
            return false;
    }
    // After 65,535 entries, which is also the mark of ZIP64, the end looks like damage.
    if (m_zip.getZipError() != UNZ_OK && entries != quint64(m_zip.getEntriesCount()))
        return fail(ArchiveError::Damaged, {}, QStringLiteral("Its table of contents is damaged"));
    if (entries == 0)
        return fail(ArchiveError::NotAnArchive, {}, QStringLiteral("It has no entries"));
    if (!examineLinks())
        return false;
    m_progress.totalEntries = entries;

    const auto packed = quint64(m_file.size());
    if (exceedsRatio(m_progress.totalBytes, packed, m_limits.compressionRatio)) {
        return fail(
            ArchiveError::TooCompressed, {},
            QStringLiteral("Its %1 bytes would become %2").arg(packed).arg(m_progress.totalBytes));
    }
    return true;
}

bool Extraction::examine(const QuaZipFileInfo64& info)
{
    const QString path = relativePath(info.name);
    const bool isDestination = path == QLatin1String(".");
    if (path.isEmpty() || (isDestination && !info.name.endsWith(QLatin1Char('/')))) {
        return fail(ArchiveError::UnsafeName, info.name,
                    QStringLiteral("Its name leads out of the destination"));
    }
    // The destination itself may be one.
    if (isBelowLink(isFolder(info) && !isDestination ? path + QLatin1Char('/') : path)) {
        return fail(ArchiveError::UnsafeName, info.name,
                    QStringLiteral("A folder on the way to it is a symbolic link"));
    }

    if (info.flags & 1)
        return fail(ArchiveError::UnsupportedEntry, info.name, QStringLiteral("It is encrypted"));
    if (info.method != Stored && info.method != Deflated && info.method != Bzip2) {
        return fail(ArchiveError::UnsupportedEntry, info.name,
                    QStringLiteral("It is packed with the unknown method %1").arg(info.method));
    }
    const quint32 type = unixFileType(info);
    if (type != Unknown && type != Regular && type != Folder && type != Link) {
        return fail(ArchiveError::UnsupportedEntry, info.name,
                    QStringLiteral("It is neither a file, a folder nor a link"));
    }

    // Folders that are only in the way to something count too, and what is packed is packed once.
    if (quint64(m_realFolders.size()) > m_limits.entryCount) {
        return fail(ArchiveError::TooManyEntries, info.name,
                    QStringLiteral("With it, there would be more than %1 folders")
                        .arg(m_limits.entryCount));
    }
    const auto archiveSize = quint64(m_file.size());
    if (info.compressedSize > archiveSize || m_packed > archiveSize - info.compressedSize) {
        return fail(ArchiveError::TooCompressed, info.name,
                    QStringLiteral("It shares its data with other entries"));
    }
    m_packed += info.compressedSize;

    if (info.uncompressedSize > m_limits.totalSize
        || m_progress.totalBytes > m_limits.totalSize - info.uncompressedSize) {
        return fail(ArchiveError::TooLarge, info.name,
                    QStringLiteral("With it, the files would take more than %1 bytes")
                        .arg(m_limits.totalSize));
    }
    m_progress.totalBytes += info.uncompressedSize;
    if (exceedsRatio(info.uncompressedSize, info.compressedSize, m_limits.compressionRatio)) {
        return fail(ArchiveError::TooCompressed, info.name,
                    QStringLiteral("Its %1 bytes would become %2")
                        .arg(info.compressedSize)
                        .arg(info.uncompressedSize));
    }
    return type != Link || examineLink(info, path);
}

bool Extraction::examineLink(const QuaZipFileInfo64& info, const QString& path)
{
    QByteArray target;
    if (info.uncompressedSize <= longestPath) {
        QuaZipFile entry(&m_zip);
        if (!canBeRead(m_zip) || !entry.open(QIODevice::ReadOnly))
            return fail(ArchiveError::Damaged, info.name, QStringLiteral("It can't be read"));
        target = entry.read(longestPath);
        entry.close();
        if (entry.getZipError() != UNZ_OK || quint64(target.size()) != info.uncompressedSize)
            return fail(ArchiveError::Damaged, info.name, QStringLiteral("It is damaged"));
    }
    const QString decoded = QFile::decodeName(target);
    if (isFolder(info) || target.contains('\0') || !staysInside(path, decoded)) {
        return fail(ArchiveError::UnsafeLink, info.name,
                    QStringLiteral("The link leads out of the destination, or by a detour"));
    }
    m_links.append({info.name, path, decoded, info.uncompressedSize});
    return true;
}

/// Nothing may lie below a link: it would be somewhere else.
bool Extraction::examineLinks()
{
    for (const StoredLink& link : qAsConst(m_links)) {
        if (m_realFolders.contains(link.path)) {
            return fail(ArchiveError::UnsafeLink, link.entry,
                        QStringLiteral("Another entry lies below the link"));
        }
    }
    return true;
}

bool Extraction::isBelowLink(const QString& path)
{
    // Upwards, and no further than to a folder that is known.
    QStringList unknown;
    for (int end = path.lastIndexOf(QLatin1Char('/')); end > 0;
         end = path.lastIndexOf(QLatin1Char('/'), end - 1)) {
        const QString folder = path.left(end);
        if (m_realFolders.contains(folder))
            break;
        unknown.append(folder);
    }
    for (const QString& folder : qAsConst(unknown)) {
        if (QFileInfo(place(folder)).isSymLink())
            return true;
    }
    for (const QString& folder : qAsConst(unknown))
        m_realFolders.insert(folder);
    return false;
}

bool Extraction::extract()
{
    if (!makeFolder(m_destination.absolutePath(), {}))
        return false;
    for (bool more = m_zip.goToFirstFile(); more; more = m_zip.goToNextFile()) {
        QuaZipFileInfo64 info;
        if (!m_zip.getCurrentFileInfo(&info))
            return fail(ArchiveError::Damaged, {},
                        QStringLiteral("Its table of contents is damaged"));
        if (!report(info.name) || !extract(info))
            return false;
    }

    // What is in a folder comes first: one that can't be written to takes nothing more.
    std::for_each(m_folderPermissions.crbegin(), m_folderPermissions.crend(),
                  [](const auto& folder) {
                      QFile::setPermissions(folder.first,
                                            folder.second | QFile::ReadOwner | QFile::WriteOwner
                                                | QFile::ExeOwner);
                  });
    if (!makeLinks())
        return false;
    m_progress.entries = m_progress.totalEntries;
    return report({});
}

bool Extraction::extract(const QuaZipFileInfo64& info)
{
    if (unixFileType(info) == Link)
        return true; // later

    const QString path = place(relativePath(info.name));
    const QFile::Permissions permissions = info.getPermissions();
    if (isFolder(info)) {
        if (!makeFolder(path, info.name))
            return false;
        m_progress.bytes += info.uncompressedSize;
        if (permissions)
            m_folderPermissions.append({path, permissions});
    } else {
        if (!makeFolder(QFileInfo(path).absolutePath(), info.name))
            return false;
        QuaZipFile entry(&m_zip);
        if (!canBeRead(m_zip) || !entry.open(QIODevice::ReadOnly))
            return fail(ArchiveError::Damaged, info.name, QStringLiteral("It can't be read"));
        QFile target(path);
        if (!openNew(target, info.name))
            return false;
        if (!copy(entry, target, info)) {
            target.remove();
            return false;
        }
        // Not every file system has permissions, and a file without them is no loss.
        if (permissions)
            target.setPermissions(permissions | QFile::ReadOwner | QFile::WriteOwner);
    }
    ++m_progress.entries;
    ++m_result.extractedEntries;
    return true;
}

bool Extraction::copy(QuaZipFile& entry, QFile& target, const QuaZipFileInfo64& info)
{
    std::array<char, 65536> buffer; // NOLINT(*-member-init): read before it is used
    quint64 copied = 0;
    while (!entry.atEnd()) {
        const qint64 size = entry.read(buffer.data(), qint64(buffer.size()));
        copied += quint64(qMax<qint64>(size, 0));
        if (size <= 0 || copied > info.uncompressedSize)
            return fail(ArchiveError::Damaged, info.name, QStringLiteral("It is damaged"));
        if (target.write(buffer.data(), size) != size)
            return fail(ArchiveError::WriteFailed, info.name, target.errorString());
        m_progress.bytes += quint64(size);
        if (!report(info.name))
            return false;
    }
    entry.close(); // compares the check sum
    if (entry.getZipError() != UNZ_OK || copied != info.uncompressedSize)
        return fail(ArchiveError::Damaged, info.name, QStringLiteral("It is damaged"));
    return true;
}

bool Extraction::openNew(QFile& target, const QString& entry)
{
    const QIODevice::OpenMode mode = QIODevice::WriteOnly | QIODevice::Unbuffered;
#if QT_VERSION >= QT_VERSION_CHECK(5, 11, 0)
    // Nothing can come into its place between looking and opening.
    if (target.open(mode | QIODevice::NewOnly))
        return true;
    if (!makeRoom(target.fileName(), entry))
        return false;
    return target.open(mode | QIODevice::NewOnly)
        || fail(ArchiveError::WriteFailed, entry, target.errorString());
#else
    if (!makeRoom(target.fileName(), entry))
        return false;
    return target.open(mode) || fail(ArchiveError::WriteFailed, entry, target.errorString());
#endif
}

bool Extraction::makeFolder(const QString& path, const QString& entry)
{
    if (m_madeFolders.contains(path))
        return true;
    if (!QDir().mkpath(path))
        return fail(ArchiveError::WriteFailed, entry, QStringLiteral("Its folder can't be made"));
    m_madeFolders.insert(path);
    return true;
}

/// Removes what is in an entry's place: writing to a link would write somewhere else, and opening a
/// pipe would wait for its other end.
bool Extraction::makeRoom(const QString& path, const QString& entry)
{
    const QFileInfo present(path);
    if (!present.exists() && !present.isSymLink())
        return true;
    if ((present.isDir() && !present.isSymLink()) || !QFile::remove(path)) {
        return fail(ArchiveError::WriteFailed, entry,
                    QStringLiteral("What is in its place can't be replaced"));
    }
    return true;
}

bool Extraction::makeLinks()
{
    for (const StoredLink& link : qAsConst(m_links)) {
        const QString path = place(link.path);
        m_realFolders.clear(); // a file system may take two names for one
        if (isBelowLink(link.path)) {
            return fail(ArchiveError::UnsafeLink, link.entry,
                        QStringLiteral("A folder on the way to it is a symbolic link"));
        }
        if (!report(link.entry) || !makeFolder(QFileInfo(path).absolutePath(), link.entry)
            || !makeRoom(path, link.entry)) {
            return false;
        }
        if (!Platform::makeLink(link.target, path))
            return fail(ArchiveError::WriteFailed, link.entry,
                        QStringLiteral("The link can't be made"));
        m_progress.bytes += link.size;
        ++m_progress.entries;
        ++m_result.extractedEntries;
    }
    return true;
}

bool Extraction::report(const QString& entry)
{
    if (!m_onProgress)
        return true;
    m_progress.entry = entry;
    return m_onProgress(m_progress)
        || fail(ArchiveError::Stopped, entry, QStringLiteral("It was stopped"));
}

} // namespace

ArchiveResult ExtractArchive(const QString& zipPath, const QString& destination,
                             const ArchiveLimits& limits, const ArchiveProgressHandler& onProgress)
{
    return Extraction(zipPath, destination, limits, onProgress).run();
}

} // namespace VEK_NAMESPACE
