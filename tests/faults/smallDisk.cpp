// Preloaded into a process: the folder that SMALL_DISK names is a disk of 1 MiB for it, with blocks
// of 4 KiB. For machines where nothing can be mounted.

#include <cerrno>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <string>

#include <dirent.h>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <sys/syscall.h>
#include <unistd.h>

#define VISIBLE extern "C" __attribute__((visibility("default")))

namespace {

constexpr off_t blockSize = 4096;
constexpr off_t allBlocks = 256;

off_t blocksOf(off_t size)
{
    return (size + blockSize - 1) / blockSize;
}

bool isOnDisk(const char* path)
{
    const char* const disk = std::getenv("SMALL_DISK");
    if (!disk || !path)
        return false;
    const std::size_t length = std::strlen(disk);
    return std::strncmp(path, disk, length) == 0 && (path[length] == '/' || path[length] == '\0');
}

off_t usedBlocks(const std::string& folder)
{
    off_t blocks = 0;
    DIR* const entries = opendir(folder.c_str());
    if (!entries)
        return 0;
    while (const dirent* entry = readdir(entries)) {
        const std::string name = entry->d_name;
        if (name == "." || name == "..")
            continue;
        const std::string path = folder + '/' + name;
        struct stat status = {};
        if (lstat(path.c_str(), &status) != 0)
            continue;
        if (S_ISDIR(status.st_mode))
            blocks += usedBlocks(path);
        else if (S_ISREG(status.st_mode))
            blocks += blocksOf(status.st_size);
    }
    closedir(entries);
    return blocks;
}

off_t freeBlocks()
{
    const off_t used = usedBlocks(std::getenv("SMALL_DISK"));
    return used < allBlocks ? allBlocks - used : 0;
}

/// How many of \a size bytes there is space for at \a position of a file.
std::size_t fitting(int file, off_t position, std::size_t size)
{
    struct stat status = {};
    if (fstat(file, &status) != 0)
        return size;
    const off_t end = (blocksOf(status.st_size) + freeBlocks()) * blockSize;
    if (position + off_t(size) <= end)
        return size;
    return end > position ? std::size_t(end - position) : 0;
}

/// A file without a name would not be found.
bool isRefused(const char* path, int flags)
{
    if ((flags & O_TMPFILE) != O_TMPFILE || !isOnDisk(path))
        return false;
    errno = EOPNOTSUPP;
    return true;
}

int openFile(int folder, const char* path, int flags, mode_t mode)
{
    if (isRefused(path, flags))
        return -1;
    return int(syscall(SYS_openat, folder, path, flags, mode));
}

mode_t modeOf(int flags, va_list arguments)
{
    const bool hasMode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return hasMode ? mode_t(va_arg(arguments, int)) : 0;
}

template <typename Status>
int space(const char* name, const char* path, Status* status)
{
    using Function = int (*)(const char*, Status*);
    const auto original = reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
    const int result = original ? original(path, status) : -1;
    if (result == 0 && isOnDisk(path)) {
        status->f_bsize = status->f_frsize = blockSize;
        status->f_blocks = allBlocks;
        status->f_bfree = status->f_bavail = decltype(status->f_bavail)(freeBlocks());
    }
    return result;
}

} // namespace

VISIBLE ssize_t write(int file, const void* bytes, size_t size)
{
    char path[4096];
    const std::string link = "/proc/self/fd/" + std::to_string(file);
    const ssize_t length = readlink(link.c_str(), path, sizeof path - 1);
    if (length > 0) {
        path[length] = '\0';
        if (isOnDisk(path)) {
            struct stat status = {};
            fstat(file, &status);
            const bool appends = (fcntl(file, F_GETFL) & O_APPEND) != 0;
            const off_t position = appends ? status.st_size : lseek(file, 0, SEEK_CUR);
            const size_t fits = fitting(file, position, size);
            if (fits == 0 && size > 0) {
                errno = ENOSPC;
                return -1;
            }
            size = fits;
        }
    }
    return syscall(SYS_write, file, bytes, size);
}

VISIBLE int open(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openFile(AT_FDCWD, path, flags, mode);
}

VISIBLE int open64(const char* path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = modeOf(flags, arguments);
    va_end(arguments);
    return openFile(AT_FDCWD, path, flags, mode);
}

VISIBLE int statvfs(const char* path, struct statvfs* status)
{
    return space("statvfs", path, status);
}

VISIBLE int statvfs64(const char* path, struct statvfs64* status)
{
    return space("statvfs64", path, status);
}
