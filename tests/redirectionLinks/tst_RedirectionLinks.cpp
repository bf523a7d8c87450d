#include "RedirectionLinks.h"

#include "LanguageManager.h"
#include "RecordingLogger.h"

#include <QLocale>
#include <QRegularExpression>
#include <QTest>

#include <atomic>
#include <limits>
#include <thread>
#include <vector>

using VEK_NAMESPACE::CLanguageManager;

namespace {

/// The default locale while it lives.
class DefaultLocale
{
public:
    explicit DefaultLocale(const QLocale& locale) { QLocale::setDefault(locale); }
    ~DefaultLocale() { QLocale::setDefault(QLocale::c()); }

private:
    Q_DISABLE_COPY(DefaultLocale)
};

CRedirectionLinks::vekLinkType linkType(int value)
{
    return static_cast<CRedirectionLinks::vekLinkType>(value);
}

} // namespace

class tst_RedirectionLinks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void valuesOfTheTypes();
    void everyType_data();
    void everyType();
    void localeDecides_data();
    void localeDecides();
    void languageManagerSetsTheLocale();
    void unknownType_data();
    void unknownType();
    void unknownTypeWithoutALogger();
    void manyThreads();
};

void tst_RedirectionLinks::valuesOfTheTypes()
{
    QCOMPARE(int(CRedirectionLinks::ltHome), 0);
    QCOMPARE(int(CRedirectionLinks::ltImprovementProgram), 1);
    QCOMPARE(int(CRedirectionLinks::ltSupport), 2);
    QCOMPARE(int(CRedirectionLinks::ltAcademy), 3);
    QCOMPARE(int(CRedirectionLinks::ltShop), 4);
    QCOMPARE(int(CRedirectionLinks::ltPatents), 5);
    QCOMPARE(int(CRedirectionLinks::ltProductHelp), 6);
    QCOMPARE(int(CRedirectionLinks::ltModules), 7);
    QCOMPARE(int(CRedirectionLinks::ltVersionHelp), 8);
}

void tst_RedirectionLinks::everyType_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<QString>("international");
    QTest::addColumn<QString>("french");

    const auto addRow = [](const char* title, int type, const char* international,
                           const char* french) {
        QTest::newRow(title) << type << QString::fromLatin1(international)
                             << QString::fromLatin1(french);
    };
    addRow("home is never localized", CRedirectionLinks::ltHome,
           "http://www.vek.example/intl/redirect/kr/vek_home",
           "http://www.vek.example/intl/redirect/kr/vek_home");
    addRow("improvement program", CRedirectionLinks::ltImprovementProgram,
           "http://www.vek.example/intl/redirect/kr/improvement_program",
           "http://www.vek.example/fr/redirect/kr/improvement_program");
    addRow("support", CRedirectionLinks::ltSupport,
           "http://www.vek.example/intl/redirect/kr3/support",
           "http://www.vek.example/fr/redirect/kr3/support");
    addRow("academy", CRedirectionLinks::ltAcademy,
           "http://www.vek.example/intl/redirect/kr/academy",
           "http://www.vek.example/fr/redirect/kr/academy");
    addRow("shop", CRedirectionLinks::ltShop, "http://www.vek.example/intl/redirect/kr/shop",
           "http://www.vek.example/fr/redirect/kr/shop");
    addRow("patents", CRedirectionLinks::ltPatents,
           "http://www.vek.example/intl/redirect/kr/patents",
           "http://www.vek.example/fr/redirect/kr/patents");
    addRow("help of the product", CRedirectionLinks::ltProductHelp,
           "http://www.vek.example/intl/redirect/kr/help",
           "http://www.vek.example/fr/redirect/kr/help");
    addRow("modules", CRedirectionLinks::ltModules,
           "http://www.vek.example/intl/redirect/kr/modules",
           "http://www.vek.example/fr/redirect/kr/modules");
    addRow("help of the version", CRedirectionLinks::ltVersionHelp,
           "http://www.vek.example/intl/redirect/kr3/help",
           "http://www.vek.example/fr/redirect/kr3/help");
}

void tst_RedirectionLinks::everyType()
{
    QFETCH(int, type);
    QFETCH(QString, international);
    QFETCH(QString, french);
    RecordingLogger logger;
    {
        const DefaultLocale locale(QLocale(QStringLiteral("fr_FR")));
        QCOMPARE(CRedirectionLinks::get(linkType(type), false), international);
        QCOMPARE(CRedirectionLinks::get(linkType(type), true), french);
    }
    {
        const DefaultLocale locale(QLocale(QStringLiteral("en_US")));
        QCOMPARE(CRedirectionLinks::get(linkType(type), false), international);
        QCOMPARE(CRedirectionLinks::get(linkType(type), true), international);
    }
    QCOMPARE(logger.takeLines(), QStringList());
}

void tst_RedirectionLinks::localeDecides_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("address"); ///< of the shop

    const auto addRow = [](const char* title, const char* locale, const char* address) {
        QTest::newRow(title) << QString::fromLatin1(locale) << QString::fromLatin1(address);
    };
    addRow("French in France", "fr_FR", "http://www.vek.example/fr/redirect/kr/shop");
    addRow("French in Canada", "fr_CA", "http://www.vek.example/ca/redirect/kr/shop");
    addRow("French in Switzerland", "fr_CH", "http://www.vek.example/ch/redirect/kr/shop");
    addRow("German in Germany", "de_DE", "http://www.vek.example/de/redirect/kr/shop");
    addRow("German in Austria", "de_AT", "http://www.vek.example/at/redirect/kr/shop");
    addRow("Japanese in Japan", "ja_JP", "http://www.vek.example/jp/redirect/kr/shop");
    addRow("Portuguese in Brazil", "pt_BR", "http://www.vek.example/br/redirect/kr/shop");
    addRow("Chinese in Taiwan", "zh_TW", "http://www.vek.example/tw/redirect/kr/shop");
    addRow("Spanish in Latin America", "es_419", "http://www.vek.example/419/redirect/kr/shop");
    addRow("a language in its first country", "it", "http://www.vek.example/it/redirect/kr/shop");
    addRow("a script beside the country", "sr_Latn_RS",
           "http://www.vek.example/rs/redirect/kr/shop");
    addRow("no country, and so no underscore", "C", "http://www.vek.example/c/redirect/kr/shop");
    addRow("English in America", "en_US", "http://www.vek.example/intl/redirect/kr/shop");
    addRow("English in Britain", "en_GB", "http://www.vek.example/intl/redirect/kr/shop");
    addRow("English in Canada", "en_CA", "http://www.vek.example/intl/redirect/kr/shop");
}

void tst_RedirectionLinks::localeDecides()
{
    QFETCH(QString, locale);
    QFETCH(QString, address);
    const DefaultLocale defaultLocale{QLocale(locale)};

    QCOMPARE(CRedirectionLinks::get(CRedirectionLinks::ltShop, true), address);

    QCOMPARE(CRedirectionLinks::get(CRedirectionLinks::ltShop, false),
             QStringLiteral("http://www.vek.example/intl/redirect/kr/shop"));
    QCOMPARE(CRedirectionLinks::get(CRedirectionLinks::ltHome, true),
             QStringLiteral("http://www.vek.example/intl/redirect/kr/vek_home"));
    QCOMPARE(CRedirectionLinks::get(CRedirectionLinks::ltVersionHelp, true),
             address.replace(QStringLiteral("kr/shop"), QStringLiteral("kr3/help")));
}

void tst_RedirectionLinks::languageManagerSetsTheLocale()
{
    const DefaultLocale defaultLocale{QLocale(QLocale::English)};
    CLanguageManager& manager = *CLanguageManager::instance();
    manager.loadLanguages();
    QStringList addresses;
    for (const char* language : {"ja", "de", "en", "fr"}) {
        for (int row = 0; row < manager.model()->rowCount(); ++row) {
            if (manager.model()->item(row, 3)->text() == QLatin1String(language))
                manager.changeLanguage(row);
        }
        addresses << CRedirectionLinks::get(CRedirectionLinks::ltSupport, true);
    }

    QCOMPARE(addresses,
             QStringList({"http://www.vek.example/jp/redirect/kr3/support",
                          "http://www.vek.example/de/redirect/kr3/support",
                          "http://www.vek.example/intl/redirect/kr3/support",
                          "http://www.vek.example/fr/redirect/kr3/support"}));
}

void tst_RedirectionLinks::unknownType_data()
{
    QTest::addColumn<int>("type");

    QTest::newRow("one more than there are") << 9;
    QTest::newRow("below all") << -1;
    QTest::newRow("far beyond all") << 1000;
    QTest::newRow("the lowest number") << std::numeric_limits<int>::min();
}

void tst_RedirectionLinks::unknownType()
{
    QFETCH(int, type);
    const DefaultLocale locale(QLocale(QStringLiteral("fr_FR")));
    const QRegularExpression assertion(
        QStringLiteral("\\AE ASSERT in .*redirectionLinks/RedirectionLinks\\.cpp \\d+\\z"));
    RecordingLogger logger;

    for (const bool localized : {false, true}) {
        QCOMPARE(CRedirectionLinks::get(linkType(type), localized),
                 localized ? QStringLiteral("http://www.vek.example/fr/redirect/kr/")
                           : QStringLiteral("http://www.vek.example/intl/redirect/kr/"));
        const QStringList lines = logger.takeLines();
        QCOMPARE(lines.size(), 1);
        QVERIFY2(assertion.match(lines.first()).hasMatch(), qPrintable(lines.first()));
    }
}

void tst_RedirectionLinks::unknownTypeWithoutALogger()
{
    QCOMPARE(CRedirectionLinks::get(linkType(9), false),
             QStringLiteral("http://www.vek.example/intl/redirect/kr/"));
}

void tst_RedirectionLinks::manyThreads()
{
    const DefaultLocale locale(QLocale(QStringLiteral("de_DE")));
    RecordingLogger logger;
    constexpr int threadCount = 8;
    constexpr int rounds = 200;
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) {
        threads.emplace_back([&good] {
            for (int j = 0; j < rounds; ++j) {
                good += CRedirectionLinks::get(CRedirectionLinks::ltSupport, true)
                        == QLatin1String("http://www.vek.example/de/redirect/kr3/support")
                    && CRedirectionLinks::get(CRedirectionLinks::ltModules, false)
                        == QLatin1String("http://www.vek.example/intl/redirect/kr/modules")
                    && CRedirectionLinks::get(linkType(9), true)
                        == QLatin1String("http://www.vek.example/de/redirect/kr/");
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    QCOMPARE(good.load(), threadCount * rounds);
    QCOMPARE(logger.takeLines().size(), threadCount * rounds);
}

QTEST_GUILESS_MAIN(tst_RedirectionLinks)

#include "tst_RedirectionLinks.moc"
