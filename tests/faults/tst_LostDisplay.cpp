// Hosts without an X server, and hosts whose X server dies: they end, say why, and leave nothing
// half done.

#include "Files.h"
#include "HostUnderFault.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <memory>

namespace {

/// An X server of its own.
class Display
{
public:
    Display()
    {
        m_server.start(QStringLiteral("Xvfb"),
                       {QStringLiteral("-displayfd"), QStringLiteral("1"),
                        QStringLiteral("-screen"), QStringLiteral("0"),
                        QStringLiteral("1200x900x24"), QStringLiteral("-nolisten"),
                        QStringLiteral("tcp"), QStringLiteral("-noreset")});
        while (!m_server.canReadLine() && m_server.waitForReadyRead(60000)) {}
        m_name = ':' + QString::fromLatin1(m_server.readLine()).trimmed();
    }
    ~Display() { die(); }

    QString name() const { return m_name; }

    void die()
    {
        m_server.kill();
        m_server.waitForFinished();
    }

private:
    Q_DISABLE_COPY(Display)

    QProcess m_server;
    QString m_name;
};

QProcessEnvironment environmentOn(const QString& display)
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("xcb"));
    environment.remove(QStringLiteral("XAUTHORITY"));
    if (display.isNull())
        environment.remove(QStringLiteral("DISPLAY"));
    else
        environment.insert(QStringLiteral("DISPLAY"), display);
    return environment;
}

} // namespace

class tst_LostDisplay : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void without_a_display_it_ends_with_a_clear_line_data();
    void without_a_display_it_ends_with_a_clear_line();
    void a_run_ends_when_the_display_dies_data();
    void a_run_ends_when_the_display_dies();
    void a_host_ends_when_the_display_dies();
    void a_message_box_ends_when_the_display_dies();

private:
    QString path(const QString& name) const { return m_dir->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_dir;
};

void tst_LostDisplay::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(settingsFolder()).removeRecursively());
    QVERIFY(writeFile(settingsFile(), "[General]\nmine=1\n"));
}

void tst_LostDisplay::without_a_display_it_ends_with_a_clear_line_data()
{
    QTest::addColumn<QString>("display");
    QTest::addColumn<QString>("line");
    const QString line = QStringLiteral("qt.qpa.xcb: could not connect to display %1");
    QTest::newRow("no display is named") << QString() << line.arg(QString());
    QTest::newRow("one that isn't there") << ":54321" << line.arg(":54321");
    QTest::newRow("a name that makes no sense") << "nonsense" << line.arg("nonsense");
}

void tst_LostDisplay::without_a_display_it_ends_with_a_clear_line()
{
    QFETCH(QString, display);
    QFETCH(QString, line);
    const QString script = path(QStringLiteral("case.js"));
    QVERIFY(writeFile(script, "scripting.log('hello')"));
    const QByteArray settings = readFile(settingsFile());

    HostUnderFault host(QStringLiteral(SAMPLE_HOST), {QStringLiteral("--script"), script},
                        environmentOn(display));

    const int status = host.exitCode();
    QVERIFY2(status != HostUnderFault::Hangs && status != 0, qPrintable(QString::number(status)));
    const QString errors = host.errors();
    QVERIFY2(errors.contains(line), qPrintable(errors));
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Files), QStringList(QStringLiteral("case.js")));
    QCOMPARE(readFile(settingsFile()), settings);
}

void tst_LostDisplay::a_run_ends_when_the_display_dies_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("while a script waits") << QByteArray("scripting.log('ready');\n"
                                                        "while (true)\n"
                                                        "    scripting.wait(20);\n");
    QTest::newRow("while a script stores settings")
        << QByteArray("scripting.log('ready');\n"
                      "for (var n = 0; ; ++n) {\n"
                      "    scripting.setSettingValue('count', n);\n"
                      "    scripting.wait(1);\n"
                      "}\n");
    QTest::newRow("while a message box is shown for its second")
        << QByteArray("scripting.log('ready');\n"
                      "while (true)\n"
                      "    scripting.addShownMessageBox('box');\n");
    QTest::newRow("while a dialog is open")
        << QByteArray("scripting.resendSignal.connect(function (dialog) {\n"
                      "    scripting.log('ready');\n"
                      "});\n"
                      "scripting.startTest.connect(function () {\n"
                      "    scripting.clickButton(mainWindow, 'preferencesButton');\n"
                      "});\n");
    QTest::newRow("while a script waits in a dialog")
        << QByteArray("scripting.resendSignal.connect(function (dialog) {\n"
                      "    scripting.log('ready');\n"
                      "    while (true)\n"
                      "        scripting.wait(20);\n"
                      "});\n"
                      "scripting.startTest.connect(function () {\n"
                      "    scripting.clickButton(mainWindow, 'preferencesButton');\n"
                      "});\n");
}

void tst_LostDisplay::a_run_ends_when_the_display_dies()
{
    QFETCH(QByteArray, script);
    const QString file = path(QStringLiteral("case.js"));
    QVERIFY(writeFile(file, script));
    const QByteArray settings = readFile(settingsFile());
    Display display;
    HostUnderFault host(
        QStringLiteral(SAMPLE_HOST),
        {QStringLiteral("--script"), file, QStringLiteral("--timeout"), QStringLiteral("100000")},
        environmentOn(display.name()));
    const QString report = path(QStringLiteral("caseReport.txt"));
    QTRY_VERIFY_WITH_TIMEOUT(readFile(report).endsWith("\nready\n"), 60000);

    display.die();

    // A failed run, and nobody can take its report for that of a run that has come to its end.
    QCOMPARE(host.exitCode(), 1);
    const QString errors = host.errors();
    QVERIFY2(errors.contains(QStringLiteral("The X11 connection broke")), qPrintable(errors));
    QVERIFY(readFile(report).endsWith("\nready\n"));
    QCOMPARE(readFile(settingsFile()), settings);
}

void tst_LostDisplay::a_host_ends_when_the_display_dies()
{
    Display display;
    HostUnderFault host(QStringLiteral(SAMPLE_HOST), {}, environmentOn(display.name()));
    QTRY_COMPARE_WITH_TIMEOUT(
        settingsIn(settingsFile()).value(QStringLiteral("appStandaloneCrashFlag")),
        QStringLiteral("started"), 60000);

    display.die();

    // Whether it was still starting, or up.
    const int status = host.exitCode();
    QVERIFY2(status != HostUnderFault::Hangs && status != 0, qPrintable(QString::number(status)));
    const QMap<QString, QString> settings = settingsIn(settingsFile());
    QCOMPARE(settings.value(QStringLiteral("mine")), QStringLiteral("1"));
    QCOMPARE(settings.value(QStringLiteral("appStandaloneCrashFlag")), QStringLiteral("started"));
    QVERIFY(!settings.contains(QStringLiteral("damaged")));
}

void tst_LostDisplay::a_message_box_ends_when_the_display_dies()
{
    Display display;
    HostUnderFault host(QStringLiteral(SETTINGS_HOST), {QStringLiteral("box")},
                        environmentOn(display.name()));
    QCOMPARE(host.nextLine(), QStringLiteral("box"));

    display.die();

    QCOMPARE(host.exitCode(), 1);
    QCOMPARE(host.takeLines(), QStringList());
    const QString errors = host.errors();
    QVERIFY2(errors.contains(QStringLiteral("The X11 connection broke")), qPrintable(errors));
}

QTEST_GUILESS_MAIN(tst_LostDisplay)

#include "tst_LostDisplay.moc"
