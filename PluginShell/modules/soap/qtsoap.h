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
    // Not explicit: a plain text is a name without namespace.
    QtSoapQName(const QString& name = QString(), const QString& uri = QString());

    /// Makes this \a name without namespace.
    QtSoapQName& operator=(const QString& name);

    QString name() const;
    QString uri() const;

private:
    QString m_name;
    QString m_uri;
};

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
    enum Type
    {
        Duration,
        DateTime,
        Time,
        Date,
        GYearMonth,
        GYear,
        GMonthDay,
        GDay,
        GMonth,
        Boolean,
        Base64Binary,
        HexBinary,
        Float,
        Double,
        AnyURI,
        QName,
        NOTATION,
        String,
        NormalizedString,
        Token,
        Language,
        Name,
        NMTOKEN,
        NCName,
        ID,
        IDREF,
        ENTITY,
        Decimal,
        Integer,
        NonPositiveInteger,
        NegativeInteger,
        Long,
        Int,
        Short,
        Byte,
        NonNegativeInteger,
        UnsignedLong,
        PositiveInteger,
        UnsignedInt,
        UnsignedShort,
        UnsignedByte,
        Array,
        Struct,
        Other ///< no type, or one that isn't in this list
    };

    QtSoapType();
    explicit QtSoapType(const QtSoapQName& name, Type type = Other);
    QtSoapType(const QtSoapType& other);
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
    virtual QtSoapType& operator[](int pos);
    virtual QtSoapType& operator[](const QtSoapQName& name);
    virtual QtSoapType& operator[](const QString& name);
    virtual const QtSoapType& operator[](int pos) const;
    virtual const QtSoapType& operator[](const QtSoapQName& name) const;
    virtual const QtSoapType& operator[](const QString& name) const;
    /// @}

    /// Makes an element of this value that belongs to \a document and isn't inserted. Null if
    /// values nest too deep.
    virtual QDomElement toDomElement(QDomDocument document) const;

    virtual Type type() const;
    virtual QString id() const;

    /// The reference, such as "#id-1", of a value that stands elsewhere. Of a value that was read
    /// it remains only if it couldn't be followed.
    virtual QString href() const;

    /// The type's name without its namespace, also that of a type outside of the list; empty if the
    /// value has no type.
    virtual QString typeName() const;

    virtual QtSoapQName name() const;

    /// The content as it is written, empty if there is none. Strings are kept to the character,
    /// for other types white space at both ends is dropped. For a struct it is the text between its
    /// members, if there is more than white space.
    virtual QString toString() const;

    /// The content as a number, 0 if it isn't one that fits.
    virtual int toInt() const;

    /// Whether the content is "true" or a number other than 0.
    virtual bool toBool() const;

    /// A member of a struct is still found by the name that it had when it was inserted.
    virtual void setName(const QtSoapQName& name);
    virtual void setId(const QString& id);
    virtual void setHref(const QString& href);

    /// Why the last call of parse(), or of a function that inserts, failed; empty if it didn't.
    QString errorString() const;

    /// The name in the schema, such as "dateTime"; "Array" and "Struct"; empty for Other.
    static QString typeToName(Type type);

    /// The reverse, Other if the name isn't known. Also knows the schema's names of 1999.
    static Type nameToType(const QString& name);

protected:
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
    QtSoapSimpleType();

    /// Without content, which is written as a null value.
    explicit QtSoapSimpleType(const QtSoapQName& name);

    QtSoapSimpleType(const QtSoapQName& name, int value);

    /// The last parameter has no meaning but to tell a bool from an int.
    QtSoapSimpleType(const QtSoapQName& name, bool value, int dummy);

    QtSoapSimpleType(const QtSoapQName& name, const QString& value);
    QtSoapSimpleType(const QtSoapSimpleType& other);
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
    QtSoapArray();

    /// An array of members of \a type; Other if they have different types. There are as many
    /// dimensions as sizes other than -1, and at least one. A size is what is stated when the array
    /// is written: a member beyond it makes it larger.
    explicit QtSoapArray(const QtSoapQName& name, Type type = Other, int size0 = -1, int size1 = -1,
                         int size2 = -1, int size3 = -1, int size4 = -1);

    QtSoapArray(const QtSoapArray& other);
    QtSoapArray& operator=(const QtSoapArray& other);
    ~QtSoapArray() override;

    /// Removes the members; the sizes stay.
    void clear() override;

    bool parse(QDomNode node) override;
    bool isValid() const override;

    /// The number of members, positions without one not counted.
    int count() const override;

    using QtSoapType::operator[];
    QtSoapType& operator[](int pos) override;
    const QtSoapType& operator[](int pos) const override;

    QDomElement toDomElement(QDomDocument document) const override;
    Type type() const override;

    /// Takes as many positions as there are dimensions, or a single one.
    QtSoapType& at(int pos0, int pos1 = -1, int pos2 = -1, int pos3 = -1, int pos4 = -1);
    const QtSoapType& at(int pos0, int pos1 = -1, int pos2 = -1, int pos3 = -1,
                         int pos4 = -1) const;

    /// Adds \a item behind the last member.
    void append(QtSoapType* item);

    /// \name Inserting
    /// Replace the member at the position. Null is ignored. An item with a negative position or
    /// with another number of positions than at() takes is released, and errorString() says so.
    /// @{
    void insert(int pos0, QtSoapType* item);
    void insert(int pos0, int pos1, QtSoapType* item);
    void insert(int pos0, int pos1, int pos2, QtSoapType* item);
    void insert(int pos0, int pos1, int pos2, int pos3, QtSoapType* item);
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
    QtSoapStruct();
    explicit QtSoapStruct(const QtSoapQName& name);
    QtSoapStruct(const QtSoapStruct& other);
    QtSoapStruct& operator=(const QtSoapStruct& other);
    ~QtSoapStruct() override;

    void clear() override;
    bool parse(QDomNode node) override;
    bool isValid() const override;
    int count() const override;
    QtSoapType& operator[](int pos) override;
    QtSoapType& operator[](const QtSoapQName& name) override;
    QtSoapType& operator[](const QString& name) override;
    const QtSoapType& operator[](int pos) const override;
    const QtSoapType& operator[](const QtSoapQName& name) const override;
    const QtSoapType& operator[](const QString& name) const override;
    QDomElement toDomElement(QDomDocument document) const override;
    Type type() const override;
    QString toString() const override;

    /// The member of exactly this name and namespace.
    QtSoapType& at(const QtSoapQName& name);
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
    explicit QtSoapArrayIterator(QtSoapArray& array);
    QtSoapArrayIterator(const QtSoapArrayIterator& other);
    QtSoapArrayIterator& operator=(const QtSoapArrayIterator& other);
    ~QtSoapArrayIterator();

    /// The single position; -1 at the end, or if an int can't hold it.
    int pos() const;

    /// The positions by dimension, -1 for dimensions that the array doesn't have and at the end.
    /// Null pointers are skipped.
    void pos(int* pos0, int* pos1 = nullptr, int* pos2 = nullptr, int* pos3 = nullptr,
             int* pos4 = nullptr) const;

    /// The member, null at the end. Both do the same.
    /// @{
    QtSoapType* data();
    const QtSoapType* data() const;
    QtSoapType* current();
    const QtSoapType* current() const;
    /// @}

    /// At the end it stays where it is.
    QtSoapArrayIterator& operator++();

    /// Whether both stand at the same position of the same array.
    bool operator==(const QtSoapArrayIterator& other) const;
    bool operator!=(const QtSoapArrayIterator& other) const;

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
    explicit QtSoapStructIterator(QtSoapStruct& structure);
    QtSoapStructIterator(const QtSoapStructIterator& other);
    QtSoapStructIterator& operator=(const QtSoapStructIterator& other);
    ~QtSoapStructIterator();

    /// The name of the member, empty at the end.
    QtSoapQName key() const;

    /// The member, null at the end. Both do the same.
    /// @{
    QtSoapType* data();
    const QtSoapType* data() const;
    QtSoapType* current();
    const QtSoapType* current() const;
    /// @}

    /// At the end it stays where it is.
    QtSoapStructIterator& operator++();

    /// Whether both stand at the same member of the same struct.
    bool operator==(const QtSoapStructIterator& other) const;
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
    enum FaultCode
    {
        VersionMismatch,
        MustUnderstand,
        Client,
        Server,
        Other ///< a code that isn't SOAP's own, or the message isn't a fault
    };

    QtSoapMessage();
    QtSoapMessage(const QtSoapMessage& other);
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
    bool setContent(QDomDocument& document);

    void addBodyItem(QtSoapType* item);
    void addHeaderItem(QtSoapType* item);

    /// The first item of the body: the struct of the method and its arguments, of the response and
    /// its results, or of the fault with its "faultcode", "faultstring", "faultactor" and "detail".
    /// Invalid if there is none.
    const QtSoapType& method() const;

    /// The first member of a response; invalid if there is none, or for a fault.
    const QtSoapType& returnValue() const;

    void setMethod(const QtSoapQName& method);
    void setMethod(const QString& name, const QString& uri = QString());

    /// An argument replaces an earlier one of its name. They may be given before the method.
    void addMethodArgument(QtSoapType* argument);
    void addMethodArgument(const QString& name, const QString& uri, const QString& value);
    void addMethodArgument(const QString& name, const QString& uri, bool value, int dummy);
    void addMethodArgument(const QString& name, const QString& uri, int value);

    bool isFault() const;

    /// The code's first part: Client for "Client.Authentication". All of it is in method().
    FaultCode faultCode() const;

    const QtSoapType& faultString() const;
    const QtSoapType& faultDetail() const;

    /// Each of these makes the message a fault, without its method, arguments and other items.
    /// Until it is given another the code is Server.
    void setFaultCode(FaultCode code);
    void setFaultString(const QString& text);
    void addFaultDetail(QtSoapType* detail);

    void clear();

    /// The envelope, without XML declaration; with an \a indent each element on a line of its own,
    /// indented by as many spaces a level. Characters that XML can't carry are written as U+FFFD.
    /// Empty if values nest too deep.
    QString toXmlString(int indent = 0) const;

    /// Why setContent() failed; empty if it didn't.
    QString errorString() const;

protected:
    enum MessageType
    {
        Fault,
        MethodRequest,
        MethodResponse,
        OtherType
    };

    /// Whether the document is an envelope of SOAP 1.1 with a body; if not the message becomes a
    /// fault that says what is wrong.
    bool isValidSoapMessage(const QDomDocument& candidate);

    QtSoapStruct& body() const;
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
    explicit QtSoapHttpTransport(QObject* parent = nullptr);
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

    /// What requests are sent with, and the one that runs or ran last (null before the first), for
    /// proxies, authentication, progress, or for certificates that are accepted. Both belong to the
    /// transport. A redirection that is followed makes a new reply.
    /// @{
    QNetworkAccessManager* networkAccessManager() const;
    QNetworkReply* networkReply() const;
    /// @}

Q_SIGNALS:
    /// Both are sent for each response, in this order.
    void responseReady();
    void responseReady(const QtSoapMessage& response);

private:
    class Private;

    QScopedPointer<Private> m_private;
};
