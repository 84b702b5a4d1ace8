#include "platform/Clock.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>

namespace {

using keladjust::platform::milliseconds;
using keladjust::platform::millisecondsOf;

TEST(Clock, CountsWholeMilliseconds) {
    EXPECT_EQ(millisecondsOf(0, 10), 0);
    EXPECT_EQ(millisecondsOf(1999, 1000000), 1);
    EXPECT_EQ(millisecondsOf(3'579'545, 3'579'545), 1000);
    EXPECT_EQ(millisecondsOf(3'579'544, 3'579'545), 999);
    // Three hundred years at a gigahertz: nothing overflows.
    EXPECT_EQ(millisecondsOf(9'223'372'036'854'775'807, 1'000'000'000), 9'223'372'036'854);
}

TEST(Clock, RunsForward) {
    const std::int64_t before = milliseconds();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    const std::int64_t passed = milliseconds() - before;
    EXPECT_GE(passed, 19);
    EXPECT_LT(passed, 10000);
}

}  // namespace
