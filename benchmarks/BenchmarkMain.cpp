// All speed figures of the library, each beside its peer in the same run. Figures on any one
// machine mean little; the ratios are what is kept.

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTemporaryDir>

int main(int argc, char** argv)
{
    // Settings of a home of its own: the user's are left alone.
    const QTemporaryDir home;
    qputenv("HOME", home.path().toLocal8Bit());
    qputenv("XDG_CONFIG_HOME", home.filePath(QStringLiteral("config")).toLocal8Bit());
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");

    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
