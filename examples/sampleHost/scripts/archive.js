// The corrected picture goes out as a ZIP archive with its settings, and comes back from there.

function name() {
    return scripting.getSubObject(mainWindow, "fileNameLabel").text;
}

scripting.startTest.connect(function () {
    var before = name();
    var base = before.substring(0, before.lastIndexOf("."));
    scripting.setSlider(mainWindow, "horizonSlider", 35);
    scripting.setLineEditText(mainWindow, "titleEdit", "Friends");

    nativeDialogs.setSaveFileName("archive.zip");
    scripting.triggerAction(mainWindow, "actionExportArchive");
    scripting.compare(scripting.isFileExist("archive.zip"), true);

    // What is on the screen isn't saved yet, and is asked about.
    nativeDialogs.setOpenFileName("archive.zip");
    messageBoxes.setSaveDiscardCancelMessage(8388608); // discard
    messageBoxes.setRotateQuestion(false);
    scripting.triggerAction(mainWindow, "actionImport");
    scripting.compare(scripting.isMessageBoxShown("Save changes to " + before + "?"), true);

    scripting.compare(name(), base + "-corrected.png");
    scripting.compare(scripting.getLineEditText(mainWindow, "titleEdit"), "Friends");
    scripting.compare(scripting.getSliderValue(mainWindow, "horizonSlider"), 0);
    scripting.compare(scripting.isFileExist("archive/" + base + "-corrected.json"), true);
    scripting.compare(mainWindow.windowModified, false);

    // The settings are no archive.
    nativeDialogs.setOpenFileName("archive/" + base + "-corrected.json");
    scripting.triggerAction(mainWindow, "actionImport");
    scripting.compare(name(), base + "-corrected.png");
});
