#include "WindowServices.h"

#include "MessageCounter.h"
#include "OtherApplication.h"
#include "WindowProperties.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTest>
#include <QWindow>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace {

class CountingHandler final : public CWindowFullScreenModeSwitchHandler_Abstract
{
public:
    void onEnterFullScreen() override
    {
        ++enters;
        if (onSwitch)
            onSwitch();
    }
    void onExitFullScreen() override
    {
        ++exits;
        if (onSwitch)
            onSwitch();
    }

    int enters = 0;
    int exits = 0;
    std::function<void()> onSwitch;
};

struct Operation
{
    const char* name;
    std::function<void(unsigned long long)> call;
};

/// All operations on a window's number.
std::vector<Operation> operations(CWindowFullScreenModeSwitchHandler_Abstract* handler = nullptr)
{
    return {
        {"minimise", MacOSMinimizeWindow},
        {"restore", MacOSDeminituarize},
        {"ask for full screen", [](unsigned long long id) { MacOSIsFullScreenMode(id); }},
        {"toggle full screen", MacOSToggleFullScreenMode},
        {"observe full screen",
         [handler](unsigned long long id) { MacOSSetFullscreenCapable(id, handler); }},
        {"disable closing", [](unsigned long long id) { MacOSSetClosingWindowEnabled(id, false); }},
        {"enable closing", [](unsigned long long id) { MacOSSetClosingWindowEnabled(id, true); }},
        {"to the top", [](unsigned long long id) { MacOSBringToTop(id, false); }},
        {"to the top as modal", [](unsigned long long id) { MacOSBringToTop(id, true); }},
        {"to the bottom", [](unsigned long long id) { MacOSBringToBottom(id, false); }},
        {"to the bottom as modal", [](unsigned long long id) { MacOSBringToBottom(id, true); }},
        {"manage in the overview", MacOSSetBehaviorForExpose},
        {"ask for the display",
         [](unsigned long long id) {
             bool ok = false;
             MacOSGetDisplayID(id, ok);
         }},
    };
}

/// Waits without an event loop.
bool becomesTrue(const std::function<bool()>& condition)
{
    QElapsedTimer timer;
    timer.start();
    while (!condition()) {
        if (timer.hasExpired(5000))
            return false;
    }
    return true;
}

} // namespace

/// What the window manager and other programs see of the operations on windows.
class tst_WindowServices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void minimize();
    void minimizeByChild();
    void minimizedByUser();
    void hiddenWindowStaysHidden();
    void requestsDontWaitForTheEventLoop();

    void fullScreenByUs();
    void fullScreenByWindowManager();
    void fullScreenWhileMinimized();
    void fullScreenBeforeItIsShown();
    void fullScreenWithoutHandler();
    void fullScreenOfAnotherWindow();
    void fullScreenHandlerReplaced();
    void fullScreenHandlerDeleted();
    void fullScreenHandlerEndsItself();
    void fullScreenWindowDies();

    void topOfTheModalLevel();
    void topOfTheNormalLevel();
    void bottomOfTheModalLevel();
    void bottomOfTheNormalLevel();
    void modalIsNoLongerBelow();
    void levelStaysWhileHidden();
    void levelBeforeItIsShown();
    void normalLevelWhileHidden();

    void closeButton();
    void closeButtonOfARaisedWindow();
    void aLevelThatNewFlagsCostComesBack();
    void raisedWithoutCloseButton();
    void flagsOfTheProgramStay();
    void closeButtonThatTheProgramBroughtBack();
    void displayId();
    void displayIdOfAChild();
    void noDisplayId();
    void nothingToDo();
    void unknownWindow_data();
    void unknownWindow();

    void floatsWhileActive();
    void floatingWindowReplaced();
    void floatingRemoved();

private:
    std::optional<MessageCounter> m_messages;
};

void tst_WindowServices::initTestCase()
{
    QApplication::setQuitOnLastWindowClosed(false);
}

void tst_WindowServices::init()
{
    // Qt asks for its place in a frame that the window manager has just taken away.
    m_messages.emplace({"TranslateCoords"});
}

void tst_WindowServices::cleanup()
{
    MacOSOnFullScreenModeSwitchHandlerDeleted();
    QTRY_VERIFY(stacking().isEmpty());
    const int messages = m_messages->count();
    m_messages.reset();
    QCOMPARE(messages, 0);
}

void tst_WindowServices::minimize()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    MacOSDeminituarize(id); // it isn't
    QCOMPARE(managerState(id), QStringLiteral("Normal"));

    MacOSMinimizeWindow(id);
    QTRY_VERIFY(hasState(id, "HIDDEN"));
    QCOMPARE(managerState(id), QStringLiteral("Iconic"));
    QTRY_COMPARE(mapState(id), QStringLiteral("IsUnMapped"));
    QTRY_VERIFY(window.isMinimized());
    MacOSMinimizeWindow(id); // it already is
    QCOMPARE(managerState(id), QStringLiteral("Iconic"));

    MacOSDeminituarize(id);
    QTRY_COMPARE(managerState(id), QStringLiteral("Normal"));
    QVERIFY(!hasState(id, "HIDDEN"));
    QTRY_COMPARE(mapState(id), QStringLiteral("IsViewable"));
    QTRY_VERIFY(!window.isMinimized());
    QCOMPARE(window.winId(), id);
}

/// The handle of any widget stands for its window.
void tst_WindowServices::minimizeByChild()
{
    PlainWindow window;
    QWidget child(&window);
    const WId childId = child.winId();
    QVERIFY(window.showManaged());
    MacOSMinimizeWindow(childId);
    QTRY_VERIFY(hasState(window.winId(), "HIDDEN"));
    MacOSDeminituarize(childId);
    QTRY_VERIFY(!hasState(window.winId(), "HIDDEN"));
}

void tst_WindowServices::minimizedByUser()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    Taskbar taskbar;
    taskbar.requestMinimizing(window.winId());
    QTRY_VERIFY(window.isMinimized());
    MacOSDeminituarize(window.winId());
    QTRY_VERIFY(!window.isMinimized());
    QTRY_COMPARE(mapState(window.winId()), QStringLiteral("IsViewable"));
}

void tst_WindowServices::hiddenWindowStaysHidden()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    window.hide();
    QTRY_VERIFY(!isManaged(window));

    const auto all = operations();
    for (const Operation& operation : all)
        operation.call(id);
    // The window manager deals with requests one after the other.
    PlainWindow other;
    QVERIFY(other.showManaged());
    QCOMPARE(stacking(), QList<WId>({other.winId()}));
    QCOMPARE(mapState(id), QStringLiteral("IsUnMapped"));
    QVERIFY(!window.isVisible());
}

/// They reach the window manager while this thread is busy.
void tst_WindowServices::requestsDontWaitForTheEventLoop()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    PlainWindow other;
    QVERIFY(other.showManaged());
    const WId id = window.winId();
    QTRY_COMPARE(focusedWindow(), other.winId());

    MacOSBringToTop(id, false);
    QVERIFY(becomesTrue([&] { return stacking() == QList<WId>({other.winId(), id}); }));
    MacOSBringToBottom(id, false);
    QVERIFY(becomesTrue([&] { return stacking() == QList<WId>({id, other.winId()}); }));
    MacOSBringToTop(id, true);
    QVERIFY(becomesTrue([id] { return isAbove(id); }));
    MacOSBringToTop(id, false);
    QVERIFY(becomesTrue([id] { return !isAbove(id); }));
    MacOSSetClosingWindowEnabled(id, false);
    QVERIFY(becomesTrue([id] { return !hasCloseFunction(id); }));
    MacOSSetClosingWindowEnabled(id, true);
    QVERIFY(becomesTrue([id] { return hasCloseFunction(id); }));
    MacOSMinimizeWindow(id);
    QVERIFY(becomesTrue([id] { return hasState(id, "HIDDEN"); }));
    MacOSDeminituarize(id);
    QVERIFY(becomesTrue([id] { return !hasState(id, "HIDDEN"); }));
}

void tst_WindowServices::fullScreenByUs()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    const QRect geometry = window.geometry();
    CountingHandler handler;
    MacOSSetFullscreenCapable(id, &handler);
    QVERIFY(!MacOSIsFullScreenMode(id));

    for (int i = 1; i <= 2; ++i) {
        MacOSToggleFullScreenMode(id);
        QTRY_VERIFY(hasState(id, "FULLSCREEN"));
        QTRY_COMPARE(window.geometry(), QRect(0, 0, 1600, 1200));
        QVERIFY(MacOSIsFullScreenMode(id));
        QTRY_COMPARE(handler.enters, i);
        QCOMPARE(handler.exits, i - 1);

        MacOSToggleFullScreenMode(id);
        QTRY_VERIFY(!hasState(id, "FULLSCREEN"));
        QTRY_COMPARE(window.geometry(), geometry);
        QVERIFY(!MacOSIsFullScreenMode(id));
        QTRY_COMPARE(handler.exits, i);
        QCOMPARE(handler.enters, i);
    }
    QCOMPARE(window.winId(), id);
}

void tst_WindowServices::fullScreenByWindowManager()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    CountingHandler handler;
    MacOSSetFullscreenCapable(id, &handler);
    Taskbar taskbar;
    for (int i = 1; i <= 2; ++i) {
        taskbar.requestState(id, "FULLSCREEN", true);
        QTRY_VERIFY(MacOSIsFullScreenMode(id));
        QTRY_COMPARE(window.geometry(), QRect(0, 0, 1600, 1200));
        QTRY_COMPARE(handler.enters, i);
        QCOMPARE(handler.exits, i - 1);

        taskbar.requestState(id, "FULLSCREEN", false);
        QTRY_VERIFY(!MacOSIsFullScreenMode(id));
        QTRY_COMPARE(window.geometry(), QRect(100, 100, 200, 100));
        QTRY_COMPARE(handler.exits, i);
        QCOMPARE(handler.enters, i);
    }

    // What one side has begun the other may end.
    taskbar.requestState(id, "FULLSCREEN", true);
    QTRY_COMPARE(handler.enters, 3);
    MacOSToggleFullScreenMode(id);
    QTRY_VERIFY(!hasState(id, "FULLSCREEN"));
    QTRY_COMPARE(handler.exits, 3);
}

/// A window that is minimised meanwhile has neither left full screen nor entered it again.
void tst_WindowServices::fullScreenWhileMinimized()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    CountingHandler handler;
    MacOSSetFullscreenCapable(id, &handler);
    MacOSToggleFullScreenMode(id);
    QTRY_VERIFY(hasState(id, "FULLSCREEN"));
    QTRY_COMPARE(handler.enters, 1);
    MacOSMinimizeWindow(id);
    QTRY_VERIFY(window.isMinimized());
    MacOSDeminituarize(id);
    QTRY_VERIFY(!window.isMinimized());
    QTRY_COMPARE(mapState(id), QStringLiteral("IsViewable"));
    QVERIFY(hasState(id, "FULLSCREEN"));
    QCOMPARE(handler.enters, 1);
    QCOMPARE(handler.exits, 0);
}

void tst_WindowServices::fullScreenBeforeItIsShown()
{
    PlainWindow window;
    const WId id = window.winId();
    CountingHandler handler;
    MacOSSetFullscreenCapable(id, &handler);
    MacOSToggleFullScreenMode(id);
    QVERIFY(MacOSIsFullScreenMode(id));
    QVERIFY(window.showManaged());
    QTRY_VERIFY(hasState(id, "FULLSCREEN"));
    QTRY_COMPARE(window.geometry(), QRect(0, 0, 1600, 1200));
    QCOMPARE(handler.enters, 1);
    QCOMPARE(handler.exits, 0);
}

void tst_WindowServices::fullScreenWithoutHandler()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    CountingHandler old;
    MacOSSetFullscreenCapable(id, &old);
    MacOSSetFullscreenCapable(id, nullptr);
    MacOSToggleFullScreenMode(id);
    QTRY_VERIFY(hasState(id, "FULLSCREEN"));
    QTRY_COMPARE(window.geometry(), QRect(0, 0, 1600, 1200));
    QCOMPARE(old.enters, 0);
}

void tst_WindowServices::fullScreenOfAnotherWindow()
{
    PlainWindow first;
    QVERIFY(first.showManaged());
    PlainWindow second;
    QVERIFY(second.showManaged());
    CountingHandler handler;
    MacOSSetFullscreenCapable(first.winId(), &handler);
    MacOSSetFullscreenCapable(second.winId(), &handler);
    MacOSToggleFullScreenMode(first.winId());
    QTRY_VERIFY(hasState(first.winId(), "FULLSCREEN"));
    QTRY_COMPARE(first.geometry(), QRect(0, 0, 1600, 1200));
    QCOMPARE(handler.enters, 0);
    MacOSToggleFullScreenMode(second.winId());
    QTRY_COMPARE(handler.enters, 1);
    QVERIFY(MacOSIsFullScreenMode(first.winId()));
}

void tst_WindowServices::fullScreenHandlerReplaced()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    CountingHandler first;
    CountingHandler second;
    MacOSSetFullscreenCapable(window.winId(), &first);
    MacOSToggleFullScreenMode(window.winId());
    QTRY_VERIFY(hasState(window.winId(), "FULLSCREEN"));
    QTRY_COMPARE(first.enters, 1);

    // The new one is told of what happens from now on.
    MacOSOnFullScreenModeSwitchHandlerDeleted();
    MacOSSetFullscreenCapable(window.winId(), &second);
    MacOSToggleFullScreenMode(window.winId());
    QTRY_VERIFY(!hasState(window.winId(), "FULLSCREEN"));
    QTRY_COMPARE(second.exits, 1);
    QCOMPARE(second.enters, 0);
    QCOMPARE(first.exits, 0);
}

void tst_WindowServices::fullScreenHandlerDeleted()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    CountingHandler handler;
    MacOSSetFullscreenCapable(window.winId(), &handler);
    MacOSOnFullScreenModeSwitchHandlerDeleted();
    MacOSToggleFullScreenMode(window.winId());
    QTRY_VERIFY(hasState(window.winId(), "FULLSCREEN"));
    QTRY_COMPARE(window.geometry(), QRect(0, 0, 1600, 1200));
    QCOMPARE(handler.enters, 0);
    MacOSOnFullScreenModeSwitchHandlerDeleted();
}

void tst_WindowServices::fullScreenHandlerEndsItself()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    auto handler = std::make_unique<CountingHandler>();
    int switches = 0;
    handler->onSwitch = [&] {
        ++switches;
        MacOSOnFullScreenModeSwitchHandlerDeleted();
    };
    MacOSSetFullscreenCapable(window.winId(), handler.get());
    MacOSToggleFullScreenMode(window.winId());
    QTRY_COMPARE(switches, 1);
    handler.reset();
    MacOSToggleFullScreenMode(window.winId());
    QTRY_COMPARE(window.geometry(), QRect(100, 100, 200, 100));
    QCOMPARE(switches, 1);
}

void tst_WindowServices::fullScreenWindowDies()
{
    CountingHandler handler;
    {
        PlainWindow window;
        QVERIFY(window.showManaged());
        MacOSSetFullscreenCapable(window.winId(), &handler);
    }
    MacOSOnFullScreenModeSwitchHandlerDeleted();
    QCOMPARE(handler.enters + handler.exits, 0);

    PlainWindow next;
    QVERIFY(next.showManaged());
    MacOSSetFullscreenCapable(next.winId(), &handler);
    MacOSToggleFullScreenMode(next.winId());
    QTRY_COMPARE(handler.enters, 1);
}

void tst_WindowServices::topOfTheModalLevel()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    PlainWindow raised;
    QVERIFY(raised.showManaged());
    PlainWindow other;
    QVERIFY(other.showManaged());
    MacOSBringToTop(raised.winId(), true);
    QTRY_COMPARE(stacking(), QList<WId>({window.winId(), other.winId(), raised.winId()}));

    MacOSBringToTop(window.winId(), true);
    QTRY_COMPARE(stacking(), QList<WId>({other.winId(), raised.winId(), window.winId()}));
    QVERIFY(isAbove(window.winId()));
    QVERIFY(isAbove(raised.winId()));
    QVERIFY(!isAbove(other.winId()));
    other.raise();
    PlainWindow late;
    QVERIFY(late.showManaged());
    late.raise();
    QTRY_COMPARE(stacking(),
                 QList<WId>({other.winId(), late.winId(), raised.winId(), window.winId()}));
}

void tst_WindowServices::topOfTheNormalLevel()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    PlainWindow raised;
    QVERIFY(raised.showManaged());
    PlainWindow other;
    QVERIFY(other.showManaged());
    MacOSBringToTop(raised.winId(), true);
    MacOSBringToTop(window.winId(), false);
    QTRY_COMPARE(stacking(), QList<WId>({other.winId(), window.winId(), raised.winId()}));
    QVERIFY(!isAbove(window.winId()));

    // Back from the modal level, and from where another program has put it.
    MacOSBringToTop(raised.winId(), false);
    QTRY_VERIFY(!isAbove(raised.winId()));
    other.raise();
    QTRY_COMPARE(stacking(), QList<WId>({window.winId(), raised.winId(), other.winId()}));
    Taskbar taskbar;
    taskbar.requestState(window.winId(), "BELOW", true);
    QTRY_VERIFY(hasState(window.winId(), "BELOW"));
    MacOSBringToTop(window.winId(), false);
    QTRY_VERIFY(!hasState(window.winId(), "BELOW"));
    QTRY_COMPARE(stacking(), QList<WId>({raised.winId(), other.winId(), window.winId()}));
    taskbar.requestState(window.winId(), "ABOVE", true);
    QTRY_VERIFY(isAbove(window.winId()));
    MacOSBringToTop(window.winId(), false);
    QTRY_VERIFY(!isAbove(window.winId()));
}

void tst_WindowServices::bottomOfTheModalLevel()
{
    PlainWindow normal;
    QVERIFY(normal.showManaged());
    PlainWindow raised;
    QVERIFY(raised.showManaged());
    PlainWindow window;
    QVERIFY(window.showManaged());
    MacOSBringToTop(raised.winId(), true);
    MacOSBringToTop(window.winId(), true);
    QTRY_COMPARE(stacking(), QList<WId>({normal.winId(), raised.winId(), window.winId()}));

    MacOSBringToBottom(window.winId(), true);
    QTRY_COMPARE(stacking(), QList<WId>({normal.winId(), window.winId(), raised.winId()}));
    QVERIFY(isAbove(window.winId()));
}

void tst_WindowServices::bottomOfTheNormalLevel()
{
    PlainWindow other;
    QVERIFY(other.showManaged());
    PlainWindow window;
    QVERIFY(window.showManaged());
    MacOSBringToTop(window.winId(), true);
    QTRY_VERIFY(isAbove(window.winId()));

    MacOSBringToBottom(window.winId(), false);
    QTRY_COMPARE(stacking(), QList<WId>({window.winId(), other.winId()}));
    QVERIFY(!isAbove(window.winId()));
    QVERIFY(!hasState(window.winId(), "BELOW"));
}

void tst_WindowServices::modalIsNoLongerBelow()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    PlainWindow other;
    QVERIFY(other.showManaged());
    Taskbar taskbar;
    taskbar.requestState(window.winId(), "BELOW", true);
    QTRY_VERIFY(hasState(window.winId(), "BELOW"));
    MacOSBringToTop(window.winId(), true);
    QTRY_VERIFY(isAbove(window.winId()));
    QVERIFY(!hasState(window.winId(), "BELOW"));
    QTRY_COMPARE(stacking(), QList<WId>({other.winId(), window.winId()}));
}

void tst_WindowServices::levelStaysWhileHidden()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    MacOSBringToTop(id, true);
    for (int i = 0; i < 2; ++i) {
        QTRY_VERIFY(isAbove(id));
        window.hide();
        QTRY_VERIFY(!isManaged(window));
        QVERIFY(window.showManaged());
        QCOMPARE(window.winId(), id);
    }
    QTRY_VERIFY(isAbove(id));
}

void tst_WindowServices::levelBeforeItIsShown()
{
    PlainWindow window;
    MacOSBringToTop(window.winId(), true);
    QVERIFY(window.showManaged());
    PlainWindow other;
    QVERIFY(other.showManaged());
    QTRY_VERIFY(isAbove(window.winId()));
    QTRY_COMPARE(stacking(), QList<WId>({other.winId(), window.winId()}));
}

void tst_WindowServices::normalLevelWhileHidden()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    MacOSBringToTop(window.winId(), true);
    QTRY_VERIFY(isAbove(window.winId()));
    window.hide();
    QTRY_VERIFY(!isManaged(window));
    MacOSBringToTop(window.winId(), false);
    QVERIFY(window.showManaged());
    PlainWindow other;
    QVERIFY(other.showManaged());
    QCOMPARE(stacking(), QList<WId>({window.winId(), other.winId()}));
    QVERIFY(!isAbove(window.winId()));
}

void tst_WindowServices::closeButton()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    const int functions = motifFunctions(id);
    QVERIFY(hasCloseFunction(id));
    MacOSSetClosingWindowEnabled(id, false);
    QTRY_VERIFY(!hasCloseFunction(id));

    // Window managers that don't heed the hint ask the window to close all the same. Requests are
    // served one after the other.
    Taskbar taskbar;
    PlainWindow other;
    QVERIFY(other.showManaged());
    taskbar.requestClose(id);
    taskbar.requestClose(other.winId());
    QTRY_VERIFY(!other.isVisible());
    QVERIFY(window.isVisible());

    MacOSSetClosingWindowEnabled(id, true);
    QTRY_COMPARE(motifFunctions(id), functions);
    QCOMPARE(window.winId(), id);
    QCOMPARE(window.hides, 0);
    taskbar.requestClose(id);
    QTRY_VERIFY(!window.isVisible());
}

void tst_WindowServices::closeButtonOfARaisedWindow()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    MacOSBringToTop(id, true);
    QTRY_VERIFY(isAbove(id));

    for (const bool enabled : {false, true}) {
        MacOSSetClosingWindowEnabled(id, enabled);
        QTRY_COMPARE(hasCloseFunction(id), enabled);
        // The window manager deals with requests one after the other.
        PlainWindow other;
        QVERIFY(other.showManaged());
        QTRY_COMPARE(stacking(), QList<WId>({other.winId(), id}));
        QVERIFY(isAbove(id));
    }

    MacOSBringToTop(id, false);
    QTRY_VERIFY(!isAbove(id));
    MacOSSetClosingWindowEnabled(id, false);
    QTRY_VERIFY(!hasCloseFunction(id));
    PlainWindow other;
    QVERIFY(other.showManaged());
    QVERIFY(!isAbove(id));
}

void tst_WindowServices::aLevelThatNewFlagsCostComesBack()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    MacOSBringToTop(id, true);
    QTRY_VERIFY(isAbove(id));
    MacOSSetClosingWindowEnabled(id, false);
    QTRY_VERIFY(!hasCloseFunction(id));

    // As a window manager does that looks at the new flags.
    Taskbar taskbar;
    taskbar.requestState(id, "ABOVE", false);
    PlainWindow other;
    QVERIFY(other.showManaged());
    QTRY_VERIFY(isAbove(id));
    QTRY_COMPARE(stacking(), QList<WId>({other.winId(), id}));

    // Later it goes when somebody wants it to.
    taskbar.requestState(id, "ABOVE", false);
    QTRY_VERIFY(!isAbove(id));
    for (int i = 0; i < 2; ++i) { // the window manager is asked for one after the other
        PlainWindow another;
        QVERIFY(another.showManaged());
    }
    QVERIFY(!isAbove(id));
}

void tst_WindowServices::raisedWithoutCloseButton()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    MacOSSetClosingWindowEnabled(id, false);
    QTRY_VERIFY(!hasCloseFunction(id));

    MacOSBringToTop(id, true);
    QTRY_VERIFY(isAbove(id));
    QVERIFY(!hasCloseFunction(id));
    MacOSSetClosingWindowEnabled(id, true);
    QTRY_VERIFY(hasCloseFunction(id));
    PlainWindow other;
    QVERIFY(other.showManaged());
    QTRY_COMPARE(stacking(), QList<WId>({other.winId(), id}));
    QVERIFY(isAbove(id));
}

/// Those that it sets while the close button is away.
void tst_WindowServices::flagsOfTheProgramStay()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    QWindow* handle = window.windowHandle();
    const int functions = motifFunctions(id);
    const Qt::WindowFlags flags = handle->flags();
    QVERIFY(!(flags & Qt::WindowStaysOnTopHint));
    MacOSSetClosingWindowEnabled(id, false);
    QTRY_VERIFY(!hasCloseFunction(id));

    handle->setFlags(handle->flags() | Qt::WindowStaysOnTopHint);
    QTRY_VERIFY(isAbove(id));
    QVERIFY(!hasCloseFunction(id));
    MacOSSetClosingWindowEnabled(id, true);
    QTRY_COMPARE(motifFunctions(id), functions);
    PlainWindow other;
    QVERIFY(other.showManaged());
    QVERIFY(isAbove(id));
    QCOMPARE(handle->flags(), flags | Qt::WindowStaysOnTopHint);
}

void tst_WindowServices::closeButtonThatTheProgramBroughtBack()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    QWindow* handle = window.windowHandle();
    const int functions = motifFunctions(id);
    const Qt::WindowFlags flags = handle->flags();
    MacOSSetClosingWindowEnabled(id, false);
    QTRY_VERIFY(!hasCloseFunction(id));
    handle->setFlags(flags);
    QTRY_VERIFY(hasCloseFunction(id));

    MacOSSetClosingWindowEnabled(id, false);
    QTRY_VERIFY(!hasCloseFunction(id));
    MacOSSetClosingWindowEnabled(id, true);
    QTRY_COMPARE(motifFunctions(id), functions);
    QCOMPARE(handle->flags(), flags);
}

void tst_WindowServices::displayId()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    bool ok = false;
    QCOMPARE(MacOSGetDisplayID(window.winId(), ok), 1U);
    QVERIFY(ok);
}

void tst_WindowServices::displayIdOfAChild()
{
    PlainWindow window;
    QWidget child(&window);
    const WId childId = child.winId();
    QVERIFY(window.showManaged());
    bool ok = false;
    QCOMPARE(MacOSGetDisplayID(childId, ok), 1U);
    QVERIFY(ok);
}

void tst_WindowServices::noDisplayId()
{
    PlainWindow window;
    bool ok = true;
    QCOMPARE(MacOSGetDisplayID(window.winId(), ok), 0U);
    QVERIFY(!ok);

    QVERIFY(window.showManaged());
    window.hide();
    ok = true;
    QCOMPARE(MacOSGetDisplayID(window.winId(), ok), 0U);
    QVERIFY(!ok);

    PlainWindow outside(QRect(3000, 3000, 100, 100), Qt::X11BypassWindowManagerHint);
    outside.show();
    QVERIFY(
        QTest::qWaitFor([&] { return mapState(outside.winId()) == QLatin1String("IsViewable"); }));
    ok = true;
    QCOMPARE(MacOSGetDisplayID(outside.winId(), ok), 0U);
    QVERIFY(!ok);
}

/// Neither is there any such thing here.
void tst_WindowServices::nothingToDo()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    const QString states = windowProperty(id, "_NET_WM_STATE");
    const int functions = motifFunctions(id);
    for (const bool enabled : {false, true})
        MacOSEnableWindowAnimation(window, enabled);
    MacOSSetBehaviorForExpose(id);
    PlainWindow other;
    QVERIFY(other.showManaged());
    QCOMPARE(windowProperty(id, "_NET_WM_STATE"), states);
    QCOMPARE(motifFunctions(id), functions);
    QCOMPARE(window.winId(), id);
    QCOMPARE(window.hides, 0);
}

void tst_WindowServices::unknownWindow_data()
{
    QTest::addColumn<qulonglong>("id");
    QTest::newRow("none") << qulonglong(0);
    QTest::newRow("a number of nothing") << qulonglong(0x7ffffff);
    QTest::newRow("greater than any window's") << qulonglong(0x7fffff0123456789);
    const auto gone = std::make_unique<PlainWindow>();
    QTest::newRow("of a window that has gone") << qulonglong(gone->winId());
    QTest::newRow("of the screen's ground, which isn't ours")
        << output("xwininfo", {QStringLiteral("-root")})
               .section(QStringLiteral("Window id: "), 1)
               .section(QLatin1Char(' '), 0, 0)
               .toULongLong(nullptr, 16);
}

/// Nothing happens, the X server finds no fault, and the results are false and 0.
void tst_WindowServices::unknownWindow()
{
    QFETCH(qulonglong, id);
    CountingHandler handler;
    const auto all = operations(&handler);
    for (const Operation& operation : all)
        operation.call(id);
    QVERIFY(!MacOSIsFullScreenMode(id));
    bool ok = true;
    QCOMPARE(MacOSGetDisplayID(id, ok), 0U);
    QVERIFY(!ok);

    // Its answer comes after all earlier errors.
    PlainWindow window;
    QVERIFY(window.showManaged());
    MacOSToggleFullScreenMode(window.winId());
    QTRY_VERIFY(hasState(window.winId(), "FULLSCREEN"));
    QCOMPARE(handler.enters, 0);
}

/// From the next change of activation on.
void tst_WindowServices::floatsWhileActive()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    QTRY_COMPARE(focusedWindow(), id);
    MacOSSetupNSApplicationNotificationResponder(window);
    {
        // The window manager deals with requests one after the other.
        PlainWindow next;
        QVERIFY(next.showManaged());
        QVERIFY(!isAbove(id));
    }
    OtherApplication other;
    QVERIFY(other.start());
    QTRY_COMPARE(QGuiApplication::applicationState(), Qt::ApplicationInactive);
    QVERIFY(!isAbove(id));

    Taskbar taskbar;
    for (int i = 0; i < 2; ++i) {
        taskbar.requestFocus(id);
        QTRY_VERIFY(isAbove(id));
        QVERIFY(other.takeFocus());
        QTRY_VERIFY(!isAbove(id));
    }
    QTRY_COMPARE(stacking(), QList<WId>({id, other.window()}));
    MacOSRemoveNSApplicationNotificationResponder(window);
}

/// Twice for one widget: its newer window floats.
void tst_WindowServices::floatingWindowReplaced()
{
    class Renewable : public PlainWindow
    {
    public:
        using QWidget::destroy;
    };
    Renewable window;
    QVERIFY(window.showManaged());
    MacOSSetupNSApplicationNotificationResponder(window);
    const WId before = window.winId();
    window.hide();
    window.destroy();
    PlainWindow inBetween; // takes the old number if that is free again
    inBetween.winId();
    QVERIFY(window.showManaged());
    QVERIFY(window.winId() != before);
    MacOSSetupNSApplicationNotificationResponder(window);

    OtherApplication other;
    QVERIFY(other.start());
    QTRY_COMPARE(QGuiApplication::applicationState(), Qt::ApplicationInactive);
    Taskbar taskbar;
    taskbar.requestFocus(window.winId());
    QTRY_VERIFY(isAbove(window.winId()));
    QVERIFY(other.takeFocus());
    QTRY_VERIFY(!isAbove(window.winId()));
    MacOSRemoveNSApplicationNotificationResponder(window);
}

void tst_WindowServices::floatingRemoved()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    PlainWindow floating(QRect(400, 400, 100, 100));
    QVERIFY(floating.showManaged());
    MacOSSetupNSApplicationNotificationResponder(window);
    MacOSSetupNSApplicationNotificationResponder(floating);
    OtherApplication other;
    QVERIFY(other.start());
    QTRY_COMPARE(QGuiApplication::applicationState(), Qt::ApplicationInactive);
    MacOSRemoveNSApplicationNotificationResponder(window);
    MacOSRemoveNSApplicationNotificationResponder(window);

    Taskbar taskbar;
    taskbar.requestFocus(floating.winId());
    QTRY_VERIFY(isAbove(floating.winId()));
    QVERIFY(!isAbove(window.winId()));
    MacOSRemoveNSApplicationNotificationResponder(floating);
}

QTEST_MAIN(tst_WindowServices)

#include "tst_WindowServices.moc"
