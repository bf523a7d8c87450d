#pragma once

#include "Logger.h"

#include <QString>
#include <QStringList>

#include <mutex>

/// Keeps what it is told, as "<level> <text>". It is g_logger while it lives.
class RecordingLogger : public VEK_NAMESPACE::ILoggerInterface
{
public:
    RecordingLogger() { VEK_NAMESPACE::g_logger = this; }
    ~RecordingLogger() override { VEK_NAMESPACE::g_logger = nullptr; }

    void setup(const std::string&, const std::string&, char) override {}

    void log(char level, const char* text) override
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_lines << QString(QLatin1Char(level)) + QLatin1Char(' ') + QString::fromUtf8(text);
    }

    QSharedPointer<VEK_NAMESPACE::ILoggerTrace> trace(const char*, const char*, int) override
    {
        return {};
    }

    QStringList takeLines()
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        QStringList lines;
        lines.swap(m_lines);
        return lines;
    }

private:
    std::mutex m_mutex;
    QStringList m_lines;
};
