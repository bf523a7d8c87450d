#include "Watchdog.h"

Watchdog::Watchdog(std::chrono::milliseconds patience, std::function<void()> onExpired)
    : m_thread([this, patience, expired = std::move(onExpired)] {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (!m_condition.wait_for(lock, patience, [this] { return m_calledOff; }))
            expired();
    })
{}

Watchdog::~Watchdog()
{
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_calledOff = true;
    }
    m_condition.notify_one();
    m_thread.join();
}
