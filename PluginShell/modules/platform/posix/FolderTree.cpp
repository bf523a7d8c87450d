#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <QFile>

#include <algorithm>
#include <cstring>
#include <memory>

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

struct FolderCloser
{
    void operator()(DIR* folder) const { closedir(folder); }
};
using FolderPointer = std::unique_ptr<DIR, FolderCloser>;

FolderPointer openFolder(const QString& path)
{
    return FolderPointer(opendir(QFile::encodeName(path).constData()));
}

bool isFolder(DIR* parent, const dirent& entry)
{
    if (entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_DIR;
    struct stat status = {};
    return fstatat(dirfd(parent), entry.d_name, &status, AT_SYMLINK_NOFOLLOW) == 0
        && S_ISDIR(status.st_mode);
}

} // namespace

std::vector<FolderEntry> folderEntries(const QString& folder)
{
    std::vector<FolderEntry> entries;
    const FolderPointer opened = openFolder(folder);
    if (!opened)
        return entries;
    while (const dirent* entry = readdir(opened.get())) {
        if (std::strcmp(entry->d_name, ".") == 0 || std::strcmp(entry->d_name, "..") == 0)
            continue;
        const QString name = QFile::decodeName(entry->d_name);
        // As everywhere in Qt, a name that isn't text can't be reached.
        const bool isText =
            !name.contains(QChar::ReplacementCharacter) || QFile::encodeName(name) == entry->d_name;
        if (isText)
            entries.push_back({name, isFolder(opened.get(), *entry)});
    }
    return entries;
}

bool removeFiles(const QString& folder, const QStringList& names)
{
    if (names.isEmpty())
        return true;
    const FolderPointer opened = openFolder(folder);
    return opened && std::all_of(names.begin(), names.end(), [&opened](const QString& name) {
               return unlinkat(dirfd(opened.get()), QFile::encodeName(name).constData(), 0) == 0;
           });
}

bool makeLink(const QString& target, const QString& link)
{
    return symlink(QFile::encodeName(target).constData(), QFile::encodeName(link).constData()) == 0;
}

} // namespace Platform
} // namespace VEK_NAMESPACE
