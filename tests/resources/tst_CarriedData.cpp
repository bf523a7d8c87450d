#include "UtilsDllGlobal.h"

#include "Files.h"

#include <QCryptographicHash>
#include <QMap>
#include <QSet>
#include <QXmlStreamReader>
#include <QtTest>

#include <sqlite3.h>

namespace {

/// The lines of the list of countries without their ends.
QStringList countryLines()
{
    QStringList lines =
        QString::fromUtf8(readFile(":/translations/countries.en.txt")).split("\r\n");
    lines.removeLast();
    return lines;
}

/// A name as a person looks it up: without accents and capitals, word by word.
QString spoken(const QString& name)
{
    QString letters;
    const QString decomposed = name.normalized(QString::NormalizationForm_D);
    for (const QChar& character : decomposed) {
        if (character.isLetter())
            letters += character.toLower();
        else if (character == ' ' || character == '-')
            letters += ' ';
    }
    return letters;
}

/// The catalogue, opened in memory.
class Catalogue
{
public:
    Catalogue()
        : m_file(readFile(":/caf/CAFList1010.db"))
    {
        sqlite3_open_v2(":memory:", &m_database, SQLITE_OPEN_READWRITE, nullptr);
        sqlite3_deserialize(m_database, "main", reinterpret_cast<unsigned char*>(m_file.data()),
                            m_file.size(), m_file.size(), SQLITE_DESERIALIZE_READONLY);
    }
    ~Catalogue() { sqlite3_close(m_database); }
    Q_DISABLE_COPY(Catalogue)

    /// The rows that a query gives, or its error; the values of a row are joined with "|".
    QStringList rows(const QString& query) const
    {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(m_database, query.toUtf8().constData(), -1, &statement, nullptr)
            != SQLITE_OK)
            return {QString::fromUtf8(sqlite3_errmsg(m_database))};
        QStringList rows;
        int state = SQLITE_ROW;
        while ((state = sqlite3_step(statement)) == SQLITE_ROW) {
            QStringList values;
            for (int column = 0; column < sqlite3_column_count(statement); ++column)
                values += QString::fromUtf8(
                    reinterpret_cast<const char*>(sqlite3_column_text(statement, column)));
            rows += values.join('|');
        }
        if (state != SQLITE_DONE)
            rows += QString::fromUtf8(sqlite3_errmsg(m_database));
        sqlite3_finalize(statement);
        return rows;
    }

private:
    QByteArray m_file;
    sqlite3* m_database = nullptr;
};

/// One entry of the table of activities.
struct Action
{
    QStringList activities;
    QStringList currentConditions;
    QList<QPair<QString, QString>> activeConditions;
    QStringList currentChanges;
    QList<QPair<QString, QString>> activeChanges;
    int applies = 0;
};

struct Module
{
    QString name;
    QList<Action> actions;
};

/// Reads the table and takes nothing that doesn't belong there.
class ActionTable
{
public:
    ActionTable()
        : m_xml(readFile(":/other/CorrectionsStateMachine.xml"))
    {
        if (m_xml.readNextStartElement() && expect("modules"))
            readModules();
        while (!m_xml.atEnd())
            m_xml.readNext();
    }

    QString error() const { return m_xml.hasError() ? m_xml.errorString() : QString(); }
    const QList<Module>& modules() const { return m_modules; }

private:
    bool expect(const char* name)
    {
        if (m_xml.name() == QLatin1String(name))
            return true;
        m_xml.raiseError(QStringLiteral("%1 where %2 belongs").arg(m_xml.name().toString(), name));
        return false;
    }

    void readModules()
    {
        while (m_xml.readNextStartElement() && expect("module")) {
            Module module;
            module.name = m_xml.attributes().value("name").toString();
            if (!m_xml.readNextStartElement() || !expect("actions"))
                return;
            while (m_xml.readNextStartElement() && expect("action"))
                module.actions += readAction();
            m_modules += module;
            if (m_xml.readNextStartElement())
                m_xml.raiseError("a module has one list of actions");
        }
    }

    Action readAction()
    {
        Action action;
        int applyConditions = 0;
        if (m_xml.readNextStartElement() && expect("userActivities")) {
            while (m_xml.readNextStartElement() && expect("userActivity"))
                action.activities += m_xml.readElementText();
        }
        if (m_xml.readNextStartElement() && expect("conditions"))
            readState(&action.currentConditions, &action.activeConditions, &applyConditions);
        if (m_xml.readNextStartElement() && expect("changes"))
            readState(&action.currentChanges, &action.activeChanges, &action.applies);
        if (m_xml.readNextStartElement() || applyConditions > 0)
            m_xml.raiseError("an action has activities, conditions and changes");
        return action;
    }

    void readState(QStringList* current, QList<QPair<QString, QString>>* active, int* applies)
    {
        while (m_xml.readNextStartElement()) {
            const QString name = m_xml.attributes().value("name").toString();
            if (m_xml.name() == QLatin1String("currentCorrection")) {
                current->append(m_xml.readElementText());
            } else if (m_xml.name() == QLatin1String("moduleActivity")) {
                active->append(qMakePair(name, m_xml.readElementText()));
            } else if (m_xml.name() == QLatin1String("moduleApply")) {
                if (!m_xml.readElementText().isEmpty())
                    m_xml.raiseError("moduleApply is empty");
                ++*applies;
            } else {
                m_xml.raiseError(m_xml.name().toString() + " in a state");
            }
        }
    }

    QXmlStreamReader m_xml;
    QList<Module> m_modules;
};

/// The corrections as the table drives them.
struct Corrections
{
    QString current = "None";
    QSet<QString> active;
    QStringList applied;

    /// The place of the action that counts, or -1.
    int answer(const Module& module, const QString& activity) const
    {
        for (int place = 0; place < module.actions.size(); ++place) {
            const Action& action = module.actions.at(place);
            if (action.activities.contains(activity) && holds(action))
                return place;
        }
        return -1;
    }

    void happens(const ActionTable& table, const QString& module, const QString& activity)
    {
        for (const Module& candidate : table.modules()) {
            if (!module.isEmpty() && candidate.name != module)
                continue;
            const int place = answer(candidate, activity);
            if (place >= 0)
                change(candidate.actions.at(place));
        }
    }

    QString text() const
    {
        QStringList names = active.values();
        names.sort();
        return QStringLiteral("%1 open, %2 active, %3 applied")
            .arg(current, names.isEmpty() ? QStringLiteral("None") : names.join('+'),
                 applied.isEmpty() ? QStringLiteral("None") : applied.join('+'));
    }

private:
    bool holds(const Action& action) const
    {
        for (const QString& correction : action.currentConditions) {
            if (correction != current)
                return false;
        }
        for (const QPair<QString, QString>& flag : action.activeConditions) {
            if (active.contains(flag.first) != (flag.second == QLatin1String("true")))
                return false;
        }
        return true;
    }

    void change(const Action& action)
    {
        if (action.applies > 0 && current != QLatin1String("None"))
            applied += current;
        for (const QPair<QString, QString>& flag : action.activeChanges) {
            if (flag.second == QLatin1String("true"))
                active.insert(flag.first);
            else
                active.remove(flag.first);
        }
        for (const QString& correction : action.currentChanges)
            current = correction;
    }
};

const QStringList& everyActivity()
{
    static const QStringList names = {"resetAll",
                                      "resetAndCloseAllTools",
                                      "ModuleActivate",
                                      "ModuleDeactivate",
                                      "AdditionalControlTouched",
                                      "SpecificCorrectionActivated",
                                      "CorrectionApplyed",
                                      "ModuleReset",
                                      "CorrectionCancel",
                                      "CorrectionReset"};
    return names;
}

const QStringList& everyCorrection()
{
    static const QStringList names = {"Anamorphosis", "Distortion", "TiltShift",
                                      "Crop",         "Horizon",    "Keystoning"};
    return names;
}

} // namespace

class tst_CarriedData : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void theListOfCountriesHasWindowsLineEnds();
    void theFavouritesComeFirst();
    void theCountriesAreSortedAsAPersonWould();
    void countriesFollowEachOther_data();
    void countriesFollowEachOther();
    void placesWithoutInhabitantsAreLeftOut_data();
    void placesWithoutInhabitantsAreLeftOut();
    void eachCountryIsThereOnce();

    void theCatalogueIsSound();
    void theCatalogueHasTheTables();
    void aTableHasItsColumns_data();
    void aTableHasItsColumns();
    void theIndicesAreThere();
    void eachIndexHasStatistics();
    void aTableHasItsRows_data();
    void aTableHasItsRows();
    void theCatalogueTellsItsVersion();
    void noRowBreaksTheRule_data();
    void noRowBreaksTheRule();
    void aPairIsListed_data();
    void aPairIsListed();
    void aPairThatDoesNotFitIsNotListed_data();
    void aPairThatDoesNotFitIsNotListed();
    void theCarriedFilesArePairsOfTheCatalogue();

    void aCorrectionFileIsTheSameInEachBuild_data();
    void aCorrectionFileIsTheSameInEachBuild();
    void aCorrectionFileIsScrambled_data();
    void aCorrectionFileIsScrambled();

    void theActionTableIsWellFormed();
    void aModuleHasItsActions_data();
    void aModuleHasItsActions();
    void theActionsUseTheirVocabularyOnly();
    void allActivitiesOccur();
    void noActionIsOutOfReach();
    void theOpenCorrectionIsActiveWhateverHappens();
    void anActivityChangesItsOwnModuleOnly();
    void anActivityHasItsEffect_data();
    void anActivityHasItsEffect();
};

void tst_CarriedData::initTestCase()
{
    QVERIFY(qInitResources_vek() != 0);
}

void tst_CarriedData::theListOfCountriesHasWindowsLineEnds()
{
    const QByteArray text = readFile(":/translations/countries.en.txt");
    QCOMPARE(text.count("\r\n"), 244);
    QCOMPARE(text.count('\n'), 244);
    QCOMPARE(text.count('\r'), 244);
    QVERIFY(text.endsWith("\r\n"));
    QCOMPARE(QString::fromUtf8(text).toUtf8(), text);
    QVERIFY(text.startsWith("United States\r\nFrance\r\n"));
}

void tst_CarriedData::theFavouritesComeFirst()
{
    const QStringList lines = countryLines();
    QCOMPARE(lines.mid(0, 7),
             QStringList({"United States", "France", "Germany", "United Kingdom", "Japan",
                          "--------------- ; not_selectable", "Afghanistan"}));
    QCOMPARE(lines.last(), QStringLiteral("Zimbabwe"));
}

void tst_CarriedData::theCountriesAreSortedAsAPersonWould()
{
    const QStringList countries = countryLines().mid(6);
    for (int index = 1; index < countries.size(); ++index) {
        QVERIFY2(spoken(countries.at(index - 1)) < spoken(countries.at(index)),
                 qPrintable(countries.at(index)));
    }
}

void tst_CarriedData::countriesFollowEachOther_data()
{
    QTest::addColumn<QStringList>("countries");

    QTest::newRow("a ring on the A") << QStringList({"Afghanistan", "Åland Islands", "Albania"});
    QTest::newRow("a hat on the o")
        << QStringList({"Costa Rica", "Côte d'Ivoire", "Croatia", "Cuba", "Curaçao", "Cyprus"});
    QTest::newRow("two of the name of Congo") << QStringList({"Comoros", "Congo", "Cook Islands"});
    QTest::newRow("the other one")
        << QStringList({"Czechia", "Democratic Republic of the Congo", "Denmark"});
    QTest::newRow("one name begins another") << QStringList({"Guinea", "Guinea-Bissau", "Guyana"});
    QTest::newRow("one word begins another") << QStringList({"Niger", "Nigeria", "Niue"});
    QTest::newRow("by compass") << QStringList(
        {"Norfolk Island", "North Korea", "North Macedonia", "Northern Mariana Islands", "Norway"});
    QTest::newRow("an accent on the e") << QStringList({"Qatar", "Réunion", "Romania", "Russia"});
    QTest::newRow("saints") << QStringList({"Saint Barthélemy",
                                            "Saint Helena, Ascension and Tristan da Cunha",
                                            "Saint Kitts and Nevis"});
    QTest::newRow("common names") << QStringList({"Taiwan", "Tajikistan", "Tanzania"});
    QTest::newRow("dots on the u")
        << QStringList({"Tunisia", "Türkiye", "Turkmenistan", "Turks and Caicos Islands"});
    QTest::newRow("favourites again")
        << QStringList({"United Arab Emirates", "United Kingdom", "United States",
                        "United States Virgin Islands", "Uruguay"});
    QTest::newRow("the end") << QStringList({"Western Sahara", "Yemen", "Zambia", "Zimbabwe"});
}

void tst_CarriedData::countriesFollowEachOther()
{
    QFETCH(QStringList, countries);

    const QStringList list = countryLines().mid(6);
    QCOMPARE(list.mid(list.indexOf(countries.first()), countries.size()), countries);
}

void tst_CarriedData::placesWithoutInhabitantsAreLeftOut_data()
{
    QTest::addColumn<QString>("place");

    for (const char* place :
         {"Antarctica", "Bouvet Island", "British Indian Ocean Territory", "Christmas Island",
          "Cocos", "French Southern Territories", "Heard Island", "Pitcairn", "South Georgia",
          "Tokelau", "Minor Outlying Islands"})
        QTest::newRow(place) << place;
}

void tst_CarriedData::placesWithoutInhabitantsAreLeftOut()
{
    QFETCH(QString, place);
    QCOMPARE(countryLines().filter(place), QStringList());
}

void tst_CarriedData::eachCountryIsThereOnce()
{
    const QStringList countries = countryLines().mid(6);
    QCOMPARE(countries.size(), 238);
    QCOMPARE(countries.toSet().size(), 238);
    for (const QString& country : countries) {
        QCOMPARE(country, country.simplified());
        QVERIFY(!country.isEmpty());
        QVERIFY2(!country.contains(';'), qPrintable(country));
    }
}

void tst_CarriedData::theCatalogueIsSound()
{
    QVERIFY(readFile(":/caf/CAFList1010.db").startsWith("SQLite format 3"));
    const Catalogue catalogue;
    QCOMPARE(catalogue.rows("PRAGMA integrity_check"), QStringList("ok"));
    QCOMPARE(catalogue.rows("PRAGMA encoding"), QStringList("UTF-8"));
    QCOMPARE(catalogue.rows("PRAGMA freelist_count"), QStringList("0"));
}

void tst_CarriedData::theCatalogueHasTheTables()
{
    const Catalogue catalogue;
    QCOMPARE(catalogue.rows("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name"),
             QStringList({"Body", "Maker", "Metadata", "Module", "sqlite_stat1"}));
    QCOMPARE(catalogue.rows("SELECT name FROM sqlite_master WHERE type NOT IN ('table', 'index')"),
             QStringList());
}

void tst_CarriedData::aTableHasItsColumns_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QStringList>("columns");

    QTest::newRow("Metadata") << "Metadata"
                              << QStringList({"id|INTEGER|1", "key|TEXT|0", "value|TEXT|0"});
    QTest::newRow("Module") << "Module"
                            << QStringList({"id|INTEGER|1", "cid|TEXT|0", "body|INTEGER|0",
                                            "name|TEXT|0", "fmin|FLOAT|0", "fmax|FLOAT|0",
                                            "amin|FLOAT|0", "amax|FLOAT|0", "lens_id|TEXT|0",
                                            "lens_name|TEXT|0", "bridge|INTEGER|0",
                                            "raw_only|INTEGER|0", "rgb_only|INTEGER|0",
                                            "lens_id_thumbnail|INTEGER|0"});
    QTest::newRow("Maker") << "Maker" << QStringList({"id|INTEGER|1", "name|TEXT|0"});
    QTest::newRow("Body") << "Body"
                          << QStringList({"id|INTEGER|0", "maker|INTEGER|0", "model|TEXT|0",
                                          "identifier|TEXT|0"});
}

void tst_CarriedData::aTableHasItsColumns()
{
    QFETCH(QString, table);
    QFETCH(QStringList, columns);

    const Catalogue catalogue;
    QCOMPARE(catalogue.rows(QStringLiteral("SELECT name, type, pk FROM pragma_table_info('%1')"
                                           " ORDER BY cid")
                                .arg(table)),
             columns);
}

void tst_CarriedData::theIndicesAreThere()
{
    const Catalogue catalogue;
    // One column each, so an index is a line here.
    QCOMPARE(catalogue.rows("SELECT master.tbl_name, info.name FROM sqlite_master AS master,"
                            " pragma_index_info(master.name) AS info WHERE master.type = 'index'"
                            " ORDER BY master.tbl_name, info.name"),
             QStringList({"Body|id", "Body|identifier", "Body|maker", "Module|body",
                          "Module|bridge", "Module|cid", "Module|fmax", "Module|fmin",
                          "Module|lens_id", "Module|raw_only", "Module|rgb_only"}));
    QCOMPARE(catalogue.rows("SELECT count(*) FROM sqlite_master WHERE type = 'index'"),
             QStringList("11"));
}

void tst_CarriedData::eachIndexHasStatistics()
{
    const Catalogue catalogue;
    QCOMPARE(catalogue.rows("SELECT tbl, count(*) FROM sqlite_stat1 WHERE idx IS NOT NULL"
                            " AND stat LIKE CASE tbl WHEN 'Body' THEN '365 %' ELSE '39985 %' END"
                            " GROUP BY tbl ORDER BY tbl"),
             QStringList({"Body|3", "Module|8"}));
}

void tst_CarriedData::aTableHasItsRows_data()
{
    QTest::addColumn<QString>("table");
    QTest::addColumn<QString>("rows");

    QTest::newRow("Metadata") << "Metadata"
                              << "1";
    QTest::newRow("Module") << "Module"
                            << "39985";
    QTest::newRow("Maker") << "Maker"
                           << "17";
    QTest::newRow("Body") << "Body"
                          << "365";
}

void tst_CarriedData::aTableHasItsRows()
{
    QFETCH(QString, table);
    QFETCH(QString, rows);
    QCOMPARE(Catalogue().rows("SELECT count(*) FROM " + table), QStringList(rows));
}

void tst_CarriedData::theCatalogueTellsItsVersion()
{
    QCOMPARE(Catalogue().rows("SELECT key, value FROM Metadata"), QStringList("Version|101.0.0.0"));
}

void tst_CarriedData::noRowBreaksTheRule_data()
{
    QTest::addColumn<QString>("offenders");

    QTest::newRow("a pair has a body")
        << "SELECT cid FROM Module WHERE body NOT IN (SELECT id FROM Body) OR body IS NULL";
    QTest::newRow("a body has a pair")
        << "SELECT model FROM Body WHERE id NOT IN (SELECT body FROM Module)";
    QTest::newRow("a body has a maker")
        << "SELECT model FROM Body WHERE maker NOT IN (SELECT id FROM Maker) OR maker IS NULL";
    QTest::newRow("a maker has a body")
        << "SELECT name FROM Maker WHERE id NOT IN (SELECT maker FROM Body)";
    QTest::newRow("a body's number is its own")
        << "SELECT id FROM Body GROUP BY id HAVING count(*) > 1";
    QTest::newRow("a maker has its name to itself")
        << "SELECT name FROM Maker GROUP BY name HAVING count(*) > 1";
    QTest::newRow("a maker knows a body by its identifier")
        << "SELECT identifier FROM Body GROUP BY maker, identifier HAVING count(*) > 1";
    QTest::newRow("a body and a lens are one pair")
        << "SELECT cid FROM Module GROUP BY body, lens_id HAVING count(*) > 1";
    QTest::newRow("a data file belongs to one pair")
        << "SELECT cid FROM Module GROUP BY cid HAVING count(*) > 1";
    QTest::newRow("a data file's identifier has its form")
        << "SELECT cid FROM Module WHERE cid NOT GLOB"
           " '[A-Z][0-9][0-9][0-9][0-9][0-9][a-z]_[0-9][0-9][0-9]'";
    QTest::newRow("focal lengths are a range")
        << "SELECT cid FROM Module WHERE NOT (0 < fmin AND fmin <= fmax AND fmax <= 1200)"
           " OR typeof(fmin) <> 'real' OR typeof(fmax) <> 'real'";
    QTest::newRow("apertures are a range")
        << "SELECT cid FROM Module WHERE NOT (0.9 < amin AND amin <= amax AND amax <= 64)"
           " OR typeof(amin) <> 'real' OR typeof(amax) <> 'real'";
    QTest::newRow("no lens is wide open at f/16 already")
        << "SELECT cid FROM Module WHERE amin >= 16";
    QTest::newRow("flags are 0 or 1")
        << "SELECT cid FROM Module WHERE bridge NOT IN (0, 1) OR raw_only NOT IN (0, 1)"
           " OR rgb_only NOT IN (0, 1)";
    QTest::newRow("a pair isn't for raw only and for developed pictures only")
        << "SELECT cid FROM Module WHERE raw_only AND rgb_only";
    QTest::newRow("who has a fixed lens is a bridge camera, and nobody else")
        << "SELECT cid FROM Module WHERE bridge <> (lens_name LIKE 'fixed lens%')";
    QTest::newRow("a body is a bridge camera or takes lenses")
        << "SELECT body FROM Module GROUP BY body HAVING min(bridge) <> max(bridge)";
    QTest::newRow("the letter in the identifier tells bridge cameras")
        << "SELECT cid FROM Module WHERE substr(cid, 7, 1) <> CASE bridge WHEN 1 THEN 'b'"
           " ELSE 'a' END";
    QTest::newRow("lenses have pictures, fixed ones have none")
        << "SELECT cid FROM Module WHERE (lens_id_thumbnail = 0) <> bridge"
           " OR lens_id_thumbnail NOT BETWEEN 0 AND 7";
    QTest::newRow("nothing is without a name")
        << "SELECT id FROM Module WHERE name = '' OR lens_name = '' OR lens_id = ''"
           " OR name IS NULL OR lens_name IS NULL OR lens_id IS NULL"
           " UNION SELECT id FROM Maker WHERE name = '' OR name IS NULL"
           " UNION SELECT id FROM Body WHERE model = '' OR identifier = '' OR model IS NULL"
           " OR identifier IS NULL";
    QTest::newRow("a pair is named after both")
        << "SELECT Module.cid FROM Module JOIN Body ON Body.id = body"
           " WHERE name <> model || ' + ' || lens_name";
    QTest::newRow("a lens's identifier means one maker's lens")
        << "SELECT lens_id FROM Module WHERE bridge = 0 GROUP BY lens_id"
           " HAVING count(DISTINCT lens_name) > 1";
}

void tst_CarriedData::noRowBreaksTheRule()
{
    QFETCH(QString, offenders);
    QCOMPARE(Catalogue().rows(offenders), QStringList());
}

void tst_CarriedData::aPairIsListed_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<QString>("lens");
    QTest::addColumn<QString>("ranges");

    // Identifier and lens; shortest and longest focal length, widest aperture; bridge, raw only.
    QTest::newRow("a lens of one focal length") << "Nikon D850"
                                                << "Nikon Nikkor AF 50mm f/1.8D"
                                                << "50.0|50.0|1.8|0|0";
    QTest::newRow("a zoom lens") << "Canon EOS 5D Mark IV"
                                 << "Canon EF 24-70mm f/2.8L II USM"
                                 << "24.0|70.0|2.8|0|0";
    QTest::newRow("another maker's lens") << "Nikon D850"
                                          << "Sigma 12-24mm f/4.5-5.6 EX DG HSM"
                                          << "12.0|24.0|4.5|0|0";
    QTest::newRow("a lens through an adapter") << "Canon EOS R6"
                                               << "Canon EF 50mm f/1.8 STM"
                                               << "50.0|50.0|1.8|0|0";
    QTest::newRow("a lens of the camera's own mount that it corrects itself")
        << "ILCE-7RM3"
        << "Sony FE 50mm f/1.8"
        << "50.0|50.0|1.8|0|1";
    QTest::newRow("a lens before a converter") << "Canon EOS 5D Mark IV"
                                               << "Canon EF 400mm f/5.6L USM + EF 1.4× ext."
                                               << "560.0|560.0|7.8|0|0";
    QTest::newRow("a lens that has its aperture first") << "Nikon D850"
                                                        << "Carl Zeiss Distagon T* 2,8/21 ZF.2"
                                                        << "21.0|21.0|2.8|0|0";
    QTest::newRow("a maker's letter before the focal length") << "Pentax K-70"
                                                              << "smc Pentax-F 28mm f/2.8"
                                                              << "28.0|28.0|2.8|0|0";
    QTest::newRow("a camera with a fixed lens") << "DSC-RX100"
                                                << "fixed lens"
                                                << "10.4|37.1|1.8|1|0";
}

void tst_CarriedData::aPairIsListed()
{
    QFETCH(QString, identifier);
    QFETCH(QString, lens);
    QFETCH(QString, ranges);

    QCOMPARE(Catalogue().rows(QStringLiteral("SELECT fmin, fmax, amin, bridge, raw_only FROM Module"
                                             " JOIN Body ON Body.id = body WHERE identifier = '%1'"
                                             " AND lens_name = '%2'")
                                  .arg(identifier, lens)),
             QStringList(ranges));
}

void tst_CarriedData::aPairThatDoesNotFitIsNotListed_data()
{
    QTest::addColumn<QString>("identifier");
    QTest::addColumn<QString>("lenses");

    QTest::newRow("a foreign mount") << "Nikon D850"
                                     << "Canon %";
    QTest::newRow("a mirrorless lens on a reflex camera") << "Canon EOS 5D Mark IV"
                                                          << "Canon RF %";
    QTest::newRow("a lens for a smaller sensor") << "Canon EOS 5D Mark IV"
                                                 << "Canon EF-S %";
    QTest::newRow("a lens on a camera that has one") << "DSC-RX100"
                                                     << "Sony %";
}

void tst_CarriedData::aPairThatDoesNotFitIsNotListed()
{
    QFETCH(QString, identifier);
    QFETCH(QString, lenses);

    const Catalogue catalogue;
    QVERIFY(
        !catalogue.rows("SELECT id FROM Body WHERE identifier = '" + identifier + "'").isEmpty());
    QVERIFY(!catalogue.rows("SELECT id FROM Module WHERE lens_name LIKE '" + lenses + "' LIMIT 1")
                 .isEmpty());
    QCOMPARE(catalogue.rows(QStringLiteral("SELECT lens_name FROM Module JOIN Body"
                                           " ON Body.id = body WHERE identifier = '%1'"
                                           " AND lens_name LIKE '%2'")
                                .arg(identifier, lenses)),
             QStringList());
}

void tst_CarriedData::theCarriedFilesArePairsOfTheCatalogue()
{
    QCOMPARE(QDir(":/caf").entryList({"*.caf"}, QDir::Files, QDir::Name),
             QStringList({"C35830a_001.caf", "C36841a_000.caf"}));
    QCOMPARE(Catalogue().rows("SELECT cid FROM Module WHERE cid IN ('C35830a_001', 'C36841a_000')"
                              " ORDER BY cid"),
             QStringList({"C35830a_001", "C36841a_000"}));
}

void tst_CarriedData::aCorrectionFileIsTheSameInEachBuild_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("sha256");

    QTest::newRow("C36841a_000")
        << ":/caf/C36841a_000.caf"
        << QByteArray("8446340efeac304c79e0c75fb153e0a88ddf181099effa7150dcbd74445f9d9b");
    QTest::newRow("C35830a_001")
        << ":/caf/C35830a_001.caf"
        << QByteArray("980030497f3d3cd80e441a0593f6903fdec26331650bc66f66552f9da78d77b1");
}

void tst_CarriedData::aCorrectionFileIsTheSameInEachBuild()
{
    QFETCH(QString, file);
    QFETCH(QByteArray, sha256);
    QCOMPARE(QCryptographicHash::hash(readFile(file), QCryptographicHash::Sha256).toHex(), sha256);
}

void tst_CarriedData::aCorrectionFileIsScrambled_data()
{
    QTest::addColumn<QString>("file");

    QTest::newRow("C36841a_000") << ":/caf/C36841a_000.caf";
    QTest::newRow("C35830a_001") << ":/caf/C35830a_001.caf";
}

void tst_CarriedData::aCorrectionFileIsScrambled()
{
    QFETCH(QString, file);

    const QByteArray data = readFile(file);
    QCOMPARE(data.size(), 2908);
    QVERIFY(qCompress(data, 9).size() > data.size());
    QVERIFY(!data.contains("CAF1"));
    QVERIFY(!data.contains(QFileInfo(file).completeBaseName().toLatin1()));
}

void tst_CarriedData::theActionTableIsWellFormed()
{
    const ActionTable table;
    QCOMPARE(table.error(), QString());
    QCOMPARE(table.modules().size(), 7);
}

void tst_CarriedData::aModuleHasItsActions_data()
{
    QTest::addColumn<int>("place");
    QTest::addColumn<QString>("module");
    QTest::addColumn<int>("actions");

    QTest::newRow("no correction") << 0 << "Empty_Correction_ID" << 1;
    QTest::newRow("anamorphosis") << 1 << "Anamorphosis" << 5;
    QTest::newRow("distortion") << 2 << "Distortion" << 5;
    QTest::newRow("tilt-shift") << 3 << "TiltShift" << 8;
    QTest::newRow("crop") << 4 << "Crop" << 9;
    QTest::newRow("horizon") << 5 << "Horizon" << 11;
    QTest::newRow("keystoning") << 6 << "Keystoning" << 11;
}

void tst_CarriedData::aModuleHasItsActions()
{
    QFETCH(int, place);
    QFETCH(QString, module);
    QFETCH(int, actions);

    const ActionTable table;
    QCOMPARE(table.modules().value(place).name, module);
    QCOMPARE(table.modules().value(place).actions.size(), actions);
}

void tst_CarriedData::theActionsUseTheirVocabularyOnly()
{
    const QStringList current = everyCorrection() + QStringList("None");
    const QStringList booleans = {"true", "false"};
    const ActionTable table;
    for (const Module& module : table.modules()) {
        for (const Action& action : module.actions) {
            QVERIFY(!action.activities.isEmpty());
            QCOMPARE(action.activities.toSet().size(), action.activities.size());
            for (const QString& activity : action.activities)
                QVERIFY2(everyActivity().contains(activity), qPrintable(activity));

            // A state names a correction once, and each flag once; what changes nothing is no
            // action.
            QVERIFY(action.currentConditions.size() <= 1 && action.currentChanges.size() <= 1);
            QVERIFY(action.currentChanges.size() + action.activeChanges.size() > 0);
            QVERIFY(action.applies <= 1);
            const QStringList named = action.currentConditions + action.currentChanges;
            for (const QString& name : named)
                QVERIFY2(current.contains(name), qPrintable(name));
            for (const QList<QPair<QString, QString>>& flags :
                 {action.activeConditions, action.activeChanges}) {
                QSet<QString> names;
                for (const QPair<QString, QString>& flag : flags) {
                    QVERIFY2(everyCorrection().contains(flag.first), qPrintable(flag.first));
                    QVERIFY2(booleans.contains(flag.second), qPrintable(flag.second));
                    names.insert(flag.first);
                }
                QCOMPARE(names.size(), flags.size());
            }
        }
    }
}

void tst_CarriedData::allActivitiesOccur()
{
    QSet<QString> activities;
    const ActionTable table;
    for (const Module& module : table.modules()) {
        for (const Action& action : module.actions)
            activities += action.activities.toSet();
    }
    QCOMPARE(activities, everyActivity().toSet());
}

void tst_CarriedData::noActionIsOutOfReach()
{
    const ActionTable table;
    for (const Module& module : table.modules()) {
        QSet<int> reached;
        for (int flags = 0; flags < 64; ++flags) {
            Corrections corrections;
            for (int bit = 0; bit < 6; ++bit) {
                if (flags & 1 << bit)
                    corrections.active.insert(everyCorrection().at(bit));
            }
            const QSet<QString> open = corrections.active + QSet<QString>{"None"};
            for (const QString& current : open) {
                corrections.current = current;
                for (const QString& activity : everyActivity())
                    reached.insert(corrections.answer(module, activity));
            }
        }
        reached.remove(-1);
        QVERIFY2(reached.size() == module.actions.size(), qPrintable(module.name));
    }
}

void tst_CarriedData::theOpenCorrectionIsActiveWhateverHappens()
{
    const ActionTable table;
    // All that can be reached from the start.
    QList<Corrections> open = {Corrections()};
    QSet<QString> seen = {open.first().text()};
    while (!open.isEmpty()) {
        const Corrections before = open.takeFirst();
        for (const QString& activity : everyActivity()) {
            QStringList places = everyCorrection();
            if (activity.startsWith("reset"))
                places = QStringList(QString());
            for (const QString& place : qAsConst(places)) {
                Corrections after = before;
                after.applied.clear();
                after.happens(table, place, activity);
                QVERIFY2(after.current == QLatin1String("None")
                             || after.active.contains(after.current),
                         qPrintable(before.text() + ", " + activity + " in " + place));
                if (activity == QLatin1String("resetAndCloseAllTools")) {
                    QCOMPARE(after.text(), QStringLiteral("None open, None active, None applied"));
                } else if (after.current != before.current && place != before.current
                           && before.current != QLatin1String("None")) {
                    // Another module took its place.
                    QCOMPARE(after.applied, QStringList(before.current));
                }
                after.applied.clear();
                if (!seen.contains(after.text())) {
                    seen.insert(after.text());
                    open += after;
                }
            }
        }
    }
    // 64 sets of active modules with nothing open, and 32 for each of the four that have a tool.
    QCOMPARE(seen.size(), 64 + 4 * 32);
}

void tst_CarriedData::anActivityChangesItsOwnModuleOnly()
{
    const ActionTable table;
    for (const Module& module : table.modules()) {
        for (const Action& action : module.actions) {
            for (const QPair<QString, QString>& flag : action.activeChanges)
                QCOMPARE(flag.first, module.name);
            for (const QString& current : action.currentChanges)
                QVERIFY(current == module.name || current == QLatin1String("None"));
        }
    }
}

void tst_CarriedData::anActivityHasItsEffect_data()
{
    QTest::addColumn<QString>("current");
    QTest::addColumn<QStringList>("active");
    QTest::addColumn<QString>("module");
    QTest::addColumn<QString>("activity");
    QTest::addColumn<QString>("result");

    const QStringList none;
    const QStringList crop = {"Crop"};
    const QStringList horizon = {"Horizon"};
    const QStringList both = {"Crop", "Horizon"};
    QTest::newRow("a module is switched on") << "None" << none << "Distortion"
                                             << "ModuleActivate"
                                             << "None open, Distortion active, None applied";
    QTest::newRow("a module without a tool closes the open one, applied")
        << "Crop" << crop << "Distortion"
        << "AdditionalControlTouched"
        << "None open, Crop+Distortion active, Crop applied";
    QTest::newRow("a tool is opened") << "None" << none << "Horizon"
                                      << "SpecificCorrectionActivated"
                                      << "Horizon open, Horizon active, None applied";
    QTest::newRow("a tool is opened while another one is open")
        << "Crop" << crop << "Keystoning"
        << "SpecificCorrectionActivated"
        << "Keystoning open, Crop+Keystoning active, Crop applied";
    QTest::newRow("a tool is opened again") << "None" << crop << "Crop"
                                            << "AdditionalControlTouched"
                                            << "Crop open, Crop active, None applied";
    QTest::newRow("a control of the open tool leaves it open")
        << "Crop" << crop << "Crop"
        << "AdditionalControlTouched"
        << "Crop open, Crop active, None applied";
    QTest::newRow("the button of the open crop applies it")
        << "Crop" << crop << "Crop"
        << "SpecificCorrectionActivated"
        << "None open, Crop active, Crop applied";
    QTest::newRow("the button of the open tilt-shift closes it")
        << "TiltShift" << QStringList("TiltShift") << "TiltShift"
        << "SpecificCorrectionActivated"
        << "None open, TiltShift active, None applied";
    QTest::newRow("another correction of the open keystoning leaves it open")
        << "Keystoning" << QStringList("Keystoning") << "Keystoning"
        << "SpecificCorrectionActivated"
        << "Keystoning open, Keystoning active, None applied";
    QTest::newRow("the open tool is applied") << "Horizon" << horizon << "Horizon"
                                              << "CorrectionApplyed"
                                              << "None open, Horizon active, Horizon applied";
    QTest::newRow("an automatic correction needs no tool")
        << "None" << none << "Horizon"
        << "CorrectionApplyed"
        << "None open, Horizon active, None applied";
    QTest::newRow("the open tool is cancelled") << "Crop" << both << "Crop"
                                                << "CorrectionCancel"
                                                << "None open, Horizon active, None applied";
    QTest::newRow("cancelling where nothing is open") << "None" << crop << "Crop"
                                                      << "CorrectionCancel"
                                                      << "None open, Crop active, None applied";
    QTest::newRow("the open tool is reset") << "Crop" << crop << "Crop"
                                            << "CorrectionReset"
                                            << "Crop open, Crop active, None applied";
    QTest::newRow("a closed tool's correction is reset") << "None" << both << "Horizon"
                                                         << "CorrectionReset"
                                                         << "None open, Crop active, None applied";
    QTest::newRow("the module of the open tool is switched off")
        << "Horizon" << both << "Horizon"
        << "ModuleDeactivate"
        << "None open, Crop active, None applied";
    QTest::newRow("another module is switched off") << "Horizon" << both << "Crop"
                                                    << "ModuleDeactivate"
                                                    << "Horizon open, Horizon active, None applied";
    QTest::newRow("a module is reset") << "Horizon" << both << "Crop"
                                       << "ModuleReset"
                                       << "Horizon open, Horizon active, None applied";
    QTest::newRow("all is reset, the open tool stays")
        << "Horizon" << QStringList({"Anamorphosis", "Crop", "Horizon"}) << QString() << "resetAll"
        << "Horizon open, Horizon active, None applied";
    QTest::newRow("all is reset and closed")
        << "Horizon" << QStringList({"Anamorphosis", "Crop", "Horizon"}) << QString()
        << "resetAndCloseAllTools"
        << "None open, None active, None applied";
}

void tst_CarriedData::anActivityHasItsEffect()
{
    QFETCH(QString, current);
    QFETCH(QStringList, active);
    QFETCH(QString, module);
    QFETCH(QString, activity);
    QFETCH(QString, result);

    Corrections corrections;
    corrections.current = current;
    corrections.active = active.toSet();
    corrections.happens(ActionTable(), module, activity);
    QCOMPARE(corrections.text(), result);
}

QTEST_GUILESS_MAIN(tst_CarriedData)
#include "tst_CarriedData.moc"
