// One construct-and-read costs the same at 10, 2,000 and 20,000 keys, within 1.2 times what plain
// QSettings needs at 10 keys with a warm cache, which is: while another object keeps its file
// parsed.

#include "Benchmarks.h"
#include "Settings.h"

#include <benchmark/benchmark.h>

#include <KConfig>
#include <KConfigGroup>
#include <KSharedConfig>

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>

using VEK_NAMESPACE::CSettings;

namespace {

QString settingsPath(const QString& fileName)
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/Vek Labs/krnv3/") + fileName;
}

/// Writes a settings file of so many keys behind the library's back.
QString writeKeys(const QString& fileName, int keys)
{
    const QString path = settingsPath(fileName);
    QFile::remove(path);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    require(file.open(QIODevice::WriteOnly), "no settings file can be written");
    file.write("[General]\n");
    for (int i = 0; i < keys; ++i)
        file.write("key" + QByteArray::number(i) + "=value\n");
    return path;
}

QString key()
{
    return QStringLiteral("key7");
}

void constructAndRead()
{
    const CSettings settings;
    benchmark::DoNotOptimize(settings.value(key()));
}

PairedTimes readBesideQSettings(int keys, int peerKeys)
{
    writeKeys(QStringLiteral("Data.plist"), keys);
    const QString path = writeKeys(QStringLiteral("Peer.ini"), peerKeys);
    const QSettings keepParsed(path, QSettings::NativeFormat);
    require(CSettings().value(key()) == keepParsed.value(key()), "the value is another one");
    return pairedCalls(constructAndRead, [&] {
        const QSettings settings(path, QSettings::NativeFormat);
        benchmark::DoNotOptimize(settings.value(key()));
    });
}

PairedTimes readBesideKConfig(int keys)
{
    writeKeys(QStringLiteral("Data.plist"), keys);
    const QString path = writeKeys(QStringLiteral("Peer.rc"), keys);
    return pairedCalls(constructAndRead, [&] {
        const KConfig config(path, KConfig::SimpleConfig);
        benchmark::DoNotOptimize(config.group("General").readEntry(key()));
    });
}

PairedTimes readBesideKSharedConfig(int keys)
{
    writeKeys(QStringLiteral("Data.plist"), keys);
    const QString path = writeKeys(QStringLiteral("Shared.rc"), keys);
    const KSharedConfig::Ptr keepParsed = KSharedConfig::openConfig(path, KConfig::SimpleConfig);
    return pairedCalls(constructAndRead, [&] {
        const KSharedConfig::Ptr config = KSharedConfig::openConfig(path, KConfig::SimpleConfig);
        benchmark::DoNotOptimize(config->group("General").readEntry(key()));
    });
}

/// Another value each time: one that is there already isn't written.
int nextValue()
{
    static int value = 0;
    return ++value;
}

void writeAndSync()
{
    CSettings settings;
    settings.setValue(key(), nextValue());
    settings.sync();
}

PairedTimes writeBesideQSettings(int keys)
{
    writeKeys(QStringLiteral("Data.plist"), keys);
    const QString path = writeKeys(QStringLiteral("Peer.ini"), keys);
    const QSettings keepParsed(path, QSettings::NativeFormat);
    return pairedCalls(writeAndSync, [&] {
        QSettings settings(path, QSettings::NativeFormat);
        settings.setValue(key(), nextValue());
        settings.sync();
    });
}

PairedTimes writeBesideKConfig(int keys)
{
    writeKeys(QStringLiteral("Data.plist"), keys);
    const QString path = writeKeys(QStringLiteral("Peer.rc"), keys);
    return pairedCalls(writeAndSync, [&] {
        KConfig config(path, KConfig::SimpleConfig);
        config.group("General").writeEntry(key(), nextValue());
        config.sync();
    });
}

} // namespace

void addSettings(Benchmarks& benchmarks)
{
    const QString qSettings = QStringLiteral("QSettings, 10 keys, warm");
    for (const int keys : {10, 2000, 20000}) {
        benchmarks.figures.push_back(
            {QStringLiteral("settings: construct and read, %L1 keys").arg(keys), qSettings,
             atMostTimes(1.2), [keys] { return readBesideQSettings(keys, 10); }});
    }
    benchmarks.figures.push_back({QStringLiteral("settings: construct and read, 10 keys"),
                                  QStringLiteral("KConfig, a new one"), atMostTimes(1.2),
                                  [] { return readBesideKConfig(10); }});
    benchmarks.figures.push_back(
        {QStringLiteral("settings: construct and read, 10 keys"),
         QStringLiteral("KSharedConfig, warm"),
         Bar(),
         [] { return readBesideKSharedConfig(10); },
         {QStringLiteral("KSharedConfig hands out one object, which doesn't look at "
                         "its file again. A new CSettings, as a new QSettings, asks "
                         "the file whether another process has changed it.")}});

    benchmarks.growths.push_back({QStringLiteral("settings: construct and read, by keys"),
                                  QStringLiteral("QSettings, warm"),
                                  [](int keys) { return readBesideQSettings(keys, keys); }});
    benchmarks.growths.push_back({QStringLiteral("settings: write and sync, by keys"),
                                  QStringLiteral("QSettings, warm"), writeBesideQSettings});
    benchmarks.growths.push_back({QStringLiteral("settings: write and sync, by keys"),
                                  QStringLiteral("KConfig"), writeBesideKConfig});
}
