#include "SessionBus_p.h"

#include "CommonConstants.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

/// Empty without a bus. What would start a program is left out of the list that an address is.
QString busAddress()
{
    QStringList addresses;
    const QStringList listed = QString::fromLocal8Bit(qgetenv("DBUS_SESSION_BUS_ADDRESS"))
                                   .split(QLatin1Char(';'), QString::SkipEmptyParts);
    for (const QString& address : listed) {
        if (!address.startsWith(QLatin1String("autolaunch:"))
            && !address.startsWith(QLatin1String("unixexec:"))) {
            addresses << address;
        }
    }
    if (!addresses.isEmpty())
        return addresses.join(QLatin1Char(';'));

    const QString runtimeFolder = QFile::decodeName(qgetenv("XDG_RUNTIME_DIR"));
    const QString socket = runtimeFolder + QStringLiteral("/bus");
    if (runtimeFolder.isEmpty() || !QFileInfo::exists(socket))
        return {};
    return QStringLiteral("unix:path=")
        + QString::fromLatin1(QFile::encodeName(socket).toPercentEncoding("/", "~"));
}

} // namespace

std::optional<QDBusConnection> sessionBus()
{
    const QString address = busAddress();
    if (address.isEmpty() || !QCoreApplication::instance())
        return std::nullopt;
    const QString name = QStringLiteral("com.vek.krnv3");
    if (!QDBusConnection(name).isConnected())
        QDBusConnection::disconnectFromBus(name); // one that has died
    const QDBusConnection bus = QDBusConnection::connectToBus(address, name);
    if (!bus.isConnected())
        return std::nullopt;
    return bus;
}

} // namespace Platform
} // namespace VEK_NAMESPACE
