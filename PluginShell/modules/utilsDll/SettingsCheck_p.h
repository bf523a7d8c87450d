#pragma once

#include "UtilsDllGlobal.h"

#include <QByteArray>
#include <QString>

namespace VEK_NAMESPACE {

/// What a settings file in the form of INI is without its damaged values.
struct ScreenedSettings
{
    QByteArray content; ///< byte for byte as it was, but for the entries that are left out
    bool isDamaged = false; ///< whether any is left out
    bool hasUnknownTypes = false; ///< whether a value that stays couldn't be judged
};

/// Leaves out the entries that hold a streamed value, "@Variant(...)" or "@DateTime(...)", which is
/// certainly damaged: it ends too early, counts more than there is, lies deeper than 32 others, or
/// is a time in a zone that doesn't exist. QSettings takes the memory for any count, and crashes
/// when it writes a time without its zone. Pictures, fonts, and the types of other libraries aren't
/// judged; an entry with one stays as it is. Any thread.
ScreenedSettings screenSettings(const QByteArray& content);

/// Rewrites a settings file without what screenSettings() leaves out. To be called before QSettings
/// opens it. A file without such entries isn't touched, nor is one that can't be written, or that
/// is a property list. Markers that are themselves written in escapes aren't looked for. Any
/// thread.
void mendSettingsFile(const QString& path);

/// As mendSettingsFile(), but does nothing for a file that is as it was the last time.
void mendChangedSettingsFile(const QString& path);

} // namespace VEK_NAMESPACE
