#include "Assertions.h"
#include "RecordingLogger.h"

#include <QCoreApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QtTest>

#include <thread>
#include <vector>

namespace {

/// What one use of a macro did, beside what it logged.
struct Outcome
{
    int line = 0;
    bool wentOn = false;
    QString returned;
};

QString withReturnValue(bool condition, Outcome& outcome)
{
    outcome.line = __LINE__ + 1;
    ASSERT_X_RETURN_VALUE(condition, "the message", QStringLiteral("the stated value"));
    outcome.wentOn = true;
    return QStringLiteral("the usual value");
}

Outcome plain(bool condition)
{
    Outcome outcome;
    outcome.line = __LINE__ + 1;
    ASSERT(condition);
    outcome.wentOn = true;
    return outcome;
}

Outcome withMessage(bool condition)
{
    Outcome outcome;
    outcome.line = __LINE__ + 1;
    ASSERT_X(condition, "the message");
    outcome.wentOn = true;
    return outcome;
}

Outcome withMessageAndValue(bool condition)
{
    Outcome outcome;
    outcome.returned = withReturnValue(condition, outcome);
    return outcome;
}

using Use = Outcome (*)(bool);

int failEverythingWithoutLogger()
{
    plain(false);
    withMessage(false);
    const Outcome outcome = withMessageAndValue(false);
    return outcome.returned == QLatin1String("the stated value") && !outcome.wentOn ? 0 : 1;
}

} // namespace

Q_DECLARE_METATYPE(Use)

class tst_Assertions : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aFailureIsOneLineAndTheCodeGoesOn_data();
    void aFailureIsOneLineAndTheCodeGoesOn();
    void aConditionThatHoldsLogsNothing_data() { aFailureIsOneLineAndTheCodeGoesOn_data(); }
    void aConditionThatHoldsLogsNothing();
    void withoutALoggerTheCodeGoesOnAlike_data() { aFailureIsOneLineAndTheCodeGoesOn_data(); }
    void withoutALoggerTheCodeGoesOnAlike();
    void withoutALoggerNothingIsPrinted();

    void theConditionIsTestedOnce();
    void aMessageIsMadeOnlyToBeWritten();
    void aValueIsMadeOnlyToBeReturned();
    void messagesAreWrittenAsTheyStand_data();
    void messagesAreWrittenAsTheyStand();
    void theyAreSingleStatements();
    void failuresOnSeveralThreadsAreAllLogged();
};

void tst_Assertions::aFailureIsOneLineAndTheCodeGoesOn_data()
{
    QTest::addColumn<Use>("use");
    QTest::addColumn<QString>("format");
    QTest::addColumn<bool>("wentOn");
    QTest::addColumn<QString>("returned");

    QTest::newRow("ASSERT") << Use(plain) << QStringLiteral("E ASSERT in %1 %2") << true
                            << QString();
    QTest::newRow("ASSERT_X") << Use(withMessage)
                              << QStringLiteral("E ASSERT_X in %1 %2: the message") << true
                              << QString();
    QTest::newRow("ASSERT_X_RETURN_VALUE")
        << Use(withMessageAndValue)
        << QStringLiteral("E ASSERT_X_RETURN_VALUE in %1 %2: the message") << false
        << QStringLiteral("the stated value");
}

void tst_Assertions::aFailureIsOneLineAndTheCodeGoesOn()
{
    QFETCH(Use, use);
    QFETCH(QString, format);
    QFETCH(bool, wentOn);
    QFETCH(QString, returned);

    RecordingLogger logger;
    const Outcome outcome = use(false);
    QCOMPARE(logger.takeLines(),
             QStringList(format.arg(QStringLiteral(__FILE__)).arg(outcome.line)));
    QCOMPARE(outcome.wentOn, wentOn);
    QCOMPARE(outcome.returned, returned);
}

void tst_Assertions::aConditionThatHoldsLogsNothing()
{
    QFETCH(Use, use);
    QFETCH(QString, returned);

    RecordingLogger logger;
    const Outcome outcome = use(true);
    QCOMPARE(logger.takeLines(), QStringList());
    QVERIFY(outcome.wentOn);
    QCOMPARE(outcome.returned, returned.isEmpty() ? QString() : QStringLiteral("the usual value"));
}

void tst_Assertions::withoutALoggerTheCodeGoesOnAlike()
{
    QFETCH(Use, use);
    QFETCH(bool, wentOn);
    QFETCH(QString, returned);

    const Outcome outcome = use(false);
    QCOMPARE(outcome.wentOn, wentOn);
    QCOMPARE(outcome.returned, returned);
}

void tst_Assertions::withoutALoggerNothingIsPrinted()
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--fail-everything")});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.readAll(), QByteArray());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
}

void tst_Assertions::theConditionIsTestedOnce()
{
    RecordingLogger logger;
    int tests = 0;
    ASSERT(++tests == 0);
    QCOMPARE(tests, 1);
    ASSERT_X(++tests == 0, "the message");
    QCOMPARE(tests, 2);
    [&tests] {
        ASSERT_X_RETURN_VALUE(++tests == 0, "the message", 0);
        return 1;
    }();
    QCOMPARE(tests, 3);
    QCOMPARE(logger.takeLines().size(), 3);
}

void tst_Assertions::aMessageIsMadeOnlyToBeWritten()
{
    int made = 0;
    const auto message = [&made] {
        ++made;
        return QStringLiteral("the message");
    };

    const auto returnValue = [&message](bool condition) {
        ASSERT_X_RETURN_VALUE(condition, message(), 1);
        return 0;
    };

    ASSERT_X(false, message());
    QCOMPARE(returnValue(false), 1);
    QCOMPARE(made, 0);

    RecordingLogger logger;
    ASSERT_X(true, message());
    QCOMPARE(returnValue(true), 0);
    QCOMPARE(made, 0);
    ASSERT_X(false, message());
    QCOMPARE(made, 1);
    QCOMPARE(returnValue(false), 1);
    QCOMPARE(made, 2);
}

void tst_Assertions::aValueIsMadeOnlyToBeReturned()
{
    int made = 0;
    const auto result = [&made](bool condition) {
        ASSERT_X_RETURN_VALUE(condition, "the message", ++made);
        return 0;
    };

    QCOMPARE(result(true), 0);
    QCOMPARE(made, 0);
    QCOMPARE(result(false), 1);
    QCOMPARE(made, 1);
}

void tst_Assertions::messagesAreWrittenAsTheyStand_data()
{
    QTest::addColumn<QString>("message");

    QTest::newRow("empty") << QString();
    QTest::newRow("beyond ASCII") << QString::fromUtf8("größer als 5 € 写真");
    QTest::newRow("place markers") << QStringLiteral("%1 of %2 and %3");
    QTest::newRow("printf conversions") << QStringLiteral("100 %s %n %d");
    QTest::newRow("white space") << QStringLiteral(" two  words ");
}

void tst_Assertions::messagesAreWrittenAsTheyStand()
{
    QFETCH(QString, message);

    RecordingLogger logger;
    ASSERT_X(false, message);
    const QStringList lines = logger.takeLines();
    QCOMPARE(lines.size(), 1);
    QVERIFY2(lines.first().endsWith(QStringLiteral(": ") + message), qPrintable(lines.first()));
}

void tst_Assertions::theyAreSingleStatements()
{
    RecordingLogger logger;
    bool otherwise = false;
    if (logger.takeLines().isEmpty())
        ASSERT(true);
    else
        otherwise = true;
    QVERIFY(!otherwise);
    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_Assertions::failuresOnSeveralThreadsAreAllLogged()
{
    RecordingLogger logger;
    const int threadCount = 4;
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([] {
            for (int j = 0; j < 100; ++j)
                ASSERT_X(false, "from a thread");
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    const QStringList lines = logger.takeLines();
    QCOMPARE(lines.size(), 400);
    QCOMPARE(lines.filter(QRegularExpression(QStringLiteral("^E ASSERT_X in .*: from a thread$")))
                 .size(),
             400);
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    if (application.arguments().contains(QStringLiteral("--fail-everything")))
        return failEverythingWithoutLogger();

    tst_Assertions test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_Assertions.moc"
