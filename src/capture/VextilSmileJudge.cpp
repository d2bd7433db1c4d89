#include "capture/VextilSmileJudge.h"

#include <algorithm>
#include <vector>

namespace {

void keepLast(std::deque<float> &scores, float score, int count)
{
    scores.push_back(score);
    if (scores.size() > size_t(count))
        scores.pop_front();
}

}  // namespace

bool VextilSmileJudge::isSmiling(const VextilFaceFeature &face, bool collectingNeutral)
{
    if (!face.smileScore)
        return face.hasSmile;
    const float score = *face.smileScore;
    keepLast(m_recent, score, kRecentFrames);
    if (!collectingNeutral)
        return isPromptedSmile(face, score);
    m_held.clear();
    const bool smiling = isClearSmile(score);
    if (!smiling)
        keepLast(m_rest, score, kMaxFrames);
    return smiling;
}

void VextilSmileJudge::forget()
{
    m_rest.clear();
    m_recent.clear();
    m_held.clear();
}

bool VextilSmileJudge::isClearSmile(float score) const
{
    return score >= kSuddenSmile || median(m_recent) >= kClearSmile
           || (!m_rest.empty() && score >= median(m_rest) + kRiseOverRest);
}

bool VextilSmileJudge::isPromptedSmile(const VextilFaceFeature &face, float score)
{
    if (m_rest.empty())
        return false;  // nothing to rise above: the neutral frames were lost with the face
    const float rest = median(m_rest);
    const bool rises = score - rest >= (face.hasSmile ? kPromptedRise : kStrongRise);
    if (m_held.empty()) {
        if (rises)
            m_held.push_back(score);
        return rises;
    }
    keepLast(m_held, score, kMaxFrames);
    return rises && median(m_held) - rest >= kHeldRise;
}

float VextilSmileJudge::median(const std::deque<float> &scores)
{
    std::vector<float> sorted(scores.begin(), scores.end());
    const auto middle = sorted.begin() + std::ptrdiff_t(sorted.size() / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    return *middle;
}
