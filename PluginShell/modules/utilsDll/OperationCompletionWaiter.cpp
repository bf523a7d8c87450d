#include "OperationCompletionWaiter.h"

#include "Assertions.h"
#include "CommonConstants.h"

namespace VEK_NAMESPACE {

COperationCompletionWaiter::COperationCompletionWaiter(QObject* parent)
    : QObject(parent)
{}

COperationCompletionWaiter::COperationCompletionWaiter(QObject* sender, const char* signal,
                                                       QObject* parent)
    : QObject(parent)
{
    ASSERT(sender);
    ASSERT(signal);
    connect(sender, signal, this, SLOT(onOperationCompleted()));
}

COperationCompletionWaiter::~COperationCompletionWaiter() = default;

void COperationCompletionWaiter::startWaiting()
{
    if (!m_bCompleted)
        m_eventLoop.exec();
}

void COperationCompletionWaiter::onOperationCompleted()
{
    m_bCompleted = true;
    if (m_eventLoop.isRunning())
        m_eventLoop.exit(0);
}

bool COperationCompletionWaiter::isOperationCompleted() const
{
    return m_bCompleted;
}

COperationCompletionWaiterWithResult::COperationCompletionWaiterWithResult(const QObject* sender,
                                                                           const char* signal,
                                                                           QObject* parent)
    : COperationCompletionWaiter(parent)
{
    ASSERT(sender);
    ASSERT(signal);
    connect(sender, signal, this, SLOT(onOperationCompleted(bool)));
}

COperationCompletionWaiterWithResult::~COperationCompletionWaiterWithResult() = default;

bool COperationCompletionWaiterWithResult::isOperationSuccess() const
{
    ASSERT(isOperationCompleted());
    return m_bSuccess;
}

void COperationCompletionWaiterWithResult::onOperationCompleted(bool success)
{
    m_bSuccess = success;
    COperationCompletionWaiter::onOperationCompleted();
}

} // namespace VEK_NAMESPACE
