#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "models/blur/StackBlur.h"
#include "support/HostPicture.h"

namespace {

using keladjust::test::flatPicture;
using keladjust::test::HostPicture;

TEST(Diffuse, DoublesAtSetting720) {
    // Negative: brightened as much, not blurred.
    HostPicture picture(256, 1, 32, IMAGE_FORMAT_BGRA);
    for (unsigned i = 0; i < 256; ++i) {
        const auto value = static_cast<std::uint8_t>(i);
        picture.setPixel(i, 0, {value, value, value, value});
    }
    diffuse(picture.image(), -720.0f);
    for (unsigned i = 0; i < 256; ++i) {
        const auto value = static_cast<std::uint8_t>(std::min(2 * i, 255u));
        EXPECT_EQ(picture.pixel(i, 0),
                  (_tagMyRGBQUAD{value, value, value, static_cast<std::uint8_t>(i)}));
    }
}

TEST(Diffuse, At1440OnlyBlurs) {
    HostPicture picture(33, 20, 24, IMAGE_FORMAT_BGR);
    picture.fillRandom(3);
    HostPicture expected(picture);
    diffuse(picture.image(), 1440.0f);
    keladjust::test::blurModel(expected.bits(), 33, 20, 3, 1);
    EXPECT_EQ(picture.bytes(), expected.bytes());
}

TEST(Diffuse, BrightensAlikeInBothDirectionsAndBlursOnlyInOne) {
    // Rows with and without padding, gains that whole numbers can stand for and others.
    for (const int bytes : {3, 4}) {
        for (float setting = 1.0f; setting < 1440.0f; setting += 1.0f) {
            HostPicture positive(21, 16, static_cast<unsigned>(8 * bytes), IMAGE_FORMAT_BGR);
            positive.fillRandom(3);
            HostPicture negative(positive);
            diffuse(positive.image(), setting);
            diffuse(negative.image(), -setting);
            keladjust::test::blurModel(negative.bits(), 21, 16, bytes, 1);
            ASSERT_EQ(positive.bytes(), negative.bytes()) << setting << ", " << bytes;
        }
    }
}

TEST(Diffuse, At100GainsAFifth) {
    HostPicture picture = flatPicture(9, 9, 100);
    std::fill_n(picture.bits(), picture.size(), std::uint8_t{100});
    for (unsigned i = 0; i < 81; ++i) picture.setPixel(i % 9, i / 9, {100, 100, 100, 255});
    diffuse(picture.image(), 100.0f);
    EXPECT_EQ(picture.pixel(4, 4).red, 121);  // 1 + sin(pi / 14.4) = 1.2164
}

TEST(Diffuse, AtZeroChangesNothing) {
    HostPicture picture(20, 9, 24, IMAGE_FORMAT_RGB);
    const auto before = picture.fillRandom(2).bytes();
    EXPECT_EQ(diffuse(picture.image(), -0.0f), picture.image());
    EXPECT_EQ(picture.bytes(), before);
}

}  // namespace
