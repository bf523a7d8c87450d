#pragma once

#include "UtilsDllGlobal.h"

#include <QString>

/// Words that the library, the application and its plug-ins share: titles, modes, crash flags and
/// settings keys. Each source file holds its own, equal set; all are immutable, may be read from
/// any thread, and refer to static text, so that loading them allocates nothing.
namespace VEK_NAMESPACE {

// clazy:excludeall=non-pod-global-static

const QString g_appTitle = QStringLiteral("Vek Marlowick 3");

const QString g_standaloneMode = QStringLiteral("Standalone");
const QString g_lrMode = QStringLiteral("LR");
const QString g_photoshopMode = QStringLiteral("PS");
const QString g_apertureMode = QStringLiteral("AP");

const QString g_appFlag = QStringLiteral("appCrashFlag");

const QString g_sceneBackgroundColor = QStringLiteral("sceneBackgroundColor");
const QString g_showSampleImageAtStartup = QStringLiteral("showSampleImageAtStartup");

const QString g_standaloneCrashFlag = QStringLiteral("appStandaloneCrashFlag");
const QString g_pSCrashFlag = QStringLiteral("appPSCrashFlag");
const QString g_lRCrashFlag = QStringLiteral("appLRCrashFlag");
const QString g_aPCrashFlag = QStringLiteral("appAPCrashFlag");

const QString g_appStarted = QStringLiteral("started");
const QString g_appCrashed = QStringLiteral("crashed");
const QString g_appFinished = QStringLiteral("finished");

const QString g_printCrashFlag = QStringLiteral("printCrashFlag");
const QString g_printCrashWatcherStarted = QStringLiteral("printCrashWatcherStarted");
const QString g_printCrashWatcherFinished = QStringLiteral("printCrashWatcherFinished");

const QString g_gridOverlaySize = QStringLiteral("gridOverlay.size");
const QString g_showImageSize = QStringLiteral("showImageSize");
const QString g_ImageSizeUnits = QStringLiteral("imageSizeUnits");
const QString g_settingsFocusNumber = QStringLiteral("settingsFocusNumber");

} // namespace VEK_NAMESPACE
