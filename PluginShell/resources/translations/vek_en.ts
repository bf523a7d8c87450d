<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>BusyBar</name>
    <message>
        <source>Stop</source>
        <translation>Stop</translation>
    </message>
</context>
<context>
    <name>CAboutDlg</name>
    <message>
        <source>Version</source>
        <translation>Version</translation>
    </message>
    <message>
        <source>Build</source>
        <translation>Build</translation>
    </message>
    <message>
        <source>64 bit</source>
        <translation>64 bit</translation>
    </message>
</context>
<context>
    <name>CLanguageManager</name>
    <message>
        <source>language name</source>
        <translation>English</translation>
    </message>
    <message>
        <source>language number</source>
        <translation>1033</translation>
    </message>
</context>
<context>
    <name>CMessageBox</name>
    <message>
        <source>Don&apos;t save</source>
        <translation>Don&apos;t save</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Save</translation>
    </message>
    <message>
        <source>Rotate</source>
        <translation>Rotate</translation>
    </message>
    <message>
        <source>No</source>
        <translation>No</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Yes</translation>
    </message>
    <message>
        <source>Quit without saving</source>
        <translation>Quit without saving</translation>
    </message>
    <message>
        <source>Don&apos;t quit</source>
        <translation>Don&apos;t quit</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
    <message>
        <source>Dialog</source>
        <translation>Dialog</translation>
    </message>
</context>
<context>
    <name>HelpMenu</name>
    <message>
        <source>&amp;Help on the Web</source>
        <translation>&amp;Help on the Web</translation>
    </message>
    <message>
        <source>&amp;Support</source>
        <translation>&amp;Support</translation>
    </message>
    <message>
        <source>A&amp;cademy</source>
        <translation>A&amp;cademy</translation>
    </message>
    <message>
        <source>Sh&amp;op</source>
        <translation>Sh&amp;op</translation>
    </message>
    <message>
        <source>Home &amp;Page</source>
        <translation>Home &amp;Page</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;File</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>&amp;Open…</translation>
    </message>
    <message>
        <source>&amp;Save…</source>
        <translation>&amp;Save…</translation>
    </message>
    <message>
        <source>&amp;Export…</source>
        <translation>&amp;Export…</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Quit</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Edit</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Undo</translation>
    </message>
    <message>
        <source>&amp;Reset</source>
        <translation>&amp;Reset</translation>
    </message>
    <message>
        <source>&amp;Preferences…</source>
        <translation>&amp;Preferences…</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;View</translation>
    </message>
    <message>
        <source>&amp;Grid</source>
        <translation>&amp;Grid</translation>
    </message>
    <message>
        <source>&amp;Handles</source>
        <translation>&amp;Handles</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Help</translation>
    </message>
    <message>
        <source>&amp;About</source>
        <translation>&amp;About</translation>
    </message>
    <message>
        <source>Open…</source>
        <translation>Open…</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>Preferences</translation>
    </message>
    <message>
        <source>About</source>
        <translation>About</translation>
    </message>
    <message>
        <source>No picture</source>
        <translation>No picture</translation>
    </message>
    <message>
        <source>Cannot open %1</source>
        <translation>Cannot open %1</translation>
    </message>
    <message>
        <source>Crop</source>
        <translation>Crop</translation>
    </message>
    <message>
        <source>Open a picture</source>
        <translation>Open a picture</translation>
    </message>
    <message>
        <source>Rotate the picture?</source>
        <translation>Rotate the picture?</translation>
    </message>
    <message>
        <source>Save the picture</source>
        <translation>Save the picture</translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>Saved %1</translation>
    </message>
    <message>
        <source>Export the corrected picture to</source>
        <translation>Export the corrected picture to</translation>
    </message>
    <message>
        <source>Correcting %1</source>
        <translation>Correcting %1</translation>
    </message>
    <message>
        <source>Writing %1</source>
        <translation>Writing %1</translation>
    </message>
    <message>
        <source>Cannot save %1</source>
        <translation>Cannot save %1</translation>
    </message>
    <message>
        <source>Reset all corrections?</source>
        <translation>Reset all corrections?</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Reset</translation>
    </message>
    <message>
        <source>Corrections</source>
        <translation>Corrections</translation>
    </message>
    <message>
        <source>Save changes to %1?</source>
        <translation>Save changes to %1?</translation>
    </message>
    <message>
        <source>Cannot import %1</source>
        <translation>Cannot import %1</translation>
    </message>
    <message>
        <source>It is not a ZIP archive.</source>
        <translation>It is not a ZIP archive.</translation>
    </message>
    <message>
        <source>It would write outside its folder.</source>
        <translation>It would write outside its folder.</translation>
    </message>
    <message>
        <source>It contains something that cannot be unpacked here.</source>
        <translation>It contains something that cannot be unpacked here.</translation>
    </message>
    <message>
        <source>It would become too large.</source>
        <translation>It would become too large.</translation>
    </message>
    <message>
        <source>It is damaged.</source>
        <translation>It is damaged.</translation>
    </message>
    <message>
        <source>Its files cannot be written.</source>
        <translation>Its files cannot be written.</translation>
    </message>
    <message>
        <source>Export as &amp;ZIP…</source>
        <translation>Export as &amp;ZIP…</translation>
    </message>
    <message>
        <source>&amp;Import…</source>
        <translation>&amp;Import…</translation>
    </message>
    <message>
        <source>Show in File &amp;Manager</source>
        <translation>Show in File &amp;Manager</translation>
    </message>
    <message>
        <source>Move to &amp;Trash…</source>
        <translation>Move to &amp;Trash…</translation>
    </message>
    <message>
        <source>Export the corrected picture with its settings</source>
        <translation>Export the corrected picture with its settings</translation>
    </message>
    <message>
        <source>Import an archive</source>
        <translation>Import an archive</translation>
    </message>
    <message>
        <source>Unpacking %1</source>
        <translation>Unpacking %1</translation>
    </message>
    <message>
        <source>No picture in %1</source>
        <translation>No picture in %1</translation>
    </message>
    <message>
        <source>Move %1 to the trash?</source>
        <translation>Move %1 to the trash?</translation>
    </message>
    <message>
        <source>There is no trash for %1</source>
        <translation>There is no trash for %1</translation>
    </message>
    <message>
        <source>Cannot move %1 to the trash</source>
        <translation>Cannot move %1 to the trash</translation>
    </message>
</context>
<context>
    <name>PictureArchive</name>
    <message>
        <source>ZIP archives</source>
        <translation>ZIP archives</translation>
    </message>
</context>
<context>
    <name>PictureDescription</name>
    <message>
        <source>Created %1</source>
        <translation>Created %1</translation>
    </message>
</context>
<context>
    <name>PictureFile</name>
    <message>
        <source>Pictures</source>
        <translation>Pictures</translation>
    </message>
</context>
<context>
    <name>PreferencesDialog</name>
    <message>
        <source>Preferences</source>
        <translation>Preferences</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Language</translation>
    </message>
    <message>
        <source>Units</source>
        <translation>Units</translation>
    </message>
    <message>
        <source>Pixels</source>
        <translation>Pixels</translation>
    </message>
    <message>
        <source>Inches</source>
        <translation>Inches</translation>
    </message>
    <message>
        <source>Centimetres</source>
        <translation>Centimetres</translation>
    </message>
    <message>
        <source>Millimetres</source>
        <translation>Millimetres</translation>
    </message>
    <message>
        <source>Show the image size</source>
        <translation>Show the image size</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancel</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Error</source>
        <translation>Error</translation>
    </message>
    <message>
        <source>Mac free space drive message</source>
        <translation>Vek Marlowick 3 cannot start since there is not enough free space on your system disk.</translation>
    </message>
    <message>
        <source>Out of memory. Program will be closed.</source>
        <translation>Vek Marlowick 3 must close because there is not enough memory available.
Please close some other programs and try to start Vek Marlowick 3 again.</translation>
    </message>
    <message>
        <source>%1 has run out of memory. The application may now become unstable. Please close %2 and Photoshop, quit all other programs running, and try again.</source>
        <translation>%1 has run out of memory. The application may now become unstable. Please close %2 and Photoshop, quit all other programs running, and try again.</translation>
    </message>
    <message>
        <source>Unhandled exception. Program will be closed.</source>
        <translation>Vek Marlowick 3 must close because of an unhandled exception.</translation>
    </message>
    <message>
        <source>px</source>
        <translation>px</translation>
    </message>
    <message>
        <source>in</source>
        <translation>in</translation>
    </message>
    <message>
        <source>cm</source>
        <translation>cm</translation>
    </message>
    <message>
        <source>mm</source>
        <translation>mm</translation>
    </message>
    <message>
        <source>B</source>
        <translation>B</translation>
    </message>
    <message>
        <source>KB</source>
        <translation>KB</translation>
    </message>
    <message>
        <source>MB</source>
        <translation>MB</translation>
    </message>
</context>
<context>
    <name>ToolPanel</name>
    <message>
        <source>Title</source>
        <translation>Title</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>Untitled</translation>
    </message>
    <message>
        <source>Corrections</source>
        <translation>Corrections</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Reset</translation>
    </message>
    <message>
        <source>Horizon</source>
        <translation>Horizon</translation>
    </message>
    <message>
        <source>Distortion</source>
        <translation>Distortion</translation>
    </message>
    <message>
        <source>Keystone</source>
        <translation>Keystone</translation>
    </message>
    <message>
        <source>Crop empty corners</source>
        <translation>Crop empty corners</translation>
    </message>
    <message>
        <source>Show grid</source>
        <translation>Show grid</translation>
    </message>
    <message>
        <source>Save…</source>
        <translation>Save…</translation>
    </message>
    <message>
        <source>Export…</source>
        <translation>Export…</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Close</translation>
    </message>
</context>
<context>
    <name>aboutDlg</name>
    <message>
        <source>About %1</source>
        <translation>About %1</translation>
    </message>
    <message>
        <source>&#x2003;&#x2003;Copyright © Vek Labs. All rights reserved.</source>
        <translation>&#x2003;&#x2003;Copyright © Vek Labs. All rights reserved.</translation>
    </message>
    <message>
        <source>Straight lines, true shapes</source>
        <translation>Straight lines, true shapes</translation>
    </message>
    <message>
        <source>Vek Marlowick 3</source>
        <translation>Vek Marlowick 3</translation>
    </message>
    <message>
        <source>&lt;a href=&quot;%1&quot;&gt;&lt;span style=&quot;text-decoration: underline; color:#747474;&quot;&gt;Visit the Vek home page&lt;/span&gt;&lt;/a&gt;</source>
        <translation>&lt;a href=&quot;%1&quot;&gt;&lt;span style=&quot;text-decoration: underline; color:#747474;&quot;&gt;Visit the Vek home page&lt;/span&gt;&lt;/a&gt;</translation>
    </message>
    <message>
        <source>%1 and its logos are trademarks of Vek Labs. This program is protected by copyright law and by international treaties. It may be copied and passed on, as a whole or in part, only as its licence allows.&lt;br&gt;&lt;br&gt;It contains software, fonts and data made by others, to which their own terms apply.&lt;br&gt;&lt;br&gt;</source>
        <translation>%1 and its logos are trademarks of Vek Labs. This program is protected by copyright law and by international treaties. It may be copied and passed on, as a whole or in part, only as its licence allows.&lt;br&gt;&lt;br&gt;It contains software, fonts and data made by others, to which their own terms apply.&lt;br&gt;&lt;br&gt;</translation>
    </message>
</context>
</TS>
