#include <VextilToolkit/VextilFaceCameraViewController.h>

#include "capture/VextilFaceCameraView.h"
#include "capture/VextilFaceProgressBar.h"
#include "capture/VextilFaceProgressBoxView.h"
#include "capture/VextilVideoPreview.h"
#include "ManualSource.h"
#include "tutorial/VextilTutorialFace.h"

#include <QTest>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

void settle() { QTest::qWait(50); }

TEST(FaceCameraView, StartsWhiteAndEachToggleSwapsTheFrames)
{
    VextilFaceCameraView view;
    view.resize(390, 618);
    view.show();  // widgets lay out once shown
    EXPECT_FALSE(view.whiteMaskView()->isHidden());
    EXPECT_TRUE(view.greenMaskView()->isHidden());
    EXPECT_TRUE(view.popupView()->isHidden());
    EXPECT_TRUE(view.popupLabel()->isHidden());
    EXPECT_EQ(view.popupLabel()->fullText(), "SMILE!");

    for (int i = 0; i < 3; ++i)
        view.changeMaskState();
    EXPECT_FALSE(view.greenMaskView()->isHidden()) << "an odd number of toggles leaves green";
    EXPECT_TRUE(view.whiteMaskView()->isHidden());
    view.isPopupHidden(false);
    EXPECT_FALSE(view.popupView()->isHidden());
    EXPECT_FALSE(view.popupLabel()->isHidden());
    view.changeMaskState();
    view.isPopupHidden(true);
    EXPECT_FALSE(view.whiteMaskView()->isHidden());
    EXPECT_TRUE(view.greenMaskView()->isHidden());
    EXPECT_TRUE(view.popupLabel()->isHidden());
}

TEST(FaceCameraScreen, ConvertsOnlyTheFramesItAnalysesAndNoneUnderTheTutorial)
{
    QWidget host;
    host.resize(390, 844);
    host.show();
    auto *camera = new VextilFaceCameraViewController;
    auto source = std::make_unique<ManualSource>();
    ManualSource *feed = source.get();
    camera->setFrameSource(std::move(source));
    VextilBaseViewController::present(&host, camera, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return camera->isVisible(); }, 2000));
    std::atomic<int> conversions{0};
    const auto lazyFrame = [&] {
        return VextilCameraFrame(QSize(1280, 720), [&] {
            ++conversions;
            QImage image(1280, 720, QImage::Format_RGB32);
            image.fill(Qt::darkGray);
            return image;
        });
    };
    ASSERT_TRUE(camera->isPresentingTutorial());
    for (int i = 0; i < 5; ++i)
        feed->push(lazyFrame());
    ASSERT_TRUE(QTest::qWaitFor([&] { const auto s = camera->captureStats(); return s.analysed + s.dropped == 5; }, 5000));
    EXPECT_EQ(conversions, 0) << "ignored under the tutorial";
    const int analysedUnderTutorial = camera->captureStats().analysed;

    Q_EMIT camera->findChild<VextilTutorialFace *>()->nextButton()->pressed();
    ASSERT_TRUE(QTest::qWaitFor([&] { return !camera->isPresentingTutorial(); }, 2000));
    for (int i = 0; i < 30; ++i)
        feed->push(lazyFrame());
    ASSERT_TRUE(QTest::qWaitFor([&] { const auto s = camera->captureStats(); return s.analysed + s.dropped == 35; }, 5000));
    EXPECT_GT(conversions, 0);
    EXPECT_EQ(conversions, camera->captureStats().analysed - analysedUnderTutorial)
        << "each analysed frame once, dropped ones never";
    const QImage shown = camera->faceCameraView()->videoPreviewLayer()->frame();
    EXPECT_EQ(shown.size(), QSize(454, 720)) << "the preview shows the region the view shows";
    EXPECT_TRUE(camera->faceCameraView()->videoPreviewLayer()->isMirrored()) << "a selfie preview";
    delete camera;
}

TEST(FaceCameraScreen, CarriesTheModelsCallsFromTheCaptureThreadToItsViewsInCallOrder)
{
    QWidget host;
    host.resize(390, 844);
    host.show();
    auto *camera = new VextilFaceCameraViewController;
    camera->setPresentTutorial(false);
    camera->setFrameSource(std::make_unique<ManualSource>());
    VextilBaseViewController::present(&host, camera, false);
    ASSERT_TRUE(QTest::qWaitFor([&] { return camera->isVisible(); }, 2000));
    settle();  // the reset's own updates land first
    VextilFaceCameraView *view = camera->faceCameraView();
    VextilFaceProgressBoxView *box = camera->faceProgressBoxView();
    ASSERT_TRUE(view->greenMaskView()->isHidden());

    std::thread capture([&] {
        camera->updateMessageText(QStringLiteral("Checking your face"));
        camera->updateProgressView(0.2);
        camera->updateProgressView(0.4);
        for (int i = 0; i < 3; ++i)
            camera->changeMaskState();
        camera->isPopupViewHidden(false);
        camera->isPopupViewHidden(true);
        camera->isPopupViewHidden(false);
        camera->isProgressBarHidden(true);
    });
    capture.join();
    EXPECT_TRUE(view->greenMaskView()->isHidden()) << "nothing changes off the GUI thread";
    settle();
    EXPECT_EQ(box->instructionsLabel()->fullText(), "Checking your face");
    EXPECT_EQ(box->faceProgressBar()->strokeEnd(), 0.4) << "the last value wins";
    EXPECT_FALSE(view->greenMaskView()->isHidden()) << "three toggles, applied in order, leave green";
    EXPECT_FALSE(view->popupView()->isHidden());
    EXPECT_TRUE(box->faceProgressBar()->isHidden());
    camera->dismissViewControllerAnimated(false);
    QTest::qWait(50);
    delete camera;
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
    box.updateInstructionsLabelWithText("Checking your face");
    box.updateProgress(0.2);
    box.updateProgress(0.6);  // replaces the running animation
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
