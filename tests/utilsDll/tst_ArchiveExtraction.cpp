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
#include <QTemporaryDir>
#include <QThread>
#include <QtTest>

#include <filesystem>
#include <functional>
#include <random>
#include <sys/stat.h>
#include <unistd.h>

using VEK_NAMESPACE::ArchiveError;
using VEK_NAMESPACE::ArchiveLimits;
using VEK_NAMESPACE::ArchiveProgress;
using VEK_NAMESPACE::ArchiveProgressHandler;
using VEK_NAMESPACE::ArchiveResult;
using VEK_NAMESPACE::ExtractArchive;

using Entry = ArchiveWriter::Entry;
using Pack = std::function<void(ArchiveWriter& archive)>;
using Prepare = std::function<void()>;

Q_DECLARE_METATYPE(ArchiveError)
Q_DECLARE_METATYPE(ArchiveLimits)
Q_DECLARE_METATYPE(Pack)
Q_DECLARE_METATYPE(Prepare)

namespace QTest {

template <>
char* toString(const ArchiveError& error)
{
    static const char* const names[] = {"None",        "NotAnArchive",     "UnsafeName",
                                        "UnsafeLink",  "UnsupportedEntry", "TooManyEntries",
                                        "TooLarge",    "TooCompressed",    "Damaged",
                                        "WriteFailed", "Stopped"};
    return qstrdup(names[int(error)]);
}

} // namespace QTest

namespace {

constexpr auto Stored = ArchiveWriter::Stored;
constexpr auto Deflated = ArchiveWriter::Deflated;

/// An empty current folder. Archives go into "in", and "out/d" is the destination: what leaves it
/// shows in "out".
class Sandbox
{
public:
    Sandbox() { QDir().mkpath(QStringLiteral("in")), QDir().mkpath(QStringLiteral("out")); }
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
    const QTemporaryDir m_folder;
    const CurrentFolder m_current{m_folder.path()};
};

const QString zipPath = QStringLiteral("in/a.zip");
const QString destination = QStringLiteral("out/d");

QStringList out()
{
    return contentsOf(QStringLiteral("out"));
}

QString nameOf(const QByteArray& name)
{
    return QString::fromUtf8(name);
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

void makeFile(const char* path, const QByteArray& contents, mode_t mode = 0644)
{
    if (!writeFile(QString::fromUtf8(path), contents) || chmod(path, mode) != 0)
        qFatal("can't write %s", path);
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

/// Extracts in a process of its own, and tells the peak of its memory in KiB; -1 if it crashed.
qint64 peakOfExtraction(const QString& ratio = QStringLiteral("200"))
{
    return peakMemoryOf({QStringLiteral("--extract"), zipPath, destination, ratio});
}

int extractAndPrintPeak(const QStringList& arguments)
{
    ArchiveLimits limits;
    limits.compressionRatio = arguments.value(4).toULongLong();
    const ArchiveResult result = ExtractArchive(arguments.value(2), arguments.value(3), limits);
    printPeakMemory();
    return int(result.error);
}

} // namespace

class tst_ArchiveExtraction : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void goodArchivesAreExtracted_data();
    void goodArchivesAreExtracted();
    void permissionsAreApplied_data();
    void permissionsAreApplied();
    void unsafeNamesAreRefused_data();
    void unsafeNamesAreRefused();
    void noNameLeadsOut();
    void searchPathsOfTheHostMeanNothing_data();
    void searchPathsOfTheHostMeanNothing();
    void linksAreMade_data();
    void linksAreMade();
    void unsafeLinksAreRefused_data();
    void unsafeLinksAreRefused();
    void noLinkLeadsOut();
    void linksThatAreThereAlreadyLeadNowhere_data();
    void linksThatAreThereAlreadyLeadNowhere();
    void aFolderBehindALinkKeepsItsPermissions();
    void theDestinationMayBeALink();
    void aLinkBelowALinkOfTheArchiveIsRefused();
    void nothingMayLieBelowALinkOfTheArchive_data();
    void nothingMayLieBelowALinkOfTheArchive();
    void unsupportedEntriesAreRefused_data();
    void unsupportedEntriesAreRefused();
    void limitsHold_data();
    void limitsHold();
    void aLongNameTakesNoMemory();
    void damageIsFound_data();
    void damageIsFound();
    void damageOfTheTableOfContentsLeavesNoTrace();
    void whatIsNoArchiveIsRefused_data();
    void whatIsNoArchiveIsRefused();
    void whatIsThereIsReplaced_data();
    void whatIsThereIsReplaced();
    void writesFail_data();
    void writesFail();
    void progressIsTold();
    void progressIsToldInTheCallersThread();
    void progressOfALargeFileComesInSmallSteps();
    void everyCallCanStopIt();
    void aRelativeDestinationIsTheSameAllTheTime();
    void seventyThousandEntries();
    void sixteenBitsOfEntries_data();
    void sixteenBitsOfEntries();
    void aboveFourGibibytes();
    void damagedVariants();
};

void tst_ArchiveExtraction::goodArchivesAreExtracted_data()
{
    QTest::addColumn<Pack>("pack");
    QTest::addColumn<quint64>("extracted");
    QTest::addColumn<QStringList>("contents");

    QTest::newRow("a deflated file") << Pack([](ArchiveWriter& a) { a.add("x", "text"); })
                                     << Q_UINT64_C(1) << QStringList{"d/", "d/x = text"};
    QTest::newRow("a stored file") << Pack([](ArchiveWriter& a) { a.add("x", "text", 0, Stored); })
                                   << Q_UINT64_C(1) << QStringList{"d/", "d/x = text"};
    QTest::newRow("a file packed with bzip2") << Pack([](ArchiveWriter& a) {
        Entry& entry = a.add("x", QByteArray(10, 'a'));
        entry.method = 12;
        entry.packed = QByteArray::fromHex("425a68393141592653595978d18b000002410001002000"
                                           "20002100820b1772453850905978d18b");
        entry.packedSize = quint64(entry.packed.size());
    }) << Q_UINT64_C(1) << QStringList{"d/", "d/x = aaaaaaaaaa"};
    QTest::newRow("empty files") << Pack([](ArchiveWriter& a) {
        a.add("x", {}, 0, Stored);
        a.add("y", {});
    }) << Q_UINT64_C(2) << QStringList{"d/", "d/x = ", "d/y = "};
    QTest::newRow("a large file") << Pack([](ArchiveWriter& a) { a.add("x", noise(200000)); })
                                  << Q_UINT64_C(1) << QStringList{"d/", "d/x = 200000 bytes"};
    QTest::newRow("a folder") << Pack([](ArchiveWriter& a) { a.add("f/", {}, 040755); })
                              << Q_UINT64_C(1) << QStringList{"d/", "d/f/"};
    QTest::newRow("a folder that comes after its file") << Pack([](ArchiveWriter& a) {
        a.add("f/x", "text");
        a.add("f/", {}, 040755);
    }) << Q_UINT64_C(2) << QStringList{"d/", "d/f/", "d/f/x = text"};
    QTest::newRow("folders that no entry is about")
        << Pack([](ArchiveWriter& a) { a.add("f/g/x", "text"); }) << Q_UINT64_C(1)
        << QStringList{"d/", "d/f/", "d/f/g/", "d/f/g/x = text"};
    QTest::newRow("the destination itself") << Pack([](ArchiveWriter& a) {
        a.add("./", {}, 040755);
        a.add("./x", "text");
    }) << Q_UINT64_C(2) << QStringList{"d/", "d/x = text"};
    QTest::newRow("a folder entry with data, which is of no use")
        << Pack([](ArchiveWriter& a) { a.add("f/", "text", 040755); }) << Q_UINT64_C(1)
        << QStringList{"d/", "d/f/"};
    QTest::newRow("a superfluous point and a doubled slash") << Pack([](ArchiveWriter& a) {
        a.add("f/./x", "1");
        a.add("f//y", "2");
        a.add(".//z", "3");
    }) << Q_UINT64_C(3) << QStringList{"d/", "d/f/", "d/f/x = 1", "d/f/y = 2", "d/z = 3"};
    QTest::newRow("points that are part of a name") << Pack([](ArchiveWriter& a) {
        a.add("...", "1");
        a.add("..x", "2");
        a.add("x..", "3");
        a.add(".x", "4");
    }) << Q_UINT64_C(4) << QStringList{"d/", "d/... = 1", "d/..x = 2", "d/.x = 4", "d/x.. = 3"};
    QTest::newRow("a backslash within a name")
        << Pack([](ArchiveWriter& a) { a.add("f\\x", "text"); }) << Q_UINT64_C(1)
        << QStringList{"d/", "d/f\\x = text"};
    QTest::newRow("names that mean something elsewhere") << Pack([](ArchiveWriter& a) {
        a.add(":x", "1");
        a.add(":/y", "2");
        a.add("C:/z", "3");
        a.add("~/z", "4");
        a.add("$HOME", "5");
        a.add("file:/z", "6");
        a.add("*", "7");
        a.add("-rf", "8");
        a.add(" ", "9");
    }) << Q_UINT64_C(9) << QStringList{"d/",        "d/  = 9",    "d/$HOME = 5", "d/* = 7",
                                       "d/-rf = 8", "d/:/",       "d/:/y = 2",   "d/:x = 1",
                                       "d/C:/",     "d/C:/z = 3", "d/file:/",    "d/file:/z = 6",
                                       "d/~/",      "d/~/z = 4"};
    QTest::newRow("names beyond ASCII, marked as UTF-8")
        << Pack([](ArchiveWriter& a) { a.add(u8"Über/文字/\U0001F4F7.txt", "text"); })
        << Q_UINT64_C(1)
        << QStringList{"d/", u8"d/Über/", u8"d/Über/文字/", u8"d/Über/文字/\U0001F4F7.txt = text"};
    QTest::newRow("names beyond ASCII that are not marked")
        << Pack([](ArchiveWriter& a) { a.add(u8"Über.txt", "text").flags = 0; }) << Q_UINT64_C(1)
        << QStringList{"d/", u8"d/Über.txt = text"};
    QTest::newRow("the same name twice, of which the second stays") << Pack([](ArchiveWriter& a) {
        a.add("x", "first");
        a.add("x", "second");
    }) << Q_UINT64_C(2) << QStringList{"d/", "d/x = second"};
    QTest::newRow("a name that a null character ends")
        << Pack([](ArchiveWriter& a) { a.add(QByteArray("x\0/../../y", 10), "text"); })
        << Q_UINT64_C(1) << QStringList{"d/", "d/x = text"};
    QTest::newRow("something in front of the archive")
        << Pack() << Q_UINT64_C(1) << QStringList{"d/", "d/x = text"};
}

void tst_ArchiveExtraction::goodArchivesAreExtracted()
{
    QFETCH(const Pack, pack);
    QFETCH(const quint64, extracted);
    QFETCH(const QStringList, contents);

    const Sandbox sandbox;
    ArchiveWriter archive;
    if (pack) {
        pack(archive);
        QVERIFY(archive.write(zipPath));
    } else {
        archive.add("x", "text");
        QVERIFY(writeFile(zipPath, "#!/bin/sh\n" + archive.bytes()));
    }
    const ArchiveResult result = ExtractArchive(zipPath, destination);
    QVERIFY2(result, qPrintable(result.entry + ": " + result.reason));
    QCOMPARE(result.error, ArchiveError::None);
    QCOMPARE(result.entry, QString());
    QCOMPARE(result.reason, QString());
    QCOMPARE(result.extractedEntries, extracted);
    QCOMPARE(out(), contents);
    if (contents.contains("d/x = 200000 bytes"))
        QCOMPARE(readFile("out/d/x") == noise(200000), true);
}

void tst_ArchiveExtraction::permissionsAreApplied_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<quint32>("stored");
    QTest::addColumn<int>("mode");

    const auto row = [](const char* title, const char* name, quint32 stored, int mode) {
        QTest::newRow(title) << QByteArray(name) << stored << mode;
    };
    row("an executable file", "x", 0100755, 0755);
    row("a private file", "x", 0100600, 0600);
    row("a file that everybody may use", "x", 0100777, 0777);
    row("a file that nobody may write to can be written to by its owner", "x", 0100444, 0644);
    row("a file that is shut for its owner can be used by its owner", "x", 0100055, 0655);
    row("permissions without a file type", "x", 0640, 0640);
    row("a file without permissions has those that are usual", "x", 0100000, 0644);
    row("nothing of Unix", "x", 0, 0644);
    row("set-uid is not taken over", "x", 0104755, 0755);
    row("set-gid is not taken over", "x", 0102755, 0755);
    row("the sticky bit is not taken over", "x", 0101755, 0755);
    row("a folder", "x/", 040750, 0750);
    row("a folder that nobody may write to", "x/", 040555, 0755);
    row("a folder that is shut for its owner", "x/", 040077, 0777);
    row("a folder without permissions", "x/", 040000, 0755);
    row("a folder's set-gid and sticky bits", "x/", 043777, 0777);
    row("a folder without the type of one", "x/", 0100750, 0750);
    row("a file with the type of a folder", "x", 040750, 0750);
}

void tst_ArchiveExtraction::permissionsAreApplied()
{
    QFETCH(const QByteArray, name);
    QFETCH(const quint32, stored);
    QFETCH(const int, mode);

    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.add(name, {}, stored);
    if (name.endsWith('/'))
        archive.add(name + "below", "text");
    QVERIFY(archive.write(zipPath));
    const ArchiveResult result = ExtractArchive(zipPath, destination);
    QVERIFY2(result, qPrintable(result.reason));
    QCOMPARE(QByteArray::number(modeOf("out/d/x"), 8), QByteArray::number(mode, 8));
    QCOMPARE(QByteArray::number(modeOf("out/d"), 8), QByteArray("755"));
}

void tst_ArchiveExtraction::unsafeNamesAreRefused_data()
{
    QTest::addColumn<QByteArray>("name");

    for (const char* name :
         {"../x",        "..",    "../",          "f/../../x", "f/..",    "f/../x",  "./../x",
          "f/../",       "/x",    "//x",          "/",         "/../x",   "\\x",     "\\",
          "\\\\host\\x", "..\\x", "f\\..\\..\\x", "f\\..",     "f/..\\x", "f\\../x", ".",
          "./.",         ""}) {
        QTest::newRow(name[0] ? name : "an empty name") << QByteArray(name);
    }
    QTest::newRow("a null character after points") << QByteArray("..\0/x", 5);
    QTest::newRow("a null character at the front") << QByteArray("\0x", 2);
    QTest::newRow("a byte order mark before points") << QByteArray("\xef\xbb\xbf../x");
}

void tst_ArchiveExtraction::unsafeNamesAreRefused()
{
    QFETCH(const QByteArray, name);

    for (const quint32 mode : {0U, 0100644U, 040755U, 0120777U}) {
        const Sandbox sandbox;
        ArchiveWriter archive;
        archive.add("a", "1");
        archive.add(name, "b", mode);
        archive.add("c", "2");
        QVERIFY(archive.write(zipPath));
        const ArchiveResult result = ExtractArchive(zipPath, destination);
        QCOMPARE(result.error, ArchiveError::UnsafeName);
        QVERIFY(!result);
        if (!name.contains('\0') && !name.startsWith('\xef'))
            QCOMPARE(result.entry, nameOf(name));
        QVERIFY(!result.reason.isEmpty());
        QCOMPARE(result.extractedEntries, Q_UINT64_C(0));
        QCOMPARE(out(), QStringList());
    }
}

void tst_ArchiveExtraction::noNameLeadsOut()
{
    // All names of up to four of these characters.
    const char characters[] = {'.', '/', '\\', ':', 'a'};
    const Sandbox sandbox;
    const QStringList rootBefore = QDir::root().entryList(QDir::AllEntries | QDir::Hidden);
    int extracted = 0;
    for (int length = 1, names = 5; length <= 4; ++length, names *= 5) {
        for (int i = 0; i < names; ++i) {
            QByteArray name;
            for (int rest = i; name.size() < length; rest /= 5)
                name += characters[rest % 5];
            ArchiveWriter archive;
            archive.add(name, "text", 0, Stored);
            QVERIFY(archive.write(zipPath));
            extracted += ExtractArchive(zipPath, QStringLiteral("out/f/d")) ? 1 : 0;
            const QStringList contents = out();
            for (const QString& line : contents) {
                QVERIFY2(line == "f/" || line.startsWith("f/d/"),
                         qPrintable(nameOf(name) + " made " + line));
            }
            QDir("out/f").removeRecursively();
        }
    }
    QVERIFY(extracted > 200);
    QCOMPARE(QDir::root().entryList(QDir::AllEntries | QDir::Hidden), rootBefore);
}

void tst_ArchiveExtraction::searchPathsOfTheHostMeanNothing_data()
{
    QTest::addColumn<Pack>("pack");
    QTest::addColumn<QStringList>("contents");

    QTest::newRow("a file that is there")
        << Pack([](ArchiveWriter& a) { a.add("icons:x", "new"); })
        << QStringList{"d/", "d/icons:x = new", "icons/", "icons/x = old"};
    QTest::newRow("a file that is not there")
        << Pack([](ArchiveWriter& a) { a.add("icons:y", "new"); })
        << QStringList{"d/", "d/icons:y = new", "icons/", "icons/x = old"};
    QTest::newRow("a folder") << Pack([](ArchiveWriter& a) { a.add("icons:f/", {}, 040777); })
                              << QStringList{"d/", "d/icons:f/", "icons/", "icons/x = old"};
    QTest::newRow("a link") << Pack([](ArchiveWriter& a) { a.addLink("icons:l", "f"); })
                            << QStringList{"d/", "d/icons:l -> f", "icons/", "icons/x = old"};
    QTest::newRow("a link's target")
        << Pack([](ArchiveWriter& a) { a.addLink("l", "icons:x"); })
        << QStringList{"d/", "d/l -> icons:x", "icons/", "icons/x = old"};
    QTest::newRow("a link's target among the resources")
        << Pack([](ArchiveWriter& a) { a.addLink("l", ":/x"); })
        << QStringList{"d/", "d/l -> :/x", "icons/", "icons/x = old"};
}

void tst_ArchiveExtraction::searchPathsOfTheHostMeanNothing()
{
    QFETCH(const Pack, pack);
    QFETCH(const QStringList, contents);

    const Sandbox sandbox;
    makeFile("out/icons/x", "old");
    QDir::setSearchPaths("icons", {QDir("out/icons").absolutePath()});
    ArchiveWriter archive;
    pack(archive);
    QVERIFY(archive.write(zipPath));
    const ArchiveResult result = ExtractArchive(zipPath, destination);
    QDir::setSearchPaths("icons", {});
    QCOMPARE(out(), contents);
    QVERIFY2(result, qPrintable(result.reason));
}

void tst_ArchiveExtraction::linksAreMade_data()
{
    QTest::addColumn<Pack>("pack");
    QTest::addColumn<quint64>("extracted");
    QTest::addColumn<QStringList>("contents");

    QTest::newRow("to a file") << Pack([](ArchiveWriter& a) {
        a.addLink("l", "x");
        a.add("x", "text");
    }) << Q_UINT64_C(2) << QStringList{"d/", "d/l -> x", "d/x = text"};
    QTest::newRow("to a folder") << Pack([](ArchiveWriter& a) {
        a.addLink("l", "f/");
        a.add("f/", {}, 040755);
    }) << Q_UINT64_C(2) << QStringList{"d/", "d/f/", "d/l -> f/"};
    QTest::newRow("with a deflated target")
        << Pack([](ArchiveWriter& a) { a.add("l", "x", 0120777, Deflated); }) << Q_UINT64_C(1)
        << QStringList{"d/", "d/l -> x"};
    QTest::newRow("without permissions")
        << Pack([](ArchiveWriter& a) { a.add("l", "x", 0120000, Stored); }) << Q_UINT64_C(1)
        << QStringList{"d/", "d/l -> x"};
    QTest::newRow("to nothing") << Pack([](ArchiveWriter& a) { a.addLink("l", "x"); })
                                << Q_UINT64_C(1) << QStringList{"d/", "d/l -> x"};
    QTest::newRow("to itself") << Pack([](ArchiveWriter& a) { a.addLink("l", "l"); })
                               << Q_UINT64_C(1) << QStringList{"d/", "d/l -> l"};
    QTest::newRow("to its own folder") << Pack([](ArchiveWriter& a) { a.addLink("f/l", "."); })
                                       << Q_UINT64_C(1) << QStringList{"d/", "d/f/", "d/f/l -> ."};
    QTest::newRow("up to the destination and no further") << Pack([](ArchiveWriter& a) {
        a.addLink("f/l", "..");
        a.addLink("f/m", "../x");
        a.addLink("f/g/n", ".././../x");
    }) << Q_UINT64_C(3) << QStringList{"d/",          "d/f/",
                                       "d/f/g/",      "d/f/g/n -> .././../x",
                                       "d/f/l -> ..", "d/f/m -> ../x"};
    QTest::newRow("a chain") << Pack([](ArchiveWriter& a) {
        a.addLink("l1", "l2");
        a.addLink("l2", "l3/x");
        a.addLink("l3", "f");
        a.add("f/x", "text");
    }) << Q_UINT64_C(4) << QStringList{"d/",         "d/f/",         "d/f/x = text",
                                       "d/l1 -> l2", "d/l2 -> l3/x", "d/l3 -> f"};
    QTest::newRow("that look at each other") << Pack([](ArchiveWriter& a) {
        a.addLink("l", "m");
        a.addLink("m", "l");
    }) << Q_UINT64_C(2) << QStringList{"d/", "d/l -> m", "d/m -> l"};
    QTest::newRow("beyond ASCII") << Pack([](ArchiveWriter& a) {
        a.addLink(u8"文", u8"Ü\U0001F4F7");
    }) << Q_UINT64_C(1) << QStringList{"d/", u8"d/文 -> Ü\U0001F4F7"};
    QTest::newRow("in the place of a file of the archive") << Pack([](ArchiveWriter& a) {
        a.add("l", "text");
        a.addLink("l", "x");
    }) << Q_UINT64_C(2) << QStringList{"d/", "d/l -> x"};
    QTest::newRow("twice") << Pack([](ArchiveWriter& a) {
        a.addLink("l", "x");
        a.addLink("l", "y");
    }) << Q_UINT64_C(2) << QStringList{"d/", "d/l -> y"};
    QTest::newRow("with points that are part of a name")
        << Pack([](ArchiveWriter& a) { a.addLink("l", "..x/..."); }) << Q_UINT64_C(1)
        << QStringList{"d/", "d/l -> ..x/..."};
}

void tst_ArchiveExtraction::linksAreMade()
{
    QFETCH(const Pack, pack);
    QFETCH(const quint64, extracted);
    QFETCH(const QStringList, contents);

    const Sandbox sandbox;
    ArchiveWriter archive;
    pack(archive);
    QVERIFY(archive.write(zipPath));
    const ArchiveResult result = ExtractArchive(zipPath, destination);
    QVERIFY2(result, qPrintable(result.entry + ": " + result.reason));
    QCOMPARE(result.extractedEntries, extracted);
    QCOMPARE(out(), contents);
}

void tst_ArchiveExtraction::unsafeLinksAreRefused_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::addColumn<QByteArray>("target");

    const auto row = [](const char* title, const QByteArray& name, const QByteArray& target) {
        QTest::newRow(title) << name << target;
    };
    row("absolute", "l", "/x");
    row("absolute, and back into the destination", "l", "/proc/self/cwd/out/d/x");
    row("the root", "l", "/");
    row("two slashes", "l", "//x");
    row("up", "l", "..");
    row("up to a file", "l", "../x");
    row("up by a point", "l", "./../x");
    row("up from a folder", "f/l", "../../x");
    row("up from a folder with a point in its name", "./f/l", "../../x");
    row("up from a folder with a doubled slash in its name", "f//l", "../../x");
    row("up from a file with a backslash in its name", "f\\l", "../x");
    row("up and into the destination again", "l", "../d/x");
    row("down and up", "l", "f/..");
    row("down and up twice", "l", "f/../../x");
    row("down and up within its own folder", "f/l", "g/../x");
    row("up, down and up", "f/g/l", "../h/../x");
    row("empty", "l", "");
    row("with a null character", "l", QByteArray("x\0y", 3));
    row("with a null character before points", "l", QByteArray("x\0/../../y", 10));
    row("longer than any path", "l", QByteArray(4097, 'x'));
    row("of a folder's name", "l/", "x");
}

void tst_ArchiveExtraction::unsafeLinksAreRefused()
{
    QFETCH(const QByteArray, name);
    QFETCH(const QByteArray, target);

    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.add("a", "1");
    archive.addLink(name, target);
    archive.add("c", "2");
    QVERIFY(archive.write(zipPath));
    const ArchiveResult result = ExtractArchive(zipPath, destination);
    QCOMPARE(result.error, ArchiveError::UnsafeLink);
    QCOMPARE(result.entry, nameOf(name));
    QVERIFY(!result.reason.isEmpty());
    QCOMPARE(result.extractedEntries, Q_UINT64_C(0));
    QCOMPARE(out(), QStringList());
}

void tst_ArchiveExtraction::noLinkLeadsOut()
{
    // Links below links, files below links, and all in any order.
    namespace fs = std::filesystem;
    const char* const names[] = {"a", "b", "a/a", "a/b", "b/a", "a/b/a", "a/b/a/b", "b/a/b/a/a"};
    const char* const ends[] = {"", "a", "b", "a/b", "b/a"};
    const Sandbox sandbox;
    std::mt19937 random(20261121);
    const auto any = [&random](const auto& of) { return of[random() % std::size(of)]; };
    int links = 0;
    for (int i = 0; i < 2400; ++i) {
        ArchiveWriter archive;
        QByteArray what;
        for (int j = 0; j < 5; ++j) {
            const QByteArray name = any(names);
            if (random() % 4 == 0) {
                archive.add(name, "text", 0100644, Stored);
                what += name + ", ";
            } else {
                // Mostly no further up than to the destination, as far as the name tells.
                const quint32 up =
                    random() % quint32(name.count('/') + 1) + (random() % 50 ? 0 : 1);
                QByteArray target = QByteArray("../").repeated(int(up)) + any(ends);
                if (target.isEmpty())
                    target = ".";
                archive.addLink(name, target);
                what += name + " -> " + target + ", ";
            }
        }
        QVERIFY(archive.write(zipPath));
        makeFolder("out/1/2/3/4");
        ExtractArchive(zipPath, QStringLiteral("out/1/2/3/4/d"));
        const fs::path inside = fs::current_path() / "out/1/2/3/4/d";
        for (const auto& file : fs::recursive_directory_iterator("out")) {
            const std::string path = fs::absolute(file.path()).string();
            if (inside.string().compare(0, path.size(), path) == 0)
                continue;
            QVERIFY2(path.rfind(inside.string(), 0) == 0, (what + path.c_str()).constData());
            if (!file.is_symlink())
                continue;
            ++links;
            std::error_code circle;
            const fs::path end = fs::weakly_canonical(path, circle);
            QVERIFY2(circle || end.string().rfind(inside.string(), 0) == 0,
                     (what + path.c_str() + " is " + end.c_str()).constData());
        }
        QVERIFY(fs::remove_all("out/1") > 0);
    }
    QVERIFY2(links > 300, QByteArray::number(links).constData());
}

void tst_ArchiveExtraction::linksThatAreThereAlreadyLeadNowhere_data()
{
    QTest::addColumn<Pack>("pack");
    QTest::addColumn<ArchiveError>("error");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<QStringList>("contents");

    // "d/f" is a link to the folder "o" outside, "d/l" one to the file "o/x", "d/n" to nothing,
    // and "d/i" one to a folder within.
    const QStringList before{"d/",       "d/f -> ../o",   "d/g/",
                             "d/i -> g", "d/l -> ../o/x", "d/n -> ../o/n",
                             "o/",       "o/x = old"};
    const auto changed = [before](const char* from, const char* to) {
        QStringList contents = before;
        contents.replace(contents.indexOf(from), to);
        contents.sort();
        return contents;
    };

    const auto refused = [&before](const char* title, const QByteArray& name, quint32 mode) {
        QTest::newRow(title) << Pack([name, mode](ArchiveWriter& a) {
            a.add("a", "1");
            a.add(name, "x", mode, Stored);
        }) << ArchiveError::UnsafeName
                             << nameOf(name) << before;
    };
    refused("a file below one", "f/y", 0);
    refused("a file that is there, below one", "f/x", 0);
    refused("a file in a folder below one", "f/g/y", 0);
    refused("a folder below one", "f/g/", 040755);
    refused("a link below one", "f/y", 0120777);
    refused("a file below one within", "i/y", 0);
    refused("a file below one by a detour", "./f//y", 0);
    refused("a file below one to a file", "l/y", 0);
    refused("a file below one to nothing", "n/y", 0);

    const auto added = [](const QByteArray& name, quint32 mode) {
        return Pack([name, mode](ArchiveWriter& a) { a.add(name, "new", mode, Stored); });
    };
    QTest::newRow("a file in the place of one to a file")
        << added("l", 0) << ArchiveError::None << QString()
        << changed("d/l -> ../o/x", "d/l = new");
    QTest::newRow("a file in the place of one to nothing")
        << added("n", 0100600) << ArchiveError::None << QString()
        << changed("d/n -> ../o/n", "d/n = new");
    QTest::newRow("a file in the place of one to a folder")
        << added("f", 0100777) << ArchiveError::None << QString()
        << changed("d/f -> ../o", "d/f = new");
    QTest::newRow("a link in the place of one to a folder")
        << added("f", 0120777) << ArchiveError::None << QString()
        << changed("d/f -> ../o", "d/f -> new");
    QTest::newRow("a link in the place of one to a file")
        << added("l", 0120777) << ArchiveError::None << QString()
        << changed("d/l -> ../o/x", "d/l -> new");
}

void tst_ArchiveExtraction::linksThatAreThereAlreadyLeadNowhere()
{
    QFETCH(const Pack, pack);
    QFETCH(const ArchiveError, error);
    QFETCH(const QString, entry);
    QFETCH(const QStringList, contents);

    const Sandbox sandbox;
    makeFile("out/o/x", "old", 0640);
    chmod("out/o", 0750);
    makeFolder("out/d/g");
    makeLink("../o", "out/d/f");
    makeLink("g", "out/d/i");
    makeLink("../o/x", "out/d/l");
    makeLink("../o/n", "out/d/n");
    ArchiveWriter archive;
    pack(archive);
    QVERIFY(archive.write(zipPath));
    const ArchiveResult result = ExtractArchive(zipPath, destination);
    QCOMPARE(result.error, error);
    QCOMPARE(result.entry, entry);
    QCOMPARE(out(), contents);
    QCOMPARE(modeOf("out/o"), 0750);
    QCOMPARE(modeOf("out/o/x"), 0640);
}

void tst_ArchiveExtraction::aFolderBehindALinkKeepsItsPermissions()
{
    for (const char* name : {"f/", "f/.", "f//", "./f/"}) {
        const Sandbox sandbox;
        makeFolder("out/o", 0750);
        makeFolder("out/d");
        makeLink("../o", "out/d/f");
        ArchiveWriter archive;
        archive.add(name, {}, 040777);
        QVERIFY(archive.write(zipPath));
        ExtractArchive(zipPath, destination);
        QCOMPARE(QByteArray::number(modeOf("out/o"), 8), QByteArray("750"));
    }
}

void tst_ArchiveExtraction::theDestinationMayBeALink()
{
    const Sandbox sandbox;
    makeFolder("out/o");
    makeLink("o", "out/d");
    ArchiveWriter archive;
    archive.add("./", {}, 040755);
    archive.add("a", "1");
    archive.add("f/x", "2");
    QVERIFY(archive.write(zipPath));
    const ArchiveResult result = ExtractArchive(zipPath, destination);
    QVERIFY2(result, qPrintable(result.reason));
    QCOMPARE(out(), (QStringList{"d -> o", "o/", "o/a = 1", "o/f/", "o/f/x = 2"}));
}

void tst_ArchiveExtraction::aLinkBelowALinkOfTheArchiveIsRefused()
{
    // The first leads to the destination, below which the second would be made.
    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.addLink("a/b/c", "../..");
    archive.addLink("a/b/c/x", "../../..");
    archive.addLink("a/b/c/x/outside", "nothing");
    QVERIFY(archive.write(zipPath));
    makeFolder("out/1/2");
    const ArchiveResult result = ExtractArchive(zipPath, QStringLiteral("out/1/2/d"));
    const QStringList contents = out();
    for (const QString& line : contents) {
        QVERIFY2(line.startsWith("1/2/d/") || (QStringList{"1/", "1/2/"}).contains(line),
                 qPrintable(line));
    }
    QVERIFY(!contents.contains("1/2/d/x -> ../../.."));
    QVERIFY(!result);
}

void tst_ArchiveExtraction::nothingMayLieBelowALinkOfTheArchive_data()
{
    QTest::addColumn<Pack>("pack");

    QTest::newRow("a file after it") << Pack([](ArchiveWriter& a) {
        a.addLink("f", "a");
        a.add("f/x", "2");
    });
    QTest::newRow("a file before it") << Pack([](ArchiveWriter& a) {
        a.add("f/x", "2");
        a.addLink("f", "a");
    });
    QTest::newRow("a file far below") << Pack([](ArchiveWriter& a) {
        a.addLink("f", "a");
        a.add("f/g/h/x", "2");
    });
    QTest::newRow("a link") << Pack([](ArchiveWriter& a) {
        a.addLink("f", "a");
        a.addLink("f/x", "y");
    });
    QTest::newRow("a folder") << Pack([](ArchiveWriter& a) {
        a.addLink("f", "a");
        a.add("f/g/", {}, 040755);
    });
    QTest::newRow("the folder itself") << Pack([](ArchiveWriter& a) {
        a.addLink("f", "a");
        a.add("f/", {}, 040755);
    });
}

void tst_ArchiveExtraction::nothingMayLieBelowALinkOfTheArchive()
{
    QFETCH(const Pack, pack);

    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.add("a", "1");
    pack(archive);
    QVERIFY(archive.write(zipPath));
    const ArchiveResult result = ExtractArchive(zipPath, destination);
    QCOMPARE(result.error, ArchiveError::UnsafeLink);
    QCOMPARE(result.entry, QStringLiteral("f"));
    QCOMPARE(out(), QStringList());
}

void tst_ArchiveExtraction::unsupportedEntriesAreRefused_data()
{
    QTest::addColumn<quint16>("method");
    QTest::addColumn<quint16>("flags");
    QTest::addColumn<quint32>("mode");

    const auto row = [](const char* title, quint16 method, quint16 flags, quint32 mode) {
        QTest::newRow(title) << method << flags << mode;
    };
    row("encrypted", 8, ArchiveWriter::Encrypted, 0);
    row("strongly encrypted", 8, ArchiveWriter::Encrypted | 0x40, 0);
    row("an encrypted folder", 0, ArchiveWriter::Encrypted, 040755);
    row("an encrypted link", 0, ArchiveWriter::Encrypted, 0120777);
    row("shrunk", 1, 0, 0);
    row("deflated with 64 KiB", 9, 0, 0);
    row("packed with LZMA", 14, 0, 0);
    row("packed with Zstandard", 93, 0, 0);
    row("encrypted with AES", 99, 0, 0);
    row("an unknown method", 65535, 0, 0);
    row("a link packed by an unknown method", 77, 0, 0120777);
    row("a character device", 0, 0, 0020644);
    row("a block device", 0, 0, 0060644);
    row("a pipe", 0, 0, 0010644);
    row("a socket", 0, 0, 0140644);
    row("a file type that doesn't exist", 0, 0, 0030644);
}

void tst_ArchiveExtraction::unsupportedEntriesAreRefused()
{
    QFETCH(const quint16, method);
    QFETCH(const quint16, flags);
    QFETCH(const quint32, mode);

    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.add("a", "1");
    Entry& entry = archive.add("x", "text", mode, method ? Deflated : Stored);
    entry.method = method;
    entry.flags = flags;
    archive.add("c", "2");
    QVERIFY(archive.write(zipPath));
    const ArchiveResult result = ExtractArchive(zipPath, destination);
    QCOMPARE(result.error, ArchiveError::UnsupportedEntry);
    QCOMPARE(result.entry, QString("x"));
    QVERIFY(!result.reason.isEmpty());
    QCOMPARE(result.extractedEntries, Q_UINT64_C(0));
    QCOMPARE(out(), QStringList());
}

void tst_ArchiveExtraction::limitsHold_data()
{
    QTest::addColumn<Pack>("pack");
    QTest::addColumn<ArchiveLimits>("limits");
    QTest::addColumn<ArchiveError>("error");
    QTest::addColumn<QString>("entry");

    const auto limits = [](quint64 size, quint64 count, quint64 ratio) {
        ArchiveLimits of;
        of.totalSize = size;
        of.entryCount = count;
        of.compressionRatio = ratio;
        return of;
    };
    const quint64 none = ~Q_UINT64_C(0);

    const auto three = Pack([](ArchiveWriter& a) {
        a.add("x", "12345");
        a.add("f/", {}, 040755);
        a.addLink("l", "67890");
    });
    QTest::newRow("as many bytes as there may be")
        << three << limits(10, none, none) << ArchiveError::None << QString();
    QTest::newRow("one byte too many")
        << three << limits(9, none, none) << ArchiveError::TooLarge << QString("l");
    QTest::newRow("the first one is too large")
        << three << limits(4, none, none) << ArchiveError::TooLarge << QString("x");
    QTest::newRow("no bytes at all") << Pack([](ArchiveWriter& a) { a.add("x"); })
                                     << limits(0, none, none) << ArchiveError::None << QString();
    QTest::newRow("as many entries as there may be")
        << three << limits(none, 3, none) << ArchiveError::None << QString();
    QTest::newRow("one entry too many")
        << three << limits(none, 2, none) << ArchiveError::TooManyEntries << QString();
    QTest::newRow("no entry is allowed")
        << three << limits(none, 0, none) << ArchiveError::TooManyEntries << QString();
    QTest::newRow("sizes that overflow when they are added") << Pack([](ArchiveWriter& a) {
        a.add("x", "1").size = Q_UINT64_C(0x8000000000000000);
        a.add("y", "1").size = Q_UINT64_C(0x8000000000000000);
    }) << limits(none, none, none) << ArchiveError::TooLarge << QString("y");

    // 2 MiB of zeros, which are declared to be packed to a certain number of bytes. The stream
    // goes on behind its end, which does no harm.
    const auto packedTo = [](quint64 size, quint64 packedSize) {
        return Pack([size, packedSize](ArchiveWriter& a) {
            Entry& entry = a.add("x", QByteArray(int(size), '\0'));
            entry.packed = entry.packed.leftJustified(int(packedSize), '\0');
            entry.packedSize = packedSize;
            // So that the archive as a whole has a small ratio.
            if (size > 1 << 20)
                a.add("y", QByteArray(1 << 20, 'y'), 0, Stored);
        });
    };
    QTest::newRow("as high a ratio as there may be")
        << packedTo(2000000, 10000) << limits(none, none, 200) << ArchiveError::None << QString();
    QTest::newRow("one byte more than the ratio allows")
        << packedTo(2000001, 10000) << limits(none, none, 200) << ArchiveError::TooCompressed
        << QString("x");
    QTest::newRow("a ratio above the limit") << packedTo(2000200, 10000) << limits(none, none, 200)
                                             << ArchiveError::TooCompressed << QString("x");
    QTest::newRow("any ratio up to 1 MiB")
        << packedTo(1048576, 1100) << limits(none, none, 1) << ArchiveError::None << QString();
    QTest::newRow("a ratio above 1 MiB") << packedTo(1048577, 1100) << limits(none, none, 200)
                                         << ArchiveError::TooCompressed << QString("x");
    QTest::newRow("the usual ratio")
        << packedTo(2000000, 10000) << ArchiveLimits() << ArchiveError::None << QString();
    QTest::newRow("above the usual ratio") << packedTo(2010000, 10000) << ArchiveLimits()
                                           << ArchiveError::TooCompressed << QString("x");
    QTest::newRow("a ratio of one, and stored")
        << Pack([](ArchiveWriter& a) { a.add("x", noise(2000000), 0, Stored); })
        << limits(none, none, 1) << ArchiveError::None << QString();
    QTest::newRow("a ratio of nothing is one of one")
        << Pack([](ArchiveWriter& a) { a.add("x", noise(2000000), 0, Stored); })
        << limits(none, none, 0) << ArchiveError::None << QString();
    QTest::newRow("a little smaller, and a ratio of nothing")
        << packedTo(2000000, 1500000) << limits(none, none, 0) << ArchiveError::TooCompressed
        << QString("x");
    QTest::newRow("a declared packed size of nothing")
        << Pack([](ArchiveWriter& a) { a.add("x", QByteArray(2000000, '\0')).packedSize = 0; })
        << limits(none, none, 1000000) << ArchiveError::TooCompressed << QString("x");
    QTest::newRow("a lie about the packed size doesn't help the archive as a whole")
        << Pack(
               [](ArchiveWriter& a) { a.add("x", QByteArray(2000000, '\0')).packedSize = 1000000; })
        << limits(none, none, 200) << ArchiveError::TooCompressed << QStringLiteral("x");
    QTest::newRow("many small entries of a high ratio") << Pack([](ArchiveWriter& a) {
        for (int i = 0; i < 100; ++i)
            a.add(QByteArray::number(i), QByteArray(1 << 20, '\0'));
    }) << limits(none, none, 200) << ArchiveError::TooCompressed
                                                        << QString();
    QTest::newRow("as many folders on the way as entries may be")
        << Pack([](ArchiveWriter& a) { a.add("1/2/3/4/5/x"); }) << limits(none, 5, 200)
        << ArchiveError::None << QString();
    QTest::newRow("more folders on the way than entries may be")
        << Pack([](ArchiveWriter& a) { a.add("1/2/3/4/5/x"); }) << limits(none, 4, 200)
        << ArchiveError::TooManyEntries << QStringLiteral("1/2/3/4/5/x");
    QTest::newRow("links that share one stream") << Pack([](ArchiveWriter& a) {
        const Entry first = a.addLink("1", QByteArray(2000, 'x'));
        for (int i = 2; i < 9; ++i) {
            Entry& entry = a.add(QByteArray::number(i));
            entry = first;
            entry.name = QByteArray::number(i);
            entry.sharesDataOf = 0;
        }
    }) << limits(none, none, none) << ArchiveError::TooCompressed
                                                 << QStringLiteral("2");
    QTest::newRow("many entries that share one stream") << Pack([](ArchiveWriter& a) {
        const Entry kernel = a.add("1000", noise(1000) + QByteArray(100000, '\0'));
        for (int i = 1001; i < 3000; ++i) {
            Entry& entry = a.add(QByteArray::number(i));
            entry = kernel;
            entry.name = QByteArray::number(i);
            entry.sharesDataOf = 0;
        }
    }) << ArchiveLimits() << ArchiveError::TooCompressed << QStringLiteral("1080");
}

void tst_ArchiveExtraction::limitsHold()
{
    QFETCH(const Pack, pack);
    QFETCH(const ArchiveLimits, limits);
    QFETCH(const ArchiveError, error);
    QFETCH(const QString, entry);

    const Sandbox sandbox;
    ArchiveWriter archive;
    pack(archive);
    QVERIFY(archive.write(zipPath));
    const ArchiveResult result = ExtractArchive(zipPath, destination, limits);
    QCOMPARE(result.error, error);
    QCOMPARE(result.entry, entry);
    QCOMPARE(out().isEmpty(), error != ArchiveError::None);
    if (error != ArchiveError::None)
        QCOMPARE(result.extractedEntries, Q_UINT64_C(0));
}

void tst_ArchiveExtraction::aLongNameTakesNoMemory()
{
    const Sandbox sandbox;
    ArchiveWriter small;
    small.add("x", "text");
    QVERIFY(small.write(zipPath));
    const qint64 usual = peakOfExtraction();
    QVERIFY(usual > 0);
    QVERIFY(QDir(destination).removeRecursively());

    // Tens of thousands of folders, one in the other.
    ArchiveWriter deep;
    deep.add(QByteArray("a/").repeated(32767) + "x", "text");
    QVERIFY(deep.write(zipPath));
    const qint64 peak = peakOfExtraction();
    QVERIFY(peak > 0);
    QVERIFY2(peak < usual + 20000, QByteArray::number(peak - usual) + " KiB");
    const ArchiveResult result = ExtractArchive(zipPath, destination);
    QVERIFY(!result);
    QCOMPARE(out().filter("x = ").size(), 0);
}

void tst_ArchiveExtraction::damageIsFound_data()
{
    QTest::addColumn<Pack>("pack");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<quint64>("extracted");
    QTest::addColumn<QStringList>("contents");

    // Between two good files, the second of which isn't tried any more.
    const auto damaged = [](const char* title, const std::function<void(Entry&)>& damage,
                            ArchiveWriter::Method method = Deflated) {
        QTest::newRow(title) << Pack([damage, method](ArchiveWriter& a) {
            a.add("a", "1");
            damage(a.add("f/x", noise(200000), 0, method));
            a.add("b", "2");
        }) << QString("f/x") << Q_UINT64_C(1)
                             << QStringList{"d/", "d/a = 1", "d/f/"};
    };
    damaged("a wrong check sum", [](Entry& entry) { ++entry.checkSum; });
    damaged(
        "a wrong check sum of a stored file", [](Entry& entry) { ++entry.checkSum; }, Stored);
    damaged("another byte",
            [](Entry& entry) { entry.packed[150000] = char(~entry.packed[150000]); });
    damaged(
        "another byte in a stored file",
        [](Entry& entry) { entry.packed[150000] = char(~entry.packed[150000]); }, Stored);
    damaged(
        "another last byte in a stored file",
        [](Entry& entry) { entry.packed[199999] = char(~entry.packed[199999]); }, Stored);
    damaged("no deflated data at all", [](Entry& entry) {
        entry.packed = QByteArray(1000, '\xff');
        entry.packedSize = 1000;
    });
    damaged("a stream that ends early", [](Entry& entry) {
        entry.packed = ArchiveWriter::deflated(noise(100));
        entry.packedSize = quint64(entry.packed.size());
    });
    damaged("a stream that is cut off", [](Entry& entry) {
        entry.packed.truncate(100000);
        entry.packedSize = 100000;
    });
    damaged(
        "a stored file that is cut off",
        [](Entry& entry) {
            entry.packed.truncate(100000);
            entry.packedSize = 100000;
        },
        Stored);
    damaged("a bzip2 stream that is cut off",
            [](Entry& entry) { ArchiveWriter::packWithBzip2(entry, 20); });
    damaged("a bzip2 stream that is cut off at its start",
            [](Entry& entry) { ArchiveWriter::packWithBzip2(entry, 4); });
    damaged("no bzip2 data at all", [](Entry& entry) { ArchiveWriter::packWithBzip2(entry, 0); });
    damaged("two headers that differ", [](Entry& entry) { entry.localMethod = Stored; });
    damaged("more than it declares", [](Entry& entry) { entry.size = 10; });
    damaged("one byte more than it declares", [](Entry& entry) { entry.size = 199999; });
    damaged("one byte less than it declares", [](Entry& entry) { entry.size = 200001; });
    damaged("much less than it declares", [](Entry& entry) { entry.size = 1000000; });
    damaged("something, and nothing is declared", [](Entry& entry) { entry.size = 0; });
    damaged("no data, and something is declared", [](Entry& entry) {
        entry.packed.clear();
        entry.packedSize = 0;
    });

    const auto damagedLink = [](const char* title, const std::function<void(Entry&)>& damage,
                                ArchiveWriter::Method method = Stored) {
        QTest::newRow(title) << Pack([damage, method](ArchiveWriter& a) {
            a.add("a", "1");
            damage(a.add("l", "target", 0120777, method));
        }) << QString("l") << Q_UINT64_C(0)
                             << QStringList();
    };
    damagedLink("a link with a wrong check sum", [](Entry& entry) { ++entry.checkSum; });
    damagedLink("a link whose two headers differ",
                [](Entry& entry) { entry.localMethod = ArchiveWriter::Deflated; });
    damagedLink("a link with another byte", [](Entry& entry) { entry.packed[1] = 'o'; });
    damagedLink(
        "a link that ends early",
        [](Entry& entry) {
            entry.packed = ArchiveWriter::deflated("tar");
            entry.packedSize = quint64(entry.packed.size());
        },
        Deflated);
    damagedLink(
        "a link that goes on",
        [](Entry& entry) {
            entry.packed = ArchiveWriter::deflated("target/1/2");
            entry.packedSize = quint64(entry.packed.size());
            entry.checkSum = ArchiveWriter::checkSumOf("target/1/2");
        },
        Deflated);
    damagedLink("a link in a bzip2 stream that is cut off",
                [](Entry& entry) { ArchiveWriter::packWithBzip2(entry, 20); });
    damagedLink(
        "a link that is no deflated data",
        [](Entry& entry) {
            entry.packed = "\xff\xff\xff\xff";
            entry.packedSize = 4;
        },
        Deflated);
}

void tst_ArchiveExtraction::damageIsFound()
{
    QFETCH(const Pack, pack);
    QFETCH(const QString, entry);
    QFETCH(const quint64, extracted);
    QFETCH(const QStringList, contents);

    const Sandbox sandbox;
    ArchiveWriter archive;
    pack(archive);
    QVERIFY(archive.write(zipPath));
    const MessageCounter messages;
    const ArchiveResult result = ExtractArchive(zipPath, destination);
    QCOMPARE(messages.count(), 0);
    QCOMPARE(result.error, ArchiveError::Damaged);
    QCOMPARE(result.entry, entry);
    QVERIFY(!result.reason.isEmpty());
    QCOMPARE(result.extractedEntries, extracted);
    QCOMPARE(out(), contents);
}

void tst_ArchiveExtraction::damageOfTheTableOfContentsLeavesNoTrace()
{
    ArchiveWriter archive;
    archive.add("x", "1");
    archive.add("y", "2");
    const QByteArray bytes = archive.bytes();
    for (const int at : {bytes.indexOf("PK\1\2"), bytes.lastIndexOf("PK\1\2")}) {
        const Sandbox sandbox;
        QByteArray damaged = bytes;
        damaged[at] = 'Q';
        QVERIFY(writeFile(zipPath, damaged));
        const ArchiveResult result = ExtractArchive(zipPath, destination);
        QCOMPARE(result.error, ArchiveError::Damaged);
        QCOMPARE(result.entry, QString());
        QCOMPARE(out(), QStringList());
    }
}

void tst_ArchiveExtraction::whatIsNoArchiveIsRefused_data()
{
    QTest::addColumn<Prepare>("prepare");

    QTest::newRow("nothing") << Prepare([] {});
    QTest::newRow("a folder") << Prepare([] { makeFolder("in/a.zip"); });
    QTest::newRow("an empty file") << Prepare([] { makeFile("in/a.zip", {}); });
    QTest::newRow("a text") << Prepare([] { makeFile("in/a.zip", "text"); });
    QTest::newRow("a device") << Prepare([] { makeLink("/dev/zero", "in/a.zip"); });
    QTest::newRow("a file that can't be read") << Prepare([] {
        ArchiveWriter archive;
        archive.add("x", "text");
        makeFile("in/a.zip", archive.bytes(), 0);
    });
    QTest::newRow("an archive without entries")
        << Prepare([] { makeFile("in/a.zip", ArchiveWriter().bytes()); });
    QTest::newRow("an archive without its end") << Prepare([] {
        ArchiveWriter archive;
        archive.add("x", noise(1000));
        makeFile("in/a.zip", archive.bytes().chopped(30));
    });
    QTest::newRow("a link to nothing") << Prepare([] { makeLink("nothing", "in/a.zip"); });
}

void tst_ArchiveExtraction::whatIsNoArchiveIsRefused()
{
    QFETCH(const Prepare, prepare);

    const Sandbox sandbox;
    prepare();
    int calls = 0;
    const ArchiveResult result =
        ExtractArchive(zipPath, destination, ArchiveLimits(), [&calls](const ArchiveProgress&) {
            ++calls;
            return true;
        });
    QCOMPARE(result.error, ArchiveError::NotAnArchive);
    QCOMPARE(result.entry, QString());
    QVERIFY(!result.reason.isEmpty());
    QCOMPARE(result.extractedEntries, Q_UINT64_C(0));
    QCOMPARE(calls, 0);
    QCOMPARE(out(), QStringList());
}

void tst_ArchiveExtraction::whatIsThereIsReplaced_data()
{
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<QStringList>("contents");

    QTest::newRow("a file") << Prepare([] { makeFile("out/d/x", "something longer"); })
                            << QStringList{"d/", "d/x = new"};
    QTest::newRow("a file that can't be written to")
        << Prepare([] { makeFile("out/d/x", "old", 0400); }) << QStringList{"d/", "d/x = new"};
    QTest::newRow("a file that can't be used at all")
        << Prepare([] { makeFile("out/d/x", "old", 0); }) << QStringList{"d/", "d/x = new"};
    QTest::newRow("a file with a second name, which keeps the content") << Prepare([] {
        makeFile("out/second", "old");
        makeFolder("out/d");
        if (link("out/second", "out/d/x") != 0)
            qFatal("can't link");
    }) << QStringList{"d/", "d/x = new", "second = old"};
    QTest::newRow("a pipe") << Prepare([] {
        makeFolder("out/d");
        if (mkfifo("out/d/x", 0644) != 0)
            qFatal("can't make a pipe");
    }) << QStringList{"d/", "d/x = new"};
    QTest::newRow("a link to a pipe") << Prepare([] {
        makeFolder("out/d");
        if (mkfifo("out/pipe", 0644) != 0)
            qFatal("can't make a pipe");
        makeLink("../pipe", "out/d/x");
    }) << QStringList{"d/", "d/x = new", "pipe |"};
    QTest::newRow("a link to itself") << Prepare([] {
        makeFolder("out/d");
        makeLink("x", "out/d/x");
    }) << QStringList{"d/", "d/x = new"};
    QTest::newRow("other files stay") << Prepare([] { makeFile("out/d/y", "old"); })
                                      << QStringList{"d/", "d/x = new", "d/y = old"};
    QTest::newRow("the destination is a link to a folder") << Prepare([] {
        makeFolder("out/e");
        makeLink("e", "out/d");
    }) << QStringList{"d -> e", "e/", "e/x = new"};
}

void tst_ArchiveExtraction::whatIsThereIsReplaced()
{
    QFETCH(const Prepare, prepare);
    QFETCH(const QStringList, contents);

    const Sandbox sandbox;
    prepare();
    ArchiveWriter archive;
    archive.add("x", "new", 0100644);
    QVERIFY(archive.write(zipPath));
    const ArchiveResult result = ExtractArchive(zipPath, destination);
    QVERIFY2(result, qPrintable(result.reason));
    QCOMPARE(out(), contents);
    QCOMPARE(modeOf("out/d/x"), 0644);
}

void tst_ArchiveExtraction::writesFail_data()
{
    QTest::addColumn<Prepare>("prepare");
    QTest::addColumn<Pack>("pack");
    QTest::addColumn<QString>("entry");
    QTest::addColumn<quint64>("extracted");
    QTest::addColumn<QStringList>("contents");

    const auto nothing = Prepare([] {});
    const auto files = Pack([](ArchiveWriter& a) {
        a.add("a", "1");
        a.add("f/x", "2");
        a.add("b", "3");
    });
    QTest::newRow("a file in the destination's place")
        << Prepare([] { makeFile("out/d", "old"); }) << files << QString() << Q_UINT64_C(0)
        << QStringList{"d = old"};
    QTest::newRow("a file in the place of a folder above the destination") << Prepare([] {
        QDir().rmdir("out");
        makeFile("out", "old");
    }) << files << QString() << Q_UINT64_C(0) << QStringList();
    QTest::newRow("a destination that can't be made")
        << Prepare([] { chmod("out", 0555); }) << files << QString() << Q_UINT64_C(0)
        << QStringList();
    QTest::newRow("a destination that can't be written to")
        << Prepare([] { makeFolder("out/d", 0555); }) << files << QString("a") << Q_UINT64_C(0)
        << QStringList{"d/"};
    QTest::newRow("a folder that can't be written to")
        << Prepare([] { makeFolder("out/d/f", 0555); }) << files << QString("f/x") << Q_UINT64_C(1)
        << QStringList{"d/", "d/a = 1", "d/f/"};
    QTest::newRow("a file that can't be replaced")
        << Prepare([] {
               makeFile("out/d/f/x", "old");
               chmod("out/d/f", 0555);
           })
        << files << QString("f/x") << Q_UINT64_C(1)
        << QStringList{"d/", "d/a = 1", "d/f/", "d/f/x = old"};
    QTest::newRow("a folder in a file's place")
        << Prepare([] { makeFolder("out/d/f/x"); }) << files << QString("f/x") << Q_UINT64_C(1)
        << QStringList{"d/", "d/a = 1", "d/f/", "d/f/x/"};
    QTest::newRow("a file in a folder's place")
        << Prepare([] { makeFile("out/d/f", "old"); }) << files << QString("f/x") << Q_UINT64_C(1)
        << QStringList{"d/", "d/a = 1", "d/f = old"};
    QTest::newRow("a file in the place of a folder that has an entry")
        << Prepare([] { makeFile("out/d/f", "old"); }) << Pack([](ArchiveWriter& a) {
               a.add("a", "1");
               a.add("f/", {}, 040755);
           })
        << QString("f/") << Q_UINT64_C(1) << QStringList{"d/", "d/a = 1", "d/f = old"};
    QTest::newRow("a file and a folder of the same name") << nothing << Pack([](ArchiveWriter& a) {
        a.add("a", "1");
        a.add("a/x", "2");
    }) << QString("a/x") << Q_UINT64_C(1) << QStringList{"d/", "d/a = 1"};
    QTest::newRow("a link in the place of a folder that is there")
        << Prepare([] { makeFolder("out/d/f"); }) << Pack([](ArchiveWriter& a) {
               a.addLink("f", "a");
               a.add("a", "1");
           })
        << QString("f") << Q_UINT64_C(1) << QStringList{"d/", "d/a = 1", "d/f/"};
    QTest::newRow("a link that can't be made")
        << Prepare([] { makeFolder("out/d/f", 0555); }) << Pack([](ArchiveWriter& a) {
               a.addLink("f/l", "x");
               a.add("a", "1");
           })
        << QString("f/l") << Q_UINT64_C(1) << QStringList{"d/", "d/a = 1", "d/f/"};
    QTest::newRow("no space") << nothing << Pack([](ArchiveWriter& a) {
        a.add("a", noise(65600));
        a.add("f/x", noise(65601), 0, Stored);
        a.add("b", "3");
    }) << QString("f/x") << Q_UINT64_C(1)
                              << QStringList{"d/", "d/a = 65600 bytes", "d/f/"};
    QTest::newRow("no space for a link in the place of a large file")
        << nothing << Pack([](ArchiveWriter& a) {
               a.add("a", "1");
               a.add("x", noise(300000));
               a.addLink("x", "a");
           })
        << QString("x") << Q_UINT64_C(1) << QStringList{"d/", "d/a = 1"};
    QTest::newRow("a name that no file can have") << nothing << Pack([](ArchiveWriter& a) {
        a.add("a", "1");
        a.add(QByteArray(300, 'x'), "2");
    }) << QString(300, 'x') << Q_UINT64_C(1) << QStringList{"d/", "d/a = 1"};
}

void tst_ArchiveExtraction::writesFail()
{
    QFETCH(const Prepare, prepare);
    QFETCH(const Pack, pack);
    QFETCH(const QString, entry);
    QFETCH(const quint64, extracted);
    QFETCH(const QStringList, contents);

    const Sandbox sandbox;
    prepare();
    ArchiveWriter archive;
    pack(archive);
    QVERIFY(archive.write(zipPath));
    ArchiveResult result;
    {
        const FileSizeLimit limit(65600);
        result = ExtractArchive(zipPath, destination);
    }
    chmod("out", 0755);
    QCOMPARE(result.error, ArchiveError::WriteFailed);
    QCOMPARE(result.entry, entry);
    QVERIFY(!result.reason.isEmpty());
    QCOMPARE(result.extractedEntries, extracted);
    QCOMPARE(out(), contents);
}

void tst_ArchiveExtraction::progressIsTold()
{
    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.addLink("l", "abcde");
    archive.add("x", "text");
    archive.add("f/", {}, 040755);
    archive.add("f/y", noise(100000));
    archive.add("z");
    QVERIFY(archive.write(zipPath));
    QStringList told;
    const ArchiveResult result =
        ExtractArchive(zipPath, destination, ArchiveLimits(), [&told](const ArchiveProgress& p) {
            told += QStringLiteral("%1 of %2, %3 of %4: %5")
                        .arg(p.entries)
                        .arg(p.totalEntries)
                        .arg(p.bytes)
                        .arg(p.totalBytes)
                        .arg(p.entry);
            return true;
        });
    QVERIFY(result);
    QCOMPARE(told.first(), QString("0 of 5, 0 of 100009: l"));
    QCOMPARE(told.last(), QString("5 of 5, 100009 of 100009: "));
    const QStringList beforeEach{"0 of 5, 0 of 100009: x",      "1 of 5, 4 of 100009: f/",
                                 "2 of 5, 4 of 100009: f/y",    "2 of 5, 65540 of 100009: f/y",
                                 "3 of 5, 100004 of 100009: z", "4 of 5, 100004 of 100009: l"};
    for (const QString& call : beforeEach)
        QVERIFY2(told.contains(call), qPrintable(told.join(", ")));
}

void tst_ArchiveExtraction::progressIsToldInTheCallersThread()
{
    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.add("x", noise(200000));
    archive.addLink("l", "x");
    QVERIFY(archive.write(zipPath));
    int calls = 0;
    int callsElsewhere = 0;
    ArchiveResult result;
    const std::unique_ptr<QThread> thread(QThread::create([&] {
        const QThread* const caller = QThread::currentThread();
        result = ExtractArchive(zipPath, destination, ArchiveLimits(),
                                [&, caller](const ArchiveProgress&) {
                                    ++calls;
                                    callsElsewhere += QThread::currentThread() == caller ? 0 : 1;
                                    return true;
                                });
    }));
    thread->start();
    QVERIFY(thread->wait(60000));
    QVERIFY(result);
    QVERIFY(calls >= 5);
    QCOMPARE(callsElsewhere, 0);
}

void tst_ArchiveExtraction::progressOfALargeFileComesInSmallSteps()
{
    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.add("x", QByteArray(10 << 20, '\0'));
    archive.add("y", noise(1 << 20));
    QVERIFY(archive.write(zipPath));
    ArchiveLimits limits;
    limits.compressionRatio = 2000;
    ArchiveProgress last;
    bool inOrder = true;
    quint64 largestStep = 0;
    int calls = 0;
    const ArchiveResult result =
        ExtractArchive(zipPath, destination, limits, [&](const ArchiveProgress& p) {
            inOrder = inOrder && p.bytes >= last.bytes && p.entries >= last.entries
                && p.totalBytes == Q_UINT64_C(11) << 20 && p.totalEntries == 2;
            largestStep = qMax(largestStep, p.bytes - last.bytes);
            last = p;
            ++calls;
            return true;
        });
    QVERIFY2(result, qPrintable(result.reason));
    QVERIFY(inOrder);
    QCOMPARE(largestStep, Q_UINT64_C(65536));
    QCOMPARE(last.bytes, last.totalBytes);
    QCOMPARE(last.entries, Q_UINT64_C(2));
    QVERIFY2(calls <= 200, QByteArray::number(calls)); // 176 of them are due
}

void tst_ArchiveExtraction::everyCallCanStopIt()
{
    const QStringList whole{"d/",         "d/f/",       "d/f/z = 300000 bytes", "d/l -> x",
                            "d/m -> f/z", "d/x = text", "d/y = 200000 bytes"};
    ArchiveWriter archive;
    archive.addLink("l", "x");
    archive.add("x", "text");
    archive.add("y", noise(200000, 2), 0, Stored);
    archive.add("f/", {}, 040755);
    archive.add("f/z", noise(300000, 3));
    archive.addLink("m", "f/z");
    int stops = 0;
    for (bool stopped = true; stopped; ++stops) {
        const Sandbox sandbox;
        QVERIFY(archive.write(zipPath));
        int calls = 0;
        QString entry = QStringLiteral("none");
        const ArchiveResult result = ExtractArchive(zipPath, destination, ArchiveLimits(),
                                                    [&](const ArchiveProgress& progress) {
                                                        entry = progress.entry;
                                                        return ++calls <= stops;
                                                    });
        stopped = !result;
        const QStringList contents = out();
        if (!stopped) {
            QCOMPARE(contents, whole);
            QCOMPARE(result.extractedEntries, Q_UINT64_C(6));
            QCOMPARE(calls, stops);
            break;
        }
        QCOMPARE(result.error, ArchiveError::Stopped);
        QCOMPARE(result.entry, entry);
        QVERIFY(!result.reason.isEmpty());
        QCOMPARE(calls, stops + 1); // and it isn't called again
        int entries = 0;
        for (const QString& line : contents) {
            QVERIFY2(whole.contains(line), qPrintable(line));
            entries += line == QLatin1String("d/") ? 0 : 1;
        }
        // A folder may be there on account of its file.
        QCOMPARE(quint64(entries), result.extractedEntries);
        if (contents.contains("d/y = 200000 bytes"))
            QVERIFY(readFile("out/d/y") == noise(200000, 2));
        if (contents.contains("d/f/z = 300000 bytes"))
            QVERIFY(readFile("out/d/f/z") == noise(300000, 3));
    }
    QVERIFY(stops >= 16);
}

void tst_ArchiveExtraction::aRelativeDestinationIsTheSameAllTheTime()
{
    const Sandbox sandbox;
    ArchiveWriter archive;
    archive.add("x", "1");
    archive.add("f/y", "2");
    archive.addLink("l", "x");
    QVERIFY(archive.write(zipPath));
    const CurrentFolder current(QDir::currentPath());
    makeFolder("out/elsewhere");
    const QString elsewhere = QDir().absoluteFilePath("out/elsewhere");
    const QString outside = QDir().absoluteFilePath("out");
    const ArchiveResult result =
        ExtractArchive(zipPath, destination, ArchiveLimits(), [&elsewhere](const ArchiveProgress&) {
            QDir::setCurrent(elsewhere);
            return true;
        });
    QCOMPARE(contentsOf(outside),
             (QStringList{"d/", "d/f/", "d/f/y = 2", "d/l -> x", "d/x = 1", "elsewhere/"}));
    QVERIFY2(result, qPrintable(result.reason));
}

void tst_ArchiveExtraction::seventyThousandEntries()
{
    const Sandbox sandbox;
    ArchiveWriter archive;
    for (int i = 0; i < 70000; ++i) {
        const QByteArray folder = QByteArray::number(i / 1000) + '/';
        if (i % 10 == 7)
            archive.add(folder + QByteArray::number(i), QByteArray::number(i), 0100644, Stored);
        else
            archive.add(folder, {}, 040755, Stored);
    }
    QVERIFY(archive.write(zipPath));
    ArchiveProgress last;
    const ArchiveResult result = ExtractArchive(zipPath, destination, ArchiveLimits(),
                                                [&last](const ArchiveProgress& progress) {
                                                    last = progress;
                                                    return true;
                                                });
    QVERIFY2(result, qPrintable(result.reason));
    QCOMPARE(result.extractedEntries, Q_UINT64_C(70000));
    QCOMPARE(last.entries, Q_UINT64_C(70000));
    QCOMPARE(last.totalEntries, Q_UINT64_C(70000));
    int files = 0;
    for (int i = 7; i < 70000; i += 10) {
        const QString path = QStringLiteral("out/d/%1/%2").arg(i / 1000).arg(i);
        files += readFile(path) == QByteArray::number(i) ? 1 : 0;
    }
    QCOMPARE(files, 7000);
}

void tst_ArchiveExtraction::sixteenBitsOfEntries_data()
{
    QTest::addColumn<int>("count");
    for (const int count : {65534, 65535, 65536})
        QTest::newRow(QByteArray::number(count)) << count;
}

void tst_ArchiveExtraction::sixteenBitsOfEntries()
{
    QFETCH(const int, count);

    const Sandbox sandbox;
    ArchiveWriter archive;
    for (int i = 0; i < count; ++i)
        archive.add("f/", {}, 0, Stored);
    QVERIFY(archive.write(zipPath));
    const ArchiveResult result = ExtractArchive(zipPath, destination);
    QVERIFY2(result, qPrintable(result.reason));
    QCOMPARE(result.extractedEntries, quint64(count));
}

void tst_ArchiveExtraction::aboveFourGibibytes()
{
    const Sandbox sandbox;
    QVERIFY(std::filesystem::space(".").available > Q_UINT64_C(6) << 30);

    ArchiveWriter small;
    small.addZeros("x", 1);
    QVERIFY(small.write(zipPath));
    const qint64 usual = peakOfExtraction(QStringLiteral("2000"));
    QVERIFY(usual > 0);
    QCOMPARE(QFileInfo("out/d/x").size(), Q_INT64_C(67108864));

    ArchiveWriter large;
    large.addZeros("x", 66);
    large.add("y", "text");
    QVERIFY(large.write(zipPath));
    QCOMPARE(ExtractArchive(zipPath, destination).error, ArchiveError::TooCompressed);
    const qint64 peak = peakOfExtraction(QStringLiteral("2000"));
    const QStringList contents = out();
    QVERIFY(QFile::remove("out/d/x"));
    QCOMPARE(contents, (QStringList{"d/", "d/x = 4429185024 bytes", "d/y = text"}));
    QVERIFY(peak > 0);
    QVERIFY2(peak < usual + 20000, QByteArray::number(peak - usual) + " KiB");
}

void tst_ArchiveExtraction::damagedVariants()
{
    ArchiveWriter small;
    small.add("first", "1", 0100644);
    small.add("folder/", {}, 040755);
    small.add("folder/second", QByteArray("twenty-two ").repeated(200), 0100600);
    small.addLink("third", "folder/second");
    small.add("fourth", noise(500), 0100644, Stored);
    ArchiveWriter large;
    for (int i = 0; i < 20; ++i)
        large.add("file" + QByteArray::number(i), noise(3000 * i, quint32(i)), 0100755);
    ArchiveWriter links;
    links.addLink("a/a", "b");
    links.addLink("a/b", "../c");
    links.addLink("c", "a/a");
    links.add("e", "12345");
    const QByteArray archives[] = {small.bytes(), large.bytes(), links.bytes()};

    // The content of every file that may come out.
    QSet<QByteArray> good{"1", QByteArray("twenty-two ").repeated(200), noise(500), "12345"};
    for (int i = 0; i < 20; ++i)
        good.insert(noise(3000 * i, quint32(i)));
    // What is a link may come out as a file.
    for (const char* target : {"folder/second", "b", "../c", "a/a", ""})
        good.insert(target);

    const QStringList rootBefore = QDir::root().entryList(QDir::AllEntries | QDir::Hidden);
    std::mt19937 random(70725);
    int errors = 0;
    for (int i = 0; i < 1500; ++i) {
        const Sandbox sandbox;
        makeFile("out/o", "old", 0444);
        QByteArray bytes = archives[i % 3];
        const int changes = 1 + int(random() % 4);
        for (int j = 0; j < changes; ++j) {
            // Mostly in the table of contents, at the end.
            const int size = bytes.size();
            const int at = random() % 2 ? size - 1 - int(random() % quint32(qMin(size, 500)))
                                        : int(random() % quint32(size));
            switch (random() % 5) {
            case 0:
                bytes[at] = char(random());
                break;
            case 1:
                bytes[at] = random() % 2 ? '/' : '.';
                break;
            case 2:
                bytes[at] = char(bytes[at] ^ (1 << random() % 8));
                break;
            case 3:
                bytes.remove(at, 1 + int(random() % 8));
                break;
            case 4:
                if (random() % 4 == 0)
                    bytes.truncate(at + 1);
                else
                    bytes.insert(at, char(random()));
                break;
            }
        }
        QVERIFY(writeFile(zipPath, bytes));
        const ArchiveResult result = ExtractArchive(zipPath, destination);
        errors += result ? 0 : 1;
        QCOMPARE(result.reason.isEmpty(), bool(result));

        const QByteArray title = "variant " + QByteArray::number(i);
        QCOMPARE(QDir("out").entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::System),
                 QDir(destination).exists() ? (QStringList{"d", "o"}) : QStringList{"o"});
        QCOMPARE(readFile("out/o"), QByteArray("old"));
        QDirIterator it(destination,
                        QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = it.next();
            if (it.fileInfo().isSymLink()) {
                QVERIFY2(QDir::cleanPath(it.fileInfo().symLinkTarget())
                             .startsWith(QDir(destination).absolutePath()),
                         title);
            } else {
                QVERIFY2(good.contains(readFile(path)), title + ": " + path.toUtf8());
            }
        }
    }
    QVERIFY(errors > 500);
    QVERIFY(errors < 1500);
    QCOMPARE(QDir::root().entryList(QDir::AllEntries | QDir::Hidden), rootBefore);
}

int main(int argc, char* argv[])
{
    umask(022);
    if (!takeOrdinaryFileRights())
        return 1;
    QCoreApplication application(argc, argv);
    const QStringList arguments = application.arguments();
    if (arguments.value(1) == QLatin1String("--extract"))
        return extractAndPrintPeak(arguments);

    tst_ArchiveExtraction test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ArchiveExtraction.moc"
