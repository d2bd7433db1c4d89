import QtQuick
import VextilToolkit

// The host's entry point in QML: place it over the window's content (it fills its parent),
// call requestFace(), and hear finished() once per flow: (true, {}) when the user accepted the
// capture, (false, error 421) when it failed or was cancelled. sendFaceData() uploads what was
// accepted; sent(answer) or sendFailed(error) answers each send once.
FocusScope {
    id: capture
    anchors.fill: parent
    z: 1000
    visible: flow.stage !== FaceFlow.Idle

    /// Whether the next capture opens with the tutorial.
    property bool presentTutorial: true
    /// A video file standing in for the camera (for demos and tests); empty: the camera.
    property string videoFile
    /// The flow's screen now: FaceFlow.Idle, Camera, Review or Closing.
    readonly property alias stage: flow.stage
    /// Sends not answered yet.
    readonly property alias sending: flow.sending
    /// The camera screen while a flow is open (its session carries the capture's figures).
    readonly property alias cameraScreen: cameraLoader.item
    /// The review while it shows.
    readonly property alias reviewScreen: reviewLoader.item

    signal finished(bool success, var error)
    signal sent(var answer)
    signal sendFailed(var error)

    function requestFace() {
        if (flow.stage === FaceFlow.Idle) {
            Theme.refresh()
            focusBefore = capture.Window.activeFocusItem
        }
        flow.requestFace()
    }
    function sendFaceData() { flow.sendFaceData() }

    property Item focusBefore

    // Tab and Shift+Tab go round the top-most screen's own controls (or its overlay's), never
    // to covered ones or the host's beneath.
    FocusTrap {
        scope: {
            if (reviewLoader.item)
                return reviewLoader.item
            return cameraLoader.item ? cameraLoader.item.keyboardScope : null
        }
    }

    readonly property int slideMs: 250

    // Modal while any screen shows: no press, touch, wheel or hover reaches the host's items
    // beneath, also where a screen draws nothing (between its controls, below one sliding in).
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons
        hoverEnabled: true
        preventStealing: true
        onWheel: (wheel) => wheel.accepted = true
    }
    // Keys the screens leave unhandled stop here rather than travel up to the host's items, and
    // the host's shortcuts wait until the flow is over.
    Keys.onPressed: (event) => event.accepted = true
    Keys.onReleased: (event) => event.accepted = true
    Keys.onShortcutOverride: (event) => event.accepted = true

    FaceFlow {
        id: flow
        onFinished: (success, error) => capture.finished(success, error)
        onSent: (answer) => capture.sent(answer)
        onSendFailed: (error) => capture.sendFailed(error)
        onStageChanged: capture.followStage()
    }
    function followStage() {
        switch (flow.stage) {
        case FaceFlow.Camera:
            if (!cameraLoader.active) {
                cameraLoader.active = true
                slideIn(cameraLoader)
            } else {
                reviewLoader.active = false  // goes at once, so the camera shows again at once
                cameraLoader.item.covered = false
                cameraLoader.item.arrive()
            }
            break
        case FaceFlow.Review:
            reviewLoader.active = true
            cameraLoader.item.covered = true
            slideIn(reviewLoader)
            break
        case FaceFlow.Closing:
            // The focus goes back to the host's control now: the screens are leaving, and none
            // of their controls may take it on the way out.
            if (capture.focusBefore)
                capture.focusBefore.forceActiveFocus()
            reviewLoader.active = false
            if (cameraLoader.item)
                cameraLoader.item.session.leaving = true
            slideOut.start()
            break
        case FaceFlow.Idle:
            break
        }
    }
    function slideIn(loader) {
        loader.y = capture.height
        loader.item.arrive()
        slideUp.target = loader
        slideUp.restart()
    }

    Loader {
        id: cameraLoader
        width: capture.width
        height: capture.height
        active: false
        focus: !reviewLoader.active
        sourceComponent: CameraScreen {
            presentTutorial: capture.presentTutorial
            videoFile: capture.videoFile
            onFinished: (success) => flow.captureFinished(success)
        }
    }
    Loader {
        id: reviewLoader
        width: capture.width
        height: capture.height
        active: false
        focus: active
        sourceComponent: ReviewScreen {
            onAnswered: (accepted) => flow.reviewFinished(accepted)
        }
    }

    NumberAnimation { id: slideUp; property: "y"; to: 0; duration: capture.slideMs; easing.type: Easing.OutCubic }
    NumberAnimation {
        id: slideOut
        target: cameraLoader; property: "y"; to: capture.height; duration: capture.slideMs; easing.type: Easing.InCubic
        onFinished: {
            cameraLoader.active = false
            flow.screensClosed()
        }
    }
}
