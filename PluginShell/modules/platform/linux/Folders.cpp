#include "CommonConstants.h"
#include "PlatformServices_p.h"
#include "posix/PasswordEntry_p.h"

#include <QDir>
#include <QStandardPaths>

#include <systemd/sd-login.h>
#include <unistd.h>

namespace VEK_NAMESPACE {
namespace Platform {

QString systemFolder()
{
    const QString siteFolder = QString::fromUtf8(VEK_SYSTEM_FOLDER);
    if (!siteFolder.isEmpty())
        return QDir::cleanPath(siteFolder) + QLatin1Char('/');
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/Vek Labs/krnv3/");
}

std::optional<QString> homeFolder()
{
    return homeFolderOfUser(getuid());
}

std::optional<QString> sessionUserHomeFolder()
{
    uid_t user = 0;
    if (sd_pid_get_owner_uid(0, &user) < 0)
        return std::nullopt;
    return homeFolderOfUser(user);
}

} // namespace Platform
} // namespace VEK_NAMESPACE
