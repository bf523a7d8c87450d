#include "PictureArchive.h"

#include "FileHelpers.h"
#include "PictureFile.h"
#include "SharedUtils.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>

#include <algorithm>

using namespace VEK_NAMESPACE;

namespace {

constexpr int decimals = 4;

QByteArray described(const Corrections& corrections, const QString& title)
{
    return QJsonDocument(
               QJsonObject{
                   {QStringLiteral("title"), title},
                   {QStringLiteral("horizon"), roundWithPrecision(corrections.horizon, decimals)},
                   {QStringLiteral("distortion"),
                    roundWithPrecision(corrections.distortion, decimals)},
                   {QStringLiteral("keystone"), roundWithPrecision(corrections.keystone, decimals)},
                   {QStringLiteral("autoCrop"), corrections.autoCrop},
               })
        .toJson();
}

bool writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)
        && file.write(content) == content.size();
}

/// A folder that isn't there yet, beside the archive and named after it.
QString newFolderFor(const QString& archive)
{
    const QFileInfo file(archive);
    const QString base = file.completeBaseName();
    const QString first = file.absoluteDir().filePath(base.isEmpty() ? file.suffix() : base);
    QString folder = first;
    for (int number = 2; QFileInfo::exists(folder) || QFileInfo(folder).isSymLink(); ++number)
        folder = QStringLiteral("%1 %2").arg(first).arg(number);
    return folder;
}

QString firstPicture(const QString& folder)
{
    QStringList files;
    QDirIterator entries(folder, QDir::Files | QDir::NoSymLinks, QDirIterator::Subdirectories);
    while (entries.hasNext())
        files << entries.next();
    std::sort(files.begin(), files.end());
    const auto picture = std::find_if(files.cbegin(), files.cend(), [](const QString& file) {
        QImageReader reader(file);
        reader.setDecideFormatFromContent(true);
        return reader.canRead();
    });
    return picture == files.cend() ? QString() : *picture;
}

} // namespace

QString archivesFilter()
{
    return QStringLiteral("%1 (*.zip)")
        .arg(QCoreApplication::translate("PictureArchive", "ZIP archives"));
}

ArchiveExport::ArchiveExport(const QImage& corrected, const QString& title,
                             const Corrections& corrections, const QString& baseName,
                             const QString& path)
    : CQRunnableItem(true)
    , m_picture(corrected)
    , m_title(title)
    , m_corrections(corrections)
    , m_baseName(baseName)
    , m_path(path)
{}

bool ArchiveExport::doRun()
{
    // Beside the archive, so that the finished one only has to be renamed.
    const QTemporaryDir folder(
        QFileInfo(m_path).absoluteDir().filePath(QStringLiteral(".export-XXXXXX")));
    if (!folder.isValid())
        return false;
    const QString picture = folder.filePath(m_baseName + QStringLiteral(".png"));
    const QString settings = folder.filePath(m_baseName + QStringLiteral(".json"));
    const QString archive = folder.filePath(QStringLiteral("archive"));

    PictureWriter writer(m_picture, m_title, picture, Qt::black);
    writer.run();
    if (!QFileInfo::exists(picture) || stopRequired()
        || !writeFile(settings, described(m_corrections, m_title))
        || !CompressFiles({picture, settings}, archive) || stopRequired()) {
        return false;
    }
    if (QFileInfo::exists(m_path) && !QFile::remove(m_path))
        return false;
    return renameFile(archive, m_path);
}

ArchiveImport::ArchiveImport(const QString& path)
    : CQRunnableItem(true)
    , m_path(path)
{}

const ArchiveResult& ArchiveImport::result() const
{
    return m_result;
}

QString ArchiveImport::picture() const
{
    return m_picture;
}

bool ArchiveImport::doRun()
{
    const QString folder = newFolderFor(m_path);
    m_result = ExtractArchive(m_path, folder, ArchiveLimits(),
                              [this, last = -1](const ArchiveProgress& progress) mutable {
                                  const int percent = progress.totalBytes == 0
                                      ? 0
                                      : int(progress.bytes * 100 / progress.totalBytes);
                                  if (percent != last) {
                                      last = percent;
                                      Q_EMIT progressChanged(percent);
                                  }
                                  return !stopRequired();
                              });
    if (m_result)
        m_picture = firstPicture(folder);
    if (m_picture.isEmpty())
        QDir(folder).removeRecursively();
    return bool(m_result);
}
