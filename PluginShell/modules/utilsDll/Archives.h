#pragma once

#include "UtilsDllGlobal.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <string>

/// \file
/// ZIP archives. Any thread, as long as two calls don't work on the same files.

/// Extracts all entries into \a destination and tells whether each of them succeeded; it goes on
/// after a failure. Existing files are replaced, folders are made, stored permissions are applied.
/// An entry that can't be copied leaves no file behind; one that can't get its permissions fails
/// and stays. A folder entry is made and counts as failed, which is meant, and so does an archive
/// without entries. A symbolic link comes out as a file with its target as the content.
///
/// \warning Stored names are taken as they stand: an entry called "../x", or "/x", or one below a
/// link that is in the destination already, is written outside the destination. Use
/// ExtractArchive() for archives that come from elsewhere.
extern "C" UTILSDLL_EXPORT bool DecompressFiles(const std::wstring& zipPath,
                                                const std::wstring& destination);

namespace VEK_NAMESPACE {

/// Packs the files, each under its name without a folder, into a new archive. On failure the
/// archive is removed.
UTILSDLL_EXPORT bool CompressFiles(const QStringList& files, const QString& zipPath);

/// Extracts an archive of the product's own, and tells nothing about the outcome. Makes the
/// destination if need be.
UTILSDLL_EXPORT void DecompressFiles(const QString& zipPath, const QString& destination);

/// \name Archives that come from elsewhere
/// @{

/// What an archive may take. Sizes are in bytes, unpacked.
struct ArchiveLimits
{
    quint64 totalSize = Q_UINT64_C(16) << 30; ///< of all entries together
    quint64 entryCount = 100000; ///< and the folders on the way to them as many again
    /// Unpacked by packed size, of each entry and of the archive as a whole. Up to 1 MiB every
    /// ratio is fine.
    quint64 compressionRatio = 200;
};

/// Why an archive was not extracted to its end.
enum class ArchiveError
{
    None, ///< it was
    NotAnArchive, ///< missing, unreadable, not a ZIP archive, or one without entries
    UnsafeName, ///< an entry that would be written outside the destination, or a name above 4096
    UnsafeLink, ///< a symbolic link that leads out, or by a detour, or that entries lie below
    UnsupportedEntry, ///< encrypted, packed in an unknown way, or a device, pipe or socket
    TooManyEntries, ///< more than ArchiveLimits::entryCount
    TooLarge, ///< more than ArchiveLimits::totalSize
    TooCompressed, ///< above ArchiveLimits::compressionRatio; also entries that share their data
    Damaged, ///< data that doesn't unpack, or isn't what its checksum says
    WriteFailed, ///< no space, no rights, or a folder in a file's place
    Stopped ///< by the caller
};

/// What became of an archive. In a condition it is true for one that was extracted whole.
struct ArchiveResult
{
    ArchiveError error = ArchiveError::None; ///< why it ended early
    QString entry; ///< the stored name that #error is about; empty if it is none's in particular
    QString reason; ///< one English sentence for a log
    quint64 extractedEntries = 0; ///< that are in the destination now

    /// Whether all entries were extracted.
    explicit operator bool() const { return error == ArchiveError::None; }
};

/// How far an extraction has come.
struct ArchiveProgress
{
    quint64 entries = 0; ///< that are done, of #totalEntries
    quint64 totalEntries = 0; ///< that the archive has
    quint64 bytes = 0; ///< that are written, of #totalBytes
    quint64 totalBytes = 0; ///< as the archive declares it
    QString entry; ///< the stored name of the one at work
};

/// Called in the caller's thread before each entry and after each 64 KiB; false stops.
using ArchiveProgressHandler = std::function<bool(const ArchiveProgress& progress)>;

/// Extracts an archive that nobody vouches for. Nothing is ever written outside \a destination,
/// also not through links, those that are there already included, and never more than \a limits
/// allow.
///
/// All entries are looked at first, and an archive that is refused for what it declares leaves no
/// trace. After that the first failure, or the handler, ends the extraction: the entries before it
/// stay, an unfinished file goes. Existing files and links are replaced, folders are made,
/// permissions are applied so that the owner can always read and write. Links are made last, and
/// only those that are relative and stay within the destination.
UTILSDLL_EXPORT ArchiveResult ExtractArchive(const QString& zipPath, const QString& destination,
                                             const ArchiveLimits& limits = ArchiveLimits(),
                                             const ArchiveProgressHandler& onProgress = {});

/// @}

} // namespace VEK_NAMESPACE
