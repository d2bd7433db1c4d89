// Camera frame conversion with arbitrary geometry and strides over a buffer of the given size,
// then turned upright and cropped for an arbitrary view.
#include <VextilToolkit/VextilImageBuffer.h>

#include "camera/VextilUprightFrame.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace {
template <typename T>
T take(const uint8_t *&data, size_t &size)
{
    T value{};
    const size_t n = size < sizeof(T) ? size : sizeof(T);
    std::memcpy(&value, data, n);
    data += n;
    size -= n;
    return value;
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const int width = take<int16_t>(data, size), height = take<int16_t>(data, size);
    const qsizetype stride = take<int16_t>(data, size);
    const int rotation = take<uint8_t>(data, size) * 90;
    const double viewWidth = take<uint8_t>(data, size), viewHeight = take<uint8_t>(data, size);
    // The plane is whatever bytes are left: the stated geometry may not fit them.
    const VextilSampleBuffer buffer{data, qsizetype(size), width, height, stride};
    const QImage image = VextilImageBuffer::imageFromSampleBuffer(buffer);
    if (!image.isNull()) {
        const QImage upright = VextilUprightFrame::image(VextilCameraFrame(image, rotation), QSizeF(viewWidth, viewHeight));
        if (!upright.isNull())
            (void)upright.pixel(upright.width() - 1, upright.height() - 1);
    }
    return 0;
}
