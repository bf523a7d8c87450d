#include "LogFile.h"

#include <spdlog/pattern_formatter.h>

#include <QByteArray>
#include <QDir>
#include <QFile>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <memory>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr std::size_t maxFileSize = 5U << 20;
constexpr std::size_t maxWaitingSize = 64U << 10;
constexpr std::chrono::milliseconds maxWaitingTime(500);
constexpr int maxProcesses = 100;
constexpr int maxNameLength = 60; // as UTF-8, with what is added, within the usual 255 bytes

/// A file name of \a module. It has no dot, so that no module's file is another one's older file.
QString safeName(const QString& module)
{
    QString name = module.trimmed().left(maxNameLength);
    for (QChar& character : name) {
        const bool isSafe = (character.isPrint() || character.isSurrogate())
            && !QStringLiteral("/\\:*?\"<>|.").contains(character);
        if (!isSafe)
            character = QLatin1Char('_');
    }
    return name.isEmpty() ? QStringLiteral("unnamed") : name;
}

std::unique_ptr<spdlog::formatter> lineFormatter(const QString& name)
{
    QByteArray literalName = name.toUtf8();
    literalName.replace('%', "%%");
    return std::make_unique<spdlog::pattern_formatter>("%Y-%m-%dT%H:%M:%S.%eZ %L %t ["
                                                           + literalName.toStdString() + "] %v",
                                                       spdlog::pattern_time_type::utc, "\n");
}

int openedFile(const std::string& path, int flags)
{
    return ::open(path.c_str(), flags | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0666);
}

/// The size of a file without the half line that a process left when it was killed. A file that
/// ends with anything longer than a line is left as it is, but for an end of line.
std::size_t wholeLines(int file)
{
    struct stat status = {};
    if (::fstat(file, &status) != 0)
        return 0;
    const off_t tail = std::min(status.st_size, off_t(maxFileSize));
    const off_t start = status.st_size - tail;
    QByteArray end(int(tail), '\0');
    if (::pread(file, end.data(), std::size_t(tail), start) != tail)
        return std::size_t(status.st_size);
    const int lastEnd = end.lastIndexOf('\n');
    if (lastEnd >= 0)
        return std::size_t(start + lastEnd + 1);
    const bool hasHalfLine = tail > 0 && ::write(file, "\n", 1) == 1;
    return std::size_t(status.st_size + (hasHalfLine ? 1 : 0));
}

void closeFile(int& file)
{
    if (file >= 0)
        ::close(file);
    file = -1;
}

} // namespace

void LogFile::open(const QString& folder, const QString& module)
{
    const QString name = safeName(module);
    auto formatter = lineFormatter(name);

    const std::lock_guard<std::mutex> lock(mutex_);
    flush_();
    release();
    formatter_ = std::move(formatter);
    if (folder.isEmpty() || !QDir().mkpath(folder) || !claim(folder, name))
        return;
    openFile(0);
    startWriter();
}

void LogFile::writeAtOnce()
{
    const std::lock_guard<std::mutex> lock(mutex_);
    m_atOnce = true;
    flush_();
}

void LogFile::sink_it_(const spdlog::details::log_msg& message)
{
    const bool isFirst = m_lines.size() == 0;
    formatter_->format(message, m_lines);
    if (m_atOnce || message.level >= spdlog::level::err || m_lines.size() >= maxWaitingSize)
        flush_();
    else if (isFirst)
        m_lineWaits.notify_one();
}

void LogFile::flush_()
{
    if (m_lines.size() == 0)
        return;

    if (m_file < 0)
        openFile(0);
    if (m_file >= 0 && m_fileSize + m_lines.size() > maxFileSize)
        rotate();
    if (m_file >= 0 && write())
        m_fileSize += m_lines.size();
    m_lines.clear();
}

/// Makes the first file of \a name that no other process writes this one's. The system gives a lock
/// back when its process ends, however that happens.
bool LogFile::claim(const QString& folder, const QString& name)
{
    const QDir directory(QDir(folder).absolutePath());
    for (int process = 1; process <= maxProcesses; ++process) {
        const QString ownName =
            process == 1 ? name : QStringLiteral("%1-%2").arg(name).arg(process);
        const QString lockPath = directory.filePath(QLatin1Char('.') + ownName + ".lock");
        m_lock = openedFile(QFile::encodeName(lockPath).toStdString(), O_RDONLY);
        if (m_lock < 0)
            return false;
        // A file system without locks is better written to than not.
        if (::flock(m_lock, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) {
            const std::string path = QFile::encodeName(directory.filePath(ownName)).toStdString();
            m_older = path + ".1.log";
            m_oldest = path + ".2.log";
            m_newest = path + ".log";
            return true;
        }
        closeFile(m_lock);
    }
    return false;
}

void LogFile::release()
{
    closeFile(m_file);
    closeFile(m_lock);
    m_newest.clear();
}

void LogFile::openFile(int flags)
{
    if (m_newest.empty())
        return;

    m_file = openedFile(m_newest, flags | O_RDWR | O_APPEND);
    if (m_file < 0)
        return;
    m_fileSize = wholeLines(m_file);
    if (::ftruncate(m_file, off_t(m_fileSize)) != 0)
        closeFile(m_file);
}

void LogFile::rotate()
{
    closeFile(m_file);
    // Some file systems write a whole file out when it takes another one's name.
    std::remove(m_oldest.c_str());
    std::rename(m_older.c_str(), m_oldest.c_str());
    std::rename(m_newest.c_str(), m_older.c_str());
    // A file that couldn't be renamed mustn't grow for ever.
    openFile(O_TRUNC);
}

/// Writes all lines that wait, or none of them.
bool LogFile::write()
{
    const char* rest = m_lines.begin();
    while (rest != m_lines.end()) {
        const ssize_t written = ::write(m_file, rest, std::size_t(m_lines.end() - rest));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            if (::ftruncate(m_file, off_t(m_fileSize)) != 0)
                closeFile(m_file);
            return false;
        }
        rest += written;
    }
    return true;
}

void LogFile::startWriter()
{
    if (m_hasWriter)
        return;

    try {
        std::thread([this] { writeRegularly(); }).detach();
        m_hasWriter = true;
    } catch (const std::system_error&) {
        m_atOnce = true;
    }
}

void LogFile::writeRegularly()
{
    std::unique_lock<std::mutex> lock(mutex_);
    for (;;) {
        m_lineWaits.wait(lock, [this] { return m_lines.size() > 0; });
        lock.unlock();
        std::this_thread::sleep_for(maxWaitingTime);
        lock.lock();
        flush_();
    }
}
