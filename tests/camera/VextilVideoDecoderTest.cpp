#include <VextilToolkit/VextilCameraFrame.h>
#include <VextilToolkit/VextilVideoFileReader.h>

#include "camera/VextilUprightFrame.h"
#include "camera/VextilVideoDecoder.h"

#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>

#include <set>
#include <vector>

namespace {

// The camera screen's views: a phone's camera area, a landscape window, and none (the whole frame).
const QSizeF kViews[] = {QSizeF(390, 741), QSizeF(844, 390), QSizeF()};

cv::Mat bgr(const QImage &image)
{
    const cv::Mat bgrx(image.height(), image.width(), CV_8UC4, const_cast<uchar *>(image.constBits()),
                       size_t(image.bytesPerLine()));
    cv::Mat out;
    cv::cvtColor(bgrx, out, cv::COLOR_BGRA2BGR);
    return out;
}

// Largest and mean difference of two pictures of one size, over all channels.
std::pair<double, double> difference(const cv::Mat &a, const cv::Mat &b)
{
    cv::Mat diff;
    cv::absdiff(a, b, diff);
    double largest = 0;
    cv::minMaxLoc(diff.reshape(1), nullptr, &largest);
    const cv::Scalar mean = cv::mean(diff);
    return {largest, (mean[0] + mean[1] + mean[2]) / 3};
}

}  // namespace

TEST(VideoDecoder, CameraFramesGiveTheReadersPictures)
{
    // What the file source delivers is converted only where the capture takes it: a kept picture
    // must be exactly that part of the reader's whole image, and the analysed copies that part
    // scaled down, as near as two filters come.
    VextilVideoFileReader reader;
    VextilVideoDecoder decoder;
    ASSERT_TRUE(reader.open(QStringLiteral(VEXTIL_SELFIE_CLIP)));
    ASSERT_TRUE(decoder.open(QStringLiteral(VEXTIL_SELFIE_CLIP)));
    for (int i = 0; i < 12; ++i) {
        SCOPED_TRACE(i);
        const auto whole = reader.readFrame();
        const auto decoded = decoder.read();
        ASSERT_TRUE(whole && decoded);
        EXPECT_EQ(decoded->index, whole->index);
        EXPECT_EQ(decoded->seconds, whole->seconds);
        const VextilCameraFrame expected(whole->image);
        const VextilCameraFrame lazy = decoded->picture.cameraFrame();
        ASSERT_EQ(lazy.size(), expected.size());
        for (const QSizeF view : kViews) {
            for (const int side : {320, 720, 844}) {
                const QImage scaled = VextilUprightFrame::scaledImage(lazy, view, side);
                const QImage reference = VextilUprightFrame::scaledImage(expected, view, side);
                ASSERT_EQ(scaled.size(), reference.size());
                EXPECT_EQ(scaled.format(), QImage::Format_RGB32);
                const auto [largest, mean] = difference(bgr(scaled), bgr(reference));
                EXPECT_LT(mean, 1.0) << view.width() << "x" << view.height() << " at " << side;
                EXPECT_LT(largest, 64) << view.width() << "x" << view.height() << " at " << side;
            }
            const QImage kept = VextilUprightFrame::image(lazy, view);
            EXPECT_EQ(kept.format(), QImage::Format_RGB32);
            EXPECT_EQ(kept, VextilUprightFrame::image(expected, view));
        }
        // Odd edges too: a region that starts between two chroma samples.
        const QRect odd(23, 37, 301, 417);
        EXPECT_EQ(lazy.scaledRegion(odd, odd.size()), whole->image.copy(odd));
        EXPECT_EQ(lazy.image(), whole->image);
    }
}

TEST(VideoDecoder, ColoursAreTheFilesOwn)
{
    // The clip's pictures are full-range JPEGs: read as video range, every colour would be
    // stretched. OpenCV's own reading of the same file is the reference, to the last level, so
    // kept pictures (and what is uploaded) are those the file holds.
    VextilVideoFileReader reader;
    cv::VideoCapture capture(VEXTIL_SELFIE_CLIP, cv::CAP_FFMPEG);
    ASSERT_TRUE(reader.open(QStringLiteral(VEXTIL_SELFIE_CLIP)));
    ASSERT_TRUE(capture.isOpened());
    EXPECT_EQ(reader.frameCount(), int(capture.get(cv::CAP_PROP_FRAME_COUNT)));
    EXPECT_DOUBLE_EQ(reader.framesPerSecond(), capture.get(cv::CAP_PROP_FPS));
    EXPECT_EQ(reader.frameSize(), QSize(int(capture.get(cv::CAP_PROP_FRAME_WIDTH)), int(capture.get(cv::CAP_PROP_FRAME_HEIGHT))));
    for (int i = 0; i < 6; ++i) {
        cv::Mat reference;
        ASSERT_TRUE(capture.read(reference));
        const auto frame = reader.readFrame();
        ASSERT_TRUE(frame);
        EXPECT_EQ(difference(bgr(frame->image), reference).first, 0) << i;
    }
}

TEST(VideoDecoder, HeldFramesKeepTheirPixelsAndFreedBuffersAreUsedAgain)
{
    VextilVideoFileReader reader;
    VextilVideoDecoder decoder;
    ASSERT_TRUE(reader.open(QStringLiteral(VEXTIL_SELFIE_CLIP)));
    ASSERT_TRUE(decoder.open(QStringLiteral(VEXTIL_SELFIE_CLIP)));
    std::vector<QImage> expected;
    for (int i = 0; i < 14; ++i)
        expected.push_back(reader.readFrame()->image);

    // More frames held than a codec keeps buffers for: none is written over.
    std::vector<VextilCameraFrame> held;
    for (int i = 0; i < 6; ++i)
        held.push_back(decoder.read()->picture.cameraFrame());
    for (int i = 0; i < 6; ++i)
        EXPECT_EQ(held[size_t(i)].image(), expected[size_t(i)]) << i;
    held.clear();

    // Frames let go as the capture lets them go: their buffers come back.
    std::set<const void *> buffers;
    for (int i = 6; i < 14; ++i) {
        const auto frame = decoder.read();
        buffers.insert(frame->picture.pixels());
        EXPECT_EQ(frame->picture.cameraFrame().image(), expected[size_t(i)]) << i;
    }
    EXPECT_LE(buffers.size(), 2u);

    // Back to the first frame, with its pixels.
    ASSERT_TRUE(decoder.rewind());
    const auto first = decoder.read();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->index, 0);
    EXPECT_EQ(first->picture.image(), expected[0]);
}
