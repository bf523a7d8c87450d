// The sum of getScreenDpi(), with a screen of any size in place of the platform's.

#include "CommonConstants.h"
#include "PlatformServices_p.h"
#include "SystemInformation.h"

#include <QTest>

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

class tst_ScreenResolution : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dotsPerInch_data();
    void dotsPerInch();
    void withoutAScreen();
};

void tst_ScreenResolution::dotsPerInch_data()
{
    QTest::addColumn<QSizeF>("points");
    QTest::addColumn<QSizeF>("millimetres");
    QTest::addColumn<int>("x");
    QTest::addColumn<int>("y");

    const auto addRow = [](const char* title, QSizeF points, QSizeF millimetres, int x, int y) {
        QTest::newRow(title) << points << millimetres << x << y;
    };
    addRow("each axis has its own", {1600, 1200}, {400, 200}, 101, 152);
    addRow("the fraction is cut off", {1920, 1080}, {509, 286}, 95, 95);
    addRow("an inch is a little less than 25.4 mm", {1000, 508}, {254, 127}, 99, 101);
    addRow("fractions of points and millimetres count", {100.5, 100}, {10, 9.5}, 255, 267);
    addRow("no width in millimetres", {1600, 1200}, {0, 200}, 0, 152);
    addRow("no height in millimetres", {1600, 1200}, {400, 0}, 101, 0);
    addRow("a size below nothing", {1600, 1200}, {-400, -200}, 0, 0);
    addRow("no points", {0, 0}, {400, 200}, 0, 0);
}

void tst_ScreenResolution::dotsPerInch()
{
    QFETCH(QSizeF, points);
    QFETCH(QSizeF, millimetres);
    QFETCH(int, x);
    QFETCH(int, y);
    Platform::s_screen = Platform::Screen{points, millimetres};

    int horizontal = -1;
    int vertical = -1;
    getScreenDpi(&horizontal, &vertical);
    QCOMPARE(horizontal, x);
    QCOMPARE(vertical, y);

    vertical = -1;
    getScreenDpi(nullptr, &vertical);
    QCOMPARE(vertical, y);

    horizontal = -1;
    getScreenDpi(&horizontal, nullptr);
    QCOMPARE(horizontal, x);
}

void tst_ScreenResolution::withoutAScreen()
{
    Platform::s_screen.reset();

    int x = -1;
    int y = -1;
    getScreenDpi(&x, &y);

    QCOMPARE(x, 0);
    QCOMPARE(y, 0);
}

QTEST_GUILESS_MAIN(tst_ScreenResolution)

#include "tst_ScreenResolution.moc"
