// Every screen and state of the Widgets face, at two phone sizes, a desktop window and a phone
// on its side, in the default colours and a host's, compared with reviewed pictures.
#include <VextilToolkit/VextilCameraAuthorization.h>
#include <VextilToolkit/VextilConfirmController.h>
#include <VextilToolkit/VextilFaceCameraViewController.h>
#include <VextilToolkit/VextilFrameSource.h>
#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilToolkitSettings.h>

#include "CameraPicture.h"
#include "PictureCheck.h"
#include "EveryLook.h"
#include "StillCamera.h"
#include "capture/VextilCameraWatchdog.h"
#include "widgets/capture/VextilFaceCameraView.h"
#include "widgets/capture/VextilFaceProgressBoxView.h"
#include "widgets/capture/VextilVideoPreview.h"
#include "core/VextilTexts.h"

#include <QApplication>
#include <QMessageBox>
#include <QPainter>
#include <QTest>

#include <gtest/gtest.h>

#include <functional>

namespace {

// Queued updates, and the progress bar's 0.5-s animation, run out.
void settle()
{
    QTest::qWait(650);
}

// The camera screen as the flow shows it, over a host window, its preview showing `frame`.
struct CameraScreen {
    QWidget host;
    VextilFaceCameraViewController *controller = nullptr;

    CameraScreen(QSize size, const QImage &frame, bool tutorial = false)
    {
        host.resize(size);
        host.show();
        controller = new VextilFaceCameraViewController;
        controller->setPresentTutorial(tutorial);
        controller->setFrameSource(std::make_unique<StillCamera>());
        VextilBaseViewController::present(&host, controller, false);
        settle();
        camera()->videoPreviewLayer()->setFrame(frame);
        settle();
    }
    VextilFaceCameraView *camera() const { return controller->faceCameraView(); }
    VextilFaceProgressBoxView *box() const { return controller->faceProgressBoxView(); }
    QImage picture() { return host.grab().toImage(); }
};

// What the user sees of a host window and a dialog over it.
QImage withDialog(QWidget &host, QWidget &dialog)
{
    QImage shot = host.grab().toImage();
    QPainter(&shot).drawPixmap(dialog.geometry().topLeft() - host.geometry().topLeft(), dialog.grab());
    return shot;
}

class WidgetScreenPictures : public ::testing::Test {
protected:
    void SetUp() override { usePictureFont(); }
    void TearDown() override
    {
        VextilToolkitSettings::sharedInstance()->setColorScheme(std::make_shared<VextilDefaultColorScheme>());
        VextilCameraAuthorization::setHooks({}, {}, {});
    }

    void check(const QString &state, const std::function<QImage(QSize)> &render)
    {
        checkEveryLook(QStringLiteral("widgets"), state, render);
    }
};

TEST_F(WidgetScreenPictures, TheTutorialOverTheCameraScreen)
{
    check(QStringLiteral("tutorial"), [](QSize size) {
        CameraScreen screen(size, cameraPicture(), true);
        return screen.picture();
    });
}

TEST_F(WidgetScreenPictures, TheCameraScreenLookingForAFace)
{
    check(QStringLiteral("camera-looking"), [](QSize size) {
        CameraScreen screen(size, cameraPicture());
        return screen.picture();
    });
}

TEST_F(WidgetScreenPictures, TheCameraScreenCollectingWithTheFaceFound)
{
    check(QStringLiteral("camera-collecting"), [](QSize size) {
        CameraScreen screen(size, cameraPicture());
        screen.camera()->changeMaskState();
        screen.box()->updateInstructionsLabelWithText(VextilTexts::tr("Checking your face"));
        screen.box()->updateProgress(0.6);
        settle();
        return screen.picture();
    });
}

TEST_F(WidgetScreenPictures, TheCameraScreenAskingForASmile)
{
    check(QStringLiteral("camera-smile"), [](QSize size) {
        CameraScreen screen(size, cameraPicture(true));
        screen.camera()->changeMaskState();
        screen.camera()->isPopupHidden(false);
        screen.box()->updateInstructionsLabelWithText(VextilTexts::tr("SMILE!"));
        screen.box()->isProgressBarHidden(true);
        settle();
        return screen.picture();
    });
}

TEST_F(WidgetScreenPictures, TheCameraScreenNamingACameraFault)
{
    check(QStringLiteral("camera-fault"), [](QSize size) {
        CameraScreen screen(size, QImage());
        screen.box()->updateInstructionsLabelWithText(VextilCameraWatchdog::message(VextilCameraWatchdog::Health::NoCamera));
        settle();
        return screen.picture();
    });
}

TEST_F(WidgetScreenPictures, TheCameraScreenGuidingTheUser)
{
    check(QStringLiteral("camera-move-closer"), [](QSize size) {
        CameraScreen screen(size, cameraPicture().scaled(360, 640).copy(-180, -320, 720, 1280));
        screen.box()->updateInstructionsLabelWithText(VextilTexts::tr("Move closer"));
        settle();
        return screen.picture();
    });
}

TEST_F(WidgetScreenPictures, TheCameraPermissionAlert)
{
    VextilCameraAuthorization::setHooks([] { return VextilCameraAuthorization::Denied; },
                                        [](auto answer) { answer(false); }, [] {});
    check(QStringLiteral("permission-alert"), [](QSize size) {
        CameraScreen screen(size, QImage());
        auto *alert = screen.controller->findChild<QMessageBox *>();
        if (!alert)
            return QImage();
        return withDialog(screen.host, *alert);
    });
}

TEST_F(WidgetScreenPictures, TheReview)
{
    auto *store = VextilRepository::sharedInstance();
    // One picture throughout: which of the playing images shows at a moment is the loop's
    // business (its own test), not the layout's.
    const QImage portrait = cameraPicture().copy(0, 69, 720, 1141);
    store->setFaceImages(std::make_shared<QList<QImage>>(5, portrait));
    store->setFaceSmileImages(std::make_shared<QList<QImage>>(2, portrait));
    check(QStringLiteral("review"), [](QSize size) {
        QWidget host;
        host.resize(size);
        host.show();
        auto *confirm = new VextilConfirmController;
        confirm->setModel(new VextilConfirmModel);
        VextilBaseViewController::present(&host, confirm, false);
        settle();
        return host.grab().toImage();
    });
}

}  // namespace
