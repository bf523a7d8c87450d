#pragma once

#include "ExcludeUserInpuEventLoop.h"

#include <QPointer>

/// Shuts out user input on a target for one scope. The target may die, and the filter with it,
/// before the scope ends.
class ExcludeUserInpuEventsScope
{
public:
    /// A null target is left alone.
    explicit ExcludeUserInpuEventsScope(QObject* pTarget)
    {
        if (pTarget)
            m_filter = new CExcludeUserInpuEventsFilter(pTarget);
    }

    ~ExcludeUserInpuEventsScope() { delete m_filter; }

private:
    Q_DISABLE_COPY(ExcludeUserInpuEventsScope)

    QPointer<CExcludeUserInpuEventsFilter> m_filter;
};
