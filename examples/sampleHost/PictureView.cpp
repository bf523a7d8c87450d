#include "PictureView.h"

#include "DelayedCall.h"

#include <QPainter>
#include <QResizeEvent>
#include <QtMath>

namespace {

constexpr int margin = 24;

/// How far a frame of \a size has to be enlarged to cover itself when it is turned.
double coveringScale(const QSizeF& size, double degrees)
{
    const double turn = qAbs(qDegreesToRadians(degrees));
    const double aspect = qMax(size.width() / size.height(), size.height() / size.width());
    return qCos(turn) + aspect * qSin(turn);
}

} // namespace

PictureView::PictureView(QWidget* parent)
    : QWidget(parent)
{
    setMinimumSize(320, 240);
}

void PictureView::setPicture(const QImage& picture)
{
    m_picture = picture;
    renderPreview();
    Q_EMIT pictureChanged();
}

int PictureView::pictureWidth() const
{
    return m_picture.width();
}

int PictureView::pictureHeight() const
{
    return m_picture.height();
}

void PictureView::setPlaceholder(const QString& text)
{
    m_placeholder = text;
    update();
}

double PictureView::angle() const
{
    return m_angle;
}

void PictureView::setAngle(double degrees)
{
    if (qFuzzyCompare(m_angle + 1.0, degrees + 1.0))
        return;
    m_angle = degrees;
    update();
    Q_EMIT angleChanged(m_angle);
}

bool PictureView::isGridVisible() const
{
    return m_gridVisible;
}

void PictureView::setGridVisible(bool visible)
{
    if (m_gridVisible == visible)
        return;
    m_gridVisible = visible;
    update();
    Q_EMIT gridVisibleChanged(m_gridVisible);
}

void PictureView::setGridSize(int fields)
{
    m_gridSize = qMax(1, fields);
    update();
}

QSize PictureView::sizeHint() const
{
    return {760, 640};
}

void PictureView::paintEvent(QPaintEvent* event)
{
    Q_UNUSED(event)
    QPainter painter(this);
    if (m_picture.isNull()) {
        painter.drawText(rect(), Qt::AlignCenter, m_placeholder);
        return;
    }
    const QRectF target = frame();
    painter.setClipRect(target);
    paintPicture(painter, target);
    if (m_gridVisible)
        paintGrid(painter, target);
}

void PictureView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    // The preview is stretched while the window is being resized, and made anew once that has
    // ended.
    CDelayedCall::invoke(100, this, "renderPreview", true);
}

void PictureView::renderPreview()
{
    if (!m_picture.isNull()) {
        const QSize size = (frame().size() * devicePixelRatioF()).toSize();
        m_preview = QPixmap::fromImage(
            m_picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
    }
    update();
}

QRectF PictureView::frame() const
{
    const QRectF room = QRectF(rect()).adjusted(margin, margin, -margin, -margin);
    QRectF target(QPointF(), QSizeF(m_picture.size()).scaled(room.size(), Qt::KeepAspectRatio));
    target.moveCenter(room.center());
    return target.toAlignedRect();
}

void PictureView::paintPicture(QPainter& painter, const QRectF& target) const
{
    const double scale = coveringScale(target.size(), m_angle);
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.translate(target.center());
    painter.rotate(m_angle);
    painter.scale(scale, scale);
    painter.translate(-target.center());
    painter.drawPixmap(target, m_preview, m_preview.rect());
    painter.restore();
}

void PictureView::paintGrid(QPainter& painter, const QRectF& target) const
{
    painter.setPen(QPen(QColor(255, 255, 255, 110), 1.0));
    for (int i = 1; i < m_gridSize; ++i) {
        const double x = qRound(target.left() + target.width() * i / m_gridSize) + 0.5;
        const double y = qRound(target.top() + target.height() * i / m_gridSize) + 0.5;
        painter.drawLine(QPointF(x, target.top()), QPointF(x, target.bottom()));
        painter.drawLine(QPointF(target.left(), y), QPointF(target.right(), y));
    }
}
