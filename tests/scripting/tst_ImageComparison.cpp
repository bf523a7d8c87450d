#include "ImageComparison.h"

#include <QImage>
#include <QTest>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <limits>
#include <random>
#include <thread>
#include <vector>

using VEK_NAMESPACE::compareImages;

namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();

using Random = std::mt19937;
using Pictures = std::pair<QImage, QImage>;
using Paint = std::function<void(QRgb& pixel1, QRgb& pixel2, int x, int y, Random& random)>;

/// The measure in its own order: one division and one addition after the other.
double differenceStepByStep(const QImage& image1, const QImage& image2)
{
    const int w = image1.width();
    const int h = image1.height();
    const double n = w * h * 3;
    double acc = 0.0;
    for (int y = 0; y < h; ++y) {
        const auto* row1 = reinterpret_cast<const QRgb*>(image1.constScanLine(y));
        const auto* row2 = reinterpret_cast<const QRgb*>(image2.constScanLine(y));
        for (int x = 0; x < w; ++x) {
            acc += std::abs(qRed(row1[x]) - qRed(row2[x])) / 255.0;
            acc += std::abs(qGreen(row1[x]) - qGreen(row2[x])) / 255.0;
            acc += std::abs(qBlue(row1[x]) - qBlue(row2[x])) / 255.0;
        }
        acc = acc * 100.0 / n;
    }
    return acc * 100.0 / n;
}

quint64 bitsOf(double value)
{
    quint64 bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

bool areSameBits(double value1, double value2)
{
    return bitsOf(value1) == bitsOf(value2);
}

QByteArray exactly(double value)
{
    char buffer[64];
    qsnprintf(buffer, sizeof buffer, "%a", value);
    return buffer;
}

Pictures paint(const QSize& size, const Paint& paintPixel)
{
    Random random(unsigned(size.width() * 31 + size.height()));
    Pictures pictures(QImage(size, QImage::Format_ARGB32), QImage(size, QImage::Format_ARGB32));
    for (int y = 0; y < size.height(); ++y) {
        auto* row1 = reinterpret_cast<QRgb*>(pictures.first.scanLine(y));
        auto* row2 = reinterpret_cast<QRgb*>(pictures.second.scanLine(y));
        for (int x = 0; x < size.width(); ++x)
            paintPixel(row1[x], row2[x], x, y, random);
    }
    return pictures;
}

QImage filled(int width, int height, QRgb colour)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(colour);
    return image;
}

/// A picture with one white pixel on black.
QImage withWhitePixel(int width, int height, int x, int y)
{
    QImage image = filled(width, height, 0xff000000);
    image.setPixel(x, y, 0xffffffff);
    return image;
}

const QImage black = filled(1, 1, 0xff000000); // clazy:exclude=non-pod-global-static
const QImage white = filled(1, 1, 0xffffffff); // clazy:exclude=non-pod-global-static

} // namespace

Q_DECLARE_METATYPE(Paint)

class tst_ImageComparison : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theDifferenceIsKnown_data();
    void theDifferenceIsKnown();
    void laterRowsWeighMore();
    void theDifferenceIsExact_data();
    void theDifferenceIsExact();
    void theDifferenceOfOneValueIsExact();
    void theDifferenceOfBrightRowsIsExact();
    void picturesThatCannotBeComparedLeaveTheDifferenceAlone_data();
    void picturesThatCannotBeComparedLeaveTheDifferenceAlone();
    void theToleranceIsAboveTheDifference_data();
    void theToleranceIsAboveTheDifference();
    void noDifferenceNeedBeAskedFor();
    void theFormatDoesNotCount_data();
    void theFormatDoesNotCount();
    void whatLiesBetweenTheLinesDoesNotCount();
    void smallerFormatsAreNotReadPastTheirLines_data();
    void smallerFormatsAreNotReadPastTheirLines();
    void picturesAreNotCopied();
    void threadsCompareIndependently();
};

void tst_ImageComparison::theDifferenceIsKnown_data()
{
    QTest::addColumn<QImage>("image1");
    QTest::addColumn<QImage>("image2");
    QTest::addColumn<double>("difference");

    const QImage grey = filled(10, 10, 0xff808080);
    QTest::newRow("equal pictures") << grey << grey.copy() << 0.0;
    QTest::newRow("pictures that differ in alpha") << grey << filled(10, 10, 0x00808080) << 0.0;
    QTest::newRow("all of one pixel") << black << white << 10000.0 / 3.0;
    QTest::newRow("the other way round") << white << black << 10000.0 / 3.0;
    QTest::newRow("red of one pixel") << black << filled(1, 1, 0xffff0000) << 10000.0 / 9.0;
    QTest::newRow("green of one pixel") << black << filled(1, 1, 0xff00ff00) << 10000.0 / 9.0;
    QTest::newRow("blue of one pixel") << black << filled(1, 1, 0xff0000ff) << 10000.0 / 9.0;
    QTest::newRow("a fifth of one channel") << black << filled(1, 1, 0xff330000) << 2000.0 / 9.0;
    QTest::newRow("channels don't cancel out")
        << filled(1, 1, 0xffff0000) << filled(1, 1, 0xff00ff00) << 20000.0 / 9.0;
    QTest::newRow("one of two columns")
        << filled(2, 1, 0xff000000) << withWhitePixel(2, 1, 1, 0) << 2500.0 / 3.0;
    QTest::newRow("the first of two rows")
        << filled(1, 2, 0xff000000) << withWhitePixel(1, 2, 0, 0) << 125000.0 / 9.0;
    QTest::newRow("the second of two rows")
        << filled(1, 2, 0xff000000) << withWhitePixel(1, 2, 0, 1) << 2500.0 / 3.0;
    QTest::newRow("both of two rows")
        << filled(1, 2, 0xff000000) << filled(1, 2, 0xffffffff) << 132500.0 / 9.0;
}

void tst_ImageComparison::theDifferenceIsKnown()
{
    QFETCH(QImage, image1);
    QFETCH(QImage, image2);
    QFETCH(double, difference);

    double diff = -1.0;
    QCOMPARE(compareImages(image1, image2, &diff, infinity), 2);
    QVERIFY2(std::abs(diff - difference) <= 1e-12 * difference, exactly(diff).constData());
}

void tst_ImageComparison::laterRowsWeighMore()
{
    const QImage plain = filled(10, 100, 0xff000000);
    double first = -1.0;
    double last = -1.0;
    compareImages(plain, withWhitePixel(10, 100, 3, 0), &first, 0.5);
    compareImages(plain, withWhitePixel(10, 100, 3, 99), &last, 0.5);
    QVERIFY(first > 0.0);
    QVERIFY(first < 1e-140);
    QVERIFY(std::abs(last - 1.0 / 300.0) < 1e-15);
}

void tst_ImageComparison::theDifferenceIsExact_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<Paint>("paintPixel");

    const std::pair<const char*, Paint> contents[] = {
        {"noise",
         [](QRgb& p, QRgb& q, int, int, Random& random) {
             p = random();
             q = random();
         }},
        {"few differences",
         [](QRgb& p, QRgb& q, int, int, Random& random) {
             p = random();
             q = random() % 1000 == 0 ? random() : p;
         }},
        {"gradients",
         [](QRgb& p, QRgb& q, int x, int y, Random&) {
             p = qRgb(x & 255, y & 255, (x + y) & 255);
             q = qRgb((x / 2) & 255, (x * 3) & 255, (x ^ y) & 255);
         }},
        {"black and white",
         [](QRgb& p, QRgb& q, int, int, Random&) {
             p = 0xff000000;
             q = 0xffffffff;
         }},
        {"a board of black and white",
         [](QRgb& p, QRgb& q, int x, int y, Random&) {
             p = (x + y) % 2 ? 0xff000000 : 0xffffffff;
             q = 0xffffffff;
         }},
        {"equal rows between",
         [](QRgb& p, QRgb& q, int, int y, Random& random) {
             p = random();
             q = y % 3 == 1 ? random() : p;
         }},
        {"an equal end",
         [](QRgb& p, QRgb& q, int, int y, Random& random) {
             p = random();
             q = y < 2 ? random() : p;
         }},
        {"differences of one",
         [](QRgb& p, QRgb& q, int, int, Random& random) {
             p = random() & 0x00fefefe;
             q = p + (random() & 0x00010101);
         }},
        {"differences of half the range",
         [](QRgb& p, QRgb& q, int, int, Random& random) {
             p = random() & 0x007f7f7f;
             q = p | 0x00808080;
         }},
        {"one channel",
         [](QRgb& p, QRgb& q, int, int, Random& random) {
             p = random();
             q = p ^ (random() & 0xff00);
         }},
        {"equal pictures", [](QRgb& p, QRgb& q, int, int, Random& random) { p = q = random(); }},
        {"other alpha",
         [](QRgb& p, QRgb& q, int, int, Random& random) {
             p = random();
             q = p ^ (random() & 0xff000000);
         }},
    };
    const std::pair<int, int> sizes[] = {
        {1, 1},   {1, 9},   {9, 1},     {3, 5},    {31, 4},   {32, 4},     {33, 4},
        {64, 64}, {97, 61}, {640, 480}, {3, 6000}, {6000, 3}, {100000, 2}, {2000000, 1},
    };
    for (const auto& content : contents) {
        for (const auto& size : sizes) {
            const QString name = QStringLiteral("%1 of %2 by %3")
                                     .arg(QString::fromLatin1(content.first))
                                     .arg(size.first)
                                     .arg(size.second);
            QTest::newRow(qPrintable(name)) << QSize(size.first, size.second) << content.second;
        }
    }
}

void tst_ImageComparison::theDifferenceIsExact()
{
    QFETCH(QSize, size);
    QFETCH(Paint, paintPixel);

    const Pictures pictures = paint(size, paintPixel);
    const double expected = differenceStepByStep(pictures.first, pictures.second);
    double diff = -1.0;
    // Above the difference by the smallest step that there is.
    const double above = std::nextafter(expected, infinity);
    QCOMPARE(compareImages(pictures.first, pictures.second, &diff, above), 2);
    QVERIFY2(areSameBits(diff, expected),
             (exactly(diff) + " not " + exactly(expected)).constData());
    QCOMPARE(compareImages(pictures.second, pictures.first, &diff, expected), 3);
    QVERIFY2(areSameBits(diff, expected),
             (exactly(diff) + " not " + exactly(expected)).constData());
}

/// Each value has sums of its own at which an addition is rounded.
void tst_ImageComparison::theDifferenceOfOneValueIsExact()
{
    for (QRgb value = 0; value < 256; ++value) {
        const Pictures pictures =
            paint(QSize(3000, 3), [&](QRgb& p, QRgb& q, int x, int y, Random&) {
                p = 0;
                q = value * ((x + y) % 7 == 0 ? 0x010001 : 0x010101);
            });
        const double expected = differenceStepByStep(pictures.first, pictures.second);
        double diff = -1.0;
        compareImages(pictures.first, pictures.second, &diff, 0.5);
        QVERIFY2(areSameBits(diff, expected),
                 (QByteArray::number(value) + ": " + exactly(diff) + " not " + exactly(expected))
                     .constData());
    }
}

/// Nearly all that a pixel can add: the sum comes close to the next power of two, and past it.
void tst_ImageComparison::theDifferenceOfBrightRowsIsExact()
{
    for (int i = 0; i < 2000; ++i) {
        const Pictures pictures =
            paint(QSize(300 + i, 1), [](QRgb& p, QRgb& q, int, int, Random& random) {
                p = 0;
                q = 0xfcfcfc | (random() & 0x030303);
            });
        const double expected = differenceStepByStep(pictures.first, pictures.second);
        double diff = -1.0;
        compareImages(pictures.first, pictures.second, &diff, 0.5);
        QVERIFY2(areSameBits(diff, expected),
                 (exactly(diff) + " not " + exactly(expected)).constData());
    }
}

void tst_ImageComparison::picturesThatCannotBeComparedLeaveTheDifferenceAlone_data()
{
    QTest::addColumn<QImage>("image1");
    QTest::addColumn<QImage>("image2");
    QTest::addColumn<int>("result");

    const QImage picture = filled(4, 3, 0xffffffff);
    QTest::newRow("no first picture") << QImage() << picture << 0;
    QTest::newRow("no second picture") << picture << QImage() << 0;
    QTest::newRow("no picture") << QImage() << QImage() << 0;
    QTest::newRow("another width") << picture << filled(5, 3, 0xffffffff) << 1;
    QTest::newRow("another height") << picture << filled(4, 2, 0xffffffff) << 1;
    QTest::newRow("sides exchanged") << picture << filled(3, 4, 0xffffffff) << 1;
}

void tst_ImageComparison::picturesThatCannotBeComparedLeaveTheDifferenceAlone()
{
    QFETCH(QImage, image1);
    QFETCH(QImage, image2);
    QFETCH(int, result);

    double diff = -42.5;
    QCOMPARE(compareImages(image1, image2, &diff, infinity), result);
    QCOMPARE(diff, -42.5);
    QCOMPARE(compareImages(image1, image2, nullptr, infinity), result);
}

void tst_ImageComparison::theToleranceIsAboveTheDifference_data()
{
    QTest::addColumn<QImage>("image");
    QTest::addColumn<double>("tolerance");
    QTest::addColumn<int>("result");

    // Three white pixels of a hundred: 9 * 100 / 300 * 100 / 300.
    QImage other = filled(100, 1, 0xff000000);
    for (int x : {7, 42, 99})
        other.setPixel(x, 0, 0xffffffff);
    const double difference = 1.0;
    const QImage same = filled(100, 1, 0xff000000);

    QTest::newRow("below") << other << 0.5 << 3;
    QTest::newRow("a step below") << other << std::nextafter(difference, 0.0) << 3;
    QTest::newRow("equal") << other << difference << 3;
    QTest::newRow("a step above") << other << std::nextafter(difference, 2.0) << 2;
    QTest::newRow("above") << other << 1.5 << 2;
    QTest::newRow("infinite") << other << infinity << 2;
    QTest::newRow("infinitely small") << other << -infinity << 3;
    QTest::newRow("no number") << other << notANumber << 3;
    QTest::newRow("equal pictures above") << same << 0.5 << 2;
    QTest::newRow("equal pictures a step above") << same << std::nextafter(0.0, 1.0) << 2;
    QTest::newRow("equal pictures and no tolerance") << same << 0.0 << 3;
    QTest::newRow("equal pictures below") << same << -0.5 << 3;
    QTest::newRow("equal pictures and no number") << same << notANumber << 3;
}

void tst_ImageComparison::theToleranceIsAboveTheDifference()
{
    QFETCH(QImage, image);
    QFETCH(double, tolerance);
    QFETCH(int, result);

    const QImage plain = filled(100, 1, 0xff000000);
    double diff = -1.0;
    QCOMPARE(compareImages(plain, image, &diff, tolerance), result);
    QVERIFY(diff >= 0.0);
    QCOMPARE(compareImages(plain, image, nullptr, tolerance), result);
}

void tst_ImageComparison::noDifferenceNeedBeAskedFor()
{
    QCOMPARE(compareImages(black, white, nullptr, 3333.0), 3);
    QCOMPARE(compareImages(black, white, nullptr, 3334.0), 2);
    QCOMPARE(compareImages(black, black, nullptr, 0.5), 2);
}

void tst_ImageComparison::theFormatDoesNotCount_data()
{
    QTest::addColumn<QImage::Format>("format");

    QTest::newRow("RGB32") << QImage::Format_RGB32;
    QTest::newRow("ARGB32") << QImage::Format_ARGB32;
    QTest::newRow("ARGB32 premultiplied") << QImage::Format_ARGB32_Premultiplied;
    QTest::newRow("RGBA8888") << QImage::Format_RGBA8888;
    QTest::newRow("RGB30") << QImage::Format_RGB30;
}

/// Words are compared as they lie in memory, and nothing is converted.
void tst_ImageComparison::theFormatDoesNotCount()
{
    QFETCH(QImage::Format, format);

    const QRgb words1[] = {0x80ff8000, 0x12345678, 0x00000000};
    const QRgb words2[] = {0x01ff8000, 0x00345678, 0x7f0000ff};
    const QImage image1(reinterpret_cast<const uchar*>(words1), 3, 1, QImage::Format_ARGB32);
    const QImage image2(reinterpret_cast<const uchar*>(words2), 3, 1, format);
    double diff = -1.0;
    QCOMPARE(compareImages(image1, image2, &diff, 0.5), 3);
    QVERIFY2(std::abs(diff - 10000.0 / 81.0) < 1e-12, exactly(diff).constData());
}

void tst_ImageComparison::whatLiesBetweenTheLinesDoesNotCount()
{
    const QRgb words1[] = {1, 2, 0x111111, 3, 4, 0x222222};
    const QRgb words2[] = {1, 2, 0xffffff, 3, 4, 0xeeeeee};
    const int bytesPerLine = 3 * int(sizeof(QRgb));
    const QImage image1(reinterpret_cast<const uchar*>(words1), 2, 2, bytesPerLine,
                        QImage::Format_RGB32);
    const QImage image2(reinterpret_cast<const uchar*>(words2), 2, 2, bytesPerLine,
                        QImage::Format_RGB32);
    double diff = -1.0;
    QCOMPARE(compareImages(image1, image2, &diff, 0.5), 2);
    QCOMPARE(diff, 0.0);
    // The lines may lie differently, too.
    QCOMPARE(compareImages(image1, image1.copy(), &diff, 0.5), 2);
    QCOMPARE(diff, 0.0);
}

void tst_ImageComparison::smallerFormatsAreNotReadPastTheirLines_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::addColumn<int>("width");

    const std::pair<const char*, QImage::Format> formats[] = {
        {"1 bit", QImage::Format_Mono},
        {"8 bits", QImage::Format_Indexed8},
        {"8 bits of grey", QImage::Format_Grayscale8},
        {"16 bits", QImage::Format_RGB16},
        {"24 bits", QImage::Format_RGB888},
    };
    for (const auto& format : formats) {
        for (int width : {1, 2, 3, 5, 33, 1000}) {
            QTest::newRow(qPrintable(
                QStringLiteral("%1 and %2 pixels").arg(QLatin1String(format.first)).arg(width)))
                << format.second << width;
        }
    }
}

/// What the result is doesn't matter, but that it is the same whatever lies behind the pixels.
void tst_ImageComparison::smallerFormatsAreNotReadPastTheirLines()
{
    QFETCH(QImage::Format, format);
    QFETCH(int, width);

    const int height = 2;
    const QImage example(width, height, format);
    const auto size = size_t(example.sizeInBytes());
    // Equal pictures, and something else behind each line and right behind the pictures.
    std::vector<uchar> bytes1(size + size_t(width) * 4, 0x11);
    std::vector<uchar> bytes2(size + size_t(width) * 4, 0x22);
    for (int y = 0; y < height; ++y) {
        const int line = y * example.bytesPerLine();
        std::fill_n(bytes1.begin() + line, width * example.depth() / 8, uchar(0x55));
        std::fill_n(bytes2.begin() + line, width * example.depth() / 8, uchar(0x55));
    }
    const QImage image1(bytes1.data(), width, height, example.bytesPerLine(), format);
    const QImage image2(bytes2.data(), width, height, example.bytesPerLine(), format);
    double diff = -1.0;
    QCOMPARE(compareImages(image1, image2, &diff, 0.5), 2);
    QCOMPARE(diff, 0.0);

    // Nor does a picture of 32 bits beside one of fewer lead on.
    QImage wide(width, height, QImage::Format_RGB32);
    wide.fill(0xff555555);
    QCOMPARE(compareImages(wide, image2, &diff, 0.5), 2);
    QCOMPARE(compareImages(image1, wide, &diff, 0.5), 2);
    QCOMPARE(diff, 0.0);
}

void tst_ImageComparison::picturesAreNotCopied()
{
    const QImage image = filled(10, 10, 0xff808080);
    const Pictures shared(image, image);
    const uchar* const bits = image.constBits();
    double diff = -1.0;
    QCOMPARE(compareImages(shared.first, shared.second, &diff, 0.5), 2);
    QCOMPARE(diff, 0.0);
    QCOMPARE(shared.first.constBits(), bits);
    QCOMPARE(shared.second.constBits(), bits);
}

void tst_ImageComparison::threadsCompareIndependently()
{
    const Pictures pictures = paint(QSize(5000, 7), [](QRgb& p, QRgb& q, int, int, Random& random) {
        p = random();
        q = random();
    });
    const double expected = differenceStepByStep(pictures.first, pictures.second);
    std::vector<double> differences(4, -1.0);
    std::vector<std::thread> threads;
    threads.reserve(differences.size());
    for (double& difference : differences) {
        threads.emplace_back([&pictures, &difference] {
            compareImages(pictures.first, pictures.second, &difference, 0.5);
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    for (double difference : differences)
        QVERIFY(areSameBits(difference, expected));
}

QTEST_APPLESS_MAIN(tst_ImageComparison)
#include "tst_ImageComparison.moc"
