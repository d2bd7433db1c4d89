#include <VextilToolkit/VextilCameraAuthorization.h>
#include <VextilToolkit/VextilFace.h>
#include <VextilToolkit/VextilVideoFileSource.h>

#include "ReferenceServer.h"
#include "review/VextilConfirmView.h"
#include "tutorial/VextilTutorialFace.h"
#include "ui/NavigationBarView.h"

#include <QDir>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// The whole flow on the offscreen platform: the sample clip, looping, stands in for the camera.
class FaceFlowTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        host.resize(390, 844);
        host.show();
        face->setRootController(&host);
        face->presentTutorial(false);
        face->setFrameSourceFactory([] { return std::make_unique<VextilVideoFileSource>(VEXTIL_SELFIE_CLIP, true); });
        VextilCameraAuthorization::setHooks({}, {}, {});
        VextilRepository::sharedInstance()->resetAllImages();
    }

    void TearDown() override
    {
        // The flow's screens go with deleteLater: let that happen before the next test.
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void requestFace()
    {
        face->requestFace([this](bool success, std::optional<VextilError> error) {
            ++reports;
            lastSuccess = success;
            lastError = error;
            screensGoneAtReport = !face->faceCameraViewController() && !face->confirmController();
        });
    }

    bool waitForReview(int ms = 30000)
    {
        return QTest::qWaitFor([&] { return face->confirmController() && face->confirmController()->isVisible(); }, ms);
    }

    static void press(QAbstractButton *button) { QTest::mousePress(button, Qt::LeftButton); }

    QWidget host;
    VextilFace *face = VextilFace::sharedInstance();
    int reports = 0;
    bool lastSuccess = false;
    bool screensGoneAtReport = false;
    std::optional<VextilError> lastError;
};

TEST_F(FaceFlowTest, CaptureReviewAcceptAndUploadEndToEnd)
{
    requestFace();
    ASSERT_TRUE(waitForReview()) << "the capture did not complete";
    auto *store = VextilRepository::sharedInstance();
    EXPECT_EQ(store->getFaceImages()->size(), 5);
    EXPECT_EQ(store->getFaceSmileImagess()->size(), 2);
    EXPECT_TRUE(QTest::qWaitFor([&] { return face->confirmController()->confirmView()->animationImages().size() == 7; }, 2000));

    press(face->confirmController()->confirmView()->acceptButton());
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == 1; }, 5000));
    EXPECT_TRUE(lastSuccess);
    EXPECT_FALSE(lastError.has_value());
    EXPECT_TRUE(screensGoneAtReport);
    EXPECT_EQ(face->rootController(), nullptr);

    ReferenceServer server;
    qputenv("VEXTIL_UPLOAD_HOST", server.host().toUtf8());
    qputenv("VEXTIL_UPLOAD_CA_FILE", server.authorityFile().toUtf8());
    store->setAuthKey(QString::fromLatin1(ReferenceServer::kKey));
    std::atomic<int> sent{0};
    std::optional<QVariantMap> answer;
    face->sendFaceDataWithCallback([&](std::optional<QVariantMap> a, std::optional<VextilError> e) {
        answer = a;
        EXPECT_FALSE(e.has_value());
        ++sent;
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return sent == 1; }, 20000));
    EXPECT_EQ(answer->value("token").toString().size(), 32);
    ASSERT_EQ(server.uploadFolders().size(), 1);
    const QStringList stored = QDir(server.uploadFolders().first()).entryList({"*.jpeg"});
    EXPECT_EQ(stored.size(), 7);
    EXPECT_TRUE(QFile::exists(QDir(server.uploadFolders().first()).filePath("META_INFOS.json")));
    EXPECT_EQ(store->getFaceImages(), nullptr) << "a successful upload clears the store";
}

TEST_F(FaceFlowTest, RetakeThenAcceptReportsOnce)
{
    requestFace();
    ASSERT_TRUE(waitForReview());
    press(face->confirmController()->confirmView()->cancelButton());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !face->confirmController()->isVisible(); }, 2000));
    EXPECT_EQ(VextilRepository::sharedInstance()->getFaceImages(), nullptr) << "the rejected capture is dropped";
    EXPECT_EQ(reports, 0);

    ASSERT_TRUE(waitForReview(40000)) << "the second capture did not complete";
    press(face->confirmController()->confirmView()->acceptButton());
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == 1; }, 5000));
    QTest::qWait(200);
    EXPECT_EQ(reports, 1);
    EXPECT_TRUE(lastSuccess);
}

TEST_F(FaceFlowTest, CancelOnTheCameraScreenReports421AndASecondRequestBuildsNewScreens)
{
    requestFace();
    ASSERT_TRUE(QTest::qWaitFor([&] { return face->faceCameraViewController() && face->faceCameraViewController()->isVisible(); }, 3000));
    QPointer<VextilFaceCameraViewController> first = face->faceCameraViewController();
    press(first->navigationView()->backButton());
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == 1; }, 5000));
    EXPECT_FALSE(lastSuccess);
    ASSERT_TRUE(lastError.has_value());
    EXPECT_EQ(lastError->code, 421);
    EXPECT_EQ(face->confirmController(), nullptr) << "no review was shown";
    EXPECT_TRUE(QTest::qWaitFor([&] { return first.isNull(); }, 2000)) << "the screen was dropped";

    requestFace();
    ASSERT_TRUE(QTest::qWaitFor([&] { return face->faceCameraViewController() != nullptr; }, 3000));
    EXPECT_NE(face->faceCameraViewController()->model(), nullptr);
    face->faceCameraViewController()->didCancel();
    EXPECT_TRUE(QTest::qWaitFor([&] { return reports == 2; }, 5000));
}

TEST_F(FaceFlowTest, PermissionPathsEndIn421OrLeaveTheScreenForSettings)
{
    int settingsOpened = 0;
    VextilCameraAuthorization::setHooks([] { return VextilCameraAuthorization::NotDetermined; },
                                        [](std::function<void(bool)> answer) {
                                            std::thread([answer] { answer(false); }).detach();  // refused, off the GUI thread
                                        },
                                        [&] { ++settingsOpened; });
    requestFace();
    ASSERT_TRUE(QTest::qWaitFor([&] { return face->faceCameraViewController() && face->faceCameraViewController()->alert(); }, 5000));
    QMessageBox *alert = face->faceCameraViewController()->alert();
    EXPECT_EQ(alert->windowTitle(), "Error");
    EXPECT_EQ(alert->text(), "You need to allow this app to access this device's camera.");
    ASSERT_EQ(alert->buttons().size(), 2);
    EXPECT_EQ(alert->buttons()[0]->text(), "Settings");
    EXPECT_EQ(alert->buttons()[1]->text(), "Cancel");

    alert->buttons()[0]->click();
    QTest::qWait(100);
    EXPECT_EQ(settingsOpened, 1);
    EXPECT_EQ(reports, 0) << "Settings leaves the screen up";

    VextilCameraAuthorization::setHooks([] { return VextilCameraAuthorization::Denied; }, {}, {});
    face->faceCameraViewController()->willEnterForeground();
    ASSERT_TRUE(QTest::qWaitFor([&] { return face->faceCameraViewController()->alert() != nullptr; }, 2000));
    face->faceCameraViewController()->alert()->buttons()[1]->click();
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == 1; }, 5000));
    EXPECT_EQ(lastError->code, 421);

    VextilCameraAuthorization::setHooks([] { return VextilCameraAuthorization::Restricted; }, {}, {});
    requestFace();
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == 2; }, 5000)) << "restricted fails at once";
    EXPECT_EQ(lastError->code, 421);
}

TEST_F(FaceFlowTest, NoFrameReachesTheModelWhileTheTutorialIsUp)
{
    face->presentTutorial(true);
    requestFace();
    ASSERT_TRUE(QTest::qWaitFor([&] { return face->faceCameraViewController() && face->faceCameraViewController()->isVisible(); }, 3000));
    VextilFaceCameraViewController *camera = face->faceCameraViewController();
    QTest::qWait(2500);  // the clip shows a near face from its first second
    EXPECT_TRUE(camera->isPresentingTutorial());
    EXPECT_GT(camera->captureStats().delivered, 10);
    EXPECT_FALSE(camera->model()->lastFrameDate().has_value()) << "the model saw no frame";

    auto *tutorial = camera->findChild<VextilTutorialFace *>();
    ASSERT_NE(tutorial, nullptr);
    press(tutorial->nextButton());
    EXPECT_TRUE(QTest::qWaitFor([&] { return camera->model()->lastFrameDate().has_value(); }, 10000));
    camera->didCancel();
    EXPECT_TRUE(QTest::qWaitFor([&] { return reports == 1; }, 5000));
}

TEST_F(FaceFlowTest, AFailedSendKeepsTheImagesForARetry)
{
    auto *store = VextilRepository::sharedInstance();
    store->setAuthKey(QString::fromLatin1(ReferenceServer::kKey));
    QImage image(40, 60, QImage::Format_RGB32);
    image.fill(Qt::gray);
    store->setFaceImages(std::make_shared<QList<QImage>>(5, image));
    store->setFaceSmileImages(std::make_shared<QList<QImage>>(2, image));
    for (const auto &[args, failed] : {std::pair{QStringList{"--status", "500"}, true}, {QStringList{}, false}}) {
        ReferenceServer server(args);
        qputenv("VEXTIL_UPLOAD_HOST", server.host().toUtf8());
        qputenv("VEXTIL_UPLOAD_CA_FILE", server.authorityFile().toUtf8());
        std::atomic<int> sent{0};
        face->sendFaceDataWithCallback([&](std::optional<QVariantMap>, std::optional<VextilError> e) {
            EXPECT_EQ(e.has_value(), failed);
            ++sent;
        });
        ASSERT_TRUE(QTest::qWaitFor([&] { return sent == 1; }, 20000));
        EXPECT_EQ(store->getFaceImages() != nullptr, failed) << "kept after a failure, dropped after success";
    }
}

}  // namespace
