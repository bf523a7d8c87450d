scripting.compare(scripting.isFileExist("main.cpp"), true);
scripting.compare(scripting.isFileExist("scripts/files.js"), true);
