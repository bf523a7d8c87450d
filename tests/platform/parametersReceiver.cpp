// An application that takes a command line that is handed over. It says "READY" on the bus when its
// handler stands, and at "REPORT", or when the bus goes, or at once without a bus, it writes what
// it has received into a file in the folder RECEIVED: each word, ended by a zero byte.

#include "ApplicationParametersHandler.h"
#include "CommonConstants.h"
#include "linux/Notifications_p.h"
#include "linux/SessionBus_p.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSaveFile>

namespace Platform = VEK_NAMESPACE::Platform;

namespace {

/// Appears with all of its content at once.
int report(const CApplicationParametersHandler_Abstract& handler)
{
    const QString name = QString::number(QCoreApplication::applicationPid());
    QSaveFile file(QDir(QFile::decodeName(qgetenv("RECEIVED"))).filePath(name));
    QByteArray words;
    for (const QString& word : handler.receivedArguments())
        words += word.toUtf8() + '\0';
    const bool written =
        file.open(QIODevice::WriteOnly) && file.write(words) == words.size() && file.commit();
    return written ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    const std::unique_ptr<Platform::Observer> request = Platform::observeNotification(
        QStringLiteral("REPORT"), [](const QString&) { QCoreApplication::quit(); });
    const CApplicationParametersHandler_Abstract handler(argc, argv);
    if (!request)
        return report(handler);

    // So that it outlives no test.
    Platform::sessionBus()->connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                                    QStringLiteral("org.freedesktop.DBus.Local"),
                                    QStringLiteral("Disconnected"), QCoreApplication::instance(),
                                    SLOT(quit()));
    Platform::postNotification(QStringLiteral("READY"), QString());
    QCoreApplication::exec();
    return report(handler);
}
