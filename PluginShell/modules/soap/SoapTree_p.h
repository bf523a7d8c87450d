#pragma once

#include "qtsoap.h"

#include <QHash>
#include <QSet>
#include <QVector>

namespace VEK_NAMESPACE::soap {

/// The elements of a document, checked against the limits, in a fraction of the memory that a
/// QDomDocument takes. Elements are numbered, 0 is the root, and -1 is none.
class Tree
{
public:
    /// False, with the reason in error(), if it isn't one well-formed document within the limits.
    bool read(const QByteArray& document);
    bool read(const QDomDocument& document);

    /// The same from an element, with what is declared around it.
    bool read(const QDomElement& root);

    QString error() const { return m_error; }

    int size() const { return m_nodes.size(); }
    int firstChild(int element) const;
    int nextSibling(int element) const;
    bool hasChildren(int element) const { return firstChild(element) >= 0; }
    QtSoapQName name(int element) const;

    /// The element's own text: that between its children only if it is more than white space.
    QString text(int element) const;

    /// Null if it isn't there.
    QString attribute(int element, const QString& name, const QString& uri = QString()) const;
    QString schemaInstanceAttribute(int element, const QString& name) const;

    /// What a qualified name means at the element; the default namespace goes for those without
    /// prefix. A prefix that isn't declared leaves a name without namespace.
    QtSoapQName resolve(int element, const QString& qualifiedName) const;

    /// The element with that id.
    int elementWithId(const QString& id) const { return m_ids.value(id, -1); }
    bool isReferredTo(const QString& id) const { return m_references.contains(id); }
    const QSet<QString>& references() const { return m_references; }

    /// The number of an element that was read.
    int find(const QDomElement& element) const;

    /// The element as a document of its own.
    QDomDocument toDom(int element) const;

private:
    struct Node
    {
        int name = -1; // -1 for text between elements
        int firstChild = -1;
        int next = -1;
        int firstAttribute = 0;
        int attributeCount = 0;
        int scope = -1;
        QString text;
    };
    struct Attribute
    {
        int name;
        QString value;
    };
    struct Declaration
    {
        int outer; // the one before, towards the root
        QString prefix;
        QString uri;
    };
    struct Open
    {
        int node;
        int lastChild;
        int namespaces; // in force
    };

    bool fail(const QString& error);
    int intern(const QStringRef& name, const QStringRef& uri);
    int declare(int scope, const QString& prefix, const QString& uri);
    bool openElement(int name, int scope, int namespaces);
    void addAttribute(int name, const QString& value);
    void addText(const QStringRef& text);
    void closeElement();
    void appendChild(int node);
    void keepTextBetween();
    QDomElement toDom(int element, QDomDocument* document, int outerScope) const;

    QString m_error;
    QVector<Node> m_nodes;
    QVector<Attribute> m_attributes;
    QVector<Declaration> m_declarations;
    QVector<QtSoapQName> m_names;
    QHash<QPair<QString, QString>, int> m_numbersOfNames;
    QSet<QString> m_texts;
    QVector<Open> m_open;
    QHash<QString, int> m_ids;
    QSet<QString> m_references;
    QHash<QString, QString> m_prefixesInUse; // of a DOM that has lost its declarations
    QVector<QDomElement> m_domElements;
    bool m_isDom = false;
};

} // namespace VEK_NAMESPACE::soap
