// Built with SharedUtils.cpp and SystemInformation.cpp, and a screen of any size in place of the
// platform's.

#include "CommonConstants.h"
#include "LanguageManager.h"
#include "PlatformServices_p.h"
#include "RecordingLogger.h"
#include "Settings.h"
#include "SharedUtils.h"
#include "TemporarySettings.h"

#include <QLocale>
#include <QRegularExpression>
#include <QSize>
#include <QTest>
#include <QTranslator>

#include <atomic>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <thread>
#include <vector>

namespace VEK_NAMESPACE {
namespace Platform {

static std::optional<Screen> s_screen;

std::optional<Screen> mainScreen()
{
    return s_screen;
}

QString bundlePath(const QString&)
{
    return {};
}

QString bundleResourcePath(const QString&)
{
    return {};
}

QString processName()
{
    return {};
}

qint64 currentProcess()
{
    return 0;
}

std::optional<qint64> findApplication(const QString&)
{
    return std::nullopt;
}

QString executablePath(qint64)
{
    return {};
}

QString propertyListText(const QString&, const QString&)
{
    return {};
}

} // namespace Platform
} // namespace VEK_NAMESPACE

using namespace VEK_NAMESPACE;

namespace {

/// 101 dots per inch across and 152 down.
const Platform::Screen unevenScreen = {QSizeF(1600, 1200), QSizeF(400, 200)};

/// In the persistent settings; an invalid value removes it.
void storeUnit(const QVariant& unit)
{
    CSettings settings(nullptr, true);
    if (unit.isValid())
        settings.setValue(g_ImageSizeUnits, unit);
    else
        settings.remove(g_ImageSizeUnits);
}

/// An overlay that is installed for its life.
class Overlay : public CTemporarySettings
{
public:
    Overlay()
        : CTemporarySettings(nullptr)
    {
        CSettings::setTemporarySettings(*this);
    }
};

/// Puts "<" and ">" around every text of the context QObject.
class Brackets : public QTranslator
{
public:
    Brackets() { QCoreApplication::installTranslator(this); }
    ~Brackets() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }

    QString translate(const char* context, const char* source, const char*, int) const override
    {
        return std::strcmp(context, "QObject") == 0
            ? QLatin1Char('<') + QString::fromUtf8(source) + QLatin1Char('>')
            : QString();
    }
};

bool changeLanguage(const char* abbreviation)
{
    CLanguageManager& manager = *CLanguageManager::instance();
    manager.loadLanguages();
    for (int row = 0; row < manager.model()->rowCount(); ++row) {
        if (manager.model()->item(row, 3)->text() == QLatin1String(abbreviation))
            return manager.changeLanguage(row)
                || manager.currentLanguageAbbrv() == QLatin1String(abbreviation);
    }
    return false;
}

bool sameBits(double first, double second)
{
    return std::memcmp(&first, &second, sizeof first) == 0;
}

QString asText(double value)
{
    return (std::signbit(value) ? QStringLiteral("-") : QString())
        + QString::number(std::abs(value), 'g', 17);
}

} // namespace

class tst_ValueFormatting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void roundWithPrecision_data();
    void roundWithPrecision();
    void roundingKeepsWhatIsNoNumber_data();
    void roundingKeepsWhatIsNoNumber();

    void fileSizeToString_data();
    void fileSizeToString();

    void sizeToString_data();
    void sizeToString();
    void screenWithoutASize_data();
    void screenWithoutASize();
    void unknownUnit_data();
    void unknownUnit();
    void storedUnit_data();
    void storedUnit();
    void changesShowAtTheNextCall();
    void overlayIsFollowed();

    void formatIsThatOfNoLocale();
    void wordsAreTranslated();
    void wordsOfTheLanguages_data();
    void wordsOfTheLanguages();
    void manyThreads();
};

void tst_ValueFormatting::init()
{
    Platform::s_screen = unevenScreen;
    storeUnit(QVariant());
}

void tst_ValueFormatting::cleanup()
{
    QVERIFY(changeLanguage("en"));
    QLocale::setDefault(QLocale::c());
}

void tst_ValueFormatting::roundWithPrecision_data()
{
    QTest::addColumn<double>("value");
    QTest::addColumn<int>("precision");
    QTest::addColumn<double>("rounded");

    const auto addRow = [](const char* title, double value, int precision, double rounded) {
        QTest::newRow(title) << value << precision << rounded;
    };
    addRow("down", 3.14159, 2, 3.14);
    addRow("up", 3.14159, 3, 3.142);
    addRow("up to a whole number", 0.999, 2, 1.0);
    addRow("a third", 0.3333333333333333, 5, 0.33333);
    addRow("two thirds below zero", -0.6666666666666666, 5, -0.66667);
    addRow("the whole part stays", 12345.678, 1, 12345.7);
    addRow("the whole part stays below zero", -12345.678, 1, -12345.7);
    addRow("a little above zero", 0.04, 1, 0.0);
    addRow("a little below zero gives zero without a sign", -0.04, 1, 0.0);
    addRow("more below zero", -0.06, 1, -0.1);
    addRow("a large value", 1234567890.123, 2, 1234567890.12);
    addRow("a value beyond 32 bits", 2147483648.55, 1, 2147483648.6);
    addRow("many places", 0.0000123456789, 10, 0.0000123457);

    addRow("the product decides and not the digits", 1.005, 2, 1.0);
    addRow("the product decides upwards", 2.675, 2, 2.68);
    addRow("the product decides below zero", -2.675, 2, -2.67);
    addRow("a tie goes up", 0.125, 2, 0.13);
    addRow("a tie goes up below zero", -0.125, 2, -0.12);
    addRow("a tie goes up to a whole number", 99.995, 2, 100.0);
    addRow("a tie goes up below a whole number", -99.995, 2, -99.99);
    addRow("a tie at an even place", 0.25, 1, 0.3);
    addRow("a tie at an even place below zero", -0.25, 1, -0.2);
    addRow("a tie at an odd place", 0.75, 1, 0.8);
    addRow("a tie at an odd place below zero", -0.75, 1, -0.7);
    addRow("a tie at zero", 0.05, 1, 0.1);
    addRow("a tie below zero gives zero without a sign", -0.005, 2, 0.0);

    addRow("whole: down", 1234.4, 0, 1234.0);
    addRow("whole: up", 1234.6, 0, 1235.0);
    addRow("whole: a tie", 1.5, 0, 2.0);
    addRow("whole: a tie below zero", -1.5, 0, -1.0);
    addRow("whole: a tie at an even number", 2.5, 0, 3.0);
    addRow("whole: a tie at an even number below zero", -2.5, 0, -2.0);
    addRow("whole: a half", 0.5, 0, 1.0);
    addRow("whole: a half below zero", -0.5, 0, 0.0);
    addRow("whole: below zero", -1.6, 0, -2.0);
    addRow("whole: noise isn't kept", 3.0000000000000004, 0, 3.0);
    addRow("whole: the last value below a half", 0.49999999999999994, 0, 1.0);
    addRow("whole: the largest number of 32 bits", 2147483646.5, 0, 2147483647.0);
    addRow("whole: beyond 32 bits", 2147483647.5, 0, 2147483648.0);
    addRow("whole: far beyond 32 bits", 5000000000.25, 0, 5000000000.0);
    addRow("whole: the smallest numbers of 32 bits", -2147483646.5, 0, -2147483646.0);
    addRow("whole: below 32 bits", -2147483649.5, 0, -2147483649.0);
    addRow("whole: far below 32 bits", -5000000000.75, 0, -5000000001.0);
    addRow("whole: 1e20", 1e20, 0, 1e20);
    addRow("whole: 1e300", 1e300, 0, 1e300);
    addRow("whole: -1e300", -1e300, 0, -1e300);
    addRow("a negative precision counts as 0", 1234.5678, -2, 1235.0);
    addRow("a negative precision of 1", -1234.5, -1, -1234.0);
    addRow("the lowest precision", 0.6, INT_MIN, 1.0);

    addRow("zero", 0.0, 3, 0.0);
    addRow("zero with a sign loses it", -0.0, 3, 0.0);
    addRow("zero without places", 0.0, 0, 0.0);
    addRow("zero with a sign, without places", -0.0, 0, 0.0);
    addRow("zero at any precision", -0.0, 400, 0.0);

    addRow("noise is kept where nothing is rounded", 0.30000000000000004, 1, 0.30000000000000004);
    addRow("noise is kept below zero", -0.30000000000000004, 1, -0.30000000000000004);
    addRow("noise of a large value is kept", 1000000.10000001, 1, 1000000.10000001);
    addRow("a value that has fewer places", 0.5, 10, 0.5);
    addRow("a whole number", 7.0, 3, 7.0);
    addRow("a rest of 1e-12 is none", 1e-13, 1, 1e-13);
    addRow("a rest of more than 1e-12 is one", 1.1e-13, 1, 0.0);
    addRow("a rest of more than 1e-12 below zero", -1.1e-13, 1, 0.0);
    addRow("a value that is nothing but rest", 1e-15, 2, 1e-15);
    addRow("a rest that is too little of the value", 1000000000000.56, 1, 1000000000000.56);
    addRow("a rest that is enough of the value", 1000000000.56, 1, 1000000000.6);
    addRow("the least value of all", 5e-324, 1, 5e-324);

    addRow("1e20", 1e20, 2, 1e20);
    addRow("1e300", 1e300, 2, 1e300);
    addRow("a product beyond all numbers", 1e300, 10, 1e300);
    addRow("a product beyond all numbers below zero", -1e300, 10, -1e300);
    addRow("17 places", 0.1, 17, 0.1);
    addRow("300 places", 0.1, 300, 0.1);
    addRow("308 places", 1.25, 308, 1.25);
    addRow("309 places", 1.25, 309, 1.25);
    addRow("400 places", 0.1, 400, 0.1);
    addRow("400 places below zero", -0.1, 400, -0.1);
    addRow("400 places of a little value", 1e-300, 400, 1e-300);
    addRow("the highest precision", 0.1, INT_MAX, 0.1);
}

void tst_ValueFormatting::roundWithPrecision()
{
    QFETCH(double, value);
    QFETCH(int, precision);
    QFETCH(double, rounded);

    const double result = ::roundWithPrecision(value, precision);

    QCOMPARE(asText(result), asText(rounded));
    QVERIFY(sameBits(result, rounded));
}

void tst_ValueFormatting::roundingKeepsWhatIsNoNumber_data()
{
    QTest::addColumn<int>("precision");

    for (const int precision : {INT_MIN, -1, 0, 1, 2, 308, 400, INT_MAX})
        QTest::newRow(qPrintable(QString::number(precision))) << precision;
}

void tst_ValueFormatting::roundingKeepsWhatIsNoNumber()
{
    QFETCH(int, precision);
    const double infinity = std::numeric_limits<double>::infinity();

    QVERIFY(sameBits(::roundWithPrecision(infinity, precision), infinity));
    QVERIFY(sameBits(::roundWithPrecision(-infinity, precision), -infinity));
    QVERIFY(std::isnan(::roundWithPrecision(std::numeric_limits<double>::quiet_NaN(), precision)));
}

void tst_ValueFormatting::fileSizeToString_data()
{
    QTest::addColumn<qlonglong>("bytes");
    QTest::addColumn<QString>("text");

    const auto addRow = [](const char* title, qlonglong bytes, const char* text) {
        QTest::newRow(title) << bytes << QString::fromLatin1(text);
    };
    addRow("nothing", 0, "0B");
    addRow("one byte", 1, "1B");
    addRow("below a kilobyte", 1023, "1023B");
    addRow("a kilobyte", 1024, "1024B");
    addRow("one byte more than a kilobyte", 1025, "1.0KB");
    addRow("one place", 1536, "1.5KB");
    addRow("rounded down", 2000, "2.0KB");
    addRow("rounded up", 5000, "4.9KB");
    addRow("many kilobytes", 500000, "488.3KB");
    addRow("below a megabyte", 1048575, "1024.0KB");
    addRow("a megabyte", 1048576, "1024.0KB");
    addRow("one byte more than a megabyte", 1048577, "1.0MB");
    addRow("a megabyte and a half", 1572864, "1.5MB");
    addRow("a picture", 25165824, "24.0MB");
    addRow("no step to gigabytes", 3221225472, "3072.0MB");
    addRow("a terabyte", 1099511627776, "1048576.0MB");
    addRow("the largest number", LLONG_MAX, "8796093022208.0MB");
    addRow("below zero", -5, "-5B");
    addRow("a kilobyte below zero", -1025, "-1025B");
    addRow("six digits below zero", -123456, "-123456B");
    addRow("more than six digits below zero", -1234567, "-1.23457e+06B");
    addRow("the least number", LLONG_MIN, "-9.22337e+18B");
}

void tst_ValueFormatting::fileSizeToString()
{
    QFETCH(qlonglong, bytes);
    QFETCH(QString, text);

    QCOMPARE(VEK_NAMESPACE::fileSizeToString(bytes), text);
}

void tst_ValueFormatting::sizeToString_data()
{
    QTest::addColumn<QSizeF>("millimetres"); ///< of a screen of 1600 by 1200 points
    QTest::addColumn<int>("unit");
    QTest::addColumn<QSize>("size");
    QTest::addColumn<QString>("text");

    const QSizeF uneven(400, 200); // 101 and 152 dots per inch
    const QSizeF upright(200, 400); // 203 and 76
    const auto addRow = [](const char* title, QSizeF millimetres, int unit, QSize size,
                           const char* text) {
        QTest::newRow(title) << millimetres << unit << size << QString::fromLatin1(text);
    };
    addRow("pixels", uneven, 0, {1024, 768}, "1024 x 768 px");
    addRow("inches", uneven, 1, {1024, 768}, "10.14 x 5.05 in");
    addRow("centimetres", uneven, 2, {1024, 768}, "25.8 x 12.8 cm");
    addRow("millimetres", uneven, 3, {1024, 768}, "258 x 128 mm");
    addRow("inches of another screen", upright, 1, {1024, 768}, "5.04 x 10.11 in");
    addRow("centimetres of another screen", upright, 2, {1024, 768}, "12.8 x 25.7 cm");
    addRow("millimetres of another screen", upright, 3, {1024, 768}, "128 x 257 mm");
    addRow("as many pixels as dots per inch", uneven, 1, {101, 152}, "1.00 x 1.00 in");
    addRow("an inch in centimetres", uneven, 2, {101, 152}, "2.5 x 2.5 cm");
    addRow("an inch in millimetres", uneven, 3, {101, 152}, "25 x 25 mm");
    addRow("one pixel", uneven, 0, {1, 1}, "1 x 1 px");
    addRow("one pixel in inches", uneven, 1, {1, 1}, "0.01 x 0.01 in");
    addRow("one pixel in centimetres", uneven, 2, {1, 1}, "0.0 x 0.0 cm");
    addRow("one pixel in millimetres", uneven, 3, {1, 1}, "0 x 0 mm");
    addRow("nothing", uneven, 0, {0, 0}, "0 x 0 px");
    addRow("nothing in inches", uneven, 1, {0, 0}, "0.00 x 0.00 in");
    addRow("no size", uneven, 0, {}, "-1 x -1 px");
    addRow("no size in inches", uneven, 1, {}, "-0.01 x -0.01 in");
    addRow("the largest size", uneven, 0, {INT_MAX, INT_MAX}, "2147483647 x 2147483647 px");
    addRow("the largest size in inches", uneven, 1, {INT_MAX, INT_MAX},
           "21262214.33 x 14128181.89 in");
    addRow("the largest size in millimetres", uneven, 3, {INT_MAX, INT_MAX},
           "540060244 x 358855820 mm");
    addRow("the least size", uneven, 0, {INT_MIN, INT_MIN}, "-2147483648 x -2147483648 px");
    addRow("width and height aren't mixed up", uneven, 0, {1, 2}, "1 x 2 px");
}

void tst_ValueFormatting::sizeToString()
{
    QFETCH(QSizeF, millimetres);
    QFETCH(int, unit);
    QFETCH(QSize, size);
    QFETCH(QString, text);
    Platform::s_screen = Platform::Screen{QSizeF(1600, 1200), millimetres};
    storeUnit(unit);
    RecordingLogger logger;

    QCOMPARE(VEK_NAMESPACE::sizeToString(size), text);

    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_ValueFormatting::screenWithoutASize_data()
{
    QTest::addColumn<bool>("isThere");
    QTest::addColumn<QSizeF>("points");
    QTest::addColumn<QSizeF>("millimetres");

    const auto addRow = [](const char* title, bool isThere, QSizeF points, QSizeF millimetres) {
        QTest::newRow(title) << isThere << points << millimetres;
    };
    addRow("no size", true, {1600, 1200}, {0, 0});
    addRow("no width", true, {1600, 1200}, {0, 200});
    addRow("no height", true, {1600, 1200}, {400, 0});
    addRow("a size below nothing", true, {1600, 1200}, {-400, -200});
    addRow("less than a dot per inch", true, {10, 10}, {400, 400});
    addRow("no points", true, {0, 0}, {400, 200});
    addRow("no screen", false, {}, {});
}

void tst_ValueFormatting::screenWithoutASize()
{
    QFETCH(bool, isThere);
    QFETCH(QSizeF, points);
    QFETCH(QSizeF, millimetres);
    Platform::s_screen.reset();
    if (isThere)
        Platform::s_screen = Platform::Screen{points, millimetres};
    RecordingLogger logger;

    for (const int unit : {0, 1, 2, 3}) {
        storeUnit(unit);
        QCOMPARE(VEK_NAMESPACE::sizeToString(QSize(1024, 768)), QStringLiteral("1024 x 768 px"));
    }

    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_ValueFormatting::unknownUnit_data()
{
    QTest::addColumn<QVariant>("unit");

    QTest::newRow("one more than there are") << QVariant(4);
    QTest::newRow("below all") << QVariant(-1);
    QTest::newRow("far beyond all") << QVariant(1000);
    QTest::newRow("the least number") << QVariant(INT_MIN);
    QTest::newRow("a number as a text") << QVariant("4");
}

void tst_ValueFormatting::unknownUnit()
{
    QFETCH(QVariant, unit);
    storeUnit(unit);
    RecordingLogger logger;
    for (const bool hasSize : {true, false}) {
        Platform::s_screen = unevenScreen;
        if (!hasSize)
            Platform::s_screen->millimetres = QSizeF(0, 0);

        QCOMPARE(VEK_NAMESPACE::sizeToString(QSize(1024, 768)), QStringLiteral("1024 x 768 "));

        const QStringList lines = logger.takeLines();
        QCOMPARE(lines.size(), 2);
        const QRegularExpression assertion(
            QStringLiteral("\\AE ASSERT in .*utilsDll/SharedUtils\\.cpp \\d+\\z"));
        for (const QString& line : lines)
            QVERIFY2(assertion.match(line).hasMatch(), qPrintable(line));
    }
}

void tst_ValueFormatting::storedUnit_data()
{
    QTest::addColumn<QVariant>("unit");
    QTest::addColumn<QString>("text");

    QTest::newRow("none") << QVariant() << "1024 x 768 px";
    QTest::newRow("a number as a text") << QVariant("2") << "25.8 x 12.8 cm";
    QTest::newRow("a text") << QVariant("inches") << "1024 x 768 px";
    QTest::newRow("an empty text") << QVariant("") << "1024 x 768 px";
    QTest::newRow("a list") << QVariant(QStringList({"1", "2"})) << "1024 x 768 px";
}

void tst_ValueFormatting::storedUnit()
{
    QFETCH(QVariant, unit);
    QFETCH(QString, text);
    storeUnit(unit);
    RecordingLogger logger;

    QCOMPARE(VEK_NAMESPACE::sizeToString(QSize(1024, 768)), text);

    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_ValueFormatting::changesShowAtTheNextCall()
{
    const QSize size(1024, 768);

    QCOMPARE(VEK_NAMESPACE::sizeToString(size), QStringLiteral("1024 x 768 px"));
    storeUnit(1);
    QCOMPARE(VEK_NAMESPACE::sizeToString(size), QStringLiteral("10.14 x 5.05 in"));
    storeUnit(3);
    QCOMPARE(VEK_NAMESPACE::sizeToString(size), QStringLiteral("258 x 128 mm"));
    Platform::s_screen->millimetres = QSizeF(200, 400);
    QCOMPARE(VEK_NAMESPACE::sizeToString(size), QStringLiteral("128 x 257 mm"));
    storeUnit(QVariant());
    QCOMPARE(VEK_NAMESPACE::sizeToString(size), QStringLiteral("1024 x 768 px"));
}

void tst_ValueFormatting::overlayIsFollowed()
{
    const QSize size(1024, 768);
    storeUnit(1);
    {
        Overlay overlay;
        QCOMPARE(VEK_NAMESPACE::sizeToString(size), QStringLiteral("1024 x 768 px"));
        overlay.setValue(g_ImageSizeUnits, 2);
        QCOMPARE(VEK_NAMESPACE::sizeToString(size), QStringLiteral("25.8 x 12.8 cm"));
        storeUnit(3);
        QCOMPARE(VEK_NAMESPACE::sizeToString(size), QStringLiteral("25.8 x 12.8 cm"));
    }
    QCOMPARE(VEK_NAMESPACE::sizeToString(size), QStringLiteral("258 x 128 mm"));
}

void tst_ValueFormatting::formatIsThatOfNoLocale()
{
    QLocale::setDefault(QLocale(QStringLiteral("de_DE")));

    storeUnit(1);
    QCOMPARE(VEK_NAMESPACE::sizeToString(QSize(123456, 768)), QStringLiteral("1222.34 x 5.05 in"));
    QCOMPARE(VEK_NAMESPACE::fileSizeToString(3221225472), QStringLiteral("3072.0MB"));
}

void tst_ValueFormatting::wordsAreTranslated()
{
    const Brackets brackets;
    QStringList texts;
    for (const int unit : {0, 1, 2, 3, 4}) {
        storeUnit(unit);
        texts << VEK_NAMESPACE::sizeToString(QSize(1024, 768));
    }
    for (const long long bytes : {1024LL, 1025LL, 1048577LL})
        texts << VEK_NAMESPACE::fileSizeToString(bytes);

    QCOMPARE(texts,
             QStringList({"1024 x 768 <px>", "10.14 x 5.05 <in>", "25.8 x 12.8 <cm>",
                          "258 x 128 <mm>", "1024 x 768 ", "1024<B>", "1.0<KB>", "1.0<MB>"}));
}

void tst_ValueFormatting::wordsOfTheLanguages_data()
{
    QTest::addColumn<QByteArray>("language");
    QTest::addColumn<QStringList>("texts");

    const auto addRow = [](const char* language, const QStringList& texts) {
        QTest::newRow(language) << QByteArray(language) << texts;
    };
    addRow("en",
           {"1024 x 768 px", "10.14 x 5.05 in", "25.8 x 12.8 cm", "258 x 128 mm", "0B", "1.5KB",
            "1.5MB"});
    addRow("de",
           {"1024 x 768 px", "10.14 x 5.05 Zoll", "25.8 x 12.8 cm", "258 x 128 mm", "0B", "1.5KB",
            "1.5MB"});
    addRow("fr",
           {"1024 x 768 px", "10.14 x 5.05 po", "25.8 x 12.8 cm", "258 x 128 mm", "0o", "1.5Ko",
            "1.5Mo"});
    addRow("ja",
           {"1024 x 768 px", QString::fromUtf8("10.14 x 5.05 インチ"), "25.8 x 12.8 cm",
            "258 x 128 mm", "0B", "1.5KB", "1.5MB"});
}

void tst_ValueFormatting::wordsOfTheLanguages()
{
    QFETCH(QByteArray, language);
    QFETCH(QStringList, texts);
    QVERIFY(changeLanguage(language.constData()));

    QStringList found;
    for (const int unit : {0, 1, 2, 3}) {
        storeUnit(unit);
        found << VEK_NAMESPACE::sizeToString(QSize(1024, 768));
    }
    for (const long long bytes : {0LL, 1536LL, 1572864LL})
        found << VEK_NAMESPACE::fileSizeToString(bytes);

    QCOMPARE(found, texts);
}

void tst_ValueFormatting::manyThreads()
{
    constexpr int threadCount = 8;
    constexpr int rounds = 500;
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&good] {
            for (int j = 0; j < rounds; ++j) {
                good += VEK_NAMESPACE::fileSizeToString(1572864) == QLatin1String("1.5MB")
                    && sameBits(::roundWithPrecision(3.14159, 3), 3.142);
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    QCOMPARE(good.load(), threadCount * rounds);
}

QTEST_GUILESS_MAIN(tst_ValueFormatting)

#include "tst_ValueFormatting.moc"
