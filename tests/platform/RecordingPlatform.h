#pragma once

#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <QStringList>

#include <functional>
#include <optional>
#include <set>

/// A backend for windows and activation that does nothing but write down what it is asked for, and
/// answers what it has been told to.
struct RecordingPlatform
{
    using WindowId = VEK_NAMESPACE::Platform::WindowId;

    /// The one that the seam's functions write to. A test begins by clearing it.
    static RecordingPlatform& instance();
    void clear() { *this = RecordingPlatform(); }

    /// Every request, as a line of the function's name and its arguments. Questions stand here only
    /// if they are about window 0, which nothing may ask for.
    QStringList calls;
    /// What has happened since the last time.
    QStringList takeCalls();

    std::set<WindowId> windows; ///< all that there are
    bool fullScreen = false;
    bool applicationActive = false;
    std::optional<unsigned> display;
    QString systemVersion;

    CWindowFullScreenModeSwitchHandler_Abstract* handler = nullptr; ///< the one passed last
    QWidget const* activatedWidget = nullptr; ///< the one passed last
    QMenu const* cancelledMenu = nullptr; ///< the one passed last
    std::function<void()> onActivation; ///< runs while the application is activated

    int observers = 0; ///< made since; each has its number from 1 on
};
