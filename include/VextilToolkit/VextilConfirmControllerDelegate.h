#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

/// Receives the user's answer on the review screen. Called on the GUI thread.
class VEXTIL_WIDGETS_EXPORT VextilConfirmControllerDelegate {
public:
    virtual ~VextilConfirmControllerDelegate();
    /// True to send the capture, false to take it again.
    virtual void didFinishedConfirmWithSuccess(bool success) = 0;
};
