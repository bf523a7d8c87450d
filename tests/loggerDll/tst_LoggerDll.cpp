#include "Assertions.h"
#include "Logger.h"

#include <QByteArray>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLibrary>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <csignal>
#include <ctime>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

using namespace VEK_NAMESPACE;

namespace {

constexpr qint64 maxFileSize = 5 << 20;

struct Line
{
    QDateTime time;
    char level = 0;
    qint64 thread = 0;
    QString module;
    QString text;
};

using Lines = std::vector<Line>;

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The lines of a file; what is no whole line of valid UTF-8 has the text "broken: ...".
Lines linesOf(const QString& path)
{
    static const QRegularExpression format(
        QStringLiteral("^(\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d\\.\\d{3}Z) ([DE]) (\\d+) "
                       "\\[([^]]*)\\] (.*)$"));

    Lines result;
    QList<QByteArray> pieces = contents(path).split('\n');
    if (!pieces.last().isEmpty())
        pieces.last().prepend("no end of line: ");
    else
        pieces.removeLast();
    for (const QByteArray& piece : qAsConst(pieces)) {
        const QString text = QString::fromUtf8(piece);
        const QRegularExpressionMatch match = format.match(text);
        Line line;
        line.text = QStringLiteral("broken: ") + text;
        if (match.hasMatch() && text.toUtf8() == piece) {
            line.time = QDateTime::fromString(match.captured(1), Qt::ISODateWithMs);
            line.level = match.captured(2).at(0).toLatin1();
            line.thread = match.captured(3).toLongLong();
            line.module = match.captured(4);
            line.text = match.captured(5);
        }
        result.push_back(line);
    }
    return result;
}

QStringList textsOf(const QString& path)
{
    QStringList result;
    for (const Line& line : linesOf(path))
        result << line.text;
    return result;
}

QStringList filesIn(const QString& folder)
{
    return QDir(folder).entryList(QDir::Files, QDir::Name);
}

int entriesIn(const char* folder)
{
    return QDir(QString::fromLatin1(folder)).entryList(QDir::AllEntries | QDir::System).count();
}

qint64 thisThread()
{
    return syscall(SYS_gettid);
}

/// A process that logs at this one's orders.
class LoggerProcess
{
public:
    LoggerProcess(const QString& folder, const QString& module)
    {
        m_process.start(QCoreApplication::applicationDirPath() + QStringLiteral("/loggerProcess"),
                        {folder, module});
        m_isReady = answers("ready\n");
    }
    ~LoggerProcess()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    bool isReady() const { return m_isReady; }

    bool log(char level, const QByteArray& text)
    {
        m_process.write(level + (' ' + text + '\n'));
        return answers("logged\n");
    }

    void flood() { m_process.write("flood\n"); }

    void kill()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    bool exit(const QByteArray& command = "exit")
    {
        m_process.write(command + '\n');
        return m_process.waitForFinished() && m_process.exitStatus() == QProcess::NormalExit
            && m_process.exitCode() == 0;
    }

    /// What it printed beside its answers.
    QByteArray printed()
    {
        return m_process.readAllStandardOutput() + m_process.readAllStandardError();
    }

private:
    Q_DISABLE_COPY(LoggerProcess)

    bool answers(const QByteArray& expected)
    {
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead())
                return false;
        }
        return m_process.readLine() == expected;
    }

    QProcess m_process;
    bool m_isReady = false;
};

/// While it lives files of this process grow no longer than \a size.
class FileSizeLimit
{
public:
    explicit FileSizeLimit(rlim_t size)
        : m_previousHandler(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &m_previous);
        const rlimit limit = {size, m_previous.rlim_max};
        m_isSet = setrlimit(RLIMIT_FSIZE, &limit) == 0;
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &m_previous);
        std::signal(SIGXFSZ, m_previousHandler);
    }

    bool isSet() const { return m_isSet; }

private:
    Q_DISABLE_COPY(FileSizeLimit)

    void (*m_previousHandler)(int);
    rlimit m_previous = {};
    bool m_isSet = false;
};

} // namespace

class tst_LoggerDll : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    // The only one without a setup is the first.
    void thereIsNothingBeforeTheSetup();
    void loadingDoesNothingVisible();
    void thereIsOneLogger();
    void itStaysWhenTheLibraryIsUnloaded();
    void itTakesTheLibrarysLines();

    void aLineTellsTimeLevelThreadModuleAndText();
    void aTextIsOneLineOfUtf8_data();
    void aTextIsOneLineOfUtf8();
    void anEndlessTextIsCut();
    void levelsFilter_data();
    void levelsFilter();

    void moduleNamesAreSafeFileNames_data();
    void moduleNamesAreSafeFileNames();
    void aMissingFolderIsCreated();
    void linesGoOnBehindThoseOfARunBefore();
    void whatIsNoLineOfALogStays_data();
    void whatIsNoLineOfALogStays();
    void aFileThatIsTooLargeToBeReadIsOpenedAllTheSame();
    void aPipeInPlaceOfTheLockDoesNoHarm();
    void aSecondSetupSwitchesOver();
    void whatCannotBeWrittenIsDropped_data();
    void whatCannotBeWrittenIsDropped();
    void aFullDiskLeavesNoHalfLine();
    void aFileThatCannotBeOpenedAfterRotationComesBack();

    void errorsAreWrittenAtOnce();
    void everyLineIsWrittenWithinASecond();
    void filesRotate();
    void aFullFileOfARunBeforeRotates();
    void manyThreadsLoseNoLine();
    void aSetupWhileThreadsLogLosesNoLine();

    void eachProcessHasAFileOfItsOwn();
    void aKilledProcessLosesAtMostTheLastSecond();
    void theHalfLineOfAKilledProcessIsTakenAway();
    void aNormalExitLosesNothing();
    void aNormalExitLosesNoLateLine();

    void aTraceTellsEntryExitAndDuration();
    void aTraceBearsNullPointers();
    void withoutInformationThereIsNoTrace();

    void onlyItsFunctionIsExported();

private:
    QString path(const char* file) const { return m_folder->filePath(QString::fromLatin1(file)); }
    void setup(const char* module = "module", char level = 'D');
    void closeFiles();

    using LoggerInstance = ILoggerInterface* (*)();

    QLibrary m_library{QStringLiteral(LOGGER_LIBRARY)};
    std::unique_ptr<QTemporaryDir> m_folder;
    LoggerInstance m_loggerInstance = nullptr;
    ILoggerInterface* m_logger = nullptr;
    int m_threadsStarted = 0;
    int m_filesOpened = 0;
};

void tst_LoggerDll::initTestCase()
{
    // Five hours behind UTC.
    qputenv("TZ", "XST5");
    tzset();

    const int threads = entriesIn("/proc/self/task");
    const int files = entriesIn("/proc/self/fd");
    QVERIFY2(m_library.load(), qPrintable(m_library.errorString()));
    m_loggerInstance = reinterpret_cast<LoggerInstance>(m_library.resolve("loggerInstance"));
    QVERIFY(m_loggerInstance);
    m_logger = m_loggerInstance();
    QVERIFY(m_logger);
    m_threadsStarted = entriesIn("/proc/self/task") - threads;
    m_filesOpened = entriesIn("/proc/self/fd") - files;
}

void tst_LoggerDll::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_LoggerDll::cleanup()
{
    g_logger = nullptr;
    closeFiles();
}

void tst_LoggerDll::setup(const char* module, char level)
{
    m_logger->setup(m_folder->path().toStdString(), module, level);
}

/// All lines are in their files then.
void tst_LoggerDll::closeFiles()
{
    m_logger->setup("", "", 'D');
}

void tst_LoggerDll::thereIsNothingBeforeTheSetup()
{
    m_logger->log('D', "too early");
    m_logger->log('E', "too early");
    QVERIFY(!m_logger->trace("file", "function", 1));
    QCOMPARE(filesIn(QDir::currentPath()), QStringList());

    setup();
    m_logger->log('E', "in time");
    QCOMPARE(textsOf(path("module.log")), QStringList{QStringLiteral("in time")});
}

void tst_LoggerDll::loadingDoesNothingVisible()
{
    QCOMPARE(m_threadsStarted, 0);
    QCOMPARE(m_filesOpened, 0);
    QVERIFY(!g_logger);
}

void tst_LoggerDll::thereIsOneLogger()
{
    QVERIFY(m_loggerInstance() == m_logger);
}

void tst_LoggerDll::itStaysWhenTheLibraryIsUnloaded()
{
    setup();
    m_logger->log('D', "before");
    QVERIFY(m_library.unload());
    m_logger->log('D', "after");

    QTRY_COMPARE(textsOf(path("module.log")),
                 (QStringList{QStringLiteral("before"), QStringLiteral("after")}));
    QVERIFY(m_library.load());
}

void tst_LoggerDll::itTakesTheLibrarysLines()
{
    setup();
    g_logger = m_logger;
    ASSERT_X(false, "Bug!!!");

    const Lines lines = linesOf(path("module.log"));
    QCOMPARE(lines.size(), size_t(1));
    QCOMPARE(lines[0].level, 'E');
    QVERIFY2(lines[0].text.startsWith(QLatin1String("ASSERT_X in ")), qPrintable(lines[0].text));
    QVERIFY2(lines[0].text.endsWith(QLatin1String(": Bug!!!")), qPrintable(lines[0].text));
}

void tst_LoggerDll::aLineTellsTimeLevelThreadModuleAndText()
{
    setup("Main window");
    const QDateTime before = QDateTime::currentDateTimeUtc();
    m_logger->log('D', "an information");
    qint64 otherThread = 0;
    std::thread([&] {
        otherThread = thisThread();
        m_logger->log('E', "a mistake");
    }).join();
    const QDateTime after = QDateTime::currentDateTimeUtc();

    const Lines lines = linesOf(path("Main window.log"));
    QCOMPARE(lines.size(), size_t(2));
    QCOMPARE(lines[0].level, 'D');
    QCOMPARE(lines[0].thread, thisThread());
    QCOMPARE(lines[0].module, QStringLiteral("Main window"));
    QCOMPARE(lines[0].text, QStringLiteral("an information"));
    QVERIFY(before <= lines[0].time);
    QCOMPARE(lines[1].level, 'E');
    QCOMPARE(lines[1].thread, otherThread);
    QCOMPARE(lines[1].module, QStringLiteral("Main window"));
    QCOMPARE(lines[1].text, QStringLiteral("a mistake"));
    QVERIFY(lines[1].time <= after);
}

void tst_LoggerDll::aTextIsOneLineOfUtf8_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("written");

    const auto row = [](const char* name, const char* text, const char* written) {
        QTest::newRow(name) << QByteArray(text) << QByteArray(written);
    };
    row("plain text stays", "Info: 1 + 1 = 2", "Info: 1 + 1 = 2");
    row("a null pointer is an empty text", nullptr, "");
    row("an empty text is an empty text", "", "");
    row("spaces at both ends stay", " text ", " text ");
    row("braces stay", "{} {0} {:x} {", "{} {0} {:x} {");
    row("per cent signs stay", "%v 100% %1 %", "%v 100% %1 %");
    row("a backslash stays", "C:\\new", "C:\\new");
    row("a line break is an n", "one\ntwo\n", "one\\ntwo\\n");
    row("a carriage return is an r", "one\r\ntwo", "one\\r\\ntwo");
    row("a tabulator is a t", "one\ttwo", "one\\ttwo");
    row("a control character is a number", "\x01 \x1b[31m", "\\u0001 \\u001b[31m");
    row("so is the last one of ASCII", "a\x7f", "a\\u007f");
    row("so is one beyond ASCII", "a\xc2\x85z", "a\\u0085z");
    row("so are other separators of lines",
        "a\xe2\x80\xa8"
        "b\xe2\x80\xa9"
        "c",
        "a\\u2028b\\u2029c");
    row("letters beyond ASCII stay",
        "gr\xc3\xb6\xc3\x9f"
        "er",
        "gr\xc3\xb6\xc3\x9f"
        "er");
    row("so do those beyond 16 bits", "\xf0\x9f\x93\xb7", "\xf0\x9f\x93\xb7");
    row("a byte of no character is replaced", "a\xffz", "a\xef\xbf\xbdz");
    row("so is a character without its end", "caf\xc3", "caf\xef\xbf\xbd");
    row("so is each byte of an overlong one", "\xc0\xafz", "\xef\xbf\xbd\xef\xbf\xbdz");
    row("so is half of a pair", "\xed\xa0\x80z", "\xef\xbf\xbd\xef\xbf\xbd\xef\xbf\xbdz");
}

void tst_LoggerDll::aTextIsOneLineOfUtf8()
{
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, written);

    setup();
    m_logger->log('E', text.isNull() ? nullptr : text.constData());

    const QByteArray line = contents(path("module.log"));
    QCOMPARE(line.mid(line.indexOf("] ") + 2), written + '\n');
    QCOMPARE(linesOf(path("module.log")).size(), size_t(1));
}

void tst_LoggerDll::anEndlessTextIsCut()
{
    setup();
    m_logger->log('D', QByteArray(2 * maxFileSize, 'x').constData());
    m_logger->log('D', QByteArray(2 * maxFileSize, '\x01').constData());
    m_logger->log('E', "end");

    const QStringList texts = textsOf(path("module.1.log")) + textsOf(path("module.log"));
    QCOMPARE(texts.count(), 3);
    QVERIFY(texts[0].startsWith(QLatin1String("xxx")));
    QVERIFY(texts[0].endsWith(QString::fromUtf8("xxx\xe2\x80\xa6")));
    QVERIFY(texts[1].startsWith(QLatin1String("\\u0001\\u0001")));
    QVERIFY(texts[1].endsWith(QString::fromUtf8("\\u0001\xe2\x80\xa6")));
    QCOMPARE(texts[2], QStringLiteral("end"));
    for (const char* file : {"module.log", "module.1.log"})
        QVERIFY(QFileInfo(path(file)).size() <= maxFileSize);
}

void tst_LoggerDll::levelsFilter_data()
{
    QTest::addColumn<char>("level");
    QTest::addColumn<QStringList>("written");

    const QStringList all = {QStringLiteral("D information"), QStringLiteral("E mistake"),
                             QStringLiteral("D anything else")};
    QTest::newRow("D writes both") << 'D' << all;
    QTest::newRow("E writes mistakes only") << 'E' << QStringList{QStringLiteral("E mistake")};
    QTest::newRow("no level is D") << '\0' << all;
    QTest::newRow("any other level is D") << 'W' << all;
    QTest::newRow("a small e is D") << 'e' << all;
}

void tst_LoggerDll::levelsFilter()
{
    QFETCH(char, level);
    QFETCH(QStringList, written);

    setup("module", level);
    m_logger->log('D', "information");
    m_logger->log('E', "mistake");
    m_logger->log('W', "anything else");
    closeFiles();

    QStringList lines;
    for (const Line& line : linesOf(path("module.log")))
        lines << QLatin1Char(line.level) + QStringLiteral(" ") + line.text;
    QCOMPARE(lines, written);
}

void tst_LoggerDll::moduleNamesAreSafeFileNames_data()
{
    QTest::addColumn<QByteArray>("module");
    QTest::addColumn<QString>("file");

    const auto row = [](const char* name, const QByteArray& module, const char* file) {
        QTest::newRow(name) << module << QString::fromUtf8(file);
    };
    row("letters, digits and signs stay", "krnv3 (LR)-7_%v", "krnv3 (LR)-7_%v.log");
    row("letters beyond ASCII stay",
        "Gr\xc3\xb6\xc3\x9f"
        "e \xf0\x9f\x93\xb7",
        "Gr\xc3\xb6\xc3\x9f"
        "e \xf0\x9f\x93\xb7.log");
    row("no separators", "../a/b\\c:d", "___a_b_c_d.log");
    row("no dots, which older files have", "a.1", "a_1.log");
    row("no hidden file", ".profile", "_profile.log");
    row("no control characters", "a\nb\x7f", "a_b_.log");
    row("no outer spaces", " a b ", "a b.log");
    row("an empty name has one", "", "unnamed.log");
    row("so has a blank one", "  ", "unnamed.log");
    row("a long name is cut", QByteArray(300, 'x'),
        "xxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxxx.log");
}

void tst_LoggerDll::moduleNamesAreSafeFileNames()
{
    QFETCH(QByteArray, module);
    QFETCH(QString, file);

    setup(module.constData());
    m_logger->log('E', "text");

    QCOMPARE(filesIn(m_folder->path()), QStringList{file});
    const Lines lines = linesOf(m_folder->filePath(file));
    QCOMPARE(lines.size(), size_t(1));
    QCOMPARE(lines[0].module, file.left(file.size() - 4));
    QCOMPARE(lines[0].text, QStringLiteral("text"));
}

void tst_LoggerDll::aMissingFolderIsCreated()
{
    const QString folder = m_folder->filePath(QString::fromUtf8("a/gr\xc3\xb6\xc3\x9f"
                                                                "er/Logs/"));
    m_logger->setup(folder.toStdString(), "module", 'D');
    m_logger->log('E', "text");

    QCOMPARE(filesIn(folder), QStringList{QStringLiteral("module.log")});
    QCOMPARE(textsOf(folder + QStringLiteral("module.log")), QStringList{QStringLiteral("text")});
}

void tst_LoggerDll::linesGoOnBehindThoseOfARunBefore()
{
    QFile file(path("module.log"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("2001-02-03T04:05:06.789Z D 1 [module] before\n");
    file.close();

    setup();
    m_logger->log('E', "after");
    QCOMPARE(textsOf(path("module.log")),
             (QStringList{QStringLiteral("before"), QStringLiteral("after")}));
}

void tst_LoggerDll::whatIsNoLineOfALogStays_data()
{
    QTest::addColumn<QByteArray>("before");
    QTest::addColumn<QString>("file");

    QTest::newRow("zero bytes") << QByteArray(100000, '\0') << QStringLiteral("module.log");
    QTest::newRow("more zero bytes than a file holds")
        << QByteArray(6 << 20, '\0') << QStringLiteral("module.1.log");
    QTest::newRow("more zero bytes than a file holds, behind a line")
        << "a line\n" + QByteArray(6 << 20, '\0') << QStringLiteral("module.1.log");
}

/// The next line stands on a line of its own all the same.
void tst_LoggerDll::whatIsNoLineOfALogStays()
{
    QFETCH(QByteArray, before);
    QFETCH(QString, file);
    QFile newest(path("module.log"));
    QVERIFY(newest.open(QIODevice::WriteOnly));
    QCOMPARE(newest.write(before), qint64(before.size()));
    newest.close();

    setup();
    m_logger->log('E', "text");

    QVERIFY(contents(m_folder->filePath(file)).startsWith(before + '\n'));
    QCOMPARE(textsOf(path("module.log")).last(), QStringLiteral("text"));
}

void tst_LoggerDll::aFileThatIsTooLargeToBeReadIsOpenedAllTheSame()
{
    constexpr qint64 size = qint64(3) << 30; // of which the disk holds nothing
    QFile file(path("module.log"));
    QVERIFY(file.open(QIODevice::WriteOnly) && file.resize(size));
    file.close();

    setup();
    m_logger->log('E', "text");

    QCOMPARE(QFileInfo(path("module.1.log")).size(), size + 1);
    QCOMPARE(textsOf(path("module.log")), QStringList{QStringLiteral("text")});
}

/// Nobody is at its other end, so that whoever opens it waits for ever.
void tst_LoggerDll::aPipeInPlaceOfTheLockDoesNoHarm()
{
    QCOMPARE(mkfifo(QFile::encodeName(path(".module.lock")).constData(), 0600), 0);
    LoggerProcess process(m_folder->path(), QStringLiteral("module"));
    QVERIFY(process.isReady());
    QVERIFY(process.log('E', "text"));

    QCOMPARE(textsOf(path("module.log")), QStringList{QStringLiteral("text")});
}

void tst_LoggerDll::aSecondSetupSwitchesOver()
{
    const QTemporaryDir otherFolder;
    setup();
    m_logger->log('D', "first");
    setup("module");
    m_logger->log('D', "same module");
    setup("other");
    m_logger->log('D', "other module");
    m_logger->setup(otherFolder.path().toStdString(), "module", 'E');
    m_logger->log('D', "other level");
    m_logger->log('E', "other folder");

    QCOMPARE(filesIn(m_folder->path()),
             (QStringList{QStringLiteral("module.log"), QStringLiteral("other.log")}));
    QCOMPARE(textsOf(path("module.log")),
             (QStringList{QStringLiteral("first"), QStringLiteral("same module")}));
    QCOMPARE(textsOf(path("other.log")), QStringList{QStringLiteral("other module")});
    QCOMPARE(textsOf(otherFolder.filePath(QStringLiteral("module.log"))),
             QStringList{QStringLiteral("other folder")});
}

void tst_LoggerDll::whatCannotBeWrittenIsDropped_data()
{
    QTest::addColumn<QString>("folder");

    QTest::newRow("a file stands where the folder should") << QStringLiteral("file");
    QTest::newRow("the folder cannot be created") << QStringLiteral("read only/folder");
    QTest::newRow("the folder cannot be written to") << QStringLiteral("read only");
    QTest::newRow("a folder has the file's name") << QStringLiteral("taken");
    QTest::newRow("a pipe that nobody reads has the file's name") << QStringLiteral("pipe");
    QTest::newRow("the disk is full") << QStringLiteral("full");
    QTest::newRow("there is no folder") << QString();
}

void tst_LoggerDll::whatCannotBeWrittenIsDropped()
{
    QFETCH(QString, folder);

    const QDir root(m_folder->path());
    QFile file(root.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QVERIFY(root.mkpath(QStringLiteral("read only")));
    QVERIFY(QFile::setPermissions(root.filePath(QStringLiteral("read only")),
                                  QFile::ReadOwner | QFile::ExeOwner));
    QVERIFY(root.mkpath(QStringLiteral("taken/module.log")));
    QVERIFY(root.mkpath(QStringLiteral("pipe")));
    QCOMPARE(mkfifo(QFile::encodeName(path("pipe/module.log")).constData(), 0600), 0);
    QVERIFY(root.mkpath(QStringLiteral("full")));
    QVERIFY(
        QFile::link(QStringLiteral("/dev/full"), root.filePath(QStringLiteral("full/module.log"))));

    LoggerProcess process(folder.isEmpty() ? folder : root.filePath(folder),
                          QStringLiteral("module"));
    QVERIFY(process.isReady());
    QVERIFY(process.log('D', "information"));
    QVERIFY(process.log('E', "mistake"));
    QVERIFY(process.log('E', QByteArray(100000, 'x')));
    QVERIFY(process.exit());
    QCOMPARE(process.printed(), QByteArray());
    QCOMPARE(file.size(), qint64(0));
    QCOMPARE(filesIn(QDir::currentPath()), QStringList());
}

void tst_LoggerDll::aFullDiskLeavesNoHalfLine()
{
    const QByteArray text(1000, 'x');
    setup();
    {
        const FileSizeLimit limit(10500);
        QVERIFY(limit.isSet());
        for (int i = 0; i < 20; ++i)
            m_logger->log('E', text.constData());
    }
    const int fitting = textsOf(path("module.log")).count();
    QVERIFY(fitting == 9 || fitting == 10);
    m_logger->log('E', text.constData());

    QStringList expected;
    for (int i = 0; i <= fitting; ++i)
        expected << QString::fromLatin1(text);
    QCOMPARE(textsOf(path("module.log")), expected);
}

void tst_LoggerDll::aFileThatCannotBeOpenedAfterRotationComesBack()
{
    setup();
    m_logger->log('E', "first");
    QVERIFY(QDir(m_folder->path()).removeRecursively());
    // The first file is full by now, and there is no folder for a new one.
    const QByteArray text(500000, 'x');
    for (int i = 0; i < 12; ++i)
        m_logger->log('E', text.constData());
    m_logger->log('E', "lost");
    QVERIFY(!QFileInfo::exists(m_folder->path()));

    QVERIFY(QDir().mkpath(m_folder->path()));
    m_logger->log('E', "back again");
    QCOMPARE(textsOf(path("module.log")), QStringList{QStringLiteral("back again")});
}

void tst_LoggerDll::errorsAreWrittenAtOnce()
{
    setup();
    m_logger->log('D', "information");
    m_logger->log('E', "mistake");
    QCOMPARE(textsOf(path("module.log")),
             (QStringList{QStringLiteral("information"), QStringLiteral("mistake")}));
}

void tst_LoggerDll::everyLineIsWrittenWithinASecond()
{
    setup();
    for (const char* text : {"first", "second"}) {
        m_logger->log('D', text);
        QTRY_VERIFY(textsOf(path("module.log")).contains(QLatin1String(text)));
        const QDateTime written = QFileInfo(path("module.log")).lastModified();
        const qint64 waited = linesOf(path("module.log")).back().time.msecsTo(written);
        QVERIFY2(waited <= 1000, qPrintable(QString::number(waited)));
    }
}

void tst_LoggerDll::filesRotate()
{
    setup();
    const std::string rest(800, 'x');
    for (int number = 0; number < 25000; ++number)
        m_logger->log('D', (std::to_string(number) + ' ' + rest).c_str());
    closeFiles();

    QCOMPARE(filesIn(m_folder->path()),
             (QStringList{QStringLiteral("module.1.log"), QStringLiteral("module.2.log"),
                          QStringLiteral("module.log")}));
    int next = -1;
    for (const char* file : {"module.2.log", "module.1.log", "module.log"}) {
        const qint64 size = QFileInfo(path(file)).size();
        QVERIFY2(size <= maxFileSize, qPrintable(QString::number(size)));
        QVERIFY2(file == QByteArray("module.log") || size > maxFileSize - 100000,
                 qPrintable(QString::number(size)));
        for (const Line& line : linesOf(path(file))) {
            const int number = line.text.section(QLatin1Char(' '), 0, 0).toInt();
            if (next < 0)
                next = number;
            QCOMPARE(line.text, QStringLiteral("%1 ").arg(next) + QString::fromStdString(rest));
            ++next;
        }
    }
    QCOMPARE(next, 25000);
}

void tst_LoggerDll::aFullFileOfARunBeforeRotates()
{
    const QByteArray before = QByteArray(maxFileSize - 50, 'x') + '\n';
    QFile file(path("module.log"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(before), qint64(before.size()));
    file.close();

    setup();
    m_logger->log('E', "this line is longer than the room that is left");
    QVERIFY(contents(path("module.1.log")) == before);
    QCOMPARE(textsOf(path("module.log")),
             QStringList{QStringLiteral("this line is longer than the room that is left")});
}

void tst_LoggerDll::manyThreadsLoseNoLine()
{
    constexpr int threadCount = 8;
    constexpr int linesOfEach = 12500;
    constexpr int lineCount = threadCount * linesOfEach;

    setup();
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int thread = 0; thread < threadCount; ++thread) {
        threads.emplace_back([this, thread] {
            for (int i = 0; i < linesOfEach; ++i) {
                const std::string text = std::to_string(thread * linesOfEach + i) + " \xc3\xa4";
                m_logger->log(i % 1000 == 0 ? 'E' : 'D', text.c_str());
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    closeFiles();

    std::vector<int> seen(lineCount);
    for (const char* file : {"module.2.log", "module.1.log", "module.log"}) {
        for (const Line& line : linesOf(path(file))) {
            bool isNumber = false;
            const int number = line.text.section(QLatin1Char(' '), 0, 0).toInt(&isNumber);
            QVERIFY2(isNumber && number >= 0 && number < lineCount, qPrintable(line.text));
            QCOMPARE(line.text, QStringLiteral("%1 ").arg(number) + QChar(0xe4));
            ++seen[size_t(number)];
        }
    }
    QVERIFY(seen == std::vector<int>(lineCount, 1));
}

void tst_LoggerDll::aSetupWhileThreadsLogLosesNoLine()
{
    constexpr int setups = 100;
    constexpr int linesOfEach = 120;
    constexpr int lineCount = setups * linesOfEach;

    setup("a");
    std::atomic<int> begun{0};
    std::atomic<int> allowed{0};
    std::atomic<int> logged{0};
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int line = begun++; line < lineCount; line = begun++) {
                while (line >= allowed)
                    std::this_thread::yield();
                m_logger->log('D', "line");
                ++logged;
            }
        });
    }
    // Each is followed by the next one when half of its lines have come.
    for (int i = 0; i < setups; ++i) {
        setup(i % 2 == 0 ? "b" : "a");
        allowed += linesOfEach;
        while (logged < allowed - linesOfEach / 2)
            std::this_thread::yield();
    }
    for (std::thread& thread : threads)
        thread.join();
    closeFiles();

    QCOMPARE(filesIn(m_folder->path()),
             (QStringList{QStringLiteral("a.log"), QStringLiteral("b.log")}));
    const QStringList texts = textsOf(path("a.log")) + textsOf(path("b.log"));
    QCOMPARE(texts.count(), lineCount);
    QCOMPARE(texts.count(QStringLiteral("line")), lineCount);
}

void tst_LoggerDll::eachProcessHasAFileOfItsOwn()
{
    setup();
    m_logger->log('E', "first");
    LoggerProcess second(m_folder->path(), QStringLiteral("module"));
    QVERIFY(second.isReady());
    QVERIFY(second.log('E', "second"));
    LoggerProcess other(m_folder->path(), QStringLiteral("module-3"));
    QVERIFY(other.isReady());
    QVERIFY(other.log('E', "of another module"));
    LoggerProcess third(m_folder->path(), QStringLiteral("module"));
    QVERIFY(third.isReady());
    QVERIFY(third.log('E', "third"));
    // A file is free again when its process is gone, even if that was killed.
    second.kill();
    LoggerProcess fourth(m_folder->path(), QStringLiteral("module"));
    QVERIFY(fourth.isReady());
    QVERIFY(fourth.log('E', "fourth"));
    m_logger->log('E', "first again");

    QCOMPARE(textsOf(path("module.log")),
             (QStringList{QStringLiteral("first"), QStringLiteral("first again")}));
    QCOMPARE(textsOf(path("module-2.log")),
             (QStringList{QStringLiteral("second"), QStringLiteral("fourth")}));
    QCOMPARE(textsOf(path("module-3.log")), QStringList{QStringLiteral("of another module")});
    QCOMPARE(textsOf(path("module-4.log")), QStringList{QStringLiteral("third")});
    QCOMPARE(filesIn(m_folder->path()),
             (QStringList{QStringLiteral("module-2.log"), QStringLiteral("module-3.log"),
                          QStringLiteral("module-4.log"), QStringLiteral("module.log")}));
    QCOMPARE(linesOf(path("module-2.log")).back().module, QStringLiteral("module"));
}

void tst_LoggerDll::aKilledProcessLosesAtMostTheLastSecond()
{
    LoggerProcess process(m_folder->path(), QStringLiteral("module"));
    QVERIFY(process.isReady());
    QVERIFY(process.log('D', "early"));
    QElapsedTimer timer;
    timer.start();
    QTRY_VERIFY(timer.elapsed() > 1000);
    QVERIFY(process.log('D', "late"));
    process.kill();

    const QStringList texts = textsOf(path("module.log"));
    QVERIFY(!texts.isEmpty());
    QCOMPARE(texts[0], QStringLiteral("early"));
    QVERIFY(texts.count() == 1 || texts.mid(1) == QStringList{QStringLiteral("late")});
}

void tst_LoggerDll::theHalfLineOfAKilledProcessIsTakenAway()
{
    LoggerProcess process(m_folder->path(), QStringLiteral("module"));
    QVERIFY(process.isReady());
    process.flood();
    QTRY_VERIFY(QFileInfo(path("module.log")).size() > 1000000);
    process.kill();
    // What the kill may or may not have left, for certain.
    QFile newest(path("module.log"));
    QVERIFY(newest.open(QIODevice::Append));
    newest.write("2001-02-03T04:05:06.789Z D 1 [module] half \xe5\x86");
    newest.close();
    setup();

    int next = -1;
    for (const char* file : {"module.2.log", "module.1.log", "module.log"}) {
        for (const Line& line : linesOf(path(file))) {
            if (next < 0)
                next = line.text.section(QLatin1Char(' '), 0, 0).toInt();
            QCOMPARE(line.text,
                     QStringLiteral("%1 ").arg(next)
                         + QString::fromUtf8("\xe5\x86\x99\xe7\x9c\x9f"));
            ++next;
        }
    }
    QVERIFY(next > 1000);
}

void tst_LoggerDll::aNormalExitLosesNothing()
{
    LoggerProcess process(m_folder->path(), QStringLiteral("module"));
    QVERIFY(process.isReady());
    QVERIFY(process.log('D', "from main"));
    QVERIFY(process.exit("exit"));

    QCOMPARE(process.printed(), QByteArray());
    QCOMPARE(textsOf(path("module.log")), QStringList{QStringLiteral("from main")});
}

void tst_LoggerDll::aNormalExitLosesNoLateLine()
{
    LoggerProcess process(m_folder->path(), QStringLiteral("module"));
    QVERIFY(process.isReady());
    QVERIFY(process.log('D', "from main"));
    QVERIFY(process.exit("exit late"));

    QCOMPARE(process.printed(), QByteArray());
    QCOMPARE(textsOf(path("module.log")),
             (QStringList{QStringLiteral("from main"),
                          QStringLiteral("destroyed before the logger's end"),
                          QStringLiteral("destroyed after the logger's end")}));
}

void tst_LoggerDll::aTraceTellsEntryExitAndDuration()
{
    setup();
    {
        const QSharedPointer<ILoggerTrace> outer = m_logger->trace("a/file.cpp", "outer", 12);
        QVERIFY(outer);
        QSharedPointer<ILoggerTrace> inner;
        {
            const std::string file = "a/{}.cpp";
            const std::string function = "inner\n";
            inner = m_logger->trace(file.c_str(), function.c_str(), -1);
        }
        m_logger->log('D', "text");
        inner.clear();
    }
    closeFiles();

    const Lines lines = linesOf(path("module.log"));
    QCOMPARE(lines.size(), size_t(5));
    const char* const expected[] = {"Enter outer (a/file.cpp:12)", "Enter inner\\n (a/{}.cpp:-1)",
                                    "text", "Leave inner\\n (a/{}.cpp:-1) after N ms",
                                    "Leave outer (a/file.cpp:12) after N ms"};
    static const QRegularExpression duration(QStringLiteral("after (\\d+\\.\\d{3}) ms$"));
    for (size_t i = 0; i < lines.size(); ++i) {
        QString text = lines[i].text;
        QCOMPARE(text.replace(duration, QStringLiteral("after N ms")), QLatin1String(expected[i]));
        QCOMPARE(lines[i].level, 'D');
    }

    const double inner = duration.match(lines[3].text).captured(1).toDouble();
    const double outer = duration.match(lines[4].text).captured(1).toDouble();
    QVERIFY(inner <= outer);
}

void tst_LoggerDll::aTraceBearsNullPointers()
{
    setup();
    m_logger->trace(nullptr, nullptr, 0);
    closeFiles();

    const QStringList texts = textsOf(path("module.log"));
    QCOMPARE(texts.count(), 2);
    QCOMPARE(texts[0], QStringLiteral("Enter ? (?:0)"));
    QVERIFY2(texts[1].startsWith(QLatin1String("Leave ? (?:0) after ")), qPrintable(texts[1]));
}

void tst_LoggerDll::withoutInformationThereIsNoTrace()
{
    setup("module", 'E');
    QVERIFY(!m_logger->trace("file", "function", 1));
    closeFiles();
    QCOMPARE(textsOf(path("module.log")), QStringList());
}

void tst_LoggerDll::onlyItsFunctionIsExported()
{
    QProcess nm;
    nm.start(QStringLiteral("nm"),
             {QStringLiteral("--dynamic"), QStringLiteral("--demangle"),
              QStringLiteral("--defined-only"), QStringLiteral(LOGGER_LIBRARY_FILE)});
    QVERIFY(nm.waitForFinished());
    QCOMPARE(nm.exitCode(), 0);

    // The linker's marks aside, those of coverage counters, and what the compiler emits of the
    // standard library's templates and Qt's inline functions.
    static const QRegularExpression others(
        QStringLiteral("^\\w* ([A-Z] (__bss_start|_edata|_end|_init|_fini|__gcov_\\w+|mangle_path)"
                       "|[VWu] .*\\b(std::|Q[A-Z]).*)$"));
    QStringList names = QString::fromUtf8(nm.readAllStandardOutput())
                            .split(QLatin1Char('\n'))
                            .filter(QRegularExpression(QStringLiteral(".")));
    QStringList strangers = names.filter(QRegularExpression(QStringLiteral("spdlog|fmt")));
    QCOMPARE(strangers, QStringList());
    for (const QString& name : qAsConst(names)) {
        if (!others.match(name).hasMatch())
            strangers << name.mid(name.indexOf(QLatin1Char(' ')) + 1);
    }
    QCOMPARE(strangers, QStringList{QStringLiteral("T loggerInstance")});
}

QTEST_GUILESS_MAIN(tst_LoggerDll)
#include "tst_LoggerDll.moc"
