<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" sourcelanguage="en">
<context>
    <name>VextilToolkit</name>
    <message>
        <source>Checking your face</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Looking for face</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Face frame</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Face frame, face found</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>SMILE!</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Register selfie</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Progress</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Are all the fields in the above document readable?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Do you want to submit this video for review?</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Yes, send document</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Yes, send</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No, take another photo.</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Send document</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Send selfie</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Captured photo</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Look for a brighter spot  with no light reflection</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Remove any glasses and hat</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Smile to save the photo</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The photo is taken automatically</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>OK, I got it</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Back</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Help</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Relax your face</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>No camera found</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>The camera is not responding</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>%1, photo %2 of %3</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Camera preview</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Tips</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Move closer</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Move back</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Center your face</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Find more light</source>
        <translation type="unfinished"></translation>
    </message>
    <message>
        <source>Hold still</source>
        <translation type="unfinished"></translation>
    </message>
</context>
</TS>
