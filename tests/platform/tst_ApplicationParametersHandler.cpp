#include "Files.h"

#include <gio/gio.h>

#include "ApplicationParametersHandler.h"
#include "CommonConstants.h"
#include "CurrentFolder.h"
#include "MessageCounter.h"
#include "OrdinaryFileRights.h"
#include "RecordingLogger.h"
#include "linux/SessionBus_p.h"

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <csignal>
#include <memory>
#include <mutex>
#include <type_traits>
#include <vector>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

using Handler = CApplicationParametersHandler_Abstract;

static_assert(std::has_virtual_destructor<Handler>::value, "it is meant to be derived from");
static_assert(!std::is_abstract<Handler>::value, "in spite of its name");

namespace {

const QString announcement = QStringLiteral("APP_CAN_HANDLE_CMD_LINE_ARGSkrnv3");
const QString answer = QStringLiteral("CMD_LINE_ARGSkrnv3");
const QString objectPath = QStringLiteral("/com/vek/krnv3");
const QString interfaceName = QStringLiteral("com.vek.krnv3.DistributedNotifications");

char program[] = "program";
char* programOnly[] = {program, nullptr};

/// An answer of the bus comes after all that it passed on before.
void roundTrip(const QDBusConnection& bus)
{
    (void)bus.interface()->serviceOwner(bus.baseService()).value();
}

/// What has been sent waits in this process's event queue from now on.
void letMessagesArrive()
{
    roundTrip(QDBusConnection::sessionBus());
    roundTrip(VEK_NAMESPACE::Platform::sessionBus().value());
}

void letMessagesBeHandled()
{
    letMessagesArrive();
    QCoreApplication::processEvents();
}

QDBusMessage notification(const QString& name, const QString& text = QString())
{
    return QDBusMessage::createSignal(objectPath, interfaceName, name) << text;
}

void send(const QDBusMessage& message)
{
    QVERIFY(QDBusConnection::sessionBus().send(message));
}

void sendAnswer(const QString& path)
{
    send(notification(answer, path));
}

bool exists(const QString& path)
{
    struct stat status = {};
    return lstat(QFile::encodeName(path).constData(), &status) == 0;
}

/// The program's path, which stands before what has been received.
QStringList commandLine(const QStringList& arguments)
{
    return QStringList(QCoreApplication::applicationFilePath()) + arguments;
}

bool isUuid(const QString& text)
{
    static const QRegularExpression form(
        QStringLiteral("\\A[0-9A-F]{8}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{4}-[0-9A-F]{12}\\z"));
    return form.match(text).hasMatch();
}

bool hasEnded(QProcess& process)
{
    return process.state() == QProcess::NotRunning || process.waitForFinished();
}

/// A second bus while it lives.
class PrivateBus
{
public:
    /// \a socket is in the notation of bus addresses.
    explicit PrivateBus(const QString& socket)
    {
        m_process.start(QStringLiteral("dbus-daemon"),
                        {QStringLiteral("--session"), QStringLiteral("--nofork"),
                         QStringLiteral("--print-address"),
                         QStringLiteral("--address=unix:path=") + socket});
        m_process.waitForReadyRead(30000);
    }

    ~PrivateBus() { end(); }

    void end()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    QProcess m_process;
};

/// The session's bus has another address while it lives.
class BusAddress
{
public:
    explicit BusAddress(const QString& address)
        : m_previous(qgetenv("DBUS_SESSION_BUS_ADDRESS"))
    {
        qputenv("DBUS_SESSION_BUS_ADDRESS", QFile::encodeName(address));
    }
    ~BusAddress() { qputenv("DBUS_SESSION_BUS_ADDRESS", m_previous); }

private:
    Q_DISABLE_COPY(BusAddress)

    const QByteArray m_previous;
};

/// The processes that have \a variable in their environment.
std::vector<pid_t> processesWith(const QByteArray& variable)
{
    std::vector<pid_t> processes;
    const QStringList entries = QDir(QStringLiteral("/proc")).entryList(QDir::Dirs);
    for (const QString& entry : entries) {
        QFile environment(QStringLiteral("/proc/%1/environ").arg(entry));
        if (environment.open(QIODevice::ReadOnly)
            && environment.readAll().split('\0').contains(variable)) {
            processes.push_back(entry.toInt());
        }
    }
    return processes;
}

/// All that passes over the bus, from everybody, in the bus's order.
class BusMonitor
{
public:
    BusMonitor()
        : m_connection(g_dbus_connection_new_for_address_sync(
            qgetenv("DBUS_SESSION_BUS_ADDRESS").constData(),
            GDBusConnectionFlags(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
                                 | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, nullptr))
    {
        GVariant* reply = g_dbus_connection_call_sync(
            m_connection, "org.freedesktop.DBus", "/org/freedesktop/DBus",
            "org.freedesktop.DBus.Monitoring", "BecomeMonitor", g_variant_new("(asu)", nullptr, 0),
            nullptr, G_DBUS_CALL_FLAGS_NONE, -1, nullptr, nullptr);
        if (!reply)
            qFatal("the bus can't be watched");
        g_variant_unref(reply);
        m_filter = g_dbus_connection_add_filter(m_connection, look, this, nullptr);
    }

    ~BusMonitor()
    {
        g_dbus_connection_close_sync(m_connection, nullptr, nullptr);
        g_dbus_connection_remove_filter(m_connection, m_filter);
        g_object_unref(m_connection);
    }

    /// Waits until \a last has passed; what has passed before it.
    QStringList linesBefore(const QString& last)
    {
        QStringList lines;
        const bool passed = QTest::qWaitFor(
            [&] {
                const std::lock_guard<std::mutex> lock(m_mutex);
                lines = m_lines;
                return lines.contains(last);
            },
            30000);
        return passed ? lines.mid(0, lines.indexOf(last)) : lines << last + " is missing";
    }

private:
    Q_DISABLE_COPY(BusMonitor)

    /// Any thread.
    static GDBusMessage* look(GDBusConnection*, GDBusMessage* message, gboolean, void* data)
    {
        const QString member = QString::fromUtf8(g_dbus_message_get_member(message));
        const QString text = QString::fromUtf8(g_dbus_message_get_arg0(message));
        const QString interface = QString::fromUtf8(g_dbus_message_get_interface(message));
        QString line;
        if (interface == interfaceName)
            line = QStringLiteral("message ") + member;
        else if (member.endsWith(QLatin1String("Match")))
            line = member + (text.contains(answer) ? " of answers" : " of others");
        if (!line.isEmpty()) {
            auto* self = static_cast<BusMonitor*>(data);
            const std::lock_guard<std::mutex> lock(self->m_mutex);
            self->m_lines << line;
        }
        g_object_unref(message);
        return nullptr;
    }

    GDBusConnection* m_connection;
    guint m_filter = 0;
    std::mutex m_mutex;
    QStringList m_lines;
};

} // namespace

/// The notifications that reach another process of the user.
class Witness : public QObject
{
    Q_OBJECT

public:
    explicit Witness(const QDBusConnection& bus = QDBusConnection::sessionBus())
        : m_bus(bus)
    {
        m_bus.connect(QString(), QString(), interfaceName, QString(), this,
                      SLOT(onMessage(QDBusMessage)));
        roundTrip(m_bus);
    }

    const QList<QDBusMessage>& messages() const { return m_messages; }

    QStringList names() const
    {
        QStringList names;
        for (const QDBusMessage& message : m_messages)
            names << message.member();
        return names;
    }

    QStringList texts(const QString& name) const
    {
        QStringList texts;
        for (const QDBusMessage& message : m_messages) {
            if (message.member() == name)
                texts << message.arguments().value(0).toString();
        }
        return texts;
    }

private Q_SLOTS:
    void onMessage(const QDBusMessage& message) { m_messages << message; }

private:
    QDBusConnection m_bus;
    QList<QDBusMessage> m_messages;
};

class tst_ApplicationParametersHandler : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void announcesItself();
    void eachHandlerHasAnIdentityOfItsOwn();
    void argumentsOfItsOwnKeepItOut_data();
    void argumentsOfItsOwnKeepItOut();
    void listensBeforeItAnnouncesItself();
    void takesTheArguments_data();
    void takesTheArguments();
    void takesManyArguments();
    void findsTheFileByAnyPath_data();
    void findsTheFileByAnyPath();
    void fileThatCannotBeDeletedIsReadAllTheSame();
    void linkIsDeletedAndNotItsTarget();
    void answerWithoutArgumentsEndsListening_data();
    void answerWithoutArgumentsEndsListening();
    void secondAnswerIsIgnored();
    void answersInOneRushGiveOneList();
    void onlyAnAnswerIsAnAnswer_data();
    void onlyAnAnswerIsAnAnswer();
    void answersComeFromAnyProcess();
    void twoHandlersAtOnce();

    void endsListeningOnRequest();
    void answerThatWaitsWhenListeningEndsIsLeft();
    void receivedArgumentsStayWhenListeningEnds();
    void destructionEndsListening();
    void answerThatWaitsAtDestructionIsLeft();

    void argumentsCanBeSet();
    void theListIsOne();

    void processTakesTheArguments();
    void processWithArgumentsIsNotHandedAny();
    void oneOfTwoProcessesTakesTheArguments();
    void runtimeFoldersBusWillDo_data();
    void runtimeFoldersBusWillDo();
    void aBusThatIsListedWillDo_data();
    void aBusThatIsListedWillDo();
    void aBusMayComeLater_data();
    void aBusMayComeLater();
    void aBusMayComeAgain();
    void busMayGo();
    void withoutABusNothingHappens_data();
    void withoutABusNothingHappens();
#ifdef LAUNCHER
    void launcherHandsOver_data();
    void launcherHandsOver();
    void launcherWithoutArgumentsEndsListening();
#endif

private:
    QString path(const QString& name) const
    {
        return m_folder->filePath(name);
    }
    QString write(const QString& name, const QByteArray& content) const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write %s", qPrintable(file.fileName()));
        return file.fileName();
    }

    QProcess& startReceiver(const QStringList& arguments = QStringList());
    void prepareStarters();
    /// What receivers started from now on start themselves.
    bool hasStarted() const
    {
        return exists(path(QStringLiteral("bus started")));
    }
    /// What the receivers have received, sorted.
    QList<QByteArray> received() const
    {
        QList<QByteArray> contents;
        const QDir folder(path(QStringLiteral("received")));
        const QStringList names = folder.entryList({QStringLiteral("*[0-9]")}, QDir::Files);
        for (const QString& name : names)
            contents << readFile(folder.filePath(name));
        std::sort(contents.begin(), contents.end());
        return contents;
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QProcessEnvironment m_environment;
    std::vector<std::unique_ptr<QProcess>> m_processes;
    std::unique_ptr<MessageCounter> m_messages;
    std::unique_ptr<RecordingLogger> m_logger;
};

void tst_ApplicationParametersHandler::initTestCase()
{
    QVERIFY(QDBusConnection::sessionBus().isConnected());
}

void tst_ApplicationParametersHandler::init()
{
    // Not by the test's name: a socket's path is short.
    m_folder = std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/XXXXXX"));
    QVERIFY(m_folder->isValid());
    for (const char* folder : {"received", "runtime", "bin"})
        QVERIFY(QDir(m_folder->path()).mkdir(QLatin1String(folder)));
    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.insert(QStringLiteral("RECEIVED"), path(QStringLiteral("received")));
    m_messages = std::make_unique<MessageCounter>();
    m_logger = std::make_unique<RecordingLogger>();
}

void tst_ApplicationParametersHandler::cleanup()
{
    // Whatever happens, nothing is said.
    const QStringList lines = m_logger->takeLines();
    const int messages = m_messages->count();
    m_logger.reset();
    m_messages.reset();
    for (const auto& process : m_processes)
        process->kill();
    m_processes.clear();
    QCOMPARE(lines, QStringList());
    QCOMPARE(messages, 0);
}

QProcess& tst_ApplicationParametersHandler::startReceiver(const QStringList& arguments)
{
    m_processes.push_back(std::make_unique<QProcess>());
    QProcess& process = *m_processes.back();
    process.setProcessEnvironment(m_environment);
    process.start(QStringLiteral(RECEIVER), arguments);
    return process;
}

/// Programs that would be run for a bus: one that libraries look for when there is a display, and
/// one that an address may name, "bin/bridge".
void tst_ApplicationParametersHandler::prepareStarters()
{
    const QByteArray script = "#!/bin/sh\n: >'" + QFile::encodeName(path("bus started")) + "'\n";
    for (const char* name : {"bin/dbus-launch", "bin/bridge"}) {
        if (!QFile::setPermissions(write(QLatin1String(name), script),
                                   QFile::ReadOwner | QFile::ExeOwner))
            qFatal("cannot make %s a program", name);
    }
    m_environment.insert(QStringLiteral("PATH"),
                         path(QStringLiteral("bin:"))
                             + m_environment.value(QStringLiteral("PATH")));
    m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));
}

void tst_ApplicationParametersHandler::announcesItself()
{
    const Witness witness;

    const Handler handler(1, programOnly);

    QTRY_COMPARE(witness.names(), QStringList({announcement}));
    const QDBusMessage message = witness.messages().first();
    QCOMPARE(message.type(), QDBusMessage::SignalMessage);
    QCOMPARE(message.path(), QStringLiteral("/com/vek/krnv3"));
    QCOMPARE(message.interface(), QStringLiteral("com.vek.krnv3.DistributedNotifications"));
    QCOMPARE(message.signature(), QStringLiteral("s"));
    const QString identity = message.arguments().constFirst().toString();
    QVERIFY2(isUuid(identity), qPrintable(identity));
    QCOMPARE(handler.receivedArguments(), QStringList());
}

void tst_ApplicationParametersHandler::eachHandlerHasAnIdentityOfItsOwn()
{
    const Witness witness;
    constexpr int count = 20;

    std::vector<std::unique_ptr<Handler>> handlers;
    for (int i = 0; i < count; ++i)
        handlers.push_back(std::make_unique<Handler>(1, programOnly));

    QTRY_COMPARE(witness.names().count(announcement), count);
    QStringList identities = witness.texts(announcement);
    for (const QString& identity : qAsConst(identities))
        QVERIFY2(isUuid(identity), qPrintable(identity));
    QCOMPARE(identities.removeDuplicates(), 0);
}

void tst_ApplicationParametersHandler::argumentsOfItsOwnKeepItOut_data()
{
    QTest::addColumn<int>("argc");

    QTest::newRow("one") << 2;
    QTest::newRow("several") << 5;
    QTest::newRow("not even a program") << 0;
    QTest::newRow("a negative count") << -1;
}

void tst_ApplicationParametersHandler::argumentsOfItsOwnKeepItOut()
{
    QFETCH(int, argc);
    const QString file = write(QStringLiteral("file"), "a\n");
    const Witness witness;

    const Handler handler(argc, nullptr); // which isn't read
    sendAnswer(file);
    letMessagesBeHandled();
    handler.onArgumentsProcessed();
    letMessagesBeHandled();

    QTRY_VERIFY(witness.names().contains(answer));
    QCOMPARE(witness.names(), QStringList({answer}));
    QCOMPARE(handler.receivedArguments(), QStringList());
    QCOMPARE(readFile(file), QByteArray("a\n"));
}

void tst_ApplicationParametersHandler::listensBeforeItAnnouncesItself()
{
    BusMonitor monitor;

    const Handler handler(1, nullptr);

    QVERIFY(monitor.linesBefore(QStringLiteral("message ") + announcement)
                .contains(QStringLiteral("AddMatch of answers")));
}

void tst_ApplicationParametersHandler::takesTheArguments_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("arguments");

    const auto addRow = [](const char* title, const QByteArray& content,
                           const QStringList& arguments) {
        QTest::newRow(title) << content << arguments;
    };
    addRow("an empty line is dropped", "a\n\nb\n", {"a", "b"});
    addRow("the last line feed may be missing", "a\nb", {"a", "b"});
    addRow("a carriage return stays", "a\r\nb\n", {"a\r", "b"});
    addRow("in their order", "b\na\nb\n", {"b", "a", "b"});
    addRow("spaces and options stay", " \n--help\n-x y\n", {" ", "--help", "-x y"});
    addRow("beyond ASCII", QByteArray("ä\n日本\n📷\n"),
           {QString::fromUtf8("ä"), QString::fromUtf8("日本"), QString::fromUtf8("📷")});
    addRow("an argument ends at a zero byte", QByteArray("a\0b\nc\n", 6), {"a", "c"});
}

void tst_ApplicationParametersHandler::takesTheArguments()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, arguments);
    const QString file = write(QStringLiteral("file"), content);
    const Handler handler(1, programOnly);
    const QStringList& received = handler.receivedArguments();

    sendAnswer(file);

    QTRY_COMPARE(received, commandLine(arguments));
    QVERIFY(!exists(file));
}

void tst_ApplicationParametersHandler::takesManyArguments()
{
    QByteArray content;
    for (int i = 1; i <= 100000; ++i)
        content += QByteArray::number(i) + '\n';
    const QString file = write(QStringLiteral("file"), content);
    const Handler handler(1, programOnly);

    sendAnswer(file);

    QTRY_COMPARE(handler.receivedArguments().size(), 100001);
    QCOMPARE(handler.receivedArguments().at(1), QStringLiteral("1"));
    QCOMPARE(handler.receivedArguments().last(), QStringLiteral("100000"));
    QVERIFY(!exists(file));
}

void tst_ApplicationParametersHandler::findsTheFileByAnyPath_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("path");

    QTest::newRow("a full path") << "file"
                                 << "%1/file";
    QTest::newRow("a path from the current folder") << "file"
                                                    << "file";
    QTest::newRow("spaces and signs") << "a #%20?*;\"'"
                                      << "%1/a #%20?*;\"'";
    QTest::newRow("beyond ASCII") << QString::fromUtf8("ä 日本") << QString::fromUtf8("%1/ä 日本");
}

void tst_ApplicationParametersHandler::findsTheFileByAnyPath()
{
    QFETCH(QString, name);
    QFETCH(QString, path);
    const CurrentFolder current(m_folder->path());
    const QString file = write(name, "a\n");
    const Handler handler(1, programOnly);

    sendAnswer(path.replace(QStringLiteral("%1"), m_folder->path()));

    QTRY_COMPARE(handler.receivedArguments(), commandLine({"a"}));
    QVERIFY(!exists(file));
}

void tst_ApplicationParametersHandler::fileThatCannotBeDeletedIsReadAllTheSame()
{
    const QString file = write(QStringLiteral("runtime/file"), "a\n");
    QVERIFY(
        QFile::setPermissions(path(QStringLiteral("runtime")), QFile::ReadOwner | QFile::ExeOwner));
    const Handler handler(1, programOnly);

    sendAnswer(file);

    QTRY_COMPARE(handler.receivedArguments(), commandLine({"a"}));
    QVERIFY(exists(file));
    QVERIFY(QFile::setPermissions(path(QStringLiteral("runtime")),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void tst_ApplicationParametersHandler::linkIsDeletedAndNotItsTarget()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    const QString link = path(QStringLiteral("link"));
    QVERIFY(QFile::link(file, link));
    const Handler handler(1, programOnly);

    sendAnswer(link);

    QTRY_COMPARE(handler.receivedArguments(), commandLine({"a"}));
    QVERIFY(!exists(link));
    QCOMPARE(readFile(file), QByteArray("a\n"));
}

void tst_ApplicationParametersHandler::answerWithoutArgumentsEndsListening_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("stays");

    QTest::newRow("no path") << "" << false;
    QTest::newRow("a missing file") << "missing" << false;
    QTest::newRow("a file in a missing folder") << "missing/file" << false;
    QTest::newRow("an empty file") << "empty" << false;
    QTest::newRow("only empty lines") << "lines" << false;
    QTest::newRow("text that isn't UTF-8") << "latin1" << false;
    QTest::newRow("text that isn't UTF-8 in its last line") << "truncated" << false;
    QTest::newRow("a file that mustn't be read") << "unreadable" << false;
    QTest::newRow("a pipe that nobody writes to") << "pipe" << false;
    QTest::newRow("a link to nothing") << "dangling" << false;
    QTest::newRow("a folder with something in it, which stays") << "received" << true;
    QTest::newRow("an empty folder, which stays") << "runtime" << true;
}

void tst_ApplicationParametersHandler::answerWithoutArgumentsEndsListening()
{
    QFETCH(QString, name);
    QFETCH(bool, stays);
    write(QStringLiteral("empty"), "");
    write(QStringLiteral("lines"), "\n\n\n");
    write(QStringLiteral("latin1"), "\xE4\n");
    write(QStringLiteral("truncated"), "a\nb\xC3");
    QVERIFY(QFile::setPermissions(write(QStringLiteral("unreadable"), "a\n"), QFile::WriteOwner));
    const QString pipe = path(QStringLiteral("pipe"));
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QVERIFY(QFile::link(QStringLiteral("nothing"), path(QStringLiteral("dangling"))));
    const QString inFolder = write(QStringLiteral("received/file"), "a\n");
    const QString second = write(QStringLiteral("second"), "second\n");
    const Handler handler(1, programOnly);

    sendAnswer(name.isEmpty() ? name : path(name));
    letMessagesBeHandled();
    QCOMPARE(handler.receivedArguments(), QStringList());
    if (!name.isEmpty())
        QCOMPARE(exists(path(name)), stays);
    QVERIFY(exists(inFolder));

    sendAnswer(second);
    letMessagesBeHandled();
    QCOMPARE(handler.receivedArguments(), QStringList());
    QVERIFY(exists(second));
}

void tst_ApplicationParametersHandler::secondAnswerIsIgnored()
{
    const QString second = write(QStringLiteral("second"), "second\n");
    const Handler handler(1, programOnly);
    sendAnswer(write(QStringLiteral("first"), "first\n"));
    QTRY_COMPARE(handler.receivedArguments(), commandLine({"first"}));

    sendAnswer(second);
    letMessagesBeHandled();

    QCOMPARE(handler.receivedArguments(), commandLine({"first"}));
    QCOMPARE(readFile(second), QByteArray("second\n"));
}

void tst_ApplicationParametersHandler::answersInOneRushGiveOneList()
{
    const QString first = write(QStringLiteral("first"), "first\n");
    const QString second = write(QStringLiteral("second"), "second\n");
    const Handler handler(1, programOnly);

    sendAnswer(first);
    sendAnswer(second);
    letMessagesBeHandled();

    QCOMPARE(handler.receivedArguments(), commandLine({"first"}));
    QVERIFY(!exists(first));
    QVERIFY(exists(second));
}

void tst_ApplicationParametersHandler::onlyAnAnswerIsAnAnswer_data()
{
    QTest::addColumn<QString>("object");
    QTest::addColumn<QString>("interface");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QVariantList>("contents");

    const QString file = QStringLiteral("%1/other"); // the name of a file
    const auto addContents = [](const char* title, const QVariantList& contents) {
        QTest::newRow(title) << objectPath << interfaceName << answer << contents;
    };
    addContents("one without a text isn't", {});
    addContents("one with two texts isn't", {file, file});
    addContents("one with a text and a number isn't", {file, 1});
    addContents("one with a number isn't", {1});
    addContents("one with a list of texts isn't", {QStringList(file)});
    addContents("one with bytes isn't", {QByteArray("file")});
    addContents("one with an object's path isn't",
                {QVariant::fromValue(QDBusObjectPath(QStringLiteral("/file")))});
    addContents("one with a variant isn't", {QVariant::fromValue(QDBusVariant(file))});

    const QVariantList text{file};
    QTest::newRow("one of another object isn't")
        << "/com/vek/krnv4" << interfaceName << answer << text;
    QTest::newRow("one of another interface isn't")
        << objectPath << "com.vek.krnv3.Notifications" << answer << text;
    QTest::newRow("one of another name isn't")
        << objectPath << interfaceName << "CMD_LINE_ARGSkrnv2" << text;
    QTest::newRow("an announcement isn't") << objectPath << interfaceName << announcement << text;
}

void tst_ApplicationParametersHandler::onlyAnAnswerIsAnAnswer()
{
    QFETCH(QString, object);
    QFETCH(QString, interface);
    QFETCH(QString, name);
    QFETCH(QVariantList, contents);
    const QString file = write(QStringLiteral("file"), "a\n");
    const QString other = write(QStringLiteral("other"), "other\n");
    for (QVariant& content : contents) {
        if (content.type() == QVariant::String)
            content = content.toString().arg(m_folder->path());
    }
    const Handler handler(1, programOnly);

    QDBusMessage message = QDBusMessage::createSignal(object, interface, name);
    message.setArguments(contents);
    send(message);
    letMessagesBeHandled();
    QCOMPARE(handler.receivedArguments(), QStringList());
    QVERIFY(exists(other));

    sendAnswer(file);
    letMessagesBeHandled();
    QCOMPARE(handler.receivedArguments(), commandLine({"a"}));
}

void tst_ApplicationParametersHandler::answersComeFromAnyProcess()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    const Handler handler(1, programOnly);

    QProcess sender;
    sender.start(QStringLiteral("dbus-send"),
                 {QStringLiteral("--session"), objectPath, interfaceName + '.' + answer,
                  QStringLiteral("string:") + file});
    QVERIFY(hasEnded(sender));

    QTRY_COMPARE(handler.receivedArguments(), commandLine({"a"}));
}

void tst_ApplicationParametersHandler::twoHandlersAtOnce()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    const QString second = write(QStringLiteral("second"), "second\n");
    const Handler one(1, programOnly);
    const Handler other(1, programOnly);

    sendAnswer(file);
    sendAnswer(second);
    letMessagesBeHandled();

    QVERIFY2(one.receivedArguments().isEmpty() != other.receivedArguments().isEmpty(),
             "one of them takes the file");
    QCOMPARE(one.receivedArguments() + other.receivedArguments(), commandLine({"a"}));
    QVERIFY(!exists(file));
    QVERIFY(exists(second));
}

void tst_ApplicationParametersHandler::endsListeningOnRequest()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    BusMonitor monitor;
    const Handler handler(1, programOnly);

    handler.onArgumentsProcessed();
    handler.onArgumentsProcessed();
    sendAnswer(file);
    letMessagesBeHandled();

    QCOMPARE(handler.receivedArguments(), QStringList());
    QVERIFY(exists(file));
    send(notification(QStringLiteral("LAST")));
    const QStringList lines = monitor.linesBefore(QStringLiteral("message LAST"));
    QCOMPARE(lines.count(QStringLiteral("AddMatch of answers")), 1);
    QCOMPARE(lines.count(QStringLiteral("RemoveMatch of answers")), 1);
    QCOMPARE(lines.count("message " + announcement), 1);
}

void tst_ApplicationParametersHandler::answerThatWaitsWhenListeningEndsIsLeft()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    const Handler handler(1, programOnly);
    sendAnswer(file);
    letMessagesArrive();

    handler.onArgumentsProcessed();
    letMessagesBeHandled();

    QCOMPARE(handler.receivedArguments(), QStringList());
    QVERIFY(exists(file));
}

void tst_ApplicationParametersHandler::receivedArgumentsStayWhenListeningEnds()
{
    const Handler handler(1, programOnly);
    sendAnswer(write(QStringLiteral("file"), "a\n"));
    QTRY_COMPARE(handler.receivedArguments(), commandLine({"a"}));

    handler.onArgumentsProcessed();

    QCOMPARE(handler.receivedArguments(), commandLine({"a"}));
}

void tst_ApplicationParametersHandler::destructionEndsListening()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    BusMonitor monitor;
    auto handler = std::make_unique<Handler>(1, programOnly);
    send(notification(QStringLiteral("ALIVE")));
    const QStringList before = monitor.linesBefore(QStringLiteral("message ALIVE"));
    QVERIFY(before.contains(QStringLiteral("AddMatch of answers")));

    handler.reset();
    sendAnswer(file);
    letMessagesBeHandled();
    send(notification(QStringLiteral("LAST")));

    const QStringList lines = monitor.linesBefore(QStringLiteral("message LAST"));
    QCOMPARE(lines.count(QStringLiteral("RemoveMatch of answers")), 1);
    QCOMPARE(lines.filter(QStringLiteral("message ")),
             QStringList({"message " + announcement, QStringLiteral("message ALIVE"),
                          "message " + answer}));
    QVERIFY(exists(file));
}

void tst_ApplicationParametersHandler::answerThatWaitsAtDestructionIsLeft()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    auto handler = std::make_unique<Handler>(1, programOnly);
    sendAnswer(file);
    letMessagesArrive();

    handler.reset();
    letMessagesBeHandled();

    QVERIFY(exists(file));
}

void tst_ApplicationParametersHandler::argumentsCanBeSet()
{
    Handler handler(2, nullptr);

    handler.onApplicationCommandLineArgumentsReceived({"a", "\xC3\xA4", ""});
    QCOMPARE(handler.receivedArguments(), commandLine({"a", QString::fromUtf8("ä"), ""}));

    handler.onApplicationCommandLineArgumentsReceived({"b"});
    QCOMPARE(handler.receivedArguments(), commandLine({"b"}));

    handler.onApplicationCommandLineArgumentsReceived({});
    QCOMPARE(handler.receivedArguments(), commandLine({}));
}

void tst_ApplicationParametersHandler::theListIsOne()
{
    Handler handler(2, nullptr);
    const QStringList& list = handler.receivedArguments();

    handler.onApplicationCommandLineArgumentsReceived({"a"});

    QCOMPARE(list, commandLine({"a"}));
    QCOMPARE(&handler.receivedArguments(), &list);
}

void tst_ApplicationParametersHandler::processTakesTheArguments()
{
    const QString file = write(QStringLiteral("file"), "a\r\n\n\xC3\xA4");
    const Witness witness;
    QProcess& receiver = startReceiver();
    QTRY_COMPARE(witness.names(), QStringList({announcement, QStringLiteral("READY")}));

    sendAnswer(file);
    send(notification(QStringLiteral("REPORT")));

    QVERIFY(hasEnded(receiver));
    QCOMPARE(received(),
             QList<QByteArray>({QByteArray(RECEIVER "\0a\r\0\xC3\xA4\0", sizeof RECEIVER + 6)}));
    QCOMPARE(receiver.readAllStandardError(), QByteArray());
    QVERIFY(!exists(file));
}

void tst_ApplicationParametersHandler::processWithArgumentsIsNotHandedAny()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    const Witness witness;
    QProcess& receiver = startReceiver({QStringLiteral("picture.png")});
    QTRY_COMPARE(witness.names(), QStringList({QStringLiteral("READY")}));

    sendAnswer(file);
    send(notification(QStringLiteral("REPORT")));

    QVERIFY(hasEnded(receiver));
    QCOMPARE(received(), QList<QByteArray>({""}));
    QVERIFY(exists(file));
}

void tst_ApplicationParametersHandler::oneOfTwoProcessesTakesTheArguments()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    const Witness witness;
    QProcess& one = startReceiver();
    QProcess& other = startReceiver();
    QTRY_COMPARE(witness.names().count(QStringLiteral("READY")), 2);
    const QStringList identities = witness.texts(announcement);
    QCOMPARE(identities.size(), 2);
    QVERIFY(identities.first() != identities.last());

    // The bus keeps the message for the one that can't take it yet.
    QCOMPARE(kill(pid_t(other.processId()), SIGSTOP), 0);
    sendAnswer(file);
    QTRY_VERIFY(!exists(file));
    QCOMPARE(kill(pid_t(other.processId()), SIGCONT), 0);
    send(notification(QStringLiteral("REPORT")));

    QVERIFY(hasEnded(one));
    QVERIFY(hasEnded(other));
    QCOMPARE(received(),
             QList<QByteArray>({"", QByteArray(RECEIVER "\0a\0", sizeof RECEIVER + 2)}));
}

void tst_ApplicationParametersHandler::runtimeFoldersBusWillDo_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("folderInAddress");

    const auto addRow = [](const char* title, const char* folder, const char* folderInAddress) {
        QTest::newRow(title) << QString::fromUtf8(folder) << QString::fromLatin1(folderInAddress);
    };
    addRow("an ordinary one", "run", "run");
    addRow("with a space", "run 1", "run%201");
    addRow("with a comma, an equals sign and a semicolon", "a,b=c;d", "a%2cb%3dc%3bd");
    addRow("with a percent sign", "run%20", "run%2520");
    addRow("with a tilde", "run~1", "run%7e1");
    addRow("beyond ASCII", "ä", "%c3%a4");
}

void tst_ApplicationParametersHandler::runtimeFoldersBusWillDo()
{
    QFETCH(QString, folder);
    QFETCH(QString, folderInAddress);
    QVERIFY(QDir(m_folder->path()).mkdir(folder));
    m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), path(folder));
    m_environment.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
    const QString socket = path(folderInAddress + QStringLiteral("/bus"));
    const PrivateBus bus(socket);
    const QString file = write(QStringLiteral("file"), "a\n");
    QProcess& receiver = startReceiver();

    // Nothing shows here when it listens, so it is told again and again.
    const auto sendThere = [&](const QString& name, const QString& text) {
        return QProcess::execute(QStringLiteral("dbus-send"),
                                 {QStringLiteral("--bus=unix:path=") + socket, objectPath,
                                  interfaceName + '.' + name, QStringLiteral("string:") + text});
    };
    while (exists(file) && receiver.state() != QProcess::NotRunning) {
        QCOMPARE(sendThere(answer, file), 0);
        (void)receiver.waitForFinished(20);
    }
    QCOMPARE(sendThere(QStringLiteral("REPORT"), QString()), 0);

    QVERIFY(hasEnded(receiver));
    QCOMPARE(received(), QList<QByteArray>({QByteArray(RECEIVER "\0a\0", sizeof RECEIVER + 2)}));
}

void tst_ApplicationParametersHandler::aBusThatIsListedWillDo_data()
{
    QTest::addColumn<QString>("address");

    QTest::newRow("behind one that would have to be started") << "autolaunch:;%2";
    QTest::newRow("before one that would have to be started") << "%2;autolaunch:";
    QTest::newRow("behind one of another place that would have to be started")
        << "autolaunch:scope=*user;%2";
    QTest::newRow("behind a program that fails") << "unixexec:path=/bin/false;%2";
    QTest::newRow("behind a program") << "unixexec:path=%1/bin/bridge;%2";
    QTest::newRow("before a program") << "%2;unixexec:path=%1/bin/bridge";
    QTest::newRow("among both") << "autolaunch:;%2;unixexec:path=%1/bin/bridge";
    QTest::newRow("behind one that isn't there") << "unix:path=%1/bus;%2";
    QTest::newRow("among separators") << ";;%2;";
}

void tst_ApplicationParametersHandler::aBusThatIsListedWillDo()
{
    QFETCH(QString, address);
    address.replace(QLatin1String("%1"), m_folder->path());
    address.replace(QLatin1String("%2"), QFile::decodeName(qgetenv("DBUS_SESSION_BUS_ADDRESS")));
    m_environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
    prepareStarters();
    const QString file = write(QStringLiteral("file"), "a\n");
    const Witness witness;
    QProcess& receiver = startReceiver();
    QTRY_COMPARE(witness.names(), QStringList({announcement, QStringLiteral("READY")}));

    sendAnswer(file);
    send(notification(QStringLiteral("REPORT")));
    letMessagesBeHandled(); // by this witness, and not by the next one

    QVERIFY(hasEnded(receiver));
    QCOMPARE(received(), QList<QByteArray>({QByteArray(RECEIVER "\0a\0", sizeof RECEIVER + 2)}));
    QCOMPARE(receiver.readAllStandardError(), QByteArray());
    QVERIFY(!hasStarted());
}

void tst_ApplicationParametersHandler::aBusMayComeLater_data()
{
    QTest::addColumn<QString>("address");

    QTest::newRow("a bus that isn't there") << "unix:path=%1/bus";
    QTest::newRow("no bus at all") << "disabled:";
    QTest::newRow("an address that makes no sense") << "not an address";
}

/// A failure isn't for ever.
void tst_ApplicationParametersHandler::aBusMayComeLater()
{
    QFETCH(QString, address);
    QDBusConnection::disconnectFromBus(VEK_NAMESPACE::Platform::sessionBus().value().name());
    const Witness witness;
    {
        const BusAddress other(address.replace(QLatin1String("%1"), m_folder->path()));
        const Handler handler(1, programOnly);
        QVERIFY(!VEK_NAMESPACE::Platform::sessionBus());
    }

    const Handler handler(1, programOnly);
    sendAnswer(write(QStringLiteral("file"), "a\n"));

    QTRY_COMPARE(handler.receivedArguments(), commandLine({"a"}));
    letMessagesBeHandled();
    QCOMPARE(witness.names(), QStringList({announcement, answer}));
}

void tst_ApplicationParametersHandler::aBusMayComeAgain()
{
    QDBusConnection::disconnectFromBus(VEK_NAMESPACE::Platform::sessionBus().value().name());
    {
        const QString socket = path(QStringLiteral("bus"));
        const BusAddress other("unix:path=" + socket);
        PrivateBus bus(socket);
        const auto connection = VEK_NAMESPACE::Platform::sessionBus();
        QVERIFY(connection && connection->isConnected());
        bus.end();
        QTRY_VERIFY(!connection->isConnected());
    }

    const Handler handler(1, programOnly);
    sendAnswer(write(QStringLiteral("file"), "a\n"));

    QTRY_COMPARE(handler.receivedArguments(), commandLine({"a"}));
}

void tst_ApplicationParametersHandler::busMayGo()
{
    const QString socket = path(QStringLiteral("bus"));
    m_environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), "unix:path=" + socket);
    PrivateBus bus(socket);
    const Witness witness(QDBusConnection::connectToBus("unix:path=" + socket, socket));
    QProcess& receiver = startReceiver();
    QTRY_COMPARE(witness.names(), QStringList({announcement, QStringLiteral("READY")}));

    bus.end();

    QVERIFY(hasEnded(receiver));
    QDBusConnection::disconnectFromBus(socket);
    QCOMPARE(receiver.exitStatus(), QProcess::NormalExit);
    QCOMPARE(received(), QList<QByteArray>({""}));
    QCOMPARE(receiver.readAllStandardError(), QByteArray());
}

void tst_ApplicationParametersHandler::withoutABusNothingHappens_data()
{
    QTest::addColumn<QString>("address");
    QTest::addColumn<QString>("runtimeFolder");

    const auto addRow = [](const char* title, const QString& address,
                           const QString& runtimeFolder = QStringLiteral("%1/runtime")) {
        QTest::newRow(title) << address << runtimeFolder;
    };
    addRow("no address", QString());
    addRow("no address and no runtime folder", QString(), QString());
    addRow("no address and an empty runtime folder's name", QString(), QLatin1String(""));
    addRow("no address and a socket without a bus", QString(), QStringLiteral("%1/dead"));
    addRow("an empty address", QLatin1String(""));
    addRow("no bus at all", QStringLiteral("disabled:"));
    addRow("a bus that isn't there", QStringLiteral("unix:path=%1/bus"));
    addRow("a socket that nobody listens on", QStringLiteral("unix:path=%1/dead/bus"));
    addRow("an address that makes no sense", QStringLiteral("not an address"));
    addRow("an unknown transport", QStringLiteral("pigeon:path=%1/bus"));
    addRow("a bus that would have to be started", QStringLiteral("autolaunch:"));
    addRow("a bus of another place that would have to be started",
           QStringLiteral("autolaunch:scope=*user"));
    addRow("none there, and another that would have to be started",
           QStringLiteral("unix:path=%1/bus;autolaunch:"));
    addRow("a program that would have to be started",
           QStringLiteral("unixexec:path=%1/bin/bridge"));
    addRow("none there, and a program that would have to be started",
           QStringLiteral("unix:path=%1/bus;unixexec:path=%1/bin/bridge"));
    addRow("only separators", QStringLiteral(";;"));
}

void tst_ApplicationParametersHandler::withoutABusNothingHappens()
{
    QFETCH(QString, address);
    QFETCH(QString, runtimeFolder);
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("dead")));
    const CurrentFolder current(path(QStringLiteral("dead")));
    sockaddr_un name = {AF_UNIX, "bus"};
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    QCOMPARE(bind(socket, reinterpret_cast<const sockaddr*>(&name), sizeof name), 0);
    close(socket);

    prepareStarters();

    const auto set = [this](const QString& variable, QString value) {
        if (value.isNull())
            m_environment.remove(variable);
        else
            m_environment.insert(variable, value.replace(QStringLiteral("%1"), m_folder->path()));
    };
    set(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
    set(QStringLiteral("XDG_RUNTIME_DIR"), runtimeFolder);
    const QByteArray mark = QFile::encodeName(path("mark"));
    m_environment.insert(QStringLiteral("MARK"), QFile::decodeName(mark));

    QProcess& receiver = startReceiver();

    QVERIFY(hasEnded(receiver));
    QCOMPARE(receiver.exitStatus(), QProcess::NormalExit);
    QCOMPARE(received(), QList<QByteArray>({""}));
    QCOMPARE(receiver.readAllStandardError(), QByteArray());
    QVERIFY(!hasStarted());
    const std::vector<pid_t> started = processesWith("MARK=" + mark);
    for (const pid_t process : started)
        kill(process, SIGTERM);
    QVERIFY(started.empty());
}

#ifdef LAUNCHER
void tst_ApplicationParametersHandler::launcherHandsOver_data()
{
    QTest::addColumn<QStringList>("arguments");

    const auto addRow = [](const char* title, const QStringList& arguments) {
        QTest::newRow(title) << arguments;
    };
    addRow("one argument", {"picture.png"});
    addRow("several, one twice", {"b", "a", "b"});
    addRow("spaces, quotes and backslashes", {" a b ", "\"c\"", "d\\n"});
    addRow("a carriage return", {"a\r", "b"});
    addRow("options", {"--timeout", "--help", "--", "-x"});
    addRow("beyond ASCII", {QString::fromUtf8("ä"), QString::fromUtf8("日本 📷")});
    addRow("a long one", {QString(100000, 'x')});
}

void tst_ApplicationParametersHandler::launcherHandsOver()
{
    QFETCH(QStringList, arguments);
    QByteArray expected(RECEIVER "\0", sizeof RECEIVER);
    for (const QString& argument : arguments)
        expected += argument.toUtf8() + '\0';
    QProcess launcher;
    launcher.setProcessEnvironment(m_environment);

    launcher.start(QStringLiteral(LAUNCHER), QStringList(QStringLiteral(RECEIVER)) + arguments);
    QVERIFY(hasEnded(launcher));
    QCOMPARE(launcher.readAllStandardError(), QByteArray());
    QCOMPARE(launcher.exitCode(), 0);
    send(notification(QStringLiteral("REPORT")));

    QTRY_COMPARE(received(), QList<QByteArray>({expected}));
}

void tst_ApplicationParametersHandler::launcherWithoutArgumentsEndsListening()
{
    const QString file = write(QStringLiteral("file"), "a\n");
    QProcess launcher;
    launcher.setProcessEnvironment(m_environment);

    launcher.start(QStringLiteral(LAUNCHER), {QStringLiteral(RECEIVER)});
    QVERIFY(hasEnded(launcher));
    QCOMPARE(launcher.exitCode(), 0);
    sendAnswer(file);
    send(notification(QStringLiteral("REPORT")));

    QTRY_COMPARE(received(), QList<QByteArray>({""}));
    QVERIFY(exists(file));
}
#endif

int main(int argc, char* argv[])
{
    if (!takeOrdinaryFileRights())
        qFatal("the permissions of files don't hold for this process");
    QCoreApplication application(argc, argv);
    tst_ApplicationParametersHandler test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ApplicationParametersHandler.moc"
