#include "WindowServices.h"

#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <QWidget>

#include <map>
#include <memory>

using namespace VEK_NAMESPACE;

namespace {

/// The one full-screen observer of the main window; may be null.
std::unique_ptr<Platform::Observer>& mainWindowObserver()
{
    static std::unique_ptr<Platform::Observer> g_pMainWindowDelegate;
    return g_pMainWindowDelegate;
}

using Responders = std::map<const QWidget*, std::unique_ptr<Platform::FloatingWhileActive>>;

Responders& responders()
{
    static Responders g_cNSAppNotificationResponderMap;
    return g_cNSAppNotificationResponderMap;
}

Platform::WindowLevel level(bool modal)
{
    return modal ? Platform::WindowLevel::ModalPanel : Platform::WindowLevel::Normal;
}

} // namespace

void MacOSMinimizeWindow(unsigned long long winId)
{
    if (winId)
        Platform::minimizeWindow(winId);
}

void MacOSDeminituarize(unsigned long long winId)
{
    if (winId)
        Platform::restoreMinimizedWindow(winId);
}

bool MacOSIsFullScreenMode(unsigned long long winId)
{
    return winId && Platform::isFullScreen(winId);
}

void MacOSToggleFullScreenMode(unsigned long long winId)
{
    if (winId)
        Platform::toggleFullScreen(winId);
}

void MacOSSetFullscreenCapable(unsigned long long winId,
                               CWindowFullScreenModeSwitchHandler_Abstract* handler)
{
    mainWindowObserver().reset();
    if (!winId || !Platform::isWindow(winId))
        return;

    Platform::allowFullScreen(winId);
    if (handler)
        mainWindowObserver() = Platform::observeFullScreen(winId, handler);
}

void MacOSOnFullScreenModeSwitchHandlerDeleted()
{
    if (mainWindowObserver())
        mainWindowObserver()->stop();
    mainWindowObserver().reset();
}

void MacOSSetClosingWindowEnabled(unsigned long long winId, bool enabled)
{
    if (winId)
        Platform::setCloseButtonEnabled(winId, enabled);
}

void MacOSBringToTop(unsigned long long winId, bool modal)
{
    if (!winId)
        return;
    Platform::setWindowLevel(winId, level(modal));
    Platform::orderWindowFront(winId);
}

void MacOSBringToBottom(unsigned long long winId, bool modal)
{
    if (!winId)
        return;
    Platform::setWindowLevel(winId, level(modal));
    Platform::orderWindowBack(winId);
}

void MacOSSetBehaviorForExpose(unsigned long long winId)
{
    if (winId && auxMacOsIsOperatingSystemAtLeastVersion(Platform::systemVersionText(), 10, 6, 0)) {
        Platform::setManagedInExpose(winId);
    }
}

unsigned int MacOSGetDisplayID(unsigned long long winId, bool& ok)
{
    const std::optional<unsigned> number =
        winId ? Platform::displayNumber(winId) : std::optional<unsigned>();
    ok = number.has_value();
    return number.value_or(0);
}

void MacOSEnableWindowAnimation(QWidget const& widget, bool enabled)
{
    if (const WId id = widget.winId())
        Platform::setWindowAnimationEnabled(id, enabled);
}

void MacOSSetupNSApplicationNotificationResponder(QWidget const& widget)
{
    const WId id = widget.winId();
    if (!id || !Platform::isWindow(id))
        return;

    auto& responder = responders()[&widget];
    if (responder)
        responder->setWindow(id);
    else
        responder = Platform::floatWhileActive(id);
}

void MacOSRemoveNSApplicationNotificationResponder(QWidget const& widget)
{
    responders().erase(&widget);
}

void MacOSEnableMenuBar(bool enabled)
{
    Platform::setMenuBarEnabled(enabled);
}

void MacOSDeleteSpecialEditMenuItems()
{
    Platform::removeSpecialEditMenuItems();
}

void MacOSHideMenuWidget(QMenu* menu)
{
    if (menu)
        Platform::cancelMenuTracking(*menu);
}

void MacOSEndModalSession()
{
    Platform::endModalSession();
}

void MacOSShowCursor(bool show)
{
    Platform::showCursor(show);
}

void MacOSLaunchApplication(char const* path)
{
    if (path)
        Platform::launch(path);
}

bool auxMacOsIsOperatingSystemAtLeastVersion(QString const& version, long major, long minor,
                                             long patch)
{
    const auto [a, b, c] = Platform::versionNumbers(version);
    if (a < major || (a == major && b < minor))
        return false;
    // Whether or not the major version is a later one: see the header.
    return c >= patch || b != minor;
}
