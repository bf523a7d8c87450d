#include "GuiUtils.h"
#include "LanguageManager.h"
#include "SharedUtils.h"

#include "Files.h"
#include "MessageCounter.h"
#include "OrdinaryFileRights.h"
#include "PackedFiles.h"
#include "RecordingLogger.h"

#include <QApplication>
#include <QBuffer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFontDatabase>
#include <QFrame>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QMainWindow>
#include <QProxyStyle>
#include <QRegularExpression>
#include <QResource>
#include <QTemporaryDir>
#include <QTextCodec>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <QtTest>

#include <algorithm>
#include <map>
#include <memory>

using VEK_NAMESPACE::CLanguageManager;
using VEK_NAMESPACE::g_logger;
using VEK_NAMESPACE::loadAppLogoIcon;
using VEK_NAMESPACE::loadFonts;
using VEK_NAMESPACE::reapplyWidgetQss;
using VEK_NAMESPACE::setAppStyleSheet;
using VEK_NAMESPACE::setPredefinedAppStyleSheet;

namespace {

const char sheetBefore[] = "QStatusBar { color: #010203 }";

using Contents = std::map<QString, QByteArray>;

/// While it lives the resource tree has \a files in the place of the library's main tree.
class OtherTree
{
public:
    explicit OtherTree(const Contents& files)
    {
        packFiles(QStringLiteral("/"), files, m_tree);
        qCleanupResources_vek();
        if (!files.empty() && !QResource::registerResource(m_tree))
            qFatal("can't register the files");
    }
    ~OtherTree()
    {
        QResource::unregisterResource(m_tree);
        qInitResources_vek();
    }

private:
    Q_DISABLE_COPY(OtherTree)

    const QTemporaryDir m_folder;
    const QString m_tree = m_folder.filePath("list.rcc");
};

QByteArray picture(int size)
{
    QImage image(size, size, QImage::Format_ARGB32);
    image.fill(Qt::blue);
    QBuffer buffer;
    image.save(&buffer, "PNG");
    return buffer.data();
}

QString logo(int size)
{
    return QStringLiteral("icons/app_icon/logo_%1.png").arg(size);
}

/// The sizes of an icon, in the order in which they were added.
QString sizes(const QIcon& icon)
{
    QStringList texts;
    const QList<QSize> available = icon.availableSizes();
    for (const QSize& size : available)
        texts << QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
    return texts.join(QLatin1Char(' '));
}

/// The families of fonts that aren't among \a before, in the order of their names.
QStringList newFamilies(const QStringList& before)
{
    QStringList families;
    const QStringList all = QFontDatabase().families();
    for (const QString& family : all) {
        if (!before.contains(family))
            families << family;
    }
    families.sort();
    return families;
}

/// How often a widget gets an event.
class EventCounter : public QObject
{
public:
    EventCounter(QWidget& widget, QEvent::Type type)
        : m_type(type)
    {
        widget.installEventFilter(this);
    }

    int count = 0;

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == m_type)
            ++count;
        return QObject::eventFilter(watched, event);
    }

private:
    const QEvent::Type m_type;
};

/// Writes down what happens to a widget.
class RecordingStyle : public QProxyStyle
{
public:
    using QProxyStyle::polish;
    using QProxyStyle::unpolish;

    void polish(QWidget* widget) override { calls << "polish " + widget->objectName(); }
    void unpolish(QWidget* widget) override { calls << "unpolish " + widget->objectName(); }

    QStringList calls;
};

QString textColour(const QWidget& widget)
{
    return widget.palette().color(QPalette::WindowText).name();
}

} // namespace

Q_DECLARE_METATYPE(Contents)

class tst_AppLook : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    // setAppStyleSheet
    void theTextsAreJoined_data();
    void theTextsAreJoined();
    void theSheetIsSetOnce();
    void laterTextsWin();
    void withoutApplicationOrFilesAnAssertionFails_data();
    void withoutApplicationOrFilesAnAssertionFails();
    void withoutALoggerNothingIsSaid();

    // setPredefinedAppStyleSheet
    void theSheetsComeInTheirOrder_data();
    void theSheetsComeInTheirOrder();
    void theProductsSheetsAreSet();
    void withoutApplicationThePredefinedSheetsFailAnAssertion();
    void theCrashReportersSheetLoads();

    // loadAppLogoIcon
    void theLogoHasEightSizes();
    void theLogoIsMadeOfWhatIsThere_data();
    void theLogoIsMadeOfWhatIsThere();
    void withoutALogoTheIconStays_data();
    void withoutALogoTheIconStays();

    // loadFonts
    void theProductsFontsAreKnown();
    void fontsMayBeLoadedTwice();
    void fontsThatCannotBeLoadedArePassedOver_data();
    void fontsThatCannotBeLoadedArePassedOver();

    // reapplyWidgetQss
    void aChangedPropertyTakesEffect_data();
    void aChangedPropertyTakesEffect();
    void aChangedPropertyIsSeen();
    void aWidgetIsUnpolishedAndPolishedAndPainted();
    void aHiddenWidgetIsPolishedToo();
    void aToolBarPointsToWhatItHides_data();
    void aToolBarPointsToWhatItHides();

private:
    const QTemporaryDir m_folder;
    std::unique_ptr<RecordingLogger> m_logger;
    QIcon m_iconBefore;
};

void tst_AppLook::initTestCase()
{
    QVERIFY(takeOrdinaryFileRights());
    // Sheets are UTF-8, whatever the locale's encoding is.
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_folder.filePath("configuration")));
    const Contents files = {
        {"label.qss", "QLabel { color: #112233 }"},
        {"frame.qss", "QFrame { color: #445566 }"},
        {"other label.qss", "QLabel { color: #778899 }"},
        {"empty.qss", ""},
        {"lines.qss", "QLabel {\r\n}\n"},
        {"zero.qss", QByteArray("QLabel { }\0QFrame { }", 21)},
        {"zero first.qss", QByteArray("\0QFrame { }", 11)},
        {"mark.qss", "\xEF\xBB\xBFQLabel { }"},
        {"not ASCII.qss", "#Größe { } /* 日本語 */"},
        {"not UTF-8.qss", "QLabel { } /* \xFC */"},
        {"half a letter.qss", "/* \xC3"},
        {"the other half.qss", "\xA9 */"},
        {"secret.qss", "QSlider { }"},
        {"folder/inner.qss", "QSlider { }"},
    };
    for (const auto& file : files)
        QVERIFY(writeFile(m_folder.filePath(file.first), file.second));
    QVERIFY(QFile::setPermissions(m_folder.filePath("secret.qss"), QFile::WriteOwner));

    m_iconBefore = QIcon(QPixmap::fromImage(QImage::fromData(picture(5))));
    CLanguageManager::instance()->createLanguageModel({"Deutsch", "Français"}, {"1031", "1036"},
                                                      {QString(), QString()}, {"de", "fr"});
}

void tst_AppLook::init()
{
    m_logger.reset(new RecordingLogger);
    CLanguageManager::instance()->setCurrentLanguageNumber(1033); // which isn't in the table
    qApp->setStyleSheet(QLatin1String(sheetBefore));
    QApplication::setWindowIcon(m_iconBefore);
}

void tst_AppLook::cleanup()
{
    QCOMPARE(m_logger->takeLines(), QStringList());
    m_logger.reset();
    qApp->setStyleSheet(QString());
    QFontDatabase::removeAllApplicationFonts();
}

void tst_AppLook::theTextsAreJoined_data()
{
    QTest::addColumn<QStringList>("files"); // in the folder
    QTest::addColumn<QStringList>("loaded");
    QTest::addColumn<QString>("sheet");

    const auto row = [](const char* name, const QStringList& files, const QStringList& loaded,
                        const QString& sheet) { QTest::newRow(name) << files << loaded << sheet; };
    const QStringList none;

    row("one file", {"label.qss"}, {"label.qss"}, "QLabel { color: #112233 }");
    row("two files, with nothing between them", {"label.qss", "frame.qss"},
        {"label.qss", "frame.qss"}, "QLabel { color: #112233 }QFrame { color: #445566 }");
    row("in their order", {"frame.qss", "label.qss"}, {"frame.qss", "label.qss"},
        "QFrame { color: #445566 }QLabel { color: #112233 }");
    row("one file twice", {"frame.qss", "frame.qss"}, {"frame.qss", "frame.qss"},
        "QFrame { color: #445566 }QFrame { color: #445566 }");
    row("a missing one between two", {"label.qss", "missing.qss", "frame.qss"},
        {"label.qss", "frame.qss"}, "QLabel { color: #112233 }QFrame { color: #445566 }");
    row("one that may not be read", {"secret.qss", "frame.qss"}, {"frame.qss"},
        "QFrame { color: #445566 }");
    row("a folder", {"folder", "frame.qss"}, {"frame.qss"}, "QFrame { color: #445566 }");
    row("empty names", {"", "label.qss", "", "frame.qss", ""}, {"label.qss", "frame.qss"},
        "QLabel { color: #112233 }QFrame { color: #445566 }");
    row("an empty file counts", {"empty.qss", "frame.qss"}, {"empty.qss", "frame.qss"},
        "QFrame { color: #445566 }");

    row("only a missing file", {"missing.qss"}, none, "");
    row("only an empty name", {""}, none, "");
    row("only an empty file", {"empty.qss"}, {"empty.qss"}, "");

    row("line ends stay", {"lines.qss"}, {"lines.qss"}, "QLabel {\r\n}\n");
    row("the text ends at a zero byte", {"zero.qss", "frame.qss"}, {"zero.qss", "frame.qss"},
        "QLabel { }QFrame { color: #445566 }");
    row("a zero byte at the start", {"zero first.qss", "frame.qss"},
        {"zero first.qss", "frame.qss"}, "QFrame { color: #445566 }");
    row("a byte order mark is dropped", {"frame.qss", "mark.qss"}, {"frame.qss", "mark.qss"},
        "QFrame { color: #445566 }QLabel { }");
    row("not ASCII", {"not ASCII.qss"}, {"not ASCII.qss"},
        QString::fromUtf8("#Größe { } /* 日本語 */"));
    row("not UTF-8", {"not UTF-8.qss"}, {"not UTF-8.qss"},
        QStringLiteral("QLabel { } /* \uFFFD */"));
    row("a letter over two files is none", {"half a letter.qss", "the other half.qss"},
        {"half a letter.qss", "the other half.qss"}, QStringLiteral("/* \uFFFD\uFFFD */"));
}

void tst_AppLook::theTextsAreJoined()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, loaded);
    QFETCH(QString, sheet);

    const auto inFolder = [this](const QString& name) {
        return name.isEmpty() ? name : m_folder.filePath(name);
    };
    std::transform(files.begin(), files.end(), files.begin(), inFolder);
    std::transform(loaded.begin(), loaded.end(), loaded.begin(), inFolder);

    MessageCounter messages;
    QCOMPARE(setAppStyleSheet(files, qApp), loaded);
    QCOMPARE(qApp->styleSheet(), sheet);
    QCOMPARE(messages.count(), 0);
}

void tst_AppLook::theSheetIsSetOnce()
{
    QLabel label;
    label.ensurePolished();
    EventCounter changes(label, QEvent::StyleChange);
    setAppStyleSheet({m_folder.filePath("label.qss"), m_folder.filePath("frame.qss"),
                      m_folder.filePath("empty.qss")},
                     qApp);
    QCOMPARE(changes.count, 1);
}

void tst_AppLook::laterTextsWin()
{
    QLabel label;
    label.ensurePolished();
    setAppStyleSheet({m_folder.filePath("label.qss"), m_folder.filePath("other label.qss")}, qApp);
    QCOMPARE(textColour(label), QStringLiteral("#778899"));
    setAppStyleSheet({m_folder.filePath("other label.qss"), m_folder.filePath("label.qss")}, qApp);
    QCOMPARE(textColour(label), QStringLiteral("#112233"));
}

void tst_AppLook::withoutApplicationOrFilesAnAssertionFails_data()
{
    QTest::addColumn<bool>("hasApplication");
    QTest::addColumn<bool>("hasFiles");

    QTest::newRow("no application") << false << true;
    QTest::newRow("no files") << true << false;
    QTest::newRow("neither") << false << false;
}

void tst_AppLook::withoutApplicationOrFilesAnAssertionFails()
{
    QFETCH(bool, hasApplication);
    QFETCH(bool, hasFiles);

    const QStringList files =
        hasFiles ? QStringList(m_folder.filePath("label.qss")) : QStringList();
    QCOMPARE(setAppStyleSheet(files, hasApplication ? qApp : nullptr), QStringList());
    QCOMPARE(qApp->styleSheet(), QLatin1String(sheetBefore));

    const QStringList lines = m_logger->takeLines();
    QCOMPARE(lines.size(), 1);
    const QRegularExpression line(
        QStringLiteral("^E ASSERT in .*PluginShell/modules/utilsDll/SharedUtils\\.cpp [0-9]+$"));
    QVERIFY2(line.match(lines.first()).hasMatch(), qPrintable(lines.first()));
}

void tst_AppLook::withoutALoggerNothingIsSaid()
{
    g_logger = nullptr;
    MessageCounter messages;
    QCOMPARE(setAppStyleSheet({}, qApp), QStringList());
    QCOMPARE(setAppStyleSheet({m_folder.filePath("label.qss")}, nullptr), QStringList());
    QCOMPARE(qApp->styleSheet(), QLatin1String(sheetBefore));
    QCOMPARE(messages.count(), 0);
}

void tst_AppLook::theSheetsComeInTheirOrder_data()
{
    QTest::addColumn<Contents>("others"); // beside the five
    QTest::addColumn<unsigned int>("language");
    QTest::addColumn<QString>("mainSheet");
    QTest::addColumn<QString>("sheet");

    const unsigned int none = 1033;
    const unsigned int german = 1031;
    const unsigned int french = 1036;
    const Contents extra = {{"qss/extra-mac-de.qss", "/*de*/"}};
    const auto row = [](const char* name, const Contents& others, unsigned int language,
                        const QString& mainSheet, const char* sheet) {
        QTest::newRow(name) << others << language << mainSheet << QString::fromLatin1(sheet);
    };

    row("the five carried ones", {}, none, QString(),
        "/*custom*//*slider*//*settings*//*message_box*//*mac*/");
    row("with an empty text for the main sheet", {}, none, QLatin1String(""),
        "/*custom*//*slider*//*settings*//*message_box*//*mac*/");
    row("a file of the caller's in the first one's place", {}, none, m_folder.filePath("empty.qss"),
        "/*slider*//*settings*//*message_box*//*mac*/");
    row("a resource of the caller's in the first one's place", {{"qss/win.qss", "/*win*/"}}, none,
        ":/qss/win.qss", "/*win*//*slider*//*settings*//*message_box*//*mac*/");
    row("a missing one in the first one's place", {}, none, m_folder.filePath("missing.qss"),
        "/*slider*//*settings*//*message_box*//*mac*/");
    row("the Windows sheet is left out", {{"qss/win.qss", "/*win*/"}}, none, QString(),
        "/*custom*//*slider*//*settings*//*message_box*//*mac*/");
    row("the language's comes last", extra, german, QString(),
        "/*custom*//*slider*//*settings*//*message_box*//*mac*//*de*/");
    row("a caller's and the language's", {{"qss/win.qss", "/*win*/"}, *extra.begin()}, german,
        ":/qss/win.qss", "/*win*//*slider*//*settings*//*message_box*//*mac*//*de*/");
    row("another language's is left out", extra, french, QString(),
        "/*custom*//*slider*//*settings*//*message_box*//*mac*/");
    row("no language has an empty abbreviation", {{"qss/extra-mac-.qss", "/*none*/"}}, none,
        QString(), "/*custom*//*slider*//*settings*//*message_box*//*mac*//*none*/");
}

void tst_AppLook::theSheetsComeInTheirOrder()
{
    QFETCH(Contents, others);
    QFETCH(unsigned int, language);
    QFETCH(QString, mainSheet);
    QFETCH(QString, sheet);

    Contents files = {{"qss/custom.qss", "/*custom*/"},
                      {"qss/slider.qss", "/*slider*/"},
                      {"qss/settings.qss", "/*settings*/"},
                      {"qss/message_box.qss", "/*message_box*/"},
                      {"qss/mac.qss", "/*mac*/"}};
    files.insert(others.begin(), others.end());
    const OtherTree tree(files);
    CLanguageManager::instance()->setCurrentLanguageNumber(language);

    MessageCounter messages;
    setPredefinedAppStyleSheet(mainSheet, qApp);
    QCOMPARE(qApp->styleSheet(), sheet);
    QCOMPARE(messages.count(), 0);
}

void tst_AppLook::theProductsSheetsAreSet()
{
    QString sheet;
    for (const char* name : {"custom", "slider", "settings", "message_box", "mac"}) {
        const QByteArray text = readFile(QStringLiteral(":/qss/%1.qss").arg(QLatin1String(name)));
        QVERIFY2(text.contains('{'), name);
        sheet += QString::fromUtf8(text);
    }
    MessageCounter messages;
    setPredefinedAppStyleSheet(QString(), qApp);
    QCOMPARE(qApp->styleSheet(), sheet);
    QCOMPARE(messages.count(), 0);
}

void tst_AppLook::withoutApplicationThePredefinedSheetsFailAnAssertion()
{
    setPredefinedAppStyleSheet(QString(), nullptr);
    QCOMPARE(m_logger->takeLines().size(), 1);
    QCOMPARE(qApp->styleSheet(), QLatin1String(sheetBefore));
}

void tst_AppLook::theCrashReportersSheetLoads()
{
    const QString name = ":/qss/crash_sender.qss";
    QCOMPARE(setAppStyleSheet({name}, qApp), QStringList(name));
    QVERIFY(!qApp->styleSheet().isEmpty());
    QCOMPARE(qApp->styleSheet(), QString::fromUtf8(readFile(name)));
}

void tst_AppLook::theLogoHasEightSizes()
{
    QVERIFY(loadAppLogoIcon());
    const QString expected = "16x16 32x32 48x48 96x96 128x128 256x256 512x512 1024x1024";
    QCOMPARE(sizes(QApplication::windowIcon()), expected);
    const QWidget window;
    QCOMPARE(sizes(window.windowIcon()), expected);
}

void tst_AppLook::theLogoIsMadeOfWhatIsThere_data()
{
    QTest::addColumn<Contents>("files");
    QTest::addColumn<QString>("expected");

    QTest::newRow("the smallest") << Contents{{logo(16), picture(16)}} << "16x16";
    QTest::newRow("the largest") << Contents{{logo(1024), picture(1024)}} << "1024x1024";
    QTest::newRow("pictures of other sizes than their names")
        << Contents{{logo(32), picture(20)}, {logo(512), picture(7)}} << "20x20 7x7";
    QTest::newRow("files that are no pictures")
        << Contents{{logo(32), "none"}, {logo(48), picture(48)}, {logo(96), ""}} << "48x48";
    QTest::newRow("sizes that aren't the logo's")
        << Contents{{logo(24), picture(24)}, {logo(64), picture(64)}, {logo(128), picture(128)}}
        << "128x128";
}

void tst_AppLook::theLogoIsMadeOfWhatIsThere()
{
    QFETCH(Contents, files);
    QFETCH(QString, expected);

    const OtherTree tree(files);
    MessageCounter messages;
    QVERIFY(loadAppLogoIcon());
    QCOMPARE(sizes(QApplication::windowIcon()), expected);
    QCOMPARE(messages.count(), 0);
}

void tst_AppLook::withoutALogoTheIconStays_data()
{
    QTest::addColumn<Contents>("files");

    QTest::newRow("no files") << Contents();
    QTest::newRow("files that are no pictures") << Contents{{logo(16), "none"}, {logo(32), ""}};
    QTest::newRow("another size") << Contents{{logo(64), picture(64)}};
}

void tst_AppLook::withoutALogoTheIconStays()
{
    QFETCH(Contents, files);

    const OtherTree tree(files);
    MessageCounter messages;
    QVERIFY(!loadAppLogoIcon());
    QCOMPARE(sizes(QApplication::windowIcon()), QStringLiteral("5x5"));
    QCOMPARE(messages.count(), 0);
}

void tst_AppLook::theProductsFontsAreKnown()
{
    const QStringList before = QFontDatabase().families();
    MessageCounter messages;
    loadFonts();
    QCOMPARE(newFamilies(before),
             QStringList({"MavenPro-Medium", "MavenProLight300", "OpenSansLight", "RobotoBold",
                          "RobotoLight", "RobotoMedium", "RobotoRegular"}));
    QCOMPARE(messages.count(), 0);

    QStringList inOrder;
    for (int font = 0; font < 7; ++font)
        inOrder << QFontDatabase::applicationFontFamilies(font);
    QCOMPARE(inOrder,
             QStringList({"MavenProLight300", "MavenPro-Medium", "OpenSansLight", "RobotoBold",
                          "RobotoLight", "RobotoRegular", "RobotoMedium"}));
}

void tst_AppLook::fontsMayBeLoadedTwice()
{
    loadFonts();
    const QStringList once = QFontDatabase().families();
    MessageCounter messages;
    loadFonts();
    QCOMPARE(QFontDatabase().families(), once);
    QCOMPARE(messages.count(), 0);
}

void tst_AppLook::fontsThatCannotBeLoadedArePassedOver_data()
{
    QTest::addColumn<Contents>("files");
    QTest::addColumn<QStringList>("expected");

    const QByteArray font = readFile(":/fonts/Roboto-Medium.ttf");
    QTest::newRow("no fonts") << Contents() << QStringList();
    QTest::newRow("the last one alone")
        << Contents{{"fonts/Roboto-Medium.ttf", font}} << QStringList("RobotoMedium");
    QTest::newRow("bad ones before the last")
        << Contents{{"fonts/MavenProLight-300.otf", "no font"},
                    {"fonts/Roboto-Bold.ttf", ""},
                    {"fonts/Roboto-Medium.ttf", font}}
        << QStringList("RobotoMedium");
    QTest::newRow("a font that isn't the product's")
        << Contents{{"fonts/Roboto-Thin.ttf", font}} << QStringList();
}

void tst_AppLook::fontsThatCannotBeLoadedArePassedOver()
{
    QFETCH(Contents, files);
    QFETCH(QStringList, expected);

    const OtherTree tree(files);
    const QStringList before = QFontDatabase().families();
    MessageCounter messages;
    loadFonts();
    QCOMPARE(newFamilies(before), expected);
    QCOMPARE(messages.count(), 0);
}

void tst_AppLook::aChangedPropertyTakesEffect_data()
{
    QTest::addColumn<QString>("place");

    QTest::newRow("a sheet of the widget's") << "widget";
    QTest::newRow("a sheet of its parent's") << "parent";
    QTest::newRow("the application's sheet") << "application";
}

void tst_AppLook::aChangedPropertyTakesEffect()
{
    QFETCH(QString, place);

    QFrame parent;
    auto* label = new QLabel(QStringLiteral("Text"), &parent);
    const QString sheet = "QLabel { color: #112233 } QLabel[state=\"on\"] { color: #778899 }";
    if (place == "widget")
        label->setStyleSheet(sheet);
    else if (place == "parent")
        parent.setStyleSheet(sheet);
    else
        qApp->setStyleSheet(sheet);
    label->ensurePolished();
    QCOMPARE(textColour(*label), QStringLiteral("#112233"));

    label->setProperty("state", "on");
    QCOMPARE(textColour(*label), QStringLiteral("#112233"));
    reapplyWidgetQss(*label);
    QCOMPARE(textColour(*label), QStringLiteral("#778899"));

    label->setProperty("state", "off");
    reapplyWidgetQss(*label);
    QCOMPARE(textColour(*label), QStringLiteral("#112233"));
}

void tst_AppLook::aChangedPropertyIsSeen()
{
    QFrame frame;
    frame.setFixedSize(40, 40);
    frame.setStyleSheet(
        "QFrame { background: #112233 } QFrame[state=\"on\"] { background: #778899 }");
    const auto ground = [&frame] { return frame.grab().toImage().pixelColor(20, 20).name(); };
    QCOMPARE(ground(), QStringLiteral("#112233"));
    frame.setProperty("state", "on");
    reapplyWidgetQss(frame);
    QCOMPARE(ground(), QStringLiteral("#778899"));
}

void tst_AppLook::aWidgetIsUnpolishedAndPolishedAndPainted()
{
    qApp->setStyleSheet(QString());
    RecordingStyle style;
    QWidget window;
    window.setObjectName("window");
    auto* child = new QWidget(&window);
    child->setObjectName("child");
    window.setStyle(&style);
    child->setStyle(&style);
    window.resize(100, 100);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    EventCounter paints(*child, QEvent::Paint);
    EventCounter otherPaints(window, QEvent::Paint);
    QCoreApplication::processEvents();
    paints.count = otherPaints.count = 0;
    QCoreApplication::processEvents();
    QCOMPARE(paints.count, 0);
    style.calls.clear();

    reapplyWidgetQss(*child);
    QCOMPARE(style.calls, QStringList({"unpolish child", "polish child"}));
    QCOMPARE(paints.count, 0); // it is asked for, not done
    QTRY_COMPARE(paints.count, 1);
    QCOMPARE(style.calls, QStringList({"unpolish child", "polish child"}));
}

void tst_AppLook::aHiddenWidgetIsPolishedToo()
{
    qApp->setStyleSheet(QString());
    RecordingStyle style;
    QWidget widget;
    widget.setObjectName("widget");
    widget.setStyle(&style);
    style.calls.clear();
    reapplyWidgetQss(widget);
    QCOMPARE(style.calls, QStringList({"unpolish widget", "polish widget"}));
    QVERIFY(!widget.isVisible());
}

/// What is brighter than the ground in a part of a picture.
QRect inkIn(const QImage& image, const QRect& part)
{
    QRegion ink;
    for (int y = part.top(); y <= part.bottom(); ++y) {
        for (int x = part.left(); x <= part.right(); ++x) {
            if (image.pixelColor(x, y).lightness() > 60)
                ink += QRect(x, y, 1, 1);
        }
    }
    return ink.boundingRect();
}

void tst_AppLook::aToolBarPointsToWhatItHides_data()
{
    QTest::addColumn<Qt::ToolBarArea>("area");
    QTest::addColumn<Qt::LayoutDirection>("direction");
    QTest::addColumn<QPoint>("way"); // the signs of the way from the arrow's ends to its tip
    QTest::newRow("to the right") << Qt::TopToolBarArea << Qt::LeftToRight << QPoint(1, 0);
    QTest::newRow("to the left") << Qt::TopToolBarArea << Qt::RightToLeft << QPoint(-1, 0);
    QTest::newRow("downwards") << Qt::LeftToolBarArea << Qt::LeftToRight << QPoint(0, 1);
    QTest::newRow("downwards from the right")
        << Qt::RightToolBarArea << Qt::RightToLeft << QPoint(0, 1);
}

void tst_AppLook::aToolBarPointsToWhatItHides()
{
    QFETCH(Qt::ToolBarArea, area);
    QFETCH(Qt::LayoutDirection, direction);
    QFETCH(QPoint, way);
    setPredefinedAppStyleSheet(QString(), qApp);
    QMainWindow window;
    window.setLayoutDirection(direction);
    auto* toolBar = new QToolBar(&window);
    for (int i = 0; i < 40; ++i)
        toolBar->addAction(QStringLiteral("More"));
    window.addToolBar(area, toolBar);
    window.resize(200, 200);
    window.show();

    auto* extension = toolBar->findChild<QToolButton*>(QStringLiteral("qt_toolbar_ext_button"));
    QVERIFY(extension);
    QTRY_VERIFY(extension->isVisible());
    const bool isHorizontal = way.y() == 0;
    const auto seen = [&] {
        const QImage image =
            window.grab(QRect(extension->mapTo(&window, QPoint()), extension->size())).toImage();
        const QRect arrow = inkIn(image, image.rect());
        const QRect across(arrow.left(), arrow.center().y() - 1, arrow.width(), 3);
        const QRect along(arrow.center().x() - 1, arrow.top(), 3, arrow.height());
        const QRect firstRow(arrow.topLeft(), QSize(arrow.width(), 1));
        const QRect firstColumn(arrow.topLeft(), QSize(1, arrow.height()));
        const QPoint tip = inkIn(image, isHorizontal ? across : along).center();
        const QPoint end = inkIn(image, isHorizontal ? firstRow : firstColumn).center();
        return tip - end;
    };
    if (isHorizontal)
        QTRY_VERIFY2(seen().x() * way.x() > 1, qPrintable(QString::number(seen().x())));
    else
        QTRY_VERIFY2(seen().y() * way.y() > 1, qPrintable(QString::number(seen().y())));
}

QTEST_MAIN(tst_AppLook)

#include "tst_AppLook.moc"
