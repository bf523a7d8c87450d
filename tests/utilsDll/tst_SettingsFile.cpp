#include "OrdinaryFileRights.h"
#include "Settings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QSettings>
#include <QTemporaryDir>
#include <QtTest>

#include <cstdio>
#include <thread>
#include <vector>

using VEK_NAMESPACE::CSettings;

// The place of the fixed file is settled once per process, so this program runs itself, with a
// command, for each process that a test needs.

namespace {

const char place[] = "/Vek Labs/krnv3/Data.plist";

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
