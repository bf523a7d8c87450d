#include "Scripting.h"

#include "MetaMethods.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QFile>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScriptEngine>
#include <QScrollBar>
#include <QShortcut>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <memory>
#include <type_traits>

using VEK_NAMESPACE::CScripting;

Q_DECLARE_METATYPE(std::function<void(CScripting&, QWidget*)>)

namespace {

using Operation = std::function<void(CScripting&, QWidget*)>;

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

template <typename T>
T* named(const char* name, T* object)
{
    object->setObjectName(text(name));
    return object;
}

/// A script of its own beside the host's, with the globals "scripting", "window", "other", which is
/// a QObject and no widget, and "dead", a widget that is gone.
class Script
{
public:
    Script(CScripting& scripting, QWidget& window)
    {
        auto dying = std::make_unique<QWidget>();
        expose("scripting", &scripting);
        expose("window", &window);
        expose("other", named("other", &m_other));
        expose("dead", dying.get());
    }

    /// The result as a text, or what the engine calls the exception.
    QString evaluate(const QString& expression)
    {
        const QScriptValue result = m_engine.evaluate(expression);
        if (!m_engine.hasUncaughtException())
            return result.toString();
        QString name = m_engine.uncaughtException().property(text("name")).toString();
        m_engine.clearExceptions();
        return name;
    }
    QString evaluate(const char* expression) { return evaluate(text(expression)); }

private:
    Q_DISABLE_COPY(Script)

    void expose(const char* name, QObject* object)
    {
        m_engine.globalObject().setProperty(text(name), m_engine.newQObject(object));
    }

    QObject m_other;
    QScriptEngine m_engine;
};

/// Counts its own paint events.
class PaintedWindow : public QWidget
{
public:
    int paints = 0;

protected:
    void paintEvent(QPaintEvent* event) override
    {
        Q_UNUSED(event)
        ++paints;
    }
};

/// A window with one control of each kind, below a panel where that is possible, and some bait:
/// an object of another class for each name, made first.
struct Window : PaintedWindow
{
    Window()
    {
        const std::initializer_list<const char*> names = {"edit", "button", "action", "slider"};
        for (const char* name : names)
            named(name, new QObject(this));
        named("label", new QLabel(text("label"), this));
        panel = named("panel", new QWidget(new QWidget(this)));
        edit = named("edit", new QLineEdit(text("old"), panel));
        button = named("button", new QCheckBox(panel));
        action = named("action", new QAction(panel));
        action->setCheckable(true);
        slider = named("slider", new QSlider(Qt::Horizontal, panel));
        slider->setRange(0, 100);
        bothButton = named("both", new QPushButton(panel));
        bothButton->setCheckable(true);
        bothAction = named("both", new QAction(this));
        bothAction->setCheckable(true);
        new QAction(this); // without a name
    }

    /// All that the slots can change, as one text.
    QString state() const
    {
        return QStringLiteral("%1 %2 %3 %4 %5 %6")
            .arg(edit->text())
            .arg(int(button->isChecked()))
            .arg(int(action->isChecked()))
            .arg(slider->value())
            .arg(int(bothButton->isChecked()))
            .arg(int(bothAction->isChecked()));
    }

    QWidget* panel;
    QLineEdit* edit;
    QCheckBox* button;
    QAction* action;
    QSlider* slider;
    QPushButton* bothButton;
    QAction* bothAction;
};

const char untouched[] = "old 0 0 0 0 0";

/// Writes down the key events that it gets.
class KeyRecorder : public QWidget
{
public:
    QStringList takeEvents()
    {
        QStringList events;
        events.swap(m_events);
        return events;
    }

    bool event(QEvent* event) override
    {
        const bool isPress = event->type() == QEvent::KeyPress;
        if (!isPress && event->type() != QEvent::KeyRelease)
            return QWidget::event(event);

        const auto* key = static_cast<QKeyEvent*>(event);
        m_events << QStringLiteral("%1 %2 '%3' %4%5%6")
                        .arg(isPress ? text("press") : text("release"),
                             QString::number(key->key(), 16), key->text(),
                             QString::number(int(key->QInputEvent::modifiers()), 16),
                             key->isAutoRepeat() ? text(" repeated") : QString(),
                             key->spontaneous() ? QString() : text(" not spontaneous"));
        event->accept();
        return true;
    }

private:
    QStringList m_events;
};

void activate(QWidget& window)
{
    window.show();
    QApplication::setActiveWindow(&window);
    QVERIFY(QTest::qWaitForWindowActive(&window));
}

} // namespace

class tst_ScriptingControl : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void slotsAreDeclaredInOrder();

    void controlsAreUsed_data();
    void controlsAreUsed();
    void whatIsNotThereIsPassedOver_data();
    void whatIsNotThereIsPassedOver();
    void whatIsNotThereGivesTheNeutralResult_data();
    void whatIsNotThereGivesTheNeutralResult();
    void wrongWindowsAreRefused_data();
    void wrongWindowsAreRefused();
    void otherArgumentsAreConverted_data();
    void otherArgumentsAreConverted();

    void theFirstControlOfANameCounts();
    void aWindowIsNoControlOfItsOwn();
    void anyTextOfALineEditGoesThroughAScript();
    void aClickRunsItsHandlersAndThenRepaintsTheWindow();
    void noRepaintWithoutAButton();
    void aClickOnADisabledButtonDoesNothing();
    void anActionIsTriggeredAndNotHovered();
    void aDisabledActionIsTriggeredAllTheSame();
    void whatIsNotCheckableStaysUnchecked();
    void theButtonIsCheckedAndTheActionTriggered();
    void stateOfAControl_data();
    void stateOfAControl();
    void aSliderIsSetBeforeTheUndoCommand();
    void everySettingOfASliderIsAnUndoCommand();
    void eachKindOfSliderCounts();
    void anySubObjectIsFound();
    void anEmptyNameGivesTheFirstChild_data();
    void anEmptyNameGivesTheFirstChild();
    void controlsMayDieOfTheirOwnUse_data();
    void controlsMayDieOfTheirOwnUse();

    void eachCharacterIsAKeyClick();
    void charactersOutsideLatin1AreAKeyClickWithoutText_data();
    void charactersOutsideLatin1AreAKeyClickWithoutText();
    void modifiersArePressedAroundTheKey_data();
    void modifiersArePressedAroundTheKey();
    void noKeyClickWithoutAnObject();
    void keysAreConvertedFromAScript_data();
    void keysAreConvertedFromAScript();
    void aKeyClickIsTyped_data();
    void aKeyClickIsTyped();
    void aKeyClickTriggersAShortcut();
    void aKeyClickOnADisabledWidgetIsNoFailure();
    void aWidgetMayDieOfAKeyClick();

    void aScriptDrivesAModalDialog();
};

void tst_ScriptingControl::slotsAreDeclaredInOrder()
{
    const QStringList expected = {
        text("void shortcut(QWidget* object, QChar key, int modifier)"),
        text("void setLineEditText(QWidget* pParentWindow, QString name, QString strText)"),
        text("QString getLineEditText(QWidget* pParentWindow, QString name)"),
        text("void clickButton(QWidget* pParentWindow, QString name)"),
        text("void triggerAction(QWidget* pParentWindow, QString name)"),
        text("void setItemChecked(QWidget* pParentWindow, QString name, bool bChecked)"),
        text("bool isItemChecked(QWidget* pParentWindow, QString name)"),
        text("bool isItemEnabled(QWidget* pParentWindow, QString name)"),
        text("bool isItemVisible(QWidget* pParentWindow, QString name)"),
        text("void setSlider(QWidget* pParentWindow, QString name, int value)"),
        text("int getSliderValue(QWidget* pParentWindow, QString name)"),
        text("QObject* getSubObject(QWidget* pParentWindow, QString name)"),
    };
    QCOMPARE(MetaMethods::slotDeclarations(CScripting::staticMetaObject,
                                           "shortcut(QWidget*,QChar,int)", expected.count()),
             expected);

    // These leave the host as it is.
    static_assert(std::is_same<decltype(&CScripting::getLineEditText),
                               QString (CScripting::*)(QWidget*, const QString&) const>::value,
                  "getLineEditText");
    for (auto constSlot :
         {&CScripting::isItemChecked, &CScripting::isItemEnabled, &CScripting::isItemVisible}) {
        static_assert(std::is_same<decltype(constSlot),
                                   bool (CScripting::*)(QWidget*, const QString&) const>::value,
                      "questions");
        Q_UNUSED(constSlot)
    }
    static_assert(std::is_same<decltype(&CScripting::getSliderValue),
                               int (CScripting::*)(QWidget*, const QString&) const>::value,
                  "getSliderValue");
}

void tst_ScriptingControl::controlsAreUsed_data()
{
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QString>("result");
    QTest::addColumn<QString>("state");

    const auto row = [](const char* name, const char* expression, const char* result,
                        const char* state) {
        QTest::newRow(name) << text(expression) << text(result) << text(state);
    };
    row("a line edit is set", "scripting.setLineEditText(window, 'edit', 'new')", "undefined",
        "new 0 0 0 0 0");
    row("a line edit is emptied", "scripting.setLineEditText(window, 'edit', '')", "undefined",
        " 0 0 0 0 0");
    row("a line edit is read", "scripting.getLineEditText(window, 'edit')", "old", untouched);
    row("a button is clicked", "scripting.clickButton(window, 'button')", "undefined",
        "old 1 0 0 0 0");
    row("an action is triggered", "scripting.triggerAction(window, 'action')", "undefined",
        "old 0 1 0 0 0");
    row("a button is checked", "scripting.setItemChecked(window, 'button', true)", "undefined",
        "old 1 0 0 0 0");
    row("an action is checked", "scripting.setItemChecked(window, 'action', true)", "undefined",
        "old 0 1 0 0 0");
    row("a button is unchecked again",
        "scripting.setItemChecked(window, 'button', true);"
        "scripting.setItemChecked(window, 'button', false)",
        "undefined", untouched);
    row("an action is unchecked again",
        "scripting.setItemChecked(window, 'action', true);"
        "scripting.setItemChecked(window, 'action', false)",
        "undefined", untouched);
    row("a checked item stays checked",
        "scripting.setItemChecked(window, 'button', true);"
        "scripting.setItemChecked(window, 'button', true)",
        "undefined", "old 1 0 0 0 0");
    row("of a button and an action the button is checked",
        "scripting.setItemChecked(window, 'both', true)", "undefined", "old 0 0 0 1 0");
    row("of a button and an action the button is clicked", "scripting.clickButton(window, 'both')",
        "undefined", "old 0 0 0 1 0");
    row("of a button and an action the action is triggered",
        "scripting.triggerAction(window, 'both')", "undefined", "old 0 0 0 0 1");
    row("an unchecked button tells so", "scripting.isItemChecked(window, 'button')", "false",
        untouched);
    row("a checked button tells so",
        "scripting.setItemChecked(window, 'button', true); scripting.isItemChecked(window, "
        "'button')",
        "true", "old 1 0 0 0 0");
    row("an unchecked action tells so", "scripting.isItemChecked(window, 'action')", "false",
        untouched);
    row("a checked action tells so",
        "scripting.triggerAction(window, 'action'); scripting.isItemChecked(window, 'action')",
        "true", "old 0 1 0 0 0");
    row("a slider is set", "scripting.setSlider(window, 'slider', 42)", "undefined",
        "old 0 0 42 0 0");
    row("a slider ends at its range", "scripting.setSlider(window, 'slider', 1000)", "undefined",
        "old 0 0 100 0 0");
    row("a slider is read",
        "scripting.setSlider(window, 'slider', 42); scripting.getSliderValue(window, 'slider')",
        "42", "old 0 0 42 0 0");
    row("an object is found", "scripting.getSubObject(window, 'panel').objectName", "panel",
        untouched);
    row("an object found is a window to search",
        "scripting.getLineEditText(scripting.getSubObject(window, 'panel'), 'edit')", "old",
        untouched);
}

void tst_ScriptingControl::controlsAreUsed()
{
    QFETCH(QString, expression);
    QFETCH(QString, result);
    QFETCH(QString, state);

    CScripting scripting;
    Window window;
    QCOMPARE(window.state(), text(untouched));
    QCOMPARE(Script(scripting, window).evaluate(expression), result);
    QCOMPARE(window.state(), state);
    QVERIFY(!scripting.hasFailed());
}

void tst_ScriptingControl::whatIsNotThereIsPassedOver_data()
{
    QTest::addColumn<QString>("expression");

    const std::pair<const char*, const char*> operations[] = {
        {"setLineEditText", "edit"}, {"clickButton", "button"}, {"triggerAction", "action"},
        {"setItemChecked", "both"},  {"setSlider", "slider"},
    };
    for (const auto& operation : operations) {
        const QString slot = text(operation.first);
        // More arguments than a slot has do no harm.
        const QString call = QStringLiteral("scripting.%1(%2, 1)").arg(slot);
        const auto row = [&](const char* what, const QString& arguments) {
            QTest::newRow(qPrintable(slot + text(what))) << call.arg(arguments);
        };
        const QString name = text(operation.second);
        row(" without a window", QStringLiteral("null, '%1'").arg(name));
        row(" without a name", text("window, ''"));
        row(" of a null name", text("window, null"));
        row(" of an unknown name", text("window, 'unknown'"));
        row(" of a name in capitals", QStringLiteral("window, '%1'").arg(name.toUpper()));
        row(" of the start of a name", QStringLiteral("window, '%1'").arg(name.left(3)));
        row(" of a pattern", text("window, '.*'"));
        row(" of another class", text("window, 'label'"));
        row(" with neither window nor name", text("null, ''"));
    }
}

void tst_ScriptingControl::whatIsNotThereIsPassedOver()
{
    QFETCH(QString, expression);

    QTemporaryDir folder;
    QFile file(folder.filePath(text("test.js")));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write("1") == 1);
    file.close();
    CScripting scripting;
    scripting.setPathToScript(file.fileName());
    QFile report(folder.filePath(text("testReport.txt")));
    QVERIFY(report.open(QIODevice::ReadOnly));
    QCOMPARE(report.readAll().count('\n'), 3);

    Window window;
    QSignalSpy undoCommands(&scripting, &CScripting::createUndoCommandForSlider);
    QCOMPARE(Script(scripting, window).evaluate(expression), text("undefined"));
    QCOMPARE(window.state(), text(untouched));
    QCOMPARE(undoCommands.count(), 0);
    QVERIFY(!scripting.hasFailed());
    QCOMPARE(report.readAll(), QByteArray());
}

void tst_ScriptingControl::whatIsNotThereGivesTheNeutralResult_data()
{
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QString>("result");

    const struct
    {
        const char* slot;
        const char* name;
        const char* otherClass;
        const char* result;
    } questions[] = {
        {"getLineEditText", "edit", "label", "string ''"},
        {"isItemChecked", "checked", "label", "boolean 'false'"},
        {"isItemEnabled", "edit", "bait", "boolean 'false'"},
        {"isItemVisible", "edit", "bait", "boolean 'false'"},
        {"getSliderValue", "slider", "label", "number '0'"},
    };
    for (const auto& question : questions) {
        const QString slot = text(question.slot);
        const auto row = [&](const char* what, const QString& arguments) {
            QTest::newRow(qPrintable(slot + text(what)))
                << QStringLiteral("var r = scripting.%1(%2); typeof r + \" '\" + r + \"'\"")
                       .arg(slot, arguments)
                << text(question.result);
        };
        const QString name = text(question.name);
        row(" without a window", QStringLiteral("null, '%1'").arg(name));
        row(" without a name", text("window, ''"));
        row(" of a null name", text("window, null"));
        row(" of an unknown name", text("window, 'unknown'"));
        row(" of a name in capitals", QStringLiteral("window, '%1'").arg(name.toUpper()));
        row(" of the start of a name", QStringLiteral("window, '%1'").arg(name.left(3)));
        row(" of another class", QStringLiteral("window, '%1'").arg(text(question.otherClass)));
    }
    QTest::newRow("getSubObject without a window") << "String(scripting.getSubObject(null, 'edit'))"
                                                   << "null";
    QTest::newRow("getSubObject of an unknown name")
        << "String(scripting.getSubObject(window, 'unknown'))"
        << "null";
    QTest::newRow("getSubObject without window and name")
        << "String(scripting.getSubObject(null, ''))"
        << "null";
}

void tst_ScriptingControl::whatIsNotThereGivesTheNeutralResult()
{
    QFETCH(QString, expression);
    QFETCH(QString, result);

    CScripting scripting;
    Window window;
    named("bait", new QObject(&window));
    // Each has something to tell if it were found after all.
    auto* checked = named("checked", new QCheckBox(&window));
    checked->setChecked(true);
    window.slider->setValue(42);
    window.show();
    QCOMPARE(Script(scripting, window).evaluate(expression), result);
    QVERIFY(!scripting.hasFailed());
}

void tst_ScriptingControl::wrongWindowsAreRefused_data()
{
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QString>("error");

    const std::pair<const char*, const char*> calls[] = {
        {"shortcut", "'a', 0"},         {"setLineEditText", "'edit', 'new'"},
        {"getLineEditText", "'edit'"},  {"clickButton", "'button'"},
        {"triggerAction", "'action'"},  {"setItemChecked", "'button', true"},
        {"isItemChecked", "'button'"},  {"isItemEnabled", "'button'"},
        {"isItemVisible", "'button'"},  {"setSlider", "'slider', 42"},
        {"getSliderValue", "'slider'"}, {"getSubObject", "'panel'"},
    };
    const std::pair<const char*, const char*> windows[] = {
        {"a number", "42"},     {"a text", "'window'"},    {"an object", "{}"},
        {"a list", "[window]"}, {"no widget", "other"},    {"undefined", "undefined"},
        {"a function", "eval"}, {"a dead widget", "dead"}, {"true", "true"},
    };
    for (const auto& call : calls) {
        const QString slot = text(call.first);
        const QString arguments = text(call.second);
        for (const auto& window : windows) {
            QTest::newRow(qPrintable(slot + text(" with ") + text(window.first)))
                << QStringLiteral("scripting.%1(%2, %3)").arg(slot, text(window.second), arguments)
                << "TypeError";
        }
        QTest::newRow(qPrintable(slot + text(" without arguments")))
            << QStringLiteral("scripting.%1()").arg(slot) << "SyntaxError";
        QTest::newRow(qPrintable(slot + text(" with an argument too few")))
            << QStringLiteral("scripting.%1(window%2)")
                   .arg(slot,
                        arguments.contains(QLatin1Char(','))
                            ? QLatin1Char(',') + arguments.section(QLatin1Char(','), 0, -2)
                            : QString())
            << "SyntaxError";
    }
}

void tst_ScriptingControl::wrongWindowsAreRefused()
{
    QFETCH(QString, expression);
    QFETCH(QString, error);

    CScripting scripting;
    Window window;
    QCOMPARE(Script(scripting, window).evaluate(expression), error);
    QCOMPARE(window.state(), text(untouched));
    QVERIFY(!scripting.hasFailed());
}

void tst_ScriptingControl::otherArgumentsAreConverted_data()
{
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QString>("state");

    const auto row = [](const char* name, const char* expression, const char* state) {
        QTest::newRow(name) << text(expression) << text(state);
    };
    row("a number as a name", "scripting.clickButton(window, 42)", untouched);
    row("an object as a name", "scripting.clickButton(window, {})", untouched);
    row("a window as a name", "scripting.clickButton(window, window)", untouched);
    row("undefined as a name", "scripting.clickButton(window, undefined)", untouched);
    row("an object with the name as its text",
        "scripting.clickButton(window, {toString: function() { return 'button'; }})",
        "old 1 0 0 0 0");
    row("a number as a text", "scripting.setLineEditText(window, 'edit', 42)", "42 0 0 0 0 0");
    row("null as a text", "scripting.setLineEditText(window, 'edit', null)", " 0 0 0 0 0");
    row("a list as a text", "scripting.setLineEditText(window, 'edit', [1, 2])", "1,2 0 0 0 0 0");
    row("a number as a state", "scripting.setItemChecked(window, 'button', 1)", "old 1 0 0 0 0");
    row("a text as a state", "scripting.setItemChecked(window, 'button', 'no')", "old 1 0 0 0 0");
    row("undefined as a state", "scripting.setItemChecked(window, 'button', undefined)", untouched);
    row("a text as a value", "scripting.setSlider(window, 'slider', '42')", "old 0 0 42 0 0");
    row("no number as a value", "scripting.setSlider(window, 'slider', 'much')", untouched);
    row("undefined as a value", "scripting.setSlider(window, 'slider', undefined)", untouched);
    row("a fraction as a value", "scripting.setSlider(window, 'slider', 42.9)", "old 0 0 42 0 0");
    row("infinity as a value", "scripting.setSlider(window, 'slider', Infinity)", untouched);
}

void tst_ScriptingControl::otherArgumentsAreConverted()
{
    QFETCH(QString, expression);
    QFETCH(QString, state);

    CScripting scripting;
    Window window;
    QCOMPARE(Script(scripting, window).evaluate(expression), text("undefined"));
    QCOMPARE(window.state(), state);
}

void tst_ScriptingControl::theFirstControlOfANameCounts()
{
    CScripting scripting;
    QWidget window;
    auto* first = named("name", new QLineEdit(text("first"), &window));
    auto* second = named("name", new QLineEdit(text("second"), &window));
    QCOMPARE(scripting.getLineEditText(&window, text("name")), text("first"));
    scripting.setLineEditText(&window, text("name"), text("new"));
    QCOMPARE(first->text(), text("new"));
    QCOMPARE(second->text(), text("second"));
    delete first;
    QCOMPARE(scripting.getLineEditText(&window, text("name")), text("second"));
}

void tst_ScriptingControl::aWindowIsNoControlOfItsOwn()
{
    CScripting scripting;
    QCheckBox button;
    named("name", &button);
    scripting.clickButton(&button, text("name"));
    QVERIFY(!button.isChecked());
    QVERIFY(!scripting.isItemEnabled(&button, text("name")));
    QVERIFY(!scripting.getSubObject(&button, text("name")));
}

void tst_ScriptingControl::anyTextOfALineEditGoesThroughAScript()
{
    CScripting scripting;
    Window window;
    Script script(scripting, window);
    script.evaluate(
        u8"scripting.setLineEditText(window, 'edit', 'a \"b\" Größe \u8AAC \U0001F600')");
    QCOMPARE(window.edit->text(), text(u8"a \"b\" Größe \u8AAC \U0001F600"));
    QCOMPARE(script.evaluate("scripting.getLineEditText(window, 'edit')"),
             text(u8"a \"b\" Größe \u8AAC \U0001F600"));
    // As the program's own code would do it: not as the user, who could not.
    window.edit->setReadOnly(true);
    window.edit->setEnabled(false);
    scripting.setLineEditText(&window, text("edit"), text("new"));
    QCOMPARE(window.edit->text(), text("new"));
}

void tst_ScriptingControl::aClickRunsItsHandlersAndThenRepaintsTheWindow()
{
    CScripting scripting;
    Window window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_VERIFY(window.paints > 0);
    QTest::qWait(100); // until no paint event is on its way

    int paintsAtClick = -1;
    connect(window.button, &QAbstractButton::clicked, this, [&] { paintsAtClick = window.paints; });
    const int before = window.paints;
    scripting.clickButton(&window, text("button"));
    QCOMPARE(paintsAtClick, before);
    QCOMPARE(window.paints, before + 1);
}

void tst_ScriptingControl::noRepaintWithoutAButton()
{
    CScripting scripting;
    Window window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QTRY_VERIFY(window.paints > 0);

    const int before = window.paints;
    scripting.clickButton(&window, text("unknown"));
    scripting.clickButton(&window, QString());
    scripting.clickButton(&window, text("action"));
    QCOMPARE(window.paints, before);
}

void tst_ScriptingControl::aClickOnADisabledButtonDoesNothing()
{
    CScripting scripting;
    Window window;
    window.button->setEnabled(false);
    scripting.clickButton(&window, text("button"));
    QCOMPARE(window.state(), text(untouched));
}

void tst_ScriptingControl::anActionIsTriggeredAndNotHovered()
{
    CScripting scripting;
    Window window;
    QSignalSpy triggered(window.action, &QAction::triggered);
    QSignalSpy hovered(window.action, &QAction::hovered);
    scripting.triggerAction(&window, text("action"));
    QCOMPARE(triggered.count(), 1);
    QCOMPARE(triggered.at(0).at(0).toBool(), true);
    QCOMPARE(hovered.count(), 0);
}

void tst_ScriptingControl::aDisabledActionIsTriggeredAllTheSame()
{
    CScripting scripting;
    Window window;
    // So has Qt 5 it for QAction::activate(), other than for a click.
    window.action->setEnabled(false);
    QSignalSpy triggered(window.action, &QAction::triggered);
    scripting.triggerAction(&window, text("action"));
    QCOMPARE(triggered.count(), 1);
    QVERIFY(window.action->isChecked());
}

void tst_ScriptingControl::whatIsNotCheckableStaysUnchecked()
{
    CScripting scripting;
    Window window;
    window.bothButton->setCheckable(false);
    window.action->setCheckable(false);
    scripting.setItemChecked(&window, text("both"), true);
    scripting.setItemChecked(&window, text("action"), true);
    // The button had the name and keeps it from the action.
    QCOMPARE(window.state(), text(untouched));
    QVERIFY(!scripting.isItemChecked(&window, text("both")));
    QVERIFY(!scripting.hasFailed());
}

void tst_ScriptingControl::theButtonIsCheckedAndTheActionTriggered()
{
    CScripting scripting;
    Window window;
    scripting.triggerAction(&window, text("both"));
    QVERIFY(window.bothAction->isChecked());
    QVERIFY(!scripting.isItemChecked(&window, text("both")));
    window.bothButton->setChecked(true);
    QVERIFY(scripting.isItemChecked(&window, text("both")));
}

void tst_ScriptingControl::stateOfAControl_data()
{
    QTest::addColumn<Operation>("prepare");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("enabled");
    QTest::addColumn<bool>("visible");

    const auto window = [](QWidget* widget) { return static_cast<Window*>(widget); };
    const auto row = [](const char* tag, const char* name, bool enabled, bool visible,
                        const Operation& prepare) {
        QTest::newRow(tag) << prepare << text(name) << enabled << visible;
    };
    row("a control", "edit", true, true, [](CScripting&, QWidget*) {});
    row("a control that is no button", "label", true, true, [](CScripting&, QWidget*) {});
    row("an unknown name", "unknown", false, false, [](CScripting&, QWidget*) {});
    row("a disabled control", "edit", false, true,
        [=](CScripting&, QWidget* widget) { window(widget)->edit->setEnabled(false); });
    row("a control in a disabled window", "edit", false, true,
        [](CScripting&, QWidget* widget) { widget->setEnabled(false); });
    row("a hidden control", "edit", true, false,
        [=](CScripting&, QWidget* widget) { window(widget)->edit->hide(); });
    row("a control in a hidden panel", "edit", true, false,
        [=](CScripting&, QWidget* widget) { window(widget)->panel->hide(); });
    row("a control in a hidden window", "edit", true, false,
        [](CScripting&, QWidget* widget) { widget->hide(); });
    row("an action", "action", true, true, [](CScripting&, QWidget*) {});
    row("an action of a hidden window", "action", true, true,
        [](CScripting&, QWidget* widget) { widget->hide(); });
    row("a disabled action", "action", false, true,
        [=](CScripting&, QWidget* widget) { window(widget)->action->setEnabled(false); });
    row("a hidden action", "action", false, false,
        [=](CScripting&, QWidget* widget) { window(widget)->action->setVisible(false); });
    row("a disabled and hidden button with an action of its name", "both", false, false,
        [=](CScripting&, QWidget* widget) {
            window(widget)->bothButton->setEnabled(false);
            window(widget)->bothButton->hide();
        });
    row("a button with a disabled and hidden action of its name", "both", true, true,
        [=](CScripting&, QWidget* widget) {
            window(widget)->bothAction->setEnabled(false);
            window(widget)->bothAction->setVisible(false);
        });
}

void tst_ScriptingControl::stateOfAControl()
{
    QFETCH(Operation, prepare);
    QFETCH(QString, name);
    QFETCH(bool, enabled);
    QFETCH(bool, visible);

    CScripting scripting;
    Window window;
    window.show();
    prepare(scripting, &window);
    QCOMPARE(scripting.isItemEnabled(&window, name), enabled);
    QCOMPARE(scripting.isItemVisible(&window, name), visible);
}

void tst_ScriptingControl::aSliderIsSetBeforeTheUndoCommand()
{
    CScripting scripting;
    Window window;
    QStringList seen;
    connect(window.slider, &QAbstractSlider::valueChanged, this,
            [&](int value) { seen << QStringLiteral("value %1").arg(value); });
    connect(&scripting, &CScripting::createUndoCommandForSlider, this, [&](const QString& name) {
        seen << QStringLiteral("%1 at %2").arg(name).arg(window.slider->value());
    });
    scripting.setSlider(&window, text("slider"), 42);
    QCOMPARE(seen, QStringList({text("value 42"), text("slider at 42")}));
}

void tst_ScriptingControl::everySettingOfASliderIsAnUndoCommand()
{
    CScripting scripting;
    Window window;
    QSignalSpy undoCommands(&scripting, &CScripting::createUndoCommandForSlider);
    for (int value : {0, 42, 42, 1000})
        scripting.setSlider(&window, text("slider"), value);
    QCOMPARE(undoCommands.count(), 4);
    QCOMPARE(undoCommands.at(3).at(0).toString(), text("slider"));
    QCOMPARE(scripting.getSliderValue(&window, text("slider")), 100);
}

void tst_ScriptingControl::eachKindOfSliderCounts()
{
    CScripting scripting;
    QWidget window;
    auto* scrollBar = named("scrollBar", new QScrollBar(&window));
    scrollBar->setRange(-50, 50);
    scripting.setSlider(&window, text("scrollBar"), -42);
    QCOMPARE(scrollBar->value(), -42);
    QCOMPARE(scripting.getSliderValue(&window, text("scrollBar")), -42);
}

void tst_ScriptingControl::anySubObjectIsFound()
{
    CScripting scripting;
    Window window;
    auto* object = named("timer", new QTimer(window.panel));
    QCOMPARE(scripting.getSubObject(&window, text("timer")), static_cast<QObject*>(object));
    QCOMPARE(scripting.getSubObject(&window, text("action")),
             window.findChild<QObject*>(text("action"), Qt::FindDirectChildrenOnly));
    QCOMPARE(scripting.getSubObject(window.panel, text("action")),
             static_cast<QObject*>(window.action));
}

void tst_ScriptingControl::anEmptyNameGivesTheFirstChild_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("an empty name") << text("");
    QTest::newRow("a null name") << QString();
}

void tst_ScriptingControl::anEmptyNameGivesTheFirstChild()
{
    QFETCH(QString, name);

    CScripting scripting;
    QWidget window;
    QVERIFY(!scripting.getSubObject(&window, name));
    auto* first = named("first", new QTimer(&window));
    named("grandchild", new QObject(first));
    new QObject(&window); // has an empty name
    QCOMPARE(scripting.getSubObject(&window, name), static_cast<QObject*>(first));
    QVERIFY(!scripting.getSubObject(nullptr, name));
}

void tst_ScriptingControl::controlsMayDieOfTheirOwnUse_data()
{
    QTest::addColumn<Operation>("use");

    QTest::newRow("a button is clicked") << Operation([](CScripting& scripting, QWidget* window) {
        scripting.clickButton(window, text("button"));
    });
    QTest::newRow("a button is checked") << Operation([](CScripting& scripting, QWidget* window) {
        scripting.setItemChecked(window, text("button"), true);
    });
    QTest::newRow("an action is triggered")
        << Operation([](CScripting& scripting, QWidget* window) {
               scripting.triggerAction(window, text("action"));
           });
}

void tst_ScriptingControl::controlsMayDieOfTheirOwnUse()
{
    QFETCH(Operation, use);

    CScripting scripting;
    const QPointer<Window> window = new Window;
    window->show();
    const auto destroy = [&] { delete window; };
    connect(window->button, &QAbstractButton::clicked, this, destroy);
    connect(window->button, &QAbstractButton::toggled, this, [&] {
        if (window)
            window->deleteLater();
    });
    connect(window->action, &QAction::triggered, this, destroy);
    use(scripting, window);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(window.isNull());
}

void tst_ScriptingControl::eachCharacterIsAKeyClick()
{
    struct Range
    {
        int first;
        int last;
        int firstKey; ///< -1 for none, and otherwise one more for each character
    };
    const Range ranges[] = {
        {0x00, 0x07, -1},
        {0x08, 0x08, 0x01000003}, // Qt::Key_Backspace
        {0x09, 0x09, 0x01000001}, // Qt::Key_Tab
        {0x0a, 0x0a, -1},
        {0x0b, 0x0b, 0x01000002}, // Qt::Key_Backtab
        {0x0c, 0x0c, -1},
        {0x0d, 0x0d, 0x01000004}, // Qt::Key_Return
        {0x0e, 0x12, -1},
        {0x13, 0x13, 0x01000013}, // Qt::Key_Up
        {0x14, 0x14, -1},
        {0x15, 0x15, 0x01000015}, // Qt::Key_Down
        {0x16, 0x1a, -1},
        {0x1b, 0x1b, 0x01000000}, // Qt::Key_Escape
        {0x1c, 0x1f, -1},
        {0x20, 0x60, 0x20},
        {0x61, 0x7a, 0x41}, // letters have the
                            // keys of capitals
        {0x7b, 0x7e, 0x7b},
        {0x7f, 0x9f, -1},
        {0xa0, 0xdf, 0xa0},
        {0xe0, 0xe4, -1},
        {0xe5, 0xe6, 0xc5},
        {0xe7, 0xf6, -1},
        {0xf7, 0xf7, 0xf7},
        {0xf8, 0xf8, 0xd8},
        {0xf9, 0xfe, -1},
        {0xff, 0xff, 0xff},
    };

    CScripting scripting;
    KeyRecorder recorder;
    int codes = 0;
    for (const Range& range : ranges) {
        QCOMPARE(range.first, codes);
        for (; codes <= range.last; ++codes) {
            const int key = range.firstKey < 0 ? 0 : range.firstKey + codes - range.first;
            const QString what =
                QString::number(key, 16) + text(" '") + (codes ? QString(QChar(codes)) : QString());
            scripting.shortcut(&recorder, QChar(codes), 0);
            QCOMPARE(recorder.takeEvents(),
                     QStringList({text("press ") + what + text("' 0"),
                                  text("release ") + what + text("' 0")}));
        }
    }
    QCOMPARE(codes, 256);
}

void tst_ScriptingControl::charactersOutsideLatin1AreAKeyClickWithoutText_data()
{
    QTest::addColumn<QChar>("key");

    QTest::newRow("the first one") << QChar(0x100);
    QTest::newRow("one that ends in the code of a letter") << QChar(0x161);
    QTest::newRow("a Japanese one") << QChar(0x8AAC);
    QTest::newRow("half of a pair") << QChar(0xD83D);
    QTest::newRow("the last one") << QChar(0xFFFF);
}

void tst_ScriptingControl::charactersOutsideLatin1AreAKeyClickWithoutText()
{
    QFETCH(QChar, key);

    CScripting scripting;
    KeyRecorder recorder;
    scripting.shortcut(&recorder, key, Qt::ControlModifier);
    QCOMPARE(recorder.takeEvents(),
             QStringList({text("press 1000021 '' 0"), text("press 0 '' 4000000"),
                          text("release 0 '' 4000000"), text("release 1000021 '' 4000000")}));
}

void tst_ScriptingControl::modifiersArePressedAroundTheKey_data()
{
    QTest::addColumn<int>("modifier");
    QTest::addColumn<QStringList>("events");

    const auto row = [](const char* name, int modifier, std::initializer_list<const char*> list) {
        QStringList events;
        for (const char* event : list)
            events << text(event);
        QTest::newRow(name) << modifier << events;
    };
    row("none", 0, {"press 41 'a' 0", "release 41 'a' 0"});
    row("Shift", 33554432,
        {"press 1000020 '' 0", "press 41 'a' 2000000", "release 41 'a' 2000000",
         "release 1000020 '' 2000000"});
    row("Control", 67108864,
        {"press 1000021 '' 0", "press 41 'a' 4000000", "release 41 'a' 4000000",
         "release 1000021 '' 4000000"});
    row("Alt", 134217728,
        {"press 1000023 '' 0", "press 41 'a' 8000000", "release 41 'a' 8000000",
         "release 1000023 '' 8000000"});
    row("Meta", 268435456,
        {"press 1000022 '' 0", "press 41 'a' 10000000", "release 41 'a' 10000000",
         "release 1000022 '' 10000000"});
    row("Shift and Control", 33554432 + 67108864,
        {"press 1000020 '' 0", "press 1000021 '' 2000000", "press 41 'a' 6000000",
         "release 41 'a' 6000000", "release 1000021 '' 6000000", "release 1000020 '' 2000000"});
    row("all four", 503316480,
        {"press 1000020 '' 0", "press 1000021 '' 2000000", "press 1000023 '' 6000000",
         "press 1000022 '' e000000", "press 41 'a' 1e000000", "release 41 'a' 1e000000",
         "release 1000022 '' 1e000000", "release 1000023 '' e000000", "release 1000021 '' 6000000",
         "release 1000020 '' 2000000"});
    row("the keypad, which has no key", 536870912,
        {"press 41 'a' 20000000", "release 41 'a' 20000000"});
    row("bits that mean nothing", 5, {"press 41 'a' 5", "release 41 'a' 5"});
}

void tst_ScriptingControl::modifiersArePressedAroundTheKey()
{
    QFETCH(int, modifier);
    QFETCH(QStringList, events);

    CScripting scripting;
    KeyRecorder recorder;
    scripting.shortcut(&recorder, QLatin1Char('a'), modifier);
    QCOMPARE(recorder.takeEvents(), events);

    Script(scripting, recorder)
        .evaluate(QStringLiteral("scripting.shortcut(window, 'a', %1)").arg(modifier));
    QCOMPARE(recorder.takeEvents(), events);
}

void tst_ScriptingControl::noKeyClickWithoutAnObject()
{
    CScripting scripting;
    KeyRecorder recorder;
    recorder.setFocusPolicy(Qt::StrongFocus);
    activate(recorder);
    recorder.setFocus();
    QCOMPARE(QApplication::focusWidget(), static_cast<QWidget*>(&recorder));
    recorder.takeEvents();
    scripting.shortcut(nullptr, QLatin1Char('a'), 0);
    Script(scripting, recorder).evaluate("scripting.shortcut(null, 'a', 0)");
    QCOMPARE(recorder.takeEvents(), QStringList());
}

void tst_ScriptingControl::keysAreConvertedFromAScript_data()
{
    QTest::addColumn<QString>("arguments");
    QTest::addColumn<QStringList>("events");

    const auto row = [](const char* name, const char* arguments, const char* key) {
        QTest::newRow(name) << text(arguments)
                            << QStringList({text("press ") + text(key) + text(" 0"),
                                            text("release ") + text(key) + text(" 0")});
    };
    row("a letter", "'s', 0", "53 's'");
    row("a capital", "'S', 0", "53 'S'");
    row("an accented letter", u8"'é', 0", u8"0 'é'");
    row("a digit", "'7', 0", "37 '7'");
    row("the first character of a text", "'delete', 0", "44 'd'");
    row("an empty text", "'', 0", "0 ''");
    row("a number as a code", "65, 0", "41 'A'");
    row("null as a modifier", "'a', null", "41 'a'");
    row("a text as a modifier", "'a', 'Shift'", "41 'a'");
    row("undefined as a modifier", "'a', undefined", "41 'a'");
}

void tst_ScriptingControl::keysAreConvertedFromAScript()
{
    QFETCH(QString, arguments);
    QFETCH(QStringList, events);

    CScripting scripting;
    KeyRecorder recorder;
    QCOMPARE(Script(scripting, recorder)
                 .evaluate(QStringLiteral("scripting.shortcut(window, %1)").arg(arguments)),
             text("undefined"));
    QCOMPARE(recorder.takeEvents(), events);
}

void tst_ScriptingControl::aKeyClickIsTyped_data()
{
    QTest::addColumn<QChar>("key");
    QTest::addColumn<int>("modifier");
    QTest::addColumn<QString>("result");

    QTest::newRow("a letter") << QChar('a') << 0 << text("olda");
    QTest::newRow("a capital") << QChar('A') << int(Qt::ShiftModifier) << text("oldA");
    QTest::newRow("an accented letter") << QChar(0xe9) << 0 << text(u8"oldé");
    QTest::newRow("a backspace") << QChar('\b') << 0 << text("ol");
    QTest::newRow("a character outside Latin-1") << QChar(0x8AAC) << 0 << text("old");
}

void tst_ScriptingControl::aKeyClickIsTyped()
{
    QFETCH(QChar, key);
    QFETCH(int, modifier);
    QFETCH(QString, result);

    CScripting scripting;
    QLineEdit edit(text("old"));
    scripting.shortcut(&edit, key, modifier);
    QCOMPARE(edit.text(), result);
}

void tst_ScriptingControl::aKeyClickTriggersAShortcut()
{
    CScripting scripting;
    KeyRecorder window;
    auto* save = new QAction(&window);
    save->setShortcut(Qt::CTRL + Qt::Key_S);
    window.addAction(save);
    auto* rotate = new QShortcut(Qt::ALT + Qt::SHIFT + Qt::Key_R, &window);
    QSignalSpy saved(save, &QAction::triggered);
    QSignalSpy rotated(rotate, &QShortcut::activated);
    activate(window);
    Script script(scripting, window);

    script.evaluate("scripting.shortcut(window, 's', 67108864)");
    QCOMPARE(saved.count(), 1);
    QCOMPARE(rotated.count(), 0);
    script.evaluate("scripting.shortcut(window, 'R', 33554432 + 134217728)");
    QCOMPARE(saved.count(), 1);
    QCOMPARE(rotated.count(), 1);
    script.evaluate("scripting.shortcut(window, 's', 0)");
    script.evaluate("scripting.shortcut(window, 's', 33554432)");
    script.evaluate("scripting.shortcut(window, 'r', 134217728)");
    QCOMPARE(saved.count(), 1);
    QCOMPARE(rotated.count(), 1);
}

void tst_ScriptingControl::aKeyClickOnADisabledWidgetIsNoFailure()
{
    CScripting scripting;
    QLineEdit edit(text("old"));
    edit.setEnabled(false);
    // Qt tells the tester that nobody wanted the keys, and nobody else.
    scripting.shortcut(&edit, QLatin1Char('a'), 0);
    QCOMPARE(edit.text(), text("old"));
    QVERIFY(!scripting.hasFailed());
}

void tst_ScriptingControl::aWidgetMayDieOfAKeyClick()
{
    CScripting scripting;
    // A button is clicked by the release of the blank, a dialog rejected by the press of Escape.
    for (const int modifier : {0, 503316480}) {
        QPointer<QPushButton> button = new QPushButton;
        connect(button, &QAbstractButton::clicked, this, [&] { delete button; });
        scripting.shortcut(button, QLatin1Char(' '), modifier);
        QVERIFY(button.isNull());
    }

    QPointer<QDialog> dialog = new QDialog;
    connect(dialog, &QDialog::rejected, this, [&] { dialog->deleteLater(); });
    dialog->show();
    scripting.shortcut(dialog, QChar(0x1b), 0);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QVERIFY(dialog.isNull());
}

/// A whole run: the click that opens the dialog returns after the dialog has closed.
void tst_ScriptingControl::aScriptDrivesAModalDialog()
{
    QTemporaryDir folder;
    QFile file(folder.filePath(text("test.js")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("scripting.resendSignal.connect(function(dialog) {\n"
               "    scripting.log('dialog is up');\n"
               "    scripting.setLineEditText(dialog, 'edit', 'new');\n"
               "    scripting.clickButton(dialog, 'ok');\n"
               "    scripting.log('ok was clicked');\n"
               "});\n"
               "scripting.startTest.connect(function() {\n"
               "    scripting.clickButton(window, 'button');\n"
               "    scripting.log('dialog is gone');\n"
               "    scripting.compare(scripting.getLineEditText(window, 'edit'), 'new');\n"
               "    scripting.log(scripting.isItemVisible(window, 'panel'));\n"
               "});\n");
    file.close();

    CScripting scripting;
    Window window;
    window.show();
    scripting.makeObjectScriptable(text("window"), &window);
    connect(window.button, &QAbstractButton::clicked, this, [&] {
        QDialog dialog(&window);
        auto* edit = named("edit", new QLineEdit(&dialog));
        auto* ok = named("ok", new QPushButton(&dialog));
        connect(ok, &QAbstractButton::clicked, &dialog, &QDialog::accept);
        QTimer::singleShot(0, &dialog, [&] { scripting.sendSignal(&dialog); });
        if (dialog.exec() == QDialog::Accepted)
            window.edit->setText(edit->text());
    });
    QSignalSpy finished(&scripting, &CScripting::testFinished);
    scripting.setPathToScript(file.fileName());
    scripting.startScript();
    QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 30000);
    QVERIFY(!scripting.hasFailed());

    QFile report(folder.filePath(text("testReport.txt")));
    QVERIFY(report.open(QIODevice::ReadOnly));
    for (int line = 0; line < 3; ++line)
        report.readLine();
    QCOMPARE(report.readAll(),
             QByteArray("[startTest] start of execute\n"
                        "dialog is up\n"
                        "ok was clicked\n"
                        "dialog is gone\n"
                        "true\n"
                        "[startTest] finish of execute\n"
                        "PASS\n"));
}

QTEST_MAIN(tst_ScriptingControl)
#include "tst_ScriptingControl.moc"
