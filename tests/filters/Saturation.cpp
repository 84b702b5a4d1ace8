#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "support/ColourSweep.h"

namespace {

using keladjust::test::Bytes;
using keladjust::test::clampByte;
using keladjust::test::clampUnit;
using keladjust::test::expectEveryColour;
using keladjust::test::expectEveryEntry;
using keladjust::test::Floats;
using keladjust::test::HostPicture;

// One pixel on a scale of `scale`, unclamped.
Floats stretch(float setting, Floats in, float scale) {
    const float s = setting / 100.0f;
    const float hi = std::max({in[0], in[1], in[2]});
    const float lo = std::min({in[0], in[1], in[2]});
    const float delta = (hi - lo) / scale;
    if (delta == 0) return in;
    const float sum = (hi + lo) / scale;
    const float sat = sum * 0.5f < 0.5f ? delta / sum : delta / (2.0f - sum);
    const float lightness = sum * 0.5f * scale;
    for (float& c : in) {
        if (s >= 0) {
            const float f = 1.0f / (sat + s >= 1 ? sat : 1.0f - s) - 1.0f;
            c = c + (c - lightness) * f;
        } else {
            c = lightness + (c - lightness) * (1.0f + s);
        }
    }
    return in;
}

TEST(Saturation, FollowsTheFormulaForEveryColour) {
    for (const float setting : {100.0f, 50.0f, 7.0f, -30.0f, -100.0f, -250.0f}) {
        expectEveryColour([&](CxImage* image) { return saturationAdjustment(image, setting); },
                          [&](Bytes in) {
                              const Floats out =
                                  stretch(setting,
                                          {static_cast<float>(in[0]), static_cast<float>(in[1]),
                                           static_cast<float>(in[2])},
                                          255.0f);
                              return Bytes{clampByte(out[0]), clampByte(out[1]), clampByte(out[2])};
                          });
    }
}

TEST(Saturation, FollowsTheFormulaInTables) {
    for (const float setting : {100.0f, 50.0f, -30.0f, -100.0f}) {
        expectEveryEntry(
            [&](float* lut, unsigned long count, int stride) {
                return lut3d_saturationAdjustment(lut, count, stride, setting);
            },
            [&](Floats in) {
                if (in[0] == in[1] && in[1] == in[2]) return in;
                const Floats out = stretch(setting, in, 1.0f);
                return Floats{clampUnit(out[0]), clampUnit(out[1]), clampUnit(out[2])};
            });
    }
}

TEST(Saturation, NeverChangesGreys) {
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    for (const float setting : {100.0f, -100.0f, 1e30f, nan}) {
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
