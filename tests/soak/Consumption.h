#pragma once

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QString>
#include <QtGlobal>

#include <cstddef>

#include <malloc.h>
#include <unistd.h>

// A sanitizer has a heap of its own, which keeps back what is freed, and takes several times as
// long for everything. So with one each soak is a part of what it is otherwise, and resident memory
// tells nothing.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define SOAKS_WITH_SANITIZER 1
#else
#define SOAKS_WITH_SANITIZER 0
#endif
#if defined(__SANITIZE_ADDRESS__)
// GCC brings the function, and no header for it.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#endif

/// What this process holds.
struct Consumption
{
    qint64 heap = 0; ///< bytes that are in use
    qint64 resident = 0; ///< bytes
    int widgets = 0;
    int windows = 0;
    int files = 0;
    int threads = 0;

    static Consumption now()
    {
        Consumption now;
#if defined(__SANITIZE_ADDRESS__)
        now.heap = qint64(__sanitizer_get_current_allocated_bytes());
#elif __GLIBC_PREREQ(2, 33)
        const struct mallinfo2 heap = mallinfo2();
        now.heap = qint64(heap.uordblks + heap.hblkhd);
#else
        const struct mallinfo heap = mallinfo();
        now.heap = qint64(unsigned(heap.uordblks)) + qint64(unsigned(heap.hblkhd));
#endif
        QFile status(QStringLiteral("/proc/self/statm"));
        if (status.open(QIODevice::ReadOnly))
            now.resident =
                status.readAll().split(' ').value(1).toLongLong() * sysconf(_SC_PAGESIZE);
        now.widgets = QApplication::allWidgets().size();
        now.windows = QGuiApplication::allWindows().size();
        now.files = entries("/proc/self/fd");
        now.threads = entries("/proc/self/task");
        return now;
    }

    /// How much more it is than \a before, for the one who reads a failed test.
    QString since(const Consumption& before) const
    {
        return QStringLiteral(
                   "%1 bytes on the heap, %2 resident, %3 widgets, %4 windows, %5 files, "
                   "%6 threads")
            .arg(heap - before.heap)
            .arg(resident - before.resident)
            .arg(widgets - before.widgets)
            .arg(windows - before.windows)
            .arg(files - before.files)
            .arg(threads - before.threads);
    }

private:
    static int entries(const char* folder)
    {
        return QDir(QLatin1String(folder))
            .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
            .size();
    }
};
