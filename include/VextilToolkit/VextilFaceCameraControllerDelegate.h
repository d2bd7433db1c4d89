#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

/// Receives the end of a capture from the camera screen. Called on the GUI thread.
class VEXTIL_WIDGETS_EXPORT VextilFaceCameraControllerDelegate {
public:
    virtual ~VextilFaceCameraControllerDelegate();
    /// True when the images are in the store; false for cancel or missing camera permission.
    virtual void didFinishedCaptureWithSuccess(bool success) = 0;
};
