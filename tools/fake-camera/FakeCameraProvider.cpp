#include "FakeCameraProvider.h"

#include "FakeCameraSettings.h"

#include <chrono>
#include <mutex>
#include <thread>

struct _FakeCameraProvider {
    GstDeviceProvider parent;
};
struct _FakeCameraDevice {
    GstDevice parent;
};

G_DEFINE_TYPE(FakeCameraDevice, fake_camera_device, GST_TYPE_DEVICE)
G_DEFINE_TYPE(FakeCameraProvider, fake_camera_provider, GST_TYPE_DEVICE_PROVIDER)

namespace {

std::mutex providerMutex;
FakeCameraProvider *liveProvider = nullptr;  // the one a device monitor started, if any

GstElement *createElement(GstDevice *, const gchar *name)
{
    return gst_element_factory_make("vextilfakecamerasrc", name);
}

// One device per name, each owned by the list.
GList *newDevices(const FakeCameraSettings &settings)
{
    if (settings.source.empty())
        return nullptr;
    GstCaps *caps = settings.caps();
    GList *devices = nullptr;
    for (const std::string &name : settings.names)
        devices = g_list_append(
            devices, gst_object_ref_sink(g_object_new(FAKE_CAMERA_TYPE_DEVICE, "display-name", name.c_str(),
                                                      "device-class", "Video/Source", "caps", caps, nullptr)));
    gst_caps_unref(caps);
    return devices;
}

void addDevices(GstDeviceProvider *provider, GList *devices)
{
    for (GList *item = devices; item; item = item->next)
        gst_device_provider_device_add(provider, GST_DEVICE(item->data));
    g_list_free_full(devices, gst_object_unref);
}

GList *probe(GstDeviceProvider *) { return newDevices(FakeCameraSettings::fromEnvironment()); }

gboolean start(GstDeviceProvider *provider)
{
    addDevices(provider, probe(provider));
    const std::lock_guard lock(providerMutex);
    liveProvider = FAKE_CAMERA_PROVIDER(provider);
    return TRUE;
}

void stop(GstDeviceProvider *provider)
{
    const std::lock_guard lock(providerMutex);
    if (liveProvider == FAKE_CAMERA_PROVIDER(provider))
        liveProvider = nullptr;
}

}  // namespace

static void fake_camera_device_class_init(FakeCameraDeviceClass *klass)
{
    GST_DEVICE_CLASS(klass)->create_element = createElement;
}
static void fake_camera_device_init(FakeCameraDevice *) {}

static void fake_camera_provider_class_init(FakeCameraProviderClass *klass)
{
    GstDeviceProviderClass *provider = GST_DEVICE_PROVIDER_CLASS(klass);
    provider->probe = probe;
    provider->start = start;
    provider->stop = stop;
    gst_device_provider_class_set_static_metadata(provider, "Vextil fake camera", "Source/Video",
                                                  "Films a video or a still for tests", "VextilToolkit");
}
static void fake_camera_provider_init(FakeCameraProvider *) {}

void fakeCameraUnplug(int backAfterMs)
{
    GstDeviceProvider *provider = nullptr;
    {
        const std::lock_guard lock(providerMutex);
        if (!liveProvider)
            return;
        provider = GST_DEVICE_PROVIDER(gst_object_ref(liveProvider));
    }
    GList *devices = gst_device_provider_get_devices(provider);
    for (GList *item = devices; item; item = item->next)
        gst_device_provider_device_remove(provider, GST_DEVICE(item->data));
    g_list_free_full(devices, gst_object_unref);
    if (backAfterMs < 0) {
        gst_object_unref(provider);
        return;
    }
    std::thread([provider, backAfterMs] {
        std::this_thread::sleep_for(std::chrono::milliseconds(backAfterMs));
        addDevices(provider, newDevices(FakeCameraSettings::fromEnvironment()));
        gst_object_unref(provider);
    }).detach();
}
