#include "ImageComparison.h"

#include "CommonConstants.h"

#include <QImage>

#include <array>
#include <cmath>
#include <cstring>
#include <limits>

namespace VEK_NAMESPACE {

namespace {

/// |a - b| / 255.0 by |a - b|.
const std::array<double, 256>& channelDifferences()
{
    static const std::array<double, 256> table = [] {
        std::array<double, 256> differences{};
        for (size_t i = 0; i < differences.size(); ++i)
            differences[i] = double(i) / 255.0;
        return differences;
    }();
    return table;
}

inline unsigned channelDifference(QRgb pixel1, QRgb pixel2, int shift)
{
    return unsigned(std::abs(int((pixel1 >> shift) & 0xff) - int((pixel2 >> shift) & 0xff)));
}

constexpr int fractionBits = std::numeric_limits<double>::digits - 1;

/// The channel differences in units of the last place of sums from a power of two to the next.
struct Places
{
    std::array<qint64, 256> ofDifference;
    bool exact; ///< none lies halfway between two places
};

/// Of sums from 2 to the power of \a power; below 2 to the 30th.
const Places& placesOfSumsFrom(int power)
{
    static const std::array<Places, 30> table = [] {
        std::array<Places, 30> all{};
        for (size_t p = 0; p < all.size(); ++p) {
            all[p].exact = true;
            for (size_t i = 0; i < 256; ++i) {
                const double places = std::ldexp(channelDifferences()[i], fractionBits - int(p));
                all[p].ofDifference[i] = qint64(std::floor(places + 0.5));
                all[p].exact = all[p].exact && places - std::floor(places) != 0.5;
            }
        }
        return all;
    }();
    return table[size_t(power)];
}

/// A sum of channel differences, rounded exactly as one addition after the other rounds it.
///
/// While the sum stays between two powers of two its last place has one weight, and an addition
/// adds the difference rounded to whole last places, whatever the sum (a tie, which the sum would
/// decide, excepted). Whole numbers can be added in any order, and fast.
class DifferenceSum
{
public:
    double value() const { return m_value; }
    void setValue(double value) { m_value = value; }

    void add(const QRgb* pixels1, const QRgb* pixels2, int count)
    {
        while (count > 0) {
            const int many = qMin(count, pixelsBelowNextPower());
            const int done = many >= minimumRun && addMany(pixels1, pixels2, many)
                ? many
                : addOneByOne(pixels1, pixels2, qMin(count, minimumRun));
            pixels1 += done;
            pixels2 += done;
            count -= done;
        }
    }

private:
    static constexpr int minimumRun = 32;

    /// How many pixels, of 3 at the most, can be added before the sum reaches a power of two.
    int pixelsBelowNextPower() const
    {
        if (!(m_value >= 1.0 && m_value < 1e9))
            return 0;
        const double room = std::ldexp(1.0, std::ilogb(m_value) + 1) - m_value;
        return int(room / 3.0) - 1;
    }

    bool addMany(const QRgb* pixels1, const QRgb* pixels2, int count)
    {
        const int power = std::ilogb(m_value);
        const Places& places = placesOfSumsFrom(power);
        if (!places.exact)
            return false;

        qint64 sum = 0;
        for (int i = 0; i < count; ++i) {
            const QRgb pixel1 = pixels1[i];
            const QRgb pixel2 = pixels2[i];
            sum += places.ofDifference[channelDifference(pixel1, pixel2, 16)]
                + places.ofDifference[channelDifference(pixel1, pixel2, 8)]
                + places.ofDifference[channelDifference(pixel1, pixel2, 0)];
        }
        m_value += std::ldexp(double(sum), power - fractionBits);
        return true;
    }

    int addOneByOne(const QRgb* pixels1, const QRgb* pixels2, int count)
    {
        const std::array<double, 256>& differences = channelDifferences();
        for (int i = 0; i < count; ++i) {
            m_value += differences[channelDifference(pixels1[i], pixels2[i], 16)];
            m_value += differences[channelDifference(pixels1[i], pixels2[i], 8)];
            m_value += differences[channelDifference(pixels1[i], pixels2[i], 0)];
        }
        return count;
    }

    double m_value = 0.0;
};

/// The words of a row that hold nothing but pixels: a row of a smaller format ends earlier, and is
/// filled up with anything.
int wordsPerRow(const QImage& image)
{
    return int(qint64(image.width()) * image.depth() / 32);
}

} // namespace

int compareImages(const QImage& image1, const QImage& image2, double* diff, double tolerance)
{
    if (image1.isNull() || image2.isNull())
        return 0;
    if (image1.size() != image2.size())
        return 1;

    // In 32 bits, as ever.
    const double channels = qint32(quint32(image1.width()) * quint32(image1.height()) * quint32(3));
    const int words = qMin(image1.width(), qMin(wordsPerRow(image1), wordsPerRow(image2)));

    DifferenceSum sum;
    double difference = 0.0;
    for (int y = 0; y < image1.height(); ++y) {
        const auto* row1 = reinterpret_cast<const QRgb*>(image1.constScanLine(y));
        const auto* row2 = reinterpret_cast<const QRgb*>(image2.constScanLine(y));
        if (std::memcmp(row1, row2, size_t(words) * sizeof(QRgb)) != 0)
            sum.add(row1, row2, words);
        // Each row scales down what the rows before it have added; that is meant.
        difference = sum.value() * 100.0 / channels;
        sum.setValue(difference);
        if (diff)
            *diff = difference;
    }
    difference = difference * 100.0 / channels;
    if (diff)
        *diff = difference;
    return tolerance > difference ? 2 : 3;
}

} // namespace VEK_NAMESPACE
