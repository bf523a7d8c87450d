// Compares the TypeScript declarations with what the script engine shows of the objects themselves.

#include "BaseDialog.h"
#include "MessageBox.h"
#include "NativeDialogs.h"
#include "Scripting.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFile>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QMap>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QSlider>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QTest>
#include <QToolButton>

#include <algorithm>

using VEK_NAMESPACE::CBaseDialog;
using VEK_NAMESPACE::CNativeDialogs;
using VEK_NAMESPACE::CScripting;

namespace {

/// How many arguments a function takes, over all its forms.
struct Arguments
{
    int least = 99;
    int most = 0;

    void add(int count)
    {
        least = std::min(least, count);
        most = std::max(most, count);
    }
};

/// Members as "text: string", and functions as "fail(0..1)".
class Members
{
public:
    void addValue(const QString& name, const QString& type) { m_values.insert(name, type); }
    void addFunction(const QString& name, int arguments) { m_functions[name].add(arguments); }

    void add(const Members& others)
    {
        for (auto it = others.m_values.cbegin(); it != others.m_values.cend(); ++it)
            m_values.insert(it.key(), it.value());
        for (auto it = others.m_functions.cbegin(); it != others.m_functions.cend(); ++it) {
            m_functions[it.key()].add(it.value().least);
            m_functions[it.key()].add(it.value().most);
        }
    }

    QStringList list() const
    {
        QStringList result;
        for (auto it = m_values.cbegin(); it != m_values.cend(); ++it)
            result << it.key() + QStringLiteral(": ") + it.value();
        for (auto it = m_functions.cbegin(); it != m_functions.cend(); ++it) {
            result << QStringLiteral("%1(%2..%3)")
                          .arg(it.key())
                          .arg(it.value().least)
                          .arg(it.value().most);
        }
        return result;
    }

private:
    QMap<QString, QString> m_values;
    QMap<QString, Arguments> m_functions;
};

/// Adds a function of the declarations with each number of arguments that it can be called with.
void addDeclared(Members* members, const QString& name, const QString& parameters)
{
    static const QRegularExpression parameter(QStringLiteral("(?:^|, )\\w+([?]?): "));
    int count = 0;
    int least = -1;
    QRegularExpressionMatchIterator matches = parameter.globalMatch(parameters);
    for (; matches.hasNext(); ++count) {
        if (!matches.next().captured(1).isEmpty() && least < 0)
            least = count;
    }
    members->addFunction(name, count);
    members->addFunction(name, least < 0 ? count : least);
}

QString without(QStringList list, const QStringList& others)
{
    for (const QString& other : others)
        list.removeAll(other);
    return list.join(QStringLiteral(", "));
}

/// What "typeof" gives for a value of a declared type.
QString typeOf(const QString& declaredType)
{
    static const QStringList simple = {QStringLiteral("boolean"), QStringLiteral("number"),
                                       QStringLiteral("string")};
    if (simple.contains(declaredType))
        return declaredType;
    return declaredType.contains(QLatin1Char('.')) ? QStringLiteral("number")
                                                   : QStringLiteral("object");
}

} // namespace

class tst_ScriptDeclarations : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void globalsAreThoseOfTheEngine();
    void membersAreThoseOfTheEngine_data();
    void membersAreThoseOfTheEngine();
    void slotsSayWhatTheyDo_data();
    void slotsSayWhatTheyDo();

private:
    void readDeclarations();
    void readDeclaredMember(const QString& line, Members* members) const;
    void askEngine();
    Members declaredMembers(const QString& className) const;

    QString m_declarations;
    QStringList m_declaredGlobals;
    QHash<QString, Members> m_declared;
    QHash<QString, QString> m_bases;
    QStringList m_shownGlobals;
    QHash<QString, Members> m_shown;
};

void tst_ScriptDeclarations::initTestCase()
{
    readDeclarations();
    askEngine();
}

void tst_ScriptDeclarations::readDeclarations()
{
    QFile file(QStringLiteral(DECLARATIONS));
    QVERIFY2(file.open(QIODevice::ReadOnly), DECLARATIONS);
    m_declarations = QString::fromUtf8(file.readAll());

    static const QRegularExpression global(QStringLiteral("^declare (?:var|function) (\\w+)\\b"));
    static const QRegularExpression start(
        QStringLiteral("^interface (\\w+)(?: extends (\\w+))? \\{$"));
    QString className;
    const QStringList lines = m_declarations.split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        const QRegularExpressionMatch globalMatch = global.match(line);
        const QRegularExpressionMatch startMatch = start.match(line);
        if (globalMatch.hasMatch()) {
            m_declaredGlobals << globalMatch.captured(1);
        } else if (startMatch.hasMatch()) {
            className = startMatch.captured(1);
            m_bases.insert(className, startMatch.captured(2));
        } else if (line == QLatin1String("}")) {
            className.clear();
        } else if (!className.isEmpty()) {
            readDeclaredMember(line, &m_declared[className]);
        }
    }
}

void tst_ScriptDeclarations::readDeclaredMember(const QString& line, Members* members) const
{
    static const QRegularExpression signal(
        QStringLiteral("^    readonly \"?(\\w+)(?:\\([^\"]*\")?: QtSignal(?:<\\[(.*)\\]>)?;$"));
    static const QRegularExpression slot(
        QStringLiteral("^    (\\w+)(?:<[^(]*>)?\\((.*)\\): [^:]+;$"));
    static const QRegularExpression value(QStringLiteral("^    (?:readonly )?(\\w+): ([^:]+);$"));
    for (const QRegularExpression& function : {signal, slot}) {
        const QRegularExpressionMatch match = function.match(line);
        if (match.hasMatch()) {
            addDeclared(members, match.captured(1), match.captured(2));
            return;
        }
    }
    const QRegularExpressionMatch match = value.match(line);
    if (match.hasMatch())
        members->addValue(match.captured(1), typeOf(match.captured(2)));
}

/// In a real run, whose report holds what the script found.
void tst_ScriptDeclarations::askEngine()
{
    QMainWindow window;
    CBaseDialog dialog;
    QAction action(nullptr);
    QLabel label;
    QLineEdit lineEdit;
    QPushButton pushButton;
    QToolButton toolButton;
    QCheckBox checkBox;
    QRadioButton radioButton;
    QSlider slider;
    QComboBox comboBox;
    comboBox.addItem(QStringLiteral("text"), QVariantList{1});
    QSpinBox spinBox;
    QDoubleSpinBox doubleSpinBox;
    CScripting& scripting = CScripting::instance();
    QStringList names = {QStringLiteral("scripting"), QStringLiteral("messageBoxes"),
                         QStringLiteral("nativeDialogs")};
    CMessageBox::initializeScripting();
    scripting.makeObjectScriptable(names.last(), &CNativeDialogs::instance());
    const QList<QObject*> objects = {
        &window,   &dialog,      &action, &label,    &lineEdit, &pushButton,   &toolButton,
        &checkBox, &radioButton, &slider, &comboBox, &spinBox,  &doubleSpinBox};
    for (QObject* object : objects) {
        names << QStringLiteral("of_")
                + QString::fromLatin1(object->metaObject()->className())
                      .remove(QStringLiteral("vek::"));
        scripting.makeObjectScriptable(names.last(), object);
    }

    const QTemporaryDir folder;
    QFile script(folder.filePath(QStringLiteral("ask.js")));
    QVERIFY(script.open(QIODevice::WriteOnly));
    script.write("(function (globals) {\n"
                 "    Object.getOwnPropertyNames(globals).forEach(function (name) {\n"
                 "        scripting.log('global ' + name);\n"
                 "    });\n");
    for (const QString& name : names) {
        // What begins with "_q_" is a note that Qt makes for itself.
        script.write(QStringLiteral("    for (var member in %1) {\n"
                                    "        if (member.indexOf('_q_') !== 0)\n"
                                    "            scripting.log('member %1 ' + typeof %1[member]\n"
                                    "                + ' ' + member);\n"
                                    "    }\n")
                         .arg(name)
                         .toUtf8());
    }
    script.write("})(this);\n");
    script.close();
    scripting.setPathToScript(script.fileName());
    scripting.run();
    QVERIFY(!scripting.hasFailed());

    QFile report(folder.filePath(QStringLiteral("askReport.txt")));
    QVERIFY(report.open(QIODevice::ReadOnly));
    const QHash<QString, QString> classNames = {
        {QStringLiteral("scripting"), QStringLiteral("CScripting")},
        {QStringLiteral("messageBoxes"), QStringLiteral("CMessageBox")},
        {QStringLiteral("nativeDialogs"), QStringLiteral("CNativeDialogs")}};
    const QStringList lines = QString::fromUtf8(report.readAll()).split(QLatin1Char('\n'));
    for (const QString& line : lines) {
        const QStringList words = line.split(QLatin1Char(' '));
        if (words.first() == QLatin1String("global"))
            m_shownGlobals << words.at(1);
        if (words.first() != QLatin1String("member"))
            continue;
        const QString className =
            classNames.value(words.at(1), QString(words.at(1)).remove(QStringLiteral("of_")));
        const QString member = words.mid(3).join(QLatin1Char(' '));
        const int bracket = member.indexOf(QLatin1Char('('));
        if (bracket < 0) {
            m_shown[className].addValue(member, words.at(2));
        } else {
            QCOMPARE(words.at(2), QStringLiteral("function"));
            const bool hasArguments = !member.endsWith(QLatin1String("()"));
            m_shown[className].addFunction(member.left(bracket),
                                           hasArguments ? member.count(QLatin1Char(',')) + 1 : 0);
        }
    }
}

Members tst_ScriptDeclarations::declaredMembers(const QString& className) const
{
    Members result;
    for (QString name = className; !name.isEmpty(); name = m_bases.value(name))
        result.add(m_declared.value(name));
    return result;
}

void tst_ScriptDeclarations::globalsAreThoseOfTheEngine()
{
    const QStringList expected = {
        QStringLiteral("gc"),    QStringLiteral("messageBoxes"), QStringLiteral("nativeDialogs"),
        QStringLiteral("print"), QStringLiteral("scripting"),    QStringLiteral("version")};
    m_declaredGlobals.sort();
    QCOMPARE(m_declaredGlobals, expected);

    const QStringList ofTheLanguage =
        QStringLiteral("Array Boolean Date Error EvalError Function Infinity JSON Math NaN Number "
                       "Object RangeError ReferenceError RegExp String SyntaxError TypeError "
                       "URIError decodeURI decodeURIComponent encodeURI encodeURIComponent escape "
                       "eval isFinite isNaN parseFloat parseInt undefined unescape")
            .split(QLatin1Char(' '));
    QStringList shown;
    for (const QString& name : qAsConst(m_shownGlobals)) {
        if (!ofTheLanguage.contains(name) && !name.startsWith(QLatin1String("of_")))
            shown << name;
    }
    shown.sort();
    QCOMPARE(shown, expected);
}

void tst_ScriptDeclarations::membersAreThoseOfTheEngine_data()
{
    QTest::addColumn<QString>("oneOfThem");

    QTest::newRow("CScripting") << "isMessageBoxShown(1..2)";
    QTest::newRow("CMessageBox") << "setYesNoMessageWithCheckBox(2..2)";
    QTest::newRow("CNativeDialogs") << "setSaveFileName(1..1)";
    QTest::newRow("CBaseDialog") << "getObjectName(0..0)";
    QTest::newRow("QMainWindow") << "windowModified: boolean";
    QTest::newRow("QAction") << "triggered(0..1)";
    QTest::newRow("QLabel") << "text: string";
    QTest::newRow("QLineEdit") << "cursorPositionChanged(2..2)";
    QTest::newRow("QPushButton") << "showMenu(0..0)";
    QTest::newRow("QToolButton") << "popupMode: number";
    QTest::newRow("QCheckBox") << "tristate: boolean";
    QTest::newRow("QRadioButton") << "checked: boolean";
    QTest::newRow("QSlider") << "tickPosition: number";
    QTest::newRow("QComboBox") << "currentIndexChanged(1..1)";
    QTest::newRow("QSpinBox") << "valueChanged(1..1)";
    QTest::newRow("QDoubleSpinBox") << "singleStep: number";
}

void tst_ScriptDeclarations::membersAreThoseOfTheEngine()
{
    QFETCH(QString, oneOfThem);

    const QString className = QString::fromLatin1(QTest::currentDataTag());
    const QStringList shown = m_shown.value(className).list();
    QVERIFY2(shown.contains(oneOfThem), qPrintable(shown.join(QLatin1Char('\n'))));

    QStringList declared = declaredMembers(className).list();
    // The engine gives these to all objects, but doesn't enumerate them.
    for (const char* inherited : {"findChild(0..1)", "findChildren(0..1)", "toString(0..0)"})
        QVERIFY2(declared.removeAll(QLatin1String(inherited)) == 1, inherited);
    QCOMPARE(without(declared, shown), QString());
    QCOMPARE(without(shown, declared), QString());
}

void tst_ScriptDeclarations::slotsSayWhatTheyDo_data()
{
    QTest::addColumn<QString>("declaration");

    QTest::newRow("a text in one line")
        << "    /** The text of a line edit. */\n"
           "    getLineEditText(parentWindow: QWidget, name: string): string;\n";
    QTest::newRow("a default value") << "     * @param diff 0.5 if it is left out\n"
                                        "     */\n"
                                        "    isEqualImages(pathToImage1: string, pathToImage2: "
                                        "string, diff?: number): boolean;\n";
    QTest::newRow("a signal") << "    /** The verdict stands in the report. */\n"
                                 "    readonly testFinished: QtSignal;\n";
    QTest::newRow("one of two signals of a name")
        << "    readonly \"valueChanged(int)\": QtSignal<[argument1: number]>;\n";
    QTest::newRow("an enumeration") << "    /** 1 Horizontal, 2 Vertical */\n"
                                       "    type Orientation = number;\n";
    QTest::newRow("a global")
        << "/**\n"
           " * A script loads the answers to message boxes through the global \"messageBoxes\",";
    QTest::newRow("no reference to what only C++ has") << "can't be compared.\n"
                                                          "     * @param diff";
}

void tst_ScriptDeclarations::slotsSayWhatTheyDo()
{
    QFETCH(QString, declaration);

    QVERIFY2(m_declarations.contains(declaration), qPrintable(m_declarations));
}

QTEST_MAIN(tst_ScriptDeclarations)

#include "tst_ScriptDeclarations.moc"
