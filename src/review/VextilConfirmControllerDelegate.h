#pragma once

/// Receives the user's answer on the review screen. Called on the GUI thread.
class VextilConfirmControllerDelegate {
public:
    virtual ~VextilConfirmControllerDelegate() = default;
    /// True to send the capture, false to take it again.
    virtual void didFinishedConfirmWithSuccess(bool success) = 0;
};
