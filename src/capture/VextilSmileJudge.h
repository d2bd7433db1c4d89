#pragma once

#include <QtGlobal>

#include <deque>
#include <functional>
#include <optional>

class VextilFaceTrack;
struct VextilTrackedFace;

/// Decides for the face capture model whether the followed face smiles, given where the
/// capture stands: the liveness half of the capture, a neutral face and then a smile that
/// changes it, on one face followed frame by frame (VextilFaceTrack).
///
/// Before the smile is asked for, no clear smile is neutral, whatever came before: a graded face
/// whose recent frames read kClearSmile or more (their median, so that a smirk or a talking
/// mouth that flickers above it does not count), or whose frame alone reads kSuddenSmile, or
/// that rises kRiseOverRest above the user's resting face. Every frame judged neutral in this
/// capture makes that resting face: their median.
///
/// Once the smile is asked for, a graded frame smiles when it rises above the resting face: by
/// kPromptedRise when the detector also calls it smiling, by kStrongRise when it does not (a
/// smile that reads low in absolute terms, under a beard for instance). The smile must have
/// grown, as a live one does: from the face at rest to the smile, the face's look changed over
/// several frames, no single one of them bringing more than kLargestStep of the whole change;
/// a photo put in another's place brings it all in one frame. From the first smiling frame on,
/// the smile must also be held: the median of the frames since then must stay kHeldRise above
/// the resting face. A still photo, smiling or not, never rises so for long, however its
/// reading flickers. Without a resting face nothing smiles; without a grade, the detector's own
/// verdict holds, growth included. Everything is forgotten when the track changes: the next
/// face may be someone else's. Not thread-safe.
class VextilSmileJudge {
public:
    /// Log-odds from which the median of the recent frames is a clear smile.
    static constexpr float kClearSmile = 1.5f;
    /// Log-odds from which a single frame is a clear smile.
    static constexpr float kSuddenSmile = 2.5f;
    /// How far above the resting face a graded frame may not rise and still be neutral.
    static constexpr float kRiseOverRest = 4.0f;
    /// After the prompt: the rise a smile the detector sees needs over the resting face.
    static constexpr float kPromptedRise = 1.0f;
    /// After the prompt: the rise that counts as a smile even when the detector reads none.
    static constexpr float kStrongRise = 3.0f;
    /// After the first smiling frame: the rise the smile's median must keep.
    static constexpr float kHeldRise = 1.5f;
    /// A graded frame within this of the resting face is at rest.
    static constexpr float kRestBand = 1.0f;
    /// How many recent frames the clear-smile median looks at (0.6 s of camera frames).
    static constexpr int kRecentFrames = 9;
    /// How many frames the resting face and the held smile keep at most (10 s).
    static constexpr int kMaxFrames = 150;
    /// The largest share of a smile's whole change in look that one frame may bring: smiles
    /// grown over 0.3 s at 15 frames a second bring at most 0.49 (64 pairings of the labelled
    /// photos), photos swapped from one frame to the next at least 0.80.
    static constexpr double kLargestStep = 0.62;
    /// The least change in the face's look (mean grey of its cells, 0 to 255) a smile makes;
    /// the clips' smiles make 7.8 (dim light) to 19.
    static constexpr double kSmileChange = 5;
    /// How long after the smile first rises far enough its growth must have been seen (it is
    /// watched from the first frame off rest); after that, this smile does not count until the
    /// face has been at rest again.
    static constexpr double kGrowthSeconds = 0.6;

    /// Whether a frame shows the face at rest.
    using AtRest = std::function<bool(const VextilTrackedFace &)>;
    /// How a face's look changed from the frame before its last frame at rest (a detector's
    /// reading may be a frame old) to its newest frame: the whole change (its frames' changes
    /// added up), and the largest one-frame step on the way (mean grey of the cells, 0 to 255).
    struct Growth {
        double whole = 0;
        double largestStep = 0;
        /// Whether the change is a grown smile's: large enough, and no step most of it.
        bool isGrown() const { return whole >= kSmileChange && largestStep <= kLargestStep * whole; }
    };

    /// Whether the newest face of `track` counts as smiling; `collectingNeutral` while the
    /// capture has not yet asked for the smile. Frames judged neutral then join the resting face.
    bool isSmiling(const VextilFaceTrack &track, bool collectingNeutral);
    /// The growth of the face `track` follows since it was last at rest.
    static Growth growthSince(const VextilFaceTrack &track, const AtRest &atRest);

private:
    void forget();
    bool isClearSmile(float score, const VextilFaceTrack &track) const;
    bool isPromptedSmile(const VextilFaceTrack &track, float score);
    bool hasGrown(const VextilFaceTrack &track, const AtRest &atRest, bool rises);
    static float median(const std::deque<float> &scores);

    std::optional<quint64> m_trackId;   // the track whose face all this is about
    std::deque<float> m_rest;           // the neutral frames of this capture
    std::deque<float> m_held;           // the frames since the first smiling one after the prompt
    std::optional<double> m_riseStart;  // when the current smile first showed
    bool m_grown = false;               // the current smile was seen growing
};
