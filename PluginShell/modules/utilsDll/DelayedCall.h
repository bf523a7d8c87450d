#pragma once

#include "UtilsDllGlobal.h"

#include <QScopedPointer>
#include <QVariant>

class QObject;

/// Calls a named method of an object some milliseconds later, on the thread that asked for it.
///
/// For one pair of object and method a thread has at most one call pending: a new request replaces
/// the earlier one, arguments and delay included, so that a burst of requests gives one call, one
/// delay after the last of them. Two pointers to equal method names mean the same method.
///
/// The method is what QMetaObject::invokeMethod() takes, without a parameter list, and is \b not
/// copied: pass a string literal. Its parameters must have exactly the types that the QVariants
/// hold. An object that dies before is not called; nothing else is reported either, but for Qt's
/// own warnings.
///
/// Any thread with an event dispatcher may use it, and each thread sees its own requests only. A
/// target on another thread is called there. The time is not precise to the millisecond.
class UTILSDLL_EXPORT CDelayedCall
{
public:
    /// Made by Singleton<CDelayedCall>. All operations are static, so no host needs an object.
    CDelayedCall();
    ~CDelayedCall();

    /// Requests a call after \a delay milliseconds. If \a bSingleShot is false it is repeated at
    /// that period until it is discarded or replaced. A negative delay requests nothing, and still
    /// cancels the pending call of the pair.
    static void invoke(int delay, QObject* object, const char* method, bool bSingleShot = true);

    /// The same with one to nine arguments. The last parameter has no default: without it the last
    /// argument would be taken for it.
    static void invokeWithArgs(int delay, QObject* object, const char* method, const QVariant& arg1,
                               bool bSingleShot);
    /// \overload
    static void invokeWithArgs(int delay, QObject* object, const char* method, const QVariant& arg1,
                               const QVariant& arg2, bool bSingleShot);
    /// \overload
    static void invokeWithArgs(int delay, QObject* object, const char* method, const QVariant& arg1,
                               const QVariant& arg2, const QVariant& arg3, bool bSingleShot);
    /// \overload
    static void invokeWithArgs(int delay, QObject* object, const char* method, const QVariant& arg1,
                               const QVariant& arg2, const QVariant& arg3, const QVariant& arg4,
                               bool bSingleShot);
    /// \overload
    static void invokeWithArgs(int delay, QObject* object, const char* method, const QVariant& arg1,
                               const QVariant& arg2, const QVariant& arg3, const QVariant& arg4,
                               const QVariant& arg5, bool bSingleShot);
    /// \overload
    static void invokeWithArgs(int delay, QObject* object, const char* method, const QVariant& arg1,
                               const QVariant& arg2, const QVariant& arg3, const QVariant& arg4,
                               const QVariant& arg5, const QVariant& arg6, bool bSingleShot);
    /// \overload
    static void invokeWithArgs(int delay, QObject* object, const char* method, const QVariant& arg1,
                               const QVariant& arg2, const QVariant& arg3, const QVariant& arg4,
                               const QVariant& arg5, const QVariant& arg6, const QVariant& arg7,
                               bool bSingleShot);
    /// \overload
    static void invokeWithArgs(int delay, QObject* object, const char* method, const QVariant& arg1,
                               const QVariant& arg2, const QVariant& arg3, const QVariant& arg4,
                               const QVariant& arg5, const QVariant& arg6, const QVariant& arg7,
                               const QVariant& arg8, bool bSingleShot);
    /// \overload
    static void invokeWithArgs(int delay, QObject* object, const char* method, const QVariant& arg1,
                               const QVariant& arg2, const QVariant& arg3, const QVariant& arg4,
                               const QVariant& arg5, const QVariant& arg6, const QVariant& arg7,
                               const QVariant& arg8, const QVariant& arg9, bool bSingleShot);

    /// Cancels the pending call of the pair, or with a null \a method every pending call of the
    /// object.
    static void discard(QObject* object, const char* method);

    /// Whether this thread has a pending call of the pair.
    static bool isActive(QObject* object, const char* method);

private:
    class pimpl;

    Q_DISABLE_COPY(CDelayedCall)

    QScopedPointer<pimpl> m_pimpl;
};
