// A pixel metric that isn't a button's shift costs at most 1.05 times what it costs with a bare
// QProxyStyle over the same base style, with and without a widget.

#include "Benchmarks.h"
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

void readMetrics(const QStyle& style, const Metrics& metrics, const QStyleOption* option,
                 const QWidget* widget)
{
    for (const QStyle::PixelMetric metric : metrics)
        benchmark::DoNotOptimize(style.pixelMetric(metric, option, widget));
}

PairedTimes pixelMetric(const Metrics& metrics, bool withWidget)
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
        require(style.pixelMetric(metric, option, widget)
                    == peer.pixelMetric(metric, option, widget),
                "a metric is another one than the base style's");
    }
    return pairedCalls([&] { readMetrics(style, metrics, option, widget); },
                       [&] { readMetrics(peer, metrics, option, widget); })
        / double(metrics.size());
}

} // namespace

void addAppStyle(Benchmarks& benchmarks)
{
    const auto add = [&](const QString& name, const Metrics& metrics) {
        const QString peer = QStringLiteral("bare QProxyStyle");
        benchmarks.figures.push_back({QStringLiteral("style: %1, no widget").arg(name), peer,
                                      atMostTimes(1.05),
                                      [=] { return pixelMetric(metrics, false); }});
        benchmarks.figures.push_back({QStringLiteral("style: %1, of a widget").arg(name), peer,
                                      atMostTimes(1.05),
                                      [=] { return pixelMetric(metrics, true); }});
    };
    add(QStringLiteral("all metrics"), allMetrics());
    add(QStringLiteral("default frame width"), {QStyle::PM_DefaultFrameWidth});
}
