#pragma once

#include <QVideoFrame>

#include <opencv2/core.hpp>

// A camera frame of the given YUV layout holding a BGR picture, as a webcam would deliver it
// (BT.601; full range as a decoded JPEG camera's frames are, when asked).
QVideoFrame yuvFrame(const cv::Mat &bgr, QVideoFrameFormat::PixelFormat format, bool fullRange = false);
