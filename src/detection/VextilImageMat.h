#pragma once

#include <QImage>

#include <opencv2/core.hpp>

/// An image's pixels as a 32-bit BGRx OpenCV matrix, for the detectors. Camera frames
/// (Format_RGB32) are viewed in place; other formats are converted once. The matrix is valid
/// while this object lives.
class VextilImageMat {
public:
    explicit VextilImageMat(const QImage &image);

    /// The pixels, 8 bits a channel, blue, green, red and an ignored byte; empty for a null image.
    const cv::Mat &bgrx() const { return m_mat; }

private:
    QImage m_image;  // keeps the viewed pixels alive
    cv::Mat m_mat;
};
