import QtQuick
import QtTest
import VextilToolkit

// The whole flow in QML with a video file as the camera: what a host sees through FaceCapture.
Item {
    id: host
    width: 390
    height: 844

    // The host's own surface under everything, which counts what reaches it.
    property int reachedHost: 0
    Keys.onPressed: ++host.reachedHost
    MouseArea {
        anchors.fill: parent
        acceptedButtons: Qt.AllButtons
        onPressed: ++host.reachedHost
        onWheel: ++host.reachedHost
    }
    // The host's own control, which has the keyboard focus before and after a flow.
    Rectangle {
        id: hostButton
        width: 100; height: 40
        focus: true
        activeFocusOnTab: true
        Accessible.role: Accessible.Button
        Accessible.name: "Take selfie"
    }
    Rectangle {
        id: hostSend
        y: 50; width: 100; height: 40
        activeFocusOnTab: true
    }
    FaceCapture {
        id: capture
        presentTutorial: false
    }
    NavigationBar {
        id: lonelyBar
        y: 200; width: 390; height: 44
        visible: capture.stage === FaceFlow.Idle
    }
    SignalSpy { id: finished; target: capture; signalName: "finished" }
    SignalSpy { id: sendFailed; target: capture; signalName: "sendFailed" }
    SignalSpy { id: sent; target: capture; signalName: "sent" }

    TestCase {
        id: flow
        name: "FaceCapture"
        when: windowShown

        function init() {
            host.width = 390
            host.height = 844
            capture.presentTutorial = false
            capture.videoFile = sampleClip
            finished.clear()
            sendFailed.clear()
            sent.clear()
        }
        function cleanup() {
            // Whatever a test left open is closed, and reported, before the next one.
            if (capture.reviewScreen)
                tap(findButton(capture.reviewScreen, "Back"))
            if (capture.stage === FaceFlow.Camera) {
                if (findButton(capture, "OK, I got it"))  // the tips cover the bar
                    tap(findButton(capture, "OK, I got it"))
                tryVerify(() => !capture.cameraScreen.session.tutorialShown, 2000)
                tap(findButton(capture.cameraScreen, "Back"))
            }
            tryCompare(capture, "stage", FaceFlow.Idle, 5000)
        }

        // A shown item with that title or accessible name, and a pressed() signal: a button.
        function findButton(item, title) {
            if (!item.visible)
                return null
            if ((item.text === title || item.accessibleName === title) && item.pressed !== undefined
                    && typeof item.pressed === "function")
                return item
            for (let i = 0; i < item.children.length; ++i) {
                const found = findButton(item.children[i], title)
                if (found)
                    return found
            }
            return null
        }
        function press(title) {
            const button = findButton(capture, title)
            verify(button, "no button \"" + title + "\" shows")
            tap(button)
        }
        // A finger on the middle of where the button is drawn: the window hands it to whatever
        // item is on top there, as it does for a user. Events go to the window through the host,
        // which stays: a button that acts as the finger lands may be gone before it lifts.
        function tap(button) {
            land(button, false)
            lift()
        }
        // Only the finger's landing, by mouse or by touch; lift() ends it.
        property var lifting: null
        function land(button, touch) {
            verify(button, "no such button shows")
            const at = button.mapToItem(host, button.width / 2, button.height / 2)
            if (touch) {
                const finger = touchEvent(host)
                finger.press(0, host, at.x, at.y).commit()
                lifting = () => finger.release(0, host, at.x, at.y).commit()
            } else {
                mousePress(host, at.x, at.y)
                lifting = () => mouseRelease(host, at.x, at.y)
            }
        }
        function lift() {
            if (lifting)
                lifting()
            lifting = null
        }
        function waitForReview(timeout) {
            tryVerify(() => capture.reviewScreen !== null, timeout || 30000, "the review never came")
            tryCompare(capture.reviewScreen.review, "imageCount", 7, 2000)
        }

        function test_captureReviewAccept() {
            capture.requestFace()
            compare(capture.stage, FaceFlow.Camera)
            const session = capture.cameraScreen.session
            compare(session.instruction, "Looking for face")
            tryVerify(() => session.progress > 0, 15000, "no neutral photo was taken")
            tryVerify(() => session.smilePrompt, 15000, "the smile was never asked for")
            waitForReview()
            compare(capture.stage, FaceFlow.Review)
            compare(finished.count, 0)
            verify(!session.shown)  // the camera rests behind the review
            verify(session.secondsToCompletion > 0)
            verify(session.stats.analysed > 0)
            const yes = findButton(capture, "Yes, send")
            tap(yes)
            tap(yes)  // a double tap answers once
            finished.wait(3000)
            compare(finished.count, 1)
            compare(finished.signalArguments[0][0], true)
            compare(capture.stage, FaceFlow.Idle)
            verify(!capture.visible)
        }

        function test_retakeStartsOverAndTheSecondCaptureIsAccepted() {
            capture.requestFace()
            waitForReview()
            press("No, take another photo.")
            compare(capture.stage, FaceFlow.Camera)
            verify(capture.reviewScreen === null)
            const session = capture.cameraScreen.session
            tryCompare(session, "progress", 0, 2000)
            verify(session.shown)
            waitForReview()
            press("Yes, send")
            finished.wait(3000)
            compare(finished.signalArguments[0][0], true)
        }

        function test_backCancelsWithError421() {
            capture.requestFace()
            tryVerify(() => capture.cameraScreen.session.progress > 0, 15000)
            press("Back")
            press("Back")
            finished.wait(3000)
            compare(finished.count, 1)
            compare(finished.signalArguments[0][0], false)
            const error = finished.signalArguments[0][1]
            compare(error.code, 421)
            compare(error.domain, "com.VextilToolkit")
            verify(error.description.length > 0)
            compare(capture.stage, FaceFlow.Idle)
        }

        function test_aRepeatedRequestJoinsTheOpenFlowAndIsAnsweredOnce() {
            capture.requestFace()
            const camera = capture.cameraScreen
            capture.requestFace()
            compare(capture.cameraScreen, camera)  // the same screen goes on
            waitForReview()
            capture.requestFace()
            compare(capture.stage, FaceFlow.Review)
            press("Yes, send")
            finished.wait(3000)
            wait(300)
            compare(finished.count, 1)
            // A request after the report starts a new flow.
            capture.requestFace()
            compare(capture.stage, FaceFlow.Camera)
            verify(capture.cameraScreen !== camera)
        }

        function test_requestFromInsideTheReportStartsTheNextFlow() {
            let restarted = false
            const again = () => { capture.finished.disconnect(again); capture.requestFace(); restarted = capture.stage === FaceFlow.Camera }
            capture.finished.connect(again)
            capture.requestFace()
            press("Back")
            finished.wait(3000)
            verify(restarted)
        }

        function test_tutorialHoldsTheCaptureUntilAnswered() {
            capture.presentTutorial = true
            capture.requestFace()
            const session = capture.cameraScreen.session
            verify(session.tutorialShown)
            tryVerify(() => findButton(capture, "OK, I got it") !== null, 2000)
            wait(1500)  // frames arrive, and are dropped unanalysed
            compare(session.progress, 0)
            verify(!session.faceFound)
            compare(session.instruction, "Looking for face")
            const gotIt = findButton(capture, "OK, I got it")
            tap(gotIt)
            tap(gotIt)  // a second tap while it fades
            tryVerify(() => !session.tutorialShown, 2000)
            tryVerify(() => findButton(capture, "OK, I got it") === null, 2000)
            tryVerify(() => session.progress > 0, 15000, "the capture did not start after the tutorial")
            // Help opens it again, and the capture rests while it shows.
            press("Help")
            verify(session.tutorialShown)
        }

        function test_landscapeCameraInADesktopWindow() {
            host.width = 1280
            host.height = 800
            capture.videoFile = landscapeClip
            capture.requestFace()
            waitForReview(40000)
            const photo = findByName(capture.reviewScreen, "Captured photo")
            verify(photo)
            // The review keeps its phone shape in the middle of the window.
            verify(photo.width < 600)
            press("Yes, send")
            finished.wait(3000)
            compare(finished.signalArguments[0][0], true)
        }

        // A desktop window and a laptop's webcam, the user at first too far for the camera view:
        // the screen says so once, where the instructions are, and the capture goes on.
        function test_aDesktopUserTooFarIsToldToComeCloserOnce() {
            host.width = 1280
            host.height = 800
            capture.videoFile = guidedCloserClip
            capture.requestFace()
            const session = capture.cameraScreen.session
            const said = []  // the status as a screen reader hears it, each change once
            const hear = () => {
                if (said.length === 0 || said[said.length - 1] !== session.status)
                    said.push(session.status)
            }
            session.statusChanged.connect(hear)
            tryVerify(() => session.instruction === "Move closer", 15000, "never told to come closer")
            tryVerify(() => {
                const line = findByName(capture.cameraScreen, "Move closer")  // the status line, named by what it says
                return line && line.visible
            }, 2000, "the instruction shows")
            tryVerify(() => said.indexOf("Checking your face, photo 1 of 5") >= 0, 15000, "heard: " + said.join(" | "))
            compare(said.filter(text => text === "Move closer").length, 1, "heard: " + said.join(" | "))
            session.statusChanged.disconnect(hear)
        }

        function test_hiddenCaptureRestsAndGoesOnWhenShownAgain() {
            capture.requestFace()
            const session = capture.cameraScreen.session
            tryVerify(() => session.progress > 0, 15000)
            capture.cameraScreen.visible = false
            verify(!session.shown)
            const analysed = session.stats.analysed
            wait(1200)
            verify(session.stats.analysed <= analysed + 1)
            capture.cameraScreen.visible = true
            verify(session.shown)
            waitForReview()
        }

        // Every shown button of the toolkit's under `item`.
        function buttonsIn(item, found) {
            if (!item.visible)
                return found
            if (typeof item.pressed === "function" && item.width > 0)
                found.push(item)
            for (let i = 0; i < item.children.length; ++i)
                buttonsIn(item.children[i], found)
            return found
        }
        // Presses, touches and wheel turns on a grid over the whole window, its buttons left
        // out, then a key: none of it may reach the host beneath the screen.
        function pokeEverywhereBut(buttons, screen) {
            host.reachedHost = 0
            for (let gx = 0; gx < 6; ++gx) {
                for (let gy = 0; gy < 10; ++gy) {
                    const x = (gx + 0.5) * host.width / 6, y = (gy + 0.5) * host.height / 10
                    if (buttons.some((b) => {
                        const at = b.mapFromItem(host, x, y)
                        return at.x >= -4 && at.y >= -4 && at.x <= b.width + 4 && at.y <= b.height + 4
                    }))
                        continue
                    mousePress(host, x, y)
                    mouseRelease(host, x, y)
                    mouseWheel(host, x, y, 0, -120)
                    const finger = touchEvent(host)
                    finger.press(0, host, x, y).commit()
                    finger.release(0, host, x, y).commit()
                }
            }
            keyClick(Qt.Key_A)
            compare(host.reachedHost, 0, "presses went through the " + screen + " to the host")
        }
        function test_noPressTouchWheelOrKeyReachesTheHostUnderAnyScreen() {
            capture.presentTutorial = true
            capture.requestFace()
            tryVerify(() => findButton(capture, "OK, I got it") !== null, 2000)
            wait(400)  // the tips in place
            pokeEverywhereBut(buttonsIn(capture, []), "tips")
            tap(findButton(capture, "OK, I got it"))
            tryVerify(() => !capture.cameraScreen.session.tutorialShown, 2000)
            pokeEverywhereBut(buttonsIn(capture, []), "camera screen")
            waitForReview()
            wait(400)
            pokeEverywhereBut(buttonsIn(capture, []), "review")
            tap(findButton(capture.reviewScreen, "Back"))
            tryCompare(capture, "stage", FaceFlow.Camera, 2000)
            tap(findButton(capture.cameraScreen, "Back"))
            finished.wait(3000)

            cameraPermission.answer("denied")
            capture.requestFace()
            tryVerify(() => findButton(capture, "Settings") !== null, 3000, "no permission alert")
            pokeEverywhereBut(buttonsIn(capture, []), "permission alert")
            tap(findButton(capture, "Cancel"))
            finished.wait(3000)
            cameraPermission.answer("authorized")
            host.reachedHost = 0
            mousePress(host, 200, 400)
            compare(host.reachedHost, 1, "the host takes presses again once the flow is over")
            mouseRelease(host, 200, 400)
        }

        function test_refusedCameraAccessOffersTheSettingsOrEndsIn421() {
            cameraPermission.answer("denied")
            capture.requestFace()
            const alert = findByName(capture, "Error")
            tryVerify(() => alert && alert.visible && findButton(capture, "Settings") !== null, 3000, "no permission alert")
            compare(alert.Accessible.description, "You need to allow this app to access this device's camera.")
            const opened = cameraPermission.settingsOpened
            land(findButton(capture, "Settings"), true)
            wait(100)
            verify(alert.visible && cameraPermission.settingsOpened === opened,
                   "the alert decided before the finger lifted, as no alert does")
            lift()
            compare(cameraPermission.settingsOpened, opened + 1)
            wait(200)
            compare(finished.count, 0, "Settings leaves the screen up")
            cameraPermission.comeBack()  // still refused
            tryVerify(() => alert.visible, 2000, "no new look at the permission")
            press("Cancel")
            finished.wait(3000)
            compare(finished.signalArguments[0][0], false)
            compare(finished.signalArguments[0][1].code, 421)

            cameraPermission.answer("restricted")
            capture.requestFace()
            finished.wait(3000)  // restricted fails at once
            compare(finished.count, 2)
            compare(finished.signalArguments[1][1].code, 421)
            cameraPermission.answer("authorized")
        }

        function test_accessGrantedInTheSettingsClosesTheAlertAndTheCaptureStarts() {
            cameraPermission.answer("denied")
            capture.requestFace()
            const alert = findByName(capture, "Error")
            tryVerify(() => alert && alert.visible, 3000, "no permission alert")
            press("Settings")
            verify(!alert.visible, "the alert stayed up over the settings")
            cameraPermission.comeBack()  // still refused: asked again
            tryVerify(() => alert.visible, 2000, "no new look at the permission")
            press("Settings")
            cameraPermission.answer("authorized")
            cameraPermission.comeBack()
            const session = capture.cameraScreen.session
            tryVerify(() => session.stats.delivered > 0, 5000, "the camera did not start")
            verify(!alert.visible)
            compare(finished.count, 0)
            waitForReview()
        }

        // Every button of the screens acts as the finger lands, before it lifts, by mouse and by
        // touch (the permission alert's act as it lifts, as an alert's do).
        function test_eachButtonActsAsTheFingerLands() {
            capture.presentTutorial = true
            capture.requestFace()
            const session = capture.cameraScreen.session
            tryVerify(() => findButton(capture, "OK, I got it") !== null, 2000)
            land(findButton(capture, "OK, I got it"), true)
            tryVerify(() => !session.tutorialShown, 1000, "the tips stayed while the finger was down")
            lift()
            land(findButton(capture.cameraScreen, "Help"), false)
            tryVerify(() => session.tutorialShown, 1000, "Help waited for the finger to lift")
            lift()
            tryVerify(() => findButton(capture, "OK, I got it") !== null, 2000)
            tap(findButton(capture, "OK, I got it"))
            waitForReview()
            land(findButton(capture.reviewScreen, "No, take another photo."), true)
            tryCompare(capture, "stage", FaceFlow.Camera, 2000, "the retake waited for the finger to lift")
            lift()
            waitForReview()
            land(findButton(capture.reviewScreen, "Back"), false)
            tryCompare(capture, "stage", FaceFlow.Camera, 2000, "the review's Back waited for the finger to lift")
            lift()
            waitForReview()
            land(findButton(capture.reviewScreen, "Yes, send"), true)
            tryVerify(() => finished.count === 1, 3000, "the answer waited for the finger to lift")
            lift()
            compare(finished.signalArguments[0][0], true)
            capture.presentTutorial = false  // the tips would cover the bar
            capture.requestFace()
            land(findButton(capture.cameraScreen, "Back"), true)
            tryVerify(() => finished.count === 2, 3000, "Back waited for the finger to lift")
            lift()
            compare(finished.signalArguments[1][0], false)
        }

        function test_aPhoneIsHeldUprightWhileAnyScreenShows() {
            verify(!portrait.held())
            capture.presentTutorial = true
            capture.requestFace()
            verify(portrait.held(), "not held under the tutorial")
            tap(findButton(capture, "OK, I got it"))  // the tips cover the bar until they have gone
            tryVerify(() => !capture.cameraScreen.session.tutorialShown, 3000)
            tap(findButton(capture, "Back"))
            finished.wait(3000)
            verify(!portrait.held(), "the host's orientation was not given back")
            capture.presentTutorial = false
            capture.requestFace()
            verify(portrait.held())
            waitForReview()
            verify(portrait.held(), "not held under the review")
            tap(findButton(capture.reviewScreen, "Back"))
            tryCompare(capture, "stage", FaceFlow.Camera, 5000)
            verify(portrait.held(), "let go of on the way back to the camera")
            tap(findButton(capture.cameraScreen, "Back"))
            tryCompare(capture, "stage", FaceFlow.Idle, 5000)
            verify(!portrait.held())
        }

        function test_aLongBarTitleShrinksBeforeItIsCut() {
            const title = lonelyBar.titleItem
            lonelyBar.title = "Registrieren Sie Ihr Selfie"
            lonelyBar.width = 390
            const natural = title.implicitWidth
            compare(title.fontInfo.pixelSize, 16)
            verify(!title.truncated)
            lonelyBar.width = Math.round(natural * 0.8)
            tryVerify(() => title.fontInfo.pixelSize < 16 && title.fontInfo.pixelSize >= 11, 1000, "not shrunk")
            verify(!title.truncated, "cut though it could shrink")
            lonelyBar.width = Math.round(natural * 0.5)
            tryCompare(title.fontInfo, "pixelSize", 11, 1000)
            verify(title.truncated, "not cut at 0.7 of its size")
            lonelyBar.width = 390
        }

        function test_theReviewsFrameFollowsThePhotoWhenTheWindowChangesShape() {
            capture.requestFace()
            waitForReview()
            const screen = capture.reviewScreen
            const photo = findByName(screen, "Captured photo")
            const surrounds = () => {
                const at = photo.mapToItem(screen, 0, 0)
                const border = screen.photoBorder
                return Math.abs(border.x - (at.x - 5)) < 1 && Math.abs(border.y - (at.y - 5)) < 1
                    && Math.abs(border.width - (photo.width + 10)) < 1 && Math.abs(border.height - (photo.height + 10)) < 1
            }
            tryVerify(surrounds, 1000, "the frame is not round the photo")
            for (const [width, height] of [[1280, 800], [844, 390], [390, 844]]) {
                host.width = width
                host.height = height
                tryVerify(surrounds, 1000, "the frame stayed behind at " + width + "x" + height)
            }
        }

        function test_sendAnswersWithTheToolkitsError() {
            capture.sendFaceData()
            compare(capture.sending, 1)
            sendFailed.wait(15000)
            compare(sent.count, 0)
            compare(capture.sending, 0)
            verify(sendFailed.signalArguments[0][0].code > 0)
            compare(sendFailed.signalArguments[0][0].domain, "com.VextilToolkit")
        }

        function focusedName() {
            const item = host.Window.activeFocusItem
            return item ? (item.Accessible.name || item.accessibleName || item.text || "") : "(none)"
        }
        function tabRound(count) {
            const names = []
            for (let i = 0; i < count; ++i) {
                keyClick(Qt.Key_Tab)
                names.push(focusedName())
            }
            return names
        }

        function test_keyboardFocusStaysInTheToolkitsScreens() {
            hostButton.forceActiveFocus()
            capture.presentTutorial = true
            capture.requestFace()
            tryCompare(host.Window, "activeFocusItem", findButton(capture, "OK, I got it"), 2000)
            wait(600)  // still there once the screen has arrived
            compare(focusedName(), "OK, I got it")
            compare(tabRound(2), ["OK, I got it", "OK, I got it"])  // the tips' only button
            keyClick(Qt.Key_Space)
            tryCompare(capture.cameraScreen.session, "tutorialShown", false, 2000)
            tryVerify(() => focusedName() === capture.cameraScreen.session.status, 2000, "the status did not take the focus")
            // Round the camera screen's own controls, never the host's beneath.
            const camera = tabRound(3).sort()
            compare(camera, ["Back", "Help", capture.cameraScreen.session.status].sort())
            waitForReview()
            tryCompare(host.Window, "activeFocusItem", findButton(capture.reviewScreen, "Yes, send"), 2000)
            const review = tabRound(3)
            compare(review.slice().sort(), ["Back", "No, take another photo.", "Yes, send"])
            compare(review[2], "Yes, send")
            keyClick(Qt.Key_Space)
            finished.wait(3000)
            compare(finished.signalArguments[0][0], true)
            verify(hostButton.activeFocus, "the focus did not go back to the host's control")
        }

        function findByName(item, name) {
            if (item.Accessible && item.Accessible.name === name)
                return item
            for (let i = 0; i < item.children.length; ++i) {
                const found = findByName(item.children[i], name)
                if (found)
                    return found
            }
            return null
        }
    }
}
