// Hosts that write one settings file at the same time.

#include "Files.h"
#include "HostUnderFault.h"

#include <QCoreApplication>
#include <QDir>
#include <QRegularExpression>

#include <algorithm>
#include <memory>
#include <vector>

class tst_TwoHosts : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void nothing_is_lost_data();
    void nothing_is_lost();
    void a_run_beside_a_host_leaves_its_settings_alone();
};

void tst_TwoHosts::init()
{
    QVERIFY(QDir(settingsFolder()).removeRecursively());
    QVERIFY(writeFile(settingsFile(), "[General]\nmine=1\n"));
}

void tst_TwoHosts::nothing_is_lost_data()
{
    QTest::addColumn<QStringList>("hosts");
    QTest::addColumn<int>("keys");
    QTest::newRow("of two") << QStringList{QStringLiteral("alpha"), QStringLiteral("beta")} << 200;
    QTest::newRow("of five") << QStringList{QStringLiteral("alpha"), QStringLiteral("beta"),
                                            QStringLiteral("gamma"), QStringLiteral("delta"),
                                            QStringLiteral("epsilon")}
                             << 50;
}

void tst_TwoHosts::nothing_is_lost()
{
    QFETCH(QStringList, hosts);
    QFETCH(int, keys);
    std::vector<std::unique_ptr<HostUnderFault>> running;
    for (const QString& name : hosts) {
        running.push_back(std::make_unique<HostUnderFault>(
            QStringLiteral(SETTINGS_HOST),
            QStringList{QStringLiteral("keys"), name, QString::number(keys)}));
    }
    for (const auto& host : running)
        QCOMPARE(host->nextLine(), QStringLiteral("ready"));
    for (const auto& host : running)
        host->goOn();

    // A reader meets a whole file at any time, in which nothing goes any more that was there.
    int seen = 0;
    int reads = 0;
    const auto someoneRuns = [&running] {
        return std::any_of(running.begin(), running.end(),
                           [](const auto& host) { return host->isRunning(); });
    };
    while (someoneRuns()) {
        const QMap<QString, QString> settings = settingsIn(settingsFile());
        QCOMPARE(settings.value(QStringLiteral("damaged"), QStringLiteral("whole")),
                 QStringLiteral("whole"));
        QCOMPARE(settings.value(QStringLiteral("mine")), QStringLiteral("1"));
        QVERIFY2(settings.size() >= seen, qPrintable(QString::number(seen)));
        seen = settings.size();
        ++reads;
    }
    QVERIFY(reads > 0);

    for (const auto& host : running) {
        QCOMPARE(host->exitCode(), 0);
        QCOMPARE(host->takeLines(), QStringList({QStringLiteral("done")}));
        QCOMPARE(host->errors(), QString());
    }
    const QMap<QString, QString> settings = settingsIn(settingsFile());
    QStringList lost;
    for (const QString& name : hosts) {
        for (int n = 0; n < keys; ++n) {
            const QString key = QStringLiteral("%1/%2").arg(name).arg(n);
            if (settings.value(key) != QString::number(n))
                lost << key;
        }
    }
    QCOMPARE(lost, QStringList());
    QVERIFY2(hosts.contains(settings.value(QStringLiteral("shared"))),
             qPrintable(settings.value(QStringLiteral("shared"))));
    QCOMPARE(settings.size(), hosts.size() * keys + 2);
    QVERIFY(!QFile::exists(settingsFile() + QStringLiteral(".lock")));
}

void tst_TwoHosts::a_run_beside_a_host_leaves_its_settings_alone()
{
    // One is the sample host, which stores how it was started, the other an acceptance run, which
    // stores nothing, and a third writes all the time.
    const QString script = QDir::temp().filePath(QStringLiteral("case.js"));
    QVERIFY(writeFile(script,
                      "for (var n = 0; n < 50; ++n)\n"
                      "    scripting.setSettingValue('run' + n, n);\n"
                      "scripting.setSettingValue('mine', 2);\n"));
    HostUnderFault writer(QStringLiteral(SETTINGS_HOST),
                          {QStringLiteral("keys"), QStringLiteral("alpha"), QStringLiteral("300")});
    QCOMPARE(writer.nextLine(), QStringLiteral("ready"));
    HostUnderFault host(QStringLiteral(SAMPLE_HOST), {});
    HostUnderFault run(QStringLiteral(SAMPLE_HOST), {QStringLiteral("--script"), script});
    writer.goOn();
    QCOMPARE(writer.exitCode(), 0);
    QCOMPARE(run.exitCode(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(
        settingsIn(settingsFile()).value(QStringLiteral("appStandaloneCrashFlag")),
        QStringLiteral("started"), 60000);

    const QMap<QString, QString> settings = settingsIn(settingsFile());
    QCOMPARE(settings.value(QStringLiteral("mine")), QStringLiteral("1"));
    QCOMPARE(settings.value(QStringLiteral("app_launchMode")), QStringLiteral("Standalone"));
    QStringList keys = settings.keys();
    QCOMPARE(keys.filter(QStringLiteral("alpha/")).size(), 300);
    QCOMPARE(keys.filter(QRegularExpression(QStringLiteral("^run"))), QStringList());
}

QTEST_GUILESS_MAIN(tst_TwoHosts)

#include "tst_TwoHosts.moc"
