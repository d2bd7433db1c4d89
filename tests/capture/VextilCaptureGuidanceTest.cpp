#include "capture/VextilCaptureGuidance.h"
#include "capture/VextilFaceTrack.h"

#include <gtest/gtest.h>

namespace {

using Hint = VextilCaptureGuidance::Hint;

constexpr double kFrame = 1.0 / 15;

QImage grey(int level)
{
    QImage image(400, 400, QImage::Format_RGB32);
    image.fill(QColor(level, level, level));
    return image;
}

// A face of `side` pixels centred at `centre` (origin top left) in a 400-pixel-high picture.
VextilFaceFeature faceAt(QPointF centre, double side = 200)
{
    return {QRectF(centre.x() - side / 2, 400 - centre.y() - side / 2, side, side)};
}

// What a user whose face is found is told, and that a face filling the oval is told nothing.
TEST(CaptureGuidance, AFaceThatFillsTheOvalIsReadyAndEveryOtherIsToldTheFirstThingToDo)
{
    const auto hintFor = [](const VextilFaceFeature &face, const QImage &picture, QSizeF view = QSizeF(400, 400)) {
        VextilFaceTrack track;
        track.follow(picture, face, view, 0);
        return VextilCaptureGuidance::of(track);
    };
    const QImage lit = grey(130);
    EXPECT_EQ(hintFor(faceAt({200, 190}, 265), lit), Hint::None) << "two thirds of the view, centred: the oval";
    EXPECT_EQ(hintFor(faceAt({200, 200}, 160), lit), Hint::MoveCloser) << "40% of the view";
    EXPECT_EQ(hintFor(faceAt({200, 200}, 164), lit), Hint::None);
    EXPECT_EQ(hintFor(faceAt({200, 200}, 332), lit), Hint::MoveBack) << "83% of the view";
    EXPECT_EQ(hintFor(faceAt({200, 200}, 328), lit), Hint::None);
    EXPECT_EQ(hintFor(faceAt({262, 200}), lit), Hint::CenterFace) << "0.155 of the view's width aside";
    EXPECT_EQ(hintFor(faceAt({258, 200}), lit), Hint::None);
    EXPECT_EQ(hintFor(faceAt({200, 110}), lit), Hint::CenterFace) << "0.225 of the view's height up";
    EXPECT_EQ(hintFor(faceAt({200, 115}), lit), Hint::None) << "the forehead at the oval's top is fine";
    EXPECT_EQ(hintFor(faceAt({200, 200}), grey(40)), Hint::MoreLight);
    EXPECT_EQ(hintFor(faceAt({200, 200}), grey(50)), Hint::None);
    EXPECT_EQ(hintFor(faceAt({200, 200}, 100), grey(40)), Hint::MoveCloser) << "distance is asked first";
    EXPECT_EQ(hintFor(faceAt({200, 200}), lit, QSizeF()), Hint::Unmeasured) << "no view laid out yet";
    EXPECT_EQ(VextilCaptureGuidance::of(VextilFaceTrack()), Hint::None) << "no face: nothing to ask";

    VextilFaceTrack moving;
    for (int i = 0; i < 8; ++i)
        moving.follow(lit, faceAt({170 + 9.0 * i, 200}), QSizeF(400, 400), i * kFrame);  // 0.68 face widths a second
    EXPECT_EQ(VextilCaptureGuidance::of(moving), Hint::HoldStill);

    EXPECT_EQ(VextilCaptureGuidance::text(Hint::MoveCloser), "Move closer");
    EXPECT_TRUE(VextilCaptureGuidance::text(Hint::None).isEmpty());
}

}  // namespace
