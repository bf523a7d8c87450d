#include "MessageCounter.h"
#include "UtilsDllGlobal.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDateTimeEdit>
#include <QDialog>
#include <QDockWidget>
#include <QDoubleSpinBox>
#include <QFile>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMainWindow>
#include <QMap>
#include <QMenu>
#include <QMenuBar>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScrollBar>
#include <QSizeGrip>
#include <QSlider>
#include <QSpinBox>
#include <QSplitter>
#include <QStatusBar>
#include <QStyleFactory>
#include <QTabWidget>
#include <QTableWidget>
#include <QTextEdit>
#include <QToolBar>
#include <QToolButton>
#include <QTreeWidget>
#include <QtTest>

#include <algorithm>
#include <iterator>
#include <memory>

namespace {

const char commonHeading[] = "COMMON CONTROLS STYLE";
const char specificHeading[] = "SPECIFIC CONTROLS STYLE";

struct Rule
{
    QStringList selectors;
    QList<QPair<QString, QString>> declarations;
    int half = 0; ///< how many of the two headings stand before it
};

struct Sheet
{
    QList<Rule> rules;
    QStringList headings; ///< those of the two that were met, in order
    QString error; ///< empty for a sheet that is whole
};

/// Cuts at a mark that stands in no string and in no bracket.
QStringList cut(const QString& text, QChar mark)
{
    QStringList parts(QString{});
    bool inString = false;
    int depth = 0;
    for (const QChar c : text) {
        if (c == QLatin1Char('"'))
            inString = !inString;
        else if (!inString && QStringLiteral("([").contains(c))
            ++depth;
        else if (!inString && QStringLiteral(")]").contains(c))
            --depth;
        if (c == mark && !inString && depth == 0)
            parts.append(QString());
        else
            parts.last().append(c);
    }
    for (QString& part : parts)
        part = part.simplified();
    return parts;
}

Rule ruleOf(const QString& selectors, const QString& block, int half, QString* error)
{
    Rule rule;
    rule.half = half;
    rule.selectors = cut(selectors, QLatin1Char(','));
    if (rule.selectors.contains(QString()))
        *error = QStringLiteral("an empty selector before {%1}").arg(block);
    QStringList declarations = cut(block, QLatin1Char(';'));
    if (!declarations.takeLast().isEmpty())
        *error = QStringLiteral("no semicolon at the end of {%1}").arg(block);
    if (declarations.isEmpty())
        *error = QStringLiteral("nothing in the block of %1").arg(selectors.simplified());
    for (const QString& declaration : qAsConst(declarations)) {
        const int colon = declaration.indexOf(QLatin1Char(':'));
        if (colon < 1 || colon == declaration.size() - 1)
            *error = QStringLiteral("not a declaration: %1").arg(declaration);
        rule.declarations.append(
            {declaration.left(colon).trimmed(), declaration.mid(colon + 1).trimmed()});
    }
    return rule;
}

/// Takes a sheet apart by comments, strings and braces alone.
Sheet scan(const QString& text)
{
    Sheet sheet;
    QString selectors;
    QString block;
    bool inString = false;
    bool inBlock = false;
    for (int i = 0; i < text.size(); ++i) {
        const QChar c = text.at(i);
        QString& part = inBlock ? block : selectors;
        if (!inString && text.midRef(i, 2) == QLatin1String("/*")) {
            const int end = text.indexOf(QLatin1String("*/"), i + 2);
            if (end < 0) {
                sheet.error = QStringLiteral("a comment without an end");
                return sheet;
            }
            const QString comment = text.mid(i, end - i);
            if (comment.contains(QLatin1String(specificHeading)))
                sheet.headings.append(QLatin1String(specificHeading));
            else if (comment.contains(QLatin1String(commonHeading)))
                sheet.headings.append(QLatin1String(commonHeading));
            i = end + 1;
        } else if (c == QLatin1Char('"')) {
            inString = !inString;
            part.append(c);
        } else if (!inString && c == QLatin1Char('{')) {
            if (inBlock)
                sheet.error = QStringLiteral("a block in the block of %1").arg(selectors);
            inBlock = true;
        } else if (!inString && c == QLatin1Char('}')) {
            if (!inBlock)
                sheet.error = QStringLiteral("a brace too many after %1").arg(selectors);
            sheet.rules.append(ruleOf(selectors, block, sheet.headings.size(), &sheet.error));
            selectors.clear();
            block.clear();
            inBlock = false;
        } else {
            part.append(c);
        }
    }
    if (inString || inBlock || !selectors.trimmed().isEmpty())
        sheet.error = QStringLiteral("an end in the middle of a rule");
    return sheet;
}

QString textOf(const QString& name)
{
    QFile file(QStringLiteral(":/qss/%1.qss").arg(name));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

/// What the sheet says about exactly this selector; empty if nothing.
QString valueOf(const Sheet& sheet, const QString& selector, const QString& property)
{
    QString value;
    for (const Rule& rule : sheet.rules) {
        if (!rule.selectors.contains(selector))
            continue;
        for (const auto& declaration : rule.declarations) {
            if (declaration.first == property)
                value = declaration.second;
        }
    }
    return value;
}

QStringList matches(const QString& text, const char* pattern)
{
    QStringList found;
    QRegularExpressionMatchIterator it =
        QRegularExpression(QLatin1String(pattern)).globalMatch(text);
    while (it.hasNext())
        found.append(it.next().captured(1));
    return found;
}

void addSheetRows()
{
    QTest::addColumn<QString>("name");
    for (const char* name :
         {"custom", "slider", "settings", "message_box", "mac", "win", "crash_sender"})
        QTest::newRow(name) << QString::fromLatin1(name);
}

/// The application's sheet while it lives.
class ApplicationSheet
{
public:
    explicit ApplicationSheet(const QString& text) { qApp->setStyleSheet(text); }
    ~ApplicationSheet() { qApp->setStyleSheet(QString()); }

private:
    Q_DISABLE_COPY(ApplicationSheet)
};

/// A main window with a dock, bars and menus, and every plain control in its middle.
std::unique_ptr<QMainWindow> windowOfPlainControls()
{
    auto window = std::make_unique<QMainWindow>();
    QMenu* menu = window->menuBar()->addMenu(QStringLiteral("File"));
    menu->addAction(QStringLiteral("Open"))->setCheckable(true);
    QToolBar* toolBar = window->addToolBar(QStringLiteral("Tools"));
    for (int i = 0; i < 40; ++i)
        toolBar->addAction(QStringLiteral("Tool"));
    window->statusBar()->showMessage(QStringLiteral("Ready"));
    auto* dock = new QDockWidget(QStringLiteral("Dock"));
    dock->setWidget(new QTextEdit);
    window->addDockWidget(Qt::RightDockWidgetArea, dock);

    auto* tree = new QTreeWidget;
    tree->setHeaderLabels({QStringLiteral("Name"), QStringLiteral("Size")});
    auto* item = new QTreeWidgetItem(tree, {QStringLiteral("A"), QStringLiteral("1")});
    new QTreeWidgetItem(item, {QStringLiteral("B"), QStringLiteral("2")});
    auto* list = new QListWidget;
    list->addItems({QStringLiteral("A"), QStringLiteral("B")});
    auto* combo = new QComboBox;
    combo->addItems({QStringLiteral("A"), QStringLiteral("B")});
    auto* group = new QGroupBox(QStringLiteral("Group"));
    group->setCheckable(true);
    auto* arrow = new QToolButton;
    arrow->setArrowType(Qt::LeftArrow);
    auto* line = new QFrame;
    line->setFrameShape(QFrame::HLine);

    auto* tabs = new QTabWidget;
    tabs->setTabsClosable(true);
    auto* splitter = new QSplitter;
    splitter->addWidget(tabs);
    window->setCentralWidget(splitter);
    for (QWidget* control :
         std::initializer_list<QWidget*>{new QLabel(QStringLiteral("Text")),
                                         new QLineEdit(QStringLiteral("Text")),
                                         combo,
                                         new QCheckBox(QStringLiteral("Check")),
                                         new QRadioButton(QStringLiteral("Radio")),
                                         new QPushButton(QStringLiteral("Push")),
                                         arrow,
                                         new QSpinBox,
                                         new QDoubleSpinBox,
                                         new QDateTimeEdit,
                                         new QSlider(Qt::Horizontal),
                                         new QSlider(Qt::Vertical),
                                         new QProgressBar,
                                         new QScrollBar(Qt::Horizontal),
                                         new QScrollBar(Qt::Vertical),
                                         group,
                                         list,
                                         tree,
                                         new QTableWidget(20, 20),
                                         new QPlainTextEdit,
                                         new QSizeGrip(nullptr),
                                         line,
                                         new QDialog})
        tabs->addTab(control, QString::fromLatin1(control->metaObject()->className()));
    return window;
}

} // namespace

class tst_StyleSheetRules : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void sheetIsWhole_data() { addSheetRows(); }
    void sheetIsWhole();
    void numberOfRules_data();
    void numberOfRules();
    void mainSheetHasTwoHalves();
    void fixedValue_data();
    void fixedValue();
    void coloursAreThoseOfThePalette_data() { addSheetRows(); }
    void coloursAreThoseOfThePalette();
    void imagesExist_data() { addSheetRows(); }
    void imagesExist();
    void nothingIsSaidTwice_data() { addSheetRows(); }
    void nothingIsSaidTwice();
    void controlsAreDressedWithoutAMessage_data();
    void controlsAreDressedWithoutAMessage();
};

/// The library registers its tree when it is loaded; that it is asked keeps it linked.
void tst_StyleSheetRules::initTestCase()
{
    QVERIFY(qInitResources_vek() != 0);
}

void tst_StyleSheetRules::sheetIsWhole()
{
    QFETCH(QString, name);
    const Sheet sheet = scan(textOf(name));
    QCOMPARE(sheet.error, QString());
    QVERIFY(!sheet.rules.isEmpty());
}

void tst_StyleSheetRules::numberOfRules_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("rules");
    QTest::newRow("main sheet") << QStringLiteral("custom") << 310;
    QTest::newRow("settings dock") << QStringLiteral("settings") << 91;
    QTest::newRow("macOS") << QStringLiteral("mac") << 2;
    QTest::newRow("Windows") << QStringLiteral("win") << 2;
}

void tst_StyleSheetRules::numberOfRules()
{
    QFETCH(QString, name);
    QFETCH(int, rules);
    QCOMPARE(scan(textOf(name)).rules.size(), rules);
}

void tst_StyleSheetRules::mainSheetHasTwoHalves()
{
    const Sheet sheet = scan(textOf(QStringLiteral("custom")));
    QCOMPARE(sheet.headings,
             QStringList({QStringLiteral("COMMON CONTROLS STYLE"),
                          QStringLiteral("SPECIFIC CONTROLS STYLE")}));
    QMap<QString, int> halves;
    for (const Rule& rule : sheet.rules) {
        for (const QString& selector : rule.selectors)
            halves.insert(selector, rule.half);
    }
    for (const char* plain :
         {"QWidget", "QToolTip", "QToolButton", "QCheckBox", "QMenu", "QMenu::item", "QMenuBar",
          "QScrollBar", "QToolBar", "QPushButton", "QComboBox", "QSpinBox", "QLabel", "QDialog"})
        QVERIFY2(halves.value(QString::fromLatin1(plain)) == 1, plain);
    for (const char* specific :
         {"QFrame#bottomPanel", "QMainWindow::separator", "#recentFilesBrowser QListView",
          "QPushButton#saveButton", "#cropPanel QCheckBox", "CPreferencesDlg #wBackgroundWidget",
          "QFrame#panelWidget QComboBox", "CCafDialog QTreeView",
          "CCheckForUpdateDialog #stateIcon", "QFrame#photoshopBar", "CAboutDlg QMenu",
          "CFileSaveDialog QMenu", "CPreferencesDlg QMenu", "CCafDialog QMenu",
          "QColorDialog QPushButton", "CAboutDlg #lbVisitVekPatentsPage",
          "CFileSaveDialog QProgressBar", "CFileSaveDialog #errorWidget"})
        QVERIFY2(halves.value(QString::fromLatin1(specific)) == 2, specific);
}

void tst_StyleSheetRules::fixedValue_data()
{
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QString>("selector");
    QTest::addColumn<QString>("property");
    QTest::addColumn<QString>("value");
    const auto row = [](const char* sheet, const char* selector, const char* property,
                        const char* value) {
        QTest::newRow(qPrintable(
            QStringLiteral("%1: %2 has %3")
                .arg(QLatin1String(sheet), QLatin1String(selector), QLatin1String(property))))
            << QString::fromLatin1(sheet) << QString::fromLatin1(selector)
            << QString::fromLatin1(property) << QString::fromLatin1(value);
    };
    const auto states = [&row](const char* sheet, const char* selector, const char* ground,
                               const char* hover, const char* pressed) {
        row(sheet, selector, "background-color", ground);
        row(sheet, qPrintable(QLatin1String(selector) + QStringLiteral(":hover")),
            "background-color", hover);
        row(sheet, qPrintable(QLatin1String(selector) + QStringLiteral(":pressed")),
            "background-color", pressed);
    };

    row("custom", "QWidget", "background-color", "#1b1b1b");
    row("custom", "QToolTip", "color", "#cbcbcb");
    row("custom", "QToolTip", "font-size", "10px");
    row("custom", "QToolTip", "background-color", "black");
    row("custom", "QToolTip", "border", "1px solid #777777");
    row("custom", "QToolTip", "min-height", "16px");
    row("custom", "QToolTip", "max-height", "16px");
    row("custom", "QToolTip", "font-family", "\"ArialRegular\"");
    row("custom", "QToolButton", "border", "none");
    row("custom", "QToolButton", "background", "none");
    row("custom", "QCheckBox", "font-size", "13px");
    row("custom", "QCheckBox", "color", "#ababab");
    for (const char* state : {"unchecked", "checked", "partial"}) {
        const QString indicator = QStringLiteral("QCheckBox::indicator:")
            + QLatin1String(qstrcmp(state, "partial") == 0 ? "indeterminate" : state);
        const auto image = [state](const char* form) {
            return QStringLiteral("url(\":/icons/checkBox/%1_%2.svg\")")
                .arg(QLatin1String(state), QLatin1String(form));
        };
        row("custom", qPrintable(indicator), "image", qPrintable(image("idle")));
        row("custom", qPrintable(indicator + QStringLiteral(":hover")), "image",
            qPrintable(image("hover")));
        row("custom", qPrintable(indicator + QStringLiteral(":pressed")), "image",
            qPrintable(image("down")));
        row("custom", qPrintable(indicator + QStringLiteral(":disabled")), "image",
            qPrintable(image("disabled")));
    }
    row("custom", "QMenu", "background-color", "#333333");
    row("custom", "QMenu", "color", "#e5e5e5");
    row("custom", "QMenu", "font-size", "13px");
    row("custom", "QMenu::item", "background-color", "#333333");
    row("custom", "QMenu::item", "color", "#e5e5e5");
    row("custom", "QMenu::item", "font-size", "13px");
    row("custom", "QMenu::item", "padding", "2px 25px 2px 20px");
    row("custom", "QMenu::item:selected", "color", "#8cbcda");
    row("custom", "QMenu::item:hover", "color", "#8cbcda");
    row("custom", "QMenu::item:disabled", "color", "#777777");
    row("custom", "QMenu::separator", "height", "1px");
    row("custom", "QMenu::separator", "background-color", "#444444");
    row("custom", "QMenu::item[lang = \"1031\"][scaling = \"1.5\"]", "margin-right", "20px");
    row("custom", "QMenu::item[lang = \"1031\"][scaling = \"2.5\"]", "margin-right", "10px");
    row("custom", "CAboutDlg QScrollBar:vertical", "width", "11px");
    row("custom", "CAboutDlg QScrollBar:vertical", "background-color", "#262626");
    row("custom", "CAboutDlg QScrollBar::handle:vertical", "image",
        "url(\":/icons/aboutDialog/scroll.svg\")");
    row("custom", "CAboutDlg QScrollBar::add-line:vertical", "height", "0");
    row("custom", "CAboutDlg QScrollBar::sub-line:vertical", "height", "0");
    row("custom", "CAboutDlg QScrollBar::up-arrow", "image", "none");
    row("custom", "CAboutDlg QScrollBar::down-arrow", "image", "none");
    row("custom", "CAboutDlg #lbVisitVekPatentsPage", "font-family", "\"RobotoLight\"");
    row("custom", "CAboutDlg #lbVisitVekPatentsPage", "font-size", "11px");
    row("custom", "CAboutDlg #lbVisitVekPatentsPage", "color", "#757575");
    row("custom", "CCafDialog #downloadButton[action = \"download\"]", "image",
        "url(\":/icons/buttons/download_idle.svg\")");

    row("slider", "QSlider", "background-color", "transparent");
    row("slider", "QSlider", "min-height", "19px");
    row("slider", "QSlider::handle", "width", "7px");
    row("slider", "QSlider::handle", "height", "19px");
    row("slider", "QSlider::handle", "image", "url(\":/icons/slider/black_handle_idle.svg\")");
    row("slider", "QSlider::handle:hover", "image",
        "url(\":/icons/slider/black_handle_hover.svg\")");
    row("slider", "QSlider::handle:pressed", "image",
        "url(\":/icons/slider/black_handle_down.svg\")");
    row("slider", "QSlider::groove:horizontal", "height", "24px");
    row("slider", "QSlider::groove:horizontal", "background-color",
        "qlineargradient(x1: 0, y1: 0, x2: 0, y2: 1, stop: 0.458 transparent,"
        " stop: 0.459 #444444, stop: 0.541 #444444, stop: 0.542 transparent)");
    row("slider", "CESlider", "max-height", "24px");
    row("slider", "ColorBubbleCESlider::groove:horizontal", "height", "6px");
    row("slider", "CFileSaveDialog QSlider::handle", "image",
        "url(\":/icons/slider/white_handle_idle.svg\")");
    row("slider", "CPreferencesDlg QSlider::handle", "image",
        "url(\":/icons/slider/white_handle_idle.svg\")");

    row("settings", "QFrame#panelWidget", "background-color", "#222222");
    row("settings", "QFrame#panelWidget", "border-bottom", "2px solid #444444");
    row("settings", "QLabel#labelWidgetName", "color", "#8cbcda");
    row("settings", "QLabel#labelWidgetName", "font-family", "\"MavenPro-Medium\"");
    row("settings", "#dockWidgetSettings QLabel", "font-family", "\"RobotoRegular\"");
    row("settings", "#dockWidgetSettings QLabel", "font-size", "12px");
    row("settings", "#dockWidgetSettings QLabel", "color", "#ababab");
    row("settings", "#dockWidgetSettings QCheckBox", "font-family", "\"RobotoRegular\"");
    row("settings", "#dockWidgetSettings QCheckBox", "font-size", "13px");
    row("settings", "#dockWidgetSettings QCheckBox", "color", "#ababab");
    row("settings", "#dockWidgetSettings[floating = \"true\"]::title", "border-color", "#8cbcda");

    row("message_box", "CMessageBox *", "background-color", "white");
    row("message_box", "CMessageBox #textLabel", "font-family", "\"RobotoRegular\"");
    row("message_box", "CMessageBox #textLabel", "font-size", "16px");
    row("message_box", "CMessageBox #textLabel", "color", "#222222");
    row("message_box", "CMessageBox #wBackgroundWidget", "border", "1px solid #cecece");
    row("message_box", "CMessageBox #wBackgroundWidget", "border-radius", "7px");
    row("message_box", "CMessageBox QPushButton", "font-family", "\"RobotoMedium\"");
    row("message_box", "CMessageBox QPushButton", "font-size", "14px");
    row("message_box", "CMessageBox QPushButton", "color", "white");
    row("message_box", "CMessageBox QPushButton", "border", "none");
    row("message_box", "CMessageBox QPushButton", "border-radius", "5px");
    row("message_box", "CMessageBox QPushButton", "padding-left", "19px");
    row("message_box", "CMessageBox QPushButton", "padding-right", "19px");
    row("message_box", "CMessageBox QPushButton:focus", "text-decoration", "underline");
    for (const char* button : {"CMessageBox #cancelButton", "CMessageBox #discardButton",
                               "CMessageBox #noButton", "CMessageBox #dontQuitButton"}) {
        row("message_box", button, "color", "#222222");
        states("message_box", button, "#cccccc", "#c0c0c0", "#aeaeae");
    }
    for (const char* button : {"CMessageBox #saveButton", "CMessageBox #rotateButton",
                               "CMessageBox #okButton", "CMessageBox #mbSipleButton",
                               "CMessageBox #yesButton", "CMessageBox #quitWithoutSavingButton"}) {
        states("message_box", button, "#688fa7", "#5c8096", "#537184");
    }

    row("mac", "QComboBox QAbstractItemView", "background-color", "#3f3f3f");
    row("mac", "QWidget", "font-family", "\"Lucida Grande\"");
    row("win", "QWidget", "font-family", "\"Lucida Sans Unicode\"");
    row("win", "CAboutDlg #label_1", "font-family", "\"OpenSansLight\"");

    row("crash_sender", "#CrashSenderMainWindow QScrollBar:vertical", "width", "6px");
    row("crash_sender", "#CrashSenderMainWindow QScrollBar:vertical", "background-color",
        "#cccccc");
    row("crash_sender", "#CrashSenderMainWindow QScrollBar::handle:vertical", "background-color",
        "#aaaaaa");
    row("crash_sender", "#CrashSenderMainWindow QScrollBar::handle:vertical:hover",
        "background-color", "#888888");
    row("crash_sender", "QMainWindow#CrashSenderMainWindow", "background-color", "white");
    row("crash_sender", "#CrashSenderMainWindow #topWidget", "background-color", "#688fa7");
    states("crash_sender", "#CrashSenderMainWindow #sendPushButton", "#688fa7", "#5c8096",
           "#537184");
    states("crash_sender", "#CrashSenderMainWindow #dontSendPushButton", "#cccccc", "#c0c0c0",
           "#aeaeae");
    row("crash_sender", "#CrashSenderMainWindow #descriptionLabel[lang = \"1041\"]", "font-size",
        "12px");
    row("crash_sender", "#CrashSenderMainWindow #separatorLabel", "image",
        "url(\":/icons/separator/separator_horizontal.png\")");
}

void tst_StyleSheetRules::fixedValue()
{
    QFETCH(QString, sheet);
    QFETCH(QString, selector);
    QFETCH(QString, property);
    QFETCH(QString, value);
    QCOMPARE(valueOf(scan(textOf(sheet)), selector, property), value);
}

void tst_StyleSheetRules::coloursAreThoseOfThePalette()
{
    QFETCH(QString, name);
    static const char* const palette[] = {
        // dark ground, panels, rules, quiet text, highlight
        "#1b1b1b", "#222222", "#333333", "#444444", "#ababab", "#8cbcda",
        // the action and the secondary action, each idle, hovered and pressed
        "#688fa7", "#5c8096", "#537184", "#cccccc", "#c0c0c0", "#aeaeae",
        // text: clear, of fields and tips, disabled
        "#e5e5e5", "#cbcbcb", "#777777",
        // about dialog
        "#262626", "#757575",
        // frame of the message box, list of a combo box
        "#cecece", "#3f3f3f",
        // scroll bar of the crash reporter
        "#aaaaaa", "#888888"};
    const Sheet sheet = scan(textOf(name));
    QStringList values;
    for (const Rule& rule : sheet.rules) {
        for (const auto& declaration : rule.declarations)
            values.append(declaration.second);
    }
    const QString all = values.join(QLatin1Char('\n'));
    const QStringList colours = matches(all, "(#\\w+)");
    for (const QString& colour : colours) {
        QVERIFY2(std::find(std::begin(palette), std::end(palette), colour) != std::end(palette),
                 qPrintable(colour));
    }
    const QStringList functions = matches(all, "\\b(\\w+)\\(");
    for (const QString& function : functions) {
        QVERIFY2(function == QLatin1String("url") || function == QLatin1String("qlineargradient"),
                 qPrintable(function));
    }
}

void tst_StyleSheetRules::imagesExist()
{
    QFETCH(QString, name);
    const QStringList images = matches(textOf(name), "url\\(\"?([^\")]*)\"?\\)");
    QStringList missing;
    for (const QString& image : images) {
        if (!QFile::exists(image))
            missing.append(image);
    }
    QStringList expected;
    if (name == QLatin1String("crash_sender"))
        expected.append(QStringLiteral(":/icons/separator/separator_horizontal.png"));
    QCOMPARE(missing, expected);
}

void tst_StyleSheetRules::nothingIsSaidTwice()
{
    QFETCH(QString, name);
    QMap<QString, QString> said;
    QStringList lists;
    const Sheet sheet = scan(textOf(name));
    for (const Rule& rule : sheet.rules) {
        QStringList selectors = rule.selectors;
        selectors.sort();
        const QString list = QString::number(rule.half) + selectors.join(QLatin1Char(','));
        QVERIFY2(!lists.contains(list), qPrintable(QStringLiteral("again: ") + list));
        lists.append(list);
        for (const QString& selector : rule.selectors) {
            for (const auto& declaration : rule.declarations) {
                const QString key =
                    QStringLiteral("%1 %2 { %3 }").arg(rule.half).arg(selector, declaration.first);
                QVERIFY2(!said.contains(key), qPrintable(QStringLiteral("again: ") + key));
                said.insert(key, declaration.second);
            }
        }
    }
}

void tst_StyleSheetRules::controlsAreDressedWithoutAMessage_data()
{
    QTest::addColumn<QStringList>("sheets");
    QTest::newRow("what the product wears") << QStringList{
        QStringLiteral("custom"), QStringLiteral("slider"), QStringLiteral("settings"),
        QStringLiteral("message_box"), QStringLiteral("mac")};
    QTest::newRow("Windows") << QStringList{QStringLiteral("win")};
    QTest::newRow("crash reporter") << QStringList{QStringLiteral("crash_sender")};
}

void tst_StyleSheetRules::controlsAreDressedWithoutAMessage()
{
    QFETCH(QStringList, sheets);
    QString joined;
    for (const QString& sheet : sheets)
        joined += textOf(sheet);

    MessageCounter messages({"This plugin does not support"});
    const ApplicationSheet dress(joined);
    const std::unique_ptr<QMainWindow> window = windowOfPlainControls();
    window->setObjectName(QStringLiteral("CrashSenderMainWindow"));
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
    auto* tabs = window->findChild<QTabWidget*>();
    for (int page = 0; page < tabs->count(); ++page) {
        tabs->setCurrentIndex(page);
        for (const bool enabled : {true, false}) {
            tabs->widget(page)->setEnabled(enabled);
            QVERIFY(!window->grab().isNull());
        }
    }
    QMenu* menu = window->menuBar()->actions().first()->menu();
    QVERIFY(!menu->grab().isNull());
    QCOMPARE(messages.count(), 0);
}

QTEST_MAIN(tst_StyleSheetRules)
#include "tst_StyleSheetRules.moc"
