#include "SoapTree_p.h"

#include "SoapLexical_p.h"
#include "SoapNames_p.h"

#include <QTextCodec>
#include <QXmlStreamReader>

#include <cstring>

namespace VEK_NAMESPACE::soap {

namespace {

QString tooDeep()
{
    return QStringLiteral("The elements nest deeper than %1 levels").arg(maximumElementDepth);
}

QString tooManyAttributes()
{
    return QStringLiteral("An element has more than %1 attributes").arg(maximumAttributes);
}

QString typeDeclaration()
{
    return QStringLiteral("The document has a document type declaration, which SOAP doesn't allow");
}

/// The encoding that the XML declaration names; empty if there is none.
QByteArray declaredEncoding(const QByteArray& document)
{
    if (!document.startsWith("<?xml"))
        return QByteArray();
    const QByteArray declaration = document.left(document.indexOf("?>"));
    int at = declaration.indexOf("encoding");
    if (at < 0)
        return QByteArray();
    at += 8;
    const auto skipSpace = [&] {
        while (at < declaration.size() && isWhiteSpace(QLatin1Char(declaration.at(at))))
            ++at;
    };
    skipSpace();
    if (at >= declaration.size() || declaration.at(at) != '=')
        return QByteArray();
    ++at;
    skipSpace();
    if (at >= declaration.size())
        return QByteArray();
    const char quote = declaration.at(at);
    const int end = declaration.indexOf(quote, at + 1);
    if ((quote != '"' && quote != '\'') || end < 0)
        return QByteArray();
    return declaration.mid(at + 1, end - at - 1).trimmed();
}

/// The document in UTF-8, and whether it was recoded so that its own declaration is wrong.
bool toUtf8(const QByteArray& document, QByteArray* utf8, bool* isRecoded, QString* error)
{
    *isRecoded = false;
    *utf8 = document;
    if (document.startsWith("\xEF\xBB\xBF"))
        return true;

    QByteArray encoding;
    if (document.startsWith("\xFF\xFE") || document.startsWith(QByteArray("<\0", 2)))
        encoding = "UTF-16LE";
    else if (document.startsWith("\xFE\xFF") || document.startsWith(QByteArray("\0<", 2)))
        encoding = "UTF-16BE";
    else
        encoding = declaredEncoding(document);
    if (encoding.isEmpty() || encoding.compare("UTF-8", Qt::CaseInsensitive) == 0
        || encoding.compare("US-ASCII", Qt::CaseInsensitive) == 0) {
        return true;
    }

    QTextCodec* codec = QTextCodec::codecForName(encoding);
    if (!codec) {
        *error =
            QStringLiteral("The encoding \"%1\" isn't known").arg(QString::fromLatin1(encoding));
        return false;
    }
    QTextCodec::ConverterState state;
    const QString text = codec->toUnicode(document.constData(), document.size(), &state);
    if (state.invalidChars > 0 || state.remainingChars > 0) {
        *error = QStringLiteral("The document isn't in the encoding %1, as it says")
                     .arg(QString::fromLatin1(codec->name()));
        return false;
    }
    *utf8 = text.toUtf8();
    *isRecoded = true;
    return true;
}

/// Looks for what must not reach the parser: document types, and elements whose number of
/// attributes, which are compared with each other, would keep it busy. Whatever else is wrong is
/// left to the parser.
bool checkMarkup(const QByteArray& document, QString* error)
{
    // The bytes may be a caller's own, without a zero behind them.
    const auto startsWith = [&](int at, const char* text) {
        const int size = int(qstrlen(text));
        return document.size() - at >= size
            && std::memcmp(document.constData() + at, text, size_t(size)) == 0;
    };
    int at = 0;
    while ((at = document.indexOf('<', at)) >= 0) {
        if (startsWith(at, "<!--")) {
            at = document.indexOf("-->", at + 4);
        } else if (startsWith(at, "<![CDATA[")) {
            at = document.indexOf("]]>", at + 9);
        } else if (startsWith(at, "<?")) {
            at = document.indexOf("?>", at + 2);
        } else if (startsWith(at, "<!")) {
            *error = typeDeclaration();
            return false;
        } else {
            int attributes = 0;
            char quote = 0;
            for (; at < document.size(); ++at) {
                const char character = document.at(at);
                if (quote) {
                    if (character == quote)
                        quote = 0;
                } else if (character == '"' || character == '\'') {
                    quote = character;
                } else if (character == '>') {
                    break;
                } else if (character == '=' && ++attributes > maximumAttributes) {
                    *error = tooManyAttributes();
                    return false;
                }
            }
        }
        if (at < 0)
            break;
        ++at;
    }
    return true;
}

QPair<QString, QString> split(const QString& qualifiedName)
{
    const int colon = qualifiedName.indexOf(QLatin1Char(':'));
    if (colon < 0)
        return {QString(), qualifiedName};
    return {qualifiedName.left(colon), qualifiedName.mid(colon + 1)};
}

} // namespace

bool Tree::read(const QByteArray& document)
{
    if (document.isEmpty())
        return fail(QStringLiteral("The document is empty"));
    QByteArray utf8;
    QString error;
    bool isRecoded = false;
    if (!toUtf8(document, &utf8, &isRecoded, &error) || !checkMarkup(utf8, &error))
        return fail(error);

    QXmlStreamReader reader;
    if (isRecoded)
        reader.addData(QString::fromUtf8(utf8));
    else
        reader.addData(utf8);
    utf8.clear();

    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement: {
            const Open outer = m_open.isEmpty() ? Open{-1, -1, 0} : m_open.last();
            int scope = outer.node < 0 ? -1 : m_nodes.at(outer.node).scope;
            const QXmlStreamNamespaceDeclarations declarations = reader.namespaceDeclarations();
            for (const QXmlStreamNamespaceDeclaration& declaration : declarations) {
                scope = declare(scope, declaration.prefix().toString(),
                                declaration.namespaceUri().toString());
            }
            if (!openElement(intern(reader.QXmlStreamReader::name(), reader.namespaceUri()), scope,
                             outer.namespaces + declarations.size())) {
                return false;
            }
            const QXmlStreamAttributes attributes = reader.attributes();
            for (const QXmlStreamAttribute& attribute : attributes) {
                addAttribute(intern(attribute.name(), attribute.namespaceUri()),
                             attribute.value().toString());
            }
            break;
        }
        case QXmlStreamReader::EndElement:
            closeElement();
            break;
        case QXmlStreamReader::Characters:
            addText(reader.text());
            break;
        case QXmlStreamReader::DTD:
            return fail(typeDeclaration());
        case QXmlStreamReader::EntityReference:
            return fail(QStringLiteral("The entity \"%1\" isn't declared")
                            .arg(reader.QXmlStreamReader::name().toString()));
        default:
            break;
        }
    }
    if (reader.hasError()) {
        return fail(QStringLiteral("The document isn't well-formed: %1 (line %2, column %3)")
                        .arg(reader.errorString())
                        .arg(reader.lineNumber())
                        .arg(reader.columnNumber()));
    }
    return true;
}

bool Tree::read(const QDomDocument& document)
{
    if (document.documentElement().isNull())
        return fail(QStringLiteral("The document is empty"));
    if (!document.doctype().name().isEmpty())
        return fail(typeDeclaration());
    return read(document.documentElement());
}

bool Tree::read(const QDomElement& root)
{
    m_isDom = true;
    if (root.isNull())
        return fail(QStringLiteral("The node isn't an element"));

    // What is declared around the element, from the outside.
    QVector<QDomElement> around;
    for (QDomNode node = root.parentNode(); node.isElement(); node = node.parentNode()) {
        around.append(node.toElement());
        if (around.size() > maximumElementDepth)
            return fail(tooDeep());
    }
    int scope = -1;
    int namespaces = 0;
    const auto declareFrom = [&](const QDomElement& element) {
        const QDomNamedNodeMap attributes = element.attributes();
        if (attributes.count() > maximumAttributes)
            return fail(tooManyAttributes());
        for (int i = 0; i < attributes.count(); ++i) {
            const QDomNode attribute = attributes.item(i);
            const QPair<QString, QString> name = split(attribute.nodeName());
            if (name.first == QLatin1String("xmlns"))
                scope = declare(scope, name.second, attribute.nodeValue());
            else if (attribute.nodeName() == QLatin1String("xmlns"))
                scope = declare(scope, QString(), attribute.nodeValue());
            else
                continue;
            ++namespaces;
        }
        return true;
    };
    while (!around.isEmpty()) {
        if (!declareFrom(around.takeLast()))
            return false;
    }

    // Iterates, as the document's depth is checked only here.
    QDomNode node = root;
    for (;;) {
        if (node.isElement()) {
            if (!m_open.isEmpty()) {
                scope = m_nodes.at(m_open.last().node).scope;
                namespaces = m_open.last().namespaces;
            }
            const QDomElement element = node.toElement();
            const auto qualified = [&](const QDomNode& named, bool takesDefault) {
                if (!named.localName().isNull()) {
                    const QString name = named.localName();
                    const QString prefix = named.prefix();
                    QString uri = named.namespaceURI();
                    if (!prefix.isEmpty()) {
                        // QDomDocument overlooks a declaration behind the attribute that needs it.
                        if (uri.isEmpty())
                            uri = m_prefixesInUse.value(prefix, registeredUri(prefix));
                        else if (!m_prefixesInUse.contains(prefix))
                            m_prefixesInUse.insert(prefix, uri);
                    }
                    return intern(QStringRef(&name), QStringRef(&uri));
                }
                const QPair<QString, QString> name = split(named.nodeName());
                QString uri;
                if (takesDefault || !name.first.isEmpty()) {
                    for (int i = scope; i >= 0; i = m_declarations.at(i).outer) {
                        if (m_declarations.at(i).prefix == name.first) {
                            uri = m_declarations.at(i).uri;
                            break;
                        }
                    }
                    if (uri.isEmpty() && !name.first.isEmpty())
                        uri = registeredUri(name.first);
                }
                return intern(QStringRef(&name.second), QStringRef(&uri));
            };
            if (!declareFrom(element)
                || !openElement(qualified(element, true), scope, namespaces)) {
                return false;
            }
            m_domElements.append(element);
            const QDomNamedNodeMap attributes = element.attributes();
            for (int i = 0; i < attributes.count(); ++i) {
                const QDomNode attribute = attributes.item(i);
                const QString name = attribute.nodeName();
                if (name != QLatin1String("xmlns") && !name.startsWith(QLatin1String("xmlns:")))
                    addAttribute(qualified(attribute, false), attribute.nodeValue());
            }
            if (node.hasChildNodes()) {
                node = node.firstChild();
                continue;
            }
            closeElement();
        } else if (node.isText() || node.isCDATASection()) {
            const QString text = node.nodeValue();
            addText(QStringRef(&text));
        } else if (node.isEntityReference()) {
            return fail(QStringLiteral("The entity \"%1\" isn't declared").arg(node.nodeName()));
        }
        while (!m_open.isEmpty() && node.nextSibling().isNull()) {
            node = node.parentNode();
            closeElement();
        }
        if (m_open.isEmpty())
            return true;
        node = node.nextSibling();
    }
}

int Tree::firstChild(int element) const
{
    int child = m_nodes.at(element).firstChild;
    while (child >= 0 && m_nodes.at(child).name < 0)
        child = m_nodes.at(child).next;
    return child;
}

int Tree::nextSibling(int element) const
{
    int sibling = m_nodes.at(element).next;
    while (sibling >= 0 && m_nodes.at(sibling).name < 0)
        sibling = m_nodes.at(sibling).next;
    return sibling;
}

QtSoapQName Tree::name(int element) const
{
    return m_names.at(m_nodes.at(element).name);
}

QString Tree::text(int element) const
{
    QString text = m_nodes.at(element).text;
    for (int child = m_nodes.at(element).firstChild; child >= 0; child = m_nodes.at(child).next) {
        if (m_nodes.at(child).name < 0)
            text += m_nodes.at(child).text;
    }
    return text;
}

QString Tree::attribute(int element, const QString& name, const QString& uri) const
{
    const Node& node = m_nodes.at(element);
    for (int i = 0; i < node.attributeCount; ++i) {
        const Attribute& attribute = m_attributes.at(node.firstAttribute + i);
        const QtSoapQName& attributeName = m_names.at(attribute.name);
        if (attributeName.name() == name && attributeName.uri() == uri)
            return attribute.value;
    }
    return QString();
}

QString Tree::schemaInstanceAttribute(int element, const QString& name) const
{
    const Node& node = m_nodes.at(element);
    for (int i = 0; i < node.attributeCount; ++i) {
        const Attribute& attribute = m_attributes.at(node.firstAttribute + i);
        const QtSoapQName& attributeName = m_names.at(attribute.name);
        if (attributeName.name() == name && isSchemaInstanceUri(attributeName.uri()))
            return attribute.value;
    }
    return QString();
}

QtSoapQName Tree::resolve(int element, const QString& qualifiedName) const
{
    const QPair<QString, QString> name = split(trimmed(qualifiedName));
    for (int i = m_nodes.at(element).scope; i >= 0; i = m_declarations.at(i).outer) {
        if (m_declarations.at(i).prefix == name.first)
            return QtSoapQName(name.second, m_declarations.at(i).uri);
    }
    if (!m_isDom || name.first.isEmpty())
        return QtSoapQName(name.second);
    const auto inUse = m_prefixesInUse.constFind(name.first);
    return QtSoapQName(name.second,
                       inUse != m_prefixesInUse.constEnd() ? *inUse : registeredUri(name.first));
}

int Tree::find(const QDomElement& element) const
{
    // Text nodes are numbered, too, but aren't among the DOM's elements.
    int number = -1;
    for (const QDomElement& known : m_domElements) {
        do {
            ++number;
        } while (m_nodes.at(number).name < 0);
        if (known == element)
            return number;
    }
    return -1;
}

QDomDocument Tree::toDom(int element) const
{
    QDomDocument document(QString{});
    document.appendChild(toDom(element, &document, -1));
    return document;
}

QDomElement Tree::toDom(int element, QDomDocument* document, int outerScope) const
{
    const Node& node = m_nodes.at(element);
    const auto create = [&](const QtSoapQName& name) {
        return document->createElementNS(name.uri(), name.name());
    };
    QDomElement result = create(m_names.at(node.name));
    for (int i = node.scope; i >= 0 && i != outerScope; i = m_declarations.at(i).outer) {
        const Declaration& declaration = m_declarations.at(i);
        const QString name = declaration.prefix.isEmpty()
            ? QStringLiteral("xmlns")
            : QLatin1String("xmlns:") + declaration.prefix;
        if (!result.hasAttribute(name))
            result.setAttribute(name, declaration.uri);
    }
    for (int i = 0; i < node.attributeCount; ++i) {
        const Attribute& attribute = m_attributes.at(node.firstAttribute + i);
        const QtSoapQName& name = m_names.at(attribute.name);
        if (name.uri().isEmpty())
            result.setAttribute(name.name(), attribute.value);
        else
            result.setAttributeNS(name.uri(), name.name(), attribute.value);
    }
    if (!node.text.isEmpty())
        result.appendChild(document->createTextNode(node.text));
    for (int child = node.firstChild; child >= 0; child = m_nodes.at(child).next) {
        if (m_nodes.at(child).name < 0)
            result.appendChild(document->createTextNode(m_nodes.at(child).text));
        else
            result.appendChild(toDom(child, document, node.scope));
    }
    return result;
}

bool Tree::fail(const QString& error)
{
    m_error = error;
    return false;
}

int Tree::intern(const QStringRef& name, const QStringRef& uri)
{
    // Most names are known: no copy is made to look.
    const QPair<QString, QString> borrowed(QString::fromRawData(name.unicode(), name.size()),
                                           QString::fromRawData(uri.unicode(), uri.size()));
    const auto known = m_numbersOfNames.constFind(borrowed);
    if (known != m_numbersOfNames.constEnd())
        return *known;
    const QPair<QString, QString> own(name.toString(), uri.toString());
    m_names.append(QtSoapQName(own.first, own.second));
    m_numbersOfNames.insert(own, m_names.size() - 1);
    return m_names.size() - 1;
}

int Tree::declare(int scope, const QString& prefix, const QString& uri)
{
    m_declarations.append({scope, prefix, uri});
    return m_declarations.size() - 1;
}

bool Tree::openElement(int name, int scope, int namespaces)
{
    if (m_open.size() >= maximumElementDepth)
        return fail(tooDeep());
    if (namespaces > maximumNamespaces) {
        return fail(QStringLiteral("More than %1 namespaces are declared in one place")
                        .arg(maximumNamespaces));
    }
    keepTextBetween();
    Node node;
    node.name = name;
    node.scope = scope;
    node.firstAttribute = m_attributes.size();
    m_nodes.append(node);
    const int number = m_nodes.size() - 1;
    if (!m_open.isEmpty())
        appendChild(number);
    m_open.append({number, -1, namespaces});
    return true;
}

void Tree::addAttribute(int name, const QString& value)
{
    const int element = m_open.last().node;
    const QtSoapQName& attributeName = m_names.at(name);
    QString kept = value;
    if (attributeName.uri().isEmpty()) {
        if (attributeName.name() == QLatin1String("id")) {
            if (!m_ids.contains(value))
                m_ids.insert(value, element);
        } else if (attributeName.name() == QLatin1String("href")
                   && value.startsWith(QLatin1Char('#'))) {
            m_references.insert(value.mid(1));
        }
    } else if (attributeName.name() == QLatin1String("type")) {
        kept = *m_texts.insert(value); // a few, over and over
    }
    m_attributes.append({name, kept});
    ++m_nodes[element].attributeCount;
}

void Tree::addText(const QStringRef& text)
{
    if (!m_open.isEmpty())
        m_nodes[m_open.last().node].text += text;
}

void Tree::closeElement()
{
    if (m_open.last().lastChild >= 0)
        keepTextBetween();
    else
        m_nodes[m_open.last().node].text.squeeze();
    m_open.removeLast();
}

void Tree::appendChild(int node)
{
    Open& open = m_open.last();
    if (open.lastChild < 0)
        m_nodes[open.node].firstChild = node;
    else
        m_nodes[open.lastChild].next = node;
    open.lastChild = node;
}

void Tree::keepTextBetween()
{
    if (m_open.isEmpty())
        return;
    QString text;
    text.swap(m_nodes[m_open.last().node].text);
    if (isBlank(text))
        return;
    Node node;
    node.text = text;
    m_nodes.append(node);
    appendChild(m_nodes.size() - 1);
}

} // namespace VEK_NAMESPACE::soap
