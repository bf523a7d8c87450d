#include "QtSoapArray"

#include "SoapAccess_p.h"
#include "SoapNames_p.h"
#include "SoapReader_p.h"
#include "SoapWriter_p.h"

#include <limits>

using namespace VEK_NAMESPACE;
using soap::maximumDimensions;
using soap::Position;
using soap::ValuePointer;
using ArrayData = QtSoapAccess::ArrayData;

namespace {

constexpr int maximumPosition = std::numeric_limits<int>::max();

size_t index(int dimension)
{
    return static_cast<size_t>(dimension);
}

QString brackets(const Position& numbers, int dimensions)
{
    QString text;
    for (int i = 0; i < dimensions; ++i)
        text += (i == 0 ? QLatin1Char('[') : QLatin1Char(',')) + QString::number(numbers[index(i)]);
    return text + QLatin1Char(']');
}

/// The positions that are given; 0 if one is missing before another, or none is given.
int givenPositions(const Position& positions)
{
    int given = maximumDimensions;
    while (given > 0 && positions[index(given - 1)] == -1)
        --given;
    for (int i = 0; i < given; ++i) {
        if (positions[index(i)] < 0)
            return 0;
    }
    return given;
}

/// The complete position that the given ones stand for.
bool complete(const ArrayData& data, const Position& given, Position* position)
{
    const int count = givenPositions(given);
    if (count == 1)
        return data.fromSingle(given[0], position);
    if (count != data.dimensions)
        return false;
    for (int i = 0; i < count; ++i)
        (*position)[index(i)] = given[index(i)];
    return true;
}

QtSoapType* find(const ArrayData& data, const Position& given)
{
    Position position{{0, 0, 0, 0, 0}};
    if (!complete(data, given, &position))
        return &QtSoapAccess::placeholder();
    const auto found = data.members.constFind(position);
    return found != data.members.constEnd() ? found->get() : &QtSoapAccess::placeholder();
}

} // namespace

int QtSoapArray::Data::extent(int dimension) const
{
    return qMax(sizes[index(dimension)], used[index(dimension)]);
}

bool QtSoapArray::Data::fromSingle(qint64 single, Position* position) const
{
    if (single < 0)
        return false;
    *position = Position{{0, 0, 0, 0, 0}};
    for (int i = dimensions - 1; i > 0; --i) {
        const int size = extent(i);
        if (size <= 0)
            return false;
        (*position)[index(i)] = static_cast<int>(single % size);
        single /= size;
    }
    (*position)[0] = static_cast<int>(single);
    return true;
}

int QtSoapArray::Data::toSingle(const Position& position) const
{
    qint64 single = position[0];
    for (int i = 1; i < dimensions; ++i) {
        single = single * extent(i) + position[index(i)];
        if (single > maximumPosition)
            return -1;
    }
    return static_cast<int>(single);
}

bool QtSoapArray::Data::next(Position* position) const
{
    for (int i = dimensions - 1; i >= 0; --i) {
        int& own = (*position)[index(i)];
        const int size = i == 0 ? -1 : sizes[index(i)];
        if (own < maximumPosition && (size < 0 || own + 1 < size)) {
            ++own;
            return true;
        }
        own = 0;
    }
    return false;
}

bool QtSoapArray::Data::isInside(const Position& position) const
{
    for (int i = 0; i < dimensions; ++i) {
        const int size = sizes[index(i)];
        if (position[index(i)] == maximumPosition || (size >= 0 && position[index(i)] >= size))
            return false;
    }
    return true;
}

void QtSoapArray::Data::put(const Position& position, const ValuePointer& value)
{
    for (int i = 0; i < dimensions; ++i)
        used[index(i)] = qMax(used[index(i)], position[index(i)] + 1);
    const bool isLast = members.isEmpty() || members.lastKey() < position;
    if (isLast)
        members.insert(members.constEnd(), position, value);
    else
        members.insert(position, value);
}

QtSoapArray::QtSoapArray()
    : QtSoapArray(QtSoapQName())
{}

QtSoapArray::QtSoapArray(const QtSoapQName& name, Type type, int size0, int size1, int size2,
                         int size3, int size4)
    : QtSoapType(name, Array)
    , m_data(new Data)
{
    m_data->memberType = type;
    m_data->sizes = Position{{size0, size1, size2, size3, size4}};
    for (int i = 0; i < maximumDimensions; ++i) {
        int& size = m_data->sizes[index(i)];
        size = qMax(size, -1);
        if (size >= 0)
            m_data->dimensions = i + 1;
    }
}

QtSoapArray::QtSoapArray(const QtSoapArray& other)
    : QtSoapType(other)
    , m_data(new Data(*other.m_data))
{}

QtSoapArray& QtSoapArray::operator=(const QtSoapArray& other)
{
    if (this == &other)
        return *this;
    QtSoapType::operator=(other);
    // The former members may own the other array, so they go last.
    Data former = *other.m_data;
    std::swap(former, *m_data);
    return *this;
}

QtSoapArray::~QtSoapArray() = default;

void QtSoapArray::clear()
{
    QtSoapType::clear();
    m_data->members.clear();
    m_data->used = Position{{0, 0, 0, 0, 0}};
    m_data->failed = false;
}

bool QtSoapArray::parse(QDomNode node)
{
    return soap::parse(*this, node, soap::Kind::Array);
}

bool QtSoapArray::isValid() const
{
    return !m_data->failed;
}

int QtSoapArray::count() const
{
    return m_data->members.size();
}

QtSoapType& QtSoapArray::operator[](int pos)
{
    return at(pos);
}

const QtSoapType& QtSoapArray::operator[](int pos) const
{
    return at(pos);
}

QDomElement QtSoapArray::toDomElement(QDomDocument document) const
{
    const soap::WriteLevel level;
    if (level.isTooDeep())
        return QDomElement();
    QDomElement element = soap::createElement(document, *this);
    if (!href().isEmpty())
        return element;
    soap::declareTypes(element);

    QtSoapQName memberType = m_data->memberTypeName;
    if (memberType.name().isEmpty()) {
        memberType = m_data->memberType == Other
            ? QtSoapQName(QStringLiteral("ur-type"), soap::schemaUri())
            : soap::typeQName(m_data->memberType);
    }
    Position sizes{{0, 0, 0, 0, 0}};
    for (int i = 0; i < m_data->dimensions; ++i)
        sizes[index(i)] = qMax(0, m_data->extent(i));
    const auto setEncodingAttribute = [](QDomElement* of, const QString& name,
                                         const QString& value) {
        const QString prefix = QtSoapNamespaces::instance().prefixFor(soap::encodingUri());
        of->setAttributeNS(soap::encodingUri(), prefix + QLatin1Char(':') + name, value);
    };
    setEncodingAttribute(&element, QStringLiteral("arrayType"),
                         soap::qualify(element, memberType) + m_data->rank
                             + brackets(sizes, m_data->dimensions));

    // Without gaps an offset is enough.
    bool hasGaps = false;
    Position expected{{0, 0, 0, 0, 0}};
    if (!m_data->members.isEmpty())
        expected = m_data->members.firstKey();
    Data whole;
    whole.dimensions = m_data->dimensions;
    whole.sizes = sizes;
    for (auto member = m_data->members.cbegin(); member != m_data->members.cend() && !hasGaps;
         ++member) {
        hasGaps = member.key() != expected;
        whole.next(&expected);
    }
    const Position beginning{{0, 0, 0, 0, 0}};
    if (!hasGaps && !m_data->members.isEmpty() && m_data->members.firstKey() != beginning) {
        setEncodingAttribute(&element, QStringLiteral("offset"),
                             brackets(m_data->members.firstKey(), m_data->dimensions));
    }

    for (auto member = m_data->members.cbegin(); member != m_data->members.cend(); ++member) {
        QDomElement child = (*member)->toDomElement(document);
        if (child.isNull())
            return QDomElement();
        if (hasGaps) {
            setEncodingAttribute(&child, QStringLiteral("position"),
                                 brackets(member.key(), m_data->dimensions));
        }
        element.appendChild(child);
    }
    return element;
}

QtSoapType::Type QtSoapArray::type() const
{
    return Array;
}

QtSoapType& QtSoapArray::at(int pos0, int pos1, int pos2, int pos3, int pos4)
{
    return *find(*m_data, Position{{pos0, pos1, pos2, pos3, pos4}});
}

const QtSoapType& QtSoapArray::at(int pos0, int pos1, int pos2, int pos3, int pos4) const
{
    return *find(*m_data, Position{{pos0, pos1, pos2, pos3, pos4}});
}

void QtSoapArray::append(QtSoapType* item)
{
    Position position{{0, 0, 0, 0, 0}};
    bool isPlace = true;
    if (!m_data->members.isEmpty()) {
        position = m_data->members.lastKey();
        isPlace = m_data->next(&position);
    }
    QtSoapAccess::insert(*this, isPlace ? &position : nullptr, item);
}

void QtSoapAccess::insert(QtSoapArray& array, const Position* position, QtSoapType* item)
{
    array.setErrorString(QString());
    if (!item)
        return;
    if (contains(*item, array)) {
        array.setErrorString(QStringLiteral("An array can't be a member of itself"));
        return;
    }
    const ValuePointer value(item);
    if (position && (*position)[0] < maximumPosition)
        array.m_data->put(*position, value);
    else
        array.setErrorString(QStringLiteral("There is no such position in the array"));
}

void QtSoapArray::insert(int pos0, QtSoapType* item)
{
    Position position{{0, 0, 0, 0, 0}};
    const bool isPlace = complete(*m_data, Position{{pos0, -1, -1, -1, -1}}, &position);
    QtSoapAccess::insert(*this, isPlace ? &position : nullptr, item);
}

void QtSoapArray::insert(int pos0, int pos1, QtSoapType* item)
{
    QtSoapAccess::insertAt(*this, Position{{pos0, pos1, -1, -1, -1}}, 2, item);
}

void QtSoapArray::insert(int pos0, int pos1, int pos2, QtSoapType* item)
{
    QtSoapAccess::insertAt(*this, Position{{pos0, pos1, pos2, -1, -1}}, 3, item);
}

void QtSoapArray::insert(int pos0, int pos1, int pos2, int pos3, QtSoapType* item)
{
    QtSoapAccess::insertAt(*this, Position{{pos0, pos1, pos2, pos3, -1}}, 4, item);
}

void QtSoapArray::insert(int pos0, int pos1, int pos2, int pos3, int pos4, QtSoapType* item)
{
    QtSoapAccess::insertAt(*this, Position{{pos0, pos1, pos2, pos3, pos4}}, 5, item);
}

void QtSoapAccess::insertAt(QtSoapArray& array, const Position& given, int count, QtSoapType* item)
{
    Position position{{0, 0, 0, 0, 0}};
    const bool isPlace =
        givenPositions(given) == count && complete(*array.m_data, given, &position);
    insert(array, isPlace ? &position : nullptr, item);
}

struct QtSoapArrayIterator::Data
{
    const QtSoapArray* array = nullptr; // to compare, not to follow
    ArrayData members;
    QMap<Position, ValuePointer>::const_iterator current;
};

QtSoapArrayIterator::QtSoapArrayIterator(QtSoapArray& array)
    : m_data(new Data)
{
    m_data->array = &array;
    m_data->members = *array.m_data;
    m_data->current = m_data->members.members.constBegin();
}

QtSoapArrayIterator::QtSoapArrayIterator(const QtSoapArrayIterator& other)
    : m_data(new Data(*other.m_data))
{}

QtSoapArrayIterator& QtSoapArrayIterator::operator=(const QtSoapArrayIterator& other)
{
    if (this != &other)
        m_data.reset(new Data(*other.m_data));
    return *this;
}

QtSoapArrayIterator::~QtSoapArrayIterator() = default;

int QtSoapArrayIterator::pos() const
{
    return atEnd() ? -1 : m_data->members.toSingle(m_data->current.key());
}

void QtSoapArrayIterator::pos(int* pos0, int* pos1, int* pos2, int* pos3, int* pos4) const
{
    int* const positions[] = {pos0, pos1, pos2, pos3, pos4};
    for (int i = 0; i < maximumDimensions; ++i) {
        const bool isPosition = !atEnd() && i < m_data->members.dimensions;
        if (positions[i])
            *positions[i] = isPosition ? m_data->current.key()[index(i)] : -1;
    }
}

QtSoapType* QtSoapArrayIterator::data()
{
    return atEnd() ? nullptr : m_data->current->get();
}

const QtSoapType* QtSoapArrayIterator::data() const
{
    return atEnd() ? nullptr : m_data->current->get();
}

QtSoapType* QtSoapArrayIterator::current()
{
    return data();
}

const QtSoapType* QtSoapArrayIterator::current() const
{
    return data();
}

QtSoapArrayIterator& QtSoapArrayIterator::operator++()
{
    if (!atEnd())
        ++m_data->current;
    return *this;
}

bool QtSoapArrayIterator::operator==(const QtSoapArrayIterator& other) const
{
    if (m_data->array != other.m_data->array || atEnd() != other.atEnd())
        return false;
    return atEnd() || m_data->current.key() == other.m_data->current.key();
}

bool QtSoapArrayIterator::operator!=(const QtSoapArrayIterator& other) const
{
    return !(*this == other);
}

bool QtSoapArrayIterator::atEnd() const
{
    return m_data->current == m_data->members.members.constEnd();
}
