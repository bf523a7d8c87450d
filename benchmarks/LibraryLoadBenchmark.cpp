// Loading the library takes at most 5 ms over loading the libraries that it links: the CPU time of
// a whole process that does nothing else, less that of a process without the library.

#include "Benchmarks.h"

namespace {

PairedTimes loadLibrary()
{
    const QStringList with{QStringLiteral(PROGRAM_WITH_LIBRARY)};
    const QStringList without{QStringLiteral(PROGRAM_WITHOUT_LIBRARY)};
    return pairedTurns(
        101, [&] { return cpuTimeOfProgram(with); }, [&] { return cpuTimeOfProgram(without); });
}

} // namespace

void addLibraryLoad(Benchmarks& benchmarks)
{
    benchmarks.figures.push_back({QStringLiteral("library: load it"),
                                  QStringLiteral("what it links"), atMostOver(5e-3), loadLibrary});
}
