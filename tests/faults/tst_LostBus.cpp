// Hosts without a session bus, with one that says nothing, and with one that goes.

#include "HostUnderFault.h"
#include "WindowProperties.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <csignal>
#include <memory>
#include <vector>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

/// A socket that takes connections and never says a word; with \a full it doesn't even take them.
class MuteBus
{
public:
    MuteBus(const QString& path, bool full)
        : m_socket(::socket(AF_UNIX, SOCK_STREAM, 0))
    {
        const QByteArray name = QFile::encodeName(path);
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        qstrncpy(address.sun_path, name.constData(), sizeof address.sun_path);
        const auto* generic = reinterpret_cast<const sockaddr*>(&address);
        m_isUp =
            bind(m_socket, generic, sizeof address) == 0 && listen(m_socket, full ? 0 : 50) == 0;
        while (full) {
            const int client = ::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK, 0);
            m_clients.push_back(client);
            full = connect(client, generic, sizeof address) == 0;
        }
    }
    ~MuteBus()
    {
        for (const int client : m_clients)
            ::close(client);
        ::close(m_socket);
    }

    bool isUp() const { return m_isUp; }

private:
    Q_DISABLE_COPY(MuteBus)

    const int m_socket;
    bool m_isUp = false;
    std::vector<int> m_clients;
};

/// A bus of its own.
class Bus
{
public:
    explicit Bus(const QString& socket)
    {
        m_daemon.start(QStringLiteral("dbus-daemon"),
                       {QStringLiteral("--session"), QStringLiteral("--nofork"),
                        QStringLiteral("--print-address"),
                        QStringLiteral("--address=unix:path=") + socket});
        m_daemon.waitForReadyRead(60000);
    }
    ~Bus() { end(); }

    void stop() { ::kill(pid_t(m_daemon.processId()), SIGSTOP); }
    void end()
    {
        m_daemon.kill();
        m_daemon.waitForFinished();
    }

private:
    QProcess m_daemon;
};

/// The host's window, once the window manager has got it, or 0.
WId windowOf(const HostUnderFault& host)
{
    const QString process = QStringLiteral("= %1\n").arg(host.processId());
    const QList<WId> windows = stacking();
    for (const WId window : windows) {
        if (windowProperty(window, "_NET_WM_PID").endsWith(process)
            && managerState(window) == QLatin1String("Normal"))
            return window;
    }
    return 0;
}

} // namespace

class tst_LostBus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void the_host_runs_without_a_bus_data();
    void the_host_runs_without_a_bus();
    void a_bus_that_says_nothing_is_none_data();
    void a_bus_that_says_nothing_is_none();
    void the_bus_may_go();

private:
    QString path(const QString& name) const { return m_dir->filePath(name); }
    void set(const char* variable, const QString& value)
    {
        if (value.isNull())
            m_environment.remove(QLatin1String(variable));
        else
            m_environment.insert(QLatin1String(variable), value);
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    QProcessEnvironment m_environment;
};

void tst_LostBus::init()
{
    // Not by the test's name: a socket's path is short.
    m_dir = std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/XXXXXX"));
    m_environment = QProcessEnvironment::systemEnvironment();
}

void tst_LostBus::the_host_runs_without_a_bus_data()
{
    QTest::addColumn<QString>("address");
    QTest::newRow("no address") << QString();
    QTest::newRow("an empty address") << "";
    QTest::newRow("switched off") << "disabled:";
    QTest::newRow("an address that makes no sense") << "nonsense";
    QTest::newRow("a bus that isn't there") << "unix:path=%1/none";
}

void tst_LostBus::the_host_runs_without_a_bus()
{
    QFETCH(QString, address);
    set("DBUS_SESSION_BUS_ADDRESS", address.replace(QStringLiteral("%1"), m_dir->path()));
    set("XDG_RUNTIME_DIR", m_dir->path());

    // Without arguments of its own it waits for those that are handed over.
    HostUnderFault host(QStringLiteral(SAMPLE_HOST), {}, m_environment);
    QTRY_VERIFY_WITH_TIMEOUT(windowOf(host) != 0, 60000);
    Taskbar().requestClose(windowOf(host));
    QCOMPARE(host.exitCode(), 0);
}

void tst_LostBus::a_bus_that_says_nothing_is_none_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("it takes connections") << "mute";
    QTest::newRow("it takes no more connections") << "full";
    QTest::newRow("it has been stopped") << "stopped";
}

void tst_LostBus::a_bus_that_says_nothing_is_none()
{
    QFETCH(QString, kind);
    const QString socket = path(QStringLiteral("bus"));
    std::unique_ptr<MuteBus> mute;
    std::unique_ptr<Bus> bus;
    if (kind == QLatin1String("stopped")) {
        bus = std::make_unique<Bus>(socket);
        bus->stop();
    } else {
        mute = std::make_unique<MuteBus>(socket, kind == QLatin1String("full"));
        QVERIFY(mute->isUp());
    }
    set("DBUS_SESSION_BUS_ADDRESS", QStringLiteral("unix:path=") + socket);
    set("QT_QPA_PLATFORM", QStringLiteral("offscreen")); // of Qt's platforms others use the bus too

    HostUnderFault host(QStringLiteral(SETTINGS_HOST), {QStringLiteral("hand-over")},
                        m_environment);
    QCOMPARE(host.nextLine(), QStringLiteral("begins"));
    QElapsedTimer timer;
    timer.start();
    QCOMPARE(host.nextLine(), QStringLiteral("goes on"));
    QVERIFY2(timer.elapsed() < 30000, qPrintable(QString::number(timer.elapsed())));
    QCOMPARE(host.exitCode(), 0);
    QCOMPARE(host.errors(), QString());
}

void tst_LostBus::the_bus_may_go()
{
    const QString socket = path(QStringLiteral("bus"));
    Bus bus(socket);
    set("DBUS_SESSION_BUS_ADDRESS", QStringLiteral("unix:path=") + socket);
    HostUnderFault host(QStringLiteral(SAMPLE_HOST), {}, m_environment);
    QTRY_VERIFY_WITH_TIMEOUT(windowOf(host) != 0, 60000);

    bus.end();

    Taskbar().requestClose(windowOf(host));
    QCOMPARE(host.exitCode(), 0);
}

QTEST_GUILESS_MAIN(tst_LostBus)

#include "tst_LostBus.moc"
