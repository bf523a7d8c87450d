// Tells what scripts see, by a look at the global object of a run: as TypeScript declarations, or
// as the tables of the script guide. usage: scriptReference --declarations FILE HEADER...
//        scriptReference --guide FILE HEADER...         brings the guide's tables up to date
//        scriptReference --check-guide FILE HEADER...   only tells whether they are

#include "Declarations.h"
#include "GuideTables.h"
#include "HeaderComments.h"
#include "ScriptClass.h"

#include "BaseDialog.h"
#include "MessageBox.h"
#include "NativeDialogs.h"
#include "Scripting.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QFile>
#include <QHash>
#include <QLabel>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QRadioButton>
#include <QScriptValueIterator>
#include <QSlider>
#include <QSpinBox>
#include <QTemporaryDir>
#include <QToolButton>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <utility>

using VEK_NAMESPACE::CBaseDialog;
using VEK_NAMESPACE::CNativeDialogs;
using VEK_NAMESPACE::CScripting;

// The process ends in the middle of a run, whose memory LeakSanitizer would take for lost.
// NOLINTBEGIN(*-reserved-identifier,cert-dcl*): LeakSanitizer's own name
extern "C" Q_DECL_EXPORT int __lsan_is_turned_off();
extern "C" int __lsan_is_turned_off()
{
    return 1;
}
// NOLINTEND(*-reserved-identifier,cert-dcl*)

namespace {

const char visitorName[] = "visitor";

int fail(const QString& message)
{
    std::fprintf(stderr, "scriptReference: %s\n", qPrintable(message));
    return EXIT_FAILURE;
}

QString readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

bool writeFile(const QString& path, const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() && file.flush();
}

/// What the language itself has, and TypeScript knows.
bool isOfTheLanguage(const QString& global)
{
    static const QStringList names =
        QStringLiteral("Array Boolean Date Error EvalError Function Infinity JSON Math NaN Number "
                       "Object RangeError ReferenceError RegExp String SyntaxError TypeError "
                       "URIError decodeURI decodeURIComponent encodeURI encodeURIComponent escape "
                       "eval isFinite isNaN parseFloat parseInt undefined unescape")
            .split(QLatin1Char(' '));
    return names.contains(global);
}

/// Functions of the engine. An unknown one gives none.
ScriptGlobal engineFunction(const QString& name)
{
    static const QHash<QString, ScriptGlobal> functions = {
        {QStringLiteral("print"),
         {QStringLiteral("function print(...values: any[]): void"),
          QStringLiteral("Writes the values as one line into the program's debug output.")}},
        {QStringLiteral("gc"),
         {QStringLiteral("function gc(): void"),
          QStringLiteral("Frees what the script no longer reaches.")}},
        {QStringLiteral("version"),
         {QStringLiteral("function version(): number"),
          QStringLiteral("A number that the script engine has for itself.")}},
    };
    return functions.value(name);
}

/// What the declarations say the engine gives every object.
bool hasUsualPrototype(const QScriptValue& object)
{
    QStringList names;
    QScriptValueIterator members(object.prototype());
    while (members.hasNext()) {
        members.next();
        names << members.name();
    }
    names.sort();
    return names
        == QStringList{QStringLiteral("findChild"), QStringLiteral("findChildren"),
                       QStringLiteral("toString")};
}

/// Shows \a use the global object of a run. It returns the process's exit status, and the process
/// ends at once, as the run has nothing to do and would serve events for seconds.
class GlobalObject : public QObject
{
    Q_OBJECT

public:
    explicit GlobalObject(std::function<int(const QScriptValue&)> use)
        : m_use(std::move(use))
    {}

    /// \a script is a file to be made.
    void visit(const QString& script)
    {
        CScripting& scripting = CScripting::instance();
        const QString name = QLatin1String(visitorName);
        scripting.makeObjectScriptable(name, this);
        if (writeFile(script, name + QStringLiteral(".show(this);"))) {
            scripting.setPathToScript(script);
            scripting.run();
        }
    }

    Q_INVOKABLE void show(const QScriptValue& globals) { std::exit(m_use(globals)); }

private:
    std::function<int(const QScriptValue&)> m_use;
};

class Reference
{
public:
    explicit Reference(const HeaderComments& comments)
        : m_classes(comments)
    {}

    bool collect(const QScriptValue& globals)
    {
        QScriptValueIterator global(globals);
        while (global.hasNext()) {
            global.next();
            const QObject* object = global.value().toQObject();
            if (global.name() == QLatin1String(visitorName) || isOfTheLanguage(global.name()))
                continue;
            if (!(object ? addObject(global.name(), global.value()) : addFunction(global.name())))
                return false;
        }
        std::sort(m_globals.begin(), m_globals.end(),
                  [](const auto& a, const auto& b) { return a.declaration < b.declaration; });

        // What scripts are given, and what they look up by name.
        const QMetaObject* const others[] = {
            &CBaseDialog::staticMetaObject,   &QMainWindow::staticMetaObject,
            &QAction::staticMetaObject,       &QLabel::staticMetaObject,
            &QLineEdit::staticMetaObject,     &QPushButton::staticMetaObject,
            &QToolButton::staticMetaObject,   &QCheckBox::staticMetaObject,
            &QRadioButton::staticMetaObject,  &QSlider::staticMetaObject,
            &QComboBox::staticMetaObject,     &QSpinBox::staticMetaObject,
            &QDoubleSpinBox::staticMetaObject};
        for (const QMetaObject* metaObject : others)
            m_classes.add(metaObject);
        if (m_classes.describe())
            return true;
        m_errorMessage = m_classes.errorMessage();
        return false;
    }

    QString errorMessage() const { return m_errorMessage; }
    const QVector<ScriptGlobal>& globals() const { return m_globals; }
    const ScriptClasses& classes() const { return m_classes; }

private:
    bool addObject(const QString& name, const QScriptValue& value)
    {
        const QMetaObject* metaObject = value.toQObject()->metaObject();
        ScriptGlobal global;
        global.text = m_classes.globalText(metaObject, name);
        const QString className =
            QString::fromLatin1(metaObject->className()).section(QStringLiteral("::"), -1);
        global.declaration = QStringLiteral("var %1: %2").arg(name, className);
        if (global.text.isEmpty() || !ScriptClasses::isPlain(global.text)) {
            m_errorMessage = QStringLiteral("the comment of %1 tells nothing of the global \"%2\", "
                                            "or with a command that isn't known here")
                                 .arg(className, name);
            return false;
        }
        if (!hasUsualPrototype(value)) {
            m_errorMessage = QStringLiteral("the engine's own members of objects have changed");
            return false;
        }
        m_classes.add(metaObject);
        m_globals << global;
        return true;
    }

    bool addFunction(const QString& name)
    {
        const ScriptGlobal global = engineFunction(name);
        if (global.declaration.isEmpty()) {
            m_errorMessage = QStringLiteral("the global \"%1\" isn't known here").arg(name);
            return false;
        }
        m_globals << global;
        return true;
    }

    QVector<ScriptGlobal> m_globals;
    ScriptClasses m_classes;
    QString m_errorMessage;
};

int writeDeclarations(const Reference& reference, const QString& path)
{
    return writeFile(path, typeScriptDeclarations(reference.globals(), reference.classes()))
        ? EXIT_SUCCESS
        : fail(QStringLiteral("cannot write %1").arg(path));
}

int updateGuide(const Reference& reference, const QString& path, bool onlyCheck)
{
    const QString guide = readFile(path);
    GuideTables tables(reference.classes());
    const QString updated = tables.updated(guide);
    if (updated.isNull())
        return fail(path + QStringLiteral(": ") + tables.errorMessage());
    if (updated == guide)
        return EXIT_SUCCESS;
    if (!onlyCheck) {
        return writeFile(path, updated) ? EXIT_SUCCESS
                                        : fail(QStringLiteral("cannot write %1").arg(path));
    }

    const QStringList is = guide.split(QLatin1Char('\n'));
    const QStringList shouldBe = updated.split(QLatin1Char('\n'));
    const auto differs = std::mismatch(is.begin(), is.end(), shouldBe.begin(), shouldBe.end());
    return fail(
        QStringLiteral("%1 isn't what the headers say, from line %2 on, which should be\n"
                       "%3\nrun tools/script-guide")
            .arg(path)
            .arg(differs.first - is.begin() + 1)
            .arg(differs.second == shouldBe.end() ? QStringLiteral("the end") : *differs.second));
}

} // namespace

int main(int argc, char* argv[])
{
    QTemporaryDir folder;
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("XDG_RUNTIME_DIR", QFile::encodeName(folder.path()));
    const QApplication application(argc, argv);
    const QStringList arguments = QApplication::arguments();
    const QString task = arguments.value(1);
    const QString path = arguments.value(2);
    const QStringList tasks = {QStringLiteral("--declarations"), QStringLiteral("--guide"),
                               QStringLiteral("--check-guide")};
    if (!tasks.contains(task) || arguments.count() < 4)
        return fail(QStringLiteral("usage: scriptReference --declarations|--guide|--check-guide "
                                   "FILE HEADER..."));

    HeaderComments comments;
    for (const QString& header : arguments.mid(3)) {
        if (!comments.read(header))
            return fail(comments.errorMessage());
    }

    CMessageBox::initializeScripting();
    CScripting::instance().makeObjectScriptable(QStringLiteral("nativeDialogs"),
                                                &CNativeDialogs::instance());
    Reference reference(comments);
    GlobalObject globalObject([&](const QScriptValue& globals) {
        folder.remove();
        if (!reference.collect(globals))
            return fail(reference.errorMessage());
        return task == tasks.first()
            ? writeDeclarations(reference, path)
            : updateGuide(reference, path, task == QLatin1String("--check-guide"));
    });
    globalObject.visit(folder.filePath(QStringLiteral("visit.js")));
    return fail(QStringLiteral("no run has shown its global object"));
}

#include "main.moc"
