// Exporting writes the corrected picture beside others, under a name of its own.

scripting.startTest.connect(function () {
    var before = scripting.dirContentCount(".");
    scripting.setSlider(mainWindow, "distortionSlider", -40);
    nativeDialogs.setExistingDirectory(".");
    nativeDialogs.setSaveFileName("the answer to a folder needs this too");
    scripting.clickButton(mainWindow, "exportButton");

    scripting.compare(scripting.dirContentCount("."), before + 1);
    var name = scripting.getSubObject(mainWindow, "fileNameLabel").text;
    var base = name.substring(0, name.lastIndexOf("."));
    scripting.compare(scripting.isFileExist(base + "-corrected.png"), true);
});
