// A line to the product's logger costs at most 1.5 times a line to a rotating file of spdlog, which
// it is built on, also one that the library makes of pieces; without a logger a line and a failed
// assertion cost as much as the test of a pointer.

#include "Assertions.h"
#include "Benchmarks.h"
#include "Logger.h"
#include "Logger_p.h"

#include <benchmark/benchmark.h>

#include <spdlog/logger.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>

#include <QLibrary>
#include <QTemporaryDir>

#include <cstdlib>
#include <memory>

using VEK_NAMESPACE::g_logger;
using VEK_NAMESPACE::ILoggerInterface;
using VEK_NAMESPACE::Private::logLine;

namespace {

constexpr char line[] =
    "Info: settings are now stored in file: /home/user/Library/Vek Labs/krnv3/Data.plist";
constexpr char linesStart[] = "Info: settings are now stored in file: ";

QString linesPath()
{
    return QStringLiteral("/home/user/Library/Vek Labs/krnv3/Data.plist");
}

/// What is left of a line, and of a failed assertion, where there is no logger.
void testPointer()
{
    bool condition = false;
    benchmark::DoNotOptimize(condition);
    benchmark::DoNotOptimize(g_logger);
    if (!condition && g_logger)
        std::abort();
}

PairedTimes dropLine()
{
    const QString path = linesPath();
    return pairedCalls(
        [&] {
            benchmark::DoNotOptimize(g_logger);
            logLine('D', linesStart, path);
        },
        [] { testPointer(); });
}

PairedTimes failAssertion()
{
    return pairedCalls(
        [] {
            bool condition = false;
            benchmark::DoNotOptimize(condition);
            benchmark::DoNotOptimize(g_logger);
            ASSERT_X(condition, line);
        },
        [] { testPointer(); });
}

/// Product's logger and peer, each with a file in a folder of its own.
class Loggers
{
public:
    Loggers()
    {
        m_peer.set_level(spdlog::level::debug);
        m_peer.flush_on(spdlog::level::err);
        m_peer.set_formatter(std::make_unique<spdlog::pattern_formatter>(
            "%Y-%m-%dT%H:%M:%S.%eZ %L %t [%n] %v", spdlog::pattern_time_type::utc, "\n"));

        const auto instance =
            reinterpret_cast<ILoggerInterface* (*)()>(m_library.resolve("loggerInstance"));
        m_logger = instance ? instance() : nullptr;
        require(m_logger, "there is no logger library");
        m_logger->setup(m_folder.path().toStdString(), "ours", 'D');
    }

    ~Loggers() { m_logger->setup("", "", 'E'); }

    ILoggerInterface& ours() { return *m_logger; }
    spdlog::logger& peer() { return m_peer; }

private:
    Q_DISABLE_COPY(Loggers)

    const QTemporaryDir m_folder;
    spdlog::logger m_peer{
        "peer",
        std::make_shared<spdlog::sinks::rotating_file_sink_mt>(
            m_folder.filePath(QStringLiteral("peer.log")).toStdString(), 5 * 1024 * 1024, 2)};
    QLibrary m_library{QStringLiteral(LOGGER_LIBRARY)}; ///< where the build puts it
    ILoggerInterface* m_logger = nullptr;
};

PairedTimes logLines(int lines)
{
    Loggers loggers;
    return pairedCalls(
        [&] {
            for (int i = 0; i < lines; ++i)
                loggers.ours().log('D', line);
        },
        [&] {
            for (int i = 0; i < lines; ++i)
                loggers.peer().debug(line);
        });
}

/// The same line as the library writes it, made of pieces.
PairedTimes logLineOfPieces()
{
    Loggers loggers;
    const QString path = linesPath();
    g_logger = &loggers.ours();
    const PairedTimes times =
        pairedCalls([&] { logLine('D', linesStart, path); }, [&] { loggers.peer().debug(line); });
    g_logger = nullptr;
    return times;
}

} // namespace

void addLogger(Benchmarks& benchmarks)
{
    const QString pointer = QStringLiteral("test of a pointer");
    const QString spdlog = QStringLiteral("spdlog");
    benchmarks.figures.push_back(
        {QStringLiteral("logger: a line that is dropped"), pointer, atMostOver(2e-9), dropLine});
    benchmarks.figures.push_back({QStringLiteral("logger: a failed assertion without a logger"),
                                  pointer, atMostOver(2e-9), failAssertion});
    benchmarks.figures.push_back(
        {QStringLiteral("logger: a line"), spdlog, atMostTimes(1.5), [] { return logLines(1); }});
    benchmarks.figures.push_back({QStringLiteral("logger: a line made of pieces"), spdlog,
                                  atMostTimes(1.5), logLineOfPieces});
    benchmarks.growths.push_back({QStringLiteral("logger: by lines"), spdlog, logLines});
}
