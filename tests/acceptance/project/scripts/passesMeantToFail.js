// Passes, and the host takes its time to end.

scripting.clickButton(mainWindow, "linger");
