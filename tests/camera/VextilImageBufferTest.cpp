#include <VextilToolkit/VextilImageBuffer.h>

#include "camera/VextilVideoFrameMapping.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

// A camera-like plane: every pixel a colour of its own (B, G, R, X in memory), padding bytes marked.
struct Plane {
    Plane(int width, int height, qsizetype stride) : width(width), height(height), stride(stride), bytes(size_t(stride * height), 0xEE)
    {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) {
                const QRgb c = colourAt(x, y);
                uchar *p = bytes.data() + y * stride + x * 4;
                p[0] = uchar(qBlue(c)), p[1] = uchar(qGreen(c)), p[2] = uchar(qRed(c)), p[3] = 0;
            }
    }
    static QRgb colourAt(int x, int y) { return qRgb(x % 251, y % 241, (x + y) % 239); }
    VextilSampleBuffer buffer() const { return {bytes.data(), qsizetype(bytes.size()), width, height, stride}; }

    int width, height;
    qsizetype stride;
    std::vector<uchar> bytes;
};

// The rows of `image` that differ from the plane's pattern; none when the copy is whole.
int wrongRows(const QImage &image)
{
    int wrong = 0;
    for (int y = 0; y < image.height(); ++y) {
        const auto *row = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < image.width(); ++x)
            if ((row[x] & 0xFFFFFF) != (Plane::colourAt(x, y) & 0xFFFFFF)) {
                ++wrong;
                break;
            }
    }
    return wrong;
}

TEST(ImageBuffer, PaddedFrameKeepsSizeStrideAndColoursAndOwnsItsCopy)
{
    Plane plane(1280, 720, 1280 * 4 + 48);
    const QImage image = VextilImageBuffer::imageFromSampleBuffer(plane.buffer());
    ASSERT_FALSE(image.isNull());
    EXPECT_EQ(image.size(), QSize(1280, 720));
    EXPECT_EQ(image.format(), QImage::Format_RGB32);
    EXPECT_EQ(image.bytesPerLine(), plane.stride) << "row padding is kept";
    EXPECT_EQ(image.sizeInBytes(), plane.stride * 720) << "the whole plane is copied";
    EXPECT_EQ(image.constBits()[1280 * 4], 0xEE) << "padding bytes are copied as they are";
    EXPECT_EQ(image.constBits()[image.sizeInBytes() - 1], 0xEE) << "up to the last row's padding";

    // The camera recycles its buffer once the frame callback returns: every pixel must have
    // been copied by then, the last rows included.
    std::fill(plane.bytes.begin(), plane.bytes.end(), 0);
    EXPECT_EQ(wrongRows(image), 0);
    EXPECT_EQ(image.pixel(1279, 719), Plane::colourAt(1279, 719));
}

TEST(ImageBuffer, FramesThatDoNotFitTheirStatedSizeAreRefused)
{
    Plane plane(64, 32, 64 * 4 + 16);
    VextilSampleBuffer buffer = plane.buffer();
    EXPECT_EQ(buffer.status(), VextilSampleBufferStatus::Ok);

    const auto refused = [](VextilSampleBuffer b, VextilSampleBufferStatus expected) {
        EXPECT_EQ(b.status(), expected);
        EXPECT_TRUE(VextilImageBuffer::imageFromSampleBuffer(b).isNull());
    };
    VextilSampleBuffer b = buffer;
    b.size -= 1;  // the last row's padding is missing
    refused(b, VextilSampleBufferStatus::BufferTooSmall);
    b = buffer;
    b.height = 1 << 30;
    refused(b, VextilSampleBufferStatus::BufferTooSmall);
    b = buffer;
    b.bytesPerRow = 64 * 4 - 4;
    refused(b, VextilSampleBufferStatus::RowTooShort);
    b = buffer;
    b.bytesPerRow = 64 * 4 + 2;
    refused(b, VextilSampleBufferStatus::MisalignedRows);
    b = buffer;
    b.width = 0;
    refused(b, VextilSampleBufferStatus::InvalidSize);
    b = buffer;
    b.data = nullptr;
    refused(b, VextilSampleBufferStatus::NoData);
}

QVideoFrame filledFrame(QVideoFrameFormat::PixelFormat format, const uchar pixel[4])
{
    QVideoFrame frame(QVideoFrameFormat(QSize(8, 4), format));
    EXPECT_TRUE(frame.map(QVideoFrame::WriteOnly));
    for (int y = 0; y < frame.height(); ++y)
        for (int x = 0; x < frame.width(); ++x)
            std::copy(pixel, pixel + 4, frame.bits(0) + y * frame.bytesPerLine(0) + x * 4);
    frame.unmap();
    return frame;
}

TEST(VideoFrameMapping, BgraFramesAreReadDirectlyOtherFormatsAreConverted)
{
    const uchar orangeBgra[4] = {0x10, 0x80, 0xF0, 0xFF};
    const uchar orangeRgba[4] = {0xF0, 0x80, 0x10, 0xFF};
    for (auto [format, bytes, direct] : {std::tuple{QVideoFrameFormat::Format_BGRA8888, orangeBgra, true},
                                         std::tuple{QVideoFrameFormat::Format_BGRX8888, orangeBgra, true},
                                         std::tuple{QVideoFrameFormat::Format_RGBA8888, orangeRgba, false}}) {
        SCOPED_TRACE(int(format));
        VextilVideoFrameMapping mapping(filledFrame(format, bytes));
        ASSERT_EQ(mapping.sampleBuffer().status(), VextilSampleBufferStatus::Ok);
        EXPECT_EQ(mapping.isDirect(), direct);
        const QImage image = VextilImageBuffer::imageFromSampleBuffer(mapping.sampleBuffer());
        EXPECT_EQ(image.size(), QSize(8, 4));
        EXPECT_EQ(qRed(image.pixel(7, 3)), 0xF0);
        EXPECT_EQ(qGreen(image.pixel(7, 3)), 0x80);
        EXPECT_EQ(qBlue(image.pixel(7, 3)), 0x10);
    }

    // A planar camera format goes through Qt's own conversion: luma 200 with neutral chroma is
    // grey 214 in limited-range BT.601, within rounding.
    QVideoFrame nv12(QVideoFrameFormat(QSize(8, 4), QVideoFrameFormat::Format_NV12));
    ASSERT_TRUE(nv12.map(QVideoFrame::WriteOnly));
    std::fill_n(nv12.bits(0), nv12.mappedBytes(0), 200);
    std::fill_n(nv12.bits(1), nv12.mappedBytes(1), 128);
    nv12.unmap();
    VextilVideoFrameMapping planar(nv12);
    EXPECT_FALSE(planar.isDirect());
    const QImage grey = VextilImageBuffer::imageFromSampleBuffer(planar.sampleBuffer());
    ASSERT_EQ(grey.size(), QSize(8, 4));
    for (int channel : {qRed(grey.pixel(5, 2)), qGreen(grey.pixel(5, 2)), qBlue(grey.pixel(5, 2))})
        EXPECT_NEAR(channel, 214, 3);

    VextilVideoFrameMapping invalid{QVideoFrame()};
    EXPECT_NE(invalid.sampleBuffer().status(), VextilSampleBufferStatus::Ok);
}

// A frame of a camera YUV format filled with one colour, plane by plane.
QVideoFrame yuvFrame(QVideoFrameFormat::PixelFormat format, QSize size, uchar luma, uchar u, uchar v,
                     QVideoFrameFormat::ColorRange range = QVideoFrameFormat::ColorRange_Video,
                     QVideoFrameFormat::ColorSpace space = QVideoFrameFormat::ColorSpace_BT601)
{
    QVideoFrameFormat surface(size, format);
    surface.setColorRange(range);
    surface.setColorSpace(space);
    QVideoFrame frame(surface);
    EXPECT_TRUE(frame.map(QVideoFrame::WriteOnly));
    const auto fill = [&](int plane, std::initializer_list<uchar> pattern) {
        const std::vector<uchar> bytes(pattern);
        for (qsizetype i = 0; i < frame.mappedBytes(plane); ++i)
            frame.bits(plane)[i] = bytes[size_t(i) % bytes.size()];
    };
    switch (format) {
    case QVideoFrameFormat::Format_YUYV: fill(0, {luma, u, luma, v}); break;
    case QVideoFrameFormat::Format_UYVY: fill(0, {u, luma, v, luma}); break;
    case QVideoFrameFormat::Format_NV12: fill(0, {luma}); fill(1, {u, v}); break;
    case QVideoFrameFormat::Format_NV21: fill(0, {luma}); fill(1, {v, u}); break;
    case QVideoFrameFormat::Format_YV12: fill(0, {luma}); fill(1, {v}); fill(2, {u}); break;
    default: fill(0, {luma}); fill(1, {u}); fill(2, {v}); break;  // I420, planar 4:2:2
    }
    frame.unmap();
    return frame;
}

TEST(VideoFrameMapping, EveryCameraYuvFormatIsConvertedFromItsPlanesWithoutQtsConversion)
{
    using F = QVideoFrameFormat;
    for (F::PixelFormat format : {F::Format_YUYV, F::Format_UYVY, F::Format_NV12, F::Format_NV21, F::Format_YUV420P,
                                  F::Format_YV12}) {
        SCOPED_TRACE(F::pixelFormatToString(format).toStdString());
        ASSERT_TRUE(VextilVideoFrameMapping::isYuvFormat(format));
        // Limited-range BT.601: luma 200 with neutral chroma is grey 214; (81, 90, 240) is red.
        for (const auto &[luma, u, v, expected] : {std::tuple{uchar(200), uchar(128), uchar(128), qRgb(214, 214, 214)},
                                                   std::tuple{uchar(81), uchar(90), uchar(240), qRgb(255, 0, 0)}}) {
            VextilVideoFrameMapping mapping(yuvFrame(format, QSize(64, 48), luma, u, v));
            EXPECT_FALSE(mapping.isDirect());
            const QImage image = VextilImageBuffer::imageFromSampleBuffer(mapping.sampleBuffer());
            ASSERT_EQ(image.size(), QSize(64, 48));
            for (const QPoint at : {QPoint(0, 0), QPoint(63, 47), QPoint(31, 20)}) {
                EXPECT_NEAR(qRed(image.pixel(at)), qRed(expected), 3);
                EXPECT_NEAR(qGreen(image.pixel(at)), qGreen(expected), 3);
                EXPECT_NEAR(qBlue(image.pixel(at)), qBlue(expected), 3);
            }
        }
        // Full range (what a JPEG camera's decoder gives): luma is the grey itself, where the
        // video range would stretch 235 to white and 20 to near black.
        for (const uchar luma : {uchar(235), uchar(20)}) {
            VextilVideoFrameMapping full(yuvFrame(format, QSize(64, 48), luma, 128, 128, F::ColorRange_Full));
            const QImage image = VextilImageBuffer::imageFromSampleBuffer(full.sampleBuffer());
            ASSERT_FALSE(image.isNull());
            EXPECT_NEAR(qGreen(image.pixel(40, 30)), luma, 3);
        }
        // HD cameras say BT.709, whose colours BT.601 reads about ten levels off.
        for (const auto &[y, u, v, expected] : {std::tuple{uchar(105), uchar(107), uchar(182), qRgb(200, 80, 60)},
                                                std::tuple{uchar(131), uchar(107), uchar(87), qRgb(60, 160, 90)}}) {
            VextilVideoFrameMapping hd(yuvFrame(format, QSize(64, 48), y, u, v, F::ColorRange_Video, F::ColorSpace_BT709));
            const QImage image = VextilImageBuffer::imageFromSampleBuffer(hd.sampleBuffer());
            ASSERT_FALSE(image.isNull());
            EXPECT_NEAR(qRed(image.pixel(40, 30)), qRed(expected), 3);
            EXPECT_NEAR(qGreen(image.pixel(40, 30)), qGreen(expected), 3);
            EXPECT_NEAR(qBlue(image.pixel(40, 30)), qBlue(expected), 3);
        }
    }
    // Frames that do not hold what their format needs give no image rather than a crash: an odd
    // width, and planar 4:2:2 as Qt 6.4 allocates it itself (chroma rows a quarter of the width
    // wide, where the format needs half; Qt's own conversion reads past them).
    EXPECT_TRUE(VextilVideoFrameMapping::isYuvFormat(F::Format_YUV422P));
    for (const auto &[format, size] : {std::pair{F::Format_NV12, QSize(63, 48)}, {F::Format_YUV422P, QSize(64, 48)}}) {
        VextilVideoFrameMapping refused(yuvFrame(format, size, 200, 128, 128));
        EXPECT_NE(refused.sampleBuffer().status(), VextilSampleBufferStatus::Ok);
    }
}

}  // namespace
