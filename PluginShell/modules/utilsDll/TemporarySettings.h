#pragma once

#include "UtilsDllGlobal.h"

#include <QObject>
#include <QScopedPointer>
#include <QString>
#include <QVariant>

class QSettings;
class QTemporaryDir;

namespace VEK_NAMESPACE {

/// A throw-away settings file for one run, krnv3.ini in a temporary folder of its own. Installed
/// with CSettings::setTemporarySettings() it stands in for the product's settings file; folder and
/// file go with the object. Every change but those of the array operations is on disk at once.
///
/// The host makes, installs and destroys it, all on one thread. If the folder can't be made, a line
/// at level 'E' tells it, reads give defaults and writes are lost.
class UTILSDLL_EXPORT CTemporarySettings : public QObject
{
    Q_OBJECT

public:
    /// Starts with the contents of "DefaultTemporarySettins.ini" in the folder of
    /// \a defaultFileLocation (an ASCII path whose own last name doesn't matter; null means the
    /// current folder), or empty if there is no such file.
    explicit CTemporarySettings(const char* defaultFileLocation);
    /// Removes folder and file; settings are those of the product again.
    ~CTemporarySettings() override;

    /// The shared path if one was set, else the file of the object that was made last.
    const QString& tempSettingsPath() const;

    /// Makes tempSettingsPath() report \a path. The values stay where they are.
    void setSharedSettingsPath(const QString& path);

    /// \name Values of the throw-away file
    /// As QSettings has them, whether the object is installed or not.
    /// @{

    /// The value stored under \a key, or \a defaultValue.
    QVariant value(const QString& key, const QVariant& defaultValue = QVariant()) const;
    /// Stores \a value and writes it to the file.
    void setValue(const QString& key, const QVariant& value);
    /// Removes the value of that key and all below it from the file.
    void remove(const QString& key);
    /// Removes all values from the file.
    void clear();
    /// Whether there is a value of that key.
    bool contains(const QString& key) const;
    /// Writes the file, which only an array has to ask for.
    void sync();

    /// Opens an array to read, and returns its size.
    int beginReadArray(const QString& prefix);
    /// Opens an array to write; -1 for a size that the largest index gives.
    void beginWriteArray(const QString& prefix, int size = -1);
    /// Closes the array. Its values are in the file after sync(), or after the next change.
    void endArray();
    /// Makes \a i, counted from 0, the element that value() and setValue() work on.
    void setArrayIndex(int i);

    /// @}

private:
    friend class CSettings; // works on m_settings, and tells where the values were

    static const QString& lastDestroyedPath();

    QScopedPointer<QSettings> m_settings;
    QScopedPointer<QTemporaryDir> m_tempDir;
    QString m_sharedSettingsPath;
};

} // namespace VEK_NAMESPACE
