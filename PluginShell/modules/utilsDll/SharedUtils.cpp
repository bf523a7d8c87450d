#include "SharedUtils.h"

#include "Assertions.h"
#include "CommonConstants.h"
#include "LanguageManager.h"
#include "Settings.h"
#include "SystemInformation.h"

#include <QApplication>
#include <QFile>
#include <QFontDatabase>
#include <QIcon>
#include <QSize>

#include <cmath>
#include <limits>

namespace VEK_NAMESPACE {

namespace {

enum ImageSizeUnit
{
    Pixels,
    Inches,
    Centimetres,
    Millimetres
};

/// How many of \a unit \a pixels are.
double convert(int pixels, int unit, int dotsPerInch)
{
    switch (unit) {
    case Inches:
        return double(pixels) / dotsPerInch;
    case Centimetres:
        return pixels * 2.54 / dotsPerInch;
    case Millimetres:
        return pixels * 25.4 / dotsPerInch;
    default:
        return pixels;
    }
}

int decimals(int unit)
{
    switch (unit) {
    case Inches:
        return 2;
    case Centimetres:
        return 1;
    default:
        return 0;
    }
}

QString unitWord(int unit)
{
    switch (unit) {
    case Pixels:
        return QObject::tr("px");
    case Inches:
        return QObject::tr("in");
    case Centimetres:
        return QObject::tr("cm");
    case Millimetres:
        return QObject::tr("mm");
    default:
        return {};
    }
}

bool isImageSizeUnit(int unit)
{
    return unit >= Pixels && unit <= Millimetres;
}

/// qRound() for any number: a tie goes up.
double rounded(double value)
{
    const bool fitsInt = std::abs(value) < double(std::numeric_limits<int>::max());
    return fitsInt ? qRound(value) : std::floor(value + 0.5);
}

} // namespace

QStringList setAppStyleSheet(QStringList const& files, QApplication* application)
{
    if (!application || files.isEmpty()) {
        ASSERT(false);
        return {};
    }

    QString sheet;
    QStringList loaded;
    for (const QString& name : files) {
        QFile file(name);
        if (name.isEmpty() || !file.open(QIODevice::ReadOnly))
            continue;
        sheet += QString::fromUtf8(file.readAll().constData()); // up to a zero byte
        loaded.append(name);
    }
    application->setStyleSheet(sheet);
    return loaded;
}

void setPredefinedAppStyleSheet(QString const& mainSheet, QApplication* application)
{
    // One platform's sheet is that of all. The last one is there for languages that need it.
    setAppStyleSheet({mainSheet.isEmpty() ? QStringLiteral(":/qss/custom.qss") : mainSheet,
                      QStringLiteral(":/qss/slider.qss"), QStringLiteral(":/qss/settings.qss"),
                      QStringLiteral(":/qss/message_box.qss"), QStringLiteral(":/qss/mac.qss"),
                      QStringLiteral(":/qss/extra-mac-%1.qss")
                          .arg(CLanguageManager::instance()->currentLanguageAbbrv())},
                     application);
}

bool loadAppLogoIcon()
{
    QIcon logo;
    for (const int size : {16, 32, 48, 96, 128, 256, 512, 1024})
        logo.addFile(QStringLiteral(":/icons/app_icon/logo_%1.png").arg(size));
    if (logo.availableSizes().isEmpty())
        return false;
    QApplication::setWindowIcon(logo);
    return true;
}

void loadFonts()
{
    for (const char* name :
         {"MavenProLight-300.otf", "MavenPro-Medium.ttf", "OpenSans-Light.ttf", "Roboto-Bold.ttf",
          "Roboto-Light.ttf", "Roboto-Regular.ttf", "Roboto-Medium.ttf"})
        QFontDatabase::addApplicationFont(QStringLiteral(":/fonts/") + QLatin1String(name));
}

QString sizeToString(QSize const& size)
{
    int unit = CSettings(nullptr, false).value(g_ImageSizeUnits, 0).toInt();
    int dpiX = 0;
    int dpiY = 0;
    if (isImageSizeUnit(unit)) {
        getScreenDpi(&dpiX, &dpiY);
        if (dpiX == 0 || dpiY == 0)
            unit = Pixels; // nobody knows how large a pixel is
    }
    ASSERT(isImageSizeUnit(unit));

    const QString text =
        QStringLiteral("%1 x %2 ")
            .arg(QString::number(convert(size.width(), unit, dpiX), 'f', decimals(unit)),
                 QString::number(convert(size.height(), unit, dpiY), 'f', decimals(unit)));
    ASSERT(isImageSizeUnit(unit)); // once for the numbers, once for the word
    return text + unitWord(unit);
}

QString fileSizeToString(long long bytes)
{
    constexpr long long kilobyte = 1024;
    const auto value = double(bytes);
    if (bytes <= kilobyte)
        return QString::number(value, 'g', 6) + QObject::tr("B");
    if (bytes <= kilobyte * kilobyte)
        return QString::number(value / kilobyte, 'f', 1) + QObject::tr("KB");
    return QString::number(value / kilobyte / kilobyte, 'f', 1) + QObject::tr("MB");
}

} // namespace VEK_NAMESPACE

double roundWithPrecision(double value, int precision)
{
    if (precision <= 0 || value == 0)
        return VEK_NAMESPACE::rounded(value);

    const double scale = std::pow(10.0, precision);
    double whole = 0;
    const double fraction = std::modf(scale * value, &whole);
    // A value that has no more places keeps its bits, and so does one that isn't a number.
    if (!(std::abs(fraction) > 1e-12))
        return value;
    const double result = (whole + qRound(fraction)) / scale;
    return qFuzzyCompare(value, result) ? value : result;
}
