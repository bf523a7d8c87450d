scripting.setSlider(mainWindow, "slider", 70);
while (true)
    scripting.wait(50);
