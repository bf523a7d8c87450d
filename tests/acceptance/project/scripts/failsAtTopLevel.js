scripting.startTest.connect(function () {
    scripting.setSlider(mainWindow, "slider", 0);
    scripting.wait(200);
});

scripting.setSlider(mainWindow, "slider", 70);
noSuchGlobal();
