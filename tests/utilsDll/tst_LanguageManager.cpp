#include "LanguageManager.h"

#include "Files.h"
#include "MessageCounter.h"
#include "MetaMethods.h"
#include "PackedFiles.h"
#include "RecordingLogger.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QApplication>
#include <QDataStream>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QProcess>
#include <QResource>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTranslator>
#include <QWidget>
#include <QtEndian>
#include <QtTest>

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

// A process has one manager, whose table is filled once. So each row of OneProcess runs in a
// process of its own, which is this program with "--alone" and the row's name.

using namespace VEK_NAMESPACE;

namespace {

const char alone[] = "--alone";
const char untilTheEnd[] = "--until-the-end";

const char managersContext[] = "CLanguageManager";
const char windowContext[] = "Window";

struct Message
{
    const char* context;
    const char* source;
    const char* translation;
};

struct Text
{
    const char* source;
    const char* translation;
};

/// What lies in ":/translations/": a catalogue of messages, or bytes as they stand.
struct File
{
    QString name;
    std::optional<QByteArray> bytes;
    std::vector<Message> messages;
};

using Files = std::vector<File>;

File catalogue(const char* name, const std::vector<Message>& messages)
{
    return {QString::fromUtf8(name), std::nullopt, messages};
}

File bytes(const char* name, const QByteArray& contents)
{
    return {QString::fromUtf8(name), contents, {}};
}

std::vector<Message> windowMessages(const std::vector<Text>& texts)
{
    std::vector<Message> messages;
    messages.reserve(texts.size() + 2);
    for (const Text& text : texts)
        messages.push_back({windowContext, text.source, text.translation});
    return messages;
}

/// A catalogue that names its language, and translates \a texts of a window.
File language(const char* name, const char* title, const char* number,
              const std::vector<Text>& texts = {})
{
    std::vector<Message> messages = windowMessages(texts);
    messages.push_back({managersContext, "language name", title});
    messages.push_back({managersContext, "language number", number});
    return catalogue(name, messages);
}

/// A catalogue of Qt's: nothing but \a texts of a window.
File qtCatalogue(const char* name, const std::vector<Text>& texts)
{
    return catalogue(name, windowMessages(texts));
}

QByteArray translationSource(const std::vector<Message>& messages)
{
    QString result = QStringLiteral("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                                    "<!DOCTYPE TS>\n<TS version=\"2.1\" language=\"it_IT\">\n");
    for (const Message& message : messages) {
        result += QStringLiteral("<context><name>%1</name><message><source>%2</source>"
                                 "<translation>%3</translation></message></context>\n")
                      .arg(QString::fromUtf8(message.context), QString::fromUtf8(message.source),
                           QString::fromUtf8(message.translation).toHtmlEscaped());
    }
    return result.toUtf8() + "</TS>\n";
}

QByteArray compiled(const std::vector<Message>& messages, const QTemporaryDir& folder)
{
    const QString source = folder.filePath("messages.ts");
    const QString catalogue = folder.filePath("messages.qm");
    writeFile(source, translationSource(messages));
    execute(LRELEASE, {"-silent", source, "-qm", catalogue});
    return readFile(catalogue);
}

// The sections of a catalogue.
enum Section
{
    Contexts = 0x2f,
    Hashes = 0x42,
    Messages = 0x69,
    Dependencies = 0x96
};

/// Italian, whose section of that kind is changed, or if there is none added.
File changedLanguage(Section changed, const std::function<void(QByteArray&)>& change)
{
    constexpr int magicSize = 16;
    const QTemporaryDir folder;
    const QByteArray whole = compiled({{managersContext, "language name", "Italiano"},
                                       {managersContext, "language number", "1040"}},
                                      folder);
    std::map<int, QByteArray> sections{{changed, {}}};
    for (int at = magicSize; at + 5 < whole.size();) {
        const int size = qFromBigEndian<qint32>(whole.constData() + at + 1);
        sections[quint8(whole[at])] = whole.mid(at + 5, size);
        at += 5 + size;
    }
    change(sections[changed]);
    QByteArray result = whole.left(magicSize);
    for (const auto& section : sections) {
        char size[4];
        qToBigEndian<qint32>(section.second.size(), size);
        result += char(section.first) + QByteArray(size, sizeof size) + section.second;
    }
    return bytes("vek_it.qm", result);
}

/// Italian, which another file has to be loaded with.
File dependentLanguage(const QString& other)
{
    return changedLanguage(Dependencies, [&](QByteArray& section) {
        QDataStream stream(&section, QIODevice::WriteOnly);
        stream << other;
    });
}

/// Adds files to ":/translations/".
void add(const Files& files)
{
    const QTemporaryDir folder;
    std::map<QString, QByteArray> contents;
    for (const File& file : files)
        contents[file.name] = file.bytes ? *file.bytes : compiled(file.messages, folder);
    const QString packed = folder.filePath("list.rcc");
    packFiles(QStringLiteral("/translations"), contents, packed);
    if (!QResource::registerResource(packed))
        qFatal("can't register the files");
}

/// Nothing but \a files lies in ":/translations/" from now on.
void offer(const Files& files)
{
    qCleanupResources_translations();
    if (!files.empty())
        add(files);
}

/// English, Italian and Zulu. Each has "Open"; "Close" isn't there in Zulu. English has no
/// catalogue of Qt's, Italian has one, which has "Cancel" in common with the product's file.
Files threeLanguages()
{
    return {language("vek_en.qm", "English", "1033", {{"Open", "Open!"}, {"Close", "Close!"}}),
            language("vek_it.qm", "Italiano", "1040",
                     {{"Open", "Apri"}, {"Close", "Chiudi"}, {"Cancel", "Annulla (prodotto)"}}),
            qtCatalogue("qt_it.qm", {{"Cancel", "Annulla (Qt)"}, {"Retry", "Riprova"}}),
            language("vek_zu.qm", "isiZulu", "1077", {{"Open", "Vula"}})};
}

enum ThreeLanguages
{
    English,
    Italian,
    Zulu
};

CLanguageManager& manager()
{
    return *CLanguageManager::instance();
}

/// A row as "name|number|file|abbreviation".
QStringList table()
{
    QStringList rows;
    const QStandardItemModel& model = *manager().model();
    for (int row = 0; row < model.rowCount(); ++row) {
        QStringList cells;
        for (int column = 0; column < model.columnCount(); ++column)
            cells << model.index(row, column).data(Qt::DisplayRole).toString();
        rows << cells.join(QLatin1Char('|'));
    }
    return rows;
}

/// What a text of a window's comes out as; itself if no installed catalogue has it.
QString shown(const char* source)
{
    return QCoreApplication::translate(windowContext, source);
}

/// All that the application owns, tracked or not.
int translators()
{
    return qApp->findChildren<QTranslator*>().size();
}

void store(const char* value)
{
    CSettings(nullptr, true).setValue("VekAppLanguage", QLatin1String(value));
}

/// The sources that the application's translators are asked for.
class RecordingTranslator : public QTranslator
{
public:
    QString translate(const char*, const char* sourceText, const char*, int) const override
    {
        m_sources << QString::fromLatin1(sourceText);
        return {};
    }
    bool isEmpty() const override { return false; }

    QStringList takeSources()
    {
        QStringList sources;
        sources.swap(m_sources);
        return sources;
    }

private:
    mutable QStringList m_sources;
};

/// Translates itself as windows do.
class Window : public QWidget
{
public:
    QStringList titles;

protected:
    void changeEvent(QEvent* event) override
    {
        if (event->type() == QEvent::LanguageChange)
            titles << shown("Open");
        QWidget::changeEvent(event);
    }
};

} // namespace

Q_DECLARE_METATYPE(Files)

class OneProcess : public QObject
{
    Q_OBJECT

public:
    OneProcess(int& argc, char** argv)
        : m_argc(argc)
        , m_argv(argv)
    {}

private Q_SLOTS:
    void init();
    void cleanup();

    // The object
    void aNewManagerHasTouchedNothing();
    void thereIsOneManager();
    void itMayBeOlderThanTheApplication();
    void itHasOneSignalAndOneSlot();

    // The table
    void filesBecomeRows_data();
    void filesBecomeRows();
    void allCellsAreTexts();
    void bothTextsAreAskedFor();
    void theTableIsBuiltOnce();
    void anEmptyTableIsNotTriedAgain();
    void aTableThatIsThereIsLeftAlone_data();
    void aTableThatIsThereIsLeftAlone();
    void theTableIsMadeOfLists_data();
    void theTableIsMadeOfLists();
    void theCountOfLanguagesIsTheColumns();

    // The stored number
    void theStoredNumberIsRead_data();
    void theStoredNumberIsRead();
    void storingANumberDoesNothingElse();
    void anOverlayHoldsTheChoice();
    void theRowOfTheStoredNumberIsFound_data();
    void theRowOfTheStoredNumberIsFound();

    // Loading
    void theStoredLanguageIsLoaded_data();
    void theStoredLanguageIsLoaded();
    void withoutARowNothingIsLoaded_data();
    void withoutARowNothingIsLoaded();
    void aNumberWithoutARowLeavesTheLanguage();
    void qtsCatalogueComesFirst();
    void theAbbreviationNamesQtsCatalogueAndTheLocale_data();
    void theAbbreviationNamesQtsCatalogueAndTheLocale();
    void aFileThatIsGoneLeavesAnEmptyTranslator();
    void loadingAgainReplacesTheTrackedTranslator_data();
    void loadingAgainReplacesTheTrackedTranslator();
    void aQtCatalogueThatCannotBeReadIsTracked();

    // Changing
    void aLanguageIsChanged();
    void theCurrentRowIsNotChanged_data();
    void theCurrentRowIsNotChanged();
    void aRowOutsideStoresZero_data();
    void aRowOutsideStoresZero();
    void aRowOutsideTheEmptyTableFillsIt();
    void afterARowOutsideARowIsLoaded();
    void theSignalComesLast();
    void besideAQtCatalogueTheProductsTranslatorStays();
    void withoutAQtCatalogueTheProductsTranslatorGoes();
    void windowsAreTold();
    void theSlotCanBeInvoked();

    // Releasing
    void theTrackedTranslatorIsReleased_data();
    void theTrackedTranslatorIsReleased();
    void withoutATranslatorReleasingDoesNothing();
    void afterReleasingALanguageIsLoaded();

    // The application's life
    void anApplicationTakesTheTranslatorsWithIt_data();
    void anApplicationTakesTheTranslatorsWithIt();

    // The product's own files
    void theProductHasFourLanguages();
    void withoutAChoiceItIsEnglish();
    void theProductsLanguagesAreLoaded_data();
    void theProductsLanguagesAreLoaded();
    void fromGermanToEnglish();

private:
    void makeApplication() { m_application.reset(new QApplication(m_argc, m_argv)); }

    int& m_argc;
    char** const m_argv;
    const QTemporaryDir m_home;
    const QString m_file = m_home.path() + "/Vek Labs/krnv3/Data.plist";
    std::unique_ptr<QApplication> m_application;
    std::unique_ptr<MessageCounter> m_messages;
    std::unique_ptr<RecordingLogger> m_logger;
};

void OneProcess::init()
{
    QVERIFY2(!m_messages, "one row for each process, please");
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_home.path()));
    QLocale::setDefault(QLocale(QStringLiteral("sv_SE")));
    makeApplication();
    m_messages.reset(new MessageCounter);
    m_logger.reset(new RecordingLogger);
}

void OneProcess::cleanup()
{
    QCOMPARE(m_logger->takeLines(), QStringList());
    QCOMPARE(m_messages->count(), 0);
    m_logger.reset();
    m_application.reset(); // before the manager
}

void OneProcess::aNewManagerHasTouchedNothing()
{
    QCOMPARE(manager().model()->rowCount(), 0);
    QCOMPARE(manager().model()->columnCount(), 0);
    QCOMPARE(manager().langCount(), 0);
    QCOMPARE(manager().currentLanguageIndex(), -1);
    QCOMPARE(manager().currentLanguageAbbrv(), QString());
    QCOMPARE(translators(), 0);
    QCOMPARE(QLocale().name(), QStringLiteral("sv_SE"));
    QVERIFY(!QFileInfo::exists(m_file));
}

void OneProcess::thereIsOneManager()
{
    CLanguageManager* const first = CLanguageManager::instance();
    QVERIFY(first);
    QVERIFY(!first->parent());
    manager().loadLanguageForApp();
    QCOMPARE(CLanguageManager::instance(), first);
}

void OneProcess::itMayBeOlderThanTheApplication()
{
    offer(threeLanguages());
    m_application.reset();
    QVERIFY(CLanguageManager::instance());
    makeApplication();
    manager().loadLanguageForApp();
    QCOMPARE(translators(), 1);
    QCOMPARE(shown("Open"), QStringLiteral("Open!"));
}

void OneProcess::itHasOneSignalAndOneSlot()
{
    const QMetaObject& meta = CLanguageManager::staticMetaObject;
    QVERIFY(QString::fromLatin1(meta.className()).endsWith("CLanguageManager"));
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 2);
    const QMetaMethod signal = meta.method(meta.methodOffset());
    QCOMPARE(signal.methodType(), QMetaMethod::Signal);
    QCOMPARE(MetaMethods::declaration(signal), QStringLiteral("void languageChanged()"));
    QCOMPARE(MetaMethods::slotDeclarations(meta, "changeLanguage(int)", 2),
             QStringList("bool changeLanguage(int index)"));
    QCOMPARE(meta.propertyCount(), meta.propertyOffset());
}

void OneProcess::filesBecomeRows_data()
{
    QTest::addColumn<Files>("files");
    QTest::addColumn<QStringList>("rows");

    const auto row = [](const char* name, const Files& files, const QStringList& rows) {
        QTest::newRow(name) << files << rows;
    };
    const QStringList none;

    row("no file", {}, none);
    row("one file", {language("vek_it.qm", "Italiano", "1040")},
        {"Italiano|1040|:/translations/vek_it.qm|it"});
    row("a name that is not ASCII", {language("vek_ja.qm", "日本語", "1041")},
        {QString::fromUtf8("日本語|1041|:/translations/vek_ja.qm|ja")});
    row("order of names",
        {language("vek_zu.qm", "1", "1"), language("vek_af.qm", "3", "3"),
         language("vek_it.qm", "2", "2")},
        {"3|3|:/translations/vek_af.qm|af", "2|2|:/translations/vek_it.qm|it",
         "1|1|:/translations/vek_zu.qm|zu"});
    row("order of names is blind to case",
        {language("vek_a.qm", "1", "1"), language("vek_B.qm", "2", "2"),
         language("vek_c.qm", "3", "3")},
        {"1|1|:/translations/vek_a.qm|a", "2|2|:/translations/vek_B.qm|B",
         "3|3|:/translations/vek_c.qm|c"});

    row("extension in capitals", {language("vek_it.QM", "Italiano", "1040")},
        {"Italiano|1040|:/translations/vek_it.QM|it"});
    row("prefix in capitals", {language("VEK_IT.qm", "Italiano", "1040")},
        {"Italiano|1040|:/translations/VEK_IT.qm|_IT"});
    row("no prefix", {language("italian.qm", "Italiano", "1040")},
        {"Italiano|1040|:/translations/italian.qm|lian"});
    row("no prefix, three letters", {language("ita.qm", "Italiano", "1040")},
        {"Italiano|1040|:/translations/ita.qm|"});
    row("no prefix, two letters", {language("it.qm", "Italiano", "1040")},
        {"Italiano|1040|:/translations/it.qm|qm"});
    row("nothing but the prefix", {language("vek_.qm", "Italiano", "1040")},
        {"Italiano|1040|:/translations/vek_.qm|"});
    row("prefix further on", {language("my_vek_it.qm", "Italiano", "1040")},
        {"Italiano|1040|:/translations/my_vek_it.qm|it"});
    row("prefix twice", {language("vek_it_vek_ch.qm", "Italiano", "1040")},
        {"Italiano|1040|:/translations/vek_it_vek_ch.qm|ch"});
    row("two dots", {language("vek_it.ch.qm", "Italiano", "1040")},
        {"Italiano|1040|:/translations/vek_it.ch.qm|it.ch"});
    row("prefix of Qt's files", {language("qt_it.qm", "Italiano", "1040")},
        {"Italiano|1040|:/translations/qt_it.qm|it"});

    row("number is a word", {language("vek_it.qm", "Italiano", "many")},
        {"Italiano|many|:/translations/vek_it.qm|it"});
    row("two files of one number",
        {language("vek_it.qm", "Italiano", "1040"), language("vek_la.qm", "Latina", "1040")},
        {"Italiano|1040|:/translations/vek_it.qm|it", "Latina|1040|:/translations/vek_la.qm|la"});

    row("name missing", {catalogue("vek_it.qm", {{managersContext, "language number", "1040"}})},
        none);
    row("number missing",
        {catalogue("vek_it.qm", {{managersContext, "language name", "Italiano"}})}, none);
    row("other messages", {qtCatalogue("qt_it.qm", {{"Open", "Apri"}})}, none);
    row("another context",
        {catalogue("vek_it.qm",
                   {{windowContext, "language name", "Italiano"},
                    {windowContext, "language number", "1040"}})},
        none);
    row("not a catalogue", {bytes("vek_it.qm", "Italiano, 1040")}, none);
    row("an empty file", {bytes("vek_it.qm", "")}, none);
    row("a bad file between good ones",
        {language("vek_en.qm", "English", "1033"), bytes("vek_fr.qm", "Français"),
         language("vek_it.qm", "Italiano", "1040")},
        {"English|1033|:/translations/vek_en.qm|en", "Italiano|1040|:/translations/vek_it.qm|it"});

    const QString italian = QStringLiteral("Italiano|1040|:/translations/vek_it.qm|it");
    row("nothing changed", {changedLanguage(Messages, [](QByteArray&) {})}, {italian});
    row("messages outside of the file",
        {changedLanguage(Hashes,
                         [](QByteArray& section) {
                             for (int i = 4; i < section.size(); i += 8)
                                 section[i] = '\x7f';
                         })},
        none);
    row("a place of a message that is cut off",
        {changedLanguage(Hashes, [](QByteArray& section) { section.chop(1); })}, none);
    row("a translation larger than the file",
        {changedLanguage(Messages, [](QByteArray& section) { section[1] = '\xc0'; })}, none);
    row("a message that is cut off",
        {changedLanguage(Messages, [](QByteArray& section) { section.chop(10); })}, none);
    row("a message that ends within a size",
        {changedLanguage(Messages,
                         [](QByteArray& section) {
                             section.chop(1); // the mark of its end
                             section.append("\x3\0", 2);
                         })},
        none);
    row("a message with a check sum",
        {changedLanguage(Messages,
                         [](QByteArray& section) {
                             section.chop(1);
                             section.append("\x5\0\0\0\0\x1", 6);
                         })},
        {italian});
    const QByteArray whole = *changedLanguage(Messages, [](QByteArray&) {}).bytes;
    row("a section that is cut off", {bytes("vek_it.qm", whole.left(24))}, none);
    row("contexts without a table",
        {changedLanguage(Contexts, [](QByteArray& section) { section = QByteArray(4, '\0'); })},
        none);
    row("contexts with a table larger than they are",
        {changedLanguage(Contexts, [](QByteArray& section) { section = QByteArray(4, '\xff'); })},
        none);
    row("contexts whose names are cut off",
        {changedLanguage(Contexts,
                         [](QByteArray& section) { section = QByteArray("\0\x1\0\x1\0\0", 6); })},
        none);
    row("a file that depends on itself", {dependentLanguage("vek_it")}, none);
    row("a file that depends on one that depends on it",
        {dependentLanguage("vek_fr"), bytes("vek_fr.qm", *dependentLanguage("vek_it").bytes)},
        none);
    row("a file that depends on another",
        {dependentLanguage("qt_it"), qtCatalogue("qt_it.qm", {{"Cancel", "Annulla"}})}, {italian});
    row("a file that depends on another, which is cut short for it",
        {dependentLanguage("qt_it_IT.utf8"), qtCatalogue("qt_it.qm", {{"Cancel", "Annulla"}})},
        {italian});
    row("a file that depends on one that isn't there", {dependentLanguage("qt_it")}, none);
    row("a file that depends on one that is no catalogue",
        {dependentLanguage("qt_it"), bytes("qt_it.qm", "no catalogue")}, none);

    row("another extension", {language("vek_it.qm.old", "Italiano", "1040")}, none);
    row("a folder below", {language("more/vek_it.qm", "Italiano", "1040")}, none);
}

void OneProcess::filesBecomeRows()
{
    QFETCH(Files, files);
    QFETCH(QStringList, rows);

    offer(files);
    manager().loadLanguages();
    QCOMPARE(table(), rows);
    QCOMPARE(manager().model()->columnCount(), 4);
    QCOMPARE(translators(), 0);
    QCOMPARE(QLocale().name(), QStringLiteral("sv_SE"));
}

void OneProcess::allCellsAreTexts()
{
    offer(threeLanguages());
    manager().loadLanguages();
    for (int row = 0; row < 3; ++row) {
        for (int column = 0; column < 4; ++column) {
            const QVariant cell = manager().model()->index(row, column).data(Qt::DisplayRole);
            QCOMPARE(QByteArray(cell.typeName()), QByteArray("QString"));
        }
    }
}

void OneProcess::bothTextsAreAskedFor()
{
    offer(threeLanguages());
    RecordingTranslator translator;
    QCoreApplication::installTranslator(&translator);
    translator.takeSources(); // Qt's own
    manager().loadLanguages();
    QCOMPARE(translator.takeSources(), QStringList({"language name", "language number"}));
    manager().loadLanguages();
    QCOMPARE(translator.takeSources(), QStringList());
}

void OneProcess::theTableIsBuiltOnce()
{
    offer({language("vek_it.qm", "Italiano", "1040")});
    const QStringList rows("Italiano|1040|:/translations/vek_it.qm|it");
    manager().loadLanguages();
    QCOMPARE(table(), rows);

    add({language("vek_en.qm", "English", "1033")});
    manager().loadLanguages();
    QCOMPARE(table(), rows);
    manager().loadLanguageForApp();
    QCOMPARE(table(), rows);
    manager().createLanguageModel({"English"}, {"1033"}, {":/translations/vek_en.qm"}, {"en"});
    QCOMPARE(table(), rows);
}

void OneProcess::anEmptyTableIsNotTriedAgain()
{
    offer({});
    manager().loadLanguageForApp();
    QCOMPARE(manager().model()->rowCount(), 0);
    QCOMPARE(manager().model()->columnCount(), 4);

    add(threeLanguages());
    manager().loadLanguageForApp();
    QCOMPARE(manager().model()->rowCount(), 0);
    QCOMPARE(manager().currentLanguageIndex(), -1);
    QCOMPARE(manager().currentLanguageAbbrv(), QString());
    QCOMPARE(translators(), 0);
}

void OneProcess::aTableThatIsThereIsLeftAlone_data()
{
    QTest::addColumn<int>("rows");
    QTest::addColumn<int>("columns");

    QTest::newRow("a row") << 1 << 0;
    QTest::newRow("a column") << 0 << 1;
}

void OneProcess::aTableThatIsThereIsLeftAlone()
{
    QFETCH(int, rows);
    QFETCH(int, columns);

    offer(threeLanguages());
    manager().model()->setRowCount(rows);
    manager().model()->setColumnCount(columns);
    manager().loadLanguages();
    manager().createLanguageModel({"English"}, {"1033"}, {":/translations/vek_en.qm"}, {"en"});
    QCOMPARE(manager().model()->rowCount(), rows);
    QCOMPARE(manager().model()->columnCount(), columns);
}

void OneProcess::theTableIsMadeOfLists_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QStringList>("numbers");
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("abbreviations");
    QTest::addColumn<QStringList>("rows");
    QTest::addColumn<int>("columns");

    const QStringList one("1");
    const QStringList two({"1", "2"});
    const QStringList none;
    QTest::newRow("all of one length")
        << two << two << two << two << QStringList({"1|1|1|1", "2|2|2|2"}) << 4;
    QTest::newRow("all empty") << none << none << none << none << none << 4;
    QTest::newRow("a name too many") << two << one << one << one << none << 0;
    QTest::newRow("a number too many") << one << two << one << one << none << 0;
    QTest::newRow("a file too many") << one << one << two << one << none << 0;
    QTest::newRow("a name missing") << one << two << two << two << none << 0;
    QTest::newRow("a file missing") << two << two << one << two << none << 0;
    QTest::newRow("an abbreviation too many")
        << one << one << one << two << QStringList("1|1|1|1") << 4;
    QTest::newRow("an abbreviation missing")
        << two << two << two << one << QStringList({"1|1|1|1", "2|2|2|"}) << 4;
    QTest::newRow("no abbreviation")
        << two << two << two << none << QStringList({"1|1|1|", "2|2|2|"}) << 4;
}

void OneProcess::theTableIsMadeOfLists()
{
    QFETCH(QStringList, names);
    QFETCH(QStringList, numbers);
    QFETCH(QStringList, files);
    QFETCH(QStringList, abbreviations);
    QFETCH(QStringList, rows);
    QFETCH(int, columns);

    manager().createLanguageModel(names, numbers, files, abbreviations);
    QCOMPARE(table(), rows);
    QCOMPARE(manager().model()->columnCount(), columns);
}

void OneProcess::theCountOfLanguagesIsTheColumns()
{
    offer(threeLanguages());
    QCOMPARE(manager().langCount(), 0);
    manager().loadLanguageForApp();
    QCOMPARE(manager().langCount(), 4);
    QCOMPARE(manager().model()->rowCount(), 3);
}

void OneProcess::theStoredNumberIsRead_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<unsigned int>("number");
    QTest::addColumn<QString>("abbreviation");

    const auto row = [](const char* name, const QByteArray& value, unsigned int number,
                        const char* abbreviation) {
        QTest::newRow(name) << QByteArray("[General]\nVekAppLanguage=" + value + '\n') << number
                            << QString::fromLatin1(abbreviation);
    };

    QTest::newRow("no file") << QByteArray() << 1033U << "en";
    QTest::newRow("another key") << QByteArray("[General]\nvekapplanguages=1031\n") << 1033U
                                 << "en";
    QTest::newRow("another group")
        << QByteArray("[Interface]\nVekAppLanguage=1031\n") << 1033U << "en";
    row("German", "1031", 1031, "de");
    row("English", "1033", 1033, "en");
    row("French", "1036", 1036, "fr");
    row("Japanese", "1041", 1041, "ja");
    row("another language", "1040", 1040, "en");
    row("0", "0", 0, "en");
    row("1", "1", 1, "en");
    row("the largest number", "4294967295", 4294967295U, "en");
    row("negative", "-1031", 1033, "en");
    row("a word", "German", 1033, "en");
    row("a number and a letter", "1031x", 1033, "en");
    row("a fraction", "1031.0", 1033, "en");
    row("hexadecimal", "0x407", 1033, "en");
    row("an empty text", "", 1033, "en");
    row("an invalid value", "@Invalid()", 1033, "en");
    row("a list", "1031, 1036", 1033, "en");
}

void OneProcess::theStoredNumberIsRead()
{
    QFETCH(QByteArray, file);
    QFETCH(unsigned int, number);
    QFETCH(QString, abbreviation);

    QVERIFY(writeFile(m_file, file));
    QCOMPARE(manager().currentLanguageNumber(), number);
    QCOMPARE(manager().settingsAbbrv(), abbreviation);
    QCOMPARE(manager().currentLanguageAbbrv(), QString()); // there is no table yet
    QCOMPARE(manager().model()->columnCount(), 0);
}

void OneProcess::storingANumberDoesNothingElse()
{
    offer(threeLanguages());
    manager().loadLanguageForApp();
    QSignalSpy changes(&manager(), &CLanguageManager::languageChanged);

    manager().setCurrentLanguageNumber(1040);
    QCOMPARE(readFile(m_file), QByteArray("[General]\nVekAppLanguage=1040\n"));
    QCOMPARE(CSettings().value("VekAppLanguage").typeName(), "uint");
    QCOMPARE(manager().currentLanguageNumber(), 1040U);
    QCOMPARE(manager().currentLanguageIndex(), int(Italian));
    QCOMPARE(changes.count(), 0);
    QCOMPARE(shown("Open"), QStringLiteral("Open!"));
    QCOMPARE(translators(), 1);
    QCOMPARE(QLocale().language(), QLocale::English);
}

void OneProcess::anOverlayHoldsTheChoice()
{
    offer(threeLanguages());
    store("1077");
    {
        CTemporarySettings overlay(nullptr);
        overlay.setValue("VekAppLanguage", 1040);
        CSettings::setTemporarySettings(overlay);
        QCOMPARE(manager().currentLanguageNumber(), 1040U);
        manager().loadLanguageForApp();
        QCOMPARE(shown("Open"), QStringLiteral("Apri"));

        QVERIFY(manager().changeLanguage(English));
        QCOMPARE(overlay.value("VekAppLanguage").toUInt(), 1033U);
        QCOMPARE(shown("Open"), QStringLiteral("Open!"));
    }
    QCOMPARE(manager().currentLanguageNumber(), 1077U);
    QCOMPARE(manager().currentLanguageIndex(), int(Zulu));
    QCOMPARE(readFile(m_file), QByteArray("[General]\nVekAppLanguage=1077\n"));
    m_logger->takeLines(); // of the overlay
}

void OneProcess::theRowOfTheStoredNumberIsFound_data()
{
    QTest::addColumn<QStringList>("numbers");
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<int>("index");

    const auto row = [](const char* name, const QStringList& numbers, const char* stored,
                        int index) {
        QTest::newRow(name) << numbers << QByteArray(stored) << index;
    };
    row("first row", {"1031", "1033"}, "1031", 0);
    row("last row", {"1031", "1033"}, "1033", 1);
    row("no row", {"1031", "1033"}, "1036", -1);
    row("a row's place is not its number", {"1031", "1033"}, "1", -1);
    row("two rows", {"1031", "1033", "1033"}, "1033", 1);
    row("a word stored", {"1031", "1033"}, "English", 1);
    row("leading zeros in the table", {"1031", "001033"}, "1033", 1);
    row("a word in the table", {"1031", "many"}, "0", 1);
    row("a word in the table is no other number", {"1031", "many"}, "1033", -1);
    row("no table", {}, "1033", -1);
}

void OneProcess::theRowOfTheStoredNumberIsFound()
{
    QFETCH(QStringList, numbers);
    QFETCH(QByteArray, stored);
    QFETCH(int, index);

    QStringList abbreviations;
    for (int row = 0; row < numbers.size(); ++row)
        abbreviations << QStringLiteral("abbreviation %1").arg(row);
    manager().createLanguageModel(numbers, numbers, numbers, abbreviations);
    store(stored.constData());
    QCOMPARE(manager().currentLanguageIndex(), index);
    QCOMPARE(manager().currentLanguageAbbrv(),
             index < 0 ? QString() : QStringLiteral("abbreviation %1").arg(index));
}

void OneProcess::theStoredLanguageIsLoaded_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("abbreviation");
    QTest::addColumn<QString>("open");
    QTest::addColumn<int>("count");
    QTest::addColumn<QLocale::Language>("locale");

    QTest::newRow("nothing") << QByteArray() << int(English) << "en"
                             << "Open!" << 1 << QLocale::English;
    QTest::newRow("a word") << QByteArray("Zulu") << int(English) << "en"
                            << "Open!" << 1 << QLocale::English;
    QTest::newRow("English") << QByteArray("1033") << int(English) << "en"
                             << "Open!" << 1 << QLocale::English;
    QTest::newRow("Italian") << QByteArray("1040") << int(Italian) << "it"
                             << "Apri" << 2 << QLocale::Italian;
    QTest::newRow("Zulu") << QByteArray("1077") << int(Zulu) << "zu"
                          << "Vula" << 1 << QLocale::Zulu;
}

void OneProcess::theStoredLanguageIsLoaded()
{
    QFETCH(QByteArray, stored);
    QFETCH(int, index);
    QFETCH(QString, abbreviation);
    QFETCH(QString, open);
    QFETCH(int, count);
    QFETCH(QLocale::Language, locale);

    offer(threeLanguages());
    if (!stored.isNull())
        store(stored.constData());
    QSignalSpy changes(&manager(), &CLanguageManager::languageChanged);
    const QByteArray before = readFile(m_file);

    manager().loadLanguageForApp();
    QCOMPARE(manager().currentLanguageIndex(), index);
    QCOMPARE(manager().currentLanguageAbbrv(), abbreviation);
    QCOMPARE(shown("Open"), open);
    QCOMPARE(shown("Unknown"), QStringLiteral("Unknown"));
    QCOMPARE(translators(), count);
    QCOMPARE(QLocale().language(), locale);
    QCOMPARE(changes.count(), 0);
    QCOMPARE(readFile(m_file), before);
}

void OneProcess::withoutARowNothingIsLoaded_data()
{
    QTest::addColumn<Files>("files");
    QTest::addColumn<QByteArray>("stored");

    QTest::newRow("no languages") << Files() << QByteArray("1033");
    QTest::newRow("another language") << threeLanguages() << QByteArray("1031");
    QTest::newRow("0") << threeLanguages() << QByteArray("0");
    QTest::newRow("no English, and nothing stored")
        << Files({language("vek_it.qm", "Italiano", "1040")}) << QByteArray();
}

void OneProcess::withoutARowNothingIsLoaded()
{
    QFETCH(Files, files);
    QFETCH(QByteArray, stored);

    offer(files);
    if (!stored.isNull())
        store(stored.constData());
    manager().loadLanguageForApp();
    QCOMPARE(manager().langCount(), 4);
    QCOMPARE(manager().currentLanguageIndex(), -1);
    QCOMPARE(manager().currentLanguageAbbrv(), QString());
    QCOMPARE(translators(), 0);
    QCOMPARE(QLocale().name(), QStringLiteral("sv_SE"));
}

void OneProcess::aNumberWithoutARowLeavesTheLanguage()
{
    offer(threeLanguages());
    manager().setCurrentLanguageNumber(1040);
    manager().loadLanguageForApp();

    manager().setCurrentLanguageNumber(1031);
    manager().loadLanguageForApp();
    QCOMPARE(shown("Open"), QStringLiteral("Apri"));
    QCOMPARE(shown("Retry"), QStringLiteral("Riprova"));
    QCOMPARE(translators(), 2);
    QCOMPARE(QLocale().language(), QLocale::Italian);
    QCOMPARE(manager().currentLanguageIndex(), -1);
    QCOMPARE(manager().currentLanguageAbbrv(), QString());
    QCOMPARE(manager().settingsAbbrv(), QStringLiteral("de"));
}

void OneProcess::qtsCatalogueComesFirst()
{
    offer(threeLanguages());
    manager().setCurrentLanguageNumber(1040);
    manager().loadLanguageForApp();
    QCOMPARE(shown("Cancel"), QStringLiteral("Annulla (Qt)"));
    QCOMPARE(shown("Retry"), QStringLiteral("Riprova"));
    QCOMPARE(shown("Open"), QStringLiteral("Apri"));
}

void OneProcess::theAbbreviationNamesQtsCatalogueAndTheLocale_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QByteArray>("qtFile");
    QTest::addColumn<QString>("locale");

    QTest::newRow("a language") << QByteArray("vek_it.qm") << QByteArray("qt_it.qm") << "it_IT";
    QTest::newRow("a language and a country")
        << QByteArray("vek_it_CH.qm") << QByteArray("qt_it_CH.qm") << "it_CH";
    QTest::newRow("no language") << QByteArray("italian.qm") << QByteArray("qt_lian.qm") << "C";
    QTest::newRow("empty") << QByteArray("ita.qm") << QByteArray("qt_.qm") << "C";
}

void OneProcess::theAbbreviationNamesQtsCatalogueAndTheLocale()
{
    QFETCH(QByteArray, file);
    QFETCH(QByteArray, qtFile);
    QFETCH(QString, locale);

    offer({language(file.constData(), "Italiano", "1040"),
           qtCatalogue(qtFile.constData(), {{"Retry", "Riprova"}}),
           qtCatalogue("qt_other.qm", {{"Retry", "Another one"}})});
    manager().setCurrentLanguageNumber(1040);
    manager().loadLanguageForApp();
    QCOMPARE(shown("Retry"), QStringLiteral("Riprova"));
    QCOMPARE(translators(), 2);
    QCOMPARE(QLocale().name(), locale);
}

void OneProcess::aFileThatIsGoneLeavesAnEmptyTranslator()
{
    offer(threeLanguages());
    manager().createLanguageModel({"Gone", "isiZulu"}, {"1033", "1077"},
                                  {":/translations/gone.qm", ":/translations/vek_zu.qm"},
                                  {"sw", "zu"});
    manager().loadLanguageForApp();
    QCOMPARE(manager().currentLanguageIndex(), 0);
    QCOMPARE(shown("Open"), QStringLiteral("Open"));
    QCOMPARE(translators(), 1);
    QCOMPARE(QLocale().language(), QLocale::Swahili);

    QVERIFY(manager().changeLanguage(1));
    QCOMPARE(shown("Open"), QStringLiteral("Vula"));
    QCOMPARE(translators(), 1);
}

void OneProcess::loadingAgainReplacesTheTrackedTranslator_data()
{
    QTest::addColumn<unsigned int>("number");
    QTest::addColumn<QString>("open");
    QTest::addColumn<int>("count");

    QTest::newRow("without a catalogue of Qt's") << 1033U << "Open!" << 1;
    QTest::newRow("with one, beside which the product's stays") << 1040U << "Apri" << 3;
}

void OneProcess::loadingAgainReplacesTheTrackedTranslator()
{
    QFETCH(unsigned int, number);
    QFETCH(QString, open);
    QFETCH(int, count);

    offer(threeLanguages());
    manager().setCurrentLanguageNumber(number);
    manager().loadLanguageForApp();
    const QPointer<QTranslator> last = qApp->findChildren<QTranslator*>().last();
    manager().loadLanguageForApp();
    QVERIFY(!last);
    QCOMPARE(translators(), count);
    QCOMPARE(shown("Open"), open);
}

void OneProcess::aQtCatalogueThatCannotBeReadIsTracked()
{
    offer({language("vek_en.qm", "English", "1033"),
           language("vek_it.qm", "Italiano", "1040", {{"Open", "Apri"}}),
           bytes("qt_it.qm", "no catalogue")});
    manager().setCurrentLanguageNumber(1040);
    manager().loadLanguageForApp();
    QCOMPARE(translators(), 2);
    QCOMPARE(shown("Open"), QStringLiteral("Apri"));
    QCOMPARE(QLocale().language(), QLocale::Italian);

    QVERIFY(manager().changeLanguage(0));
    QCOMPARE(translators(), 2);
    QCOMPARE(shown("Open"), QStringLiteral("Apri"));
    manager().releaseCurrentTranslator();
    QCOMPARE(translators(), 1);
    QCOMPARE(shown("Open"), QStringLiteral("Apri"));
}

void OneProcess::aLanguageIsChanged()
{
    offer(threeLanguages());
    manager().loadLanguageForApp();
    QSignalSpy changes(&manager(), &CLanguageManager::languageChanged);

    QVERIFY(manager().changeLanguage(Zulu));
    QCOMPARE(changes.count(), 1);
    QCOMPARE(readFile(m_file), QByteArray("[General]\nVekAppLanguage=1077\n"));
    QCOMPARE(manager().currentLanguageIndex(), int(Zulu));
    QCOMPARE(shown("Open"), QStringLiteral("Vula"));
    QCOMPARE(QLocale().language(), QLocale::Zulu);

    QVERIFY(manager().changeLanguage(English));
    QCOMPARE(changes.count(), 2);
    QCOMPARE(readFile(m_file), QByteArray("[General]\nVekAppLanguage=1033\n"));
    QCOMPARE(shown("Open"), QStringLiteral("Open!"));
    QCOMPARE(QLocale().language(), QLocale::English);
}

void OneProcess::theCurrentRowIsNotChanged_data()
{
    QTest::addColumn<QByteArray>("stored");
    QTest::addColumn<bool>("loaded");
    QTest::addColumn<int>("index");

    QTest::newRow("the stored one") << QByteArray("1077") << true << int(Zulu);
    QTest::newRow("English, and nothing stored") << QByteArray() << true << int(English);
    QTest::newRow("English, and a word stored") << QByteArray("Zulu") << true << int(English);
    QTest::newRow("before it is loaded") << QByteArray("1077") << false << int(Zulu);
    QTest::newRow("outside, and 0 stored") << QByteArray("0") << false << 3;
}

void OneProcess::theCurrentRowIsNotChanged()
{
    QFETCH(QByteArray, stored);
    QFETCH(bool, loaded);
    QFETCH(int, index);

    offer(threeLanguages());
    if (!stored.isNull())
        store(stored.constData());
    manager().loadLanguages();
    if (loaded)
        manager().loadLanguageForApp();
    QSignalSpy changes(&manager(), &CLanguageManager::languageChanged);
    const QByteArray before = readFile(m_file);
    const QList<QTranslator*> translatorsBefore = qApp->findChildren<QTranslator*>();
    QLocale::setDefault(QLocale(QStringLiteral("sv_SE")));

    QVERIFY(!manager().changeLanguage(index));
    QCOMPARE(changes.count(), 0);
    QCOMPARE(readFile(m_file), before);
    QCOMPARE(qApp->findChildren<QTranslator*>(), translatorsBefore);
    QCOMPARE(QLocale().name(), QStringLiteral("sv_SE"));
}

void OneProcess::aRowOutsideStoresZero_data()
{
    QTest::addColumn<int>("index");

    QTest::newRow("before the first") << -1;
    QTest::newRow("after the last") << 3;
    QTest::newRow("far before the first") << INT_MIN;
    QTest::newRow("far after the last") << INT_MAX;
}

void OneProcess::aRowOutsideStoresZero()
{
    QFETCH(int, index);

    offer(threeLanguages());
    manager().setCurrentLanguageNumber(1040);
    manager().loadLanguageForApp();
    const QList<QTranslator*> before = qApp->findChildren<QTranslator*>();
    QSignalSpy changes(&manager(), &CLanguageManager::languageChanged);

    QVERIFY(manager().changeLanguage(index));
    QCOMPARE(changes.count(), 1);
    QCOMPARE(readFile(m_file), QByteArray("[General]\nVekAppLanguage=0\n"));
    QCOMPARE(manager().currentLanguageNumber(), 0U);
    QCOMPARE(manager().currentLanguageIndex(), -1);
    QCOMPARE(manager().currentLanguageAbbrv(), QString());
    QCOMPARE(manager().settingsAbbrv(), QStringLiteral("en"));
    QCOMPARE(qApp->findChildren<QTranslator*>(), before);
    QCOMPARE(shown("Open"), QStringLiteral("Apri"));
    QCOMPARE(QLocale().language(), QLocale::Italian);

    QVERIFY(!manager().changeLanguage(index));
    QCOMPARE(changes.count(), 1);
}

void OneProcess::aRowOutsideTheEmptyTableFillsIt()
{
    offer(threeLanguages());
    QSignalSpy changes(&manager(), &CLanguageManager::languageChanged);
    QVERIFY(manager().changeLanguage(Zulu)); // there is no such row yet
    QCOMPARE(changes.count(), 1);
    QCOMPARE(manager().currentLanguageNumber(), 0U);
    QCOMPARE(manager().model()->rowCount(), 3);
    QCOMPARE(translators(), 0);

    QVERIFY(manager().changeLanguage(Zulu));
    QCOMPARE(changes.count(), 2);
    QCOMPARE(shown("Open"), QStringLiteral("Vula"));
}

void OneProcess::afterARowOutsideARowIsLoaded()
{
    offer(threeLanguages());
    manager().loadLanguageForApp();
    QVERIFY(manager().changeLanguage(-1));

    QVERIFY(manager().changeLanguage(English));
    QCOMPARE(manager().currentLanguageNumber(), 1033U);
    QCOMPARE(manager().currentLanguageIndex(), int(English));
    QCOMPARE(shown("Open"), QStringLiteral("Open!"));
    QCOMPARE(translators(), 1);
}

void OneProcess::theSignalComesLast()
{
    offer(threeLanguages());
    manager().loadLanguageForApp();
    QStringList seen;
    connect(&manager(), &CLanguageManager::languageChanged, this, [this, &seen] {
        seen << QString::fromLatin1(readFile(m_file)) << shown("Open") << shown("Retry")
             << manager().currentLanguageAbbrv() << QLocale().name();
    });
    QVERIFY(manager().changeLanguage(Italian));
    QCOMPARE(seen,
             QStringList({"[General]\nVekAppLanguage=1040\n", "Apri", "Riprova", "it", "it_IT"}));
}

void OneProcess::besideAQtCatalogueTheProductsTranslatorStays()
{
    offer(threeLanguages());
    manager().loadLanguageForApp();
    QVERIFY(manager().changeLanguage(Italian));
    QCOMPARE(translators(), 2); // English is gone
    QVERIFY(manager().changeLanguage(Zulu));
    QCOMPARE(translators(), 2); // the product's Italian and Zulu
    QCOMPARE(shown("Open"), QStringLiteral("Vula"));
    QCOMPARE(shown("Close"), QStringLiteral("Chiudi"));
    QCOMPARE(shown("Cancel"), QStringLiteral("Annulla (prodotto)"));
    QCOMPARE(shown("Retry"), QStringLiteral("Retry"));

    QVERIFY(manager().changeLanguage(English));
    QCOMPARE(translators(), 2);
    QCOMPARE(shown("Close"), QStringLiteral("Close!"));
    QVERIFY(manager().changeLanguage(Zulu));
    QCOMPARE(shown("Close"), QStringLiteral("Chiudi"));
}

void OneProcess::withoutAQtCatalogueTheProductsTranslatorGoes()
{
    offer(threeLanguages());
    manager().loadLanguageForApp();
    QCOMPARE(shown("Close"), QStringLiteral("Close!"));
    QVERIFY(manager().changeLanguage(Zulu));
    QCOMPARE(translators(), 1);
    QCOMPARE(shown("Open"), QStringLiteral("Vula"));
    QCOMPARE(shown("Close"), QStringLiteral("Close"));
}

void OneProcess::windowsAreTold()
{
    offer(threeLanguages());
    Window window;
    const auto lastTitle = [&window] {
        QCoreApplication::sendPostedEvents();
        QStringList titles;
        titles.swap(window.titles);
        return titles.isEmpty() ? QString() : titles.last();
    };
    manager().loadLanguageForApp();
    QCOMPARE(lastTitle(), QStringLiteral("Open!"));
    QVERIFY(manager().changeLanguage(Zulu));
    QCOMPARE(lastTitle(), QStringLiteral("Vula"));
    QVERIFY(!manager().changeLanguage(Zulu));
    QCOMPARE(lastTitle(), QString());
    QVERIFY(manager().changeLanguage(-1));
    QCOMPARE(lastTitle(), QString());
    QVERIFY(manager().changeLanguage(Italian));
    QCOMPARE(lastTitle(), QStringLiteral("Apri"));
}

void OneProcess::theSlotCanBeInvoked()
{
    offer(threeLanguages());
    manager().loadLanguageForApp();
    bool changed = false;
    QVERIFY(QMetaObject::invokeMethod(&manager(), "changeLanguage", Q_RETURN_ARG(bool, changed),
                                      Q_ARG(int, int(Zulu))));
    QVERIFY(changed);
    QCOMPARE(shown("Open"), QStringLiteral("Vula"));
}

void OneProcess::theTrackedTranslatorIsReleased_data()
{
    QTest::addColumn<unsigned int>("number");
    QTest::addColumn<QString>("open");
    QTest::addColumn<QString>("cancel");
    QTest::addColumn<int>("count");

    QTest::newRow("the product's") << 1033U << "Open"
                                   << "Cancel" << 0;
    QTest::newRow("Qt's, and the product's stays") << 1040U << "Apri"
                                                   << "Annulla (prodotto)" << 1;
}

void OneProcess::theTrackedTranslatorIsReleased()
{
    QFETCH(unsigned int, number);
    QFETCH(QString, open);
    QFETCH(QString, cancel);
    QFETCH(int, count);

    offer(threeLanguages());
    manager().setCurrentLanguageNumber(number);
    manager().loadLanguageForApp();
    QSignalSpy changes(&manager(), &CLanguageManager::languageChanged);
    const QString locale = QLocale().name();
    for (int times = 0; times < 2; ++times) {
        manager().releaseCurrentTranslator();
        QCOMPARE(shown("Open"), open);
        QCOMPARE(shown("Cancel"), cancel);
        QCOMPARE(translators(), count);
    }
    QCOMPARE(manager().currentLanguageNumber(), number);
    QCOMPARE(QLocale().name(), locale);
    QCOMPARE(changes.count(), 0);
}

void OneProcess::withoutATranslatorReleasingDoesNothing()
{
    manager().releaseCurrentTranslator();
    QCOMPARE(manager().model()->columnCount(), 0);
    QVERIFY(!QFileInfo::exists(m_file));
}

void OneProcess::afterReleasingALanguageIsLoaded()
{
    offer(threeLanguages());
    manager().loadLanguageForApp();
    manager().releaseCurrentTranslator();
    QVERIFY(!manager().changeLanguage(English));
    QCOMPARE(translators(), 0);
    manager().loadLanguageForApp();
    QCOMPARE(translators(), 1);
    QCOMPARE(shown("Open"), QStringLiteral("Open!"));
    manager().releaseCurrentTranslator();
    QVERIFY(manager().changeLanguage(Zulu));
    QCOMPARE(translators(), 1);
    QCOMPARE(shown("Open"), QStringLiteral("Vula"));
}

void OneProcess::anApplicationTakesTheTranslatorsWithIt_data()
{
    QTest::addColumn<unsigned int>("number");
    QTest::addColumn<bool>("released");

    QTest::newRow("one translator") << 1033U << false;
    QTest::newRow("two translators") << 1040U << false;
    QTest::newRow("one, and it is released later") << 1033U << true;
    QTest::newRow("two, and the tracked one is released later") << 1040U << true;
}

void OneProcess::anApplicationTakesTheTranslatorsWithIt()
{
    QFETCH(unsigned int, number);
    QFETCH(bool, released);

    offer(threeLanguages());
    manager().setCurrentLanguageNumber(number);
    manager().loadLanguageForApp();
    std::vector<QPointer<QTranslator>> before;
    const QList<QTranslator*> children = qApp->findChildren<QTranslator*>();
    for (QTranslator* translator : children)
        before.emplace_back(translator);

    m_application.reset();
    for (const QPointer<QTranslator>& translator : before)
        QVERIFY(!translator);
    if (released)
        manager().releaseCurrentTranslator();
    QCOMPARE(manager().currentLanguageNumber(), number);
    QCOMPARE(manager().model()->rowCount(), 3);

    makeApplication();
    QCOMPARE(shown("Open"), QStringLiteral("Open"));
    QVERIFY(manager().changeLanguage(Zulu));
    QCOMPARE(translators(), 1);
    QCOMPARE(shown("Open"), QStringLiteral("Vula"));
    QCOMPARE(shown("Close"), QStringLiteral("Close"));
}

void OneProcess::theProductHasFourLanguages()
{
    manager().loadLanguages();
    QCOMPARE(table(),
             QStringList({"Deutsch|1031|:/translations/vek_de.qm|de",
                          "English|1033|:/translations/vek_en.qm|en",
                          QString::fromUtf8("Français|1036|:/translations/vek_fr.qm|fr"),
                          QString::fromUtf8("日本語|1041|:/translations/vek_ja.qm|ja")}));
}

void OneProcess::withoutAChoiceItIsEnglish()
{
    QCOMPARE(manager().currentLanguageNumber(), 1033U);
    QCOMPARE(manager().settingsAbbrv(), QStringLiteral("en"));
    manager().loadLanguageForApp();
    QCOMPARE(manager().currentLanguageIndex(), 1);
    QCOMPARE(manager().currentLanguageAbbrv(), QStringLiteral("en"));
    QCOMPARE(QLocale().language(), QLocale::English);
    QVERIFY(!QFileInfo::exists(m_file));
}

void OneProcess::theProductsLanguagesAreLoaded_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("abbreviation");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("cancel");
    QTest::addColumn<int>("count");

    QTest::newRow("German") << 0 << "de"
                            << "Deutsch"
                            << "Abbrechen" << 2;
    QTest::newRow("English") << 1 << "en"
                             << "English"
                             << "Cancel" << 1;
    QTest::newRow("French") << 2 << "fr" << QString::fromUtf8("Français") << "Annuler" << 2;
    QTest::newRow("Japanese") << 3 << "ja" << QString::fromUtf8("日本語")
                              << QString::fromUtf8("キャンセル") << 2;
}

void OneProcess::theProductsLanguagesAreLoaded()
{
    QFETCH(int, index);
    QFETCH(QString, abbreviation);
    QFETCH(QString, name);
    QFETCH(QString, cancel);
    QFETCH(int, count);

    manager().setCurrentLanguageNumber(0);
    manager().loadLanguageForApp();
    QVERIFY(manager().changeLanguage(index));
    QCOMPARE(manager().currentLanguageAbbrv(), abbreviation);
    QCOMPARE(manager().settingsAbbrv(), abbreviation);
    QCOMPARE(QCoreApplication::translate(managersContext, "language name"), name);
    QCOMPARE(QCoreApplication::translate("QPlatformTheme", "Cancel"), cancel);
    QCOMPARE(translators(), count);
    QCOMPARE(QLocale(), QLocale(abbreviation));
}

void OneProcess::fromGermanToEnglish()
{
    manager().setCurrentLanguageNumber(1031);
    manager().loadLanguageForApp();
    QVERIFY(manager().changeLanguage(1));
    QCOMPARE(QCoreApplication::translate(managersContext, "language name"),
             QStringLiteral("English"));
    QCOMPARE(QCoreApplication::translate("QPlatformTheme", "Cancel"), QStringLiteral("Cancel"));
    QCOMPARE(translators(), 2); // the product's German and English
}

/// Tells when the manager goes.
int runUntilTheEnd(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    QObject::connect(CLanguageManager::instance(), &QObject::destroyed, [] {
        std::puts("manager");
        std::fflush(stdout);
    });
    std::puts("main");
    std::fflush(stdout);
    return EXIT_SUCCESS;
}

/// Runs the rows of OneProcess.
class tst_LanguageManager : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void eachInAProcessOfItsOwn_data();
    void eachInAProcessOfItsOwn();
    void theManagerGoesWithTheProcess();
};

void tst_LanguageManager::eachInAProcessOfItsOwn_data()
{
    QTest::addColumn<QString>("row");

    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {alone, "-datatags"});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.exitCode(), 0);
    const QList<QByteArray> lines = process.readAllStandardOutput().trimmed().split('\n');
    QVERIFY(lines.size() > 1);
    for (const QByteArray& line : lines) {
        // The class, the function and, if there are any, the row.
        const QString name = QString::fromUtf8(line).section(QLatin1Char(' '), 1, 1);
        const QString tag = QString::fromUtf8(line).section(QLatin1Char(' '), 2);
        const QString row = tag.isEmpty() ? name : name + QLatin1Char(':') + tag;
        QTest::newRow(qUtf8Printable(row)) << row;
    }
}

void tst_LanguageManager::eachInAProcessOfItsOwn()
{
    QFETCH(QString, row);

    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(QCoreApplication::applicationFilePath(), {alone, row});
    QVERIFY(process.waitForFinished(60000));
    const QByteArray output = process.readAllStandardOutput();
    QVERIFY2(process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
             output.constData());
    QVERIFY2(output.contains("\nTotals: 3 passed, 0 failed, 0 skipped"), output.constData());
}

void tst_LanguageManager::theManagerGoesWithTheProcess()
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {untilTheEnd});
    QVERIFY(process.waitForFinished(60000));
    QCOMPARE(process.readAllStandardOutput(), QByteArray("main\nmanager\n"));
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
}

int main(int argc, char* argv[])
{
    if (argc > 1 && qstrcmp(argv[1], untilTheEnd) == 0)
        return runUntilTheEnd(argc, argv);
    if (argc > 1 && qstrcmp(argv[1], alone) == 0) {
        QStringList arguments;
        for (int i = 0; i < argc; ++i) {
            if (i != 1)
                arguments << QString::fromLocal8Bit(argv[i]);
        }
        OneProcess test(argc, argv);
        return QTest::qExec(&test, arguments);
    }

    QCoreApplication application(argc, argv);
    tst_LanguageManager test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_LanguageManager.moc"
