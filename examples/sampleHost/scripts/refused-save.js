// A save that can't be done is told, leaves nothing behind, and the picture stays unsaved.

scripting.startTest.connect(function () {
    scripting.setSlider(mainWindow, "keystoneSlider", 30);
    nativeDialogs.setSaveFileName("no such folder/photo.png");
    scripting.clickButton(mainWindow, "saveButton");
    scripting.compare(scripting.isMessageBoxShown("Cannot save photo.png", 0), true);
    scripting.compare(scripting.isFileExist("no such folder/photo.png"), false);
    scripting.compare(mainWindow.windowModified, true);

    nativeDialogs.setSaveFileName("photo.png");
    scripting.clickButton(mainWindow, "saveButton");
    scripting.compare(scripting.isMessageBoxShown("Saved photo.png", 1), true);
    scripting.compare(scripting.isFileExist("photo.png"), true);
    scripting.compare(mainWindow.windowModified, false);
});
