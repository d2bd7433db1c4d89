#pragma once

#include <VextilToolkit/VextilFaceFeature.h>

#include <deque>

/// Decides for the face capture model whether a near face smiles, given where the capture
/// stands. While neutral images are collected, a graded smile counts only when it also rises
/// clearly above the user's own resting face, the median score of their recent neutral frames:
/// a face that a detector reads as smiling at rest (a closed-lip smirk, a talking mouth) would
/// otherwise never give a neutral image. The first frame of a face sets that rest. Once the
/// smile is asked for, and for a face without a graded score, the detector's own verdict holds.
/// Not thread-safe.
class VextilSmileJudge {
public:
    /// How far above the resting face a smile must rise while neutral images are collected, in
    /// log-odds: odds of a smile about 55 times the resting face's.
    static constexpr float kRiseOverRest = 4.0f;
    /// How many recent neutral frames make the resting face (about a second of camera frames).
    static constexpr int kRestFrames = 15;

    /// Whether `face` counts as smiling; `collectingNeutral` while the capture has not yet
    /// asked for the smile. Frames judged neutral then join the resting face.
    bool isSmiling(const VextilFaceFeature &face, bool collectingNeutral);
    /// Forgets the resting face, when the face is lost or the capture starts over.
    void forget() { m_rest.clear(); }

private:
    float restingScore() const;
    std::deque<float> m_rest;
};
