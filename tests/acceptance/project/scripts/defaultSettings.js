scripting.compare(scripting.getSettingValue("beside/script"), "from the default file");
