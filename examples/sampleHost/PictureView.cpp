#include "PictureView.h"

#include "CorrectionJob.h"
#include "DelayedCall.h"
#include "GuiUtils.h"

#include <QPainter>
#include <QResizeEvent>

#include <cmath>

namespace {

constexpr int margin = 32;
constexpr double roughPixels = 600000.0;
constexpr int restMs = 120;

QImage scaledTo(const QImage& picture, const QSize& size)
{
    return size.width() < picture.width()
        ? picture.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
        : picture;
}

} // namespace

PictureView::PictureView(QWidget* parent)
    : QWidget(parent)
    , m_gridPattern(64, 1)
{
    m_gridPattern.fill(QColor(255, 255, 255, 110));
    setMinimumSize(320, 240);
    m_pool.setMaxThreadCount(1);
}

PictureView::~PictureView()
{
    stopRefining();
}

void PictureView::setPicture(const QImage& picture)
{
    m_picture = picture;
    copyForScreen();
    Q_EMIT pictureChanged();
    Q_EMIT frameChanged();
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

void PictureView::setCorrections(const Corrections& corrections)
{
    if (m_corrections == corrections) {
        // They may differ all the same, in what doesn't show.
        m_corrections = corrections;
        return;
    }
    m_corrections = corrections;
    correct();
    Q_EMIT correctionsChanged();
}

double PictureView::angle() const
{
    return m_corrections.horizon;
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
    return {860, 680};
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
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(target, m_shown, m_shown.rect());
    if (m_gridVisible)
        paintGrid(&painter);
}

void PictureView::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Q_EMIT frameChanged();
    // What is shown is stretched while the window is being resized, and made anew once that has
    // ended.
    CDelayedCall::invoke(100, this, "copyForScreen", true);
}

void PictureView::copyForScreen()
{
    if (m_picture.isNull())
        return;
    m_fineCopy = scaledTo(m_picture, (frame().size() * devicePixelRatioF()).toSize());
    const double pixels = double(m_fineCopy.width()) * m_fineCopy.height();
    const QSizeF rough = QSizeF(m_fineCopy.size()) * std::sqrt(roughPixels / pixels);
    m_roughCopy = scaledTo(m_fineCopy, rough.toSize().expandedTo(QSize(1, 1)));
    correct();
}

void PictureView::correct()
{
    if (m_picture.isNull())
        return;
    stopRefining();
    if (m_corrections.isIdentity()) {
        showCorrected(m_fineCopy);
        return;
    }
    showCorrected(correctPicture(m_roughCopy, m_corrections));
    if (m_roughCopy.size() != m_fineCopy.size())
        CDelayedCall::invoke(restMs, this, "refine", true);
}

void PictureView::refine()
{
    stopRefining();
    m_refining = std::make_unique<CorrectionJob>(m_fineCopy, m_corrections);
    m_refining->setAutoDelete(false);
    // A result that was under way when its job was stopped comes late.
    connect(m_refining.get(), &CorrectionJob::corrected, this,
            [this, refinement = m_refinement](const QImage& picture) {
                if (refinement == m_refinement)
                    showCorrected(picture);
            });
    m_pool.start(m_refining.get());
}

void PictureView::stopRefining()
{
    CDelayedCall::discard(this, "refine");
    ++m_refinement;
    if (!m_refining)
        return;
    m_refining->stop();
    m_pool.waitForDone();
    m_refining.reset();
}

void PictureView::showCorrected(const QImage& picture)
{
    m_shown = QPixmap::fromImage(picture);
    update();
}

QRectF PictureView::frame() const
{
    const QRectF room = QRectF(rect()).adjusted(margin, margin, -margin, -margin);
    QRectF target(QPointF(), QSizeF(m_picture.size()).scaled(room.size(), Qt::KeepAspectRatio));
    target.moveCenter(room.center());
    return target.toAlignedRect();
}

void PictureView::paintGrid(QPainter* painter) const
{
    const QRectF target = frame();
    for (int i = 1; i < m_gridSize; ++i) {
        const double x = qRound(target.left() + target.width() * i / m_gridSize);
        const double y = qRound(target.top() + target.height() * i / m_gridSize);
        drawToolLine({x, target.bottom()}, {x, target.top()}, m_gridPattern, false, painter,
                     target);
        drawToolLine({target.left(), y}, {target.right(), y}, m_gridPattern, false, painter,
                     target);
    }
}
