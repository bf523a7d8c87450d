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
    /// Created if they are missing.
    /// @{
    static QString diskCacheLocation();
    /// A folder, in spite of its name.
    static QString cachedTokenFilePath();
    static QString packUserStoragePath();
    static QString favoritePresetPath();
    static QString cafDataPath();
    static QString loggerFilesPath();
    static QString crashFilesPath();
    static QString crashTempFilesPath();
    /// @}

    /// The folder of the sample pictures, which need not exist; empty without a pictures folder.
    static QString getSamplePicturesLocation();

    /// The file that CSettings::getStringFromPreferencesFile() reads.
    static QString getPreferencesFilePath();

    /// \name Files in the resources of the application's bundle
    /// They need the application object. Nothing is created.
    /// @{
    static QString miniatureBlurShapesPath();
    static QString framePackPath();
    static QString texturesPackPath();
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
