#pragma once

#include "Timing.h"

#include <QString>

#include <functional>
#include <vector>

/// What the library may take beside its peer.
struct Bar
{
    enum Kind
    {
        None,
        Ratio, ///< at most so many times the peer's time
        Difference ///< at most so many seconds over it
    };

    Kind kind = None;
    double limit = 0.0;
};

inline Bar atMostTimes(double ratio)
{
    return {Bar::Ratio, ratio};
}

inline Bar atMostOver(double seconds)
{
    return {Bar::Difference, seconds};
}

/// Why a bar is missed, and how far that reason goes: beyond it the miss is a fault. Or why there
/// is no bar.
struct Reason
{
    QString text;
    double limit = 0.0;
};

/// A cost of the library beside that of a peer.
struct Figure
{
    QString name;
    QString peer;
    Bar bar;
    std::function<PairedTimes()> measure;
    Reason reason = {};
};

/// A cost that may grow with its input, measured at the sizes below.
struct Growth
{
    QString name;
    QString peer;
    std::function<PairedTimes(int size)> measure;
};

constexpr int growthSizes[] = {10, 1000, 100000};

struct Benchmarks
{
    std::vector<Figure> figures;
    std::vector<Growth> growths;
};

void addSettings(Benchmarks& benchmarks);
void addDelayedCalls(Benchmarks& benchmarks);
void addImageComparison(Benchmarks& benchmarks);
void addStorageLocation(Benchmarks& benchmarks);
void addLogger(Benchmarks& benchmarks);
void addPerformanceMeauser(Benchmarks& benchmarks);
void addAppStyle(Benchmarks& benchmarks);
void addAppStyleSheet(Benchmarks& benchmarks);
void addLibraryLoad(Benchmarks& benchmarks);
void addFiles(Benchmarks& benchmarks);
void addArchives(Benchmarks& benchmarks);
