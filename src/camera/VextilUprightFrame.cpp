#include "camera/VextilUprightFrame.h"

#include <QTransform>

#include <algorithm>
#include <cmath>
#include <limits>

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
    QImage picture = image(frame, viewSize);
    // In place where the picture is the only copy: its buffer shrinks, nothing is copied.
    picture.convertTo(QImage::Format_RGB888);
    return picture;
}
