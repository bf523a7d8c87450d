// What scripts can't do: TypeScript has to find a mistake in every line below such a remark.

// Names that there aren't.
// @ts-expect-error
scriptings.log("text");
// @ts-expect-error
scripting.clickbutton(mainWindow, "okButton");
// @ts-expect-error
scripting.isScriptingMode();
// @ts-expect-error
scripting.setPathToScript("other.js");
// @ts-expect-error
scripting.handleJScriptException("text");
// @ts-expect-error
mainWindow.isVisible();
// @ts-expect-error
messageBoxes.setYesNo(true);
// @ts-expect-error
nativeDialogs.getOpenFileName();
// @ts-expect-error
mainWindow.notDeclared = 1;
// @ts-expect-error
preferencesDialog.getObjectname();
// @ts-expect-error
scripting.startTests.connect(function () {});

// Nothing of a browser, or of later languages.
// @ts-expect-error
window.alert("text");
// @ts-expect-error
console.log("text");
// @ts-expect-error
"text".includes("t");
// @ts-expect-error
new Promise(function () {});

// Arguments of another type.
// @ts-expect-error
scripting.wait("100");
// @ts-expect-error
scripting.clickButton("mainWindow", "okButton");
// @ts-expect-error
scripting.clickButton(mainWindow, mainWindow);
// @ts-expect-error
scripting.clickButton(scripting, "okButton");
// @ts-expect-error
scripting.setSlider(mainWindow, "horizonSlider", true);
// @ts-expect-error
scripting.setItemChecked(mainWindow, "gridCheckBox", "true");
// @ts-expect-error
scripting.shortcut(mainWindow, 115, 67108864);
// @ts-expect-error
scripting.compare(1, 2, "log only");
// @ts-expect-error
scripting.sendSignal("dialog");
// @ts-expect-error
messageBoxes.setSaveDiscardCancelMessage("save");
// @ts-expect-error
nativeDialogs.setOpenFileNames("a.png");
// @ts-expect-error
scripting.wait(scripting.getSubObject(mainWindow, "slider"));
// @ts-expect-error
mainWindow.size = mainWindow.pos;
// @ts-expect-error
mainWindow.size = 5;
// @ts-expect-error
mainWindow.windowTitle = 5;

// Too few, too many.
// @ts-expect-error
scripting.compare(1);
// @ts-expect-error
scripting.log();
// @ts-expect-error
scripting.clickButton("okButton");
// @ts-expect-error
scripting.getSubObject(mainWindow);
// @ts-expect-error
scripting.isEqualImages("a.png");
// @ts-expect-error
scripting.testName(1);
// @ts-expect-error
scripting.isFileExist("a.png", "b.png");
// @ts-expect-error
scripting.isMessageBoxShown("text", 0, true);
// @ts-expect-error
messageBoxes.setYesNoMessage();

// Results taken for something else.
// @ts-expect-error
scripting.getSliderValue(mainWindow, "horizonSlider").toUpperCase();
// @ts-expect-error
scripting.testName().toFixed();
// @ts-expect-error
scripting.clickButton(mainWindow, "okButton").length;

// What only can be read.
// @ts-expect-error
mainWindow.isActiveWindow = true;
// @ts-expect-error
scripting.startTest = function () {};

// Signals.
// @ts-expect-error
scripting.startTest.connect("startTest");
// @ts-expect-error
scripting.createUndoCommandForSlider.connect(function (name) { name.toFixed(); });
// @ts-expect-error
scripting.log.connect(function () {});
