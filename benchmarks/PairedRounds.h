#pragma once

#include "PairedTimes.h"

#include <benchmark/benchmark.h>

#include <QStringList>

#include <chrono>
#include <ctime>

/// What a piece of work took, in seconds. CPU time has the kernel's share in it, and leaves out
/// what the machine did for others; elapsed time has the waiting for the disk in it.
struct Times
{
    double cpu = 0.0;
    double elapsed = 0.0;
    bool succeeded = false;
};

/// The calling thread's times in \a function, which tells whether it succeeded.
template <typename Function>
Times timesOf(Function function)
{
    const auto cpuSeconds = [] {
        timespec time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
        return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
    };
    Times times;
    const auto start = std::chrono::steady_clock::now();
    const double cpuStart = cpuSeconds();
    times.succeeded = function();
    times.cpu = cpuSeconds() - cpuStart;
    times.elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return times;
}

/// The times of a program, found as the shell finds it, from its start to its end. What it prints
/// is dropped. It succeeds with exit status 0.
Times timesOfProgram(const QStringList& command);

/// The same without the times that the program takes to start, which are those of \a nothing: the
/// same program, doing nothing.
Times timesOfWork(const QStringList& command, const QStringList& nothing);

/// Paired times of rounds, and their counters: what library and peer took of the CPU, and the
/// ratios of CPU and of elapsed times.
class PairedRounds
{
public:
    /// Works with both, and counts the library's CPU time as the iteration's. False if one failed.
    template <typename Library, typename Peer>
    bool measure(benchmark::State& state, Library library, Peer peer)
    {
        Times libraryTimes;
        Times peerTimes;
        state.SetIterationTime(m_cpu.measure(
            [&] {
                libraryTimes = library();
                return libraryTimes.cpu;
            },
            [&] {
                peerTimes = peer();
                return peerTimes.cpu;
            }));
        m_elapsed.measure([&] { return libraryTimes.elapsed; }, [&] { return peerTimes.elapsed; });
        return libraryTimes.succeeded && peerTimes.succeeded;
    }

    void count(benchmark::State& state) const
    {
        state.counters["library_ms"] = m_cpu.ours() * 1e3;
        state.counters["peer_ms"] = m_cpu.peer() * 1e3;
        state.counters["ratio"] = m_cpu.ratio();
        state.counters["elapsed_ratio"] = m_elapsed.ratio();
    }

private:
    PairedTimes m_cpu;
    PairedTimes m_elapsed;
};
