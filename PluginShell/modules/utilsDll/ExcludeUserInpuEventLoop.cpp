#include "ExcludeUserInpuEventLoop.h"

#include "CommonConstants.h"
#include "DelayedCall.h"
#include "ExcludeUserInpuEventsScope_p.h"

#include <QCoreApplication>
#include <QEvent>
#include <QThread>

namespace {

/// The set is exact and its gaps are meant; see the filter's description.
bool isExcluded(QEvent::Type type)
{
    switch (type) {
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
    case QEvent::FocusIn:
    case QEvent::FocusOut:
    case QEvent::Close:
    case QEvent::ShortcutOverride:
    case QEvent::DragEnter:
    case QEvent::DragMove:
    case QEvent::DragLeave:
    case QEvent::Drop:
    case QEvent::Shortcut:
    case QEvent::GraphicsSceneMouseMove:
    case QEvent::GraphicsSceneMousePress:
    case QEvent::GraphicsSceneMouseRelease:
    case QEvent::GraphicsSceneMouseDoubleClick:
    case QEvent::GraphicsSceneContextMenu:
    case QEvent::GraphicsSceneDragEnter:
    case QEvent::GraphicsSceneDragMove:
    case QEvent::GraphicsSceneDragLeave:
    case QEvent::GraphicsSceneDrop:
    case QEvent::NonClientAreaMouseButtonPress:
    case QEvent::NonClientAreaMouseButtonRelease:
    case QEvent::NonClientAreaMouseButtonDblClick:
        return true;
    default:
        return false;
    }
}

} // namespace

CExcludeUserInpuEventsFilter::CExcludeUserInpuEventsFilter(QObject* pTarget)
{
    if (!pTarget)
        return;

    if (pTarget->thread() == thread() && pTarget->thread() == QThread::currentThread()) {
        setParent(pTarget);
        pTarget->installEventFilter(this);
    } else if (pTarget != QCoreApplication::instance()) {
        qWarning("Logic error: can't install event filter in different thread");
    }
}

CExcludeUserInpuEventsFilter::~CExcludeUserInpuEventsFilter()
{
    if (parent())
        parent()->removeEventFilter(this);
}

bool CExcludeUserInpuEventsFilter::eventFilter(QObject* object, QEvent* event)
{
    if (object && event && isExcluded(event->type())) {
        event->ignore();
        return true;
    }
    return QObject::eventFilter(object, event);
}

CExcludeUserInpuEventLoop::CExcludeUserInpuEventLoop(QObject* pFilterTarget, QObject* parent)
    : QObject(parent)
    , m_pFilterTarget(pFilterTarget)
{}

CExcludeUserInpuEventLoop::~CExcludeUserInpuEventLoop() = default;

int CExcludeUserInpuEventLoop::exec(int nQuitTimeout)
{
    if (m_eventLoop.isRunning())
        return -1;

    const ExcludeUserInpuEventsScope scope(m_pFilterTarget);
    if (nQuitTimeout != 0)
        CDelayedCall::invoke(nQuitTimeout, this, "quit", true);
    return m_eventLoop.exec(QEventLoop::ExcludeUserInputEvents);
}

void CExcludeUserInpuEventLoop::quit()
{
    exit(0);
}

void CExcludeUserInpuEventLoop::failedQuit()
{
    exit(1);
}

void CExcludeUserInpuEventLoop::exit(int returnCode)
{
    if (m_eventLoop.isRunning())
        m_eventLoop.exit(returnCode);
}
