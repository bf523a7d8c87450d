scripting.setSlider(mainWindow, "slider", 70);
scripting.clickButton(mainWindow, "leaveProcess");
scripting.wait(500);
while (true) {
}
