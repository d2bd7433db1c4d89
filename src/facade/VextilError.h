#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QString>

/// An error reported by the toolkit: domain, code and two texts for the host and its user.
/// Errors are values passed to callbacks; nothing is thrown across the toolkit's API.
struct VEXTIL_EXPORT VextilError {
    QString domain;              ///< always "com.VextilToolkit" for errors the toolkit makes
    int code = 0;                ///< one of 420, 421, 422, 423, 424, 1500
    QString description;         ///< what happened
    QString recoverySuggestion;  ///< what the host or user can do about it

    /// The toolkit's error for a code, with both texts read (at every call) from the error-text
    /// table compiled into the toolkit. A code the table lacks is a programming error: fatal.
    static VextilError createVextilSDKErrorWithCode(int code);
    /// The toolkit's error domain, "com.VextilToolkit".
    static QString domainName();

    friend bool operator==(const VextilError &, const VextilError &) = default;
};
