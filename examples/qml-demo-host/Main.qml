import QtQuick
import QtQuick.Window
import VextilToolkit

// The QML demo host: a key is set in C++, the window offers "Take selfie" and "Send", shows
// the result, and the toolkit's FaceCapture lies over it.
Window {
    id: window
    title: "VextilToolkit QML demo host"
    width: 390
    height: 844
    visible: true
    color: "#f4f4f4"

    // Set by main.cpp from the command line.
    property bool presentTutorial: true
    property string cameraFile
    property string result: "No selfie yet."
    property bool canSend: false
    readonly property alias capture: capture

    signal captureEnded(bool success)
    signal sendEnded(bool sent)

    function describe(what, error) {
        return what + " failed: error " + error.code + " (" + error.domain + ")\n" + error.description + "\n" + error.recoverySuggestion
    }
    function takeSelfie() { capture.requestFace() }
    function send() {
        canSend = false
        result = "Sending…"
        capture.sendFaceData()
    }

    Column {
        x: 24; y: 48
        width: window.width - 48
        spacing: 16
        Text { text: "Demo host"; font.pixelSize: 24; font.bold: true }
        Text { text: "Take a selfie, then send it for verification."; width: parent.width; wrapMode: Text.WordWrap }
        HostButton { id: take; text: "Take selfie"; focus: true; onActivated: window.takeSelfie() }
        HostButton { text: "Send"; enabled: window.canSend; onActivated: window.send() }
        Text {
            width: parent.width
            wrapMode: Text.Wrap
            text: window.result
            Accessible.role: Accessible.StaticText
            Accessible.name: text
        }
    }

    FaceCapture {
        id: capture
        presentTutorial: window.presentTutorial
        videoFile: window.cameraFile
        onFinished: (success, error) => {
            window.result = success ? "Selfie taken: 5 neutral and 2 smiling images are ready to send."
                                    : window.describe("The selfie", error)
            window.canSend = success
            window.captureEnded(success)
        }
        onSent: (answer) => {
            window.result = "Sent. The service answered:\n" + JSON.stringify(answer, null, 4)
            window.sendEnded(true)
        }
        onSendFailed: (error) => {
            window.result = window.describe("The upload", error)
            window.canSend = true  // the images are kept for a retry
            window.sendEnded(false)
        }
    }

    component HostButton: Rectangle {
        id: button
        property string text
        signal activated()
        width: 200; height: 44; radius: 6
        color: enabled ? (mouse.pressed ? "#d0d0d0" : "#e0e0e0") : "#eeeeee"
        border.color: activeFocus ? "#1a73e8" : "#b0b0b0"
        border.width: activeFocus ? 2 : 1
        activeFocusOnTab: true
        Accessible.role: Accessible.Button
        Accessible.name: text
        Accessible.onPressAction: if (enabled) activated()
        Keys.onSpacePressed: if (enabled) activated()
        Text { anchors.centerIn: parent; text: button.text; color: button.enabled ? "black" : "#999999" }
        MouseArea { id: mouse; anchors.fill: parent; onClicked: if (button.enabled) button.activated() }
    }
}
