#include "DelayedCall.h"

#include "MessageCounter.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QEvent>
#include <QEventLoop>
#include <QHash>
#include <QPoint>
#include <QRegularExpression>
#include <QSharedPointer>
#include <QStringList>
#include <QThread>
#include <QTimer>
#include <QTimerEvent>
#include <QtTest>

#include <algorithm>
#include <atomic>
#include <functional>
#include <new>
#include <thread>
#include <type_traits>
#include <vector>

/// Stands at global scope, as moc wants the full names of argument types.
struct Tracked
{
    QSharedPointer<int> token;
};

namespace {

/// Long enough never to come during a test.
constexpr int never = 600000;

/// Keeps the arguments of its calls. Touch it on its own thread only.
class Receiver : public QObject
{
    Q_OBJECT

public:
    std::function<void()> onCall;
    QList<QVariantList> calls;
    QList<QThread*> threads;
    int others = 0;

public Q_SLOTS:
    void record() { add({}); }
    void record(int a) { add({a}); }
    void record(int a, const QString& b) { add({a, b}); }
    void record(int a, const QString& b, double c) { add({a, b, c}); }
    void record(int a, const QString& b, double c, bool d) { add({a, b, c, d}); }
    void record(int a, const QString& b, double c, bool d, const QPoint& e)
    {
        add({a, b, c, d, e});
    }
    void record(int a, const QString& b, double c, bool d, const QPoint& e, const QByteArray& f)
    {
        add({a, b, c, d, e, f});
    }
    void record(int a, const QString& b, double c, bool d, const QPoint& e, const QByteArray& f,
                qlonglong g)
    {
        add({a, b, c, d, e, f, g});
    }
    void record(int a, const QString& b, double c, bool d, const QPoint& e, const QByteArray& f,
                qlonglong g, const QStringList& h)
    {
        add({a, b, c, d, e, f, g, h});
    }
    void record(int a, const QString& b, double c, bool d, const QPoint& e, const QByteArray& f,
                qlonglong g, const QStringList& h, QChar i)
    {
        add({a, b, c, d, e, f, g, h, i});
    }
    void takeTracked(const Tracked&) { add({}); }
    void takeDouble(double a) { add({a}); }
    bool takeAnother(const QString& a)
    {
        add({a});
        return false;
    }
    void other() { ++others; }

private:
    void add(const QVariantList& arguments)
    {
        calls << arguments;
        threads << QThread::currentThread();
        // A copy, since it may end this object.
        const auto react = onCall;
        if (react)
            react();
    }
};

using Storage = std::aligned_storage_t<sizeof(Receiver), alignof(Receiver)>;

void request(int count, QObject* object)
{
    const QVariant a = 1;
    const QVariant b = QStringLiteral("two");
    const QVariant c = 3.5;
    const QVariant d = true;
    const QVariant e = QPoint(5, -5);
    const QVariant f = QByteArray("six");
    const QVariant g = qlonglong(7);
    const QVariant h = QStringList{QStringLiteral("eight")};
    const QVariant i = QChar('9');
    const char* const m = "record";
    switch (count) {
    case 0:
        return CDelayedCall::invoke(0, object, m, true);
    case 1:
        return CDelayedCall::invokeWithArgs(0, object, m, a, true);
    case 2:
        return CDelayedCall::invokeWithArgs(0, object, m, a, b, true);
    case 3:
        return CDelayedCall::invokeWithArgs(0, object, m, a, b, c, true);
    case 4:
        return CDelayedCall::invokeWithArgs(0, object, m, a, b, c, d, true);
    case 5:
        return CDelayedCall::invokeWithArgs(0, object, m, a, b, c, d, e, true);
    case 6:
        return CDelayedCall::invokeWithArgs(0, object, m, a, b, c, d, e, f, true);
    case 7:
        return CDelayedCall::invokeWithArgs(0, object, m, a, b, c, d, e, f, g, true);
    case 8:
        return CDelayedCall::invokeWithArgs(0, object, m, a, b, c, d, e, f, g, h, true);
    case 9:
        return CDelayedCall::invokeWithArgs(0, object, m, a, b, c, d, e, f, g, h, i, true);
    }
}

/// Runs \a work on a thread of its own that has no event dispatcher, and waits for its end.
void onAnotherThread(const std::function<void()>& work)
{
    std::thread thread(work);
    thread.join();
}

/// Lets everything happen that is due now: a call with this thread's shortest delay, requested
/// last, has come.
void serveWhatIsDue()
{
    Receiver last;
    bool done = false;
    last.onCall = [&done] { done = true; };
    CDelayedCall::invoke(20, &last, "record", true);
    while (!done)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
}

/// Finds the object that owns the timers of the main thread's pending calls, and sees them tick.
class InvokerFinder : public QObject
{
public:
    std::function<void(int timerId, int ticks)> onTick;

    InvokerFinder()
    {
        watch();
        Receiver receiver;
        CDelayedCall::invoke(0, &receiver, "record", true);
        while (receiver.calls.isEmpty())
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        QCoreApplication::instance()->removeEventFilter(this);
        m_ticks.clear();
        const auto oldTimers = timers();
        for (const auto& timer : oldTimers)
            m_oldTimers << timer.timerId;
    }

    QObject* invoker() const { return m_invoker; }

    /// Those that came since the construction and are still there.
    QList<QAbstractEventDispatcher::TimerInfo> timers() const
    {
        auto result = QAbstractEventDispatcher::instance()->registeredTimers(m_invoker);
        const auto isOld = [this](const QAbstractEventDispatcher::TimerInfo& timer) {
            return m_oldTimers.contains(timer.timerId);
        };
        result.erase(std::remove_if(result.begin(), result.end(), isOld), result.end());
        return result;
    }

    void watch() { QCoreApplication::instance()->installEventFilter(this); }
    int ticks(int timerId) const { return m_ticks.value(timerId); }

    bool eventFilter(QObject* object, QEvent* event) override
    {
        if (event->type() == QEvent::Timer && (!m_invoker || object == m_invoker)) {
            m_invoker = object;
            const int timerId = static_cast<QTimerEvent*>(event)->timerId();
            const int count = ++m_ticks[timerId];
            if (onTick)
                onTick(timerId, count);
        }
        return QObject::eventFilter(object, event);
    }

private:
    QObject* m_invoker = nullptr;
    QHash<int, int> m_ticks;
    QList<int> m_oldTimers;
};

void ignoreNoSuchMethod(const char* signature)
{
    QTest::ignoreMessage(
        QtWarningMsg,
        QRegularExpression(QStringLiteral("^QMetaObject::invokeMethod: No such method Receiver::")
                           + QRegularExpression::escape(QLatin1String(signature))));
}

} // namespace

Q_DECLARE_METATYPE(Tracked)

class tst_DelayedCall : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void callComesOneDelayLater();
    void argumentsComeInTheWrittenOrder_data();
    void argumentsComeInTheWrittenOrder();
    void anyTypeOfAVariantPasses();
    void aMethodWithAResultIsCalledToo();
    void delayOfZeroFiresFromTheEventLoop();

    void burstOfRequestsGivesOneCall();
    void aSecondRequestReplacesTheFirstOne_data();
    void aSecondRequestReplacesTheFirstOne();
    void aSecondRequestReplacesTheRepetition();
    void argumentsOfAReplacedCallAreDropped();
    void argumentsOfADiscardedCallAreDropped();
    void differentMethodsAndObjectsAreIndependent();
    void equalTextAtAnotherAddressIsTheSameMethod();
    void theMethodNameIsNotCopied();

    void repeatingCallGoesOnUntilDiscarded();
    void repeatingCallMayDiscardItself();
    void repeatingCallMayReplaceItself();

    void discardWithAMethodCancelsOneCall();
    void discardWithoutAMethodCancelsAllCallsOfTheObject();
    void anArgumentThatComesBackAtItsEndFindsAllInOrder_data();
    void anArgumentThatComesBackAtItsEndFindsAllInOrder();
    void discardWithoutAnObjectDoesNothing();
    void discardAndIsActiveOnAThreadWithoutRequests();
    void isActiveTellsWhatIsPending();

    void requestingItselfAgainGivesAFreshCall();
    void nestedEventLoopDoesNotFireTwice();
    void targetMayDieInItsMethod();

    void nullObjectOrMethodIsIgnoredInSilence();
    void negativeDelayDropsTheRequestAndTheEarlierCall();
    void threadWithoutDispatcherDropsTheRequest();
    void deadTargetIsNotCalled();
    void deadTargetOfARepeatingCallKeepsTheTimer();
    void unknownMethodOrWrongTypesWarn_data();
    void unknownMethodOrWrongTypesWarn();
    void repeatingCallOfAnUnknownMethodFailsAgain();
    void newObjectAtAnOldAddressIsNotMistaken();

    void oneCoarseTimerPerPendingCall();
    void timerDiesAfterTheInvocation();
    void lateTickWithoutACallIsIgnored();

    void threadsDoNotSeeEachOthersCalls();
    void samePairOnTwoThreadsGivesTwoCalls();
    void adoptedThreadServesItsCallsInAnEventLoop();
    void targetOnAnotherThreadIsCalledThere();
    void endOfAThreadDropsItsCalls();
    void manyThreadsAtOnce();
};

void tst_DelayedCall::callComesOneDelayLater()
{
    Receiver receiver;
    QElapsedTimer clock;
    clock.start();
    CDelayedCall::invoke(100, &receiver, "record", true);
    QVERIFY(receiver.calls.isEmpty());
    QVERIFY(CDelayedCall::isActive(&receiver, "record"));

    QTRY_COMPARE(receiver.calls.size(), 1);
    QVERIFY(clock.elapsed() >= 90);
    QCOMPARE(receiver.threads.first(), QThread::currentThread());
    QVERIFY(!CDelayedCall::isActive(&receiver, "record"));

    serveWhatIsDue();
    QCOMPARE(receiver.calls.size(), 1);
}

void tst_DelayedCall::argumentsComeInTheWrittenOrder_data()
{
    QTest::addColumn<int>("count");
    QTest::addColumn<QVariantList>("expected");

    const QVariantList all{1,
                           QStringLiteral("two"),
                           3.5,
                           true,
                           QPoint(5, -5),
                           QByteArray("six"),
                           qlonglong(7),
                           QStringList{QStringLiteral("eight")},
                           QChar('9')};
    for (int count = 0; count <= 9; ++count)
        QTest::addRow("%d arguments", count) << count << all.mid(0, count);
}

void tst_DelayedCall::argumentsComeInTheWrittenOrder()
{
    QFETCH(int, count);
    QFETCH(QVariantList, expected);

    Receiver receiver;
    request(count, &receiver);
    QTRY_COMPARE(receiver.calls.size(), 1);
    QCOMPARE(receiver.calls.first(), expected);
}

void tst_DelayedCall::anyTypeOfAVariantPasses()
{
    Receiver receiver;
    CDelayedCall::invokeWithArgs(0, &receiver, "takeTracked",
                                 QVariant::fromValue(Tracked{QSharedPointer<int>::create(1)}),
                                 true);
    QTRY_COMPARE(receiver.calls.size(), 1);
}

void tst_DelayedCall::aMethodWithAResultIsCalledToo()
{
    Receiver receiver;
    CDelayedCall::invokeWithArgs(0, &receiver, "takeAnother", QStringLiteral("text"), true);
    QTRY_COMPARE(receiver.calls, QList<QVariantList>{{QStringLiteral("text")}});
}

void tst_DelayedCall::delayOfZeroFiresFromTheEventLoop()
{
    Receiver receiver;
    CDelayedCall::invoke(0, &receiver, "record", true);
    QVERIFY(receiver.calls.isEmpty());
    QVERIFY(CDelayedCall::isActive(&receiver, "record"));
    QTRY_COMPARE(receiver.calls.size(), 1);
}

void tst_DelayedCall::burstOfRequestsGivesOneCall()
{
    Receiver receiver;
    QElapsedTimer sinceLast;
    int requests = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        ++requests;
        CDelayedCall::invokeWithArgs(500, &receiver, "record", requests, true);
        sinceLast.start();
        if (requests == 10)
            timer.stop();
    });
    timer.start(10);

    QTRY_COMPARE(receiver.calls.size(), 1);
    // 95 percent of the delay is what a coarse timer may take.
    QVERIFY(sinceLast.elapsed() >= 470);
    QCOMPARE(requests, 10);
    QCOMPARE(receiver.calls.first(), QVariantList{10});

    serveWhatIsDue();
    QCOMPARE(receiver.calls.size(), 1);
}

void tst_DelayedCall::aSecondRequestReplacesTheFirstOne_data()
{
    QTest::addColumn<int>("firstDelay");
    QTest::addColumn<int>("secondDelay");
    QTest::addColumn<int>("expectedCalls");

    QTest::newRow("by a sooner one") << never << 0 << 1;
    QTest::newRow("by a later one") << 0 << never << 0;
    QTest::newRow("by an equal one") << 0 << 0 << 1;
}

void tst_DelayedCall::aSecondRequestReplacesTheFirstOne()
{
    QFETCH(int, firstDelay);
    QFETCH(int, secondDelay);
    QFETCH(int, expectedCalls);

    Receiver receiver;
    CDelayedCall::invokeWithArgs(firstDelay, &receiver, "record", 1, true);
    CDelayedCall::invokeWithArgs(secondDelay, &receiver, "record", 2, QStringLiteral("b"), true);
    serveWhatIsDue();
    QCOMPARE(receiver.calls.size(), expectedCalls);
    if (expectedCalls) {
        const QVariantList expected{2, QStringLiteral("b")};
        QCOMPARE(receiver.calls.first(), expected);
    }
    QCOMPARE(CDelayedCall::isActive(&receiver, "record"), expectedCalls == 0);
    CDelayedCall::discard(&receiver, nullptr);
}

void tst_DelayedCall::aSecondRequestReplacesTheRepetition()
{
    Receiver receiver;
    CDelayedCall::invoke(0, &receiver, "record", false);
    CDelayedCall::invoke(0, &receiver, "record", true);
    serveWhatIsDue();
    QCOMPARE(receiver.calls.size(), 1);
    QVERIFY(!CDelayedCall::isActive(&receiver, "record"));

    CDelayedCall::invoke(0, &receiver, "record", true);
    CDelayedCall::invoke(0, &receiver, "record", false);
    QTRY_VERIFY(receiver.calls.size() > 3);
    QVERIFY(CDelayedCall::isActive(&receiver, "record"));
    CDelayedCall::discard(&receiver, "record");
}

void tst_DelayedCall::argumentsOfAReplacedCallAreDropped()
{
    Receiver receiver;
    QWeakPointer<int> token;
    {
        const Tracked tracked{QSharedPointer<int>::create(1)};
        token = tracked.token;
        CDelayedCall::invokeWithArgs(never, &receiver, "takeTracked", QVariant::fromValue(tracked),
                                     true);
    }
    QVERIFY(!token.isNull());
    CDelayedCall::invoke(never, &receiver, "takeTracked", true);
    QVERIFY(token.isNull());
    CDelayedCall::discard(&receiver, "takeTracked");
}

void tst_DelayedCall::argumentsOfADiscardedCallAreDropped()
{
    Receiver receiver;
    QWeakPointer<int> token;
    {
        const Tracked tracked{QSharedPointer<int>::create(1)};
        token = tracked.token;
        CDelayedCall::invokeWithArgs(never, &receiver, "takeTracked", QVariant::fromValue(tracked),
                                     true);
    }
    CDelayedCall::discard(&receiver, "takeTracked");
    QVERIFY(token.isNull());
}

void tst_DelayedCall::differentMethodsAndObjectsAreIndependent()
{
    Receiver one;
    Receiver two;
    CDelayedCall::invokeWithArgs(0, &one, "record", 1, true);
    CDelayedCall::invoke(0, &one, "other", true);
    CDelayedCall::invokeWithArgs(0, &two, "record", 2, true);
    serveWhatIsDue();
    QCOMPARE(one.calls, QList<QVariantList>{{1}});
    QCOMPARE(one.others, 1);
    QCOMPARE(two.calls, QList<QVariantList>{{2}});
    QCOMPARE(two.others, 0);
}

void tst_DelayedCall::equalTextAtAnotherAddressIsTheSameMethod()
{
    const char first[] = "record";
    const char second[] = "record";
    QVERIFY(static_cast<const void*>(first) != static_cast<const void*>(second));

    Receiver receiver;
    CDelayedCall::invokeWithArgs(0, &receiver, first, 1, true);
    QVERIFY(CDelayedCall::isActive(&receiver, second));
    CDelayedCall::invokeWithArgs(0, &receiver, second, 2, true);
    serveWhatIsDue();
    QCOMPARE(receiver.calls, QList<QVariantList>{{2}});

    CDelayedCall::invoke(never, &receiver, first, true);
    CDelayedCall::discard(&receiver, second);
    QVERIFY(!CDelayedCall::isActive(&receiver, first));
}

void tst_DelayedCall::theMethodNameIsNotCopied()
{
    char name[] = "record";
    Receiver receiver;
    CDelayedCall::invoke(0, &receiver, name, true);
    qstrcpy(name, "other");
    QVERIFY(CDelayedCall::isActive(&receiver, "other"));
    serveWhatIsDue();
    QCOMPARE(receiver.others, 1);
    QCOMPARE(receiver.calls.size(), 0);
}

void tst_DelayedCall::repeatingCallGoesOnUntilDiscarded()
{
    Receiver receiver;
    CDelayedCall::invokeWithArgs(5, &receiver, "record", 1, QStringLiteral("b"), false);
    QTRY_VERIFY(receiver.calls.size() >= 3);
    const QVariantList expected{1, QStringLiteral("b")};
    for (const QVariantList& call : qAsConst(receiver.calls))
        QCOMPARE(call, expected);
    QVERIFY(CDelayedCall::isActive(&receiver, "record"));

    CDelayedCall::discard(&receiver, "record");
    QVERIFY(!CDelayedCall::isActive(&receiver, "record"));
    const int calls = receiver.calls.size();
    serveWhatIsDue();
    QCOMPARE(receiver.calls.size(), calls);
}

void tst_DelayedCall::repeatingCallMayDiscardItself()
{
    Receiver receiver;
    receiver.onCall = [&] { CDelayedCall::discard(&receiver, "record"); };
    CDelayedCall::invokeWithArgs(0, &receiver, "record", 1, false);
    serveWhatIsDue();
    QCOMPARE(receiver.calls, QList<QVariantList>{{1}});
    QVERIFY(!CDelayedCall::isActive(&receiver, "record"));
}

void tst_DelayedCall::repeatingCallMayReplaceItself()
{
    Receiver receiver;
    bool activeInside = false;
    receiver.onCall = [&] {
        activeInside = CDelayedCall::isActive(&receiver, "record");
        receiver.onCall = nullptr;
        CDelayedCall::invokeWithArgs(0, &receiver, "record", 2, true);
    };
    CDelayedCall::invokeWithArgs(0, &receiver, "record", 1, false);
    serveWhatIsDue();
    const QList<QVariantList> expected{{1}, {2}};
    QCOMPARE(receiver.calls, expected);
    QVERIFY(activeInside);
    QVERIFY(!CDelayedCall::isActive(&receiver, "record"));
}

void tst_DelayedCall::discardWithAMethodCancelsOneCall()
{
    Receiver receiver;
    Receiver bystander;
    CDelayedCall::invoke(0, &receiver, "record", true);
    CDelayedCall::invoke(0, &receiver, "other", true);
    CDelayedCall::invoke(0, &bystander, "record", true);
    CDelayedCall::discard(&receiver, "record");
    QVERIFY(!CDelayedCall::isActive(&receiver, "record"));
    QVERIFY(CDelayedCall::isActive(&receiver, "other"));
    serveWhatIsDue();
    QCOMPARE(receiver.calls.size(), 0);
    QCOMPARE(receiver.others, 1);
    QCOMPARE(bystander.calls.size(), 1);

    CDelayedCall::discard(&receiver, "record");
    CDelayedCall::discard(&receiver, "neverRequested");
}

void tst_DelayedCall::discardWithoutAMethodCancelsAllCallsOfTheObject()
{
    Receiver receiver;
    Receiver bystander;
    CDelayedCall::invoke(0, &receiver, "record", true);
    CDelayedCall::invoke(0, &receiver, "other", false);
    CDelayedCall::invoke(0, &receiver, "takeDouble", true);
    CDelayedCall::invoke(0, &bystander, "record", true);
    CDelayedCall::discard(&receiver, nullptr);
    QVERIFY(!CDelayedCall::isActive(&receiver, "record"));
    QVERIFY(!CDelayedCall::isActive(&receiver, "other"));
    QVERIFY(!CDelayedCall::isActive(&receiver, "takeDouble"));
    serveWhatIsDue();
    QCOMPARE(receiver.calls.size(), 0);
    QCOMPARE(receiver.others, 0);
    QCOMPARE(bystander.calls.size(), 1);
}

void tst_DelayedCall::anArgumentThatComesBackAtItsEndFindsAllInOrder_data()
{
    QTest::addColumn<QByteArray>("discarded");
    QTest::addColumn<bool>("otherStays");

    QTest::newRow("one call is discarded") << QByteArray("takeTracked") << true;
    QTest::newRow("all calls are discarded") << QByteArray() << false;
}

void tst_DelayedCall::anArgumentThatComesBackAtItsEndFindsAllInOrder()
{
    QFETCH(QByteArray, discarded);
    QFETCH(bool, otherStays);

    Receiver receiver;
    bool ended = false;
    {
        const Tracked argument{QSharedPointer<int>(new int(0), [&](int* value) {
            delete value;
            ended = true;
            CDelayedCall::discard(&receiver, "fresh");
            CDelayedCall::invoke(never, &receiver, "fresh", true);
        })};
        CDelayedCall::invokeWithArgs(never, &receiver, "takeTracked", QVariant::fromValue(argument),
                                     true);
    }
    CDelayedCall::invoke(never, &receiver, "other", true);
    CDelayedCall::invoke(never, &receiver, "fresh", true);

    CDelayedCall::discard(&receiver, discarded.isNull() ? nullptr : discarded.constData());

    QVERIFY(ended);
    QVERIFY(CDelayedCall::isActive(&receiver, "fresh"));
    QCOMPARE(CDelayedCall::isActive(&receiver, "other"), otherStays);
    QVERIFY(!CDelayedCall::isActive(&receiver, "takeTracked"));
    CDelayedCall::discard(&receiver, nullptr);
}

void tst_DelayedCall::discardWithoutAnObjectDoesNothing()
{
    Receiver receiver;
    CDelayedCall::invoke(0, &receiver, "record", true);
    CDelayedCall::discard(nullptr, "record");
    CDelayedCall::discard(nullptr, nullptr);
    QVERIFY(CDelayedCall::isActive(&receiver, "record"));
    serveWhatIsDue();
    QCOMPARE(receiver.calls.size(), 1);
}

void tst_DelayedCall::discardAndIsActiveOnAThreadWithoutRequests()
{
    Receiver receiver;
    bool active = true;
    onAnotherThread([&] {
        CDelayedCall::discard(&receiver, "record");
        CDelayedCall::discard(&receiver, nullptr);
        active = CDelayedCall::isActive(&receiver, "record");
    });
    QVERIFY(!active);
}

void tst_DelayedCall::isActiveTellsWhatIsPending()
{
    Receiver receiver;
    Receiver bystander;
    CDelayedCall::invoke(never, &receiver, "record", true);
    QVERIFY(CDelayedCall::isActive(&receiver, "record"));
    QVERIFY(!CDelayedCall::isActive(&receiver, "other"));
    QVERIFY(!CDelayedCall::isActive(&receiver, nullptr));
    QVERIFY(!CDelayedCall::isActive(&bystander, "record"));
    QVERIFY(!CDelayedCall::isActive(nullptr, "record"));
    QVERIFY(!CDelayedCall::isActive(nullptr, nullptr));

    CDelayedCall::invoke(never, &receiver, "other", false);
    QVERIFY(CDelayedCall::isActive(&receiver, "record"));
    QVERIFY(CDelayedCall::isActive(&receiver, "other"));
    CDelayedCall::discard(&receiver, nullptr);
}

void tst_DelayedCall::requestingItselfAgainGivesAFreshCall()
{
    Receiver receiver;
    bool activeBefore = true;
    bool activeAfter = false;
    receiver.onCall = [&] {
        receiver.onCall = nullptr;
        activeBefore = CDelayedCall::isActive(&receiver, "record");
        CDelayedCall::invokeWithArgs(0, &receiver, "record", 2, true);
        activeAfter = CDelayedCall::isActive(&receiver, "record");
    };
    CDelayedCall::invokeWithArgs(0, &receiver, "record", 1, true);
    QTRY_COMPARE(receiver.calls.size(), 2);
    QVERIFY(!activeBefore);
    QVERIFY(activeAfter);
    serveWhatIsDue();
    const QList<QVariantList> expected{{1}, {2}};
    QCOMPARE(receiver.calls, expected);
    QVERIFY(!CDelayedCall::isActive(&receiver, "record"));
}

void tst_DelayedCall::nestedEventLoopDoesNotFireTwice()
{
    Receiver receiver;
    receiver.onCall = [] {
        QEventLoop loop;
        QTimer::singleShot(100, &loop, &QEventLoop::quit);
        loop.exec();
    };
    CDelayedCall::invoke(1, &receiver, "record", true);
    QTRY_COMPARE(receiver.calls.size(), 1);
    serveWhatIsDue();
    QCOMPARE(receiver.calls.size(), 1);
}

void tst_DelayedCall::targetMayDieInItsMethod()
{
    auto* const receiver = new Receiver;
    int calls = 0;
    receiver->onCall = [&calls, receiver] {
        ++calls;
        delete receiver;
    };
    CDelayedCall::invoke(0, receiver, "record", true);
    serveWhatIsDue();
    QCOMPARE(calls, 1);
}

void tst_DelayedCall::nullObjectOrMethodIsIgnoredInSilence()
{
    Receiver receiver;
    CDelayedCall::invoke(0, &receiver, "record", true);
    int messages = -1;
    {
        const MessageCounter counter;
        CDelayedCall::invoke(0, nullptr, "record", true);
        CDelayedCall::invoke(0, &receiver, nullptr, true);
        CDelayedCall::invoke(0, nullptr, nullptr, true);
        CDelayedCall::invokeWithArgs(0, nullptr, "record", 1, true);
        CDelayedCall::invokeWithArgs(0, &receiver, nullptr, 1, true);
        messages = counter.count();
    }
    QCOMPARE(messages, 0);
    QVERIFY(CDelayedCall::isActive(&receiver, "record"));
    serveWhatIsDue();
    QCOMPARE(receiver.calls, QList<QVariantList>{{}});
}

void tst_DelayedCall::negativeDelayDropsTheRequestAndTheEarlierCall()
{
    Receiver receiver;
    CDelayedCall::invoke(0, &receiver, "record", true);
    CDelayedCall::invoke(0, &receiver, "other", true);
    QTest::ignoreMessage(QtWarningMsg,
                         "QObject::startTimer: Timers cannot have negative intervals");
    CDelayedCall::invoke(-1, &receiver, "record", true);
    QVERIFY(!CDelayedCall::isActive(&receiver, "record"));
    QVERIFY(CDelayedCall::isActive(&receiver, "other"));
    serveWhatIsDue();
    QCOMPARE(receiver.calls.size(), 0);
    QCOMPARE(receiver.others, 1);
}

void tst_DelayedCall::threadWithoutDispatcherDropsTheRequest()
{
    QTest::ignoreMessage(QtWarningMsg,
                         "QObject::startTimer: Timers can only be used with threads "
                         "started with QThread");
    Receiver receiver;
    bool active = true;
    onAnotherThread([&] {
        CDelayedCall::invoke(0, &receiver, "record", true);
        active = CDelayedCall::isActive(&receiver, "record");
    });
    QVERIFY(!active);
    serveWhatIsDue();
    QCOMPARE(receiver.calls.size(), 0);
}

void tst_DelayedCall::deadTargetIsNotCalled()
{
    const InvokerFinder finder;
    int calls = 0;
    int messages = -1;
    {
        const MessageCounter counter;
        {
            Receiver receiver;
            receiver.onCall = [&calls] { ++calls; };
            CDelayedCall::invoke(0, &receiver, "record", true);
            QCOMPARE(finder.timers().size(), 1);
        }
        serveWhatIsDue();
        messages = counter.count();
    }
    QCOMPARE(calls, 0);
    QCOMPARE(messages, 0);
    QCOMPARE(finder.timers().size(), 0);
}

void tst_DelayedCall::deadTargetOfARepeatingCallKeepsTheTimer()
{
    InvokerFinder finder;
    int calls = 0;
    Storage storage;
    auto* const receiver = new (&storage) Receiver;
    receiver->onCall = [&calls] { ++calls; };
    CDelayedCall::invoke(20, receiver, "record", false);
    receiver->~Receiver();
    QCOMPARE(finder.timers().size(), 1);
    const int timer = finder.timers().at(0).timerId;

    finder.watch();
    QTRY_VERIFY(finder.ticks(timer) >= 2);

    CDelayedCall::discard(receiver, "record");
    CDelayedCall::discard(receiver, nullptr);
    QVERIFY(!CDelayedCall::isActive(receiver, "record"));
    QCOMPARE(finder.timers().size(), 1);
    const int ticks = finder.ticks(timer);
    QTRY_VERIFY(finder.ticks(timer) >= ticks + 2);
    QCOMPARE(calls, 0);
    // Only the end of the thread ends it.
}

void tst_DelayedCall::unknownMethodOrWrongTypesWarn_data()
{
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QVariant>("argument");
    QTest::addColumn<QByteArray>("signature");

    QTest::newRow("no such method")
        << QByteArray("missing") << QVariant(1) << QByteArray("missing(int)");
    QTest::newRow("an int isn't made a double")
        << QByteArray("takeDouble") << QVariant(1) << QByteArray("takeDouble(int)");
    QTest::newRow("a text isn't made a number")
        << QByteArray("record") << QVariant(QStringLiteral("1")) << QByteArray("record(QString)");
    QTest::newRow("an argument too many")
        << QByteArray("other") << QVariant(1) << QByteArray("other(int)");
    QTest::newRow("the name with a parameter list")
        << QByteArray("takeDouble(double)") << QVariant(1.0)
        << QByteArray("takeDouble(double)(double)");
}

void tst_DelayedCall::unknownMethodOrWrongTypesWarn()
{
    QFETCH(QByteArray, method);
    QFETCH(QVariant, argument);
    QFETCH(QByteArray, signature);

    Receiver receiver;
    ignoreNoSuchMethod(signature.constData());
    CDelayedCall::invokeWithArgs(0, &receiver, method.constData(), argument, true);
    QVERIFY(CDelayedCall::isActive(&receiver, method.constData()));
    serveWhatIsDue();
    QCOMPARE(receiver.calls.size(), 0);
    QCOMPARE(receiver.others, 0);
    QVERIFY(!CDelayedCall::isActive(&receiver, method.constData()));
}

void tst_DelayedCall::repeatingCallOfAnUnknownMethodFailsAgain()
{
    InvokerFinder finder;
    Receiver receiver;
    ignoreNoSuchMethod("missing()");
    ignoreNoSuchMethod("missing()");
    CDelayedCall::invoke(1, &receiver, "missing", false);
    const int timer = finder.timers().at(0).timerId;
    // The tick is seen before it is served.
    finder.onTick = [&](int timerId, int ticks) {
        if (timerId == timer && ticks == 3)
            CDelayedCall::discard(&receiver, "missing");
    };
    finder.watch();
    QTRY_VERIFY(!CDelayedCall::isActive(&receiver, "missing"));
}

void tst_DelayedCall::newObjectAtAnOldAddressIsNotMistaken()
{
    Storage storage;
    auto* const old = new (&storage) Receiver;
    CDelayedCall::invokeWithArgs(0, old, "record", 1, true);
    old->~Receiver();

    auto* const young = new (&storage) Receiver;
    QCOMPARE(static_cast<void*>(young), static_cast<void*>(&storage));
    QVERIFY(!CDelayedCall::isActive(young, "record"));
    CDelayedCall::discard(young, "record");
    CDelayedCall::discard(young, nullptr);

    // The old entry comes first under the address and must not be taken for the new one.
    CDelayedCall::invokeWithArgs(never, young, "record", 2, true);
    QVERIFY(CDelayedCall::isActive(young, "record"));
    serveWhatIsDue();
    QCOMPARE(young->calls.size(), 0);
    QVERIFY(CDelayedCall::isActive(young, "record"));

    CDelayedCall::invokeWithArgs(0, young, "record", 3, true);
    serveWhatIsDue();
    QCOMPARE(young->calls, QList<QVariantList>{{3}});

    CDelayedCall::invoke(never, young, "other", true);
    CDelayedCall::discard(young, "other");
    QVERIFY(!CDelayedCall::isActive(young, "other"));
    young->~Receiver();
}

void tst_DelayedCall::oneCoarseTimerPerPendingCall()
{
    const InvokerFinder finder;
    QVERIFY(finder.invoker());
    QCOMPARE(finder.invoker()->metaObject(), &QObject::staticMetaObject);
    QVERIFY(!finder.invoker()->parent());
    QCOMPARE(finder.timers().size(), 0);

    Receiver one;
    Receiver two;
    CDelayedCall::invoke(5000, &one, "record", true);
    CDelayedCall::invoke(5000, &one, "other", true);
    CDelayedCall::invoke(5000, &two, "record", false);
    CDelayedCall::invoke(5000, &two, "record", true);
    const auto timers = finder.timers();
    QCOMPARE(timers.size(), 3);
    for (const auto& timer : timers) {
        QCOMPARE(timer.timerType, Qt::CoarseTimer);
        QCOMPARE(timer.interval, 5000);
    }
    QCOMPARE(finder.invoker()->children().size(), 0);

    CDelayedCall::discard(&two, "record");
    QCOMPARE(finder.timers().size(), 2);
    CDelayedCall::discard(&one, nullptr);
    QCOMPARE(finder.timers().size(), 0);
}

void tst_DelayedCall::timerDiesAfterTheInvocation()
{
    const InvokerFinder finder;
    Receiver receiver;
    CDelayedCall::invoke(0, &receiver, "record", true);
    const int timer = finder.timers().at(0).timerId;
    QList<QAbstractEventDispatcher::TimerInfo> inside;
    receiver.onCall = [&] { inside = finder.timers(); };
    QTRY_COMPARE(receiver.calls.size(), 1);
    QCOMPARE(inside.size(), 1);
    QCOMPARE(inside.first().timerId, timer);
    QCOMPARE(finder.timers().size(), 0);
}

void tst_DelayedCall::lateTickWithoutACallIsIgnored()
{
    const InvokerFinder finder;
    Receiver receiver;
    CDelayedCall::invoke(never, &receiver, "record", true);
    const int timer = finder.timers().at(0).timerId;
    QTimerEvent tick(timer);
    QTimerEvent strange(timer + 100000);
    int messages = -1;
    {
        const MessageCounter counter;
        QCoreApplication::sendEvent(finder.invoker(), &strange);
        QCOMPARE(receiver.calls.size(), 0);
        QCoreApplication::sendEvent(finder.invoker(), &tick);
        QCOMPARE(receiver.calls.size(), 1);
        QCoreApplication::sendEvent(finder.invoker(), &tick);
        messages = counter.count();
    }
    QCOMPARE(receiver.calls.size(), 1);
    QCOMPARE(messages, 0);
    QVERIFY(tick.isAccepted());
}

void tst_DelayedCall::threadsDoNotSeeEachOthersCalls()
{
    Receiver receiver;
    CDelayedCall::invoke(0, &receiver, "record", true);
    bool seen = true;
    onAnotherThread([&] {
        QEventLoop dispatcherOfThisThread;
        Receiver own;
        CDelayedCall::invoke(never, &own, "record", true);
        seen = CDelayedCall::isActive(&receiver, "record");
        CDelayedCall::discard(&receiver, "record");
        CDelayedCall::discard(&receiver, nullptr);
    });
    QVERIFY(!seen);
    QVERIFY(CDelayedCall::isActive(&receiver, "record"));
    QTRY_COMPARE(receiver.calls.size(), 1);
}

void tst_DelayedCall::samePairOnTwoThreadsGivesTwoCalls()
{
    Receiver receiver;
    CDelayedCall::invokeWithArgs(never, &receiver, "record", 1, true);
    onAnotherThread([&] {
        QEventLoop dispatcherOfThisThread;
        CDelayedCall::invokeWithArgs(0, &receiver, "record", 2, true);
        serveWhatIsDue();
    });
    QTRY_COMPARE(receiver.calls, QList<QVariantList>{{2}});
    QVERIFY(CDelayedCall::isActive(&receiver, "record"));
    CDelayedCall::invokeWithArgs(0, &receiver, "record", 3, true);
    QTRY_COMPARE(receiver.calls.size(), 2);
    QCOMPARE(receiver.calls.last(), QVariantList{3});
}

void tst_DelayedCall::adoptedThreadServesItsCallsInAnEventLoop()
{
    QList<QVariantList> calls;
    bool onThisThread = false;
    onAnotherThread([&] {
        QEventLoop loop;
        Receiver receiver;
        receiver.onCall = [&loop] { loop.quit(); };
        CDelayedCall::invokeWithArgs(0, &receiver, "record", 1, true);
        loop.exec();
        calls = receiver.calls;
        onThisThread = receiver.threads.first() == QThread::currentThread();
    });
    QCOMPARE(calls, QList<QVariantList>{{1}});
    QVERIFY(onThisThread);
}

void tst_DelayedCall::targetOnAnotherThreadIsCalledThere()
{
    Receiver receiver;
    bool activeAfterwards = true;
    onAnotherThread([&] {
        QEventLoop dispatcherOfThisThread;
        CDelayedCall::invokeWithArgs(0, &receiver, "record", 1, QStringLiteral("two"), true);
        serveWhatIsDue();
        activeAfterwards = CDelayedCall::isActive(&receiver, "record");
    });
    QVERIFY(!activeAfterwards);
    // Fired over there, and queued here.
    QCOMPARE(receiver.calls.size(), 0);
    QTRY_COMPARE(receiver.calls.size(), 1);
    const QVariantList expected{1, QStringLiteral("two")};
    QCOMPARE(receiver.calls.first(), expected);
    QCOMPARE(receiver.threads.first(), QThread::currentThread());
}

void tst_DelayedCall::endOfAThreadDropsItsCalls()
{
    Receiver receiver;
    QWeakPointer<int> token;
    bool active = false;
    onAnotherThread([&] {
        QEventLoop dispatcherOfThisThread;
        const Tracked tracked{QSharedPointer<int>::create(1)};
        token = tracked.token;
        CDelayedCall::invokeWithArgs(0, &receiver, "takeTracked", QVariant::fromValue(tracked),
                                     true);
        CDelayedCall::invoke(0, &receiver, "other", false);
        active = CDelayedCall::isActive(&receiver, "other");
    });
    QVERIFY(active);
    QVERIFY(token.isNull());
    serveWhatIsDue();
    QCOMPARE(receiver.calls.size(), 0);
    QCOMPARE(receiver.others, 0);
    QVERIFY(!CDelayedCall::isActive(&receiver, "other"));
}

void tst_DelayedCall::manyThreadsAtOnce()
{
    constexpr int threadCount = 8;
    Receiver target;
    std::atomic<int> ready{0};
    std::atomic<int> calls{0};
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&] {
            QEventLoop loop;
            Receiver own;
            own.onCall = [&] {
                ++calls;
                loop.quit();
            };
            ++ready;
            while (ready < threadCount)
                std::this_thread::yield();
            CDelayedCall::invoke(0, &target, "other", true);
            CDelayedCall::invoke(never, &own, "record", true);
            CDelayedCall::invoke(20, &own, "record", true);
            loop.exec();
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    QCOMPARE(calls.load(), threadCount);
    QTRY_COMPARE(target.others, threadCount);
}

QTEST_GUILESS_MAIN(tst_DelayedCall)
#include "tst_DelayedCall.moc"
