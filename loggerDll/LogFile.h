#pragma once

#include <spdlog/logger.h>

#include <QString>

/// Starts the log file of a module in a folder, which is created: "<module>.log" of 5 MiB at most,
/// and "<module>.1.log" and "<module>.2.log" with the lines before. A file belongs to one process
/// at a time: another one that names the same module writes to "<module>-2.log", and so on.
///
/// Lines of \a level and above are written, errors at once and others within a second. Null if no
/// file can be written. The result is safe from any thread and lives as long as the process.
spdlog::logger* openLogFile(const QString& folder, const QString& module,
                            spdlog::level::level_enum level);
