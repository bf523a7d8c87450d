// Fails while the window is red, and cleans up after itself.

scripting.startTest.connect(function () {
    scripting.setSlider(mainWindow, "slider", 70);
    scripting.compare(scripting.getSliderValue(mainWindow, "slider"), 20);
});

scripting.cleanupTest.connect(function () {
    scripting.setSlider(mainWindow, "slider", 0);
    scripting.wait(200);
});
