#include <KDSoapClient/KDSoapMessage.h>
#include <KDSoapClient/KDSoapValue.h>
#include <KDSoapServer/KDSoapServer.h>
#include <KDSoapServer/KDSoapServerObjectInterface.h>
#include <KDSoapServer/KDSoapServerRawXMLInterface.h>

#include <QCoreApplication>
#include <QDate>
#include <QFile>
#include <QHostAddress>
#include <QMap>
#include <QSocketNotifier>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QStringList>
#include <QTextStream>

#include <cstdio>

#include <unistd.h>

// A SOAP 1.1 server of another make. It serves on the loopback interface, prints its port, then a
// line for each request: what it has understood of it. It ends when its input does.
//
//     soapServer [CERTIFICATE KEY]     the two make it serve HTTPS

namespace {

const QString schema = QStringLiteral("http://www.w3.org/2001/XMLSchema");
const QString encoding = QStringLiteral("http://schemas.xmlsoap.org/soap/encoding/");
const QString shop = QStringLiteral("urn:shop");

void print(const QString& line)
{
    QTextStream out(stdout);
    out.setCodec("UTF-8");
    out << line << '\n';
}

QString qualified(const QString& space, const QString& name)
{
    if (space.startsWith(QLatin1String("http://www.w3.org/"))
        && space.endsWith(QLatin1String("/XMLSchema")))
        return QStringLiteral("xsd:") + name;
    if (space == encoding)
        return QStringLiteral("soapenc:") + name;
    return space.isEmpty() ? name : QStringLiteral("{%1}%2").arg(space, name);
}

/// Such as `price: xsd:int = "3"`, or `item: Item (price: xsd:int = "3", …)`.
QString text(const KDSoapValue& value)
{
    QString result = qualified(value.namespaceUri(), value.name());
    if (!value.type().isEmpty())
        result += QStringLiteral(": ") + qualified(value.typeNs(), value.type());
    const KDSoapValueList& children = value.childValues();
    if (!children.arrayType().isEmpty()) {
        result += QStringLiteral(" of ") + qualified(children.arrayTypeNs(), children.arrayType());
    }
    if (children.isEmpty()) {
        QString content = value.value().toString();
        content.replace(QLatin1Char('\n'), QLatin1String("\\n"));
        return result + QStringLiteral(" = \"%1\"").arg(content);
    }
    QStringList texts;
    for (const KDSoapValue& child : children)
        texts << text(child);
    return result + QStringLiteral(" (%1)").arg(texts.join(QLatin1String(", ")));
}

KDSoapValue typed(const char* name, const QVariant& value, const char* type)
{
    return {QString::fromLatin1(name), value, schema, QString::fromLatin1(type)};
}

KDSoapValue structure(const char* name, const char* type, const QList<KDSoapValue>& members)
{
    KDSoapValueList list;
    list.append(members);
    return {QString::fromLatin1(name), list, shop, QString::fromLatin1(type)};
}

KDSoapValue array(const char* name, const char* itemType, const QList<KDSoapValue>& items)
{
    KDSoapValueList list;
    list.append(items);
    list.setArrayType(schema, QString::fromLatin1(itemType));
    return {QString::fromLatin1(name), list, encoding, QStringLiteral("Array")};
}

/// What a method without arguments gives back.
QList<KDSoapValue> result(const QString& method)
{
    if (method == QLatin1String("simpleValues")) {
        return {typed("text", QString::fromUtf8("Größe < 3 & „ja“ \U0001F4F7"), "string"),
                typed("count", -42, "int"),
                typed("yes", true, "boolean"),
                typed("no", false, "boolean"),
                typed("price", 34.5, "double"),
                typed("file",
                      QByteArray("\x00\x01\xff"
                                 "abc",
                                 6),
                      "base64Binary"),
                typed("day", QDate(2013, 2, 28), "date"),
                typed("large", qlonglong(9007199254740993), "long"),
                typed("nothing", QString(), "string")};
    }
    if (method == QLatin1String("order")) {
        const KDSoapValue street = typed("street", "Kanalstraße 1", "string");
        const KDSoapValue address =
            structure("address", "Address", {street, typed("number", 7, "short")});
        const KDSoapValue customer =
            structure("customer", "Customer", {typed("name", "Ada", "string"), address});
        return {structure("order", "Order", {typed("id", 5, "int"), customer})};
    }
    if (method == QLatin1String("numbers")) {
        return {
            array("numbers", "int",
                  {typed("item", 3, "int"), typed("item", 4, "int"), typed("item", -5, "int")})};
    }
    return {};
}

} // namespace

class Service : public QObject,
                public KDSoapServerObjectInterface,
                public KDSoapServerRawXMLInterface
{
    Q_OBJECT
    Q_INTERFACES(KDSoapServerObjectInterface)
    Q_INTERFACES(KDSoapServerRawXMLInterface)

public:
    /// Notes the head of the request, and leaves the body to the server.
    bool newRequest(const QByteArray& type, const QMap<QByteArray, QByteArray>& headers) override
    {
        m_head = type + ' ' + headers.value("content-type") + ' ' + headers.value("soapaction");
        return false;
    }

    void processRequest(const KDSoapMessage& request, KDSoapMessage& response,
                        const QByteArray& soapAction) override
    {
        processRequestWithPath(request, response, soapAction, QStringLiteral("/"));
    }

    void processRequestWithPath(const KDSoapMessage& request, KDSoapMessage& response,
                                const QByteArray&, const QString& path) override
    {
        QString line = QString::fromUtf8(m_head) + QLatin1Char(' ') + path;
        const KDSoapHeaders headers = requestHeaders();
        for (const KDSoapMessage& header : headers)
            line += QStringLiteral(" [%1]").arg(text(header));
        print(line + QLatin1Char(' ') + text(request));
        answer(request, response);
    }

private:
    void answer(const KDSoapMessage& request, KDSoapMessage& response)
    {
        const QString method = request.name();
        setResponseNamespace(shop);
        response = KDSoapValue(method + QStringLiteral("Response"), QVariant());
        const QString argument = request.arguments().value(0).value().toString();
        if (method == QLatin1String("echo")) {
            response.childValues() = request.childValues();
        } else if (method == QLatin1String("fail")) {
            KDSoapValue detail = structure("shortage", "Shortage", {typed("missing", 3, "int")});
            setFault(QStringLiteral("Client.Stock"), QStringLiteral("Nicht genügend \"übrig\""),
                     QStringLiteral("urn:storehouse"), detail);
        } else if (method == QLatin1String("session")) {
            KDSoapMessage session;
            session.setUse(KDSoapMessage::EncodedUse);
            session.addArgument(QStringLiteral("session"), 77, schema, QStringLiteral("int"));
            KDSoapHeaders headers;
            headers << session;
            setResponseHeaders(headers);
            response.childValues() << typed("accepted", true, "boolean");
        } else if (method == QLatin1String("literally")) {
            writeXML(argument.toUtf8());
        } else if (method == QLatin1String("http")) {
            writeHTTP(argument.toUtf8());
        } else if (method == QLatin1String("large")) {
            response.childValues()
                << typed("large", QString(argument.toInt(), QLatin1Char('x')), "string");
        } else if (method == QLatin1String("orders")) {
            QList<KDSoapValue> orders;
            for (int i = 0; i < argument.toInt(); ++i) {
                orders << structure("order", "Order",
                                    {typed("id", i, "int"), typed("symbol", "DIS", "string"),
                                     typed("price", 34.5, "double")});
            }
            response.childValues() << array("orders", "anyType", orders);
        } else {
            response.childValues().append(result(method));
        }
    }

    QByteArray m_head;
};

class Server : public KDSoapServer
{
    Q_OBJECT

public:
    QObject* createServerObject() override { return new Service; }
};

int main(int argc, char* argv[])
{
    const QCoreApplication application(argc, argv);
    Server server;
    server.setUse(KDSoapMessage::EncodedUse);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() == 3) {
        QFile certificate(arguments.at(1));
        QFile key(arguments.at(2));
        if (!certificate.open(QIODevice::ReadOnly) || !key.open(QIODevice::ReadOnly))
            qFatal("can't read the certificate and its key");
        QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
        configuration.setLocalCertificate(QSslCertificate(&certificate));
        configuration.setPrivateKey(QSslKey(&key, QSsl::Rsa));
        server.setSslConfiguration(configuration);
        server.setFeatures(KDSoapServer::Ssl);
    }
    if (!server.listen(QHostAddress::LocalHost))
        qFatal("can't listen: %s", qPrintable(server.errorString()));
    print(QString::number(server.serverPort()));

    const QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, qApp, [] {
        char byte = 0;
        if (read(STDIN_FILENO, &byte, 1) <= 0)
            QCoreApplication::quit();
    });
    return QCoreApplication::exec();
}

#include "soapServer.moc"
