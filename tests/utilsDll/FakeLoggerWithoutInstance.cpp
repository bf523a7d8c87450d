#include "Logger.h"

#include <cstdio>

using namespace VEK_NAMESPACE;

extern "C" Q_DECL_EXPORT ILoggerInterface* loggerInstance()
{
    std::printf("loggerInstance\n");
    return nullptr;
}
