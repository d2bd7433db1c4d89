#include <VextilToolkit/VextilCameraAuthorization.h>

#include "core/VextilLocked.h"

namespace {

struct Hooks {
    QMutex mutex;
    VextilCameraAuthorization::StatusProvider status;
    VextilCameraAuthorization::AccessRequester request;
    VextilCameraAuthorization::SettingsOpener settings;
};

// Each hook is copied out under the lock and called outside it, so that a hook may set hooks.
Hooks &hooks()
{
    static Hooks instance;
    return instance;
}

}  // namespace

VextilCameraAuthorization::Status VextilCameraAuthorization::authorizationStatus()
{
    const auto status = readLocked(hooks().mutex, hooks().status);
    return status ? status() : Authorized;
}

void VextilCameraAuthorization::requestAccess(std::function<void(bool)> answer)
{
    if (const auto request = readLocked(hooks().mutex, hooks().request))
        request(std::move(answer));
    else
        answer(true);
}

void VextilCameraAuthorization::openSettings()
{
    if (const auto settings = readLocked(hooks().mutex, hooks().settings))
        settings();  // desktop platforms have no per-application settings page
}

void VextilCameraAuthorization::setHooks(StatusProvider status, AccessRequester request, SettingsOpener settings)
{
    QMutexLocker lock(&hooks().mutex);
    hooks().status = std::move(status);
    hooks().request = std::move(request);
    hooks().settings = std::move(settings);
}
