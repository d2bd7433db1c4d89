// A GStreamer plugin that gives Qt's camera a device without hardware. Put its folder alone on
// GST_PLUGIN_PATH; FakeCameraSettings says what it films and how it fails.
#include "FakeCameraProvider.h"
#include "FakeCameraSource.h"

namespace {
gboolean registerFeatures(GstPlugin *plugin)
{
    return gst_element_register(plugin, "vextilfakecamerasrc", GST_RANK_NONE, FAKE_CAMERA_TYPE_SOURCE)
           && gst_device_provider_register(plugin, "vextilfakecameraprovider", GST_RANK_PRIMARY,
                                           FAKE_CAMERA_TYPE_PROVIDER);
}
}  // namespace

#define PACKAGE "vextil-fake-camera"
GST_PLUGIN_DEFINE(GST_VERSION_MAJOR, GST_VERSION_MINOR, vextilfakecamera, "A fake camera for tests", registerFeatures,
                  "1.0", "Proprietary", "VextilToolkit", "VextilToolkit tests")
