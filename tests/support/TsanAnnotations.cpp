// Tells ThreadSanitizer about the synchronisation inside Qt, which isn't instrumented: without it
// all that a lock, an event or a thread's end orders looks like a race. Linked into every program
// that uses the library, in builds with ThreadSanitizer only.
//
// Each function here stands in for Qt's own of that name in calls from instrumented code, does what
// Qt's does, and adds what it orders. Races between functions of ours are reported as ever.

#include <QCoreApplication>
#include <QEvent>
#include <QMutex>
#include <QObject>
#include <QReadWriteLock>
#include <QSemaphore>
#include <QThread>
#include <QWaitCondition>

#include <dlfcn.h>
#include <pthread.h>
#include <sanitizer/tsan_interface.h>

#include <cerrno>
#include <condition_variable>
#include <map>
#include <mutex>
#include <new>

namespace {

/// The definition behind ours.
template <typename Function>
Function* next(const char* symbol)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, symbol));
}

/// What was posted, and what was queued by a signal, is ordered before every later event. That is
/// more than Qt promises, since an event doesn't tell which call it comes from.
char s_events;

/// What connects a signal is ordered before all that the signal calls.
char s_connections;

bool acquireEvent(void** arguments)
{
    const auto* const event = static_cast<QEvent*>(arguments[1]);
    if (event->type() == QEvent::MetaCall || event->type() >= QEvent::User)
        __tsan_acquire(&s_events);
    return false;
}

const bool s_registered = QInternal::registerCallback(QInternal::EventNotifyCallback, acquireEvent);

/// The threads that Qt started and that haven't returned, by the QThread that is their argument.
class RunningThreads
{
public:
    void add(void* thread)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        ++m_threads[thread];
    }

    void remove(void* thread)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (--m_threads[thread] == 0)
            m_threads.erase(thread);
        m_changed.notify_all();
    }

    void awaitEnd(void* thread)
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        m_changed.wait(lock, [&] { return m_threads.count(thread) == 0; });
    }

    static RunningThreads& instance()
    {
        // Threads may end after main().
        static auto* const threads = new RunningThreads;
        return *threads;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::map<void*, int> m_threads;
};

struct Start
{
    void* (*routine)(void*);
    void* argument;
};

void* runThread(void* argument)
{
    auto* const start = static_cast<Start*>(argument);
    struct AtEnd
    {
        void* thread;
        ~AtEnd() { RunningThreads::instance().remove(thread); }
    } const atEnd{start->argument};
    auto* const routine = start->routine;
    delete start;
    return routine(atEnd.thread);
}

} // namespace

// Threads. What a thread did is ordered before the return of wait(), also if it had ended by then.

extern "C" int pthread_create(pthread_t* id, const pthread_attr_t* attributes,
                              void* (*routine)(void*), void* argument)
{
    using Create = int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    static Create* const create = next<Create>("pthread_create");

    // Every thread comes through here, but only a QThread is waited for by its argument.
    auto* const start = new (std::nothrow) Start{routine, argument};
    if (!start)
        return EAGAIN;
    RunningThreads::instance().add(argument);
    const int error = create(id, attributes, runThread, start);
    if (error) {
        RunningThreads::instance().remove(argument);
        delete start;
    }
    return error;
}

bool QThread::wait(QDeadlineTimer deadline)
{
    static auto* const wait =
        next<bool(QThread*, QDeadlineTimer)>("_ZN7QThread4waitE14QDeadlineTimer");
    const bool ended = wait(this, deadline);
    if (ended && QThread::currentThread() != this)
        RunningThreads::instance().awaitEnd(this);
    return ended;
}

bool QThread::wait(unsigned long time)
{
    return wait(time == ULONG_MAX ? QDeadlineTimer(QDeadlineTimer::Forever)
                                  : QDeadlineTimer(qint64(time)));
}

// Events.

void QCoreApplication::postEvent(QObject* receiver, QEvent* event, int priority)
{
    static auto* const post =
        next<void(QObject*, QEvent*, int)>("_ZN16QCoreApplication9postEventEP7QObjectP6QEventi");
    __tsan_release(&s_events);
    post(receiver, event, priority);
}

void QMetaObject::activate(QObject* sender, const QMetaObject* meta, int signal, void** arguments)
{
    static auto* const activateNext = next<void(QObject*, const QMetaObject*, int, void**)>(
        "_ZN11QMetaObject8activateEP7QObjectPKS_iPPv");
    __tsan_release(&s_events);
    __tsan_acquire(&s_connections);
    activateNext(sender, meta, signal, arguments);
}

QMetaObject::Connection QObject::connectImpl(const QObject* sender, void** signal,
                                             const QObject* receiver, void** slotPtr,
                                             QtPrivate::QSlotObjectBase* slot,
                                             Qt::ConnectionType type, const int* types,
                                             const QMetaObject* senderMetaObject)
{
    static auto* const connectNext = next<QMetaObject::Connection(
        const QObject*, void**, const QObject*, void**, QtPrivate::QSlotObjectBase*,
        Qt::ConnectionType, const int*, const QMetaObject*)>(
        "_ZN7QObject11connectImplEPKS_PPvS1_S3_PN9QtPrivate15QSlotObjectBaseEN2Qt14ConnectionType"
        "EPKiPK11QMetaObject");
    __tsan_release(&s_connections);
    return connectNext(sender, signal, receiver, slotPtr, slot, type, types, senderMetaObject);
}

bool QMetaObject::invokeMethod(QObject* object, const char* member, Qt::ConnectionType type,
                               QGenericReturnArgument result, QGenericArgument a0,
                               QGenericArgument a1, QGenericArgument a2, QGenericArgument a3,
                               QGenericArgument a4, QGenericArgument a5, QGenericArgument a6,
                               QGenericArgument a7, QGenericArgument a8, QGenericArgument a9)
{
    using A = QGenericArgument;
    static auto* const invoke = next<bool(QObject*, const char*, Qt::ConnectionType,
                                          QGenericReturnArgument, A, A, A, A, A, A, A, A, A, A)>(
        "_ZN11QMetaObject12invokeMethodEP7QObjectPKcN2Qt14ConnectionTypeE22QGenericReturnArgument"
        "16QGenericArgumentS7_S7_S7_S7_S7_S7_S7_S7_S7_");
    __tsan_release(&s_events);
    return invoke(object, member, type, result, a0, a1, a2, a3, a4, a5, a6, a7, a8, a9);
}

bool QMetaObject::invokeMethodImpl(QObject* object, QtPrivate::QSlotObjectBase* slot,
                                   Qt::ConnectionType type, void* result)
{
    static auto* const invoke =
        next<bool(QObject*, QtPrivate::QSlotObjectBase*, Qt::ConnectionType, void*)>(
            "_ZN11QMetaObject16invokeMethodImplEP7QObjectPN9QtPrivate15QSlotObjectBaseEN2Qt"
            "14ConnectionTypeEPv");
    __tsan_release(&s_events);
    return invoke(object, slot, type, result);
}

// Locks. Acquired after the lock is held, released before it is given up.

void QReadWriteLock::lockForRead()
{
    static auto* const lock = next<void(QReadWriteLock*)>("_ZN14QReadWriteLock11lockForReadEv");
    lock(this);
    __tsan_acquire(this);
}

bool QReadWriteLock::tryLockForRead()
{
    return tryLockForRead(0);
}

bool QReadWriteLock::tryLockForRead(int timeout)
{
    static auto* const lock =
        next<bool(QReadWriteLock*, int)>("_ZN14QReadWriteLock14tryLockForReadEi");
    const bool locked = lock(this, timeout);
    if (locked)
        __tsan_acquire(this);
    return locked;
}

void QReadWriteLock::lockForWrite()
{
    static auto* const lock = next<void(QReadWriteLock*)>("_ZN14QReadWriteLock12lockForWriteEv");
    lock(this);
    __tsan_acquire(this);
}

bool QReadWriteLock::tryLockForWrite()
{
    return tryLockForWrite(0);
}

bool QReadWriteLock::tryLockForWrite(int timeout)
{
    static auto* const lock =
        next<bool(QReadWriteLock*, int)>("_ZN14QReadWriteLock15tryLockForWriteEi");
    const bool locked = lock(this, timeout);
    if (locked)
        __tsan_acquire(this);
    return locked;
}

void QReadWriteLock::unlock()
{
    static auto* const unlock = next<void(QReadWriteLock*)>("_ZN14QReadWriteLock6unlockEv");
    __tsan_release(this);
    unlock(this);
}

// The fast path of these two is inline, and so instrumented.

void QBasicMutex::lockInternal() QT_MUTEX_LOCK_NOEXCEPT
{
    static auto* const lock = next<void(QBasicMutex*)>("_ZN11QBasicMutex12lockInternalEv");
    lock(this);
    __tsan_acquire(this);
}

void QBasicMutex::unlockInternal() noexcept
{
    static auto* const unlock = next<void(QBasicMutex*)>("_ZN11QBasicMutex14unlockInternalEv");
    __tsan_release(this);
    unlock(this);
}

void QMutex::lock() QT_MUTEX_LOCK_NOEXCEPT
{
    static auto* const lock = next<void(QMutex*)>("_ZN6QMutex4lockEv");
    lock(this);
    __tsan_acquire(this);
}

bool QMutex::tryLock(int timeout) QT_MUTEX_LOCK_NOEXCEPT
{
    static auto* const lock = next<bool(QMutex*, int)>("_ZN6QMutex7tryLockEi");
    const bool locked = lock(this, timeout);
    if (locked)
        __tsan_acquire(this);
    return locked;
}

void QMutex::unlock() noexcept
{
    static auto* const unlock = next<void(QMutex*)>("_ZN6QMutex6unlockEv");
    __tsan_release(this);
    unlock(this);
}

bool QWaitCondition::wait(QMutex* mutex, QDeadlineTimer deadline)
{
    static auto* const wait = next<bool(QWaitCondition*, QMutex*, QDeadlineTimer)>(
        "_ZN14QWaitCondition4waitEP6QMutex14QDeadlineTimer");
    __tsan_release(mutex);
    const bool woken = wait(this, mutex, deadline);
    __tsan_acquire(mutex);
    return woken;
}

bool QWaitCondition::wait(QReadWriteLock* lock, QDeadlineTimer deadline)
{
    static auto* const wait = next<bool(QWaitCondition*, QReadWriteLock*, QDeadlineTimer)>(
        "_ZN14QWaitCondition4waitEP14QReadWriteLock14QDeadlineTimer");
    __tsan_release(lock);
    const bool woken = wait(this, lock, deadline);
    __tsan_acquire(lock);
    return woken;
}

void QSemaphore::acquire(int n)
{
    static auto* const acquireNext = next<void(QSemaphore*, int)>("_ZN10QSemaphore7acquireEi");
    acquireNext(this, n);
    __tsan_acquire(this);
}

bool QSemaphore::tryAcquire(int n)
{
    return tryAcquire(n, 0);
}

bool QSemaphore::tryAcquire(int n, int timeout)
{
    static auto* const acquireNext =
        next<bool(QSemaphore*, int, int)>("_ZN10QSemaphore10tryAcquireEii");
    const bool acquired = acquireNext(this, n, timeout);
    if (acquired)
        __tsan_acquire(this);
    return acquired;
}

void QSemaphore::release(int n)
{
    static auto* const releaseNext = next<void(QSemaphore*, int)>("_ZN10QSemaphore7releaseEi");
    __tsan_release(this);
    releaseNext(this, n);
}
