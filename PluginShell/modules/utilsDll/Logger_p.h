#pragma once

#include "Logger.h"

#include <QString>

#include <sstream>

namespace VEK_NAMESPACE {
namespace Private {

inline std::ostream& operator<<(std::ostream& stream, const QString& text)
{
    return stream << text.toUtf8().constData();
}

/// Writes one line made of \a pieces, which are UTF-8 literals and QStrings. Without a logger this
/// is the test of a pointer.
template <typename... Pieces>
void logLine(char level, const Pieces&... pieces)
{
    if (!g_logger)
        return;

    std::ostringstream line;
    (line << ... << pieces);
    g_logger->log(level, line.str().c_str());
}

} // namespace Private
} // namespace VEK_NAMESPACE
