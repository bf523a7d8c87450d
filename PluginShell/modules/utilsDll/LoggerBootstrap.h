#pragma once

#include "Logger.h"
#include "UtilsDllGlobal.h"

#include <QString>

namespace VEK_NAMESPACE {

/// \name Start of the logger
/// A host calls initLoggerForUtilsDll() once, on the main thread, before any other thread logs.
/// @{

/// Sets g_logger, unless it is set or the setting "loggerEnabled" is off, and returns it.
///
/// A \a logger of the host's is taken as it is; the host has set it up, keeps it, and lets it live
/// as long as anything logs. With null the logger library of the product's bundle,
/// Contents/Frameworks/LoggerDllkrnv3, is loaded, set up with the log folder, \a moduleName and the
/// level of the settings, and gets the first four lines; it stays in the process. Without that
/// library the result is null, which is no error: all lines vanish then.
UTILSDLL_EXPORT ILoggerInterface* initLogger(ILoggerInterface* logger, const QString& moduleName);

/// The same; hosts call this one.
UTILSDLL_EXPORT ILoggerInterface* initLoggerForUtilsDll(ILoggerInterface* logger,
                                                        const QString& moduleName);

/// Starts a traced scope. The result is null without a logger, and otherwise valid only as long as
/// the logger itself keeps what its trace() returned. The product's logger keeps nothing: there the
/// scope ends at once, and whoever wants one keeps what g_logger->trace() returns. Any thread.
UTILSDLL_EXPORT ILoggerTrace* logTrace(const char* file, const char* function, int line);

/// @}

/// \name Settings of the logger
/// They are read from the persistent settings, but written to a live overlay: under one a setter
/// doesn't change what the getter gives. That is meant. Any thread.
/// @{

/// Whether the logger may start: true unless the stored text is "0".
UTILSDLL_EXPORT bool isLoggerEnabled();

/// Stores "1" or "0". A logger that runs goes on: the setting counts at the next start.
UTILSDLL_EXPORT void setLoggerEnabled(bool enable);

/// The least level that the logger writes: "D" unless something else was stored. Only the first
/// character counts.
UTILSDLL_EXPORT QString getLogLevel();

/// Stores the text as it is, for the next start of the logger.
UTILSDLL_EXPORT void setLogLevel(const QString& level);

/// @}

} // namespace VEK_NAMESPACE
