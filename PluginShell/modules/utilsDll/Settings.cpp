#include "Settings.h"

#include "CommonConstants.h"
#include "Logger_p.h"
#include "PlatformServices_p.h"
#include "SettingsCheck_p.h"
#include "TemporarySettings.h"
#include "storageLocation.h"

#include <QFile>
#include <QFileInfo>
#include <QLockFile>

#include <filesystem>
#include <system_error>

namespace VEK_NAMESPACE {

using Private::logLine;

namespace {

/// Before QSettings opens it. Other formats than these are none of ours.
QString mendedFile(const QString& path, QSettings::Format format)
{
    if (format == QSettings::IniFormat || format == QSettings::NativeFormat)
        mendChangedSettingsFile(path);
    return path;
}

/// The path of the product's settings file. QSettings forgets a parsed file when its last object
/// goes, which would make every short-lived CSettings parse it again, so one object stays.
const QString& settingsFilePath()
{
    struct SettingsFile
    {
        const QString path = mendedFile(Platform::systemFolder() + QStringLiteral("Data.plist"),
                                        QSettings::NativeFormat);
        const QSettings keepParsed{path, QSettings::NativeFormat};
    };
    // Never destroyed: later destructors of singletons may still read settings.
    static const SettingsFile& file = *new SettingsFile;
    return file.path;
}

/// Whether no lock is left that would hold up QSettings. A process that is killed while it makes
/// its lock leaves an empty one, for which QSettings would wait half a minute: it is taken away. A
/// living one fills its lock at once, and holds it in a way that lasts no longer than the process.
/// In a folder without rights QSettings would wait for ever.
bool isFreeOfLeftLock(const QString& settingsPath)
{
    const QFileInfo file(settingsPath + QStringLiteral(".lock"));
    if (!file.isFile())
        return true;
    if (!QFileInfo(file.path()).isWritable())
        return false;
    if (file.size() == 0) {
        QLockFile lock(file.filePath());
        lock.setStaleLockTime(500);
        lock.tryLock(2000);
    }
    return true;
}

/// Whether a file can be written once more beside what is there of it. QSettings takes a write that
/// the disk has no space for as done and puts what there is of it, perhaps nothing, in the old
/// file's place. So a change that comes when the disk is full is lost, and nothing else.
bool hasSpaceForChange(const QSettings& settings)
{
    constexpr quint64 spareSpace = 128U << 10;
    const QFileInfo file(settings.fileName());
    if (!file.exists())
        return true;
    std::error_code unknown;
    const auto disk = std::filesystem::space(QFile::encodeName(file.path()).constData(), unknown);
    return unknown || disk.capacity == 0 || disk.available >= quint64(file.size()) + spareSpace;
}

bool isReadyForChange(const QSettings& settings)
{
    return isFreeOfLeftLock(settings.fileName()) && hasSpaceForChange(settings);
}

} // namespace

QPointer<CTemporarySettings> CSettings::m_tempSettings; // clazy:exclude=non-pod-global-static

CSettings::CSettings(QObject* parent, bool persistentOnly)
    : m_settings(settingsFilePath(), QSettings::NativeFormat, parent)
    , m_persistentOnly(persistentOnly)
{
    detachFromDyingParent(parent);
    connectSlots();
}

CSettings::CSettings(QSettings::Scope scope, QObject* parent)
    : CSettings(parent, false)
{
    Q_UNUSED(scope)
}

CSettings::CSettings(const QString& fileName, QSettings::Format format, QObject* parent)
    : m_settings(mendedFile(fileName, format), format, parent)
{
    detachFromDyingParent(parent);
    connectSlots();
}

CSettings::~CSettings() = default;

// The parent would delete the member as one of its children.
void CSettings::detachFromDyingParent(QObject* parent)
{
    if (parent) {
        connect(
            parent, &QObject::destroyed, this, [this] { m_settings.setParent(nullptr); },
            Qt::DirectConnection);
    }
}

void CSettings::connectSlots()
{
    if (m_tempSettings) {
        connect(m_tempSettings.data(), &QObject::destroyed, this,
                &CSettings::logWhenTempSettingsDeleted);
    }
}

QVariant CSettings::value(const QString& key, const QVariant& defaultValue) const
{
    // The reverse of the other operations' key rule is meant: see the header.
    if (usingTemporarySettings())
        return overlay().value(key, defaultValue);
    return m_settings.value(localKey(key), defaultValue);
}

void CSettings::setValue(const QString& key, const QVariant& value)
{
    if (usingTemporarySettings()) {
        overlay().setValue(localKey(key), value);
        overlay().sync();
    } else if (isReadyForChange(m_settings)) {
        m_settings.setValue(key, value);
    }
}

bool CSettings::contains(const QString& key) const
{
    return usingTemporarySettings() ? overlay().contains(localKey(key)) : m_settings.contains(key);
}

void CSettings::remove(const QString& key)
{
    if (usingTemporarySettings()) {
        overlay().remove(localKey(key));
        overlay().sync();
    } else if (isReadyForChange(m_settings)) {
        m_settings.remove(key);
    }
}

void CSettings::beginGroup(const QString& prefix)
{
    if (usingTemporarySettings())
        m_group = prefix;
    else
        m_settings.beginGroup(prefix);
}

void CSettings::endGroup()
{
    if (usingTemporarySettings())
        m_group.clear();
    else
        m_settings.endGroup();
}

QString CSettings::group() const
{
    return usingTemporarySettings() ? m_group : m_settings.group();
}

int CSettings::beginReadArray(const QString& prefix)
{
    return store().beginReadArray(prefix);
}

void CSettings::beginWriteArray(const QString& prefix, int size)
{
    if (usingTemporarySettings() || isReadyForChange(m_settings))
        store().beginWriteArray(prefix, size);
    else
        m_settings.beginReadArray(prefix); // whose end changes nothing
}

void CSettings::endArray()
{
    store().endArray();
}

void CSettings::setArrayIndex(int i)
{
    store().setArrayIndex(i);
}

void CSettings::sync()
{
    store().sync();
}

bool CSettings::usingTemporarySettings() const
{
    return !m_persistentOnly && m_tempSettings;
}

void CSettings::logWhenTempSettingsDeleted()
{
    // During destroyed() the guarded pointer is empty already, or names another overlay by now.
    const QString path = m_tempSettings && !sender() ? m_tempSettings->tempSettingsPath()
                                                     : CTemporarySettings::lastDestroyedPath();
    logLine('D', "Temporary settings file is to be destoyed: ", path);
    logLine('D', "Persistent settings will be used");
}

void CSettings::setTemporarySettings(CTemporarySettings& settings)
{
    installTemporarySettings(&settings);
}

void CSettings::removeTemporarySettings()
{
    installTemporarySettings(nullptr);
}

QString CSettings::getStringFromPreferencesFile(const QString& key, const QString& defaultValue)
{
    const QSettings preferences(
        mendedFile(CStorageLocation::getPreferencesFilePath(), QSettings::IniFormat),
        QSettings::IniFormat);
    const QString text = preferences.value(key, defaultValue).toString();
    return text.isEmpty() ? defaultValue : text;
}

void CSettings::installTemporarySettings(CTemporarySettings* settings)
{
    m_tempSettings = settings;
    if (!settings)
        logLine('D', "Info: settings are now stored in system");
    else
        logLine('D', "Info: settings are now stored in file: ", settings->tempSettingsPath());
}

QSettings& CSettings::store()
{
    return usingTemporarySettings() ? overlay() : m_settings;
}

QSettings& CSettings::overlay() const
{
    return *m_tempSettings->m_settings;
}

QString CSettings::localKey(const QString& key) const
{
    return m_group.isEmpty() ? key : QStringLiteral("%1/%2").arg(m_group, key);
}

} // namespace VEK_NAMESPACE
