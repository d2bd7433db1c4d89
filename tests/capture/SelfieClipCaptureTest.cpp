#include "ClipRun.h"
#include "GuidedClips.h"
#include "detection/VextilCascadeFaceDetector.h"
#include "detection/VextilLearnedFaceDetector.h"

#include <gtest/gtest.h>

namespace {

// The cascade detector wants visible teeth for a smile, which the sample clip's grown smile
// (another photo's smile on this face) shows too faintly; it must still follow the face and
// collect the neutral images at the pace.
TEST(SelfieClipCapture, TheCascadeDetectorFollowsTheSampleClipAndCollectsItsNeutralImages)
{
    const ClipRunResult run =
        runClip(QStringLiteral(VEXTIL_SELFIE_CLIP), std::make_shared<VextilCascadeFaceDetector>());
    ASSERT_TRUE(run.opened) << VEXTIL_SELFIE_CLIP;
    ASSERT_GE(run.neutralTakenSeconds.size(), 5);
    EXPECT_EQ(run.fallbacks, 0);
    EXPECT_GE(run.firstNeutralSeconds, 1.0) << "the clip opens on an empty room";
    // Five neutral images a second apart.
    for (int i = 1; i < 5; ++i)
        EXPECT_GE(run.neutralTakenSeconds[i] - run.neutralTakenSeconds[i - 1], 1.0);
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

// A still neutral photo, then a smiling photo of the same person put in its place: from one
// frame to the next, slid in as on a phone's screen, or behind a hand.
TEST(SelfieClipCapture, APhotoSwappedForAnotherNeverCompletes)
{
    const QStringList swaps = clipList(VEXTIL_SWAP_CLIPS);
    ASSERT_EQ(swaps.size(), 9);
    for (const QString &clip : swaps) {
        SCOPED_TRACE(clip.toStdString());
        const ClipRunResult run = runClip(clip, std::make_shared<VextilLearnedFaceDetector>());
        ASSERT_TRUE(run.opened);
        EXPECT_EQ(run.neutralTakenSeconds.size(), 5) << "the neutral photo is taken as a face";
        EXPECT_FALSE(run.completed);
    }
}

// Users who start too far (a desktop window's camera view), too close, aside, in the dark or
// moving are told what to do within a second and a half of appearing, and then complete.
TEST(SelfieClipCapture, GuidedUsersAreToldWhatToDoInTimeAndThenComplete)
{
    const QStringList guided = clipList(VEXTIL_GUIDED_CLIPS);
    ASSERT_EQ(guided.size(), 6);
    for (const QString &clip : guided) {
        SCOPED_TRACE(clip.toStdString());
        const GuidedClip expected = guidedClip(clip);
        ASSERT_FALSE(expected.instruction.isEmpty());
        const ClipRunResult run = runClip(clip, std::make_shared<VextilLearnedFaceDetector>(), expected.view);
        const double shown = run.firstShown(expected.instruction);
        EXPECT_GE(shown, kFaceAppearsSeconds) << qPrintable(expected.instruction);
        EXPECT_LE(shown, kFaceAppearsSeconds + kGuidedWithinSeconds) << qPrintable(expected.instruction);
        EXPECT_TRUE(run.completed);
    }
}
