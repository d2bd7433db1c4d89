#pragma once

#include <VextilToolkit/VextilFaceFeature.h>

#include <deque>

/// Decides for the face capture model whether a near face smiles, given where the capture
/// stands: the liveness half of the capture, a neutral face and then a smile that changes it.
///
/// Before the smile is asked for, no clear smile is neutral, whatever came before: a graded face
/// whose recent frames read kClearSmile or more (their median, so that a smirk or a talking
/// mouth that flickers above it does not count), or whose frame alone reads kSuddenSmile, or
/// that rises kRiseOverRest above the user's resting face. Every frame judged neutral in this
/// capture makes that resting face: their median.
///
/// Once the smile is asked for, a graded frame smiles when it rises above the resting face: by
/// kPromptedRise when the detector also calls it smiling, by kStrongRise when it does not (a
/// smile that reads low in absolute terms, under a beard for instance). From the first smiling
/// frame on, the smile must also be held: the median of the frames since then must stay
/// kHeldRise above the resting face. A still photo, smiling or not, never rises so for long,
/// however its reading flickers. Without a resting face nothing smiles; without a grade, the
/// detector's own verdict holds. Not thread-safe.
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
    /// How many recent frames the clear-smile median looks at (0.6 s of camera frames).
    static constexpr int kRecentFrames = 9;
    /// How many frames the resting face and the held smile keep at most (10 s).
    static constexpr int kMaxFrames = 150;

    /// Whether `face` counts as smiling; `collectingNeutral` while the capture has not yet
    /// asked for the smile. Frames judged neutral then join the resting face.
    bool isSmiling(const VextilFaceFeature &face, bool collectingNeutral);
    /// Forgets the resting face and the recent frames, when the face is lost or the capture
    /// starts over.
    void forget();

private:
    bool isClearSmile(float score) const;
    bool isPromptedSmile(const VextilFaceFeature &face, float score);
    static float median(const std::deque<float> &scores);
    std::deque<float> m_rest;    // the neutral frames of this capture
    std::deque<float> m_recent;  // the last few frames, whatever they showed
    std::deque<float> m_held;    // the frames since the first smiling one after the prompt
};
