// A pixel metric that isn't a button's shift costs at most 1.05 times what it costs with a bare
// QProxyStyle over the same base style, with and without a widget: counter "ratio", of CPU time.

#include "PairedTimes.h"
#include "customvekappstyle.h"

#include <benchmark/benchmark.h>

#include <QProxyStyle>
#include <QPushButton>
#include <QStyleFactory>
#include <QStyleOption>

#include <ctime>
#include <vector>

using VEK_NAMESPACE::CustomVekAppStyle;

namespace {

constexpr int callsPerTurn = 20000;

using Metrics = std::vector<QStyle::PixelMetric>;

/// All that Qt 5.7 knows but the two shifts.
Metrics allMetrics()
{
    Metrics metrics;
    for (int i = 0; i <= int(QStyle::PM_HeaderDefaultSectionSizeVertical); ++i) {
        const auto metric = QStyle::PixelMetric(i);
        if (metric != QStyle::PM_ButtonShiftHorizontal && metric != QStyle::PM_ButtonShiftVertical)
            metrics.push_back(metric);
    }
    return metrics;
}

double cpuSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

double secondsPerCall(const QStyle& style, const Metrics& metrics, const QStyleOption* option,
                      const QWidget* widget)
{
    const int rounds = callsPerTurn / int(metrics.size());
    const double start = cpuSeconds();
    for (int i = 0; i < rounds; ++i) {
        for (const QStyle::PixelMetric metric : metrics)
            benchmark::DoNotOptimize(style.pixelMetric(metric, option, widget));
    }
    return (cpuSeconds() - start) / (rounds * double(metrics.size()));
}

void pixelMetric(benchmark::State& state, const Metrics& metrics, bool withWidget)
{
    const CustomVekAppStyle style;
    const QProxyStyle peer(QStyleFactory::create(QStringLiteral("Windows")));
    QPushButton button;
    button.setObjectName(QStringLiteral("okButton"));
    QStyleOptionButton buttonOption;
    buttonOption.initFrom(&button);
    const QStyleOption* option = withWidget ? &buttonOption : nullptr;
    const QWidget* widget = withWidget ? &button : nullptr;
    for (const QStyle::PixelMetric metric : metrics) {
        if (style.pixelMetric(metric, option, widget) != peer.pixelMetric(metric, option, widget)) {
            state.SkipWithError("another metric than the base style's");
            return;
        }
    }

    PairedTimes times;
    for (auto _ : state) {
        state.SetIterationTime(
            times.measure([&] { return secondsPerCall(style, metrics, option, widget); },
                          [&] { return secondsPerCall(peer, metrics, option, widget); }));
    }
    state.counters["library_ns"] = times.ours() * 1e9;
    state.counters["peer_ns"] = times.peer() * 1e9;
    state.counters["ratio"] = times.ratio();
}

#define METRICS(name, ...)                                                                         \
    BENCHMARK_CAPTURE(pixelMetric, name, __VA_ARGS__, false)->Iterations(500)->UseManualTime();    \
    BENCHMARK_CAPTURE(pixelMetric, name with a widget, __VA_ARGS__, true)                          \
        ->Iterations(500)                                                                          \
        ->UseManualTime()

METRICS(all metrics, allMetrics());
METRICS(button margin, Metrics{QStyle::PM_ButtonMargin});
METRICS(default frame width, Metrics{QStyle::PM_DefaultFrameWidth});
METRICS(scroll bar extent, Metrics{QStyle::PM_ScrollBarExtent});
METRICS(slider thickness, Metrics{QStyle::PM_SliderThickness});
METRICS(small icon size, Metrics{QStyle::PM_SmallIconSize});
METRICS(left margin of layouts, Metrics{QStyle::PM_LayoutLeftMargin});

#undef METRICS

} // namespace
