#include "LogFile.h"

#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/spdlog.h>

#include <QDir>
#include <QFile>
#include <QHash>
#include <QLockFile>

#include <chrono>
#include <memory>
#include <vector>

namespace {

constexpr std::size_t largestFile = 5 * 1024 * 1024;
constexpr std::size_t olderFiles = 2;
constexpr int longestName =
    60; // with what is added to it, and as UTF-8, within the usual 255 bytes
constexpr int mostProcesses = 100;

/// A file name of \a module. It has no dot, so that no module's file is another one's older file.
QString safeName(const QString& module)
{
    QString name = module.trimmed().left(longestName);
    for (QChar& character : name) {
        if (!character.isLetterOrNumber() && !character.isSurrogate()
            && !QStringLiteral("-_ ()+").contains(character)) {
            character = QLatin1Char('_');
        }
    }
    return name.isEmpty() ? QStringLiteral("unnamed") : name;
}

/// Whether the file belongs to this process now. Its lock goes when the process ends, and counts
/// for nothing when a crash has left it.
bool claim(const QString& path)
{
    static std::vector<std::unique_ptr<QLockFile>> locks;
    auto lock = std::make_unique<QLockFile>(path + QStringLiteral(".lock"));
    lock->setStaleLockTime(0); // however long the process lives
    if (!lock->tryLock(0))
        return false;
    locks.push_back(std::move(lock));
    return true;
}

/// A process that crashed may have left half a line at the end.
void endLastLine(const QString& path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadWrite) || file.size() == 0)
        return;
    char last = '\n';
    if (file.seek(file.size() - 1) && file.getChar(&last) && last != '\n')
        file.putChar('\n');
}

/// Whoever logs has no use for an exception or for a complaint of the logger's own.
void ignoreFailure(const std::string& message)
{
    static_cast<void>(message);
}

spdlog::logger* makeLogger(const QString& path, const QString& module)
{
    // Under its path, as the modules of two folders may have one name.
    const std::string localPath = QFile::encodeName(path).toStdString();
    const auto logger = spdlog::rotating_logger_mt<spdlog::synchronous_factory>(
        localPath, localPath, largestFile, olderFiles);
    logger->set_formatter(std::make_unique<spdlog::pattern_formatter>(
        "%Y-%m-%dT%H:%M:%S.%eZ %L %t [" + module.toStdString() + "] %v",
        spdlog::pattern_time_type::utc));
    logger->flush_on(spdlog::level::err);
    logger->set_error_handler(ignoreFailure);
    spdlog::flush_every(std::chrono::seconds(1));

    // Never destroyed: what the last static object logs is written when the process ends.
    return (new std::shared_ptr<spdlog::logger>(logger))->get();
}

/// The logger of that file, made if the file is this process's; null if it is another one's.
spdlog::logger* logger(const QString& path, const QString& module)
{
    static QHash<QString, spdlog::logger*> loggers;
    if (!loggers.contains(path)) {
        if (!claim(path))
            return nullptr;
        endLastLine(path);
        loggers.insert(path, makeLogger(path, module));
    }
    return loggers.value(path);
}

} // namespace

spdlog::logger* openLogFile(const QString& folder, const QString& module,
                            spdlog::level::level_enum level)
{
    const QDir directory(QDir(folder).absolutePath());
    if (folder.isEmpty() || !directory.mkpath(QStringLiteral(".")))
        return nullptr;

    const QString name = safeName(module);
    try {
        for (int process = 1; process <= mostProcesses; ++process) {
            const QString number = process == 1 ? QString() : QStringLiteral("-%1").arg(process);
            if (auto* file = logger(directory.filePath(name + number + ".log"), name)) {
                file->set_level(level);
                return file;
            }
        }
    } catch (const std::exception&) { // no file can be written
    }
    return nullptr;
}
