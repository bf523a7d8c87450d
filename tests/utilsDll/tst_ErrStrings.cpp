#include "ErrStrings.h"

#include "CommonConstants.h"
#include "Files.h"
#include "LanguageManager.h"

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
#include <QTranslator>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <thread>
#include <type_traits>

#include <link.h>
#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>
#include <xcb/xcb.h>

using VEK_NAMESPACE::CErrStrings;
using VEK_NAMESPACE::CLanguageManager;

static_assert(!std::is_polymorphic<CErrStrings>::value
                  && !std::is_copy_constructible<CErrStrings>::value
                  && !std::is_copy_assignable<CErrStrings>::value,
              "it owns what it has prepared");

// What this process's memory is asked for.
static std::atomic<bool> s_counting(false);
static std::atomic<bool> s_failing(false); ///< there is no memory left
static std::atomic<int> s_allocations(0);
static std::atomic<int> s_living(0); ///< allocated less released, while it is counted

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
static void countAllocation(const volatile void*, size_t)
{
    s_allocations += s_counting;
    s_living += s_counting;
}

static void countRelease(const volatile void* memory)
{
    s_living -= s_counting && memory;
}

// A sanitizer has an allocator of its own, which tells of what it does and doesn't fail; not every
// compiler has its header.
extern "C" int __sanitizer_install_malloc_and_free_hooks( // NOLINT(*-reserved-identifier,cert-dcl*)
    void (*onAllocation)(const volatile void*, size_t), void (*onRelease)(const volatile void*));
[[maybe_unused]] static const int s_hooked =
    __sanitizer_install_malloc_and_free_hooks(countAllocation, countRelease);
#else
static bool mayAllocate()
{
    s_allocations += s_counting;
    return !s_failing;
}

static void* counted(void* memory)
{
    s_living += s_counting && memory;
    return memory;
}

extern "C" {

// NOLINTBEGIN(*-reserved-identifier,cert-dcl*): what the C library calls its own
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* memory, size_t size);
void __libc_free(void* memory);
// NOLINTEND(*-reserved-identifier,cert-dcl*)

void* malloc(size_t size)
{
    return mayAllocate() ? counted(__libc_malloc(size)) : nullptr;
}

void* calloc(size_t count, size_t size)
{
    return mayAllocate() ? counted(__libc_calloc(count, size)) : nullptr;
}

void* realloc(void* memory, size_t size)
{
    if (!mayAllocate())
        return nullptr;
    void* const moved = __libc_realloc(memory, size);
    if (!memory)
        counted(moved);
    return moved;
}

void free(void* memory)
{
    s_living -= s_counting && memory;
    __libc_free(memory);
}
}
#endif

namespace {

struct Texts
{
    const char* language;
    const char* title;
    const char* space;
    const char* memory;
    const char* photoshop;
    const char* exception;
};

constexpr Texts english = {
    "en",
    "Error",
    "Vek Marlowick 3 cannot start since there is not enough free space on your system disk.",
    "Vek Marlowick 3 must close because there is not enough memory available.\n"
    "Please close some other programs and try to start Vek Marlowick 3 again.",
    "Vek Marlowick 3 has run out of memory. The application may now become unstable. Please close "
    "Vek Marlowick 3 and Photoshop, quit all other programs running, and try again.",
    "Vek Marlowick 3 must close because of an unhandled exception.",
};

constexpr Texts german = {
    "de",
    "Fehler",
    "Vek Marlowick 3 kann nicht starten, da auf Ihrem Systemlaufwerk nicht genügend freier "
    "Speicherplatz vorhanden ist.",
    "Vek Marlowick 3 muss beendet werden, da nicht genügend Arbeitsspeicher verfügbar ist.\n"
    "Bitte schließen Sie einige andere Programme und versuchen Sie, Vek Marlowick 3 erneut zu "
    "starten.",
    "Vek Marlowick 3 hat keinen freien Arbeitsspeicher mehr. Das Programm kann jetzt instabil "
    "werden. Bitte schließen Sie Vek Marlowick 3 und Photoshop, beenden Sie alle anderen laufenden "
    "Programme und versuchen Sie es erneut.",
    "Vek Marlowick 3 muss wegen eines unbehandelten Ausnahmefehlers beendet werden.",
};

constexpr Texts french = {
    "fr",
    "Erreur",
    "Vek Marlowick 3 ne peut pas démarrer, car l’espace libre sur votre disque système est "
    "insuffisant.",
    "Vek Marlowick 3 doit se fermer, car la mémoire disponible est insuffisante.\n"
    "Veuillez fermer d’autres programmes et essayer de relancer Vek Marlowick 3.",
    "Vek Marlowick 3 n’a plus de mémoire disponible. L’application peut maintenant devenir "
    "instable. Veuillez fermer Vek Marlowick 3 et Photoshop, quitter tous les autres programmes en "
    "cours, puis réessayer.",
    "Vek Marlowick 3 doit se fermer à cause d’une exception non gérée.",
};

constexpr Texts japanese = {
    "ja",
    "エラー",
    "システムディスクの空き容量が不足しているため、Vek Marlowick 3 を起動できません。",
    "使用可能なメモリが不足しているため、Vek Marlowick 3 を終了します。\n"
    "ほかのプログラムをいくつか終了してから、Vek Marlowick 3 をもう一度起動してください。",
    "Vek Marlowick 3 のメモリが不足しています。アプリケーションが不安定になる可能性があります。"
    "Vek Marlowick 3 と Photoshop "
    "を閉じ、実行中のほかのプログラムをすべて終了してから、もう一度お試しください。",
    "処理されない例外が発生したため、Vek Marlowick 3 を終了します。",
};

/// Before any catalogue is loaded.
constexpr Texts untranslated = {
    "",
    "Error",
    "Mac free space drive message",
    "Out of memory. Program will be closed.",
    "Vek Marlowick 3 has run out of memory. The application may now become unstable. Please close "
    "Vek Marlowick 3 and Photoshop, quit all other programs running, and try again.",
    "Unhandled exception. Program will be closed.",
};

/// What an alert writes if no program can show it.
QByteArray written(const char* title, const char* text)
{
    return QByteArray(title) + ": " + text + '\n';
}

/// The four of them in the order in which everyText() asks for them.
QByteArray allWritten(const Texts& texts)
{
    return written(texts.title, texts.space) + written(texts.title, texts.memory)
        + written(texts.title, texts.photoshop) + written(texts.title, texts.exception);
}

QStringList everyText()
{
    return {"space", "memory", "photoshop", "exception"};
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

QString windowArgument(xcb_window_t window)
{
    return QStringLiteral("0x%1").arg(window, 0, 16);
}

/// Title and command of the alert's window.
QString alertProperties()
{
    const xcb_window_t window = alertWindow();
    return window
        ? output("xprop",
                 {QStringLiteral("-id"), windowArgument(window), QStringLiteral("-notype"),
                  QStringLiteral("WM_NAME"), QStringLiteral("WM_COMMAND")})
        : QString();
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

/// Alerts come up in a process of their own, which is this program once more.
class tst_ErrStrings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void textsOfTheLanguages_data();
    void textsOfTheLanguages();
    void textsWithoutACatalogue();
    void titleAndTextReachTheProgram_data();
    void titleAndTextReachTheProgram();
    void languageIsThatOfRetranslate();
    void clearDataSilences();
    void retranslateBringsTheTextsBack();
    void emptyTranslationIsShown();
    void productNameStandsInEveryPlace();
    void anyThreadShows();
    void severalObjects();

    void needsNoMemory_data();
    void needsNoMemory();
    void callsNothingOfQt_data();
    void callsNothingOfQt();
    void whatTheProcessLacksIsNoticed_data();
    void whatTheProcessLacksIsNoticed();
    void nothingIsLeaked_data();
    void nothingIsLeaked();

    void realWindows();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }

    /// A program of that name, which adds its arguments to a record.
    void provide(const QString& name)
    {
        const QString program = path(QStringLiteral("bin/") + name);
        QVERIFY(writeFile(program,
                          "#!/bin/sh\nfor word in \"$@\"; do printf '%s\\0' \"$word\"; done >>'"
                              + QFile::encodeName(path(QStringLiteral("words"))) + "'\n"));
        QVERIFY(QFile::setPermissions(program, QFile::ReadOwner | QFile::ExeOwner));
    }

    /// All arguments of all alerts.
    QByteArrayList words() const
    {
        QByteArrayList parts = readFile(path(QStringLiteral("words"))).split('\0');
        parts.removeLast();
        return parts;
    }

    /// Lets the process execute commands.
    void start(const QStringList& commands);
    bool hasEnded();
    /// What the process writes to its standard error.
    QByteArray alerts(const QStringList& commands);

    std::unique_ptr<QTemporaryDir> m_folder;
    QProcessEnvironment m_environment;
    std::unique_ptr<QProcess> m_process;
};

void tst_ErrStrings::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("bin")));
    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.insert(QStringLiteral("PATH"), path(QStringLiteral("bin")));
    m_environment.remove(QStringLiteral("WAYLAND_DISPLAY"));
    // ThreadSanitizer makes a fork of a vfork, at which libnss_wrapper allocates.
    m_environment.remove(QStringLiteral("LD_PRELOAD"));
}

void tst_ErrStrings::cleanup()
{
    while (m_process && m_process->state() != QProcess::NotRunning) {
        if (const xcb_window_t window = alertWindow())
            pressReturn(window);
        m_process->waitForFinished(100);
    }
    m_process.reset();
}

void tst_ErrStrings::start(const QStringList& commands)
{
    m_process = std::make_unique<QProcess>();
    m_process->setProcessEnvironment(m_environment);
    m_process->start(QCoreApplication::applicationFilePath(),
                     QStringList(QStringLiteral("--execute")) + commands);
}

bool tst_ErrStrings::hasEnded()
{
    return (m_process->state() == QProcess::NotRunning || m_process->waitForFinished())
        && m_process->exitStatus() == QProcess::NormalExit && m_process->exitCode() == 0;
}

QByteArray tst_ErrStrings::alerts(const QStringList& commands)
{
    start(commands);
    return hasEnded() ? m_process->readAllStandardError()
                      : QByteArray("ended badly: ") + m_process->readAllStandardError();
}

void tst_ErrStrings::textsOfTheLanguages_data()
{
    QTest::addColumn<QString>("language");
    QTest::addColumn<QByteArray>("shown");

    for (const Texts& texts : {english, german, french, japanese})
        QTest::newRow(texts.language) << QString::fromLatin1(texts.language) << allWritten(texts);
}

void tst_ErrStrings::textsOfTheLanguages()
{
    QFETCH(QString, language);
    QFETCH(QByteArray, shown);

    QCOMPARE(alerts(QStringList({language, "make"}) + everyText()), shown);
}

void tst_ErrStrings::textsWithoutACatalogue()
{
    QCOMPARE(alerts(QStringList("make") + everyText()), allWritten(untranslated));
}

void tst_ErrStrings::titleAndTextReachTheProgram_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QByteArray>("text");

    const auto addRow = [](const char* command, const char* text) {
        QTest::newRow(command) << QString::fromLatin1(command) << QByteArray(text);
    };
    addRow("space", french.space);
    addRow("memory", french.memory);
    addRow("photoshop", french.photoshop);
    addRow("exception", french.exception);
}

void tst_ErrStrings::titleAndTextReachTheProgram()
{
    QFETCH(QString, command);
    QFETCH(QByteArray, text);
    m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));
    const QByteArray title = french.title;
    const struct
    {
        const char* program;
        QByteArrayList words;
    } calls[] = {
        {"zenity", {"--error", "--no-markup", "--no-wrap", "--title=" + title, "--text=" + text}},
        {"kdialog", {"--title", title, "--error", text}},
        {"xmessage",
         {"-xrm", "*international: true", "-title", title, "-center", "-buttons", "OK:0",
          "-default", "OK", text}},
    };
    for (const auto& call : calls) {
        provide(QLatin1String(call.program));

        QCOMPARE(alerts({"fr", "make", command}), QByteArray());

        QCOMPARE(words(), call.words);
        QVERIFY(QFile::remove(path(QStringLiteral("words"))));
        QVERIFY(QFile::remove(path(QStringLiteral("bin/") + QLatin1String(call.program))));
    }
}

void tst_ErrStrings::languageIsThatOfRetranslate()
{
    QCOMPARE(alerts({"en", "make", "de", "exception", "retranslate", "exception", "space", "ja",
                     "memory", "retranslate", "memory", "photoshop"}),
             written(english.title, english.exception) + written(german.title, german.exception)
                 + written(german.title, german.space) + written(german.title, german.memory)
                 + written(japanese.title, japanese.memory)
                 + written(japanese.title, japanese.photoshop));
}

void tst_ErrStrings::clearDataSilences()
{
    provide(QStringLiteral("zenity"));
    m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));

    QCOMPARE(alerts(QStringList({"en", "make", "clear"}) + everyText() + QStringList("clear")
                    + everyText()),
             QByteArray());

    QVERIFY(!QFile::exists(path(QStringLiteral("words"))));
}

void tst_ErrStrings::retranslateBringsTheTextsBack()
{
    QCOMPARE(alerts(QStringList({"en", "make", "clear", "space", "retranslate"}) + everyText()
                    + QStringList({"clear", "space", "fr", "memory", "retranslate"}) + everyText()),
             allWritten(english) + allWritten(french));
}

void tst_ErrStrings::emptyTranslationIsShown()
{
    QCOMPARE(alerts(QStringList({"en", "empty texts", "let Qt be silent", "make"}) + everyText()),
             written("", "").repeated(4));

    provide(QStringLiteral("kdialog"));
    m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));
    QCOMPARE(alerts({"en", "empty texts", "let Qt be silent", "make", "space"}), QByteArray());
    QCOMPARE(words(), QByteArrayList({"--title", "", "--error", ""}));
}

void tst_ErrStrings::productNameStandsInEveryPlace()
{
    QCOMPARE(alerts({"places of their own", "make", "photoshop"}),
             written("Error", "Vek Marlowick 3, Vek Marlowick 3! Vek Marlowick 3 100%"));
}

void tst_ErrStrings::anyThreadShows()
{
    QCOMPARE(alerts({"en", "make", "exception on another thread"}),
             written(english.title, english.exception));
}

void tst_ErrStrings::severalObjects()
{
    // The second one replaces the first.
    QCOMPARE(alerts({"en", "make", "space", "de", "make", "space", "clear", "make", "memory"}),
             written(english.title, english.space) + written(german.title, german.space)
                 + written(german.title, german.memory));
}

void tst_ErrStrings::needsNoMemory_data()
{
    QTest::addColumn<QString>("program");

    for (const char* program : {"zenity", "kdialog", "xmessage"})
        QTest::newRow(program) << QString::fromLatin1(program);
    QTest::newRow("no program") << QString();
}

void tst_ErrStrings::needsNoMemory()
{
    QFETCH(QString, program);
    m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));
    if (!program.isEmpty())
        provide(program);

    QCOMPARE(alerts(QStringList({"en", "make", "no memory"}) + everyText()),
             program.isEmpty() ? allWritten(english) : QByteArray());

    QCOMPARE(m_process->readAllStandardOutput(), QByteArray("0 allocations\n"));
    for (const char* text : {english.space, english.memory, english.photoshop, english.exception}) {
        QVERIFY(program.isEmpty() || words().contains(text)
                || words().contains(QByteArray("--text=") + text));
    }

    // Nor is any needed to show nothing.
    QCOMPARE(alerts(QStringList({"en", "make", "clear", "no memory"}) + everyText()), QByteArray());
    QCOMPARE(m_process->readAllStandardOutput(), QByteArray("0 allocations\n"));
}

void tst_ErrStrings::callsNothingOfQt_data()
{
    needsNoMemory_data();
}

void tst_ErrStrings::callsNothingOfQt()
{
    QFETCH(QString, program);
    m_environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));
    if (!program.isEmpty())
        provide(program);

    QCOMPARE(alerts(QStringList({"en", "make", "no Qt"}) + everyText()),
             program.isEmpty() ? allWritten(english) : QByteArray());

    QCOMPARE(m_process->readAllStandardOutput(), QByteArray());
    QCOMPARE(program.isEmpty(), !QFile::exists(path(QStringLiteral("words"))));

    QCOMPARE(alerts(QStringList({"en", "make", "clear", "no Qt"}) + everyText()), QByteArray());
}

void tst_ErrStrings::whatTheProcessLacksIsNoticed_data()
{
    QTest::addColumn<QStringList>("commands");
    QTest::addColumn<bool>("endsWell");
    QTest::addColumn<QString>("output");

    const auto addRow = [](const char* title, const QStringList& commands, bool endsWell,
                           const char* output) {
        QTest::newRow(title) << commands << endsWell << QString::fromLatin1(output);
    };
    addRow("a call of Qt's", {"call Qt"}, true, "");
    addRow("a call of Qt's where it can't be", {"no Qt", "call Qt"}, false, "");
    addRow("an allocation", {"allocate"}, true, "");
    addRow("an allocation where nothing may be", {"no memory", "allocate"}, true,
           "1 allocations\n");
    // A failing one throws, which takes memory in its turn.
    addRow("an allocation of C++'s", {"no memory", "allocate as C++ does"}, true,
           "[1-9] allocations\n");
}

void tst_ErrStrings::whatTheProcessLacksIsNoticed()
{
    QFETCH(QStringList, commands);
    QFETCH(bool, endsWell);
    QFETCH(QString, output);

    start(QStringList("make") + commands);

    QCOMPARE(hasEnded(), endsWell);
    const QRegularExpression expected(QStringLiteral("\\A%1\\z").arg(output));
    QVERIFY(expected.match(QString::fromLatin1(m_process->readAllStandardOutput())).hasMatch());
}

void tst_ErrStrings::nothingIsLeaked_data()
{
    QTest::addColumn<QString>("rounds");

    QTest::newRow("clear and make anew") << "1000 rounds of clear, retranslate";
    QTest::newRow("make anew") << "1000 rounds of retranslate";
    QTest::newRow("clear") << "1000 rounds of clear";
    QTest::newRow("make, show nothing and destroy") << "1000 rounds of make";
    QTest::newRow("make, clear and destroy") << "1000 rounds of make, clear";
}

void tst_ErrStrings::nothingIsLeaked()
{
    QFETCH(QString, rounds);

    QCOMPARE(alerts({"ja", "make", rounds}), QByteArray());

    QCOMPARE(m_process->readAllStandardOutput(), QByteArray("0 more allocations live\n"));
}

void tst_ErrStrings::realWindows()
{
    // The one that the X server's own programs include.
    const QString xmessage = QStandardPaths::findExecutable(QStringLiteral("xmessage"));
    QVERIFY(!xmessage.isEmpty());
    QVERIFY(QFile::link(xmessage, path(QStringLiteral("bin/xmessage"))));
    QCOMPARE(alertWindow(), 0U);

    start(QStringList({"en", "say what returns", "make"}) + everyText());
    for (const char* text : {english.space, english.memory, english.photoshop, english.exception}) {
        const QString shown =
            QString::fromUtf8(text).replace(QLatin1Char('\n'), QLatin1String("\\n"));
        // The window of the one before may still be there, and have the same number.
        QTRY_VERIFY(alertProperties().contains(shown));
        QVERIFY2(alertProperties().startsWith(QStringLiteral("WM_NAME = \"Error\"\n")),
                 qPrintable(alertProperties()));
        const xcb_window_t window = alertWindow();
        QTRY_VERIFY(output("xwininfo", {QStringLiteral("-id"), windowArgument(window)})
                        .contains(QLatin1String("Map State: IsViewable")));
        QCOMPARE(m_process->readAllStandardOutput(), QByteArray());

        pressReturn(window);

        QVERIFY(m_process->waitForReadyRead());
        QCOMPARE(m_process->readAllStandardOutput(), QByteArray("returned\n"));
    }

    QVERIFY(hasEnded());
    QCOMPARE(alertWindow(), 0U);
}

namespace {

/// Translates the texts of the context QObject.
class Translations : public QTranslator
{
public:
    using Function = QString (*)(const char* source);

    explicit Translations(Function function)
        : m_function(function)
    {
        QCoreApplication::installTranslator(this);
    }
    ~Translations() override { QCoreApplication::removeTranslator(this); }

    bool isEmpty() const override { return false; }

    QString translate(const char* context, const char* source, const char*, int) const override
    {
        return std::strcmp(context, "QObject") == 0 ? m_function(source) : QString();
    }

private:
    Q_DISABLE_COPY(Translations)

    const Function m_function;
};

bool changeLanguage(const char* abbreviation)
{
    CLanguageManager& manager = *CLanguageManager::instance();
    manager.loadLanguages();
    for (int row = 0; row < manager.model()->rowCount(); ++row) {
        if (manager.model()->item(row, 3)->text() == QLatin1String(abbreviation)) {
            if (!manager.changeLanguage(row)) // it is the stored one already
                manager.loadLanguageForApp();
            return true;
        }
    }
    return false;
}

/// Makes Qt's code executable or not, from now on.
void setQtExecutable(bool executable)
{
    dl_iterate_phdr(
        [](dl_phdr_info* library, size_t, void* wanted) {
            if (!std::strstr(library->dlpi_name, "libQt5"))
                return 0;
            const auto page = ElfW(Addr)(sysconf(_SC_PAGESIZE));
            const int protection = *static_cast<bool*>(wanted) ? PROT_READ | PROT_EXEC : PROT_READ;
            for (int i = 0; i < library->dlpi_phnum; ++i) {
                const ElfW(Phdr)& segment = library->dlpi_phdr[i];
                if (segment.p_type != PT_LOAD || !(segment.p_flags & PF_X))
                    continue;
                const ElfW(Addr) address = library->dlpi_addr + segment.p_vaddr;
                const ElfW(Addr) begin = address & ~(page - 1);
                const ElfW(Addr) end = address + segment.p_memsz;
                if (mprotect(reinterpret_cast<void*>(begin), end - begin, protection) != 0)
                    abort();
            }
            return 0;
        },
        &executable);
}

void allocate()
{
    void* volatile memory = std::malloc(16);
    std::free(memory);
}

void allocateAsCppDoes()
{
    int* volatile number = new (std::nothrow) int(1);
    delete number;
}

/// Counts what is still allocated after many rounds and wasn't before.
template <typename Round>
void rounds(Round round)
{
    round(); // what is only made once
    s_counting = true;
    for (int i = 0; i < 1000; ++i)
        round();
    s_counting = false;
    std::printf("%d more allocations live\n", s_living.load());
}

/// The process's side. Without Qt and without memory only the commands after those are executed
/// that need neither.
int execute(int count, char* commands[])
{
    const rlimit noCore = {0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    std::optional<CErrStrings> strings;
    std::unique_ptr<Translations> translations;
    bool saysWhatReturns = false;
    bool isWithoutMemory = false;

    for (int i = 0; i < count; ++i) {
        const auto is = [command = commands[i]](const char* name) {
            return std::strcmp(command, name) == 0;
        };
        const bool shows = is("space") || is("memory") || is("photoshop") || is("exception");
        if (is("space"))
            strings->ShowSmallFreeSpaceDialog();
        else if (is("memory"))
            strings->ShowOutOfMemoryDialog();
        else if (is("photoshop"))
            strings->ShowOutOfMemoryInPhotoshopDialog();
        else if (is("exception"))
            strings->ShowUnhandledExceptionDialog();
        else if (is("exception on another thread"))
            std::thread([&strings] { strings->ShowUnhandledExceptionDialog(); }).join();
        else if (is("make"))
            strings.emplace();
        else if (is("clear"))
            strings->ClearData();
        else if (is("retranslate"))
            strings->Retranslate();
        else if (is("empty texts"))
            translations =
                std::make_unique<Translations>([](const char*) { return QString::fromLatin1(""); });
        else if (is("let Qt be silent")) // it misses the places for the product's name
            qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        else if (is("places of their own"))
            translations = std::make_unique<Translations>([](const char* source) {
                return *source == '%' ? QStringLiteral("%2, %1! %2 100%") : QString();
            });
        else if (is("say what returns"))
            saysWhatReturns = true;
        else if (is("no memory"))
            s_counting = s_failing = isWithoutMemory = true;
        else if (is("allocate"))
            allocate();
        else if (is("allocate as C++ does"))
            allocateAsCppDoes();
        else if (is("no Qt"))
            setQtExecutable(false);
        else if (is("call Qt"))
            qputenv("CALLED", "1");
        else if (is("1000 rounds of clear, retranslate"))
            rounds([&strings] {
                strings->ClearData();
                strings->Retranslate();
            });
        else if (is("1000 rounds of retranslate"))
            rounds([&strings] { strings->Retranslate(); });
        else if (is("1000 rounds of clear"))
            rounds([&strings] { strings->ClearData(); });
        else if (is("1000 rounds of make"))
            rounds([] { const CErrStrings other; });
        else if (is("1000 rounds of make, clear"))
            rounds([] { CErrStrings().ClearData(); });
        else if (!changeLanguage(commands[i]))
            return EXIT_FAILURE;
        if (shows && saysWhatReturns) {
            std::puts("returned");
            std::fflush(stdout);
        }
    }

    s_counting = s_failing = false;
    setQtExecutable(true);
    if (isWithoutMemory)
        std::printf("%d allocations\n", s_allocations.load());
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    if (argc > 2 && std::strcmp(argv[1], "--execute") == 0)
        return execute(argc - 2, argv + 2);
    tst_ErrStrings test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ErrStrings.moc"
