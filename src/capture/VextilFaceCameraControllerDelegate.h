#pragma once

/// Receives the end of a capture from the camera screen. Called on the GUI thread.
class VextilFaceCameraControllerDelegate {
public:
    virtual ~VextilFaceCameraControllerDelegate() = default;
    /// True when the images are in the store; false for cancel or missing camera permission.
    virtual void didFinishedCaptureWithSuccess(bool success) = 0;
};
