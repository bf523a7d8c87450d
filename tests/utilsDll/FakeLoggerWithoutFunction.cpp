#include "Logger.h"

using namespace VEK_NAMESPACE;

// The name isn't plain.
Q_DECL_EXPORT ILoggerInterface* loggerInstance();

ILoggerInterface* loggerInstance()
{
    qFatal("only the plain name counts");
    return nullptr;
}
