#pragma once

#include <QDir>
#include <QFile>
#include <QMap>
#include <QSettings>
#include <QString>
#include <QStringList>

/// The settings that a file holds, as a reader sees them that has never seen it before. A file that
/// can't be parsed has the one key "damaged".
inline QMap<QString, QString> settingsIn(const QString& file)
{
    // QSettings parses a path once as long as the file looks unchanged, and takes one that comes to
    // be while it looks for an empty one.
    static int number = 0;
    const QString copy = QDir::temp().filePath(QStringLiteral("settings%1.ini").arg(++number));
    if (!QFile::copy(file, copy))
        return {{QStringLiteral("damaged"), QStringLiteral("not there")}};
    QMap<QString, QString> values;
    {
        const QSettings settings(copy, QSettings::IniFormat);
        const QStringList keys = settings.allKeys();
        if (settings.status() != QSettings::NoError)
            values.insert(QStringLiteral("damaged"), QString::number(settings.status()));
        for (const QString& key : keys)
            values.insert(key, settings.value(key).toString());
    }
    QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner);
    QFile::remove(copy);
    return values;
}

/// Where the hosts that run in this process's surroundings have their settings.
inline QString settingsFolder()
{
    return QFile::decodeName(qgetenv("XDG_CONFIG_HOME")) + QStringLiteral("/Vek Labs/krnv3");
}

inline QString settingsFile()
{
    return settingsFolder() + QStringLiteral("/Data.plist");
}
