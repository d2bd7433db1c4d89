#include "camera/VextilUprightFrame.h"

#include <QTransform>

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

// Even, so that every band starts on the chroma row the whole region would start it on.
constexpr int kBandRows = 64;

// The region converted a band of rows at a time, each band narrowed to three bytes as it comes:
// the picture is never held at four bytes a pixel, which at its moment of keeping would cost a
// third more than the picture itself. Null when the source gives a band other than asked for.
QImage keptInBands(const VextilCameraFrame &frame, QRect region)
{
    QImage picture(region.size(), QImage::Format_RGB888);
    if (picture.isNull())
        return {};
    for (int top = 0; top < region.height(); top += kBandRows) {
        const QRect band(region.x(), region.y() + top, region.width(), std::min(kBandRows, region.height() - top));
        const QImage rows = frame.scaledRegion(band, band.size());
        if (rows.size() != band.size() || rows.format() != QImage::Format_RGB32)
            return {};
        const cv::Mat from(rows.height(), rows.width(), CV_8UC4, const_cast<uchar *>(rows.constBits()),
                           size_t(rows.bytesPerLine()));
        cv::Mat to(rows.height(), rows.width(), CV_8UC3, picture.scanLine(top), size_t(picture.bytesPerLine()));
        cv::cvtColor(from, to, cv::COLOR_BGRA2RGB);
    }
    return picture;
}

}  // namespace

QRect VextilUprightFrame::visibleRegion(QSize upright, QSizeF viewSize)
{
    if (viewSize.width() <= 0 || viewSize.height() <= 0 || upright.isEmpty())
        return QRect(QPoint(0, 0), upright);
    const double viewAspect = viewSize.width() / viewSize.height();
    int width = upright.width(), height = upright.height();
    if (double(width) / height > viewAspect)
        width = std::max(1, int(std::lround(height * viewAspect)));  // wider than the view: sides go
    else
        height = std::max(1, int(std::lround(width / viewAspect)));  // taller: top and bottom go
    return QRect((upright.width() - width) / 2, (upright.height() - height) / 2, width, height);
}

QRect VextilUprightFrame::storedRegion(QRect r, QSize stored, int rotation)
{
    // Each case inverts a clockwise quarter turn of the stored picture.
    switch (rotation) {
    case 90: return QRect(r.y(), stored.height() - r.x() - r.width(), r.height(), r.width());
    case 180:
        return QRect(stored.width() - r.x() - r.width(), stored.height() - r.y() - r.height(), r.width(), r.height());
    case 270: return QRect(stored.width() - r.y() - r.height(), r.x(), r.height(), r.width());
    default: return r;
    }
}

QImage VextilUprightFrame::scaledImage(const VextilCameraFrame &frame, QSizeF viewSize, int longestSide)
{
    if (frame.isNull())
        return {};
    const int rotation = frame.rotation();
    const QSize stored = frame.size(), upright = rotation % 180 ? stored.transposed() : stored;
    const QRect region = storedRegion(visibleRegion(upright, viewSize), stored, rotation);
    const double scale = std::min(1.0, double(longestSide) / std::max(region.width(), region.height()));
    const QSize size(std::max(1, int(std::lround(region.width() * scale))),
                     std::max(1, int(std::lround(region.height() * scale))));
    const QImage scaled = frame.scaledRegion(region, size);
    return rotation == 0 || scaled.isNull() ? scaled : scaled.transformed(QTransform().rotate(rotation));
}

QImage VextilUprightFrame::image(const VextilCameraFrame &frame, QSizeF viewSize)
{
    return scaledImage(frame, viewSize, std::numeric_limits<int>::max());
}

QImage VextilUprightFrame::kept(const VextilCameraFrame &frame, QSizeF viewSize)
{
    if (!frame.isNull() && frame.rotation() == 0) {
        if (QImage picture = keptInBands(frame, visibleRegion(frame.size(), viewSize)); !picture.isNull())
            return picture;
    }
    QImage picture = image(frame, viewSize);
    // In place where the picture is the only copy: its buffer shrinks, nothing is copied.
    picture.convertTo(QImage::Format_RGB888);
    return picture;
}
