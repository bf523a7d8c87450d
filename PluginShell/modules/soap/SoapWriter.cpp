#include "SoapWriter_p.h"

#include "SoapAccess_p.h"
#include "SoapLexical_p.h"
#include "SoapNames_p.h"

#include <QXmlStreamReader>

namespace VEK_NAMESPACE::soap {

namespace {

thread_local int level = 0;

/// Elements hold their document by a plain pointer. A caller's null document would be gone at once,
/// so its elements belong to this one.
QDomDocument& documentOrOther(QDomDocument& document)
{
    if (!document.isNull())
        return document;
    static QDomDocument* const other = new QDomDocument(QString{});
    return *other;
}

bool isAsciiName(const QString& text)
{
    for (int i = 0; i < text.size(); ++i) {
        const ushort code = text.at(i).unicode();
        const bool isLetter =
            (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z') || code == '_';
        const bool isOther = (code >= '0' && code <= '9') || code == '-' || code == '.';
        if (!isLetter && (!isOther || i == 0))
            return false;
    }
    return !text.isEmpty();
}

/// Beyond ASCII there are some two hundred ranges, which the parser knows.
bool isName(const QString& text)
{
    if (isAsciiName(text))
        return true;
    for (const QChar character : text) {
        const ushort code = character.unicode();
        const bool isAscii = code < 0x80;
        if (character.isSurrogate()
            || (isAscii && !isAsciiName(QLatin1Char('_') + QString(character))))
            return false;
    }
    QXmlStreamReader parser(QLatin1Char('<') + text + QLatin1String("/>"));
    return parser.readNextStartElement() && parser.name() == text;
}

QString qualifiedName(const QtSoapQName& name)
{
    QString local = toXmlName(name.name().isEmpty() ? QStringLiteral("item") : name.name());
    if (name.uri().isEmpty())
        return local;
    return QtSoapNamespaces::instance().prefixFor(name.uri()) + QLatin1Char(':') + local;
}

enum class Place
{
    Text,
    Attribute
};

/// Appends the text with its special characters escaped, and without what XML can't carry.
void escape(const QString& text, Place place, QString* out)
{
    const int size = text.size();
    for (int i = 0; i < size; ++i) {
        const QChar character = text.at(i);
        const ushort code = character.unicode();
        switch (code) {
        case '<':
            *out += QLatin1String("&lt;");
            continue;
        case '>':
            *out += QLatin1String("&gt;");
            continue;
        case '&':
            *out += QLatin1String("&amp;");
            continue;
        case '"':
            *out += place == Place::Text ? QLatin1String("\"") : QLatin1String("&quot;");
            continue;
        case '\r':
            *out += QLatin1String("&#xD;"); // which would be read as a line feed
            continue;
        case '\n':
            *out += place == Place::Text ? QLatin1String("\n") : QLatin1String("&#xA;");
            continue;
        case '\t':
            *out += place == Place::Text ? QLatin1String("\t") : QLatin1String("&#x9;");
            continue;
        default:
            break;
        }
        if (character.isHighSurrogate() && i + 1 < size && text.at(i + 1).isLowSurrogate()) {
            *out += character;
            *out += text.at(++i);
        } else if (code < 0x20 || character.isSurrogate() || code >= 0xFFFE) {
            *out += QChar(QChar::ReplacementCharacter);
        } else {
            *out += character;
        }
    }
}

QPair<QString, QString> split(const QString& qualifiedName)
{
    const int colon = qualifiedName.indexOf(QLatin1Char(':'));
    if (colon < 0)
        return {QString(), qualifiedName};
    return {qualifiedName.left(colon), qualifiedName.mid(colon + 1)};
}

/// Writes a tree of elements. It iterates, as a program's own types may have made it of any depth.
class Serializer
{
public:
    explicit Serializer(int indent)
        : m_indent(qBound(0, indent, 100))
    {}

    QString write(const QDomElement& root)
    {
        m_rootBindings = {{QStringLiteral("xml"), registeredUri(QStringLiteral("xml"))}};
        walk(
            root,
            [this](const QDomElement& element, int) {
                collect(element);
                return true;
            },
            [](const QDomElement&, int) {}, [](const QDomNode&) {});

        m_bindings.append({QStringLiteral("xml"), m_rootBindings.take(QStringLiteral("xml")), -1});
        walk(
            root,
            [this](const QDomElement& element, int depth) { return startElement(element, depth); },
            [this](const QDomElement& element, int depth) { endElement(element, depth); },
            [this](const QDomNode& text) { escape(text.nodeValue(), Place::Text, &m_out); });
        return m_out;
    }

private:
    struct Binding
    {
        QString prefix;
        QString uri;
        int depth;
    };

    template <typename Start, typename End, typename Text>
    static void walk(const QDomElement& root, Start start, End end, Text text)
    {
        QDomNode node = root;
        int depth = 0;
        for (;;) {
            if (node.isElement()) {
                if (start(node.toElement(), depth) && node.hasChildNodes()) {
                    node = node.firstChild();
                    ++depth;
                    continue;
                }
                end(node.toElement(), depth);
            } else if (node.isText() || node.isCDATASection()) {
                text(node);
            }
            while (depth > 0 && node.nextSibling().isNull()) {
                node = node.parentNode();
                --depth;
                end(node.toElement(), depth);
            }
            if (depth == 0)
                return;
            node = node.nextSibling();
        }
    }

    static bool isDeclaration(const QString& name)
    {
        return name == QLatin1String("xmlns") || name.startsWith(QLatin1String("xmlns:"));
    }

    /// The prefix, the local name and the namespace that a node has or, without namespace
    /// processing, is meant to have.
    struct NodeName
    {
        QString prefix;
        QString local;
        QString uri;
    };
    static NodeName nameOf(const QDomNode& node)
    {
        NodeName name;
        if (!node.localName().isNull()) {
            name = {node.prefix(), node.localName(), node.namespaceURI()};
            if (!name.uri.isEmpty() && name.prefix.isEmpty())
                name.prefix = QtSoapNamespaces::instance().prefixFor(name.uri);
        } else {
            const QPair<QString, QString> parts = split(node.nodeName());
            name = {parts.first, parts.second, QString()};
            if (!name.prefix.isEmpty())
                name.uri = registeredUri(name.prefix);
            if (!name.prefix.isEmpty() && name.uri.isEmpty())
                name = {QString(), node.nodeName(), QString()};
        }
        if (name.uri.isEmpty())
            name.prefix.clear();
        name.prefix = name.prefix.isEmpty() ? QString() : toXmlName(name.prefix);
        name.local = toXmlName(name.local);
        return name;
    }

    void collect(const QString& prefix, const QString& uri)
    {
        if (!prefix.isEmpty() && !uri.isEmpty() && !m_rootBindings.contains(prefix))
            m_rootBindings.insert(prefix, uri);
    }

    void collect(const QDomElement& element)
    {
        const NodeName name = nameOf(element);
        collect(name.prefix, name.uri);
        const QDomNamedNodeMap attributes = element.attributes();
        for (int i = 0; i < attributes.count(); ++i) {
            const QDomNode attribute = attributes.item(i);
            if (isDeclaration(attribute.nodeName())) {
                collect(split(attribute.nodeName()).second, attribute.nodeValue());
            } else {
                const NodeName attributeName = nameOf(attribute);
                collect(attributeName.prefix, attributeName.uri);
            }
        }
    }

    void declare(const QString& prefix, const QString& uri, int depth)
    {
        if (prefix.isEmpty() || uri.isEmpty())
            return;
        for (int i = m_bindings.size() - 1; i >= 0; --i) {
            if (m_bindings.at(i).prefix != prefix)
                continue;
            if (m_bindings.at(i).uri == uri || m_bindings.at(i).depth == depth)
                return;
            break;
        }
        m_bindings.append({prefix, uri, depth});
        m_out += QLatin1String(" xmlns:") + prefix + QLatin1String("=\"");
        escape(uri, Place::Attribute, &m_out);
        m_out += QLatin1Char('"');
    }

    static QString written(const NodeName& name)
    {
        return name.prefix.isEmpty() ? name.local : name.prefix + QLatin1Char(':') + name.local;
    }

    static bool hasElements(const QDomElement& element)
    {
        return !element.firstChildElement().isNull();
    }

    static bool hasText(const QDomElement& element)
    {
        for (QDomNode node = element.firstChild(); !node.isNull(); node = node.nextSibling()) {
            if (node.isText() || node.isCDATASection())
                return true;
        }
        return false;
    }

    void breakLine(int depth)
    {
        if (m_indent == 0)
            return;
        m_out += QLatin1Char('\n');
        m_out += QString(m_indent * qMin(depth, 1000), QLatin1Char(' '));
    }

    bool startElement(const QDomElement& element, int depth)
    {
        if (depth > 0 && m_mixed < 0)
            breakLine(depth);
        const NodeName name = nameOf(element);
        m_out += QLatin1Char('<') + written(name);
        if (depth == 0) {
            for (auto binding = m_rootBindings.cbegin(); binding != m_rootBindings.cend();
                 ++binding)
                declare(binding.key(), binding.value(), depth);
        }
        declare(name.prefix, name.uri, depth);

        const QDomNamedNodeMap attributes = element.attributes();
        QMap<QString, QString> values; // in a fixed order, without two of a name
        for (int i = 0; i < attributes.count(); ++i) {
            const QDomNode attribute = attributes.item(i);
            if (isDeclaration(attribute.nodeName())) {
                if (attribute.nodeName() != QLatin1String("xmlns"))
                    declare(toXmlName(split(attribute.nodeName()).second), attribute.nodeValue(),
                            depth);
                continue;
            }
            const NodeName attributeName = nameOf(attribute);
            declare(attributeName.prefix, attributeName.uri, depth);
            values.insert(written(attributeName), attribute.nodeValue());
        }
        for (auto value = values.cbegin(); value != values.cend(); ++value) {
            m_out += QLatin1Char(' ') + value.key() + QLatin1String("=\"");
            escape(value.value(), Place::Attribute, &m_out);
            m_out += QLatin1Char('"');
        }
        if (!element.hasChildNodes()) {
            m_out += QLatin1String("/>");
            return false;
        }
        m_out += QLatin1Char('>');
        if (m_indent > 0 && m_mixed < 0 && hasText(element))
            m_mixed = depth;
        return true;
    }

    void endElement(const QDomElement& element, int depth)
    {
        if (element.hasChildNodes()) {
            if (m_mixed < 0 && hasElements(element))
                breakLine(depth);
            m_out += QLatin1String("</") + written(nameOf(element)) + QLatin1Char('>');
        }
        if (m_mixed == depth)
            m_mixed = -1;
        while (!m_bindings.isEmpty() && m_bindings.last().depth >= depth)
            m_bindings.removeLast();
    }

    const int m_indent;
    QMap<QString, QString> m_rootBindings;
    QVector<Binding> m_bindings;
    int m_mixed = -1; // the depth of the element inside of which white space counts
    QString m_out;
};

} // namespace

QDomElement createElement(QDomDocument& document, const QtSoapType& value)
{
    const QtSoapQName name = value.name();
    QDomElement element =
        documentOrOther(document).createElementNS(name.uri(), qualifiedName(name));
    if (!value.id().isEmpty())
        element.setAttribute(QStringLiteral("id"), value.id());
    if (!value.href().isEmpty()) {
        element.setAttribute(QStringLiteral("href"), value.href());
        return element;
    }
    QtSoapQName type = QtSoapAccess::declaredType(value);
    if (type.name().isEmpty())
        type = typeQName(value.type());
    // A struct shows itself by its members.
    if (!type.name().isEmpty() && !(type == typeQName(QtSoapType::Struct))) {
        const QtSoapQName attribute(QStringLiteral("type"), schemaInstanceUri());
        const QString qualified = qualify(element, type);
        element.setAttributeNS(schemaInstanceUri(), qualifiedName(attribute), qualified);
    }
    return element;
}

void addText(QDomElement& element, const QString& text)
{
    if (!text.isEmpty())
        element.appendChild(element.ownerDocument().createTextNode(text));
}

void markAsNull(QDomElement& element)
{
    element.setAttributeNS(schemaInstanceUri(),
                           qualifiedName(QtSoapQName(QStringLiteral("null"), schemaInstanceUri())),
                           QStringLiteral("1"));
}

QString qualify(QDomElement& element, const QtSoapQName& name)
{
    QString local = toXmlName(name.name());
    if (name.uri().isEmpty())
        return local;
    const QString prefix = QtSoapNamespaces::instance().prefixFor(name.uri());
    // QDomElement::save() declares the prefixes of names by itself, and doesn't see that there is a
    // declaration: the encoding's is that of the array's other attributes. The schema's stands on
    // the envelope, or else on the outermost of a value's elements.
    const bool isDeclared = name.uri() == encodingUri() || (name.uri() == schemaUri() && level > 1)
        || element.prefix() == prefix;
    if (!isDeclared)
        element.setAttribute(QLatin1String("xmlns:") + prefix, name.uri());
    return prefix + QLatin1Char(':') + local;
}

void declareTypes(QDomElement& element)
{
    qualify(element, typeQName(QtSoapType::String));
}

QString toXmlName(const QString& text)
{
    if (isName(text))
        return text;
    QString name = text;
    for (QChar& character : name) {
        if (!isName(QLatin1Char('_') + QString(character)))
            character = QLatin1Char('_');
    }
    if (!isName(name))
        name.prepend(QLatin1Char('_'));
    return name;
}

QString toXml(const QDomElement& root, int indent)
{
    return Serializer(indent).write(root);
}

WriteLevel::WriteLevel()
{
    ++level;
}

WriteLevel::~WriteLevel()
{
    --level;
}

bool WriteLevel::isTooDeep() const
{
    return level > maximumValueDepth;
}

} // namespace VEK_NAMESPACE::soap
