#pragma once

#include "UtilsDllGlobal.h"

#include <QString>

class QMenu;
class QWidget;

/// \file
/// What an application needs of its windows and of itself beyond Qt, under the names of the
/// product's home platform. Windows are named by QWidget::winId(). Zero, and a handle that names no
/// window of this process, do nothing and give false or 0; so does what a platform doesn't have.
/// Nothing here logs. GUI thread.

/// Told when a window has entered and left full screen. The application implements and owns it.
class UTILSDLL_EXPORT CWindowFullScreenModeSwitchHandler_Abstract
{
public:
    /// The window fills the screen now.
    virtual void onEnterFullScreen() = 0;
    /// The window has its former size again.
    virtual void onExitFullScreen() = 0;

protected:
    ~CWindowFullScreenModeSwitchHandler_Abstract() = default;
};

/// Minimises a window.
UTILSDLL_EXPORT void MacOSMinimizeWindow(unsigned long long winId);
/// Brings a minimised window back.
UTILSDLL_EXPORT void MacOSDeminituarize(unsigned long long winId);

/// Whether a window fills the screen.
UTILSDLL_EXPORT bool MacOSIsFullScreenMode(unsigned long long winId);
/// Makes a window fill the screen, or gives it its former size back. The system does so later.
UTILSDLL_EXPORT void MacOSToggleFullScreenMode(unsigned long long winId);

/// Lets the user switch a window to full screen, and tells \a handler, if there is one, of each
/// switch. Only one window of the process is observed: each call ends the observation before, even
/// if it names no window. Call MacOSOnFullScreenModeSwitchHandlerDeleted() before a handler goes
/// or is replaced.
UTILSDLL_EXPORT void MacOSSetFullscreenCapable(
    unsigned long long winId, CWindowFullScreenModeSwitchHandler_Abstract* handler);
/// Ends the observation; a handler that goes has to be told so beforehand.
UTILSDLL_EXPORT void MacOSOnFullScreenModeSwitchHandlerDeleted();

/// Enables or disables the close button of the title bar.
UTILSDLL_EXPORT void MacOSSetClosingWindowEnabled(unsigned long long winId, bool enabled);

/// Puts a window on the level of modal panels or on the normal one, and there in front of all
/// others.
UTILSDLL_EXPORT void MacOSBringToTop(unsigned long long winId, bool modal);
/// Puts a window on one of these levels, and there behind all others.
UTILSDLL_EXPORT void MacOSBringToBottom(unsigned long long winId, bool modal);

/// Lets the system's overview of windows manage this one, on systems of version 10.6 or later.
UTILSDLL_EXPORT void MacOSSetBehaviorForExpose(unsigned long long winId);

/// The number of the display that a window is on. \a ok is false for a window that isn't on any.
UTILSDLL_EXPORT unsigned int MacOSGetDisplayID(unsigned long long winId, bool& ok);

/// Whether a window comes up with the system's animation.
UTILSDLL_EXPORT void MacOSEnableWindowAnimation(QWidget const& widget, bool enabled);

/// Lets the widget's window float above others while the application is active, from the next
/// change of activation on. Call it again when the widget has got another window. Remove the widget
/// before it dies.
UTILSDLL_EXPORT void MacOSSetupNSApplicationNotificationResponder(QWidget const& widget);
/// Ends that; the window stays on the level that it has.
UTILSDLL_EXPORT void MacOSRemoveNSApplicationNotificationResponder(QWidget const& widget);

/// Enables or disables the top entries of the menu bar.
UTILSDLL_EXPORT void MacOSEnableMenuBar(bool enabled);
/// Leaves the system's own entries out of the Edit menu.
UTILSDLL_EXPORT void MacOSDeleteSpecialEditMenuItems();
/// Closes an open menu; null does nothing.
UTILSDLL_EXPORT void MacOSHideMenuWidget(QMenu* menu);
/// Ends the innermost modal dialog.
UTILSDLL_EXPORT void MacOSEndModalSession();
/// Hides or shows the mouse cursor; each hiding wants a showing of its own.
UTILSDLL_EXPORT void MacOSShowCursor(bool show);

/// Starts a program without any argument and doesn't wait for it. \a path is UTF-8.
UTILSDLL_EXPORT void MacOSLaunchApplication(char const* path);

/// Whether \a version, a text that begins with up to three numbers, is at least the given one. A
/// number that isn't there counts as -1.
///
/// The patch number also counts against a later major version if the minor numbers are
/// equal: 11.6.0 isn't at least 10.6.1. That is meant.
UTILSDLL_EXPORT bool auxMacOsIsOperatingSystemAtLeastVersion(QString const& version, long major,
                                                             long minor, long patch);
#ifdef __OBJC__ // where there is such a text
@class NSString;
UTILSDLL_EXPORT bool auxMacOsIsOperatingSystemAtLeastVersion(NSString* version, long major,
                                                             long minor, long patch);
#endif
