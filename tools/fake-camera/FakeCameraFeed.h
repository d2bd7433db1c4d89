#pragma once

#include <opencv2/core.hpp>
#include <opencv2/videoio.hpp>

#include <string>

// The pictures the fake camera films: a video played in a loop, or one still image, each frame
// scaled to cover the requested size and cropped in the middle as a camera's sensor would.
class FakeCameraFeed {
public:
    bool open(const std::string &path);
    cv::Mat next(cv::Size size);  // BGR; empty only when the source cannot be read at all

private:
    cv::VideoCapture m_video;
    cv::Mat m_still;
};
