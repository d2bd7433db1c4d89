// Capture spine figures: frame conversion, detection and whole per-frame analysis on portrait
// 720x1280 frames on one thread; smile precision and recall on the labelled photos; and the
// capture over the built clips in simulated time.
//
// Clips named on the command line (made like the built ones: 2 s empty, 5 s neutral, then the
// smile) are run as well and counted on a line of their own, so the summary lines stay
// comparable between runs.

#include <VextilToolkit/VextilFaceCameraModel.h>
#include <VextilToolkit/VextilImageBuffer.h>
#include <VextilToolkit/VextilVideoFileReader.h>

#include "camera/VextilUprightFrame.h"
#include "camera/VextilVideoFrameMapping.h"
#include "capture/VextilFaceTrack.h"
#include "capture/VextilSmileJudge.h"
#include "ClipRun.h"
#include "detection/VextilBlazeFace.h"
#include "detection/VextilCascadeFaceDetector.h"
#include "detection/VextilGreyExpressionNet.h"
#include "detection/VextilLearnedFaceDetector.h"
#include "GuidedClips.h"
#include "LabelledPhotos.h"
#include "YuvFrames.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFileInfo>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <numeric>
#include <string>
#include <vector>

namespace {

struct Timing {
    double mean = 0, p95 = 0;
};

Timing summarise(std::vector<double> ms)
{
    if (ms.empty())
        return {};
    std::sort(ms.begin(), ms.end());
    return {std::accumulate(ms.begin(), ms.end(), 0.0) / double(ms.size()), ms[size_t(double(ms.size() - 1) * 0.95)]};
}

template <typename F>
double millis(F &&work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return double(timer.nsecsElapsed()) / 1e6;
}

QList<QImage> clipFrames()
{
    QList<QImage> frames;
    VextilVideoFileReader reader;
    if (!reader.open(QStringLiteral(VEXTIL_SELFIE_CLIP)))
        return frames;
    while (auto frame = reader.readFrame())
        frames.append(frame->image);
    return frames;
}

void conversion()
{
    // A camera-like plane: rows padded past 4 x width, as camera drivers do.
    const int width = 720, height = 1280;
    const qsizetype stride = width * 4 + 64;
    std::vector<uchar> plane(size_t(stride * height), 0x80);
    const VextilSampleBuffer buffer{plane.data(), qsizetype(plane.size()), width, height, stride};
    std::vector<double> ms;
    for (int i = 0; i < 300; ++i)
        ms.push_back(millis([&] { QImage image = VextilImageBuffer::imageFromSampleBuffer(buffer); }));
    const Timing t = summarise(ms);
    std::printf("conversion 720x1280:        mean %6.3f ms   p95 %6.3f ms   (target <= 1 ms)\n", t.mean, t.p95);
}

// A webcam's frames, each format at 720p and 1080p, from the camera frame to the upright copy of
// a phone-sized view's region that the capture analyses (what the camera path costs per analysed
// frame), and to the whole-size picture made for each of the seven frames the capture keeps.
void cameraFormats(const QImage &scene)
{
    const std::pair<const char *, QVideoFrameFormat::PixelFormat> formats[] = {
        {"YUYV", QVideoFrameFormat::Format_YUYV},    {"UYVY", QVideoFrameFormat::Format_UYVY},
        {"NV12", QVideoFrameFormat::Format_NV12},    {"NV21", QVideoFrameFormat::Format_NV21},
        {"I420", QVideoFrameFormat::Format_YUV420P}, {"YV12", QVideoFrameFormat::Format_YV12},
        {"JPEG", QVideoFrameFormat::Format_YUV420P}};  // decoded JPEG: full-range I420
    const QImage rgb = scene.convertToFormat(QImage::Format_RGB888);
    for (const QSize size : {QSize(1280, 720), QSize(1920, 1080)}) {
        cv::Mat bgr, room(rgb.height(), rgb.width(), CV_8UC3, const_cast<uchar *>(rgb.constBits()), rgb.bytesPerLine());
        cv::cvtColor(room, bgr, cv::COLOR_RGB2BGR);
        cv::resize(bgr, bgr, cv::Size(size.width(), size.height()));
        for (const auto &[name, format] : formats) {
            const QVideoFrame frame = yuvFrame(bgr, format, std::string(name) == "JPEG");
            const auto cameraFrame = [&frame] { return VextilVideoFrameMapping::cameraFrame(frame); };
            std::vector<double> analysed, kept;
            // Apart: most frames are only analysed, and the kept ones' large buffers would disturb them.
            for (int i = 0; i < 100; ++i)
                analysed.push_back(millis([&] {
                    if (VextilUprightFrame::scaledImage(cameraFrame(), QSizeF(390, 618), 720).isNull())
                        std::printf("  %s: no image\n", name);
                }));
            for (int i = 0; i < 20; ++i)
                kept.push_back(millis([&] { VextilUprightFrame::image(cameraFrame(), QSizeF(390, 618)); }));
            const Timing a = summarise(analysed), k = summarise(kept);
            std::printf(
                "camera %-4s %4dx%-4d analysed copy: mean %5.2f ms p95 %5.2f ms (target <= 1 ms) | whole image, kept "
                "frames only: mean %5.2f ms\n",
                name, size.width(), size.height(), a.mean, a.p95, k.mean);
        }
    }
}

using Factory = std::function<std::shared_ptr<VextilFaceDetector>()>;

// This machine's neighbours come and go: of three passes over the frames, the middle one.
Timing medianPass(const QList<QImage> &frames, const std::function<void(const QImage &)> &work)
{
    std::vector<Timing> passes;
    for (int pass = 0; pass < 3; ++pass) {
        std::vector<double> ms;
        for (const QImage &frame : frames)
            ms.push_back(millis([&] { work(frame); }));
        passes.push_back(summarise(ms));
    }
    std::sort(passes.begin(), passes.end(), [](const Timing &a, const Timing &b) { return a.mean < b.mean; });
    return passes[1];
}

// The learned detector's two networks apart, each with its own input preparation.
void learnedParts(const QList<QImage> &frames)
{
    VextilBlazeFace faces;
    VextilGreyExpressionNet expressions;
    const Timing f = medianPass(frames, [&](const QImage &frame) { faces.detect(frame); });
    QList<QRectF> boxes;
    for (const QImage &frame : frames) {
        const auto found = faces.detect(frame);
        boxes.append(found.isEmpty() ? QRectF() : found.first().bounds);
    }
    qsizetype at = 0;
    const Timing e = medianPass(frames, [&](const QImage &frame) {
        const QRectF box = boxes[at++ % boxes.size()];
        if (!box.isEmpty())
            expressions.smileLogOdds(frame, box);
    });
    std::printf("learned    faces network mean %5.2f ms p95 %5.2f ms | smile classifier, frames with a face, mean "
                "%5.2f ms p95 %5.2f ms\n",
                f.mean, f.p95, e.mean, e.p95);
}

// Returns the mean time of the frames with a face, conversion included.
double perFrame(const char *name, const Factory &make, const QList<QImage> &frames)
{
    auto detector = make();
    detector->setStreamMode(true);  // frames of one camera, as the capture model asks for
    std::vector<double> whole;
    const Timing d = medianPass(frames, [&](const QImage &frame) { detector->featuresInImage(frame); });
    // The clips open on an empty room, where there is less to do: the frames with a face apart.
    QList<QImage> withFace;
    for (const QImage &frame : frames)
        if (!detector->featuresInImage(frame).isEmpty())
            withFace.append(frame);
    // As the camera screen does it: the camera's buffer converted, then analysed.
    const Timing f = medianPass(withFace, [&](const QImage &frame) {
        const VextilSampleBuffer buffer{frame.constBits(), frame.sizeInBytes(), frame.width(), frame.height(),
                                        frame.bytesPerLine()};
        detector->featuresInImage(VextilImageBuffer::imageFromSampleBuffer(buffer));
    });
    VextilFaceCameraModel model(detector);
    model.resetState();
    QCoreApplication::processEvents();
    model.setViewSize(frames.isEmpty() ? QSizeF() : QSizeF(frames.first().size()));
    for (const QImage &frame : frames) {
        const VextilSampleBuffer buffer{frame.constBits(), frame.sizeInBytes(), frame.width(), frame.height(),
                                        frame.bytesPerLine()};
        whole.push_back(millis([&] { model.processFace(VextilImageBuffer::imageFromSampleBuffer(buffer)); }));
    }
    const Timing w = summarise(whole);
    std::printf("%-8s detection mean %6.2f ms p95 %6.2f ms | whole per-frame mean %6.2f ms p95 %6.2f ms\n", name,
                d.mean, d.p95, w.mean, w.p95);
    std::printf("%-8s   conversion and detection on the %lld frames with a face: mean %6.2f ms p95 %6.2f ms\n", name,
                static_cast<long long>(withFace.size()), f.mean, f.p95);
    return f.mean;
}

struct SmileScore {
    double recall = 0, precision = 0;
};

// Smile verdicts and face matches of one detector on the labelled photos.
SmileScore photos(const char *name, const Factory &make)
{
    auto detector = make();
    int matched = 0, yes = 0, yesFound = 0, no = 0, noFlagged = 0, slight = 0, slightFlagged = 0;
    double iouSum = 0;
    const QList<LabelledPhoto> labelled = loadLabelledPhotos();
    for (const LabelledPhoto &photo : labelled) {
        const QImage image = loadPhoto(photo);
        const auto faces = detector->featuresInImage(image);
        const double iou = faces.isEmpty()
                               ? 0
                               : intersectionOverUnion(topLeftBounds(faces.first().bounds, image.height()), photo.face);
        iouSum += iou;
        matched += iou >= 0.5;
        const bool smiling = !faces.isEmpty() && faces.first().hasSmile;
        if (photo.smile == QLatin1String("yes")) {
            ++yes;
            yesFound += smiling;
        } else if (photo.smile == QLatin1String("no")) {
            ++no;
            noFlagged += smiling;
        } else {
            ++slight;
            slightFlagged += smiling;
        }
    }
    const int flagged = yesFound + noFlagged;
    std::printf(
        "%-8s faces IoU>=0.5 %2d/%lld (mean IoU %.2f) | clear smiles: recall %d/%d = %.2f, precision %d/%d = %.2f"
        " | slight called smiling %d/%d\n",
        name, matched, labelled.size(), iouSum / std::max<qsizetype>(1, labelled.size()), yesFound, yes,
        double(yesFound) / yes, yesFound, flagged, flagged ? double(yesFound) / flagged : 0.0, slightFlagged, slight);
    std::printf("%-8s   with slight counted as smiles: recall %d/%d; as neutral: false smiles %d/%d\n", name,
                yesFound + slightFlagged, yes + slight, noFlagged + slightFlagged, no + slight);
    return {yes ? double(yesFound) / yes : 0.0, flagged ? double(yesFound) / flagged : 0.0};
}

void learnedCurve()
{
    VextilLearnedFaceDetector detector;
    QList<std::pair<QString, float>> scores;
    for (const LabelledPhoto &photo : loadLabelledPhotos()) {
        const auto values = detector.smileScores(loadPhoto(photo));
        scores.append({photo.smile, values.isEmpty() ? -100.f : values.first()});
    }
    std::printf(
        "learned smile curve (log-odds threshold: recall on yes / false smiles on no / slight called smiling):\n ");
    for (float threshold : {-1.0f, -0.5f, 0.0f, 0.5f, VextilLearnedFaceDetector::kSmileLogOdds, 1.0f, 1.5f, 2.0f}) {
        int called[3] = {}, all[3] = {};  // yes, no, slight
        for (const auto &[label, value] : scores) {
            const int kind = label == QLatin1String("yes") ? 0 : label == QLatin1String("no") ? 1 : 2;
            ++all[kind];
            called[kind] += value > threshold;
        }
        std::printf(" %.2f: %d/%d %d/%d %d/%d |", threshold, called[0], all[0], called[1], all[1], called[2], all[2]);
    }
    std::printf("\n");
}

// Every clip: 2 s of an empty room, 5 s of a neutral face, then the smile.
constexpr double kSmileOnsetSeconds = 7.0;

// Runs every clip; returns how many completed at the pacing limit: the second smiling image one
// second after the smile began (within a frame).
int clips(const char *name, const Factory &make, const QStringList &paths)
{
    int atLimit = 0;
    for (const QString &clip : paths) {
        const ClipRunResult r = runClip(clip, make());
        const bool inTime = r.completed && r.completionSeconds <= kSmileOnsetSeconds + 1.0 + 1.0 / 15 + 1e-6;
        atLimit += inTime;
        std::printf("%-8s %-24s %s; %5.2f s from first neutral image to completion; %d fall-backs%s\n", name,
                    qPrintable(QFileInfo(clip).fileName()), r.completed ? "completed    " : "NOT completed",
                    r.completed ? r.completionSeconds - r.firstNeutralSeconds : 0.0, r.fallbacks,
                    r.completed && !inTime ? " (after the pacing limit)" : "");
    }
    return atLimit;
}

// Still photos held up to the camera: how many never complete.
int stills(const char *name, const Factory &make, const QStringList &paths)
{
    int refused = 0;
    for (const QString &clip : paths) {
        const ClipRunResult r = runClip(clip, make());
        refused += r.opened && !r.completed;
        std::printf("%-8s %-24s %s; %d neutral images taken\n", name, qPrintable(QFileInfo(clip).fileName()),
                    r.completed ? "COMPLETED (a photo passed)" : "refused", int(r.neutralTakenSeconds.size()));
    }
    return refused;
}

// Users who smile before being asked: how many clips take no neutral image while the smile shows.
int earlySmiles(const char *name, const Factory &make, const QStringList &paths)
{
    int clean = 0;
    for (const QString &clip : paths) {
        const ClipRunResult r = runClip(clip, make());
        const auto whileSmiling = std::count_if(r.neutralTakenSeconds.begin(), r.neutralTakenSeconds.end(),
                                                [](double t) { return t < kEarlySmileEndSeconds; });
        clean += r.opened && whileSmiling == 0;
        std::printf("%-8s %-24s %lld neutral images taken while smiling; %s\n", name,
                    qPrintable(QFileInfo(clip).fileName()), static_cast<long long>(whileSmiling),
                    r.completed ? "completed" : "NOT completed");
    }
    return clean;
}

// Photos swapped for another (cut, slid in, behind a hand): how many never complete.
int swaps(const char *name, const Factory &make, const QStringList &paths)
{
    int refused = 0;
    for (const QString &clip : paths) {
        const ClipRunResult r = runClip(clip, make());
        refused += r.opened && !r.completed;
        std::printf("%-8s %-26s %s; %d neutral images taken, %d fall-backs\n", name,
                    qPrintable(QFileInfo(clip).fileName()), r.completed ? "COMPLETED (a swap passed)" : "refused",
                    int(r.neutralTakenSeconds.size()), r.fallbacks);
    }
    return refused;
}

// Users told what to do: how many clips show the right instruction within kGuidedWithinSeconds of
// the face appearing, in the camera view they are filmed for, and then complete.
int guided(const char *name, const Factory &make, const QStringList &paths)
{
    int good = 0;
    for (const QString &clip : paths) {
        const GuidedClip expected = guidedClip(clip);
        const ClipRunResult r = runClip(clip, make(), expected.view);
        const double shown = r.firstShown(expected.instruction);
        const bool inTime = shown >= 0 && shown <= kFaceAppearsSeconds + kGuidedWithinSeconds;
        good += inTime && r.completed;
        std::printf("%-8s %-30s \"%s\" %s; %s\n", name, qPrintable(QFileInfo(clip).fileName()),
                    qPrintable(expected.instruction),
                    shown < 0 ? "never shown" : qPrintable(QStringLiteral("shown at %1 s").arg(shown, 0, 'f', 2)),
                    r.completed ? qPrintable(QStringLiteral("completed at %1 s").arg(r.completionSeconds, 0, 'f', 2))
                                : "NOT completed");
    }
    return good;
}

// What the face track sees of live users and of swaps, with the learned detector, against its
// limits: per clip, the fastest one-frame movement (face widths a second beyond the detector's
// own jitter), the largest one-frame size change, the largest scene change around a face that
// held still, the fastest mean speed while no guidance was called for, and the smile's growth:
// the smallest largest-step share of its change in look during the 0.6 s after it first
// shows (a grown smile must reach VextilSmileJudge::kLargestStep or less).
void trackFigures(const QStringList &paths, QSizeF view = {})
{
    for (const QString &clip : paths) {
        VextilVideoFileReader reader;
        if (!reader.open(clip))
            continue;
        VextilLearnedFaceDetector detector;
        detector.setStreamMode(true);
        VextilFaceTrack track;
        double fastest = 0, resize = 0, scene = 0, speed = 0, onset = -1, share = 99, change = 0;
        std::vector<float> rest;
        int breaks = 0;
        while (auto frame = reader.readFrame()) {
            const QImage image =
                view.isEmpty() ? frame->image : VextilUprightFrame::scaledImage(VextilCameraFrame(frame->image), view, 720);
            const QList<VextilFaceFeature> faces = detector.featuresInImage(image);
            const auto step = track.follow(image, faces.isEmpty() ? std::nullopt : std::optional(faces.first()),
                                           view.isEmpty() ? QSizeF(image.size()) : view, frame->seconds);
            breaks += step == VextilFaceTrack::Step::Broken;
            if (faces.isEmpty() || step != VextilFaceTrack::Step::Continued)
                continue;
            const VextilTrackedFace &now = track.current();
            const double elapsed = now.seconds - track.history()[track.history().size() - 2].seconds;
            fastest = std::max(fastest, (now.shift - VextilFaceTrack::kJitter) / elapsed);
            resize = std::max(resize, now.resize);
            if (now.shift <= VextilFaceTrack::kJitter && std::isfinite(now.sceneChange))
                scene = std::max(scene, now.sceneChange);
            const float score = now.feature.smileScore.value_or(0);
            if (rest.size() < 45) {  // the first 3 s of the face: at rest
                speed = std::max(speed, track.speed());
                rest.push_back(score);
                continue;
            }
            std::nth_element(rest.begin(), rest.begin() + std::ptrdiff_t(rest.size() / 2), rest.end());
            const float resting = rest[rest.size() / 2];
            if (onset < 0 && score >= resting + VextilSmileJudge::kStrongRise)
                onset = now.seconds;
            if (onset >= 0 && now.seconds - onset <= VextilSmileJudge::kGrowthSeconds) {
                const auto growth = VextilSmileJudge::growthSince(track, [resting](const VextilTrackedFace &f) {
                    return f.feature.smileScore && *f.feature.smileScore <= resting + VextilSmileJudge::kRestBand;
                });
                if (growth.whole >= VextilSmileJudge::kSmileChange)
                    share = std::min(share, growth.largestStep / growth.whole);
                change = std::max(change, growth.whole);
            }
        }
        std::printf("track    %-30s fastest %4.2f fw/s resize %4.2f scene %5.1f speed at rest %4.2f fw/s | smile at %5.2f s, "
                    "largest step %4.2f of its change (%4.1f grey) | %d breaks\n",
                    qPrintable(QFileInfo(clip).fileName()), fastest, resize, scene, speed, onset, share < 99 ? share : -1.0,
                    change, breaks);
    }
}

// The learned detector's smile log-odds over each clip, in still mode: the median of the
// neutral face's frames and of the smile's, and the smile's lowest, which the capture's rise
// rules are set against.
void learnedClipScores(const QStringList &paths)
{
    VextilLearnedFaceDetector detector;
    for (const QString &clip : paths) {
        VextilVideoFileReader reader;
        if (!reader.open(clip))
            continue;
        std::vector<float> neutral, smile;
        while (auto frame = reader.readFrame()) {
            const QList<float> scores = detector.smileScores(frame->image);
            if (scores.isEmpty() || frame->seconds < 2.0)
                continue;
            (frame->seconds < kSmileOnsetSeconds ? neutral : smile).push_back(scores.first());
        }
        const auto median = [](std::vector<float> v) {
            if (v.empty())
                return 0.0f;
            std::nth_element(v.begin(), v.begin() + std::ptrdiff_t(v.size() / 2), v.end());
            return v[v.size() / 2];
        };
        std::printf(
            "learned  %-24s smile log-odds: face before 7 s median %6.2f max %6.2f | after median %6.2f min %6.2f\n",
            qPrintable(QFileInfo(clip).fileName()), median(neutral),
            neutral.empty() ? 0.0f : *std::max_element(neutral.begin(), neutral.end()), median(smile),
            smile.empty() ? 0.0f : *std::min_element(smile.begin(), smile.end()));
    }
}

}  // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    cv::setNumThreads(1);
    const QList<QImage> frames = clipFrames();
    std::printf("VextilToolkit capture benchmark (one thread, portrait 720x1280)\n");
    if (!app.arguments().contains(QStringLiteral("--clips-only"))) {
        conversion();
        cameraFormats(frames.value(frames.size() / 2));
    }
    // The camera path alone, for quick comparisons of its conversions.
    if (app.arguments().contains(QStringLiteral("--formats-only")))
        return 0;
    const std::pair<const char *, Factory> detectors[] = {
        {"cascade", [] { return std::make_shared<VextilCascadeFaceDetector>(); }},
        {"learned", [] { return std::make_shared<VextilLearnedFaceDetector>(); }},
    };
    struct Summary {
        double frameMs = 0;
        SmileScore smiles;
        int clipsAtLimit = 0;
        int stillsRefused = 0;
        int earlyClean = 0;
        int swapsRefused = 0;
        int guidedDone = 0;
    };
    std::map<std::string, Summary> summary;
    // The capture over the clips alone, for quick looks at its rules; no summary lines.
    const bool clipsOnly = app.arguments().contains(QStringLiteral("--clips-only"));
    if (!clipsOnly) {
        for (const auto &[name, make] : detectors)
            summary[name].frameMs = perFrame(name, make, frames);
        learnedParts(frames);
        for (const auto &[name, make] : detectors)
            summary[name].smiles = photos(name, make);
        learnedCurve();
    }
    const QStringList paths = clipList(VEXTIL_SMILE_CLIPS);
    for (const auto &[name, make] : detectors)
        summary[name].clipsAtLimit = clips(name, make, paths);
    const QStringList stillPaths = clipList(VEXTIL_STILL_CLIPS), earlyPaths = clipList(VEXTIL_EARLY_SMILE_CLIPS);
    learnedClipScores(paths + stillPaths);
    const QStringList swapPaths = clipList(VEXTIL_SWAP_CLIPS), guidedPaths = clipList(VEXTIL_GUIDED_CLIPS);
    trackFigures(paths + earlyPaths + swapPaths);
    for (const QString &clip : guidedPaths)
        trackFigures({clip}, guidedClip(clip).view);
    for (const auto &[name, make] : detectors) {
        summary[name].stillsRefused = stills(name, make, stillPaths);
        summary[name].earlyClean = earlySmiles(name, make, earlyPaths);
        summary[name].swapsRefused = swaps(name, make, swapPaths);
        summary[name].guidedDone = guided(name, make, guidedPaths);
    }
    QStringList given = app.arguments().mid(1);
    given.removeAll(QStringLiteral("--clips-only"));
    if (!given.isEmpty())
        trackFigures(given);
    for (const auto &[name, make] : detectors)
        if (!given.isEmpty())
            std::printf("%s clips given completed at the pacing limit %d/%lld\n", name, clips(name, make, given),
                        static_cast<long long>(given.size()));
    // One line per detector, in a fixed form that scripts compare between runs.
    for (const auto &[name, make] : detectors) {
        if (clipsOnly)
            break;
        const Summary &s = summary[name];
        std::printf("detector %s frame_ms %.2f smile_recall %.2f smile_precision %.2f clips_completed %d/%lld"
                    " stills_refused %d/%lld early_smile_clean %d/%lld swaps_refused %d/%lld guided %d/%lld\n",
                    name, s.frameMs, s.smiles.recall, s.smiles.precision, s.clipsAtLimit,
                    static_cast<long long>(paths.size()), s.stillsRefused, static_cast<long long>(stillPaths.size()),
                    s.earlyClean, static_cast<long long>(earlyPaths.size()), s.swapsRefused,
                    static_cast<long long>(swapPaths.size()), s.guidedDone, static_cast<long long>(guidedPaths.size()));
    }
    return 0;
}
