#pragma once

#include "Benchmarks.h"

#include <QString>

#include <vector>

/// What came out of a figure.
struct FigureResult
{
    enum Verdict
    {
        NoBar,
        Held,
        MissedAsKnown,
        Missed
    };

    const Figure* figure = nullptr;
    PairedTimes times;
    QString error; ///< why there are no times
    bool secondTime = false;

    Verdict verdict() const;
};

/// What came out of a growth: the times at each of the sizes.
struct GrowthResult
{
    const Growth* growth = nullptr;
    std::vector<PairedTimes> times;
    QString error;
    bool secondTime = false;

    double ours() const; ///< how many times dearer the last size is than the one before
    double peers() const;
    bool isWorse() const; ///< than the peer's, or not measured
};

/// The machine, and what was built with what.
QString machine(bool markdown);

QString figureTable(const std::vector<FigureResult>& results, bool markdown);
QString growthTable(const std::vector<GrowthResult>& results, bool markdown);
