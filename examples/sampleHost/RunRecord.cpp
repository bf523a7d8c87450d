#include "RunRecord.h"

#include "CommonConstants.h"
#include "Settings.h"
#include "SharedUtils.h"
#include "storageLocation.h"

#include <QStringList>

using namespace VEK_NAMESPACE;

RunRecord::RunRecord(const QString& mode, const QString& crashFlag)
    : m_crashFlag(crashFlag)
    , m_firstOfMode(CStorageLocation::crashTempFilesPath() + mode + QStringLiteral(".lock"))
    , m_firstLaunch(VEK_NAMESPACE::isFirstLaunch())
{
    if (m_firstLaunch)
        setNotFirstLaunch();
    setLastLaunchMode(mode);

    m_firstOfMode.setStaleLockTime(0); // however long a run takes
    if (!m_firstOfMode.tryLock(0))
        return;
    m_lastRunCrashed = CSettings().value(m_crashFlag).toString() == g_appStarted;
    if (m_lastRunCrashed)
        incrementCrashCounter();
    CSettings().setValue(m_crashFlag, g_appStarted);
}

RunRecord::~RunRecord()
{
    if (m_firstOfMode.isLocked())
        CSettings().setValue(m_crashFlag, g_appFinished);
}

bool RunRecord::isFirstLaunch() const
{
    return m_firstLaunch;
}

bool RunRecord::hasLastRunCrashed() const
{
    return m_lastRunCrashed;
}

QString RunRecord::summary()
{
    QStringList counts;
    for (const QString& mode : {g_standaloneMode, g_lrMode, g_photoshopMode, g_apertureMode})
        counts << QStringLiteral("%1 %2").arg(mode).arg(crashCounterForPlugin(mode));
    const QString lastMode = getLastLaunchMode();
    return QStringLiteral("Launched before: %1\nLast mode: %2\nCrashes: %3\n")
        .arg(VEK_NAMESPACE::isFirstLaunch() ? QStringLiteral("no") : QStringLiteral("yes"),
             lastMode.isEmpty() ? QStringLiteral("none") : lastMode,
             counts.join(QStringLiteral(", ")));
}
