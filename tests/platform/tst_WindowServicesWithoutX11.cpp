#include "ApplicationActivation.h"
#include "WindowServices.h"

#include "MessageCounter.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QMenu>
#include <QTest>
#include <QWidget>
#include <QWindow>
#include <QWindowStateChangeEvent>

#include <optional>

namespace {

class CountingHandler final : public CWindowFullScreenModeSwitchHandler_Abstract
{
public:
    void onEnterFullScreen() override { ++enters; }
    void onExitFullScreen() override { ++exits; }

    int enters = 0;
    int exits = 0;
};

class CountingBox : public QComboBox
{
public:
    explicit CountingBox(QWidget* parent)
        : QComboBox(parent)
    {
        addItem(QStringLiteral("entry"));
    }

    void hidePopup() override
    {
        ++hides;
        QComboBox::hidePopup();
    }

    int hides = 0;
};

void tellApplicationState(Qt::ApplicationState state)
{
    QMetaObject::invokeMethod(qApp, "applicationStateChanged", Qt::DirectConnection,
                              Q_ARG(Qt::ApplicationState, state));
}

/// What operations change in a window.
struct Appearance
{
    explicit Appearance(const QWidget& widget)
        : id(widget.internalWinId())
        , flags(widget.windowHandle()->flags())
        , states(widget.windowHandle()->windowStates())
        , geometry(widget.geometry())
        , visible(widget.isVisible())
    {}

    bool operator==(const Appearance& other) const
    {
        return id == other.id && flags == other.flags && states == other.states
            && geometry == other.geometry && visible == other.visible;
    }

    WId id;
    Qt::WindowFlags flags;
    Qt::WindowStates states;
    QRect geometry;
    bool visible;
};

} // namespace

/// On a platform whose windows aren't those of X11: what Qt can do is done, the rest is silent.
class tst_WindowServicesWithoutX11 : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void minimize();
    void fullScreen();
    void fullScreenWhileMinimized();
    void nothingElse_data();
    void nothingElse();
    void noDisplayId();
    void unknownWindow();
    void floatingWhileActive();

    void popupsCloseWithTheApplicationState_data();
    void popupsCloseWithTheApplicationState();
    void popupsCloseWithMinimizing();
    void popupsStayWhileMinimized();
    void activate();

private:
    std::optional<MessageCounter> m_messages;
};

void tst_WindowServicesWithoutX11::initTestCase()
{
    QVERIFY(QGuiApplication::platformName() != QLatin1String("xcb"));
}

void tst_WindowServicesWithoutX11::init()
{
    // Showing a popup and raising a window are Qt's doing, and so are its words on them.
    m_messages.emplace({"This plugin does not support"});
}

void tst_WindowServicesWithoutX11::cleanup()
{
    MacOSOnFullScreenModeSwitchHandlerDeleted();
    const int messages = m_messages->count();
    m_messages.reset();
    QCOMPARE(messages, 0);
}

void tst_WindowServicesWithoutX11::minimize()
{
    QWidget window;
    window.show();
    const WId id = window.winId();
    MacOSDeminituarize(id);
    QCOMPARE(window.windowState(), Qt::WindowNoState);
    MacOSMinimizeWindow(id);
    QVERIFY(window.isMinimized());
    QCOMPARE(window.windowHandle()->windowState(), Qt::WindowMinimized);
    MacOSMinimizeWindow(id);
    QVERIFY(window.isMinimized());
    MacOSDeminituarize(id);
    QVERIFY(!window.isMinimized());
    QCOMPARE(window.windowHandle()->windowState(), Qt::WindowNoState);
    QVERIFY(window.isVisible());
}

void tst_WindowServicesWithoutX11::fullScreen()
{
    QWidget window;
    QWidget child(&window);
    const WId childId = child.winId();
    window.show();
    CountingHandler handler;
    MacOSSetFullscreenCapable(window.winId(), &handler);
    QVERIFY(!MacOSIsFullScreenMode(window.winId()));
    for (int i = 1; i <= 2; ++i) {
        MacOSToggleFullScreenMode(window.winId());
        QVERIFY(MacOSIsFullScreenMode(window.winId()));
        QVERIFY(MacOSIsFullScreenMode(childId));
        QCOMPARE(window.windowHandle()->windowState(), Qt::WindowFullScreen);
        QCoreApplication::processEvents();
        QCOMPARE(handler.enters, i);
        QCOMPARE(handler.exits, i - 1);

        MacOSToggleFullScreenMode(childId);
        QVERIFY(!MacOSIsFullScreenMode(window.winId()));
        QCOMPARE(window.windowHandle()->windowState(), Qt::WindowNoState);
        QCoreApplication::processEvents();
        QCOMPARE(handler.enters, i);
        QCOMPARE(handler.exits, i);
    }
}

/// It hasn't left full screen.
void tst_WindowServicesWithoutX11::fullScreenWhileMinimized()
{
    QWidget window;
    window.show();
    CountingHandler handler;
    MacOSSetFullscreenCapable(window.winId(), &handler);
    MacOSToggleFullScreenMode(window.winId());
    MacOSMinimizeWindow(window.winId());
    QVERIFY(window.isMinimized());
    QVERIFY(MacOSIsFullScreenMode(window.winId()));
    MacOSDeminituarize(window.winId());
    QVERIFY(!window.isMinimized());
    QVERIFY(MacOSIsFullScreenMode(window.winId()));
    QCoreApplication::processEvents();
    QCOMPARE(handler.enters, 1);
    QCOMPARE(handler.exits, 0);
}

void tst_WindowServicesWithoutX11::nothingElse_data()
{
    QTest::addColumn<bool>("shown");
    QTest::newRow("a window on the screen") << true;
    QTest::newRow("a hidden window") << false;
}

void tst_WindowServicesWithoutX11::nothingElse()
{
    QFETCH(bool, shown);
    QWidget window;
    window.setGeometry(100, 100, 200, 100);
    const WId id = window.winId();
    window.setVisible(shown);
    QCoreApplication::processEvents();
    const Appearance before(window);

    for (const bool on : {true, false}) {
        MacOSBringToTop(id, on);
        MacOSBringToBottom(id, on);
        MacOSSetClosingWindowEnabled(id, !on);
        MacOSEnableWindowAnimation(window, on);
        MacOSSetBehaviorForExpose(id);
        MacOSSetFullscreenCapable(id, nullptr);
        QCoreApplication::processEvents();
        QVERIFY(Appearance(window) == before);
    }
}

void tst_WindowServicesWithoutX11::noDisplayId()
{
    QWidget window;
    window.show();
    bool ok = true;
    QCOMPARE(MacOSGetDisplayID(window.winId(), ok), 0U);
    QVERIFY(!ok);
}

void tst_WindowServicesWithoutX11::unknownWindow()
{
    CountingHandler handler;
    for (const unsigned long long id : {0ULL, 0x7ffffffULL, 0x7fffff0123456789ULL}) {
        MacOSMinimizeWindow(id);
        MacOSDeminituarize(id);
        MacOSToggleFullScreenMode(id);
        QVERIFY(!MacOSIsFullScreenMode(id));
        MacOSSetFullscreenCapable(id, &handler);
        MacOSSetClosingWindowEnabled(id, false);
        MacOSBringToTop(id, true);
        MacOSBringToBottom(id, true);
        MacOSSetBehaviorForExpose(id);
        bool ok = true;
        QCOMPARE(MacOSGetDisplayID(id, ok), 0U);
        QVERIFY(!ok);
    }
    QCOMPARE(handler.enters + handler.exits, 0);
}

void tst_WindowServicesWithoutX11::floatingWhileActive()
{
    QWidget window;
    window.show();
    QCoreApplication::processEvents();
    MacOSSetupNSApplicationNotificationResponder(window);
    MacOSSetupNSApplicationNotificationResponder(window);
    const Appearance before(window);
    tellApplicationState(Qt::ApplicationInactive);
    tellApplicationState(Qt::ApplicationActive);
    MacOSRemoveNSApplicationNotificationResponder(window);
    MacOSRemoveNSApplicationNotificationResponder(window);
    QVERIFY(Appearance(window) == before);
}

void tst_WindowServicesWithoutX11::popupsCloseWithTheApplicationState_data()
{
    QTest::addColumn<int>("state");
    QTest::addColumn<int>("hides");
    QTest::newRow("inactive") << int(Qt::ApplicationInactive) << 1;
    QTest::newRow("hidden") << int(Qt::ApplicationHidden) << 1;
    QTest::newRow("suspended") << int(Qt::ApplicationSuspended) << 1;
    QTest::newRow("active") << int(Qt::ApplicationActive) << 0;
}

void tst_WindowServicesWithoutX11::popupsCloseWithTheApplicationState()
{
    QFETCH(int, state);
    QFETCH(int, hides);
    const TopLevelWindowDeactivator deactivator;
    QWidget window;
    CountingBox box(&window);
    window.show();
    box.showPopup();
    QMenu menu;
    menu.addAction(QStringLiteral("entry"));
    menu.popup(QPoint());
    QVERIFY(menu.isVisible());

    tellApplicationState(Qt::ApplicationState(state));
    QCOMPARE(box.hides, hides);
    QCOMPARE(menu.isVisible(), hides == 0);
    QVERIFY(window.isVisible());
}

/// By the window itself: a platform of one window at a time has one number for all.
void tst_WindowServicesWithoutX11::popupsCloseWithMinimizing()
{
    const TopLevelWindowDeactivator deactivator;
    QWidget window;
    CountingBox box(&window);
    window.show();
    QWidget second;
    second.show();
    box.showPopup();
    second.setWindowState(Qt::WindowFullScreen);
    QCoreApplication::processEvents();
    QCOMPARE(box.hides, 0);
    second.setWindowState(Qt::WindowMinimized);
    QCOMPARE(box.hides, 1);

    QCoreApplication::processEvents(); // some platforms take the application's activation, too
    const int hides = box.hides;
    second.setWindowState(Qt::WindowNoState);
    QCoreApplication::processEvents();
    QCOMPARE(box.hides, hides);
}

/// A minimised window that changes otherwise isn't minimised once more.
void tst_WindowServicesWithoutX11::popupsStayWhileMinimized()
{
    QWidget window;
    CountingBox box(&window);
    window.show();
    QWidget second;
    second.show();
    box.showPopup();
    second.setWindowState(Qt::WindowMinimized);
    const TopLevelWindowDeactivator deactivator;
    QVERIFY(second.isMinimized());
    QWindowStateChangeEvent change(Qt::WindowMinimized | Qt::WindowMaximized);
    QCoreApplication::sendEvent(&second, &change);
    QCOMPARE(box.hides, 0);
}

void tst_WindowServicesWithoutX11::activate()
{
    QWidget window;
    WindowActivator::activate(&window);
    QVERIFY(window.isVisible());
    WindowActivator::activate(nullptr);
}

QTEST_MAIN(tst_WindowServicesWithoutX11)

#include "tst_WindowServicesWithoutX11.moc"
