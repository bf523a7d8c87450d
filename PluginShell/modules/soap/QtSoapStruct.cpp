#include "QtSoapStruct"

#include "SoapAccess_p.h"
#include "SoapReader_p.h"
#include "SoapWriter_p.h"

using namespace VEK_NAMESPACE;
using soap::ValuePointer;

namespace {

// Up to here looking through the members is as fast, and an index would take more than they do.
constexpr int membersWithoutIndex = 16;

QPair<QString, QString> key(const QtSoapQName& name)
{
    return {name.name(), name.uri()};
}

} // namespace

int QtSoapStruct::Data::find(const QtSoapQName& name) const
{
    if (members.size() > membersWithoutIndex)
        return m_byName.value(key(name), -1);
    for (int i = 0; i < members.size(); ++i) {
        if (members.at(i).name == name)
            return i;
    }
    return -1;
}

int QtSoapStruct::Data::findInAnyNamespace(const QString& name) const
{
    const int exact = find(QtSoapQName(name));
    if (exact >= 0)
        return exact;
    if (members.size() > membersWithoutIndex)
        return m_byLocalName.value(name, -1);
    for (int i = 0; i < members.size(); ++i) {
        if (members.at(i).name.name() == name)
            return i;
    }
    return -1;
}

void QtSoapStruct::Data::append(const ValuePointer& value)
{
    members.append({value->name(), value});
    if (m_byName.isEmpty())
        makeIndex();
    else
        addToIndex(members.size() - 1);
}

void QtSoapStruct::Data::prepend(const ValuePointer& value)
{
    members.prepend({value->name(), value});
    makeIndex();
}

void QtSoapStruct::Data::replace(int at, const ValuePointer& value)
{
    members[at].value = value;
}

void QtSoapStruct::Data::rename(int at, const QtSoapQName& name)
{
    members[at].name = name;
    makeIndex();
}

void QtSoapStruct::Data::clear()
{
    *this = Data();
}

void QtSoapStruct::Data::makeIndex()
{
    m_byName.clear();
    m_byLocalName.clear();
    if (members.size() <= membersWithoutIndex)
        return;
    for (int i = 0; i < members.size(); ++i)
        addToIndex(i);
}

void QtSoapStruct::Data::addToIndex(int at)
{
    const QtSoapQName& name = members.at(at).name;
    if (!m_byName.contains(key(name)))
        m_byName.insert(key(name), at);
    if (!m_byLocalName.contains(name.name()))
        m_byLocalName.insert(name.name(), at);
}

QtSoapStruct::QtSoapStruct()
    : QtSoapStruct(QtSoapQName())
{}

QtSoapStruct::QtSoapStruct(const QtSoapQName& name)
    : QtSoapType(name, Struct)
    , m_data(new Data)
{}

QtSoapStruct::QtSoapStruct(const QtSoapStruct& other)
    : QtSoapType(other)
    , m_data(new Data(*other.m_data))
{}

QtSoapStruct& QtSoapStruct::operator=(const QtSoapStruct& other)
{
    if (this == &other)
        return *this;
    QtSoapType::operator=(other);
    // The former members may own the other struct, so they go last.
    Data former = *other.m_data;
    std::swap(former, *m_data);
    return *this;
}

QtSoapStruct::~QtSoapStruct() = default;

void QtSoapStruct::clear()
{
    QtSoapType::clear();
    m_data->clear();
}

bool QtSoapStruct::parse(QDomNode node)
{
    return soap::parse(*this, node, soap::Kind::Struct);
}

bool QtSoapStruct::isValid() const
{
    return !m_data->failed;
}

int QtSoapStruct::count() const
{
    return m_data->members.size();
}

QtSoapType& QtSoapStruct::operator[](int pos)
{
    const bool isMember = pos >= 0 && pos < m_data->members.size();
    return isMember ? *m_data->members.at(pos).value : QtSoapAccess::placeholder();
}

QtSoapType& QtSoapStruct::operator[](const QtSoapQName& name)
{
    return (*this)[m_data->find(name)];
}

QtSoapType& QtSoapStruct::operator[](const QString& name)
{
    return (*this)[m_data->findInAnyNamespace(name)];
}

const QtSoapType& QtSoapStruct::operator[](int pos) const
{
    const bool isMember = pos >= 0 && pos < m_data->members.size();
    return isMember ? *m_data->members.at(pos).value : QtSoapAccess::placeholder();
}

const QtSoapType& QtSoapStruct::operator[](const QtSoapQName& name) const
{
    return (*this)[m_data->find(name)];
}

const QtSoapType& QtSoapStruct::operator[](const QString& name) const
{
    return (*this)[m_data->findInAnyNamespace(name)];
}

QDomElement QtSoapStruct::toDomElement(QDomDocument document) const
{
    const soap::WriteLevel level;
    if (level.isTooDeep())
        return QDomElement();
    QDomElement element = soap::createElement(document, *this);
    if (!href().isEmpty())
        return element;
    soap::declareTypes(element);
    soap::addText(element, m_data->text);
    for (const Data::Member& member : qAsConst(m_data->members)) {
        const QDomElement child = member.value->toDomElement(document);
        if (child.isNull())
            return QDomElement();
        element.appendChild(child);
    }
    return element;
}

QtSoapType::Type QtSoapStruct::type() const
{
    return Struct;
}

QString QtSoapStruct::toString() const
{
    return m_data->text;
}

QtSoapType& QtSoapStruct::at(const QtSoapQName& name)
{
    return (*this)[m_data->find(name)];
}

const QtSoapType& QtSoapStruct::at(const QtSoapQName& name) const
{
    return (*this)[m_data->find(name)];
}

void QtSoapStruct::insert(QtSoapType* item)
{
    setErrorString(QString());
    if (!item)
        return;
    if (QtSoapAccess::contains(*item, *this)) {
        setErrorString(QStringLiteral("A struct can't be a member of itself"));
        return;
    }
    const ValuePointer value(item);
    const int same = m_data->find(item->name());
    if (same >= 0)
        m_data->replace(same, value);
    else
        m_data->append(value);
}

struct QtSoapStructIterator::Data
{
    const QtSoapStruct* structure = nullptr; // to compare, not to follow
    QVector<QtSoapStruct::Data::Member> members;
    int current = 0;

    bool atEnd() const { return current == members.size(); }
};

QtSoapStructIterator::QtSoapStructIterator(QtSoapStruct& structure)
    : m_data(new Data)
{
    m_data->structure = &structure;
    m_data->members = structure.m_data->members;
}

QtSoapStructIterator::QtSoapStructIterator(const QtSoapStructIterator& other)
    : m_data(new Data(*other.m_data))
{}

QtSoapStructIterator& QtSoapStructIterator::operator=(const QtSoapStructIterator& other)
{
    if (this != &other)
        m_data.reset(new Data(*other.m_data));
    return *this;
}

QtSoapStructIterator::~QtSoapStructIterator() = default;

QtSoapQName QtSoapStructIterator::key() const
{
    return m_data->atEnd() ? QtSoapQName() : m_data->members.at(m_data->current).name;
}

QtSoapType* QtSoapStructIterator::data()
{
    return m_data->atEnd() ? nullptr : m_data->members.at(m_data->current).value.get();
}

const QtSoapType* QtSoapStructIterator::data() const
{
    return m_data->atEnd() ? nullptr : m_data->members.at(m_data->current).value.get();
}

QtSoapType* QtSoapStructIterator::current()
{
    return data();
}

const QtSoapType* QtSoapStructIterator::current() const
{
    return data();
}

QtSoapStructIterator& QtSoapStructIterator::operator++()
{
    if (!m_data->atEnd())
        ++m_data->current;
    return *this;
}

bool QtSoapStructIterator::operator==(const QtSoapStructIterator& other) const
{
    if (m_data->structure != other.m_data->structure || m_data->atEnd() != other.m_data->atEnd())
        return false;
    return m_data->atEnd() || m_data->current == other.m_data->current;
}

bool QtSoapStructIterator::operator!=(const QtSoapStructIterator& other) const
{
    return !(*this == other);
}
