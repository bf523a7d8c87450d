// The engine has forgotten the failure by the time of the verdict, which is PASS.

scripting.initializeTest.connect(function () {
    scripting.compare("first phase", "another");
});

scripting.startTest.connect(function () {
    scripting.log("second phase");
});
