#pragma once

#include "UtilsDllGlobal.h"

#include <QAtomicInt>

/// \file
/// Waits until a condition holds. None of them has a time-out, a pause or a poll interval: they
/// trade processor time for simplicity and are for short waits. A condition that never holds is
/// waited for without end.

/// A condition to wait for. done() is called on the waiting thread while others change what it
/// reads.
class UTILSDLL_EXPORT ICustomWaitPredicate
{
public:
    /// Whether the wait is over. Called again and again: keep it cheap, and don't change anything.
    virtual bool done() const = 0;
    virtual ~ICustomWaitPredicate();
};

/// Holds while the atomic, which must outlive the wait, has the expected value. The read is
/// relaxed: it orders nothing else.
class UTILSDLL_EXPORT CAtomicIntWaitPredicate : public ICustomWaitPredicate
{
public:
    /// Keeps a reference to \a value.
    CAtomicIntWaitPredicate(const QAtomicInt& value, int nExpected);

    /// Whether the value is the expected one now.
    bool done() const override;

private:
    const QAtomicInt& m_value;
    const int m_nExpected;
};

/// Waits on any thread, serving no events.
UTILSDLL_EXPORT void waitBlocking(const ICustomWaitPredicate& predicate);

/// Waits on the GUI thread while a window of the application is active and its events are served;
/// while none is, events stay queued. With \a bExcludeUserInput the user's input is thrown away
/// meanwhile, see CExcludeUserInpuEventsFilter.
UTILSDLL_EXPORT void waitNonBlocking(const ICustomWaitPredicate& predicate,
                                     bool bExcludeUserInput = false);

/// waitBlocking() for an atomic and the value to wait for.
UTILSDLL_EXPORT void waitBlockingAtomicIntValue(const QAtomicInt& value, int nExpected);

/// waitNonBlocking() for an atomic and the value to wait for.
UTILSDLL_EXPORT void waitNonBlockingAtomicIntValue(const QAtomicInt& value, int nExpected,
                                                   bool bExcludeUserInput = false);
