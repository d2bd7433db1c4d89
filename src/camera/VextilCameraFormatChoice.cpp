#include "camera/VextilCameraFormatChoice.h"

#include <tuple>

namespace {

constexpr qint64 kSmallest = 1280 * 720;
constexpr qint64 kLargest = 1920 * 1080;

// How far a frame's pixel count lies outside the preferred range; 0 inside it.
qint64 distance(QSize size)
{
    const qint64 pixels = qint64(size.width()) * size.height();
    return pixels < kSmallest ? kSmallest - pixels : pixels > kLargest ? pixels - kLargest : 0;
}

// Smaller is better.
auto rank(const VextilCameraFormatChoice::Format &f)
{
    const bool smooth = f.maxFrameRate >= VextilCameraFormatChoice::kMinFrameRate;
    return std::tuple(!smooth, smooth ? 0.0f : -f.maxFrameRate, distance(f.resolution),
                      -qint64(f.resolution.width()) * f.resolution.height(), -f.maxFrameRate, !f.direct);
}

}  // namespace

int VextilCameraFormatChoice::choose(const QList<Format> &formats)
{
    int best = -1;
    for (int i = 0; i < formats.size(); ++i)
        if (!formats[i].resolution.isEmpty() && (best < 0 || rank(formats[i]) < rank(formats[best])))
            best = i;
    return best;
}
