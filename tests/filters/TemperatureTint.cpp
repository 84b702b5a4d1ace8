#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>

#include "models/TemperatureTint.h"
#include "support/ColourSweep.h"
#include "support/OddNumbers.h"

namespace {

using namespace keladjust::test;

TEST(Temperature, FollowsTheFormulaForEveryColour) {
    for (const long setting : {0L, 9000L, 11499L, 11501L, 14000L, 16400L, -2147483647L}) {
        expectEveryColour(
            [&](CxImage* image) { return temperatureAdjustment(image, setting); },
            [&](Bytes in) { return temperatureModel(static_cast<double>(setting), in); });
    }
}

TEST(Temperature, FollowsTheFormulaInTables) {
    for (const long setting : {0L, 9000L, 11499L, 11501L, 14000L}) {
        expectEveryEntry(
            [&](float* lut, unsigned long count, int stride) {
                return lut3d_temperatureAdjustment(lut, count, stride, setting);
            },
            [&](Floats in) { return temperatureTableModel(static_cast<double>(setting), in); });
    }
}

TEST(TemperatureAndTint, AtIdentityChangeNothing) {
    HostPicture picture(61, 7, 32, IMAGE_FORMAT_BGRA);
    const auto before = picture.fillRandom(1).bytes();
    EXPECT_EQ(temperatureAdjustment(picture.image(), 11500), picture.image());
    EXPECT_EQ(tintAdjustment(picture.image(), 0.0f), picture.image());
    EXPECT_EQ(picture.bytes(), before);
    expectEveryEntry(
        [](float* lut, unsigned long count, int stride) {
            return lut3d_temperatureAdjustment(lut, count, stride, 11500);
        },
        [](Floats in) { return in; });
    expectEveryEntry([](float* lut, unsigned long count,
                        int stride) { return lut3d_tintAdjustment(lut, count, stride, 0.0f); },
                     [](Floats in) { return in; });
}

TEST(Temperature, JumpsAcrossItsIdentity) {
    // Just below stands a bluish 14501 kelvin, just above a reddish 6599, at the same distance from
    // neutral light: a smooth passage would leave this pixel almost alone.
    const auto redOverBlue = [](long setting) {
        HostPicture picture(1, 1, 24, IMAGE_FORMAT_RGB);
        picture.setPixel(0, 0, {120, 130, 120, 0});
        temperatureAdjustment(picture.image(), setting);
        return picture.pixel(0, 0).red - picture.pixel(0, 0).blue;
    };
    EXPECT_LT(redOverBlue(11499), 0);
    EXPECT_GT(redOverBlue(11501), redOverBlue(11499));
    EXPECT_GE(redOverBlue(11501), 0);
}

TEST(Temperature, StandsStillFrom16400Upwards) {
    HostPicture reference = HostPicture(64, 64, 32, IMAGE_FORMAT_BGRA);
    reference.fillRandom(9);
    HostPicture at16400(reference);
    temperatureAdjustment(at16400.image(), 16400);
    for (const long setting : {16401L, 20000L, 2147483647L, LONG_MAX}) {
        HostPicture picture(reference);
        temperatureAdjustment(picture.image(), setting);
        EXPECT_EQ(picture.bytes(), at16400.bytes()) << setting;
    }
}

TEST(Temperature, TakesAnyWholeNumber) {
    // The difference of a setting near the end of the range must not wrap round to the other side
    // of the scale.
    HostPicture picture(1, 1, 24, IMAGE_FORMAT_RGB);
    picture.setPixel(0, 0, {90, 200, 140, 0});
    temperatureAdjustment(picture.image(), LONG_MIN);
    const Bytes expected = temperatureModel(static_cast<double>(LONG_MIN), {140, 200, 90});
    EXPECT_EQ(picture.pixel(0, 0).red, expected[0]);
    EXPECT_EQ(picture.pixel(0, 0).green, expected[1]);
    EXPECT_EQ(picture.pixel(0, 0).blue, expected[2]);
}

TEST(Temperature, KeepsTheLightnessOfGreys) {
    HostPicture picture = keladjust::test::everyByte();
    temperatureAdjustment(picture.image(), 8000);
    for (unsigned i = 0; i < 256; ++i) {
        const _tagMyRGBQUAD p = picture.pixel(i, 0);
        const int sum = std::max({p.red, p.green, p.blue}) + std::min({p.red, p.green, p.blue});
        // Each of the two channels may lose one level to truncation.
        EXPECT_LE(sum, static_cast<int>(2 * i));
        EXPECT_GE(sum, static_cast<int>(2 * i) - 2);
    }
}

TEST(Tint, FollowsTheFormulaForEveryColour) {
    for (const float tint : {100.0f, 50.0f, -50.0f, -2.55f, 700.0f, 84000.0f}) {
        expectEveryColour([&](CxImage* image) { return tintAdjustment(image, tint); },
                          [&](Bytes in) { return tintModel(tint, in); });
    }
}

TEST(Tint, FollowsTheFormulaInTables) {
    for (const float tint : {100.0f, -50.0f, -2.55f}) {
        const auto k = static_cast<float>(std::floor(std::trunc(tint * 100.0f) / 256.0f));
        const float f = k / 255.0f;
        expectEveryEntry([&](float* lut, unsigned long count,
                             int stride) { return lut3d_tintAdjustment(lut, count, stride, tint); },
                         [&](Floats in) {
                             const float grey = in[0] * 0.3f + in[1] * 0.59f + in[2] * 0.11f;
                             return Floats{clampUnit(in[0] + grey * f), clampUnit(in[1] - grey * f),
                                           clampUnit(in[2] + grey * f)};
                         });
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

TEST(CreateTemperateColor, Covers30000DownwardsInStepsOf100) {
    CxImage* strip = createTemperateColor(300, 2);
    ASSERT_NE(strip, nullptr);
    EXPECT_EQ(strip->GetWidth(), 300u);
    EXPECT_EQ(strip->GetHeight(), 2u);
    EXPECT_EQ(strip->GetBpp(), 24u);
    EXPECT_EQ(strip->getFormat(), IMAGE_FORMAT_BGR);
    for (int x = 0; x < 300; ++x) {
        const BlackBody body = blackBody(30000 - 100 * x);
        for (int y = 0; y < 2; ++y) {
            const _tagMyRGBQUAD p = strip->GetPixelColor(x, y, true);
            EXPECT_EQ(p.red, static_cast<int>(body.rgb[0] * 255)) << x;
            EXPECT_EQ(p.green, static_cast<int>(body.rgb[1] * 255)) << x;
            EXPECT_EQ(p.blue, static_cast<int>(body.rgb[2] * 255)) << x;
        }
    }
    // Column 290 is 1000 K; below it the scale ends.
    for (int x = 291; x < 300; ++x) {
        EXPECT_EQ(strip->GetPixelColor(x, 0, true), strip->GetPixelColor(290, 0, true));
    }
    releaseCxImage(strip);
}

TEST(CreateTemperateColor, OfNoSizeIsEmpty) {
    for (const auto& [width, height] : {std::pair{0, 5}, std::pair{5, 0}, std::pair{-1, 5},
                                        std::pair{5, -1}, std::pair{INT_MAX, INT_MAX}}) {
        CxImage* strip = createTemperateColor(width, height);
        ASSERT_NE(strip, nullptr);
        EXPECT_EQ(strip->GetBits(), nullptr);
        EXPECT_EQ(strip->GetWidth(), 0u);
        EXPECT_EQ(strip->getFormat(), IMAGE_FORMAT_UNKNOWN);
        releaseCxImage(strip);
    }
}

}  // namespace
