#include "ExcludeUserInpuEventLoop.h"

#include "DelayedCall.h"
#include "MessageCounter.h"

#include <QApplication>
#include <QCursor>
#include <QElapsedTimer>
#include <QEvent>
#include <QHash>
#include <QMetaMethod>
#include <QMouseEvent>
#include <QPointer>
#include <QRegularExpression>
#include <QSet>
#include <QThread>
#include <QTimer>
#include <QWidget>
#include <QtTest>

#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>
#include <type_traits>

Q_DECLARE_METATYPE(std::function<void(CExcludeUserInpuEventLoop&)>)

namespace {

using Leave = std::function<void(CExcludeUserInpuEventLoop&)>;

constexpr int firstEventType = 1;
constexpr int lastEventType = 1200;

/// Counts the events that reach it.
class Target : public QObject
{
public:
    QHash<int, int> events;

    bool event(QEvent* event) override
    {
        ++events[event->type()];
        // Without QObject's answer: some of these types need a class of their own.
        return true;
    }
};

/// Sends an event of that type and tells whether it got through to the target.
bool reaches(Target& target, int type)
{
    const int before = target.events.value(type);
    QEvent event{QEvent::Type(type)};
    QCoreApplication::sendEvent(&target, &event);
    return target.events.value(type) == before + 1;
}

bool filterIsOn(Target& target)
{
    return !reaches(target, QEvent::KeyPress);
}

/// Runs \a action as soon as the next event loop runs.
void inTheLoop(QObject& context, const std::function<void()>& action)
{
    QTimer::singleShot(0, &context, action);
}

const QSet<int>& excludedTypes()
{
    static const QSet<int> types{2,   4,   6,   7,   8,   9,   19,  51,  60,  61,  62,  63, 117,
                                 155, 156, 157, 158, 159, 164, 165, 166, 167, 174, 175, 176};
    return types;
}

} // namespace

class tst_ExcludeUserInpuEventLoop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filterSwallows_data();
    void filterSwallows();
    void filterLetsPass_data();
    void filterLetsPass();
    void filterLetsEverythingElsePass();
    void filterWithoutObjectOrEventSwallowsNothing();
    void filterOfNoTargetIsInstalledNowhere();
    void filterBelongsToItsTargetAndLeavesIt();
    void filterDiesWithItsTarget();
    void filterOfOneObjectLeavesOthersAlone();
    void filterOfTheApplicationCoversAllObjects();
    void filterHasNoMetaObjectOfItsOwn();
    void filterOnAnotherThreadThanTheTargetWarns_data();
    void filterOnAnotherThreadThanTheTargetWarns();
    void filterOfTheApplicationOnAWorkerThreadIsSilent();

    void slotsOfTheMetaObject();
    void loopIsNoEventLoopAndHasItsParent();
    void resultTellsHowTheLoopWasLeft_data();
    void resultTellsHowTheLoopWasLeft();
    void timeoutEndsTheLoopWithZero();
    void withoutTimeoutNoQuitIsRequested_data();
    void withoutTimeoutNoQuitIsRequested();
    void secondExecInsideIsRefused();
    void leavingALoopThatDoesNotRunHasNoEffect_data();
    void leavingALoopThatDoesNotRunHasNoEffect();
    void filterIsThereWhileTheLoopRuns();
    void filterGoesWhenAnEventHandlerThrows();
    void timersSignalsAndDelayedCallsGoOn();
    void withoutATargetTheLoopRunsUnfiltered();
    void deadTargetLeavesTheLoopUnfiltered();
    void otherUserInputIsDeferred_data();
    void otherUserInputIsDeferred();
    void targetMayDieWhileTheLoopRuns();
    void targetMayDieAfterTheLoop();
    void quitOfAnEarlierRunIsStillToCome();
    void quitOfAnEarlierRunEndsALaterOne();
    void quitOfAnEarlierRunIsReplacedByANewTimeout();
    void targetOnAnotherThreadWarnsAndTheLoopRuns();
    void loopOnAWorkerThreadWithTheApplicationRunsInSilence();
};

void tst_ExcludeUserInpuEventLoop::filterSwallows_data()
{
    QTest::addColumn<int>("type");

    QTest::newRow("MouseButtonPress") << 2;
    QTest::newRow("MouseButtonDblClick") << 4;
    QTest::newRow("KeyPress") << 6;
    QTest::newRow("KeyRelease") << 7;
    QTest::newRow("FocusIn") << 8;
    QTest::newRow("FocusOut") << 9;
    QTest::newRow("Close") << 19;
    QTest::newRow("ShortcutOverride") << 51;
    QTest::newRow("DragEnter") << 60;
    QTest::newRow("DragMove") << 61;
    QTest::newRow("DragLeave") << 62;
    QTest::newRow("Drop") << 63;
    QTest::newRow("Shortcut") << 117;
    QTest::newRow("GraphicsSceneMouseMove") << 155;
    QTest::newRow("GraphicsSceneMousePress") << 156;
    QTest::newRow("GraphicsSceneMouseRelease") << 157;
    QTest::newRow("GraphicsSceneMouseDoubleClick") << 158;
    QTest::newRow("GraphicsSceneContextMenu") << 159;
    QTest::newRow("GraphicsSceneDragEnter") << 164;
    QTest::newRow("GraphicsSceneDragMove") << 165;
    QTest::newRow("GraphicsSceneDragLeave") << 166;
    QTest::newRow("GraphicsSceneDrop") << 167;
    QTest::newRow("NonClientAreaMouseButtonPress") << 174;
    QTest::newRow("NonClientAreaMouseButtonRelease") << 175;
    QTest::newRow("NonClientAreaMouseButtonDblClick") << 176;
}

void tst_ExcludeUserInpuEventLoop::filterSwallows()
{
    QFETCH(int, type);

    Target target;
    CExcludeUserInpuEventsFilter filter(&target);
    QEvent event{QEvent::Type(type)};
    event.accept();
    QVERIFY(filter.eventFilter(&target, &event));
    QVERIFY(!event.isAccepted());

    event.accept();
    QVERIFY(QCoreApplication::sendEvent(&target, &event));
    QVERIFY(!event.isAccepted());
    QCOMPARE(target.events.value(type), 0);
}

void tst_ExcludeUserInpuEventLoop::filterLetsPass_data()
{
    QTest::addColumn<int>("type");

    QTest::newRow("Timer") << 1;
    QTest::newRow("MouseButtonRelease") << 3;
    QTest::newRow("MouseMove") << 5;
    QTest::newRow("Enter") << 10;
    QTest::newRow("Leave") << 11;
    QTest::newRow("Paint") << 12;
    QTest::newRow("FocusAboutToChange") << 23;
    QTest::newRow("Wheel") << 31;
    QTest::newRow("MetaCall") << 43;
    QTest::newRow("SockAct") << 50;
    QTest::newRow("DragResponse") << 64;
    QTest::newRow("ContextMenu") << 82;
    QTest::newRow("TabletMove") << 87;
    QTest::newRow("TabletPress") << 92;
    QTest::newRow("TabletRelease") << 93;
    QTest::newRow("HoverEnter") << 127;
    QTest::newRow("HoverLeave") << 128;
    QTest::newRow("HoverMove") << 129;
    QTest::newRow("GraphicsSceneHoverEnter") << 160;
    QTest::newRow("GraphicsSceneHoverMove") << 161;
    QTest::newRow("GraphicsSceneHoverLeave") << 162;
    QTest::newRow("GraphicsSceneHelp") << 163;
    QTest::newRow("GraphicsSceneWheel") << 168;
    QTest::newRow("TabletEnterProximity") << 171;
    QTest::newRow("TabletLeaveProximity") << 172;
    QTest::newRow("NonClientAreaMouseMove") << 173;
    QTest::newRow("TouchBegin") << 194;
    QTest::newRow("TouchUpdate") << 195;
    QTest::newRow("TouchEnd") << 196;
    QTest::newRow("TouchCancel") << 209;
    QTest::newRow("User") << 1000;
}

void tst_ExcludeUserInpuEventLoop::filterLetsPass()
{
    QFETCH(int, type);

    Target target;
    CExcludeUserInpuEventsFilter filter(&target);
    QEvent event{QEvent::Type(type)};
    QVERIFY(!filter.eventFilter(&target, &event));
    QVERIFY(event.isAccepted());
    QVERIFY(reaches(target, type));
}

void tst_ExcludeUserInpuEventLoop::filterLetsEverythingElsePass()
{
    QCOMPARE(excludedTypes().size(), 25);

    Target target;
    CExcludeUserInpuEventsFilter filter(&target);
    for (int type = firstEventType; type <= lastEventType; ++type) {
        QEvent event{QEvent::Type(type)};
        const bool swallowed = filter.eventFilter(&target, &event);
        QVERIFY2(swallowed == excludedTypes().contains(type), qPrintable(QString::number(type)));
    }
}

void tst_ExcludeUserInpuEventLoop::filterWithoutObjectOrEventSwallowsNothing()
{
    Target target;
    CExcludeUserInpuEventsFilter filter(&target);
    QEvent event(QEvent::KeyPress);
    QVERIFY(!filter.eventFilter(nullptr, &event));
    QVERIFY(event.isAccepted());
    QVERIFY(!filter.eventFilter(&target, nullptr));
    QVERIFY(!filter.eventFilter(nullptr, nullptr));
}

void tst_ExcludeUserInpuEventLoop::filterOfNoTargetIsInstalledNowhere()
{
    Target target;
    const CExcludeUserInpuEventsFilter filter(nullptr);
    QVERIFY(!filter.parent());
    QVERIFY(!filterIsOn(target));
}

void tst_ExcludeUserInpuEventLoop::filterBelongsToItsTargetAndLeavesIt()
{
    Target target;
    auto* const filter = new CExcludeUserInpuEventsFilter(&target);
    QCOMPARE(filter->parent(), &target);
    QCOMPARE(target.children(), QObjectList{filter});
    QVERIFY(filterIsOn(target));
    delete filter;
    QVERIFY(!filterIsOn(target));
    QVERIFY(target.children().isEmpty());
}

void tst_ExcludeUserInpuEventLoop::filterDiesWithItsTarget()
{
    QPointer<CExcludeUserInpuEventsFilter> filter;
    {
        Target target;
        filter = new CExcludeUserInpuEventsFilter(&target);
    }
    QVERIFY(!filter);
}

void tst_ExcludeUserInpuEventLoop::filterOfOneObjectLeavesOthersAlone()
{
    Target target;
    Target other;
    const CExcludeUserInpuEventsFilter filter(&target);
    QVERIFY(filterIsOn(target));
    QVERIFY(!filterIsOn(other));
}

void tst_ExcludeUserInpuEventLoop::filterOfTheApplicationCoversAllObjects()
{
    Target target;
    {
        const CExcludeUserInpuEventsFilter filter(qApp);
        QCOMPARE(filter.parent(), qApp);
        QVERIFY(filterIsOn(target));
    }
    QVERIFY(!filterIsOn(target));
}

void tst_ExcludeUserInpuEventLoop::filterHasNoMetaObjectOfItsOwn()
{
    const CExcludeUserInpuEventsFilter filter(nullptr);
    QCOMPARE(filter.metaObject(), &QObject::staticMetaObject);
}

void tst_ExcludeUserInpuEventLoop::filterOnAnotherThreadThanTheTargetWarns_data()
{
    QTest::addColumn<bool>("targetOnWorker");

    QTest::newRow("a target of this thread, filtered from a worker") << false;
    QTest::newRow("a target of a worker, filtered from here") << true;
}

void tst_ExcludeUserInpuEventLoop::filterOnAnotherThreadThanTheTargetWarns()
{
    QFETCH(bool, targetOnWorker);

    QTest::ignoreMessage(QtWarningMsg,
                         "Logic error: can't install event filter in different thread");
    Target target;
    bool hasParent = true;
    const auto filterIt = [&] {
        const CExcludeUserInpuEventsFilter filter(&target);
        hasParent = filter.parent();
    };
    if (targetOnWorker) {
        QThread worker;
        target.moveToThread(&worker);
        filterIt();
    } else {
        std::thread(filterIt).join();
        QVERIFY(!filterIsOn(target));
    }
    QVERIFY(!hasParent);
    QVERIFY(target.children().isEmpty());
}

void tst_ExcludeUserInpuEventLoop::filterOfTheApplicationOnAWorkerThreadIsSilent()
{
    const MessageCounter messages;
    Target target;
    bool hasParent = true;
    std::atomic<bool> made{false};
    std::atomic<bool> go{false};
    std::thread worker([&] {
        const CExcludeUserInpuEventsFilter filter(qApp);
        hasParent = filter.parent();
        made = true;
        while (!go)
            std::this_thread::yield();
    });
    while (!made)
        std::this_thread::yield();
    const bool on = filterIsOn(target);
    go = true;
    worker.join();

    QVERIFY(!hasParent);
    QVERIFY(!on);
    QCOMPARE(messages.count(), 0);
}

void tst_ExcludeUserInpuEventLoop::slotsOfTheMetaObject()
{
    const QMetaObject& meta = CExcludeUserInpuEventLoop::staticMetaObject;
    QCOMPARE(meta.className(), "CExcludeUserInpuEventLoop");
    QList<QByteArray> signatures;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QCOMPARE(method.methodType(), QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Public);
        signatures << QByteArray(method.typeName()) + ' ' + method.methodSignature();
    }
    const QList<QByteArray> expected{"int exec(int)",     "int exec()",     "void quit()",
                                     "void failedQuit()", "void exit(int)", "void exit()"};
    QCOMPARE(signatures, expected);
}

void tst_ExcludeUserInpuEventLoop::loopIsNoEventLoopAndHasItsParent()
{
    QVERIFY((!std::is_base_of<QEventLoop, CExcludeUserInpuEventLoop>::value));
    QObject parent;
    const auto* const loop = new CExcludeUserInpuEventLoop(qApp, &parent);
    QCOMPARE(loop->parent(), &parent);
}

void tst_ExcludeUserInpuEventLoop::resultTellsHowTheLoopWasLeft_data()
{
    QTest::addColumn<Leave>("leave");
    QTest::addColumn<int>("expected");

    QTest::newRow("quit") << Leave([](CExcludeUserInpuEventLoop& loop) { loop.quit(); }) << 0;
    QTest::newRow("failedQuit") << Leave([](CExcludeUserInpuEventLoop& loop) { loop.failedQuit(); })
                                << 1;
    QTest::newRow("exit with 7") << Leave([](CExcludeUserInpuEventLoop& loop) { loop.exit(7); })
                                 << 7;
    QTest::newRow("exit with -3") << Leave([](CExcludeUserInpuEventLoop& loop) { loop.exit(-3); })
                                  << -3;
    QTest::newRow("exit without a code")
        << Leave([](CExcludeUserInpuEventLoop& loop) { QMetaObject::invokeMethod(&loop, "exit"); })
        << 0;
}

void tst_ExcludeUserInpuEventLoop::resultTellsHowTheLoopWasLeft()
{
    QFETCH(Leave, leave);
    QFETCH(int, expected);

    CExcludeUserInpuEventLoop loop(qApp);
    // Twice: nothing of the first run is left.
    for (int run = 0; run < 2; ++run) {
        inTheLoop(loop, [&] { leave(loop); });
        QCOMPARE(loop.exec(0), expected);
    }
    inTheLoop(loop, [&] { leave(loop); });
    int result = -2;
    QVERIFY(QMetaObject::invokeMethod(&loop, "exec", Q_RETURN_ARG(int, result)));
    QCOMPARE(result, expected);
}

void tst_ExcludeUserInpuEventLoop::timeoutEndsTheLoopWithZero()
{
    CExcludeUserInpuEventLoop loop(qApp);
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(loop.exec(50), 0);
    QVERIFY(clock.elapsed() >= 40);
    QVERIFY(clock.elapsed() < 20000);
    QVERIFY(!CDelayedCall::isActive(&loop, "quit"));
}

void tst_ExcludeUserInpuEventLoop::withoutTimeoutNoQuitIsRequested_data()
{
    QTest::addColumn<int>("timeout");
    QTest::addColumn<bool>("expected");

    QTest::newRow("no time-out") << 0 << false;
    QTest::newRow("a time-out") << 600000 << true;
}

void tst_ExcludeUserInpuEventLoop::withoutTimeoutNoQuitIsRequested()
{
    QFETCH(int, timeout);
    QFETCH(bool, expected);

    CExcludeUserInpuEventLoop loop(qApp);
    bool active = !expected;
    inTheLoop(loop, [&] {
        active = CDelayedCall::isActive(&loop, "quit");
        loop.failedQuit();
    });
    QCOMPARE(loop.exec(timeout), 1);
    QCOMPARE(active, expected);
}

void tst_ExcludeUserInpuEventLoop::secondExecInsideIsRefused()
{
    Target target;
    CExcludeUserInpuEventLoop loop(&target);
    int inner = 0;
    int innerTimed = 0;
    QObjectList children;
    bool quitRequested = true;
    bool stillFiltered = false;
    inTheLoop(loop, [&] {
        inner = loop.exec(0);
        innerTimed = loop.exec(1);
        children = target.children();
        quitRequested = CDelayedCall::isActive(&loop, "quit");
        stillFiltered = filterIsOn(target);
        QTimer::singleShot(50, &loop, [&] { loop.exit(7); });
    });
    QCOMPARE(loop.exec(0), 7);
    QCOMPARE(inner, -1);
    QCOMPARE(innerTimed, -1);
    QCOMPARE(children.size(), 1);
    QVERIFY(!quitRequested);
    QVERIFY(stillFiltered);
    QVERIFY(!filterIsOn(target));
}

void tst_ExcludeUserInpuEventLoop::leavingALoopThatDoesNotRunHasNoEffect_data()
{
    resultTellsHowTheLoopWasLeft_data();
}

void tst_ExcludeUserInpuEventLoop::leavingALoopThatDoesNotRunHasNoEffect()
{
    QFETCH(Leave, leave);

    CExcludeUserInpuEventLoop loop(qApp);
    leave(loop);
    inTheLoop(loop, [&] { loop.exit(42); });
    QCOMPARE(loop.exec(0), 42);
    leave(loop);
    inTheLoop(loop, [&] { loop.exit(43); });
    QCOMPARE(loop.exec(0), 43);
}

void tst_ExcludeUserInpuEventLoop::filterIsThereWhileTheLoopRuns()
{
    Target any;
    CExcludeUserInpuEventLoop loop(qApp);
    QVERIFY(!filterIsOn(any));
    bool on = false;
    bool closed = true;
    QWidget window;
    window.show();
    inTheLoop(loop, [&] {
        on = filterIsOn(any);
        closed = window.close();
        loop.quit();
    });
    QCOMPARE(loop.exec(0), 0);
    QVERIFY(on);
    QVERIFY(!closed);
    QVERIFY(window.isVisible());
    QVERIFY(!filterIsOn(any));
    QVERIFY(window.close());
}

void tst_ExcludeUserInpuEventLoop::filterGoesWhenAnEventHandlerThrows()
{
    // On a thread whose dispatcher is all C++, so that the exception can pass.
    QTest::ignoreMessage(QtWarningMsg,
                         QRegularExpression(QStringLiteral(
                             "^Qt has caught an exception thrown from an event handler")));
    bool on = false;
    bool caught = false;
    bool onAfterwards = true;
    int childrenAfterwards = -1;
    const QByteArray noGlib = qgetenv("QT_NO_GLIB");
    qputenv("QT_NO_GLIB", "1");
    std::thread worker([&] {
        Target target;
        CExcludeUserInpuEventLoop loop(&target);
        QMetaObject::invokeMethod(
            &loop,
            [&] {
                on = filterIsOn(target);
                throw std::runtime_error("no");
            },
            Qt::QueuedConnection);
        try {
            loop.exec(0);
        } catch (const std::runtime_error&) {
            caught = true;
        }
        onAfterwards = filterIsOn(target);
        childrenAfterwards = target.children().size();
    });
    worker.join();
    if (noGlib.isNull())
        qunsetenv("QT_NO_GLIB");
    else
        qputenv("QT_NO_GLIB", noGlib);
    QVERIFY(caught);
    QVERIFY(on);
    QVERIFY(!onAfterwards);
    QCOMPARE(childrenAfterwards, 0);
}

void tst_ExcludeUserInpuEventLoop::timersSignalsAndDelayedCallsGoOn()
{
    CExcludeUserInpuEventLoop loop(qApp);
    QStringList served;
    QTimer timer;
    timer.setObjectName(QStringLiteral("before"));
    connect(&timer, &QTimer::timeout, &timer, [&] {
        timer.stop();
        served << QStringLiteral("timer");
        timer.setObjectName(QStringLiteral("after"));
    });
    connect(
        &timer, &QObject::objectNameChanged, &loop,
        [&] {
            served << QStringLiteral("queued signal");
            CDelayedCall::invoke(1, &loop, "failedQuit", true);
        },
        Qt::QueuedConnection);
    timer.start(0);
    QCOMPARE(loop.exec(0), 1);
    const QStringList expected{QStringLiteral("timer"), QStringLiteral("queued signal")};
    QCOMPARE(served, expected);
}

void tst_ExcludeUserInpuEventLoop::withoutATargetTheLoopRunsUnfiltered()
{
    Target any;
    CExcludeUserInpuEventLoop loop(nullptr);
    bool on = true;
    inTheLoop(loop, [&] {
        on = filterIsOn(any);
        loop.exit(5);
    });
    QCOMPARE(loop.exec(0), 5);
    QVERIFY(!on);
}

void tst_ExcludeUserInpuEventLoop::deadTargetLeavesTheLoopUnfiltered()
{
    Target any;
    auto* const target = new QObject;
    CExcludeUserInpuEventLoop loop(target);
    delete target;
    bool on = true;
    inTheLoop(loop, [&] {
        on = filterIsOn(any);
        loop.exit(5);
    });
    QCOMPARE(loop.exec(0), 5);
    QVERIFY(!on);
}

void tst_ExcludeUserInpuEventLoop::otherUserInputIsDeferred_data()
{
    QTest::addColumn<bool>("deadTarget");

    QTest::newRow("with a filter") << false;
    QTest::newRow("with a dead target") << true;
}

void tst_ExcludeUserInpuEventLoop::otherUserInputIsDeferred()
{
    QFETCH(bool, deadTarget);

    struct Window : QWidget
    {
        int moves = 0;
        void mouseMoveEvent(QMouseEvent*) override { ++moves; }
    } window;
    window.setMouseTracking(true);
    window.setGeometry(50, 50, 100, 100);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCursor::setPos(window.mapToGlobal(QPoint(5, 5)));
    QTRY_VERIFY(window.moves > 0);
    window.moves = 0;

    auto* const target = new QObject;
    CExcludeUserInpuEventLoop loop(target);
    if (deadTarget)
        delete target;

    int movesInside = -1;
    inTheLoop(loop, [&] {
        QCursor::setPos(window.mapToGlobal(QPoint(50, 50)));
        QTimer::singleShot(50, &loop, [&] {
            movesInside = window.moves;
            loop.quit();
        });
    });
    QCOMPARE(loop.exec(0), 0);
    QCOMPARE(movesInside, 0);
    QTRY_COMPARE(window.moves, 1);
    if (!deadTarget)
        delete target;
}

void tst_ExcludeUserInpuEventLoop::targetMayDieWhileTheLoopRuns()
{
    QPointer<Target> target = new Target;
    CExcludeUserInpuEventLoop loop(target);
    QPointer<QObject> filter;
    inTheLoop(loop, [&] {
        filter = target->children().value(0);
        if (filter)
            delete target.data();
        loop.exit(9);
    });
    QCOMPARE(loop.exec(0), 9);
    QVERIFY(!target);
    QVERIFY(!filter);

    inTheLoop(loop, [&] { loop.exit(8); });
    QCOMPARE(loop.exec(0), 8);
}

void tst_ExcludeUserInpuEventLoop::targetMayDieAfterTheLoop()
{
    QPointer<Target> target = new Target;
    CExcludeUserInpuEventLoop loop(target);
    inTheLoop(loop, [&] { loop.quit(); });
    QCOMPARE(loop.exec(0), 0);
    QVERIFY(target->children().isEmpty());
    delete target.data();
    inTheLoop(loop, [&] { loop.failedQuit(); });
    QCOMPARE(loop.exec(0), 1);
}

void tst_ExcludeUserInpuEventLoop::quitOfAnEarlierRunIsStillToCome()
{
    CExcludeUserInpuEventLoop loop(qApp);
    inTheLoop(loop, [&] { loop.failedQuit(); });
    QCOMPARE(loop.exec(100), 1);
    QVERIFY(CDelayedCall::isActive(&loop, "quit"));
    // And has no effect if there is no run by then.
    QTRY_VERIFY(!CDelayedCall::isActive(&loop, "quit"));
    inTheLoop(loop, [&] { loop.exit(7); });
    QCOMPARE(loop.exec(0), 7);
}

void tst_ExcludeUserInpuEventLoop::quitOfAnEarlierRunEndsALaterOne()
{
    CExcludeUserInpuEventLoop loop(qApp);
    inTheLoop(loop, [&] { loop.failedQuit(); });
    QCOMPARE(loop.exec(1000), 1);

    QTimer guard;
    guard.setSingleShot(true);
    connect(&guard, &QTimer::timeout, &loop, [&] { loop.exit(42); });
    guard.start(30000);
    QCOMPARE(loop.exec(0), 0);
}

void tst_ExcludeUserInpuEventLoop::quitOfAnEarlierRunIsReplacedByANewTimeout()
{
    CExcludeUserInpuEventLoop loop(qApp);
    inTheLoop(loop, [&] { loop.failedQuit(); });
    QCOMPARE(loop.exec(200), 1);

    QTimer::singleShot(600, &loop, [&] { loop.exit(42); });
    QCOMPARE(loop.exec(600000), 42);
    CDelayedCall::discard(&loop, "quit");
}

void tst_ExcludeUserInpuEventLoop::targetOnAnotherThreadWarnsAndTheLoopRuns()
{
    QThread worker;
    Target target;
    target.moveToThread(&worker);
    Target any;
    CExcludeUserInpuEventLoop loop(&target);
    bool on = true;
    inTheLoop(loop, [&] {
        on = filterIsOn(any);
        loop.exit(5);
    });
    QTest::ignoreMessage(QtWarningMsg,
                         "Logic error: can't install event filter in different thread");
    QCOMPARE(loop.exec(0), 5);
    QVERIFY(!on);
    QVERIFY(target.children().isEmpty());
}

void tst_ExcludeUserInpuEventLoop::loopOnAWorkerThreadWithTheApplicationRunsInSilence()
{
    const MessageCounter messages;
    int result = -2;
    std::thread worker([&] {
        CExcludeUserInpuEventLoop loop(qApp);
        result = loop.exec(20);
    });
    worker.join();
    QCOMPARE(result, 0);
    QCOMPARE(messages.count(), 0);
}

QTEST_MAIN(tst_ExcludeUserInpuEventLoop)
#include "tst_ExcludeUserInpuEventLoop.moc"
