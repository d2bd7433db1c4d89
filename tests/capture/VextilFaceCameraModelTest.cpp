#include <VextilToolkit/VextilFaceCameraModel.h>
#include <VextilToolkit/VextilRepository.h>

#include "QtPrinters.h"
#include "RecordingDelegate.h"
#include "ScriptedFaceDetector.h"

#include <QCoreApplication>
#include <QPainter>
#include <QTranslator>

#include <gtest/gtest.h>
#include <opencv2/core.hpp>

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <thread>

namespace {

enum class Face { None, Neutral, Smiling, Far };

// The image is 100 x 200 and so is the view, so a face's on-screen ratio is its width / 100.
constexpr double kNearWidth = 60;
// The scripted face, origin bottom left: centred sideways, a little below the middle.
const QRectF kFaceBox(20, 60, kNearWidth, 60);

// A grey frame with the scripted face's mouth drawn in, brighter as the face smiles (0 to 1).
QImage faceImage(double smile)
{
    QImage image(100, 200, QImage::Format_RGB32);
    image.fill(QColor(128, 128, 128));
    QPainter(&image).fillRect(QRectF(30, 115, 40, 15), QColor::fromHsvF(0, 0, (128 + 127 * smile) / 255));
    return image;
}

class FaceCameraModelTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        VextilRepository::sharedInstance()->resetFaceImages();
        model.setDelegate(&delegate);
        model.setViewSize(QSizeF(100, 200));
        model.resetState();
        settle();
        delegate.clear();
    }

    static void settle() { QCoreApplication::processEvents(); }

    void at(double seconds)
    {
        now = VextilTimePoint(std::chrono::duration_cast<VextilTimePoint::duration>(std::chrono::duration<double>(seconds)));
    }

    // The face's picture for the next frame: the mouth moves a third of the way at most toward
    // `smile` (1 smiling, 0 at rest), as a live smile grows and fades over a few frames.
    QImage nextImage(double smile)
    {
        mouth = std::clamp(smile, mouth - 1.0 / 3, mouth + 1.0 / 3);
        return faceImage(mouth);
    }

    void feed(double seconds, Face face)
    {
        at(seconds);
        detector->next.clear();
        if (face != Face::None)
            detector->next.append({QRectF(20, 60, face == Face::Far ? 30 : kNearWidth, 60), face == Face::Smiling});
        model.processFace(nextImage(face == Face::Smiling ? 1 : 0));
    }

    // A near face whose smile the detector grades, in log-odds; it calls it smiling above 0. The
    // mouth grows toward `smile`, by default toward the detector's verdict.
    void feedGraded(double seconds, float score, std::optional<double> smile = std::nullopt)
    {
        at(seconds);
        detector->next = {{kFaceBox, score > 0, score}};
        model.processFace(nextImage(smile.value_or(score > 0 ? 1 : 0)));
    }
    qsizetype smileCount() const { return model.facesSmileArray()->size(); }

    // Five neutral images, a second apart from t = 0: the model then awaits the smile.
    void collectNeutral()
    {
        for (int i = 0; i < 5; ++i)
            feed(i, Face::Neutral);
    }

    qsizetype neutralCount() const { return model.facesArray()->size(); }

    std::shared_ptr<ScriptedFaceDetector> detector = std::make_shared<ScriptedFaceDetector>();
    VextilTimePoint now{};
    VextilFaceCameraModel model{detector, [this] { return now; }};
    RecordingDelegate delegate;
    QImage image = faceImage(0);
    double mouth = 0;  // how far the scripted face's smile shows in its picture
};

TEST_F(FaceCameraModelTest, ResetRunsOnTheStateQueueWhereFramesAreAnalysed)
{
    collectNeutral();
    QList<std::function<void()>> queued;
    model.setStateQueue([&](std::function<void()> work) { queued.append(std::move(work)); });
    model.resetState();
    settle();
    ASSERT_EQ(queued.size(), 1) << "the reset waits on the state queue";
    EXPECT_EQ(neutralCount(), 5) << "and not on the GUI thread";
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateAwaitingSmile);

    delegate.clear();
    std::thread capture(queued.first());
    capture.join();
    EXPECT_EQ(neutralCount(), 0);
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateLookingForFace);
    EXPECT_TRUE(delegate.calls().contains("message:Looking for face"));
}

TEST_F(FaceCameraModelTest, ADetectorThatThrowsSeesNoFaceAndTheCaptureGoesOn)
{
    collectNeutral();
    ASSERT_EQ(model.currentState(), VextilFaceCaptureStateAwaitingSmile);
    for (const std::function<void()> &failure : std::initializer_list<std::function<void()>>{
             [] { throw std::runtime_error("model file damaged"); },
             [] {
                 cv::Mat a(2, 2, CV_8UC1), b(3, 3, CV_8UC1);
                 cv::add(a, b, a);  // sizes differ: OpenCV throws
             },
             [] { throw 42; }}) {
        detector->duringDetection = failure;
        feed(5, Face::Neutral);
        feed(5.1, Face::Neutral);
    }
    detector->duringDetection = nullptr;
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateLookingForFace) << "frames without a face, as for no face";
    EXPECT_EQ(neutralCount(), 0);
    feed(6, Face::Neutral);
    EXPECT_EQ(neutralCount(), 1) << "and the next good frame counts";
}

TEST_F(FaceCameraModelTest, TheScreenHearsOfAKeptImageBeforeTheWholePictureIsMade)
{
    // Making the whole-size picture takes milliseconds; the instruction, the progress and the
    // smile prompt must not wait for it. What the screen has heard when each picture is made:
    QList<QStringList> heardWhenMade;
    const auto keep = [&] {
        heardWhenMade.append(delegate.calls());
        delegate.clear();
        return faceImage(0);
    };
    for (int i = 0; i < 5; ++i) {
        at(i);
        detector->next = {{kFaceBox, false}};
        model.processFace(nextImage(0), keep);
    }
    ASSERT_EQ(heardWhenMade.size(), 5);
    EXPECT_EQ(heardWhenMade[0], (QStringList{"mask", "message:Checking your face", "popup:hidden", "bar:shown",
                                             "progress:0.2"}));
    EXPECT_TRUE(heardWhenMade[3].contains("progress:0.8"));
    EXPECT_EQ(heardWhenMade[4], (QStringList{"message:Checking your face", "popup:shown", "bar:hidden"}));
    EXPECT_EQ(neutralCount(), 5) << "every picture made is kept";
}

TEST_F(FaceCameraModelTest, AReadyFaceIsAnnouncedWhileItsSmileIsStillBeingJudged)
{
    // The detector finds faces first and judges smiles after, as long again: what the screen
    // has heard by the time the smile is being judged.
    detector->announceFaces = true;
    QStringList heard;
    detector->duringDetection = [&] { heard = delegate.texts(); };

    feed(0, Face::Far);
    EXPECT_TRUE(heard.isEmpty()) << "a face too far away is not being checked";
    feed(0.1, Face::None);
    feed(0.2, Face::None);
    delegate.clear();
    feed(0.3, Face::Neutral);
    EXPECT_EQ(heard, QStringList{"Checking your face"});
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateCollectingFaces);
    EXPECT_EQ(neutralCount(), 1);
    EXPECT_EQ(delegate.count("progress:0.2"), 1);

    // Collecting already: a new frame announces nothing more.
    delegate.clear();
    feed(1.3, Face::Neutral);
    EXPECT_TRUE(heard.isEmpty());
    EXPECT_EQ(neutralCount(), 2);
}

TEST_F(FaceCameraModelTest, AFaceAnnouncedAheadThatSmilesIsAskedToRelaxAndOnlyOnce)
{
    detector->announceFaces = true;
    feed(0, Face::Smiling);
    EXPECT_EQ(delegate.texts(), (QStringList{"Checking your face", "Relax your face"}));
    EXPECT_EQ(neutralCount(), 0) << "a smile is never a neutral image";

    delegate.clear();
    feed(0.1, Face::Smiling);
    feed(0.2, Face::Smiling);
    EXPECT_TRUE(delegate.texts().isEmpty()) << "while asked to relax, no face is announced ahead";
}

TEST_F(FaceCameraModelTest, AnAnnouncementTheFrameDoesNotBearOutIsTakenBack)
{
    // A ready face found first, then a face too far away in the detector's answer (which
    // changes nothing yet): the line says again what it said before.
    detector->announceFaces = true;
    detector->foundFirst = QList<VextilFaceFeature>{{kFaceBox, false}};
    feed(0, Face::Far);
    EXPECT_EQ(delegate.texts(), (QStringList{"Checking your face", "Looking for face"}));
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateLookingForFace);
    EXPECT_EQ(neutralCount(), 0);
}

TEST_F(FaceCameraModelTest, NearEnoughIsStrictlyBetweenFortyAndEightyThreePercentOfTheView)
{
    const auto nearEnough = [&](double width) { return model.isFaceNearEnough({QRectF(0, 0, width, width), false}, image); };
    EXPECT_FALSE(nearEnough(40));
    EXPECT_TRUE(nearEnough(40.5));
    EXPECT_TRUE(nearEnough(82.5));
    EXPECT_FALSE(nearEnough(83));
    EXPECT_FALSE(model.isFaceNearEnough({QRectF(0, 0, 60, 60), false}, QImage())) << "a missing image never passes";

    // The image is fitted into the view keeping its aspect: 400 x 400 into 100 x 200 scales by 1/4.
    const QImage square(400, 400, QImage::Format_RGB32);
    EXPECT_TRUE(model.isFaceNearEnough({QRectF(0, 0, 240, 240), false}, square));
    EXPECT_FALSE(model.isFaceNearEnough({QRectF(0, 0, 120, 120), false}, square));

    VextilFaceCameraModel unsized(detector);
    EXPECT_FALSE(unsized.isFaceNearEnough({QRectF(0, 0, 60, 60), false}, image)) << "no view size yet";
}

TEST_F(FaceCameraModelTest, StartsLookingWithNoSmileArrayUntilTheFirstReset)
{
    VextilFaceCameraModel fresh(detector, [this] { return now; });
    EXPECT_EQ(fresh.currentState(), VextilFaceCaptureStateLookingForFace);
    ASSERT_NE(fresh.facesArray(), nullptr);
    EXPECT_TRUE(fresh.facesArray()->isEmpty());
    EXPECT_EQ(fresh.facesSmileArray(), nullptr);
    EXPECT_FALSE(fresh.lastFrameDate().has_value());
    EXPECT_EQ(fresh.getFirstMessageText(), QStringLiteral("Looking for face"));

    fresh.resetState();
    EXPECT_EQ(fresh.facesSmileArray(), nullptr) << "the reset runs later, on the GUI thread";
    settle();
    ASSERT_NE(fresh.facesSmileArray(), nullptr);
    EXPECT_TRUE(fresh.facesSmileArray()->isEmpty());
}

TEST_F(FaceCameraModelTest, CollectsNeutralImagesOneSecondApartThenAwaitsTheSmile)
{
    feed(0, Face::Neutral);
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateCollectingFaces);
    EXPECT_EQ(delegate.calls(), (QStringList{"mask", "message:Checking your face", "popup:hidden", "bar:shown",
                                             "progress:0.2"}));
    feed(0.5, Face::Neutral);
    feed(0.999, Face::Neutral);
    EXPECT_EQ(neutralCount(), 1) << "under a second since the last image";

    delegate.clear();
    for (int i = 1; i < 4; ++i)
        feed(i, Face::Neutral);
    EXPECT_EQ(neutralCount(), 4);
    EXPECT_EQ(delegate.count("progress:0.8"), 1);
    EXPECT_EQ(delegate.count("mask"), 0) << "staying in a state never toggles the mask";

    delegate.clear();
    feed(4, Face::Neutral);
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateAwaitingSmile);
    EXPECT_EQ(delegate.calls(), (QStringList{"message:Checking your face", "popup:shown", "bar:hidden"}))
        << "entering the smile state keeps the mask green and sends no progress";

    feed(5, Face::Neutral);
    EXPECT_EQ(neutralCount(), 5) << "nothing neutral is added while awaiting the smile";
}

TEST_F(FaceCameraModelTest, TwoSmilesASecondApartCompleteOnceAndFillTheStoreByReference)
{
    collectNeutral();
    feed(4.5, Face::Smiling);
    EXPECT_EQ(model.facesSmileArray()->size(), 0) << "under a second after the fifth neutral image";
    feed(5, Face::Smiling);
    feed(5.5, Face::Smiling);
    EXPECT_EQ(model.facesSmileArray()->size(), 1);
    feed(6, Face::Smiling);
    EXPECT_EQ(delegate.count("finished"), 0) << "completion is queued to the GUI thread";
    settle();
    EXPECT_EQ(delegate.count("finished"), 1);

    auto *store = VextilRepository::sharedInstance();
    EXPECT_EQ(store->getFaceImages(), model.facesArray());
    EXPECT_EQ(store->getFaceSmileImagess(), model.facesSmileArray());
    EXPECT_EQ(store->getFaceImages()->size(), 5);
    EXPECT_EQ(store->getFaceSmileImagess()->size(), 2);

    feed(7, Face::Smiling);
    settle();
    EXPECT_EQ(store->getFaceSmileImagess()->size(), 3) << "a third smile lands in the shared array";
    EXPECT_EQ(delegate.count("finished"), 1) << "but never completes a second time";
}

TEST_F(FaceCameraModelTest, OneFacelessFrameIsForgivenTheSecondDropsTheNeutralImages)
{
    feed(0, Face::Neutral);
    feed(1, Face::Neutral);
    feed(1.2, Face::None);
    EXPECT_EQ(neutralCount(), 2);
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateCollectingFaces);

    delegate.clear();
    feed(1.3, Face::None);
    EXPECT_EQ(neutralCount(), 0);
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateLookingForFace);
    EXPECT_EQ(delegate.calls(), (QStringList{"mask", "message:Looking for face", "popup:hidden", "bar:shown",
                                             "progress:0"}));

    delegate.clear();
    feed(1.4, Face::None);
    EXPECT_EQ(delegate.count("mask"), 0) << "returning to the current state toggles nothing";
}

TEST_F(FaceCameraModelTest, LosingTheFaceStartsOverWithTheSmilesAndACaptureHandedOverStaysWhole)
{
    collectNeutral();
    feed(5, Face::None);  // forgiven: the last neutral image set the grace flag
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateAwaitingSmile);
    feed(5.4, Face::Smiling);
    feed(5.6, Face::Smiling);
    ASSERT_EQ(smileCount(), 1);
    delegate.clear();

    // Smiles never set the grace flag again, so the next face-less frame is not forgiven, and
    // the smile goes with the face: the next face may be someone else's.
    feed(5.8, Face::None);
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateLookingForFace);
    EXPECT_EQ(neutralCount(), 0);
    EXPECT_EQ(smileCount(), 0);
    EXPECT_EQ(delegate.count("mask"), 1) << "green back to white";

    // A completed capture belongs to the store: a face lost before the screen closes takes
    // nothing from it.
    for (int i = 0; i < 5; ++i)
        feed(10 + i, Face::Neutral);
    feed(14.8, Face::Smiling);
    feed(15, Face::Smiling);
    feed(16, Face::Smiling);
    settle();
    ASSERT_EQ(delegate.count("finished"), 1);
    feed(16.1, Face::None);
    feed(16.2, Face::None);
    auto *store = VextilRepository::sharedInstance();
    EXPECT_EQ(store->getFaceImages()->size(), 5);
    EXPECT_EQ(store->getFaceSmileImagess()->size(), 2);
}

TEST_F(FaceCameraModelTest, TwoSmilesInARowWhileCollectingDropOnlyTheNewestNeutralImage)
{
    feed(0, Face::Neutral);
    feed(1, Face::Neutral);
    feed(2, Face::Neutral);
    const QImage newest = model.facesArray()->last();
    feed(2.1, Face::Smiling);
    EXPECT_EQ(neutralCount(), 3) << "the first smile only clears the grace flag";
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateCollectingFaces);

    delegate.clear();
    feed(2.2, Face::Smiling);
    EXPECT_EQ(neutralCount(), 2);
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateLookingForFace);
    EXPECT_EQ(delegate.count("progress:0.4"), 1) << "the remaining count is shown";
}

TEST_F(FaceCameraModelTest, ASmileWhileLookingIsNotCollectedAndAFarFaceChangesNothing)
{
    feed(0, Face::Smiling);
    EXPECT_EQ(neutralCount(), 0);
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateLookingForFace);
    EXPECT_TRUE(model.lastFrameDate().has_value()) << "a smile while looking still sets the clock";

    feed(1, Face::Far);
    EXPECT_EQ(neutralCount(), 0);
    EXPECT_EQ(delegate.calls(), QStringList{"message:Relax your face"}) << "the far face changed nothing";

    feed(2, Face::Neutral);
    EXPECT_EQ(neutralCount(), 1) << "looking for a face collects without waiting a second";
}

TEST_F(FaceCameraModelTest, NoNeutralImageIsASmileAndAUserWhoSmilesTooEarlyIsAskedToRelaxOnce)
{
    // Smiling from the first frame: nothing is taken, whatever the resting face would be.
    feedGraded(0, 2.0f);
    feedGraded(0.2, 2.5f);
    EXPECT_EQ(neutralCount(), 0);
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateLookingForFace);
    EXPECT_EQ(delegate.texts(), QStringList{"Relax your face"}) << "said once, not every frame";
    feedGraded(0.4, -6.0f);
    feedGraded(0.5, -6.0f);
    EXPECT_EQ(neutralCount(), 0) << "the smile is still most of the recent frames";
    feedGraded(0.6, -6.0f);
    EXPECT_EQ(neutralCount(), 1) << "the capture goes on once the face relaxes";
    EXPECT_EQ(delegate.texts().last(), "Checking your face");

    // Within the collection: a clear smile, or a graded rise of 4 over the rest, is no neutral face.
    feedGraded(1.4, -1.9f);
    EXPECT_EQ(neutralCount(), 1) << "a rise of 4.1 over the resting face";
    feedGraded(1.6, -6.0f);
    EXPECT_EQ(neutralCount(), 2);
    feedGraded(2.8, 1.0f);
    feedGraded(3.0, 1.0f);
    EXPECT_EQ(neutralCount(), 1) << "two smiles in a row drop the newest neutral image";
    delegate.clear();
    feedGraded(3.2, 1.0f);
    EXPECT_EQ(delegate.texts(), QStringList{"Relax your face"});
    EXPECT_EQ(neutralCount(), 1);

    // After the prompt, a face lost and found again smiling refills nothing with smiles.
    feedGraded(3.4, -6.0f);
    for (int i = 4; i < 8; ++i)
        feedGraded(i, -6.0f);
    ASSERT_EQ(model.currentState(), VextilFaceCaptureStateAwaitingSmile);
    feed(8.1, Face::None);
    feed(8.2, Face::None);
    feedGraded(9.5, 3.0f);
    feedGraded(10.5, 3.0f);
    EXPECT_EQ(neutralCount(), 0);
    EXPECT_EQ(smileCount(), 0) << "the capture starts over from a neutral face";
}

TEST_F(FaceCameraModelTest, AfterThePromptASmileMustRiseAboveThisCapturesNeutralFrames)
{
    struct Case {
        const char *name;
        float rest, prompted;
        bool smiles;
    };
    const Case cases[] = {
        {"a clear smile over a neutral face", -6.0f, 2.0f, true},
        {"a still neutral photo, trembling", -6.0f, -5.6f, false},
        {"a still photo of a faint smile", -0.4f, -0.2f, false},
        {"a smirk, then a smile", -0.4f, 1.0f, true},
        {"a smirk that only grows a little", -0.4f, 0.4f, false},
        {"a bearded smile the detector misses", -4.0f, -0.6f, true},
        {"a mouth that opens a little, not a smile", -6.0f, -3.5f, false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.name);
        const double start = 100 * double(&c - cases);
        VextilRepository::sharedInstance()->resetFaceImages();
        model.resetState();
        settle();
        for (int i = 0; i < 5; ++i) {
            feedGraded(start + i, c.rest, 0);
            feedGraded(start + i + 0.5, c.rest + (i % 2 ? 0.2f : -0.2f), 0);
        }
        ASSERT_EQ(model.currentState(), VextilFaceCaptureStateAwaitingSmile);
        // Every face's picture changes as a smile's does: only the readings tell them apart.
        for (double t : {5.6, 5.8, 6.0})
            feedGraded(start + t, c.prompted, 1);
        EXPECT_EQ(smileCount(), c.smiles ? 1 : 0);
        for (double t : {6.2, 6.4})
            feedGraded(start + t, c.rest, 0);  // and back to rest
    }
}

TEST_F(FaceCameraModelTest, AfterItsFirstFrameASmileMustBeHeldSoAFadingSmileNeverCompletes)
{
    const auto collectAt = [&](double start, float rest) {
        VextilRepository::sharedInstance()->resetFaceImages();
        model.resetState();
        settle();
        for (int i = 0; i < 5; ++i)
            feedGraded(start + i, rest);
        ASSERT_EQ(model.currentState(), VextilFaceCaptureStateAwaitingSmile);
    };
    // A faint smile that grows once, then sags to just above the resting face.
    collectAt(0, -0.4f);
    feedGraded(5.8, 1.2f);
    feedGraded(6, 1.2f);
    EXPECT_EQ(smileCount(), 1) << "the smile, once grown, is taken";
    for (int i = 1; i <= 30; ++i)
        feedGraded(6 + 0.1 * i, 0.7f);
    EXPECT_EQ(smileCount(), 1) << "a smile that is not held is no smile";

    // A photo of a faint smile: its reading flickers up now and again, its picture never changes.
    collectAt(100, -0.4f);
    for (int i = 0; i <= 30; ++i)
        feedGraded(105 + 0.1 * i, i % 7 ? -0.4f : 1.2f, 0);
    EXPECT_EQ(smileCount(), 0);

    // A real smile, held: the second image a second after the first.
    collectAt(200, -0.4f);
    for (int i = 0; i <= 12; ++i)
        feedGraded(205.8 + 0.1 * i, 2.0f);
    EXPECT_EQ(smileCount(), 2);
}

TEST_F(FaceCameraModelTest, AFaceThatJumpsStartsOverAndTheNextFaceLearnsNothingFromTheLastOne)
{
    // Face A rests low; it smiles, and jumps (another face, or a photo put in its place).
    collectNeutral();
    feed(5.4, Face::Smiling);
    feed(5.6, Face::Smiling);
    ASSERT_EQ(smileCount(), 1);
    at(5.7);
    detector->next = {{kFaceBox.translated(45, 0), true}};  // three quarters of a face width in a frame
    model.processFace(nextImage(1));
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateLookingForFace);
    EXPECT_EQ(neutralCount(), 0);
    EXPECT_EQ(smileCount(), 0) << "every image comes from one face";

    // A face lost for two frames: the next one, a smirk at rest, is judged on its own.
    model.resetState();
    settle();
    for (int i = 0; i < 3; ++i)
        feedGraded(10 + i, -6.0f);
    feed(12.1, Face::None);
    feed(12.2, Face::None);
    feedGraded(13, 0.5f, 0);
    EXPECT_EQ(neutralCount(), 1) << "0.5 is a smile only against the last face's resting -6";
}

TEST_F(FaceCameraModelTest, ASmileThatAppearsInOneFrameDoesNotCountUntilTheFaceRestsAndSmilesAgain)
{
    for (int i = 0; i < 5; ++i)
        feedGraded(i, -6.0f);
    mouth = 1;  // a smiling photo in the neutral one's place, from one frame to the next
    for (double t : {4.6, 4.8, 5.0, 5.5, 6.0, 7.0})
        feedGraded(t, 3.0f);
    EXPECT_EQ(smileCount(), 0);

    for (double t : {7.2, 7.4, 7.6, 7.8, 8.0})
        feedGraded(t, -6.0f);  // at rest again
    for (double t : {8.2, 8.4})
        feedGraded(t, 3.0f);  // a smile that grows
    EXPECT_EQ(smileCount(), 1);
}

TEST_F(FaceCameraModelTest, AFaceThatIsNotReadyIsToldWhatToDoOnceItHasBeenSoForThreeFrames)
{
    // A face at a third of the view's width: too far, and taken once it comes nearer.
    const auto far = [&](double t) {
        at(t);
        detector->next = {{QRectF(35, 60, 30, 30), false}};
        model.processFace(nextImage(0));
    };
    far(0);
    far(0.1);
    EXPECT_TRUE(delegate.texts().isEmpty()) << "a face on a limit for a frame or two changes nothing";
    far(0.2);
    far(0.3);
    EXPECT_EQ(delegate.texts(), QStringList{"Move closer"}) << "said once";
    EXPECT_EQ(neutralCount(), 0);
    feed(1, Face::Neutral);
    EXPECT_EQ(neutralCount(), 1) << "a ready face is taken at once";
    EXPECT_EQ(delegate.texts().last(), "Checking your face");

    // While the smile is awaited, the prompt goes while the user is asked to move, and comes back.
    for (int i = 2; i < 6; ++i)
        feed(i, Face::Neutral);
    ASSERT_EQ(model.currentState(), VextilFaceCaptureStateAwaitingSmile);
    delegate.clear();
    for (double t : {7.0, 7.5, 8.0})
        far(t);
    EXPECT_EQ(delegate.calls(), (QStringList{"message:Move closer", "popup:hidden"}));
    delegate.clear();
    feed(9, Face::Neutral);
    feed(9.1, Face::Neutral);
    EXPECT_TRUE(delegate.calls().isEmpty());
    feed(9.2, Face::Neutral);
    EXPECT_EQ(delegate.calls(), (QStringList{"message:Checking your face", "popup:shown"}));
}

TEST_F(FaceCameraModelTest, AFaceInFailingLightIsAskedForMoreLightByItsOwnPicture)
{
    feed(0, Face::Neutral);
    delegate.clear();
    // The light fades over a few frames (all at once would be another scene), and stays low.
    double t = 0;
    for (int grey : {110, 90, 70, 50, 35, 30, 30, 30, 30, 30, 30, 30}) {
        QImage dim = faceImage(0);
        dim.fill(QColor(grey, grey, grey));
        at(t += 0.1);
        detector->next = {{kFaceBox, false}};
        model.processFace(dim);
    }
    EXPECT_EQ(delegate.texts(), QStringList{"Find more light"});
    EXPECT_EQ(neutralCount(), 1) << "a face too dark to judge is not taken";
}

TEST_F(FaceCameraModelTest, TheModelAsksItsDetectorForStreamMode)
{
    EXPECT_TRUE(detector->isStreamMode());
    EXPECT_FALSE(ScriptedFaceDetector().isStreamMode()) << "a detector starts in still mode";
}

TEST_F(FaceCameraModelTest, AFrameArrivingDuringADetectionIsDropped)
{
    int nested = 0;
    detector->duringDetection = [&] {
        if (nested++ == 0)
            feed(0, Face::Neutral);  // a second frame while the first is being detected
    };
    feed(0, Face::Neutral);
    EXPECT_EQ(detector->calls, 1);
    EXPECT_EQ(neutralCount(), 1);
    EXPECT_FALSE(model.isProcessing());
}

TEST_F(FaceCameraModelTest, ResetAndClearDataStartOverWithoutTouchingTheClockOrFlag)
{
    feed(0, Face::Neutral);
    VextilRepository::sharedInstance()->setFaceImages(model.facesArray());
    const auto oldArray = model.facesArray();

    model.resetState();
    settle();
    EXPECT_EQ(model.currentState(), VextilFaceCaptureStateLookingForFace);
    EXPECT_NE(model.facesArray(), oldArray);
    EXPECT_TRUE(model.facesArray()->isEmpty());
    EXPECT_TRUE(model.hasFaceInLastFrame());
    EXPECT_TRUE(model.lastFrameDate().has_value());

    model.clearData();
    EXPECT_EQ(VextilRepository::sharedInstance()->getFaceImages(), nullptr);
}

TEST_F(FaceCameraModelTest, TextsGoThroughTheHostsTranslations)
{
    class German : public QTranslator {
    public:
        QString translate(const char *context, const char *source, const char *, int) const override
        {
            if (QLatin1String(context) != QLatin1String("VextilToolkit"))
                return {};
            return QLatin1String(source) == QLatin1String("Looking for face") ? QStringLiteral("Suche Gesicht") : QString();
        }
        bool isEmpty() const override { return false; }
    } german;
    QCoreApplication::installTranslator(&german);
    EXPECT_EQ(model.getFirstMessageText(), QStringLiteral("Suche Gesicht"));
    feed(0, Face::Neutral);
    EXPECT_EQ(delegate.count("message:Checking your face"), 1) << "untranslated keys show the English text";
    QCoreApplication::removeTranslator(&german);
}

TEST_F(FaceCameraModelTest, FramesFromACaptureThreadAndResetsOnTheGuiThreadDoNotRace)
{
    // Neutral faces a frame apart in simulated time: the capture thread collects while the GUI
    // thread resets, as when the camera screen reappears mid-capture.
    std::atomic<bool> done{false};
    std::thread capture([&] {
        for (int i = 0; i < 400; ++i) {
            QList<VextilFaceFeature> faces{{QRectF(20, 60, kNearWidth, 60), i % 7 == 0}};
            detector->next = faces;
            model.processFace(image);
        }
        done = true;
    });
    while (!done) {
        model.resetState();
        QCoreApplication::processEvents();
    }
    capture.join();
    settle();
    EXPECT_LE(neutralCount(), 1) << "the clock stands still, so at most one image is held";
}

}  // namespace
