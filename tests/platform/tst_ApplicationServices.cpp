#include "WindowServices.h"

#include "CurrentFolder.h"
#include "MessageCounter.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QFile>
#include <QMainWindow>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>
#include <QScopedPointer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

#include <functional>
#include <optional>

namespace {

/// Runs a modal dialog, and what is to happen while it is open.
class ModalDialog : public QDialog
{
public:
    using QDialog::QDialog;

    int execWhile(const std::function<void()>& function)
    {
        QTimer::singleShot(0, this, [this, function] {
            QVERIFY(QTest::qWaitForWindowExposed(this));
            function();
        });
        // No test is to hang: what it checks fails then.
        QTimer::singleShot(20000, this, [this] { done(timedOut); });
        return exec();
    }

    static constexpr int timedOut = -1;
};

QByteArray content(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// The operations on the application itself.
class tst_ApplicationServices : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void menuBar();
    void entryThatDeletesAnother_data();
    void entryThatDeletesAnother();
    void menuBarThatDeletesAnother();
    void noMenuBar();
    void specialEditMenuItems();
    void hideMenu();
    void hideSubmenu();

    void endModalSession();
    void endInnermostModalSession();
    void noModalSession();
    void modalWindowThatIsNoDialog();

    void cursor();
    void cursorHiddenTwice();
    void cursorOfAnother();

    void launch_data();
    void launch();
    void launchFromThisFolderFirst();
    void nothingToLaunch_data();
    void nothingToLaunch();

private:
    std::optional<MessageCounter> m_messages;
};

void tst_ApplicationServices::init()
{
    // Qt asks for its place in a frame that the window manager has just taken away.
    m_messages.emplace({"TranslateCoords"});
}

void tst_ApplicationServices::cleanup()
{
    const int messages = m_messages->count();
    m_messages.reset();
    QCOMPARE(messages, 0);
}

/// The top entries of all menu bars, and nothing below them.
void tst_ApplicationServices::menuBar()
{
    QMainWindow first;
    QMenu* file = first.menuBar()->addMenu(QStringLiteral("File"));
    QAction* open = file->addAction(QStringLiteral("Open"));
    QAction* save = file->addAction(QStringLiteral("Save"));
    save->setEnabled(false);
    QAction* help = first.menuBar()->addAction(QStringLiteral("Help"));
    QMenuBar second;
    QAction* edit = second.addMenu(QStringLiteral("Edit"))->menuAction();
    edit->setEnabled(false);

    MacOSEnableMenuBar(false);
    QVERIFY(!file->menuAction()->isEnabled());
    QVERIFY(!help->isEnabled());
    QVERIFY(!edit->isEnabled());
    QVERIFY(open->isEnabled());
    QVERIFY(first.menuBar()->isEnabled());

    MacOSEnableMenuBar(true);
    QVERIFY(file->menuAction()->isEnabled());
    QVERIFY(help->isEnabled());
    QVERIFY(edit->isEnabled()); // whatever it was before
    QVERIFY(!save->isEnabled());
}

void tst_ApplicationServices::entryThatDeletesAnother_data()
{
    QTest::addColumn<int>("deleter");
    QTest::addColumn<int>("deleted");
    QTest::newRow("one that follows") << 0 << 1;
    QTest::newRow("one that has been before") << 1 << 0;
}

void tst_ApplicationServices::entryThatDeletesAnother()
{
    QFETCH(int, deleter);
    QFETCH(int, deleted);
    QMenuBar menuBar;
    QList<QPointer<QAction>> entries;
    for (const char* title : {"File", "Edit", "Help"})
        entries << menuBar.addAction(QLatin1String(title));
    connect(entries[deleter], &QAction::changed, this, [&] { delete entries[deleted]; });

    MacOSEnableMenuBar(false);
    QVERIFY(!entries[deleted]);
    QVERIFY(!entries[deleter]->isEnabled());
    QVERIFY(!entries[2]->isEnabled());
    MacOSEnableMenuBar(true);
    QVERIFY(entries[2]->isEnabled());
}

/// Their order isn't known, so each tries.
void tst_ApplicationServices::menuBarThatDeletesAnother()
{
    QPointer<QMenuBar> first = new QMenuBar;
    QPointer<QMenuBar> second = new QMenuBar;
    QMenuBar third;
    const QAction* help = third.addAction(QStringLiteral("Help"));
    const auto addEntry = [](QMenuBar* menuBar, const QPointer<QMenuBar>& other) {
        QAction* entry = menuBar->addAction(QStringLiteral("File"));
        connect(entry, &QAction::changed, other, [&other] { delete other; });
    };
    addEntry(first, second);
    addEntry(second, first);

    MacOSEnableMenuBar(false);
    QVERIFY(first.isNull() != second.isNull());
    const QScopedPointer<QMenuBar> left(first ? first : second);
    QVERIFY(!left->actions().first()->isEnabled());
    QVERIFY(!help->isEnabled());
}

void tst_ApplicationServices::noMenuBar()
{
    QMenu menu;
    QAction* entry = menu.addAction(QStringLiteral("entry"));
    MacOSEnableMenuBar(false);
    QVERIFY(entry->isEnabled());
    QVERIFY(menu.menuAction()->isEnabled());
}

void tst_ApplicationServices::specialEditMenuItems()
{
    QMenuBar menuBar;
    QMenu* edit = menuBar.addMenu(QStringLiteral("Edit"));
    const QList<QAction*> entries = {edit->addAction(QStringLiteral("Copy")),
                                     edit->addAction(QStringLiteral("Paste"))};
    MacOSDeleteSpecialEditMenuItems();
    QCOMPARE(edit->actions(), entries);
}

void tst_ApplicationServices::hideMenu()
{
    QMainWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QMenu menu;
    menu.addAction(QStringLiteral("entry"));
    menu.popup(QPoint(10, 10));
    QVERIFY(QTest::qWaitForWindowExposed(&menu));
    MacOSHideMenuWidget(&menu);
    QVERIFY(!menu.isVisible());
    MacOSHideMenuWidget(&menu);
    MacOSHideMenuWidget(nullptr);
    QVERIFY(!menu.isVisible());
    QVERIFY(window.isVisible());
}

void tst_ApplicationServices::hideSubmenu()
{
    QMenu menu;
    QMenu* submenu = menu.addMenu(QStringLiteral("more"));
    submenu->addAction(QStringLiteral("entry"));
    menu.popup(QPoint(10, 10));
    QVERIFY(QTest::qWaitForWindowExposed(&menu));
    submenu->popup(QPoint(60, 10));
    QVERIFY(QTest::qWaitForWindowExposed(submenu));
    MacOSHideMenuWidget(submenu);
    QVERIFY(!submenu->isVisible());
    MacOSHideMenuWidget(&menu);
    QVERIFY(!menu.isVisible());
}

void tst_ApplicationServices::endModalSession()
{
    ModalDialog dialog;
    int rejections = 0;
    connect(&dialog, &QDialog::rejected, this, [&rejections] { ++rejections; });
    QCOMPARE(dialog.execWhile([] { MacOSEndModalSession(); }), int(QDialog::Rejected));
    QCOMPARE(rejections, 1);
    QVERIFY(!dialog.isVisible());
}

void tst_ApplicationServices::endInnermostModalSession()
{
    QDialog modeless;
    modeless.show();
    ModalDialog outer;
    ModalDialog inner(&outer);
    const int result = outer.execWhile([&] {
        QCOMPARE(inner.execWhile([] { MacOSEndModalSession(); }), int(QDialog::Rejected));
        QVERIFY(outer.isVisible());
        outer.accept();
    });
    QCOMPARE(result, int(QDialog::Accepted));
    QVERIFY(modeless.isVisible());
}

void tst_ApplicationServices::noModalSession()
{
    QDialog modeless;
    modeless.show();
    QVERIFY(QTest::qWaitForWindowExposed(&modeless));
    MacOSEndModalSession();
    QVERIFY(modeless.isVisible());
}

void tst_ApplicationServices::modalWindowThatIsNoDialog()
{
    QWidget window;
    window.setWindowModality(Qt::ApplicationModal);
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    QCOMPARE(QApplication::activeModalWidget(), &window);
    MacOSEndModalSession();
    QVERIFY(window.isVisible());
}

void tst_ApplicationServices::cursor()
{
    QVERIFY(!QGuiApplication::overrideCursor());
    MacOSShowCursor(false);
    QVERIFY(QGuiApplication::overrideCursor());
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::BlankCursor);
    MacOSShowCursor(true);
    QVERIFY(!QGuiApplication::overrideCursor());
}

/// Each hiding wants a showing of its own.
void tst_ApplicationServices::cursorHiddenTwice()
{
    MacOSShowCursor(false);
    MacOSShowCursor(false);
    MacOSShowCursor(true);
    QVERIFY(QGuiApplication::overrideCursor());
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::BlankCursor);
    MacOSShowCursor(true);
    QVERIFY(!QGuiApplication::overrideCursor());
}

/// A showing too many takes nobody's cursor away, and isn't saved up.
void tst_ApplicationServices::cursorOfAnother()
{
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
    MacOSShowCursor(true);
    QVERIFY(QGuiApplication::overrideCursor());
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    MacOSShowCursor(false);
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::BlankCursor);
    MacOSShowCursor(true);
    QCOMPARE(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    QGuiApplication::restoreOverrideCursor();
    QVERIFY(!QGuiApplication::overrideCursor());
}

void tst_ApplicationServices::launch_data()
{
    QTest::addColumn<QString>("folder");
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("relative");
    const QString here = QStringLiteral(".");
    const QString plain = QStringLiteral("recorder");
    QTest::newRow("a plain path") << here << plain << false;
    QTest::newRow("blanks and quotes") << QStringLiteral("My 'own' folder")
                                       << QStringLiteral("a  \"recorder\" -x --help") << false;
    QTest::newRow("not ASCII") << QStringLiteral("Grüße 写真") << QStringLiteral("журнал é")
                               << false;
    QTest::newRow("words for the shell") << here << QStringLiteral("$HOME;`true`&*?#~\\n") << false;
    QTest::newRow("a relative path") << QStringLiteral("My folder") << plain << true;
    QTest::newRow("a name alone") << here << plain << true;
    QTest::newRow("a name that begins with a dash") << here << QStringLiteral("-recorder") << true;
}

/// The program gets no arguments, and this process's current folder.
void tst_ApplicationServices::launch()
{
    QFETCH(QString, folder);
    QFETCH(QString, name);
    QFETCH(bool, relative);
    const QTemporaryDir root;
    const QDir dir(QFileInfo(root.path()).canonicalFilePath());
    QVERIFY(dir.mkpath(folder));
    const QString path = QDir::cleanPath(folder + QLatin1Char('/') + name);
    QVERIFY(QFile::copy(QStringLiteral(LAUNCH_RECORDER), dir.filePath(path)));
    const QString record = dir.filePath(QStringLiteral("record"));
    qputenv("LAUNCH_RECORD", QFile::encodeName(record));
    const CurrentFolder current(dir.path());

    MacOSLaunchApplication((relative ? path : dir.filePath(path)).toUtf8().constData());
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(record), 20000);
    QCOMPARE(content(record), dir.filePath(path).toUtf8() + "\n1\n" + dir.path().toUtf8() + '\n');
}

/// A name isn't looked for elsewhere.
void tst_ApplicationServices::launchFromThisFolderFirst()
{
    const QTemporaryDir root;
    const QDir dir(QFileInfo(root.path()).canonicalFilePath());
    for (const char* folder : {"searched", "current"}) {
        QVERIFY(dir.mkdir(QLatin1String(folder)));
        QVERIFY(QFile::copy(QStringLiteral(LAUNCH_RECORDER),
                            dir.filePath(QLatin1String(folder) + QStringLiteral("/recorder"))));
    }
    const QString record = dir.filePath(QStringLiteral("record"));
    qputenv("LAUNCH_RECORD", QFile::encodeName(record));
    const QByteArray searchPath = qgetenv("PATH");
    qputenv("PATH", QFile::encodeName(dir.filePath(QStringLiteral("searched"))) + ':' + searchPath);
    {
        const CurrentFolder current(dir.filePath(QStringLiteral("current")));
        MacOSLaunchApplication("recorder");
    }
    qputenv("PATH", searchPath);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(record), 20000);
    QCOMPARE(content(record).split('\n').first(),
             dir.filePath(QStringLiteral("current/recorder")).toUtf8());
}

void tst_ApplicationServices::nothingToLaunch_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::newRow("null") << QByteArray();
    QTest::newRow("an empty path") << QByteArray("");
    QTest::newRow("a missing path") << QByteArray("/there is nothing/of that name");
    QTest::newRow("a missing name") << QByteArray("nothing-of-that-name");
    QTest::newRow("a folder") << QByteArray("/");
    QTest::newRow("a file that is no program") << QByteArray("/etc/passwd");
    QTest::newRow("not UTF-8") << QByteArray("/\xff\xfe/\x80");
}

/// And nothing is said of it, as the end of each test sees.
void tst_ApplicationServices::nothingToLaunch()
{
    QFETCH(QByteArray, path);
    MacOSLaunchApplication(path.isNull() ? nullptr : path.constData());

    // It stands in nobody's way.
    const QTemporaryDir root;
    const QString record = QDir(root.path()).filePath(QStringLiteral("record"));
    qputenv("LAUNCH_RECORD", QFile::encodeName(record));
    MacOSLaunchApplication(LAUNCH_RECORDER);
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(record), 20000);
}

QTEST_MAIN(tst_ApplicationServices)

#include "tst_ApplicationServices.moc"
