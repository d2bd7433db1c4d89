#include "camera/VextilVideoFrameMapping.h"

#include <VextilToolkit/VextilImageBuffer.h>

#include <QSysInfo>

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <vector>

namespace {

// A plane as a matrix of the size the format needs; empty when the frame's plane is smaller.
cv::Mat planeOf(const QVideoFrame &frame, int plane, int width, int height, int type)
{
    const qsizetype row = qsizetype(width) * CV_ELEM_SIZE(type), stride = frame.bytesPerLine(plane);
    if (plane >= frame.planeCount() || !frame.bits(plane) || stride < row
        || frame.mappedBytes(plane) < stride * (height - 1) + row)
        return {};
    return cv::Mat(height, width, type, const_cast<uchar *>(frame.bits(plane)), size_t(stride));
}

// Full-range samples (a JPEG camera's decoded frames) squeezed into the video range that
// OpenCV's conversions read: luma 0-255 to 16-235, chroma 0-255 to 16-240 around 128.
cv::Mat rangeTable(bool luma)
{
    cv::Mat table(1, 256, CV_8UC1);
    for (int i = 0; i < 256; ++i)
        table.at<uchar>(i) =
            uchar(luma ? 16 + (i * 219 + 127) / 255 : 128 + ((i - 128) * 224 + (i >= 128 ? 127 : -127)) / 255);
    return table;
}

cv::Mat toVideoRange(const cv::Mat &plane, bool luma)
{
    static const cv::Mat lumaTable = rangeTable(true), chromaTable = rangeTable(false);
    cv::Mat squeezed;
    cv::LUT(plane, luma ? lumaTable : chromaTable, squeezed);
    return squeezed;
}

// Copies the rows of a plane one after the other, without their padding.
void appendRows(std::vector<uchar> &to, const cv::Mat &plane)
{
    for (int y = 0; y < plane.rows; ++y)
        to.insert(to.end(), plane.ptr(y), plane.ptr(y) + plane.cols * plane.elemSize());
}

// The region's luma and chroma planes, scaled to `size` and size / 2 (U and V apart), and the
// buffers they are made in. Kept per thread: frames of one size follow each other, and fresh
// megabyte buffers cost more in page faults than the scaling itself.
struct SmallPlanes {
    cv::Mat y, u, v;
    cv::Mat luma, chroma, interleaved, pair[2];
    std::vector<uchar> block;
};

void scale(const cv::Mat &plane, cv::Mat &out, cv::Size size) { cv::resize(plane, out, size, 0, 0, cv::INTER_LINEAR); }

// Interleaved chroma (U then V, or V then U) scaled and split.
void splitChroma(const cv::Mat &interleaved, cv::Size size, bool uFirst, SmallPlanes &out)
{
    scale(interleaved, out.interleaved, size);
    cv::split(out.interleaved, out.pair);
    out.u = out.pair[uFirst ? 0 : 1];
    out.v = out.pair[uFirst ? 1 : 0];
}

bool smallPlanes(const QVideoFrame &frame, const cv::Rect &r, cv::Size size, SmallPlanes &out)
{
    const int w = frame.width(), h = frame.height();
    const cv::Size half(size.width / 2, size.height / 2);
    const cv::Rect r2(r.x / 2, r.y / 2, r.width / 2, r.height / 2), rows(r.x / 2, r.y, r.width / 2, r.height);
    switch (const QVideoFrameFormat::PixelFormat format = frame.pixelFormat()) {
    case QVideoFrameFormat::Format_YUYV:
    case QVideoFrameFormat::Format_UYVY: {
        const cv::Mat packed = planeOf(frame, 0, w, h, CV_8UC2);
        if (packed.empty())
            return false;
        // One channel is luma; the other alternates U and V, read as pairs at half width.
        const bool yFirst = format == QVideoFrameFormat::Format_YUYV;
        cv::extractChannel(packed(r), out.luma, yFirst ? 0 : 1);
        cv::extractChannel(packed(r), out.chroma, yFirst ? 1 : 0);
        scale(out.luma, out.y, size);
        splitChroma(out.chroma.reshape(2), half, true, out);
        return true;
    }
    case QVideoFrameFormat::Format_NV12:
    case QVideoFrameFormat::Format_NV21: {
        const cv::Mat luma = planeOf(frame, 0, w, h, CV_8UC1), chroma = planeOf(frame, 1, w / 2, h / 2, CV_8UC2);
        if (luma.empty() || chroma.empty())
            return false;
        scale(luma(r), out.y, size);
        splitChroma(chroma(r2), half, format == QVideoFrameFormat::Format_NV12, out);
        return true;
    }
    case QVideoFrameFormat::Format_YUV420P:
    case QVideoFrameFormat::Format_YV12:
    case QVideoFrameFormat::Format_YUV422P: {
        const bool planar422 = format == QVideoFrameFormat::Format_YUV422P;
        const int chromaHeight = planar422 ? h : h / 2;
        const cv::Mat luma = planeOf(frame, 0, w, h, CV_8UC1), first = planeOf(frame, 1, w / 2, chromaHeight, CV_8UC1),
                      second = planeOf(frame, 2, w / 2, chromaHeight, CV_8UC1);
        if (luma.empty() || first.empty() || second.empty())
            return false;
        const cv::Rect chromaRegion = planar422 ? rows : r2;
        const bool uFirst = format != QVideoFrameFormat::Format_YV12;
        scale(luma(r), out.y, size);
        scale((uFirst ? first : second)(chromaRegion), out.u, half);
        scale((uFirst ? second : first)(chromaRegion), out.v, half);
        return true;
    }
    default: return false;
    }
}

}  // namespace

QImage VextilVideoFrameMapping::scaledRegion(const QVideoFrame &source, QRect region, QSize size)
{
    // Even edges and sizes, as the chroma planes need.
    const cv::Rect r = cv::Rect(region.x() & ~1, region.y() & ~1, region.width() & ~1, region.height() & ~1)
                       & cv::Rect(0, 0, source.width() & ~1, source.height() & ~1);
    const cv::Size target(std::max(2, size.width() & ~1), std::max(2, size.height() & ~1));
    QVideoFrame frame(source);
    if (r.width < 2 || r.height < 2 || !isYuvFormat(frame.pixelFormat()) || frame.width() % 2 || frame.height() % 2) {
        const VextilVideoFrameMapping mapping(source);
        const QImage whole = VextilImageBuffer::imageFromSampleBuffer(mapping.sampleBuffer());
        return whole.isNull() ? whole
                              : whole.copy(region).scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    if (!frame.map(QVideoFrame::ReadOnly))
        return {};
    thread_local SmallPlanes small;
    QImage image;
    try {
        if (smallPlanes(frame, r, target, small)) {
            if (frame.surfaceFormat().colorRange() == QVideoFrameFormat::ColorRange_Full) {
                small.y = toVideoRange(small.y, true);
                small.u = toVideoRange(small.u, false);
                small.v = toVideoRange(small.v, false);
            }
            std::vector<uchar> &block = small.block;
            block.clear();
            appendRows(block, small.y);
            appendRows(block, small.u);
            appendRows(block, small.v);
            image = QImage(target.width, target.height, QImage::Format_RGB32);
            cv::Mat bgrx(target.height, target.width, CV_8UC4, image.bits(), size_t(image.bytesPerLine()));
            cv::cvtColor(cv::Mat(target.height * 3 / 2, target.width, CV_8UC1, block.data()), bgrx,
                         cv::COLOR_YUV2BGRA_I420);
            if (bgrx.data != image.constBits())
                image = QImage();
        }
    } catch (const cv::Exception &) {
        image = QImage();
    }
    frame.unmap();
    return image;
}

VextilCameraFrame VextilVideoFrameMapping::cameraFrame(const QVideoFrame &frame)
{
    return VextilCameraFrame(
        frame.size(),
        [frame] {
            const VextilVideoFrameMapping mapping(frame);
            return VextilImageBuffer::imageFromSampleBuffer(mapping.sampleBuffer());
        },
        [frame](QRect region, QSize size) { return scaledRegion(frame, region, size); }, int(frame.rotationAngle()),
        frame.mirrored());
}

bool VextilVideoFrameMapping::isDirectFormat(QVideoFrameFormat::PixelFormat format)
{
    // Qt names video formats by byte order; the image side reads 32-bit words, so the two
    // agree only on little-endian machines.
    if (QSysInfo::ByteOrder != QSysInfo::LittleEndian)
        return false;
    return format == QVideoFrameFormat::Format_BGRA8888 || format == QVideoFrameFormat::Format_BGRA8888_Premultiplied
           || format == QVideoFrameFormat::Format_BGRX8888;
}

bool VextilVideoFrameMapping::isYuvFormat(QVideoFrameFormat::PixelFormat format)
{
    switch (format) {
    case QVideoFrameFormat::Format_YUYV:
    case QVideoFrameFormat::Format_UYVY:
    case QVideoFrameFormat::Format_NV12:
    case QVideoFrameFormat::Format_NV21:
    case QVideoFrameFormat::Format_YUV420P:
    case QVideoFrameFormat::Format_YV12:
    case QVideoFrameFormat::Format_YUV422P: return true;
    default: return false;
    }
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
    if (isYuvFormat(m_frame.pixelFormat())) {
        // The whole frame through the same path as its small copies; odd sizes cannot hold
        // the chroma planes and give no image.
        const QSize size = m_frame.size();
        if (size.width() % 2 == 0 && size.height() % 2 == 0)
            m_converted = scaledRegion(m_frame, QRect(QPoint(0, 0), size), size);
    } else {
        m_converted = m_frame.toImage().convertToFormat(QImage::Format_RGB32);
    }
    if (m_converted.isNull())
        return;
    m_buffer = {m_converted.constBits(), m_converted.sizeInBytes(), m_converted.width(), m_converted.height(),
                m_converted.bytesPerLine()};
}

VextilVideoFrameMapping::~VextilVideoFrameMapping()
{
    if (m_mapped)
        m_frame.unmap();
}
