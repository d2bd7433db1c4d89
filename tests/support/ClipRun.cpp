#include "ClipRun.h"

#include <VextilToolkit/VextilCameraFrame.h>
#include <VextilToolkit/VextilFaceCameraModel.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilVideoFileReader.h>

#include "camera/VextilUprightFrame.h"
#include "RecordingDelegate.h"

#include <QCoreApplication>

namespace {

// The longer side of the copy the camera screen analyses on a phone.
constexpr int kAnalysedSide = 720;

}  // namespace

double ClipRunResult::firstShown(const QString &text, double from) const
{
    for (const auto &[seconds, shown] : instructions)
        if (seconds >= from && shown == text)
            return seconds;
    return -1;
}

ClipRunResult runClip(const QString &path, std::shared_ptr<VextilFaceDetector> detector, QSizeF view)
{
    ClipRunResult result;
    VextilVideoFileReader reader;
    result.opened = reader.open(path);
    if (!result.opened)
        return result;

    VextilTimePoint now{};
    VextilFaceCameraModel model(std::move(detector), [&now] { return now; });
    RecordingDelegate delegate;
    model.setDelegate(&delegate);
    VextilRepository::sharedInstance()->resetFaceImages();
    model.resetState();
    QCoreApplication::processEvents();
    const bool wholeFrames = view.isEmpty();
    model.setViewSize(wholeFrames ? QSizeF(reader.frameSize()) : view);

    auto previous = model.currentState();
    qsizetype neutralHeld = 0, textsSeen = 0;
    while (auto frame = reader.readFrame()) {
        now = VextilTimePoint(std::chrono::duration_cast<VextilTimePoint::duration>(
            std::chrono::duration<double>(frame->seconds)));
        const VextilCameraFrame cameraFrame(frame->image);
        if (wholeFrames)
            model.processFace(frame->image);
        else
            model.processFace(VextilUprightFrame::scaledImage(cameraFrame, view, kAnalysedSide),
                              [&] { return VextilUprightFrame::image(cameraFrame, view); });
        QCoreApplication::processEvents();
        ++result.frames;
        const QStringList texts = delegate.texts();
        for (; textsSeen < texts.size(); ++textsSeen)
            result.instructions.append({frame->seconds, texts[textsSeen]});
        const auto state = model.currentState();
        const qsizetype held = model.facesArray()->size();
        if (held > neutralHeld)
            result.neutralTakenSeconds.append(frame->seconds);
        neutralHeld = held;
        if (result.firstNeutralSeconds < 0 && !model.facesArray()->isEmpty())
            result.firstNeutralSeconds = frame->seconds;
        if (result.firstNeutralSeconds >= 0 && previous != state && state == VextilFaceCaptureStateLookingForFace)
            ++result.fallbacks;
        previous = state;
        if (delegate.count(QStringLiteral("finished")) > 0) {
            result.completed = true;
            result.completionSeconds = frame->seconds;
            break;
        }
    }
    const auto *store = VextilRepository::sharedInstance();
    result.storedNeutral = store->getFaceImages() ? int(store->getFaceImages()->size()) : 0;
    result.storedSmiling = store->getFaceSmileImagess() ? int(store->getFaceSmileImagess()->size()) : 0;
    return result;
}
