// Fails inside a modal dialog, which the failure closes.

scripting.resendSignal.connect(function () {
    scripting.compare("in the dialog", "elsewhere");
});

scripting.startTest.connect(function () {
    scripting.clickButton(mainWindow, "dialog");
});
