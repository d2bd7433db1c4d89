// The capture spine end to end without a screen: a video file stands in for the front camera,
// each frame goes through the camera frame conversion into the face capture model, and the
// images the model hands to the capture store are saved as JPEG files.
//
//   vextil_capture_spine [--clip FILE] [--out DIR]

#include <VextilToolkit/VextilFaceCameraModel.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilVideoFileReader.h>

#include "SpineReporter.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>

#include <cstdio>

namespace {

// Saves one stored array and prints where each image went.
void saveImages(const VextilRepository::ImageArray &images, const QString &dir, const QString &kind)
{
    if (!images)
        return;
    for (qsizetype i = 0; i < images->size(); ++i) {
        const QString path = QDir(dir).filePath(QStringLiteral("%1-%2.jpg").arg(kind).arg(i + 1));
        const bool saved = images->at(i).save(path, "JPEG", 90);
        std::printf("  %-8s %d: %dx%d  %s%s\n", qPrintable(kind), int(i + 1), images->at(i).width(),
                    images->at(i).height(), qPrintable(path), saved ? "" : "  (could not be written)");
    }
}

}  // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser options;
    options.setApplicationDescription(QStringLiteral("Runs the face capture model over a selfie clip."));
    options.addHelpOption();
    options.addOption({QStringLiteral("clip"), QStringLiteral("Video file standing in for the camera."),
                       QStringLiteral("file"), QStringLiteral(VEXTIL_SELFIE_CLIP)});
    options.addOption({QStringLiteral("out"), QStringLiteral("Folder for the stored images."), QStringLiteral("dir"),
                       QStringLiteral("capture-spine-output")});
    options.process(app);

    VextilVideoFileReader camera;
    if (!camera.open(options.value(QStringLiteral("clip")))) {
        std::fprintf(stderr, "error: %s\n", qPrintable(camera.errorString()));
        return 1;
    }
    std::printf("camera stand-in: %s (%dx%d, %.0f fps, %d frames)\n", qPrintable(options.value(QStringLiteral("clip"))),
                camera.frameSize().width(), camera.frameSize().height(), camera.framesPerSecond(), camera.frameCount());

    // Time is the clip's own, so the one-second pacing follows the video, not the machine.
    VextilTimePoint clipTime{};
    VextilFaceCameraModel model(VextilFaceDetector::createDefault(), [&clipTime] { return clipTime; });
    SpineReporter reporter;
    model.setDelegate(&reporter);
    model.resetState();
    QCoreApplication::processEvents();
    model.setViewSize(QSizeF(camera.frameSize()));

    qsizetype neutralSeen = 0, smilingSeen = 0;
    const auto sizeOf = [](const VextilFaceCameraModel::ImageArray &a) { return a ? a->size() : 0; };
    while (!reporter.isFinished()) {
        const auto frame = camera.readFrame();
        if (!frame)
            break;
        clipTime = VextilTimePoint(std::chrono::duration_cast<VextilTimePoint::duration>(
            std::chrono::duration<double>(frame->seconds)));
        reporter.setClipSeconds(frame->seconds);
        model.processFace(frame->image);
        // The model tells the screen what to show, not what it kept: watch its arrays too.
        const qsizetype neutral = sizeOf(model.facesArray()), smiling = sizeOf(model.facesSmileArray());
        if (neutral != neutralSeen || smiling != smilingSeen)
            std::printf("[%5.2f s] frame %d: holding %lld neutral and %lld smiling images\n", frame->seconds,
                        frame->index, qlonglong(neutral), qlonglong(smiling));
        neutralSeen = neutral;
        smilingSeen = smiling;
        QCoreApplication::processEvents();  // completion runs on the GUI thread's event loop
    }

    if (!reporter.isFinished()) {
        std::printf("the clip ended before the capture completed\n");
        return 1;
    }
    const QString out = options.value(QStringLiteral("out"));
    QDir().mkpath(out);
    std::printf("stored in the capture store:\n");
    const VextilRepository *store = VextilRepository::sharedInstance();
    saveImages(store->getFaceImages(), out, QStringLiteral("neutral"));
    saveImages(store->getFaceSmileImagess(), out, QStringLiteral("smiling"));
    return 0;
}
