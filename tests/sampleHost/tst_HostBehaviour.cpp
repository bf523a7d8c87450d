// What scripts see of the sample host: each row is a run of its own with the picture start.png, of
// 60 by 40 pixels, and tells what the script logs.

#include "HostProcess.h"

#include <QDir>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>

#include <map>
#include <memory>

class tst_HostBehaviour : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void scripts_see_data();
    void scripts_see();
    void saved_pictures_are_corrected();
    void an_upright_picture_at_the_start_asks_nothing();
    void without_a_picture_there_is_nothing_to_save();

private:
    QString path(const QString& name) const { return m_dir.filePath(name); }
    QByteArray scriptOf(const char* text) const;
    std::unique_ptr<HostProcess> startHost(const QString& script, const QString& picture) const;

    QTemporaryDir m_dir;
    std::map<int, std::unique_ptr<HostProcess>> m_runs;
};

namespace {

const char prologue[] = R"(
var dir = "%1/";
function see(value) { scripting.log(String(value)); }
function text(name) { return scripting.getSubObject(mainWindow, name).text; }
function slider(name) { return scripting.getSliderValue(mainWindow, name); }
function set(name, value) { scripting.setSlider(mainWindow, name, value); }
function click(name) { scripting.clickButton(mainWindow, name); }
function trigger(name) { scripting.triggerAction(mainWindow, name); }
function enabled(name) { return scripting.isItemEnabled(mainWindow, name); }
function shown(message) { return scripting.isMessageBoxShown(message); }
function open(name) { nativeDialogs.setOpenFileName(dir + name); click("openButton"); }
function inPreferences(action) {
    scripting.resendSignal.connect(function (dialog) { action(dialog); });
    trigger("actionPreferences");
}
var SAVE = 2048, DISCARD = 8388608, CANCEL = 4194304;
)";

void writePicture(const QString& path, const QSize& size, const QString& title = QString())
{
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(qRgb(200, 100, 50));
    if (!title.isEmpty())
        picture.setText(QStringLiteral("Title"), title);
    QVERIFY2(picture.save(path), qPrintable(path));
}

} // namespace

QByteArray tst_HostBehaviour::scriptOf(const char* text) const
{
    return QString::fromLatin1(prologue).arg(m_dir.path()).toUtf8() + text;
}

std::unique_ptr<HostProcess> tst_HostBehaviour::startHost(const QString& script,
                                                          const QString& picture) const
{
    QStringList arguments{QStringLiteral("--script"), script, QStringLiteral("--timeout"),
                          QStringLiteral("60000")};
    if (!picture.isEmpty())
        arguments += {QStringLiteral("--image"), path(picture)};
    return std::make_unique<HostProcess>(arguments);
}

void tst_HostBehaviour::initTestCase()
{
    QVERIFY(m_dir.isValid());
    writePicture(path(QStringLiteral("start.png")), {60, 40});
    writePicture(path(QStringLiteral("wide.one.png")), {80, 30});
    writePicture(path(QStringLiteral("square.png")), {50, 50});
    writePicture(path(QStringLiteral("upright.png")), {40, 70}, QStringLiteral("Tower"));
    writeFile(path(QStringLiteral("broken.png")), "not a picture");
}

void tst_HostBehaviour::scripts_see_data()
{
    QTest::addColumn<int>("run");
    QTest::addColumn<QStringList>("seen");

    int run = 0;
    const auto addRow = [&](const char* title, const char* script, const QStringList& seen) {
        writeFile(path(QStringLiteral("case%1.js").arg(run)), scriptOf(script));
        QTest::newRow(title) << run++ << seen;
    };
    const QString yes = QStringLiteral("true");
    const QString no = QStringLiteral("false");

    addRow("the picture and its size", "see(text('fileNameLabel')); see(text('imageSizeLabel'));",
           {"start.png", "60 x 40 px"});
    addRow("a picture that is opened",
           "open('wide.one.png'); see(text('fileNameLabel')); see(text('imageSizeLabel'));",
           {"wide.one.png", "80 x 30 px"});
    addRow("a picture that can't be read",
           "open('broken.png'); see(shown('Cannot open broken.png')); see(text('fileNameLabel'));",
           {yes, "start.png"});
    addRow("a file that isn't there",
           "nativeDialogs.setOpenFileName(dir + 'none.png'); trigger('actionOpen');"
           "see(shown('Cannot open none.png'));",
           {yes});
    addRow(
        "an upright picture that is rotated",
        "messageBoxes.setRotateQuestion(true); open('upright.png'); see(text('imageSizeLabel'));",
        {"70 x 40 px"});
    addRow("an upright picture that stays",
           "messageBoxes.setRotateQuestion(false); open('upright.png');"
           "see(text('imageSizeLabel'));",
           {"40 x 70 px"});
    addRow("a square picture, which asks nothing",
           "open('square.png'); see(text('imageSizeLabel'));", {"50 x 50 px"});
    addRow(
        "a picture with a title",
        "messageBoxes.setRotateQuestion(true); open('upright.png');"
        "see(scripting.getLineEditText(mainWindow, 'titleEdit'));"
        "open('square.png'); see('[' + scripting.getLineEditText(mainWindow, 'titleEdit') + ']');",
        {"Tower", "[]"});
    addRow("what opening a picture resets",
           "set('keystoneSlider', 9); messageBoxes.setSaveDiscardCancelMessage(DISCARD);"
           "open('square.png'); see(slider('keystoneSlider')); see(enabled('actionUndo'));"
           "see(shown('Save changes to start.png?'));",
           {"0", no, yes});
    addRow("a picture that is kept when another one is opened",
           "set('keystoneSlider', 9); messageBoxes.setSaveDiscardCancelMessage(CANCEL);"
           "open('square.png'); see(slider('keystoneSlider')); see(text('fileNameLabel'));",
           {"9", "start.png"});

    addRow("the ends of the sliders",
           "set('horizonSlider', 999); set('distortionSlider', 999); set('keystoneSlider', 999);"
           "see([slider('horizonSlider'), slider('distortionSlider'), slider('keystoneSlider')]);"
           "set('horizonSlider', -999); set('distortionSlider', -999);"
           "set('keystoneSlider', -999);"
           "see([slider('horizonSlider'), slider('distortionSlider'), slider('keystoneSlider')]);",
           {"150,100,100", "-150,-100,-100"});
    addRow(
        "a horizon in tenths of a degree",
        "set('horizonSlider', -25); see(scripting.getSubObject(mainWindow, 'pictureView').angle);",
        {"-2.5"});
    addRow("crop and grid at the start",
           "see(scripting.isItemChecked(mainWindow, 'autoCropCheckBox'));"
           "see(scripting.isItemChecked(mainWindow, 'gridCheckBox'));",
           {yes, no});
    addRow("a grid that is one thing in panel, menu and view",
           "scripting.setItemChecked(mainWindow, 'gridCheckBox', true);"
           "see(scripting.isItemChecked(mainWindow, 'actionGrid'));"
           "see(scripting.getSettingValue('gridOverlay.visible'));"
           "trigger('actionGrid');"
           "see(scripting.isItemChecked(mainWindow, 'gridCheckBox'));"
           "see(scripting.getSubObject(mainWindow, 'pictureView').gridVisible);",
           {yes, yes, no, no});

    addRow("undo, step by step",
           "see(enabled('actionUndo')); set('horizonSlider', 10); set('horizonSlider', 20);"
           "set('keystoneSlider', 30); see(enabled('actionUndo'));"
           "trigger('actionUndo'); see(slider('keystoneSlider')); trigger('actionUndo');"
           "see(slider('horizonSlider')); trigger('actionUndo'); see(slider('horizonSlider'));"
           "see(enabled('actionUndo'));",
           {no, yes, "0", "10", "0", no});
    addRow("no undo step without the signal that asks for one",
           "scripting.getSubObject(mainWindow, 'horizonSlider').value = 10;"
           "see(enabled('actionUndo')); scripting.createUndoCommandForSlider('horizonSlider');"
           "see(enabled('actionUndo'));",
           {no, yes});
    addRow("no undo step of a slider that hasn't moved, or that isn't there",
           "set('horizonSlider', 0); scripting.createUndoCommandForSlider('none');"
           "see(enabled('actionUndo'));",
           {no});
    addRow("a reset that isn't meant",
           "set('horizonSlider', 10); messageBoxes.setYesNoMessage(false); click('resetButton');"
           "see(slider('horizonSlider'));",
           {"10"});
    addRow("a reset, and its undo in one step",
           "set('horizonSlider', 10); set('keystoneSlider', 20);"
           "messageBoxes.setYesNoMessage(true); trigger('actionReset');"
           "see([slider('horizonSlider'), slider('keystoneSlider')]); trigger('actionUndo');"
           "see([slider('horizonSlider'), slider('keystoneSlider')]);",
           {"0,0", "10,20"});
    addRow("a reset of nothing, which is no undo step",
           "messageBoxes.setYesNoMessage(true); click('resetButton'); see(enabled('actionUndo'));",
           {no});

    addRow("a picture that is saved",
           "nativeDialogs.setSaveFileName(dir + 'saved.png'); click('saveButton');"
           "see(shown('Saved saved.png')); see(scripting.isFileExist(dir + 'saved.png'));",
           {yes, yes});
    addRow("a folder that can't be written to",
           "nativeDialogs.setSaveFileName('/no/such/folder/a.png'); trigger('actionSave');"
           "see(shown('Cannot save a.png')); see(shown('Saved a.png'));",
           {yes, no});
    addRow("a format that can't be written",
           "nativeDialogs.setSaveFileName(dir + 'a.strange'); click('saveButton');"
           "see(shown('Cannot save a.strange')); see(scripting.isFileExist(dir + 'a.strange'));",
           {yes, no});
    addRow("a picture that is exported",
           "open('wide.one.png'); nativeDialogs.setSaveFileName('asked for');"
           "nativeDialogs.setExistingDirectory(dir); click('exportButton');"
           "see(scripting.isFileExist(dir + 'wide.one-corrected.png'));"
           "see(scripting.isEqualImages(dir + 'wide.one.png', dir + 'wide.one-corrected.png'));",
           {yes, "The difference of the two pictures is 0 !", yes});
    addRow("an export to a folder that isn't there",
           "nativeDialogs.setSaveFileName('asked for');"
           "nativeDialogs.setExistingDirectory('/no/such/folder'); trigger('actionExport');"
           "see(shown('Cannot save start-corrected.png'));",
           {yes});

    addRow("an unchanged picture that is closed",
           "click('closeButton'); see(scripting.isItemVisible(mainWindow, 'pictureView'));", {no});
    addRow(
        "a changed picture that stays open",
        "set('horizonSlider', 10); messageBoxes.setSaveDiscardCancelMessage(CANCEL);"
        "click('closeButton'); see(shown('Save changes to start.png?')); see(mainWindow.visible);",
        {yes, yes});
    addRow("a changed picture that is given up",
           "set('horizonSlider', 10); messageBoxes.setSaveDiscardCancelMessage(DISCARD);"
           "trigger('actionQuit'); see(mainWindow.visible);",
           {no});
    addRow("a changed picture that is saved when it is closed",
           "set('horizonSlider', 10); messageBoxes.setSaveDiscardCancelMessage(SAVE);"
           "nativeDialogs.setSaveFileName(dir + 'closed.png'); click('closeButton');"
           "see(shown('Saved closed.png')); see(mainWindow.visible);",
           {yes, no});
    addRow("a changed picture that can't be saved when it is closed",
           "set('horizonSlider', 10); messageBoxes.setSaveDiscardCancelMessage(SAVE);"
           "nativeDialogs.setSaveFileName('/no/such/folder/a.png'); click('closeButton');"
           "see(shown('Cannot save a.png')); see(mainWindow.visible);",
           {yes, yes});
    addRow("a changed title, which is a change too",
           "scripting.setLineEditText(mainWindow, 'titleEdit', 'Dogs');"
           "messageBoxes.setSaveDiscardCancelMessage(CANCEL); click('closeButton');"
           "see(shown('Save changes to start.png?')); see(mainWindow.windowModified);",
           {yes, yes});
    addRow("a change that is taken back, which is none",
           "set('horizonSlider', 10); set('horizonSlider', 0);"
           "scripting.setItemChecked(mainWindow, 'autoCropCheckBox', false);"
           "see(mainWindow.windowModified); click('closeButton'); see(mainWindow.visible);",
           {no, no});
    addRow("a change that is saved, which is none any more",
           "set('horizonSlider', 10); nativeDialogs.setSaveFileName(dir + 'changed.png');"
           "click('saveButton'); see(mainWindow.windowModified); set('horizonSlider', 0);"
           "see(mainWindow.windowModified);",
           {no, yes});

    addRow("preferences that are kept",
           "inPreferences(function (dialog) { see(dialog.getObjectName());"
           "scripting.getSubObject(dialog, 'unitsCombo').currentIndex = 2;"
           "scripting.setItemChecked(dialog, 'showImageSizeCheckBox', false);"
           "scripting.clickButton(dialog, 'okButton'); });"
           "see(scripting.getSettingValue('imageSizeUnits'));"
           "see(scripting.getSettingValue('showImageSize'));"
           "see(scripting.isItemVisible(mainWindow, 'imageSizeLabel'));"
           "see(text('imageSizeLabel').slice(-3));",
           {"preferencesDialog", "2", no, no, " cm"});
    addRow("preferences that are given up",
           "inPreferences(function (dialog) {"
           "scripting.getSubObject(dialog, 'unitsCombo').currentIndex = 2;"
           "scripting.setItemChecked(dialog, 'showImageSizeCheckBox', false);"
           "scripting.clickButton(dialog, 'cancelButton'); });"
           "see(scripting.hasSettingKey('imageSizeUnits'));"
           "see(scripting.isItemVisible(mainWindow, 'imageSizeLabel'));",
           {no, yes});
    addRow("preferences as the settings have them",
           "scripting.setSettingValue('imageSizeUnits', 3);"
           "scripting.setSettingValue('showImageSize', false);"
           "scripting.resendSignal.connect(function (dialog) {"
           "see(scripting.getSubObject(dialog, 'unitsCombo').currentIndex);"
           "see(scripting.isItemChecked(dialog, 'showImageSizeCheckBox'));"
           "scripting.clickButton(dialog, 'cancelButton'); });"
           "click('preferencesButton');",
           {"3", no});
    addRow("what product this is",
           "scripting.resendSignal.connect(function (dialog) { see(dialog.getObjectName());"
           "see(scripting.getSubObject(dialog, 'label_1').text);"
           "see(scripting.getSubObject(dialog, 'aboutLabel').text); dialog.close(); });"
           "click('aboutButton'); scripting.wait(500); trigger('actionAbout');"
           "scripting.wait(500);",
           {"aboutDlg", "Vek Marlowick 3", "Version 3.1.4 / Build 251 / 64 bit", "aboutDlg",
            "Vek Marlowick 3", "Version 3.1.4 / Build 251 / 64 bit"});
}

void tst_HostBehaviour::scripts_see()
{
    QFETCH(int, run);
    QFETCH(QStringList, seen);

    // Runs are mostly idle: the next ones are started while this one is waited for.
    for (int next = run; next < run + 12; ++next) {
        const QString script = path(QStringLiteral("case%1.js").arg(next));
        if (!m_runs[next] && QFileInfo::exists(script))
            m_runs[next] = startHost(script, QStringLiteral("start.png"));
    }
    VERIFY_SUCCESS(*m_runs[run]);

    const QStringList report = readLines(path(QStringLiteral("case%1Report.txt").arg(run)));
    QVERIFY2(report.mid(3, report.size() - 4) == seen, qPrintable(report.join(QLatin1Char('\n'))));
}

void tst_HostBehaviour::saved_pictures_are_corrected()
{
    const QString script = path(QStringLiteral("save.js"));
    writeFile(script,
              scriptOf("set('horizonSlider', 100);"
                       "scripting.setItemChecked(mainWindow, 'autoCropCheckBox', false);"
                       "scripting.setLineEditText(mainWindow, 'titleEdit', 'Dogs');"
                       "nativeDialogs.setSaveFileName(dir + 'corners.png'); click('saveButton');"
                       "nativeDialogs.setSaveFileName(dir + 'corners.jpg'); click('saveButton');"
                       "scripting.setItemChecked(mainWindow, 'autoCropCheckBox', true);"
                       "nativeDialogs.setSaveFileName(dir + 'cropped.png'); click('saveButton');"));
    const auto host = startHost(script, QStringLiteral("start.png"));
    VERIFY_SUCCESS(*host);

    const QRgb brown = qRgb(200, 100, 50);
    const QImage corners(path(QStringLiteral("corners.png")));
    QCOMPARE(corners.size(), QSize(60, 40));
    QCOMPARE(qAlpha(corners.pixel(59, 0)), 0);
    QCOMPARE(corners.pixel(30, 20), brown);
    QCOMPARE(corners.text(QStringLiteral("Title")), QStringLiteral("Dogs"));

    const QImage onGround(path(QStringLiteral("corners.jpg")));
    QVERIFY(qAbs(qRed(onGround.pixel(59, 0)) - 0x1b) < 8);
    QCOMPARE(onGround.text(QStringLiteral("Title")), QStringLiteral("Dogs"));

    const QImage cropped(path(QStringLiteral("cropped.png")));
    for (const QPoint& corner : {QPoint(0, 0), QPoint(59, 0), QPoint(0, 39), QPoint(59, 39)})
        QCOMPARE(cropped.pixel(corner), brown);
}

void tst_HostBehaviour::an_upright_picture_at_the_start_asks_nothing()
{
    const QString script = path(QStringLiteral("upright.js"));
    writeFile(script, scriptOf("see(text('imageSizeLabel'));"));

    const auto host = startHost(script, QStringLiteral("upright.png"));
    VERIFY_SUCCESS(*host);

    QCOMPARE(readLines(path(QStringLiteral("uprightReport.txt"))).value(3),
             QStringLiteral("40 x 70 px"));
}

void tst_HostBehaviour::without_a_picture_there_is_nothing_to_save()
{
    const QString script = path(QStringLiteral("empty.js"));
    writeFile(script,
              scriptOf("see(enabled('saveButton')); see(enabled('actionSave'));"
                       "see(enabled('exportButton')); see(enabled('actionExport'));"
                       "see(enabled('openButton')); set('horizonSlider', 50);"
                       "scripting.setLineEditText(mainWindow, 'titleEdit', 'Dogs');"
                       "click('closeButton'); see(mainWindow.visible);"));

    const auto host = startHost(script, QString());
    VERIFY_SUCCESS(*host);

    QCOMPARE(readLines(path(QStringLiteral("emptyReport.txt"))).mid(3, 6),
             QStringList({"false", "false", "false", "false", "true", "false"}));
}

QTEST_GUILESS_MAIN(tst_HostBehaviour)

#include "tst_HostBehaviour.moc"
