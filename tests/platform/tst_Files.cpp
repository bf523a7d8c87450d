#include "CommonConstants.h"
#include "CurrentFolder.h"
#include "Files.h"
#include "linux/Notifications_p.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QDBusContext>
#include <QDesktopServices>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QProcess>
#include <QProcessEnvironment>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <cstdio>
#include <cstring>
#include <memory>

#include <sys/stat.h>
#include <utime.h>

namespace Platform = VEK_NAMESPACE::Platform;

namespace {

const QString serviceName = QStringLiteral("org.freedesktop.FileManager1");

bool exists(const QString& path)
{
    struct stat status = {};
    return lstat(QFile::encodeName(path).constData(), &status) == 0;
}

/// The file system that \a path lies on.
dev_t fileSystem(const QString& path)
{
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_dev : 0;
}

/// What stat says of a file's birth; null if the file system doesn't know it.
QDateTime birth(const QString& path)
{
    QProcess process;
    process.start(QStringLiteral("stat"),
                  {QStringLiteral("--format=%W"), QStringLiteral("--"), path});
    bool isNumber = false;
    process.waitForFinished();
    const qint64 seconds = process.readAllStandardOutput().trimmed().toLongLong(&isNumber);
    Q_ASSERT(isNumber);
    return seconds ? QDateTime::fromMSecsSinceEpoch(seconds * 1000) : QDateTime();
}

/// The files in the trash, and where each comes from, as "name: path".
QStringList trash()
{
    const QDir folder(QFile::decodeName(qgetenv("XDG_DATA_HOME")) + QStringLiteral("/Trash"));
    QStringList lines;
    const QStringList files =
        QDir(folder.filePath(QStringLiteral("files")))
            .entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDir::Name);
    for (const QString& file : files) {
        const QList<QByteArray> info =
            readFile(folder.filePath(QStringLiteral("info/%1.trashinfo").arg(file))).split('\n');
        QString origin = QStringLiteral("from nowhere");
        for (const QByteArray& line : info) {
            if (line.startsWith("Path="))
                origin = QUrl::fromPercentEncoding(line.mid(5));
        }
        lines << file + QStringLiteral(": ") + origin;
    }
    return lines;
}

void emptyTrash()
{
    QDir(QFile::decodeName(qgetenv("XDG_DATA_HOME")) + QStringLiteral("/Trash"))
        .removeRecursively();
}

QString inTrash(const QString& name)
{
    return QFile::decodeName(qgetenv("XDG_DATA_HOME")) + QStringLiteral("/Trash/files/") + name;
}

} // namespace

/// A file manager on the bus, which writes down what it is asked for.
class FileManager : public QObject, protected QDBusContext
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    FileManager()
    {
        m_bus.registerObject(QStringLiteral("/org/freedesktop/FileManager1"), this,
                             QDBusConnection::ExportScriptableSlots);
        m_bus.registerService(serviceName);
    }

    ~FileManager() override
    {
        m_bus.unregisterService(serviceName);
        m_bus.unregisterObject(QStringLiteral("/org/freedesktop/FileManager1"));
    }

    bool refuses = false;
    QStringList calls; ///< the start-up identifier and the addresses of each, between bars

public Q_SLOTS:
    Q_SCRIPTABLE void ShowItems(const QStringList& addresses, const QString& startupId)
    {
        calls << QStringLiteral("ShowItems \"%1\" %2")
                     .arg(startupId, addresses.join(QLatin1Char('|')));
        if (refuses)
            sendErrorReply(QDBusError::Failed, QStringLiteral("no"));
    }

private:
    QDBusConnection m_bus = QDBusConnection::sessionBus();
};

/// What opens folders in place of the desktop.
class Opener : public QObject
{
    Q_OBJECT

public:
    Opener() { QDesktopServices::setUrlHandler(QStringLiteral("file"), this, "open"); }
    ~Opener() override { QDesktopServices::unsetUrlHandler(QStringLiteral("file")); }

    QStringList opened;

public Q_SLOTS:
    void open(const QUrl& address) { opened << address.toString(QUrl::FullyEncoded); }
};

class tst_Files : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();

    void creationTimeIsTheSystems_data();
    void creationTimeIsTheSystems();
    void creationTimeStays();
    void creationTimeThatIsNotKnown_data();
    void creationTimeThatIsNotKnown();

    void trashTakes_data();
    void trashTakes();
    void trashTakesAFolderWithItsContent();
    void trashTakesALinkAndNotItsTarget_data();
    void trashTakesALinkAndNotItsTarget();
    void trashTakesFilesOfOneName();
    void missingFileHasNoTrash_data();
    void missingFileHasNoTrash();
    void fileSystemWithoutATrash_data();
    void fileSystemWithoutATrash();
    void trashThatCannotBeMade();

    void fileManagerShows_data();
    void fileManagerShows();
    void refusalOpensTheFolder();
    void withoutAFileManagerTheFolderIsOpened_data();
    void withoutAFileManagerTheFolderIsOpened();
    void withoutABusTheFolderIsOpened_data();
    void withoutABusTheFolderIsOpened();
    void nothingToShow();

private:
    QString path(const QString& name) const
    {
        return QFileInfo(m_folder->path()).canonicalFilePath() + QLatin1Char('/') + name;
    }
    QString write(const QString& name, const QByteArray& content = "content") const
    {
        QFile file(path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
            qFatal("cannot write %s", qPrintable(name));
        return file.fileName();
    }

    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_Files::init()
{
    // Not by the test's name: a socket's path is short.
    m_folder = std::make_unique<QTemporaryDir>(QDir::tempPath() + QStringLiteral("/XXXXXX"));
    QVERIFY(m_folder->isValid());
    emptyTrash();
}

void tst_Files::creationTimeIsTheSystems_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("a file") << "file";
    QTest::newRow("a folder") << "folder";
    QTest::newRow("a link, not its target") << "link";
    QTest::newRow("a link to nothing") << "dangling";
    QTest::newRow("a name with spaces and beyond ASCII") << QString::fromUtf8("ä 日本");
    QTest::newRow("a name that begins with a dash") << "-L";
}

void tst_Files::creationTimeIsTheSystems()
{
    QFETCH(QString, name);
    write(QStringLiteral("-L"));
    write(QString::fromUtf8("ä 日本"));
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("folder")));
    QVERIFY(QFile::link(QStringLiteral("/"), path(QStringLiteral("link"))));
    QVERIFY(QFile::link(QStringLiteral("nothing"), path(QStringLiteral("dangling"))));
    write(QStringLiteral("file"));
    const CurrentFolder current(m_folder->path());
    const QDateTime time = Platform::creationTime(name);

    QCOMPARE(time, birth(path(name)));
    QCOMPARE(time.timeSpec(), Qt::LocalTime);
    QCOMPARE(Platform::creationTime(path(name)), time);
}

void tst_Files::creationTimeStays()
{
    const QString file = write(QStringLiteral("file"));
    const QDateTime before = birth(file);
    const utimbuf longAgo = {1000, 1000};
    QCOMPARE(utime(QFile::encodeName(file).constData(), &longAgo), 0);

    QCOMPARE(QFileInfo(file).lastModified().toMSecsSinceEpoch(), qint64(1000000));
    QCOMPARE(Platform::creationTime(file), before);
}

void tst_Files::creationTimeThatIsNotKnown_data()
{
    QTest::addColumn<QString>("file");

    QTest::newRow("no name") << "";
    QTest::newRow("a missing file") << "%1/missing";
    QTest::newRow("a file below a file") << "%1/file/file";
    QTest::newRow("a file system without such times") << "/proc/self/stat";
}

void tst_Files::creationTimeThatIsNotKnown()
{
    QFETCH(QString, file);
    write(QStringLiteral("file"));
    const CurrentFolder current(m_folder->path());

    const QDateTime time =
        Platform::creationTime(file.replace(QStringLiteral("%1"), m_folder->path()));

    QVERIFY(time.isNull());
}

void tst_Files::trashTakes_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("a file") << "file";
    QTest::newRow("a name with spaces and signs") << " a #%20?*;\"'";
    QTest::newRow("a name that begins with a dash") << "-f";
    QTest::newRow("a hidden file") << ".file";
    QTest::newRow("a name beyond ASCII") << QString::fromUtf8("ä 日本");
    QTest::newRow("a name that looks like an address") << "file:a";
}

void tst_Files::trashTakes()
{
    QFETCH(QString, name);
    const CurrentFolder current(m_folder->path());
    for (const QString& argument : {path(name), name}) {
        const QString file = write(name);
        QVERIFY(QFile::setPermissions(file, QFile::ReadOwner));

        QVERIFY(Platform::hasTrash(argument));
        QVERIFY(exists(file));
        QVERIFY(Platform::moveToTrash(argument));

        QVERIFY(!exists(file));
        QCOMPARE(trash(), QStringList({name + QStringLiteral(": ") + file}));
        QVERIFY(QFile::rename(inTrash(name), file)); // it can be had back
        QCOMPARE(readFile(file), QByteArray("content"));
        QVERIFY(QFile::remove(file));
        emptyTrash();
    }
}

void tst_Files::trashTakesAFolderWithItsContent()
{
    QVERIFY(QDir(m_folder->path()).mkpath(QStringLiteral("folder/inner")));
    write(QStringLiteral("folder/inner/file"));
    const QString folder = path(QStringLiteral("folder"));

    QVERIFY(Platform::hasTrash(folder));
    QVERIFY(Platform::moveToTrash(folder));

    QVERIFY(!exists(folder));
    QCOMPARE(trash(), QStringList({"folder: " + folder}));
    QCOMPARE(readFile(inTrash(QStringLiteral("folder/inner/file"))), QByteArray("content"));
}

void tst_Files::trashTakesALinkAndNotItsTarget_data()
{
    QTest::addColumn<QString>("target");

    QTest::newRow("a file") << "file";
    QTest::newRow("a folder") << "folder";
    QTest::newRow("nothing") << "nothing";
    QTest::newRow("a file on another file system") << "/proc/self/stat";
}

void tst_Files::trashTakesALinkAndNotItsTarget()
{
    QFETCH(QString, target);
    const QString file = write(QStringLiteral("file"));
    QVERIFY(QDir(m_folder->path()).mkdir(QStringLiteral("folder")));
    const QString link = path(QStringLiteral("link"));
    QVERIFY(QFile::link(target, link));

    QVERIFY(Platform::hasTrash(link));
    QVERIFY(Platform::moveToTrash(link));

    QVERIFY(!exists(link));
    QCOMPARE(trash(), QStringList({"link: " + link}));
    QCOMPARE(readFile(file), QByteArray("content"));
    QVERIFY(exists(path(QStringLiteral("folder"))));
}

void tst_Files::trashTakesFilesOfOneName()
{
    for (const QByteArray& content : {QByteArray("first"), QByteArray("second")})
        QVERIFY(Platform::moveToTrash(write(QStringLiteral("file"), content)));

    const QStringList files = trash();
    QCOMPARE(files.size(), 2);
    QStringList contents;
    for (const QString& line : files) {
        const QString name = line.section(QStringLiteral(": "), 0, 0);
        QCOMPARE(line, name + QStringLiteral(": ") + path(QStringLiteral("file")));
        contents << QString::fromLatin1(readFile(inTrash(name)));
    }
    contents.sort();
    QCOMPARE(contents, QStringList({QStringLiteral("first"), QStringLiteral("second")}));
}

void tst_Files::missingFileHasNoTrash_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("a missing file") << "missing";
    QTest::newRow("a file in a missing folder") << "missing/file";
    QTest::newRow("a file below a file") << "file/file";
}

void tst_Files::missingFileHasNoTrash()
{
    QFETCH(QString, name);
    write(QStringLiteral("file"));

    QVERIFY(!Platform::hasTrash(path(name)));
    QVERIFY(!Platform::moveToTrash(path(name)));

    QCOMPARE(trash(), QStringList());
    QVERIFY(exists(path(QStringLiteral("file"))));
}

void tst_Files::fileSystemWithoutATrash_data()
{
    QTest::addColumn<QString>("file");

    QTest::newRow("the system's own") << "/proc/self/stat";
    // A file system in memory is the better one, as files can be moved there; some users have none.
    static const QTemporaryDir memory(QStringLiteral("/dev/shm/tst_Files-XXXXXX"));
    if (memory.isValid() && fileSystem(memory.path()) != fileSystem(QDir::homePath()))
        QTest::newRow("in memory") << memory.filePath(QStringLiteral("file"));
}

void tst_Files::fileSystemWithoutATrash()
{
    QFETCH(QString, file);
    if (!QFile::exists(file)) {
        QFile made(file);
        QVERIFY(made.open(QIODevice::WriteOnly) && made.write("content") == 7);
    }

    QVERIFY(!Platform::hasTrash(file));
    QVERIFY(!Platform::moveToTrash(file));

    QVERIFY(file.startsWith(QLatin1String("/proc")) ? exists(file) : readFile(file) == "content");
    QCOMPARE(trash(), QStringList());
}

void tst_Files::trashThatCannotBeMade()
{
    const QString file = write(QStringLiteral("file"));
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_DATA_HOME"), QStringLiteral("/dev/null/x"));
    child.setProcessEnvironment(environment);

    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--trash"), file});
    QVERIFY(child.waitForFinished());

    QCOMPARE(child.readAllStandardOutput(), QByteArray("not moved\n"));
    QCOMPARE(child.readAllStandardError(), QByteArray());
    QCOMPARE(readFile(file), QByteArray("content"));
}

void tst_Files::fileManagerShows_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("call");

    const auto addRow = [](const char* title, const QStringList& files, const char* call) {
        QTest::newRow(title) << files << QString::fromLatin1(call);
    };
    addRow("one file", {"/a/b.jpg"}, "ShowItems \"\" file:///a/b.jpg");
    addRow("several, in their order", {"/a/c", "/a/b", "/d"},
           "ShowItems \"\" file:///a/c|file:///a/b|file:///d");
    addRow("a folder", {"/a"}, "ShowItems \"\" file:///a");
    addRow("spaces and signs", {"/a b/c#d%20e?f;g"},
           "ShowItems \"\" file:///a%20b/c%23d%2520e%3Ff;g");
    addRow("brackets and quotes", {"/<a>\"b\"{c}"}, "ShowItems \"\" file:///%3Ca%3E%22b%22%7Bc%7D");
    addRow("beyond ASCII", {QString::fromUtf8("/ä/日本")},
           "ShowItems \"\" file:///%C3%A4/%E6%97%A5%E6%9C%AC");
}

void tst_Files::fileManagerShows()
{
    QFETCH(QStringList, files);
    QFETCH(QString, call);
    FileManager manager;
    const Opener opener;
    QList<QUrl> addresses;
    for (const QString& file : files)
        addresses << QUrl::fromLocalFile(file);

    Platform::showInFileManager(addresses);
    QTRY_COMPARE(manager.calls, QStringList({call}));

    // The next call's answer comes after this one's.
    Platform::showInFileManager({QUrl::fromLocalFile(QStringLiteral("/last"))});
    QTRY_COMPARE(manager.calls.size(), 2);
    QCOMPARE(opener.opened, QStringList());
}

void tst_Files::refusalOpensTheFolder()
{
    FileManager manager;
    manager.refuses = true;
    const Opener opener;

    Platform::showInFileManager({QUrl::fromLocalFile(QStringLiteral("/a/b.jpg")),
                                 QUrl::fromLocalFile(QStringLiteral("/c/d.jpg"))});

    QTRY_COMPARE(opener.opened, QStringList({QStringLiteral("file:///a")}));
    QCOMPARE(manager.calls.size(), 1);
}

void tst_Files::withoutAFileManagerTheFolderIsOpened_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("opened");

    QTest::newRow("a file") << "/a/b.jpg"
                            << "file:///a";
    QTest::newRow("a file at the root") << "/b.jpg"
                                        << "file:///";
    QTest::newRow("spaces and signs") << "/a b#%20/c"
                                      << "file:///a%20b%23%2520";
    QTest::newRow("beyond ASCII") << QString::fromUtf8("/ä/日本") << "file:///%C3%A4";
}

void tst_Files::withoutAFileManagerTheFolderIsOpened()
{
    QFETCH(QString, file);
    QFETCH(QString, opened);
    const Opener opener;
    QVERIFY(!QDBusConnection::sessionBus().interface()->isServiceRegistered(serviceName));

    Platform::showInFileManager(
        {QUrl::fromLocalFile(file), QUrl::fromLocalFile(QStringLiteral("/other/file"))});

    QTRY_COMPARE(opener.opened, QStringList({opened}));
}

void tst_Files::withoutABusTheFolderIsOpened_data()
{
    QTest::addColumn<QString>("address");

    QTest::newRow("no address") << QString();
    QTest::newRow("no bus at all") << "disabled:";
    QTest::newRow("a bus that isn't there") << "unix:path=/no/such/bus";
    QTest::newRow("a bus that would have to be started") << "autolaunch:";
    QTest::newRow("a bus that goes") << "the bus that goes";
}

void tst_Files::withoutABusTheFolderIsOpened()
{
    QFETCH(QString, address);
    QProcess bus;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    const QString socket = path(QStringLiteral("bus"));
    const bool goes = address == QLatin1String("the bus that goes");
    if (goes) {
        bus.start(QStringLiteral("dbus-daemon"),
                  {QStringLiteral("--session"), QStringLiteral("--nofork"),
                   QStringLiteral("--print-address"),
                   QStringLiteral("--address=unix:path=") + socket});
        QVERIFY(bus.waitForReadyRead());
        address = QStringLiteral("unix:path=") + socket;
    }
    environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), address);
    if (address.isNull())
        environment.remove(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"));
    environment.insert(QStringLiteral("DISPLAY"), QStringLiteral(":99"));
    QProcess child;
    child.setProcessEnvironment(environment);

    child.start(QCoreApplication::applicationFilePath(),
                {QStringLiteral("--show"), QStringLiteral("/a/b.jpg")});
    if (goes) {
        // It has made its connection when it says so.
        QVERIFY(child.waitForReadyRead());
        QCOMPARE(child.readAllStandardOutput(), QByteArray("ready\n"));
        bus.kill();
        QVERIFY(bus.waitForFinished());
        child.write("go\n");
    }
    child.closeWriteChannel();

    QVERIFY(child.waitForFinished());
    const QList<QByteArray> lines = child.readAllStandardOutput().trimmed().split('\n');
    QCOMPARE(lines.last(), QByteArray("file:///a"));
    QCOMPARE(child.readAllStandardError(), QByteArray());
}

void tst_Files::nothingToShow()
{
    FileManager manager;
    const Opener opener;

    Platform::showInFileManager({});
    Platform::showInFileManager({QUrl::fromLocalFile(QStringLiteral("/last"))});

    QTRY_COMPARE(manager.calls, QStringList({QStringLiteral("ShowItems \"\" file:///last")}));
    QCOMPARE(opener.opened, QStringList());
}

namespace {

int tryTrash(const QString& file)
{
    std::puts(Platform::hasTrash(file) && Platform::moveToTrash(file) ? "moved" : "not moved");
    return 0;
}

/// Connects, says "ready", waits for the end of a line or of the input, shows, and says what has
/// been opened instead.
int show(const QString& file)
{
    const Opener opener;
    Platform::postNotification(QStringLiteral("READY"), QString());
    std::puts("ready");
    std::fflush(stdout);
    (void)std::getchar();
    Platform::showInFileManager({QUrl::fromLocalFile(file)});
    const bool opened = QTest::qWaitFor([&opener] { return !opener.opened.isEmpty(); }, 20000);
    std::puts(opened ? qPrintable(opener.opened.join(QLatin1Char(' '))) : "nothing opened");
    return 0;
}

} // namespace

int main(int argc, char* argv[])
{
    QGuiApplication application(argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "--trash") == 0)
        return tryTrash(QFile::decodeName(argv[2]));
    if (argc == 3 && std::strcmp(argv[1], "--show") == 0)
        return show(QFile::decodeName(argv[2]));
    tst_Files test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_Files.moc"
