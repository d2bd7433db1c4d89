import QtQuick
import VextilToolkit

// The camera screen: bar, live picture with the face frame, status and progress; the tutorial
// over it. What it decides lives in its CaptureSession, shared with the Widgets screen.
FocusScope {
    id: screen
    property alias session: session
    property alias videoFile: session.videoFile
    property bool presentTutorial: true
    // Covered by the review: the camera rests, as it does behind a hidden window.
    property bool covered: false
    signal finished(bool success)
    // What the keyboard may reach now: the permission alert, the tips, or the screen itself.
    readonly property Item keyboardScope: alert.visible ? alert : (tutorial.item ? tutorial.item : screen)

    CaptureSession {
        id: session
        shown: screen.visible && !screen.covered && screen.Window.visibility !== Window.Minimized
               && screen.Window.visibility !== Window.Hidden
        onFinished: (success) => screen.finished(success)
        onPermissionDenied: alert.open()
        onPermissionGranted: {
            alert.visible = false
            box.status.forceActiveFocus()
        }
    }

    // The first frame on the screen after a new instruction shows it: there the felt delay ends.
    Connections {
        target: screen.Window.window
        function onFrameSwapped() { session.instructionPainted() }
    }

    Rectangle { anchors.fill: parent; color: "black" }

    Item {
        id: region
        readonly property rect area: PortraitLayout.region(screen.width, screen.height)
        x: area.x; y: area.y; width: area.width; height: area.height
        // The screen's landmark sits on a plain item: a focus scope claims the focus with its
        // focused child, and a reader must hear one focused object at a time.
        Accessible.role: Accessible.Pane
        Accessible.name: qsTranslate("VextilToolkit", "Register selfie")

        NavigationBar {
            id: bar
            width: region.width
            height: region.height * 0.09
            title: qsTranslate("VextilToolkit", "Register selfie")
            showsHelp: true
            onBackPressed: session.finish(false)
            onHelpPressed: screen.showTutorial()
        }
        Item {
            id: between
            y: bar.height
            width: region.width
            height: box.y - bar.height
            Item {
                id: cameraView
                readonly property rect area: PortraitLayout.cameraView(between.width, between.height)
                x: area.x; y: area.y; width: area.width; height: area.height
                clip: true
                onWidthChanged: screen.tellViewSize()
                onHeightChanged: screen.tellViewSize()

                CameraPreview {
                    anchors.fill: parent
                    session: session
                    Accessible.role: Accessible.Animation
                    Accessible.name: qsTranslate("VextilToolkit", "Camera preview")
                }
                Artwork {
                    anchors.fill: parent
                    fill: true
                    name: session.faceFound ? "borda_verde" : "borda_branca"
                    Accessible.role: Accessible.Graphic
                    Accessible.name: session.faceFound ? qsTranslate("VextilToolkit", "Face frame, face found")
                                                       : qsTranslate("VextilToolkit", "Face frame")
                }
                Artwork {
                    name: "logo_vextil"
                    width: implicitWidth; height: implicitHeight
                    anchors.right: parent.right
                    anchors.top: parent.top
                    Accessible.role: Accessible.Graphic
                    Accessible.name: "Vextil"
                }
                Rectangle {
                    id: smile
                    visible: session.smilePrompt
                    width: 150; height: 45
                    anchors.centerIn: parent
                    radius: 15
                    color: Theme.smileBackground
                    border.color: Theme.smileText
                    border.width: 2
                    Accessible.ignored: true  // said through the status, which has the focus
                    Text {
                        anchors.fill: parent
                        text: qsTranslate("VextilToolkit", "SMILE!")
                        color: Theme.smileText
                        font.pixelSize: 17
                        fontSizeMode: Text.HorizontalFit
                        minimumPixelSize: 8
                        horizontalAlignment: Text.AlignHCenter
                        verticalAlignment: Text.AlignVCenter
                    }
                }
            }
        }
        ProgressBox {
            id: box
            session: session
            width: region.width
            height: 150
            y: region.height - height
            status.focus: true
        }
    }

    Loader {
        id: tutorial
        anchors.fill: parent
        active: false
        sourceComponent: TutorialOverlay {
            backdrop: region
            onClosed: {
                tutorial.active = false
                session.tutorialShown = false
                box.status.forceActiveFocus()
            }
        }
    }

    PermissionAlert {
        id: alert
        anchors.fill: parent
        onSettings: session.openSettings()
        onCancelled: session.finish(false)
    }

    function showTutorial() {
        if (tutorial.active)
            return
        session.tutorialShown = true
        tutorial.active = true
        tutorial.item.forceActiveFocus()
    }
    function tellViewSize() {
        session.setViewSize(cameraView.width, cameraView.height, screen.Window.window ? screen.Window.window.devicePixelRatio : 1)
    }
    // The screen arrives (first, or again after a retake): the capture starts over.
    function arrive() {
        session.appear()
        tellViewSize()
        if (!tutorial.active)
            box.status.forceActiveFocus()
    }

    Component.onCompleted: {
        session.load()
        if (presentTutorial)
            showTutorial()
    }
}
