#pragma once

#include "Logger.h"

#include <QMutex>
#include <QString>
#include <QStringList>

/// Keeps what it is told, as "<level> <text>". It is g_logger while it lives.
class RecordingLogger : public VEK_NAMESPACE::ILoggerInterface
{
public:
    RecordingLogger() { VEK_NAMESPACE::g_logger = this; }
    ~RecordingLogger() override { VEK_NAMESPACE::g_logger = nullptr; }

    void setup(const std::string&, const std::string&, char) override {}

    void log(char level, const char* text) override
    {
        const QMutexLocker locker(&m_mutex);
        m_lines << QString(QLatin1Char(level)) + QLatin1Char(' ') + QString::fromUtf8(text);
    }

    QSharedPointer<VEK_NAMESPACE::ILoggerTrace> trace(const char*, const char*, int) override
    {
        return {};
    }

    QStringList takeLines()
    {
        const QMutexLocker locker(&m_mutex);
        QStringList lines;
        lines.swap(m_lines);
        return lines;
    }

private:
    QMutex m_mutex;
    QStringList m_lines;
};
