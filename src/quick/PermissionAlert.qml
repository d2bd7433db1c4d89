import QtQuick
import VextilToolkit

// Camera access was refused: the user may open the settings or give up the capture. These
// texts are fixed, not translated.
FocusScope {
    id: alert
    signal settings()
    signal cancelled()
    visible: false
    function open() {
        visible = true
        settingsButton.forceActiveFocus()
    }

    MouseArea { anchors.fill: parent }
    Rectangle { anchors.fill: parent; color: Qt.rgba(0, 0, 0, 0.4) }
    Rectangle {
        id: panel
        anchors.centerIn: parent
        width: Math.min(parent.width - 40, 300)
        height: column.height + 32
        radius: 12
        color: "white"
        Accessible.role: Accessible.AlertMessage
        Accessible.name: "Error"
        Accessible.description: message.text
        Column {
            id: column
            x: 16; y: 16
            width: panel.width - 32
            spacing: 12
            Text { text: "Error"; font.bold: true; font.pixelSize: 17; width: parent.width; horizontalAlignment: Text.AlignHCenter }
            Text {
                id: message
                text: "You need to allow this app to access this device's camera."
                font.pixelSize: 14; width: parent.width; wrapMode: Text.WordWrap; horizontalAlignment: Text.AlignHCenter
            }
            ActionButton {
                id: settingsButton
                width: parent.width; height: 40
                text: "Settings"; titleColor: "#007aff"; background: "#f2f2f7"
                actsOnRelease: true
                onPressed: { alert.visible = false; alert.settings() }
            }
            ActionButton {
                width: parent.width; height: 40
                text: "Cancel"; titleColor: "#ff3b30"; background: "#f2f2f7"
                actsOnRelease: true
                onPressed: { alert.visible = false; alert.cancelled() }
            }
        }
    }
}
