#pragma once

#include "UtilsDllGlobal.h"

#include <QString>

/// \file
/// The application's bundle, the running process, and the platform. A failure shows only as an
/// empty or shortened result. Any thread, but for the screen's.

/// The path of the bundle with that identifier, without a separator at its end.
UTILSDLL_EXPORT QString MacOSGetBundlePath(QString const& identifier);
/// The path of that bundle's resources.
UTILSDLL_EXPORT QString MacOSGetBundleResourceDirPath(QString const& identifier);
/// The path of the product's own bundle. Once found it stays the same for the process.
UTILSDLL_EXPORT QString MacOSGetMainBundlePath();

/// Whole dots per inch of the main screen, from its size in points and its physical size. Null
/// pointers are skipped; an axis of unknown physical size gives 0. GUI thread.
UTILSDLL_EXPORT void getScreenDpi(int* dpiX, int* dpiY);

/// The processes of this computer.
namespace UtilsDll {

/// The name of this process, which is that of its executable.
UTILSDLL_EXPORT QString currentProcessName();

/// The text of entry \a key in the Info.plist of the first running application that is displayed as
/// \a processName, or of this process if that is null. Both are UTF-8. Empty if there is no such
/// application, file or text.
UTILSDLL_EXPORT QString binaryFileVersionByProcessName(const char* key, const char* processName);

} // namespace UtilsDll

namespace VEK_NAMESPACE {

/// The folder of the Qt plug-ins in the product's bundle. The argument has no effect.
UTILSDLL_EXPORT QString getQtPluginsDir(bool);

/// The operating system's name, with a version only up to 10.6.
UTILSDLL_EXPORT QString systemVersion();

} // namespace VEK_NAMESPACE
