<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>BusyBar</name>
    <message>
        <source>Stop</source>
        <translation>Stoppen</translation>
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
        <translation>64 Bit</translation>
    </message>
</context>
<context>
    <name>CLanguageManager</name>
    <message>
        <source>language name</source>
        <translation>Deutsch</translation>
    </message>
    <message>
        <source>language number</source>
        <translation>1031</translation>
    </message>
</context>
<context>
    <name>CMessageBox</name>
    <message>
        <source>Don&apos;t save</source>
        <translation>Nicht speichern</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Speichern</translation>
    </message>
    <message>
        <source>Rotate</source>
        <translation>Drehen</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Nein</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Ja</translation>
    </message>
    <message>
        <source>Quit without saving</source>
        <translation>Ohne Speichern beenden</translation>
    </message>
    <message>
        <source>Don&apos;t quit</source>
        <translation>Nicht beenden</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
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
        <translation>&amp;Hilfe im Internet</translation>
    </message>
    <message>
        <source>&amp;Support</source>
        <translation>&amp;Support</translation>
    </message>
    <message>
        <source>A&amp;cademy</source>
        <translation>&amp;Akademie</translation>
    </message>
    <message>
        <source>Sh&amp;op</source>
        <translation>Sh&amp;op</translation>
    </message>
    <message>
        <source>Home &amp;Page</source>
        <translation>Home&amp;page</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>Ö&amp;ffnen …</translation>
    </message>
    <message>
        <source>&amp;Save…</source>
        <translation>&amp;Speichern …</translation>
    </message>
    <message>
        <source>&amp;Export…</source>
        <translation>&amp;Exportieren …</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Beenden</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>&amp;Bearbeiten</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Rückgängig</translation>
    </message>
    <message>
        <source>&amp;Reset</source>
        <translation>&amp;Zurücksetzen</translation>
    </message>
    <message>
        <source>&amp;Preferences…</source>
        <translation>&amp;Einstellungen …</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>&amp;Grid</source>
        <translation>&amp;Raster</translation>
    </message>
    <message>
        <source>&amp;Handles</source>
        <translation>&amp;Anfasser</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;About</source>
        <translation>&amp;Info</translation>
    </message>
    <message>
        <source>Open…</source>
        <translation>Öffnen …</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>About</source>
        <translation>Info</translation>
    </message>
    <message>
        <source>No picture</source>
        <translation>Kein Bild</translation>
    </message>
    <message>
        <source>Cannot open %1</source>
        <translation>%1 kann nicht geöffnet werden</translation>
    </message>
    <message>
        <source>Crop</source>
        <translation>Beschneiden</translation>
    </message>
    <message>
        <source>Open a picture</source>
        <translation>Bild öffnen</translation>
    </message>
    <message>
        <source>Rotate the picture?</source>
        <translation>Soll das Bild gedreht werden?</translation>
    </message>
    <message>
        <source>Save the picture</source>
        <translation>Bild speichern</translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>%1 wurde gespeichert</translation>
    </message>
    <message>
        <source>Export the corrected picture to</source>
        <translation>Korrigiertes Bild exportieren nach</translation>
    </message>
    <message>
        <source>Correcting %1</source>
        <translation>%1 wird korrigiert</translation>
    </message>
    <message>
        <source>Writing %1</source>
        <translation>%1 wird geschrieben</translation>
    </message>
    <message>
        <source>Cannot save %1</source>
        <translation>%1 kann nicht gespeichert werden</translation>
    </message>
    <message>
        <source>Reset all corrections?</source>
        <translation>Sollen alle Korrekturen zurückgesetzt werden?</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Corrections</source>
        <translation>Korrekturen</translation>
    </message>
    <message>
        <source>Save changes to %1?</source>
        <translation>Sollen die Änderungen an %1 gespeichert werden?</translation>
    </message>
    <message>
        <source>Cannot import %1</source>
        <translation>%1 kann nicht importiert werden</translation>
    </message>
    <message>
        <source>It is not a ZIP archive.</source>
        <translation>Die Datei ist kein ZIP-Archiv.</translation>
    </message>
    <message>
        <source>It would write outside its folder.</source>
        <translation>Das Archiv würde außerhalb seines Ordners schreiben.</translation>
    </message>
    <message>
        <source>It contains something that cannot be unpacked here.</source>
        <translation>Das Archiv enthält etwas, das hier nicht entpackt werden kann.</translation>
    </message>
    <message>
        <source>It would become too large.</source>
        <translation>Der entpackte Inhalt wäre zu groß.</translation>
    </message>
    <message>
        <source>It is damaged.</source>
        <translation>Das Archiv ist beschädigt.</translation>
    </message>
    <message>
        <source>Its files cannot be written.</source>
        <translation>Die Dateien können nicht geschrieben werden.</translation>
    </message>
    <message>
        <source>Export as &amp;ZIP…</source>
        <translation>Als &amp;ZIP exportieren …</translation>
    </message>
    <message>
        <source>&amp;Import…</source>
        <translation>&amp;Importieren …</translation>
    </message>
    <message>
        <source>Show in File &amp;Manager</source>
        <translation>Im Datei&amp;manager anzeigen</translation>
    </message>
    <message>
        <source>Move to &amp;Trash…</source>
        <translation>In den &amp;Papierkorb legen …</translation>
    </message>
    <message>
        <source>Export the corrected picture with its settings</source>
        <translation>Korrigiertes Bild mit Einstellungen exportieren</translation>
    </message>
    <message>
        <source>Import an archive</source>
        <translation>Archiv importieren</translation>
    </message>
    <message>
        <source>Unpacking %1</source>
        <translation>%1 wird entpackt</translation>
    </message>
    <message>
        <source>No picture in %1</source>
        <translation>%1 enthält kein Bild</translation>
    </message>
    <message>
        <source>Move %1 to the trash?</source>
        <translation>Soll %1 in den Papierkorb gelegt werden?</translation>
    </message>
    <message>
        <source>There is no trash for %1</source>
        <translation>Für %1 gibt es keinen Papierkorb</translation>
    </message>
    <message>
        <source>Cannot move %1 to the trash</source>
        <translation>%1 kann nicht in den Papierkorb gelegt werden</translation>
    </message>
</context>
<context>
    <name>PictureArchive</name>
    <message>
        <source>ZIP archives</source>
        <translation>ZIP-Archive</translation>
    </message>
</context>
<context>
    <name>PictureDescription</name>
    <message>
        <source>Created %1</source>
        <translation>Erstellt: %1</translation>
    </message>
</context>
<context>
    <name>PictureFile</name>
    <message>
        <source>Pictures</source>
        <translation>Bilder</translation>
    </message>
</context>
<context>
    <name>PreferencesDialog</name>
    <message>
        <source>Preferences</source>
        <translation>Einstellungen</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Sprache</translation>
    </message>
    <message>
        <source>Units</source>
        <translation>Einheit</translation>
    </message>
    <message>
        <source>Pixels</source>
        <translation>Pixel</translation>
    </message>
    <message>
        <source>Inches</source>
        <translation>Zoll</translation>
    </message>
    <message>
        <source>Centimetres</source>
        <translation>Zentimeter</translation>
    </message>
    <message>
        <source>Millimetres</source>
        <translation>Millimeter</translation>
    </message>
    <message>
        <source>Show the image size</source>
        <translation>Bildgröße anzeigen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
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
        <translation>Fehler</translation>
    </message>
    <message>
        <source>Mac free space drive message</source>
        <translation>Vek Marlowick 3 kann nicht starten, da auf Ihrem Systemlaufwerk nicht genügend freier Speicherplatz vorhanden ist.</translation>
    </message>
    <message>
        <source>Out of memory. Program will be closed.</source>
        <translation>Vek Marlowick 3 muss beendet werden, da nicht genügend Arbeitsspeicher verfügbar ist.
Bitte schließen Sie einige andere Programme und versuchen Sie, Vek Marlowick 3 erneut zu starten.</translation>
    </message>
    <message>
        <source>%1 has run out of memory. The application may now become unstable. Please close %2 and Photoshop, quit all other programs running, and try again.</source>
        <translation>%1 hat keinen freien Arbeitsspeicher mehr. Das Programm kann jetzt instabil werden. Bitte schließen Sie %2 und Photoshop, beenden Sie alle anderen laufenden Programme und versuchen Sie es erneut.</translation>
    </message>
    <message>
        <source>Unhandled exception. Program will be closed.</source>
        <translation>Vek Marlowick 3 muss wegen eines unbehandelten Ausnahmefehlers beendet werden.</translation>
    </message>
    <message>
        <source>px</source>
        <translation>px</translation>
    </message>
    <message>
        <source>in</source>
        <translation>Zoll</translation>
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
        <translation>Titel</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>Ohne Titel</translation>
    </message>
    <message>
        <source>Corrections</source>
        <translation>Korrekturen</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Horizon</source>
        <translation>Horizont</translation>
    </message>
    <message>
        <source>Distortion</source>
        <translation>Verzeichnung</translation>
    </message>
    <message>
        <source>Keystone</source>
        <translation>Stürzende Linien</translation>
    </message>
    <message>
        <source>Crop empty corners</source>
        <translation>Leere Ecken abschneiden</translation>
    </message>
    <message>
        <source>Show grid</source>
        <translation>Raster einblenden</translation>
    </message>
    <message>
        <source>Save…</source>
        <translation>Speichern …</translation>
    </message>
    <message>
        <source>Export…</source>
        <translation>Exportieren …</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>aboutDlg</name>
    <message>
        <source>About %1</source>
        <translation>Über %1</translation>
    </message>
    <message>
        <source>&#x2003;&#x2003;Copyright © Vek Labs. All rights reserved.</source>
        <translation>&#x2003;&#x2003;Copyright © Vek Labs. Alle Rechte vorbehalten.</translation>
    </message>
    <message>
        <source>Straight lines, true shapes</source>
        <translation>Gerade Linien, wahre Formen</translation>
    </message>
    <message>
        <source>Vek Marlowick 3</source>
        <translation>Vek Marlowick 3</translation>
    </message>
    <message>
        <source>&lt;a href=&quot;%1&quot;&gt;&lt;span style=&quot;text-decoration: underline; color:#747474;&quot;&gt;Visit the Vek home page&lt;/span&gt;&lt;/a&gt;</source>
        <translation>&lt;a href=&quot;%1&quot;&gt;&lt;span style=&quot;text-decoration: underline; color:#747474;&quot;&gt;Vek im Internet&lt;/span&gt;&lt;/a&gt;</translation>
    </message>
    <message>
        <source>%1 and its logos are trademarks of Vek Labs. This program is protected by copyright law and by international treaties. It may be copied and passed on, as a whole or in part, only as its licence allows.&lt;br&gt;&lt;br&gt;It contains software, fonts and data made by others, to which their own terms apply.&lt;br&gt;&lt;br&gt;</source>
        <translation>%1 und die zugehörigen Logos sind Marken von Vek Labs. Dieses Programm ist durch das Urheberrecht und durch internationale Verträge geschützt. Es darf, ganz oder in Teilen, nur so kopiert und weitergegeben werden, wie seine Lizenz es erlaubt.&lt;br&gt;&lt;br&gt;Es enthält Software, Schriften und Daten anderer, für die deren eigene Bedingungen gelten.&lt;br&gt;&lt;br&gt;</translation>
    </message>
</context>
</TS>
