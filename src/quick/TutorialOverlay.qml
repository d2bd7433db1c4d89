import QtQuick
import VextilToolkit

// The four tips over the camera screen: what lies beneath blurred and darkened, the tips in a
// rounded box that shrinks (text included) to fit a short or narrow screen, and one button that
// starts closing it as the finger lands.
FocusScope {
    id: overlay
    property Item backdrop
    signal closed()

    readonly property real boxWidth: 288
    readonly property real boxHeight: 454
    readonly property real margin: 12
    readonly property rect room: PortraitLayout.region(width, height)
    readonly property real k: Math.max(0.1, Math.min(1, Math.min((room.width - 2 * margin) / boxWidth,
                                                                 (room.height - 2 * margin) / boxHeight)))
    property bool closing: false

    opacity: 0
    // With less transparency asked for: black at 75%, box included, instead of a blur.
    readonly property real shownOpacity: Theme.reduceTransparency ? 0.75 : 1
    Component.onCompleted: {
        if (!Theme.reduceTransparency)
            blur.capture()
        fadeIn.start()
        next.forceActiveFocus()
    }
    NumberAnimation on opacity { id: fadeIn; running: false; to: overlay.shownOpacity; duration: 100 }
    NumberAnimation {
        id: fadeOut
        target: overlay; property: "opacity"; to: 0; duration: 250
        onFinished: overlay.closed()
    }
    function close() {
        if (closing)
            return
        closing = true
        fadeIn.stop()  // a fade-in still running gives way; the fade-out starts where it was
        fadeOut.start()
    }

    MouseArea { anchors.fill: parent }  // nothing beneath takes a touch while the tips show
    Rectangle { anchors.fill: parent; color: "black"; visible: Theme.reduceTransparency }
    BlurredBackdrop {
        id: blur
        anchors.fill: parent
        source: overlay.backdrop
        visible: !Theme.reduceTransparency
    }

    Rectangle {
        id: box
        width: overlay.boxWidth * overlay.k
        height: overlay.boxHeight * overlay.k
        anchors.centerIn: parent
        radius: 5
        color: Theme.popUpBackground
        // The dialog's landmark: the box, not the focus scope, which would claim the focus too.
        Accessible.role: Accessible.Dialog
        Accessible.name: qsTranslate("VextilToolkit", "Tips")

        readonly property real side: width * 0.35
        readonly property real labelAspect: 18 / 49
        readonly property real k: overlay.k

        Tip { id: light; icon: "ilustra_light"; x: 30 * box.k; y: 40 * box.k; labelWidth: box.side * 1.1
              text: qsTranslate("VextilToolkit", "Look for a brighter spot  with no light reflection") }
        Tip { id: hat; icon: "ilustraHat"; x: box.width - 30 * box.k - box.side; y: light.y; labelWidth: box.side * 1.1
              text: qsTranslate("VextilToolkit", "Remove any glasses and hat") }
        Tip { id: smileTip; icon: "ilustraSmile"; x: light.x; y: light.y + box.side + box.side * 1.1 * box.labelAspect + 20 * box.k
              labelWidth: box.side
              text: qsTranslate("VextilToolkit", "Smile to save the photo") }
        Tip { id: automatic; icon: "ilustra_automatic"; x: hat.x; y: smileTip.y; labelWidth: box.side
              ownHeight: true
              text: qsTranslate("VextilToolkit", "The photo is taken automatically") }

        ActionButton {
            id: next
            width: box.width * 0.8
            height: 44 * box.k
            anchors.horizontalCenter: parent.horizontalCenter
            anchors.bottom: parent.bottom
            anchors.bottomMargin: 20 * box.k
            text: qsTranslate("VextilToolkit", "OK, I got it")
            titleColor: Theme.popUpButtonTint
            background: Theme.popUpButtonBackground
            pixelSize: Math.max(1, Math.round(19 * box.k))
            bold: true
            onPressed: overlay.close()
        }
    }

    // One tip: its picture (a square, or its own height for the last) and the caption under it.
    component Tip: Item {
        id: tip
        property string icon
        property string text
        property real labelWidth
        property bool ownHeight: false
        width: box.side
        height: box.side
        Artwork {
            id: picture
            name: tip.icon
            tint: Theme.popUpIcon
            width: box.side
            height: tip.ownHeight ? implicitHeight * box.k : box.side
            anchors.verticalCenter: parent.verticalCenter
            Accessible.ignored: true  // the caption beside it is the tip, read once
        }
        Text {
            x: (box.side - width) / 2
            y: box.side  // under the square the pictures share, whatever their own heights
            width: tip.labelWidth
            height: tip.labelWidth * box.labelAspect
            text: tip.text
            color: Theme.popUpText
            font.pixelSize: Math.max(1, Math.round(10 * box.k))
            wrapMode: Text.WordWrap
            maximumLineCount: 3
            elide: Text.ElideRight
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignTop
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }
}
