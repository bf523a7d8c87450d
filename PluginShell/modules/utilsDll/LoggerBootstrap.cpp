#include "LoggerBootstrap.h"

#include "CommonConstants.h"
#include "Logger_p.h"
#include "Settings.h"
#include "SettingsSwitch_p.h"
#include "SharedUtils.h"
#include "SystemInformation.h"
#include "storageLocation.h"

#include <QDateTime>
#include <QLibrary>

namespace VEK_NAMESPACE {

using Private::logLine;

namespace {

// clazy:excludeall=non-pod-global-static

const QString g_loggerEnabled = QStringLiteral("loggerEnabled");
const QString g_loggerLevel = QStringLiteral("loggerLevel");

/// The logger of the bundle's logger library, or null. The library is never unloaded.
ILoggerInterface* loadLogger()
{
    using LoggerInstance = ILoggerInterface* (*)();

    QLibrary library(MacOSGetMainBundlePath()
                     + QStringLiteral("/Contents/Frameworks/LoggerDllkrnv3"));
    if (!library.load())
        return nullptr;
    const auto loggerInstance = reinterpret_cast<LoggerInstance>(library.resolve("loggerInstance"));
    return loggerInstance ? loggerInstance() : nullptr;
}

/// The first character, or 0 for one that isn't Latin-1.
char levelCharacter(const QString& level)
{
    const ushort unit = level.isEmpty() ? 0 : level.at(0).unicode();
    return unit <= 255 ? char(unit) : char(0);
}

void writeStartLines()
{
    logLine('D', "Current time (UTC): ", QDateTime::currentDateTimeUtc().toString(Qt::ISODate));
    logLine('D', "Vek Marlowick 3 Version: 3.1.251.0");
    if (g_logger) // asking for the identifier may create it
        logLine('D', "UID: ", getUserID());
    logLine('D', "CE version: VekFramework-7.1.2.1711161940");
}

} // namespace

ILoggerInterface* initLogger(ILoggerInterface* logger, const QString& moduleName)
{
    if (g_logger || !isLoggerEnabled())
        return g_logger;
    if (logger) {
        g_logger = logger;
        return g_logger;
    }

    g_logger = loadLogger();
    if (!g_logger)
        return nullptr;
    g_logger->setup(CStorageLocation::loggerFilesPath().toStdString(), moduleName.toStdString(),
                    levelCharacter(getLogLevel()));
    writeStartLines();
    return g_logger;
}

ILoggerInterface* initLoggerForUtilsDll(ILoggerInterface* logger, const QString& moduleName)
{
    return initLogger(logger, moduleName);
}

ILoggerTrace* logTrace(const char* file, const char* function, int line)
{
    if (!g_logger)
        return nullptr;
    return g_logger->trace(file, function, line).data();
}

bool isLoggerEnabled()
{
    return Private::isSwitchedOn(CSettings(nullptr, true), g_loggerEnabled);
}

void setLoggerEnabled(bool enable)
{
    Private::storeSwitch(g_loggerEnabled, enable);
}

QString getLogLevel()
{
    return CSettings(nullptr, true).value(g_loggerLevel, QStringLiteral("D")).toString();
}

void setLogLevel(const QString& level)
{
    CSettings(nullptr, false).setValue(g_loggerLevel, level);
}

} // namespace VEK_NAMESPACE
