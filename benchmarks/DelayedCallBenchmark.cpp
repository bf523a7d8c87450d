// A request for a delayed call costs at most twice a bare startTimer() and killTimer() pair.

#include "DelayedCall.h"

#include <benchmark/benchmark.h>

#include <QObject>

namespace {

constexpr int delay = 100000;

void startAndKillTimer(benchmark::State& state)
{
    QObject object;
    int timer = object.startTimer(delay);
    for (auto _ : state) {
        object.killTimer(timer);
        timer = object.startTimer(delay);
    }
}
BENCHMARK(startAndKillTimer);

/// Each request replaces the one before, as in a burst of requests.
void replaceDelayedCall(benchmark::State& state)
{
    QObject object;
    for (auto _ : state)
        CDelayedCall::invoke(delay, &object, "deleteLater", true);
    CDelayedCall::discard(&object, nullptr);
}
BENCHMARK(replaceDelayedCall);

void requestAndDiscardDelayedCall(benchmark::State& state)
{
    QObject object;
    for (auto _ : state) {
        CDelayedCall::invoke(delay, &object, "deleteLater", true);
        CDelayedCall::discard(&object, "deleteLater");
    }
}
BENCHMARK(requestAndDiscardDelayedCall);

} // namespace
