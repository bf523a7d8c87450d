// Meant to fail: the time runs out while a box is shown over a modal dialog, and the run ends all the same.

scripting.resendSignal.connect(function () {
    for (var i = 0; i < 100; ++i)
        scripting.addShownMessageBox("box " + i);
});

scripting.startTest.connect(function () {
    scripting.clickButton(mainWindow, "preferencesButton");
});
