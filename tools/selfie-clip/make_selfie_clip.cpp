// Assembles a selfie clip from two still photos: some time with no face in view, then a neutral
// face, then a smiling one (optionally a smile first too, as a user who smiles too early; or the
// same photo twice, as a still photo held up to the camera). Portrait by default, as a phone's front camera films;
// landscape with
// --size 1280x720, as a laptop's webcam does. Small head movement and sensor noise keep the
// frames from being identical, as a real camera's are. Deterministic: same input, same clip.

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>

namespace {

struct Options {
    std::string neutral, smile, output;
    int width = 720, height = 1280;
    // The room is empty long enough for a host's tutorial to be dismissed, and the smile begins
    // when the fifth neutral image has been taken, as for a user who smiles when asked: the
    // capture can end 6 s after the first neutral image.
    double fps = 15, blankSeconds = 2, neutralSeconds = 5, smileSeconds = 4;
    // A user who smiles before being asked: the smile shows this long before the neutral face.
    double earlySmileSeconds = 0;
    double brightness = 0, contrast = 1, noise = 2.5;  // light and sensor of the simulated camera
    // Light from a window on the left: the right edge gets this share of the left edge's light.
    double sideLight = 1;
};

bool parse(int argc, char **argv, Options &o)
{
    for (int i = 1; i + 1 < argc; i += 2) {
        const std::string key = argv[i], value = argv[i + 1];
        if (key == "--neutral")
            o.neutral = value;
        else if (key == "--smile")
            o.smile = value;
        else if (key == "--output")
            o.output = value;
        else if (key == "--fps")
            o.fps = std::stod(value);
        else if (key == "--blank-seconds")
            o.blankSeconds = std::stod(value);
        else if (key == "--neutral-seconds")
            o.neutralSeconds = std::stod(value);
        else if (key == "--smile-seconds")
            o.smileSeconds = std::stod(value);
        else if (key == "--early-smile-seconds")
            o.earlySmileSeconds = std::stod(value);
        else if (key == "--brightness")
            o.brightness = std::stod(value);
        else if (key == "--contrast")
            o.contrast = std::stod(value);
        else if (key == "--noise")
            o.noise = std::stod(value);
        else if (key == "--side-light")
            o.sideLight = std::stod(value);
        else if (key == "--size") {
            if (std::sscanf(value.c_str(), "%dx%d", &o.width, &o.height) != 2 || o.width <= 0 || o.height <= 0)
                return false;
        } else
            return false;
    }
    return !o.neutral.empty() && !o.smile.empty() && !o.output.empty() && o.fps > 0;
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

// A little sway and breathing zoom, the camera's light response, then sensor noise.
cv::Mat cameraFrame(const cv::Mat &scene, double t, cv::RNG &rng, const Options &o)
{
    const double zoom = 1.0 + 0.012 * std::sin(2 * M_PI * t / 3.1);
    const cv::Point2f centre(scene.cols / 2.0f, scene.rows / 2.0f);
    cv::Mat motion = cv::getRotationMatrix2D(centre, 0.8 * std::sin(2 * M_PI * t / 2.3), zoom);
    motion.at<double>(0, 2) += 5 * std::sin(2 * M_PI * t / 2.7);
    motion.at<double>(1, 2) += 4 * std::sin(2 * M_PI * t / 1.9);
    cv::Mat frame;
    cv::warpAffine(scene, frame, motion, scene.size(), cv::INTER_LINEAR, cv::BORDER_REFLECT);
    cv::Mat noise(frame.size(), CV_16SC3);
    rng.fill(noise, cv::RNG::NORMAL, 0, o.noise);
    if (o.sideLight != 1)
        frame = sideLit(frame, o.sideLight);
    cv::Mat noisy;
    frame.convertTo(noisy, CV_16SC3, o.contrast, o.brightness + 128 * (1 - o.contrast));
    noisy += noise;
    noisy.convertTo(frame, CV_8UC3);
    return frame;
}

}  // namespace

int main(int argc, char **argv)
{
    Options o;
    if (!parse(argc, argv, o)) {
        std::fprintf(stderr,
                     "usage: %s --neutral PHOTO --smile PHOTO --output CLIP.avi [--fps 15] [--blank-seconds 1]"
                     " [--neutral-seconds 6] [--smile-seconds 3] [--early-smile-seconds 0] [--brightness 0] "
                     "[--contrast 1] [--noise 2.5]"
                     " [--side-light 1]"
                     " [--size 720x1280]\n",
                     argv[0]);
        return 2;
    }
    const cv::Size size(o.width, o.height);
    const cv::Mat neutral = cv::imread(o.neutral), smile = cv::imread(o.smile);
    if (neutral.empty() || smile.empty()) {
        std::fprintf(stderr, "cannot read %s\n", neutral.empty() ? o.neutral.c_str() : o.smile.c_str());
        return 1;
    }
    // FFmpeg's Motion JPEG encoder: OpenCV's built-in one truncates the odd frame.
    cv::VideoWriter writer(o.output, cv::CAP_FFMPEG, cv::VideoWriter::fourcc('M', 'J', 'P', 'G'), o.fps, size);
    if (!writer.isOpened()) {
        std::fprintf(stderr, "cannot write %s\n", o.output.c_str());
        return 1;
    }
    const cv::Mat room = emptyRoom(size), neutralScene = personScene(neutral, size),
                  smileScene = personScene(smile, size);
    // The scenes in order, each with the time it ends.
    const std::pair<const cv::Mat *, double> schedule[] = {
        {&room, o.blankSeconds},
        {&smileScene, o.blankSeconds + o.earlySmileSeconds},
        {&neutralScene, o.blankSeconds + o.earlySmileSeconds + o.neutralSeconds},
        {&smileScene, o.blankSeconds + o.earlySmileSeconds + o.neutralSeconds + o.smileSeconds},
    };
    const int frames = int(std::lround(schedule[3].second * o.fps));
    cv::RNG rng(20261122);
    for (int i = 0; i < frames; ++i) {
        const double t = i / o.fps;
        const auto *scene = &schedule[0];
        while (t >= scene->second && scene != &schedule[3])
            ++scene;
        writer.write(cameraFrame(*scene->first, t, rng, o));
    }
    std::printf("wrote %s: %d frames of %dx%d at %.0f fps\n", o.output.c_str(), frames, o.width, o.height, o.fps);
    return 0;
}
