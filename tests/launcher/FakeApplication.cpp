// An application that is handed its command line: it announces itself, waits for the answer, and
// leaves what it saw in the folder FAKE_RECORD. FAKE_MANNER chooses what it does otherwise than by
// the book: "cued" announces itself at the notification "CUE" only, "keeps" doesn't delete the
// file.

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QFile>
#include <QSaveFile>

#include <sys/stat.h>

namespace {

const QLatin1String objectPath("/com/vek/krnv3");
const QLatin1String interfaceName("com.vek.krnv3.DistributedNotifications");

/// Appears with all of its content at once.
void record(const char* name, const QByteArray& content)
{
    QSaveFile file(QDir(QFile::decodeName(qgetenv("FAKE_RECORD"))).filePath(QLatin1String(name)));
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.commit())
        qFatal("cannot write the record %s", name);
}

} // namespace

class FakeApplication : public QObject
{
    Q_OBJECT

public:
    FakeApplication()
    {
        m_bus.connect(QString(), objectPath, interfaceName, QStringLiteral("CMD_LINE_ARGSkrnv3"),
                      this, SLOT(onArguments(QString)));
        m_bus.connect(QString(), objectPath, interfaceName, QStringLiteral("CUE"), this,
                      SLOT(announce()));
        // Nobody waits for a detached process; it goes with its test's bus.
        m_bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                      QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"),
                      QCoreApplication::instance(), SLOT(quit()));
        // Any answer of the bus shows that it has got the subscriptions.
        m_bus.interface()->serviceOwner(m_bus.baseService());

        record("started",
               QByteArray::number(QCoreApplication::arguments().size()) + " words in "
                   + QFile::encodeName(QDir::currentPath()));
        if (m_manner != "cued")
            announce();
    }

private Q_SLOTS:
    void announce()
    {
        QDBusMessage message = QDBusMessage::createSignal(
            objectPath, interfaceName, QStringLiteral("APP_CAN_HANDLE_CMD_LINE_ARGSkrnv3"));
        m_bus.send(message << QStringLiteral("F0E1D2C3-0000-4000-8000-A0B1C2D3E4F5"));
    }

    void onArguments(const QString& path)
    {
        if (!path.isEmpty())
            take(QFile::encodeName(path));
        // The last record: with it the others are complete.
        record("answer", QFile::encodeName(path));
        if (!path.isEmpty() && m_manner != "keeps")
            QFile::remove(path);
        QCoreApplication::quit();
    }

private:
    static void take(const QByteArray& path)
    {
        struct stat status = {};
        if (stat(path.constData(), &status) == 0)
            record("permissions", QByteArray::number(status.st_mode & 07777, 8));
        QFile file(QFile::decodeName(path));
        if (file.open(QIODevice::ReadOnly))
            record("contents", file.readAll());
    }

    const QByteArray m_manner = qgetenv("FAKE_MANNER");
    QDBusConnection m_bus = QDBusConnection::sessionBus();
};

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const FakeApplication fake;
    return QCoreApplication::exec();
}

#include "FakeApplication.moc"
