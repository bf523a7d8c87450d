#include "PerformanceMeauser.h"

#include "CommonConstants.h"

#include <QReadLocker>
#include <QWriteLocker>

namespace VEK_NAMESPACE {

// clazy:excludeall=non-pod-global-static
ThreadSafeVariable<QHash<QString, CPerformanceMeauser::avg>> CPerformanceMeauser::m_averageData;

namespace {

quint64 average(const CPerformanceMeauser::avg& data)
{
    return data.total / qMax<quint64>(data.count, 1);
}

} // namespace

CPerformanceMeauser::CPerformanceMeauser(const QString& name)
    : CPerformanceMeauser(qDebug(), name)
{}

CPerformanceMeauser::CPerformanceMeauser(const QDebug& debug, const QString& name)
    : m_name(name)
    , m_debug(debug)
{
    m_timer.start();
}

CPerformanceMeauser::~CPerformanceMeauser()
{
    const auto elapsed = quint64(m_timer.elapsed());
    quint64 averageElapsed = 0;
    {
        const QWriteLocker locker(&m_averageData.lock);
        avg& data = m_averageData.value[m_name];
        data.total += elapsed;
        ++data.count;
        averageElapsed = average(data);
    }
    m_debug << QStringLiteral("elapsed time (in milliseconds) of %1 = %2, avg time = %3")
                   .arg(m_name.isEmpty() ? QStringLiteral("unknown") : m_name,
                        QString::number(elapsed), QString::number(averageElapsed));
}

quint64 CPerformanceMeauser::avgElapsedTime(const QString& name)
{
    const QReadLocker locker(&m_averageData.lock);
    return average(m_averageData.value.value(name));
}

void CPerformanceMeauser::resetAvgElapsedTime(const QString& name)
{
    const QWriteLocker locker(&m_averageData.lock);
    const auto data = m_averageData.value.find(name);
    if (data != m_averageData.value.end())
        *data = avg();
}

} // namespace VEK_NAMESPACE
