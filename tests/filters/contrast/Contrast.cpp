#include "models/contrast/Contrast.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "support/ColourSweep.h"
#include "support/OddNumbers.h"

namespace {

using namespace keladjust::test;

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
        expectEveryEntry(
            [&](float* lut, unsigned long count, int stride) {
                return lut3d_contrastAdjustment(lut, count, stride, setting);
            },
            [&](Floats in) { return contrastTableModel(setting, in); });
    }
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

}  // namespace
