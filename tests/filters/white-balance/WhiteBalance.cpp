#include "models/white-balance/WhiteBalance.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "support/HostPicture.h"

namespace {

using keladjust::test::HostPicture;
using keladjust::test::whiteBalanceModel;

TEST(WhiteBalance, MakesTheBrightestPixelsWhite) {
    HostPicture picture(10, 10, 32, IMAGE_FORMAT_BGRA);
    for (unsigned i = 0; i < 100; ++i) {
        picture.setPixel(i % 10, i / 10, {100, 80, 60, static_cast<std::uint8_t>(i)});
    }
    // Ten pixels that average (200, 220, 250) in red, green, blue; with 20 % asked for, the walk
    // stops at the many darker ones.
    for (unsigned x = 0; x < 10; ++x) {
        const bool odd = x % 2 != 0;
        picture.setPixel(x, 0,
                         odd ? _tagMyRGBQUAD{255, 230, 210, 1} : _tagMyRGBQUAD{245, 210, 190, 1});
    }
    EXPECT_EQ(whiteBalanceAdjustment(picture.image(), 100.0f), picture.image());
    // 100 x 255 / 250, 80 x 255 / 220, 60 x 255 / 200
    EXPECT_EQ(picture.pixel(3, 4), (_tagMyRGBQUAD{102, 92, 76, 43}));
    EXPECT_EQ(picture.pixel(1, 0), (_tagMyRGBQUAD{255, 255, 255, 1}));
    EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{249, 243, 242, 1}));
}

TEST(WhiteBalance, NeverCountsMoreAsWhiteThanAskedFor) {
    // 4 bright pixels of 20 are exactly a fifth, which does not exceed it: the walk goes on to the
    // next brightness, leaves that out and so finds these four. With a fourth of them more it stops
    // at once and finds none.
    const auto balancedDark = [](unsigned bright) {
        HostPicture picture(20, 1, 24, IMAGE_FORMAT_BGR);
        for (unsigned x = 0; x < 20; ++x) {
            picture.setPixel(
                x, 0, x < bright ? _tagMyRGBQUAD{200, 100, 50, 0} : _tagMyRGBQUAD{40, 40, 40, 0});
        }
        whiteBalanceAdjustment(picture.image(), 100.0f);
        return picture.pixel(19, 0);
    };
    EXPECT_EQ(balancedDark(4), (_tagMyRGBQUAD{51, 102, 204, 0}));
    EXPECT_EQ(balancedDark(5), (_tagMyRGBQUAD{40, 40, 40, 0}));
}

// However the bright rows lie: where only a few rows are looked at first, those may be the bright
// ones, or the only dark ones.
TEST(WhiteBalance, CountsBrightPixelsWhereverTheyAre) {
    for (const unsigned bpp : {24u, 32u}) {
        for (const unsigned period : {2u, 16u, 32u, 64u}) {
            for (const bool brightFirst : {true, false}) {
                HostPicture picture(40, 640, bpp, bpp == 24 ? IMAGE_FORMAT_BGR : IMAGE_FORMAT_BGRA);
                picture.fillRandom(period);
                for (unsigned y = 0; y < 640; ++y) {
                    if ((y % period == 0) == brightFirst) continue;
                    for (unsigned x = 0; x < 40; ++x) {
                        _tagMyRGBQUAD dark = picture.pixel(x, y);
                        dark.red /= 4;
                        dark.green /= 4;
                        dark.blue /= 4;
                        picture.setPixel(x, y, dark);
                    }
                }
                for (const float amount : {1.0f, 50.0f, 100.0f, 300.0f}) {
                    HostPicture balanced(picture);
                    HostPicture expected(picture);
                    whiteBalanceAdjustment(balanced.image(), amount);
                    whiteBalanceModel(*expected.image(), amount);
                    EXPECT_EQ(balanced.bytes(), expected.bytes())
                        << bpp << ", " << period << ", " << brightFirst << ", " << amount;
                }
            }
        }
    }
}

TEST(WhiteBalance, KeepsThePictureWithoutPixelsToJudgeBy) {
    HostPicture white(9, 7, 32, IMAGE_FORMAT_RGBA);
    for (unsigned i = 0; i < 63; ++i) white.setPixel(i % 9, i / 9, {255, 255, 255, 3});
    const auto before = white.bytes();
    whiteBalanceAdjustment(white.image(), 100.0f);
    EXPECT_EQ(white.bytes(), before);

    HostPicture random(31, 9, 24, IMAGE_FORMAT_BGR);
    const auto untouched = random.fillRandom(4).bytes();
    for (const float amount : {0.0f, -1.0f, -1e30f}) {
        EXPECT_EQ(whiteBalanceAdjustment(random.image(), amount), random.image());
        EXPECT_EQ(random.bytes(), untouched) << amount;
    }

    HostPicture black(5, 5, 24, IMAGE_FORMAT_BGR);
    const auto dark = black.bytes();
    whiteBalanceAdjustment(black.image(), 100.0f);
    EXPECT_EQ(black.bytes(), dark);
}

TEST(WhiteBalance, LeavesAChannelThatIsMissingInTheWhiteAlone) {
    HostPicture picture(10, 1, 24, IMAGE_FORMAT_BGR);
    for (unsigned x = 0; x < 10; ++x) picture.setPixel(x, 0, {30, 20, 10, 0});
    picture.setPixel(0, 0, {0, 200, 100, 0});
    whiteBalanceAdjustment(picture.image(), 100.0f);
    EXPECT_EQ(picture.pixel(5, 0), (_tagMyRGBQUAD{30, 25, 25, 0}));
    EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{0, 255, 255, 0}));
}

}  // namespace
