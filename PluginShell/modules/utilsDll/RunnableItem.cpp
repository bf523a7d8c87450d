#include "RunnableItem.h"

#include "CommonConstants.h"

CQRunnableItem::CQRunnableItem(bool emitSignals, QObject* parent)
    : QObject(parent)
    , bEmitSignals(emitSignals)
{}

CQRunnableItem::~CQRunnableItem() = default;

void CQRunnableItem::stop()
{
    if (stopRequired())
        return;

    doBeforeStopped();
    setStopRequired();
    if (!stopRequired())
        return;
    if (bEmitSignals)
        Q_EMIT wantsToStop();
    doStopped();
}

void CQRunnableItem::run()
{
    if (stopRequired())
        return;

    if (bEmitSignals)
        Q_EMIT started();

    // Once no thread is inside it, an item that emits nothing may be gone.
    const bool bEmitFinished = bEmitSignals;
    bool bOk = false;
    {
        const RunningScope running(*this);
        bOk = doRun();
    }

    if (bEmitFinished)
        Q_EMIT finished(bOk, stopRequired());
}

void CQRunnableItem::doBeforeStopped() {}

void CQRunnableItem::doStopped() {}
