#include "Archives.h"

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
    return entry.getZipError() == UNZ_OK;
}

bool extractCurrentEntry(QuaZip& zip, const QDir& destination)
{
    if (zip.getMode() != QuaZip::mdUnzip)
        return false;
    QuaZipFile entry(&zip);
    if (!entry.open(QIODevice::ReadOnly) || entry.getZipError() != UNZ_OK)
        return false;

    const QString path = destination.absoluteFilePath(zip.getCurrentFileName());
    if (!destination.mkpath(QFileInfo(path).absolutePath()))
        return false;
    QuaZipFileInfo64 info;
    if (!zip.getCurrentFileInfo(&info))
        return false;

    const QFile::Permissions permissions = info.getPermissions();
    if (permissions && path.endsWith(QLatin1Char('/')) && QFileInfo(path).isDir())
        QFile::setPermissions(path, permissions);

    // A folder can't be opened, and so its entry fails; that is meant. Unbuffered: a full disk
    // makes the write fail, and not only a later close.
    QFile target(path);
    if (!target.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return false;
    if (!copy(entry, target)) {
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

} // namespace

bool DecompressFiles(const std::wstring& zipPath, const std::wstring& destination)
{
    QuaZip zip(QString::fromStdWString(zipPath));
    if (!zip.open(QuaZip::mdUnzip))
        return false;
    const QDir folder(QString::fromStdWString(destination));
    bool extracted = zip.goToFirstFile();
    for (bool more = extracted; more; more = zip.goToNextFile()) {
        if (!extractCurrentEntry(zip, folder))
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
        folder.mkpath(destination);
    JlCompress::extractDir(zipPath, destination);
}

} // namespace VEK_NAMESPACE
