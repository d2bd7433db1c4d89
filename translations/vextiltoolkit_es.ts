<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es" sourcelanguage="en">
<context>
    <name>VextilToolkit</name>
    <message>
        <source>Checking your face</source>
        <translation>Comprobando tu rostro</translation>
    </message>
    <message>
        <source>Looking for face</source>
        <translation>Buscando tu rostro</translation>
    </message>
    <message>
        <source>Face frame</source>
        <translation>Marco del rostro</translation>
    </message>
    <message>
        <source>Face frame, face found</source>
        <translation>Marco del rostro, rostro detectado</translation>
    </message>
    <message>
        <source>SMILE!</source>
        <translation>¡SONRÍE!</translation>
    </message>
    <message>
        <source>Register selfie</source>
        <translation>Registrar selfie</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Progreso</translation>
    </message>
    <message>
        <source>Are all the fields in the above document readable?</source>
        <translation>¿Se leen bien todos los campos del documento?</translation>
    </message>
    <message>
        <source>Do you want to submit this video for review?</source>
        <translation>¿Quieres enviar este vídeo para su revisión?</translation>
    </message>
    <message>
        <source>Yes, send document</source>
        <translation>Sí, enviar documento</translation>
    </message>
    <message>
        <source>Yes, send</source>
        <translation>Sí, enviar</translation>
    </message>
    <message>
        <source>No, take another photo.</source>
        <translation>No, hacer otra foto.</translation>
    </message>
    <message>
        <source>Send document</source>
        <translation>Enviar documento</translation>
    </message>
    <message>
        <source>Send selfie</source>
        <translation>Enviar selfie</translation>
    </message>
    <message>
        <source>Captured photo</source>
        <translation>Foto capturada</translation>
    </message>
    <message>
        <source>Look for a brighter spot  with no light reflection</source>
        <translation>Busca un sitio más iluminado y sin reflejos</translation>
    </message>
    <message>
        <source>Remove any glasses and hat</source>
        <translation>Quítate las gafas y el sombrero</translation>
    </message>
    <message>
        <source>Smile to save the photo</source>
        <translation>Sonríe para guardar la foto</translation>
    </message>
    <message>
        <source>The photo is taken automatically</source>
        <translation>La foto se hace automáticamente</translation>
    </message>
    <message>
        <source>OK, I got it</source>
        <translation>Vale, entendido</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Atrás</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Ayuda</translation>
    </message>
    <message>
        <source>Relax your face</source>
        <translation>Relaja la cara</translation>
    </message>
    <message>
        <source>No camera found</source>
        <translation>No se encontró ninguna cámara</translation>
    </message>
    <message>
        <source>The camera is not responding</source>
        <translation>La cámara no responde</translation>
    </message>
    <message>
        <source>%1, photo %2 of %3</source>
        <translation>%1, foto %2 de %3</translation>
    </message>
    <message>
        <source>Camera preview</source>
        <translation>Vista previa de la cámara</translation>
    </message>
    <message>
        <source>Tips</source>
        <translation>Consejos</translation>
    </message>
    <message>
        <source>Move closer</source>
        <translation>Acércate</translation>
    </message>
    <message>
        <source>Move back</source>
        <translation>Aléjate un poco</translation>
    </message>
    <message>
        <source>Center your face</source>
        <translation>Centra la cara</translation>
    </message>
    <message>
        <source>Find more light</source>
        <translation>Busca más luz</translation>
    </message>
    <message>
        <source>Hold still</source>
        <translation>No te muevas</translation>
    </message>
</context>
</TS>
