// The script calls of 10,000 acceptance runs in one process: memory stays where it is after the
// first thousand.

#include "Consumption.h"
#include "Files.h"
#include "MessageBox.h"
#include "NativeDialogs.h"
#include "Scripting.h"
#include "Settings.h"
#include "TemporarySettings.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QImage>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTemporaryDir>
#include <QTest>
#include <QVBoxLayout>

using namespace VEK_NAMESPACE;

namespace {

constexpr int runs = SOAKS_WITH_SANITIZER ? 1000 : 10000;
constexpr int firstRuns = runs / 10;

constexpr qint64 heapBound = 256 << 10;
constexpr qint64 residentBound = SOAKS_WITH_SANITIZER ? 1LL << 40 : 8 << 20;

} // namespace

/// A window with one control of each kind, and what its buttons ask for.
class ProductWindow : public QWidget
{
    Q_OBJECT

public:
    ProductWindow()
    {
        auto* layout = new QVBoxLayout(this);
        for (QWidget* control :
             {static_cast<QWidget*>(new QLineEdit), static_cast<QWidget*>(new QCheckBox),
              static_cast<QWidget*>(new QSlider(Qt::Horizontal)),
              static_cast<QWidget*>(new QPushButton)}) {
            layout->addWidget(control);
            control->setObjectName(QLatin1String(control->metaObject()->className()));
        }
        auto* action = new QAction(this);
        action->setObjectName(QStringLiteral("action"));
        connect(action, &QAction::triggered, this, &ProductWindow::askForFiles);
        connect(findChild<QPushButton*>(), &QPushButton::clicked, this,
                &ProductWindow::askQuestions);
    }

    int questions = 0;
    int files = 0;

private:
    void askQuestions()
    {
        const auto answer = CMessageBox::yesNoMessage(this, QStringLiteral("Really?"), 165);
        questions += answer == QMessageBox::Yes;
        questions += CMessageBox::rotateQuestion(this, QStringLiteral("Rotate?"), 165) ? 1 : 0;
    }

    void askForFiles()
    {
        auto& dialogs = Singleton<CNativeDialogs>::instance();
        files += dialogs.getOpenFileName(this).size();
        files += dialogs.getSaveFileName(this).size();
    }
};

/// Is told after each run's worth of calls.
class Soak : public QObject
{
    Q_OBJECT

public:
    Consumption first;
    Consumption last;
    int ran = 0;

public Q_SLOTS:
    void hasRun()
    {
        ++ran;
        if (ran == firstRuns)
            first = Consumption::now();
        if (ran == runs)
            last = Consumption::now();
    }
};

class tst_ScriptSoak : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void loading_leaves_nothing_behind();
    void calls_leave_nothing_behind();

private:
    QString path(const char* name) const { return m_dir.filePath(QLatin1String(name)); }

    const QTemporaryDir m_dir;
};

void tst_ScriptSoak::initTestCase()
{
    QVERIFY(m_dir.isValid());
    QImage picture(16, 12, QImage::Format_RGB32);
    picture.fill(Qt::darkGreen);
    QVERIFY(picture.save(path("one.png")));
    picture.setPixel(3, 3, qRgb(255, 0, 0));
    QVERIFY(picture.save(path("two.png")));
}

/// A run's beginning: the script is read, the report made, and objects are exposed.
void tst_ScriptSoak::loading_leaves_nothing_behind()
{
    QVERIFY(writeFile(path("load.js"), "scripting.log('loaded');"));
    auto& scripting = CScripting::instance();
    Consumption first;
    for (int run = 1; run <= runs; ++run) {
        QObject object;
        scripting.setPathToScript(path("load.js"));
        scripting.makeObjectScriptable(QStringLiteral("object"), &object);
        scripting.log(QStringLiteral("a line"));
        if (run == firstRuns)
            first = Consumption::now();
    }
    const Consumption last = Consumption::now();
    QVERIFY2(last.heap - first.heap < heapBound, qPrintable(last.since(first)));
    QVERIFY2(last.resident - first.resident < residentBound, qPrintable(last.since(first)));
    QCOMPARE(last.files, first.files);
}

void tst_ScriptSoak::calls_leave_nothing_behind()
{
    // What takes time by itself is rare: a recorded message box takes a second, a wait 10 ms, and
    // files and stored settings wait for the disk.
    QVERIFY(writeFile(
        path("soak.js"),
        QByteArray(
            "var runs = %1;\n"
            "var folder = '%2/';\n"
            "var seen = 0;\n"
            "scripting.resendSignal.connect(function (object) { seen += 1; });\n"
            "scripting.createUndoCommandForSlider.connect(function (name) { seen += 1; });\n"
            "function check(condition, text) {\n"
            "    if (!condition)\n"
            "        scripting.fail(text);\n"
            "}\n"
            "function run(n) {\n"
            "    scripting.setLineEditText(mainWindow, 'QLineEdit', 'text ' + n);\n"
            "    scripting.compare(scripting.getLineEditText(mainWindow, 'QLineEdit'),\n"
            "                      'text ' + n);\n"
            "    scripting.setItemChecked(mainWindow, 'QCheckBox', n % 2 === 0);\n"
            "    check(scripting.isItemChecked(mainWindow, 'QCheckBox') === (n % 2 === 0),\n"
            "          'checked');\n"
            "    check(scripting.isItemEnabled(mainWindow, 'QSlider'), 'enabled');\n"
            "    check(scripting.isItemVisible(mainWindow, 'QSlider'), 'visible');\n"
            "    check(!scripting.isItemVisible(mainWindow, 'none'), 'invisible');\n"
            "    scripting.setSlider(mainWindow, 'QSlider', n % 90);\n"
            "    scripting.compare(scripting.getSliderValue(mainWindow, 'QSlider'), n % 90);\n"
            "    var edit = scripting.getSubObject(mainWindow, 'QLineEdit');\n"
            "    check(edit.text.length > 5, 'text');\n"
            "    scripting.shortcut(edit, 'a', 0);\n"
            "    messageBoxes.setYesNoMessage(true);\n"
            "    messageBoxes.setRotateQuestion(true);\n"
            "    messageBoxes.setYesNoMessageWithCheckBox(true, false);\n"
            "    scripting.clickButton(mainWindow, 'QPushButton');\n"
            "    nativeDialogs.setOpenFileName('in.png');\n"
            "    nativeDialogs.setSaveFileName('out.png');\n"
            "    scripting.triggerAction(mainWindow, 'action');\n"
            "    nativeDialogs.setOpenFileNames(['a', 'b', n]);\n"
            "    nativeDialogs.setExistingDirectory(folder);\n"
            "    scripting.compare('1', 2, false);\n"
            "    check(scripting.stringEndsWith('run ' + n, '' + n), 'end');\n"
            "    check(!scripting.isMessageBoxShown('nothing'), 'box');\n"
            "    check(!scripting.hasSettingKey('none'), 'key');\n"
            "    scripting.compare(scripting.platformName(), 'mac_os_x');\n"
            "    scripting.compare(scripting.testName(), 'soak');\n"
            "    scripting.test();\n"
            "    scripting.sendSignal(mainWindow);\n"
            "    scripting.log({run: n});\n"
            "    if (n % 10 === 0) {\n"
            "        check(scripting.isEqualImages(folder + 'one.png', folder + 'two.png', 5),\n"
            "              'images');\n"
            "        check(scripting.isEqualImagesBySize(folder + 'one.png', folder + 'two.png'),\n"
            "              'sizes');\n"
            "        check(!scripting.isEqualImages(folder + 'none.png', folder + 'two.png'),\n"
            "              'no image');\n"
            "        check(scripting.copyFile(folder + 'one.png', folder + 'copy.png'), 'copy');\n"
            "        check(scripting.isFileExist(folder + 'copy.png'), 'exists');\n"
            "        check(scripting.isEqualFiles(folder + 'one.png', folder + 'copy.png'),\n"
            "              'files');\n"
            "        check(scripting.dirContentCount(folder) > 3, 'content');\n"
            "        scripting.clearDir(folder + 'none');\n"
            "        check(scripting.removeFile(folder + 'copy.png'), 'remove');\n"
            "    }\n"
            "    if (n % 50 === 0) {\n"
            "        scripting.setSettingValue('key' + n % 7, 'value ' + n);\n"
            "        scripting.compare(scripting.getSettingValue('key' + n % 7),\n"
            "                          'value ' + n);\n"
            "        scripting.removeSettingKey('key' + n % 7);\n"
            "        scripting.wait(1);\n"
            "    }\n"
            "    soak.hasRun();\n"
            "}\n"
            "scripting.startTest.connect(function () {\n"
            "    scripting.addShownMessageBox('a box');\n"
            "    for (var n = 0; n < runs; ++n)\n"
            "        run(n);\n"
            "    scripting.compare(seen, 2 * runs);\n"
            "});\n")
            .replace("%1", QByteArray::number(runs))
            .replace("%2", QFile::encodeName(m_dir.path()))));
    CTemporarySettings overlay(QFile::encodeName(path("any")).constData());
    CSettings::setTemporarySettings(overlay);
    ProductWindow window;
    window.show();
    QVERIFY(QTest::qWaitForWindowExposed(&window));
    Soak soak;
    CScripting& scripting = CScripting::instance();
    scripting.setPathToScript(path("soak.js"));
    scripting.makeObjectScriptable(QStringLiteral("mainWindow"), &window);
    scripting.makeObjectScriptable(QStringLiteral("nativeDialogs"),
                                   &Singleton<CNativeDialogs>::instance());
    scripting.makeObjectScriptable(QStringLiteral("soak"), &soak);
    CMessageBox::initializeScripting();
    QSignalSpy finished(&scripting, &CScripting::testFinished);

    scripting.startScript();

    QVERIFY(finished.wait(500000));
    CSettings::removeTemporarySettings();
    const QByteArray report = readFile(path("soakReport.txt"));
    QVERIFY2(report.endsWith("\nPASS\n") && !scripting.hasFailed(), report.right(1000).constData());
    QCOMPARE(soak.ran, runs);
    QCOMPARE(window.questions, 2 * runs);
    QCOMPARE(window.files, (6 + 7) * runs);
    const QString more = soak.last.since(soak.first);
    QVERIFY2(soak.last.heap - soak.first.heap < heapBound, qPrintable(more));
    QVERIFY2(soak.last.resident - soak.first.resident < residentBound, qPrintable(more));
    QCOMPARE(soak.last.widgets, soak.first.widgets);
    QCOMPARE(soak.last.windows, soak.first.windows);
    QCOMPARE(soak.last.files, soak.first.files);
    QCOMPARE(soak.last.threads, soak.first.threads);
}

QTEST_MAIN(tst_ScriptSoak)

#include "tst_ScriptSoak.moc"
