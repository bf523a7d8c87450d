#include "Notifications_p.h"

#include "CommonConstants.h"
#include "SessionBus_p.h"

#include <QDBusMessage>
#include <QObject>

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

const auto g_path = QLatin1String("/com/vek/krnv3");
const auto g_interface = QLatin1String("com.vek.krnv3.DistributedNotifications");

class NotificationObserver : public QObject, public Observer
{
    Q_OBJECT

public:
    NotificationObserver(const QDBusConnection& bus, const QString& name,
                         std::function<void(const QString&)> onReceived)
        : m_bus(bus)
        , m_name(name)
        , m_onReceived(std::move(onReceived))
    {
        m_listening = m_bus.connect(QString(), g_path, g_interface, m_name, QStringLiteral("s"),
                                    this, SLOT(receive(QString)));
    }

    ~NotificationObserver() override { NotificationObserver::stop(); }

    void stop() override
    {
        if (!m_listening)
            return;
        m_listening = false;
        m_bus.disconnect(QString(), g_path, g_interface, m_name, QStringLiteral("s"), this,
                         SLOT(receive(QString)));
    }

private Q_SLOTS:
    void receive(const QString& text)
    {
        if (m_listening) // a message that waited already comes all the same
            m_onReceived(text);
    }

private:
    QDBusConnection m_bus;
    const QString m_name;
    const std::function<void(const QString&)> m_onReceived;
    bool m_listening = false;
};

} // namespace

void postNotification(const QString& name, const QString& text)
{
    std::optional<QDBusConnection> bus = sessionBus();
    if (!bus)
        return;
    QDBusMessage message = QDBusMessage::createSignal(g_path, g_interface, name);
    message << text;
    bus->send(message);
}

std::unique_ptr<Observer> observeNotification(const QString& name,
                                              std::function<void(const QString&)> onReceived)
{
    const std::optional<QDBusConnection> bus = sessionBus();
    if (!bus)
        return nullptr;
    return std::make_unique<NotificationObserver>(*bus, name, std::move(onReceived));
}

} // namespace Platform
} // namespace VEK_NAMESPACE

#include "Notifications.moc"
