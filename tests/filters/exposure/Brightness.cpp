#include "models/exposure/Brightness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "support/ColourSweep.h"
#include "support/OddNumbers.h"

namespace {

using namespace keladjust::test;

TEST(Brightness, FollowsItsCurveForEveryByte) {
    for (const float b : {50.0f, 100.0f, 0.5f, -0.001f, -1.0f, -50.0f, -100.0f, -250.0f, -251.0f,
                          -300.0f, 1e30f, -1e30f, infinity, -infinity, quietNan}) {
        const std::vector<int> curve = curveOf(brightnessAdjustment, b);
        for (int c = 0; c < 256; ++c) {
            EXPECT_EQ(curve[static_cast<std::size_t>(c)], brightnessModel(b, c))
                << b << " on " << c;
        }
    }
}

TEST(Brightness, FollowsItsCurveInTables) {
    for (const float b : {50.0f, -0.001f, -50.0f, -100.0f, -251.0f, quietNan}) {
        expectEveryEntry(
            [&](float* lut, unsigned long count, int stride) {
                return lut3d_brightnessAdjustment(lut, count, stride, b);
            },
            [&](Floats in) { return brightnessTableModel(b, in); });
    }
}

TEST(Brightness, Setting50MultipliesByOneAndAHalfAndSaturates) {
    const std::vector<int> curve = curveOf(brightnessAdjustment, 50.0f);
    EXPECT_EQ(curve[3], 4);  // 4.5, truncated
    EXPECT_EQ(curve[169], 253);
    EXPECT_EQ(curve[170], 255);
    EXPECT_EQ(curve[171], 255);
}

TEST(Brightness, SettingMinus100TakesAbout104LevelsAway) {
    const std::vector<int> curve = curveOf(brightnessAdjustment, -100.0f);
    EXPECT_EQ(curve[104], 0);
    EXPECT_EQ(curve[105], 0);  // 0.7
    EXPECT_EQ(curve[106], 1);
    EXPECT_EQ(curve[255], 150);
}

TEST(Brightness, OfAPaddedPictureRunsAlongTheBuffer) {
    // Width 5 at 24 bits: 15 bytes of pixels in rows of 16. Two rows hold 10 pixels, and the walk
    // covers just the first 30 bytes of the 32, padding byte 15 among them.
    HostPicture picture(5, 2, 24, IMAGE_FORMAT_BGR);
    std::fill_n(picture.bits(), picture.size(), std::uint8_t{100});
    brightnessAdjustment(picture.image(), 50.0f);
    const std::vector<std::uint8_t> bytes = picture.bytes();
    for (std::size_t i = 0; i < bytes.size(); ++i) EXPECT_EQ(bytes[i], i < 30 ? 150 : 100) << i;
    EXPECT_TRUE(picture.guardsIntact());
}

TEST(Brightness, TouchesTheBytesThatAPixelHas) {
    // Depths without a meaning still have a buffer: pixels of bpp / 8 bytes, of which at most three
    // change.
    for (const unsigned bpp : {1u, 7u, 8u, 12u, 15u, 16u, 24u, 32u, 48u, 64u}) {
        HostPicture picture(5, 3, bpp, IMAGE_FORMAT_RGB);
        std::fill_n(picture.bits(), picture.size(), std::uint8_t{100});
        brightnessAdjustment(picture.image(), 50.0f);
        const std::size_t step = bpp / 8;
        const std::vector<std::uint8_t> bytes = picture.bytes();
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            const bool changed = step > 0 && i < 15 * step && i % step < 3;
            EXPECT_EQ(bytes[i], changed ? 150 : 100) << "bpp " << bpp << " byte " << i;
        }
        EXPECT_TRUE(picture.guardsIntact());
    }
}

}  // namespace
