#include "Assertions.h"

#include "CommonConstants.h"
#include "Logger_p.h"

namespace VEK_NAMESPACE {
namespace Private {
namespace {

QString located(const char* format, const char* file, int line)
{
    return QString::fromUtf8(format).arg(QString::fromUtf8(file)).arg(line);
}

} // namespace

void logFailedAssertion(const char* format, const char* file, int line)
{
    logLine('E', located(format, file, line));
}

void logFailedAssertion(const char* format, const char* file, int line, const QString& message)
{
    logLine('E', located(format, file, line).arg(message));
}

} // namespace Private
} // namespace VEK_NAMESPACE
