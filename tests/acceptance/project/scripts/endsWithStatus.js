scripting.clickButton(mainWindow, "status");
