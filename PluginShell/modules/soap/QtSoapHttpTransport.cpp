#include "QtSoapHttpTransport"

#include "SoapAccess_p.h"
#include "SoapLexical_p.h"

#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <QSslError>
#include <QTextCodec>
#include <QTimer>
#include <QUrl>

namespace {

constexpr int maximumRedirections = 5;
constexpr int maximumResponse = 1024 * 1024 * 1024; // well within what a QByteArray holds

/// The value of the SOAPAction header: a URI in quotes, without what could end them or the line.
QByteArray quoted(const QString& action)
{
    const QByteArray text = action.toUtf8();
    QByteArray result("\"");
    for (const char character : text) {
        const auto code = static_cast<uchar>(character);
        if (code <= 0x20 || code >= 0x7F || character == '"' || character == '\\')
            result += '%' + QByteArray(1, character).toHex().toUpper();
        else
            result += character;
    }
    return result + '"';
}

/// UTF-8, if the response's header names another encoding and the document doesn't.
QByteArray recoded(const QByteArray& body, const QString& contentType)
{
    const int parameter = contentType.indexOf(QLatin1String("charset="), 0, Qt::CaseInsensitive);
    if (parameter < 0 || body.startsWith("\xEF\xBB\xBF") || body.startsWith("\xFF\xFE")
        || body.startsWith("\xFE\xFF")) {
        return body;
    }
    if (body.startsWith("<?xml") && body.left(body.indexOf("?>")).contains("encoding"))
        return body;
    QString charset = contentType.mid(parameter + 8).section(QLatin1Char(';'), 0, 0).trimmed();
    charset.remove(QLatin1Char('"'));
    QTextCodec* codec = QTextCodec::codecForName(charset.toLatin1());
    const int utf8 = 106;
    if (!codec || codec->mibEnum() == utf8)
        return body;
    return codec->toUnicode(body).toUtf8();
}

bool isWebAddress(const QUrl& url)
{
    return url.isValid() && !url.host().isEmpty()
        && (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https"));
}

} // namespace

class QtSoapHttpTransport::Private
{
public:
    explicit Private(QtSoapHttpTransport* transport)
        : q(transport)
        , manager(new QNetworkAccessManager(transport))
    {}

    QUrl addressOf(const QString& path) const;
    void send(const QUrl& url);
    void dropReply();
    void onReadyRead();
    void onFinished();
    bool redirect(int status);
    void readResponse(int status);
    void respondLater();
    void fail(QtSoapMessage::FaultCode code, const QString& error);
    void respond();

    QtSoapHttpTransport* const q;
    QNetworkAccessManager* const manager;
    QPointer<QNetworkReply> reply;
    QTimer* later = nullptr; // by which a response waits for the event loop
    QString host;
    bool isSecure = false;
    int port = 0;
    QString action;
    QByteArray request;
    QByteArray requestAction;
    int redirections = 0;
    QByteArray received;
    bool isTooLarge = false;
    QStringList certificateErrors;
    QtSoapMessage next;
    QtSoapMessage response;
};

QUrl QtSoapHttpTransport::Private::addressOf(const QString& path) const
{
    QUrl url;
    url.setScheme(isSecure ? QStringLiteral("https") : QStringLiteral("http"));
    url.setHost(host);
    if (port != 0)
        url.setPort(port);
    const int query = path.indexOf(QLatin1Char('?'));
    QString place = path.left(query);
    if (!place.startsWith(QLatin1Char('/')))
        place.prepend(QLatin1Char('/'));
    url.setPath(place, QUrl::TolerantMode);
    if (query >= 0)
        url.setQuery(path.mid(query + 1), QUrl::TolerantMode);
    return url;
}

void QtSoapHttpTransport::Private::send(const QUrl& url)
{
    QNetworkRequest networkRequest(url);
    networkRequest.setHeader(QNetworkRequest::ContentTypeHeader,
                             QStringLiteral("text/xml;charset=utf-8"));
    networkRequest.setRawHeader("SOAPAction", requestAction);
#if QT_VERSION >= QT_VERSION_CHECK(5, 9, 0)
    networkRequest.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                                QNetworkRequest::ManualRedirectPolicy);
#endif
    received.clear();
    isTooLarge = false;
    certificateErrors.clear();
    reply = manager->post(networkRequest, request);
    QObject::connect(reply, &QNetworkReply::readyRead, q, [this] { onReadyRead(); });
    QObject::connect(reply, &QNetworkReply::finished, q, [this] { onFinished(); });
    QObject::connect(reply, &QNetworkReply::sslErrors, q, [this](const QList<QSslError>& errors) {
        for (const QSslError& error : errors)
            certificateErrors.append(error.errorString());
    });
}

void QtSoapHttpTransport::Private::dropReply()
{
    later->stop();
    if (!reply)
        return;
    QNetworkReply* former = reply;
    reply.clear();
    QObject::disconnect(former, nullptr, q, nullptr);
    former->abort();
    former->deleteLater();
}

void QtSoapHttpTransport::Private::onReadyRead()
{
    const qint64 available = reply->bytesAvailable();
    isTooLarge = isTooLarge || received.size() + available > maximumResponse;
    if (isTooLarge) {
        received.clear();
        reply->abort(); // finishes it
        return;
    }
    received += reply->readAll();
}

void QtSoapHttpTransport::Private::onFinished()
{
    if (!isTooLarge && reply->isOpen())
        received += reply->readAll();
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (!redirect(status)) {
        readResponse(status);
        respondLater();
    }
}

bool QtSoapHttpTransport::Private::redirect(int status)
{
    if ((status != 307 && status != 308) || redirections >= maximumRedirections)
        return false;
    const QUrl from = reply->url();
    const QUrl to =
        from.resolved(QUrl::fromEncoded(reply->rawHeader("Location"), QUrl::TolerantMode));
    const bool losesEncryption =
        from.scheme() == QLatin1String("https") && to.scheme() != QLatin1String("https");
    if (reply->rawHeader("Location").isEmpty() || !isWebAddress(to) || losesEncryption)
        return false;
    ++redirections;
    QNetworkReply* former = reply;
    QObject::disconnect(former, nullptr, q, nullptr);
    former->deleteLater();
    send(to);
    return true;
}

void QtSoapHttpTransport::Private::readResponse(int status)
{
    const QString address = reply->url().toDisplayString(QUrl::RemoveUserInfo);
    if (isTooLarge) {
        fail(QtSoapMessage::Server,
             QStringLiteral("The response of %1 has more than %2 bytes")
                 .arg(address)
                 .arg(maximumResponse));
        return;
    }
    const bool isAnswer = (status >= 200 && status < 300) || status == 500;
    const bool isBroken = reply->error() != QNetworkReply::NoError && status != 500;
    const QByteArray body =
        recoded(received, reply->header(QNetworkRequest::ContentTypeHeader).toString());
    received.clear();
    if (status == 0 || (isAnswer && isBroken)) {
        QString error = reply->errorString();
        if (!certificateErrors.isEmpty()
            && reply->error() == QNetworkReply::SslHandshakeFailedError) {
            certificateErrors.removeDuplicates();
            error += QLatin1String(" (") + certificateErrors.join(QLatin1String("; "))
                + QLatin1Char(')');
        }
        fail(QtSoapMessage::Server, error);
        return;
    }

    if (isAnswer) {
        next.clear();
        // A request that isn't answered but only taken.
        if (body.isEmpty() && (status == 202 || status == 204))
            return;
        const bool isRead = next.setContent(body);
        if (isRead && (status != 500 || next.isFault()))
            return;
        if (!isRead && status != 500) {
            const QtSoapMessage::FaultCode code = next.faultCode();
            fail(code == QtSoapMessage::Client ? QtSoapMessage::Server : code,
                 QStringLiteral("The response of %1 can't be read: %2")
                     .arg(address, next.errorString()));
            return;
        }
    }

    const QString reason = reply->attribute(QNetworkRequest::HttpReasonPhraseAttribute).toString();
    QString error = QStringLiteral("The server answered with the HTTP status %1 %2")
                        .arg(status)
                        .arg(reason)
                        .trimmed();
    if (status >= 300 && status < 400) {
        error += QStringLiteral(", a redirection to \"%1\" that isn't followed")
                     .arg(QString::fromUtf8(reply->rawHeader("Location").left(1000)));
    }
    const bool isRequestsFault = status >= 400 && status < 500;
    fail(isRequestsFault ? QtSoapMessage::Client : QtSoapMessage::Server, error);
}

void QtSoapHttpTransport::Private::respondLater()
{
    // Not from within the reply, which the transport may be deleted with.
    later->start();
}

void QtSoapHttpTransport::Private::fail(QtSoapMessage::FaultCode code, const QString& error)
{
    QtSoapAccess::setFailure(next, code, error);
}

void QtSoapHttpTransport::Private::respond()
{
    response = next;
    next.clear();
    request.clear();
    const QtSoapMessage current = response; // what is called may delete all of this
    QPointer<QtSoapHttpTransport> transport(q);
    Q_EMIT transport->responseReady();
    if (transport)
        Q_EMIT transport->responseReady(current);
}

QtSoapHttpTransport::QtSoapHttpTransport(QObject* parent)
    : QObject(parent)
    , m_private(new Private(this))
{
    qRegisterMetaType<QtSoapMessage>("QtSoapMessage");
    m_private->later = new QTimer(this);
    m_private->later->setSingleShot(true);
    m_private->later->setInterval(0);
    connect(m_private->later, &QTimer::timeout, this, [this] { m_private->respond(); });
}

QtSoapHttpTransport::~QtSoapHttpTransport()
{
    // What is connected to the reply must not find a transport that is half gone.
    if (m_private->reply) {
        disconnect(m_private->reply, nullptr, this, nullptr);
        m_private->reply->abort();
    }
    delete m_private->manager;
}

void QtSoapHttpTransport::setHost(const QString& host, bool useSecureHTTP, int port)
{
    m_private->host = host;
    m_private->isSecure = useSecureHTTP;
    m_private->port = port;
}

void QtSoapHttpTransport::setHost(const QString& host, int port)
{
    setHost(host, false, port);
}

void QtSoapHttpTransport::setAction(const QString& action)
{
    m_private->action = action;
}

void QtSoapHttpTransport::submitRequest(QtSoapMessage& request, const QString& path)
{
    m_private->dropReply();
    m_private->redirections = 0;
    m_private->requestAction = quoted(m_private->action);
    m_private->request = request.toXmlString().toUtf8();
    const QUrl url = m_private->addressOf(path);
    if (m_private->request.isEmpty()) {
        m_private->fail(QtSoapMessage::Client,
                        QStringLiteral("The request can't be written: its values nest too deep"));
        m_private->respondLater();
    } else if (!isWebAddress(url) || m_private->port < 0 || m_private->port > 65535) {
        m_private->fail(QtSoapMessage::Client,
                        QStringLiteral("\"%1\" isn't a host and port to send a request to")
                            .arg(m_private->port == 0 ? m_private->host
                                                      : m_private->host + QLatin1Char(':')
                                         + QString::number(m_private->port)));
        m_private->respondLater();
    } else {
        m_private->send(url);
    }
}

const QtSoapMessage& QtSoapHttpTransport::getResponse() const
{
    return m_private->response;
}

QNetworkAccessManager* QtSoapHttpTransport::networkAccessManager() const
{
    return m_private->manager;
}

QNetworkReply* QtSoapHttpTransport::networkReply() const
{
    return m_private->reply;
}
