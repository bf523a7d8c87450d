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

#include <algorithm>
#include <array>
#include <map>
#include <utility>

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

    methodData& insertCall(int timerId, QObject* object);
    QList<QVariant> eraseCall(Methods::const_iterator call);
    Objects::const_iterator eraseNode(Objects::const_iterator node);
    void eraseNode(QObject* object, int timerId);

    Methods m_methods; ///< by timer
    Objects m_objects; ///< timers by the target's address, which is a search key only

    // What the last call to end leaves serves the next one, so that a burst of requests neither
    // allocates nor counts references.
    Methods::node_type m_spareMethod;
    Objects::node_type m_spareObject;
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

    methodData& call = insertCall(timerId, object);
    if (call.target != object)
        call.target = object;
    call.method = method;
    call.bSingleShot = bSingleShot;
    call.args = args;
}

void CDelayedInvoker::discard(QObject* object, const char* method)
{
    if (!object || m_objects.empty())
        return;

    QList<QVariant> discardedArgs;
    Objects::const_iterator node = m_objects.lower_bound(object);
    while (node != m_objects.end() && node->first == object) {
        const auto call = pendingCall(*node, method);
        if (call == m_methods.end()) {
            ++node;
            continue;
        }
        killTimer(node->second);
        node = eraseNode(node);
        discardedArgs += eraseCall(call);
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
        eraseCall(entry);
        eraseNode(call.target, timerId);
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

CDelayedInvoker::methodData& CDelayedInvoker::insertCall(int timerId, QObject* object)
{
    if (m_spareObject) {
        m_spareObject.key() = object;
        m_spareObject.mapped() = timerId;
        m_objects.insert(std::move(m_spareObject));
    } else {
        m_objects.emplace(object, timerId);
    }

    if (!m_spareMethod)
        return m_methods[timerId];
    m_spareMethod.key() = timerId;
    return m_methods.insert(std::move(m_spareMethod)).position->second;
}

/// Returns the arguments, to be let go when all is in order again: their destructors may come back
/// here.
QList<QVariant> CDelayedInvoker::eraseCall(Methods::const_iterator call)
{
    m_spareMethod = m_methods.extract(call);
    QList<QVariant> args;
    args.swap(m_spareMethod.mapped().args);
    return args;
}

CDelayedInvoker::Objects::const_iterator CDelayedInvoker::eraseNode(Objects::const_iterator node)
{
    const Objects::const_iterator next = std::next(node);
    m_spareObject = m_objects.extract(node);
    return next;
}

void CDelayedInvoker::eraseNode(QObject* object, int timerId)
{
    const auto [begin, end] = m_objects.equal_range(object);
    const auto node =
        std::find_if(begin, end, [timerId](const auto& n) { return n.second == timerId; });
    if (node != end)
        eraseNode(node);
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
        CDelayedInvoker* invoker = invokerOfThread();
        if (!invoker) {
            invoker = new CDelayedInvoker;
            m_invokers.setLocalData(invoker);
        }
        invoker->invoke(delay, object, method, bSingleShot, args);
    }

    /// Null if the thread has requested no call yet.
    CDelayedInvoker* invokerOfThread() { return m_invokers.localData(); }

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
