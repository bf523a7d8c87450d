#include "QtSoapQName"

QtSoapQName::QtSoapQName(const QString& name, const QString& uri)
    : m_name(name)
    , m_uri(uri)
{}

QtSoapQName& QtSoapQName::operator=(const QString& name)
{
    m_name = name;
    m_uri.clear();
    return *this;
}

QString QtSoapQName::name() const
{
    return m_name;
}

QString QtSoapQName::uri() const
{
    return m_uri;
}

bool operator==(const QtSoapQName& left, const QtSoapQName& right)
{
    return left.name() == right.name() && left.uri() == right.uri();
}

bool operator<(const QtSoapQName& left, const QtSoapQName& right)
{
    if (left.name() != right.name())
        return left.name() < right.name();
    return left.uri() < right.uri();
}
