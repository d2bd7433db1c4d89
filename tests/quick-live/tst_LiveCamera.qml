import QtQuick
import QtTest
import VextilToolkit

// One whole flow in QML through Qt's camera path, the fake camera in the device's place.
Item {
    id: host
    width: 390
    height: 844

    FaceCapture {
        id: capture
        presentTutorial: false
    }
    SignalSpy { id: finished; target: capture; signalName: "finished" }

    TestCase {
        name: "LiveCamera"
        when: windowShown

        function findButton(item, title) {
            if ((item.text === title || item.accessibleName === title) && typeof item.pressed === "function")
                return item
            for (let i = 0; i < item.children.length; ++i) {
                const found = findButton(item.children[i], title)
                if (found)
                    return found
            }
            return null
        }

        function test_aCaptureThroughTheCameraCompletesAndLetsTheCameraGo() {
            compare(capture.videoFile, "")
            capture.requestFace()
            const session = capture.cameraScreen.session
            tryVerify(() => session.stats.delivered > 10, 10000, "the camera sent nothing")
            compare(fakeCamera.state(), "open")
            tryVerify(() => capture.reviewScreen !== null, 40000, "the review never came")
            tryCompare(capture.reviewScreen.review, "imageCount", 7, 2000)
            tryVerify(() => fakeCamera.state() === "closed", 3000, "the camera films under the review")
            compare(fakeCamera.opens(), 1, "reopened on the way")
            const yes = findButton(capture.reviewScreen, "Yes, send")
            const at = yes.mapToItem(host, yes.width / 2, yes.height / 2)  // where it is drawn
            mousePress(host, at.x, at.y)
            mouseRelease(host, at.x, at.y)
            finished.wait(3000)
            compare(finished.signalArguments[0][0], true)
            compare(fakeCamera.state(), "closed")
        }
    }
}
