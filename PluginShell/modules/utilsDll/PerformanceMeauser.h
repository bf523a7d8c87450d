#pragma once

#include "ThreadSafeVariable.h"
#include "UtilsDllGlobal.h"

#include <QDebug>
#include <QElapsedTimer>
#include <QHash>
#include <QString>

namespace VEK_NAMESPACE {

/// A scope timer: measures from its construction to its destruction, in whole milliseconds, adds
/// the result to a running average of the process, and writes one line with both to a debug stream.
///
/// A measurement's name is the key of its average; nameless ones share one. Averages are kept until
/// the process ends. Any thread, one object each.
class UTILSDLL_EXPORT CPerformanceMeauser
{
public:
    /// What the process knows of one name.
    struct avg
    {
        quint64 count = 0; ///< measurements
        quint64 total = 0; ///< their sum in milliseconds
    };

    /// Writes to a qDebug() stream of its own.
    explicit CPerformanceMeauser(const QString& name);
    /// Writes to a copy of \a debug, which ends its line when both are gone.
    CPerformanceMeauser(const QDebug& debug, const QString& name);

    /// Ends the measurement, adds it to the average and writes the line.
    ~CPerformanceMeauser();

    /// The average of a name in whole milliseconds, rounded down; 0 for a name that hasn't been
    /// measured.
    static quint64 avgElapsedTime(const QString& name);

    /// Starts the average of a name anew. A name that hasn't been measured changes nothing.
    static void resetAvgElapsedTime(const QString& name);

private:
    Q_DISABLE_COPY(CPerformanceMeauser)

    QString m_name;
    QDebug m_debug;
    QElapsedTimer m_timer;

    static ThreadSafeVariable<QHash<QString, avg>> m_averageData;
};

} // namespace VEK_NAMESPACE
