#include "core/VextilBackdropBlur.h"

#include <opencv2/imgproc.hpp>

QImage VextilBackdropBlur::blurred(const QImage &picture)
{
    if (picture.isNull())
        return {};
    QImage out = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    const cv::Mat pixels(out.height(), out.width(), CV_8UC4, out.bits(), size_t(out.bytesPerLine()));
    // A Gaussian whose reach (about three sigmas) is the radius, in device pixels.
    const double sigma = kRadius * picture.devicePixelRatio() / 3.0;
    cv::GaussianBlur(pixels, pixels, cv::Size(), sigma, sigma, cv::BORDER_REPLICATE);
    return out;
}
