#include "WaitFunctions.h"

#include "DelayedCall.h"
#include "MessageCounter.h"

#include <QApplication>
#include <QCursor>
#include <QEvent>
#include <QEventLoop>
#include <QHash>
#include <QMouseEvent>
#include <QThread>
#include <QTimer>
#include <QWheelEvent>
#include <QWidget>
#include <QWindow>
#include <QtTest>

#include <sched.h>

#include <atomic>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <thread>
#include <type_traits>

namespace {

std::atomic<int> yields{0};

} // namespace

// Stands in for Qt's, so that the turns of a wait can be counted.
void QThread::yieldCurrentThread()
{
    ++yields;
    sched_yield();
}

namespace {

class Predicate : public ICustomWaitPredicate
{
public:
    explicit Predicate(std::function<bool()> test)
        : m_test(std::move(test))
    {}

    bool done() const override
    {
        ++m_calls;
        return m_test();
    }

    int calls() const { return m_calls; }

private:
    const std::function<bool()> m_test;
    mutable std::atomic<int> m_calls{0};
};

/// False for the first \a count times.
Predicate trueAfter(int count)
{
    return Predicate([count]() mutable { return count-- == 0; });
}

/// Things that an event loop of this thread would do.
class Bystander : public QObject
{
    Q_OBJECT

public:
    Bystander()
    {
        connect(this, &Bystander::asked, this, &Bystander::answer, Qt::QueuedConnection);
        connect(&m_timer, &QTimer::timeout, this, [this] { ++timeouts; });
    }

    void start()
    {
        m_timer.start(0);
        CDelayedCall::invoke(0, this, "delayed", true);
        Q_EMIT asked();
    }

    bool wasServed() const { return timeouts || answers || delayedCalls; }
    bool allServed() const { return timeouts && answers && delayedCalls; }

    int timeouts = 0;
    int answers = 0;
    int delayedCalls = 0;

public Q_SLOTS:
    void answer() { ++answers; }
    void delayed() { ++delayedCalls; }

Q_SIGNALS:
    void asked();

private:
    QTimer m_timer;
};

/// Counts the events that reach it.
class Window : public QWidget
{
public:
    QHash<int, int> events;

    int count(QEvent::Type type) const { return events.value(type); }

    void activate()
    {
        resize(100, 100);
        show();
        QApplication::setActiveWindow(this);
        QVERIFY(QTest::qWaitForWindowActive(this));
        events.clear();
    }

protected:
    bool event(QEvent* event) override
    {
        ++events[event->type()];
        return QWidget::event(event);
    }
};

/// Sees the filters that come to and leave the application object.
class ApplicationWatch : public QObject
{
public:
    ApplicationWatch() { qApp->installEventFilter(this); }

    int added = 0;
    int removed = 0;

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (object == qApp && event->type() == QEvent::ChildAdded)
            ++added;
        if (object == qApp && event->type() == QEvent::ChildRemoved)
            ++removed;
        return QObject::eventFilter(object, event);
    }
};

/// Whether the application object swallows keys.
bool keysAreSwallowed()
{
    struct : QObject
    {
        bool reached = false;
        bool event(QEvent* event) override
        {
            reached = true;
            return QObject::event(event);
        }
    } probe;
    QEvent key(QEvent::KeyPress);
    QCoreApplication::sendEvent(&probe, &key);
    return !probe.reached;
}

void sendMouse(QWidget* widget, QEvent::Type type)
{
    QMouseEvent event(type, QPointF(5, 5), QPointF(5, 5), Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

void sendWheel(QWidget* widget)
{
    QWheelEvent event(QPointF(5, 5), QPointF(5, 5), QPoint(), QPoint(0, 120), Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
}

} // namespace

class tst_WaitFunctions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void predicateInterface();
    void atomicIntPredicate_data();
    void atomicIntPredicate();

    void waitBlockingReturnsAtOnceIfDone();
    void waitBlockingYieldsUntilDone();
    void waitBlockingServesNoEvents();
    void waitBlockingOnAnotherThread();
    void waitBlockingNeverGivesUp();
    void waitBlockingPassesAnExceptionOn();
    void waitBlockingAtomicIntValueReturnsAtOnceIfEqual();
    void waitBlockingAtomicIntValueWaitsForTheValue();

    void waitNonBlockingReturnsAtOnceIfDone_data();
    void waitNonBlockingReturnsAtOnceIfDone();
    void waitNonBlockingServesEventsWithoutYielding_data();
    void waitNonBlockingServesEventsWithoutYielding();
    void userInputIsThrownAwayDuringTheWait();
    void userInputFromTheWindowSystemIsThrownAway();
    void userInputIsServedIfNotExcluded();
    void releaseAndWheelAreDeliveredAllTheSame();
    void pointerIsFollowedDuringTheWait_data();
    void pointerIsFollowedDuringTheWait();
    void withoutAnActiveWindowEventsStayQueued();
    void filterGoesWhenThePredicateThrows();
    void waitNonBlockingNeverGivesUp();
    void waitNonBlockingAtomicIntValueWaitsForTheValue_data();
    void waitNonBlockingAtomicIntValueWaitsForTheValue();
    void workerThreadWaitsUnfilteredInSilence();
    void withoutTheFlagUserInputIsNotExcluded();
};

void tst_WaitFunctions::predicateInterface()
{
    QVERIFY(std::is_abstract<ICustomWaitPredicate>::value);
    QVERIFY(std::has_virtual_destructor<ICustomWaitPredicate>::value);

    // A pointer to a virtual member is 1 plus the offset into the table.
    const auto done = &ICustomWaitPredicate::done;
    std::ptrdiff_t slot = 0;
    std::memcpy(&slot, &done, sizeof slot);
    QCOMPARE(slot, std::ptrdiff_t(1));
}

void tst_WaitFunctions::atomicIntPredicate_data()
{
    QTest::addColumn<int>("value");
    QTest::addColumn<int>("expected");
    QTest::addColumn<bool>("done");

    QTest::newRow("equal") << 3 << 3 << true;
    QTest::newRow("zero") << 0 << 0 << true;
    QTest::newRow("negative") << -1 << -1 << true;
    QTest::newRow("greater isn't enough") << 4 << 3 << false;
    QTest::newRow("less") << 2 << 3 << false;
}

void tst_WaitFunctions::atomicIntPredicate()
{
    QFETCH(int, value);
    QFETCH(int, expected);
    QFETCH(bool, done);

    QAtomicInt atomic(value);
    const CAtomicIntWaitPredicate predicate(atomic, expected);
    QCOMPARE(predicate.done(), done);
    atomic.storeRelaxed(expected);
    QVERIFY(predicate.done());
    atomic.storeRelaxed(expected + 1);
    QVERIFY(!predicate.done());
}

void tst_WaitFunctions::waitBlockingReturnsAtOnceIfDone()
{
    Bystander bystander;
    bystander.start();
    const Predicate predicate = trueAfter(0);
    yields = 0;
    waitBlocking(predicate);
    QCOMPARE(predicate.calls(), 1);
    QCOMPARE(yields.load(), 0);
    QVERIFY(!bystander.wasServed());
}

void tst_WaitFunctions::waitBlockingYieldsUntilDone()
{
    const Predicate predicate = trueAfter(3);
    yields = 0;
    waitBlocking(predicate);
    QCOMPARE(predicate.calls(), 4);
    QCOMPARE(yields.load(), 3);
}

void tst_WaitFunctions::waitBlockingServesNoEvents()
{
    Window window;
    window.activate();
    Bystander bystander;
    bystander.start();
    waitBlocking(trueAfter(100));
    QAtomicInt value(0);
    std::thread other([&] { value.storeRelease(1); });
    waitBlockingAtomicIntValue(value, 1);
    other.join();
    QVERIFY(!bystander.wasServed());
    QTRY_VERIFY(bystander.allServed());
}

void tst_WaitFunctions::waitBlockingOnAnotherThread()
{
    QAtomicInt go(0);
    QAtomicInt waitsDone(0);
    std::thread other([&] {
        waitBlockingAtomicIntValue(go, 1);
        waitsDone.storeRelease(1);
        waitBlocking(Predicate([&] { return go.loadAcquire() == 2; }));
        waitsDone.storeRelease(2);
    });
    const int beforeFirst = waitsDone.loadAcquire();
    go.storeRelease(1);
    waitBlockingAtomicIntValue(waitsDone, 1);
    go.storeRelease(2);
    waitBlockingAtomicIntValue(waitsDone, 2);
    other.join();
    QCOMPARE(beforeFirst, 0);
}

void tst_WaitFunctions::waitBlockingNeverGivesUp()
{
    std::atomic<bool> go{false};
    std::atomic<bool> returned{false};
    const Predicate predicate([&] { return go.load(); });
    std::thread other([&] {
        waitBlocking(predicate);
        returned = true;
    });
    const bool manyTurns = QTest::qWaitFor([&] { return predicate.calls() > 500; }, 60000);
    const bool early = returned;
    go = true;
    other.join();
    QVERIFY(manyTurns);
    QVERIFY(!early);
    QVERIFY(returned);
}

void tst_WaitFunctions::waitBlockingPassesAnExceptionOn()
{
    const Predicate predicate([]() -> bool { throw std::runtime_error("no"); });
    QVERIFY_EXCEPTION_THROWN(waitBlocking(predicate), std::runtime_error);
}

void tst_WaitFunctions::waitBlockingAtomicIntValueReturnsAtOnceIfEqual()
{
    yields = 0;
    waitBlockingAtomicIntValue(QAtomicInt(7), 7);
    QCOMPARE(yields.load(), 0);
}

void tst_WaitFunctions::waitBlockingAtomicIntValueWaitsForTheValue()
{
    QAtomicInt value(0);
    yields = 0;
    std::thread other([&] {
        // Not before the wait has begun.
        while (yields == 0)
            std::this_thread::yield();
        value.storeRelease(1);
        const int seen = yields;
        while (yields < seen + 10)
            std::this_thread::yield();
        value.storeRelease(2);
    });
    waitBlockingAtomicIntValue(value, 2);
    other.join();
    QCOMPARE(value.loadAcquire(), 2);
}

void tst_WaitFunctions::waitNonBlockingReturnsAtOnceIfDone_data()
{
    QTest::addColumn<bool>("bExcludeUserInput");
    QTest::addColumn<int>("filters");

    QTest::newRow("with user input") << false << 0;
    QTest::newRow("without user input") << true << 1;
}

void tst_WaitFunctions::waitNonBlockingReturnsAtOnceIfDone()
{
    QFETCH(bool, bExcludeUserInput);
    QFETCH(int, filters);

    Window window;
    window.activate();
    Bystander bystander;
    bystander.start();
    const ApplicationWatch watch;
    bool swallowedInside = false;
    const Predicate predicate([&] {
        swallowedInside = keysAreSwallowed();
        return true;
    });
    yields = 0;
    waitNonBlocking(predicate, bExcludeUserInput);
    QCOMPARE(predicate.calls(), 1);
    QCOMPARE(yields.load(), 0);
    QVERIFY(!bystander.wasServed());
    QCOMPARE(swallowedInside, bExcludeUserInput);
    QCOMPARE(watch.added, filters);
    QCOMPARE(watch.removed, filters);
    QVERIFY(!keysAreSwallowed());
}

void tst_WaitFunctions::waitNonBlockingServesEventsWithoutYielding_data()
{
    waitNonBlockingReturnsAtOnceIfDone_data();
}

void tst_WaitFunctions::waitNonBlockingServesEventsWithoutYielding()
{
    QFETCH(bool, bExcludeUserInput);

    Window window;
    window.activate();
    Bystander bystander;
    bystander.start();
    yields = 0;
    waitNonBlocking(Predicate([&] { return bystander.allServed() && bystander.timeouts > 3; }),
                    bExcludeUserInput);
    QVERIFY(bystander.allServed());
    QCOMPARE(bystander.answers, 1);
    QCOMPARE(bystander.delayedCalls, 1);
    QCOMPARE(yields.load(), 0);
}

void tst_WaitFunctions::userInputIsThrownAwayDuringTheWait()
{
    Window window;
    window.activate();
    Bystander bystander;
    bool sent = false;
    bool closed = true;
    QTimer::singleShot(0, &window, [&] {
        QTest::keyPress(&window, Qt::Key_A);
        QTest::keyRelease(&window, Qt::Key_A);
        sendMouse(&window, QEvent::MouseButtonPress);
        sendMouse(&window, QEvent::MouseButtonDblClick);
        QEvent titleBar(QEvent::NonClientAreaMouseButtonPress);
        QApplication::sendEvent(&window, &titleBar);
        closed = window.close();
        bystander.start();
        sent = true;
    });
    waitNonBlocking(Predicate([&] { return sent && bystander.allServed(); }), true);

    const auto inputReached = [&window] {
        return window.count(QEvent::KeyPress) + window.count(QEvent::KeyRelease)
            + window.count(QEvent::MouseButtonPress) + window.count(QEvent::MouseButtonDblClick)
            + window.count(QEvent::NonClientAreaMouseButtonPress) + window.count(QEvent::Close);
    };
    QCOMPARE(inputReached(), 0);
    QVERIFY(!closed);
    QVERIFY(window.isVisible());

    bystander.answers = 0;
    Q_EMIT bystander.asked();
    QTRY_COMPARE(bystander.answers, 1);
    QCoreApplication::processEvents();
    QCOMPARE(inputReached(), 0);
    QVERIFY(window.isVisible());

    QTest::keyPress(&window, Qt::Key_A);
    QCOMPARE(window.count(QEvent::KeyPress), 1);
    QVERIFY(window.close());
}

void tst_WaitFunctions::userInputFromTheWindowSystemIsThrownAway()
{
    Window window;
    window.activate();
    Bystander bystander;
    bool sent = false;
    QTimer::singleShot(0, &window, [&] {
        QTest::keyClick(window.windowHandle(), Qt::Key_A);
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton);
        window.windowHandle()->close();
        bystander.start();
        sent = true;
    });
    waitNonBlocking(Predicate([&] { return sent && bystander.timeouts > 3; }), true);
    bystander.answers = 0;
    Q_EMIT bystander.asked();
    QTRY_COMPARE(bystander.answers, 1);
    QCOMPARE(window.count(QEvent::KeyPress), 0);
    QCOMPARE(window.count(QEvent::MouseButtonPress), 0);
    QCOMPARE(window.count(QEvent::Close), 0);
    QVERIFY(window.isVisible());
}

void tst_WaitFunctions::userInputIsServedIfNotExcluded()
{
    Window window;
    window.activate();
    QTimer::singleShot(0, &window, [&] {
        QTest::keyClick(window.windowHandle(), Qt::Key_A);
        QTest::mouseClick(window.windowHandle(), Qt::LeftButton);
    });
    waitNonBlocking(Predicate([&] {
                        return window.count(QEvent::KeyPress)
                            && window.count(QEvent::MouseButtonPress);
                    }),
                    false);
    QCOMPARE(window.count(QEvent::KeyPress), 1);
    QCOMPARE(window.count(QEvent::MouseButtonPress), 1);
}

void tst_WaitFunctions::releaseAndWheelAreDeliveredAllTheSame()
{
    Window window;
    window.activate();
    sendMouse(&window, QEvent::MouseButtonPress);
    QTimer::singleShot(0, &window, [&] {
        sendMouse(&window, QEvent::MouseButtonRelease);
        sendWheel(&window);
    });
    waitNonBlocking(Predicate([&] { return window.count(QEvent::Wheel) == 1; }), true);
    QCOMPARE(window.count(QEvent::MouseButtonRelease), 1);
    QCOMPARE(window.count(QEvent::Wheel), 1);
}

void tst_WaitFunctions::pointerIsFollowedDuringTheWait_data()
{
    waitNonBlockingReturnsAtOnceIfDone_data();
}

void tst_WaitFunctions::pointerIsFollowedDuringTheWait()
{
    QFETCH(bool, bExcludeUserInput);

    Window window;
    window.setMouseTracking(true);
    window.activate();
    QCursor::setPos(window.mapToGlobal(QPoint(5, 5)));
    QTRY_VERIFY(window.count(QEvent::MouseMove));
    window.events.clear();

    bool late = false;
    QTimer::singleShot(0, &window, [&] {
        QCursor::setPos(window.mapToGlobal(QPoint(50, 50)));
        QTimer::singleShot(5000, &window, [&late] { late = true; });
    });
    waitNonBlocking(Predicate([&] { return late || window.count(QEvent::MouseMove); }),
                    bExcludeUserInput);
    QCOMPARE(window.count(QEvent::MouseMove), 1);
}

void tst_WaitFunctions::withoutAnActiveWindowEventsStayQueued()
{
    Window window;
    window.activate();
    QApplication::setActiveWindow(nullptr);
    QVERIFY(!QApplication::activeWindow());

    Bystander bystander;
    bystander.start();
    int turns = 0;
    bool servedBefore = true;
    yields = 0;
    waitNonBlocking(Predicate([&] {
                        if (++turns == 100) {
                            servedBefore = bystander.wasServed();
                            QApplication::setActiveWindow(&window);
                        }
                        return bystander.allServed();
                    }),
                    false);
    QVERIFY(!servedBefore);
    QCOMPARE(yields.load(), 99);
    QVERIFY(turns > 100);
}

void tst_WaitFunctions::filterGoesWhenThePredicateThrows()
{
    Window window;
    window.activate();
    const ApplicationWatch watch;
    bool swallowedInside = false;
    const Predicate predicate([&]() -> bool {
        swallowedInside = keysAreSwallowed();
        throw std::runtime_error("no");
    });
    QVERIFY_EXCEPTION_THROWN(waitNonBlocking(predicate, true), std::runtime_error);
    QVERIFY(swallowedInside);
    QVERIFY(!keysAreSwallowed());
    QCOMPARE(watch.added, 1);
    QCOMPARE(watch.removed, 1);
}

void tst_WaitFunctions::waitNonBlockingNeverGivesUp()
{
    Window window;
    window.activate();
    bool late = false;
    QTimer::singleShot(1000, &window, [&] { late = true; });
    const Predicate predicate([&] { return late; });
    waitNonBlocking(predicate, true);
    QVERIFY(late);
    QVERIFY(predicate.calls() > 2);
}

void tst_WaitFunctions::waitNonBlockingAtomicIntValueWaitsForTheValue_data()
{
    waitNonBlockingReturnsAtOnceIfDone_data();
}

void tst_WaitFunctions::waitNonBlockingAtomicIntValueWaitsForTheValue()
{
    QFETCH(bool, bExcludeUserInput);
    QFETCH(int, filters);

    Window window;
    window.activate();
    const ApplicationWatch watch;
    QAtomicInt value(0);
    bool swallowedInside = !bExcludeUserInput;
    QTimer timer;
    connect(&timer, &QTimer::timeout, &window, [&] {
        swallowedInside = keysAreSwallowed();
        value.ref();
        if (value.loadAcquire() == 3)
            timer.stop();
    });
    timer.start(0);
    waitNonBlockingAtomicIntValue(value, 3, bExcludeUserInput);
    QCOMPARE(value.loadAcquire(), 3);
    QCOMPARE(swallowedInside, bExcludeUserInput);
    QCOMPARE(watch.added, filters);
    QCOMPARE(watch.removed, filters);

    yields = 0;
    waitNonBlockingAtomicIntValue(value, 3, bExcludeUserInput);
    QCOMPARE(yields.load(), 0);
    QCOMPARE(watch.added, 2 * filters);
    QCOMPARE(watch.removed, 2 * filters);
}

void tst_WaitFunctions::workerThreadWaitsUnfilteredInSilence()
{
    Window window;
    window.activate();
    const ApplicationWatch watch;
    std::atomic<bool> waiting{false};
    std::atomic<bool> go{false};
    bool served = false;

    const MessageCounter messages;
    std::thread worker([&] {
        QEventLoop dispatcherOfThisThread;
        Bystander bystander;
        bystander.start();
        waitNonBlocking(Predicate([&] {
                            waiting = true;
                            return go && bystander.allServed();
                        }),
                        true);
        served = bystander.allServed();
    });
    while (!waiting)
        std::this_thread::yield();
    const bool swallowed = keysAreSwallowed();
    go = true;
    worker.join();

    QVERIFY(served);
    QVERIFY(!swallowed);
    QCOMPARE(watch.added, 0);
    QCOMPARE(messages.count(), 0);
}

void tst_WaitFunctions::withoutTheFlagUserInputIsNotExcluded()
{
    Window window;
    window.activate();
    bool swallowedInside = true;
    waitNonBlocking(Predicate([&] {
        swallowedInside = keysAreSwallowed();
        return true;
    }));
    QVERIFY(!swallowedInside);
}

QTEST_MAIN(tst_WaitFunctions)
#include "tst_WaitFunctions.moc"
