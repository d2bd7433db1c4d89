#pragma once

#include <opencv2/core.hpp>

/// Scales camera images down for the face networks. Averaging every pixel of a large frame
/// costs more than a network, and a plain bilinear reduction lets sensor noise alias. More than
/// 2x down, this scales bilinearly to twice the size and then takes 2x2 means: most of the
/// anti-aliasing at a fraction of the cost. Not thread-safe: it keeps its buffer.
class VextilFrameScaler {
public:
    /// `gentle`: the OpenCV interpolation used for reductions of 2x or less, and enlargements.
    explicit VextilFrameScaler(int gentle) : m_gentle(gentle) {}

    /// Scales `source` to `size` into `target`.
    void scale(const cv::Mat &source, cv::Size size, cv::Mat &target);

private:
    int m_gentle;
    cv::Mat m_halfway;
};
