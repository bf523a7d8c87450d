// The library that the bootstrap loads: its one function, and the logger that it hands out.

#include "LogFile.h"

#include "Logger.h"

#include <spdlog/fmt/fmt.h>

#include <QByteArray>
#include <QString>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <string>

using namespace VEK_NAMESPACE;

namespace {

/// What is longer is cut. An escape makes at most six bytes of one, so every line fits into a file.
constexpr std::size_t maxTextLength = 512U << 10;

/// A logger never disturbs the program: what fails is dropped.
template <typename Function>
void quietly(Function function) noexcept
{
    try {
        function();
    } catch (...) { // NOLINT(bugprone-empty-catch)
    }
}

bool endsLine(QChar character)
{
    const QChar::Category category = character.category();
    return category == QChar::Other_Control || category == QChar::Separator_Line
        || category == QChar::Separator_Paragraph;
}

/// The text on one line of valid UTF-8: control characters as escapes, invalid bytes as U+FFFD.
QByteArray printable(const char* text, std::size_t length)
{
    QString result;
    const QString decoded = QString::fromUtf8(text, int(qMin(length, maxTextLength)));
    for (const QChar character : decoded) {
        if (character == QLatin1Char('\n'))
            result += QLatin1String("\\n");
        else if (character == QLatin1Char('\r'))
            result += QLatin1String("\\r");
        else if (character == QLatin1Char('\t'))
            result += QLatin1String("\\t");
        else if (endsLine(character))
            result += QStringLiteral("\\u%1").arg(character.unicode(), 4, 16, QLatin1Char('0'));
        else
            result += character;
    }
    if (length > maxTextLength)
        result += QChar(0x2026);
    return result.toUtf8();
}

class FileLogger : public ILoggerInterface
{
public:
    FileLogger() { m_file.set_level(spdlog::level::off); }

    void setup(const std::string& logFolder, const std::string& moduleName,
               char level) noexcept override
    {
        quietly([&] {
            m_file.open(QString::fromStdString(logFolder), QString::fromStdString(moduleName));
            m_file.set_level(level == 'E' ? spdlog::level::err : spdlog::level::debug);
        });
    }

    void log(char level, const char* text) noexcept override
    {
        const auto lineLevel = level == 'E' ? spdlog::level::err : spdlog::level::debug;
        if (m_file.should_log(lineLevel))
            quietly([&] { write(lineLevel, text ? text : ""); });
    }

    QSharedPointer<ILoggerTrace> trace(const char* file, const char* function,
                                       int line) noexcept override;

    void writeAtOnce() noexcept
    {
        quietly([this] { m_file.writeAtOnce(); });
    }

private:
    void write(spdlog::level::level_enum level, const char* text)
    {
        const char* end = text;
        while (*end >= 0x20 && *end < 0x7f)
            ++end;
        std::size_t length = std::size_t(end - text);
        if (*end == '\0' && length <= maxTextLength) {
            m_file.log({{}, level, {text, length}});
            return;
        }
        length += std::strlen(end);
        const QByteArray line = printable(text, length);
        m_file.log({{}, level, {line.constData(), std::size_t(line.size())}});
    }

    LogFile m_file;
};

/// A traced scope: one line when it begins, and one with its duration when it ends.
class Trace : public ILoggerTrace
{
public:
    Trace(FileLogger& logger, const char* file, const char* function, int line)
        : m_logger(logger)
        , m_place(fmt::format("{} ({}:{})", function ? function : "?", file ? file : "?", line))
    {
        m_logger.log('D', ("Enter " + m_place).c_str());
    }

    ~Trace() override
    {
        quietly([this] {
            const std::chrono::duration<double, std::milli> duration =
                std::chrono::steady_clock::now() - m_start;
            m_logger.log(
                'D', fmt::format("Leave {} after {:.3f} ms", m_place, duration.count()).c_str());
        });
    }

private:
    Q_DISABLE_COPY(Trace)

    FileLogger& m_logger;
    const std::string m_place;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

QSharedPointer<ILoggerTrace> FileLogger::trace(const char* file, const char* function,
                                               int line) noexcept
{
    QSharedPointer<ILoggerTrace> result;
    if (m_file.should_log(spdlog::level::debug))
        quietly([&] { result = QSharedPointer<Trace>::create(*this, file, function, line); });
    return result;
}

/// The one logger of the process. It is never destroyed: destructors of static objects log, too.
FileLogger& theLogger()
{
    static auto& logger = *new FileLogger;
    return logger;
}

void loseNothingFromNowOn()
{
    theLogger().writeAtOnce();
}

} // namespace

/// Called by the bootstrap, which finds it by this name. Null if there is no memory for a logger.
extern "C" Q_DECL_EXPORT ILoggerInterface* loggerInstance() noexcept
{
    ILoggerInterface* result = nullptr;
    quietly([&] {
        result = &theLogger();
        static const bool willWriteAtExit = std::atexit(loseNothingFromNowOn) == 0;
        if (!willWriteAtExit)
            loseNothingFromNowOn();
    });
    return result;
}
