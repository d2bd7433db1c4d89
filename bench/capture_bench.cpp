// Capture spine figures: frame conversion, detection and whole per-frame analysis on portrait
// 720x1280 frames on one thread; smile precision and recall on the labelled photos; and the
// capture over the sample clip in simulated time.

#include "ClipRun.h"
#include "LabelledPhotos.h"

#include <VextilToolkit/VextilCascadeFaceDetector.h>
#include <VextilToolkit/VextilFaceCameraModel.h>
#include <VextilToolkit/VextilImageBuffer.h>
#include <VextilToolkit/VextilVideoFileReader.h>

#include <QCoreApplication>
#include <QElapsedTimer>

#include <opencv2/core.hpp>

#include <algorithm>
#include <cstdio>
#include <numeric>
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

void perFrame(const QList<QImage> &frames)
{
    auto detector = std::make_shared<VextilCascadeFaceDetector>();
    std::vector<double> detect, whole;
    for (const QImage &frame : frames)
        detect.push_back(millis([&] { detector->featuresInImage(frame); }));

    VextilFaceCameraModel model(detector);
    model.resetState();
    QCoreApplication::processEvents();
    model.setViewSize(frames.isEmpty() ? QSizeF() : QSizeF(frames.first().size()));
    for (const QImage &frame : frames) {
        const VextilSampleBuffer buffer{frame.constBits(), frame.sizeInBytes(), frame.width(), frame.height(),
                                        frame.bytesPerLine()};
        whole.push_back(millis([&] { model.processFace(VextilImageBuffer::imageFromSampleBuffer(buffer)); }));
    }
    const Timing d = summarise(detect), w = summarise(whole);
    std::printf("detection (clip, %3lld fr):  mean %6.3f ms   p95 %6.3f ms\n", qlonglong(frames.size()), d.mean, d.p95);
    std::printf("whole per-frame analysis:   mean %6.3f ms   p95 %6.3f ms   (target <= 10 ms mean)\n", w.mean, w.p95);
}

struct SmileCounts {
    int truePositive = 0, falsePositive = 0, smiles = 0, neutral = 0, slightFlagged = 0, slight = 0;
};

SmileCounts countSmiles(const QList<std::pair<QString, VextilCascadeFaceDetector::FaceAnalysis>> &faces,
                        const VextilCascadeFaceDetector::Settings &settings)
{
    SmileCounts c;
    for (const auto &[label, face] : faces) {
        const bool flagged = VextilCascadeFaceDetector::isSmile(face, settings);
        if (label == QLatin1String("yes")) {
            ++c.smiles;
            c.truePositive += flagged;
        } else if (label == QLatin1String("no")) {
            ++c.neutral;
            c.falsePositive += flagged;
        } else {
            ++c.slight;
            c.slightFlagged += flagged;
        }
    }
    return c;
}

void photos()
{
    VextilCascadeFaceDetector detector;
    QList<std::pair<QString, VextilCascadeFaceDetector::FaceAnalysis>> faces;
    int matched = 0, total = 0;
    for (const LabelledPhoto &photo : loadLabelledPhotos()) {
        const QImage image = loadPhoto(photo);
        const auto found = detector.analyse(image);
        ++total;
        if (found.isEmpty())
            continue;
        matched += intersectionOverUnion(topLeftBounds(found.first().bounds, image.height()), photo.face) >= 0.5;
        faces.append({photo.smile, found.first()});
    }
    std::printf("faces found on photos:      %d of %d at IoU >= 0.5\n", matched, total);

    const auto &defaults = detector.settings();
    const SmileCounts c = countSmiles(faces, defaults);
    const int flagged = c.truePositive + c.falsePositive;
    std::printf("smile at default (score >= %d, teeth >= %.2f): precision %d/%d, recall %d/%d; slight flagged %d/%d;"
                " neutral flagged %d/%d\n",
                defaults.smileMinScore, defaults.smileMinTeeth, c.truePositive, flagged, c.truePositive, c.smiles,
                c.slightFlagged, c.slight, c.falsePositive, c.neutral);

    std::printf("smile curve (recall on 'yes' / false smiles on 'no', slight apart):\n  score\\teeth");
    const double teeth[] = {0.0, 0.05, 0.10, 0.15};
    for (double t : teeth)
        std::printf("     %4.2f    ", t);
    std::printf("\n");
    for (int score : {0, 1, 15, 30, 45, 60, 90}) {
        std::printf("  %5d      ", score);
        for (double t : teeth) {
            auto settings = defaults;
            settings.smileMinScore = score;
            settings.smileMinTeeth = t;
            const SmileCounts s = countSmiles(faces, settings);
            std::printf("  %d/%d %d/%d s%d  ", s.truePositive, s.smiles, s.falsePositive, s.neutral, s.slightFlagged);
        }
        std::printf("\n");
    }
}

void clip()
{
    const ClipRunResult r = runClip(QStringLiteral(VEXTIL_SELFIE_CLIP), std::make_shared<VextilCascadeFaceDetector>());
    if (!r.opened) {
        std::printf("sample clip: cannot read %s\n", VEXTIL_SELFIE_CLIP);
        return;
    }
    std::printf("sample clip (simulated):    %s after %d frames; %.2f s from first neutral image to completion;"
                " %d fall-backs; store %d neutral + %d smiling\n",
                r.completed ? "completed" : "NOT completed", r.frames, r.completionSeconds - r.firstNeutralSeconds,
                r.fallbacks, r.storedNeutral, r.storedSmiling);
}

}  // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    cv::setNumThreads(1);
    const QList<QImage> frames = clipFrames();
    std::printf("VextilToolkit capture benchmark (one thread, portrait 720x1280)\n");
    conversion();
    perFrame(frames);
    photos();
    clip();
    return 0;
}
