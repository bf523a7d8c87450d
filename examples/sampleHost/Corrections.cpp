#include "Corrections.h"

#if QT_VERSION >= QT_VERSION_CHECK(5, 14, 0)
#include <QColorSpace>
#endif
#include <QThread>
#include <QtMath>

#include <algorithm>
#include <array>
#include <atomic>
#include <cmath>
#include <limits>
#include <thread>
#include <vector>

namespace {

/// By how much of the distance from the centre a corner moves at full distortion. Below 4/27 every
/// point of the picture still has its place in the corrected one.
constexpr double fullDistortion = 0.12;

/// By how much the scale changes over half a diagonal at full keystone.
constexpr double fullKeystone = 0.35;

constexpr int bandHeight = 16;

/// Wider kernels cost more than they show.
constexpr double greatestMinification = 8.0;

/// Where the points of a corrected picture come from. Coordinates are about the centre, in half
/// diagonals.
class Geometry
{
public:
    explicit Geometry(const Corrections& corrections)
        : m_cos(std::cos(qDegreesToRadians(corrections.horizon)))
        , m_sin(std::sin(qDegreesToRadians(corrections.horizon)))
        , m_perspective(-fullKeystone * corrections.keystone)
        , m_radial(-fullDistortion * corrections.distortion)
    {}

    void toSource(double x, double y, double& sourceX, double& sourceY) const
    {
        const double depth = 1.0 / (1.0 + m_perspective * y);
        const double turnedX = (x * m_cos + y * m_sin) * depth;
        const double turnedY = (y * m_cos - x * m_sin) * depth;
        const double radius2 = turnedX * turnedX + turnedY * turnedY;
        const double stretch = 1.0 + m_radial * radius2;
        sourceX = turnedX * stretch;
        sourceY = turnedY * stretch;
    }

    QPointF fromSource(const QPointF& source) const
    {
        const double sourceRadius = std::hypot(source.x(), source.y());
        double radius = sourceRadius;
        for (int i = 0; i < 30; ++i) {
            const double radius2 = radius * radius;
            radius -= (radius * (1.0 + m_radial * radius2) - sourceRadius)
                / (1.0 + 3.0 * m_radial * radius2);
        }
        const QPointF lens = sourceRadius > 0.0 ? source * (radius / sourceRadius) : source;
        const QPointF turned(lens.x() * m_cos - lens.y() * m_sin,
                             lens.x() * m_sin + lens.y() * m_cos);
        return turned / (1.0 - m_perspective * turned.y());
    }

private:
    double m_cos;
    double m_sin;
    double m_perspective;
    double m_radial;
};

/// The least value of \a function between \a low and \a high.
template <typename Function>
double leastValue(Function function, double low, double high)
{
    constexpr int steps = 128;
    const auto at = [&](int i) { return low + (high - low) * i / steps; };
    int best = 0;
    double least = function(low);
    for (int i = 1; i <= steps; ++i) {
        const double value = function(at(i));
        if (value < least) {
            least = value;
            best = i;
        }
    }

    double left = at(qMax(0, best - 1));
    double right = at(qMin(steps, best + 1));
    for (int i = 0; i < 60; ++i) {
        const double a = left + (right - left) / 3.0;
        const double b = right - (right - left) / 3.0;
        if (function(a) < function(b))
            right = b;
        else
            left = a;
    }
    return qMin(least, function((left + right) / 2.0));
}

/// Catmull-Rom's cubic at \a distance samples from its middle.
float cubic(float distance)
{
    const float t = std::fabs(distance);
    if (t >= 2.0F)
        return 0.0F;
    return t < 1.0F ? 1.0F + t * t * (1.5F * t - 2.5F) : 2.0F + t * (t * (2.5F - 0.5F * t) - 4.0F);
}

using Pixel = std::array<float, 4>;

/// A picture of four bytes a pixel that goes on beyond its edges as it ends there.
class Samples
{
public:
    explicit Samples(const QImage& picture)
        : m_bits(picture.constBits())
        , m_stride(picture.bytesPerLine())
        , m_width(picture.width())
        , m_height(picture.height())
    {}

    int width() const { return m_width; }
    int height() const { return m_height; }

    /// Interpolates between the sixteen samples about a point.
    Pixel interpolated(double x, double y) const
    {
        const double left = std::floor(x - 0.5);
        const double top = std::floor(y - 0.5);
        const std::array<float, 4> weightsX = cubicWeights(float(x - 0.5 - left));
        const std::array<float, 4> weightsY = cubicWeights(float(y - 0.5 - top));
        const int column = int(left) - 1;
        const int row = int(top) - 1;
        if (column < 0 || row < 0 || column + 4 > m_width || row + 4 > m_height)
            return weighted(column, 4, weightsX.data(), row, 4, weightsY.data());

        Pixel sum{};
        const uchar* line = m_bits + row * m_stride + column * qptrdiff(4);
        for (int j = 0; j < 4; ++j, line += m_stride) {
            Pixel inLine{};
            for (int i = 0; i < 4; ++i) {
                for (int c = 0; c < 4; ++c)
                    inLine[c] += weightsX[i] * float(line[4 * i + c]);
            }
            for (int c = 0; c < 4; ++c)
                sum[c] += weightsY[j] * inLine[c];
        }
        return sum;
    }

    /// The same where samples come closer than the pixels they go to: the kernel grows by \a scaleX
    /// and \a scaleY.
    Pixel averaged(double x, double y, double scaleX, double scaleY) const
    {
        Taps weightsX;
        Taps weightsY;
        int column = 0;
        int row = 0;
        const int columns = wideWeights(x, scaleX, column, weightsX);
        const int rows = wideWeights(y, scaleY, row, weightsY);
        return weighted(column, columns, weightsX.data(), row, rows, weightsY.data());
    }

private:
    using Taps = std::array<float, 4 * int(greatestMinification) + 2>;

    static std::array<float, 4> cubicWeights(float t)
    {
        return {t * (-0.5F + t * (1.0F - 0.5F * t)), 1.0F + t * t * (1.5F * t - 2.5F),
                t * (0.5F + t * (2.0F - 1.5F * t)), t * t * (0.5F * t - 0.5F)};
    }

    static int wideWeights(double position, double scale, int& first, Taps& weights)
    {
        first = int(std::ceil(position - 0.5 - 2.0 * scale));
        const int count =
            qMin(int(std::floor(position - 0.5 + 2.0 * scale)) - first + 1, int(weights.size()));
        float sum = 0.0F;
        for (int i = 0; i < count; ++i) {
            weights[i] = cubic(float((first + i + 0.5 - position) / scale));
            sum += weights[i];
        }
        for (int i = 0; i < count; ++i)
            weights[i] /= sum;
        return count;
    }

    Pixel weighted(int column, int columns, const float* weightsX, int row, int rows,
                   const float* weightsY) const
    {
        Pixel sum{};
        for (int j = 0; j < rows; ++j) {
            const uchar* line = m_bits + qBound(0, row + j, m_height - 1) * m_stride;
            Pixel inLine{};
            for (int i = 0; i < columns; ++i) {
                const uchar* sample = line + qBound(0, column + i, m_width - 1) * qptrdiff(4);
                for (int c = 0; c < 4; ++c)
                    inLine[c] += weightsX[i] * float(sample[c]);
            }
            for (int c = 0; c < 4; ++c)
                sum[c] += weightsY[j] * inLine[c];
        }
        return sum;
    }

    const uchar* m_bits;
    qptrdiff m_stride;
    int m_width;
    int m_height;
};

QRgb toRgb(const Pixel& pixel, float coverage)
{
    // The cubic overshoots at edges; a colour above its alpha wouldn't be premultiplied.
    const float alpha = qBound(0.0F, pixel[3], 255.0F);
    const auto byte = [&](float value) { return qRound(qBound(0.0F, value, alpha) * coverage); };
    return qRgba(byte(pixel[2]), byte(pixel[1]), byte(pixel[0]), byte(alpha));
}

/// One corrected picture in the making. Different rows may be made on different threads.
class Resampling
{
public:
    Resampling(const QImage& source, const Corrections& corrections, QImage& target)
        : m_source(source)
        , m_geometry(corrections)
        , m_bits(target.bits())
        , m_stride(target.bytesPerLine())
        , m_halfDiagonal(std::hypot(source.width(), source.height()) / 2.0)
        , m_scale(corrections.autoCrop ? cropScale(corrections, source.size()) : 1.0)
        , m_cropped(corrections.autoCrop)
    {}

    void makeRows(int begin, int end)
    {
        Places places = placesOf(begin);
        for (int y = begin; y < end; ++y) {
            Places below = placesOf(y + 1);
            auto* pixels = reinterpret_cast<QRgb*>(m_bits + y * m_stride);
            for (int x = 0; x < m_source.width(); ++x)
                pixels[x] = pixelAt(places[x], places[x + 1], below[x]);
            places.swap(below);
        }
    }

private:
    struct Place
    {
        double x;
        double y;
    };
    using Places = std::vector<Place>;

    /// Where a row's pixels come from, and one more.
    Places placesOf(int row) const
    {
        const double unit = m_scale / m_halfDiagonal;
        const double centreX = m_source.width() / 2.0;
        const double centreY = m_source.height() / 2.0;
        const double y = (row + 0.5 - centreY) * unit;
        Places places(size_t(m_source.width()) + 1);
        for (int column = 0; column <= m_source.width(); ++column) {
            Place& place = places[column];
            m_geometry.toSource((column + 0.5 - centreX) * unit, y, place.x, place.y);
            place.x = place.x * m_halfDiagonal + centreX;
            place.y = place.y * m_halfDiagonal + centreY;
        }
        return places;
    }

    QRgb pixelAt(const Place& place, const Place& right, const Place& below) const
    {
        const auto distance = [](double a, double b) {
            return qMin(std::sqrt(a * a + b * b), greatestMinification);
        };
        const double scaleX = distance(right.x - place.x, below.x - place.x);
        const double scaleY = distance(right.y - place.y, below.y - place.y);
        const float coverage = m_cropped ? 1.0F : coverageAt(place, scaleX, scaleY);
        if (coverage <= 0.0F)
            return 0;

        constexpr double noticeable = 1.001;
        return toRgb(
            scaleX <= noticeable && scaleY <= noticeable
                ? m_source.interpolated(place.x, place.y)
                : m_source.averaged(place.x, place.y, qMax(1.0, scaleX), qMax(1.0, scaleY)),
            coverage);
    }

    /// How much of a pixel the picture covers: its border is a soft line.
    float coverageAt(const Place& place, double scaleX, double scaleY) const
    {
        const auto along = [](double position, int length, double scale) {
            return qBound(0.0, qMin(position, length - position) / scale + 0.5, 1.0);
        };
        return float(along(place.x, m_source.width(), qMax(scaleX, 0.1))
                     * along(place.y, m_source.height(), qMax(scaleY, 0.1)));
    }

    Samples m_source;
    Geometry m_geometry;
    uchar* m_bits;
    qptrdiff m_stride;
    double m_halfDiagonal;
    double m_scale;
    bool m_cropped;
};

/// Makes all rows, band by band, on this thread and on one more for each further core.
bool makeAllRows(Resampling& resampling, int height, const CorrectionWatch& watch)
{
    const int bands = (height + bandHeight - 1) / bandHeight;
    std::atomic<int> next{0};
    std::atomic<int> done{0};
    std::atomic<bool> stopped{false};

    const auto work = [&](bool reporting) {
        for (int band = next++; band < bands; band = next++) {
            if (stopped)
                return;
            if (watch.stopRequired && watch.stopRequired()) {
                stopped = true;
                return;
            }
            resampling.makeRows(band * bandHeight, qMin((band + 1) * bandHeight, height));
            ++done;
            if (reporting && watch.progress)
                watch.progress(int(qint64(done) * 99 / bands));
        }
    };

    std::vector<std::thread> helpers;
    for (int i = 1; i < qMin(QThread::idealThreadCount(), bands); ++i)
        helpers.emplace_back(work, false);
    work(true);
    for (std::thread& helper : helpers)
        helper.join();

    if (stopped)
        return false;
    if (watch.progress)
        watch.progress(100);
    return true;
}

void copyDescription(const QImage& from, QImage& to)
{
    to.setDotsPerMeterX(from.dotsPerMeterX());
    to.setDotsPerMeterY(from.dotsPerMeterY());
    to.setDevicePixelRatio(from.devicePixelRatio());
    const QStringList keys = from.textKeys();
    for (const QString& key : keys)
        to.setText(key, from.text(key));
#if QT_VERSION >= QT_VERSION_CHECK(5, 14, 0)
    to.setColorSpace(from.colorSpace());
#endif
}

} // namespace

bool Corrections::isIdentity() const
{
    return qFuzzyIsNull(horizon) && qFuzzyIsNull(distortion) && qFuzzyIsNull(keystone);
}

bool operator==(const Corrections& a, const Corrections& b)
{
    // What has no empty corners isn't cropped either.
    if (a.isIdentity() && b.isIdentity())
        return true;
    return qFuzzyIsNull(a.horizon - b.horizon) && qFuzzyIsNull(a.distortion - b.distortion)
        && qFuzzyIsNull(a.keystone - b.keystone) && a.autoCrop == b.autoCrop;
}

bool operator!=(const Corrections& a, const Corrections& b)
{
    return !(a == b);
}

double cropScale(const Corrections& corrections, const QSize& size)
{
    const Geometry geometry(corrections);
    const double diagonal = std::hypot(size.width(), size.height());
    const double right = size.width() / diagonal;
    const double bottom = size.height() / diagonal;

    // The rectangle grows until it meets the border of the corrected picture.
    const auto reach = [&](double x, double y) {
        const QPointF point = geometry.fromSource(QPointF(x, y));
        return qMax(std::fabs(point.x()) / right, std::fabs(point.y()) / bottom);
    };
    double scale = std::numeric_limits<double>::max();
    for (const double side : {-1.0, 1.0}) {
        const auto onUpright = [&](double y) { return reach(side * right, y); };
        const auto onLevel = [&](double x) { return reach(x, side * bottom); };
        scale = std::min(
            {scale, leastValue(onUpright, -bottom, bottom), leastValue(onLevel, -right, right)});
    }
    return scale;
}

QImage correctPicture(const QImage& picture, const Corrections& corrections,
                      const CorrectionWatch& watch)
{
    if (picture.isNull() || corrections.isIdentity())
        return picture;

    const bool opaque = !picture.hasAlphaChannel();
    const QImage source = picture.convertToFormat(opaque ? QImage::Format_RGB32
                                                         : QImage::Format_ARGB32_Premultiplied);
    QImage target(source.size(),
                  opaque && corrections.autoCrop ? QImage::Format_RGB32
                                                 : QImage::Format_ARGB32_Premultiplied);
    if (source.isNull() || target.isNull())
        return QImage();

    Resampling resampling(source, corrections, target);
    if (!makeAllRows(resampling, target.height(), watch))
        return QImage();
    copyDescription(picture, target);
    return target;
}
