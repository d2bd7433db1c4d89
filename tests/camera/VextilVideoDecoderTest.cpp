#include <VextilToolkit/VextilCameraFrame.h>
#include <VextilToolkit/VextilVideoFileReader.h>

#include "camera/VextilUprightFrame.h"
#include "camera/VextilVideoDecoder.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

namespace {

// The camera screen's views: a phone's camera area, a landscape window, and none (the whole frame).
const QSizeF kViews[] = {QSizeF(390, 741), QSizeF(844, 390), QSizeF()};

}  // namespace

TEST(VideoDecoder, CameraFramesGiveTheReadersPictures)
{
    // What the file source delivers is converted only where the capture takes it; the analysed
    // copies and the kept pictures must be those the reader's whole images give.
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
        const VextilCameraFrame lazy = VextilVideoDecoder::cameraFrame(decoded->pixels);
        ASSERT_EQ(lazy.size(), expected.size());
        for (const QSizeF view : kViews) {
            for (const int side : {720, 844, 1080})
                EXPECT_EQ(VextilUprightFrame::scaledImage(lazy, view, side), VextilUprightFrame::scaledImage(expected, view, side))
                    << view.width() << "x" << view.height() << " at " << side;
            const QImage kept = VextilUprightFrame::image(lazy, view);
            EXPECT_EQ(kept.format(), QImage::Format_RGB32);
            EXPECT_EQ(kept, VextilUprightFrame::image(expected, view));
        }
        EXPECT_EQ(lazy.image(), whole->image);
    }
}

TEST(VideoDecoder, HeldFramesKeepTheirPixelsAndFreedBuffersAreUsedAgain)
{
    VextilVideoFileReader reader;
    VextilVideoDecoder decoder;
    ASSERT_TRUE(reader.open(QStringLiteral(VEXTIL_SELFIE_CLIP)));
    ASSERT_TRUE(decoder.open(QStringLiteral(VEXTIL_SELFIE_CLIP)));
    std::vector<QImage> expected;
    for (int i = 0; i < 8; ++i)
        expected.push_back(reader.readFrame()->image);

    // More frames held than the decoder has buffers: none is written over.
    std::vector<VextilCameraFrame> held;
    for (int i = 0; i < 5; ++i)
        held.push_back(VextilVideoDecoder::cameraFrame(decoder.read()->pixels));
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(held[size_t(i)].image(), expected[size_t(i)]) << i;
    held.clear();

    // Frames let go as the capture lets them go: their buffers come back.
    std::set<const uchar *> buffers;
    for (int i = 5; i < 8; ++i) {
        const auto frame = decoder.read();
        buffers.insert(frame->pixels.data);
        EXPECT_EQ(VextilVideoDecoder::cameraFrame(frame->pixels).image(), expected[size_t(i)]) << i;
    }
    EXPECT_EQ(buffers.size(), 1u);
}
