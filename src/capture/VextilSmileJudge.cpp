#include "capture/VextilSmileJudge.h"

#include "capture/VextilFaceTrack.h"

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

bool VextilSmileJudge::isSmiling(const VextilFaceTrack &track, bool collectingNeutral)
{
    if (!track.isFollowing())
        return false;
    if (m_trackId != track.id()) {
        forget();
        m_trackId = track.id();
    }
    const VextilFaceFeature &face = track.current().feature;
    if (collectingNeutral) {
        m_held.clear();
        m_riseStart.reset();
        m_grown = false;
    }
    if (!face.smileScore) {
        if (collectingNeutral)
            return face.hasSmile;
        if (!face.hasSmile) {
            m_riseStart.reset();  // at rest: the next smile must grow again
            m_grown = false;
            return false;
        }
        return hasGrown(track, [](const VextilTrackedFace &frame) { return !frame.feature.hasSmile; }, true);
    }
    const float score = *face.smileScore;
    if (!collectingNeutral)
        return isPromptedSmile(track, score);
    const bool smiling = isClearSmile(score, track);
    if (!smiling)
        keepLast(m_rest, score, kMaxFrames);
    return smiling;
}

void VextilSmileJudge::forget()
{
    m_rest.clear();
    m_held.clear();
    m_riseStart.reset();
    m_grown = false;
}

bool VextilSmileJudge::isClearSmile(float score, const VextilFaceTrack &track) const
{
    std::deque<float> recent;
    const auto &history = track.history();
    for (auto frame = history.rbegin(); frame != history.rend() && recent.size() < size_t(kRecentFrames); ++frame)
        if (frame->feature.smileScore)
            recent.push_front(*frame->feature.smileScore);
    return score >= kSuddenSmile || median(recent) >= kClearSmile
           || (!m_rest.empty() && score >= median(m_rest) + kRiseOverRest);
}

bool VextilSmileJudge::isPromptedSmile(const VextilFaceTrack &track, float score)
{
    if (m_rest.empty())
        return false;  // nothing to rise above: the neutral frames were lost with the face
    const float rest = median(m_rest);
    const bool rises = score - rest >= (track.current().feature.hasSmile ? kPromptedRise : kStrongRise);
    const AtRest atRest = [rest](const VextilTrackedFace &frame) {
        return frame.feature.smileScore && *frame.feature.smileScore <= rest + kRestBand;
    };
    if (atRest(track.current())) {
        m_riseStart.reset();  // back at rest: the next smile must grow again
        m_grown = false;
        return false;
    }
    if (!hasGrown(track, atRest, rises) || !rises)
        return false;
    if (m_held.empty()) {
        m_held.push_back(score);
        return true;
    }
    keepLast(m_held, score, kMaxFrames);
    return median(m_held) - rest >= kHeldRise;
}

bool VextilSmileJudge::hasGrown(const VextilFaceTrack &track, const AtRest &atRest, bool rises)
{
    // Watched on every frame off rest, for the look changes before the reading rises far enough;
    // timed from the first frame that does, for noise may lift a reading off rest long before.
    const double now = track.current().seconds;
    if (rises && !m_riseStart)
        m_riseStart = now;
    if (m_grown || (m_riseStart && now - *m_riseStart > kGrowthSeconds))
        return m_grown;  // once seen, or too late: it came at once, and does not count
    m_grown = growthSince(track, atRest).isGrown();
    return m_grown;
}

VextilSmileJudge::Growth VextilSmileJudge::growthSince(const VextilFaceTrack &track, const AtRest &atRest)
{
    const auto &history = track.history();
    if (history.empty())
        return {};
    const auto lastAtRest = std::find_if(history.rbegin(), history.rend(), atRest);
    const auto atRestIndex = std::distance(lastAtRest, history.rend()) - 1;  // -1: none in the history
    const size_t from = size_t(std::max<std::ptrdiff_t>(0, atRestIndex - 1));
    // The steps add up to the whole change of the picture, the detector's box left out.
    Growth growth;
    VextilFaceAppearance whole;
    for (size_t i = from + 1; i < history.size(); ++i) {
        growth.largestStep = std::max(growth.largestStep, history[i].lookChange.size());
        whole += history[i].lookChange;
    }
    growth.whole = whole.size();
    return growth;
}

float VextilSmileJudge::median(const std::deque<float> &scores)
{
    if (scores.empty())
        return 0;
    std::vector<float> sorted(scores.begin(), scores.end());
    const auto middle = sorted.begin() + std::ptrdiff_t(sorted.size() / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    return *middle;
}
