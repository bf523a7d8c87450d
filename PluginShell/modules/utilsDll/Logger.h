#pragma once

#include "UtilsDllGlobal.h"

#include <QSharedPointer>

#include <string>

namespace VEK_NAMESPACE {

/// What ILoggerInterface::trace() hands out: its destruction ends the traced scope.
class UTILSDLL_EXPORT ILoggerTrace
{
public:
    /// Ends the scope.
    virtual ~ILoggerTrace();
};

/// The product's logger, implemented by the host or by the logger library.
///
/// Hosts and the logger library are built apart from this library: the order of the virtual
/// operations is part of the interface. log() is called from any thread, also at the same time.
class UTILSDLL_EXPORT ILoggerInterface
{
public:
    /// Never called by the library.
    virtual ~ILoggerInterface();

    /// Prepares a logger that the library loaded itself: its folder, the module that writes, and
    /// the least level to write. Strings are UTF-8.
    virtual void setup(const std::string& logFolder, const std::string& moduleName, char level) = 0;

    /// Writes one line of UTF-8 \a text, which has no line ending. \a level is 'D' for information
    /// or 'E' for a failed assertion.
    virtual void log(char level, const char* text) = 0;

    /// Starts a traced scope. The library passes the arguments on unread.
    virtual QSharedPointer<ILoggerTrace> trace(const char* file, const char* function,
                                               int line) = 0;
};

/// The one logger of the process, null until there is one; without it all diagnostics vanish.
/// Set it once, before other threads log. The library never deletes it.
extern UTILSDLL_EXPORT ILoggerInterface* g_logger;

} // namespace VEK_NAMESPACE
