// The preferences dialog is driven from inside its own event loop: cancelled it stores nothing, accepted
// it stores what was chosen.

var accept = false;
var visits = 0;

scripting.resendSignal.connect(function (dialog) {
    visits += 1;
    scripting.compare(dialog.getObjectName(), "preferencesDialog");
    scripting.getSubObject(dialog, "unitsCombo").currentIndex = 2;
    scripting.setItemChecked(dialog, "showImageSizeCheckBox", false);
    scripting.clickButton(dialog, accept ? "okButton" : "cancelButton");
});

scripting.startTest.connect(function () {
    scripting.clickButton(mainWindow, "preferencesButton");
    scripting.compare(visits, 1);
    scripting.compare(scripting.hasSettingKey("imageSizeUnits"), false);
    scripting.compare(scripting.isItemVisible(mainWindow, "imageSizeLabel"), true);

    accept = true;
    scripting.triggerAction(mainWindow, "actionPreferences");
    scripting.compare(visits, 2);
    scripting.compare(Number(scripting.getSettingValue("imageSizeUnits")), 2);
    scripting.compare(scripting.hasSettingKey("showImageSize"), true);
    scripting.compare(scripting.isItemVisible(mainWindow, "imageSizeLabel"), false);
});
