// Reset asks first: declined it changes nothing, accepted it takes every correction back.

var sliders = ["horizonSlider", "distortionSlider", "keystoneSlider"];

function expectSliders(values) {
    for (var i = 0; i < sliders.length; ++i)
        scripting.compare(scripting.getSliderValue(mainWindow, sliders[i]), values[i]);
}

scripting.startTest.connect(function () {
    scripting.setSlider(mainWindow, "horizonSlider", 15);
    scripting.setSlider(mainWindow, "distortionSlider", -20);
    scripting.setSlider(mainWindow, "keystoneSlider", 10);

    messageBoxes.setYesNoMessage(false);
    messageBoxes.setYesNoMessage(true);

    scripting.clickButton(mainWindow, "resetButton");
    expectSliders([15, -20, 10]);
    scripting.triggerAction(mainWindow, "actionReset");
    expectSliders([0, 0, 0]);

    // One step back brings all of them.
    scripting.triggerAction(mainWindow, "actionUndo");
    expectSliders([15, -20, 10]);
    scripting.triggerAction(mainWindow, "actionUndo");
    expectSliders([15, -20, 0]);
});
