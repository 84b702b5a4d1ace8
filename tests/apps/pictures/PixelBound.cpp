#include "pictures/PixelBound.h"

#include <gtest/gtest.h>

#include "text/Failure.h"

namespace {

using namespace keladjust::app;

TEST(PixelBound, GrowsWithTheFileUpToAGibibyte) {
    const PixelBound bound;
    EXPECT_EQ(bound.pixels(0), 0u);
    EXPECT_EQ(bound.pixels(100), 1'638'400u);
    EXPECT_EQ(bound.pixels(16'384), 268'435'456u);
    EXPECT_EQ(bound.pixels(1'000'000'000'000), 268'435'456u);
    EXPECT_EQ(PixelBound::usual * 4, 1u << 30);
}

TEST(PixelBound, IsTheSameForAllFilesWhereItIsGiven) {
    const PixelBound bound(12);
    EXPECT_EQ(bound.pixels(1), 12u);
    EXPECT_EQ(bound.pixels(1'000'000), 12u);
    EXPECT_NO_THROW(bound.check(1, 3, 4));
    EXPECT_THROW(bound.check(1'000'000, 13, 1), Failure);
}

TEST(PixelBound, HoldsForTheLargestSizesThatFormatsCanName) {
    const PixelBound bound;
    EXPECT_THROW(bound.check(1'000'000, 0xFFFFFFFF, 0xFFFFFFFF), Failure);
    EXPECT_THROW(bound.check(1'000'000, 0x80000000, 0x80000000), Failure);
    EXPECT_NO_THROW(bound.check(1'000'000, 16384, 16384));
    EXPECT_THROW(bound.check(1'000'000, 16384, 16385), Failure);
}

}  // namespace
