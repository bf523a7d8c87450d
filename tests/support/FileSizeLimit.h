#pragma once

#include <csignal>
#include <sys/resource.h>

/// While it lives, no file of this process may grow beyond \a size: a write fails there as it does
/// on a full disk.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t size)
        : m_signal(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_previous);
        rlimit limit = m_previous;
        limit.rlim_cur = size;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_previous);
        std::signal(SIGXFSZ, m_signal);
    }

private:
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

    void (*const m_signal)(int);
    rlimit m_previous = {};
};
