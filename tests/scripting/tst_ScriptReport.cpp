#include <QByteArrayList>
#include <QCoreApplication>
#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <map>
#include <memory>
#include <vector>

namespace {

using Lines = QByteArrayList;

/// What the host tells of a run that the host ends.
const char passed[] = "script loaded: not failed\nfinished: not failed\nhost quits: not failed\n";
const char failed[] = "script loaded: not failed\nfinished: failed\nhost quits: failed\n";
const char failedWhileQuitting[] =
    "script loaded: not failed\nfinished: not failed\nlibrary quits: failed\n";
const char failedAndQuit[] = "script loaded: not failed\nfinished: failed\nlibrary quits: failed\n";
const char notStarted[] = "no script: not failed\nhost quits: not failed\n";

/// A run, of the file test.js, and what comes of it.
struct Run
{
    const char* name;
    QByteArray script;
    Lines report; ///< what follows the three lines at the top
    const char* told = passed;
    QStringList arguments = {QStringLiteral("test.js")};
    double shortestTestTime = 0.09;
};

using Runs = std::vector<Run>;

/// Script text that connects a function to a signal of "scripting"; one line.
QByteArray on(const char* signal, const char* body)
{
    return QByteArray("scripting.") + signal + ".connect(function() { " + body + " });\n";
}

Lines executed(const char* signal, const Lines& lines = {})
{
    const QByteArray name = QByteArray("[") + signal + "]";
    return Lines{name + " start of execute"} + lines + Lines{name + " finish of execute"};
}

Lines header()
{
    return {"Date and time: *", "Build number: 3.1.251.0", "Product name: Vek Marlowick 3"};
}

QStringList withTimeOut(int msec)
{
    return {QStringLiteral("--timeout=%1").arg(msec), QStringLiteral("test.js")};
}

bool writeFile(const QString& path, const QByteArray& text)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(text) == text.size();
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// The process of a run, in a folder of its own.
class RunningHost
{
public:
    explicit RunningHost(const QStringList& arguments)
    {
        m_process.setProgram(QCoreApplication::applicationDirPath()
                             + QStringLiteral("/scriptReportHost"));
        m_process.setArguments(arguments);
        m_process.setWorkingDirectory(m_folder.path());
    }

    ~RunningHost()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

    QString path(const char* name) const { return m_folder.filePath(QString::fromLatin1(name)); }
    QStringList files() const
    {
        return QDir(m_folder.path()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot, QDir::Name);
    }

    void start()
    {
        m_started = QDateTime::currentDateTime();
        m_clock.start();
        QObject::connect(
            &m_process,
            static_cast<void (QProcess::*)(int, QProcess::ExitStatus)>(&QProcess::finished),
            &m_process, [this] { m_seconds = double(m_clock.elapsed()) / 1000.0; });
        m_process.start();
    }

    QProcess& process() { return m_process; }
    QDateTime started() const { return m_started; }
    double seconds() const { return m_seconds; }

private:
    Q_DISABLE_COPY(RunningHost)

    QTemporaryDir m_folder;
    QProcess m_process;
    QDateTime m_started;
    QElapsedTimer m_clock;
    double m_seconds = 0.0;
};

/// All four signals connected.
const QByteArray allConnected = on("initializeTest", "scripting.log('initializing');")
    + on("startTest", "scripting.log('testing'); scripting.wait(500);")
    + on("cleanupTest", "scripting.log('cleaning up');")
    + on("exceptionInTest", "scripting.log('exception');");

Runs lifecycleRuns()
{
    return {
        {"a script without handlers", "scripting.log('top level');\n", {"top level", "PASS"}},
        {"all signals connected",
         allConnected + "scripting.log('top level');\n",
         {"top level", "[initializeTest] start of execute", "initializing",
          "[initializeTest] finish of execute", "[startTest] start of execute", "testing",
          "[startTest] finish of execute", "[cleanupTest] start of execute", "cleaning up",
          "[cleanupTest] finish of execute", "Test time: *", "PASS"},
         passed,
         {QStringLiteral("test.js")},
         0.55},
        {"only initializeTest connected", on("initializeTest", "scripting.log('text');"),
         executed("initializeTest", {"text"}) + Lines{"PASS"}},
        {"only cleanupTest connected", on("cleanupTest", ""),
         executed("cleanupTest") + Lines{"Test time: *", "PASS"}},
        {"two functions at one signal",
         on("startTest", "scripting.log('one');") + on("startTest", "scripting.log('two');"),
         executed("startTest", {"one", "two"}) + Lines{"PASS"}},
        {"a function connected by a handler",
         on("initializeTest",
            "scripting.startTest.connect(function() { scripting.log('late'); });"),
         executed("initializeTest") + executed("startTest", {"late"}) + Lines{"PASS"}},
        {"a disconnected function",
         "function f() {}\nscripting.startTest.connect(f);\nscripting.startTest.disconnect(f);\n",
         {"PASS"}},
        {"testFinished connected",
         on("testFinished", "scripting.log('after the verdict');"),
         {"PASS", "after the verdict"}},
        {"the name of the test", "scripting.log(scripting.testName());\n", {"test", "PASS"}},
        {"the empty test slot", "scripting.test();\n", {"PASS"}},
        {"a script that runs itself once",
         "if (typeof runs === 'undefined') runs = 0;\n"
         "runs += 1;\n"
         "scripting.log('run ' + runs);\n"
         "if (runs === 1) scripting.run();\n"
         "scripting.log('end');\n",
         {"run 1", "run 2", "end", "PASS", "end", "PASS"},
         "script loaded: not failed\nfinished: not failed\nfinished: not failed\n"
         "host quits: not failed\n"},
        {"a handler that runs the script once more",
         "if (typeof runs === 'undefined') {\n"
         "  runs = 0;\n"
         "  scripting.startTest.connect(function() {\n"
         "    runs += 1;\n"
         "    scripting.log('run ' + runs);\n"
         "    if (runs === 1) scripting.run();\n"
         "  });\n"
         "}\n",
         executed("startTest", Lines{"run 1"} + executed("startTest", {"run 2"}) + Lines{"PASS"})
             + Lines{"PASS"},
         "script loaded: not failed\nfinished: not failed\nfinished: not failed\n"
         "host quits: not failed\n"},
    };
}

Runs failureRuns()
{
    const char fail[] = "scripting.fail('no picture'); scripting.log('never');";
    const QByteArray recover = on("exceptionInTest", "scripting.log('exception');");
    const Lines recovered = executed("exceptionInTest", {"exception"});
    return {
        {"fail at top level", fail, {"no picture", "FAIL"}, failed},
        {"fail at top level with all signals connected", allConnected + fail,
         Lines{"no picture"} + executed("initializeTest", {"initializing"})
             + executed("startTest", {"testing"}) + executed("cleanupTest", {"cleaning up"})
             + Lines{"Test time: *", "FAIL"},
         failed},
        {"fail at top level without text",
         "scripting.fail(); scripting.log('never');",
         {"FAIL"},
         failed},
        {"fail at top level inside a function",
         QByteArray("function f() { ") + fail + " }\nf();\nscripting.log('never');\n",
         {"no picture", "FAIL"},
         failed},
        // The engine ends an aborted handler with an exception of its own, which stays pending
        // until another function runs.
        {"fail in initializeTest", on("initializeTest", fail),
         executed("initializeTest", {"no picture"}) + Lines{"FAIL"}, failed},
        {"fail in initializeTest with an exception handler", on("initializeTest", fail) + recover,
         executed("initializeTest", Lines{"no picture"} + recovered) + Lines{"PASS"}, failed},
        {"fail in initializeTest before a test that runs well",
         on("initializeTest", fail) + on("startTest", ""),
         executed("initializeTest", {"no picture"}) + executed("startTest") + Lines{"PASS"},
         failed},
        {"fail in startTest", on("startTest", fail),
         executed("startTest", {"no picture"}) + Lines{"FAIL"}, failed},
        {"fail in startTest with an exception handler", on("startTest", fail) + recover,
         executed("startTest", Lines{"no picture"} + recovered) + Lines{"PASS"}, failed},
        {"fail in startTest before a second handler",
         on("startTest", fail) + on("startTest", "scripting.log('second');"),
         executed("startTest", {"no picture", "second"}) + Lines{"PASS"}, failed},
        {"fail in startTest without text",
         on("startTest", "scripting.fail(); scripting.log('never');"),
         executed("startTest") + Lines{"FAIL"}, failed},
        {"fail in cleanupTest", on("cleanupTest", fail),
         executed("cleanupTest", {"no picture"}) + Lines{"Test time: *", "PASS"}, failed},
        {"fail in cleanupTest with an exception handler", on("cleanupTest", fail) + recover,
         executed("cleanupTest", Lines{"no picture"} + recovered) + Lines{"Test time: *", "PASS"},
         failed},
        {"fail in testFinished",
         on("testFinished", fail),
         {"PASS", "no picture"},
         "script loaded: not failed\nfinished: not failed\nhost quits: failed\n"},
        {"a second fail",
         on("startTest", "scripting.fail('again'); scripting.log('not stopped');") + fail,
         Lines{"no picture"} + executed("startTest", {"not stopped"}) + Lines{"FAIL"}, failed},
        {"the abort marker as last expression",
         "scripting.log('text');\n'krnv3_script_fail'\n",
         {"text", "FAIL"}},
        {"the abort marker in other letters", "'KRNV3_SCRIPT_FAIL'\n", {"PASS"}},
        {"the abort marker as an object", "new String('krnv3_script_fail')\n", {"PASS"}},
        {"the abort marker before the last expression", "'krnv3_script_fail';\n1\n", {"PASS"}},
    };
}

Runs exceptionRuns()
{
    const char bang[] = "throw new Error('bang');";
    const QByteArray recover = on("exceptionInTest", "scripting.log('exception');");
    const Lines recovered = executed("exceptionInTest", {"exception"});
    const Lines message = {"uncaught exception at line 1 ( Error: bang )"};
    const auto second = [](const char* signal) { return on(signal, "scripting.log('second');"); };
    const Lines pass = {"PASS"};
    const Lines fail = {"FAIL"};
    const Lines timeAndPass = {"Test time: *", "PASS"};

    return {
        {"thrown at top level", bang, message + fail, failed},
        {"thrown at top level on line 3",
         "scripting.log('first');\n\nthrow 'text';\nscripting.log('never');\n",
         {"first", "uncaught exception at line 3 ( text )", "FAIL"},
         failed},
        {"thrown at top level with an exception handler", recover + bang,
         recovered + Lines{"uncaught exception at line 2 ( Error: bang )"} + fail, failed},
        {"thrown at top level before handlers that run well", allConnected + bang,
         executed("initializeTest", {"initializing"}) + executed("startTest", {"testing"})
             + executed("exceptionInTest", {"exception"})
             + Lines{"uncaught exception at line 5 ( Error: bang )"}
             + executed("cleanupTest", {"cleaning up"}) + Lines{"Test time: *", "FAIL"},
         failed},
        {"null thrown at top level",
         "throw null;",
         {"uncaught exception at line 1 ( null )", "FAIL"},
         failed},
        {"null thrown at top level before a handler that runs well",
         second("startTest") + "throw null;",
         executed("startTest", {"second"}) + Lines{"uncaught exception at line 2 ( null )", "FAIL"},
         failed},
        {"undefined thrown at top level",
         "throw undefined;",
         {"uncaught exception at line 1 ( undefined )", "FAIL"},
         failed},
        {"thrown at top level and in startTest", on("startTest", bang).trimmed() + "throw 'top';",
         executed("startTest", message) + fail, failed},
        {"caught at top level",
         "try { throw 'text'; } catch (e) { scripting.log(e); }\n",
         {"text", "PASS"}},

        {"thrown in initializeTest", on("initializeTest", bang),
         executed("initializeTest", message) + fail, failed},
        {"thrown in initializeTest with an exception handler", on("initializeTest", bang) + recover,
         executed("initializeTest", recovered + message) + pass, failed},
        {"thrown in initializeTest before a second handler",
         on("initializeTest", bang) + second("initializeTest"),
         executed("initializeTest", message + Lines{"second"}) + pass, failed},
        {"thrown in initializeTest before a second handler with an exception handler",
         on("initializeTest", bang) + second("initializeTest") + recover,
         executed("initializeTest", recovered + message + Lines{"second"}) + pass, failed},

        {"thrown in startTest", on("startTest", bang), executed("startTest", message) + fail,
         failed},
        {"thrown in startTest with an exception handler", on("startTest", bang) + recover,
         executed("startTest", recovered + message) + pass, failed},
        {"thrown in startTest before a second handler", on("startTest", bang) + second("startTest"),
         executed("startTest", message + Lines{"second"}) + pass, failed},
        {"thrown in startTest before a second handler with an exception handler",
         on("startTest", bang) + second("startTest") + recover,
         executed("startTest", recovered + message + Lines{"second"}) + pass, failed},
        {"thrown in startTest behind a handler", second("startTest") + on("startTest", bang),
         executed("startTest", {"second", "uncaught exception at line 2 ( Error: bang )"}) + fail,
         failed},

        {"thrown in cleanupTest", on("cleanupTest", bang),
         executed("cleanupTest", message) + timeAndPass, failed},
        {"thrown in cleanupTest with an exception handler", on("cleanupTest", bang) + recover,
         executed("cleanupTest", recovered + message) + timeAndPass, failed},
        {"thrown in cleanupTest before a second handler",
         on("cleanupTest", bang) + second("cleanupTest"),
         executed("cleanupTest", message + Lines{"second"}) + timeAndPass, failed},
        {"thrown in cleanupTest before a second handler with an exception handler",
         on("cleanupTest", bang) + second("cleanupTest") + recover,
         executed("cleanupTest", recovered + message + Lines{"second"}) + timeAndPass, failed},
    };
}

Runs repeatedExceptionRuns()
{
    const char bang[] = "throw new Error('bang');";
    const QByteArray throwAgain = on("exceptionInTest", "throw new Error('again');");
    const QByteArray recover = on("exceptionInTest", "scripting.log('exception');");
    const QByteArray failAgain =
        on("exceptionInTest", "scripting.fail('by hand'); scripting.log('not stopped');");
    const Lines message = {"uncaught exception at line 1 ( Error: bang )"};

    return {
        {"the exception handler throws after one at top level", throwAgain + bang,
         executed("exceptionInTest")
             + Lines{"uncaught exception at line 2 ( Error: bang )", "FAIL"},
         failed},
        {"the exception handler throws before a second one after one at top level",
         throwAgain + recover + bang,
         executed("exceptionInTest", {"exception"})
             + Lines{"uncaught exception at line 3 ( Error: bang )", "FAIL"},
         failed},
        // The exception of the exception handler is still pending at the verdict.
        {"the exception handler throws after one in startTest", on("startTest", bang) + throwAgain,
         executed("startTest", executed("exceptionInTest") + message) + executed("exceptionInTest")
             + Lines{"FAIL"},
         failed},
        {"the exception handler throws before a second one after one in startTest",
         on("startTest", bang) + throwAgain + recover,
         executed("startTest", executed("exceptionInTest", {"exception"}) + message)
             + Lines{"PASS"},
         failed},
        {"the exception handler fails after one at top level", failAgain + bang,
         executed("exceptionInTest", {"by hand"}) + Lines{"FAIL"}, failed},
        // The handler is called once more for the verdict, where a failure stops nothing any more.
        {"the exception handler fails after one in startTest", on("startTest", bang) + failAgain,
         executed("startTest", executed("exceptionInTest", {"by hand"}))
             + executed("exceptionInTest", {"not stopped"}) + Lines{"FAIL"},
         failed},
        {"thrown in two handlers", on("initializeTest", bang) + on("startTest", "throw 'next';"),
         executed("initializeTest", message) + executed("startTest") + Lines{"FAIL"}, failed},
        {"thrown in two handlers with an exception handler",
         on("initializeTest", bang) + on("startTest", "throw 'next';") + recover,
         executed("initializeTest", executed("exceptionInTest", {"exception"}) + message)
             + executed("startTest") + executed("exceptionInTest", {"exception"}) + Lines{"FAIL"},
         failed},
        {"thrown by a function at resendSignal",
         on("resendSignal", bang) + "scripting.sendSignal(host);\nscripting.log('never');\n",
         message + Lines{"FAIL"}, failed},
        {"endless recursion",
         "function f() { return f() + 1; }\nf();\n",
         {"uncaught exception at line 1 ( RangeError: Maximum call stack size exceeded. )", "FAIL"},
         failed},
        {"endless recursion that is caught",
         "function f() { return f() + 1; }\n"
         "try { f(); } catch (e) { scripting.log(e.message); }\n",
         {"Maximum call stack size exceeded.", "PASS"}},
        {"endless recursion through a signal",
         "scripting.resendSignal.connect(function(o) { scripting.sendSignal(o); });\n"
         "scripting.sendSignal(host);\n"
         "scripting.log('never');\n",
         {"uncaught exception at line 0 ( RangeError: Maximum call stack size exceeded. )", "FAIL"},
         failed},
    };
}

Runs timeOutRuns()
{
    const char waiting[] = "scripting.wait(1500); scripting.log('never');";
    const QByteArray openDialog = "host.openDialog(60000); scripting.log('never');";
    const QByteArray failAtDialog = "scripting.resendSignal.connect(function(dialog) {\n"
                                    "  scripting.log(dialog.objectName);\n"
                                    "  scripting.fail('no dialog expected');\n"
                                    "  scripting.log('never');\n"
                                    "});\n";
    const Lines timedOut = {"running is timed out"};

    return {
        {"a time-out while the file waits", waiting, timedOut + Lines{"FAIL"}, failedAndQuit,
         withTimeOut(300)},
        {"a time-out while a handler waits", on("startTest", waiting),
         executed("startTest", timedOut) + Lines{"FAIL"}, failedAndQuit, withTimeOut(300)},
        {"a time-out while a handler waits with an exception handler",
         on("startTest", waiting) + on("exceptionInTest", "scripting.log('exception');"),
         executed("startTest", timedOut + executed("exceptionInTest", {"exception"}))
             + Lines{"PASS"},
         failedAndQuit, withTimeOut(300)},
        {"a time-out after the verdict was decided",
         "scripting.log('text');\n",
         {"text", "running is timed out", "PASS"},
         failedAndQuit,
         withTimeOut(1000)},
        {"a time-out after the end",
         "scripting.log('text');\n",
         {"text", "PASS", "running is timed out"},
         failedWhileQuitting,
         withTimeOut(7000)},
        {"a time-out of 0", "scripting.wait(300);\n", {"PASS"}, passed, withTimeOut(0)},
        {"a time-out of -1", "scripting.wait(300);\n", {"PASS"}, passed, withTimeOut(-1)},
        {"a time-out set by the running script",
         "host.setTimeOut(50);\nscripting.wait(500);\n",
         {"PASS"}},
        {"a time-out taken back by the running script",
         QByteArray("host.setTimeOut(-1);\n") + waiting, timedOut + Lines{"FAIL"}, failedAndQuit,
         withTimeOut(300)},

        {"a time-out while a dialog is open",
         openDialog,
         {"running is timed out", "dialog was closed", "FAIL"},
         failedAndQuit,
         withTimeOut(1000)},
        {"a failure while a dialog is open",
         failAtDialog + openDialog,
         {"dialog", "no dialog expected", "dialog was closed", "FAIL"},
         failed},
        {"a failure while a handler has opened a dialog",
         failAtDialog + on("startTest", openDialog.constData()),
         executed("startTest", {"dialog", "no dialog expected", "dialog was closed"})
             + Lines{"FAIL"},
         failed},
        {"an exception while a dialog is open",
         on("resendSignal", "throw new Error('bang');") + openDialog,
         {"uncaught exception at line 1 ( Error: bang )", "dialog was closed", "FAIL"},
         failed},
        {"a second failure closes no dialog",
         on("resendSignal", "scripting.fail('second'); scripting.log('not stopped');")
             + on("startTest", "host.openDialog(500);") + "scripting.fail('first');\n",
         Lines{"first"} + executed("startTest", {"not stopped", "dialog ended by itself"})
             + Lines{"FAIL"},
         failed},
    };
}

Runs textRuns()
{
    return {
        {"a syntax error",
         "scripting.log('never');\nvar = 3;\n",
         {"uncaught exception at line 2 ( SyntaxError: Parse error )", "FAIL"},
         failed},
        {"a NUL ends the script",
         QByteArray("scripting.log('read');") + '\0' + "scripting.log('not read');",
         {"read", "PASS"}},
        {"UTF-8", u8"scripting.log('Größe, 日本語, 😀');\n", {u8"Größe, 日本語, 😀", "PASS"}},
        {"a byte order mark", "\xEF\xBB\xBFscripting.log('text');\n", {"text", "PASS"}},
        {"invalid UTF-8", "scripting.log('a\xFFz');\n", {"a\xEF\xBF\xBDz", "PASS"}},
        {"lines ended by CR LF",
         "scripting.log('a');\r\nthrow 'b';\r\n",
         {"a", "uncaught exception at line 2 ( b )", "FAIL"},
         failed},
        {"logged numbers",
         "scripting.log(1);\nscripting.log(-1.5);\nscripting.log(1e21);\nscripting.log(0);\n",
         {"1", "-1.5", "1e+21", "0", "PASS"}},
        {"logged truth",
         "scripting.log(true);\nscripting.log(false);\n",
         {"true", "false", "PASS"}},
        {"logged nothing",
         "scripting.log(undefined);\nscripting.log(null);\n",
         {"QVariant(Invalid) ", "QVariant(Invalid) ", "PASS"}},
        {"logged arrays",
         "scripting.log([1, 'x']);\nscripting.log([]);\n",
         {R"(QVariant(QVariantList, (QVariant(int, 1), QVariant(QString, "x"))) )",
          "QVariant(QVariantList, ()) ", "PASS"}},
        {"logged objects",
         "scripting.log({a: 1, b: 'x'});\nscripting.log({});\n",
         {R"(QVariant(QVariantMap, QMap(("a", QVariant(int, 1))("b", QVariant(QString, "x")))) )",
          "QVariant(QVariantMap, QMap()) ", "PASS"}},
        {"logged text",
         "scripting.log('');\nscripting.log(' ');\nscripting.log('two\\nlines');\n",
         {" ", "two", "lines", "PASS"}},
        {"host calls aren't visible",
         "var names = ['hasFailed', 'setPathToScript', 'setTimeOut', 'startScript',\n"
         "    'isScriptingMode', 'makeObjectScriptable', 'lastExceptionMessage',\n"
         "    'handleJScriptException', 'invokeSignalForScript'];\n"
         "for (var i in names) scripting.log(typeof scripting[names[i]]);\n",
         {"undefined", "undefined", "undefined", "undefined", "undefined", "undefined", "undefined",
          "undefined", "undefined", "PASS"}},
        {"an unreadable second script changes nothing",
         "scripting.log('text');\n",
         {"text", "PASS"},
         passed,
         {QStringLiteral("test.js"), QStringLiteral("missing.js"), QStringLiteral(".")}},
        // Would the run start, the time-out would fail it.
        {"an empty file", "", {}, notStarted, withTimeOut(20)},
        {"a file that begins with NUL",
         QByteArray(1, '\0') + "scripting.log('not read');",
         {},
         notStarted,
         withTimeOut(20)},
    };
}

} // namespace

class tst_ScriptReport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void cleanupTestCase() { m_hosts.clear(); }

    void lifecycle_data() { addRows(lifecycleRuns()); }
    void lifecycle() { check(); }

    void failures_data() { addRows(failureRuns()); }
    void failures() { check(); }

    void exceptions_data() { addRows(exceptionRuns()); }
    void exceptions() { check(); }

    void repeatedExceptions_data() { addRows(repeatedExceptionRuns()); }
    void repeatedExceptions() { check(); }

    void texts_data() { addRows(textRuns()); }
    void texts() { check(); }

    void timeOutsAndDialogs_data();
    void timeOutsAndDialogs() { check(); }

    void aScriptThatCannotBeReadIsNotStarted_data();
    void aScriptThatCannotBeReadIsNotStarted();
    void aReportThatCannotBeWrittenIsLeftOut();
    void anOlderReportIsReplaced();
    void theReportIsNamedAfterTheCompleteBaseName();
    void aScriptThatRunsItselfWithoutEndFails();

private:
    void start(const Runs& runs);
    void addRows(const Runs& runs);
    void check();
    void compareReport(const RunningHost& host, const char* name, const Lines& expected,
                       double shortestTestTime);

    std::map<QByteArray, std::unique_ptr<RunningHost>> m_hosts; ///< by the run's name
};

namespace {

/// Waits for the end of the process, which says TOLD and nothing else.
void finish(RunningHost& host, const char* told)
{
    QTRY_COMPARE_WITH_TIMEOUT(host.process().state(), QProcess::NotRunning, 60000);
    QCOMPARE(host.process().readAllStandardError(), QByteArray());
    QCOMPARE(host.process().readAllStandardOutput(), QByteArray(told));
    QCOMPARE(host.process().exitStatus(), QProcess::NormalExit);
    QCOMPARE(host.process().exitCode(), 0);
}

/// Checks the time that a line ends with, and puts a star in its place.
void checkDate(QByteArray& line, const QDateTime& earliest)
{
    const QRegularExpression form(
        QStringLiteral("^Date and time: (\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\d)$"));
    const auto match = form.match(QString::fromUtf8(line));
    QVERIFY2(match.hasMatch(), line.constData());
    const QDateTime date = QDateTime::fromString(match.captured(1), Qt::ISODate);
    QVERIFY2(date >= earliest.addMSecs(-earliest.time().msec()), line.constData());
    QVERIFY2(date <= QDateTime::currentDateTime(), line.constData());
    line = "Date and time: *";
}

void checkTestTime(QByteArray& line, double shortest, double longest)
{
    const QByteArray text = line.mid(int(qstrlen("Test time: ")));
    bool isNumber = false;
    const double seconds = text.toDouble(&isNumber);
    QVERIFY2(isNumber, line.constData());
    QCOMPARE(text, QByteArray::number(seconds, 'g', 6));
    QVERIFY2(seconds >= shortest && seconds <= longest, line.constData());
    line = "Test time: *";
}

} // namespace

/// A run takes seconds, mostly idle: all of them are started together, and each row waits for its
/// own.
void tst_ScriptReport::initTestCase()
{
    start(lifecycleRuns());
    start(failureRuns());
    start(exceptionRuns());
    start(repeatedExceptionRuns());
    start(textRuns());
}

/// These begin when the others have ended, as they are about time.
void tst_ScriptReport::timeOutsAndDialogs_data()
{
    start(timeOutRuns());
    addRows(timeOutRuns());
}

void tst_ScriptReport::start(const Runs& runs)
{
    for (const Run& run : runs) {
        auto& host = m_hosts[run.name];
        QVERIFY2(!host, run.name);
        host = std::make_unique<RunningHost>(run.arguments);
        QVERIFY(writeFile(host->path("test.js"), run.script));
        host->start();
    }
}

void tst_ScriptReport::addRows(const Runs& runs)
{
    QTest::addColumn<QByteArrayList>("report");
    QTest::addColumn<QByteArray>("told");
    QTest::addColumn<double>("shortestTestTime");

    for (const Run& run : runs)
        QTest::newRow(run.name) << run.report << QByteArray(run.told) << run.shortestTestTime;
}

void tst_ScriptReport::check()
{
    QFETCH(QByteArrayList, report);
    QFETCH(QByteArray, told);
    QFETCH(double, shortestTestTime);

    RunningHost& host = *m_hosts.at(QTest::currentDataTag());
    finish(host, told.constData());
    QCOMPARE(host.files(),
             QStringList({QStringLiteral("test.js"), QStringLiteral("testReport.txt")}));
    compareReport(host, "testReport.txt", report, shortestTestTime);
}

void tst_ScriptReport::compareReport(const RunningHost& host, const char* name,
                                     const Lines& expected, double shortestTestTime)
{
    Lines lines = readFile(host.path(name)).split('\n');
    checkDate(lines.first(), host.started());
    for (QByteArray& line : lines) {
        if (line.startsWith("Test time: "))
            checkTestTime(line, shortestTestTime, host.seconds());
    }
    QCOMPARE(lines, header() + expected + Lines{""});
}

void tst_ScriptReport::aScriptThatCannotBeReadIsNotStarted_data()
{
    QTest::addColumn<QString>("script");

    QTest::newRow("a missing file") << "missing.js";
    QTest::newRow("a folder") << "folder.js";
    QTest::newRow("a file in a missing folder") << "missing/test.js";
}

void tst_ScriptReport::aScriptThatCannotBeReadIsNotStarted()
{
    QFETCH(QString, script);

    RunningHost host({QStringLiteral("--timeout=20"), script});
    QVERIFY(QDir().mkdir(host.path("folder.js")));
    host.start();
    finish(host, notStarted);
    QCOMPARE(host.files(), QStringList({QStringLiteral("folder.js")}));
}

void tst_ScriptReport::aReportThatCannotBeWrittenIsLeftOut()
{
    RunningHost host({QStringLiteral("test.js")});
    QVERIFY(QDir().mkdir(host.path("testReport.txt")));
    QVERIFY(
        writeFile(host.path("test.js"),
                  allConnected + on("cleanupTest", "scripting.fail('seen by the host only');")));
    host.start();
    finish(host, failed);
    QVERIFY(QFileInfo(host.path("testReport.txt")).isDir());
    QVERIFY(QDir(host.path("testReport.txt")).isEmpty());
    QCOMPARE(host.files(),
             QStringList({QStringLiteral("test.js"), QStringLiteral("testReport.txt")}));
}

void tst_ScriptReport::anOlderReportIsReplaced()
{
    RunningHost host({QStringLiteral("test.js")});
    QVERIFY(writeFile(host.path("test.js"), "1\n"));
    QVERIFY(writeFile(host.path("testReport.txt"), QByteArray(5000, 'x')));
    host.start();
    finish(host, passed);
    compareReport(host, "testReport.txt", {"PASS"}, 0.0);
}

void tst_ScriptReport::theReportIsNamedAfterTheCompleteBaseName()
{
    RunningHost host({QStringLiteral("folder/alpha.beta.js")});
    QVERIFY(QDir().mkdir(host.path("folder")));
    QVERIFY(writeFile(host.path("folder/alpha.beta.js"), "scripting.log(scripting.testName());\n"));
    host.start();
    finish(host, passed);
    compareReport(host, "folder/alpha.betaReport.txt", {"alpha.beta", "PASS"}, 0.0);
}

void tst_ScriptReport::aScriptThatRunsItselfWithoutEndFails()
{
    RunningHost host({QStringLiteral("test.js")});
    QVERIFY(writeFile(host.path("test.js"), "scripting.log('level');\nscripting.run();\n"));
    host.start();

    // Each level ends with a pause of its own, so only the end of the innermost is awaited.
    QTRY_VERIFY_WITH_TIMEOUT(host.process().peek(100).contains("finished: failed\n"), 60000);
    QCOMPARE(host.process().state(), QProcess::Running);
    QCOMPARE(host.process().readAllStandardOutput(),
             QByteArray("script loaded: not failed\nfinished: failed\n"));
    Lines report = readFile(host.path("testReport.txt")).split('\n').mid(3);
    QVERIFY(report.count("level") > 1);
    report.removeAll("level");
    QCOMPARE(
        report,
        Lines({"uncaught exception at line 0 ( RangeError: Maximum call stack size exceeded. )",
               "FAIL", ""}));
}

QTEST_GUILESS_MAIN(tst_ScriptReport)
#include "tst_ScriptReport.moc"
