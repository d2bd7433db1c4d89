#include "FakeCameraFeed.h"

#include <opencv2/imgcodecs.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

bool FakeCameraFeed::open(const std::string &path)
{
    m_still = cv::imread(path, cv::IMREAD_COLOR);
    if (!m_still.empty())
        return true;
    return m_video.open(path) && m_video.isOpened();
}

cv::Mat FakeCameraFeed::next(cv::Size size)
{
    cv::Mat picture = m_still;
    if (picture.empty() && m_video.isOpened() && !m_video.read(picture)) {
        m_video.set(cv::CAP_PROP_POS_FRAMES, 0);  // loop
        m_video.read(picture);
    }
    if (picture.empty())
        return {};
    const double scale = std::max(double(size.width) / picture.cols, double(size.height) / picture.rows);
    const cv::Size covering(std::max(size.width, int(std::lround(picture.cols * scale))),
                            std::max(size.height, int(std::lround(picture.rows * scale))));
    cv::Mat scaled;
    cv::resize(picture, scaled, covering, 0, 0, scale < 1 ? cv::INTER_AREA : cv::INTER_LINEAR);
    const cv::Rect middle((scaled.cols - size.width) / 2, (scaled.rows - size.height) / 2, size.width, size.height);
    return scaled(middle).clone();
}
