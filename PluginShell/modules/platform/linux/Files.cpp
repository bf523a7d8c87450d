#include "CommonConstants.h"
#include "PlatformServices_p.h"
#include "SessionBus_p.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>

#include <memory>

#include <fcntl.h>
#include <gio/gio.h>
#include <sys/stat.h>

namespace VEK_NAMESPACE {
namespace Platform {

namespace {

struct ObjectDeleter
{
    void operator()(void* object) const { g_object_unref(object); }
};
using FilePointer = std::unique_ptr<GFile, ObjectDeleter>;
using FileInfoPointer = std::unique_ptr<GFileInfo, ObjectDeleter>;

/// A local file; the default would ask services that may have to be started.
FilePointer localFile(const QString& path)
{
    const QByteArray name = QFile::encodeName(QFileInfo(path).absoluteFilePath());
    return FilePointer(g_vfs_get_file_for_path(g_vfs_get_local(), name.constData()));
}

void openFolderOf(const QUrl& file)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(QFileInfo(file.toLocalFile()).absolutePath()));
}

} // namespace

bool removeFile(const QString& path)
{
    return QFile::remove(path);
}

bool hasTrash(const QString& file)
{
    const FileInfoPointer info(
        g_file_query_info(localFile(file).get(), G_FILE_ATTRIBUTE_ACCESS_CAN_TRASH,
                          G_FILE_QUERY_INFO_NOFOLLOW_SYMLINKS, nullptr, nullptr));
    return info && g_file_info_get_attribute_boolean(info.get(), G_FILE_ATTRIBUTE_ACCESS_CAN_TRASH);
}

bool moveToTrash(const QString& file)
{
    return g_file_trash(localFile(file).get(), nullptr, nullptr);
}

void showInFileManager(const QList<QUrl>& files)
{
    if (files.isEmpty())
        return;
    const QUrl& first = files.first();
    const std::optional<QDBusConnection> bus = sessionBus();
    if (!bus) {
        openFolderOf(first);
        return;
    }

    QStringList addresses;
    for (const QUrl& file : files)
        addresses << QString::fromLatin1(file.toEncoded(QUrl::FullyEncoded));
    const QString name = QStringLiteral("org.freedesktop.FileManager1");
    QDBusMessage call = QDBusMessage::createMethodCall(
        name, QStringLiteral("/org/freedesktop/FileManager1"), name, QStringLiteral("ShowItems"));
    call << addresses << QString();

    const QDBusPendingCall pending = bus->asyncCall(call);
    if (pending.isError()) { // then no answer will ever come
        openFolderOf(first);
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(pending);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, first] {
        if (watcher->isError())
            openFolderOf(first);
        watcher->deleteLater();
    });
}

QDateTime creationTime(const QString& file)
{
    struct statx status = {};
    if (statx(AT_FDCWD, QFile::encodeName(file).constData(), AT_SYMLINK_NOFOLLOW, STATX_BTIME,
              &status)
            != 0
        || !(status.stx_mask & STATX_BTIME)) {
        return {};
    }
    return QDateTime::fromMSecsSinceEpoch(qint64(status.stx_btime.tv_sec) * 1000);
}

} // namespace Platform
} // namespace VEK_NAMESPACE
