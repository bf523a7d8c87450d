#include "OrdinaryFileRights.h"
#include "RecordingLogger.h"
#include "Settings.h"
#include "TemporarySettings.h"
#include "storageLocation.h"

#include <QCoreApplication>
#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QtTest>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <set>
#include <thread>
#include <vector>

#include <sys/syscall.h>
#include <unistd.h>

using namespace VEK_NAMESPACE;

// A process settles its paths once, so this program runs itself, with the steps to take as its
// arguments, for each process that a test needs. These functions play the system to the library.

/// The real user is PLAYED_USER if that is set, which Qt refuses to start with.
extern "C" Q_DECL_EXPORT uid_t getuid() noexcept
{
    const char* const user = std::getenv("PLAYED_USER");
    return user ? uid_t(std::strtoul(user, nullptr, 10)) : uid_t(syscall(SYS_getuid));
}

/// The login session is PLAYED_SESSION_USER's; there is none if that isn't set.
extern "C" Q_DECL_EXPORT int sd_pid_get_owner_uid(pid_t process, uid_t* user)
{
    const char* const owner = std::getenv("PLAYED_SESSION_USER");
    if (!owner || process != 0)
        return -ENODATA;
    *user = uid_t(std::strtoul(owner, nullptr, 10));
    return 0;
}

namespace {

using Location = QString (*)();

const std::map<QString, Location>& locations()
{
    static const std::map<QString, Location> all = {
        {QStringLiteral("diskCacheLocation"), CStorageLocation::diskCacheLocation},
        {QStringLiteral("cachedTokenFilePath"), CStorageLocation::cachedTokenFilePath},
        {QStringLiteral("packUserStoragePath"), CStorageLocation::packUserStoragePath},
        {QStringLiteral("favoritePresetPath"), CStorageLocation::favoritePresetPath},
        {QStringLiteral("cafDataPath"), CStorageLocation::cafDataPath},
        {QStringLiteral("loggerFilesPath"), CStorageLocation::loggerFilesPath},
        {QStringLiteral("crashFilesPath"), CStorageLocation::crashFilesPath},
        {QStringLiteral("crashTempFilesPath"), CStorageLocation::crashTempFilesPath},
        {QStringLiteral("getSamplePicturesLocation"), CStorageLocation::getSamplePicturesLocation},
        {QStringLiteral("getPreferencesFilePath"), CStorageLocation::getPreferencesFilePath},
        {QStringLiteral("miniatureBlurShapesPath"), CStorageLocation::miniatureBlurShapesPath},
        {QStringLiteral("framePackPath"), CStorageLocation::framePackPath},
        {QStringLiteral("texturesPackPath"), CStorageLocation::texturesPackPath},
        {QStringLiteral("defectsPackPath"), CStorageLocation::defectsPackPath},
        {QStringLiteral("cafDataPathOfHalvardenLatestVersion"),
         CStorageLocation::cafDataPathOfHalvardenLatestVersion},
        {QStringLiteral("cafDataPathOfMarlowick2"), CStorageLocation::cafDataPathOfMarlowick2},
        {QStringLiteral("sessionSingleAppDirectory"), CStorageLocation::sessionSingleAppDirectory},
    };
    return all;
}

/// The locations whose folders the library creates.
const Location ensuredLocations[] = {
    CStorageLocation::diskCacheLocation,   CStorageLocation::cachedTokenFilePath,
    CStorageLocation::packUserStoragePath, CStorageLocation::favoritePresetPath,
    CStorageLocation::cafDataPath,         CStorageLocation::loggerFilesPath,
    CStorageLocation::crashTempFilesPath};

/// Password entries, each "user=home folder".
bool writePasswordEntries(const QString& path, const QStringList& entries)
{
    // A new file, since the one that is open is only read again when the second has changed.
    QFile::remove(path);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    for (const QString& entry : entries) {
        const QByteArray user = entry.section(QLatin1Char('='), 0, 0).toUtf8();
        const QByteArray home = entry.section(QLatin1Char('='), 1).toUtf8();
        file.write("user" + user + ":x:" + user + ":1::" + home + ":/bin/sh\n");
    }
    return file.flush();
}

QString ownUser()
{
    return QString::number(syscall(SYS_getuid));
}

void print(const QString& text)
{
    std::printf("%s\n", text.toUtf8().constData());
    std::fflush(stdout);
}

/// Asks for each folder on several threads at once, and prints what they were told.
void askAtOnce()
{
    constexpr int threadCount = 8;
    std::vector<std::vector<QString>> answers(threadCount);
    std::atomic<int> missing{threadCount};
    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (std::vector<QString>& own : answers) {
        threads.emplace_back([&own, &missing] {
            --missing;
            while (missing > 0)
                std::this_thread::yield();
            for (const Location location : ensuredLocations) {
                own.push_back(location());
                own.push_back(CStorageLocation::dataLocation(QStringLiteral("common"), true));
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    std::set<QString> told;
    for (const std::vector<QString>& own : answers)
        told.insert(own.begin(), own.end());
    for (const QString& path : told)
        print(path);
}

/// Asks once more when the process ends.
class LateQuestion
{
public:
    explicit LateQuestion(Location location)
        : m_location(location)
    {}
    ~LateQuestion() { print(m_location()); }

private:
    Q_DISABLE_COPY(LateQuestion)

    const Location m_location;
};

/// What a process keeps from one step to the next.
struct Kept
{
    std::unique_ptr<RecordingLogger> logger;
    std::unique_ptr<CTemporarySettings> overlay;
};

bool take(const QString& step, Kept& kept)
{
    const auto location = locations().find(step);
    if (location != locations().end()) {
        print(location->second());
        return true;
    }

    const QString name = step.section(QLatin1Char('='), 0, 0);
    const QString value = step.section(QLatin1Char('='), 1);
    if (name == QLatin1String("find")) {
        print(CStorageLocation::dataLocation(value, false));
    } else if (name == QLatin1String("make")) {
        print(CStorageLocation::dataLocation(value, true));
    } else if (name == QLatin1String("preference")) {
        print(CSettings::getStringFromPreferencesFile(value.section(QLatin1Char(','), 0, 0),
                                                      value.section(QLatin1Char(','), 1)));
    } else if (name == QLatin1String("move home")) {
        return writePasswordEntries(QFile::decodeName(qgetenv("NSS_WRAPPER_PASSWD")),
                                    {ownUser() + QLatin1Char('=') + value});
    } else if (name == QLatin1String("move configuration")) {
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(value));
    } else if (name == QLatin1String("play user")) {
        qputenv("PLAYED_USER", value.toUtf8());
    } else if (name == QLatin1String("delete")) {
        return QDir(value).removeRecursively();
    } else if (name == QLatin1String("write")) {
        QFile file(value.section(QLatin1Char(','), 0, 0));
        return file.open(QIODevice::WriteOnly)
            && file.write(value.section(QLatin1Char(','), 1).toUtf8()) > 0;
    } else if (name == QLatin1String("overlay")) {
        kept.overlay.reset(new CTemporarySettings(nullptr));
        kept.overlay->setValue(value, QStringLiteral("overlay"));
        CSettings::setTemporarySettings(*kept.overlay);
    } else if (name == QLatin1String("start logger")) {
        kept.logger.reset(new RecordingLogger);
    } else if (name == QLatin1String("lines")) {
        const QStringList lines = kept.logger->takeLines();
        for (const QString& line : lines)
            print(line);
    } else if (name == QLatin1String("ask at once")) {
        askAtOnce();
    } else if (name == QLatin1String("at the end")) {
        static const LateQuestion question(locations().at(value));
    } else {
        return false;
    }
    return true;
}

int takeSteps(const QStringList& steps)
{
    if (!takeOrdinaryFileRights())
        return 2;
    Kept kept;
    for (const QString& step : steps) {
        if (!take(step, kept)) {
            std::fprintf(stderr, "can't %s\n", qPrintable(step));
            return 1;
        }
    }
    return 0;
}

/// What the processes of a test run in. In its texts an at sign stands for a folder of its own.
class Surroundings
{
public:
    Surroundings()
    {
        setPasswordEntries({QStringLiteral("own=@/home")});
        set("HOME", QStringLiteral("@/other home"));
        set("XDG_CONFIG_HOME", QStringLiteral("@/configuration"));
        set("XDG_DATA_HOME", QStringLiteral("@/data/share"));
        set("TMPDIR", QStringLiteral("@/temporary"));
        set("NSS_WRAPPER_PASSWD", QStringLiteral("@/passwd"));
        makeFolder(QStringLiteral("@/temporary"));
    }

    ~Surroundings()
    {
        for (const QString& path : qAsConst(m_restricted))
            QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

    QString at(QString text) const { return text.replace(QLatin1Char('@'), m_root); }

    void set(const char* variable, const QString& value)
    {
        m_environment.insert(QLatin1String(variable), at(value));
    }

    /// "own" is the user of this process.
    void setPasswordEntries(QStringList entries)
    {
        entries.replaceInStrings(QStringLiteral("own="), ownUser() + QLatin1Char('='));
        entries.replaceInStrings(QStringLiteral("@"), m_root);
        if (!writePasswordEntries(at(QStringLiteral("@/passwd")), entries))
            qFatal("can't write the password entries");
    }

    void makeFolder(const QString& path) const
    {
        if (!QDir().mkpath(at(path)))
            qFatal("can't make %s", qPrintable(at(path)));
    }

    void makeFile(const QString& path, const QByteArray& bytes) const
    {
        makeFolder(QFileInfo(path).path());
        QFile file(at(path));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("can't write %s", qPrintable(at(path)));
    }

    void restrict(const QString& path, QFile::Permissions permissions)
    {
        m_restricted << at(path);
        QFile::setPermissions(at(path), permissions);
    }

    /// The output of a process that takes \a steps.
    QString run(const QStringList& steps,
                const QString& program = QCoreApplication::applicationFilePath()) const
    {
        QStringList arguments = QStringList(QStringLiteral("--take")) + steps;
        arguments.replaceInStrings(QStringLiteral("@"), m_root);
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.setWorkingDirectory(m_root);
        process.start(at(program), arguments);
        if (!process.waitForFinished(60000))
            return QStringLiteral("did not end");
        QString output = QString::fromUtf8(process.readAllStandardOutput());
        const QByteArray errors = process.readAllStandardError();
        if (!errors.isEmpty() || process.exitStatus() != QProcess::NormalExit
            || process.exitCode() != 0) {
            output += QStringLiteral("failed: ") + QString::fromUtf8(errors);
        }
        return output;
    }

    /// All that lies below the folder, and has nothing below itself.
    QStringList leaves(const QString& folder) const
    {
        QStringList found;
        QDirIterator iterator(at(folder), QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                              QDirIterator::Subdirectories);
        while (iterator.hasNext()) {
            const QString path = iterator.next();
            if (!iterator.fileInfo().isDir() || QDir(path).isEmpty())
                found << QDir(at(folder)).relativeFilePath(path);
        }
        found.sort();
        return found;
    }

private:
    Q_DISABLE_COPY(Surroundings)

    const QTemporaryDir m_dir;
    const QString m_root = QFileInfo(m_dir.path()).canonicalFilePath();
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
    QStringList m_restricted;
};

} // namespace

class tst_storageLocation : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void dataFoldersOfTheUser_data();
    void dataFoldersOfTheUser();
    void theRealUserCounts();
    void aUserWhomTheSystemDoesNotKnow();
    void aDataFolderIsMadeOnDemand();
    void aDataFolderIsNotCached();

    void foldersOfTheApplication_data();
    void foldersOfTheApplication();
    void withoutAPasswordEntryTheyLieBesideTheGenericData();
    void theyKeepTheirPathsForTheProcess_data() { foldersOfTheApplication_data(); }
    void theyKeepTheirPathsForTheProcess();
    void theyAnswerUntilTheProcessEnds_data() { foldersOfTheApplication_data(); }
    void theyAnswerUntilTheProcessEnds();
    void aDeletedFolderComesBack_data() { foldersOfTheApplication_data(); }
    void aDeletedFolderComesBack();
    void theCrashFolderComesBackWithTheOneInIt();
    void whatIsInAFolderStays();
    void aLinkToAFolderIsAFolder();
    void aMissingHomeIsMade();
    void aFolderThatCannotBeMadeIsReturned_data();
    void aFolderThatCannotBeMadeIsReturned();
    void severalThreadsGetTheSameFolders();

    void samplePictures_data();
    void samplePictures();
    void samplePicturesAreNotCached();

    void thePreferencesFileLiesInTheSystemFolder();
    void preferences_data();
    void preferences();
    void preferencesOfAFileThatCannotBeRead_data();
    void preferencesOfAFileThatCannotBeRead();
    void preferencesAreReadEachTime();
    void theOverlayDoesNotCountForPreferences();

    void filesInTheResources_data();
    void filesInTheResources();
    void aFileInTheResourcesIsFoundUntilTheProcessEnds_data() { filesInTheResources_data(); }
    void aFileInTheResourcesIsFoundUntilTheProcessEnds();
    void aFileInTheResourcesIsLoggedOnce_data() { filesInTheResources_data(); }
    void aFileInTheResourcesIsLoggedOnce();
    void aLoggerThatComesLaterIsNotTold();

    void dataOfHalvarden_data();
    void dataOfHalvarden();
    void dataOfHalvardenThatCannotBeReadIsPassedOver();
    void dataOfHalvardenIsSearchedEachTime();
    void dataOfMarlowick2_data();
    void dataOfMarlowick2();

    void theFolderOfTheSession_data();
    void theFolderOfTheSession();
    void theTemporaryFolderIsMadeAbsolute();
};

void tst_storageLocation::dataFoldersOfTheUser_data()
{
    QTest::addColumn<QStringList>("passwordEntries");
    QTest::addColumn<QString>("subFolder");
    QTest::addColumn<QString>("expected");

    const QStringList home = {"own=@/home"};
    QTest::newRow("below the home") << home << "x"
                                    << "@/home/Library/Vek_Labs/x/";
    QTest::newRow("with a blank") << home << "Vek Marlowick 3"
                                  << "@/home/Library/Vek_Labs/Vek Marlowick 3/";
    QTest::newRow("a folder in a folder") << home << "x/y"
                                          << "@/home/Library/Vek_Labs/x/y/";
    QTest::newRow("a path that isn't clean stays so") << home << "x/../y/"
                                                      << "@/home/Library/Vek_Labs/x/../y//";
    QTest::newRow("no name") << home << ""
                             << "@/home/Library/Vek_Labs//";
    QTest::newRow("a name that isn't ASCII") << home << QString::fromUtf8("größe")
                                             << QString::fromUtf8("@/home/Library/Vek_Labs/größe/");
    QTest::newRow("a home that isn't ASCII")
        << QStringList{QString::fromUtf8("own=@/jö 写真")} << "x"
        << QString::fromUtf8("@/jö 写真/Library/Vek_Labs/x/");
    QTest::newRow("a separator at the end of the home") << QStringList{"own=@/home/"} << "x"
                                                        << "@/home//Library/Vek_Labs/x/";
    QTest::newRow("an empty home") << QStringList{"own="} << "x"
                                   << "/Library/Vek_Labs/x/";
    const QString name(250, QLatin1Char('n'));
    const QString longHome = QStringList{"@", name, name, name, name, name}.join(QLatin1Char('/'));
    QTest::newRow("a very long home")
        << QStringList{"own=" + longHome} << "x" << longHome + "/Library/Vek_Labs/x/";
    QTest::newRow("one home among others")
        << QStringList{"4242=@/another", "own=@/home", "4243=@/third"} << "x"
        << "@/home/Library/Vek_Labs/x/";

    const QStringList none = {"4242=@/another"};
    QTest::newRow("no entry") << none << "x"
                              << "@/data/Vek_Labs/x/";
    QTest::newRow("no entry, a folder in a folder") << none << "x/y"
                                                    << "@/data/Vek_Labs/x/y/";
    QTest::newRow("no entry, a path that isn't clean") << none << "x/../y/"
                                                       << "@/data/Vek_Labs/y/";
    QTest::newRow("no entry, no name") << none << ""
                                       << "@/data/Vek_Labs/";
    QTest::newRow("no entries at all") << QStringList() << "x"
                                       << "@/data/Vek_Labs/x/";
}

void tst_storageLocation::dataFoldersOfTheUser()
{
    QFETCH(QStringList, passwordEntries);
    QFETCH(QString, subFolder);
    QFETCH(QString, expected);

    Surroundings surroundings;
    surroundings.setPasswordEntries(passwordEntries);
    QCOMPARE(surroundings.run({QStringLiteral("find=") + subFolder}),
             surroundings.at(expected) + "\n");
    QCOMPARE(surroundings.leaves("@"), QStringList({"passwd", "temporary"}));
}

void tst_storageLocation::theRealUserCounts()
{
    Surroundings surroundings;
    surroundings.setPasswordEntries({"own=@/home", "4242=@/another"});
    QCOMPARE(surroundings.run({"play user=4242", "find=x"}),
             surroundings.at("@/another/Library/Vek_Labs/x/\n"));
}

// The other way to say that there is no entry: without an error.
void tst_storageLocation::aUserWhomTheSystemDoesNotKnow()
{
    Surroundings surroundings;
    surroundings.set("LD_PRELOAD", QString());
    QCOMPARE(surroundings.run({"play user=4242424242", "find=x"}),
             surroundings.at("@/data/Vek_Labs/x/\n"));
}

void tst_storageLocation::aDataFolderIsMadeOnDemand()
{
    const Surroundings surroundings;
    surroundings.makeFolder("@/home");
    const QString expected = surroundings.at("@/home/Library/Vek_Labs/x/y/\n");
    QCOMPARE(surroundings.run({"find=x/y"}), expected);
    QCOMPARE(surroundings.leaves("@/home"), QStringList());
    QCOMPARE(surroundings.run({"make=x/y", "make=x/y"}), expected + expected);
    QCOMPARE(surroundings.leaves("@/home"), QStringList{"Library/Vek_Labs/x/y"});
    QCOMPARE(surroundings.run({"make=x/y", "delete=@/home/Library", "find=x/y",
                               "delete=@/home/Library", "make=x/y"}),
             expected + expected + expected);
    QCOMPARE(surroundings.leaves("@/home"), QStringList{"Library/Vek_Labs/x/y"});
}

void tst_storageLocation::aDataFolderIsNotCached()
{
    const Surroundings surroundings;
    QCOMPARE(surroundings.run({"find=x", "move home=@/another", "find=x", "make=y"}),
             surroundings.at("@/home/Library/Vek_Labs/x/\n"
                             "@/another/Library/Vek_Labs/x/\n"
                             "@/another/Library/Vek_Labs/y/\n"));
    QCOMPARE(surroundings.leaves("@/another"), QStringList{"Library/Vek_Labs/y"});
}

void tst_storageLocation::foldersOfTheApplication_data()
{
    QTest::addColumn<QString>("location");
    QTest::addColumn<QString>("folder");

    const auto row = [](const char* location, const char* folder) {
        QTest::newRow(location) << location << folder;
    };
    row("diskCacheLocation", "Library/Vek_Labs/Vek Marlowick 3/DiskCache");
    row("cachedTokenFilePath", "Library/Vek_Labs/Vek Marlowick 3/Facebook");
    row("packUserStoragePath", "Library/Vek_Labs/Vek Marlowick 3/PresetPack");
    row("favoritePresetPath", "Library/Vek_Labs/Vek Marlowick 3/Favorite");
    row("cafDataPath", "Library/Vek_Labs/Vek Marlowick 3/Modules");
    row("loggerFilesPath", "Library/Vek_Labs/Vek Marlowick 3/Logs");
    row("crashFilesPath", "Library/Vek_Labs/Vek Marlowick 3/CrashReports");
    row("crashTempFilesPath", "Library/Vek_Labs/Vek Marlowick 3/CrashReports/temp");
}

void tst_storageLocation::foldersOfTheApplication()
{
    QFETCH(QString, location);
    QFETCH(QString, folder);

    const Surroundings surroundings;
    surroundings.makeFolder("@/home");
    const QString path = surroundings.at("@/home/") + folder + "/\n";
    QCOMPARE(surroundings.run({location, location}), path + path);
    QCOMPARE(surroundings.leaves("@/home"), QStringList{folder});
}

void tst_storageLocation::withoutAPasswordEntryTheyLieBesideTheGenericData()
{
    Surroundings surroundings;
    surroundings.setPasswordEntries({});
    QCOMPARE(surroundings.run({"crashTempFilesPath", "cafDataPath"}),
             surroundings.at("@/data/Vek_Labs/Vek Marlowick 3/CrashReports/temp/\n"
                             "@/data/Vek_Labs/Vek Marlowick 3/Modules/\n"));
    QCOMPARE(surroundings.leaves("@/data"),
             QStringList({"Vek_Labs/Vek Marlowick 3/CrashReports/temp",
                          "Vek_Labs/Vek Marlowick 3/Modules"}));
}

void tst_storageLocation::theyKeepTheirPathsForTheProcess()
{
    QFETCH(QString, location);
    QFETCH(QString, folder);

    const Surroundings surroundings;
    surroundings.makeFolder("@/another");
    const QString path = surroundings.at("@/home/") + folder + "/\n";
    QCOMPARE(surroundings.run({location, "move home=@/another", "delete=@/home", location}),
             path + path);
    QCOMPARE(surroundings.leaves("@/another"), QStringList());
    QCOMPARE(surroundings.leaves("@/home"), QStringList{folder});
}

/// Static objects that are older than the first call are destroyed after what it has made.
void tst_storageLocation::theyAnswerUntilTheProcessEnds()
{
    QFETCH(QString, location);
    QFETCH(QString, folder);

    const Surroundings surroundings;
    surroundings.makeFolder("@/home");
    const QString path = surroundings.at("@/home/") + folder + "/\n";
    QCOMPARE(surroundings.run({"at the end=" + location, location}), path + path);
    QCOMPARE(surroundings.leaves("@/home"), QStringList{folder});
}

void tst_storageLocation::aDeletedFolderComesBack()
{
    QFETCH(QString, location);
    QFETCH(QString, folder);

    const Surroundings surroundings;
    const QString path = surroundings.at("@/home/") + folder + "/\n";
    QCOMPARE(surroundings.run({location, "delete=@/home/" + folder, location}), path + path);
    QCOMPARE(surroundings.leaves("@/home"), QStringList{folder});
}

void tst_storageLocation::theCrashFolderComesBackWithTheOneInIt()
{
    const Surroundings surroundings;
    surroundings.run({"crashTempFilesPath",
                      "delete=@/home/Library/Vek_Labs/Vek Marlowick 3/CrashReports",
                      "crashTempFilesPath"});
    QCOMPARE(surroundings.leaves("@/home"),
             QStringList{"Library/Vek_Labs/Vek Marlowick 3/CrashReports/temp"});
}

void tst_storageLocation::whatIsInAFolderStays()
{
    const Surroundings surroundings;
    const QString file = "Library/Vek_Labs/Vek Marlowick 3/Logs/old.log";
    surroundings.makeFile("@/home/" + file, "old");
    surroundings.run({"loggerFilesPath"});
    QCOMPARE(surroundings.leaves("@/home"), QStringList{file});
}

void tst_storageLocation::aLinkToAFolderIsAFolder()
{
    const Surroundings surroundings;
    surroundings.makeFolder("@/elsewhere");
    surroundings.makeFolder("@/home/Library/Vek_Labs");
    QVERIFY(QFile::link(surroundings.at("@/elsewhere"),
                        surroundings.at("@/home/Library/Vek_Labs/Vek Marlowick 3")));
    QCOMPARE(surroundings.run({"loggerFilesPath"}),
             surroundings.at("@/home/Library/Vek_Labs/Vek Marlowick 3/Logs/\n"));
    QCOMPARE(surroundings.leaves("@/elsewhere"), QStringList{"Logs"});
}

void tst_storageLocation::aMissingHomeIsMade()
{
    Surroundings surroundings;
    surroundings.setPasswordEntries({"own=@/missing/home"});
    QCOMPARE(surroundings.run({"loggerFilesPath"}),
             surroundings.at("@/missing/home/Library/Vek_Labs/Vek Marlowick 3/Logs/\n"));
    QCOMPARE(surroundings.leaves("@/missing"),
             QStringList{"home/Library/Vek_Labs/Vek Marlowick 3/Logs"});
}

void tst_storageLocation::aFolderThatCannotBeMadeIsReturned_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("readOnlyFolder");

    QTest::newRow("a read-only home") << QString() << "@/home";
    QTest::newRow("a read-only folder of the application")
        << QString() << "@/home/Library/Vek_Labs/Vek Marlowick 3";
    QTest::newRow("a file in the place of the home") << "@/home" << QString();
    QTest::newRow("a file in the place of a folder above")
        << "@/home/Library/Vek_Labs" << QString();
    QTest::newRow("a file in its place")
        << "@/home/Library/Vek_Labs/Vek Marlowick 3/Logs" << QString();
}

void tst_storageLocation::aFolderThatCannotBeMadeIsReturned()
{
    QFETCH(QString, file);
    QFETCH(QString, readOnlyFolder);

    Surroundings surroundings;
    if (!file.isEmpty())
        surroundings.makeFile(file, "bytes");
    if (!readOnlyFolder.isEmpty()) {
        surroundings.makeFolder(readOnlyFolder);
        surroundings.restrict(readOnlyFolder, QFile::ReadOwner | QFile::ExeOwner);
    }
    const QStringList before = surroundings.leaves("@");
    const QString path = surroundings.at("@/home/Library/Vek_Labs/Vek Marlowick 3/Logs/\n");
    QCOMPARE(surroundings.run({"loggerFilesPath", "loggerFilesPath"}), path + path);
    QCOMPARE(surroundings.leaves("@"), before);
}

void tst_storageLocation::severalThreadsGetTheSameFolders()
{
    const Surroundings surroundings;
    QCOMPARE(surroundings.run({"ask at once"}),
             surroundings.at("@/home/Library/Vek_Labs/Vek Marlowick 3/CrashReports/temp/\n"
                             "@/home/Library/Vek_Labs/Vek Marlowick 3/DiskCache/\n"
                             "@/home/Library/Vek_Labs/Vek Marlowick 3/Facebook/\n"
                             "@/home/Library/Vek_Labs/Vek Marlowick 3/Favorite/\n"
                             "@/home/Library/Vek_Labs/Vek Marlowick 3/Logs/\n"
                             "@/home/Library/Vek_Labs/Vek Marlowick 3/Modules/\n"
                             "@/home/Library/Vek_Labs/Vek Marlowick 3/PresetPack/\n"
                             "@/home/Library/Vek_Labs/common/\n"));
    QCOMPARE(
        surroundings.leaves("@/home/Library/Vek_Labs"),
        QStringList({"Vek Marlowick 3/CrashReports/temp", "Vek Marlowick 3/DiskCache",
                     "Vek Marlowick 3/Facebook", "Vek Marlowick 3/Favorite", "Vek Marlowick 3/Logs",
                     "Vek Marlowick 3/Modules", "Vek Marlowick 3/PresetPack", "common"}));
}

void tst_storageLocation::samplePictures_data()
{
    QTest::addColumn<QByteArray>("userFolders");
    QTest::addColumn<QString>("expected");

    QTest::newRow("the user's pictures") << QByteArray("XDG_PICTURES_DIR=\"$HOME/Photos\"\n")
                                         << "@/other home/Photos/Vek Marlowick 3 Samples/";
    QTest::newRow("a separator at the end") << QByteArray("XDG_PICTURES_DIR=\"/srv/Photos/\"\n")
                                            << "/srv/Photos/Vek Marlowick 3 Samples/";
    QTest::newRow("the usual folder") << QByteArray("XDG_MUSIC_DIR=\"/srv/Music\"\n")
                                      << "@/other home/Pictures/Vek Marlowick 3 Samples/";
    QTest::newRow("the root folder")
        << QByteArray("XDG_PICTURES_DIR=\"/\"\n") << "/Vek Marlowick 3 Samples/";
    QTest::newRow("no pictures") << QByteArray("XDG_PICTURES_DIR=\n") << "";
}

void tst_storageLocation::samplePictures()
{
    QFETCH(QByteArray, userFolders);
    QFETCH(QString, expected);

    const Surroundings surroundings;
    surroundings.makeFile("@/configuration/user-dirs.dirs", userFolders);
    QCOMPARE(surroundings.run({"getSamplePicturesLocation"}), surroundings.at(expected) + "\n");
    QVERIFY(!QFileInfo::exists(surroundings.at("@/other home")));
}

void tst_storageLocation::samplePicturesAreNotCached()
{
    const Surroundings surroundings;
    surroundings.makeFile("@/another/user-dirs.dirs", "XDG_PICTURES_DIR=\"/srv/Photos\"\n");
    QCOMPARE(surroundings.run({"getSamplePicturesLocation", "move configuration=@/another",
                               "getSamplePicturesLocation"}),
             surroundings.at("@/other home/Pictures/Vek Marlowick 3 Samples/\n"
                             "/srv/Photos/Vek Marlowick 3 Samples/\n"));
}

void tst_storageLocation::thePreferencesFileLiesInTheSystemFolder()
{
    const Surroundings surroundings;
    const QString path = surroundings.at("@/configuration/Vek Labs/krnv3/Preferences.ini\n");
    QCOMPARE(surroundings.run({"getPreferencesFilePath", "move configuration=@/another",
                               "getPreferencesFilePath"}),
             path + path);
    QCOMPARE(surroundings.leaves("@"), QStringList({"passwd", "temporary"}));
}

void tst_storageLocation::preferences_data()
{
    QTest::addColumn<QByteArray>("file");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QString>("expected");

    QTest::newRow("a text") << QByteArray("[General]\nk=v\n") << "k"
                            << "v";
    QTest::newRow("a text with blanks") << QByteArray("[General]\nk=\" v w \"\n") << "k"
                                        << " v w ";
    QTest::newRow("a text that isn't ASCII")
        << QByteArray("[General]\nk=gr\\xf6\\xdf\\x5199\n") << "k" << QString::fromUtf8("größ写");
    QTest::newRow("a number") << QByteArray("[General]\nk=12\n") << "k"
                              << "12";
    QTest::newRow("in a group") << QByteArray("[g]\nk=v\n") << "g/k"
                                << "v";
    QTest::newRow("of another case") << QByteArray("[General]\nK=v\n") << "k"
                                     << "default";
    QTest::newRow("an empty text") << QByteArray("[General]\nk=\n") << "k"
                                   << "default";
    QTest::newRow("an empty quoted text") << QByteArray("[General]\nk=\"\"\n") << "k"
                                          << "default";
    QTest::newRow("a list, which isn't a text") << QByteArray("[General]\nk=a, b\n") << "k"
                                                << "default";
    QTest::newRow("another key") << QByteArray("[General]\nl=v\n") << "k"
                                 << "default";
    QTest::newRow("an empty file") << QByteArray() << "k"
                                   << "default";
    QTest::newRow("a file that isn't text")
        << QByteArray("\x00\xff\xfe[\x01\n\x80]=\x00\xc3\x28", 13) << "k"
        << "default";
}

void tst_storageLocation::preferences()
{
    QFETCH(QByteArray, file);
    QFETCH(QString, key);
    QFETCH(QString, expected);

    const Surroundings surroundings;
    surroundings.makeFile("@/configuration/Vek Labs/krnv3/Preferences.ini", file);
    QCOMPARE(surroundings.run({"preference=" + key + ",default"}), expected + "\n");
}

void tst_storageLocation::preferencesOfAFileThatCannotBeRead_data()
{
    QTest::addColumn<QString>("made");

    QTest::newRow("nothing") << QString();
    QTest::newRow("no file in the folder") << "@/configuration/Vek Labs/krnv3/Data.plist";
    QTest::newRow("a folder in its place") << "@/configuration/Vek Labs/krnv3/Preferences.ini/file";
    QTest::newRow("a file in the folder's place") << "@/configuration/Vek Labs";
    QTest::newRow("not readable") << "@/configuration/Vek Labs/krnv3/Preferences.ini";
}

void tst_storageLocation::preferencesOfAFileThatCannotBeRead()
{
    QFETCH(QString, made);

    Surroundings surroundings;
    if (!made.isEmpty())
        surroundings.makeFile(made, "[General]\nk=v\n");
    if (made.endsWith("Preferences.ini"))
        surroundings.restrict(made, {});
    const QStringList before = surroundings.leaves("@");
    QCOMPARE(surroundings.run({"preference=k,default", "preference=k,"}),
             QStringLiteral("default\n\n"));
    QCOMPARE(surroundings.leaves("@"), before);
}

void tst_storageLocation::preferencesAreReadEachTime()
{
    const Surroundings surroundings;
    const QString path = "@/configuration/Vek Labs/krnv3/Preferences.ini";
    surroundings.makeFile(path, "[General]\nk=v\n");
    QCOMPARE(surroundings.run({"preference=k,default", "write=" + path + ",[General]\nk=longer\n",
                               "preference=k,default"}),
             QStringLiteral("v\nlonger\n"));
}

void tst_storageLocation::theOverlayDoesNotCountForPreferences()
{
    const Surroundings surroundings;
    surroundings.makeFile("@/configuration/Vek Labs/krnv3/Preferences.ini", "[General]\nk=v\n");
    QCOMPARE(surroundings.run({"overlay=k", "preference=k,default"}), QStringLiteral("v\n"));
    QCOMPARE(surroundings.run({"overlay=l", "preference=l,default"}), QStringLiteral("default\n"));
}

void tst_storageLocation::filesInTheResources_data()
{
    QTest::addColumn<QString>("location");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("description");

    const auto row = [](const char* location, const char* file, const char* description) {
        QTest::newRow(location) << location << file << description;
    };
    row("miniatureBlurShapesPath", "BlurShapes.lua", "Miniature blur shapes data path");
    row("framePackPath", "Frames.lua", "Frames data path");
    row("texturesPackPath", "Textures.lua", "Textures data path");
    row("defectsPackPath", "Defects.lua", "Defects data path");
}

void tst_storageLocation::filesInTheResources()
{
    QFETCH(QString, location);
    QFETCH(QString, file);

    const Surroundings surroundings;
    const QString program = "@/Host.app/Contents/MacOS/Host";
    surroundings.makeFolder("@/Host.app/Contents/MacOS");
    QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), surroundings.at(program)));
    const QString path =
        surroundings.at("@/Host.app/Contents/Resources/Resources/") + file + QLatin1Char('\n');
    QCOMPARE(surroundings.run({location, location}, program), path + path);
    QCOMPARE(surroundings.leaves("@/Host.app"), QStringList{"Contents/MacOS/Host"});
}

void tst_storageLocation::aFileInTheResourcesIsFoundUntilTheProcessEnds()
{
    QFETCH(QString, location);
    QFETCH(QString, file);

    const Surroundings surroundings;
    const QStringList lines =
        surroundings.run({"at the end=" + location, location}).split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines.at(0).endsWith("/Resources/Resources/" + file), qPrintable(lines.at(0)));
    QCOMPARE(lines.at(1), lines.at(0));
}

void tst_storageLocation::aFileInTheResourcesIsLoggedOnce()
{
    QFETCH(QString, location);
    QFETCH(QString, file);
    QFETCH(QString, description);

    const Surroundings surroundings;
    const QString program = "@/Host.app/Contents/MacOS/Host";
    surroundings.makeFolder("@/Host.app/Contents/MacOS");
    QVERIFY(QFile::copy(QCoreApplication::applicationFilePath(), surroundings.at(program)));
    const QString path =
        surroundings.at("@/Host.app/Contents/Resources/Resources/") + file + QLatin1Char('\n');
    QCOMPARE(surroundings.run({"start logger", location, location, "lines"}, program),
             path + path + "D " + description + " : " + path);
}

void tst_storageLocation::aLoggerThatComesLaterIsNotTold()
{
    const Surroundings surroundings;
    const QString output =
        surroundings.run({"framePackPath", "start logger", "framePackPath", "lines"});
    const QStringList lines = output.split(QLatin1Char('\n'));
    QCOMPARE(lines.size(), 3);
    QVERIFY2(lines.at(0).endsWith("/Resources/Resources/Frames.lua"), qPrintable(output));
    QCOMPARE(lines.at(1), lines.at(0));
}

void tst_storageLocation::dataOfHalvarden_data()
{
    QTest::addColumn<QString>("home");
    QTest::addColumn<QStringList>("folders");
    QTest::addColumn<QString>("expected");

    const auto row = [](const char* name, const QStringList& folders, const char* expected) {
        QTest::newRow(name) << "@/home" << folders << expected;
    };
    row("none", {}, "");
    row("version 11", {"@/home/Library/Vek Halvarden v11/Modules"},
        "@/home/Library/Vek Halvarden v11/Modules/");
    row("version 10", {"@/home/Library/Vek Halvarden v10/Modules"},
        "@/home/Library/Vek Halvarden v10/Modules/");
    row("version 9", {"@/home/Library/Vek Halvar Den v9/Modules"},
        "@/home/Library/Vek Halvar Den v9/Modules/");
    row("versions 11 and 10",
        {"@/home/Library/Vek Halvarden v10/Modules", "@/home/Library/Vek Halvarden v11/Modules"},
        "@/home/Library/Vek Halvarden v11/Modules/");
    row("versions 10 and 9",
        {"@/home/Library/Vek Halvarden v10/Modules", "@/home/Library/Vek Halvar Den v9/Modules"},
        "@/home/Library/Vek Halvarden v10/Modules/");
    row("all versions",
        {"@/home/Library/Vek Halvarden v10/Modules", "@/home/Library/Vek Halvarden v11/Modules",
         "@/home/Library/Vek Halvar Den v9/Modules"},
        "@/home/Library/Vek Halvarden v11/Modules/");
    row("version 11 without data",
        {"@/home/Library/Vek Halvarden v11", "@/home/Library/Vek Halvarden v10/Modules"},
        "@/home/Library/Vek Halvarden v10/Modules/");
    row("a later version", {"@/home/Library/Vek Halvarden v12/Modules"}, "");
    row("an earlier version", {"@/home/Library/Vek Halvar Den v8/Modules"}, "");
    row("version 11 with the name of version 9", {"@/home/Library/Vek Halvar Den v11/Modules"}, "");
    row("version 9 with the name of version 11", {"@/home/Library/Vek Halvarden v9/Modules"}, "");
    row("in this product's folder", {"@/home/Library/Vek_Labs/Vek Halvarden v11/Modules"}, "");

    QTest::newRow("a home with our folder's name")
        << "@/Vek_Labs/x/Vek_Labs/home" << QStringList{"@/x/home/Library/Vek Halvarden v11/Modules"}
        << "@/x/home/Library/Vek Halvarden v11/Modules/";
}

void tst_storageLocation::dataOfHalvarden()
{
    QFETCH(QString, home);
    QFETCH(QStringList, folders);
    QFETCH(QString, expected);

    Surroundings surroundings;
    surroundings.setPasswordEntries({"own=" + home});
    for (const QString& folder : folders)
        surroundings.makeFolder(folder);
    const QStringList before = surroundings.leaves("@");
    QCOMPARE(surroundings.run({"cafDataPathOfHalvardenLatestVersion"}),
             surroundings.at(expected) + "\n");
    QCOMPARE(surroundings.leaves("@"), before);
}

void tst_storageLocation::dataOfHalvardenThatCannotBeReadIsPassedOver()
{
    Surroundings surroundings;
    surroundings.makeFolder("@/home/Library/Vek Halvarden v11/Modules");
    surroundings.makeFolder("@/home/Library/Vek Halvar Den v9/Modules");
    surroundings.restrict("@/home/Library/Vek Halvarden v11/Modules", QFile::ExeOwner);
    QCOMPARE(surroundings.run({"cafDataPathOfHalvardenLatestVersion"}),
             surroundings.at("@/home/Library/Vek Halvar Den v9/Modules/\n"));
}

void tst_storageLocation::dataOfHalvardenIsSearchedEachTime()
{
    const Surroundings surroundings;
    surroundings.makeFolder("@/home/Library/Vek Halvarden v11/Modules");
    surroundings.makeFolder("@/home/Library/Vek Halvarden v10/Modules");
    QCOMPARE(surroundings.run(
                 {"cafDataPathOfHalvardenLatestVersion", "delete=@/home/Library/Vek Halvarden v11",
                  "cafDataPathOfHalvardenLatestVersion", "delete=@/home/Library/Vek Halvarden v10",
                  "cafDataPathOfHalvardenLatestVersion"}),
             surroundings.at("@/home/Library/Vek Halvarden v11/Modules/\n"
                             "@/home/Library/Vek Halvarden v10/Modules/\n"
                             "\n"));
}

void tst_storageLocation::dataOfMarlowick2_data()
{
    QTest::addColumn<QStringList>("passwordEntries");
    QTest::addColumn<QString>("expected");

    QTest::newRow("below the home")
        << QStringList{"own=@/home"} << "@/home/Library/Vek Marlowick 2/Modules/";
    QTest::newRow("a home with our folder's name") << QStringList{"own=@/Vek_Labs/x/Vek_Labs/home"}
                                                   << "@/x/home/Library/Vek Marlowick 2/Modules/";
    QTest::newRow("a home with our folder's name in another case")
        << QStringList{"own=@/vek_labs/VEK_LABS"}
        << "@/vek_labs/VEK_LABS/Library/Vek Marlowick 2/Modules/";
    QTest::newRow("a home with our folder's name at the end of another")
        << QStringList{"own=@/ex-Vek_Labs"} << "@/ex-Vek_Labs/Library/Vek Marlowick 2/Modules/";
    QTest::newRow("no password entry") << QStringList() << "@/data/Vek Marlowick 2/Modules/";
}

void tst_storageLocation::dataOfMarlowick2()
{
    QFETCH(QStringList, passwordEntries);
    QFETCH(QString, expected);

    Surroundings surroundings;
    surroundings.setPasswordEntries(passwordEntries);
    QCOMPARE(surroundings.run({"cafDataPathOfMarlowick2"}), surroundings.at(expected) + "\n");
    QCOMPARE(surroundings.leaves("@"), QStringList({"passwd", "temporary"}));
}

void tst_storageLocation::theFolderOfTheSession_data()
{
    QTest::addColumn<QString>("sessionUser");
    QTest::addColumn<QString>("expected");

    QTest::newRow("of the user of the process")
        << ownUser() << "@/home/Library/Vek_Labs/Vek Marlowick 3\n";
    QTest::newRow("of another user") << "4242"
                                     << "@/another/Library/Vek_Labs/Vek Marlowick 3\n";
    QTest::newRow("of a user whose home ends with a separator")
        << "4244"
        << "@/another/Library/Vek_Labs/Vek Marlowick 3\n";
    QTest::newRow("no session") << QString() << "Single app use standard temp dir!!!@/temporary\n";
    QTest::newRow("of a user without an entry")
        << "4243"
        << "Single app use standard temp dir!!!@/temporary\n";
}

void tst_storageLocation::theFolderOfTheSession()
{
    QFETCH(QString, sessionUser);
    QFETCH(QString, expected);

    Surroundings surroundings;
    surroundings.setPasswordEntries({"own=@/home", "4242=@/another", "4244=@/another/"});
    if (!sessionUser.isEmpty())
        surroundings.set("PLAYED_SESSION_USER", sessionUser);
    // It is looked for each time, and told each time.
    QCOMPARE(surroundings.run({"sessionSingleAppDirectory", "sessionSingleAppDirectory"}),
             surroundings.at(expected + expected));
    QCOMPARE(surroundings.leaves("@"), QStringList({"passwd", "temporary"}));
}

void tst_storageLocation::theTemporaryFolderIsMadeAbsolute()
{
    Surroundings surroundings;
    surroundings.set("TMPDIR", "temporary/");
    QCOMPARE(surroundings.run({"sessionSingleAppDirectory"}),
             surroundings.at("Single app use standard temp dir!!!@/temporary\n"));
}

int main(int argc, char* argv[])
{
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.value(1) == QLatin1String("--take"))
        return takeSteps(arguments.mid(2));

    tst_storageLocation test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_storageLocation.moc"
