<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="de" sourcelanguage="en">
<context>
    <name>VextilToolkit</name>
    <message>
        <source>Checking your face</source>
        <translation>Gesicht wird geprüft</translation>
    </message>
    <message>
        <source>Looking for face</source>
        <translation>Gesicht wird gesucht</translation>
    </message>
    <message>
        <source>Face frame</source>
        <translation>Gesichtsrahmen</translation>
    </message>
    <message>
        <source>Face frame, face found</source>
        <translation>Gesichtsrahmen, Gesicht erkannt</translation>
    </message>
    <message>
        <source>SMILE!</source>
        <translation>BITTE LÄCHELN!</translation>
    </message>
    <message>
        <source>Register selfie</source>
        <translation>Selfie aufnehmen</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Fortschritt</translation>
    </message>
    <message>
        <source>Are all the fields in the above document readable?</source>
        <translation>Sind alle Felder im Dokument oben lesbar?</translation>
    </message>
    <message>
        <source>Do you want to submit this video for review?</source>
        <translation>Möchten Sie dieses Video zur Prüfung senden?</translation>
    </message>
    <message>
        <source>Yes, send document</source>
        <translation>Ja, Dokument senden</translation>
    </message>
    <message>
        <source>Yes, send</source>
        <translation>Ja, senden</translation>
    </message>
    <message>
        <source>No, take another photo.</source>
        <translation>Nein, neues Foto aufnehmen.</translation>
    </message>
    <message>
        <source>Send document</source>
        <translation>Dokument senden</translation>
    </message>
    <message>
        <source>Send selfie</source>
        <translation>Selfie senden</translation>
    </message>
    <message>
        <source>Captured photo</source>
        <translation>Aufgenommenes Foto</translation>
    </message>
    <message>
        <source>Look for a brighter spot  with no light reflection</source>
        <translation>Suchen Sie einen hellen Ort ohne Lichtreflexe</translation>
    </message>
    <message>
        <source>Remove any glasses and hat</source>
        <translation>Nehmen Sie Brille und Hut ab</translation>
    </message>
    <message>
        <source>Smile to save the photo</source>
        <translation>Lächeln Sie, um das Foto zu speichern</translation>
    </message>
    <message>
        <source>The photo is taken automatically</source>
        <translation>Das Foto wird automatisch aufgenommen</translation>
    </message>
    <message>
        <source>OK, I got it</source>
        <translation>OK, verstanden</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Zurück</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Hilfe</translation>
    </message>
    <message>
        <source>Relax your face</source>
        <translation>Entspannen Sie Ihr Gesicht</translation>
    </message>
    <message>
        <source>No camera found</source>
        <translation>Keine Kamera gefunden</translation>
    </message>
    <message>
        <source>The camera is not responding</source>
        <translation>Die Kamera reagiert nicht</translation>
    </message>
    <message>
        <source>%1, photo %2 of %3</source>
        <translation>%1, Foto %2 von %3</translation>
    </message>
    <message>
        <source>Camera preview</source>
        <translation>Kameravorschau</translation>
    </message>
    <message>
        <source>Tips</source>
        <translation>Tipps</translation>
    </message>
    <message>
        <source>Move closer</source>
        <translation>Kommen Sie näher</translation>
    </message>
    <message>
        <source>Move back</source>
        <translation>Gehen Sie etwas zurück</translation>
    </message>
    <message>
        <source>Center your face</source>
        <translation>Zentrieren Sie Ihr Gesicht</translation>
    </message>
    <message>
        <source>Find more light</source>
        <translation>Suchen Sie mehr Licht</translation>
    </message>
    <message>
        <source>Hold still</source>
        <translation>Halten Sie still</translation>
    </message>
</context>
</TS>
