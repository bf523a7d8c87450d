// A process that logs:
//     loggerProcess FOLDER MODULE
// follows its standard input, one command a line, and answers a line that is logged:
//     <level> <text>    log a line
//     flood             log numbered lines until somebody ends the process
//     exit              return from main()
//     exit late         the same, and log from destructors of static objects

#include "Logger.h"
#include "OrdinaryFileRights.h"

#include <QLibrary>
#include <QString>

#include <cstdlib>
#include <iostream>
#include <string>

using VEK_NAMESPACE::g_logger;

namespace {

bool lateLinesAreWanted = false;

class LateLine
{
public:
    explicit LateLine(const char* text)
        : m_text(text)
    {}
    ~LateLine()
    {
        if (lateLinesAreWanted)
            g_logger->log('D', m_text);
    }

private:
    Q_DISABLE_COPY(LateLine)

    const char* const m_text;
};

[[noreturn]] void flood()
{
    for (int number = 0;; ++number)
        g_logger->log('D', (std::to_string(number) + " \xe5\x86\x99\xe7\x9c\x9f").c_str());
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc != 3 || !takeOrdinaryFileRights())
        return EXIT_FAILURE;

    static const LateLine madeBeforeTheLogger("destroyed after the logger's end");
    QLibrary library(QStringLiteral(LOGGER_LIBRARY));
    using LoggerInstance = VEK_NAMESPACE::ILoggerInterface* (*)();
    const auto loggerInstance = library.load()
        ? reinterpret_cast<LoggerInstance>(library.resolve("loggerInstance"))
        : nullptr;
    if (!loggerInstance)
        return EXIT_FAILURE;
    g_logger = loggerInstance();
    static const LateLine madeAfterTheLogger("destroyed before the logger's end");
    g_logger->setup(argv[1], argv[2], 'D');
    std::cout << "ready" << std::endl;

    for (std::string command; std::getline(std::cin, command);) {
        lateLinesAreWanted = command == "exit late";
        if (command == "exit" || lateLinesAreWanted)
            break;
        if (command == "flood")
            flood();
        g_logger->log(command.at(0), command.c_str() + 2);
        std::cout << "logged" << std::endl;
    }
    return EXIT_SUCCESS;
}
