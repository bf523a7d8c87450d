#include "Report.h"

#include "Table.h"

#include <QFile>
#include <QLocale>
#include <QStringList>
#include <QSysInfo>
#include <QThread>

#include <cmath>
#include <iterator>

#include <unistd.h>

namespace {

/// More than so many times its peer's growth is another one, and neither caches nor noise: over the
/// last step n log n has 1.7 times the growth of n.
constexpr double growthTolerance = 1.5;

QString threeDigits(double number)
{
    const double size = std::abs(number);
    return QString::number(number, 'f', size < 9.995 ? 2 : (size < 99.95 ? 1 : 0));
}

QString timeText(double seconds)
{
    struct Unit
    {
        double seconds;
        const char* name;
    };
    constexpr Unit units[] = {{1e-9, "ns"}, {1e-6, "µs"}, {1e-3, "ms"}, {1.0, "s"}};
    size_t unit = 0;
    while (unit + 1 < std::size(units) && std::abs(seconds) >= 999.5 * units[unit].seconds)
        ++unit;
    return QStringLiteral("%1 %2").arg(threeDigits(seconds / units[unit].seconds),
                                       QString::fromUtf8(units[unit].name));
}

QString signedTimeText(double seconds)
{
    return (seconds < 0.0 ? QString() : QStringLiteral("+")) + timeText(seconds);
}

QString ratioText(double ratio)
{
    return std::abs(ratio) < 9.9995 ? QString::number(ratio, 'f', 3) : threeDigits(ratio);
}

QString growthText(double factor)
{
    return QStringLiteral("×") + threeDigits(factor);
}

QString valueText(const Bar& bar, const PairedTimes& times)
{
    return bar.kind == Bar::Difference ? signedTimeText(times.difference) : ratioText(times.ratio);
}

QString barText(const Bar& bar)
{
    switch (bar.kind) {
    case Bar::None:
        break;
    case Bar::Ratio:
        return QStringLiteral("≤ ") + ratioText(bar.limit);
    case Bar::Difference:
        return QStringLiteral("≤ ") + signedTimeText(bar.limit);
    }
    return QStringLiteral("–");
}

bool holds(const Bar& bar, const PairedTimes& times)
{
    return (bar.kind == Bar::Difference ? times.difference : times.ratio) <= bar.limit;
}

QString verdictText(const FigureResult& result)
{
    if (!result.error.isEmpty())
        return QStringLiteral("not measured: %1").arg(result.error);
    switch (result.verdict()) {
    case FigureResult::NoBar:
        return QStringLiteral("no bar");
    case FigureResult::Held:
        return QStringLiteral("held");
    case FigureResult::MissedAsKnown:
    case FigureResult::Missed:
        break;
    }
    return QStringLiteral("missed");
}

QString withSecondTime(const QString& verdict, bool secondTime)
{
    return secondTime ? verdict + QStringLiteral(", measured a second time") : verdict;
}

QString processorName()
{
    QFile file(QStringLiteral("/proc/cpuinfo"));
    if (file.open(QIODevice::ReadOnly)) {
        const QList<QByteArray> lines = file.readAll().split('\n');
        for (const QByteArray& line : lines) {
            if (line.startsWith("model name"))
                return QString::fromUtf8(line.mid(line.indexOf(':') + 1).simplified());
        }
    }
    return QSysInfo::currentCpuArchitecture();
}

/// The numbers in front: what follows is the builder's own.
QString kernelVersion()
{
    return QSysInfo::kernelVersion().section(QLatin1Char('-'), 0, 0);
}

} // namespace

FigureResult::Verdict FigureResult::verdict() const
{
    if (!error.isEmpty())
        return Missed;
    if (figure->bar.kind == Bar::None)
        return NoBar;
    if (holds(figure->bar, times))
        return Held;
    return holds({figure->bar.kind, figure->reason.limit}, times) ? MissedAsKnown : Missed;
}

double GrowthResult::ours() const
{
    return times.back().ours / times[times.size() - 2].ours;
}

double GrowthResult::peers() const
{
    return times.back().peer / times[times.size() - 2].peer;
}

bool GrowthResult::isWorse() const
{
    return !error.isEmpty() || ours() > growthTolerance * peers();
}

QString machine(bool markdown)
{
    const double gibibytes =
        double(sysconf(_SC_PHYS_PAGES)) * double(sysconf(_SC_PAGESIZE)) / (1 << 30);
    const QStringList facts = {
        QStringLiteral("%1, %2 cores, %3 GiB of memory")
            .arg(processorName())
            .arg(QThread::idealThreadCount())
            .arg(std::lround(gibibytes)),
        QStringLiteral("%1, kernel %2").arg(QSysInfo::prettyProductName(), kernelVersion()),
        QStringLiteral("%1, build type %2, Qt %3")
            .arg(QStringLiteral(COMPILER), QStringLiteral(BUILD_TYPE),
                 QString::fromLatin1(qVersion())),
        QStringLiteral("peers: %1").arg(QStringLiteral(PEERS))};
    QString text;
    for (const QString& fact : facts)
        text += (markdown ? QStringLiteral("- ") : QString()) + fact + QLatin1Char('\n');
    return text;
}

QString figureTable(const std::vector<FigureResult>& results, bool markdown)
{
    Table table({QStringLiteral("What"), QStringLiteral("Peer"), QStringLiteral("Ours"),
                 QStringLiteral("Peer's"), QStringLiteral("Ratio or difference"),
                 QStringLiteral("Bar"), QStringLiteral("Verdict")},
                2, 6);
    QStringList reasons;
    for (const FigureResult& result : results) {
        const Figure& figure = *result.figure;
        const FigureResult::Verdict verdict = result.verdict();
        QString words = verdictText(result);
        const QString& reason = figure.reason.text;
        if (!reason.isEmpty()
            && (verdict == FigureResult::NoBar || verdict == FigureResult::MissedAsKnown)) {
            if (!reasons.contains(reason))
                reasons << reason;
            words += QStringLiteral(", reason %1").arg(reasons.indexOf(reason) + 1);
        }
        const bool measured = result.error.isEmpty();
        table.add({figure.name, figure.peer, measured ? timeText(result.times.ours) : QString(),
                   measured ? timeText(result.times.peer) : QString(),
                   measured ? valueText(figure.bar, result.times) : QString(), barText(figure.bar),
                   withSecondTime(words, result.secondTime)});
    }

    QString text = table.text(markdown);
    for (int i = 0; i < reasons.size(); ++i)
        text += QStringLiteral("\nReason %1: %2\n").arg(i + 1).arg(reasons.at(i));
    return text;
}

QString growthTable(const std::vector<GrowthResult>& results, bool markdown)
{
    const QLocale english(QLocale::English);
    QStringList header{QStringLiteral("What"), QStringLiteral("Peer")};
    for (const int size : growthSizes)
        header << english.toString(size);
    header << QStringLiteral("Growth") << QStringLiteral("Verdict");
    Table table(header, 2, header.size() - 1);
    for (const GrowthResult& result : results) {
        QStringList row{result.growth->name, result.growth->peer};
        if (!result.error.isEmpty()) {
            while (row.size() < header.size() - 1)
                row << QString();
            table.add(row << QStringLiteral("not measured: %1").arg(result.error));
            continue;
        }
        for (const PairedTimes& times : result.times)
            row << timeText(times.ours) + QStringLiteral(" / ") + timeText(times.peer);
        row << growthText(result.ours()) + QStringLiteral(" / ") + growthText(result.peers());
        QString verdict = QStringLiteral("as the peer's");
        if (result.ours() < growthTolerance)
            verdict = QStringLiteral("none");
        else if (result.isWorse())
            verdict = QStringLiteral("more than the peer's");
        else if (result.peers() > growthTolerance * result.ours())
            verdict = QStringLiteral("less than the peer's");
        table.add(row << withSecondTime(verdict, result.secondTime));
    }
    return table.text(markdown);
}
