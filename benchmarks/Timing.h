#pragma once

#include <QStringList>

#include <algorithm>
#include <cstddef>
#include <stdexcept>
#include <utility>
#include <vector>

/// Thrown where there is nothing to measure, or where what was measured did something else.
class NotMeasured : public std::runtime_error
{
    using std::runtime_error::runtime_error;
};

inline void require(bool condition, const char* what)
{
    if (!condition)
        throw NotMeasured(what);
}

/// The CPU time of the process in seconds, of all its threads. It has the kernel's share in it, and
/// leaves out what the machine did for others.
double cpuSeconds();

template <typename Function>
double cpuTimeOf(Function function)
{
    const double start = cpuSeconds();
    function();
    return cpuSeconds() - start;
}

/// The CPU time of a program, found as the shell finds it, from its start to its end. What it
/// prints is dropped.
double cpuTimeOfProgram(const QStringList& command);

/// The same without what the program takes to start: that is \a nothing, the same program with
/// nothing to do.
double cpuTimeOfWork(const QStringList& command, const QStringList& nothing);

/// What the library and its peer took for the same thing, in seconds: medians of times, of ratios
/// and of differences.
struct PairedTimes
{
    double ours = 0.0;
    double peer = 0.0;
    double ratio = 0.0;
    double difference = 0.0;
};

/// Times of a piece, of which the measured ones took \a pieces.
inline PairedTimes operator/(const PairedTimes& times, double pieces)
{
    return {times.ours / pieces, times.peer / pieces, times.ratio, times.difference / pieces};
}

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + std::ptrdiff_t(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

/// Calls the two functions, which return a time, by turns and in changing order. Whatever else the
/// machine does then slows both alike, and medians leave out the rest.
template <typename Ours, typename Peer>
PairedTimes pairedTurns(int turns, Ours ours, Peer peer)
{
    std::vector<double> ourTimes;
    std::vector<double> peerTimes;
    std::vector<double> ratios;
    std::vector<double> differences;
    for (int i = 0; i < turns; ++i) {
        const bool peerFirst = i % 2 == 0;
        double peerTime = peerFirst ? peer() : 0.0;
        const double ourTime = ours();
        if (!peerFirst)
            peerTime = peer();

        ourTimes.push_back(ourTime);
        peerTimes.push_back(peerTime);
        ratios.push_back(ourTime / peerTime);
        differences.push_back(ourTime - peerTime);
    }
    return {median(ourTimes), median(peerTimes), median(ratios), median(differences)};
}

/// A turn of calls, as many as take a millisecond at least.
template <typename Function>
class Calls
{
public:
    explicit Calls(Function function)
        : m_function(std::move(function))
    {
        // The least of three: a first turn may be slow for reasons of its own.
        while (std::min({turn(), turn(), turn()}) < 1e-3)
            m_count *= 2;
    }

    double turn()
    {
        return cpuTimeOf([this] {
            for (long i = 0; i < m_count; ++i)
                m_function();
        });
    }

    double secondsPerCall() { return turn() / double(m_count); }

private:
    Function m_function;
    long m_count = 1;
};

/// The times of a call. Takes about a second, or nine turns if they are long.
template <typename Ours, typename Peer>
PairedTimes pairedCalls(Ours ours, Peer peer)
{
    Calls<Ours> ourCalls(std::move(ours));
    Calls<Peer> peerCalls(std::move(peer));
    const double secondsPerTurn = ourCalls.turn() + peerCalls.turn();
    return pairedTurns(
        std::clamp(int(1.0 / secondsPerTurn), 9, 301), [&] { return ourCalls.secondsPerCall(); },
        [&] { return peerCalls.secondsPerCall(); });
}
