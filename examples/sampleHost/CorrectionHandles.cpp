#include "CorrectionHandles.h"

#include "GuiUtils.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

using Handle = CorrectionHandles::Handle;

constexpr int gripSize = 18;
constexpr double reach = 14.0; ///< how near to a handle the mouse takes it
constexpr double inset = 20.0; ///< of the handles at the edges

constexpr double pi = 3.14159265358979323846;

const QLineF levelLine(0.25, 0.5, 0.75, 0.5);

/// In the order in which they are found and painted.
constexpr Handle handles[] = {Handle::LineStart,  Handle::LineEnd,    Handle::LineMiddle,
                              Handle::TurnTop,    Handle::TurnBottom, Handle::Left,
                              Handle::Right,      Handle::TopLeft,    Handle::TopRight,
                              Handle::BottomLeft, Handle::BottomRight};

ToolCursorType cursorOf(Handle handle)
{
    switch (handle) {
    case Handle::LineStart:
    case Handle::LineEnd:
        return ToolCursorArrowVertical;
    case Handle::TurnTop:
        return ToolCursorRotationTop;
    case Handle::TurnBottom:
        return ToolCursorRotationBottom;
    case Handle::Left:
    case Handle::Right:
        return ToolCursorArrowHorizontal;
    case Handle::TopLeft:
    case Handle::BottomRight:
        return ToolCursorArrowDiagonalLeft;
    case Handle::TopRight:
    case Handle::BottomLeft:
        return ToolCursorArrowDiagonalRight;
    case Handle::LineMiddle:
    case Handle::None:
        break;
    }
    return ToolCursorArrowSquare;
}

double distance(const QPointF& a, const QPointF& b)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y());
}

/// Degrees, clockwise.
double directionFrom(const QPointF& centre, const QPointF& point)
{
    return std::atan2(point.y() - centre.y(), point.x() - centre.x()) * 180.0 / pi;
}

QPointF keptIn(const QRectF& rect, const QPointF& point)
{
    return {qBound(rect.left(), point.x(), rect.right()),
            qBound(rect.top(), point.y(), rect.bottom())};
}

/// The degrees, clockwise, by which a picture turns so that the line in it becomes level, or
/// upright if it is nearer to that.
double levellingTurn(const QLineF& line)
{
    return std::remainder(line.angle(), 90.0); // the line's angle is counter-clockwise
}

} // namespace

CorrectionHandles::CorrectionHandles(QWidget* parent)
    : QWidget(parent)
    , m_line(levelLine)
    , m_pattern(QStringLiteral(":/icons/perspective/line.png"))
    , m_grip(QStringLiteral(":/icons/perspective/handle_idle.svg"))
    , m_litGrip(QStringLiteral(":/icons/perspective/handle_hover.svg"))
{
    setMouseTracking(true);
}

void CorrectionHandles::setFrame(const QRectF& frame)
{
    m_frame = frame;
    update();
}

void CorrectionHandles::setCorrections(const Corrections& corrections)
{
    m_corrections = corrections;
}

void CorrectionHandles::letGo()
{
    if (m_dragged == Handle::None)
        return;
    if (m_dragged == Handle::LineStart || m_dragged == Handle::LineEnd)
        levelPicture();
    m_dragged = Handle::None;
    update();
    Q_EMIT released();
}

QPointF CorrectionHandles::position(Handle handle) const
{
    const QRectF edges = m_frame.adjusted(inset, inset, -inset, -inset);
    switch (handle) {
    case Handle::LineStart:
        return line().p1();
    case Handle::LineEnd:
        return line().p2();
    case Handle::LineMiddle:
        return line().pointAt(0.5);
    case Handle::TurnTop:
        return {edges.center().x(), edges.top()};
    case Handle::TurnBottom:
        return {edges.center().x(), edges.bottom()};
    case Handle::Left:
        return {edges.left(), edges.center().y()};
    case Handle::Right:
        return {edges.right(), edges.center().y()};
    case Handle::TopLeft:
        return edges.topLeft();
    case Handle::TopRight:
        return edges.topRight();
    case Handle::BottomLeft:
        return edges.bottomLeft();
    case Handle::BottomRight:
        return edges.bottomRight();
    case Handle::None:
        break;
    }
    return {};
}

void CorrectionHandles::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    drawToolLine(line().p1(), line().p2(), m_pattern, false, &painter, m_frame);

    const Handle lit = m_dragged == Handle::None ? m_hovered : m_dragged;
    for (const Handle handle : handles) {
        QRect grip(0, 0, gripSize, gripSize);
        grip.moveCenter(position(handle).toPoint());
        paintIcon(&painter, handle == lit ? m_litGrip : m_grip, grip, Qt::KeepAspectRatio,
                  QIcon::Normal, QIcon::Off);
    }
}

void CorrectionHandles::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_dragged = handleAt(event->localPos());
    m_pressedAt = event->localPos();
    m_pressedLine = line();
    m_pressedCorrections = m_corrections;
}

void CorrectionHandles::mouseMoveEvent(QMouseEvent* event)
{
    if (m_dragged == Handle::None)
        setHovered(handleAt(event->localPos()));
    else
        drag(event->localPos());
}

void CorrectionHandles::mouseReleaseEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || m_dragged == Handle::None)
        return;
    letGo();
    setHovered(handleAt(event->localPos()));
}

void CorrectionHandles::leaveEvent(QEvent* event)
{
    setHovered(Handle::None);
    QWidget::leaveEvent(event);
}

void CorrectionHandles::hideEvent(QHideEvent* event)
{
    letGo();
    QWidget::hideEvent(event);
}

QLineF CorrectionHandles::line() const
{
    const auto inFrame = [this](const QPointF& part) {
        return QPointF(m_frame.left() + part.x() * m_frame.width(),
                       m_frame.top() + part.y() * m_frame.height());
    };
    return {inFrame(m_line.p1()), inFrame(m_line.p2())};
}

Handle CorrectionHandles::handleAt(const QPointF& point) const
{
    const auto found = std::find_if(std::begin(handles), std::end(handles), [&](Handle handle) {
        return distance(position(handle), point) <= reach;
    });
    return found == std::end(handles) ? Handle::None : *found;
}

void CorrectionHandles::setHovered(Handle handle)
{
    if (m_hovered == handle)
        return;
    m_hovered = handle;
    if (handle == Handle::None)
        unsetCursor();
    else
        setCursor(QCursor(toolCursorPixmap(cursorOf(handle))));
    update();
}

void CorrectionHandles::drag(const QPointF& position)
{
    if (m_frame.isEmpty())
        return;
    const QPointF centre = m_frame.center();
    Corrections corrections = m_pressedCorrections;
    switch (m_dragged) {
    case Handle::LineStart:
    case Handle::LineEnd:
    case Handle::LineMiddle:
        dragLine(position);
        return;
    case Handle::TurnTop:
    case Handle::TurnBottom:
        corrections.horizon += std::remainder(
            directionFrom(centre, position) - directionFrom(centre, m_pressedAt), 360.0);
        break;
    case Handle::Left:
        corrections.keystone -= (position.x() - m_pressedAt.x()) * 2.0 / m_frame.width();
        break;
    case Handle::Right:
        corrections.keystone += (position.x() - m_pressedAt.x()) * 2.0 / m_frame.width();
        break;
    default:
        corrections.distortion += (distance(centre, position) - distance(centre, m_pressedAt)) * 2.0
            / distance(centre, m_frame.topLeft());
        break;
    }
    Q_EMIT correctionsDragged(corrections);
}

void CorrectionHandles::dragLine(const QPointF& position)
{
    QLineF moved = m_pressedLine;
    const QPointF way = position - m_pressedAt;
    if (m_dragged == Handle::LineStart)
        moved.setP1(keptIn(m_frame, moved.p1() + way));
    else if (m_dragged == Handle::LineEnd)
        moved.setP2(keptIn(m_frame, moved.p2() + way));
    else
        moved.translate(keptIn(m_frame, moved.pointAt(0.5) + way) - moved.pointAt(0.5));

    const auto part = [this](const QPointF& point) {
        return QPointF((point.x() - m_frame.left()) / m_frame.width(),
                       (point.y() - m_frame.top()) / m_frame.height());
    };
    m_line = {part(moved.p1()), part(moved.p2())};
    update();
}

void CorrectionHandles::levelPicture()
{
    const double turn = levellingTurn(line());
    m_line = levelLine;
    Corrections corrections = m_corrections;
    corrections.horizon += turn;
    Q_EMIT correctionsDragged(corrections);
}
