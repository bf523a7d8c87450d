// Preloaded into a program, it writes to the file that OPEN_RECORDER_FILE names a line for each
// object that the program starts with ("loaded PATH"), and one for each file or folder that is
// opened from then on ("opened PATH"), by the initialisers of those objects as well.

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <link.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

/// Past the functions below, and in one piece, as others may write at the same time.
void record(const char* what, const char* path)
{
    static const char* const file = std::getenv("OPEN_RECORDER_FILE");
    if (!file || !path)
        return;
    const long descriptor =
        syscall(SYS_openat, AT_FDCWD, file, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (descriptor < 0)
        abort();
    char line[4200];
    const int length = std::snprintf(line, sizeof line, "%s %s\n", what, path);
    if (length < 0 || size_t(length) >= sizeof line
        || write(int(descriptor), line, size_t(length)) != length)
        abort();
    close(int(descriptor));
}

int recordLoaded(dl_phdr_info* object, size_t, void*)
{
    if (object->dlpi_name[0])
        record("loaded", object->dlpi_name);
    return 0;
}

__attribute__((constructor)) void recordAllLoaded()
{
    dl_iterate_phdr(recordLoaded, nullptr);
}

/// The function that would have been called without this one.
template <typename Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

/// The argument that is there only for some flags; unused, it does no harm.
mode_t modeOf(int flags, va_list arguments)
{
    return flags & (O_CREAT | __O_TMPFILE) ? mode_t(va_arg(arguments, int)) : 0;
}

} // namespace

#define RECORDED_OPEN(name)                                                                        \
    int name(const char* path, int flags, ...)                                                     \
    {                                                                                              \
        va_list arguments;                                                                         \
        va_start(arguments, flags);                                                                \
        const mode_t mode = modeOf(flags, arguments);                                              \
        va_end(arguments);                                                                         \
        record("opened", path);                                                                    \
        return next<int(const char*, int, ...)>(#name)(path, flags, mode);                         \
    }

#define RECORDED_OPEN_AT(name)                                                                     \
    int name(int folder, const char* path, int flags, ...)                                         \
    {                                                                                              \
        va_list arguments;                                                                         \
        va_start(arguments, flags);                                                                \
        const mode_t mode = modeOf(flags, arguments);                                              \
        va_end(arguments);                                                                         \
        record("opened", path);                                                                    \
        return next<int(int, const char*, int, ...)>(#name)(folder, path, flags, mode);            \
    }

// What fortified code calls instead when it gives no mode.
#define RECORDED_OPEN_2(name)                                                                      \
    int name(const char* path, int flags)                                                          \
    {                                                                                              \
        record("opened", path);                                                                    \
        return next<int(const char*, int)>(#name)(path, flags);                                    \
    }

#define RECORDED_FOPEN(name)                                                                       \
    FILE* name(const char* path, const char* mode)                                                 \
    {                                                                                              \
        record("opened", path);                                                                    \
        return next<FILE*(const char*, const char*)>(#name)(path, mode);                           \
    }

extern "C" {

RECORDED_OPEN(open)
RECORDED_OPEN(open64)
RECORDED_OPEN_AT(openat)
RECORDED_OPEN_AT(openat64)
RECORDED_OPEN_2(__open_2)
RECORDED_OPEN_2(__open64_2)
RECORDED_FOPEN(fopen)
RECORDED_FOPEN(fopen64)

DIR* opendir(const char* path)
{
    record("opened", path);
    return next<DIR*(const char*)>("opendir")(path);
}

void* dlopen(const char* path, int flags)
{
    record("opened", path);
    return next<void*(const char*, int)>("dlopen")(path, flags);
}

} // extern "C"
