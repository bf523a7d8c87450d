#include "OperationCompletionWaiter.h"

#include "RecordingLogger.h"

#include <QApplication>
#include <QCursor>
#include <QKeyEvent>
#include <QMetaMethod>
#include <QMouseEvent>
#include <QRegularExpression>
#include <QSet>
#include <QThread>
#include <QTimer>
#include <QWidget>
#include <QtTest>

#include <algorithm>

using VEK_NAMESPACE::COperationCompletionWaiter;
using VEK_NAMESPACE::COperationCompletionWaiterWithResult;

namespace {

class Operation : public QObject
{
    Q_OBJECT

public:
    void end() { Q_EMIT ended(); }
    void end(bool success) { Q_EMIT endedWith(success); }

Q_SIGNALS:
    void ended();
    void endedWith(bool success);
    void endedWithText(const QString& text);
};

/// Makes its own connection, as subclasses do.
class OwnWaiter : public COperationCompletionWaiter
{
    Q_OBJECT

public:
    explicit OwnWaiter(QObject* parent = nullptr)
        : COperationCompletionWaiter(parent)
    {}

    void waitFor(Operation* operation)
    {
        connect(operation, SIGNAL(ended()), this, SLOT(onOperationCompleted()));
    }
};

/// Tells what was served while it is waited for.
class LoopWatch : public QObject
{
public:
    LoopWatch()
    {
        QTimer::singleShot(0, this, [this] { served = true; });
    }

    bool served = false;
};

bool isAssertion(const QString& line)
{
    static const QRegularExpression pattern(
        QStringLiteral("^E ASSERT in .*OperationCompletionWaiter\\.cpp \\d+$"));
    return pattern.match(line).hasMatch();
}

bool areAssertions(const QStringList& lines, int count)
{
    return lines.size() == count && std::all_of(lines.begin(), lines.end(), isAssertion);
}

void ignoreFailedConnection()
{
    QTest::ignoreMessage(QtWarningMsg, QRegularExpression(QStringLiteral("^QObject::connect: ")));
}

} // namespace

class tst_OperationCompletionWaiter : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void metaObjects();
    void waiterHasItsParent();

    void waitEndsWithTheSignal();
    void signalBeforeTheWaitIsNotLost();
    void secondWaitReturnsAtOnce();
    void signalWithParametersWillDo();
    void subclassConnectsByItself();
    void senderOnAnotherThread_data();
    void senderOnAnotherThread();
    void senderMayDieBeforeTheWait();
    void userInputStaysLive();
    void nestedWaits();

    void nullSenderOrSignalFailsAnAssertion_data();
    void nullSenderOrSignalFailsAnAssertion();
    void nullSenderOrSignalOfAWaiterWithResultFailsAnAssertion_data();
    void nullSenderOrSignalOfAWaiterWithResultFailsAnAssertion();
    void waiterWithoutAConnectionCanBeEndedByItsSlot();

    void resultIsThatOfTheSignal_data();
    void resultIsThatOfTheSignal();
    void resultBeforeTheWaitIsKept_data();
    void resultBeforeTheWaitIsKept();
    void lastResultCounts();
    void resultBeforeCompletionFailsAnAssertion();
    void resultWithoutALoggerIsFalseToo();
};

void tst_OperationCompletionWaiter::metaObjects()
{
    const QMetaObject& plain = COperationCompletionWaiter::staticMetaObject;
    QCOMPARE(plain.methodCount() - plain.methodOffset(), 1);
    const QMetaMethod plainSlot = plain.method(plain.methodOffset());
    QCOMPARE(plainSlot.methodSignature(), QByteArray("onOperationCompleted()"));
    QCOMPARE(plainSlot.methodType(), QMetaMethod::Slot);
    QCOMPARE(plainSlot.access(), QMetaMethod::Protected);

    const QMetaObject& withResult = COperationCompletionWaiterWithResult::staticMetaObject;
    QCOMPARE(withResult.superClass(), &plain);
    QCOMPARE(withResult.methodCount() - withResult.methodOffset(), 1);
    const QMetaMethod resultSlot = withResult.method(withResult.methodOffset());
    QCOMPARE(resultSlot.methodSignature(), QByteArray("onOperationCompleted(bool)"));
    QCOMPARE(resultSlot.methodType(), QMetaMethod::Slot);
    QCOMPARE(resultSlot.access(), QMetaMethod::Private);
}

void tst_OperationCompletionWaiter::waiterHasItsParent()
{
    QObject parent;
    Operation operation;
    const auto* const plain = new COperationCompletionWaiter(&operation, SIGNAL(ended()), &parent);
    const auto* const own = new OwnWaiter(&parent);
    const auto* const withResult =
        new COperationCompletionWaiterWithResult(&operation, SIGNAL(endedWith(bool)), &parent);
    QCOMPARE(plain->parent(), &parent);
    QCOMPARE(own->parent(), &parent);
    QCOMPARE(withResult->parent(), &parent);
}

void tst_OperationCompletionWaiter::waitEndsWithTheSignal()
{
    Operation operation;
    COperationCompletionWaiter waiter(&operation, SIGNAL(ended()));
    bool ended = false;
    QTimer::singleShot(20, &operation, [&] {
        ended = true;
        operation.end();
    });
    waiter.startWaiting();
    QVERIFY(ended);
}

void tst_OperationCompletionWaiter::signalBeforeTheWaitIsNotLost()
{
    Operation operation;
    COperationCompletionWaiter waiter(&operation, SIGNAL(ended()));
    operation.end();
    const LoopWatch watch;
    waiter.startWaiting();
    QVERIFY(!watch.served);
}

void tst_OperationCompletionWaiter::secondWaitReturnsAtOnce()
{
    Operation operation;
    COperationCompletionWaiter waiter(&operation, SIGNAL(ended()));
    QTimer::singleShot(0, &operation, [&] { operation.end(); });
    waiter.startWaiting();
    const LoopWatch watch;
    waiter.startWaiting();
    operation.end();
    waiter.startWaiting();
    QVERIFY(!watch.served);
}

void tst_OperationCompletionWaiter::signalWithParametersWillDo()
{
    Operation operation;
    COperationCompletionWaiter waiter(&operation, SIGNAL(endedWithText(QString)));
    QTimer::singleShot(0, &operation,
                       [&] { Q_EMIT operation.endedWithText(QStringLiteral("text")); });
    const LoopWatch watch;
    waiter.startWaiting();
    QVERIFY(watch.served);
}

void tst_OperationCompletionWaiter::subclassConnectsByItself()
{
    Operation operation;
    OwnWaiter waiter;
    waiter.waitFor(&operation);
    bool ended = false;
    QTimer::singleShot(0, &operation, [&] {
        ended = true;
        operation.end();
    });
    waiter.startWaiting();
    QVERIFY(ended);
}

void tst_OperationCompletionWaiter::senderOnAnotherThread_data()
{
    QTest::addColumn<bool>("success");

    QTest::newRow("success") << true;
    QTest::newRow("failure") << false;
}

void tst_OperationCompletionWaiter::senderOnAnotherThread()
{
    QFETCH(bool, success);

    QThread thread;
    auto* const operation = new Operation;
    operation->moveToThread(&thread);
    connect(&thread, &QThread::finished, operation, &QObject::deleteLater);
    thread.start();

    COperationCompletionWaiter waiter(operation, SIGNAL(ended()));
    COperationCompletionWaiterWithResult waiterWithResult(operation, SIGNAL(endedWith(bool)));
    QMetaObject::invokeMethod(operation, [operation, success] {
        operation->end(success);
        operation->end();
    });
    waiter.startWaiting();
    waiterWithResult.startWaiting();
    QCOMPARE(waiterWithResult.isOperationSuccess(), success);
    thread.quit();
    QVERIFY(thread.wait());
}

void tst_OperationCompletionWaiter::senderMayDieBeforeTheWait()
{
    auto* const operation = new Operation;
    COperationCompletionWaiterWithResult waiter(operation, SIGNAL(endedWith(bool)));
    operation->end(true);
    delete operation;
    waiter.startWaiting();
    QVERIFY(waiter.isOperationSuccess());
}

void tst_OperationCompletionWaiter::userInputStaysLive()
{
    struct Window : QWidget
    {
        int moves = 0;
        int keys = 0;
        void keyPressEvent(QKeyEvent*) override { ++keys; }
        void mouseMoveEvent(QMouseEvent*) override { ++moves; }
    } window;
    window.setMouseTracking(true);
    window.setGeometry(50, 50, 100, 100);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCursor::setPos(window.mapToGlobal(QPoint(5, 5)));
    QTRY_VERIFY(window.moves > 0);
    window.moves = 0;

    Operation operation;
    COperationCompletionWaiter waiter(&operation, SIGNAL(ended()));
    int movesInside = 0;
    QTimer::singleShot(0, &operation, [&] {
        QCursor::setPos(window.mapToGlobal(QPoint(50, 50)));
        QTest::keyPress(&window, Qt::Key_A);
        QTimer::singleShot(50, &operation, [&] {
            movesInside = window.moves;
            operation.end();
        });
    });
    waiter.startWaiting();
    QCOMPARE(movesInside, 1);
    QCOMPARE(window.keys, 1);
}

void tst_OperationCompletionWaiter::nestedWaits()
{
    Operation outer;
    Operation inner;
    COperationCompletionWaiter outerWaiter(&outer, SIGNAL(ended()));
    bool innerReturned = false;
    QTimer::singleShot(0, &outer, [&] {
        COperationCompletionWaiter innerWaiter(&inner, SIGNAL(ended()));
        QTimer::singleShot(0, &inner, [&] { inner.end(); });
        innerWaiter.startWaiting();
        innerReturned = true;
        outer.end();
    });
    outerWaiter.startWaiting();
    QVERIFY(innerReturned);
}

void tst_OperationCompletionWaiter::nullSenderOrSignalFailsAnAssertion_data()
{
    QTest::addColumn<bool>("hasSender");
    QTest::addColumn<QByteArray>("signal");
    QTest::addColumn<int>("assertions");

    QTest::newRow("no sender") << false << QByteArray(SIGNAL(ended())) << 1;
    QTest::newRow("no signal") << true << QByteArray() << 1;
    QTest::newRow("neither") << false << QByteArray() << 2;
}

void tst_OperationCompletionWaiter::nullSenderOrSignalFailsAnAssertion()
{
    QFETCH(bool, hasSender);
    QFETCH(QByteArray, signal);
    QFETCH(int, assertions);

    RecordingLogger logger;
    Operation operation;
    ignoreFailedConnection();
    const COperationCompletionWaiter waiter(hasSender ? &operation : nullptr,
                                            signal.isNull() ? nullptr : signal.constData());
    const QStringList lines = logger.takeLines();
    QVERIFY2(areAssertions(lines, assertions), qPrintable(lines.join(QLatin1Char('\n'))));
    // Each has a line of its own.
    QCOMPARE(QSet<QString>(lines.begin(), lines.end()).size(), assertions);
}

void tst_OperationCompletionWaiter::nullSenderOrSignalOfAWaiterWithResultFailsAnAssertion_data()
{
    nullSenderOrSignalFailsAnAssertion_data();
}

void tst_OperationCompletionWaiter::nullSenderOrSignalOfAWaiterWithResultFailsAnAssertion()
{
    QFETCH(bool, hasSender);
    QFETCH(QByteArray, signal);
    QFETCH(int, assertions);

    RecordingLogger logger;
    Operation operation;
    ignoreFailedConnection();
    const COperationCompletionWaiterWithResult waiter(
        hasSender ? &operation : nullptr, signal.isNull() ? nullptr : signal.constData());
    const QStringList lines = logger.takeLines();
    QVERIFY2(areAssertions(lines, assertions), qPrintable(lines.join(QLatin1Char('\n'))));
    QCOMPARE(QSet<QString>(lines.begin(), lines.end()).size(), assertions);
}

void tst_OperationCompletionWaiter::waiterWithoutAConnectionCanBeEndedByItsSlot()
{
    ignoreFailedConnection();
    COperationCompletionWaiter waiter(nullptr, SIGNAL(ended()));
    bool early = true;
    bool returned = false;
    QTimer::singleShot(100, &waiter, [&] {
        early = returned;
        QMetaObject::invokeMethod(&waiter, "onOperationCompleted");
    });
    waiter.startWaiting();
    returned = true;
    QVERIFY(!early);

    ignoreFailedConnection();
    COperationCompletionWaiterWithResult waiterWithResult(nullptr, SIGNAL(endedWith(bool)));
    QTimer::singleShot(0, &waiterWithResult, [&] {
        QMetaObject::invokeMethod(&waiterWithResult, "onOperationCompleted", Q_ARG(bool, true));
    });
    waiterWithResult.startWaiting();
    QVERIFY(waiterWithResult.isOperationSuccess());
}

void tst_OperationCompletionWaiter::resultIsThatOfTheSignal_data()
{
    senderOnAnotherThread_data();
}

void tst_OperationCompletionWaiter::resultIsThatOfTheSignal()
{
    QFETCH(bool, success);

    RecordingLogger logger;
    Operation operation;
    COperationCompletionWaiterWithResult waiter(&operation, SIGNAL(endedWith(bool)));
    bool ended = false;
    QTimer::singleShot(20, &operation, [&] {
        ended = true;
        operation.end(success);
    });
    waiter.startWaiting();
    QVERIFY(ended);
    QCOMPARE(waiter.isOperationSuccess(), success);
    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_OperationCompletionWaiter::resultBeforeTheWaitIsKept_data()
{
    senderOnAnotherThread_data();
}

void tst_OperationCompletionWaiter::resultBeforeTheWaitIsKept()
{
    QFETCH(bool, success);

    Operation operation;
    COperationCompletionWaiterWithResult waiter(&operation, SIGNAL(endedWith(bool)));
    operation.end(success);
    const LoopWatch watch;
    waiter.startWaiting();
    QVERIFY(!watch.served);
    QCOMPARE(waiter.isOperationSuccess(), success);
}

void tst_OperationCompletionWaiter::lastResultCounts()
{
    Operation operation;
    COperationCompletionWaiterWithResult waiter(&operation, SIGNAL(endedWith(bool)));
    operation.end(true);
    operation.end(false);
    waiter.startWaiting();
    QVERIFY(!waiter.isOperationSuccess());
    operation.end(true);
    QVERIFY(waiter.isOperationSuccess());
    operation.end(false);
    QVERIFY(!waiter.isOperationSuccess());
}

void tst_OperationCompletionWaiter::resultBeforeCompletionFailsAnAssertion()
{
    RecordingLogger logger;
    Operation operation;
    const COperationCompletionWaiterWithResult waiter(&operation, SIGNAL(endedWith(bool)));
    QVERIFY(!waiter.isOperationSuccess());
    QStringList lines = logger.takeLines();
    QVERIFY2(areAssertions(lines, 1), qPrintable(lines.join(QLatin1Char('\n'))));

    operation.end(true);
    QVERIFY(waiter.isOperationSuccess());
    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_OperationCompletionWaiter::resultWithoutALoggerIsFalseToo()
{
    Operation operation;
    const COperationCompletionWaiterWithResult waiter(&operation, SIGNAL(endedWith(bool)));
    QVERIFY(!waiter.isOperationSuccess());
}

QTEST_MAIN(tst_OperationCompletionWaiter)
#include "tst_OperationCompletionWaiter.moc"
