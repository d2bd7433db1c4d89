#include <VextilToolkit/VextilFaceCameraViewController.h>
#include <VextilToolkit/VextilVideoFileSource.h>

#include "widgets/capture/VextilFaceCameraView.h"
#include "widgets/capture/VextilFaceProgressBar.h"
#include "widgets/capture/VextilFaceProgressBoxView.h"
#include "widgets/capture/VextilVideoPreview.h"
#include "GuidedClips.h"
#include "ManualSource.h"
#include "QtPrinters.h"
#include "widgets/tutorial/VextilTutorialFace.h"

#include <QAccessible>
#include <QTest>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

void settle() { QTest::qWait(50); }

// The camera screen over `host`, without the tutorial, fed only by the test; null if it never shows.
VextilFaceCameraViewController *presentCameraScreen(QWidget &host)
{
    auto *camera = new VextilFaceCameraViewController;
    camera->setPresentTutorial(false);
    camera->setFrameSource(std::make_unique<ManualSource>());
    VextilBaseViewController::present(&host, camera, false);
    if (!QTest::qWaitFor([&] { return camera->isVisible(); }, 2000))
        return nullptr;
    settle();  // the reset's own updates land first
    return camera;
}

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
    VextilFaceCameraViewController *camera = presentCameraScreen(host);
    ASSERT_NE(camera, nullptr);
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

// The white face frame's extent across the middle of the camera view, with no picture behind it:
// its width along the middle row and its height along the middle column, tick marks included.
QSizeF faceFrameExtent(const QImage &shot)
{
    const auto white = [&](int x, int y) { return qGray(shot.pixel(x, y)) > 200; };
    int left = -1, right = -1, top = -1, bottom = -1;
    const int row = shot.height() / 2, column = shot.width() / 2;
    for (int x = 0; x < shot.width(); ++x)
        if (white(x, row)) {
            left = left < 0 ? x : left;
            right = x;
        }
    for (int y = 0; y < shot.height(); ++y)
        if (white(column, y)) {
            top = top < 0 ? y : top;
            bottom = y;
        }
    return left < 0 || top < 0 ? QSizeF() : QSizeF(right - left + 1, bottom - top + 1);
}

// In a window of any shape the camera screen lays itself out in a portrait region: the face
// frame keeps the shape it has on a phone, uncut, and where the view is at least as wide as on
// a phone (taller views show the frame larger), it takes the same share of the view's width,
// which the near-enough test measures against.
TEST(FaceCameraScreen, TheFaceFrameKeepsItsPhoneShapeInAnyWindow)
{
    QSizeF phoneFrame;
    for (const QSize window : {QSize(390, 844), QSize(1280, 800), QSize(844, 390), QSize(800, 2000)}) {
        SCOPED_TRACE(QStringLiteral("%1x%2").arg(window.width()).arg(window.height()).toStdString());
        QWidget host;
        host.resize(window);
        host.show();
        VextilFaceCameraViewController *camera = presentCameraScreen(host);
        ASSERT_NE(camera, nullptr);
        VextilFaceCameraView *view = camera->faceCameraView();
        const QRect placed(view->mapTo(&host, QPoint(0, 0)), view->size());
        const double aspect = double(placed.width()) / placed.height();
        EXPECT_LE(aspect, 0.9 + 0.01) << "never much wider than tall";
        EXPECT_NEAR(placed.center().x(), window.width() / 2.0, 1.5) << "centred";
        EXPECT_TRUE(host.rect().contains(placed));
        EXPECT_EQ(camera->model()->viewSize(), QSizeF(view->size())) << "what the near-enough test measures against";

        const QSizeF frame = faceFrameExtent(view->grab().toImage());
        ASSERT_TRUE(frame.isValid()) << "no face frame drawn";
        EXPECT_LT(frame.height(), view->height() - 2) << "the frame is cut at the view's edges";
        if (!phoneFrame.isValid())
            phoneFrame = frame;
        EXPECT_NEAR(frame.width() / frame.height(), phoneFrame.width() / phoneFrame.height(), 0.03)
            << "the frame's shape";
        if (aspect >= 390.0 / 618 - 0.01) {
            EXPECT_NEAR(frame.width() / view->width(), phoneFrame.width() / 390, 0.03) << "its share of the width";
        }
        camera->dismissViewControllerAnimated(false);
        QTest::qWait(20);
    }
}

TEST(FaceProgressBox, LaysOutLabelAboveTheBarAndAnimatesToTheLastValue)
{
    VextilFaceProgressBoxView box;
    box.resize(390, 150);
    box.show();
    const QRect bar = box.faceProgressBar()->geometry(), label = box.instructionsLabel()->geometry();
    EXPECT_EQ(bar.size(), QSize(312, 15));
    EXPECT_NEAR(bar.center().y(), 85, 1) << "centre 10 below the box's";
    // The text's line is 20 high, 30 above the bar; the label has 6 more above and below, for
    // its focus ring, and keeps the text where the line puts it.
    EXPECT_EQ(label.size(), QSize(390, 20 + 12));
    EXPECT_EQ(label.bottom() + 1 - 6, bar.top() - 30);
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

namespace {

// A desktop window and a laptop's webcam, the user at first too far for the camera view: the
// screen says so, once, where the instructions are, and the capture goes on once they come closer.
TEST(FaceCameraScreen, ADesktopUserTooFarIsToldToComeCloserOnceAndTheCaptureGoesOn)
{
    QWidget host;
    host.resize(1280, 800);
    host.show();
    auto *camera = new VextilFaceCameraViewController;
    camera->setPresentTutorial(false);
    camera->setFrameSource(std::make_unique<VextilVideoFileSource>(guidedClipPath(QStringLiteral("guided_closer_desktop"))));
    VextilBaseViewController::present(&host, camera, false);
    VextilLabel *instructions = camera->faceProgressBoxView()->instructionsLabel();
    // What a screen reader says: the focused status line's name, each time it changes.
    QStringList said;
    const auto hear = [&] {
        const QString name = QAccessible::queryAccessibleInterface(instructions)->text(QAccessible::Name);
        if (said.isEmpty() || said.last() != name)
            said.append(name);
    };
    ASSERT_TRUE(QTest::qWaitFor([&] { hear(); return instructions->fullText() == "Move closer"; }, 15000))
        << instructions->fullText().toStdString();
    EXPECT_TRUE(instructions->isVisible());
    ASSERT_TRUE(QTest::qWaitFor([&] { hear(); return said.contains("Checking your face, photo 1 of 5"); }, 15000))
        << "heard: " << said.join(" | ").toStdString();
    EXPECT_EQ(said.count("Move closer"), 1) << "heard: " << said.join(" | ").toStdString();
    delete camera;
}

}  // namespace
