#include "GuiUtils.h"

#include "MessageCounter.h"
#include "RecordingLogger.h"

#include <QApplication>
#include <QIconEngine>
#include <QImage>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPainter>
#include <QRegularExpression>
#include <QTest>

#include <cmath>
#include <functional>
#include <limits>
#include <optional>
#include <type_traits>

// As hosts name them: at global scope.
static_assert(std::is_same<decltype(&::drawToolLine),
                           void (*)(QPointF const&, QPointF const&, QPixmap const&, bool, QPainter*,
                                    QRectF const&)>::value,
              "");
static_assert(std::is_same<decltype(&::toolCursorPixmap), QPixmap (*)(ToolCursorType)>::value, "");
static_assert(std::is_same<decltype(&::paintIcon),
                           void (*)(QPainter*, QIcon const&, QRect const&, Qt::AspectRatioMode,
                                    QIcon::Mode, QIcon::State)>::value,
              "");
static_assert(std::is_same<decltype(&::sizeOfIcon),
                           QSize (*)(QIcon const&, QIcon::Mode, QIcon::State)>::value,
              "");
static_assert(
    std::is_same<decltype(&::lineAndCircleIntersectionPoints),
                 QList<QPointF> (*)(double, double, double, double, double, double, double)>::value,
    "");

static_assert(std::is_enum<ToolCursorType>::value, "");
static_assert(::ToolCursorArrowDiagonalLeft == 0, "");
static_assert(::ToolCursorArrowDiagonalRight == 1, "");
static_assert(::ToolCursorArrowHorizontal == 2, "");
static_assert(::ToolCursorArrowSquare == 3, "");
static_assert(::ToolCursorArrowVertical == 4, "");
static_assert(::ToolCursorRotationTop == 5, "");
static_assert(::ToolCursorRotationBottom == 6, "");

Q_DECLARE_METATYPE(QIcon::Mode)
Q_DECLARE_METATYPE(QIcon::State)
Q_DECLARE_METATYPE(Qt::AspectRatioMode)

namespace {

constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();

const QRectF unbounded;

QString number(double value)
{
    // Without the sign of a zero.
    return QString::number(std::abs(value) < 0.0005 ? 0.0 : value, 'f', 3)
        .remove(QRegularExpression(QStringLiteral("\\.?0+$")));
}

QString toText(const QRectF& rect)
{
    return QStringLiteral("%1x%2+%3+%4")
        .arg(number(rect.width()), number(rect.height()), number(rect.x()), number(rect.y()));
}

/// Tells what a painter lets it draw. For a tool line that is "from X,Y along DX,DY:", and each
/// pixmap as WxH+X+Y, with what is taken from it if that isn't the whole.
class RecordingEngine : public QPaintEngine
{
public:
    RecordingEngine()
        : QPaintEngine(AllFeatures)
    {}

    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    void updateState(const QPaintEngineState&) override {}
    Type type() const override { return User; }

    void drawPixmap(const QRectF& target, const QPixmap& pixmap, const QRectF& source) override
    {
        const QTransform transform = painter()->transform();
        const QPointF origin = transform.map(QPointF(0, 0));
        const QPointF along = transform.map(QPointF(1, 0)) - origin;
        const QString placeNow =
            QStringLiteral("from %1,%2 along %3,%4:")
                .arg(number(origin.x()), number(origin.y()), number(along.x()), number(along.y()));
        if (placeNow != m_place)
            drawn << placeNow;
        m_place = placeNow;
        drawn << toText(target);
        if (source != QRectF(pixmap.rect()))
            drawn << QStringLiteral("of ") + toText(source);
        if (!painter()->testRenderHint(QPainter::SmoothPixmapTransform))
            drawn << QStringLiteral("unsmooth");
        hints = painter()->renderHints();
    }
    void drawTiledPixmap(const QRectF&, const QPixmap&, const QPointF&) override
    {
        drawn << QStringLiteral("tiled pixmap");
    }
    void drawImage(const QRectF&, const QImage&, const QRectF&, Qt::ImageConversionFlags) override
    {
        drawn << QStringLiteral("image");
    }
    void drawPath(const QPainterPath&) override { drawn << QStringLiteral("path"); }
    void drawPolygon(const QPointF*, int, PolygonDrawMode) override
    {
        drawn << QStringLiteral("polygon");
    }

    QStringList drawn;
    QPainter::RenderHints hints;

private:
    QString m_place;
};

class RecordingDevice : public QPaintDevice
{
public:
    QPaintEngine* paintEngine() const override { return &engine; }
    QString drawn() const { return engine.drawn.join(QLatin1Char(' ')); }

    mutable RecordingEngine engine;

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
        case PdmHeight:
            return 1000;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return int(devicePixelRatioFScale());
        default:
            return 96;
        }
    }
};

/// What becomes of a line with a pixmap of that size, as RecordingEngine tells it.
QString drawnLine(const QPointF& from, const QPointF& to, const QSize& size, bool stretch,
                  const QRectF& bounds)
{
    QPixmap pixmap(size);
    pixmap.fill(Qt::red);
    RecordingDevice device;
    QPainter painter(&device);
    drawToolLine(from, to, pixmap, stretch, &painter, bounds);
    return device.drawn();
}

struct Letter
{
    char letter;
    QRgb colour;
};
const Letter letters[] = {{'.', 0xffffffff}, {'r', 0xffff0000}, {'g', 0xff00ff00},
                          {'b', 0xff0000ff}, {'y', 0xffffff00}, {'c', 0xff00ffff},
                          {'m', 0xffff00ff}, {'k', 0xff000000}, {'o', 0xffff8000}};

/// A picture of letters, in which ' ' is transparent.
QImage picture(const QStringList& rows)
{
    QImage image(rows.first().size(), rows.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            for (const Letter& letter : letters) {
                if (rows.at(y).at(x) == QLatin1Char(letter.letter))
                    image.setPixel(x, y, letter.colour);
            }
        }
    }
    return image;
}

QPixmap pattern(const QStringList& rows)
{
    return QPixmap::fromImage(picture(rows));
}

/// '?' stands for a colour that has no letter.
QChar letterAt(const QImage& image, int x, int y)
{
    const QRgb colour = image.pixel(x, y);
    for (const Letter& letter : letters) {
        if (colour == letter.colour)
            return QLatin1Char(letter.letter);
    }
    return QLatin1Char('?');
}

QStringList rowsOf(const QImage& image)
{
    QStringList rows;
    for (int y = 0; y < image.height(); ++y) {
        QString row;
        for (int x = 0; x < image.width(); ++x)
            row += letterAt(image, x, y);
        rows << row;
    }
    return rows;
}

QImage whiteImage(int width, int height)
{
    QImage image(width, height, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    return image;
}

bool isBlank(const QImage& image)
{
    return image == whiteImage(image.width(), image.height());
}

/// The columns r, g and b, and the rows above and below told apart.
QPixmap threeColumns()
{
    return pattern({QStringLiteral("rgb"), QStringLiteral("rgk")});
}

/// Squares of 8 by 8: the upper half red and green, the lower one blue and black.
QPixmap fourSquares()
{
    QPixmap pixmap(16, 16);
    QPainter painter(&pixmap);
    painter.fillRect(0, 0, 8, 8, QColor(255, 0, 0));
    painter.fillRect(8, 0, 8, 8, QColor(0, 255, 0));
    painter.fillRect(0, 8, 8, 8, QColor(0, 0, 255));
    painter.fillRect(8, 8, 8, 8, QColor(0, 0, 0));
    return pixmap;
}

/// An icon whose sizes are given, and that tells where it was painted.
class RecordingIcon : public QIconEngine
{
public:
    using Sizes = std::function<QList<QSize>(QIcon::Mode, QIcon::State)>;

    RecordingIcon(Sizes sizes, QStringList* painted, const QSize& actual = QSize())
        : m_sizes(std::move(sizes))
        , m_painted(painted)
        , m_actual(actual)
    {}

    void paint(QPainter*, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        *m_painted << QStringLiteral("%1 mode %2 state %3")
                          .arg(toText(rect))
                          .arg(int(mode))
                          .arg(int(state));
    }
    QSize actualSize(const QSize& size, QIcon::Mode, QIcon::State) override
    {
        return m_actual.isValid() ? m_actual : size;
    }
    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) const override
    {
        return m_sizes(mode, state);
    }
    QPixmap pixmap(const QSize&, QIcon::Mode, QIcon::State) override { return QPixmap(); }
    QIconEngine* clone() const override { return new RecordingIcon(*this); }
    void virtual_hook(int id, void* data) override
    {
        if (id == IsNullHook)
            *static_cast<bool*>(data) = isNullIcon;
        else if (id == AvailableSizesHook) {
            auto& argument = *static_cast<AvailableSizesArgument*>(data);
            argument.sizes = availableSizes(argument.mode, argument.state);
        } else
            QIconEngine::virtual_hook(id, data);
    }

    bool isNullIcon = false;

private:
    const Sizes m_sizes;
    QStringList* const m_painted;
    const QSize m_actual;
};

RecordingIcon::Sizes always(const QList<QSize>& sizes)
{
    return [sizes](QIcon::Mode, QIcon::State) { return sizes; };
}

QPixmap filledPixmap(int width, int height)
{
    QPixmap pixmap(width, height);
    pixmap.fill(QColor(255, 0, 0));
    return pixmap;
}

QString toText(const QList<QPointF>& points)
{
    QStringList texts;
    for (const QPointF& point : points)
        texts << QStringLiteral("%1,%2").arg(number(point.x()), number(point.y()));
    return texts.join(QLatin1Char(' '));
}

/// But for what rounding does to an edge.
bool isNearlySame(const QImage& a, const QImage& b)
{
    if (a.size() != b.size())
        return false;
    const auto isClose = [](int x, int y) { return std::abs(x - y) <= 64; };
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            if (!isClose(qRed(p), qRed(q)) || !isClose(qGreen(p), qGreen(q))
                || !isClose(qBlue(p), qBlue(q)) || !isClose(qAlpha(p), qAlpha(q)))
                return false;
        }
    }
    return true;
}

/// The part of a picture that has anything in it.
QImage ink(const QPixmap& pixmap)
{
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QRect area;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qAlpha(image.pixel(x, y)) >= 24)
                area |= QRect(x, y, 1, 1);
        }
    }
    return image.copy(area);
}

} // namespace

class tst_ToolLines : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void direction_data();
    void direction();
    void tiles_data();
    void tiles();
    void stretched_data();
    void stretched();
    void clipping_data();
    void clipping();
    void clippingOrder_data();
    void clippingOrder();
    void noClipping_data();
    void noClipping();

    void tiledPixels_data();
    void tiledPixels();
    void stretchedPixels();
    void obliquePixels_data();
    void obliquePixels();
    void transparentPatternPixels();

    void painterTransform_data();
    void painterTransform();
    void painterHints_data();
    void painterHints();
    void painterClipAndOpacity();
    void nothingToDraw_data();
    void nothingToDraw();
    void unreasonableLine_data();
    void unreasonableLine();
    void aVeryLongLine_data();
    void aVeryLongLine();
    void aVeryLongLineInAPicture();
    void unreasonableBounds_data();
    void unreasonableBounds();

    void cursor_data();
    void cursor();
    void cursorSymmetry_data();
    void cursorSymmetry();
    void cursorsDiffer();
    void unknownCursor_data();
    void unknownCursor();

    void iconSize_data();
    void iconSize();
    void iconSizeByModeAndState();
    void iconSizeOfPixmaps();
    void iconPlace_data();
    void iconPlace();
    void iconModeAndState_data();
    void iconModeAndState();
    void iconAlignment_data();
    void iconAlignment();
    void iconNotPainted();
    void iconPixels_data();
    void iconPixels();

    void crossings_data();
    void crossings();
    void unreasonableCircle_data();
    void unreasonableCircle();
    void overflowingCircle_data();
    void overflowingCircle();

private:
    RecordingLogger m_logger;
    std::optional<MessageCounter> m_messages;
};

void tst_ToolLines::init()
{
    m_messages.emplace();
    m_logger.takeLines();
}

void tst_ToolLines::cleanup()
{
    const int messages = m_messages->count();
    m_messages.reset();
    QCOMPARE(messages, 0);
    QCOMPARE(m_logger.takeLines(), QStringList());
}

void tst_ToolLines::direction_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<QString>("drawn");

    const QString tiles = QStringLiteral(" 8x6+0+0 8x6+8+0");
    const auto row = [&tiles](const char* name, const QPointF& from, const QPointF& to,
                              const char* place) {
        QTest::newRow(name) << from << to << QLatin1String(place) + tiles;
    };

    // The angles count against the clock, from the right.
    row("0 degrees, on the line itself", {20, 50}, {32, 50}, "from 20,50 along 1,0:");
    row("180 degrees, from the other end, on the line", {32, 50}, {20, 50},
        "from 20,50 along 1,0:");
    row("90 degrees, on the line", {20, 50}, {20, 38}, "from 20,50 along 0,-1:");
    row("270 degrees, from the other end, on the line", {20, 38}, {20, 50},
        "from 20,50 along 0,-1:");
    row("45 degrees, half a height up", {20, 50}, {30, 40}, "from 20,47 along 0.707,-0.707:");
    row("225 degrees, from the other end", {30, 40}, {20, 50}, "from 20,47 along 0.707,-0.707:");
    row("135 degrees, not swapped", {40, 50}, {30, 40}, "from 40,47 along -0.707,-0.707:");
    row("315 degrees, not swapped", {30, 40}, {40, 50}, "from 30,37 along 0.707,0.707:");
    row("134.5 degrees, not swapped", {50, 50}, {40.5, 40.33}, "from 50,47 along -0.701,-0.713:");
    row("135.5 degrees, from the other end", {40, 40}, {30.33, 30.5},
        "from 30,28 along 0.713,0.701:");
    row("314.5 degrees, from the other end", {20, 20}, {29.5, 29.67},
        "from 30,27 along -0.701,-0.713:");
    row("315.5 degrees, not swapped", {20, 20}, {29.67, 29.5}, "from 20,17 along 0.713,0.701:");
    row("30 degrees", {10, 40}, {22.124, 33}, "from 10,37 along 0.866,-0.5:");
    row("150 degrees, from the other end", {22.124, 40}, {10, 33}, "from 10,30 along 0.866,0.5:");
    row("210 degrees, from the other end", {22.124, 33}, {10, 40}, "from 10,37 along 0.866,-0.5:");
    row("300 degrees, from the other end", {20, 20}, {27, 32.124}, "from 27,29 along -0.5,-0.866:");
    row("330 degrees", {10, 33}, {22.124, 40}, "from 10,30 along 0.866,0.5:");
    row("almost horizontal is oblique", {20, 50}, {34, 49.999}, "from 20,47 along 1,0:");
    row("almost vertical is oblique", {20, 50}, {20.001, 36}, "from 20,47 along 0,-1:");

    row("the start is rounded", {20.5, 50.49}, {34, 50.49}, "from 21,50 along 1,0:");
    row("a negative half is rounded up", {-20.5, -50.5}, {-6.5, -50.5}, "from -20,-50 along 1,0:");
    row("the start is rounded after the shift", {20.4, 50.6}, {30.4, 40.6},
        "from 20,48 along 0.707,-0.707:");
}

void tst_ToolLines::direction()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    QFETCH(QString, drawn);
    QCOMPARE(drawnLine(from, to, QSize(8, 6), false, unbounded), drawn);
}

void tst_ToolLines::tiles_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<QSize>("pixmap");
    QTest::addColumn<QString>("drawn");

    const auto row = [](const char* name, const QPointF& from, const QPointF& to,
                        const QSize& pixmap, const char* drawn) {
        QTest::newRow(name) << from << to << pixmap << QString::fromLatin1(drawn);
    };

    row("one more at the rounded length", {0, 5}, {16.4, 5}, {8, 4},
        "from 0,5 along 1,0: 8x4+0+0 8x4+8+0 8x4+16+0");
    row("one more at the exact length", {0, 5}, {16, 5}, {8, 4},
        "from 0,5 along 1,0: 8x4+0+0 8x4+8+0 8x4+16+0");
    row("rounded up to one more", {0, 5}, {15.5, 5}, {8, 4},
        "from 0,5 along 1,0: 8x4+0+0 8x4+8+0 8x4+16+0");
    row("not rounded up to one more", {0, 5}, {15.4, 5}, {8, 4},
        "from 0,5 along 1,0: 8x4+0+0 8x4+8+0");
    row("the length of the rounded start doesn't count", {0.6, 5}, {16.2, 5}, {8, 4},
        "from 1,5 along 1,0: 8x4+0+0 8x4+8+0 8x4+16+0");
    row("no length", {7, 5}, {7, 5}, {8, 4}, "from 7,5 along 1,0: 8x4+0+0");
    row("hardly any length", {7, 5}, {7.4, 5}, {1, 4}, "from 7,5 along 1,0: 1x4+0+0");
    row("shorter than the pixmap", {7, 5}, {12, 5}, {8, 4}, "from 7,5 along 1,0: 8x4+0+0");
    row("columns of one pixel", {7, 5}, {10, 5}, {1, 4},
        "from 7,5 along 1,0: 1x4+0+0 1x4+1+0 1x4+2+0 1x4+3+0");
    row("an oblique line of 3, 4 and 5", {40, 50}, {46, 42}, {4, 6},
        "from 40,47 along 0.6,-0.8: 4x6+0+0 4x6+4+0 4x6+8+0");
    row("an odd height is halved exactly", {40, 50.9}, {46, 42.9}, {4, 5},
        "from 40,48 along 0.6,-0.8: 4x5+0+0 4x5+4+0 4x5+8+0");
    row("a height of one", {40, 50}, {46, 42}, {8, 1},
        "from 40,50 along 0.6,-0.8: 8x1+0+0 8x1+8+0");
}

void tst_ToolLines::tiles()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    QFETCH(QSize, pixmap);
    QFETCH(QString, drawn);
    QCOMPARE(drawnLine(from, to, pixmap, false, unbounded), drawn);
}

void tst_ToolLines::stretched_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<QString>("drawn");

    QTest::newRow("longer than the pixmap")
        << QPointF(0, 5) << QPointF(100, 5) << QStringLiteral("from 0,5 along 1,0: 100x4+0+0");
    QTest::newRow("shorter than the pixmap")
        << QPointF(0, 5) << QPointF(3, 5) << QStringLiteral("from 0,5 along 1,0: 3x4+0+0");
    QTest::newRow("rounded down") << QPointF(0, 5) << QPointF(16.4, 5)
                                  << QStringLiteral("from 0,5 along 1,0: 16x4+0+0");
    QTest::newRow("rounded up") << QPointF(0, 5) << QPointF(16.5, 5)
                                << QStringLiteral("from 0,5 along 1,0: 17x4+0+0");
    QTest::newRow("backwards") << QPointF(100, 5) << QPointF(0, 5)
                               << QStringLiteral("from 0,5 along 1,0: 100x4+0+0");
    QTest::newRow("oblique") << QPointF(40, 50) << QPointF(46, 42)
                             << QStringLiteral("from 40,48 along 0.6,-0.8: 10x4+0+0");
    QTest::newRow("upwards") << QPointF(40, 50) << QPointF(40, 20)
                             << QStringLiteral("from 40,50 along 0,-1: 30x4+0+0");
}

void tst_ToolLines::stretched()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    QFETCH(QString, drawn);
    QCOMPARE(drawnLine(from, to, QSize(8, 4), true, unbounded), drawn);
}

void tst_ToolLines::clipping_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<QRectF>("bounds");
    QTest::addColumn<QString>("drawn");

    const QRectF bounds(10, 20, 100, 50);
    const auto row = [&bounds](const char* name, const QPointF& from, const QPointF& to,
                               const char* drawn) {
        QTest::newRow(name) << from << to << bounds << QString::fromLatin1(drawn);
    };

    row("all inside", {30, 40}, {60, 40}, "from 30,40 along 1,0: 30x4+0+0");
    row("along the top edge", {10, 20}, {110, 20}, "from 10,20 along 1,0: 100x4+0+0");
    row("along the right and bottom edges' corner", {110, 70}, {110, 20},
        "from 110,70 along 0,-1: 50x4+0+0");

    row("left of it", {0, 30}, {9, 40}, "");
    row("above it", {20, 0}, {60, 19}, "");
    row("right of it", {111, 30}, {150, 40}, "");
    row("below it", {20, 71}, {60, 90}, "");
    row("right across it", {0, 40}, {200, 40}, "");
    row("down across it", {50, 0}, {50, 100}, "");
    row("over a corner of it", {5, 35}, {35, 5}, "");

    row("the end is left of it", {50, 40}, {0, 40}, "from 10,40 along 1,0: 40x4+0+0");
    row("the start is left of it", {0, 40}, {50, 40}, "from 10,40 along 1,0: 40x4+0+0");
    row("the end is above it", {50, 40}, {50, 0}, "from 50,40 along 0,-1: 20x4+0+0");
    row("the start is above it", {50, 0}, {50, 40}, "from 50,40 along 0,-1: 20x4+0+0");
    row("the end is right of it", {50, 40}, {300, 40}, "from 50,40 along 1,0: 60x4+0+0");
    row("the start is right of it", {300, 40}, {50, 40}, "from 50,40 along 1,0: 60x4+0+0");
    row("the end is below it", {50, 40}, {50, 90}, "from 50,70 along 0,-1: 30x4+0+0");
    row("the start is below it", {50, 90}, {50, 40}, "from 50,70 along 0,-1: 30x4+0+0");

    row("an oblique end beyond the left side", {40, 40}, {-5, 10},
        "from 10,18 along 0.832,0.555: 36x4+0+0");
    row("an oblique end beyond the top side", {40, 40}, {80, 0},
        "from 40,38 along 0.707,-0.707: 28x4+0+0");
    row("an oblique end beyond the right side", {100, 40}, {130, 50},
        "from 100,38 along 0.949,0.316: 11x4+0+0");
    row("an oblique end beyond the bottom side", {40, 60}, {0, 90},
        "from 27,68 along 0.8,-0.6: 17x4+0+0");
    row("an oblique start beyond the right side", {130, 50}, {100, 40},
        "from 100,38 along 0.949,0.316: 11x4+0+0");
    row("an oblique start beyond the bottom side", {0, 90}, {40, 60},
        "from 27,68 along 0.8,-0.6: 17x4+0+0");
    row("through a corner", {0, 10}, {40, 50}, "from 10,18 along 0.707,0.707: 42x4+0+0");
    row("an end that is hardly outside", {50, 40}, {110.001, 40}, "from 50,40 along 1,0: 60x4+0+0");

    QTest::newRow("sides between the pixels")
        << QPointF(50, 40) << QPointF(0, 40) << QRectF(10.6, 20, 100, 50)
        << QStringLiteral("from 11,40 along 1,0: 39x4+0+0");
    QTest::newRow("bounds as thin as a hair")
        << QPointF(50, 40) << QPointF(0, 40) << QRectF(10, 39.9999, 100, 0.0002)
        << QStringLiteral("from 10,40 along 1,0: 40x4+0+0");
    QTest::newRow("bounds as thin as a hair beside the line")
        << QPointF(50, 40) << QPointF(0, 40) << QRectF(10, 40.0001, 100, 0.0002) << QString();
    QTest::newRow("negative places")
        << QPointF(-50, -40) << QPointF(0, -40) << QRectF(-100, -100, 80, 80)
        << QStringLiteral("from -50,-40 along 1,0: 30x4+0+0");
}

void tst_ToolLines::clipping()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    QFETCH(QRectF, bounds);
    QFETCH(QString, drawn);
    QCOMPARE(drawnLine(from, to, QSize(8, 4), true, bounds), drawn);
}

void tst_ToolLines::clippingOrder_data()
{
    QTest::addColumn<QPointF>("inside");
    QTest::addColumn<QPointF>("outside");
    QTest::addColumn<QString>("drawn");

    // What begins on a side meets two of them, and if it is found first, nothing is left of the
    // line but a tile where it begins.
    const auto row = [](const char* name, const QPointF& inside, const QPointF& outside,
                        const char* drawn) {
        QTest::newRow(name) << inside << outside << QString::fromLatin1(drawn);
    };
    const char onLeft[] = "from 10,40 along 1,0: 50x4+0+0";
    const char onTop[] = "from 50,20 along 1,0: 50x4+0+0";
    const char onRight[] = "from 110,40 along 1,0: 50x4+0+0";
    row("left before top", {10, 40}, {40, 10}, onLeft);
    row("left before top, the other way", {40, 20}, {0, 50}, "from 10,41 along 0.8,-0.6: 50x4+0+0");
    row("left before right", {10, 40}, {200, 40}, onLeft);
    row("left before right, the other way", {110, 40}, {0, 40},
        "from 10,40 along 1,0: 50x4+0+0 50x4+50+0 50x4+100+0");
    row("left before bottom", {10, 40}, {90, 100}, onLeft);
    row("left before bottom, the other way", {50, 70}, {0, 32.5},
        "from 10,38 along 0.8,0.6: 50x4+0+0 50x4+50+0");
    row("top before right", {50, 20}, {200, 95}, onTop);
    row("top before right, the other way", {110, 40}, {50, 10},
        "from 70,18 along 0.894,0.447: 50x4+0+0");
    row("top before bottom", {50, 20}, {50, 100}, onTop);
    row("top before bottom, the other way", {50, 70}, {50, 10},
        "from 50,70 along 0,-1: 50x4+0+0 50x4+50+0");
    row("right before bottom", {110, 40}, {70, 80}, onRight);
    row("right before bottom, the other way", {70, 70}, {130, 25},
        "from 70,68 along 0.8,-0.6: 50x4+0+0 50x4+50+0");
}

void tst_ToolLines::clippingOrder()
{
    QFETCH(QPointF, inside);
    QFETCH(QPointF, outside);
    QFETCH(QString, drawn);
    const QRectF bounds(10, 20, 100, 50);
    QCOMPARE(drawnLine(inside, outside, QSize(50, 4), false, bounds), drawn);
    QCOMPARE(drawnLine(outside, inside, QSize(50, 4), false, bounds), drawn);
}

void tst_ToolLines::noClipping_data()
{
    QTest::addColumn<QRectF>("bounds");
    QTest::newRow("null") << QRectF();
    QTest::newRow("no width") << QRectF(10, 20, 0, 50);
    QTest::newRow("no height") << QRectF(10, 20, 100, 0);
    QTest::newRow("negative width") << QRectF(10, 20, -100, 50);
    QTest::newRow("negative height") << QRectF(10, 20, 100, -50);
    QTest::newRow("both negative") << QRectF(110, 70, -100, -50);
    QTest::newRow("a width that is no number") << QRectF(10, 20, notANumber, 50);
    QTest::newRow("a height that is no number") << QRectF(10, 20, 100, notANumber);
}

void tst_ToolLines::noClipping()
{
    QFETCH(QRectF, bounds);
    QCOMPARE(drawnLine(QPointF(50, 40), QPointF(0, 40), QSize(8, 4), true, bounds),
             QStringLiteral("from 0,40 along 1,0: 50x4+0+0"));
    QCOMPARE(drawnLine(QPointF(500, 400), QPointF(500, 390), QSize(8, 4), true, bounds),
             QStringLiteral("from 500,400 along 0,-1: 10x4+0+0"));
}

void tst_ToolLines::tiledPixels_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<QRectF>("bounds");
    QTest::addColumn<QStringList>("rows");

    const QStringList twice = {
        QStringLiteral("................"), QStringLiteral("................"),
        QStringLiteral("...rgbrgb......."), QStringLiteral("...rgkrgk......."),
        QStringLiteral("................"), QStringLiteral("................"),
        QStringLiteral("................"), QStringLiteral("................")};
    QTest::newRow("to the right") << QPointF(3, 2) << QPointF(7, 2) << QRectF() << twice;
    QTest::newRow("to the left") << QPointF(7, 2) << QPointF(3, 2) << QRectF() << twice;
    QTest::newRow("a last tile past the end")
        << QPointF(3, 2) << QPointF(9, 2) << QRectF()
        << QStringList{QStringLiteral("................"), QStringLiteral("................"),
                       QStringLiteral("...rgbrgbrgb...."), QStringLiteral("...rgkrgkrgk...."),
                       QStringLiteral("................"), QStringLiteral("................"),
                       QStringLiteral("................"), QStringLiteral("................")};
    QTest::newRow("no length")
        << QPointF(3, 2) << QPointF(3, 2) << QRectF()
        << QStringList{QStringLiteral("................"), QStringLiteral("................"),
                       QStringLiteral("...rgb.........."), QStringLiteral("...rgk.........."),
                       QStringLiteral("................"), QStringLiteral("................"),
                       QStringLiteral("................"), QStringLiteral("................")};
    QTest::newRow("clipped at the left")
        << QPointF(7, 2) << QPointF(-9, 2) << QRectF(3, 0, 13, 8) << twice;
    QTest::newRow("clipped at the right, with a last tile past the bounds")
        << QPointF(3, 2) << QPointF(16, 2) << QRectF(0, 0, 7, 8) << twice;
    QTest::newRow("partly beyond the picture")
        << QPointF(-2, 7) << QPointF(0, 7) << QRectF()
        << QStringList{QStringLiteral("................"), QStringLiteral("................"),
                       QStringLiteral("................"), QStringLiteral("................"),
                       QStringLiteral("................"), QStringLiteral("................"),
                       QStringLiteral("................"), QStringLiteral("b...............")};

    // Upwards from the pixel above the start, the pattern's top to the left.
    const QStringList up = {QStringLiteral("................"), QStringLiteral("....bk.........."),
                            QStringLiteral("....gg.........."), QStringLiteral("....rr.........."),
                            QStringLiteral("....bk.........."), QStringLiteral("....gg.........."),
                            QStringLiteral("....rr.........."), QStringLiteral("................")};
    QTest::newRow("upwards") << QPointF(4, 7) << QPointF(4, 3) << QRectF() << up;
    QTest::newRow("downwards") << QPointF(4, 3) << QPointF(4, 7) << QRectF() << up;
    QTest::newRow("clipped at the bottom")
        << QPointF(4, 3) << QPointF(4, 20) << QRectF(0, 0, 16, 7) << up;
    QTest::newRow("clipped at the top")
        << QPointF(4, 7) << QPointF(4, -9) << QRectF(0, 3, 16, 5) << up;
}

void tst_ToolLines::tiledPixels()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    QFETCH(QRectF, bounds);
    QFETCH(QStringList, rows);
    QImage image = whiteImage(16, 8);
    QPainter painter(&image);
    drawToolLine(from, to, threeColumns(), false, &painter, bounds);
    painter.end();
    QCOMPARE(rowsOf(image), rows);
}

/// The colours' middles; between them they run into each other.
void tst_ToolLines::stretchedPixels()
{
    QImage image = whiteImage(60, 24);
    QPainter painter(&image);
    drawToolLine(QPointF(5, 3), QPointF(53, 3), fourSquares(), true, &painter, unbounded);
    painter.end();
    for (const int x : {5, 10, 16, 27}) {
        QCOMPARE(letterAt(image, x, 3), QLatin1Char('r'));
        QCOMPARE(letterAt(image, x, 9), QLatin1Char('r'));
        QCOMPARE(letterAt(image, x, 2), QLatin1Char('.'));
    }
    for (const int x : {31, 40, 52})
        QCOMPARE(letterAt(image, x, 5), QLatin1Char('g'));
    QCOMPARE(letterAt(image, 10, 14), QLatin1Char('b'));
    QCOMPARE(letterAt(image, 40, 14), QLatin1Char('k'));
    for (const int x : {4, 53, 54, 59})
        QCOMPARE(letterAt(image, x, 5), QLatin1Char('.'));
}

void tst_ToolLines::obliquePixels_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<QPoint>("red");
    QTest::addColumn<QPoint>("green");
    QTest::addColumn<QPoint>("blue");
    QTest::addColumn<QPoint>("black");
    QTest::addColumn<QPoint>("redOfTheSecond");

    // The squares' middles. The upper ones lie on the line's upper side, whatever its direction.
    QTest::newRow("3 to the right, 4 upwards")
        << QPointF(40, 88) << QPointF(52, 72) << QPoint(45, 79) << QPoint(50, 72) << QPoint(52, 84)
        << QPoint(56, 77) << QPoint(55, 66);
    QTest::newRow("3 to the left, 4 downwards")
        << QPointF(52, 72) << QPointF(40, 88) << QPoint(45, 79) << QPoint(50, 72) << QPoint(52, 84)
        << QPoint(56, 77) << QPoint(55, 66);
    QTest::newRow("4 to the right, 3 downwards")
        << QPointF(20, 28) << QPointF(36, 40) << QPoint(21, 25) << QPoint(27, 30) << QPoint(16, 32)
        << QPoint(22, 36) << QPoint(33, 35);
    QTest::newRow("4 to the left, 3 upwards")
        << QPointF(36, 40) << QPointF(20, 28) << QPoint(21, 25) << QPoint(27, 30) << QPoint(16, 32)
        << QPoint(22, 36) << QPoint(33, 35);
}

void tst_ToolLines::obliquePixels()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    QFETCH(QPoint, red);
    QFETCH(QPoint, green);
    QFETCH(QPoint, blue);
    QFETCH(QPoint, black);
    QFETCH(QPoint, redOfTheSecond);
    QImage image = whiteImage(100, 100);
    QPainter painter(&image);
    drawToolLine(from, to, fourSquares(), false, &painter, unbounded);
    painter.end();
    QCOMPARE(letterAt(image, red.x(), red.y()), QLatin1Char('r'));
    QCOMPARE(letterAt(image, green.x(), green.y()), QLatin1Char('g'));
    QCOMPARE(letterAt(image, blue.x(), blue.y()), QLatin1Char('b'));
    QCOMPARE(letterAt(image, black.x(), black.y()), QLatin1Char('k'));
    QCOMPARE(letterAt(image, redOfTheSecond.x(), redOfTheSecond.y()), QLatin1Char('r'));
}

void tst_ToolLines::transparentPatternPixels()
{
    QImage image = picture({QStringLiteral("oooooooo"), QStringLiteral("oooooooo")});
    QPainter painter(&image);
    drawToolLine(QPointF(1, 0), QPointF(4, 0), pattern({QStringLiteral("r b")}), false, &painter,
                 unbounded);
    painter.end();
    QCOMPARE(rowsOf(image), QStringList({QStringLiteral("orobrobo"), QStringLiteral("oooooooo")}));
}

void tst_ToolLines::painterTransform_data()
{
    QTest::addColumn<QTransform>("transform");
    QTest::newRow("none") << QTransform();
    QTest::newRow("moved") << QTransform::fromTranslate(3, 4);
    QTest::newRow("scaled") << QTransform::fromScale(2, 0.5);
    QTest::newRow("all at once") << QTransform(1, 0.2, 0.001, 0.3, 2, 0.002, 5, 6, 1);
    QTest::newRow("nothing is seen through it") << QTransform::fromScale(0, 0);
}

/// It is left aside, and given back.
void tst_ToolLines::painterTransform()
{
    QFETCH(QTransform, transform);
    for (const bool stretch : {false, true}) {
        for (const bool backwards : {false, true}) {
            const QPointF left(1, 2);
            const QPointF right(3, 2);
            QImage image = whiteImage(8, 5);
            QPainter painter(&image);
            painter.setTransform(transform);
            drawToolLine(backwards ? right : left, backwards ? left : right,
                         pattern({QStringLiteral("rr")}), stretch, &painter, unbounded);
            QCOMPARE(painter.transform(), transform);
            painter.end();
            QCOMPARE(rowsOf(image),
                     QStringList({QStringLiteral("........"), QStringLiteral("........"),
                                  QLatin1String(stretch ? ".rr....." : ".rrrr..."),
                                  QStringLiteral("........"), QStringLiteral("........")}));
        }
    }
}

void tst_ToolLines::painterHints_data()
{
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("after");
    QTest::newRow("none") << 0 << int(QPainter::SmoothPixmapTransform);
    QTest::newRow("as they are at first")
        << int(QPainter::TextAntialiasing)
        << int(QPainter::TextAntialiasing | QPainter::SmoothPixmapTransform);
    QTest::newRow("another one") << int(QPainter::Antialiasing)
                                 << int(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    QTest::newRow("the same") << int(QPainter::SmoothPixmapTransform)
                              << int(QPainter::SmoothPixmapTransform);
}

/// SmoothPixmapTransform holds while it draws and stays, the others are kept all the while.
void tst_ToolLines::painterHints()
{
    QFETCH(int, before);
    QFETCH(int, after);
    for (const bool stretch : {false, true}) {
        RecordingDevice device;
        QPainter painter(&device);
        painter.setRenderHints(painter.renderHints(), false);
        painter.setRenderHints(QPainter::RenderHints(before));
        QCOMPARE(int(painter.renderHints()), before);
        drawToolLine(QPointF(9, 0), QPointF(0, 0), threeColumns(), stretch, &painter, unbounded);
        QCOMPARE(int(device.engine.hints), after);
        QCOMPARE(int(painter.renderHints()), after);
    }
}

void tst_ToolLines::painterClipAndOpacity()
{
    QImage image = whiteImage(10, 2);
    QPainter painter(&image);
    painter.setClipRect(2, 0, 3, 2);
    painter.setOpacity(0.0);
    drawToolLine(QPointF(0, 0), QPointF(9, 0), pattern({QStringLiteral("r")}), false, &painter,
                 unbounded);
    QCOMPARE(painter.opacity(), 0.0);
    QVERIFY(isBlank(image));
    painter.setOpacity(1.0);
    drawToolLine(QPointF(0, 0), QPointF(9, 0), pattern({QStringLiteral("r")}), false, &painter,
                 unbounded);
    QCOMPARE(painter.clipBoundingRect(), QRectF(2, 0, 3, 2));
    painter.end();
    QCOMPARE(rowsOf(image),
             QStringList({QStringLiteral("..rrr....."), QStringLiteral("..........")}));
}

void tst_ToolLines::nothingToDraw_data()
{
    QTest::addColumn<QPixmap>("pixmap");
    QTest::addColumn<QRectF>("bounds");
    QTest::newRow("null pixmap") << QPixmap() << QRectF();
    QTest::newRow("pixmap without a width") << QPixmap(0, 5) << QRectF();
    QTest::newRow("pixmap without a height") << QPixmap(5, 0) << QRectF();
    QTest::newRow("line out of bounds") << threeColumns() << QRectF(50, 50, 10, 10);
}

/// The painter stays as it is, its hints included.
void tst_ToolLines::nothingToDraw()
{
    QFETCH(QPixmap, pixmap);
    QFETCH(QRectF, bounds);
    for (const bool stretch : {false, true}) {
        RecordingDevice device;
        QPainter painter(&device);
        painter.setTransform(QTransform::fromScale(2, 3));
        drawToolLine(QPointF(0, 0), QPointF(10, 10), pixmap, stretch, &painter, bounds);
        QCOMPARE(device.drawn(), QString());
        QCOMPARE(painter.transform(), QTransform::fromScale(2, 3));
        QVERIFY(!painter.testRenderHint(QPainter::SmoothPixmapTransform));
        drawToolLine(QPointF(0, 0), QPointF(10, 10), threeColumns(), stretch, nullptr, bounds);
        drawToolLine(QPointF(0, 0), QPointF(10, 10), pixmap, stretch, nullptr, bounds);
    }
}

void tst_ToolLines::unreasonableLine_data()
{
    QTest::addColumn<QPointF>("end");
    QTest::newRow("x is no number") << QPointF(notANumber, 3);
    QTest::newRow("y is no number") << QPointF(3, notANumber);
    QTest::newRow("no numbers") << QPointF(notANumber, notANumber);
    QTest::newRow("infinite x") << QPointF(infinity, 3);
    QTest::newRow("infinite y") << QPointF(3, infinity);
    QTest::newRow("negative infinite x") << QPointF(-infinity, 3);
    QTest::newRow("negative infinite y") << QPointF(3, -infinity);
    QTest::newRow("both infinite") << QPointF(infinity, -infinity);
    QTest::newRow("huge x") << QPointF(1e300, 3);
    QTest::newRow("huge y") << QPointF(3, 1e300);
    QTest::newRow("negative huge x") << QPointF(-1e300, 3);
    QTest::newRow("both huge") << QPointF(1e300, -1e300);
    QTest::newRow("beyond the whole numbers") << QPointF(1e11, 3);
}

void tst_ToolLines::unreasonableLine()
{
    QFETCH(QPointF, end);
    for (const bool stretch : {false, true}) {
        QImage image = whiteImage(20, 20);
        QPainter painter(&image);
        painter.setTransform(QTransform::fromScale(2, 3));
        drawToolLine(QPointF(3, 3), end, threeColumns(), stretch, &painter, unbounded);
        drawToolLine(end, QPointF(3, 3), threeColumns(), stretch, &painter, unbounded);
        drawToolLine(end, end, threeColumns(), stretch, &painter, unbounded);
        drawToolLine(end, end, threeColumns(), stretch, &painter, QRectF(0, 0, 20, 20));
        QCOMPARE(painter.transform(), QTransform::fromScale(2, 3));
        painter.end();
        QVERIFY(isBlank(image));
    }
}

/// Lines of millions of tiles, of which a picture of 60 by 20 pixels shows a row or a column.
void tst_ToolLines::aVeryLongLine_data()
{
    QTest::addColumn<QPointF>("from");
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<QRect>("window");
    QTest::addColumn<QRect>("shown");
    const QRect whole(0, 0, 60, 20);
    const QRect row(0, 5, 60, 1);
    QTest::newRow("begins in the picture") << QPointF(0, 5) << QPointF(1e9, 5) << whole << row;
    QTest::newRow("ends in the picture") << QPointF(-1e9, 5) << QPointF(59, 5) << whole << row;
    QTest::newRow("crosses the picture") << QPointF(-1e9, 5) << QPointF(1e9, 5) << whole << row;
    QTest::newRow("crosses it to the left") << QPointF(1e9, 5) << QPointF(-1e9, 5) << whole << row;
    QTest::newRow("crosses it upwards")
        << QPointF(7, 1e9) << QPointF(7, -1e9) << whole << QRect(7, 0, 1, 20);
    QTest::newRow("misses the picture") << QPointF(0, 25) << QPointF(1e9, 25) << whole << QRect();
    QTest::newRow("in a window that is a part of the picture")
        << QPointF(0, 5) << QPointF(1e9, 5) << QRect(0, 0, 6, 2) << row;
}

void tst_ToolLines::aVeryLongLine()
{
    QFETCH(QPointF, from);
    QFETCH(QPointF, to);
    QFETCH(QRect, window);
    QFETCH(QRect, shown);
    QPixmap red(1, 1);
    red.fill(Qt::red);
    QImage image(60, 20, QImage::Format_RGB32);
    image.fill(Qt::white);

    QPainter painter(&image);
    painter.setWindow(window);
    painter.setViewport(window);
    drawToolLine(from, to, red, false, &painter, unbounded);
    painter.end();

    QImage expected(60, 20, QImage::Format_RGB32);
    expected.fill(Qt::white);
    if (!shown.isEmpty()) {
        QPainter expectedPainter(&expected);
        expectedPainter.fillRect(shown, Qt::red);
    }
    QCOMPARE(image, expected);
}

/// What is recorded has no edge to end at.
void tst_ToolLines::aVeryLongLineInAPicture()
{
    QPixmap tile(4, 1);
    tile.fill(Qt::red);
    RecordingDevice device;
    QPainter painter(&device);
    drawToolLine({0, 5}, {2e9, 5}, tile, false, &painter, unbounded);
    painter.end();
    QCOMPARE(device.engine.drawn.size(), 1 + 65536); // the place, and the tiles
}

void tst_ToolLines::unreasonableBounds_data()
{
    QTest::addColumn<QPointF>("to");
    QTest::addColumn<QRectF>("bounds");
    QTest::addColumn<QString>("drawn");

    const QString whole = QStringLiteral("from 3,3 along 1,0: 30x2+0+0");
    QTest::newRow("a huge end that is brought to the bounds")
        << QPointF(1e300, 3) << QRectF(0, 0, 33, 20) << whole;
    QTest::newRow("huge bounds") << QPointF(33, 3) << QRectF(-1e300, -1e300, 2e300, 2e300) << whole;
    QTest::newRow("infinite size") << QPointF(33, 3) << QRectF(0, 0, infinity, infinity) << whole;
    QTest::newRow("tiny size") << QPointF(33, 3) << QRectF(0, 0, 1e-300, 1e-300) << QString();
}

void tst_ToolLines::unreasonableBounds()
{
    QFETCH(QPointF, to);
    QFETCH(QRectF, bounds);
    QFETCH(QString, drawn);
    QCOMPARE(drawnLine(QPointF(3, 3), to, QSize(3, 2), true, bounds), drawn);
}

void tst_ToolLines::cursor_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("resource");
    const auto row = [](const char* name, int type, const char* resource) {
        QTest::newRow(name) << type << QString::fromLatin1(resource);
    };
    row("diagonal, left", 0, ":/icons/cursors/cusors_arrow_diagonal_left.svg");
    row("diagonal, right", 1, ":/icons/cursors/cusors_arrow_diagonal_right.svg");
    row("horizontal", 2, ":/icons/cursors/cusors_arrow_horizontal.svg");
    row("square", 3, ":/icons/cursors/cusors_arrow_square.svg");
    row("vertical", 4, ":/icons/cursors/cusors_arrow_vertical.svg");
    row("rotation at the top", 5, ":/icons/cursors/cusors_rotation_top.svg");
    row("rotation at the bottom", 6, ":/icons/cursors/cusors_rotation_bottom.svg");
}

void tst_ToolLines::cursor()
{
    QFETCH(int, type);
    QFETCH(QString, resource);
    const QPixmap pixmap = toolCursorPixmap(ToolCursorType(type));
    QCOMPARE(pixmap.size(), QSize(23, 24));
    QCOMPARE(pixmap.toImage(), QIcon(resource).pixmap(23, 24).toImage());

    // A shape on a transparent ground.
    QVERIFY(pixmap.hasAlphaChannel());
    const QImage shape = ink(pixmap);
    QVERIFY(qMax(shape.width(), shape.height()) >= 16);
    QVERIFY(qMin(shape.width(), shape.height()) >= 8);
    int transparent = 0;
    for (int y = 0; y < shape.height(); ++y) {
        for (int x = 0; x < shape.width(); ++x)
            transparent += qAlpha(shape.pixel(x, y)) == 0;
    }
    QVERIFY(transparent > 20);
}

void tst_ToolLines::cursorSymmetry_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("mirrored");
    QTest::addColumn<bool>("horizontally");
    QTest::addColumn<bool>("vertically");
    QTest::newRow("the horizontal arrow's ends") << 2 << 2 << true << false;
    QTest::newRow("the horizontal arrow's sides") << 2 << 2 << false << true;
    QTest::newRow("the vertical arrow's sides") << 4 << 4 << true << false;
    QTest::newRow("the vertical arrow's ends") << 4 << 4 << false << true;
    QTest::newRow("the square arrow's left and right") << 3 << 3 << true << false;
    QTest::newRow("the square arrow's top and bottom") << 3 << 3 << false << true;
    QTest::newRow("the diagonal arrow's ends") << 0 << 0 << true << true;
    QTest::newRow("the other diagonal arrow's ends") << 1 << 1 << true << true;
    QTest::newRow("the two diagonal arrows") << 0 << 1 << true << false;
    QTest::newRow("the rotation's left and right") << 5 << 5 << true << false;
    QTest::newRow("the two rotations") << 5 << 6 << false << true;
}

void tst_ToolLines::cursorSymmetry()
{
    QFETCH(int, type);
    QFETCH(int, mirrored);
    QFETCH(bool, horizontally);
    QFETCH(bool, vertically);
    const QImage shape = ink(toolCursorPixmap(ToolCursorType(type)));
    QVERIFY(!shape.isNull());
    QVERIFY(isNearlySame(shape.mirrored(horizontally, vertically),
                         ink(toolCursorPixmap(ToolCursorType(mirrored)))));
}

void tst_ToolLines::cursorsDiffer()
{
    for (int a = 0; a <= 6; ++a) {
        for (int b = 0; b < a; ++b) {
            QVERIFY2(toolCursorPixmap(ToolCursorType(a)).toImage()
                         != toolCursorPixmap(ToolCursorType(b)).toImage(),
                     qPrintable(QStringLiteral("%1 and %2").arg(a).arg(b)));
        }
    }
}

void tst_ToolLines::unknownCursor_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("one after the last") << 7;
    QTest::newRow("one before the first") << -1;
    QTest::newRow("the largest") << std::numeric_limits<int>::max();
    QTest::newRow("the smallest") << std::numeric_limits<int>::min();
}

void tst_ToolLines::unknownCursor()
{
    QFETCH(int, type);
    QVERIFY(toolCursorPixmap(ToolCursorType(type)).isNull());
    const QStringList lines = m_logger.takeLines();
    QCOMPARE(lines.size(), 1);
    const QRegularExpression line(QStringLiteral(
        "^E ASSERT_X in .*PluginShell/modules/utilsDll/GuiUtils\\.cpp [0-9]+: Bug!!!$"));
    QVERIFY2(line.match(lines.first()).hasMatch(), qPrintable(lines.first()));
}

void tst_ToolLines::iconSize_data()
{
    QTest::addColumn<QList<QSize>>("sizes");
    QTest::addColumn<QSize>("size");
    QTest::newRow("none") << QList<QSize>() << QSize(0, 0);
    QTest::newRow("one") << QList<QSize>{QSize(16, 24)} << QSize(16, 24);
    QTest::newRow("the last is the largest")
        << QList<QSize>{QSize(16, 24), QSize(32, 48)} << QSize(32, 48);
    QTest::newRow("the first is the largest")
        << QList<QSize>{QSize(32, 48), QSize(16, 24)} << QSize(32, 48);
    QTest::newRow("width and height of different ones")
        << QList<QSize>{QSize(10, 40), QSize(30, 5), QSize(20, 20)} << QSize(30, 40);
    QTest::newRow("one that isn't valid") << QList<QSize>{QSize()} << QSize(0, 0);
}

void tst_ToolLines::iconSize()
{
    QFETCH(QList<QSize>, sizes);
    QFETCH(QSize, size);
    QStringList painted;
    const QIcon icon(new RecordingIcon(always(sizes), &painted));
    QCOMPARE(sizeOfIcon(icon, QIcon::Normal, QIcon::Off), size);
    QCOMPARE(painted, QStringList());
}

void tst_ToolLines::iconSizeByModeAndState()
{
    QStringList painted;
    const QIcon icon(new RecordingIcon(
        [](QIcon::Mode mode, QIcon::State state) {
            return QList<QSize>{QSize(10 + mode, 20 + state)};
        },
        &painted));
    QCOMPARE(sizeOfIcon(icon, QIcon::Normal, QIcon::Off), QSize(10, 21));
    QCOMPARE(sizeOfIcon(icon, QIcon::Disabled, QIcon::On), QSize(11, 20));
    QCOMPARE(sizeOfIcon(icon, QIcon::Active, QIcon::Off), QSize(12, 21));
    QCOMPARE(sizeOfIcon(icon, QIcon::Selected, QIcon::On), QSize(13, 20));
}

void tst_ToolLines::iconSizeOfPixmaps()
{
    QCOMPARE(sizeOfIcon(QIcon(), QIcon::Normal, QIcon::Off), QSize(0, 0));
    QIcon icon(filledPixmap(12, 3));
    icon.addPixmap(filledPixmap(4, 9));
    icon.addPixmap(filledPixmap(40, 50), QIcon::Selected, QIcon::On);
    QCOMPARE(sizeOfIcon(icon, QIcon::Normal, QIcon::Off), QSize(12, 9));
    QCOMPARE(sizeOfIcon(icon, QIcon::Selected, QIcon::On), QSize(40, 50));
    QCOMPARE(sizeOfIcon(icon, QIcon::Disabled, QIcon::Off), QSize(0, 0));
}

void tst_ToolLines::iconPlace_data()
{
    QTest::addColumn<QList<QSize>>("sizes");
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<Qt::AspectRatioMode>("mode");
    QTest::addColumn<QString>("place");

    const QList<QSize> wide = {QSize(16, 8)};
    const QList<QSize> high = {QSize(8, 16)};
    const QRect rect(10, 20, 32, 32);
    const auto row = [](const char* name, const QList<QSize>& sizes, const QRect& target,
                        Qt::AspectRatioMode mode, const char* place) {
        QTest::newRow(name) << sizes << target << mode << QString::fromLatin1(place);
    };

    row("ignored, wide", wide, rect, Qt::IgnoreAspectRatio, "32x32+10+20");
    row("ignored, in a negative place", wide, QRect(-40, -40, 32, 32), Qt::IgnoreAspectRatio,
        "32x32-40-40");
    row("ignored, without sizes", {}, rect, Qt::IgnoreAspectRatio, "32x32+10+20");
    row("kept, wide", wide, rect, Qt::KeepAspectRatio, "32x16+10+28");
    row("kept, high", high, rect, Qt::KeepAspectRatio, "16x32+18+20");
    row("kept, larger than the place", {QSize(128, 64)}, rect, Qt::KeepAspectRatio, "32x16+10+28");
    row("kept, exactly of the size", {QSize(32, 32)}, rect, Qt::KeepAspectRatio, "32x32+10+20");
    row("kept, width and height of different sizes", {QSize(40, 10), QSize(10, 20)}, rect,
        Qt::KeepAspectRatio, "32x16+10+28");
    row("kept, in an odd place", wide, QRect(10, 20, 33, 33), Qt::KeepAspectRatio, "33x16+10+29");
    row("kept, in a high place", wide, QRect(0, 0, 10, 100), Qt::KeepAspectRatio, "10x5+0+47");
    row("kept, in a negative place", wide, QRect(-40, -40, 32, 32), Qt::KeepAspectRatio,
        "32x16-39-31");
    row("kept, without sizes", {}, rect, Qt::KeepAspectRatio, "32x32+10+20");
    row("expanding, wide", wide, rect, Qt::KeepAspectRatioByExpanding, "64x32-6+20");
    row("expanding, high", high, rect, Qt::KeepAspectRatioByExpanding, "32x64+10+4");
    row("expanding, without sizes", {}, rect, Qt::KeepAspectRatioByExpanding, "32x32+10+20");
}

void tst_ToolLines::iconPlace()
{
    QFETCH(QList<QSize>, sizes);
    QFETCH(QRect, rect);
    QFETCH(Qt::AspectRatioMode, mode);
    QFETCH(QString, place);
    place.replace(QRegularExpression(QStringLiteral("-(\\d)")), QStringLiteral("+-\\1"));
    QStringList painted;
    const QIcon icon(new RecordingIcon(always(sizes), &painted));
    QImage image = whiteImage(5, 5);
    QPainter painter(&image);
    paintIcon(&painter, icon, rect, mode, QIcon::Normal, QIcon::Off);
    QCOMPARE(painted, QStringList(place + QStringLiteral(" mode 0 state 1")));
}

void tst_ToolLines::iconModeAndState_data()
{
    QTest::addColumn<QIcon::Mode>("mode");
    QTest::addColumn<QIcon::State>("state");
    QTest::addColumn<QString>("place");
    QTest::newRow("normal, off") << QIcon::Normal << QIcon::Off
                                 << QStringLiteral("40x20+0+10 mode 0 state 1");
    QTest::newRow("disabled, on") << QIcon::Disabled << QIcon::On
                                  << QStringLiteral("20x40+10+0 mode 1 state 0");
    QTest::newRow("active, off") << QIcon::Active << QIcon::Off
                                 << QStringLiteral("40x20+0+10 mode 2 state 1");
    QTest::newRow("selected, on") << QIcon::Selected << QIcon::On
                                  << QStringLiteral("20x40+10+0 mode 3 state 0");
}

/// They choose the sizes, and what is painted.
void tst_ToolLines::iconModeAndState()
{
    QFETCH(QIcon::Mode, mode);
    QFETCH(QIcon::State, state);
    QFETCH(QString, place);
    QStringList painted;
    const QIcon icon(new RecordingIcon(
        [](QIcon::Mode m, QIcon::State s) {
            const bool isHigh = s == QIcon::On && (m == QIcon::Disabled || m == QIcon::Selected);
            return QList<QSize>{isHigh ? QSize(1, 2) : QSize(2, 1)};
        },
        &painted));
    QImage image = whiteImage(5, 5);
    QPainter painter(&image);
    paintIcon(&painter, icon, QRect(0, 0, 40, 40), Qt::KeepAspectRatio, mode, state);
    QCOMPARE(painted, QStringList(place));
    painted.clear();
    paintIcon(&painter, icon, QRect(0, 0, 40, 40), Qt::IgnoreAspectRatio, mode, state);
    QCOMPARE(painted,
             QStringList(QStringLiteral("40x40+0+0 mode %1 state %2").arg(mode).arg(state)));
}

void tst_ToolLines::iconAlignment_data()
{
    QTest::addColumn<Qt::AspectRatioMode>("mode");
    QTest::addColumn<QString>("place");
    QTest::newRow("ignored") << Qt::IgnoreAspectRatio << QStringLiteral("10x10+21+31");
    QTest::newRow("kept") << Qt::KeepAspectRatio << QStringLiteral("10x10+21+31");
    QTest::newRow("expanding") << Qt::KeepAspectRatioByExpanding << QStringLiteral("10x10+21+31");
}

/// An icon that is smaller than its place stands in the middle.
void tst_ToolLines::iconAlignment()
{
    QFETCH(Qt::AspectRatioMode, mode);
    QFETCH(QString, place);
    QStringList painted;
    const QIcon icon(new RecordingIcon(always({QSize(16, 8)}), &painted, QSize(10, 10)));
    QImage image = whiteImage(5, 5);
    QPainter painter(&image);
    paintIcon(&painter, icon, QRect(10, 20, 32, 32), mode, QIcon::Normal, QIcon::Off);
    QCOMPARE(painted, QStringList(place + QStringLiteral(" mode 0 state 1")));
}

void tst_ToolLines::iconNotPainted()
{
    for (const Qt::AspectRatioMode mode :
         {Qt::IgnoreAspectRatio, Qt::KeepAspectRatio, Qt::KeepAspectRatioByExpanding}) {
        QStringList painted;
        QImage image = whiteImage(5, 5);
        QPainter painter(&image);
        const QIcon icon(new RecordingIcon(always({QSize(16, 8)}), &painted));
        paintIcon(nullptr, icon, QRect(0, 0, 5, 5), mode, QIcon::Normal, QIcon::Off);
        paintIcon(nullptr, QIcon(), QRect(0, 0, 5, 5), mode, QIcon::Normal, QIcon::Off);
        paintIcon(&painter, QIcon(), QRect(0, 0, 5, 5), mode, QIcon::Normal, QIcon::Off);
        auto* engine = new RecordingIcon(always({QSize(16, 8)}), &painted);
        engine->isNullIcon = true;
        paintIcon(&painter, QIcon(engine), QRect(0, 0, 5, 5), mode, QIcon::Normal, QIcon::Off);
        QCOMPARE(painted, QStringList());
        const QIcon pixmapIcon(filledPixmap(4, 2));
        paintIcon(&painter, pixmapIcon, QRect(), mode, QIcon::Normal, QIcon::Off);
        paintIcon(&painter, pixmapIcon, QRect(2, 2, -3, -4), mode, QIcon::Normal, QIcon::Off);
        painter.end();
        QVERIFY(isBlank(image));
    }
}

void tst_ToolLines::iconPixels_data()
{
    QTest::addColumn<QSize>("size");
    QTest::addColumn<Qt::AspectRatioMode>("mode");
    QTest::addColumn<QStringList>("rows");

    QTest::newRow("kept, a small icon in the middle")
        << QSize(2, 1) << Qt::KeepAspectRatio
        << QStringList{QStringLiteral(".........."), QStringLiteral(".........."),
                       QStringLiteral(".........."), QStringLiteral("....rr...."),
                       QStringLiteral(".........."), QStringLiteral("..........")};
    QTest::newRow("kept, a large icon")
        << QSize(20, 10) << Qt::KeepAspectRatio
        << QStringList{QStringLiteral(".........."), QStringLiteral(".........."),
                       QStringLiteral("...rrrr..."), QStringLiteral("...rrrr..."),
                       QStringLiteral(".........."), QStringLiteral("..........")};
    QTest::newRow("expanding, a large icon beyond the place")
        << QSize(20, 10) << Qt::KeepAspectRatioByExpanding
        << QStringList{QStringLiteral(".........."), QStringLiteral(".rrrrrrrr."),
                       QStringLiteral(".rrrrrrrr."), QStringLiteral(".rrrrrrrr."),
                       QStringLiteral(".rrrrrrrr."), QStringLiteral("..........")};
}

void tst_ToolLines::iconPixels()
{
    QFETCH(QSize, size);
    QFETCH(Qt::AspectRatioMode, mode);
    QFETCH(QStringList, rows);
    QImage image = whiteImage(10, 6);
    QPainter painter(&image);
    paintIcon(&painter, QIcon(filledPixmap(size.width(), size.height())), QRect(3, 1, 4, 4), mode,
              QIcon::Normal, QIcon::Off);
    painter.end();
    QCOMPARE(rowsOf(image), rows);
}

void tst_ToolLines::crossings_data()
{
    QTest::addColumn<QPointF>("first");
    QTest::addColumn<QPointF>("second");
    QTest::addColumn<QPointF>("centre");
    QTest::addColumn<double>("radius");
    QTest::addColumn<QString>("points");

    const auto row = [](const char* name, const QPointF& first, const QPointF& second,
                        const QPointF& centre, double radius, const char* points) {
        QTest::newRow(name) << first << second << centre << radius << QString::fromLatin1(points);
    };

    row("to the right", {-10, 0}, {10, 0}, {0, 0}, 5, "-5,0 5,0");
    row("to the left", {10, 0}, {-10, 0}, {0, 0}, 5, "5,0 -5,0");
    row("downwards", {0, -10}, {0, 10}, {0, 0}, 5, "0,-5 0,5");
    row("upwards", {0, 10}, {0, -10}, {0, 0}, 5, "0,5 0,-5");
    row("oblique", {0, 0}, {3, 4}, {0, 0}, 5, "-3,-4 3,4");
    row("oblique, backwards", {3, 4}, {0, 0}, {0, 0}, 5, "3,4 -3,-4");
    row("beside the centre", {-1, 3}, {1, 3}, {0, 0}, 5, "-4,3 4,3");
    row("ends inside the circle", {-1, 0}, {1, 0}, {0, 0}, 5, "-5,0 5,0");
    row("ends before the circle", {-101, 0}, {-100, 0}, {0, 0}, 5, "-5,0 5,0");
    row("ends behind the circle", {100, 0}, {101, 0}, {0, 0}, 5, "-5,0 5,0");
    row("ends behind the circle, backwards", {101, 0}, {100, 0}, {0, 0}, 5, "5,0 -5,0");
    row("the start is the centre", {7, 9}, {8, 9}, {7, 9}, 2, "5,9 9,9");
    row("any place", {107, 204}, {113, 212}, {110, 208}, 10, "104,200 116,216");
    row("oblique beside the centre", {10, 22}, {11, 22.75}, {13, 18}, 13, "0.4,14.8 19.6,29.2");

    row("touching from above", {-10, 5}, {10, 5}, {0, 0}, 5, "0,5");
    row("touching from below", {-10, -5}, {10, -5}, {0, 0}, 5, "0,-5");
    row("touching at a side", {5, 3}, {5, 4}, {0, 0}, 5, "5,0");
    row("touching but for rounding", {-10, 5}, {10, 5}, {0, 0}, 5 - 4e-12, "0,5");
    row("not touching any more", {-10, 5}, {10, 5}, {0, 0}, 5 - 6e-12, "");
    row("a hair beyond touching gives two", {-10, 5}, {10, 5}, {0, 0}, 5 + 1e-12, "0,5 0,5");
    row("passing by", {-10, 6}, {10, 6}, {0, 0}, 5, "");
    row("passing far away", {-10, 6e6}, {10, 6e6}, {0, 0}, 5, "");

    row("no radius, through the centre", {-10, 0}, {10, 0}, {0, 0}, 0, "0,0");
    row("no radius, through the centre elsewhere", {2, 7}, {2, 9}, {2, 3}, 0, "2,3");
    row("no radius, beside the centre", {-10, 1}, {10, 1}, {0, 0}, 0, "");
    row("negative radius, through the centre", {-10, 0}, {10, 0}, {0, 0}, -5, "");
    row("negative radius, touching", {-10, 5}, {10, 5}, {0, 0}, -5, "");

    row("no length", {1, 1}, {1, 1}, {0, 0}, 5, "");
    row("no length, on the circle", {5, 0}, {5, 0}, {0, 0}, 5, "");
    row("no length, without a radius in the centre", {0, 0}, {0, 0}, {0, 0}, 0, "");
    row("too short for a direction", {0, 0}, {9e-13, 0}, {0, 0}, 5, "");
    row("long enough for a direction", {0, 0}, {2e-12, 0}, {0, 0}, 5, "-5,0 5,0");
    row("too short for a direction, oblique", {0, 0}, {7e-13, -7e-13}, {0, 0}, 5, "");
}

void tst_ToolLines::crossings()
{
    QFETCH(QPointF, first);
    QFETCH(QPointF, second);
    QFETCH(QPointF, centre);
    QFETCH(double, radius);
    QFETCH(QString, points);
    QCOMPARE(toText(lineAndCircleIntersectionPoints(first.x(), first.y(), second.x(), second.y(),
                                                    centre.x(), centre.y(), radius)),
             points);
}

void tst_ToolLines::unreasonableCircle_data()
{
    QTest::addColumn<int>("argument");
    QTest::addColumn<double>("value");
    const char* const names[] = {"x1", "y1", "x2", "y2", "cx", "cy", "radius"};
    for (int i = 0; i < 7; ++i) {
        QTest::newRow(QByteArray(names[i]) + " is no number") << i << notANumber;
        QTest::newRow(QByteArray(names[i]) + " is infinite") << i << infinity;
        QTest::newRow(QByteArray(names[i]) + " is negative infinite") << i << -infinity;
    }
}

void tst_ToolLines::unreasonableCircle()
{
    QFETCH(int, argument);
    QFETCH(double, value);
    const double lines[][4] = {{-10, 0, 10, 0}, {0, -10, 0, 10}, {-3, -4, 3, 4}};
    for (const auto& line : lines) {
        double a[] = {line[0], line[1], line[2], line[3], 0, 0, 5};
        a[argument] = value;
        QCOMPARE(toText(lineAndCircleIntersectionPoints(a[0], a[1], a[2], a[3], a[4], a[5], a[6])),
                 QString());
    }
}

void tst_ToolLines::overflowingCircle_data()
{
    QTest::addColumn<int>("argument");
    QTest::addColumn<double>("value");
    const char* const names[] = {"x1", "y1", "x2", "y2", "cx", "cy", "radius"};
    for (int i = 0; i < 7; ++i) {
        QTest::newRow(QByteArray(names[i]) + " is huge") << i << 1e300;
        QTest::newRow(QByteArray(names[i]) + " is negative huge") << i << -1e300;
    }
}

/// A square that overflows gives no points that aren't numbers.
void tst_ToolLines::overflowingCircle()
{
    QFETCH(int, argument);
    QFETCH(double, value);
    const double lines[][4] = {{-10, 0, 10, 0}, {0, -10, 0, 10}, {-3, -4, 3, 4}};
    for (const auto& line : lines) {
        double a[] = {line[0], line[1], line[2], line[3], 0, 0, 5};
        a[argument] = value;
        const QList<QPointF> points =
            lineAndCircleIntersectionPoints(a[0], a[1], a[2], a[3], a[4], a[5], a[6]);
        for (const QPointF& point : points) {
            QVERIFY2(std::isfinite(point.x()) && std::isfinite(point.y()),
                     qPrintable(toText(points)));
        }
    }
}

QTEST_MAIN(tst_ToolLines)

#include "tst_ToolLines.moc"
