#include <VextilToolkit/VextilFaceCameraView.h>
#include <VextilToolkit/VextilFaceProgressBoxView.h>

#include <QTest>

#include <gtest/gtest.h>

#include <thread>

namespace {

void settle() { QTest::qWait(20); }

TEST(FaceCameraView, StartsWhiteAndTogglesFromTheCaptureThreadInCallOrder)
{
    VextilFaceCameraView view;
    view.resize(390, 618);
    view.show();  // widgets lay out once shown
    EXPECT_FALSE(view.whiteMaskView()->isHidden());
    EXPECT_TRUE(view.greenMaskView()->isHidden());
    EXPECT_TRUE(view.popupView()->isHidden());
    EXPECT_TRUE(view.popupLabel()->isHidden());
    EXPECT_EQ(view.popupLabel()->fullText(), "SMILE!");

    std::thread capture([&] {
        for (int i = 0; i < 3; ++i)
            view.changeMaskState();
        view.isPopupHidden(false);
        view.isPopupHidden(true);
        view.isPopupHidden(false);
    });
    capture.join();
    EXPECT_TRUE(view.greenMaskView()->isHidden()) << "nothing changes off the GUI thread";
    settle();
    EXPECT_FALSE(view.greenMaskView()->isHidden()) << "an odd number of toggles leaves green";
    EXPECT_TRUE(view.whiteMaskView()->isHidden());
    EXPECT_FALSE(view.popupView()->isHidden()) << "the last call wins";
    EXPECT_FALSE(view.popupLabel()->isHidden());

    view.changeMaskState();
    settle();
    EXPECT_FALSE(view.whiteMaskView()->isHidden());
    EXPECT_TRUE(view.greenMaskView()->isHidden());
}

TEST(FaceCameraView, MasksCoverTheViewThePopupIsCentredAndTheLogoSitsTopRight)
{
    VextilFaceCameraView view;
    view.resize(390, 618);
    view.show();  // widgets lay out once shown
    EXPECT_EQ(view.whiteMaskView()->geometry(), QRect(0, 0, 390, 618));
    EXPECT_EQ(view.greenMaskView()->geometry(), view.whiteMaskView()->geometry());
    EXPECT_EQ(view.videoPreviewLayer()->geometry(), view.rect());
    EXPECT_EQ(view.popupView()->geometry(), QRect(120, 287, 150, 45));
    EXPECT_EQ(view.vextilLogoView()->geometry().topRight(), QPoint(389, 0));
    view.resize(1080, 1500);
    EXPECT_EQ(view.videoPreviewLayer()->geometry(), view.rect()) << "the picture follows the size";
}

TEST(FaceProgressBox, LaysOutLabelAboveTheBarAndAnimatesToTheLastValue)
{
    VextilFaceProgressBoxView box;
    box.resize(390, 150);
    box.show();
    const QRect bar = box.faceProgressBar()->geometry(), label = box.instructionsLabel()->geometry();
    EXPECT_EQ(bar.size(), QSize(312, 15));
    EXPECT_NEAR(bar.center().y(), 85, 1) << "centre 10 below the box's";
    EXPECT_EQ(label.size(), QSize(390, 20));
    EXPECT_EQ(label.bottom() + 1, bar.top() - 30);
    EXPECT_EQ(box.defaultColor(), QColor(Qt::white));

    VextilFaceProgressBar *progress = box.faceProgressBar();
    EXPECT_FALSE(progress->hasProgressBar()) << "drawn on the first update only";
    std::thread capture([&] {
        box.updateInstructionsLabelWithText("Checking your face");
        box.updateProgress(0.2);
        box.updateProgress(0.6);  // replaces the running animation
    });
    capture.join();
    settle();
    EXPECT_TRUE(progress->hasProgressBar());
    EXPECT_EQ(progress->strokeEnd(), 0.6);
    EXPECT_EQ(box.instructionsLabel()->fullText(), "Checking your face");
    EXPECT_TRUE(QTest::qWaitFor([&] { return progress->animation() == nullptr; }, 2000));
    EXPECT_DOUBLE_EQ(progress->displayedStrokeEnd(), 0.6);

    box.isProgressBarHidden(true);
    settle();
    EXPECT_TRUE(progress->isHidden());
    EXPECT_FALSE(box.instructionsLabel()->isHidden());
    box.isProgressBarHidden(false);
    settle();
    EXPECT_DOUBLE_EQ(progress->displayedStrokeEnd(), 0.6) << "showing it again keeps the fill";
}

}  // namespace
