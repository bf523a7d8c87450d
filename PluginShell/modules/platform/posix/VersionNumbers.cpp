#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <cstdlib>

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

bool isSkipped(char character)
{
    return character == '.' || character == ' ' || (character >= '\t' && character <= '\r');
}

} // namespace

std::array<long, 3> versionNumbers(const QString& version)
{
    const QByteArray text = version.toLatin1();
    const char* position = text.constData();
    std::array<long, 3> numbers{};
    for (long& number : numbers) {
        const char* start = position;
        while (isSkipped(*start))
            ++start;
        char* end = nullptr;
        number = std::strtol(start, &end, 10);
        if (end == start)
            number = -1; // and the place stays
        else
            position = end;
    }
    return numbers;
}

} // namespace Platform
} // namespace VEK_NAMESPACE
