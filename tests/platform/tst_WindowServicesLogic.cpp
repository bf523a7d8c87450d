#include "WindowServices.h"

#include "ApplicationActivation.h"
#include "RecordingPlatform.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QMainWindow>
#include <QMenu>
#include <QTest>
#include <QWidget>

#include <functional>
#include <limits>
#include <memory>
#include <type_traits>
#include <vector>

namespace {

using WindowId = RecordingPlatform::WindowId;

RecordingPlatform& platform()
{
    return RecordingPlatform::instance();
}

class Handler final : public CWindowFullScreenModeSwitchHandler_Abstract
{
public:
    void onEnterFullScreen() override {}
    void onExitFullScreen() override {}
};

/// A widget that the platform knows, and that can get another native window.
class PlatformWidget : public QWidget
{
public:
    PlatformWidget() { renew(); }
    ~PlatformWidget() override { MacOSRemoveNSApplicationNotificationResponder(*this); }

    void renew()
    {
        platform().windows.erase(internalWinId());
        // A handle given back may be the next one that is given out.
        QWidget other;
        destroy();
        other.winId();
        platform().windows.insert(winId());
    }

private:
    Q_DISABLE_COPY(PlatformWidget)
};

class CountingBox : public QComboBox
{
    Q_OBJECT

public:
    explicit CountingBox(QWidget* parent = nullptr)
        : QComboBox(parent)
    {
        addItems({QStringLiteral("one"), QStringLiteral("two")});
    }

    void hidePopup() override
    {
        ++hides;
        QComboBox::hidePopup();
    }

    int hides = 0;
};

class DerivedBox : public CountingBox
{
    Q_OBJECT

public:
    using CountingBox::CountingBox;
};

class DerivedMenu : public QMenu
{
    Q_OBJECT

public:
    using QMenu::QMenu;
};

class Dialog : public QDialog
{
public:
    using QDialog::QDialog;
    ~Dialog() override = default;
    int closes = 0;

protected:
    void closeEvent(QCloseEvent* event) override
    {
        ++closes;
        QDialog::closeEvent(event);
    }
};

QString number(WindowId id)
{
    return QString::number(id);
}

/// One of the functions that only hand on to the platform.
struct Operation
{
    const char* name;
    std::function<void(WindowId)> call;
    QStringList requests; ///< for window 7
};

std::vector<Operation> operations()
{
    // clang-format off
    return {
        {"minimise", MacOSMinimizeWindow, {"minimizeWindow 7"}},
        {"restore", MacOSDeminituarize, {"restoreMinimizedWindow 7"}},
        {"toggle full screen", MacOSToggleFullScreenMode, {"toggleFullScreen 7"}},
        {"ask for full screen", [](WindowId id) { MacOSIsFullScreenMode(id); }, {}},
        {"ask for the display",
         [](WindowId id) { bool ok = false; MacOSGetDisplayID(id, ok); }, {}},
        {"enable the close button", [](WindowId id) { MacOSSetClosingWindowEnabled(id, true); },
         {"setCloseButtonEnabled 7 true"}},
        {"disable the close button", [](WindowId id) { MacOSSetClosingWindowEnabled(id, false); },
         {"setCloseButtonEnabled 7 false"}},
        {"bring to the top", [](WindowId id) { MacOSBringToTop(id, false); },
         {"setWindowLevel 7 Normal", "orderWindowFront 7"}},
        {"bring to the top as modal", [](WindowId id) { MacOSBringToTop(id, true); },
         {"setWindowLevel 7 ModalPanel", "orderWindowFront 7"}},
        {"bring to the bottom", [](WindowId id) { MacOSBringToBottom(id, false); },
         {"setWindowLevel 7 Normal", "orderWindowBack 7"}},
        {"bring to the bottom as modal", [](WindowId id) { MacOSBringToBottom(id, true); },
         {"setWindowLevel 7 ModalPanel", "orderWindowBack 7"}},
        {"manage in the overview", MacOSSetBehaviorForExpose, {"setManagedInExpose 7"}},
        {"allow full screen", [](WindowId id) { MacOSSetFullscreenCapable(id, nullptr); },
         {"allowFullScreen 7"}},
    };
    // clang-format on
}

} // namespace

/// What is decided before any platform is asked.
class tst_WindowServicesLogic : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void versions_data();
    void versions();

    void windowRequests_data();
    void windowRequests();
    void noWindowNoRequest_data();
    void noWindowNoRequest();
    void fullScreenMode();
    void displayId_data();
    void displayId();
    void expose_data();
    void expose();
    void animation();

    void handlerIsObserved();
    void eachCallReleasesTheOldObserver_data();
    void eachCallReleasesTheOldObserver();
    void handlerDeleted();

    void responder();
    void responderTwiceForOneWidget();
    void responderOfEachWidget();
    void responderOfNoWindow();
    void responderRemoved();

    void applicationRequests();
    void noMenuToHide();
    void noPathToLaunch();

    void deactivatorObserves();
    void closedPopups_data();
    void closedPopups();
    void popupOfAComboBox();
    void popupOfADerivedComboBox();
    void ownWindowsOfAComboBox();
    void untouchedWindows();
    void popupThatDeletesTheNext();
    void nothingToClose();

    void applicationIsActive();
    void menuBar();
    void activateHiddenWindow();
    void activateOrder();
    void activateNothing();
};

void tst_WindowServicesLogic::init()
{
    MacOSOnFullScreenModeSwitchHandlerDeleted();
    platform().clear();
}

void tst_WindowServicesLogic::versions_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<qlonglong>("major");
    QTest::addColumn<qlonglong>("minor");
    QTest::addColumn<qlonglong>("patch");
    QTest::addColumn<bool>("atLeast");

    const auto row = [](const char* name, const char* version, long major, long minor, long patch,
                        bool atLeast) {
        QTest::newRow(name) << QString::fromUtf8(version) << qlonglong(major) << qlonglong(minor)
                            << qlonglong(patch) << atLeast;
    };
    constexpr long greatest = std::numeric_limits<long>::max();
    constexpr long least = std::numeric_limits<long>::min();

    row("the same", "10.6.0", 10, 6, 0, true);
    row("a later patch", "10.6.2", 10, 6, 1, true);
    row("an earlier patch", "10.6.0", 10, 6, 1, false);
    row("a later minor of two digits", "10.10.5", 10, 6, 0, true);
    row("an earlier minor of two digits", "10.10.5", 10, 11, 0, false);
    row("a later minor, an earlier patch", "10.7.0", 10, 6, 5, true);
    row("an earlier minor, a later patch", "10.5.8", 10, 6, 0, false);
    row("an earlier major, a later rest", "9.9.9", 10, 0, 0, false);
    row("a later major, the same minor, an earlier patch", "11.6.0", 10, 6, 1, false);
    row("a later major, the same minor, the same patch", "11.6.1", 10, 6, 1, true);
    row("a later major, an earlier minor, an earlier patch", "11.5.0", 10, 6, 1, true);
    row("a later major, a later minor, an earlier patch", "11.7.0", 10, 6, 1, true);
    row("a fourth number counts for nothing", "10.6.8.9", 10, 6, 9, false);

    row("a word first, against the least", "Version 10.15.7 (Build 1)", 0, 0, 0, false);
    row("a word first gives -1 three times", "Version 10.15.7", -1, -1, -1, true);
    row("a word first, and no more than -1: major", "Version 10.15.7", 0, -1, -1, false);
    row("a word first, and no more than -1: minor", "Version 10.15.7", -1, 0, -1, false);
    row("a word first, and no more than -1: patch", "Version 10.15.7", -1, -1, 0, false);
    row("a word after the numbers", "10.6.8 (Build 10K549)", 10, 6, 8, true);
    row("a word for the patch", "10.6 (Build 8)", 10, 6, 0, false);
    row("a word for the patch gives -1", "10.6 (Build 8)", 10, 6, -1, true);
    row("a number behind a word isn't reached: minor", "10.x.8", 10, 0, 8, false);
    row("a number behind a word isn't reached: patch", "10.x.8", 10, -1, 8, false);
    row("a letter behind a number", "10b6.8", 10, -1, -1, true);

    row("nothing", "", 0, 0, 0, false);
    row("nothing gives -1 three times", "", -1, -1, -1, true);
    row("blanks alone", " \t\n", 0, 0, 0, false);
    row("no minor, which counts as -1", "10", 10, 0, 0, false);
    row("no minor, of a later major", "11", 10, 0, 0, true);
    row("no minor gives -1", "10", 10, -1, -1, true);
    row("no patch, which counts as -1", "10.6", 10, 6, 0, false);
    row("no patch gives -1", "10.6", 10, 6, -1, true);
    row("no patch, of a later minor", "10.6", 10, 5, 9, true);

    row("blanks before each number", " 10. 6.\t8", 10, 6, 8, true);
    row("blanks before each number, against a later patch", " 10. 6.\t8", 10, 6, 9, false);
    row("line ends before each number", "\n10\r\n.6\n.8", 10, 6, 8, true);
    row("blanks for dots", "10 6 8", 10, 6, 8, true);

    row("a negative major", "-10.6.8", 0, 0, 0, false);
    row("a negative major against itself", "-10.6.8", -10, 6, 8, true);
    row("a negative minor", "10.-6.8", 10, 0, 0, false);
    row("a negative minor against itself", "10.-6.8", 10, -6, 8, true);
    row("a negative patch against itself", "10.6.-8", 10, 6, -8, true);
    row("a negative patch against a later one", "10.6.-8", 10, 6, -7, false);
    row("plus signs", "+10.+6.+8", 10, 6, 8, true);
    row("a sign without a number", "-.6.8", 0, 0, 0, false);
    row("leading zeros", "010.06.08", 10, 6, 8, true);

    row("greater than any number", "99999999999999999999.6.8", greatest, 6, 8, true);
    row("greater than any number, the patch too", "10.6.99999999999999999999", 10, 6, greatest,
        true);
    row("less than any number", "-99999999999999999999.6.8", least, 6, 8, true);
    row("less than any number isn't more than that", "-99999999999999999999.6.8", least + 1, 0, 0,
        false);
    row("letters that aren't Latin", "версия 10.6.8", 0, 0, 0, false);
}

void tst_WindowServicesLogic::versions()
{
    QFETCH(QString, version);
    QFETCH(qlonglong, major);
    QFETCH(qlonglong, minor);
    QFETCH(qlonglong, patch);
    QFETCH(bool, atLeast);
    QCOMPARE(
        auxMacOsIsOperatingSystemAtLeastVersion(version, long(major), long(minor), long(patch)),
        atLeast);
}

void tst_WindowServicesLogic::windowRequests_data()
{
    QTest::addColumn<int>("index");
    int index = 0;
    for (const Operation& operation : operations())
        QTest::newRow(operation.name) << index++;
}

void tst_WindowServicesLogic::windowRequests()
{
    QFETCH(int, index);
    const Operation operation = operations().at(size_t(index));
    platform().windows = {7};
    platform().systemVersion = QStringLiteral("10.6.0");
    operation.call(7);
    QCOMPARE(platform().calls, operation.requests);
}

void tst_WindowServicesLogic::noWindowNoRequest_data()
{
    windowRequests_data();
}

void tst_WindowServicesLogic::noWindowNoRequest()
{
    QFETCH(int, index);
    const Operation operation = operations().at(size_t(index));
    platform().windows = {0};
    platform().systemVersion = QStringLiteral("10.6.0");
    operation.call(0);
    QCOMPARE(platform().calls, QStringList());
}

void tst_WindowServicesLogic::fullScreenMode()
{
    QVERIFY(!MacOSIsFullScreenMode(7));
    platform().fullScreen = true;
    QVERIFY(MacOSIsFullScreenMode(7));
    QVERIFY(!MacOSIsFullScreenMode(0));
}

void tst_WindowServicesLogic::displayId_data()
{
    QTest::addColumn<qulonglong>("id");
    QTest::addColumn<int>("display");
    QTest::addColumn<bool>("ok");
    QTest::addColumn<uint>("number");
    QTest::newRow("a display") << qulonglong(7) << 3 << true << 3U;
    QTest::newRow("the display of number 0") << qulonglong(7) << 0 << true << 0U;
    QTest::newRow("no display") << qulonglong(7) << -1 << false << 0U;
    QTest::newRow("no window") << qulonglong(0) << 3 << false << 0U;
}

void tst_WindowServicesLogic::displayId()
{
    QFETCH(qulonglong, id);
    QFETCH(int, display);
    QFETCH(bool, ok);
    QFETCH(uint, number);
    if (display >= 0)
        platform().display = unsigned(display);
    bool told = !ok;
    QCOMPARE(MacOSGetDisplayID(id, told), number);
    QCOMPARE(told, ok);
}

void tst_WindowServicesLogic::expose_data()
{
    QTest::addColumn<QString>("version");
    QTest::addColumn<QStringList>("requests");
    const QStringList asked = {QStringLiteral("setManagedInExpose 7")};
    QTest::newRow("10.6.0") << QStringLiteral("10.6.0") << asked;
    QTest::newRow("a later one") << QStringLiteral("10.10.5 (Build 14F27)") << asked;
    QTest::newRow("an earlier one") << QStringLiteral("10.5.8") << QStringList();
    QTest::newRow("no patch number") << QStringLiteral("10.6") << QStringList();
    QTest::newRow("a word first") << QStringLiteral("Version 10.10.5 (Build 14F27)")
                                  << QStringList();
    QTest::newRow("nothing") << QString() << QStringList();
}

void tst_WindowServicesLogic::expose()
{
    QFETCH(QString, version);
    QFETCH(QStringList, requests);
    platform().systemVersion = version;
    platform().windows = {7};
    MacOSSetBehaviorForExpose(7);
    QCOMPARE(platform().calls, requests);
}

void tst_WindowServicesLogic::animation()
{
    PlatformWidget widget;
    const QString id = number(widget.winId());
    MacOSEnableWindowAnimation(widget, true);
    QCOMPARE(platform().takeCalls(),
             QStringList(QStringLiteral("setWindowAnimationEnabled %1 true").arg(id)));
    MacOSEnableWindowAnimation(widget, false);
    QCOMPARE(platform().takeCalls(),
             QStringList(QStringLiteral("setWindowAnimationEnabled %1 false").arg(id)));
}

void tst_WindowServicesLogic::handlerIsObserved()
{
    platform().windows = {7};
    Handler handler;
    MacOSSetFullscreenCapable(7, &handler);
    QCOMPARE(
        platform().calls,
        QStringList({QStringLiteral("allowFullScreen 7"), QStringLiteral("observeFullScreen 7")}));
    QCOMPARE(platform().handler, static_cast<void*>(&handler));
}

void tst_WindowServicesLogic::eachCallReleasesTheOldObserver_data()
{
    QTest::addColumn<qulonglong>("id");
    QTest::addColumn<bool>("withHandler");
    QTest::addColumn<QStringList>("requests");
    QTest::addColumn<QStringList>("left");
    const QString released = QStringLiteral("observer 1 is released");
    const QStringList second = {QStringLiteral("observer 2 stops"),
                                QStringLiteral("observer 2 is released")};
    QTest::newRow("another handler") << qulonglong(7) << true
                                     << QStringList({released, QStringLiteral("allowFullScreen 7"),
                                                     QStringLiteral("observeFullScreen 7")})
                                     << second;
    QTest::newRow("another window") << qulonglong(8) << true
                                    << QStringList({released, QStringLiteral("allowFullScreen 8"),
                                                    QStringLiteral("observeFullScreen 8")})
                                    << second;
    QTest::newRow("no handler") << qulonglong(7) << false
                                << QStringList({released, QStringLiteral("allowFullScreen 7")})
                                << QStringList();
    QTest::newRow("window 0") << qulonglong(0) << true << QStringList(released) << QStringList();
    QTest::newRow("an unknown window")
        << qulonglong(9) << true << QStringList(released) << QStringList();
    QTest::newRow("neither") << qulonglong(0) << false << QStringList(released) << QStringList();
}

/// It isn't stopped first: that is for MacOSOnFullScreenModeSwitchHandlerDeleted() alone.
void tst_WindowServicesLogic::eachCallReleasesTheOldObserver()
{
    QFETCH(qulonglong, id);
    QFETCH(bool, withHandler);
    QFETCH(QStringList, requests);
    QFETCH(QStringList, left);
    platform().windows = {7, 8};
    Handler first;
    Handler second;
    MacOSSetFullscreenCapable(7, &first);
    platform().calls.clear();

    MacOSSetFullscreenCapable(id, withHandler ? &second : nullptr);
    QCOMPARE(platform().takeCalls(), requests);
    MacOSOnFullScreenModeSwitchHandlerDeleted();
    QCOMPARE(platform().takeCalls(), left);
}

void tst_WindowServicesLogic::handlerDeleted()
{
    MacOSOnFullScreenModeSwitchHandlerDeleted();
    QCOMPARE(platform().takeCalls(), QStringList());

    platform().windows = {7};
    Handler handler;
    MacOSSetFullscreenCapable(7, &handler);
    platform().calls.clear();
    MacOSOnFullScreenModeSwitchHandlerDeleted();
    QCOMPARE(platform().takeCalls(),
             QStringList(
                 {QStringLiteral("observer 1 stops"), QStringLiteral("observer 1 is released")}));
    MacOSOnFullScreenModeSwitchHandlerDeleted();
    QCOMPARE(platform().takeCalls(), QStringList());
}

void tst_WindowServicesLogic::responder()
{
    PlatformWidget widget;
    MacOSSetupNSApplicationNotificationResponder(widget);
    QCOMPARE(platform().takeCalls(),
             QStringList(QStringLiteral("floatWhileActive %1").arg(widget.winId())));
    MacOSRemoveNSApplicationNotificationResponder(widget);
    QCOMPARE(platform().takeCalls(), QStringList(QStringLiteral("observer 1 is released")));
}

void tst_WindowServicesLogic::responderTwiceForOneWidget()
{
    PlatformWidget widget;
    MacOSSetupNSApplicationNotificationResponder(widget);
    const WId before = widget.winId();
    widget.renew();
    QVERIFY(widget.winId() != before);
    platform().calls.clear();

    MacOSSetupNSApplicationNotificationResponder(widget);
    QCOMPARE(platform().takeCalls(),
             QStringList(QStringLiteral("observer 1 gets window %1").arg(widget.winId())));
    QCOMPARE(platform().observers, 1);
    MacOSRemoveNSApplicationNotificationResponder(widget);
    QCOMPARE(platform().takeCalls(), QStringList(QStringLiteral("observer 1 is released")));
}

void tst_WindowServicesLogic::responderOfEachWidget()
{
    PlatformWidget first;
    PlatformWidget second;
    MacOSSetupNSApplicationNotificationResponder(first);
    MacOSSetupNSApplicationNotificationResponder(second);
    QCOMPARE(platform().takeCalls(),
             QStringList({QStringLiteral("floatWhileActive %1").arg(first.winId()),
                          QStringLiteral("floatWhileActive %1").arg(second.winId())}));
    MacOSRemoveNSApplicationNotificationResponder(second);
    QCOMPARE(platform().takeCalls(), QStringList(QStringLiteral("observer 2 is released")));
    MacOSSetupNSApplicationNotificationResponder(first);
    QCOMPARE(platform().takeCalls(),
             QStringList(QStringLiteral("observer 1 gets window %1").arg(first.winId())));
}

void tst_WindowServicesLogic::responderOfNoWindow()
{
    PlatformWidget widget;
    platform().windows.clear();
    MacOSSetupNSApplicationNotificationResponder(widget);
    QCOMPARE(platform().takeCalls(), QStringList());

    // Nor is a responder that is there already told of it.
    platform().windows = {widget.winId()};
    MacOSSetupNSApplicationNotificationResponder(widget);
    platform().windows.clear();
    platform().calls.clear();
    MacOSSetupNSApplicationNotificationResponder(widget);
    QCOMPARE(platform().takeCalls(), QStringList());
}

void tst_WindowServicesLogic::responderRemoved()
{
    PlatformWidget widget;
    MacOSRemoveNSApplicationNotificationResponder(widget);
    QCOMPARE(platform().takeCalls(), QStringList());

    MacOSSetupNSApplicationNotificationResponder(widget);
    MacOSRemoveNSApplicationNotificationResponder(widget);
    platform().calls.clear();
    MacOSRemoveNSApplicationNotificationResponder(widget);
    QCOMPARE(platform().takeCalls(), QStringList());

    MacOSSetupNSApplicationNotificationResponder(widget);
    QCOMPARE(platform().takeCalls(),
             QStringList(QStringLiteral("floatWhileActive %1").arg(widget.winId())));
    QCOMPARE(platform().observers, 2);
}

void tst_WindowServicesLogic::applicationRequests()
{
    MacOSEnableMenuBar(true);
    MacOSEnableMenuBar(false);
    MacOSDeleteSpecialEditMenuItems();
    MacOSEndModalSession();
    MacOSShowCursor(true);
    MacOSShowCursor(false);
    MacOSLaunchApplication("/a folder/pr\xc3\xb6gram");
    QMenu menu;
    MacOSHideMenuWidget(&menu);
    QCOMPARE(platform().calls,
             QStringList({QStringLiteral("setMenuBarEnabled true"),
                          QStringLiteral("setMenuBarEnabled false"),
                          QStringLiteral("removeSpecialEditMenuItems"),
                          QStringLiteral("endModalSession"), QStringLiteral("showCursor true"),
                          QStringLiteral("showCursor false"),
                          QStringLiteral("launch /a folder/pr\u00f6gram"),
                          QStringLiteral("cancelMenuTracking")}));
    QCOMPARE(platform().cancelledMenu, static_cast<const QMenu*>(&menu));
}

void tst_WindowServicesLogic::noMenuToHide()
{
    MacOSHideMenuWidget(nullptr);
    QCOMPARE(platform().calls, QStringList());
}

void tst_WindowServicesLogic::noPathToLaunch()
{
    MacOSLaunchApplication(nullptr);
    QCOMPARE(platform().calls, QStringList());
}

void tst_WindowServicesLogic::deactivatorObserves()
{
    static_assert(!std::is_polymorphic<TopLevelWindowDeactivator>::value, "hosts hold it by value");
    {
        const TopLevelWindowDeactivator deactivator;
        QCOMPARE(platform().calls, QStringList(QStringLiteral("observeResign")));
        const TopLevelWindowDeactivator second;
        QCOMPARE(platform().observers, 2);
        platform().calls.clear();
    }
    QCOMPARE(platform().calls,
             QStringList({QStringLiteral("observer 2 is released"),
                          QStringLiteral("observer 1 is released")}));
}

void tst_WindowServicesLogic::closedPopups_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("a menu") << QStringLiteral("menu");
    QTest::newRow("a menu of a derived class") << QStringLiteral("derived");
    QTest::newRow("a window's menu") << QStringLiteral("window's");
    QTest::newRow("a submenu") << QStringLiteral("submenu");
}

void tst_WindowServicesLogic::closedPopups()
{
    QFETCH(QString, kind);
    QMainWindow window;
    window.show();
    const std::unique_ptr<QMenu> menu(kind == QLatin1String("derived")        ? new DerivedMenu
                                          : kind == QLatin1String("window's") ? new QMenu(&window)
                                                                              : new QMenu);
    QMenu* shown = menu.get();
    if (kind == QLatin1String("submenu"))
        shown = menu->addMenu(QStringLiteral("more"));
    shown->addAction(QStringLiteral("entry"));
    shown->popup(QPoint());
    QVERIFY(shown->isVisible());

    TopLevelWindowDeactivator::deactivateAllTopLevelWidgets();
    QVERIFY(!shown->isVisible());
    QVERIFY(window.isVisible());
    QCOMPARE(platform().calls, QStringList());
}

/// The box hides what it has shown, and nothing that belongs to it is closed directly.
void tst_WindowServicesLogic::popupOfAComboBox()
{
    CountingBox box;
    box.show();
    box.showPopup();
    QVERIFY(box.view()->isVisible());
    TopLevelWindowDeactivator::deactivateAllTopLevelWidgets();
    QCOMPARE(box.hides, 1);
    QTRY_VERIFY(!box.view()->isVisible());
    QVERIFY(box.isVisible());

    // The list still exists, hidden, and the box is told again.
    TopLevelWindowDeactivator::deactivateAllTopLevelWidgets();
    QCOMPARE(box.hides, 2);
}

void tst_WindowServicesLogic::popupOfADerivedComboBox()
{
    DerivedBox box;
    box.show();
    box.showPopup();
    TopLevelWindowDeactivator::deactivateAllTopLevelWidgets();
    QCOMPARE(box.hides, 1);
    QTRY_VERIFY(!box.view()->isVisible());
}

/// Not closed itself, even if it is a menu: its box is told instead, once for each.
void tst_WindowServicesLogic::ownWindowsOfAComboBox()
{
    CountingBox box;
    box.show();
    Dialog dialog(&box);
    dialog.show();
    QMenu menu(&box);
    menu.addAction(QStringLiteral("entry"));
    menu.popup(QPoint());
    QVERIFY(menu.isVisible());

    TopLevelWindowDeactivator::deactivateAllTopLevelWidgets();
    QCOMPARE(box.hides, 2);
    QVERIFY(menu.isVisible());
    QVERIFY(dialog.isVisible());
    QCOMPARE(dialog.closes, 0);
}

void tst_WindowServicesLogic::untouchedWindows()
{
    QMainWindow window;
    window.show();
    Dialog dialog;
    dialog.show();
    Dialog modal(&window);
    modal.setModal(true);
    modal.show();
    QWidget toolTip(nullptr, Qt::ToolTip);
    toolTip.show();
    // A box that isn't the parent but the window itself.
    CountingBox box;
    box.show();
    QMenu tornOffOwner;
    Dialog ofAMenu(&tornOffOwner);
    ofAMenu.show();
    QWidget popup(nullptr, Qt::Popup);
    popup.show();

    TopLevelWindowDeactivator::deactivateAllTopLevelWidgets();
    const QList<QWidget*> windows = {&window, &dialog, &modal, &popup, &toolTip, &box, &ofAMenu};
    for (const QWidget* widget : windows)
        QVERIFY2(widget->isVisible(), widget->metaObject()->className());
    QCOMPARE(dialog.closes + modal.closes + ofAMenu.closes, 0);
    QCOMPARE(box.hides, 0);
}

/// Whichever of them comes first.
void tst_WindowServicesLogic::popupThatDeletesTheNext()
{
    std::unique_ptr<QMenu> menus[2];
    for (auto& menu : menus) {
        menu = std::make_unique<QMenu>();
        menu->addAction(QStringLiteral("entry"));
    }
    for (int i = 0; i < 2; ++i)
        connect(menus[i].get(), &QMenu::aboutToHide, this, [&menus, i] { menus[1 - i].reset(); });
    for (auto& menu : menus)
        menu->popup(QPoint());

    TopLevelWindowDeactivator::deactivateAllTopLevelWidgets();
    QVERIFY(bool(menus[0]) != bool(menus[1]));
    QVERIFY(!(menus[0] ? menus[0] : menus[1])->isVisible());
}

void tst_WindowServicesLogic::nothingToClose()
{
    QVERIFY(QApplication::topLevelWidgets().isEmpty());
    TopLevelWindowDeactivator::deactivateAllTopLevelWidgets();
    QVERIFY(QApplication::topLevelWidgets().isEmpty());
}

void tst_WindowServicesLogic::applicationIsActive()
{
    QVERIFY(!WindowActivator::isAppActive());
    platform().applicationActive = true;
    QVERIFY(WindowActivator::isAppActive());
}

void tst_WindowServicesLogic::menuBar()
{
    WindowActivator::enableMenuBar(true);
    WindowActivator::enableMenuBar(false);
    QCOMPARE(platform().calls,
             QStringList({QStringLiteral("setMenuBarEnabled true"),
                          QStringLiteral("setMenuBarEnabled false")}));
}

void tst_WindowServicesLogic::activateHiddenWindow()
{
    QWidget widget;
    bool shownBefore = false;
    platform().onActivation = [&] { shownBefore = widget.isVisible(); };
    WindowActivator::activate(&widget);
    QCOMPARE(platform().calls, QStringList(QStringLiteral("activateApplication")));
    QCOMPARE(platform().activatedWidget, static_cast<const QWidget*>(&widget));
    QVERIFY(shownBefore);
    QTRY_VERIFY(widget.isActiveWindow());
}

namespace {

/// Runs a function when a widget is raised.
class OnRaise : public QObject
{
public:
    OnRaise(QWidget* widget, std::function<void()> function)
        : m_function(std::move(function))
    {
        widget->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::ZOrderChange)
            m_function();
        return QObject::eventFilter(watched, event);
    }

private:
    const std::function<void()> m_function;
};

} // namespace

/// First the application, then the window, and the window's place at the end.
void tst_WindowServicesLogic::activateOrder()
{
    QWidget widget;
    widget.show();
    QWidget other;
    other.show();
    other.activateWindow();
    QTRY_VERIFY(other.isActiveWindow());

    QStringList steps;
    const auto step = [&](const char* name) {
        QGuiApplication::sync(); // what has been asked for has happened
        steps << QLatin1String(name)
                + (widget.isActiveWindow() ? QLatin1String(", active") : QLatin1String(""));
    };
    platform().onActivation = [&] { step("application"); };
    const OnRaise onRaise(&widget, [&] { step("raised"); });
    WindowActivator::activate(&widget);
    QCOMPARE(steps, QStringList({QStringLiteral("application"), QStringLiteral("raised, active")}));
}

void tst_WindowServicesLogic::activateNothing()
{
    WindowActivator::activate(nullptr);
    QCOMPARE(platform().calls, QStringList());
}

QTEST_MAIN(tst_WindowServicesLogic)

#include "tst_WindowServicesLogic.moc"
