scripting.setSlider(mainWindow, "slider", 70);
scripting.wait(1500);
scripting.clickButton(mainWindow, "crash");
