#include "models/exposure/Exposure.h"

#include <gtest/gtest.h>

#include "support/ColourSweep.h"

namespace {

using namespace keladjust::test;

TEST(Exposure, FollowsTheFormulaForEveryByteAndLeavesAlpha) {
    for (const float setting : {100.0f, -100.0f, 20.0f, -3.5f, 1000.0f}) {
        HostPicture picture = keladjust::test::everyByte();
        exposureAdjustment(picture.image(), setting);
        for (unsigned i = 0; i < 256; ++i) {
            const int grey = static_cast<int>(i);
            const int expected = exposureModel(setting, {grey, grey, grey})[0];
            const _tagMyRGBQUAD p = picture.pixel(i, 0);
            ASSERT_TRUE(p.red == expected && p.green == expected && p.blue == expected)
                << setting << " on " << i;
            ASSERT_EQ(p.alpha, 255);
        }
        expectEveryEntry(
            [&](float* lut, unsigned long count, int stride) {
                return lut3d_exposureAdjustment(lut, count, stride, setting);
            },
            [&](Floats in) { return exposureTableModel(setting, in); });
    }
}

TEST(Exposure, Setting100MultipliesByTwoToTheOnePointTwo) {
    HostPicture picture = keladjust::test::everyByte();
    exposureAdjustment(picture.image(), 100.0f);
    EXPECT_EQ(picture.pixel(100, 0).red, 229);  // 100 * 2.2974, truncated
    EXPECT_EQ(picture.pixel(112, 0).red, 255);

    HostPicture darker = keladjust::test::everyByte();
    exposureAdjustment(darker.image(), -100.0f);
    EXPECT_EQ(darker.pixel(100, 0).red, 43);  // 100 / 2.2974 = 43.53
}

TEST(Exposure, TruncatesRatherThanRounds) {
    // 2^(x / 50 * 0.6) = 1.5 at x = 50 * log2(1.5) / 0.6 = 48.747; a little more keeps 3 * f
    // at 4.5.
    HostPicture picture = keladjust::test::everyByte();
    exposureAdjustment(picture.image(), 48.75f);
    EXPECT_EQ(picture.pixel(3, 0).red, 4);
}

}  // namespace
