scripting.compare(mainWindow.visible, true);
