#include "core/VextilFlowLatch.h"

#include <gtest/gtest.h>

// One flow at a time, one report each, whoever closes it first decides the outcome.
TEST(FlowLatch, ReportsEachFlowOnceWithTheOutcomeDecidedFirst)
{
    VextilFlowLatch latch;
    EXPECT_FALSE(latch.isOpen());
    EXPECT_FALSE(latch.take()) << "nothing to report before the first flow";

    latch.open();
    EXPECT_TRUE(latch.isOpen());
    EXPECT_FALSE(latch.take()) << "an open flow that is not closing has nothing to report";
    latch.close(true, std::nullopt);
    EXPECT_TRUE(latch.isClosing());
    EXPECT_FALSE(latch.isOpen());
    // The host's window goes while the screens leave: the accepted capture stands.
    latch.close(false, VextilError::createVextilSDKErrorWithCode(VextilErrorCodeCaptureFailed));
    const auto outcome = latch.take();
    ASSERT_TRUE(outcome);
    EXPECT_TRUE(outcome->success);
    EXPECT_FALSE(outcome->error);
    EXPECT_FALSE(latch.take()) << "reported twice";
    EXPECT_TRUE(latch.hasReported());
    latch.close(false, std::nullopt);
    EXPECT_FALSE(latch.take()) << "a reported flow was closed again";

    latch.open();
    latch.close(false, VextilError::createVextilSDKErrorWithCode(VextilErrorCodeCaptureFailed));
    const auto failed = latch.take();
    ASSERT_TRUE(failed);
    EXPECT_FALSE(failed->success);
    ASSERT_TRUE(failed->error);
    EXPECT_EQ(failed->error->code, VextilErrorCodeCaptureFailed);
}
