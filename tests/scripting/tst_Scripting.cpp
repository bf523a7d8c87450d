#include "Scripting.h"

#include "MessageCounter.h"
#include "MetaMethods.h"

#include <QColor>
#include <QCoreApplication>
#include <QDateTime>
#include <QDialog>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QMetaMethod>
#include <QPoint>
#include <QPointer>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTextCodec>
#include <QTimer>
#include <QUrl>

#include <memory>
#include <optional>
#include <thread>
#include <type_traits>
#include <vector>

using VEK_NAMESPACE::CScripting;

namespace {

static_assert(std::is_base_of<QObject, CScripting>::value, "scripts see it as an object");
static_assert(std::is_base_of<Singleton<CScripting>, CScripting>::value, "there is one for all");

bool writeFile(const QString& path, const QByteArray& text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("can't be read");
}

/// What stands below the three lines at the top of a report.
QByteArray readEntries(const QString& path)
{
    const QByteArray report = readFile(path);
    int start = 0;
    for (int line = 0; line < 3; ++line)
        start = report.indexOf('\n', start) + 1;
    return report.mid(start);
}

/// The methods of CScripting itself of a kind, written as they are declared.
QStringList declarations(QMetaMethod::MethodType type, QMetaMethod::Access access)
{
    QStringList result;
    const QMetaObject& metaObject = CScripting::staticMetaObject;
    for (int i = metaObject.methodOffset(); i < metaObject.methodCount(); ++i) {
        const QMetaMethod method = metaObject.method(i);
        if (method.methodType() == type && method.access() == access)
            result << MetaMethods::declaration(method);
    }
    return result;
}

class Receiver : public QObject
{
public:
    bool event(QEvent* event) override
    {
        if (event->type() == QEvent::User)
            ++count;
        return QObject::event(event);
    }

    int count = 0;
};

/// Runs the event loop while something happens in it; 0 means that the application was quit.
template <typename Function>
int execute(Function function)
{
    QTimer::singleShot(0, qApp, function);
    QTimer expiry;
    QObject::connect(&expiry, &QTimer::timeout, &expiry, [] { QCoreApplication::exit(1); });
    expiry.start(500);
    return QCoreApplication::exec();
}

void sendTick(QObject& object)
{
    QTimerEvent tick(987654);
    QCoreApplication::sendEvent(&object, &tick);
}

} // namespace

class tst_Scripting : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void theSingletonIsOneObject();
    void itStartsIdle();
    void signalsAreDeclaredInOrder();
    void slotsAreDeclaredInOrder();
    void theFailureSlotNeedsNoText();
    void hostCallsAreNotVisibleToScripts();

    void theReportBeginsWithThreeLines();
    void theReportLiesBesideTheScript_data();
    void theReportLiesBesideTheScript();
    void aRelativePathMeansTheCurrentFolder();
    void aLinkInPlaceOfTheReportIsReplaced();
    void aScriptWithoutTextIsNoScriptingMode_data();
    void aScriptWithoutTextIsNoScriptingMode();
    void aScriptThatCannotBeReadChangesNothing_data();
    void aScriptThatCannotBeReadChangesNothing();
    void aReportThatCannotBeWrittenIsLeftOut();
    void aSecondScriptStartsAnotherReport();
    void aSecondScriptOfTheSameNameStartsTheReportAgain();
    void aSecondScriptWithoutTextEndsScriptingMode();
    void aSecondReportThatCannotBeWrittenEndsTheFirst();
    void theNextScriptGetsAReportAgain();

    void eachValueIsOneLine_data();
    void eachValueIsOneLine();
    void anEmptyTextIsNoLine_data();
    void anEmptyTextIsNoLine();
    void linesAreWrittenAtOnce();
    void theReportIsInTheDefaultCodec();
    void noLineIsLostBetweenThreads();

    void onlyTheFirstFailureIsLogged();
    void aFailureWithoutTextIsTheFirstAsWell();
    void theFirstFailureClosesOneModalWindow();
    void sendSignalPassesTheObjectOn();

    void waitingServesEvents_data();
    void waitingServesEvents();
    void waitingTakesItsTime();

    void aTickOfAnyTimerFailsTheTest();
    void aRunRaisesItsSignalsInOrder();
    void theTimeOutTicksOn();
    void anExceptionHasATextWhileItIsPending();
    void theFirstObjectKeepsTheName();

private:
    QString path(const char* name) const { return m_folder->filePath(QString::fromUtf8(name)); }
    QString writeScript(const char* name, const QByteArray& text = "1\n") const
    {
        return writeFile(path(name), text) ? path(name) : QString();
    }

    std::optional<MessageCounter> m_messages;
    std::unique_ptr<QTemporaryDir> m_folder;
};

void tst_Scripting::init()
{
    m_messages.emplace();
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(m_folder->isValid());
}

void tst_Scripting::cleanup()
{
    m_folder.reset();
    const int messages = m_messages->count();
    m_messages.reset();
    QCOMPARE(messages, 0);
}

void tst_Scripting::theSingletonIsOneObject()
{
    QCOMPARE(&CScripting::instance(), &CScripting::instance());
    QCOMPARE(&CScripting::instance(), &Singleton<CScripting>::instance());
    QVERIFY(!CScripting::instance().isScriptingMode());
}

void tst_Scripting::itStartsIdle()
{
    CScripting scripting;
    QVERIFY(!scripting.isScriptingMode());
    QVERIFY(!scripting.hasFailed());
    QCOMPARE(scripting.testName(), QString());
    QVERIFY(scripting.lastExceptionMessage(QScriptValue()).isNull());

    QSignalSpy finished(&scripting, &CScripting::testFinished);
    scripting.setTimeOut(10);
    scripting.startScript();
    scripting.log("nowhere to write");
    QTest::qWait(300);
    QVERIFY2(!scripting.hasFailed(), "a run would have been timed out");
    QCOMPARE(finished.count(), 0);
    QVERIFY(QDir(m_folder->path()).isEmpty());
}

void tst_Scripting::signalsAreDeclaredInOrder()
{
    QCOMPARE(declarations(QMetaMethod::Signal, QMetaMethod::Public),
             QStringList({
                 QStringLiteral("void initializeTest()"),
                 QStringLiteral("void cleanupTest()"),
                 QStringLiteral("void startTest()"),
                 QStringLiteral("void exceptionInTest()"),
                 QStringLiteral("void testFinished()"),
                 QStringLiteral("void resendSignal(QObject* object)"),
                 QStringLiteral("void createUndoCommandForSlider(QString slidername)"),
             }));
}

void tst_Scripting::slotsAreDeclaredInOrder()
{
    const QStringList expected = {
        QStringLiteral("QString testName()"),
        QStringLiteral("void run()"),
        QStringLiteral("void test()"),
        QStringLiteral("void sendSignal(QObject* object)"),
        QStringLiteral("void log(QVariant message)"),
        QStringLiteral("void wait(int msec)"),
        QStringLiteral("void fail(QString message)"),
        QStringLiteral("default void fail()"),
    };
    // Slots that drive windows and check results stand between them.
    QStringList found;
    const QStringList declared = declarations(QMetaMethod::Slot, QMetaMethod::Public);
    for (const QString& declaration : declared) {
        if (expected.contains(declaration))
            found << declaration;
    }
    QCOMPARE(found, expected);
    QCOMPARE(declarations(QMetaMethod::Slot, QMetaMethod::Private),
             QStringList({QStringLiteral("void handleJScriptException(QScriptValue exception)")}));
    QCOMPARE(declarations(QMetaMethod::Slot, QMetaMethod::Protected), QStringList());
}

void tst_Scripting::theFailureSlotNeedsNoText()
{
    const QMetaObject& metaObject = CScripting::staticMetaObject;
    const int index = metaObject.indexOfSlot("fail()");
    QVERIFY(index >= 0);
    QVERIFY(metaObject.method(index).attributes() & QMetaMethod::Cloned);
}

void tst_Scripting::hostCallsAreNotVisibleToScripts()
{
    const QList<QByteArray> hostCalls = {
        "hasFailed",       "setPathToScript",      "setTimeOut",           "startScript",
        "isScriptingMode", "makeObjectScriptable", "lastExceptionMessage", "invokeSignalForScript"};
    const QMetaObject& metaObject = CScripting::staticMetaObject;
    for (int i = 0; i < metaObject.methodCount(); ++i) {
        const QByteArray name = metaObject.method(i).name();
        QVERIFY2(!hostCalls.contains(name), name.constData());
    }
    QCOMPARE(metaObject.propertyCount(), QObject::staticMetaObject.propertyCount());
}

void tst_Scripting::theReportBeginsWithThreeLines()
{
    const QDateTime before = QDateTime::currentDateTime();
    CScripting scripting;
    scripting.setPathToScript(writeScript("test.js"));

    const QList<QByteArray> lines = readFile(path("testReport.txt")).split('\n');
    QCOMPARE(lines.count(), 4);
    QVERIFY(lines.at(0).startsWith("Date and time: "));
    const QString dateText = QString::fromLatin1(lines.at(0).mid(15));
    const QDateTime date = QDateTime::fromString(dateText, QStringLiteral("yyyy-MM-ddTHH:mm:ss"));
    QVERIFY2(date.isValid(), qPrintable(dateText));
    QVERIFY(date >= before.addSecs(-1) && date <= QDateTime::currentDateTime());
    QCOMPARE(lines.at(1), QByteArray("Build number: 3.1.251.0"));
    QCOMPARE(lines.at(2), QByteArray("Product name: Vek Marlowick 3"));
    QCOMPARE(lines.at(3), QByteArray());
}

void tst_Scripting::theReportLiesBesideTheScript_data()
{
    QTest::addColumn<QString>("testName");
    QTest::addColumn<QString>("report");

    QTest::newRow("test.js") << "test"
                             << "testReport.txt";
    QTest::newRow("alpha.beta.js") << "alpha.beta"
                                   << "alpha.betaReport.txt";
    QTest::newRow("nosuffix") << "nosuffix"
                              << "nosuffixReport.txt";
    QTest::newRow("two words.js") << "two words"
                                  << "two wordsReport.txt";
    QTest::newRow("ends.") << "ends"
                           << "endsReport.txt";
    QTest::newRow(".js") << ""
                         << "Report.txt";
    QTest::newRow(u8"Prüfung.js") << u8"Prüfung" << u8"PrüfungReport.txt";
}

void tst_Scripting::theReportLiesBesideTheScript()
{
    QFETCH(QString, testName);
    QFETCH(QString, report);

    CScripting scripting;
    scripting.setPathToScript(writeScript(QTest::currentDataTag()));
    QVERIFY(scripting.isScriptingMode());
    QCOMPARE(scripting.testName(), testName);
    QVERIFY(QFileInfo(m_folder->filePath(report)).isFile());
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::Files | QDir::Hidden).count(), 2);
}

void tst_Scripting::aRelativePathMeansTheCurrentFolder()
{
    const QString oldFolder = QDir::currentPath();
    QVERIFY(QDir().mkpath(path("a/b")));
    writeScript("a/test.js");
    QVERIFY(QDir::setCurrent(path("a/b")));
    CScripting scripting;
    scripting.setPathToScript(QStringLiteral("../test.js"));
    QVERIFY(QDir::setCurrent(oldFolder));

    scripting.log("text");
    QCOMPARE(readEntries(path("a/testReport.txt")), QByteArray("text\n"));
}

void tst_Scripting::aLinkInPlaceOfTheReportIsReplaced()
{
    QVERIFY(writeFile(path("target"), "kept"));
    QVERIFY(QFile::link(path("target"), path("testReport.txt")));
    CScripting scripting;
    scripting.setPathToScript(writeScript("test.js"));
    QCOMPARE(readFile(path("target")), QByteArray("kept"));
    QVERIFY(!QFileInfo(path("testReport.txt")).isSymLink());
}

void tst_Scripting::aScriptWithoutTextIsNoScriptingMode_data()
{
    QTest::addColumn<QByteArray>("text");

    QTest::newRow("an empty file") << QByteArray("");
    QTest::newRow("a file that begins with NUL") << QByteArray("\0text", 5);
}

void tst_Scripting::aScriptWithoutTextIsNoScriptingMode()
{
    QFETCH(QByteArray, text);

    CScripting scripting;
    scripting.setPathToScript(writeScript("test.js", text));
    QVERIFY(!scripting.isScriptingMode());
    QCOMPARE(scripting.testName(), QStringLiteral("test"));
    QCOMPARE(readFile(path("testReport.txt")).count('\n'), 3);
}

void tst_Scripting::aScriptThatCannotBeReadChangesNothing_data()
{
    QTest::addColumn<QString>("name");

    QTest::newRow("a missing file") << "missing.js";
    QTest::newRow("a folder") << "folder.js";
    QTest::newRow("a file in a missing folder") << "missing/other.js";
    QTest::newRow("no name at all") << "";
}

void tst_Scripting::aScriptThatCannotBeReadChangesNothing()
{
    QFETCH(QString, name);
    QVERIFY(QDir().mkdir(path("folder.js")));
    const QString unreadable = name.isEmpty() ? QString() : m_folder->filePath(name);

    CScripting scripting;
    scripting.setPathToScript(unreadable);
    QVERIFY(!scripting.isScriptingMode());
    QCOMPARE(scripting.testName(), QString());
    QCOMPARE(QDir(m_folder->path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot),
             QStringList({QStringLiteral("folder.js")}));

    scripting.setPathToScript(writeScript("test.js"));
    scripting.log("before");
    scripting.setPathToScript(unreadable);
    scripting.log("after");
    QVERIFY(scripting.isScriptingMode());
    QCOMPARE(scripting.testName(), QStringLiteral("test"));
    QCOMPARE(readEntries(path("testReport.txt")), QByteArray("before\nafter\n"));
}

void tst_Scripting::aReportThatCannotBeWrittenIsLeftOut()
{
    QVERIFY(QDir().mkdir(path("testReport.txt")));
    CScripting scripting;
    scripting.setPathToScript(writeScript("test.js"));
    scripting.log("text");
    QVERIFY(scripting.isScriptingMode());
    QCOMPARE(scripting.testName(), QStringLiteral("test"));
    QVERIFY(QDir(path("testReport.txt")).isEmpty());
}

void tst_Scripting::aSecondScriptStartsAnotherReport()
{
    CScripting scripting;
    scripting.setPathToScript(writeScript("first.js"));
    scripting.log("one");
    scripting.setPathToScript(writeScript("second.js"));
    scripting.log("two");
    QCOMPARE(scripting.testName(), QStringLiteral("second"));
    QCOMPARE(readEntries(path("firstReport.txt")), QByteArray("one\n"));
    QCOMPARE(readEntries(path("secondReport.txt")), QByteArray("two\n"));
}

void tst_Scripting::aSecondScriptOfTheSameNameStartsTheReportAgain()
{
    CScripting scripting;
    scripting.setPathToScript(writeScript("test.js"));
    scripting.log("one");
    scripting.setPathToScript(path("test.js"));
    scripting.log("two");
    QCOMPARE(readEntries(path("testReport.txt")), QByteArray("two\n"));
}

void tst_Scripting::aSecondScriptWithoutTextEndsScriptingMode()
{
    CScripting scripting;
    scripting.setPathToScript(writeScript("first.js"));
    scripting.setPathToScript(writeScript("second.js", ""));
    QVERIFY(!scripting.isScriptingMode());
    QCOMPARE(scripting.testName(), QStringLiteral("second"));
}

void tst_Scripting::aSecondReportThatCannotBeWrittenEndsTheFirst()
{
    QVERIFY(QDir().mkdir(path("secondReport.txt")));
    CScripting scripting;
    scripting.setPathToScript(writeScript("first.js"));
    scripting.setPathToScript(writeScript("second.js"));
    scripting.log("text");
    QVERIFY(scripting.isScriptingMode());
    QCOMPARE(scripting.testName(), QStringLiteral("second"));
    QCOMPARE(readEntries(path("firstReport.txt")), QByteArray());
}

void tst_Scripting::theNextScriptGetsAReportAgain()
{
    QVERIFY(QDir().mkdir(path("firstReport.txt")));
    CScripting scripting;
    scripting.setPathToScript(writeScript("first.js"));
    scripting.setPathToScript(writeScript("second.js"));
    scripting.log("text");
    QCOMPARE(readEntries(path("secondReport.txt")), QByteArray("text\n"));
}

void tst_Scripting::eachValueIsOneLine_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QByteArray>("line");

    QTest::newRow("text") << QVariant("some text") << QByteArray("some text\n");
    QTest::newRow("a blank") << QVariant(" ") << QByteArray(" \n");
    QTest::newRow("text with a line end") << QVariant("a\nb") << QByteArray("a\nb\n");
    QTest::newRow("a character") << QVariant(QChar('x')) << QByteArray("x\n");
    QTest::newRow("bytes") << QVariant(QByteArray("bytes")) << QByteArray("bytes\n");
    QTest::newRow("a whole number") << QVariant(-42) << QByteArray("-42\n");
    QTest::newRow("a long number")
        << QVariant(Q_INT64_C(9007199254740993)) << QByteArray("9007199254740993\n");
    QTest::newRow("a fraction") << QVariant(0.1) << QByteArray("0.1\n");
    QTest::newRow("truth") << QVariant(true) << QByteArray("true\n");
    QTest::newRow("a date") << QVariant(QDate(2020, 2, 29)) << QByteArray("2020-02-29\n");
    QTest::newRow("a list of one text")
        << QVariant(QStringList({QStringLiteral("one")})) << QByteArray("one\n");
    QTest::newRow("an address") << QVariant(QUrl(QStringLiteral("file:///a")))
                                << QByteArray("file:///a\n");
    QTest::newRow("a colour") << QVariant(QColor(255, 128, 0)) << QByteArray("#ff8000\n");
    QTest::newRow("no value") << QVariant() << QByteArray("QVariant(Invalid) \n");
    QTest::newRow("a point") << QVariant(QPoint(1, -2))
                             << QByteArray("QVariant(QPoint, QPoint(1,-2)) \n");
    QTest::newRow("a list of values") << QVariant(QVariantList({1, true}))
                                      << QByteArray("QVariant(QVariantList, (QVariant(int, 1), "
                                                    "QVariant(bool, true))) \n");
    QTest::newRow("a list of two texts")
        << QVariant(QStringList({QStringLiteral("a"), QStringLiteral("b")}))
        << QByteArray("QVariant(QStringList, (\"a\", \"b\")) \n");
    QTest::newRow("an empty map") << QVariant(QVariantMap())
                                  << QByteArray("QVariant(QVariantMap, QMap()) \n");
}

void tst_Scripting::eachValueIsOneLine()
{
    QFETCH(QVariant, value);
    QFETCH(QByteArray, line);

    CScripting scripting;
    scripting.setPathToScript(writeScript("test.js"));
    scripting.log(value);
    QCOMPARE(readEntries(path("testReport.txt")), line);
}

void tst_Scripting::anEmptyTextIsNoLine_data()
{
    QTest::addColumn<QVariant>("value");

    QTest::newRow("an empty text") << QVariant("");
    QTest::newRow("a null text") << QVariant(QString());
    QTest::newRow("no bytes") << QVariant(QByteArray());
}

void tst_Scripting::anEmptyTextIsNoLine()
{
    QFETCH(QVariant, value);

    CScripting scripting;
    scripting.setPathToScript(writeScript("test.js"));
    scripting.log(value);
    scripting.log("end");
    QCOMPARE(readEntries(path("testReport.txt")), QByteArray("end\n"));
}

void tst_Scripting::linesAreWrittenAtOnce()
{
    CScripting scripting;
    scripting.setPathToScript(writeScript("test.js"));
    scripting.log("one");
    QCOMPARE(readEntries(path("testReport.txt")), QByteArray("one\n"));
    scripting.log("two");
    QCOMPARE(readEntries(path("testReport.txt")), QByteArray("one\ntwo\n"));
}

void tst_Scripting::theReportIsInTheDefaultCodec()
{
    QTextCodec* const oldCodec = QTextCodec::codecForLocale();
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
    CScripting scripting;
    scripting.setPathToScript(writeScript("test.js"));
    scripting.log(QString::fromUtf8(u8"Größe"));
    QTextCodec::setCodecForLocale(oldCodec);
    QCOMPARE(readEntries(path("testReport.txt")),
             QByteArray("Gr\xF6\xDF"
                        "e\n"));
}

void tst_Scripting::noLineIsLostBetweenThreads()
{
    const int threadCount = 8;
    const int lineCount = 300;
    CScripting scripting;
    scripting.setPathToScript(writeScript("test.js"));

    std::vector<std::thread> threads;
    threads.reserve(threadCount);
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([&scripting, t] {
            for (int i = 0; i < lineCount; ++i)
                scripting.log(QStringLiteral("thread %1 line %2").arg(t).arg(i));
        });
    }
    for (std::thread& thread : threads)
        thread.join();

    const QByteArray entries = readEntries(path("testReport.txt"));
    QVERIFY(entries.endsWith('\n'));
    std::vector<int> next(threadCount, 0);
    const QList<QByteArray> lines = entries.left(entries.size() - 1).split('\n');
    for (const QByteArray& line : lines) {
        const int thread = line.mid(7, 1).toInt();
        QCOMPARE(line,
                 "thread " + QByteArray::number(thread) + " line "
                     + QByteArray::number(next.at(std::size_t(thread))++));
    }
    QCOMPARE(next, std::vector<int>(threadCount, lineCount));
}

void tst_Scripting::onlyTheFirstFailureIsLogged()
{
    CScripting scripting;
    scripting.setPathToScript(writeScript("test.js"));
    scripting.fail(QStringLiteral("first"));
    QVERIFY(scripting.hasFailed());
    scripting.fail(QStringLiteral("second"));
    QVERIFY(scripting.hasFailed());

    // A failure stays with the process, not with the script.
    scripting.setPathToScript(writeScript("other.js"));
    scripting.fail(QStringLiteral("third"));
    QVERIFY(scripting.hasFailed());
    QCOMPARE(readEntries(path("testReport.txt")), QByteArray("first\n"));
    QCOMPARE(readEntries(path("otherReport.txt")), QByteArray());
}

void tst_Scripting::aFailureWithoutTextIsTheFirstAsWell()
{
    CScripting scripting;
    scripting.setPathToScript(writeScript("test.js"));
    scripting.fail();
    QVERIFY(scripting.hasFailed());
    scripting.fail(QStringLiteral("second"));
    QCOMPARE(readEntries(path("testReport.txt")), QByteArray());
}

void tst_Scripting::theFirstFailureClosesOneModalWindow()
{
    QDialog modeless;
    modeless.show();
    QDialog lower;
    lower.open();
    QDialog upper(&lower);
    upper.open();
    QVERIFY(QTest::qWaitForWindowExposed(&upper));

    CScripting scripting;
    scripting.fail();
    QVERIFY(!upper.isVisible());
    QVERIFY(lower.isVisible());
    scripting.fail();
    QVERIFY(lower.isVisible());
    QVERIFY(modeless.isVisible());
}

void tst_Scripting::sendSignalPassesTheObjectOn()
{
    CScripting scripting;
    QSignalSpy spy(&scripting, &CScripting::resendSignal);
    scripting.sendSignal(this);
    scripting.sendSignal(nullptr);
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(0).at(0).value<QObject*>(), static_cast<QObject*>(this));
    QCOMPARE(spy.at(1).at(0).value<QObject*>(), static_cast<QObject*>(nullptr));
}

void tst_Scripting::waitingServesEvents_data()
{
    QTest::addColumn<int>("msec");

    QTest::newRow("30 milliseconds") << 30;
    QTest::newRow("no time") << 0;
    QTest::newRow("less than no time") << -1;
}

void tst_Scripting::waitingServesEvents()
{
    QFETCH(int, msec);

    CScripting scripting;
    Receiver receiver;
    QCoreApplication::postEvent(&receiver, new QEvent(QEvent::User));
    const QPointer<QObject> dying = new QObject;
    dying->deleteLater();
    scripting.wait(msec);
    QCOMPARE(receiver.count, 1);
    QVERIFY(dying.isNull());
}

void tst_Scripting::waitingTakesItsTime()
{
    CScripting scripting;
    QTimer timer;
    QSignalSpy ticks(&timer, &QTimer::timeout);
    timer.start(20);
    QElapsedTimer clock;
    clock.start();
    scripting.wait(300);
    QVERIFY(clock.elapsed() >= 300);
    QVERIFY(clock.elapsed() < 10000);
    QVERIFY(ticks.count() > 1);
}

void tst_Scripting::aTickOfAnyTimerFailsTheTest()
{
    CScripting scripting;
    scripting.setPathToScript(writeScript("test.js"));
    QCOMPARE(execute([&] { sendTick(scripting); }), 1);
    QVERIFY(scripting.hasFailed());
    sendTick(scripting);
    QCOMPARE(readEntries(path("testReport.txt")), QByteArray("running is timed out\n"));
}

void tst_Scripting::aRunRaisesItsSignalsInOrder()
{
    CScripting scripting;
    QStringList raised;
    const auto note = [&raised](const char* name) {
        return [&raised, name] { raised << QString::fromLatin1(name); };
    };
    connect(&scripting, &CScripting::testFinished, this, note("testFinished"));
    connect(&scripting, &CScripting::cleanupTest, this, note("cleanupTest"));
    connect(&scripting, &CScripting::startTest, this, note("startTest"));
    connect(&scripting, &CScripting::initializeTest, this, note("initializeTest"));
    connect(&scripting, &CScripting::exceptionInTest, this, note("exceptionInTest"));
    QByteArray entriesAtEnd;
    connect(&scripting, &CScripting::testFinished, this,
            [&] { entriesAtEnd = readEntries(path("testReport.txt")); });

    // Neither counts: the last one before the run is read, and none after.
    scripting.setTimeOut(10);
    scripting.setPathToScript(writeScript("test.js", "scripting.log('file');\n"));
    QElapsedTimer clock;
    clock.start();
    qint64 started = 0;
    connect(&scripting, &CScripting::initializeTest, this, [&] {
        started = clock.elapsed();
        scripting.setTimeOut(10);
    });
    scripting.startScript();
    scripting.setTimeOut(0);
    QCOMPARE(readEntries(path("testReport.txt")), QByteArray());
    QTRY_VERIFY_WITH_TIMEOUT(raised.contains(QStringLiteral("testFinished")), 30000);

    QVERIFY2(started >= 90, "the run starts 100 milliseconds later");
    QVERIFY2(clock.elapsed() - started >= 3000, "the end is 3000 milliseconds of events later");
    QVERIFY(!scripting.hasFailed());
    QCOMPARE(raised,
             QStringList({QStringLiteral("initializeTest"), QStringLiteral("startTest"),
                          QStringLiteral("cleanupTest"), QStringLiteral("testFinished")}));
    QVERIFY(entriesAtEnd.startsWith("file\n"
                                    "[initializeTest] start of execute\n"
                                    "[initializeTest] finish of execute\n"
                                    "[startTest] start of execute\n"
                                    "[startTest] finish of execute\n"
                                    "[cleanupTest] start of execute\n"
                                    "[cleanupTest] finish of execute\n"
                                    "Test time: "));
    QVERIFY(entriesAtEnd.endsWith("\nPASS\n"));

    // The first tick after the end is the one that quits.
    QCOMPARE(execute([&] { sendTick(scripting); }), 0);
    QVERIFY(scripting.hasFailed());
    QCOMPARE(readEntries(path("testReport.txt")), entriesAtEnd + "running is timed out\n");
}

void tst_Scripting::theTimeOutTicksOn()
{
    class Ticking : public CScripting
    {
    public:
        QList<int> ids;
        QElapsedTimer clock;
        qint64 firstTick = 0;

    protected:
        void timerEvent(QTimerEvent* event) override
        {
            if (ids.isEmpty())
                firstTick = clock.elapsed();
            ids << event->timerId();
        }
    };

    Ticking scripting;
    QSignalSpy finished(&scripting, &CScripting::testFinished);
    scripting.setPathToScript(writeScript("test.js"));
    scripting.setTimeOut(200);
    scripting.clock.start();
    scripting.startScript();
    QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 30000);
    const int ticksDuringRun = scripting.ids.count();
    QVERIFY2(scripting.firstTick >= 250, "the timer starts with the run");
    QVERIFY(ticksDuringRun > 1);
    QVERIFY(ticksDuringRun < 150);
    QTRY_VERIFY(scripting.ids.count() > ticksDuringRun);
    QCOMPARE(scripting.ids.count(scripting.ids.first()), scripting.ids.count());
    QCOMPARE(readEntries(path("testReport.txt")), QByteArray("PASS\n"));
}

void tst_Scripting::anExceptionHasATextWhileItIsPending()
{
    CScripting scripting;
    QStringList messages;
    connect(&scripting, &CScripting::exceptionInTest, this, [&] {
        const QScriptValue null(QScriptValue::NullValue);
        messages << scripting.lastExceptionMessage(null)
                 << scripting.lastExceptionMessage(QScriptValue(QStringLiteral("other")));
    });
    QSignalSpy finished(&scripting, &CScripting::testFinished);
    scripting.setPathToScript(writeScript("test.js", "\n\nthrow 'text';\n"));
    scripting.startScript();
    QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 30000);
    QCOMPARE(messages,
             QStringList({QStringLiteral("uncaught exception at line 3 ( text )"),
                          QStringLiteral("uncaught exception at line 3 ( other )")}));
    QVERIFY(scripting.hasFailed());
    QCOMPARE(readEntries(path("testReport.txt")),
             QByteArray("[exceptionInTest] start of execute\n"
                        "[exceptionInTest] finish of execute\n"
                        "uncaught exception at line 3 ( text )\n"
                        "FAIL\n"));
}

void tst_Scripting::theFirstObjectKeepsTheName()
{
    const auto named = [](const char* name) {
        auto object = std::make_unique<QObject>();
        object->setObjectName(QString::fromLatin1(name));
        return object;
    };
    const auto first = named("first");
    const auto second = named("second");
    const auto child = named("child");
    child->setParent(first.get());
    auto dead = named("dead");
    QPointer<QObject> unowned = named("unowned").release();

    auto scripting = std::make_unique<CScripting>();
    const auto expose = [&](const char* name, QObject* object) {
        scripting->makeObjectScriptable(QString::fromLatin1(name), object);
    };
    expose("taken", first.get());
    expose("taken", second.get());
    expose("alias", first.get());
    expose("nothing", nullptr);
    expose("", second.get());
    expose("Math", second.get());
    expose("gone", dead.get());
    dead.reset();
    expose("gone", second.get());
    expose("later", nullptr);
    expose("later", second.get());
    expose("unowned", unowned);

    QSignalSpy finished(scripting.get(), &CScripting::testFinished);
    scripting->setPathToScript(
        writeScript("test.js",
                    "scripting.log(taken.objectName);\n"
                    "scripting.log(alias.objectName);\n"
                    "scripting.log(typeof nothing);\n"
                    "scripting.log(typeof this['']);\n"
                    "scripting.log(Math.max(1, 2));\n"
                    "scripting.log(typeof gone);\n"
                    "try { gone.objectName; } catch (e) { scripting.log('dead'); }\n"
                    "scripting.log(later.objectName);\n"
                    "scripting.log(unowned.objectName);\n"
                    "scripting.log(taken.child.objectName);\n"
                    "scripting.log(typeof taken.deleteLater);\n"
                    "taken.unknown = 1;\n"));
    scripting->startScript();
    QTRY_COMPARE_WITH_TIMEOUT(finished.count(), 1, 30000);
    QCOMPARE(readEntries(path("testReport.txt")),
             QByteArray("first\nfirst\nundefined\nundefined\n2\nobject\ndead\nsecond\nunowned\n"
                        "child\nfunction\nPASS\n"));
    QVERIFY(first->dynamicPropertyNames().isEmpty());

    scripting.reset();
    QVERIFY2(!unowned.isNull(), "the engine owns no object");
    delete unowned;
}

QTEST_MAIN(tst_Scripting)
#include "tst_Scripting.moc"
