#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QString>

/// The codes of the toolkit's errors (VextilError::code), each with its texts in the error table.
enum VextilErrorCode : int {
    /// No authentication key: the host never called initWithAuthKey (or gave it none). Upload, before any request.
    VextilErrorCodeNoAuthKey = 420,
    /// The capture did not complete: the user cancelled, or camera access was restricted or refused.
    VextilErrorCodeCaptureFailed = 421,
    /// The service refused the upload: it answered HTTP 402 or 502.
    VextilErrorCodeServiceRefused = 422,
    /// The transfer failed: no connection, a time-out, or a server certificate the toolkit refuses.
    VextilErrorCodeTransferFailed = 423,
    /// The images the upload needs are not in the store. Upload, before any request.
    VextilErrorCodeNoImages = 424,
    /// The service answered with an HTTP status other than 200, 402 and 502.
    VextilErrorCodeUnexpectedStatus = 1500,
};

/// An error reported by the toolkit: domain, code and two texts for the host and its user.
/// Errors are values passed to callbacks; nothing is thrown across the toolkit's API.
struct VEXTIL_EXPORT VextilError {
    QString domain;              ///< always "com.VextilToolkit" for errors the toolkit makes
    int code = 0;                ///< a VextilErrorCode
    QString description;         ///< what happened
    QString recoverySuggestion;  ///< what the host or user can do about it

    /// The toolkit's error for a code, with both texts read (at every call) from the error-text
    /// table compiled into the toolkit. A code the table lacks is a programming error: fatal.
    static VextilError createVextilSDKErrorWithCode(int code);
    /// The toolkit's error domain, "com.VextilToolkit".
    static QString domainName();

    friend bool operator==(const VextilError &, const VextilError &) = default;
};
