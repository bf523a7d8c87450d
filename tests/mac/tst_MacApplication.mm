#include "MacTest.h"

#include "ApplicationActivation.h"
#include "Files.h"
#include "WindowServices.h"

#include <QAbstractItemView>
#include <QComboBox>
#include <QDialog>
#include <QMenu>
#include <QTemporaryDir>

#import <objc/runtime.h>

#include <cstdlib>
#include <functional>
#include <optional>
#include <utility>

namespace {

void record(const QString& call)
{
    RecordingCocoa::instance().record(call);
}

QString text(NSString* string)
{
    return string ? QString::fromUtf8([string UTF8String]) : QStringLiteral("nil");
}

void post(NSString* name, id sender)
{
    [[NSNotificationCenter defaultCenter] postNotificationName:name object:sender];
}

using LaunchedTask = NSTask* (*)(id, SEL, NSString*, NSArray*);
LaunchedTask g_launchedTask = nullptr;

NSTask* launchedTask(id self, SEL command, NSString* path, NSArray* arguments)
{
    record(QStringLiteral("launchedTaskWithLaunchPath: %1 arguments: %2")
               .arg(text(path),
                    arguments ? QString::number([arguments count]) : QStringLiteral("nil")));
    return g_launchedTask(self, command, path, arguments);
}

/// Counts how often it has been told to hide its list.
class CountingBox : public QComboBox
{
public:
    using QComboBox::QComboBox;

    void hidePopup() override
    {
        ++hides;
        if (onHide)
            onHide();
        QComboBox::hidePopup();
    }

    int hides = 0;
    std::function<void()> onHide;
};

/// A window with a box whose list is open.
class WindowWithList : public QWidget
{
public:
    WindowWithList()
    {
        box.addItems({QStringLiteral("one"), QStringLiteral("two")});
        show();
        box.showPopup();
        box.hides = 0;
    }

    bool isListOpen() const { return box.view()->isVisible(); }

    CountingBox box{this};
};

/// Writes down what happens to it among what Cocoa is told.
class RecordingWidget : public QWidget
{
protected:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::Show)
            record(QStringLiteral("widget shown"));
        else if (event->type() == QEvent::ZOrderChange)
            record(QStringLiteral("widget raised"));
        return QWidget::event(event);
    }
};

const QStringList observes = {
    QStringLiteral("center addObserver: ApplicationResignObserver"
                   " selector: applicationDidResignActive"
                   " name: NSApplicationDidResignActiveNotification object: nil"),
    QStringLiteral("center addObserver: ApplicationResignObserver selector: windowWillMiniaturize"
                   " name: NSWindowWillMiniaturizeNotification object: nil")};

const QStringList goes = {QStringLiteral("center removeObserver: ApplicationResignObserver"),
                          QStringLiteral("ApplicationResignObserver dealloc")};

} // namespace

using Operation = std::function<void()>;
Q_DECLARE_METATYPE(Operation)
using BoolOperation = std::function<void(bool)>;
Q_DECLARE_METATYPE(BoolOperation)

/// The application among others: what it tells the system, and what the system tells it.
class tst_MacApplication : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void messages_data();
    void messages();
    void menuBar_data();
    void menuBar();
    void noMenuBar_data();
    void noMenuBar();
    void editMenuItems();
    void trackedMenu();
    void menuThatIsNotTheSystems();
    void isActive();

    void launch_data();
    void launch();
    void launchNothing_data();
    void launchNothing();

    void version_data();
    void version();

    void resignObserver();
    void deactivator();
    void directDealloc();
    void listCloses_data();
    void listCloses();
    void listClosesOnceForEachDeactivator();
    void deactivatorEndsWhileItCloses_data();
    void deactivatorEndsWhileItCloses();
    void nothingClosesForOthers_data();
    void nothingClosesForOthers();
    void menuCloses_data();
    void menuCloses();
    void menuOfABoxStays();
    void otherWindowsStay();

    void activate();
    void activateNothing();

private:
    QStringList calls() { return RecordingCocoa::instance().takeCalls(); }

    NSAutoreleasePool* m_pool = nil;
};

void tst_MacApplication::initTestCase()
{
    QApplication::setQuitOnLastWindowClosed(false);
    const Method method =
        class_getClassMethod([NSTask class], @selector(launchedTaskWithLaunchPath:arguments:));
    g_launchedTask = reinterpret_cast<LaunchedTask>(
        method_setImplementation(method, reinterpret_cast<IMP>(launchedTask)));
}

void tst_MacApplication::init()
{
    m_pool = [[NSAutoreleasePool alloc] init];
    RecordingCocoa::instance().clear();
}

void tst_MacApplication::cleanup()
{
    [m_pool release];
    QCOMPARE(int(liveObservers().size()), 0);
    QCOMPARE(liveCoreObjects(), 0);
}

void tst_MacApplication::messages_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("end a modal session")
        << Operation(MacOSEndModalSession)
        << QStringList{"sharedApplication", "application stopModal"};
    QTest::newRow("show the cursor")
        << Operation([] { MacOSShowCursor(true); }) << QStringList{"cursor unhide"};
    QTest::newRow("hide the cursor")
        << Operation([] { MacOSShowCursor(false); }) << QStringList{"cursor hide"};
    QTest::newRow("hide no menu") << Operation([] { MacOSHideMenuWidget(nullptr); })
                                  << QStringList();
}

void tst_MacApplication::messages()
{
    QFETCH(Operation, operation);
    QFETCH(QStringList, messages);
    operation();
    QCOMPARE(calls(), messages);
}

void tst_MacApplication::menuBar_data()
{
    QTest::addColumn<BoolOperation>("operation");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QStringList>("messages");
    const QStringList enabling = {"sharedApplication", "Apple setEnabled: YES",
                                  "File setEnabled: YES", "Help setEnabled: YES"};
    const QStringList disabling = {"sharedApplication", "Apple setEnabled: NO",
                                   "File setEnabled: NO", "Help setEnabled: NO"};
    QTest::newRow("enable, of the window services")
        << BoolOperation(MacOSEnableMenuBar) << true << enabling;
    QTest::newRow("disable, of the window services")
        << BoolOperation(MacOSEnableMenuBar) << false << disabling;
    QTest::newRow("enable, of the activator")
        << BoolOperation(WindowActivator::enableMenuBar) << true << enabling;
    QTest::newRow("disable, of the activator")
        << BoolOperation(WindowActivator::enableMenuBar) << false << disabling;
}

void tst_MacApplication::menuBar()
{
    QFETCH(BoolOperation, operation);
    QFETCH(bool, enabled);
    QFETCH(QStringList, messages);
    NSMutableArray* items = [NSMutableArray array];
    for (NSString *name in [NSArray arrayWithObjects:@"Apple", @"File", @"Help", nil])
        [items addObject:[[[RecordingMenuItem alloc] initWithName:name] autorelease]];
    RecordingMenu* menu = [[[RecordingMenu alloc] initWithName:@"menu bar"] autorelease];
    menu->items = items;
    RecordingCocoa::instance().mainMenu = menu;
    operation(enabled);
    QCOMPARE(calls(), messages);
    QCOMPARE([menu retainCount], NSUInteger(1));
    QCOMPARE([items retainCount], NSUInteger(1));
}

void tst_MacApplication::noMenuBar_data()
{
    QTest::addColumn<BoolOperation>("operation");
    QTest::addColumn<bool>("hasMenu");
    QTest::addColumn<bool>("hasItems");
    QTest::newRow("no main menu") << BoolOperation(MacOSEnableMenuBar) << false << false;
    QTest::newRow("no items") << BoolOperation(MacOSEnableMenuBar) << true << false;
    QTest::newRow("an empty menu") << BoolOperation(MacOSEnableMenuBar) << true << true;
    QTest::newRow("no main menu, of the activator")
        << BoolOperation(WindowActivator::enableMenuBar) << false << false;
}

void tst_MacApplication::noMenuBar()
{
    QFETCH(BoolOperation, operation);
    QFETCH(bool, hasMenu);
    QFETCH(bool, hasItems);
    RecordingMenu* menu = [[[RecordingMenu alloc] initWithName:@"menu bar"] autorelease];
    if (hasItems)
        menu->items = [NSArray array];
    if (hasMenu)
        RecordingCocoa::instance().mainMenu = menu;
    operation(false);
    QCOMPARE(calls(), QStringList{"sharedApplication"});
}

void tst_MacApplication::editMenuItems()
{
    NSUserDefaults* defaults = [NSUserDefaults standardUserDefaults];
    QVERIFY(![defaults boolForKey:@"NSDisabledCharacterPaletteMenuItem"]);
    QVERIFY(![defaults boolForKey:@"NSDisabledDictationMenuItem"]);
    MacOSDeleteSpecialEditMenuItems();
    QCOMPARE(calls(),
             (QStringList{"setBool: 1 forKey: NSDisabledCharacterPaletteMenuItem",
                          "setBool: 1 forKey: NSDisabledDictationMenuItem"}));
    QVERIFY([defaults boolForKey:@"NSDisabledCharacterPaletteMenuItem"]);
    QVERIFY([defaults boolForKey:@"NSDisabledDictationMenuItem"]);
}

void tst_MacApplication::trackedMenu()
{
    QMenu menu;
    QMenu other;
    RecordingMenu* native = [[[RecordingMenu alloc] initWithName:@"menu"] autorelease];
    RecordingMenu* otherNative = [[[RecordingMenu alloc] initWithName:@"other menu"] autorelease];
    RecordingCocoa::instance().menus.insert(&menu, native);
    RecordingCocoa::instance().menus.insert(&other, otherNative);
    MacOSHideMenuWidget(&menu);
    QCOMPARE(calls(), QStringList{"menu cancelTracking"});
    MacOSHideMenuWidget(&other);
    QCOMPARE(calls(), QStringList{"other menu cancelTracking"});
    QCOMPARE([native retainCount], NSUInteger(1));
}

void tst_MacApplication::menuThatIsNotTheSystems()
{
    QMenu menu;
    MacOSHideMenuWidget(&menu);
    QCOMPARE(calls(), QStringList());
}

void tst_MacApplication::isActive()
{
    QCOMPARE(WindowActivator::isAppActive(), false);
    RecordingCocoa::instance().applicationActive = true;
    QCOMPARE(WindowActivator::isAppActive(), true);
    QCOMPARE(calls(), QStringList());
}

void tst_MacApplication::launch_data()
{
    QTest::addColumn<QString>("program");
    QTest::newRow("a plain name") << "program";
    QTest::newRow("spaces and quotes") << "the \"first\" program's name";
    QTest::newRow("beyond ASCII") << QString::fromUtf8("Prüfung 写真 📷");
}

void tst_MacApplication::launch()
{
    QFETCH(QString, program);
    const QTemporaryDir folder;
    const QString path = folder.filePath(program);
    const QString output = folder.filePath(QStringLiteral("output"));
    QVERIFY(writeFile(path,
                      "#!/bin/sh\necho \"$# $0\" >\"" + QFile::encodeName(output) + ".new\"\nmv \""
                          + QFile::encodeName(output) + ".new\" \"" + QFile::encodeName(output)
                          + "\"\n"));
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    MacOSLaunchApplication(path.toUtf8().constData());
    QCOMPARE(calls(),
             QStringList{QStringLiteral("launchedTaskWithLaunchPath: %1 arguments: 0").arg(path)});
    QTRY_COMPARE(QString::fromUtf8(readFile(output)), QStringLiteral("0 %1\n").arg(path));
}

void tst_MacApplication::launchNothing_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("a file that isn't there")
        << QByteArray("/nowhere/program")
        << QStringList{"launchedTaskWithLaunchPath: /nowhere/program arguments: 0"};
    QTest::newRow("a file that isn't a program")
        << QByteArray("/etc/passwd")
        << QStringList{"launchedTaskWithLaunchPath: /etc/passwd arguments: 0"};
    QTest::newRow("no UTF-8") << QByteArray("/bin/\xff\xfe") << QStringList();
    QTest::newRow("no path") << QByteArray() << QStringList();
}

/// No exception comes out. What only the start itself refuses, such as a folder, isn't here:
/// GNUstep's child then runs this process's exit handlers, in memory that both share.
void tst_MacApplication::launchNothing()
{
    QFETCH(QByteArray, path);
    QFETCH(QStringList, messages);
    NSString* raised = nil;
    @try {
        MacOSLaunchApplication(path.isNull() ? nullptr : path.constData());
    } @catch (NSException* exception) {
        raised = [exception reason];
    }
    QCOMPARE(text(raised), QStringLiteral("nil"));
    QCOMPARE(calls(), messages);
}

void tst_MacApplication::version_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<int>("major");
    QTest::addColumn<int>("minor");
    QTest::addColumn<int>("patch");
    QTest::addColumn<bool>("atLeast");
    const auto row = [](const char* version, int major, int minor, int patch, bool atLeast) {
        QTest::addRow("%s and %d.%d.%d", version, major, minor, patch)
            << QString::fromUtf8(version) << major << minor << patch << atLeast;
    };
    row("10.10.5", 10, 6, 0, true);
    row("10.10.5", 10, 11, 0, false);
    row("10.10.5", 10, 10, 5, true);
    row("10.10.5", 10, 10, 6, false);
    row("10.10.5", 10, 9, 9, true);
    row("10.10.5", 9, 11, 0, true);
    row("10.10.5", 11, 0, 0, false);
    // The patch number is looked at whenever the minor ones are the same.
    row("11.6.0", 10, 6, 1, false);
    row("11.6.1", 10, 6, 1, true);
    row("11.7.0", 10, 6, 1, true);
    row("11.5.0", 10, 6, 1, true);
    // What isn't there counts as -1.
    row("11", 10, 6, 0, true);
    row("10", 10, 0, 0, false);
    row("10", 10, -1, 0, false);
    row("10", 10, -1, -1, true);
    row("10.6", 10, 6, 0, false);
    row("10.6", 10, 6, -1, true);
    row("10.6.", 10, 6, 0, false);
    row("10.6.x", 10, 6, 0, false);
    row("10.x.3", 10, 0, 0, false);
    row("10.6.8 (Build 10K549)", 10, 6, 8, true);
    row(" 10.6.8", 10, 6, 8, true);
    row("Version 10.10.5", 0, 0, 0, false);
    row("Version 10.10.5", -1, -1, -1, true);
    row("", 0, 0, 0, false);
    row("", -1, -1, -1, true);
    row("-2.0.0", -1, 0, 0, false);
    row("2147483647.0.0", 2147483647, 0, 0, true);
}

void tst_MacApplication::version()
{
    QFETCH(QString, version);
    QFETCH(int, major);
    QFETCH(int, minor);
    QFETCH(int, patch);
    QFETCH(bool, atLeast);
    QCOMPARE(auxMacOsIsOperatingSystemAtLeastVersion(version, major, minor, patch), atLeast);
    NSString* native = [NSString stringWithUTF8String:version.toUtf8().constData()];
    QCOMPARE(auxMacOsIsOperatingSystemAtLeastVersion(native, major, minor, patch), atLeast);
    if (version.isEmpty()) {
        NSString* nothing = nil;
        QCOMPARE(auxMacOsIsOperatingSystemAtLeastVersion(nothing, major, minor, patch), atLeast);
    }
}

void tst_MacApplication::resignObserver()
{
    const Class theClass = NSClassFromString(@"ApplicationResignObserver");
    QVERIFY(theClass);
    QCOMPARE([theClass superclass], [NSObject class]);
    unsigned count = 0;
    std::free(class_copyIvarList(theClass, &count));
    QCOMPARE(count, 0u);

    QStringList found;
    Method* own = class_copyMethodList(theClass, &count);
    for (unsigned i = 0; i < count; ++i)
        found << QString::fromUtf8(sel_getName(method_getName(own[i])));
    std::free(own);
    found.sort();
    QCOMPARE(found,
             (QStringList{"applicationDidResignActive", "deactivateTopLevelWidgets", "dealloc",
                          "init", "windowWillMiniaturize"}));
}

void tst_MacApplication::deactivator()
{
    std::optional<TopLevelWindowDeactivator> deactivator(std::in_place);
    QCOMPARE(calls(), observes);
    QCOMPARE(int(liveObservers().size()), 1);
    deactivator.reset();
    QCOMPARE(calls(), goes);
}

/// Whoever has retained the observer.
void tst_MacApplication::directDealloc()
{
    std::optional<TopLevelWindowDeactivator> deactivator(std::in_place);
    [liveObservers().constFirst() retain];
    calls();
    deactivator.reset();
    QCOMPARE(calls(), goes);
}

void tst_MacApplication::listCloses_data()
{
    QTest::addColumn<QString>("notification");
    QTest::addColumn<bool>("hasSender");
    for (const char* notification :
         {"NSApplicationDidResignActiveNotification", "NSWindowWillMiniaturizeNotification"}) {
        QTest::addRow("%s from an object", notification) << notification << true;
        QTest::addRow("%s from nobody", notification) << notification << false;
    }
}

/// Through the box, whose state stays right.
void tst_MacApplication::listCloses()
{
    QFETCH(QString, notification);
    QFETCH(bool, hasSender);
    NSString* name = [NSString stringWithUTF8String:qPrintable(notification)];
    const id sender = hasSender ? [[[NSObject alloc] init] autorelease] : nil;
    std::optional<TopLevelWindowDeactivator> deactivator(std::in_place);
    WindowWithList window;
    QVERIFY(window.isListOpen());
    post(name, sender);
    QCOMPARE(window.box.hides, 1);
    QTRY_VERIFY(!window.isListOpen());

    // And the next time, until the end.
    window.box.showPopup();
    QVERIFY(window.isListOpen());
    window.box.hides = 0;
    deactivator.reset();
    post(name, sender);
    QCOMPARE(window.box.hides, 0);
    QVERIFY(window.isListOpen());
}

void tst_MacApplication::listClosesOnceForEachDeactivator()
{
    const TopLevelWindowDeactivator first;
    std::optional<TopLevelWindowDeactivator> second(std::in_place);
    WindowWithList window;
    post(NSApplicationDidResignActiveNotification, NSApp);
    QCOMPARE(window.box.hides, 2);
    QTRY_VERIFY(!window.isListOpen());

    second.reset();
    window.box.showPopup();
    window.box.hides = 0;
    post(NSApplicationDidResignActiveNotification, NSApp);
    QCOMPARE(window.box.hides, 1);
    QTRY_VERIFY(!window.isListOpen());
}

void tst_MacApplication::deactivatorEndsWhileItCloses_data()
{
    menuCloses_data();
}

/// What it closes may destroy it.
void tst_MacApplication::deactivatorEndsWhileItCloses()
{
    QFETCH(QString, notification);
    std::optional<TopLevelWindowDeactivator> deactivator(std::in_place);
    WindowWithList window;
    window.box.onHide = [&deactivator] { deactivator.reset(); };
    calls();
    post([NSString stringWithUTF8String:qPrintable(notification)], NSApp);
    QCOMPARE(window.box.hides, 1);
    QCOMPARE(calls(), goes);
    QTRY_VERIFY(!window.isListOpen());
}

void tst_MacApplication::nothingClosesForOthers_data()
{
    QTest::addColumn<QString>("notification");
    for (const char* notification :
         {"NSApplicationWillResignActiveNotification", "NSApplicationDidBecomeActiveNotification",
          "NSWindowDidMiniaturizeNotification", "NSWindowDidDeminiaturizeNotification",
          "NSWindowDidEnterFullScreenNotification"}) {
        QTest::newRow(notification) << notification;
    }
}

void tst_MacApplication::nothingClosesForOthers()
{
    QFETCH(QString, notification);
    const TopLevelWindowDeactivator deactivator;
    WindowWithList window;
    post([NSString stringWithUTF8String:qPrintable(notification)], NSApp);
    QCOMPARE(window.box.hides, 0);
    QVERIFY(window.isListOpen());
}

void tst_MacApplication::menuCloses_data()
{
    QTest::addColumn<QString>("notification");
    QTest::newRow("when the application is no longer active")
        << "NSApplicationDidResignActiveNotification";
    QTest::newRow("when a window is minimised") << "NSWindowWillMiniaturizeNotification";
}

void tst_MacApplication::menuCloses()
{
    QFETCH(QString, notification);
    const TopLevelWindowDeactivator deactivator;
    QMenu menu;
    menu.addAction(QStringLiteral("entry"));
    menu.popup(QPoint(10, 10));
    QVERIFY(menu.isVisible());
    post([NSString stringWithUTF8String:qPrintable(notification)], NSApp);
    QTRY_VERIFY(!menu.isVisible());
}

/// Its box gets the call instead.
void tst_MacApplication::menuOfABoxStays()
{
    const TopLevelWindowDeactivator deactivator;
    CountingBox box;
    box.show();
    QMenu menu(&box);
    menu.addAction(QStringLiteral("entry"));
    menu.popup(QPoint(10, 10));
    QVERIFY(menu.isVisible());
    post(NSApplicationDidResignActiveNotification, NSApp);
    QCOMPARE(box.hides, 1);
    QVERIFY(menu.isVisible());
}

void tst_MacApplication::otherWindowsStay()
{
    const TopLevelWindowDeactivator deactivator;
    WindowWithList window;
    QDialog dialog(&window);
    dialog.show();
    window.box.showPopup();
    post(NSApplicationDidResignActiveNotification, NSApp);
    QTRY_VERIFY(!window.isListOpen());
    QVERIFY(window.isVisible());
    QVERIFY(dialog.isVisible());
}

/// Between the show and the raising, the process becomes the active application.
void tst_MacApplication::activate()
{
    RecordingWidget widget;
    WindowActivator::activate(&widget);
    QCOMPARE(calls(),
             (QStringList{"widget shown", "application activateIgnoringOtherApps: YES",
                          "widget raised"}));
    QTRY_VERIFY(widget.isActiveWindow());
    QVERIFY(widget.isVisible());
}

void tst_MacApplication::activateNothing()
{
    WindowActivator::activate(nullptr);
    QCOMPARE(calls(), QStringList());
}

int main(int argc, char** argv)
{
    return runMacTest<tst_MacApplication>(argc, argv);
}

#include "tst_MacApplication.moc"
