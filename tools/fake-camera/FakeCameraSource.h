#pragma once

#include <gst/base/gstpushsrc.h>

// A live video source that films a FakeCameraFeed at the rate and in the format negotiated (any
// raw format GStreamer can convert to, or JPEG), and fails as FakeCameraSettings asks.
G_BEGIN_DECLS
#define FAKE_CAMERA_TYPE_SOURCE (fake_camera_source_get_type())
G_DECLARE_FINAL_TYPE(FakeCameraSource, fake_camera_source, FAKE_CAMERA, SOURCE, GstPushSrc)
G_END_DECLS
