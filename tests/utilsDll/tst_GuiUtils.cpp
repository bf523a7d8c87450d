#include "GuiUtils.h"

#include "MessageCounter.h"
#include "RecordingLogger.h"

#include <QApplication>
#include <QCursor>
#include <QMenu>
#include <QMouseEvent>
#include <QProcess>
#include <QRegularExpression>
#include <QScreen>
#include <QTest>
#include <QTextStream>
#include <QTimer>
#include <QWindow>

#include <cstdlib>
#include <memory>
#include <optional>

using VEK_NAMESPACE::enableWindowCloseButton;
using VEK_NAMESPACE::flickHoverEvent;
using VEK_NAMESPACE::moveWindowToScreenCenter;
using VEK_NAMESPACE::setWidgetFullTransparency;
using VEK_NAMESPACE::synthesizeMouseEvent;
using VEK_NAMESPACE::systemScalingFactor;

namespace {

const char askEarly[] = "--ask-early";

QString toText(const QPoint& point)
{
    return QStringLiteral("%1,%2").arg(point.x()).arg(point.y());
}

/// Writes down the hover and mouse events that reach a widget: those that a program sends in full,
/// those that come from the mouse as "real" moves.
class HoverRecorder : public QObject
{
public:
    explicit HoverRecorder(QWidget* widget) { widget->installEventFilter(this); }

    QStringList takeEvents()
    {
        QStringList events;
        events.swap(m_events);
        return events;
    }
    QStringList takeRealMoves()
    {
        QStringList moves;
        moves.swap(m_realMoves);
        return moves;
    }
    int paints = 0;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        switch (event->type()) {
        case QEvent::Enter:
        case QEvent::Leave:
            m_events << QLatin1String(event->type() == QEvent::Enter ? "enter" : "leave");
            break;
        case QEvent::MouseMove:
            addMove(*static_cast<QMouseEvent*>(event));
            break;
        case QEvent::Paint:
            ++paints;
            break;
        default:
            break;
        }
        return QObject::eventFilter(watched, event);
    }

private:
    void addMove(const QMouseEvent& move)
    {
        if (move.spontaneous()) {
            m_realMoves << toText(move.globalPos());
            return;
        }
        m_events << QStringLiteral("move %1 at %2 button %3 buttons %4 modifiers %5")
                        .arg(toText(move.pos()), toText(move.globalPos()))
                        .arg(int(move.button()))
                        .arg(int(move.buttons()))
                        .arg(int(move.modifiers()), 0, 16);
    }

    QStringList m_events;
    QStringList m_realMoves;
};

/// An active window of 200 by 100 at (100, 150), served and painted.
class ActiveWindow : public QWidget
{
public:
    ActiveWindow()
        : QWidget(nullptr, Qt::FramelessWindowHint)
    {
        setMouseTracking(true);
        setGeometry(100, 150, 200, 100);
        show();
    }

    bool isReady()
    {
        return QTest::qWaitForWindowActive(this) && QTest::qWaitForWindowExposed(this);
    }
};

/// Doesn't change its highlight by itself.
class DeafMenu : public QMenu
{
protected:
    void mouseMoveEvent(QMouseEvent*) override {}
    void leaveEvent(QEvent*) override {}
};

/// Lets what is posted, and timers that are due, happen.
void serveWhatIsDue()
{
    bool done = false;
    QTimer::singleShot(0, qApp, [&done] { done = true; });
    QTRY_VERIFY(done);
}

} // namespace

class tst_GuiUtils : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void centre_data();
    void centre();
    void centreByFrame();
    void centreOfNoWindow_data();
    void centreOfNoWindow();
    void centreOfDyingWindow();

    void fullTransparency();
    void fullTransparencyOfChildren();
    void noWidget();

    void scalingFactor();
    void scalingFactorIsFixed();

    void closeButtonWithoutWindowManager_data();
    void closeButtonWithoutWindowManager();

    void synthesizedMove_data();
    void synthesizedMove();

    void flickInside_data();
    void flickInside();
    void flickOutside_data();
    void flickOutside();
    void flickWithoutActiveWindow();
    void flickMenu();
    void flickMenuOutside();
    void flickMenuHighlights();
    void flickMenuOnSeparator_data();
    void flickMenuOnSeparator();

private:
    bool popUp(QMenu& menu);

    RecordingLogger m_logger;
    std::optional<MessageCounter> m_messages;
};

void tst_GuiUtils::initTestCase()
{
    QCOMPARE(QGuiApplication::primaryScreen()->geometry(), QRect(0, 0, 800, 600));
}

void tst_GuiUtils::init()
{
    // Which the offscreen platform says of windows with a layout.
    m_messages.emplace({"propagateSizeHints"});
    m_logger.takeLines();
}

void tst_GuiUtils::cleanup()
{
    serveWhatIsDue();
    const int messages = m_messages->count();
    m_messages.reset();
    QCOMPARE(messages, 0);
    QCOMPARE(m_logger.takeLines(), QStringList());
}

/// Shows a menu, of which the offscreen platform says what it can't do. Nothing is printed before.
bool tst_GuiUtils::popUp(QMenu& menu)
{
    if (m_messages->count() != 0)
        return false;
    menu.popup(QPoint(400, 300));
    const bool isShown = QTest::qWaitForWindowExposed(&menu);
    m_messages->reset();
    return isShown;
}

void tst_GuiUtils::centre_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPoint>("place");
    QTest::newRow("even rest") << QSize(200, 100) << QPoint(300, 250);
    QTest::newRow("odd rest") << QSize(201, 103) << QPoint(299, 248);
    QTest::newRow("as large as the screen") << QSize(800, 600) << QPoint(0, 0);
    QTest::newRow("larger by one, towards zero") << QSize(801, 601) << QPoint(0, 0);
    QTest::newRow("larger by two") << QSize(802, 602) << QPoint(-1, -1);
    QTest::newRow("larger by an odd number, towards zero") << QSize(805, 607) << QPoint(-2, -3);
    QTest::newRow("wider only") << QSize(1000, 400) << QPoint(-100, 100);
}

void tst_GuiUtils::centre()
{
    QFETCH(QSize, size);
    QFETCH(QPoint, place);

    QWidget parent;
    QWidget child(&parent);
    parent.setGeometry(13, 17, 50, 60);
    parent.show();
    for (const bool shown : {false, true}) {
        for (QWidget* const p : {static_cast<QWidget*>(nullptr), &parent, &child}) {
            QWidget window(nullptr, Qt::FramelessWindowHint);
            window.setGeometry(QRect(QPoint(7, 9), size));
            window.setVisible(shown);
            moveWindowToScreenCenter(&window, p);
            QCOMPARE(window.geometry(), QRect(place, size));
            serveWhatIsDue();
            QCOMPARE(window.geometry(), QRect(place, size));
            QCOMPARE(window.isVisible(), shown);
        }
    }
}

/// The offscreen platform gives a titled window a frame of two pixels.
void tst_GuiUtils::centreByFrame()
{
    QWidget window;
    window.setGeometry(20, 30, 201, 100);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(window.frameGeometry().size(), QSize(205, 104));
    moveWindowToScreenCenter(&window, nullptr);
    QCOMPARE(window.frameGeometry(), QRect(297, 248, 205, 104));
}

void tst_GuiUtils::centreOfNoWindow_data()
{
    QTest::addColumn<bool>("isNull");
    QTest::newRow("null") << true;
    QTest::newRow("a child") << false;
}

void tst_GuiUtils::centreOfNoWindow()
{
    QFETCH(bool, isNull);
    QWidget parent;
    QWidget child(&parent);
    child.setGeometry(3, 4, 5, 6);
    moveWindowToScreenCenter(isNull ? nullptr : &child, &parent);
    QCOMPARE(child.geometry(), QRect(3, 4, 5, 6));
    const QStringList lines = m_logger.takeLines();
    QCOMPARE(lines.size(), 1);
    const QRegularExpression line(QStringLiteral(
        "^E ASSERT_X in .*PluginShell/modules/utilsDll/GuiUtils\\.cpp [0-9]+: Bug!!!$"));
    QVERIFY2(line.match(lines.first()).hasMatch(), qPrintable(lines.first()));
    serveWhatIsDue();
    QVERIFY(!child.testAttribute(Qt::WA_NativeWindow));
}

void tst_GuiUtils::centreOfDyingWindow()
{
    auto* window = new QWidget;
    window->show();
    moveWindowToScreenCenter(window, nullptr);
    moveWindowToScreenCenter(window, nullptr);
    delete window;
    serveWhatIsDue();
}

void tst_GuiUtils::fullTransparency()
{
    const QList<QPalette::ColorRole> cleared = {
        QPalette::Window,   QPalette::Button, QPalette::Base, QPalette::Light,
        QPalette::Midlight, QPalette::Dark,   QPalette::Mid,  QPalette::Shadow};
    QPalette palette;
    for (int role = 0; role < QPalette::NColorRoles; ++role) {
        palette.setBrush(QPalette::All, QPalette::ColorRole(role),
                         QBrush(QColor(role, 100, 200), Qt::Dense3Pattern));
    }
    QWidget widget;
    widget.setPalette(palette);
    setWidgetFullTransparency(&widget);

    for (int role = 0; role < QPalette::NColorRoles; ++role) {
        if (role == QPalette::NoRole)
            continue;
        const bool isCleared = cleared.contains(QPalette::ColorRole(role));
        const QBrush expected = isCleared ? QBrush(QColor(0, 0, 0, 0), Qt::SolidPattern)
                                          : QBrush(QColor(role, 100, 200), Qt::Dense3Pattern);
        for (const QPalette::ColorGroup group :
             {QPalette::Active, QPalette::Inactive, QPalette::Disabled}) {
            const QBrush brush = widget.palette().brush(group, QPalette::ColorRole(role));
            QVERIFY2(brush == expected,
                     qPrintable(QStringLiteral("role %1 group %2").arg(role).arg(group)));
        }
    }
}

/// Children that have no palette of their own take the new one on.
void tst_GuiUtils::fullTransparencyOfChildren()
{
    QWidget widget;
    QWidget child(&widget);
    setWidgetFullTransparency(&widget);
    QCOMPARE(child.palette().color(QPalette::Base), QColor(0, 0, 0, 0));
    QCOMPARE(QApplication::palette().color(QPalette::Base).alpha(), 255);
}

void tst_GuiUtils::noWidget()
{
    setWidgetFullTransparency(nullptr);
    synthesizeMouseEvent(nullptr, QPoint(1, 2));
    ActiveWindow window;
    QVERIFY(window.isReady());
    const QPoint before = QCursor::pos();
    flickHoverEvent(nullptr);
    QCOMPARE(QCursor::pos(), before);
}

/// Dots per inch, not a ratio.
void tst_GuiUtils::scalingFactor()
{
    QCOMPARE(systemScalingFactor(), 120.0);
    QCOMPARE(systemScalingFactor(), 120.0);
}

/// A process that asks before it has a screen stays with the answer.
void tst_GuiUtils::scalingFactorIsFixed()
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {QString::fromLatin1(askEarly)});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.readAllStandardOutput(), QByteArray("1, 1 with a screen of 120\n"));
}

void tst_GuiUtils::closeButtonWithoutWindowManager_data()
{
    QTest::addColumn<bool>("knownWindow");
    QTest::addColumn<qulonglong>("winId");
    QTest::newRow("no handle") << false << qulonglong(0);
    QTest::newRow("unknown handle") << false << qulonglong(0x7fffff0123456789);
    QTest::newRow("a window's handle") << true << qulonglong(0);
}

/// Silently nothing, and the window closes as ever.
void tst_GuiUtils::closeButtonWithoutWindowManager()
{
    QFETCH(bool, knownWindow);
    QFETCH(qulonglong, winId);
    QWidget window;
    window.show();
    const qulonglong handle = knownWindow ? window.winId() : winId;
    const Qt::WindowFlags flags = window.windowHandle()->flags();
    for (const bool enable : {false, false, true, true, false}) {
        enableWindowCloseButton(handle, enable);
        QCOMPARE(window.windowHandle()->flags(), flags);
        QVERIFY(window.isVisible());
    }
    QVERIFY(window.windowHandle()->close());
    QVERIFY(!window.isVisible());
}

void tst_GuiUtils::synthesizedMove_data()
{
    QTest::addColumn<QPoint>("global");
    QTest::addColumn<QString>("event");
    QTest::newRow("inside") << QPoint(110, 170)
                            << "move 10,20 at 110,170 button 0 buttons 0 modifiers 0";
    QTest::newRow("outside") << QPoint(50, 500)
                             << "move -50,350 at 50,500 button 0 buttons 0 modifiers 0";
}

/// Without buttons and modifiers, whatever is pressed.
void tst_GuiUtils::synthesizedMove()
{
    QFETCH(QPoint, global);
    QFETCH(QString, event);
    ActiveWindow window;
    QVERIFY(window.isReady());
    HoverRecorder recorder(&window);
    QTest::mousePress(window.windowHandle(), Qt::LeftButton, Qt::ShiftModifier, QPoint(5, 5));
    QCOMPARE(QGuiApplication::mouseButtons(), Qt::MouseButtons(Qt::LeftButton));
    recorder.takeEvents();
    const QPoint before = QCursor::pos();
    synthesizeMouseEvent(&window, global);
    QCOMPARE(recorder.takeEvents(), QStringList{event});
    QCOMPARE(QCursor::pos(), before);
    QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
}

void tst_GuiUtils::flickInside_data()
{
    QTest::addColumn<QPoint>("cursor");
    QTest::addColumn<QString>("move");
    QTest::addColumn<QString>("flicked");
    QTest::newRow("in the middle") << QPoint(200, 200) << "100,50 at 200,200"
                                   << "201,201";
    QTest::newRow("first pixel") << QPoint(100, 150) << "0,0 at 100,150"
                                 << "101,151";
    // From there the flick leaves the widget.
    QTest::newRow("last pixel") << QPoint(299, 249) << "199,99 at 299,249" << QString();
}

void tst_GuiUtils::flickInside()
{
    QFETCH(QPoint, cursor);
    QFETCH(QString, move);
    QFETCH(QString, flicked);
    ActiveWindow window;
    QVERIFY(window.isReady());
    QCursor::setPos(cursor);
    serveWhatIsDue();
    HoverRecorder recorder(&window);

    flickHoverEvent(&window);
    QCOMPARE(recorder.takeEvents(),
             QStringList({QStringLiteral("leave"), QStringLiteral("enter"),
                          QStringLiteral("move %1 button 0 buttons 0 modifiers 0").arg(move)}));
    QCOMPARE(QCursor::pos(), cursor);
    QCOMPARE(recorder.paints, 0);
    QTRY_VERIFY(recorder.paints > 0);
    serveWhatIsDue();
    QStringList realMoves = recorder.takeRealMoves();
    QCOMPARE(realMoves.takeLast(), toText(cursor));
    QCOMPARE(realMoves.join(QLatin1Char(' ')), flicked);
}

void tst_GuiUtils::flickOutside_data()
{
    QTest::addColumn<QPoint>("cursor");
    QTest::newRow("left of it") << QPoint(99, 200);
    QTest::newRow("above it") << QPoint(200, 149);
    QTest::newRow("right of it") << QPoint(300, 200);
    QTest::newRow("below it") << QPoint(200, 250);
    QTest::newRow("far away") << QPoint(700, 500);
}

void tst_GuiUtils::flickOutside()
{
    QFETCH(QPoint, cursor);
    ActiveWindow window;
    QVERIFY(window.isReady());
    // Whatever moves the cursor there is told of it.
    QWidget ground(nullptr, Qt::FramelessWindowHint);
    ground.setMouseTracking(true);
    ground.setGeometry(0, 0, 800, 600);
    ground.show();
    QCursor::setPos(cursor);
    serveWhatIsDue();
    HoverRecorder recorder(&window);
    HoverRecorder groundRecorder(&ground);

    flickHoverEvent(&window);
    QCOMPARE(recorder.takeEvents(), QStringList{QStringLiteral("leave")});
    QCOMPARE(recorder.paints, 0);
    QTRY_VERIFY(recorder.paints > 0);
    serveWhatIsDue();
    QCOMPARE(QCursor::pos(), cursor);
    QCOMPARE(recorder.takeRealMoves() + groundRecorder.takeRealMoves(), QStringList());
}

void tst_GuiUtils::flickWithoutActiveWindow()
{
    ActiveWindow window;
    QVERIFY(window.isReady());
    QCursor::setPos(200, 200);
    serveWhatIsDue();
    QApplication::setActiveWindow(nullptr);
    QVERIFY(!QApplication::activeWindow());
    HoverRecorder recorder(&window);
    flickHoverEvent(&window);
    QCursor::setPos(700, 500);
    serveWhatIsDue();
    recorder.takeEvents();
    flickHoverEvent(&window);
    QCOMPARE(recorder.takeEvents(), QStringList());
    QCOMPARE(QCursor::pos(), QPoint(700, 500));
}

/// A menu gets two moves more, with what is pressed.
void tst_GuiUtils::flickMenu()
{
    ActiveWindow window;
    QVERIFY(window.isReady());
    QTest::mousePress(window.windowHandle(), Qt::RightButton, Qt::ControlModifier, QPoint(5, 5));
    QMenu menu;
    menu.addAction(QStringLiteral("First"));
    QVERIFY(popUp(menu));
    QCursor::setPos(410, 305);
    serveWhatIsDue();
    QCOMPARE(QGuiApplication::mouseButtons(), Qt::MouseButtons(Qt::RightButton));
    QCOMPARE(QGuiApplication::keyboardModifiers(), Qt::KeyboardModifiers(Qt::ControlModifier));
    HoverRecorder recorder(&menu);
    flickHoverEvent(&menu);
    const QStringList events = recorder.takeEvents();
    menu.close();
    QTest::mouseRelease(window.windowHandle(), Qt::RightButton, Qt::NoModifier, QPoint(5, 5));

    const QString pressed =
        QStringLiteral("move 10,5 at 410,305 button 0 buttons 2 modifiers 4000000");
    QCOMPARE(events,
             QStringList({QStringLiteral("leave"), QStringLiteral("enter"),
                          QStringLiteral("move 10,5 at 410,305 button 0 buttons 0 modifiers 0"),
                          pressed, pressed}));
}

void tst_GuiUtils::flickMenuOutside()
{
    ActiveWindow window;
    QVERIFY(window.isReady());
    QMenu menu;
    menu.addAction(QStringLiteral("First"));
    QVERIFY(popUp(menu));
    QCursor::setPos(390, 305);
    serveWhatIsDue();
    HoverRecorder recorder(&menu);
    flickHoverEvent(&menu);
    QCOMPARE(recorder.takeEvents(), QStringList{QStringLiteral("leave")});
    menu.close();
}

void tst_GuiUtils::flickMenuHighlights()
{
    ActiveWindow window;
    QVERIFY(window.isReady());
    QMenu menu;
    menu.addAction(QStringLiteral("First"));
    const QAction* second = menu.addAction(QStringLiteral("Second"));
    QVERIFY(popUp(menu));
    QCursor::setPos(menu.mapToGlobal(menu.actionGeometry(menu.actions().at(1)).center()));
    serveWhatIsDue();
    menu.setActiveAction(nullptr);
    QCOMPARE(menu.activeAction(), nullptr);
    flickHoverEvent(&menu);
    QCOMPARE(menu.activeAction(), second);
    menu.close();
}

void tst_GuiUtils::flickMenuOnSeparator_data()
{
    QTest::addColumn<bool>("deaf");
    QTest::newRow("a plain menu") << false;
    QTest::newRow("a menu that doesn't react to the mouse") << true;
}

void tst_GuiUtils::flickMenuOnSeparator()
{
    QFETCH(bool, deaf);
    ActiveWindow window;
    QVERIFY(window.isReady());
    const std::unique_ptr<QMenu> menu(deaf ? new DeafMenu : new QMenu);
    menu->addAction(QStringLiteral("First"));
    QAction* separator = menu->addAction(QStringLiteral("Middle"));
    menu->addAction(QStringLiteral("Last"));
    QVERIFY(popUp(*menu));
    // A menu highlights no separator, but keeps the highlight of what becomes one.
    menu->setActiveAction(separator);
    separator->setSeparator(true);
    QCursor::setPos(menu->mapToGlobal(menu->actionGeometry(separator).center()));
    QCOMPARE(menu->activeAction(), separator);
    flickHoverEvent(menu.get());
    QCOMPARE(menu->activeAction(), nullptr);

    // Only a separator loses its highlight so; else the menu itself decides.
    if (deaf) {
        separator->setSeparator(false);
        menu->setActiveAction(separator);
        flickHoverEvent(menu.get());
        QCOMPARE(menu->activeAction(), separator);
    }
    menu->close();
}

int main(int argc, char* argv[])
{
    qputenv("QT_FONT_DPI", "120");
    const bool asksEarly = argc == 2 && qstrcmp(argv[1], askEarly) == 0;
    const double early = asksEarly ? systemScalingFactor() : 0.0;
    QApplication app(argc, argv);
    if (asksEarly) {
        QTextStream(stdout) << early << ", " << systemScalingFactor() << " with a screen of "
                            << QGuiApplication::primaryScreen()->logicalDotsPerInch() << '\n';
        return EXIT_SUCCESS;
    }
    tst_GuiUtils test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_GuiUtils.moc"
