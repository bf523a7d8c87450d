#pragma once

#include "Logger.h"

#include <QString>

/// Writes one line of the host's own to the product's log, if there is one. Any thread.
inline void logLine(const QString& text)
{
    if (VEK_NAMESPACE::g_logger)
        VEK_NAMESPACE::g_logger->log('D', text.toUtf8().constData());
}
