#include "ScriptClass.h"

#include "HeaderComments.h"

#include <QHash>
#include <QMetaProperty>
#include <QMetaType>
#include <QRegularExpression>

#include <algorithm>
#include <tuple>

namespace {

QString withoutNamespace(const QString& className)
{
    return className.mid(className.lastIndexOf(QLatin1Char(':')) + 1);
}

/// Values that scripts and C++ exchange as something of the language.
QString plainType(const QString& name)
{
    static const QHash<QString, QString> types = {
        {QStringLiteral("void"), QStringLiteral("void")},
        {QStringLiteral("bool"), QStringLiteral("boolean")},
        {QStringLiteral("int"), QStringLiteral("number")},
        {QStringLiteral("uint"), QStringLiteral("number")},
        {QStringLiteral("short"), QStringLiteral("number")},
        {QStringLiteral("ushort"), QStringLiteral("number")},
        {QStringLiteral("long"), QStringLiteral("number")},
        {QStringLiteral("ulong"), QStringLiteral("number")},
        {QStringLiteral("qlonglong"), QStringLiteral("number")},
        {QStringLiteral("qulonglong"), QStringLiteral("number")},
        {QStringLiteral("float"), QStringLiteral("number")},
        {QStringLiteral("double"), QStringLiteral("number")},
        {QStringLiteral("QString"), QStringLiteral("string")},
        {QStringLiteral("QChar"), QStringLiteral("string")},
        {QStringLiteral("QStringList"), QStringLiteral("string[]")},
        {QStringLiteral("QVariant"), QStringLiteral("any")},
        {QStringLiteral("QScriptValue"), QStringLiteral("any")},
        {QStringLiteral("QVariantList"), QStringLiteral("any[]")},
        {QStringLiteral("QVariantMap"), QStringLiteral("{ [key: string]: any }")},
        {QStringLiteral("QDate"), QStringLiteral("Date")},
        {QStringLiteral("QDateTime"), QStringLiteral("Date")},
        {QStringLiteral("QRegExp"), QStringLiteral("RegExp")},
    };
    return types.value(name);
}

QString parameterName(const QByteArray& name, int index)
{
    static const QStringList reserved = {QStringLiteral("default"),  QStringLiteral("delete"),
                                         QStringLiteral("function"), QStringLiteral("in"),
                                         QStringLiteral("new"),      QStringLiteral("var"),
                                         QStringLiteral("with")};
    if (name.isEmpty())
        return QStringLiteral("argument%1").arg(index + 1);
    const QString result = plainParameterName(QString::fromLatin1(name));
    return reserved.contains(result) ? result + QLatin1Char('_') : result;
}

bool isVisible(const QMetaMethod& method)
{
    return method.access() != QMetaMethod::Private
        && method.methodType() != QMetaMethod::Constructor;
}

bool isClone(const QMetaMethod& method)
{
    return method.attributes() & QMetaMethod::Cloned;
}

/// The enumeration or the flags that a declaration in \a scope calls \a name; invalid for a type
/// that is none.
QMetaEnum findEnumeration(const QMetaObject* scope, const QString& name)
{
    const QString scopeName = name.section(QStringLiteral("::"), 0, -2);
    if (scopeName == QLatin1String("Qt"))
        scope = QMetaEnum::fromType<Qt::FocusPolicy>().enclosingMetaObject();
    while (scope && !scopeName.isEmpty() && scopeName != QLatin1String(scope->className()))
        scope = scope->superClass();
    const QByteArray enumName = withoutNamespace(name).toLatin1();
    const int index = scope ? scope->indexOfEnumerator(enumName.constData()) : -1;
    return index < 0 ? QMetaEnum() : scope->enumerator(index);
}

} // namespace

ScriptClasses::ScriptClasses(const HeaderComments& comments)
    : m_comments(comments)
{}

void ScriptClasses::add(const QMetaObject* metaObject)
{
    if (!metaObject || m_metaObjects.contains(metaObject))
        return;
    add(metaObject->superClass());
    m_metaObjects << metaObject;
}

bool ScriptClasses::describe()
{
    return std::all_of(m_metaObjects.cbegin(), m_metaObjects.cend(),
                       [this](const QMetaObject* metaObject) { return describe(metaObject); });
}

QVector<ScriptEnumeration> ScriptClasses::enumerations() const
{
    QVector<ScriptEnumeration> result = m_enumerations;
    std::sort(result.begin(), result.end(),
              [](const ScriptEnumeration& a, const ScriptEnumeration& b) {
                  return std::tie(a.scope, a.name) < std::tie(b.scope, b.name);
              });
    return result;
}

QString ScriptClasses::globalText(const QMetaObject* metaObject, const QString& name) const
{
    const QString className = withoutNamespace(QString::fromLatin1(metaObject->className()));
    const ClassComment* comment = m_comments.classComment(className);
    const QStringList paragraphs = comment
        ? comment->paragraphs.filter(QStringLiteral("global \"%1\"").arg(name))
        : QStringList();
    return paragraphs.isEmpty() ? QString() : paragraphs.first();
}

bool ScriptClasses::isPlain(const QString& text)
{
    static const QRegularExpression command(QStringLiteral("[\\\\@][a-zA-Z{}]"));
    return !command.match(text).hasMatch();
}

bool ScriptClasses::describe(const QMetaObject* metaObject)
{
    ScriptClass result;
    result.name = withoutNamespace(QString::fromLatin1(metaObject->className()));
    if (metaObject->superClass())
        result.base = withoutNamespace(QString::fromLatin1(metaObject->superClass()->className()));
    const ClassComment* comment = m_comments.classComment(result.name);
    result.isOurs = comment;
    describeProperties(metaObject, &result);
    if (!describeFunctions(metaObject, &result))
        return false;

    const auto isUsed = [&result](const QString& title) {
        return std::any_of(result.functions.cbegin(), result.functions.cend(),
                           [&](const ScriptFunction& f) { return f.group == title; });
    };
    if (isUsed(QString()))
        result.groups << ScriptGroup();
    if (comment) {
        for (const GroupComment& group : comment->groups) {
            if (!isUsed(group.title))
                continue;
            if (!isPlain(group.text)) {
                m_errorMessage = QStringLiteral("%1, %2: a command in the comment isn't known here")
                                     .arg(result.name, group.title);
                return false;
            }
            result.groups << ScriptGroup{group.title, group.text};
        }
    }
    m_classes << result;
    return true;
}

void ScriptClasses::describeProperties(const QMetaObject* metaObject, ScriptClass* result)
{
    for (int i = metaObject->propertyOffset(); i < metaObject->propertyCount(); ++i) {
        const QMetaProperty property = metaObject->property(i);
        if (!property.isScriptable())
            continue;
        const QString typeName = QString::fromLatin1(property.typeName());
        ScriptProperty description;
        description.name = QString::fromLatin1(property.name());
        description.isWritable = property.isWritable();
        description.type = property.isEnumType()
            ? enumeration(property.enumerator())
            : type(metaObject, property.userType(), typeName, Received);
        result->properties << description;
    }
}

bool ScriptClasses::describeFunctions(const QMetaObject* metaObject, ScriptClass* result)
{
    QHash<QByteArray, int> declarationsOfSignal;
    for (int i = metaObject->methodOffset(); i < metaObject->methodCount(); ++i) {
        const QMetaMethod method = metaObject->method(i);
        if (method.methodType() == QMetaMethod::Signal && !isClone(method))
            ++declarationsOfSignal[method.name()];
    }

    for (int i = metaObject->methodOffset(); i < metaObject->methodCount(); ++i) {
        const QMetaMethod method = metaObject->method(i);
        if (!isVisible(method) || isClone(method))
            continue;
        // A default value makes a form of its own without the parameter.
        int firstOptional = method.parameterCount();
        for (int j = i + 1; j < metaObject->methodCount() && isClone(metaObject->method(j)); ++j)
            --firstOptional;
        ScriptFunction description = function(method, firstOptional);
        if (declarationsOfSignal.value(method.name()) > 1)
            description.key = QString::fromLatin1(method.methodSignature());
        if (result->isOurs && !addComment(&description, result->name))
            return false;
        result->functions << description;
    }
    return true;
}

ScriptFunction ScriptClasses::function(const QMetaMethod& method, int firstOptional)
{
    const QMetaObject* scope = method.enclosingMetaObject();
    ScriptFunction result;
    result.kind =
        method.methodType() == QMetaMethod::Signal ? ScriptFunction::Signal : ScriptFunction::Slot;
    result.name = QString::fromLatin1(method.name());
    result.key = result.name;
    result.result =
        type(scope, method.returnType(), QString::fromLatin1(method.typeName()), Received);
    const QList<QByteArray> types = method.parameterTypes();
    const QList<QByteArray> names = method.parameterNames();
    const Place place = result.kind == ScriptFunction::Signal ? Received : Given;
    for (int i = 0; i < types.count(); ++i) {
        ScriptParameter parameter;
        parameter.name = parameterName(names.at(i), i);
        parameter.type =
            type(scope, method.parameterType(i), QString::fromLatin1(types.at(i)), place);
        parameter.isOptional = i >= firstOptional;
        result.parameters << parameter;
    }
    return result;
}

bool ScriptClasses::addComment(ScriptFunction* function, const QString& className)
{
    const QVector<FunctionComment> comments =
        m_comments.classComment(className)->functions.value(function->name);
    QString problem;
    if (comments.count() != 1)
        problem = QStringLiteral("is declared %1 times").arg(comments.count());
    else if (comments.first().text.isEmpty())
        problem = QStringLiteral("has no comment");
    else if (!isPlain(comments.first().text))
        problem = QStringLiteral("has a command in its comment that isn't known here");
    if (!problem.isEmpty()) {
        m_errorMessage =
            QStringLiteral("%1::%2, which scripts see, %3").arg(className, function->name, problem);
        return false;
    }

    const FunctionComment& comment = comments.first();
    function->text = comment.text;
    function->group = comment.group;
    for (int i = 0; i < function->parameters.count(); ++i)
        function->parameters[i].defaultValue = comment.defaults.value(i);
    return true;
}

/// \a name is the type as it is written, \a id its number if it has one.
QString ScriptClasses::type(const QMetaObject* scope, int id, const QString& name, Place place)
{
    if (place == Given && name == QLatin1String("QVariant"))
        return QStringLiteral("AnyValue");
    QString plain = plainType(name);
    if (!plain.isEmpty())
        return plain;
    if (name.endsWith(QLatin1Char('*')))
        return objectType(QMetaType::metaObjectForType(id), name.left(name.size() - 1), place);
    const QMetaEnum metaEnum = findEnumeration(scope, name);
    if (metaEnum.isValid())
        return enumeration(metaEnum);
    return QStringLiteral("QtValue<\"%1\">").arg(name);
}

/// The class itself, or the nearest of its bases that is described.
QString ScriptClasses::objectType(const QMetaObject* metaObject, const QString& name,
                                  Place place) const
{
    if (!metaObject && name != QLatin1String("QObject") && name != QLatin1String("QWidget"))
        return QStringLiteral("QtValue<\"%1*\">").arg(name);
    QString className = name;
    for (; metaObject; metaObject = metaObject->superClass()) {
        className = withoutNamespace(QString::fromLatin1(metaObject->className()));
        if (m_metaObjects.contains(metaObject))
            break;
    }
    // What the script receives may be of any class, and is used as one.
    return place == Received && className == QLatin1String("QObject")
        ? QStringLiteral("QObjectOfAnyClass")
        : className;
}

/// The name of the enumeration or of the flags, which are noted.
QString ScriptClasses::enumeration(const QMetaEnum& metaEnum)
{
    ScriptEnumeration description;
    description.scope = withoutNamespace(QString::fromLatin1(metaEnum.scope()));
    description.name = QString::fromLatin1(metaEnum.name());
    description.isFlag = metaEnum.isFlag();
    QStringList values;
    for (int i = 0; i < metaEnum.keyCount(); ++i) {
        values << QStringLiteral("%1 %2").arg(QString::number(metaEnum.value(i)),
                                              QLatin1String(metaEnum.key(i)));
    }
    description.values = values.join(QStringLiteral(", "));
    QString fullName = description.scope + QLatin1Char('.') + description.name;
    if (m_enumerationNames.insert(fullName).second)
        m_enumerations << description;
    return fullName;
}
