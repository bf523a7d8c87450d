#include "SystemInformation.h"

#include "CommonConstants.h"
#include "MessageCounter.h"
#include "RecordingLogger.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <vector>

namespace {

QByteArray xml(const QByteArray& entries)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\"><dict>\n" + entries
        + "</dict></plist>\n";
}

QByteArray xmlEntry(const QByteArray& key, const QByteArray& value)
{
    return "<key>" + key + "</key><string>" + value + "</string>\n";
}

/// An Info.plist.
QByteArray info(const QByteArray& identifier, const QByteArray& version = "3.1.4",
                const QByteArray& name = QByteArray())
{
    return xml(xmlEntry("CFBundleIdentifier", identifier)
               + xmlEntry("CFBundleShortVersionString", version)
               + (name.isEmpty() ? name : xmlEntry("CFBundleName", name)));
}

const QByteArray mainIdentifier = // clazy:exclude=non-pod-global-static
    "com.vek.krnv3.standalone";

/// {"CFBundleIdentifier": "com.vek.krnv3.standalone", "CFBundleShortVersionString": "3.1.4"}
QByteArray binaryInfo()
{
    return QByteArray::fromHex(
        "62706c6973743030d2010203045f1012434642756e646c654964656e7469666965725f101a434642"
        "756e646c6553686f727456657273696f6e537472696e675f1018636f6d2e76656b2e6b726e76332e"
        "7374616e64616c6f6e6555332e312e34080d223f5a00000000000001010000000000000005000000"
        "00000000000000000000000060");
}

/// The helper program, somewhere.
class Helper
{
public:
    explicit Helper(const QString& program)
    {
        m_process.start(program, QStringList());
        if (!m_process.waitForStarted())
            qFatal("cannot start %s", qPrintable(program));
    }

    ~Helper() { end(); }

    void end()
    {
        m_process.closeWriteChannel();
        m_process.waitForFinished();
    }

    /// \a question's words stand between tabs.
    QString ask(const QByteArray& question)
    {
        m_process.write(question + '\n');
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead())
                return QStringLiteral("no answer; ")
                    + QString::fromUtf8(m_process.readAllStandardError());
        }
        QString line = QString::fromUtf8(m_process.readLine());
        line.chop(1);
        return line;
    }

    qint64 process() const { return m_process.processId(); }
    QByteArray errors() { return m_process.readAllStandardError(); }

private:
    QProcess m_process;
};

} // namespace

class tst_SystemInformation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void bundleAroundTheExecutable_data();
    void bundleAroundTheExecutable();
    void nestedBundles();
    void linkToTheExecutableDoesNotCount();
    void mainBundle_data();
    void mainBundle();
    void mainBundleStaysOnceFound();
    void mainBundleIsLookedUpWhileThereIsNone();
    void pluginsFolder();
    void pluginsFolderWithoutABundle();

    void processName_data();
    void processName();

    void valueOfTheOwnBundle_data();
    void valueOfTheOwnBundle();
    void valueIsTakenTwoFoldersUp();
    void damagedPropertyListGivesNothing_data();
    void damagedPropertyListGivesNothing();
    void valueOfAnotherApplication_data();
    void valueOfAnotherApplication();
    void applicationThatDoesNotRun();
    void firstOfSeveralApplications();
    void deletedExecutable();
    void withoutAKey();

    void systemVersion();
    void screenResolution();
    void screenResolutionWithoutAScreen();

private:
    /// As the system tells where a process's executable is.
    QString path(const QString& name) const
    {
        return QFileInfo(m_folder->path()).canonicalFilePath() + QLatin1Char('/') + name;
    }
    /// Copies the helper to \a name and returns its path.
    QString install(const QString& name) const
    {
        if (!QDir(m_folder->path()).mkpath(QFileInfo(name).path())
            || !QFile::copy(QStringLiteral(HELPER), path(name))) {
            qFatal("cannot copy the helper to %s", qPrintable(name));
        }
        return path(name);
    }
    void write(const QString& name, const QByteArray& content) const
    {
        QFile file(path(name));
        if (!QDir(m_folder->path()).mkpath(QFileInfo(name).path())
            || !file.open(QIODevice::WriteOnly) || file.write(content) != content.size()) {
            qFatal("cannot write %s", qPrintable(name));
        }
    }
    /// A name that no other process has.
    QByteArray unique(const QByteArray& name) const
    {
        return name + ' ' + QFileInfo(m_folder->path()).fileName().toUtf8();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_SystemInformation::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_SystemInformation::bundleAroundTheExecutable_data()
{
    QTest::addColumn<QString>("bundle");
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QByteArray>("propertyList");
    QTest::addColumn<QByteArray>("identifier");
    QTest::addColumn<bool>("found");

    const auto addRow = [](const char* title, bool found, const QByteArray& propertyList,
                           const QByteArray& identifier = "a.b", const char* bundle = "Name.app",
                           const char* executable = "Contents/MacOS/helper") {
        QTest::newRow(title) << QString::fromUtf8(bundle) << QString::fromUtf8(executable)
                             << propertyList << identifier << found;
    };
    const QByteArray plain = info("a.b");
    addRow("its own identifier", true, plain);
    addRow("a binary property list", true, binaryInfo(), mainIdentifier);
    addRow("an identifier beyond ASCII", true, info("ä.日本"), "ä.日本");
    addRow("another identifier", false, plain, "a.c");
    addRow("an identifier of another case", false, plain, "A.b");
    addRow("the beginning of the identifier", false, plain, "a");
    addRow("no identifier", false, plain, "");
    addRow("no identifier on both sides", false, info(""), "");
    addRow("an executable deeper in the bundle", true, plain, "a.b", "Name.app",
           "Contents/Resources/tools/x/helper");
    addRow("an executable at the bundle's top", true, plain, "a.b", "Name.app", "helper");
    addRow("a name with spaces and beyond ASCII", true, plain, "a.b", "Nä me 日本.app");
    addRow("a name with dots", true, plain, "a.b", "a.app.b.app");
    addRow("a folder without the ending", false, plain, "a.b", "Name");
    addRow("an ending of another case", false, plain, "a.b", "Name.APP");
    addRow("an ending that goes on", false, plain, "a.b", "Name.app2");
    addRow("no property list", false, QByteArray());
    addRow("no identifier in the property list", false, xml(xmlEntry("CFBundleName", "a.b")));
    addRow("an identifier that isn't a text", false,
           xml("<key>CFBundleIdentifier</key><integer>1</integer>"), "1");
    addRow("a damaged property list", false, plain.left(plain.size() / 2));
}

void tst_SystemInformation::bundleAroundTheExecutable()
{
    QFETCH(QString, bundle);
    QFETCH(QString, executable);
    QFETCH(QByteArray, propertyList);
    QFETCH(QByteArray, identifier);
    QFETCH(bool, found);
    if (!propertyList.isEmpty())
        write(bundle + QStringLiteral("/Contents/Info.plist"), propertyList);
    Helper helper(install(bundle + QLatin1Char('/') + executable));

    const QString root = path(bundle);
    QCOMPARE(helper.ask("bundle\t" + identifier), found ? root : QString());
    QCOMPARE(helper.ask("resources\t" + identifier),
             found ? root + QStringLiteral("/Contents/Resources") : QString());
    QCOMPARE(helper.errors(), QByteArray());
}

void tst_SystemInformation::nestedBundles()
{
    const QString inner = QStringLiteral("Outer.app/Contents/Frameworks/Inner.app");
    const QString innermost = inner + QStringLiteral("/Contents/Resources/Innermost.app");
    write(QStringLiteral("Outer.app/Contents/Info.plist"), info("outer"));
    write(inner + QStringLiteral("/Contents/Info.plist"), info("same"));
    write(innermost + QStringLiteral("/Contents/Info.plist"), info("same"));
    write(QStringLiteral("Beside.app/Contents/Info.plist"), info("beside"));
    Helper helper(install(innermost + QStringLiteral("/Contents/MacOS/helper")));

    QCOMPARE(helper.ask("bundle\touter"), path(QStringLiteral("Outer.app")));
    QCOMPARE(helper.ask("bundle\tsame"), path(innermost));
    QCOMPARE(helper.ask("bundle\tbeside"), QString());
}

void tst_SystemInformation::linkToTheExecutableDoesNotCount()
{
    write(QStringLiteral("Name.app/Contents/Info.plist"), info("inside"));
    write(QStringLiteral("Link.app/Contents/Info.plist"), info("link"));
    const QString link = path(QStringLiteral("Link.app/helper"));
    QVERIFY(QFile::link(install(QStringLiteral("Name.app/Contents/MacOS/helper")), link));
    Helper helper(link);

    QCOMPARE(helper.ask("bundle\tinside"), path(QStringLiteral("Name.app")));
    QCOMPARE(helper.ask("bundle\tlink"), QString());
}

void tst_SystemInformation::mainBundle_data()
{
    QTest::addColumn<QByteArray>("propertyList");
    QTest::addColumn<QString>("bundle");

    QTest::newRow("the product's") << info(mainIdentifier) << "Name.app";
    QTest::newRow("the product's, in a binary property list") << binaryInfo() << "Name.app";
    QTest::newRow("another product's") << info("com.vek.krnv3") << "";
    QTest::newRow("none") << QByteArray() << "";
}

void tst_SystemInformation::mainBundle()
{
    QFETCH(QByteArray, propertyList);
    QFETCH(QString, bundle);
    write(QStringLiteral("Name.app/Contents/Info.plist"), propertyList);
    Helper helper(install(QStringLiteral("Name.app/Contents/MacOS/helper")));

    QCOMPARE(helper.ask("main bundle"), bundle.isEmpty() ? bundle : path(bundle));
}

void tst_SystemInformation::mainBundleStaysOnceFound()
{
    write(QStringLiteral("Name.app/Contents/Info.plist"), info(mainIdentifier));
    Helper helper(install(QStringLiteral("Name.app/Contents/MacOS/helper")));
    QCOMPARE(helper.ask("main bundle"), path(QStringLiteral("Name.app")));

    write(QStringLiteral("Name.app/Contents/Info.plist"), info("a.b"));

    QCOMPARE(helper.ask("bundle\t" + mainIdentifier), QString());
    QCOMPARE(helper.ask("main bundle"), path(QStringLiteral("Name.app")));
}

void tst_SystemInformation::mainBundleIsLookedUpWhileThereIsNone()
{
    Helper helper(install(QStringLiteral("Name.app/Contents/MacOS/helper")));
    QCOMPARE(helper.ask("main bundle"), QString());
    write(QStringLiteral("Name.app/Contents/Info.plist"), info("a.b"));
    QCOMPARE(helper.ask("main bundle"), QString());

    write(QStringLiteral("Name.app/Contents/Info.plist"), info(mainIdentifier));

    QCOMPARE(helper.ask("main bundle"), path(QStringLiteral("Name.app")));
}

void tst_SystemInformation::pluginsFolder()
{
    write(QStringLiteral("Name.app/Contents/Info.plist"), info(mainIdentifier));
    Helper helper(install(QStringLiteral("Name.app/Contents/MacOS/helper")));
    const QString folder = path(QStringLiteral("Name.app/Contents/Frameworks/plugins"));

    QCOMPARE(helper.ask("plug-ins\ttrue"), folder);
    QCOMPARE(helper.ask("plug-ins\tfalse"), folder);

    // It is looked up each time, unlike the main bundle.
    QCOMPARE(helper.ask("main bundle"), path(QStringLiteral("Name.app")));
    write(QStringLiteral("Name.app/Contents/Info.plist"), info("a.b"));
    QCOMPARE(helper.ask("plug-ins\ttrue"), QStringLiteral("/Contents/Frameworks/plugins"));
}

void tst_SystemInformation::pluginsFolderWithoutABundle()
{
    QCOMPARE(VEK_NAMESPACE::getQtPluginsDir(true), QStringLiteral("/Contents/Frameworks/plugins"));
    QCOMPARE(VEK_NAMESPACE::getQtPluginsDir(false), QStringLiteral("/Contents/Frameworks/plugins"));
    QCOMPARE(MacOSGetMainBundlePath(), QString());
}

void tst_SystemInformation::processName_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("plain") << "helper";
    QTest::newRow("with spaces and dots") << "the helper.v1.exe";
    QTest::newRow("beyond ASCII") << QString::fromUtf8("hälper 日本");
    QTest::newRow("longer than the system's own short form") << "a-helper-with-a-rather-long-name";
    QTest::newRow("one that looks deleted") << "helper (deleted)";
}

void tst_SystemInformation::processName()
{
    QFETCH(QString, name);
    Helper helper(install(name));

    QCOMPARE(helper.ask("name"), name);
}

void tst_SystemInformation::valueOfTheOwnBundle_data()
{
    QTest::addColumn<QByteArray>("propertyList");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QString>("value");

    const QByteArray version = "CFBundleShortVersionString";
    QTest::newRow("a text") << info("a.b") << version << "3.1.4";
    QTest::newRow("a text in a binary property list") << binaryInfo() << version << "3.1.4";
    QTest::newRow("a text beyond ASCII")
        << info("a.b", "ä 日本 📷") << version << QString::fromUtf8("ä 日本 📷");
    QTest::newRow("a key beyond ASCII")
        << xml(xmlEntry("ä 日本", "3.1.4")) << QByteArray("ä 日本") << "3.1.4";
    QTest::newRow("an empty text") << info("a.b", "") << version << "";
    QTest::newRow("a missing key") << info("a.b") << QByteArray("CFBundleVersion") << "";
    QTest::newRow("an empty key") << info("a.b") << QByteArray() << "";
    QTest::newRow("a number") << xml("<key>Key</key><integer>3</integer>") << QByteArray("Key")
                              << "";
    QTest::newRow("a truth value") << xml("<key>Key</key><true/>") << QByteArray("Key") << "";
    QTest::newRow("a list") << xml("<key>Key</key><array><string>3.1.4</string></array>")
                            << QByteArray("Key") << "";
}

void tst_SystemInformation::valueOfTheOwnBundle()
{
    QFETCH(QByteArray, propertyList);
    QFETCH(QByteArray, key);
    QFETCH(QString, value);
    write(QStringLiteral("Name.app/Contents/Info.plist"), propertyList);
    Helper helper(install(QStringLiteral("Name.app/Contents/MacOS/helper")));

    QCOMPARE(helper.ask("value\t" + key + "\tnull"), value);
    QCOMPARE(helper.errors(), QByteArray());
}

void tst_SystemInformation::valueIsTakenTwoFoldersUp()
{
    const QByteArray question = "value\tCFBundleShortVersionString\tnull";
    write(QStringLiteral("Name.app/Contents/Info.plist"), info("a.b", "1"));
    write(QStringLiteral("Name.app/Contents/MacOS/Info.plist"), info("a.b", "2"));
    write(QStringLiteral("Name.app/Info.plist"), info("a.b", "3"));
    Helper usual(install(QStringLiteral("Name.app/Contents/MacOS/helper")));
    QCOMPARE(usual.ask(question), QStringLiteral("1"));

    Helper deeper(install(QStringLiteral("Name.app/Contents/Resources/tools/helper")));
    QCOMPARE(deeper.ask(question), QString());

    write(QStringLiteral("plain/Info.plist"), info("a.b", "4"));
    Helper outside(install(QStringLiteral("plain/bin/helper")));
    QCOMPARE(outside.ask(question), QStringLiteral("4"));
}

void tst_SystemInformation::damagedPropertyListGivesNothing_data()
{
    QTest::addColumn<QByteArray>("propertyList");

    const QByteArray whole = info(mainIdentifier);
    QTest::newRow("an empty one") << QByteArray();
    QTest::newRow("half of one") << whole.left(whole.size() / 2);
    QTest::newRow("half of a binary one") << binaryInfo().left(80);
    QTest::newRow("a list") << QByteArray("<plist><array><string>3.1.4</string></array></plist>");
    QTest::newRow("zero bytes") << QByteArray(100, '\0');
    QTest::newRow("lists 100,000 deep") << xml(
        "<key>A</key>" + QByteArray("<array>").repeated(100000)
        + QByteArray("</array>").repeated(100000) + xmlEntry("CFBundleIdentifier", mainIdentifier)
        + xmlEntry("CFBundleShortVersionString", "3.1.4"));
}

void tst_SystemInformation::damagedPropertyListGivesNothing()
{
    QFETCH(QByteArray, propertyList);
    write(QStringLiteral("Name.app/Contents/Info.plist"), propertyList);
    Helper helper(install(QStringLiteral("Name.app/Contents/MacOS/") + unique("helper")));

    QCOMPARE(helper.ask("value\tCFBundleShortVersionString\tnull"), QString());
    QCOMPARE(helper.ask("value\tCFBundleShortVersionString\t" + unique("helper")), QString());
    QCOMPARE(helper.ask("main bundle"), QString());
    QCOMPARE(helper.ask("plug-ins"), QStringLiteral("/Contents/Frameworks/plugins"));
    QCOMPARE(helper.errors(), QByteArray());
}

void tst_SystemInformation::valueOfAnotherApplication_data()
{
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QByteArray>("bundleName");
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("value");

    const auto addRow = [](const char* title, const char* executable, const char* bundleName,
                           const char* name, const char* value) {
        QTest::newRow(title) << QString::fromUtf8(executable) << QByteArray(bundleName)
                             << QByteArray(name) << QString::fromUtf8(value);
    };
    // %1 makes a name unique.
    const char inBundle[] = "Name.app/Contents/MacOS/helper %1";
    addRow("by its bundle's name", inBundle, "Marlowick %1", "Marlowick %1", "3.1.4");
    addRow("by a name beyond ASCII", inBundle, "ä 日本 %1", "ä 日本 %1", "3.1.4");
    addRow("not by its file's name if the bundle has one", inBundle, "Marlowick %1", "helper %1",
           "");
    addRow("by its file's name if the bundle has none", inBundle, "", "helper %1", "3.1.4");
    addRow("not by the bundle's folder", inBundle, "", "Name", "");
    addRow("by its file's name without a bundle", "Name/Contents/MacOS/helper %1", "Marlowick %1",
           "helper %1", "3.1.4");
    addRow("not by a part of the name", inBundle, "Marlowick %1", "Marlowick", "");
    addRow("not by a name of another case", inBundle, "Marlowick %1", "marlowick %1", "");
    addRow("not by no name", inBundle, "Marlowick %1", "", "");
    addRow("by the bundle's name, but its property list isn't two folders up",
           "Name.app/Contents/Resources/tools/helper", "Marlowick %1", "Marlowick %1", "");
}

void tst_SystemInformation::valueOfAnotherApplication()
{
    QFETCH(QString, executable);
    QFETCH(QByteArray, bundleName);
    QFETCH(QByteArray, name);
    QFETCH(QString, value);
    const QString mark = QFileInfo(m_folder->path()).fileName();
    bundleName.replace("%1", mark.toUtf8());
    name.replace("%1", mark.toUtf8());
    write(executable.left(executable.indexOf(QLatin1Char('/')))
              + QStringLiteral("/Contents/Info.plist"),
          info("a.b", "3.1.4", bundleName));
    Helper other(install(executable.replace(QStringLiteral("%1"), mark)));
    QCOMPARE(other.ask("name"), QFileInfo(executable).fileName());

    QCOMPARE(
        UtilsDll::binaryFileVersionByProcessName("CFBundleShortVersionString", name.constData()),
        value);
    QCOMPARE(UtilsDll::binaryFileVersionByProcessName("Missing", name.constData()), QString());

    other.end();
    QCOMPARE(
        UtilsDll::binaryFileVersionByProcessName("CFBundleShortVersionString", name.constData()),
        QString());
}

void tst_SystemInformation::applicationThatDoesNotRun()
{
    const QByteArray name = unique("Marlowick");
    write(QStringLiteral("Name.app/Contents/Info.plist"), info("a.b", "3.1.4", name));
    install(QStringLiteral("Name.app/Contents/MacOS/helper"));

    QCOMPARE(UtilsDll::binaryFileVersionByProcessName("CFBundleName", name.constData()), QString());
}

void tst_SystemInformation::firstOfSeveralApplications()
{
    const QByteArray name = unique("Marlowick");
    std::vector<std::unique_ptr<Helper>> helpers;
    std::pair<qint64, QString> first(0, QString());
    for (const char* version : {"1", "2", "3", "4"}) {
        const QString bundle = QStringLiteral("Name%1.app/Contents").arg(QLatin1String(version));
        write(bundle + QStringLiteral("/Info.plist"), info("a.b", version, name));
        helpers.push_back(
            std::make_unique<Helper>(install(bundle + QStringLiteral("/MacOS/helper"))));
        const qint64 process = helpers.back()->process();
        if (first.first == 0 || process < first.first)
            first = {process, QLatin1String(version)};
    }
    for (const auto& helper : helpers)
        QCOMPARE(helper->ask("name"), QStringLiteral("helper"));

    QCOMPARE(
        UtilsDll::binaryFileVersionByProcessName("CFBundleShortVersionString", name.constData()),
        first.second);
}

void tst_SystemInformation::deletedExecutable()
{
    const QByteArray name = unique("Marlowick");
    write(QStringLiteral("Name.app/Contents/Info.plist"), info(mainIdentifier, "3.1.4", name));
    const QString program = install(QStringLiteral("Name.app/Contents/MacOS/helper"));
    Helper helper(program);
    QCOMPARE(helper.ask("name"), QStringLiteral("helper"));

    QVERIFY(QFile::remove(program));

    QCOMPARE(helper.ask("name"), QStringLiteral("helper"));
    QCOMPARE(helper.ask("main bundle"), path(QStringLiteral("Name.app")));
    QCOMPARE(helper.ask("value\tCFBundleShortVersionString\tnull"), QStringLiteral("3.1.4"));
    QCOMPARE(
        UtilsDll::binaryFileVersionByProcessName("CFBundleShortVersionString", name.constData()),
        QStringLiteral("3.1.4"));
}

void tst_SystemInformation::withoutAKey()
{
    const QByteArray name = unique("helper");
    write(QStringLiteral("Name.app/Contents/Info.plist"), xml(xmlEntry("", "3.1.4")));
    Helper helper(install(QStringLiteral("Name.app/Contents/MacOS/") + QString::fromUtf8(name)));
    QCOMPARE(helper.ask("value\t\tnull"), QStringLiteral("3.1.4"));

    QCOMPARE(helper.ask("value\tnull\tnull"), QString());
    QCOMPARE(UtilsDll::binaryFileVersionByProcessName(nullptr, "x"), QString());
    QCOMPARE(UtilsDll::binaryFileVersionByProcessName(nullptr, name.constData()), QString());
    QCOMPARE(UtilsDll::binaryFileVersionByProcessName(nullptr, nullptr), QString());
}

void tst_SystemInformation::systemVersion()
{
    QCOMPARE(VEK_NAMESPACE::systemVersion(), QStringLiteral("Mac OS X"));
}

void tst_SystemInformation::screenResolution()
{
    RecordingLogger logger;
    const MessageCounter messages;
    // Xvfb has 1600 by 1200 points on 406 by 305 mm.
    const bool isXvfb = QGuiApplication::platformName() == QLatin1String("xcb");
    const int expectedX = isXvfb ? 100 : 99;
    const int expectedY = 99;

    int x = -1;
    int y = -1;
    getScreenDpi(&x, &y);
    QCOMPARE(x, expectedX);
    QCOMPARE(y, expectedY);

    x = y = -1;
    getScreenDpi(nullptr, &y);
    QCOMPARE(x, -1);
    QCOMPARE(y, expectedY);

    y = -1;
    getScreenDpi(&x, nullptr);
    QCOMPARE(x, expectedX);
    QCOMPARE(y, -1);

    getScreenDpi(nullptr, nullptr);
    QCOMPARE(messages.count(), 0);
    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_SystemInformation::screenResolutionWithoutAScreen()
{
    Helper helper(QStringLiteral(HELPER));

    QCOMPARE(helper.ask("resolution"), QStringLiteral("0 0"));
}

QTEST_MAIN(tst_SystemInformation)

#include "tst_SystemInformation.moc"
