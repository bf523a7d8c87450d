#pragma once

#include "WaitFunctions.h"

#include <QCoreApplication>
#include <QObject>
#include <QReadWriteLock>
#include <QRunnable>
#include <QThread>

/// Gives a runnable class \a Base a stop request that its work polls, a count of the threads inside
/// the work, and a destructor that waits until none is. The destructor doesn't ask the work to
/// stop.
template <typename Base>
class Q_DECL_EXPORT CRunnableItem : public Base
{
public:
    /// Holds once the item's work has started, or while no thread is inside it. The item must
    /// outlive it.
    class StartFinishPredicate : public ICustomWaitPredicate
    {
    public:
        /// What to wait for.
        enum Mode
        {
            Finished = false, ///< no thread is inside the work
            Started = true ///< a thread is inside the work
        };

        /// Waits for \a item to be in \a mode.
        StartFinishPredicate(const CRunnableItem& item, Mode mode)
            : m_bStarted(mode)
            , m_pRunning(&item.m_nRunning)
        {}

        /// Whether it is.
        bool done() const override { return (m_pRunning->loadAcquire() > 0) == m_bStarted; }

    private:
        const bool m_bStarted;
        const QAtomicInt* const m_pRunning;
    };

    CRunnableItem() = default;

    /// Waits until no thread is inside the work.
    ~CRunnableItem() override
    {
        waitBlocking(StartFinishPredicate(*this, StartFinishPredicate::Finished));
    }

    /// Whether the work should end: stop was asked for, the calling thread was asked to end, or the
    /// application goes down. Any thread.
    virtual bool stopRequired() const
    {
        {
            const QReadLocker locker(&m_stopLock);
            if (m_bStop)
                return true;
        }
        return QThread::currentThread()->isInterruptionRequested()
            || QCoreApplication::closingDown();
    }

protected:
    /// Counts the calling thread as inside the work for one scope.
    class RunningScope
    {
    public:
        /// Enters the work of \a item.
        explicit RunningScope(CRunnableItem& item)
            : m_item(item)
        {
            m_item.m_nRunning.ref();
        }

        /// Leaves it.
        ~RunningScope() { m_item.m_nRunning.deref(); }

    private:
        Q_DISABLE_COPY(RunningScope)

        CRunnableItem& m_item;
    };

    /// Makes stopRequired() true for good. Any thread.
    void setStopRequired()
    {
        const QWriteLocker locker(&m_stopLock);
        m_bStop = true;
    }

private:
    Q_DISABLE_COPY(CRunnableItem)

    QAtomicInt m_nRunning;
    bool m_bStop = false;
    mutable QReadWriteLock m_stopLock{QReadWriteLock::Recursive};
};

/// A unit of work for a thread pool, a thread, or a signal: derive from it, do the work in doRun()
/// and poll stopRequired() there.
///
/// As QRunnable has it, a thread pool deletes the item after run(); call setAutoDelete(false) to
/// keep it. An item that was stopped stays stopped, and run() then does nothing and emits nothing.
/// run(), stop() and stopRequired() may be called from different threads at once. A derived class
/// whose items are deleted while they run must wait in its own destructor, since its members go
/// before the base waits.
class UTILSDLL_EXPORT CQRunnableItem : public QObject, public CRunnableItem<QRunnable>
{
    Q_OBJECT

public:
    /// Without \a bEmitSignals the item never emits a signal.
    explicit CQRunnableItem(bool bEmitSignals, QObject* parent = nullptr);
    ~CQRunnableItem() override;

public Q_SLOTS:
    /// Asks the work to end, without waiting for it. The hooks and wantsToStop() run on this
    /// thread; two first calls at the same time may both run them.
    void stop();

    /// Runs the work on this thread. An exception from doRun() is passed on, and finished() not
    /// emitted.
    void run() override;

Q_SIGNALS:
    /// The work begins. Sent by the thread that runs it.
    void started();

    /// The work was asked to end. Sent by the thread that asked.
    void wantsToStop();

    /// The work has ended. Sent by the thread that ran it.
    ///
    /// \a bOk is the result of the work, \a bStopped whether a stop had been asked for when it
    /// ended; the two are independent.
    void finished(bool bOk = true, bool bStopped = false);

protected:
    /// The work. True means that it went well.
    virtual bool doRun() = 0;

    /// Called in stop() before the request is made. Does nothing here.
    virtual void doBeforeStopped();

    /// Called in stop() after the request was made: the place to wake up work that waits for
    /// something other than stopRequired(). Does nothing here.
    virtual void doStopped();

private:
    const bool bEmitSignals;
};
