#include "capture/VextilFaceTrack.h"

#include <QPainter>

#include <gtest/gtest.h>

#include <cmath>

namespace {

using Step = VextilFaceTrack::Step;

constexpr double kFrame = 1.0 / 15;  // a 15 fps camera
const QSizeF kView(400, 400);        // as large as the picture: one view pixel is one image pixel

// A 400 x 400 picture of `grey`, with a face-sized patch of its own at `face` (origin top left).
QImage scene(int grey, QRectF face = {}, int faceGrey = 180)
{
    QImage image(400, 400, QImage::Format_RGB32);
    image.fill(QColor(grey, grey, grey));
    if (!face.isEmpty())
        QPainter(&image).fillRect(face, QColor(faceGrey, faceGrey, faceGrey));
    return image;
}

// A face of `side` pixels centred at `centre` (origin top left) in a 400-pixel-high picture.
VextilFaceFeature faceAt(QPointF centre, double side = 200)
{
    return {QRectF(centre.x() - side / 2, 400 - centre.y() - side / 2, side, side)};
}

class FaceTrackTest : public ::testing::Test {
protected:
    Step follow(const VextilFaceFeature &face, const QImage &image = scene(120))
    {
        t += kFrame;
        return track.follow(image, face, kView, t);
    }
    Step miss()
    {
        t += kFrame;
        return track.follow(scene(120), std::nullopt, kView, t);
    }

    VextilFaceTrack track;
    double t = 0;
};

TEST_F(FaceTrackTest, FollowsAHeadThatMovesAsHeadsDoAndBreaksWhenTheFaceJumps)
{
    EXPECT_EQ(follow(faceAt({200, 200})), Step::Started);
    const quint64 first = track.id();
    // A brisk head movement: 1.5 face widths a second.
    for (int i = 1; i <= 5; ++i)
        EXPECT_EQ(follow(faceAt({200 + 20.0 * i, 200})), Step::Continued) << "frame " << i;
    EXPECT_NEAR(track.current().shift, 0.1, 1e-9);
    EXPECT_EQ(track.id(), first);

    // Half a face width from one frame to the next: no head moves so.
    EXPECT_EQ(follow(faceAt({400, 200})), Step::Broken);
    EXPECT_EQ(track.lastBreak(), VextilFaceTrack::Break::Jumped);
    EXPECT_NE(track.id(), first) << "what was learnt of one face is not the next one's";
    EXPECT_EQ(track.history().size(), 1u) << "the new track starts with the face that broke the old one";

    // The same distance over a longer time is a movement, not a jump.
    t += 0.2;
    EXPECT_EQ(follow(faceAt({300, 200})), Step::Continued);
}

TEST_F(FaceTrackTest, AFaceThatGrowsOrShrinksAtOnceBreaksTheTrackWhileOneThatComesCloserDoesNot)
{
    follow(faceAt({200, 200}, 200));
    for (double side : {210.0, 220.0, 231.0})
        EXPECT_EQ(follow(faceAt({200, 200}, side)), Step::Continued);
    EXPECT_EQ(follow(faceAt({200, 200}, 300)), Step::Broken);
    EXPECT_EQ(track.lastBreak(), VextilFaceTrack::Break::Resized);
}

TEST_F(FaceTrackTest, ASceneSwappedAroundAStillFaceBreaksTheTrackButAMovingCameraDoesNot)
{
    const QRectF face(100, 100, 200, 200);
    follow(faceAt(face.center()), scene(200, face));
    EXPECT_EQ(follow(faceAt(face.center()), scene(200, face)), Step::Continued);
    // Everything but the face changes from one frame to the next: another photo in its place.
    EXPECT_EQ(follow(faceAt(face.center()), scene(40, face)), Step::Broken);
    EXPECT_EQ(track.lastBreak(), VextilFaceTrack::Break::SceneCut);

    // The same change while the face moves is the camera moving: the face's own jumps judge it.
    const QRectF moved = face.translated(20, 0);
    EXPECT_EQ(follow(faceAt(moved.center()), scene(200, moved)), Step::Continued);
}

TEST_F(FaceTrackTest, OneFramelessFrameIsWaitedForAndTheSecondEndsTheTrack)
{
    follow(faceAt({200, 200}));
    const quint64 first = track.id();
    EXPECT_EQ(miss(), Step::Missed);
    EXPECT_TRUE(track.isFollowing());
    EXPECT_EQ(follow(faceAt({210, 200})), Step::Continued);
    EXPECT_EQ(track.id(), first);

    EXPECT_EQ(miss(), Step::Missed);
    EXPECT_EQ(miss(), Step::Lost);
    EXPECT_FALSE(track.isFollowing());
    EXPECT_EQ(miss(), Step::NoFace);
    EXPECT_EQ(follow(faceAt({210, 200})), Step::Started);
    EXPECT_NE(track.id(), first);

    const quint64 second = track.id();
    track.reset();
    EXPECT_FALSE(track.isFollowing());
    EXPECT_EQ(follow(faceAt({210, 200})), Step::Started);
    EXPECT_NE(track.id(), second);
}

TEST_F(FaceTrackTest, TheEyesPlaceTheFaceSoASmileThatStretchesTheBoxMovesNothing)
{
    // Key points, origin bottom left: the eyes stay, the box grows down as the mouth opens.
    VextilFaceFeature resting = faceAt({200, 200}, 200), smiling = faceAt({200, 215}, 230);
    resting.keyPoints = smiling.keyPoints = {{160, 240}, {240, 240}, {200, 200}, {200, 160}};
    follow(resting);
    EXPECT_EQ(follow(smiling), Step::Continued);
    EXPECT_DOUBLE_EQ(track.current().shift, 0);
    EXPECT_DOUBLE_EQ(track.current().resize, 0);
    EXPECT_EQ(track.current().lookBox, track.history().front().lookBox) << "the look is taken where the eyes say";
}

TEST_F(FaceTrackTest, ItMeasuresTheFaceAgainstTheViewAndItsLookStepsThroughTheSameBox)
{
    // A 400 x 400 picture fitted into a 100 x 200 view: a quarter of the size.
    track.follow(scene(120), faceAt({260, 200}, 240), QSizeF(100, 200), 0);
    EXPECT_DOUBLE_EQ(track.current().widthInView, 0.6);
    EXPECT_DOUBLE_EQ(track.current().offsetInView.x(), 60.0 / 4 / 100);
    EXPECT_DOUBLE_EQ(track.current().offsetInView.y(), 0);
    EXPECT_TRUE(std::isnan(VextilFaceTrack::widthInView(QRectF(0, 0, 10, 10), QSizeF(400, 400), QSizeF())));

    // The face's picture changes (a mouth opens) while the detector's box wanders.
    track.reset();
    const QRectF face(100, 100, 200, 200);
    track.follow(scene(120, face), faceAt(face.center()), kView, 1);
    QImage opened = scene(120, face);
    QPainter(&opened).fillRect(QRectF(150, 230, 100, 40), Qt::white);
    track.follow(opened, faceAt(face.center() + QPointF(5, 0)), kView, 1 + kFrame);
    EXPECT_GT(track.current().lookChange.size(), 5) << "the mouth's change";
    track.follow(opened, faceAt(face.center() + QPointF(10, 0)), kView, 1 + 2 * kFrame);
    EXPECT_LT(track.current().lookChange.size(), 1) << "a box that moves over an unchanged picture changes no look";
}

TEST_F(FaceTrackTest, ItsSpeedIsTheMeanOverTheLastFewTenthsOfASecond)
{
    follow(faceAt({100, 200}));
    for (int i = 1; i <= 10; ++i)
        follow(faceAt({100 + 10.0 * i, 200}));  // 0.05 face widths a frame
    EXPECT_NEAR(track.speed(), 0.75, 1e-6);
    for (int i = 0; i < 10; ++i)
        follow(faceAt({200, 200}));
    EXPECT_DOUBLE_EQ(track.speed(), 0);
}

}  // namespace
