#include "QtSoapSimpleType"

#include "SoapAccess_p.h"
#include "SoapLexical_p.h"
#include "SoapReader_p.h"
#include "SoapWriter_p.h"

#include <cmath>
#include <limits>

using namespace VEK_NAMESPACE;

void QtSoapAccess::setText(QtSoapSimpleType& value, const QString& text)
{
    value.m_content = QtSoapSimpleType::Content::Text;
    value.m_text = text;
}

void QtSoapAccess::setNull(QtSoapSimpleType& value)
{
    value.m_content = QtSoapSimpleType::Content::Null;
    value.m_text.clear();
}

QtSoapSimpleType::QtSoapSimpleType() = default;

QtSoapSimpleType::QtSoapSimpleType(const QtSoapQName& name)
    : QtSoapType(name)
{}

QtSoapSimpleType::QtSoapSimpleType(const QtSoapQName& name, int value)
    : QtSoapType(name, Int)
    , m_content(Content::Text)
    , m_text(QString::number(value))
{}

QtSoapSimpleType::QtSoapSimpleType(const QtSoapQName& name, bool value, int)
    : QtSoapType(name, Boolean)
    , m_content(Content::Text)
    , m_text(value ? QStringLiteral("true") : QStringLiteral("false"))
{}

QtSoapSimpleType::QtSoapSimpleType(const QtSoapQName& name, const QString& value)
    : QtSoapType(name, String)
    , m_content(Content::Text)
    , m_text(value)
{}

QtSoapSimpleType::QtSoapSimpleType(const QtSoapSimpleType& other) = default;
QtSoapSimpleType& QtSoapSimpleType::operator=(const QtSoapSimpleType& other) = default;
QtSoapSimpleType::~QtSoapSimpleType() = default;

void QtSoapSimpleType::clear()
{
    QtSoapType::clear();
    m_content = Content::None;
    m_text.clear();
}

bool QtSoapSimpleType::parse(QDomNode node)
{
    return soap::parse(*this, node, soap::Kind::Simple);
}

bool QtSoapSimpleType::isValid() const
{
    return m_content != Content::None;
}

QVariant QtSoapSimpleType::value() const
{
    return m_content == Content::Text ? soap::toVariant(type(), m_text) : QVariant();
}

QDomElement QtSoapSimpleType::toDomElement(QDomDocument document) const
{
    const soap::WriteLevel level;
    if (level.isTooDeep())
        return QDomElement();
    QDomElement element = soap::createElement(document, *this);
    if (!href().isEmpty())
        return element;
    if (m_content == Content::Text)
        soap::addText(element, m_text);
    else
        soap::markAsNull(element);
    return element;
}

QString QtSoapSimpleType::toString() const
{
    return m_text;
}

int QtSoapSimpleType::toInt() const
{
    const QString text = soap::trimmed(m_text);
    if (text == QLatin1String("true"))
        return 1;
    qlonglong whole = 0;
    if (soap::toLongLong(text, &whole)) {
        const bool fits =
            whole >= std::numeric_limits<int>::min() && whole <= std::numeric_limits<int>::max();
        return fits ? static_cast<int>(whole) : 0;
    }
    const double real = std::trunc(text.toDouble());
    const bool fits =
        real >= std::numeric_limits<int>::min() && real <= std::numeric_limits<int>::max();
    return fits ? static_cast<int>(real) : 0;
}

bool QtSoapSimpleType::toBool() const
{
    const QString text = soap::trimmed(m_text);
    if (text == QLatin1String("true"))
        return true;
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber && !std::isnan(number) && number != 0.0;
}
