#pragma once

#include <opencv2/core.hpp>

#include <string>

// One person's face with another's smile: the smiling photo's face is moved onto the neutral
// photo's face by their key points (eyes, nose, mouth) and blended in through a soft oval, so
// that a clip can let the neutral face's own smile grow by fading that oval in. The room, hair
// and head stay the neutral photo's, as they do for a live user who smiles.
class SmileComposite {
public:
    // Both photos BGR; `error` says why the composite could not be made (a photo without a face).
    static cv::Mat make(const cv::Mat &neutral, const cv::Mat &smile, std::string &error);
};
