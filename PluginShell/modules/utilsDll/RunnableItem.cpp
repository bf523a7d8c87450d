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

    bool bOk = false;
    {
        const RunningScope running(*this);
        bOk = doRun();
    }

    if (bEmitSignals)
        Q_EMIT finished(bOk, stopRequired());
}

void CQRunnableItem::doBeforeStopped() {}

void CQRunnableItem::doStopped() {}
