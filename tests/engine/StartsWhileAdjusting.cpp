// Hosts adjust on many threads while one of theirs starts the engine, and stops it.

#include <gtest/gtest.h>
#include <keladjust/CxImage.h>

#include "engine/DisplayTest.h"
#include "support/RunsOnThreads.h"

namespace {

using StartsWhileAdjusting = keladjust::test::Display;

TEST_F(StartsWhileAdjusting, EightThreads) {
    ASSERT_TRUE(start());
    const keladjust::test::RunsOnThreads runs;
    runs.during([] {
        for (int i = 0; i < 6; ++i) {
            releaseOgre();
            EXPECT_TRUE(start());
        }
    });
    expectAdjustments();
}

}  // namespace
