// A line to the product's logger costs at most 1.5 times a line to a rotating file of the logging
// library that it is built on, also one that the library makes of pieces; without a logger a line
// and a failed assertion cost as much as the test of a pointer.

#include "Assertions.h"
#include "Logger.h"
#include "Logger_p.h"

#include <benchmark/benchmark.h>

#include <spdlog/logger.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>

#include <QLibrary>
#include <QTemporaryDir>

#include <memory>

using VEK_NAMESPACE::g_logger;
using VEK_NAMESPACE::ILoggerInterface;

namespace {

constexpr char text[] =
    "Info: settings are now stored in file: /home/user/Library/Vek Labs/krnv3/Data.plist";

void testPointer(benchmark::State& state)
{
    bool condition = false;
    for (auto _ : state) {
        benchmark::DoNotOptimize(condition);
        benchmark::DoNotOptimize(g_logger);
        if (!condition && g_logger)
            state.SkipWithError("there is a logger");
    }
}
BENCHMARK(testPointer);

void failAssertionWithoutLogger(benchmark::State& state)
{
    bool condition = false;
    for (auto _ : state) {
        benchmark::DoNotOptimize(condition);
        benchmark::DoNotOptimize(g_logger);
        ASSERT_X(condition, text);
    }
}
BENCHMARK(failAssertionWithoutLogger);

void dropLine(benchmark::State& state)
{
    const QString path = QStringLiteral("/home/user/Library/Vek Labs/krnv3/Data.plist");
    for (auto _ : state) {
        benchmark::DoNotOptimize(g_logger);
        VEK_NAMESPACE::Private::logLine('D', "Info: settings are now stored in file: ", path);
    }
}
BENCHMARK(dropLine);

void logToRotatingFile(benchmark::State& state)
{
    const QTemporaryDir folder;
    const auto sink = std::make_shared<spdlog::sinks::rotating_file_sink_mt>(
        folder.filePath(QStringLiteral("peer.log")).toStdString(), 5 * 1024 * 1024, 2);
    spdlog::logger logger("peer", sink);
    logger.set_level(spdlog::level::debug);
    logger.flush_on(spdlog::level::err);
    logger.set_formatter(std::make_unique<spdlog::pattern_formatter>(
        "%Y-%m-%dT%H:%M:%S.%eZ %L %t [%n] %v", spdlog::pattern_time_type::utc, "\n"));
    for (auto _ : state)
        logger.debug(text);
}
BENCHMARK(logToRotatingFile);

/// The logger library lies where the build puts it.
ILoggerInterface* productLogger()
{
    QLibrary library(QStringLiteral(LOGGER_LIBRARY));
    const auto loggerInstance =
        reinterpret_cast<ILoggerInterface* (*)()>(library.resolve("loggerInstance"));
    return loggerInstance ? loggerInstance() : nullptr;
}

void logToProductLogger(benchmark::State& state)
{
    const QTemporaryDir folder;
    ILoggerInterface* const logger = productLogger();
    if (!logger) {
        state.SkipWithError("there is no logger library");
        return;
    }
    logger->setup(folder.path().toStdString(), "peer", 'D');
    for (auto _ : state)
        logger->log('D', text);
    logger->setup("", "", 'E');
}
BENCHMARK(logToProductLogger);

/// The same line as the library writes it, made of pieces.
void logFromTheLibrary(benchmark::State& state)
{
    const QTemporaryDir folder;
    const QString path = QStringLiteral("/home/user/Library/Vek Labs/krnv3/Data.plist");
    g_logger = productLogger();
    if (!g_logger) {
        state.SkipWithError("there is no logger library");
        return;
    }
    g_logger->setup(folder.path().toStdString(), "peer", 'D');
    for (auto _ : state)
        VEK_NAMESPACE::Private::logLine('D', "Info: settings are now stored in file: ", path);
    g_logger->setup("", "", 'E');
    g_logger = nullptr;
}
BENCHMARK(logFromTheLibrary);

} // namespace
