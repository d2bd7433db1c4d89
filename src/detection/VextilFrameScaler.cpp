#include "detection/VextilFrameScaler.h"

#include <opencv2/imgproc.hpp>

void VextilFrameScaler::scale(const cv::Mat &source, cv::Size size, cv::Mat &target)
{
    if (source.cols <= 2 * size.width || source.rows <= 2 * size.height) {
        cv::resize(source, target, size, 0, 0, m_gentle);
        return;
    }
    cv::resize(source, m_halfway, size * 2, 0, 0, cv::INTER_LINEAR);
    cv::resize(m_halfway, target, size, 0, 0, cv::INTER_AREA);
}
