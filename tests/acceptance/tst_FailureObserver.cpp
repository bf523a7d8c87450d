#include "Scripting.h"

#include <QDialog>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

using VEK_NAMESPACE::CScripting;

/// When CScripting tells a failure to the host's observer.
class tst_FailureObserver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void momentOfFailure_data();
    void momentOfFailure();
    void aModalDialogIsStillOpen();
    void aFailureInTheObserverIsNotToldAgain();
    void anEmptyFunctionTakesItAway();

private:
    bool load(CScripting& scripting, const QByteArray& script);
    /// What the report holds below its three lines at the top, in one line.
    QString entries() const;

    QTemporaryDir m_dir;
};

void tst_FailureObserver::initTestCase()
{
    QVERIFY(m_dir.isValid());
}

bool tst_FailureObserver::load(CScripting& scripting, const QByteArray& script)
{
    QFile file(m_dir.filePath(QStringLiteral("test.js")));
    if (!file.open(QIODevice::WriteOnly) || file.write(script) != script.size())
        return false;
    file.close();
    scripting.setPathToScript(file.fileName());
    return scripting.isScriptingMode();
}

QString tst_FailureObserver::entries() const
{
    QFile file(m_dir.filePath(QStringLiteral("testReport.txt")));
    if (!file.open(QIODevice::ReadOnly))
        return QStringLiteral("no report");
    const QStringList lines = QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'));
    return lines.mid(3).join(QLatin1Char('|'));
}

void tst_FailureObserver::momentOfFailure_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::addColumn<int>("timeOut");
    QTest::addColumn<QStringList>("seen");

    QTest::newRow("a script that passes tells nothing")
        << QByteArray("scripting.log('fine');") << -1 << QStringList();
    QTest::newRow("a failed comparison, before anything else happens")
        << QByteArray("scripting.startTest.connect(function () { scripting.compare(1, 2); });\n"
                      "scripting.cleanupTest.connect(function () {});")
        << -1
        << QStringList(QStringLiteral("[startTest] start of execute|"
                                      "fail reason: compare actual (1) != expected (2)|"));
    QTest::newRow("of two failures the first")
        << QByteArray("scripting.initializeTest.connect(function () { scripting.fail('one'); });\n"
                      "scripting.startTest.connect(function () { scripting.fail('two'); });")
        << -1 << QStringList(QStringLiteral("[initializeTest] start of execute|one|"));
    QTest::newRow("an exception at the top level, before the phases")
        << QByteArray("scripting.startTest.connect(function () { scripting.log('phase'); });\n"
                      "scripting.log('before');\n"
                      "noSuchGlobal();")
        << -1 << QStringList(QStringLiteral("before|"));
    QTest::newRow("an exception in a phase, before the script hears of it")
        << QByteArray(
               "scripting.exceptionInTest.connect(function () { scripting.log('heard'); });\n"
               "scripting.startTest.connect(function () { noSuchGlobal(); });")
        << -1 << QStringList(QStringLiteral("[startTest] start of execute|"));
    QTest::newRow("the end of the time") << QByteArray("while (true) scripting.wait(10);") << 100
                                         << QStringList(QStringLiteral("running is timed out|"));
}

void tst_FailureObserver::momentOfFailure()
{
    QFETCH(QByteArray, script);
    QFETCH(int, timeOut);
    QFETCH(QStringList, seen);
    CScripting scripting;
    QVERIFY(load(scripting, script));
    scripting.setTimeOut(timeOut);
    QStringList told;
    scripting.setFailureObserver([&told, this] { told << entries(); });
    scripting.run();
    QCOMPARE(told, seen);
}

void tst_FailureObserver::aModalDialogIsStillOpen()
{
    CScripting scripting;
    QVERIFY(load(scripting, "scripting.log('not run');"));
    QDialog dialog;
    bool wasOpen = false;
    scripting.setFailureObserver([&] { wasOpen = dialog.isVisible(); });
    QTimer::singleShot(0, &dialog, [&scripting] { scripting.fail(QStringLiteral("open")); });
    dialog.exec();
    QVERIFY(wasOpen);
    QVERIFY(!dialog.isVisible());
}

void tst_FailureObserver::aFailureInTheObserverIsNotToldAgain()
{
    CScripting scripting;
    int told = 0;
    scripting.setFailureObserver([&] {
        ++told;
        scripting.fail(QStringLiteral("again"));
    });
    scripting.fail(QStringLiteral("first"));
    scripting.fail(QStringLiteral("second"));
    QCOMPARE(told, 1);
}

void tst_FailureObserver::anEmptyFunctionTakesItAway()
{
    CScripting scripting;
    int told = 0;
    scripting.setFailureObserver([&told] { ++told; });
    scripting.setFailureObserver({});
    scripting.fail(QStringLiteral("first"));
    QCOMPARE(told, 0);
    QVERIFY(scripting.hasFailed());
}

QTEST_MAIN(tst_FailureObserver)

#include "tst_FailureObserver.moc"
