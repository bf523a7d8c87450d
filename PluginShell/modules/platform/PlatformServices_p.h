#pragma once

#include "UtilsDllGlobal.h"

#include <QString>

/// The seam: everything that the library needs from an operating system. Each backend folder
/// implements all of it; an operation is a thin call and decides nothing.
namespace VEK_NAMESPACE {
namespace Platform {

/// The folder of the product's settings, with a separator at its end. It need not exist.
QString systemFolder();

// Windows, by the value of QWidget::winId(). An unknown window is left alone, and so is every
// window where the platform has no such thing.

/// Lifts a window to the level of modal panels and in front of all others. The level stays.
void bringToModalPanelLevel(unsigned long long windowId);

/// Lets a window come up without the system's animation.
void disableWindowAnimation(unsigned long long windowId);

/// Enables or disables the close button of a window's title bar.
void setCloseButtonEnabled(unsigned long long windowId, bool enable);

} // namespace Platform
} // namespace VEK_NAMESPACE
