#include "QtSoapType"

#include "SoapAccess_p.h"
#include "SoapNames_p.h"
#include "SoapReader_p.h"
#include "SoapWriter_p.h"

#include <QSet>

#include <iterator>

using namespace VEK_NAMESPACE;

namespace {

// In the order of QtSoapType::Type.
const char* const typeNames[] = {
    "duration",
    "dateTime",
    "time",
    "date",
    "gYearMonth",
    "gYear",
    "gMonthDay",
    "gDay",
    "gMonth",
    "boolean",
    "base64Binary",
    "hexBinary",
    "float",
    "double",
    "anyURI",
    "QName",
    "NOTATION",
    "string",
    "normalizedString",
    "token",
    "language",
    "Name",
    "NMTOKEN",
    "NCName",
    "ID",
    "IDREF",
    "ENTITY",
    "decimal",
    "integer",
    "nonPositiveInteger",
    "negativeInteger",
    "long",
    "int",
    "short",
    "byte",
    "nonNegativeInteger",
    "unsignedLong",
    "positiveInteger",
    "unsignedInt",
    "unsignedShort",
    "unsignedByte",
    "Array",
    "Struct",
};
static_assert(std::size(typeNames) == QtSoapType::Other, "a name for each type");

QHash<QString, QtSoapType::Type> makeTypesByName()
{
    QHash<QString, QtSoapType::Type> types;
    for (int type = 0; type < QtSoapType::Other; ++type)
        types.insert(QLatin1String(typeNames[type]), static_cast<QtSoapType::Type>(type));

    // The names of 1999, and the one of SOAP's own encoding.
    types.insert(QStringLiteral("timeInstant"), QtSoapType::DateTime);
    types.insert(QStringLiteral("timeDuration"), QtSoapType::Duration);
    types.insert(QStringLiteral("uriReference"), QtSoapType::AnyURI);
    types.insert(QStringLiteral("CDATA"), QtSoapType::NormalizedString);
    types.insert(QStringLiteral("base64"), QtSoapType::Base64Binary);
    return types;
}

} // namespace

struct QtSoapType::Extra
{
    QString id;
    QString href;
    QString error;
    QtSoapQName declaredType;
};

bool soap::isSchemaUri(const QString& uri)
{
    return uri == schemaUri() || uri == QLatin1String("http://www.w3.org/2001/XMLSchema");
}

bool soap::isSchemaInstanceUri(const QString& uri)
{
    return uri == schemaInstanceUri()
        || uri == QLatin1String("http://www.w3.org/2001/XMLSchema-instance");
}

QtSoapQName soap::typeQName(QtSoapType::Type type)
{
    if (type == QtSoapType::Other)
        return QtSoapQName();
    const bool isContainer = type == QtSoapType::Array || type == QtSoapType::Struct;
    return QtSoapQName(QtSoapType::typeToName(type), isContainer ? encodingUri() : schemaUri());
}

QtSoapType::Type soap::typeOf(const QtSoapQName& name)
{
    const bool isEncoding = name.uri() == encodingUri();
    if (!isEncoding && !isSchemaUri(name.uri()))
        return QtSoapType::Other;
    const QtSoapType::Type type = QtSoapType::nameToType(name.name());
    const bool isContainer = type == QtSoapType::Array || type == QtSoapType::Struct;
    return isContainer && !isEncoding ? QtSoapType::Other : type;
}

void QtSoapAccess::retain(const QtSoapType* value)
{
    value->m_owners.fetch_add(1, std::memory_order_relaxed);
}

void QtSoapAccess::release(const QtSoapType* value)
{
    if (value->m_owners.fetch_sub(1, std::memory_order_acq_rel) != 1)
        return;

    // What a value owns is deleted after it and not inside of its destructor, as a program may have
    // nested values deeper than the stack reaches.
    static thread_local QVector<const QtSoapType*>* pending = nullptr;
    if (pending) {
        pending->append(value);
        return;
    }
    QVector<const QtSoapType*> values{value};
    pending = &values;
    while (!values.isEmpty())
        delete values.takeLast();
    pending = nullptr;
}

QtSoapType& QtSoapAccess::placeholder()
{
    // Never deleted: other static objects may refer to it until the end.
    static QtSoapType* const value = [] {
        auto* made = new QtSoapType;
        made->m_placeholder = true;
        return made;
    }();
    return *value;
}

QtSoapQName QtSoapAccess::declaredType(const QtSoapType& value)
{
    return value.m_extra ? value.m_extra->declaredType : QtSoapQName();
}

void QtSoapAccess::setDeclaredType(QtSoapType& value, const QtSoapQName& type)
{
    if (!value.m_extra) {
        if (type == QtSoapQName())
            return;
        value.m_extra.reset(new QtSoapType::Extra);
    }
    value.m_extra->declaredType = type;
}

bool QtSoapAccess::contains(const QtSoapType& value, const QtSoapType& part)
{
    if (&value == &part)
        return true;
    if (!isOwned(part))
        return false;

    QVector<const QtSoapType*> pending{&value};
    QSet<const QtSoapType*> seen{&value};
    const auto visit = [&](const QtSoapType* member) {
        if (member->count() > 0 && !seen.contains(member)) {
            seen.insert(member);
            pending.append(member);
        }
        return member == &part;
    };
    while (!pending.isEmpty()) {
        const QtSoapType* container = pending.takeLast();
        if (const auto* structure = dynamic_cast<const QtSoapStruct*>(container)) {
            for (const StructData::Member& member : qAsConst(structure->m_data->members)) {
                if (visit(member.value.get()))
                    return true;
            }
        } else if (const auto* array = dynamic_cast<const QtSoapArray*>(container)) {
            for (const ValuePointer& member : qAsConst(array->m_data->members)) {
                if (visit(member.get()))
                    return true;
            }
        }
    }
    return false;
}

QtSoapType* soap::ValuePointer::take()
{
    QtSoapType* value = m_value;
    m_value = nullptr;
    if (value)
        QtSoapAccess::disown(value);
    return value;
}

QtSoapType::QtSoapType() = default;

QtSoapType::QtSoapType(const QtSoapQName& name, Type type)
    : m_type(type)
    , m_name(name)
{}

QtSoapType::QtSoapType(const QtSoapType& other)
    : m_type(other.m_type)
    , m_name(other.m_name)
    , m_extra(other.m_extra ? new Extra(*other.m_extra) : nullptr)
{}

QtSoapType& QtSoapType::operator=(const QtSoapType& other)
{
    if (m_placeholder || this == &other)
        return *this;
    m_type = other.m_type;
    m_name = other.m_name;
    m_extra.reset(other.m_extra ? new Extra(*other.m_extra) : nullptr);
    return *this;
}

QtSoapType::~QtSoapType() = default;

void QtSoapType::clear()
{
    if (!m_extra)
        return;
    Extra left;
    left.declaredType = m_extra->declaredType;
    *m_extra = left;
}

bool QtSoapType::parse(QDomNode node) // NOLINT(performance-unnecessary-value-param): public
{
    return soap::parse(*this, node, soap::Kind::Base);
}

bool QtSoapType::isValid() const
{
    return false;
}

int QtSoapType::count() const
{
    return 0;
}

QVariant QtSoapType::value() const
{
    return QVariant();
}

QtSoapType& QtSoapType::operator[](int)
{
    return QtSoapAccess::placeholder();
}

QtSoapType& QtSoapType::operator[](const QtSoapQName&)
{
    return QtSoapAccess::placeholder();
}

QtSoapType& QtSoapType::operator[](const QString&)
{
    return QtSoapAccess::placeholder();
}

const QtSoapType& QtSoapType::operator[](int) const
{
    return QtSoapAccess::placeholder();
}

const QtSoapType& QtSoapType::operator[](const QtSoapQName&) const
{
    return QtSoapAccess::placeholder();
}

const QtSoapType& QtSoapType::operator[](const QString&) const
{
    return QtSoapAccess::placeholder();
}

QDomElement QtSoapType::toDomElement(QDomDocument document) const
{
    const soap::WriteLevel level;
    return level.isTooDeep() ? QDomElement() : soap::createElement(document, *this);
}

QtSoapType::Type QtSoapType::type() const
{
    return m_type;
}

QString QtSoapType::id() const
{
    return m_extra ? m_extra->id : QString();
}

QString QtSoapType::href() const
{
    return m_extra ? m_extra->href : QString();
}

QString QtSoapType::typeName() const
{
    const QString declared = m_extra ? m_extra->declaredType.name() : QString();
    return declared.isEmpty() ? typeToName(type()) : declared;
}

QtSoapQName QtSoapType::name() const
{
    return m_name;
}

QString QtSoapType::toString() const
{
    return QString();
}

int QtSoapType::toInt() const
{
    return 0;
}

bool QtSoapType::toBool() const
{
    return false;
}

void QtSoapType::setName(const QtSoapQName& name)
{
    if (!m_placeholder)
        m_name = name;
}

void QtSoapType::setId(const QString& id)
{
    if (m_placeholder || (!m_extra && id.isEmpty()))
        return;
    if (!m_extra)
        m_extra.reset(new Extra);
    m_extra->id = id;
}

void QtSoapType::setHref(const QString& href)
{
    if (m_placeholder || (!m_extra && href.isEmpty()))
        return;
    if (!m_extra)
        m_extra.reset(new Extra);
    m_extra->href = href;
}

QString QtSoapType::errorString() const
{
    return m_extra ? m_extra->error : QString();
}

void QtSoapType::setErrorString(const QString& error)
{
    if (m_placeholder || (!m_extra && error.isEmpty()))
        return;
    if (!m_extra)
        m_extra.reset(new Extra);
    m_extra->error = error;
}

QString QtSoapType::typeToName(Type type)
{
    if (type < 0 || type >= Other)
        return QString();
    return QLatin1String(typeNames[type]);
}

QtSoapType::Type QtSoapType::nameToType(const QString& name)
{
    static const QHash<QString, Type> types = makeTypesByName();
    return types.value(name, Other);
}
