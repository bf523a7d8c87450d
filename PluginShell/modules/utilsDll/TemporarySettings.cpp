#include "TemporarySettings.h"

#include "Assertions.h"
#include "CommonConstants.h"
#include "SettingsCheck_p.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSettings>
#include <QTemporaryDir>
#include <QUuid>

namespace VEK_NAMESPACE {

namespace {

// clazy:excludeall=non-pod-global-static
QString g_temporarySettingsFilePath;
QString g_lastDestroyedPath;

/// A default file may be read-only, its copy has to be written.
void copyDefaults(const QString& from, const QString& to)
{
    if (!QFile::copy(from, to))
        return;
    QFile::setPermissions(to, QFile::permissions(to) | QFile::ReadOwner | QFile::WriteOwner);
    mendSettingsFile(to);
}

} // namespace

CTemporarySettings::CTemporarySettings(const char* defaultFileLocation)
    : m_tempDir(
        new QTemporaryDir(QDir::tempPath() + QDir::separator() + QUuid::createUuid().toString()))
{
    ASSERT_X(m_tempDir->isValid(), QStringLiteral("Temporary folder is not valid!"));

    g_temporarySettingsFilePath = QDir::toNativeSeparators(m_tempDir->path() + QDir::separator()
                                                           + QStringLiteral("krnv3.ini"));

    const QFileInfo location(QString::fromLatin1(defaultFileLocation));
    copyDefaults(location.dir().absoluteFilePath(QStringLiteral("DefaultTemporarySettins.ini")),
                 g_temporarySettingsFilePath);

    m_settings.reset(new QSettings(g_temporarySettingsFilePath, QSettings::IniFormat));
}

CTemporarySettings::~CTemporarySettings()
{
    g_lastDestroyedPath = tempSettingsPath();
    // An array that was ended is still to be written, which would bring the folder back.
    m_settings->sync();
}

const QString& CTemporarySettings::tempSettingsPath() const
{
    return m_sharedSettingsPath.isEmpty() ? g_temporarySettingsFilePath : m_sharedSettingsPath;
}

void CTemporarySettings::setSharedSettingsPath(const QString& path)
{
    m_sharedSettingsPath = path;
}

QVariant CTemporarySettings::value(const QString& key, const QVariant& defaultValue) const
{
    return m_settings->value(key, defaultValue);
}

void CTemporarySettings::setValue(const QString& key, const QVariant& value)
{
    m_settings->setValue(key, value);
    m_settings->sync();
}

void CTemporarySettings::remove(const QString& key)
{
    m_settings->remove(key);
    m_settings->sync();
}

void CTemporarySettings::clear()
{
    m_settings->clear();
    m_settings->sync();
}

bool CTemporarySettings::contains(const QString& key) const
{
    return m_settings->contains(key);
}

void CTemporarySettings::sync()
{
    m_settings->sync();
}

int CTemporarySettings::beginReadArray(const QString& prefix)
{
    return m_settings->beginReadArray(prefix);
}

void CTemporarySettings::beginWriteArray(const QString& prefix, int size)
{
    m_settings->beginWriteArray(prefix, size);
}

void CTemporarySettings::endArray()
{
    m_settings->endArray();
}

void CTemporarySettings::setArrayIndex(int i)
{
    m_settings->setArrayIndex(i);
}

const QString& CTemporarySettings::lastDestroyedPath()
{
    return g_lastDestroyedPath;
}

} // namespace VEK_NAMESPACE
