import QtQuick
import VextilToolkit

// A screen's bar: its title at the bottom, the back button at the left, help at the right.
Item {
    id: bar
    property string title
    property bool showsHelp: false
    property color titleColor: "white"
    property color backColor: "white"
    property color helpColor: "white"
    property alias backButton: back
    property alias helpButton: help
    property alias titleItem: titleText
    signal backPressed()
    signal helpPressed()

    Text {
        id: titleText
        text: bar.title
        color: bar.titleColor
        font.pixelSize: 16
        // Its natural width, never more than the bar: a long title shrinks to 0.7 of its size
        // before it is cut.
        width: Math.min(implicitWidth, bar.width)
        fontSizeMode: Text.HorizontalFit
        minimumPixelSize: Math.round(font.pixelSize * 0.7)
        elide: Text.ElideRight
        horizontalAlignment: Text.AlignHCenter
        anchors.horizontalCenter: parent.horizontalCenter
        anchors.bottom: parent.bottom
        anchors.bottomMargin: 10
        Accessible.ignored: true  // the screen carries the same name
    }
    IconButton {
        id: back
        name: "back_icon"
        tint: bar.backColor
        accessibleName: qsTranslate("VextilToolkit", "Back")
        anchors.left: parent.left
        anchors.leftMargin: 10
        anchors.verticalCenter: titleText.verticalCenter
        onPressed: bar.backPressed()
    }
    IconButton {
        id: help
        visible: bar.showsHelp
        name: "help_icon"
        tint: bar.helpColor
        accessibleName: qsTranslate("VextilToolkit", "Help")
        anchors.right: parent.right
        anchors.rightMargin: 10
        anchors.verticalCenter: titleText.verticalCenter
        onPressed: bar.helpPressed()
    }
}
