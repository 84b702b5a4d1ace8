#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "support/HostPicture.h"

namespace {

using keladjust::test::everyFormat;
using keladjust::test::greyPicture;
using keladjust::test::HostPicture;
using keladjust::test::PixelFormat;

TEST(Sharpen, MovesAPeakOnePixelToTheRight) {
    HostPicture picture = greyPicture(11, 11, 100);
    picture.setPixel(5, 5, {200, 200, 200, 33});
    EXPECT_EQ(sharpen(picture.image(), 255.0f), picture.image());
    for (unsigned y = 0; y < 11; ++y) {
        for (unsigned x = 0; x < 11; ++x) {
            const bool besidePeak =
                (y == 5 && (x == 5 || x == 7)) || (x == 6 && (y == 4 || y == 6));
            const auto value = static_cast<std::uint8_t>(x == 6 && y == 5 ? 255
                                                         : besidePeak     ? 0
                                                                          : 100);
            const auto alpha = static_cast<std::uint8_t>(x == 5 && y == 5 ? 33 : 77);
            EXPECT_EQ(picture.pixel(x, y), (_tagMyRGBQUAD{value, value, value, alpha}))
                << x << ", " << y;
        }
    }
}

TEST(Sharpen, TakesTheEndOfTheRowAboveForTheLeftNeighbour) {
    for (const PixelFormat format :
         {PixelFormat{32, IMAGE_FORMAT_RGBA}, PixelFormat{24, IMAGE_FORMAT_BGR},
          PixelFormat{8, IMAGE_FORMAT_GRAY}}) {
        HostPicture picture(5, 4, format.bpp, format.format);
        for (unsigned i = 0; i < 20; ++i) picture.setPixel(i % 5, i / 5, {100, 100, 100, 255});
        picture.setPixel(4, 1, {60, 60, 60, 255});
        sharpen(picture.image(), 255.0f);
        EXPECT_EQ(picture.pixel(1, 2).red, 140) << format.bpp;  // 400 - 60 - 300 + 100
        EXPECT_EQ(picture.pixel(1, 1).red, 100) << format.bpp;
    }
}

TEST(Sharpen, KeepsFlatPictures) {
    for (const float amount : {1.0f, 100.0f, 255.0f, 1e6f, -50.0f}) {
        HostPicture picture = greyPicture(13, 9, 171);
        const auto before = picture.bytes();
        sharpen(picture.image(), amount);
        EXPECT_EQ(picture.bytes(), before) << amount;
    }
}

TEST(Sharpen, LeavesPicturesWithoutAnInsideAlone) {
    for (const auto& [width, height] :
         {std::pair{9u, 2u}, {9u, 1u}, {2u, 9u}, {1u, 9u}, {1u, 1u}, {2u, 2u}}) {
        for (const PixelFormat format : everyFormat) {
            HostPicture picture(width, height, format.bpp, format.format);
            const auto before = picture.fillRandom(1).bytes();
            EXPECT_EQ(sharpen(picture.image(), 200.0f), picture.image());
            EXPECT_EQ(picture.bytes(), before);
        }
    }
}

TEST(Sharpen, LeavesTheBorderAndAllAlphaAlone) {
    HostPicture picture(12, 8, 32, IMAGE_FORMAT_RGBA);
    picture.fillRandom(9);
    HostPicture before(picture);
    sharpen(picture.image(), 200.0f);
    for (unsigned y = 0; y < 8; ++y) {
        for (unsigned x = 0; x < 12; ++x) {
            if (x == 0 || y == 0 || x == 11 || y == 7) {
                EXPECT_EQ(picture.pixel(x, y), before.pixel(x, y));
            }
            EXPECT_EQ(picture.pixel(x, y).alpha, before.pixel(x, y).alpha);
        }
    }
    EXPECT_NE(picture.bytes(), before.bytes());
}

TEST(Sharpen, SoftensWhenNegativeAndStaysInRange) {
    HostPicture picture = greyPicture(11, 11, 100);
    picture.setPixel(5, 5, {200, 200, 200, 77});
    sharpen(picture.image(), -51.0f);
    EXPECT_EQ(picture.pixel(6, 5).red, 120);  // 200 - 400 / 5
    EXPECT_EQ(picture.pixel(5, 5).red, 120);  // 100 + 100 / 5
    sharpen(picture.image(), -2550.0f);
    EXPECT_EQ(picture.pixel(2, 2).red, 100);
}

TEST(Sharpen, Leaves16BitPicturesAndSettingZeroAlone) {
    HostPicture words(9, 9, 16, IMAGE_FORMAT_RGB);
    const auto before = words.fillRandom(5).bytes();
    sharpen(words.image(), 200.0f);
    EXPECT_EQ(words.bytes(), before);
    HostPicture picture(9, 9, 32, IMAGE_FORMAT_BGRA);
    const auto untouched = picture.fillRandom(5).bytes();
    sharpen(picture.image(), 0.0f);
    EXPECT_EQ(picture.bytes(), untouched);
}

}  // namespace
