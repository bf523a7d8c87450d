#include "storageLocation.h"

#include "Assertions.h"
#include "CommonConstants.h"
#include "Logger_p.h"
#include "PlatformServices_p.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

#include <cstdio>

namespace VEK_NAMESPACE {

using Private::logLine;

namespace {

/// For the life of the process: destructors of static objects may still ask.
const QString& kept(const QString& path)
{
    return *new QString(path);
}

/// Creates the folder if it is missing.
const QString& ensured(const QString& folder)
{
    if (!QDir().exists(folder))
        QDir().mkpath(folder);
    return folder;
}

/// A folder in the application's data, which exists then.
QString applicationDataFolder(const QString& name)
{
    return CStorageLocation::dataLocation(g_appTitle, true) + name + QDir::separator();
}

QString luaResourcePath(const QString& fileName, const QString& description)
{
    ASSERT(!fileName.isEmpty());
    ASSERT(!description.isEmpty());

    // The folder in the folder of the same name is meant.
    const QStringList parts = {QCoreApplication::applicationDirPath(), QStringLiteral(".."),
                               QStringLiteral("Resources"), QStringLiteral("Resources"), fileName};
    QString path = QDir::toNativeSeparators(QDir::cleanPath(parts.join(QDir::separator())));
    logLine('D', description, " : ", path);
    return path;
}

/// The data folder of a product that keeps it directly in the user's "Library".
QString modulesOfOtherProduct(const QString& productFolder)
{
    QString path = CStorageLocation::dataLocation(productFolder, false);
    path.remove(QDir::separator() + QStringLiteral("Vek_Labs"));
    if (!path.isEmpty())
        path += QStringLiteral("Modules") + QDir::separator();
    return path;
}

} // namespace

QString CStorageLocation::dataLocation(const QString& subFolder, bool createIfMissing)
{
    QString path;
    if (const std::optional<QString> home = Platform::homeFolder()) {
        path = *home + QStringLiteral("/Library/Vek_Labs/") + subFolder;
    } else {
        const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
        path = QDir::toNativeSeparators(
            QDir(data + QStringLiteral("/../Vek_Labs/") + subFolder).absolutePath());
    }
    path += QDir::separator();
    return createIfMissing ? ensured(path) : path;
}

QString CStorageLocation::diskCacheLocation()
{
    static const QString& path = kept(applicationDataFolder(QStringLiteral("DiskCache")));
    return ensured(path);
}

QString CStorageLocation::cachedTokenFilePath()
{
    static const QString& path = kept(applicationDataFolder(QStringLiteral("Facebook")));
    return ensured(path);
}

QString CStorageLocation::packUserStoragePath()
{
    static const QString& path = kept(applicationDataFolder(QStringLiteral("PresetPack")));
    return ensured(path);
}

QString CStorageLocation::favoritePresetPath()
{
    static const QString& path = kept(applicationDataFolder(QStringLiteral("Favorite")));
    return ensured(path);
}

QString CStorageLocation::cafDataPath()
{
    static const QString& path = kept(applicationDataFolder(QStringLiteral("Modules")));
    return ensured(path);
}

QString CStorageLocation::loggerFilesPath()
{
    static const QString& path = kept(applicationDataFolder(QStringLiteral("Logs")));
    return ensured(path);
}

QString CStorageLocation::crashFilesPath()
{
    static const QString& path = kept(applicationDataFolder(QStringLiteral("CrashReports")));
    return ensured(path);
}

QString CStorageLocation::crashTempFilesPath()
{
    static const QString& path =
        kept(crashFilesPath() + QStringLiteral("temp") + QDir::separator());
    return ensured(path);
}

QString CStorageLocation::getSamplePicturesLocation()
{
    QString path = QStandardPaths::standardLocations(QStandardPaths::PicturesLocation).value(0);
    if (path.isEmpty())
        return path;
    if (!path.endsWith(QDir::separator()))
        path += QDir::separator();
    return path + QStringLiteral("Vek Marlowick 3 Samples") + QDir::separator();
}

QString CStorageLocation::getPreferencesFilePath()
{
    static const QString& path = kept(Platform::systemFolder() + QStringLiteral("Preferences.ini"));
    return path;
}

QString CStorageLocation::miniatureBlurShapesPath()
{
    static const QString& path = kept(luaResourcePath(
        QStringLiteral("BlurShapes.lua"), QStringLiteral("Miniature blur shapes data path")));
    return path;
}

QString CStorageLocation::framePackPath()
{
    static const QString& path =
        kept(luaResourcePath(QStringLiteral("Frames.lua"), QStringLiteral("Frames data path")));
    return path;
}

QString CStorageLocation::texturesPackPath()
{
    static const QString& path =
        kept(luaResourcePath(QStringLiteral("Textures.lua"), QStringLiteral("Textures data path")));
    return path;
}

QString CStorageLocation::defectsPackPath()
{
    static const QString& path =
        kept(luaResourcePath(QStringLiteral("Defects.lua"), QStringLiteral("Defects data path")));
    return path;
}

QString CStorageLocation::cafDataPathOfHalvardenLatestVersion()
{
    // The name with a blank in it is meant.
    const QString candidates[] = {QStringLiteral("Vek Halvarden v%1").arg(11),
                                  QStringLiteral("Vek Halvarden v%1").arg(10),
                                  QStringLiteral("Vek Halvar Den v%1").arg(9)};
    for (const QString& candidate : candidates) {
        QString path = modulesOfOtherProduct(candidate);
        if (QDir(path).isReadable())
            return path;
    }
    return {};
}

QString CStorageLocation::cafDataPathOfMarlowick2()
{
    return modulesOfOtherProduct(QStringLiteral("Vek Marlowick %1").arg(2));
}

QString CStorageLocation::sessionSingleAppDirectory()
{
    const std::optional<QString> home = Platform::sessionUserHomeFolder();
    if (!home) {
        std::printf("Single app use standard temp dir!!!");
        return QDir(QDir::tempPath()).absolutePath();
    }
    if (home->isEmpty())
        return {};
    return QDir(*home).filePath(QStringLiteral("Library/Vek_Labs/Vek Marlowick 3"));
}

} // namespace VEK_NAMESPACE
