#include "camera/VextilVideoFrameMapping.h"

#include <QSysInfo>

bool VextilVideoFrameMapping::isDirectFormat(QVideoFrameFormat::PixelFormat format)
{
    // Qt names video formats by byte order; the image side reads 32-bit words, so the two
    // agree only on little-endian machines.
    if (QSysInfo::ByteOrder != QSysInfo::LittleEndian)
        return false;
    return format == QVideoFrameFormat::Format_BGRA8888
        || format == QVideoFrameFormat::Format_BGRA8888_Premultiplied
        || format == QVideoFrameFormat::Format_BGRX8888;
}

VextilVideoFrameMapping::VextilVideoFrameMapping(const QVideoFrame &frame) : m_frame(frame)
{
    if (!m_frame.isValid())
        return;
    if (isDirectFormat(m_frame.pixelFormat()) && m_frame.map(QVideoFrame::ReadOnly)) {
        m_mapped = true;
        m_buffer = {m_frame.bits(0), m_frame.mappedBytes(0), m_frame.width(), m_frame.height(),
                    m_frame.bytesPerLine(0)};
        return;
    }
    m_converted = m_frame.toImage().convertToFormat(QImage::Format_RGB32);
    if (m_converted.isNull())
        return;
    m_buffer = {m_converted.constBits(), m_converted.sizeInBytes(), m_converted.width(),
                m_converted.height(), m_converted.bytesPerLine()};
}

VextilVideoFrameMapping::~VextilVideoFrameMapping()
{
    if (m_mapped)
        m_frame.unmap();
}
