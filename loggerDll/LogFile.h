#pragma once

#include <spdlog/sinks/base_sink.h>

#include <QString>

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <string>

/// The log file of one module: "<module>.log", and "<module>.1.log" and "<module>.2.log" for the
/// lines before, 5 MiB each at most.
///
/// Lines are gathered and written whole, at the latest after half a second; a full disk leaves no
/// half line, and one that a crash has left behind others goes when the file is opened again. What
/// can't be written is dropped. A file belongs to one process at a time: another one that names the
/// same module writes to
/// "<module>-2.log", and so on.
///
/// It lives until the process ends, since a thread of its own writes the lines that wait. All
/// functions are called from any thread.
class LogFile : public spdlog::sinks::base_sink<std::mutex>
{
public:
    /// Leaves the files that it has, and goes on in \a folder, which it creates, with those of
    /// \a module. An empty folder is none.
    void open(const QString& folder, const QString& module);

    /// From now on no line waits.
    void writeAtOnce();

private:
    void sink_it_(const spdlog::details::log_msg& message) override;
    void flush_() override;

    bool claim(const QString& folder, const QString& name);
    void release();
    void openFile(int flags);
    void rotate();
    bool write();
    void startWriter();
    void writeRegularly();

    std::string m_newest; ///< The path of the file; empty: there is none, and lines are dropped.
    std::string m_older;
    std::string m_oldest;
    int m_lock = -1;
    int m_file = -1;
    std::size_t m_fileSize = 0;
    spdlog::memory_buf_t m_lines; ///< Those that wait.
    std::condition_variable m_lineWaits;
    bool m_atOnce = false;
    bool m_hasWriter = false;
};
