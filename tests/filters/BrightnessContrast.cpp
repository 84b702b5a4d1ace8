#include <gtest/gtest.h>

#include <vector>

#include "models/BrightnessContrast.h"
#include "support/ColourSweep.h"
#include "support/OddNumbers.h"

namespace {

using namespace keladjust::test;

// What a stage that treats all three channels alike makes of every byte.
std::vector<int> curveOf(CxImage* (*stage)(CxImage*, float), float setting) {
    HostPicture picture = everyByte();
    EXPECT_EQ(stage(picture.image(), setting), picture.image());
    std::vector<int> curve;
    for (unsigned i = 0; i < 256; ++i) {
        const _tagMyRGBQUAD p = picture.pixel(i, 0);
        EXPECT_TRUE(p.red == p.green && p.green == p.blue && p.alpha == 255) << i;
        curve.push_back(p.red);
    }
    return curve;
}

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
        const float value = b > 0 ? b / 100.0f + 1.0f : (1.0f - 1.0f / (b / 253.0f + 0.99f)) * 0.6f;
        expectEveryEntry(
            [&](float* lut, unsigned long count, int stride) {
                return lut3d_brightnessAdjustment(lut, count, stride, b);
            },
            [&](Floats in) {
                for (float& c : in) c = clampUnit(value > 0 ? c * value : c + value);
                return in;
            });
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

TEST(BrightnessAndContrast, AtZeroChangeNothing) {
    HostPicture picture(61, 7, 24, IMAGE_FORMAT_RGB);
    const auto before = picture.fillRandom(1).bytes();
    EXPECT_EQ(brightnessAdjustment(picture.image(), 0.0f), picture.image());
    EXPECT_EQ(contrastAdjustment(picture.image(), -0.0f), picture.image());
    EXPECT_EQ(picture.bytes(), before);
    for (const auto stage : {lut3d_brightnessAdjustment, lut3d_contrastAdjustment}) {
        expectEveryEntry([&](float* lut, unsigned long count,
                             int stride) { return stage(lut, count, stride, 0.0f); },
                         [](Floats in) { return in; });
    }
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

TEST(Contrast, FollowsItsWindowForEveryByte) {
    // 5, 85 and 170 tell single precision from double.
    for (const float setting :
         {1.0f,     5.0f,   50.0f,  85.0f,    100.0f,    170.0f,  183.0f,  184.0f,
          254.9f,   255.0f, 256.0f, 300.0f,   -1.0f,     -100.0f, -640.0f, -650.0f,
          -1000.0f, 1e30f,  -1e30f, infinity, -infinity, quietNan}) {
        const std::vector<int> curve = curveOf(contrastAdjustment, setting);
        for (int c = 0; c < 256; ++c) {
            EXPECT_EQ(curve[static_cast<std::size_t>(c)], contrastModel(setting, c))
                << setting << " on " << c;
        }
    }
}

TEST(Contrast, HighSettingsShareAFixedWindow) {
    for (const float setting : {183.5f, 200.0f, 255.0f}) {
        const std::vector<int> curve = curveOf(contrastAdjustment, setting);
        EXPECT_EQ(curve[120], 0);
        for (std::size_t c = 121; c <= 127; ++c) {
            EXPECT_EQ(curve[c], static_cast<int>(c - 120) * 17) << setting;
        }
        EXPECT_EQ(curve[128], 255);
    }
}

TEST(Contrast, SettingMinus100SqueezesBy19Levels) {
    const std::vector<int> curve = curveOf(contrastAdjustment, -100.0f);
    EXPECT_EQ(curve[0], 19);
    EXPECT_EQ(curve[255], 236);
}

TEST(Contrast, KeepsTheWindowUnroundedInTables) {
    for (const float setting : {5.0f, 85.0f, 183.3f, 200.0f, 255.0f, 300.0f, -100.0f, -700.0f}) {
        float low = (setting > 0 ? 1.0f / (1.0f - setting / 255.0f) - 1.0f : setting / 255.0f) *
                    100.0f * 0.5f;
        float high = 255.0f - low;
        float range = low < 0 ? 2.0f * low + 255.0f : 255.0f - 2.0f * low;
        if (high < low) {
            low = 120;
            high = 127;
            range = 15;
        } else if (low < -127) {
            low = -120;
            range = 15;
        }
        low /= 255.0f;
        high /= 255.0f;
        range /= 255.0f;
        expectEveryEntry(
            [&](float* lut, unsigned long count, int stride) {
                return lut3d_contrastAdjustment(lut, count, stride, setting);
            },
            [&](Floats in) {
                for (float& c : in) {
                    if (low > 0) {
                        c = c <= low ? 0.0f : c > high ? 1.0f : (c - low) / range;
                    } else {
                        c = c * range - low;
                    }
                }
                return in;
            });
    }
}

}  // namespace
