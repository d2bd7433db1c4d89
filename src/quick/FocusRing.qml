import QtQuick

// Drawn round whatever has the keyboard focus, in the control's own ink, just inside its edge.
Rectangle {
    property color ink: "white"
    property real cornerRadius: 0
    anchors.fill: parent
    anchors.margins: 3
    radius: Math.max(0, cornerRadius - 2)
    color: "transparent"
    border.color: ink
    border.width: 2
}
