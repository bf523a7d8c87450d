// Runs every snippet of the script guide in the sample host. A block that begins with "```js fails"
// is meant to.

#include "HostProcess.h"

#include <QImage>
#include <QTemporaryDir>

#include <memory>
#include <vector>

class tst_ScriptGuide : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void snippetsDoWhatTheGuideSays_data();
    void snippetsDoWhatTheGuideSays();

private:
    QTemporaryDir m_dir;
    std::vector<std::unique_ptr<HostProcess>> m_runs;
};

void tst_ScriptGuide::snippetsDoWhatTheGuideSays_data()
{
    QTest::addColumn<int>("run");
    QTest::addColumn<int>("exitCode");

    QFile guide(QStringLiteral(SCRIPT_GUIDE));
    QVERIFY(guide.open(QIODevice::ReadOnly));
    const QList<QByteArray> blocks = guide.readAll().split('`');
    QImage picture(60, 40, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QVERIFY(picture.save(m_dir.filePath(QStringLiteral("picture.png"))));

    // All of them are started here, and each row waits for its own.
    for (const QByteArray& block : blocks) {
        const bool fails = block.startsWith("js fails\n");
        if (!fails && !block.startsWith("js\n"))
            continue;
        const int run = int(m_runs.size());
        const QString script = m_dir.filePath(QStringLiteral("guide%1.js").arg(run));
        writeFile(script, block.mid(block.indexOf('\n')));
        m_runs.push_back(std::make_unique<HostProcess>(
            QStringList{QStringLiteral("--script"), script, QStringLiteral("--timeout"),
                        QStringLiteral("60000"), QStringLiteral("--image"),
                        m_dir.filePath(QStringLiteral("picture.png"))},
            m_dir.path()));
        QTest::newRow(qPrintable(QStringLiteral("snippet %1").arg(run + 1))) << run << int(fails);
    }
    QVERIFY(m_runs.size() >= 9);
}

void tst_ScriptGuide::snippetsDoWhatTheGuideSays()
{
    QFETCH(int, run);
    QFETCH(int, exitCode);

    HostProcess& host = *m_runs.at(size_t(run));
    QCOMPARE(host.errorLines(), QStringList());
    const QStringList report =
        readLines(m_dir.filePath(QStringLiteral("guide%1Report.txt").arg(run)));
    QVERIFY2(host.exitCode() == exitCode, qPrintable(report.join(QLatin1Char('\n'))));
}

QTEST_GUILESS_MAIN(tst_ScriptGuide)

#include "tst_ScriptGuide.moc"
