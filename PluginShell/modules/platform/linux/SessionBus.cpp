#include "SessionBus_p.h"

#include "CommonConstants.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

/// Empty without a bus.
QString busAddress()
{
    const QString address = qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS")
        ? QString()
        : QString::fromLocal8Bit(qgetenv("DBUS_SESSION_BUS_ADDRESS"));
    if (!address.isEmpty())
        return address.contains(QLatin1String("autolaunch:")) ? QString() : address;

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
    const QDBusConnection bus =
        QDBusConnection::connectToBus(address, QStringLiteral("com.vek.krnv3"));
    if (!bus.isConnected())
        return std::nullopt;
    return bus;
}

} // namespace Platform
} // namespace VEK_NAMESPACE
