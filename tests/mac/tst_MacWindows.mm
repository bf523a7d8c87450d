#include "MacTest.h"

#include "BaseDialog.h"
#include "CommonConstants.h"
#include "GuiUtils.h"
#include "WindowServices.h"

#include <QRegularExpression>
#include <QTimer>

#import <objc/runtime.h>

#include <cstdlib>
#include <functional>
#include <memory>

using namespace VEK_NAMESPACE;

/// What the library's own classes have.
@interface NSObject (OfTheLibrary)
- (id)initWithWindowScreenModeSwitchHandler:(CWindowFullScreenModeSwitchHandler_Abstract*)handler
                                     window:(NSWindow*)window;
- (id)initWithWnd:(NSWindow*)window;
- (void)setWnd:(NSWindow*)window;
- (void)appDidBecomeActive:(NSNotification*)notification;
- (void)appWillResignActive:(NSNotification*)notification;
@end

namespace {

/// Writes down what it is told among what Cocoa is told.
class RecordingHandler final : public CWindowFullScreenModeSwitchHandler_Abstract
{
public:
    explicit RecordingHandler(const QString& name = QStringLiteral("handler"))
        : m_name(name)
    {}

    void onEnterFullScreen() override
    {
        RecordingCocoa::instance().record(m_name + QStringLiteral(" entered"));
        if (onEnter)
            onEnter();
    }
    void onExitFullScreen() override
    {
        RecordingCocoa::instance().record(m_name + QStringLiteral(" left"));
    }

    std::function<void()> onEnter;

private:
    const QString m_name;
};

void post(NSString* name, id sender)
{
    [[NSNotificationCenter defaultCenter] postNotificationName:name object:sender];
}

id valueOf(id object, const char* field)
{
    return object_getIvar(object, class_getInstanceVariable(object_getClass(object), field));
}

/// Runs what has been put off to after the pending events.
bool runPending()
{
    bool ran = false;
    QTimer::singleShot(0, qApp, [&ran] { ran = true; });
    return QTest::qWaitFor([&ran] { return ran; });
}

const QStringList shownInFront = {
    QStringLiteral("CGWindowLevelForKey 10"), QStringLiteral("window setLevel: 8"),
    QStringLiteral("window orderWindow: NSWindowAbove relativeTo: 0")};

const QStringList responderObserves = {
    QStringLiteral("sharedApplication"),
    QStringLiteral("center addObserver: MacOSNSApplicationNotificationResponder"
                   " selector: appDidBecomeActive:"
                   " name: NSApplicationDidBecomeActiveNotification object: RecordingApplication"),
    QStringLiteral(
        "center addObserver: MacOSNSApplicationNotificationResponder"
        " selector: appWillResignActive:"
        " name: NSApplicationWillResignActiveNotification object: RecordingApplication")};

const QStringList responderGoes = {
    QStringLiteral("center removeObserver: MacOSNSApplicationNotificationResponder"),
    QStringLiteral("MacOSNSApplicationNotificationResponder dealloc")};

const QStringList delegateObserves = {
    QStringLiteral("center addObserver: MacOSNSWindowDelegate selector: windowDidEnterFullScreen:"
                   " name: NSWindowDidEnterFullScreenNotification object: window"),
    QStringLiteral("center addObserver: MacOSNSWindowDelegate selector: windowDidExitFullScreen:"
                   " name: NSWindowDidExitFullScreenNotification object: window")};

const QStringList delegateGoes = {QStringLiteral("center removeObserver: MacOSNSWindowDelegate"),
                                  QStringLiteral("MacOSNSWindowDelegate dealloc")};

} // namespace

using Operation = std::function<void(unsigned long long)>;
Q_DECLARE_METATYPE(Operation)
using MakeNumber = std::function<NSNumber*()>;
Q_DECLARE_METATYPE(MakeNumber)

/// One window on a screen, with a view in it.
class tst_MacWindows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void messages_data();
    void messages();
    void noCloseButton_data();
    void noCloseButton();
    void otherBehaviorsStay_data();
    void otherBehaviorsStay();
    void behaviorForExpose_data();
    void behaviorForExpose();
    void fullScreenMode_data();
    void fullScreenMode();
    void displayNumber_data();
    void displayNumber();
    void noDisplayNumber_data();
    void noDisplayNumber();
    void animation_data();
    void animation();

    void classes_data();
    void classes();

    void handlerIsTold();
    void handlerEndsItAll();
    void handlerEndsItselfWhileItIsTold();
    void delegateOwnsNothing();
    void nextCallReleasesTheDelegate_data();
    void nextCallReleasesTheDelegate();
    void releasedDelegateStaysInTheCentre();
    void handlerForNoWindow_data();
    void handlerForNoWindow();

    void floatsWhileActive();
    void responderOfOneWidget();
    void respondersOfTwoWidgets();
    void responderForNoWindow_data();
    void responderForNoWindow();
    void responderKeepsItsWindow_data();
    void responderKeepsItsWindow();
    void responderOwnsNothing();
    void responderWithoutWindow();

    void centredWindowComesToTheFront_data();
    void centredWindowComesToTheFront();
    void centredWindowIsGone();
    void centredTwice();
    void dialogComesUpWithoutAnimation();
    void dialogWithoutWindow_data();
    void dialogWithoutWindow();

private:
    QStringList calls() { return RecordingCocoa::instance().takeCalls(); }
    unsigned long long handle() { return [m_view windowId]; }

    NSAutoreleasePool* m_pool = nil;
    RecordingButton* m_closeButton = nil;
    RecordingWindow* m_window = nil;
    RecordingView* m_view = nil;
    RecordingWindow* m_otherWindow = nil;
    RecordingView* m_otherView = nil;
};

void tst_MacWindows::init()
{
    m_pool = [[NSAutoreleasePool alloc] init];
    RecordingCocoa::instance().clear();
    m_closeButton = [[RecordingButton alloc] initWithName:@"close button"];
    m_window = [[RecordingWindow alloc] initWithName:@"window"];
    m_window->closeButton = m_closeButton;
    m_view = [[RecordingView alloc] init];
    m_view->ownWindow = m_window;
    m_otherWindow = [[RecordingWindow alloc] initWithName:@"other window"];
    m_otherView = [[RecordingView alloc] init];
    m_otherView->ownWindow = m_otherWindow;
}

/// Nobody keeps anything.
void tst_MacWindows::cleanup()
{
    MacOSOnFullScreenModeSwitchHandlerDeleted();
    [m_pool release];
    QCOMPARE(int(liveObservers().size()), 0);
    QCOMPARE(liveCoreObjects(), 0);
    QCOMPARE([m_view retainCount], NSUInteger(1));
    QCOMPARE([m_window retainCount], NSUInteger(1));
    QCOMPARE([m_closeButton retainCount], NSUInteger(1));
    QCOMPARE([m_otherView retainCount], NSUInteger(1));
    QCOMPARE([m_otherWindow retainCount], NSUInteger(1));
    [m_otherView release];
    [m_otherWindow release];
    [m_view release];
    [m_window release];
    [m_closeButton release];
}

void tst_MacWindows::messages_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<QStringList>("messages");

    const auto row = [](const char* name, const Operation& operation, const QStringList& messages) {
        QTest::newRow(name) << operation << messages;
    };
    row("minimise", MacOSMinimizeWindow, {"window miniaturize: itself"});
    row("come back", MacOSDeminituarize, {"window deminiaturize: itself"});
    row("switch full screen", MacOSToggleFullScreenMode, {"window toggleFullScreen: nil"});
    row("allow full screen", [](auto view) { MacOSSetFullscreenCapable(view, nullptr); },
        {"window setCollectionBehavior: 128"});
    row("enable the close button", [](auto view) { MacOSSetClosingWindowEnabled(view, true); },
        {"window standardWindowButton: 0", "close button setEnabled: YES"});
    row("disable the close button", [](auto view) { MacOSSetClosingWindowEnabled(view, false); },
        {"window standardWindowButton: 0", "close button setEnabled: NO"});
    row("enable the close button of a dialog",
        [](auto view) { enableWindowCloseButton(view, true); },
        {"window standardWindowButton: 0", "close button setEnabled: YES"});
    row("disable the close button of a dialog",
        [](auto view) { enableWindowCloseButton(view, false); },
        {"window standardWindowButton: 0", "close button setEnabled: NO"});
    row("in front of all, modal", [](auto view) { MacOSBringToTop(view, true); },
        {"CGWindowLevelForKey 10", "window setLevel: 8",
         "window orderWindow: NSWindowAbove relativeTo: 0"});
    row("in front of all", [](auto view) { MacOSBringToTop(view, false); },
        {"CGWindowLevelForKey 4", "window setLevel: 0",
         "window orderWindow: NSWindowAbove relativeTo: 0"});
    row("behind all, modal", [](auto view) { MacOSBringToBottom(view, true); },
        {"CGWindowLevelForKey 10", "window setLevel: 8",
         "window orderWindow: NSWindowBelow relativeTo: 0"});
    row("behind all", [](auto view) { MacOSBringToBottom(view, false); },
        {"CGWindowLevelForKey 4", "window setLevel: 0",
         "window orderWindow: NSWindowBelow relativeTo: 0"});
    row("managed by the overview",
        [](auto view) {
            RecordingCocoa::instance().versionString = QStringLiteral("12.0.1");
            MacOSSetBehaviorForExpose(view);
        },
        {"window setCollectionBehavior: 4"});
}

void tst_MacWindows::messages()
{
    QFETCH(Operation, operation);
    QFETCH(QStringList, messages);
    operation(handle());
    QCOMPARE(calls(), messages);
    operation(0);
    QCOMPARE(calls(), QStringList());
    m_view->ownWindow = nil;
    operation(handle());
    QCOMPARE(calls(), QStringList());
}

void tst_MacWindows::noCloseButton_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::newRow("of the window services")
        << Operation([](auto view) { MacOSSetClosingWindowEnabled(view, true); });
    QTest::newRow("of a dialog") << Operation(
        [](auto view) { enableWindowCloseButton(view, true); });
}

void tst_MacWindows::noCloseButton()
{
    QFETCH(Operation, operation);
    m_window->closeButton = nil;
    operation(handle());
    QCOMPARE(calls(), QStringList{"window standardWindowButton: 0"});
}

void tst_MacWindows::otherBehaviorsStay_data()
{
    QTest::addColumn<Operation>("operation");
    QTest::addColumn<uint>("before");
    QTest::addColumn<QStringList>("messages");

    const Operation allow = [](auto view) { MacOSSetFullscreenCapable(view, nullptr); };
    QTest::newRow("full screen, with others")
        << allow << 0x105u << QStringList{"window setCollectionBehavior: 389"};
    QTest::newRow("full screen, which is there already")
        << allow << 128u << QStringList{"window setCollectionBehavior: 128"};
    const Operation manage = [](auto view) { MacOSSetBehaviorForExpose(view); };
    QTest::newRow("managed, with others")
        << manage << 0x181u << QStringList{"window setCollectionBehavior: 389"};
    QTest::newRow("managed, which is there already")
        << manage << 4u << QStringList{"window setCollectionBehavior: 4"};
}

void tst_MacWindows::otherBehaviorsStay()
{
    QFETCH(Operation, operation);
    QFETCH(uint, before);
    QFETCH(QStringList, messages);
    RecordingCocoa::instance().versionString = QStringLiteral("10.6.8");
    m_window->behavior = before;
    operation(handle());
    QCOMPARE(calls(), messages);
}

void tst_MacWindows::behaviorForExpose_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<bool>("changes");
    const auto row = [](const char* version, bool changes) {
        QTest::newRow(version) << QString::fromUtf8(version) << changes;
    };
    row("10.6.0", true);
    row("10.6.8 (Build 10K549)", true);
    row("10.5.8", false);
    row("10.10.5", true);
    row("11.6.0", true);
    row("12.0.1", true);
    row("9.9.9", false);
    // The number that isn't there counts as -1, and the minor one is the same.
    row("10.6", false);
    row("11.6", false);
    row("11.7", true);
    // No leading word is skipped.
    row("Version 10.10.5 (Build 14F27)", false);
    row("", false);
}

void tst_MacWindows::behaviorForExpose()
{
    QFETCH(QString, version);
    QFETCH(bool, changes);
    RecordingCocoa::instance().versionString = version;
    MacOSSetBehaviorForExpose(handle());
    QCOMPARE(calls(), changes ? QStringList{"window setCollectionBehavior: 4"} : QStringList());
}

void tst_MacWindows::fullScreenMode_data()
{
    QTest::addColumn<uint>("mask");
    QTest::addColumn<bool>("fullScreen");
    QTest::newRow("full screen") << 0x4000u << true;
    QTest::newRow("full screen, with a title and buttons") << 0x400fu << true;
    QTest::newRow("an ordinary window") << 0x000fu << false;
    QTest::newRow("everything but full screen") << 0xffffbfffu << false;
    QTest::newRow("nothing") << 0u << false;
}

void tst_MacWindows::fullScreenMode()
{
    QFETCH(uint, mask);
    QFETCH(bool, fullScreen);
    m_window->mask = mask;
    QCOMPARE(MacOSIsFullScreenMode(handle()), fullScreen);
    QCOMPARE(MacOSIsFullScreenMode(0), false);
    m_view->ownWindow = nil;
    QCOMPARE(MacOSIsFullScreenMode(handle()), false);
}

void tst_MacWindows::displayNumber_data()
{
    QTest::addColumn<MakeNumber>("number");
    QTest::addColumn<uint>("result");
    const auto row = [](const char* name, const MakeNumber& number, uint result) {
        QTest::newRow(name) << number << result;
    };
    row(
        "a small number", [] { return [NSNumber numberWithInt:5]; }, 5);
    row(
        "zero", [] { return [NSNumber numberWithInt:0]; }, 0);
    row(
        "32 bits", [] { return [NSNumber numberWithUnsignedInt:0xfffffffe]; }, 4294967294);
    row(
        "below zero", [] { return [NSNumber numberWithInt:-1]; }, 4294967295);
    row(
        "more than 32 bits", [] { return [NSNumber numberWithLong:0x1234567800000007]; }, 7);
    row(
        "a fraction of more than 32 bits", [] { return [NSNumber numberWithDouble:4294967303.75]; },
        7);
}

void tst_MacWindows::displayNumber()
{
    QFETCH(MakeNumber, number);
    QFETCH(uint, result);
    RecordingScreen* screen = [[[RecordingScreen alloc] initWithName:@"screen"] autorelease];
    screen->description = [NSDictionary
        dictionaryWithObjectsAndKeys:[NSNumber numberWithInt:99], @"NSDeviceBitsPerSample",
                                     number(), @"NSScreenNumber", nil];
    m_window->ownScreen = screen;
    bool ok = false;
    QCOMPARE(MacOSGetDisplayID(handle(), ok), result);
    QCOMPARE(ok, true);
    QCOMPARE(MacOSGetDisplayID(0, ok), 0u);
    QCOMPARE(ok, false);
    m_view->ownWindow = nil;
    ok = true;
    QCOMPARE(MacOSGetDisplayID(handle(), ok), 0u);
    QCOMPARE(ok, false);
    QCOMPARE([screen retainCount], NSUInteger(1));
}

void tst_MacWindows::noDisplayNumber_data()
{
    QTest::addColumn<bool>("hasScreen");
    QTest::addColumn<bool>("hasDescription");
    QTest::newRow("a window on no screen") << false << false;
    QTest::newRow("a screen without a description") << true << false;
    QTest::newRow("a description without the number") << true << true;
}

void tst_MacWindows::noDisplayNumber()
{
    QFETCH(bool, hasScreen);
    QFETCH(bool, hasDescription);
    RecordingScreen* screen = [[[RecordingScreen alloc] initWithName:@"screen"] autorelease];
    if (hasDescription) {
        screen->description = [NSDictionary dictionaryWithObject:[NSNumber numberWithInt:5]
                                                          forKey:@"NSDeviceBitsPerSample"];
    }
    if (hasScreen)
        m_window->ownScreen = screen;
    bool ok = true;
    QCOMPARE(MacOSGetDisplayID(handle(), ok), 0u);
    QCOMPARE(ok, false);
}

void tst_MacWindows::animation_data()
{
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("with") << true << QStringList{"window setAnimationBehavior: 0"};
    QTest::newRow("without") << false << QStringList{"window setAnimationBehavior: 2"};
}

void tst_MacWindows::animation()
{
    QFETCH(bool, enabled);
    QFETCH(QStringList, messages);
    RecordingCocoa& cocoa = RecordingCocoa::instance();
    const QWidget widget;
    cocoa.views.insert(&widget, m_view);
    MacOSEnableWindowAnimation(widget, enabled);
    QCOMPARE(calls(), messages);
    m_view->ownWindow = nil;
    MacOSEnableWindowAnimation(widget, enabled);
    QCOMPARE(calls(), QStringList());
    cocoa.views.clear();
    cocoa.widgetsHaveViews = false;
    MacOSEnableWindowAnimation(widget, enabled);
    QCOMPARE(calls(), QStringList());
}

void tst_MacWindows::classes_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QStringList>("fields");
    QTest::addColumn<QStringList>("methods");
    QTest::newRow("the delegate")
        << "MacOSNSWindowDelegate"
        << QStringList{"m_win NSWindow", "m_handler CWindowFullScreenModeSwitchHandler_Abstract"}
        << QStringList{"initWithWindowScreenModeSwitchHandler:window:", "windowDidEnterFullScreen:",
                       "windowDidExitFullScreen:"};
    QTest::newRow("the responder")
        << "MacOSNSApplicationNotificationResponder" << QStringList{"m_win NSWindow"}
        << QStringList{"appDidBecomeActive:", "appWillResignActive:", "dealloc",
                       "initWithWnd:", "setWnd:"};
}

void tst_MacWindows::classes()
{
    QFETCH(QString, name);
    QFETCH(QStringList, fields);
    QFETCH(QStringList, methods);
    const Class theClass = NSClassFromString([NSString stringWithUTF8String:qPrintable(name)]);
    QVERIFY(theClass);
    QCOMPARE([theClass superclass], [NSObject class]);

    unsigned count = 0;
    QStringList found;
    Ivar* ivars = class_copyIvarList(theClass, &count);
    for (unsigned i = 0; i < count; ++i) {
        // @"CLASS", or ^{CLASS=...}
        QString type = QString::fromUtf8(ivar_getTypeEncoding(ivars[i])).mid(2);
        type.truncate(type.indexOf(QRegularExpression(QStringLiteral("[^A-Za-z_]"))));
        found << QString::fromUtf8(ivar_getName(ivars[i])) + QLatin1Char(' ') + type;
    }
    std::free(ivars);
    QCOMPARE(found, fields);

    found.clear();
    Method* own = class_copyMethodList(theClass, &count);
    for (unsigned i = 0; i < count; ++i)
        found << QString::fromUtf8(sel_getName(method_getName(own[i])));
    std::free(own);
    found.sort();
    QCOMPARE(found, methods);
}

void tst_MacWindows::handlerIsTold()
{
    RecordingHandler handler;
    MacOSSetFullscreenCapable(handle(), &handler);
    QCOMPARE(calls(), QStringList{"window setCollectionBehavior: 128"} + delegateObserves);

    post(NSWindowDidEnterFullScreenNotification, m_window);
    QCOMPARE(calls(), QStringList{"handler entered"});
    post(NSWindowDidExitFullScreenNotification, m_window);
    QCOMPARE(calls(), QStringList{"handler left"});

    for (NSString *name in [NSArray arrayWithObjects:NSWindowDidEnterFullScreenNotification,
                                                     NSWindowDidExitFullScreenNotification, nil]) {
        post(name, m_otherWindow);
        post(name, nil);
    }
    QCOMPARE(calls(), QStringList());
}

void tst_MacWindows::handlerEndsItAll()
{
    RecordingHandler handler;
    MacOSSetFullscreenCapable(handle(), &handler);
    calls();
    MacOSOnFullScreenModeSwitchHandlerDeleted();
    QCOMPARE(calls(), delegateGoes);
    post(NSWindowDidEnterFullScreenNotification, m_window);
    post(NSWindowDidExitFullScreenNotification, m_window);
    QCOMPARE(calls(), QStringList());
    MacOSOnFullScreenModeSwitchHandlerDeleted();
    QCOMPARE(calls(), QStringList());

    // And another one may follow.
    RecordingHandler next(QStringLiteral("next"));
    MacOSSetFullscreenCapable(handle(), &next);
    calls();
    post(NSWindowDidEnterFullScreenNotification, m_window);
    QCOMPARE(calls(), QStringList{"next entered"});
}

void tst_MacWindows::handlerEndsItselfWhileItIsTold()
{
    RecordingHandler handler;
    handler.onEnter = [] { MacOSOnFullScreenModeSwitchHandlerDeleted(); };
    MacOSSetFullscreenCapable(handle(), &handler);
    calls();
    post(NSWindowDidEnterFullScreenNotification, m_window);
    QCOMPARE(calls(), QStringList{"handler entered"} + delegateGoes);
    post(NSWindowDidExitFullScreenNotification, m_window);
    QCOMPARE(calls(), QStringList());
}

void tst_MacWindows::delegateOwnsNothing()
{
    RecordingHandler handler;
    MacOSSetFullscreenCapable(handle(), &handler);
    QCOMPARE(int(liveObservers().size()), 1);
    const id delegate = liveObservers().constFirst();
    QCOMPARE([delegate retainCount], NSUInteger(1));
    QCOMPARE([m_window retainCount], NSUInteger(1));
    QCOMPARE([m_view retainCount], NSUInteger(1));
    QCOMPARE(valueOf(delegate, "m_win"), id(m_window));
    QCOMPARE((void*)valueOf(delegate, "m_handler"),
             (void*)static_cast<CWindowFullScreenModeSwitchHandler_Abstract*>(&handler));
}

using NextCall = std::function<void(RecordingView*, CWindowFullScreenModeSwitchHandler_Abstract*)>;
Q_DECLARE_METATYPE(NextCall)

void tst_MacWindows::nextCallReleasesTheDelegate_data()
{
    QTest::addColumn<NextCall>("nextCall");
    QTest::addColumn<QStringList>("messages");
    QTest::addColumn<int>("observers");
    const auto row = [](const char* name, const NextCall& nextCall, const QStringList& messages,
                        int observers) {
        QTest::newRow(name) << nextCall << messages << observers;
    };
    const QString gone = QStringLiteral("MacOSNSWindowDelegate dealloc");
    row(
        "for another handler",
        [](RecordingView* view, auto handler) {
            MacOSSetFullscreenCapable([view windowId], handler);
        },
        QStringList{gone, "window setCollectionBehavior: 128"} + delegateObserves, 1);
    row(
        "for no handler",
        [](RecordingView* view, auto) { MacOSSetFullscreenCapable([view windowId], nullptr); },
        {gone, "window setCollectionBehavior: 128"}, 0);
    row(
        "for no view", [](RecordingView*, auto handler) { MacOSSetFullscreenCapable(0, handler); },
        {gone}, 0);
    row(
        "for a view in no window",
        [](RecordingView* view, auto handler) {
            view->ownWindow = nil;
            MacOSSetFullscreenCapable([view windowId], handler);
        },
        {gone}, 0);
    row(
        "for nothing", [](RecordingView*, auto) { MacOSSetFullscreenCapable(0, nullptr); }, {gone},
        0);
}

/// Before anything else, and without a word to the centre.
void tst_MacWindows::nextCallReleasesTheDelegate()
{
    QFETCH(NextCall, nextCall);
    QFETCH(QStringList, messages);
    QFETCH(int, observers);
    RecordingHandler handler;
    MacOSSetFullscreenCapable(handle(), &handler);
    // It would be told after its end.
    [[NSNotificationCenter defaultCenter] removeObserver:liveObservers().constFirst()];
    calls();

    RecordingHandler next(QStringLiteral("next"));
    nextCall(m_view, &next);
    QCOMPARE(calls(), messages);
    QCOMPARE(int(liveObservers().size()), observers);
    post(NSWindowDidEnterFullScreenNotification, m_window);
    QCOMPARE(calls(), observers ? QStringList{"next entered"} : QStringList());
}

void tst_MacWindows::releasedDelegateStaysInTheCentre()
{
    RecordingHandler handler;
    MacOSSetFullscreenCapable(handle(), &handler);
    const id delegate = [liveObservers().constFirst() retain];
    MacOSSetFullscreenCapable(0, nullptr);
    QCOMPARE([delegate retainCount], NSUInteger(1));
    calls();
    post(NSWindowDidEnterFullScreenNotification, m_window);
    QCOMPARE(calls(), QStringList{"handler entered"});

    // Nobody knows it any more.
    MacOSOnFullScreenModeSwitchHandlerDeleted();
    QCOMPARE(calls(), QStringList());
    [[NSNotificationCenter defaultCenter] removeObserver:delegate];
    [delegate release];
}

void tst_MacWindows::handlerForNoWindow_data()
{
    QTest::addColumn<bool>("hasView");
    QTest::newRow("no view") << false;
    QTest::newRow("a view in no window") << true;
}

void tst_MacWindows::handlerForNoWindow()
{
    QFETCH(bool, hasView);
    m_view->ownWindow = nil;
    RecordingHandler handler;
    MacOSSetFullscreenCapable(hasView ? handle() : 0, &handler);
    QCOMPARE(calls(), QStringList());
    QCOMPARE(int(liveObservers().size()), 0);
    MacOSOnFullScreenModeSwitchHandlerDeleted();
    QCOMPARE(calls(), QStringList());
}

void tst_MacWindows::floatsWhileActive()
{
    const QWidget widget;
    RecordingCocoa::instance().views.insert(&widget, m_view);
    MacOSSetupNSApplicationNotificationResponder(widget);
    QCOMPARE(calls(), responderObserves);

    post(NSApplicationDidBecomeActiveNotification, NSApp);
    QCOMPARE(calls(), (QStringList{"CGWindowLevelForKey 5", "window setLevel: 3"}));
    post(NSApplicationWillResignActiveNotification, NSApp);
    QCOMPARE(calls(), (QStringList{"CGWindowLevelForKey 4", "window setLevel: 0"}));

    post(NSApplicationWillBecomeActiveNotification, NSApp);
    post(NSApplicationDidResignActiveNotification, NSApp);
    post(NSApplicationDidBecomeActiveNotification, nil);
    post(NSApplicationDidBecomeActiveNotification, m_window);
    post(NSApplicationWillResignActiveNotification, nil);
    post(NSApplicationWillResignActiveNotification, m_window);
    QCOMPARE(calls(), QStringList());

    MacOSRemoveNSApplicationNotificationResponder(widget);
    QCOMPARE(calls(), responderGoes);
    post(NSApplicationDidBecomeActiveNotification, NSApp);
    post(NSApplicationWillResignActiveNotification, NSApp);
    QCOMPARE(calls(), QStringList());
    MacOSRemoveNSApplicationNotificationResponder(widget);
    QCOMPARE(calls(), QStringList());
}

void tst_MacWindows::responderOfOneWidget()
{
    const QWidget widget;
    RecordingCocoa::instance().views.insert(&widget, m_view);
    MacOSSetupNSApplicationNotificationResponder(widget);
    const QList<id> first = liveObservers();
    calls();
    RecordingCocoa::instance().views.insert(&widget, m_otherView);
    MacOSSetupNSApplicationNotificationResponder(widget);
    QCOMPARE(calls(), QStringList());
    QCOMPARE(liveObservers(), first);

    post(NSApplicationDidBecomeActiveNotification, NSApp);
    QCOMPARE(calls(), (QStringList{"CGWindowLevelForKey 5", "other window setLevel: 3"}));
    post(NSApplicationWillResignActiveNotification, NSApp);
    QCOMPARE(calls(), (QStringList{"CGWindowLevelForKey 4", "other window setLevel: 0"}));

    MacOSRemoveNSApplicationNotificationResponder(widget);
    QCOMPARE(calls(), responderGoes);
    // It may come back.
    MacOSSetupNSApplicationNotificationResponder(widget);
    QCOMPARE(calls(), responderObserves);
    MacOSRemoveNSApplicationNotificationResponder(widget);
    QCOMPARE(calls(), responderGoes);
}

void tst_MacWindows::respondersOfTwoWidgets()
{
    const QWidget widget;
    const QWidget otherWidget;
    RecordingCocoa::instance().views.insert(&widget, m_view);
    RecordingCocoa::instance().views.insert(&otherWidget, m_otherView);
    MacOSSetupNSApplicationNotificationResponder(widget);
    MacOSSetupNSApplicationNotificationResponder(otherWidget);
    QCOMPARE(calls(), responderObserves + responderObserves);
    QCOMPARE(int(liveObservers().size()), 2);
    MacOSRemoveNSApplicationNotificationResponder(widget);
    QCOMPARE(calls(), responderGoes);
    post(NSApplicationDidBecomeActiveNotification, NSApp);
    QCOMPARE(calls(), (QStringList{"CGWindowLevelForKey 5", "other window setLevel: 3"}));
    MacOSRemoveNSApplicationNotificationResponder(otherWidget);
    QCOMPARE(calls(), responderGoes);
}

void tst_MacWindows::responderForNoWindow_data()
{
    handlerForNoWindow_data();
}

void tst_MacWindows::responderForNoWindow()
{
    QFETCH(bool, hasView);
    const QWidget widget;
    m_view->ownWindow = nil;
    RecordingCocoa::instance().widgetsHaveViews = false;
    if (hasView)
        RecordingCocoa::instance().views.insert(&widget, m_view);
    MacOSSetupNSApplicationNotificationResponder(widget);
    QCOMPARE(calls(), QStringList());
    MacOSRemoveNSApplicationNotificationResponder(widget);
    QCOMPARE(calls(), QStringList());
}

void tst_MacWindows::responderKeepsItsWindow_data()
{
    handlerForNoWindow_data();
}

/// A widget that has lost its window says nothing new.
void tst_MacWindows::responderKeepsItsWindow()
{
    QFETCH(bool, hasView);
    const QWidget widget;
    RecordingCocoa::instance().widgetsHaveViews = false;
    RecordingCocoa::instance().views.insert(&widget, m_view);
    MacOSSetupNSApplicationNotificationResponder(widget);
    m_otherView->ownWindow = nil;
    if (hasView)
        RecordingCocoa::instance().views.insert(&widget, m_otherView);
    else
        RecordingCocoa::instance().views.clear();
    calls();
    MacOSSetupNSApplicationNotificationResponder(widget);
    QCOMPARE(calls(), QStringList());
    post(NSApplicationDidBecomeActiveNotification, NSApp);
    QCOMPARE(calls(), (QStringList{"CGWindowLevelForKey 5", "window setLevel: 3"}));
    MacOSRemoveNSApplicationNotificationResponder(widget);
}

void tst_MacWindows::responderOwnsNothing()
{
    const QWidget widget;
    RecordingCocoa::instance().views.insert(&widget, m_view);
    MacOSSetupNSApplicationNotificationResponder(widget);
    const id responder = liveObservers().constFirst();
    QCOMPARE([responder retainCount], NSUInteger(1));
    QCOMPARE([m_window retainCount], NSUInteger(1));
    QCOMPARE(valueOf(responder, "m_win"), id(m_window));

    RecordingCocoa::instance().views.insert(&widget, m_otherView);
    MacOSSetupNSApplicationNotificationResponder(widget);
    QCOMPARE([responder retainCount], NSUInteger(1));
    QCOMPARE([m_window retainCount], NSUInteger(1));
    QCOMPARE([m_otherWindow retainCount], NSUInteger(1));
    QCOMPARE(valueOf(responder, "m_win"), id(m_otherWindow));
    MacOSRemoveNSApplicationNotificationResponder(widget);
}

void tst_MacWindows::responderWithoutWindow()
{
    const Class theClass = NSClassFromString(@"MacOSNSApplicationNotificationResponder");
    const id responder = [[theClass alloc] initWithWnd:nil];
    QCOMPARE(calls(), responderObserves);
    post(NSApplicationDidBecomeActiveNotification, NSApp);
    post(NSApplicationWillResignActiveNotification, NSApp);
    QCOMPARE(calls(), QStringList());
    [responder setWnd:(NSWindow*)m_window];
    [responder appDidBecomeActive:nil];
    QCOMPARE(calls(), (QStringList{"CGWindowLevelForKey 5", "window setLevel: 3"}));
    [responder appWillResignActive:nil];
    QCOMPARE(calls(), (QStringList{"CGWindowLevelForKey 4", "window setLevel: 0"}));
    [responder setWnd:nil];
    [responder appDidBecomeActive:nil];
    QCOMPARE(calls(), QStringList());
    [responder release];
    QCOMPARE(calls(), responderGoes);
}

void tst_MacWindows::centredWindowComesToTheFront_data()
{
    QTest::addColumn<bool>("hasView");
    QTest::addColumn<bool>("hasWindow");
    QTest::addColumn<QStringList>("messages");
    QTest::newRow("a window") << true << true << shownInFront;
    QTest::newRow("a view in no window") << true << false << QStringList();
    QTest::newRow("no view") << false << false << QStringList();
}

void tst_MacWindows::centredWindowComesToTheFront()
{
    QFETCH(bool, hasView);
    QFETCH(bool, hasWindow);
    QFETCH(QStringList, messages);
    QWidget widget;
    RecordingCocoa::instance().widgetsHaveViews = false;
    if (hasView)
        RecordingCocoa::instance().views.insert(&widget, m_view);
    if (!hasWindow)
        m_view->ownWindow = nil;
    moveWindowToScreenCenter(&widget, nullptr);
    QCOMPARE(calls(), QStringList());
    QVERIFY(runPending());
    QCOMPARE(calls(), messages);
}

void tst_MacWindows::centredWindowIsGone()
{
    auto widget = std::make_unique<QWidget>();
    RecordingCocoa::instance().views.insert(widget.get(), m_view);
    moveWindowToScreenCenter(widget.get(), nullptr);
    widget.reset();
    QVERIFY(runPending());
    QCOMPARE(calls(), QStringList());
}

void tst_MacWindows::centredTwice()
{
    QWidget widget;
    RecordingCocoa::instance().views.insert(&widget, m_view);
    moveWindowToScreenCenter(&widget, nullptr);
    moveWindowToScreenCenter(&widget, nullptr);
    QVERIFY(runPending());
    QCOMPARE(calls(), shownInFront + shownInFront);
}

void tst_MacWindows::dialogComesUpWithoutAnimation()
{
    CBaseDialog dialog;
    RecordingCocoa::instance().views.insert(&dialog, m_view);
    dialog.show();
    QCOMPARE(calls(), QStringList{"window setAnimationBehavior: 2"});
    QVERIFY(runPending());
    QCOMPARE(calls(), shownInFront);

    dialog.hide();
    dialog.show();
    QVERIFY(runPending());
    QCOMPARE(calls(), QStringList());
}

void tst_MacWindows::dialogWithoutWindow_data()
{
    handlerForNoWindow_data();
}

void tst_MacWindows::dialogWithoutWindow()
{
    QFETCH(bool, hasView);
    CBaseDialog dialog;
    m_view->ownWindow = nil;
    RecordingCocoa::instance().widgetsHaveViews = false;
    if (hasView)
        RecordingCocoa::instance().views.insert(&dialog, m_view);
    dialog.show();
    QVERIFY(dialog.isVisible());
    QVERIFY(runPending());
    QCOMPARE(calls(), QStringList());
}

int main(int argc, char** argv)
{
    return runMacTest<tst_MacWindows>(argc, argv);
}

#include "tst_MacWindows.moc"
