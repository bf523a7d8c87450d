#include "qtsoap.h"

#include "Envelopes.h"
#include "SoapText.h"
#include "XmlText.h"

#include <QCoreApplication>
#include <QDate>
#include <QHash>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QPointer>
#include <QProcess>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslError>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTest>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <limits>
#include <memory>

#include <sys/resource.h>

// Requests and replies over the loopback interface. The other side is a SOAP server of another
// make, a program of its own, and a plain socket where a server has to misbehave.

using Build = std::function<void(QtSoapMessage&)>;

Q_DECLARE_METATYPE(Build)

namespace {

const char largeArgument[] = "--large";

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// What is freed is kept for a while, each allocation has its fence, and all takes its time.
const int manyOrders = 24000;
const int memoryFactor = 4;
#else
const int manyOrders = 240000; // 50 MB
const int memoryFactor = 1;
#endif

const int unusedPort = 1; ///< that of a service which no system has any more

/// The server program. Its lines tell what it has understood.
class SoapServer
{
public:
    explicit SoapServer(const QStringList& arguments = {})
    {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral(SOAP_SERVER), arguments);
        m_port = takeLine().toInt();
        if (m_port == 0)
            qFatal("the server doesn't start");
    }

    ~SoapServer()
    {
        m_process.closeWriteChannel();
        m_process.waitForFinished();
    }

    int port() const { return m_port; }

    QString takeLine()
    {
        while (!m_process.canReadLine() && m_process.waitForReadyRead(30000)) {}
        return QString::fromUtf8(m_process.readLine()).trimmed();
    }

private:
    Q_DISABLE_COPY(SoapServer)

    QProcess m_process;
    int m_port = 0;
};

/// Answers each request by what it is told to write.
class Peer : public QTcpServer
{
public:
    using Answer = std::function<void(QTcpSocket&)>;

    explicit Peer(const Answer& answer)
        : m_answer(answer)
    {
        connect(this, &QTcpServer::newConnection, this, [this] {
            QTcpSocket* socket = nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { read(*socket); });
            connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
                m_data.remove(socket);
                socket->deleteLater();
            });
        });
        if (!listen(QHostAddress::LocalHost))
            qFatal("can't listen");
    }

    QList<QByteArray> requests;

private:
    void read(QTcpSocket& socket)
    {
        QByteArray& data = m_data[&socket];
        data += socket.readAll();
        const int end = data.indexOf("\r\n\r\n");
        if (end < 0)
            return;
        const int length = data.toLower().indexOf("content-length: ");
        const int size =
            length < 0 || length > end ? 0 : data.mid(length + 16, 12).split('\r').value(0).toInt();
        if (data.size() < end + 4 + size)
            return;
        requests << data;
        data.clear();
        m_answer(socket);
    }

    const Answer m_answer;
    QHash<QTcpSocket*, QByteArray> m_data;
};

QByteArray httpReply(const QByteArray& status, const QByteArray& type, const QByteArray& body,
                     const QByteArray& fields = {})
{
    return "HTTP/1.1 " + status + "\r\nContent-Type: " + type + "\r\nContent-Length: "
        + QByteArray::number(body.size()) + "\r\n" + fields + "\r\n" + body;
}

/// Receives what \a method gives; prints how much that is, and by how many MiB the process has
/// grown.
int receive(int port, const char* method)
{
    rusage before = {};
    getrusage(RUSAGE_SELF, &before);
    QtSoapHttpTransport transport;
    transport.setHost(QStringLiteral("127.0.0.1"), port);
    QtSoapMessage request;
    request.setMethod(QLatin1String(method), QStringLiteral("urn:shop"));
    request.addMethodArgument(QStringLiteral("count"), QString(),
                              qstrcmp(method, "large") == 0 ? 50000000 : manyOrders);
    QSignalSpy ready(&transport, SIGNAL(responseReady()));
    transport.submitRequest(request, QStringLiteral("/"));
    ready.wait(140000);
    rusage after = {};
    getrusage(RUSAGE_SELF, &after);
    const QtSoapType& result = transport.getResponse().returnValue();
    if (result.type() == QtSoapType::Array)
        std::printf("%d items\n", result.count());
    else
        std::printf("%d letters\n", result.toString().size());
    std::printf("%ld\n", (after.ru_maxrss - before.ru_maxrss) / 1024);
    return EXIT_SUCCESS;
}

} // namespace

/// A transport and what it has told, in the order in which it did.
class Client : public QObject
{
    Q_OBJECT

public:
    explicit Client(int port = 0)
        : transport(new QtSoapHttpTransport(this))
    {
        if (port)
            transport->setHost(QStringLiteral("127.0.0.1"), port);
        connect(transport,
                static_cast<void (QtSoapHttpTransport::*)()>(&QtSoapHttpTransport::responseReady),
                this, [this] { ++plainSignals; });
        connect(transport,
                static_cast<void (QtSoapHttpTransport::*)(const QtSoapMessage&)>(
                    &QtSoapHttpTransport::responseReady),
                this, [this](const QtSoapMessage& message) { received << message; });
    }

    /// Sends and waits until both signals have come.
    bool send(QtSoapMessage& request, const QString& path = QStringLiteral("/"))
    {
        const int plain = plainSignals + 1;
        const int messages = received.size() + 1;
        transport->submitRequest(request, path);
        return QTest::qWaitFor([=] { return plainSignals == plain && received.size() == messages; },
                               60000);
    }

    bool call(const char* method, const QString& argument = {})
    {
        QtSoapMessage request;
        request.setMethod(QLatin1String(method), QStringLiteral("urn:shop"));
        if (!argument.isNull())
            request.addMethodArgument(QStringLiteral("argument"), QString(), argument);
        return send(request);
    }

    QString fault() const
    {
        const QtSoapMessage& response = transport->getResponse();
        return response.isFault() ? response.faultString().toString() : QStringLiteral("no fault");
    }

    QtSoapHttpTransport* const transport;
    int plainSignals = 0;
    QList<QtSoapMessage> received;
};

class tst_SoapTransport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    // Requests
    void requestsAreUnderstood_data();
    void requestsAreUnderstood();
    void theHeadSaysWhatItIs_data();
    void theHeadSaysWhatItIs();
    void anActionAddsNoField();
    void aRequestIsOnePost();
    void pathsAreAskedFor_data();
    void pathsAreAskedFor();

    // Replies
    void repliesAreUnderstood_data();
    void repliesAreUnderstood();
    void valuesComeBackAsTheyWent_data();
    void valuesComeBackAsTheyWent();
    void arraysOfEachOrderComeBack_data();
    void arraysOfEachOrderComeBack();
    void aFaultIsUnderstood();
    void aHeaderOfTheReply();
    void repliesInOtherForms_data();
    void repliesInOtherForms();

    // Life
    void bothSignalsComeForEachResponse();
    void oneRequestAfterTheOther();
    void aLaterRequestReplacesTheOneThatRuns();
    void theHostMayChange();
    void aRequestFromTheSlot();
    void deletedWhileItWaits();
    void deletedInTheSlot_data();
    void deletedInTheSlot();
    void deletedBeforeItWasUsed();

    // Failures
    void failuresAreFaults_data();
    void failuresAreFaults();
    void nobodyListens();
    void theHostIsNotKnown();
    void hostsThatAreNone_data();
    void hostsThatAreNone();
    void aRequestThatIsTooDeep();
    void afterAFailureItWorks();
    void theProgramMayAbort();

    // Redirections
    void safeRedirectionsAreFollowed_data();
    void safeRedirectionsAreFollowed();
    void otherRedirectionsAreFaults_data();
    void otherRedirectionsAreFaults();
    void aLoopOfRedirectionsEnds();

    // HTTPS
    void aCertificateErrorIsAFault();
    void aCertificateErrorThatTheProgramAccepts_data();
    void aCertificateErrorThatTheProgramAccepts();
    void aCertificateThatIsTrusted_data();
    void aCertificateThatIsTrusted();
    void fromHttpsToHttpIsAFault();
    void aRedirectionWithinHttps();

    // Size
    void largeReplies_data();
    void largeReplies();

private:
    SoapServer& server()
    {
        if (!m_server)
            m_server = std::make_unique<SoapServer>();
        return *m_server;
    }
    SoapServer& tlsServer();

    QTemporaryDir m_folder;
    std::unique_ptr<SoapServer> m_server;
    std::unique_ptr<SoapServer> m_tlsServer;
};

void tst_SoapTransport::initTestCase()
{
    QVERIFY(m_folder.isValid());
}

SoapServer& tst_SoapTransport::tlsServer()
{
    if (!m_tlsServer) {
        const QString certificate = m_folder.filePath("certificate.pem");
        const QString key = m_folder.filePath("key.pem");
        QProcess openssl;
        openssl.start("openssl",
                      {"req", "-x509", "-newkey", "rsa:2048", "-nodes", "-days", "2", "-subj",
                       "/CN=localhost", "-addext", "subjectAltName=DNS:localhost", "-keyout", key,
                       "-out", certificate});
        if (!openssl.waitForFinished() || openssl.exitCode() != 0)
            qFatal("openssl: %s", openssl.readAllStandardError().constData());
        m_tlsServer = std::make_unique<SoapServer>(QStringList{certificate, key});
    }
    return *m_tlsServer;
}

void tst_SoapTransport::requestsAreUnderstood_data()
{
    QTest::addColumn<Build>("build");
    QTest::addColumn<QString>("understood");

    QTest::newRow("no argument") << Build([](QtSoapMessage& m) { m.setMethod("now", "urn:shop"); })
                                 << R"({urn:shop}now = "")";
    QTest::newRow("a method named in one piece")
        << Build([](QtSoapMessage& m) { m.setMethod(QtSoapQName("now", "urn:shop")); })
        << R"({urn:shop}now = "")";
    QTest::newRow("a text") << Build([](QtSoapMessage& m) {
        m.setMethod("price", "urn:shop");
        m.addMethodArgument("symbol", QString(), QString("DIS"));
    }) << R"({urn:shop}price (symbol: xsd:string = "DIS"))";
    QTest::newRow("numbers") << Build([](QtSoapMessage& m) {
        m.setMethod("sum", "urn:shop");
        m.addMethodArgument("a", QString(), 2147483647);
        m.addMethodArgument("b", QString(), -2147483647 - 1);
    }) << R"({urn:shop}sum (a: xsd:int = "2147483647", b: xsd:int = "-2147483648"))";
    QTest::newRow("truth") << Build([](QtSoapMessage& m) {
        m.setMethod("vote", "urn:shop");
        m.addMethodArgument("for", QString(), true, 0);
        m.addMethodArgument("against", QString(), false, 0);
    }) << R"({urn:shop}vote (for: xsd:boolean = "true", against: xsd:boolean = "false"))";
    QTest::newRow("a text beyond ASCII and the first plane") << Build([](QtSoapMessage& m) {
        m.setMethod("say", "urn:shop");
        m.addMethodArgument("text", QString(), QString::fromUtf8("Größe 写真 \U0001F4F7"));
    }) << QString::fromUtf8("{urn:shop}say (text: xsd:string = \"Größe 写真 \U0001F4F7\")");
    QTest::newRow("a text of XML's own characters") << Build([](QtSoapMessage& m) {
        m.setMethod("say", "urn:shop");
        m.addMethodArgument("text", QString(), QString("<a b=\"c\"> & 'd' ]]> &amp;"));
    }) << R"({urn:shop}say (text: xsd:string = "<a b="c"> & 'd' ]]> &amp;"))";
    QTest::newRow("a text with white space around and inside") << Build([](QtSoapMessage& m) {
        m.setMethod("say", "urn:shop");
        m.addMethodArgument("text", QString(), QString("  two\n lines \t"));
    }) << "{urn:shop}say (text: xsd:string = \"  two\\n lines \t\")";
    QTest::newRow("an argument of a namespace") << Build([](QtSoapMessage& m) {
        m.setMethod("say", "urn:shop");
        m.addMethodArgument("text", "urn:other", QString("a"));
    }) << R"({urn:shop}say ({urn:other}text: xsd:string = "a"))";
    QTest::newRow("types that are asked for") << Build([](QtSoapMessage& m) {
        m.setMethod("say", "urn:shop");
        auto* count = new QtSoapSimpleType(QtSoapQName("count"));
        count->parse(element(R"(<count xsi:type="xsd:unsignedShort">9</count>)"));
        m.addMethodArgument(count);
    }) << R"({urn:shop}say (count: xsd:unsignedShort = "9"))";
    QTest::newRow("a struct in a struct")
        << Build([](QtSoapMessage& m) {
               m.setMethod("order", "urn:shop");
               auto* address = new QtSoapStruct(QtSoapQName("address"));
               address->insert(
                   new QtSoapSimpleType(QtSoapQName("street"), QString::fromUtf8("Weg Ö")));
               auto* customer = new QtSoapStruct(QtSoapQName("customer"));
               customer->insert(new QtSoapSimpleType(QtSoapQName("id"), 5));
               customer->insert(address);
               m.addMethodArgument(customer);
           })
        << QString::fromUtf8("{urn:shop}order (customer (id: xsd:int = \"5\", address "
                             "(street: xsd:string = \"Weg Ö\")))");
    QTest::newRow("a header") << Build([](QtSoapMessage& m) {
        m.setMethod("now", "urn:shop");
        m.addHeaderItem(new QtSoapSimpleType(QtSoapQName("transaction", "urn:shop"), QString("5")));
    }) << R"([{urn:shop}transaction: xsd:string = "5"] {urn:shop}now = "")";
}

void tst_SoapTransport::requestsAreUnderstood()
{
    QFETCH(Build, build);
    QFETCH(QString, understood);

    QtSoapMessage request;
    build(request);
    Client client(server().port());
    client.transport->setAction(QStringLiteral("urn:shop#do"));
    QVERIFY(client.send(request, QStringLiteral("/shop")));
    QCOMPARE(server().takeLine(),
             R"(POST text/xml;charset=utf-8 "urn:shop#do" /shop )" + understood);
}

void tst_SoapTransport::theHeadSaysWhatItIs_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("field");

    QTest::newRow("an action") << "urn:shop#price"
                               << R"("urn:shop#price")";
    QTest::newRow("no action") << QString() << R"("")";
}

void tst_SoapTransport::theHeadSaysWhatItIs()
{
    QFETCH(QString, action);
    QFETCH(QString, field);

    Client client(server().port());
    if (!action.isNull())
        client.transport->setAction(action);
    QVERIFY(client.call("now"));
    QCOMPARE(server().takeLine(),
             QStringLiteral("POST text/xml;charset=utf-8 %1 / {urn:shop}now = \"\"").arg(field));
}

void tst_SoapTransport::anActionAddsNoField()
{
    Peer peer([](QTcpSocket& socket) {
        socket.write(httpReply("200 OK", "text/xml", envelope("<m/>")));
    });
    Client client(peer.serverPort());
    client.transport->setAction("urn:a\"\r\nX-Added: 1\r\n\r\n<b/>");
    QVERIFY(client.call("m"));
    for (const QByteArray& request : qAsConst(peer.requests)) {
        QVERIFY2(!request.toLower().contains("\nx-added"), request.constData());
        QVERIFY2(!request.contains("\r\n\r\n<b/>"), request.constData());
    }
}

void tst_SoapTransport::aRequestIsOnePost()
{
    Peer peer([](QTcpSocket& socket) {
        socket.write(httpReply("200 OK", "text/xml", envelope("<m/>")));
    });
    Client client(peer.serverPort());
    client.transport->setAction("urn:shop#price");
    QtSoapMessage request;
    request.setMethod("price", "urn:shop");
    request.addMethodArgument("symbol", QString(), QString::fromUtf8("Ö"));
    QVERIFY(client.send(request, "/shop"));
    QCOMPARE(peer.requests.size(), 1);
    const QByteArray sent = peer.requests.at(0);
    QVERIFY2(sent.startsWith("POST /shop HTTP/1.1\r\n"), sent.constData());
    const QByteArray head = sent.left(sent.indexOf("\r\n\r\n"));
    QVERIFY2(
        head.toLower().contains("\r\nhost: 127.0.0.1:" + QByteArray::number(peer.serverPort())),
        head.constData());
    QVERIFY2(head.toLower().contains("\r\ncontent-type: text/xml;charset=utf-8"), head.constData());
    QVERIFY2(head.toLower().contains("\r\nsoapaction: \"urn:shop#price\""), head.constData());
    const QByteArray body = sent.mid(sent.indexOf("\r\n\r\n") + 4);
    QCOMPARE(XmlText::of(QString::fromUtf8(body)), XmlText::of(request.toXmlString()));
}

void tst_SoapTransport::pathsAreAskedFor_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QByteArray>("asked");

    QTest::newRow("a path") << "/a/b" << QByteArray("/a/b");
    QTest::newRow("no slash before it") << "a/b" << QByteArray("/a/b");
    QTest::newRow("nothing") << QString() << QByteArray("/");
    QTest::newRow("a query") << "/a?b=c&d=e" << QByteArray("/a?b=c&d=e");
    QTest::newRow("a space") << "/a b" << QByteArray("/a%20b");
    QTest::newRow("letters beyond ASCII") << QString::fromUtf8("/ö") << QByteArray("/%C3%B6");
    QTest::newRow("what is encoded already") << "/a%20b%2Fc" << QByteArray("/a%20b%2Fc");
    QTest::newRow("another host isn't named by it")
        << "//no-such-host.invalid/a" << QByteArray("/no-such-host.invalid/a");
    QTest::newRow("a colon") << "a:b" << QByteArray("/a:b");
}

void tst_SoapTransport::pathsAreAskedFor()
{
    QFETCH(QString, path);
    QFETCH(QByteArray, asked);

    Peer peer([](QTcpSocket& socket) {
        socket.write(httpReply("200 OK", "text/xml", envelope("<m/>")));
    });
    Client client(peer.serverPort());
    QtSoapMessage request;
    request.setMethod("m");
    QVERIFY(client.send(request, path));
    QCOMPARE(client.fault(), QString("no fault"));
    QCOMPARE(peer.requests.value(0).split(' ').value(1), asked);
}

void tst_SoapTransport::repliesAreUnderstood_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("reply");

    QTest::newRow("simple values")
        << "simpleValues"
        << QString::fromUtf8(
               R"({urn:shop}simpleValuesResponse: {text: string "Größe < 3 & „ja“ 📷", )"
               R"(count: int "-42", yes: boolean "true", no: boolean "false", )"
               R"(price: double "34.5", file: base64Binary "AAH/YWJj", day: date "2013-02-28", )"
               R"(large: long "9007199254740993", nothing: string ""})");
    QTest::newRow("structs in each other")
        << "order"
        << QString::fromUtf8(
               R"({urn:shop}orderResponse: {order: {id: int "5", customer: {name: string "Ada", )"
               R"(address: {street: string "Kanalstraße 1", number: short "7"}}}})");
    QTest::newRow("an array")
        << "numbers"
        << R"({urn:shop}numbersResponse: {numbers: [0: int "3", 1: int "4", 2: int "-5"]})";
}

void tst_SoapTransport::repliesAreUnderstood()
{
    QFETCH(QString, method);

    Client client(server().port());
    QVERIFY(client.call(method.toLatin1()));
    server().takeLine();
    const QtSoapMessage& response = client.transport->getResponse();
    QVERIFY2(!response.isFault(), qPrintable(response.faultString().toString()));
    QCOMPARE(response.errorString(), QString());
    QTEST(SoapText::of(response.method()), "reply");
    QCOMPARE(SoapText::of(client.received.last().method()), SoapText::of(response.method()));
}

void tst_SoapTransport::valuesComeBackAsTheyWent_data()
{
    QTest::addColumn<QString>("xml");
    QTest::addColumn<QVariant>("value");

    QTest::newRow("an int") << R"(<v xsi:type="xsd:int">-2147483648</v>)"
                            << QVariant(-2147483647 - 1);
    QTest::newRow("a long") << R"(<v xsi:type="xsd:long">9223372036854775807</v>)"
                            << QVariant(std::numeric_limits<qlonglong>::max());
    QTest::newRow("a double") << R"(<v xsi:type="xsd:double">-0.0625</v>)" << QVariant(-0.0625);
    QTest::newRow("a boolean") << R"(<v xsi:type="xsd:boolean">true</v>)" << QVariant(true);
    QTest::newRow("a text") << R"(<v xsi:type="xsd:string"> &lt;Grüße&gt; &amp; 写真 </v>)"
                            << QVariant(QString::fromUtf8(" <Grüße> & 写真 "));
    QTest::newRow("an empty text") << R"(<v xsi:type="xsd:string"></v>)" << QVariant(QString(""));
    QTest::newRow("hexadecimal bytes")
        << R"(<v xsi:type="xsd:hexBinary">0fb7</v>)" << QVariant(QByteArray("\x0f\xb7"));
    QTest::newRow("a date") << R"(<v xsi:type="xsd:date">2013-02-28</v>)"
                            << QVariant(QDate(2013, 2, 28));
    QTest::newRow("a moment") << R"(<v xsi:type="xsd:dateTime">2013-02-28T13:20:05Z</v>)"
                              << QVariant(QDateTime(QDate(2013, 2, 28), QTime(13, 20, 5), Qt::UTC));
}

void tst_SoapTransport::valuesComeBackAsTheyWent()
{
    QFETCH(QString, xml);
    QFETCH(QVariant, value);

    auto* argument = new QtSoapSimpleType;
    QtSoapMessage request;
    request.setMethod("echo", "urn:shop");
    request.addMethodArgument(argument);
    QVERIFY(argument->parse(element(xml)));
    Client client(server().port());
    QVERIFY(client.send(request));
    server().takeLine();
    QCOMPARE(client.fault(), QString("no fault"));
    const QtSoapType& result = client.transport->getResponse().returnValue();
    QCOMPARE(result.value(), value);
    QCOMPARE(result.value().userType(), value.userType());
}

namespace {

/// An array of two in each of its dimensions, whose members are counted.
QtSoapArray* countedArray(int dimensions)
{
    const auto size = [dimensions](int dimension) { return dimension < dimensions ? 2 : -1; };
    auto* array = new QtSoapArray(QtSoapQName("all"), QtSoapType::Int, size(0), size(1), size(2),
                                  size(3), size(4));
    for (int i = 0; i < 1 << dimensions; ++i)
        array->append(new QtSoapSimpleType(QtSoapQName("one"), i));
    return array;
}

} // namespace

void tst_SoapTransport::arraysOfEachOrderComeBack_data()
{
    QTest::addColumn<int>("dimensions");
    QTest::addColumn<QString>("understood");
    QTest::addColumn<QString>("last");

    const auto items = [](int count) {
        QStringList list;
        for (int i = 0; i < count; ++i)
            list << QStringLiteral("one: xsd:int = \"%1\"").arg(i);
        return QStringLiteral("{urn:shop}literally (all: soapenc:Array of xsd:int (%1))")
            .arg(list.join(", "));
    };
    QTest::newRow("one dimension") << 1 << items(2) << R"(, 1: int "1"])";
    QTest::newRow("two dimensions") << 2 << items(4) << R"(, 1 1: int "3"])";
    QTest::newRow("three dimensions") << 3 << items(8) << R"(, 1 1 1: int "7"])";
    QTest::newRow("four dimensions") << 4 << items(16) << R"(, 1 1 1 1: int "15"])";
    QTest::newRow("five dimensions") << 5 << items(32) << R"(, 1 1 1 1 1: int "31"])";
}

// The other make knows one dimension only, so it reads the items, and is given its answer.
void tst_SoapTransport::arraysOfEachOrderComeBack()
{
    QFETCH(int, dimensions);
    QFETCH(QString, understood);
    QFETCH(QString, last);

    Client client(server().port());
    QtSoapMessage request;
    request.setMethod("look", "urn:shop");
    request.addMethodArgument(countedArray(dimensions));
    QVERIFY(client.send(request));
    QString line = server().takeLine();
    line = line.mid(line.indexOf('{')).replace("look (", "literally (");
    static const QRegularExpression type(" of xsd:int\\S*");
    line.remove(type);
    QCOMPARE(line, understood.remove(" of xsd:int"));

    QString items;
    for (int i = 0; i < 1 << dimensions; ++i)
        items += QStringLiteral("<i>%1</i>").arg(i);
    const QString sizes = QStringLiteral("2,2,2,2,2").left(2 * dimensions - 1);
    const QByteArray reply = envelope(QStringLiteral(R"(<m:r xmlns:m="urn:shop"><all)"
                                                     R"( SOAP-ENC:arrayType="xsd:int[%1]">%2</all>)"
                                                     "</m:r>")
                                          .arg(sizes, items)
                                          .toUtf8());
    QVERIFY(client.call("literally", QString::fromUtf8(reply)));
    server().takeLine();
    const QtSoapType& array = client.transport->getResponse().returnValue();
    QCOMPARE(array.count(), 1 << dimensions);
    QVERIFY2(SoapText::ofContent(array).endsWith(last), qPrintable(SoapText::ofContent(array)));
}

void tst_SoapTransport::aFaultIsUnderstood()
{
    Client client(server().port());
    QVERIFY(client.call("fail"));
    server().takeLine();
    const QtSoapMessage& response = client.transport->getResponse();
    QVERIFY(response.isFault());
    QCOMPARE(response.errorString(), QString());
    QCOMPARE(response.faultString().toString(), QString::fromUtf8("Nicht genügend \"übrig\""));
    QCOMPARE(response.method()["faultcode"].toString(), QString("Client.Stock"));
    QCOMPARE(response.method()["faultactor"].toString(), QString("urn:storehouse"));
    QCOMPARE(SoapText::of(response.faultDetail()),
             QString(R"(detail: {shortage: {missing: int "3"}})"));
    QVERIFY(!response.returnValue().isValid());

    // The next one is none.
    QVERIFY(client.call("numbers"));
    server().takeLine();
    QCOMPARE(client.fault(), QString("no fault"));
}

void tst_SoapTransport::aHeaderOfTheReply()
{
    Client client(server().port());
    QVERIFY(client.call("session"));
    server().takeLine();
    const OpenMessage response(client.transport->getResponse());
    QCOMPARE(response.header()["session"].toInt(), 77);
    QCOMPARE(response.returnValue().toBool(), true);
}

void tst_SoapTransport::bothSignalsComeForEachResponse()
{
    QtSoapHttpTransport transport;
    QStringList order;
    connect(&transport,
            static_cast<void (QtSoapHttpTransport::*)(const QtSoapMessage&)>(
                &QtSoapHttpTransport::responseReady),
            this, [&](const QtSoapMessage& message) {
                order << "message " + message.method().name().name();
            });
    connect(&transport,
            static_cast<void (QtSoapHttpTransport::*)()>(&QtSoapHttpTransport::responseReady), this,
            [&] { order << "plain " + transport.getResponse().method().name().name(); });
    // By their names, as older programs connect.
    QSignalSpy plain(&transport, SIGNAL(responseReady()));
    QSignalSpy withMessage(&transport, SIGNAL(responseReady(QtSoapMessage)));
    QVERIFY(plain.isValid());
    QVERIFY(withMessage.isValid());

    transport.setHost("127.0.0.1", server().port());
    QtSoapMessage request;
    request.setMethod("numbers", "urn:shop");
    transport.submitRequest(request, "/");
    QVERIFY(order.isEmpty());
    QVERIFY(QTest::qWaitFor([&] { return order.size() == 2; }, 60000));
    QCOMPARE(order, QStringList({"plain numbersResponse", "message numbersResponse"}));
    QCOMPARE(plain.size(), 1);
    QCOMPARE(withMessage.size(), 1);
    server().takeLine();

    // Also for a failure, which never comes before the call has returned.
    order.clear();
    transport.setHost("127.0.0.1", unusedPort);
    transport.submitRequest(request, "/");
    QVERIFY(order.isEmpty());
    QVERIFY(QTest::qWaitFor([&] { return order.size() == 2; }, 60000));
    QCOMPARE(order, QStringList({"plain Fault", "message Fault"}));
}

void tst_SoapTransport::oneRequestAfterTheOther()
{
    Client client(server().port());
    client.transport->setAction("urn:shop#first");
    QVERIFY(client.call("numbers"));
    QVERIFY(server().takeLine().contains("\"urn:shop#first\""));
    QCOMPARE(client.transport->getResponse().returnValue().count(), 3);
    client.transport->setAction("urn:shop#second");
    QVERIFY(client.call("order"));
    QVERIFY(server().takeLine().contains("\"urn:shop#second\""));
    QCOMPARE(client.transport->getResponse().returnValue()["id"].toInt(), 5);
    QCOMPARE(client.plainSignals, 2);
    QCOMPARE(client.received.at(0).returnValue().count(), 3);
}

void tst_SoapTransport::aLaterRequestReplacesTheOneThatRuns()
{
    Peer peer([&](QTcpSocket& socket) {
        // Only the second is answered.
        if (peer.requests.size() == 2)
            socket.write(httpReply("200 OK", "text/xml", envelope("<second/>")));
    });
    Client client(peer.serverPort());
    QtSoapMessage request;
    request.setMethod("first");
    client.transport->submitRequest(request, "/first");
    QVERIFY(QTest::qWaitFor([&] { return peer.requests.size() == 1; }, 60000));
    QVERIFY(client.send(request, "/second"));
    QCOMPARE(client.transport->getResponse().method().name().name(), QString("second"));
    QCOMPARE(client.plainSignals, 1);
}

void tst_SoapTransport::theHostMayChange()
{
    Peer peer([](QTcpSocket& socket) {
        socket.write(httpReply("200 OK", "text/xml", envelope("<peer/>")));
    });
    Client client(server().port());
    QVERIFY(client.call("numbers"));
    server().takeLine();
    client.transport->setHost("localhost", false, peer.serverPort());
    QVERIFY(client.call("numbers"));
    QCOMPARE(client.transport->getResponse().method().name().name(), QString("peer"));
    QVERIFY(peer.requests.value(0).toLower().contains("\r\nhost: localhost:"));
}

void tst_SoapTransport::aRequestFromTheSlot()
{
    QtSoapHttpTransport transport;
    transport.setHost("127.0.0.1", server().port());
    QtSoapMessage request;
    QStringList results;
    connect(&transport,
            static_cast<void (QtSoapHttpTransport::*)(const QtSoapMessage&)>(
                &QtSoapHttpTransport::responseReady),
            this, [&](const QtSoapMessage& response) {
                results << response.method().name().name();
                if (results.size() == 1) {
                    request.setMethod("order", "urn:shop");
                    transport.submitRequest(request, "/");
                }
            });
    request.setMethod("numbers", "urn:shop");
    transport.submitRequest(request, "/");
    QVERIFY(QTest::qWaitFor([&] { return results.size() == 2; }, 60000));
    QCOMPARE(results, QStringList({"numbersResponse", "orderResponse"}));
    server().takeLine();
    server().takeLine();
}

void tst_SoapTransport::deletedWhileItWaits()
{
    bool gone = false;
    Peer peer([&](QTcpSocket& socket) {
        connect(&socket, &QTcpSocket::disconnected, this, [&] { gone = true; });
    });
    auto client = std::make_unique<Client>(peer.serverPort());
    QPointer<QNetworkAccessManager> manager = client->transport->networkAccessManager();
    QtSoapMessage request;
    request.setMethod("m");
    client->transport->submitRequest(request, "/");
    QVERIFY(QTest::qWaitFor([&] { return peer.requests.size() == 1; }, 60000));
    QPointer<QNetworkReply> reply = client->transport->networkReply();
    QVERIFY(reply);
    delete client->transport;
    QCOMPARE(client->plainSignals, 0);
    QVERIFY(QTest::qWaitFor([&] { return gone && !reply && !manager; }, 60000));
    QCOMPARE(client->plainSignals, 0);
}

void tst_SoapTransport::deletedInTheSlot_data()
{
    QTest::addColumn<bool>("first");
    QTest::addColumn<int>("port");

    QTest::newRow("in the slot of the first signal") << true << 0;
    QTest::newRow("in the slot of the second signal") << false << 0;
    QTest::newRow("in the first slot after a failure") << true << unusedPort;
    QTest::newRow("in the second slot after a failure") << false << unusedPort;
}

void tst_SoapTransport::deletedInTheSlot()
{
    QFETCH(bool, first);
    QFETCH(int, port);

    auto* transport = new QtSoapHttpTransport;
    transport->setHost("127.0.0.1", port ? port : server().port());
    QPointer<QtSoapHttpTransport> watched(transport);
    int signalsBefore = 0;
    if (first) {
        connect(transport,
                static_cast<void (QtSoapHttpTransport::*)()>(&QtSoapHttpTransport::responseReady),
                this, [&] { delete transport; });
    } else {
        connect(transport,
                static_cast<void (QtSoapHttpTransport::*)()>(&QtSoapHttpTransport::responseReady),
                this, [&] { ++signalsBefore; });
    }
    QString second;
    connect(transport,
            static_cast<void (QtSoapHttpTransport::*)(const QtSoapMessage&)>(
                &QtSoapHttpTransport::responseReady),
            this, [&](const QtSoapMessage& message) {
                delete transport;
                // The message outlives the transport.
                second = message.method().name().name();
            });
    QtSoapMessage request;
    request.setMethod("numbers", "urn:shop");
    transport->submitRequest(request, "/");
    QVERIFY(QTest::qWaitFor([&] { return !watched; }, 60000));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    QCOMPARE(signalsBefore, first ? 0 : 1);
    QCOMPARE(second, first ? QString() : port ? QString("Fault") : QString("numbersResponse"));
    if (!port)
        server().takeLine();
}

void tst_SoapTransport::deletedBeforeItWasUsed()
{
    QtSoapHttpTransport unused;
    QVERIFY(unused.networkAccessManager());
    QVERIFY(!unused.networkReply());
    QVERIFY(!unused.getResponse().isFault());
    QVERIFY(!unused.getResponse().returnValue().isValid());

    QObject parent;
    QPointer<QtSoapHttpTransport> child = new QtSoapHttpTransport(&parent);
    QCOMPARE(child->parent(), &parent);
    delete child;
}

void tst_SoapTransport::repliesInOtherForms_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("method");

    const QByteArray body = envelope(QString::fromUtf8("<m><a>Größe</a></m>").toUtf8());
    const QString read = QString::fromUtf8(R"(m: {a: "Größe"})");
    QTest::newRow("with a length") << httpReply("200 OK", "text/xml; charset=utf-8", body) << read;
    QTest::newRow("in chunks") << "HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\n"
                                  "Transfer-Encoding: chunked\r\n\r\n1\r\n<\r\n"
            + QByteArray::number(body.size() - 1, 16) + "\r\n" + body.mid(1)
            + "\r\n0\r\n\r\n" << read;
    QTest::newRow("until it hangs up")
        << "HTTP/1.0 200 OK\r\nContent-Type: text/xml\r\nConnection: close\r\n\r\n" + body << read;
    QTest::newRow("after a go-ahead")
        << "HTTP/1.1 100 Continue\r\n\r\n" + httpReply("200 OK", "text/xml", body) << read;
    QTest::newRow("accepted") << httpReply("202 Accepted", "text/xml", body) << read;
    const QByteArray latin1 = QString::fromUtf8(body).toLatin1();
    QTest::newRow("in the encoding that the head names")
        << httpReply("200 OK", "text/xml; charset=\"ISO-8859-1\"; q=1", latin1) << read;
    QTest::newRow("in the encoding that the document names, whatever the head says") << httpReply(
        "200 OK", "text/xml; charset=utf-8", "<?xml version='1.0' encoding='ISO-8859-1'?>" + latin1)
                                                                                     << read;
    QTest::newRow("in the usual encoding, which the document names, whatever the head says")
        << httpReply("200 OK", "text/xml; charset=ISO-8859-1",
                     "<?xml version='1.0' encoding='UTF-8'?>" + body)
        << read;
    QTest::newRow("in an encoding that nobody knows, which is the usual one")
        << httpReply("200 OK", "text/xml; charset=unheard-of", body) << read;
    QTest::newRow("a fault with status 500")
        << httpReply("500 Internal Server Error", "text/xml",
                     envelope("<SOAP-ENV:Fault><faultcode>SOAP-ENV:Server</faultcode>"
                              "<faultstring>no</faultstring></SOAP-ENV:Fault>"))
        << "{http://schemas.xmlsoap.org/soap/envelope/}Fault: "
           R"({faultcode: "SOAP-ENV:Server", faultstring: "no"})";
    QTest::newRow("a fault with status 200")
        << httpReply("200 OK", "text/xml",
                     envelope("<SOAP-ENV:Fault><faultcode>SOAP-ENV:Client</faultcode>"
                              "<faultstring>no</faultstring></SOAP-ENV:Fault>"))
        << "{http://schemas.xmlsoap.org/soap/envelope/}Fault: "
           R"({faultcode: "SOAP-ENV:Client", faultstring: "no"})";
    QTest::newRow("no content, as to a call that has no result")
        << QByteArray("HTTP/1.1 204 No Content\r\n\r\n") << ": invalid";
}

void tst_SoapTransport::repliesInOtherForms()
{
    QFETCH(QByteArray, reply);

    Peer peer([reply](QTcpSocket& socket) {
        socket.write(reply);
        socket.disconnectFromHost();
    });
    Client client(peer.serverPort());
    QVERIFY(client.call("m"));
    QTEST(SoapText::of(client.transport->getResponse().method()), "method");
    QCOMPARE(client.transport->getResponse().errorString(), QString());
    QCOMPARE(peer.requests.size(), 1);
}

void tst_SoapTransport::failuresAreFaults_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<QString>("word");
    QTest::addColumn<bool>("isTheRequests");

    const QByteArray page = "<html><body><p>Sorry<br></body></html>";
    const QByteArray whole = httpReply("200 OK", "text/xml", envelope("<m><a>1</a></m>"));
    QTest::newRow("hangs up at once") << QByteArray() << QString() << false;
    QTest::newRow("hangs up in the head") << whole.left(30) << QString() << false;
    QTest::newRow("hangs up before the body")
        << whole.left(whole.indexOf("\r\n\r\n") + 4) << QString() << false;
    QTest::newRow("hangs up in the body") << whole.left(whole.size() - 20) << QString() << false;
    QTest::newRow("hangs up at the last byte")
        << whole.left(whole.size() - 1) << QString() << false;
    QTest::newRow("hangs up in a chunk")
        << QByteArray("HTTP/1.1 200 OK\r\nContent-Type: text/xml\r\n"
                      "Transfer-Encoding: chunked\r\n\r\nff\r\n<a>")
        << QString() << false;
    QTest::newRow("what isn't HTTP") << QByteArray("220 ready\r\n\r\n") << QString() << false;
    QTest::newRow("no such page") << httpReply("404 Not Found", "text/html", page) << "404" << true;
    QTest::newRow("a page of the server's failure")
        << httpReply("500 Internal Server Error", "text/html", page) << "500" << false;
    QTest::newRow("a failure without words")
        << httpReply("503 Service Unavailable", "text/plain", "") << "503" << false;
    QTest::newRow("an envelope that is no fault, with a failure's status")
        << httpReply("404 Not Found", "text/xml", envelope("<m/>")) << "404" << true;
    QTest::newRow("a name and password that aren't known") << httpReply(
        "401 Unauthorized", "text/html", page, "WWW-Authenticate: Basic realm=\"shop\"\r\n")
                                                           << QString() << true;
    QTest::newRow("a page") << httpReply("200 OK", "text/html", page) << QString() << false;
    QTest::newRow("a page of well-formed XML")
        << httpReply("200 OK", "application/xhtml+xml", "<html/>") << QString() << false;
    QTest::newRow("nothing") << httpReply("200 OK", "text/xml", "") << QString() << false;
    QTest::newRow("half an envelope")
        << httpReply("200 OK", "text/xml", envelope("<m/>").left(100)) << QString() << false;
}

void tst_SoapTransport::failuresAreFaults()
{
    QFETCH(QByteArray, reply);
    QFETCH(QString, word);
    QFETCH(bool, isTheRequests);

    Peer peer([reply](QTcpSocket& socket) {
        socket.write(reply);
        socket.disconnectFromHost();
    });
    Client client(peer.serverPort());
    QVERIFY(client.call("m"));
    const QtSoapMessage& response = client.transport->getResponse();
    QVERIFY(response.isFault());
    QCOMPARE(response.faultCode(), isTheRequests ? QtSoapMessage::Client : QtSoapMessage::Server);
    QVERIFY(!response.faultString().toString().isEmpty());
    QVERIFY2(response.faultString().toString().contains(word),
             qPrintable(response.faultString().toString()));
    QVERIFY(!response.returnValue().isValid());
    QCOMPARE(client.plainSignals, 1);
    QVERIFY(client.received.at(0).isFault());
}

void tst_SoapTransport::nobodyListens()
{
    Client client(unusedPort);
    QVERIFY(client.call("m"));
    QCOMPARE(client.transport->getResponse().faultCode(), QtSoapMessage::Server);
    QVERIFY2(client.fault().contains("refused"), qPrintable(client.fault()));
    QVERIFY(client.transport->networkReply());
    QCOMPARE(client.transport->networkReply()->error(), QNetworkReply::ConnectionRefusedError);
}

void tst_SoapTransport::theHostIsNotKnown()
{
    Client client;
    client.transport->setHost("no-such-host.invalid");
    QVERIFY(client.call("m"));
    QCOMPARE(client.transport->getResponse().faultCode(), QtSoapMessage::Server);
    QVERIFY(!client.fault().isEmpty());
}

void tst_SoapTransport::hostsThatAreNone_data()
{
    QTest::addColumn<QString>("host");

    QTest::newRow("never told") << QString();
    QTest::newRow("spaces") << "a b";
    QTest::newRow("a path") << "127.0.0.1/a";
    QTest::newRow("a user") << "user@127.0.0.1";
    QTest::newRow("an address that isn't whole") << "[::1";
}

void tst_SoapTransport::hostsThatAreNone()
{
    QFETCH(QString, host);

    Client client;
    if (!host.isNull())
        client.transport->setHost(host, server().port());
    QVERIFY(client.call("m"));
    QVERIFY(client.transport->getResponse().isFault());
    QVERIFY(!client.fault().isEmpty());
}

void tst_SoapTransport::aRequestThatIsTooDeep()
{
    auto* value = new QtSoapStruct(QtSoapQName("s"));
    for (int level = 0; level < 1000; ++level) {
        auto* outer = new QtSoapStruct(QtSoapQName("s"));
        outer->insert(value);
        value = outer;
    }
    QtSoapMessage request;
    request.setMethod("m");
    request.addMethodArgument(value);
    Peer peer([](QTcpSocket& socket) { socket.disconnectFromHost(); });
    Client client(peer.serverPort());
    QVERIFY(client.send(request));
    QVERIFY(client.transport->getResponse().isFault());
    QCOMPARE(client.transport->getResponse().faultCode(), QtSoapMessage::Client);
    QCOMPARE(peer.requests.size(), 0);
}

void tst_SoapTransport::afterAFailureItWorks()
{
    bool isWell = false;
    Peer peer([&](QTcpSocket& socket) {
        if (isWell)
            socket.write(httpReply("200 OK", "text/xml", envelope("<m><a>1</a></m>")));
        else
            socket.abort();
    });
    Client client(peer.serverPort());
    QVERIFY(client.call("m"));
    QVERIFY(client.transport->getResponse().isFault());
    isWell = true;
    QVERIFY(client.call("m"));
    QCOMPARE(client.fault(), QString("no fault"));
    QCOMPARE(client.transport->getResponse().returnValue().toInt(), 1);
    QCOMPARE(client.received.size(), 2);
}

void tst_SoapTransport::theProgramMayAbort()
{
    Peer peer([](QTcpSocket&) {});
    Client client(peer.serverPort());
    QtSoapMessage request;
    request.setMethod("m");
    client.transport->submitRequest(request, "/");
    QVERIFY(QTest::qWaitFor([&] { return peer.requests.size() == 1; }, 60000));
    client.transport->networkReply()->abort();
    QVERIFY(QTest::qWaitFor([&] { return client.plainSignals == 1; }, 60000));
    QVERIFY(client.transport->getResponse().isFault());
    QVERIFY(!client.fault().isEmpty());
}

void tst_SoapTransport::safeRedirectionsAreFollowed_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QByteArray>("location");
    QTest::addColumn<QByteArray>("asked");

    QTest::newRow("for this time, by a path")
        << QByteArray("307 Temporary Redirect") << QByteArray("/new?a=b") << QByteArray("/new?a=b");
    QTest::newRow("for ever, by a path")
        << QByteArray("308 Permanent Redirect") << QByteArray("/new") << QByteArray("/new");
    QTest::newRow("by a name beside it")
        << QByteArray("307 Temporary Redirect") << QByteArray("new") << QByteArray("/shop/new");
    QTest::newRow("to another server")
        << QByteArray("307 Temporary Redirect") << QByteArray("http://127.0.0.1:%1/new")
        << QByteArray("/new");
}

void tst_SoapTransport::safeRedirectionsAreFollowed()
{
    QFETCH(QByteArray, status);
    QFETCH(QByteArray, location);
    QFETCH(QByteArray, asked);

    const Peer::Answer answer = [](QTcpSocket& socket) {
        socket.write(httpReply("200 OK", "text/xml", envelope("<there/>")));
    };
    Peer second(answer);
    const bool isElsewhere = location.contains("%1");
    location.replace("%1", QByteArray::number(second.serverPort()));
    Peer first([&](QTcpSocket& socket) {
        if (first.requests.size() == 1)
            socket.write(httpReply(status, "text/html", "moved", "Location: " + location + "\r\n"));
        else
            answer(socket);
    });

    Client client(first.serverPort());
    client.transport->setAction("urn:shop#m");
    QtSoapMessage request;
    request.setMethod("m", "urn:shop");
    request.addMethodArgument("a", QString(), QString("text"));
    QVERIFY(client.send(request, "/shop/old"));
    QCOMPARE(client.fault(), QString("no fault"));
    QCOMPARE(client.transport->getResponse().method().name().name(), QString("there"));
    const QList<QByteArray> there = isElsewhere ? second.requests : first.requests.mid(1);
    QCOMPARE(there.size(), 1);
    QVERIFY2(there.at(0).startsWith("POST " + asked + " HTTP/1.1\r\n"), there.at(0).constData());
    QVERIFY(there.at(0).toLower().contains("\r\nsoapaction: \"urn:shop#m\"\r\n"));
    QVERIFY(there.at(0).toLower().contains("\r\ncontent-type: text/xml;charset=utf-8\r\n"));
    QCOMPARE(there.at(0).mid(there.at(0).indexOf("\r\n\r\n")),
             first.requests.at(0).mid(first.requests.at(0).indexOf("\r\n\r\n")));
    QCOMPARE(client.plainSignals, 1);
}

void tst_SoapTransport::otherRedirectionsAreFaults_data()
{
    QTest::addColumn<QByteArray>("status");
    QTest::addColumn<QByteArray>("location");

    for (const char* status : {"301 Moved Permanently", "302 Found", "303 See Other"})
        QTest::newRow(status) << QByteArray(status) << QByteArray("/new");
    const QByteArray same("307 Temporary Redirect");
    QTest::newRow("to nowhere") << same << QByteArray();
    QTest::newRow("to a file") << same << QByteArray("file:///etc/passwd");
    QTest::newRow("to another protocol") << same << QByteArray("ftp://127.0.0.1:%1/new");
    QTest::newRow("to data") << same << QByteArray("data:text/xml,<a/>");
    QTest::newRow("to what isn't an address") << same << QByteArray("http://:99999999/");
}

void tst_SoapTransport::otherRedirectionsAreFaults()
{
    QFETCH(QByteArray, status);
    QFETCH(QByteArray, location);

    Peer peer([&](QTcpSocket& socket) {
        if (peer.requests.size() > 1) {
            socket.write(httpReply("200 OK", "text/xml", envelope("<there/>")));
            return;
        }
        const QByteArray field = location.isEmpty() ? location : "Location: " + location + "\r\n";
        socket.write(httpReply(status, "text/html", "moved", field));
    });
    location.replace("%1", QByteArray::number(peer.serverPort()));
    Client client(peer.serverPort());
    QVERIFY(client.call("m"));
    QVERIFY(client.transport->getResponse().isFault());
    QCOMPARE(client.transport->getResponse().faultCode(), QtSoapMessage::Server);
    QVERIFY(!client.fault().isEmpty());
    QCOMPARE(peer.requests.size(), 1);
    QCOMPARE(client.plainSignals, 1);
}

void tst_SoapTransport::aLoopOfRedirectionsEnds()
{
    Peer peer([](QTcpSocket& socket) {
        socket.write(httpReply("307 Temporary Redirect", "text/html", "", "Location: /\r\n"));
    });
    Client client(peer.serverPort());
    QVERIFY(client.call("m"));
    QVERIFY(client.transport->getResponse().isFault());
    QVERIFY(!client.fault().isEmpty());
    QCOMPARE(peer.requests.size(), 6);
    QCOMPARE(client.plainSignals, 1);
}

void tst_SoapTransport::aCertificateErrorIsAFault()
{
    Client client;
    client.transport->setHost("localhost", true, tlsServer().port());
    QVERIFY(client.call("numbers"));
    QCOMPARE(client.transport->getResponse().faultCode(), QtSoapMessage::Server);
    QVERIFY2(client.fault().contains("certificate"), qPrintable(client.fault()));
    QCOMPARE(client.transport->networkReply()->error(), QNetworkReply::SslHandshakeFailedError);
}

void tst_SoapTransport::aCertificateErrorThatTheProgramAccepts_data()
{
    QTest::addColumn<bool>("byManager");

    QTest::newRow("as the manager reports it") << true;
    QTest::newRow("of this reply") << false;
}

void tst_SoapTransport::aCertificateErrorThatTheProgramAccepts()
{
    QFETCH(bool, byManager);

    Client client;
    client.transport->setHost("localhost", true, tlsServer().port());
    if (byManager) {
        connect(client.transport->networkAccessManager(), &QNetworkAccessManager::sslErrors, this,
                [](QNetworkReply* reply, const QList<QSslError>&) { reply->ignoreSslErrors(); });
        QVERIFY(client.call("numbers"));
    } else {
        QtSoapMessage request;
        request.setMethod("numbers", "urn:shop");
        client.transport->submitRequest(request, "/");
        QVERIFY(client.transport->networkReply());
        client.transport->networkReply()->ignoreSslErrors();
        QVERIFY(QTest::qWaitFor([&] { return client.plainSignals == 1; }, 60000));
    }
    QVERIFY(tlsServer().takeLine().endsWith("{urn:shop}numbers = \"\""));
    QCOMPARE(client.fault(), QString("no fault"));
    QCOMPARE(client.transport->getResponse().returnValue().count(), 3);
}

void tst_SoapTransport::aCertificateThatIsTrusted_data()
{
    QTest::addColumn<QString>("host");
    QTest::addColumn<bool>("works");

    QTest::newRow("of the host that is asked for") << "localhost" << true;
    QTest::newRow("of another host") << "127.0.0.1" << false;
}

void tst_SoapTransport::aCertificateThatIsTrusted()
{
    QFETCH(QString, host);
    QFETCH(bool, works);

    Client client;
    client.transport->setHost(host, true, tlsServer().port());
    // The program's default counts, as for all that Qt sends.
    const QSslConfiguration former = QSslConfiguration::defaultConfiguration();
    QSslConfiguration trusting = former;
    trusting.setCaCertificates(QSslCertificate::fromPath(m_folder.filePath("certificate.pem")));
    QSslConfiguration::setDefaultConfiguration(trusting);
    const bool answered = client.call("numbers");
    QSslConfiguration::setDefaultConfiguration(former);
    QVERIFY(answered);
    QCOMPARE(!client.transport->getResponse().isFault(), works);
    if (works)
        QVERIFY(tlsServer().takeLine().endsWith("{urn:shop}numbers = \"\""));
    else
        QVERIFY(!client.fault().isEmpty());
}

void tst_SoapTransport::fromHttpsToHttpIsAFault()
{
    Peer peer([](QTcpSocket& socket) {
        socket.write(httpReply("200 OK", "text/xml", envelope("<m/>")));
    });
    bool connected = false;
    connect(&peer, &QTcpServer::newConnection, this, [&] { connected = true; });
    Client client;
    client.transport->setHost("localhost", true, tlsServer().port());
    connect(client.transport->networkAccessManager(), &QNetworkAccessManager::sslErrors, this,
            [](QNetworkReply* reply, const QList<QSslError>&) { reply->ignoreSslErrors(); });
    QVERIFY(client.call(
        "http",
        QStringLiteral("HTTP/1.1 307 Temporary Redirect\r\nLocation: http://127.0.0.1:%1/\r\n"
                       "Content-Length: 0\r\n\r\n")
            .arg(peer.serverPort())));
    QVERIFY(!tlsServer().takeLine().isEmpty());
    QVERIFY(client.transport->getResponse().isFault());
    QCOMPARE(client.transport->getResponse().faultCode(), QtSoapMessage::Server);
    QVERIFY(!client.fault().isEmpty());
    QVERIFY(!connected);
}

void tst_SoapTransport::aRedirectionWithinHttps()
{
    Client client;
    client.transport->setHost("localhost", true, tlsServer().port());
    connect(client.transport->networkAccessManager(), &QNetworkAccessManager::sslErrors, this,
            [](QNetworkReply* reply, const QList<QSslError>&) { reply->ignoreSslErrors(); });
    // The second time it leads on again, until there were too many.
    QVERIFY(client.call("http",
                        "HTTP/1.1 307 Temporary Redirect\r\nLocation: /further\r\n"
                        "Content-Length: 0\r\n\r\n"));
    QVERIFY(client.transport->getResponse().isFault());
    QVERIFY(tlsServer().takeLine().contains("\"\" / {urn:shop}http"));
    for (int i = 0; i < 5; ++i)
        QVERIFY(tlsServer().takeLine().contains("\"\" /further {urn:shop}http"));
}

void tst_SoapTransport::largeReplies_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("result");
    QTest::addColumn<int>("limit");

    QTest::newRow("fifty million letters") << "large"
                                           << "50000000 letters" << 700;
    QTest::newRow("fifty megabytes of structs")
        << "orders" << QStringLiteral("%1 items").arg(manyOrders) << 1500;
}

void tst_SoapTransport::largeReplies()
{
    QFETCH(QString, method);
    QFETCH(QString, result);
    QFETCH(int, limit);

    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(QCoreApplication::applicationFilePath(),
                  {QLatin1String(largeArgument), QString::number(server().port()), method});
    QVERIFY(process.waitForFinished(150000));
    server().takeLine();
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    const QList<QByteArray> lines = process.readAllStandardOutput().split('\n');
    QCOMPARE(QString::fromUtf8(lines.value(0)), result);
    QVERIFY2(lines.value(1).toInt() < limit * memoryFactor, "it took " + lines.value(1) + " MiB");
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    QNetworkProxyFactory::setUseSystemConfiguration(false);
    if (argc == 4 && qstrcmp(argv[1], largeArgument) == 0)
        return receive(QByteArray(argv[2]).toInt(), argv[3]);
    tst_SoapTransport test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_SoapTransport.moc"
