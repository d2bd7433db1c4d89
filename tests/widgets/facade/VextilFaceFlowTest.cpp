#include <VextilToolkit/VextilCameraAuthorization.h>
#include <VextilToolkit/VextilFace.h>
#include <VextilToolkit/VextilVideoFileReader.h>
#include <VextilToolkit/VextilVideoFileSource.h>

#include "AliveGuard.h"
#include "ReferenceServer.h"
#include "widgets/capture/VextilFaceCameraView.h"
#include "widgets/review/VextilConfirmView.h"
#include "widgets/tutorial/VextilTutorialFace.h"
#include "widgets/ui/NavigationBarView.h"
#include "ClipPlayer.h"
#include "Presses.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QGuiApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

// A camera stand-in around a video file that counts how often it is started.
class CountingSource : public VextilFrameSource {
public:
    CountingSource(QString clip, std::atomic<int> &starts) : m_file(std::move(clip), true), m_starts(starts)
    {
        m_file.setFrameHandler([this](const VextilCameraFrame &frame) { deliver(frame); });
    }
    void start() override
    {
        ++m_starts;
        m_file.start();
    }
    void stop() override { m_file.stop(); }
    bool isRunning() const override { return m_file.isRunning(); }
    QString description() const override { return m_file.description(); }
    bool isAvailable() const override { return m_file.isAvailable(); }

private:
    VextilVideoFileSource m_file;
    std::atomic<int> &m_starts;
};

// The host's own surface: counts every press, touch, wheel turn and key that reaches it.
class HostSurface : public QWidget {
public:
    explicit HostSurface(QWidget *parent) : QWidget(parent)
    {
        setAttribute(Qt::WA_AcceptTouchEvents);
        setFocusPolicy(Qt::StrongFocus);
    }
    int reached = 0;

protected:
    bool event(QEvent *event) override
    {
        switch (event->type()) {
        case QEvent::MouseButtonPress: case QEvent::TouchBegin: case QEvent::Wheel: case QEvent::KeyPress:
            ++reached;
            event->accept();
            return true;
        default:
            return QWidget::event(event);
        }
    }
};

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

    // Where the user presses: on what is drawn at the button's place.
    static void press(QAbstractButton *button) { presses::pressWhereDrawn(button); }

    // Uploads go to the server, as a host sets it in code.
    static void useServer(const ReferenceServer &server)
    {
        auto *store = VextilRepository::sharedInstance();
        store->setUploadHost(server.host());
        QFile authority(server.authorityFile());
        ASSERT_TRUE(authority.open(QIODevice::ReadOnly));
        ASSERT_TRUE(store->setExtraCertificateAuthorities({authority.readAll()}));
    }

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
    // Each new instruction was measured from its frame to its paint.
    const QList<double> delays = face->faceCameraViewController()->captureStats().instructionDelayMs;
    EXPECT_FALSE(delays.isEmpty()) << "no instruction's felt delay was measured";
    for (double ms : delays)
        EXPECT_GE(ms, 0.0);

    press(face->confirmController()->confirmView()->acceptButton());
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == 1; }, 5000));
    EXPECT_TRUE(lastSuccess);
    EXPECT_FALSE(lastError.has_value());
    EXPECT_TRUE(screensGoneAtReport);
    EXPECT_EQ(face->rootController(), nullptr);

    ReferenceServer server;
    useServer(server);
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

// Every button of the screens acts as the finger lands: nothing here is ever released.
TEST_F(FaceFlowTest, EachButtonActsAsTheFingerLands)
{
    face->presentTutorial(true);
    requestFace();
    const auto tips = [&] { return face->faceCameraViewController()->findChild<VextilTutorialFace *>(); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return face->faceCameraViewController() && tips(); }, 3000));
    presses::touchWhereDrawn(tips()->nextButton());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !face->faceCameraViewController()->isPresentingTutorial(); }, 1000));
    ASSERT_TRUE(QTest::qWaitFor([&] { return !tips(); }, 2000));
    press(face->faceCameraViewController()->navigationView()->helpButton());
    EXPECT_TRUE(face->faceCameraViewController()->isPresentingTutorial()) << "Help waited for the finger to lift";
    ASSERT_TRUE(QTest::qWaitFor([&] { return tips() && tips()->isVisible(); }, 2000));
    press(tips()->nextButton());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !tips(); }, 2000));

    ASSERT_TRUE(waitForReview());
    press(face->confirmController()->navigationBar()->backButton());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !face->confirmController()->isVisible(); }, 1000)) << "the review's Back waited";
    ASSERT_TRUE(waitForReview(40000));
    press(face->confirmController()->confirmView()->cancelButton());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !face->confirmController()->isVisible(); }, 1000)) << "the retake waited";
    EXPECT_EQ(VextilRepository::sharedInstance()->getFaceImages(), nullptr) << "the rejected capture is dropped";
    ASSERT_TRUE(waitForReview(40000));
    press(face->confirmController()->confirmView()->acceptButton());
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == 1; }, 2000)) << "the answer waited";
    EXPECT_TRUE(lastSuccess);
    QTest::qWait(200);
    EXPECT_EQ(reports, 1) << "one answer, one report";

    face->presentTutorial(false);
    requestFace();
    ASSERT_TRUE(QTest::qWaitFor([&] { return face->faceCameraViewController() && face->faceCameraViewController()->isVisible(); }, 3000));
    press(face->faceCameraViewController()->navigationView()->backButton());
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == 2; }, 2000)) << "Back waited";
    EXPECT_FALSE(lastSuccess);
}

// Presses, touches and wheel turns on a grid over the window, the toolkit's buttons left out,
// then a key, all through the window as the system delivers them: none reach the host.
int pokeEverywhereButTheButtons(QWidget &host, HostSurface &surface)
{
    static QPointingDevice *screen = QTest::createTouchDevice();
    surface.reached = 0;
    QWindow *window = host.windowHandle();
    for (int gx = 0; gx < 6; ++gx) {
        for (int gy = 0; gy < 10; ++gy) {
            const QPoint at((2 * gx + 1) * host.width() / 12, (2 * gy + 1) * host.height() / 20);
            QWidget *top = host.childAt(at);
            for (QWidget *w = top; w; w = w->parentWidget())
                if (qobject_cast<QAbstractButton *>(w))
                    top = nullptr;
            if (!top)
                continue;
            QTest::mousePress(window, Qt::LeftButton, {}, at);
            QTest::mouseRelease(window, Qt::LeftButton, {}, at);
            QWheelEvent wheel(at, host.mapToGlobal(at), {}, QPoint(0, -120), Qt::NoButton, {}, Qt::NoScrollPhase, false);
            QApplication::sendEvent(top, &wheel);
            QTest::touchEvent(window, screen).press(0, at, window);
            QTest::touchEvent(window, screen).release(0, at, window);
        }
    }
    QTest::keyClick(window, Qt::Key_A);
    return surface.reached;
}

TEST_F(FaceFlowTest, NoPressTouchWheelOrKeyReachesTheHostUnderAnyScreen)
{
    auto *surface = new HostSurface(&host);
    surface->setGeometry(host.rect());
    surface->show();
    surface->setFocus();
    face->presentTutorial(true);
    requestFace();
    const auto tips = [&] { return face->faceCameraViewController()->findChild<VextilTutorialFace *>(); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return face->faceCameraViewController() && tips(); }, 3000));
    QTest::qWait(400);  // the screen and the tips in place
    EXPECT_EQ(pokeEverywhereButTheButtons(host, *surface), 0) << "through the tips";
    press(tips()->nextButton());
    ASSERT_TRUE(QTest::qWaitFor([&] { return !tips(); }, 2000));
    EXPECT_EQ(pokeEverywhereButTheButtons(host, *surface), 0) << "through the camera screen";
    ASSERT_TRUE(waitForReview());
    QTest::qWait(400);
    EXPECT_EQ(pokeEverywhereButTheButtons(host, *surface), 0) << "through the review";
    press(face->confirmController()->confirmView()->acceptButton());
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == 1; }, 5000));
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_GT(pokeEverywhereButTheButtons(host, *surface), 0) << "the host takes presses again after the flow";
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

TEST_F(FaceFlowTest, AFlowWhoseWindowGoesReports421OnceAndTheHostMayRetryFromInsideItsCallback)
{
    const auto cameraOnShow = [&] { return face->faceCameraViewController() && face->faceCameraViewController()->isVisible(); };
    // The host's window closes while the camera screen is up, or while it is being dismissed.
    for (bool dismissing : {false, true}) {
        SCOPED_TRACE(dismissing ? "while dismissing" : "while capturing");
        auto *window = new QWidget;
        window->resize(390, 844);
        window->show();
        face->setRootController(window);
        const int before = reports;
        requestFace();
        ASSERT_TRUE(QTest::qWaitFor(cameraOnShow, 3000));
        if (dismissing)
            press(face->faceCameraViewController()->navigationView()->backButton());
        delete window;
        ASSERT_TRUE(QTest::qWaitFor([&] { return reports == before + 1; }, 3000)) << "the flow called back";
        EXPECT_FALSE(lastSuccess);
        EXPECT_EQ(lastError ? lastError->code : 0, 421);
        EXPECT_TRUE(screensGoneAtReport);
        QTest::qWait(300);
        EXPECT_EQ(reports, before + 1) << "once";
    }

    // A host that asks again from inside its 421 callback replaces the callback that is running.
    face->setRootController(&host);
    auto alive = std::make_shared<bool>(true);
    int retried = 0;
    std::optional<bool> intact;
    face->requestFace([&, guard = std::make_shared<AliveGuard>(alive)](bool, std::optional<VextilError> error) {
        ++retried;
        EXPECT_EQ(error ? error->code : 0, 421);
        requestFace();
        intact = *alive;
    });
    ASSERT_TRUE(QTest::qWaitFor(cameraOnShow, 3000));
    face->faceCameraViewController()->didCancel();
    ASSERT_TRUE(QTest::qWaitFor([&] { return intact.has_value(); }, 5000));
    EXPECT_TRUE(*intact) << "the running callback was destroyed by the retry";
    EXPECT_FALSE(*alive) << "and is let go of afterwards";
    ASSERT_TRUE(QTest::qWaitFor(cameraOnShow, 5000)) << "the retried flow is up";
    const int before = reports;
    face->faceCameraViewController()->didCancel();
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == before + 1; }, 5000));
    EXPECT_EQ(retried, 1);
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

    // An alert decides as the finger lifts over a button, not as it lands.
    presses::pressWhereDrawn(alert->buttons()[0]);
    QTest::qWait(100);
    EXPECT_EQ(settingsOpened, 0) << "decided before the finger lifted";
    presses::releaseWhereDrawn(alert->buttons()[0]);
    QTest::qWait(100);
    EXPECT_EQ(settingsOpened, 1);
    EXPECT_EQ(reports, 0) << "Settings leaves the screen up";

    VextilCameraAuthorization::setHooks([] { return VextilCameraAuthorization::Denied; }, {}, {});
    face->faceCameraViewController()->willEnterForeground();
    ASSERT_TRUE(QTest::qWaitFor([&] { return face->faceCameraViewController()->alert() != nullptr; }, 2000));
    QAbstractButton *cancel = face->faceCameraViewController()->alert()->buttons()[1];
    presses::pressWhereDrawn(cancel);
    presses::releaseWhereDrawn(cancel);
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == 1; }, 5000));
    EXPECT_EQ(lastError->code, 421);

    VextilCameraAuthorization::setHooks([] { return VextilCameraAuthorization::Restricted; }, {}, {});
    requestFace();
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == 2; }, 5000)) << "restricted fails at once";
    EXPECT_EQ(lastError->code, 421);
}

// The user opens the settings from the alert, allows the camera there and comes back: the alert
// goes by itself and the capture starts.
TEST_F(FaceFlowTest, AccessGrantedInTheSettingsClosesTheAlertAndStartsTheCapture)
{
    auto status = std::make_shared<VextilCameraAuthorization::Status>(VextilCameraAuthorization::Denied);
    VextilCameraAuthorization::setHooks([status] { return *status; }, {}, {});
    requestFace();
    const auto alert = [&] { return face->faceCameraViewController()->alert(); };
    ASSERT_TRUE(QTest::qWaitFor([&] { return face->faceCameraViewController() && alert(); }, 5000));
    alert()->buttons()[0]->click();  // Settings
    ASSERT_TRUE(QTest::qWaitFor([&] { return !alert(); }, 2000)) << "the alert stayed up over the settings";
    const auto comeBack = [] { Q_EMIT qGuiApp->applicationStateChanged(Qt::ApplicationActive); };
    comeBack();  // still refused: asked again
    ASSERT_TRUE(QTest::qWaitFor([&] { return alert() != nullptr; }, 2000)) << "no new look at the permission";
    alert()->buttons()[0]->click();

    *status = VextilCameraAuthorization::Authorized;
    comeBack();
    EXPECT_TRUE(QTest::qWaitFor([&] { return face->faceCameraViewController()->captureStats().delivered > 0; }, 5000))
        << "the camera did not start";
    EXPECT_EQ(alert(), nullptr);
    EXPECT_EQ(reports, 0);
    VextilCameraAuthorization::setHooks({}, {}, {});
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

TEST_F(FaceFlowTest, AFailedSendKeepsTheImagesForARetryEvenFromInsideItsCallback)
{
    auto *store = VextilRepository::sharedInstance();
    store->setAuthKey(QString::fromLatin1(ReferenceServer::kKey));
    QImage image(40, 60, QImage::Format_RGB32);
    image.fill(Qt::gray);
    store->setFaceImages(std::make_shared<QList<QImage>>(5, image));
    store->setFaceSmileImages(std::make_shared<QList<QImage>>(2, image));
    ReferenceServer failing({"--status", "500"}), working;
    useServer(failing);
    std::atomic<int> failed{0}, succeeded{0};
    std::atomic<bool> keptForRetry{false};
    face->sendFaceDataWithCallback([&](std::optional<QVariantMap>, std::optional<VextilError> e) {
        EXPECT_EQ(e ? e->code : 0, 1500);
        keptForRetry = store->getFaceImages() != nullptr;
        useServer(working);
        face->sendFaceDataWithCallback([&](std::optional<QVariantMap> answer, std::optional<VextilError> e2) {
            EXPECT_FALSE(e2.has_value());
            EXPECT_TRUE(answer.has_value());
            ++succeeded;
        });
        ++failed;
    });
    ASSERT_TRUE(QTest::qWaitFor([&] { return failed == 1 && succeeded == 1; }, 20000));
    QTest::qWait(100);
    EXPECT_EQ(failed + succeeded, 2) << "each send answered once";
    EXPECT_TRUE(keptForRetry) << "kept after a failure";
    EXPECT_EQ(store->getFaceImages(), nullptr) << "dropped after success";
    EXPECT_EQ(working.uploadFolders().size(), 1);
}

// Portrait and landscape cameras, in a phone's window and in a landscape desktop window, where
// the screens keep a phone's proportions: every capture completes with portrait images of what
// the view shows.
TEST_F(FaceFlowTest, CamerasAndWindowsOfEitherShapeGivePortraitImagesOfWhatTheViewShows)
{
    using Factory = std::function<std::unique_ptr<VextilFrameSource>()>;
    const Factory sample = [] { return std::make_unique<VextilVideoFileSource>(VEXTIL_SELFIE_CLIP, true); },
                  landscape = [] { return std::make_unique<VextilVideoFileSource>(VEXTIL_CLIP_LANDSCAPE, true); },
                  sideways = [] {
                      // A sensor mounted sideways: frames stored a quarter turn anticlockwise.
                      return std::make_unique<ClipPlayer>(VEXTIL_SELFIE_CLIP, QTransform().rotate(-90), 90);
                  };
    const std::tuple<const char *, QSize, Factory> runs[] = {
        {"landscape webcam, phone", QSize(390, 844), landscape},
        {"sideways sensor, phone", QSize(390, 844), sideways},
        {"sample clip, desktop window", QSize(1280, 800), sample},
        {"landscape webcam, desktop window", QSize(1280, 800), landscape},
    };
    for (const auto &[name, window, factory] : runs) {
        SCOPED_TRACE(name);
        host.resize(window);
        face->setFrameSourceFactory(factory);
        requestFace();
        ASSERT_TRUE(waitForReview()) << "the capture did not complete";
        const QSize view = face->faceCameraViewController()->faceCameraView()->size();
        EXPECT_LE(view.width(), view.height() * 0.9 + 1) << "a phone-shaped camera view";
        auto *store = VextilRepository::sharedInstance();
        ASSERT_EQ(store->getFaceImages()->size(), 5);
        ASSERT_EQ(store->getFaceSmileImagess()->size(), 2);
        for (const QImage &image : *store->getFaceImages() + *store->getFaceSmileImagess()) {
            EXPECT_GT(image.height(), image.width()) << "portrait";
            EXPECT_NEAR(double(image.width()) / image.height(), double(view.width()) / view.height(), 0.01)
                << "the region the view shows";
        }
        press(face->confirmController()->confirmView()->acceptButton());
        ASSERT_TRUE(QTest::qWaitFor([&] { return face->faceCameraViewController() == nullptr; }, 5000));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    EXPECT_EQ(reports, 4);
}

TEST_F(FaceFlowTest, TheCameraResumesWhenItsWindowIsShownAgainAndNeverRestartsAsTheFlowCloses)
{
    std::atomic<int> starts{0};
    int statusChecks = 0;
    VextilCameraAuthorization::setHooks([&] { ++statusChecks; return VextilCameraAuthorization::Authorized; }, {}, {});
    face->setFrameSourceFactory([&] { return std::make_unique<CountingSource>(VEXTIL_SELFIE_CLIP, starts); });
    requestFace();
    ASSERT_TRUE(QTest::qWaitFor([&] { return starts == 1; }, 3000));
    VextilFaceCameraViewController *camera = face->faceCameraViewController();

    host.hide();  // minimised, or moved to another desktop
    QTest::qWait(300);
    const int delivered = camera->captureStats().delivered;
    QTest::qWait(500);
    EXPECT_EQ(camera->captureStats().delivered, delivered) << "no frames while hidden";
    host.show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return camera->captureStats().delivered > delivered; }, 3000)) << "frames again";

    ASSERT_TRUE(waitForReview());
    const int startsBefore = starts, checksBefore = statusChecks;
    press(face->confirmController()->confirmView()->acceptButton());
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == 1; }, 5000));
    QTest::qWait(300);
    EXPECT_EQ(starts, startsBefore) << "closing the flow does not start the camera";
    EXPECT_EQ(statusChecks, checksBefore) << "nor ask for the permission again";
}

TEST_F(FaceFlowTest, RepeatedRequestsKeepOneFlowAndEachFlowReportsOnce)
{
    // Two and three taps: one camera screen, and only the last callback hears the result.
    for (int taps : {2, 3}) {
        SCOPED_TRACE(taps);
        std::vector<int> heard(size_t(taps), 0);
        for (int i = 0; i < taps; ++i)
            face->requestFace([&heard, i](bool, std::optional<VextilError>) { ++heard[size_t(i)]; });
        ASSERT_TRUE(QTest::qWaitFor([&] { return face->faceCameraViewController() && face->faceCameraViewController()->isVisible(); }, 3000));
        EXPECT_EQ(host.findChildren<VextilFaceCameraViewController *>().size(), 1);
        face->faceCameraViewController()->didCancel();
        ASSERT_TRUE(QTest::qWaitFor([&] { return heard.back() == 1; }, 5000));
        QTest::qWait(200);
        for (int i = 0; i + 1 < taps; ++i)
            EXPECT_EQ(heard[size_t(i)], 0);
        EXPECT_EQ(heard.back(), 1);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    // The flow's other steps, called with no flow open, do nothing.
    face->presentConfirmView();
    face->didFinishedCaptureWithSuccess(true);
    face->didFinishedCaptureWithSuccess(false);
    face->didFinishedConfirmWithSuccess(false);
    face->didFinishedConfirmWithSuccess(true);
    face->dismissCamerControlerWithResult(true, std::nullopt);
    QTest::qWait(100);
    EXPECT_EQ(face->confirmController(), nullptr);

    // Once more while the review shows: the review stays and the new callback gets the answer.
    requestFace();
    ASSERT_TRUE(waitForReview());
    QPointer<VextilConfirmController> review = face->confirmController();
    requestFace();
    QTest::qWait(300);
    EXPECT_EQ(face->confirmController(), review.data());
    EXPECT_TRUE(review->isVisible());
    EXPECT_NE(VextilRepository::sharedInstance()->getFaceImages(), nullptr) << "the capture under review stays";
    press(review->confirmView()->acceptButton());
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == 1; }, 5000));
    QTest::qWait(200);
    EXPECT_EQ(reports, 1);
    EXPECT_TRUE(lastSuccess);
}

TEST_F(FaceFlowTest, AHostsModalDialogIsCoveredByTheCameraScreen)
{
    QDialog dialog(&host);
    dialog.resize(320, 480);
    dialog.setModal(true);
    dialog.show();
    ASSERT_TRUE(QTest::qWaitFor([] { return QApplication::activeModalWidget() != nullptr; }, 2000));
    requestFace();
    ASSERT_TRUE(QTest::qWaitFor([&] { return face->faceCameraViewController() && face->faceCameraViewController()->isVisible(); }, 3000));
    EXPECT_EQ(face->faceCameraViewController()->window(), &dialog);
    EXPECT_TRUE(QTest::qWaitFor([&] { return face->faceCameraViewController()->geometry() == dialog.rect(); }, 2000))
        << "it covers the dialog once it has slid in";
    EXPECT_EQ(face->rootController(), &dialog);
    face->faceCameraViewController()->didCancel();
    EXPECT_TRUE(QTest::qWaitFor([&] { return reports == 1; }, 5000));
}

}  // namespace
