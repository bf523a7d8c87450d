// Closing a changed picture asks: cancelled the window stays, discarded it closes; an unchanged one closes
// without a question.

var save = 2048, discard = 8388608, cancel = 4194304;

scripting.startTest.connect(function () {
    var question = "Save changes to " + scripting.getSubObject(mainWindow, "fileNameLabel").text + "?";

    scripting.clickButton(mainWindow, "closeButton");
    scripting.compare(mainWindow.visible, false);
    scripting.compare(scripting.isMessageBoxShown(question), false);
    mainWindow.show();

    scripting.setLineEditText(mainWindow, "titleEdit", "Two friends");
    messageBoxes.setSaveDiscardCancelMessage(cancel);
    scripting.clickButton(mainWindow, "closeButton");
    scripting.compare(scripting.isMessageBoxShown(question, 0), true);
    scripting.compare(mainWindow.visible, true);

    messageBoxes.setSaveDiscardCancelMessage(discard);
    scripting.triggerAction(mainWindow, "actionQuit");
    scripting.compare(scripting.isMessageBoxShown(question, 1), true);
    scripting.compare(mainWindow.visible, false);
    mainWindow.show();

    messageBoxes.setSaveDiscardCancelMessage(save);
    nativeDialogs.setSaveFileName("saved.png");
    scripting.clickButton(mainWindow, "closeButton");
    scripting.compare(scripting.isFileExist("saved.png"), true);
    scripting.compare(mainWindow.visible, false);
});
