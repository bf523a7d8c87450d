#include "IconViewer.h"

#include "Assertions.h"
#include "CommonConstants.h"

#include <QApplication>
#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOption>

namespace {

bool hasArea(const QRectF& rect)
{
    return rect.width() > 0 && rect.height() > 0;
}

/// Each part rounded by itself, which QRectF::toRect() doesn't do.
QRect rounded(const QRectF& rect)
{
    return {qRound(rect.left()), qRound(rect.top()), qRound(rect.width()), qRound(rect.height())};
}

class IImageHolder
{
public:
    virtual ~IImageHolder() = default;

    virtual void paint(QPainter* painter, const QRectF& rect, bool bEnabled) = 0;
    virtual QSize size() const = 0;
    virtual QIcon iconProperty() const = 0;
    virtual QPixmap pixmapProperty() const = 0;
};

class CPixmapImageHolder : public IImageHolder
{
public:
    explicit CPixmapImageHolder(const QPixmap& pixmap)
        : m_pixmap(pixmap)
    {}

    void paint(QPainter* painter, const QRectF& rect, bool bEnabled) override;
    QSize size() const override { return m_pixmap.size(); }
    QIcon iconProperty() const override { return {}; }
    QPixmap pixmapProperty() const override { return m_pixmap; }

private:
    QPixmap m_pixmap;
    QPixmap m_disabledPixmap;
};

void CPixmapImageHolder::paint(QPainter* painter, const QRectF& rect, bool bEnabled)
{
    if (!painter || m_pixmap.isNull() || !hasArea(rect))
        return;

    if (!bEnabled && m_disabledPixmap.isNull()) {
        QStyleOption option(0, 0);
        option.palette = QGuiApplication::palette();
        m_disabledPixmap =
            QApplication::style()->generatedIconPixmap(QIcon::Disabled, m_pixmap, &option);
    }
    const QPixmap& pick = bEnabled ? m_pixmap : m_disabledPixmap;
    ASSERT(!pick.isNull());

    const QPainter::RenderHints hints = painter->renderHints();
    painter->setRenderHints(QPainter::SmoothPixmapTransform | QPainter::Antialiasing);
    painter->drawPixmap(rect, pick, QRectF(pick.rect()));
    // Only adds: the two hints are meant to stay on for the caption.
    painter->setRenderHints(hints, true);
}

class CIconImageHolder : public IImageHolder
{
public:
    explicit CIconImageHolder(const QIcon& icon)
        : m_icon(icon)
    {}

    void paint(QPainter* painter, const QRectF& rect, bool bEnabled) override;
    QSize size() const override;
    QIcon iconProperty() const override { return m_icon; }
    QPixmap pixmapProperty() const override { return {}; }

private:
    QIcon m_icon;
};

void CIconImageHolder::paint(QPainter* painter, const QRectF& rect, bool bEnabled)
{
    if (!painter || m_icon.isNull() || !hasArea(rect))
        return;

    m_icon.paint(painter, rounded(rect), Qt::AlignCenter,
                 bEnabled ? QIcon::Normal : QIcon::Disabled, QIcon::Off);
}

/// The result may be a size that the icon doesn't have.
QSize CIconImageHolder::size() const
{
    QSize greatest;
    const QList<QSize> sizes = m_icon.availableSizes(QIcon::Normal, QIcon::Off);
    for (const QSize& size : sizes)
        greatest = greatest.expandedTo(size);
    return greatest;
}

} // namespace

class CIconViewer::pimpl
{
public:
    /// The size that the picture counts as, without regard to the area. Not valid if there is none.
    QSize imageSize() const;
    QRectF outputImageRect(const QRectF& area) const;
    void paint(QPainter* painter, const QWidget* widget, const QRectF& area);

    bool showShadow = true;
    Qt::AspectRatioMode aspectRatio = Qt::KeepAspectRatio;
    QScopedPointer<IImageHolder> holder;
    QSize mandatoryImageSize;
    QString text;
    bool expandContent = false;
    Qt::Alignment align = Qt::AlignCenter;
};

QSize CIconViewer::pimpl::imageSize() const
{
    if (mandatoryImageSize.isValid())
        return mandatoryImageSize;
    return holder ? holder->size() : QSize();
}

QRectF CIconViewer::pimpl::outputImageRect(const QRectF& area) const
{
    if (!hasArea(area))
        return {};
    if (aspectRatio == Qt::IgnoreAspectRatio)
        return area;

    const QSize ownSize = imageSize();
    if (!ownSize.isValid())
        return {};
    QSizeF size = ownSize;
    if (expandContent || size.height() > area.height() || size.width() > area.width())
        size = size.scaled(area.size(), aspectRatio);

    // Left, top and bottom alignment are meant to stay at 0, not at the area's edge.
    QRectF result(QPointF(), size);
    if (align.testFlag(Qt::AlignVCenter))
        result.moveTop((area.height() - size.height()) * 0.5 + area.top());
    if (align.testFlag(Qt::AlignHCenter))
        result.moveLeft((area.width() - size.width()) * 0.5 + area.left());
    else if (align.testFlag(Qt::AlignRight))
        result.moveLeft(area.left() + area.width() - size.width());
    return result;
}

void CIconViewer::pimpl::paint(QPainter* painter, const QWidget* widget, const QRectF& area)
{
    if (!painter || !widget || !holder)
        return;
    const QRectF rect = outputImageRect(area);
    if (!hasArea(rect))
        return;

    holder->paint(painter, rect, widget->isEnabled());
    if (text.isEmpty())
        return;

    const QPen pen = painter->pen();
    painter->setPen(widget->palette().brush(QPalette::Current, QPalette::Text).color());
    painter->drawText(rect, Qt::AlignCenter, text);
    painter->setPen(pen);
}

CIconViewer::CIconViewer(QWidget* parent)
    : QWidget(parent)
    , m_pimpl(new pimpl)
{
    if (parent)
        parent->installEventFilter(this);
}

CIconViewer::~CIconViewer() = default;

bool CIconViewer::isEmpty() const
{
    return !m_pimpl->holder;
}

QPixmap CIconViewer::pixmap() const
{
    return m_pimpl->holder ? m_pimpl->holder->pixmapProperty() : QPixmap();
}

QIcon CIconViewer::icon() const
{
    return m_pimpl->holder ? m_pimpl->holder->iconProperty() : QIcon();
}

bool CIconViewer::contentIsExpanded() const
{
    return m_pimpl->expandContent;
}

bool CIconViewer::showShadow() const
{
    return m_pimpl->showShadow;
}

Qt::AspectRatioMode CIconViewer::aspectRatio() const
{
    return m_pimpl->aspectRatio;
}

QSize CIconViewer::mandatoryImageSize() const
{
    return m_pimpl->mandatoryImageSize;
}

QString CIconViewer::text() const
{
    return m_pimpl->text;
}

QSize CIconViewer::contentSize() const
{
    return m_pimpl->holder ? m_pimpl->holder->size() : QSize();
}

QRect CIconViewer::outputRect() const
{
    return rounded(m_pimpl->outputImageRect(viewportRect()));
}

QRect CIconViewer::viewportRect() const
{
    return contentsRect();
}

void CIconViewer::setAlign(Qt::Alignment align)
{
    if (m_pimpl->align == align)
        return;

    m_pimpl->align = align;
    update();
}

QSize CIconViewer::minimumSizeHint() const
{
    const QSize imageSize = m_pimpl->imageSize();
    const QMargins margins = contentsMargins();
    return (imageSize.isValid() ? imageSize : QSize(100, 100))
        + QSize(margins.left() + margins.right(), margins.top() + margins.bottom());
}

QSize CIconViewer::sizeHint() const
{
    return minimumSizeHint();
}

/// The hook that the parent's paint events go through while showShadow is on.
bool CIconViewer::eventFilter(QObject* watched, QEvent* e)
{
    if (e && m_pimpl->showShadow && e->type() == QEvent::Paint && watched == parentWidget()
        && hasArea(m_pimpl->outputImageRect(viewportRect()))) {
        // The parent paints first, and again when the event goes on to it: that is meant.
        watched->removeEventFilter(this);
        QCoreApplication::sendEvent(watched, e);
        watched->installEventFilter(this);
    }
    return QObject::eventFilter(watched, e);
}

void CIconViewer::clear()
{
    if (!m_pimpl->holder)
        return;

    // No update: the picture is meant to stay on the screen until the next repaint.
    m_pimpl->holder.reset();
    updateGeometry();
}

void CIconViewer::setShowShadow(bool bSet)
{
    if (m_pimpl->showShadow == bSet)
        return;

    m_pimpl->showShadow = bSet;
    QWidget* const parent = parentWidget();
    if (!parent)
        return;
    if (bSet)
        parent->installEventFilter(this);
    else
        parent->removeEventFilter(this);
    parent->update();
}

void CIconViewer::setAspectRatio(Qt::AspectRatioMode t)
{
    if (m_pimpl->aspectRatio == t)
        return;

    m_pimpl->aspectRatio = t;
    update();
}

void CIconViewer::setIcon(const QIcon& i)
{
    m_pimpl->holder.reset(i.isNull() ? nullptr : new CIconImageHolder(i));
    updateGeometry();
    update();
}

void CIconViewer::setIcon(const QString& strFile)
{
    // A QIcon isn't null only because its file can't be read.
    const QIcon icon(strFile);
    const bool isReadable =
        !icon.availableSizes().isEmpty() || !icon.pixmap(QSize(16, 16)).isNull();
    setIcon(isReadable ? icon : QIcon());
}

void CIconViewer::setPixmap(const QPixmap& p)
{
    m_pimpl->holder.reset(p.isNull() ? nullptr : new CPixmapImageHolder(p));
    updateGeometry();
    update();
}

void CIconViewer::setPixmap(const QString& strFile)
{
    setPixmap(QPixmap(strFile));
}

void CIconViewer::setMandatoryImageSize(const QSize& s)
{
    if (m_pimpl->mandatoryImageSize == s)
        return;

    m_pimpl->mandatoryImageSize = s;
    updateGeometry();
    update();
}

void CIconViewer::setText(const QString& s)
{
    if (m_pimpl->text == s)
        return;

    m_pimpl->text = s;
    update();
}

void CIconViewer::setExpandContent(bool bSet)
{
    if (m_pimpl->expandContent == bSet)
        return;

    m_pimpl->expandContent = bSet;
    update();
}

bool CIconViewer::event(QEvent* e)
{
    // While the parent changes, parentWidget() is still the old one before and the new one after.
    if (m_pimpl->showShadow && e->type() == QEvent::ParentAboutToChange && parentWidget())
        parentWidget()->removeEventFilter(this);

    const bool recognized = QWidget::event(e);

    if (m_pimpl->showShadow && e->type() == QEvent::ParentChange && parentWidget())
        parentWidget()->installEventFilter(this);
    return recognized;
}

void CIconViewer::paintEvent(QPaintEvent* e)
{
    QWidget::paintEvent(e);

    QPainter painter(this);
    m_pimpl->paint(&painter, this, QRectF(viewportRect()));
}
