#pragma once

#include "CommonConstants.h"

#include <QVector>

/// The constants of the source file that includes this, in the order of their table.
static QVector<const QString*> commonConstantsHere()
{
    using namespace VEK_NAMESPACE;
    return {&g_appTitle,
            &g_standaloneMode,
            &g_lrMode,
            &g_photoshopMode,
            &g_apertureMode,
            &g_appFlag,
            &g_sceneBackgroundColor,
            &g_showSampleImageAtStartup,
            &g_standaloneCrashFlag,
            &g_pSCrashFlag,
            &g_lRCrashFlag,
            &g_aPCrashFlag,
            &g_appStarted,
            &g_appCrashed,
            &g_appFinished,
            &g_printCrashFlag,
            &g_printCrashWatcherStarted,
            &g_printCrashWatcherFinished,
            &g_gridOverlaySize,
            &g_showImageSize,
            &g_ImageSizeUnits,
            &g_settingsFocusNumber};
}

/// The same of another source file.
QVector<const QString*> commonConstantsElsewhere();
