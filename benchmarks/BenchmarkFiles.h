#pragma once

#include <QByteArray>
#include <QString>

/// Words, and in between what is packed already: it deflates to about a half. 8 MiB, the same ones
/// always.
const QByteArray& mixedData();

/// A file of mixedData(), as often as it takes. False if it can't be written.
bool writeMixedFile(const QString& path, int kib);

/// A file of 1 GiB of it.
bool writeLargeFile(const QString& path);

/// 10,000 files of 100 bytes to 16 KiB of mixedData(), in 100 folders. False if one can't be
/// written.
bool writeSmallFiles(const QString& folder);

/// So many files of 16 bytes, 1,000 in a folder. False if one can't be written.
bool writeTree(const QString& folder, int files);
