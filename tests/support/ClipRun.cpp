#include "ClipRun.h"

#include <VextilToolkit/VextilFaceCameraModel.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilVideoFileReader.h>

#include "RecordingDelegate.h"

#include <QCoreApplication>

ClipRunResult runClip(const QString &path, std::shared_ptr<VextilFaceDetector> detector)
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
    model.setViewSize(QSizeF(reader.frameSize()));

    auto previous = model.currentState();
    qsizetype neutralHeld = 0;
    while (auto frame = reader.readFrame()) {
        now = VextilTimePoint(std::chrono::duration_cast<VextilTimePoint::duration>(
            std::chrono::duration<double>(frame->seconds)));
        model.processFace(frame->image);
        QCoreApplication::processEvents();
        ++result.frames;
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
