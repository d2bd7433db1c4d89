// Assembles a selfie clip from two still photos: some time with no face in view, then a neutral
// face, then the same face smiling (optionally a smile first too, as a user who smiles too early).
// The smile grows over a few tenths of a second, as a live one does: the smiling photo's face is
// moved onto the neutral face and faded in (see SmileComposite). With the same photo twice the
// clip is a still photo held up to the camera; with --swap it is a photo swapped for another
// (cut, slid in, or behind a hand), the attacks the capture must refuse. A user who starts too
// far, too close, off centre, in the dark or moving settles after a while (--start-*).
// Portrait by default, as a phone's front camera films; landscape with --size 1280x720, as a
// laptop's webcam does. Small head movement and sensor noise keep the frames from being identical,
// as a real camera's are. Deterministic: same input, same clip.

#include "SmileComposite.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <map>
#include <string>

namespace {

// Where the person is and how they are lit: eased from the start framing to the normal one.
struct Framing {
    double scale = 1;       // the person's size against the normal framing
    double offset = 0;      // sideways, as a share of the frame's width
    double brightness = 0;  // added to the clip's light
    double shake = 0;       // amplitude of a quick sway, in pixels
};

struct Options {
    std::string neutral, smile, output;
    int width = 720, height = 1280;
    // The room is empty long enough for a host's tutorial to be dismissed, and the smile is
    // formed when the fifth neutral image has been due a second, as for a user who smiles when
    // asked: the capture can end 6 s after the first neutral image.
    double fps = 15, blankSeconds = 2, neutralSeconds = 5, smileSeconds = 4;
    // A user who smiles before being asked: the smile shows this long before the neutral face.
    double earlySmileSeconds = 0;
    // How long a smile takes to form (it is formed when its time comes) and to fade; 0 cuts it in.
    double smileFadeSeconds = 0.4;
    // A photo swapped for another at the smile's time: "cut", "slide" or "cover".
    std::string swap;
    double swapSeconds = 0.4;
    double brightness = 0, contrast = 1, noise = 2.5;  // light and sensor of the simulated camera
    // Light from a window on the left: the right edge gets this share of the left edge's light.
    double sideLight = 1;
    // How the user settles (a scale of 1 is the usual framing, about 60% of a phone's view), how
    // they start (as settled unless said), for how long, and how long they take to settle.
    Framing settled, start{std::nan(""), 0, 0, 0};
    double unsettledSeconds = 0, settlingSeconds = 1;
};

bool parseSize(const std::string &value, Options &o)
{
    return std::sscanf(value.c_str(), "%dx%d", &o.width, &o.height) == 2 && o.width > 0 && o.height > 0;
}

bool parse(int argc, char **argv, Options &o)
{
    const std::map<std::string, std::string *> texts = {
        {"--neutral", &o.neutral}, {"--smile", &o.smile}, {"--output", &o.output}, {"--swap", &o.swap}};
    const std::map<std::string, double *> numbers = {
        {"--fps", &o.fps},
        {"--blank-seconds", &o.blankSeconds},
        {"--neutral-seconds", &o.neutralSeconds},
        {"--smile-seconds", &o.smileSeconds},
        {"--early-smile-seconds", &o.earlySmileSeconds},
        {"--smile-fade-seconds", &o.smileFadeSeconds},
        {"--swap-seconds", &o.swapSeconds},
        {"--brightness", &o.brightness},
        {"--contrast", &o.contrast},
        {"--noise", &o.noise},
        {"--side-light", &o.sideLight},
        {"--scale", &o.settled.scale},
        {"--start-scale", &o.start.scale},
        {"--start-offset", &o.start.offset},
        {"--start-brightness", &o.start.brightness},
        {"--start-shake", &o.start.shake},
        {"--unsettled-seconds", &o.unsettledSeconds},
        {"--settling-seconds", &o.settlingSeconds},
    };
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string key = argv[i], value = argv[i + 1];
        if (const auto text = texts.find(key); text != texts.end())
            *text->second = value;
        else if (const auto number = numbers.find(key); number != numbers.end())
            *number->second = std::stod(value);
        else if (key != "--size" || !parseSize(value, o))
            return false;
    }
    if (std::isnan(o.start.scale))
        o.start.scale = o.settled.scale;
    const bool swapKnown = o.swap.empty() || o.swap == "cut" || o.swap == "slide" || o.swap == "cover";
    return !o.neutral.empty() && !o.smile.empty() && !o.output.empty() && o.fps > 0 && swapKnown;
}

// Scales a photo to cover the frame and crops the middle, as a phone fills its preview.
cv::Mat fillFrame(const cv::Mat &photo, cv::Size size)
{
    const double scale = std::max(double(size.width) / photo.cols, double(size.height) / photo.rows);
    cv::Mat scaled;
    cv::resize(photo, scaled, cv::Size(), scale, scale, cv::INTER_AREA);
    const cv::Rect middle((scaled.cols - size.width) / 2, (scaled.rows - size.height) / 2, size.width, size.height);
    return scaled(middle).clone();
}

// The person as a landscape webcam films them: the portrait scene, scaled so that the face is as
// large on a phone-shaped view (390x618, cropped from the middle of the frame) as in the portrait
// clip, in front of a blurred widening of the same photo.
cv::Mat landscapeScene(const cv::Mat &photo, cv::Size size)
{
    const cv::Size portrait(720, 1280);
    const double portraitVisibleHeight = portrait.width * 618.0 / 390.0;  // what a phone view shows of it
    const double scale = size.height / portraitVisibleHeight;
    cv::Mat person;
    cv::resize(fillFrame(photo, portrait), person, cv::Size(), scale, scale, cv::INTER_AREA);
    cv::Mat scene = fillFrame(photo, size / 8);
    cv::GaussianBlur(scene, scene, cv::Size(0, 0), 6);
    cv::resize(scene, scene, size, 0, 0, cv::INTER_LINEAR);
    const int top = (person.rows - size.height) / 2;
    const cv::Mat middle = person(cv::Rect(0, top, person.cols, size.height));
    middle.copyTo(scene(cv::Rect((size.width - person.cols) / 2, 0, person.cols, size.height)));
    return scene;
}

// A photo filling the frame: directly for portrait frames, in a wider scene for landscape ones.
cv::Mat personScene(const cv::Mat &photo, cv::Size size)
{
    return size.width > size.height ? landscapeScene(photo, size) : fillFrame(photo, size);
}

// An empty room: a wall in a soft gradient over a darker floor band.
cv::Mat emptyRoom(cv::Size size)
{
    cv::Mat room(size, CV_8UC3);
    for (int y = 0; y < size.height; ++y) {
        const double t = double(y) / size.height;
        const cv::Vec3b colour =
            t < 0.7 ? cv::Vec3b(uchar(205 - 40 * t), uchar(200 - 30 * t), uchar(190 - 20 * t)) : cv::Vec3b(70, 80, 95);
        room.row(y).setTo(colour);
    }
    return room;
}

// A hand over the camera: nearly black, a little red where light comes through.
cv::Mat coveredCamera(cv::Size size) { return cv::Mat(size, CV_8UC3, cv::Scalar(8, 10, 24)); }

// The light falls off linearly from the left edge to the right one, leaving half of the face in shadow.
cv::Mat sideLit(const cv::Mat &frame, double rightShare)
{
    cv::Mat gain(1, frame.cols, CV_32FC3);
    for (int x = 0; x < frame.cols; ++x) {
        const float g = float(1.0 + (rightShare - 1.0) * x / std::max(1, frame.cols - 1));
        gain.at<cv::Vec3f>(0, x) = cv::Vec3f(g, g, g);
    }
    cv::Mat lit;
    frame.convertTo(lit, CV_32FC3);
    lit = lit.mul(cv::repeat(gain, frame.rows, 1));
    lit.convertTo(lit, CV_8UC3);
    return lit;
}

double smoothstep(double x)
{
    x = std::clamp(x, 0.0, 1.0);
    return x * x * (3 - 2 * x);
}

cv::Mat blend(const cv::Mat &a, const cv::Mat &b, double weightOfB)
{
    if (weightOfB <= 0)
        return a;
    if (weightOfB >= 1)
        return b;
    cv::Mat mixed;
    cv::addWeighted(a, 1 - weightOfB, b, weightOfB, 0, mixed);
    return mixed;
}

// The scene moved and scaled about its middle, over a blur of itself where it no longer reaches.
cv::Mat framed(const cv::Mat &scene, const Framing &f)
{
    if (f.scale == 1 && f.offset == 0)
        return scene;
    const cv::Point2f centre(scene.cols / 2.0f, scene.rows / 2.0f);
    cv::Mat move = cv::getRotationMatrix2D(centre, 0, f.scale);
    move.at<double>(0, 2) += f.offset * scene.cols;
    cv::Mat backdrop, person, reach;
    cv::resize(scene, backdrop, scene.size() / 8, 0, 0, cv::INTER_AREA);
    cv::GaussianBlur(backdrop, backdrop, cv::Size(0, 0), 4);
    cv::resize(backdrop, backdrop, scene.size(), 0, 0, cv::INTER_LINEAR);
    cv::warpAffine(scene, person, move, scene.size(), cv::INTER_LINEAR, cv::BORDER_CONSTANT);
    cv::warpAffine(cv::Mat(scene.size(), CV_8UC1, cv::Scalar(255)), reach, move, scene.size(), cv::INTER_NEAREST,
                   cv::BORDER_CONSTANT);
    person.copyTo(backdrop, reach);
    return backdrop;
}

// A little sway and breathing zoom (and a quick shake if asked), the camera's light response,
// then sensor noise.
cv::Mat cameraFrame(const cv::Mat &scene, double t, cv::RNG &rng, const Options &o, const Framing &f)
{
    const double zoom = 1.0 + 0.012 * std::sin(2 * M_PI * t / 3.1);
    const cv::Point2f centre(scene.cols / 2.0f, scene.rows / 2.0f);
    cv::Mat motion = cv::getRotationMatrix2D(centre, 0.8 * std::sin(2 * M_PI * t / 2.3), zoom);
    motion.at<double>(0, 2) += 5 * std::sin(2 * M_PI * t / 2.7) + f.shake * std::sin(2 * M_PI * 2.0 * t);
    motion.at<double>(1, 2) += 4 * std::sin(2 * M_PI * t / 1.9) + 0.6 * f.shake * std::sin(2 * M_PI * 1.7 * t);
    cv::Mat frame;
    cv::warpAffine(scene, frame, motion, scene.size(), cv::INTER_LINEAR, cv::BORDER_REFLECT);
    cv::Mat noise(frame.size(), CV_16SC3);
    rng.fill(noise, cv::RNG::NORMAL, 0, o.noise);
    if (o.sideLight != 1)
        frame = sideLit(frame, o.sideLight);
    cv::Mat noisy;
    frame.convertTo(noisy, CV_16SC3, o.contrast, o.brightness + f.brightness + 128 * (1 - o.contrast));
    noisy += noise;
    noisy.convertTo(frame, CV_8UC3);
    return frame;
}

// What the camera films at each moment of the clip.
class Script {
public:
    Script(const Options &o, const cv::Mat &neutralScene, const cv::Mat &smileScene)
        : m_o(o), m_neutral(neutralScene), m_smile(smileScene), m_room(emptyRoom(neutralScene.size())),
          m_covered(coveredCamera(neutralScene.size()))
    {
    }

    double seconds() const { return smileFormed() + m_o.smileSeconds; }

    cv::Mat sceneAt(double t) const
    {
        if (t < m_o.blankSeconds)
            return m_room;
        if (!m_o.swap.empty() && t >= smileFormed())
            return framed(swapped(t - smileFormed()), m_o.settled);
        return framed(blend(m_neutral, m_smile, smileAt(t)), framingAt(t));
    }

    Framing framingAt(double t) const
    {
        const double done = smoothstep((t - m_o.blankSeconds - m_o.unsettledSeconds) / m_o.settlingSeconds);
        const auto ease = [done](double from, double to) { return from + (to - from) * done; };
        const Framing &s = m_o.start, &e = m_o.settled;
        return {ease(s.scale, e.scale), ease(s.offset, e.offset), ease(s.brightness, e.brightness),
                ease(s.shake, e.shake)};
    }

private:
    // The neutral face's time starts once the user has settled.
    double faceSettles() const
    {
        const Framing &s = m_o.start, &e = m_o.settled;
        const bool settled = s.scale == e.scale && s.offset == 0 && s.brightness == 0 && s.shake == 0;
        return m_o.blankSeconds + (settled ? 0 : m_o.unsettledSeconds + m_o.settlingSeconds);
    }
    double earlySmileEnds() const { return faceSettles() + m_o.earlySmileSeconds; }
    double smileFormed() const { return earlySmileEnds() + m_o.neutralSeconds; }

    // How much of the smile shows: an early smile fades after its time, the asked-for one grows
    // before its time, so that neither shows a moment too long or too short.
    double smileAt(double t) const
    {
        if (!m_o.swap.empty())
            return 0;
        const double fade = std::max(m_o.smileFadeSeconds, 1e-9);
        const double early = m_o.earlySmileSeconds > 0 ? 1 - smoothstep((t - earlySmileEnds()) / fade) : 0;
        return std::max(early, smoothstep((t - smileFormed() + fade) / fade));
    }

    // The neutral photo replaced by the smiling one: from one frame to the next, slid in from the
    // right over swapSeconds as on a phone's screen, or after a hand covered the camera as long.
    cv::Mat swapped(double since) const
    {
        if (m_o.swap == "cut" || since >= m_o.swapSeconds)
            return m_smile;
        if (m_o.swap == "cover")
            return m_covered;
        const int shift = int(std::lround(smoothstep(since / m_o.swapSeconds) * m_smile.cols));
        if (shift <= 0 || shift >= m_smile.cols)
            return shift <= 0 ? m_neutral : m_smile;
        cv::Mat frame(m_smile.size(), m_smile.type());
        m_neutral.colRange(shift, m_neutral.cols).copyTo(frame.colRange(0, frame.cols - shift));
        m_smile.colRange(0, shift).copyTo(frame.colRange(frame.cols - shift, frame.cols));
        return frame;
    }

    const Options &m_o;
    cv::Mat m_neutral, m_smile, m_room, m_covered;
};

void usage(const char *program)
{
    std::fprintf(stderr,
                 "usage: %s --neutral PHOTO --smile PHOTO --output CLIP.avi [--fps 15] [--blank-seconds 2]"
                 " [--neutral-seconds 5] [--smile-seconds 4] [--early-smile-seconds 0] [--smile-fade-seconds 0.4]"
                 " [--swap cut|slide|cover] [--swap-seconds 0.4] [--brightness 0] [--contrast 1] [--noise 2.5]"
                 " [--side-light 1] [--size 720x1280] [--scale 1] [--start-scale SCALE] [--start-offset 0] "
                 "[--start-brightness 0]"
                 " [--start-shake 0] [--unsettled-seconds 0] [--settling-seconds 1]\n",
                 program);
}

}  // namespace

int main(int argc, char **argv)
{
    Options o;
    if (!parse(argc, argv, o)) {
        usage(argv[0]);
        return 2;
    }
    const cv::Size size(o.width, o.height);
    const cv::Mat neutral = cv::imread(o.neutral), smilePhoto = cv::imread(o.smile);
    if (neutral.empty() || smilePhoto.empty()) {
        std::fprintf(stderr, "cannot read %s\n", neutral.empty() ? o.neutral.c_str() : o.smile.c_str());
        return 1;
    }
    // The same photo twice is a still photo: nothing to move onto itself.
    std::string error;
    const cv::Mat smile = o.neutral == o.smile ? smilePhoto : SmileComposite::make(neutral, smilePhoto, error);
    if (smile.empty()) {
        std::fprintf(stderr, "%s + %s: %s\n", o.neutral.c_str(), o.smile.c_str(), error.c_str());
        return 1;
    }
    // FFmpeg's Motion JPEG encoder: OpenCV's built-in one truncates the odd frame.
    cv::VideoWriter writer(o.output, cv::CAP_FFMPEG, cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), o.fps, size);
    if (!writer.isOpened()) {
        std::fprintf(stderr, "cannot write %s\n", o.output.c_str());
        return 1;
    }
    const Script script(o, personScene(neutral, size), personScene(smile, size));
    const int frames = int(std::lround(script.seconds() * o.fps));
    cv::RNG rng(20261122);
    for (int i = 0; i < frames; ++i) {
        const double t = i / o.fps;
        writer.write(cameraFrame(script.sceneAt(t), t, rng, o, t < o.blankSeconds ? Framing() : script.framingAt(t)));
    }
    std::printf("wrote %s: %d frames of %dx%d at %.0f fps\n", o.output.c_str(), frames, o.width, o.height, o.fps);
    return 0;
}
