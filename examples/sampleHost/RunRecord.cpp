#include "RunRecord.h"

#include "CommonConstants.h"
#include "Settings.h"
#include "SharedUtils.h"
#include "storageLocation.h"

#include <QFileInfo>
#include <QStringList>

using namespace VEK_NAMESPACE;

namespace {

QString lockFile(const QString& mode)
{
    return CStorageLocation::crashTempFilesPath() + mode + QStringLiteral(".lock");
}

} // namespace

RunRecord::RunRecord(const QString& mode, const QString& crashFlag)
    : m_crashFlag(crashFlag)
    , m_firstOfMode(lockFile(mode))
    , m_firstLaunch(VEK_NAMESPACE::isFirstLaunch())
{
    if (m_firstLaunch)
        setNotFirstLaunch();
    setLastLaunchMode(mode);

    // However long a run takes. Only one that was killed as it began leaves an empty lock.
    const QFileInfo lock(lockFile(mode));
    m_firstOfMode.setStaleLockTime(lock.exists() && lock.size() == 0 ? 500 : 0);
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
