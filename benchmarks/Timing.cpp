#include "Timing.h"

#include <QByteArrayList>
#include <QFile>
#include <QHash>
#include <QVector>

#include <ctime>

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

} // namespace

double cpuSeconds()
{
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) * 1e-9;
}

double cpuTimeOfProgram(const QStringList& command)
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
    pid_t process = 0;
    int status = 0;
    rusage usage{};
    const bool succeeded =
        posix_spawnp(&process, arguments.first(), &output, nullptr, arguments.data(), environ) == 0
        && wait4(process, &status, 0, &usage) == process && status == 0;
    posix_spawn_file_actions_destroy(&output);
    require(succeeded, "a program failed");
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double cpuTimeOfWork(const QStringList& command, const QStringList& nothing)
{
    static QHash<QStringList, double> leastToStart;
    if (!leastToStart.contains(nothing)) {
        double least = cpuTimeOfProgram(nothing);
        for (int i = 0; i < 20; ++i)
            least = std::min(least, cpuTimeOfProgram(nothing));
        leastToStart.insert(nothing, least);
    }
    return cpuTimeOfProgram(command) - leastToStart.value(nothing);
}
