#include "FakeCameraSettings.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <sstream>

namespace {

std::vector<std::string> split(const std::string &text, char separator)
{
    std::vector<std::string> parts;
    std::stringstream in(text);
    for (std::string part; std::getline(in, part, separator);)
        if (!part.empty())
            parts.push_back(part);
    return parts;
}

std::string variable(const char *name)
{
    const char *value = std::getenv(name);
    return value ? value : "";
}

void readFault(const std::string &text, FakeCameraSettings &s)
{
    const std::vector<std::string> parts = split(text, ':');
    if (parts.empty())
        return;
    const std::string &kind = parts[0];
    s.fault = kind == "open"             ? FakeCameraSettings::Fault::Open
              : kind == "until-granted" ? (variable("VEXTIL_FAKE_CAMERA_GRANTED") == "1" ? FakeCameraSettings::Fault::None
                                                                                           : FakeCameraSettings::Fault::UntilGranted)
              : kind == "error-after"  ? FakeCameraSettings::Fault::Error
              : kind == "freeze-after" ? FakeCameraSettings::Fault::Freeze
              : kind == "vanish-after" ? FakeCameraSettings::Fault::Vanish
                                       : FakeCameraSettings::Fault::None;
    if (parts.size() > 1)
        s.faultAfterMs = std::atoi(parts[1].c_str());
    if (parts.size() > 3 && parts[2] == "back-after")
        s.backAfterMs = std::atoi(parts[3].c_str());
}

}  // namespace

FakeCameraSettings FakeCameraSettings::fromEnvironment()
{
    FakeCameraSettings s;
    s.source = variable("VEXTIL_FAKE_CAMERA_SOURCE");
    s.stateFile = variable("VEXTIL_FAKE_CAMERA_STATE");
    if (const auto names = split(variable("VEXTIL_FAKE_CAMERA_NAMES"), ','); !names.empty())
        s.names = names;
    if (const auto formats = split(variable("VEXTIL_FAKE_CAMERA_FORMATS"), ','); !formats.empty())
        s.formats = formats;
    std::vector<std::pair<int, int>> sizes;
    for (const std::string &size : split(variable("VEXTIL_FAKE_CAMERA_SIZES"), ',')) {
        int width = 0, height = 0;
        if (std::sscanf(size.c_str(), "%dx%d", &width, &height) == 2 && width > 0 && height > 0)
            sizes.emplace_back(width, height);
    }
    if (!sizes.empty())
        s.sizes = sizes;
    if (const int fps = std::atoi(variable("VEXTIL_FAKE_CAMERA_FPS").c_str()); fps > 0)
        s.fps = fps;
    readFault(variable("VEXTIL_FAKE_CAMERA_FAULT"), s);
    s.startDelayMs = std::max(0, std::atoi(variable("VEXTIL_FAKE_CAMERA_START_DELAY_MS").c_str()));
    s.opensFile = variable("VEXTIL_FAKE_CAMERA_OPENS");
    return s;
}

GstCaps *FakeCameraSettings::caps() const
{
    GstCaps *caps = gst_caps_new_empty();
    for (const std::string &format : formats)
        for (const auto &[width, height] : sizes) {
            GstStructure *structure =
                format == "JPEG" ? gst_structure_new_empty("image/jpeg")
                                 : gst_structure_new("video/x-raw", "format", G_TYPE_STRING, format.c_str(), nullptr);
            gst_structure_set(structure, "width", G_TYPE_INT, width, "height", G_TYPE_INT, height, "framerate",
                              GST_TYPE_FRACTION, fps, 1, nullptr);
            gst_caps_append_structure(caps, structure);
        }
    return caps;
}
