#include "detection/VextilSceneContinuity.h"

#include "LabelledPhotos.h"

#include <QRandomGenerator>

#include <gtest/gtest.h>

namespace {

// The image with every channel of every pixel moved by up to `amplitude`, like sensor noise.
QImage noisy(const QImage &image, int amplitude)
{
    QImage out = image.convertToFormat(QImage::Format_RGB32);
    QRandomGenerator random(7);
    for (int y = 0; y < out.height(); ++y) {
        auto *row = reinterpret_cast<QRgb *>(out.scanLine(y));
        for (int x = 0; x < out.width(); ++x) {
            const auto shift = [&](int c) { return std::clamp(c + int(random.bounded(2 * amplitude + 1)) - amplitude, 0, 255); };
            row[x] = qRgb(shift(qRed(row[x])), shift(qGreen(row[x])), shift(qBlue(row[x])));
        }
    }
    return out;
}

TEST(SceneContinuity, TheNextFrameContinuesAnotherSceneOrSizeDoesNot)
{
    const QList<LabelledPhoto> photos = loadLabelledPhotos();
    ASSERT_GE(photos.size(), 2);
    const QImage first = loadPhoto(photos[0]);
    const QImage other = loadPhoto(photos[3]).scaled(first.size());
    VextilSceneContinuity scene;
    EXPECT_FALSE(scene.continues(first)) << "nothing came before";
    EXPECT_TRUE(scene.continues(first));
    EXPECT_TRUE(scene.continues(noisy(first, 12))) << "sensor noise";
    EXPECT_TRUE(scene.continues(first.transformed(QTransform().translate(0, 0)).copy(4, 4, first.width(), first.height())))
        << "a slight movement";
    EXPECT_FALSE(scene.continues(other)) << "another photo of the same size";
    EXPECT_FALSE(scene.continues(first.scaled(first.width() / 2, first.height() / 2))) << "another size";
    EXPECT_FALSE(scene.continues(QImage()));
    EXPECT_FALSE(scene.continues(first)) << "a null image breaks the stream";
    scene.reset();
    EXPECT_FALSE(scene.continues(first));
}

}  // namespace
