#pragma once

#include "Logger.h"
#include "Scripting.h"

#include <QApplication>
#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>

#include <cstdlib>
#include <cstring>

/// Runs a script in a process of its own, which is the test program once more, since a process that
/// has failed stays so. The test program's main() hands over to execute() when it is asked to.
namespace ScriptedRun {

inline const char* argument()
{
    return "--scripted";
}

inline bool isRequested(int argc, char* argv[])
{
    return argc == 3 && std::strcmp(argv[1], argument()) == 0;
}

/// Writes what is logged into the report, so that all stands there in one order.
class ReportingLogger : public VEK_NAMESPACE::ILoggerInterface
{
public:
    void setup(const std::string&, const std::string&, char) override {}

    void log(char level, const char* text) override
    {
        VEK_NAMESPACE::CScripting::instance().log(QString(QLatin1Char(level)) + QLatin1Char(' ')
                                                  + QString::fromUtf8(text));
    }

    QSharedPointer<VEK_NAMESPACE::ILoggerTrace> trace(const char*, const char*, int) override
    {
        return {};
    }
};

/// The process itself. The script finds \a product under that name. It ends with the script's top
/// level.
inline int execute(const char* scriptPath, QObject& product)
{
    QTimer::singleShot(100000, qApp, [] { std::_Exit(EXIT_FAILURE); });
    ReportingLogger logger;
    VEK_NAMESPACE::g_logger = &logger;
    auto& scripting = VEK_NAMESPACE::CScripting::instance();
    scripting.makeObjectScriptable(QStringLiteral("product"), &product);
    scripting.setPathToScript(QString::fromLocal8Bit(scriptPath));
    QObject::connect(&scripting, &VEK_NAMESPACE::CScripting::startTest, qApp, [&scripting] {
        scripting.log(scripting.hasFailed() ? "failed" : "not failed");
#ifdef __SANITIZE_ADDRESS__
        std::_Exit(EXIT_SUCCESS); // in the middle of the run, where much isn't given back yet
#else
        std::exit(EXIT_SUCCESS);
#endif
    });
    scripting.startScript();
    return QApplication::exec();
}

/// Report lines without those of the report's frame. File names of assertions begin at the source
/// tree's root, and their line is "N".
inline QStringList reportLines(const QString& path)
{
    QFile report(path);
    if (!report.open(QIODevice::ReadOnly))
        return {QStringLiteral("no report")};
    QStringList lines = QString::fromUtf8(report.readAll()).split(QLatin1Char('\n')).mid(3);
    lines.removeAll(QString());
    lines = lines.filter(QRegularExpression(QStringLiteral("^[^\\[]")));
    return lines.replaceInStrings(
        QRegularExpression(QStringLiteral("^(E \\w+ in ).*(PluginShell/\\S+) \\d+")),
        QStringLiteral("\\1\\2 N"));
}

/// Runs \a script and returns what it, the product and the library have reported, in this order,
/// then "failed" or "not failed", and what else went wrong with the process.
inline QStringList transcript(const QByteArray& script)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("test.js")));
    if (!file.open(QIODevice::WriteOnly) || file.write(script) != script.size())
        return {QStringLiteral("no script")};
    file.close();

    QProcess process;
    process.start(QCoreApplication::applicationFilePath(),
                  {QString::fromLatin1(argument()), file.fileName()});
    const bool finished = process.waitForFinished(120000);
    QStringList lines = reportLines(folder.filePath(QStringLiteral("testReport.txt")));
    if (!finished || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        lines << QStringLiteral("ended badly");
    const QByteArray messages = process.readAllStandardError();
    if (!messages.isEmpty())
        lines << QStringLiteral("printed: ") + QString::fromLocal8Bit(messages);
    return lines;
}

} // namespace ScriptedRun
