// What the sample host's corrections make of pictures whose answer is known.

#include "CorrectionJob.h"
#include "Corrections.h"

#include <QSignalSpy>
#include <QTest>
#include <QThread>
#include <QThreadPool>
#include <QTimer>
#include <QtMath>

#include <algorithm>
#include <cmath>
#include <functional>

Q_DECLARE_METATYPE(QImage::Format)

namespace {

Corrections corrections(double horizon, double distortion, double keystone, bool autoCrop)
{
    Corrections result;
    result.horizon = horizon;
    result.distortion = distortion;
    result.keystone = keystone;
    result.autoCrop = autoCrop;
    return result;
}

/// A grey picture; \a brightness is asked for the middle of each pixel, from the picture's centre.
QImage drawn(const QSize& size, const std::function<double(double x, double y)>& brightness)
{
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            const int grey = qBound(
                0, qRound(brightness(x + 0.5 - size.width() / 2.0, y + 0.5 - size.height() / 2.0)),
                255);
            picture.setPixel(x, y, qRgb(grey, grey, grey));
        }
    }
    return picture;
}

/// A picture without any symmetry.
QImage motley(const QSize& size)
{
    QImage picture(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            picture.setPixel(x, y, qRgb((x * 7) % 256, (y * 5) % 256, (x * 3 + y * 2) % 256));
    }
    return picture;
}

/// The greatest difference of a channel, alpha left out, in the part of the pictures that keeps
/// \a border pixels from their edges.
int greatestDifference(const QImage& a, const QImage& b, int border = 0)
{
    int greatest = a.size() == b.size() ? 0 : 256;
    for (int y = border; y < qMin(a.height(), b.height()) - border; ++y) {
        for (int x = border; x < qMin(a.width(), b.width()) - border; ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            greatest = qMax(greatest, qAbs(qRed(p) - qRed(q)));
            greatest = qMax(greatest, qAbs(qGreen(p) - qGreen(q)));
            greatest = qMax(greatest, qAbs(qBlue(p) - qBlue(q)));
        }
    }
    return greatest;
}

int leastAlpha(const QImage& picture, const QRect& part)
{
    int least = 255;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x)
            least = qMin(least, qAlpha(picture.pixel(x, y)));
    }
    return least;
}

/// Lines across the picture that are straight in it.
double uprightLines(double x)
{
    return 128.0 + 100.0 * std::sin(x / 9.0);
}

double levelLines(double y)
{
    return 128.0 + 100.0 * std::sin(y / 9.0);
}

/// The radius at which a lens of the given strength shows a point, found by halving.
double radiusBeforeLens(double radius, double strength)
{
    double low = 0.0;
    double high = 1.6;
    for (int i = 0; i < 60; ++i) {
        const double middle = (low + high) / 2.0;
        (middle * (1.0 - strength * middle * middle) < radius ? low : high) = middle;
    }
    return low;
}

} // namespace

class tst_Corrections : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void without_corrections_a_picture_stays_bit_for_bit_data();
    void without_corrections_a_picture_stays_bit_for_bit();
    void corrections_are_equal_if_they_make_the_same_data();
    void corrections_are_equal_if_they_make_the_same();
    void a_quarter_turn_moves_pixels_clockwise();
    void half_a_turn_moves_pixels_to_the_opposite_place();
    void a_turned_gradient_is_a_gradient();
    void a_turned_grid_comes_back_upright_data();
    void a_turned_grid_comes_back_upright();
    void lines_that_a_lens_has_bent_come_back_straight_data();
    void lines_that_a_lens_has_bent_come_back_straight();
    void verticals_that_meet_come_back_parallel_data();
    void verticals_that_meet_come_back_parallel();
    void mirrored_corrections_mirror_the_result_data();
    void mirrored_corrections_mirror_the_result();
    void auto_crop_takes_the_greatest_part_without_empty_corners_data();
    void auto_crop_takes_the_greatest_part_without_empty_corners();
    void what_auto_crop_leaves_out_has_empty_corners_data();
    void what_auto_crop_leaves_out_has_empty_corners();
    void a_plain_picture_stays_plain_to_the_last_pixel_data();
    void a_plain_picture_stays_plain_to_the_last_pixel();
    void beyond_its_edges_a_picture_goes_on_as_it_ends_there();
    void without_auto_crop_corners_are_transparent_and_their_border_soft();
    void translucent_pictures_stay_as_translucent();
    void colours_never_exceed_their_alpha();
    void between_pixels_the_cubic_interpolates();
    void an_edge_stays_sharp_where_the_picture_shrinks();
    void lines_finer_than_the_result_can_show_turn_grey();
    void resolution_and_texts_are_kept();
    void a_null_picture_stays_null();
    void progress_rises_to_the_end_on_the_calling_thread();
    void it_stops_in_the_middle();
    void a_job_tells_its_result_before_it_finishes();
    void a_job_that_is_stopped_has_no_result();
    void twenty_four_megapixels_are_corrected_while_the_event_loop_turns();
};

void tst_Corrections::without_corrections_a_picture_stays_bit_for_bit_data()
{
    QTest::addColumn<QImage::Format>("format");
    QTest::newRow("RGB") << QImage::Format_RGB32;
    QTest::newRow("RGB with alpha") << QImage::Format_ARGB32;
    QTest::newRow("three bytes a pixel") << QImage::Format_RGB888;
    QTest::newRow("grey") << QImage::Format_Grayscale8;
    QTest::newRow("a table of colours") << QImage::Format_Indexed8;
    QTest::newRow("black and white") << QImage::Format_Mono;
}

void tst_Corrections::without_corrections_a_picture_stays_bit_for_bit()
{
    QFETCH(QImage::Format, format);
    const QImage picture = motley({37, 23}).convertToFormat(format);

    const QImage result = correctPicture(picture, corrections(0.0, 0.0, 0.0, true));

    QCOMPARE(result.format(), format);
    QCOMPARE(result, picture);
    QCOMPARE(correctPicture(picture, corrections(0.0, 0.0, 0.0, false)), picture);
}

void tst_Corrections::corrections_are_equal_if_they_make_the_same_data()
{
    QTest::addColumn<Corrections>("a");
    QTest::addColumn<Corrections>("b");
    QTest::addColumn<bool>("equal");

    const Corrections some = corrections(1.0, 0.2, 0.3, true);
    QTest::newRow("the same ones") << some << some << true;
    QTest::newRow("another horizon") << some << corrections(1.1, 0.2, 0.3, true) << false;
    QTest::newRow("another distortion") << some << corrections(1.0, 0.21, 0.3, true) << false;
    QTest::newRow("another keystone") << some << corrections(1.0, 0.2, 0.29, true) << false;
    QTest::newRow("not cropped") << some << corrections(1.0, 0.2, 0.3, false) << false;
    QTest::newRow("nothing to correct, cropped or not")
        << Corrections() << corrections(0.0, 0.0, 0.0, false) << true;
}

void tst_Corrections::corrections_are_equal_if_they_make_the_same()
{
    QFETCH(Corrections, a);
    QFETCH(Corrections, b);
    QFETCH(bool, equal);

    QCOMPARE(a == b, equal);
    QCOMPARE(b == a, equal);
    QCOMPARE(a != b, !equal);
}

void tst_Corrections::a_quarter_turn_moves_pixels_clockwise()
{
    const QImage picture = motley({48, 48});

    const QImage result = correctPicture(picture, corrections(90.0, 0.0, 0.0, true));

    // The top left corner goes to the top right.
    QCOMPARE(result.pixel(47, 0), picture.pixel(0, 0));
    QCOMPARE(greatestDifference(result, picture.transformed(QTransform().rotate(90.0))), 0);
}

void tst_Corrections::half_a_turn_moves_pixels_to_the_opposite_place()
{
    const QImage picture = motley({61, 20});

    const QImage result = correctPicture(picture, corrections(180.0, 0.0, 0.0, false));

    QCOMPARE(greatestDifference(result, picture.mirrored(true, true)), 0);
}

void tst_Corrections::a_turned_gradient_is_a_gradient()
{
    const QImage picture = drawn({200, 200}, [](double x, double) { return 128.0 + x; });
    // cos 30° and sin 30°: brightness grows along the turned axis.
    const QImage expected =
        drawn({200, 200}, [](double x, double y) { return 128.0 + 0.8660254 * x + 0.5 * y; });

    const QImage result = correctPicture(picture, corrections(30.0, 0.0, 0.0, false));

    QVERIFY(greatestDifference(result, expected, 40) <= 1);
}

void tst_Corrections::a_turned_grid_comes_back_upright_data()
{
    QTest::addColumn<double>("degrees");
    QTest::newRow("turned a little") << 0.7;
    QTest::newRow("turned clockwise") << 12.5;
    QTest::newRow("turned counter-clockwise") << -12.5;
}

void tst_Corrections::a_turned_grid_comes_back_upright()
{
    QFETCH(double, degrees);
    const double c = qCos(qDegreesToRadians(degrees));
    const double s = qSin(qDegreesToRadians(degrees));
    // A camera that was held at an angle: the point (x, y) of the picture shows this one.
    const QImage picture = drawn({300, 220}, [=](double x, double y) {
        return (uprightLines(x * c - y * s) + levelLines(x * s + y * c)) / 2.0;
    });
    const QImage expected = drawn(
        {300, 220}, [](double x, double y) { return (uprightLines(x) + levelLines(y)) / 2.0; });

    const QImage result = correctPicture(picture, corrections(degrees, 0.0, 0.0, false));

    QVERIFY(greatestDifference(picture, expected, 70) > 3);
    QVERIFY(greatestDifference(result, expected, 70) <= 2);
}

void tst_Corrections::lines_that_a_lens_has_bent_come_back_straight_data()
{
    QTest::addColumn<double>("distortion");
    QTest::newRow("bulging outwards") << 1.0;
    QTest::newRow("bulging outwards a little") << 0.3;
    QTest::newRow("bent inwards") << -1.0;
    QTest::newRow("bent inwards a little") << -0.3;
}

void tst_Corrections::lines_that_a_lens_has_bent_come_back_straight()
{
    QFETCH(double, distortion);
    const QSize size(320, 240);
    const double halfDiagonal = 200.0;
    const QImage picture = drawn(size, [=](double x, double y) {
        const double radius = std::hypot(x, y) / halfDiagonal;
        const double before = radiusBeforeLens(radius, 0.12 * distortion);
        return uprightLines(radius > 0.0 ? x * before / radius : x);
    });
    const QImage expected = drawn(size, [](double x, double) { return uprightLines(x); });

    const QImage result = correctPicture(picture, corrections(0.0, distortion, 0.0, false));

    QVERIFY(greatestDifference(picture, expected, 24) > 10);
    QVERIFY(greatestDifference(result, expected, 24) <= 3);
}

void tst_Corrections::verticals_that_meet_come_back_parallel_data()
{
    QTest::addColumn<double>("keystone");
    QTest::newRow("above the picture") << 0.6;
    QTest::newRow("below the picture") << -0.6;
}

void tst_Corrections::verticals_that_meet_come_back_parallel()
{
    QFETCH(double, keystone);
    const QSize size(320, 240);
    const double halfDiagonal = 200.0;
    const double perspective = 0.35 * keystone / halfDiagonal;
    // The lines come closer towards the top if they meet above it.
    const QImage picture =
        drawn(size, [=](double x, double y) { return uprightLines(x / (1.0 + perspective * y)); });
    const QImage expected = drawn(size, [](double x, double) { return uprightLines(x); });

    const QImage result = correctPicture(picture, corrections(0.0, 0.0, keystone, false));

    QVERIFY(greatestDifference(picture, expected, 40) > 50);
    QVERIFY(greatestDifference(result, expected, 40) <= 2);
}

void tst_Corrections::mirrored_corrections_mirror_the_result_data()
{
    QTest::addColumn<Corrections>("one");
    QTest::addColumn<Corrections>("other");
    QTest::addColumn<bool>("leftAndRight");

    QTest::newRow("a turn to the other side")
        << corrections(9.0, 0.5, 0.4, true) << corrections(-9.0, 0.5, 0.4, true) << true;
    QTest::newRow("a turn to the other side, with corners")
        << corrections(9.0, -0.5, 0.4, false) << corrections(-9.0, -0.5, 0.4, false) << true;
    QTest::newRow("upside down") << corrections(9.0, 0.5, 0.4, true)
                                 << corrections(-9.0, 0.5, -0.4, true) << false;
}

void tst_Corrections::mirrored_corrections_mirror_the_result()
{
    QFETCH(Corrections, one);
    QFETCH(Corrections, other);
    QFETCH(bool, leftAndRight);
    const QImage picture = drawn({121, 90}, [](double x, double y) {
        return uprightLines(x + 3.0) / 2.0 + levelLines(y - 2.0) / 2.0;
    });

    const QImage result = correctPicture(picture, one);
    const QImage mirrored = correctPicture(picture.mirrored(leftAndRight, !leftAndRight), other)
                                .mirrored(leftAndRight, !leftAndRight);

    QVERIFY(greatestDifference(result, mirrored) <= 1);
}

void tst_Corrections::auto_crop_takes_the_greatest_part_without_empty_corners_data()
{
    QTest::addColumn<Corrections>("corrections");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<double>("scale");

    QTest::newRow("nothing to correct") << Corrections() << QSize(300, 200) << 1.0;
    QTest::newRow("an eighth of a turn of a square")
        << corrections(45.0, 0.0, 0.0, true) << QSize(100, 100) << 0.70711;
    QTest::newRow("a quarter turn")
        << corrections(90.0, 0.0, 0.0, true) << QSize(300, 200) << 0.66667;
    QTest::newRow("ten degrees") << corrections(10.0, 0.0, 0.0, true) << QSize(300, 200) << 0.80303;
    QTest::newRow("ten degrees, upright picture")
        << corrections(10.0, 0.0, 0.0, true) << QSize(200, 300) << 0.80303;
    QTest::newRow("ten degrees back")
        << corrections(-10.0, 0.0, 0.0, true) << QSize(300, 200) << 0.80303;
    QTest::newRow("a picture that grows on all sides")
        << corrections(0.0, 1.0, 0.0, true) << QSize(100, 100) << 1.07442;
    QTest::newRow("corners that move inwards")
        << corrections(0.0, -1.0, 0.0, true) << QSize(300, 200) << 0.90967;
    QTest::newRow("a bottom that narrows")
        << corrections(0.0, 0.0, 1.0, true) << QSize(300, 200) << 0.83742;
    QTest::newRow("a top that narrows")
        << corrections(0.0, 0.0, -1.0, true) << QSize(300, 200) << 0.83742;
    QTest::newRow("the same at another resolution")
        << corrections(0.0, 0.0, -1.0, true) << QSize(6000, 4000) << 0.83742;
}

void tst_Corrections::auto_crop_takes_the_greatest_part_without_empty_corners()
{
    QFETCH(Corrections, corrections);
    QFETCH(QSize, size);
    QFETCH(double, scale);

    QVERIFY2(qAbs(cropScale(corrections, size) - scale) < 1e-5,
             qPrintable(QString::number(cropScale(corrections, size), 'f', 6)));
}

void tst_Corrections::what_auto_crop_leaves_out_has_empty_corners_data()
{
    QTest::addColumn<Corrections>("uncropped");
    QTest::newRow("turned") << corrections(8.0, 0.0, 0.0, false);
    QTest::newRow("corners moved inwards") << corrections(0.0, -1.0, 0.0, false);
    QTest::newRow("narrowed") << corrections(0.0, 0.0, 0.7, false);
    QTest::newRow("all together") << corrections(-11.0, -0.4, -0.8, false);
}

void tst_Corrections::what_auto_crop_leaves_out_has_empty_corners()
{
    QFETCH(Corrections, uncropped);
    QImage picture(600, 400, QImage::Format_RGB32);
    picture.fill(Qt::white);
    const QImage result = correctPicture(picture, uncropped);
    const auto part = [&](double scale) {
        QRectF rect(QPointF(), QSizeF(600, 400) * scale);
        rect.moveCenter(QPointF(300, 200));
        return rect;
    };
    const double scale = cropScale(uncropped, picture.size());

    // One pixel is the soft border.
    QCOMPARE(leastAlpha(result, part(scale).toAlignedRect().adjusted(2, 2, -2, -2)), 255);
    QVERIFY(leastAlpha(result, part(scale * 1.01).toRect()) < 255);
}

void tst_Corrections::a_plain_picture_stays_plain_to_the_last_pixel_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<Corrections>("cropped");

    const QList<QPair<const char*, Corrections>> kinds{
        {"turned", corrections(7.3, 0.0, 0.0, true)},
        {"turned far", corrections(-45.0, 0.0, 0.0, true)},
        {"unbent outwards", corrections(0.0, -1.0, 0.0, true)},
        {"unbent inwards", corrections(0.0, 1.0, 0.0, true)},
        {"upright again", corrections(0.0, 0.0, 1.0, true)},
        {"all together", corrections(-15.0, -1.0, -1.0, true)}};
    const QList<QSize> sizes{{1, 1}, {2, 1}, {1, 200}, {200, 1}, {2, 3000}, {64, 48}, {150, 400}};
    for (const QSize& size : sizes) {
        for (const auto& kind : kinds) {
            QTest::addRow("%d by %d, %s", size.width(), size.height(), kind.first)
                << size << kind.second;
        }
    }
}

void tst_Corrections::a_plain_picture_stays_plain_to_the_last_pixel()
{
    QFETCH(QSize, size);
    QFETCH(Corrections, cropped);
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(qRgb(201, 7, 99));

    QCOMPARE(correctPicture(picture, cropped), picture);
}

void tst_Corrections::beyond_its_edges_a_picture_goes_on_as_it_ends_there()
{
    const QImage sides = drawn({40, 30}, [](double x, double) { return x < 0.0 ? 60.0 : 200.0; });
    const QImage ends = drawn({40, 30}, [](double, double y) { return y < 0.0 ? 60.0 : 200.0; });
    const Corrections some = corrections(0.5, 0.1, 0.1, true);

    const QImage correctedSides = correctPicture(sides, some);
    for (int y = 0; y < 30; ++y) {
        QCOMPARE(qRed(correctedSides.pixel(0, y)), 60);
        QCOMPARE(qRed(correctedSides.pixel(39, y)), 200);
    }
    const QImage correctedEnds = correctPicture(ends, some);
    for (int x = 0; x < 40; ++x) {
        QCOMPARE(qRed(correctedEnds.pixel(x, 0)), 60);
        QCOMPARE(qRed(correctedEnds.pixel(x, 29)), 200);
    }
}

void tst_Corrections::without_auto_crop_corners_are_transparent_and_their_border_soft()
{
    QImage picture(200, 100, QImage::Format_RGB32);
    picture.fill(Qt::white);

    const QImage result = correctPicture(picture, corrections(10.0, 0.0, 0.0, false));

    QCOMPARE(result.size(), QSize(200, 100));
    for (const QPoint& corner : {QPoint(0, 99), QPoint(199, 0)})
        QCOMPARE(qAlpha(result.pixel(corner)), 0);
    QCOMPARE(result.pixel(100, 50), qRgba(255, 255, 255, 255));
    // Some steps between full and empty, on every line that crosses the border.
    for (int y = 0; y < 80; ++y) {
        int between = 0;
        for (int x = 100; x < 200; ++x) {
            const int alpha = qAlpha(result.pixel(x, y));
            between += alpha > 0 && alpha < 255;
        }
        QVERIFY2(y > 12 || between > 0, qPrintable(QString::number(y)));
    }
}

void tst_Corrections::translucent_pictures_stay_as_translucent()
{
    QImage picture(90, 60, QImage::Format_ARGB32_Premultiplied);
    picture.fill(qRgba(30, 20, 10, 40));

    QCOMPARE(correctPicture(picture, corrections(9.0, 0.6, 0.3, true)), picture);

    picture.fill(Qt::transparent);
    QCOMPARE(correctPicture(picture, corrections(9.0, 0.6, 0.3, true)), picture);
}

void tst_Corrections::colours_never_exceed_their_alpha()
{
    QImage picture(64, 64, QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < 64; ++y) {
        for (int x = 0; x < 64; ++x)
            picture.setPixel(x, y, (x / 4 + y / 4) % 2 ? qRgba(255, 0, 0, 255) : 0);
    }

    const QImage result = correctPicture(picture, corrections(5.0, 0.0, 0.0, true));

    QCOMPARE(result.format(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < 64; ++y) {
        const auto* line = reinterpret_cast<const QRgb*>(result.constScanLine(y));
        for (int x = 0; x < 64; ++x) {
            QCOMPARE(qRed(line[x]), qAlpha(line[x]));
            QCOMPARE(qBlue(line[x]), 0);
        }
    }
}

void tst_Corrections::between_pixels_the_cubic_interpolates()
{
    // About the centre of 41 by 40 pixels a quarter turn meets the middle between four pixels.
    QImage picture(41, 40, QImage::Format_RGB32);
    picture.fill(qRgb(100, 100, 100));
    picture.setPixel(20, 20, qRgb(228, 228, 228));

    const QImage result = correctPicture(picture, corrections(90.0, 0.0, 0.0, false));

    // 128 times the products of -1/16, 9/16, 9/16, -1/16.
    const int expected[4][4] = {
        {100, 96, 96, 100}, {96, 140, 140, 96}, {96, 140, 140, 96}, {100, 96, 96, 100}};
    for (int y = 0; y < 4; ++y) {
        for (int x = 0; x < 4; ++x) {
            const int grey = qRed(result.pixel(18 + x, 18 + y));
            QVERIFY2(qAbs(grey - expected[y][x]) <= 1,
                     qPrintable(QStringLiteral("%1 at %2, %3").arg(grey).arg(x).arg(y)));
        }
    }
    QCOMPARE(qRed(result.pixel(17, 20)), 100);
    QCOMPARE(qRed(result.pixel(22, 20)), 100);
}

void tst_Corrections::an_edge_stays_sharp_where_the_picture_shrinks()
{
    const QImage picture =
        drawn({600, 60}, [](double x, double y) { return 10.0 * (x + 240.0) < y ? 60.0 : 200.0; });

    const QImage result = correctPicture(picture, corrections(0.0, -1.0, 0.0, false));

    int darkest = 255;
    int brightest = 0;
    int between = 0;
    for (int y = 10; y < 50; ++y) {
        for (int x = 40; x < 120; ++x) {
            const int grey = qRed(result.pixel(x, y));
            darkest = qMin(darkest, grey);
            brightest = qMax(brightest, grey);
            between += grey > 80 && grey < 180;
        }
    }
    // A cubic overshoots a little.
    QVERIFY2(brightest > 205 && brightest < 220, qPrintable(QString::number(brightest)));
    QVERIFY2(darkest < 55 && darkest > 40, qPrintable(QString::number(darkest)));
    QVERIFY2(between < 2 * 40, qPrintable(QString::number(between)));
}

void tst_Corrections::lines_finer_than_the_result_can_show_turn_grey()
{
    // Every second column is white; towards the sides the result has fewer pixels than the picture.
    const QImage picture =
        drawn({600, 60}, [](double x, double) { return qFloor(x) % 2 == 0 ? 255.0 : 0.0; });

    const QImage result = correctPicture(picture, corrections(0.0, -1.0, 0.0, false));

    int darkest = 255;
    int brightest = 0;
    for (int x = 30; x < 90; ++x) {
        const int grey = qRed(result.pixel(x, 30));
        darkest = qMin(darkest, grey);
        brightest = qMax(brightest, grey);
    }
    QVERIFY2(brightest - darkest < 160, qPrintable(QString::number(brightest - darkest)));
    QVERIFY(brightest > 127 && darkest < 128);
}

void tst_Corrections::resolution_and_texts_are_kept()
{
    QImage picture = motley({20, 10});
    picture.setDotsPerMeterX(11811);
    picture.setDotsPerMeterY(5906);
    picture.setText(QStringLiteral("Author"), QStringLiteral("somebody"));

    const QImage result = correctPicture(picture, corrections(3.0, 0.0, 0.0, true));

    QCOMPARE(result.dotsPerMeterX(), 11811);
    QCOMPARE(result.dotsPerMeterY(), 5906);
    QCOMPARE(result.text(QStringLiteral("Author")), QStringLiteral("somebody"));
}

void tst_Corrections::a_null_picture_stays_null()
{
    QVERIFY(correctPicture(QImage(), corrections(3.0, 0.0, 0.0, true)).isNull());
}

void tst_Corrections::progress_rises_to_the_end_on_the_calling_thread()
{
    QList<int> progress;
    bool onThisThread = true;
    CorrectionWatch watch;
    watch.progress = [&](int percent) {
        progress += percent;
        onThisThread = onThisThread && QThread::currentThread() == thread();
    };

    const QImage result =
        correctPicture(motley({300, 3000}), corrections(3.0, 0.0, 0.0, true), watch);

    QVERIFY(!result.isNull());
    QVERIFY(onThisThread);
    QVERIFY(progress.size() > 2);
    QVERIFY(std::is_sorted(progress.cbegin(), progress.cend()));
    QVERIFY(progress.first() < 50);
    QCOMPARE(progress.last(), 100);
}

void tst_Corrections::it_stops_in_the_middle()
{
    QAtomicInt asked;
    QAtomicInt told;
    CorrectionWatch watch;
    watch.stopRequired = [&] { return asked.fetchAndAddOrdered(1) >= 20; };
    watch.progress = [&](int percent) { told.storeRelease(percent); };

    const QImage result =
        correctPicture(motley({300, 3000}), corrections(3.0, 0.0, 0.0, true), watch);

    QVERIFY(result.isNull());
    QVERIFY(told.loadAcquire() < 30);
    // Each thread asks once more at most.
    QVERIFY(asked.loadAcquire() <= 20 + QThread::idealThreadCount());
}

void tst_Corrections::a_job_tells_its_result_before_it_finishes()
{
    const QImage picture = motley({50, 50});
    CorrectionJob job(picture, corrections(90.0, 0.0, 0.0, true));
    QStringList order;
    QImage result;
    connect(&job, &CorrectionJob::corrected, this, [&](const QImage& corrected) {
        order += QStringLiteral("corrected");
        result = corrected;
    });
    connect(&job, &CQRunnableItem::finished, this, [&](bool ok, bool stopped) {
        order += QStringLiteral("finished %1 %2").arg(ok).arg(stopped);
    });

    job.run();

    QCOMPARE(order, QStringList({QStringLiteral("corrected"), QStringLiteral("finished 1 0")}));
    QCOMPARE(result, picture.transformed(QTransform().rotate(90.0)));
}

void tst_Corrections::a_job_that_is_stopped_has_no_result()
{
    CorrectionJob job(motley({300, 3000}), corrections(3.0, 0.0, 0.0, true));
    QSignalSpy corrected(&job, &CorrectionJob::corrected);
    QSignalSpy finished(&job, &CQRunnableItem::finished);
    connect(&job, &CorrectionJob::progressChanged, &job, &CQRunnableItem::stop);

    job.run();

    QCOMPARE(finished.size(), 1);
    QCOMPARE(finished.at(0), QVariantList({false, true}));
    QCOMPARE(corrected.size(), 0);
}

void tst_Corrections::twenty_four_megapixels_are_corrected_while_the_event_loop_turns()
{
    QImage picture(6000, 4000, QImage::Format_RGB32);
    picture.fill(qRgb(10, 120, 230));
    CorrectionJob job(picture, corrections(4.0, 0.5, 0.5, true));
    job.setAutoDelete(false);
    QImage result;
    connect(&job, &CorrectionJob::corrected, this,
            [&](const QImage& corrected) { result = corrected; });
    QSignalSpy finished(&job, &CQRunnableItem::finished);
    QSignalSpy progress(&job, &CorrectionJob::progressChanged);
    int turns = 0;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] { ++turns; });
    timer.start(5);

    QThreadPool pool;
    pool.start(&job);
    QTRY_VERIFY_WITH_TIMEOUT(!result.isNull(), 120000);
    pool.waitForDone();

    QCOMPARE(finished.size(), 1);
    QCOMPARE(result, picture);
    QVERIFY(progress.size() > 20);
    QVERIFY2(turns > 5, qPrintable(QString::number(turns)));
}

QTEST_GUILESS_MAIN(tst_Corrections)

#include "tst_Corrections.moc"
