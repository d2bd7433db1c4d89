#include "ClipRun.h"
#include "detection/VextilCascadeFaceDetector.h"
#include "detection/VextilLearnedFaceDetector.h"

#include <gtest/gtest.h>

namespace {

TEST(SelfieClipCapture, TheRealDetectorCompletesTheSampleClipWithoutFallingBack)
{
    const ClipRunResult run =
        runClip(QStringLiteral(VEXTIL_SELFIE_CLIP), std::make_shared<VextilCascadeFaceDetector>());
    ASSERT_TRUE(run.opened) << VEXTIL_SELFIE_CLIP;
    ASSERT_TRUE(run.completed) << "after " << run.frames << " frames";
    EXPECT_EQ(run.storedNeutral, 5);
    EXPECT_EQ(run.storedSmiling, 2);
    EXPECT_EQ(run.fallbacks, 0);
    // Five neutral images a second apart, then two smiles a second apart each.
    EXPECT_GE(run.completionSeconds - run.firstNeutralSeconds, 6.0);
    EXPECT_GE(run.firstNeutralSeconds, 1.0) << "the clip opens on an empty room";
}

// Includes faces the detector reads as smiling at rest (a closed-lip smirk, a talking mouth) and a
// face lit from one side, each followed by someone else's smile.
TEST(SelfieClipCapture, TheLearnedDetectorCompletesEveryClipAtThePacingLimit)
{
    const QStringList clips = clipList(VEXTIL_SMILE_CLIPS);
    ASSERT_EQ(clips.size(), 6);
    for (const QString &clip : clips) {
        SCOPED_TRACE(qPrintable(clip));
        const ClipRunResult run = runClip(clip, std::make_shared<VextilLearnedFaceDetector>());
        ASSERT_TRUE(run.completed) << "after " << run.frames << " frames";
        EXPECT_EQ(run.storedNeutral, 5);
        EXPECT_EQ(run.storedSmiling, 2);
        EXPECT_EQ(run.fallbacks, 0);
        // The smile begins right after the fifth neutral image, so the first frame allowed a
        // second after each image must count: 6 s, give or take a frame.
        EXPECT_LE(run.completionSeconds - run.firstNeutralSeconds, 6.07);
    }
}

}  // namespace

TEST(SelfieClipCapture, StillPhotosNeverCompleteAndUsersWhoSmileEarlyGiveNoNeutralImageOfASmile)
{
    const QStringList stills = clipList(VEXTIL_STILL_CLIPS), early = clipList(VEXTIL_EARLY_SMILE_CLIPS);
    ASSERT_EQ(stills.size(), 7);
    for (const QString &clip : stills) {
        SCOPED_TRACE(clip.toStdString());
        const ClipRunResult run = runClip(clip, std::make_shared<VextilLearnedFaceDetector>());
        ASSERT_TRUE(run.opened);
        EXPECT_FALSE(run.completed) << "a still photo held up to the camera";
    }
    ASSERT_EQ(early.size(), 4);
    for (const QString &clip : early) {
        SCOPED_TRACE(clip.toStdString());
        const ClipRunResult run = runClip(clip, std::make_shared<VextilLearnedFaceDetector>());
        ASSERT_FALSE(run.neutralTakenSeconds.isEmpty());
        EXPECT_GE(run.neutralTakenSeconds.first(), kEarlySmileEndSeconds) << "a neutral image taken while smiling";
        EXPECT_TRUE(run.completed) << "the capture goes on once the face relaxes";
    }
}
