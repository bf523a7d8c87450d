#pragma once

#include "qtsoap.h"

#include <QHash>
#include <QMap>
#include <QPair>
#include <QVector>

#include <array>

namespace VEK_NAMESPACE::soap {

class ValuePointer;

} // namespace VEK_NAMESPACE::soap

/// What the reader and the containers reach of the values that nobody else does.
class QtSoapAccess
{
public:
    using ValuePointer = VEK_NAMESPACE::soap::ValuePointer;
    using ArrayData = QtSoapArray::Data;
    using StructData = QtSoapStruct::Data;

    static void retain(const QtSoapType* value);
    static void release(const QtSoapType* value);
    static void disown(const QtSoapType* value) { --value->m_owners; }
    static bool isOwned(const QtSoapType& value) { return value.m_owners.load() > 0; }

    static bool isShared(const QtSoapType& value) { return value.m_owners.load() > 1; }

    /// A response that says why there is none.
    static void setFailure(QtSoapMessage& message, QtSoapMessage::FaultCode code,
                           const QString& error);

    /// The value that stands for a missing one.
    static QtSoapType& placeholder();
    static bool isPlaceholder(const QtSoapType& value) { return value.m_placeholder; }

    static void setType(QtSoapType& value, QtSoapType::Type type) { value.m_type = type; }
    static QtSoapQName declaredType(const QtSoapType& value);
    static void setDeclaredType(QtSoapType& value, const QtSoapQName& type);
    static void setError(QtSoapType& value, const QString& error) { value.setErrorString(error); }

    static void setText(QtSoapSimpleType& value, const QString& text);
    static void setNull(QtSoapSimpleType& value);

    static ArrayData& data(QtSoapArray& array) { return *array.m_data; }
    static StructData& data(QtSoapStruct& structure) { return *structure.m_data; }
    static const ArrayData& data(const QtSoapArray& array) { return *array.m_data; }
    static const StructData& data(const QtSoapStruct& structure) { return *structure.m_data; }

    /// Whether \a value is, or has somewhere inside, the object \a part.
    static bool contains(const QtSoapType& value, const QtSoapType& part);

    /// Takes the item for the position, or releases it if there is none.
    static void insert(QtSoapArray& array, const std::array<int, 5>* position, QtSoapType* item);
    static void insertAt(QtSoapArray& array, const std::array<int, 5>& given, int count,
                         QtSoapType* item);

    /// The handler of a type or element, null if there is none. It stays for good.
    static QtSoapTypeConstructorBase* handler(const QtSoapQName& name);
    static bool hasHandlers();

    static QString registeredUri(const QString& prefix);
};

namespace VEK_NAMESPACE::soap {

/// Owns a value together with all others that point to it; the count is in the value itself, so
/// that a plain pointer may be given away twice.
class ValuePointer
{
public:
    ValuePointer() = default;
    explicit ValuePointer(QtSoapType* value)
        : m_value(value)
    {
        if (m_value)
            QtSoapAccess::retain(m_value);
    }
    ValuePointer(const ValuePointer& other)
        : ValuePointer(other.m_value)
    {}
    ValuePointer(ValuePointer&& other) noexcept
        : m_value(other.m_value)
    {
        other.m_value = nullptr;
    }
    ValuePointer& operator=(ValuePointer other) noexcept
    {
        std::swap(m_value, other.m_value);
        return *this;
    }
    ~ValuePointer()
    {
        if (m_value)
            QtSoapAccess::release(m_value);
    }

    QtSoapType* get() const { return m_value; }
    QtSoapType* operator->() const { return m_value; }
    QtSoapType& operator*() const { return *m_value; }
    explicit operator bool() const { return m_value != nullptr; }

    /// Gives the value to the caller, without owner if this was the last one.
    QtSoapType* take();

private:
    QtSoapType* m_value = nullptr;
};

constexpr int maximumDimensions = 5;
using Position = std::array<int, maximumDimensions>;

} // namespace VEK_NAMESPACE::soap

QT_BEGIN_NAMESPACE
Q_DECLARE_TYPEINFO(VEK_NAMESPACE::soap::ValuePointer, Q_MOVABLE_TYPE);
QT_END_NAMESPACE

struct QtSoapArray::Data
{
    using Position = VEK_NAMESPACE::soap::Position;

    QMap<Position, VEK_NAMESPACE::soap::ValuePointer> members; // the key's order is that of rows
    Position sizes{{-1, -1, -1, -1, -1}};
    Position used{{0, 0, 0, 0, 0}}; // one more than the largest position
    int dimensions = 1;
    QtSoapType::Type memberType = QtSoapType::Other;
    QtSoapQName memberTypeName; // of a type that isn't in the list
    QString rank; // "[]" and the like, of members that are arrays
    bool failed = false;

    int extent(int dimension) const;
    bool fromSingle(qint64 single, Position* position) const;

    /// -1 if an int can't hold it.
    int toSingle(const Position& position) const;

    /// The place behind \a position; false if there is none.
    bool next(Position* position) const;
    bool isInside(const Position& position) const;
    void put(const Position& position, const VEK_NAMESPACE::soap::ValuePointer& value);
};

struct QtSoapStruct::Data
{
    struct Member
    {
        QtSoapQName name;
        VEK_NAMESPACE::soap::ValuePointer value;
    };

    QVector<Member> members;
    QString text;
    bool failed = false;

    /// -1 if there is none.
    int find(const QtSoapQName& name) const;
    int findInAnyNamespace(const QString& name) const;

    void append(const VEK_NAMESPACE::soap::ValuePointer& value);
    void prepend(const VEK_NAMESPACE::soap::ValuePointer& value);
    void replace(int at, const VEK_NAMESPACE::soap::ValuePointer& value);
    void rename(int at, const QtSoapQName& name);
    void clear();

private:
    void makeIndex();
    void addToIndex(int at);

    // Only of a large struct; the first member of a name.
    QHash<QPair<QString, QString>, int> m_byName;
    QHash<QString, int> m_byLocalName;
};
