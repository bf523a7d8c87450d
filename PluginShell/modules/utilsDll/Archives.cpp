#include "Archives.h"

#include "ArchiveBzip2_p.h"
#include "ArchiveFile_p.h"
#include "CommonConstants.h"

#include <quazip/JlCompress.h>
#include <quazip/quazip.h>
#include <quazip/quazipfile.h>
#include <quazip/quazipfileinfo.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

bool copy(QuaZipFile& entry, QFile& target)
{
    char buffer[4096];
    while (!entry.atEnd()) {
        const qint64 size = entry.read(buffer, sizeof buffer);
        if (size <= 0 || target.write(buffer, size) != size)
            return false;
    }
    // What is still buffered is part of the copy: on a full disk it fails here, and not when the
    // target is closed.
    return entry.getZipError() == UNZ_OK && target.flush();
}

/// \a madeFolder is the folder that is known to be there.
bool extractCurrentEntry(QuaZip& zip, const QDir& destination, QString& madeFolder)
{
    const bool isReadable = VEK_NAMESPACE::canBeRead(zip);
    QuaZipFile entry(&zip);
    if (!entry.open(QIODevice::ReadOnly) || entry.getZipError() != UNZ_OK)
        return false;

    QuaZipFileInfo64 info;
    const bool known = zip.getCurrentFileInfo(&info);
    const QString path = destination.absoluteFilePath(known ? info.name : zip.getCurrentFileName());
    const QString folder = QFileInfo(path).absolutePath();
    if (folder != madeFolder && !destination.mkpath(folder))
        return false;
    madeFolder = folder;
    if (!known)
        return false;

    const QFile::Permissions permissions = info.getPermissions();
    if (permissions && path.endsWith(QLatin1Char('/')) && QFileInfo(path).isDir())
        QFile::setPermissions(path, permissions);

    // A folder can't be opened, and so its entry fails; that is meant.
    QFile target(path);
    if (!target.open(QIODevice::WriteOnly))
        return false;
    if (!isReadable || !copy(entry, target)) {
        target.close();
        QFile::remove(path);
        return false;
    }
    target.close();
    entry.close(); // compares the check sum
    if (entry.getZipError() != UNZ_OK) {
        QFile::remove(path);
        return false;
    }
    return !permissions || target.setPermissions(permissions);
}

bool canAllBeRead(const QString& zipPath)
{
    VEK_NAMESPACE::ArchiveFile file(zipPath);
    QuaZip zip(&file);
    if (!zip.open(QuaZip::mdUnzip))
        return false;
    bool readable = true;
    for (bool more = zip.goToFirstFile(); more && readable; more = zip.goToNextFile())
        readable = VEK_NAMESPACE::canBeRead(zip);
    zip.close();
    return readable;
}

} // namespace

bool DecompressFiles(const std::wstring& zipPath, const std::wstring& destination)
{
    VEK_NAMESPACE::ArchiveFile file(QString::fromStdWString(zipPath));
    QuaZip zip(&file);
    if (!zip.open(QuaZip::mdUnzip))
        return false;
    const QDir folder(QString::fromStdWString(destination));
    QString madeFolder;
    bool extracted = zip.goToFirstFile();
    for (bool more = extracted; more; more = zip.goToNextFile()) {
        if (!extractCurrentEntry(zip, folder, madeFolder))
            extracted = false;
    }
    zip.close();
    return extracted;
}

namespace VEK_NAMESPACE {

bool CompressFiles(const QStringList& files, const QString& zipPath)
{
    return JlCompress::compressFiles(zipPath, files);
}

void DecompressFiles(const QString& zipPath, const QString& destination)
{
    const QDir folder(destination);
    if (!folder.exists())
        folder.mkpath(QStringLiteral("."));
    if (canAllBeRead(zipPath)) // otherwise nothing is left of it, as of any damaged archive
        JlCompress::extractDir(zipPath, destination);
}

} // namespace VEK_NAMESPACE
