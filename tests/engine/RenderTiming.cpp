#include "engine/RenderTiming.h"

#include <gtest/gtest.h>

namespace {

using keladjust::RenderTiming;

bool judge(RenderTiming& timing, std::int64_t passMilliseconds, bool before) {
    bool slow = before;
    timing.notePass(1'000'000, 20, slow);  // the first pass does not count
    for (int i = 0; i < 10; ++i) {
        EXPECT_TRUE(timing.isTimed());
        EXPECT_EQ(slow, before);
        timing.notePass(passMilliseconds, 20, slow);
    }
    EXPECT_FALSE(timing.isTimed());
    return slow;
}

TEST(RenderTiming, AveragesTenPassesAfterOneToWarmUp) {
    RenderTiming timing;
    EXPECT_TRUE(judge(timing, 25, false));
    EXPECT_FALSE(judge(timing, 20, true));
    EXPECT_TRUE(judge(timing, 21, false));
    EXPECT_FALSE(judge(timing, 0, true));
}

TEST(RenderTiming, DropsTheFractionOfTheAverage) {
    RenderTiming timing;
    bool slow = true;
    timing.notePass(0, 20, slow);
    for (int i = 0; i < 10; ++i) timing.notePass(i == 0 ? 29 : 20, 20, slow);  // 20.9
    EXPECT_FALSE(slow);
}

}  // namespace
