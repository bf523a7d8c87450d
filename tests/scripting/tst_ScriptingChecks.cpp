#include "CurrentFolder.h"
#include "DelayedCall.h"
#include "MetaMethods.h"
#include "OrdinaryFileRights.h"
#include "Scripting.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QLineEdit>
#include <QPoint>
#include <QScriptEngine>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <limits>
#include <memory>

#include <sys/stat.h>

using VEK_NAMESPACE::CScripting;
using VEK_NAMESPACE::CSettings;
using VEK_NAMESPACE::CTemporarySettings;

namespace {

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

bool writeFile(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("can't be read");
}

/// The permissions of a path while it lives.
class Permissions
{
public:
    Permissions(const QString& path, mode_t mode)
        : m_path(path.toLocal8Bit())
    {
        struct stat status = {};
        if (stat(m_path.constData(), &status) == 0)
            m_previous = status.st_mode;
        chmod(m_path.constData(), mode);
    }
    ~Permissions() { chmod(m_path.constData(), m_previous); }

private:
    Q_DISABLE_COPY(Permissions)

    const QByteArray m_path;
    mode_t m_previous = 0700;
};

QImage filled(int width, int height, QRgb colour)
{
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(colour);
    return image;
}

/// Bytes of all values, no block of 512 like the next.
QByteArray bytes(int size)
{
    QByteArray result(size, '\0');
    for (int i = 0; i < size; ++i)
        result[i] = char(i * 7 + i / 256);
    return result;
}

/// Such bytes with one that is different.
QByteArray bytes(int size, int changed)
{
    QByteArray result = bytes(size);
    result[changed] = char(result.at(changed) ^ 1);
    return result;
}

void sendTick(QObject& object)
{
    QTimerEvent tick(987654);
    QCoreApplication::sendEvent(&object, &tick);
}

} // namespace

class tst_ScriptingChecks : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void countDelayedCall() { ++m_delayedCalls; }

private Q_SLOTS:
    void init();
    void cleanup();

    void slotsAreDeclaredInOrder();
    void defaultsAreOverloads_data();
    void defaultsAreOverloads();
    void argumentsFromAScript_data();
    void argumentsFromAScript();

    void valuesAreCompared_data();
    void valuesAreCompared();
    void aMismatchFailsTheTestOnce();
    void aMismatchAbortsTheScript_data();
    void aMismatchAbortsTheScript();

    void imagesAreCompared_data();
    void imagesAreCompared();
    void theToleranceOfImagesIsAHalf();
    void imageSizesAreCompared_data();
    void imageSizesAreCompared();
    void theToleranceOfSizesIsTwo();

    void filesAreCompared_data();
    void filesAreCompared();
    void filesThatCannotBeReadAreNotEqual_data();
    void filesThatCannotBeReadAreNotEqual();
    void filesWithoutASizeAreEqual();

    void theEntriesOfAFolderAreCounted();
    void nothingIsCountedElsewhere_data();
    void nothingIsCountedElsewhere();

    void aFolderIsClearedOfItsFiles();
    void foldersAreLookedUpInTheCurrentFolder();
    void theClearedFolderAsTheCurrentOne();
    void nothingIsClearedElsewhere_data();
    void nothingIsClearedElsewhere();

    void filesAreRemoved();
    void filesExist();
    void filesAreCopied();
    void textsEnd_data();
    void textsEnd();
    void thePlatformHasAFixedName();

    void aBoxTakesASecond();
    void aBoxShutsOutTheUser();
    void aBoxWithoutTextFailsTheTest_data();
    void aBoxWithoutTextFailsTheTest();
    void boxesAreFound_data();
    void boxesAreFound();
    void aFailureClosesTheDialogBelowABox();
    void aFailureClosesTheDialogBelowNestedBoxes();
    void aFailureClosesADialogOnlyOnce();
    void aTimeOutEndsARunThatIsInADialogAndABox();

    void settingsAreThoseOfTheProduct();
    void settingsAreThoseOfTheOverlay();

private:
    QString path(const QString& name) const { return m_folder->filePath(name); }
    QString path(const char* name) const { return path(text(name)); }
    QStringList entries(const char* folder = "") const
    {
        return QDir(path(folder))
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot, QDir::Name);
    }
    /// What was logged since the last time.
    QByteArray takeLog()
    {
        m_report->seek(m_logged);
        QByteArray lines = m_report->readAll();
        m_logged += lines.size();
        return lines;
    }
    /// A path for each @name.
    QString withPaths(QString names) const
    {
        return names.replace(QLatin1Char('@'), m_folder->path() + QLatin1Char('/'));
    }
    QString evaluate(const QString& expression);
    QByteArray run(const QByteArray& script);
    void writeImages() const;

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<QTemporaryDir> m_reportFolder;
    std::unique_ptr<CScripting> m_scripting;
    std::unique_ptr<QFile> m_report;
    qint64 m_logged = 0;
    int m_delayedCalls = 0;
    bool m_endedByItself = false;
};

void tst_ScriptingChecks::init()
{
    m_folder = std::make_unique<QTemporaryDir>();
    m_reportFolder = std::make_unique<QTemporaryDir>();
    m_scripting = std::make_unique<CScripting>();
    const QString script = m_reportFolder->filePath(text("test.js"));
    QVERIFY(writeFile(script, "1\n"));
    m_scripting->setPathToScript(script);
    m_report = std::make_unique<QFile>(m_reportFolder->filePath(text("testReport.txt")));
    QVERIFY(m_report->open(QIODevice::ReadOnly));
    m_logged = 0;
    QCOMPARE(takeLog().count('\n'), 3);
    m_delayedCalls = 0;
}

void tst_ScriptingChecks::cleanup()
{
    m_report.reset();
    m_scripting.reset();
    m_reportFolder.reset();
    m_folder.reset();
}

/// The result as a text, or what the engine calls the exception.
QString tst_ScriptingChecks::evaluate(const QString& expression)
{
    QScriptEngine engine;
    QObject object;
    object.setObjectName(text("object"));
    engine.globalObject().setProperty(text("scripting"), engine.newQObject(m_scripting.get()));
    engine.globalObject().setProperty(text("object"), engine.newQObject(&object));
    const QScriptValue result = engine.evaluate(expression);
    return engine.hasUncaughtException()
        ? engine.uncaughtException().property(text("name")).toString()
        : result.toString();
}

/// What a whole run writes into its report.
QByteArray tst_ScriptingChecks::run(const QByteArray& script)
{
    const QString scriptPath = m_reportFolder->filePath(text("run.js"));
    QSignalSpy finished(m_scripting.get(), &CScripting::testFinished);
    if (!writeFile(scriptPath, script))
        return "no script";
    m_scripting->setPathToScript(scriptPath);
    m_scripting->startScript();
    if (!QTest::qWaitFor([&] { return finished.count() == 1; }, 30000))
        return "not finished";
    const QByteArray report = readFile(m_reportFolder->filePath(text("runReport.txt")));
    int start = 0;
    for (int line = 0; line < 3; ++line)
        start = report.indexOf('\n', start) + 1;
    return report.mid(start);
}

void tst_ScriptingChecks::writeImages() const
{
    QVERIFY(filled(10, 10, 0xff000000).save(path("black.png")));
    QVERIFY(filled(10, 10, 0xffffffff).save(path("white.png")));
    QVERIFY(filled(10, 10, 0x80000000).save(path("clear.png")));
    QVERIFY(filled(10, 10, 0xff000000).save(path("picture.jpg"), "PNG"));
    QVERIFY(filled(10, 10, 0xff808080)
                .convertToFormat(QImage::Format_Grayscale8)
                .save(path("grey.png")));
    for (const QSize& size :
         {QSize(8, 8), QSize(12, 10), QSize(13, 10), QSize(10, 12), QSize(10, 7), QSize(7, 14)}) {
        QVERIFY(filled(size.width(), size.height(), 0xff000000)
                    .save(path(QStringLiteral("%1x%2.png").arg(size.width()).arg(size.height()))));
    }
    QVERIFY(filled(1, 8, 0xff000000).save(path("column.png")));
    QVERIFY(filled(1, 8, 0xffffffff).save(path("white column.png")));
    QImage tall = filled(10, 100, 0xff000000);
    QVERIFY(tall.save(path("tall.png")));
    tall.setPixel(3, 0, 0xffffffff);
    QVERIFY(tall.save(path("tall, first row.png")));
    tall.setPixel(3, 0, 0xff000000);
    tall.setPixel(3, 99, 0xffffffff);
    QVERIFY(tall.save(path("tall, last row.png")));
    QVERIFY(writeFile(path("text.png"), "no picture"));
    // 50000 by 50000 pixels, by its own account.
    QVERIFY(writeFile(
        path("lie.png"),
        QByteArray::fromBase64(
            "iVBORw0KGgoAAAANSUhEUgAAw1AAAMNQCAIAAADEzaqdAAAAEUlEQVR4nGNgGAWjYBQMdwAAA+gAAb"
            "Om00YAAAAASUVORK5CYII=")));
    QVERIFY(writeFile(path("empty.png"), QByteArray()));
    QVERIFY(QDir().mkdir(path("folder.png")));
}

void tst_ScriptingChecks::slotsAreDeclaredInOrder()
{
    // What stands behind "default" is an overload for scripts.
    const QStringList expected = {
        text("bool isEqualImages(QString pathToImage1, QString pathToImage2, double diff)"),
        text("default bool isEqualImages(QString pathToImage1, QString pathToImage2)"),
        text("bool isEqualImagesBySize(QString pathToImage1, QString pathToImage2, int tolerance)"),
        text("default bool isEqualImagesBySize(QString pathToImage1, QString pathToImage2)"),
        text("bool compare(QVariant actual, QVariant expected, bool bAbortTestIfCompareFailed)"),
        text("default bool compare(QVariant actual, QVariant expected)"),
        text("uint dirContentCount(QString pathToDir, bool bFilesOnly)"),
        text("default uint dirContentCount(QString pathToDir)"),
        text("void clearDir(QString pathToDir)"),
        text("bool removeFile(QString pathToFile)"),
        text("bool isFileExist(QString pathToFile)"),
        text("bool copyFile(QString pathToSrcFile, QString pathToDestFile)"),
        text("bool isEqualFiles(QString pathToFile1, QString pathToFile2)"),
        text("bool stringEndsWith(QString str, QString endsWithStr)"),
        text("void addShownMessageBox(QString message)"),
        text("bool isMessageBoxShown(QString message, int messageBoxNumber)"),
        text("default bool isMessageBoxShown(QString message)"),
        text("QString platformName()"),
        text("QVariant getSettingValue(QString strKey)"),
        text("bool hasSettingKey(QString strKey)"),
        text("void setSettingValue(QString strKey, QVariant val)"),
        text("void removeSettingKey(QString strKey)"),
    };
    QCOMPARE(MetaMethods::slotDeclarations(CScripting::staticMetaObject,
                                           "isEqualImages(QString,QString,double)",
                                           expected.count()),
             expected);
}

void tst_ScriptingChecks::defaultsAreOverloads_data()
{
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QString>("result");
    QTest::addColumn<bool>("failed");

    const auto row = [](const char* name, const char* expression, const char* result,
                        bool failed = false) {
        QTest::newRow(name) << text(expression) << text(result) << failed;
    };
    row("images within a half", "scripting.isEqualImages('@black.png', '@black.png')", "true");
    row("images within a tolerance", "scripting.isEqualImages('@black.png', '@white.png', 1000)",
        "true");
    row("sizes within two", "scripting.isEqualImagesBySize('@black.png', '@12x10.png')", "true");
    row("sizes beyond two", "scripting.isEqualImagesBySize('@black.png', '@13x10.png')", "false");
    row("sizes within a tolerance", "scripting.isEqualImagesBySize('@black.png', '@13x10.png', 3)",
        "true");
    row("equal values", "scripting.compare(1, 1)", "true");
    row("a mismatch fails the test", "scripting.compare(1, 2)", "false", true);
    row("a mismatch fails the test on demand", "scripting.compare(1, 2, true)", "false", true);
    row("a mismatch is logged on demand", "scripting.compare(1, 2, false)", "false");
    row("files of a folder", "scripting.dirContentCount('@folder.png')", "1");
    row("files of a folder on demand", "scripting.dirContentCount('@folder.png', true)", "1");
    row("entries of a folder", "scripting.dirContentCount('@folder.png', false)", "2");
    row("any box", "scripting.isMessageBoxShown('text')", "false");
    row("one box", "scripting.isMessageBoxShown('text', 0)", "false");
}

void tst_ScriptingChecks::defaultsAreOverloads()
{
    QFETCH(QString, expression);
    QFETCH(QString, result);
    QFETCH(bool, failed);
    writeImages();
    QVERIFY(QDir().mkdir(path("folder.png/folder")));
    QVERIFY(writeFile(path("folder.png/file"), "x"));

    QCOMPARE(evaluate(withPaths(expression)), result);
    QCOMPARE(m_scripting->hasFailed(), failed);
}

void tst_ScriptingChecks::argumentsFromAScript_data()
{
    QTest::addColumn<QString>("expression");
    QTest::addColumn<QString>("result");

    const auto row = [](const char* name, const char* expression, const char* result) {
        QTest::newRow(name) << text(expression) << text(result);
    };
    row("compare() of nothing", "scripting.compare()", "SyntaxError");
    row("compare() of one value", "scripting.compare(1)", "SyntaxError");
    row("a number and its text", "scripting.compare(1, '1', false)", "true");
    row("a number and another text", "scripting.compare(1, 'one', false)", "false");
    row("a truth and a number", "scripting.compare(true, 1, false)", "true");
    row("texts that differ in case", "scripting.compare('a', 'A', false)", "false");
    row("undefined and null", "scripting.compare(undefined, null, false)", "true");
    row("an empty text and null", "scripting.compare('', null, false)", "false");
    row("lists", "scripting.compare([1, 'a', [2]], [1, 'a', [2]], false)", "true");
    row("lists of another order", "scripting.compare([1, 2], [2, 1], false)", "false");
    row("objects", "scripting.compare({a: 1}, {a: 1}, false)", "true");
    row("objects of another value", "scripting.compare({a: 1}, {a: 2}, false)", "false");
    row("the same object", "scripting.compare(object, object, false)", "true");
    row("other objects", "scripting.compare(object, scripting, false)", "false");
    row("no numbers", "scripting.compare(NaN, NaN, false)", "false");
    row("isEqualImages() of one path", "scripting.isEqualImages('@black.png')", "SyntaxError");
    row("isEqualImages() of numbers", "scripting.isEqualImages(1, 2)", "false");
    row("isEqualImages() of objects", "scripting.isEqualImages(object, {})", "false");
    row("isEqualImages() of null", "scripting.isEqualImages(null, undefined)", "false");
    row("isEqualImages() without a number to hold it to",
        "scripting.isEqualImages('@black.png', '@black.png', 'much')", "false");
    row("isEqualImagesBySize() of null", "scripting.isEqualImagesBySize(null, null)", "false");
    row("isEqualImagesBySize() without a number to hold it to",
        "scripting.isEqualImagesBySize('@black.png', '@black.png', 'much')", "true");
    row("isEqualFiles() of one path", "scripting.isEqualFiles('@black.png')", "SyntaxError");
    row("isEqualFiles() of null", "scripting.isEqualFiles(null, null)", "false");
    row("dirContentCount() of nothing", "scripting.dirContentCount()", "SyntaxError");
    row("dirContentCount() of null", "scripting.dirContentCount(null)", "0");
    row("dirContentCount() of an object", "scripting.dirContentCount(object)", "0");
    row("a count is a number", "typeof scripting.dirContentCount('@folder.png')", "number");
    row("clearDir() of nothing", "scripting.clearDir()", "SyntaxError");
    row("clearDir() of null", "scripting.clearDir(null)", "undefined");
    row("isFileExist() of null", "scripting.isFileExist(null)", "false");
    row("copyFile() of null", "scripting.copyFile('@black.png', null)", "false");
    row("stringEndsWith() of numbers", "scripting.stringEndsWith(42, 2)", "true");
    row("isMessageBoxShown() of null", "scripting.isMessageBoxShown(null, 'one')", "false");
    row("addShownMessageBox() of nothing", "scripting.addShownMessageBox()", "SyntaxError");
    row("an unknown setting", "scripting.getSettingValue('unknown')", "undefined");
    row("a setting without a value", "scripting.setSettingValue('key')", "SyntaxError");
    row("the platform", "scripting.platformName()", "mac_os_x");
}

void tst_ScriptingChecks::argumentsFromAScript()
{
    QFETCH(QString, expression);
    QFETCH(QString, result);
    writeImages();
    const QStringList before = entries();

    QCOMPARE(evaluate(withPaths(expression)), result);
    QVERIFY(!m_scripting->hasFailed());
    QCOMPARE(entries(), before);
}

void tst_ScriptingChecks::valuesAreCompared_data()
{
    QTest::addColumn<QVariant>("actual");
    QTest::addColumn<QVariant>("expected");
    QTest::addColumn<QByteArray>("message");

    const QByteArray equal;
    const auto row = [](const char* name, const QVariant& actual, const QVariant& expected,
                        const QByteArray& message) {
        QTest::newRow(name) << actual << expected << message;
    };
    row("equal numbers", 1, 1, equal);
    row("a whole number and a fraction of its value", 1, 1.0, equal);
    row("a number and its text", 1, text("1"), equal);
    row("a number and a text with a zero before it", 1, text("01"), equal);
    row("a truth and a number", true, 1, equal);
    row("fractions that are nearly equal", 0.1 + 0.2, 0.3, equal);
    row("a truth and a text that isn't empty", true, text("yes"), equal);
    row("equal texts", text("a"), text("a"), equal);
    row("no value and no value", QVariant(), QVariant(), equal);
    row("an empty text and a null one", text(""), QString(), equal);
    row("points", QPoint(1, 2), QPoint(1, 2), equal);
    row("lists", QVariantList{1, text("a")}, QVariantList{1, text("a")}, equal);
    row("other numbers", 1, 2, "fail reason: compare actual (1) != expected (2)\n");
    row("other fractions", 0.25, 0.5, "fail reason: compare actual (0.25) != expected (0.5)\n");
    row("texts that differ in case", text("a"), text("A"),
        "fail reason: compare actual (a) != expected (A)\n");
    row("texts of equal numbers", text("1"), text("01"),
        "fail reason: compare actual (1) != expected (01)\n");
    row("a text with a mark for another", text("%2 %1"), text("%1"),
        "fail reason: compare actual (%2 %1) != expected (%1)\n");
    row("a text and no value", text("a"), QVariant(),
        "fail reason: compare actual (a) != expected (QVariant(Invalid) )\n");
    row("values without a text", QPoint(1, 2), QPoint(2, 1),
        "fail reason: compare actual (QVariant(QPoint, QPoint(1,2)) ) != expected "
        "(QVariant(QPoint, QPoint(2,1)) )\n");
    row("values of the same text", QByteArray("a"), QVariantList{text("a")},
        "fail reason: compare actual (a) != expected (QVariant(QVariantList, (QVariant(QString, "
        "\"a\"))) )\n");
}

void tst_ScriptingChecks::valuesAreCompared()
{
    QFETCH(QVariant, actual);
    QFETCH(QVariant, expected);
    QFETCH(QByteArray, message);

    const bool isEqual = message.isEmpty();
    QCOMPARE(m_scripting->compare(actual, expected, false), isEqual);
    QCOMPARE(takeLog(), message);
    QVERIFY(!m_scripting->hasFailed());
    QCOMPARE(m_scripting->compare(actual, expected), isEqual);
    QCOMPARE(takeLog(), message);
    QCOMPARE(m_scripting->hasFailed(), !isEqual);
}

void tst_ScriptingChecks::aMismatchFailsTheTestOnce()
{
    QVERIFY(!m_scripting->compare(1, 2, true));
    QVERIFY(!m_scripting->compare(3, 4, true));
    QCOMPARE(takeLog(), QByteArray("fail reason: compare actual (1) != expected (2)\n"));
    // A log line is no failure and so isn't held back by one.
    QVERIFY(!m_scripting->compare(5, 6, false));
    QCOMPARE(takeLog(), QByteArray("fail reason: compare actual (5) != expected (6)\n"));
}

void tst_ScriptingChecks::aMismatchAbortsTheScript_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<QByteArray>("report");

    QTest::newRow("unless asked otherwise")
        << QByteArray("scripting.compare('a', 'b');\nscripting.log('next');\n")
        << QByteArray("fail reason: compare actual (a) != expected (b)\nFAIL\n");
    QTest::newRow("not with the last argument false")
        << QByteArray("scripting.compare('a', 'b', false);\nscripting.log('next');\n")
        << QByteArray("fail reason: compare actual (a) != expected (b)\nnext\nPASS\n");
}

void tst_ScriptingChecks::aMismatchAbortsTheScript()
{
    QFETCH(QByteArray, script);
    QFETCH(QByteArray, report);
    QCOMPARE(run(script), report);
}

void tst_ScriptingChecks::imagesAreCompared_data()
{
    QTest::addColumn<QString>("name1");
    QTest::addColumn<QString>("name2");
    QTest::addColumn<double>("tolerance");
    QTest::addColumn<bool>("result");
    QTest::addColumn<QString>("logged");

    const auto row = [](const char* name, const char* name1, const char* name2, double tolerance,
                        bool result, const char* logged) {
        QTest::newRow(name) << text(name1) << text(name2) << tolerance << result << text(logged);
    };
    const char noDifference[] = "The difference of the two pictures is 0 !";
    const char otherSizes[] = "Error, pictures must have identical dimensions!";
    row("a file and itself", "@black.png", "@black.png", 0.5, true, noDifference);
    row("a file and itself with no tolerance", "@black.png", "@black.png", 0.0, false,
        noDifference);
    row("a file and itself with a tolerance below none", "@black.png", "@black.png", -1.0, false,
        noDifference);
    row("a file and itself with a tolerance that is no number", "@black.png", "@black.png",
        std::numeric_limits<double>::quiet_NaN(), false, noDifference);
    row("a file of another format's name", "@picture.jpg", "@black.png", 0.5, true, noDifference);
    row("a picture of 8 bits and itself", "@grey.png", "@grey.png", 0.5, true, noDifference);
    row("pictures that differ in alpha", "@black.png", "@clear.png", 0.5, true, noDifference);
    row("pictures that differ, below the tolerance", "@column.png", "@white column.png", 2e6, true,
        "The difference of the two pictures is 1.49418e+06 !");
    row("pictures that differ, above the tolerance", "@column.png", "@white column.png", 1e6, false,
        "The difference of the two pictures is 1.49418e+06 !");
    row("a pixel of the first row", "@tall.png", "@tall, first row.png", 0.5, true,
        "The difference of the two pictures is 1.94033e-149 !");
    row("a pixel of the last row", "@tall.png", "@tall, last row.png", 0.5, true,
        "The difference of the two pictures is 0.00333333 !");
    row("a pixel of the last row above the tolerance", "@tall.png", "@tall, last row.png", 0.003,
        false, "The difference of the two pictures is 0.00333333 !");
    row("other widths", "@black.png", "@12x10.png", 0.5, false, otherSizes);
    row("other heights", "@black.png", "@10x12.png", 0.5, false, otherSizes);

    row("a missing file", "@missing.png", "@black.png", 0.5, false,
        "Image [@missing.png] doesn't exist!");
    row("a missing second file", "@black.png", "@missing.png", 0.5, false,
        "Image [@missing.png] doesn't exist!");
    row("two missing files", "@missing1.png", "@missing2.png", 0.5, false,
        "Image [@missing1.png] doesn't exist!");
    row("a missing file of a name with a mark", "@%1 %2.png", "@black.png", 0.5, false,
        "Image [@%1 %2.png] doesn't exist!");
    row("no path", "", "@black.png", 0.5, false, "Image [] doesn't exist!");
    row("no second path", "@black.png", "", 0.5, false, "Image [] doesn't exist!");
    row("a file that is no picture", "@text.png", "@black.png", 0.5, false,
        "Loading image [@text.png] failed!");
    row("a picture that lies about its size", "@lie.png", "@black.png", 0.5, false,
        "Loading image [@lie.png] failed!");
    row("a second file that is no picture", "@black.png", "@text.png", 0.5, false,
        "Loading image [@text.png] failed!");
    row("two files that are no pictures", "@text.png", "@empty.png", 0.5, false,
        "Loading image [@text.png] failed!");
    row("an empty file", "@empty.png", "@black.png", 0.5, false,
        "Loading image [@empty.png] failed!");
    row("a folder", "@folder.png", "@black.png", 0.5, false, "Loading image [@folder.png] failed!");
    row("no picture before a missing file", "@text.png", "@missing.png", 0.5, false,
        "Image [@missing.png] doesn't exist!");
    row("a missing file before no picture", "@missing.png", "@text.png", 0.5, false,
        "Image [@missing.png] doesn't exist!");
    row("no picture before one of another size", "@text.png", "@12x10.png", 0.5, false,
        "Loading image [@text.png] failed!");
}

void tst_ScriptingChecks::imagesAreCompared()
{
    QFETCH(QString, name1);
    QFETCH(QString, name2);
    QFETCH(double, tolerance);
    QFETCH(bool, result);
    QFETCH(QString, logged);
    writeImages();

    QCOMPARE(m_scripting->isEqualImages(withPaths(name1), withPaths(name2), tolerance), result);
    QCOMPARE(takeLog(), withPaths(logged).toUtf8() + '\n');
    QVERIFY(!m_scripting->hasFailed());
}

void tst_ScriptingChecks::theToleranceOfImagesIsAHalf()
{
    // Of 100 by 1: 4.5 * 100 / 300 * 100 / 300 is the half itself.
    const QImage plain = filled(100, 1, 0xff000000);
    QImage below = plain;
    below.setPixel(0, 0, 0xffffffff);
    QImage above = below;
    above.setPixel(1, 0, 0xffffff00);
    QVERIFY(plain.save(path("plain.png")) && below.save(path("below.png"))
            && above.save(path("above.png")));

    QVERIFY(m_scripting->isEqualImages(path("plain.png"), path("below.png")));
    QVERIFY(!m_scripting->isEqualImages(path("plain.png"), path("above.png")));
    QCOMPARE(takeLog(),
             QByteArray("The difference of the two pictures is 0.333333 !\n"
                        "The difference of the two pictures is 0.555556 !\n"));
}

void tst_ScriptingChecks::imageSizesAreCompared_data()
{
    QTest::addColumn<QString>("name1");
    QTest::addColumn<QString>("name2");
    QTest::addColumn<int>("tolerance");
    QTest::addColumn<QString>("logged");

    const auto row = [](const char* name, const char* name1, const char* name2, int tolerance,
                        const char* logged) {
        QTest::newRow(name) << text(name1) << text(name2) << tolerance << text(logged);
    };
    row("equal sizes", "@black.png", "@white.png", 2, "");
    row("equal sizes with no tolerance", "@black.png", "@white.png", 0, "");
    row("equal sizes with a tolerance below none", "@black.png", "@white.png", -1,
        "The difference of the two pictures is 0 in width and 0 in height!\n");
    row("both sides as far off as allowed", "@black.png", "@8x8.png", 2, "");
    row("both sides further off", "@black.png", "@8x8.png", 1,
        "The difference of the two pictures is 2 in width and 2 in height!\n");
    row("a width further off", "@black.png", "@13x10.png", 2,
        "The difference of the two pictures is 3 in width and 0 in height!\n");
    row("a height further off", "@black.png", "@10x7.png", 2,
        "The difference of the two pictures is 0 in width and 3 in height!\n");
    row("both sides off", "@7x14.png", "@black.png", 2,
        "The difference of the two pictures is 3 in width and 4 in height!\n");
    row("one side within the tolerance", "@7x14.png", "@black.png", 3,
        "The difference of the two pictures is 3 in width and 4 in height!\n");
    row("both sides within the tolerance", "@7x14.png", "@black.png", 4, "");

    row("a missing file", "@missing.png", "@black.png", 2, "Image [@missing.png] doesn't exist!\n");
    row("a missing second file", "@black.png", "@missing.png", 2,
        "Image [@missing.png] doesn't exist!\n");
    row("no picture before a missing file", "@text.png", "@missing.png", 2,
        "Image [@missing.png] doesn't exist!\n");
    row("a file that is no picture", "@text.png", "@black.png", 2,
        "Loading image [@text.png] failed!\n");
    row("a second file that is no picture", "@black.png", "@folder.png", 2,
        "Loading image [@folder.png] failed!\n");
}

void tst_ScriptingChecks::imageSizesAreCompared()
{
    QFETCH(QString, name1);
    QFETCH(QString, name2);
    QFETCH(int, tolerance);
    QFETCH(QString, logged);
    writeImages();

    QCOMPARE(m_scripting->isEqualImagesBySize(withPaths(name1), withPaths(name2), tolerance),
             logged.isEmpty());
    QCOMPARE(takeLog(), withPaths(logged).toUtf8());
    QVERIFY(!m_scripting->hasFailed());
}

void tst_ScriptingChecks::theToleranceOfSizesIsTwo()
{
    writeImages();
    QVERIFY(m_scripting->isEqualImagesBySize(path("black.png"), path("12x10.png")));
    QVERIFY(!m_scripting->isEqualImagesBySize(path("black.png"), path("13x10.png")));
}

void tst_ScriptingChecks::filesAreCompared_data()
{
    QTest::addColumn<QByteArray>("contents1");
    QTest::addColumn<QByteArray>("contents2");
    QTest::addColumn<bool>("result");

    QTest::newRow("two empty files") << QByteArray() << QByteArray() << true;
    QTest::newRow("an empty file and another") << QByteArray() << QByteArray("x") << false;
    for (int size : {1, 2, 511, 512, 513, 1023, 1024, 1025, 100000}) {
        const auto row = [size](const char* name, const QByteArray& contents2, bool result) {
            QTest::newRow(qPrintable(QStringLiteral("%1 bytes, %2").arg(size).arg(text(name))))
                << bytes(size) << contents2 << result;
        };
        row("equal", bytes(size), true);
        row("the first one different", bytes(size, 0), false);
        row("the last one different", bytes(size, size - 1), false);
        row("one in the middle different", bytes(size, size / 2), false);
        row("one more", bytes(size + 1), false);
        row("one fewer", bytes(size - 1), false);
    }
    QTest::newRow("the end of a block different") << bytes(1024) << bytes(1024, 511) << false;
    QTest::newRow("the start of a block different") << bytes(1024) << bytes(1024, 512) << false;
    QTest::newRow("a last block of one byte different")
        << bytes(1025) << bytes(1025, 1024) << false;
    QTest::newRow("different behind a NUL")
        << QByteArray("a\0b", 3) << QByteArray("a\0c", 3) << false;
}

void tst_ScriptingChecks::filesAreCompared()
{
    QFETCH(QByteArray, contents1);
    QFETCH(QByteArray, contents2);
    QFETCH(bool, result);
    QVERIFY(writeFile(path("file1"), contents1) && writeFile(path("file2"), contents2));

    QCOMPARE(m_scripting->isEqualFiles(path("file1"), path("file2")), result);
    QCOMPARE(m_scripting->isEqualFiles(path("file2"), path("file1")), result);
    QVERIFY(m_scripting->isEqualFiles(path("file1"), path("file1")));
    QCOMPARE(takeLog(), QByteArray());
    QCOMPARE(readFile(path("file1")), contents1);
}

void tst_ScriptingChecks::filesThatCannotBeReadAreNotEqual_data()
{
    QTest::addColumn<QString>("name1");
    QTest::addColumn<QString>("name2");

    QTest::newRow("no path") << text("") << text("@file");
    QTest::newRow("no second path") << text("@file") << text("");
    QTest::newRow("no paths") << text("") << text("");
    QTest::newRow("null paths") << QString() << QString();
    QTest::newRow("a missing file") << text("@missing") << text("@file");
    QTest::newRow("a missing second file") << text("@file") << text("@missing");
    QTest::newRow("a missing file and itself") << text("@missing") << text("@missing");
    QTest::newRow("an unreadable file and itself") << text("@unreadable") << text("@unreadable");
    QTest::newRow("an unreadable second file") << text("@empty") << text("@unreadable");
    QTest::newRow("a folder and itself") << text("@folder") << text("@folder");
    QTest::newRow("a folder and an empty file") << text("@folder") << text("@empty");
}

void tst_ScriptingChecks::filesThatCannotBeReadAreNotEqual()
{
    QFETCH(QString, name1);
    QFETCH(QString, name2);
    QVERIFY(writeFile(path("file"), "text") && writeFile(path("empty"), QByteArray())
            && writeFile(path("unreadable"), QByteArray()) && QDir().mkdir(path("folder")));
    const Permissions unreadable(path("unreadable"), 0);

    QVERIFY(!m_scripting->isEqualFiles(withPaths(name1), withPaths(name2)));
    QCOMPARE(takeLog(), QByteArray());
    QVERIFY(!m_scripting->hasFailed());
}

/// The size is asked first, and where it is 0 nothing is read.
void tst_ScriptingChecks::filesWithoutASizeAreEqual()
{
    const QString version = text("/proc/version");
    const QString status = text("/proc/self/status");
    QVERIFY(readFile(version) != readFile(status));
    QVERIFY(m_scripting->isEqualFiles(version, status));
}

void tst_ScriptingChecks::theEntriesOfAFolderAreCounted()
{
    QVERIFY(QDir().mkpath(path("folder/sub/subsub")));
    QCOMPARE(m_scripting->dirContentCount(path("folder"), true), 0U);
    QCOMPARE(m_scripting->dirContentCount(path("folder"), false), 1U);
    for (const char* name : {"folder/a", "folder/b.txt", "folder/.hidden", "folder/sub/c"})
        QVERIFY(writeFile(path(name), "x"));
    QVERIFY(QDir().mkdir(path("folder/.hidden folder")));
    QVERIFY(QDir().mkdir(path("folder/second")));
    QVERIFY(QFile::link(path("folder/a"), path("folder/link")));

    QCOMPARE(m_scripting->dirContentCount(path("folder")), 3U);
    QCOMPARE(m_scripting->dirContentCount(path("folder"), true), 3U);
    QCOMPARE(m_scripting->dirContentCount(path("folder"), false), 5U);
    {
        const Permissions file(path("folder/b.txt"), 0);
        const Permissions folder(path("folder/second"), 0);
        QCOMPARE(m_scripting->dirContentCount(path("folder"), true), 2U);
        QCOMPARE(m_scripting->dirContentCount(path("folder"), false), 3U);
    }
    const CurrentFolder current(m_folder->path());
    QCOMPARE(m_scripting->dirContentCount(text("folder")), 3U);
    QCOMPARE(m_scripting->dirContentCount(text("folder/")), 3U);
    QCOMPARE(takeLog(), QByteArray());
}

void tst_ScriptingChecks::nothingIsCountedElsewhere_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("a missing folder") << text("@missing");
    QTest::newRow("a file") << text("@file");
    QTest::newRow("no path") << text("");
    QTest::newRow("a null path") << QString();
    QTest::newRow("an unreadable folder") << text("@unreadable");
}

void tst_ScriptingChecks::nothingIsCountedElsewhere()
{
    QFETCH(QString, name);
    QVERIFY(QDir().mkdir(path("unreadable")) && writeFile(path("unreadable/a"), "x")
            && writeFile(path("file"), "x"));
    const Permissions unreadable(path("unreadable"), 0300);
    // An empty path doesn't mean the current folder.
    const CurrentFolder current(m_folder->path());

    QCOMPARE(m_scripting->dirContentCount(withPaths(name), true), 0U);
    QCOMPARE(m_scripting->dirContentCount(withPaths(name), false), 0U);
    QCOMPARE(takeLog(), QByteArray());
}

void tst_ScriptingChecks::aFolderIsClearedOfItsFiles()
{
    QVERIFY(QDir().mkpath(path("folder/full")) && QDir().mkpath(path("folder/empty"))
            && QDir().mkpath(path("target")));
    for (const char* name : {"folder/a", "folder/b.txt", "folder/.hidden", "folder/full/c",
                             "folder/two words", "target/kept"})
        QVERIFY(writeFile(path(name), "x"));
    QVERIFY(QFile::link(path("target"), path("folder/folder link")));
    QVERIFY(QFile::link(path("target/kept"), path("folder/file link")));
    const Permissions readOnly(path("folder/b.txt"), 0400);

    m_scripting->clearDir(path("folder"));
    QCOMPARE(entries("folder"), QStringList({text(".hidden"), text("empty"), text("full")}));
    QCOMPARE(entries("folder/full"), QStringList({text("c")}));
    QCOMPARE(entries("target"), QStringList({text("kept")}));
    QCOMPARE(takeLog(), QByteArray());
    QVERIFY(!m_scripting->hasFailed());
}

/// What has the name of a folder there is taken for a folder.
void tst_ScriptingChecks::foldersAreLookedUpInTheCurrentFolder()
{
    QVERIFY(QDir().mkpath(path("folder/empty")) && QDir().mkpath(path("folder/full/sub"))
            && QDir().mkpath(path("folder/other")));
    QVERIFY(writeFile(path("folder/a"), "x") && writeFile(path("folder/b"), "x"));
    QVERIFY(QDir().mkpath(path("current/empty")) && QDir().mkpath(path("current/full"))
            && QDir().mkpath(path("current/a")));
    const CurrentFolder current(path("current"));

    m_scripting->clearDir(path("folder"));
    QCOMPARE(entries("folder"), QStringList({text("a"), text("full"), text("other")}));
    QCOMPARE(entries("folder/full"), QStringList({text("sub")}));
    QCOMPARE(entries("current"), QStringList({text("a"), text("empty"), text("full")}));
}

void tst_ScriptingChecks::theClearedFolderAsTheCurrentOne()
{
    QVERIFY(QDir().mkpath(path("folder/empty")) && QDir().mkpath(path("folder/full/sub")));
    QVERIFY(writeFile(path("folder/a"), "x") && writeFile(path("folder/.hidden"), "x"));
    const CurrentFolder current(path("folder"));

    m_scripting->clearDir(text("."));
    QCOMPARE(entries("folder"), QStringList({text(".hidden"), text("full")}));
}

void tst_ScriptingChecks::nothingIsClearedElsewhere_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<int>("mode");

    QTest::newRow("a missing folder") << text("@missing") << 0700;
    QTest::newRow("a file") << text("@folder/a") << 0700;
    QTest::newRow("no path") << text("") << 0700;
    QTest::newRow("a null path") << QString() << 0700;
    QTest::newRow("a folder that can't be written") << text("@folder") << 0500;
    QTest::newRow("a folder that can't be read") << text("@folder") << 0300;
}

void tst_ScriptingChecks::nothingIsClearedElsewhere()
{
    QFETCH(QString, name);
    QFETCH(int, mode);
    QVERIFY(QDir().mkdir(path("folder")) && writeFile(path("folder/a"), "x"));
    {
        const Permissions permissions(path("folder"), mode_t(mode));
        // An empty path doesn't mean the current folder.
        const CurrentFolder current(path("folder"));
        m_scripting->clearDir(withPaths(name));
    }
    QCOMPARE(entries("folder"), QStringList({text("a")}));
    QCOMPARE(takeLog(), QByteArray());
    QVERIFY(!m_scripting->hasFailed());
}

void tst_ScriptingChecks::filesAreRemoved()
{
    QVERIFY(QDir().mkdir(path("folder")) && writeFile(path("file"), "x"));
    QVERIFY(m_scripting->removeFile(path("file")));
    QCOMPARE(entries(), QStringList({text("folder")}));
    QVERIFY(!m_scripting->removeFile(path("file")));
    QVERIFY(!m_scripting->removeFile(path("folder")));
    QTest::ignoreMessage(QtWarningMsg, "QFile::remove: Empty or null file name");
    QCOMPARE(evaluate(text("scripting.removeFile(null)")), text("false"));
    QCOMPARE(entries(), QStringList({text("folder")}));
    QCOMPARE(takeLog(), QByteArray());
}

void tst_ScriptingChecks::filesExist()
{
    QVERIFY(QDir().mkdir(path("folder")) && writeFile(path("file"), QByteArray()));
    QVERIFY(m_scripting->isFileExist(path("file")));
    QVERIFY(m_scripting->isFileExist(path("folder")));
    QVERIFY(!m_scripting->isFileExist(path("missing")));
    QVERIFY(!m_scripting->isFileExist(QString()));
    QCOMPARE(takeLog(), QByteArray());
}

void tst_ScriptingChecks::filesAreCopied()
{
    QVERIFY(writeFile(path("file"), "text") && writeFile(path("other"), "kept"));
    QVERIFY(m_scripting->copyFile(path("file"), path("copy")));
    QCOMPARE(readFile(path("copy")), QByteArray("text"));
    QCOMPARE(readFile(path("file")), QByteArray("text"));
    QVERIFY(!m_scripting->copyFile(path("file"), path("other")));
    QCOMPARE(readFile(path("other")), QByteArray("kept"));
    QVERIFY(!m_scripting->copyFile(path("missing"), path("second")));
    QVERIFY(!m_scripting->copyFile(path("file"), path("missing/copy")));
    QCOMPARE(entries(), QStringList({text("copy"), text("file"), text("other")}));
    QCOMPARE(takeLog(), QByteArray());
}

void tst_ScriptingChecks::textsEnd_data()
{
    QTest::addColumn<QString>("string");
    QTest::addColumn<QString>("end");
    QTest::addColumn<bool>("result");

    QTest::newRow("an end") << text("picture.jpg") << text(".jpg") << true;
    QTest::newRow("an end in capitals") << text("picture.jpg") << text(".JPG") << false;
    QTest::newRow("a start") << text("picture.jpg") << text("picture") << false;
    QTest::newRow("the whole text") << text("a") << text("a") << true;
    QTest::newRow("more than the text") << text("a") << text("aa") << false;
    QTest::newRow("an empty end") << text("a") << text("") << true;
    QTest::newRow("an end of an empty text") << text("") << text("a") << false;
    QTest::newRow("an accented end") << text(u8"né") << text(u8"é") << true;
}

void tst_ScriptingChecks::textsEnd()
{
    QFETCH(QString, string);
    QFETCH(QString, end);
    QFETCH(bool, result);
    QCOMPARE(m_scripting->stringEndsWith(string, end), result);
}

void tst_ScriptingChecks::thePlatformHasAFixedName()
{
    QCOMPARE(m_scripting->platformName(), text("mac_os_x"));
}

void tst_ScriptingChecks::aBoxTakesASecond()
{
    QTimer timer;
    QSignalSpy ticks(&timer, &QTimer::timeout);
    timer.start(100);
    CDelayedCall::invoke(300, this, "countDelayedCall", true);
    bool wasRecordedBefore = false;
    QTimer::singleShot(0, &timer,
                       [&] { wasRecordedBefore = m_scripting->isMessageBoxShown(text("text")); });
    QElapsedTimer clock;
    clock.start();
    m_scripting->addShownMessageBox(text("text"));
    const qint64 elapsed = clock.elapsed();
    QVERIFY2(elapsed >= 900 && elapsed < 5000, QByteArray::number(elapsed).constData());
    QVERIFY(ticks.count() > 2);
    QCOMPARE(m_delayedCalls, 1);
    QVERIFY(wasRecordedBefore);
    QCOMPARE(takeLog(), QByteArray());
    QVERIFY(!m_scripting->hasFailed());
}

void tst_ScriptingChecks::aBoxShutsOutTheUser()
{
    QLineEdit edit;
    edit.show();
    QVERIFY(QTest::qWaitForWindowExposed(&edit));
    bool tried = false;
    QTimer::singleShot(200, &edit, [&] {
        tried = true;
        QKeyEvent press(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, text("a"));
        QCoreApplication::sendEvent(&edit, &press);
        edit.close();
    });
    m_scripting->addShownMessageBox(text("text"));
    QVERIFY(tried);
    QCOMPARE(edit.text(), QString());
    QVERIFY(edit.isVisible());

    QKeyEvent press(QEvent::KeyPress, Qt::Key_B, Qt::NoModifier, text("b"));
    QCoreApplication::sendEvent(&edit, &press);
    QCOMPARE(edit.text(), text("b"));
    edit.close();
    QVERIFY(!edit.isVisible());
}

void tst_ScriptingChecks::aBoxWithoutTextFailsTheTest_data()
{
    QTest::addColumn<QString>("expression");

    QTest::newRow("an empty text") << text("scripting.addShownMessageBox('')");
    QTest::newRow("null") << text("scripting.addShownMessageBox(null)");
    QTest::newRow("undefined") << text("scripting.addShownMessageBox(undefined)");
}

void tst_ScriptingChecks::aBoxWithoutTextFailsTheTest()
{
    QFETCH(QString, expression);

    bool served = false;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] { served = true; });
    timer.start(0);
    QCOMPARE(evaluate(expression), text("undefined"));
    QVERIFY2(!served, "nothing is waited for");
    QVERIFY(m_scripting->hasFailed());
    QCOMPARE(takeLog(), QByteArray("Empty message for message box\n"));
    QVERIFY(!m_scripting->isMessageBoxShown(QString()));
    QVERIFY(!m_scripting->isMessageBoxShown(text(""), 0));
}

void tst_ScriptingChecks::boxesAreFound_data()
{
    QTest::addColumn<QStringList>("boxes");

    QTest::newRow("none") << QStringList();
    QTest::newRow("two") << QStringList({text("first"), text("second")});
    QTest::newRow("one twice") << QStringList({text("first"), text("first")});
}

void tst_ScriptingChecks::boxesAreFound()
{
    QFETCH(QStringList, boxes);
    struct Question
    {
        const char* message;
        int number;
        const char* rowsOfYes;
    };
    const Question questions[] = {
        {"first", -1, "two, one twice"},
        {"second", -1, "two"},
        {"first", 0, "two, one twice"},
        {"second", 0, ""},
        {"first", 1, "one twice"},
        {"second", 1, "two"},
        {"first", 2, ""},
        {"second", 2, ""},
        {"First", -1, ""},
        {"fir", -1, ""},
        {"firstsecond", -1, ""},
        {"", -1, ""},
        {"", 0, ""},
        {"", 2, ""},
        {"first", std::numeric_limits<int>::max(), ""},
    };

    for (const QString& box : boxes)
        m_scripting->addShownMessageBox(box);
    for (const Question& question : questions) {
        const bool expected = QByteArray(question.rowsOfYes).contains(QTest::currentDataTag());
        QVERIFY2(
            m_scripting->isMessageBoxShown(text(question.message), question.number) == expected,
            qPrintable(QStringLiteral("'%1' %2").arg(text(question.message)).arg(question.number)));
    }
    QCOMPARE(m_scripting->isMessageBoxShown(text("second")), boxes.contains(text("second")));
    QCOMPARE(takeLog(), QByteArray());
}

void tst_ScriptingChecks::aFailureClosesTheDialogBelowABox()
{
    QDialog dialog;
    dialog.open();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QTimer::singleShot(300, &dialog, [&] { sendTick(*m_scripting); });
    m_scripting->addShownMessageBox(text("text"));
    QVERIFY(m_scripting->hasFailed());
    QVERIFY(!dialog.isVisible());
    QCOMPARE(takeLog(), QByteArray("running is timed out\n"));
}

void tst_ScriptingChecks::aFailureClosesADialogOnlyOnce()
{
    QDialog dialog;
    dialog.open();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QTimer::singleShot(300, &dialog, [&] { m_scripting->fail(text("failed")); });
    m_scripting->addShownMessageBox(text("first"));
    QVERIFY(!dialog.isVisible());

    dialog.open();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    m_scripting->addShownMessageBox(text("second"));
    QVERIFY(dialog.isVisible());
    QCOMPARE(takeLog(), QByteArray("failed\n"));
}

void tst_ScriptingChecks::aFailureClosesTheDialogBelowNestedBoxes()
{
    QDialog dialog;
    dialog.open();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));
    QTimer::singleShot(100, &dialog, [&] { m_scripting->addShownMessageBox(text("inner")); });
    QTimer::singleShot(300, &dialog, [&] { m_scripting->fail(text("failed")); });
    m_scripting->addShownMessageBox(text("outer"));
    QVERIFY(!dialog.isVisible());
    QVERIFY(m_scripting->isMessageBoxShown(text("outer"), 0));
    QVERIFY(m_scripting->isMessageBoxShown(text("inner"), 1));
    QCOMPARE(takeLog(), QByteArray("failed\n"));
}

void tst_ScriptingChecks::aTimeOutEndsARunThatIsInADialogAndABox()
{
    connect(m_scripting.get(), &CScripting::startTest, this, [&] {
        QDialog dialog;
        QTimer::singleShot(0, &dialog, [&] { m_scripting->sendSignal(&dialog); });
        QTimer::singleShot(300, &dialog, [&] { sendTick(*m_scripting); });
        QTimer::singleShot(20000, &dialog, &QDialog::accept); // lest the test hang
        m_endedByItself = dialog.exec() == QDialog::Accepted;
    });
    QCOMPARE(run("scripting.resendSignal.connect(function() {\n"
                 "    scripting.addShownMessageBox('text');\n"
                 "});\n"),
             QByteArray("[startTest] start of execute\n"
                        "running is timed out\n"
                        "[startTest] finish of execute\n"
                        "FAIL\n"));
    QVERIFY(!m_endedByItself);
    QVERIFY(m_scripting->hasFailed());
}

void tst_ScriptingChecks::settingsAreThoseOfTheProduct()
{
    QCOMPARE(m_scripting->getSettingValue(text("key")), QVariant());
    QVERIFY(!m_scripting->hasSettingKey(text("key")));
    m_scripting->removeSettingKey(text("key"));

    m_scripting->setSettingValue(text("key"), 42);
    m_scripting->setSettingValue(text("group/key"), text("text"));
    QCOMPARE(CSettings(nullptr, true).value(text("key")).toInt(), 42);
    QCOMPARE(CSettings(nullptr, true).value(text("group/key")).toString(), text("text"));
    CSettings().setValue(text("other"), 1.5);
    QCOMPARE(m_scripting->getSettingValue(text("key")).toInt(), 42);
    QCOMPARE(m_scripting->getSettingValue(text("other")).toDouble(), 1.5);
    QVERIFY(m_scripting->hasSettingKey(text("group/key")));
    QVERIFY(!m_scripting->hasSettingKey(text("Key")));

    for (const char* key : {"key", "group", "other"})
        m_scripting->removeSettingKey(text(key));
    QVERIFY(!m_scripting->hasSettingKey(text("key")));
    QVERIFY(!m_scripting->hasSettingKey(text("group/key")));
    QVERIFY(!CSettings(nullptr, true).contains(text("key")));
    QCOMPARE(takeLog(), QByteArray());
}

void tst_ScriptingChecks::settingsAreThoseOfTheOverlay()
{
    m_scripting->setSettingValue(text("kept"), text("kept"));
    {
        const CurrentFolder current(m_folder->path());
        CTemporarySettings overlay(nullptr);
        CSettings::setTemporarySettings(overlay);
        QVERIFY(!m_scripting->hasSettingKey(text("kept")));
        QCOMPARE(evaluate(text("scripting.setSettingValue('key', 'new');"
                               "scripting.getSettingValue('key')")),
                 text("new"));
        QVERIFY(m_scripting->hasSettingKey(text("key")));
        QCOMPARE(overlay.value(text("key")), QVariant(text("new")));
        QVERIFY(!CSettings(nullptr, true).contains(text("key")));
        m_scripting->removeSettingKey(text("key"));
        QVERIFY(!overlay.contains(text("key")));
        m_scripting->removeSettingKey(text("kept"));
        m_scripting->setSettingValue(text("key"), text("lost"));
    }
    QVERIFY(!m_scripting->hasSettingKey(text("key")));
    QCOMPARE(m_scripting->getSettingValue(text("kept")), QVariant(text("kept")));
    m_scripting->removeSettingKey(text("kept"));
}

int main(int argc, char* argv[])
{
    if (!takeOrdinaryFileRights())
        qFatal("can't give up root's file rights");
    QApplication application(argc, argv);
    tst_ScriptingChecks test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_ScriptingChecks.moc"
