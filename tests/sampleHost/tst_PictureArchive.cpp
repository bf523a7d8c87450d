// Pictures that go out of the sample host as ZIP archives and come in by them, through its menu and
// its dialogs, with archives of all kinds.

#include "ArchiveWriter.h"
#include "BusyBar.h"
#include "DialogWatcher.h"
#include "FileSizeLimit.h"
#include "FolderContents.h"
#include "MainWindow.h"
#include "OrdinaryFileRights.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QFileDialog>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QProgressBar>
#include <QPushButton>
#include <QRegularExpression>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>

#include <algorithm>
#include <functional>
#include <memory>

namespace {

/// What a program writes, or what it complains about.
QByteArray outputOf(const char* program, const QStringList& arguments,
                    const QString& folder = QString())
{
    QProcess process;
    process.setWorkingDirectory(folder);
    process.start(QLatin1String(program), arguments);
    if (!process.waitForFinished() || process.exitCode() != 0)
        return QByteArray(program) + " failed: " + process.readAllStandardError();
    return process.readAllStandardOutput();
}

QImage pictureOf(const QSize& size, const QColor& colour = Qt::darkGreen)
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(colour);
    return picture;
}

/// Which no format makes small.
QImage noise(const QSize& size)
{
    QImage picture(size, QImage::Format_RGB32);
    quint32 random = 1;
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x) {
            random = random * 1664525 + 1013904223;
            picture.setPixel(x, y, 0xff000000 | (random >> 8));
        }
    }
    return picture;
}

QByteArray pngOf(const QSize& size)
{
    QTemporaryDir folder;
    const QString file = folder.filePath(QStringLiteral("picture.png"));
    return pictureOf(size).save(file) ? readFile(file) : QByteArray();
}

/// 512 MiB in few, with bytes enough between its zeros that nobody takes it for a bomb.
bool writeLargeArchive(const QString& path)
{
    QByteArray unit(64 << 20, '\0');
    quint32 random = 1;
    for (int block = 0; block < unit.size(); block += 32768) {
        for (int i = block; i < block + 512; ++i)
            unit[i] = char((random = random * 1664525 + 1013904223) >> 24);
    }
    const QByteArray packed = ArchiveWriter::deflated(unit, Z_FULL_FLUSH);
    const quint32 checkSum = ArchiveWriter::checkSumOf(unit);

    ArchiveWriter archive;
    archive.add("a.png", pngOf({20, 10}));
    ArchiveWriter::Entry& entry = archive.add("b.bin");
    const QByteArray end = entry.packed;
    entry.packed.clear();
    for (int i = 0; i < 8; ++i) {
        entry.packed += packed;
        entry.checkSum = quint32(crc32_combine(entry.checkSum, checkSum, unit.size()));
        entry.size += quint64(unit.size());
    }
    entry.packed += end;
    entry.packedSize = quint64(entry.packed.size());
    return archive.write(path);
}

/// Makes an archive, or what is to pass for one.
using MakeArchive = std::function<bool(const QString& path)>;

MakeArchive archiveOf(const std::function<void(ArchiveWriter&)>& fill)
{
    return [fill](const QString& path) {
        ArchiveWriter archive;
        archive.add("a.png", pngOf({20, 10}));
        fill(archive);
        return archive.write(path);
    };
}

} // namespace

Q_DECLARE_METATYPE(MakeArchive)

class tst_PictureArchive : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();

    void an_export_holds_picture_and_settings();
    void an_export_is_proposed_beside_the_picture();
    void an_archive_that_is_there_is_replaced();
    void an_export_that_fails_leaves_what_was_there_data();
    void an_export_that_fails_leaves_what_was_there();
    void an_export_needs_a_folder_that_can_be_written_data();
    void an_export_needs_a_folder_that_can_be_written();
    void an_export_that_is_stopped_leaves_what_was_there();
    void an_export_that_is_given_up_does_nothing();

    void an_import_opens_the_first_picture();
    void an_import_gets_a_folder_of_its_own_data();
    void an_import_gets_a_folder_of_its_own();
    void an_import_again_gets_another_folder();
    void what_cannot_be_imported_is_told_and_goes_data();
    void what_cannot_be_imported_is_told_and_goes();
    void an_import_needs_a_folder_that_can_be_written();
    void an_import_shows_how_far_it_is_and_stops();
    void a_window_that_is_closed_while_it_imports_stops();
    void an_import_asks_about_changes_data();
    void an_import_asks_about_changes();
    void an_export_comes_back();
    void without_a_picture_there_is_only_import();

private:
    template <typename T>
    T* child(const char* name) const
    {
        T* found = m_window->findChild<T*>(QLatin1String(name));
        Q_ASSERT(found);
        return found;
    }
    QString path(const QString& name) const { return m_dir->filePath(name); }
    QString shownName() const { return child<QLabel>("fileNameLabel")->text(); }

    /// Triggers the action, takes \a file where it asks for one, and presses \a button in the
    /// message boxes, which are closed if there is none. What these say.
    QStringList use(const char* action, const QString& file, const char* button = "none");
    QStringList exportTo(const QString& file) { return use("actionExportArchive", file); }
    QStringList import(const QString& file, const char* button = "none")
    {
        return use("actionImport", file, button);
    }

    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<MainWindow> m_window;
};

void tst_PictureArchive::initTestCase()
{
    QVERIFY(takeOrdinaryFileRights());
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
}

void tst_PictureArchive::init()
{
    m_dir = std::make_unique<QTemporaryDir>();
    m_window = std::make_unique<MainWindow>();
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void tst_PictureArchive::cleanup()
{
    m_window.reset();
    m_dir.reset();
}

QStringList tst_PictureArchive::use(const char* action, const QString& file, const char* button)
{
    QStringList told;
    DialogWatcher watcher([&](QDialog* dialog) {
        if (auto* fileDialog = qobject_cast<QFileDialog*>(dialog)) {
            fileDialog->setOption(QFileDialog::DontConfirmOverwrite); // which is Qt's own question
            fileDialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"))->setText(file);
            QMetaObject::invokeMethod(fileDialog, "accept");
            return;
        }
        told << dialog->findChild<QLabel*>(QStringLiteral("textLabel"))->text();
        if (auto* found = dialog->findChild<QPushButton*>(QLatin1String(button)))
            QTest::mouseClick(found, Qt::LeftButton);
    });
    child<QAction>(action)->trigger();
    return told;
}

void tst_PictureArchive::an_export_holds_picture_and_settings()
{
    const QString picture = path(QString::fromUtf8("häfen.eins.png"));
    QVERIFY(pictureOf({60, 40}).save(picture));
    QVERIFY(m_window->openPicture(picture));
    child<QLineEdit>("titleEdit")->setText(QString::fromUtf8("Hunde & „Höfe“"));
    child<QSlider>("horizonSlider")->setValue(35);
    child<QSlider>("distortionSlider")->setValue(-40);
    child<QSlider>("keystoneSlider")->setValue(12);
    child<QCheckBox>("autoCropCheckBox")->setChecked(false);

    const QString archive = path(QStringLiteral("out.zip"));
    QCOMPARE(exportTo(archive), QStringList());

    QCOMPARE(outputOf("unzip", {"-Z1", archive}),
             QByteArray("häfen.eins-corrected.png\nhäfen.eins-corrected.json\n"));
    QCOMPARE(outputOf("python3",
                      {"-c", "import sys, zipfile; print(zipfile.ZipFile(sys.argv[1]).testzip())",
                       archive}),
             QByteArray("None\n"));
    QCOMPARE(outputOf("unzip", {"-p", archive, "*.json"}),
             QByteArray("{\n"
                        "    \"autoCrop\": false,\n"
                        "    \"distortion\": -0.4,\n"
                        "    \"horizon\": 3.5,\n"
                        "    \"keystone\": 0.12,\n"
                        "    \"title\": \"Hunde & „Höfe“\"\n"
                        "}\n"));
    const QImage packed = QImage::fromData(outputOf("unzip", {"-p", archive, "*.png"}), "PNG");
    QCOMPARE(packed.size(), QSize(60, 40));
    QCOMPARE(packed.pixelColor(30, 20), QColor(Qt::darkGreen));
    QCOMPARE(qAlpha(packed.pixel(59, 0)), 0); // an empty corner
    QCOMPARE(packed.text(QStringLiteral("Title")), QString::fromUtf8("Hunde & „Höfe“"));

    QVERIFY(m_window->isWindowModified()); // a copy that is sent isn't the picture that is saved
    const QStringList files =
        QDir(m_dir->path()).entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    QCOMPARE(files, QStringList({QString::fromUtf8("häfen.eins.png"), QStringLiteral("out.zip")}));
}

void tst_PictureArchive::an_export_is_proposed_beside_the_picture()
{
    QVERIFY(pictureOf({60, 40}).save(path(QStringLiteral("small.one.png"))));
    QVERIFY(m_window->openPicture(path(QStringLiteral("small.one.png"))));
    QString title;
    QStringList filters;
    QStringList proposed;
    DialogWatcher watcher([&](QDialog* dialog) {
        const auto* fileDialog = qobject_cast<QFileDialog*>(dialog);
        title = fileDialog->windowTitle();
        filters = fileDialog->nameFilters();
        proposed = fileDialog->selectedFiles();
    });
    child<QAction>("actionExportArchive")->trigger();

    QCOMPARE(watcher.count(), 1);
    QCOMPARE(title, QStringLiteral("Export the corrected picture with its settings"));
    QCOMPARE(filters, QStringList({QStringLiteral("ZIP archives (*.zip)")}));
    QCOMPARE(proposed, QStringList({path(QStringLiteral("small.one-corrected.zip"))}));
}

void tst_PictureArchive::an_archive_that_is_there_is_replaced()
{
    QVERIFY(pictureOf({60, 40}).save(path(QStringLiteral("small.png"))));
    QVERIFY(m_window->openPicture(path(QStringLiteral("small.png"))));
    const QString archive = path(QStringLiteral("out.zip"));
    QVERIFY(writeFile(archive, "old"));

    QCOMPARE(exportTo(archive), QStringList());

    QCOMPARE(outputOf("unzip", {"-Z1", archive}),
             QByteArray("small-corrected.png\nsmall-corrected.json\n"));
    QCOMPARE(contentsOf(m_dir->path()).size(), 2);
}

void tst_PictureArchive::an_export_that_fails_leaves_what_was_there_data()
{
    QTest::addColumn<int>("room"); ///< beyond the picture's size
    QTest::newRow("no room for the picture") << -1000;
    QTest::newRow("no room for the archive") << 10;
}

void tst_PictureArchive::an_export_that_fails_leaves_what_was_there()
{
    QFETCH(int, room);
    QVERIFY(noise({300, 200}).save(path(QStringLiteral("noise.png"))));
    QVERIFY(m_window->openPicture(path(QStringLiteral("noise.png"))));
    const QString archive = path(QStringLiteral("out.zip"));
    QCOMPARE(exportTo(archive), QStringList());
    const int size = outputOf("unzip", {"-p", archive, "*.png"}).size();
    QVERIFY(size > 100000);
    QVERIFY(writeFile(archive, "old"));
    const QStringList before = contentsOf(m_dir->path());
    {
        const FileSizeLimit limit{rlim_t(size + room)};
        QCOMPARE(exportTo(archive), QStringList({QStringLiteral("Cannot save out.zip")}));
    }
    QCOMPARE(contentsOf(m_dir->path()), before);
    QVERIFY(child<QAction>("actionExportArchive")->isEnabled());
}

void tst_PictureArchive::an_export_needs_a_folder_that_can_be_written_data()
{
    QTest::addColumn<QString>("folder");
    QTest::newRow("a folder that is closed") << "closed";
    QTest::newRow("a folder that isn't there") << "none";
}

void tst_PictureArchive::an_export_needs_a_folder_that_can_be_written()
{
    QFETCH(QString, folder);
    QVERIFY(pictureOf({60, 40}).save(path(QStringLiteral("small.png"))));
    QVERIFY(m_window->openPicture(path(QStringLiteral("small.png"))));
    QVERIFY(writeFile(path(QStringLiteral("closed/out.zip")), "old"));
    QVERIFY(
        QFile::setPermissions(path(QStringLiteral("closed")), QFile::ReadOwner | QFile::ExeOwner));
    const QStringList before = contentsOf(m_dir->path());

    const QStringList told = exportTo(path(folder + QStringLiteral("/out.zip")));

    QCOMPARE(told, QStringList({QStringLiteral("Cannot save out.zip")}));
    QCOMPARE(contentsOf(m_dir->path()), before);
    QVERIFY(QFile::setPermissions(path(QStringLiteral("closed")),
                                  QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

void tst_PictureArchive::an_export_that_is_stopped_leaves_what_was_there()
{
    QVERIFY(noise({4000, 3000}).save(path(QStringLiteral("large.bmp"))));
    QVERIFY(m_window->openPicture(path(QStringLiteral("large.bmp"))));
    QVERIFY(writeFile(path(QStringLiteral("out.zip")), "old"));
    const QStringList before = contentsOf(m_dir->path());

    auto* stop = child<QPushButton>("stopButton");
    QString doing;
    QStringList during;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        if (!stop->isVisible() || !doing.isNull())
            return;
        doing = child<BusyBar>("busyBar")->findChild<QLabel*>()->text();
        during = QDir(m_dir->path())
                     .entryList({QStringLiteral(".export-*")}, QDir::AllEntries | QDir::Hidden);
        QTest::mouseClick(stop, Qt::LeftButton);
    });
    timer.start(20);
    const QStringList told = exportTo(path(QStringLiteral("out.zip")));

    QCOMPARE(doing, QStringLiteral("Writing out.zip"));
    QCOMPARE(during.size(), 1);
    QCOMPARE(told, QStringList());
    QCOMPARE(contentsOf(m_dir->path()), before);
}

void tst_PictureArchive::an_export_that_is_given_up_does_nothing()
{
    QVERIFY(pictureOf({60, 40}).save(path(QStringLiteral("small.png"))));
    QVERIFY(m_window->openPicture(path(QStringLiteral("small.png"))));
    DialogWatcher watcher([](QDialog* dialog) { QTest::keyClick(dialog, Qt::Key_Escape); });
    child<QAction>("actionExportArchive")->trigger();
    child<QAction>("actionImport")->trigger();
    QCOMPARE(watcher.count(), 2);
    QCOMPARE(contentsOf(m_dir->path()).size(), 1);
    QCOMPARE(shownName(), QStringLiteral("small.png"));
}

void tst_PictureArchive::an_import_opens_the_first_picture()
{
    const QString source = path(QStringLiteral("source"));
    QVERIFY(writeFile(source + QStringLiteral("/b/z.png"), pngOf({30, 10})));
    QVERIFY(writeFile(source + QStringLiteral("/b/a.txt"), "no picture"));
    QVERIFY(writeFile(source + QStringLiteral("/c.png"), pngOf({50, 10})));
    QCOMPARE(outputOf("zip", {"-q", "-r", path(QStringLiteral("pictures.zip")), "."}, source),
             QByteArray());
    QVERIFY(QDir(source).removeRecursively());

    QCOMPARE(import(path(QStringLiteral("pictures.zip"))), QStringList());

    QCOMPARE(shownName(), QStringLiteral("z.png"));
    QCOMPARE(child<QLabel>("imageSizeLabel")->text(), QStringLiteral("30 x 10 px"));
    QCOMPARE(m_window->windowTitle(), QString::fromUtf8("z.png[*] – Vek Marlowick 3"));
    QVERIFY(!m_window->isWindowModified());
    QStringList names = contentsOf(m_dir->path());
    names.replaceInStrings(QRegularExpression(QStringLiteral(" = .*")), QString());
    QCOMPARE(names,
             QStringList({"pictures.zip", "pictures/", "pictures/b/", "pictures/b/a.txt",
                          "pictures/b/z.png", "pictures/c.png"}));
}

void tst_PictureArchive::an_import_gets_a_folder_of_its_own_data()
{
    QTest::addColumn<QString>("archive");
    QTest::addColumn<QString>("inItsPlace"); ///< what is there already
    QTest::addColumn<QString>("folder");
    const auto addRow = [](const char* title, const char* archive, const char* inItsPlace,
                           const char* folder) {
        QTest::newRow(title) << QString::fromUtf8(archive) << QString::fromUtf8(inItsPlace)
                             << QString::fromUtf8(folder);
    };
    addRow("its name", "pictures.zip", "", "pictures");
    addRow("a name with dots", "from.Oma.zip", "", "from.Oma");
    addRow("spaces and letters beyond ASCII", "für 日本 %1.zip", "", "für 日本 %1");
    addRow("a folder of that name", "a.zip", "a/", "a 2");
    addRow("a file of that name", "a.zip", "a", "a 2");
    addRow("a link to nothing of that name", "a.zip", "a -> none", "a 2");
    addRow("a name without an ending", "pictures", "", "pictures 2");
    addRow("nothing but an ending", ".zip", "", "zip");
    addRow("a dot before the ending", "..zip", "", ". 2");
}

void tst_PictureArchive::an_import_gets_a_folder_of_its_own()
{
    QFETCH(QString, archive);
    QFETCH(QString, inItsPlace);
    QFETCH(QString, folder);
    const QString inbox = path(QStringLiteral("inbox"));
    ArchiveWriter writer;
    writer.add("a.png", pngOf({20, 10}));
    QVERIFY(writer.write(inbox + QLatin1Char('/') + archive));
    if (inItsPlace.endsWith(QLatin1Char('/')))
        QVERIFY(QDir(inbox).mkdir(inItsPlace));
    else if (inItsPlace.contains(QLatin1String(" -> ")))
        QVERIFY(QFile::link(QStringLiteral("none"), inbox + QStringLiteral("/a")));
    else if (!inItsPlace.isEmpty())
        QVERIFY(writeFile(inbox + QLatin1Char('/') + inItsPlace, "mine"));
    const QStringList before = contentsOf(m_dir->path());

    QCOMPARE(import(inbox + QLatin1Char('/') + archive), QStringList());

    QStringList added = contentsOf(m_dir->path());
    for (const QString& line : before)
        QVERIFY2(added.removeOne(line), qPrintable(line));
    QCOMPARE(added.size(), 2);
    QCOMPARE(added.at(0), QStringLiteral("inbox/%1/").arg(folder));
    QVERIFY(
        added.at(1).startsWith(QStringLiteral("inbox/") + folder + QStringLiteral("/a.png = ")));
    QCOMPARE(shownName(), QStringLiteral("a.png"));
}

void tst_PictureArchive::an_import_again_gets_another_folder()
{
    ArchiveWriter writer;
    writer.add("a.png", pngOf({20, 10}));
    QVERIFY(writer.write(path(QStringLiteral("name.zip"))));
    for (int i = 0; i < 3; ++i)
        QCOMPARE(import(path(QStringLiteral("name.zip"))), QStringList());
    QCOMPARE(QDir(m_dir->path()).entryList(QDir::Dirs | QDir::NoDotAndDotDot),
             QStringList({"name", "name 2", "name 3"}));
    QCOMPARE(QDir(path(QStringLiteral("name 3"))).entryList(QDir::Files), QStringList({"a.png"}));
}

void tst_PictureArchive::what_cannot_be_imported_is_told_and_goes_data()
{
    QTest::addColumn<MakeArchive>("make");
    QTest::addColumn<QString>("told");
    const auto addRow = [](const char* title, const MakeArchive& make, const char* told) {
        QTest::newRow(title) << make << QString::fromUtf8(told);
    };
    const char outside[] = "Cannot import in.zip\nIt would write outside its folder.";
    const char unsupported[] =
        "Cannot import in.zip\nIt contains something that cannot be unpacked here.";
    const char tooLarge[] = "Cannot import in.zip\nIt would become too large.";
    const char noArchive[] = "Cannot import in.zip\nIt is not a ZIP archive.";
    const char damaged[] = "Cannot import in.zip\nIt is damaged.";

    addRow(
        "no picture",
        [](const QString& path) {
            ArchiveWriter archive;
            archive.add("notes/a.txt", "hello");
            archive.add("b.png", "not what it is called");
            return archive.write(path);
        },
        "No picture in in.zip");
    addRow("a name that leads out",
           archiveOf([](ArchiveWriter& archive) { archive.add("../out.png", "x"); }), outside);
    addRow("a name that leads far out", archiveOf([](ArchiveWriter& archive) {
               archive.add("a/../../../../../../../../tmp/out.png", "x");
           }),
           outside);
    addRow("a name from the root",
           archiveOf([](ArchiveWriter& archive) { archive.add("/tmp/out.png", "x"); }), outside);
    addRow("a link that leads out",
           archiveOf([](ArchiveWriter& archive) { archive.addLink("link", "../../secret"); }),
           outside);
    addRow("a picture through a link that leads out", archiveOf([](ArchiveWriter& archive) {
               archive.addLink("link", "..");
               archive.add("link/out.png", "x");
           }),
           outside);
    addRow("a bomb", archiveOf([](ArchiveWriter& archive) { archive.addZeros("zeros.png", 4); }),
           tooLarge);
    addRow("a declared size beyond all bounds", archiveOf([](ArchiveWriter& archive) {
               archive.add("b.png", "x").size = Q_UINT64_C(1) << 44;
           }),
           tooLarge);
    addRow("a device", archiveOf([](ArchiveWriter& archive) {
               archive.add("device", {}, 020666, ArchiveWriter::Stored);
           }),
           unsupported);
    addRow("a secret", archiveOf([](ArchiveWriter& archive) {
               archive.add("secret.png", "x").flags |= ArchiveWriter::Encrypted;
           }),
           unsupported);
    addRow("a content that isn't what was packed",
           archiveOf([](ArchiveWriter& archive) { archive.add("b.png", "x").checkSum ^= 1; }),
           damaged);
    addRow(
        "an archive that ends too early",
        [](const QString& path) {
            ArchiveWriter archive;
            archive.add("a.png", pngOf({20, 10}));
            const QByteArray bytes = archive.bytes();
            return writeFile(path, bytes.left(bytes.size() / 2));
        },
        noArchive);
    addRow(
        "a text", [](const QString& path) { return writeFile(path, "Dear Oma,\n"); }, noArchive);
    addRow(
        "nothing at all", [](const QString& path) { return writeFile(path, {}); }, noArchive);
    addRow(
        "an archive without anything",
        [](const QString& path) { return ArchiveWriter().write(path); }, noArchive);
}

void tst_PictureArchive::what_cannot_be_imported_is_told_and_goes()
{
    QFETCH(MakeArchive, make);
    QFETCH(QString, told);
    QVERIFY(pictureOf({60, 40}).save(path(QStringLiteral("small.png"))));
    QVERIFY(m_window->openPicture(path(QStringLiteral("small.png"))));
    QVERIFY(writeFile(path(QStringLiteral("secret")), "mine"));
    const QString archive = path(QStringLiteral("inbox/in.zip"));
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("inbox")));
    QVERIFY(make(archive));
    const QStringList before = contentsOf(m_dir->path());

    QCOMPARE(import(archive), QStringList({told}));

    QCOMPARE(contentsOf(m_dir->path()), before);
    QVERIFY(!QFile::exists(QStringLiteral("/tmp/out.png")));
    QCOMPARE(shownName(), QStringLiteral("small.png"));
    QVERIFY(child<QAction>("actionImport")->isEnabled());
    QVERIFY(!child<BusyBar>("busyBar")->isVisible());
}

void tst_PictureArchive::an_import_needs_a_folder_that_can_be_written()
{
    const QString inbox = path(QStringLiteral("inbox"));
    ArchiveWriter writer;
    writer.add("a.png", pngOf({20, 10}));
    QVERIFY(writer.write(inbox + QStringLiteral("/in.zip")));
    QVERIFY(QFile::setPermissions(inbox, QFile::ReadOwner | QFile::ExeOwner));

    const QStringList told = import(inbox + QStringLiteral("/in.zip"));

    QVERIFY(QFile::setPermissions(inbox, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
    QCOMPARE(told, QStringList({"Cannot import in.zip\nIts files cannot be written."}));
    QCOMPARE(contentsOf(inbox).size(), 1);
}

void tst_PictureArchive::an_import_shows_how_far_it_is_and_stops()
{
    const QString archive = path(QStringLiteral("large.zip"));
    QVERIFY(writeLargeArchive(archive));
    const QStringList before = contentsOf(m_dir->path());

    auto* progress = child<QProgressBar>("progressBar");
    auto* stop = child<QPushButton>("stopButton");
    QString doing;
    bool folderWasThere = false;
    bool controlsWereRight = true;
    bool stopped = false;
    QList<int> percents;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        if (!progress->isVisible() || stopped)
            return;
        doing = child<BusyBar>("busyBar")->findChild<QLabel*>()->text();
        controlsWereRight = controlsWereRight && !child<QPushButton>("openButton")->isEnabled()
            && !child<QAction>("actionImport")->isEnabled()
            && !child<QAction>("actionOpen")->isEnabled()
            && child<QPushButton>("preferencesButton")->isEnabled();
        if (progress->maximum() == 100
            && (percents.isEmpty() || percents.last() != progress->value()))
            percents << progress->value();
        if (percents.size() < 3)
            return;
        folderWasThere = QFile::exists(path(QStringLiteral("large/a.png")));
        stopped = true;
        QTest::mouseClick(stop, Qt::LeftButton);
    });
    timer.start(5);
    const QStringList told = import(archive);

    QVERIFY(stopped);
    QCOMPARE(doing, QStringLiteral("Unpacking large.zip"));
    QVERIFY(folderWasThere);
    QVERIFY(controlsWereRight);
    QVERIFY(percents.first() > 0 && percents.last() < 100);
    QVERIFY(std::is_sorted(percents.begin(), percents.end()));
    QCOMPARE(told, QStringList());
    QCOMPARE(contentsOf(m_dir->path()), before);
    QVERIFY(!progress->isVisible());
    QVERIFY(child<QAction>("actionImport")->isEnabled());
    QVERIFY(!child<QAction>("actionExportArchive")->isEnabled()); // nothing came in
}

void tst_PictureArchive::a_window_that_is_closed_while_it_imports_stops()
{
    const QString archive = path(QStringLiteral("large.zip"));
    QVERIFY(writeLargeArchive(archive));
    const QStringList before = contentsOf(m_dir->path());
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        if (!child<QProgressBar>("progressBar")->isVisible())
            return;
        timer.stop();
        m_window->close();
    });
    timer.start(20);

    QCOMPARE(import(archive), QStringList());

    QTRY_VERIFY(!m_window->isVisible());
    QCOMPARE(contentsOf(m_dir->path()), before);
}

void tst_PictureArchive::an_import_asks_about_changes_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<QString>("shown");
    QTest::newRow("cancelled") << QByteArray("cancelButton") << "small.png";
    QTest::newRow("closed") << QByteArray("none") << "small.png";
    QTest::newRow("given up") << QByteArray("discardButton") << "a.png";
}

void tst_PictureArchive::an_import_asks_about_changes()
{
    QFETCH(QByteArray, button);
    QFETCH(QString, shown);
    QVERIFY(pictureOf({60, 40}).save(path(QStringLiteral("small.png"))));
    QVERIFY(m_window->openPicture(path(QStringLiteral("small.png"))));
    child<QLineEdit>("titleEdit")->setText(QStringLiteral("Dogs"));
    ArchiveWriter writer;
    writer.add("a.png", pngOf({20, 10}));
    QVERIFY(writer.write(path(QStringLiteral("in.zip"))));

    QCOMPARE(import(path(QStringLiteral("in.zip")), button.constData()),
             QStringList({QStringLiteral("Save changes to small.png?")}));

    QCOMPARE(shownName(), shown);
    QCOMPARE(child<QLineEdit>("titleEdit")->text() == QLatin1String("Dogs"),
             shown == QLatin1String("small.png"));
}

void tst_PictureArchive::an_export_comes_back()
{
    QVERIFY(pictureOf({60, 40}).save(path(QStringLiteral("small.png"))));
    QVERIFY(m_window->openPicture(path(QStringLiteral("small.png"))));
    child<QLineEdit>("titleEdit")->setText(QStringLiteral("Dogs"));
    QCOMPARE(exportTo(path(QStringLiteral("out.zip"))), QStringList());

    QCOMPARE(import(path(QStringLiteral("out.zip")), "discardButton"),
             QStringList({QStringLiteral("Save changes to small.png?")}));

    QCOMPARE(shownName(), QStringLiteral("small-corrected.png"));
    QCOMPARE(child<QLineEdit>("titleEdit")->text(), QStringLiteral("Dogs"));
    QVERIFY(!m_window->isWindowModified());
    QVERIFY(QFile::exists(path(QStringLiteral("out/small-corrected.json"))));
}

void tst_PictureArchive::without_a_picture_there_is_only_import()
{
    QVERIFY(!child<QAction>("actionExportArchive")->isEnabled());
    QVERIFY(child<QAction>("actionImport")->isEnabled());
}

QTEST_MAIN(tst_PictureArchive)

#include "tst_PictureArchive.moc"
