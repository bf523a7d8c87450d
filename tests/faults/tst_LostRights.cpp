// Hosts whose folders lose their rights while they run.

#include "Files.h"
#include "HostUnderFault.h"
#include "OrdinaryChildren.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include <memory>
#include <vector>

#include <unistd.h>

namespace {

const QFileDevice::Permissions all =
    QFileDevice::ReadOwner | QFileDevice::WriteOwner | QFileDevice::ExeOwner;

} // namespace

class tst_LostRights : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();
    void settings_wait_for_their_rights_data();
    void settings_wait_for_their_rights();
    void a_lock_that_has_to_stay_holds_up_nobody_data();
    void a_lock_that_has_to_stay_holds_up_nobody();
    void a_run_goes_on_without_a_folder_data();
    void a_run_goes_on_without_a_folder();

private:
    QString path(const QString& name) const { return m_dir->filePath(name); }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::vector<QString> m_changed;
};

void tst_LostRights::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    QVERIFY(m_dir->isValid());
}

void tst_LostRights::cleanup()
{
    for (auto changed = m_changed.rbegin(); changed != m_changed.rend(); ++changed)
        QFile::setPermissions(*changed, all);
    m_changed.clear();
    m_dir.reset();
}

void tst_LostRights::settings_wait_for_their_rights_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<int>("permissions");
    QTest::addColumn<bool>("readable");
    QTest::newRow("a folder that can't be written to") << "Vek Labs/krnv3" << 0x5000 << true;
    QTest::newRow("a file that can't be written to")
        << "Vek Labs/krnv3/Data.plist" << 0x4000 << true;
    QTest::newRow("a folder that can't be entered") << "Vek Labs" << 0 << false;
}

void tst_LostRights::settings_wait_for_their_rights()
{
    QFETCH(QString, place);
    QFETCH(int, permissions);
    QFETCH(bool, readable);
    const QString file = path(QStringLiteral("Vek Labs/krnv3/Data.plist"));
    QVERIFY(writeFile(file, "[General]\nfirst=kept\n"));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_dir->path());
    HostUnderFault host(QStringLiteral(SETTINGS_HOST), {QStringLiteral("large")}, environment);
    QCOMPARE(host.nextLine(), QStringLiteral("ready"));
    host.goOn();
    QCOMPARE(host.nextLine(), QStringLiteral("kept 4096 default"));
    QCOMPARE(host.nextLine(), QStringLiteral("ready"));
    const QByteArray before = readFile(file);

    m_changed.push_back(path(place));
    QVERIFY(QFile::setPermissions(path(place), QFileDevice::Permissions(permissions)));
    for (int i = 0; i < 3; ++i) {
        host.goOn();
        // What can't be read is as if it weren't there; what was written meanwhile is.
        QCOMPARE(host.nextLine(),
                 readable ? QStringLiteral("kept 4096 default") : QStringLiteral(" 4096 default"));
        QCOMPARE(host.nextLine(), QStringLiteral("ready"));
    }
    QVERIFY(QFile::setPermissions(path(place), all));
    QCOMPARE(readFile(file), before);

    host.goOn();
    QCOMPARE(host.nextLine(), QStringLiteral("kept 4096 default"));
    const QMap<QString, QString> settings = settingsIn(file);
    QCOMPARE(settings.size(), 6);
    QCOMPARE(settings.value(QStringLiteral("first")), QStringLiteral("kept"));
    for (int i = 0; i < 5; ++i)
        QCOMPARE(settings.value(QStringLiteral("group%1/large").arg(i)).size(), 4096);
    QCOMPARE(host.errors(), QString());
}

void tst_LostRights::a_lock_that_has_to_stay_holds_up_nobody_data()
{
    QTest::addColumn<QByteArray>("lock");
    QTest::newRow("with nothing in it") << QByteArray();
    QTest::newRow("of a process that is gone")
        << QByteArray("4194303\nsettingsHost\n" + QSysInfo::machineHostName().toLocal8Bit() + '\n'
                      + QSysInfo::machineUniqueId() + '\n' + QSysInfo::bootUniqueId() + '\n');
}

void tst_LostRights::a_lock_that_has_to_stay_holds_up_nobody()
{
    QFETCH(QByteArray, lock);
    const QString file = path(QStringLiteral("Vek Labs/krnv3/Data.plist"));
    const QString folder = QFileInfo(file).path();
    QVERIFY(writeFile(file, "[General]\nfirst=kept\n"));
    QVERIFY(writeFile(file + QStringLiteral(".lock"), lock));
    m_changed.push_back(folder);
    QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_dir->path());
    HostUnderFault host(QStringLiteral(SETTINGS_HOST), {QStringLiteral("large")}, environment);
    QCOMPARE(host.nextLine(), QStringLiteral("ready"));

    // Changes that can't be written are lost, and what was written can be read.
    for (int i = 0; i < 3; ++i) {
        host.goOn();
        QCOMPARE(host.nextLine(), QStringLiteral("kept 0 default"));
        QCOMPARE(host.nextLine(), QStringLiteral("ready"));
    }

    QVERIFY(QFile::setPermissions(folder, all));
    host.goOn();
    QCOMPARE(host.nextLine(), QStringLiteral("kept 4096 default"));
    QVERIFY(!QFile::exists(file + QStringLiteral(".lock")));
    QCOMPARE(host.nextLine(), QStringLiteral("ready"));
    QVERIFY(host.end());
    QCOMPARE(host.errors(), QString());
}

void tst_LostRights::a_run_goes_on_without_a_folder_data()
{
    QTest::addColumn<QStringList>("places");
    QTest::addColumn<QString>("message");
    const QString saved = QStringLiteral("Saved out.png");
    QTest::newRow("of its log") << QStringList{"home/Library/Vek_Labs/Vek Marlowick 3/Logs"}
                                << saved;
    QTest::newRow("of all data") << QStringList{"home/Library", "home"} << saved;
    QTest::newRow("of the settings") << QStringList{"configuration"} << saved;
    QTest::newRow("of the overlay") << QStringList{"tmp"} << saved;
    QTest::newRow("of the report") << QStringList{"script"} << saved;
    QTest::newRow("of the picture") << QStringList{"pictures"} << saved;
    QTest::newRow("that it saves to") << QStringList{"out"} << "Cannot save out.png";
    QTest::newRow("of anything") << QStringList{"home",   "configuration", "tmp",
                                                "script", "pictures",      "out"}
                                 << "Cannot save out.png";
}

void tst_LostRights::a_run_goes_on_without_a_folder()
{
    QFETCH(QStringList, places);
    QFETCH(QString, message);
    for (const char* folder : {"home", "configuration", "tmp", "script", "pictures", "out"})
        QVERIFY(QDir(m_dir->path()).mkdir(QLatin1String(folder)));
    QVERIFY(writeFile(path(QStringLiteral("passwd")),
                      "tester:x:" + QByteArray::number(getuid()) + ":0:Tester:"
                          + QFile::encodeName(path(QStringLiteral("home"))) + ":/bin/sh\n"));
    QImage picture(60, 40, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    QVERIFY(picture.save(path(QStringLiteral("pictures/picture.png"))));
    const QString script = path(QStringLiteral("script/case.js"));
    const QByteArray folder = QFile::encodeName(m_dir->path());
    QVERIFY(writeFile(script,
                      "scripting.setSettingValue('before', 1);\n"
                      "scripting.log('ready');\n"
                      "while (!scripting.isFileExist('"
                          + folder
                          + "/go'))\n"
                            "    scripting.wait(20);\n"
                            "scripting.setSettingValue('after', 2);\n"
                            "scripting.compare(Number(scripting.getSettingValue('before')), 1);\n"
                            "scripting.compare(Number(scripting.getSettingValue('after')), 2);\n"
                            "scripting.setSlider(mainWindow, 'horizonSlider', 35);\n"
                            "nativeDialogs.setSaveFileName('"
                          + folder
                          + "/out/out.png');\n"
                            "scripting.clickButton(mainWindow, 'saveButton');\n"
                            "scripting.log(scripting.isMessageBoxShown('"
                          + message.toUtf8() + "', 0) ? 'told' : 'not told');\n"));

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), path(QStringLiteral("home")));
    environment.insert(QStringLiteral("NSS_WRAPPER_PASSWD"), path(QStringLiteral("passwd")));
    environment.insert(QStringLiteral("XDG_CONFIG_HOME"), path(QStringLiteral("configuration")));
    environment.insert(QStringLiteral("TMPDIR"), path(QStringLiteral("tmp")));
    HostUnderFault host(QStringLiteral(SAMPLE_HOST),
                        {QStringLiteral("--script"), script, QStringLiteral("--timeout"),
                         QStringLiteral("100000"), QStringLiteral("--image"),
                         path(QStringLiteral("pictures/picture.png"))},
                        environment);
    const QString report = path(QStringLiteral("script/caseReport.txt"));
    QTRY_VERIFY_WITH_TIMEOUT(readFile(report).endsWith("\nready\n"), 60000);

    for (const QString& place : places) {
        m_changed.push_back(path(place));
        QVERIFY(QFile::setPermissions(path(place), QFileDevice::ReadOwner));
    }
    QVERIFY(writeFile(path(QStringLiteral("go")), "go"));
    // The report can't be read for the verdict any more where its folder can't be entered.
    const bool verdictCanBeRead = !places.contains(QStringLiteral("script"));
    QCOMPARE(host.exitCode(), verdictCanBeRead ? 0 : 1);
    for (auto place = places.rbegin(); place != places.rend(); ++place)
        QVERIFY(QFile::setPermissions(path(*place), all));

    const QByteArray lines = readFile(report);
    QVERIFY2(lines.endsWith("\nready\ntold\nPASS\n"), lines.constData());
    QCOMPARE(QFile::exists(path(QStringLiteral("out/out.png"))),
             message == QLatin1String("Saved out.png"));
    QCOMPARE(host.errors(), QString());
}

int main(int argc, char** argv)
{
    if (!takeOrdinaryFileRightsWithChildren())
        qFatal("the rights of files have to hold for this test");
    QCoreApplication application(argc, argv);
    tst_LostRights test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_LostRights.moc"
