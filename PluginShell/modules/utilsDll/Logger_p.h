#pragma once

#include "Logger.h"

#include <QString>
#include <QVarLengthArray>

#include <cstring>

namespace VEK_NAMESPACE {
namespace Private {

using LineBuffer = QVarLengthArray<char, 512>; ///< most lines need no more, and so no allocation

inline void appendPiece(LineBuffer& line, const char* utf8)
{
    line.append(utf8, int(std::strlen(utf8)));
}

inline void appendPiece(LineBuffer& line, const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    line.append(utf8.constData(), utf8.size());
}

/// Writes one line made of \a pieces, which are UTF-8 literals and QStrings. Without a logger this
/// is the test of a pointer.
template <typename... Pieces>
void logLine(char level, const Pieces&... pieces)
{
    if (!g_logger)
        return;

    LineBuffer line;
    (appendPiece(line, pieces), ...);
    line.append('\0');
    g_logger->log(level, line.constData());
}

} // namespace Private
} // namespace VEK_NAMESPACE
