#include <VextilToolkit/VextilCameraFrame.h>

#include <mutex>

struct VextilCameraFrame::Data {
    QSize size;
    std::function<QImage()> convert;
    int rotation = 0;
    bool mirrored = false;
    std::once_flag converted;
    QImage image;
};

namespace {
// Only quarter turns exist; anything else is read as the nearest one.
int quarterTurn(int degrees) { return (((degrees + 45) / 90) % 4 + 4) % 4 * 90; }
}  // namespace

VextilCameraFrame::VextilCameraFrame() = default;

VextilCameraFrame::VextilCameraFrame(QImage image, int rotation, bool mirrored)
    : VextilCameraFrame(image.size(), [image] { return image; }, rotation, mirrored)
{
}

VextilCameraFrame::VextilCameraFrame(QSize size, std::function<QImage()> convert, int rotation, bool mirrored)
{
    if (size.isEmpty())
        return;
    d = std::make_shared<Data>();
    d->size = size;
    d->convert = std::move(convert);
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
    });
    return d->image;
}
