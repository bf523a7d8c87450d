// Hosts on a disk of 1 MiB that fills up: what was whole stays whole, what is read is still there,
// and when there is space again it goes on.

#include "ArchiveWriter.h"
#include "Files.h"
#include "HostUnderFault.h"
#include "SmallDisk.h"

#include <QCoreApplication>
#include <QDir>
#include <QImage>
#include <QTemporaryDir>

#include <memory>

namespace {

/// How many of the values are there that the host writes, one after the other.
int largeValuesIn(const QMap<QString, QString>& settings)
{
    int count = 0;
    while (settings.value(QStringLiteral("group%1/large").arg(count)).size() == 4096)
        ++count;
    return count;
}

} // namespace

class tst_FullDisk : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void settings_stay_whole_data();
    void settings_stay_whole();
    void settings_stay_whole_while_it_fills_up();
    void settings_begin_on_a_full_disk();
    void an_overlay_still_answers();
    void a_report_is_cut_and_the_run_fails();
    void a_report_goes_on_when_there_is_space_again();
    void the_log_is_cut_and_the_run_goes_on_data();
    void the_log_is_cut_and_the_run_goes_on();
    void nothing_half_written_is_saved_data();
    void nothing_half_written_is_saved();
    void an_archive_is_not_unpacked_by_half();

private:
    QString path(const QString& name) const { return m_dir->filePath(name); }
    QString onDisk(const QString& name) const { return m_disk->filePath(name); }
    void set(const char* variable, const QString& value)
    {
        m_environment.insert(QLatin1String(variable), value);
    }
    /// The exit status of an acceptance run, with a small picture.
    int run(const QString& script, const QByteArray& text);

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<SmallDisk> m_disk;
    QProcessEnvironment m_environment;
};

void tst_FullDisk::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_disk.reset();
    m_disk = std::make_unique<SmallDisk>();
    QVERIFY2(m_disk->isThere(), "there is no disk that fills up");
    QCOMPARE(m_disk->freeSpace(), SmallDisk::size);
    m_environment = QProcessEnvironment::systemEnvironment();
}

int tst_FullDisk::run(const QString& script, const QByteArray& text)
{
    QImage picture(300, 200, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixel(x, y, qRgb(x * 7 * y, x * 13 + y * y, x * x * 31 + y)); // packs badly
    }
    if (!picture.save(path(QStringLiteral("picture.png"))) || !writeFile(script, text))
        return -3;
    HostUnderFault host(QStringLiteral(SAMPLE_HOST),
                        {QStringLiteral("--script"), script, QStringLiteral("--timeout"),
                         QStringLiteral("100000"), QStringLiteral("--image"),
                         path(QStringLiteral("picture.png"))},
                        m_environment);
    return host.exitCode(150000);
}

void tst_FullDisk::settings_stay_whole_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<int>("blocks");
    for (const int blocks : {0, 1, 2, 3, 4, 5, 8, 33, 34}) {
        const auto addRow = [blocks](const char* title, const char* command) {
            QTest::newRow(qPrintable(
                QStringLiteral("%1, %2 blocks are left").arg(QLatin1String(title)).arg(blocks)))
                << QString::fromLatin1(command) << blocks;
        };
        addRow("a value is written", "large");
        addRow("an array is written", "array");
        addRow("a value is removed", "remove");
    }
}

void tst_FullDisk::settings_stay_whole()
{
    QFETCH(QString, command);
    QFETCH(int, blocks);
    const QString file = onDisk(QStringLiteral("Vek Labs/krnv3/Data.plist"));
    QVERIFY(writeFile(file,
                      "[General]\nfirst=kept\nvictim=1\n\n[seed]\ntext=" + QByteArray(6000, 's')
                          + "\n\n[zero]\nlast=kept\n"));
    QVERIFY(m_disk->fill(blocks * 4096));
    set("XDG_CONFIG_HOME", m_disk->path());
    HostUnderFault host(QStringLiteral(SETTINGS_HOST), {command}, m_environment);
    QCOMPARE(host.nextLine(), QStringLiteral("ready"));
    for (int i = 0; i < 3; ++i) {
        host.goOn();
        QVERIFY(host.nextLine().startsWith(QLatin1String("kept ")));
        QCOMPARE(host.nextLine(), QStringLiteral("ready"));
        const QMap<QString, QString> settings = settingsIn(file);
        QVERIFY(!settings.contains(QStringLiteral("damaged")));
        QCOMPARE(settings.value(QStringLiteral("first")), QStringLiteral("kept"));
        QCOMPARE(settings.value(QStringLiteral("seed/text")).size(), 6000);
        QCOMPARE(settings.value(QStringLiteral("zero/last")), QStringLiteral("kept"));
    }

    QVERIFY(m_disk->empty());
    host.goOn();
    QVERIFY(host.nextLine().startsWith(QLatin1String("kept ")));
    QCOMPARE(host.nextLine(), QStringLiteral("ready"));
    const QMap<QString, QString> settings = settingsIn(file);
    if (command == QLatin1String("large"))
        QCOMPARE(settings.value(QStringLiteral("group3/large")).size(), 4096);
    else if (command == QLatin1String("array"))
        QCOMPARE(settings.value(QStringLiteral("array3/size")), QStringLiteral("2"));
    else
        QVERIFY(!settings.contains(QStringLiteral("victim")));
    QVERIFY(host.end());
}

void tst_FullDisk::settings_stay_whole_while_it_fills_up()
{
    constexpr int values = 150;
    const QString file = onDisk(QStringLiteral("Vek Labs/krnv3/Data.plist"));
    QVERIFY(writeFile(file, "[General]\nfirst=kept\n"));
    set("XDG_CONFIG_HOME", m_disk->path());

    HostUnderFault host(QStringLiteral(SETTINGS_HOST), {QStringLiteral("large")}, m_environment);
    QCOMPARE(host.nextLine(), QStringLiteral("ready"));
    int stored = 0;
    for (int n = 0; n < values; ++n) {
        host.goOn();
        const QString answer = host.nextLine();
        QVERIFY2(answer == QLatin1String("kept 4096 default")
                     || answer == QLatin1String("kept 0 default"),
                 qPrintable(answer));
        QCOMPARE(host.nextLine(), QStringLiteral("ready"));
        const QMap<QString, QString> settings = settingsIn(file);
        QVERIFY(!settings.contains(QStringLiteral("damaged")));
        QCOMPARE(settings.value(QStringLiteral("first")), QStringLiteral("kept"));
        // What has been told as stored is there, whole.
        stored += answer == QLatin1String("kept 4096 default");
        QCOMPARE(largeValuesIn(settings), stored);
        QCOMPARE(settings.size(), stored + 1);
    }
    QVERIFY2(stored > 50 && stored < values, qPrintable(QString::number(stored)));
}

void tst_FullDisk::settings_begin_on_a_full_disk()
{
    QVERIFY(m_disk->fill());
    set("XDG_CONFIG_HOME", m_disk->path());
    HostUnderFault host(QStringLiteral(SETTINGS_HOST), {QStringLiteral("large")}, m_environment);
    QCOMPARE(host.nextLine(), QStringLiteral("ready"));
    host.goOn();
    QCOMPARE(host.nextLine(), QStringLiteral(" 4096 default"));
    QCOMPARE(host.nextLine(), QStringLiteral("ready"));

    // Neither a half file nor a lock, which would hold up everybody.
    const QDir folder(onDisk(QStringLiteral("Vek Labs/krnv3")));
    const QStringList names = folder.entryList(QDir::Files | QDir::Hidden);
    for (const QString& name : names)
        QCOMPARE(name + QStringLiteral(" is there"), QString());

    QVERIFY(m_disk->empty());
    host.goOn();
    QCOMPARE(host.nextLine(), QStringLiteral(" 4096 default"));
    const QMap<QString, QString> settings =
        settingsIn(folder.filePath(QStringLiteral("Data.plist")));
    QCOMPARE(settings.keys(),
             QStringList({QStringLiteral("group0/large"), QStringLiteral("group1/large")}));
}

void tst_FullDisk::an_overlay_still_answers()
{
    QVERIFY(m_disk->fill(20 * 4096));
    set("TMPDIR", m_disk->path());
    const QString script = path(QStringLiteral("case.js"));
    QCOMPARE(run(script,
                 "var text = new Array(4097).join('x');\n"
                 "for (var n = 0; n < 30; ++n)\n"
                 "    scripting.setSettingValue('key' + n, text + n);\n"
                 "for (n = 0; n < 30; ++n)\n"
                 "    scripting.compare(scripting.getSettingValue('key' + n), text + n);\n"
                 "scripting.log('all there');\n"),
             0);
    QVERIFY(readFile(path(QStringLiteral("caseReport.txt"))).endsWith("\nall there\nPASS\n"));
    QCOMPARE(QDir(m_disk->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList({QStringLiteral("ballast")}));
}

void tst_FullDisk::a_report_is_cut_and_the_run_fails()
{
    const QString script = onDisk(QStringLiteral("case.js"));
    QCOMPARE(run(script,
                 "var text = new Array(1000).join('x');\n"
                 "for (var n = 0; n < 2000; ++n)\n"
                 "    scripting.log(text);\n"),
             1);
    QCOMPARE(m_disk->freeSpace(), qint64(0));
    QList<QByteArray> lines = readFile(onDisk(QStringLiteral("caseReport.txt"))).split('\n');
    QVERIFY(lines.size() > 500);
    QVERIFY(lines.takeFirst().startsWith("Date and time: "));
    QCOMPARE(lines.takeFirst(), QByteArray("Build number: 3.1.251.0"));
    QCOMPARE(lines.takeFirst(), QByteArray("Product name: Vek Marlowick 3"));
    lines.removeLast(); // which ends where the disk does
    for (const QByteArray& line : lines)
        QCOMPARE(line, QByteArray(999, 'x'));
}

void tst_FullDisk::a_report_goes_on_when_there_is_space_again()
{
    QVERIFY(m_disk->fill(40 * 4096));
    const QString script = onDisk(QStringLiteral("case.js"));
    QCOMPARE(run(script,
                 "var text = new Array(1000).join('x');\n"
                 "for (var n = 0; n < 300; ++n)\n"
                 "    scripting.log(text);\n"
                 "scripting.removeFile('"
                     + QFile::encodeName(m_disk->ballast())
                     + "');\n"
                       "scripting.log('space');\n"),
             0);
    const QList<QByteArray> lines = readFile(onDisk(QStringLiteral("caseReport.txt"))).split('\n');
    // What was told meanwhile may be missing, but there is no half line, and the verdict is there.
    QVERIFY(lines.size() > 3 + 150 + 3);
    const int lastThree = lines.size() - 3;
    for (const QByteArray& line : lines.mid(3, lastThree - 3))
        QCOMPARE(line, QByteArray(999, 'x'));
    QCOMPARE(lines.mid(lastThree), QList<QByteArray>({"space", "PASS", ""}));
}

void tst_FullDisk::the_log_is_cut_and_the_run_goes_on_data()
{
    QTest::addColumn<int>("blocks");
    QTest::newRow("from the start") << 0;
    QTest::newRow("on the way") << 4;
}

void tst_FullDisk::the_log_is_cut_and_the_run_goes_on()
{
    QFETCH(int, blocks);
    QVERIFY(m_disk->fill(blocks * 4096));
    const QString users = path(QStringLiteral("passwd"));
    QVERIFY(writeFile(users,
                      "tester:x:" + QByteArray::number(getuid())
                          + ":0:Tester:" + QFile::encodeName(m_disk->path()) + ":/bin/sh\n"));
    set("NSS_WRAPPER_PASSWD", users);
    set("HOME", m_disk->path());
    const QString script = path(QStringLiteral("case.js"));
    // Each picture that is opened is a line of the log, whose first lines are written meanwhile.
    QCOMPARE(run(script,
                 "scripting.wait(1500);\n"
                 "for (var n = 0; n < 300; ++n) {\n"
                 "    nativeDialogs.setOpenFileName('"
                     + QFile::encodeName(path(QStringLiteral("picture.png")))
                     + "');\n"
                       "    scripting.triggerAction(mainWindow, 'actionOpen');\n"
                       "}\n"
                       "scripting.log('opened');\n"),
             0);
    QVERIFY(readFile(path(QStringLiteral("caseReport.txt"))).endsWith("\nopened\nPASS\n"));
    const QByteArray log =
        readFile(onDisk(QStringLiteral("Library/Vek_Labs/Vek Marlowick 3/Logs/Marlowick.log")));
    QVERIFY(log.count("] Opened ") < 300);
    QCOMPARE(log.contains("Vek Marlowick 3 Version: 3.1.251.0"), blocks > 0);
}

void tst_FullDisk::nothing_half_written_is_saved_data()
{
    QTest::addColumn<QByteArray>("action");
    QTest::addColumn<QString>("name");
    QTest::newRow("a picture") << QByteArray("actionSave") << "out.png";
    QTest::newRow("a picture of another format") << QByteArray("actionSave") << "out.bmp";
    QTest::newRow("an archive") << QByteArray("actionExportArchive") << "out.zip";
}

void tst_FullDisk::nothing_half_written_is_saved()
{
    QFETCH(QByteArray, action);
    QFETCH(QString, name);
    QVERIFY(m_disk->fill(8 * 4096));
    QVERIFY(QDir(m_disk->path()).mkdir(QStringLiteral("folder")));
    const QString target = onDisk(QStringLiteral("folder/") + name);
    QVERIFY(writeFile(target, "what was there before"));
    // Qt loses its table of lines where a PNG picture can't be written to its end.
    set("ASAN_OPTIONS",
        QString::fromLocal8Bit(qgetenv("ASAN_OPTIONS")) + QStringLiteral(":detect_leaks=0"));

    const QString script = path(QStringLiteral("case.js"));
    QCOMPARE(run(script,
                 "scripting.setSlider(mainWindow, 'horizonSlider', 35);\n"
                 "nativeDialogs.setSaveFileName('"
                     + QFile::encodeName(target) + "');\n" + "scripting.triggerAction(mainWindow, '"
                     + action + "');\n"
                     + "scripting.compare(scripting.isMessageBoxShown('Cannot save "
                     + name.toLatin1() + "', 0), true);\n"
                     + "scripting.compare(mainWindow.windowModified, true);\n"
                       "scripting.log('told');\n"),
             0);
    QVERIFY(readFile(path(QStringLiteral("caseReport.txt"))).endsWith("\ntold\nPASS\n"));
    QCOMPARE(readFile(target), QByteArray("what was there before"));
    QCOMPARE(QDir(onDisk(QStringLiteral("folder")))
                 .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             QStringList({name}));
}

void tst_FullDisk::an_archive_is_not_unpacked_by_half()
{
    ArchiveWriter archive;
    archive.add("small.txt", "small");
    archive.add("large.png", QByteArray(600 << 10, 'p'), 0, ArchiveWriter::Stored);
    QVERIFY(archive.write(onDisk(QStringLiteral("archive.zip"))));
    const QStringList before =
        QDir(m_disk->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);

    const QString script = path(QStringLiteral("case.js"));
    QCOMPARE(run(script,
                 "nativeDialogs.setOpenFileName('"
                     + QFile::encodeName(onDisk(QStringLiteral("archive.zip")))
                     + "');\n"
                       "scripting.triggerAction(mainWindow, 'actionImport');\n"
                       "scripting.compare(scripting.isMessageBoxShown('Cannot import archive.zip\\n"
                       "Its files cannot be written.', 0), true);\n"
                       "scripting.log('told');\n"),
             0);
    QVERIFY(readFile(path(QStringLiteral("caseReport.txt"))).endsWith("\ntold\nPASS\n"));
    QCOMPARE(QDir(m_disk->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
             before);
}

int main(int argc, char** argv)
{
    SmallDisk::prepare(argv);
    QCoreApplication application(argc, argv);
    tst_FullDisk test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_FullDisk.moc"
