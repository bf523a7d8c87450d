#pragma once

#include "UtilsDllGlobal.h"

#include <QDateTime>
#include <QString>
#include <QStringList>

class QDir;
class QFileInfo;

/// \file
/// The file chores of a desktop program. Failures show in the results alone. Any thread, but for
/// selectFilesInShell(), which belongs to the GUI thread.

namespace VEK_NAMESPACE {

/// Deletes the files in \a directory and in the folders below it, folders first and then by name,
/// and stops at the first failure; the folders stay. A folder without entries counts as a failure,
/// \a directory as well as one below it, so that a second call fails. A symbolic link is a file: it
/// goes, and what it leads to stays.
UTILSDLL_EXPORT bool removeDirectoryContent(QDir const& directory);

/// What isEqualFileOrDirNames() compares.
enum FileCompareCondition
{
    CompareFullPath, ///< the path as it stands, without detours
    ComparePathAndBaseName, ///< the folder and the base name, without a separator between the two
    CompareFileName, ///< the name without its folder
    CompareBaseName ///< up to the last dot
};

/// Compares names regardless of case, and without asking the file system. An unknown condition
/// makes everything equal.
UTILSDLL_EXPORT bool isEqualFileOrDirNames(QFileInfo const& first, QFileInfo const& second,
                                           FileCompareCondition condition);

/// Whether the two are equal regardless of case.
UTILSDLL_EXPORT bool compareFileNames(QString const& first, QString const& second);

/// Whether a name that a user typed may be used on every platform. In a path, \a isPath,
/// separators and colons are allowed.
UTILSDLL_EXPORT bool validateFileName(QString const& fileName, bool isPath);

/// 0 if the file is in the trash now, 1 if there is no trash for it and nothing was tried, and 2 if
/// the path is empty or the move failed.
UTILSDLL_EXPORT int moveFileToTrash(QString const& path);

/// Renames a file, and tells whether it did. Doesn't replace a file of that name.
UTILSDLL_EXPORT bool renameFile(QString const& oldName, QString const& newName);

/// Shows the files, selected, in the system's file manager, if \a folder exists.
UTILSDLL_EXPORT void selectFilesInShell(QString const& folder, QStringList const& files);

} // namespace VEK_NAMESPACE

/// When a file was made, in local time and whole seconds; null where the file system doesn't know
/// it.
UTILSDLL_EXPORT QDateTime getFileCreationDate(QString const& path);
