#pragma once

#include "UtilsDllGlobal.h"

#include <QString>

namespace VEK_NAMESPACE {

/// Where the product keeps its data. No other code composes such a path, but for the settings file
/// and the user's identifier.
///
/// Folder paths end with a separator unless told otherwise. Most folders are created by the call,
/// also when they have been deleted since the last one; no failure is reported, and the path is
/// returned all the same. Paths other than those of dataLocation(), the session, the samples and
/// other products stay the same for the process. Any thread.
class UTILSDLL_EXPORT CStorageLocation
{
public:
    CStorageLocation() = delete;

    /// A folder below "Library/Vek_Labs" of the user's home, which is taken from the password
    /// database.
    static QString dataLocation(const QString& subFolder, bool createIfMissing);

    /// \name Folders of the application's data
    /// In dataLocation("Vek Marlowick 3", true). Created if they are missing.
    /// @{

    /// "DiskCache": what can be made again.
    static QString diskCacheLocation();
    /// "Facebook": a folder, in spite of its name.
    static QString cachedTokenFilePath();
    /// "PresetPack": the packs of presets that the user has installed.
    static QString packUserStoragePath();
    /// "Favorite": the user's favourite presets.
    static QString favoritePresetPath();
    /// "Modules": the data of the correction modules.
    static QString cafDataPath();
    /// "Logs": the files of the logger.
    static QString loggerFilesPath();
    /// "CrashReports": reports that wait to be sent.
    static QString crashFilesPath();
    /// "CrashReports/temp": reports in the making.
    static QString crashTempFilesPath();

    /// @}

    /// The folder of the sample pictures, which need not exist; empty without a pictures folder.
    static QString getSamplePicturesLocation();

    /// The file that CSettings::getStringFromPreferencesFile() reads.
    static QString getPreferencesFilePath();

    /// \name Files in the resources of the application's bundle
    /// They need the application object. Nothing is created.
    /// Each logs its path once.
    /// @{

    /// "BlurShapes.lua": the shapes of blurred lights.
    static QString miniatureBlurShapesPath();
    /// "Frames.lua": the frames around a picture.
    static QString framePackPath();
    /// "Textures.lua": the textures over a picture.
    static QString texturesPackPath();
    /// "Defects.lua": the defects of old photographs.
    static QString defectsPackPath();

    /// @}

    /// \name Other products
    /// Nothing is created.
    /// @{

    /// The data folder of the newest Vek Halvarden that can be read; empty if there is none.
    static QString cafDataPathOfHalvardenLatestVersion();
    /// The data folder of Vek Marlowick 2, whether it exists or not.
    static QString cafDataPathOfMarlowick2();
    /// @}

    /// A folder of the user whose login session this is, who need not be the user of the process,
    /// without a separator at its end. Outside a login session it is the temporary folder, which is
    /// told on standard output.
    static QString sessionSingleAppDirectory();
};

} // namespace VEK_NAMESPACE
