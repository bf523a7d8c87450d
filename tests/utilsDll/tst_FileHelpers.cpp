#include "FileHelpers.h"

#include "CommonConstants.h"
#include "CurrentFolder.h"
#include "Files.h"
#include "OrdinaryFileRights.h"

#include <QByteArrayList>
#include <QDBusConnection>
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

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <map>
#include <memory>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utime.h>

using namespace VEK_NAMESPACE;

namespace {

const QString serviceName = QStringLiteral("org.freedesktop.FileManager1");
const QString servicePath = QStringLiteral("/org/freedesktop/FileManager1");

/// Makes what \a tree lists: "folder/", "file", "link -> target" and "pipe|", parents first.
void makeTree(const QByteArray& root, const QByteArrayList& tree)
{
    for (const QByteArray& entry : tree) {
        const QByteArray path = root + '/' + entry;
        const int arrow = path.indexOf(" -> ");
        bool made = false;
        if (arrow >= 0) {
            made = symlink(path.mid(arrow + 4).constData(), path.left(arrow).constData()) == 0;
        } else if (path.endsWith('/')) {
            made = mkdir(path.constData(), 0700) == 0;
        } else if (path.endsWith('|')) {
            made = mkfifo(path.left(path.size() - 1).constData(), 0600) == 0;
        } else {
            const int file = open(path.constData(), O_WRONLY | O_CREAT | O_EXCL, 0600);
            made = file >= 0 && write(file, "content", 7) == 7 && close(file) == 0;
        }
        if (!made)
            qFatal("can't make %s", path.constData());
    }
}

/// What lies below \a root, sorted and written as for makeTree().
QByteArrayList listTree(const QByteArray& root)
{
    namespace fs = std::filesystem;
    QByteArrayList tree;
    const fs::path base(root.toStdString());
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(base)) {
        auto line = QByteArray::fromStdString(entry.path().lexically_relative(base).string());
        if (entry.is_symlink())
            line += " -> " + QByteArray::fromStdString(fs::read_symlink(entry.path()).string());
        else if (entry.is_directory())
            line += '/';
        else if (entry.is_fifo())
            line += '|';
        tree << line;
    }
    std::sort(tree.begin(), tree.end());
    return tree;
}

/// Writes down which files of some folders are deleted, in the order of their deletion.
class DeletionRecorder
{
public:
    DeletionRecorder()
        : m_queue(inotify_init1(IN_NONBLOCK))
    {}
    ~DeletionRecorder() { close(m_queue); }

    /// \a prefix begins the lines of that folder.
    void watch(const QByteArray& folder, const QByteArray& prefix)
    {
        m_prefixes[inotify_add_watch(m_queue, folder.constData(), IN_DELETE)] = prefix;
    }

    QByteArrayList deleted() const
    {
        QByteArrayList lines;
        alignas(inotify_event) char buffer[4096];
        for (ssize_t size = 0; (size = read(m_queue, buffer, sizeof buffer)) > 0;) {
            for (const char* at = buffer; at < buffer + size;) {
                const auto* event = reinterpret_cast<const inotify_event*>(at);
                lines << m_prefixes.at(event->wd) + event->name;
                at += sizeof(inotify_event) + event->len;
            }
        }
        return lines;
    }

private:
    Q_DISABLE_COPY(DeletionRecorder)

    const int m_queue;
    std::map<int, QByteArray> m_prefixes;
};

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

bool setMode(const QString& path, mode_t mode)
{
    return chmod(QFile::encodeName(path).constData(), mode) == 0;
}

/// What a program of the system says, without the line's end.
QByteArray output(const char* program, const QStringList& arguments)
{
    QProcess process;
    process.start(QString::fromLatin1(program), arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        qFatal("%s failed", program);
    return process.readAllStandardOutput().trimmed();
}

QString trashFolder()
{
    return QFile::decodeName(qgetenv("XDG_DATA_HOME")) + QStringLiteral("/Trash");
}

/// The names of the files in the trash.
QStringList trash()
{
    return QDir(trashFolder() + QStringLiteral("/files"))
        .entryList(QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot,
                   QDir::Name);
}

QString inTrash(const QString& name)
{
    return trashFolder() + QStringLiteral("/files/") + name;
}

/// Where a file of the trash comes from, and when it was moved, as its information tells.
struct TrashInfo
{
    QString path;
    QDateTime time;
};

TrashInfo trashInfo(const QString& name)
{
    const QList<QByteArray> lines =
        readFile(QStringLiteral("%1/info/%2.trashinfo").arg(trashFolder(), name)).split('\n');
    if (lines.size() != 4 || lines.at(0) != "[Trash Info]" || !lines.at(1).startsWith("Path=")
        || !lines.at(2).startsWith("DeletionDate=") || !lines.at(3).isEmpty())
        return {QStringLiteral("no information"), {}};
    return {QFile::decodeName(QByteArray::fromPercentEncoding(lines.at(1).mid(5))),
            QDateTime::fromString(QString::fromLatin1(lines.at(2).mid(13)),
                                  QStringLiteral("yyyy-MM-ddThh:mm:ss"))};
}

/// The time zone of the process while it lives, as "<name><hours west>[:<minutes>]".
class TimeZone
{
public:
    explicit TimeZone(const QByteArray& zone) { set(zone); }
    ~TimeZone() { set(m_previous); }

private:
    Q_DISABLE_COPY(TimeZone)

    static void set(const QByteArray& zone)
    {
        qputenv("TZ", zone);
        tzset();
    }

    const QByteArray m_previous = qgetenv("TZ");
};

} // namespace

/// A file manager on the bus, which writes down what it is asked for.
class FileManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    FileManager()
    {
        m_bus.registerObject(servicePath, this, QDBusConnection::ExportScriptableSlots);
        m_bus.registerService(serviceName);
    }

    ~FileManager() override
    {
        m_bus.unregisterService(serviceName);
        m_bus.unregisterObject(servicePath);
    }

    QList<QStringList> calls; ///< the addresses of each

public Q_SLOTS:
    Q_SCRIPTABLE void ShowItems(const QStringList& addresses, const QString& startupId)
    {
        calls << addresses;
        if (!startupId.isEmpty())
            calls << QStringList({QStringLiteral("start-up identifier"), startupId});
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

class tst_FileHelpers : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void removeDirectoryContent_data();
    void removeDirectoryContent();
    void removingTwiceFails();
    void removingGoesFoldersFirstAndByName();
    void removingStopsAtWhatItMayNot_data();
    void removingStopsAtWhatItMayNot();
    void removingBelowAFile();
    void removingThroughALink();
    void nameFiltersAreForTheFilesOfTheFolder();
    void foldersOwnFilterAndOrderDoNotCount();
    void removingFromTheCurrentFolder();
    void removingADeepTree();

    void isEqualFileOrDirNames_data();
    void isEqualFileOrDirNames();
    void unknownConditionMakesAllEqual_data();
    void unknownConditionMakesAllEqual();
    void compareFileNames_data();
    void compareFileNames();

    void validateFileName_data();
    void validateFileName();
    void forbiddenCharacters_data();
    void forbiddenCharacters();

    void trashTakes_data();
    void trashTakes();
    void trashTakesAFolder();
    void trashTakesFilesOfOneName();
    void nothingIsMovedToTheTrash_data();
    void nothingIsMovedToTheTrash();
    void fileSystemWithoutATrash_data();
    void fileSystemWithoutATrash();
    void trashThatCannotBeMade();
    void trashThatMayNotBeChanged();

    void renameFile_data();
    void renameFile();

    void selectFilesInShell_data();
    void selectFilesInShell();
    void nothingIsSelected_data();
    void nothingIsSelected();
    void withoutAFileManagerTheFolderIsOpened();

    void creationDate_data();
    void creationDate();
    void creationDateStays();
    void creationDateThatIsNotKnown_data();
    void creationDateThatIsNotKnown();

    void manyThreads();

private:
    QString path(const QString& name) const { return m_root + QLatin1Char('/') + name; }
    QByteArray root() const { return QFile::encodeName(m_root); }
    QString write(const QString& name, const QByteArray& content = "content") const
    {
        if (!writeFile(path(name), content))
            qFatal("can't write %s", qPrintable(name));
        return path(name);
    }

    std::unique_ptr<QTemporaryDir> m_folder;
    QString m_root;
};

void tst_FileHelpers::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
    m_root = QFileInfo(m_folder->path()).canonicalFilePath();
    QDir(trashFolder()).removeRecursively();
}

void tst_FileHelpers::cleanup()
{
    // Also what Qt doesn't list.
    std::error_code error;
    std::filesystem::remove_all(root().toStdString(), error);
}

void tst_FileHelpers::removeDirectoryContent_data()
{
    QTest::addColumn<QByteArrayList>("tree"); ///< the folder is "in", beside it stands "out"
    QTest::addColumn<bool>("result");
    QTest::addColumn<QByteArrayList>("remaining"); ///< of "in"

    const auto addRow = [](const char* title, const QByteArrayList& tree, bool result,
                           const QByteArrayList& remaining) {
        QTest::newRow(title) << tree << result << remaining;
    };
    addRow("an empty folder is a failure", {}, false, {});
    addRow("one file", {"a"}, true, {});
    addRow("several files", {"a", "b.jpg", "c.d.e", "F"}, true, {});
    addRow("a hidden file", {".a"}, true, {});
    addRow("a file without a name before the dot", {".jpg", "..a", "...", "a."}, true, {});
    addRow("names with blanks and signs", {" ", " a ", "a*b", "?", "[a]", "\"", "a\\b", "%1", "~"},
           true, {});
    addRow("names with a line feed and a tab", {"a\nb", "\t"}, true, {});
    addRow("names beyond ASCII",
           {"\xC3\xA4", "a\xCC\x88", "\xE6\x97\xA5\xE6\x9C\xAC", "\xF0\x9F\x93\xB7"}, true, {});
    addRow("a long name", {QByteArray(255, 'x')}, true, {});
    addRow("a pipe", {"a|"}, true, {});

    addRow("folders stay", {"a/", "a/1"}, true, {"a/"});
    addRow("folders stay at every depth", {"a/", "a/b/", "a/b/c/", "a/b/c/1"}, true,
           {"a/", "a/b/", "a/b/c/"});
    addRow("files at every depth", {"a/", "a/b/", "a/b/1", "a/2", "c/", "c/3", "4"}, true,
           {"a/", "a/b/", "c/"});
    addRow("a hidden folder", {".a/", ".a/.1"}, true, {".a/"});
    addRow("a folder with a name beyond ASCII", {"\xE6\x97\xA5/", "\xE6\x97\xA5/\xC3\xA4"}, true,
           {"\xE6\x97\xA5/"});

    addRow("an empty folder alone", {"a/"}, false, {"a/"});
    addRow("an empty folder beside files", {"a", "z/"}, false, {"a", "z/"});
    addRow("an empty folder before another one", {"a/", "b/", "b/1", "c"}, false,
           {"a/", "b/", "b/1", "c"});
    addRow("an empty folder after another one", {"a/", "a/1", "b/", "c"}, false, {"a/", "b/", "c"});
    addRow("an empty folder between others", {"a/", "a/1", "b/", "c/", "c/1", "d"}, false,
           {"a/", "b/", "c/", "c/1", "d"});
    addRow("an empty folder deep inside", {"a/", "a/b/", "a/1", "c/", "c/1"}, false,
           {"a/", "a/1", "a/b/", "c/", "c/1"});
    addRow("an empty folder deep inside the second one",
           {"a/", "a/1", "b/", "b/c/", "b/c/1", "b/d/", "b/2", "e/", "e/3"}, false,
           {"a/", "b/", "b/2", "b/c/", "b/d/", "e/", "e/3"});
    addRow("a hidden empty folder", {".b/", "a/", "a/1"}, false, {".b/", "a/", "a/1"});
    addRow("capitals come first", {"B/", "a/", "a/1"}, false, {"B/", "a/", "a/1"});
    addRow("capitals come first, and then the others", {"B/", "B/1", "a/"}, false, {"B/", "a/"});
    addRow("digits are characters", {"10/", "9/", "9/1"}, false, {"10/", "9/", "9/1"});

    addRow("a link to a file beside it", {"a", "b -> a"}, true, {});
    addRow("a link to a folder beside it", {"a/", "a/1", "b -> a"}, true, {"a/"});
    addRow("a link before the folder that it leads to", {"a -> b", "b/", "b/1"}, true, {"b/"});
    addRow("a link to a file outside", {"a -> ../out/file"}, true, {});
    addRow("a link to a folder outside", {"a -> ../out"}, true, {});
    addRow("a link to an empty folder outside", {"a -> ../out/empty", "b"}, true, {});
    addRow("a link to nothing", {"a -> nothing"}, true, {});
    addRow("a link to itself", {"a -> a"}, true, {});
    addRow("a link to the folder that it lies in", {"a -> .", "b/", "b/c -> .."}, true, {"b/"});
    addRow("a link to the root", {"a -> /"}, true, {});
    addRow("a link in a folder below", {"a/", "a/b -> ../../out"}, true, {"a/"});
    addRow("a hidden link", {".a -> ../out"}, true, {});

    // Qt doesn't list them.
    addRow("a name that isn't UTF-8 doesn't count", {"\xFF"}, false, {"\xFF"});
    addRow("a name that isn't UTF-8 beside others", {"a", "b\xE4", "c"}, true, {"b\xE4"});
}

void tst_FileHelpers::removeDirectoryContent()
{
    QFETCH(QByteArrayList, tree);
    QFETCH(bool, result);
    QFETCH(QByteArrayList, remaining);
    makeTree(root(), {"in/", "out/", "out/empty/", "out/file"});
    makeTree(root() + "/in", tree);

    const bool removed = VEK_NAMESPACE::removeDirectoryContent(QDir(path("in")));

    QCOMPARE(listTree(root() + "/in"), remaining);
    QCOMPARE(removed, result);
    QCOMPARE(listTree(root() + "/out"), QByteArrayList({"empty/", "file"}));
    QCOMPARE(readFile(path("out/file")), QByteArray("content"));
}

void tst_FileHelpers::removingTwiceFails()
{
    makeTree(root(), {"a/", "a/1", "b/", "b/2", "c"});
    const QDir folder(m_root);

    QVERIFY(VEK_NAMESPACE::removeDirectoryContent(folder));
    QVERIFY(!VEK_NAMESPACE::removeDirectoryContent(folder));

    QCOMPARE(listTree(root()), QByteArrayList({"a/", "b/"}));
}

void tst_FileHelpers::removingGoesFoldersFirstAndByName()
{
    makeTree(root(), {"x", "z/", "z/b", "z/a", ".w", "y/", "y/2", "y/m/", "y/m/3", "10", "9", "W"});
    DeletionRecorder recorder;
    recorder.watch(root(), "");
    for (const char* folder : {"y/", "y/m/", "z/"})
        recorder.watch(root() + '/' + folder, folder);

    QVERIFY(VEK_NAMESPACE::removeDirectoryContent(QDir(m_root)));

    QCOMPARE(recorder.deleted(),
             QByteArrayList({"y/m/3", "y/2", "z/a", "z/b", ".w", "10", "9", "W", "x"}));
}

void tst_FileHelpers::removingStopsAtWhatItMayNot_data()
{
    QTest::addColumn<QString>("path"); ///< what gets another mode
    QTest::addColumn<int>("mode");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QByteArrayList>("remaining");

    const QByteArrayList stopsAtB = {"a/", "b/", "b/1", "b/2", "c/", "c/1", "d"};
    const QByteArrayList onlyFolders = {"a/", "b/", "c/"};
    QTest::newRow("a folder that can't be written") << "b" << 0500 << false << stopsAtB;
    QTest::newRow("a folder that can't be listed") << "b" << 0300 << false << stopsAtB;
    QTest::newRow("a folder without any rights") << "b" << 0000 << false << stopsAtB;
    QTest::newRow("a folder that can't be entered") << "b" << 0600 << false << stopsAtB;
    QTest::newRow("a file without any rights goes") << "b/1" << 0000 << true << onlyFolders;
    QTest::newRow("a file that can't be written goes") << "d" << 0400 << true << onlyFolders;
}

void tst_FileHelpers::removingStopsAtWhatItMayNot()
{
    QFETCH(QString, path);
    QFETCH(int, mode);
    QFETCH(bool, result);
    QFETCH(QByteArrayList, remaining);
    makeTree(root(), {"a/", "a/1", "b/", "b/1", "b/2", "c/", "c/1", "d"});
    QVERIFY(setMode(this->path(path), mode_t(mode)));

    const bool removed = VEK_NAMESPACE::removeDirectoryContent(QDir(m_root));

    setMode(this->path(path), 0700); // so that it can be looked into
    QCOMPARE(listTree(root()), remaining);
    QCOMPARE(removed, result);
}

void tst_FileHelpers::removingBelowAFile()
{
    makeTree(root(), {"file", "pipe|", "dangling -> nothing"});
    const QByteArrayList before = listTree(root());

    for (const char* name : {"file", "pipe", "dangling", "missing", "missing/folder", "file/below"})
        QVERIFY2(!VEK_NAMESPACE::removeDirectoryContent(QDir(path(name))), name);

    QCOMPARE(listTree(root()), before);
}

void tst_FileHelpers::removingThroughALink()
{
    makeTree(root(), {"folder/", "folder/1", "link -> folder"});

    QVERIFY(VEK_NAMESPACE::removeDirectoryContent(QDir(path("link"))));

    QCOMPARE(listTree(root()), QByteArrayList({"folder/", "link -> folder"}));
}

void tst_FileHelpers::nameFiltersAreForTheFilesOfTheFolder()
{
    makeTree(root(), {"a/", "a/1.jpg", "b.txt/", "b.txt/2", "c.jpg", "d.txt", "E.TXT", "f"});

    QVERIFY(VEK_NAMESPACE::removeDirectoryContent(
        QDir(m_root, QStringLiteral("*.txt *.none"), QDir::Name, QDir::Files)));
    QCOMPARE(listTree(root()), QByteArrayList({"a/", "b.txt/", "c.jpg", "f"}));

    makeTree(root(), {"in/", "in/c.jpg"});
    QVERIFY(!VEK_NAMESPACE::removeDirectoryContent(QDir(path("in"), QStringLiteral("*.txt"))));
    QCOMPARE(listTree(root() + "/in"), QByteArrayList({"c.jpg"}));
}

void tst_FileHelpers::foldersOwnFilterAndOrderDoNotCount()
{
    makeTree(root(), {"a/", "a/1", "b/", ".c", "d"});
    QDir folder(m_root);
    folder.setFilter(QDir::Files);
    folder.setSorting(QDir::Name | QDir::Reversed | QDir::DirsLast);

    QVERIFY(!VEK_NAMESPACE::removeDirectoryContent(folder));

    QCOMPARE(listTree(root()), QByteArrayList({".c", "a/", "b/", "d"}));
}

void tst_FileHelpers::removingFromTheCurrentFolder()
{
    makeTree(root(), {"in/", "in/a/", "in/a/1", "in/2", "out"});
    const CurrentFolder current(m_root);

    QVERIFY(VEK_NAMESPACE::removeDirectoryContent(QDir(QStringLiteral("in"))));

    QCOMPARE(listTree(root()), QByteArrayList({"in/", "in/a/", "out"}));
}

void tst_FileHelpers::removingADeepTree()
{
    QByteArrayList folders;
    QByteArray name;
    for (int i = 0; i < 400; ++i) {
        name += "d/";
        folders << name;
    }
    makeTree(root(), folders + QByteArrayList({name + "deepest", "d/2", "1"}));
    QCOMPARE(listTree(root()).size(), 403);

    QVERIFY(VEK_NAMESPACE::removeDirectoryContent(QDir(m_root)));

    QCOMPARE(listTree(root()), folders);
}

void tst_FileHelpers::isEqualFileOrDirNames_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second"); ///< %1 is the current folder
    // Whether they are equal by full path, path and base name, file name, base name.
    QTest::addColumn<QList<bool>>("equal");

    const auto addRow = [](const char* title, const char* first, const char* second,
                           const QList<bool>& equal) {
        QTest::newRow(title) << QString::fromUtf8(first) << QString::fromUtf8(second) << equal;
    };
    addRow("the same", "/a/b.jpg", "/a/b.jpg", {true, true, true, true});
    addRow("other capitals", "/a/b.jpg", "/A/B.JPG", {true, true, true, true});
    addRow("other capitals beyond ASCII", "/ä/é.jpg", "/Ä/É.jpg", {true, true, true, true});
    addRow("another folder", "/A/x.JPG", "/B/X.jpg", {false, false, true, true});
    addRow("another suffix", "/a/bc.jpg", "/a/BC.png", {false, true, false, true});
    addRow("no suffix on one side", "/a/b.jpg", "/a/b", {false, true, false, true});
    addRow("another last suffix of two", "/a/a.tar.gz", "/a/a.tar.bz2", {false, true, false, true});
    addRow("another first suffix of two", "/a/a.tar.gz", "/a/a.jar.gz",
           {false, false, false, false});
    addRow("another folder and suffix", "/a/b.jpg", "/c/b.png", {false, false, false, true});
    addRow("another name", "/a/b.jpg", "/a/c.jpg", {false, false, false, false});
    addRow("path and name divided elsewhere", "/a/bc.jpg", "/ab/c.jpg",
           {false, true, false, false});
    addRow("a hidden file has no base name", "/a/.jpg", "/a/.png", {false, true, false, true});
    addRow("what must be cleaned", "/a/./x/../b.jpg", "/a//b.jpg", {true, true, true, true});
    addRow("a separator at the end", "/a/b/", "/a/b", {true, false, false, false});
    addRow("two separators at the end", "/a/b/", "/a/b//", {true, true, true, true});
    addRow("a relative path isn't resolved", "b.jpg", "/b.jpg", {false, false, true, true});
    addRow("a relative path and one with a dot", "b.jpg", "./b.jpg", {true, true, true, true});
    addRow("a relative path and the same as an absolute one", "file", "%1/file",
           {false, false, true, true});
    addRow("nothing on both sides", "", "", {true, true, true, true});
    addRow("nothing on one side", "", "/a/b.jpg", {false, false, false, false});
    addRow("a link isn't followed", "file", "link", {false, false, false, false});
    addRow("a letter that has no capital of one letter", "/a/ß", "/a/SS",
           {false, false, false, false});
}

void tst_FileHelpers::isEqualFileOrDirNames()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(QList<bool>, equal);
    makeTree(root(), {"file", "link -> file"});
    const CurrentFolder current(m_root);
    second.replace(QStringLiteral("%1"), m_root);
    const FileCompareCondition conditions[] = {CompareFullPath, ComparePathAndBaseName,
                                               CompareFileName, CompareBaseName};

    for (int i = 0; i < 4; ++i) {
        QCOMPARE(int(conditions[i]), i);
        QCOMPARE(VEK_NAMESPACE::isEqualFileOrDirNames(QFileInfo(first), QFileInfo(second),
                                                      conditions[i]),
                 equal.at(i));
        QCOMPARE(VEK_NAMESPACE::isEqualFileOrDirNames(QFileInfo(second), QFileInfo(first),
                                                      conditions[i]),
                 equal.at(i));
    }
}

void tst_FileHelpers::unknownConditionMakesAllEqual_data()
{
    QTest::addColumn<int>("condition");

    QTest::newRow("one more than there are") << 4;
    QTest::newRow("below all") << -1;
    QTest::newRow("far beyond all") << 1000;
}

void tst_FileHelpers::unknownConditionMakesAllEqual()
{
    QFETCH(int, condition);

    QVERIFY(VEK_NAMESPACE::isEqualFileOrDirNames(QFileInfo(QStringLiteral("/a/b.jpg")),
                                                 QFileInfo(QStringLiteral("/c/d.png")),
                                                 FileCompareCondition(condition)));
}

void tst_FileHelpers::compareFileNames_data()
{
    QTest::addColumn<QString>("first");
    QTest::addColumn<QString>("second");
    QTest::addColumn<bool>("equal");

    const auto addRow = [](const char* title, const QString& first, const QString& second,
                           bool equal) { QTest::newRow(title) << first << second << equal; };
    addRow("the same", "a.jpg", "a.jpg", true);
    addRow("other capitals", "a.jpg", "A.JPG", true);
    addRow("other capitals beyond ASCII", QString::fromUtf8("äж.jpg"), QString::fromUtf8("ÄЖ.jpg"),
           true);
    addRow("other capitals beyond sixteen bits", QString::fromUtf8("𐐨"), QString::fromUtf8("𐐀"),
           true);
    addRow("another name", "a.jpg", "b.jpg", false);
    addRow("the beginning of the other", "a", "a.jpg", false);
    addRow("a blank at the end", "a", "a ", false);
    addRow("an accent", "a", QString::fromUtf8("á"), false);
    addRow("an accent of its own", QString::fromUtf8("á"), QString::fromUtf8("a\u0301"), false);
    addRow("a path isn't cleaned", "/a/./b", "/a/b", false);
    addRow("a separator at the end", "/a/", "/a", false);
    addRow("both empty", "", "", true);
    addRow("empty and null", "", QString(), true);
    addRow("one empty", "", "a", false);
}

void tst_FileHelpers::compareFileNames()
{
    QFETCH(QString, first);
    QFETCH(QString, second);
    QFETCH(bool, equal);

    QCOMPARE(VEK_NAMESPACE::compareFileNames(first, second), equal);
    QCOMPARE(VEK_NAMESPACE::compareFileNames(second, first), equal);
}

void tst_FileHelpers::validateFileName_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("asPath");
    QTest::addColumn<bool>("asName");

    const auto addRow = [](const char* title, const QString& name, bool asPath, bool asName) {
        QTest::newRow(title) << name << asPath << asName;
    };
    const QString longest(256, QLatin1Char('x'));
    const QString tooLong(257, QLatin1Char('x'));
    const QString camera = QString::fromUtf8("📷"); // two units of UTF-16
    addRow("a name", "a.jpg", true, true);
    addRow("a name beyond ASCII", QString::fromUtf8("ä 日本 📷.jpg"), true, true);
    addRow("a hidden file", ".a", true, true);
    addRow("a dot at the end", "a.", true, true);
    addRow("a blank", " ", true, true);
    addRow("control characters", "a\t\n\x01", true, true);
    addRow("other signs", "!#$%&'()+,-;=@[]^_`{}~", true, true);
    addRow("nothing", "", false, false);
    addRow("nothing at all", QString(), false, false);

    addRow("a path", "/a/b.jpg", true, false);
    addRow("a relative path", "a/b.jpg", true, false);
    addRow("the root", "/", true, false);
    addRow("a drive", "C:/x", true, false);
    addRow("a drive alone", "C:", true, false);
    addRow("a backslash", "a\\b", true, false);

    addRow("256 characters", longest, true, true);
    addRow("257 characters", tooLong, false, false);
    addRow("256 characters in each part", longest + "/" + longest + "/" + longest, true, false);
    addRow("257 characters in the first part", tooLong + "/a/b", false, false);
    addRow("257 characters in the middle", "a/" + tooLong + "/b", false, false);
    addRow("257 characters in the last part", "/a/b/" + tooLong, false, false);
    addRow("256 characters between separators", "/" + longest + "//", true, false);
    addRow("257 characters that are cleaned away", tooLong + "/../a", true, true);
    addRow("128 characters of two units", camera.repeated(128), true, true);
    addRow("129 characters of two units", camera.repeated(129), false, false);
    addRow("257 characters on both sides of a backslash", longest + "\\" + longest, false, false);

    addRow("a dot", ".", true, true);
    addRow("two dots", "..", false, false);
    addRow("three dots", "...", false, false);
    addRow("two dots in a name", "a..b", false, false);
    addRow("two dots at the end of a name", "a..", false, false);
    addRow("two dots at the beginning of a name", "..a", false, false);
    addRow("two dots in a part", "a/b..c/d", false, false);
    addRow("dots apart", "a.b.c", true, true);
    addRow("up from where it begins", "../b", false, false);
    addRow("up further than it went down", "a/../../b", false, false);
    addRow("up as far as it went down", "a/../b", true, true);
    addRow("up inside a path", "/a/b/../c", true, false);
    addRow("down and up to where it begins", "a/..", true, true);
    addRow("a dot before a name", "./a", true, true);
    addRow("a separator after a name", "a/", true, true);
    addRow("a double separator", "a//b", true, false);
}

void tst_FileHelpers::validateFileName()
{
    QFETCH(QString, name);
    QFETCH(bool, asPath);
    QFETCH(bool, asName);

    QCOMPARE(VEK_NAMESPACE::validateFileName(name, true), asPath);
    QCOMPARE(VEK_NAMESPACE::validateFileName(name, false), asName);
}

void tst_FileHelpers::forbiddenCharacters_data()
{
    QTest::addColumn<QString>("place"); ///< %1 is the character

    QTest::newRow("alone") << "%1";
    QTest::newRow("at the beginning") << "%1a.jpg";
    QTest::newRow("in the middle") << "a%1b.jpg";
    QTest::newRow("at the end") << "a.jpg%1";
}

void tst_FileHelpers::forbiddenCharacters()
{
    QFETCH(QString, place);

    QString inPaths;
    QString inNames;
    for (ushort character = 1; character < 128; ++character) {
        const QString name = place.arg(QChar(character));
        if (!VEK_NAMESPACE::validateFileName(name, true))
            inPaths += QChar(character);
        if (!VEK_NAMESPACE::validateFileName(name, false))
            inNames += QChar(character);
    }

    QCOMPARE(inPaths, QStringLiteral("\"*<>?|"));
    // A separator at the end is cleaned away.
    QCOMPARE(inNames,
             place == QLatin1String("a.jpg%1") ? QStringLiteral("\"*:<>?\\|")
                                               : QStringLiteral("\"*/:<>?\\|"));
}

void tst_FileHelpers::trashTakes_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("a file") << "file.jpg";
    QTest::newRow("a double quote") << "a \"b\".jpg";
    QTest::newRow("a single quote and a backslash") << "a'b\\c";
    QTest::newRow("percent signs") << "100%1 %20%";
    QTest::newRow("a line feed") << "a\nb";
    QTest::newRow("signs of an address") << "a#b?c;d&e=f+g";
    QTest::newRow("a name beyond ASCII") << QString::fromUtf8("Größe 日本 📷.jpg");
    QTest::newRow("a hidden file") << ".file";
    QTest::newRow("what looks like an option") << "-f";
    QTest::newRow("what looks like an address") << "file:a";
}

void tst_FileHelpers::trashTakes()
{
    QFETCH(QString, name);
    const QByteArray content("\0\xFF picture\r\n", 12);
    const CurrentFolder current(m_root);
    for (const QString& argument : {path(name), name}) {
        const QString file = write(name, content);
        const QDateTime before = QDateTime::currentDateTime();

        QCOMPARE(moveFileToTrash(argument), 0);

        QVERIFY(!exists(file));
        QCOMPARE(trash(), QStringList({name}));
        const TrashInfo info = trashInfo(name);
        QCOMPARE(info.path, file);
        QVERIFY(info.time.isValid());
        QVERIFY(info.time.toSecsSinceEpoch() >= before.toSecsSinceEpoch());
        QVERIFY(info.time <= QDateTime::currentDateTime());
        // It can be had back.
        QVERIFY(QFile::rename(inTrash(name), info.path));
        QCOMPARE(readFile(file), content);
        QDir(trashFolder()).removeRecursively();
    }
}

void tst_FileHelpers::trashTakesAFolder()
{
    const QString folder = path("folder");
    makeTree(root(), {"folder/", "folder/a/", "folder/a/1", "folder/b -> a/1", "folder/c/"});
    const QByteArrayList before = listTree(root());

    QCOMPARE(moveFileToTrash(folder), 0);

    QCOMPARE(listTree(root()), QByteArrayList());
    QCOMPARE(trash(), QStringList({"folder"}));
    QVERIFY(QFile::rename(inTrash("folder"), trashInfo("folder").path));
    QCOMPARE(listTree(root()), before);
}

void tst_FileHelpers::trashTakesFilesOfOneName()
{
    for (const QByteArray& content : {QByteArray("first"), QByteArray("second")})
        QCOMPARE(moveFileToTrash(write("file.jpg", content)), 0);
    const QString elsewhere = write("folder/file.jpg", "third");
    QCOMPARE(moveFileToTrash(elsewhere), 0);

    QStringList found;
    const QStringList names = trash();
    for (const QString& name : names)
        found << QString::fromLatin1(readFile(inTrash(name))) + " from " + trashInfo(name).path;
    found.sort();
    const QString here = path("file.jpg");
    QCOMPARE(found,
             QStringList({"first from " + here, "second from " + here, "third from " + elsewhere}));
}

void tst_FileHelpers::nothingIsMovedToTheTrash_data()
{
    QTest::addColumn<QString>("file"); ///< %1 is the folder
    QTest::addColumn<int>("result");

    QTest::newRow("no path") << "" << 2;
    QTest::newRow("no path at all") << QString() << 2;
    QTest::newRow("a missing file") << "%1/missing" << 1;
    QTest::newRow("a file in a missing folder") << "%1/missing/file" << 1;
    QTest::newRow("a file below a file") << "%1/file/file" << 1;
    QTest::newRow("another name with wrong capitals") << "%1/FILE" << 1;
    QTest::newRow("an address is no path") << "file://%1/file" << 1;
}

void tst_FileHelpers::nothingIsMovedToTheTrash()
{
    QFETCH(QString, file);
    QFETCH(int, result);
    makeTree(root(), {"file"});
    const CurrentFolder current(m_root);

    QCOMPARE(moveFileToTrash(file.replace(QStringLiteral("%1"), m_root)), result);

    QCOMPARE(listTree(root()), QByteArrayList({"file"}));
    QCOMPARE(trash(), QStringList());
}

void tst_FileHelpers::fileSystemWithoutATrash_data()
{
    QTest::addColumn<QString>("file");

    QTest::newRow("the system's own") << "/proc/self/stat";
    // Files could be moved from a file system in memory; some users have none.
    static const QTemporaryDir memory(QStringLiteral("/dev/shm/tst_FileHelpers-XXXXXX"));
    if (memory.isValid() && fileSystem(memory.path()) != fileSystem(QDir::homePath())) {
        const QString file = memory.filePath(QStringLiteral("file"));
        QVERIFY(writeFile(file, "content"));
        QTest::newRow("in memory") << file;
    }
}

void tst_FileHelpers::fileSystemWithoutATrash()
{
    QFETCH(QString, file);
    const bool inMemory = !file.startsWith(QLatin1String("/proc"));

    QCOMPARE(moveFileToTrash(file), 1);

    QVERIFY(inMemory ? readFile(file) == "content" : exists(file));
    QCOMPARE(trash(), QStringList());
}

void tst_FileHelpers::trashThatCannotBeMade()
{
    const QString file = write("file");
    QProcess child;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_DATA_HOME"), QStringLiteral("/dev/null/x"));
    child.setProcessEnvironment(environment);

    child.start(QCoreApplication::applicationFilePath(), {QStringLiteral("--trash"), file});
    QVERIFY(child.waitForFinished());

    QCOMPARE(child.readAllStandardOutput(), QByteArray("2\n"));
    QCOMPARE(child.readAllStandardError(), QByteArray());
    QCOMPARE(readFile(file), QByteArray("content"));
}

void tst_FileHelpers::trashThatMayNotBeChanged()
{
    QCOMPARE(moveFileToTrash(write("first")), 0);
    const QString file = write("second");
    const QStringList folders = {trashFolder() + "/files", trashFolder() + "/info"};
    for (const QString& folder : folders)
        QVERIFY(setMode(folder, 0500));

    QCOMPARE(moveFileToTrash(file), 2);

    for (const QString& folder : folders)
        QVERIFY(setMode(folder, 0700));
    QCOMPARE(trash(), QStringList({"first"}));
    QCOMPARE(readFile(file), QByteArray("content"));
}

void tst_FileHelpers::renameFile_data()
{
    QTest::addColumn<QString>("from");
    QTest::addColumn<QString>("to");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QByteArrayList>("tree");

    const auto addRow = [](const char* title, const char* from, const char* to, bool result,
                           const QByteArrayList& tree) {
        QTest::newRow(title) << QString::fromUtf8(from) << QString::fromUtf8(to) << result << tree;
    };
    const QByteArrayList untouched = {"folder/", "folder/c", "link -> one", "one", "two"};
    addRow("to a name that is free", "one", "new", true,
           {"folder/", "folder/c", "link -> one", "new", "two"});
    addRow("to a name that is taken", "one", "two", false, untouched);
    addRow("to a folder's name", "one", "folder", false, untouched);
    addRow("to other capitals", "one", "ONE", true,
           {"ONE", "folder/", "folder/c", "link -> one", "two"});
    addRow("into a folder", "one", "folder/one", true,
           {"folder/", "folder/c", "folder/one", "link -> one", "two"});
    addRow("into a missing folder", "one", "missing/one", false, untouched);
    addRow("a missing file", "missing", "new", false, untouched);
    addRow("a folder", "folder", "new", true, {"link -> one", "new/", "new/c", "one", "two"});
    addRow("a link and not its target", "link", "new", true,
           {"folder/", "folder/c", "new -> one", "one", "two"});
    addRow("to a name beyond ASCII", "one", "ä 日本", true,
           {"folder/", "folder/c", "link -> one", "two", "\xC3\xA4 \xE6\x97\xA5\xE6\x9C\xAC"});
}

void tst_FileHelpers::renameFile()
{
    QFETCH(QString, from);
    QFETCH(QString, to);
    QFETCH(bool, result);
    QFETCH(QByteArrayList, tree);
    makeTree(root(), {"one", "folder/", "folder/c", "link -> one"});
    write("two", "another content");

    QCOMPARE(VEK_NAMESPACE::renameFile(path(from), path(to)), result);

    QCOMPARE(listTree(root()), tree);
    QCOMPARE(readFile(path("two")), QByteArray("another content"));
}

void tst_FileHelpers::selectFilesInShell_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("addresses");

    const auto addRow = [](const char* title, const QStringList& files,
                           const QStringList& addresses) {
        QTest::newRow(title) << files << addresses;
    };
    addRow("one file", {"/a/b.jpg"}, {"file:///a/b.jpg"});
    addRow("several, in their order", {"/a/c", "/a/b", "/d/e"},
           {"file:///a/c", "file:///a/b", "file:///d/e"});
    addRow("one file twice", {"/a", "/a"}, {"file:///a", "file:///a"});
    addRow("a folder", {"/a/"}, {"file:///a/"});
    addRow("blanks", {"/a b/c d"}, {"file:///a%20b/c%20d"});
    addRow("percent signs", {"/100%", "/%20", "/%1"},
           {"file:///100%25", "file:///%2520", "file:///%251"});
    addRow("signs of an address", {"/a#b?c;d"}, {"file:///a%23b%3Fc;d"});
    addRow("beyond ASCII", {QString::fromUtf8("/ä/日本")}, {"file:///%C3%A4/%E6%97%A5%E6%9C%AC"});
    addRow("a relative name", {"a.jpg"}, {"file:a.jpg"});
    addRow("empty names are left out", {"", "/a", QString(), "/b", ""}, {"file:///a", "file:///b"});
}

void tst_FileHelpers::selectFilesInShell()
{
    QFETCH(QStringList, files);
    QFETCH(QStringList, addresses);
    const Opener opener;
    FileManager manager;

    VEK_NAMESPACE::selectFilesInShell(m_root, files);
    QTRY_COMPARE(manager.calls, QList<QStringList>({addresses}));

    QCOMPARE(opener.opened, QStringList());
}

void tst_FileHelpers::nothingIsSelected_data()
{
    QTest::addColumn<QString>("folder"); ///< %1 is one that exists
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<bool>("selected");

    QTest::newRow("a missing folder") << "%1/missing" << QStringList("/a") << false;
    QTest::newRow("no folder") << "" << QStringList("/a") << false;
    QTest::newRow("no folder at all") << QString() << QStringList("/a") << false;
    QTest::newRow("a folder below a file") << "%1/file/folder" << QStringList("/a") << false;
    QTest::newRow("a link to nothing") << "%1/dangling" << QStringList("/a") << false;
    QTest::newRow("no files") << "%1" << QStringList() << false;
    QTest::newRow("nothing but an empty name") << "%1" << QStringList("") << false;
    QTest::newRow("nothing but empty names") << "%1" << QStringList({"", QString()}) << false;
    // The folder is only looked at to see if there is one.
    QTest::newRow("a folder that the file isn't in") << "%1" << QStringList("/a") << true;
    QTest::newRow("a file in the folder's place") << "%1/file" << QStringList("/a") << true;
    QTest::newRow("a relative folder") << "." << QStringList("/a") << true;
}

void tst_FileHelpers::nothingIsSelected()
{
    QFETCH(QString, folder);
    QFETCH(QStringList, files);
    QFETCH(bool, selected);
    makeTree(root(), {"file", "dangling -> nothing"});
    const CurrentFolder current(m_root);
    const Opener opener;
    FileManager manager;

    VEK_NAMESPACE::selectFilesInShell(folder.replace(QStringLiteral("%1"), m_root), files);
    // Nothing of this one can arrive before what the first one has sent.
    VEK_NAMESPACE::selectFilesInShell(m_root, {QStringLiteral("/last")});

    QList<QStringList> calls = {{QStringLiteral("file:///last")}};
    if (selected)
        calls.prepend({QStringLiteral("file:///a")});
    QTRY_COMPARE(manager.calls, calls);
    QCOMPARE(opener.opened, QStringList());
}

void tst_FileHelpers::withoutAFileManagerTheFolderIsOpened()
{
    const Opener opener;

    VEK_NAMESPACE::selectFilesInShell(m_root, {QString(), QStringLiteral("/a b/c.jpg")});

    QTRY_COMPARE(opener.opened, QStringList({QStringLiteral("file:///a%20b")}));
}

void tst_FileHelpers::creationDate_data()
{
    QTest::addColumn<QByteArray>("zone");
    QTest::addColumn<QString>("name");

    QTest::newRow("west of Greenwich") << QByteArray("WWW9:30") << "file";
    QTest::newRow("east of Greenwich") << QByteArray("EEE-5:45") << "file";
    QTest::newRow("in Greenwich") << QByteArray("UTC") << "file";
    QTest::newRow("with a summer time") << QByteArray("CET-1CEST,M3.5.0,M10.5.0/3") << "file";
    QTest::newRow("a folder") << QByteArray("EEE-5:45") << "folder";
    QTest::newRow("a name beyond ASCII") << QByteArray("EEE-5:45") << QString::fromUtf8("ä 日本");
}

void tst_FileHelpers::creationDate()
{
    QFETCH(QByteArray, zone);
    QFETCH(QString, name);
    makeTree(root(), {"file", "folder/", QByteArray("\xC3\xA4 \xE6\x97\xA5\xE6\x9C\xAC")});
    const CurrentFolder current(m_root);
    const TimeZone local(zone);
    const QByteArray seconds = output("stat", {"--format=%W", path(name)});
    QVERIFY2(seconds != "0", "this file system doesn't keep birth times");
    const QByteArray expected =
        output("date", {"--date=@" + QString::fromLatin1(seconds), "+%Y-%m-%d %H:%M:%S.000"});

    for (const QString& file : {path(name), name}) {
        const QDateTime date = getFileCreationDate(file);
        QCOMPARE(date.timeSpec(), Qt::LocalTime);
        QCOMPARE(date.toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz")).toLatin1(), expected);
        QCOMPARE(date.toSecsSinceEpoch(), seconds.toLongLong());
    }
}

void tst_FileHelpers::creationDateStays()
{
    const QString file = write("file");
    const QDateTime before = getFileCreationDate(file);
    QVERIFY(before.isValid());
    const utimbuf longAgo = {1000, 1000};
    QCOMPARE(utime(QFile::encodeName(file).constData(), &longAgo), 0);

    QCOMPARE(QFileInfo(file).lastModified().toMSecsSinceEpoch(), qint64(1000000));
    QCOMPARE(getFileCreationDate(file), before);
    QCOMPARE(output("stat", {"--format=%W", file}).toLongLong(), before.toSecsSinceEpoch());
}

void tst_FileHelpers::creationDateThatIsNotKnown_data()
{
    QTest::addColumn<QString>("file"); ///< %1 is the folder

    QTest::newRow("no path") << "";
    QTest::newRow("no path at all") << QString();
    QTest::newRow("a missing file") << "%1/missing";
    QTest::newRow("a file below a file") << "%1/file/file";
    QTest::newRow("a file system without such times") << "/proc/self/stat";
    QTest::newRow("an address is no path") << "file://%1/file";
}

void tst_FileHelpers::creationDateThatIsNotKnown()
{
    QFETCH(QString, file);
    makeTree(root(), {"file"});
    const CurrentFolder current(m_root);

    QVERIFY(getFileCreationDate(file.replace(QStringLiteral("%1"), m_root)).isNull());
}

void tst_FileHelpers::manyThreads()
{
    constexpr int count = 8;
    std::atomic<int> good{0};
    std::vector<std::thread> threads;
    for (int i = 0; i < count; ++i) {
        const QString folder = path(QString::number(i));
        for (int j = 0; j < 20; ++j)
            QVERIFY(writeFile(folder + "/in/" + QString::number(j), "content"));
        QVERIFY(writeFile(folder + "/old", "content"));
        threads.emplace_back([folder, &good] {
            const QString file = folder + "/new";
            good += VEK_NAMESPACE::removeDirectoryContent(QDir(folder + "/in"))
                && VEK_NAMESPACE::renameFile(folder + "/old", file)
                && getFileCreationDate(file).isValid()
                && VEK_NAMESPACE::validateFileName(file, true)
                && VEK_NAMESPACE::isEqualFileOrDirNames(QFileInfo(file), QFileInfo(file.toUpper()),
                                                        CompareFullPath)
                && moveFileToTrash(file) == 0;
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    QCOMPARE(good.load(), count);
    QCOMPARE(listTree(root()).size(), 2 * count); // the folders
    QCOMPARE(trash().size(), count);
}

int main(int argc, char* argv[])
{
    if (!takeOrdinaryFileRights())
        return 1;
    QGuiApplication application(argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "--trash") == 0) {
        std::printf("%d\n", moveFileToTrash(QFile::decodeName(argv[2])));
        return 0;
    }
    tst_FileHelpers test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_FileHelpers.moc"
