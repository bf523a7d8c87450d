#include "WaitFunctions.h"

#include "CommonConstants.h"
#include "ExcludeUserInpuEventsScope_p.h"

#include <QApplication>
#include <QThread>

ICustomWaitPredicate::~ICustomWaitPredicate() = default;

CAtomicIntWaitPredicate::CAtomicIntWaitPredicate(const QAtomicInt& value, int nExpected)
    : m_value(value)
    , m_nExpected(nExpected)
{}

bool CAtomicIntWaitPredicate::done() const
{
    return m_value.load() == m_nExpected;
}

void waitBlocking(const ICustomWaitPredicate& predicate)
{
    while (!predicate.done())
        QThread::yieldCurrentThread();
}

void waitNonBlocking(const ICustomWaitPredicate& predicate, bool bExcludeUserInput)
{
    const ExcludeUserInpuEventsScope scope(bExcludeUserInput ? QCoreApplication::instance()
                                                             : nullptr);
    while (!predicate.done()) {
        // While another application has the focus, such as a plug-in's host, events stay queued.
        if (QApplication::activeWindow())
            QCoreApplication::processEvents(QEventLoop::AllEvents);
        else
            QThread::yieldCurrentThread();
    }
}

void waitBlockingAtomicIntValue(const QAtomicInt& value, int nExpected)
{
    waitBlocking(CAtomicIntWaitPredicate(value, nExpected));
}

void waitNonBlockingAtomicIntValue(const QAtomicInt& value, int nExpected, bool bExcludeUserInput)
{
    waitNonBlocking(CAtomicIntWaitPredicate(value, nExpected), bExcludeUserInput);
}
