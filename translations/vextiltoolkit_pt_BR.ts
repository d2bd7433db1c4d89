<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="pt_BR" sourcelanguage="en">
<context>
    <name>VextilToolkit</name>
    <message>
        <source>Checking your face</source>
        <translation>Verificando seu rosto</translation>
    </message>
    <message>
        <source>Looking for face</source>
        <translation>Procurando o rosto</translation>
    </message>
    <message>
        <source>Face frame</source>
        <translation>Moldura do rosto</translation>
    </message>
    <message>
        <source>Face frame, face found</source>
        <translation>Moldura do rosto, rosto encontrado</translation>
    </message>
    <message>
        <source>SMILE!</source>
        <translation>SORRIA!</translation>
    </message>
    <message>
        <source>Register selfie</source>
        <translation>Registrar selfie</translation>
    </message>
    <message>
        <source>Progress</source>
        <translation>Progresso</translation>
    </message>
    <message>
        <source>Are all the fields in the above document readable?</source>
        <translation>Todos os campos do documento acima estão legíveis?</translation>
    </message>
    <message>
        <source>Do you want to submit this video for review?</source>
        <translation>Deseja enviar este vídeo para análise?</translation>
    </message>
    <message>
        <source>Yes, send document</source>
        <translation>Sim, enviar documento</translation>
    </message>
    <message>
        <source>Yes, send</source>
        <translation>Sim, enviar</translation>
    </message>
    <message>
        <source>No, take another photo.</source>
        <translation>Não, tirar outra foto.</translation>
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
        <translation>Procure um lugar mais claro, sem reflexos de luz</translation>
    </message>
    <message>
        <source>Remove any glasses and hat</source>
        <translation>Tire os óculos e o chapéu</translation>
    </message>
    <message>
        <source>Smile to save the photo</source>
        <translation>Sorria para salvar a foto</translation>
    </message>
    <message>
        <source>The photo is taken automatically</source>
        <translation>A foto é tirada automaticamente</translation>
    </message>
    <message>
        <source>OK, I got it</source>
        <translation>OK, entendi</translation>
    </message>
    <message>
        <source>Back</source>
        <translation>Voltar</translation>
    </message>
    <message>
        <source>Help</source>
        <translation>Ajuda</translation>
    </message>
    <message>
        <source>Relax your face</source>
        <translation>Relaxe o rosto</translation>
    </message>
    <message>
        <source>No camera found</source>
        <translation>Nenhuma câmera encontrada</translation>
    </message>
    <message>
        <source>The camera is not responding</source>
        <translation>A câmera não está respondendo</translation>
    </message>
    <message>
        <source>%1, photo %2 of %3</source>
        <translation>%1, foto %2 de %3</translation>
    </message>
    <message>
        <source>Camera preview</source>
        <translation>Pré-visualização da câmera</translation>
    </message>
    <message>
        <source>Tips</source>
        <translation>Dicas</translation>
    </message>
    <message>
        <source>Move closer</source>
        <translation>Aproxime-se</translation>
    </message>
    <message>
        <source>Move back</source>
        <translation>Afaste-se um pouco</translation>
    </message>
    <message>
        <source>Center your face</source>
        <translation>Centralize o rosto</translation>
    </message>
    <message>
        <source>Find more light</source>
        <translation>Procure mais luz</translation>
    </message>
    <message>
        <source>Hold still</source>
        <translation>Não se mexa</translation>
    </message>
</context>
</TS>
