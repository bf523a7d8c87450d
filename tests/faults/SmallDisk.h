#pragma once

#include "Files.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <cstdlib>

#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

/// A disk of 1 MiB that only this process and those that it starts can see: one in memory where
/// something can be mounted, otherwise a folder that a preloaded library counts the bytes of.
class SmallDisk
{
public:
    static constexpr qint64 size = 1 << 20;

    /// Called first in main(), before there are other threads. Whoever isn't root becomes the only
    /// user of a namespace, where mounting is allowed; its user and rights stay what they are.
    static void prepare(char** argv)
    {
        if (std::getenv("SMALL_DISK"))
            return;
        const bool mounts = qgetenv("SMALL_DISK_KIND") != "counted" && enterNamespace();
        if (mounts)
            return;

        QByteArray folder = qgetenv("TMPDIR") + "/small-XXXXXX";
        if (!mkdtemp(folder.data()))
            qFatal("no folder for the disk");
        qputenv("SMALL_DISK", folder);
        qputenv("LD_PRELOAD", SMALL_DISK_LIBRARY ":" + qgetenv("LD_PRELOAD"));
        execv("/proc/self/exe", argv);
        qFatal("can't preload the disk");
    }

    SmallDisk()
        : m_counted(QFile::decodeName(qgetenv("SMALL_DISK")))
    {
        if (!m_counted.isEmpty()) {
            m_isThere = QDir(m_counted).removeRecursively() && QDir().mkpath(m_counted);
            return;
        }
        m_isThere = mount("tmpfs", QFile::encodeName(path()).constData(), "tmpfs",
                          MS_NOSUID | MS_NODEV, "size=1m,mode=700")
            == 0;
    }

    ~SmallDisk()
    {
        if (m_counted.isEmpty() && m_isThere)
            umount2(QFile::encodeName(path()).constData(), MNT_DETACH);
        else
            QDir(m_counted).removeRecursively();
    }

    bool isThere() const { return m_isThere; }

    QString path() const { return m_counted.isEmpty() ? m_folder.path() : m_counted; }
    QString filePath(const QString& name) const { return path() + QLatin1Char('/') + name; }

    qint64 freeSpace() const
    {
        struct statvfs status = {};
        if (statvfs(QFile::encodeName(path()).constData(), &status) != 0)
            return -1;
        return qint64(status.f_bavail) * qint64(status.f_frsize);
    }

    QString ballast() const { return filePath(QStringLiteral("ballast")); }

    /// Leaves \a space, which is a number of blocks of 4 KiB, to all others. The ballast itself is
    /// a plain file.
    bool fill(qint64 space = 0) const
    {
        QFile file(ballast());
        if (!file.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered))
            return false;
        const QByteArray block(4096, 'b');
        while (freeSpace() > space && file.write(block) == block.size()) {}
        return freeSpace() == space;
    }

    bool empty() const { return QFile::remove(ballast()); }

private:
    Q_DISABLE_COPY(SmallDisk)

    /// Whether something can be mounted from now on.
    static bool enterNamespace()
    {
        const QByteArray user = QByteArray::number(getuid());
        const QByteArray group = QByteArray::number(getgid());
        if (unshare(CLONE_NEWNS) != 0
            && (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0
                || !writeFile(QStringLiteral("/proc/self/setgroups"), "deny")
                || !writeFile(QStringLiteral("/proc/self/uid_map"), user + ' ' + user + " 1")
                || !writeFile(QStringLiteral("/proc/self/gid_map"), group + ' ' + group + " 1"))) {
            return false;
        }
        if (mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
            return false;
        const SmallDisk probe;
        return probe.isThere();
    }

    const QString m_counted; ///< empty if it is mounted
    QTemporaryDir m_folder;
    bool m_isThere = false;
};
