// The library that the logger's bootstrap loads: its one function, and the logger that it hands
// out.

#include "LogFile.h"
#include "LogText.h"
#include "Logger.h"

#include <QString>

#include <atomic>
#include <chrono>
#include <string>

using namespace VEK_NAMESPACE;

namespace {

/// Everything but 'E' is information.
spdlog::level::level_enum spdlogLevel(char level)
{
    return level == 'E' ? spdlog::level::err : spdlog::level::debug;
}

/// A traced scope: one line when it begins, and one with its duration when it ends.
class Trace : public ILoggerTrace
{
public:
    Trace(ILoggerInterface& logger, const char* file, const char* function, int line)
        : m_logger(logger)
        , m_place(std::string(function ? function : "?") + " (" + (file ? file : "?") + ':'
                  + std::to_string(line) + ')')
    {
        m_logger.log('D', ("Enter " + m_place).c_str());
    }

    ~Trace() override
    {
        const std::chrono::duration<double, std::milli> duration =
            std::chrono::steady_clock::now() - m_start;
        const QByteArray milliseconds = QByteArray::number(duration.count(), 'f', 3);
        m_logger.log('D',
                     ("Leave " + m_place + " after " + milliseconds.constData() + " ms").c_str());
    }

private:
    Q_DISABLE_COPY(Trace)

    ILoggerInterface& m_logger;
    const std::string m_place;
    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
};

/// Without a file, before setup() and where none can be written, all lines vanish.
class FileLogger : public ILoggerInterface
{
public:
    void setup(const std::string& logFolder, const std::string& moduleName, char level) override
    {
        // The file before is never closed: another thread may be writing to it.
        m_file = openLogFile(QString::fromStdString(logFolder), QString::fromStdString(moduleName),
                             spdlogLevel(level));
    }

    void log(char level, const char* text) override
    {
        spdlog::logger* file = m_file;
        const auto lineLevel = spdlogLevel(level);
        if (!file || !file->should_log(lineLevel))
            return;
        if (!text)
            text = "";
        const std::string_view plain = plainText(text);
        if (plain.data())
            file->log(lineLevel, spdlog::string_view_t(plain.data(), plain.size()));
        else
            file->log(lineLevel, printableText(text).toStdString());
    }

    QSharedPointer<ILoggerTrace> trace(const char* file, const char* function, int line) override
    {
        const spdlog::logger* logFile = m_file;
        if (!logFile || !logFile->should_log(spdlog::level::debug))
            return {};
        return QSharedPointer<ILoggerTrace>(new Trace(*this, file, function, line));
    }

private:
    std::atomic<spdlog::logger*> m_file{nullptr};
};

} // namespace

/// Called by the bootstrap, which finds it by this name. Every call gives the same logger.
extern "C" Q_DECL_EXPORT ILoggerInterface* loggerInstance()
{
    // Never destroyed: destructors of static objects log, too.
    static auto& logger = *new FileLogger;
    return &logger;
}
