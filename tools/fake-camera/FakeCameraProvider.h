#pragma once

#include <gst/gst.h>

// Lists one "Video/Source" device when a fake camera is configured; the device makes a
// FakeCameraSource. A source that vanishes takes the device off the list (and may put it back).
G_BEGIN_DECLS
#define FAKE_CAMERA_TYPE_PROVIDER (fake_camera_provider_get_type())
G_DECLARE_FINAL_TYPE(FakeCameraProvider, fake_camera_provider, FAKE_CAMERA, PROVIDER, GstDeviceProvider)
#define FAKE_CAMERA_TYPE_DEVICE (fake_camera_device_get_type())
G_DECLARE_FINAL_TYPE(FakeCameraDevice, fake_camera_device, FAKE_CAMERA, DEVICE, GstDevice)
G_END_DECLS

// Unplugs the camera: removes the listed device, and adds a new one backAfterMs later (never if < 0).
void fakeCameraUnplug(int backAfterMs);
