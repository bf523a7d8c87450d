#pragma once

#include <QReadWriteLock>

/// A value and the lock that guards it. Read it under a QReadLocker, write it under a QWriteLocker;
/// the lock is recursive.
template <typename T>
class ThreadSafeVariable
{
public:
    ThreadSafeVariable() = default;
    explicit ThreadSafeVariable(const T& initialValue)
        : value(initialValue)
    {}

    T value{};
    QReadWriteLock lock{QReadWriteLock::Recursive};
};
