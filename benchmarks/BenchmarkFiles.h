#pragma once

#include <QByteArray>
#include <QString>

/// The template of a temporary folder: in TMPDIR if that is set, else in memory where the system
/// has a place for it. A disk's file system may take long over a new file because of those that
/// were removed a minute ago, which says nothing about who makes it.
QString folderTemplate();

/// Words, and in between what is packed already: it deflates to about a half. 8 MiB, the same ones
/// always.
const QByteArray& mixedData();

/// A file of 1 GiB of mixedData(). False if it can't be written.
bool writeLargeFile(const QString& path);

/// 10,000 files of 100 bytes to 16 KiB of mixedData(), in 100 folders. False if one can't be
/// written.
bool writeSmallFiles(const QString& folder);
