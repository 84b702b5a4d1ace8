#include "models/temperature/Temperature.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>

#include "support/ColourSweep.h"

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

}  // namespace
