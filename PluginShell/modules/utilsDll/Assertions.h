#pragma once

#include "Logger.h"

#include <QString>

/// \file
/// Assertions that never stop the program: a failed one writes one line at level 'E' to g_logger,
/// if there is a logger, and the code goes on. They stay active in release builds. Any thread.
///
/// A message is anything that a QString is made of; it is evaluated only when it is written.

namespace VEK_NAMESPACE {

/// What macros of the public headers call. Hosts don't.
namespace Private {

/// Fills \a format with file, line and, in the forms that have one, the message, and logs it.
UTILSDLL_EXPORT void logFailedAssertion(const char* format, const char* file, int line);
/// \overload
UTILSDLL_EXPORT void logFailedAssertion(const char* format, const char* file, int line,
                                        const QString& message);

} // namespace Private
} // namespace VEK_NAMESPACE

/// Logs "ASSERT in FILE LINE" unless \a condition holds.
#define ASSERT(condition)                                                                          \
    do {                                                                                           \
        if (!(condition) && VEK_NAMESPACE::g_logger)                                               \
            VEK_NAMESPACE::Private::logFailedAssertion("ASSERT in %1 %2", __FILE__, __LINE__);     \
    } while (false)

/// Logs "ASSERT_X in FILE LINE: MESSAGE" unless \a condition holds.
#define ASSERT_X(condition, message)                                                               \
    do {                                                                                           \
        if (!(condition) && VEK_NAMESPACE::g_logger)                                               \
            VEK_NAMESPACE::Private::logFailedAssertion("ASSERT_X in %1 %2: %3", __FILE__,          \
                                                       __LINE__, message);                         \
    } while (false)

/// Logs "ASSERT_X_RETURN_VALUE in FILE LINE: MESSAGE" unless \a condition holds, and returns \a
/// value from the enclosing function, also without a logger.
#define ASSERT_X_RETURN_VALUE(condition, message, value)                                           \
    do {                                                                                           \
        if (!(condition)) {                                                                        \
            if (VEK_NAMESPACE::g_logger)                                                           \
                VEK_NAMESPACE::Private::logFailedAssertion("ASSERT_X_RETURN_VALUE in %1 %2: %3",   \
                                                           __FILE__, __LINE__, message);           \
            return value;                                                                          \
        }                                                                                          \
    } while (false)
