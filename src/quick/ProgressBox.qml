import QtQuick
import VextilToolkit

// The camera screen's status line and progress bar. The line holds the keyboard focus while the
// capture runs; its accessible name is the whole status, which a screen reader speaks as it
// changes.
Item {
    id: box
    property CaptureSession session
    property alias status: statusLine

    Item {
        id: statusLine
        x: 0
        width: box.width
        height: 20 + 12  // the line grown by 6 above and below, to hold the focus ring clear of the text
        y: bar.y - 30 - 20 - 6
        activeFocusOnTab: true
        Accessible.role: Accessible.StaticText
        Accessible.name: box.session ? box.session.status : ""
        Accessible.focusable: true
        Text {
            id: instruction
            anchors.fill: parent
            anchors.topMargin: 6
            anchors.bottomMargin: 6
            text: box.session ? box.session.instruction : ""
            color: "white"
            font.pixelSize: 18
            fontSizeMode: Text.HorizontalFit
            minimumPixelSize: 8
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            Accessible.ignored: true
        }
        Rectangle {
            visible: statusLine.activeFocus
            anchors.centerIn: parent
            width: Math.min(parent.width, instruction.contentWidth + 16)
            height: parent.height
            radius: 4
            color: "transparent"
            border.color: "white"
            border.width: 2
        }
    }
    Rectangle {
        id: bar
        visible: box.session ? box.session.progressShown : true
        width: box.width * 0.8
        height: 15
        x: (box.width - width) / 2
        y: box.height / 2 + 10 - height / 2
        radius: 4
        color: Theme.progressTrack
        clip: true
        Accessible.role: Accessible.Indicator
        Accessible.name: qsTranslate("VextilToolkit", "Progress")
        Accessible.description: Math.round((box.session ? box.session.progress : 0) * 100) + "%"
        property real shown: box.session ? box.session.progress : 0
        Behavior on shown { NumberAnimation { duration: 500; easing.type: Easing.Linear } }
        Rectangle {
            width: bar.width * Math.max(0, Math.min(1, bar.shown))
            height: bar.height
            radius: bar.shown > 0 ? 4 : 0
            color: Theme.progressFill
        }
    }
}
