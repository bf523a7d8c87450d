// An upright photograph is turned when the user wants it, and the title travels with the file.

scripting.startTest.connect(function () {
    scripting.setLineEditText(mainWindow, "titleEdit", "Two friends");
    nativeDialogs.setSaveFileName("upright.png");
    scripting.clickButton(mainWindow, "saveButton");

    nativeDialogs.setOpenFileName("upright.png");
    messageBoxes.setRotateQuestion(true);
    scripting.clickButton(mainWindow, "openButton");
    scripting.compare(scripting.getLineEditText(mainWindow, "titleEdit"), "Two friends");

    nativeDialogs.setSaveFileName("lying.png");
    scripting.clickButton(mainWindow, "saveButton");
    scripting.compare(scripting.isEqualImagesBySize("upright.png", "lying.png"), false);

    // A picture that is wider than high is opened without a question.
    nativeDialogs.setOpenFileName("lying.png");
    scripting.clickButton(mainWindow, "openButton");
    scripting.compare(scripting.getSubObject(mainWindow, "fileNameLabel").text, "lying.png");
});
