// All speed figures of the library, each beside its peer in the same run. Figures on any one
// machine mean little; the ratios are what is kept.

#include "Benchmarks.h"
#include "Report.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <exception>

namespace {

Benchmarks allBenchmarks()
{
    Benchmarks benchmarks;
    addSettings(benchmarks);
    addDelayedCalls(benchmarks);
    addStorageLocation(benchmarks);
    addLogger(benchmarks);
    addPerformanceMeauser(benchmarks);
    addImageComparison(benchmarks);
    addAppStyle(benchmarks);
    addAppStyleSheet(benchmarks);
#ifdef PROGRAM_WITH_LIBRARY
    addLibraryLoad(benchmarks);
#endif
    addFiles(benchmarks);
    addArchives(benchmarks);
    return benchmarks;
}

void print(FILE* stream, const QString& text)
{
    std::fputs(text.toUtf8().constData(), stream);
    std::fflush(stream);
}

/// Calls \a measure, which may throw, and returns why it failed.
template <typename Measure>
QString errorOf(Measure measure)
{
    try {
        measure();
    } catch (const std::exception& error) {
        return QString::fromUtf8(error.what());
    }
    return {};
}

FigureResult resultOf(const Figure& figure)
{
    FigureResult result;
    result.figure = &figure;
    result.error = errorOf([&] { result.times = figure.measure(); });
    return result;
}

GrowthResult resultOf(const Growth& growth)
{
    GrowthResult result;
    result.growth = &growth;
    result.error = errorOf([&] {
        for (const int size : growthSizes)
            result.times.push_back(growth.measure(size));
    });
    return result;
}

bool isMissed(const FigureResult& result)
{
    return result.verdict() == FigureResult::Missed;
}

bool isMissed(const GrowthResult& result)
{
    return result.isWorse();
}

/// Measures those whose names match; one that misses a second time, for the machine may have had
/// a bad moment.
template <typename Result, typename Benchmark>
std::vector<Result> measure(const std::vector<Benchmark>& benchmarks,
                            const QRegularExpression& filter)
{
    std::vector<Result> results;
    for (const Benchmark& benchmark : benchmarks) {
        if (!filter.match(benchmark.name).hasMatch())
            continue;
        print(stderr, QStringLiteral("%1 / %2\n").arg(benchmark.name, benchmark.peer));
        Result result = resultOf(benchmark);
        if (isMissed(result)) {
            result = resultOf(benchmark);
            result.secondTime = true;
        }
        results.push_back(result);
    }
    return results;
}

template <typename Result>
bool isAnyMissed(const std::vector<Result>& results)
{
    return std::any_of(results.begin(), results.end(),
                       [](const Result& result) { return isMissed(result); });
}

int run(const QRegularExpression& filter, bool markdown)
{
    const Benchmarks benchmarks = allBenchmarks();
    const auto figures = measure<FigureResult>(benchmarks.figures, filter);
    const auto growths = measure<GrowthResult>(benchmarks.growths, filter);
    if (figures.empty() && growths.empty()) {
        print(stderr, QStringLiteral("no name matches the filter\n"));
        return 2;
    }

    const auto section = [markdown](const QString& title, const QString& text) {
        const QString heading = markdown ? QStringLiteral("## ") + title : title + ':';
        print(stdout, QStringLiteral("\n%1\n\n%2").arg(heading, text));
    };
    section(QStringLiteral("The machine"), machine(markdown));
    if (!figures.empty())
        section(QStringLiteral("Bars"), figureTable(figures, markdown));
    if (!growths.empty())
        section(QStringLiteral("Growth"), growthTable(growths, markdown));
    print(stdout, QStringLiteral("\n"));
    return isAnyMissed(figures) || isAnyMissed(growths) ? 1 : 0;
}

} // namespace

int main(int argc, char** argv)
{
    // Settings of a home of its own: the user's are left alone.
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_RUNTIME_DIR", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    const QApplication application(argc, argv);
    const QCommandLineOption filter(QStringLiteral("filter"),
                                    QStringLiteral("Measures only what has a name that matches."),
                                    QStringLiteral("REGEX"));
    const QCommandLineOption markdown(QStringLiteral("markdown"),
                                      QStringLiteral("Prints the tables as Markdown."));
    QCommandLineParser parser;
    parser.addHelpOption();
    parser.addOption(filter);
    parser.addOption(markdown);
    parser.process(application);

    const QRegularExpression expression(parser.value(filter));
    if (!expression.isValid()) {
        print(stderr,
              QStringLiteral("the filter is no regular expression: %1\n")
                  .arg(expression.errorString()));
        return 2;
    }
    return run(expression, parser.isSet(markdown));
}
