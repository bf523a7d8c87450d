// The about box tells name, version and notices. Unlike other dialogs it doesn't block: it comes up
// while the script goes on, and goes when it is closed.

var seen = 0;

function text(dialog, name) {
    return scripting.getSubObject(dialog, name).text;
}

scripting.resendSignal.connect(function (dialog) {
    ++seen;
    scripting.compare(dialog.getObjectName(), "aboutDlg");
    scripting.compare(dialog.windowTitle, "About Vek Marlowick 3");
    scripting.compare(text(dialog, "label_1"), "Vek Marlowick 3");
    scripting.compare(text(dialog, "aboutLabel").indexOf("Version 3.1"), 0);
    scripting.compare(text(dialog, "lbVisitVekHomePage").indexOf("http://") > 0, true);
    scripting.compare(text(dialog, "lbVisitVekPatentsPage").length > 1000, true);
    dialog.close();
});

// Until the box has come up for the count-th time and gone.
function waitFor(count) {
    for (var i = 0; i < 200 && seen < count; ++i)
        scripting.wait(50);
    scripting.compare(seen, count);
    scripting.compare(scripting.isItemVisible(mainWindow, "aboutDlg"), false);
}

scripting.startTest.connect(function () {
    scripting.clickButton(mainWindow, "aboutButton");
    waitFor(1);
    scripting.triggerAction(mainWindow, "actionAbout");
    waitFor(2);
});
