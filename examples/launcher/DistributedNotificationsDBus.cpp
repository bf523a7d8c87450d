// Signals on the D-Bus session bus: the member is the notification's name, the one argument its
// object.

#include "DistributedNotifications.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QFile>
#include <QFileInfo>

namespace {

const QLatin1String connectionName("DistributedNotifications");
const QLatin1String objectPath("/com/vek/krnv3");
const QLatin1String interfaceName("com.vek.krnv3.DistributedNotifications");

/// Where the session bus is; empty if there is none. With a display the D-Bus library's own search
/// ends in starting a bus, which nobody listens on.
QByteArray sessionBusAddress()
{
    QByteArray address;
    const QList<QByteArray> listed = qgetenv("DBUS_SESSION_BUS_ADDRESS").split(';');
    for (const QByteArray& one : listed) {
        if (!one.isEmpty() && !one.startsWith("autolaunch:") && !one.startsWith("unixexec:"))
            address += one + ';';
    }
    if (!address.isEmpty())
        return address;

    const QByteArray runtimeFolder = qgetenv("XDG_RUNTIME_DIR");
    const QByteArray socket = runtimeFolder + "/bus";
    if (runtimeFolder.isEmpty() || !QFileInfo::exists(QFile::decodeName(socket)))
        return QByteArray();
    return "unix:path=" + socket.toPercentEncoding("/", "~");
}

} // namespace

class NotificationChannel : public QObject
{
    Q_OBJECT

public:
    NotificationChannel()
        : m_bus(connect())
    {}

    ~NotificationChannel() override { QDBusConnection::disconnectFromBus(connectionName); }

    bool isConnected() const { return m_bus.isConnected(); }

    bool observe(const QString& name)
    {
        return m_bus.connect(QString(), objectPath, interfaceName, name, QStringLiteral("s"), this,
                             SLOT(onMessage(QDBusMessage)))
            && hasArrived();
    }

    bool post(const QString& name, const QString& object)
    {
        QDBusMessage message = QDBusMessage::createSignal(objectPath, interfaceName, name);
        message << object;
        return m_bus.send(message) && hasArrived();
    }

Q_SIGNALS:
    void received(const QString& object, qint64 senderProcess);

private Q_SLOTS:
    void onMessage(const QDBusMessage& message)
    {
        const QDBusReply<uint> process = m_bus.interface()->servicePid(message.service());
        // A process that has left the bus listens no longer.
        if (process.isValid())
            Q_EMIT received(message.arguments().constFirst().toString(), process.value());
    }

private:
    static QDBusConnection connect()
    {
        const QByteArray address = sessionBusAddress();
        if (address.isEmpty())
            return QDBusConnection(connectionName);
        return QDBusConnection::connectToBus(QString::fromUtf8(address), connectionName);
    }

    /// Whether the bus has got what was sent so far: it serves one connection's messages in their
    /// order, so any answer of it will do.
    bool hasArrived() const
    {
        return m_bus.interface()->serviceOwner(m_bus.baseService()).isValid();
    }

    QDBusConnection m_bus;
};

DistributedNotifications::DistributedNotifications()
    : m_channel(new NotificationChannel)
{
    connect(m_channel.get(), &NotificationChannel::received, this,
            &DistributedNotifications::received);
}

DistributedNotifications::~DistributedNotifications() = default;

bool DistributedNotifications::isConnected() const
{
    return m_channel->isConnected();
}

bool DistributedNotifications::observe(const QString& name)
{
    return m_channel->observe(name);
}

bool DistributedNotifications::post(const QString& name, const QString& object)
{
    return m_channel->post(name, object);
}

#include "DistributedNotificationsDBus.moc"
