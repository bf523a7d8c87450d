#include "customvekappstyle.h"

#include "MessageCounter.h"
#include "MetaMethods.h"
#include "RecordingLogger.h"

#include <QApplication>
#include <QCheckBox>
#include <QImage>
#include <QListView>
#include <QMetaMethod>
#include <QPainter>
#include <QPushButton>
#include <QRegularExpression>
#include <QSlider>
#include <QStyleFactory>
#include <QStyleOption>
#include <QTest>
#include <QTreeWidget>

#include <memory>
#include <optional>
#include <type_traits>

using VEK_NAMESPACE::CustomVekAppStyle;

static_assert(std::is_base_of<QProxyStyle, CustomVekAppStyle>::value, "");
static_assert(std::is_default_constructible<CustomVekAppStyle>::value, "");
static_assert(sizeof(CustomVekAppStyle) == sizeof(QProxyStyle) + sizeof(void*), "");
static_assert(std::is_same<decltype(&CustomVekAppStyle::disableButtonShift),
                           void (CustomVekAppStyle::*)(QWidget const*, bool)>::value,
              "");

// What the style overrides is a member of the style, all else of its base.
static_assert(
    std::is_same<decltype(&CustomVekAppStyle::drawPrimitive),
                 void (CustomVekAppStyle::*)(QStyle::PrimitiveElement, const QStyleOption*,
                                             QPainter*, const QWidget*) const>::value,
    "");
static_assert(std::is_same<decltype(&CustomVekAppStyle::drawControl),
                           void (CustomVekAppStyle::*)(QStyle::ControlElement, const QStyleOption*,
                                                       QPainter*, const QWidget*) const>::value,
              "");
static_assert(std::is_same<decltype(&CustomVekAppStyle::pixelMetric),
                           int (CustomVekAppStyle::*)(QStyle::PixelMetric, const QStyleOption*,
                                                      const QWidget*) const>::value,
              "");
static_assert(
    std::is_same<decltype(&CustomVekAppStyle::styleHint),
                 int (CustomVekAppStyle::*)(QStyle::StyleHint, const QStyleOption*, const QWidget*,
                                            QStyleHintReturn*) const>::value,
    "");
static_assert(
    std::is_same<decltype(&CustomVekAppStyle::standardPixmap),
                 QPixmap (CustomVekAppStyle::*)(QStyle::StandardPixmap, const QStyleOption*,
                                                const QWidget*) const>::value,
    "");
static_assert(std::is_same<decltype(&CustomVekAppStyle::drawComplexControl),
                           decltype(&QProxyStyle::drawComplexControl)>::value,
              "");
static_assert(std::is_same<decltype(&CustomVekAppStyle::drawItemText),
                           decltype(&QProxyStyle::drawItemText)>::value,
              "");
static_assert(std::is_same<decltype(&CustomVekAppStyle::drawItemPixmap),
                           decltype(&QProxyStyle::drawItemPixmap)>::value,
              "");
static_assert(std::is_same<decltype(&CustomVekAppStyle::sizeFromContents),
                           decltype(&QProxyStyle::sizeFromContents)>::value,
              "");
static_assert(std::is_same<decltype(&CustomVekAppStyle::subElementRect),
                           decltype(&QProxyStyle::subElementRect)>::value,
              "");
static_assert(std::is_same<decltype(&CustomVekAppStyle::subControlRect),
                           decltype(&QProxyStyle::subControlRect)>::value,
              "");
static_assert(std::is_same<decltype(&CustomVekAppStyle::hitTestComplexControl),
                           decltype(&QProxyStyle::hitTestComplexControl)>::value,
              "");
static_assert(std::is_same<decltype(&CustomVekAppStyle::standardIcon),
                           decltype(&QProxyStyle::standardIcon)>::value,
              "");
static_assert(std::is_same<decltype(&CustomVekAppStyle::generatedIconPixmap),
                           decltype(&QProxyStyle::generatedIconPixmap)>::value,
              "");
static_assert(std::is_same<decltype(&CustomVekAppStyle::layoutSpacing),
                           decltype(&QProxyStyle::layoutSpacing)>::value,
              "");
static_assert(std::is_same<decltype(&CustomVekAppStyle::standardPalette),
                           decltype(&QProxyStyle::standardPalette)>::value,
              "");

Q_DECLARE_METATYPE(Qt::MouseButton)
Q_DECLARE_METATYPE(QStyle::StyleHint)
Q_DECLARE_METATYPE(QStyle::PrimitiveElement)

// clazy:excludeall=non-pod-global-static,qproperty-without-notify

namespace {

const char optOutProperty[] = "disableButtonShiftProperty";

constexpr int basesHint = 4711;
constexpr int basesMetric = 815;

/// A base style that draws nothing, gives its own answers, and tells what it was asked.
class AnsweringStyle : public QCommonStyle
{
public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override
    {
        note("primitive", element, option, painter, widget);
    }
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override
    {
        note("control", element, option, painter, widget);
    }
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override
    {
        note("metric", metric, option, nullptr, widget);
        return basesMetric;
    }
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* returnData) const override
    {
        note("hint", hint, option, returnData, widget);
        return basesHint;
    }
    QPixmap standardPixmap(StandardPixmap pixmap, const QStyleOption* option,
                           const QWidget* widget) const override
    {
        note("pixmap", pixmap, option, nullptr, widget);
        return QPixmap(31, 17);
    }

    static QString question(const char* what, int value, const void* option, const void* other,
                            const void* widget)
    {
        const auto text = [](const void* pointer) {
            return QString::number(reinterpret_cast<quintptr>(pointer), 16);
        };
        return QStringLiteral("%1 %2 %3 %4 %5")
            .arg(QLatin1String(what))
            .arg(value)
            .arg(text(option), text(other), text(widget));
    }
    QStringList takeQuestions()
    {
        QStringList questions;
        questions.swap(m_questions);
        return questions;
    }

private:
    void note(const char* what, int value, const void* option, const void* other,
              const void* widget) const
    {
        m_questions << question(what, value, option, other, widget);
    }

    mutable QStringList m_questions;
};

/// The style on top of an AnsweringStyle, which it owns.
struct StyleOnAnswers
{
    StyleOnAnswers()
    {
        style.setBaseStyle(answers);
        answers->takeQuestions();
    }

    CustomVekAppStyle style;
    AnsweringStyle* const answers = new AnsweringStyle;
};

/// Tells who listens to it.
class Button : public QPushButton
{
public:
    explicit Button(const char* name = "")
    {
        setObjectName(QLatin1String(name));
        m_listeners = countListeners();
    }

    /// Of both of its signals, beside those that it has from the start.
    QList<int> listeners() const
    {
        const QList<int> now = countListeners();
        return {now.at(0) - m_listeners.at(0), now.at(1) - m_listeners.at(1)};
    }

private:
    QList<int> countListeners() const
    {
        return {receivers(SIGNAL(destroyed(QObject*))),
                receivers(SIGNAL(objectNameChanged(QString)))};
    }

    QList<int> m_listeners;
};

const QList<int> listenedTo = {1, 1};
const QList<int> notListenedTo = {0, 0};

/// Counts how often its property is read.
class PropertyReader : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(QVariant disableButtonShiftProperty READ disableButtonShiftProperty)

public:
    QVariant disableButtonShiftProperty() const
    {
        ++reads;
        return value;
    }

    QVariant value;
    mutable int reads = 0;
};

class OwnTree : public QTreeView
{
    Q_OBJECT
};

/// Whether the style shifts the contents of a pressed button, by its two metrics.
QString shift(const QStyle& style, const QWidget* widget)
{
    return QStringLiteral("%1,%2")
        .arg(style.pixelMetric(QStyle::PM_ButtonShiftHorizontal, nullptr, widget))
        .arg(style.pixelMetric(QStyle::PM_ButtonShiftVertical, nullptr, widget));
}

const QString shifted = QStringLiteral("1,1");
const QString kept = QStringLiteral("0,0");

/// 'k' is the grey of the arrow and ' ' is transparent; '?' is anything else.
QStringList pixels(const QPixmap& pixmap)
{
    const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
    QStringList rows;
    for (int y = 0; y < image.height(); ++y) {
        QString row;
        for (int x = 0; x < image.width(); ++x) {
            const QRgb colour = image.pixel(x, y);
            row += QLatin1Char(colour == 0xff808080 ? 'k' : qAlpha(colour) == 0 ? ' ' : '?');
        }
        rows << row;
    }
    return rows;
}

const QStringList toTheRight = {QStringLiteral("kk  kk  "), QStringLiteral(" kk  kk "),
                                QStringLiteral("  kk  kk"), QStringLiteral(" kk  kk "),
                                QStringLiteral("kk  kk  ")};
const QStringList toTheLeft = {QStringLiteral("  kk  kk"), QStringLiteral(" kk  kk "),
                               QStringLiteral("kk  kk  "), QStringLiteral(" kk  kk "),
                               QStringLiteral("  kk  kk")};

/// The picture of a primitive element of a checked, focused thing, on yellow.
QImage primitivePicture(const QStyle& style, QStyle::PrimitiveElement element)
{
    QStyleOptionFocusRect option;
    option.rect = QRect(4, 4, 22, 22);
    option.palette = QPalette(Qt::lightGray);
    option.backgroundColor = Qt::white;
    option.state = QStyle::State_Enabled | QStyle::State_On | QStyle::State_HasFocus
        | QStyle::State_KeyboardFocusChange;
    QImage image(30, 30, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::yellow);
    QPainter painter(&image);
    style.drawPrimitive(element, &option, &painter, nullptr);
    return image;
}

bool isBlank(const QImage& image)
{
    QImage blank(image.size(), image.format());
    blank.fill(Qt::yellow);
    return image == blank;
}

int countOf(const QImage& image, QRgb colour)
{
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            count += image.pixel(x, y) == colour;
    }
    return count;
}

/// The picture of a menu's entry whose text and mark are magenta.
QImage menuItemPicture(const QStyle& style, bool checked)
{
    QStyleOptionMenuItem option;
    option.rect = QRect(0, 0, 60, 24);
    option.state = QStyle::State_Enabled;
    option.checkType = QStyleOptionMenuItem::NonExclusive;
    option.menuItemType = QStyleOptionMenuItem::Normal;
    option.checked = checked;
    option.maxIconWidth = 20;
    option.menuHasCheckableItems = true;
    for (const QPalette::ColorRole role :
         {QPalette::Text, QPalette::ButtonText, QPalette::WindowText})
        option.palette.setColor(role, QColor(255, 0, 255));
    QImage image(60, 24, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::white);
    QPainter painter(&image);
    style.drawControl(QStyle::CE_MenuItem, &option, &painter, nullptr);
    return image;
}

constexpr QRgb red = 0xffff0000;

QIcon redIcon()
{
    QPixmap pixmap(10, 10);
    pixmap.fill(QColor(255, 0, 0));
    return QIcon(pixmap);
}

/// Where the icon of a button of 60 by 40 lies.
QRect redArea(QPushButton& button, bool pressed)
{
    button.setDown(pressed);
    const QImage image = button.grab().toImage();
    QRect area;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) == red)
                area |= QRect(x, y, 1, 1);
        }
    }
    return area;
}

} // namespace

class tst_customvekappstyle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void metaObject();
    void baseStyle();
    void baseStyleOfAnApplication();

    void primitives_data();
    void primitives();
    void primitivePixels_data();
    void primitivePixels();
    void menuItemPixels();
    void focusedCheckBoxPixels();
    void controls();

    void hints_data();
    void hints();
    void otherHints();
    void hintsOnWindows_data();
    void hintsOnWindows();
    void treesRows_data();
    void treesRows();
    void toolTipMask_data();
    void toolTipMask();
    void toolTipMaskWithoutMask_data();
    void toolTipMaskWithoutMask();
    void sliderJumps_data();
    void sliderJumps();

    void otherMetrics();
    void metricsOfUnregistered_data();
    void metricsOfUnregistered();
    void metricsOfRegistered();
    void metricsGoToTheBase();
    void propertyReads_data();
    void propertyReads();
    void pressedButtonPixels_data();
    void pressedButtonPixels();
    void pressedButtonPixelsUnderASheet();

    void extensionArrow_data();
    void extensionArrow();
    void extensionArrowIsMadeOnce();
    void otherPixmaps();

    void registerAndRemove();
    void registerTwice();
    void noWidget();
    void emptyName();
    void sameNames();
    void sameNamesRemovedByTheOther();
    void stylesDontShareTheRegister();
    void rename();
    void renameToNothing();
    void renameToATakenName();
    void renameUnnoticed();
    void renameOfALostEntry();
    void renameWithoutSender();
    void renameOfNoWidget();
    void destroyWhileRegistered();
    void destroySlot();
    void styleDiesFirst();

    void toolTipMaskWithoutOption();

private:
    /// Whether what was logged since it was last asked is that many plain assertions of the style.
    bool loggedAssertions(int count);

    RecordingLogger m_logger;
    std::optional<MessageCounter> m_messages;
};

void tst_customvekappstyle::init()
{
    m_messages.emplace({"propagateSizeHints"});
    m_logger.takeLines();
}

void tst_customvekappstyle::cleanup()
{
    QApplication::setLayoutDirection(Qt::LeftToRight);
    const int messages = m_messages->count();
    m_messages.reset();
    QCOMPARE(messages, 0);
    QCOMPARE(m_logger.takeLines(), QStringList());
}

bool tst_customvekappstyle::loggedAssertions(int count)
{
    const QStringList lines = m_logger.takeLines();
    const QRegularExpression assertion(QStringLiteral(
        "^E ASSERT in .*PluginShell/modules/utilsDll/customvekappstyle\\.cpp [0-9]+$"));
    if (lines.size() == count && lines.filter(assertion).size() == count)
        return true;
    qWarning("logged: %s", qPrintable(lines.join(QLatin1Char('\n'))));
    return false;
}

void tst_customvekappstyle::metaObject()
{
    const QMetaObject& meta = CustomVekAppStyle::staticMetaObject;
    QCOMPARE(meta.className(), "vek::CustomVekAppStyle");
    QCOMPARE(meta.superClass(), &QProxyStyle::staticMetaObject);
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
    QCOMPARE(meta.enumeratorCount(), meta.enumeratorOffset());
    QCOMPARE(meta.classInfoCount(), meta.classInfoOffset());
    QCOMPARE(meta.constructorCount(), 0);

    QCOMPARE(meta.methodCount(), meta.methodOffset() + 2);
    const char* const declarations[] = {
        "void onNonShiftedButtonDestroy(QObject* p)",
        "void onNonShiftedButtonObjectNameChanged(QString strNewName)"};
    for (int i = 0; i < 2; ++i) {
        const QMetaMethod method = meta.method(meta.methodOffset() + i);
        QCOMPARE(MetaMethods::declaration(method), QLatin1String(declarations[i]));
        QCOMPARE(method.methodType(), QMetaMethod::Slot);
        QCOMPARE(method.access(), QMetaMethod::Private);
    }

    const CustomVekAppStyle style;
    QCOMPARE(style.metaObject(), &meta);
}

void tst_customvekappstyle::baseStyle()
{
    const CustomVekAppStyle style;
    QCOMPARE(style.baseStyle()->objectName(), QStringLiteral("windows"));
    QCOMPARE(style.baseStyle()->metaObject()->className(), "QWindowsStyle");
    QCOMPARE(style.baseStyle()->parent(), &style);
    QCOMPARE(style.baseStyle()->proxy(), &style);
}

/// Whatever the application's own style is.
void tst_customvekappstyle::baseStyleOfAnApplication()
{
    QVERIFY(QStyleFactory::keys().contains(QStringLiteral("Fusion")));
    QApplication::setStyle(QStringLiteral("Fusion"));
    const CustomVekAppStyle style;
    QCOMPARE(style.baseStyle()->objectName(), QStringLiteral("windows"));
    QVERIFY(style.baseStyle() != QApplication::style());
}

void tst_customvekappstyle::primitives_data()
{
    QTest::addColumn<int>("element");
    QTest::addColumn<bool>("drawn");
    const QList<int> left = {QStyle::PE_FrameFocusRect, QStyle::PE_IndicatorMenuCheckMark};
    for (int element = 0; element <= int(QStyle::PE_PanelMenu); ++element) {
        QTest::newRow(QByteArray("element ") + QByteArray::number(element))
            << element << !left.contains(element);
    }
    QTest::newRow("a style's own") << int(QStyle::PE_CustomBase) + 7 << true;
}

void tst_customvekappstyle::primitives()
{
    QFETCH(int, element);
    QFETCH(bool, drawn);
    const StyleOnAnswers on;
    const QStyleOption option;
    const QWidget widget;
    QImage image(1, 1, QImage::Format_ARGB32);
    QPainter painter(&image);
    on.answers->takeQuestions();
    on.style.drawPrimitive(QStyle::PrimitiveElement(element), &option, &painter, &widget);
    on.style.drawPrimitive(QStyle::PrimitiveElement(element), nullptr, nullptr);
    const QStringList questions = {
        AnsweringStyle::question("primitive", element, &option, &painter, &widget),
        AnsweringStyle::question("primitive", element, nullptr, nullptr, nullptr)};
    QCOMPARE(on.answers->takeQuestions(), drawn ? questions : QStringList());
}

void tst_customvekappstyle::primitivePixels_data()
{
    QTest::addColumn<QStyle::PrimitiveElement>("element");
    QTest::addColumn<bool>("drawn");
    QTest::newRow("focus frame") << QStyle::PE_FrameFocusRect << false;
    QTest::newRow("menu check mark") << QStyle::PE_IndicatorMenuCheckMark << false;
    QTest::newRow("check box") << QStyle::PE_IndicatorCheckBox << true;
    QTest::newRow("radio button") << QStyle::PE_IndicatorRadioButton << true;
    QTest::newRow("arrow") << QStyle::PE_IndicatorArrowDown << true;
}

void tst_customvekappstyle::primitivePixels()
{
    QFETCH(QStyle::PrimitiveElement, element);
    QFETCH(bool, drawn);
    const std::unique_ptr<QStyle> bare(QStyleFactory::create(QStringLiteral("Windows")));
    const CustomVekAppStyle style;
    const QImage bareImage = primitivePicture(*bare, element);
    QVERIFY(!isBlank(bareImage));
    const QImage image = primitivePicture(style, element);
    if (drawn)
        QCOMPARE(image, bareImage);
    else
        QVERIFY(isBlank(image));
}

void tst_customvekappstyle::menuItemPixels()
{
    const std::unique_ptr<QStyle> bare(QStyleFactory::create(QStringLiteral("Windows")));
    const CustomVekAppStyle style;
    constexpr QRgb markColour = 0xffff00ff;
    QVERIFY(countOf(menuItemPicture(*bare, true), markColour) > 0);
    QCOMPARE(countOf(menuItemPicture(style, true), markColour), 0);
    QCOMPARE(menuItemPicture(style, false), menuItemPicture(*bare, false));
}

void tst_customvekappstyle::focusedCheckBoxPixels()
{
    const std::unique_ptr<QStyle> bare(QStyleFactory::create(QStringLiteral("Windows")));
    CustomVekAppStyle style;
    for (const bool isBare : {true, false}) {
        QWidget window(nullptr, Qt::FramelessWindowHint);
        window.resize(200, 100);
        QCheckBox checkBox(QStringLiteral("Keep the size"), &window);
        QCheckBox other(QStringLiteral("Other"), &window);
        other.move(0, 60);
        checkBox.setStyle(isBare ? bare.get() : &style);
        checkBox.setGeometry(0, 0, 150, 30);
        window.show();
        QVERIFY(QTest::qWaitForWindowActive(&window));
        other.setFocus(Qt::TabFocusReason);
        window.setAttribute(Qt::WA_KeyboardFocusChange);
        QVERIFY(!checkBox.hasFocus());
        const QImage without = checkBox.grab().toImage();
        checkBox.setFocus(Qt::TabFocusReason);
        QVERIFY(checkBox.hasFocus());
        const QImage with = checkBox.grab().toImage();
        QCOMPARE(with != without, isBare);
    }
}

void tst_customvekappstyle::controls()
{
    const StyleOnAnswers on;
    const QStyleOption option;
    const QWidget widget;
    QImage image(1, 1, QImage::Format_ARGB32);
    QPainter painter(&image);
    on.answers->takeQuestions();
    QList<int> elements = {int(QStyle::CE_CustomBase) + 7};
    for (int element = 0; element <= int(QStyle::CE_ShapedFrame); ++element)
        elements << element;
    for (const int element : qAsConst(elements)) {
        on.style.drawControl(QStyle::ControlElement(element), &option, &painter, &widget);
        on.style.drawControl(QStyle::ControlElement(element), nullptr, nullptr);
        QCOMPARE(
            on.answers->takeQuestions(),
            QStringList({AnsweringStyle::question("control", element, &option, &painter, &widget),
                         AnsweringStyle::question("control", element, nullptr, nullptr, nullptr)}));
    }
}

void tst_customvekappstyle::hints_data()
{
    QTest::addColumn<QStyle::StyleHint>("hint");
    QTest::addColumn<int>("value");
    QTest::newRow("disabled text isn't etched") << QStyle::SH_EtchDisabledText << 0;
    QTest::newRow("disabled entries can't be active")
        << QStyle::SH_Menu_AllowActiveAndDisabled << 0;
    QTest::newRow("cancel buttons of progress dialogs are centred")
        << QStyle::SH_ProgressDialog_CenterCancelButton << 1;
    QTest::newRow("combo boxes track the mouse") << QStyle::SH_ComboBox_ListMouseTracking << 1;
    QTest::newRow("menus track the mouse") << QStyle::SH_Menu_MouseTracking << 1;
    QTest::newRow("menu bars track the mouse") << QStyle::SH_MenuBar_MouseTracking << 1;
    QTest::newRow("sliders jump to a left click") << QStyle::SH_Slider_AbsoluteSetButtons << 1;
}

/// Whatever the base style would say, whoever asks.
void tst_customvekappstyle::hints()
{
    QFETCH(QStyle::StyleHint, hint);
    QFETCH(int, value);
    const StyleOnAnswers on;
    const CustomVekAppStyle style;
    const QStyleOption option;
    const QTreeView widget;
    QStyleHintReturnMask mask;
    mask.region = QRegion(1, 2, 3, 4);
    on.answers->takeQuestions();
    for (const QStyle* asked : {&style, &on.style}) {
        QCOMPARE(asked->styleHint(hint), value);
        QCOMPARE(asked->styleHint(hint, &option, &widget, &mask), value);
    }
    QCOMPARE(mask.region, QRegion(1, 2, 3, 4));
    QCOMPARE(on.answers->takeQuestions(), QStringList());
}

void tst_customvekappstyle::otherHints()
{
    const StyleOnAnswers on;
    const QStyleOption option;
    const QWidget widget;
    QStyleHintReturnMask mask;
    mask.region = QRegion(1, 2, 3, 4);
    const QList<int> own = {QStyle::SH_EtchDisabledText,
                            QStyle::SH_Menu_AllowActiveAndDisabled,
                            QStyle::SH_ProgressDialog_CenterCancelButton,
                            QStyle::SH_ComboBox_ListMouseTracking,
                            QStyle::SH_Menu_MouseTracking,
                            QStyle::SH_MenuBar_MouseTracking,
                            QStyle::SH_Slider_AbsoluteSetButtons,
                            QStyle::SH_ToolTip_Mask};
    QList<int> hints = {int(QStyle::SH_CustomBase) + 7};
    for (int hint = 0; hint <= int(QStyle::SH_Menu_SubMenuDontStartSloppyOnLeave); ++hint) {
        if (!own.contains(hint))
            hints << hint;
    }
    on.answers->takeQuestions();
    for (const int hint : qAsConst(hints)) {
        QCOMPARE(on.style.styleHint(QStyle::StyleHint(hint), &option, &widget, &mask), 4711);
        QCOMPARE(on.style.styleHint(QStyle::StyleHint(hint)), 4711);
        QCOMPARE(on.answers->takeQuestions(),
                 QStringList({AnsweringStyle::question("hint", hint, &option, &mask, &widget),
                              AnsweringStyle::question("hint", hint, nullptr, nullptr, nullptr)}));
    }
    QCOMPARE(mask.region, QRegion(1, 2, 3, 4));
}

void tst_customvekappstyle::hintsOnWindows_data()
{
    QTest::addColumn<QStyle::StyleHint>("hint");
    QTest::addColumn<int>("value");
    QTest::newRow("buttons that page a slider")
        << QStyle::SH_Slider_PageSetButtons << int(Qt::LeftButton);
    QTest::newRow("a tool tip without a mask") << QStyle::SH_ToolTip_Mask << 0;
    QTest::newRow("mouse over in menus of combo boxes") << QStyle::SH_ComboBox_Popup << 0;
}

void tst_customvekappstyle::hintsOnWindows()
{
    QFETCH(QStyle::StyleHint, hint);
    QFETCH(int, value);
    const CustomVekAppStyle style;
    const QStyleOptionComboBox option;
    QCOMPARE(style.styleHint(hint, &option), value);
}

void tst_customvekappstyle::treesRows_data()
{
    QTest::addColumn<QWidget*>("widget");
    QTest::addColumn<int>("value");
    QTest::newRow("no widget") << static_cast<QWidget*>(nullptr) << 4711;
    QTest::newRow("a plain widget") << new QWidget << 4711;
    QTest::newRow("a list") << static_cast<QWidget*>(new QListView) << 4711;
    QTest::newRow("a tree") << static_cast<QWidget*>(new QTreeView) << 0;
    QTest::newRow("a tree of Qt's with entries") << static_cast<QWidget*>(new QTreeWidget) << 0;
    QTest::newRow("a derived tree") << static_cast<QWidget*>(new OwnTree) << 0;
}

void tst_customvekappstyle::treesRows()
{
    QFETCH(QWidget*, widget);
    QFETCH(int, value);
    const std::unique_ptr<QWidget> owner(widget);
    const StyleOnAnswers on;
    QCOMPARE(on.style.styleHint(QStyle::SH_ItemView_PaintAlternatingRowColorsForEmptyArea, nullptr,
                                widget),
             value);
}

void tst_customvekappstyle::toolTipMask_data()
{
    QTest::addColumn<QRect>("rect");
    QTest::addColumn<QRegion>("region");
    const QRegion cut = QRegion(1, 0, 8, 1) + QRegion(0, 1, 10, 4) + QRegion(1, 5, 8, 1);
    QTest::newRow("at the origin") << QRect(0, 0, 10, 6) << cut;
    QTest::newRow("elsewhere") << QRect(300, 200, 10, 6) << cut;
    QTest::newRow("at a negative place") << QRect(-7, -9, 10, 6) << cut;
    QTest::newRow("large") << QRect(0, 0, 1000, 500)
                           << QRegion(1, 0, 998, 1) + QRegion(0, 1, 1000, 498)
            + QRegion(1, 499, 998, 1);
    QTest::newRow("three by three is a cross")
        << QRect(0, 0, 3, 3) << QRegion(1, 0, 1, 1) + QRegion(0, 1, 3, 1) + QRegion(1, 2, 1, 1);
    QTest::newRow("two by two is nothing") << QRect(0, 0, 2, 2) << QRegion();
    QTest::newRow("one wide is a line") << QRect(0, 0, 1, 10) << QRegion(0, 1, 1, 8);
    QTest::newRow("one high is a line") << QRect(0, 0, 10, 1) << QRegion(1, 0, 8, 1);
    QTest::newRow("a pixel is nothing") << QRect(0, 0, 1, 1) << QRegion();
    QTest::newRow("nothing is nothing") << QRect() << QRegion();
    QTest::newRow("a negative size is nothing") << QRect(5, 5, -10, -10) << QRegion();
}

void tst_customvekappstyle::toolTipMask()
{
    QFETCH(QRect, rect);
    QFETCH(QRegion, region);
    const StyleOnAnswers on;
    const CustomVekAppStyle style;
    QStyleOption option;
    option.rect = rect;
    const QWidget widget;
    on.answers->takeQuestions();
    for (const QStyle* asked : {&style, &on.style}) {
        for (const int version : {1, 0, -1}) {
            QStyleHintReturnMask mask;
            mask.version = version;
            mask.region = QRegion(90, 90, 5, 5);
            QCOMPARE(asked->styleHint(QStyle::SH_ToolTip_Mask, &option, version ? &widget : nullptr,
                                      &mask),
                     1);
            QCOMPARE(mask.region, region);
        }
    }
    QCOMPARE(on.answers->takeQuestions(), QStringList());
}

void tst_customvekappstyle::toolTipMaskWithoutMask_data()
{
    QTest::addColumn<int>("version");
    QTest::addColumn<int>("type");
    QTest::newRow("newer version") << 2 << 0xf001;
    QTest::newRow("plain return data") << 1 << 0xf000;
    QTest::newRow("a variant") << 1 << 0xf002;
    QTest::newRow("an unknown kind") << 1 << 0xf003;
    QTest::newRow("kind zero") << 1 << 0;
}

void tst_customvekappstyle::toolTipMaskWithoutMask()
{
    QFETCH(int, version);
    QFETCH(int, type);
    const StyleOnAnswers on;
    QStyleOption option;
    option.rect = QRect(0, 0, 10, 6);
    QStyleHintReturnMask mask;
    mask.version = version;
    mask.type = type;
    mask.region = QRegion(90, 90, 5, 5);
    QCOMPARE(on.style.styleHint(QStyle::SH_ToolTip_Mask, &option, nullptr, &mask), 4711);
    QCOMPARE(mask.region, QRegion(90, 90, 5, 5));
    QCOMPARE(on.style.styleHint(QStyle::SH_ToolTip_Mask, &option), 4711);
    QCOMPARE(on.style.styleHint(QStyle::SH_ToolTip_Mask), 4711);
}

void tst_customvekappstyle::sliderJumps_data()
{
    QTest::addColumn<bool>("bare");
    QTest::addColumn<Qt::MouseButton>("button");
    QTest::addColumn<int>("value");
    QTest::newRow("the left button") << false << Qt::LeftButton << 70;
    QTest::newRow("the middle button") << false << Qt::MiddleButton << 10;
    QTest::newRow("the right button") << false << Qt::RightButton << 10;
    QTest::newRow("the left button without the style") << true << Qt::LeftButton << 20;
}

/// A handle of 11 pixels, so that a pixel is a value.
void tst_customvekappstyle::sliderJumps()
{
    QFETCH(bool, bare);
    QFETCH(Qt::MouseButton, button);
    QFETCH(int, value);
    const std::unique_ptr<QStyle> style(bare ? QStyleFactory::create(QStringLiteral("Windows"))
                                             : new CustomVekAppStyle);
    QSlider slider(Qt::Horizontal);
    slider.setStyle(style.get());
    slider.setRange(0, 100);
    slider.setPageStep(10);
    slider.setValue(10);
    slider.resize(111, 30);
    slider.show();
    QVERIFY(QTest::qWaitForWindowExposed(&slider));
    QCOMPARE(slider.width(), 111);
    QTest::mouseClick(&slider, button, Qt::NoModifier, QPoint(75, 15));
    QCOMPARE(slider.value(), value);
}

void tst_customvekappstyle::otherMetrics()
{
    StyleOnAnswers on;
    const QStyleOption option;
    PropertyReader widget;
    widget.value = true;
    widget.setObjectName(QStringLiteral("ok"));
    on.style.disableButtonShift(&widget, true);
    on.answers->takeQuestions();
    QList<int> metrics = {int(QStyle::PM_CustomBase) + 7};
    for (int metric = 0; metric <= int(QStyle::PM_TreeViewIndentation); ++metric) {
        if (metric != QStyle::PM_ButtonShiftHorizontal && metric != QStyle::PM_ButtonShiftVertical)
            metrics << metric;
    }
    for (const int metric : qAsConst(metrics)) {
        QCOMPARE(on.style.pixelMetric(QStyle::PixelMetric(metric), &option, &widget), 815);
        QCOMPARE(
            on.answers->takeQuestions(),
            QStringList(AnsweringStyle::question("metric", metric, &option, nullptr, &widget)));
    }
    QCOMPARE(widget.reads, 0);
}

void tst_customvekappstyle::metricsOfUnregistered_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("property");
    QTest::addColumn<QString>("result");
    QTest::newRow("nothing") << QString() << QVariant() << shifted;
    QTest::newRow("a name") << QStringLiteral("ok") << QVariant() << shifted;
    QTest::newRow("a property without a name") << QString() << QVariant(true) << shifted;
    QTest::newRow("name and property") << QStringLiteral("ok") << QVariant(true) << kept;
    QTest::newRow("name and false") << QStringLiteral("ok") << QVariant(false) << kept;
    QTest::newRow("name and zero") << QStringLiteral("ok") << QVariant(0) << kept;
    QTest::newRow("name and an empty text") << QStringLiteral("ok") << QVariant(QString()) << kept;
    QTest::newRow("a name of a blank") << QStringLiteral(" ") << QVariant(true) << kept;
}

void tst_customvekappstyle::metricsOfUnregistered()
{
    QFETCH(QString, name);
    QFETCH(QVariant, property);
    QFETCH(QString, result);
    const CustomVekAppStyle style;
    QPushButton button;
    button.setObjectName(name);
    button.setProperty(optOutProperty, property);
    QCOMPARE(shift(style, &button), result);
    QCOMPARE(shift(style, nullptr), QStringLiteral("1,1"));

    button.setProperty(optOutProperty, QVariant());
    QCOMPARE(shift(style, &button), QStringLiteral("1,1"));
    button.setProperty("disablebuttonshiftproperty", true);
    QCOMPARE(shift(style, &button), QStringLiteral("1,1"));
}

void tst_customvekappstyle::metricsOfRegistered()
{
    CustomVekAppStyle style;
    Button button("ok");
    Button other("cancel");
    style.disableButtonShift(&button, true);
    QCOMPARE(shift(style, &button), QStringLiteral("0,0"));
    QCOMPARE(shift(style, &other), QStringLiteral("1,1"));
    QCOMPARE(shift(style, nullptr), QStringLiteral("1,1"));

    // The option plays no part, nor the kind of widget.
    const QStyleOptionButton option;
    QCOMPARE(style.pixelMetric(QStyle::PM_ButtonShiftHorizontal, &option, &button), 0);
    QCOMPARE(style.pixelMetric(QStyle::PM_ButtonShiftVertical, &option, &other), 1);
    QWidget widget;
    widget.setObjectName(QStringLiteral("ok"));
    QCOMPARE(shift(style, &widget), QStringLiteral("0,0"));
    widget.setObjectName(QStringLiteral("OK"));
    QCOMPARE(shift(style, &widget), QStringLiteral("1,1"));
}

void tst_customvekappstyle::metricsGoToTheBase()
{
    StyleOnAnswers on;
    const QStyleOption option;
    Button plain;
    Button registered("ok");
    on.style.disableButtonShift(&registered, true);
    on.answers->takeQuestions();
    for (const auto metric : {QStyle::PM_ButtonShiftHorizontal, QStyle::PM_ButtonShiftVertical}) {
        QCOMPARE(on.style.pixelMetric(metric, &option, &plain), 815);
        QCOMPARE(on.style.pixelMetric(metric), 815);
        QCOMPARE(on.style.pixelMetric(metric, &option, &registered), 0);
        QCOMPARE(
            on.answers->takeQuestions(),
            QStringList({AnsweringStyle::question("metric", metric, &option, nullptr, &plain),
                         AnsweringStyle::question("metric", metric, nullptr, nullptr, nullptr)}));
    }
}

void tst_customvekappstyle::propertyReads_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("reads");
    QTest::addColumn<int>("metric");
    QTest::newRow("no name") << QString() << QVariant(true) << 0 << 1;
    QTest::newRow("a registered name") << QStringLiteral("taken") << QVariant(true) << 0 << 0;
    QTest::newRow("another name") << QStringLiteral("free") << QVariant(true) << 1 << 0;
    QTest::newRow("another name, no value") << QStringLiteral("free") << QVariant() << 1 << 1;
}

/// The property is read once, and only if the name doesn't tell.
void tst_customvekappstyle::propertyReads()
{
    QFETCH(QString, name);
    QFETCH(QVariant, value);
    QFETCH(int, reads);
    QFETCH(int, metric);
    CustomVekAppStyle style;
    Button registered("taken");
    style.disableButtonShift(&registered, true);
    PropertyReader widget;
    widget.setObjectName(name);
    widget.value = value;
    for (const auto which : {QStyle::PM_ButtonShiftHorizontal, QStyle::PM_ButtonShiftVertical}) {
        widget.reads = 0;
        QCOMPARE(style.pixelMetric(which, nullptr, &widget), metric);
        QCOMPARE(widget.reads, reads);
    }
}

void tst_customvekappstyle::pressedButtonPixels_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("registers");
    QTest::addColumn<bool>("property");
    QTest::addColumn<QPoint>("move");
    QTest::newRow("a plain button") << QStringLiteral("ok") << false << false << QPoint(1, 1);
    QTest::newRow("a registered button") << QStringLiteral("ok") << true << false << QPoint(0, 0);
    QTest::newRow("a button with the property")
        << QStringLiteral("ok") << false << true << QPoint(0, 0);
    QTest::newRow("a nameless button with the property")
        << QString() << false << true << QPoint(1, 1);
}

void tst_customvekappstyle::pressedButtonPixels()
{
    QFETCH(QString, name);
    QFETCH(bool, registers);
    QFETCH(bool, property);
    QFETCH(QPoint, move);
    CustomVekAppStyle style;
    QPushButton button(redIcon(), QString());
    button.setIconSize(QSize(10, 10));
    button.resize(60, 40);
    button.setStyle(&style);
    button.setObjectName(name);
    if (property)
        button.setProperty(optOutProperty, true);
    if (registers)
        style.disableButtonShift(&button, true);

    const QRect released = redArea(button, false);
    QCOMPARE(released.size(), QSize(10, 10));
    QCOMPARE(redArea(button, true), released.translated(move));
    QCOMPARE(redArea(button, false), released);
    if (registers) {
        style.disableButtonShift(&button, false);
        QCOMPARE(redArea(button, true), released.translated(1, 1));
    }
}

/// A host installs the style and sets a sheet on top.
void tst_customvekappstyle::pressedButtonPixelsUnderASheet()
{
    auto* style = new CustomVekAppStyle;
    QApplication::setStyle(style);
    qApp->setStyleSheet(QStringLiteral("QLabel { color: #ff0000; }"));
    {
        QPushButton button(redIcon(), QString());
        button.setIconSize(QSize(10, 10));
        button.resize(60, 40);
        button.setObjectName(QStringLiteral("ok"));
        const QRect released = redArea(button, false);
        QCOMPARE(released.size(), QSize(10, 10));
        QCOMPARE(redArea(button, true), released.translated(1, 1));
        style->disableButtonShift(&button, true);
        QCOMPARE(redArea(button, true), released);
    }
    qApp->setStyleSheet(QString());
    QApplication::setStyle(QStringLiteral("Fusion"));
}

void tst_customvekappstyle::extensionArrow_data()
{
    QTest::addColumn<Qt::LayoutDirection>("application");
    QTest::addColumn<bool>("hasOption");
    QTest::addColumn<Qt::LayoutDirection>("option");
    QTest::addColumn<QStringList>("rows");
    QTest::newRow("an application to the right")
        << Qt::LeftToRight << false << Qt::LeftToRight << toTheRight;
    QTest::newRow("an application to the left")
        << Qt::RightToLeft << false << Qt::LeftToRight << toTheLeft;
    QTest::newRow("an option to the right")
        << Qt::LeftToRight << true << Qt::LeftToRight << toTheRight;
    QTest::newRow("an option to the left")
        << Qt::LeftToRight << true << Qt::RightToLeft << toTheLeft;
    QTest::newRow("an option to the right in an application to the left")
        << Qt::RightToLeft << true << Qt::LeftToRight << toTheRight;
    QTest::newRow("an option to the left in an application to the left")
        << Qt::RightToLeft << true << Qt::RightToLeft << toTheLeft;
    QTest::newRow("an option without a direction in an application to the left")
        << Qt::RightToLeft << true << Qt::LayoutDirectionAuto << toTheRight;
}

void tst_customvekappstyle::extensionArrow()
{
    QFETCH(Qt::LayoutDirection, application);
    QFETCH(bool, hasOption);
    QFETCH(Qt::LayoutDirection, option);
    QFETCH(QStringList, rows);
    QApplication::setLayoutDirection(application);
    const StyleOnAnswers on;
    QStyleOption styleOption;
    styleOption.direction = option;
    // A widget's own direction plays no part.
    QWidget widget;
    widget.setLayoutDirection(application == Qt::LeftToRight ? Qt::RightToLeft : Qt::LeftToRight);
    on.answers->takeQuestions();
    for (const QWidget* asking : {static_cast<const QWidget*>(nullptr), &qAsConst(widget)}) {
        const QPixmap pixmap = on.style.standardPixmap(QStyle::SP_ToolBarHorizontalExtensionButton,
                                                       hasOption ? &styleOption : nullptr, asking);
        QCOMPARE(pixmap.size(), QSize(8, 5));
        QCOMPARE(pixels(pixmap), rows);
    }
    QCOMPARE(on.answers->takeQuestions(), QStringList());
}

void tst_customvekappstyle::extensionArrowIsMadeOnce()
{
    const CustomVekAppStyle style;
    const auto another = std::make_unique<CustomVekAppStyle>();
    const auto key = [](const QStyle& asked, Qt::LayoutDirection direction) {
        QStyleOption option;
        option.direction = direction;
        return asked.standardPixmap(QStyle::SP_ToolBarHorizontalExtensionButton, &option)
            .cacheKey();
    };
    QCOMPARE(key(style, Qt::LeftToRight), key(style, Qt::LeftToRight));
    // Each style has one of its own, but all share the one to the left.
    QVERIFY(key(style, Qt::LeftToRight) != key(*another, Qt::LeftToRight));
    QCOMPARE(key(style, Qt::RightToLeft), key(style, Qt::RightToLeft));
    QCOMPARE(key(style, Qt::RightToLeft), key(*another, Qt::RightToLeft));
}

void tst_customvekappstyle::otherPixmaps()
{
    const StyleOnAnswers on;
    const QStyleOption option;
    const QWidget widget;
    on.answers->takeQuestions();
    QList<int> standard = {int(QStyle::SP_CustomBase) + 7};
    for (int pixmap = 0; pixmap <= int(QStyle::SP_LineEditClearButton); ++pixmap) {
        if (pixmap != QStyle::SP_ToolBarHorizontalExtensionButton)
            standard << pixmap;
    }
    for (const int pixmap : qAsConst(standard)) {
        QCOMPARE(on.style.standardPixmap(QStyle::StandardPixmap(pixmap), &option, &widget).size(),
                 QSize(31, 17));
        QCOMPARE(
            on.answers->takeQuestions(),
            QStringList(AnsweringStyle::question("pixmap", pixmap, &option, nullptr, &widget)));
    }
}

void tst_customvekappstyle::registerAndRemove()
{
    CustomVekAppStyle style;
    Button button("ok");
    style.disableButtonShift(&button, false);
    QCOMPARE(shift(style, &button), shifted);
    QCOMPARE(button.listeners(), notListenedTo);
    style.disableButtonShift(&button, true);
    QCOMPARE(shift(style, &button), kept);
    QCOMPARE(button.listeners(), listenedTo);
    style.disableButtonShift(&button, false);
    QCOMPARE(shift(style, &button), shifted);
    QCOMPARE(button.listeners(), notListenedTo);
    style.disableButtonShift(&button, false);
    style.disableButtonShift(&button, true);
    QCOMPARE(shift(style, &button), kept);
    QCOMPARE(button.listeners(), listenedTo);
}

void tst_customvekappstyle::registerTwice()
{
    CustomVekAppStyle style;
    Button button("ok");
    style.disableButtonShift(&button, true);
    style.disableButtonShift(&button, true);
    QCOMPARE(button.listeners(), listenedTo);
    style.disableButtonShift(&button, false);
    QCOMPARE(shift(style, &button), shifted);
    QCOMPARE(button.listeners(), notListenedTo);
}

void tst_customvekappstyle::noWidget()
{
    CustomVekAppStyle style;
    style.disableButtonShift(nullptr, true);
    style.disableButtonShift(nullptr, false);
    QCOMPARE(m_logger.takeLines(), QStringList());
}

/// It fails an assertion, and is kept without having an effect.
void tst_customvekappstyle::emptyName()
{
    CustomVekAppStyle style;
    Button button;
    Button other;
    style.disableButtonShift(&button, false);
    QVERIFY(loggedAssertions(1));
    QCOMPARE(button.listeners(), notListenedTo);
    style.disableButtonShift(&button, true);
    QVERIFY(loggedAssertions(1));
    QCOMPARE(button.listeners(), listenedTo);
    QCOMPARE(shift(style, &button), shifted);
    style.disableButtonShift(&other, true);
    QVERIFY(loggedAssertions(1));
    QCOMPARE(other.listeners(), notListenedTo);

    button.setObjectName(QStringLiteral("ok"));
    QCOMPARE(shift(style, &button), kept);
    style.disableButtonShift(&other, true);
    QVERIFY(loggedAssertions(1));
    QCOMPARE(other.listeners(), listenedTo);
    style.disableButtonShift(&other, false);
    QVERIFY(loggedAssertions(1));
    QCOMPARE(other.listeners(), notListenedTo);
}

void tst_customvekappstyle::sameNames()
{
    CustomVekAppStyle style;
    auto a = std::make_unique<Button>("ok");
    Button b("ok");
    style.disableButtonShift(a.get(), true);
    QCOMPARE(shift(style, &b), kept);
    style.disableButtonShift(&b, true);
    QCOMPARE(b.listeners(), notListenedTo);
    QCOMPARE(a->listeners(), listenedTo);
    QCOMPARE(shift(style, a.get()), kept);
    QCOMPARE(shift(style, &b), kept);
    a.reset();
    QCOMPARE(shift(style, &b), shifted);

    style.disableButtonShift(&b, true);
    QCOMPARE(shift(style, &b), kept);
    QCOMPARE(b.listeners(), listenedTo);
}

void tst_customvekappstyle::sameNamesRemovedByTheOther()
{
    CustomVekAppStyle style;
    auto a = std::make_unique<Button>("ok");
    Button b("ok");
    style.disableButtonShift(a.get(), true);
    style.disableButtonShift(&b, false);
    QVERIFY(loggedAssertions(1));
    QCOMPARE(shift(style, a.get()), shifted);
    QCOMPARE(shift(style, &b), shifted);
    QCOMPARE(a->listeners(), listenedTo);
    a.reset();
    QCOMPARE(m_logger.takeLines(), QStringList());
    QCOMPARE(shift(style, &b), shifted);
}

void tst_customvekappstyle::stylesDontShareTheRegister()
{
    CustomVekAppStyle style;
    auto another = std::make_unique<CustomVekAppStyle>();
    Button button("ok");
    style.disableButtonShift(&button, true);
    QCOMPARE(shift(*another, &button), shifted);
    another->disableButtonShift(&button, true);
    QCOMPARE(button.listeners(), QList<int>({2, 2}));
    another->disableButtonShift(&button, false);
    QCOMPARE(button.listeners(), listenedTo);
    QCOMPARE(shift(style, &button), kept);
    another->disableButtonShift(&button, true);
    another.reset();
    QCOMPARE(button.listeners(), listenedTo);
    QCOMPARE(shift(style, &button), kept);
}

void tst_customvekappstyle::rename()
{
    CustomVekAppStyle style;
    Button button("ok");
    Button ok("ok");
    Button yes("yes");
    style.disableButtonShift(&button, true);
    button.setObjectName(QStringLiteral("yes"));
    QCOMPARE(shift(style, &button), kept);
    QCOMPARE(shift(style, &ok), shifted);
    QCOMPARE(shift(style, &yes), kept);
    QCOMPARE(button.listeners(), listenedTo);

    button.setObjectName(QStringLiteral("ok"));
    QCOMPARE(shift(style, &ok), kept);
    QCOMPARE(shift(style, &yes), shifted);
    QCOMPARE(button.listeners(), listenedTo);
    style.disableButtonShift(&button, false);
    QCOMPARE(shift(style, &ok), shifted);
    QCOMPARE(button.listeners(), notListenedTo);
}

void tst_customvekappstyle::renameToNothing()
{
    CustomVekAppStyle style;
    Button button("ok");
    Button ok("ok");
    style.disableButtonShift(&button, true);
    button.setObjectName(QString());
    QCOMPARE(m_logger.takeLines(), QStringList());
    QCOMPARE(button.listeners(), notListenedTo);
    QCOMPARE(shift(style, &ok), shifted);
    button.setObjectName(QStringLiteral("ok"));
    QCOMPARE(shift(style, &button), shifted);

    // The empty name isn't taken either.
    Button nameless;
    style.disableButtonShift(&nameless, true);
    QVERIFY(loggedAssertions(1));
    QCOMPARE(nameless.listeners(), listenedTo);
}

void tst_customvekappstyle::renameToATakenName()
{
    CustomVekAppStyle style;
    auto first = std::make_unique<Button>("yes");
    Button button("ok");
    Button ok("ok");
    style.disableButtonShift(first.get(), true);
    style.disableButtonShift(&button, true);
    button.setObjectName(QStringLiteral("yes"));
    QCOMPARE(m_logger.takeLines(), QStringList());
    QCOMPARE(shift(style, &button), kept);
    QCOMPARE(shift(style, &ok), shifted);
    QCOMPARE(button.listeners(), notListenedTo);
    QCOMPARE(first->listeners(), listenedTo);
    first.reset();
    QCOMPARE(shift(style, &button), shifted);
}

/// The entry is found by its button, when its name is older than the last one.
void tst_customvekappstyle::renameUnnoticed()
{
    CustomVekAppStyle style;
    Button button("first");
    Button first("first");
    Button second("second");
    Button third("third");
    style.disableButtonShift(&button, true);
    button.blockSignals(true);
    button.setObjectName(QStringLiteral("second"));
    button.blockSignals(false);
    QCOMPARE(shift(style, &first), kept);
    QCOMPARE(shift(style, &second), shifted);
    style.disableButtonShift(&button, false);
    QCOMPARE(button.listeners(), listenedTo);
    button.setObjectName(QStringLiteral("third"));
    QCOMPARE(m_logger.takeLines(), QStringList());
    QCOMPARE(shift(style, &first), shifted);
    QCOMPARE(shift(style, &second), shifted);
    QCOMPARE(shift(style, &third), kept);
    QCOMPARE(button.listeners(), listenedTo);
}

void tst_customvekappstyle::renameOfALostEntry()
{
    CustomVekAppStyle style;
    Button a("ok");
    Button b("ok");
    Button second("second");
    style.disableButtonShift(&second, true);
    style.disableButtonShift(&a, true);
    style.disableButtonShift(&b, false);
    QVERIFY(loggedAssertions(1));
    a.setObjectName(QStringLiteral("yes"));
    QVERIFY(loggedAssertions(1));
    QCOMPARE(shift(style, &a), shifted);
    QCOMPARE(shift(style, &second), kept);
    QCOMPARE(a.listeners(), listenedTo);
    a.setObjectName(QString());
    QVERIFY(loggedAssertions(1));
}

void tst_customvekappstyle::renameWithoutSender()
{
    CustomVekAppStyle style;
    Button button("ok");
    style.disableButtonShift(&button, true);
    QVERIFY(QMetaObject::invokeMethod(&style, "onNonShiftedButtonObjectNameChanged",
                                      Q_ARG(QString, QStringLiteral("ok"))));
    QCOMPARE(shift(style, &button), kept);
    QCOMPARE(m_logger.takeLines(), QStringList());
}

void tst_customvekappstyle::renameOfNoWidget()
{
    CustomVekAppStyle style;
    QObject object;
    QVERIFY(connect(&object, SIGNAL(objectNameChanged(QString)), &style,
                    SLOT(onNonShiftedButtonObjectNameChanged(QString))));
    object.setObjectName(QStringLiteral("ok"));
    QCOMPARE(m_logger.takeLines(), QStringList());
    const Button ok("ok");
    QCOMPARE(shift(style, &ok), shifted);

    // A widget that was never registered is told.
    QWidget widget;
    QVERIFY(connect(&widget, SIGNAL(objectNameChanged(QString)), &style,
                    SLOT(onNonShiftedButtonObjectNameChanged(QString))));
    widget.setObjectName(QStringLiteral("ok"));
    QVERIFY(loggedAssertions(1));
    QCOMPARE(shift(style, &ok), shifted);
}

void tst_customvekappstyle::destroyWhileRegistered()
{
    CustomVekAppStyle style;
    Button other("other");
    style.disableButtonShift(&other, true);
    for (int i = 0; i < 20; ++i) {
        auto button = std::make_unique<Button>("ok");
        style.disableButtonShift(button.get(), true);
        QCOMPARE(shift(style, button.get()), kept);
        button.reset();
        const Button next("ok");
        QCOMPARE(shift(style, &next), shifted);
        QCOMPARE(shift(style, &other), kept);
    }

    // With its parent, too.
    auto parent = std::make_unique<QWidget>();
    auto* child = new Button("ok");
    child->setParent(parent.get());
    style.disableButtonShift(child, true);
    parent.reset();
    const Button next("ok");
    QCOMPARE(shift(style, &next), shifted);
    QCOMPARE(m_logger.takeLines(), QStringList());
}

/// It takes the entry away, and leaves the connections.
void tst_customvekappstyle::destroySlot()
{
    CustomVekAppStyle style;
    Button button("ok");
    style.disableButtonShift(&button, true);
    const auto call = [&style](QObject* object) {
        return QMetaObject::invokeMethod(&style, "onNonShiftedButtonDestroy",
                                         Q_ARG(QObject*, object));
    };
    QVERIFY(call(nullptr));
    QObject unknown;
    QVERIFY(call(&unknown));
    QCOMPARE(shift(style, &button), kept);
    QVERIFY(call(&button));
    QCOMPARE(shift(style, &button), shifted);
    QCOMPARE(button.listeners(), listenedTo);
    QVERIFY(call(&button));
    QCOMPARE(m_logger.takeLines(), QStringList());

    // Another object of that name takes it away as well, which is told.
    style.disableButtonShift(&button, true);
    unknown.setObjectName(QStringLiteral("ok"));
    QVERIFY(call(&unknown));
    QVERIFY(loggedAssertions(1));
    QCOMPARE(shift(style, &button), shifted);
}

void tst_customvekappstyle::styleDiesFirst()
{
    auto style = std::make_unique<CustomVekAppStyle>();
    auto button = std::make_unique<Button>("ok");
    style->disableButtonShift(button.get(), true);
    style.reset();
    QCOMPARE(button->listeners(), notListenedTo);
    button->setObjectName(QStringLiteral("yes"));
    button.reset();
    QCOMPARE(m_logger.takeLines(), QStringList());
}

void tst_customvekappstyle::toolTipMaskWithoutOption()
{
    const StyleOnAnswers on;
    QStyleHintReturnMask mask;
    mask.region = QRegion(90, 90, 5, 5);
    QCOMPARE(on.style.styleHint(QStyle::SH_ToolTip_Mask, nullptr, nullptr, &mask), 4711);
    QCOMPARE(mask.region, QRegion(90, 90, 5, 5));
}

QTEST_MAIN(tst_customvekappstyle)

#include "tst_customvekappstyle.moc"
