#include "OrdinaryFileRights.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QBitArray>
#include <QColor>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QFont>
#include <QKeySequence>
#include <QLockFile>
#include <QPolygon>
#include <QPolygonF>
#include <QProcess>
#include <QProcessEnvironment>
#include <QSettings>
#include <QTemporaryDir>
#include <QTimeZone>
#include <QUuid>
#include <QtTest>

#include <cstdio>
#include <thread>
#include <vector>

using VEK_NAMESPACE::CSettings;
using VEK_NAMESPACE::CTemporarySettings;

// The place of the fixed file is settled once per process, so this program runs itself, with a
// command, for each process that a test needs.

namespace {

const char place[] = "/Vek Labs/krnv3/Data.plist";

QByteArray contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
}

bool write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly)
        && file.write(bytes) == bytes.size();
}

void print(const QVariant& value)
{
    std::printf("%s\n", qPrintable(value.toString()));
    std::fflush(stdout);
}

QVariant read(const QString& key)
{
    return CSettings().value(key, QStringLiteral("default"));
}

/// Uses settings when static objects are destroyed.
class LastUser
{
public:
    explicit LastUser(const QString& key)
        : m_key(key)
    {}
    ~LastUser()
    {
        print(read(QStringLiteral("k")));
        CSettings().setValue(m_key, 2);
        print(read(m_key));
    }

private:
    Q_DISABLE_COPY(LastUser)

    const QString m_key;
};

int writeAtExit()
{
    // What Qt itself keeps for its settings has to be there before.
    QSettings(QDir::tempPath() + QStringLiteral("/any.ini"), QSettings::IniFormat)
        .contains(QString());
    static const LastUser builtBeforeTheFirstUse(QStringLiteral("last"));
    CSettings().setValue(QStringLiteral("k"), 1);
    static const LastUser builtAfterIt(QStringLiteral("lastButOne"));
    return 0;
}

int readFromSeveralThreads()
{
    QVariant values[8];
    std::vector<std::thread> threads;
    for (QVariant& value : values)
        threads.emplace_back([&value] { value = read(QStringLiteral("k")); });
    for (std::thread& thread : threads)
        thread.join();
    for (const QVariant& value : values)
        print(value);
    return 0;
}

int readAndWrite(const QString& key)
{
    if (!takeOrdinaryFileRights())
        return 1;
    print(read(key));
    CSettings().setValue(key, QStringLiteral("new"));
    CSettings settings;
    settings.setValue(QStringLiteral("another"), 1);
    settings.sync();
    settings.remove(key);
    return 0;
}

/// Uses a file of its own, which is damaged again between the two uses.
int useFileTwice(const QString& path)
{
    const QByteArray damaged = contents(path);
    const QString key = QStringLiteral("k");
    for (int i = 0; i < 2; ++i) {
        if (!write(path, damaged + QByteArray(i, '\n')))
            return 1;
        CSettings settings(path, QSettings::IniFormat);
        print(settings.value(key));
        settings.setValue(key, QStringLiteral("new"));
    }
    return 0;
}

int useAsDefaults(const QString& path)
{
    CTemporarySettings overlay(path.toLatin1().constData());
    CSettings::setTemporarySettings(overlay);
    CSettings settings;
    print(settings.value(QStringLiteral("k")));
    settings.setValue(QStringLiteral("k"), QStringLiteral("new"));
    print(settings.value(QStringLiteral("k")));
    print(settings.contains(QStringLiteral("damaged")));
    return 0;
}

int runCommand(const QStringList& arguments)
{
    const QString& command = arguments.at(1);
    const QString key = arguments.value(2);
    if (command == QLatin1String("--read")) {
        print(read(key));
        return 0;
    }
    if (command == QLatin1String("--write")) {
        CSettings().setValue(key, arguments.value(3));
        return 0;
    }
    if (command == QLatin1String("--write-plainly")) {
        QSettings settings(QFile::decodeName(qgetenv("XDG_CONFIG_HOME") + place),
                           QSettings::NativeFormat);
        settings.setValue(key, arguments.value(3));
        return 0;
    }
    if (command == QLatin1String("--read-and-write"))
        return readAndWrite(key);
    if (command == QLatin1String("--use-file-twice"))
        return useFileTwice(key);
    if (command == QLatin1String("--use-as-defaults"))
        return useAsDefaults(key);
    if (command == QLatin1String("--write-at-exit"))
        return writeAtExit();
    if (command == QLatin1String("--read-from-several-threads"))
        return readFromSeveralThreads();
    return 2;
}

struct Result
{
    QByteArray output = "did not finish";
    QByteArray errors;
    int exitCode = -1;
};

Result run(const QProcessEnvironment& environment, const QStringList& arguments)
{
    Result result;
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(), arguments);
    if (process.waitForFinished(60000)) {
        result.output = process.readAllStandardOutput();
        result.errors = process.readAllStandardError();
        result.exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    }
    return result;
}

/// A configuration home of its own, for the processes that are run with it.
class ConfigurationHome
{
public:
    ConfigurationHome() { m_environment.insert(QStringLiteral("XDG_CONFIG_HOME"), m_dir.path()); }
    ~ConfigurationHome()
    {
        QFile::setPermissions(folder(), QFile::Permissions(0x7000));
        QFile::setPermissions(file(), QFile::Permissions(0x7000));
    }

    QString path() const { return m_dir.path(); }
    QString folder() const { return path() + QStringLiteral("/Vek Labs/krnv3"); }
    QString file() const { return path() + QLatin1String(place); }

    Result run(const QStringList& arguments) const { return ::run(m_environment, arguments); }

private:
    Q_DISABLE_COPY(ConfigurationHome)

    QTemporaryDir m_dir;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
};

QStringList reading(const char* key)
{
    return {QStringLiteral("--read"), QLatin1String(key)};
}

/// QSettings writes the entries in this order, too.
const char entriesBefore[] = "[General]\na=\"1, 2\"\nat=@@home\n";
const char entriesBehind[] =
    "k=old\nw=@Size(1 2)\nz=@DateTime(\\0\\0\\0\\x10\\0\\0\\0\\0\\0\\0%\\x85"
    "\\x3\\0\\xe0\\x65P\\x1)\n\n[group]\nk=v\n";

void addDamagedEntries()
{
    QTest::addColumn<QByteArray>("entry");

    const QByteArray date = R"ini(damaged=@DateTime(\0\0\0\x10\0\0\0\0\0\0%\x85\x3\0\xe0\x65P)ini";
    QTest::newRow("a time in an unknown zone")
        << QByteArray(date + R"ini(\x3\0\0\0\x6\0\x45\0u\0/))ini");
    QTest::newRow("a time whose zone is cut off")
        << QByteArray(date + R"ini(\x3\0\0\0\x1a\0\x45\0u))ini");
    QTest::newRow("a time of an unknown kind") << QByteArray(date + R"ini(\a))ini");
    QTest::newRow("a time whose description is cut off")
        << QByteArray(date
                      + R"ini(\x3\0\0\0\x1a\0O\0\x66\0\x66\0s\0\x65\0t\0\x46)ini"
                        R"ini(\0r\0o\0m\0U\0t\0\x63\0\0\0\xe\0M\0y))ini");
    const auto add = [](const char* name, const QByteArray& stream) {
        QTest::newRow(name) << "damaged=@Variant(\\0\\0\\0" + stream + ')';
    };
    add("a list that counts too much", R"ini(\t\x7f\xff\xff\xff)ini");
    add("a list that counts one too much", R"ini(\t\0\0\0\x2\0\0\0\x2\0\0\0\x1)ini");
    add("a string list", R"ini(\v\x7f\xff\xff\xff)ini");
    add("a map", R"ini(\b\x7f\xff\xff\xff)ini");
    add("a hash", R"ini(\x1c\x7f\xff\xff\xff)ini");
    add("a list of bytes", R"ini(\x92\x7f\xff\xff\xff)ini");
    add("a polygon", R"ini(G\x7f\xff\xff\xff)ini");
    add("a polygon of fractions", R"ini(\x7f\0\0\0\nQPolygonF\0\x7f\xff\xff\xff)ini");
    add("a key sequence", R"ini(L\x7f\xff\xff\xff)ini");
    add("bits", R"ini(\r\xff\xff\xff\xff\0)ini");
    add("bytes", R"ini(\f\x7f\xff\xff\xff)ini");
    add("a text", R"ini(\n\x7f\xff\xff\xfe)ini");
    add("a text of an odd size", R"ini(\n\0\0\0\x3\0\x61\0)ini");
    add("a line that is cut off", R"ini(\x17\0\0\0\x1)ini");
    add("a variant", R"ini(\x8a\0\0\0\t\x7f\xff\xff\xff)ini");
    add("a type whose name is cut off", R"ini(\x7f\0\0\0\nQPoly)ini");
    add("a time in a map that is cut off", R"ini(\b\0\0\0\x1\0\0\0\x2\0\x61\0\0\0\x10\0%)ini");
    add("a list in a map", R"ini(\b\0\0\0\x1\0\0\0\x2\0\x61\0\0\0\t\x7f\xff\xff\xff)ini");
    add("lists in lists",
        QByteArray(R"ini(\t\0\0\0\x1\0\0\0)ini").repeated(40) + R"ini(\x2\0\0\0\x1)ini");
    QTest::newRow("without a type") << QByteArray("damaged=@Variant(\\0\\0)");
    QTest::newRow("within a list") << QByteArray(
        R"ini(damaged=@Invalid(), "1, 2", @Variant(\0\0\0\t\x7f\xff\xff\xff) , x)ini");
    QTest::newRow("in quotes") << QByteArray(
        R"ini(damaged = "@Variant(\0\0\0\t\x7f=,;\"\?)"  )ini");
    QTest::newRow("octal") << QByteArray(R"ini(damaged=@Variant(\0\0\0\13\177\377\377\377))ini");
    QTest::newRow("on several lines")
        << QByteArray("  damaged = \\\n\"@Variant(\\0\\0\\\n\\0\\t\\x7F\\xFF\n\\r\\xff)\"");
    QTest::newRow("on several lines of another system")
        << QByteArray("damaged = \\\r\n\"@Variant(\\0\\0\\\r\n\\0\\t\\x7F\\xFF\r\n\\r\\xff)\"");
}

} // namespace

#define VERIFY_RESULT(result, expectedOutput)                                                      \
    do {                                                                                           \
        const Result verified = (result);                                                          \
        QCOMPARE(verified.output, QByteArray(expectedOutput));                                     \
        QCOMPARE(verified.errors, QByteArray());                                                   \
        QCOMPARE(verified.exitCode, 0);                                                            \
    } while (false)

class tst_SettingsFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();

    void theFileLiesInTheConfigurationHome();
    void withoutAConfigurationHomeItLiesInTheUsualOne();
    void readingMakesNeitherFileNorFolder();
    void aDamagedFileGivesDefaultsAndIsLeftAlone_data();
    void aDamagedFileGivesDefaultsAndIsLeftAlone();
    void writesToAnUnwritablePlaceAreLost_data();
    void writesToAnUnwritablePlaceAreLost();
    void anUnreadableFileGivesDefaults();
    void aPlaceThatCannotBeMadeGivesDefaults_data();
    void aPlaceThatCannotBeMadeGivesDefaults();
    void aChangeByAnotherProcessIsSeen_data();
    void aChangeByAnotherProcessIsSeen();
    void processesKeepEachOthersValues();
    void damagedStreamedValuesAreTakenOut_data();
    void damagedStreamedValuesAreTakenOut();
    void damagedStreamedValuesOfOtherFilesAreTakenOut_data();
    void damagedStreamedValuesOfOtherFilesAreTakenOut();
    void whatIsntCertainlyDamagedStays_data();
    void whatIsntCertainlyDamagedStays();
    void commentsAndLineEndsStay();
    void goodStreamedValuesStay_data();
    void goodStreamedValuesStay();
    void aDamagedFileThatCannotBeMendedIsRead_data();
    void aDamagedFileThatCannotBeMendedIsRead();
    void aDamagedFileThatIsBeingWrittenIsRead();
    void manyFilesAreLookedAt();
    void settingsCanBeUsedAtExit();
    void firstUsesOnSeveralThreadsAreSafe();

private:
    const ConfigurationHome m_home;
};

void tst_SettingsFile::initTestCase()
{
    // This process has its settings there as well.
    qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_home.path()));
}

void tst_SettingsFile::theFileLiesInTheConfigurationHome()
{
    const ConfigurationHome home;
    VERIFY_RESULT(home.run({QStringLiteral("--write"), QStringLiteral("k"), QStringLiteral("v")}),
                  "");
    QCOMPARE(contents(home.path() + QStringLiteral("/Vek Labs/krnv3/Data.plist")),
             QByteArray("[General]\nk=v\n"));
    VERIFY_RESULT(home.run(reading("k")), "v\n");
}

void tst_SettingsFile::withoutAConfigurationHomeItLiesInTheUsualOne()
{
    const QTemporaryDir home;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.remove(QStringLiteral("XDG_CONFIG_HOME"));
    environment.insert(QStringLiteral("HOME"), home.path());
    VERIFY_RESULT(
        run(environment, {QStringLiteral("--write"), QStringLiteral("k"), QStringLiteral("v")}),
        "");
    QCOMPARE(contents(home.path() + QStringLiteral("/.config/Vek Labs/krnv3/Data.plist")),
             QByteArray("[General]\nk=v\n"));
}

void tst_SettingsFile::readingMakesNeitherFileNorFolder()
{
    const ConfigurationHome home;
    VERIFY_RESULT(home.run(reading("k")), "default\n");
    QCOMPARE(QDir(home.path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList());
}

void tst_SettingsFile::aDamagedFileGivesDefaultsAndIsLeftAlone_data()
{
    QTest::addColumn<QByteArray>("bytes");

    QTest::newRow("empty") << QByteArray();
    QTest::newRow("not text") << QByteArray("\x00\xff\xfe[\x01\n\x80]=\x00\xc3\x28", 13);
    QTest::newRow("a section that isn't closed") << QByteArray("[g\nk=v\n");
    QTest::newRow("lines without values") << QByteArray("[General]\nk\nv\n");
    QTest::newRow("an XML property list")
        << QByteArray("<?xml version=\"1.0\"?>\n<plist version=\"1.0\"><dict>"
                      "<key>k</key><string>v</string></dict></plist>\n");
    QTest::newRow("a binary property list") << QByteArray("bplist00\xd1\x01\x02QkQv\x08", 15);
}

void tst_SettingsFile::aDamagedFileGivesDefaultsAndIsLeftAlone()
{
    QFETCH(QByteArray, bytes);

    const ConfigurationHome home;
    QVERIFY(write(home.file(), bytes));
    VERIFY_RESULT(home.run(reading("k")), "default\n");
    QCOMPARE(contents(home.file()), bytes);
}

void tst_SettingsFile::writesToAnUnwritablePlaceAreLost_data()
{
    QTest::addColumn<int>("folderMode");
    QTest::addColumn<int>("fileMode");

    QTest::newRow("the file and its folder") << 0x5000 << 0x4000;
    QTest::newRow("the file alone") << 0x7000 << 0x4000;
}

void tst_SettingsFile::writesToAnUnwritablePlaceAreLost()
{
    QFETCH(int, folderMode);
    QFETCH(int, fileMode);

    const ConfigurationHome home;
    const QByteArray bytes = "[General]\nk=old\n";
    QVERIFY(write(home.file(), bytes));
    QVERIFY(QFile::setPermissions(home.file(), QFile::Permissions(fileMode)));
    QVERIFY(QFile::setPermissions(home.folder(), QFile::Permissions(folderMode)));

    VERIFY_RESULT(home.run({QStringLiteral("--read-and-write"), QStringLiteral("k")}), "old\n");
    QCOMPARE(contents(home.file()), bytes);
    VERIFY_RESULT(home.run(reading("k")), "old\n");
}

void tst_SettingsFile::anUnreadableFileGivesDefaults()
{
    const ConfigurationHome home;
    const QByteArray bytes = "[General]\nk=old\n";
    QVERIFY(write(home.file(), bytes));
    QVERIFY(QFile::setPermissions(home.file(), QFile::Permissions()));
    QVERIFY(QFile::setPermissions(home.folder(), QFile::Permissions(0x5000)));

    VERIFY_RESULT(home.run({QStringLiteral("--read-and-write"), QStringLiteral("k")}), "default\n");
    QVERIFY(QFile::setPermissions(home.file(), QFile::ReadOwner));
    QCOMPARE(contents(home.file()), bytes);
}

void tst_SettingsFile::aPlaceThatCannotBeMadeGivesDefaults_data()
{
    QTest::addColumn<QString>("obstacle");

    QTest::newRow("a file in the folder's place") << QStringLiteral("/Vek Labs");
    QTest::newRow("a folder in the file's place")
        << QStringLiteral("/Vek Labs/krnv3/Data.plist/file");
}

void tst_SettingsFile::aPlaceThatCannotBeMadeGivesDefaults()
{
    QFETCH(QString, obstacle);

    const ConfigurationHome home;
    QVERIFY(write(home.path() + obstacle, "bytes"));
    VERIFY_RESULT(home.run({QStringLiteral("--read-and-write"), QStringLiteral("k")}), "default\n");
    QCOMPARE(contents(home.path() + obstacle), QByteArray("bytes"));
}

void tst_SettingsFile::aChangeByAnotherProcessIsSeen_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("ours");
    QTest::addColumn<QString>("theirs");

    for (const QString& command : {QStringLiteral("--write"), QStringLiteral("--write-plainly")}) {
        const auto row = [&command](const char* change) {
            return (command.mid(2) + QLatin1String(": ") + QLatin1String(change)).toLatin1();
        };
        QTest::newRow(row("a longer value").constData())
            << command << QStringLiteral("a") << QStringLiteral("longer");
        QTest::newRow(row("a shorter value").constData())
            << command << QStringLiteral("longer") << QStringLiteral("a");
        QTest::newRow(row("a value of the same size").constData())
            << command << QStringLiteral("one") << QStringLiteral("two");
    }
}

void tst_SettingsFile::aChangeByAnotherProcessIsSeen()
{
    QFETCH(QString, command);
    QFETCH(QString, ours);
    QFETCH(QString, theirs);

    const QString key = QStringLiteral("changed");
    CSettings().setValue(key, ours);
    QCOMPARE(read(key).toString(), ours);
    VERIFY_RESULT(m_home.run({command, key, theirs}), "");
    QCOMPARE(read(key).toString(), theirs);
}

void tst_SettingsFile::processesKeepEachOthersValues()
{
    const QString ours = QStringLiteral("ours");
    const QString theirs = QStringLiteral("theirs");
    CSettings settings;
    settings.setValue(ours, 1);
    VERIFY_RESULT(m_home.run({QStringLiteral("--write"), theirs, QStringLiteral("2")}), "");
    settings.sync();
    QCOMPARE(read(ours).toInt(), 1);
    QCOMPARE(read(theirs).toInt(), 2);
    VERIFY_RESULT(m_home.run(reading("ours")), "1\n");
}

void tst_SettingsFile::damagedStreamedValuesAreTakenOut_data()
{
    addDamagedEntries();
}

void tst_SettingsFile::damagedStreamedValuesAreTakenOut()
{
    QFETCH(QByteArray, entry);

    const ConfigurationHome home;
    const QByteArray sound = QByteArray(entriesBefore) + entriesBehind;
    QVERIFY(write(home.file(), entriesBefore + entry + '\n' + entriesBehind));
    QVERIFY(QFile::setPermissions(home.file(), QFile::ReadOwner | QFile::WriteOwner));
    const QFile::Permissions permissions = QFile::permissions(home.file());
    VERIFY_RESULT(home.run(reading("k")), "old\n");
    QCOMPARE(contents(home.file()), sound);
    QCOMPARE(QFile::permissions(home.file()), permissions);

    QVERIFY(write(home.file(), entriesBefore + entry + '\n' + entriesBehind));
    VERIFY_RESULT(home.run({QStringLiteral("--write"), QStringLiteral("k"), QStringLiteral("new")}),
                  "");
    QCOMPARE(contents(home.file()), QByteArray(sound).replace("k=old", "k=new"));
    QCOMPARE(QDir(home.folder()).entryList(QDir::Files | QDir::Hidden),
             QStringList(QStringLiteral("Data.plist")));
}

void tst_SettingsFile::damagedStreamedValuesOfOtherFilesAreTakenOut_data()
{
    addDamagedEntries();
}

void tst_SettingsFile::damagedStreamedValuesOfOtherFilesAreTakenOut()
{
    QFETCH(QByteArray, entry);

    const ConfigurationHome home;
    const QByteArray damaged = entriesBefore + entry + '\n' + entriesBehind;
    const QString path = home.path() + QStringLiteral("/DefaultTemporarySettins.ini");
    QVERIFY(write(path, damaged));
    VERIFY_RESULT(home.run({QStringLiteral("--use-as-defaults"), path}), "old\nnew\nfalse\n");
    QCOMPARE(contents(path), damaged);
    VERIFY_RESULT(home.run({QStringLiteral("--use-file-twice"), path}), "old\nold\n");
    const QByteArray sound = QByteArray(entriesBefore) + entriesBehind;
    QCOMPARE(contents(path), QByteArray(sound).replace("k=old", "k=new"));
}

void tst_SettingsFile::whatIsntCertainlyDamagedStays_data()
{
    QTest::addColumn<QByteArray>("bytes");

    const QByteArray entry = R"ini(damaged=@Variant(\0\0\0\n\0\0\0\x3\0\x61\0))ini";
    QTest::newRow("in an XML property list") << QByteArray("<?xml\n" + entry);
    QTest::newRow("in a binary property list") << QByteArray("bplist00\n" + entry);
    QTest::newRow("a time in the system's zone")
        << QByteArray("[General]\nk=@DateTime(\\0\\0\\0\\x10\\0\\0\\0\\0\\0\\0%\\x85\\x3\\0\\xe0"
                      "\\x65P\\x3\\xff\\xff\\xff\\xff)\n");
    QTest::newRow("a text behind a blank") << QByteArray("[General]\nk=\\\n @Variant(\\0\\0)\n");
    QTest::newRow("a comment") << QByteArray("[General]\n;" + entry + '\n');
    QTest::newRow("the name of a group") << QByteArray('[' + entry + "]\n");
    QTest::newRow("an open end") << QByteArray("[General]\n" + entry.left(entry.size() - 1) + '\n');
    QTest::newRow("a backslash at the end") << QByteArray("[General]\nm=a @Variant(\nk=a\\");
    QTest::newRow("within a text") << QByteArray("[General]\nk=a @Variant(\\0\\0)\n");
    QTest::newRow("more than the value")
        << QByteArray("[General]\nk=@Variant(\\0\\0\\0\\x1\\x1more)\n");
    QTest::newRow("a type without a name here")
        << QByteArray("[General]\nk=@Variant(\\0\\0\\0\\x7f\\0\\0\\0\\x6Other\\0)\n");
    QTest::newRow("a font that is cut off") << QByteArray("[General]\nk=@Variant(\\0\\0\\0@)\n");
}

void tst_SettingsFile::whatIsntCertainlyDamagedStays()
{
    QFETCH(QByteArray, bytes);

    const ConfigurationHome home;
    QVERIFY(write(home.file(), bytes));
    QCOMPARE(home.run(reading("another")).exitCode, 0); // Qt itself warns of some
    QCOMPARE(contents(home.file()), bytes);
}

void tst_SettingsFile::commentsAndLineEndsStay()
{
    const ConfigurationHome home;
    const QByteArray entry = R"ini(damaged=@Variant(\0\0\0\t\x7f\xff\xff\xff))ini";
    QVERIFY(write(home.file(),
                  "; first\r\n\r\n[General]\r\n" + entry + "\r\n\r\n" + entry
                      + " ; why\r\n\tk = old\r\n" + entry + "\rlast=1\n\n[damaged]\n" + entry));
    VERIFY_RESULT(home.run(reading("k")), "old\n");
    QCOMPARE(
        contents(home.file()),
        QByteArray("; first\r\n\r\n[General]\r\n\r\n; why\r\n\tk = old\r\nlast=1\n\n[damaged]\n"));
}

void tst_SettingsFile::goodStreamedValuesStay_data()
{
    QTest::addColumn<QVariant>("value");

    const QDate date(2020, 2, 3);
    const QTime time(4, 5, 6);
    QTest::newRow("local time") << QVariant(QDateTime(date, time));
    QTest::newRow("universal time") << QVariant(QDateTime(date, time, Qt::UTC));
    QTest::newRow("time with an offset")
        << QVariant(QDateTime(date, time, Qt::OffsetFromUTC, 3600));
    QTest::newRow("time in a zone") << QVariant(QDateTime(date, time, QTimeZone("Europe/Berlin")));
    QTest::newRow("time in a zone of one's own") << QVariant(QDateTime(
        date, time, QTimeZone("Own/Zone", 3600, QStringLiteral("own"), QStringLiteral("o"))));
    QTest::newRow("no time") << QVariant(QDateTime());
    QTest::newRow("date") << QVariant(date);
    QTest::newRow("time of day") << QVariant(time);
    QTest::newRow("colour") << QVariant(QColor(Qt::red));
    QTest::newRow("font") << QVariant(QFont(QStringLiteral("Serif"), 12));
    QTest::newRow("key sequence") << QVariant::fromValue(
        QKeySequence(Qt::CTRL + Qt::Key_A, Qt::Key_B));
    QTest::newRow("key sequence in a list") << QVariant(QVariantList{
        QVariantList{QVariant::fromValue(QKeySequence(Qt::CTRL + Qt::Key_A, Qt::Key_B)), 1}});
    const QVariantMap map{{QStringLiteral("one"), 1}, {QStringLiteral("two"), QVariant()}};
    QTest::newRow("map") << QVariant(map);
    QTest::newRow("map of times") << QVariant(
        QVariantMap{{QStringLiteral("one"), QDateTime(date, time, Qt::UTC)}});
    QTest::newRow("hash") << QVariant(QVariantHash{{QStringLiteral("one"), 1.5}});
    QTest::newRow("list") << QVariant(QVariantList{1, QStringLiteral("a, b"), 2.5});
    QTest::newRow("list of times")
        << QVariant(QVariantList{QDateTime(date, time, Qt::UTC), date, 1});
    const QStringList texts{QStringLiteral("a, b"), QString(), QStringLiteral("\u65E5")};
    QVariant nested = QVariantList{map, texts, QByteArray("a\0b", 3), true};
    for (int i = 0; i < 20; ++i)
        nested = QVariantList{nested, QVariantMap{{QStringLiteral("k"), i}}};
    QTest::newRow("lists and maps in lists") << nested;
    QTest::newRow("string list in a list") << QVariant(QVariantList{QVariant(texts), 1});
    QTest::newRow("list of bytes") << QVariant::fromValue(QByteArrayList{"a", QByteArray(), "b"});
    QTest::newRow("polygon") << QVariant::fromValue(QPolygon(QVector<QPoint>{{1, 2}, {3, -4}}));
    QTest::newRow("polygon of fractions")
        << QVariant::fromValue(QPolygonF(QVector<QPointF>{{1.5, 2}, {3, -4}}));
    QTest::newRow("bits") << QVariant(QBitArray(11, true));
    QTest::newRow("bytes") << QVariant(QByteArray("a\0\xff)", 4));
    QTest::newRow("rectangle") << QVariant(QRect(1, 2, 3, 4));
    QTest::newRow("rectangle of fractions") << QVariant(QRectF(1.5, 2, 3, 4));
    QTest::newRow("size") << QVariant(QSize(1, 2));
    QTest::newRow("size of fractions") << QVariant(QSizeF(1.5, 2));
    QTest::newRow("point of fractions") << QVariant(QPointF(1.5, 2));
    QTest::newRow("line") << QVariant(QLine(1, 2, 3, 4));
    QTest::newRow("line of fractions") << QVariant(QLineF(1.5, 2, 3, 4));
    QTest::newRow("double") << QVariant(2.5);
    QTest::newRow("float") << QVariant(2.5F);
    QTest::newRow("numbers in a list") << QVariant(
        QVariantList{QVariantList{2.5, 2.5F, 1U, 1LL, 1ULL, QVariant::fromValue(short(1)),
                                  QVariant::fromValue('c'), QVariant::fromValue(1L)}});
    QTest::newRow("character") << QVariant(QChar('x'));
    QTest::newRow("address") << QVariant(QUrl(QStringLiteral("http://host/path")));
    QTest::newRow("locale") << QVariant(QLocale(QStringLiteral("de_DE")));
    QTest::newRow("identifier") << QVariant(QUuid(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11));
    QTest::newRow("pattern") << QVariant(QRegularExpression(QStringLiteral("a.*b")));
}

void tst_SettingsFile::goodStreamedValuesStay()
{
    QFETCH(QVariant, value);

    const ConfigurationHome home;
    const QString key = QStringLiteral("value");
    QVERIFY(QDir().mkpath(home.folder()));
    {
        QSettings settings(home.file(), QSettings::IniFormat);
        settings.setValue(key, value);
    }
    const QVariant plain = QSettings(home.file(), QSettings::IniFormat).value(key);
    const QByteArray bytes = contents(home.file());
    VERIFY_RESULT(home.run(reading("k")), "default\n");
    QCOMPARE(contents(home.file()), bytes);

    VERIFY_RESULT(home.run({QStringLiteral("--write"), QStringLiteral("k"), QStringLiteral("v")}),
                  "");
    QVERIFY(contents(home.file()).contains("k=v\n"));
    QCOMPARE(contents(home.file()).replace("k=v\n", ""), bytes);
    QVERIFY(CSettings(home.file(), QSettings::IniFormat).value(key) == plain);
}

void tst_SettingsFile::aDamagedFileThatCannotBeMendedIsRead_data()
{
    writesToAnUnwritablePlaceAreLost_data();
}

void tst_SettingsFile::aDamagedFileThatCannotBeMendedIsRead()
{
    QFETCH(int, folderMode);
    QFETCH(int, fileMode);

    const ConfigurationHome home;
    const QByteArray bytes = QByteArray(entriesBefore)
        + R"ini(damaged=@DateTime(\0\0\0\x10\0\0\0\0\0\0%\x85\x3\0\xe0\x65P\x3\0\0\0\x6\0\x45\0u\0/))ini"
          "\n"
        + entriesBehind;
    QVERIFY(write(home.file(), bytes));
    QVERIFY(QFile::setPermissions(home.file(), QFile::Permissions(fileMode)));
    QVERIFY(QFile::setPermissions(home.folder(), QFile::Permissions(folderMode)));

    VERIFY_RESULT(home.run({QStringLiteral("--read-and-write"), QStringLiteral("k")}), "old\n");
    QCOMPARE(contents(home.file()), bytes);
    QCOMPARE(QDir(home.folder()).entryList(QDir::Files | QDir::Hidden),
             QStringList(QStringLiteral("Data.plist")));
}

void tst_SettingsFile::aDamagedFileThatIsBeingWrittenIsRead()
{
    const ConfigurationHome home;
    const QByteArray bytes = QByteArray(entriesBefore) + "damaged=@DateTime(\\0)\n" + entriesBehind;
    QVERIFY(write(home.file(), bytes));
    QLockFile writer(home.file() + QStringLiteral(".lock"));
    QVERIFY(writer.lock());
    VERIFY_RESULT(home.run(reading("k")), "old\n");
    QCOMPARE(contents(home.file()), bytes);

    writer.unlock();
    VERIFY_RESULT(home.run(reading("k")), "old\n");
    QCOMPARE(contents(home.file()), QByteArray(entriesBefore) + entriesBehind);
}

void tst_SettingsFile::manyFilesAreLookedAt()
{
    const QTemporaryDir folder;
    const QByteArray sound("[General]\nk=1\n");
    for (int i = 0; i < 1010; ++i) {
        const QString path = folder.filePath(QString::number(i));
        QVERIFY(write(path, sound + "damaged=@DateTime(\\0)\n"));
        for (int times = 0; times < 3; ++times) {
            QCOMPARE(CSettings(path, QSettings::IniFormat).value(QStringLiteral("k")).toInt(), 1);
            QCOMPARE(contents(path), sound);
        }
    }
}

void tst_SettingsFile::settingsCanBeUsedAtExit()
{
    const ConfigurationHome home;
    VERIFY_RESULT(home.run({QStringLiteral("--write-at-exit")}), "1\n2\n1\n2\n");
    QCOMPARE(contents(home.file()), QByteArray("[General]\nk=1\nlast=2\nlastButOne=2\n"));
}

void tst_SettingsFile::firstUsesOnSeveralThreadsAreSafe()
{
    const ConfigurationHome home;
    QVERIFY(write(home.file(), "[General]\nk=v\n"));
    VERIFY_RESULT(home.run({QStringLiteral("--read-from-several-threads")}),
                  "v\nv\nv\nv\nv\nv\nv\nv\n");
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.value(1).startsWith(QLatin1String("--")))
        return runCommand(arguments);

    tst_SettingsFile test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_SettingsFile.moc"
