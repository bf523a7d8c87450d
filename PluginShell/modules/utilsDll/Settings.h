#pragma once

#include "UtilsDllGlobal.h"

#include <QObject>
#include <QPointer>
#include <QSettings>
#include <QString>
#include <QVariant>

namespace VEK_NAMESPACE {

class CTemporarySettings;

/// The one way to persisted values: a QSettings on the product's settings file, with a throw-away
/// overlay for the whole process.
///
/// While a CTemporarySettings is installed, all operations of all objects but the persistent-only
/// ones go to its file, also those of objects that already exist; when it dies they come back. An
/// object is cheap to make, meant for the stack and for one thread; objects on several threads may
/// share a file. Nothing reports a failure: an unreadable file gives defaults, writes to an
/// unwritable one or on a full disk are lost. A file's damaged streamed values, which QSettings
/// doesn't stand, are taken out of it when it is opened. Writes reach the persistent file when the
/// object is destroyed, or earlier; the overlay's at once.
class UTILSDLL_EXPORT CSettings : public QObject
{
    Q_OBJECT

public:
    /// The product's settings file. With \a persistentOnly the overlay is ignored. \a parent
    /// becomes the parent of the inner QSettings, not of this object, which its owner always has to
    /// destroy.
    explicit CSettings(QObject* parent = nullptr, bool persistentOnly = false);

    /// The product's settings file, whatever the \a scope.
    explicit CSettings(QSettings::Scope scope, QObject* parent = nullptr);

    /// A file of its own, redirected to the overlay all the same. \a parent is as above.
    CSettings(const QString& fileName, QSettings::Format format, QObject* parent = nullptr);

    /// Writes what isn't written yet.
    ~CSettings() override;

    /// \name Values
    /// Under an overlay value() takes the key as it stands, whereas setValue(), contains() and
    /// remove() put the open group before it; in the persistent store all of them follow QSettings.
    /// @{

    /// The value stored under \a key, or \a defaultValue.
    QVariant value(const QString& key, const QVariant& defaultValue = QVariant()) const;
    /// Stores \a value, of any type that a QVariant can write to a file.
    void setValue(const QString& key, const QVariant& value);
    /// Whether there is a value of that key. One below it doesn't count.
    bool contains(const QString& key) const;
    /// Removes the value of that key and all below it.
    void remove(const QString& key);

    /// @}

    /// \name Groups
    /// Under an overlay groups don't nest: a second beginGroup() replaces the first, and endGroup()
    /// leaves none. A group that was opened on one store has no effect on the other.
    /// @{

    /// Opens a group of keys.
    void beginGroup(const QString& prefix);
    /// Closes the group that was opened last.
    void endGroup();
    /// The open group, empty for none.
    QString group() const;

    /// @}

    /// \name Arrays
    /// As QSettings has them, on the store that is in use at each call.
    /// @{

    /// Opens an array to read, and returns its size.
    int beginReadArray(const QString& prefix);
    /// Opens an array to write; -1 for a size that the largest index gives.
    void beginWriteArray(const QString& prefix, int size = -1);
    /// Closes the array.
    void endArray();
    /// Makes \a i, counted from 0, the element that value() and setValue() work on.
    void setArrayIndex(int i);

    /// @}

    /// Writes what isn't written yet, and reads what others have written meanwhile.
    void sync();

    /// Whether this object's next operation goes to the overlay.
    bool usingTemporarySettings() const;

    /// Logs the end of the overlay, as an object built under one does by itself, if the overlay is
    /// there now. The constructors make this connection already.
    void connectSlots();

    /// Logs that the overlay goes and the persistent settings are back; the slot of that
    /// connection.
    void logWhenTempSettingsDeleted();

    /// Installs the overlay for the process, and logs it. The caller keeps \a settings. Not to be
    /// called while another thread uses settings.
    ///
    /// A null reference removes the overlay; a source file that does this has to be compiled with
    /// -fno-delete-null-pointer-checks. removeTemporarySettings() needs no such care.
    static void setTemporarySettings(CTemporarySettings& settings);

    /// Removes the overlay, as setTemporarySettings() with a null reference does.
    static void removeTemporarySettings();

    /// The text stored under \a key in the preferences file, which only this function reads; the
    /// default if it is missing or empty. The overlay is ignored. Any thread.
    static QString getStringFromPreferencesFile(const QString& key, const QString& defaultValue);

private:
    void detachFromDyingParent(QObject* parent);
    QSettings& store();
    QSettings& overlay() const;
    QString localKey(const QString& key) const;

    static void installTemporarySettings(CTemporarySettings* settings);

    QSettings m_settings;
    QString m_group;
    bool m_persistentOnly = false;

    static QPointer<CTemporarySettings> m_tempSettings;
};

} // namespace VEK_NAMESPACE
