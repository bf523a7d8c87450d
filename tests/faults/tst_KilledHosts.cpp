// Hosts that are killed while they write settings: the file can always be read, holds what was
// synced last, and the next host isn't kept waiting by what the dead one has left.

#include "Files.h"
#include "HostUnderFault.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QSysInfo>
#include <QTemporaryDir>

#include <chrono>
#include <memory>
#include <random>

namespace {

constexpr int kills = 200;
constexpr int killsOfTheSampleHost = 20;
constexpr int knownKeys = 60;

/// No host may be kept waiting longer, on however busy a machine: QSettings by itself waits half a
/// minute for the lock of a host that was killed between making and filling it.
constexpr int patienceMs = 25000;

QString knownKey(int number)
{
    return QStringLiteral("known/key%1").arg(number);
}

/// With quotes, semicolons, separators and characters that an INI file escapes.
QString knownValue(int number)
{
    return QStringLiteral("a \"%1\"; [b]=c\n\\ ü 日本").arg(number);
}

void writeKnownKeys(const QString& file)
{
    QVERIFY(QDir().mkpath(QFileInfo(file).path()));
    QSettings settings(file, QSettings::IniFormat);
    for (int i = 0; i < knownKeys; ++i)
        settings.setValue(knownKey(i), knownValue(i));
    settings.sync();
    QCOMPARE(settings.status(), QSettings::NoError);
}

/// The known keys that are missing or changed, and "damaged" of a file that can't be parsed.
QStringList lostKeys(const QMap<QString, QString>& settings)
{
    QStringList lost;
    for (int i = 0; i < knownKeys; ++i) {
        if (settings.value(knownKey(i)) != knownValue(i))
            lost << knownKey(i);
    }
    if (settings.contains(QStringLiteral("damaged")))
        lost << QStringLiteral("damaged: ") + settings.value(QStringLiteral("damaged"));
    return lost;
}

/// Passes a moment that no timer could measure.
void spin(std::chrono::microseconds moment)
{
    const auto end = std::chrono::steady_clock::now() + moment;
    while (std::chrono::steady_clock::now() < end) {}
}

} // namespace

class tst_KilledHosts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void settings_hold_what_was_synced_last();
    void an_overlay_loses_nothing();
    void a_host_is_killed_as_it_starts();
    void a_run_is_killed_in_its_overlay();
    void what_is_left_of_a_lock_holds_up_nobody_data();
    void what_is_left_of_a_lock_holds_up_nobody();

private:
    QString path(const char* name) const { return m_dir->filePath(QLatin1String(name)); }

    /// Reads some lines, lets a moment pass and kills it. The last number that it has reported.
    int killAtSomeMoment(HostUnderFault& host, int before = 0);

    std::unique_ptr<QTemporaryDir> m_dir;
    std::mt19937 m_random{20261122};
};

void tst_KilledHosts::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
    QVERIFY(QDir(settingsFolder()).removeRecursively());
}

int tst_KilledHosts::killAtSomeMoment(HostUnderFault& host, int before)
{
    int last = before;
    for (int left = std::uniform_int_distribution<int>(1, 8)(m_random); left > 0; --left) {
        const QString line = host.nextLine(patienceMs);
        if (line.isNull())
            return -1;
        last = line.toInt();
    }
    spin(std::chrono::microseconds(std::uniform_int_distribution<int>(0, 1500)(m_random)));
    host.kill();
    const QStringList rest = host.takeLines();
    return rest.isEmpty() ? last : rest.last().toInt();
}

void tst_KilledHosts::settings_hold_what_was_synced_last()
{
    writeKnownKeys(settingsFile());
    int last = 0;
    for (int run = 1; run <= kills; ++run) {
        HostUnderFault host(QStringLiteral(SETTINGS_HOST), {QStringLiteral("count")});
        const int reported = killAtSomeMoment(host, last);
        QVERIFY2(reported > last, qPrintable(QStringLiteral("run %1 was held up").arg(run)));

        const QMap<QString, QString> settings = settingsIn(settingsFile());
        QCOMPARE(lostKeys(settings), QStringList());
        last = settings.value(QStringLiteral("host/count")).toInt();
        QVERIFY2(
            last == reported || last == reported + 1,
            qPrintable(QStringLiteral("%1 is stored, %2 was reported").arg(last).arg(reported)));
        // Both or none of what was written together.
        QCOMPARE(settings.value(QStringLiteral("another/twin")).toInt(), last);
    }
}

void tst_KilledHosts::an_overlay_loses_nothing()
{
    writeKnownKeys(settingsFile());
    const QByteArray persistent = readFile(settingsFile());
    writeKnownKeys(path("DefaultTemporarySettins.ini"));
    const QByteArray defaults = readFile(path("DefaultTemporarySettins.ini"));
    const QStringList arguments{QStringLiteral("overlay"), path("any")};

    HostUnderFault neighbour(QStringLiteral(SETTINGS_HOST), arguments);
    const QString neighboursFile = neighbour.nextLine(patienceMs);
    QVERIFY(QFile::exists(neighboursFile));
    int neighboursLast = 0;

    for (int run = 1; run <= kills; ++run) {
        HostUnderFault host(QStringLiteral(SETTINGS_HOST), arguments);
        const QString overlay = host.nextLine(patienceMs);
        const int reported = killAtSomeMoment(host);
        QVERIFY2(reported > 0, qPrintable(QStringLiteral("run %1 was held up").arg(run)));

        const QMap<QString, QString> settings = settingsIn(overlay);
        QCOMPARE(lostKeys(settings), QStringList());
        const int count = settings.value(QStringLiteral("count")).toInt();
        const int twin = settings.value(QStringLiteral("twin")).toInt();
        QVERIFY2(count == reported || count == reported + 1, qPrintable(QString::number(count)));
        QVERIFY2(twin == count || twin == count - 1, qPrintable(QString::number(twin)));
        QVERIFY(twin >= reported);

        // Nobody else's settings have changed.
        QCOMPARE(readFile(settingsFile()), persistent);
        QCOMPARE(readFile(path("DefaultTemporarySettins.ini")), defaults);
        const QString line = neighbour.nextLine(patienceMs);
        QVERIFY(!line.isNull());
        neighboursLast = (QStringList{line} + neighbour.takeLines()).last().toInt();
        QVERIFY(QDir(QFileInfo(overlay).path()).removeRecursively());
    }

    // A host that lives on beside all of them has its own in order, to the last value.
    QVERIFY(neighbour.isRunning());
    neighboursLast = killAtSomeMoment(neighbour);
    QVERIFY(neighboursLast > kills);
    const QMap<QString, QString> settings = settingsIn(neighboursFile);
    QCOMPARE(lostKeys(settings), QStringList());
    QVERIFY(settings.value(QStringLiteral("twin")).toInt() >= neighboursLast);
    QVERIFY(QDir(QFileInfo(neighboursFile).path()).removeRecursively());
}

void tst_KilledHosts::a_host_is_killed_as_it_starts()
{
    writeKnownKeys(settingsFile());
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    for (int run = 1; run <= killsOfTheSampleHost; ++run) {
        HostUnderFault host(QStringLiteral(SAMPLE_HOST), {}, environment);
        QTest::qWait(std::uniform_int_distribution<int>(20, 400)(m_random));
        host.kill();
        QCOMPARE(lostKeys(settingsIn(settingsFile())), QStringList());
    }

    // The next one gets through, and counts what has happened to the last.
    HostUnderFault host(QStringLiteral(SAMPLE_HOST), {}, environment);
    QTRY_COMPARE_WITH_TIMEOUT(
        settingsIn(settingsFile()).value(QStringLiteral("appStandaloneCrashFlag")),
        QStringLiteral("started"), patienceMs);
    QCOMPARE(lostKeys(settingsIn(settingsFile())), QStringList());
}

void tst_KilledHosts::a_run_is_killed_in_its_overlay()
{
    writeKnownKeys(settingsFile());
    const QByteArray persistent = readFile(settingsFile());
    QVERIFY(writeFile(path("case.js"),
                      "scripting.startTest.connect(function () {\n"
                      "    for (var n = 1; ; ++n) {\n"
                      "        scripting.setSettingValue('count', n);\n"
                      "        scripting.log(n);\n"
                      "    }\n"
                      "});\n"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
    const auto reportLines = [this] {
        const QString report = QString::fromUtf8(readFile(path("caseReport.txt")));
        // The last line is whole only with its end.
        return report.left(report.lastIndexOf(QLatin1Char('\n'))).split(QLatin1Char('\n'));
    };

    for (int run = 1; run <= killsOfTheSampleHost; ++run) {
        const QString temporary = path("tmp");
        QVERIFY(QDir().mkpath(temporary));
        environment.insert(QStringLiteral("TMPDIR"), temporary);
        QFile::remove(path("caseReport.txt"));
        HostUnderFault host(QStringLiteral(SAMPLE_HOST),
                            {QStringLiteral("--script"), path("case.js")}, environment);
        const int lines = std::uniform_int_distribution<int>(5, 50)(m_random);
        QTRY_VERIFY_WITH_TIMEOUT(reportLines().size() > lines, patienceMs);
        host.kill();

        const int reported = reportLines().last().toInt();
        QVERIFY(reported > 0);
        const QStringList overlays = QDir(temporary).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
        QCOMPARE(overlays.size(), 1);
        const QString overlay = QStringLiteral("%1/%2/krnv3.ini").arg(temporary, overlays.first());
        const int count = settingsIn(overlay).value(QStringLiteral("count")).toInt();
        QVERIFY2(count == reported || count == reported + 1, qPrintable(QString::number(count)));
        QCOMPARE(readFile(settingsFile()), persistent);
        QVERIFY(QDir(temporary).removeRecursively());
    }
}

void tst_KilledHosts::what_is_left_of_a_lock_holds_up_nobody_data()
{
    QTest::addColumn<QByteArray>("lock");
    QTest::addColumn<int>("secondsOld");

    // The process's number, its program, its machine, and which start of it that was.
    const QByteArray machine =
        QSysInfo::machineHostName().toLocal8Bit() + '\n' + QSysInfo::machineUniqueId() + '\n';
    QTest::newRow("of a process that is gone")
        << QByteArray("4194303\nsettingsHost\n" + machine + QSysInfo::bootUniqueId() + '\n') << 0;
    QTest::newRow("of a process whose number another program has by now")
        << QByteArray("1\nsettingsHost\n" + machine + QSysInfo::bootUniqueId() + '\n') << 0;
    QTest::newRow("of the last start of the machine")
        << QByteArray(QByteArray::number(QCoreApplication::applicationPid()) + "\nsettingsHost\n"
                      + machine + "6b1fe1f0-0000-0000-0000-000000000000\n")
        << 0;
    QTest::newRow("nothing written yet") << QByteArray() << 0;
    QTest::newRow("nothing written yet, from a clock that is ahead") << QByteArray() << -3600;
    QTest::newRow("half written") << QByteArray("41943") << 31;
}

void tst_KilledHosts::what_is_left_of_a_lock_holds_up_nobody()
{
    QFETCH(QByteArray, lock);
    QFETCH(int, secondsOld);
    writeKnownKeys(settingsFile());
    const auto leaveLock = [&lock, secondsOld] {
        QFile file(settingsFile() + QStringLiteral(".lock"));
        return file.open(QIODevice::WriteOnly) && file.write(lock) == lock.size() && file.flush()
            && file.setFileTime(QDateTime::currentDateTime().addSecs(-secondsOld),
                                QFileDevice::FileModificationTime);
    };

    // One that has been there for long.
    HostUnderFault neighbour(QStringLiteral(SETTINGS_HOST), {QStringLiteral("large")});
    for (int change = 1; change <= 2; ++change) {
        QCOMPARE(neighbour.nextLine(patienceMs), QStringLiteral("ready"));
        QVERIFY(leaveLock());
        neighbour.goOn();
        QVERIFY(neighbour.nextLine(patienceMs).contains(QStringLiteral("4096")));
    }
    QVERIFY(neighbour.end());

    QVERIFY(leaveLock());
    HostUnderFault host(QStringLiteral(SETTINGS_HOST), {QStringLiteral("count")});
    QCOMPARE(host.nextLine(patienceMs), QStringLiteral("1"));
    host.kill();
    QCOMPARE(lostKeys(settingsIn(settingsFile())), QStringList());
}

QTEST_GUILESS_MAIN(tst_KilledHosts)

#include "tst_KilledHosts.moc"
