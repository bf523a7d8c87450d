#include "Declarations.h"

#include "ScriptClass.h"

#include <QStringList>

namespace {

const char head[] =
    R"(// What a test script sees, for editors and for TypeScript's checker: the globals, and the properties,
// slots and signals of their classes. Made from the classes themselves while the library was built.
//
// A host declares its own globals beside these, in a file like
//
//     declare var mainWindow: QMainWindow;
//     declare var preferencesDialog: CBaseDialog;

)";

const char foundations[] = R"(
/** Every value there is; unlike `any` it can't be left out of a call. */
type AnyValue = {} | null | undefined;

/** A value of C++ that a script can only pass on, such as a size or a font. */
interface QtValue<Type extends string> {
    readonly " type"?: Type;
}

/** Any function with these parameters; one may take fewer. */
type QtHandler<Parameters extends any[]> = { of(...values: Parameters): void }["of"];

/** A signal: functions are connected to it. Called itself, it is emitted. */
interface QtSignal<Parameters extends any[] = []> {
    (...values: Parameters): void;
    /** Has `handler` called each time the signal is emitted. */
    connect(handler: QtHandler<Parameters>): void;
    /** Has `handler`, a function or the name of one, called as a method of `receiver`. */
    connect(receiver: object, handler: QtHandler<Parameters> | string): void;
    /** Takes back what connect() did with the same arguments. */
    disconnect(handler: QtHandler<Parameters>): void;
    disconnect(receiver: object, handler: QtHandler<Parameters> | string): void;
}

/**
 * An object whose class isn't known here. It is used as a widget, which most are, and any other
 * member is taken as it comes; say `@type` where you know better.
 */
interface QObjectOfAnyClass extends QWidget {
    [member: string]: any;
}
)";

/// What the engine gives every object.
const char objectMembers[] = R"(
    /** The class and the object name, as in `QLabel(name = "titleLabel")`. */
    toString(): string;
    /** The first object below this one with that name; `null` if there is none. */
    findChild<T extends QObject = QObjectOfAnyClass>(name?: string): T | null;
    /** All objects below this one with that name, or with one that matches. */
    findChildren<T extends QObject = QObjectOfAnyClass>(name?: string | RegExp): T[];
)";

const int maxColumns = 100;

QString wrapped(const QString& prefix, const QString& text)
{
    QString result;
    QString line = prefix;
    const QStringList words = text.split(QLatin1Char(' '));
    for (const QString& word : words) {
        if (line.size() + 1 + word.size() > maxColumns && line != prefix) {
            result += line + QLatin1Char('\n');
            line = prefix;
        }
        line += QLatin1Char(' ') + word;
    }
    return result + line + QLatin1Char('\n');
}

QString comment(const QString& indent, const QString& text, const QStringList& tags = {})
{
    if (text.isEmpty())
        return QString();
    QString safe = text;
    safe.replace(QLatin1String("*/"), QLatin1String("* /"));
    QString line = indent + QStringLiteral("/** ") + safe + QStringLiteral(" */\n");
    if (tags.isEmpty() && line.size() <= maxColumns + 1)
        return line;

    const QString prefix = indent + QStringLiteral(" *");
    QString result = indent + QStringLiteral("/**\n") + wrapped(prefix, safe);
    for (const QString& tag : tags)
        result += prefix + QLatin1Char(' ') + tag + QLatin1Char('\n');
    return result + indent + QStringLiteral(" */\n");
}

QString parameterList(const ScriptFunction& function)
{
    QStringList parameters;
    for (const ScriptParameter& parameter : function.parameters) {
        parameters << parameter.name + QLatin1String(parameter.isOptional ? "?: " : ": ")
                + parameter.type;
    }
    return parameters.join(QStringLiteral(", "));
}

QString memberName(const QString& key)
{
    return key.contains(QLatin1Char('(')) ? QLatin1Char('"') + key + QLatin1Char('"') : key;
}

bool isObject(const QString& type)
{
    return type.startsWith(QLatin1Char('Q')) && !type.startsWith(QLatin1String("QtValue"))
        && !type.contains(QLatin1Char('.'));
}

QString signalMember(const ScriptFunction& function)
{
    const QString parameters = parameterList(function);
    const QString list =
        parameters.isEmpty() ? QString() : QStringLiteral("<[%1]>").arg(parameters);
    return QStringLiteral("readonly %1: QtSignal%2;").arg(memberName(function.key), list);
}

QString slotMember(const ScriptFunction& function)
{
    QString typeParameter;
    QString result = function.result;
    if (result == QLatin1String("QObjectOfAnyClass")) {
        typeParameter = QStringLiteral("<T extends QObject = QObjectOfAnyClass>");
        result = QStringLiteral("T");
    }
    if (isObject(function.result))
        result += QStringLiteral(" | null");
    return QStringLiteral("%1%2(%3): %4;")
        .arg(memberName(function.key), typeParameter, parameterList(function), result);
}

QString functionDeclaration(const ScriptFunction& function)
{
    QStringList tags;
    for (const ScriptParameter& parameter : function.parameters) {
        if (!parameter.defaultValue.isEmpty()) {
            tags << QStringLiteral("@param %1 %2 if it is left out")
                        .arg(parameter.name, parameter.defaultValue);
        }
    }
    const QString indent(4, QLatin1Char(' '));
    return comment(indent, function.text, tags) + indent
        + (function.kind == ScriptFunction::Signal ? signalMember(function) : slotMember(function))
        + QLatin1Char('\n');
}

QString classDeclaration(const ScriptClass& scriptClass)
{
    QString result = QStringLiteral("\ninterface ") + scriptClass.name;
    if (!scriptClass.base.isEmpty())
        result += QStringLiteral(" extends ") + scriptClass.base;
    result += QStringLiteral(" {\n");
    if (scriptClass.base.isEmpty())
        result += QLatin1String(objectMembers).mid(1);
    for (const ScriptProperty& property : scriptClass.properties) {
        result += QStringLiteral("    %1%2: %3%4;\n")
                      .arg(QLatin1String(property.isWritable ? "" : "readonly "), property.name,
                           property.type, QLatin1String(isObject(property.type) ? " | null" : ""));
    }
    QString group;
    for (const ScriptFunction& function : scriptClass.functions) {
        if (function.group != group && !function.group.isEmpty())
            result += QStringLiteral("\n    // %1\n\n").arg(function.group);
        group = function.group;
        result += functionDeclaration(function);
    }
    return result + QStringLiteral("}\n");
}

QString enumerationDeclarations(const QVector<ScriptEnumeration>& enumerations)
{
    QString result;
    QString scope;
    for (const ScriptEnumeration& enumeration : enumerations) {
        if (enumeration.scope != scope) {
            result += QLatin1String(scope.isEmpty() ? "" : "}\n")
                + QStringLiteral("\ndeclare namespace %1 {\n").arg(enumeration.scope);
            scope = enumeration.scope;
        }
        const QString text =
            QLatin1String(enumeration.isFlag ? "A sum of " : "") + enumeration.values;
        result += comment(QStringLiteral("    "), text)
            + QStringLiteral("    type %1 = number;\n").arg(enumeration.name);
    }
    return scope.isEmpty() ? result : result + QStringLiteral("}\n");
}

} // namespace

QString typeScriptDeclarations(const QVector<ScriptGlobal>& globals, const ScriptClasses& classes)
{
    QString result = QLatin1String(head);
    for (const ScriptGlobal& global : globals) {
        result += comment(QString(), global.text)
            + QStringLiteral("declare %1;\n").arg(global.declaration);
    }
    result += QLatin1String(foundations);
    for (const ScriptClass& scriptClass : classes.classes())
        result += classDeclaration(scriptClass);
    return result + enumerationDeclarations(classes.enumerations());
}
