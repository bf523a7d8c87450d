#pragma once

#include "UtilsDllGlobal.h"

#include <QByteArray>
#include <QDomDocument>
#include <QMetaType>
#include <QObject>
#include <QScopedPointer>
#include <QString>
#include <QVariant>

#include <atomic>

// clazy:excludeall=overloaded-signal

class QNetworkAccessManager;
class QNetworkReply;
class QtSoapArray;
class QtSoapAccess;
class QtSoapStruct;

/// \file
/// SOAP 1.1: values, messages, and a client over HTTP. All classes stand at global scope.
///
/// Written envelopes use the envelope and encoding namespaces of SOAP 1.1, and for types the schema
/// namespaces of 1999. Read are those of 2001 as well, with whatever prefixes the sender chose.
///
/// Values nest at most 196 levels deep, an envelope's elements 200. What is deeper is not read, and
/// not written either. Values and messages may be used on any thread, by one thread at a time; as
/// copies share members, this goes for a copy and its original together. The two registries,
/// QtSoapTypeFactory and QtSoapNamespaces, may be used by all threads at once.

/// A qualified name: a local name, and the URI of its namespace, which is empty for none.
class UTILSDLL_EXPORT QtSoapQName
{
public:
    /// A plain text is a name without namespace, which is why this isn't explicit.
    QtSoapQName(const QString& name = QString(), const QString& uri = QString());

    /// Makes this \a name without namespace.
    QtSoapQName& operator=(const QString& name);

    /// The local name.
    QString name() const;
    /// The URI of the namespace, empty for none.
    QString uri() const;

private:
    QString m_name;
    QString m_uri;
};

/// Whether both name and namespace are equal, to the letter.
UTILSDLL_EXPORT bool operator==(const QtSoapQName& left, const QtSoapQName& right);

/// Orders by name, then by namespace.
UTILSDLL_EXPORT bool operator<(const QtSoapQName& left, const QtSoapQName& right);

/// What all values have: a name, a type, and the id or the reference of a value that is used more
/// than once. By itself it has no content and isn't valid.
///
/// Objects that are given to an array, a struct or a message must have been made with new, and
/// belong to it from then on. The same object may be given to several, or twice; it goes with the
/// last of them. A container that is, or is inside of, the object it is given refuses it.
class UTILSDLL_EXPORT QtSoapType
{
public:
    /// The types of the XML schema, and the two compound ones of SOAP. Each is named as there, see
    /// typeToName().
    enum Type
    {
        Duration, ///< a span of time, such as "P1DT2H"
        DateTime, ///< a day and a time of it, such as "2024-02-29T13:00:00Z"
        Time, ///< a time of a day
        Date, ///< a day
        GYearMonth, ///< a month of a year
        GYear, ///< a year
        GMonthDay, ///< a day that returns each year
        GDay, ///< a day that returns each month
        GMonth, ///< a month that returns each year
        Boolean, ///< "true" or "false", also 1 or 0
        Base64Binary, ///< octets, in base 64
        HexBinary, ///< octets, in hexadecimal digits
        Float, ///< a floating-point number of 32 bits
        Double, ///< a floating-point number of 64 bits
        AnyURI, ///< an address
        QName, ///< a qualified name
        NOTATION, ///< a qualified name that is declared as a notation
        String, ///< any text
        NormalizedString, ///< a text without line breaks and tabulators
        Token, ///< a normalized string without blanks at its ends or two in a row
        Language, ///< a language tag, such as "en-GB"
        Name, ///< an XML name
        NMTOKEN, ///< a token of the characters that names have
        NCName, ///< an XML name without colon
        ID, ///< a name that identifies an element
        IDREF, ///< a reference to an ID
        ENTITY, ///< the name of an entity
        Decimal, ///< a number of any precision
        Integer, ///< a whole number of any size
        NonPositiveInteger, ///< a whole number, 0 or less
        NegativeInteger, ///< a whole number, -1 or less
        Long, ///< a whole number of 64 bits
        Int, ///< a whole number of 32 bits
        Short, ///< a whole number of 16 bits
        Byte, ///< a whole number of 8 bits
        NonNegativeInteger, ///< a whole number, 0 or more
        UnsignedLong, ///< a whole number of 64 bits, 0 or more
        PositiveInteger, ///< a whole number, 1 or more
        UnsignedInt, ///< a whole number of 32 bits, 0 or more
        UnsignedShort, ///< a whole number of 16 bits, 0 or more
        UnsignedByte, ///< a whole number of 8 bits, 0 or more
        Array, ///< a QtSoapArray
        Struct, ///< a QtSoapStruct
        Other ///< no type, or one that isn't in this list
    };

    /// Without name and type.
    QtSoapType();
    /// With a name and a type.
    explicit QtSoapType(const QtSoapQName& name, Type type = Other);
    /// Copies name, type, id and reference.
    QtSoapType(const QtSoapType& other);
    /// Copies name, type, id and reference. To which containers this belongs doesn't change.
    QtSoapType& operator=(const QtSoapType& other);
    virtual ~QtSoapType();

    /// Removes the content, the id, the reference and the error. Name and type stay.
    virtual void clear();

    /// Takes name, id, reference and content from an element. References are followed inside of the
    /// element's document. If the content can't be read the result is false, errorString() says
    /// why, and the value isn't valid. The former content is gone either way.
    ///
    /// A type of one's own overrides it, and reads with the base class what it adds nothing to.
    virtual bool parse(QDomNode node);

    /// Whether there is content. The value that stands for a missing one is never valid, and a
    /// reference whose target isn't in the message, or contains the reference, isn't either.
    virtual bool isValid() const;

    /// The number of members of an array or struct, otherwise 0.
    virtual int count() const;

    /// The content; invalid for arrays and structs. See QtSoapSimpleType.
    virtual QVariant value() const;

    /// \name Members
    /// Members of an array by position, of a struct by position or name. Where there is none, the
    /// result is an invalid value that ignores all changes.
    ///
    /// A plain text finds the member of that name without namespace, or else the first of that name
    /// in any namespace.
    /// @{

    /// The member at a position, counted from 0.
    virtual QtSoapType& operator[](int pos);
    /// The member of exactly this name and namespace.
    virtual QtSoapType& operator[](const QtSoapQName& name);
    /// The member of this name.
    virtual QtSoapType& operator[](const QString& name);
    /// \overload
    virtual const QtSoapType& operator[](int pos) const;
    /// \overload
    virtual const QtSoapType& operator[](const QtSoapQName& name) const;
    /// \overload
    virtual const QtSoapType& operator[](const QString& name) const;

    /// @}

    /// Makes an element of this value that belongs to \a document and isn't inserted. Null if
    /// values nest too deep.
    virtual QDomElement toDomElement(QDomDocument document) const;

    /// What the value is declared as; Other for a type that isn't in the list, see typeName().
    virtual Type type() const;

    /// What references to this value name, without "#"; empty for none.
    virtual QString id() const;

    /// The reference, such as "#id-1", of a value that stands elsewhere. Of a value that was read
    /// it remains only if it couldn't be followed.
    virtual QString href() const;

    /// The type's name without its namespace, also that of a type outside of the list; empty if the
    /// value has no type.
    virtual QString typeName() const;

    /// The name of the element.
    virtual QtSoapQName name() const;

    /// The content as it is written, empty if there is none. Strings are kept to the character,
    /// for other types white space at both ends is dropped. For a struct it is the text between its
    /// members, if there is more than white space.
    virtual QString toString() const;

    /// The content as a number, 0 if it isn't one that fits.
    virtual int toInt() const;

    /// Whether the content is "true" or a number other than 0.
    virtual bool toBool() const;

    /// Names the element. A member of a struct is still found by the name that it had when it was
    /// inserted.
    virtual void setName(const QtSoapQName& name);

    /// Makes the value one that references can name.
    virtual void setId(const QString& id);

    /// Makes the value a reference, such as "#id-1", to one that stands elsewhere.
    virtual void setHref(const QString& href);

    /// Why the last call of parse(), or of a function that inserts, failed; empty if it didn't.
    QString errorString() const;

    /// The name in the schema, such as "dateTime"; "Array" and "Struct"; empty for Other.
    static QString typeToName(Type type);

    /// The reverse, Other if the name isn't known. Also knows the schema's names of 1999.
    static Type nameToType(const QString& name);

protected:
    /// What errorString() gives from here on; for types of one's own.
    void setErrorString(const QString& error);

private:
    friend class QtSoapAccess;
    struct Extra;

    mutable std::atomic<int> m_owners{0};
    Type m_type = Other;
    bool m_placeholder = false;
    QtSoapQName m_name;
    QScopedPointer<Extra> m_extra;
};

/// One value, with text for content.
///
/// value() is, by the type:
/// - Boolean: bool
/// - Byte, Short, Int, UnsignedByte, UnsignedShort: int; UnsignedInt: uint
/// - Long: qlonglong; UnsignedLong: qulonglong
/// - Integer and the four that are named by their sign: qlonglong, or qulonglong, or if neither is
///   large enough a QString
/// - Float, Double, Decimal: double; a Decimal's toString() has all of its digits
/// - DateTime, Date, Time: QDateTime, QDate, QTime, or a QString for what these can't hold. The
///   zone of a Date or Time is in toString() only; a DateTime without zone is local time.
/// - Base64Binary, HexBinary: QByteArray
/// - everything else: QString
///
/// A null value (xsi:nil, or xsi:null as SOAP 1.1 has it and as it is written) is valid, and its
/// value() isn't. Text that isn't of the declared type, such as an xsd:int of 99999999999 or an
/// xsd:boolean of "maybe", isn't read: parse() fails.
class UTILSDLL_EXPORT QtSoapSimpleType : public QtSoapType
{
public:
    /// Without name and content.
    QtSoapSimpleType();

    /// Without content, which is written as a null value.
    explicit QtSoapSimpleType(const QtSoapQName& name);

    /// An Int.
    QtSoapSimpleType(const QtSoapQName& name, int value);

    /// A Boolean. The last parameter has no meaning but to tell a bool from an int.
    QtSoapSimpleType(const QtSoapQName& name, bool value, int dummy);

    /// A String.
    QtSoapSimpleType(const QtSoapQName& name, const QString& value);

    /// Copies everything.
    QtSoapSimpleType(const QtSoapSimpleType& other);
    /// Copies everything.
    QtSoapSimpleType& operator=(const QtSoapSimpleType& other);
    ~QtSoapSimpleType() override;

    void clear() override;
    bool parse(QDomNode node) override;
    bool isValid() const override;
    QVariant value() const override;
    QDomElement toDomElement(QDomDocument document) const override;
    QString toString() const override;
    int toInt() const override;
    bool toBool() const override;

private:
    friend class QtSoapAccess;

    enum class Content : quint8
    {
        None,
        Null,
        Text
    };

    Content m_content = Content::None;
    QString m_text;
};

/// A sparse array of one to five dimensions. It takes memory for the members that it has, not for
/// its size. It owns its members; copies of an array share them, and a copy to which a member is
/// added doesn't change the original.
///
/// A single position counts through all dimensions, the last of them the fastest.
///
/// Envelopes are read with the offset and the positions of members that SOAP has for sparse and
/// partially transmitted arrays; members outside of a size that the envelope states are an error.
class UTILSDLL_EXPORT QtSoapArray : public QtSoapType
{
public:
    /// Without name, of one dimension.
    QtSoapArray();

    /// An array of members of \a type; Other if they have different types. There are as many
    /// dimensions as sizes other than -1, and at least one. A size is what is stated when the array
    /// is written: a member beyond it makes it larger.
    explicit QtSoapArray(const QtSoapQName& name, Type type = Other, int size0 = -1, int size1 = -1,
                         int size2 = -1, int size3 = -1, int size4 = -1);

    /// Shares the members.
    QtSoapArray(const QtSoapArray& other);
    /// Shares the members, in place of its own.
    QtSoapArray& operator=(const QtSoapArray& other);
    ~QtSoapArray() override;

    /// Removes the members; the sizes stay.
    void clear() override;

    bool parse(QDomNode node) override;
    bool isValid() const override;

    /// The number of members, positions without one not counted.
    int count() const override;

    using QtSoapType::operator[];
    /// The member at a single position.
    QtSoapType& operator[](int pos) override;
    /// \overload
    const QtSoapType& operator[](int pos) const override;

    QDomElement toDomElement(QDomDocument document) const override;

    /// Always Array. The type of the members is written only.
    Type type() const override;

    /// The member at a place; an invalid value if there is none. Takes as many positions as there
    /// are dimensions, or a single one.
    QtSoapType& at(int pos0, int pos1 = -1, int pos2 = -1, int pos3 = -1, int pos4 = -1);
    /// \overload
    const QtSoapType& at(int pos0, int pos1 = -1, int pos2 = -1, int pos3 = -1,
                         int pos4 = -1) const;

    /// Adds \a item behind the last member.
    void append(QtSoapType* item);

    /// \name Inserting
    /// Replace the member at the position. Null is ignored. An item with a negative position or
    /// with another number of positions than at() takes is released, and errorString() says so.
    /// @{

    /// At a single position, in an array of any number of dimensions.
    void insert(int pos0, QtSoapType* item);
    /// In an array of two dimensions.
    void insert(int pos0, int pos1, QtSoapType* item);
    /// In an array of three dimensions.
    void insert(int pos0, int pos1, int pos2, QtSoapType* item);
    /// In an array of four dimensions.
    void insert(int pos0, int pos1, int pos2, int pos3, QtSoapType* item);
    /// In an array of five dimensions.
    void insert(int pos0, int pos1, int pos2, int pos3, int pos4, QtSoapType* item);

    /// @}

private:
    friend class QtSoapAccess;
    friend class QtSoapArrayIterator;
    struct Data;

    QScopedPointer<Data> m_data;
};

/// Named members in the order in which they came. It owns its members; copies of a struct share
/// them, and a copy to which a member is added doesn't change the original.
///
/// A struct that was read may have several members of one name: by name the first is found, the
/// others by position.
class UTILSDLL_EXPORT QtSoapStruct : public QtSoapType
{
public:
    /// Without name and members.
    QtSoapStruct();
    /// Without members.
    explicit QtSoapStruct(const QtSoapQName& name);
    /// Shares the members.
    QtSoapStruct(const QtSoapStruct& other);
    /// Shares the members, in place of its own.
    QtSoapStruct& operator=(const QtSoapStruct& other);
    ~QtSoapStruct() override;

    void clear() override;
    bool parse(QDomNode node) override;
    bool isValid() const override;
    int count() const override;

    /// The member at a position, counted from 0.
    QtSoapType& operator[](int pos) override;
    /// The same as at().
    QtSoapType& operator[](const QtSoapQName& name) override;
    /// The member of that name without namespace, or else the first of that name in any.
    QtSoapType& operator[](const QString& name) override;
    /// \overload
    const QtSoapType& operator[](int pos) const override;
    /// \overload
    const QtSoapType& operator[](const QtSoapQName& name) const override;
    /// \overload
    const QtSoapType& operator[](const QString& name) const override;

    QDomElement toDomElement(QDomDocument document) const override;

    /// Always Struct.
    Type type() const override;

    QString toString() const override;

    /// The member of exactly this name and namespace.
    QtSoapType& at(const QtSoapQName& name);
    /// \overload
    const QtSoapType& at(const QtSoapQName& name) const;

    /// Adds \a item under its name, in the place of a member that has it already. Null is ignored.
    void insert(QtSoapType* item);

private:
    friend class QtSoapAccess;
    friend class QtSoapStructIterator;
    struct Data;

    QScopedPointer<Data> m_data;
};

/// Walks the members of an array in the order of their positions. It sees those that the array had
/// when the iterator was made, and keeps them; it may outlive the array.
class UTILSDLL_EXPORT QtSoapArrayIterator
{
public:
    /// Stands at the first member, or at the end of an empty array.
    explicit QtSoapArrayIterator(QtSoapArray& array);
    /// Stands where \a other does, and goes on by itself.
    QtSoapArrayIterator(const QtSoapArrayIterator& other);
    /// Stands where \a other does, and goes on by itself.
    QtSoapArrayIterator& operator=(const QtSoapArrayIterator& other);
    ~QtSoapArrayIterator();

    /// The single position; -1 at the end, or if an int can't hold it.
    int pos() const;

    /// The positions by dimension, -1 for dimensions that the array doesn't have and at the end.
    /// Null pointers are skipped.
    void pos(int* pos0, int* pos1 = nullptr, int* pos2 = nullptr, int* pos3 = nullptr,
             int* pos4 = nullptr) const;

    /// The member, null at the end. It stays the container's.
    QtSoapType* data();
    /// \overload
    const QtSoapType* data() const;
    /// The same as data().
    QtSoapType* current();
    /// \overload
    const QtSoapType* current() const;

    /// Goes on to the next member. At the end it stays where it is.
    QtSoapArrayIterator& operator++();

    /// Whether both stand at the same position of the same array.
    bool operator==(const QtSoapArrayIterator& other) const;
    /// The opposite.
    bool operator!=(const QtSoapArrayIterator& other) const;

    /// Whether there is no member here.
    bool atEnd() const;

private:
    struct Data;

    QScopedPointer<Data> m_data;
};

/// Walks the members of a struct in their order. It sees those that the struct had when the
/// iterator was made, and keeps them; it may outlive the struct.
class UTILSDLL_EXPORT QtSoapStructIterator
{
public:
    /// Stands at the first member, or at the end of an empty struct.
    explicit QtSoapStructIterator(QtSoapStruct& structure);
    /// Stands where \a other does, and goes on by itself.
    QtSoapStructIterator(const QtSoapStructIterator& other);
    /// Stands where \a other does, and goes on by itself.
    QtSoapStructIterator& operator=(const QtSoapStructIterator& other);
    ~QtSoapStructIterator();

    /// The name of the member, empty at the end.
    QtSoapQName key() const;

    /// The member, null at the end. It stays the container's.
    QtSoapType* data();
    /// \overload
    const QtSoapType* data() const;
    /// The same as data().
    QtSoapType* current();
    /// \overload
    const QtSoapType* current() const;

    /// Goes on to the next member. At the end it stays where it is.
    QtSoapStructIterator& operator++();

    /// Whether both stand at the same member of the same struct.
    bool operator==(const QtSoapStructIterator& other) const;
    /// The opposite.
    bool operator!=(const QtSoapStructIterator& other) const;

private:
    struct Data;

    QScopedPointer<Data> m_data;
};

/// One envelope: a call of a method, the response to it, a fault, or whatever else its body holds.
/// It owns what it is given; copies share the items, and adding to a copy doesn't change the
/// original.
///
/// An envelope is refused, with nothing of it read and nothing fetched, if it has a document type
/// declaration, nests too deep, has more than 256 attributes on one element or namespaces in one
/// place, or isn't well-formed. Processing instructions and comments are ignored. References inside
/// of the body are followed, unless they would multiply it: more than a million values beyond what
/// the envelope spells out are an error.
class UTILSDLL_EXPORT QtSoapMessage
{
public:
    /// What a fault is about, as SOAP 1.1 has it.
    enum FaultCode
    {
        VersionMismatch, ///< the envelope is one of another version of SOAP
        MustUnderstand, ///< a header entry that must be understood isn't
        Client, ///< something is wrong with the message
        Server, ///< the message is right, but it couldn't be answered
        Other ///< a code that isn't SOAP's own, or the message isn't a fault
    };

    /// An envelope with an empty body.
    QtSoapMessage();
    /// Shares the items.
    QtSoapMessage(const QtSoapMessage& other);
    /// Shares the items, in place of its own.
    QtSoapMessage& operator=(const QtSoapMessage& other);
    virtual ~QtSoapMessage();

    /// Reads an envelope. The former contents are gone either way; if it can't be read the message
    /// becomes a fault with the same text in errorString() and faultString(). The fault's code is
    /// VersionMismatch for an envelope of another namespace, and MustUnderstand if a header entry
    /// has to be understood by the final receiver and isn't: understood are those whose element
    /// name has a handler in QtSoapTypeFactory. Otherwise it is Client.
    ///
    /// A fault that was sent is no failure.
    bool setContent(const QByteArray& buffer);
    /// \overload
    bool setContent(QDomDocument& document);

    /// Adds an item behind those of the body. Null is ignored.
    void addBodyItem(QtSoapType* item);

    /// Adds an entry behind those of the header. Null is ignored.
    void addHeaderItem(QtSoapType* item);

    /// The first item of the body: the struct of the method and its arguments, of the response and
    /// its results, or of the fault with its "faultcode", "faultstring", "faultactor" and "detail".
    /// Invalid if there is none.
    const QtSoapType& method() const;

    /// The first member of a response; invalid if there is none, or for a fault.
    const QtSoapType& returnValue() const;

    /// Makes the message a call of that method, or names the method of a call. A fault or a
    /// response is cleared first.
    void setMethod(const QtSoapQName& method);
    /// \overload
    void setMethod(const QString& name, const QString& uri = QString());

    /// Adds an argument, in the place of an earlier one of its name. They may be given before the
    /// method. Null is ignored.
    void addMethodArgument(QtSoapType* argument);
    /// Adds a String.
    void addMethodArgument(const QString& name, const QString& uri, const QString& value);
    /// Adds a Boolean. The last parameter has no meaning but to tell a bool from an int.
    void addMethodArgument(const QString& name, const QString& uri, bool value, int dummy);
    /// Adds an Int.
    void addMethodArgument(const QString& name, const QString& uri, int value);

    /// Whether it is a fault: one that was sent, one that was made, or what couldn't be read.
    bool isFault() const;

    /// The code's first part: Client for "Client.Authentication". All of it is in method().
    FaultCode faultCode() const;

    /// What people can read about the fault; invalid for a message that is none.
    const QtSoapType& faultString() const;

    /// What programs can read about the fault; invalid if there is nothing.
    const QtSoapType& faultDetail() const;

    /// \name Faults to send
    /// Each of these makes the message a fault, without its method, arguments and other items.
    /// Until it is given another the code is Server.
    /// @{

    /// Tells what the fault is about. A value outside of the list becomes Other.
    void setFaultCode(FaultCode code);
    /// Tells people.
    void setFaultString(const QString& text);
    /// Tells programs, in a further member of the detail. Null is ignored.
    void addFaultDetail(QtSoapType* detail);

    /// @}

    /// Makes it an envelope with an empty body, without an error.
    void clear();

    /// The envelope, without XML declaration; with an \a indent each element on a line of its own,
    /// indented by as many spaces a level. Characters that XML can't carry are written as U+FFFD.
    /// Empty if values nest too deep.
    QString toXmlString(int indent = 0) const;

    /// Why setContent() failed; empty if it didn't.
    QString errorString() const;

protected:
    /// What the body holds.
    enum MessageType
    {
        Fault, ///< a fault
        MethodRequest, ///< a call that was made here
        MethodResponse, ///< what was read and isn't a fault
        OtherType ///< nothing, or items that were added here
    };

    /// Whether the document is an envelope of SOAP 1.1 with a body; if not the message becomes a
    /// fault that says what is wrong.
    bool isValidSoapMessage(const QDomDocument& candidate);

    /// The items of the body, the message's own.
    QtSoapStruct& body() const;

    /// The entries of the header, the message's own.
    QtSoapStruct& header() const;

private:
    friend class QtSoapAccess;
    struct Data;

    QScopedPointer<Data> m_data;
};

Q_DECLARE_METATYPE(QtSoapMessage)

/// Makes the values of a registered type. It is called on the thread that reads, which may be
/// several at once.
class UTILSDLL_EXPORT QtSoapTypeConstructorBase
{
public:
    QtSoapTypeConstructorBase();
    virtual ~QtSoapTypeConstructorBase();

    /// A new value that the caller owns, or null if the element can't be read.
    virtual QtSoapType* createObject(QDomNode node) = 0;

    /// Why the last call failed; empty if it didn't.
    virtual QString errorString() const;

protected:
    /// What errorString() gives from here on; empty for success.
    void setErrorString(const QString& error);

private:
    Q_DISABLE_COPY(QtSoapTypeConstructorBase)

    struct Data;

    QScopedPointer<Data> m_data;
};

/// Makes values of the class \a T, which has a constructor without parameters and its own parse().
template <typename T>
class QtSoapTypeConstructor : public QtSoapTypeConstructorBase
{
public:
    /// A new T that has read the element, or null if its parse() failed.
    QtSoapType* createObject(QDomNode node) override
    {
        QScopedPointer<T> object(new T);
        if (!object->parse(node)) {
            const QString error = object->errorString();
            setErrorString(error.isEmpty() ? QStringLiteral("The element can't be read") : error);
            return nullptr;
        }
        setErrorString(QString());
        return object.take();
    }
};

/// The types that values are read as. One for the process.
///
/// The handler of an element is that of the type it declares; if it declares none, that of the
/// element's own name. Without a handler an element becomes an array if it is one, a struct if it
/// has child elements or is declared as one, and otherwise a QtSoapSimpleType.
class UTILSDLL_EXPORT QtSoapTypeFactory
{
public:
    /// The one of the process.
    static QtSoapTypeFactory& instance();

    /// Reads elements of this type or name with \a handler, which belongs to the factory from then
    /// on. False, and the handler is released, if the name is empty or has a handler already.
    bool registerHandler(const QtSoapQName& name, QtSoapTypeConstructorBase* handler);

    /// A new value that the caller owns, or null if the node isn't an element or can't be read.
    QtSoapType* soapType(const QDomNode& node) const;

private:
    Q_DISABLE_COPY(QtSoapTypeFactory)
    friend class QtSoapAccess;
    struct Data;

    QtSoapTypeFactory();
    ~QtSoapTypeFactory();

    QScopedPointer<Data> m_data;
};

/// The prefixes that are written for namespaces. One for the process.
///
/// There are "SOAP-ENV", "SOAP-ENC", "xsd" and "xsi" to begin with.
class UTILSDLL_EXPORT QtSoapNamespaces
{
public:
    /// The one of the process.
    static QtSoapNamespaces& instance();

    /// Writes \a prefix for names in the namespace \a uri, in the place of an earlier prefix. A
    /// namespace that had the prefix until now gets another when it is used next. Nothing happens
    /// if the prefix isn't a name, is reserved by XML, or is that of one of the four above, or if
    /// the URI is empty.
    void registerNamespace(const QString& prefix, const QString& uri);

    /// The prefix of a namespace, a new one such as "ns1" if it has none. Empty for no namespace.
    QString prefixFor(const QString& uri);

private:
    Q_DISABLE_COPY(QtSoapNamespaces)
    friend class QtSoapAccess;
    struct Data;

    QtSoapNamespaces();
    ~QtSoapNamespaces();

    QScopedPointer<Data> m_data;
};

/// Sends messages to a server by HTTP POST and gets its responses.
///
/// One request runs at a time: a request that is submitted before the response has come replaces
/// the one that runs, which gives no response at all. Each other request gives one, and never
/// before submitRequest() has returned.
///
/// A server's fault is a response like any other, also with HTTP status 500. Whatever else goes
/// wrong is a response of its own: a fault with the code Server, or Client for what is wrong with
/// the request, and a fault string that tells it. Server are host names that aren't found, refused
/// or broken connections, errors of certificates, other HTTP failures, a body that isn't an
/// envelope, and a body of more than 1 GiB. Nothing limits the time; abort networkReply() to do so.
///
/// A body isn't expected with the status 202 or 204: without one the response is an empty message.
///
/// A redirection is followed, at most five times, if it asks for the same request at another place
/// (307, 308) and doesn't lead from https to http. Any other is a failure.
///
/// The transport may be deleted at any time, also by what is connected to its signals. It belongs
/// to the thread it was made on.
class UTILSDLL_EXPORT QtSoapHttpTransport : public QObject
{
    Q_OBJECT

public:
    /// Without a server; setHost() names it.
    explicit QtSoapHttpTransport(QObject* parent = nullptr);
    /// Aborts the request that runs, which gives no response.
    ~QtSoapHttpTransport() override;

    /// The server of the next requests. Port 0 is the usual one. A name may be one beyond ASCII, or
    /// an address.
    void setHost(const QString& host, bool useSecureHTTP = false, int port = 0);

    /// The same with a port, and without encryption.
    void setHost(const QString& host, int port);

    /// The SOAPAction of the next requests; it is sent in quotes, also if it is empty.
    void setAction(const QString& action);

    /// Sends \a request to \a path of the server, which may have a query and needs no leading
    /// slash. What a URL can't have is encoded; "%" before two hexadecimal digits is taken for
    /// encoded.
    void submitRequest(QtSoapMessage& request, const QString& path);

    /// The last response, valid until the next one.
    const QtSoapMessage& getResponse() const;

    /// What requests are sent with, for proxies, authentication and certificates. It belongs to the
    /// transport.
    QNetworkAccessManager* networkAccessManager() const;

    /// The request that runs or ran last, null before the first, for progress, to abort it, or for
    /// certificates that are accepted all the same. It belongs to the transport. A redirection that
    /// is followed makes a new reply.
    QNetworkReply* networkReply() const;

Q_SIGNALS:
    /// A response has come, see getResponse(). Both signals are sent for each, in this order.
    void responseReady();
    /// A response has come.
    void responseReady(const QtSoapMessage& response);

private:
    class Private;

    QScopedPointer<Private> m_private;
};
