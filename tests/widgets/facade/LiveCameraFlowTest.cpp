// Whole flows through Qt's live camera path, on the GStreamer fake camera.
#include <VextilToolkit/VextilCameraAuthorization.h>
#include <VextilToolkit/VextilFace.h>
#include <VextilToolkit/VextilRepository.h>

#include "widgets/capture/VextilFaceProgressBoxView.h"
#include "FakeCamera.h"
#include "widgets/review/VextilConfirmView.h"
#include "widgets/ui/NavigationBarView.h"
#include "Presses.h"

#include <QAbstractButton>
#include <QElapsedTimer>
#include <QTest>

#include <gtest/gtest.h>

namespace {

// The camera's streaming threads go before the binary returns (see FakeCamera).
class ParkedThreadsEnd : public ::testing::Environment {
    void TearDown() override { FakeCamera::endParkedThreads(); }
};
const auto *const kParkedThreadsEnd = ::testing::AddGlobalTestEnvironment(new ParkedThreadsEnd);

class LiveCameraFlow : public ::testing::Test {
protected:
    void SetUp() override
    {
        host.resize(390, 844);
        host.show();
        face->setRootController(&host);
        face->presentTutorial(false);
        VextilCameraAuthorization::setHooks({}, {}, {});
        VextilRepository::sharedInstance()->resetAllImages();
    }

    void requestFace()
    {
        face->requestFace([this](bool, std::optional<VextilError> error) {
            ++reports;
            lastError = error;
        });
        ASSERT_TRUE(QTest::qWaitFor([&] { return camera() && camera()->isVisible(); }, 5000));
    }
    VextilFaceCameraViewController *camera() const { return face->faceCameraViewController(); }
    bool waitForReview() const
    {
        return QTest::qWaitFor([&] { return face->confirmController() && face->confirmController()->isVisible(); },
                               40000);
    }
    QString instructions() const { return camera()->faceProgressBoxView()->instructionsLabel()->text(); }
    static void press(QAbstractButton *button) { presses::pressWhereDrawn(button); }

    QWidget host;
    VextilFace *face = VextilFace::sharedInstance();
    int reports = 0;
    std::optional<VextilError> lastError;
};

struct Camera {
    const char *formats, *sizes, *clip;
};

void PrintTo(const Camera &camera, std::ostream *out) { *out << camera.formats << ' ' << camera.sizes; }

class LiveCameraFormatFlow : public LiveCameraFlow, public ::testing::WithParamInterface<Camera> {};

TEST_P(LiveCameraFormatFlow, CompletesWithPortraitImages)
{
    FakeCamera{QString::fromUtf8(GetParam().clip), GetParam().formats, GetParam().sizes, {}}.install();
    requestFace();
    ASSERT_TRUE(waitForReview()) << "the capture did not complete: " << qPrintable(instructions());
    auto *store = VextilRepository::sharedInstance();
    ASSERT_EQ(store->getFaceImages()->size(), 5);
    ASSERT_EQ(store->getFaceSmileImagess()->size(), 2);
    for (const QImage &image : *store->getFaceImages() + *store->getFaceSmileImagess())
        EXPECT_GT(image.height(), image.width());
}

INSTANTIATE_TEST_SUITE_P(
    Webcams, LiveCameraFormatFlow,
    ::testing::Values(Camera{"YUY2", "720x1280", VEXTIL_SELFIE_CLIP}, Camera{"NV12", "720x1280", VEXTIL_SELFIE_CLIP},
                      Camera{"NV21", "720x1280", VEXTIL_SELFIE_CLIP}, Camera{"I420", "720x1280", VEXTIL_SELFIE_CLIP},
                      Camera{"Y42B", "720x1280", VEXTIL_SELFIE_CLIP}, Camera{"JPEG", "720x1280", VEXTIL_SELFIE_CLIP},
                      Camera{"YUY2", "1280x720", VEXTIL_CLIP_LANDSCAPE},
                      Camera{"JPEG", "1280x720", VEXTIL_CLIP_LANDSCAPE}),
    [](const auto &info) { return std::string(info.param.formats) + "_" + info.param.sizes; });

TEST_F(LiveCameraFlow, AHiddenScreenStopsTheCameraTheReviewAnalysesNothingAndTheEndLetsTheCameraGo)
{
    FakeCamera{QStringLiteral(VEXTIL_SELFIE_CLIP), "YUY2", "720x1280", {}}.install();
    requestFace();
    const auto delivered = [&] { return camera()->captureStats().delivered; };
    ASSERT_TRUE(QTest::qWaitFor([&] { return delivered() > 10; }, 10000));

    host.hide();
    QTest::qWait(300);
    const int hiddenAt = delivered();
    QTest::qWait(1500);
    EXPECT_EQ(delivered(), hiddenAt) << "frames while the window was hidden";
    EXPECT_EQ(FakeCamera::state(), "closed");
    host.show();
    EXPECT_TRUE(QTest::qWaitFor([&] { return delivered() > hiddenAt + 10; }, 10000)) << "no frames once shown again";

    ASSERT_TRUE(waitForReview());
    QTest::qWait(300);
    const int analysedAtReview = camera()->captureStats().analysed;
    QTest::qWait(1500);
    EXPECT_EQ(camera()->captureStats().analysed, analysedAtReview) << "analysed under the review";
    EXPECT_EQ(FakeCamera::state(), "closed");
    press(face->confirmController()->confirmView()->acceptButton());
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == 1; }, 5000));
    EXPECT_EQ(FakeCamera::state(), "closed");
}

// A phone's camera cannot be opened before the user allows it: it opens once they do, and at
// once, with no fault shown on the way.
TEST_F(LiveCameraFlow, ACameraFirstAllowedOpensAtTheGrantAndTheCaptureCompletes)
{
    FakeCamera{QStringLiteral(VEXTIL_SELFIE_CLIP), "YUY2", "720x1280", "until-granted"}.install();
    auto status = std::make_shared<VextilCameraAuthorization::Status>(VextilCameraAuthorization::NotDetermined);
    QElapsedTimer sinceGrant;
    std::function<void(bool)> answer;
    VextilCameraAuthorization::setHooks([status] { return *status; },
                                        [&answer](std::function<void(bool)> a) { answer = std::move(a); }, {});
    requestFace();
    ASSERT_TRUE(QTest::qWaitFor([&] { return bool(answer); }, 5000)) << "nobody asked the user";
    QTest::qWait(500);  // the user reads the question
    EXPECT_EQ(FakeCamera::opens(), 0) << "opened before access was granted";
    *status = VextilCameraAuthorization::Authorized;
    FakeCamera::grant();
    sinceGrant.start();
    answer(true);

    QStringList shown;
    const auto delivered = [&] { return camera()->captureStats().delivered; };
    EXPECT_TRUE(QTest::qWaitFor([&] { shown.append(instructions()); return delivered() > 0; }, 5000));
    EXPECT_LT(sinceGrant.elapsed(), 1000) << "the first frame came late";
    ASSERT_TRUE(QTest::qWaitFor([&] { shown.append(instructions()); return face->confirmController() && face->confirmController()->isVisible(); }, 40000));
    EXPECT_FALSE(shown.contains(QStringLiteral("The camera is not responding")));
    EXPECT_EQ(FakeCamera::opens(), 1);
}

// A webcam that takes 6 s to wake is waited for: no fault shown, not reopened.
TEST_F(LiveCameraFlow, ASlowCameraIsWaitedForAndTheCaptureCompletes)
{
    FakeCamera slow{QStringLiteral(VEXTIL_SELFIE_CLIP), "YUY2", "720x1280", {}};
    slow.startDelayMs = 6000;
    slow.install();
    requestFace();
    QStringList shown;
    ASSERT_TRUE(QTest::qWaitFor([&] { shown.append(instructions()); return face->confirmController() && face->confirmController()->isVisible(); }, 40000));
    EXPECT_FALSE(shown.contains(QStringLiteral("The camera is not responding")));
    EXPECT_EQ(FakeCamera::opens(), 1);
}

struct Fault {
    const char *name, *fault, *message;
    bool noCamera = false, comesBack = false;
};

void PrintTo(const Fault &fault, std::ostream *out) { *out << fault.name; }

class LiveCameraFault : public LiveCameraFlow, public ::testing::WithParamInterface<Fault> {};

TEST_P(LiveCameraFault, IsNamedOnTheScreenAndTheFlowEndsOrGoesOn)
{
    const Fault &f = GetParam();
    FakeCamera{f.noCamera ? QString() : QStringLiteral(VEXTIL_SELFIE_CLIP), "YUY2", "720x1280", f.fault}.install();
    requestFace();
    EXPECT_TRUE(QTest::qWaitFor([&] { return instructions() == QLatin1String(f.message); }, 20000))
        << "shows: " << qPrintable(instructions());
    if (f.comesBack) {
        EXPECT_TRUE(waitForReview()) << "the capture did not go on: " << qPrintable(instructions());
        return;
    }
    press(camera()->navigationView()->backButton());
    ASSERT_TRUE(QTest::qWaitFor([&] { return reports == 1; }, 5000));
    ASSERT_TRUE(lastError.has_value());
    EXPECT_EQ(lastError->code, 421);
}

INSTANTIATE_TEST_SUITE_P(Cameras, LiveCameraFault,
                         ::testing::Values(Fault{"missing", "", "No camera found", true},
                                           Fault{"failing_to_open", "open", "The camera is not responding"},
                                           Fault{"failing_mid_capture", "error-after:2500",
                                                 "The camera is not responding"},
                                           Fault{"freezing", "freeze-after:2500", "The camera is not responding"},
                                           // Qt 6.4 keeps a stale second entry for an unplugged camera.
                                           Fault{"unplugged_and_back", "vanish-after:2500:back-after:2000",
                                                 "The camera is not responding", false, true}),
                         [](const auto &info) { return std::string(info.param.name); });

}  // namespace
