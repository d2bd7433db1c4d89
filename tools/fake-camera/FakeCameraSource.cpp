#include "FakeCameraSource.h"

#include "FakeCameraFeed.h"
#include "FakeCameraProvider.h"
#include "FakeCameraSettings.h"

#include <gst/video/video.h>
#include <opencv2/imgcodecs.hpp>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
std::atomic<bool> unpluggedOnce{false};  // a camera is unplugged once per process
// Until then, no source opens, as with a camera that is not there; max: never plugged back.
std::atomic<Clock::rep> unpluggedUntil{Clock::time_point::min().time_since_epoch().count()};

bool isUnplugged() { return Clock::now().time_since_epoch().count() < unpluggedUntil.load(); }

void unplug(int backAfterMs)
{
    unpluggedUntil = backAfterMs < 0
                         ? Clock::time_point::max().time_since_epoch().count()
                         : (Clock::now() + std::chrono::milliseconds(backAfterMs)).time_since_epoch().count();
    fakeCameraUnplug(backAfterMs);
}

struct SourceState {
    FakeCameraSettings settings;
    FakeCameraFeed feed;
    bool jpeg = false;
    cv::Size size;
    GstVideoInfo info{};
    GstVideoConverter *converter = nullptr;
    Clock::time_point started, nextFrame;
    std::atomic<bool> unlocked{false};

    ~SourceState() { dropConverter(); }
    void dropConverter()
    {
        if (converter)
            gst_video_converter_free(converter);
        converter = nullptr;
    }
};

}  // namespace

struct _FakeCameraSource {
    GstPushSrc parent;
    SourceState *state;
};

G_DEFINE_TYPE(FakeCameraSource, fake_camera_source, GST_TYPE_PUSH_SRC)

namespace {

SourceState &stateOf(gpointer source) { return *FAKE_CAMERA_SOURCE(source)->state; }

GstCaps *getCaps(GstBaseSrc *, GstCaps *filter)
{
    GstCaps *caps = FakeCameraSettings::fromEnvironment().caps();
    if (!filter)
        return caps;
    GstCaps *both = gst_caps_intersect_full(filter, caps, GST_CAPS_INTERSECT_FIRST);
    gst_caps_unref(caps);
    return both;
}

gboolean setCaps(GstBaseSrc *source, GstCaps *caps)
{
    SourceState &s = stateOf(source);
    const GstStructure *structure = gst_caps_get_structure(caps, 0);
    int width = 0, height = 0;
    if (!gst_structure_get_int(structure, "width", &width) || !gst_structure_get_int(structure, "height", &height))
        return FALSE;
    s.size = cv::Size(width, height);
    s.jpeg = gst_structure_has_name(structure, "image/jpeg");
    s.dropConverter();
    if (s.jpeg)
        return TRUE;
    if (!gst_video_info_from_caps(&s.info, caps))
        return FALSE;
    GstVideoInfo bgr = s.info;  // same size and rate, only the layout differs
    gst_video_info_set_format(&bgr, GST_VIDEO_FORMAT_BGR, width, height);
    bgr.fps_n = s.info.fps_n;
    bgr.fps_d = s.info.fps_d;
    s.converter = gst_video_converter_new(&bgr, &s.info, nullptr);
    return s.converter != nullptr;
}

void tellState(const SourceState &s, const char *state)
{
    if (s.settings.stateFile.empty())
        return;
    if (FILE *file = std::fopen(s.settings.stateFile.c_str(), "w")) {
        std::fputs(state, file);
        std::fclose(file);
    }
}

void countOpening(const FakeCameraSettings &settings)
{
    if (settings.opensFile.empty())
        return;
    if (FILE *file = std::fopen(settings.opensFile.c_str(), "a")) {
        std::fputs("start\n", file);
        std::fclose(file);
    }
}

gboolean start(GstBaseSrc *source)
{
    SourceState &s = stateOf(source);
    s.settings = FakeCameraSettings::fromEnvironment();
    countOpening(s.settings);
    using Fault = FakeCameraSettings::Fault;
    const bool refuses = s.settings.fault == Fault::Open || s.settings.fault == Fault::UntilGranted;
    if (refuses || isUnplugged() || !s.feed.open(s.settings.source)) {
        GST_ELEMENT_ERROR(source, RESOURCE, OPEN_READ, ("Could not open the camera."),
                          ("%s", s.settings.source.c_str()));
        return FALSE;
    }
    s.started = Clock::now();
    s.nextFrame = s.started + std::chrono::milliseconds(s.settings.startDelayMs);
    tellState(s, "open");
    return TRUE;
}

gboolean stop(GstBaseSrc *source)
{
    stateOf(source).dropConverter();
    tellState(stateOf(source), "closed");
    return TRUE;
}

gboolean unlock(GstBaseSrc *source)
{
    stateOf(source).unlocked = true;
    return TRUE;
}

gboolean unlockStop(GstBaseSrc *source)
{
    stateOf(source).unlocked = false;
    return TRUE;
}

// Sleeps until `until` in short steps; false when the source is told to stop waiting.
bool waitUntil(SourceState &s, Clock::time_point until)
{
    while (Clock::now() < until) {
        if (s.unlocked)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return !s.unlocked;
}

GstFlowReturn fail(GstPushSrc *source)
{
    GST_ELEMENT_ERROR(source, RESOURCE, READ, ("The camera stopped sending pictures."),
                      ("fault requested by the test"));
    return GST_FLOW_ERROR;
}

// The fault due at this point of the stream, if any.
GstFlowReturn misbehave(GstPushSrc *source, SourceState &s, bool &faulted)
{
    using Fault = FakeCameraSettings::Fault;
    faulted = s.settings.fault != Fault::None
              && Clock::now() - s.started >= std::chrono::milliseconds(s.settings.faultAfterMs);
    if (!faulted)
        return GST_FLOW_OK;
    switch (s.settings.fault) {
    case Fault::Error: return fail(source);
    case Fault::Vanish:
        if (unpluggedOnce.exchange(true)) {
            faulted = false;
            return GST_FLOW_OK;
        }
        unplug(s.settings.backAfterMs);
        return fail(source);
    case Fault::Freeze:
        while (waitUntil(s, Clock::now() + std::chrono::milliseconds(100))) {
        }
        return GST_FLOW_FLUSHING;
    default: faulted = false; return GST_FLOW_OK;
    }
}

GstBuffer *rawBuffer(SourceState &s, cv::Mat &bgr)
{
    GstVideoInfo in = s.info;
    gst_video_info_set_format(&in, GST_VIDEO_FORMAT_BGR, bgr.cols, bgr.rows);
    in.stride[0] = int(bgr.step);
    in.size = bgr.step * size_t(bgr.rows);
    GstBuffer *wrapped =
        gst_buffer_new_wrapped_full(GstMemoryFlags(0), bgr.data, in.size, 0, in.size, nullptr, nullptr);
    GstBuffer *out = gst_buffer_new_allocate(nullptr, s.info.size, nullptr);
    GstVideoFrame inFrame, outFrame;
    gst_video_frame_map(&inFrame, &in, wrapped, GST_MAP_READ);
    gst_video_frame_map(&outFrame, &s.info, out, GST_MAP_WRITE);
    gst_video_converter_frame(s.converter, &inFrame, &outFrame);
    gst_video_frame_unmap(&outFrame);
    gst_video_frame_unmap(&inFrame);
    gst_buffer_unref(wrapped);
    return out;
}

GstBuffer *jpegBuffer(const cv::Mat &bgr)
{
    std::vector<uchar> bytes;
    cv::imencode(".jpg", bgr, bytes, {cv::IMWRITE_JPEG_QUALITY, 85});
    return gst_buffer_new_memdup(bytes.data(), bytes.size());
}

GstFlowReturn create(GstPushSrc *source, GstBuffer **buffer)
{
    SourceState &s = stateOf(source);
    const auto period = std::chrono::microseconds(1000000 / s.settings.fps);
    if (!waitUntil(s, s.nextFrame))
        return GST_FLOW_FLUSHING;
    s.nextFrame = std::max(s.nextFrame + period, Clock::now());
    bool faulted = false;
    if (const GstFlowReturn result = misbehave(source, s, faulted); faulted)
        return result;
    cv::Mat bgr = s.feed.next(s.size);
    if (bgr.empty())
        return fail(source);
    *buffer = s.jpeg ? jpegBuffer(bgr) : rawBuffer(s, bgr);
    GST_BUFFER_DURATION(*buffer) = GST_SECOND / s.settings.fps;
    return GST_FLOW_OK;
}

void finalize(GObject *object)
{
    delete FAKE_CAMERA_SOURCE(object)->state;
    G_OBJECT_CLASS(fake_camera_source_parent_class)->finalize(object);
}

}  // namespace

static void fake_camera_source_class_init(FakeCameraSourceClass *klass)
{
    G_OBJECT_CLASS(klass)->finalize = finalize;
    GstElementClass *element = GST_ELEMENT_CLASS(klass);
    static GstStaticPadTemplate pad =
        GST_STATIC_PAD_TEMPLATE("src", GST_PAD_SRC, GST_PAD_ALWAYS, GST_STATIC_CAPS("video/x-raw; image/jpeg"));
    gst_element_class_add_static_pad_template(element, &pad);
    gst_element_class_set_static_metadata(element, "Vextil fake camera", "Source/Video",
                                          "Films a video or a still for tests", "VextilToolkit");
    GstBaseSrcClass *base = GST_BASE_SRC_CLASS(klass);
    base->get_caps = getCaps;
    base->set_caps = setCaps;
    base->start = start;
    base->stop = stop;
    base->unlock = unlock;
    base->unlock_stop = unlockStop;
    GST_PUSH_SRC_CLASS(klass)->create = create;
}

static void fake_camera_source_init(FakeCameraSource *source)
{
    source->state = new SourceState;
    gst_base_src_set_live(GST_BASE_SRC(source), TRUE);
    gst_base_src_set_format(GST_BASE_SRC(source), GST_FORMAT_TIME);
    gst_base_src_set_do_timestamp(GST_BASE_SRC(source), TRUE);
}
