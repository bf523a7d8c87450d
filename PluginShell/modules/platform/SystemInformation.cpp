#include "SystemInformation.h"

#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <QFileInfo>
#include <QMutex>
#include <QMutexLocker>
#include <QSysInfo>

using namespace VEK_NAMESPACE;

namespace {

QString mainBundlePath()
{
    return Platform::bundlePath(QStringLiteral("com.vek.krnv3.standalone"));
}

int dotsPerInch(double points, double millimetres)
{
    constexpr double millimetresPerInch = double(25.4F);
    return millimetres > 0 ? int(points / millimetres * millimetresPerInch) : 0;
}

} // namespace

QString MacOSGetBundlePath(QString const& identifier)
{
    return Platform::bundlePath(identifier);
}

QString MacOSGetBundleResourceDirPath(QString const& identifier)
{
    return Platform::bundleResourcePath(identifier);
}

QString MacOSGetMainBundlePath()
{
    // For the life of the process: destructors of static objects may still ask.
    static auto& mutex = *new QMutex;
    static auto& retVal = *new QString;
    const QMutexLocker locker(&mutex);
    if (retVal.isEmpty())
        retVal = mainBundlePath();
    return retVal;
}

void getScreenDpi(int* dpiX, int* dpiY)
{
    const Platform::Screen screen = Platform::mainScreen().value_or(Platform::Screen());
    if (dpiX)
        *dpiX = dotsPerInch(screen.points.width(), screen.millimetres.width());
    if (dpiY)
        *dpiY = dotsPerInch(screen.points.height(), screen.millimetres.height());
}

QString UtilsDll::currentProcessName()
{
    return Platform::processName();
}

QString UtilsDll::binaryFileVersionByProcessName(const char* key, const char* processName)
{
    if (!key)
        return {};
    const std::optional<qint64> process = processName
        ? Platform::findApplication(QString::fromUtf8(processName))
        : Platform::currentProcess();
    const QString executable = process ? Platform::executablePath(*process) : QString();
    if (executable.isEmpty())
        return {};

    const QString contents = QFileInfo(QFileInfo(executable).path()).path();
    return Platform::propertyListText(QStringLiteral("%1/Info.plist").arg(contents),
                                      QString::fromUtf8(key));
}

QString VEK_NAMESPACE::getQtPluginsDir(bool)
{
    return mainBundlePath() + QStringLiteral("/Contents/Frameworks/plugins");
}

QString VEK_NAMESPACE::systemVersion()
{
    // The table ends at 10.6, and newer systems have no version; that is meant.
    switch (int(QSysInfo::macVersion())) {
    case 5:
        return QStringLiteral("Mac OS X 10.3");
    case 6:
        return QStringLiteral("Mac OS X 10.4");
    case 7:
        return QStringLiteral("Mac OS X 10.5");
    case 8:
        return QStringLiteral("Mac OS X 10.6");
    default:
        return QStringLiteral("Mac OS X");
    }
}
