#include "models/saturation/Saturation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "support/ColourSweep.h"
#include "support/OddNumbers.h"

namespace {

using namespace keladjust::test;

TEST(Saturation, FollowsTheFormulaForEveryColour) {
    for (const float setting : {100.0f, 99.5f, 50.0f, 7.0f, -30.0f, -100.0f, -250.0f}) {
        expectEveryColour([&](CxImage* image) { return saturationAdjustment(image, setting); },
                          [&](Bytes in) { return saturationModel(setting, in); });
    }
}

TEST(Saturation, FollowsTheFormulaInTables) {
    for (const float setting : {100.0f, 50.0f, -30.0f, -100.0f}) {
        expectEveryEntry(
            [&](float* lut, unsigned long count, int stride) {
                return lut3d_saturationAdjustment(lut, count, stride, setting);
            },
            [&](Floats in) { return saturationTableModel(setting, in); });
    }
}

TEST(Saturation, NeverChangesGreys) {
    for (const float setting : {100.0f, -100.0f, 1e30f, quietNan}) {
        HostPicture picture = keladjust::test::everyByte();
        const auto before = picture.bytes();
        saturationAdjustment(picture.image(), setting);
        EXPECT_EQ(picture.bytes(), before);
    }
}

TEST(Saturation, AtZeroChangesNothing) {
    HostPicture picture(61, 7, 32, IMAGE_FORMAT_BGRA);
    const auto before = picture.fillRandom(1).bytes();
    EXPECT_EQ(saturationAdjustment(picture.image(), 0.0f), picture.image());
    EXPECT_EQ(picture.bytes(), before);
}

TEST(Saturation, SettingMinus100IsTheGreyOfTheLightness) {
    HostPicture picture(1, 1, 32, IMAGE_FORMAT_RGBA);
    picture.setPixel(0, 0, {20, 90, 200, 7});
    saturationAdjustment(picture.image(), -100.0f);
    EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{110, 110, 110, 7}));
}

TEST(Saturation, Setting100SaturatesFullyAtTheSameLightness) {
    // Lightness 110 of 255: the extremes move to 0 and 220. Truncation may cost a level.
    HostPicture picture(1, 1, 24, IMAGE_FORMAT_RGB);
    picture.setPixel(0, 0, {20, 90, 200, 0});
    saturationAdjustment(picture.image(), 100.0f);
    EXPECT_NEAR(picture.pixel(0, 0).red, 220, 1);
    EXPECT_EQ(picture.pixel(0, 0).blue, 0);
}

TEST(Saturation, Setting50DoublesTheDistanceOfADullColour) {
    // Lightness 100, saturation 20 / 100 = 0.2: a = 0.5, f = 1.
    HostPicture picture(1, 1, 24, IMAGE_FORMAT_RGB);
    picture.setPixel(0, 0, {80, 100, 120, 0});
    saturationAdjustment(picture.image(), 50.0f);
    // Truncation may cost a level where the lightness is not exact in single precision.
    EXPECT_NEAR(picture.pixel(0, 0).red, 140, 1);
    EXPECT_NEAR(picture.pixel(0, 0).green, 100, 1);
    EXPECT_NEAR(picture.pixel(0, 0).blue, 60, 1);
}

TEST(Saturation, OfNaNClampsColoursToTheBottom) {
    HostPicture picture(1, 1, 32, IMAGE_FORMAT_RGBA);
    picture.setPixel(0, 0, {20, 90, 200, 7});
    saturationAdjustment(picture.image(), std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{0, 0, 0, 7}));
}

}  // namespace
