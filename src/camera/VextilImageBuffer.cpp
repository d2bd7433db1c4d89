#include <VextilToolkit/VextilImageBuffer.h>

#include <cstdlib>
#include <cstring>

QImage VextilImageBuffer::imageFromSampleBuffer(const VextilSampleBuffer &buffer)
{
    if (buffer.status() != VextilSampleBufferStatus::Ok)
        return {};

    // The copy decouples the image from the camera's buffer, which is recycled once the
    // frame callback returns; the image frees it when its last copy goes.
    const qsizetype planeSize = qsizetype(buffer.height) * buffer.bytesPerRow;
    auto *plane = static_cast<uchar *>(std::malloc(size_t(planeSize)));
    if (plane == nullptr)
        return {};
    std::memcpy(plane, buffer.data, size_t(planeSize));
    QImage image(plane, buffer.width, buffer.height, buffer.bytesPerRow, QImage::Format_RGB32,
                 [](void *bytes) { std::free(bytes); }, plane);
    if (image.isNull())  // Qt refused the geometry and did not take the plane
        std::free(plane);
    return image;
}
