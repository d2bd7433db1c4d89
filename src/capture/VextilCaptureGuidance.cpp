#include "capture/VextilCaptureGuidance.h"

#include "capture/VextilFaceTrack.h"
#include "core/VextilTexts.h"

#include <cmath>

VextilCaptureGuidance::Hint VextilCaptureGuidance::of(const VextilFaceTrack &track)
{
    if (!track.isFollowing())
        return Hint::None;
    const VextilTrackedFace &face = track.current();
    if (std::isnan(face.widthInView))
        return Hint::Unmeasured;
    if (face.widthInView <= kFarthest)
        return Hint::MoveCloser;
    if (face.widthInView >= kNearest)
        return Hint::MoveBack;
    if (std::abs(face.offsetInView.x()) > kOffCentreSideways || std::abs(face.offsetInView.y()) > kOffCentreUpDown)
        return Hint::CenterFace;
    if (face.appearance.brightness() < kDarkest)
        return Hint::MoreLight;
    if (track.speed() > kSteadiest)
        return Hint::HoldStill;
    return Hint::None;
}

QString VextilCaptureGuidance::text(Hint hint)
{
    switch (hint) {
    case Hint::MoveCloser: return VextilTexts::tr("Move closer");
    case Hint::MoveBack: return VextilTexts::tr("Move back");
    case Hint::CenterFace: return VextilTexts::tr("Center your face");
    case Hint::MoreLight: return VextilTexts::tr("Find more light");
    case Hint::HoldStill: return VextilTexts::tr("Hold still");
    case Hint::RelaxFace: return VextilTexts::tr("Relax your face");
    case Hint::None:
    case Hint::Unmeasured: break;
    }
    return {};
}
