#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <KWindowInfo>
#include <KWindowSystem>
#include <KX11Extras>

#include <QCoreApplication>
#include <QEvent>
#include <QWidget>
#include <QWindow>

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

/// The top-level window of a handle of this process, or null where windows aren't those of X11:
/// elsewhere the requests below would only print warnings.
QWindow* x11Window(unsigned long long windowId)
{
    if (!KWindowSystem::isPlatformX11())
        return nullptr;
    const QWidget* widget = QWidget::find(WId(windowId));
    return widget ? widget->window()->windowHandle() : nullptr;
}

/// Requests to the window manager otherwise stay in the connection's buffer.
void flushRequests(const QWindow* window)
{
    (void)KWindowInfo(window->winId(), NET::WMState).valid();
}

/// Keeps a window in front of all others. A window manager doesn't listen before it has taken the
/// window over, and forgets the state of a window that is hidden, so it is told each time that it
/// takes the window.
class ModalPanelLevel : public QObject
{
public:
    explicit ModalPanelLevel(QWindow* window)
        : QObject(window)
        , m_waits(!window->isExposed())
    {
        setObjectName(QStringLiteral("ModalPanelLevel"));
        connect(KX11Extras::self(), &KX11Extras::windowAdded, this, [window](WId id) {
            if (id == window->winId())
                lift(window);
        });
        window->installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        auto* window = static_cast<QWindow*>(watched);
        if (event->type() == QEvent::Hide)
            m_waits = true;
        if (event->type() == QEvent::Expose && window->isExposed() && m_waits) {
            m_waits = false;
            lift(window);
        }
        return QObject::eventFilter(watched, event);
    }

    static void set(QWindow* window)
    {
        if (!window->findChild<QObject*>(QStringLiteral("ModalPanelLevel"),
                                         Qt::FindDirectChildrenOnly)) {
            new ModalPanelLevel(window);
        }
        lift(window);
    }

private:
    bool m_waits; ///< until the window manager has shown the window

    static void lift(QWindow* window)
    {
        KWindowSystem::setState(window->winId(), NET::KeepAbove);
        window->raise();
        flushRequests(window);
    }
};

/// Takes the close button away as long as it lives. The hint is all that the window manager is
/// told, and some don't heed it, so a close request from there is swallowed too.
class CloseButtonDisabler : public QObject
{
public:
    explicit CloseButtonDisabler(QWindow* window)
        : QObject(window)
        , m_oldFlags(window->flags())
    {
        setObjectName(QStringLiteral("CloseButtonDisabler"));
        window->setFlags((m_oldFlags | Qt::CustomizeWindowHint) & ~Qt::WindowCloseButtonHint);
        window->installEventFilter(this);
    }

    static QObject* of(const QWindow* window)
    {
        return window->findChild<QObject*>(QStringLiteral("CloseButtonDisabler"),
                                           Qt::FindDirectChildrenOnly);
    }

    static void enable(QWindow* window)
    {
        if (auto* disabler = static_cast<CloseButtonDisabler*>(of(window))) {
            window->setFlags(disabler->m_oldFlags);
            delete disabler;
        }
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::Close || !event->spontaneous())
            return QObject::eventFilter(watched, event);
        event->ignore();
        return true;
    }

private:
    const Qt::WindowFlags m_oldFlags;
};

} // namespace

void bringToModalPanelLevel(unsigned long long windowId)
{
    if (QWindow* window = x11Window(windowId))
        ModalPanelLevel::set(window);
}

void disableWindowAnimation(unsigned long long windowId)
{
    // Window managers here have no such animation that a window could turn off.
    (void)windowId;
}

void setCloseButtonEnabled(unsigned long long windowId, bool enable)
{
    QWindow* window = x11Window(windowId);
    if (!window)
        return;
    if (enable)
        CloseButtonDisabler::enable(window);
    else if (!CloseButtonDisabler::of(window))
        new CloseButtonDisabler(window);
    flushRequests(window);
}

} // namespace Platform
} // namespace VEK_NAMESPACE
