#pragma once

#include "Logger.h"

#include <QString>

#include <string>

namespace VEK_NAMESPACE {
namespace Private {

inline void appendPiece(std::string& line, const char* utf8)
{
    line += utf8;
}

inline void appendPiece(std::string& line, const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    line.append(utf8.constData(), size_t(utf8.size()));
}

/// Writes one line made of \a pieces, which are UTF-8 literals and QStrings. Without a logger this
/// is the test of a pointer.
template <typename... Pieces>
void logLine(char level, const Pieces&... pieces)
{
    if (!g_logger)
        return;

    std::string line;
    (appendPiece(line, pieces), ...);
    g_logger->log(level, line.c_str());
}

} // namespace Private
} // namespace VEK_NAMESPACE
