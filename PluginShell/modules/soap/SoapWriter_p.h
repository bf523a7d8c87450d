#pragma once

#include "qtsoap.h"

namespace VEK_NAMESPACE::soap {

/// An element with the value's name, id, reference and type.
QDomElement createElement(QDomDocument& document, const QtSoapType& value);
void addText(QDomElement& element, const QString& text);
void markAsNull(QDomElement& element);

/// Declares on the element, unless that is done, what an attribute or text with a qualified name
/// needs; the result is that name with its prefix.
QString qualify(QDomElement& element, const QtSoapQName& name);

/// Declares what the types of members need, if the element is the outermost.
void declareTypes(QDomElement& element);

/// The nearest text that is a name without prefix in XML.
QString toXmlName(const QString& text);

/// The document with its namespaces declared at the root. An element with a text isn't indented
/// inside.
QString toXml(const QDomElement& root, int indent);

/// Counts how deep values nest while they are written.
class WriteLevel
{
public:
    WriteLevel();
    ~WriteLevel();

    bool isTooDeep() const;

private:
    Q_DISABLE_COPY(WriteLevel)
};

} // namespace VEK_NAMESPACE::soap
