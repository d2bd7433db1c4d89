#include "YuvFrames.h"

#include <opencv2/imgproc.hpp>

#include <cstring>

namespace {

// The picture as three planes at full size: Y, U, V (BT.601, video range unless full).
void planes(const cv::Mat &bgr, bool full, cv::Mat &y, cv::Mat &u, cv::Mat &v)
{
    cv::Mat yuv;
    cv::cvtColor(bgr, yuv, cv::COLOR_BGR2YCrCb);  // full range
    if (!full)
        yuv.convertTo(yuv, CV_8UC3, 219.0 / 255.0, 16);  // close enough for timing; chroma ends near 128
    cv::Mat channels[3];
    cv::split(yuv, channels);
    y = channels[0];
    v = channels[1];
    u = channels[2];
}

void copyRows(const cv::Mat &from, uchar *to, int stride)
{
    for (int row = 0; row < from.rows; ++row)
        std::memcpy(to + qsizetype(row) * stride, from.ptr(row), from.cols * from.elemSize());
}

}  // namespace

QVideoFrame yuvFrame(const cv::Mat &bgr, QVideoFrameFormat::PixelFormat format, bool fullRange)
{
    QVideoFrameFormat layout(QSize(bgr.cols, bgr.rows), format);
    layout.setColorRange(fullRange ? QVideoFrameFormat::ColorRange_Full : QVideoFrameFormat::ColorRange_Video);
    // As Qt labels a GStreamer camera's frames: JPEG decodes to BT.601, raw HD frames say BT.709
    // (which costs one more pass); the pixels stay BT.601, which only the timing reads.
    layout.setColorSpace(fullRange || bgr.rows < 720 ? QVideoFrameFormat::ColorSpace_BT601
                                                     : QVideoFrameFormat::ColorSpace_BT709);
    QVideoFrame frame(layout);
    if (!frame.map(QVideoFrame::WriteOnly))
        return {};
    cv::Mat y, u, v, uHalf, vHalf;
    planes(bgr, fullRange, y, u, v);
    const cv::Size half(bgr.cols / 2, bgr.rows / 2);
    cv::resize(u, uHalf, half, 0, 0, cv::INTER_AREA);
    cv::resize(v, vHalf, half, 0, 0, cv::INTER_AREA);
    switch (format) {
    case QVideoFrameFormat::Format_YUYV:
    case QVideoFrameFormat::Format_UYVY: {
        cv::Mat u2, v2, packed(bgr.rows, bgr.cols, CV_8UC2);
        cv::resize(u, u2, cv::Size(bgr.cols / 2, bgr.rows), 0, 0, cv::INTER_AREA);
        cv::resize(v, v2, cv::Size(bgr.cols / 2, bgr.rows), 0, 0, cv::INTER_AREA);
        const bool yFirst = format == QVideoFrameFormat::Format_YUYV;
        for (int row = 0; row < bgr.rows; ++row)
            for (int x = 0; x < bgr.cols; ++x) {
                uchar *px = packed.ptr(row) + 2 * x;
                px[yFirst ? 0 : 1] = y.at<uchar>(row, x);
                px[yFirst ? 1 : 0] = x % 2 ? v2.at<uchar>(row, x / 2) : u2.at<uchar>(row, x / 2);
            }
        copyRows(packed, frame.bits(0), frame.bytesPerLine(0));
        break;
    }
    case QVideoFrameFormat::Format_NV12:
    case QVideoFrameFormat::Format_NV21: {
        cv::Mat chroma;
        const bool uFirst = format == QVideoFrameFormat::Format_NV12;
        cv::merge(std::vector<cv::Mat>{uFirst ? uHalf : vHalf, uFirst ? vHalf : uHalf}, chroma);
        copyRows(y, frame.bits(0), frame.bytesPerLine(0));
        copyRows(chroma, frame.bits(1), frame.bytesPerLine(1));
        break;
    }
    case QVideoFrameFormat::Format_YUV420P:
    case QVideoFrameFormat::Format_YV12: {
        const bool uFirst = format == QVideoFrameFormat::Format_YUV420P;
        copyRows(y, frame.bits(0), frame.bytesPerLine(0));
        copyRows(uFirst ? uHalf : vHalf, frame.bits(1), frame.bytesPerLine(1));
        copyRows(uFirst ? vHalf : uHalf, frame.bits(2), frame.bytesPerLine(2));
        break;
    }
    default: frame.unmap(); return {};
    }
    frame.unmap();
    return frame;
}
