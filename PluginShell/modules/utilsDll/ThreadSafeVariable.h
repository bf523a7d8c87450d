#pragma once

#include <QReadWriteLock>

/// A value and the lock that guards it. Read it under a QReadLocker, write it under a QWriteLocker;
/// the lock is recursive.
template <typename T>
class ThreadSafeVariable
{
public:
    ThreadSafeVariable() = default;

    /// Holds a copy of \a initialValue.
    explicit ThreadSafeVariable(const T& initialValue)
        : value(initialValue)
    {}

    T value{}; ///< guarded by #lock; a T() at first
    QReadWriteLock lock{QReadWriteLock::Recursive}; ///< guards #value; the user takes it
};
