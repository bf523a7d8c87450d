#include "PairedRounds.h"

#include <QByteArrayList>
#include <QFile>
#include <QHash>
#include <QVector>

#include <algorithm>

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

double seconds(const timeval& time)
{
    return double(time.tv_sec) + double(time.tv_usec) * 1e-6;
}

/// The least of several starts.
Times timesToStart(const QStringList& nothing)
{
    Times least = timesOfProgram(nothing);
    for (int i = 0; i < 20; ++i) {
        const Times times = timesOfProgram(nothing);
        least.cpu = std::min(least.cpu, times.cpu);
        least.elapsed = std::min(least.elapsed, times.elapsed);
        least.succeeded = least.succeeded && times.succeeded;
    }
    return least;
}

} // namespace

Times timesOfProgram(const QStringList& command)
{
    QByteArrayList words;
    for (const QString& word : command)
        words << QFile::encodeName(word);
    QVector<char*> arguments;
    for (QByteArray& word : words)
        arguments << word.data();
    arguments << nullptr;

    posix_spawn_file_actions_t output{};
    posix_spawn_file_actions_init(&output);
    posix_spawn_file_actions_addopen(&output, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    rusage usage{};
    Times times = timesOf([&] {
        pid_t process = 0;
        int status = 0;
        return posix_spawnp(&process, arguments.first(), &output, nullptr, arguments.data(),
                            environ)
            == 0
            && wait4(process, &status, 0, &usage) == process && status == 0;
    });
    posix_spawn_file_actions_destroy(&output);
    times.cpu = seconds(usage.ru_utime) + seconds(usage.ru_stime);
    return times;
}

Times timesOfWork(const QStringList& command, const QStringList& nothing)
{
    static QHash<QStringList, Times> known;
    if (!known.contains(nothing))
        known.insert(nothing, timesToStart(nothing));
    const Times start = known.value(nothing);

    Times times = timesOfProgram(command);
    times.cpu -= start.cpu;
    times.elapsed -= start.elapsed;
    times.succeeded = times.succeeded && start.succeeded;
    return times;
}
