#include "QtSoapNamespaces"

#include "SoapAccess_p.h"
#include "SoapNames_p.h"
#include "SoapWriter_p.h"

#include <QHash>
#include <QMutex>
#include <QMutexLocker>

using namespace VEK_NAMESPACE;

struct QtSoapNamespaces::Data
{
    mutable QMutex mutex;
    QHash<QString, QString> prefixes; // by URI
    QHash<QString, QString> uris; // by prefix
    int made = 0;

    void bind(const QString& prefix, const QString& uri)
    {
        prefixes.remove(uris.value(prefix));
        uris.remove(prefixes.value(uri));
        prefixes.insert(uri, prefix);
        uris.insert(prefix, uri);
    }
};

QtSoapNamespaces::QtSoapNamespaces()
    : m_data(new Data)
{
    m_data->bind(QStringLiteral("SOAP-ENV"), soap::envelopeUri());
    m_data->bind(QStringLiteral("SOAP-ENC"), soap::encodingUri());
    m_data->bind(QStringLiteral("xsd"), soap::schemaUri());
    m_data->bind(QStringLiteral("xsi"), soap::schemaInstanceUri());
    m_data->bind(QStringLiteral("xml"), QStringLiteral("http://www.w3.org/XML/1998/namespace"));
}

QtSoapNamespaces::~QtSoapNamespaces() = default;

QtSoapNamespaces& QtSoapNamespaces::instance()
{
    // Never deleted: values may still be written while static objects go.
    static QtSoapNamespaces* const namespaces = new QtSoapNamespaces;
    return *namespaces;
}

void QtSoapNamespaces::registerNamespace(const QString& prefix, const QString& uri)
{
    const bool isReserved = prefix.startsWith(QLatin1String("xml"), Qt::CaseInsensitive);
    if (isReserved || uri.isEmpty() || prefix.isEmpty() || soap::toXmlName(prefix) != prefix)
        return;

    QMutexLocker lock(&m_data->mutex);
    const QString holder = m_data->uris.value(prefix);
    const bool isOfSoap = holder == soap::envelopeUri() || holder == soap::encodingUri()
        || holder == soap::schemaUri() || holder == soap::schemaInstanceUri();
    const bool isOfXml =
        uri == m_data->uris.value(QStringLiteral("xml")) || uri == soap::xmlnsUri();
    if (!isOfSoap && !isOfXml)
        m_data->bind(prefix, uri);
}

QString QtSoapNamespaces::prefixFor(const QString& uri)
{
    if (uri.isEmpty())
        return QString();

    QMutexLocker lock(&m_data->mutex);
    const auto known = m_data->prefixes.constFind(uri);
    if (known != m_data->prefixes.constEnd())
        return *known;
    QString prefix;
    do {
        prefix = QLatin1String("ns") + QString::number(++m_data->made);
    } while (m_data->uris.contains(prefix));
    m_data->bind(prefix, uri);
    return prefix;
}

QString QtSoapAccess::registeredUri(const QString& prefix)
{
    const QtSoapNamespaces::Data& data = *QtSoapNamespaces::instance().m_data;
    QMutexLocker lock(&data.mutex);
    return data.uris.value(prefix);
}

QString soap::registeredUri(const QString& prefix)
{
    return QtSoapAccess::registeredUri(prefix);
}
