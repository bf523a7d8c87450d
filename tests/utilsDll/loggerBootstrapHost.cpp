#include "LoggerBootstrap.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QCoreApplication>
#include <QFile>
#include <QStringList>

#include <cstdio>

using namespace VEK_NAMESPACE;

// A host that takes the steps named by its arguments, and prints what comes of them.

namespace {

class OwnLogger : public ILoggerInterface
{
public:
    void setup(const std::string&, const std::string&, char) override { std::printf("setup\n"); }
    void log(char level, const char* text) override { std::printf("%c %s\n", level, text); }
    QSharedPointer<ILoggerTrace> trace(const char*, const char*, int) override { return {}; }
};

OwnLogger& ownLogger()
{
    static OwnLogger logger;
    return logger;
}

void printLogger(const ILoggerInterface* logger)
{
    if (logger != g_logger)
        std::printf("not the current one\n");
    else if (!logger)
        std::printf("no logger\n");
    else
        std::printf(logger == &ownLogger() ? "own logger\n" : "loaded logger\n");
}

/// Whether a file of that name is part of the process.
bool isLoaded(const QByteArray& name)
{
    QFile maps(QStringLiteral("/proc/self/maps"));
    return maps.open(QIODevice::ReadOnly) && maps.readAll().contains(name);
}

bool take(const QString& step)
{
    const QString name = step.section(QLatin1Char('='), 0, 0);
    const QString value = step.section(QLatin1Char('='), 1);
    if (name == QLatin1String("init")) {
        printLogger(initLoggerForUtilsDll(nullptr, value));
    } else if (name == QLatin1String("initLogger")) {
        printLogger(initLogger(nullptr, value));
    } else if (name == QLatin1String("init own")) {
        printLogger(initLoggerForUtilsDll(&ownLogger(), value));
    } else if (name == QLatin1String("enable")) {
        setLoggerEnabled(value == QLatin1String("yes"));
    } else if (name == QLatin1String("level")) {
        setLogLevel(value);
    } else if (name == QLatin1String("overlay")) {
        // It lives as long as the process.
        CSettings::setTemporarySettings(*new CTemporarySettings(nullptr));
    } else if (name == QLatin1String("install")) {
        return QFile::link(value.section(QLatin1Char(','), 0, 0),
                           value.section(QLatin1Char(','), 1));
    } else if (name == QLatin1String("log")) {
        if (g_logger)
            g_logger->log('D', value.toUtf8().constData());
    } else if (name == QLatin1String("loaded")) {
        std::printf(isLoaded(value.toUtf8()) ? "loaded\n" : "not loaded\n");
    } else {
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    const QStringList steps = QCoreApplication::arguments().mid(1);
    for (const QString& step : steps) {
        if (!take(step)) {
            std::fprintf(stderr, "can't %s\n", qPrintable(step));
            return 1;
        }
    }
    return 0;
}
