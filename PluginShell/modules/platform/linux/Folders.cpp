#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <QStandardPaths>

namespace VEK_NAMESPACE {
namespace Platform {

QString systemFolder()
{
    const QString siteFolder = QString::fromUtf8(VEK_SYSTEM_FOLDER);
    if (!siteFolder.isEmpty())
        return siteFolder + QLatin1Char('/');
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/Vek Labs/krnv3/");
}

} // namespace Platform
} // namespace VEK_NAMESPACE
