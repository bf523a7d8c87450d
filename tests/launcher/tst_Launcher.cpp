// The launcher against an application that plays the receiving end of the hand-over by the book.

#include "Files.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QTest>

namespace {

const QLatin1String announcement("APP_CAN_HANDLE_CMD_LINE_ARGSkrnv3");
const QLatin1String answer("CMD_LINE_ARGSkrnv3");
const QLatin1String objectPath("/com/vek/krnv3");
const QLatin1String interfaceName("com.vek.krnv3.DistributedNotifications");

/// A file that can't be started; who gets as far as trying it says so.
const char missing[] = "/no/such/application";

void writeScript(const QString& path, const QByteArray& commands)
{
    QFile file(path);
    QVERIFY2(file.open(QIODevice::WriteOnly), qPrintable(path));
    file.write("#!/bin/sh\n" + commands + '\n');
    QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

} // namespace

/// What passes on the bus, in the order in which the bus passes it on.
class BusWitness : public QObject
{
    Q_OBJECT

public:
    BusWitness()
    {
        for (const QLatin1String& name : {announcement, answer}) {
            m_bus.connect(QString(), objectPath, interfaceName, name, this,
                          SLOT(onMessage(QDBusMessage)));
        }
        catchUp();
    }

    QStringList names()
    {
        catchUp();
        return m_names;
    }

    void post(const QString& name, const QString& object = QString())
    {
        m_bus.send(QDBusMessage::createSignal(objectPath, interfaceName, name) << object);
    }

private Q_SLOTS:
    void onMessage(const QDBusMessage& message) { m_names += message.member(); }

private:
    /// An answer of the bus comes after all that it passed on before.
    void catchUp()
    {
        m_bus.interface()->serviceOwner(m_bus.baseService());
        QCoreApplication::processEvents();
    }

    QStringList m_names;
    QDBusConnection m_bus = QDBusConnection::sessionBus();
};

/// A second bus while it lives.
class PrivateBus
{
public:
    /// \a socket is in the notation of bus addresses.
    explicit PrivateBus(const QString& socket)
    {
        m_process.start(
            QStringLiteral("dbus-daemon"),
            {"--session", "--nofork", "--print-address", "--address=unix:path=" + socket});
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

class tst_Launcher : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void arguments_are_handed_over_byte_for_byte_data();
    void arguments_are_handed_over_byte_for_byte();
    void an_empty_list_is_an_empty_answer();
    void the_application_speaks_first();
    void the_application_gets_no_arguments_and_the_same_folder();
    void the_file_is_private_and_lies_in_the_temporary_folder_data();
    void the_file_is_private_and_lies_in_the_temporary_folder();
    void each_run_has_a_file_of_its_own();
    void a_file_that_the_application_leaves_is_removed();
    void a_temporary_folder_that_takes_no_file_is_told_to_both_data();
    void a_temporary_folder_that_takes_no_file_is_told_to_both();
    void a_wrapper_may_stand_before_the_application_data();
    void a_wrapper_may_stand_before_the_application();
    void another_applications_announcement_is_not_taken_for_the_started_ones();
    void without_an_answer_it_gives_up_data();
    void without_an_answer_it_gives_up();
    void an_application_that_cannot_be_started_is_told_data();
    void an_application_that_cannot_be_started_is_told();
    void without_a_bus_nothing_is_started_data();
    void without_a_bus_nothing_is_started();
    void the_runtime_folders_bus_will_do();
    void a_bus_that_goes_gives_no_answer();
    void a_wrong_command_line_is_refused_before_anything_is_started_data();
    void a_wrong_command_line_is_refused_before_anything_is_started();
    void an_argument_that_is_not_utf8_is_refused();
    void help_is_given_on_request();

private:
    QString path(const char* name) const { return m_dir->filePath(QLatin1String(name)); }
    QByteArray record(const char* name) const
    {
        return readFile(path("record/") + QLatin1String(name));
    }
    QStringList temporaryFiles() const
    {
        return QDir(path("tmp"))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    void start(const QStringList& arguments, const QString& program = QStringLiteral(LAUNCHER));
    bool hasEnded();
    /// -1 if it crashed or never ended.
    int run(const QStringList& arguments, const QString& program = QStringLiteral(LAUNCHER));
    QByteArray errors() { return m_launcher->readAllStandardError(); }

    QScopedPointer<QTemporaryDir> m_dir;
    QProcessEnvironment m_environment;
    QScopedPointer<QProcess> m_launcher;
};

void tst_Launcher::initTestCase()
{
    QVERIFY(QDBusConnection::sessionBus().isConnected());
}

void tst_Launcher::init()
{
    m_launcher.reset();
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
    for (const char* folder : {"record", "tmp", "run ~1"})
        QVERIFY(QDir(m_dir->path()).mkdir(QLatin1String(folder)));

    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.insert(QStringLiteral("FAKE_RECORD"), path("record"));
    m_environment.insert(QStringLiteral("TMPDIR"), path("tmp"));
}

void tst_Launcher::start(const QStringList& arguments, const QString& program)
{
    m_launcher.reset(new QProcess);
    m_launcher->setProcessEnvironment(m_environment);
    m_launcher->setWorkingDirectory(m_dir->path());
    m_launcher->start(program, arguments);
}

bool tst_Launcher::hasEnded()
{
    return m_launcher->state() == QProcess::NotRunning || m_launcher->waitForFinished(60000);
}

int tst_Launcher::run(const QStringList& arguments, const QString& program)
{
    start(arguments, program);
    return hasEnded() && m_launcher->exitStatus() == QProcess::NormalExit ? m_launcher->exitCode()
                                                                          : -1;
}

void tst_Launcher::arguments_are_handed_over_byte_for_byte_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("contents");

    const auto addRow = [](const char* title, const QStringList& arguments,
                           const QByteArray& contents) {
        QTest::newRow(title) << arguments << contents;
    };
    addRow("one argument", {"picture.png"}, "picture.png\n");
    addRow("several, one twice", {"b", "a", "b"}, "b\na\nb\n");
    addRow("spaces, quotes and backslashes", {" a b ", "\"c\"", "d\\n"}, " a b \n\"c\"\nd\\n\n");
    addRow("a carriage return, which is part of its argument", {"a\r", "b"}, "a\r\nb\n");
    addRow("a character of two, three and four bytes each",
           {QString::fromUtf8("\xC3\xA4"), QString::fromUtf8("\xE6\x97\xA5"),
            QString::fromUtf8("\xF0\x9F\x93\xB7")},
           "\xC3\xA4\n\xE6\x97\xA5\n\xF0\x9F\x93\xB7\n");
    addRow("a byte order mark", {QString(QChar(0xFEFF)) + "a"},
           "\xEF\xBB\xBF"
           "a\n");
    addRow("options, which are the application's own",
           {"--timeout", "--help", "--", "-x", "-qmljsdebugger=port:1"},
           "--timeout\n--help\n--\n-x\n-qmljsdebugger=port:1\n");
    addRow("a long one", {QString(100000, 'x')}, QByteArray(100000, 'x') + '\n');
}

void tst_Launcher::arguments_are_handed_over_byte_for_byte()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, contents);

    const int status = run(QStringList(FAKE_APPLICATION) + arguments);

    QCOMPARE(errors(), QByteArray());
    QCOMPARE(status, 0);
    QCOMPARE(record("contents"), contents);
    QCOMPARE(temporaryFiles(), QStringList());
}

void tst_Launcher::an_empty_list_is_an_empty_answer()
{
    BusWitness witness;

    const int status = run({FAKE_APPLICATION});

    QCOMPARE(errors(), QByteArray());
    QCOMPARE(status, 0);
    QCOMPARE(witness.names(), QStringList({announcement, answer}));
    QTRY_COMPARE(record("answer"), QByteArray());
    QCOMPARE(record("contents"), QByteArray("(no such file)"));
}

void tst_Launcher::the_application_speaks_first()
{
    BusWitness witness;
    m_environment.insert(QStringLiteral("FAKE_MANNER"), QStringLiteral("cued"));

    start({FAKE_APPLICATION, "a"});
    QTRY_VERIFY(QFile::exists(path("record/started")));
    QCOMPARE(witness.names(), QStringList());
    witness.post(QStringLiteral("CUE"));

    QVERIFY(hasEnded());
    QCOMPARE(witness.names(), QStringList({announcement, answer}));
    QCOMPARE(record("contents"), QByteArray("a\n"));
}

void tst_Launcher::the_application_gets_no_arguments_and_the_same_folder()
{
    QCOMPARE(run({"--timeout", "20000", FAKE_APPLICATION, "a"}), 0);

    QCOMPARE(record("started"),
             QByteArray("1 words in " + QFile::encodeName(QDir(m_dir->path()).canonicalPath())));
}

void tst_Launcher::the_file_is_private_and_lies_in_the_temporary_folder_data()
{
    QTest::addColumn<QString>("temporaryFolder");

    QTest::newRow("a full path") << "%1/tmp";
    QTest::newRow("a path from the current folder") << "tmp";
}

void tst_Launcher::the_file_is_private_and_lies_in_the_temporary_folder()
{
    QFETCH(QString, temporaryFolder);
    if (temporaryFolder.contains(QLatin1String("%1")))
        temporaryFolder = temporaryFolder.arg(m_dir->path());
    m_environment.insert(QStringLiteral("TMPDIR"), temporaryFolder);

    // With the umask as open as it can be.
    const QStringList arguments{"-c", "umask 0; exec \"$0\" \"$@\"", LAUNCHER, FAKE_APPLICATION,
                                "a"};
    QCOMPARE(run(arguments, QStringLiteral("/bin/sh")), 0);

    QCOMPARE(record("permissions"), QByteArray("600"));
    const QByteArray folder = QFile::encodeName(path("tmp/"));
    QCOMPARE(record("answer").left(folder.size()), folder);
    QCOMPARE(temporaryFiles(), QStringList());
}

void tst_Launcher::each_run_has_a_file_of_its_own()
{
    QCOMPARE(run({FAKE_APPLICATION, "a"}), 0);
    const QByteArray first = record("answer");
    QCOMPARE(run({FAKE_APPLICATION, "a"}), 0);

    QVERIFY(record("answer") != first);
}

void tst_Launcher::a_file_that_the_application_leaves_is_removed()
{
    m_environment.insert(QStringLiteral("FAKE_MANNER"), QStringLiteral("keeps"));

    const int status = run({FAKE_APPLICATION, "a"});

    QCOMPARE(record("contents"), QByteArray("a\n"));
    QCOMPARE(temporaryFiles(), QStringList());
    QCOMPARE(errors(), QByteArray("launcher: the application hasn't taken its arguments\n"));
    QCOMPARE(status, 1);
}

void tst_Launcher::a_temporary_folder_that_takes_no_file_is_told_to_both_data()
{
    QTest::addColumn<QString>("temporaryFolder");
    QTest::addColumn<QByteArray>("reason");

    QTest::newRow("one that doesn't exist")
        << "/no/such/folder" << QByteArray("there is no temporary folder");
    QTest::newRow("one that isn't a folder") << "/dev/null" << QByteArray("Not a directory");
}

void tst_Launcher::a_temporary_folder_that_takes_no_file_is_told_to_both()
{
    QFETCH(QString, temporaryFolder);
    QFETCH(QByteArray, reason);
    m_environment.insert(QStringLiteral("TMPDIR"), temporaryFolder);

    const int status = run({FAKE_APPLICATION, "a"});

    QCOMPARE(errors(), "launcher: cannot write the arguments file: " + reason + '\n');
    QCOMPARE(status, 1);
    QTRY_COMPARE(record("answer"), QByteArray());
}

void tst_Launcher::a_wrapper_may_stand_before_the_application_data()
{
    QTest::addColumn<QByteArray>("commands");

    QTest::newRow("that becomes it") << QByteArray("exec '" FAKE_APPLICATION "'");
    QTest::newRow("that waits for it") << QByteArray("'" FAKE_APPLICATION "'; exit 3");
    QTest::newRow("that goes when it has started it") << QByteArray("'" FAKE_APPLICATION "' &");
    QTest::newRow("whose helper starts it and goes")
        << QByteArray("('" FAKE_APPLICATION "' &); cat");
}

void tst_Launcher::a_wrapper_may_stand_before_the_application()
{
    QFETCH(QByteArray, commands);
    writeScript(path("wrapper"), commands);

    const int status = run({"./wrapper", "a"});

    QCOMPARE(errors(), QByteArray());
    QCOMPARE(status, 0);
    QCOMPARE(record("contents"), QByteArray("a\n"));
}

void tst_Launcher::another_applications_announcement_is_not_taken_for_the_started_ones()
{
    BusWitness witness;
    m_environment.insert(QStringLiteral("FAKE_MANNER"), QStringLiteral("cued"));

    start({FAKE_APPLICATION, "a"});
    QTRY_VERIFY(QFile::exists(path("record/started")));
    witness.post(announcement);
    QTRY_COMPARE(witness.names(), QStringList({announcement}));
    witness.post(QStringLiteral("CUE"));

    QVERIFY(hasEnded());
    QCOMPARE(witness.names(), QStringList({announcement, announcement, answer}));
    QCOMPARE(m_launcher->exitCode(), 0);
}

void tst_Launcher::without_an_answer_it_gives_up_data()
{
    QTest::addColumn<bool>("otherAnnounces");

    QTest::newRow("nobody says anything") << false;
    QTest::newRow("only another application says that it listens") << true;
}

void tst_Launcher::without_an_answer_it_gives_up()
{
    QFETCH(bool, otherAnnounces);
    BusWitness witness;
    m_environment.insert(QStringLiteral("FAKE_MANNER"), QStringLiteral("cued"));

    QElapsedTimer timer;
    timer.start();
    start({"--timeout", "2000", FAKE_APPLICATION, "a"});
    QTRY_VERIFY(QFile::exists(path("record/started")));
    if (otherAnnounces)
        witness.post(announcement);

    QVERIFY(hasEnded());
    // Coarse timers may be early by a twentieth; the other bound is below the usual time limit.
    QVERIFY(timer.elapsed() >= 1900);
    QVERIFY(timer.elapsed() < 25000);
    QCOMPARE(errors(),
             QByteArray("launcher: no answer from " FAKE_APPLICATION " within 2000 ms\n"));
    QCOMPARE(m_launcher->exitCode(), 1);
    QVERIFY(!witness.names().contains(answer));
}

void tst_Launcher::an_application_that_cannot_be_started_is_told_data()
{
    QTest::addColumn<QString>("application");

    QTest::newRow("a missing file") << QString(missing);
    QTest::newRow("a folder") << "/";
    QTest::newRow("a file that isn't a program") << "./plain";
}

void tst_Launcher::an_application_that_cannot_be_started_is_told()
{
    QFETCH(QString, application);
    QFile plain(path("plain"));
    QVERIFY(plain.open(QIODevice::WriteOnly));

    const int status = run({application, "a"});

    QCOMPARE(errors(), "launcher: cannot start " + application.toUtf8() + '\n');
    QCOMPARE(status, 1);
}

void tst_Launcher::without_a_bus_nothing_is_started_data()
{
    QTest::addColumn<QString>("address");

    QTest::newRow("no address") << QString();
    QTest::newRow("an empty address") << "";
    QTest::newRow("a bus that isn't there") << "unix:path=/no/such/bus";
    QTest::newRow("no bus at all") << "disabled:";
    QTest::newRow("a bus that would have to be started") << "autolaunch:";
    QTest::newRow("none there, and another that would have to be started")
        << "unix:path=/no/such/bus;autolaunch:";
}

void tst_Launcher::without_a_bus_nothing_is_started()
{
    QFETCH(QString, address);
    // Here it is that a bus would be started: there is a display, and a program for it.
    writeScript(path("dbus-launch"), "touch '" + QFile::encodeName(path("bus started")) + "'");
    m_environment.insert(QStringLiteral("PATH"),
                         m_dir->path() + QLatin1Char(':')
                             + m_environment.value(QStringLiteral("PATH")));
    m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));
    m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), path("run ~1"));
    if (address.isNull())
        m_environment.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
    else
        m_environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);

    const int status = run({missing, "a"});

    QCOMPARE(errors(), QByteArray("launcher: there is no session bus\n"));
    QCOMPARE(status, 1);
    QVERIFY(!QFile::exists(path("bus started")));
}

void tst_Launcher::the_runtime_folders_bus_will_do()
{
    m_environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), path("run ~1"));
    m_environment.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
    PrivateBus bus(path("run%20%7e1/bus"));

    const int status = run({FAKE_APPLICATION, "a"});

    QCOMPARE(errors(), QByteArray());
    QCOMPARE(status, 0);
    QCOMPARE(record("contents"), QByteArray("a\n"));
}

void tst_Launcher::a_bus_that_goes_gives_no_answer()
{
    const QString address = path("bus");
    m_environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), "unix:path=" + address);
    m_environment.insert(QStringLiteral("FAKE_MANNER"), QStringLiteral("cued"));
    PrivateBus bus(address);

    start({"--timeout", "2000", FAKE_APPLICATION, "a"});
    QTRY_VERIFY(QFile::exists(path("record/started")));
    bus.end();

    QVERIFY(hasEnded());
    QCOMPARE(errors(),
             QByteArray("launcher: no answer from " FAKE_APPLICATION " within 2000 ms\n"));
    QCOMPARE(m_launcher->exitCode(), 1);
}

void tst_Launcher::a_wrong_command_line_is_refused_before_anything_is_started_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QByteArray>("line");

    const auto addRow = [](const char* title, const QStringList& arguments,
                           const QByteArray& line) { QTest::newRow(title) << arguments << line; };
    const QByteArray noApplication = "no application is named; see launcher --help";
    addRow("nothing at all", {}, noApplication);
    addRow("no application", {"--timeout", "100"}, noApplication);
    addRow("an application without a name", {""}, noApplication);
    addRow("an unknown option", {"--soon", missing}, "Unknown option 'soon'.");
    addRow("no time limit after its option", {"--timeout"}, "Missing value after '--timeout'.");
    addRow("a time limit that isn't a number", {"--timeout", "soon", missing},
           "--timeout takes a number of milliseconds, not \"soon\"");
    addRow("a time limit of nothing", {"--timeout", "0", missing},
           "--timeout takes a number of milliseconds, not \"0\"");
    addRow("a time limit below nothing", {"--timeout", "-5", missing},
           "--timeout takes a number of milliseconds, not \"-5\"");
    addRow("an empty argument", {missing, "a", "", "b"},
           "argument 2 can't be handed over: it is empty");
    addRow("an argument with a line feed", {missing, "a\nb"},
           "argument 1 can't be handed over: it has a line feed in it");
    addRow("an argument that is a line feed", {missing, "a", "b", "\n"},
           "argument 3 can't be handed over: it has a line feed in it");
}

void tst_Launcher::a_wrong_command_line_is_refused_before_anything_is_started()
{
    QFETCH(QStringList, arguments);
    QFETCH(QByteArray, line);

    const int status = run(arguments);

    QCOMPARE(errors(), "launcher: " + line + '\n');
    QCOMPARE(status, 2);
}

void tst_Launcher::an_argument_that_is_not_utf8_is_refused()
{
    // Only a shell can give such an argument: Qt would encode it first.
    for (const char* bytes : {"\\377", "a\\303", "\\300\\200", "\\355\\240\\200", "\\344"}) {
        const QStringList arguments{"-c", "exec \"$0\" \"$1\" \"$(printf \"$2\")\"", LAUNCHER,
                                    missing, bytes};
        const int status = run(arguments, QStringLiteral("/bin/sh"));

        QCOMPARE(errors(),
                 QByteArray("launcher: argument 1 can't be handed over: it isn't UTF-8\n"));
        QCOMPARE(status, 2);
    }
}

void tst_Launcher::help_is_given_on_request()
{
    const int status = run({"--help"});

    QVERIFY(m_launcher->readAllStandardOutput().contains("[options] application [argument...]"));
    QCOMPARE(errors(), QByteArray());
    QCOMPARE(status, 0);
}

QTEST_GUILESS_MAIN(tst_Launcher)

#include "tst_Launcher.moc"
