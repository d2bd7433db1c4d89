import QtQuick
import VextilToolkit

// A bar's icon button (back, help): acts as the finger lands, or on Space with the focus.
Item {
    id: button
    property alias name: icon.name
    property alias tint: icon.tint
    property string accessibleName
    signal pressed()

    implicitWidth: 28
    implicitHeight: 28
    activeFocusOnTab: true
    Accessible.role: Accessible.Button
    Accessible.name: accessibleName
    Accessible.focusable: true
    Accessible.onPressAction: button.pressed()
    Keys.onSpacePressed: button.pressed()

    Artwork {
        id: icon
        anchors.fill: parent
        Accessible.ignored: true
    }
    FocusRing {
        visible: button.activeFocus
        ink: button.tint
        cornerRadius: 5
    }
    MouseArea {
        anchors.fill: parent
        onPressed: button.pressed()
    }
}
