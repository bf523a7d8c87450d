#include "VerticalLabel.h"

#include <QImage>
#include <QLabel>
#include <QPainter>
#include <QRect>
#include <QtTest>

namespace {

/// What the label paints by itself on white, on one image pixel a logical pixel.
QImage painted(QWidget& widget)
{
    QImage image(widget.size(), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    widget.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
    return image;
}

/// The text drawn with a painter that is turned by hand.
QImage drawn(const QSize& size, const QFont& font, const QColor& color, const QPointF& baseline,
             const QString& text)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(font);
    painter.setPen(color);
    painter.translate(baseline);
    painter.rotate(-90);
    painter.drawText(QPointF(0, 0), text);
    return image;
}

QRect inkBounds(const QImage& image)
{
    QRect bounds;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != qRgb(255, 255, 255))
                bounds |= QRect(x, y, 1, 1);
        }
    }
    return bounds;
}

QFont fontOfPixels(int size)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(size);
    return font;
}

} // namespace

class tst_VerticalLabel : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itHasNoMembersOfItsOwn();
    void theSizeHintsAreThoseOfALabelTurned_data();
    void theSizeHintsAreThoseOfALabelTurned();
    void theTextStandsOnItsBaseline_data();
    void theTextStandsOnItsBaseline();
    void aFontInPointsCountsAsMinusOne();
    void theFirstGlyphIsAtTheBottom();
    void theTextRunsUpwardsWithItsHeadToTheLeft();
    void marginsOnlyCountAtTheNextRepaint();
    void theFontOfAStyleSheetCounts();
    void thePenIsThatOfTheForeground();
    void whatElseALabelDrawsHasNoEffect_data();
    void whatElseALabelDrawsHasNoEffect();
    void anEmptyTextPaintsNothing();
    void aShownLabelPaints();
};

void tst_VerticalLabel::itHasNoMembersOfItsOwn()
{
    const QMetaObject& meta = CVerticalLabel::staticMetaObject;
    QCOMPARE(QByteArray(meta.className()), QByteArray("CVerticalLabel"));
    QCOMPARE(meta.superClass(), &QLabel::staticMetaObject);
    QCOMPARE(meta.methodCount(), meta.methodOffset());
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    QCOMPARE(meta.enumeratorCount(), meta.enumeratorOffset());

    QWidget parent;
    QCOMPARE(CVerticalLabel(&parent).parentWidget(), &parent);
    QCOMPARE(CVerticalLabel(QStringLiteral("abc"), &parent).parentWidget(), &parent);
    QCOMPARE(CVerticalLabel(QStringLiteral("abc"), &parent).text(), QStringLiteral("abc"));
}

void tst_VerticalLabel::theSizeHintsAreThoseOfALabelTurned_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("margin");
    QTest::addColumn<bool>("wordWrap");

    QTest::newRow("no text") << QString() << 0 << false;
    QTest::newRow("one line") << QStringLiteral("a line of text") << 0 << false;
    QTest::newRow("one line with a margin") << QStringLiteral("a line of text") << 7 << false;
    QTest::newRow("words that wrap") << QStringLiteral("some words that may wrap") << 0 << true;
}

void tst_VerticalLabel::theSizeHintsAreThoseOfALabelTurned()
{
    QFETCH(QString, text);
    QFETCH(int, margin);
    QFETCH(bool, wordWrap);

    QLabel plain(text);
    CVerticalLabel label(text);
    for (QLabel* const each : {&plain, static_cast<QLabel*>(&label)}) {
        each->setFont(fontOfPixels(20));
        each->setMargin(margin);
        each->setWordWrap(wordWrap);
    }
    // They don't count in the size.
    label.setLeftMargin(100);
    label.setTopMargin(100);

    const QSize hint = plain.sizeHint();
    QCOMPARE(label.sizeHint(), QSize(hint.height(), hint.width()));
    const QSize minimum = plain.minimumSizeHint();
    QCOMPARE(label.minimumSizeHint(), QSize(minimum.height(), minimum.width()));
    if (!text.isEmpty())
        QVERIFY(label.sizeHint().height() != label.sizeHint().width());
}

void tst_VerticalLabel::theTextStandsOnItsBaseline_data()
{
    QTest::addColumn<int>("pixelSize");
    QTest::addColumn<int>("leftMargin");
    QTest::addColumn<int>("topMargin");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QPointF>("baseline");

    QTest::newRow("no margins: the bottom edge, the pixel size from the left")
        << 20 << 0 << 0 << QSize(60, 200) << QPointF(20, 200);
    QTest::newRow("another pixel size") << 31 << 0 << 0 << QSize(60, 200) << QPointF(31, 200);
    QTest::newRow("another height") << 20 << 0 << 0 << QSize(60, 90) << QPointF(20, 90);
    QTest::newRow("the left margin moves up")
        << 20 << 15 << 0 << QSize(60, 200) << QPointF(20, 185);
    QTest::newRow("the top margin moves right")
        << 20 << 0 << 12 << QSize(60, 200) << QPointF(32, 200);
    QTest::newRow("both margins") << 20 << 15 << 12 << QSize(60, 200) << QPointF(32, 185);
    QTest::newRow("negative margins") << 20 << -5 << -4 << QSize(60, 200) << QPointF(16, 205);
}

void tst_VerticalLabel::theTextStandsOnItsBaseline()
{
    QFETCH(int, pixelSize);
    QFETCH(int, leftMargin);
    QFETCH(int, topMargin);
    QFETCH(QSize, size);
    QFETCH(QPointF, baseline);

    const QFont font = fontOfPixels(pixelSize);
    CVerticalLabel label(QStringLiteral("abc"));
    label.setFont(font);
    label.setLeftMargin(leftMargin);
    label.setTopMargin(topMargin);
    label.resize(size);

    const QImage image = painted(label);
    QVERIFY(!inkBounds(image).isNull());
    QCOMPARE(image, drawn(size, font, Qt::black, baseline, QStringLiteral("abc")));
}

void tst_VerticalLabel::aFontInPointsCountsAsMinusOne()
{
    CVerticalLabel label(QStringLiteral("MMM"));
    label.setFont(QFont(QStringLiteral("DejaVu Sans"), 12));
    label.resize(60, 200);
    // The letters stand on a line one pixel outside the widget.
    QVERIFY(inkBounds(painted(label)).isNull());

    label.setTopMargin(31);
    const QRect ink = inkBounds(painted(label));
    QVERIFY2(ink.right() >= 28 && ink.right() <= 30, QByteArray::number(ink.right()));
    QVERIFY2(ink.bottom() >= 195 && ink.bottom() <= 199, QByteArray::number(ink.bottom()));
}

void tst_VerticalLabel::theFirstGlyphIsAtTheBottom()
{
    CVerticalLabel label(QStringLiteral("abc"));
    label.setFont(fontOfPixels(20));
    label.resize(60, 200);

    // "abc" has no descenders, so that its ink ends at the baseline, but for the curves' overshoot.
    const QRect ink = inkBounds(painted(label));
    QVERIFY2(ink.bottom() >= 195 && ink.bottom() <= 199, QByteArray::number(ink.bottom()));
    QVERIFY2(ink.right() >= 19 && ink.right() <= 20, QByteArray::number(ink.right()));
    QVERIFY2(ink.left() >= 3 && ink.left() <= 12, QByteArray::number(ink.left()));
    QVERIFY2(ink.top() >= 160 && ink.top() <= 175, QByteArray::number(ink.top()));
}

void tst_VerticalLabel::theTextRunsUpwardsWithItsHeadToTheLeft()
{
    // A full stop before an M: the low glyph comes first, and low is to the right.
    CVerticalLabel label(QStringLiteral(".M"));
    label.setFont(fontOfPixels(40));
    label.resize(60, 200);

    const QImage image = painted(label);
    const QRect stop = inkBounds(image.copy(0, 188, 60, 12));
    const QRect letter = inkBounds(image.copy(0, 140, 60, 48));
    QVERIFY2(stop.left() >= 30 && stop.right() <= 40, QByteArray::number(stop.left()));
    QVERIFY2(letter.left() >= 8 && letter.left() <= 14, QByteArray::number(letter.left()));
    QVERIFY(letter.height() > stop.height());
}

void tst_VerticalLabel::marginsOnlyCountAtTheNextRepaint()
{
    class Label : public CVerticalLabel
    {
    public:
        using CVerticalLabel::CVerticalLabel;
        int paints = 0;

    protected:
        void paintEvent(QPaintEvent* event) override
        {
            ++paints;
            CVerticalLabel::paintEvent(event);
        }
    };

    QWidget window;
    window.resize(200, 200);
    Label label(QStringLiteral("abc"), &window);
    label.setGeometry(0, 0, 50, 200);
    Label other(QStringLiteral("abc"), &window);
    other.setGeometry(100, 0, 50, 200);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_VERIFY(label.paints > 0 && other.paints > 0);

    label.paints = 0;
    other.paints = 0;
    label.setLeftMargin(10);
    label.setTopMargin(10);
    // Painted together with whatever else waits for it.
    other.update();
    QTRY_VERIFY(other.paints > 0);
    QCOMPARE(label.paints, 0);
}

void tst_VerticalLabel::theFontOfAStyleSheetCounts()
{
    CVerticalLabel label(QStringLiteral("abc"));
    label.setStyleSheet(QStringLiteral("font-family: \"DejaVu Sans\"; font-size: 24px;"));
    label.resize(60, 200);

    QCOMPARE(painted(label),
             drawn(QSize(60, 200), fontOfPixels(24), Qt::black, QPointF(24, 200),
                   QStringLiteral("abc")));
}

void tst_VerticalLabel::thePenIsThatOfTheForeground()
{
    CVerticalLabel label(QStringLiteral("abc"));
    label.setFont(fontOfPixels(20));
    QPalette palette = label.palette();
    palette.setColor(QPalette::WindowText, Qt::red);
    palette.setColor(QPalette::Text, Qt::green);
    label.setPalette(palette);
    label.resize(60, 200);

    QCOMPARE(
        painted(label),
        drawn(QSize(60, 200), fontOfPixels(20), Qt::red, QPointF(20, 200), QStringLiteral("abc")));
}

using Change = void (*)(QLabel&);
Q_DECLARE_METATYPE(Change)

void tst_VerticalLabel::whatElseALabelDrawsHasNoEffect_data()
{
    QTest::addColumn<Change>("change");

    QTest::newRow("frame") << Change([](QLabel& label) {
        label.setFrameStyle(QFrame::Box | QFrame::Plain);
        label.setLineWidth(3);
    });
    QTest::newRow("alignment") << Change(
        [](QLabel& label) { label.setAlignment(Qt::AlignRight | Qt::AlignTop); });
    QTest::newRow("indent") << Change([](QLabel& label) { label.setIndent(30); });
    QTest::newRow("margin") << Change([](QLabel& label) { label.setMargin(9); });
    QTest::newRow("text format") << Change(
        [](QLabel& label) { label.setTextFormat(Qt::RichText); });
}

void tst_VerticalLabel::whatElseALabelDrawsHasNoEffect()
{
    QFETCH(Change, change);

    CVerticalLabel label(QStringLiteral("a<b>c</b>"));
    label.setTextFormat(Qt::PlainText);
    label.setFont(fontOfPixels(20));
    label.resize(60, 200);
    change(label);

    QCOMPARE(painted(label),
             drawn(QSize(60, 200), fontOfPixels(20), Qt::black, QPointF(20, 200),
                   QStringLiteral("a<b>c</b>")));
}

void tst_VerticalLabel::anEmptyTextPaintsNothing()
{
    CVerticalLabel label;
    label.setFrameStyle(QFrame::Box | QFrame::Plain);
    label.setFont(fontOfPixels(20));
    label.resize(60, 200);
    QVERIFY(inkBounds(painted(label)).isNull());
}

void tst_VerticalLabel::aShownLabelPaints()
{
    CVerticalLabel label(QStringLiteral("abc"));
    label.setFont(fontOfPixels(20));
    label.resize(60, 200);
    label.show();
    QVERIFY(QTest::qWaitForWindowExposed(&label));

    // One to one, or two device pixels to the pixel.
    const int ratio = qMax(1, qEnvironmentVariableIntValue("QT_SCALE_FACTOR"));
    const QPixmap grabbed = label.grab();
    QCOMPARE(grabbed.devicePixelRatio(), qreal(ratio));
    QCOMPARE(grabbed.size(), QSize(60, 200) * ratio);
    QCOMPARE(label.size(), QSize(60, 200));

    QImage image = grabbed.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const QRgb background = image.pixel(image.width() - 1, 0);
    QVERIFY(background != qRgb(0, 0, 0));
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != background)
                ink |= QRect(x, y, 1, 1);
        }
    }
    QVERIFY2(ink.right() >= 19 * ratio && ink.right() < 21 * ratio,
             QByteArray::number(ink.right()));
    QVERIFY2(ink.bottom() >= 195 * ratio && ink.bottom() < 200 * ratio,
             QByteArray::number(ink.bottom()));
}

QTEST_MAIN(tst_VerticalLabel)
#include "tst_VerticalLabel.moc"
