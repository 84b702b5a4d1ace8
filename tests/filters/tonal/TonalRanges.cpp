#include "models/tonal/TonalRanges.h"

#include <gtest/gtest.h>

#include <tuple>

#include "support/ColourSweep.h"
#include "support/OddNumbers.h"

namespace {

using namespace keladjust::test;

class TonalRange : public testing::TestWithParam<std::tuple<Tonal, float>> {};

TEST_P(TonalRange, FollowsTheFormulaForEveryColour) {
    const auto [tonal, setting] = GetParam();
    expectEveryColour([&](CxImage* image) { return tonal.image(image, setting); },
                      [&](Bytes in) { return tonalModel(tonal, setting, in); });
}

TEST_P(TonalRange, FollowsTheFormulaInTables) {
    const auto [tonal, setting] = GetParam();
    expectEveryEntry([&](float* lut, unsigned long count,
                         int stride) { return tonal.table(lut, count, stride, setting); },
                     [&](Floats in) { return tonalTableModel(tonal, setting, in); });
}

INSTANTIATE_TEST_SUITE_P(Highlights, TonalRange,
                         testing::Combine(testing::Values(highlights),
                                          testing::Values(100.0f, 37.0f, -100.0f, 250.0f)));
INSTANTIATE_TEST_SUITE_P(Shadows, TonalRange,
                         testing::Combine(testing::Values(shadows),
                                          testing::Values(100.0f, 23.0f, -61.0f, -400.0f)));
INSTANTIATE_TEST_SUITE_P(Whites, TonalRange,
                         testing::Combine(testing::Values(whites),
                                          testing::Values(100.0f, -100.0f, 300.0f)));
INSTANTIATE_TEST_SUITE_P(Blacks, TonalRange,
                         testing::Combine(testing::Values(blacks),
                                          testing::Values(100.0f, -100.0f, 12.5f)));

using ImageStage = CxImage* (*)(CxImage*, float);
using TableStage = float* (*)(float*, unsigned long, int, float);
constexpr ImageStage imageStages[] = {exposureAdjustment, hdrHighlight, hdrShadow, hdrWhiteLevel,
                                      hdrBlackLevel};
constexpr TableStage tableStages[] = {lut3d_exposureAdjustment, lut3d_hdrHighlight, lut3d_hdrShadow,
                                      lut3d_hdrWhiteLevel, lut3d_hdrBlackLevel};

TEST(TonalStages, AtZeroLeaveEveryBitAsItIs) {
    HostPicture picture(61, 7, 32, IMAGE_FORMAT_BGRA);
    const auto before = picture.fillRandom(1).bytes();
    for (const ImageStage stage : imageStages) {
        EXPECT_EQ(stage(picture.image(), 0.0f), picture.image());
        EXPECT_EQ(picture.bytes(), before);
    }
    for (const TableStage stage : tableStages) {
        expectEveryEntry([&](float* lut, unsigned long count,
                             int stride) { return stage(lut, count, stride, 0.0f); },
                         [](Floats in) { return in; });
    }
}

TEST(TonalStages, KeepBlackBlackAndWhiteWhite) {
    for (const ImageStage stage : imageStages) {
        for (const float setting : {100.0f, 40.0f, -40.0f, -100.0f}) {
            HostPicture picture(2, 1, 24, IMAGE_FORMAT_RGB);
            picture.setPixel(1, 0, {255, 255, 255, 0});
            stage(picture.image(), setting);
            EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{0, 0, 0, 0}));
            if (stage == exposureAdjustment && setting < 0) continue;  // darkens white by design
            EXPECT_EQ(picture.pixel(1, 0), (_tagMyRGBQUAD{255, 255, 255, 0}));
        }
    }
}

TEST(Whites, At100LiftsAFullyBrightPixelTwice) {
    HostPicture picture(2, 1, 24, IMAGE_FORMAT_RGB);
    picture.setPixel(0, 0, {100, 100, 255, 0});
    hdrWhiteLevel(picture.image(), 100.0f);
    // k = 1: 255 - 155 * 155 / 255 = 160.78, and again 255 - 94.22 * 94.22 / 255 = 220.19.
    EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{220, 220, 255, 0}));

    picture.setPixel(1, 0, {100, 100, 255, 0});
    hdrWhiteLevel(picture.image(), -100.0f);
    // k = -1, once: 255 - 355 * 155 / 255 = 39.2.
    EXPECT_EQ(picture.pixel(1, 0), (_tagMyRGBQUAD{39, 39, 255, 0}));
}

TEST(ShadowsAndBlacks, AreLopsidedTheOppositeWay) {
    const auto onGrey51 = [](ImageStage stage, float setting) {
        HostPicture picture(1, 1, 8, IMAGE_FORMAT_GRAY);
        picture.setPixel(0, 0, {51, 51, 51, 51});
        stage(picture.image(), setting);
        return int{picture.pixel(0, 0).red};
    };
    // M = 51: weight 0.8. The lift is 255 - (255 - k * 51) * 204 / 255 = 51 + 40.8 k.
    EXPECT_EQ(onGrey51(hdrShadow, 50.0f), 83);       // a = 1, k = 0.8
    EXPECT_EQ(onGrey51(hdrShadow, -50.0f), 42);      // a = -0.25, k = -0.2: 42.84
    EXPECT_EQ(onGrey51(hdrBlackLevel, 50.0f), 59);   // a = 0.25, k = 0.2: 59.16
    EXPECT_EQ(onGrey51(hdrBlackLevel, -50.0f), 18);  // a = -1, k = -0.8: 18.36
}

TEST(TonalStages, GiveADefinedResultForAnySetting) {
    for (const ImageStage stage : imageStages) {
        HostPicture picture(2, 1, 32, IMAGE_FORMAT_RGBA);
        picture.setPixel(0, 0, {10, 20, 200, 77});
        stage(picture.image(), quietNan);
        EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{0, 0, 0, 77})) << "NaN clamps to the bottom";
    }
    for (const float setting : {infinity, -infinity, 1e30f, -1e30f}) {
        for (const ImageStage stage : imageStages) {
            HostPicture picture(16, 16, 32, IMAGE_FORMAT_RGBA);
            picture.fillRandom(3);
            const HostPicture copy(picture);
            stage(picture.image(), setting);
            EXPECT_TRUE(picture.guardsIntact());
            for (unsigned i = 0; i < 256; ++i) {
                ASSERT_EQ(picture.bits()[4 * i + 3], copy.bits()[4 * i + 3]);
            }
        }
    }
    // An infinite exposure is white wherever there is light at all.
    HostPicture picture = keladjust::test::everyByte();
    exposureAdjustment(picture.image(), infinity);
    EXPECT_EQ(picture.pixel(0, 0).red, 0);
    EXPECT_EQ(picture.pixel(1, 0).red, 255);
}

}  // namespace
