#pragma once

#include "UtilsDllGlobal.h"

#include <QIcon>
#include <QPixmap>
#include <QRect>
#include <QScopedPointer>
#include <QSize>
#include <QString>
#include <QWidget>

// clazy:excludeall=qproperty-without-notify

/// Shows one picture, a pixmap or an icon, and a caption over it.
///
/// A picture greater than viewportRect() is fitted into it by the aspect ratio mode, a smaller one
/// keeps its size unless the content is expanded; then it is placed by the alignment, which is
/// centred at first. All sizes are in logical pixels. Setting one kind of picture replaces the
/// other, whose property then reads as null; a null value or an unreadable file empties the viewer
/// without a message. An empty viewer paints nothing, not even the caption.
///
/// The size of an icon is the greatest width and the greatest height that it has, each by itself.
/// An icon without sizes of its own, such as one from an SVG file, needs a mandatory image size.
///
/// A disabled viewer shows the disabled form, which for a pixmap the application's style makes on
/// first need. GUI thread.
class UTILSDLL_EXPORT CIconViewer : public QWidget
{
    Q_OBJECT
    /// The picture, if it is a pixmap.
    Q_PROPERTY(QPixmap pixmap READ pixmap WRITE setPixmap)
    /// The picture, if it is an icon.
    Q_PROPERTY(QIcon icon READ icon WRITE setIcon)
    /// Whether a small picture is enlarged; not at first.
    Q_PROPERTY(bool expandContent READ contentIsExpanded WRITE setExpandContent)
    /// Whether the parent is painted twice; at first it is.
    Q_PROPERTY(bool showShadow READ showShadow WRITE setShowShadow)
    /// How a picture is fitted; Qt::KeepAspectRatio at first.
    Q_PROPERTY(Qt::AspectRatioMode aspectRatio READ aspectRatio WRITE setAspectRatio)
    /// The size that the picture counts as, in logical pixels; none at first.
    Q_PROPERTY(QSize mandatoryImageSize READ mandatoryImageSize WRITE setMandatoryImageSize)
    /// The caption, one line or several.
    Q_PROPERTY(QString text READ text WRITE setText)

public:
    /// An empty viewer. It filters the events of its parent while showShadow() is on.
    explicit CIconViewer(QWidget* parent = nullptr);
    ~CIconViewer() override;

    /// Whether there is no picture.
    bool isEmpty() const;

    /// The pixmap; null if the picture is an icon or there is none.
    QPixmap pixmap() const;

    /// The icon; null if the picture is a pixmap or there is none.
    QIcon icon() const;

    /// See setExpandContent().
    bool contentIsExpanded() const;

    /// See setShowShadow().
    bool showShadow() const;

    /// See setAspectRatio().
    Qt::AspectRatioMode aspectRatio() const;

    /// See setMandatoryImageSize(); (-1, -1) if there is none.
    QSize mandatoryImageSize() const;

    /// The caption.
    QString text() const;

    /// The picture's own size; (-1, -1) if there is none.
    QSize contentSize() const;

    /// Where the picture lies, in whole pixels; a null rectangle if it has no size.
    QRect outputRect() const;

    /// The area for the picture, here contentsRect(). A subclass can narrow it.
    virtual QRect viewportRect() const;

    /// Only Qt::AlignVCenter, Qt::AlignHCenter and Qt::AlignRight place the picture within the
    /// area. Every other alignment leaves it at the widget's edge, on a margin.
    void setAlign(Qt::Alignment align);

    /// The mandatory image size or the picture's own, else 100 by 100, and the contents margins.
    QSize minimumSizeHint() const override;

    /// The same.
    QSize sizeHint() const override;

    /// Paints the parent once more for each of its paint events, as setShowShadow() tells.
    bool eventFilter(QObject* watched, QEvent* e) override;

public Q_SLOTS:
    /// Takes the picture away, not the caption. The screen keeps it until the next repaint.
    void clear();

    /// Whether a viewer with something to place has its parent painted twice at each paint event,
    /// the first time as a hook for subclasses. On at first; nothing is drawn by it here.
    void setShowShadow(bool bSet);

    /// With Qt::IgnoreAspectRatio the picture fills the area, whatever else is set.
    void setAspectRatio(Qt::AspectRatioMode t);

    /// Shows an icon: its normal or disabled form, in the state off.
    void setIcon(const QIcon& i);
    /// Shows the icon of a file or resource.
    void setIcon(const QString& strFile);

    /// Shows a pixmap, smoothed where it is scaled.
    void setPixmap(const QPixmap& p);
    /// Shows the pixmap of a file or resource.
    void setPixmap(const QString& strFile);

    /// A size that takes the place of the picture's own; one with a negative part is none.
    void setMandatoryImageSize(const QSize& s = QSize());

    /// Sets the caption, drawn in the middle of the picture with the palette's text colour.
    void setText(const QString& s = QString());

    /// Whether a picture smaller than the area is enlarged to fill it.
    void setExpandContent(bool bSet);

protected:
    /// Takes the filter along when the viewer gets another parent.
    bool event(QEvent* e) override;

    /// Paints the picture, and the caption over it.
    void paintEvent(QPaintEvent* e) override;

private:
    class Q_DECL_HIDDEN pimpl;

    Q_DISABLE_COPY(CIconViewer)

    QScopedPointer<pimpl> m_pimpl;
};
