#include "RunnableItem.h"

#include <QCoreApplication>
#include <QMetaMethod>
#include <QPointer>
#include <QSignalSpy>
#include <QThread>
#include <QThreadPool>
#include <QtTest>

#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cstring>
#include <functional>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

/// What happened, in order, from any thread.
class Journal
{
public:
    void add(const QString& line)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_lines << line;
    }

    QStringList lines() const
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        return m_lines;
    }

private:
    mutable std::mutex m_mutex;
    QStringList m_lines;
};

QString yesNo(bool value)
{
    return value ? QStringLiteral("yes") : QStringLiteral("no");
}

/// An item whose work and hooks are functions. It must outlive its run.
class Item : public CQRunnableItem
{
    Q_OBJECT

public:
    explicit Item(bool emitSignals = true, QObject* parent = nullptr)
        : CQRunnableItem(emitSignals, parent)
    {}

    std::function<bool()> work = [] { return true; };
    std::function<void()> beforeStopped = [] {};
    std::function<void()> stopped = [] {};

    using CQRunnableItem::doBeforeStopped;
    using CQRunnableItem::doRun;
    using CQRunnableItem::doStopped;

protected:
    bool doRun() override { return work(); }
    void doBeforeStopped() override { beforeStopped(); }
    void doStopped() override { stopped(); }
};

/// Gives access to the operations whose place in the table matters.
class Slots : public CQRunnableItem
{
public:
    using CQRunnableItem::CQRunnableItem;
    using CQRunnableItem::doBeforeStopped;
    using CQRunnableItem::doRun;
    using CQRunnableItem::doStopped;
};

/// Writes all signals, hooks and the work of an item into a journal. The work returns \a bOk.
void record(Item& item, Journal& journal, bool bOk = true)
{
    item.work = [&journal, bOk] {
        journal.add(QStringLiteral("doRun"));
        return bOk;
    };
    item.beforeStopped = [&journal, &item] {
        journal.add(
            QStringLiteral("doBeforeStopped, stop required: %1").arg(yesNo(item.stopRequired())));
    };
    item.stopped = [&journal, &item] {
        journal.add(QStringLiteral("doStopped, stop required: %1").arg(yesNo(item.stopRequired())));
    };
    QObject::connect(
        &item, &CQRunnableItem::started, &item,
        [&journal] { journal.add(QStringLiteral("started")); }, Qt::DirectConnection);
    QObject::connect(
        &item, &CQRunnableItem::wantsToStop, &item,
        [&journal, &item] {
            journal.add(
                QStringLiteral("wantsToStop, stop required: %1").arg(yesNo(item.stopRequired())));
        },
        Qt::DirectConnection);
    QObject::connect(
        &item, &CQRunnableItem::finished, &item,
        [&journal](bool ok, bool stopped) {
            journal.add(
                QStringLiteral("finished, ok: %1, stopped: %2").arg(yesNo(ok), yesNo(stopped)));
        },
        Qt::DirectConnection);
}

/// Work that stays inside until it is let go, and uses nothing of its own afterwards.
struct Gate
{
    std::atomic<bool> inside{false};
    std::atomic<bool> open{false};
    std::atomic<bool> left{false};

    void pass()
    {
        inside = true;
        while (!open)
            std::this_thread::yield();
        left = true;
    }

    void awaitInside() const
    {
        while (!inside)
            std::this_thread::yield();
    }
};

class GatedItem : public CQRunnableItem
{
public:
    GatedItem(Gate& gate, bool bThrow)
        : CQRunnableItem(false)
        , m_gate(gate)
        , m_bThrow(bThrow)
    {}

protected:
    bool doRun() override
    {
        const bool bThrow = m_bThrow;
        m_gate.pass();
        if (bThrow)
            throw std::runtime_error("no");
        return true;
    }

private:
    Gate& m_gate;
    const bool m_bThrow;
};

/// The template without the object.
class PlainItem : public CRunnableItem<QRunnable>
{
public:
    explicit PlainItem(Gate& gate)
        : m_gate(gate)
    {}

    void run() override
    {
        const RunningScope running(*this);
        m_gate.pass();
    }

private:
    Gate& m_gate;
};

using Predicate = CRunnableItem<QRunnable>::StartFinishPredicate;

bool isIdle(const CQRunnableItem& item)
{
    return Predicate(item, Predicate::Finished).done();
}

bool isBusy(const CQRunnableItem& item)
{
    return Predicate(item, Predicate::Started).done();
}

/// Keeps the arguments of finished() on the thread that made it, whichever the item runs on.
class FinishedRuns : public QObject
{
public:
    explicit FinishedRuns(const CQRunnableItem& item)
    {
        connect(&item, &CQRunnableItem::finished, this, [this](bool bOk, bool bStopped) {
            runs << QVariantList{bOk, bStopped};
        });
    }

    QList<QVariantList> runs;
};

template <typename Function>
std::ptrdiff_t tableSlot(Function function)
{
    // A pointer to a virtual member is 1 plus the offset into the table.
    std::ptrdiff_t offset = 0;
    std::memcpy(&offset, &function, sizeof offset);
    return (offset - 1) / std::ptrdiff_t(sizeof(void*));
}

class Thread : public QThread
{
public:
    explicit Thread(std::function<void()> work)
        : m_work(std::move(work))
    {}

protected:
    void run() override { m_work(); }

private:
    const std::function<void()> m_work;
};

} // namespace

class tst_RunnableItem : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void metaObject();
    void orderOfVirtualOperations();
    void bases();
    void itemHasItsParentAndIsAutoDeleted();

    void runFramesTheWork();
    void finishedTellsResultAndStop_data();
    void finishedTellsResultAndStop();
    void stopInAReceiverOfFinishedComesTooLate();
    void runAfterStopDoesNothing_data();
    void runAfterStopDoesNothing();
    void stoppedItemStaysStopped();
    void itemRunsAgainIfKept();
    void stopCallsHooksAndSignalOnce();
    void itemThatNeverStopsIsNotStopped();
    void withoutSignalsHooksAreCalledAllTheSame();
    void hooksRunOutsideTheLock();
    void defaultHooksDoNothing();
    void finishedHasTwoShorterForms();
    void shorterFormsGetTheSignalOfARun();

    void stopRequiredFollowsTheCallingThread();
    void stopOnAThreadToBeInterruptedDoesNothing();
    void runOnAThreadToBeInterruptedDoesNothing();
    void workSeesTheInterruption();
    void stopWhileTheApplicationGoesDownDoesNothing();

    void exceptionLeavesTheCountRight();
    void predicatesFollowTheWork();
    void twoThreadsInsideAreCounted();
    void destructorWaitsForTheWork_data();
    void destructorWaitsForTheWork();
    void destructorOfThePlainItemWaitsToo();
    void destructorDoesNotStop();

    void runsOnAThreadPool();
    void poolDeletesTheItem();
    void poolLeavesAKeptItem();
    void queuedSignalsOutliveTheItem();
    void runsOnAThread();
    void runsOnAStandardThread();
    void isStartedByASignal();
    void isStartedByASignalOfItsThread();
    void isStoppedByASignal();
    void signalsComeOnTheThreadOfTheirCause();
    void stopDoesNotWait();
    void runStopAndStopRequiredAtOnce();
};

void tst_RunnableItem::metaObject()
{
    const QMetaObject& meta = CQRunnableItem::staticMetaObject;
    QCOMPARE(meta.className(), "CQRunnableItem");
    QList<QByteArray> methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QCOMPARE(method.access(), QMetaMethod::Public);
        const bool cloned = method.attributes() & QMetaMethod::Cloned;
        methods << QByteArray(method.methodType() == QMetaMethod::Signal ? "signal " : "slot ")
                + method.methodSignature() + (cloned ? " clone" : "");
    }
    const QList<QByteArray> expected{"signal started()",
                                     "signal wantsToStop()",
                                     "signal finished(bool,bool)",
                                     "signal finished(bool) clone",
                                     "signal finished() clone",
                                     "slot stop()",
                                     "slot run()"};
    QCOMPARE(methods, expected);
    const QMetaMethod finished = meta.method(meta.methodOffset() + 2);
    const QList<QByteArray> names{"bOk", "bStopped"};
    QCOMPARE(finished.parameterNames(), names);
}

void tst_RunnableItem::orderOfVirtualOperations()
{
    // Two entries are the destructor's.
    QCOMPARE(tableSlot(&CRunnableItem<QRunnable>::run), std::ptrdiff_t(0));
    QCOMPARE(tableSlot(&CRunnableItem<QRunnable>::stopRequired), std::ptrdiff_t(3));

    const std::ptrdiff_t run = tableSlot(&CQRunnableItem::run);
    QCOMPARE(run, tableSlot(&QObject::eventFilter) + 6);
    QCOMPARE(tableSlot(&Slots::doRun), run + 1);
    QCOMPARE(tableSlot(&Slots::doBeforeStopped), run + 2);
    QCOMPARE(tableSlot(&Slots::doStopped), run + 3);
}

void tst_RunnableItem::bases()
{
    Item item;
    CQRunnableItem* const base = &item;
    QCOMPARE(static_cast<void*>(static_cast<QObject*>(base)), static_cast<void*>(base));
    QVERIFY(static_cast<void*>(static_cast<CRunnableItem<QRunnable>*>(base))
            != static_cast<void*>(base));
    QVERIFY((std::is_base_of<QRunnable, CRunnableItem<QRunnable>>::value));
    QVERIFY((std::is_base_of<ICustomWaitPredicate, Predicate>::value));
}

void tst_RunnableItem::itemHasItsParentAndIsAutoDeleted()
{
    QObject parent;
    const auto* const item = new Item(true, &parent);
    QCOMPARE(item->parent(), &parent);
    QVERIFY(item->autoDelete());
    QVERIFY(!item->stopRequired());
}

void tst_RunnableItem::runFramesTheWork()
{
    Journal journal;
    Item item;
    record(item, journal);
    item.run();
    const QStringList expected{QStringLiteral("started"), QStringLiteral("doRun"),
                               QStringLiteral("finished, ok: yes, stopped: no")};
    QCOMPARE(journal.lines(), expected);
}

void tst_RunnableItem::finishedTellsResultAndStop_data()
{
    QTest::addColumn<bool>("result");
    QTest::addColumn<bool>("stop");
    QTest::addColumn<bool>("bEmitSignals");

    for (const bool bEmitSignals : {true, false}) {
        const char* const signalText = bEmitSignals ? "" : ", without signals";
        QTest::addRow("success%s", signalText) << true << false << bEmitSignals;
        QTest::addRow("failure%s", signalText) << false << false << bEmitSignals;
        QTest::addRow("success after a stop%s", signalText) << true << true << bEmitSignals;
        QTest::addRow("failure after a stop%s", signalText) << false << true << bEmitSignals;
    }
}

void tst_RunnableItem::finishedTellsResultAndStop()
{
    QFETCH(bool, result);
    QFETCH(bool, stop);
    QFETCH(bool, bEmitSignals);

    Item item(bEmitSignals);
    int runs = 0;
    item.work = [&] {
        ++runs;
        if (stop)
            item.stop();
        return result;
    };
    QSignalSpy started(&item, SIGNAL(started()));
    QSignalSpy finished(&item, SIGNAL(finished(bool, bool)));
    item.run();
    QCOMPARE(runs, 1);
    QCOMPARE(started.size(), bEmitSignals ? 1 : 0);
    QCOMPARE(finished.size(), bEmitSignals ? 1 : 0);
    if (bEmitSignals) {
        const QVariantList expected{result, stop};
        QCOMPARE(finished.first(), expected);
    }
}

void tst_RunnableItem::stopInAReceiverOfFinishedComesTooLate()
{
    Item item;
    QSignalSpy finished(&item, SIGNAL(finished(bool, bool)));
    connect(&item, &CQRunnableItem::finished, &item, [&] { item.stop(); });
    item.run();
    QVERIFY(item.stopRequired());
    const QVariantList expected{true, false};
    QCOMPARE(finished.value(0), expected);
    item.run();
    QCOMPARE(finished.size(), 1);
}

void tst_RunnableItem::runAfterStopDoesNothing_data()
{
    QTest::addColumn<bool>("bEmitSignals");

    QTest::newRow("with signals") << true;
    QTest::newRow("without signals") << false;
}

void tst_RunnableItem::runAfterStopDoesNothing()
{
    QFETCH(bool, bEmitSignals);

    Item item(bEmitSignals);
    item.stop();
    Journal journal;
    record(item, journal);
    item.run();
    QCOMPARE(journal.lines(), QStringList());
    QVERIFY(isIdle(item));
}

void tst_RunnableItem::stoppedItemStaysStopped()
{
    Journal journal;
    Item item;
    item.work = [&] {
        item.stop();
        return true;
    };
    item.run();
    record(item, journal);
    item.run();
    item.run();
    QCOMPARE(journal.lines(), QStringList());
    QVERIFY(item.stopRequired());
}

void tst_RunnableItem::itemRunsAgainIfKept()
{
    Journal journal;
    Item item;
    record(item, journal, false);
    item.run();
    item.run();
    const QStringList once{QStringLiteral("started"), QStringLiteral("doRun"),
                           QStringLiteral("finished, ok: no, stopped: no")};
    QCOMPARE(journal.lines(), once + once);
}

void tst_RunnableItem::stopCallsHooksAndSignalOnce()
{
    Journal journal;
    Item item;
    record(item, journal);
    item.stop();
    item.stop();
    const QStringList expected{QStringLiteral("doBeforeStopped, stop required: no"),
                               QStringLiteral("wantsToStop, stop required: yes"),
                               QStringLiteral("doStopped, stop required: yes")};
    QCOMPARE(journal.lines(), expected);
}

void tst_RunnableItem::itemThatNeverStopsIsNotStopped()
{
    class Stubborn : public Item
    {
    public:
        bool stopRequired() const override { return false; }
    };
    Journal journal;
    Stubborn item;
    record(item, journal);
    item.stop();
    QCOMPARE(journal.lines(), QStringList{QStringLiteral("doBeforeStopped, stop required: no")});
}

void tst_RunnableItem::withoutSignalsHooksAreCalledAllTheSame()
{
    Journal journal;
    Item item(false);
    record(item, journal);
    item.run();
    item.stop();
    item.stop();
    const QStringList expected{QStringLiteral("doRun"),
                               QStringLiteral("doBeforeStopped, stop required: no"),
                               QStringLiteral("doStopped, stop required: yes")};
    QCOMPARE(journal.lines(), expected);
}

void tst_RunnableItem::hooksRunOutsideTheLock()
{
    Item item;
    QList<bool> seen;
    const auto askElsewhere = [&] {
        bool required = false;
        std::thread([&] { required = item.stopRequired(); }).join();
        seen << required;
    };
    const auto stopElsewhere = [&] { std::thread([&] { item.stop(); }).join(); };
    int hooks = 0;
    item.beforeStopped = [&] {
        if (++hooks == 1) {
            askElsewhere();
            // Nothing is set yet: the second first call goes through as well.
            stopElsewhere();
        }
    };
    item.stopped = askElsewhere;
    connect(&item, &CQRunnableItem::wantsToStop, &item, askElsewhere, Qt::DirectConnection);
    item.stop();
    const QList<bool> expected{false, true, true, true, true};
    QCOMPARE(seen, expected);
    QCOMPARE(hooks, 2);
}

void tst_RunnableItem::defaultHooksDoNothing()
{
    struct Simple : CQRunnableItem
    {
        Simple()
            : CQRunnableItem(true)
        {}
        bool doRun() override { return true; }
    } item;
    QSignalSpy wantsToStop(&item, SIGNAL(wantsToStop()));
    item.stop();
    QCOMPARE(wantsToStop.size(), 1);
    QVERIFY(item.stopRequired());
}

void tst_RunnableItem::finishedHasTwoShorterForms()
{
    Item item(false);
    QSignalSpy finished(&item, SIGNAL(finished(bool, bool)));
    Q_EMIT item.finished();
    Q_EMIT item.finished(false);
    Q_EMIT item.finished(false, true);
    QVERIFY(QMetaObject::invokeMethod(&item, "finished"));
    QVERIFY(QMetaObject::invokeMethod(&item, "finished", Q_ARG(bool, false)));
    const QList<QVariantList> expected{
        {true, false}, {false, false}, {false, true}, {true, false}, {false, false}};
    QCOMPARE(static_cast<QList<QVariantList>>(finished), expected);
}

void tst_RunnableItem::shorterFormsGetTheSignalOfARun()
{
    Item item;
    item.work = [] { return false; };
    QSignalSpy one(&item, SIGNAL(finished(bool)));
    QSignalSpy none(&item, SIGNAL(finished()));
    item.run();
    QCOMPARE(static_cast<QList<QVariantList>>(one), QList<QVariantList>{{false}});
    QCOMPARE(static_cast<QList<QVariantList>>(none), QList<QVariantList>{{}});
}

void tst_RunnableItem::stopRequiredFollowsTheCallingThread()
{
    Item item;
    bool before = true;
    bool after = false;
    Thread thread([&] {
        before = item.stopRequired();
        QThread::currentThread()->requestInterruption();
        after = item.stopRequired();
    });
    thread.start();
    QVERIFY(thread.wait());
    QVERIFY(!before);
    QVERIFY(after);
    QVERIFY(!item.stopRequired());
}

void tst_RunnableItem::stopOnAThreadToBeInterruptedDoesNothing()
{
    Journal journal;
    Item item;
    record(item, journal);
    Thread thread([&] {
        QThread::currentThread()->requestInterruption();
        item.stop();
    });
    thread.start();
    QVERIFY(thread.wait());
    QCOMPARE(journal.lines(), QStringList());
    QVERIFY(!item.stopRequired());
    item.run();
    QCOMPARE(journal.lines().size(), 3);
}

void tst_RunnableItem::runOnAThreadToBeInterruptedDoesNothing()
{
    Journal journal;
    Item item;
    record(item, journal);
    Thread thread([&] {
        QThread::currentThread()->requestInterruption();
        item.run();
    });
    thread.start();
    QVERIFY(thread.wait());
    QCOMPARE(journal.lines(), QStringList());
}

void tst_RunnableItem::workSeesTheInterruption()
{
    Item item;
    std::atomic<bool> inside{false};
    item.work = [&] {
        inside = true;
        while (!item.stopRequired())
            QThread::yieldCurrentThread();
        return false;
    };
    bool ok = true;
    bool stopped = false;
    connect(
        &item, &CQRunnableItem::finished, &item,
        [&](bool bOk, bool bStopped) {
            ok = bOk;
            stopped = bStopped;
        },
        Qt::DirectConnection);
    Thread thread([&] { item.run(); });
    thread.start();
    while (!inside)
        QThread::yieldCurrentThread();
    thread.requestInterruption();
    QVERIFY(thread.wait());
    QVERIFY(!ok);
    QVERIFY(stopped);
    QVERIFY(!item.stopRequired());
}

void tst_RunnableItem::stopWhileTheApplicationGoesDownDoesNothing()
{
    // A child process, since there is only one application to take down.
    const pid_t child = fork();
    QVERIFY(child >= 0);
    if (child == 0) {
        Journal journal;
        Item item;
        record(item, journal);
        const bool requiredBefore = item.stopRequired();
        QCoreApplication::instance()->~QCoreApplication();
        const bool closing = QCoreApplication::closingDown();
        const bool requiredAfter = item.stopRequired();
        item.stop();
        item.run();
        _exit(!requiredBefore && closing && requiredAfter && journal.lines().isEmpty() ? 0 : 1);
    }
    int status = -1;
    QCOMPARE(waitpid(child, &status, 0), child);
    QVERIFY(WIFEXITED(status));
    QCOMPARE(WEXITSTATUS(status), 0);
}

void tst_RunnableItem::exceptionLeavesTheCountRight()
{
    Item item;
    item.work = []() -> bool { throw std::runtime_error("no"); };
    QSignalSpy started(&item, SIGNAL(started()));
    QSignalSpy finished(&item, SIGNAL(finished(bool, bool)));
    QVERIFY_EXCEPTION_THROWN(item.run(), std::runtime_error);
    QCOMPARE(started.size(), 1);
    QCOMPARE(finished.size(), 0);
    QVERIFY(isIdle(item));

    item.work = [] { return true; };
    item.run();
    QCOMPARE(finished.size(), 1);
}

void tst_RunnableItem::predicatesFollowTheWork()
{
    Item item;
    bool idleInside = true;
    bool busyInside = false;
    bool busyAtStart = true;
    bool busyAtEnd = true;
    item.work = [&] {
        idleInside = isIdle(item);
        busyInside = isBusy(item);
        return true;
    };
    connect(&item, &CQRunnableItem::started, &item, [&] { busyAtStart = isBusy(item); });
    connect(&item, &CQRunnableItem::finished, &item, [&] { busyAtEnd = isBusy(item); });
    QVERIFY(isIdle(item));
    QVERIFY(!isBusy(item));
    item.run();
    QVERIFY(!idleInside);
    QVERIFY(busyInside);
    QVERIFY(!busyAtStart);
    QVERIFY(!busyAtEnd);
    QVERIFY(isIdle(item));
    QVERIFY(!isBusy(item));
}

void tst_RunnableItem::twoThreadsInsideAreCounted()
{
    Gate first;
    Gate second;
    std::atomic<int> calls{0};
    Item item(false);
    item.work = [&] {
        (++calls == 1 ? first : second).pass();
        return true;
    };
    std::thread one([&] { item.run(); });
    first.awaitInside();
    std::thread two([&] { item.run(); });
    second.awaitInside();
    first.open = true;
    one.join();
    const bool stillBusy = isBusy(item) && !isIdle(item);
    second.open = true;
    waitBlocking(Predicate(item, Predicate::Finished));
    two.join();
    QVERIFY(stillBusy);
    QVERIFY(isIdle(item));
}

void tst_RunnableItem::destructorWaitsForTheWork_data()
{
    QTest::addColumn<bool>("bThrow");

    QTest::newRow("until it returns") << false;
    QTest::newRow("until it throws") << true;
}

void tst_RunnableItem::destructorWaitsForTheWork()
{
    QFETCH(bool, bThrow);

    Gate gate;
    auto* const item = new GatedItem(gate, bThrow);
    std::thread worker([item] {
        try {
            item->run();
        } catch (const std::runtime_error&) {}
    });
    gate.awaitInside();
    std::atomic<bool> deleting{false};
    std::atomic<bool> deleted{false};
    bool leftBefore = false;
    std::thread deleter([&] {
        deleting = true;
        delete item;
        leftBefore = gate.left;
        deleted = true;
    });
    while (!deleting)
        std::this_thread::yield();
    const bool early = QTest::qWaitFor([&] { return deleted.load(); }, 100);
    gate.open = true;
    worker.join();
    deleter.join();
    QVERIFY(!early);
    QVERIFY(leftBefore);
}

void tst_RunnableItem::destructorOfThePlainItemWaitsToo()
{
    Gate gate;
    auto* const item = new PlainItem(gate);
    std::thread worker([item] { item->run(); });
    waitBlocking(Predicate(*item, Predicate::Started));
    gate.awaitInside();
    std::atomic<bool> deleted{false};
    std::thread deleter([&] {
        delete item;
        deleted = true;
    });
    const bool early = QTest::qWaitFor([&] { return deleted.load(); }, 100);
    gate.open = true;
    worker.join();
    deleter.join();
    QVERIFY(!early);
    QVERIFY(deleted);
}

void tst_RunnableItem::destructorDoesNotStop()
{
    Journal journal;
    {
        Item item;
        record(item, journal);
    }
    QCOMPARE(journal.lines(), QStringList());
}

void tst_RunnableItem::runsOnAThreadPool()
{
    QThreadPool pool;
    Item item;
    item.setAutoDelete(false);
    std::atomic<QThread*> thread{nullptr};
    item.work = [&thread] {
        thread = QThread::currentThread();
        return true;
    };
    const FinishedRuns finished(item);
    pool.start(&item);
    const QList<QVariantList> expected{{true, false}};
    QTRY_COMPARE(finished.runs, expected);
    QVERIFY(pool.waitForDone());
    QVERIFY(thread != nullptr);
    QVERIFY(thread != QThread::currentThread());
}

void tst_RunnableItem::poolDeletesTheItem()
{
    QThreadPool pool;
    auto* const item = new Item;
    const QPointer<Item> watch = item;
    std::atomic<bool> ran{false};
    item->work = [&ran] {
        ran = true;
        return true;
    };
    pool.start(item);
    QVERIFY(pool.waitForDone());
    QVERIFY(ran);
    QVERIFY(!watch);
}

void tst_RunnableItem::poolLeavesAKeptItem()
{
    QThreadPool pool;
    Item item;
    item.setAutoDelete(false);
    const FinishedRuns finished(item);
    for (int run = 1; run <= 3; ++run) {
        pool.start(&item);
        QTRY_COMPARE(finished.runs.size(), run);
        QVERIFY(pool.waitForDone());
    }
}

void tst_RunnableItem::queuedSignalsOutliveTheItem()
{
    QThreadPool pool;
    auto* const item = new Item;
    const QPointer<Item> watch = item;
    item->work = [] { return false; };
    const FinishedRuns finished(*item);
    pool.start(item);
    QVERIFY(pool.waitForDone());
    QVERIFY(!watch);
    QCOMPARE(finished.runs, QList<QVariantList>());
    const QList<QVariantList> expected{{false, false}};
    QTRY_COMPARE(finished.runs, expected);
}

void tst_RunnableItem::runsOnAThread()
{
    Journal journal;
    Item item;
    record(item, journal);
    Thread thread([&] { item.run(); });
    thread.start();
    QVERIFY(thread.wait());
    QCOMPARE(journal.lines().size(), 3);
    QCOMPARE(journal.lines().constLast(), QStringLiteral("finished, ok: yes, stopped: no"));
}

void tst_RunnableItem::runsOnAStandardThread()
{
    Journal journal;
    Item item;
    record(item, journal);
    std::thread([&] { item.run(); }).join();
    QCOMPARE(journal.lines().size(), 3);
    QCOMPARE(journal.lines().constLast(), QStringLiteral("finished, ok: yes, stopped: no"));
}

void tst_RunnableItem::isStartedByASignal()
{
    Item first;
    Item second;
    Journal journal;
    record(second, journal);
    QVERIFY(connect(&first, SIGNAL(finished()), &second, SLOT(run())));
    first.run();
    QCOMPARE(journal.lines().size(), 3);
}

void tst_RunnableItem::isStartedByASignalOfItsThread()
{
    QThread thread;
    Item item;
    std::atomic<QThread*> ranOn{nullptr};
    item.work = [&] {
        ranOn = QThread::currentThread();
        return true;
    };
    item.moveToThread(&thread);
    connect(&thread, &QThread::started, &item, &CQRunnableItem::run);
    connect(&item, SIGNAL(finished(bool, bool)), &thread, SLOT(quit()), Qt::DirectConnection);
    thread.start();
    QVERIFY(thread.wait());
    QCOMPARE(ranOn.load(), &thread);
}

void tst_RunnableItem::isStoppedByASignal()
{
    Item first;
    Item second;
    QVERIFY(connect(&first, SIGNAL(wantsToStop()), &second, SLOT(stop())));
    first.stop();
    QVERIFY(second.stopRequired());
}

void tst_RunnableItem::signalsComeOnTheThreadOfTheirCause()
{
    Gate gate;
    Item item;
    item.work = [&] {
        gate.pass();
        return true;
    };
    std::atomic<QThread*> started{nullptr};
    std::atomic<QThread*> finished{nullptr};
    std::atomic<QThread*> wantsToStop{nullptr};
    const auto keep = [](std::atomic<QThread*>& thread) {
        return [&thread] { thread = QThread::currentThread(); };
    };
    connect(&item, &CQRunnableItem::started, &item, keep(started), Qt::DirectConnection);
    connect(&item, &CQRunnableItem::finished, &item, keep(finished), Qt::DirectConnection);
    connect(&item, &CQRunnableItem::wantsToStop, &item, keep(wantsToStop), Qt::DirectConnection);
    QThread* beforeStopped = nullptr;
    QThread* stopped = nullptr;
    item.beforeStopped = [&] { beforeStopped = QThread::currentThread(); };
    item.stopped = [&] { stopped = QThread::currentThread(); };

    Thread thread([&] { item.run(); });
    thread.start();
    gate.awaitInside();
    item.stop();
    gate.open = true;
    QVERIFY(thread.wait());
    QCOMPARE(started.load(), &thread);
    QCOMPARE(finished.load(), &thread);
    QCOMPARE(wantsToStop.load(), QThread::currentThread());
    QCOMPARE(beforeStopped, QThread::currentThread());
    QCOMPARE(stopped, QThread::currentThread());
}

void tst_RunnableItem::stopDoesNotWait()
{
    Gate gate;
    Item item(false);
    item.work = [&] {
        gate.pass();
        return true;
    };
    std::thread worker([&] { item.run(); });
    gate.awaitInside();
    item.stop();
    const bool stillBusy = isBusy(item);
    gate.open = true;
    worker.join();
    QVERIFY(stillBusy);
}

void tst_RunnableItem::runStopAndStopRequiredAtOnce()
{
    for (int round = 0; round < 50; ++round) {
        Item item(false);
        std::atomic<int> hooks{0};
        item.work = [&item] {
            while (!item.stopRequired())
                std::this_thread::yield();
            return true;
        };
        item.stopped = [&hooks] { ++hooks; };
        std::vector<std::thread> threads;
        for (int i = 0; i < 2; ++i) {
            threads.emplace_back([&item] { item.run(); });
            threads.emplace_back([&item] {
                while (!item.stopRequired())
                    std::this_thread::yield();
            });
        }
        for (int i = 0; i < 2; ++i)
            threads.emplace_back([&item] { item.stop(); });
        for (std::thread& thread : threads)
            thread.join();
        QVERIFY(item.stopRequired());
        QVERIFY(hooks >= 1);
        QVERIFY(isIdle(item));
    }
}

QTEST_GUILESS_MAIN(tst_RunnableItem)
#include "tst_RunnableItem.moc"
