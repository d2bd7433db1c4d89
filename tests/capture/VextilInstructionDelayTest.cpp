#include "capture/VextilInstructionDelay.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

// The delay runs from the frame that made an instruction due to the first paint after it; what
// was never painted is not measured, and a repeat keeps the earlier frame.
TEST(InstructionDelay, RunsFromTheFrameThatMadeItDueToTheFirstPaint)
{
    VextilInstructionDelay delay;
    const auto t0 = VextilInstructionDelay::Clock::now();
    delay.painted(t0);  // a paint with nothing due
    EXPECT_TRUE(delay.delaysMs().isEmpty());

    delay.due(QStringLiteral("Checking your face"), t0);
    delay.due(QStringLiteral("Checking your face"), t0 + 30ms);  // the same instruction again
    delay.painted(t0 + 12ms);
    delay.painted(t0 + 40ms);  // later paints of the same instruction
    ASSERT_EQ(delay.delaysMs().size(), 1);
    EXPECT_DOUBLE_EQ(delay.delaysMs()[0], 12.0);

    // Replaced before any paint: the user saw only the newer one, measured from its own frame.
    delay.due(QStringLiteral("Looking for face"), t0 + 100ms);
    delay.due(QStringLiteral("SMILE!"), t0 + 130ms);
    delay.painted(t0 + 150ms);
    ASSERT_EQ(delay.delaysMs().size(), 2);
    EXPECT_DOUBLE_EQ(delay.delaysMs()[1], 20.0);
}
