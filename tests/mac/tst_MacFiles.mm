#include "FileHelpers.h"
#include "MacTest.h"

#include <QDir>
#include <QFile>

#include <functional>

using namespace VEK_NAMESPACE;

namespace {

bool makeFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly);
}

} // namespace

/// The trash, the file manager and the creation date.
class tst_MacFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init() { RecordingCocoa::instance().clear(); }

    void moveToTrash_data();
    void moveToTrash();
    void trashThatIsNone_data();
    void trashThatIsNone();
    void moveThatFails_data();
    void moveThatFails();
    void emptyPathIsNotMoved();

    void selectInFileManager_data();
    void selectInFileManager();

    void creationDate_data();
    void creationDate();
    void creationDateThatIsNone_data();
    void creationDateThatIsNone();

    void nothingIsLeftBehind_data();
    void nothingIsLeftBehind();

private:
    QStringList calls() { return RecordingCocoa::instance().takeCalls(); }
    void setTrash(const QString& path)
    {
        RecordingCocoa::instance().trash = [NSURL fileURLWithPath:nsString(path)];
    }
};

void tst_MacFiles::initTestCase()
{
    QVERIFY(QDir::current().mkdir(QStringLiteral("trash")));
    QVERIFY(QDir::current().mkdir(QStringLiteral("Papierkörbe & 50% #1?")));
    QVERIFY(makeFile(QStringLiteral("picture.jpg")));
}

void tst_MacFiles::moveToTrash_data()
{
    QTest::addColumn<QString>("trash");
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("script");

    QTest::newRow("a file") << "trash"
                            << "/pictures/a.jpg"
                            << "set deleteFile to \"/pictures/a.jpg\"\n"
                               "set posixFile to POSIX file deleteFile\n"
                               "tell application \"Finder\"\n"
                               "move posixFile to trash\n"
                               "end tell";
    QTest::newRow("a trash with characters that an address writes in another way")
        << "Papierkörbe & 50% #1?"
        << "/pictures/b.jpg"
        << "set deleteFile to \"/pictures/b.jpg\"\n"
           "set posixFile to POSIX file deleteFile\n"
           "tell application \"Finder\"\n"
           "move posixFile to trash\n"
           "end tell";
    QTest::newRow("a name of every alphabet") << "trash"
                                              << "/Bilder/Übung 写真 😀.jpg"
                                              << "set deleteFile to \"/Bilder/Übung 写真 😀.jpg\"\n"
                                                 "set posixFile to POSIX file deleteFile\n"
                                                 "tell application \"Finder\"\n"
                                                 "move posixFile to trash\n"
                                                 "end tell";
    QTest::newRow("a name with a quote and a backslash, which stand as they are")
        << "trash"
        << "/pictures/12\" print\\a.jpg"
        << "set deleteFile to \"/pictures/12\" print\\a.jpg\"\n"
           "set posixFile to POSIX file deleteFile\n"
           "tell application \"Finder\"\n"
           "move posixFile to trash\n"
           "end tell";
    QTest::newRow("a name with place markers")
        << "trash"
        << "/pictures/50%1 and %2.jpg"
        << "set deleteFile to \"/pictures/50%1 and %2.jpg\"\n"
           "set posixFile to POSIX file deleteFile\n"
           "tell application \"Finder\"\n"
           "move posixFile to trash\n"
           "end tell";
    QTest::newRow("a name of two lines") << "trash"
                                         << "/pictures/one\ntwo.jpg"
                                         << "set deleteFile to \"/pictures/one\ntwo.jpg\"\n"
                                            "set posixFile to POSIX file deleteFile\n"
                                            "tell application \"Finder\"\n"
                                            "move posixFile to trash\n"
                                            "end tell";
}

void tst_MacFiles::moveToTrash()
{
    QFETCH(QString, trash);
    QFETCH(QString, file);
    QFETCH(QString, script);
    setTrash(here(trash));

    QCOMPARE(moveFileToTrash(file), 0);
    QCOMPARE(calls(),
             QStringList({"URLForDirectory: 102 inDomain: 1 appropriateForURL: " + file
                              + " create: 0 error: nil",
                          "NSAppleScript initWithSource: " + script,
                          "NSAppleScript executeAndReturnError: nil", "NSAppleScript dealloc"}));
}

void tst_MacFiles::trashThatIsNone_data()
{
    QTest::addColumn<QString>("trash");
    QTest::newRow("no address") << QString();
    QTest::newRow("the address of a folder that isn't there") << "/no trash here";
}

void tst_MacFiles::trashThatIsNone()
{
    QFETCH(QString, trash);
    if (!trash.isEmpty())
        setTrash(trash);

    QCOMPARE(moveFileToTrash(QStringLiteral("/pictures/a.jpg")), 1);
    QCOMPARE(calls(),
             QStringList({"URLForDirectory: 102 inDomain: 1 appropriateForURL: "
                          "/pictures/a.jpg create: 0 error: nil"}));
}

void tst_MacFiles::moveThatFails_data()
{
    QTest::addColumn<bool>("made");
    QTest::addColumn<QStringList>("afterTheSource");
    QTest::newRow("the script gives no result")
        << true << QStringList{"NSAppleScript executeAndReturnError: nil", "NSAppleScript dealloc"};
    QTest::newRow("there is no script") << false << QStringList{"NSAppleScript dealloc"};
}

void tst_MacFiles::moveThatFails()
{
    QFETCH(bool, made);
    QFETCH(QStringList, afterTheSource);
    setTrash(here(QStringLiteral("trash")));
    RecordingCocoa::instance().scriptCompiles = made;
    RecordingCocoa::instance().scriptSucceeds = false;

    QCOMPARE(moveFileToTrash(QStringLiteral("/a\".jpg")), 2);
    QCOMPARE(calls(),
             QStringList({"URLForDirectory: 102 inDomain: 1 appropriateForURL: /a\".jpg "
                          "create: 0 error: nil",
                          "NSAppleScript initWithSource: set deleteFile to \"/a\".jpg\"\n"
                          "set posixFile to POSIX file deleteFile\n"
                          "tell application \"Finder\"\n"
                          "move posixFile to trash\n"
                          "end tell"})
                 + afterTheSource);
}

void tst_MacFiles::emptyPathIsNotMoved()
{
    setTrash(here(QStringLiteral("trash")));
    QCOMPARE(moveFileToTrash(QString()), 2);
    QCOMPARE(moveFileToTrash(QLatin1String("")), 2);
    QCOMPARE(calls(), QStringList());
}

void tst_MacFiles::selectInFileManager_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QStringList>("files");
    QTest::addColumn<QStringList>("messages");

    QTest::newRow("one file") << "/" << QStringList{"/pictures/a.jpg"}
                              << QStringList{
                                     "activateFileViewerSelectingURLs: file:///pictures/a.jpg"};
    QTest::newRow("files in their order, from any folder")
        << "/" << QStringList{"/pictures/b.jpg", "/a.jpg", "/pictures/b.jpg"}
        << QStringList{"activateFileViewerSelectingURLs: file:///pictures/b.jpg file:///a.jpg "
                       "file:///pictures/b.jpg"};
    QTest::newRow("characters that an address writes in another way")
        << "/" << QStringList{"/a b/ü#50%41?.jpg"}
        << QStringList{"activateFileViewerSelectingURLs: file:///a%20b/%C3%BC%2350%2541%3F.jpg"};
    QTest::newRow("a name in the current folder")
        << "/" << QStringList{"a.jpg"}
        << QStringList{"activateFileViewerSelectingURLs: file://" + here(QStringLiteral("a.jpg"))};
    QTest::newRow("an empty name is left out")
        << "/" << QStringList{"", "/a.jpg", QString()}
        << QStringList{"activateFileViewerSelectingURLs: file:///a.jpg"};
    QTest::newRow("nothing but an empty name")
        << "/" << QStringList{""} << QStringList{"activateFileViewerSelectingURLs: "};
    QTest::newRow("a folder that is a file")
        << "picture.jpg" << QStringList{"/a.jpg"}
        << QStringList{"activateFileViewerSelectingURLs: file:///a.jpg"};
    QTest::newRow("a folder that isn't there")
        << "/no folder here" << QStringList{"/a.jpg"} << QStringList();
    QTest::newRow("no folder") << "" << QStringList{"/a.jpg"} << QStringList();
    QTest::newRow("no files") << "/" << QStringList() << QStringList();
}

void tst_MacFiles::selectInFileManager()
{
    QFETCH(QString, folder);
    QFETCH(QStringList, files);
    QFETCH(QStringList, messages);

    selectFilesInShell(folder, files);
    QCOMPARE(calls(), messages);
}

void tst_MacFiles::creationDate_data()
{
    QTest::addColumn<double>("secondsSince1970");
    QTest::addColumn<QString>("zone");
    QTest::addColumn<QDate>("date");
    QTest::addColumn<QTime>("time");

    QTest::newRow("a date") << 981173106.0 << "GMT" << QDate(2001, 2, 3) << QTime(4, 5, 6);
    QTest::newRow("a part of a second is cut off")
        << 981173106.9 << "GMT" << QDate(2001, 2, 3) << QTime(4, 5, 6);
    QTest::newRow("a zone in the east, where it is the next day")
        << 981216306.0 << "Asia/Tokyo" << QDate(2001, 2, 4) << QTime(1, 5, 6);
    QTest::newRow("a zone in the west, where it is the day before")
        << 981173106.0 << "America/New_York" << QDate(2001, 2, 2) << QTime(23, 5, 6);
    QTest::newRow("a leap day") << 1709251199.0 << "GMT" << QDate(2024, 2, 29) << QTime(23, 59, 59);
    QTest::newRow("before 1970") << -1.0 << "GMT" << QDate(1969, 12, 31) << QTime(23, 59, 59);
}

void tst_MacFiles::creationDate()
{
    QFETCH(double, secondsSince1970);
    QFETCH(QString, zone);
    QFETCH(QDate, date);
    QFETCH(QTime, time);
    NSTimeZone* local = [[NSTimeZone defaultTimeZone] retain];
    [NSTimeZone setDefaultTimeZone:[NSTimeZone timeZoneWithName:nsString(zone)]];
    RecordingCocoa::instance().creationDate =
        [NSDate dateWithTimeIntervalSince1970:secondsSince1970];

    const QDateTime result = getFileCreationDate(QStringLiteral("picture.jpg"));
    [NSTimeZone setDefaultTimeZone:local];
    [local release];
    QCOMPARE(result.date(), date);
    QCOMPARE(result.time(), time);
    QCOMPARE(result.timeSpec(), Qt::LocalTime);
    QCOMPARE(calls(), QStringList({"NSCalendar currentCalendar", "calendar components: 252"}));
}

void tst_MacFiles::creationDateThatIsNone_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<bool>("calendarSplits");
    QTest::addColumn<QStringList>("messages");

    QTest::newRow("no path") << QString() << true << QStringList();
    QTest::newRow("a file that isn't there") << "/no file here.jpg" << true << QStringList();
    QTest::newRow("a date that the calendar can't split")
        << "picture.jpg" << false
        << QStringList{"NSCalendar currentCalendar", "calendar components: 252"};
}

void tst_MacFiles::creationDateThatIsNone()
{
    QFETCH(QString, file);
    QFETCH(bool, calendarSplits);
    QFETCH(QStringList, messages);
    RecordingCocoa::instance().calendarSplits = calendarSplits;

    const QDateTime result = getFileCreationDate(file);
    QVERIFY(result.isNull());
    QCOMPARE(result.timeSpec(), Qt::LocalTime);
    QCOMPARE(calls(), messages);
}

using Operation = std::function<void()>;
Q_DECLARE_METATYPE(Operation)

void tst_MacFiles::nothingIsLeftBehind_data()
{
    QTest::addColumn<Operation>("operation");

    const auto addRow = [](const char* title, const Operation& operation) {
        QTest::newRow(title) << operation;
    };
    addRow("the trash", [] { moveFileToTrash(QStringLiteral("/pictures/a.jpg")); });
    addRow("a script without a result", [] {
        RecordingCocoa::instance().scriptSucceeds = false;
        moveFileToTrash(QStringLiteral("/pictures/a.jpg"));
    });
    addRow("a trash that isn't there", [] {
        RecordingCocoa::instance().trash = nil;
        moveFileToTrash(QStringLiteral("/pictures/a.jpg"));
    });
    addRow("the file manager", [] {
        selectFilesInShell(QStringLiteral("/"),
                           {QStringLiteral("/a.jpg"), QStringLiteral("/b.jpg")});
    });
    addRow("the creation date", [] { getFileCreationDate(QStringLiteral("picture.jpg")); });
    addRow("the creation date of no file", [] { getFileCreationDate(QStringLiteral("/none")); });
}

/// Neither for good nor in the pool of the caller, who may be a thread without any.
void tst_MacFiles::nothingIsLeftBehind()
{
    QFETCH(Operation, operation);
    setTrash(here(QStringLiteral("trash")));
    operation();
    const int before = liveObjects();
    for (int i = 0; i < 20; ++i)
        operation();
    QCOMPARE(liveObjects(), before);
}

int main(int argc, char** argv)
{
    return runMacTest<tst_MacFiles>(argc, argv);
}

#include "tst_MacFiles.moc"
