#include "GuiUtils.h"

#include "CommonConstants.h"

#include <QLineF>
#include <QPaintEngine>
#include <QPainter>
#include <QPixmap>
#include <QRectF>
#include <QTransform>

#include <cmath>
#include <limits>
#include <utility>

namespace {

/// Brings the outer end of a line that has one end in \a bounds to the side that it crosses.
/// False if both ends lie outside.
bool clipLine(QPointF* p1, QPointF* p2, const QRectF& bounds)
{
    const bool firstInside = bounds.contains(*p1);
    const bool secondInside = bounds.contains(*p2);
    if (firstInside == secondInside)
        return firstInside;

    const QLineF sides[] = {{bounds.topLeft(), bounds.bottomLeft()},
                            {bounds.topLeft(), bounds.topRight()},
                            {bounds.topRight(), bounds.bottomRight()},
                            {bounds.bottomRight(), bounds.bottomLeft()}};
    const QLineF line(*p1, *p2);
    QPointF crossing;
    for (const QLineF& side : sides) {
        if (line.intersect(side, &crossing) == QLineF::BoundedIntersection) {
            *(firstInside ? p2 : p1) = crossing;
            break;
        }
    }
    return true;
}

/// To the left, or downwards: the pattern would stand on its head.
bool isUpsideDown(double angle)
{
    return angle > 135.0 && angle < 315.0;
}

bool isOblique(double angle)
{
    return std::fmod(angle / 90.0, 1.0) != 0.0;
}

/// Not so for what isn't a number and what no integer holds.
bool isDrawable(const QLineF& line)
{
    const auto fits = [](double value) {
        return std::abs(value) < double(std::numeric_limits<int>::max());
    };
    return fits(line.x1()) && fits(line.y1()) && fits(line.x2()) && fits(line.y2())
        && fits(line.length());
}

/// No picture has so many; what is recorded instead of painted, has to end as well.
constexpr int mostTiles = 1 << 16;

/// The x coordinates that the painter can show, or all if it doesn't paint pixels.
std::pair<double, double> shownRange(const QPainter& painter)
{
    constexpr double farthest = std::numeric_limits<int>::max();
    const QPaintEngine* engine = painter.paintEngine();
    if (!engine || engine->type() != QPaintEngine::Raster || !engine->paintDevice())
        return {0.0, farthest};
    const QRectF pixels(0.0, 0.0, engine->paintDevice()->width(), engine->paintDevice()->height());
    const QRectF shown = painter.deviceTransform().inverted().mapRect(pixels);
    return {shown.left(), shown.right()};
}

/// Draws \a pixmap again and again to the right of the origin, as far as it can be seen: a line may
/// be very long.
void drawTiles(QPainter* painter, const QPixmap& pixmap, int end)
{
    const int width = pixmap.width();
    const auto shown = shownRange(*painter);
    // One more at both sides, as a smoothed tile reaches beyond its edge.
    const int tiles = end / width;
    const double first = qBound(0.0, std::floor(shown.first / width) - 1.0, double(tiles));
    const double last = qBound(-1.0, shown.second + width, double(end)) / width;
    const int firstTile = int(first);
    const int lastTile = int(std::floor(last));
    for (int i = firstTile; i <= lastTile && i - firstTile < mostTiles; ++i)
        painter->drawPixmap(i * width, 0, pixmap);
}

} // namespace

void drawToolLine(QPointF const& from, QPointF const& to, QPixmap const& pixmap, bool stretch,
                  QPainter* painter, QRectF const& bounds)
{
    if (!painter || pixmap.isNull() || pixmap.width() < 1)
        return;

    QPointF p1 = from;
    QPointF p2 = to;
    const bool isBounded = bounds.width() > 0.0 && bounds.height() > 0.0;
    if (isBounded && !clipLine(&p1, &p2, bounds))
        return;
    if (isUpsideDown(QLineF(p1, p2).angle()))
        std::swap(p1, p2);

    const QLineF line(p1, p2);
    if (!isDrawable(line))
        return;
    const double angle = line.angle();
    if (isOblique(angle)) {
        // Lines along an axis aren't centred, which is meant.
        const QPointF upwards(0.0, -pixmap.height() * 0.5);
        p1 += upwards;
        p2 += upwards;
    }

    const QTransform savedTransform = painter->transform();
    const QPainter::RenderHints savedHints = painter->renderHints();
    QTransform transform;
    transform.translate(qRound(p1.x()), qRound(p1.y()));
    transform.rotate(-angle, Qt::ZAxis);
    painter->setTransform(transform, false);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);

    const int end = qRound(line.length());
    if (stretch) {
        painter->drawPixmap(QRect(0, 0, end, qRound(double(pixmap.height()))), pixmap,
                            pixmap.rect());
    } else {
        drawTiles(painter, pixmap, end);
    }

    painter->setTransform(savedTransform, false);
    painter->setRenderHints(savedHints, true); // leaves the hint of above set, which is meant
}

QList<QPointF> lineAndCircleIntersectionPoints(double x1, double y1, double x2, double y2,
                                               double cx, double cy, double radius)
{
    const double dx = x2 - x1;
    const double dy = y2 - y1;
    const double length = std::sqrt(dx * dx + dy * dy);
    if (!qIsFinite(length) || length <= 1e-12)
        return {};

    const double ux = dx / length;
    const double uy = dy / length;
    const auto pointAt = [=](double t) { return QPointF(x1 + t * ux, y1 + t * uy); };
    const double t = uy * (cy - y1) + ux * (cx - x1);
    const QPointF foot = pointAt(t);
    const double distance = std::hypot(foot.x() - cx, foot.y() - cy);

    if (radius > distance) {
        const double half = std::sqrt(radius * radius - distance * distance);
        if (!qIsFinite(half))
            return {};
        return {pointAt(t - half), pointAt(t + half)};
    }
    if (qFuzzyCompare(distance, radius))
        return {foot};
    return {};
}
