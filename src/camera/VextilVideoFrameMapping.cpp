#include "camera/VextilVideoFrameMapping.h"

#include <VextilToolkit/VextilImageBuffer.h>

#include <QSysInfo>

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>
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
        table.at<uchar>(i) = cv::saturate_cast<uchar>(luma ? 16 + i * 219.0 / 255 : 128 + (i - 128) * 224.0 / 255);
    return table;
}

// In place, scaled by OpenCV's vectorised conversion (the same values as the table, rounded).
void toVideoRange(cv::Mat &plane, bool luma)
{
    if (luma)
        plane.convertTo(plane, CV_8U, 219.0 / 255, 16);
    else
        plane.convertTo(plane, CV_8U, 224.0 / 255, 128 - 128 * 224.0 / 255);
}

// The same squeeze for a four-byte group of packed 4:2:2: luma first (Y U Y V) or chroma first.
cv::Mat groupTable(bool lumaFirst)
{
    const cv::Mat luma = rangeTable(true), chroma = rangeTable(false);
    cv::Mat table;
    cv::merge(lumaFirst ? std::vector<cv::Mat>{luma, chroma, luma, chroma} : std::vector<cv::Mat>{chroma, luma, chroma, luma},
              table);
    return table;
}


// RGB -> Y Pb Pr for a colour space's luma weights.
cv::Matx33d yPbPr(double kr, double kb)
{
    const double kg = 1 - kr - kb;
    return {kr, kg, kb, -kr / (2 * (1 - kb)), -kg / (2 * (1 - kb)), 0.5, 0.5, -kg / (2 * (1 - kr)), -kb / (2 * (1 - kr))};
}

// OpenCV reads YUV as BT.601; HD cameras often send BT.709. The same colour in BT.601 has the
// same luma plus a little of each chroma, and its chroma mixed linearly, so the planes are
// re-encoded before OpenCV reads them: in fixed point, row by row, in fixed-length blocks
// through local copies, which compilers vectorise at -O2.
class Bt709Recoding
{
public:
    static const Bt709Recoding &instance()
    {
        static const Bt709Recoding recoding;
        return recoding;
    }

    // Re-encodes a row of chroma in place; `lumaShift` gets what each sample adds to its luma.
    void chromaRow(uchar *cb, uchar *cr, short *lumaShift, int count) const
    {
        int x = 0;
        for (; x + kBlock <= count; x += kBlock)
            chroma<kBlock>(cb + x, cr + x, lumaShift + x);
        for (; x < count; ++x)
            chroma<1>(cb + x, cr + x, lumaShift + x);
    }

    // Adds each sample's shift to a row of luma.
    static void shiftLuma(uchar *luma, const short *shift, int count)
    {
        int x = 0;
        for (; x + kBlock <= count; x += kBlock)
            shifted<kBlock>(luma + x, shift + x);
        for (; x < count; ++x)
            shifted<1>(luma + x, shift + x);
    }

private:
    static constexpr int kBits = 12, kHalf = 1 << (kBits - 1), kBlock = 16;

    template<int N>
    void chroma(uchar *cb, uchar *cr, short *lumaShift) const
    {
        int b[N], r[N], shift[N], newCb[N], newCr[N];
        for (int x = 0; x < N; ++x) {
            b[x] = cb[x] - 128;
            r[x] = cr[x] - 128;
        }
        for (int x = 0; x < N; ++x) {
            shift[x] = (m_lumaCb * b[x] + m_lumaCr * r[x] + kHalf) >> kBits;
            newCb[x] = std::clamp(((m_cbCb * b[x] + m_cbCr * r[x] + kHalf) >> kBits) + 128, 0, 255);
            newCr[x] = std::clamp(((m_crCb * b[x] + m_crCr * r[x] + kHalf) >> kBits) + 128, 0, 255);
        }
        for (int x = 0; x < N; ++x)
            lumaShift[x] = short(shift[x]);
        for (int x = 0; x < N; ++x)
            cb[x] = uchar(newCb[x]);
        for (int x = 0; x < N; ++x)
            cr[x] = uchar(newCr[x]);
    }

    template<int N>
    static void shifted(uchar *luma, const short *shift)
    {
        int sum[N];
        for (int x = 0; x < N; ++x)
            sum[x] = std::clamp(luma[x] + shift[x], 0, 255);
        for (int x = 0; x < N; ++x)
            luma[x] = uchar(sum[x]);
    }

    Bt709Recoding()
    {
        const cv::Matx33d m = yPbPr(0.299, 0.114) * yPbPr(0.2126, 0.0722).inv();
        const auto fixed = [](double k) { return int(std::lround(k * (1 << kBits))); };
        const double luma = 219.0 / 224.0;  // video range: luma spans 219 levels, chroma 224
        m_lumaCb = fixed(luma * m(0, 1));
        m_lumaCr = fixed(luma * m(0, 2));
        m_cbCb = fixed(m(1, 1));
        m_cbCr = fixed(m(1, 2));
        m_crCb = fixed(m(2, 1));
        m_crCr = fixed(m(2, 2));
    }

    int m_lumaCb, m_lumaCr, m_cbCb, m_cbCr, m_crCb, m_crCr;
};

// Planes: each chroma sample covers two by two luma samples, as OpenCV's conversion reads it.
void recodePlanes(cv::Mat &y, cv::Mat &u, cv::Mat &v)
{
    const Bt709Recoding &recode = Bt709Recoding::instance();
    std::vector<short> shift(size_t(u.cols)), wide(size_t(y.cols));
    for (int row = 0; row < u.rows; ++row) {
        recode.chromaRow(u.ptr(row), v.ptr(row), shift.data(), u.cols);
        for (int x = 0; x < u.cols; ++x)
            wide[size_t(2 * x)] = wide[size_t(2 * x + 1)] = shift[size_t(x)];
        Bt709Recoding::shiftLuma(y.ptr(2 * row), wide.data(), y.cols);
        Bt709Recoding::shiftLuma(y.ptr(2 * row + 1), wide.data(), y.cols);
    }
}

// Packed groups (Y U Y V or U Y V Y), split into four planes: one chroma pair covers the
// group's two luma samples.
void recodeGroups(cv::Mat &groups, bool lumaFirst)
{
    const Bt709Recoding &recode = Bt709Recoding::instance();
    const size_t luma = lumaFirst ? 0 : 1, chroma = 1 - luma;
    thread_local std::vector<cv::Mat> parts;
    cv::split(groups, parts);
    std::vector<short> shift(size_t(groups.cols));
    for (int row = 0; row < groups.rows; ++row) {
        recode.chromaRow(parts[chroma].ptr(row), parts[chroma + 2].ptr(row), shift.data(), groups.cols);
        Bt709Recoding::shiftLuma(parts[luma].ptr(row), shift.data(), groups.cols);
        Bt709Recoding::shiftLuma(parts[luma + 2].ptr(row), shift.data(), groups.cols);
    }
    cv::merge(parts, groups);
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
    cv::Mat interleaved, pair[2];
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

// Packed 4:2:2 (YUYV, UYVY): each pair of pixels is one four-byte group, so the region is scaled
// as groups at half width and converted in one pass, without splitting the planes first.
bool scalePacked(const QVideoFrame &frame, const cv::Rect &r, cv::Size size, bool fullRange, bool bt709, QImage &image)
{
    const cv::Mat groups = planeOf(frame, 0, frame.width() / 2, frame.height(), CV_8UC4);
    if (groups.empty())
        return false;
    thread_local cv::Mat scaled;
    scale(groups(cv::Rect(r.x / 2, r.y, r.width / 2, r.height)), scaled, cv::Size(size.width / 2, size.height));
    const bool yuyv = frame.pixelFormat() == QVideoFrameFormat::Format_YUYV;
    if (fullRange) {
        static const cv::Mat tables[2] = {groupTable(true), groupTable(false)};
        cv::LUT(scaled, tables[yuyv ? 0 : 1], scaled);
    }
    if (bt709)
        recodeGroups(scaled, yuyv);
    image = QImage(size.width, size.height, QImage::Format_RGB32);
    cv::Mat bgrx(size.height, size.width, CV_8UC4, image.bits(), size_t(image.bytesPerLine()));
    cv::cvtColor(scaled.reshape(2), bgrx, yuyv ? cv::COLOR_YUV2BGRA_YUYV : cv::COLOR_YUV2BGRA_UYVY);
    return bgrx.data == image.constBits();
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
    const bool fullRange = frame.surfaceFormat().colorRange() == QVideoFrameFormat::ColorRange_Full;
    const bool bt709 =
        r.size() == target && frame.surfaceFormat().colorSpace() == QVideoFrameFormat::ColorSpace_BT709;
    const bool packed = frame.pixelFormat() == QVideoFrameFormat::Format_YUYV
                        || frame.pixelFormat() == QVideoFrameFormat::Format_UYVY;
    try {
        if (packed) {
            if (!scalePacked(frame, r, target, fullRange, bt709, image))
                image = QImage();
        } else if (smallPlanes(frame, r, target, small)) {
            if (fullRange) {
                toVideoRange(small.y, true);
                toVideoRange(small.u, false);
                toVideoRange(small.v, false);
            }
            if (bt709)
                recodePlanes(small.y, small.u, small.v);
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
