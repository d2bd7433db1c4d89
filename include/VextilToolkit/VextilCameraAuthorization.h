#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <functional>

/// Camera permission, as the platform reports it. Qt 6.4 has no permission API, so this is a
/// hook: desktop builds answer "authorised"; a mobile host (or a test) installs its own.
class VEXTIL_EXPORT VextilCameraAuthorization {
public:
    enum Status { NotDetermined = 0, Restricted = 1, Denied = 2, Authorized = 3 };
    using StatusProvider = std::function<Status()>;
    /// Asks the user; the answer may come on any thread.
    using AccessRequester = std::function<void(std::function<void(bool granted)> answer)>;
    /// Opens the system settings page of the application.
    using SettingsOpener = std::function<void()>;

    static Status authorizationStatus();
    static void requestAccess(std::function<void(bool granted)> answer);
    static void openSettings();

    /// Installs the platform's hooks; an empty function restores the default.
    static void setHooks(StatusProvider status, AccessRequester request, SettingsOpener settings);
};
