#include "LabelledPhotos.h"

#include <VextilToolkit/VextilBlazeFace.h>

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

}  // namespace
