#include "MessageBox.h"

#include "IconViewer.h"
#include "MessageCounter.h"
#include "RecordingLogger.h"
#include "ScriptedRun.h"
#include "Scripting.h"

#include <QApplication>
#include <QFile>
#include <QGridLayout>
#include <QIcon>
#include <QImage>
#include <QLabel>
#include <QMetaMethod>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>
#include <QTimer>
#include <QTranslator>

#include <functional>
#include <optional>
#include <type_traits>
#include <vector>

using VEK_NAMESPACE::CBaseDialog;
using VEK_NAMESPACE::CScripting;

namespace {

static_assert(std::is_base_of<CBaseDialog, CMessageBox>::value, "it moves and reports as all do");
static_assert(QMessageBox::Save == 2048 && QMessageBox::Yes == 16384 && QMessageBox::No == 65536
                  && QMessageBox::Cancel == 4194304 && QMessageBox::Discard == 8388608,
              "scripts have the numbers");

enum class Box
{
    SaveDiscardCancel,
    Rotate,
    YesNo,
    BackgroundProcessing,
    Information,
    Critical,
    Warning,
    Simple
};

constexpr int nothing = -1;
const char text[] = "A text, in which <b>something</b> stands";

QIcon callersIcon()
{
    QPixmap pixmap(50, 50);
    pixmap.fill(Qt::green);
    return {pixmap};
}

/// Calls an entry point and returns its result as a number, or "nothing".
int ask(Box box, QWidget* parent = nullptr, int height = 200)
{
    const QString message = QLatin1String(text);
    switch (box) {
    case Box::SaveDiscardCancel:
        return CMessageBox::saveDiscardCancelMessage(parent, message, height);
    case Box::Rotate:
        return int(CMessageBox::rotateQuestion(parent, message, height));
    case Box::YesNo:
        return CMessageBox::yesNoMessage(parent, message, height);
    case Box::BackgroundProcessing:
        return CMessageBox::backgroundProcessingCancelMessage(parent, message);
    case Box::Information:
        CMessageBox::information(parent, message, height);
        break;
    case Box::Critical:
        CMessageBox::critical(parent, message, height);
        break;
    case Box::Warning:
        CMessageBox::warning(parent, message, height);
        break;
    case Box::Simple:
        CMessageBox::showSimpleMessageBox(parent, message, callersIcon(), QStringLiteral("Go on"),
                                          height);
        break;
    }
    return nothing;
}

/// Waits, from a timer inside its loop, for the box that the next entry point shows, lets \a look
/// have it, and rejects it if it is still there then.
class BoxDriver : public QObject
{
public:
    explicit BoxDriver(const std::function<void(CMessageBox&)>& look)
        : m_look(look)
    {
        connect(&m_timer, &QTimer::timeout, this, [this] {
            auto* box = qobject_cast<CMessageBox*>(QApplication::activeModalWidget());
            if (!box || !box->isActiveWindow())
                return;
            m_timer.stop();
            ++m_count;
            m_look(*box);
            if (box->isVisible())
                box->reject();
        });
        m_timer.start(5);
    }

    int count() const { return m_count; }

private:
    QTimer m_timer;
    std::function<void(CMessageBox&)> m_look;
    int m_count = 0;
};

std::function<void(CMessageBox&)> clicking(const char* button)
{
    return [button](CMessageBox& box) {
        auto* pressed = box.findChild<QPushButton*>(QLatin1String(button));
        QVERIFY(pressed);
        QTest::mouseClick(pressed, Qt::LeftButton);
    };
}

/// Row of buttons from left to right: "stretch", or a button's object name and text, with a star if
/// it is the default one.
QStringList describe(const QLayout& row)
{
    QStringList items;
    for (int i = 0; i < row.count(); ++i) {
        const auto* button = qobject_cast<QPushButton*>(row.itemAt(i)->widget());
        if (!button) {
            items << (row.itemAt(i)->spacerItem() ? "stretch" : "something else");
            continue;
        }
        items << button->objectName() + QLatin1Char('=') + button->text()
                + QLatin1String(button->isDefault() ? "*" : "");
    }
    return items;
}

QList<int> margins(const QLayout& layout)
{
    const QMargins m = layout.contentsMargins();
    return {m.left(), m.top(), m.right(), m.bottom()};
}

/// Row, column, and how many of them.
QList<int> cell(const QGridLayout& grid, const QWidget* widget)
{
    int row = -1;
    int column = -1;
    int rows = 0;
    int columns = 0;
    grid.getItemPosition(grid.indexOf(const_cast<QWidget*>(widget)), &row, &column, &rows,
                         &columns);
    return {row, column, rows, columns};
}

/// Takes everything of the context "CMessageBox" and says so.
class BracketTranslator : public QTranslator
{
public:
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* sourceText, const char*, int) const override
    {
        return qstrcmp(context, "CMessageBox") == 0
            ? QLatin1Char('[') + QString::fromUtf8(sourceText) + QLatin1Char(']')
            : QString();
    }
};

/// The application's style sheet while it lives.
class MessageBoxSheet
{
public:
    MessageBoxSheet()
    {
        QFile file(QStringLiteral(":/qss/message_box.qss"));
        if (file.open(QIODevice::ReadOnly))
            m_text = QString::fromUtf8(file.readAll());
        qApp->setStyleSheet(m_text);
    }
    ~MessageBoxSheet() { qApp->setStyleSheet(QString()); }

    QString text() const { return m_text; }

private:
    Q_DISABLE_COPY(MessageBoxSheet)

    QString m_text;
};

/// The colour of a button's ground, beside its text and within its rounded corners.
QString ground(QPushButton& button)
{
    return button.grab().toImage().pixelColor(6, button.height() / 2).name();
}

/// The product in a scripted run.
class Product : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void initializeScripting() { CMessageBox::initializeScripting(); }

    void saveDiscardCancel(const QString& message = QStringLiteral("Save?"))
    {
        report("save", CMessageBox::saveDiscardCancelMessage(nullptr, message, 200));
    }
    void rotate()
    {
        report("rotate", int(CMessageBox::rotateQuestion(nullptr, QStringLiteral("Turn?"), 200)));
    }
    void yesNo()
    {
        report("yes or no", CMessageBox::yesNoMessage(nullptr, QStringLiteral("Well?"), 200));
    }
    void backgroundProcessing()
    {
        report(
            "background",
            CMessageBox::backgroundProcessingCancelMessage(nullptr, QStringLiteral("Still busy")));
    }
    void information(const QString& message)
    {
        CMessageBox::information(nullptr, message, 200);
        report("information", nothing);
    }
    void critical(const QString& message)
    {
        CMessageBox::critical(nullptr, message, 200);
        report("critical", nothing);
    }
    void warning(const QString& message)
    {
        CMessageBox::warning(nullptr, message, 200);
        report("warning", nothing);
    }
    void simple(const QString& message)
    {
        CMessageBox::showSimpleMessageBox(nullptr, message, QIcon(), QString(), 200);
        report("simple", nothing);
    }
    void quit() { QCoreApplication::quit(); }

private:
    static void report(const char* entryPoint, int result)
    {
        QString line = QLatin1String(entryPoint);
        if (result != nothing)
            line += QStringLiteral(": %1").arg(result);
        const QWidgetList windows = QApplication::topLevelWidgets();
        for (const QWidget* window : windows) {
            if (window->isVisible())
                line += QStringLiteral(" with a window");
        }
        CScripting::instance().log(line);
    }
};

const char notInScriptingMode[] =
    "E ASSERT_X_RETURN_VALUE in PluginShell/modules/utilsDll/MessageBox.cpp N: Cannot be used in "
    "scripting mode!!!";
const char assertLine[] = "E ASSERT in PluginShell/modules/utilsDll/MessageBox.cpp N";

} // namespace

Q_DECLARE_METATYPE(Box)

class tst_MessageBox : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void metaObject();
    void layout();
    void buttons_data();
    void buttons();
    void buttonRow_data();
    void buttonRow();
    void icon_data();
    void icon();
    void aCopyOfTheIconIsItsOwn();
    void size_data();
    void size();
    void translated();
    void result_data();
    void result();
    void returnPressesDefaultButton_data();
    void returnPressesDefaultButton();
    void announced();
    void normalRunLeavesAnswers();

    void iconFiles_data();
    void iconFiles();
    void sheetRules();
    void sheetTexts();
    void sheetButtons_data();
    void sheetButtons();
    void sheetGround();

    void scripted_data();
    void scripted();
    void exitWithScriptingInstance();

private:
    std::optional<MessageCounter> m_messages;
};

void tst_MessageBox::init()
{
    // Which the offscreen platform says of every dialog.
    m_messages.emplace({"propagateSizeHints"});
}

void tst_MessageBox::cleanup()
{
    const int messages = m_messages->count();
    m_messages.reset();
    QCOMPARE(messages, 0);
}

void tst_MessageBox::metaObject()
{
    const QMetaObject& meta = CMessageBox::staticMetaObject;
    QCOMPARE(QByteArray(meta.className()), QByteArray("CMessageBox"));
    QCOMPARE(meta.superClass(), &CBaseDialog::staticMetaObject);
    QStringList methods;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i) {
        const QMetaMethod method = meta.method(i);
        const bool isSlot = method.methodType() == QMetaMethod::Slot;
        methods << (method.access() == QMetaMethod::Public ? "public " : "private ")
                + QLatin1String(isSlot ? "slot " : "method ")
                + QString::fromLatin1(method.methodSignature());
    }
    QCOMPARE(methods,
             QStringList({QStringLiteral("private slot onButtonClicked()"),
                          QStringLiteral("public method setRotateQuestion(bool)"),
                          QStringLiteral("public method setYesNoMessage(bool)"),
                          QStringLiteral("public method setYesNoMessageWithCheckBox(bool,bool)"),
                          QStringLiteral("public method setSaveDiscardCancelMessage(int)")}));
    const QMetaMethod twoFlags = meta.method(meta.methodOffset() + 3);
    QCOMPARE(twoFlags.parameterNames(),
             QList<QByteArray>({"predefinedButtonPressed", "predefinedCheckBox"}));
}

void tst_MessageBox::layout()
{
    const BoxDriver driver([](CMessageBox& box) {
        QCOMPARE(box.objectName(), QStringLiteral("CMessageBox"));
        QCOMPARE(box.windowTitle(), QStringLiteral("Dialog"));

        auto* outer = qobject_cast<QHBoxLayout*>(box.layout());
        QVERIFY(outer);
        QCOMPARE(outer->objectName(), QStringLiteral("horizontalLayout"));
        QCOMPARE(outer->spacing(), 0);
        QCOMPARE(margins(*outer), QList<int>({0, 0, 0, 0}));
        QCOMPARE(outer->count(), 1);
        QWidget* background = outer->itemAt(0)->widget();
        QVERIFY(background);
        QCOMPARE(background->objectName(), QStringLiteral("wBackgroundWidget"));
        QCOMPARE(background->metaObject(), &QWidget::staticMetaObject);

        auto* grid = qobject_cast<QGridLayout*>(background->layout());
        QVERIFY(grid);
        QCOMPARE(grid->objectName(), QStringLiteral("gridLayout"));
        QCOMPARE(grid->horizontalSpacing(), 35);
        QCOMPARE(grid->verticalSpacing(), 0);
        QCOMPARE(margins(*grid), QList<int>({28, 24, 21, 20}));
        QCOMPARE(grid->columnStretch(0), 0);
        QCOMPARE(grid->columnStretch(1), 1);

        auto* content = background->findChild<QWidget*>(QStringLiteral("contentWidget"));
        QVERIFY(content);
        QCOMPARE(content->metaObject(), &QWidget::staticMetaObject);
        QCOMPARE(cell(*grid, content), QList<int>({0, 1, 1, 1}));
        auto* vertical = qobject_cast<QVBoxLayout*>(content->layout());
        QVERIFY(vertical);
        QCOMPARE(vertical->objectName(), QStringLiteral("verticalLayout_2"));
        QCOMPARE(vertical->spacing(), 0);
        QCOMPARE(margins(*vertical), QList<int>({0, 0, 0, 0}));
        QCOMPARE(vertical->count(), 1);
        auto* inner = qobject_cast<QVBoxLayout*>(vertical->itemAt(0)->layout());
        QVERIFY(inner);
        QCOMPARE(inner->objectName(), QStringLiteral("contentLayout"));
        QCOMPARE(inner->spacing(), 0);
        QCOMPARE(inner->count(), 1);
        auto* label = qobject_cast<QLabel*>(inner->itemAt(0)->widget());
        QVERIFY(label);
        QCOMPARE(label->objectName(), QStringLiteral("textLabel"));
        QCOMPARE(label->text(), QLatin1String(text));
        QVERIFY(label->wordWrap());

        auto* icon = background->findChild<CIconViewer*>(QStringLiteral("iconWidget"));
        QVERIFY(icon);
        QCOMPARE(cell(*grid, icon), QList<int>({0, 0, 1, 1}));
        QCOMPARE(icon->sizePolicy(), QSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred));
        QCOMPARE(icon->minimumSize(), QSize(0, 0));

        const QLayoutItem* spacer = grid->itemAtPosition(1, 1);
        QVERIFY(spacer && const_cast<QLayoutItem*>(spacer)->spacerItem());
        QCOMPARE(spacer->sizeHint(), QSize(20, 40));
        QCOMPARE(spacer->expandingDirections(), Qt::Orientations(Qt::Vertical));
        QCOMPARE(spacer->minimumSize(), QSize(20, 0));
    });
    ask(Box::YesNo);
    QCOMPARE(driver.count(), 1);
}

void tst_MessageBox::buttons_data()
{
    QTest::addColumn<Box>("box");
    QTest::addColumn<QStringList>("row");
    QTest::addColumn<QList<int>>("place");
    const QList<int> underText = {2, 1, 1, 1};
    const QList<int> underAll = {2, 0, 2, 2};

    QTest::newRow("save, discard or cancel")
        << Box::SaveDiscardCancel
        << QStringList{QStringLiteral("discardButton=Don't save"), QStringLiteral("stretch"),
                       QStringLiteral("cancelButton=Cancel"), QStringLiteral("saveButton=Save*")}
        << underText;
    QTest::newRow("rotate") << Box::Rotate
                            << QStringList{QStringLiteral("stretch"),
                                           QStringLiteral("cancelButton=Cancel"),
                                           QStringLiteral("rotateButton=Rotate*")}
                            << underText;
    QTest::newRow("yes or no") << Box::YesNo
                               << QStringList{QStringLiteral("stretch"),
                                              QStringLiteral("noButton=No"),
                                              QStringLiteral("yesButton=Yes*")}
                               << underText;
    QTest::newRow("background processing")
        << Box::BackgroundProcessing
        << QStringList{QStringLiteral("stretch"),
                       QStringLiteral("quitWithoutSavingButton=Quit without saving*"),
                       QStringLiteral("dontQuitButton=Don't quit")}
        << underText;
    const auto simple = [](const char* button) {
        return QStringList{QStringLiteral("stretch"), QLatin1String(button),
                           QStringLiteral("stretch")};
    };
    QTest::newRow("information") << Box::Information << simple("mbSipleButton=OK*") << underAll;
    QTest::newRow("critical") << Box::Critical << simple("mbSipleButton=Close*") << underAll;
    QTest::newRow("warning") << Box::Warning << simple("mbSipleButton=Close*") << underAll;
    QTest::newRow("simple") << Box::Simple << simple("mbSipleButton=Go on*") << underAll;
}

void tst_MessageBox::buttons()
{
    QFETCH(Box, box);
    QFETCH(QStringList, row);
    QFETCH(QList<int>, place);
    const BoxDriver driver([&](CMessageBox& shown) {
        const QList<QPushButton*> found = shown.findChildren<QPushButton*>();
        QCOMPARE(found.size(), row.count() - row.count(QStringLiteral("stretch")));
        const QWidget* rowWidget = found.first()->parentWidget();
        QCOMPARE(rowWidget->metaObject(), &QWidget::staticMetaObject);
        const auto* rowLayout = qobject_cast<QHBoxLayout*>(rowWidget->layout());
        QVERIFY(rowLayout);
        QCOMPARE(describe(*rowLayout), row);
        QCOMPARE(rowLayout->spacing(), 11);
        QCOMPARE(margins(*rowLayout), QList<int>({0, 0, 0, 0}));
        const auto* grid = shown.findChild<QGridLayout*>(QStringLiteral("gridLayout"));
        QVERIFY(grid);
        QCOMPARE(cell(*grid, rowWidget), place);
        for (const QPushButton* button : found)
            QCOMPARE(button->minimumSize(), QSize(80, 36));
    });
    ask(box);
    QCOMPARE(driver.count(), 1);
}

void tst_MessageBox::buttonRow_data()
{
    QTest::addColumn<Box>("box");
    QTest::addColumn<bool>("centred");
    QTest::newRow("question") << Box::YesNo << false;
    QTest::newRow("simple") << Box::Information << true;
}

/// Where buttons come to lie: at the right edge of the text, or in the middle of all.
void tst_MessageBox::buttonRow()
{
    QFETCH(Box, box);
    QFETCH(bool, centred);
    const BoxDriver driver([&](CMessageBox& shown) {
        const auto* button = shown.findChildren<QPushButton*>().constLast();
        const QRect lies(button->mapTo(&shown, QPoint()), button->size());
        QCOMPARE(lies.bottom(), 200 - 20 - 1);
        if (centred)
            QVERIFY(qAbs(lies.center().x() - (28 + 520 - 21) / 2) <= 1);
        else
            QCOMPARE(lies.right(), 520 - 21 - 1);
    });
    ask(box);
    QCOMPARE(driver.count(), 1);
}

void tst_MessageBox::icon_data()
{
    QTest::addColumn<Box>("box");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QSize>("mandatory");
    QTest::addColumn<QSize>("drawn");
    const QString question = QStringLiteral("://icons/messagebox/question_mark_dark_icon.svg");
    const QString alert = QStringLiteral("://icons/messagebox/alert_dark_icon.svg");
    const QString info = QStringLiteral("://icons/messagebox/info_dark_icon.svg");
    const QSize none;
    const QSize small(34, 34);
    const QSize natural(40, 40);
    // The first two have no mandatory size; that is meant.
    QTest::newRow("save, discard or cancel")
        << Box::SaveDiscardCancel << question << none << natural;
    QTest::newRow("rotate") << Box::Rotate << question << none << natural;
    QTest::newRow("yes or no") << Box::YesNo << question << small << small;
    QTest::newRow("background processing") << Box::BackgroundProcessing << alert << small << small;
    QTest::newRow("information") << Box::Information << info << small << small;
    QTest::newRow("critical") << Box::Critical << alert << small << small;
    QTest::newRow("warning") << Box::Warning << alert << small << small;
    QTest::newRow("simple") << Box::Simple << QString() << small << small;
}

void tst_MessageBox::icon()
{
    QFETCH(Box, box);
    QFETCH(QString, file);
    QFETCH(QSize, mandatory);
    QFETCH(QSize, drawn);
    const BoxDriver driver([&](CMessageBox& shown) {
        const auto* viewer = shown.findChild<CIconViewer*>(QStringLiteral("iconWidget"));
        QVERIFY(viewer);
        QCOMPARE(viewer->mandatoryImageSize(), mandatory);
        QCOMPARE(viewer->outputRect().size(), drawn);
        const QIcon expected = file.isEmpty() ? callersIcon() : QIcon(file);
        QVERIFY(!expected.isNull());
        QCOMPARE(viewer->icon().pixmap(drawn).toImage(), expected.pixmap(drawn).toImage());

        // It is on the screen as well, as large as that.
        QImage ink(viewer->size(), QImage::Format_ARGB32_Premultiplied);
        ink.fill(Qt::transparent);
        const_cast<CIconViewer*>(viewer)->render(&ink, QPoint(), QRegion(), QWidget::RenderFlags());
        QRect inked;
        for (int y = 0; y < ink.height(); ++y) {
            for (int x = 0; x < ink.width(); ++x) {
                if (ink.pixelColor(x, y).alpha() > 0)
                    inked |= QRect(x, y, 1, 1);
            }
        }
        QVERIFY(viewer->outputRect().contains(inked));
        QVERIFY(inked.width() > drawn.width() * 8 / 10);
    });
    ask(box);
    QCOMPARE(driver.count(), 1);
}

void tst_MessageBox::aCopyOfTheIconIsItsOwn()
{
    const BoxDriver driver([](CMessageBox& shown) {
        const auto* viewer = shown.findChild<CIconViewer*>(QStringLiteral("iconWidget"));
        QVERIFY(viewer);
        const QIcon original = viewer->icon();
        const QImage drawn = original.pixmap(34, 34).toImage();
        QVERIFY(!drawn.isNull());
        QIcon copy = original;
        copy.addPixmap(QPixmap(34, 34)); // which makes it another icon
        QVERIFY(copy.cacheKey() != original.cacheKey());
        QCOMPARE(copy.pixmap(34, 34).toImage(), drawn);
        QCOMPARE(copy.availableSizes(), QList<QSize>{QSize(40, 40)});
        QCOMPARE(original.pixmap(34, 34).toImage(), drawn);
    });
    ask(Box::Information);
    QCOMPARE(driver.count(), 1);
}

void tst_MessageBox::size_data()
{
    QTest::addColumn<Box>("box");
    QTest::addColumn<QSize>("boxSize");
    QTest::newRow("save, discard or cancel") << Box::SaveDiscardCancel << QSize(520, 313);
    QTest::newRow("rotate") << Box::Rotate << QSize(520, 313);
    QTest::newRow("yes or no") << Box::YesNo << QSize(520, 313);
    QTest::newRow("background processing") << Box::BackgroundProcessing << QSize(520, 165);
    QTest::newRow("information") << Box::Information << QSize(520, 313);
    QTest::newRow("critical") << Box::Critical << QSize(520, 313);
    QTest::newRow("warning") << Box::Warning << QSize(520, 313);
    QTest::newRow("simple") << Box::Simple << QSize(520, 313);
}

void tst_MessageBox::size()
{
    QFETCH(Box, box);
    QFETCH(QSize, boxSize);
    QWidget parent;
    const BoxDriver driver([&](CMessageBox& shown) {
        QCOMPARE(shown.parentWidget(), &parent);
        QCOMPARE(shown.size(), boxSize);
        QCOMPARE(shown.minimumSize(), boxSize);
        QCOMPARE(shown.maximumSize(), boxSize);
        QVERIFY(shown.isModal());
        QVERIFY(shown.windowFlags().testFlag(Qt::FramelessWindowHint));
    });
    ask(box, &parent, 313);
    QCOMPARE(driver.count(), 1);
    QCOMPARE(parent.children(), QObjectList());
}

/// Button texts and the title belong to the context "CMessageBox"; the caller's text doesn't.
void tst_MessageBox::translated()
{
    const std::vector<std::pair<Box, QStringList>> rows = {
        {Box::SaveDiscardCancel,
         {QStringLiteral("[Don't save]"), QStringLiteral("[Cancel]"), QStringLiteral("[Save]")}},
        {Box::Rotate, {QStringLiteral("[Cancel]"), QStringLiteral("[Rotate]")}},
        {Box::YesNo, {QStringLiteral("[No]"), QStringLiteral("[Yes]")}},
        {Box::BackgroundProcessing,
         {QStringLiteral("[Quit without saving]"), QStringLiteral("[Don't quit]")}},
        {Box::Information, {QStringLiteral("[OK]")}},
        {Box::Critical, {QStringLiteral("[Close]")}},
        {Box::Warning, {QStringLiteral("[Close]")}},
        {Box::Simple, {QStringLiteral("Go on")}},
    };
    BracketTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    for (const auto& [box, expected] : rows) {
        QStringList texts;
        const BoxDriver driver([&texts](CMessageBox& shown) {
            QCOMPARE(shown.windowTitle(), QStringLiteral("[Dialog]"));
            const QList<QPushButton*> found = shown.findChildren<QPushButton*>();
            for (const QPushButton* button : found)
                texts << button->text();
        });
        ask(box);
        QCOMPARE(texts, expected);
    }
    QVERIFY(QCoreApplication::removeTranslator(&translator));
}

void tst_MessageBox::result_data()
{
    struct Row
    {
        const char* name;
        Box box;
        const char* button; ///< or a way to close the box
        int result;
    };
    const std::vector<Row> rows = {
        {"save", Box::SaveDiscardCancel, "saveButton", 2048},
        {"discard", Box::SaveDiscardCancel, "discardButton", 8388608},
        {"cancel", Box::SaveDiscardCancel, "cancelButton", 4194304},
        {"save box, Escape", Box::SaveDiscardCancel, "Escape", 4194304},
        {"save box, closed", Box::SaveDiscardCancel, "close", 4194304},
        {"save box, accepted from outside", Box::SaveDiscardCancel, "accept", 4194304},
        {"rotate", Box::Rotate, "rotateButton", 1},
        {"don't rotate", Box::Rotate, "cancelButton", 0},
        {"rotate box, Escape", Box::Rotate, "Escape", 0},
        {"rotate box, closed", Box::Rotate, "close", 0},
        {"rotate box, accepted from outside", Box::Rotate, "accept", 0},
        {"yes", Box::YesNo, "yesButton", 16384},
        {"no", Box::YesNo, "noButton", 65536},
        {"yes box, Escape", Box::YesNo, "Escape", 65536},
        {"yes box, closed", Box::YesNo, "close", 65536},
        {"yes box, accepted from outside", Box::YesNo, "accept", 65536},
        {"quit without saving", Box::BackgroundProcessing, "quitWithoutSavingButton", 8388608},
        {"don't quit", Box::BackgroundProcessing, "dontQuitButton", 4194304},
        {"quit box, Escape", Box::BackgroundProcessing, "Escape", 4194304},
        {"quit box, closed", Box::BackgroundProcessing, "close", 4194304},
        {"quit box, accepted from outside", Box::BackgroundProcessing, "accept", 4194304},
        {"information", Box::Information, "mbSipleButton", nothing},
        {"information, Escape", Box::Information, "Escape", nothing},
        {"critical", Box::Critical, "mbSipleButton", nothing},
        {"warning", Box::Warning, "mbSipleButton", nothing},
        {"simple", Box::Simple, "mbSipleButton", nothing},
        {"simple, closed", Box::Simple, "close", nothing},
    };
    QTest::addColumn<Box>("box");
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<int>("expected");
    for (const Row& row : rows)
        QTest::newRow(row.name) << row.box << QByteArray(row.button) << row.result;
}

void tst_MessageBox::result()
{
    QFETCH(Box, box);
    QFETCH(QByteArray, button);
    QFETCH(int, expected);
    bool closedByAnswer = false;
    int dialogResult = -1;
    const BoxDriver driver([&](CMessageBox& shown) {
        connect(&shown, &QDialog::finished, &shown, [&](int code) { dialogResult = code; });
        if (button == "Escape")
            QTest::keyClick(&shown, Qt::Key_Escape);
        else if (button == "close")
            shown.close();
        else if (button == "accept")
            shown.accept();
        else
            clicking(button.constData())(shown);
        closedByAnswer = !shown.isVisible();
    });
    QCOMPARE(ask(box), expected);
    QCOMPARE(driver.count(), 1);
    QVERIFY(closedByAnswer);
    // Each button ends the dialog with 0.
    QCOMPARE(dialogResult, button == "accept" ? 1 : 0);
    QVERIFY(!QApplication::activeModalWidget());
}

void tst_MessageBox::returnPressesDefaultButton_data()
{
    QTest::addColumn<Box>("box");
    QTest::addColumn<int>("expected");
    QTest::newRow("save") << Box::SaveDiscardCancel << 2048;
    QTest::newRow("rotate") << Box::Rotate << 1;
    QTest::newRow("yes") << Box::YesNo << 16384;
    QTest::newRow("quit without saving") << Box::BackgroundProcessing << 8388608;
    QTest::newRow("close") << Box::Critical << nothing;
}

void tst_MessageBox::returnPressesDefaultButton()
{
    QFETCH(Box, box);
    QFETCH(int, expected);
    bool closedByAnswer = false;
    const BoxDriver driver([&](CMessageBox& shown) {
        QTest::keyClick(&shown, Qt::Key_Return);
        closedByAnswer = !shown.isVisible();
    });
    QCOMPARE(ask(box), expected);
    QVERIFY(closedByAnswer);
}

/// A box is told to the script host as every dialog is, from inside its own loop.
void tst_MessageBox::announced()
{
    QObject context;
    QStringList names;
    connect(&CScripting::instance(), &CScripting::resendSignal, &context, [&](QObject* object) {
        auto* box = qobject_cast<CMessageBox*>(object);
        QVERIFY(box);
        names << box->getObjectName();
        clicking("yesButton")(*box);
    });
    QCOMPARE(ask(Box::YesNo), 16384);
    QCOMPARE(ask(Box::YesNo), 16384);
    QCOMPARE(names, QStringList({QStringLiteral("CMessageBox"), QStringLiteral("CMessageBox")}));
}

/// The instance that holds answers doesn't answer in a normal run, and is never shown.
void tst_MessageBox::normalRunLeavesAnswers()
{
    CMessageBox::initializeScripting();
    CMessageBox* instance = nullptr;
    const QWidgetList windows = QApplication::topLevelWidgets();
    for (QWidget* window : windows) {
        if (auto* box = qobject_cast<CMessageBox*>(window)) {
            QVERIFY(!instance);
            instance = box;
        }
    }
    if (!instance)
        QFAIL("there is no instance");
    QVERIFY(!instance->parent());
    instance->setYesNoMessage(true);
    const BoxDriver driver(clicking("noButton"));
    QCOMPARE(ask(Box::YesNo), 65536);
    QCOMPARE(driver.count(), 1);
    QVERIFY(!instance->testAttribute(Qt::WA_WState_Created));
}

void tst_MessageBox::iconFiles_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("question") << "://icons/messagebox/question_mark_dark_icon.svg";
    QTest::newRow("alert") << "://icons/messagebox/alert_dark_icon.svg";
    QTest::newRow("info") << "://icons/messagebox/info_dark_icon.svg";
}

void tst_MessageBox::iconFiles()
{
    QFETCH(QString, file);
    const QImage image(file);
    QCOMPARE(image.size(), QSize(40, 40));
    int inked = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            inked += image.pixelColor(x, y).alpha() > 0 ? 1 : 0;
    }
    QVERIFY(inked > 100);
    QVERIFY(inked < 40 * 40 / 2); // a drawing of lines
}

/// Qt leaves out what it can't parse with one warning, which would fail the test.
void tst_MessageBox::sheetRules()
{
    const MessageBoxSheet sheet;
    QWidget widget;
    widget.ensurePolished();
    QCOMPARE(sheet.text().count(QLatin1Char('{')), 11);
    QCOMPARE(sheet.text().count(QLatin1Char('}')), 11);
    QVERIFY(sheet.text().toLatin1() == sheet.text().toUtf8());
}

void tst_MessageBox::sheetTexts()
{
    const MessageBoxSheet sheet;
    const BoxDriver driver([](CMessageBox& box) {
        const auto* label = box.findChild<QLabel*>(QStringLiteral("textLabel"));
        QVERIFY(label);
        QCOMPARE(label->font().family(), QStringLiteral("RobotoRegular"));
        QCOMPARE(label->font().pixelSize(), 16);
        QCOMPARE(label->palette().color(QPalette::WindowText).name(), QStringLiteral("#222222"));
        const QList<QPushButton*> found = box.findChildren<QPushButton*>();
        for (const QPushButton* button : found) {
            QCOMPARE(button->font().family(), QStringLiteral("RobotoMedium"));
            QCOMPARE(button->font().pixelSize(), 14);
            // The text between paddings of 19.
            QCOMPARE(button->sizeHint().width(),
                     qMax(80,
                          button->fontMetrics().size(Qt::TextShowMnemonic, button->text()).width()
                              + 38));
        }
    });
    ask(Box::BackgroundProcessing);
    QCOMPARE(driver.count(), 1);
}

void tst_MessageBox::sheetButtons_data()
{
    QTest::addColumn<Box>("box");
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<bool>("primary");
    QTest::newRow("save") << Box::SaveDiscardCancel << QByteArray("saveButton") << true;
    QTest::newRow("discard") << Box::SaveDiscardCancel << QByteArray("discardButton") << false;
    QTest::newRow("cancel") << Box::SaveDiscardCancel << QByteArray("cancelButton") << false;
    QTest::newRow("rotate") << Box::Rotate << QByteArray("rotateButton") << true;
    QTest::newRow("yes") << Box::YesNo << QByteArray("yesButton") << true;
    QTest::newRow("no") << Box::YesNo << QByteArray("noButton") << false;
    QTest::newRow("quit") << Box::BackgroundProcessing << QByteArray("quitWithoutSavingButton")
                          << true;
    QTest::newRow("don't quit") << Box::BackgroundProcessing << QByteArray("dontQuitButton")
                                << false;
    QTest::newRow("simple") << Box::Simple << QByteArray("mbSipleButton") << true;
    QTest::newRow("the unused name") << Box::Simple << QByteArray("okButton") << true;
}

void tst_MessageBox::sheetButtons()
{
    QFETCH(Box, box);
    QFETCH(QByteArray, button);
    QFETCH(bool, primary);
    const MessageBoxSheet sheet;
    const BoxDriver driver([&](CMessageBox& shown) {
        auto* found = shown.findChild<QPushButton*>(QLatin1String(button));
        if (button == "okButton") {
            found = shown.findChild<QPushButton*>(QStringLiteral("mbSipleButton"));
            QVERIFY(found);
            found->setObjectName(QLatin1String(button));
            qApp->setStyleSheet(sheet.text() + QLatin1Char('\n')); // names are looked up anew
        }
        QVERIFY(found);
        QCursor::setPos(0, 0);
        QTRY_VERIFY(!found->underMouse());
        QCOMPARE(ground(*found), primary ? QStringLiteral("#688fa7") : QStringLiteral("#cccccc"));
        QCOMPARE(found->palette().color(QPalette::ButtonText).name(),
                 primary ? QStringLiteral("#ffffff") : QStringLiteral("#222222"));
        // Rounded by 5 and without a border: the ground reaches the edge but not the corner.
        const QPoint corner = found->mapTo(&shown, QPoint());
        const QImage image = shown.grab().toImage().copy(QRect(corner, found->size()));
        QCOMPARE(image.pixelColor(0, 18), image.pixelColor(6, 18));
        QCOMPARE(image.pixelColor(5, 0), image.pixelColor(6, 18));
        QCOMPARE(image.pixelColor(0, 0).name(), QStringLiteral("#ffffff"));

        QTest::mouseMove(found);
        QTRY_COMPARE(ground(*found),
                     primary ? QStringLiteral("#5c8096") : QStringLiteral("#c0c0c0"));
        found->setDown(true);
        QCOMPARE(ground(*found), primary ? QStringLiteral("#537184") : QStringLiteral("#aeaeae"));
    });
    ask(box);
    QCOMPARE(driver.count(), 1);
}

/// White within a rounded grey line; the corners stay open.
void tst_MessageBox::sheetGround()
{
    const MessageBoxSheet sheet;
    const BoxDriver driver([](CMessageBox& box) {
        const QImage image = box.grab().toImage();
        QCOMPARE(image.size(), QSize(520, 200));
        QCOMPARE(image.pixelColor(260, 0).name(), QStringLiteral("#cecece"));
        QCOMPARE(image.pixelColor(260, 199).name(), QStringLiteral("#cecece"));
        QCOMPARE(image.pixelColor(0, 100).name(), QStringLiteral("#cecece"));
        QCOMPARE(image.pixelColor(519, 100).name(), QStringLiteral("#cecece"));
        QCOMPARE(image.pixelColor(260, 1).name(), QStringLiteral("#ffffff"));
        QCOMPARE(image.pixelColor(1, 100).name(), QStringLiteral("#ffffff"));
        for (const QPoint corner : {QPoint(0, 0), QPoint(519, 0), QPoint(0, 199), QPoint(519, 199)})
            QCOMPARE(image.pixelColor(corner).alpha(), 0);
        // The icon's and the label's ground and the space between the buttons.
        QCOMPARE(image.pixelColor(30, 26).name(), QStringLiteral("#ffffff"));
        QCOMPARE(image.pixelColor(490, 26).name(), QStringLiteral("#ffffff"));
        QCOMPARE(image.pixelColor(100, 170).name(), QStringLiteral("#ffffff"));
    });
    ask(Box::YesNo);
    QCOMPARE(driver.count(), 1);
}

void tst_MessageBox::scripted_data()
{
    struct Row
    {
        const char* name;
        QByteArray script; ///< after initializeScripting()
        QStringList lines;
        bool fails = false;
    };
    const auto missing = [](const char* entryPoint, const char* result) {
        return QStringList{QLatin1String(assertLine),
                           QLatin1String(entryPoint)
                               + QLatin1String(" have't got predefined value"),
                           QLatin1String(result)};
    };
    const auto lines = [](std::initializer_list<const char*> texts) {
        QStringList list;
        for (const char* line : texts)
            list << QLatin1String(line);
        return list;
    };
    const QStringList wrongValue = {
        QLatin1String(assertLine),
        QStringLiteral("setSaveDiscardCancelMessage wrong predefined value")};

    const std::vector<Row> rows = {
        {"yes or no: yes, no, and none for the third",
         "messageBoxes.setYesNoMessage(true); messageBoxes.setYesNoMessage(false);"
         "product.yesNo(); product.yesNo(); product.yesNo(); scripting.log('never');",
         lines({"yes or no: 16384", "yes or no: 65536"})
             + missing("yesNoMessage", "yes or no: 16384"),
         true},
        {"yes or no: an answer given between two questions",
         "messageBoxes.setYesNoMessage(false); product.yesNo();"
         "messageBoxes.setYesNoMessage(true); product.yesNo();",
         lines({"yes or no: 65536", "yes or no: 16384"})},
        {"yes or no: nothing set", "product.yesNo();", missing("yesNoMessage", "yes or no: 16384"),
         true},
        {"yes or no: only other answers set",
         "messageBoxes.setRotateQuestion(false);"
         "messageBoxes.setSaveDiscardCancelMessage(2048); product.yesNo();",
         missing("yesNoMessage", "yes or no: 16384"), true},
        {"yes or no: the setter with a check box sets nothing",
         "messageBoxes.setYesNoMessageWithCheckBox(false, true); product.yesNo();",
         missing("yesNoMessage", "yes or no: 16384"), true},

        {"rotate: in the order of the answers",
         "messageBoxes.setRotateQuestion(false); messageBoxes.setRotateQuestion(true);"
         "messageBoxes.setRotateQuestion(false); product.rotate(); product.rotate();"
         "product.rotate();",
         lines({"rotate: 0", "rotate: 1", "rotate: 0"})},
        {"rotate: nothing set", "product.rotate();", missing("rotateQuestion", "rotate: 1"), true},
        {"rotate: asked twice after one answer",
         "messageBoxes.setRotateQuestion(false); product.rotate(); product.rotate();",
         lines({"rotate: 0"}) + missing("rotateQuestion", "rotate: 1"), true},

        {"save: in the order of the answers",
         "messageBoxes.setSaveDiscardCancelMessage(8388608);"
         "messageBoxes.setSaveDiscardCancelMessage(2048);"
         "messageBoxes.setSaveDiscardCancelMessage(4194304);"
         "product.saveDiscardCancel(); product.saveDiscardCancel(); product.saveDiscardCancel();",
         lines({"save: 8388608", "save: 2048", "save: 4194304"})},
        {"save: nothing set", "product.saveDiscardCancel();",
         missing("saveDiscardCancelMessage", "save: 2048"), true},
        {"save: 1024 is no answer",
         "messageBoxes.setSaveDiscardCancelMessage(1024); scripting.log('never');", wrongValue,
         true},
        {"save: 0 is no answer", "messageBoxes.setSaveDiscardCancelMessage(0);", wrongValue, true},
        {"save: Yes is no answer", "messageBoxes.setSaveDiscardCancelMessage(16384);", wrongValue,
         true},
        {"save: two answers in one are none", "messageBoxes.setSaveDiscardCancelMessage(8390656);",
         wrongValue, true},
        {"save: a wrong answer isn't kept",
         "scripting.initializeTest.connect(function() { product.saveDiscardCancel(); });"
         "messageBoxes.setSaveDiscardCancelMessage(1024);",
         // The second failure doesn't count.
         wrongValue + QStringList(QLatin1String(assertLine)) + lines({"save: 2048"}), true},
        {"save: an empty text fails and still takes the answer",
         "messageBoxes.setSaveDiscardCancelMessage(8388608); product.saveDiscardCancel('');",
         lines({"Empty message for message box", "save: 8388608"}), true},

        {"recorded: the texts of simple boxes and of the save box",
         "messageBoxes.setSaveDiscardCancelMessage(2048);"
         "product.information('i'); product.critical('c'); product.warning('w');"
         "product.simple('s'); product.saveDiscardCancel('d');"
         "var texts = ['i', 'c', 'w', 's', 'd'];"
         "for (var n in texts)"
         "    scripting.log(texts[n] + ' ' + scripting.isMessageBoxShown(texts[n], n));",
         lines({"information", "critical", "warning", "simple", "save: 2048", "i true", "c true",
                "w true", "s true", "d true"})},
        {"recorded: the save box without an answer too",
         "scripting.initializeTest.connect(function() {"
         "    scripting.log(scripting.isMessageBoxShown('Save?')); });"
         "product.saveDiscardCancel();",
         missing("saveDiscardCancelMessage", "save: 2048") + lines({"true"}), true},
        {"recorded: never the questions",
         "messageBoxes.setYesNoMessage(true); messageBoxes.setRotateQuestion(true);"
         "product.yesNo(); product.rotate(); product.backgroundProcessing();"
         "scripting.log(scripting.isMessageBoxShown('Well?')"
         "    || scripting.isMessageBoxShown('Turn?')"
         "    || scripting.isMessageBoxShown('Still busy'));",
         lines({"yes or no: 16384", "rotate: 1", notInScriptingMode, "background: 4194304",
                "false"})},
        {"recorded: an empty text of information fails", "product.information('');",
         lines({"Empty message for message box", "information"}), true},
        {"recorded: an empty text of a warning fails", "product.warning('');",
         lines({"Empty message for message box", "warning"}), true},
        {"background processing isn't for scripts, and is no failure",
         "product.backgroundProcessing();", lines({notInScriptingMode, "background: 4194304"})},

        {"the instance: an unshown box without a fixed size",
         "scripting.log(messageBoxes.objectName + ' ' + messageBoxes.windowTitle + ' '"
         "    + messageBoxes.width + ' ' + messageBoxes.height + ' ' + messageBoxes.visible"
         "    + ' ' + messageBoxes.getObjectName());",
         lines({"CMessageBox Dialog 504 243 false CMessageBox"})},
        {"the instance: made once more it has no answers",
         "messageBoxes.setYesNoMessage(false); product.initializeScripting(); product.yesNo();",
         missing("yesNoMessage", "yes or no: 16384"), true},
        {"the instance: the first one keeps the name, and it has died",
         "product.initializeScripting();"
         "try { messageBoxes.setYesNoMessage(true); scripting.log('set'); }"
         "catch (e) { scripting.log('dead'); }",
         lines({"dead"})},
    };

    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QStringList>("transcript");
    const QByteArray initialized = "product.initializeScripting();";
    for (const Row& row : rows) {
        QTest::newRow(row.name) << QByteArray(initialized + row.script)
                                << (row.lines
                                    + QStringList(row.fails ? QStringLiteral("failed")
                                                            : QStringLiteral("not failed")));
    }

    // Without the host's initializeScripting() there is no answer, and no crash.
    const QStringList failed = {QStringLiteral("failed")};
    QTest::newRow("not initialized: yes or no")
        << QByteArray("product.yesNo();") << missing("yesNoMessage", "yes or no: 16384") + failed;
    QTest::newRow("not initialized: rotate")
        << QByteArray("product.rotate();") << missing("rotateQuestion", "rotate: 1") + failed;
    QTest::newRow("not initialized: save")
        << QByteArray("product.saveDiscardCancel();")
        << missing("saveDiscardCancelMessage", "save: 2048") + failed;
    QTest::newRow("not initialized: a warning needs none")
        << QByteArray("product.warning('w');") << lines({"warning", "not failed"});
    QTest::newRow("not initialized: no global")
        << QByteArray("scripting.log(typeof messageBoxes);") << lines({"undefined", "not failed"});
}

void tst_MessageBox::scripted()
{
    QFETCH(QByteArray, script);
    QFETCH(QStringList, transcript);
    QCOMPARE(ScriptedRun::transcript(script), transcript);
}

/// The instance outlives the application object.
void tst_MessageBox::exitWithScriptingInstance()
{
    QProcess process;
    process.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--initialize")});
    QVERIFY(process.waitForFinished());
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 7);
    QCOMPARE(process.readAllStandardError(), QByteArray());
}

int main(int argc, char* argv[])
{
    QApplication app(argc, argv);
    if (ScriptedRun::isRequested(argc, argv)) {
        Product product;
        return ScriptedRun::execute(argv[2], product);
    }
    if (argc == 2 && qstrcmp(argv[1], "--initialize") == 0) {
        CMessageBox::initializeScripting();
        CMessageBox::initializeScripting();
        return 7;
    }
    tst_MessageBox test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_MessageBox.moc"
