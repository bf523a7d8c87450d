#include "FileHelpers.h"

#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QList>
#include <QUrl>

#include <algorithm>
#include <vector>

namespace VEK_NAMESPACE {

namespace {

constexpr int longestNamePart = 256;

QStringList anyName()
{
    return {QStringLiteral("*")};
}

QString comparedText(const QFileInfo& file, FileCompareCondition condition)
{
    switch (condition) {
    case CompareFullPath:
        return QDir::cleanPath(file.filePath());
    case ComparePathAndBaseName:
        return QDir::cleanPath(file.path()) + file.completeBaseName();
    case CompareFileName:
        return file.fileName();
    case CompareBaseName:
        return file.completeBaseName();
    }
    return {};
}

bool removeContent(const QString& folder, const QStringList& nameFilters)
{
    std::vector<Platform::FolderEntry> entries = Platform::folderEntries(folder);
    std::sort(entries.begin(), entries.end(),
              [](const Platform::FolderEntry& a, const Platform::FolderEntry& b) {
                  return a.isFolder != b.isFolder ? a.isFolder : a.name < b.name;
              });

    const bool anyFile = nameFilters == anyName();
    bool empty = true;
    QStringList files;
    for (const Platform::FolderEntry& entry : entries) {
        // Filters are for files only, as QDir has it.
        if (!entry.isFolder && !anyFile && !QDir::match(nameFilters, entry.name))
            continue;
        empty = false;
        if (!entry.isFolder)
            files << entry.name;
        else if (!removeContent(folder + QLatin1Char('/') + entry.name, anyName()))
            return false;
    }
    // Nothing to delete is a failure, which is meant.
    return !empty && Platform::removeFiles(folder, files);
}

} // namespace

bool removeDirectoryContent(QDir const& directory)
{
    return directory.exists() && removeContent(directory.absolutePath(), directory.nameFilters());
}

bool isEqualFileOrDirNames(QFileInfo const& first, QFileInfo const& second,
                           FileCompareCondition condition)
{
    return compareFileNames(comparedText(first, condition), comparedText(second, condition));
}

bool compareFileNames(QString const& first, QString const& second)
{
    return QString::compare(first, second, Qt::CaseInsensitive) == 0;
}

bool validateFileName(QString const& fileName, bool isPath)
{
    const QString path = QDir::toNativeSeparators(QDir::cleanPath(fileName));
    if (path.isEmpty())
        return false;

    const QStringList parts = QDir::toNativeSeparators(QDir::cleanPath(path))
                                  .split(QDir::separator(), QString::SkipEmptyParts);
    const bool tooLong = std::any_of(parts.begin(), parts.end(), [](const QString& part) {
        return part.size() > longestNamePart;
    });
    if (tooLong)
        return false;

    const QString forbidden = isPath ? QStringLiteral("<>\"|?*") : QStringLiteral("<>:\"|?*/\\");
    const bool hasForbidden = std::any_of(path.begin(), path.end(), [&forbidden](QChar character) {
        return forbidden.contains(character);
    });
    return !hasForbidden && !path.contains(QLatin1String(".."));
}

int moveFileToTrash(QString const& path)
{
    if (path.isEmpty())
        return 2;
    if (!Platform::hasTrash(path))
        return 1;
    return Platform::moveToTrash(path) ? 0 : 2;
}

bool renameFile(QString const& oldName, QString const& newName)
{
    return QFile::rename(oldName, newName);
}

void selectFilesInShell(QString const& folder, QStringList const& files)
{
    if (!QFileInfo::exists(folder) || files.isEmpty())
        return;
    QList<QUrl> urls;
    for (const QString& file : files) {
        const QUrl url = QUrl::fromLocalFile(file);
        if (url.isValid())
            urls << url;
    }
    Platform::showInFileManager(urls);
}

} // namespace VEK_NAMESPACE

QDateTime getFileCreationDate(QString const& path)
{
    return path.isEmpty() ? QDateTime() : VEK_NAMESPACE::Platform::creationTime(path);
}
