#include "models/vibrance/Vibrance.h"

#include <gtest/gtest.h>

#include "support/ColourSweep.h"
#include "support/OddNumbers.h"

namespace {

using namespace keladjust::test;

TEST(Vibrance, FollowsTheFormulaForEveryColour) {
    for (const float vibrance : {100.0f, 33.0f, -100.0f, 5000.0f}) {
        expectEveryColour([&](CxImage* image) { return vibranceAdjustment(image, vibrance); },
                          [&](Bytes in) { return vibranceModel(vibrance, in); });
    }
}

TEST(Vibrance, FollowsTheFormulaInTables) {
    for (const float vibrance : {100.0f, 33.0f, -100.0f}) {
        expectEveryEntry(
            [&](float* lut, unsigned long count, int stride) {
                return lut3d_vibranceAdjustment(lut, count, stride, vibrance);
            },
            [&](Floats in) { return vibranceTableModel(vibrance, in); });
    }
}

TEST(Vibrance, WorkedExample) {
    HostPicture picture(1, 1, 24, IMAGE_FORMAT_RGB);
    picture.setPixel(0, 0, {100, 100, 200, 0});
    vibranceAdjustment(picture.image(), 100.0f);
    EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{64, 64, 235, 0}));
}

TEST(Vibrance, LeavesGreysAloneInBothForms) {
    HostPicture picture = keladjust::test::everyByte();
    const auto before = picture.bytes();
    vibranceAdjustment(picture.image(), 100.0f);
    EXPECT_EQ(picture.bytes(), before);

    float grey[] = {0.25f, 0.25f, 0.25f};
    lut3d_vibranceAdjustment(grey, 1, 3, 100.0f);
    // f * 0.25 + (1 - f) * 0.25 in single precision; f = 1.8.
    EXPECT_FLOAT_EQ(grey[0], 0.25f);
    EXPECT_EQ(grey[0], grey[1]);
    EXPECT_EQ(grey[1], grey[2]);
}

TEST(VibranceAndHue, AtZeroChangeNothing) {
    HostPicture picture(61, 7, 32, IMAGE_FORMAT_BGRA);
    const auto before = picture.fillRandom(1).bytes();
    EXPECT_EQ(vibranceAdjustment(picture.image(), 0.0f), picture.image());
    EXPECT_EQ(hueAdjustment(picture.image(), 0.0f), picture.image());
    EXPECT_EQ(picture.bytes(), before);
}

TEST(VibranceAndHue, GiveADefinedResultForAnySetting) {
    // NaN: the truncated gain is 0, so k stays 256 and nothing moves.
    HostPicture picture(4, 4, 32, IMAGE_FORMAT_BGRA);
    const auto before = picture.fillRandom(6).bytes();
    vibranceAdjustment(picture.image(), quietNan);
    EXPECT_EQ(picture.bytes(), before);
    // A hue of NaN or infinity has no cosine: all three channels clamp to the bottom.
    for (const float angle : {quietNan, infinity}) {
        HostPicture hue(picture);
        hueAdjustment(hue.image(), angle);
        for (std::size_t i = 0; i < hue.size(); ++i) {
            EXPECT_EQ(hue.bits()[i], i % 4 == 3 ? before[i] : 0);
        }
    }
    // 1e30 saturates the gain: 256 + (2^31 - 1) wraps to -2147483393 for every pixel that is not
    // greyish, and the products wrap with it: red 200, green and blue 100, L 150 give
    // (200 k + 150 (256 - k)) mod 2^32 = 50 k + 38400 mod 2^32 = 51150 -> 199, and for 100
    // 38400 - 50 k mod 2^32 = 25650 -> 100.
    HostPicture huge(1, 1, 24, IMAGE_FORMAT_RGB);
    huge.setPixel(0, 0, {100, 100, 200, 0});
    vibranceAdjustment(huge.image(), 1e30f);
    EXPECT_EQ(huge.pixel(0, 0), (_tagMyRGBQUAD{100, 100, 199, 0}));
}

}  // namespace
