#include "BaseDialog.h"
#include "GuiUtils.h"
#include "MessageCounter.h"
#include "WindowProperties.h"

#include <QApplication>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include <memory>
#include <optional>

using VEK_NAMESPACE::CBaseDialog;
using VEK_NAMESPACE::enableWindowCloseButton;
using VEK_NAMESPACE::moveWindowToScreenCenter;

/// What the window manager and other programs see of the library's work on windows.
class tst_Windows : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void centredWindowIsInFrontOfAll();
    void centredWindowIsRaisedAmongRaised();
    void raisedAfterPendingEvents();
    void centredByFrame_data();
    void centredByFrame();
    void levelStays();
    void dyingWindow();
    void baseDialog();

    void closeButton();
    void closeButtonOfHiddenWindow();
    void closeButtonOfChild();
    void closeButtonOfFixedFlags_data();
    void closeButtonOfFixedFlags();
    void closeRequest();
    void closeByProgram();
    void unknownWindow_data();
    void unknownWindow();

private:
    std::optional<MessageCounter> m_messages;
};

void tst_Windows::initTestCase()
{
    QApplication::setQuitOnLastWindowClosed(false);
}

void tst_Windows::init()
{
    // Qt asks for its place in a frame that the window manager has just taken away.
    m_messages.emplace({"TranslateCoords"});
}

void tst_Windows::cleanup()
{
    QTRY_VERIFY(stacking().isEmpty());
    const int messages = m_messages->count();
    m_messages.reset();
    QCOMPARE(messages, 0);
}

void tst_Windows::centredWindowIsInFrontOfAll()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    PlainWindow other;
    QVERIFY(other.showManaged());
    QTRY_COMPARE(stacking(), QList<WId>({window.winId(), other.winId()}));
    QVERIFY(!isAbove(window.winId()));
    const WId id = window.winId();

    moveWindowToScreenCenter(&window, nullptr);
    QTRY_VERIFY(isAbove(id));
    QTRY_COMPARE(stacking(), QList<WId>({other.winId(), id}));
    QCOMPARE(window.winId(), id);
    QCOMPARE(window.hides, 0);

    PlainWindow late;
    QVERIFY(late.showManaged());
    late.raise();
    other.raise();
    QTRY_COMPARE(stacking(), QList<WId>({late.winId(), other.winId(), id}));
    QVERIFY(!isAbove(late.winId()));
}

void tst_Windows::centredWindowIsRaisedAmongRaised()
{
    PlainWindow first;
    QVERIFY(first.showManaged());
    PlainWindow second;
    QVERIFY(second.showManaged());
    moveWindowToScreenCenter(&first, nullptr);
    moveWindowToScreenCenter(&second, nullptr);
    QTRY_VERIFY(isAbove(second.winId()));
    QTRY_COMPARE(stacking(), QList<WId>({first.winId(), second.winId()}));
    moveWindowToScreenCenter(&first, nullptr);
    QTRY_COMPARE(stacking(), QList<WId>({second.winId(), first.winId()}));
    QVERIFY(isAbove(first.winId()));
}

/// Not before what is pending has happened.
void tst_Windows::raisedAfterPendingEvents()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    bool aboveAtPendingEvent = true;
    QTimer::singleShot(0, this, [&] { aboveAtPendingEvent = isAbove(window.winId()); });
    moveWindowToScreenCenter(&window, nullptr);
    QVERIFY(!isAbove(window.winId()));
    QTRY_VERIFY(isAbove(window.winId()));
    QVERIFY(!aboveAtPendingEvent);
}

void tst_Windows::centredByFrame_data()
{
    QTest::addColumn<bool>("withParent");
    QTest::newRow("no parent") << false;
    QTest::newRow("a parent") << true;
}

/// On the display of 1600 by 1200, as the X server sees it.
void tst_Windows::centredByFrame()
{
    QFETCH(bool, withParent);
    PlainWindow parent(QRect(900, 700, 100, 100));
    QVERIFY(parent.showManaged());
    QWidget* const p = withParent ? &parent : nullptr;

    PlainWindow plain(QRect(10, 10, 201, 100), Qt::FramelessWindowHint);
    QVERIFY(plain.showManaged());
    moveWindowToScreenCenter(&plain, p);
    const QStringList arguments = {QStringLiteral("-id"), windowArgument(plain.winId())};
    QTRY_VERIFY(output("xwininfo", arguments)
                    .contains(QRegularExpression(QStringLiteral(
                        "Absolute upper-left X:  699\\n.*Absolute upper-left Y:  550\\n"))));

    PlainWindow framed(QRect(10, 10, 201, 100));
    QVERIFY(framed.showManaged());
    QTRY_VERIFY(framed.frameGeometry().height() > framed.height());
    moveWindowToScreenCenter(&framed, p);
    const QSize size = framed.frameGeometry().size();
    QTRY_VERIFY(framed.frameGeometry().left() > 600);
    const QPoint place = framed.frameGeometry().topLeft();
    QCOMPARE(framed.frameGeometry().size(), size);
    // Whatever the theme's frame: what is left on both sides differs by a pixel at most.
    const int right = 1600 - place.x() - size.width();
    const int bottom = 1200 - place.y() - size.height();
    QVERIFY(right == place.x() || right == place.x() + 1);
    QVERIFY(bottom == place.y() || bottom == place.y() + 1);
}

void tst_Windows::levelStays()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    moveWindowToScreenCenter(&window, nullptr);
    QTRY_VERIFY(isAbove(window.winId()));
    window.move(5, 5);
    window.lower();
    PlainWindow other;
    QVERIFY(other.showManaged());
    QTRY_COMPARE(stacking(), QList<WId>({other.winId(), window.winId()}));
    QVERIFY(isAbove(window.winId()));

    window.hide();
    QTRY_VERIFY(!isManaged(window));
    QVERIFY(window.showManaged());
    QTRY_VERIFY(isAbove(window.winId()));
}

void tst_Windows::dyingWindow()
{
    auto window = std::make_unique<PlainWindow>();
    QVERIFY(window->showManaged());
    PlainWindow next;
    QVERIFY(next.showManaged());
    moveWindowToScreenCenter(window.get(), nullptr);
    moveWindowToScreenCenter(&next, nullptr);
    window.reset();
    QTRY_VERIFY(isAbove(next.winId()));
}

void tst_Windows::baseDialog()
{
    PlainWindow parent;
    QVERIFY(parent.showManaged());
    CBaseDialog dialog(&parent);
    dialog.setMinimumSize(200, 100);
    QTimer::singleShot(10000, &dialog, &QDialog::reject);
    QTimer poll;
    connect(&poll, &QTimer::timeout, &dialog, [&dialog] {
        if (dialog.isVisible() && isAbove(dialog.winId()))
            dialog.accept();
    });
    poll.start(50);
    QCOMPARE(dialog.exec(), int(QDialog::Accepted));
    QCOMPARE(dialog.pos(), QPoint(700, 550));
}

void tst_Windows::closeButton()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    const Qt::WindowFlags flags = window.windowHandle()->flags();
    const int functions = motifFunctions(id);
    QVERIFY(hasCloseFunction(id));

    enableWindowCloseButton(id, true);
    QVERIFY(hasCloseFunction(id));
    enableWindowCloseButton(id, false);
    QTRY_VERIFY(!hasCloseFunction(id));
    enableWindowCloseButton(id, false);
    QVERIFY(!hasCloseFunction(id));
    // The rest of the title bar stays.
    QVERIFY(window.windowHandle()->flags().testFlag(Qt::WindowTitleHint));
    QVERIFY(window.windowHandle()->flags().testFlag(Qt::WindowMinimizeButtonHint));
    QVERIFY(window.windowHandle()->flags().testFlag(Qt::WindowMaximizeButtonHint));
    QVERIFY(output("xwininfo", {QStringLiteral("-id"), windowArgument(id)})
                .contains(QLatin1String("Map State: IsViewable")));

    enableWindowCloseButton(id, true);
    QTRY_VERIFY(hasCloseFunction(id));
    QCOMPARE(motifFunctions(id), functions);
    QCOMPARE(window.windowHandle()->flags(), flags);
    QCOMPARE(window.winId(), id);
    QVERIFY(window.isVisible());
    QCOMPARE(window.hides, 0);
}

/// It lasts while the window is hidden.
void tst_Windows::closeButtonOfHiddenWindow()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    enableWindowCloseButton(id, false);
    window.hide();
    QTRY_VERIFY(!isManaged(window));
    window.show();
    QCOMPARE(window.windowHandle()->winId(), id);
    QTRY_VERIFY(isManaged(window));
    QVERIFY(!hasCloseFunction(id));
    enableWindowCloseButton(id, true);
    QTRY_VERIFY(hasCloseFunction(id));
}

/// The handle of any widget stands for its window.
void tst_Windows::closeButtonOfChild()
{
    PlainWindow window;
    QWidget child(&window);
    const WId childId = child.winId();
    QVERIFY(window.showManaged());
    enableWindowCloseButton(childId, false);
    QTRY_VERIFY(!hasCloseFunction(window.winId()));
    enableWindowCloseButton(childId, true);
    QTRY_VERIFY(hasCloseFunction(window.winId()));
}

void tst_Windows::closeButtonOfFixedFlags_data()
{
    QTest::addColumn<int>("flags");
    QTest::newRow("a dialog") << int(Qt::Dialog);
    QTest::newRow("a window without maximising") << int(
        Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    QTest::newRow("a frameless window") << int(Qt::Window | Qt::FramelessWindowHint);
}

/// Flags come back as they were, and nothing is hidden meanwhile.
void tst_Windows::closeButtonOfFixedFlags()
{
    QFETCH(int, flags);
    PlainWindow window(QRect(100, 100, 200, 100), Qt::WindowFlags(flags));
    QVERIFY(window.showManaged());
    const WId id = window.winId();
    const Qt::WindowFlags before = window.windowHandle()->flags();
    enableWindowCloseButton(id, false);
    QTRY_VERIFY(!hasCloseFunction(id) || before.testFlag(Qt::FramelessWindowHint));
    enableWindowCloseButton(id, true);
    QCOMPARE(window.windowHandle()->flags(), before);
    QCOMPARE(window.winId(), id);
    QCOMPARE(window.hides, 0);
}

void tst_Windows::closeRequest()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    enableWindowCloseButton(window.winId(), false);
    Taskbar taskbar;
    for (int i = 0; i < 2; ++i) {
        // Requests are served one after the other, so once the second window has gone, the first
        // one's has been dealt with.
        PlainWindow other;
        QVERIFY(other.showManaged());
        taskbar.requestClose(window.winId());
        taskbar.requestClose(other.winId());
        QTRY_VERIFY(!other.isVisible());
        QVERIFY(window.isVisible());
    }

    enableWindowCloseButton(window.winId(), true);
    taskbar.requestClose(window.winId());
    QTRY_VERIFY(!window.isVisible());
}

/// Only the user loses the way to close.
void tst_Windows::closeByProgram()
{
    PlainWindow window;
    QVERIFY(window.showManaged());
    enableWindowCloseButton(window.winId(), false);
    QVERIFY(window.close());
    QVERIFY(!window.isVisible());
}

void tst_Windows::unknownWindow_data()
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

/// Nothing happens, and the X server finds no fault.
void tst_Windows::unknownWindow()
{
    QFETCH(qulonglong, id);
    enableWindowCloseButton(id, false);
    enableWindowCloseButton(id, true);
    // Its answer comes after all earlier errors.
    PlainWindow window;
    QVERIFY(window.showManaged());
    QVERIFY(hasCloseFunction(window.winId()));
}

QTEST_MAIN(tst_Windows)

#include "tst_Windows.moc"
