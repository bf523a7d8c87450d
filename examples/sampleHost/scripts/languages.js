// The language changes while the window is open: at once when it is chosen, back again when the
// preferences are cancelled, and for good when they are accepted.

var japanese = 3;
var accept = false;

function textOf(name) {
    return scripting.getSubObject(mainWindow, name).text;
}

scripting.resendSignal.connect(function (dialog) {
    scripting.getSubObject(dialog, "languageCombo").currentIndex = japanese;
    scripting.wait(100); // widgets learn of it through events
    scripting.compare(dialog.windowTitle, "環境設定");
    scripting.compare(textOf("resetButton"), "リセット");
    scripting.clickButton(dialog, accept ? "okButton" : "cancelButton");
});

scripting.startTest.connect(function () {
    scripting.compare(textOf("resetButton"), "Reset");
    scripting.clickButton(mainWindow, "preferencesButton");
    scripting.wait(100);
    scripting.compare(textOf("resetButton"), "Reset");

    accept = true;
    scripting.clickButton(mainWindow, "preferencesButton");
    scripting.compare(textOf("resetButton"), "リセット");
    scripting.compare(Number(scripting.getSettingValue("VekAppLanguage")), 1041);
});
