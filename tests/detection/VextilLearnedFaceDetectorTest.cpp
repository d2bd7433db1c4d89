#include "detection/VextilLearnedFaceDetector.h"
#include "detection/VextilBlazeFace.h"
#include "detection/VextilCascadeFaceDetector.h"
#include "detection/VextilGreyExpressionNet.h"
#include "LabelledPhotos.h"

#include <VextilToolkit/VextilVideoFileReader.h>

#include <QPainter>

#include <gtest/gtest.h>

namespace {

TEST(BlazeFace, FindsEveryLabelledFaceWithItsKeyPointsAndNothingInAnEmptyFrame)
{
    VextilBlazeFace finder;
    ASSERT_TRUE(finder.isLoaded()) << qPrintable(finder.errorString());
    int closeMatches = 0;
    for (const LabelledPhoto &photo : loadLabelledPhotos()) {
        SCOPED_TRACE(qPrintable(photo.file));
        const auto faces = finder.detect(loadPhoto(photo));
        ASSERT_FALSE(faces.isEmpty());
        const VextilBlazeFace::Face &face = faces.first();
        // The labels are approximate square boxes; BlazeFace's are tighter on most faces.
        const double iou = intersectionOverUnion(face.bounds, photo.face);
        EXPECT_GE(iou, 0.4);
        closeMatches += iou >= 0.5;
        EXPECT_GT(face.score, 0.7f);
        for (int eye : {0, 1})
            EXPECT_TRUE(QRectF(photo.face).contains(face.keyPoints[size_t(eye)])) << "eye " << eye;
        EXPECT_LT(face.keyPoints[0].y(), face.keyPoints[3].y()) << "eyes above the mouth";
    }
    EXPECT_GE(closeMatches, 19);

    QImage empty(720, 1280, QImage::Format_RGB32);
    empty.fill(QColor(200, 190, 180));
    EXPECT_TRUE(finder.detect(empty).isEmpty());
    EXPECT_TRUE(finder.detect(QImage()).isEmpty());
}

TEST(BlazeFace, AMissingModelIsReportedAndFindsNothing)
{
    VextilBlazeFace missing(QStringLiteral("/nonexistent/face.onnx"));
    EXPECT_FALSE(missing.isLoaded());
    EXPECT_TRUE(missing.errorString().contains("/nonexistent/face.onnx"));
    EXPECT_TRUE(missing.detect(loadPhoto(loadLabelledPhotos().first())).isEmpty());
}

TEST(GreyExpressionNet, ReadsNothingOutsideTheImageNamesAMissingModelAndIgnoresTheLight)
{
    VextilGreyExpressionNet net;
    ASSERT_TRUE(net.isLoaded()) << qPrintable(net.errorString());
    const LabelledPhoto smile = loadLabelledPhotos().value(1);
    const QImage smiling = loadPhoto(smile);
    EXPECT_GT(net.smileLogOdds(smiling, smile.face), VextilLearnedFaceDetector::kSmileLogOdds);
    EXPECT_EQ(net.smileLogOdds(QImage(), smile.face), 0.f);
    EXPECT_EQ(net.smileLogOdds(smiling, QRectF(-500, -500, 100, 100)), 0.f);
    EXPECT_EQ(net.smileLogOdds(smiling, QRectF(10, 10, 2, 2)), 0.f) << "too small to read";

    VextilGreyExpressionNet missing(QStringLiteral("/nonexistent/m.json"), QStringLiteral("/nonexistent/w.bin"));
    EXPECT_FALSE(missing.isLoaded());
    EXPECT_TRUE(missing.errorString().contains("/nonexistent/m.json"));
    EXPECT_EQ(missing.smileLogOdds(smiling, smile.face), 0.f);

    // Dim and washed-out light leave every clear face's score where it was.
    const auto lit = [](const QImage &image, QPainter::CompositionMode mode, int grey, double opacity) {
        QImage out = image;
        QPainter painter(&out);
        painter.setCompositionMode(mode);
        painter.setOpacity(opacity);
        painter.fillRect(out.rect(), QColor(grey, grey, grey));
        return out;
    };
    // Light from a window on the left: the right edge keeps a third of it.
    const auto sideLit = [](const QImage &image) {
        QImage out = image;
        QPainter painter(&out);
        painter.setCompositionMode(QPainter::CompositionMode_Multiply);
        QLinearGradient falloff(0, 0, out.width(), 0);
        falloff.setColorAt(0, Qt::white);
        falloff.setColorAt(1, QColor(85, 85, 85));
        painter.fillRect(out.rect(), falloff);
        return out;
    };
    for (const LabelledPhoto &photo : loadLabelledPhotos()) {
        if (photo.smile == "slight")
            continue;
        SCOPED_TRACE(qPrintable(photo.file));
        const QImage image = loadPhoto(photo);
        const float score = net.smileLogOdds(image, photo.face);
        EXPECT_NEAR(net.smileLogOdds(lit(image, QPainter::CompositionMode_Multiply, 89, 1), photo.face), score, 1.0)
            << "dim";
        EXPECT_NEAR(net.smileLogOdds(lit(image, QPainter::CompositionMode_SourceOver, 240, 0.5), photo.face), score,
                    1.0)
            << "washed out";
        // Half the face in shadow moves the score more, but never across the verdict.
        EXPECT_EQ(net.smileLogOdds(sideLit(image), photo.face) > VextilLearnedFaceDetector::kSmileLogOdds,
                  photo.smile == "yes")
            << "lit from one side";
    }
}

TEST(LearnedFaceDetector, FindsEveryFaceAndTellsEveryClearSmileFromEveryNeutralFaceAlsoAfterLettingItsNetworksGo)
{
    VextilLearnedFaceDetector detector;
    ASSERT_TRUE(detector.isLoaded()) << qPrintable(detector.errorString());
    for (const LabelledPhoto &photo : loadLabelledPhotos()) {
        SCOPED_TRACE(qPrintable(photo.file));
        const QImage image = loadPhoto(photo);
        const QList<VextilFaceFeature> faces = detector.featuresInImage(image);
        ASSERT_FALSE(faces.isEmpty());
        // Bounds from the key points: forehead to chin, even on turned and tilted heads.
        EXPECT_GE(intersectionOverUnion(topLeftBounds(faces.first().bounds, image.height()), photo.face), 0.5);
        // The talking face (5-2) and the closed-lip smirk (5-4) among the neutral ones.
        if (photo.smile != "slight") {
            EXPECT_EQ(faces.first().hasSmile, photo.smile == "yes");
            EXPECT_EQ(faces.first().smileScore, detector.smileScores(image).first());
        }
        // Between a capture and a retake the networks are let go; the next image loads them again.
        detector.releaseResources();
        EXPECT_TRUE(detector.isLoaded());
        const QList<VextilFaceFeature> again = detector.featuresInImage(image);
        ASSERT_EQ(again.size(), faces.size());
        EXPECT_EQ(again[0].bounds, faces[0].bounds);
        EXPECT_EQ(again[0].smileScore, faces[0].smileScore);
    }
}

TEST(LearnedFaceDetector, InStreamModeTheNetworksTakeTurnsAndInStillModeEveryAnswerIsItsImagesOwn)
{
    VextilVideoFileReader clip;
    ASSERT_TRUE(clip.open(QStringLiteral(VEXTIL_SELFIE_CLIP)));
    VextilLearnedFaceDetector stream, single, still;
    stream.setStreamMode(true);
    int faces = 0, stillDifferent = 0;
    int previousSmile = -1;  // none: no face in the frame before
    int repeats = 0, late = 0;
    std::optional<float> previousScore;
    for (auto frame = clip.readFrame(); frame; frame = clip.readFrame()) {
        const QList<VextilFaceFeature> streamed = stream.featuresInImage(frame->image);
        single.featuresInImage(QImage());  // breaks its stream: every frame gets both networks
        const QList<VextilFaceFeature> full = single.featuresInImage(frame->image);
        const QList<VextilFaceFeature> alone = still.featuresInImage(frame->image);
        stillDifferent += alone.size() != full.size() || (!full.isEmpty() && alone[0].smileScore != full[0].smileScore);
        ASSERT_EQ(streamed.size(), full.size()) << "frame " << frame->index;
        if (full.isEmpty()) {
            previousSmile = -1;
            continue;
        }
        ++faces;
        SCOPED_TRACE(frame->index);
        EXPECT_GE(intersectionOverUnion(streamed[0].bounds, full[0].bounds), 0.8);
        // Judged on this frame or the one before: a smile is seen at most a frame late. While a
        // smile forms, the box (which follows the mouth) may be a frame older than the picture
        // it is judged on, and a reading near the threshold may fall on either side.
        late += !(streamed[0].hasSmile == full[0].hasSmile || int(streamed[0].hasSmile) == previousSmile);
        previousSmile = int(full[0].hasSmile);
        repeats += streamed[0].smileScore == previousScore;
        previousScore = streamed[0].smileScore;
    }
    EXPECT_GT(faces, 100);
    EXPECT_LE(late, 2) << "only while the smile forms";
    EXPECT_LE(repeats, faces * 6 / 10) << "the smile is judged again every other frame";
    EXPECT_EQ(stillDifferent, 0) << "a detector in still mode answers about each image alone";
}

TEST(LearnedFaceDetector, HandsOverTheFacesItFindsBeforeJudgingTheirSmiles)
{
    // Every image that gets both networks announces its faces first: where they are, their
    // smiles not yet judged. The frames whose networks take turns announce nothing.
    VextilVideoFileReader clip;
    ASSERT_TRUE(clip.open(QStringLiteral(VEXTIL_SELFIE_CLIP)));
    VextilLearnedFaceDetector detector;
    detector.setStreamMode(true);
    QList<VextilFaceFeature> announced;
    int announcements = 0;
    detector.setFacesFoundHandler([&](const QList<VextilFaceFeature> &faces) {
        announced = faces;
        ++announcements;
    });
    int facesSeen = 0;
    for (auto frame = clip.readFrame(); frame; frame = clip.readFrame()) {
        SCOPED_TRACE(frame->index);
        const int before = announcements;
        const QList<VextilFaceFeature> answer = detector.featuresInImage(frame->image);
        if (answer.isEmpty()) {
            EXPECT_EQ(announcements, before) << "nothing found, nothing announced";
            continue;
        }
        if (facesSeen++ == 0) {
            ASSERT_EQ(announcements, before + 1) << "the first face gets both networks";
        }
        if (announcements == before)
            continue;
        ASSERT_EQ(announced.size(), answer.size());
        EXPECT_EQ(announced[0].bounds, answer[0].bounds);
        EXPECT_EQ(announced[0].keyPoints, answer[0].keyPoints);
        EXPECT_FALSE(announced[0].hasSmile);
        EXPECT_FALSE(announced[0].smileScore.has_value()) << "the smile is judged after";
        EXPECT_TRUE(answer[0].smileScore.has_value());
    }
    EXPECT_GT(facesSeen, 100);
    EXPECT_LT(announcements, facesSeen / 4) << "the networks take turns on a steady face";
}

TEST(LearnedFaceDetector, IsTheDefaultFallsBackToTheCascadeWithOneWarningAndCanBeSetAside)
{
    EXPECT_NE(std::dynamic_pointer_cast<VextilLearnedFaceDetector>(VextilFaceDetector::createDefault()), nullptr);

    static int warnings = 0;
    warnings = 0;
    const QtMessageHandler previous = qInstallMessageHandler(
        [](QtMsgType type, const QMessageLogContext &, const QString &) { warnings += type == QtWarningMsg; });
    auto broken = std::make_shared<VextilLearnedFaceDetector>(QStringLiteral("/nonexistent/face.onnx"),
                                                              QStringLiteral("/nonexistent/m.json"),
                                                              QStringLiteral("/nonexistent/w.bin"));
    EXPECT_FALSE(broken->isLoaded());
    const auto fallback = VextilLearnedFaceDetector::createOrFallBack(broken);
    qInstallMessageHandler(previous);
    EXPECT_NE(std::dynamic_pointer_cast<VextilCascadeFaceDetector>(fallback), nullptr);
    EXPECT_EQ(warnings, 1);

    VextilFaceDetector::setPreferredKind(VextilFaceDetectorKind::Cascade);
    EXPECT_NE(std::dynamic_pointer_cast<VextilCascadeFaceDetector>(VextilFaceDetector::createDefault()), nullptr);
    VextilFaceDetector::setPreferredKind(VextilFaceDetectorKind::Learned);
}

}  // namespace
