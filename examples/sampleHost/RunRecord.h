#pragma once

#include <QLockFile>
#include <QString>

/// What the installation remembers of its runs: that it was launched, in which mode, and how often
/// a run of that mode didn't come to its end. Made when a run begins and destroyed when it ends,
/// outside of any temporary settings.
///
/// Of several runs at the same time only the first one can be told to have crashed.
class RunRecord
{
public:
    /// \a mode and its \a crashFlag are of CommonConstants.h.
    RunRecord(const QString& mode, const QString& crashFlag);
    ~RunRecord();

    bool isFirstLaunch() const;
    bool hasLastRunCrashed() const;

    /// First launch, last mode and crash counts, a line each.
    static QString summary();

private:
    Q_DISABLE_COPY(RunRecord)

    const QString m_crashFlag;
    QLockFile m_firstOfMode;
    bool m_firstLaunch = false;
    bool m_lastRunCrashed = false;
};
