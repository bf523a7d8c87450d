#pragma once

#include "UtilsDllGlobal.h"

#include <QIcon>
#include <QList>
#include <QPixmap>
#include <QPointF>

class QPainter;
class QPoint;
class QRect;
class QRectF;
class QWidget;

/// \file
/// What widgets and windows need beyond Qt, and what tools draw over a picture. GUI thread. A
/// native window handle is the value of QWidget::winId().

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

/// Makes the style sheets take a changed dynamic property of the widget into account.
UTILSDLL_EXPORT void reapplyWidgetQss(QWidget& widget);

} // namespace VEK_NAMESPACE

/// The cursors that tools show on their handles.
enum ToolCursorType
{
    ToolCursorArrowDiagonalLeft, ///< from the upper left to the lower right
    ToolCursorArrowDiagonalRight, ///< from the lower left to the upper right
    ToolCursorArrowHorizontal, ///< to the left and the right
    ToolCursorArrowSquare, ///< in all four directions
    ToolCursorArrowVertical, ///< up and down
    ToolCursorRotationTop, ///< round, for a handle above what turns
    ToolCursorRotationBottom ///< round, for a handle below what turns
};

/// The cursor's image, 23 by 24 pixels. Any other value fails an assertion and gives a null pixmap.
UTILSDLL_EXPORT QPixmap toolCursorPixmap(ToolCursorType type);

/// Draws a guide line with \a pixmap as its pattern, repeated, or stretched to the line's length.
/// The pattern runs from left to right, and upwards in a vertical line. The last repetition may go
/// past the end. The pattern lies below the line, or to the right of a vertical one; an oblique
/// line is moved up by half the pixmap's height.
///
/// Coordinates are those of the painter's device, its transformation is left aside and given back.
/// With \a bounds of a positive size nothing is drawn if both ends lie outside, and an end that
/// lies outside alone is brought to their edge. SmoothPixmapTransform is set afterwards.
UTILSDLL_EXPORT void drawToolLine(QPointF const& from, QPointF const& to, QPixmap const& pixmap,
                                  bool stretch, QPainter* painter, QRectF const& bounds);

/// The points, none to two, where the infinite line through (x1, y1) and (x2, y2) meets the circle
/// about (cx, cy), in the direction of the line. None for a line without a direction.
UTILSDLL_EXPORT QList<QPointF> lineAndCircleIntersectionPoints(double x1, double y1, double x2,
                                                               double y2, double cx, double cy,
                                                               double radius);

/// Paints an icon in the middle of \a rect, at the size that \a mode gives to its largest size
/// there. Beyond \a rect nothing is clipped.
UTILSDLL_EXPORT void paintIcon(QPainter* painter, QIcon const& icon, QRect const& rect,
                               Qt::AspectRatioMode mode, QIcon::Mode iconMode,
                               QIcon::State iconState);

/// The largest width and the largest height among the icon's sizes, each by itself; (0, 0) for an
/// icon without sizes, as those of SVG files are.
UTILSDLL_EXPORT QSize sizeOfIcon(QIcon const& icon, QIcon::Mode mode, QIcon::State state);
