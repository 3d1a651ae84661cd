<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de_DE" sourcelanguage="en_US">
<context>
    <name>BackgroundPanel</name>
    <message>
        <source>Background</source>
        <translation>Hintergrund</translation>
    </message>
    <message>
        <source>Kind of background</source>
        <translation>Art des Hintergrunds</translation>
    </message>
    <message>
        <source>Wallpaper</source>
        <translation>Hintergrundbild</translation>
    </message>
    <message>
        <source>Gradient</source>
        <translation>Verlauf</translation>
    </message>
    <message>
        <source>One colour</source>
        <translation>Eine Farbe</translation>
    </message>
    <message>
        <source>Image of your own</source>
        <translation>Eigenes Bild</translation>
    </message>
    <message>
        <source>Colour as #rrggbb</source>
        <translation>Farbe als #rrggbb</translation>
    </message>
    <message>
        <source>A colour in hexadecimal figures</source>
        <translation>Eine Farbe in hexadezimalen Ziffern</translation>
    </message>
    <message>
        <source>Choose another image…</source>
        <translation>Anderes Bild wählen …</translation>
    </message>
    <message>
        <source>Takes a picture file from this computer</source>
        <translation>Nimmt eine Bilddatei von diesem Rechner</translation>
    </message>
    <message>
        <source>Blur</source>
        <translation>Weichzeichnen</translation>
    </message>
    <message>
        <source>Softens the background so that the recording stands out</source>
        <translation>Macht den Hintergrund weicher, damit die Aufnahme sich abhebt</translation>
    </message>
    <message>
        <source>Choose a background image</source>
        <translation>Hintergrundbild wählen</translation>
    </message>
    <message>
        <source>Images</source>
        <translation>Bilder</translation>
    </message>
</context>
<context>
    <name>CameraBubble</name>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
</context>
<context>
    <name>CameraChoice</name>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
</context>
<context>
    <name>CameraPanel</name>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>This recording has no camera. Turn the camera on before you record to stand in your film.</source>
        <translation>Diese Aufnahme hat keine Kamera. Schalten Sie vor der Aufnahme die Kamera ein, um im Film zu sehen zu sein.</translation>
    </message>
    <message>
        <source>Show the camera</source>
        <translation>Kamera zeigen</translation>
    </message>
    <message>
        <source>Puts the camera&apos;s picture into a corner of the film</source>
        <translation>Setzt das Bild der Kamera in eine Ecke des Films</translation>
    </message>
    <message>
        <source>Shape</source>
        <translation>Form</translation>
    </message>
    <message>
        <source>Circle</source>
        <translation>Kreis</translation>
    </message>
    <message>
        <source>A round bubble</source>
        <translation>Eine runde Blase</translation>
    </message>
    <message>
        <source>Rounded</source>
        <translation>Abgerundet</translation>
    </message>
    <message>
        <source>A rectangle with round corners</source>
        <translation>Ein Rechteck mit runden Ecken</translation>
    </message>
    <message>
        <source>Corner</source>
        <translation>Ecke</translation>
    </message>
    <message>
        <source>Top left</source>
        <translation>Oben links</translation>
    </message>
    <message>
        <source>Top right</source>
        <translation>Oben rechts</translation>
    </message>
    <message>
        <source>Bottom left</source>
        <translation>Unten links</translation>
    </message>
    <message>
        <source>Bottom right</source>
        <translation>Unten rechts</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>How large the bubble is</source>
        <translation>Wie groß die Blase ist</translation>
    </message>
    <message>
        <source>Mirror</source>
        <translation>Spiegeln</translation>
    </message>
    <message>
        <source>As in a looking glass</source>
        <translation>Wie im Spiegel</translation>
    </message>
    <message>
        <source>Border</source>
        <translation>Rand</translation>
    </message>
    <message>
        <source>A light line round the bubble</source>
        <translation>Eine helle Linie um die Blase</translation>
    </message>
    <message>
        <source>Make room while zoomed in</source>
        <translation>Beim Zoomen Platz machen</translation>
    </message>
    <message>
        <source>The bubble shrinks where it would cover what is shown</source>
        <translation>Die Blase schrumpft, wo sie verdecken würde, was gezeigt wird</translation>
    </message>
</context>
<context>
    <name>CaptionsPanel</name>
    <message>
        <source>Captions</source>
        <translation>Untertitel</translation>
    </message>
    <message>
        <source>Turns what you say into words on the film. Everything happens on this computer.</source>
        <translation>Macht aus dem, was Sie sagen, Wörter im Film. Alles geschieht auf diesem Rechner.</translation>
    </message>
    <message>
        <source>This recording has no sound. Turn on Mic before recording to get captions.</source>
        <translation>Diese Aufnahme hat keinen Ton. Schalten Sie vor der Aufnahme das Mikrofon ein, um Untertitel zu bekommen.</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Sprache</translation>
    </message>
    <message>
        <source>The language that is spoken</source>
        <translation>Die Sprache, die gesprochen wird</translation>
    </message>
    <message>
        <source>English</source>
        <translation>Englisch</translation>
    </message>
    <message>
        <source>German</source>
        <translation>Deutsch</translation>
    </message>
    <message>
        <source>French</source>
        <translation>Französisch</translation>
    </message>
    <message>
        <source>Spanish</source>
        <translation>Spanisch</translation>
    </message>
    <message>
        <source>Italian</source>
        <translation>Italienisch</translation>
    </message>
    <message>
        <source>Portuguese</source>
        <translation>Portugiesisch</translation>
    </message>
    <message>
        <source>Dutch</source>
        <translation>Niederländisch</translation>
    </message>
    <message>
        <source>Polish</source>
        <translation>Polnisch</translation>
    </message>
    <message>
        <source>Swedish</source>
        <translation>Schwedisch</translation>
    </message>
    <message>
        <source>Ukrainian</source>
        <translation>Ukrainisch</translation>
    </message>
    <message>
        <source>Japanese</source>
        <translation>Japanisch</translation>
    </message>
    <message>
        <source>Chinese</source>
        <translation>Chinesisch</translation>
    </message>
    <message>
        <source>Listen again</source>
        <translation>Noch einmal zuhören</translation>
    </message>
    <message>
        <source>Make captions</source>
        <translation>Untertitel machen</translation>
    </message>
    <message>
        <source>Replaces the captions there are</source>
        <translation>Ersetzt die vorhandenen Untertitel</translation>
    </message>
    <message>
        <source>Listens to the recording and writes what is said</source>
        <translation>Hört die Aufnahme an und schreibt, was gesagt wird</translation>
    </message>
    <message>
        <source>Time the words anew</source>
        <translation>Wörter neu ausrichten</translation>
    </message>
    <message>
        <source>Keeps your words and finds in the sound when each is said; for words you corrected</source>
        <translation>Behält Ihre Wörter und sucht im Ton, wann jedes gesagt wird; für verbesserte Wörter</translation>
    </message>
    <message>
        <source>Listening… %1 %</source>
        <translation>Hört zu … %1 %</translation>
    </message>
    <message>
        <source>Listening</source>
        <translation>Hört zu</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>The captions stay as they are</source>
        <translation>Die Untertitel bleiben, wie sie sind</translation>
    </message>
    <message>
        <source>Show captions</source>
        <translation>Untertitel zeigen</translation>
    </message>
    <message>
        <source>Draws the words onto the film</source>
        <translation>Zeichnet die Wörter in den Film</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Stil</translation>
    </message>
    <message>
        <source>Lit</source>
        <translation>Licht</translation>
    </message>
    <message>
        <source>The word being said lights up</source>
        <translation>Das gerade gesagte Wort leuchtet auf</translation>
    </message>
    <message>
        <source>Clean</source>
        <translation>Schlicht</translation>
    </message>
    <message>
        <source>Plain text</source>
        <translation>Einfacher Text</translation>
    </message>
    <message>
        <source>Boxed</source>
        <translation>Kasten</translation>
    </message>
    <message>
        <source>On a dark ground</source>
        <translation>Auf dunklem Grund</translation>
    </message>
    <message>
        <source>Bold</source>
        <translation>Fett</translation>
    </message>
    <message>
        <source>Large and heavy</source>
        <translation>Groß und kräftig</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>How large the words are</source>
        <translation>Wie groß die Wörter sind</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Höhe</translation>
    </message>
    <message>
        <source>How far the words stand from the lower edge</source>
        <translation>Wie weit die Wörter vom unteren Rand stehen</translation>
    </message>
    <message>
        <source>Words</source>
        <translation>Wörter</translation>
    </message>
    <message>
        <source>Word %1</source>
        <translation>Wort %1</translation>
    </message>
    <message>
        <source>Type to correct it, empty it to take it out</source>
        <translation>Tippen, um es zu verbessern; leeren, um es zu entfernen</translation>
    </message>
    <message>
        <source>SRT</source>
        <translation>SRT</translation>
    </message>
    <message>
        <source>Saves the captions as a SubRip file</source>
        <translation>Speichert die Untertitel als SubRip-Datei</translation>
    </message>
    <message>
        <source>VTT</source>
        <translation>VTT</translation>
    </message>
    <message>
        <source>Saves the captions as a WebVTT file</source>
        <translation>Speichert die Untertitel als WebVTT-Datei</translation>
    </message>
    <message>
        <source>Remove the captions</source>
        <translation>Untertitel entfernen</translation>
    </message>
    <message>
        <source>Forgets all words; undo brings them back</source>
        <translation>Vergisst alle Wörter; Rückgängig holt sie zurück</translation>
    </message>
    <message>
        <source>SubRip (*.srt)</source>
        <translation>SubRip (*.srt)</translation>
    </message>
    <message>
        <source>WebVTT (*.vtt)</source>
        <translation>WebVTT (*.vtt)</translation>
    </message>
    <message>
        <source>Save captions</source>
        <translation>Untertitel speichern</translation>
    </message>
    <message>
        <source>Saved.</source>
        <translation>Gespeichert.</translation>
    </message>
</context>
<context>
    <name>CardsPanel</name>
    <message>
        <source>Cards</source>
        <translation>Tafeln</translation>
    </message>
    <message>
        <source>Title card</source>
        <translation>Titeltafel</translation>
    </message>
    <message>
        <source>Holds the first picture for 2.2 seconds under a title</source>
        <translation>Hält das erste Bild 2,2 Sekunden lang unter einem Titel an</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>What the film is called</source>
        <translation>Wie der Film heißt</translation>
    </message>
    <message>
        <source>Second line of the title card</source>
        <translation>Zweite Zeile der Titeltafel</translation>
    </message>
    <message>
        <source>Second line</source>
        <translation>Zweite Zeile</translation>
    </message>
    <message>
        <source>Smaller, below it</source>
        <translation>Kleiner, darunter</translation>
    </message>
    <message>
        <source>End card</source>
        <translation>Schlusstafel</translation>
    </message>
    <message>
        <source>Holds the last picture for 2.8 seconds under a text</source>
        <translation>Hält das letzte Bild 2,8 Sekunden lang unter einem Text an</translation>
    </message>
    <message>
        <source>Text of the end card</source>
        <translation>Text der Schlusstafel</translation>
    </message>
    <message>
        <source>Text</source>
        <translation>Text</translation>
    </message>
    <message>
        <source>What the film ends with</source>
        <translation>Womit der Film endet</translation>
    </message>
    <message>
        <source>Second line of the end card</source>
        <translation>Zweite Zeile der Schlusstafel</translation>
    </message>
    <message>
        <source>Smaller, below it; a web address, say</source>
        <translation>Kleiner, darunter; eine Webadresse etwa</translation>
    </message>
</context>
<context>
    <name>ControlGallery</name>
    <message>
        <source>Buttons</source>
        <translation>Knöpfe</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Quiet</source>
        <translation>Leise</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Aufnehmen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Aus</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Wide</source>
        <translation>Breit</translation>
    </message>
    <message>
        <source>Square</source>
        <translation>Quadrat</translation>
    </message>
    <message>
        <source>2×</source>
        <translation>2×</translation>
    </message>
    <message>
        <source>Shape</source>
        <translation>Form</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keiner</translation>
    </message>
    <message>
        <source>Soft</source>
        <translation>Weich</translation>
    </message>
    <message>
        <source>Strong</source>
        <translation>Stark</translation>
    </message>
    <message>
        <source>Texts</source>
        <translation>Texte</translation>
    </message>
    <message>
        <source>Body text of thirteen pixels, 0:12 of 3:40</source>
        <translation>Fließtext von dreizehn Pixeln, 0:12 von 3:40</translation>
    </message>
    <message>
        <source>Secondary text says what comes next.</source>
        <translation>Nebentext sagt, was als Nächstes kommt.</translation>
    </message>
    <message>
        <source>Tiny</source>
        <translation>Winzig</translation>
    </message>
    <message>
        <source>Values</source>
        <translation>Werte</translation>
    </message>
    <message>
        <source>Padding</source>
        <translation>Abstand</translation>
    </message>
    <message>
        <source>Offset</source>
        <translation>Versatz</translation>
    </message>
    <message>
        <source>Follow the action</source>
        <translation>Dem Geschehen folgen</translation>
    </message>
    <message>
        <source>Play sounds</source>
        <translation>Klänge abspielen</translation>
    </message>
    <message>
        <source>Not here</source>
        <translation>Nicht hier</translation>
    </message>
    <message>
        <source>Title of the film</source>
        <translation>Titel des Films</translation>
    </message>
    <message>
        <source>Four agents fix a bug</source>
        <translation>Vier Agenten beheben einen Fehler</translation>
    </message>
    <message>
        <source>Title</source>
        <translation>Titel</translation>
    </message>
    <message>
        <source>Microphone</source>
        <translation>Mikrofon</translation>
    </message>
    <message>
        <source>Built-in microphone</source>
        <translation>Eingebautes Mikrofon</translation>
    </message>
</context>
<context>
    <name>CountdownFace</name>
    <message>
        <source>Recording starts in %1</source>
        <translation>Die Aufnahme beginnt in %1</translation>
    </message>
    <message>
        <source>%1 stops</source>
        <translation>%1 hält an</translation>
    </message>
</context>
<context>
    <name>CountdownPanel</name>
    <message>
        <source>Recording starts</source>
        <translation>Die Aufnahme beginnt</translation>
    </message>
</context>
<context>
    <name>CropPanel</name>
    <message>
        <source>Crop</source>
        <translation>Zuschnitt</translation>
    </message>
    <message>
        <source>Done</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Change the crop</source>
        <translation>Zuschnitt ändern</translation>
    </message>
    <message>
        <source>Crop on the picture</source>
        <translation>Auf dem Bild zuschneiden</translation>
    </message>
    <message>
        <source>Shows the whole screen; drag the frame and its corners</source>
        <translation>Zeigt den ganzen Bildschirm; ziehen Sie den Rahmen und seine Ecken</translation>
    </message>
    <message>
        <source>Shape</source>
        <translation>Form</translation>
    </message>
    <message>
        <source>Whole</source>
        <translation>Ganz</translation>
    </message>
    <message>
        <source>The largest part of that shape around the middle of the crop</source>
        <translation>Der größte Teil dieser Form um die Mitte des Zuschnitts</translation>
    </message>
    <message>
        <source>The whole screen</source>
        <translation>Der ganze Bildschirm</translation>
    </message>
    <message>
        <source>%1 × %2 of %3 × %4 pixels</source>
        <translation>%1 × %2 von %3 × %4 Pixeln</translation>
    </message>
    <message>
        <source>The whole screen, %1 × %2 pixels</source>
        <translation>Der ganze Bildschirm, %1 × %2 Pixel</translation>
    </message>
</context>
<context>
    <name>Dialog</name>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>EditorTopBar</name>
    <message>
        <source>Back to your recordings</source>
        <translation>Zurück zu Ihren Aufnahmen</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Ctrl Z</source>
        <translation>Strg Z</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Ctrl ⇧ Z</source>
        <translation>Strg ⇧ Z</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>YouTube · 1920 × 1080</source>
        <translation>YouTube · 1920 × 1080</translation>
    </message>
    <message>
        <source>X · 1080 × 1350</source>
        <translation>X · 1080 × 1350</translation>
    </message>
    <message>
        <source>Shorts · 1080 × 1920</source>
        <translation>Shorts · 1080 × 1920</translation>
    </message>
    <message>
        <source>Square · 1080 × 1080</source>
        <translation>Quadrat · 1080 × 1080</translation>
    </message>
    <message>
        <source>Keyboard shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Exporting %1 %</source>
        <translation>Exportiert %1 %</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
    <message>
        <source>Make the film</source>
        <translation>Macht den Film</translation>
    </message>
    <message>
        <source>Ctrl E</source>
        <translation>Strg E</translation>
    </message>
    <message>
        <source>Show the export</source>
        <translation>Zeigt den Export</translation>
    </message>
</context>
<context>
    <name>ExportSheet</name>
    <message>
        <source>YouTube</source>
        <translation>YouTube</translation>
    </message>
    <message>
        <source>X</source>
        <translation>X</translation>
    </message>
    <message>
        <source>Shorts</source>
        <translation>Shorts</translation>
    </message>
    <message>
        <source>Square</source>
        <translation>Quadrat</translation>
    </message>
    <message>
        <source>under 1 MB</source>
        <translation>unter 1 MB</translation>
    </message>
    <message>
        <source>%1 MB</source>
        <translation>%1 MB</translation>
    </message>
    <message>
        <source>%1 GB</source>
        <translation>%1 GB</translation>
    </message>
    <message>
        <source>Working out how long it takes…</source>
        <translation>Ermittelt, wie lange es dauert …</translation>
    </message>
    <message>
        <source>A few seconds left</source>
        <translation>Noch ein paar Sekunden</translation>
    </message>
    <message>
        <source>About %1 seconds left</source>
        <translation>Noch etwa %1 Sekunden</translation>
    </message>
    <message>
        <source>About a minute left</source>
        <translation>Noch etwa eine Minute</translation>
    </message>
    <message>
        <source>About %1 minutes left</source>
        <translation>Noch etwa %1 Minuten</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
    <message>
        <source>Stopping…</source>
        <translation>Hält an …</translation>
    </message>
    <message>
        <source>Exporting</source>
        <translation>Export läuft</translation>
    </message>
    <message>
        <source>Your film is ready</source>
        <translation>Ihr Film ist fertig</translation>
    </message>
    <message>
        <source>Your films are ready</source>
        <translation>Ihre Filme sind fertig</translation>
    </message>
    <message>
        <source>The export stopped</source>
        <translation>Der Export ist abgebrochen</translation>
    </message>
    <message>
        <source>Go on in the background</source>
        <translation>Im Hintergrund weitermachen</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>%1 × %2</source>
        <translation>%1 × %2</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>HD</source>
        <translation>HD</translation>
    </message>
    <message>
        <source>The usual size</source>
        <translation>Die übliche Größe</translation>
    </message>
    <message>
        <source>4K</source>
        <translation>4K</translation>
    </message>
    <message>
        <source>Twice as many pixels each way; takes about four times as long</source>
        <translation>Doppelt so viele Pixel in jeder Richtung; dauert etwa viermal so lang</translation>
    </message>
    <message>
        <source>Frames a second</source>
        <translation>Bilder je Sekunde</translation>
    </message>
    <message>
        <source>As in the cinema</source>
        <translation>Wie im Kino</translation>
    </message>
    <message>
        <source>Smaller files</source>
        <translation>Kleinere Dateien</translation>
    </message>
    <message>
        <source>Smooth pointer and scrolling</source>
        <translation>Flüssiger Zeiger, flüssiges Rollen</translation>
    </message>
    <message>
        <source>Choose at least one format.</source>
        <translation>Wählen Sie mindestens ein Format.</translation>
    </message>
    <message>
        <source>%1 long · about %2, less where the picture stands still</source>
        <translation>%1 lang · etwa %2, weniger, wo das Bild stillsteht</translation>
    </message>
    <message>
        <source>Exporting %1</source>
        <translation>Exportiert %1</translation>
    </message>
    <message>
        <source>Not finished</source>
        <translation>Nicht fertig</translation>
    </message>
    <message>
        <source>Waiting</source>
        <translation>Wartet</translation>
    </message>
    <message>
        <source>Play %1</source>
        <translation>%1 abspielen</translation>
    </message>
    <message>
        <source>What is finished stays.</source>
        <translation>Was fertig ist, bleibt.</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Puts the film on the clipboard, to paste it elsewhere</source>
        <translation>Legt den Film in die Zwischenablage, um ihn anderswo einzufügen</translation>
    </message>
    <message>
        <source>Show in folder</source>
        <translation>Im Ordner zeigen</translation>
    </message>
    <message>
        <source>Opens the file manager where the film is</source>
        <translation>Öffnet die Dateiverwaltung dort, wo der Film liegt</translation>
    </message>
    <message>
        <source>Export more</source>
        <translation>Mehr exportieren</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Back to the choice of formats</source>
        <translation>Zurück zur Wahl der Formate</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Stops; films that are finished stay</source>
        <translation>Hält an; fertige Filme bleiben</translation>
    </message>
    <message>
        <source>Makes the films that are ticked</source>
        <translation>Macht die angekreuzten Filme</translation>
    </message>
    <message>
        <source>Export %1 films</source>
        <translation>%1 Filme exportieren</translation>
    </message>
</context>
<context>
    <name>FallbackFileDialog</name>
    <message>
        <source>Save</source>
        <translation>Sichern</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
</context>
<context>
    <name>FileDialog</name>
    <message>
        <source>File name</source>
        <translation>Dateiname</translation>
    </message>
    <message>
        <source>Filter</source>
        <translation>Filter</translation>
    </message>
</context>
<context>
    <name>FormatPanel</name>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>The film is planned anew for each format: the camera follows the action closer where the picture is narrow. Several formats at once can be exported from the same edit.</source>
        <translation>Der Film wird für jedes Format neu geplant: Wo das Bild schmal ist, folgt die Kamera dem Geschehen näher. Aus derselben Bearbeitung lassen sich mehrere Formate zugleich exportieren.</translation>
    </message>
    <message>
        <source>YouTube</source>
        <translation>YouTube</translation>
    </message>
    <message>
        <source>16:9 · 1920 × 1080</source>
        <translation>16:9 · 1920 × 1080</translation>
    </message>
    <message>
        <source>X</source>
        <translation>X</translation>
    </message>
    <message>
        <source>4:5 · 1080 × 1350</source>
        <translation>4:5 · 1080 × 1350</translation>
    </message>
    <message>
        <source>Shorts</source>
        <translation>Shorts</translation>
    </message>
    <message>
        <source>9:16 · 1080 × 1920</source>
        <translation>9:16 · 1080 × 1920</translation>
    </message>
    <message>
        <source>Square</source>
        <translation>Quadrat</translation>
    </message>
    <message>
        <source>1:1 · 1080 × 1080</source>
        <translation>1:1 · 1080 × 1080</translation>
    </message>
</context>
<context>
    <name>FrameEditor</name>
    <message>
        <source>Done</source>
        <translation>Fertig</translation>
    </message>
    <message>
        <source>Back to the film</source>
        <translation>Zurück zum Film</translation>
    </message>
    <message>
        <source>Return</source>
        <translation>Eingabe</translation>
    </message>
</context>
<context>
    <name>FramePanel</name>
    <message>
        <source>Frame</source>
        <translation>Rahmen</translation>
    </message>
    <message>
        <source>Padding</source>
        <translation>Abstand</translation>
    </message>
    <message>
        <source>Room between the recording and the edge of the film</source>
        <translation>Raum zwischen der Aufnahme und dem Rand des Films</translation>
    </message>
    <message>
        <source>Corners</source>
        <translation>Ecken</translation>
    </message>
    <message>
        <source>How round the recording&apos;s corners are</source>
        <translation>Wie rund die Ecken der Aufnahme sind</translation>
    </message>
    <message>
        <source>Shadow</source>
        <translation>Schatten</translation>
    </message>
    <message>
        <source>Lifts the recording off its background</source>
        <translation>Hebt die Aufnahme von ihrem Hintergrund ab</translation>
    </message>
    <message>
        <source>Overlay</source>
        <translation>Einblendung</translation>
    </message>
    <message>
        <source>Clock of the recording</source>
        <translation>Uhr der Aufnahme</translation>
    </message>
    <message>
        <source>Shows how much time has really passed, also where the film skips</source>
        <translation>Zeigt, wie viel Zeit wirklich vergangen ist, auch wo der Film springt</translation>
    </message>
</context>
<context>
    <name>HomeHints</name>
    <message>
        <source>Typing can&apos;t be noticed here, so the view follows clicks alone.</source>
        <translation>Das Tippen lässt sich hier nicht bemerken, darum folgt das Bild allein den Klicks.</translation>
    </message>
    <message>
        <source>Allow</source>
        <translation>Erlauben</translation>
    </message>
</context>
<context>
    <name>HomeMessages</name>
    <message>
        <source>“%1” was cut off before it was finished. It has been made whole and can be opened.</source>
        <translation>„%1“ wurde abgeschnitten, bevor es fertig war. Es wurde ganz gemacht und kann geöffnet werden.</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
</context>
<context>
    <name>HomeView</name>
    <message>
        <source>Open the sample</source>
        <translation>Beispiel öffnen</translation>
    </message>
    <message>
        <source>A finished recording to try everything with</source>
        <translation>Eine fertige Aufnahme, um alles auszuprobieren</translation>
    </message>
    <message>
        <source>Open a movie…</source>
        <translation>Video öffnen …</translation>
    </message>
    <message>
        <source>Make a film of a movie file you have</source>
        <translation>Macht einen Film aus einer Videodatei, die Sie haben</translation>
    </message>
    <message>
        <source>Preview of %1</source>
        <translation>Vorschau von %1</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>Source: %1. Choose another</source>
        <translation>Quelle: %1. Eine andere wählen</translation>
    </message>
    <message>
        <source>One window</source>
        <translation>Ein Fenster</translation>
    </message>
    <message>
        <source>Whole display</source>
        <translation>Ganzer Bildschirm</translation>
    </message>
    <message>
        <source>Choose what to record</source>
        <translation>Wählen, was aufgenommen wird</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>Aus</translation>
    </message>
    <message>
        <source>In a bubble on the film</source>
        <translation>In einer Blase im Film</translation>
    </message>
    <message>
        <source>Record the camera, too</source>
        <translation>Auch die Kamera aufnehmen</translation>
    </message>
    <message>
        <source>Microphone</source>
        <translation>Mikrofon</translation>
    </message>
    <message>
        <source>No microphone is connected</source>
        <translation>Kein Mikrofon ist angeschlossen</translation>
    </message>
    <message>
        <source>Record your voice; captions are made from it</source>
        <translation>Nimmt Ihre Stimme auf; daraus werden Untertitel</translation>
    </message>
    <message>
        <source>Computer&apos;s sound</source>
        <translation>Ton des Rechners</translation>
    </message>
    <message>
        <source>What you hear is recorded</source>
        <translation>Was Sie hören, wird aufgenommen</translation>
    </message>
    <message>
        <source>Record what programs play</source>
        <translation>Aufnehmen, was Programme abspielen</translation>
    </message>
    <message>
        <source>Starting…</source>
        <translation>Beginnt …</translation>
    </message>
    <message>
        <source>Record</source>
        <translation>Aufnehmen</translation>
    </message>
    <message>
        <source>Counts down from three, then records</source>
        <translation>Zählt von drei herunter und nimmt dann auf</translation>
    </message>
    <message>
        <source>starts and stops</source>
        <translation>beginnt und beendet</translation>
    </message>
    <message>
        <source>How a film comes about</source>
        <translation>Wie ein Film entsteht</translation>
    </message>
    <message>
        <source>Recent recordings</source>
        <translation>Letzte Aufnahmen</translation>
    </message>
    <message>
        <source>Ctrl O</source>
        <translation>Strg O</translation>
    </message>
</context>
<context>
    <name>HowItWorks</name>
    <message>
        <source>Record</source>
        <translation>Aufnehmen</translation>
    </message>
    <message>
        <source>Pick a display or a window and work as you always do. Pauses and detours don&apos;t matter.</source>
        <translation>Wählen Sie einen Bildschirm oder ein Fenster und arbeiten Sie wie immer. Pausen und Umwege machen nichts.</translation>
    </message>
    <message>
        <source>Let it watch</source>
        <translation>Zusehen lassen</translation>
    </message>
    <message>
        <source>Waiting is sped up, the view moves to where things happen, and the pointer glides.</source>
        <translation>Warten wird beschleunigt, das Bild geht dorthin, wo etwas geschieht, und der Zeiger gleitet.</translation>
    </message>
    <message>
        <source>Share the film</source>
        <translation>Den Film teilen</translation>
    </message>
    <message>
        <source>Change what you like on the timeline, then export in the shape each place wants.</source>
        <translation>Ändern Sie auf der Zeitleiste, was Sie möchten, und exportieren Sie in der Form, die jeder Ort verlangt.</translation>
    </message>
</context>
<context>
    <name>Inspector</name>
    <message>
        <source>Looks</source>
        <translation>Stile</translation>
    </message>
    <message>
        <source>Format</source>
        <translation>Format</translation>
    </message>
    <message>
        <source>Background</source>
        <translation>Hintergrund</translation>
    </message>
    <message>
        <source>Frame</source>
        <translation>Rahmen</translation>
    </message>
    <message>
        <source>Pointer</source>
        <translation>Zeiger</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Speed</source>
        <translation>Tempo</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>Captions</source>
        <translation>Untertitel</translation>
    </message>
    <message>
        <source>Cards</source>
        <translation>Tafeln</translation>
    </message>
    <message>
        <source>Crop</source>
        <translation>Zuschnitt</translation>
    </message>
    <message>
        <source>Panels</source>
        <translation>Bereiche</translation>
    </message>
</context>
<context>
    <name>InspectorPanel</name>
    <message>
        <source>Set everything in this panel back</source>
        <translation>Alles in diesem Bereich zurücksetzen</translation>
    </message>
</context>
<context>
    <name>LeaveQuestion</name>
    <message>
        <source>A film is being exported</source>
        <translation>Ein Film wird exportiert</translation>
    </message>
    <message>
        <source>Closing now stops the export. Your edits are kept; you can export again later.</source>
        <translation>Wenn Sie jetzt schließen, bricht der Export ab. Ihre Änderungen bleiben; Sie können später noch einmal exportieren.</translation>
    </message>
    <message>
        <source>Stop and close</source>
        <translation>Abbrechen und schließen</translation>
    </message>
    <message>
        <source>Keep exporting</source>
        <translation>Weiter exportieren</translation>
    </message>
</context>
<context>
    <name>LevelMeter</name>
    <message>
        <source>Microphone level</source>
        <translation>Pegel des Mikrofons</translation>
    </message>
</context>
<context>
    <name>LookPresets</name>
    <message>
        <source>Orbit</source>
        <translation>Orbit</translation>
    </message>
    <message>
        <source>Stage</source>
        <translation>Bühne</translation>
    </message>
    <message>
        <source>Studio</source>
        <translation>Studio</translation>
    </message>
    <message>
        <source>Midnight</source>
        <translation>Mitternacht</translation>
    </message>
    <message>
        <source>Northern</source>
        <translation>Nordlicht</translation>
    </message>
    <message>
        <source>Paper</source>
        <translation>Papier</translation>
    </message>
    <message>
        <source>Horizon</source>
        <translation>Horizont</translation>
    </message>
    <message>
        <source>Frosted</source>
        <translation>Milchglas</translation>
    </message>
    <message>
        <source>Petal</source>
        <translation>Blüte</translation>
    </message>
    <message>
        <source>Keynote</source>
        <translation>Vortrag</translation>
    </message>
    <message>
        <source>Ink</source>
        <translation>Tinte</translation>
    </message>
    <message>
        <source>Edge to edge</source>
        <translation>Randlos</translation>
    </message>
</context>
<context>
    <name>LookTile</name>
    <message>
        <source>Rename or delete %1</source>
        <translation>%1 umbenennen oder löschen</translation>
    </message>
    <message>
        <source>New name of the look</source>
        <translation>Neuer Name des Stils</translation>
    </message>
    <message>
        <source>Rename</source>
        <translation>Umbenennen</translation>
    </message>
    <message>
        <source>F2</source>
        <translation>F2</translation>
    </message>
    <message>
        <source>Replace with the film&apos;s look</source>
        <translation>Durch den Stil des Films ersetzen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Gives the film this look</source>
        <translation>Gibt dem Film diesen Stil</translation>
    </message>
    <message>
        <source>Del</source>
        <translation>Entf</translation>
    </message>
</context>
<context>
    <name>LooksPanel</name>
    <message>
        <source>Looks</source>
        <translation>Stile</translation>
    </message>
    <message>
        <source>“%1” is a look that comes with the program. Choose another name.</source>
        <translation>„%1“ ist ein Stil, der zum Programm gehört. Wählen Sie einen anderen Namen.</translation>
    </message>
    <message>
        <source>There is a look called “%1” already. Choose another name.</source>
        <translation>Einen Stil namens „%1“ gibt es schon. Wählen Sie einen anderen Namen.</translation>
    </message>
    <message>
        <source>Keep the film&apos;s look</source>
        <translation>Den Stil des Films behalten</translation>
    </message>
    <message>
        <source>Name of the look</source>
        <translation>Name des Stils</translation>
    </message>
    <message>
        <source>What the new look is called</source>
        <translation>Wie der neue Stil heißt</translation>
    </message>
    <message>
        <source>Keep</source>
        <translation>Behalten</translation>
    </message>
    <message>
        <source>Keeps background, frame, pointer, camera and the captions&apos; style for your next films</source>
        <translation>Behält Hintergrund, Rahmen, Zeiger, Kamera und den Stil der Untertitel für Ihre nächsten Filme</translation>
    </message>
    <message>
        <source>Your looks couldn&apos;t be kept: %1</source>
        <translation>Ihre Stile konnten nicht gespeichert werden: %1</translation>
    </message>
    <message>
        <source>“%1” is deleted</source>
        <translation>„%1“ ist gelöscht</translation>
    </message>
    <message>
        <source>Put back</source>
        <translation>Zurückholen</translation>
    </message>
    <message>
        <source>Brings the look back that was deleted last</source>
        <translation>Holt den zuletzt gelöschten Stil zurück</translation>
    </message>
    <message>
        <source>Yours</source>
        <translation>Ihre</translation>
    </message>
    <message>
        <source>Built in</source>
        <translation>Mitgeliefert</translation>
    </message>
    <message>
        <source>To make a look of your own, set up the film in the other panels and keep its look here.</source>
        <translation>Für einen eigenen Stil richten Sie den Film in den anderen Bereichen ein und behalten seinen Stil hier.</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>%1 — Ombrel Record</source>
        <translation>%1 – Ombrel Record</translation>
    </message>
</context>
<context>
    <name>MessageBar</name>
    <message>
        <source>Dismiss</source>
        <translation>Ausblenden</translation>
    </message>
</context>
<context>
    <name>MicrophoneChoice</name>
    <message>
        <source>Microphone</source>
        <translation>Mikrofon</translation>
    </message>
    <message>
        <source>The system&apos;s choice</source>
        <translation>Wie das System es wählt</translation>
    </message>
</context>
<context>
    <name>MovieChooser</name>
    <message>
        <source>Open a movie</source>
        <translation>Video öffnen</translation>
    </message>
    <message>
        <source>Movies (*.mp4 *.m4v *.mov *.mkv *.webm *.avi *.MP4 *.MOV)</source>
        <translation>Videos (*.mp4 *.m4v *.mov *.mkv *.webm *.avi *.MP4 *.MOV)</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
</context>
<context>
    <name>NothingToShow</name>
    <message>
        <source>No display to show</source>
        <translation>Kein Bildschirm zu zeigen</translation>
    </message>
    <message>
        <source>Allow screen recording</source>
        <translation>Bildschirmaufnahme erlauben</translation>
    </message>
    <message>
        <source>Log in to a desktop session, then start Ombrel Record there. Films you have made can be opened here all the same.</source>
        <translation>Melden Sie sich an einer Arbeitsumgebung an und starten Sie Ombrel Record dort. Fertige Filme lassen sich auch hier öffnen.</translation>
    </message>
    <message>
        <source>Ombrel Record shows and records only what you choose, and nothing leaves this computer. Your desktop asks once.</source>
        <translation>Ombrel Record zeigt und nimmt nur auf, was Sie wählen, und nichts verlässt diesen Rechner. Ihre Arbeitsumgebung fragt einmal.</translation>
    </message>
</context>
<context>
    <name>OmbrelRecord::AppModel</name>
    <message>
        <source>Watching your recording…</source>
        <translation>Ihre Aufnahme wird angesehen …</translation>
    </message>
    <message>
        <source>Watching your recording… %1%</source>
        <translation>Ihre Aufnahme wird angesehen … %1 %</translation>
    </message>
    <message>
        <source>Couldn&apos;t open that video: %1</source>
        <translation>Das Video ließ sich nicht öffnen: %1</translation>
    </message>
    <message>
        <source>Making the recording whole…</source>
        <translation>Die Aufnahme wird wiederhergestellt …</translation>
    </message>
    <message>
        <source>The sample isn&apos;t in this build.</source>
        <translation>Das Beispiel fehlt in dieser Fassung.</translation>
    </message>
    <message>
        <source>No display to record.</source>
        <translation>Kein Bildschirm zum Aufnehmen.</translation>
    </message>
    <message>
        <source>That window has closed. Pick another one, or a whole screen.</source>
        <translation>Dieses Fenster ist geschlossen. Wählen Sie ein anderes oder einen ganzen Bildschirm.</translation>
    </message>
    <message>
        <source>Couldn&apos;t start recording: %1</source>
        <translation>Die Aufnahme ließ sich nicht beginnen: %1</translation>
    </message>
    <message>
        <source>Recording stopped: %1</source>
        <translation>Die Aufnahme wurde beendet: %1</translation>
    </message>
    <message>
        <source>Finishing the recording…</source>
        <translation>Die Aufnahme wird fertiggestellt …</translation>
    </message>
    <message>
        <source>The recording couldn&apos;t be saved: %1</source>
        <translation>Die Aufnahme ließ sich nicht speichern: %1</translation>
    </message>
    <message>
        <source>Discard this recording?</source>
        <translation>Diese Aufnahme verwerfen?</translation>
    </message>
    <message>
        <source>The %1 recorded so far will be deleted. Recording continues while you decide.</source>
        <translation>Was bisher aufgenommen ist (%1), wird gelöscht. Während Sie entscheiden, läuft die Aufnahme weiter.</translation>
    </message>
    <message>
        <source>Discard</source>
        <translation>Verwerfen</translation>
    </message>
    <message>
        <source>Keep Recording</source>
        <translation>Weiter aufnehmen</translation>
    </message>
    <message>
        <source>Choose a screen</source>
        <translation>Bildschirm wählen</translation>
    </message>
</context>
<context>
    <name>OmbrelRecord::EditorModel</name>
    <message>
        <source>The captions couldn&apos;t be saved there: %1. Choose another folder.</source>
        <translation>Dort konnten die Untertitel nicht gespeichert werden: %1. Wählen Sie einen anderen Ordner.</translation>
    </message>
</context>
<context>
    <name>OmbrelRecord::ExportQueue</name>
    <message>
        <source>The disk is full. Free some space, then export again.</source>
        <translation>Die Festplatte ist voll. Schaffen Sie Platz und exportieren Sie noch einmal.</translation>
    </message>
    <message>
        <source>The folder for films can&apos;t be written. Check that you may write there, then export again.</source>
        <translation>In den Ordner für Filme kann nicht geschrieben werden. Prüfen Sie, ob Sie dort schreiben dürfen, und exportieren Sie noch einmal.</translation>
    </message>
    <message>
        <source>A file of the recording is missing. Put it back into the recording&apos;s folder, then export again.</source>
        <translation>Eine Datei der Aufnahme fehlt. Legen Sie sie in den Ordner der Aufnahme zurück und exportieren Sie noch einmal.</translation>
    </message>
    <message>
        <source>Nothing is left to export. Restore a cut or move the trim handles, then export again.</source>
        <translation>Es ist nichts übrig, was exportiert werden könnte. Stellen Sie einen Schnitt wieder her oder verschieben Sie die Enden des Films und exportieren Sie noch einmal.</translation>
    </message>
    <message>
        <source>Your edits are safe. Try again; if it fails again, choose another format or scale.</source>
        <translation>Ihre Änderungen sind sicher. Versuchen Sie es noch einmal; wenn es wieder nicht gelingt, wählen Sie ein anderes Format oder eine andere Größe.</translation>
    </message>
</context>
<context>
    <name>OmbrelRecord::LookPresets</name>
    <message>
        <source>My look</source>
        <translation>Mein Stil</translation>
    </message>
</context>
<context>
    <name>OmbrelRecord::TimelineController</name>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message>
        <source>%1 – %2 · %3</source>
        <translation>%1 – %2 · %3</translation>
    </message>
    <message>
        <source>%1 to %2</source>
        <translation>%1 bis %2</translation>
    </message>
    <message>
        <source>Selected range, %1</source>
        <translation>Gewählter Bereich, %1</translation>
    </message>
    <message>
        <source>Speed block, %1, %2</source>
        <translation>Tempoblock, %1, %2</translation>
    </message>
    <message>
        <source>Zoom block, %1, %2</source>
        <translation>Zoomblock, %1, %2</translation>
    </message>
    <message>
        <source>%1 · %2 → %3</source>
        <translation>%1 · %2 → %3</translation>
    </message>
</context>
<context>
    <name>OmbrelRecord::Wording</name>
    <message>
        <source>Ombrel Record can&apos;t use the microphone. Turn it on in Settings → Privacy → Microphone.</source>
        <translation>Ombrel Record darf das Mikrofon nicht verwenden. Erlauben Sie es unter Einstellungen → Datenschutz → Mikrofon.</translation>
    </message>
    <message>
        <source>Ombrel Record can&apos;t use the camera. Turn it on in Settings → Privacy → Camera.</source>
        <translation>Ombrel Record darf die Kamera nicht verwenden. Erlauben Sie es unter Einstellungen → Datenschutz → Kamera.</translation>
    </message>
    <message>
        <source>Ombrel Record can&apos;t see this screen. Log in to a desktop session, allow screen recording when it asks, and try again.</source>
        <translation>Ombrel Record sieht diesen Bildschirm nicht. Melden Sie sich an einem Desktop an, erlauben Sie die Aufnahme des Bildschirms, wenn danach gefragt wird, und versuchen Sie es noch einmal.</translation>
    </message>
    <message>
        <source>Super+Alt+R belongs to another program, so it doesn&apos;t start a recording here. Use the Record button.</source>
        <translation>Super+Alt+R gehört einem anderen Programm und beginnt hier keine Aufnahme. Nehmen Sie den Knopf „Aufnehmen“.</translation>
    </message>
    <message>
        <source>Super+Alt+R doesn&apos;t work in a Wayland session yet. Use the Record button.</source>
        <translation>Super+Alt+R geht in einer Wayland-Sitzung noch nicht. Nehmen Sie den Knopf „Aufnehmen“.</translation>
    </message>
    <message>
        <source>Super+Alt+R doesn&apos;t work here (%1). Use the Record button.</source>
        <translation>Super+Alt+R geht hier nicht (%1). Nehmen Sie den Knopf „Aufnehmen“.</translation>
    </message>
    <message>
        <source>Couldn&apos;t open that video</source>
        <translation>Dieses Video lässt sich nicht öffnen</translation>
    </message>
    <message>
        <source>there is no folder for the sample, because your home folder isn&apos;t known.</source>
        <translation>Für das Beispiel ist kein Ordner da, denn Ihr Heimatverzeichnis ist nicht bekannt.</translation>
    </message>
    <message>
        <source>The camera couldn&apos;t start, so this recording has no camera</source>
        <translation>Die Kamera ließ sich nicht starten, diese Aufnahme hat deshalb keine</translation>
    </message>
    <message>
        <source>Ombrel Record needs Speech Recognition. Allow it in your desktop&apos;s privacy settings.</source>
        <translation>Ombrel Record braucht die Spracherkennung. Erlauben Sie sie in den Datenschutz-Einstellungen Ihres Desktops.</translation>
    </message>
    <message>
        <source>Speech recognition isn&apos;t available for this language on this computer.</source>
        <translation>Für diese Sprache gibt es auf diesem Computer keine Spracherkennung.</translation>
    </message>
    <message>
        <source>Couldn&apos;t read the recording&apos;s sound.</source>
        <translation>Der Ton der Aufnahme lässt sich nicht lesen.</translation>
    </message>
    <message>
        <source>Couldn&apos;t prepare the sound for captions.</source>
        <translation>Der Ton lässt sich nicht für Untertitel aufbereiten.</translation>
    </message>
    <message>
        <source>This recording has no sound. Turn on Mic before recording to get captions.</source>
        <translation>Diese Aufnahme hat keinen Ton. Schalten Sie vor der Aufnahme das Mikrofon ein, um Untertitel zu bekommen.</translation>
    </message>
    <message>
        <source>No speech found. Record with Mic on to get captions.</source>
        <translation>Keine Sprache gefunden. Nehmen Sie mit Mikrofon auf, um Untertitel zu bekommen.</translation>
    </message>
    <message>
        <source>Your changes couldn&apos;t be saved</source>
        <translation>Ihre Änderungen ließen sich nicht sichern</translation>
    </message>
    <message>
        <source>cannot be written</source>
        <translation>lässt sich nicht schreiben</translation>
    </message>
    <message>
        <source>cannot be read</source>
        <translation>lässt sich nicht lesen</translation>
    </message>
    <message>
        <source>cannot be created</source>
        <translation>lässt sich nicht anlegen</translation>
    </message>
    <message>
        <source>couldn&apos;t be moved to the trash</source>
        <translation>lässt sich nicht in den Papierkorb legen</translation>
    </message>
    <message>
        <source>no such folder</source>
        <translation>diesen Ordner gibt es nicht</translation>
    </message>
    <message>
        <source>there is no recording here</source>
        <translation>hier ist keine Aufnahme</translation>
    </message>
    <message>
        <source>holds a recording already</source>
        <translation>enthält schon eine Aufnahme</translation>
    </message>
    <message>
        <source>another recording is running there</source>
        <translation>dort läuft eine andere Aufnahme</translation>
    </message>
    <message>
        <source>still being recorded</source>
        <translation>wird noch aufgenommen</translation>
    </message>
    <message>
        <source>the disk is full</source>
        <translation>die Festplatte ist voll</translation>
    </message>
    <message>
        <source>not a plain file</source>
        <translation>keine gewöhnliche Datei</translation>
    </message>
    <message>
        <source>not a regular file</source>
        <translation>keine gewöhnliche Datei</translation>
    </message>
    <message>
        <source>not a recording of this program</source>
        <translation>keine Aufnahme dieses Programms</translation>
    </message>
    <message>
        <source>is not valid JSON (at byte %1)</source>
        <translation>ist kein gültiges JSON (bei Byte %1)</translation>
    </message>
    <message>
        <source>has no list of looks</source>
        <translation>enthält keine Stile</translation>
    </message>
    <message>
        <source>nothing can be recovered</source>
        <translation>nichts lässt sich retten</translation>
    </message>
    <message>
        <source>the file has no header</source>
        <translation>die Datei hat keinen Kopf</translation>
    </message>
    <message>
        <source>not a video that can be read</source>
        <translation>kein Video, das sich lesen lässt</translation>
    </message>
    <message>
        <source>the file is empty</source>
        <translation>die Datei ist leer</translation>
    </message>
    <message>
        <source>the file has no video</source>
        <translation>die Datei enthält kein Video</translation>
    </message>
    <message>
        <source>the file is cut off</source>
        <translation>die Datei ist abgeschnitten</translation>
    </message>
    <message>
        <source>the file is cut off: it holds %1 bytes of at least %2</source>
        <translation>die Datei ist abgeschnitten: Sie enthält %1 Byte von mindestens %2</translation>
    </message>
    <message>
        <source>the picture is too large (%1)</source>
        <translation>das Bild ist zu groß (%1)</translation>
    </message>
    <message>
        <source>the picture has no size</source>
        <translation>das Bild hat keine Größe</translation>
    </message>
    <message>
        <source>it has no length</source>
        <translation>es hat keine Länge</translation>
    </message>
    <message>
        <source>it holds no pictures</source>
        <translation>es enthält keine Bilder</translation>
    </message>
    <message>
        <source>the video has no length</source>
        <translation>das Video hat keine Länge</translation>
    </message>
    <message>
        <source>the video has no frames</source>
        <translation>das Video enthält keine Bilder</translation>
    </message>
    <message>
        <source>the video is in a format that cannot be read (%1)</source>
        <translation>das Video hat ein Format, das sich nicht lesen lässt (%1)</translation>
    </message>
    <message>
        <source>the video claims to be longer than 100 hours; it is probably damaged</source>
        <translation>das Video will länger als 100 Stunden sein; wahrscheinlich ist es beschädigt</translation>
    </message>
    <message>
        <source>no picture of the video can be decoded</source>
        <translation>kein Bild des Videos lässt sich entschlüsseln</translation>
    </message>
    <message>
        <source>the sound is in a format that cannot be read (%1)</source>
        <translation>der Ton hat ein Format, das sich nicht lesen lässt (%1)</translation>
    </message>
    <message>
        <source>the sound claims to be longer than 100 hours; it is probably damaged</source>
        <translation>der Ton will länger als 100 Stunden sein; wahrscheinlich ist er beschädigt</translation>
    </message>
    <message>
        <source>no display to record</source>
        <translation>kein Bildschirm zum Aufnehmen</translation>
    </message>
    <message>
        <source>there is no display %1</source>
        <translation>den Bildschirm %1 gibt es nicht</translation>
    </message>
    <message>
        <source>there is no window %1</source>
        <translation>das Fenster %1 gibt es nicht</translation>
    </message>
    <message>
        <source>window %1 is too small to be recorded</source>
        <translation>das Fenster %1 ist zu klein zum Aufnehmen</translation>
    </message>
    <message>
        <source>the X server does not answer any more</source>
        <translation>der X-Server antwortet nicht mehr</translation>
    </message>
    <message>
        <source>no frames were captured</source>
        <translation>es wurde kein Bild aufgenommen</translation>
    </message>
    <message>
        <source>no camera</source>
        <translation>keine Kamera</translation>
    </message>
    <message>
        <source>camera busy</source>
        <translation>die Kamera ist belegt</translation>
    </message>
    <message>
        <source>camera output</source>
        <translation>die Kamera liefert kein Bild</translation>
    </message>
    <message>
        <source>the camera is gone</source>
        <translation>die Kamera ist weg</translation>
    </message>
    <message>
        <source>there is no sound service</source>
        <translation>es läuft kein Tondienst</translation>
    </message>
    <message>
        <source>no connection to the sound service</source>
        <translation>keine Verbindung zum Tondienst</translation>
    </message>
    <message>
        <source>recording stopped</source>
        <translation>Aufnahme beendet</translation>
    </message>
    <message>
        <source>the H.264 encoder failed</source>
        <translation>der H.264-Encoder ist ausgefallen</translation>
    </message>
    <message>
        <source>the film would be empty: everything has been cut</source>
        <translation>der Film wäre leer: Alles ist herausgeschnitten</translation>
    </message>
    <message>
        <source>append failed at frame %1</source>
        <translation>Bild %1 ließ sich nicht anfügen</translation>
    </message>
    <message>
        <source>unknown error</source>
        <translation>unbekannter Fehler</translation>
    </message>
    <message>
        <source>No space left on device</source>
        <translation>kein Platz mehr auf der Festplatte</translation>
    </message>
    <message>
        <source>Permission denied</source>
        <translation>keine Berechtigung</translation>
    </message>
    <message>
        <source>Operation not permitted</source>
        <translation>nicht erlaubt</translation>
    </message>
    <message>
        <source>Read-only file system</source>
        <translation>das Dateisystem ist schreibgeschützt</translation>
    </message>
    <message>
        <source>No such file or directory</source>
        <translation>Datei oder Ordner gibt es nicht</translation>
    </message>
    <message>
        <source>Not a directory</source>
        <translation>kein Ordner</translation>
    </message>
    <message>
        <source>Is a directory</source>
        <translation>ist ein Ordner</translation>
    </message>
    <message>
        <source>File exists</source>
        <translation>die Datei gibt es schon</translation>
    </message>
    <message>
        <source>File too large</source>
        <translation>die Datei ist zu groß</translation>
    </message>
    <message>
        <source>File name too long</source>
        <translation>der Dateiname ist zu lang</translation>
    </message>
    <message>
        <source>Disk quota exceeded</source>
        <translation>Ihr Speicherplatz ist aufgebraucht</translation>
    </message>
    <message>
        <source>Input/output error</source>
        <translation>Ein-/Ausgabefehler</translation>
    </message>
    <message>
        <source>Too many open files</source>
        <translation>zu viele offene Dateien</translation>
    </message>
    <message>
        <source>Cannot allocate memory</source>
        <translation>der Speicher reicht nicht</translation>
    </message>
    <message>
        <source>Invalid data found when processing input</source>
        <translation>die Daten sind ungültig</translation>
    </message>
    <message>
        <source>End of file</source>
        <translation>Ende der Datei</translation>
    </message>
</context>
<context>
    <name>PointerPanel</name>
    <message>
        <source>Pointer</source>
        <translation>Zeiger</translation>
    </message>
    <message>
        <source>Style</source>
        <translation>Stil</translation>
    </message>
    <message>
        <source>Dark</source>
        <translation>Dunkel</translation>
    </message>
    <message>
        <source>A dark arrow with a light edge</source>
        <translation>Ein dunkler Pfeil mit hellem Rand</translation>
    </message>
    <message>
        <source>Light</source>
        <translation>Hell</translation>
    </message>
    <message>
        <source>A light arrow with a dark edge</source>
        <translation>Ein heller Pfeil mit dunklem Rand</translation>
    </message>
    <message>
        <source>Outline</source>
        <translation>Umriss</translation>
    </message>
    <message>
        <source>Only the outline of an arrow</source>
        <translation>Nur der Umriss eines Pfeils</translation>
    </message>
    <message>
        <source>Dot</source>
        <translation>Punkt</translation>
    </message>
    <message>
        <source>A round dot</source>
        <translation>Ein runder Punkt</translation>
    </message>
    <message>
        <source>Size</source>
        <translation>Größe</translation>
    </message>
    <message>
        <source>How large the pointer is drawn</source>
        <translation>Wie groß der Zeiger gezeichnet wird</translation>
    </message>
    <message>
        <source>Movement</source>
        <translation>Bewegung</translation>
    </message>
    <message>
        <source>Smooth movement</source>
        <translation>Ruhige Bewegung</translation>
    </message>
    <message>
        <source>Takes the tremble out of the hand</source>
        <translation>Nimmt der Hand das Zittern</translation>
    </message>
    <message>
        <source>Hide while it rests</source>
        <translation>In Ruhe verbergen</translation>
    </message>
    <message>
        <source>The pointer fades when it has not moved for a while</source>
        <translation>Der Zeiger verschwindet, wenn er sich eine Weile nicht bewegt hat</translation>
    </message>
    <message>
        <source>Clicks</source>
        <translation>Klicks</translation>
    </message>
    <message>
        <source>Effect</source>
        <translation>Wirkung</translation>
    </message>
    <message>
        <source>Ripple</source>
        <translation>Welle</translation>
    </message>
    <message>
        <source>A wave runs out from the click</source>
        <translation>Eine Welle läuft vom Klick aus</translation>
    </message>
    <message>
        <source>Ring</source>
        <translation>Ring</translation>
    </message>
    <message>
        <source>A ring closes round the click</source>
        <translation>Ein Ring schließt sich um den Klick</translation>
    </message>
    <message>
        <source>Glow</source>
        <translation>Licht</translation>
    </message>
    <message>
        <source>A soft light around the click</source>
        <translation>Ein weiches Licht um den Klick</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Keiner</translation>
    </message>
    <message>
        <source>Clicks are not marked</source>
        <translation>Klicks werden nicht markiert</translation>
    </message>
    <message>
        <source>Bounce</source>
        <translation>Federn</translation>
    </message>
    <message>
        <source>How much the pointer gives way on a click</source>
        <translation>Wie sehr der Zeiger beim Klick nachgibt</translation>
    </message>
</context>
<context>
    <name>PreviewPane</name>
    <message>
        <source>Preview of the film</source>
        <translation>Vorschau des Films</translation>
    </message>
    <message>
        <source>Crop</source>
        <translation>Zuschnitt</translation>
    </message>
    <message>
        <source>Drag the frame to choose what is in the film</source>
        <translation>Ziehen Sie den Rahmen, um zu wählen, was im Film ist</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Drag the frame to aim, its corners to zoom · %1×</source>
        <translation>Ziehen Sie den Rahmen zum Zielen, seine Ecken zum Zoomen · %1×</translation>
    </message>
    <message>
        <source>Select a zoom first</source>
        <translation>Wählen Sie zuerst einen Zoom</translation>
    </message>
</context>
<context>
    <name>ProgressBar</name>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
</context>
<context>
    <name>RecentRecordings</name>
    <message>
        <source>Recent recordings</source>
        <translation>Letzte Aufnahmen</translation>
    </message>
</context>
<context>
    <name>RecordButton</name>
    <message>
        <source>%1 does the same everywhere</source>
        <translation>%1 tut überall dasselbe</translation>
    </message>
</context>
<context>
    <name>RecordingCard</name>
    <message>
        <source>Undated recording</source>
        <translation>Aufnahme ohne Datum</translation>
    </message>
    <message>
        <source>Today, %1</source>
        <translation>Heute, %1</translation>
    </message>
    <message>
        <source>Yesterday, %1</source>
        <translation>Gestern, %1</translation>
    </message>
    <message>
        <source>just now</source>
        <translation>gerade eben</translation>
    </message>
    <message>
        <source>a minute ago</source>
        <translation>vor einer Minute</translation>
    </message>
    <message>
        <source>%1 minutes ago</source>
        <translation>vor %1 Minuten</translation>
    </message>
    <message>
        <source>an hour ago</source>
        <translation>vor einer Stunde</translation>
    </message>
    <message>
        <source>%1 hours ago</source>
        <translation>vor %1 Stunden</translation>
    </message>
    <message>
        <source>a day ago</source>
        <translation>vor einem Tag</translation>
    </message>
    <message>
        <source>%1 days ago</source>
        <translation>vor %1 Tagen</translation>
    </message>
    <message>
        <source>a month ago</source>
        <translation>vor einem Monat</translation>
    </message>
    <message>
        <source>%1 months ago</source>
        <translation>vor %1 Monaten</translation>
    </message>
    <message>
        <source>a year ago</source>
        <translation>vor einem Jahr</translation>
    </message>
    <message>
        <source>%1 years ago</source>
        <translation>vor %1 Jahren</translation>
    </message>
    <message>
        <source>Recording, %1</source>
        <translation>Aufnahme, %1</translation>
    </message>
    <message>
        <source>%1 long, %2</source>
        <translation>%1 lang, %2</translation>
    </message>
    <message>
        <source>Show in the file manager</source>
        <translation>In der Dateiverwaltung zeigen</translation>
    </message>
    <message>
        <source>Move to Trash</source>
        <translation>In den Papierkorb legen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Entf</translation>
    </message>
    <message>
        <source>Open</source>
        <translation>Öffnen</translation>
    </message>
    <message>
        <source>Return</source>
        <translation>Eingabe</translation>
    </message>
    <message>
        <source>d MMMM</source>
        <translation>d. MMMM</translation>
    </message>
    <message>
        <source>d MMM yyyy</source>
        <translation>d. MMM yyyy</translation>
    </message>
</context>
<context>
    <name>RecordingFace</name>
    <message>
        <source>Recorded so far: %1</source>
        <translation>Bisher aufgenommen: %1</translation>
    </message>
    <message>
        <source>Microphone level</source>
        <translation>Pegel des Mikrofons</translation>
    </message>
    <message>
        <source>No microphone</source>
        <translation>Kein Mikrofon</translation>
    </message>
    <message>
        <source>Discard this recording</source>
        <translation>Diese Aufnahme verwerfen</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Beenden</translation>
    </message>
    <message>
        <source>Stop and make the film</source>
        <translation>Beenden und den Film machen</translation>
    </message>
</context>
<context>
    <name>RecordingPanel</name>
    <message>
        <source>Recording</source>
        <translation>Aufnahme läuft</translation>
    </message>
</context>
<context>
    <name>ScrollBar</name>
    <message>
        <source>Scroll up and down</source>
        <translation>Auf und ab rollen</translation>
    </message>
    <message>
        <source>Scroll sideways</source>
        <translation>Seitwärts rollen</translation>
    </message>
</context>
<context>
    <name>SelectionBar</name>
    <message>
        <source>Cut</source>
        <translation>Schneiden</translation>
    </message>
    <message>
        <source>Take this stretch out of the film</source>
        <translation>Nimmt dieses Stück aus dem Film</translation>
    </message>
    <message>
        <source>Speed up</source>
        <translation>Beschleunigen</translation>
    </message>
    <message>
        <source>Play this stretch four times as fast</source>
        <translation>Spielt dieses Stück viermal so schnell</translation>
    </message>
    <message>
        <source>Add zoom</source>
        <translation>Zoom hinzufügen</translation>
    </message>
    <message>
        <source>Zoom in on what happens in this stretch</source>
        <translation>Zoomt auf das, was in diesem Stück geschieht</translation>
    </message>
    <message>
        <source>Restore</source>
        <translation>Wiederherstellen</translation>
    </message>
    <message>
        <source>Bring back what was cut in this stretch</source>
        <translation>Holt zurück, was in diesem Stück geschnitten wurde</translation>
    </message>
    <message>
        <source>Slower</source>
        <translation>Langsamer</translation>
    </message>
    <message>
        <source>Zoom out</source>
        <translation>Herauszoomen</translation>
    </message>
    <message>
        <source>Faster</source>
        <translation>Schneller</translation>
    </message>
    <message>
        <source>Zoom in further</source>
        <translation>Weiter hineinzoomen</translation>
    </message>
    <message>
        <source>Play this stretch as it was recorded</source>
        <translation>Spielt dieses Stück, wie es aufgenommen wurde</translation>
    </message>
    <message>
        <source>Remove this zoom</source>
        <translation>Diesen Zoom entfernen</translation>
    </message>
    <message>
        <source>Clear the selection</source>
        <translation>Auswahl aufheben</translation>
    </message>
    <message>
        <source>Del</source>
        <translation>Entf</translation>
    </message>
    <message>
        <source>Esc</source>
        <translation>Esc</translation>
    </message>
</context>
<context>
    <name>ShortcutsSheet</name>
    <message>
        <source>Playing</source>
        <translation>Wiedergabe</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Leertaste</translation>
    </message>
    <message>
        <source>Play or pause</source>
        <translation>Abspielen oder anhalten</translation>
    </message>
    <message>
        <source>Back, stop, on; again for faster</source>
        <translation>Zurück, halt, vor; auch schneller</translation>
    </message>
    <message>
        <source>One frame</source>
        <translation>Ein Bild</translation>
    </message>
    <message>
        <source>One second</source>
        <translation>Eine Sekunde</translation>
    </message>
    <message>
        <source>Home  End</source>
        <translation>Pos1  Ende</translation>
    </message>
    <message>
        <source>To the beginning or end</source>
        <translation>Zum Anfang oder Ende</translation>
    </message>
    <message>
        <source>These keys</source>
        <translation>Diese Tasten</translation>
    </message>
    <message>
        <source>F2  Delete</source>
        <translation>F2  Entf</translation>
    </message>
    <message>
        <source>Rename or delete a look</source>
        <translation>Einen Stil umbenennen, löschen</translation>
    </message>
    <message>
        <source>Editing</source>
        <translation>Bearbeiten</translation>
    </message>
    <message>
        <source>The film starts or ends here</source>
        <translation>Der Film beginnt oder endet hier</translation>
    </message>
    <message>
        <source>Select from or to here</source>
        <translation>Auswahl ab oder bis hier</translation>
    </message>
    <message>
        <source>Split</source>
        <translation>Teilen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Entf</translation>
    </message>
    <message>
        <source>Cut or remove what is selected</source>
        <translation>Auswahl schneiden, entfernen</translation>
    </message>
    <message>
        <source>Restore cuts in the selection</source>
        <translation>Schnitte der Auswahl zurückholen</translation>
    </message>
    <message>
        <source>Ctrl E</source>
        <translation>Strg E</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
    <message>
        <source>Ctrl Z</source>
        <translation>Strg Z</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Ctrl ⇧ Z</source>
        <translation>Strg ⇧ Z</translation>
    </message>
    <message>
        <source>Redo</source>
        <translation>Wiederholen</translation>
    </message>
    <message>
        <source>Timeline</source>
        <translation>Zeitleiste</translation>
    </message>
    <message>
        <source>Larger, smaller, all of it</source>
        <translation>Größer, kleiner, alles</translation>
    </message>
    <message>
        <source>Wheel</source>
        <translation>Rad</translation>
    </message>
    <message>
        <source>Zoom at the pointer</source>
        <translation>Am Zeiger vergrößern</translation>
    </message>
    <message>
        <source>⇧ Wheel</source>
        <translation>⇧ Rad</translation>
    </message>
    <message>
        <source>Scroll</source>
        <translation>Rollen</translation>
    </message>
    <message>
        <source>Alt drag</source>
        <translation>Alt ziehen</translation>
    </message>
    <message>
        <source>Without snapping</source>
        <translation>Ohne Einrasten</translation>
    </message>
    <message>
        <source>Esc</source>
        <translation>Esc</translation>
    </message>
    <message>
        <source>Give up a drag, clear the selection</source>
        <translation>Ziehen oder Auswahl aufgeben</translation>
    </message>
    <message>
        <source>In a lane</source>
        <translation>In einer Spur</translation>
    </message>
    <message>
        <source>Select the next block</source>
        <translation>Den nächsten Block wählen</translation>
    </message>
    <message>
        <source>Enter</source>
        <translation>Eingabe</translation>
    </message>
    <message>
        <source>Add a block at the playhead</source>
        <translation>Block am Abspielkopf hinzufügen</translation>
    </message>
    <message>
        <source>Move it</source>
        <translation>Verschieben</translation>
    </message>
    <message>
        <source>Ctrl ←  Ctrl →</source>
        <translation>Strg ←  Strg →</translation>
    </message>
    <message>
        <source>Move its end</source>
        <translation>Sein Ende verschieben</translation>
    </message>
    <message>
        <source>Faster or closer, slower or wider</source>
        <translation>Schneller, näher; langsamer, weiter</translation>
    </message>
    <message>
        <source>Keyboard shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
</context>
<context>
    <name>SourcePicker</name>
    <message>
        <source>What to record</source>
        <translation>Was wird aufgenommen?</translation>
    </message>
    <message>
        <source>Close</source>
        <translation>Schließen</translation>
    </message>
    <message>
        <source>Displays</source>
        <translation>Bildschirme</translation>
    </message>
    <message>
        <source>No display can be seen. Log in to a desktop session and open this again.</source>
        <translation>Kein Bildschirm ist zu sehen. Melden Sie sich an einer Arbeitsumgebung an und öffnen Sie dies noch einmal.</translation>
    </message>
    <message>
        <source>Windows</source>
        <translation>Fenster</translation>
    </message>
    <message>
        <source>No window is open that could be recorded alone.</source>
        <translation>Kein Fenster ist offen, das allein aufgenommen werden könnte.</translation>
    </message>
</context>
<context>
    <name>SpeedPanel</name>
    <message>
        <source>Speed</source>
        <translation>Tempo</translation>
    </message>
    <message>
        <source>Selected block</source>
        <translation>Gewählter Block</translation>
    </message>
    <message>
        <source>How fast this stretch plays</source>
        <translation>Wie schnell dieses Stück spielt</translation>
    </message>
    <message>
        <source>Play %1 times as fast</source>
        <translation>Spielt %1-mal so schnell</translation>
    </message>
    <message>
        <source>Play as recorded</source>
        <translation>Spielen wie aufgenommen</translation>
    </message>
    <message>
        <source>Removes this block</source>
        <translation>Entfernt diesen Block</translation>
    </message>
    <message>
        <source>Waiting</source>
        <translation>Wartet</translation>
    </message>
    <message>
        <source>Skip waiting</source>
        <translation>Warten überspringen</translation>
    </message>
    <message>
        <source>Speeds through stretches in which you do nothing</source>
        <translation>Eilt durch Stücke, in denen Sie nichts tun</translation>
    </message>
    <message>
        <source>Fastest</source>
        <translation>Höchstens</translation>
    </message>
    <message>
        <source>Waits are never played faster than this</source>
        <translation>Warten wird nie schneller gespielt</translation>
    </message>
    <message>
        <source>You have changed the speeds yourself; they stay as they are.</source>
        <translation>Sie haben das Tempo selbst geändert; es bleibt, wie es ist.</translation>
    </message>
    <message>
        <source>Back to automatic speeds</source>
        <translation>Zurück zum automatischen Tempo</translation>
    </message>
    <message>
        <source>Forgets your own speeds and finds the waits anew</source>
        <translation>Vergisst Ihr eigenes Tempo und sucht die Wartezeiten neu</translation>
    </message>
    <message>
        <source>Drag on the speed lane to play a stretch faster or slower.</source>
        <translation>Ziehen Sie auf der Tempospur, um ein Stück schneller oder langsamer zu spielen.</translation>
    </message>
</context>
<context>
    <name>TimelineView</name>
    <message>
        <source>Drag here to play a stretch faster or slower</source>
        <translation>Hier ziehen, um ein Stück schneller oder langsamer zu spielen</translation>
    </message>
    <message>
        <source>Drag here to zoom in on a stretch</source>
        <translation>Hier ziehen, um auf ein Stück zu zoomen</translation>
    </message>
    <message>
        <source>Film: the arrow keys step through it, [ and ] select a range</source>
        <translation>Film: Die Pfeiltasten gehen Bild für Bild, [ und ] wählen einen Bereich</translation>
    </message>
    <message>
        <source>Speed lane, %1 blocks</source>
        <translation>Tempospur, %1 Blöcke</translation>
    </message>
    <message>
        <source>Zoom lane, %1 blocks</source>
        <translation>Zoomspur, %1 Blöcke</translation>
    </message>
    <message>
        <source>Scroll the timeline</source>
        <translation>Zeitleiste rollen</translation>
    </message>
</context>
<context>
    <name>TransportBar</name>
    <message>
        <source>1 wait skipped</source>
        <translation>1-mal Warten übersprungen</translation>
    </message>
    <message>
        <source>%1 waits skipped</source>
        <translation>%1-mal Warten übersprungen</translation>
    </message>
    <message>
        <source>1 cut</source>
        <translation>1 Schnitt</translation>
    </message>
    <message>
        <source>%1 cuts</source>
        <translation>%1 Schnitte</translation>
    </message>
    <message>
        <source>%1 · %2</source>
        <translation>%1 · %2</translation>
    </message>
    <message>
        <source>Nothing skipped</source>
        <translation>Nichts übersprungen</translation>
    </message>
    <message>
        <source>%1 → %2</source>
        <translation>%1 → %2</translation>
    </message>
    <message>
        <source>To the beginning</source>
        <translation>Zum Anfang</translation>
    </message>
    <message>
        <source>Home</source>
        <translation>Pos1</translation>
    </message>
    <message>
        <source>One frame back</source>
        <translation>Ein Bild zurück</translation>
    </message>
    <message>
        <source>Pause</source>
        <translation>Anhalten</translation>
    </message>
    <message>
        <source>Play</source>
        <translation>Abspielen</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Leertaste</translation>
    </message>
    <message>
        <source>One frame on</source>
        <translation>Ein Bild vor</translation>
    </message>
    <message>
        <source>To the end</source>
        <translation>Zum Ende</translation>
    </message>
    <message>
        <source>End</source>
        <translation>Ende</translation>
    </message>
    <message>
        <source>Split at the playhead</source>
        <translation>Am Abspielkopf teilen</translation>
    </message>
    <message>
        <source>Show more of the timeline</source>
        <translation>Mehr von der Zeitleiste zeigen</translation>
    </message>
    <message>
        <source>How large the timeline is shown</source>
        <translation>Wie groß die Zeitleiste gezeigt wird</translation>
    </message>
    <message>
        <source>Show less, larger</source>
        <translation>Weniger zeigen, größer</translation>
    </message>
    <message>
        <source>Show the whole recording</source>
        <translation>Die ganze Aufnahme zeigen</translation>
    </message>
</context>
<context>
    <name>Tray</name>
    <message>
        <source>Recording, %1</source>
        <translation>Aufnahme, %1</translation>
    </message>
    <message>
        <source>Stop and make the film</source>
        <translation>Beenden und den Film machen</translation>
    </message>
    <message>
        <source>Discard this recording…</source>
        <translation>Diese Aufnahme verwerfen …</translation>
    </message>
</context>
<context>
    <name>WorkingView</name>
    <message>
        <source>Finding the waits to skip and the moments to move in on.</source>
        <translation>Sucht das Warten, das übersprungen wird, und die Momente, auf die gezoomt wird.</translation>
    </message>
    <message>
        <source>This takes a moment.</source>
        <translation>Das dauert einen Moment.</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Back to your recordings; nothing is lost</source>
        <translation>Zurück zu Ihren Aufnahmen; nichts geht verloren</translation>
    </message>
</context>
<context>
    <name>ZoomPanel</name>
    <message>
        <source>Zoom</source>
        <translation>Zoom</translation>
    </message>
    <message>
        <source>Selected zoom</source>
        <translation>Gewählter Zoom</translation>
    </message>
    <message>
        <source>Level</source>
        <translation>Stufe</translation>
    </message>
    <message>
        <source>How far this zoom goes in</source>
        <translation>Wie weit dieser Zoom hineingeht</translation>
    </message>
    <message>
        <source>Done aiming</source>
        <translation>Fertig gezielt</translation>
    </message>
    <message>
        <source>Aim on the picture</source>
        <translation>Auf dem Bild zielen</translation>
    </message>
    <message>
        <source>Shows the whole screen; drag the frame to where the camera shall look</source>
        <translation>Zeigt den ganzen Bildschirm; ziehen Sie den Rahmen dorthin, wohin die Kamera sehen soll</translation>
    </message>
    <message>
        <source>Remove this zoom</source>
        <translation>Diesen Zoom entfernen</translation>
    </message>
    <message>
        <source>The camera does not go in here any more</source>
        <translation>Die Kamera geht hier nicht mehr näher heran</translation>
    </message>
    <message>
        <source>Camera</source>
        <translation>Kamera</translation>
    </message>
    <message>
        <source>Follow the action</source>
        <translation>Dem Geschehen folgen</translation>
    </message>
    <message>
        <source>Zooms in on clicks and on what changes, and back out by itself</source>
        <translation>Geht bei Klicks und Änderungen näher heran und von selbst wieder zurück</translation>
    </message>
    <message>
        <source>Closest zoom</source>
        <translation>Nächster Zoom</translation>
    </message>
    <message>
        <source>How far the camera goes in by itself</source>
        <translation>Wie nah die Kamera von selbst herangeht</translation>
    </message>
    <message>
        <source>Movement</source>
        <translation>Bewegung</translation>
    </message>
    <message>
        <source>Focused</source>
        <translation>Zügig</translation>
    </message>
    <message>
        <source>Quick and to the point</source>
        <translation>Schnell und auf den Punkt</translation>
    </message>
    <message>
        <source>Smooth</source>
        <translation>Sanft</translation>
    </message>
    <message>
        <source>Glides more slowly</source>
        <translation>Gleitet langsamer</translation>
    </message>
    <message>
        <source>You have changed the zooms yourself; they stay as they are.</source>
        <translation>Sie haben die Zooms selbst geändert; sie bleiben, wie sie sind.</translation>
    </message>
    <message>
        <source>Back to automatic zooms</source>
        <translation>Zurück zu automatischen Zooms</translation>
    </message>
    <message>
        <source>Forgets your own zooms and plans them anew</source>
        <translation>Vergisst Ihre eigenen Zooms und plant sie neu</translation>
    </message>
    <message>
        <source>Drag on the zoom lane to add a zoom, or select one to aim it.</source>
        <translation>Ziehen Sie auf der Zoomspur, um einen Zoom hinzuzufügen, oder wählen Sie einen, um zu zielen.</translation>
    </message>
</context>
</TS>
