#pragma once

#include <QString>

/// An error reported by the toolkit: domain, code and two texts for the host and its user.
/// Errors are values passed to callbacks; nothing is thrown across the toolkit's API.
struct VextilError {
    QString domain;              ///< always "com.VextilToolkit" for errors the toolkit makes
    int code = 0;                ///< one of 420, 421, 422, 423, 424, 1500
    QString description;         ///< what happened
    QString recoverySuggestion;  ///< what the host or user can do about it

    friend bool operator==(const VextilError &, const VextilError &) = default;
};
