// A file that is no picture is told, and the picture that was open stays.

scripting.startTest.connect(function () {
    var label = scripting.getSubObject(mainWindow, "fileNameLabel");
    var before = label.text;

    scripting.compare(scripting.copyFile(scripting.testName() + ".js", "broken.png"), true);
    nativeDialogs.setOpenFileName("broken.png");
    scripting.clickButton(mainWindow, "openButton");
    scripting.compare(scripting.isMessageBoxShown("Cannot open broken.png", 0), true);
    scripting.compare(label.text, before);

    nativeDialogs.setOpenFileName("missing.png");
    scripting.triggerAction(mainWindow, "actionOpen");
    scripting.compare(scripting.isMessageBoxShown("Cannot open missing.png", 1), true);
    scripting.compare(scripting.isItemEnabled(mainWindow, "saveButton"), true);
});
