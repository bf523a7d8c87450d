// What a run of the sample host reads, writes and leaves alone.

#include "HostProcess.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

class tst_RunFiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void without_a_report_folder_the_report_lies_beside_the_script();
    void with_a_report_folder_the_script_is_copied_there();
    void a_run_never_touches_the_users_settings();
    void settings_beside_the_script_are_the_runs_first_ones();
    void the_script_drives_the_window();

private:
    QString path(const char* name) const { return m_dir->filePath(QLatin1String(name)); }

    QScopedPointer<QTemporaryDir> m_dir;
};

void tst_RunFiles::init()
{
    m_dir.reset(new QTemporaryDir);
    QVERIFY(m_dir->isValid());
}

void tst_RunFiles::without_a_report_folder_the_report_lies_beside_the_script()
{
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("elsewhere")));
    writeFile(path("alpha.beta.js"), "scripting.log('hello')");

    QCOMPARE(HostProcess({QStringLiteral("--script"), QStringLiteral("../alpha.beta.js")},
                         path("elsewhere"))
                 .exitCode(),
             0);

    QCOMPARE(readLines(path("alpha.betaReport.txt")).mid(3),
             QStringList({QStringLiteral("hello"), QStringLiteral("PASS")}));
    QVERIFY(QDir(path("elsewhere")).isEmpty());
}

void tst_RunFiles::with_a_report_folder_the_script_is_copied_there()
{
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("source")));
    writeFile(path("source/case.js"), "scripting.log('hello')");
    QVERIFY(QFile::setPermissions(path("source/case.js"), QFile::ReadOwner));

    // Twice, as the copy of a read-only script is read-only too.
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(HostProcess({QStringLiteral("--script"), path("source/case.js"),
                              QStringLiteral("--report-dir"), path("deep/reports")})
                     .exitCode(),
                 0);
    }

    QCOMPARE(QDir(path("source")).entryList(QDir::Files), QStringList(QStringLiteral("case.js")));
    QCOMPARE(QDir(path("deep/reports")).entryList(QDir::Files, QDir::Name),
             QStringList({QStringLiteral("case.js"), QStringLiteral("caseReport.txt")}));
    QCOMPARE(readLines(path("deep/reports/caseReport.txt")).constLast(), QStringLiteral("PASS"));
}

void tst_RunFiles::a_run_never_touches_the_users_settings()
{
    const QString folder = QString::fromLocal8Bit(qgetenv("XDG_CONFIG_HOME")) + "/Vek Labs/krnv3";
    QVERIFY(QDir().mkpath(folder));
    writeFile(folder + QStringLiteral("/Data.plist"), "[gridOverlay.visible]\nmine=1\n");
    writeFile(path("case.js"), "scripting.clickButton(mainWindow, 'gridCheckBox')");

    QCOMPARE(HostProcess({QStringLiteral("--script"), path("case.js")}).exitCode(), 0);

    QCOMPARE(readLines(folder + QStringLiteral("/Data.plist")),
             QStringList({QStringLiteral("[gridOverlay.visible]"), QStringLiteral("mine=1")}));
}

void tst_RunFiles::settings_beside_the_script_are_the_runs_first_ones()
{
    writeFile(path("DefaultTemporarySettins.ini"), "[General]\ngridOverlay.visible=true\n");
    writeFile(path("case.js"),
              "scripting.log(scripting.isItemChecked(mainWindow, 'gridCheckBox'))");

    QCOMPARE(HostProcess({QStringLiteral("--script"), path("case.js"),
                          QStringLiteral("--report-dir"), path("reports")})
                 .exitCode(),
             0);

    QCOMPARE(readLines(path("reports/caseReport.txt")).value(3), QStringLiteral("true"));
}

void tst_RunFiles::the_script_drives_the_window()
{
    QImage picture(60, 40, QImage::Format_RGB32);
    picture.fill(Qt::red);
    QVERIFY(picture.save(path("picture.png")));

    HostProcess host({QStringLiteral("--script"), QStringLiteral(SCRIPTS_DIR "/tour.js"),
                      QStringLiteral("--report-dir"), m_dir->path(), QStringLiteral("--image"),
                      path("picture.png")});

    VERIFY_SUCCESS(host);
    QCOMPARE(readLines(path("tourReport.txt")).filter(QStringLiteral("ok: ")).size(), 9);
}

QTEST_GUILESS_MAIN(tst_RunFiles)

#include "tst_RunFiles.moc"
