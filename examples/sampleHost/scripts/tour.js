// A tour of the sample host: the picture is there and follows its sliders, a step is undone, the grid
// comes and goes, reset brings everything back, and the preferences hide the image size.

var view = scripting.getSubObject(mainWindow, "pictureView");

function check(condition, text) {
    if (!condition)
        scripting.fail(text);
    scripting.log("ok: " + text);
}

function slider(name) {
    return scripting.getSliderValue(mainWindow, name);
}

scripting.initializeTest.connect(function () {
    check(scripting.isItemVisible(mainWindow, "pictureView"), "the window is shown");
    check(view.pictureWidth > 0 && view.pictureHeight > 0, "a picture is loaded");
});

// A dialog is driven from inside its own event loop.
scripting.resendSignal.connect(function (dialog) {
    if (dialog.getObjectName() !== "preferencesDialog")
        return;
    scripting.setItemChecked(dialog, "showImageSizeCheckBox", false);
    scripting.wait(300);
    scripting.clickButton(dialog, "okButton");
});

scripting.startTest.connect(function () {
    scripting.setSlider(mainWindow, "horizonSlider", 35);
    check(view.angle === 3.5, "the picture turns by tenths of a degree");
    scripting.wait(300);

    scripting.setSlider(mainWindow, "keystoneSlider", 40);
    scripting.setSlider(mainWindow, "distortionSlider", -30);
    scripting.wait(300);
    scripting.triggerAction(mainWindow, "actionUndo");
    check(slider("distortionSlider") === 0 && slider("keystoneSlider") === 40,
          "undo takes the last step back");

    scripting.clickButton(mainWindow, "gridCheckBox");
    check(view.gridVisible, "the grid is shown");
    scripting.wait(300);

    scripting.setSlider(mainWindow, "horizonSlider", 400);
    check(view.angle === 15, "the slider ends at 15 degrees");

    messageBoxes.setYesNoMessage(true);
    scripting.clickButton(mainWindow, "resetButton");
    check(view.angle === 0 && slider("keystoneSlider") === 0, "reset brings everything back");
    scripting.setItemChecked(mainWindow, "gridCheckBox", false);
    check(!view.gridVisible, "the grid is hidden again");

    scripting.clickButton(mainWindow, "preferencesButton");
    check(!scripting.isItemVisible(mainWindow, "imageSizeLabel"),
          "the preferences hide the image size");
});

scripting.cleanupTest.connect(function () {
    scripting.clickButton(mainWindow, "closeButton");
});
