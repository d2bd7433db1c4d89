#include <VextilToolkit/VextilCameraAuthorization.h>

#include <mutex>

namespace {

struct Hooks {
    std::mutex mutex;
    VextilCameraAuthorization::StatusProvider status;
    VextilCameraAuthorization::AccessRequester request;
    VextilCameraAuthorization::SettingsOpener settings;
};

Hooks &hooks()
{
    static Hooks instance;
    return instance;
}

}  // namespace

VextilCameraAuthorization::Status VextilCameraAuthorization::authorizationStatus()
{
    std::unique_lock lock(hooks().mutex);
    const auto status = hooks().status;
    lock.unlock();
    return status ? status() : Authorized;
}

void VextilCameraAuthorization::requestAccess(std::function<void(bool)> answer)
{
    std::unique_lock lock(hooks().mutex);
    const auto request = hooks().request;
    lock.unlock();
    if (request)
        request(std::move(answer));
    else
        answer(true);
}

void VextilCameraAuthorization::openSettings()
{
    std::unique_lock lock(hooks().mutex);
    const auto settings = hooks().settings;
    lock.unlock();
    if (settings)
        settings();  // desktop platforms have no per-application settings page
}

void VextilCameraAuthorization::setHooks(StatusProvider status, AccessRequester request, SettingsOpener settings)
{
    std::lock_guard lock(hooks().mutex);
    hooks().status = std::move(status);
    hooks().request = std::move(request);
    hooks().settings = std::move(settings);
}
