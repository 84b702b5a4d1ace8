#include "models/temperature/Tint.h"

#include <gtest/gtest.h>

#include "support/ColourSweep.h"
#include "support/OddNumbers.h"

namespace {

using namespace keladjust::test;

TEST(Tint, FollowsTheFormulaForEveryColour) {
    for (const float tint : {100.0f, 50.0f, -50.0f, -2.55f, 700.0f, 84000.0f}) {
        expectEveryColour([&](CxImage* image) { return tintAdjustment(image, tint); },
                          [&](Bytes in) { return tintModel(tint, in); });
    }
}

TEST(Tint, FollowsTheFormulaInTables) {
    for (const float tint : {100.0f, -50.0f, -2.55f}) {
        expectEveryEntry([&](float* lut, unsigned long count,
                             int stride) { return lut3d_tintAdjustment(lut, count, stride, tint); },
                         [&](Floats in) { return tintTableModel(tint, in); });
    }
}

TEST(Tint, OfSmallPositiveSettingsChangesNothingAndOfSmallNegativeOnesDoes) {
    for (const float tint : {0.01f, 1.0f, 2.55f}) {
        HostPicture picture = keladjust::test::everyByte();
        const auto before = picture.bytes();
        tintAdjustment(picture.image(), tint);
        EXPECT_EQ(picture.bytes(), before) << tint;
    }
    for (const float tint : {-0.01f, -1.0f, -2.55f}) {
        HostPicture picture = keladjust::test::everyByte();
        tintAdjustment(picture.image(), tint);
        // k = -1: grey * -1 >> 8 is -1 for every grey above 0, grey * 1 >> 8 is 0.
        EXPECT_EQ(picture.pixel(200, 0), (_tagMyRGBQUAD{199, 200, 199, 255})) << tint;
    }
}

TEST(Tint, GivesADefinedResultForAnySetting) {
    HostPicture picture(4, 4, 32, IMAGE_FORMAT_BGRA);
    const auto before = picture.fillRandom(6).bytes();
    tintAdjustment(picture.image(), quietNan);  // a strength of 0
    EXPECT_EQ(picture.bytes(), before);

    // 1e30 saturates: k = (2^31 - 1) >> 8 = 8388607. For grey 200 the product 1677721400 >> 8 is
    // 6553599, far above the clamp, and below it for green.
    HostPicture grey(1, 1, 24, IMAGE_FORMAT_RGB);
    grey.setPixel(0, 0, {200, 200, 200, 0});
    tintAdjustment(grey.image(), 1e30f);
    EXPECT_EQ(grey.pixel(0, 0), (_tagMyRGBQUAD{255, 0, 255, 0}));
}

}  // namespace
