#include "camera/VextilDecodedPicture.h"

extern "C" {
#include <libavutil/frame.h>
#include <libavutil/pixdesc.h>
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <cstring>
#include <tuple>
#include <vector>

namespace {

// The JPEG variants are the same planes in full range; swscale wants them named as the plain
// ones with the range set apart (and warns otherwise).
AVPixelFormat plainFormat(int format)
{
    switch (format) {
    case AV_PIX_FMT_YUVJ420P: return AV_PIX_FMT_YUV420P;
    case AV_PIX_FMT_YUVJ422P: return AV_PIX_FMT_YUV422P;
    case AV_PIX_FMT_YUVJ444P: return AV_PIX_FMT_YUV444P;
    case AV_PIX_FMT_YUVJ440P: return AV_PIX_FMT_YUV440P;
    case AV_PIX_FMT_YUVJ411P: return AV_PIX_FMT_YUV411P;
    default: return AVPixelFormat(format);
    }
}

bool isFullRange(const AVFrame &frame)
{
    return plainFormat(frame.format) != frame.format || frame.color_range == AVCOL_RANGE_JPEG;
}

// One conversion context per thread and purpose, made again only when what it converts changes:
// making one costs more than converting a few rows with it.
class Converter {
public:
    ~Converter() { sws_freeContext(m_context); }

    SwsContext *get(const AVFrame &frame, QSize from, QSize to, int filter)
    {
        const AVPixelFormat format = plainFormat(frame.format);
        const bool fullRange = isFullRange(frame);
        const int colours = frame.colorspace == AVCOL_SPC_BT709 ? SWS_CS_ITU709 : SWS_CS_DEFAULT;
        const auto key = std::tuple(int(format), from.width(), from.height(), to.width(), to.height(), filter,
                                    fullRange, colours);
        if (m_context && key == m_key)
            return m_context;
        sws_freeContext(m_context);
        m_context = sws_getContext(from.width(), from.height(), format, to.width(), to.height(), AV_PIX_FMT_BGRA,
                                   filter, nullptr, nullptr, nullptr);
        if (m_context) {
            int *inverse = nullptr, *table = nullptr;
            int sourceRange = 0, targetRange = 0, brightness = 0, contrast = 0, saturation = 0;
            sws_getColorspaceDetails(m_context, &inverse, &sourceRange, &table, &targetRange, &brightness, &contrast,
                                     &saturation);
            sws_setColorspaceDetails(m_context, sws_getCoefficients(colours), fullRange, table, targetRange,
                                     brightness, contrast, saturation);
        }
        m_key = key;
        return m_context;
    }

private:
    SwsContext *m_context = nullptr;
    std::tuple<int, int, int, int, int, int, bool, int> m_key;
};

// Formats whose planes can be addressed at a row and column: not bit-packed, not paletted.
const AVPixFmtDescriptor *addressable(const AVFrame &frame)
{
    const AVPixFmtDescriptor *desc = av_pix_fmt_desc_get(AVPixelFormat(frame.format));
    if (!desc || desc->flags & (AV_PIX_FMT_FLAG_HWACCEL | AV_PIX_FMT_FLAG_BITSTREAM | AV_PIX_FMT_FLAG_PAL))
        return nullptr;
    return desc;
}

// Where row `y`, column `x` of the picture starts in each plane; `x` and `y` lie on the chroma grid.
void planesAt(const AVFrame &frame, const AVPixFmtDescriptor &desc, int x, int y, const uint8_t *planes[4])
{
    for (int plane = 0; plane < 4; ++plane) {
        planes[plane] = nullptr;
        if (!frame.data[plane])
            continue;
        // The component that lives in this plane says how far apart its samples are; chroma
        // planes (components 1 and 2 of a YUV format) are subsampled.
        int step = 1;
        bool chroma = false;
        for (int c = 0; c < desc.nb_components; ++c)
            if (desc.comp[c].plane == plane) {
                step = desc.comp[c].step;
                chroma = chroma || ((c == 1 || c == 2) && !(desc.flags & AV_PIX_FMT_FLAG_RGB));
            }
        const int column = chroma ? x >> desc.log2_chroma_w : x, row = chroma ? y >> desc.log2_chroma_h : y;
        planes[plane] = frame.data[plane] + ptrdiff_t(row) * frame.linesize[plane] + ptrdiff_t(column) * step;
    }
}

// The whole picture in one pass: for the formats that cannot be addressed by region.
QImage wholeInOnePass(const AVFrame &frame)
{
    thread_local Converter converter;
    const QSize size(frame.width, frame.height);
    SwsContext *context = converter.get(frame, size, size, SWS_POINT);
    QImage image(size, QImage::Format_RGB32);
    if (!context || image.isNull())
        return {};
    uint8_t *target[4] = {image.bits()};
    const int targetStride[4] = {int(image.bytesPerLine())};
    if (sws_scale(context, frame.data, frame.linesize, 0, frame.height, target, targetStride) <= 0)
        return {};
    return image;
}

}  // namespace

VextilDecodedPicture::VextilDecodedPicture(std::shared_ptr<const AVFrame> frame, int rotation)
    : m_frame(std::move(frame)), m_rotation(rotation)
{
}

QSize VextilDecodedPicture::size() const { return m_frame ? QSize(m_frame->width, m_frame->height) : QSize(); }

const void *VextilDecodedPicture::pixels() const { return m_frame ? m_frame->data[0] : nullptr; }

QImage VextilDecodedPicture::image() const { return exactRegion(QRect(QPoint(0, 0), size())); }

QImage VextilDecodedPicture::scaledRegion(QRect region, QSize size) const
{
    const QRect inside = region & QRect(QPoint(0, 0), this->size());
    if (inside.isEmpty() || size.isEmpty())
        return {};
    return inside.size() == size ? exactRegion(inside) : filteredRegion(inside, size);
}

VextilCameraFrame VextilDecodedPicture::cameraFrame() const
{
    if (isNull())
        return {};
    const VextilDecodedPicture picture = *this;
    return VextilCameraFrame(
        size(), [picture] { return picture.image(); },
        [picture](QRect region, QSize size) { return picture.scaledRegion(region, size); }, m_rotation);
}

QImage VextilDecodedPicture::exactRegion(QRect region) const
{
    const QRect inside = region & QRect(QPoint(0, 0), size());
    if (inside.isEmpty())
        return {};
    const AVFrame &frame = *m_frame;
    const AVPixFmtDescriptor *desc = addressable(frame);
    if (!desc) {
        const QImage whole = wholeInOnePass(frame);
        return whole.isNull() || inside.size() == whole.size() ? whole : whole.copy(inside);
    }
    // Whole rows, a chroma row's worth at a time, so that every pixel is converted exactly as in
    // the whole picture (same width, same code path) without a whole-size copy; the region's
    // columns are then taken out of them.
    const int group = 1 << desc->log2_chroma_h;
    QImage image(inside.size(), QImage::Format_RGB32);
    if (image.isNull())
        return {};
    thread_local Converter converter;
    thread_local std::vector<uint8_t> rows;
    const int stride = frame.width * 4;
    rows.resize(size_t(stride) * size_t(group));
    for (int y = inside.top() & ~(group - 1); y <= inside.bottom(); y += group) {
        const int height = std::min(group, frame.height - y);
        SwsContext *context = converter.get(frame, QSize(frame.width, height), QSize(frame.width, height), SWS_POINT);
        const uint8_t *source[4];
        planesAt(frame, *desc, 0, y, source);
        uint8_t *target[4] = {rows.data()};
        const int targetStride[4] = {stride};
        if (!context || sws_scale(context, source, frame.linesize, 0, height, target, targetStride) <= 0)
            return {};
        for (int r = std::max(y, inside.top()); r < y + height && r <= inside.bottom(); ++r)
            std::memcpy(image.scanLine(r - inside.top()), rows.data() + ptrdiff_t(r - y) * stride + inside.left() * 4,
                        size_t(inside.width()) * 4);
    }
    return image;
}

QImage VextilDecodedPicture::filteredRegion(QRect region, QSize size) const
{
    const AVFrame &frame = *m_frame;
    const AVPixFmtDescriptor *desc = addressable(frame);
    if (!desc) {
        const QImage whole = wholeInOnePass(frame);
        return whole.isNull() ? whole : whole.copy(region).scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    }
    // Started on the chroma grid: at most a pixel more on the left and top, which a copy scaled
    // down cannot show.
    const int x = region.left() & ~((1 << desc->log2_chroma_w) - 1), y = region.top() & ~((1 << desc->log2_chroma_h) - 1);
    const QSize from(region.right() + 1 - x, region.bottom() + 1 - y);
    thread_local Converter converter;
    SwsContext *context = converter.get(frame, from, size, SWS_BILINEAR);
    QImage image(size, QImage::Format_RGB32);
    if (!context || image.isNull())
        return {};
    const uint8_t *source[4];
    planesAt(frame, *desc, x, y, source);
    uint8_t *target[4] = {image.bits()};
    const int targetStride[4] = {int(image.bytesPerLine())};
    if (sws_scale(context, source, frame.linesize, 0, from.height(), target, targetStride) <= 0)
        return {};
    return image;
}
