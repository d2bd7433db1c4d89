#pragma once

// What the fake camera offers and how it misbehaves, read from the environment each time a
// device is listed or a source starts, so that one test process can set up several cameras:
//   VEXTIL_FAKE_CAMERA_SOURCE   a video (played in a loop) or a still image; unset: no camera
//   VEXTIL_FAKE_CAMERA_FORMATS  GStreamer format names, or JPEG, comma-separated (default YUY2)
//   VEXTIL_FAKE_CAMERA_SIZES    WIDTHxHEIGHT, comma-separated (default 1280x720)
//   VEXTIL_FAKE_CAMERA_FPS      frames a second (default 15)
//   VEXTIL_FAKE_CAMERA_FAULT    open | until-granted | error-after:MS | freeze-after:MS |
//                               vanish-after:MS[:back-after:MS]; until-granted: fails to open
//                               until VEXTIL_FAKE_CAMERA_GRANTED is 1, as a phone's camera
//                               before the user allows it
//   VEXTIL_FAKE_CAMERA_START_DELAY_MS  how long after opening the first frame comes (default 0)
//   VEXTIL_FAKE_CAMERA_OPENS    a file that gains a line each time a source is started
//   VEXTIL_FAKE_CAMERA_NAMES    the devices' display names, comma-separated: one device each
//                               (default one, "Vextil fake camera"); all film the same
//   VEXTIL_FAKE_CAMERA_STATE    a file that says "open" while a source films and "closed" after

#include <gst/gst.h>

#include <string>
#include <vector>

struct FakeCameraSettings {
    enum class Fault {
        None,
        Open,
        UntilGranted,
        Error,
        Freeze,
        Vanish
    };

    std::string source;
    std::vector<std::string> names{"Vextil fake camera"};
    std::string stateFile;
    std::vector<std::string> formats{"YUY2"};
    std::vector<std::pair<int, int>> sizes{{1280, 720}};
    int fps = 15;
    Fault fault = Fault::None;
    int faultAfterMs = 0;
    int backAfterMs = -1;  // a vanished camera comes back this long after it went; -1: never
    int startDelayMs = 0;
    std::string opensFile;

    static FakeCameraSettings fromEnvironment();
    // One structure per format and size, each with fixed width, height and frame rate.
    GstCaps *caps() const;
};
