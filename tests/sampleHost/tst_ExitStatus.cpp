// What a caller of the sample host is told: exit status, standard error and the report's last line.

#include "HostProcess.h"

#include <QDir>
#include <QTemporaryDir>

#include <memory>
#include <vector>

class tst_ExitStatus : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void the_exit_status_tells_the_result_data();
    void the_exit_status_tells_the_result();
    void a_script_that_cannot_be_run_gives_one_clear_line_data();
    void a_script_that_cannot_be_run_gives_one_clear_line();
    void a_report_that_cannot_be_written_gives_one_clear_line();
    void a_loop_that_never_gives_control_back_is_ended();
    void a_picture_that_cannot_be_read_is_told_and_stops_nothing();

private:
    QString path(const char* name) const { return m_dir->filePath(QLatin1String(name)); }

    QScopedPointer<QTemporaryDir> m_dir;
    QTemporaryDir m_tableDir;
    std::vector<std::unique_ptr<HostProcess>> m_tableRuns;
};

void tst_ExitStatus::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
}

void tst_ExitStatus::the_exit_status_tells_the_result_data()
{
    QTest::addColumn<int>("run");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("verdict");

    // Each run takes seconds, mostly idle: all of them are started here, and each row waits for its
    // own.
    const auto addRow = [this](const char* title, const char* script, int exitCode,
                               const char* verdict) {
        const int run = int(m_tableRuns.size());
        const QString file = m_tableDir.filePath(QStringLiteral("case%1.js").arg(run));
        writeFile(file, script);
        m_tableRuns.push_back(std::make_unique<HostProcess>(
            QStringList{QStringLiteral("--script"), file, QStringLiteral("--timeout"),
                        QStringLiteral("30000")}));
        QTest::newRow(title) << run << exitCode << QString::fromLatin1(verdict);
    };
    addRow("a script that passes", "scripting.log('hello')", 0, "PASS");
    addRow("a script that fails", "scripting.fail('no')", 1, "FAIL");
    addRow("an exception", "nothing.here", 1, "FAIL");
    addRow("a failure that the verdict has forgotten",
           "scripting.initializeTest.connect(function () { scripting.fail('early'); });"
           "scripting.startTest.connect(function () {});",
           1, "PASS");
    addRow("a failure in cleanup, after the verdict",
           "scripting.cleanupTest.connect(function () { scripting.fail('late'); });", 1, "PASS");
    addRow("a window that the script closes", "mainWindow.close()", 0, "PASS");
}

void tst_ExitStatus::the_exit_status_tells_the_result()
{
    QFETCH(int, run);
    QFETCH(int, exitCode);
    QFETCH(QString, verdict);

    HostProcess& host = *m_tableRuns.at(size_t(run));
    QCOMPARE(host.errorLines(), QStringList());
    QCOMPARE(host.exitCode(), exitCode);

    const QStringList report =
        readLines(m_tableDir.filePath(QStringLiteral("case%1Report.txt").arg(run)));
    QCOMPARE(report.value(0).left(15), QStringLiteral("Date and time: "));
    QCOMPARE(report.last(), verdict);
}

void tst_ExitStatus::a_script_that_cannot_be_run_gives_one_clear_line_data()
{
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("line");

    const QString script = QStringLiteral("--script");
    QTest::newRow("a missing file")
        << QByteArray("1") << QStringList{script, QStringLiteral("no.js")}
        << "cannot read the script no.js: No such file or directory";
    QTest::newRow("a folder") << QByteArray("1") << QStringList{script, QStringLiteral(".")}
                              << "cannot read the script .: file to open is a directory";
    QTest::newRow("an empty file") << QByteArray() << QStringList{script, QStringLiteral("case.js")}
                                   << "the script case.js is empty";
    QTest::newRow("a file that begins with a NUL byte")
        << QByteArray("\0scripting.log('x')", 18) << QStringList{script, QStringLiteral("case.js")}
        << "the script case.js is empty";
    QTest::newRow("a time-out that isn't a number")
        << QByteArray("1")
        << QStringList{script, QStringLiteral("case.js"), QStringLiteral("--timeout"),
                       QStringLiteral("soon")}
        << "--timeout takes a number of milliseconds, not \"soon\"";
    QTest::newRow("a report folder that is a file")
        << QByteArray("1")
        << QStringList{script, QStringLiteral("case.js"), QStringLiteral("--report-dir"),
                       QStringLiteral("case.js")}
        << "cannot copy the script to %1/case.js/case.js";
}

void tst_ExitStatus::a_script_that_cannot_be_run_gives_one_clear_line()
{
    QFETCH(QByteArray, content);
    QFETCH(QStringList, arguments);
    QFETCH(QString, line);
    writeFile(path("case.js"), content);
    if (line.contains(QLatin1String("%1")))
        line = line.arg(m_dir->path());

    HostProcess host(arguments, m_dir->path());

    QCOMPARE(host.errorLines(), QStringList(QStringLiteral("MarlowickSample: ") + line));
    QCOMPARE(host.exitCode(), 2);
}

void tst_ExitStatus::a_report_that_cannot_be_written_gives_one_clear_line()
{
    writeFile(path("case.js"), "scripting.log('hello')");
    QVERIFY(QDir(m_dir->path()).mkpath(QStringLiteral("caseReport.txt/in the way")));

    HostProcess host({QStringLiteral("--script"), path("case.js")});

    QCOMPARE(host.errorLines(),
             QStringList(QStringLiteral("MarlowickSample: cannot write the report ")
                         + path("caseReport.txt")));
    QCOMPARE(host.exitCode(), 2);
}

void tst_ExitStatus::a_loop_that_never_gives_control_back_is_ended()
{
    writeFile(path("case.js"), "scripting.log('before'); while (true) {}");
    const QStringList temporaryFiles =
        QDir::temp().entryList(QDir::AllEntries | QDir::NoDotAndDotDot);

    HostProcess host({QStringLiteral("--script"), path("case.js"), QStringLiteral("--timeout"),
                      QStringLiteral("500")});

    const QString message =
        QStringLiteral("the script did not give control back, the run is ended");
    QCOMPARE(host.exitCode(), 3);
    QCOMPARE(host.errorLines(), QStringList(QStringLiteral("MarlowickSample: ") + message));
    QCOMPARE(readLines(path("caseReport.txt")).mid(3),
             QStringList({QStringLiteral("before"), message}));
    QCOMPARE(QDir::temp().entryList(QDir::AllEntries | QDir::NoDotAndDotDot), temporaryFiles);
}

void tst_ExitStatus::a_picture_that_cannot_be_read_is_told_and_stops_nothing()
{
    writeFile(path("broken.png"), "not a picture");
    writeFile(path("case.js"),
              "scripting.log(scripting.getSubObject(mainWindow, 'pictureView').pictureWidth)");

    HostProcess host({QStringLiteral("--script"), path("case.js"), QStringLiteral("--image"),
                      path("broken.png")});

    QCOMPARE(host.errorLines(),
             QStringList(QStringLiteral("MarlowickSample: cannot open the picture ")
                         + path("broken.png")));
    QCOMPARE(host.exitCode(), 0);
    QCOMPARE(readLines(path("caseReport.txt")).value(3), QStringLiteral("0"));
}

QTEST_GUILESS_MAIN(tst_ExitStatus)

#include "tst_ExitStatus.moc"
