#pragma once

#include <QString>

class VextilFaceTrack;

/// What a user whose face is found must do before the capture can use it: come closer, move
/// back, centre the face, find more light, or hold still, judged on the face track's newest
/// frame. A face inside the limits is ready: the capture uses it, and nothing is asked of the
/// user. A face that fills the camera view's oval is well inside every limit.
class VextilCaptureGuidance {
public:
    /// What to ask, in the order it is asked: the first that applies. None: the face is ready.
    /// Unmeasured: no camera view is laid out yet, so no face can be judged and nothing is said.
    /// RelaxFace is the smile judge's (a smile before the smile is asked for), never of().
    enum class Hint {
        None,
        Unmeasured,
        MoveCloser,
        MoveBack,
        CenterFace,
        MoreLight,
        HoldStill,
        RelaxFace
    };

    /// A face must be wider than this share of the view, and narrower than the other (the
    /// oval is two thirds of the view's width).
    static constexpr double kFarthest = 0.4;
    static constexpr double kNearest = 0.83;
    /// How far the face's centre may be from the view's centre, as a share of the view's width
    /// sideways and of its height up or down: beyond it, part of the face leaves the oval (a
    /// face whose forehead reaches the oval's top sits about 0.17 high).
    static constexpr double kOffCentreSideways = 0.15;
    static constexpr double kOffCentreUpDown = 0.22;
    /// Mean grey (0 to 255) of the face below which it is too dark to judge; the darkest clip
    /// the capture completes reads about 68.
    static constexpr double kDarkest = 45;
    /// Face widths a second above which the face moves too much to be taken; a head held
    /// still, with a hand's tremor, moves about a tenth of that.
    static constexpr double kSteadiest = 0.6;

    /// What the face followed by `track` needs; None when it is ready (or no face is followed).
    static Hint of(const VextilFaceTrack &track);
    /// The instruction for a hint, translated; empty for None and Unmeasured.
    static QString text(Hint hint);
};
