<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>AlignCommands</name>
    <message>
        <source>No alignment can be started: %1</source>
        <translation>Es kann keine Ausrichtung begonnen werden: %1</translation>
    </message>
</context>
<context>
    <name>AlignHint</name>
    <message>
        <source>%1 (bright)</source>
        <translation>%1 (hell)</translation>
    </message>
    <message>
        <source>Align by hand: the right button turns, the left button moves %1.</source>
        <translation>Von Hand ausrichten: Die rechte Taste dreht, die linke verschiebt %1.</translation>
    </message>
    <message>
        <source>Align by hand: the right button turns, with the left button or Shift it moves %1.</source>
        <translation>Von Hand ausrichten: Die rechte Taste dreht, mit der linken oder mit Umschalt verschiebt sie %1.</translation>
    </message>
    <message>
        <source>Align by hand: the left button turns, the right button moves %1.</source>
        <translation>Von Hand ausrichten: Die linke Taste dreht, die rechte verschiebt %1.</translation>
    </message>
    <message>
        <source>Align by points: click points on what will move, %1</source>
        <translation>Mit Punkten ausrichten: Punkte auf dem anklicken, was bewegt wird, %1</translation>
    </message>
    <message>
        <source>: 1 point.</source>
        <translation>: 1 Punkt.</translation>
    </message>
    <message>
        <source>: %1 points.</source>
        <translation>: %1 Punkte.</translation>
    </message>
    <message>
        <source>Align by points: click the same points in the same order on %1: point %2 of %3.</source>
        <translation>Mit Punkten ausrichten: dieselben Punkte in derselben Reihenfolge auf %1 anklicken: Punkt %2 von %3.</translation>
    </message>
    <message>
        <source>the objects that stay</source>
        <translation>den festen Objekten</translation>
    </message>
    <message>
        <source> It ends the alignment.</source>
        <translation> Er beendet das Ausrichten.</translation>
    </message>
    <message>
        <source>Ctrl and drag: the clip plane (hide it to drag the view)</source>
        <translation>Strg und ziehen: die Schnittebene (ausblenden, um die Ansicht zu ziehen)</translation>
    </message>
    <message>
        <source>Ctrl and drag with the right button: the view</source>
        <translation>Strg und ziehen mit der rechten Taste: die Ansicht</translation>
    </message>
    <message>
        <source>Ctrl and drag: the view</source>
        <translation>Strg und ziehen: die Ansicht</translation>
    </message>
    <message>
        <source>Esc: finish</source>
        <translation>Esc: beenden</translation>
    </message>
    <message>
        <source>Space: continue on the objects that stay</source>
        <translation>Leertaste: weiter auf den festen Objekten</translation>
    </message>
    <message>
        <source>Delete: drop the last point</source>
        <translation>Entf: letzten Punkt verwerfen</translation>
    </message>
    <message>
        <source>Esc: end without moving</source>
        <translation>Esc: ohne Bewegung beenden</translation>
    </message>
    <message>
        <source>%1 and %2 more</source>
        <translation>%1 und %2 weitere</translation>
    </message>
</context>
<context>
    <name>AlignSummary</name>
    <message>
        <source>1 object</source>
        <translation>1 Objekt</translation>
    </message>
    <message>
        <source>%1 objects</source>
        <translation>%1 Objekte</translation>
    </message>
    <message>
        <source>Alignment by hand: nothing was moved.</source>
        <translation>Ausrichten von Hand: Nichts wurde bewegt.</translation>
    </message>
    <message>
        <source>Aligned by hand: %1 turned by %2°, its centre moved by %3 mm.</source>
        <translation>Von Hand ausgerichtet: %1, um %2° gedreht, Mittelpunkt um %3 mm verschoben.</translation>
    </message>
    <message>
        <source>Aligned by hand: %1 turned by %2°, the centre of the first moved by %3 mm.</source>
        <translation>Von Hand ausgerichtet: %1, um %2° gedreht, Mittelpunkt des ersten um %3 mm verschoben.</translation>
    </message>
    <message>
        <source>Alignment by points: ended, nothing was moved.</source>
        <translation>Ausrichten mit Punkten: beendet, nichts wurde bewegt.</translation>
    </message>
    <message>
        <source>No transform was found: %1. Nothing was moved.</source>
        <translation>Keine Transformation wurde gefunden: %1. Nichts wurde bewegt.</translation>
    </message>
    <message>
        <source>Aligned by one point and the surface normals there: %1 moved.</source>
        <translation>Mit einem Punkt und den Flächennormalen dort ausgerichtet: %1 bewegt.</translation>
    </message>
    <message>
        <source>Aligned by %1 points: %2 moved; residual %3 mm (RMS), at most %4 mm at pair %5.</source>
        <translation>Mit %1 Punkten ausgerichtet: %2 bewegt; Restfehler %3 mm (RMS), höchstens %4 mm bei Paar %5.</translation>
    </message>
    <message>
        <source> The points are on one line: they do not fix the turn about it.</source>
        <translation> Die Punkte liegen auf einer Geraden: Die Drehung um sie bleibt offen.</translation>
    </message>
    <message>
        <source>a point has no finite coordinates</source>
        <translation>ein Punkt hat keine endlichen Koordinaten</translation>
    </message>
    <message>
        <source>the points on the moving scans are all at one place</source>
        <translation>die Punkte auf den bewegten Scans liegen alle an einer Stelle</translation>
    </message>
    <message>
        <source>the points on the fixed scans are all at one place</source>
        <translation>die Punkte auf den festen Scans liegen alle an einer Stelle</translation>
    </message>
    <message>
        <source>There is no object to align.</source>
        <translation>Es gibt kein Objekt zum Ausrichten.</translation>
    </message>
    <message>
        <source>Nothing may move: check &quot;May move&quot; in the list of objects for each scan that the alignment moves.</source>
        <translation>Nichts ist beweglich: In der Objektliste bei jedem Scan, den das Ausrichten bewegt, „Beweglich“ ankreuzen.</translation>
    </message>
    <message>
        <source>Points need a second scan that stays: open it first.</source>
        <translation>Punkte brauchen einen zweiten, festen Scan: zuerst öffnen.</translation>
    </message>
    <message>
        <source>All objects may move: uncheck &quot;May move&quot; in the list of objects for at least one that stays.</source>
        <translation>Alle Objekte sind beweglich: In der Objektliste „Beweglich“ bei mindestens einem ausschalten, das fest bleibt.</translation>
    </message>
</context>
<context>
    <name>AlignToolBar</name>
    <message>
        <source>Alignment tools</source>
        <translation>Werkzeuge zum Ausrichten</translation>
    </message>
    <message>
        <source>Align by &amp;hand</source>
        <translation>Von &amp;Hand ausrichten</translation>
    </message>
    <message>
        <source>turn and move the objects that may move with the mouse</source>
        <translation>dreht und verschiebt mit der Maus die Objekte, die sich bewegen dürfen</translation>
    </message>
    <message>
        <source>Align by &amp;points</source>
        <translation>An &amp;Punkten ausrichten</translation>
    </message>
    <message>
        <source>pick points on the objects that may move, then the same points on the others</source>
        <translation>wählt Punkte auf den Objekten, die sich bewegen dürfen, dann dieselben Punkte auf den anderen</translation>
    </message>
    <message>
        <source>&amp;Continue on the objects that stay</source>
        <translation>&amp;Weiter auf den Objekten, die bleiben</translation>
    </message>
    <message>
        <source>ends the picks on the objects that move</source>
        <translation>beendet die Auswahl auf den Objekten, die sich bewegen</translation>
    </message>
    <message>
        <source>&amp;Drop the last point</source>
        <translation>&amp;Letzten Punkt verwerfen</translation>
    </message>
    <message>
        <source>removes the point that was picked last</source>
        <translation>entfernt den zuletzt gewählten Punkt</translation>
    </message>
    <message>
        <source>&amp;End without moving</source>
        <translation>&amp;Ohne Bewegung beenden</translation>
    </message>
    <message>
        <source>&amp;Finish the alignment</source>
        <translation>&amp;Ausrichtung abschließen</translation>
    </message>
    <message>
        <source>drops the points</source>
        <translation>verwirft die Punkte</translation>
    </message>
    <message>
        <source>the objects stay where they are</source>
        <translation>die Objekte bleiben, wo sie sind</translation>
    </message>
</context>
<context>
    <name>AnimationPanel</name>
    <message>
        <source>Turns the scene once around the Z axis. A click or a key in the view stops it.</source>
        <translation>Dreht die Szene einmal um die Z-Achse. Ein Klick oder eine Taste in der Ansicht hält sie an.</translation>
    </message>
    <message>
        <source> turns/s</source>
        <translation> Umdrehungen/s</translation>
    </message>
    <message>
        <source>Works after a click in the view.</source>
        <translation>Wirkt nach einem Klick in die Ansicht.</translation>
    </message>
    <message>
        <source>S&amp;peed:</source>
        <translation>&amp;Geschwindigkeit:</translation>
    </message>
    <message>
        <source>&amp;Stop</source>
        <translation>&amp;Anhalten</translation>
    </message>
    <message>
        <source>Start and stop w&amp;ith the space bar</source>
        <translation>Mit der &amp;Leertaste starten und anhalten</translation>
    </message>
    <message>
        <source>Turn o&amp;nce</source>
        <translation>&amp;Einmal drehen</translation>
    </message>
</context>
<context>
    <name>BackgroundDialog</name>
    <message>
        <source>Background colours</source>
        <translation>Hintergrundfarben</translation>
    </message>
    <message>
        <source>&amp;Top and bottom only</source>
        <translation>&amp;Nur oben und unten</translation>
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
        <source>Top</source>
        <translation>Oben</translation>
    </message>
    <message>
        <source>Bottom</source>
        <translation>Unten</translation>
    </message>
</context>
<context>
    <name>ClipPanel</name>
    <message>
        <source>mean of all points</source>
        <translation>Mittel aller Punkte</translation>
    </message>
    <message>
        <source>above a flat spot</source>
        <translation>über einer ebenen Stelle</translation>
    </message>
    <message>
        <source>below a curved spot</source>
        <translation>unter einer gewölbten Stelle</translation>
    </message>
    <message>
        <source>unknown rule</source>
        <translation>unbekannte Regel</translation>
    </message>
    <message>
        <source>The clip plane cuts away all objects: move it, flip it, or switch clipping off.</source>
        <translation>Die Schnittebene schneidet alle Objekte weg: verschieben Sie sie, drehen Sie sie um oder schalten Sie das Schneiden aus.</translation>
    </message>
    <message>
        <source>The clip plane cuts away all objects: flip it, place it at the data, or switch clipping off.</source>
        <translation>Die Schnittebene schneidet alle Objekte weg: drehen Sie sie um, setzen Sie sie an die Daten oder schalten Sie das Schneiden aus.</translation>
    </message>
    <message>
        <source>There are no objects: the clip plane is placed at the first ones that are opened.</source>
        <translation>Es gibt keine Objekte: die Schnittebene wird an die ersten gesetzt, die geöffnet werden.</translation>
    </message>
    <message>
        <source>The clip plane was not placed at the data: %1. Clipping is on, and the plane is where it was.</source>
        <translation>Die Schnittebene wurde nicht an die Daten gesetzt: %1. Das Schneiden ist eingeschaltet, die Ebene ist, wo sie war.</translation>
    </message>
    <message>
        <source>Not placed at the data: %1</source>
        <translation>Nicht an die Daten gesetzt: %1</translation>
    </message>
    <message>
        <source>No height was found in the data: the clip plane is at z = %1.</source>
        <translation>In den Daten wurde keine Höhe gefunden: die Schnittebene liegt bei z = %1.</translation>
    </message>
    <message>
        <source>Height found in the data: %1 (%2)</source>
        <translation>In den Daten gefundene Höhe: %1 (%2)</translation>
    </message>
    <message>
        <source>A normal of 0, 0, 0 has no direction: the plane stays as it is.</source>
        <translation>Eine Normale 0, 0, 0 hat keine Richtung: die Ebene bleibt, wie sie ist.</translation>
    </message>
    <message>
        <source>Clip the scene</source>
        <translation>Szene schneiden</translation>
    </message>
    <message>
        <source>Show the plane</source>
        <translation>Ebene zeigen</translation>
    </message>
    <message>
        <source>What lies on the side away from the normal is cut off. A plane that you have not moved is placed at the data; one that you have moved stays where it is, also at the next start.</source>
        <translation>Abgeschnitten wird, was auf der Seite gegen die Normale liegt. Eine Ebene, die Sie nicht bewegt haben, wird an die Daten gesetzt; eine bewegte bleibt, wo sie ist, auch beim nächsten Start.</translation>
    </message>
    <message>
        <source>A hidden plane clips as well, but mouse and keys do not move it.</source>
        <translation>Auch eine verborgene Ebene schneidet, aber Maus und Tasten bewegen sie nicht.</translation>
    </message>
    <message>
        <source>A point of the plane, scene units. The plane moves while you type.</source>
        <translation>Ein Punkt der Ebene, Einheiten der Szene. Die Ebene bewegt sich, während Sie tippen.</translation>
    </message>
    <message>
        <source>Objects are kept on the side that it points to. Any length: it is scaled to 1 when you leave the fields or press Return.</source>
        <translation>Objekte bleiben auf der Seite, zu der sie zeigt. Beliebige Länge: sie wird auf 1 gebracht, wenn Sie die Felder verlassen oder die Eingabetaste drücken.</translation>
    </message>
    <message>
        <source>Centre</source>
        <translation>Mittelpunkt</translation>
    </message>
    <message>
        <source>Normal, to the side that is kept</source>
        <translation>Normale, zur Seite, die bleibt</translation>
    </message>
    <message>
        <source>Centre %1</source>
        <translation>Mittelpunkt %1</translation>
    </message>
    <message>
        <source>Normal %1</source>
        <translation>Normale %1</translation>
    </message>
    <message>
        <source>Turns the plane about its centre: the side of +%1 is kept. Flip keeps the other one.</source>
        <translation>Dreht die Ebene um ihren Mittelpunkt: die Seite von +%1 bleibt. Umdrehen behält die andere.</translation>
    </message>
    <message>
        <source>Flip</source>
        <translation>Umdrehen</translation>
    </message>
    <message>
        <source>Keeps the other side of the plane.</source>
        <translation>Behält die andere Seite der Ebene.</translation>
    </message>
    <message>
        <source>Plane</source>
        <translation>Ebene</translation>
    </message>
    <message>
        <source>Colour of the clip plane</source>
        <translation>Farbe der Schnittebene</translation>
    </message>
    <message>
        <source>Handles</source>
        <translation>Griffe</translation>
    </message>
    <message>
        <source>Colour of the arrow and the balls</source>
        <translation>Farbe des Pfeils und der Kugeln</translation>
    </message>
    <message>
        <source>Outline</source>
        <translation>Umriss</translation>
    </message>
    <message>
        <source>Colour of the outline, and of the axis while the plane is tilted</source>
        <translation>Farbe des Umrisses und der Achse, während die Ebene gekippt wird</translation>
    </message>
    <message>
        <source>Place at data</source>
        <translation>An die Daten</translation>
    </message>
    <message>
        <source>Switches clipping on and puts a horizontal plane at a height found in the data.</source>
        <translation>Schaltet das Schneiden ein und setzt eine waagrechte Ebene auf eine Höhe, die in den Daten gefunden wird.</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>Switches clipping off; position and colours become those of a first start.</source>
        <translation>Schaltet das Schneiden aus; Lage und Farben werden die des ersten Starts.</translation>
    </message>
    <message>
        <source>In the view: drag the arrow to move the plane, a ball to tilt it; Ctrl with a rotating or moving drag turns or pushes it. Escape takes a handle&apos;s drag back. Up, Down: by 1. Ctrl + double click: place at data.</source>
        <translation>In der Ansicht: der Pfeil verschiebt die Ebene, eine Kugel kippt sie; Strg beim Drehen oder Verschieben der Ansicht dreht oder schiebt die Ebene. Esc nimmt das Ziehen eines Griffs zurück. Auf, Ab: um 1. Strg + Doppelklick: an die Daten.</translation>
    </message>
    <message>
        <source>While the plane is shown. Ctrl with a drag that rotates the view turns the plane, with one that moves the view pushes it along its normal.
Up and Down move it by 1 scene unit after a click in the view.
With delayed mouse buttons, Ctrl + middle click places the plane at the data as well; with flipped ones a double click does nothing.</source>
        <translation>Solange die Ebene gezeigt wird. Strg beim Drehen der Ansicht dreht die Ebene, beim Verschieben schiebt sie entlang ihrer Normalen.
Auf und Ab bewegen sie nach einem Klick in die Ansicht um 1 Einheit der Szene.
Bei verzögerten Maustasten setzt auch Strg + mittlere Taste die Ebene an die Daten; bei vertauschten bewirkt ein Doppelklick nichts.</translation>
    </message>
</context>
<context>
    <name>ColorButton</name>
    <message>
        <source>Colour</source>
        <translation>Farbe</translation>
    </message>
</context>
<context>
    <name>CutCommands</name>
    <message>
        <source>There is no object to cut.</source>
        <translation>Es gibt kein Objekt zum Schneiden.</translation>
    </message>
    <message>
        <source>No lasso can be drawn: %1</source>
        <translation>Es kann kein Lasso gezeichnet werden: %1</translation>
    </message>
    <message>
        <source>Nothing was cut.</source>
        <translation>Es wurde nichts geschnitten.</translation>
    </message>
    <message>
        <source>Cut: 1 point was removed.</source>
        <translation>Geschnitten: 1 Punkt wurde entfernt.</translation>
    </message>
    <message>
        <source>Cut: %1 points were removed.</source>
        <translation>Geschnitten: %1 Punkte wurden entfernt.</translation>
    </message>
    <message>
        <source>The cut was taken back.</source>
        <translation>Der Schnitt wurde zurückgenommen.</translation>
    </message>
    <message>
        <source>The cut was taken back; %1 can be taken back, too.</source>
        <translation>Der Schnitt wurde zurückgenommen; %1 können auch zurückgenommen werden.</translation>
    </message>
    <message>
        <source> Removed, because opened after the cut: %1.</source>
        <translation> Entfernt, weil nach dem Schnitt geöffnet: %1.</translation>
    </message>
    <message>
        <source> Restored, because deleted after the cut: %1.</source>
        <translation> Wiederhergestellt, weil nach dem Schnitt gelöscht: %1.</translation>
    </message>
    <message>
        <source> The file stays cut: %1.</source>
        <translation> Die Datei bleibt geschnitten: %1.</translation>
    </message>
    <message>
        <source> The files stay cut: %1.</source>
        <translation> Die Dateien bleiben geschnitten: %1.</translation>
    </message>
    <message>
        <source>1 file</source>
        <translation>1 Datei</translation>
    </message>
    <message>
        <source>%1 files</source>
        <translation>%1 Dateien</translation>
    </message>
    <message>
        <source>, which is also %1</source>
        <translation>, die auch %1 ist</translation>
    </message>
    <message>
        <source>%1 (clip plane only)</source>
        <translation>%1 (nur Schnittebene)</translation>
    </message>
    <message>
        <source>%1: only pcm files can hold cuts; export the object to keep them</source>
        <translation>%1: nur pcm-Dateien können Schnitte enthalten; exportieren Sie das Objekt, um sie zu behalten</translation>
    </message>
    <message>
        <source>There are cuts that are not saved:</source>
        <translation>Es gibt Schnitte, die nicht gespeichert sind:</translation>
    </message>
    <message>
        <source>Save rewrites %1:</source>
        <translation>Speichern schreibt %1 neu:</translation>
    </message>
    <message>
        <source>What is removed from a file cannot be restored: undo does not bring files back.</source>
        <translation>Was aus einer Datei entfernt ist, kann nicht wiederhergestellt werden: Rückgängig holt Dateien nicht zurück.</translation>
    </message>
    <message>
        <source>Nothing was saved: what has failed is not written again.</source>
        <translation>Nichts wurde gespeichert: was fehlgeschlagen ist, wird nicht noch einmal geschrieben.</translation>
    </message>
    <message>
        <source>Nothing was saved: no new cut concerns a pcm file.</source>
        <translation>Nichts wurde gespeichert: kein neuer Schnitt betrifft eine pcm-Datei.</translation>
    </message>
    <message>
        <source>a save has failed; undo the cut and draw it again</source>
        <translation>ein Speichern ist fehlgeschlagen; nehmen Sie den Schnitt zurück und zeichnen Sie ihn neu</translation>
    </message>
    <message>
        <source>a save of the clip plane has failed; move the plane a little, or open the file again</source>
        <translation>ein Speichern der Schnittebene ist fehlgeschlagen; bewegen Sie die Ebene ein wenig oder öffnen Sie die Datei neu</translation>
    </message>
    <message>
        <source>No cuts were saved.</source>
        <translation>Es wurden keine Schnitte gespeichert.</translation>
    </message>
    <message>
        <source>Save cuts</source>
        <translation>Schnitte speichern</translation>
    </message>
    <message>
        <source>No cuts are saved:</source>
        <translation>Es werden keine Schnitte gespeichert:</translation>
    </message>
    <message>
        <source>The file of an object that was moved would lose other points than the lasso enclosed.</source>
        <translation>Die Datei eines bewegten Objekts würde andere Punkte verlieren als die vom Lasso umschlossenen.</translation>
    </message>
    <message>
        <source>Save cuts? This rewrites %1:</source>
        <translation>Schnitte speichern? Das schreibt %1 neu:</translation>
    </message>
    <message>
        <source>The cuts were not saved: %1</source>
        <translation>Die Schnitte wurden nicht gespeichert: %1</translation>
    </message>
    <message>
        <source>The viewer keeps no cuts of a file that failed: undo these cuts and draw them again.</source>
        <translation>Die Ansicht behält keine Schnitte einer Datei, die fehlgeschlagen ist: nehmen Sie diese Schnitte zurück und zeichnen Sie sie neu.</translation>
    </message>
    <message>
        <source>A clip plane that failed is not written again: move it a little, or open the file again.</source>
        <translation>Eine Schnittebene, die fehlgeschlagen ist, wird nicht noch einmal geschrieben: bewegen Sie sie ein wenig oder öffnen Sie die Datei neu.</translation>
    </message>
    <message>
        <source>The viewer still has cuts that were not written, as memory was short: save them again.</source>
        <translation>Die Ansicht hat noch Schnitte, die wegen Speichermangels nicht geschrieben wurden: speichern Sie sie noch einmal.</translation>
    </message>
    <message>
        <source>Cuts saved: %1 written</source>
        <translation>Schnitte gespeichert: %1 geschrieben</translation>
    </message>
    <message>
        <source>, %1 skipped</source>
        <translation>, %1 übersprungen</translation>
    </message>
    <message>
        <source>, %1 failed</source>
        <translation>, %1 fehlgeschlagen</translation>
    </message>
    <message>
        <source>, %1 failed before</source>
        <translation>, %1 schon früher fehlgeschlagen</translation>
    </message>
    <message>
        <source>Take back the cut</source>
        <translation>Schnitt zurücknehmen</translation>
    </message>
    <message>
        <source>Taking this cut back also removes what was opened after it:</source>
        <translation>Wird dieser Schnitt zurückgenommen, entfällt auch, was danach geöffnet wurde:</translation>
    </message>
    <message>
        <source>Their files stay as they are and can be opened again.</source>
        <translation>Ihre Dateien bleiben, wie sie sind, und können wieder geöffnet werden.</translation>
    </message>
    <message>
        <source>Take back</source>
        <translation>Zurücknehmen</translation>
    </message>
</context>
<context>
    <name>CutToolBar</name>
    <message>
        <source>Polygon: cut &amp;outside</source>
        <translation>Vieleck: &amp;außen schneiden</translation>
    </message>
    <message>
        <source>removes what lies outside a polygon</source>
        <translation>entfernt, was außerhalb eines Vielecks liegt</translation>
    </message>
    <message>
        <source>Polygon: cut &amp;inside</source>
        <translation>Vieleck: &amp;innen schneiden</translation>
    </message>
    <message>
        <source>removes what lies inside a polygon, also what is hidden there</source>
        <translation>entfernt, was in einem Vieleck liegt, auch was dort verdeckt ist</translation>
    </message>
    <message>
        <source>Polygon: cut what is &amp;visible inside</source>
        <translation>Vieleck: &amp;Sichtbares innen schneiden</translation>
    </message>
    <message>
        <source>removes only the front surface inside a polygon</source>
        <translation>entfernt nur die vordere Fläche in einem Vieleck</translation>
    </message>
    <message>
        <source>Freehand: cut o&amp;utside</source>
        <translation>Freihand: a&amp;ußen schneiden</translation>
    </message>
    <message>
        <source>removes what lies outside a line that you draw</source>
        <translation>entfernt, was außerhalb einer Linie liegt, die Sie zeichnen</translation>
    </message>
    <message>
        <source>Freehand: cut i&amp;nside</source>
        <translation>Freihand: i&amp;nnen schneiden</translation>
    </message>
    <message>
        <source>removes what lies inside a line that you draw, also what is hidden there</source>
        <translation>entfernt, was in einer Linie liegt, die Sie zeichnen, auch was dort verdeckt ist</translation>
    </message>
    <message>
        <source>Freehand: cut what is vi&amp;sible inside</source>
        <translation>Freihand: Sich&amp;tbares innen schneiden</translation>
    </message>
    <message>
        <source>removes only the front surface inside a line that you draw</source>
        <translation>entfernt nur die vordere Fläche in einer Linie, die Sie zeichnen</translation>
    </message>
    <message>
        <source>Un&amp;do deletion (%1)</source>
        <translation>&amp;Löschen rückgängig (%1)</translation>
    </message>
    <message>
        <source>Un&amp;do cut (%1)</source>
        <translation>Schnitt &amp;rückgängig (%1)</translation>
    </message>
    <message>
        <source>Cut tools</source>
        <translation>Werkzeuge zum Schneiden</translation>
    </message>
    <message>
        <source>Freehand tint:</source>
        <translation>Freihand-Tönung:</translation>
    </message>
    <message>
        <source>Removed</source>
        <translation>Entfernt</translation>
    </message>
    <message>
        <source>what the cut will remove</source>
        <translation>was der Schnitt entfernt</translation>
    </message>
    <message>
        <source>Kept</source>
        <translation>Bleibt</translation>
    </message>
    <message>
        <source>what the cut will keep</source>
        <translation>was der Schnitt behält</translation>
    </message>
    <message>
        <source>&amp;Cancel the lasso</source>
        <translation>Lasso abbre&amp;chen</translation>
    </message>
    <message>
        <source>ends the lasso without a cut</source>
        <translation>beendet das Lasso ohne Schnitt</translation>
    </message>
    <message>
        <source>takes the last cut or the last deletion back; files that were saved stay cut</source>
        <translation>nimmt den letzten Schnitt oder das letzte Löschen zurück; gespeicherte Dateien bleiben geschnitten</translation>
    </message>
    <message>
        <source>writes all cuts and the clip plane into the pcm files of the objects</source>
        <translation>schreibt alle Schnitte und die Schnittebene in die pcm-Dateien der Objekte</translation>
    </message>
    <message>
        <source>Freehand lasso: colour of %1. From the next lasso on</source>
        <translation>Freihand-Lasso: Farbe dessen, %1. Ab dem nächsten Lasso</translation>
    </message>
    <message>
        <source>Freehand lasso: opacity of %1</source>
        <translation>Freihand-Lasso: Deckkraft dessen, %1</translation>
    </message>
    <message>
        <source>Freehand lasso: opacity of %1, from 0 invisible to 100 opaque. From the next lasso on</source>
        <translation>Freihand-Lasso: Deckkraft dessen, %1, von 0 unsichtbar bis 100 deckend. Ab dem nächsten Lasso</translation>
    </message>
    <message>
        <source>Save c&amp;uts...</source>
        <translation>Sc&amp;hnitte speichern...</translation>
    </message>
    <message>
        <source>Un&amp;do</source>
        <translation>&amp;Rückgängig</translation>
    </message>
</context>
<context>
    <name>DecorationPanel</name>
    <message>
        <source>&amp;Axes</source>
        <translation>&amp;Achsen</translation>
    </message>
    <message>
        <source>&amp;Lighting arrow</source>
        <translation>&amp;Beleuchtungspfeil</translation>
    </message>
    <message>
        <source>&amp;Centre cross</source>
        <translation>&amp;Mittelkreuz</translation>
    </message>
    <message>
        <source>While the axes are shown, a double click in the view returns to the view from +Z.</source>
        <translation>Solange die Achsen gezeigt werden, kehrt ein Doppelklick in der Ansicht zur Ansicht von +Z zurück.</translation>
    </message>
    <message>
        <source>Colour of the lighting arrow</source>
        <translation>Farbe des Beleuchtungspfeils</translation>
    </message>
    <message>
        <source>The same as Tools, Picking, Centre cross: no point is picked while the cross is shown.</source>
        <translation>Dasselbe wie Werkzeuge, Punkte wählen, Mittelkreuz: kein Punkt wird gewählt, solange das Kreuz gezeigt wird.</translation>
    </message>
    <message>
        <source>Colour of the centre cross</source>
        <translation>Farbe des Mittelkreuzes</translation>
    </message>
    <message>
        <source>Degrees counterclockwise; at 0 the arrow is at the top.</source>
        <translation>Grad gegen den Uhrzeigersinn; bei 0 ist der Pfeil oben.</translation>
    </message>
    <message>
        <source>Arrow angle</source>
        <translation>Winkel des Pfeils</translation>
    </message>
    <message>
        <source>Arrow colour:</source>
        <translation>Farbe des Pfeils:</translation>
    </message>
    <message>
        <source>Arrow angle:</source>
        <translation>Winkel des Pfeils:</translation>
    </message>
    <message>
        <source>Cross colour:</source>
        <translation>Farbe des Kreuzes:</translation>
    </message>
    <message>
        <source>&amp;Background colours...</source>
        <translation>&amp;Hintergrundfarben...</translation>
    </message>
</context>
<context>
    <name>EventPane</name>
    <message>
        <source>With changes of the view</source>
        <translation>Mit Änderungen der Ansicht</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
</context>
<context>
    <name>ExportDialog</name>
    <message numerus="yes">
        <source>Export %n object(s)</source>
        <translation>
            <numerusform>%n Objekt exportieren</numerusform>
            <numerusform>%n Objekte exportieren</numerusform>
        </translation>
    </message>
    <message>
        <source>&amp;Browse...</source>
        <translation>&amp;Durchsuchen...</translation>
    </message>
    <message>
        <source>&amp;Export</source>
        <translation>&amp;Exportieren</translation>
    </message>
    <message>
        <source>&amp;Folder:</source>
        <translation>&amp;Ordner:</translation>
    </message>
    <message>
        <source>F&amp;ormat:</source>
        <translation>&amp;Format:</translation>
    </message>
    <message>
        <source>Files:</source>
        <translation>Dateien:</translation>
    </message>
    <message>
        <source>Folder for the files</source>
        <translation>Ordner für die Dateien</translation>
    </message>
    <message numerus="yes">
        <source>and %n more</source>
        <translation>
            <numerusform>und %n weiteres</numerusform>
            <numerusform>und %n weitere</numerusform>
        </translation>
    </message>
    <message>
        <source>There is no such folder.</source>
        <translation>Diesen Ordner gibt es nicht.</translation>
    </message>
</context>
<context>
    <name>ImportProgress</name>
    <message>
        <source>Progress of the import</source>
        <translation>Fortschritt des Imports</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Abbrechen</translation>
    </message>
    <message>
        <source>Cancel the import (Esc)</source>
        <translation>Import abbrechen (Esc)</translation>
    </message>
</context>
<context>
    <name>ImportStatus</name>
    <message>
        <source>%1 of %2 files opened</source>
        <translation>%1 von %2 Dateien geöffnet</translation>
    </message>
    <message>
        <source>%1; %2: %3</source>
        <translation>%1; %2: %3</translation>
    </message>
    <message numerus="yes">
        <source>%1; %n file(s): %2</source>
        <translation>
            <numerusform>%1; %n Datei: %2</numerusform>
            <numerusform>%1; %n Dateien: %2</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1; messages about %n file(s)</source>
        <translation>
            <numerusform>%1; Meldungen zu %n Datei</numerusform>
            <numerusform>%1; Meldungen zu %n Dateien</numerusform>
        </translation>
    </message>
</context>
<context>
    <name>LogoPanel</name>
    <message>
        <source>Top left</source>
        <translation>Oben links</translation>
    </message>
    <message>
        <source>Top</source>
        <translation>Oben</translation>
    </message>
    <message>
        <source>Top right</source>
        <translation>Oben rechts</translation>
    </message>
    <message>
        <source>Left</source>
        <translation>Links</translation>
    </message>
    <message>
        <source>Centre</source>
        <translation>Mittelpunkt</translation>
    </message>
    <message>
        <source>Right</source>
        <translation>Rechts</translation>
    </message>
    <message>
        <source>Bottom left</source>
        <translation>Unten links</translation>
    </message>
    <message>
        <source>Bottom</source>
        <translation>Unten</translation>
    </message>
    <message>
        <source>Bottom right</source>
        <translation>Unten rechts</translation>
    </message>
    <message>
        <source>no image</source>
        <translation>kein Bild</translation>
    </message>
    <message>
        <source>Sho&amp;w</source>
        <translation>&amp;Zeigen</translation>
    </message>
    <message>
        <source>&amp;Open image...</source>
        <translation>Bild &amp;öffnen...</translation>
    </message>
    <message>
        <source> px</source>
        <translation> px</translation>
    </message>
    <message>
        <source>Place:</source>
        <translation>Platz:</translation>
    </message>
    <message>
        <source>%1: no logo: %2</source>
        <translation>%1: kein Logo: %2</translation>
    </message>
    <message>
        <source>%1, %2 x %3</source>
        <translation>%1, %2 x %3</translation>
    </message>
    <message>
        <source>Open image</source>
        <translation>Bild öffnen</translation>
    </message>
    <message>
        <source>Mar&amp;gin:</source>
        <translation>&amp;Rand:</translation>
    </message>
</context>
<context>
    <name>MainToolBar</name>
    <message>
        <source>Main tools</source>
        <translation>Hauptwerkzeuge</translation>
    </message>
    <message>
        <source>Render mode: %1</source>
        <translation>Darstellungsart: %1</translation>
    </message>
    <message>
        <source>Render mode</source>
        <translation>Darstellungsart</translation>
    </message>
</context>
<context>
    <name>MainWindow</name>
    <message>
        <source>object</source>
        <translation>Objekt</translation>
    </message>
    <message>
        <source>There is no viewer: %1</source>
        <translation>Es gibt keine Ansicht: %1</translation>
    </message>
    <message>
        <source>%1: screenshot of %2 x %3 pixels</source>
        <translation>%1: Bildschirmfoto mit %2 x %3 Pixeln</translation>
    </message>
    <message>
        <source>%1: not written: %2</source>
        <translation>%1: nicht geschrieben: %2</translation>
    </message>
    <message>
        <source>Close the window</source>
        <translation>Fenster schließen</translation>
    </message>
    <message>
        <source>The mouse moves nothing: switch &quot;Mouse moves the scene&quot; on in the View menu.</source>
        <translation>Die Maus bewegt nichts: schalten Sie im Menü Ansicht „Maus bewegt die Szene“ ein.</translation>
    </message>
    <message>
        <source>%1 is hidden and would move unseen: show it, or uncheck &quot;May move&quot;.</source>
        <translation>%1 ist verborgen und würde sich ungesehen bewegen: zeigen Sie es, oder entfernen Sie den Haken bei „Beweglich“.</translation>
    </message>
    <message>
        <source>alignment by hand</source>
        <translation>Ausrichtung von Hand</translation>
    </message>
    <message>
        <source>alignment by points</source>
        <translation>Ausrichtung an Punkten</translation>
    </message>
    <message>
        <source>Space continues after the first point: click one on the objects that move.</source>
        <translation>Die Leertaste führt erst nach dem ersten Punkt weiter: klicken Sie einen auf den Objekten, die sich bewegen.</translation>
    </message>
    <message>
        <source>Clipped by the clip plane</source>
        <translation>Von der Schnittebene geschnitten</translation>
    </message>
    <message>
        <source>&amp;Clip the scene</source>
        <translation>&amp;Szene schneiden</translation>
    </message>
    <message>
        <source>&amp;Show the plane</source>
        <translation>&amp;Ebene zeigen</translation>
    </message>
    <message>
        <source>Place at &amp;data</source>
        <translation>An die &amp;Daten setzen</translation>
    </message>
    <message>
        <source>Normal along +&amp;X</source>
        <translation>Normale entlang +&amp;X</translation>
    </message>
    <message>
        <source>Normal along +&amp;Y</source>
        <translation>Normale entlang +&amp;Y</translation>
    </message>
    <message>
        <source>Normal along +&amp;Z</source>
        <translation>Normale entlang +&amp;Z</translation>
    </message>
    <message>
        <source>&amp;Flip</source>
        <translation>&amp;Umdrehen</translation>
    </message>
    <message>
        <source>The viewer could not finish what was asked for: %1</source>
        <translation>Die Ansicht konnte nicht beenden, was verlangt wurde: %1</translation>
    </message>
    <message>
        <source>click to add, right click to cut, Esc to cancel</source>
        <translation>Klick setzt einen Punkt, Rechtsklick schneidet, Esc bricht ab</translation>
    </message>
    <message>
        <source>%1 deleted</source>
        <translation>%1 gelöscht</translation>
    </message>
    <message numerus="yes">
        <source>%Ln object(s) deleted</source>
        <translation>
            <numerusform>%Ln Objekt gelöscht</numerusform>
            <numerusform>%Ln Objekte gelöscht</numerusform>
        </translation>
    </message>
    <message>
        <source>%1. Undo restores what was deleted, until the next import or save.</source>
        <translation>%1. Rückgängig stellt Gelöschtes wieder her, bis zum nächsten Import oder Speichern.</translation>
    </message>
    <message>
        <source>Deleted with cuts that are not saved</source>
        <translation>Gelöscht mit Schnitten, die nicht gespeichert sind</translation>
    </message>
    <message>
        <source>Deleted with transforms that are not saved</source>
        <translation>Gelöscht mit Transformationen, die nicht gespeichert sind</translation>
    </message>
    <message>
        <source>Deleted with cuts and transforms that are not saved</source>
        <translation>Gelöscht mit Schnitten und Transformationen, die nicht gespeichert sind</translation>
    </message>
    <message numerus="yes">
        <source>%Ln object(s) restored</source>
        <translation>
            <numerusform>%Ln Objekt wiederhergestellt</numerusform>
            <numerusform>%Ln Objekte wiederhergestellt</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln object(s)</source>
        <translation>
            <numerusform>%Ln Objekt</numerusform>
            <numerusform>%Ln Objekte</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln set(s) of free points</source>
        <translation>
            <numerusform>%Ln Satz freier Punkte</numerusform>
            <numerusform>%Ln Sätze freier Punkte</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln line(s)</source>
        <translation>
            <numerusform>%Ln Linie</numerusform>
            <numerusform>%Ln Linien</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln picked point(s)</source>
        <translation>
            <numerusform>%Ln gewählter Punkt</numerusform>
            <numerusform>%Ln gewählte Punkte</numerusform>
        </translation>
    </message>
    <message>
        <source>%1: cuts</source>
        <translation>%1: Schnitte</translation>
    </message>
    <message>
        <source>%1: transform</source>
        <translation>%1: Transformation</translation>
    </message>
    <message>
        <source>Clear the scene</source>
        <translation>Szene leeren</translation>
    </message>
    <message>
        <source>Remove all of this? There is no undo.</source>
        <translation>All das entfernen? Es gibt kein Rückgängig.</translation>
    </message>
    <message>
        <source>Needles stay. Files stay as they are.</source>
        <translation>Nadeln bleiben. Dateien bleiben, wie sie sind.</translation>
    </message>
    <message>
        <source>Not saved:</source>
        <translation>Nicht gespeichert:</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Nothing exported: select an object in the list first.</source>
        <translation>Nichts exportiert: wählen Sie zuerst ein Objekt in der Liste.</translation>
    </message>
    <message>
        <source>Nothing exported: there is no object.</source>
        <translation>Nichts exportiert: es gibt kein Objekt.</translation>
    </message>
    <message>
        <source>Export %1</source>
        <translation>%1 exportieren</translation>
    </message>
    <message>
        <source>Export</source>
        <translation>Exportieren</translation>
    </message>
    <message>
        <source>These files exist already. Overwrite them?</source>
        <translation>Diese Dateien gibt es schon. Überschreiben?</translation>
    </message>
    <message>
        <source>Overwrite</source>
        <translation>Überschreiben</translation>
    </message>
    <message>
        <source>%1 of %2 objects exported</source>
        <translation>%1 von %2 Objekten exportiert</translation>
    </message>
    <message>
        <source>%1: export of %2</source>
        <translation>%1: Export von %2</translation>
    </message>
    <message>
        <source>%1: not opened, there is no viewer</source>
        <translation>%1: nicht geöffnet, es gibt keine Ansicht</translation>
    </message>
    <message>
        <source>%1: not opened, cancelled</source>
        <translation>%1: nicht geöffnet, abgebrochen</translation>
    </message>
    <message>
        <source>Preparing the picture: %1 of %2 objects</source>
        <translation>Das Bild wird vorbereitet: %1 von %2 Objekten</translation>
    </message>
    <message>
        <source>Reading %1 (%2 of %3)</source>
        <translation>%1 wird gelesen (%2 von %3)</translation>
    </message>
    <message>
        <source>Cancelled; the files in progress are being finished.</source>
        <translation>Abgebrochen; die begonnenen Dateien werden noch fertig gelesen.</translation>
    </message>
    <message>
        <source>Cancelled: %1 of %2 new objects are shown; the check marks in the list show the others</source>
        <translation>Abgebrochen: %1 von %2 neuen Objekten werden gezeigt; die Haken in der Liste zeigen die anderen</translation>
    </message>
    <message>
        <source>%1: nothing added: %2</source>
        <translation>%1: nichts hinzugefügt: %2</translation>
    </message>
    <message>
        <source>Import cancelled: %1 of %2 files kept; %3 were not opened</source>
        <translation>Import abgebrochen: %1 von %2 Dateien bleiben; %3 wurden nicht geöffnet</translation>
    </message>
    <message>
        <source>About the &amp;horizontal axis</source>
        <translation>Um die &amp;waagrechte Achse</translation>
    </message>
    <message>
        <source>About the &amp;vertical axis</source>
        <translation>Um die &amp;senkrechte Achse</translation>
    </message>
    <message>
        <source>About the viewing &amp;axis</source>
        <translation>Um die &amp;Blickachse</translation>
    </message>
    <message>
        <source>&amp;Free</source>
        <translation>&amp;Frei</translation>
    </message>
    <message>
        <source>&amp;Normal: left turns, right moves</source>
        <translation>&amp;Normal: links dreht, rechts verschiebt</translation>
    </message>
    <message>
        <source>&amp;Flipped: left moves, right turns</source>
        <translation>&amp;Vertauscht: links verschiebt, rechts dreht</translation>
    </message>
    <message>
        <source>&amp;Delayed: right turns, both move, left picks</source>
        <translation>V&amp;erzögert: rechts dreht, beide verschieben, links wählt</translation>
    </message>
    <message>
        <source>&amp;Off</source>
        <translation>&amp;Aus</translation>
    </message>
    <message>
        <source>&amp;Points on objects</source>
        <translation>&amp;Punkte auf Objekten</translation>
    </message>
    <message>
        <source>&amp;Centre cross</source>
        <translation>&amp;Mittelkreuz</translation>
    </message>
    <message>
        <source>R&amp;otation</source>
        <translation>&amp;Drehung</translation>
    </message>
    <message>
        <source>Mouse b&amp;uttons</source>
        <translation>Ma&amp;ustasten</translation>
    </message>
    <message>
        <source>&amp;Mouse moves the scene</source>
        <translation>&amp;Maus bewegt die Szene</translation>
    </message>
    <message>
        <source>Import free &amp;points...</source>
        <translation>Freie &amp;Punkte importieren...</translation>
    </message>
    <message>
        <source>Import points from %1 files, and the vertices of ply files</source>
        <translation>Punkte aus %1-Dateien und die Ecken von ply-Dateien importieren</translation>
    </message>
    <message>
        <source>Import &amp;lines...</source>
        <translation>&amp;Linien importieren...</translation>
    </message>
    <message>
        <source>Import polylines from text files</source>
        <translation>Linienzüge aus Textdateien importieren</translation>
    </message>
    <message>
        <source>Import free points</source>
        <translation>Freie Punkte importieren</translation>
    </message>
    <message>
        <source>Points (%1 *.ply);;All files (*)</source>
        <translation>Punkte (%1 *.ply);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Reading %1</source>
        <translation>%1 wird gelesen</translation>
    </message>
    <message>
        <source>Adding %1 to the scene</source>
        <translation>%1 wird zur Szene hinzugefügt</translation>
    </message>
    <message>
        <source>Preparing the picture</source>
        <translation>Das Bild wird vorbereitet</translation>
    </message>
    <message>
        <source>%1 of %2 files opened</source>
        <translation>%1 von %2 Dateien geöffnet</translation>
    </message>
    <message>
        <source>Import lines</source>
        <translation>Linien importieren</translation>
    </message>
    <message>
        <source>All files (*)</source>
        <translation>Alle Dateien (*)</translation>
    </message>
    <message>
        <source>The view was not fitted to the lines: %1</source>
        <translation>Die Ansicht wurde nicht an die Linien angepasst: %1</translation>
    </message>
    <message>
        <source>From +Y, Z up</source>
        <translation>Von +Y, Z oben</translation>
    </message>
    <message>
        <source>From -Y, Z up</source>
        <translation>Von -Y, Z oben</translation>
    </message>
    <message>
        <source>From +X, Z up</source>
        <translation>Von +X, Z oben</translation>
    </message>
    <message>
        <source>From -X, Z up</source>
        <translation>Von -X, Z oben</translation>
    </message>
    <message>
        <source>From +Z, Y up</source>
        <translation>Von +Z, Y oben</translation>
    </message>
    <message>
        <source>From -Z, Y down</source>
        <translation>Von -Z, Y unten</translation>
    </message>
    <message>
        <source>Oblique, Z up</source>
        <translation>Schräg, Z oben</translation>
    </message>
    <message>
        <source>From -Z, Y up</source>
        <translation>Von -Z, Y oben</translation>
    </message>
    <message>
        <source>Points</source>
        <translation>Punkte</translation>
    </message>
    <message>
        <source>Wireframe</source>
        <translation>Drahtgitter</translation>
    </message>
    <message>
        <source>Flat shaded</source>
        <translation>Flach schattiert</translation>
    </message>
    <message>
        <source>Gouraud shaded</source>
        <translation>Gouraud-schattiert</translation>
    </message>
    <message>
        <source>Bounding boxes</source>
        <translation>Hüllquader</translation>
    </message>
    <message>
        <source>Lit per pixel</source>
        <translation>Je Pixel beleuchtet</translation>
    </message>
    <message>
        <source>Background only</source>
        <translation>Nur Hintergrund</translation>
    </message>
    <message>
        <source>Shadow map</source>
        <translation>Schattenkarte</translation>
    </message>
    <message>
        <source>The whole scene, 2048 x 2048 pixels, shaded, without axes, cross, arrow and logo</source>
        <translation>Die ganze Szene, 2048 x 2048 Pixel, schattiert, ohne Achsen, Kreuz, Pfeil und Logo</translation>
    </message>
    <message>
        <source>As the &amp;desktop</source>
        <translation>Wie der &amp;Desktop</translation>
    </message>
    <message>
        <source>&amp;Light</source>
        <translation>&amp;Hell</translation>
    </message>
    <message>
        <source>D&amp;ark</source>
        <translation>D&amp;unkel</translation>
    </message>
    <message>
        <source>&amp;File</source>
        <translation>&amp;Datei</translation>
    </message>
    <message>
        <source>&amp;Open...</source>
        <translation>&amp;Öffnen...</translation>
    </message>
    <message>
        <source>scans and meshes</source>
        <translation>Scans und Netze</translation>
    </message>
    <message>
        <source>Open &amp;recent</source>
        <translation>&amp;Zuletzt geöffnet</translation>
    </message>
    <message>
        <source>Scan &amp;import settings...</source>
        <translation>Scan-&amp;Einstellungen...</translation>
    </message>
    <message>
        <source>&amp;Export selected object...</source>
        <translation>Ausgewähltes Objekt e&amp;xportieren...</translation>
    </message>
    <message>
        <source>&amp;Clear</source>
        <translation>Szene lee&amp;ren</translation>
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
        <source>&amp;View</source>
        <translation>&amp;Ansicht</translation>
    </message>
    <message>
        <source>all that is shown, as large as possible</source>
        <translation>alles, was gezeigt wird, so groß wie möglich</translation>
    </message>
    <message>
        <source>&amp;Background colours...</source>
        <translation>&amp;Hintergrundfarben...</translation>
    </message>
    <message>
        <source>&amp;Appearance</source>
        <translation>Er&amp;scheinungsbild</translation>
    </message>
    <message>
        <source>Pa&amp;nes and tool bars</source>
        <translation>Bere&amp;iche und Werkzeugleisten</translation>
    </message>
    <message>
        <source>R&amp;eset settings...</source>
        <translation>Einstellungen zu&amp;rücksetzen...</translation>
    </message>
    <message>
        <source>&amp;Render</source>
        <translation>Darste&amp;llung</translation>
    </message>
    <message>
        <source>&amp;Shadows</source>
        <translation>&amp;Schatten</translation>
    </message>
    <message>
        <source>&amp;Point size...</source>
        <translation>&amp;Punktgröße...</translation>
    </message>
    <message>
        <source>Smooth &amp;edges</source>
        <translation>&amp;Glatte Kanten</translation>
    </message>
    <message>
        <source>Re&amp;duced while moving</source>
        <translation>&amp;Reduziert beim Bewegen</translation>
    </message>
    <message>
        <source>Proper&amp;ties...</source>
        <translation>&amp;Eigenschaften...</translation>
    </message>
    <message>
        <source>&amp;Tools</source>
        <translation>&amp;Werkzeuge</translation>
    </message>
    <message>
        <source>&amp;Cut</source>
        <translation>&amp;Schneiden</translation>
    </message>
    <message>
        <source>&amp;Align</source>
        <translation>&amp;Ausrichten</translation>
    </message>
    <message>
        <source>Clip &amp;plane</source>
        <translation>Schnitt&amp;ebene</translation>
    </message>
    <message>
        <source>Pic&amp;king</source>
        <translation>Punkte &amp;wählen</translation>
    </message>
    <message>
        <source>Open scans and meshes</source>
        <translation>Scans und Netze öffnen</translation>
    </message>
    <message>
        <source>Scans and meshes (%1);;Scans (%2);;Meshes (%3);;All files (*)</source>
        <translation>Scans und Netze (%1);;Scans (%2);;Netze (%3);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>Save screenshot</source>
        <translation>Bildschirmfoto speichern</translation>
    </message>
    <message>
        <source>PNG pictures (*.png);;All files (*)</source>
        <translation>PNG-Bilder (*.png);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>screenshot.png</source>
        <translation>bildschirmfoto.png</translation>
    </message>
    <message>
        <source>Pixels per point of an object;
half the side of a free point in scene units:</source>
        <translation>Pixel je Punkt eines Objekts;
halbe Seite eines freien Punkts in Einheiten der Szene:</translation>
    </message>
    <message>
        <source>Point size</source>
        <translation>Punktgröße</translation>
    </message>
    <message>
        <source>Needles (*.json);;All files (*)</source>
        <translation>Nadeln (*.json);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>and %1 more</source>
        <translation>und %1 weitere</translation>
    </message>
    <message>
        <source>1 needle</source>
        <translation>1 Nadel</translation>
    </message>
    <message>
        <source>%1 needles</source>
        <translation>%1 Nadeln</translation>
    </message>
    <message>
        <source>A double click creates needles now and picks no points.</source>
        <translation>Ein Doppelklick erzeugt jetzt Nadeln und wählt keine Punkte.</translation>
    </message>
    <message>
        <source>There are needles that are not saved. Save them?</source>
        <translation>Es gibt Nadeln, die nicht gespeichert sind. Speichern?</translation>
    </message>
    <message>
        <source>Save needles</source>
        <translation>Nadeln speichern</translation>
    </message>
    <message>
        <source>needles.json</source>
        <translation>nadeln.json</translation>
    </message>
    <message>
        <source>Load needles</source>
        <translation>Nadeln laden</translation>
    </message>
    <message>
        <source>%1: %2 saved</source>
        <translation>%1: %2 gespeichert</translation>
    </message>
    <message>
        <source>%1: no needles added: %2</source>
        <translation>%1: keine Nadeln hinzugefügt: %2</translation>
    </message>
    <message>
        <source>%1: %2 added</source>
        <translation>%1: %2 hinzugefügt</translation>
    </message>
    <message>
        <source>; not added, because there are needles with their numbers: %1</source>
        <translation>; nicht hinzugefügt, weil es Nadeln mit ihren Nummern gibt: %1</translation>
    </message>
    <message>
        <source>&amp;Show</source>
        <translation>&amp;Zeigen</translation>
    </message>
    <message>
        <source>Show the selected objects</source>
        <translation>Die ausgewählten Objekte zeigen</translation>
    </message>
    <message>
        <source>&amp;Hide</source>
        <translation>&amp;Verbergen</translation>
    </message>
    <message>
        <source>Hide the selected objects</source>
        <translation>Die ausgewählten Objekte verbergen</translation>
    </message>
    <message>
        <source>Show on&amp;ly these</source>
        <translation>&amp;Nur diese zeigen</translation>
    </message>
    <message>
        <source>Hide all objects but the selected ones</source>
        <translation>Alle Objekte außer den ausgewählten verbergen</translation>
    </message>
    <message>
        <source>&amp;Centre in the view</source>
        <translation>In der Ansicht zentr&amp;ieren</translation>
    </message>
    <message>
        <source>Move the view to the object of the current row</source>
        <translation>Die Ansicht zum Objekt der aktuellen Zeile bewegen</translation>
    </message>
    <message>
        <source>&amp;Invert visibility</source>
        <translation>Sichtbarkeit &amp;umkehren</translation>
    </message>
    <message>
        <source>Show what is hidden and hide what is shown</source>
        <translation>Zeigen, was verborgen ist, und verbergen, was gezeigt wird</translation>
    </message>
    <message>
        <source>Show &amp;all</source>
        <translation>&amp;Alle zeigen</translation>
    </message>
    <message>
        <source>Show all objects</source>
        <translation>Alle Objekte zeigen</translation>
    </message>
    <message>
        <source>Colour &amp;by object</source>
        <translation>&amp;Farbe je Objekt</translation>
    </message>
    <message>
        <source>Take the colours of the palette back; colours that you have chosen stay</source>
        <translation>Nimmt die Farben der Palette zurück; Farben, die Sie gewählt haben, bleiben</translation>
    </message>
    <message>
        <source>Sort the rows in the order in which the objects were opened</source>
        <translation>Sortiert die Zeilen in der Reihenfolge, in der die Objekte geöffnet wurden</translation>
    </message>
    <message>
        <source>&amp;Export...</source>
        <translation>E&amp;xportieren...</translation>
    </message>
    <message>
        <source>Write the selected objects into files</source>
        <translation>Die ausgewählten Objekte in Dateien schreiben</translation>
    </message>
    <message>
        <source>Objects</source>
        <translation>Objekte</translation>
    </message>
    <message>
        <source>Decorations</source>
        <translation>Dekorationen</translation>
    </message>
    <message>
        <source>Logo</source>
        <translation>Logo</translation>
    </message>
    <message>
        <source>Animation</source>
        <translation>Animation</translation>
    </message>
    <message>
        <source>Points and lines</source>
        <translation>Punkte und Linien</translation>
    </message>
    <message>
        <source>Picks</source>
        <translation>Gewählte Punkte</translation>
    </message>
    <message>
        <source>Needles</source>
        <translation>Nadeln</translation>
    </message>
    <message>
        <source>Clip plane</source>
        <translation>Schnittebene</translation>
    </message>
    <message>
        <source>Messages</source>
        <translation>Meldungen</translation>
    </message>
    <message>
        <source>Events</source>
        <translation>Ereignisse</translation>
    </message>
    <message>
        <source>Transform</source>
        <translation>Transformation</translation>
    </message>
    <message>
        <source>Alignment</source>
        <translation>Ausrichtung</translation>
    </message>
    <message>
        <source>Copy &amp;distance of the last two picks</source>
        <translation>Abstan&amp;d der letzten beiden Punkte kopieren</translation>
    </message>
    <message>
        <source>Ca&amp;ncel the move of a point</source>
        <translation>&amp;Verschieben eines Punkts abbrechen</translation>
    </message>
    <message>
        <source>A double click picks points now and creates no needles.</source>
        <translation>Ein Doppelklick wählt jetzt Punkte und erzeugt keine Nadeln.</translation>
    </message>
    <message>
        <source>Another pick mode removes all %1 points. Change the mode?</source>
        <translation>Eine andere Art zu wählen entfernt alle %1 Punkte. Ändern?</translation>
    </message>
    <message>
        <source>Change the pick mode</source>
        <translation>Art zu wählen ändern</translation>
    </message>
    <message>
        <source>    object %1</source>
        <translation>    Objekt %1</translation>
    </message>
    <message>
        <source>Click an object to move point %1 there. Escape cancels.</source>
        <translation>Klicken Sie auf ein Objekt, um Punkt %1 dorthin zu verschieben. Esc bricht ab.</translation>
    </message>
    <message>
        <source>Double click an object to move point %1 there. Escape cancels.</source>
        <translation>Doppelklicken Sie auf ein Objekt, um Punkt %1 dorthin zu verschieben. Esc bricht ab.</translation>
    </message>
    <message>
        <source>Point %1 on %2</source>
        <translation>Punkt %1 auf %2</translation>
    </message>
    <message>
        <source>&amp;Remove point %1</source>
        <translation>Punkt %1 ent&amp;fernen</translation>
    </message>
    <message>
        <source>&amp;Move point %1 to the next pick</source>
        <translation>Punkt %1 beim nächsten Wählen &amp;verschieben</translation>
    </message>
    <message>
        <source>&amp;Copy coordinates</source>
        <translation>&amp;Koordinaten kopieren</translation>
    </message>
    <message>
        <source>Save &amp;view as picture...</source>
        <translation>&amp;Ansicht als Bild speichern...</translation>
    </message>
    <message>
        <source>what the window shows, at any size, also without decorations or background</source>
        <translation>was das Fenster zeigt, in jeder Größe, auch ohne Dekorationen oder Hintergrund</translation>
    </message>
    <message>
        <source>Cop&amp;y picture</source>
        <translation>Bild &amp;kopieren</translation>
    </message>
    <message>
        <source>what the window shows, as last chosen under Save view as picture</source>
        <translation>was das Fenster zeigt, wie zuletzt unter Ansicht als Bild speichern gewählt</translation>
    </message>
    <message>
        <source>%1 samples per pixel</source>
        <translation>%1 Abtastungen je Pixel</translation>
    </message>
    <message>
        <source>From the next start</source>
        <translation>Ab dem nächsten Start</translation>
    </message>
    <message>
        <source>Now: off</source>
        <translation>Jetzt: aus</translation>
    </message>
    <message numerus="yes">
        <source>Now: %n sample(s)</source>
        <translation>
            <numerusform>Jetzt: %n Abtastung</numerusform>
            <numerusform>Jetzt: %n Abtastungen</numerusform>
        </translation>
    </message>
    <message>
        <source>%1, the driver does not have %2; a choice counts from the next start</source>
        <translation>%1, der Treiber hat nicht %2; eine Wahl gilt ab dem nächsten Start</translation>
    </message>
    <message>
        <source>%1; a choice counts from the next start</source>
        <translation>%1; eine Wahl gilt ab dem nächsten Start</translation>
    </message>
    <message>
        <source>%1. The properties of the viewer have their default values. What is stored stays; change a property in Render &gt; Properties to replace it.</source>
        <translation>%1. Die Eigenschaften der Ansicht haben ihre Vorgabewerte. Das Gespeicherte bleibt; ändern Sie eine Eigenschaft unter Darstellung &gt; Eigenschaften, um es zu ersetzen.</translation>
    </message>
    <message>
        <source>&amp;Help</source>
        <translation>&amp;Hilfe</translation>
    </message>
    <message>
        <source>&amp;Shortcuts</source>
        <translation>&amp;Tastenkürzel</translation>
    </message>
    <message>
        <source>&amp;About KV_ScenePane</source>
        <translation>&amp;Über KV_ScenePane</translation>
    </message>
    <message>
        <source>Settings for the import of scans that leave points out</source>
        <translation>Einstellungen für den Import von Scans, die Punkte weglassen</translation>
    </message>
    <message>
        <source>Skip %1, confidence from %2</source>
        <translation>Raster %1, Konfidenz ab %2</translation>
    </message>
    <message>
        <source>Skip %1</source>
        <translation>Raster %1</translation>
    </message>
    <message>
        <source>Confidence from %1</source>
        <translation>Konfidenz ab %1</translation>
    </message>
    <message>
        <source>Reset settings</source>
        <translation>Einstellungen zurücksetzen</translation>
    </message>
    <message>
        <source>Reset</source>
        <translation>Zurücksetzen</translation>
    </message>
    <message>
        <source>The settings are those of a first start.</source>
        <translation>Die Einstellungen sind die eines ersten Starts.</translation>
    </message>
    <message>
        <source>Transforms (*.json);;All files (*)</source>
        <translation>Transformationen (*.json);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>1 transform</source>
        <translation>1 Transformation</translation>
    </message>
    <message>
        <source>%1 transforms</source>
        <translation>%1 Transformationen</translation>
    </message>
    <message>
        <source>Set the transforms of before the last alignment, or before the last load, again</source>
        <translation>Die Transformationen von vor der letzten Ausrichtung oder dem letzten Laden wieder einsetzen</translation>
    </message>
    <message>
        <source>Save &amp;transforms...</source>
        <translation>&amp;Transformationen speichern...</translation>
    </message>
    <message>
        <source>Write the transform of each object, as it is now, into a json file</source>
        <translation>Die jetzige Transformation jedes Objekts in eine json-Datei schreiben</translation>
    </message>
    <message>
        <source>Loa&amp;d transforms...</source>
        <translation>Transformationen la&amp;den...</translation>
    </message>
    <message>
        <source>Give the objects the transforms that a json file has for them</source>
        <translation>Den Objekten die Transformationen geben, die eine json-Datei für sie hat</translation>
    </message>
    <message>
        <source>As imported</source>
        <translation>Wie importiert</translation>
    </message>
    <message>
        <source>Moved, not saved</source>
        <translation>Bewegt, nicht gespeichert</translation>
    </message>
    <message>
        <source>Moved, saved</source>
        <translation>Bewegt, gespeichert</translation>
    </message>
    <message>
        <source>Save transforms</source>
        <translation>Transformationen speichern</translation>
    </message>
    <message>
        <source>Load transforms</source>
        <translation>Transformationen laden</translation>
    </message>
    <message>
        <source>; %1 of scans that are not open kept</source>
        <translation>; %1 von Scans, die nicht geöffnet sind, behalten</translation>
    </message>
    <message>
        <source>load of transforms</source>
        <translation>Laden von Transformationen</translation>
    </message>
    <message>
        <source>%1: transforms for %2 of %3 objects, %4 moved</source>
        <translation>%1: Transformationen für %2 von %3 Objekten, %4 bewegt</translation>
    </message>
    <message>
        <source>%1: no transforms loaded: %2</source>
        <translation>%1: keine Transformationen geladen: %2</translation>
    </message>
    <message>
        <source>There are objects whose transforms are not saved:</source>
        <translation>Es gibt Objekte, deren Transformationen nicht gespeichert sind:</translation>
    </message>
    <message>
        <source>Save writes the transforms of all objects into one file, which can be loaded again.</source>
        <translation>Speichern schreibt die Transformationen aller Objekte in eine Datei, die wieder geladen werden kann.</translation>
    </message>
    <message>
        <source>shows no objects while shadows are on</source>
        <translation>zeigt keine Objekte, solange Schatten eingeschaltet sind</translation>
    </message>
    <message>
        <source>not with this render mode, which would show no objects</source>
        <translation>nicht mit dieser Darstellungsart, die keine Objekte zeigen würde</translation>
    </message>
    <message>
        <source>&amp;View and object</source>
        <translation>&amp;Ansicht und Objekt</translation>
    </message>
    <message>
        <source>V&amp;iews</source>
        <translation>An&amp;sichten</translation>
    </message>
    <message>
        <source>&amp;Render mode</source>
        <translation>&amp;Darstellungsart</translation>
    </message>
    <message>
        <source>S&amp;elect in the list</source>
        <translation>In der Liste aus&amp;wählen</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>&amp;Copy the point %1</source>
        <translation>&amp;Punkt %1 kopieren</translation>
    </message>
    <message>
        <source>Copied: %1</source>
        <translation>Kopiert: %1</translation>
    </message>
    <message>
        <source>&amp;Objects</source>
        <translation>&amp;Objekte</translation>
    </message>
    <message>
        <source>Order o&amp;f opening</source>
        <translation>&amp;Reihenfolge des Öffnens</translation>
    </message>
    <message>
        <source>One colo&amp;ur</source>
        <translation>Glei&amp;che Farbe</translation>
    </message>
    <message>
        <source>Fi&amp;t the view</source>
        <translation>Ansicht &amp;einpassen</translation>
    </message>
    <message>
        <source>No smoothing</source>
        <translation>Keine Glättung</translation>
    </message>
    <message>
        <source>Give each object a colour of a palette, to distinguish them</source>
        <translation>Jedem Objekt eine Farbe aus einer Palette geben, um sie zu unterscheiden</translation>
    </message>
    <message>
        <source>Save screens&amp;hot of the whole scene (2048 x 2048)...</source>
        <translation>Bildschirm&amp;foto der ganzen Szene speichern (2048 x 2048)...</translation>
    </message>
    <message>
        <source>%1: %2 mm</source>
        <translation>%1: %2 mm</translation>
    </message>
    <message>
        <source>%1: %2 mm, distance %3 mm</source>
        <translation>%1: %2 mm, Abstand %3 mm</translation>
    </message>
    <message numerus="yes">
        <source>%Ln line(s) added</source>
        <translation>
            <numerusform>%Ln Linie hinzugefügt</numerusform>
            <numerusform>%Ln Linien hinzugefügt</numerusform>
        </translation>
    </message>
    <message>
        <source>Write the selected objects as %1 files</source>
        <translation>Die ausgewählten Objekte als %1-Dateien schreiben</translation>
    </message>
    <message>
        <source>the viewer gave no picture</source>
        <translation>die Ansicht lieferte kein Bild</translation>
    </message>
    <message>
        <source>there is no object</source>
        <translation>es gibt kein Objekt</translation>
    </message>
    <message>
        <source>Forget all settings of the window?</source>
        <translation>Alle Einstellungen des Fensters vergessen?</translation>
    </message>
    <message>
        <source>These are: place and panes of the window, appearance, mouse buttons, rotation, background, point size, render mode and other properties, reduced drawing, smooth edges, import settings, clip plane, tints of the lasso, recent files and folders.

Files and what is open stay. Clip plane, tints and smooth edges change at the next start.</source>
        <translation>Das sind: Platz und Bereiche des Fensters, Erscheinungsbild, Maustasten, Drehung, Hintergrund, Punktgröße, Darstellung und andere Eigenschaften, reduziertes Zeichnen, Kantenglättung, Importeinstellungen, Schnittebene, Tönungen des Lassos, zuletzt benutzte Dateien und Ordner.

Dateien und Geöffnetes bleiben. Schnittebene, Tönungen und Kantenglättung ändern sich beim nächsten Start.</translation>
    </message>
</context>
<context>
    <name>MarkerPanel</name>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Delete the free points of the current row</source>
        <translation>Die freien Punkte der aktuellen Zeile löschen</translation>
    </message>
    <message>
        <source>File, Clear removes lines, with all objects and free points.</source>
        <translation>Datei, Szene leeren entfernt Linien, mit allen Objekten und freien Punkten.</translation>
    </message>
    <message>
        <source>Free points</source>
        <translation>Freie Punkte</translation>
    </message>
    <message>
        <source>Points</source>
        <translation>Punkte</translation>
    </message>
    <message>
        <source>Opacity</source>
        <translation>Deckkraft</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>The graphics memory of deleted points is not free before the window is closed.</source>
        <translation>Der Grafikspeicher gelöschter Punkte wird erst frei, wenn das Fenster geschlossen wird.</translation>
    </message>
    <message>
        <source>%1 %</source>
        <translation>%1 %</translation>
    </message>
    <message>
        <source>Show lines (%1)</source>
        <translation>Linien zeigen (%1)</translation>
    </message>
</context>
<context>
    <name>Messages</name>
    <message>
        <source>the folder holds no file that can be opened</source>
        <translation>der Ordner enthält keine Datei, die geöffnet werden kann</translation>
    </message>
    <message>
        <source>the folder holds too many files, not all of them are opened</source>
        <translation>der Ordner enthält zu viele Dateien, nicht alle werden geöffnet</translation>
    </message>
    <message>
        <source>no triangle is left: with skip %1 neighbouring points are more than %2 mm apart: import with skip 1</source>
        <translation>es bleibt kein Dreieck: mit Raster %1 liegen benachbarte Punkte mehr als %2 mm auseinander: mit Raster 1 importieren</translation>
    </message>
    <message>
        <source>no triangle is left: with skip %1 neighbouring points are more than %2 mm apart</source>
        <translation>es bleibt kein Dreieck: mit Raster %1 liegen benachbarte Punkte mehr als %2 mm auseinander</translation>
    </message>
    <message>
        <source>no triangle is left: with skip %1 too few neighbouring cells have %2 valid points: import with a smaller skip</source>
        <translation>es bleibt kein Dreieck: mit Raster %1 haben zu wenige benachbarte Zellen %2 gültige Punkte: mit kleinerem Raster importieren</translation>
    </message>
    <message>
        <source>no triangle is left: each has an angle below %1 or above %2 degrees: measure the surface less obliquely</source>
        <translation>es bleibt kein Dreieck: jedes hat einen Winkel unter %1 oder über %2 Grad: die Fläche weniger schräg messen</translation>
    </message>
    <message>
        <source>no triangle is left: nowhere are three neighbouring points valid: lower the confidence limit or measure again</source>
        <translation>es bleibt kein Dreieck: nirgends sind drei benachbarte Punkte gültig: die Konfidenzgrenze senken oder neu messen</translation>
    </message>
    <message>
        <source>no triangle is left: a grid of %1 x %2 points has no neighbours in one direction</source>
        <translation>es bleibt kein Dreieck: ein Gitter aus %1 x %2 Punkten hat in einer Richtung keine Nachbarn</translation>
    </message>
    <message>
        <source>no triangle is left with skip %1, but %2 with skip 1: import with skip 1</source>
        <translation>es bleibt kein Dreieck mit Raster %1, aber %2 mit Raster 1: mit Raster 1 importieren</translation>
    </message>
    <message>
        <source>no point has finite coordinates, nothing of it can be shown: export the file again from its source</source>
        <translation>kein Punkt hat endliche Koordinaten, nichts davon kann gezeigt werden: die Datei aus ihrer Quelle neu exportieren</translation>
    </message>
    <message>
        <source>the file is damaged: copy or export it again from its source</source>
        <translation>die Datei ist beschädigt: aus ihrer Quelle neu kopieren oder exportieren</translation>
    </message>
    <message>
        <source>the file is cut short: copy or export it again from its source</source>
        <translation>die Datei ist abgeschnitten: aus ihrer Quelle neu kopieren oder exportieren</translation>
    </message>
    <message>
        <source>the file is of a version that is not known here: a newer scenepane may read it</source>
        <translation>die Version der Datei ist hier nicht bekannt: ein neueres scenepane liest sie vielleicht</translation>
    </message>
    <message>
        <source>this is no ply file, whatever its name says</source>
        <translation>dies ist keine ply-Datei, was auch immer ihr Name sagt</translation>
    </message>
    <message>
        <source>the disk is full: free some space or choose another folder</source>
        <translation>der Datenträger ist voll: Platz schaffen oder einen anderen Ordner wählen</translation>
    </message>
    <message>
        <source>the file could not be replaced: %1: check the folder and its permissions</source>
        <translation>die Datei konnte nicht ersetzt werden: %1: den Ordner und seine Rechte prüfen</translation>
    </message>
    <message>
        <source>install the current driver of the graphics card, or set LIBGL_ALWAYS_SOFTWARE=1 to draw with the processor</source>
        <translation>den aktuellen Treiber der Grafikkarte installieren oder LIBGL_ALWAYS_SOFTWARE=1 setzen, um mit dem Prozessor zu zeichnen</translation>
    </message>
    <message>
        <source>no driver draws OpenGL without a window: install the driver of the graphics card or the software renderer of Mesa</source>
        <translation>kein Treiber zeichnet OpenGL ohne Fenster: den Treiber der Grafikkarte oder die Software-Darstellung von Mesa installieren</translation>
    </message>
    <message>
        <source>an area of %1 x %2 pixels is larger than the driver can draw: choose a smaller one</source>
        <translation>eine Fläche von %1 x %2 Pixeln ist größer, als der Treiber zeichnen kann: eine kleinere wählen</translation>
    </message>
    <message>
        <source>the file has no points or no confidence values: export it again from its source</source>
        <translation>die Datei hat keine Punkte oder keine Konfidenzwerte: aus ihrer Quelle neu exportieren</translation>
    </message>
    <message>
        <source>the picture is larger than the driver can draw: choose a smaller one</source>
        <translation>das Bild ist größer, als der Treiber zeichnen kann: ein kleineres wählen</translation>
    </message>
    <message>
        <source>there is not enough memory: close other programs or remove objects</source>
        <translation>der Speicher reicht nicht: andere Programme schließen oder Objekte entfernen</translation>
    </message>
    <message>
        <source>there is not enough memory for this file: close other programs or remove objects</source>
        <translation>der Speicher reicht für diese Datei nicht: andere Programme schließen oder Objekte entfernen</translation>
    </message>
    <message>
        <source>there is not enough graphics memory for object %1: remove objects or import with a larger skip</source>
        <translation>der Grafikspeicher reicht für Objekt %1 nicht: Objekte entfernen oder mit größerem Raster importieren</translation>
    </message>
    <message>
        <source>there is not enough graphics memory for free points %1: remove other objects</source>
        <translation>der Grafikspeicher reicht für die freien Punkte %1 nicht: andere Objekte entfernen</translation>
    </message>
    <message>
        <source>no triangle is left of the scan: import with a smaller skip or a lower confidence limit</source>
        <translation>vom Scan bleibt kein Dreieck: mit kleinerem Raster oder niedrigerer Konfidenzgrenze importieren</translation>
    </message>
    <message>
        <source>no triangle is left: the valid points form none with these import settings</source>
        <translation>es bleibt kein Dreieck: die gültigen Punkte bilden mit diesen Import-Einstellungen keines</translation>
    </message>
    <message>
        <source>the scan is empty: its grid has no points</source>
        <translation>der Scan ist leer: sein Gitter hat keine Punkte</translation>
    </message>
    <message>
        <source>the scan is empty: the sensor measured no point</source>
        <translation>der Scan ist leer: der Sensor hat keinen Punkt gemessen</translation>
    </message>
    <message>
        <source>no point is left: the scanner marked all as invalid</source>
        <translation>es bleibt kein Punkt: der Scanner hat alle als ungültig markiert</translation>
    </message>
    <message>
        <source>no point is left: none has the confidence %1: lower the limit of the import</source>
        <translation>es bleibt kein Punkt: keiner hat die Konfidenz %1: die Grenze des Imports senken</translation>
    </message>
    <message>
        <source>a grid of %1 x %2 points is not possible: the file is damaged</source>
        <translation>ein Gitter aus %1 x %2 Punkten ist nicht möglich: die Datei ist beschädigt</translation>
    </message>
    <message>
        <source>the skip value is %1: choose 1 or more</source>
        <translation>das Raster ist %1: 1 oder mehr wählen</translation>
    </message>
    <message>
        <source>the type of the file is not known: it is none of %1</source>
        <translation>der Dateityp ist nicht bekannt: er ist keiner von %1</translation>
    </message>
    <message>
        <source>no file is named</source>
        <translation>es ist keine Datei genannt</translation>
    </message>
    <message>
        <source>the file is cut short after %1 bytes: copy or export it again from its source</source>
        <translation>die Datei ist nach %1 Bytes abgeschnitten: aus ihrer Quelle neu kopieren oder exportieren</translation>
    </message>
    <message>
        <source>nothing is left that could be written</source>
        <translation>es bleibt nichts, was geschrieben werden könnte</translation>
    </message>
    <message>
        <source>%1 coordinates are not finite: triangles may be missing there: export the file again from its source</source>
        <translation>%1 Koordinaten sind nicht endlich: dort können Dreiecke fehlen: die Datei aus ihrer Quelle neu exportieren</translation>
    </message>
    <message>
        <source>this is a folder: choose the name of a file</source>
        <translation>das ist ein Ordner: den Namen einer Datei wählen</translation>
    </message>
    <message>
        <source>this is a device or a pipe and no file: choose another name</source>
        <translation>das ist ein Gerät oder eine Pipe und keine Datei: einen anderen Namen wählen</translation>
    </message>
    <message>
        <source>libKV_Components.so has failed and gives no reason: check the file and its folder</source>
        <translation>libKV_Components.so ist gescheitert und nennt keinen Grund: die Datei und ihren Ordner prüfen</translation>
    </message>
    <message>
        <source>%1 of %2 points and %3 of %4 triangles are in the file, the rest was cut off: copy or export it again from its source</source>
        <translation>%1 von %2 Punkten und %3 von %4 Dreiecken sind in der Datei, der Rest ist abgeschnitten: die Datei neu kopieren oder aus ihrer Quelle neu exportieren</translation>
    </message>
    <message>
        <source>%1 of %2 points are in the file, the rest was cut off: copy or export it again from its source</source>
        <translation>%1 von %2 Punkten sind in der Datei, der Rest ist abgeschnitten: die Datei neu kopieren oder aus ihrer Quelle neu exportieren</translation>
    </message>
    <message>
        <source>%1 of %2 triangles are in the file, the rest was cut off: copy or export it again from its source</source>
        <translation>%1 von %2 Dreiecken sind in der Datei, der Rest ist abgeschnitten: die Datei neu kopieren oder aus ihrer Quelle neu exportieren</translation>
    </message>
    <message>
        <source>%1 of %2 points of the grid are in the file, the rest was cut off: copy or export it again from its source</source>
        <translation>%1 von %2 Punkten des Rasters sind in der Datei, der Rest ist abgeschnitten: die Datei neu kopieren oder aus ihrer Quelle neu exportieren</translation>
    </message>
    <message>
        <source>the file goes on for %1 bytes after the end of its data, they are ignored: check that it is the right file</source>
        <translation>nach dem Ende der Daten folgen in der Datei noch %1 Bytes, sie werden übergangen: prüfen, ob es die richtige Datei ist</translation>
    </message>
    <message>
        <source>the file has points but no triangles: import it as free points (File &gt; Import free points, or --points)</source>
        <translation>die Datei hat Punkte, aber keine Dreiecke: als freie Punkte importieren (Datei &gt; Freie Punkte importieren oder --points)</translation>
    </message>
    <message>
        <source>the file is stl as text, which is not read: save it as binary stl</source>
        <translation>die Datei ist stl als Text, was nicht gelesen wird: als binäres stl speichern</translation>
    </message>
    <message>
        <source>the file has no triangle</source>
        <translation>die Datei hat kein Dreieck</translation>
    </message>
    <message>
        <source>the file has more triangles than can be imported: split it</source>
        <translation>die Datei hat mehr Dreiecke, als importiert werden können: teilen Sie sie</translation>
    </message>
    <message>
        <source>the object has more triangles than an stl file can hold: export it as ply</source>
        <translation>das Objekt hat mehr Dreiecke, als eine stl-Datei fassen kann: als ply exportieren</translation>
    </message>
    <message>
        <source>the file has more points than can be imported: split it</source>
        <translation>die Datei hat mehr Punkte, als importiert werden können: teilen Sie sie</translation>
    </message>
    <message>
        <source>the file was changed while it was read: open it again when it is complete</source>
        <translation>die Datei wurde beim Lesen geändert: neu öffnen, wenn sie vollständig ist</translation>
    </message>
    <message>
        <source>ply of version %1 is not read: export it as version 1.0</source>
        <translation>ply der Version %1 wird nicht gelesen: als Version 1.0 exportieren</translation>
    </message>
    <message>
        <source>big-endian ply is not read: export it as text or as little-endian ply</source>
        <translation>Big-Endian-ply wird nicht gelesen: als Text oder als Little-Endian-ply exportieren</translation>
    </message>
    <message>
        <source>the file has faces with more than three corners: triangulate it and export it again</source>
        <translation>die Datei hat Flächen mit mehr als drei Ecken: in Dreiecke zerlegen und neu exportieren</translation>
    </message>
    <message>
        <source>the texture coordinates of the file are not six per triangle: export it again</source>
        <translation>die Texturkoordinaten der Datei sind nicht sechs je Dreieck: neu exportieren</translation>
    </message>
    <message>
        <source>the file is damaged: there is &quot;%1&quot; in place of a whole number</source>
        <translation>die Datei ist beschädigt: anstelle einer ganzen Zahl steht „%1“</translation>
    </message>
    <message>
        <source>the file is damaged: there is &quot;%1&quot; in place of a number</source>
        <translation>die Datei ist beschädigt: anstelle einer Zahl steht „%1“</translation>
    </message>
    <message>
        <source>the ply file has no property &quot;%1&quot;: export it again with it</source>
        <translation>die ply-Datei hat keine Eigenschaft „%1“: mit ihr neu exportieren</translation>
    </message>
    <message>
        <source>the ply file has no &quot;%1&quot;: export it again with it</source>
        <translation>die ply-Datei hat kein „%1“: damit neu exportieren</translation>
    </message>
    <message>
        <source>the points of the ply file have lists, which are not read</source>
        <translation>die Punkte der ply-Datei haben Listen, die nicht gelesen werden</translation>
    </message>
    <message>
        <source>the ply file has %1 where a whole number must be</source>
        <translation>die ply-Datei hat %1, wo eine ganze Zahl sein muss</translation>
    </message>
    <message>
        <source>the ply file has %1 where a decimal number must be</source>
        <translation>die ply-Datei hat %1, wo eine Dezimalzahl sein muss</translation>
    </message>
    <message>
        <source>the ply file has no list &quot;%1&quot;</source>
        <translation>die ply-Datei hat keine Liste „%1“</translation>
    </message>
    <message>
        <source>there is no such file</source>
        <translation>diese Datei gibt es nicht</translation>
    </message>
    <message>
        <source>the file cannot be read: check its permissions</source>
        <translation>die Datei kann nicht gelesen werden: ihre Rechte prüfen</translation>
    </message>
    <message>
        <source>this is no hps file, or it is damaged</source>
        <translation>dies ist keine hps-Datei, oder sie ist beschädigt</translation>
    </message>
    <message>
        <source>the picture on the surface is damaged or no picture</source>
        <translation>das Bild auf der Oberfläche ist beschädigt oder kein Bild</translation>
    </message>
    <message>
        <source>libKV_Components.so is of another version (no %1): install scenepane again</source>
        <translation>libKV_Components.so hat eine andere Version (kein %1): scenepane neu installieren</translation>
    </message>
    <message>
        <source>libKV_Components.so is of another version: install scenepane again</source>
        <translation>libKV_Components.so hat eine andere Version: scenepane neu installieren</translation>
    </message>
    <message>
        <source>the file must not be written: %1: change its permissions or choose another name</source>
        <translation>die Datei darf nicht geschrieben werden: %1: ihre Rechte ändern oder einen anderen Namen wählen</translation>
    </message>
    <message>
        <source>the graphics driver does not have OpenGL %1</source>
        <translation>der Grafiktreiber hat OpenGL %1 nicht</translation>
    </message>
    <message>
        <source>the graphics driver does not have OpenGL</source>
        <translation>der Grafiktreiber hat kein OpenGL</translation>
    </message>
    <message>
        <source>the processor cannot draw: install the software renderer of Mesa</source>
        <translation>der Prozessor kann nicht zeichnen: die Software-Darstellung von Mesa installieren</translation>
    </message>
    <message>
        <source>there is no X display: start it in a desktop session or set DISPLAY</source>
        <translation>es gibt keine X-Anzeige: in einer Desktop-Sitzung starten oder DISPLAY setzen</translation>
    </message>
    <message>
        <source>the X display %1 cannot be opened: check DISPLAY and the permissions (xhost)</source>
        <translation>die X-Anzeige %1 kann nicht geöffnet werden: DISPLAY und die Rechte (xhost) prüfen</translation>
    </message>
    <message>
        <source>the X display %1 cannot be opened: check its name and the permissions (xhost)</source>
        <translation>die X-Anzeige %1 kann nicht geöffnet werden: ihren Namen und die Rechte (xhost) prüfen</translation>
    </message>
    <message>
        <source>the window system is not X11: start with QT_QPA_PLATFORM=xcb</source>
        <translation>das Fenstersystem ist nicht X11: mit QT_QPA_PLATFORM=xcb starten</translation>
    </message>
    <message>
        <source>too many files are open: close other programs or raise the limit (ulimit -n)</source>
        <translation>zu viele Dateien sind offen: andere Programme schließen oder die Grenze erhöhen (ulimit -n)</translation>
    </message>
    <message>
        <source>the driver did not accept the picture: there may be too little graphics memory</source>
        <translation>der Treiber hat das Bild nicht angenommen: vielleicht reicht der Grafikspeicher nicht</translation>
    </message>
    <message>
        <source>there is no such file: check its name and its folder</source>
        <translation>die Datei gibt es nicht: ihren Namen und Ordner prüfen</translation>
    </message>
    <message>
        <source>this is a folder: name its files, or open it in the window</source>
        <translation>dies ist ein Ordner: seine Dateien nennen oder ihn im Fenster öffnen</translation>
    </message>
    <message>
        <source>the header of the ply file is not valid: %2: export it again from its source</source>
        <translation>der Kopf der ply-Datei ist ungültig: %2: aus ihrer Quelle neu exportieren</translation>
    </message>
    <message>
        <source>the ply file has a list of a type that is not read: export it again with lists of whole numbers</source>
        <translation>die ply-Datei hat eine Liste eines Typs, der nicht gelesen wird: mit Listen ganzer Zahlen neu exportieren</translation>
    </message>
    <message>
        <source>a number in the ply file is not finite: export it again without such vertices, or as binary ply</source>
        <translation>eine Zahl der ply-Datei ist nicht endlich: ohne solche Punkte oder als binäre ply-Datei neu exportieren</translation>
    </message>
    <message>
        <source>one coordinate is not finite: triangles may be missing there: export the file again from its source</source>
        <translation>eine Koordinate ist nicht endlich: dort können Dreiecke fehlen: die Datei aus ihrer Quelle neu exportieren</translation>
    </message>
    <message>
        <source>the header of the ply file has a line that is not read, as one with obj_info: export it again without such lines</source>
        <translation>der Kopf der ply-Datei hat eine Zeile, die nicht gelesen wird, etwa mit obj_info: ohne solche Zeilen neu exportieren</translation>
    </message>
    <message>
        <source>the ply file has values of the type %2, which is not read: export it again with float coordinates</source>
        <translation>die ply-Datei hat Werte des Typs %2, der nicht gelesen wird: mit Koordinaten vom Typ float neu exportieren</translation>
    </message>
    <message>
        <source>the header of the ply file does not say how many points or faces follow: export it again from its source</source>
        <translation>der Kopf der ply-Datei sagt nicht, wie viele Punkte oder Flächen folgen: aus ihrer Quelle neu exportieren</translation>
    </message>
    <message>
        <source>the header of the ply file is cut short: copy or export it again from its source</source>
        <translation>der Kopf der ply-Datei ist abgeschnitten: neu kopieren oder aus ihrer Quelle neu exportieren</translation>
    </message>
    <message>
        <source>the file holds no needles</source>
        <translation>die Datei enthält keine Nadeln</translation>
    </message>
    <message>
        <source>%1: written</source>
        <translation>%1: geschrieben</translation>
    </message>
    <message>
        <source>%1: written, no point is left in it</source>
        <translation>%1: geschrieben, kein Punkt ist darin übrig</translation>
    </message>
    <message>
        <source>%1: skipped, nothing new was cut from it</source>
        <translation>%1: übersprungen, nichts Neues wurde davon abgeschnitten</translation>
    </message>
    <message>
        <source>%1: skipped, only pcm files can hold cuts</source>
        <translation>%1: übersprungen, nur pcm-Dateien können Schnitte enthalten</translation>
    </message>
    <message>
        <source>%1: failed, the file could not be read</source>
        <translation>%1: misslungen, die Datei konnte nicht gelesen werden</translation>
    </message>
    <message>
        <source>%1: failed, the file could not be read: %2</source>
        <translation>%1: misslungen, die Datei konnte nicht gelesen werden: %2</translation>
    </message>
    <message>
        <source>%1: failed, the file could not be written and is as before</source>
        <translation>%1: misslungen, die Datei konnte nicht geschrieben werden und ist wie zuvor</translation>
    </message>
    <message>
        <source>%1: failed, the file could not be written and is as before: %2</source>
        <translation>%1: misslungen, die Datei konnte nicht geschrieben werden und ist wie zuvor: %2</translation>
    </message>
    <message>
        <source>%1: moved since its import, take back the alignment first</source>
        <translation>%1: seit dem Import bewegt, zuerst die Ausrichtung zurücknehmen</translation>
    </message>
    <message>
        <source>%1: was cut while it was moved</source>
        <translation>%1: wurde geschnitten, während es bewegt war</translation>
    </message>
    <message>
        <source>undo these cuts, take back the alignment first, and cut again</source>
        <translation>diese Schnitte zurücknehmen, zuerst die Ausrichtung zurücknehmen und dann neu schneiden</translation>
    </message>
    <message>
        <source>the clip plane is active: what it clips is removed from every pcm file</source>
        <translation>die Schnittebene ist aktiv: was sie wegschneidet, wird aus jeder pcm-Datei entfernt</translation>
    </message>
    <message>
        <source>the confidence filter is above 0: points below it are removed from the files, too</source>
        <translation>der Konfidenzfilter ist über 0: Punkte darunter werden ebenfalls aus den Dateien entfernt</translation>
    </message>
    <message>
        <source>the scene is full: it holds at most 32767 objects: remove some, or open fewer files</source>
        <translation>Die Szene ist voll: sie fasst höchstens 32767 Objekte: einige entfernen oder weniger Dateien öffnen</translation>
    </message>
    <message>
        <source>the program scenepane-read, which reads such files, is missing: install scenepane again</source>
        <translation>Das Programm scenepane-read, das solche Dateien liest, fehlt: scenepane neu installieren</translation>
    </message>
    <message>
        <source>the program scenepane-read, which reads such files, could not be started: %1: close other programs</source>
        <translation>Das Programm scenepane-read, das solche Dateien liest, konnte nicht gestartet werden: %1: andere Programme schließen</translation>
    </message>
    <message>
        <source>reading the file was given up after %1 seconds: it is damaged or too large for its format</source>
        <translation>Das Lesen der Datei wurde nach %1 Sekunden abgebrochen: sie ist beschädigt oder zu groß für ihr Format</translation>
    </message>
    <message>
        <source>the file is damaged, or of a form that is not read: its reader ended with %1</source>
        <translation>Die Datei ist beschädigt oder von einer Form, die nicht gelesen wird: das Leseprogramm endete mit %1</translation>
    </message>
    <message>
        <source>the file holds a mesh with an image: open it as a mesh, not as free points</source>
        <translation>Die Datei enthält ein Netz mit einem Bild: als Netz öffnen, nicht als freie Punkte</translation>
    </message>
    <message>
        <source>the file has points but no triangles: free points can be shown and counted, but are no object</source>
        <translation>Die Datei hat Punkte, aber keine Dreiecke: freie Punkte können gezeigt und gezählt werden, sind aber kein Objekt</translation>
    </message>
    <message>
        <source>the ply file has values of the type %1, which is not known: export it again with float coordinates</source>
        <translation>Die PLY-Datei hat Werte vom Typ %1, der nicht bekannt ist: noch einmal mit float-Koordinaten exportieren</translation>
    </message>
    <message>
        <source>the file is damaged: in line %1 there is %2 in place of a number</source>
        <translation>Die Datei ist beschädigt: in Zeile %1 steht %2 an der Stelle einer Zahl</translation>
    </message>
    <message>
        <source>the file is damaged: a triangle before line %1 has fewer than three corners</source>
        <translation>Die Datei ist beschädigt: ein Dreieck vor Zeile %1 hat weniger als drei Ecken</translation>
    </message>
    <message>
        <source>the file is damaged: the point in line %1 has fewer than three coordinates</source>
        <translation>Die Datei ist beschädigt: der Punkt in Zeile %1 hat weniger als drei Koordinaten</translation>
    </message>
    <message>
        <source>its image is not shown: there is no file %1 beside it</source>
        <translation>Ihr Bild wird nicht gezeigt: neben ihr liegt keine Datei %1</translation>
    </message>
    <message>
        <source>its image is not shown: it is no png or jpeg file, or damaged</source>
        <translation>Ihr Bild wird nicht gezeigt: es ist keine PNG- oder JPEG-Datei oder beschädigt</translation>
    </message>
    <message>
        <source>an image is not shown: it is no png or jpeg file, or damaged: %1</source>
        <translation>Ein Bild wird nicht gezeigt: es ist keine PNG- oder JPEG-Datei oder beschädigt: %1</translation>
    </message>
    <message>
        <source>its images are not shown: it has more than one</source>
        <translation>Ihre Bilder werden nicht gezeigt: sie hat mehr als eines</translation>
    </message>
    <message>
        <source>its lines are not shown</source>
        <translation>Ihre Linien werden nicht gezeigt</translation>
    </message>
    <message>
        <source>the colours of its faces are not shown</source>
        <translation>Die Farben ihrer Flächen werden nicht gezeigt</translation>
    </message>
    <message>
        <source>%1 points without finite coordinates are left out</source>
        <translation>%1 Punkte ohne endliche Koordinaten sind weggelassen</translation>
    </message>
    <message>
        <source>a property in the header of the ply file is not complete: export it again from its source</source>
        <translation>Eine Eigenschaft im Kopf der PLY-Datei ist nicht vollständig: noch einmal aus der Quelle exportieren</translation>
    </message>
    <message>
        <source>the program scenepane-read, which reads such files, could not be started: %1: install scenepane again</source>
        <translation>Das Programm scenepane-read, das solche Dateien liest, konnte nicht gestartet werden: %1: scenepane neu installieren</translation>
    </message>
    <message>
        <source>the file is damaged, or of a form that is not read: its reader failed: %1</source>
        <translation>Die Datei ist beschädigt oder von einer Form, die nicht gelesen wird: das Leseprogramm ist gescheitert: %1</translation>
    </message>
    <message>
        <source>its image needs a temporary file, which could not be made: set TMPDIR to a folder that can be written</source>
        <translation>Das Bild darauf braucht eine temporäre Datei, die nicht angelegt werden konnte: TMPDIR auf einen beschreibbaren Ordner setzen</translation>
    </message>
    <message>
        <source>the folder could not be read: %1: check its permissions</source>
        <translation>der Ordner konnte nicht gelesen werden: %1: seine Zugriffsrechte prüfen</translation>
    </message>
    <message>
        <source>what the file holds does not fit into memory, or is above the size limit of files: close other programs, or raise the limit (ulimit -f)</source>
        <translation>der Inhalt der Datei passt nicht in den Speicher oder liegt über der Größengrenze für Dateien: andere Programme schließen oder die Grenze anheben (ulimit -f)</translation>
    </message>
    <message>
        <source>the file ends inside a facet, which is not shown: copy it again</source>
        <translation>die Datei endet mitten in einer Facette, die nicht gezeigt wird: erneut kopieren</translation>
    </message>
    <message>
        <source>the file ends without endsolid, triangles may be missing: check that it is complete</source>
        <translation>die Datei endet ohne endsolid, es können Dreiecke fehlen: prüfen, ob sie vollständig ist</translation>
    </message>
    <message>
        <source>the file is empty: copy or export it again from its source</source>
        <translation>die Datei ist leer: erneut von der Quelle kopieren oder exportieren</translation>
    </message>
    <message>
        <source>its content is not of the type that its name says: check the extension, or export it again from its source</source>
        <translation>ihr Inhalt ist nicht von dem Typ, den ihr Name nennt: die Endung prüfen oder erneut von der Quelle exportieren</translation>
    </message>
    <message>
        <source>the colours of its materials are not shown: there is no file %1 beside it</source>
        <translation>die Farben ihrer Materialien werden nicht gezeigt: daneben gibt es keine Datei %1</translation>
    </message>
</context>
<context>
    <name>NeedlePanel</name>
    <message>
        <source>Double click on a scan: new needle. Click on a head: select. Drag: move. Delete: remove.</source>
        <translation>Doppelklick auf einen Scan: neue Nadel. Klick auf einen Kopf: auswählen. Ziehen: verschieben. Entf: entfernen.</translation>
    </message>
    <message>
        <source>No needle was created: the limit of %1 is reached. Raise it or delete needles.</source>
        <translation>Keine Nadel erzeugt: die Grenze von %1 ist erreicht. Erhöhen Sie sie oder löschen Sie Nadeln.</translation>
    </message>
    <message>
        <source>There are %1 needles: the limit cannot be lower. Delete needles first.</source>
        <translation>Es gibt %1 Nadeln: die Grenze kann nicht niedriger sein. Löschen Sie zuerst Nadeln.</translation>
    </message>
    <message>
        <source>Create and select with the mouse</source>
        <translation>Mit der Maus erzeugen und auswählen</translation>
    </message>
    <message>
        <source>Show needles</source>
        <translation>Nadeln zeigen</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Löschen</translation>
    </message>
    <message>
        <source>Delete all...</source>
        <translation>Alle löschen...</translation>
    </message>
    <message>
        <source>Save...</source>
        <translation>Speichern...</translation>
    </message>
    <message>
        <source>Double click on a scan: a new needle. Click on a head: select it. Drag: move the head of the selected needle.
Delete key: remove it. Escape: deselect. A double click does not centre the view meanwhile.</source>
        <translation>Doppelklick auf einen Scan: eine neue Nadel. Klick auf einen Kopf: auswählen. Ziehen: den Kopf der ausgewählten Nadel verschieben.
Entf: entfernen. Esc: Auswahl aufheben. Ein Doppelklick zentriert die Ansicht solange nicht.</translation>
    </message>
    <message>
        <source>Needles that are not shown still exist, and the mouse can still select them.</source>
        <translation>Nadeln, die nicht gezeigt werden, gibt es weiterhin, und die Maus kann sie weiterhin auswählen.</translation>
    </message>
    <message>
        <source>Greatest number of needles</source>
        <translation>Größte Zahl der Nadeln</translation>
    </message>
    <message>
        <source>How many needles there can be. It cannot be lowered below the number of needles.</source>
        <translation>Wie viele Nadeln es geben kann. Nicht weniger, als es Nadeln gibt.</translation>
    </message>
    <message>
        <source>Fit to scene</source>
        <translation>An Szene anpassen</translation>
    </message>
    <message>
        <source>Sets the sizes of new needles in proportion to the objects.</source>
        <translation>Setzt die Größen neuer Nadeln im Verhältnis zu den Objekten.</translation>
    </message>
    <message>
        <source>New needles:</source>
        <translation>Neue Nadeln:</translation>
    </message>
    <message>
        <source>Length:</source>
        <translation>Länge:</translation>
    </message>
    <message>
        <source>Length of new needles</source>
        <translation>Länge neuer Nadeln</translation>
    </message>
    <message>
        <source>From the surface to the head, scene units.</source>
        <translation>Von der Oberfläche zum Kopf, Einheiten der Szene.</translation>
    </message>
    <message>
        <source>Head radius:</source>
        <translation>Kopfradius:</translation>
    </message>
    <message>
        <source>Head radius</source>
        <translation>Kopfradius</translation>
    </message>
    <message>
        <source>Scene units.</source>
        <translation>Einheiten der Szene.</translation>
    </message>
    <message>
        <source>Colour of the head</source>
        <translation>Farbe des Kopfs</translation>
    </message>
    <message>
        <source>Colour of the head while it is selected</source>
        <translation>Farbe des Kopfs, solange er ausgewählt ist</translation>
    </message>
    <message>
        <source>Pin radius:</source>
        <translation>Stiftradius:</translation>
    </message>
    <message>
        <source>Pin radius</source>
        <translation>Stiftradius</translation>
    </message>
    <message>
        <source>At the head, scene units. The pin is a fifth as thick at its tip.</source>
        <translation>Am Kopf, Einheiten der Szene. An der Spitze ist der Stift ein Fünftel so dick.</translation>
    </message>
    <message>
        <source>Colour of the pin</source>
        <translation>Farbe des Stifts</translation>
    </message>
    <message>
        <source>Point radius:</source>
        <translation>Punktradius:</translation>
    </message>
    <message>
        <source>Point radius</source>
        <translation>Punktradius</translation>
    </message>
    <message>
        <source>Of the mark on the surface, scene units. 0: no mark.</source>
        <translation>Der Marke auf der Oberfläche, Einheiten der Szene. 0: keine Marke.</translation>
    </message>
    <message>
        <source>Colour of the mark on the surface</source>
        <translation>Farbe der Marke auf der Oberfläche</translation>
    </message>
    <message>
        <source>Limit:</source>
        <translation>Grenze:</translation>
    </message>
    <message>
        <source>Needle</source>
        <translation>Nadel</translation>
    </message>
    <message>
        <source>Pin</source>
        <translation>Stift</translation>
    </message>
    <message>
        <source>Head</source>
        <translation>Kopf</translation>
    </message>
    <message>
        <source>Load...</source>
        <translation>Laden...</translation>
    </message>
    <message>
        <source>Delete all %1 needles? Needles that are not saved are lost.</source>
        <translation>Alle %1 Nadeln löschen? Nadeln, die nicht gespeichert sind, gehen verloren.</translation>
    </message>
    <message>
        <source>Delete all needles</source>
        <translation>Alle Nadeln löschen</translation>
    </message>
</context>
<context>
    <name>ObjectItem</name>
    <message>
        <source>moved</source>
        <translation>bewegt</translation>
    </message>
    <message>
        <source>no finite coordinates</source>
        <translation>keine endlichen Koordinaten</translation>
    </message>
</context>
<context>
    <name>ObjectList</name>
    <message>
        <source>Object</source>
        <translation>Objekt</translation>
    </message>
    <message>
        <source>Colour</source>
        <translation>Farbe</translation>
    </message>
    <message>
        <source>Triangles</source>
        <translation>Dreiecke</translation>
    </message>
    <message>
        <source>Size (mm)</source>
        <translation>Größe (mm)</translation>
    </message>
    <message>
        <source>Vertices</source>
        <translation>Punkte</translation>
    </message>
    <message>
        <source>May move</source>
        <translation>Beweglich</translation>
    </message>
    <message>
        <source>Place</source>
        <translation>Platz</translation>
    </message>
    <message>
        <source>Check mark: shown. Double click: centre. F2: rename.</source>
        <translation>Haken: gezeigt. Doppelklick: zentrieren. F2: umbenennen.</translation>
    </message>
    <message>
        <source>Click a colour, or press Space there, to choose another one</source>
        <translation>Klicken Sie auf eine Farbe oder drücken Sie dort die Leertaste, um eine andere zu wählen</translation>
    </message>
    <message>
        <source>Length of the bounding box along x, y and z</source>
        <translation>Länge des Hüllquaders entlang x, y und z</translation>
    </message>
    <message>
        <source>Whether alignments move the object</source>
        <translation>Ob Ausrichtungen das Objekt bewegen</translation>
    </message>
    <message>
        <source>&quot;moved&quot;: the object is not where it was imported</source>
        <translation>„bewegt“: das Objekt ist nicht, wo es importiert wurde</translation>
    </message>
    <message>
        <source>&amp;Delete</source>
        <translation>&amp;Löschen</translation>
    </message>
    <message>
        <source>&amp;Rename</source>
        <translation>U&amp;mbenennen</translation>
    </message>
    <message>
        <source>&amp;No object may move</source>
        <translation>&amp;Kein Objekt beweglich</translation>
    </message>
    <message>
        <source>Colour of %1</source>
        <translation>Farbe von %1</translation>
    </message>
    <message>
        <source>The object has its own colours, which are shown instead</source>
        <translation>Das Objekt hat eigene Farben, die stattdessen gezeigt werden</translation>
    </message>
    <message>
        <source>Colour of %1: click to choose another one</source>
        <translation>Farbe von %1: klicken, um eine andere zu wählen</translation>
    </message>
    <message>
        <source>Only the selected &amp;may move</source>
        <translation>Nur Ausgewählte &amp;beweglich</translation>
    </message>
    <message>
        <source>All o&amp;thers may move</source>
        <translation>Alle an&amp;deren beweglich</translation>
    </message>
</context>
<context>
    <name>ObjectPane</name>
    <message>
        <source>Co&amp;mmands</source>
        <translation>&amp;Befehle</translation>
    </message>
    <message>
        <source>What can be done with the selected objects</source>
        <translation>Was mit den ausgewählten Objekten getan werden kann</translation>
    </message>
    <message>
        <source>Selected: %1 of %2. Triangles: %3. Vertices: %4</source>
        <translation>Ausgewählt: %1 von %2. Dreiecke: %3. Punkte: %4</translation>
    </message>
    <message>
        <source>Objects: %1. Triangles: %2. Vertices: %3</source>
        <translation>Objekte: %1. Dreiecke: %2. Punkte: %3</translation>
    </message>
</context>
<context>
    <name>PickPanel</name>
    <message>
        <source>%1 (deleted)</source>
        <translation>%1 (gelöscht)</translation>
    </message>
    <message>
        <source>A &amp;double click places a point</source>
        <translation>Ein &amp;Doppelklick setzt einen Punkt</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>Entfernen</translation>
    </message>
    <message>
        <source>Remove the selected points</source>
        <translation>Die ausgewählten Punkte entfernen</translation>
    </message>
    <message>
        <source>Clear</source>
        <translation>Leeren</translation>
    </message>
    <message>
        <source>Remove all points</source>
        <translation>Alle Punkte entfernen</translation>
    </message>
    <message>
        <source>Move</source>
        <translation>Verschieben</translation>
    </message>
    <message>
        <source>The next pick on an object moves the selected point; Escape cancels</source>
        <translation>Das nächste Wählen auf einem Objekt verschiebt den ausgewählten Punkt; Esc bricht ab</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Copy x, y, z of the selected points, or of all when none is selected</source>
        <translation>x, y, z der ausgewählten Punkte kopieren, oder aller, wenn keiner ausgewählt ist</translation>
    </message>
    <message>
        <source>Copy the distance (Ctrl+Shift+C)</source>
        <translation>Den Abstand kopieren (Strg+Umschalt+C)</translation>
    </message>
    <message>
        <source>No.</source>
        <translation>Nr.</translation>
    </message>
    <message>
        <source>Object</source>
        <translation>Objekt</translation>
    </message>
    <message>
        <source>X</source>
        <translation>X</translation>
    </message>
    <message>
        <source>Y</source>
        <translation>Y</translation>
    </message>
    <message>
        <source>Z</source>
        <translation>Z</translation>
    </message>
    <message>
        <source>&amp;Remove</source>
        <translation>&amp;Entfernen</translation>
    </message>
    <message>
        <source>&amp;Copy coordinates</source>
        <translation>&amp;Koordinaten kopieren</translation>
    </message>
    <message>
        <source>The same as Tools, Picking, Points on objects. Another choice there removes all points.</source>
        <translation>Dasselbe wie Werkzeuge, Punkte wählen, Punkte auf Objekten. Eine andere Wahl dort entfernt alle Punkte.</translation>
    </message>
    <message>
        <source>Colour of the points that are placed next</source>
        <translation>Farbe der Punkte, die als nächste gesetzt werden</translation>
    </message>
    <message>
        <source> % of the scene</source>
        <translation> % der Szene</translation>
    </message>
    <message>
        <source>Radius of all points, in percent of the diagonal of the box around all objects</source>
        <translation>Radius aller Punkte, in Prozent der Diagonale des Quaders um alle Objekte</translation>
    </message>
    <message>
        <source>Radi&amp;us:</source>
        <translation>Radi&amp;us:</translation>
    </message>
    <message>
        <source>Distance of the last two picks:</source>
        <translation>Abstand der letzten beiden Punkte:</translation>
    </message>
    <message>
        <source>A &amp;click places a point</source>
        <translation>Ein &amp;Klick setzt einen Punkt</translation>
    </message>
    <message>
        <source>&amp;Place points (not with flipped mouse buttons)</source>
        <translation>&amp;Punkte setzen (nicht mit vertauschten Maustasten)</translation>
    </message>
</context>
<context>
    <name>PictureCommands</name>
    <message>
        <source>PNG pictures (*.png)</source>
        <translation>PNG-Bilder (*.png)</translation>
    </message>
    <message>
        <source>JPEG pictures (*.jpg *.jpeg)</source>
        <translation>JPEG-Bilder (*.jpg *.jpeg)</translation>
    </message>
    <message>
        <source>Save view as picture</source>
        <translation>Ansicht als Bild speichern</translation>
    </message>
    <message>
        <source>view.png</source>
        <translation>ansicht.png</translation>
    </message>
    <message>
        <source>JPEG files have no transparency: choose PNG</source>
        <translation>JPEG-Dateien haben keine Transparenz: PNG wählen</translation>
    </message>
    <message>
        <source>%1: picture of %2 x %3 pixels</source>
        <translation>%1: Bild mit %2 x %3 Pixeln</translation>
    </message>
    <message>
        <source>%1: not written: %2</source>
        <translation>%1: nicht geschrieben: %2</translation>
    </message>
    <message>
        <source>Picture of %1 x %2 pixels copied</source>
        <translation>Bild mit %1 x %2 Pixeln kopiert</translation>
    </message>
    <message>
        <source>No picture copied: %1</source>
        <translation>Kein Bild kopiert: %1</translation>
    </message>
</context>
<context>
    <name>PictureDialog</name>
    <message>
        <source>Keep the shape of the &amp;view</source>
        <translation>Form der &amp;Ansicht behalten</translation>
    </message>
    <message>
        <source>&amp;Decorations, selection and markers</source>
        <translation>&amp;Dekorationen, Auswahl und Marken</translation>
    </message>
    <message>
        <source>&amp;Transparent background</source>
        <translation>&amp;Transparenter Hintergrund</translation>
    </message>
    <message>
        <source>Save view as picture</source>
        <translation>Ansicht als Bild speichern</translation>
    </message>
    <message>
        <source>Axes, lighting arrow, centre cross, logo, clip plane, selected objects, pick points, needles and lines</source>
        <translation>Achsen, Beleuchtungspfeil, Mittelkreuz, Logo, Schnittebene, ausgewählte Objekte, gewählte Punkte, Nadeln und Linien</translation>
    </message>
    <message>
        <source>For PNG files and for the clipboard. JPEG files have no transparency.</source>
        <translation>Für PNG-Dateien und die Zwischenablage. JPEG-Dateien haben keine Transparenz.</translation>
    </message>
    <message>
        <source>As in the window</source>
        <translation>Wie im Fenster</translation>
    </message>
    <message>
        <source>%1 x the window</source>
        <translation>%1 x das Fenster</translation>
    </message>
    <message>
        <source>Other</source>
        <translation>Andere</translation>
    </message>
    <message>
        <source> px</source>
        <translation> px</translation>
    </message>
    <message>
        <source>Another shape shows what the window would show in that shape.</source>
        <translation>Eine andere Form zeigt, was das Fenster in dieser Form zeigen würde.</translation>
    </message>
    <message>
        <source>&amp;Size:</source>
        <translation>&amp;Größe:</translation>
    </message>
    <message>
        <source>x</source>
        <translation>x</translation>
    </message>
    <message>
        <source>Width</source>
        <translation>Breite</translation>
    </message>
    <message>
        <source>Height</source>
        <translation>Höhe</translation>
    </message>
    <message>
        <source>&amp;Save...</source>
        <translation>&amp;Speichern...</translation>
    </message>
    <message>
        <source>&amp;Copy</source>
        <translation>&amp;Kopieren</translation>
    </message>
    <message>
        <source>Too large: %1.</source>
        <translation>Zu groß: %1.</translation>
    </message>
    <message>
        <source>Width and height:</source>
        <translation>Breite und Höhe:</translation>
    </message>
</context>
<context>
    <name>PointsDialog</name>
    <message>
        <source>Import free points</source>
        <translation>Freie Punkte importieren</translation>
    </message>
    <message>
        <source>and %1 more</source>
        <translation>und %1 weitere</translation>
    </message>
    <message>
        <source>Files:</source>
        <translation>Dateien:</translation>
    </message>
    <message>
        <source>&amp;Opacity:</source>
        <translation>&amp;Deckkraft:</translation>
    </message>
    <message>
        <source>Colour of points that have none in their file</source>
        <translation>Farbe der Punkte, die in ihrer Datei keine haben</translation>
    </message>
    <message>
        <source>&amp;Colour of points without one:</source>
        <translation>&amp;Farbe der Punkte ohne eigene:</translation>
    </message>
    <message>
        <source>The opacity of points cannot be changed after the import. To change it, delete them and import the file again: the graphics memory of deleted points is not free before the window is closed. From 99 % on, points are opaque.</source>
        <translation>Die Deckkraft von Punkten kann nach dem Import nicht geändert werden. Löschen Sie sie dazu und importieren Sie die Datei neu: der Grafikspeicher gelöschter Punkte wird erst frei, wenn das Fenster geschlossen wird. Ab 99 % sind Punkte deckend.</translation>
    </message>
    <message>
        <source>&amp;Import</source>
        <translation>&amp;Importieren</translation>
    </message>
    <message>
        <source>At 0 % the points are invisible.</source>
        <translation>Bei 0 % sind die Punkte unsichtbar.</translation>
    </message>
    <message>
        <source>Opacity in percent</source>
        <translation>Deckkraft in Prozent</translation>
    </message>
    <message>
        <source> %</source>
        <translation> %</translation>
    </message>
</context>
<context>
    <name>PropertyDialog</name>
    <message>
        <source>How objects are drawn.
Nothing is chosen while the window has a render mode that only the Render menu offers.</source>
        <translation>Wie Objekte gezeichnet werden.
Nichts ist gewählt, solange das Fenster eine Darstellungsart hat, die nur das Menü Darstellung anbietet.</translation>
    </message>
    <message>
        <source>Kept and reported to programs only: it changes nothing in the picture.</source>
        <translation>Wird behalten und nur Programmen gemeldet: am Bild ändert es nichts.</translation>
    </message>
    <message>
        <source>While a drag moves the view, objects are drawn as a tenth of their points.
Bounding boxes stay.</source>
        <translation>Solange die Ansicht mit der Maus bewegt wird, werden Objekte mit einem Zehntel ihrer Punkte gezeichnet.
Hüllquader bleiben.</translation>
    </message>
    <message>
        <source>Properties</source>
        <translation>Eigenschaften</translation>
    </message>
    <message>
        <source>(another mode, see the Render menu)</source>
        <translation>(eine andere Art, siehe das Menü Darstellung)</translation>
    </message>
</context>
<context>
    <name>QMessageBox</name>
    <message>
        <source>OK</source>
        <translation>OK</translation>
    </message>
</context>
<context>
    <name>QObject</name>
    <message>
        <source>Images (%1);;All files (*)</source>
        <translation>Bilder (%1);;Alle Dateien (*)</translation>
    </message>
    <message>
        <source>there is no such file</source>
        <translation>diese Datei gibt es nicht</translation>
    </message>
    <message>
        <source>the image is larger than %1 x %1 pixels</source>
        <translation>das Bild ist größer als %1 x %1 Pixel</translation>
    </message>
</context>
<context>
    <name>ReducedDrawing</name>
    <message>
        <source>A&amp;utomatically for slow scenes</source>
        <translation>A&amp;utomatisch bei langsamen Szenen</translation>
    </message>
    <message>
        <source>&amp;Always</source>
        <translation>&amp;Immer</translation>
    </message>
    <message>
        <source>&amp;Never</source>
        <translation>&amp;Nie</translation>
    </message>
    <message>
        <source>Draw objects with fewer points during a drag</source>
        <translation>Objekte beim Bewegen mit weniger Punkten zeichnen</translation>
    </message>
</context>
<context>
    <name>ResidualPanel</name>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Pair</source>
        <translation>Paar</translation>
    </message>
    <message>
        <source>Residual (mm)</source>
        <translation>Abweichung (mm)</translation>
    </message>
    <message>
        <source>Moving point</source>
        <translation>Bewegter Punkt</translation>
    </message>
    <message>
        <source>Fixed point</source>
        <translation>Fester Punkt</translation>
    </message>
    <message>
        <source>Copy all pairs with their residuals and points</source>
        <translation>Alle Paare mit ihren Abweichungen und Punkten kopieren</translation>
    </message>
    <message>
        <source>%1 largest</source>
        <translation>%1 am größten</translation>
    </message>
    <message>
        <source>No result of an alignment by points.</source>
        <translation>Kein Ergebnis einer Ausrichtung an Punkten.</translation>
    </message>
</context>
<context>
    <name>ScanImportDialog</name>
    <message>
        <source>Scan import settings</source>
        <translation>Scan-Einstellungen</translation>
    </message>
    <message>
        <source>For the scans that are opened from now on.</source>
        <translation>Für die Scans, die von jetzt an geöffnet werden.</translation>
    </message>
    <message>
        <source>1 reads every point of the grid, 2 one for 2 x 2 points and so on</source>
        <translation>1 liest jeden Punkt des Gitters, 2 einen für 2 x 2 Punkte und so weiter</translation>
    </message>
    <message>
        <source>&amp;Skip, one point for N x N points, N:</source>
        <translation>&amp;Raster, ein Punkt für N x N Punkte, N:</translation>
    </message>
    <message>
        <source>Points with a lower confidence are left out</source>
        <translation>Punkte mit niedrigerer Konfidenz werden weggelassen</translation>
    </message>
    <message>
        <source>Lowest &amp;confidence of a point:</source>
        <translation>Niedrigste &amp;Konfidenz eines Punkts:</translation>
    </message>
    <message>
        <source>Colour of scans and free points that have none of their own</source>
        <translation>Farbe der Scans und freien Punkte, die keine eigene haben</translation>
    </message>
    <message>
        <source>C&amp;olour of scans without colours:</source>
        <translation>&amp;Farbe der Scans ohne Farben:</translation>
    </message>
</context>
<context>
    <name>ShortcutDialog</name>
    <message>
        <source>Left drag</source>
        <translation>Ziehen mit links</translation>
    </message>
    <message>
        <source>Right drag</source>
        <translation>Ziehen mit rechts</translation>
    </message>
    <message>
        <source>Turn the view</source>
        <translation>Ansicht drehen</translation>
    </message>
    <message>
        <source>Drag with both buttons</source>
        <translation>Ziehen mit beiden Tasten</translation>
    </message>
    <message>
        <source>Move the view</source>
        <translation>Ansicht verschieben</translation>
    </message>
    <message>
        <source>Wheel</source>
        <translation>Mausrad</translation>
    </message>
    <message>
        <source>Zoom</source>
        <translation>Zoomen</translation>
    </message>
    <message>
        <source>Double click</source>
        <translation>Doppelklick</translation>
    </message>
    <message>
        <source>Middle button</source>
        <translation>Mittlere Taste</translation>
    </message>
    <message>
        <source>Fit the view</source>
        <translation>Ansicht einpassen</translation>
    </message>
    <message>
        <source>Left click</source>
        <translation>Linksklick</translation>
    </message>
    <message>
        <source>Pick a point, while picking is on</source>
        <translation>Einen Punkt wählen, solange das Wählen eingeschaltet ist</translation>
    </message>
    <message>
        <source>Right click</source>
        <translation>Rechtsklick</translation>
    </message>
    <message>
        <source>Menu of the view, of an object or of a picked point</source>
        <translation>Menü der Ansicht, eines Objekts oder eines gewählten Punkts</translation>
    </message>
    <message>
        <source>Ctrl+drag</source>
        <translation>Strg+Ziehen</translation>
    </message>
    <message>
        <source>Turn or move the clip plane, while it is shown</source>
        <translation>Die Schnittebene drehen oder verschieben, solange sie gezeigt wird</translation>
    </message>
    <message>
        <source>Ctrl+double click</source>
        <translation>Strg+Doppelklick</translation>
    </message>
    <message>
        <source>Ctrl+middle button</source>
        <translation>Strg+mittlere Taste</translation>
    </message>
    <message>
        <source>Place the clip plane at the data, while it is shown</source>
        <translation>Die Schnittebene an die Daten setzen, solange sie gezeigt wird</translation>
    </message>
    <message>
        <source>Move the clip plane along its normal, while it is shown</source>
        <translation>Die Schnittebene entlang ihrer Normalen bewegen, solange sie gezeigt wird</translation>
    </message>
    <message>
        <source>Move the clip plane against its normal, while it is shown</source>
        <translation>Die Schnittebene gegen ihre Normale bewegen, solange sie gezeigt wird</translation>
    </message>
    <message>
        <source>Start the turntable, when the Animation pane allows it</source>
        <translation>Den Drehteller starten, wenn der Bereich Animation es erlaubt</translation>
    </message>
    <message>
        <source>Delete the selected needle</source>
        <translation>Die ausgewählte Nadel löschen</translation>
    </message>
    <message>
        <source>Deselect needles; put a dragged clip plane back</source>
        <translation>Auswahl der Nadeln aufheben; eine gezogene Schnittebene zurücksetzen</translation>
    </message>
    <message>
        <source>Shortcuts</source>
        <translation>Tastenkürzel</translation>
    </message>
    <message>
        <source>Search for a key or a command</source>
        <translation>Nach einer Taste oder einem Befehl suchen</translation>
    </message>
    <message>
        <source>Keys or mouse</source>
        <translation>Tasten oder Maus</translation>
    </message>
    <message>
        <source>What they do</source>
        <translation>Was sie bewirken</translation>
    </message>
    <message>
        <source>Where</source>
        <translation>Wo</translation>
    </message>
    <message>
        <source>Pane %1</source>
        <translation>Bereich %1</translation>
    </message>
    <message>
        <source>Window</source>
        <translation>Fenster</translation>
    </message>
    <message>
        <source>Mouse in the view</source>
        <translation>Maus in der Ansicht</translation>
    </message>
    <message>
        <source>Keys in the view</source>
        <translation>Tasten in der Ansicht</translation>
    </message>
</context>
<context>
    <name>StatusLine</name>
    <message>
        <source>Show the messages about these files</source>
        <translation>Die Meldungen zu diesen Dateien zeigen</translation>
    </message>
    <message>
        <source>Time to draw the last frame</source>
        <translation>Zeit zum Zeichnen des letzten Bilds</translation>
    </message>
    <message>
        <source>Undo</source>
        <translation>Rückgängig</translation>
    </message>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Copy the coordinates of the last pick</source>
        <translation>Die Koordinaten des zuletzt gewählten Punkts kopieren</translation>
    </message>
    <message>
        <source>Copy the &amp;coordinates</source>
        <translation>&amp;Koordinaten kopieren</translation>
    </message>
    <message>
        <source>Copy the &amp;distance</source>
        <translation>&amp;Abstand kopieren</translation>
    </message>
    <message>
        <source>%1 ms</source>
        <translation>%1 ms</translation>
    </message>
    <message>
        <source>%1 s</source>
        <translation>%1 s</translation>
    </message>
    <message numerus="yes">
        <source>%Ln file(s) failed</source>
        <translation>
            <numerusform>%Ln Datei fehlgeschlagen</numerusform>
            <numerusform>%Ln Dateien fehlgeschlagen</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln object(s)</source>
        <translation>
            <numerusform>%Ln Objekt</numerusform>
            <numerusform>%Ln Objekte</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1 of %Ln object(s)</source>
        <translation>
            <numerusform>%1 von %Ln Objekt</numerusform>
            <numerusform>%1 von %Ln Objekten</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%Ln triangle(s)</source>
        <translation>
            <numerusform>%Ln Dreieck</numerusform>
            <numerusform>%Ln Dreiecke</numerusform>
        </translation>
    </message>
    <message numerus="yes">
        <source>%1 of %Ln triangle(s)</source>
        <translation>
            <numerusform>%1 von %Ln Dreieck</numerusform>
            <numerusform>%1 von %Ln Dreiecken</numerusform>
        </translation>
    </message>
    <message>
        <source>%1, %2</source>
        <comment>objects, triangles</comment>
        <translation>%1, %2</translation>
    </message>
</context>
<context>
    <name>TransformCommands</name>
    <message>
        <source>1 scan</source>
        <translation>1 Scan</translation>
    </message>
    <message>
        <source>%1 scans</source>
        <translation>%1 Scans</translation>
    </message>
    <message>
        <source>Take back alignment</source>
        <translation>Ausrichtung zurücknehmen</translation>
    </message>
    <message>
        <source>Take back %1 (%2)</source>
        <translation>%1 zurücknehmen (%2)</translation>
    </message>
    <message>
        <source>Taken back: %1 (%2)</source>
        <translation>Zurückgenommen: %1 (%2)</translation>
    </message>
</context>
<context>
    <name>TransformPanel</name>
    <message>
        <source>Copy</source>
        <translation>Kopieren</translation>
    </message>
    <message>
        <source>Copy 4 lines of 4 numbers, with tabs between them and all digits</source>
        <translation>4 Zeilen mit 4 Zahlen kopieren, mit Tabulatoren dazwischen und allen Stellen</translation>
    </message>
    <message>
        <source>Select an object in the list.</source>
        <translation>Wählen Sie ein Objekt in der Liste.</translation>
    </message>
</context>
<context>
    <name>ViewNote</name>
    <message numerus="yes">
        <source>%n object(s), all hidden. Check those to show in the Objects pane.</source>
        <translation>
            <numerusform>%n Objekt, verborgen. Haken Sie im Bereich Objekte an, was gezeigt werden soll.</numerusform>
            <numerusform>%n Objekte, alle verborgen. Haken Sie im Bereich Objekte an, was gezeigt werden soll.</numerusform>
        </translation>
    </message>
    <message>
        <source>Open scans and meshes with Ctrl+O, or drop them here.</source>
        <translation>Scans und Netze mit Strg+O öffnen oder hierher ziehen.</translation>
    </message>
    <message>
        <source>The render mode &quot;Background only&quot; shows no objects. Ctrl+3 shows them shaded.</source>
        <translation>Die Darstellung „Nur Hintergrund“ zeigt keine Objekte. Strg+3 zeigt sie schattiert.</translation>
    </message>
    <message>
        <source>The render mode &quot;Lit per pixel&quot; shows no objects while shadows are on. S switches shadows off.</source>
        <translation>Die Darstellung „Je Pixel beleuchtet“ zeigt keine Objekte, solange Schatten eingeschaltet sind. S schaltet sie aus.</translation>
    </message>
    <message>
        <source>The clip plane cuts everything away. P switches it off.</source>
        <translation>Die Schnittebene schneidet alles weg. P schaltet sie aus.</translation>
    </message>
</context>
<context>
    <name>ViewPicture</name>
    <message>
        <source>the viewer gave no picture of this size</source>
        <translation>die Ansicht lieferte kein Bild dieser Größe</translation>
    </message>
    <message>
        <source>a side is longer than the %1 pixels that the driver can draw</source>
        <translation>eine Seite ist länger als die %1 Pixel, die der Treiber zeichnen kann</translation>
    </message>
    <message>
        <source>the picture has more than %1 million pixels</source>
        <translation>das Bild hat mehr als %1 Millionen Pixel</translation>
    </message>
    <message>
        <source>the picture has no pixel</source>
        <translation>das Bild hat kein Pixel</translation>
    </message>
    <message>
        <source>a transparent picture needs a still scene: wait for the animation</source>
        <translation>ein durchsichtiges Bild braucht eine ruhende Szene: die Animation abwarten</translation>
    </message>
</context>
<context>
    <name>ViewerWidget</name>
    <message>
        <source>the viewer needs X11, and Qt runs on &quot;%1&quot;</source>
        <translation>die Ansicht braucht X11, und Qt läuft auf „%1“</translation>
    </message>
    <message>
        <source>The viewer has lost its window.</source>
        <translation>Die Ansicht hat ihr Fenster verloren.</translation>
    </message>
    <message>
        <source>The viewer could not follow the widget into its new window.</source>
        <translation>Die Ansicht konnte dem Bereich nicht in sein neues Fenster folgen.</translation>
    </message>
    <message>
        <source>KV_ScenePane</source>
        <translation>KV_ScenePane</translation>
    </message>
</context>
<context>
    <name>WindowShell</name>
    <message>
        <source>&amp;Full screen</source>
        <translation>&amp;Vollbild</translation>
    </message>
    <message>
        <source>&amp;Hide all panes</source>
        <translation>Alle &amp;Bereiche verbergen</translation>
    </message>
    <message>
        <source>Cover the whole screen; F11 or Escape returns to the window</source>
        <translation>Den ganzen Bildschirm ausfüllen; F11 oder Esc kehrt zum Fenster zurück</translation>
    </message>
    <message>
        <source>%1: not found</source>
        <translation>%1: nicht gefunden</translation>
    </message>
    <message>
        <source>No file was opened yet</source>
        <translation>Noch wurde keine Datei geöffnet</translation>
    </message>
    <message>
        <source>&amp;Clear list</source>
        <translation>&amp;Liste leeren</translation>
    </message>
    <message>
        <source>Give the scene the whole width; F9 opens the same panes again</source>
        <translation>Der Szene die ganze Breite geben; F9 öffnet dieselben Bereiche wieder</translation>
    </message>
</context>
<context>
    <name>WindowTitle</name>
    <message>
        <source>scenepane</source>
        <translation>scenepane</translation>
    </message>
    <message numerus="yes">
        <source>%1 and %Ln more</source>
        <translation>
            <numerusform>%1 und %Ln weitere</numerusform>
            <numerusform>%1 und %Ln weitere</numerusform>
        </translation>
    </message>
</context>
</TS>
