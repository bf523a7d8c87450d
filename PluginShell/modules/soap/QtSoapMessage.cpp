#include "QtSoapMessage"

#include "SoapAccess_p.h"
#include "SoapLexical_p.h"
#include "SoapNames_p.h"
#include "SoapReader_p.h"
#include "SoapTree_p.h"
#include "SoapWriter_p.h"

#include <typeinfo>

using namespace VEK_NAMESPACE;
using soap::Tree;
using soap::ValuePointer;

namespace {

// In the order of QtSoapMessage::FaultCode.
const char* const faultCodeNames[] = {"VersionMismatch", "MustUnderstand", "Client", "Server",
                                      "Other"};

QtSoapQName faultName()
{
    return QtSoapQName(QStringLiteral("Fault"), soap::envelopeUri());
}

/// The struct that \a data has at a place, made its own if it is shared with another message; null
/// if there is none.
QtSoapStruct* ownStruct(QtSoapAccess::StructData* data, int at)
{
    if (at < 0 || at >= data->members.size())
        return nullptr;
    data->members.detach(); // now the values themselves know who shares them
    QtSoapType* value = data->members.at(at).value.get();
    if (typeid(*value) != typeid(QtSoapStruct))
        return nullptr;
    if (QtSoapAccess::isShared(*value)) {
        value = new QtSoapStruct(*static_cast<QtSoapStruct*>(value));
        data->replace(at, ValuePointer(value));
    }
    return static_cast<QtSoapStruct*>(value);
}

void setPlainText(QtSoapStruct* structure, const QString& name, const QString& text)
{
    auto* value = new QtSoapSimpleType(QtSoapQName(name));
    QtSoapAccess::setText(*value, text);
    QtSoapAccess::StructData& data = QtSoapAccess::data(*structure);
    const int former = data.findInAnyNamespace(name);
    if (former >= 0)
        data.replace(former, ValuePointer(value));
    else
        data.append(ValuePointer(value));
}

struct Envelope
{
    int header = -1;
    int body = -1;
};

/// Finds the parts of an envelope. If it isn't one the result is false.
bool findParts(const Tree& tree, Envelope* envelope, QtSoapMessage::FaultCode* code, QString* error)
{
    *code = QtSoapMessage::Client;
    const QtSoapQName root = tree.name(0);
    if (root.name() != QLatin1String("Envelope")) {
        *error = QStringLiteral("The document isn't a SOAP envelope");
        return false;
    }
    if (root.uri() != soap::envelopeUri()) {
        *code = QtSoapMessage::VersionMismatch;
        *error = QStringLiteral("The envelope isn't one of SOAP 1.1: its namespace is \"%1\"")
                     .arg(root.uri().left(200));
        return false;
    }
    const QtSoapQName headerName(QStringLiteral("Header"), soap::envelopeUri());
    const QtSoapQName bodyName(QStringLiteral("Body"), soap::envelopeUri());
    for (int part = tree.firstChild(0); part >= 0; part = tree.nextSibling(part)) {
        const QtSoapQName name = tree.name(part);
        if (name == headerName) {
            if (envelope->header >= 0 || envelope->body >= 0) {
                *error = QStringLiteral("The envelope's header isn't its first part");
                return false;
            }
            envelope->header = part;
        } else if (name == bodyName) {
            if (envelope->body >= 0) {
                *error = QStringLiteral("The envelope has more than one body");
                return false;
            }
            envelope->body = part;
        }
    }
    if (envelope->body < 0) {
        *error = QStringLiteral("The envelope has no body");
        return false;
    }
    return true;
}

bool mustBeUnderstood(const Tree& tree, int entry)
{
    const QString must =
        soap::trimmed(tree.attribute(entry, QStringLiteral("mustUnderstand"), soap::envelopeUri()));
    if (must != QLatin1String("1") && must != QLatin1String("true"))
        return false;
    const QString actor =
        soap::trimmed(tree.attribute(entry, QStringLiteral("actor"), soap::envelopeUri()));
    return actor.isEmpty() || actor == soap::nextActorUri();
}

/// Whether the element stands in the body only to be referred to.
bool isOnlyTarget(const Tree& tree, int element)
{
    const QString root = tree.attribute(element, QStringLiteral("root"), soap::encodingUri());
    if (!root.isNull())
        return soap::trimmed(root) == QLatin1String("0");
    const QString id = tree.attribute(element, QStringLiteral("id"));
    return !id.isEmpty() && tree.isReferredTo(id);
}

} // namespace

struct QtSoapMessage::Data
{
    QtSoapStruct header{QtSoapQName(QStringLiteral("Header"), soap::envelopeUri())};
    QtSoapStruct body{QtSoapQName(QStringLiteral("Body"), soap::envelopeUri())};
    MessageType type = OtherType;
    FaultCode code = Other;
    QString codePrefix; // of the envelope's namespace in the text of the code
    QString error;

    void clear() { *this = Data(); }

    QtSoapAccess::StructData& items() { return QtSoapAccess::data(body); }

    /// The struct of the method that the message calls.
    QtSoapStruct& ownMethod()
    {
        if (type == Fault || type == MethodResponse)
            clear();
        QtSoapStruct* method = type == MethodRequest ? ownStruct(&items(), 0) : nullptr;
        if (!method) {
            method = new QtSoapStruct;
            items().prepend(ValuePointer(method));
            type = MethodRequest;
        }
        return *method;
    }

    QtSoapStruct& ownFault()
    {
        QtSoapStruct* fault = type == Fault ? ownStruct(&items(), 0) : nullptr;
        if (!fault) {
            body.clear();
            type = Fault;
            fault = new QtSoapStruct(faultName());
            items().append(ValuePointer(fault));
            setCode(fault, Server);
            setPlainText(fault, QStringLiteral("faultstring"), QString());
        }
        return *fault;
    }

    void setCode(QtSoapStruct* fault, FaultCode faultCode)
    {
        code = faultCode < VersionMismatch || faultCode > Other ? Other : faultCode;
        QString text = QLatin1String(faultCodeNames[code]);
        if (code != Other)
            text = withPrefix(text);
        setPlainText(fault, QStringLiteral("faultcode"), text);
    }

    /// The name in the envelope's namespace.
    QString withPrefix(const QString& name)
    {
        codePrefix = QtSoapNamespaces::instance().prefixFor(soap::envelopeUri());
        return codePrefix + QLatin1Char(':') + name;
    }

    void readCode(const Tree& tree, int element)
    {
        code = Other;
        const QtSoapQName name = tree.resolve(element, tree.text(element));
        // Many senders leave the prefix away, and some don't declare it.
        if (name.uri() != soap::envelopeUri() && !name.uri().isEmpty())
            return;
        const QString first = name.name().section(QLatin1Char('.'), 0, 0);
        for (int known = VersionMismatch; known < Other; ++known) {
            if (first == QLatin1String(faultCodeNames[known]))
                code = static_cast<FaultCode>(known);
        }
        if (name.uri().isEmpty())
            return;
        // The prefix was the sender's.
        if (QtSoapStruct* fault = ownStruct(&items(), 0))
            setPlainText(fault, QStringLiteral("faultcode"), withPrefix(name.name()));
    }

    void becomeFailure(FaultCode faultCode, const QString& text)
    {
        clear();
        QtSoapStruct& fault = ownFault();
        setCode(&fault, faultCode);
        setPlainText(&fault, QStringLiteral("faultstring"), text);
        error = text;
    }

    bool read(const Tree& tree)
    {
        clear();
        Envelope envelope;
        FaultCode failure = Client;
        QString text;
        if (!findParts(tree, &envelope, &failure, &text)) {
            becomeFailure(failure, text);
            return false;
        }

        soap::Reader reader(tree, soap::Reader::OwnContext);
        const int entries = envelope.header < 0 ? -1 : tree.firstChild(envelope.header);
        for (int entry = entries; entry >= 0; entry = tree.nextSibling(entry)) {
            const QtSoapQName name = tree.name(entry);
            if (mustBeUnderstood(tree, entry) && !QtSoapAccess::handler(name)) {
                becomeFailure(
                    MustUnderstand,
                    QStringLiteral("The header entry \"%1\" isn't understood").arg(name.name()));
                return false;
            }
            if (isOnlyTarget(tree, entry))
                continue;
            const ValuePointer value = reader.read(entry);
            if (!value) {
                becomeFailure(Client, reader.error());
                return false;
            }
            QtSoapAccess::data(header).append(value);
        }

        for (int item = tree.firstChild(envelope.body); item >= 0; item = tree.nextSibling(item)) {
            if (isOnlyTarget(tree, item))
                continue;
            ValuePointer value = reader.read(item);
            if (!value) {
                becomeFailure(Client, reader.error());
                return false;
            }
            const bool isFirst = items().members.isEmpty();
            if (isFirst && isEmpty(*value))
                value = ValuePointer(new QtSoapStruct(value->name()));
            items().append(value);
            if (!isFirst)
                continue;
            type = tree.name(item) == faultName() ? Fault : MethodResponse;
            if (type != Fault)
                continue;
            code = Other;
            for (int part = tree.firstChild(item); part >= 0; part = tree.nextSibling(part)) {
                if (tree.name(part).name() == QLatin1String("faultcode")) {
                    readCode(tree, part);
                    break;
                }
            }
        }
        return true;
    }

    /// Whether it is the element of a response without results, which looks like an empty text.
    static bool isEmpty(const QtSoapType& value)
    {
        return typeid(value) == typeid(QtSoapSimpleType) && value.isValid()
            && value.typeName().isEmpty() && value.value().isValid()
            && soap::isBlank(value.toString());
    }
};

void QtSoapAccess::setFailure(QtSoapMessage& message, QtSoapMessage::FaultCode code,
                              const QString& error)
{
    message.m_data->becomeFailure(code, error);
}

QtSoapMessage::QtSoapMessage()
    : m_data(new Data)
{}

QtSoapMessage::QtSoapMessage(const QtSoapMessage& other)
    : m_data(new Data(*other.m_data))
{}

QtSoapMessage& QtSoapMessage::operator=(const QtSoapMessage& other)
{
    if (this != &other)
        *m_data = *other.m_data;
    return *this;
}

QtSoapMessage::~QtSoapMessage() = default;

bool QtSoapMessage::setContent(const QByteArray& buffer)
{
    Tree tree;
    if (tree.read(buffer))
        return m_data->read(tree);
    m_data->becomeFailure(Client, tree.error());
    return false;
}

bool QtSoapMessage::setContent(QDomDocument& document)
{
    Tree tree;
    if (tree.read(document))
        return m_data->read(tree);
    m_data->becomeFailure(Client, tree.error());
    return false;
}

bool QtSoapMessage::isValidSoapMessage(const QDomDocument& candidate)
{
    Tree tree;
    Envelope envelope;
    FaultCode code = Client;
    QString error;
    if (!tree.read(candidate))
        error = tree.error();
    else if (findParts(tree, &envelope, &code, &error))
        return true;
    m_data->becomeFailure(code, error);
    return false;
}

void QtSoapMessage::addBodyItem(QtSoapType* item)
{
    if (item)
        m_data->items().append(ValuePointer(item));
}

void QtSoapMessage::addHeaderItem(QtSoapType* item)
{
    if (item)
        QtSoapAccess::data(m_data->header).append(ValuePointer(item));
}

const QtSoapType& QtSoapMessage::method() const
{
    return static_cast<const QtSoapStruct&>(m_data->body)[0];
}

const QtSoapType& QtSoapMessage::returnValue() const
{
    return m_data->type == MethodResponse ? method()[0] : QtSoapAccess::placeholder();
}

void QtSoapMessage::setMethod(const QtSoapQName& method)
{
    m_data->ownMethod().setName(method);
    m_data->items().rename(0, method);
}

void QtSoapMessage::setMethod(const QString& name, const QString& uri)
{
    setMethod(QtSoapQName(name, uri));
}

void QtSoapMessage::addMethodArgument(QtSoapType* argument)
{
    if (argument)
        m_data->ownMethod().insert(argument);
}

void QtSoapMessage::addMethodArgument(const QString& name, const QString& uri, const QString& value)
{
    addMethodArgument(new QtSoapSimpleType(QtSoapQName(name, uri), value));
}

void QtSoapMessage::addMethodArgument(const QString& name, const QString& uri, bool value,
                                      int dummy)
{
    addMethodArgument(new QtSoapSimpleType(QtSoapQName(name, uri), value, dummy));
}

void QtSoapMessage::addMethodArgument(const QString& name, const QString& uri, int value)
{
    addMethodArgument(new QtSoapSimpleType(QtSoapQName(name, uri), value));
}

bool QtSoapMessage::isFault() const
{
    return m_data->type == Fault;
}

QtSoapMessage::FaultCode QtSoapMessage::faultCode() const
{
    return isFault() ? m_data->code : Other;
}

const QtSoapType& QtSoapMessage::faultString() const
{
    return isFault() ? method()[QStringLiteral("faultstring")] : QtSoapAccess::placeholder();
}

const QtSoapType& QtSoapMessage::faultDetail() const
{
    return isFault() ? method()[QStringLiteral("detail")] : QtSoapAccess::placeholder();
}

void QtSoapMessage::setFaultCode(FaultCode code)
{
    m_data->setCode(&m_data->ownFault(), code);
}

void QtSoapMessage::setFaultString(const QString& text)
{
    setPlainText(&m_data->ownFault(), QStringLiteral("faultstring"), text);
}

void QtSoapMessage::addFaultDetail(QtSoapType* detail)
{
    if (!detail)
        return;
    QtSoapAccess::StructData& fault = QtSoapAccess::data(m_data->ownFault());
    const QString name = QStringLiteral("detail");
    int at = fault.findInAnyNamespace(name);
    if (at < 0) {
        at = fault.members.size();
        fault.append(ValuePointer(new QtSoapStruct(QtSoapQName(name))));
    }
    if (!ownStruct(&fault, at))
        fault.replace(at, ValuePointer(new QtSoapStruct(QtSoapQName(name))));
    QtSoapAccess::data(*ownStruct(&fault, at)).append(ValuePointer(detail));
}

void QtSoapMessage::clear()
{
    m_data->clear();
}

QString QtSoapMessage::toXmlString(int indent) const
{
    QtSoapNamespaces& namespaces = QtSoapNamespaces::instance();
    const QString prefix = namespaces.prefixFor(soap::envelopeUri());
    QDomDocument document;
    const auto create = [&](const QString& name) {
        return document.createElementNS(soap::envelopeUri(), prefix + QLatin1Char(':') + name);
    };
    QDomElement root = create(QStringLiteral("Envelope"));
    document.appendChild(root);
    for (const QString& uri : {soap::encodingUri(), soap::schemaUri(), soap::schemaInstanceUri()}) {
        root.setAttribute(QLatin1String("xmlns:") + namespaces.prefixFor(uri), uri);
    }
    if (isFault() && !m_data->codePrefix.isEmpty() && m_data->codePrefix != prefix)
        root.setAttribute(QLatin1String("xmlns:") + m_data->codePrefix, soap::envelopeUri());
    root.setAttributeNS(soap::envelopeUri(), prefix + QLatin1String(":encodingStyle"),
                        soap::encodingUri());

    const auto write = [&](QDomElement part, const QtSoapStruct& items) {
        for (const QtSoapAccess::StructData::Member& item : QtSoapAccess::data(items).members) {
            const QDomElement element = item.value->toDomElement(document);
            if (element.isNull())
                return false;
            part.appendChild(element);
        }
        root.appendChild(part);
        return true;
    };
    if (m_data->header.count() > 0 && !write(create(QStringLiteral("Header")), m_data->header))
        return QString();
    if (!write(create(QStringLiteral("Body")), m_data->body))
        return QString();
    return soap::toXml(root, indent);
}

QString QtSoapMessage::errorString() const
{
    return m_data->error;
}

QtSoapStruct& QtSoapMessage::body() const
{
    return m_data->body;
}

QtSoapStruct& QtSoapMessage::header() const
{
    return m_data->header;
}
