// At 24 megapixels identical pictures cost at most 1.2 times a memcmp() of the two, and pictures
// that differ everywhere are compared at least 1.4 times as fast as by the plain loop.

#include "Benchmarks.h"
#include "ImageComparison.h"

#include <benchmark/benchmark.h>

#include <QImage>
#include <QSize>

#include <cstdlib>
#include <cstring>
#include <random>

using VEK_NAMESPACE::compareImages;

namespace {

QImage noise(const QSize& size, unsigned seed)
{
    std::mt19937 random(seed);
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            row[x] = random();
    }
    return image;
}

double channelDifference(QRgb pixel1, QRgb pixel2, int shift)
{
    return std::abs(int((pixel1 >> shift) & 0xff) - int((pixel2 >> shift) & 0xff)) / 255.0;
}

/// The measure as one would write it down.
double plainDifference(const QImage& image1, const QImage& image2)
{
    const double channels = image1.width() * image1.height() * 3;
    double sum = 0.0;
    for (int y = 0; y < image1.height(); ++y) {
        const auto* row1 = reinterpret_cast<const QRgb*>(image1.constScanLine(y));
        const auto* row2 = reinterpret_cast<const QRgb*>(image2.constScanLine(y));
        for (int x = 0; x < image1.width(); ++x) {
            sum += channelDifference(row1[x], row2[x], 16);
            sum += channelDifference(row1[x], row2[x], 8);
            sum += channelDifference(row1[x], row2[x], 0);
        }
        sum = sum * 100.0 / channels;
    }
    return sum * 100.0 / channels;
}

PairedTimes compareSamePictures(const QSize& size)
{
    const QImage image1 = noise(size, 1);
    const QImage image2 = image1.copy();
    const uchar* bytes1 = image1.constBits();
    const uchar* bytes2 = image2.constBits();
    const auto byteCount = size_t(image1.sizeInBytes());
    return pairedCalls(
        [&] {
            double difference = 0.0;
            benchmark::DoNotOptimize(compareImages(image1, image2, &difference, 0.5));
        },
        [&] {
            benchmark::ClobberMemory(); // or it would be called once for all turns
            benchmark::DoNotOptimize(std::memcmp(bytes1, bytes2, byteCount));
        });
}

PairedTimes compareOtherPictures(const QSize& size)
{
    const QImage image1 = noise(size, 1);
    const QImage image2 = noise(size, 2);
    double difference = 0.0;
    compareImages(image1, image2, &difference, 0.5);
    require(difference == plainDifference(image1, image2),
            "the difference is another one than the plain loop's");
    return pairedCalls(
        [&] { benchmark::DoNotOptimize(compareImages(image1, image2, &difference, 0.5)); },
        [&] { benchmark::DoNotOptimize(plainDifference(image1, image2)); });
}

QSize sizeOf(int pixels)
{
    const int rows = pixels < 1000 ? 1 : pixels / 100 / 4;
    return {pixels / rows, rows};
}

} // namespace

void addImageComparison(Benchmarks& benchmarks)
{
    const QSize size24Mp(6000, 4000);
    const QString bytes = QStringLiteral("memcmp()");
    const QString loop = QStringLiteral("plain loop");
    benchmarks.figures.push_back({QStringLiteral("pictures: the same ones, 24 megapixels"), bytes,
                                  atMostTimes(1.2), [=] { return compareSamePictures(size24Mp); }});
    benchmarks.figures.push_back({QStringLiteral("pictures: different ones, 24 megapixels"), loop,
                                  atMostTimes(1 / 1.4),
                                  [=] { return compareOtherPictures(size24Mp); }});
    benchmarks.growths.push_back({QStringLiteral("pictures: the same ones, by pixels"), bytes,
                                  [](int pixels) { return compareSamePictures(sizeOf(pixels)); }});
    benchmarks.growths.push_back({QStringLiteral("pictures: different ones, by pixels"), loop,
                                  [](int pixels) { return compareOtherPictures(sizeOf(pixels)); }});
}
