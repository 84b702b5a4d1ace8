#include "models/colour-ranges/ColourRanges.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "support/ColourSweep.h"
#include "support/OddNumbers.h"

namespace {

using namespace keladjust::test;

class ColourRange : public testing::TestWithParam<Range> {};

TEST_P(ColourRange, FollowsTheFormulaForEveryColour) {
    const Range r = GetParam();
    expectEveryColour(
        [&](CxImage* image) {
            return doHSLAdjustFilter(image, r.min, r.max, r.hue, r.saturation, r.brightness);
        },
        [&](Bytes in) { return byteModel(r, in); });
}

TEST_P(ColourRange, FollowsTheFormulaInTables) {
    const Range r = GetParam();
    expectEveryEntry(
        [&](float* lut, unsigned long count, int stride) {
            return lut3d_doHSLAdjustFilter(lut, count, stride, r.min, r.max, r.hue, r.saturation,
                                           r.brightness);
        },
        [&](Floats in) { return rangeModel(r, in, clampUnit); });
}

INSTANTIATE_TEST_SUITE_P(Bands, ColourRange,
                         testing::Values(Range{330, 30, 25, 0, 0}, Range{330, 30, 0, -40, 0},
                                         Range{60, 180, -100, 60, 30},
                                         Range{180, 300, 100, 0, -100}, Range{0, 360, 15, 100, 100},
                                         Range{300, 0, 40, 0, 20}));

// How much of a pure colour's saturation a band takes off: of a full one whose smallest channel is
// 0 the weight is twice what that becomes.
float weightAt(float minDegree, float maxDegree, Floats pure) {
    float colour[] = {pure[0], pure[1], pure[2]};
    lut3d_adjustSaturationFilter(colour, 1, 3, minDegree, maxDegree, -100.0f);
    return 2.0f * std::min({colour[0], colour[1], colour[2]});
}

constexpr Floats atHue0{1, 0, 0};
constexpr Floats atHue15{1, 0.25f, 0};
constexpr Floats atHue30{1, 0.5f, 0};
constexpr Floats atHue60{1, 1, 0};
constexpr Floats atHue90{0.5f, 1, 0};
constexpr Floats atHue120{0, 1, 0};
constexpr Floats atHue150{0, 1, 0.5f};
constexpr Floats atHue180{0, 1, 1};
constexpr Floats atHue300{1, 0, 1};
constexpr Floats atHue345{1, 0, 0.25f};

TEST(HueBand, IsATriangleBetweenItsBounds) {
    EXPECT_EQ(weightAt(60, 180, atHue60), 0.0f);
    EXPECT_EQ(weightAt(60, 180, atHue90), 0.5f);
    EXPECT_EQ(weightAt(60, 180, atHue120), 1.0f);
    EXPECT_EQ(weightAt(60, 180, atHue150), 0.5f);
    EXPECT_EQ(weightAt(60, 180, atHue180), 0.0f);
    EXPECT_EQ(weightAt(60, 180, atHue300), 0.0f);
}

TEST(HueBand, WrapsThroughZero) {
    EXPECT_EQ(weightAt(330, 30, atHue345), 0.5f);
    EXPECT_EQ(weightAt(330, 30, atHue0), 1.0f);
    EXPECT_EQ(weightAt(330, 30, atHue15), 0.5f);
    EXPECT_EQ(weightAt(330, 30, atHue30), 0.0f);
    EXPECT_EQ(weightAt(330, 30, atHue180), 0.0f);
    EXPECT_EQ(weightAt(300, 0, atHue0), 1.0f);
}

TEST(HueBand, WithoutBoundsWeighsNothing) {
    EXPECT_EQ(weightAt(quietNan, 100, atHue60), 0.0f);
    EXPECT_EQ(weightAt(0, quietNan, atHue60), 0.0f);
}

// Channels far outside 0..1, NaN and infinities among them: every one of the ways through HSL.
TEST(ColourRange, FollowsTheFormulaInTablesOfAnyNumbers) {
    std::vector<Floats> entries;
    const float numbers[] = {-infinity, -3e38f, -2.5f, -0.0f,    0.25f,   0.5f,
                             1.0f,      1.75f,  3e38f, infinity, quietNan};
    for (const float red : numbers) {
        for (const float green : numbers) {
            for (const float blue : numbers) entries.push_back({red, green, blue});
        }
    }
    for (const Range r :
         {Range{330, 30, 25, 0, 0}, Range{60, 180, -100, 60, 30}, Range{0, 360, quietNan, 100, 100},
          Range{-90, 500, 1e30f, -300, 900}, Range{300, 0, -infinity, 5, 5}}) {
        for (const Floats& entry : entries) {
            float got[] = {entry[0], entry[1], entry[2]};
            lut3d_doHSLAdjustFilter(got, 1, 3, r.min, r.max, r.hue, r.saturation, r.brightness);
            const Floats expected = rangeModel(r, entry, clampUnit);
            ASSERT_EQ((Floats{got[0], got[1], got[2]}), expected)
                << entry[0] << ", " << entry[1] << ", " << entry[2] << ", hue " << r.hue;
        }
    }
}

TEST(ColourRanges, LeaveGreysAloneButForBrightnessAtBlue) {
    // Greys count as hue 240 without saturation; shifting or scaling the latter does nothing, and
    // the round trip of a grey is exact but for truncation in x / 255 * 255.
    const auto onGrey = [](float min, float max, float hue, float saturation, float brightness) {
        HostPicture picture(1, 1, 24, IMAGE_FORMAT_RGB);
        picture.setPixel(0, 0, {160, 160, 160, 0});
        doHSLAdjustFilter(picture.image(), min, max, hue, saturation, brightness);
        return picture.pixel(0, 0);
    };
    EXPECT_EQ(onGrey(180, 300, 90, 0, 0), (_tagMyRGBQUAD{160, 160, 160, 0}));
    EXPECT_EQ(onGrey(180, 300, 0, 100, 0), (_tagMyRGBQUAD{160, 160, 160, 0}));
    EXPECT_EQ(onGrey(0, 120, 0, 0, 100), (_tagMyRGBQUAD{160, 160, 160, 0}));
    EXPECT_EQ(onGrey(180, 300, 0, 0, 100), (_tagMyRGBQUAD{180, 180, 180, 0}));   // times 1.125
    EXPECT_EQ(onGrey(180, 300, 0, 0, -100), (_tagMyRGBQUAD{140, 140, 140, 0}));  // times 0.875
}

TEST(ColourRanges, PositiveShiftsAreAFifthStronger) {
    // Pure red at the middle of its band: +100 is 120 degrees, green; -100 is 260, between blue and
    // magenta by 20 degrees.
    const auto onRed = [](float hue) {
        HostPicture picture(1, 1, 24, IMAGE_FORMAT_RGB);
        picture.setPixel(0, 0, {0, 0, 255, 0});
        adjustHueFilter(picture.image(), 330, 30, hue);
        return picture.pixel(0, 0);
    };
    EXPECT_EQ(onRed(100.0f), (_tagMyRGBQUAD{0, 255, 0, 0}));
    const _tagMyRGBQUAD violet = onRed(-100.0f);
    EXPECT_NEAR(violet.red, 85, 1);  // 20 / 60 of 255, truncated
    EXPECT_EQ(violet.green, 0);
    EXPECT_NEAR(violet.blue, 255, 1);
}

TEST(ColourRanges, SaturationDoublesOrGoes) {
    const auto on = [](float saturation) {
        HostPicture picture(1, 1, 24, IMAGE_FORMAT_RGB);
        picture.setPixel(0, 0, {102, 102, 153, 0});  // hue 0, lightness 0.5, saturation 0.2
        adjustSaturationFilter(picture.image(), 330, 30, saturation);
        return picture.pixel(0, 0);
    };
    // Saturation 0.4 about a lightness of 127.5; truncation may cost a level.
    EXPECT_NEAR(on(100.0f).red, 178, 1);
    EXPECT_NEAR(on(100.0f).blue, 76, 1);
    const _tagMyRGBQUAD grey = on(-100.0f);
    EXPECT_EQ(grey.red, 127);
    EXPECT_EQ(grey.blue, 127);
}

TEST(ColourRanges, SingleFiltersAreTheStepsOfTheCombinedOne) {
    HostPicture picture(64, 64, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(8);
    const auto same = [&](auto single, auto combined) {
        HostPicture a(picture);
        HostPicture b(picture);
        single(a.image());
        combined(b.image());
        EXPECT_EQ(a.bytes(), b.bytes());
        EXPECT_NE(a.bytes(), picture.bytes());
    };
    same([](CxImage* i) { adjustHueFilter(i, 20, 90, 33); },
         [](CxImage* i) { doHSLAdjustFilter(i, 20, 90, 33, 0, 0); });
    same([](CxImage* i) { adjustSaturationFilter(i, 20, 90, 33); },
         [](CxImage* i) { doHSLAdjustFilter(i, 20, 90, 0, 33, 0); });
    same([](CxImage* i) { adjustBrightnessFilter(i, 20, 90, 33); },
         [](CxImage* i) { doHSLAdjustFilter(i, 20, 90, 0, 0, 33); });
    const auto sameInTables = [](auto single, const Range& r) {
        expectEveryEntry([&](float* lut, unsigned long count,
                             int stride) { return single(lut, count, stride, 20, 90, 33); },
                         [&](Floats in) { return rangeModel(r, in, clampUnit); });
    };
    sameInTables(lut3d_adjustHueFilter, {20, 90, 33, 0, 0});
    sameInTables(lut3d_adjustSaturationFilter, {20, 90, 0, 33, 0});
    sameInTables(lut3d_adjustBrightnessFilter, {20, 90, 0, 0, 33});
}

TEST(ColourRanges, AtZeroChangeNothingWhateverTheirBounds) {
    HostPicture picture(61, 7, 32, IMAGE_FORMAT_BGRA);
    const auto before = picture.fillRandom(1).bytes();
    EXPECT_EQ(doHSLAdjustFilter(picture.image(), 0, 360, 0, 0, 0), picture.image());
    EXPECT_EQ(adjustHueFilter(picture.image(), quietNan, quietNan, 0), picture.image());
    EXPECT_EQ(picture.bytes(), before);
}

TEST(ColourRanges, PixelsOfWeightZeroMakeTheRoundTripThroughHsl) {
    // Most colours lose a level in some channel each time: a user who saw none change would have a
    // library that skips them, and results that differ from the table of a GPU pass.
    HostPicture picture(1, 1, 24, IMAGE_FORMAT_RGB);
    const Range r{10, 20, 50, 0, 0};
    picture.setPixel(0, 0, {200, 101, 37, 0});
    doHSLAdjustFilter(picture.image(), r.min, r.max, r.hue, 0, 0);
    const Bytes expected = byteModel(r, {37, 101, 200});
    ASSERT_NE(expected, (Bytes{37, 101, 200})) << "pick a colour that shows the round trip";
    EXPECT_EQ(picture.pixel(0, 0).red, expected[0]);
    EXPECT_EQ(picture.pixel(0, 0).green, expected[1]);
    EXPECT_EQ(picture.pixel(0, 0).blue, expected[2]);
}

TEST(ColourRanges, GiveADefinedResultForAnySetting) {
    for (const float setting : {quietNan, infinity, -infinity, 1e30f, -1e30f}) {
        HostPicture picture(16, 16, 32, IMAGE_FORMAT_BGRA);
        picture.fillRandom(3);
        const HostPicture before(picture);
        doHSLAdjustFilter(picture.image(), setting, setting, setting, setting, setting);
        adjustHueFilter(picture.image(), 0, 360, setting);
        adjustSaturationFilter(picture.image(), 0, 360, setting);
        adjustBrightnessFilter(picture.image(), 0, 360, setting);
        EXPECT_TRUE(picture.guardsIntact());
        for (std::size_t i = 3; i < picture.size(); i += 4) {
            ASSERT_EQ(picture.bits()[i], before.bits()[i]);
        }
    }
    // A saturation of NaN clamps to 0 there: grey at full weight.
    HostPicture red(1, 1, 24, IMAGE_FORMAT_RGB);
    red.setPixel(0, 0, {0, 0, 255, 0});
    adjustSaturationFilter(red.image(), 330, 30, quietNan);
    EXPECT_EQ(red.pixel(0, 0), (_tagMyRGBQUAD{127, 127, 127, 0}));
}

}  // namespace
