#include "MacTest.h"
#include "SystemInformation.h"
#include "storageLocation.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

#import <objc/runtime.h>

#include <cstdio>
#include <functional>

#include <unistd.h>

using namespace VEK_NAMESPACE;

namespace {

bool makeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly)
        && file.write(content) == content.size();
}

/// The text of a property list around \a entries.
QByteArray xml(const QByteArray& entries)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + entries
        + "</plist>\n";
}

QByteArray version(const QByteArray& number)
{
    return xml("<dict><key>CFBundleShortVersionString</key><string>" + number + "</string></dict>");
}

/// A bundle, with its property list where this Foundation reads it. The process has it while it
/// lives.
class Bundle
{
public:
    Bundle(const QString& name, const QByteArray& identifier)
    {
        const bool made = makeFile(
            here(name) + QStringLiteral("/Resources/Info.plist"),
            xml("<dict><key>CFBundleIdentifier</key><string>" + identifier + "</string></dict>"));
        if (!made)
            qFatal("cannot make a bundle");
        m_bundle = [[NSBundle alloc] initWithPath:nsString(here(name))];
    }
    ~Bundle() { [m_bundle release]; }

    NSUInteger retainCount() const { return [m_bundle retainCount]; }

private:
    Q_DISABLE_COPY(Bundle)

    NSBundle* m_bundle;
};

NSDictionary* application(const QString& name, int process)
{
    return [NSDictionary dictionaryWithObjectsAndKeys:nsString(name), @"NSApplicationName",
                                                      [NSNumber numberWithInt:process],
                                                      @"NSApplicationProcessIdentifier", nil];
}

/// Writes all that \a function prints to \a printed.
template <typename Function>
void takePrinted(QByteArray* printed, Function function)
{
    std::fflush(stdout);
    std::FILE* const file = std::tmpfile();
    const int previous = dup(STDOUT_FILENO);
    dup2(fileno(file), STDOUT_FILENO);
    function();
    std::fflush(stdout);
    dup2(previous, STDOUT_FILENO);
    close(previous);
    std::rewind(file);
    char buffer[1000];
    *printed = QByteArray(buffer, int(std::fread(buffer, 1, sizeof buffer, file)));
    std::fclose(file);
}

id noProcessInfo(id, SEL)
{
    return nil;
}

} // namespace

/// Bundles, processes, the screen, the login session, and the fixed folder.
class tst_MacSystem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { RecordingCocoa::instance().clear(); }
    void cleanup();

    void bundlePaths_data();
    void bundlePaths();
    void mainBundleIsLookedUpUntilItIsFound();
    void pluginsFolder();
    void processName();
    void nameOfNoProcess();
    void systemVersionHasNoNumber();

    void applicationIsFoundByName_data();
    void applicationIsFoundByName();
    void nullNameIsThisProcess();
    void nullKeyAsksForNothing();
    void executableIsTwoFoldersBelow_data();
    void executableIsTwoFoldersBelow();
    void processWithoutAPath_data();
    void processWithoutAPath();
    void propertyList_data();
    void propertyList();
    void propertyListThatCannotBeRead_data();
    void propertyListThatCannotBeRead();

    void screenDpi_data();
    void screenDpi();
    void screenDpiWritesWhatIsAskedFor();

    void sessionFolder_data();
    void sessionFolder();
    void fixedFolders();

    void nothingIsLeftBehind_data();
    void nothingIsLeftBehind();

private:
    QStringList calls() { return RecordingCocoa::instance().takeCalls(); }
    /// Runs, as process 41, from /<folder>/Contents/MacOS/App.
    void runApplication(const QString& folder)
    {
        RecordingCocoa& cocoa = RecordingCocoa::instance();
        cocoa.launchedApplications =
            [NSArray arrayWithObject:application(QStringLiteral("App"), 41)];
        cocoa.executables[41] = QFile::encodeName(here(folder + "/Contents/MacOS/App"));
    }
};

void tst_MacSystem::initTestCase()
{
    // As a new file, which is read at once.
    const QString passwords = QString::fromLocal8Bit(qgetenv("NSS_WRAPPER_PASSWD"));
    QVERIFY(QFile::remove(passwords));
    QVERIFY(makeFile(passwords,
                     "own:x:" + QByteArray::number(getuid())
                         + ":1::/home/own:/bin/sh\n"
                           "anna:x:4243:1::/home/anna:/bin/sh\n"
                           "bert:x:4244:1::/home/bert/:/bin/sh\n"
                           "zoe:x:4245:1::/home/zoë 写真:/bin/sh\n"
                           "homeless:x:4246:1:::/bin/sh\n"));
}

void tst_MacSystem::cleanup()
{
    QCOMPARE(liveCoreObjects(), 0);
}

void tst_MacSystem::bundlePaths_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<QString>("bundle");
    QTest::addColumn<QString>("resources");

    QTest::newRow("the first") << "com.vek.first"
                               << "First.app"
                               << "First.app/Resources";
    QTest::newRow("the second") << "com.vek.second"
                                << "Zweites Bündel 写真.app"
                                << "Zweites Bündel 写真.app/Resources";
    QTest::newRow("a framework") << "com.vek.frame"
                                 << "Frame.framework"
                                 << "Frame.framework/Versions/Current/Resources";
    QTest::newRow("an identifier that no bundle has") << "com.vek.third" << QString() << QString();
    QTest::newRow("an identifier in other letters") << "COM.VEK.FIRST" << QString() << QString();
    QTest::newRow("the beginning of an identifier") << "com.vek" << QString() << QString();
    QTest::newRow("no identifier") << QString() << QString() << QString();
}

void tst_MacSystem::bundlePaths()
{
    QFETCH(QString, identifier);
    QFETCH(QString, bundle);
    QFETCH(QString, resources);
    const Bundle first(QStringLiteral("First.app"), "com.vek.first");
    const Bundle second(QStringLiteral("Zweites Bündel 写真.app"), "com.vek.second");
    const Bundle framework(QStringLiteral("Frame.framework"), "com.vek.frame");

    QCOMPARE(MacOSGetBundlePath(identifier), bundle.isEmpty() ? QString() : here(bundle));
    QCOMPARE(MacOSGetBundleResourceDirPath(identifier),
             resources.isEmpty() ? QString() : here(resources));
    QCOMPARE(first.retainCount(), NSUInteger(1));
    QCOMPARE(second.retainCount(), NSUInteger(1));
    QCOMPARE(framework.retainCount(), NSUInteger(1));
}

void tst_MacSystem::mainBundleIsLookedUpUntilItIsFound()
{
    QCOMPARE(MacOSGetMainBundlePath(), QString());
    {
        const Bundle other(QStringLiteral("Other.app"), "com.vek.krnv3");
        QCOMPARE(MacOSGetMainBundlePath(), QString());
        const Bundle first(QStringLiteral("Main.app"), "com.vek.krnv3.standalone");
        QCOMPARE(MacOSGetMainBundlePath(), here(QStringLiteral("Main.app")));
    }
    QCOMPARE(MacOSGetMainBundlePath(), here(QStringLiteral("Main.app")));
    const Bundle another(QStringLiteral("Another.app"), "com.vek.krnv3.standalone");
    QCOMPARE(MacOSGetMainBundlePath(), here(QStringLiteral("Main.app")));
}

void tst_MacSystem::pluginsFolder()
{
    QCOMPARE(getQtPluginsDir(true), QStringLiteral("/Contents/Frameworks/plugins"));
    QCOMPARE(getQtPluginsDir(false), QStringLiteral("/Contents/Frameworks/plugins"));
    {
        const Bundle bundle(QStringLiteral("Plugins.app"), "com.vek.krnv3.standalone");
        QCOMPARE(getQtPluginsDir(true),
                 here(QStringLiteral("Plugins.app/Contents/Frameworks/plugins")));
        QCOMPARE(getQtPluginsDir(false),
                 here(QStringLiteral("Plugins.app/Contents/Frameworks/plugins")));
    }
    QCOMPARE(getQtPluginsDir(false), QStringLiteral("/Contents/Frameworks/plugins"));
}

void tst_MacSystem::processName()
{
    QCOMPARE(UtilsDll::currentProcessName(), QStringLiteral("tst_MacSystem"));
    [[NSProcessInfo processInfo] setProcessName:@"Vek Marlowick 3 Übung"];
    const QString renamed = UtilsDll::currentProcessName();
    [[NSProcessInfo processInfo] setProcessName:@"tst_MacSystem"];
    QCOMPARE(renamed, QStringLiteral("Vek Marlowick 3 Übung"));
}

void tst_MacSystem::nameOfNoProcess()
{
    const Method method = class_getClassMethod([NSProcessInfo class], @selector(processInfo));
    const IMP real = method_setImplementation(method, reinterpret_cast<IMP>(noProcessInfo));
    const QString name = UtilsDll::currentProcessName();
    method_setImplementation(method, real);
    QCOMPARE(name, QString());
}

void tst_MacSystem::systemVersionHasNoNumber()
{
    QCOMPARE(systemVersion(), QStringLiteral("Mac OS X"));
}

void tst_MacSystem::applicationIsFoundByName_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QStringList>("messages");

    QTest::newRow("the only one") << QByteArray("Single") << "1.0"
                                  << QStringList{"proc_pidpath 41 4096, zeroed"};
    QTest::newRow("the first of two")
        << QByteArray("Double") << "2.0" << QStringList{"proc_pidpath 42 4096, zeroed"};
    QTest::newRow("the first of two, which has no path")
        << QByteArray("Pathless") << "" << QStringList{"proc_pidpath 44 4096, zeroed"};
    QTest::newRow("letters of every alphabet")
        << QByteArray("Übung 写真") << "3.0" << QStringList{"proc_pidpath 43 4096, zeroed"};
    QTest::newRow("an entry without an identifier")
        << QByteArray("Lost") << "" << QStringList{"proc_pidpath 0 4096, zeroed"};
    QTest::newRow("the last one") << QByteArray("Last") << "1.0"
                                  << QStringList{"proc_pidpath 41 4096, zeroed"};
    QTest::newRow("one that doesn't run") << QByteArray("Absent") << "" << QStringList();
    QTest::newRow("a name in other letters") << QByteArray("SINGLE") << "" << QStringList();
    QTest::newRow("the beginning of a name") << QByteArray("Sing") << "" << QStringList();
    QTest::newRow("an empty name") << QByteArray("") << "" << QStringList();
}

void tst_MacSystem::applicationIsFoundByName()
{
    QFETCH(QByteArray, name);
    QFETCH(QString, value);
    QFETCH(QStringList, messages);
    QVERIFY(makeFile(here(QStringLiteral("One/Contents/Info.plist")), version("1.0")));
    QVERIFY(makeFile(here(QStringLiteral("Two/Contents/Info.plist")), version("2.0")));
    QVERIFY(makeFile(here(QStringLiteral("Drei 写真/Contents/Info.plist")), version("3.0")));
    RecordingCocoa& cocoa = RecordingCocoa::instance();
    cocoa.executables = {
        {41, QFile::encodeName(here(QStringLiteral("One/Contents/MacOS/One")))},
        {42, QFile::encodeName(here(QStringLiteral("Two/Contents/MacOS/Two")))},
        {43, QFile::encodeName(here(QStringLiteral("Drei 写真/Contents/MacOS/3")))},
        {44, QByteArray()}};
    cocoa.launchedApplications = [NSArray
        arrayWithObjects:[NSDictionary dictionary],
                         [NSDictionary dictionaryWithObject:[NSNumber numberWithInt:43]
                                                     forKey:@"NSApplicationProcessIdentifier"],
                         application(QStringLiteral("Single"), 41),
                         application(QStringLiteral("Double"), 42),
                         application(QStringLiteral("Double"), 41),
                         application(QStringLiteral("Pathless"), 44),
                         application(QStringLiteral("Pathless"), 41),
                         application(QStringLiteral("Übung 写真"), 43),
                         [NSDictionary dictionaryWithObject:@"Lost" forKey:@"NSApplicationName"],
                         application(QStringLiteral("Lost"), 41),
                         application(QStringLiteral("Last"), 41), nil];

    QCOMPARE(UtilsDll::binaryFileVersionByProcessName("CFBundleShortVersionString", name), value);
    QCOMPARE(calls(), messages);
    cocoa.launchedApplications = [NSArray array];
    QCOMPARE(UtilsDll::binaryFileVersionByProcessName("CFBundleShortVersionString", name),
             QString());
    cocoa.launchedApplications = nil;
    QCOMPARE(UtilsDll::binaryFileVersionByProcessName("CFBundleShortVersionString", name),
             QString());
    QCOMPARE(calls(), QStringList());
}

void tst_MacSystem::nullNameIsThisProcess()
{
    QVERIFY(makeFile(here(QStringLiteral("Own/Contents/Info.plist")), version("4.0")));
    RecordingCocoa::instance().executables[getpid()] =
        QFile::encodeName(here(QStringLiteral("Own/Contents/MacOS/Own")));
    QCOMPARE(UtilsDll::binaryFileVersionByProcessName("CFBundleShortVersionString", nullptr),
             QStringLiteral("4.0"));
    QCOMPARE(calls(), QStringList{"proc_pidpath itself 4096, zeroed"});
}

void tst_MacSystem::nullKeyAsksForNothing()
{
    runApplication(QStringLiteral("One"));
    QCOMPARE(UtilsDll::binaryFileVersionByProcessName(nullptr, "App"), QString());
    QCOMPARE(UtilsDll::binaryFileVersionByProcessName(nullptr, nullptr), QString());
    QCOMPARE(calls(), QStringList());
}

void tst_MacSystem::executableIsTwoFoldersBelow_data()
{
    QTest::addColumn<QString>("executable");
    QTest::addColumn<QString>("value");
    QTest::newRow("as in a bundle") << "Levels/Contents/MacOS/App"
                                    << "two above";
    QTest::newRow("one folder less") << "Levels/Contents/App"
                                     << "three above";
    QTest::newRow("one folder more") << "Levels/Contents/MacOS/more/App"
                                     << "one above";
    QTest::newRow("no list there") << "Levels/none/none/App"
                                   << "";
}

void tst_MacSystem::executableIsTwoFoldersBelow()
{
    QFETCH(QString, executable);
    QFETCH(QString, value);
    QVERIFY(makeFile(here(QStringLiteral("Levels/Info.plist")), version("three above")));
    QVERIFY(makeFile(here(QStringLiteral("Levels/Contents/Info.plist")), version("two above")));
    QVERIFY(
        makeFile(here(QStringLiteral("Levels/Contents/MacOS/Info.plist")), version("one above")));
    runApplication(QString());
    RecordingCocoa::instance().executables[41] = QFile::encodeName(here(executable));
    QCOMPARE(UtilsDll::binaryFileVersionByProcessName("CFBundleShortVersionString", "App"), value);
}

void tst_MacSystem::processWithoutAPath_data()
{
    QTest::addColumn<int>("result");
    QTest::newRow("nothing") << 0;
    QTest::newRow("a failure") << -1;
}

/// What stands in the buffer doesn't count then.
void tst_MacSystem::processWithoutAPath()
{
    QFETCH(int, result);
    QVERIFY(makeFile(here(QStringLiteral("Failing/Contents/Info.plist")), version("1.0")));
    runApplication(QStringLiteral("Failing"));
    QCOMPARE(UtilsDll::binaryFileVersionByProcessName("CFBundleShortVersionString", "App"),
             QStringLiteral("1.0"));
    RecordingCocoa::instance().executableResult = result;
    QCOMPARE(UtilsDll::binaryFileVersionByProcessName("CFBundleShortVersionString", "App"),
             QString());
}

void tst_MacSystem::propertyList_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QByteArray>("key");
    QTest::addColumn<QString>("value");

    const auto addRow = [](const char* title, const QByteArray& content, const QByteArray& key,
                           const QString& value) {
        QTest::newRow(title) << content << key << value;
    };
    addRow("XML", version("3.1.4"), "CFBundleShortVersionString", "3.1.4");
    addRow("XML in every alphabet",
           xml("<dict><key>Übung &lt;1&gt;</key><string>写真 &amp; 😀</string></dict>"), "Übung <1>",
           "写真 & 😀");
    addRow("an empty text", xml("<dict><key>a</key><string></string></dict>"), "a", "");
    addRow("an empty key", xml("<dict><key></key><string>of none</string></dict>"), "", "of none");
    addRow("a key with dots",
           xml("<dict><key>a.b</key><string>x</string>"
               "<key>a</key><dict><key>b</key><string>y</string></dict></dict>"),
           "a.b", "x");
    addRow("a key of an inner dictionary",
           xml("<dict><key>a</key><dict><key>b</key><string>y</string></dict></dict>"), "b", "");
    addRow("a key that isn't there", version("3.1.4"), "CFBundleVersion", "");
    addRow("a key in other letters", version("3.1.4"), "cfbundleshortversionstring", "");
    addRow("a number", xml("<dict><key>a</key><integer>3</integer></dict>"), "a", "");
    addRow("a real number", xml("<dict><key>a</key><real>3.5</real></dict>"), "a", "");
    addRow("yes", xml("<dict><key>a</key><true/></dict>"), "a", "");
    addRow("a date", xml("<dict><key>a</key><date>2001-02-03T04:05:06Z</date></dict>"), "a", "");
    addRow("data", xml("<dict><key>a</key><data>MS4w</data></dict>"), "a", "");
    addRow("a list of texts", xml("<dict><key>a</key><array><string>x</string></array></dict>"),
           "a", "");
    addRow("a dictionary", xml("<dict><key>a</key><dict/></dict>"), "a", "");
    addRow("the old form of text", "{ a = x; }", "a", "x");
    // {"CFBundleShortVersionString": "3.1.4", "Name": "Übung 写真"}
    const QByteArray binary = QByteArray::fromHex(
        "62706c6973743030d2010203045f101a434642756e646c6553686f727456657273696f6e537472696e"
        "67544e616d6555332e312e346800dc00620075006e006700205199771f080d2a2f3500000000000001"
        "01000000000000000500000000000000000000000000000046");
    addRow("binary", binary, "CFBundleShortVersionString", "3.1.4");
    addRow("binary in every alphabet", binary, "Name", "Übung 写真");
    // {"CFBundleShortVersionString": 314}
    addRow("binary with a number",
           QByteArray::fromHex(
               "62706c6973743030d101025f101a434642756e646c6553686f727456657273696f6e537472696e6711"
               "013a080b28000000000000010100000000000000030000000000000000000000000000002b"),
           "CFBundleShortVersionString", "");
    // ["3.1.4"], and "3.1.4"
    addRow("binary, and a list",
           QByteArray::fromHex("62706c6973743030a10155332e312e34080a000000000000010100000000000000"
                               "0200000000000000000000000000000010"),
           "3.1.4", "");
    addRow("binary, and a text",
           QByteArray::fromHex("62706c697374303055332e312e3408000000000000010100000000000000010000"
                               "000000000000000000000000000e"),
           "3.1.4", "");
    addRow("XML, and a list", xml("<array><string>a</string></array>"), "a", "");
    addRow("XML, and a text", xml("<string>a</string>"), "a", "");

    addRow("nothing", "", "a", "");
    addRow("no property list", "just a text", "a", "");
    addRow("XML that is cut off", version("3.1.4").left(120), "CFBundleShortVersionString", "");
    addRow("XML with a value without a key", xml("<dict><string>a</string></dict>"), "a", "");
    addRow("XML with a key without a value", xml("<dict><key>a</key></dict>"), "a", "");
    addRow("the beginning of a binary one", "bplist00", "a", "");
    addRow("a binary one of anything", "bplist00" + QByteArray(50, 'a'), "a", "");
    addRow("a binary one without its end", binary.left(80), "CFBundleShortVersionString", "");
    addRow("bytes of no meaning", QByteArray::fromHex("00000000fffe"), "a", "");
}

void tst_MacSystem::propertyList()
{
    QFETCH(QByteArray, content);
    QFETCH(QByteArray, key);
    QFETCH(QString, value);
    QVERIFY(makeFile(here(QStringLiteral("List/Contents/Info.plist")), content));
    runApplication(QStringLiteral("List"));
    QCOMPARE(UtilsDll::binaryFileVersionByProcessName(key, "App"), value);
    QCOMPARE(calls(), QStringList{"proc_pidpath 41 4096, zeroed"});
}

void tst_MacSystem::propertyListThatCannotBeRead_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("there is none") << "NoList";
    QTest::newRow("it is a folder") << "FolderForAList";
}

void tst_MacSystem::propertyListThatCannotBeRead()
{
    QFETCH(QString, folder);
    QVERIFY(QDir::current().mkpath(QStringLiteral("FolderForAList/Contents/Info.plist")));
    runApplication(folder);
    QCOMPARE(UtilsDll::binaryFileVersionByProcessName("a", "App"), QString());
    QCOMPARE(calls(), QStringList{"proc_pidpath 41 4096, zeroed"});
}

void tst_MacSystem::screenDpi_data()
{
    QTest::addColumn<bool>("hasScreen");
    QTest::addColumn<QVariant>("points");
    QTest::addColumn<QVariant>("number");
    QTest::addColumn<QSizeF>("millimetres");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");
    QTest::addColumn<QStringList>("messages");

    const QVariant none;
    QTest::newRow("each axis has its own")
        << true << QVariant(QSizeF(1600, 1200)) << QVariant(7U) << QSizeF(400, 200) << 101 << 152
        << QStringList{"CGDisplayScreenSize 7"};
    QTest::newRow("the largest number of a display")
        << true << QVariant(QSizeF(1440, 900)) << QVariant(4294967295U) << QSizeF(331, 207) << 110
        << 110 << QStringList{"CGDisplayScreenSize 4294967295"};
    QTest::newRow("an inch of a little less than 25.4 millimetres")
        << true << QVariant(QSizeF(1000, 500)) << QVariant(7U) << QSizeF(254, 254) << 99 << 49
        << QStringList{"CGDisplayScreenSize 7"};
    QTest::newRow("parts of points and of millimetres")
        << true << QVariant(QSizeF(100.9, 200.9)) << QVariant(7U) << QSizeF(25.5, 25.5) << 100
        << 200 << QStringList{"CGDisplayScreenSize 7"};
    QTest::newRow("a display of unknown size")
        << true << QVariant(QSizeF(1600, 1200)) << QVariant(7U) << QSizeF(0, 0) << 0 << 0
        << QStringList{"CGDisplayScreenSize 7"};
    QTest::newRow("a description without a number")
        << true << QVariant(QSizeF(1600, 1200)) << none << QSizeF(400, 200) << 0 << 0
        << QStringList{"CGDisplayScreenSize 0"};
    QTest::newRow("a description without a size")
        << true << none << QVariant(7U) << QSizeF(400, 200) << 0 << 0
        << QStringList{"CGDisplayScreenSize 7"};
    QTest::newRow("a screen without a description")
        << true << none << none << QSizeF(400, 200) << 0 << 0 << QStringList();
    QTest::newRow("no screen") << false << none << none << QSizeF(400, 200) << 0 << 0
                               << QStringList();
}

void tst_MacSystem::screenDpi()
{
    QFETCH(bool, hasScreen);
    QFETCH(QVariant, points);
    QFETCH(QVariant, number);
    QFETCH(QSizeF, millimetres);
    QFETCH(int, x);
    QFETCH(int, y);
    QFETCH(QStringList, messages);
    NSMutableDictionary* description = nil;
    if (points.isValid() || number.isValid())
        description = [NSMutableDictionary dictionary];
    if (points.isValid()) {
        const QSizeF size = points.toSizeF();
        [description setObject:[NSValue valueWithSize:NSMakeSize(size.width(), size.height())]
                        forKey:NSDeviceSize];
    }
    if (number.isValid()) {
        [description setObject:[NSNumber numberWithUnsignedInt:number.toUInt()]
                        forKey:@"NSScreenNumber"];
        RecordingCocoa::instance().displaySizes[number.toUInt()] =
            NSMakeSize(millimetres.width(), millimetres.height());
    }
    RecordingScreen* screen = [[[RecordingScreen alloc] initWithName:@"screen"] autorelease];
    screen->description = description;
    RecordingCocoa::instance().mainScreen = hasScreen ? screen : nil;

    int dpiX = -5;
    int dpiY = -5;
    getScreenDpi(&dpiX, &dpiY);
    screen->description = nil;
    QCOMPARE(dpiX, x);
    QCOMPARE(dpiY, y);
    QCOMPARE(calls(), messages);
}

void tst_MacSystem::screenDpiWritesWhatIsAskedFor()
{
    RecordingScreen* screen = [[[RecordingScreen alloc] initWithName:@"screen"] autorelease];
    screen->description = [NSDictionary
        dictionaryWithObjectsAndKeys:[NSValue valueWithSize:NSMakeSize(1600, 1200)], NSDeviceSize,
                                     [NSNumber numberWithUnsignedInt:7], @"NSScreenNumber", nil];
    RecordingCocoa::instance().mainScreen = screen;
    RecordingCocoa::instance().displaySizes[7] = NSMakeSize(400, 200);

    int dpi = -5;
    getScreenDpi(nullptr, &dpi);
    QCOMPARE(dpi, 152);
    getScreenDpi(&dpi, nullptr);
    QCOMPARE(dpi, 101);
    getScreenDpi(nullptr, nullptr);
    screen->description = nil;
}

void tst_MacSystem::sessionFolder_data()
{
    QTest::addColumn<bool>("hasSession");
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QByteArray>("printed");
    QTest::addColumn<QStringList>("messages");

    const QStringList asked{"CGSessionCopyCurrentDictionary",
                            "CFDictionaryGetValue kCGSSessionUserNameKey"};
    const QByteArray notice("Single app use standard temp dir!!!");
    QTest::newRow("another user") << true << "anna"
                                  << "/home/anna/Library/Vek_Labs/Vek Marlowick 3" << QByteArray()
                                  << asked;
    QTest::newRow("a home folder that ends with a separator")
        << true << "bert"
        << "/home/bert/Library/Vek_Labs/Vek Marlowick 3" << QByteArray() << asked;
    QTest::newRow("a home folder of every alphabet")
        << true << "zoe"
        << "/home/zoë 写真/Library/Vek_Labs/Vek Marlowick 3" << QByteArray() << asked;
    QTest::newRow("a user without a home folder")
        << true << "homeless" << QString() << QByteArray() << asked;
    QTest::newRow("a user whom the system doesn't know")
        << true << "nobody here" << QString() << QByteArray() << asked;
    QTest::newRow("a session without a user")
        << true << QString() << "/usr/share" << notice << asked;
    QTest::newRow("no session") << false << QString() << "/usr/share" << notice
                                << QStringList{"CGSessionCopyCurrentDictionary"};
}

void tst_MacSystem::sessionFolder()
{
    QFETCH(bool, hasSession);
    QFETCH(QString, user);
    QFETCH(QString, folder);
    QFETCH(QByteArray, printed);
    QFETCH(QStringList, messages);
    RecordingCocoa::instance().hasSession = hasSession;
    RecordingCocoa::instance().sessionUser = user.isEmpty() ? nil : nsString(user);
    const QByteArray previous = qgetenv("TMPDIR");
    qputenv("TMPDIR", "/usr/share/");

    // It is asked for each time.
    for (int i = 0; i < 2; ++i) {
        QString result;
        QByteArray output;
        takePrinted(&output, [&result] { result = CStorageLocation::sessionSingleAppDirectory(); });
        qputenv("TMPDIR", previous);
        QCOMPARE(result, folder);
        QCOMPARE(output, printed);
        QCOMPARE(calls(), messages);
        QCOMPARE(liveCoreObjects(), 0);
        qputenv("TMPDIR", "/usr/share/");
    }
    qputenv("TMPDIR", previous);
}

void tst_MacSystem::fixedFolders()
{
    QCOMPARE(CStorageLocation::getPreferencesFilePath(),
             QStringLiteral("/Library/Application Support/Vek Labs/krnv3/Preferences.ini"));
    QCOMPARE(CStorageLocation::dataLocation(QStringLiteral("x"), false),
             QStringLiteral("/home/own/Library/Vek_Labs/x/"));
}

using Operation = std::function<void()>;
Q_DECLARE_METATYPE(Operation)

void tst_MacSystem::nothingIsLeftBehind_data()
{
    QTest::addColumn<Operation>("operation");

    const auto addRow = [](const char* title, const Operation& operation) {
        QTest::newRow(title) << operation;
    };
    const QString identifier = QStringLiteral("com.vek.left");
    addRow("a bundle", [identifier] { MacOSGetBundlePath(identifier); });
    addRow("resources", [identifier] { MacOSGetBundleResourceDirPath(identifier); });
    addRow("the plug-ins", [] { getQtPluginsDir(false); });
    addRow("the name of the process", [] {
        @autoreleasepool {
            [[NSProcessInfo processInfo] setProcessName:nsString(QStringLiteral("Übung"))];
        }
        UtilsDll::currentProcessName();
    });
    addRow("a version", [] { UtilsDll::binaryFileVersionByProcessName("a", "App"); });
    addRow("a version of none", [] { UtilsDll::binaryFileVersionByProcessName("a", "None"); });
    addRow("the folder of the session", [] {
        RecordingCocoa::instance().sessionUser = @"anna";
        CStorageLocation::sessionSingleAppDirectory();
    });
}

/// Neither for good nor in the pool of the caller, who may be a thread without any.
void tst_MacSystem::nothingIsLeftBehind()
{
    QFETCH(Operation, operation);
    const Bundle bundle(QStringLiteral("Left.app"), "com.vek.left");
    QVERIFY(makeFile(here(QStringLiteral("Left/Contents/Info.plist")),
                     xml("<dict><key>a</key><string>x</string></dict>")));
    runApplication(QStringLiteral("Left"));
    operation();
    const int before = liveObjects();
    for (int i = 0; i < 20; ++i)
        operation();
    QCOMPARE(liveObjects(), before);
}

int main(int argc, char** argv)
{
    return runMacTest<tst_MacSystem>(argc, argv);
}

#include "tst_MacSystem.moc"
