#pragma once

#include "Corrections.h"
#include "RunnableItem.h"

/// Corrects one picture on the thread that runs it, and on the cores that are free. It can be
/// stopped. An owner that deletes it early stops it and waits until its pool is done.
class CorrectionJob : public CQRunnableItem
{
    Q_OBJECT

public:
    CorrectionJob(const QImage& picture, const Corrections& corrections);

Q_SIGNALS:
    void progressChanged(int percent);

    /// Emitted before finished(), and not at all if the work was stopped.
    void corrected(const QImage& picture);

protected:
    bool doRun() override;

private:
    const QImage m_picture;
    const Corrections m_corrections;
};
