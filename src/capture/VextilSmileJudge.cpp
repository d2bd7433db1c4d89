#include "capture/VextilSmileJudge.h"

#include <algorithm>
#include <vector>

bool VextilSmileJudge::isSmiling(const VextilFaceFeature &face, bool collectingNeutral)
{
    if (!face.smileScore || !collectingNeutral)
        return face.hasSmile;
    const float score = *face.smileScore;
    const bool smiling = face.hasSmile && !m_rest.empty() && score >= restingScore() + kRiseOverRest;
    if (!smiling) {
        m_rest.push_back(score);
        if (m_rest.size() > kRestFrames)
            m_rest.pop_front();
    }
    return smiling;
}

float VextilSmileJudge::restingScore() const
{
    std::vector<float> sorted(m_rest.begin(), m_rest.end());
    const auto middle = sorted.begin() + std::ptrdiff_t(sorted.size() / 2);
    std::nth_element(sorted.begin(), middle, sorted.end());
    return *middle;
}
