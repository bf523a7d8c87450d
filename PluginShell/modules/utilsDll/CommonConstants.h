#pragma once

#include "UtilsDllGlobal.h"

#include <QString>

/// Words that the library, the application and its plug-ins share: titles, modes, crash flags and
/// settings keys. Each source file holds its own, equal set; all are immutable, may be read from
/// any thread, and refer to static text, so that loading them allocates nothing. The library itself
/// reads g_ImageSizeUnits only; the others are agreements between hosts.
namespace VEK_NAMESPACE {

// clazy:excludeall=non-pod-global-static

/// The product as users know it.
const QString g_appTitle = QStringLiteral("Vek Marlowick 3");

/// Mode of the application that runs by itself.
const QString g_standaloneMode = QStringLiteral("Standalone");
/// Mode of the Lightroom plug-in.
const QString g_lrMode = QStringLiteral("LR");
/// Mode of the Photoshop plug-in.
const QString g_photoshopMode = QStringLiteral("PS");
/// Mode of the Aperture plug-in.
const QString g_apertureMode = QStringLiteral("AP");

/// Key of the crash flag of the product, whatever its mode.
const QString g_appFlag = QStringLiteral("appCrashFlag");

/// Key of the colour around the picture.
const QString g_sceneBackgroundColor = QStringLiteral("sceneBackgroundColor");
/// Key of whether a start without a picture shows a sample.
const QString g_showSampleImageAtStartup = QStringLiteral("showSampleImageAtStartup");

/// Key of the crash flag in g_standaloneMode.
const QString g_standaloneCrashFlag = QStringLiteral("appStandaloneCrashFlag");
/// Key of the crash flag in g_photoshopMode.
const QString g_pSCrashFlag = QStringLiteral("appPSCrashFlag");
/// Key of the crash flag in g_lrMode.
const QString g_lRCrashFlag = QStringLiteral("appLRCrashFlag");
/// Key of the crash flag in g_apertureMode.
const QString g_aPCrashFlag = QStringLiteral("appAPCrashFlag");

/// Value of a crash flag while the product runs; found at the next start, it tells a crash.
const QString g_appStarted = QStringLiteral("started");
/// Value of a crash flag after a crash that was seen.
const QString g_appCrashed = QStringLiteral("crashed");
/// Value of a crash flag after a run that came to its end.
const QString g_appFinished = QStringLiteral("finished");

/// Key of the crash flag of printing.
const QString g_printCrashFlag = QStringLiteral("printCrashFlag");
/// Value of g_printCrashFlag while a picture is printed.
const QString g_printCrashWatcherStarted = QStringLiteral("printCrashWatcherStarted");
/// Value of g_printCrashFlag once it is.
const QString g_printCrashWatcherFinished = QStringLiteral("printCrashWatcherFinished");

/// Key of the size of the grid over the picture.
const QString g_gridOverlaySize = QStringLiteral("gridOverlay.size");
/// Key of whether the size of the picture is shown.
const QString g_showImageSize = QStringLiteral("showImageSize");
/// Key of the unit of picture sizes, a number: see sizeToString().
const QString g_ImageSizeUnits = QStringLiteral("imageSizeUnits");
/// Key of the settings panel's part that has the focus.
const QString g_settingsFocusNumber = QStringLiteral("settingsFocusNumber");

} // namespace VEK_NAMESPACE
