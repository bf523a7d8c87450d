// What scripts may do: TypeScript has to take every line.

// Every global.
print("a", 1, true);
gc();
var engine = version() + 1;

// What can be left out is left out, or given.
scripting.fail();
scripting.fail("reason");
scripting.compare(1, "1");
scripting.compare({ a: 1 }, [1], false);
scripting.isEqualImages("a.png", "b.png");
scripting.isEqualImages("a.png", "b.png", 1e-12);
scripting.isEqualImagesBySize("a.png", "b.png", 0);
scripting.dirContentCount(".");
scripting.dirContentCount(".", false);
scripting.isMessageBoxShown("text");
scripting.isMessageBoxShown("text", 0);
scripting.log(undefined);
scripting.setSettingValue("key", [1, 2]);

// Results are of their types.
var name = scripting.testName().toUpperCase();
var value = scripting.getSliderValue(mainWindow, "horizonSlider").toFixed(1);
var count = scripting.dirContentCount(".") - 1;
var isThere = scripting.isFileExist("file") === true;
var setting = scripting.getSettingValue("key").anything;

// Objects of unknown and of known classes.
scripting.getSubObject(mainWindow, "label").text.length;
scripting.clickButton(scripting.getSubObject(mainWindow, "panel"), "button");
scripting.getSubObject(mainWindow, "label") !== null;
/** @type {QSlider} */
var slider = scripting.getSubObject(mainWindow, "horizonSlider");
slider.maximum = slider.value + 1;
slider.orientation = 2;
var view = /** @type {PictureView} */ (scripting.getSubObject(mainWindow, "pictureView"));
view.angle > 3.5;
mainWindow.findChild("label").text;
mainWindow.findChildren(/Label$/)[0].visible;
mainWindow.undo();
mainWindow.size = preferencesDialog.size;
String(mainWindow);

// Signals, their handlers, and handlers that take less.
scripting.startTest.connect(function () {});
scripting.resendSignal.connect(function () {});
scripting.resendSignal.connect(function (dialog) {
    dialog.getObjectName() === "preferencesDialog" && dialog.accept();
    dialog.windowTitle.length;
});
scripting.resendSignal.connect(
    /** @param {CBaseDialog} dialog */
    function (dialog) {
        dialog.getObjectName().length;
        scripting.clickButton(dialog, "okButton");
    });
scripting.createUndoCommandForSlider.connect(function (slider) { slider.toUpperCase(); });
var recorder = { names: [], add: function (name) { this.names.push(name); } };
scripting.createUndoCommandForSlider.connect(recorder, recorder.add);
scripting.createUndoCommandForSlider.connect(recorder, "add");
scripting.createUndoCommandForSlider.disconnect(recorder, recorder.add);
slider.valueChanged.connect(function (value) { value.toFixed(); });
slider.valueChanged.connect(slider.setValue);
scripting.testFinished();
/** @type {QSpinBox} */
var box = scripting.getSubObject(mainWindow, "box");
box["valueChanged(QString)"].connect(function (text) { text.toUpperCase(); });

// Answers.
messageBoxes.setYesNoMessage(true);
messageBoxes.setSaveDiscardCancelMessage(2048);
nativeDialogs.setOpenFileNames(["a.png", "b.png"]);
