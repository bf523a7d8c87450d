// The sample host's window as a person uses it: real dialogs, hand-made undo steps, and a picture
// of 24 megapixels that takes its time.

#include "BusyBar.h"
#include "DialogWatcher.h"
#include "MainWindow.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QProgressBar>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>

namespace {

void sendMouse(QWidget* widget, QEvent::Type type, const QPoint& position)
{
    QMouseEvent event(type, position, widget->mapToGlobal(position), Qt::LeftButton,
                      type == QEvent::MouseButtonRelease ? Qt::NoButton : Qt::LeftButton,
                      Qt::NoModifier);
    QApplication::sendEvent(widget, &event);
}

void press(QWidget* dialog, const char* button)
{
    auto* found = dialog->findChild<QPushButton*>(QLatin1String(button));
    QVERIFY2(found, button);
    QTest::mouseClick(found, Qt::LeftButton);
}

void choose(QWidget* dialog, const QString& path)
{
    auto* fileDialog = qobject_cast<QFileDialog*>(dialog);
    QVERIFY2(fileDialog, dialog->metaObject()->className());
    auto* name = fileDialog->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
    QVERIFY(name);
    name->setText(path);
    QMetaObject::invokeMethod(fileDialog, "accept");
}

} // namespace

class tst_MainWindow : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void init();
    void cleanup();
    void a_drag_is_one_undo_step();
    void keys_in_quick_succession_are_one_undo_step();
    void undo_takes_back_what_has_just_been_done_by_hand();
    void a_click_on_crop_is_an_undo_step();
    void a_closed_question_keeps_the_picture_open_data();
    void a_closed_question_keeps_the_picture_open();
    void a_requested_picture_waits_for_dialogs_and_asks();
    void a_small_picture_shows_no_progress();
    void a_large_picture_leaves_the_window_alive();
    void a_stopped_save_leaves_nothing();
    void a_window_that_is_closed_while_it_saves_stops_and_asks();
    void the_usual_shortcuts_data();
    void the_usual_shortcuts();

private:
    template <typename T>
    T* child(const char* name) const
    {
        T* found = m_window->findChild<T*>(QLatin1String(name));
        Q_ASSERT(found);
        return found;
    }
    QString path(const char* name) const { return m_dir->filePath(QLatin1String(name)); }

    QTemporaryDir m_pictures;
    QScopedPointer<QTemporaryDir> m_dir;
    QScopedPointer<MainWindow> m_window;
};

void tst_MainWindow::initTestCase()
{
    QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QVERIFY(m_pictures.isValid());
    QImage picture(60, 40, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    QVERIFY(picture.save(m_pictures.filePath(QStringLiteral("small.png"))));
    picture = picture.scaled(6000, 4000);
    QVERIFY(picture.save(m_pictures.filePath(QStringLiteral("large.bmp"))));
}

void tst_MainWindow::init()
{
    m_dir.reset(new QTemporaryDir);
    m_window.reset(new MainWindow);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowActive(m_window.data()));
    QVERIFY(m_window->openPicture(m_pictures.filePath(QStringLiteral("small.png"))));
}

void tst_MainWindow::cleanup()
{
    m_window.reset();
}

void tst_MainWindow::a_drag_is_one_undo_step()
{
    auto* slider = child<QSlider>("horizonSlider");
    auto* undo = child<QAction>("actionUndo");
    const QPoint middle = slider->rect().center();

    sendMouse(slider, QEvent::MouseButtonPress, middle);
    for (int i = 1; i <= 10; ++i)
        sendMouse(slider, QEvent::MouseMove, middle + QPoint(4 * i, 0));
    QVERIFY(!undo->isEnabled());
    sendMouse(slider, QEvent::MouseButtonRelease, middle + QPoint(40, 0));
    QVERIFY2(slider->value() > 10, qPrintable(QString::number(slider->value())));

    undo->trigger();
    QCOMPARE(slider->value(), 0);
    QVERIFY(!undo->isEnabled());
}

void tst_MainWindow::keys_in_quick_succession_are_one_undo_step()
{
    auto* slider = child<QSlider>("keystoneSlider");
    auto* undo = child<QAction>("actionUndo");

    for (int i = 0; i < 3; ++i)
        QTest::keyClick(slider, Qt::Key_Right);
    QTest::qWait(600);
    for (int i = 0; i < 2; ++i)
        QTest::keyClick(slider, Qt::Key_Right);
    QCOMPARE(slider->value(), 5);

    undo->trigger();
    QCOMPARE(slider->value(), 3);
    undo->trigger();
    QCOMPARE(slider->value(), 0);
}

void tst_MainWindow::undo_takes_back_what_has_just_been_done_by_hand()
{
    auto* slider = child<QSlider>("distortionSlider");

    QTest::keyClick(slider, Qt::Key_PageUp);
    QCOMPARE(slider->value(), 10);
    QVERIFY(child<QAction>("actionUndo")->isEnabled());
    child<QAction>("actionUndo")->trigger();

    QCOMPARE(slider->value(), 0);
}

void tst_MainWindow::a_click_on_crop_is_an_undo_step()
{
    auto* autoCrop = child<QAbstractButton>("autoCropCheckBox");

    autoCrop->click();
    QVERIFY(!autoCrop->isChecked());
    child<QAction>("actionUndo")->trigger();

    QVERIFY(autoCrop->isChecked());
    QVERIFY(!child<QAction>("actionUndo")->isEnabled());
}

void tst_MainWindow::a_closed_question_keeps_the_picture_open_data()
{
    QTest::addColumn<QByteArray>("button");
    QTest::addColumn<bool>("visible");
    QTest::newRow("cancelled") << QByteArray("cancelButton") << true;
    QTest::newRow("given up") << QByteArray("discardButton") << false;
    QTest::newRow("escaped from") << QByteArray() << true;
}

void tst_MainWindow::a_closed_question_keeps_the_picture_open()
{
    QFETCH(QByteArray, button);
    QFETCH(bool, visible);
    child<QLineEdit>("titleEdit")->setText(QStringLiteral("Dogs"));

    DialogWatcher watcher([&](QWidget* dialog) {
        if (button.isEmpty())
            QTest::keyClick(dialog, Qt::Key_Escape);
        else
            press(dialog, button.constData());
    });
    m_window->close();

    QCOMPARE(watcher.count(), 1);
    QCOMPARE(m_window->isVisible(), visible);
}

void tst_MainWindow::a_requested_picture_waits_for_dialogs_and_asks()
{
    const QString requested = path("requested.png");
    QVERIFY(QImage(20, 10, QImage::Format_RGB32).save(requested));
    auto* name = child<QLabel>("fileNameLabel");

    // It comes while the preferences are open, and its question when they are gone.
    child<QLineEdit>("titleEdit")->setText(QStringLiteral("Dogs"));
    QStringList dialogs;
    DialogWatcher watcher([&](QWidget* dialog) {
        dialogs << dialog->objectName();
        if (dialogs.size() == 1) {
            m_window->openOnRequest(requested);
            QVERIFY(name->text() == QLatin1String("small.png"));
            QTest::keyClick(dialog, Qt::Key_Escape);
        } else {
            press(dialog, "discardButton");
        }
    });
    child<QPushButton>("preferencesButton")->click();

    QTRY_COMPARE(name->text(), QStringLiteral("requested.png"));
    QCOMPARE(dialogs.size(), 2);
    QVERIFY(dialogs.at(0) != dialogs.at(1));
}

void tst_MainWindow::a_small_picture_shows_no_progress()
{
    bool shown = false;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this,
            [&] { shown = shown || child<QProgressBar>("progressBar")->isVisible(); });
    timer.start(0);
    child<QSlider>("horizonSlider")->setValue(50);

    DialogWatcher watcher([&](QWidget* dialog) {
        if (qobject_cast<QFileDialog*>(dialog))
            choose(dialog, path("saved.png"));
        else
            press(dialog, "mbSipleButton");
    });
    child<QPushButton>("saveButton")->click();

    QCOMPARE(watcher.count(), 2);
    QCOMPARE(QImage(path("saved.png")).size(), QSize(60, 40));
    QVERIFY(!shown);
    QVERIFY(!m_window->isWindowModified());
}

void tst_MainWindow::a_large_picture_leaves_the_window_alive()
{
    QVERIFY(m_window->openPicture(m_pictures.filePath(QStringLiteral("large.bmp"))));
    auto* horizon = child<QSlider>("horizonSlider");
    auto* progress = child<QProgressBar>("progressBar");
    horizon->setValue(50);

    int seen = 0;
    bool controlsWereRight = true;
    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        if (!progress->isVisible() || QApplication::activeModalWidget())
            return;
        ++seen;
        controlsWereRight = controlsWereRight && !child<QPushButton>("saveButton")->isEnabled()
            && !child<QPushButton>("openButton")->isEnabled()
            && !child<QAction>("actionExport")->isEnabled() && horizon->isEnabled();
        QTest::keyClick(horizon, Qt::Key_Right);
    });
    timer.start(50);
    DialogWatcher watcher([&](QWidget* dialog) {
        if (qobject_cast<QFileDialog*>(dialog))
            choose(dialog, path("saved.bmp"));
        else
            press(dialog, "mbSipleButton");
    });
    m_window->save();

    QCOMPARE(QImage(path("saved.bmp")).size(), QSize(6000, 4000));
    QVERIFY2(seen > 1, qPrintable(QString::number(seen)));
    QVERIFY(controlsWereRight);
    QVERIFY(!progress->isVisible());
    QVERIFY(child<QPushButton>("saveButton")->isEnabled());
    // What was changed meanwhile isn't in the file.
    QVERIFY(horizon->value() > 50);
    QVERIFY(m_window->isWindowModified());
}

void tst_MainWindow::a_stopped_save_leaves_nothing()
{
    QVERIFY(m_window->openPicture(m_pictures.filePath(QStringLiteral("large.bmp"))));
    child<QSlider>("horizonSlider")->setValue(50);

    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        auto* stop = child<QPushButton>("stopButton");
        if (stop->isVisible())
            QTest::mouseClick(stop, Qt::LeftButton);
    });
    timer.start(20);
    DialogWatcher watcher([&](QWidget* dialog) { choose(dialog, path("saved.png")); });

    QVERIFY(!m_window->save());

    QCOMPARE(watcher.count(), 1);
    QVERIFY(QDir(m_dir->path()).isEmpty());
    QVERIFY(m_window->isWindowModified());
}

void tst_MainWindow::a_window_that_is_closed_while_it_saves_stops_and_asks()
{
    QVERIFY(m_window->openPicture(m_pictures.filePath(QStringLiteral("large.bmp"))));
    child<QSlider>("horizonSlider")->setValue(50);

    QTimer timer;
    connect(&timer, &QTimer::timeout, this, [&] {
        if (child<QProgressBar>("progressBar")->isVisible() && m_window->isVisible()) {
            timer.stop();
            m_window->close();
        }
    });
    timer.start(20);
    DialogWatcher watcher([&](QWidget* dialog) {
        if (qobject_cast<QFileDialog*>(dialog))
            choose(dialog, path("saved.png"));
        else
            press(dialog, "discardButton");
    });

    QVERIFY(!m_window->save());

    QTRY_VERIFY(!m_window->isVisible());
    QCOMPARE(watcher.count(), 2);
    QVERIFY(QDir(m_dir->path()).isEmpty());
}

void tst_MainWindow::the_usual_shortcuts_data()
{
    QTest::addColumn<QString>("action");
    QTest::addColumn<QString>("shortcut");
    QTest::newRow("open") << "actionOpen"
                          << "Ctrl+O";
    QTest::newRow("save") << "actionSave"
                          << "Ctrl+S";
    QTest::newRow("export") << "actionExport"
                            << "Ctrl+E";
    QTest::newRow("quit") << "actionQuit"
                          << "Ctrl+Q";
    QTest::newRow("undo") << "actionUndo"
                          << "Ctrl+Z";
    QTest::newRow("reset") << "actionReset"
                           << "Ctrl+R";
    QTest::newRow("preferences") << "actionPreferences"
                                 << "Ctrl+,";
    QTest::newRow("grid") << "actionGrid"
                          << "Ctrl+G";
}

void tst_MainWindow::the_usual_shortcuts()
{
    QFETCH(QString, action);
    QFETCH(QString, shortcut);
    QCOMPARE(child<QAction>(qPrintable(action))->shortcut().toString(), shortcut);
}

QTEST_MAIN(tst_MainWindow)

#include "tst_MainWindow.moc"
