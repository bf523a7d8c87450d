#pragma once

#include <QObject>
#include <QString>

#include <memory>

class NotificationChannel;

/// The notifications that reach every process of the logged-in user. It uses what the system has
/// running for them and starts nothing.
class DistributedNotifications : public QObject
{
    Q_OBJECT

public:
    DistributedNotifications();
    ~DistributedNotifications() override;

    bool isConnected() const;

    /// From its return on no notification called \a name is missed; received() tells of them once
    /// the event loop runs.
    bool observe(const QString& name);

    /// When it has returned true, the notification is on its way even if this process ends.
    bool post(const QString& name, const QString& object);

Q_SIGNALS:
    void received(const QString& object, qint64 senderProcess);

private:
    std::unique_ptr<NotificationChannel> m_channel;
};
