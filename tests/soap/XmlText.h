#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVector>
#include <QXmlStreamReader>

/// \file
/// XML as namespace-aware readers understand it, whatever its prefixes and layout: a stream reader
/// that shares no code with the DOM's.
namespace XmlText {

/// "env:", "enc:", "xsd:" and "xsi:" stand for SOAP's namespaces, and "{uri}" for others.
inline QString qualified(const QString& space, const QString& name)
{
    static const QMap<QString, QString> prefixes{
        {"http://schemas.xmlsoap.org/soap/envelope/", "env:"},
        {"http://schemas.xmlsoap.org/soap/encoding/", "enc:"},
        {"http://www.w3.org/1999/XMLSchema", "xsd:"},
        {"http://www.w3.org/1999/XMLSchema-instance", "xsi:"}};
    if (space.isEmpty())
        return name;
    return prefixes.value(space, QStringLiteral("{%1}").arg(space)) + name;
}

class Renderer
{
public:
    explicit Renderer(const QString& document)
        : m_reader(document)
    {}

    QString render()
    {
        if (!m_reader.readNextStartElement())
            return QStringLiteral("no XML: ") + m_reader.errorString();
        const QString result = element();
        while (!m_reader.atEnd())
            m_reader.readNext();
        return m_reader.hasError() ? QStringLiteral("no XML: ") + m_reader.errorString() : result;
    }

private:
    using Scope = QMap<QString, QString>;

    /// A text that names something by a prefix, such as "xsd:int[2]".
    static QString resolved(const QString& text, const Scope& scope)
    {
        const int colon = text.indexOf(QLatin1Char(':'));
        if (colon < 0)
            return qualified(scope.value(QString()), text);
        const QString prefix = text.left(colon);
        if (!scope.contains(prefix))
            return QStringLiteral("(undeclared %1)").arg(text);
        return qualified(scope.value(prefix), text.mid(colon + 1));
    }

    static bool isName(const QString& attribute)
    {
        return attribute == QLatin1String("xsi:type")
            || attribute == QLatin1String("enc:arrayType");
    }

    QString element()
    {
        Scope scope = m_scopes.isEmpty() ? Scope() : m_scopes.last();
        const auto declarations = m_reader.namespaceDeclarations();
        for (const auto& declaration : declarations)
            scope[declaration.prefix().toString()] = declaration.namespaceUri().toString();
        m_scopes.append(scope);

        QString head = qualified(m_reader.namespaceUri().toString(), m_reader.name().toString());
        const bool namesACode = head == QLatin1String("faultcode");
        QMap<QString, QString> attributes;
        const auto list = m_reader.attributes();
        for (const auto& attribute : list) {
            const QString name =
                qualified(attribute.namespaceUri().toString(), attribute.name().toString());
            const QString value = attribute.value().toString();
            attributes[name] = isName(name) ? resolved(value, scope) : value;
        }
        for (auto i = attributes.cbegin(); i != attributes.cend(); ++i)
            head += QStringLiteral(" %1=%2").arg(i.key(), i.value());

        QStringList children;
        QString text;
        while (m_reader.readNext() != QXmlStreamReader::EndElement && !m_reader.hasError()) {
            if (m_reader.isStartElement())
                children << element();
            else if (m_reader.isCharacters())
                text += m_reader.text();
        }
        m_scopes.removeLast();
        if (!children.isEmpty()) {
            if (!text.trimmed().isEmpty())
                children << QStringLiteral("mixed with \"%1\"").arg(text.trimmed());
            return head + QStringLiteral(" (%1)").arg(children.join(QLatin1String(", ")));
        }
        if (namesACode)
            text = resolved(text, scope);
        return text.isEmpty() ? head : head + QStringLiteral(" \"%1\"").arg(text);
    }

    QXmlStreamReader m_reader;
    QVector<Scope> m_scopes;
};

/// Such as `a x=1 ({urn:b}c, d "text")`: attributes in the order of their names, elements in the
/// document's. The values of xsi:type and enc:arrayType, and a fault's code, are qualified too.
inline QString of(const QString& document)
{
    return Renderer(document).render();
}

} // namespace XmlText
