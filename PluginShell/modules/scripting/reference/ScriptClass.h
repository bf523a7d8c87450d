#pragma once

#include <QMetaEnum>
#include <QMetaMethod>
#include <QMetaObject>
#include <QString>
#include <QStringList>
#include <QVector>

#include <set>

class HeaderComments;

struct ScriptParameter
{
    QString name;
    QString type;
    bool isOptional = false;
    QString defaultValue;
};

/// A function as scripts call it, or a signal that they connect to.
struct ScriptFunction
{
    enum Kind
    {
        Slot,
        Signal
    };

    Kind kind = Slot;
    QString name;
    QString
        key; ///< how the member is reached: the name, or the signature of one of several signals
    QString result;
    QVector<ScriptParameter> parameters;
    QString text;
    QString group;
};

struct ScriptProperty
{
    QString name;
    QString type;
    bool isWritable = false;
};

struct ScriptGroup
{
    QString title; ///< empty for functions that are in no group
    QString text;
};

/// What scripts see of a class, without its base.
struct ScriptClass
{
    QString name;
    QString base;
    bool isOurs = false;
    QVector<ScriptGroup> groups;
    QVector<ScriptProperty> properties;
    QVector<ScriptFunction> functions;
};

/// An enumeration whose values scripts see as numbers.
struct ScriptEnumeration
{
    QString scope;
    QString name;
    QString values; ///< as in "0 NoFocus, 1 TabFocus"
    bool isFlag = false;
};

/// Describes classes in TypeScript's terms, by their meta-objects and the comments in the headers.
class ScriptClasses
{
public:
    explicit ScriptClasses(const HeaderComments& comments);

    /// Adds a class and its bases.
    void add(const QMetaObject* metaObject);

    /// Describes what was added, each class behind its base. False, with errorMessage(), if a
    /// function of ours has no comment or one that can't be used.
    bool describe();
    QString errorMessage() const { return m_errorMessage; }

    const QVector<ScriptClass>& classes() const { return m_classes; }

    /// Those that the classes use, by scope and name.
    QVector<ScriptEnumeration> enumerations() const;

    /// Of our class, the paragraph of its comment that tells about the global \a name, or an empty
    /// text.
    QString globalText(const QMetaObject* metaObject, const QString& name) const;

    /// Whether \a text has nothing left that only Doxygen understands.
    static bool isPlain(const QString& text);

private:
    enum Place
    {
        Given, ///< by the script
        Received
    };

    bool describe(const QMetaObject* metaObject);
    void describeProperties(const QMetaObject* metaObject, ScriptClass* result);
    bool describeFunctions(const QMetaObject* metaObject, ScriptClass* result);
    ScriptFunction function(const QMetaMethod& method, int firstOptional);
    bool addComment(ScriptFunction* function, const QString& className);
    QString type(const QMetaObject* scope, int id, const QString& name, Place place);
    QString objectType(const QMetaObject* metaObject, const QString& name, Place place) const;
    QString enumeration(const QMetaEnum& metaEnum);

    const HeaderComments& m_comments;
    QVector<const QMetaObject*> m_metaObjects;
    QVector<ScriptClass> m_classes;
    std::set<QString> m_enumerationNames;
    QVector<ScriptEnumeration> m_enumerations;
    QString m_errorMessage;
};
