// A picture is opened through the product's own button, straightened and saved; undo brings it back as it
// was.

function save(name) {
    nativeDialogs.setSaveFileName(name);
    scripting.clickButton(mainWindow, "saveButton");
    scripting.compare(scripting.isMessageBoxShown("Saved " + name), true);
}

scripting.startTest.connect(function () {
    save("photo.png");

    nativeDialogs.setOpenFileName("photo.png");
    messageBoxes.setRotateQuestion(false);
    scripting.clickButton(mainWindow, "openButton");
    scripting.compare(scripting.getSubObject(mainWindow, "fileNameLabel").text, "photo.png");

    scripting.setSlider(mainWindow, "horizonSlider", 25);
    save("straight.png");
    scripting.compare(scripting.isEqualImagesBySize("photo.png", "straight.png", 0), true);
    scripting.compare(scripting.isEqualImages("photo.png", "straight.png", 1e-12), false);

    scripting.triggerAction(mainWindow, "actionUndo");
    scripting.compare(scripting.getSliderValue(mainWindow, "horizonSlider"), 0);
    save("again.png");
    scripting.compare(scripting.isEqualImages("photo.png", "again.png", 1e-12), true);
});
