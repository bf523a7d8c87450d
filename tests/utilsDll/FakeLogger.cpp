#include "Logger.h"

#include <cstdio>
#include <cstdlib>

using namespace VEK_NAMESPACE;

namespace {

/// Prints what it is told. With FAKE_LOGGER_LEAVES_AFTER set it stops being the logger after that
/// many lines; 0 is after its setup.
class FakeLogger : public ILoggerInterface
{
public:
    void setup(const std::string& logFolder, const std::string& moduleName, char level) override
    {
        std::printf("setup [%s] [%s] %d\n", logFolder.c_str(), moduleName.c_str(),
                    int(static_cast<unsigned char>(level)));
        leaveAfter(0);
    }

    void log(char level, const char* text) override
    {
        std::printf("%c %s\n", level, text);
        leaveAfter(++m_lines);
    }

    QSharedPointer<ILoggerTrace> trace(const char*, const char*, int) override { return {}; }

private:
    static void leaveAfter(int lines)
    {
        const char* const last = std::getenv("FAKE_LOGGER_LEAVES_AFTER");
        if (last && std::strtol(last, nullptr, 10) == lines)
            g_logger = nullptr;
    }

    int m_lines = 0;
};

} // namespace

extern "C" Q_DECL_EXPORT ILoggerInterface* loggerInstance()
{
    static FakeLogger logger;
    std::printf("loggerInstance\n");
    return &logger;
}
