#include "models/grain/Grain.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "support/HostPicture.h"

namespace {

using keladjust::test::flatPicture;
using keladjust::test::HostPicture;

TEST(Grain, BeginsWithTheDrawsOfTheWindowsRuntime) {
    // srand(0): 38, 7719, 21238, 2437, 8855 | 11797, 8365, 32285, 10450, 30612.
    // Sums of the last four: 40249 and 81712; z = -1.336561... and 0.855164...
    HostPicture picture = flatPicture(2, 1, 128);
    addNoiseFilter(picture.image(), 100.0f, 10.0f);                       // n = z x 12.7
    EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{111, 111, 111, 128}));  // 128 - 16.97
    EXPECT_EQ(picture.pixel(1, 0), (_tagMyRGBQUAD{138, 138, 138, 128}));  // 128 + 10.86
}

TEST(Grain, IsTheSameInEveryCall) {
    HostPicture first(97, 41, 24, IMAGE_FORMAT_BGR);
    first.fillRandom(7);
    HostPicture second(first);
    addNoiseFilter(first.image(), 60.0f, 50.0f);
    HostPicture other(500, 3, 24, IMAGE_FORMAT_BGR);
    addNoiseFilter(other.image(), 60.0f, 50.0f);
    std::srand(99);
    addNoiseFilter(second.image(), 60.0f, 50.0f);
    EXPECT_EQ(first.bytes(), second.bytes());
}

TEST(Grain, IsGreyAndScattersByItsSetting) {
    HostPicture picture = flatPicture(200, 200, 128);
    addNoiseFilter(picture.image(), 100.0f, 20.0f);
    double sum = 0;
    double squares = 0;
    for (unsigned y = 0; y < 200; ++y) {
        for (unsigned x = 0; x < 200; ++x) {
            const _tagMyRGBQUAD p = picture.pixel(x, y);
            ASSERT_TRUE(p.red == p.green && p.green == p.blue && p.alpha == 128);
            sum += p.red - 128;
            squares += (p.red - 128.0) * (p.red - 128.0);
        }
    }
    // Standard deviation 25.4, mean -0.5 by truncation; of 40000 samples both are known to 0.15 or
    // better, times four.
    EXPECT_NEAR(sum / 40000, -0.5, 0.6);
    EXPECT_NEAR(std::sqrt(squares / 40000), 25.4, 0.6);
}

TEST(Grain, IsTheProductOfAmountAndSize) {
    HostPicture one = flatPicture(50, 50, 100);
    HostPicture other(one);
    addNoiseFilter(one.image(), 50.0f, 100.0f);
    addNoiseFilter(other.image(), 100.0f, 50.0f);
    EXPECT_EQ(one.bytes(), other.bytes());
    EXPECT_NE(one.bytes(), flatPicture(50, 50, 100).bytes());
}

// From a grain that is next to nothing, where every sum with a byte is near a whole number, to one
// that leaves only black and white.
TEST(Grain, FollowsItsFormulaAtEveryStrength) {
    for (const unsigned bpp : {8u, 24u, 32u}) {
        for (const float amount : {1e-7f, 1e-4f, 0.01f, 0.3f, 1.0f, 7.0f, 33.0f, 61.7f, 100.0f,
                                   700.0f, 1e6f, 1e30f, -0.2f, -45.0f, -1e9f, INFINITY, NAN}) {
            HostPicture picture(
                257, 123, bpp,
                bpp == 32 ? IMAGE_FORMAT_BGRA : (bpp == 8 ? IMAGE_FORMAT_GRAY : IMAGE_FORMAT_BGR));
            picture.fillRandom(bpp);
            HostPicture expected(picture);
            addNoiseFilter(picture.image(), amount, 80.0f);
            keladjust::test::grainModel(*expected.image(), amount, 80.0f);
            EXPECT_EQ(picture.bytes(), expected.bytes()) << amount << ", " << bpp;
        }
    }
}

TEST(Grain, IsOffIfEitherSettingIsZero) {
    HostPicture picture(31, 9, 24, IMAGE_FORMAT_RGB);
    const auto before = picture.fillRandom(2).bytes();
    EXPECT_EQ(addNoiseFilter(picture.image(), 0.0f, 50.0f), picture.image());
    EXPECT_EQ(addNoiseFilter(picture.image(), 50.0f, 0.0f), picture.image());
    EXPECT_EQ(addNoiseFilter(picture.image(), -0.0f, NAN), picture.image());
    EXPECT_EQ(picture.bytes(), before);
    addNoiseFilter(picture.image(), 100.0f, 100.0f);
    EXPECT_NE(picture.bytes(), before);
}

TEST(Grain, RunsAlongTheBufferOfAPaddedPicture) {
    // Rows of 15 bytes in 16: ten pixels end with byte 30 of 32.
    HostPicture picture(5, 2, 24, IMAGE_FORMAT_BGR);
    std::fill_n(picture.bits(), picture.size(), std::uint8_t{128});
    addNoiseFilter(picture.image(), 100.0f, 50.0f);
    EXPECT_NE(picture.bits()[15], 128);  // padding on the way
    EXPECT_EQ(picture.bits()[30], 128);
    EXPECT_EQ(picture.bits()[31], 128);
}

}  // namespace
