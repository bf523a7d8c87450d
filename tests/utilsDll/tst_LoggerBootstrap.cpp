#include "Files.h"
#include "LoggerBootstrap.h"
#include "MessageCounter.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QtTest>

#include <string>
#include <vector>

#include <unistd.h>

using namespace VEK_NAMESPACE;

namespace {

const QString identifier = QStringLiteral("0a1b2c3d-4e5f-4678-9abc-def012345678");

bool write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly)
        && file.write(bytes) == bytes.size();
}

QByteArray infoFile(const char* identifierOfBundle)
{
    return QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                      "<plist version=\"1.0\">\n<dict>\n<key>CFBundleIdentifier</key>\n<string>")
        + identifierOfBundle + "</string>\n</dict>\n</plist>\n";
}

/// A host in a bundle of the product's, and what its processes run in: two homes of the same user,
/// one by the password entry and one by the environment.
class Host
{
public:
    explicit Host(const QString& place = QStringLiteral("VekMarlowick3.app/Contents/MacOS"))
        : m_program(path(place + "/Host"))
    {
        if (!QDir().mkpath(path(place)) || !QFile::copy(HOST, m_program)
            || !write(path("VekMarlowick3.app/Contents/Info.plist"),
                      infoFile("com.vek.krnv3.standalone"))
            || !write(path("passwd"),
                      "user:x:" + QByteArray::number(getuid()) + ":1::" + QFile::encodeName(home())
                          + ":/bin/sh\n"))
            qFatal("can't make the bundle");
        set("NSS_WRAPPER_PASSWD", path("passwd"));
        set("HOME", path("other home"));
        set("XDG_CONFIG_HOME", path("configuration"));
        set("TZ", "XYZ-9");
    }

    void set(const char* variable, const QString& value)
    {
        m_environment.insert(QLatin1String(variable), value);
    }

    QString path(const QString& name) const { return m_root + QLatin1Char('/') + name; }
    QString home() const { return path(QString::fromUtf8("jö 写真")); }
    QString logFolder() const { return home() + "/Library/Vek_Labs/Vek Marlowick 3/Logs/"; }
    QString logger() const
    {
        return path("VekMarlowick3.app/Contents/Frameworks/libLoggerDllkrnv3.so");
    }
    QString identifierFile() const
    {
        return path("other home/Library/Application Support/Vek Labs/VekUserID");
    }

    /// \a library is in the logger library's place from now on.
    void install(const char* library) const
    {
        if (!QDir().mkpath(QFileInfo(logger()).path()) || !QFile::link(library, logger()))
            qFatal("can't install the logger");
    }

    void writeIdentifier() const
    {
        if (!write(identifierFile(), identifier.toLatin1()))
            qFatal("can't write the identifier");
    }

    /// The output of a process that takes \a steps, line by line.
    QStringList run(const QStringList& steps) const
    {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.start(m_program, steps);
        if (!process.waitForFinished(60000))
            return {"did not end"};
        const QByteArray errors = process.readAllStandardError();
        QByteArray output = process.readAllStandardOutput();
        if (!errors.isEmpty() || process.exitStatus() != QProcess::NormalExit
            || process.exitCode() != 0) {
            output += "failed: " + errors;
        }
        QStringList lines = QString::fromUtf8(output).split(QLatin1Char('\n'));
        if (lines.last().isEmpty())
            lines.removeLast();
        return lines;
    }

private:
    Q_DISABLE_COPY(Host)

    const QTemporaryDir m_dir;
    const QString m_root = QFileInfo(m_dir.path()).canonicalFilePath();
    const QString m_program;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
};

const QString version = QStringLiteral("D Vek Marlowick 3 Version: 3.1.251.0");
const QString coreVersion = QStringLiteral("D CE version: VekFramework-7.1.2.1711161940");

QString setupLine(const Host& host, const QString& module, int level)
{
    return QStringLiteral("setup [%1] [%2] %3").arg(host.logFolder(), module).arg(level);
}

/// Puts an asterisk in the place of the time in a line, if it is one from \a start until now.
void checkTime(QString& line, const QDateTime& start)
{
    const QString text = QStringLiteral("D Current time (UTC): ");
    if (!line.startsWith(text))
        return;
    const QString form = QStringLiteral("yyyy-MM-dd'T'HH:mm:ss'Z'");
    QDateTime time = QDateTime::fromString(line.mid(text.size()), form);
    time.setTimeSpec(Qt::UTC);
    if (time.isValid() && time >= start.addMSecs(-start.time().msec())
        && time <= QDateTime::currentDateTimeUtc())
        line = text + QLatin1Char('*');
}

class RecordingTrace : public ILoggerTrace
{
public:
    explicit RecordingTrace(bool& ended)
        : m_ended(ended)
    {}
    ~RecordingTrace() override { m_ended = true; }

private:
    bool& m_ended;
};

/// A logger of the host's.
class OwnLogger : public ILoggerInterface
{
public:
    void setup(const std::string&, const std::string&, char) override { calls << "setup"; }
    void log(char, const char* text) override { calls << QString::fromUtf8(text); }
    QSharedPointer<ILoggerTrace> trace(const char* a, const char* b, int c) override
    {
        file = a;
        function = b;
        line = c;
        QSharedPointer<ILoggerTrace> result = made;
        if (!keeps)
            made.clear();
        return result;
    }

    QStringList calls;
    const char* file = nullptr;
    const char* function = nullptr;
    int line = 0;
    QSharedPointer<ILoggerTrace> made;
    bool keeps = true;
};

} // namespace

class tst_LoggerBootstrap : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanup();

    // Settings
    void theLoggerIsEnabledUnlessTheTextIsZero_data();
    void theLoggerIsEnabledUnlessTheTextIsZero();
    void theLevelIsTheStoredText_data();
    void theLevelIsTheStoredText();
    void settersWriteTexts();
    void underAnOverlayOnlySettersFollowIt();

    // A logger of the host's
    void aHostsLoggerIsTakenAsItIs();
    void aSecondLoggerIsNotTaken();
    void aLoggerThatIsThereIsKept();
    void noLoggerIsTakenWhileTheyAreOff();
    void theOverlayDoesNotSwitchLoggersOff();

    // Traces
    void withoutALoggerThereIsNoTrace();
    void aTraceIsTheLoggers_data();
    void aTraceIsTheLoggers();
    void aTraceThatNobodyKeepsEndsAtOnce();
    void aLoggerMayMakeNoTrace();

    // The logger library of the bundle
    void theLibraryIsLoadedAndStarted_data();
    void theLibraryIsLoadedAndStarted();
    void theStartMakesTheIdentifier();
    void theLevelsFirstCharacterCounts_data();
    void theLevelsFirstCharacterCounts();
    void theModulesNameIsUtf8();
    void aSecondStartChangesNothing();
    void theLibraryStaysLoaded();
    void aLoggerThatLeavesGetsNoMoreLines_data();
    void aLoggerThatLeavesGetsNoMoreLines();
    void aMissingLoggerGoesUnreported_data();
    void aMissingLoggerGoesUnreported();
    void aMissingLoggerIsLookedForAgain();
    void aLibraryWithoutLoggerIsPassedOver_data();
    void aLibraryWithoutLoggerIsPassedOver();
    void theBundleMayBeFurtherUp();
    void whileLoggersAreOffNothingIsLoaded();
    void aLaterCallFindsThemOn();
    void theOverlayDoesNotKeepTheLibraryOut();
    void aHostsLoggerKeepsTheLibraryOut();
    void theProductsLoggerIsLoaded();

private:
    const QTemporaryDir m_home;
    const QString m_file = m_home.path() + "/configuration/Vek Labs/krnv3/Data.plist";
};

void tst_LoggerBootstrap::initTestCase()
{
    qputenv("HOME", QFile::encodeName(m_home.path()));
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_home.path() + "/configuration"));
    setLogLevel("k");
    QCOMPARE(readFile(m_file), QByteArray("[General]\nloggerLevel=k\n"));
    cleanup();
}

void tst_LoggerBootstrap::cleanup()
{
    g_logger = nullptr;
    CSettings::removeTemporarySettings();
    CSettings().remove(QString());
    QCOMPARE(readFile(m_file), QByteArray());
    // No test in this process starts a library, so none asks for the identifier.
    QVERIFY(!QFileInfo::exists(m_home.path() + "/Library"));
}

void tst_LoggerBootstrap::theLoggerIsEnabledUnlessTheTextIsZero_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<bool>("expected");

    QTest::newRow("nothing") << QVariant() << true;
    QTest::newRow("0 as text") << QVariant("0") << false;
    QTest::newRow("0") << QVariant(0) << false;
    QTest::newRow("1") << QVariant("1") << true;
    QTest::newRow("an empty text") << QVariant("") << true;
    QTest::newRow("false") << QVariant("false") << true;
    QTest::newRow("two zeros") << QVariant("00") << true;
    QTest::newRow("a blank before it") << QVariant(" 0") << true;
}

void tst_LoggerBootstrap::theLoggerIsEnabledUnlessTheTextIsZero()
{
    QFETCH(QVariant, value);
    QFETCH(bool, expected);

    if (value.isValid())
        CSettings().setValue("loggerEnabled", value);
    QCOMPARE(isLoggerEnabled(), expected);

    OwnLogger logger;
    ILoggerInterface* const expectedLogger = expected ? &logger : nullptr;
    QCOMPARE(initLogger(&logger, "Module"), expectedLogger);
    QCOMPARE(g_logger, expectedLogger);
}

void tst_LoggerBootstrap::theLevelIsTheStoredText_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QString>("expected");

    QTest::newRow("nothing") << QVariant() << "D";
    QTest::newRow("E") << QVariant("E") << "E";
    QTest::newRow("an empty text") << QVariant("") << "";
    QTest::newRow("a long text") << QVariant("Debug = 1") << "Debug = 1";
    QTest::newRow("not ASCII") << QVariant(QString::fromUtf8("é€")) << QString::fromUtf8("é€");
    QTest::newRow("a number") << QVariant(3) << "3";
}

void tst_LoggerBootstrap::theLevelIsTheStoredText()
{
    QFETCH(QVariant, value);
    QFETCH(QString, expected);

    if (value.isValid())
        CSettings().setValue("loggerLevel", value);
    QCOMPARE(getLogLevel(), expected);
    setLogLevel("before");
    setLogLevel(expected);
    QCOMPARE(getLogLevel(), expected);
}

void tst_LoggerBootstrap::settersWriteTexts()
{
    setLoggerEnabled(false);
    setLogLevel("E");
    QCOMPARE(readFile(m_file), QByteArray("[General]\nloggerEnabled=0\nloggerLevel=E\n"));
    QCOMPARE(CSettings().value("loggerEnabled").typeName(), "QString");
    QVERIFY(!isLoggerEnabled());

    setLoggerEnabled(true);
    QCOMPARE(readFile(m_file), QByteArray("[General]\nloggerEnabled=1\nloggerLevel=E\n"));
    QCOMPARE(CSettings().value("loggerEnabled").typeName(), "QString");
    QVERIFY(isLoggerEnabled());
}

void tst_LoggerBootstrap::underAnOverlayOnlySettersFollowIt()
{
    {
        CTemporarySettings overlay(nullptr);
        CSettings::setTemporarySettings(overlay);
        setLoggerEnabled(false);
        setLogLevel("E");
        QCOMPARE(readFile(overlay.tempSettingsPath()),
                 QByteArray("[General]\nloggerEnabled=0\nloggerLevel=E\n"));
        QCOMPARE(readFile(m_file), QByteArray());
        QVERIFY(isLoggerEnabled());
        QCOMPARE(getLogLevel(), QStringLiteral("D"));
    }
    setLoggerEnabled(false);
    setLogLevel("W");
    CTemporarySettings overlay(nullptr);
    CSettings::setTemporarySettings(overlay);
    setLoggerEnabled(true);
    setLogLevel("E");
    QVERIFY(!isLoggerEnabled());
    QCOMPARE(getLogLevel(), QStringLiteral("W"));
}

void tst_LoggerBootstrap::aHostsLoggerIsTakenAsItIs()
{
    OwnLogger logger;
    QCOMPARE(initLoggerForUtilsDll(&logger, "Module"), &logger);
    QCOMPARE(g_logger, &logger);
    QCOMPARE(logger.calls, QStringList());
}

void tst_LoggerBootstrap::aSecondLoggerIsNotTaken()
{
    OwnLogger first;
    OwnLogger second;
    QCOMPARE(initLogger(&first, "First"), &first);
    QCOMPARE(initLogger(&second, "Second"), &first);
    QCOMPARE(initLoggerForUtilsDll(&second, "Second"), &first);
    QCOMPARE(initLogger(nullptr, "Third"), &first);
    QCOMPARE(g_logger, &first);
    QCOMPARE(first.calls, QStringList());
    QCOMPARE(second.calls, QStringList());
}

void tst_LoggerBootstrap::aLoggerThatIsThereIsKept()
{
    OwnLogger first;
    OwnLogger second;
    g_logger = &first;
    QCOMPARE(initLogger(&second, "Second"), &first);

    // Also when it could not come any more.
    setLoggerEnabled(false);
    QCOMPARE(initLogger(&second, "Second"), &first);
    QCOMPARE(g_logger, &first);
}

void tst_LoggerBootstrap::noLoggerIsTakenWhileTheyAreOff()
{
    OwnLogger logger;
    setLoggerEnabled(false);
    QVERIFY(!initLogger(&logger, "Module"));
    QVERIFY(!initLoggerForUtilsDll(&logger, "Module"));
    QVERIFY(!g_logger);
    QCOMPARE(logger.calls, QStringList());

    setLoggerEnabled(true);
    QCOMPARE(initLogger(&logger, "Module"), &logger);
}

void tst_LoggerBootstrap::theOverlayDoesNotSwitchLoggersOff()
{
    OwnLogger logger;
    CTemporarySettings overlay(nullptr);
    CSettings::setTemporarySettings(overlay);
    setLoggerEnabled(false);
    QCOMPARE(initLogger(&logger, "Module"), &logger);
}

void tst_LoggerBootstrap::withoutALoggerThereIsNoTrace()
{
    const MessageCounter messages;
    QVERIFY(!logTrace("file", "function", 1));
    QCOMPARE(messages.count(), 0);
}

void tst_LoggerBootstrap::aTraceIsTheLoggers_data()
{
    QTest::addColumn<bool>("texts");
    QTest::addColumn<int>("line");

    QTest::newRow("two texts and a number") << true << 42;
    QTest::newRow("a negative number") << true << -1;
    QTest::newRow("no texts") << false << 0;
}

void tst_LoggerBootstrap::aTraceIsTheLoggers()
{
    QFETCH(bool, texts);
    QFETCH(int, line);

    const char* const file = texts ? "file" : nullptr;
    const char* const function = texts ? "function" : nullptr;
    bool ended = false;
    OwnLogger logger;
    logger.made.reset(new RecordingTrace(ended));
    ILoggerTrace* const made = logger.made.data();
    g_logger = &logger;
    QCOMPARE(logTrace(file, function, line), made);
    QCOMPARE(static_cast<const void*>(logger.file), static_cast<const void*>(file));
    QCOMPARE(static_cast<const void*>(logger.function), static_cast<const void*>(function));
    QCOMPARE(logger.line, line);
    QVERIFY(!ended);
    QCOMPARE(logger.calls, QStringList());
    logger.made.clear();
    QVERIFY(ended);
}

void tst_LoggerBootstrap::aTraceThatNobodyKeepsEndsAtOnce()
{
    bool ended = false;
    OwnLogger logger;
    logger.made.reset(new RecordingTrace(ended));
    logger.keeps = false;
    const void* const made = logger.made.data();
    g_logger = &logger;
    const void* const trace = logTrace("file", "function", 1);
    QVERIFY(ended);
    QCOMPARE(trace, made);
}

void tst_LoggerBootstrap::aLoggerMayMakeNoTrace()
{
    OwnLogger logger;
    g_logger = &logger;
    QVERIFY(!logTrace("file", "function", 1));
    QCOMPARE(logger.line, 1);
}

void tst_LoggerBootstrap::theLibraryIsLoadedAndStarted_data()
{
    QTest::addColumn<QString>("function");

    QTest::newRow("by the name that hosts call") << "init=Module";
    QTest::newRow("by the other name") << "initLogger=Module";
}

void tst_LoggerBootstrap::theLibraryIsLoadedAndStarted()
{
    QFETCH(QString, function);

    const Host host;
    host.install(FAKE_LOGGER);
    host.writeIdentifier();
    const QDateTime start = QDateTime::currentDateTimeUtc();
    QStringList lines = host.run({function});
    QVERIFY2(lines.size() > 2, qPrintable(lines.join(QLatin1Char('\n'))));
    checkTime(lines[2], start);
    QCOMPARE(
        lines,
        QStringList({"loggerInstance", setupLine(host, "Module", 'D'), "D Current time (UTC): *",
                     version, "D UID: " + identifier, coreVersion, "loaded logger"}));
    QVERIFY(QFileInfo(host.logFolder()).isDir());
}

void tst_LoggerBootstrap::theStartMakesTheIdentifier()
{
    const Host host;
    host.install(FAKE_LOGGER);
    const QStringList lines = host.run({"init=Module"});
    const QByteArray made = readFile(host.identifierFile());
    QCOMPARE(made.size(), 36);
    QCOMPARE(lines.filter("UID"), QStringList("D UID: " + QString::fromLatin1(made)));
}

void tst_LoggerBootstrap::theLevelsFirstCharacterCounts_data()
{
    QTest::addColumn<QString>("level");
    QTest::addColumn<int>("expected");

    QTest::newRow("E") << "E" << 69;
    QTest::newRow("a long text") << "Warnings" << 87;
    QTest::newRow("empty") << "" << 0;
    QTest::newRow("a blank") << " E" << 32;
    QTest::newRow("Latin-1") << QString::fromUtf8("é") << 0xe9;
    QTest::newRow("the last of Latin-1") << QString::fromUtf8("ÿ") << 255;
    QTest::newRow("the first behind Latin-1") << QString::fromUtf8("Ā") << 0;
    QTest::newRow("the euro sign") << QString::fromUtf8("€") << 0;
    QTest::newRow("two units") << QString::fromUtf8("😀") << 0;
    QTest::newRow("not the first") << QString::fromUtf8("€E") << 0;
}

void tst_LoggerBootstrap::theLevelsFirstCharacterCounts()
{
    QFETCH(QString, level);
    QFETCH(int, expected);

    const Host host;
    host.install(FAKE_LOGGER);
    const QStringList lines = host.run({"level=" + level, "overlay", "level=O", "init=Module"});
    QCOMPARE(lines.value(1), setupLine(host, "Module", expected));
    QCOMPARE(lines.size(), 7);
}

void tst_LoggerBootstrap::theModulesNameIsUtf8()
{
    const Host host;
    host.install(FAKE_LOGGER);
    const QString module = QString::fromUtf8("Größe 写真 %1");
    QCOMPARE(host.run({"init=" + module}).value(1),
             "setup [" + host.logFolder() + "] [" + module + "] 68");
    QCOMPARE(host.run({"init="}).value(1), "setup [" + host.logFolder() + "] [] 68");
}

void tst_LoggerBootstrap::aSecondStartChangesNothing()
{
    const Host host;
    host.install(FAKE_LOGGER);
    const QStringList lines = host.run({"init=First", "init=Second", "init own=Third", "enable=no",
                                        "initLogger=Fourth", "log=text"});
    QCOMPARE(lines.value(1), setupLine(host, "First", 'D'));
    QCOMPARE(lines.mid(5),
             QStringList({coreVersion, "loaded logger", "loaded logger", "loaded logger",
                          "loaded logger", "D text"}));
}

void tst_LoggerBootstrap::theLibraryStaysLoaded()
{
    const Host host;
    host.install(FAKE_LOGGER);
    QCOMPARE(
        host.run({"loaded=libFakeLogger", "init=Module", "loaded=libFakeLogger", "log=still there"})
            .filter(QRegularExpression("load|there")),
        QStringList({"not loaded", "loaded logger", "loaded", "D still there"}));
}

void tst_LoggerBootstrap::aLoggerThatLeavesGetsNoMoreLines_data()
{
    QTest::addColumn<QString>("lastLine");
    QTest::addColumn<bool>("identifierMade");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("in its setup") << "0" << false << QStringList();
    QTest::newRow("at the first") << "1" << false << QStringList("D Current time (UTC): *");
    QTest::newRow("at the second")
        << "2" << false << QStringList({"D Current time (UTC): *", version});
    QTest::newRow("at the third") << "3" << true
                                  << QStringList({"D Current time (UTC): *", version, "D UID: *"});
    QTest::newRow("at the fourth")
        << "4" << true
        << QStringList({"D Current time (UTC): *", version, "D UID: *", coreVersion});
}

void tst_LoggerBootstrap::aLoggerThatLeavesGetsNoMoreLines()
{
    QFETCH(QString, lastLine);
    QFETCH(bool, identifierMade);
    QFETCH(QStringList, expected);

    Host host;
    host.install(FAKE_LOGGER);
    host.set("FAKE_LOGGER_LEAVES_AFTER", lastLine);
    const QDateTime start = QDateTime::currentDateTimeUtc();
    QStringList lines = host.run({"init=Module"});
    const QString uid = QString::fromLatin1(readFile(host.identifierFile()));
    for (QString& line : lines) {
        checkTime(line, start);
        if (line == "D UID: " + uid)
            line = "D UID: *";
    }
    QCOMPARE(lines,
             QStringList({"loggerInstance", setupLine(host, "Module", 'D')}) + expected
                 + QStringList("no logger"));
    QCOMPARE(QFileInfo::exists(host.identifierFile()), identifierMade);
}

void tst_LoggerBootstrap::aMissingLoggerGoesUnreported_data()
{
    QTest::addColumn<QString>("place");
    QTest::addColumn<QByteArray>("info");
    QTest::addColumn<bool>("installed");

    const QString inBundle = "VekMarlowick3.app/Contents/MacOS";
    const QByteArray info = infoFile("com.vek.krnv3.standalone");
    QTest::newRow("no library") << inBundle << info << false;
    QTest::newRow("outside the bundle") << "elsewhere" << info << true;
    QTest::newRow("beside the bundle's folder") << "VekMarlowick3.application" << info << true;
    QTest::newRow("in another bundle") << inBundle << infoFile("com.vek.krnv3.helper") << true;
    QTest::newRow("in a bundle that doesn't tell") << inBundle << QByteArray() << true;
    QTest::newRow("neither") << "elsewhere" << info << false;
}

void tst_LoggerBootstrap::aMissingLoggerGoesUnreported()
{
    QFETCH(QString, place);
    QFETCH(QByteArray, info);
    QFETCH(bool, installed);

    const Host host(place);
    if (installed)
        host.install(FAKE_LOGGER);
    QVERIFY(write(host.path("VekMarlowick3.app/Contents/Info.plist"), info));
    QCOMPARE(host.run({"init=Module", "log=text"}), QStringList("no logger"));
    QVERIFY(!QFileInfo::exists(host.home()));
    QVERIFY(!QFileInfo::exists(host.path("other home")));
}

void tst_LoggerBootstrap::aMissingLoggerIsLookedForAgain()
{
    const Host host;
    QCOMPARE(host.run({"init=Module", "initLogger=Module", "init own=Module", "log=text"}),
             QStringList({"no logger", "no logger", "own logger", "D text"}));

    QVERIFY(QDir().mkpath(QFileInfo(host.logger()).path()));
    const QStringList lines =
        host.run({"init=First", "install=" FAKE_LOGGER "," + host.logger(), "init=Second"});
    QCOMPARE(lines.mid(0, 3),
             QStringList({"no logger", "loggerInstance", setupLine(host, "Second", 'D')}));
    QCOMPARE(lines.mid(6), QStringList({coreVersion, "loaded logger"}));
}

void tst_LoggerBootstrap::aLibraryWithoutLoggerIsPassedOver_data()
{
    QTest::addColumn<QString>("library");
    QTest::addColumn<QStringList>("expected");

    QTest::newRow("without the function")
        << FAKE_LOGGER_WITHOUT_FUNCTION << QStringList({"no logger", "loaded"});
    QTest::newRow("without an instance")
        << FAKE_LOGGER_WITHOUT_INSTANCE << QStringList({"loggerInstance", "no logger", "loaded"});
    QTest::newRow("no library") << QString() << QStringList({"no logger", "not loaded"});
}

void tst_LoggerBootstrap::aLibraryWithoutLoggerIsPassedOver()
{
    QFETCH(QString, library);
    QFETCH(QStringList, expected);

    const Host host;
    if (library.isEmpty())
        QVERIFY(write(host.logger(), "this is no library"));
    else
        host.install(library.toUtf8().constData());
    QCOMPARE(host.run({"init=Module", "loaded=libFakeLogger", "log=text"}), expected);
    QVERIFY(!QFileInfo::exists(host.home()));
    QVERIFY(!QFileInfo::exists(host.path("other home")));
}

void tst_LoggerBootstrap::theBundleMayBeFurtherUp()
{
    const Host host("VekMarlowick3.app/Contents/Helpers/Helper.app/Contents/MacOS");
    host.install(FAKE_LOGGER);
    QVERIFY(write(host.path("VekMarlowick3.app/Contents/Helpers/Helper.app/Contents/Info.plist"),
                  infoFile("com.vek.krnv3.helper")));
    QCOMPARE(host.run({"init=Module"}).mid(5), QStringList({coreVersion, "loaded logger"}));
}

void tst_LoggerBootstrap::whileLoggersAreOffNothingIsLoaded()
{
    const Host host;
    host.install(FAKE_LOGGER);
    QCOMPARE(host.run({"enable=no", "init=Module", "init own=Module", "loaded=libFakeLogger",
                       "log=text"}),
             QStringList({"no logger", "no logger", "not loaded"}));
    // It is the stored setting that counts.
    QCOMPARE(host.run({"init=Module", "loaded=libFakeLogger"}),
             QStringList({"no logger", "not loaded"}));
    QVERIFY(!QFileInfo::exists(host.home()));
    QVERIFY(!QFileInfo::exists(host.path("other home")));
}

void tst_LoggerBootstrap::aLaterCallFindsThemOn()
{
    const Host host;
    host.install(FAKE_LOGGER);
    const QStringList lines =
        host.run({"enable=no", "init=First", "enable=yes", "init=Second", "log=text"});
    QCOMPARE(lines.mid(0, 3),
             QStringList({"no logger", "loggerInstance", setupLine(host, "Second", 'D')}));
    QCOMPARE(lines.mid(6), QStringList({coreVersion, "loaded logger", "D text"}));
}

void tst_LoggerBootstrap::theOverlayDoesNotKeepTheLibraryOut()
{
    const Host host;
    host.install(FAKE_LOGGER);
    QCOMPARE(host.run({"overlay", "enable=no", "init=Module"}).mid(5),
             QStringList({coreVersion, "loaded logger"}));
}

void tst_LoggerBootstrap::aHostsLoggerKeepsTheLibraryOut()
{
    const Host host;
    host.install(FAKE_LOGGER);
    QCOMPARE(host.run({"init own=Module", "init=Module", "loaded=libFakeLogger", "log=text"}),
             QStringList({"own logger", "own logger", "not loaded", "D text"}));
    QVERIFY(!QFileInfo::exists(host.home()));
    QVERIFY(!QFileInfo::exists(host.path("other home")));
}

void tst_LoggerBootstrap::theProductsLoggerIsLoaded()
{
    const Host host;
    host.install(LOGGER_LIBRARY);
    host.writeIdentifier();
    QCOMPARE(host.run({"init=Module", "log=the host's line"}), QStringList("loaded logger"));

    const QStringList files = QDir(host.logFolder()).entryList(QDir::Files);
    QCOMPARE(files.size(), 1);
    const QString log = QString::fromUtf8(readFile(host.logFolder() + files.first()));
    int from = 0;
    for (const QString& text :
         {QStringLiteral("Current time (UTC): "), version.mid(2), "UID: " + identifier,
          coreVersion.mid(2), QStringLiteral("the host's line")}) {
        const int found = log.indexOf(text, from);
        QVERIFY2(found >= from, qPrintable(text + " is missing in\n" + log));
        from = found + text.size();
    }
}

QTEST_GUILESS_MAIN(tst_LoggerBootstrap)
#include "tst_LoggerBootstrap.moc"
