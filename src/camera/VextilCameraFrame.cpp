#include <VextilToolkit/VextilCameraFrame.h>

#include <opencv2/imgproc.hpp>

#include <atomic>
#include <mutex>

struct VextilCameraFrame::Data {
    QSize size;
    std::function<QImage()> convert;
    int rotation = 0;
    bool mirrored = false;
    VextilCameraFrame::RegionConverter convertRegion;
    std::once_flag converted;
    std::atomic<bool> hasImage{false};
    QImage image;
};

namespace {
// Only quarter turns exist; anything else is read as the nearest one.
int quarterTurn(int degrees) { return (((degrees + 45) / 90) % 4 + 4) % 4 * 90; }
}  // namespace

VextilCameraFrame::VextilCameraFrame() = default;

VextilCameraFrame::VextilCameraFrame(QImage image, int rotation, bool mirrored)
    : VextilCameraFrame(
        image.size(), [image] { return image; }, rotation, mirrored)
{
}

VextilCameraFrame::VextilCameraFrame(QSize size, std::function<QImage()> convert, int rotation, bool mirrored)
    : VextilCameraFrame(size, std::move(convert), {}, rotation, mirrored)
{
}

VextilCameraFrame::VextilCameraFrame(QSize size, std::function<QImage()> convert, RegionConverter convertRegion,
                                     int rotation, bool mirrored)
{
    if (size.isEmpty())
        return;
    d = std::make_shared<Data>();
    d->size = size;
    d->convert = std::move(convert);
    d->convertRegion = std::move(convertRegion);
    d->rotation = quarterTurn(rotation);
    d->mirrored = mirrored;
}

bool VextilCameraFrame::isNull() const { return !d; }
QSize VextilCameraFrame::size() const { return d ? d->size : QSize(); }
int VextilCameraFrame::rotation() const { return d ? d->rotation : 0; }
bool VextilCameraFrame::isMirrored() const { return d && d->mirrored; }

QImage VextilCameraFrame::image() const
{
    if (!d)
        return {};
    std::call_once(d->converted, [this] {
        if (d->convert)
            d->image = d->convert();
        d->convert = nullptr;  // the source's buffer is let go at once
        if (!d->image.isNull() && d->image.format() != QImage::Format_RGB32)
            d->image = d->image.convertToFormat(QImage::Format_RGB32);
        d->hasImage = true;
    });
    return d->image;
}

QImage VextilCameraFrame::scaledRegion(QRect region, QSize size) const
{
    if (!d || region.isEmpty() || size.isEmpty())
        return {};
    if (d->convertRegion && !d->hasImage) {
        QImage scaled = d->convertRegion(region, size);
        return scaled.isNull() || scaled.format() == QImage::Format_RGB32
                   ? scaled
                   : scaled.convertToFormat(QImage::Format_RGB32);
    }
    const QImage whole = image();
    if (whole.isNull())
        return {};
    const QRect inside = region & whole.rect();
    if (inside.isEmpty())
        return {};
    if (inside.size() == size)
        return inside == whole.rect() ? whole : whole.copy(inside);
    // OpenCV scales several times faster than QImage's smooth transformation.
    QImage scaled(size, QImage::Format_RGB32);
    const cv::Mat from(whole.height(), whole.width(), CV_8UC4, const_cast<uchar *>(whole.constBits()),
                       size_t(whole.bytesPerLine()));
    cv::Mat to(scaled.height(), scaled.width(), CV_8UC4, scaled.bits(), size_t(scaled.bytesPerLine()));
    cv::resize(from(cv::Rect(inside.x(), inside.y(), inside.width(), inside.height())), to, to.size(), 0, 0,
               cv::INTER_LINEAR);
    return scaled;
}
