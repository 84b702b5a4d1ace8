#include "models/lens/Distortion.h"

#include <gtest/gtest.h>
#include <keladjust/keladjust.h>

#include <cstddef>
#include <cstdint>

#include "support/HostPicture.h"

namespace {

using keladjust::test::distortionModel;
using keladjust::test::HostPicture;

HostPicture greyRamp(unsigned width, unsigned height) {
    HostPicture picture(width, height, 8, IMAGE_FORMAT_GRAY);
    picture.fillRandom(width + height);
    return picture;
}

TEST(Distortion, KeepsTheCentreAndAtFullStrengthTheCorner) {
    HostPicture picture = greyRamp(40, 30);
    HostPicture before(picture);
    EXPECT_EQ(distortFilter(picture.image(), 100.0f), picture.image());
    EXPECT_EQ(picture.pixel(20, 15).red, before.pixel(20, 15).red);
    EXPECT_EQ(picture.pixel(0, 0).red, before.pixel(0, 0).red);  // half the diagonal away: 1
    EXPECT_NE(picture.bytes(), before.bytes());
}

TEST(Distortion, AddsTheSourceColumnAsBytes) {
    // One row: every source row is 0, and a pixel's bytes begin at the byte of the column's number.
    HostPicture picture(16, 1, 32, IMAGE_FORMAT_BGRA);
    for (std::size_t i = 0; i < 64; ++i) picture.bits()[i] = static_cast<std::uint8_t>(i);
    distortFilter(picture.image(), -1e-3f);  // columns 0..15 stay, but for truncation
    for (std::size_t x = 0; x < 16; ++x) {
        const int first = picture.bits()[4 * x];
        EXPECT_LE(first, static_cast<int>(x) + 1);
        EXPECT_GE(first, static_cast<int>(x) - 1);
        EXPECT_EQ(picture.bits()[4 * x + 3], first + 3);
    }
}

TEST(Distortion, KeepsAPictureOfOnePixel) {
    for (const float setting : {100.0f, -100.0f, 1.0f}) {
        HostPicture picture(1, 1, 32, IMAGE_FORMAT_BGRA);
        const auto before = picture.fillRandom(1).bytes();
        distortFilter(picture.image(), setting);
        EXPECT_EQ(picture.bytes(), before) << setting;
    }
}

TEST(Distortion, LeavesBytesWithoutASourceAsTheyWere) {
    // So strong a setting throws the corner's source far out of the picture.
    HostPicture picture = greyRamp(60, 40);
    HostPicture expected(picture);
    HostPicture before(picture);
    distortFilter(picture.image(), -3000.0f);
    distortionModel(*expected.image(), -3000.0f);
    EXPECT_EQ(picture.bytes(), expected.bytes());
    EXPECT_EQ(picture.pixel(0, 0).red, before.pixel(0, 0).red);
    EXPECT_TRUE(picture.guardsIntact());
}

TEST(Distortion, CutsCoordinatesOfHugePicturesTo16Bits) {
    // Beyond column 32767 coordinates turn negative and find no source.
    HostPicture picture(70000, 1, 8, IMAGE_FORMAT_GRAY);
    picture.fillRandom(6);
    HostPicture expected(picture);
    distortFilter(picture.image(), 20.0f);
    distortionModel(*expected.image(), 20.0f);
    EXPECT_EQ(picture.bytes(), expected.bytes());
}

}  // namespace
