#include "detection/VextilSceneContinuity.h"

#include "LabelledPhotos.h"

#include <VextilToolkit/VextilVideoFileReader.h>

#include <gtest/gtest.h>

namespace {

TEST(SceneContinuity, TheNextFrameContinuesAnotherSceneOrSizeDoesNot)
{
    VextilVideoFileReader clip;
    ASSERT_TRUE(clip.open(QStringLiteral(VEXTIL_SELFIE_CLIP)));
    QList<QImage> frames;  // a face with sensor noise and slight head movement
    for (auto frame = clip.readFrame(); frame && frame->index < 40; frame = clip.readFrame())
        if (frame->index >= 35)
            frames.append(frame->image);
    ASSERT_EQ(frames.size(), 5);
    const QImage other = loadPhoto(loadLabelledPhotos().value(3)).scaled(frames[0].size());
    VextilSceneContinuity scene;
    EXPECT_FALSE(scene.continues(frames[0])) << "nothing came before";
    for (int i = 1; i < frames.size(); ++i)
        EXPECT_TRUE(scene.continues(frames[i])) << "frame " << i;
    EXPECT_FALSE(scene.continues(other)) << "another photo of the same size";
    EXPECT_FALSE(scene.continues(frames[0].scaled(frames[0].size() / 2))) << "another size";
    EXPECT_FALSE(scene.continues(QImage()));
    EXPECT_FALSE(scene.continues(frames[0])) << "a null image breaks the stream";
    scene.reset();
    EXPECT_FALSE(scene.continues(frames[0]));
}

}  // namespace
