scripting.clickButton(mainWindow, "leaveProcess");
