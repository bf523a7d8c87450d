#pragma once

#include "qtsoap.h"

namespace VEK_NAMESPACE::soap {

/// Limits that keep a hostile envelope from using up the stack or the time. qtsoap.h states them.
constexpr int maximumElementDepth = 200;
constexpr int maximumValueDepth = 196; // beside envelope, body, and what stands around a detail
constexpr int maximumAttributes = 256;
constexpr int maximumNamespaces = 256;
constexpr int maximumExpansion = 1000000;
constexpr int maximumRereads = 10000;

inline QString envelopeUri()
{
    return QStringLiteral("http://schemas.xmlsoap.org/soap/envelope/");
}

inline QString encodingUri()
{
    return QStringLiteral("http://schemas.xmlsoap.org/soap/encoding/");
}

inline QString nextActorUri()
{
    return QStringLiteral("http://schemas.xmlsoap.org/soap/actor/next");
}

/// The schema namespaces that are written.
inline QString schemaUri()
{
    return QStringLiteral("http://www.w3.org/1999/XMLSchema");
}

inline QString schemaInstanceUri()
{
    return QStringLiteral("http://www.w3.org/1999/XMLSchema-instance");
}

inline QString xmlnsUri()
{
    return QStringLiteral("http://www.w3.org/2000/xmlns/");
}

/// Whether it is one of those that are read.
bool isSchemaUri(const QString& uri);
bool isSchemaInstanceUri(const QString& uri);

/// The qualified name of a type in the list; empty for Other.
QtSoapQName typeQName(QtSoapType::Type type);

/// The type of that qualified name; Other for all outside of the schema and the encoding.
QtSoapType::Type typeOf(const QtSoapQName& name);

/// The namespace that a registered prefix is written for; empty if there is none.
QString registeredUri(const QString& prefix);

} // namespace VEK_NAMESPACE::soap
