<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="fr" sourcelanguage="en">
<context>
    <name>BusyBar</name>
    <message>
        <source>Stop</source>
        <translation>Arrêter</translation>
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
        <translation>64 bits</translation>
    </message>
</context>
<context>
    <name>CLanguageManager</name>
    <message>
        <source>language name</source>
        <translation>Français</translation>
    </message>
    <message>
        <source>language number</source>
        <translation>1036</translation>
    </message>
</context>
<context>
    <name>CMessageBox</name>
    <message>
        <source>Don&apos;t save</source>
        <translation>Ne pas enregistrer</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
    </message>
    <message>
        <source>Save</source>
        <translation>Enregistrer</translation>
    </message>
    <message>
        <source>Rotate</source>
        <translation>Faire pivoter</translation>
    </message>
    <message>
        <source>No</source>
        <translation>Non</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Oui</translation>
    </message>
    <message>
        <source>Quit without saving</source>
        <translation>Quitter sans enregistrer</translation>
    </message>
    <message>
        <source>Don&apos;t quit</source>
        <translation>Ne pas quitter</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
    <message>
        <source>Dialog</source>
        <translation>Dialogue</translation>
    </message>
</context>
<context>
    <name>HelpMenu</name>
    <message>
        <source>&amp;Help on the Web</source>
        <translation>Aide en &amp;ligne</translation>
    </message>
    <message>
        <source>&amp;Support</source>
        <translation>&amp;Assistance</translation>
    </message>
    <message>
        <source>A&amp;cademy</source>
        <translation>A&amp;cadémie</translation>
    </message>
    <message>
        <source>Sh&amp;op</source>
        <translation>&amp;Boutique</translation>
    </message>
    <message>
        <source>Home &amp;Page</source>
        <translation>Page d’acc&amp;ueil</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Fichier</translation>
    </message>
    <message>
        <source>&amp;Open…</source>
        <translation>&amp;Ouvrir…</translation>
    </message>
    <message>
        <source>&amp;Save…</source>
        <translation>&amp;Enregistrer…</translation>
    </message>
    <message>
        <source>&amp;Export…</source>
        <translation>E&amp;xporter…</translation>
    </message>
    <message>
        <source>&amp;Quit</source>
        <translation>&amp;Quitter</translation>
    </message>
    <message>
        <source>&amp;Edit</source>
        <translation>É&amp;dition</translation>
    </message>
    <message>
        <source>&amp;Undo</source>
        <translation>&amp;Annuler</translation>
    </message>
    <message>
        <source>&amp;Reset</source>
        <translation>&amp;Réinitialiser</translation>
    </message>
    <message>
        <source>&amp;Preferences…</source>
        <translation>&amp;Préférences…</translation>
    </message>
    <message>
        <source>&amp;View</source>
        <translation>&amp;Affichage</translation>
    </message>
    <message>
        <source>&amp;Grid</source>
        <translation>&amp;Grille</translation>
    </message>
    <message>
        <source>&amp;Handles</source>
        <translation>&amp;Poignées</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>A&amp;ide</translation>
    </message>
    <message>
        <source>&amp;About</source>
        <translation>À &amp;propos</translation>
    </message>
    <message>
        <source>Open…</source>
        <translation>Ouvrir…</translation>
    </message>
    <message>
        <source>Preferences</source>
        <translation>Préférences</translation>
    </message>
    <message>
        <source>About</source>
        <translation>À propos</translation>
    </message>
    <message>
        <source>No picture</source>
        <translation>Aucune image</translation>
    </message>
    <message>
        <source>Cannot open %1</source>
        <translation>Impossible d’ouvrir %1</translation>
    </message>
    <message>
        <source>Crop</source>
        <translation>Recadrage</translation>
    </message>
    <message>
        <source>Open a picture</source>
        <translation>Ouvrir une image</translation>
    </message>
    <message>
        <source>Rotate the picture?</source>
        <translation>Faire pivoter l’image&#xa0;?</translation>
    </message>
    <message>
        <source>Save the picture</source>
        <translation>Enregistrer l’image</translation>
    </message>
    <message>
        <source>Saved %1</source>
        <translation>%1 a été enregistré</translation>
    </message>
    <message>
        <source>Export the corrected picture to</source>
        <translation>Exporter l’image corrigée vers</translation>
    </message>
    <message>
        <source>Correcting %1</source>
        <translation>Correction de %1</translation>
    </message>
    <message>
        <source>Writing %1</source>
        <translation>Écriture de %1</translation>
    </message>
    <message>
        <source>Cannot save %1</source>
        <translation>Impossible d’enregistrer %1</translation>
    </message>
    <message>
        <source>Reset all corrections?</source>
        <translation>Réinitialiser toutes les corrections&#xa0;?</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Réinitialiser</translation>
    </message>
    <message>
        <source>Corrections</source>
        <translation>Corrections</translation>
    </message>
    <message>
        <source>Save changes to %1?</source>
        <translation>Enregistrer les modifications apportées à %1&#xa0;?</translation>
    </message>
    <message>
        <source>Cannot import %1</source>
        <translation>Impossible d’importer %1</translation>
    </message>
    <message>
        <source>It is not a ZIP archive.</source>
        <translation>Le fichier n’est pas une archive ZIP.</translation>
    </message>
    <message>
        <source>It would write outside its folder.</source>
        <translation>L’archive écrirait hors de son dossier.</translation>
    </message>
    <message>
        <source>It contains something that cannot be unpacked here.</source>
        <translation>L’archive contient un élément qui ne peut pas être extrait ici.</translation>
    </message>
    <message>
        <source>It would become too large.</source>
        <translation>Le contenu de l’archive serait trop volumineux.</translation>
    </message>
    <message>
        <source>It is damaged.</source>
        <translation>L’archive est endommagée.</translation>
    </message>
    <message>
        <source>Its files cannot be written.</source>
        <translation>Les fichiers ne peuvent pas être écrits.</translation>
    </message>
    <message>
        <source>Export as &amp;ZIP…</source>
        <translation>Exporter en &amp;ZIP…</translation>
    </message>
    <message>
        <source>&amp;Import…</source>
        <translation>&amp;Importer…</translation>
    </message>
    <message>
        <source>Show in File &amp;Manager</source>
        <translation>Afficher dans le &amp;gestionnaire de fichiers</translation>
    </message>
    <message>
        <source>Move to &amp;Trash…</source>
        <translation>Mettre à la &amp;corbeille…</translation>
    </message>
    <message>
        <source>Export the corrected picture with its settings</source>
        <translation>Exporter l’image corrigée avec ses réglages</translation>
    </message>
    <message>
        <source>Import an archive</source>
        <translation>Importer une archive</translation>
    </message>
    <message>
        <source>Unpacking %1</source>
        <translation>Extraction de %1</translation>
    </message>
    <message>
        <source>No picture in %1</source>
        <translation>Aucune image dans %1</translation>
    </message>
    <message>
        <source>Move %1 to the trash?</source>
        <translation>Mettre %1 à la corbeille&#xa0;?</translation>
    </message>
    <message>
        <source>There is no trash for %1</source>
        <translation>Il n’y a pas de corbeille pour %1</translation>
    </message>
    <message>
        <source>Cannot move %1 to the trash</source>
        <translation>Impossible de mettre %1 à la corbeille</translation>
    </message>
</context>
<context>
    <name>PictureArchive</name>
    <message>
        <source>ZIP archives</source>
        <translation>Archives ZIP</translation>
    </message>
</context>
<context>
    <name>PictureDescription</name>
    <message>
        <source>Created %1</source>
        <translation>Créé le %1</translation>
    </message>
</context>
<context>
    <name>PictureFile</name>
    <message>
        <source>Pictures</source>
        <translation>Images</translation>
    </message>
</context>
<context>
    <name>PreferencesDialog</name>
    <message>
        <source>Preferences</source>
        <translation>Préférences</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Langue</translation>
    </message>
    <message>
        <source>Units</source>
        <translation>Unité</translation>
    </message>
    <message>
        <source>Pixels</source>
        <translation>Pixels</translation>
    </message>
    <message>
        <source>Inches</source>
        <translation>Pouces</translation>
    </message>
    <message>
        <source>Centimetres</source>
        <translation>Centimètres</translation>
    </message>
    <message>
        <source>Millimetres</source>
        <translation>Millimètres</translation>
    </message>
    <message>
        <source>Show the image size</source>
        <translation>Afficher la taille de l’image</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Annuler</translation>
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
        <translation>Erreur</translation>
    </message>
    <message>
        <source>Mac free space drive message</source>
        <translation>Vek Marlowick 3 ne peut pas démarrer, car l’espace libre sur votre disque système est insuffisant.</translation>
    </message>
    <message>
        <source>Out of memory. Program will be closed.</source>
        <translation>Vek Marlowick 3 doit se fermer, car la mémoire disponible est insuffisante.
Veuillez fermer d’autres programmes et essayer de relancer Vek Marlowick 3.</translation>
    </message>
    <message>
        <source>%1 has run out of memory. The application may now become unstable. Please close %2 and Photoshop, quit all other programs running, and try again.</source>
        <translation>%1 n’a plus de mémoire disponible. L’application peut maintenant devenir instable. Veuillez fermer %2 et Photoshop, quitter tous les autres programmes en cours, puis réessayer.</translation>
    </message>
    <message>
        <source>Unhandled exception. Program will be closed.</source>
        <translation>Vek Marlowick 3 doit se fermer à cause d’une exception non gérée.</translation>
    </message>
    <message>
        <source>px</source>
        <translation>px</translation>
    </message>
    <message>
        <source>in</source>
        <translation>po</translation>
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
        <translation>o</translation>
    </message>
    <message>
        <source>KB</source>
        <translation>Ko</translation>
    </message>
    <message>
        <source>MB</source>
        <translation>Mo</translation>
    </message>
</context>
<context>
    <name>ToolPanel</name>
    <message>
        <source>Title</source>
        <translation>Titre</translation>
    </message>
    <message>
        <source>Untitled</source>
        <translation>Sans titre</translation>
    </message>
    <message>
        <source>Corrections</source>
        <translation>Corrections</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Réinitialiser</translation>
    </message>
    <message>
        <source>Horizon</source>
        <translation>Horizon</translation>
    </message>
    <message>
        <source>Distortion</source>
        <translation>Distorsion</translation>
    </message>
    <message>
        <source>Keystone</source>
        <translation>Perspective</translation>
    </message>
    <message>
        <source>Crop empty corners</source>
        <translation>Rogner les coins vides</translation>
    </message>
    <message>
        <source>Show grid</source>
        <translation>Afficher la grille</translation>
    </message>
    <message>
        <source>Save…</source>
        <translation>Enregistrer…</translation>
    </message>
    <message>
        <source>Export…</source>
        <translation>Exporter…</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Fermer</translation>
    </message>
</context>
<context>
    <name>aboutDlg</name>
    <message>
        <source>About %1</source>
        <translation>À propos de %1</translation>
    </message>
    <message>
        <source>&#x2003;&#x2003;Copyright © Vek Labs. All rights reserved.</source>
        <translation>&#x2003;&#x2003;Copyright © Vek Labs. Tous droits réservés.</translation>
    </message>
    <message>
        <source>Straight lines, true shapes</source>
        <translation>Lignes droites, formes justes</translation>
    </message>
    <message>
        <source>Vek Marlowick 3</source>
        <translation>Vek Marlowick 3</translation>
    </message>
    <message>
        <source>&lt;a href=&quot;%1&quot;&gt;&lt;span style=&quot;text-decoration: underline; color:#747474;&quot;&gt;Visit the Vek home page&lt;/span&gt;&lt;/a&gt;</source>
        <translation>&lt;a href=&quot;%1&quot;&gt;&lt;span style=&quot;text-decoration: underline; color:#747474;&quot;&gt;Visiter le site de Vek&lt;/span&gt;&lt;/a&gt;</translation>
    </message>
    <message>
        <source>%1 and its logos are trademarks of Vek Labs. This program is protected by copyright law and by international treaties. It may be copied and passed on, as a whole or in part, only as its licence allows.&lt;br&gt;&lt;br&gt;It contains software, fonts and data made by others, to which their own terms apply.&lt;br&gt;&lt;br&gt;</source>
        <translation>%1 et ses logos sont des marques de Vek Labs. Ce programme est protégé par le droit d’auteur et par les traités internationaux. Il ne peut être copié ou transmis, en tout ou en partie, que dans les limites de sa licence.&lt;br&gt;&lt;br&gt;Il contient des logiciels, des polices et des données d’autres auteurs, soumis à leurs propres conditions.&lt;br&gt;&lt;br&gt;</translation>
    </message>
</context>
</TS>
