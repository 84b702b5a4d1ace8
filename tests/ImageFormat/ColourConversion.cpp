#include <gtest/gtest.h>
#include <keladjust/CxImage.h>

#include <cfenv>

#include "support/HostPicture.h"

namespace {

_tagMyRGBQUAD rgb(unsigned char r, unsigned char g, unsigned char b) {
    return {b, g, r, 255};
}

// Hue, saturation, lightness in the bytes that hold them.
_tagMyRGBQUAD hsl(unsigned char h, unsigned char s, unsigned char l) {
    return {l, s, h, 0};
}

TEST(RgbToHsl, PrimariesAndGrey) {
    EXPECT_EQ(CxImage::RGBtoHSL(rgb(255, 0, 0)), hsl(0, 255, 128));
    EXPECT_EQ(CxImage::RGBtoHSL(rgb(0, 255, 0)), hsl(85, 255, 128));
    EXPECT_EQ(CxImage::RGBtoHSL(rgb(0, 0, 255)), hsl(170, 255, 128));
    EXPECT_EQ(CxImage::RGBtoHSL(rgb(128, 128, 128)), hsl(170, 0, 128));
    EXPECT_EQ(CxImage::RGBtoHSL(rgb(0, 0, 0)), hsl(170, 0, 0));
    EXPECT_EQ(CxImage::RGBtoHSL(rgb(255, 255, 255)), hsl(170, 0, 255));
}

TEST(RgbToHsl, HuesBelowRedWrapToTheTop) {
    // delta 200: Bdelta = (100 * 42 + 100) / 200 = 21, Gdelta = 42; H = 21 - 42 = -21.
    EXPECT_EQ(CxImage::RGBtoHSL(rgb(200, 0, 100)).red, 256 - 21);
}

TEST(RgbToHsl, WorkedExampleOfEachHalfOfTheLightness) {
    // sum 120, L = 121 * 255 / 510 = 60; S = (80 * 255 + 60) / 120 = 170; G is largest:
    // Rdelta = (80 * 42 + 40) / 80 = 42, Bdelta = (60 * 42 + 40) / 80 = 32; H = 85 + 42 - 32.
    EXPECT_EQ(CxImage::RGBtoHSL(rgb(20, 100, 40)), hsl(95, 170, 60));
    // sum 430, L = 431 * 255 / 510 = 215; S = (70 * 255 + 40) / 80 = 223; B is largest:
    // Gdelta = (70 * 42 + 35) / 70 = 42, Rdelta = (35 * 42 + 35) / 70 = 21; H = 170 + 42 - 21.
    EXPECT_EQ(CxImage::RGBtoHSL(rgb(215, 180, 250)), hsl(191, 223, 215));
}

TEST(HslToRgb, TruncatesSoThatRedDoesNotComeBackWhole) {
    EXPECT_EQ(CxImage::HSLtoRGB(hsl(0, 255, 128)), (_tagMyRGBQUAD{1, 1, 254, 0}));
}

TEST(HslToRgb, WithoutSaturationIsGrey) {
    EXPECT_EQ(CxImage::HSLtoRGB(hsl(33, 0, 255)), (_tagMyRGBQUAD{255, 255, 255, 0}));
    EXPECT_EQ(CxImage::HSLtoRGB(hsl(33, 0, 0)), (_tagMyRGBQUAD{0, 0, 0, 0}));
}

TEST(HueToRgb, IsAPlateauWithTwoSlopes) {
    EXPECT_EQ(CxImage::HueToRGB(0.2f, 0.8f, 0.0f), 0.2f);
    EXPECT_FLOAT_EQ(CxImage::HueToRGB(0.2f, 0.8f, 30.0f), 0.5f);
    EXPECT_EQ(CxImage::HueToRGB(0.2f, 0.8f, 60.0f), 0.8f);
    EXPECT_EQ(CxImage::HueToRGB(0.2f, 0.8f, 179.0f), 0.8f);
    EXPECT_FLOAT_EQ(CxImage::HueToRGB(0.2f, 0.8f, 210.0f), 0.5f);
    EXPECT_EQ(CxImage::HueToRGB(0.2f, 0.8f, 240.0f), 0.2f);
    EXPECT_EQ(CxImage::HueToRGB(0.2f, 0.8f, 359.0f), 0.2f);
}

TEST(HueToRgb, CorrectsTheHueOnce) {
    EXPECT_FLOAT_EQ(CxImage::HueToRGB(0.2f, 0.8f, 390.0f), 0.5f);
    EXPECT_EQ(CxImage::HueToRGB(0.2f, 0.8f, -240.0f), 0.8f);
    EXPECT_EQ(CxImage::HueToRGB(0.2f, 0.8f, 780.0f), 0.2f);  // 420: above every sector
}

TEST(HslToRgb, ComputesInTheDefaultEnvironmentAndRestoresTheCallers) {
    std::fesetround(FE_UPWARD);
    const _tagMyRGBQUAD red = CxImage::HSLtoRGB(hsl(0, 255, 128));
    const int rounding = std::fegetround();
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(red, (_tagMyRGBQUAD{1, 1, 254, 0}));
    EXPECT_EQ(rounding, FE_UPWARD);
}

}  // namespace
