#pragma once

#include "Corrections.h"

#include <QIcon>
#include <QLineF>
#include <QPixmap>
#include <QRectF>
#include <QWidget>

#include <vector>

/// Lies over the picture and corrects it by hand. A line is laid along what ought to be level, and
/// the picture turns so that it is; grips at the edges turn the picture, those at the sides mend
/// its keystone, and those in the corners its distortion.
class CorrectionHandles : public QWidget
{
    Q_OBJECT

public:
    /// What a handle does.
    enum class Handle
    {
        None,
        LineStart,
        LineEnd,
        LineMiddle,
        TurnTop,
        TurnBottom,
        Left,
        Right,
        TopLeft,
        TopRight,
        BottomLeft,
        BottomRight
    };

    explicit CorrectionHandles(QWidget* parent = nullptr);

    /// Where the picture lies.
    void setFrame(const QRectF& frame);

    /// What a drag starts from.
    void setCorrections(const Corrections& corrections);

    /// Ends a drag where it is.
    void letGo();

    /// Where the middle of a handle is.
    QPointF position(Handle handle) const;

Q_SIGNALS:
    /// They may lie beyond what the controls allow.
    void correctionsDragged(const Corrections& corrections);
    void released();

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    QLineF line() const;
    Handle handleAt(const QPointF& position) const;
    void setHovered(Handle handle);
    void drag(const QPointF& position);
    void dragLine(const QPointF& position);
    void levelPicture();

    QRectF m_frame;
    QLineF m_line; ///< in parts of the frame
    Corrections m_corrections;
    const QPixmap m_pattern;
    const QIcon m_grip;
    const QIcon m_litGrip;
    Handle m_hovered = Handle::None;
    Handle m_dragged = Handle::None;
    QPointF m_pressedAt;
    QLineF m_pressedLine;
    Corrections m_pressedCorrections;
};
