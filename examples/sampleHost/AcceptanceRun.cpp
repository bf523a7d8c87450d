#include "AcceptanceRun.h"

#include "MessageBox.h"
#include "NativeDialogs.h"
#include "Scripting.h"
#include "Settings.h"
#include "Watchdog.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QWidget>

#include <cstdio>
#include <cstdlib>

using VEK_NAMESPACE::CNativeDialogs;
using VEK_NAMESPACE::CScripting;
using VEK_NAMESPACE::CSettings;

namespace {

/// A run that is timed out still cleans up and serves events for three seconds.
constexpr std::chrono::seconds watchdogGrace(8);

/// Ends a process whose GUI thread hangs: no destructor runs, so the temporary settings go here.
[[noreturn]] void endHungProcess(const QString& settingsFile)
{
    const QString message =
        QStringLiteral("the script did not give control back, the run is ended");
    Singleton<CScripting>::instance().log(message);
    std::fprintf(stderr, "MarlowickSample: %s\n", qPrintable(message));
    QFile::remove(settingsFile);
    QDir().rmdir(QFileInfo(settingsFile).absolutePath());
    std::_Exit(AcceptanceRun::Hung);
}

} // namespace

AcceptanceRun::AcceptanceRun(const Options& options)
    : m_options(options)
    , m_settings(options.script.toLatin1().constData())
{
    CSettings::setTemporarySettings(m_settings);
}

AcceptanceRun::~AcceptanceRun() = default;

bool AcceptanceRun::load()
{
    QFile script(m_options.script);
    if (!script.open(QIODevice::ReadOnly)) {
        m_errorMessage = QStringLiteral("cannot read the script %1: %2")
                             .arg(m_options.script, script.errorString());
        return false;
    }
    script.close();
    if (!m_options.reportDir.isEmpty() && !copyScriptToReportDir())
        return false;

    CScripting& scripting = Singleton<CScripting>::instance();
    scripting.setPathToScript(m_options.script);
    if (!scripting.isScriptingMode()) {
        m_errorMessage = QStringLiteral("the script %1 is empty").arg(m_options.script);
        return false;
    }
    if (lastReportLine().isEmpty()) {
        m_errorMessage = QStringLiteral("cannot write the report %1").arg(reportPath());
        return false;
    }
    return true;
}

QString AcceptanceRun::errorMessage() const
{
    return m_errorMessage;
}

void AcceptanceRun::start(QWidget* mainWindow)
{
    // A script may close the last window and still has its verdict to come.
    QApplication::setQuitOnLastWindowClosed(false);

    CScripting& scripting = Singleton<CScripting>::instance();
    scripting.makeObjectScriptable(mainWindow->objectName(), mainWindow);
    scripting.makeObjectScriptable(QStringLiteral("nativeDialogs"),
                                   &Singleton<CNativeDialogs>::instance());
    CMessageBox::initializeScripting();

    connect(&scripting, &CScripting::testFinished, qApp, &QCoreApplication::quit);
    if (m_options.timeOutMs > 0) {
        m_watchdog = std::make_unique<Watchdog>(
            std::chrono::milliseconds(m_options.timeOutMs) + watchdogGrace,
            [settingsFile = m_settings.tempSettingsPath()] { endHungProcess(settingsFile); });
    }
    scripting.setTimeOut(m_options.timeOutMs);
    scripting.startScript();
}

AcceptanceRun::ExitStatus AcceptanceRun::exitStatus() const
{
    const bool passed =
        lastReportLine() == QLatin1String("PASS") && !Singleton<CScripting>::instance().hasFailed();
    return passed ? Passed : Failed;
}

/// Parallel runs of one script, and the folder that the script comes from, so never meet.
bool AcceptanceRun::copyScriptToReportDir()
{
    const QDir dir(m_options.reportDir);
    const QString copy = dir.absoluteFilePath(QFileInfo(m_options.script).fileName());
    if (QFileInfo(copy) == QFileInfo(m_options.script))
        return true;

    QDir().mkpath(dir.absolutePath());
    QFile::remove(copy);
    if (!QFile::copy(m_options.script, copy)) {
        m_errorMessage = QStringLiteral("cannot copy the script to %1").arg(copy);
        return false;
    }
    m_options.script = copy;
    return true;
}

QString AcceptanceRun::reportPath() const
{
    const QFileInfo script(m_options.script);
    return script.absoluteDir().filePath(script.completeBaseName() + QStringLiteral("Report.txt"));
}

QString AcceptanceRun::lastReportLine() const
{
    QFile report(reportPath());
    if (!report.open(QIODevice::ReadOnly | QIODevice::Text))
        return QString();
    return QString::fromLocal8Bit(report.readAll()).trimmed().section(QLatin1Char('\n'), -1);
}
