#include "SvgIcon_p.h"

#include "CommonConstants.h"

#include <QIconEngine>
#include <QImageReader>

namespace VEK_NAMESPACE {

namespace {

class SvgIconEngine : public QIconEngine
{
public:
    SvgIconEngine(const QString& fileName, const QSize& naturalSize)
        : m_icon(fileName)
        , m_naturalSize(naturalSize)
    {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        m_icon.paint(painter, rect, Qt::AlignCenter, mode, state);
    }

    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override
    {
        return m_icon.pixmap(size, mode, state);
    }

    QIconEngine* clone() const override { return new SvgIconEngine(*this); }

    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) const override
    {
        Q_UNUSED(mode)
        Q_UNUSED(state)
        return {m_naturalSize};
    }

private:
    QIcon m_icon;
    QSize m_naturalSize;
};

} // namespace

QIcon Private::svgIcon(const QString& fileName)
{
    const QSize naturalSize = QImageReader(fileName).size();
    return naturalSize.isEmpty() ? QIcon() : QIcon(new SvgIconEngine(fileName, naturalSize));
}

} // namespace VEK_NAMESPACE
