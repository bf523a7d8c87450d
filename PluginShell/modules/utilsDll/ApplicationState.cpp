#include "SharedUtils.h"

#include "CommonConstants.h"
#include "Logger_p.h"
#include "Settings.h"
#include "SettingsSwitch_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QUuid>

#include <limits>

namespace VEK_NAMESPACE {

using Private::logLine;

namespace {

// clazy:excludeall=non-pod-global-static

const QString g_appFirstLaunchFlag = QStringLiteral("app_launched");
const QString g_applastLaunchMode = QStringLiteral("app_launchMode");
const QString g_crashCounter = QStringLiteral("crashCounter_");
const QString g_useActionSaveKey = QStringLiteral("UseActionSave");
const QString g_resellerId = QStringLiteral("resellerId");
const QString g_sendStatistics = QStringLiteral("VekSendStat");
const QString g_sendCrashReports = QStringLiteral("VekSentCrashReport");

QString plainText(const QUuid& uuid)
{
    return uuid.toString().remove(QLatin1Char('{')).remove(QLatin1Char('}'));
}

/// Opening a pipe or the like would wait for its other end.
bool canBeOpened(const QFile& file)
{
    const QFileInfo info(file);
    return !info.exists() || info.isFile() || info.isDir();
}

/// Empty if the file holds no identifier.
QString readUserID(QFile& file)
{
    if (!canBeOpened(file) || !file.open(QIODevice::ReadOnly))
        return {};
    constexpr int longestText = 42;
    const QByteArray text = file.read(longestText);
    file.close();
    const QUuid uuid(QString::fromLatin1(text.constData())); // up to a zero byte
    return uuid.isNull() ? QString() : plainText(uuid);
}

void writeUserID(QFile& file, const QString& userId)
{
    QDir::root().mkpath(QFileInfo(file).dir().absolutePath());
    if (canBeOpened(file) && file.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        file.write(userId.toLatin1());
        return;
    }
    logLine('D', "Error during writing user ID to file ", file.fileName(), " : ",
            file.errorString());
}

} // namespace

bool isFirstLaunch()
{
    return CSettings(nullptr, false).value(g_appFirstLaunchFlag).isNull();
}

void setNotFirstLaunch()
{
    CSettings(nullptr, false).setValue(g_appFirstLaunchFlag, 1);
}

QString getLastLaunchMode()
{
    return CSettings(nullptr, false).value(g_applastLaunchMode).toString();
}

void setLastLaunchMode(const QString& mode)
{
    CSettings(nullptr, false).setValue(g_applastLaunchMode, mode);
}

void incrementCrashCounter()
{
    const QString key = g_crashCounter + getLastLaunchMode();
    CSettings settings(nullptr, false);
    const int counted = settings.value(key, 0).toInt();
    settings.setValue(key, qMin(counted, std::numeric_limits<int>::max() - 1) + 1);
}

int crashCounterForPlugin(const QString& mode)
{
    return CSettings(nullptr, false).value(g_crashCounter + mode, 0).toInt();
}

void crashCounterReset(const QString& mode)
{
    const QString key = g_crashCounter + mode;
    CSettings settings(nullptr, false);
    settings.setValue(key, 0);
    settings.remove(key);
}

void startCrashSender()
{
    QProcess::execute(QStringLiteral("CrashSender"), {});
}

QString getUserID()
{
    QFile file(QDir::homePath()
               + QStringLiteral("/Library/Application Support/Vek Labs/VekUserID"));
    QString stored = readUserID(file);
    if (!stored.isEmpty())
        return stored;

    QString created = plainText(QUuid::createUuid());
    writeUserID(file, created);
    return created;
}

QString getResellerID()
{
    const QString defaultReseller = QStringLiteral("vek");
    const QString reseller =
        CSettings(nullptr, false).value(g_resellerId, defaultReseller).toString();
    return reseller == QLatin1String("VEK_RESELLER_ID_PLACEHOLDER") ? defaultReseller : reseller;
}

void setResellerID(const QString& reseller)
{
    CSettings(nullptr, false).setValue(g_resellerId, reseller);
}

bool useActionSave()
{
    // The default's text is "false", which counts as on: see the header.
    const CSettings settings(nullptr, true);
    return settings.value(g_useActionSaveKey, false).toString() != QLatin1String("0");
}

bool isStatisticSent()
{
    return Private::isSwitchedOn(CSettings(nullptr, false), g_sendStatistics);
}

void setStatisticSent(bool send)
{
    Private::storeSwitch(g_sendStatistics, send);
}

bool crashReportSendingAllowed()
{
    return Private::isSwitchedOn(CSettings(nullptr, false), g_sendCrashReports);
}

void allowCrashReportSending(bool allow)
{
    Private::storeSwitch(g_sendCrashReports, allow);
}

} // namespace VEK_NAMESPACE
