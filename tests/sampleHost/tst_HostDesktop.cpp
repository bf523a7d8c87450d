// What the sample host asks the desktop for: the trash, the file manager, the web browser. And its
// about box, which lives among other windows.

#include "CommonConstants.h"
#include "DialogWatcher.h"
#include "FolderContents.h"
#include "HostStyle.h"
#include "LanguageManager.h"
#include "MainWindow.h"
#include "Settings.h"
#include "TemporarySettings.h"
#include "WindowProperties.h"

#include <QAction>
#include <QApplication>
#include <QByteArrayList>
#include <QCheckBox>
#include <QDBusConnection>
#include <QDesktopServices>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPointer>
#include <QProcess>
#include <QPushButton>
#include <QScreen>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QUrl>

#include <memory>

#include <sys/stat.h>

using namespace VEK_NAMESPACE;

namespace {

const QString fileManagerService = QStringLiteral("org.freedesktop.FileManager1");
const QString fileManagerPath = QStringLiteral("/org/freedesktop/FileManager1");

QString trashFolder()
{
    return QFile::decodeName(qgetenv("XDG_DATA_HOME")) + QStringLiteral("/Trash");
}

/// The file system that \a path lies on.
dev_t fileSystem(const QString& path)
{
    struct stat status = {};
    return stat(QFile::encodeName(path).constData(), &status) == 0 ? status.st_dev : 0;
}

/// The exit status of an acceptance run, or -1.
int runScript(const QString& script)
{
    QProcess host;
    host.start(QStringLiteral(SAMPLE_HOST), {QStringLiteral("--script"), script});
    return host.waitForFinished(60000) && host.exitStatus() == QProcess::NormalExit
        ? host.exitCode()
        : -1;
}

QByteArrayList readLines(const QString& path)
{
    return QFile::exists(path) ? readFile(path).trimmed().split('\n') : QByteArrayList();
}

} // namespace

/// A file manager on the bus, which writes down what it is asked for.
class FileManager : public QObject
{
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.FileManager1")

public:
    FileManager()
    {
        m_bus.registerObject(fileManagerPath, this, QDBusConnection::ExportScriptableSlots);
        m_bus.registerService(fileManagerService);
    }
    ~FileManager() override
    {
        m_bus.unregisterService(fileManagerService);
        m_bus.unregisterObject(fileManagerPath);
    }

    QStringList asked;

public Q_SLOTS:
    Q_SCRIPTABLE void ShowItems(const QStringList& addresses, const QString&)
    {
        asked << addresses.join(QLatin1Char('|'));
    }

private:
    QDBusConnection m_bus = QDBusConnection::sessionBus();
};

/// The web browser of this process.
class Browser : public QObject
{
    Q_OBJECT

public:
    Browser() { QDesktopServices::setUrlHandler(QStringLiteral("http"), this, "open"); }
    ~Browser() override { QDesktopServices::unsetUrlHandler(QStringLiteral("http")); }

    QStringList opened;

public Q_SLOTS:
    void open(const QUrl& address) { opened << address.toString(QUrl::FullyEncoded); }
};

class tst_HostDesktop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase();

    void the_trash_takes_the_picture();
    void nothing_of_the_picture_stays_in_the_window();
    void a_picture_that_is_kept_data();
    void a_picture_that_is_kept();
    void a_picture_without_a_trash_data();
    void a_picture_without_a_trash();
    void a_trash_that_takes_nothing();

    void the_file_manager_shows_the_picture_data();
    void the_file_manager_shows_the_picture();

    void help_opens_pages_data();
    void help_opens_pages();
    void help_opens_the_page_of_the_country_data();
    void help_opens_the_page_of_the_country();
    void an_acceptance_run_opens_no_page();

    void the_about_box_comes_up_in_the_middle();
    void the_about_box_goes_data();
    void the_about_box_goes();
    void there_is_one_about_box();
    void the_about_box_speaks_the_language_data();
    void the_about_box_speaks_the_language();
    void the_bundles_notices_are_in_the_about_box();

private:
    template <typename T>
    T* child(const char* name) const
    {
        T* found = m_window->findChild<T*>(QLatin1String(name));
        Q_ASSERT(found);
        return found;
    }
    QString path(const QString& name) const { return m_dir->filePath(name); }
    void openPicture(const QString& path);
    QWidget* aboutBox() const { return m_window->findChild<QWidget*>(QStringLiteral("aboutDlg")); }
    /// Triggers the action and presses \a button in the first message box. What they all say.
    QStringList moveToTrash(const char* button);

    std::unique_ptr<CTemporarySettings> m_settings;
    std::unique_ptr<QTemporaryDir> m_dir;
    std::unique_ptr<MainWindow> m_window;
};

void tst_HostDesktop::initTestCase()
{
    m_settings = std::make_unique<CTemporarySettings>(nullptr);
    CSettings::setTemporarySettings(*m_settings);
    applyHostStyle(*qApp);
}

void tst_HostDesktop::init()
{
    CLanguageManager::instance()->changeLanguage(1);
    QDir(trashFolder()).removeRecursively();
    m_dir = std::make_unique<QTemporaryDir>();
    m_window = std::make_unique<MainWindow>();
    m_window->setGeometry(60, 80, 1000, 700);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
}

void tst_HostDesktop::cleanup()
{
    m_window.reset();
    m_dir.reset();
}

void tst_HostDesktop::cleanupTestCase()
{
    CSettings::removeTemporarySettings();
}

void tst_HostDesktop::openPicture(const QString& file)
{
    QImage picture(60, 40, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    picture.setText(QStringLiteral("Title"), QStringLiteral("Dogs"));
    QVERIFY(QDir().mkpath(QFileInfo(file).path()));
    QVERIFY(picture.save(file, "PNG"));
    QVERIFY(m_window->openPicture(file));
}

QStringList tst_HostDesktop::moveToTrash(const char* button)
{
    QStringList told;
    DialogWatcher watcher([&](QDialog* dialog) {
        told << dialog->findChild<QLabel*>(QStringLiteral("textLabel"))->text();
        auto* found = dialog->findChild<QPushButton*>(QLatin1String(button));
        if (found && told.size() == 1)
            QTest::mouseClick(found, Qt::LeftButton);
    });
    child<QAction>("actionMoveToTrash")->trigger();
    return told;
}

void tst_HostDesktop::the_trash_takes_the_picture()
{
    const QString picture =
        QDir(m_dir->path()).canonicalPath() + QString::fromUtf8("/Hüte & 日本.png");
    openPicture(picture);
    const QByteArray bytes = readFile(picture);

    QCOMPARE(moveToTrash("yesButton"),
             QStringList({QString::fromUtf8("Move Hüte & 日本.png to the trash?")}));

    QCOMPARE(contentsOf(m_dir->path()), QStringList());
    const QString name = QString::fromUtf8("Hüte & 日本.png");
    QCOMPARE(QDir(trashFolder() + QStringLiteral("/files")).entryList(QDir::Files),
             QStringList({name}));
    QCOMPARE(readFile(trashFolder() + QStringLiteral("/files/") + name), bytes);
    const QByteArray info =
        readFile(trashFolder() + QStringLiteral("/info/") + name + QStringLiteral(".trashinfo"));
    QVERIFY2(info.startsWith("[Trash Info]\nPath="), info.constData());
    QCOMPARE(QUrl::fromPercentEncoding(info.split('\n').at(1).mid(5)), picture);
}

void tst_HostDesktop::nothing_of_the_picture_stays_in_the_window()
{
    openPicture(path(QStringLiteral("small.png")));
    child<QAction>("actionHandles")->setChecked(true);
    child<QSlider>("horizonSlider")->setValue(35);
    QTest::keyClick(child<QSlider>("keystoneSlider"), Qt::Key_Right);
    child<QCheckBox>("autoCropCheckBox")->click();
    QVERIFY(m_window->isWindowModified() && child<QAction>("actionUndo")->isEnabled());
    QVERIFY(child<QWidget>("handles")->isVisible());

    QCOMPARE(moveToTrash("yesButton").size(), 1); // the changes go with it

    QCOMPARE(m_window->windowTitle(), QStringLiteral("Vek Marlowick 3"));
    QVERIFY(!m_window->isWindowModified());
    QCOMPARE(child<QLabel>("fileNameLabel")->text(), QString());
    QCOMPARE(child<QLabel>("fileNameLabel")->toolTip(), QString());
    QVERIFY(!child<QLabel>("imageSizeLabel")->isVisible());
    QVERIFY(!child<QLabel>("fileSizeLabel")->isVisible());
    QCOMPARE(child<QLineEdit>("titleEdit")->text(), QString());
    for (const char* slider : {"horizonSlider", "distortionSlider", "keystoneSlider"})
        QCOMPARE(child<QSlider>(slider)->value(), 0);
    QVERIFY(child<QCheckBox>("autoCropCheckBox")->isChecked());
    QVERIFY(!child<QWidget>("handles")->isVisible());
    for (const char* action : {"actionSave", "actionExport", "actionExportArchive",
                               "actionShowInFileManager", "actionMoveToTrash", "actionUndo"})
        QVERIFY2(!child<QAction>(action)->isEnabled(), action);
    for (const char* button : {"saveButton", "exportButton"})
        QVERIFY2(!child<QPushButton>(button)->isEnabled(), button);
    for (const char* action : {"actionOpen", "actionImport"})
        QVERIFY2(child<QAction>(action)->isEnabled(), action);

    // The place of the picture is as in a new window.
    child<QAction>("actionHandles")->setChecked(false);
    MainWindow empty;
    empty.setGeometry(m_window->geometry());
    empty.show();
    QVERIFY(QTest::qWaitForWindowExposed(&empty));
    QCOMPARE(child<QWidget>("pictureView")->grab().toImage(),
             empty.findChild<QWidget*>(QStringLiteral("pictureView"))->grab().toImage());

    // The next one begins anew, and closing asks nothing.
    openPicture(path(QStringLiteral("next.png")));
    QVERIFY(child<QLabel>("fileSizeLabel")->isVisible());
    QVERIFY(!m_window->isWindowModified());
    QVERIFY(m_window->close());
}

void tst_HostDesktop::a_picture_that_is_kept_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::newRow("no") << QByteArray("noButton");
    QTest::newRow("closed") << QByteArray("none");
}

void tst_HostDesktop::a_picture_that_is_kept()
{
    QFETCH(QByteArray, button);
    openPicture(path(QStringLiteral("small.png")));
    const QStringList before = contentsOf(m_dir->path());

    QCOMPARE(moveToTrash(button.constData()),
             QStringList({QStringLiteral("Move small.png to the trash?")}));

    QCOMPARE(contentsOf(m_dir->path()), before);
    QVERIFY(!QFile::exists(trashFolder()));
    QCOMPARE(child<QLabel>("fileNameLabel")->text(), QStringLiteral("small.png"));
    QVERIFY(child<QAction>("actionMoveToTrash")->isEnabled());
}

void tst_HostDesktop::a_picture_without_a_trash_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("a picture that is gone") << "gone.png";
    // Some users have no file system in memory.
    static const QTemporaryDir memory(QStringLiteral("/dev/shm/tst_HostDesktop-XXXXXX"));
    if (memory.isValid() && fileSystem(memory.path()) != fileSystem(QDir::homePath()))
        QTest::newRow("a picture in memory") << memory.filePath(QStringLiteral("small.png"));
}

void tst_HostDesktop::a_picture_without_a_trash()
{
    QFETCH(QString, file);
    const bool gone = file == QLatin1String("gone.png");
    if (gone)
        file = path(file);
    openPicture(file);
    const QByteArray bytes = readFile(file);
    if (gone)
        QVERIFY(QFile::remove(file));

    const QString name = QFileInfo(file).fileName();
    QCOMPARE(moveToTrash("yesButton"),
             QStringList({QStringLiteral("Move %1 to the trash?").arg(name),
                          QStringLiteral("There is no trash for %1").arg(name)}));

    if (!gone)
        QCOMPARE(readFile(file), bytes);
    QVERIFY(!QFile::exists(trashFolder()));
    QCOMPARE(child<QLabel>("fileNameLabel")->text(), name);
}

void tst_HostDesktop::a_trash_that_takes_nothing()
{
    openPicture(path(QStringLiteral("small.png")));
    const QStringList before = contentsOf(m_dir->path());
    QVERIFY(writeFile(trashFolder(), "a file in the folder's place"));

    QCOMPARE(moveToTrash("yesButton"),
             QStringList({QStringLiteral("Move small.png to the trash?"),
                          QStringLiteral("Cannot move small.png to the trash")}));

    QVERIFY(QFile::remove(trashFolder()));
    QCOMPARE(contentsOf(m_dir->path()), before);
    QCOMPARE(child<QLabel>("fileNameLabel")->text(), QStringLiteral("small.png"));
}

void tst_HostDesktop::the_file_manager_shows_the_picture_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("address"); ///< behind the folder's
    QTest::newRow("a plain name") << "small.png"
                                  << "small.png";
    QTest::newRow("spaces and signs") << "a b#c%20?.png"
                                      << "a%20b%23c%2520%3F.png";
    QTest::newRow("beyond ASCII") << QString::fromUtf8("ä/日本.png")
                                  << "%C3%A4/%E6%97%A5%E6%9C%AC.png";
}

void tst_HostDesktop::the_file_manager_shows_the_picture()
{
    QFETCH(QString, name);
    QFETCH(QString, address);
    FileManager manager;
    QVERIFY(!child<QAction>("actionShowInFileManager")->isEnabled());
    openPicture(path(name));

    child<QAction>("actionShowInFileManager")->trigger();

    QTRY_COMPARE(manager.asked,
                 QStringList({QStringLiteral("file://%1/%2").arg(m_dir->path(), address)}));
}

void tst_HostDesktop::help_opens_pages_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<int>("language"); ///< its row in the preferences
    QTest::addColumn<QString>("address");
    const char* const languages[] = {"German", "English", "French", "Japanese"};
    const char* const countries[] = {"de", "intl", "fr", "jp"};
    const std::pair<const char*, const char*> pages[] = {{"actionHelp", "kr3/help"},
                                                         {"actionSupport", "kr3/support"},
                                                         {"actionAcademy", "kr/academy"},
                                                         {"actionShop", "kr/shop"}};
    for (int language = 0; language < 4; ++language) {
        const auto addRow = [&](const char* action, const QString& address) {
            QTest::newRow(
                qPrintable(QStringLiteral("%1 in %2")
                               .arg(QLatin1String(action), QLatin1String(languages[language]))))
                << QString::fromLatin1(action) << language << address;
        };
        for (const auto& page : pages) {
            addRow(page.first,
                   QStringLiteral("http://www.vek.example/%1/redirect/%2")
                       .arg(QLatin1String(countries[language]), QLatin1String(page.second)));
        }
        addRow("actionHomePage",
               QStringLiteral("http://www.vek.example/intl/redirect/kr/vek_home"));
    }
}

void tst_HostDesktop::help_opens_pages()
{
    QFETCH(QString, action);
    QFETCH(int, language);
    QFETCH(QString, address);
    const Browser browser;
    CLanguageManager::instance()->changeLanguage(language);
    child<QAction>(qPrintable(action))->trigger();
    QCOMPARE(browser.opened, QStringList({address}));
}

void tst_HostDesktop::help_opens_the_page_of_the_country_data()
{
    QTest::addColumn<QString>("locale");
    QTest::addColumn<QString>("address");
    QTest::newRow("French in Canada") << "fr_CA"
                                      << "http://www.vek.example/ca/redirect/kr3/help";
    QTest::newRow("German in Austria") << "de_AT"
                                       << "http://www.vek.example/at/redirect/kr3/help";
    QTest::newRow("English in Britain") << "en_GB"
                                        << "http://www.vek.example/intl/redirect/kr3/help";
}

void tst_HostDesktop::help_opens_the_page_of_the_country()
{
    QFETCH(QString, locale);
    QFETCH(QString, address);
    const Browser browser;
    QLocale::setDefault(QLocale(locale));
    QTest::keyClick(m_window.get(), Qt::Key_F1);
    CLanguageManager::instance()->changeLanguage(1);
    QCOMPARE(browser.opened, QStringList({address}));
}

void tst_HostDesktop::an_acceptance_run_opens_no_page()
{
    // What opens addresses for programs here writes them down.
    const QString opener = path(QStringLiteral("bin/xdg-open"));
    QVERIFY(QDir(m_dir->path()).mkdir(QStringLiteral("bin")));
    QVERIFY(writeFile(opener,
                      "#!/bin/sh\necho \"$1\" >>'"
                          + QFile::encodeName(path(QStringLiteral("opened"))) + "'\n"));
    QVERIFY(QFile::setPermissions(opener, QFile::ReadOwner | QFile::ExeOwner));
    const QByteArray programs = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(path(QStringLiteral("bin"))) + ':' + programs);

    const QString script = path(QStringLiteral("case.js"));
    QVERIFY(writeFile(
        script,
        "['Help', 'Support', 'Academy', 'Shop', 'HomePage'].forEach(function (page) {"
        "scripting.triggerAction(mainWindow, 'action' + page); }); scripting.log('done');"));
    const int status = runScript(script);
    // It would have worked.
    const bool opens = QDesktopServices::openUrl(QUrl(QStringLiteral("http://www.vek.example/")));
    const bool written =
        QTest::qWaitFor([this] { return !readLines(path(QStringLiteral("opened"))).isEmpty(); });
    qputenv("PATH", programs);

    QCOMPARE(status, 0);
    QVERIFY(readLines(path(QStringLiteral("caseReport.txt"))).contains("done"));
    QVERIFY(opens && written);
    QCOMPARE(readLines(path(QStringLiteral("opened"))),
             QByteArrayList({"http://www.vek.example/"}));
}

void tst_HostDesktop::the_about_box_comes_up_in_the_middle()
{
    child<QPushButton>("aboutButton")->click();
    QWidget* box = aboutBox();
    QVERIFY(box && QTest::qWaitForWindowActive(box));
    QVERIFY(!box->isModal());
    QCOMPARE(box->size(), QSize(540, 508));
    // Of the screen, wherever the window is.
    const QPoint off =
        box->geometry().center() - QGuiApplication::primaryScreen()->geometry().center();
    QVERIFY2(qAbs(off.x()) <= 1 && qAbs(off.y()) <= 1,
             qPrintable(QStringLiteral("%1 %2").arg(off.x()).arg(off.y())));
}

void tst_HostDesktop::the_about_box_goes_data()
{
    QTest::addColumn<QString>("way");
    QTest::newRow("another window is activated") << "another";
    QTest::newRow("the main window is activated") << "main";
    QTest::newRow("Escape") << "Escape";
    QTest::newRow("the main window goes") << "gone";
}

void tst_HostDesktop::the_about_box_goes()
{
    QFETCH(QString, way);
    PlainWindow another;
    QVERIFY(another.showManaged());
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    child<QAction>("actionAbout")->trigger();
    const QPointer<QWidget> box = aboutBox();
    QVERIFY(box && QTest::qWaitForWindowActive(box));
    QVERIFY(QTest::qWaitFor([&box] { return focusedWindow() == box->internalWinId(); }));

    if (way == QLatin1String("another"))
        Taskbar().requestFocus(another.internalWinId());
    else if (way == QLatin1String("main"))
        Taskbar().requestFocus(m_window->internalWinId());
    else if (way == QLatin1String("Escape"))
        QTest::keyClick(box, Qt::Key_Escape);
    else
        m_window.reset();

    QTRY_VERIFY(!box);
    if (m_window)
        QVERIFY(m_window->isVisible());
}

void tst_HostDesktop::there_is_one_about_box()
{
    child<QAction>("actionAbout")->trigger();
    QVERIFY(QTest::qWaitForWindowActive(aboutBox()));
    child<QAction>("actionAbout")->trigger();
    const auto shown = [this] {
        int count = 0;
        const auto boxes = m_window->findChildren<QWidget*>(QStringLiteral("aboutDlg"));
        for (const QWidget* box : boxes)
            count += box->isVisible();
        return count;
    };
    QTRY_COMPARE(shown(), 1);
}

void tst_HostDesktop::the_about_box_speaks_the_language_data()
{
    QTest::addColumn<int>("language");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("version");
    QTest::newRow("German") << 0 << QString::fromUtf8("Über Vek Marlowick 3")
                            << "Version 3.1.4 / Build 251 / 64 Bit";
    QTest::newRow("English") << 1 << "About Vek Marlowick 3"
                             << "Version 3.1.4 / Build 251 / 64 bit";
    QTest::newRow("French") << 2 << QString::fromUtf8("À propos de Vek Marlowick 3")
                            << "Version 3.1.4 / Build 251 / 64 bits";
    QTest::newRow("Japanese") << 3 << QString::fromUtf8("Vek Marlowick 3 について")
                              << QString::fromUtf8("バージョン 3.1.4 / ビルド 251 / 64 ビット");
}

void tst_HostDesktop::the_about_box_speaks_the_language()
{
    QFETCH(int, language);
    QFETCH(QString, title);
    QFETCH(QString, version);
    CLanguageManager::instance()->changeLanguage(language);
    child<QAction>("actionAbout")->trigger();
    QCOMPARE(aboutBox()->windowTitle(), title);
    QCOMPARE(aboutBox()->findChild<QLabel*>(QStringLiteral("aboutLabel"))->text(), version);
    QCOMPARE(aboutBox()->findChild<QLabel*>(QStringLiteral("label_1"))->text(),
             QStringLiteral("Vek Marlowick 3"));
}

void tst_HostDesktop::the_bundles_notices_are_in_the_about_box()
{
    const QString script = path(QStringLiteral("case.js"));
    QVERIFY(
        writeFile(script,
                  "scripting.resendSignal.connect(function (dialog) {\n"
                  "    var text = scripting.getSubObject(dialog, 'lbVisitVekPatentsPage').text;\n"
                  "    scripting.log(text.indexOf('Roboto') > 0 && text.indexOf('lensfun') > 0);\n"
                  "    for (var i = 0; i < 100 && contents(dialog).height < 20000; ++i)\n"
                  "        scripting.wait(100);\n"
                  "    scripting.log(contents(dialog).height >= 20000);\n"
                  "    dialog.close();\n"
                  "});\n"
                  "function contents(dialog) {\n"
                  "    return scripting.getSubObject(dialog, 'scrollAreaWidgetContents');\n"
                  "}\n"
                  "scripting.clickButton(mainWindow, 'aboutButton');\n"
                  "scripting.wait(20000);\n"));
    QCOMPARE(runScript(script), 0);
    QCOMPARE(readLines(path(QStringLiteral("caseReport.txt"))).mid(3, 2),
             QByteArrayList({"true", "true"}));
}

QTEST_MAIN(tst_HostDesktop)

#include "tst_HostDesktop.moc"
