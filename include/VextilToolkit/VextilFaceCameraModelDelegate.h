#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QString>

/// How the face capture model drives the camera screen. finishedCapture arrives on the GUI
/// thread; every other call on the state machine's thread, the one that feeds the model its
/// frames (the capture thread on the camera screen).
class VEXTIL_EXPORT VextilFaceCameraModelDelegate {
public:
    virtual ~VextilFaceCameraModelDelegate();

    /// The capture is complete and the images are in the store. GUI thread.
    virtual void finishedCapture() = 0;
    /// New instructions text, already translated.
    virtual void updateMessageText(const QString &text) = 0;
    /// Progress of the neutral images, 0.0 to 1.0.
    virtual void updateProgressView(double progress) = 0;
    /// Hides or shows the progress bar.
    virtual void isProgressBarHidden(bool hidden) = 0;
    /// Toggles the face frame between white and green.
    virtual void changeMaskState() = 0;
    /// Hides or shows the "SMILE!" popup.
    virtual void isPopupViewHidden(bool hidden) = 0;
};
