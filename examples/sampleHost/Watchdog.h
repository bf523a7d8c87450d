#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

/// Calls a function on a thread of its own unless it is destroyed in time. Serves where the GUI
/// thread may never come back to its event loop.
class Watchdog
{
public:
    Watchdog(std::chrono::milliseconds patience, std::function<void()> onExpired);
    ~Watchdog();

    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

private:
    std::mutex m_mutex;
    std::condition_variable m_condition;
    bool m_calledOff = false;
    std::thread m_thread;
};
