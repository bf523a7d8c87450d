// A scope timer costs at most 2 microseconds over the same line, written by hand to the same kind
// of stream: counter "over_ns", of CPU time.

#include "CommonConstants.h"
#include "PairedRounds.h"
#include "PerformanceMeauser.h"

#include <benchmark/benchmark.h>

#include <QDebug>

using VEK_NAMESPACE::CPerformanceMeauser;

namespace {

constexpr int linesPerTurn = 2000;

template <typename WriteLine>
double secondsPerLine(WriteLine writeLine)
{
    return timesOf([&] {
               for (int i = 0; i < linesPerTurn; ++i)
                   writeLine();
               return true;
           }).cpu
        / linesPerTurn;
}

template <typename Timer, typename ByHand>
void measure(benchmark::State& state, Timer timer, ByHand byHand)
{
    PairedTimes times;
    for (auto _ : state) {
        state.SetIterationTime(times.measure([&] { return secondsPerLine(timer); },
                                             [&] { return secondsPerLine(byHand); }));
    }
    state.counters["library_ns"] = times.ours() * 1e9;
    state.counters["peer_ns"] = times.peer() * 1e9;
    state.counters["over_ns"] = times.difference() * 1e9;
}

QString name()
{
    return QStringLiteral("loading of the picture");
}

QString line()
{
    return QStringLiteral("elapsed time (in milliseconds) of loading of the picture = 0, "
                          "avg time = 0");
}

void timeToText(benchmark::State& state)
{
    QString text;
    QString byHandText;
    const QString scope = name();
    const QString written = line();
    measure(
        state,
        [&] {
            text.resize(0);
            const CPerformanceMeauser timer(QDebug(&text), scope);
        },
        [&] {
            byHandText.resize(0);
            QDebug(&byHandText) << written;
        });
    if (text != byHandText)
        state.SkipWithError("another line than the one by hand");
}
BENCHMARK(timeToText)->Iterations(200)->UseManualTime();

QString lastMessage;

void timeToMessages(benchmark::State& state)
{
    const QtMessageHandler usual =
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString& message) {
            lastMessage = message;
        });
    const QString scope = name();
    const QString written = line();
    measure(
        state, [&] { const CPerformanceMeauser timer(scope); }, [&] { qDebug() << written; });
    {
        const CPerformanceMeauser timer(scope);
    }
    const QString message = lastMessage;
    qDebug() << written;
    qInstallMessageHandler(usual);
    if (message != lastMessage)
        state.SkipWithError("another line than the one by hand");
}
BENCHMARK(timeToMessages)->Iterations(200)->UseManualTime();

} // namespace
