// Loading the library takes at most 5 ms over loading the libraries that it links: counter
// "over_ms", the CPU time of a whole process that does nothing else, less that of a process without
// the library. The waiting time is told beside it.

#include "PairedTimes.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <string>

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct ProcessTimes
{
    double cpu = 0.0;
    double elapsed = 0.0;
    bool succeeded = false;
};

double seconds(const timeval& time)
{
    return double(time.tv_sec) + double(time.tv_usec) * 1e-6;
}

ProcessTimes run(const char* program)
{
    std::string name = program;
    char* const arguments[] = {&name[0], nullptr};
    const auto start = std::chrono::steady_clock::now();
    pid_t process = 0;
    int status = 0;
    rusage usage{};
    ProcessTimes times;
    times.succeeded = posix_spawn(&process, program, nullptr, nullptr, arguments, environ) == 0
        && wait4(process, &status, 0, &usage) == process && status == 0;
    times.elapsed = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    times.cpu = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    return times;
}

void loadLibrary(benchmark::State& state)
{
    if (!run(PROGRAM_WITH_LIBRARY).succeeded || !run(PROGRAM_WITHOUT_LIBRARY).succeeded) {
        state.SkipWithError("a program did not run");
        return;
    }

    PairedTimes cpu;
    PairedTimes elapsed;
    for (auto _ : state) {
        ProcessTimes library;
        ProcessTimes peer;
        state.SetIterationTime(cpu.measure(
            [&] {
                library = run(PROGRAM_WITH_LIBRARY);
                return library.cpu;
            },
            [&] {
                peer = run(PROGRAM_WITHOUT_LIBRARY);
                return peer.cpu;
            }));
        elapsed.measure([&] { return library.elapsed; }, [&] { return peer.elapsed; });
    }
    state.counters["library_ms"] = cpu.ours() * 1e3;
    state.counters["peer_ms"] = cpu.peer() * 1e3;
    state.counters["over_ms"] = cpu.difference() * 1e3;
    state.counters["elapsed_over_ms"] = elapsed.difference() * 1e3;
}
BENCHMARK(loadLibrary)->Iterations(200)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace
