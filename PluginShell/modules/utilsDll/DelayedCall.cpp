#include "DelayedCall.h"

#include "Assertions.h"
#include "CommonConstants.h"
#include "Singleton.h"

#include <QList>
#include <QMetaObject>
#include <QObject>
#include <QPointer>
#include <QThreadStorage>
#include <QTimerEvent>

#include <array>
#include <map>

namespace {

/// The pending calls of one thread.
class CDelayedInvoker : public QObject
{
public:
    ~CDelayedInvoker() override;

    void invoke(int delay, QObject* object, const char* method, bool bSingleShot,
                const QList<QVariant>& args);
    void discard(QObject* object, const char* method);
    bool isActive(QObject* object, const char* method) const;

protected:
    void timerEvent(QTimerEvent* event) override;

private:
    struct methodData
    {
        QPointer<QObject> target;
        const char* method = nullptr;
        bool bSingleShot = true;
        QList<QVariant> args;
    };
    using Methods = std::map<int, methodData>;
    using Objects = std::multimap<QObject*, int>;

    /// The entry behind a node of m_objects, if it is a pending call of that very object, and of
    /// that method unless \a method is null; otherwise end(). A new object may have the address of
    /// a dead one, whose node is still there.
    Methods::const_iterator pendingCall(Objects::const_reference node, const char* method) const;

    void forgetTimer(QObject* object, int timerId);

    Methods m_methods; ///< by timer
    Objects m_objects; ///< timers by the target's address, which is a search key only
};

void callMethod(QObject* target, const char* method, const QList<QVariant>& args)
{
    constexpr int maxArguments = 9;
    ASSERT(args.size() <= maxArguments);
    if (args.size() > maxArguments)
        return;

    std::array<QGenericArgument, maxArguments> a;
    for (int i = 0; i < args.size(); ++i)
        a[size_t(i)] = QGenericArgument(args.at(i).typeName(), args.at(i).constData());
    QMetaObject::invokeMethod(target, method, Qt::AutoConnection, QGenericReturnArgument(), a[0],
                              a[1], a[2], a[3], a[4], a[5], a[6], a[7], a[8]);
}

CDelayedInvoker::~CDelayedInvoker()
{
    m_objects.clear();
    m_methods.clear();
}

void CDelayedInvoker::invoke(int delay, QObject* object, const char* method, bool bSingleShot,
                             const QList<QVariant>& args)
{
    discard(object, method);

    const int timerId = startTimer(delay, Qt::CoarseTimer);
    if (timerId <= 0)
        return;

    m_methods.emplace(timerId, methodData{object, method, bSingleShot, args});
    m_objects.emplace(object, timerId);
}

void CDelayedInvoker::discard(QObject* object, const char* method)
{
    if (!object || m_objects.empty())
        return;

    auto [node, end] = m_objects.equal_range(object);
    while (node != end) {
        const auto call = pendingCall(*node, method);
        if (call == m_methods.end()) {
            ++node;
            continue;
        }
        killTimer(node->second);
        node = m_objects.erase(node);
        m_methods.erase(call);
        if (method)
            return;
    }
}

bool CDelayedInvoker::isActive(QObject* object, const char* method) const
{
    const auto [begin, end] = m_objects.equal_range(object);
    for (auto node = begin; node != end; ++node) {
        if (pendingCall(*node, method) != m_methods.end())
            return true;
    }
    return false;
}

void CDelayedInvoker::timerEvent(QTimerEvent* event)
{
    const int timerId = event->timerId();
    const auto entry = m_methods.find(timerId);
    if (entry == m_methods.end()) {
        QObject::timerEvent(event);
        return;
    }

    const methodData call = entry->second;
    if (call.bSingleShot) {
        // Before the invocation, so that the method may request itself again.
        m_methods.erase(entry);
        forgetTimer(call.target, timerId);
    }

    if (call.target) {
        ASSERT(call.method);
        if (call.method)
            callMethod(call.target, call.method, call.args);
    }

    if (call.bSingleShot) {
        event->accept();
        killTimer(timerId);
    }
    QObject::timerEvent(event);
}

CDelayedInvoker::Methods::const_iterator CDelayedInvoker::pendingCall(Objects::const_reference node,
                                                                      const char* method) const
{
    const auto call = m_methods.find(node.second);
    if (call == m_methods.end() || call->second.target != node.first
        || (method && qstrcmp(call->second.method, method) != 0)) {
        return m_methods.end();
    }
    return call;
}

void CDelayedInvoker::forgetTimer(QObject* object, int timerId)
{
    const auto [begin, end] = m_objects.equal_range(object);
    for (auto node = begin; node != end; ++node) {
        if (node->second == timerId) {
            m_objects.erase(node);
            return;
        }
    }
}

} // namespace

class CDelayedCall::pimpl
{
public:
    void invoke(int delay, QObject* object, const char* method, bool bSingleShot,
                const QList<QVariant>& args)
    {
        if (!object || !method)
            return;
        if (!invokerOfThread())
            m_invokers.setLocalData(new CDelayedInvoker);
        invokerOfThread()->invoke(delay, object, method, bSingleShot, args);
    }

    /// Null if the thread has requested no call yet.
    CDelayedInvoker* invokerOfThread()
    {
        return m_invokers.hasLocalData() ? m_invokers.localData() : nullptr;
    }

    static pimpl& instance() { return *Singleton<CDelayedCall>::instance().m_pimpl; }

private:
    QThreadStorage<CDelayedInvoker*> m_invokers;
};

CDelayedCall::CDelayedCall()
    : m_pimpl(new pimpl)
{}

CDelayedCall::~CDelayedCall() = default;

void CDelayedCall::invoke(int delay, QObject* object, const char* method, bool bSingleShot)
{
    pimpl::instance().invoke(delay, object, method, bSingleShot, {});
}

void CDelayedCall::invokeWithArgs(int delay, QObject* object, const char* method,
                                  const QVariant& arg1, bool bSingleShot)
{
    pimpl::instance().invoke(delay, object, method, bSingleShot, {arg1});
}

void CDelayedCall::invokeWithArgs(int delay, QObject* object, const char* method,
                                  const QVariant& arg1, const QVariant& arg2, bool bSingleShot)
{
    pimpl::instance().invoke(delay, object, method, bSingleShot, {arg1, arg2});
}

void CDelayedCall::invokeWithArgs(int delay, QObject* object, const char* method,
                                  const QVariant& arg1, const QVariant& arg2, const QVariant& arg3,
                                  bool bSingleShot)
{
    pimpl::instance().invoke(delay, object, method, bSingleShot, {arg1, arg2, arg3});
}

void CDelayedCall::invokeWithArgs(int delay, QObject* object, const char* method,
                                  const QVariant& arg1, const QVariant& arg2, const QVariant& arg3,
                                  const QVariant& arg4, bool bSingleShot)
{
    pimpl::instance().invoke(delay, object, method, bSingleShot, {arg1, arg2, arg3, arg4});
}

void CDelayedCall::invokeWithArgs(int delay, QObject* object, const char* method,
                                  const QVariant& arg1, const QVariant& arg2, const QVariant& arg3,
                                  const QVariant& arg4, const QVariant& arg5, bool bSingleShot)
{
    pimpl::instance().invoke(delay, object, method, bSingleShot, {arg1, arg2, arg3, arg4, arg5});
}

void CDelayedCall::invokeWithArgs(int delay, QObject* object, const char* method,
                                  const QVariant& arg1, const QVariant& arg2, const QVariant& arg3,
                                  const QVariant& arg4, const QVariant& arg5, const QVariant& arg6,
                                  bool bSingleShot)
{
    pimpl::instance().invoke(delay, object, method, bSingleShot,
                             {arg1, arg2, arg3, arg4, arg5, arg6});
}

void CDelayedCall::invokeWithArgs(int delay, QObject* object, const char* method,
                                  const QVariant& arg1, const QVariant& arg2, const QVariant& arg3,
                                  const QVariant& arg4, const QVariant& arg5, const QVariant& arg6,
                                  const QVariant& arg7, bool bSingleShot)
{
    pimpl::instance().invoke(delay, object, method, bSingleShot,
                             {arg1, arg2, arg3, arg4, arg5, arg6, arg7});
}

void CDelayedCall::invokeWithArgs(int delay, QObject* object, const char* method,
                                  const QVariant& arg1, const QVariant& arg2, const QVariant& arg3,
                                  const QVariant& arg4, const QVariant& arg5, const QVariant& arg6,
                                  const QVariant& arg7, const QVariant& arg8, bool bSingleShot)
{
    pimpl::instance().invoke(delay, object, method, bSingleShot,
                             {arg1, arg2, arg3, arg4, arg5, arg6, arg7, arg8});
}

void CDelayedCall::invokeWithArgs(int delay, QObject* object, const char* method,
                                  const QVariant& arg1, const QVariant& arg2, const QVariant& arg3,
                                  const QVariant& arg4, const QVariant& arg5, const QVariant& arg6,
                                  const QVariant& arg7, const QVariant& arg8, const QVariant& arg9,
                                  bool bSingleShot)
{
    pimpl::instance().invoke(delay, object, method, bSingleShot,
                             {arg1, arg2, arg3, arg4, arg5, arg6, arg7, arg8, arg9});
}

void CDelayedCall::discard(QObject* object, const char* method)
{
    if (!object)
        return;
    if (CDelayedInvoker* invoker = pimpl::instance().invokerOfThread())
        invoker->discard(object, method);
}

bool CDelayedCall::isActive(QObject* object, const char* method)
{
    if (!object || !method)
        return false;
    const CDelayedInvoker* invoker = pimpl::instance().invokerOfThread();
    return invoker && invoker->isActive(object, method);
}
