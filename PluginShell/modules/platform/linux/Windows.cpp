#include "CommonConstants.h"
#include "PlatformServices_p.h"
#include "WindowServices.h"

#include <KWindowInfo>
#include <KWindowSystem>
#include <KX11Extras>

#include <QAbstractNativeEventFilter>
#include <QEvent>
#include <QGuiApplication>
#include <QPointer>
#include <QScreen>
#include <QWidget>
#include <QWindow>

#include <xcb/xproto.h>

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

QWidget* findTopLevel(WindowId id)
{
    const QWidget* widget = QWidget::find(WId(id));
    return widget && widget->window()->windowHandle() ? widget->window() : nullptr;
}

/// The top-level window of a handle of this process, or null where windows aren't those of X11:
/// elsewhere the requests below would only print warnings.
QWindow* findX11Window(WindowId id)
{
    if (!KWindowSystem::isPlatformX11())
        return nullptr;
    const QWidget* widget = findTopLevel(id);
    return widget ? widget->windowHandle() : nullptr;
}

/// Requests to the window manager otherwise stay in the connection's buffer.
void flushRequests(const QWindow* window)
{
    (void)KWindowInfo(window->winId(), NET::WMState).valid();
}

template <typename T>
T* childOf(const QWindow* window)
{
    for (QObject* child : window->children()) {
        if (auto* found = dynamic_cast<T*>(child))
            return found;
    }
    return nullptr;
}

/// Keeps a window in front of all others. A window manager doesn't listen before it has taken the
/// window over, and forgets the state of a window that is hidden, so it is told each time that it
/// takes the window.
class RaisedLevel : public QObject, public QAbstractNativeEventFilter
{
public:
    explicit RaisedLevel(QWindow* window)
        : QObject(window)
        , m_waits(!window->isExposed())
    {
        connect(KX11Extras::self(), &KX11Extras::windowAdded, this, [window](WId id) {
            if (window->handle() && id == window->winId())
                request(window);
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
            request(window);
        }
        return QObject::eventFilter(watched, event);
    }

    /// New flags take the state away, as soon as the window manager gets to it.
    void restoreAfterFlags()
    {
        request(window());
        qApp->installNativeEventFilter(this);
    }

    bool nativeEventFilter(const QByteArray& type, void* message, long*) override
    {
        if (type != "xcb_generic_event_t" || !window()->handle())
            return false;
        const auto* event = static_cast<const xcb_property_notify_event_t*>(message);
        const WId id = window()->winId();
        if ((event->response_type & 0x7f) == XCB_PROPERTY_NOTIFY && event->window == id
            && !KWindowInfo(id, NET::WMState).hasState(NET::KeepAbove)) {
            qApp->removeNativeEventFilter(this);
            request(window());
        }
        return false;
    }

    static void request(const QWindow* window)
    {
        KWindowSystem::clearState(window->winId(), NET::KeepBelow);
        KWindowSystem::setState(window->winId(), NET::KeepAbove);
        flushRequests(window);
    }

private:
    const QWindow* window() const { return static_cast<const QWindow*>(parent()); }

    bool m_waits; ///< until the window manager has shown the window
};

/// Takes the close button away as long as it lives. The hint is all that the window manager is
/// told, and some don't heed it, so a close request from there is swallowed too.
class CloseButtonDisabler : public QObject
{
public:
    explicit CloseButtonDisabler(QWindow* window)
        : QObject(window)
        , m_ownFlags(window->flags() & closeFlags)
    {
        window->installEventFilter(this);
    }

    /// Again, too, as the program may have set flags of its own meanwhile.
    static void takeButton(QWindow* window)
    {
        window->setFlags((window->flags() | Qt::CustomizeWindowHint) & ~Qt::WindowCloseButtonHint);
    }

    void giveButtonBack(QWindow* window) const
    {
        window->setFlags((window->flags() & ~closeFlags) | m_ownFlags);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() != QEvent::Close || !event->spontaneous())
            return QObject::eventFilter(watched, event);
        event->ignore();
        return true;
    }

private:
    static constexpr Qt::WindowFlags closeFlags{Qt::CustomizeWindowHint
                                                | Qt::WindowCloseButtonHint};

    const Qt::WindowFlags m_ownFlags;
};

/// Several events tell of one switch, so what counts is how the window was before.
class FullScreenObserver : public QObject, public Observer
{
public:
    FullScreenObserver(QWidget* window, CWindowFullScreenModeSwitchHandler_Abstract* handler)
        : m_window(window)
        , m_handler(handler)
        , m_fullScreen(window->isFullScreen())
    {
        window->installEventFilter(this);
    }

    void stop() override
    {
        if (m_window)
            m_window->removeEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::WindowStateChange
            && m_window->isFullScreen() != m_fullScreen) {
            m_fullScreen = !m_fullScreen;
            if (m_fullScreen)
                m_handler->onEnterFullScreen();
            else
                m_handler->onExitFullScreen();
            return false; // either may have ended this observer
        }
        return QObject::eventFilter(watched, event);
    }

private:
    const QPointer<QWidget> m_window;
    CWindowFullScreenModeSwitchHandler_Abstract* const m_handler;
    bool m_fullScreen;
};

} // namespace

bool isWindow(WindowId id)
{
    return findTopLevel(id);
}

void minimizeWindow(WindowId id)
{
    QWidget* window = findTopLevel(id);
    if (!window)
        return;
    if (!KWindowSystem::isPlatformX11()) {
        window->setWindowState(window->windowState() | Qt::WindowMinimized);
        return;
    }
    KX11Extras::minimizeWindow(window->windowHandle()->winId());
    flushRequests(window->windowHandle());
}

void restoreMinimizedWindow(WindowId id)
{
    QWidget* window = findTopLevel(id);
    if (!window || !window->isVisible()) // the request would map a hidden window
        return;
    if (!KWindowSystem::isPlatformX11()) {
        window->setWindowState(window->windowState() & ~Qt::WindowMinimized);
        return;
    }
    KX11Extras::unminimizeWindow(window->windowHandle()->winId());
    flushRequests(window->windowHandle());
}

bool isFullScreen(WindowId id)
{
    const QWidget* window = findTopLevel(id);
    return window && window->isFullScreen();
}

void toggleFullScreen(WindowId id)
{
    if (QWidget* window = findTopLevel(id))
        window->setWindowState(window->windowState() ^ Qt::WindowFullScreen);
}

void allowFullScreen(WindowId id)
{
    // Every window may be switched to full screen here.
    (void)id;
}

std::unique_ptr<Observer> observeFullScreen(WindowId id,
                                            CWindowFullScreenModeSwitchHandler_Abstract* handler)
{
    QWidget* window = findTopLevel(id);
    if (!window)
        return nullptr;
    return std::make_unique<FullScreenObserver>(window, handler);
}

void setWindowLevel(WindowId id, WindowLevel level)
{
    QWindow* window = findX11Window(id);
    if (!window)
        return;
    // Window managers know one level above the normal one.
    if (level != WindowLevel::Normal) {
        if (!childOf<RaisedLevel>(window))
            new RaisedLevel(window);
        RaisedLevel::request(window);
        return;
    }
    delete childOf<RaisedLevel>(window);
    KWindowSystem::clearState(window->winId(), NET::KeepAbove | NET::KeepBelow);
    flushRequests(window);
}

void orderWindowFront(WindowId id)
{
    if (QWindow* window = findX11Window(id)) {
        window->raise();
        flushRequests(window);
    }
}

void orderWindowBack(WindowId id)
{
    if (QWindow* window = findX11Window(id)) {
        window->lower();
        flushRequests(window);
    }
}

void setCloseButtonEnabled(WindowId id, bool enable)
{
    QWindow* window = findX11Window(id);
    if (!window)
        return;
    const auto* disabler = childOf<CloseButtonDisabler>(window);
    if (enable && !disabler)
        return;
    if (enable) {
        disabler->giveButtonBack(window);
        delete disabler;
    } else {
        if (!disabler)
            new CloseButtonDisabler(window);
        CloseButtonDisabler::takeButton(window);
    }
    if (auto* level = childOf<RaisedLevel>(window))
        level->restoreAfterFlags();
    flushRequests(window);
}

void setWindowAnimationEnabled(WindowId id, bool enable)
{
    // Window managers here have no such animation that a window could turn off.
    (void)id;
    (void)enable;
}

void setManagedInExpose(WindowId id)
{
    // Overviews show every window here.
    (void)id;
}

std::optional<unsigned> displayNumber(WindowId id)
{
    const QWindow* window = findX11Window(id);
    if (!window || !window->isVisible())
        return std::nullopt;
    const QScreen* screen = window->screen();
    if (!screen || !screen->geometry().intersects(window->geometry()))
        return std::nullopt;
    return unsigned(QGuiApplication::screens().indexOf(const_cast<QScreen*>(screen)) + 1);
}

} // namespace Platform
} // namespace VEK_NAMESPACE
