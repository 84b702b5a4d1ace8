#include "models/hue/Hue.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>

#include "support/ColourSweep.h"

namespace {

using namespace keladjust::test;

TEST(Hue, FollowsTheRotationForEveryColour) {
    for (const float angle : {30.0f, -120.0f, 360.0f}) {
        expectEveryColour([&](CxImage* image) { return hueAdjustment(image, angle); },
                          [&](Bytes rgb) {
                              const Bytes bgr = hueModel(angle, {rgb[2], rgb[1], rgb[0]});
                              return Bytes{bgr[2], bgr[1], bgr[0]};
                          });
    }
}

TEST(Hue, WorksOnBytesInMemoryOrderWhateverTheFormat) {
    HostPicture picture(1, 1, 24, IMAGE_FORMAT_RGB);
    picture.setPixel(0, 0, {30, 90, 200, 0});  // in memory 200, 90, 30
    hueAdjustment(picture.image(), 40.0f);
    const Bytes expected = hueModel(40.0f, {200, 90, 30});
    EXPECT_EQ(picture.bits()[0], expected[0]);
    EXPECT_EQ(picture.bits()[1], expected[1]);
    EXPECT_EQ(picture.bits()[2], expected[2]);
}

TEST(Hue, FullTurnLeavesPixelsWithinOneLevel) {
    // The matrix is the identity but for single-precision rounding, and truncation then takes up to
    // one level a row; rows feed on one another, but their weights for other channels are about 0.
    HostPicture picture(64, 64, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(5);
    const HostPicture before(picture);
    hueAdjustment(picture.image(), 360.0f);
    for (std::size_t i = 0; i < picture.size(); ++i) {
        EXPECT_NEAR(picture.bits()[i], before.bits()[i], 1);
    }
}

TEST(Hue, LeavesPicturesOfFewerThanThreeBytesAPixelAlone) {
    for (const unsigned bpp : {8u, 16u}) {
        HostPicture picture(9, 5, bpp, IMAGE_FORMAT_RGB);
        const auto before = picture.fillRandom(2).bytes();
        hueAdjustment(picture.image(), 90.0f);
        EXPECT_EQ(picture.bytes(), before);
    }
}

TEST(Hue, OfAPaddedPictureRunsAlongTheBuffer) {
    // 10 pixels of 3 bytes: the last two bytes of the 32 are out of reach, padding byte 15 is not.
    HostPicture picture(5, 2, 24, IMAGE_FORMAT_BGR);
    picture.fillRandom(4);
    HostPicture expected(picture);
    for (std::size_t i = 0; i < 30; i += 3) {
        std::uint8_t* p = expected.bits() + i;
        const Bytes rotated = hueModel(75.0f, {p[0], p[1], p[2]});
        for (std::size_t c = 0; c < 3; ++c) p[c] = static_cast<std::uint8_t>(rotated[c]);
    }
    hueAdjustment(picture.image(), 75.0f);
    EXPECT_EQ(picture.bytes(), expected.bytes());
    EXPECT_TRUE(picture.guardsIntact());
}

}  // namespace
