import QtQuick
import VextilToolkit

// A screen's answer button: rounded, titled, with an optional picture before the title; acts as
// the finger lands, or on Space with the focus. An alert's button acts as the finger lifts over it
// instead (`actsOnRelease`), so that a finger slid away leaves the alert undecided. The title
// shrinks to fit, never grows.
Rectangle {
    id: button
    property string text
    property color titleColor: "white"
    property color background: "transparent"
    property string iconName
    property int pixelSize: 16
    property bool bold: false
    property string description
    property bool actsOnRelease: false
    signal pressed()

    radius: 5
    color: mouse.pressed ? Qt.darker(background, 1.15) : background
    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: text
    Accessible.description: description
    Accessible.focusable: true
    Accessible.onPressAction: button.pressed()
    Keys.onSpacePressed: button.pressed()

    Row {
        id: content
        anchors.centerIn: parent
        // A picture and its title sit 15 apart, the pair centred.
        spacing: button.iconName ? 15 : 0
        Artwork {
            name: button.iconName
            visible: button.iconName !== ""
            width: visible ? implicitWidth : 0
            height: implicitHeight
            anchors.verticalCenter: parent.verticalCenter
            Accessible.ignored: true
        }
        Text {
            text: button.text
            color: button.titleColor
            font.pixelSize: Math.max(10, Math.min(button.pixelSize, Math.floor(button.height * 0.6)))
            font.bold: button.bold
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: 10
            width: Math.min(implicitWidth, button.width - 8 - (button.iconName ? 24 + 15 : 0))
            height: button.height
            verticalAlignment: Text.AlignVCenter
            horizontalAlignment: Text.AlignHCenter
            Accessible.ignored: true
        }
    }
    FocusRing {
        visible: button.activeFocus
        ink: button.titleColor
        cornerRadius: button.radius
    }
    MouseArea {
        id: mouse
        anchors.fill: parent
        onPressed: if (!button.actsOnRelease) button.pressed()
        onClicked: if (button.actsOnRelease) button.pressed()
    }
}
