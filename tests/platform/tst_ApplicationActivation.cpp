#include "ApplicationActivation.h"

#include "MessageCounter.h"
#include "OtherApplication.h"
#include "WindowProperties.h"
#include "WindowServices.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <QWindow>

#include <functional>
#include <optional>
#include <utility>

namespace {

/// Counts how often it has been told to hide its list. Qt closes open popups by itself when the
/// focus goes to another program, but doesn't call this.
class CountingBox : public QComboBox
{
public:
    explicit CountingBox(QWidget* parent)
        : QComboBox(parent)
    {
        addItems({QStringLiteral("one"), QStringLiteral("two"), QStringLiteral("three")});
    }

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

class WindowWithBox : public PlainWindow
{
public:
    using PlainWindow::PlainWindow;

    /// Waits until it is there and has the focus.
    bool showFocused()
    {
        return showManaged()
            && QTest::qWaitFor([this] { return focusedWindow() == winId() && isActiveWindow(); },
                               10000);
    }

    bool openList()
    {
        box.showPopup();
        return QTest::qWaitForWindowExposed(box.view()->window());
    }

    CountingBox box{this};
};

} // namespace

/// Beside another application on the same display.
class tst_ApplicationActivation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void isAppActive();

    void listClosesWithTheFocus();
    void menuClosesWithTheFocus();
    void otherWindowsStay();
    void focusWithinTheApplication();
    void twoDeactivators();
    void endOfADeactivator();
    void deactivatorEndsWhileItCloses_data();
    void deactivatorEndsWhileItCloses();

    void minimizing_data();
    void minimizing();
    void minimizedByUser();
    void windowWithoutWidget();
    void menuClosesWithMinimizing();
    void otherStatesOfAWindow();

    void activateFromTheBackground_data();
    void activateFromTheBackground();
    void activationIsForced();
    void activateNothing();
    void enableMenuBar();

private:
    std::optional<MessageCounter> m_messages;
};

void tst_ApplicationActivation::initTestCase()
{
    QApplication::setQuitOnLastWindowClosed(false);
}

void tst_ApplicationActivation::init()
{
    // Qt asks for its place in a frame that the window manager has just taken away.
    m_messages.emplace({"TranslateCoords"});
}

void tst_ApplicationActivation::cleanup()
{
    QTRY_VERIFY(stacking().isEmpty());
    const int messages = m_messages->count();
    m_messages.reset();
    QCOMPARE(messages, 0);
}

void tst_ApplicationActivation::isAppActive()
{
    WindowWithBox window;
    QVERIFY(window.showFocused());
    QTRY_VERIFY(WindowActivator::isAppActive());
    OtherApplication other;
    QVERIFY(other.start());
    QTRY_VERIFY(!WindowActivator::isAppActive());
    Taskbar taskbar;
    taskbar.requestFocus(window.winId());
    QTRY_VERIFY(WindowActivator::isAppActive());
}

void tst_ApplicationActivation::listClosesWithTheFocus()
{
    const TopLevelWindowDeactivator deactivator;
    WindowWithBox window;
    QVERIFY(window.showFocused());
    QVERIFY(window.openList());
    QCOMPARE(window.box.hides, 0);
    OtherApplication other;
    QVERIFY(other.start());
    QTRY_COMPARE(window.box.hides, 1);
    QTRY_VERIFY(!window.box.view()->isVisible());
    QVERIFY(!WindowActivator::isAppActive());

    // And the next time.
    WindowActivator::activate(&window);
    QTRY_VERIFY(WindowActivator::isAppActive());
    QVERIFY(window.openList());
    QCOMPARE(window.box.hides, 1);
    QVERIFY(other.takeFocus());
    QTRY_COMPARE(window.box.hides, 2);
    QTRY_VERIFY(!window.box.view()->isVisible());
}

void tst_ApplicationActivation::menuClosesWithTheFocus()
{
    const TopLevelWindowDeactivator deactivator;
    WindowWithBox window;
    QVERIFY(window.showFocused());
    QMenu menu;
    menu.addAction(QStringLiteral("entry"));
    menu.popup(QPoint(10, 10));
    QVERIFY(QTest::qWaitForWindowExposed(&menu));
    OtherApplication other;
    QVERIFY(other.start());
    QTRY_VERIFY(!menu.isVisible());
}

void tst_ApplicationActivation::otherWindowsStay()
{
    const TopLevelWindowDeactivator deactivator;
    WindowWithBox window;
    QVERIFY(window.showFocused());
    QDialog dialog(&window);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QVERIFY(window.openList());
    OtherApplication other;
    QVERIFY(other.start());
    QTRY_COMPARE(window.box.hides, 1);
    QVERIFY(dialog.isVisible());
    QVERIFY(window.isVisible());
    QCOMPARE(mapState(dialog.winId()), QStringLiteral("IsViewable"));
    QCOMPARE(mapState(window.winId()), QStringLiteral("IsViewable"));
}

/// The application stays active while its own windows change.
void tst_ApplicationActivation::focusWithinTheApplication()
{
    const TopLevelWindowDeactivator deactivator;
    WindowWithBox window;
    QVERIFY(window.showFocused());
    QVERIFY(window.openList());
    window.box.hidePopup();
    QCOMPARE(window.box.hides, 1);
    WindowWithBox second(QRect(500, 500, 100, 100));
    QVERIFY(second.showFocused());
    window.activateWindow();
    QTRY_COMPARE(focusedWindow(), window.winId());
    QTRY_VERIFY(window.isActiveWindow());
    QCOMPARE(window.box.hides, 1);
}

/// Both do their work, which is harmless.
void tst_ApplicationActivation::twoDeactivators()
{
    const TopLevelWindowDeactivator first;
    const TopLevelWindowDeactivator second;
    WindowWithBox window;
    QVERIFY(window.showFocused());
    QVERIFY(window.openList());
    OtherApplication other;
    QVERIFY(other.start());
    QTRY_COMPARE(window.box.hides, 2);
    QTRY_VERIFY(!window.box.view()->isVisible());
}

void tst_ApplicationActivation::endOfADeactivator()
{
    std::optional<TopLevelWindowDeactivator> deactivator(std::in_place);
    PlainWindow second(QRect(500, 500, 100, 100));
    QVERIFY(second.showManaged());
    WindowWithBox window;
    QVERIFY(window.showFocused());
    QVERIFY(window.openList());
    deactivator.reset();
    OtherApplication other;
    QVERIFY(other.start());
    QTRY_VERIFY(!WindowActivator::isAppActive());
    MacOSMinimizeWindow(second.winId());
    QTRY_VERIFY(second.isMinimized());
    QCOMPARE(window.box.hides, 0);
}

void tst_ApplicationActivation::deactivatorEndsWhileItCloses_data()
{
    QTest::addColumn<bool>("minimizing");
    QTest::newRow("when another application gets the focus") << false;
    QTest::newRow("when a window is minimised") << true;
}

/// What it closes may destroy it.
void tst_ApplicationActivation::deactivatorEndsWhileItCloses()
{
    QFETCH(bool, minimizing);
    std::optional<TopLevelWindowDeactivator> deactivator(std::in_place);
    WindowWithBox second(QRect(500, 500, 100, 100));
    QVERIFY(second.showFocused());
    WindowWithBox window;
    QVERIFY(window.showFocused());
    QVERIFY(window.openList());
    window.box.onHide = [&deactivator] { deactivator.reset(); };

    OtherApplication other;
    if (minimizing)
        MacOSMinimizeWindow(second.winId());
    else
        QVERIFY(other.start());
    QTRY_COMPARE(window.box.hides, 1);
    QVERIFY(!deactivator);
    QTRY_VERIFY(!window.box.view()->isVisible());
}

void tst_ApplicationActivation::minimizing_data()
{
    QTest::addColumn<bool>("withList");
    QTest::addColumn<int>("hides");
    QTest::newRow("another window") << false << 1;
    // A box that disappears hides its list by itself, too.
    QTest::newRow("the window with the list") << true << 2;
}

void tst_ApplicationActivation::minimizing()
{
    QFETCH(bool, withList);
    QFETCH(int, hides);
    const TopLevelWindowDeactivator deactivator;
    WindowWithBox second(QRect(500, 500, 100, 100));
    QVERIFY(second.showFocused());
    WindowWithBox window;
    QVERIFY(window.showFocused());
    QVERIFY(window.openList());

    // The application has a window left to be active in.
    PlainWindow& minimized = withList ? window : second;
    MacOSMinimizeWindow(minimized.winId());
    QTRY_VERIFY(minimized.isMinimized());
    QTRY_COMPARE(window.box.hides, hides);
    QTRY_VERIFY(!window.box.view()->isVisible());
    QTRY_VERIFY(WindowActivator::isAppActive());
    QCOMPARE(window.box.hides, hides);

    // Coming back does nothing.
    MacOSDeminituarize(minimized.winId());
    QTRY_VERIFY(!minimized.isMinimized());
    QTRY_COMPARE(mapState(minimized.winId()), QStringLiteral("IsViewable"));
    QCOMPARE(window.box.hides, hides);
}

void tst_ApplicationActivation::minimizedByUser()
{
    const TopLevelWindowDeactivator deactivator;
    WindowWithBox second(QRect(500, 500, 100, 100));
    QVERIFY(second.showFocused());
    WindowWithBox window;
    QVERIFY(window.showFocused());
    QVERIFY(window.openList());
    Taskbar taskbar;
    taskbar.requestMinimizing(second.winId());
    QTRY_COMPARE(window.box.hides, 1);
    QTRY_VERIFY(!window.box.view()->isVisible());
}

void tst_ApplicationActivation::windowWithoutWidget()
{
    const TopLevelWindowDeactivator deactivator;
    QWindow plain;
    plain.setGeometry(500, 500, 100, 100);
    plain.show();
    QVERIFY(QTest::qWaitForWindowExposed(&plain));
    QTRY_COMPARE(focusedWindow(), plain.winId());
    WindowWithBox window;
    QVERIFY(window.showFocused());
    QVERIFY(window.openList());
    Taskbar taskbar;

    taskbar.requestState(plain.winId(), "FULLSCREEN", true);
    QTRY_COMPARE(plain.windowState(), Qt::WindowFullScreen);
    QCOMPARE(window.box.hides, 0);
    taskbar.requestState(plain.winId(), "FULLSCREEN", false);
    QTRY_COMPARE(plain.windowState(), Qt::WindowNoState);
    QCOMPARE(window.box.hides, 0);
    QVERIFY(window.box.view()->isVisible());

    taskbar.requestMinimizing(plain.winId());
    QTRY_COMPARE(window.box.hides, 1);
    QTRY_VERIFY(!window.box.view()->isVisible());
    QTRY_VERIFY(WindowActivator::isAppActive());
    QCOMPARE(window.box.hides, 1);
}

void tst_ApplicationActivation::menuClosesWithMinimizing()
{
    const TopLevelWindowDeactivator deactivator;
    WindowWithBox second(QRect(500, 500, 100, 100));
    QVERIFY(second.showFocused());
    WindowWithBox window;
    QVERIFY(window.showFocused());
    QMenu menu;
    menu.addAction(QStringLiteral("entry"));
    menu.popup(QPoint(10, 10));
    QVERIFY(QTest::qWaitForWindowExposed(&menu));
    MacOSMinimizeWindow(second.winId());
    QTRY_VERIFY(!menu.isVisible());
    QVERIFY(window.isVisible());
}

/// Full screen and its end leave popups open.
void tst_ApplicationActivation::otherStatesOfAWindow()
{
    const TopLevelWindowDeactivator deactivator;
    WindowWithBox second(QRect(500, 500, 100, 100));
    QVERIFY(second.showFocused());
    WindowWithBox window;
    QVERIFY(window.showFocused());
    QVERIFY(window.openList());
    Taskbar taskbar;
    for (const bool fullScreen : {true, false}) {
        taskbar.requestState(second.winId(), "FULLSCREEN", fullScreen);
        QTRY_COMPARE(second.isFullScreen(), fullScreen);
    }
    QCOMPARE(window.box.hides, 0);
    QVERIFY(window.box.view()->isVisible());
}

void tst_ApplicationActivation::activateFromTheBackground_data()
{
    QTest::addColumn<bool>("hidden");
    QTest::newRow("a window behind") << false;
    QTest::newRow("a hidden window") << true;
}

void tst_ApplicationActivation::activateFromTheBackground()
{
    QFETCH(bool, hidden);
    WindowWithBox window;
    WindowWithBox second(QRect(500, 500, 100, 100));
    QVERIFY(second.showFocused());
    if (!hidden)
        QVERIFY(window.showFocused());
    OtherApplication other;
    QVERIFY(other.start());
    QTRY_VERIFY(!WindowActivator::isAppActive());

    WindowActivator::activate(&window);
    QVERIFY(window.isVisible());
    QTRY_COMPARE(focusedWindow(), window.winId());
    QTRY_VERIFY(WindowActivator::isAppActive());
    QTRY_VERIFY(window.isActiveWindow());
    QTRY_COMPARE(stacking(), QList<WId>({second.winId(), other.window(), window.winId()}));
}

/// Window managers may refuse the focus to a window that asks for it in its own name.
void tst_ApplicationActivation::activationIsForced()
{
    WindowWithBox window;
    QVERIFY(window.showFocused());
    OtherApplication other;
    QVERIFY(other.start());
    QTRY_VERIFY(!WindowActivator::isAppActive());

    FocusRequests requests(window.winId());
    WindowActivator::activate(&window);
    QTRY_VERIFY(WindowActivator::isAppActive());
    QTRY_COMPARE(requests.sources().value(0), FocusRequests::fromTaskbar);
}

void tst_ApplicationActivation::activateNothing()
{
    WindowWithBox window;
    QVERIFY(window.showFocused());
    OtherApplication other;
    QVERIFY(other.start());
    QTRY_VERIFY(!WindowActivator::isAppActive());
    WindowActivator::activate(nullptr);
    // The window manager deals with requests one after the other.
    MacOSMinimizeWindow(window.winId());
    QTRY_VERIFY(hasState(window.winId(), "HIDDEN"));
    QCOMPARE(focusedWindow(), other.window());
    QVERIFY(!WindowActivator::isAppActive());
}

void tst_ApplicationActivation::enableMenuBar()
{
    QMenuBar menuBar;
    const QAction* entry = menuBar.addMenu(QStringLiteral("File"))->menuAction();
    WindowActivator::enableMenuBar(false);
    QVERIFY(!entry->isEnabled());
    WindowActivator::enableMenuBar(true);
    QVERIFY(entry->isEnabled());
}

QTEST_MAIN(tst_ApplicationActivation)

#include "tst_ApplicationActivation.moc"
