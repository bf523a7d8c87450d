// What the sample host leaves behind of its runs - its log, its mode, its crashes - and the picture
// that a launcher hands over to it.

#include "HostProcess.h"
#include "SettingsFiles.h"
#include "WindowProperties.h"

#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>
#include <optional>

#include <unistd.h>

namespace {

QString home()
{
    return QString::fromLocal8Bit(qgetenv("HOME"));
}

QString logFile(int host = 1)
{
    const QString name =
        host == 1 ? QStringLiteral("Marlowick") : QStringLiteral("Marlowick-%1").arg(host);
    return home() + QStringLiteral("/Library/Vek_Labs/Vek Marlowick 3/Logs/") + name
        + QStringLiteral(".log");
}

/// What stands behind time, level and thread.
QStringList logTexts(int host = 1)
{
    QStringList texts;
    const QStringList lines = readLines(logFile(host));
    for (const QString& line : lines)
        texts << line.section(QStringLiteral("[Marlowick] "), 1);
    return texts;
}

void writeSetting(const char* key, const char* value)
{
    QSettings settings(settingsFile(), QSettings::IniFormat);
    settings.setValue(QLatin1String(key), QString::fromLatin1(value));
}

QString setting(const char* key)
{
    return settingsIn(settingsFile()).value(QLatin1String(key));
}

/// A host that stays until its user closes it, or it is killed.
class RunningHost
{
public:
    explicit RunningHost(const QString& picture)
    {
        m_process.start(QStringLiteral(SAMPLE_HOST), {picture});
    }

    ~RunningHost() { crash(); }

    /// Whether it has ended well.
    bool close()
    {
        if (!QTest::qWaitFor([this] { return window() != 0; }, 30000))
            return false;
        Taskbar().requestClose(window());
        return m_process.waitForFinished() && m_process.exitStatus() == QProcess::NormalExit
            && m_process.exitCode() == 0;
    }

    void crash()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    /// Its window, once the window manager has got it, or 0.
    WId window() const
    {
        const QString process = QStringLiteral("= %1\n").arg(m_process.processId());
        const QList<WId> windows = stacking();
        for (const WId candidate : windows) {
            // A new window may have the number of one that the window manager still believes in.
            if (windowProperty(candidate, "_NET_WM_PID").endsWith(process)
                && managerState(candidate) == QLatin1String("Normal")) {
                return candidate;
            }
        }
        return 0;
    }

    QProcess m_process;
};

} // namespace

class tst_HostRuns : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void the_first_run_leaves_its_mode();
    void an_acceptance_run_leaves_no_mode();
    void a_run_that_crashes_is_counted_once();
    void a_run_that_was_killed_in_its_first_moment_is_no_hindrance();
    void a_second_host_at_the_same_time_is_no_crash();
    void the_log_begins_with_four_lines();
    void without_the_logger_nothing_is_logged();
    void errors_only_if_the_level_says_so();
    void two_hosts_have_two_logs();
    void a_full_disk_is_told_and_ends_it_data();
    void a_full_disk_is_told_and_ends_it();
    void a_picture_is_handed_over();
    void a_line_that_makes_no_sense_is_handed_over();
    void nothing_is_handed_over();

private:
    QString picture() const { return m_dir->filePath(QStringLiteral("straße.png")); }
    bool run() const;
    int runScript() const;
    QString state() const;
    bool handOver(const QStringList& arguments) const;

    QScopedPointer<QTemporaryDir> m_dir;
};

void tst_HostRuns::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(QDir(home() + QStringLiteral("/Library")).removeRecursively());
    QVERIFY(QDir(settingsFolder()).removeRecursively());
    QImage image(60, 40, QImage::Format_RGB32);
    image.fill(Qt::darkGreen);
    QVERIFY(image.save(picture()));
}

bool tst_HostRuns::run() const
{
    return RunningHost(picture()).close();
}

int tst_HostRuns::runScript() const
{
    const QString script = m_dir->filePath(QStringLiteral("case.js"));
    writeFile(script, "scripting.log('hello')");
    return HostProcess({QStringLiteral("--script"), script, QStringLiteral("--timeout"),
                        QStringLiteral("30000"), picture()})
        .exitCode();
}

QString tst_HostRuns::state() const
{
    QProcess host;
    host.start(QStringLiteral(SAMPLE_HOST), {QStringLiteral("--state")});
    host.waitForFinished();
    return QString::fromUtf8(host.readAllStandardOutput());
}

/// Whether the launcher has started a host, which has taken these arguments.
bool tst_HostRuns::handOver(const QStringList& arguments) const
{
    QProcess launcher;
    launcher.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    launcher.start(QStringLiteral(LAUNCHER), QStringList{QStringLiteral(SAMPLE_HOST)} + arguments);
    return launcher.waitForFinished(60000) && launcher.exitStatus() == QProcess::NormalExit
        && launcher.exitCode() == 0;
}

void tst_HostRuns::the_first_run_leaves_its_mode()
{
    QCOMPARE(state(),
             QStringLiteral("Launched before: no\nLast mode: none\n"
                            "Crashes: Standalone 0, LR 0, PS 0, AP 0\n"));
    QVERIFY(run());
    QCOMPARE(state(),
             QStringLiteral("Launched before: yes\nLast mode: Standalone\n"
                            "Crashes: Standalone 0, LR 0, PS 0, AP 0\n"));
    QCOMPARE(setting("appStandaloneCrashFlag"), QStringLiteral("finished"));
}

void tst_HostRuns::an_acceptance_run_leaves_no_mode()
{
    QCOMPARE(runScript(), 0);
    QCOMPARE(state(),
             QStringLiteral("Launched before: no\nLast mode: none\n"
                            "Crashes: Standalone 0, LR 0, PS 0, AP 0\n"));
}

void tst_HostRuns::a_run_that_crashes_is_counted_once()
{
    // The plug-in's runs since then don't matter.
    writeSetting("app_launchMode", "PS");
    RunningHost host(picture());
    QTRY_COMPARE_WITH_TIMEOUT(setting("appStandaloneCrashFlag"), QStringLiteral("started"), 30000);
    host.crash();
    writeSetting("app_launchMode", "PS");

    QVERIFY(run());
    QVERIFY(logTexts().contains(QStringLiteral("The last run did not come to its end")));
    QVERIFY(run());
    QCOMPARE(state(),
             QStringLiteral("Launched before: yes\nLast mode: Standalone\n"
                            "Crashes: Standalone 1, LR 0, PS 0, AP 0\n"));
}

void tst_HostRuns::a_run_that_was_killed_in_its_first_moment_is_no_hindrance()
{
    // It came to make the lock that tells the first host of all, but not to fill it.
    const QString folder =
        home() + QStringLiteral("/Library/Vek_Labs/Vek Marlowick 3/CrashReports/temp/");
    QVERIFY(QDir().mkpath(folder));
    QFile lock(folder + QStringLiteral("Standalone.lock"));
    QVERIFY(lock.open(QIODevice::WriteOnly));
    QVERIFY(lock.setFileTime(QDateTime::currentDateTime().addSecs(-2),
                             QFileDevice::FileModificationTime));
    lock.close();
    writeSetting("appStandaloneCrashFlag", "started");

    QVERIFY(run());
    QVERIFY(logTexts().contains(QStringLiteral("The last run did not come to its end")));
    QCOMPARE(setting("appStandaloneCrashFlag"), QStringLiteral("finished"));
}

void tst_HostRuns::a_second_host_at_the_same_time_is_no_crash()
{
    const RunningHost first(picture());
    QTRY_COMPARE_WITH_TIMEOUT(setting("appStandaloneCrashFlag"), QStringLiteral("started"), 30000);
    QVERIFY(run());
    QCOMPARE(setting("crashCounter_Standalone"), QString());
    // The first one goes on and can still crash.
    QCOMPARE(setting("appStandaloneCrashFlag"), QStringLiteral("started"));
}

void tst_HostRuns::the_log_begins_with_four_lines()
{
    QCOMPARE(runScript(), 0);
    QFile idFile(home() + QStringLiteral("/Library/Application Support/Vek Labs/VekUserID"));
    QVERIFY(idFile.open(QIODevice::ReadOnly));

    const QStringList texts = logTexts();
    QVERIFY(texts.size() >= 4);
    const QRegularExpression time(
        QStringLiteral("^Current time \\(UTC\\): \\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ$"));
    QVERIFY2(time.match(texts.at(0)).hasMatch(), qPrintable(texts.at(0)));
    QCOMPARE(texts.at(1), QStringLiteral("Vek Marlowick 3 Version: 3.1.251.0"));
    QCOMPARE(texts.at(2), QStringLiteral("UID: ") + QString::fromLatin1(idFile.readAll()));
    QCOMPARE(texts.at(3), QStringLiteral("CE version: VekFramework-7.1.2.1711161940"));
    QVERIFY(texts.contains(QStringLiteral("Opened %1, 60 x 40 px").arg(picture())));
}

void tst_HostRuns::without_the_logger_nothing_is_logged()
{
    writeSetting("loggerEnabled", "0");
    QCOMPARE(runScript(), 0);
    QVERIFY(!QFile::exists(QFileInfo(logFile()).path()));
    QVERIFY(!QFile::exists(home() + QStringLiteral("/Library/Application Support")));
}

void tst_HostRuns::errors_only_if_the_level_says_so()
{
    writeSetting("loggerLevel", "E");
    QCOMPARE(runScript(), 0);
    QVERIFY(QFile::exists(logFile()));
    QCOMPARE(logTexts(), QStringList());
}

void tst_HostRuns::two_hosts_have_two_logs()
{
    const RunningHost first(picture());
    QTRY_VERIFY_WITH_TIMEOUT(!logTexts().isEmpty(), 30000);
    QCOMPARE(runScript(), 0);
    QCOMPARE(logTexts(2).filter(QStringLiteral("Opened ")).size(), 1);
    QTRY_COMPARE_WITH_TIMEOUT(logTexts().filter(QStringLiteral("Opened ")).size(), 1, 30000);
}

void tst_HostRuns::a_full_disk_is_told_and_ends_it_data()
{
    QTest::addColumn<bool>("acceptance");
    QTest::newRow("for its user") << false;
    QTest::newRow("in an acceptance run, where nobody is to be told") << true;
}

void tst_HostRuns::a_full_disk_is_told_and_ends_it()
{
    QFETCH(bool, acceptance);
    // A home that has no space at all, and an alert that is only written down.
    const QString users = m_dir->filePath(QStringLiteral("passwd"));
    writeFile(users, "tester:x:" + QByteArray::number(getuid()) + ":0:Tester:/proc:/bin/sh\n");
    const QString program = m_dir->filePath(QStringLiteral("zenity"));
    const QString alerts = m_dir->filePath(QStringLiteral("alerts"));
    writeFile(program, "#!/bin/sh\necho \"$4 $5\" >>'" + QFile::encodeName(alerts) + "'\n");
    QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), QStringLiteral("/proc"));
    environment.insert(QStringLiteral("NSS_WRAPPER_PASSWD"), users);
    environment.insert(QStringLiteral("PATH"),
                       m_dir->path() + QLatin1Char(':')
                           + environment.value(QStringLiteral("PATH")));
    const QString script = m_dir->filePath(QStringLiteral("case.js"));
    writeFile(script, "scripting.log('hello')");

    QProcess host;
    host.setProcessEnvironment(environment);
    host.start(QStringLiteral(SAMPLE_HOST),
               acceptance ? QStringList{QStringLiteral("--script"), script}
                          : QStringList{picture()});
    QVERIFY(host.waitForFinished(60000));

    QCOMPARE(host.exitCode(), acceptance ? 0 : 2);
    QCOMPARE(readLines(alerts),
             acceptance ? QStringList()
                        : QStringList({"--title=Error --text=Vek Marlowick 3 cannot start since "
                                       "there is not enough free space on your system disk."}));
}

/// Ends the host that writes this log, which isn't this process's child.
class LoggingHost
{
public:
    ~LoggingHost()
    {
        const auto process = processOfLog();
        if (process)
            ::kill(*process, SIGKILL);
    }

private:
    /// The thread that wrote the first line is the main one, whose number is the process's.
    static std::optional<pid_t> processOfLog()
    {
        bool ok = false;
        const int number = readLines(logFile()).value(0).section(QLatin1Char(' '), 2, 2).toInt(&ok);
        return ok ? std::optional<pid_t>(number) : std::nullopt;
    }
};

void tst_HostRuns::a_picture_is_handed_over()
{
    const LoggingHost host;
    QVERIFY(handOver({picture()}));
    QTRY_VERIFY_WITH_TIMEOUT(
        logTexts().contains(QStringLiteral("Opened %1, 60 x 40 px").arg(picture())), 30000);
}

void tst_HostRuns::a_line_that_makes_no_sense_is_handed_over()
{
    const LoggingHost host;
    QVERIFY(handOver({QStringLiteral("--bogus"), picture()}));
    QTRY_VERIFY_WITH_TIMEOUT(
        logTexts().contains(QStringLiteral("Handed over: Unknown option 'bogus'.")), 30000);
    QCOMPARE(logTexts().filter(QStringLiteral("Opened")), QStringList());
}

void tst_HostRuns::nothing_is_handed_over()
{
    const LoggingHost host;
    QVERIFY(handOver({}));
    QTRY_VERIFY_WITH_TIMEOUT(logTexts().size() >= 4, 30000);
    QCOMPARE(logTexts().filter(QStringLiteral("Opened")), QStringList());
}

QTEST_GUILESS_MAIN(tst_HostRuns)
#include "tst_HostRuns.moc"
