#include "IconViewer.h"
#include "RecordingLogger.h"

#include <QApplication>
#include <QEvent>
#include <QIconEngine>
#include <QImage>
#include <QImageReader>
#include <QMetaMethod>
#include <QMetaProperty>
#include <QPaintDevice>
#include <QPaintEngine>
#include <QPaintEvent>
#include <QPainter>
#include <QPointer>
#include <QProxyStyle>
#include <QRegularExpression>
#include <QScreen>
#include <QStyleOption>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

namespace {

constexpr QPainter::RenderHints smoothHints =
    QPainter::SmoothPixmapTransform | QPainter::Antialiasing;

QPixmap filled(const QSize& size, const QColor& color)
{
    QPixmap pixmap(size);
    pixmap.fill(color);
    return pixmap;
}

QPixmap filled(int width, int height, const QColor& color = Qt::red)
{
    return filled(QSize(width, height), color);
}

/// Red to the left and blue to the right, with a green line on top.
QPixmap pattern(int width, int height)
{
    QPixmap pixmap(width, height);
    QPainter painter(&pixmap);
    painter.fillRect(0, 0, width / 2, height, Qt::red);
    painter.fillRect(width / 2, 0, width - width / 2, height, Qt::blue);
    painter.fillRect(0, 0, width, 1, Qt::green);
    painter.end();
    return pixmap;
}

QImage blank(const QSize& size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    return image;
}

/// What the widget and its children paint by themselves on white, on one image pixel a logical
/// pixel.
QImage painted(QWidget& widget)
{
    QImage image = blank(widget.size());
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

/// A picture or a caption that a widget drew.
struct Drawing
{
    QRectF target;
    QRectF source;
    QString text;
    QPainter::RenderHints hints;
    QColor pen;
};

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

    void drawPixmap(const QRectF& target, const QPixmap&, const QRectF& source) override
    {
        drawings << Drawing{target, source, QString(), painter()->renderHints(),
                            painter()->pen().color()};
    }

    void drawTextItem(const QPointF& point, const QTextItem& item) override
    {
        drawings << Drawing{QRectF(point, QSizeF()), QRectF(), item.text(),
                            painter()->renderHints(), painter()->pen().color()};
    }

    QList<Drawing> drawings;
};

/// Keeps what is drawn on it, in logical pixels.
class RecordingDevice : public QPaintDevice
{
public:
    explicit RecordingDevice(const QSize& size)
        : m_size(size)
    {}

    QPaintEngine* paintEngine() const override { return &m_engine; }
    QList<Drawing> drawings() const { return m_engine.drawings; }

protected:
    int metric(PaintDeviceMetric metric) const override
    {
        switch (metric) {
        case PdmWidth:
            return m_size.width();
        case PdmHeight:
            return m_size.height();
        case PdmDepth:
            return 32;
        case PdmDpiX:
        case PdmDpiY:
        case PdmPhysicalDpiX:
        case PdmPhysicalDpiY:
            return 96;
        case PdmDevicePixelRatio:
            return 1;
        case PdmDevicePixelRatioScaled:
            return int(QPaintDevice::devicePixelRatioFScale());
        default:
            return 0;
        }
    }

private:
    QSize m_size;
    mutable RecordingEngine m_engine;
};

QList<Drawing> drawingsOf(QWidget& widget)
{
    RecordingDevice device(widget.size());
    widget.render(&device, QPoint(), QRegion(), QWidget::RenderFlags());
    return device.drawings();
}

/// How an icon was asked to paint.
struct IconPaint
{
    QRect rect;
    QIcon::Mode mode = QIcon::Active;
    QIcon::State state = QIcon::On;
};

/// An icon that paints at any size, as those of SVG files do; without sizes it reports none.
class RecordingIconEngine : public QIconEngine
{
public:
    RecordingIconEngine(QList<IconPaint>* paints, const QList<QSize>& sizes)
        : m_paints(paints)
        , m_sizes(sizes)
    {}

    void paint(QPainter*, const QRect& rect, QIcon::Mode mode, QIcon::State state) override
    {
        IconPaint paint;
        paint.rect = rect;
        paint.mode = mode;
        paint.state = state;
        *m_paints << paint;
    }

    QIconEngine* clone() const override { return new RecordingIconEngine(m_paints, m_sizes); }

    QList<QSize> availableSizes(QIcon::Mode mode, QIcon::State state) const override
    {
        // Other modes and states have a size that would be seen.
        return mode == QIcon::Normal && state == QIcon::Off ? m_sizes
                                                            : QList<QSize>{QSize(500, 500)};
    }

private:
    QList<IconPaint>* m_paints;
    QList<QSize> m_sizes;
};

/// The application's style: its disabled form of any pixmap is blue, or null.
class BlueStyle : public QProxyStyle
{
public:
    QPixmap generatedIconPixmap(QIcon::Mode mode, const QPixmap& pixmap,
                                const QStyleOption* option) const override
    {
        ++calls;
        lastMode = mode;
        lastVersion = option->version;
        lastType = option->type;
        lastPalette = option->palette;
        return givesNull ? QPixmap() : filled(pixmap.size(), Qt::blue);
    }

    mutable int calls = 0;
    mutable QIcon::Mode lastMode = QIcon::Normal;
    mutable int lastVersion = -1;
    mutable int lastType = -1;
    mutable QPalette lastPalette;
    bool givesNull = false;
};

class PaintCounter : public QWidget
{
public:
    using QWidget::QWidget;

    int paints = 0;
    int layoutRequests = 0;
    QRegion paintedRegion;
    std::function<void()> onPaint;

protected:
    bool event(QEvent* e) override
    {
        if (e->type() == QEvent::LayoutRequest)
            ++layoutRequests;
        return QWidget::event(e);
    }

    void paintEvent(QPaintEvent* e) override
    {
        ++paints;
        paintedRegion += e->region();
        if (onPaint)
            onPaint();
    }
};

class Viewer : public CIconViewer
{
public:
    using CIconViewer::CIconViewer;

    int paints = 0;
    QObjectList watched;
    QRect narrowed;
    std::function<void()> onPaint;

    QRect viewportRect() const override
    {
        return narrowed.isNull() ? CIconViewer::viewportRect() : narrowed;
    }

    bool eventFilter(QObject* object, QEvent* e) override
    {
        watched << object;
        return CIconViewer::eventFilter(object, e);
    }

    /// Whether it is an event filter on \a object.
    bool isFilterOn(QObject& object)
    {
        watched.clear();
        QEvent e(QEvent::User);
        QCoreApplication::sendEvent(&object, &e);
        return watched == QObjectList{&object};
    }

protected:
    void paintEvent(QPaintEvent* e) override
    {
        ++paints;
        if (onPaint)
            onPaint();
        CIconViewer::paintEvent(e);
    }
};

using Change = void (*)(CIconViewer&);

QtMessageHandler s_printer = nullptr;

QStringList& warnings()
{
    static QStringList list;
    return list;
}

void keepWarnings(QtMsgType type, const QMessageLogContext& context, const QString& message)
{
    if (type != QtDebugMsg && type != QtInfoMsg)
        warnings() << message;
    s_printer(type, context, message);
}

} // namespace

Q_DECLARE_METATYPE(Change)

class tst_IconViewer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void theMetaObjectListsThePropertiesInOrder();
    void theMetaObjectListsTheSlotsInOrder();
    void itStartsEmptyWithTheseValues();
    void propertiesWriteWhatTheyRead();
    void slotsHaveTheseDefaults();

    void onePictureReplacesTheOther();
    void aNullValueEmptiesTheViewer_data();
    void aNullValueEmptiesTheViewer();
    void filesAreLoaded();
    void anSvgFileNeedsAMandatorySize();
    void badFilesEmptyTheViewer_data();
    void badFilesEmptyTheViewer();
    void clearKeepsTheText();

    void theSizeOfAnIconIsItsGreatestWidthAndHeight_data();
    void theSizeOfAnIconIsItsGreatestWidthAndHeight();
    void theSizeOfAPixmapIsInItsOwnPixels();
    void sizeHints_data();
    void sizeHints();

    void placement_data();
    void placement();
    void placementWithoutAPicture_data();
    void placementWithoutAPicture();
    void aSubclassNarrowsTheArea();

    void aSmallPixmapKeepsItsSizeInTheMiddle();
    void aMandatorySizeStretchesThePixmap();
    void aGreatPixmapIsShrunkSmoothly();
    void anEmptyViewerPaintsNothing_data();
    void anEmptyViewerPaintsNothing();
    void theCaptionLiesOverTheMiddleOfTheImage();
    void theCaptionHasTheTextColourOfTheCurrentGroup();
    void theHintsOfThePixmapStayForTheCaption();
    void iconsArePaintedInARoundedRectangle_data();
    void iconsArePaintedInARoundedRectangle();
    void anIconIsNotStretched();
    void anIconWithoutSizesNeedsAMandatorySize();

    void aDisabledViewerShowsTheStylesFormOfThePixmap();
    void theDisabledFormIsMadeOnceForEachPixmap();
    void aDisabledFormThatIsNullIsAnAssertion();
    void aDisabledViewerShowsTheDisabledIcon();

    void changesRepaintAndRelayout_data();
    void changesRepaintAndRelayout();
    void afterClearTheImageStaysUntilTheNextRepaint();

    void theParentPaintsTwiceWhileThereIsSomethingToPlace_data();
    void theParentPaintsTwiceWhileThereIsSomethingToPlace();
    void theParentPaintsFirst();
    void theFilterIsOnTheParentWhileShowShadowIsOn();
    void theFilterFollowsTheParent();
    void aViewerThatWasNeverShownFiltersItsNewParent();
    void otherEventsAndObjectsAreNotDoubled_data();
    void otherEventsAndObjectsAreNotDoubled();
    void aDeletedViewerLeavesTheParentAlone();

    void aShownViewerIsPlacedInLogicalPixels();

private:
    BlueStyle* m_style = nullptr;
};

void tst_IconViewer::initTestCase()
{
    s_printer = qInstallMessageHandler(keepWarnings);
    m_style = new BlueStyle;
    QApplication::setStyle(m_style);
}

void tst_IconViewer::init()
{
    warnings().clear();
    m_style->calls = 0;
    m_style->givesNull = false;
}

void tst_IconViewer::cleanup()
{
    QCOMPARE(warnings(), QStringList());
}

void tst_IconViewer::cleanupTestCase()
{
    qInstallMessageHandler(s_printer);
}

void tst_IconViewer::theMetaObjectListsThePropertiesInOrder()
{
    const QMetaObject& meta = CIconViewer::staticMetaObject;
    QCOMPARE(QByteArray(meta.className()), QByteArray("CIconViewer"));
    QCOMPARE(meta.superClass(), &QWidget::staticMetaObject);

    QStringList properties;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        QVERIFY2(property.isReadable() && property.isWritable(), property.name());
        properties << QString::fromLatin1(property.typeName()) + QLatin1Char(' ')
                + QString::fromLatin1(property.name());
    }
    QCOMPARE(
        properties,
        (QStringList{QStringLiteral("QPixmap pixmap"), QStringLiteral("QIcon icon"),
                     QStringLiteral("bool expandContent"), QStringLiteral("bool showShadow"),
                     QStringLiteral("Qt::AspectRatioMode aspectRatio"),
                     QStringLiteral("QSize mandatoryImageSize"), QStringLiteral("QString text")}));
}

void tst_IconViewer::theMetaObjectListsTheSlotsInOrder()
{
    const QMetaObject& meta = CIconViewer::staticMetaObject;
    QStringList slotList;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        QCOMPARE(method.methodType(), QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Public);
        slotList << QString::fromLatin1(method.methodSignature());
    }
    // A default shows as a second form.
    QCOMPARE(
        slotList,
        (QStringList{QStringLiteral("clear()"), QStringLiteral("setShowShadow(bool)"),
                     QStringLiteral("setAspectRatio(Qt::AspectRatioMode)"),
                     QStringLiteral("setIcon(QIcon)"), QStringLiteral("setIcon(QString)"),
                     QStringLiteral("setPixmap(QPixmap)"), QStringLiteral("setPixmap(QString)"),
                     QStringLiteral("setMandatoryImageSize(QSize)"),
                     QStringLiteral("setMandatoryImageSize()"), QStringLiteral("setText(QString)"),
                     QStringLiteral("setText()"), QStringLiteral("setExpandContent(bool)")}));
}

void tst_IconViewer::itStartsEmptyWithTheseValues()
{
    QWidget parent;
    const CIconViewer viewer(&parent);
    QCOMPARE(viewer.parentWidget(), &parent);
    QVERIFY(viewer.isEmpty());
    QVERIFY(viewer.pixmap().isNull());
    QVERIFY(viewer.icon().isNull());
    QVERIFY(!viewer.contentIsExpanded());
    QVERIFY(viewer.showShadow());
    QCOMPARE(viewer.aspectRatio(), Qt::KeepAspectRatio);
    QCOMPARE(viewer.mandatoryImageSize(), QSize(-1, -1));
    QCOMPARE(viewer.text(), QString());
    QCOMPARE(viewer.contentSize(), QSize(-1, -1));
}

void tst_IconViewer::propertiesWriteWhatTheyRead()
{
    CIconViewer viewer(nullptr);

    QVERIFY(viewer.setProperty("pixmap", filled(10, 20)));
    QCOMPARE(viewer.pixmap().size(), QSize(10, 20));
    QCOMPARE(viewer.property("pixmap").value<QPixmap>().size(), QSize(10, 20));

    QVERIFY(viewer.setProperty("icon", QIcon(filled(30, 40))));
    QCOMPARE(viewer.icon().availableSizes(), QList<QSize>{QSize(30, 40)});
    QCOMPARE(viewer.property("icon").value<QIcon>().availableSizes(), QList<QSize>{QSize(30, 40)});

    QVERIFY(viewer.setProperty("expandContent", true));
    QVERIFY(viewer.contentIsExpanded());
    QCOMPARE(viewer.property("expandContent"), QVariant(true));

    QVERIFY(viewer.setProperty("showShadow", false));
    QVERIFY(!viewer.showShadow());
    QCOMPARE(viewer.property("showShadow"), QVariant(false));

    QVERIFY(viewer.setProperty("aspectRatio", QStringLiteral("KeepAspectRatioByExpanding")));
    QCOMPARE(viewer.aspectRatio(), Qt::KeepAspectRatioByExpanding);
    QCOMPARE(viewer.property("aspectRatio").toInt(), 2);

    QVERIFY(viewer.setProperty("mandatoryImageSize", QSize(5, 6)));
    QCOMPARE(viewer.mandatoryImageSize(), QSize(5, 6));
    QCOMPARE(viewer.property("mandatoryImageSize"), QVariant(QSize(5, 6)));

    QVERIFY(viewer.setProperty("text", QStringLiteral("caption")));
    QCOMPARE(viewer.text(), QStringLiteral("caption"));
    QCOMPARE(viewer.property("text"), QVariant(QStringLiteral("caption")));
}

void tst_IconViewer::slotsHaveTheseDefaults()
{
    CIconViewer viewer(nullptr);
    viewer.setMandatoryImageSize(QSize(50, 50));
    viewer.setMandatoryImageSize();
    QCOMPARE(viewer.mandatoryImageSize(), QSize(-1, -1));

    viewer.setText(QStringLiteral("caption"));
    viewer.setText();
    QCOMPARE(viewer.text(), QString());
}

void tst_IconViewer::onePictureReplacesTheOther()
{
    CIconViewer viewer(nullptr);

    const QPixmap pixmap = filled(10, 20);
    viewer.setPixmap(pixmap);
    QVERIFY(!viewer.isEmpty());
    QCOMPARE(viewer.pixmap().cacheKey(), pixmap.cacheKey());
    QVERIFY(viewer.icon().isNull());
    QCOMPARE(viewer.contentSize(), QSize(10, 20));

    const QIcon icon(filled(30, 40));
    viewer.setIcon(icon);
    QVERIFY(!viewer.isEmpty());
    QVERIFY(viewer.pixmap().isNull());
    QCOMPARE(viewer.icon().cacheKey(), icon.cacheKey());
    QCOMPARE(viewer.contentSize(), QSize(30, 40));

    viewer.setPixmap(pixmap);
    QCOMPARE(viewer.pixmap().cacheKey(), pixmap.cacheKey());
    QVERIFY(viewer.icon().isNull());
    QCOMPARE(viewer.contentSize(), QSize(10, 20));
}

void tst_IconViewer::aNullValueEmptiesTheViewer_data()
{
    QTest::addColumn<Change>("change");

    QTest::newRow("null pixmap") << Change([](CIconViewer& v) { v.setPixmap(QPixmap()); });
    QTest::newRow("null icon") << Change([](CIconViewer& v) { v.setIcon(QIcon()); });
    QTest::newRow("clear") << Change([](CIconViewer& v) { v.clear(); });
    QTest::newRow("icon of a null pixmap")
        << Change([](CIconViewer& v) { v.setIcon(QIcon(QPixmap())); });
}

void tst_IconViewer::aNullValueEmptiesTheViewer()
{
    QFETCH(Change, change);

    CIconViewer viewer(nullptr);
    for (const bool withIcon : {false, true}) {
        if (withIcon)
            viewer.setIcon(QIcon(filled(10, 10)));
        else
            viewer.setPixmap(filled(10, 10));
        QVERIFY(!viewer.isEmpty());

        change(viewer);
        QVERIFY(viewer.isEmpty());
        QVERIFY(viewer.pixmap().isNull());
        QVERIFY(viewer.icon().isNull());
        QCOMPARE(viewer.contentSize(), QSize(-1, -1));

        change(viewer);
        QVERIFY(viewer.isEmpty());
    }
}

void tst_IconViewer::filesAreLoaded()
{
    const QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("picture.png"));
    QVERIFY(filled(12, 34).save(file));

    CIconViewer viewer(nullptr);
    viewer.setPixmap(file);
    QCOMPARE(viewer.pixmap().size(), QSize(12, 34));
    QCOMPARE(viewer.pixmap().toImage().pixelColor(0, 0), QColor(Qt::red));

    viewer.setIcon(file);
    QVERIFY(viewer.pixmap().isNull());
    QCOMPARE(viewer.icon().availableSizes(), QList<QSize>{QSize(12, 34)});

    // Wider than any icon is asked for.
    QVERIFY(filled(600, 1).save(file));
    viewer.setIcon(file);
    QCOMPARE(viewer.contentSize(), QSize(600, 1));

    // By name, as a string-based connection or a script does it.
    QVERIFY(filled(12, 34).save(file));
    QVERIFY(QMetaObject::invokeMethod(&viewer, "setPixmap", Q_ARG(QString, file)));
    QCOMPARE(viewer.pixmap().size(), QSize(12, 34));
}

void tst_IconViewer::anSvgFileNeedsAMandatorySize()
{
    QVERIFY2(QImageReader::supportedImageFormats().contains("svg"), "needs Qt's SVG plug-ins");

    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("picture.svg"));
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("<svg xmlns='http://www.w3.org/2000/svg' width='10' height='10'>"
               "<rect width='10' height='10' fill='#f00'/></svg>");
    file.close();

    CIconViewer viewer(nullptr);
    viewer.resize(100, 100);
    viewer.setIcon(path);
    QVERIFY(!viewer.isEmpty());
    QCOMPARE(viewer.contentSize(), QSize(-1, -1));
    QCOMPARE(painted(viewer), blank(QSize(100, 100)));

    viewer.setMandatoryImageSize(QSize(40, 40));
    const QImage image = painted(viewer);
    QCOMPARE(image.pixelColor(31, 31), QColor(Qt::red));
    QCOMPARE(image.pixelColor(68, 68), QColor(Qt::red));
    QCOMPARE(image.pixelColor(29, 50), QColor(Qt::white));
    QCOMPARE(image.pixelColor(70, 50), QColor(Qt::white));
}

void tst_IconViewer::badFilesEmptyTheViewer_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("contents");

    QTest::newRow("no name") << QString() << QByteArray();
    QTest::newRow("no such file") << QStringLiteral("missing.png") << QByteArray();
    QTest::newRow("not a picture") << QStringLiteral("text.png") << QByteArray("no picture");
    QTest::newRow("a folder") << QStringLiteral(".") << QByteArray();
}

void tst_IconViewer::badFilesEmptyTheViewer()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, contents);

    const QTemporaryDir folder;
    const QString path = file.isEmpty() ? QString() : folder.filePath(file);
    if (!contents.isEmpty()) {
        QFile bad(path);
        QVERIFY(bad.open(QIODevice::WriteOnly));
        QCOMPARE(bad.write(contents), qint64(contents.size()));
    }

    RecordingLogger logger;
    CIconViewer viewer(nullptr);
    viewer.setPixmap(filled(10, 10));
    viewer.setPixmap(path);
    QVERIFY(viewer.isEmpty());

    viewer.setPixmap(filled(10, 10));
    viewer.setIcon(path);
    QVERIFY(viewer.isEmpty());
    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_IconViewer::clearKeepsTheText()
{
    CIconViewer viewer(nullptr);
    viewer.setPixmap(filled(10, 10));
    viewer.setText(QStringLiteral("caption"));
    viewer.setMandatoryImageSize(QSize(50, 50));
    viewer.clear();
    QCOMPARE(viewer.text(), QStringLiteral("caption"));
    QCOMPARE(viewer.mandatoryImageSize(), QSize(50, 50));
}

void tst_IconViewer::theSizeOfAnIconIsItsGreatestWidthAndHeight_data()
{
    QTest::addColumn<QList<QSize>>("sizes");
    QTest::addColumn<QSize>("size");

    QTest::newRow("one size") << QList<QSize>{QSize(16, 16)} << QSize(16, 16);
    QTest::newRow("the greatest comes first")
        << QList<QSize>{QSize(64, 48), QSize(32, 24)} << QSize(64, 48);
    QTest::newRow("the greatest comes last")
        << QList<QSize>{QSize(32, 24), QSize(64, 48)} << QSize(64, 48);
    QTest::newRow("a size that the icon doesn't have")
        << QList<QSize>{QSize(10, 40), QSize(30, 20), QSize(5, 5)} << QSize(30, 40);
    QTest::newRow("no sizes, as an icon from an SVG file") << QList<QSize>() << QSize(-1, -1);
}

void tst_IconViewer::theSizeOfAnIconIsItsGreatestWidthAndHeight()
{
    QFETCH(QList<QSize>, sizes);
    QFETCH(QSize, size);

    QList<IconPaint> paints;
    CIconViewer viewer(nullptr);
    viewer.setIcon(QIcon(new RecordingIconEngine(&paints, sizes)));
    QVERIFY(!viewer.isEmpty());
    QCOMPARE(viewer.contentSize(), size);
}

void tst_IconViewer::theSizeOfAPixmapIsInItsOwnPixels()
{
    QPixmap pixmap = filled(20, 30);
    pixmap.setDevicePixelRatio(2);
    CIconViewer viewer(nullptr);
    viewer.setPixmap(pixmap);
    viewer.resize(100, 100);
    QCOMPARE(viewer.contentSize(), QSize(20, 30));
    QCOMPARE(viewer.outputRect(), QRect(40, 35, 20, 30));
}

void tst_IconViewer::sizeHints_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QSize>("hint");

    QTest::newRow("empty") << Change([](CIconViewer&) {}) << QSize(100, 100);
    QTest::newRow("empty with margins")
        << Change([](CIconViewer& v) { v.setContentsMargins(1, 20, 300, 4000); })
        << QSize(401, 4120);
    QTest::newRow("empty with a text") << Change([](CIconViewer& v) {
        v.setText(QStringLiteral("a text that is far wider than a hundred pixels"));
    }) << QSize(100, 100);
    QTest::newRow("pixmap") << Change([](CIconViewer& v) { v.setPixmap(filled(30, 40)); })
                            << QSize(30, 40);
    QTest::newRow("pixmap with margins") << Change([](CIconViewer& v) {
        v.setPixmap(filled(30, 40));
        v.setContentsMargins(1, 20, 300, 4000);
    }) << QSize(331, 4060);
    QTest::newRow("icon") << Change([](CIconViewer& v) { v.setIcon(QIcon(filled(30, 40))); })
                          << QSize(30, 40);
    QTest::newRow("mandatory size, empty")
        << Change([](CIconViewer& v) { v.setMandatoryImageSize(QSize(50, 60)); }) << QSize(50, 60);
    QTest::newRow("mandatory size goes before the pixmap's") << Change([](CIconViewer& v) {
        v.setMandatoryImageSize(QSize(50, 60));
        v.setPixmap(filled(30, 40));
    }) << QSize(50, 60);
    QTest::newRow("mandatory size with margins") << Change([](CIconViewer& v) {
        v.setMandatoryImageSize(QSize(50, 60));
        v.setContentsMargins(1, 20, 300, 4000);
    }) << QSize(351, 4080);
    QTest::newRow("mandatory size of nothing") << Change([](CIconViewer& v) {
        v.setMandatoryImageSize(QSize(0, 0));
        v.setPixmap(filled(30, 40));
    }) << QSize(0, 0);
    QTest::newRow("mandatory size with a negative width") << Change([](CIconViewer& v) {
        v.setMandatoryImageSize(QSize(-1, 60));
        v.setPixmap(filled(30, 40));
    }) << QSize(30, 40);
    QTest::newRow("mandatory size with a negative height, empty")
        << Change([](CIconViewer& v) { v.setMandatoryImageSize(QSize(50, -1)); })
        << QSize(100, 100);
    QTest::newRow("expanded") << Change([](CIconViewer& v) {
        v.setPixmap(filled(30, 40));
        v.setExpandContent(true);
    }) << QSize(30, 40);
    QTest::newRow("icon without sizes")
        << Change([](CIconViewer& v) { v.setIcon(QIcon(new RecordingIconEngine(nullptr, {}))); })
        << QSize(100, 100);
}

void tst_IconViewer::sizeHints()
{
    QFETCH(Change, change);
    QFETCH(QSize, hint);

    CIconViewer viewer(nullptr);
    change(viewer);
    QCOMPARE(viewer.minimumSizeHint(), hint);
    QCOMPARE(viewer.sizeHint(), hint);
}

void tst_IconViewer::placement_data()
{
    QTest::addColumn<QSize>("pixmap");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<Change>("change");
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<QRectF>("drawn"); // null: nothing is

    const QSize hundred(100, 100);
    const Change nothing = [](CIconViewer&) {};
    const auto add = [](const char* name, const QSize& pixmap, const QSize& size, const QRect& rect,
                        const QRectF& drawn, Change change) {
        QTest::newRow(name) << pixmap << size << change << rect << drawn;
    };

    add("a small picture keeps its size in the middle", {10, 10}, hundred, {45, 45, 10, 10},
        {45, 45, 10, 10}, nothing);
    add("a half pixel is rounded in the result only", {10, 10}, {101, 103}, {46, 47, 10, 10},
        {45.5, 46.5, 10, 10}, nothing);
    add("a picture of the area's size", {100, 100}, hundred, {0, 0, 100, 100}, {0, 0, 100, 100},
        nothing);
    add("a wide picture shrinks; each part is rounded by itself", {300, 100}, hundred,
        {0, 33, 100, 33}, {0, 100.0 / 3, 100, 100.0 / 3}, nothing);
    add("a high picture shrinks", {100, 300}, hundred, {33, 0, 33, 100},
        {100.0 / 3, 0, 100.0 / 3, 100}, nothing);
    add("only too wide", {125, 50}, hundred, {0, 30, 100, 40}, {0, 30, 100, 40}, nothing);
    add("only too high", {50, 125}, hundred, {30, 0, 40, 100}, {30, 0, 40, 100}, nothing);
    add("too wide by one, too small in height", {101, 50}, hundred, {0, 25, 100, 50},
        {0, 2550.0 / 101, 100, 5000.0 / 101}, nothing);
    add("in the contents margins", {10, 10}, {200, 200}, {85, 75, 10, 10}, {85, 75, 10, 10},
        [](CIconViewer& v) { v.setContentsMargins(10, 20, 30, 60); });
    add("shrunk to the contents margins", {320, 240}, {200, 200}, {10, 20, 160, 120},
        {10, 20, 160, 120}, [](CIconViewer& v) { v.setContentsMargins(10, 20, 30, 60); });

    const Change expand = [](CIconViewer& v) { v.setExpandContent(true); };
    add("expanded, a small picture fills the area", {10, 10}, hundred, {0, 0, 100, 100},
        {0, 0, 100, 100}, expand);
    add("expanded, it keeps its form", {10, 20}, hundred, {25, 0, 50, 100}, {25, 0, 50, 100},
        expand);
    add("expanded, a great picture shrinks", {200, 400}, hundred, {25, 0, 50, 100},
        {25, 0, 50, 100}, expand);

    const Change byExpanding = [](CIconViewer& v) {
        v.setAspectRatio(Qt::KeepAspectRatioByExpanding);
    };
    add("by expanding, a small picture keeps its size", {10, 20}, hundred, {45, 40, 10, 20},
        {45, 40, 10, 20}, byExpanding);
    add("by expanding, a great picture exceeds the area", {600, 200}, hundred, {-100, 0, 300, 100},
        {-100, 0, 300, 100}, byExpanding);
    add("by expanding, a negative half is rounded up", {101, 100}, hundred, {0, 0, 101, 100},
        {-0.5, 0, 101, 100}, byExpanding);
    add("by expanding and expanded", {10, 20}, hundred, {0, -50, 100, 200}, {0, -50, 100, 200},
        [](CIconViewer& v) {
            v.setAspectRatio(Qt::KeepAspectRatioByExpanding);
            v.setExpandContent(true);
        });

    add("ignoring the ratio, a small picture fills the area", {10, 20}, hundred, {0, 0, 100, 100},
        {0, 0, 100, 100}, [](CIconViewer& v) { v.setAspectRatio(Qt::IgnoreAspectRatio); });
    add("ignoring the ratio, neither alignment nor mandatory size count", {10, 20}, {200, 200},
        {10, 20, 160, 120}, {10, 20, 160, 120}, [](CIconViewer& v) {
            v.setAspectRatio(Qt::IgnoreAspectRatio);
            v.setContentsMargins(10, 20, 30, 60);
            v.setAlign(Qt::AlignRight);
            v.setMandatoryImageSize(QSize(50, 50));
            v.setExpandContent(true);
        });

    add("a mandatory size stretches", {10, 10}, hundred, {25, 25, 50, 50}, {25, 25, 50, 50},
        [](CIconViewer& v) { v.setMandatoryImageSize(QSize(50, 50)); });
    add("a mandatory size changes the form", {10, 10}, hundred, {20, 40, 60, 20}, {20, 40, 60, 20},
        [](CIconViewer& v) { v.setMandatoryImageSize(QSize(60, 20)); });
    add("a mandatory size beyond the area shrinks", {10, 10}, hundred, {0, 25, 100, 50},
        {0, 25, 100, 50}, [](CIconViewer& v) { v.setMandatoryImageSize(QSize(200, 100)); });
    add("a mandatory size makes a great picture small", {400, 400}, hundred, {40, 40, 20, 20},
        {40, 40, 20, 20}, [](CIconViewer& v) { v.setMandatoryImageSize(QSize(20, 20)); });
    add("a mandatory size expanded", {10, 10}, hundred, {25, 0, 50, 100}, {25, 0, 50, 100},
        [](CIconViewer& v) {
            v.setMandatoryImageSize(QSize(10, 20));
            v.setExpandContent(true);
        });
    add("a mandatory size of negative width doesn't count", {10, 20}, hundred, {45, 40, 10, 20},
        {45, 40, 10, 20}, [](CIconViewer& v) { v.setMandatoryImageSize(QSize(-1, 50)); });
    add("a mandatory size of negative height doesn't count", {10, 20}, hundred, {45, 40, 10, 20},
        {45, 40, 10, 20}, [](CIconViewer& v) { v.setMandatoryImageSize(QSize(50, -1)); });
    add("a mandatory size of nothing is placed and not drawn", {10, 10}, hundred, {50, 50, 0, 0},
        {}, [](CIconViewer& v) { v.setMandatoryImageSize(QSize(0, 0)); });
    add("a mandatory size without width is not drawn", {10, 10}, hundred, {50, 40, 0, 20}, {},
        [](CIconViewer& v) { v.setMandatoryImageSize(QSize(0, 20)); });
    add("a mandatory size without height is not drawn", {10, 10}, hundred, {40, 50, 20, 0}, {},
        [](CIconViewer& v) { v.setMandatoryImageSize(QSize(20, 0)); });

    add("right without a vertical flag: at the top", {10, 20}, hundred, {90, 0, 10, 20},
        {90, 0, 10, 20}, [](CIconViewer& v) { v.setAlign(Qt::AlignRight); });
    add("right in the middle", {10, 20}, hundred, {90, 40, 10, 20}, {90, 40, 10, 20},
        [](CIconViewer& v) { v.setAlign(Qt::AlignRight | Qt::AlignVCenter); });
    add("right in the margins lies inside the right one, and at 0", {10, 20}, {200, 200},
        {160, 0, 10, 20}, {160, 0, 10, 20}, [](CIconViewer& v) {
            v.setContentsMargins(10, 20, 30, 60);
            v.setAlign(Qt::AlignRight);
        });
    add("centre goes before right", {10, 20}, hundred, {45, 0, 10, 20}, {45, 0, 10, 20},
        [](CIconViewer& v) { v.setAlign(Qt::AlignRight | Qt::AlignHCenter); });
    add("left in the middle", {10, 20}, hundred, {0, 40, 10, 20}, {0, 40, 10, 20},
        [](CIconViewer& v) { v.setAlign(Qt::AlignLeft | Qt::AlignVCenter); });
    add("left lies on the margin", {10, 20}, {200, 200}, {0, 70, 10, 20}, {0, 70, 10, 20},
        [](CIconViewer& v) {
            v.setContentsMargins(10, 20, 30, 60);
            v.setAlign(Qt::AlignLeft | Qt::AlignVCenter);
        });
    add("top lies on the margin", {10, 20}, {200, 200}, {85, 0, 10, 20}, {85, 0, 10, 20},
        [](CIconViewer& v) {
            v.setContentsMargins(10, 20, 30, 60);
            v.setAlign(Qt::AlignTop | Qt::AlignHCenter);
        });
    add("bottom lies at the top", {10, 20}, hundred, {45, 0, 10, 20}, {45, 0, 10, 20},
        [](CIconViewer& v) { v.setAlign(Qt::AlignBottom | Qt::AlignHCenter); });
    add("no alignment", {10, 20}, hundred, {0, 0, 10, 20}, {0, 0, 10, 20},
        [](CIconViewer& v) { v.setAlign(Qt::Alignment()); });
    add("alignments without effect", {10, 20}, hundred, {0, 0, 10, 20}, {0, 0, 10, 20},
        [](CIconViewer& v) { v.setAlign(Qt::AlignJustify | Qt::AlignBaseline); });

    add("an area without width", {10, 10}, hundred, {0, 0, 0, 0}, {},
        [](CIconViewer& v) { v.setContentsMargins(50, 0, 50, 0); });
    add("an area without height", {10, 10}, hundred, {0, 0, 0, 0}, {},
        [](CIconViewer& v) { v.setContentsMargins(0, 50, 0, 50); });
    add("an area of negative width", {10, 10}, hundred, {0, 0, 0, 0}, {},
        [](CIconViewer& v) { v.setContentsMargins(80, 0, 80, 0); });
    add("an area without width, ignoring the ratio", {10, 10}, hundred, {0, 0, 0, 0}, {},
        [](CIconViewer& v) {
            v.setContentsMargins(50, 0, 50, 0);
            v.setAspectRatio(Qt::IgnoreAspectRatio);
        });
}

void tst_IconViewer::placement()
{
    QFETCH(QSize, pixmap);
    QFETCH(QSize, size);
    QFETCH(Change, change);
    QFETCH(QRect, rect);
    QFETCH(QRectF, drawn);

    CIconViewer viewer(nullptr);
    viewer.setPixmap(filled(pixmap, Qt::red));
    viewer.resize(size);
    change(viewer);
    QCOMPARE(viewer.outputRect(), rect);

    const QList<Drawing> drawings = drawingsOf(viewer);
    QCOMPARE(drawings.size(), drawn.isNull() ? 0 : 1);
    if (drawn.isNull())
        return;
    QCOMPARE(drawings.first().target, drawn);
    QCOMPARE(drawings.first().source, QRectF(QPointF(), pixmap));
}

void tst_IconViewer::placementWithoutAPicture_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<QRect>("rect");

    QTest::newRow("nothing") << Change([](CIconViewer&) {}) << QRect(0, 0, 0, 0);
    QTest::newRow("expanded") << Change([](CIconViewer& v) { v.setExpandContent(true); })
                              << QRect(0, 0, 0, 0);
    QTest::newRow("a mandatory size is placed")
        << Change([](CIconViewer& v) { v.setMandatoryImageSize(QSize(50, 50)); })
        << QRect(25, 25, 50, 50);
    QTest::newRow("ignoring the ratio, it is the area")
        << Change([](CIconViewer& v) { v.setAspectRatio(Qt::IgnoreAspectRatio); })
        << QRect(0, 0, 100, 100);
    QTest::newRow("an icon without sizes")
        << Change([](CIconViewer& v) { v.setIcon(QIcon(new RecordingIconEngine(nullptr, {}))); })
        << QRect(0, 0, 0, 0);
}

void tst_IconViewer::placementWithoutAPicture()
{
    QFETCH(Change, change);
    QFETCH(QRect, rect);

    CIconViewer viewer(nullptr);
    viewer.resize(100, 100);
    change(viewer);
    QCOMPARE(viewer.outputRect(), rect);
}

void tst_IconViewer::aSubclassNarrowsTheArea()
{
    QWidget parent;
    parent.resize(100, 100);
    Viewer viewer(&parent);
    viewer.resize(100, 100);
    viewer.setContentsMargins(1, 2, 3, 4);
    QCOMPARE(viewer.viewportRect(), QRect(1, 2, 96, 94));

    viewer.setPixmap(filled(10, 10));
    viewer.narrowed = QRect(20, 30, 40, 50);
    QCOMPARE(viewer.outputRect(), QRect(35, 50, 10, 10));
    const QList<Drawing> drawings = drawingsOf(viewer);
    QCOMPARE(drawings.size(), 1);
    QCOMPARE(drawings.first().target, QRectF(35, 50, 10, 10));

    viewer.setPixmap(filled(80, 80));
    QCOMPARE(viewer.outputRect(), QRect(20, 35, 40, 40));
}

void tst_IconViewer::aSmallPixmapKeepsItsSizeInTheMiddle()
{
    CIconViewer viewer(nullptr);
    viewer.resize(100, 100);
    viewer.setPixmap(filled(10, 10));

    QImage expected = blank(QSize(100, 100));
    for (int y = 45; y <= 54; ++y) {
        for (int x = 45; x <= 54; ++x)
            expected.setPixelColor(x, y, Qt::red);
    }
    QCOMPARE(painted(viewer), expected);

    viewer.setExpandContent(true);
    expected.fill(Qt::red);
    QCOMPARE(painted(viewer), expected);
}

void tst_IconViewer::aMandatorySizeStretchesThePixmap()
{
    CIconViewer viewer(nullptr);
    viewer.resize(100, 100);
    viewer.setPixmap(filled(10, 10));
    viewer.setMandatoryImageSize(QSize(50, 50));

    const QImage image = painted(viewer);
    QCOMPARE(image.pixelColor(25, 25), QColor(Qt::red));
    QCOMPARE(image.pixelColor(74, 74), QColor(Qt::red));
    QCOMPARE(image.pixelColor(24, 50), QColor(Qt::white));
    QCOMPARE(image.pixelColor(75, 50), QColor(Qt::white));
    QCOMPARE(image.pixelColor(50, 24), QColor(Qt::white));
    QCOMPARE(image.pixelColor(50, 75), QColor(Qt::white));
}

void tst_IconViewer::aGreatPixmapIsShrunkSmoothly()
{
    CIconViewer viewer(nullptr);
    viewer.resize(100, 100);
    const QPixmap pixmap = pattern(400, 100);
    viewer.setPixmap(pixmap);

    const auto draw = [&pixmap](QPainter::RenderHints hints) {
        QImage image = blank(QSize(100, 100));
        QPainter painter(&image);
        painter.setRenderHints(hints);
        painter.drawPixmap(QRectF(0, 37.5, 100, 25), pixmap, QRectF(0, 0, 400, 100));
        painter.end();
        return image;
    };
    const QImage image = painted(viewer);
    QCOMPARE(image, draw(smoothHints));
    QVERIFY(image != draw(QPainter::RenderHints()));
    QCOMPARE(image.pixelColor(10, 50), QColor(Qt::red));
    QCOMPARE(image.pixelColor(90, 50), QColor(Qt::blue));
    QCOMPARE(image.pixelColor(10, 36), QColor(Qt::white));
    QCOMPARE(image.pixelColor(90, 63), QColor(Qt::white));
}

void tst_IconViewer::anEmptyViewerPaintsNothing_data()
{
    QTest::addColumn<Change>("change");

    QTest::newRow("nothing set") << Change([](CIconViewer&) {});
    QTest::newRow("a text") << Change([](CIconViewer& v) { v.setText(QStringLiteral("caption")); });
    QTest::newRow("a text and a mandatory size") << Change([](CIconViewer& v) {
        v.setText(QStringLiteral("caption"));
        v.setMandatoryImageSize(QSize(80, 80));
    });
    QTest::newRow("a text, ignoring the ratio") << Change([](CIconViewer& v) {
        v.setText(QStringLiteral("caption"));
        v.setAspectRatio(Qt::IgnoreAspectRatio);
    });
    QTest::newRow("disabled") << Change([](CIconViewer& v) {
        v.setText(QStringLiteral("caption"));
        v.setEnabled(false);
    });
    QTest::newRow("a text and a cleared picture") << Change([](CIconViewer& v) {
        v.setText(QStringLiteral("caption"));
        v.setPixmap(filled(50, 50));
        v.clear();
    });
    QTest::newRow("a text and an icon without sizes") << Change([](CIconViewer& v) {
        v.setText(QStringLiteral("caption"));
        v.setIcon(QIcon(new RecordingIconEngine(nullptr, {})));
    });
    QTest::newRow("a text and a picture of no size") << Change([](CIconViewer& v) {
        v.setText(QStringLiteral("caption"));
        v.setPixmap(filled(50, 50));
        v.setMandatoryImageSize(QSize(0, 0));
    });
    QTest::newRow("a text and a picture without a place") << Change([](CIconViewer& v) {
        v.setText(QStringLiteral("caption"));
        v.setPixmap(filled(50, 50));
        v.setContentsMargins(50, 0, 50, 0);
    });
}

void tst_IconViewer::anEmptyViewerPaintsNothing()
{
    QFETCH(Change, change);

    CIconViewer viewer(nullptr);
    viewer.resize(100, 100);
    change(viewer);
    QCOMPARE(painted(viewer), blank(QSize(100, 100)));
    QVERIFY(drawingsOf(viewer).isEmpty());
}

void tst_IconViewer::theCaptionLiesOverTheMiddleOfTheImage()
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPixelSize(14);
    CIconViewer viewer(nullptr);
    viewer.setFont(font);
    viewer.resize(200, 100);
    viewer.setPixmap(filled(80, 40, Qt::yellow));
    viewer.setAlign(Qt::AlignRight);
    QPalette palette = viewer.palette();
    palette.setColor(QPalette::Text, Qt::red);
    viewer.setPalette(palette);

    QImage expected = blank(QSize(200, 100));
    QPainter painter(&expected);
    painter.fillRect(120, 0, 80, 40, Qt::yellow);
    QCOMPARE(painted(viewer), expected);

    viewer.setText(QStringLiteral("caption"));
    painter.setFont(font);
    painter.setPen(Qt::red);
    painter.setRenderHints(smoothHints);
    painter.drawText(QRectF(120, 0, 80, 40), Qt::AlignCenter, QStringLiteral("caption"));
    painter.end();
    const QImage image = painted(viewer);
    QCOMPARE(image, expected);

    // Some ink about the middle of the image's rectangle, none outside it.
    QVERIFY(image.copy(140, 10, 40, 20) != [] {
        QImage yellow(40, 20, QImage::Format_ARGB32_Premultiplied);
        yellow.fill(Qt::yellow);
        return yellow;
    }());
    QCOMPARE(image.copy(0, 0, 120, 100), blank(QSize(120, 100)));
    QCOMPARE(image.copy(0, 40, 200, 60), blank(QSize(200, 60)));
}

void tst_IconViewer::theCaptionHasTheTextColourOfTheCurrentGroup()
{
    CIconViewer viewer(nullptr);
    viewer.resize(100, 100);
    viewer.setPixmap(filled(80, 80));
    viewer.setText(QStringLiteral("caption"));
    QPalette palette = viewer.palette();
    palette.setColor(QPalette::Inactive, QPalette::Text, QColor(1, 2, 3));
    palette.setColor(QPalette::Active, QPalette::Text, QColor(1, 2, 3));
    palette.setColor(QPalette::Disabled, QPalette::Text, QColor(4, 5, 6));
    palette.setColor(QPalette::WindowText, Qt::green);
    viewer.setPalette(palette);

    QList<Drawing> drawings = drawingsOf(viewer);
    QCOMPARE(drawings.size(), 2);
    QCOMPARE(drawings.at(1).text, QStringLiteral("caption"));
    QCOMPARE(drawings.at(1).pen, QColor(1, 2, 3));

    viewer.setEnabled(false);
    drawings = drawingsOf(viewer);
    QCOMPARE(drawings.size(), 2);
    QCOMPARE(drawings.at(1).pen, QColor(4, 5, 6));
}

void tst_IconViewer::theHintsOfThePixmapStayForTheCaption()
{
    CIconViewer viewer(nullptr);
    viewer.resize(100, 100);
    viewer.setText(QStringLiteral("caption"));
    viewer.setPixmap(filled(80, 80));
    QList<Drawing> drawings = drawingsOf(viewer);
    QCOMPARE(drawings.size(), 2);
    QCOMPARE(drawings.at(0).hints & smoothHints, smoothHints);
    QCOMPARE(drawings.at(1).hints, QPainter::TextAntialiasing | smoothHints);

    QList<IconPaint> paints;
    viewer.setIcon(QIcon(new RecordingIconEngine(&paints, {QSize(80, 80)})));
    drawings = drawingsOf(viewer);
    QCOMPARE(drawings.size(), 1);
    QCOMPARE(drawings.at(0).text, QStringLiteral("caption"));
    QCOMPARE(drawings.at(0).hints, QPainter::RenderHints(QPainter::TextAntialiasing));
}

void tst_IconViewer::iconsArePaintedInARoundedRectangle_data()
{
    QTest::addColumn<QSize>("icon");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<int>("mode");

    QTest::newRow("small") << QSize(10, 10) << QSize(100, 100) << true << QRect(45, 45, 10, 10)
                           << int(QIcon::Normal);
    QTest::newRow("at half a pixel")
        << QSize(10, 10) << QSize(101, 103) << true << QRect(46, 47, 10, 10) << int(QIcon::Normal);
    QTest::newRow("shrunk, each part rounded by itself")
        << QSize(300, 100) << QSize(100, 100) << true << QRect(0, 33, 100, 33)
        << int(QIcon::Normal);
    QTest::newRow("disabled") << QSize(10, 10) << QSize(100, 100) << false << QRect(45, 45, 10, 10)
                              << int(QIcon::Disabled);
}

void tst_IconViewer::iconsArePaintedInARoundedRectangle()
{
    QFETCH(QSize, icon);
    QFETCH(QSize, size);
    QFETCH(bool, enabled);
    QFETCH(QRect, rect);
    QFETCH(int, mode);

    QList<IconPaint> paints;
    CIconViewer viewer(nullptr);
    viewer.resize(size);
    viewer.setEnabled(enabled);
    viewer.setIcon(QIcon(new RecordingIconEngine(&paints, {icon})));
    painted(viewer);
    QCOMPARE(paints.size(), 1);
    QCOMPARE(paints.first().rect, rect);
    QCOMPARE(int(paints.first().mode), mode);
    QCOMPARE(paints.first().state, QIcon::Off);
    QCOMPARE(viewer.outputRect(), rect);
}

void tst_IconViewer::anIconIsNotStretched()
{
    CIconViewer viewer(nullptr);
    viewer.resize(100, 100);
    viewer.setIcon(QIcon(filled(10, 10)));
    viewer.setExpandContent(true);
    QCOMPARE(viewer.outputRect(), QRect(0, 0, 100, 100));

    // In the middle of its rectangle.
    QImage expected = blank(QSize(100, 100));
    for (int y = 45; y <= 54; ++y) {
        for (int x = 45; x <= 54; ++x)
            expected.setPixelColor(x, y, Qt::red);
    }
    QCOMPARE(painted(viewer), expected);
}

void tst_IconViewer::anIconWithoutSizesNeedsAMandatorySize()
{
    QList<IconPaint> paints;
    CIconViewer viewer(nullptr);
    viewer.resize(100, 100);
    viewer.setIcon(QIcon(new RecordingIconEngine(&paints, {})));
    painted(viewer);
    QCOMPARE(paints.size(), 0);

    viewer.setMandatoryImageSize(QSize(20, 30));
    painted(viewer);
    QCOMPARE(paints.size(), 1);
    QCOMPARE(paints.first().rect, QRect(40, 35, 20, 30));
}

void tst_IconViewer::aDisabledViewerShowsTheStylesFormOfThePixmap()
{
    class GreenStyle : public QProxyStyle
    {
    public:
        QPixmap generatedIconPixmap(QIcon::Mode, const QPixmap& pixmap,
                                    const QStyleOption*) const override
        {
            return filled(pixmap.size(), Qt::green);
        }
    };

    // The style and the palette that count are the application's.
    GreenStyle green;
    CIconViewer viewer(nullptr);
    viewer.setStyle(&green);
    viewer.setPalette(QPalette(Qt::magenta));
    viewer.resize(100, 100);
    viewer.setPixmap(filled(10, 10));
    QCOMPARE(painted(viewer).pixelColor(50, 50), QColor(Qt::red));
    QCOMPARE(m_style->calls, 0);

    viewer.setEnabled(false);
    const QImage image = painted(viewer);
    QCOMPARE(image.pixelColor(45, 45), QColor(Qt::blue));
    QCOMPARE(image.pixelColor(54, 54), QColor(Qt::blue));
    QCOMPARE(image.pixelColor(44, 50), QColor(Qt::white));
    QCOMPARE(m_style->lastMode, QIcon::Disabled);
    QCOMPARE(m_style->lastVersion, 0);
    QCOMPARE(m_style->lastType, 0);
    QCOMPARE(m_style->lastPalette, QGuiApplication::palette());
    QCOMPARE(viewer.pixmap().toImage().pixelColor(0, 0), QColor(Qt::red));

    viewer.setEnabled(true);
    QCOMPARE(painted(viewer).pixelColor(50, 50), QColor(Qt::red));
}

void tst_IconViewer::theDisabledFormIsMadeOnceForEachPixmap()
{
    QWidget parent;
    CIconViewer viewer(&parent);
    viewer.resize(100, 100);
    const QPixmap pixmap = filled(10, 10);
    viewer.setPixmap(pixmap);
    // Through its parent too.
    parent.setEnabled(false);
    QCOMPARE(m_style->calls, 0);

    for (int i = 0; i < 3; ++i)
        QCOMPARE(painted(viewer).pixelColor(50, 50), QColor(Qt::blue));
    QCOMPARE(m_style->calls, 1);

    parent.setEnabled(true);
    QCOMPARE(painted(viewer).pixelColor(50, 50), QColor(Qt::red));
    parent.setEnabled(false);
    QCOMPARE(painted(viewer).pixelColor(50, 50), QColor(Qt::blue));
    QCOMPARE(m_style->calls, 1);

    // Setting it makes a new holder, of the same pixmap too.
    viewer.setPixmap(pixmap);
    QCOMPARE(painted(viewer).pixelColor(50, 50), QColor(Qt::blue));
    QCOMPARE(m_style->calls, 2);
}

void tst_IconViewer::aDisabledFormThatIsNullIsAnAssertion()
{
    RecordingLogger logger;
    m_style->givesNull = true;
    CIconViewer viewer(nullptr);
    viewer.resize(100, 100);
    viewer.setPixmap(filled(80, 80));
    viewer.setText(QStringLiteral("caption"));
    viewer.setEnabled(false);

    const QList<Drawing> drawings = drawingsOf(viewer);
    QCOMPARE(drawings.size(), 1);
    QCOMPARE(drawings.first().text, QStringLiteral("caption"));
    const QRegularExpression assertion(QStringLiteral("^E ASSERT in .*IconViewer\\.cpp \\d+$"));
    QStringList lines = logger.takeLines();
    QCOMPARE(lines.size(), 1);
    QVERIFY2(assertion.match(lines.first()).hasMatch(), qPrintable(lines.first()));

    // The cache is still null, so that the next paint asks again.
    m_style->givesNull = false;
    QCOMPARE(painted(viewer).pixelColor(15, 15), QColor(Qt::blue));
    QCOMPARE(m_style->calls, 2);
    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_IconViewer::aDisabledViewerShowsTheDisabledIcon()
{
    QIcon icon;
    icon.addPixmap(filled(10, 10, Qt::red), QIcon::Normal, QIcon::Off);
    icon.addPixmap(filled(10, 10, Qt::yellow), QIcon::Disabled, QIcon::Off);
    icon.addPixmap(filled(10, 10, Qt::green), QIcon::Normal, QIcon::On);
    icon.addPixmap(filled(10, 10, Qt::cyan), QIcon::Disabled, QIcon::On);
    CIconViewer viewer(nullptr);
    viewer.resize(100, 100);
    viewer.setIcon(icon);
    QCOMPARE(painted(viewer).pixelColor(50, 50), QColor(Qt::red));

    viewer.setEnabled(false);
    QCOMPARE(painted(viewer).pixelColor(50, 50), QColor(Qt::yellow));
    QCOMPARE(m_style->calls, 0);
}

void tst_IconViewer::changesRepaintAndRelayout_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<bool>("paints");
    QTest::addColumn<bool>("relayouts");
    QTest::addColumn<bool>("parentPaints");

    const auto add = [](const char* name, bool paints, bool relayouts, bool parentPaints,
                        Change change) {
        QTest::newRow(name) << change << paints << relayouts << parentPaints;
    };

    add("another pixmap", true, true, false, [](CIconViewer& v) { v.setPixmap(filled(20, 20)); });
    add("the same pixmap", true, true, false, [](CIconViewer& v) { v.setPixmap(v.pixmap()); });
    add("a null pixmap", true, true, false, [](CIconViewer& v) { v.setPixmap(QPixmap()); });
    add("an icon", true, true, false, [](CIconViewer& v) { v.setIcon(QIcon(filled(20, 20))); });
    add("a null icon", true, true, false, [](CIconViewer& v) { v.setIcon(QIcon()); });
    add("a bad file", true, true, false,
        [](CIconViewer& v) { v.setPixmap(QStringLiteral("/missing.png")); });
    add("clear", false, true, false, [](CIconViewer& v) { v.clear(); });

    add("another alignment", true, false, false,
        [](CIconViewer& v) { v.setAlign(Qt::AlignRight); });
    add("the same alignment", false, false, false,
        [](CIconViewer& v) { v.setAlign(Qt::AlignCenter); });
    add("another fit", true, false, false,
        [](CIconViewer& v) { v.setAspectRatio(Qt::IgnoreAspectRatio); });
    add("the same fit", false, false, false,
        [](CIconViewer& v) { v.setAspectRatio(Qt::KeepAspectRatio); });
    add("expanded", true, false, false, [](CIconViewer& v) { v.setExpandContent(true); });
    add("not expanded, as before", false, false, false,
        [](CIconViewer& v) { v.setExpandContent(false); });
    add("another text", true, false, false,
        [](CIconViewer& v) { v.setText(QStringLiteral("caption")); });
    add("the same text", false, false, false, [](CIconViewer& v) { v.setText(QString()); });
    add("another mandatory size", true, true, false,
        [](CIconViewer& v) { v.setMandatoryImageSize(QSize(5, 5)); });
    add("the same mandatory size", false, false, false,
        [](CIconViewer& v) { v.setMandatoryImageSize(QSize(-1, -1)); });

    add("no shadow: the parent paints", true, false, true,
        [](CIconViewer& v) { v.setShowShadow(false); });
    add("a shadow, as before", false, false, false, [](CIconViewer& v) { v.setShowShadow(true); });
}

void tst_IconViewer::changesRepaintAndRelayout()
{
    QFETCH(Change, change);
    QFETCH(bool, paints);
    QFETCH(bool, relayouts);
    QFETCH(bool, parentPaints);

    PaintCounter window;
    window.resize(300, 200);
    Viewer viewer(&window);
    viewer.setGeometry(50, 50, 100, 100);
    viewer.setPixmap(filled(10, 10));
    PaintCounter other(&window);
    other.setGeometry(200, 50, 50, 50);
    // What waits for a repaint is painted at the same time as this widget, or before.
    const auto paintPending = [&other] {
        other.paints = 0;
        other.update();
        QTRY_VERIFY(other.paints > 0);
    };
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_VERIFY(viewer.paints > 0);
    paintPending();

    viewer.paints = 0;
    window.layoutRequests = 0;
    window.paintedRegion = QRegion();
    change(viewer);
    paintPending();
    QCOMPARE(viewer.paints > 0, paints);
    QCOMPARE(window.layoutRequests > 0, relayouts);
    // A point outside both children.
    QCOMPARE(window.paintedRegion.contains(QPoint(5, 5)), parentPaints);

    if (viewer.isEmpty()) {
        viewer.paints = 0;
        window.layoutRequests = 0;
        viewer.clear();
        paintPending();
        QCOMPARE(viewer.paints, 0);
        QCOMPARE(window.layoutRequests, 0);
    }
}

void tst_IconViewer::afterClearTheImageStaysUntilTheNextRepaint()
{
    QWidget window;
    window.resize(200, 100);
    Viewer viewer(&window);
    viewer.resize(100, 100);
    viewer.setPixmap(filled(50, 50));
    PaintCounter other(&window);
    other.setGeometry(150, 0, 50, 50);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    const auto onScreen = [&window] {
        const QImage image = window.screen()->grabWindow(window.winId()).toImage();
        return image.pixelColor(image.width() / 4, image.height() / 2);
    };
    QTRY_COMPARE(onScreen(), QColor(Qt::red));

    viewer.clear();
    viewer.paints = 0;
    other.paints = 0;
    // What waits for a repaint is painted at the same time, or before.
    other.update();
    QTRY_VERIFY(other.paints > 0);
    QCOMPARE(viewer.paints, 0);
    QCOMPARE(onScreen(), QColor(Qt::red));

    viewer.update();
    QTRY_VERIFY(onScreen() != QColor(Qt::red));
}

void tst_IconViewer::theParentPaintsTwiceWhileThereIsSomethingToPlace_data()
{
    QTest::addColumn<Change>("change");
    QTest::addColumn<int>("paints");

    QTest::newRow("a picture") << Change([](CIconViewer& v) { v.setPixmap(filled(10, 10)); }) << 2;
    QTest::newRow("an icon") << Change([](CIconViewer& v) { v.setIcon(QIcon(filled(10, 10))); })
                             << 2;
    QTest::newRow("empty") << Change([](CIconViewer&) {}) << 1;
    QTest::newRow("empty with a caption")
        << Change([](CIconViewer& v) { v.setText(QStringLiteral("caption")); }) << 1;
    QTest::newRow("cleared") << Change([](CIconViewer& v) {
        v.setPixmap(filled(10, 10));
        v.clear();
    }) << 1;
    QTest::newRow("no shadow") << Change([](CIconViewer& v) {
        v.setPixmap(filled(10, 10));
        v.setShowShadow(false);
    }) << 1;
    QTest::newRow("a shadow again") << Change([](CIconViewer& v) {
        v.setPixmap(filled(10, 10));
        v.setShowShadow(false);
        v.setShowShadow(true);
    }) << 2;
    QTest::newRow("a picture without a place") << Change([](CIconViewer& v) {
        v.setPixmap(filled(10, 10));
        v.setContentsMargins(50, 0, 50, 0);
    }) << 1;
    QTest::newRow("a picture of no width") << Change([](CIconViewer& v) {
        v.setPixmap(filled(10, 10));
        v.setMandatoryImageSize(QSize(0, 10));
    }) << 1;
    QTest::newRow("a picture of no height") << Change([](CIconViewer& v) {
        v.setPixmap(filled(10, 10));
        v.setMandatoryImageSize(QSize(10, 0));
    }) << 1;
    QTest::newRow("an icon without sizes")
        << Change([](CIconViewer& v) { v.setIcon(QIcon(new RecordingIconEngine(nullptr, {}))); })
        << 1;
    QTest::newRow("empty with a mandatory size, which is placed")
        << Change([](CIconViewer& v) { v.setMandatoryImageSize(QSize(10, 10)); }) << 2;
    QTest::newRow("empty and ignoring the ratio, which gives the area")
        << Change([](CIconViewer& v) { v.setAspectRatio(Qt::IgnoreAspectRatio); }) << 2;
}

void tst_IconViewer::theParentPaintsTwiceWhileThereIsSomethingToPlace()
{
    QFETCH(Change, change);
    QFETCH(int, paints);

    PaintCounter parent;
    parent.resize(200, 200);
    Viewer viewer(&parent);
    viewer.resize(100, 100);
    change(viewer);

    // Each time: the filter is in place again.
    for (int i = 0; i < 3; ++i) {
        parent.paints = 0;
        viewer.paints = 0;
        QImage image = blank(QSize(200, 200));
        parent.render(&image, QPoint(), QRegion(), QWidget::RenderFlags());
        QCOMPARE(parent.paints, paints);
        QCOMPARE(viewer.paints, 0);
    }

    parent.show();
    QVERIFY(QTest::qWaitForWindowExposed(&parent));
    QTRY_VERIFY(parent.paints > 0);
    parent.paints = 0;
    parent.repaint();
    QCOMPARE(parent.paints, paints);
}

void tst_IconViewer::theParentPaintsFirst()
{
    QStringList order;
    PaintCounter parent;
    parent.resize(200, 200);
    parent.onPaint = [&order] { order << QStringLiteral("parent"); };
    Viewer viewer(&parent);
    viewer.resize(100, 100);
    viewer.setPixmap(filled(10, 10));
    viewer.onPaint = [&order] { order << QStringLiteral("viewer"); };
    painted(parent);
    QCOMPARE(order,
             (QStringList{QStringLiteral("parent"), QStringLiteral("parent"),
                          QStringLiteral("viewer")}));

    // By the hook itself, before the event goes on.
    parent.paints = 0;
    parent.onPaint = nullptr;
    QPaintEvent e(QRect(0, 0, 200, 200));
    QVERIFY(!viewer.eventFilter(&parent, &e));
    QCOMPARE(parent.paints, 1);
}

void tst_IconViewer::theFilterIsOnTheParentWhileShowShadowIsOn()
{
    QWidget parent;
    Viewer viewer(&parent);
    QVERIFY(viewer.isFilterOn(parent));
    viewer.setShowShadow(true);
    QVERIFY(viewer.isFilterOn(parent));
    viewer.setShowShadow(false);
    QVERIFY(!viewer.showShadow());
    QVERIFY(!viewer.isFilterOn(parent));
    viewer.setShowShadow(false);
    QVERIFY(!viewer.isFilterOn(parent));
    viewer.setShowShadow(true);
    QVERIFY(viewer.showShadow());
    QVERIFY(viewer.isFilterOn(parent));

    CIconViewer alone(nullptr);
    alone.setShowShadow(false);
    QVERIFY(!alone.showShadow());
    alone.setShowShadow(true);
    QVERIFY(alone.showShadow());
}

void tst_IconViewer::theFilterFollowsTheParent()
{
    PaintCounter first;
    PaintCounter second;
    Viewer viewer(&first);
    viewer.resize(50, 50);
    viewer.setPixmap(filled(10, 10));
    for (QWidget* const window : {static_cast<QWidget*>(&first), static_cast<QWidget*>(&second)}) {
        window->show();
        QVERIFY(QTest::qWaitForWindowExposed(window));
    }

    // Only a widget that was shown is told that its parent is about to change.
    viewer.setParent(&second);
    viewer.show();
    QVERIFY(!viewer.isFilterOn(first));
    QVERIFY(viewer.isFilterOn(second));
    first.paints = 0;
    painted(first);
    QCOMPARE(first.paints, 1);
    second.paints = 0;
    painted(second);
    QCOMPARE(second.paints, 2);

    viewer.setParent(nullptr);
    QVERIFY(!viewer.isFilterOn(second));
    viewer.setParent(&first);
    viewer.show();
    QVERIFY(viewer.isFilterOn(first));

    viewer.setShowShadow(false);
    viewer.setParent(&second);
    QVERIFY(!viewer.isFilterOn(first));
    QVERIFY(!viewer.isFilterOn(second));
    viewer.setShowShadow(true);
    QVERIFY(!viewer.isFilterOn(first));
    QVERIFY(viewer.isFilterOn(second));

    QEvent about(QEvent::ParentAboutToChange);
    QCoreApplication::sendEvent(&viewer, &about);
    QVERIFY(!viewer.isFilterOn(second));
    QEvent changed(QEvent::ParentChange);
    QCoreApplication::sendEvent(&viewer, &changed);
    QVERIFY(viewer.isFilterOn(second));

    // With showShadow off a filter that somebody else set is left alone.
    viewer.setShowShadow(false);
    second.installEventFilter(&viewer);
    QCoreApplication::sendEvent(&viewer, &about);
    QVERIFY(viewer.isFilterOn(second));
}

void tst_IconViewer::aViewerThatWasNeverShownFiltersItsNewParent()
{
    PaintCounter first;
    PaintCounter second;
    Viewer viewer(&first);
    viewer.resize(50, 50);
    viewer.setPixmap(filled(10, 10));
    viewer.setParent(&second);

    painted(first);
    QCOMPARE(first.paints, 1);
    painted(second);
    QCOMPARE(second.paints, 2);

    PaintCounter third;
    Viewer orphan(nullptr);
    orphan.resize(50, 50);
    orphan.setPixmap(filled(10, 10));
    orphan.setParent(&third);
    painted(third);
    QCOMPARE(third.paints, 2);
}

void tst_IconViewer::otherEventsAndObjectsAreNotDoubled_data()
{
    QTest::addColumn<bool>("fromParent");
    QTest::addColumn<bool>("showShadow");
    QTest::addColumn<int>("type");

    QTest::newRow("no event") << true << true << -1;
    QTest::newRow("another event") << true << true << int(QEvent::LayoutRequest);
    QTest::newRow("another object") << false << true << int(QEvent::Paint);
    QTest::newRow("no shadow") << true << false << int(QEvent::Paint);
}

void tst_IconViewer::otherEventsAndObjectsAreNotDoubled()
{
    QFETCH(bool, fromParent);
    QFETCH(bool, showShadow);
    QFETCH(int, type);

    PaintCounter parent;
    PaintCounter stranger;
    CIconViewer viewer(&parent);
    viewer.resize(50, 50);
    viewer.setPixmap(filled(10, 10));
    viewer.setShowShadow(showShadow);

    QPaintEvent paint(QRect(0, 0, 10, 10));
    QEvent other(QEvent::LayoutRequest);
    QEvent* const e = type < 0 ? nullptr : type == QEvent::Paint ? &paint : &other;
    QVERIFY(!viewer.eventFilter(fromParent ? &parent : &stranger, e));
    for (const PaintCounter* const each : {&parent, &stranger}) {
        QCOMPARE(each->paints, 0);
        QCOMPARE(each->layoutRequests, 0);
    }
}

void tst_IconViewer::aDeletedViewerLeavesTheParentAlone()
{
    PaintCounter parent;
    {
        CIconViewer viewer(&parent);
        viewer.resize(50, 50);
        viewer.setPixmap(filled(10, 10));
        painted(parent);
        QCOMPARE(parent.paints, 2);
    }
    painted(parent);
    QCOMPARE(parent.paints, 3);

    auto* const dying = new PaintCounter;
    const QPointer<CIconViewer> child = new CIconViewer(dying);
    child->setPixmap(filled(10, 10));
    delete dying;
    QVERIFY(!child);
}

void tst_IconViewer::aShownViewerIsPlacedInLogicalPixels()
{
    // One to one, or two device pixels to the pixel.
    const int ratio = qMax(1, qEnvironmentVariableIntValue("QT_SCALE_FACTOR"));
    CIconViewer viewer(nullptr);
    viewer.resize(120, 100);
    viewer.setPixmap(filled(20, 10));
    viewer.show();
    QVERIFY(QTest::qWaitForWindowExposed(&viewer));
    QCOMPARE(viewer.devicePixelRatioF(), qreal(ratio));
    QCOMPARE(viewer.size(), QSize(120, 100));
    QCOMPARE(viewer.outputRect(), QRect(50, 45, 20, 10));

    const auto isRed = [&viewer, ratio](int x, int y, int dx, int dy) {
        const QImage image = viewer.grab().toImage();
        return image.size() == QSize(120, 100) * ratio
            && image.pixelColor(x * ratio + dx, y * ratio + dy) == QColor(Qt::red);
    };
    QVERIFY(isRed(50, 45, 0, 0));
    QVERIFY(isRed(70, 55, -1, -1));
    QVERIFY(!isRed(50, 45, -1, 0));
    QVERIFY(!isRed(50, 45, 0, -1));
    QVERIFY(!isRed(70, 55, 0, -1));
    QVERIFY(!isRed(70, 55, -1, 0));

    viewer.setEnabled(false);
    QCOMPARE(viewer.grab().toImage().pixelColor(60 * ratio, 50 * ratio), QColor(Qt::blue));

    viewer.setEnabled(true);
    viewer.setIcon(QIcon(filled(20, 10)));
    viewer.setText(QStringLiteral("."));
    QCOMPARE(viewer.contentSize(), QSize(20, 10));
    QCOMPARE(viewer.outputRect(), QRect(50, 45, 20, 10));
    QVERIFY(isRed(50, 45, 0, 0));
    QVERIFY(!isRed(70, 55, 0, -1));
}

QTEST_MAIN(tst_IconViewer)
#include "tst_IconViewer.moc"
