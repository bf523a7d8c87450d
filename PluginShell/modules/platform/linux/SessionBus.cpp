#include "SessionBus_p.h"

#include "CommonConstants.h"

#include <QCoreApplication>
#include <QFileInfo>

#include <algorithm>
#include <memory>

#include <gio/gio.h>

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

/// How long a bus may take for its first word, in seconds. One that is up takes milliseconds.
constexpr guint patience = 5;

/// Where the session bus may be. What would start a program is left out.
QStringList busAddresses()
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
        return addresses;

    const QString runtimeFolder = QFile::decodeName(qgetenv("XDG_RUNTIME_DIR"));
    const QString socket = runtimeFolder + QStringLiteral("/bus");
    if (runtimeFolder.isEmpty() || !QFileInfo::exists(socket))
        return {};
    return {QStringLiteral("unix:path=")
            + QString::fromLatin1(QFile::encodeName(socket).toPercentEncoding("/", "~"))};
}

struct ObjectDeleter
{
    void operator()(void* object) const { g_object_unref(object); }
};

/// Whether a bus is there and says something. The bus library would wait for its first word for
/// ever, with all that its user does.
bool answers(const QString& address)
{
    const std::unique_ptr<GIOStream, ObjectDeleter> stream(g_dbus_address_get_stream_sync(
        address.toLocal8Bit().constData(), nullptr, nullptr, nullptr));
    if (!stream || !G_IS_SOCKET_CONNECTION(stream.get()))
        return false;
    g_socket_set_timeout(g_socket_connection_get_socket(G_SOCKET_CONNECTION(stream.get())),
                         patience);

    // Asks which ways there are to authenticate, and authenticates by none.
    const char question[] = "\0AUTH\r\n";
    char answer = '\0';
    return g_output_stream_write_all(g_io_stream_get_output_stream(stream.get()), question,
                                     sizeof question - 1, nullptr, nullptr, nullptr)
        && g_input_stream_read(g_io_stream_get_input_stream(stream.get()), &answer, 1, nullptr,
                               nullptr)
        == 1;
}

} // namespace

std::optional<QDBusConnection> sessionBus()
{
    const QStringList addresses = busAddresses();
    if (addresses.isEmpty() || !QCoreApplication::instance())
        return std::nullopt;
    const QString name = QStringLiteral("com.vek.krnv3");
    if (QDBusConnection(name).isConnected())
        return QDBusConnection(name);
    QDBusConnection::disconnectFromBus(name); // one that has died
    const auto address = std::find_if(addresses.begin(), addresses.end(), answers);
    if (address == addresses.end())
        return std::nullopt;
    const QDBusConnection bus = QDBusConnection::connectToBus(*address, name);
    if (!bus.isConnected())
        return std::nullopt;
    return bus;
}

} // namespace Platform
} // namespace VEK_NAMESPACE
