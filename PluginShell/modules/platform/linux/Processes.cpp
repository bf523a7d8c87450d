#include "CommonConstants.h"
#include "PlatformServices_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QHash>
#include <QScreen>

#include <algorithm>
#include <vector>

#include <unistd.h>

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

QString infoFile(const QString& bundle)
{
    return bundle + QStringLiteral("/Contents/Info.plist");
}

/// The folder of the nearest bundle around \a path that \a isWanted accepts, or an empty text.
template <typename Predicate>
QString findBundleAround(const QString& path, Predicate isWanted)
{
    QString folder = QFileInfo(path).path();
    while (folder.size() > 1) {
        if (folder.endsWith(QLatin1String(".app")) && isWanted(folder))
            return folder;
        folder = QFileInfo(folder).path();
    }
    return {};
}

QString displayName(const QString& executable)
{
    const QString bundle = findBundleAround(
        executable, [](const QString& folder) { return QFileInfo::exists(infoFile(folder)); });
    const QString name = bundle.isEmpty()
        ? QString()
        : propertyListText(infoFile(bundle), QStringLiteral("CFBundleName"));
    return name.isEmpty() ? QFileInfo(executable).fileName() : name;
}

std::vector<qint64> runningProcesses()
{
    std::vector<qint64> processes;
    const QStringList entries =
        QDir(QStringLiteral("/proc")).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::NoSort);
    for (const QString& entry : entries) {
        bool isNumber = false;
        const qint64 process = entry.toLongLong(&isNumber);
        if (isNumber)
            processes.push_back(process);
    }
    std::sort(processes.begin(), processes.end());
    return processes;
}

} // namespace

QString bundlePath(const QString& identifier)
{
    if (identifier.isEmpty())
        return {};
    return findBundleAround(executablePath(currentProcess()), [&](const QString& folder) {
        return propertyListText(infoFile(folder), QStringLiteral("CFBundleIdentifier"))
            == identifier;
    });
}

QString bundleResourcePath(const QString& identifier)
{
    const QString bundle = bundlePath(identifier);
    return bundle.isEmpty() ? bundle : bundle + QStringLiteral("/Contents/Resources");
}

QString processName()
{
    return QFileInfo(executablePath(currentProcess())).fileName();
}

qint64 currentProcess()
{
    return getpid();
}

std::optional<qint64> findApplication(const QString& name)
{
    QHash<QString, bool> matches; // by executable: many processes may share one
    for (const qint64 process : runningProcesses()) {
        const QString executable = executablePath(process);
        if (executable.isEmpty())
            continue;
        if (!matches.contains(executable))
            matches.insert(executable, displayName(executable) == name);
        if (matches.value(executable))
            return process;
    }
    return std::nullopt;
}

QString executablePath(qint64 process)
{
    char buffer[4096];
    const QByteArray link = "/proc/" + QByteArray::number(process) + "/exe";
    const ssize_t length = readlink(link.constData(), buffer, sizeof buffer);
    if (length <= 0)
        return {};
    QString path = QFile::decodeName(QByteArray(buffer, int(length)));
    const auto deleted = QLatin1String(" (deleted)");
    if (path.endsWith(deleted) && !QFileInfo::exists(path))
        path.chop(deleted.size());
    return path;
}

std::optional<Screen> mainScreen()
{
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen)
        return std::nullopt;
    return Screen{screen->size(), screen->physicalSize()};
}

} // namespace Platform
} // namespace VEK_NAMESPACE
