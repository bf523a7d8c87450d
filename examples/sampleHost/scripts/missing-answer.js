// Meant to fail: a question that nobody has answered in advance ends the test.

scripting.startTest.connect(function () {
    scripting.setSlider(mainWindow, "horizonSlider", 10);
    scripting.clickButton(mainWindow, "resetButton");
    scripting.log("never reached");
});
