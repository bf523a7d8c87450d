#pragma once

#include "UtilsDllGlobal.h"

class QPoint;
class QWidget;

/// \file
/// What widgets and windows need beyond Qt. GUI thread. A native window handle is the value of
/// QWidget::winId().

namespace VEK_NAMESPACE {

/// Centres a top-level \a window by its frame on the screen of \a parent, or on the default screen
/// if that is null, and brings it in front of all others once pending events are served. Anything
/// that isn't a window fails an assertion and stays.
UTILSDLL_EXPORT void moveWindowToScreenCenter(QWidget* window, QWidget* parent);

/// Makes all grounds of the widget's palette transparent; texts stay.
UTILSDLL_EXPORT void setWidgetFullTransparency(QWidget* widget);

/// The highest logical resolution of the screens in dots per inch, at least 1, as it was at the
/// first call.
UTILSDLL_EXPORT double systemScalingFactor();

/// Enables or disables the close button in a window's title bar. An unknown handle is left alone.
UTILSDLL_EXPORT void enableWindowCloseButton(unsigned long long winId, bool enable);

/// Makes a widget recompute its hover state, for one that has changed under a mouse at rest. Inside
/// the widget the cursor is moved by a pixel and back.
UTILSDLL_EXPORT void flickHoverEvent(QWidget* widget);

/// Sends the widget a mouse move without buttons to a place on the screen.
UTILSDLL_EXPORT void synthesizeMouseEvent(QWidget* widget, const QPoint& globalPos);

} // namespace VEK_NAMESPACE
