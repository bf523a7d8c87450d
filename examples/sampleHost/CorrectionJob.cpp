#include "CorrectionJob.h"

CorrectionJob::CorrectionJob(const QImage& picture, const Corrections& corrections)
    : CQRunnableItem(true)
    , m_picture(picture)
    , m_corrections(corrections)
{}

bool CorrectionJob::doRun()
{
    CorrectionWatch watch;
    watch.stopRequired = [this] { return stopRequired(); };
    watch.progress = [this, last = -1](int percent) mutable {
        if (percent == last)
            return;
        last = percent;
        Q_EMIT progressChanged(percent);
    };
    const QImage result = correctPicture(m_picture, m_corrections, watch);
    if (result.isNull())
        return false;
    Q_EMIT corrected(result);
    return true;
}
