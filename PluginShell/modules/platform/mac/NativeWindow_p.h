#pragma once

#import "Cocoa_p.h"
#include "PlatformServices_p.h"

namespace VEK_NAMESPACE {
namespace Platform {

/// The window of a view, which is what a WId names here; nil for 0 and for a view in no window.
inline NSWindow* windowOf(WindowId view)
{
    return [reinterpret_cast<NSView*>(view) window]; // NOLINT(performance-no-int-to-ptr)
}

} // namespace Platform
} // namespace VEK_NAMESPACE
