// A path that is known costs the question whether its folder is there, and no more.

#include "storageLocation.h"

#include <benchmark/benchmark.h>

#include <QDir>

using VEK_NAMESPACE::CStorageLocation;

namespace {

void ensuredPath(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(CStorageLocation::loggerFilesPath());
}
BENCHMARK(ensuredPath);

void bareQuestion(benchmark::State& state)
{
    const QString path = CStorageLocation::loggerFilesPath();
    for (auto _ : state)
        benchmark::DoNotOptimize(QDir().exists(path));
}
BENCHMARK(bareQuestion);

void fixedPath(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(CStorageLocation::getPreferencesFilePath());
}
BENCHMARK(fixedPath);

void copiedString(benchmark::State& state)
{
    const QString path = CStorageLocation::getPreferencesFilePath();
    for (auto _ : state)
        benchmark::DoNotOptimize(QString(path));
}
BENCHMARK(copiedString);

} // namespace
