// What scripts do, for who wants it checked as strictly as TypeScript can.

scripting.log(null);
scripting.compare(undefined, 1, false);
scripting.getSubObject(mainWindow, "label")?.text.length;
scripting.getSubObject<QSlider>(mainWindow, "slider")?.value.toFixed();
scripting.resendSignal.connect((dialog: CBaseDialog) => scripting.clickButton(dialog, "okButton"));
scripting.createUndoCommandForSlider.connect(slider => slider.toUpperCase());
scripting.getSubObject<QSpinBox>(mainWindow, "box")?.["valueChanged(QString)"].connect(text => {
    text.toUpperCase();
});

// @ts-expect-error
scripting.getSubObject(mainWindow, "label").text;
// @ts-expect-error
scripting.startTest.connect((argument: string) => argument.length);
