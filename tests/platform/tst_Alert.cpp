#include "CommonConstants.h"
#include "Files.h"
#include "PlatformServices_p.h"

#include <QByteArrayList>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include <sys/stat.h>
#include <unistd.h>
#include <xcb/xcb.h>

namespace Platform = VEK_NAMESPACE::Platform;

static std::atomic<bool> s_counting(false);
static std::atomic<int> s_allocations(0);

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
static void countAllocation(const volatile void*, size_t)
{
    s_allocations += s_counting;
}

static void ignoreRelease(const volatile void*) {}

// A sanitizer has an allocator of its own, which tells of what it does; not every compiler has its
// header.
extern "C" int __sanitizer_install_malloc_and_free_hooks( // NOLINT(*-reserved-identifier,cert-dcl*)
    void (*onAllocation)(const volatile void*, size_t), void (*onRelease)(const volatile void*));
[[maybe_unused]] static const int s_hooked =
    __sanitizer_install_malloc_and_free_hooks(countAllocation, ignoreRelease);
#else
extern "C" {

// NOLINTBEGIN(*-reserved-identifier,cert-dcl*): what the C library calls its own
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
// NOLINTEND(*-reserved-identifier,cert-dcl*)

void* malloc(size_t size)
{
    s_allocations += s_counting;
    return __libc_malloc(size);
}

void* calloc(size_t count, size_t size)
{
    s_allocations += s_counting;
    return __libc_calloc(count, size);
}

void* realloc(void* memory, size_t size)
{
    s_allocations += s_counting;
    return __libc_realloc(memory, size);
}
}
#endif

namespace {

/// What ends with a zero byte each.
QByteArrayList split(const QByteArray& content)
{
    QByteArrayList parts = content.split('\0');
    parts.removeLast();
    return parts;
}

/// What a program of the X server's says.
QString output(const char* program, const QStringList& arguments)
{
    QProcess process;
    process.start(QString::fromLatin1(program), arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        return QStringLiteral("%1 failed").arg(QLatin1String(program));
    return QString::fromUtf8(process.readAllStandardOutput());
}

/// The alert's window, or 0.
xcb_window_t alertWindow()
{
    const QRegularExpression line(
        QStringLiteral("(0x[0-9a-f]+) .*\\(\"xmessage\" \"Xmessage\"\\)"));
    const auto match =
        line.match(output("xwininfo", {QStringLiteral("-root"), QStringLiteral("-tree")}));
    return match.hasMatch() ? match.captured(1).toUInt(nullptr, 16) : 0;
}

/// Presses the Return key, which the evdev keyboard of every X server has at 36.
void pressReturn(xcb_window_t window)
{
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    for (const uint8_t type : {XCB_KEY_PRESS, XCB_KEY_RELEASE}) {
        xcb_key_press_event_t event = {};
        event.response_type = type;
        event.detail = 36;
        event.root = root;
        event.event = window;
        event.same_screen = 1;
        xcb_send_event(connection, 0, window, XCB_EVENT_MASK_NO_EVENT,
                       reinterpret_cast<const char*>(&event));
    }
    // Any reply comes after the requests before it.
    std::free(xcb_get_input_focus_reply(connection, xcb_get_input_focus(connection), nullptr));
    xcb_disconnect(connection);
}

} // namespace

/// Each alert is a process's of its own, which is this program once more: the program that shows
/// alerts is chosen once.
class tst_Alert : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void firstProgramFoundShows_data();
    void firstProgramFoundShows();
    void withoutAProgramItIsWritten_data();
    void withoutAProgramItIsWritten();
    void eachTextArrives_data();
    void eachTextArrives();
    void exitStatusTells_data();
    void exitStatusTells();
    void waitsUntilItIsDismissed();
    void signalsDoNotEndTheWaiting();
    void ignoredChildrenDoNoHarm();
    void environmentIsTheProcesssButForItsLibraries();
    void programIsChosenOnce();
    void severalAlerts();
    void nobodyReadsIt();
    void allocatesNothing();
    void realWindow_data();
    void realWindow();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }

    /// A program of that name, which records its arguments and its environment, and then does
    /// \a commands.
    void provide(const QString& name, const QByteArray& commands = "exit 0",
                 const QString& folder = QStringLiteral("bin"))
    {
        QFile file(path(folder + QLatin1Char('/') + name));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("#!/bin/sh\n"
                   "cd '"
                   + QFile::encodeName(path(QStringLiteral("record")))
                   + "'\n"
                     "/usr/bin/env -0 >environment\n"
                     "for word in \"$0\" \"$@\"; do printf '%s\\0' \"$word\"; done >words.new\n"
                     "/bin/mv words.new words\n"
                   + commands + '\n');
        QVERIFY(file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    }

    QByteArrayList words() const { return split(readFile(path(QStringLiteral("record/words")))); }
    QByteArrayList environment() const
    {
        return split(readFile(path(QStringLiteral("record/environment"))));
    }

    void start(const QStringList& arguments, const char* manner = "plainly");
    bool hasEnded();
    /// What the process writes to its standard error while it shows the alert.
    QByteArray alert(const QString& title, const QString& text, const char* manner = "plainly");

    std::unique_ptr<QTemporaryDir> m_folder;
    QProcessEnvironment m_environment;
    std::unique_ptr<QProcess> m_process;
};

void tst_Alert::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    for (const char* folder : {"bin", "bin2", "record"})
        QVERIFY(QDir(m_folder->path()).mkdir(QLatin1String(folder)));
    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.insert(QStringLiteral("PATH"), path(QStringLiteral("bin")));
    m_environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
}

void tst_Alert::cleanup()
{
    if (m_process && m_process->state() != QProcess::NotRunning) {
        if (const xcb_window_t window = alertWindow())
            pressReturn(window);
        hasEnded();
    }
    m_process.reset();
}

void tst_Alert::start(const QStringList& arguments, const char* manner)
{
    m_process = std::make_unique<QProcess>();
    m_process->setProcessEnvironment(m_environment);
    m_process->start(QCoreApplication::applicationFilePath(),
                     QStringList({QStringLiteral("--alert"), QLatin1String(manner)}) + arguments);
}

bool tst_Alert::hasEnded()
{
    return (m_process->state() == QProcess::NotRunning || m_process->waitForFinished())
        && m_process->exitStatus() == QProcess::NormalExit && m_process->exitCode() == 0;
}

QByteArray tst_Alert::alert(const QString& title, const QString& text, const char* manner)
{
    start({title, text}, manner);
    return hasEnded() ? m_process->readAllStandardError() : QByteArray("ended badly");
}

void tst_Alert::firstProgramFoundShows_data()
{
    QTest::addColumn<QStringList>("programs");
    QTest::addColumn<QByteArrayList>("shown"); ///< %1 is the folder of programs

    const QByteArrayList zenity = {"%1/zenity", "--error",       "--no-markup",
                                   "--no-wrap", "--title=Error", "--text=No space."};
    const QByteArrayList kdialog = {"%1/kdialog", "--title", "Error", "--error", "No space."};
    const QByteArrayList xmessage = {"%1/xmessage", "-xrm",     "*international: true",
                                     "-title",      "Error",    "-center",
                                     "-buttons",    "OK:0",     "-default",
                                     "OK",          "No space."};
    const auto addRow = [](const char* title, const QStringList& programs,
                           const QByteArrayList& shown) {
        QTest::newRow(title) << programs << shown;
    };
    addRow("zenity before all", {"xmessage", "kdialog", "zenity"}, zenity);
    addRow("zenity before xmessage", {"xmessage", "zenity"}, zenity);
    addRow("kdialog before xmessage", {"xmessage", "kdialog"}, kdialog);
    addRow("zenity alone", {"zenity"}, zenity);
    addRow("kdialog alone", {"kdialog"}, kdialog);
    addRow("xmessage alone", {"xmessage"}, xmessage);
    addRow("others aren't known", {"dialog", "zenity2", "xmessage"}, xmessage);
}

void tst_Alert::firstProgramFoundShows()
{
    QFETCH(QStringList, programs);
    QFETCH(QByteArrayList, shown);
    for (const QString& program : programs)
        provide(program);
    shown.first().replace("%1", QFile::encodeName(path(QStringLiteral("bin"))));

    QCOMPARE(alert(QStringLiteral("Error"), QStringLiteral("No space.")), QByteArray());

    QCOMPARE(words(), shown);
}

void tst_Alert::withoutAProgramItIsWritten_data()
{
    QTest::addColumn<QStringList>("programs");
    QTest::addColumn<QString>("display");
    QTest::addColumn<QString>("waylandDisplay");
    QTest::addColumn<bool>("shown");

    const auto addRow = [](const char* title, const QStringList& programs, const QString& display,
                           const QString& waylandDisplay, bool shown) {
        QTest::newRow(title) << programs << display << waylandDisplay << shown;
    };
    addRow("a display and no program", {}, ":99", QString(), false);
    addRow("a program and no display", {"zenity", "kdialog", "xmessage"}, QString(), QString(),
           false);
    addRow("a program and empty displays", {"zenity"}, "", "", false);
    addRow("an X11 display", {"zenity"}, ":99", QString(), true);
    addRow("a Wayland display", {"zenity"}, QString(), "wayland-0", true);
    addRow("both displays", {"zenity"}, ":99", "wayland-0", true);
}

void tst_Alert::withoutAProgramItIsWritten()
{
    QFETCH(QStringList, programs);
    QFETCH(QString, display);
    QFETCH(QString, waylandDisplay);
    QFETCH(bool, shown);
    for (const QString& program : programs)
        provide(program);
    // What can't be executed is no program.
    for (const char* name : {"kdialog", "xmessage"}) {
        if (!programs.contains(QLatin1String(name))) {
            provide(QLatin1String(name));
            QVERIFY(QFile::setPermissions(path(QStringLiteral("bin/") + QLatin1String(name)),
                                          QFile::ReadOwner));
        }
    }
    const auto set = [this](const char* variable, const QString& value) {
        if (value.isNull())
            m_environment.remove(QLatin1String(variable));
        else
            m_environment.insert(QLatin1String(variable), value);
    };
    set("DISPLAY", display);
    set("WAYLAND_DISPLAY", waylandDisplay);

    QCOMPARE(alert(QStringLiteral("Error"), QStringLiteral("No space.")),
             QByteArray(shown ? "" : "Error: No space.\n"));

    QCOMPARE(!words().isEmpty(), shown);
}

void tst_Alert::eachTextArrives_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");

    const auto addRow = [](const char* name, const char* title, const char* text) {
        QTest::newRow(name) << QString::fromUtf8(title) << QString::fromUtf8(text);
    };
    addRow("a sentence", "Error", "There is no space.");
    addRow("two lines", "Error", "There is no space.\nTry again.");
    addRow("line feeds at both ends", "\nError\n", "\n\nNo space.\n");
    addRow("a carriage return and a tab", "Er\tror", "No\r\nspace.");
    addRow("quotes", "\"Error\"", "'No' \"space\"");
    addRow("what a shell would take", "$HOME", "`id` $(id) ; & | > < * \\ !");
    addRow("what looks like an option", "--title=x", "--help");
    addRow("what looks like a short option", "-t", "-x");
    addRow("what looks like the end of options", "--", "--");
    addRow("mark-up", "<b>Error</b>", "<i>&amp;</i> %1 %s");
    addRow("a backslash and a letter", "\\n", "a\\nb");
    addRow("beyond ASCII", "Fehler ä", "日本 📷 Größe");
    addRow("no title", "", "No space.");
    addRow("no text", "Error", "");
    addRow("neither", "", "");
    QTest::newRow("a long text") << "Error" << QString(20000, QLatin1Char('x'));
}

void tst_Alert::eachTextArrives()
{
    QFETCH(QString, title);
    QFETCH(QString, text);
    m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));
    const QByteArray t = title.toUtf8();
    const QByteArray x = text.toUtf8();

    provide(QStringLiteral("xmessage"));
    QCOMPARE(alert(title, text), QByteArray());
    QCOMPARE(words().mid(1),
             QByteArrayList({"-xrm", "*international: true", "-title", t, "-center", "-buttons",
                             "OK:0", "-default", "OK", x}));

    provide(QStringLiteral("kdialog"));
    QCOMPARE(alert(title, text), QByteArray());
    QCOMPARE(words().mid(1), QByteArrayList({"--title", t, "--error", x}));

    provide(QStringLiteral("zenity"));
    QCOMPARE(alert(title, text), QByteArray());
    QCOMPARE(
        words().mid(1),
        QByteArrayList({"--error", "--no-markup", "--no-wrap", "--title=" + t, "--text=" + x}));

    m_environment.remove(QStringLiteral("DISPLAY"));
    QCOMPARE(alert(title, text), t + ": " + x + '\n');
}

void tst_Alert::exitStatusTells_data()
{
    QTest::addColumn<QByteArray>("commands");
    QTest::addColumn<bool>("shown");

    QTest::newRow("success") << QByteArray("exit 0") << true;
    QTest::newRow("closed by its title bar") << QByteArray("exit 1") << true;
    QTest::newRow("another status") << QByteArray("exit 5") << true;
    QTest::newRow("a status below those of failure") << QByteArray("exit 126") << true;
    QTest::newRow("a status above the first of failure") << QByteArray("exit 128") << true;
    QTest::newRow("a status below the other of failure") << QByteArray("exit 254") << true;
    QTest::newRow("a program that it needs is missing") << QByteArray("exit 127") << false;
    QTest::newRow("a failure of its own") << QByteArray("exit 255") << false;
    QTest::newRow("killed") << QByteArray("kill -KILL $$") << false;
    QTest::newRow("terminated") << QByteArray("kill -TERM $$") << false;
    QTest::newRow("aborted") << QByteArray("ulimit -c 0; kill -ABRT $$") << false;
}

void tst_Alert::exitStatusTells()
{
    QFETCH(QByteArray, commands);
    QFETCH(bool, shown);
    m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));
    for (const char* program : {"xmessage", "kdialog", "zenity"}) {
        provide(QLatin1String(program), commands);

        QCOMPARE(alert(QStringLiteral("Error"), QStringLiteral("No space.")),
                 QByteArray(shown ? "" : "Error: No space.\n"));

        QVERIFY(words().value(0).endsWith(program));
    }
}

void tst_Alert::waitsUntilItIsDismissed()
{
    m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));
    const QString pipe = path(QStringLiteral("record/pipe"));
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    provide(QStringLiteral("zenity"), "read line <pipe\necho dismissed");

    start({QStringLiteral("Error"), QStringLiteral("No space.")}, "and says so");
    QTRY_VERIFY(!words().isEmpty());
    QFile dismissal(pipe);
    QVERIFY(dismissal.open(QIODevice::WriteOnly));
    dismissal.write("\n");
    dismissal.close();

    QVERIFY(hasEnded());
    QCOMPARE(m_process->readAllStandardOutput(), QByteArray("dismissed\nreturned\n"));
}

void tst_Alert::signalsDoNotEndTheWaiting()
{
    m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));
    provide(QStringLiteral("zenity"), "kill -USR1 $PPID\nkill -USR1 $PPID\necho dismissed");

    QCOMPARE(alert(QStringLiteral("Error"), QStringLiteral("No space."), "and says so"),
             QByteArray());

    QCOMPARE(m_process->readAllStandardOutput(), QByteArray("dismissed\nreturned\n"));
}

void tst_Alert::ignoredChildrenDoNoHarm()
{
    m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));
    provide(QStringLiteral("zenity"), "echo dismissed");

    QCOMPARE(alert(QStringLiteral("Error"), QStringLiteral("No space."), "without children"),
             QByteArray());

    QCOMPARE(m_process->readAllStandardOutput(), QByteArray("dismissed\nreturned\n"));
}

void tst_Alert::environmentIsTheProcesssButForItsLibraries()
{
    m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));
    m_environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    m_environment.insert(QStringLiteral("LD_LIBRARY_PATH"), path(QStringLiteral("libraries")));
    m_environment.insert(QStringLiteral("QT_PLUGIN_PATH"), path(QStringLiteral("plugins")));
    m_environment.insert(QStringLiteral("NOT_LD_PRELOAD"), QStringLiteral("kept"));
    m_environment.insert(QStringLiteral("LD_PRELOADED"), QStringLiteral("kept too"));
    m_environment.insert(QStringLiteral("XAUTHORITY"), QStringLiteral("/a\nb"));
    QVERIFY(m_environment.contains(QStringLiteral("LD_PRELOAD")));
    provide(QStringLiteral("zenity"));

    QCOMPARE(alert(QStringLiteral("Error"), QStringLiteral("No space.")), QByteArray());

    const QByteArrayList variables = environment();
    for (const char* kept : {"DISPLAY=:99", "NOT_LD_PRELOAD=kept", "LD_PRELOADED=kept too",
                             "XAUTHORITY=/a\nb", "LC_ALL=C.UTF-8"}) {
        QVERIFY2(variables.contains(kept), kept);
    }
    QVERIFY(variables.contains("HOME=" + qgetenv("HOME")));
    for (const QByteArray& variable : variables) {
        for (const char* dropped :
             {"LD_PRELOAD=", "LD_LIBRARY_PATH=", "QT_PLUGIN_PATH=", "LC_ALL=C\n"}) {
            QVERIFY2(!(variable + '\n').startsWith(dropped), variable.constData());
        }
    }
    const auto isLocale = [](const QByteArray& variable) { return variable.startsWith("LC_ALL="); };
    QCOMPARE(std::count_if(variables.begin(), variables.end(), isLocale), 1);
}

void tst_Alert::programIsChosenOnce()
{
    m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));
    m_environment.insert(QStringLiteral("OTHER_PATH"), path(QStringLiteral("bin2")));
    provide(QStringLiteral("xmessage"));
    provide(QStringLiteral("zenity"), "exit 0", QStringLiteral("bin2"));

    QCOMPARE(alert(QStringLiteral("Error"), QStringLiteral("No space."), "from another path"),
             QByteArray());

    QCOMPARE(words().value(0), QFile::encodeName(path(QStringLiteral("bin/xmessage"))));
    QVERIFY(environment().contains("PATH=" + QFile::encodeName(path(QStringLiteral("bin")))));
}

void tst_Alert::severalAlerts()
{
    m_environment.remove(QStringLiteral("DISPLAY"));

    start({QStringLiteral("Error"), QStringLiteral("No space."), QStringLiteral("No memory."),
           QStringLiteral("No space.")});

    QVERIFY(hasEnded());
    QCOMPARE(m_process->readAllStandardError(),
             QByteArray("Error: No space.\nError: No memory.\nError: No space.\n"));
}

void tst_Alert::nobodyReadsIt()
{
    QCOMPARE(alert(QStringLiteral("Error"), QStringLiteral("No space."), "without an error output"),
             QByteArray());

    QCOMPARE(m_process->readAllStandardOutput(), QByteArray("returned\n"));
}

void tst_Alert::allocatesNothing()
{
    for (const char* program : {"", "xmessage", "kdialog", "zenity"}) {
        if (*program)
            provide(QLatin1String(program));
        m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));

        start({QStringLiteral("Error"), QStringLiteral("No space.")}, "and counts");

        QVERIFY(hasEnded());
        QCOMPARE(m_process->readAllStandardOutput(), QByteArray("0 allocations\n"));
        QCOMPARE(words().isEmpty(), *program == '\0');
    }
}

void tst_Alert::realWindow_data()
{
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");

    QTest::newRow("a sentence") << "Error"
                                << "There is no space.";
    QTest::newRow("two lines") << "Error"
                               << "There is no space.\nTry again.";
    QTest::newRow("what looks like an option") << "--title"
                                               << "--help";
    QTest::newRow("beyond ASCII") << QString::fromUtf8("Größe 日") << QString::fromUtf8("Größe ä");
    QTest::newRow("no text") << "Error"
                             << "";
}

void tst_Alert::realWindow()
{
    QFETCH(QString, title);
    QFETCH(QString, text);
    // The one that the X server's own programs include.
    const QString xmessage = QStandardPaths::findExecutable(QStringLiteral("xmessage"));
    QVERIFY(!xmessage.isEmpty());
    QVERIFY(QFile::link(xmessage, path(QStringLiteral("bin/xmessage"))));
    m_environment.insert(QStringLiteral("LC_ALL"), QStringLiteral("C"));
    QCOMPARE(alertWindow(), 0U);

    start({title, text}, "and says so");
    QTRY_VERIFY(alertWindow() != 0);
    const xcb_window_t window = alertWindow();
    const QString id = QStringLiteral("0x%1").arg(window, 0, 16);
    QTRY_VERIFY(output("xwininfo", {QStringLiteral("-id"), id})
                    .contains(QLatin1String("Map State: IsViewable")));
    QCOMPARE(
        output("xprop",
               {QStringLiteral("-id"), id, QStringLiteral("-notype"), QStringLiteral("WM_NAME")}),
        QStringLiteral("WM_NAME = \"%1\"\n").arg(title));
    QCOMPARE(m_process->readAllStandardOutput(), QByteArray());
    pressReturn(window);

    QVERIFY(hasEnded());
    QCOMPARE(m_process->readAllStandardOutput(), QByteArray("returned\n"));
    QVERIFY(!m_process->readAllStandardError().contains(": " + text.toUtf8() + '\n'));
    QCOMPARE(alertWindow(), 0U);
}

namespace {

/// Shows an alert of a title and each text, in the given manner.
int showAlerts(const QByteArray& manner, const QStringList& words)
{
    const Platform::AlertTextPointer title = Platform::makeAlertText(words.first());
    std::vector<Platform::AlertTextPointer> texts;
    const QStringList rest = words.mid(1);
    for (const QString& text : rest)
        texts.push_back(Platform::makeAlertText(text));

    if (manner == "from another path")
        qputenv("PATH", qgetenv("OTHER_PATH"));
    if (manner == "without children")
        signal(SIGCHLD, SIG_IGN);
    if (manner == "without an error output")
        close(STDERR_FILENO);
    struct sigaction action = {}; // without SA_RESTART
    action.sa_handler = [](int) {};
    sigaction(SIGUSR1, &action, nullptr);

    s_counting = true;
    for (const Platform::AlertTextPointer& text : texts)
        Platform::showAlert(*title, *text);
    s_counting = false;
    if (manner == "and counts")
        std::printf("%d allocations\n", s_allocations.load());
    if (manner == "and says so" || manner.startsWith("without "))
        std::puts("returned");
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    if (argc > 4 && std::strcmp(argv[1], "--alert") == 0) {
        QStringList words;
        for (int i = 3; i < argc; ++i)
            words << QString::fromUtf8(argv[i]);
        return showAlerts(argv[2], words);
    }
    QCoreApplication application(argc, argv);
    tst_Alert test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_Alert.moc"
