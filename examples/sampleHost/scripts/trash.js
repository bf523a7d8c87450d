// A copy of the picture goes into the trash, once that is meant; the window is empty after it.

function enabled(action) {
    return scripting.isItemEnabled(mainWindow, action);
}

scripting.startTest.connect(function () {
    nativeDialogs.setSaveFileName("copy.png");
    scripting.clickButton(mainWindow, "saveButton");
    nativeDialogs.setOpenFileName("copy.png");
    messageBoxes.setRotateQuestion(false);
    scripting.triggerAction(mainWindow, "actionOpen");
    scripting.compare(scripting.getSubObject(mainWindow, "fileNameLabel").text, "copy.png");

    messageBoxes.setYesNoMessage(false);
    scripting.triggerAction(mainWindow, "actionMoveToTrash");
    scripting.compare(scripting.isFileExist("copy.png"), true);

    messageBoxes.setYesNoMessage(true);
    scripting.triggerAction(mainWindow, "actionMoveToTrash");
    scripting.compare(scripting.isFileExist("copy.png"), false);
    scripting.compare(scripting.getSubObject(mainWindow, "fileNameLabel").text, "");
    scripting.compare(enabled("actionMoveToTrash"), false);
    scripting.compare(enabled("actionSave"), false);
    scripting.compare(enabled("actionOpen"), true);
});
