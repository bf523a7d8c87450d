#include "CommonConstantsElsewhere.h"

#include <QFile>
#include <QRegularExpression>
#include <QtTest>

namespace {

struct Constant
{
    const char* name;
    const char* text;
};

const Constant table[] = {
    {"g_appTitle", "Vek Marlowick 3"},
    {"g_standaloneMode", "Standalone"},
    {"g_lrMode", "LR"},
    {"g_photoshopMode", "PS"},
    {"g_apertureMode", "AP"},
    {"g_appFlag", "appCrashFlag"},
    {"g_sceneBackgroundColor", "sceneBackgroundColor"},
    {"g_showSampleImageAtStartup", "showSampleImageAtStartup"},
    {"g_standaloneCrashFlag", "appStandaloneCrashFlag"},
    {"g_pSCrashFlag", "appPSCrashFlag"},
    {"g_lRCrashFlag", "appLRCrashFlag"},
    {"g_aPCrashFlag", "appAPCrashFlag"},
    {"g_appStarted", "started"},
    {"g_appCrashed", "crashed"},
    {"g_appFinished", "finished"},
    {"g_printCrashFlag", "printCrashFlag"},
    {"g_printCrashWatcherStarted", "printCrashWatcherStarted"},
    {"g_printCrashWatcherFinished", "printCrashWatcherFinished"},
    {"g_gridOverlaySize", "gridOverlay.size"},
    {"g_showImageSize", "showImageSize"},
    {"g_ImageSizeUnits", "imageSizeUnits"},
    {"g_settingsFocusNumber", "settingsFocusNumber"},
};

} // namespace

class tst_CommonConstants : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thereAreTwentyTwo();
    void eachHasItsText_data();
    void eachHasItsText();
    void twoSourceFilesHoldEqualCopiesOfTheirOwn_data() { eachHasItsText_data(); }
    void twoSourceFilesHoldEqualCopiesOfTheirOwn();
    void loadingThemAllocatesNothing_data() { eachHasItsText_data(); }
    void loadingThemAllocatesNothing();
    void theHeaderDefinesThemInThisOrderAndNoOthers();
};

void tst_CommonConstants::thereAreTwentyTwo()
{
    QCOMPARE(commonConstantsHere().size(), 22);
    QCOMPARE(commonConstantsElsewhere().size(), 22);
}

void tst_CommonConstants::eachHasItsText_data()
{
    QTest::addColumn<int>("place");
    QTest::addColumn<QString>("text");

    int place = 0;
    for (const Constant& constant : table)
        QTest::newRow(constant.name) << place++ << QString::fromLatin1(constant.text);
}

void tst_CommonConstants::eachHasItsText()
{
    QFETCH(int, place);
    QFETCH(QString, text);

    QCOMPARE(*commonConstantsHere().at(place), text);
}

void tst_CommonConstants::twoSourceFilesHoldEqualCopiesOfTheirOwn()
{
    QFETCH(int, place);

    const QString* here = commonConstantsHere().at(place);
    const QString* elsewhere = commonConstantsElsewhere().at(place);
    QVERIFY(here != elsewhere);
    QCOMPARE(*elsewhere, *here);
}

void tst_CommonConstants::loadingThemAllocatesNothing()
{
    QFETCH(int, place);

    QString sharing = *commonConstantsHere().at(place);
    QVERIFY(sharing.data_ptr()->ref.isStatic());
}

void tst_CommonConstants::theHeaderDefinesThemInThisOrderAndNoOthers()
{
    QFile header(QFINDTESTDATA("../../PluginShell/modules/utilsDll/CommonConstants.h"));
    QVERIFY(header.open(QIODevice::ReadOnly));
    const QString code = QString::fromUtf8(header.readAll());

    QStringList defined;
    auto matches = QRegularExpression(QStringLiteral("^const QString (\\w+) ="),
                                      QRegularExpression::MultilineOption)
                       .globalMatch(code);
    while (matches.hasNext())
        defined << matches.next().captured(1);

    QStringList expected;
    for (const Constant& constant : table)
        expected << QString::fromLatin1(constant.name);
    QCOMPARE(defined, expected);
}

QTEST_GUILESS_MAIN(tst_CommonConstants)
#include "tst_CommonConstants.moc"
