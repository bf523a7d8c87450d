#include "PerformanceMeauser.h"

#include "CommonConstants.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QIODevice>
#include <QList>
#include <QLoggingCategory>
#include <QRegularExpression>
#include <QString>
#include <QStringList>
#include <QTest>

#include <atomic>
#include <chrono>
#include <cstddef>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <type_traits>
#include <utility>
#include <vector>

using VEK_NAMESPACE::CPerformanceMeauser;

static_assert(std::is_same<decltype(CPerformanceMeauser::avg::count), quint64>::value
                  && std::is_same<decltype(CPerformanceMeauser::avg::total), quint64>::value
                  && offsetof(CPerformanceMeauser::avg, count) == 0
                  && offsetof(CPerformanceMeauser::avg, total) == sizeof(quint64),
              "count and total, in this order");

namespace {

/// Keeps the processor busy until that many milliseconds have passed.
void spend(qint64 milliseconds)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < milliseconds) {}
}

struct Message
{
    QtMsgType type;
    QString category;
    QString text;
};

/// Keeps what Qt is given to print while it lives. One at a time.
class Messages
{
public:
    Messages()
    {
        s_living = this;
        m_printer = qInstallMessageHandler(handle);
    }
    ~Messages()
    {
        qInstallMessageHandler(m_printer);
        s_living = nullptr;
    }

    /// What has come since the last time.
    std::vector<Message> take()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        std::vector<Message> taken;
        taken.swap(m_messages);
        return taken;
    }

private:
    Q_DISABLE_COPY(Messages)

    static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text)
    {
        const std::lock_guard<std::mutex> lock(s_living->m_mutex);
        s_living->m_messages.push_back({type, QString::fromLatin1(context.category), text});
    }

    inline static Messages* s_living = nullptr;

    std::mutex m_mutex;
    std::vector<Message> m_messages;
    QtMessageHandler m_printer = nullptr;
};

/// What a line tells.
struct Line
{
    QString name;
    quint64 elapsed = 0;
    quint64 average = 0;
};

/// Nothing if the line isn't one of a measurement.
std::optional<Line> read(const QString& line)
{
    static const QRegularExpression format(
        QStringLiteral(
            "\\Aelapsed time \\(in milliseconds\\) of (.*) = (\\d+), avg time = (\\d+)\\z"),
        QRegularExpression::DotMatchesEverythingOption);
    const QRegularExpressionMatch match = format.match(line);
    if (!match.hasMatch())
        return std::nullopt;
    return Line{match.captured(1), match.captured(2).toULongLong(),
                match.captured(3).toULongLong()};
}

/// Measures once, for about that time, and returns what is printed.
Line measure(const QString& name, qint64 milliseconds = 0)
{
    QString printed;
    {
        const CPerformanceMeauser measurement(QDebug(&printed).noquote().nospace(), name);
        spend(milliseconds);
    }
    return read(printed).value_or(Line{QStringLiteral("no line: ") + printed, 0, 0});
}

QString text(const char* name, const Line& line)
{
    return QStringLiteral("elapsed time (in milliseconds) of %1 = %2, avg time = %3")
        .arg(QString::fromUtf8(name), QString::number(line.elapsed), QString::number(line.average));
}

} // namespace

class tst_PerformanceMeauser : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void firstAverageIsTheElapsedTime();
    void elapsedTimeIsThatOfTheObject();
    void averageIsTruncated();
    void eachNameHasItsOwnAverage();
    void namesAreToldApart_data();
    void namesAreToldApart();
    void namelessOnesShareOneAverage();
    void unknownNameHasNoAverage();
    void resetBeginsAnew();
    void resetOfAnUnknownName();
    void nestedOnesOfOneName();

    void nameStandsInTheLine_data();
    void nameStandsInTheLine();
    void mannerOfTheStream_data();
    void mannerOfTheStream();
    void lineGoesToTheGivenStream();
    void lineEndsWithTheGivenStream();
    void messageOfItsOwn();
    void messagesComeInTheOrderOfTheEnds();
    void switchedOffMessagesAreMeasured();

    void tableIsFreeWhilePrinting();
    void tableIsFreeWhileWriting();
    void manyThreadsShareOneAverage();
    void manyThreadsManyNames();

private:
    QString m_name; ///< one that no other row uses
};

void tst_PerformanceMeauser::init()
{
    static int number = 0;
    m_name = QStringLiteral("name %1").arg(++number);
    CPerformanceMeauser::resetAvgElapsedTime(QString());
}

void tst_PerformanceMeauser::firstAverageIsTheElapsedTime()
{
    const Line line = measure(m_name, 7);

    QCOMPARE(line.name, m_name);
    QVERIFY(line.elapsed >= 7);
    QCOMPARE(line.average, line.elapsed);
    QCOMPARE(CPerformanceMeauser::avgElapsedTime(m_name), line.elapsed);
}

void tst_PerformanceMeauser::elapsedTimeIsThatOfTheObject()
{
    QElapsedTimer around;
    around.start();
    QString printed;
    auto measurement =
        std::make_unique<CPerformanceMeauser>(QDebug(&printed).noquote().nospace(), m_name);
    spend(20);
    QCOMPARE(printed, QString());
    measurement.reset();
    const qint64 longest = around.elapsed();
    spend(20); // which isn't measured

    const Line line = read(printed).value_or(Line());
    QVERIFY(line.elapsed >= 20);
    QVERIFY(line.elapsed <= quint64(longest));
    QCOMPARE(CPerformanceMeauser::avgElapsedTime(m_name), line.elapsed);
}

void tst_PerformanceMeauser::averageIsTruncated()
{
    quint64 total = 0;
    bool wouldBeRoundedUp = false;
    for (quint64 count = 1; count <= 10 || !wouldBeRoundedUp; ++count) {
        QVERIFY(count < 10000);
        const Line line = measure(m_name, qint64(count % 3));
        total += line.elapsed;
        wouldBeRoundedUp |= total % count * 2 >= count && total % count > 0;
        QCOMPARE(line.average, total / count);
        QCOMPARE(CPerformanceMeauser::avgElapsedTime(m_name), total / count);
    }
}

void tst_PerformanceMeauser::eachNameHasItsOwnAverage()
{
    const Line first = measure(m_name, 12);
    const Line other = measure(m_name + QStringLiteral(" too"), 1);

    QCOMPARE(other.average, other.elapsed);
    QCOMPARE(CPerformanceMeauser::avgElapsedTime(m_name), first.elapsed);
    const Line second = measure(m_name, 0);
    QCOMPARE(second.average, (first.elapsed + second.elapsed) / 2);
    QCOMPARE(CPerformanceMeauser::avgElapsedTime(m_name + QStringLiteral(" too")), other.elapsed);
}

void tst_PerformanceMeauser::namesAreToldApart_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");

    QTest::newRow("by capitals") << "rotation"
                                 << "Rotation";
    QTest::newRow("by blanks") << "crop"
                               << "crop ";
    QTest::newRow("by accents") << "e" << QString::fromUtf8("é");
    QTest::newRow("nameless and called unknown") << ""
                                                 << "unknown";
}

void tst_PerformanceMeauser::namesAreToldApart()
{
    QFETCH(QString, first);
    QFETCH(QString, second);

    const Line line = measure(first, 3);

    QCOMPARE(CPerformanceMeauser::avgElapsedTime(first), line.average);
    QVERIFY(line.average >= 3);
    QCOMPARE(CPerformanceMeauser::avgElapsedTime(second), quint64(0));
}

void tst_PerformanceMeauser::namelessOnesShareOneAverage()
{
    const Line first = measure(QString(), 9);
    const Line second = measure(QLatin1String(""), 0);

    QCOMPARE(first.name, QStringLiteral("unknown"));
    QCOMPARE(second.name, QStringLiteral("unknown"));
    QCOMPARE(first.average, first.elapsed);
    QCOMPARE(second.average, (first.elapsed + second.elapsed) / 2);
    QCOMPARE(CPerformanceMeauser::avgElapsedTime(QString()), second.average);
    QCOMPARE(CPerformanceMeauser::avgElapsedTime(QLatin1String("")), second.average);
}

void tst_PerformanceMeauser::unknownNameHasNoAverage()
{
    QCOMPARE(CPerformanceMeauser::avgElapsedTime(m_name), quint64(0));
    QCOMPARE(CPerformanceMeauser::avgElapsedTime(m_name), quint64(0));

    const Line line = measure(m_name, 5); // and being asked for has made no entry
    QCOMPARE(line.average, line.elapsed);
}

void tst_PerformanceMeauser::resetBeginsAnew()
{
    const Line other = measure(m_name + QStringLiteral(" too"), 4);
    QVERIFY(measure(m_name, 40).average >= 40);
    QVERIFY(measure(m_name, 40).average >= 40);

    CPerformanceMeauser::resetAvgElapsedTime(m_name);
    QCOMPARE(CPerformanceMeauser::avgElapsedTime(m_name), quint64(0));

    const Line first = measure(m_name, 2);
    QCOMPARE(first.average, first.elapsed);
    const Line second = measure(m_name, 5);
    QCOMPARE(second.average, (first.elapsed + second.elapsed) / 2);
    QCOMPARE(CPerformanceMeauser::avgElapsedTime(m_name + QStringLiteral(" too")), other.average);
}

void tst_PerformanceMeauser::resetOfAnUnknownName()
{
    CPerformanceMeauser::resetAvgElapsedTime(m_name);
    QCOMPARE(CPerformanceMeauser::avgElapsedTime(m_name), quint64(0));

    const Line line = measure(m_name, 3);

    QCOMPARE(line.average, line.elapsed);
}

void tst_PerformanceMeauser::nestedOnesOfOneName()
{
    QString printed;
    QString printedInside;
    {
        const CPerformanceMeauser outer(QDebug(&printed).noquote().nospace(), m_name);
        spend(3);
        const CPerformanceMeauser inner(QDebug(&printedInside).noquote().nospace(), m_name);
        spend(4);
    }

    // The inner one ends first.
    const auto inner = read(printedInside);
    const auto outer = read(printed);
    QVERIFY(inner && outer);
    QVERIFY(inner->elapsed >= 4);
    QVERIFY(outer->elapsed >= inner->elapsed + 3);
    QCOMPARE(inner->average, inner->elapsed);
    QCOMPARE(outer->average, (inner->elapsed + outer->elapsed) / 2);
}

void tst_PerformanceMeauser::nameStandsInTheLine_data()
{
    QTest::addColumn<QString>("name");

    for (const char* name :
         {"rotation", "two words", "%",         "%%",     "100%",     "%0",         "%1",  "%2",
          "%3",       "%4",        "%2 and %3", "%1%2%3", "%L1",      "%L2",        "%01", "%99",
          "a = b, c", "unknown",   " ",         "a\nb",   "quote\"d", "back\\slash"})
        QTest::newRow(name) << name;
    QTest::newRow("beyond ASCII") << QString::fromUtf8("Größe 日本 📷");
    QTest::newRow("a long name") << QString(10000, QLatin1Char('x'));
}

void tst_PerformanceMeauser::nameStandsInTheLine()
{
    QFETCH(QString, name);
    CPerformanceMeauser::resetAvgElapsedTime(name);
    QString printed;
    {
        const CPerformanceMeauser measurement(QDebug(&printed).noquote().nospace(), name);
        spend(4);
    }

    const quint64 elapsed = CPerformanceMeauser::avgElapsedTime(name);
    QVERIFY(elapsed >= 4);
    const QString number = QString::number(elapsed);
    QCOMPARE(printed,
             QStringLiteral("elapsed time (in milliseconds) of ") + name + QStringLiteral(" = ")
                 + number + QStringLiteral(", avg time = ") + number);
}

void tst_PerformanceMeauser::mannerOfTheStream_data()
{
    QTest::addColumn<bool>("quotes");
    QTest::addColumn<bool>("spaces");
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("after");

    QTest::newRow("as a stream is") << true << true << "\""
                                    << "\" ";
    QTest::newRow("without quotes") << false << true << ""
                                    << " ";
    QTest::newRow("without spaces") << true << false << "\""
                                    << "\"";
    QTest::newRow("without both") << false << false << ""
                                  << "";
}

void tst_PerformanceMeauser::mannerOfTheStream()
{
    QFETCH(bool, quotes);
    QFETCH(bool, spaces);
    QFETCH(QString, before);
    QFETCH(QString, after);
    QString printed;
    {
        QDebug stream(&printed);
        if (!quotes)
            stream.noquote();
        stream.setAutoInsertSpaces(spaces);
        const CPerformanceMeauser measurement(stream, m_name);
    }

    const quint64 elapsed = CPerformanceMeauser::avgElapsedTime(m_name);
    QCOMPARE(printed, before + text(qPrintable(m_name), {QString(), elapsed, elapsed}) + after);
}

void tst_PerformanceMeauser::lineGoesToTheGivenStream()
{
    Messages messages;
    QString printed;
    QDebug stream(&printed);
    stream.noquote() << "before";
    {
        const CPerformanceMeauser measurement(stream, m_name);
        stream << "during";
    }
    stream << "after";

    const quint64 elapsed = CPerformanceMeauser::avgElapsedTime(m_name);
    QCOMPARE(printed,
             QStringLiteral("before during ")
                 + text(qPrintable(m_name), {QString(), elapsed, elapsed})
                 + QStringLiteral(" after "));
    QCOMPARE(messages.take().size(), std::size_t(0));
}

void tst_PerformanceMeauser::lineEndsWithTheGivenStream()
{
    Messages messages;
    {
        QDebug stream = qWarning().noquote();
        {
            const CPerformanceMeauser measurement(stream, m_name);
        }
        QCOMPARE(messages.take().size(), std::size_t(0));
        stream << "end";
    }

    const std::vector<Message> taken = messages.take();
    const quint64 elapsed = CPerformanceMeauser::avgElapsedTime(m_name);
    QCOMPARE(taken.size(), std::size_t(1));
    QCOMPARE(taken[0].type, QtWarningMsg);
    QCOMPARE(taken[0].text,
             text(qPrintable(m_name), {QString(), elapsed, elapsed}) + QStringLiteral(" end"));
}

void tst_PerformanceMeauser::messageOfItsOwn()
{
    Messages messages;
    for (const auto& [name, printedName] :
         {std::make_pair(m_name, m_name), std::make_pair(QString(), QStringLiteral("unknown"))}) {
        {
            const CPerformanceMeauser measurement(name);
            spend(2);
            QCOMPARE(messages.take().size(), std::size_t(0));
        }

        const std::vector<Message> taken = messages.take();
        QCOMPARE(taken.size(), std::size_t(1));
        QCOMPARE(taken[0].type, QtDebugMsg);
        QCOMPARE(taken[0].category, QStringLiteral("default"));
        const quint64 elapsed = CPerformanceMeauser::avgElapsedTime(name);
        QVERIFY(elapsed >= 2);
        QCOMPARE(taken[0].text,
                 QStringLiteral("\"%1\"").arg(
                     text(qPrintable(printedName), {QString(), elapsed, elapsed})));
    }
}

void tst_PerformanceMeauser::messagesComeInTheOrderOfTheEnds()
{
    Messages messages;
    {
        const CPerformanceMeauser outer(QStringLiteral("outer"));
        const CPerformanceMeauser middle(QStringLiteral("middle"));
        {
            const CPerformanceMeauser inner(QStringLiteral("inner"));
        }
        const CPerformanceMeauser last(QStringLiteral("last"));
    }

    QStringList names;
    for (const Message& message : messages.take()) {
        const QString inside = message.text.mid(1, message.text.size() - 2);
        names << read(inside).value_or(Line{inside, 0, 0}).name;
    }
    QCOMPARE(names, QStringList({"inner", "last", "middle", "outer"}));
}

void tst_PerformanceMeauser::switchedOffMessagesAreMeasured()
{
    Messages messages;
    QLoggingCategory::setFilterRules(QStringLiteral("default.debug=false"));
    {
        const CPerformanceMeauser measurement(m_name);
        spend(3);
    }
    QLoggingCategory::setFilterRules(QString());

    QCOMPARE(messages.take().size(), std::size_t(0));
    QVERIFY(CPerformanceMeauser::avgElapsedTime(m_name) >= 3);
}

namespace {

/// What another thread is told of the average of \a name; nothing if it doesn't come to it.
std::optional<quint64> averageOnAnotherThread(const QString& name)
{
    std::promise<quint64> promise;
    std::future<quint64> answer = promise.get_future();
    std::thread(
        [name](std::promise<quint64> result) {
            CPerformanceMeauser::resetAvgElapsedTime(QStringLiteral("unknown to all"));
            result.set_value(CPerformanceMeauser::avgElapsedTime(name));
        },
        std::move(promise))
        .detach();
    if (answer.wait_for(std::chrono::seconds(20)) != std::future_status::ready)
        return std::nullopt;
    return answer.get();
}

/// Asks for an average when it is written to.
class AskingDevice : public QIODevice
{
public:
    explicit AskingDevice(const QString& name)
        : m_name(name)
    {
        open(QIODevice::WriteOnly);
    }

    QList<std::optional<quint64>> answers;

protected:
    qint64 readData(char*, qint64) override { return -1; }
    qint64 writeData(const char*, qint64 size) override
    {
        answers << averageOnAnotherThread(m_name);
        return size;
    }

private:
    const QString m_name;
};

QString s_asked; // clazy:exclude=non-pod-global-static
std::optional<quint64> s_answer;

void askingHandler(QtMsgType, const QMessageLogContext&, const QString&)
{
    s_answer = averageOnAnotherThread(s_asked);
}

} // namespace

void tst_PerformanceMeauser::tableIsFreeWhilePrinting()
{
    s_asked = m_name;
    const QtMessageHandler before = qInstallMessageHandler(askingHandler);
    {
        const CPerformanceMeauser measurement(m_name);
        spend(3);
    }
    qInstallMessageHandler(before);

    const quint64 average = CPerformanceMeauser::avgElapsedTime(m_name);
    QVERIFY(average >= 3);
    QVERIFY(s_answer == average);
}

void tst_PerformanceMeauser::tableIsFreeWhileWriting()
{
    // So long that a stream doesn't keep it until its end.
    const QString name = m_name + QString(100000, QLatin1Char('x'));
    AskingDevice device(name);
    {
        const CPerformanceMeauser measurement(QDebug(&device), name);
        spend(3);
    }

    const quint64 average = CPerformanceMeauser::avgElapsedTime(name);
    QVERIFY(average >= 3);
    QVERIFY(!device.answers.isEmpty());
    QVERIFY(device.answers.first() == average);
}

void tst_PerformanceMeauser::manyThreadsShareOneAverage()
{
    constexpr int threadCount = 8;
    constexpr int each = 25;
    constexpr int all = threadCount * each;
    for (int round = 0; round < 4; ++round) {
        CPerformanceMeauser::resetAvgElapsedTime(m_name);
        std::atomic<int> ready{0};
        std::mutex mutex;
        QStringList lines;
        std::vector<std::thread> threads;
        for (int i = 0; i < threadCount; ++i) {
            threads.emplace_back([&, name = m_name] {
                std::vector<QString> printed(each);
                std::vector<std::unique_ptr<CPerformanceMeauser>> measurements;
                for (QString& line : printed) {
                    measurements.push_back(std::make_unique<CPerformanceMeauser>(
                        QDebug(&line).noquote().nospace(), name));
                }
                ++ready;
                while (ready < threadCount)
                    std::this_thread::yield();
                // So long that one measurement more or less changes the average.
                spend(all + all / 4);
                measurements.clear();
                const std::lock_guard<std::mutex> lock(mutex);
                for (const QString& line : printed)
                    lines << line;
            });
        }
        for (std::thread& thread : threads)
            thread.join();

        QCOMPARE(lines.size(), all);
        quint64 total = 0;
        bool lastIsTold = false;
        const quint64 average = CPerformanceMeauser::avgElapsedTime(m_name);
        for (const QString& printed : qAsConst(lines)) {
            const auto line = read(printed);
            QVERIFY2(line && line->name == m_name, qPrintable(printed));
            total += line->elapsed;
            lastIsTold |= line->average == average;
        }
        QVERIFY(total / all >= quint64(all));
        QCOMPARE(average, total / all);
        QVERIFY(lastIsTold);
    }
}

void tst_PerformanceMeauser::manyThreadsManyNames()
{
    constexpr int threadCount = 8;
    std::atomic<int> wrong{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&wrong, i, prefix = m_name] {
            for (int j = 0; j < 200; ++j) {
                const QString name = QStringLiteral("%1 %2 %3").arg(prefix).arg(i).arg(j);
                const Line first = measure(name);
                const Line second = measure(name);
                wrong += first.average != first.elapsed;
                wrong += second.average != (first.elapsed + second.elapsed) / 2;
                wrong += CPerformanceMeauser::avgElapsedTime(name) != second.average;
                CPerformanceMeauser::resetAvgElapsedTime(name);
                wrong += CPerformanceMeauser::avgElapsedTime(name) != 0;
                measure(prefix);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    QCOMPARE(wrong.load(), 0);
}

QTEST_APPLESS_MAIN(tst_PerformanceMeauser)

#include "tst_PerformanceMeauser.moc"
