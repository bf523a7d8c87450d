#include "DelayedCall.h"
#include "Scripting.h"
#include "Singleton.h"
#include "ThreadSafeVariable.h"

#include <QAtomicInt>
#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QThread>
#include <QtTest>

#include <cstdio>
#include <functional>
#include <thread>
#include <type_traits>
#include <vector>

namespace {

void runOnThreads(int count, const std::function<void()>& work)
{
    std::vector<std::thread> threads;
    threads.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i)
        threads.emplace_back(work);
    for (std::thread& thread : threads)
        thread.join();
}

bool onAnotherThread(const std::function<bool()>& question)
{
    bool answer = false;
    runOnThreads(1, [&] { answer = question(); });
    return answer;
}

const int callers = 8;
QAtomicInt calling;

/// Its construction goes on until every caller is about to ask for the object.
class SlowlyBuilt
{
public:
    SlowlyBuilt()
    {
        built.ref();
        QElapsedTimer timer;
        timer.start();
        while (calling.loadAcquire() < callers && timer.elapsed() < 30000)
            QThread::yieldCurrentThread();
        ready = true;
    }

    bool ready = false;
    static QAtomicInt built;
};

QAtomicInt SlowlyBuilt::built;

class Derived : public Singleton<Derived>
{
public:
    Derived() { ++built; }

    int value = 0;
    static int built;
};

int Derived::built = 0;

struct Plain
{
    int value = 5;
};

/// Tells the order of its objects' ends.
template <char Name>
struct Ending
{
    Ending() { std::printf("+%c", Name); }
    ~Ending() { std::printf("-%c", Name); }
};

int endSingletons()
{
    std::printf("start");
    Singleton<Ending<'B'>>::instance();
    Singleton<Ending<'A'>>::instance();
    Singleton<Ending<'B'>>::instance();
    std::printf("end");
    return 0;
}

} // namespace

class tst_Singleton : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void concurrentFirstCallsBuildOneObject();
    void nothingIsBuiltBeforeTheFirstUse();
    void aClassNeedNotDeriveFromIt();
    void theLibrarysOwnDeriveFromItOrAreReachedThroughIt();
    void objectsEndAtExitInReverseOrder();

    void aVariableHoldsItsValueAndThenItsLock();
    void aVariableStartsWithItsInitialValue();
    void readersShareTheLock();
    void aWriterHasTheLockToItself();
    void theLockIsRecursive();
    void concurrentWritersLoseNothing();
};

void tst_Singleton::concurrentFirstCallsBuildOneObject()
{
    QAtomicInt seenReady;
    QAtomicPointer<SlowlyBuilt> first;
    QAtomicInt seenOthers;
    runOnThreads(callers, [&] {
        calling.ref();
        SlowlyBuilt& object = Singleton<SlowlyBuilt>::instance();
        if (object.ready)
            seenReady.ref();
        if (!first.testAndSetOrdered(nullptr, &object) && first.loadAcquire() != &object)
            seenOthers.ref();
    });

    QCOMPARE(SlowlyBuilt::built.loadAcquire(), 1);
    QCOMPARE(seenReady.loadAcquire(), callers);
    QCOMPARE(seenOthers.loadAcquire(), 0);
}

void tst_Singleton::nothingIsBuiltBeforeTheFirstUse()
{
    QCOMPARE(Derived::built, 0);
    Derived& object = Derived::instance();
    QCOMPARE(Derived::built, 1);
    object.value = 7;
    QCOMPARE(&Singleton<Derived>::instance(), &object);
    QCOMPARE(Derived::instance().value, 7);
    QCOMPARE(Derived::built, 1);
}

void tst_Singleton::aClassNeedNotDeriveFromIt()
{
    static_assert(std::is_same<decltype(Singleton<Plain>::instance()), Plain&>::value,
                  "instance() returns the object by reference");
    QCOMPARE(Singleton<Plain>::instance().value, 5);
    Singleton<Plain>::instance().value = 6;
    QCOMPARE(Singleton<Plain>::instance().value, 6);
}

void tst_Singleton::theLibrarysOwnDeriveFromItOrAreReachedThroughIt()
{
    using VEK_NAMESPACE::CScripting;
    QVERIFY((std::is_base_of<Singleton<CScripting>, CScripting>::value));
    QCOMPARE(&CScripting::instance(), &Singleton<CScripting>::instance());
    QCOMPARE(&Singleton<CDelayedCall>::instance(), &Singleton<CDelayedCall>::instance());
}

void tst_Singleton::objectsEndAtExitInReverseOrder()
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--end-singletons")});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.readAllStandardOutput(), QByteArray("start+B+Aend-A-B"));
    QCOMPARE(process.exitCode(), 0);
}

void tst_Singleton::aVariableHoldsItsValueAndThenItsLock()
{
    ThreadSafeVariable<QString> variable;
    static_assert(std::is_same<decltype(variable.value), QString>::value, "the value as it is");
    static_assert(std::is_same<decltype(variable.lock), QReadWriteLock>::value, "Qt's own lock");
    QCOMPARE(static_cast<void*>(&variable.value), static_cast<void*>(&variable));
    QVERIFY(static_cast<void*>(&variable.lock) > static_cast<void*>(&variable.value));
}

void tst_Singleton::aVariableStartsWithItsInitialValue()
{
    QCOMPARE(ThreadSafeVariable<int>().value, 0);
    QCOMPARE(ThreadSafeVariable<QString>().value, QString());
    QCOMPARE(ThreadSafeVariable<QString>(QStringLiteral("text")).value, QStringLiteral("text"));
}

void tst_Singleton::readersShareTheLock()
{
    ThreadSafeVariable<int> variable;
    const QReadLocker locker(&variable.lock);
    QVERIFY(onAnotherThread([&] {
        const bool locked = variable.lock.tryLockForRead(30000);
        if (locked)
            variable.lock.unlock();
        return locked;
    }));
    QVERIFY(onAnotherThread([&] { return !variable.lock.tryLockForWrite(); }));
}

void tst_Singleton::aWriterHasTheLockToItself()
{
    ThreadSafeVariable<int> variable;
    const QWriteLocker locker(&variable.lock);
    QVERIFY(onAnotherThread([&] { return !variable.lock.tryLockForRead(); }));
    QVERIFY(onAnotherThread([&] { return !variable.lock.tryLockForWrite(); }));
}

void tst_Singleton::theLockIsRecursive()
{
    ThreadSafeVariable<int> variable;
    QVERIFY(variable.lock.tryLockForWrite());
    QVERIFY(variable.lock.tryLockForWrite());
    variable.lock.unlock();
    QVERIFY(onAnotherThread([&] { return !variable.lock.tryLockForRead(); }));
    variable.lock.unlock();

    QVERIFY(variable.lock.tryLockForRead());
    QVERIFY(variable.lock.tryLockForRead());
    variable.lock.unlock();
    variable.lock.unlock();
}

void tst_Singleton::concurrentWritersLoseNothing()
{
    // Read and written in two steps, which the lock holds together.
    ThreadSafeVariable<QAtomicInt> variable;
    runOnThreads(4, [&] {
        for (int i = 0; i < 10000; ++i) {
            const QWriteLocker locker(&variable.lock);
            variable.value.storeRelaxed(variable.value.loadRelaxed() + 1);
        }
    });
    QCOMPARE(variable.value.loadRelaxed(), 40000);
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    if (application.arguments().contains(QStringLiteral("--end-singletons")))
        return endSingletons();

    tst_Singleton test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_Singleton.moc"
