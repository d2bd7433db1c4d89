#include <VextilToolkit/VextilSampleBuffer.h>

VextilSampleBufferStatus VextilSampleBuffer::status() const
{
    if (data == nullptr || size <= 0)
        return VextilSampleBufferStatus::NoData;
    if (width <= 0 || height <= 0)
        return VextilSampleBufferStatus::InvalidSize;
    if (bytesPerRow / 4 < width)
        return VextilSampleBufferStatus::RowTooShort;
    if (bytesPerRow % 4 != 0)
        return VextilSampleBufferStatus::MisalignedRows;
    // Divide rather than multiply so that absurd sizes cannot overflow.
    if (size / bytesPerRow < height)
        return VextilSampleBufferStatus::BufferTooSmall;
    return VextilSampleBufferStatus::Ok;
}
