#include "capture/VextilCaptureStatus.h"

#include <QSignalSpy>
#include <QTest>

#include <gtest/gtest.h>

// The parts of one change land as separate calls; the sentence is announced once, whole.
TEST(CaptureStatus, AnnouncesEachChangeOnceWhenAllItsPartsHaveLanded)
{
    VextilCaptureStatus status;
    QSignalSpy settled(&status, &VextilCaptureStatus::settled);
    status.setInstruction(QStringLiteral("Checking your face"));
    status.setProgress(0.2);
    EXPECT_EQ(settled.count(), 0) << "announced before the change settled";
    ASSERT_TRUE(settled.wait(1000));
    QTest::qWait(2 * VextilCaptureStatus::kSettlesMs);
    ASSERT_EQ(settled.count(), 1);
    EXPECT_EQ(settled.at(0).at(0).toString(), QStringLiteral("Checking your face, photo 1 of 5"));

    // The smile prompt with the bar hidden: the photos are no longer counted.
    status.setProgressShown(false);
    status.setSmilePrompt(true);
    ASSERT_TRUE(settled.wait(1000));
    EXPECT_EQ(settled.count(), 2);
    EXPECT_EQ(status.text(), QStringLiteral("SMILE!"));
}
