#include "ArchiveWriter.h"
#include "Archives.h"
#include "CommonConstants.h"
#include "CurrentFolder.h"
#include "FileSizeLimit.h"
#include "Files.h"
#include "FolderContents.h"
#include "MessageCounter.h"
#include "OrdinaryFileRights.h"
#include "PeakMemory.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <dlfcn.h>
#include <filesystem>
#include <functional>
#include <memory>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

using VEK_NAMESPACE::CompressFiles;

using Entry = ArchiveWriter::Entry;
using Pack = std::function<void(ArchiveWriter& archive)>;
using Prepare = std::function<void()>;

Q_DECLARE_METATYPE(Pack)
Q_DECLARE_METATYPE(Prepare)

namespace {

constexpr auto Stored = ArchiveWriter::Stored;
constexpr auto Deflated = ArchiveWriter::Deflated;

/// An empty current folder with the folders "in", for what is packed, and "out", which "d", the
/// destination, is in.
class Sandbox
{
public:
    Sandbox()
    {
        QDir().mkpath(QStringLiteral("in"));
        QDir().mkpath(QStringLiteral("out"));
    }
    ~Sandbox()
    {
        QDirIterator it(QStringLiteral("out"),
                        QDir::Dirs | QDir::Hidden | QDir::NoDotAndDotDot | QDir::NoSymLinks,
                        QDirIterator::Subdirectories);
        while (it.hasNext())
            QFile::setPermissions(it.next(),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }

private:
    Q_DISABLE_COPY(Sandbox)

    const QTemporaryDir m_folder;
    const CurrentFolder m_current{m_folder.path()};
};

bool extract(const QString& zipPath = QStringLiteral("a.zip"),
             const QString& destination = QStringLiteral("out/d"))
{
    return DecompressFiles(zipPath.toStdWString(), destination.toStdWString());
}

void extractSilently(const QString& zipPath = QStringLiteral("a.zip"),
                     const QString& destination = QStringLiteral("out/d"))
{
    VEK_NAMESPACE::DecompressFiles(zipPath, destination);
}

QStringList out()
{
    return contentsOf(QStringLiteral("out"));
}

/// Bytes that don't get smaller.
QByteArray noise(int size, quint32 seed = 1)
{
    std::mt19937 random(seed);
    QByteArray bytes(size, Qt::Uninitialized);
    for (char& byte : bytes)
        byte = char(random());
    return bytes;
}

void makeFile(const QString& path, const QByteArray& contents, mode_t mode = 0644)
{
    if (!writeFile(path, contents) || chmod(QFile::encodeName(path).constData(), mode) != 0)
        qFatal("can't write %s", qPrintable(path));
}

void makeFolder(const char* path, mode_t mode = 0755)
{
    if (!QDir().mkpath(QString::fromUtf8(path)) || chmod(path, mode) != 0)
        qFatal("can't make %s", path);
}

void makeLink(const char* target, const char* path)
{
    if (symlink(target, path) != 0)
        qFatal("can't make %s", path);
}

struct Outcome
{
    int exitCode = -1;
    QByteArray output;
};

Outcome run(const QString& program, const QStringList& arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, arguments);
    Outcome outcome;
    if (process.waitForFinished(120000) && process.exitStatus() == QProcess::NormalExit)
        outcome.exitCode = process.exitCode();
    outcome.output = process.readAll();
    return outcome;
}

/// Packs what lies in "in" with the program zip.
void zip(const QStringList& options)
{
    const CurrentFolder in(QStringLiteral("in"));
    const Outcome outcome = run(QStringLiteral("zip"),
                                QStringList{"-q", "-r"} + options + QStringList{"../a.zip", "."});
    if (outcome.exitCode != 0)
        qFatal("zip: %s", outcome.output.constData());
}

/// Runs a script that has "zipfile" and the archive "z", which it writes.
Outcome python(const QString& script, char mode = 'w')
{
    return run(QStringLiteral("python3"),
               {"-c",
                QStringLiteral("import zipfile\n"
                               "with zipfile.ZipFile('a.zip', '%1') as z:\n")
                        .arg(mode)
                    + script});
}

void pythonZip(const QString& script)
{
    const Outcome outcome = python(script);
    if (outcome.exitCode != 0)
        qFatal("python3: %s", outcome.output.constData());
}

} // namespace

class tst_Archives : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void otherToolsArchives_data();
    void otherToolsArchives();
    void archives_data();
    void archives();
    void permissions_data();
    void permissions();
    void aFileThatCantGetItsPermissionsFailsAndStays();
    void aLinkInTheDestinationIsFollowed();
    void whatCantBeOpened_data();
    void whatCantBeOpened();
    void aMissingDestinationIsMade_data();
    void aMissingDestinationIsMade();
    void aRelativeDestination();
    void emptyPaths();
    void namesBeyondTheFirstPlane();
    void aFullDiskFails_data();
    void aFullDiskFails();
    void theFunctionHasItsPlainName();
    void seventyThousandEntries();
    void aboveFourGibibytes();
    void aPipeIsNoArchive();
    void severalThreads();
    void damagedData();
    void truncatedArchives();
    void damagedVariants();
    void nothingIsLogged();

    void compressedFilesCanBeReadBack_data();
    void compressedFilesCanBeReadBack();
    void compressingFails_data();
    void compressingFails();
    void anArchiveIsReplaced();

    void silentlyExtracted_data();
    void silentlyExtracted();
    void silentlyNothing_data();
    void silentlyNothing();
};

void tst_Archives::otherToolsArchives_data()
{
    QTest::addColumn<Prepare>("pack");
    QTest::addColumn<bool>("extracted");
    QTest::addColumn<QStringList>("contents");

    const auto files = [] {
        makeFile("in/one", "1");
        makeFile("in/folder/two", QByteArray(3000, '2'));
        makeFile("in/folder/empty", {});
        makeFile(u8"in/Größe 文字 \U0001F4F7", "utf");
    };
    const QStringList whole{"d/",
                            u8"d/Größe 文字 \U0001F4F7 = utf",
                            "d/folder/",
                            "d/folder/empty = ",
                            "d/folder/two = 3000 bytes",
                            "d/one = 1"};
    QTest::newRow("zip, without entries of folders") << Prepare([files] {
        files();
        zip({"-D"});
    }) << true << whole;
    QTest::newRow("zip, with entries of folders") << Prepare([files] {
        files();
        zip({});
    }) << false << whole;
    QTest::newRow("zip, stored") << Prepare([files] {
        files();
        zip({"-D", "-0"});
    }) << true << whole;
    QTest::newRow("zip, packed with bzip2") << Prepare([files] {
        files();
        zip({"-D", "-Z", "bzip2"});
    }) << true << whole;
    QTest::newRow("zip, with ZIP64 where it isn't needed") << Prepare([files] {
        files();
        zip({"-D", "-fz"});
    }) << true << whole;
    QTest::newRow("zip, with data descriptors") << Prepare([files] {
        files();
        zip({"-D", "-fd"});
    }) << true << whole;
    QTest::newRow("zipfile, with a comment") << Prepare([] {
        pythonZip("  z.writestr('one', '1')\n"
                  "  z.comment = b'comment' * 1000");
    }) << true << QStringList{"d/", "d/one = 1"};
    QTest::newRow("zip, encrypted") << Prepare([files] {
        files();
        zip({"-D", "-P", "password"});
    }) << false << QStringList{"d/", "d/folder/", "d/folder/empty = "};
    QTest::newRow("zip, with a link as it is") << Prepare([] {
        makeFile("in/one", "1");
        makeLink("one", "in/link");
        zip({"-D", "-y"});
    }) << true << QStringList{"d/", "d/link = one", "d/one = 1"};
    QTest::newRow("zipfile, deflated") << Prepare([] {
        pythonZip("  z.writestr('one', '1' * 50, zipfile.ZIP_DEFLATED)\n"
                  "  z.writestr('folder/two', '2')");
    }) << true << QStringList{"d/", "d/folder/", "d/folder/two = 2", "d/one = " + QString(50, '1')};
    QTest::newRow("zipfile, beyond ASCII, which it marks as UTF-8") << Prepare([] {
        pythonZip("  z.writestr('Gr\\u00f6\\u00dfe/\\u6587\\U0001F4F7', 'text')");
    }) << true << QStringList{"d/", u8"d/Größe/", u8"d/Größe/文\U0001F4F7 = text"};
    QTest::newRow("zipfile, with LZMA, which isn't known, between others") << Prepare([] {
        pythonZip("  z.writestr('one', '1')\n"
                  "  z.writestr('folder/two', '2', zipfile.ZIP_LZMA)\n"
                  "  z.writestr('three', '3')");
    }) << false << QStringList{"d/", "d/one = 1", "d/three = 3"};
    QTest::newRow("zipfile, no entries")
        << Prepare([] { pythonZip("  pass"); }) << false << QStringList();
}

void tst_Archives::otherToolsArchives()
{
    QFETCH(const Prepare, pack);
    QFETCH(const bool, extracted);
    QFETCH(const QStringList, contents);

    const Sandbox sandbox;
    pack();
    QCOMPARE(extract(), extracted);
    QCOMPARE(out(), contents);
    if (contents.contains("d/folder/two = 3000 bytes"))
        QCOMPARE(readFile("out/d/folder/two"), QByteArray(3000, '2'));
}

void tst_Archives::archives_data()
{
    QTest::addColumn<Pack>("pack");
    QTest::addColumn<bool>("extracted");
    QTest::addColumn<QStringList>("contents");

    QTest::newRow("a file") << Pack([](ArchiveWriter& a) { a.add("x", "text"); }) << true
                            << QStringList{"d/", "d/x = text"};
    QTest::newRow("empty files") << Pack([](ArchiveWriter& a) {
        a.add("x");
        a.add("y", {}, 0, Stored);
    }) << true << QStringList{"d/", "d/x = ", "d/y = "};
    QTest::newRow("sizes around the buffer's") << Pack([](ArchiveWriter& a) {
        for (const int size : {4095, 4096, 4097, 8192, 16384, 100000})
            a.add(QByteArray::number(size), noise(size), 0, size % 2 ? Stored : Deflated);
    }) << true
                                               << QStringList{"d/",
                                                              "d/100000 = 100000 bytes",
                                                              "d/16384 = 16384 bytes",
                                                              "d/4095 = 4095 bytes",
                                                              "d/4096 = 4096 bytes",
                                                              "d/4097 = 4097 bytes",
                                                              "d/8192 = 8192 bytes"};
    QTest::newRow("no entries") << Pack([](ArchiveWriter&) {}) << false << QStringList();
    QTest::newRow("a folder alone") << Pack([](ArchiveWriter& a) { a.add("f/", {}, 040755); })
                                    << false << QStringList{"d/", "d/f/"};
    QTest::newRow("a folder in front of its files, and others behind")
        << Pack([](ArchiveWriter& a) {
               a.add("f/", {}, 040755);
               a.add("f/x", "1");
               a.add("y", "2");
           })
        << false << QStringList{"d/", "d/f/", "d/f/x = 1", "d/y = 2"};
    QTest::newRow("a folder at the end") << Pack([](ArchiveWriter& a) {
        a.add("x", "1");
        a.add("f/g/", {}, 040755);
    }) << false << QStringList{"d/", "d/f/", "d/f/g/", "d/x = 1"};
    QTest::newRow("a link, which comes out as a file")
        << Pack([](ArchiveWriter& a) { a.addLink("l", "../x"); }) << true
        << QStringList{"d/", "d/l = ../x"};
    QTest::newRow("points in a name lead out of the destination") << Pack([](ArchiveWriter& a) {
        a.add("f/z", "2"); // as the way out goes through both folders
        a.add("../x", "1");
        a.add("f/../../y", "3");
    }) << true << QStringList{"d/", "d/f/", "d/f/z = 2", "x = 1", "y = 3"};
    QTest::newRow("an absolute name leads anywhere") << Pack([](ArchiveWriter& a) {
        a.add(QFile::encodeName(QDir::currentPath()) + "/out/x", "1");
    }) << true << QStringList{"x = 1"};
    QTest::newRow("a name that leads to nothing but folders") << Pack([](ArchiveWriter& a) {
        a.add("..", "1");
        a.add(".", "2");
        a.add("x", "3");
    }) << false << QStringList{"d/", "d/x = 3"};
    QTest::newRow("an empty name is the destination's own") << Pack([](ArchiveWriter& a) {
        a.add("", "1");
        a.add("x", "2");
    }) << false << QStringList{"d = 1"};
    QTest::newRow("a backslash is a character like others")
        << Pack([](ArchiveWriter& a) { a.add("f\\x", "1"); }) << true
        << QStringList{"d/", "d/f\\x = 1"};
    QTest::newRow("the same name twice, of which the second stays") << Pack([](ArchiveWriter& a) {
        a.add("x", "the first");
        a.add("x", "second");
    }) << true << QStringList{"d/", "d/x = second"};
    QTest::newRow("a file and then one below it") << Pack([](ArchiveWriter& a) {
        a.add("x", "1");
        a.add("x/y", "2");
        a.add("z", "3");
    }) << false << QStringList{"d/", "d/x = 1", "d/z = 3"};
    QTest::newRow("a name that no file can have") << Pack([](ArchiveWriter& a) {
        a.add(QByteArray(300, 'x'), "1");
        a.add("y", "2");
    }) << false << QStringList{"d/", "d/y = 2"};
    QTest::newRow("beyond ASCII, not marked as UTF-8")
        << Pack([](ArchiveWriter& a) { a.add(u8"Größe", "1").flags = 0; }) << true
        << QStringList{"d/", u8"d/Größe = 1"};
    QTest::newRow("an unknown method, for which no folder is made") << Pack([](ArchiveWriter& a) {
        a.add("f/x", "1").method = 77;
        a.add("y", "2");
    }) << false << QStringList{"d/", "d/y = 2"};

    const auto damaged = [](const char* title, const std::function<void(Entry&)>& damage,
                            ArchiveWriter::Method method = Deflated) {
        QTest::newRow(title) << Pack([damage, method](ArchiveWriter& a) {
            a.add("a", "1");
            damage(a.add("f/x", noise(20000), 0, method));
            a.add("b", "2");
        }) << false << QStringList{"d/", "d/a = 1", "d/b = 2", "d/f/"};
    };
    damaged("a wrong check sum", [](Entry& entry) { ++entry.checkSum; });
    damaged(
        "a wrong check sum of a stored file", [](Entry& entry) { ++entry.checkSum; }, Stored);
    damaged("another byte", [](Entry& entry) { entry.packed[9000] = char(~entry.packed[9000]); });
    damaged(
        "another first byte of a stored file",
        [](Entry& entry) { entry.packed[0] = char(~entry.packed[0]); }, Stored);
    damaged(
        "another last byte of a stored file",
        [](Entry& entry) { entry.packed[19999] = char(~entry.packed[19999]); }, Stored);
    damaged("no deflated data at all", [](Entry& entry) {
        entry.packed = QByteArray(1000, '\xff');
        entry.packedSize = 1000;
    });
    damaged("a stream that ends early", [](Entry& entry) {
        entry.packed = ArchiveWriter::deflated("early");
        entry.packedSize = quint64(entry.packed.size());
        entry.checkSum = ArchiveWriter::checkSumOf("early");
    });
    damaged("a stream that is cut off", [](Entry& entry) {
        entry.packed.truncate(10000);
        entry.packedSize = 10000;
    });
    damaged(
        "a stored file that is cut off",
        [](Entry& entry) {
            entry.packed.truncate(10000);
            entry.packedSize = 10000;
        },
        Stored);
    damaged("a bzip2 stream that is cut off",
            [](Entry& entry) { ArchiveWriter::packWithBzip2(entry, 20); });
    damaged("a bzip2 stream that is cut off at its start",
            [](Entry& entry) { ArchiveWriter::packWithBzip2(entry, 4); });
    damaged("no bzip2 data at all", [](Entry& entry) { ArchiveWriter::packWithBzip2(entry, 0); });
    damaged("more than it declares", [](Entry& entry) { entry.size = 10; });
    damaged("one byte more than it declares", [](Entry& entry) { entry.size = 19999; });
    damaged("one byte less than it declares", [](Entry& entry) { entry.size = 20001; });
    damaged("much less than it declares", [](Entry& entry) { entry.size = 1000000000; });
    damaged("data, though nothing is declared", [](Entry& entry) { entry.size = 0; });
}

void tst_Archives::archives()
{
    QFETCH(const Pack, pack);
    QFETCH(const bool, extracted);
    QFETCH(const QStringList, contents);

    const Sandbox sandbox;
    ArchiveWriter archive;
    pack(archive);
    QVERIFY(archive.write("a.zip"));
    QCOMPARE(extract(), extracted);
    QCOMPARE(out(), contents);
    for (const int size : {4095, 4096, 4097, 8192, 16384, 100000}) {
        if (contents.size() == 7)
            QVERIFY(readFile(QStringLiteral("out/d/%1").arg(size)) == noise(size));
    }
}

void tst_Archives::permissions_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<quint32>("stored");
    QTest::addColumn<int>("mode");

    const auto row = [](const char* title, const char* name, quint32 stored, int mode) {
        QTest::newRow(title) << QByteArray(name) << stored << mode;
    };
    row("an executable file", "x", 0100755, 0755);
    row("a private file", "x", 0100600, 0600);
    row("a file that nobody may write to", "x", 0100444, 0444);
    row("a file that only others may use", "x", 0100007, 0007);
    row("a file that everybody may use", "x", 0100777, 0777);
    row("a link, which comes out as a file", "x", 0120777, 0777);
    row("a file that has the usual ones, as none are stored", "x", 0100000, 0640);
    row("nothing of Unix", "x", 0, 0640);
    row("permissions without a file type", "x", 0604, 0604);
    row("a folder", "x/", 040705, 0705);
    row("a folder that nobody may write to", "x/", 040555, 0555);
    row("a folder that has the usual ones, as none are stored", "x/", 040000, 0750);
}

void tst_Archives::permissions()
{
    QFETCH(const QByteArray, name);
    QFETCH(const quint32, stored);
    QFETCH(const int, mode);

    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.add(name, {}, stored);
    QVERIFY(archive.write("a.zip"));
    const mode_t usual = umask(027);
    const bool extracted = extract();
    umask(usual);
    QCOMPARE(extracted, name == "x");
    QCOMPARE(QByteArray::number(modeOf("out/d/x"), 8), QByteArray::number(mode, 8));
}

void tst_Archives::aFileThatCantGetItsPermissionsFailsAndStays()
{
    // A file that may be written to, but whose permissions are fixed: the name of this thread.
    const char file[] = "/proc/self/comm";
    const Sandbox sandbox;
    const QByteArray name = readFile(file);
    makeFolder("out/d");
    makeLink(file, "out/d/x");
    for (const quint32 mode : {0100600U, 0U}) {
        ArchiveWriter archive;
        archive.add("x", mode ? "archive" : "permission", mode);
        archive.add("y", "2", 0100600);
        QVERIFY(archive.write("a.zip"));
        const bool extracted = extract();
        const QByteArray written = readFile(file);
        writeFile(file, name);
        QCOMPARE(extracted, mode == 0);
        QCOMPARE(written, QByteArray(mode ? "archive\n" : "permission\n"));
        QCOMPARE(out(), (QStringList{"d/", "d/x -> /proc/self/comm", "d/y = 2"}));
    }
}

void tst_Archives::aLinkInTheDestinationIsFollowed()
{
    const Sandbox sandbox;
    makeFile("out/o/x", "something longer");
    makeFolder("out/d");
    makeLink("../o", "out/d/f");
    makeLink("../o/x", "out/d/x");
    ArchiveWriter archive;
    archive.add("f/y", "1");
    archive.add("x", "2", 0100600);
    QVERIFY(archive.write("a.zip"));
    QVERIFY(extract());
    QCOMPARE(out(),
             (QStringList{"d/", "d/f -> ../o", "d/x -> ../o/x", "o/", "o/x = 2", "o/y = 1"}));
    QCOMPARE(modeOf("out/o/x"), 0600);
}

void tst_Archives::whatCantBeOpened_data()
{
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<bool>("extracted");
    QTest::addColumn<QStringList>("contents");

    // The archive has "a" = 1, "f/x" = 2, "f/y" = 3, and "z" = 4.
    const QStringList nothing;
    QTest::newRow("no archive") << Prepare([] { QFile::remove("a.zip"); }) << false << nothing;
    QTest::newRow("a folder as the archive") << Prepare([] {
        QFile::remove("a.zip");
        makeFolder("a.zip");
    }) << false << nothing;
    QTest::newRow("an empty file as the archive")
        << Prepare([] { makeFile("a.zip", {}); }) << false << nothing;
    QTest::newRow("a text as the archive")
        << Prepare([] { makeFile("a.zip", "text"); }) << false << nothing;
    QTest::newRow("an archive whose table of contents can't be read")
        << Prepare([] { makeFile("a.zip", readFile("a.zip").replace("PK\1\2", "QK\1\2")); })
        << false << nothing;
    QTest::newRow("an archive that can't be read")
        << Prepare([] { chmod("a.zip", 0); }) << false << nothing;
    QTest::newRow("a destination that can't be made")
        << Prepare([] { chmod("out", 0555); }) << false << nothing;
    QTest::newRow("a destination that can't be written to")
        << Prepare([] { makeFolder("out/d", 0555); }) << false << QStringList{"d/"};
    QTest::newRow("a file in the destination's place")
        << Prepare([] { makeFile("out/d", "old"); }) << false << QStringList{"d = old"};
    QTest::newRow("a folder that can't be written to")
        << Prepare([] { makeFolder("out/d/f", 0555); }) << false
        << QStringList{"d/", "d/a = 1", "d/f/", "d/z = 4"};
    QTest::newRow("a file in a folder's place")
        << Prepare([] { makeFile("out/d/f", "old"); }) << false
        << QStringList{"d/", "d/a = 1", "d/f = old", "d/z = 4"};
    QTest::newRow("a folder in a file's place")
        << Prepare([] { makeFolder("out/d/f/x"); }) << false
        << QStringList{"d/", "d/a = 1", "d/f/", "d/f/x/", "d/f/y = 3", "d/z = 4"};
    QTest::newRow("a file that can't be written to")
        << Prepare([] { makeFile("out/d/f/x", "old", 0444); }) << false
        << QStringList{"d/", "d/a = 1", "d/f/", "d/f/x = old", "d/f/y = 3", "d/z = 4"};
    QTest::newRow("a file that is replaced")
        << Prepare([] { makeFile("out/d/f/x", "something longer"); }) << true
        << QStringList{"d/", "d/a = 1", "d/f/", "d/f/x = 2", "d/f/y = 3", "d/z = 4"};
    QTest::newRow("a file in a folder that can't be written to is replaced as well") << Prepare([] {
        makeFile("out/d/f/x", "something longer");
        makeFile("out/d/f/y", "something longer");
        chmod("out/d/f", 0555);
    }) << true << QStringList{"d/", "d/a = 1", "d/f/", "d/f/x = 2", "d/f/y = 3", "d/z = 4"};
}

void tst_Archives::whatCantBeOpened()
{
    QFETCH(const Prepare, prepare);
    QFETCH(const bool, extracted);
    QFETCH(const QStringList, contents);

    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.add("a", "1");
    archive.add("f/x", "2");
    archive.add("f/y", "3");
    archive.add("z", "4");
    QVERIFY(archive.write("a.zip"));
    prepare();
    const bool result = extract();
    chmod("out", 0755);
    QCOMPARE(result, extracted);
    QCOMPARE(out(), contents);
}

void tst_Archives::aMissingDestinationIsMade_data()
{
    QTest::addColumn<QString>("destination");
    QTest::newRow("one folder") << "out/d";
    QTest::newRow("folders below each other") << "out/d/e/f";
    QTest::newRow("with a slash at its end") << "out/d/";
    QTest::newRow("beyond ASCII") << u8"out/文字 \U0001F4F7";
    QTest::newRow("absolute") << "/absolute";
    QTest::newRow("with points") << "out/d/../e";
}

void tst_Archives::aMissingDestinationIsMade()
{
    QFETCH(QString, destination);

    const Sandbox sandbox;
    if (destination.startsWith('/'))
        destination.prepend(QDir::currentPath());
    ArchiveWriter archive;
    archive.add("f/x", "text");
    QVERIFY(archive.write("a.zip"));
    QVERIFY(extract("a.zip", destination));
    QCOMPARE(readFile(QDir::cleanPath(destination) + "/f/x"), QByteArray("text"));
}

void tst_Archives::aRelativeDestination()
{
    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.add("x", "text");
    QVERIFY(archive.write("out/a.zip"));
    makeFolder("out/e");
    const CurrentFolder elsewhere("out/e");
    QVERIFY(extract("../a.zip", "../f"));
    QCOMPARE(readFile("../f/x"), QByteArray("text"));
    QVERIFY(extract("../a.zip", "."));
    QCOMPARE(readFile("x"), QByteArray("text"));
}

void tst_Archives::emptyPaths()
{
    const Sandbox sandbox;
    QVERIFY(!extract(QString(), "out/d"));
    QCOMPARE(out(), QStringList());
}

void tst_Archives::namesBeyondTheFirstPlane()
{
    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.add("\xf0\x9f\x93\xb7", "text");
    QVERIFY(archive.write("\xf0\x9f\x93\xb7.zip"));
    QVERIFY(DecompressFiles(L"\U0001F4F7.zip", L"out/\U0001F5BC"));
    QCOMPARE(readFile("out/\xf0\x9f\x96\xbc/\xf0\x9f\x93\xb7"), QByteArray("text"));
}

void tst_Archives::aFullDiskFails_data()
{
    QTest::addColumn<Pack>("pack");
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<QStringList>("contents");

    const Prepare nothing([] {});
    QTest::newRow("one byte too many, stored") << Pack([](ArchiveWriter& a) {
        a.add("a", noise(100000), 0, Stored);
        a.add("x", noise(100001), 0, Stored);
        a.add("b", "2");
    }) << nothing << QStringList{"d/", "d/a = 100000 bytes", "d/b = 2"};
    QTest::newRow("far too many bytes, deflated") << Pack([](ArchiveWriter& a) {
        a.add("f/x", noise(500000));
        a.add("b", "2");
    }) << nothing << QStringList{"d/", "d/b = 2", "d/f/"};
    QTest::newRow("no room for the first byte") << Pack([](ArchiveWriter& a) {
        a.add("x", "1");
        a.add("b", "2");
    }) << Prepare([] {
        makeFolder("out/d");
        makeLink("/dev/full", "out/d/x");
    }) << QStringList{"d/", "d/b = 2"};
}

void tst_Archives::aFullDiskFails()
{
    QFETCH(const Pack, pack);
    QFETCH(const Prepare, prepare);
    QFETCH(const QStringList, contents);

    const Sandbox sandbox;
    ArchiveWriter archive;
    pack(archive);
    QVERIFY(archive.write("a.zip"));
    prepare();
    bool extracted = true;
    {
        const FileSizeLimit limit(100000);
        extracted = extract();
    }
    QVERIFY(!extracted);
    QCOMPARE(out(), contents);
}

void tst_Archives::theFunctionHasItsPlainName()
{
    using Function = bool (*)(const std::wstring&, const std::wstring&);
    const auto function = reinterpret_cast<Function>(dlsym(RTLD_DEFAULT, "DecompressFiles"));
    QVERIFY(function);
    QVERIFY(function == &::DecompressFiles);

    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.add("x", "text");
    QVERIFY(archive.write("a.zip"));
    QVERIFY(function(L"a.zip", L"out/d"));
    QCOMPARE(out(), (QStringList{"d/", "d/x = text"}));
}

void tst_Archives::seventyThousandEntries()
{
    // Of each name the last one stays, which alone has a content.
    const Sandbox sandbox;
    pythonZip("  import warnings\n"
              "  warnings.simplefilter('ignore')\n"
              "  for i in range(70000):\n"
              "    z.writestr('%d/%d' % (i % 70, i % 7000), str(i) if i >= 63000 else '')");
    QVERIFY(extract());
    int files = 0;
    for (int i = 0; i < 7000; ++i) {
        const QByteArray content = readFile(QStringLiteral("out/d/%1/%2").arg(i % 70).arg(i));
        files += content == QByteArray::number(63000 + i) ? 1 : 0;
    }
    QCOMPARE(files, 7000);
}

void tst_Archives::aboveFourGibibytes()
{
    const Sandbox sandbox;
    QVERIFY(std::filesystem::space(".").available > Q_UINT64_C(6) << 30);

    ArchiveWriter small;
    small.addZeros("x", 1);
    QVERIFY(small.write("a.zip"));
    const qint64 usual = peakMemoryOf({"--extract", "a.zip", "out/d"});
    QVERIFY(usual > 0);
    QCOMPARE(QFileInfo("out/d/x").size(), Q_INT64_C(67108864));

    ArchiveWriter large;
    large.addZeros("x", 66);
    large.add("y", "text");
    QVERIFY(large.write("a.zip"));
    const qint64 peak = peakMemoryOf({"--extract", "a.zip", "out/d"});
    const QStringList contents = out();
    QFile::remove("out/d/x");
    QCOMPARE(contents, (QStringList{"d/", "d/x = 4429185024 bytes", "d/y = text"}));
    QVERIFY2(peak > 0 && peak < usual + 20000, QByteArray::number(peak - usual) + " KiB");
}

/// Nobody ever writes to it.
void tst_Archives::aPipeIsNoArchive()
{
    const Sandbox sandbox;
    QCOMPARE(mkfifo("a.zip", 0644), 0);
    QVERIFY(!extract(QStringLiteral("a.zip"), QStringLiteral("out/a")));
    VEK_NAMESPACE::DecompressFiles(QStringLiteral("a.zip"), QStringLiteral("out/b"));
    const VEK_NAMESPACE::ArchiveResult result =
        VEK_NAMESPACE::ExtractArchive(QStringLiteral("a.zip"), QStringLiteral("out/c"));
    QVERIFY(!result);
}

void tst_Archives::severalThreads()
{
    const Sandbox sandbox;
    std::unique_ptr<QThread> threads[4];
    bool extracted[4] = {};
    for (int i = 0; i < 4; ++i) {
        ArchiveWriter archive;
        for (int j = 0; j < 100; ++j)
            archive.add(QByteArray::number(j), QByteArray::number(1000 * i + j));
        QVERIFY(archive.write(QStringLiteral("%1.zip").arg(i)));
        threads[i].reset(QThread::create([i, &extracted] {
            extracted[i] =
                extract(QStringLiteral("%1.zip").arg(i), QStringLiteral("out/%1").arg(i));
        }));
    }
    for (const auto& thread : threads)
        thread->start();
    for (const auto& thread : threads)
        QVERIFY(thread->wait(60000));
    for (int i = 0; i < 4; ++i) {
        QVERIFY(extracted[i]);
        for (int j = 0; j < 100; ++j)
            QCOMPARE(readFile(QStringLiteral("out/%1/%2").arg(i).arg(j)),
                     QByteArray::number(1000 * i + j));
    }
}

void tst_Archives::damagedData()
{
    // One bit in the data of one of three stored files: this one goes, the others stay.
    std::mt19937 random(3211);
    for (int i = 0; i < 300; ++i) {
        ArchiveWriter archive;
        const quint32 damaged = random() % 3;
        for (quint32 j = 0; j < 3; ++j) {
            Entry& entry = archive.add(QByteArray::number(j), noise(5000, j), 0100644,
                                       random() % 2 ? Stored : Deflated);
            if (j == damaged && entry.method == ArchiveWriter::Stored) {
                char& byte = entry.packed.data()[random() % 5000];
                byte = char(byte ^ (1 << random() % 8));
            } else if (j == damaged) {
                entry.checkSum ^= 1U << random() % 32;
            }
        }
        const Sandbox sandbox;
        QVERIFY(archive.write("a.zip"));
        QVERIFY(!extract());
        for (quint32 j = 0; j < 3; ++j) {
            const QString path = QStringLiteral("out/d/%1").arg(j);
            if (j == damaged)
                QVERIFY(!QFile::exists(path));
            else
                QVERIFY(readFile(path) == noise(5000, j));
        }
    }
}

void tst_Archives::truncatedArchives()
{
    ArchiveWriter archive;
    archive.add("one", "1");
    archive.add("folder/two", noise(500));
    archive.add("three", {});
    const QByteArray bytes = archive.bytes();
    for (int size = 0; size < bytes.size(); ++size) {
        const Sandbox sandbox;
        QVERIFY(writeFile("a.zip", bytes.left(size)));
        const bool extracted = extract();
        // The very last fields may be of no importance.
        QVERIFY(!extracted || size >= bytes.size() - 4);
        if (size < bytes.size() - 4)
            QCOMPARE(out(), QStringList());
        if (extracted) {
            QCOMPARE(out(),
                     (QStringList{"d/", "d/folder/", "d/folder/two = 500 bytes", "d/one = 1",
                                  "d/three = "}));
            QVERIFY(readFile("out/d/folder/two") == noise(500));
        }
    }
}

void tst_Archives::damagedVariants()
{
    // First characters from which no single bit leads to a slash or a point.
    ArchiveWriter small;
    small.add("first", "1", 0100644);
    small.add("folder/second", QByteArray("twenty-two ").repeated(200), 0100644);
    small.addLink("third", "folder/second");
    small.add("gamma", noise(500), 0100644, Stored);
    ArchiveWriter large;
    for (int i = 0; i < 10; ++i)
        large.add("file" + QByteArray::number(i), noise(3000 * i, quint32(i)), 0100755);
    const QByteArray archives[] = {small.bytes(), large.bytes()};

    QSet<QByteArray> good{"1", QByteArray("twenty-two ").repeated(200), "folder/second",
                          noise(500)};
    for (int i = 0; i < 10; ++i)
        good.insert(noise(3000 * i, quint32(i)));

    std::mt19937 random(32211);
    int failures = 0;
    for (int i = 0; i < 1000; ++i) {
        const Sandbox sandbox;
        QByteArray bytes = archives[i % 2];
        const int size = bytes.size();
        const int at = i % 4 < 2 ? size - 1 - int(random() % 500) : int(random() % quint32(size));
        bytes[at] = char(bytes[at] ^ (1 << random() % 8));
        QVERIFY(writeFile("a.zip", bytes));
        const bool extracted = extract();
        failures += extracted ? 0 : 1;

        const QByteArray title = "variant " + QByteArray::number(i);
        QCOMPARE(QDir("out").entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System),
                 QDir("out/d").exists() ? QStringList{"d"} : QStringList());
        QDirIterator it("out/d", QDir::Files | QDir::Hidden | QDir::System,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            QFile::setPermissions(path, QFile::ReadOwner);
            QVERIFY2(good.contains(readFile(path)), title + ": " + path.toUtf8());
        }
    }
    QVERIFY(failures > 300);
    QVERIFY(failures < 1000);
}

void tst_Archives::nothingIsLogged()
{
    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.add("f/", {}, 040755);
    archive.add("x", "1").method = 77;
    ++archive.add("y", "2").checkSum;
    QVERIFY(archive.write("a.zip"));
    const MessageCounter messages;
    const bool results[] = {extract("nothing.zip"), extract(), CompressFiles({"nothing"}, "b.zip")};
    extractSilently("nothing.zip");
    extractSilently();
    for (const bool result : results)
        QVERIFY(!result);
    QCOMPARE(messages.count(), 0);
}

void tst_Archives::compressedFilesCanBeReadBack_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("zipPath");
    QTest::addColumn<QByteArray>("listed");

    QTest::newRow("a file") << QStringList{"in/one"} << "b.zip" << QByteArray("one:1\n");
    QTest::newRow("several files, in their order")
        << QStringList{"in/two", "in/one", "in/empty"} << "b.zip"
        << QByteArray("two:22\none:1\nempty:\n");
    QTest::newRow("files of several folders, without the folders")
        << QStringList{"in/one", "in/folder/three"} << "b.zip" << QByteArray("one:1\nthree:333\n");
    QTest::newRow("two files of the same name, of which both are there")
        << QStringList{"in/one", "in/folder/one"} << "b.zip" << QByteArray("one:1\none:one\n");
    QTest::newRow("the same file twice")
        << QStringList{"in/one", "in/one"} << "b.zip" << QByteArray("one:1\none:1\n");
    QTest::newRow("beyond ASCII") << QStringList{u8"in/文字 \U0001F4F7"} << u8"Größe.zip"
                                  << QByteArray(u8"文字 \U0001F4F7:utf\n");
    QTest::newRow("a link, which is packed as it is")
        << QStringList{"in/link"} << "b.zip" << QByteArray("link:one\n");
    QTest::newRow("an archive in new folders")
        << QStringList{"in/one"} << "new/folder/b.zip" << QByteArray("one:1\n");
    QTest::newRow("no files") << QStringList() << "b.zip" << QByteArray();
}

void tst_Archives::compressedFilesCanBeReadBack()
{
    QFETCH(const QStringList, files);
    QFETCH(const QString, zipPath);
    QFETCH(const QByteArray, listed);

    const Sandbox sandbox;
    makeFile("in/one", "1", 0640);
    makeFile("in/two", "22");
    makeFile("in/empty", {});
    makeFile("in/folder/three", "333");
    makeFile("in/folder/one", "one");
    makeFile(u8"in/文字 \U0001F4F7", "utf");
    makeLink("one", "in/link");
    QVERIFY(CompressFiles(files, zipPath));

    QVERIFY(QFile::rename(zipPath, "a.zip"));
    const Outcome outcome = python("  assert z.testzip() is None\n"
                                   "  for i in z.infolist():\n"
                                   "    name = i.orig_filename\n"
                                   "    if not i.flag_bits & 0x800:\n"
                                   "      name = name.encode('cp437').decode()\n"
                                   "    print(name, z.read(i).decode(), sep=':')",
                                   'r');
    QCOMPARE(outcome.output, listed);
    QCOMPARE(outcome.exitCode, 0);
    // An archive without entries is nothing to unzip.
    QCOMPARE(run("unzip", {"-t", "a.zip"}).exitCode, files.isEmpty() ? 1 : 0);
    QCOMPARE(extract(), !files.isEmpty());
    if (files == QStringList("in/one"))
        QCOMPARE(modeOf("out/d/one"), 0640);
}

void tst_Archives::compressingFails_data()
{
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QString>("zipPath");

    QTest::newRow("a missing file") << QStringList{"in/nothing"} << "b.zip";
    QTest::newRow("a missing file among others")
        << QStringList{"in/one", "in/nothing", "in/two"} << "b.zip";
    QTest::newRow("an empty name") << QStringList{QString()} << "b.zip";
    QTest::newRow("a file that can't be read") << QStringList{"in/one", "in/private"} << "b.zip";
    QTest::newRow("a file in the place of the archive's folder")
        << QStringList{"in/one"} << "in/two/b.zip";
    QTest::newRow("a folder in the archive's place") << QStringList{"in/one"} << "folder.zip";
}

void tst_Archives::compressingFails()
{
    QFETCH(const QStringList, files);
    QFETCH(const QString, zipPath);

    const Sandbox sandbox;
    makeFile("in/one", "1");
    makeFile("in/two", "2");
    makeFile("in/private", "3", 0);
    makeFolder("folder.zip");
    QVERIFY(!CompressFiles(files, zipPath));
    QCOMPARE(QDir().entryList({"*.zip"}), QStringList{"folder.zip"});
    QCOMPARE(readFile("in/two"), QByteArray("2"));
}

void tst_Archives::anArchiveIsReplaced()
{
    const Sandbox sandbox;
    makeFile("in/one", "1");
    makeFile("a.zip", noise(5000));
    QVERIFY(CompressFiles({"in/one"}, "a.zip"));
    QVERIFY(QFileInfo("a.zip").size() < 1000);
    QVERIFY(extract());
    QCOMPARE(out(), (QStringList{"d/", "d/one = 1"}));
}

void tst_Archives::silentlyExtracted_data()
{
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<QString>("destination");
    QTest::addColumn<QStringList>("contents");

    const auto archive = [](const Pack& pack) {
        return Prepare([pack] {
            ArchiveWriter a;
            pack(a);
            if (!a.write("a.zip"))
                qFatal("can't write the archive");
        });
    };
    const Prepare files = archive([](ArchiveWriter& a) {
        a.add("f/", {}, 040755);
        a.add("f/x", "1", 0100644);
        a.add("y", "2", 0100644);
    });
    QTest::newRow("a new destination")
        << files << "out/d" << QStringList{"d/", "d/f/", "d/f/x = 1", "d/y = 2"};
    QTest::newRow("a new relative destination")
        << files << "out/d" << QStringList{"d/", "d/f/", "d/f/x = 1", "d/y = 2"};
    QTest::newRow("a destination in new folders")
        << files << "out/d/e" << QStringList{"d/", "d/e/", "d/e/f/", "d/e/f/x = 1", "d/e/y = 2"};
    QTest::newRow("a destination that is there") << Prepare([files] {
        files();
        makeFile("out/d/y", "something longer");
        makeFile("out/d/z", "old");
    }) << "out/d" << QStringList{"d/", "d/f/", "d/f/x = 1", "d/y = 2", "d/z = old"};
    QTest::newRow("beyond ASCII") << archive([](ArchiveWriter& a) {
        a.add(u8"文字 \U0001F4F7", "1", 0100644);
    }) << u8"out/Größe" << QStringList{u8"Größe/", u8"Größe/文字 \U0001F4F7 = 1"};
    QTest::newRow("entries that lead out are left out") << archive([](ArchiveWriter& a) {
        a.add("../x", "1", 0100644);
        a.add("f/../../y", "2", 0100644);
        a.add("z", "3", 0100644);
    }) << "out/d" << QStringList{"d/", "d/z = 3"};
    QTest::newRow("the product's own") << Prepare([] {
        makeFile("in/one", "1");
        makeFile("in/folder/two", "2");
        if (!CompressFiles({"in/one", "in/folder/two"}, "a.zip"))
            qFatal("can't write the archive");
    }) << "out/d" << QStringList{"d/", "d/one = 1", "d/two = 2"};
}

void tst_Archives::silentlyExtracted()
{
    QFETCH(const Prepare, prepare);
    QFETCH(const QString, destination);
    QFETCH(const QStringList, contents);
    const bool relative = QTest::currentDataTag() == QByteArray("a new relative destination");

    const Sandbox sandbox;
    prepare();
    extractSilently("a.zip", relative ? destination : QDir().absoluteFilePath(destination));
    QCOMPARE(out(), contents);
}

void tst_Archives::silentlyNothing_data()
{
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<QStringList>("contents");

    QTest::newRow("no archive, but the destination is made")
        << Prepare([] { QFile::remove("a.zip"); }) << QStringList{"d/"};
    QTest::newRow("no archive at all, but the destination is made")
        << Prepare([] { makeFile("a.zip", "text"); }) << QStringList{"d/"};
    QTest::newRow("a file in the destination's place")
        << Prepare([] { makeFile("out/d", "old"); }) << QStringList{"d = old"};
    QTest::newRow("a destination that can't be made")
        << Prepare([] { chmod("out", 0555); }) << QStringList();
    QTest::newRow("a destination that can't be written to")
        << Prepare([] { makeFolder("out/d", 0555); }) << QStringList{"d/"};
    QTest::newRow("a damaged file, on account of which the others go as well") << Prepare([] {
        ArchiveWriter archive;
        archive.add("x", "1", 0100644);
        ++archive.add("y", "2", 0100644).checkSum;
        archive.write("a.zip");
    }) << QStringList{"d/"};
    QTest::newRow("a bzip2 stream that is cut off, on account of which the others go as well")
        << Prepare([] {
               ArchiveWriter archive;
               archive.add("x", "1", 0100644);
               ArchiveWriter::packWithBzip2(archive.add("y", {}, 0100644), 20);
               archive.write("a.zip");
           })
        << QStringList{"d/"};
}

void tst_Archives::silentlyNothing()
{
    QFETCH(const Prepare, prepare);
    QFETCH(const QStringList, contents);

    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.add("x", "1", 0100644);
    QVERIFY(archive.write("a.zip"));
    prepare();
    extractSilently("a.zip", QDir().absoluteFilePath("out/d"));
    chmod("out", 0755);
    QCOMPARE(out(), contents);
}

int main(int argc, char* argv[])
{
    umask(022);
    if (!takeOrdinaryFileRights())
        return 1;
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.value(1) == QLatin1String("--extract")) {
        const bool extracted = extract(arguments.value(2), arguments.value(3));
        printPeakMemory();
        return extracted ? 0 : 1;
    }

    tst_Archives test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_Archives.moc"
