#pragma once

struct VextilUploadEndpoint;

/// Development overrides of the upload endpoint from the environment, for the project's own
/// tests and tools. Built only with the CMake option VEXTIL_ENV_OVERRIDES, into a library of
/// its own that the installed library never contains; nothing happens until install() is called.
///   VEXTIL_UPLOAD_HOST        host[:port] of the upload service (scheme and path stay https, /file)
///   VEXTIL_UPLOAD_TIMEOUT_MS  idle time-out of a transfer, default 60000
///   VEXTIL_UPLOAD_CA_FILE     PEM file of extra certificate authorities to trust
class VextilEnvironmentOverrides {
public:
    /// From now on, every upload reads the variables, which win over the settings made in code;
    /// one warning says so the first time any is in effect.
    static void install();
    /// Applies the variables set now to `endpoint`.
    static void apply(VextilUploadEndpoint &endpoint);
};
