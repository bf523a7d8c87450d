// A tour of the sample host: the picture is there, the horizon follows its slider, the grid comes and
// goes, and reset brings everything back.

var view = mainWindow.central.pictureView;
var panel = mainWindow.central.toolPanel;

function check(condition, text) {
    if (!condition)
        scripting.fail(text);
    scripting.log("ok: " + text);
}

scripting.initializeTest.connect(function () {
    check(mainWindow.visible, "the window is shown");
    check(view.pictureWidth > 0 && view.pictureHeight > 0, "a picture is loaded");
});

scripting.startTest.connect(function () {
    panel.horizonSlider.value = 35;
    check(view.angle === 3.5, "the picture turns by tenths of a degree");
    scripting.wait(300);

    panel.gridCheckBox.click();
    check(view.gridVisible, "the grid is shown");
    scripting.wait(300);

    panel.horizonSlider.value = 400;
    check(view.angle === 15, "the slider ends at 15 degrees");

    panel.resetButton.click();
    check(view.angle === 0, "reset straightens the picture back");
    panel.gridCheckBox.click();
    check(!view.gridVisible, "the grid is hidden again");
});

scripting.cleanupTest.connect(function () {
    mainWindow.close();
});
