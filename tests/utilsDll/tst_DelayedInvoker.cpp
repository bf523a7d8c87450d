// The parts that no request can reach: the source itself, so that its private class is at hand.
#if defined(__GNUC__) && !defined(__clang__)
#pragma GCC diagnostic ignored "-Wsubobject-linkage" // expects that only headers are included
#endif
#include "DelayedCall.cpp" // NOLINT(bugprone-suspicious-include)

#include "RecordingLogger.h"

#include <QRegularExpression>
#include <QtTest>

namespace {

bool isAssertion(const QStringList& lines)
{
    static const QRegularExpression pattern(
        QStringLiteral("^E ASSERT in .*DelayedCall\\.cpp \\d+$"));
    return lines.size() == 1 && pattern.match(lines.first()).hasMatch();
}

class Receiver : public QObject
{
    Q_OBJECT

public:
    int calls = 0;

public Q_SLOTS:
    void record() { ++calls; }
};

} // namespace

class tst_DelayedInvoker : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void brokenCallFailsAnAssertionAtItsTick_data();
    void brokenCallFailsAnAssertionAtItsTick();
};

void tst_DelayedInvoker::brokenCallFailsAnAssertionAtItsTick_data()
{
    QTest::addColumn<bool>("hasMethod");
    QTest::addColumn<int>("arguments");

    QTest::newRow("no method") << false << 0;
    QTest::newRow("ten arguments") << true << 10;
}

void tst_DelayedInvoker::brokenCallFailsAnAssertionAtItsTick()
{
    QFETCH(bool, hasMethod);
    QFETCH(int, arguments);

    RecordingLogger logger;
    CDelayedInvoker invoker;
    Receiver receiver;
    QList<QVariant> list;
    for (int i = 0; i < arguments; ++i)
        list << i;
    invoker.invoke(0, &receiver, hasMethod ? "record" : nullptr, true, list);
    QVERIFY(invoker.isActive(&receiver, nullptr));
    QTRY_VERIFY(!invoker.isActive(&receiver, nullptr));
    QCOMPARE(receiver.calls, 0);
    const QStringList lines = logger.takeLines();
    QVERIFY2(isAssertion(lines), qPrintable(lines.join(QLatin1Char('\n'))));
}

QTEST_GUILESS_MAIN(tst_DelayedInvoker)
#include "tst_DelayedInvoker.moc"
