// The keyboard does what the menus do.

var ctrl = 67108864;

scripting.startTest.connect(function () {
    while (!mainWindow.isActiveWindow)
        scripting.wait(50);

    scripting.setSlider(mainWindow, "horizonSlider", 40);
    messageBoxes.setYesNoMessage(true);
    scripting.shortcut(mainWindow, "r", ctrl);
    scripting.compare(scripting.getSliderValue(mainWindow, "horizonSlider"), 0);

    scripting.shortcut(mainWindow, "z", ctrl);
    scripting.compare(scripting.getSliderValue(mainWindow, "horizonSlider"), 40);

    nativeDialogs.setSaveFileName("by-key.png");
    scripting.shortcut(mainWindow, "s", ctrl);
    scripting.compare(scripting.isMessageBoxShown("Saved by-key.png"), true);

    nativeDialogs.setOpenFileName("missing.png");
    scripting.shortcut(mainWindow, "o", ctrl);
    scripting.compare(scripting.isMessageBoxShown("Cannot open missing.png"), true);

    scripting.shortcut(mainWindow, "q", ctrl);
    scripting.compare(mainWindow.visible, false);
});
