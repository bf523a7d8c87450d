#pragma once

#include "UtilsDllGlobal.h"

#include <QEventLoop>
#include <QObject>

namespace VEK_NAMESPACE {

/// Turns an operation that ends in a signal into a call that returns when it has ended: construct
/// the waiter, start the operation, call startWaiting(). One waiter serves one operation. A signal
/// that comes before startWaiting() is not lost; user input stays live during the wait. The sender
/// may live on another thread.
class UTILSDLL_EXPORT COperationCompletionWaiter : public QObject
{
    Q_OBJECT

public:
    /// For subclasses that make their own connection to onOperationCompleted().
    explicit COperationCompletionWaiter(QObject* parent = nullptr);

    /// \a signal is written with the SIGNAL macro. A null \a sender or \a signal fails an
    /// assertion, and the wait would never end.
    COperationCompletionWaiter(QObject* sender, const char* signal, QObject* parent = nullptr);
    ~COperationCompletionWaiter() override;

    /// Runs an event loop until the signal; returns at once if it has come already.
    void startWaiting();

protected Q_SLOTS:
    /// Ends the wait, or the one that is still to come.
    void onOperationCompleted();

protected:
    /// Whether the signal has come.
    bool isOperationCompleted() const;

private:
    bool m_bCompleted = false;
    QEventLoop m_eventLoop;
};

/// The same for a signal that tells success by a bool.
class UTILSDLL_EXPORT COperationCompletionWaiterWithResult : public COperationCompletionWaiter
{
    Q_OBJECT

public:
    /// \a signal is written with the SIGNAL macro and has a bool as its parameter, or as its first.
    COperationCompletionWaiterWithResult(const QObject* sender, const char* signal,
                                         QObject* parent = nullptr);
    ~COperationCompletionWaiterWithResult() override;

    /// The bool of the last signal; before there was one, a failed assertion and false.
    bool isOperationSuccess() const;

private Q_SLOTS:
    void onOperationCompleted(bool success);

private:
    bool m_bSuccess = false;
};

} // namespace VEK_NAMESPACE
