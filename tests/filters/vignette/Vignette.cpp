#include "models/vignette/Vignette.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>

#include "support/HostPicture.h"

namespace {

using keladjust::test::greyPicture;
using keladjust::test::HostPicture;
using keladjust::test::vignetteMaskModel;
using keladjust::test::VignetteSettings;

CxImage* apply(HostPicture& picture, const VignetteSettings& s) {
    return vignetteAdjustFilter(picture.image(), s.amount, s.feather, s.highlights, s.size,
                                s.roundness, s.exposure);
}

TEST(Vignette, NeedsAnAmountOrAnExposure) {
    for (const float other : {0.0f, 50.0f, 100.0f, -30.0f}) {
        HostPicture picture(40, 30, 24, IMAGE_FORMAT_BGR);
        const auto before = picture.fillRandom(3).bytes();
        EXPECT_EQ(apply(picture, {0, other, other, other, other, -0.0f}), picture.image());
        EXPECT_EQ(picture.bytes(), before);
    }
}

TEST(Vignette, ExposesOnlyTheInside) {
    HostPicture picture = greyPicture(200, 100, 90);
    picture.setPixel(100, 50, {130, 90, 10, 5});
    const VignetteSettings settings{0, 50, 50, 50, 0, 100};
    apply(picture, settings);
    EXPECT_EQ(picture.pixel(100, 50), (_tagMyRGBQUAD{255, 180, 20, 5}));
    EXPECT_EQ(picture.pixel(90, 40), (_tagMyRGBQUAD{180, 180, 180, 77}));
    // Semi-axes 60 and 30, band 18; the corner lies far outside.
    EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{90, 90, 90, 77}));
    const int between = picture.pixel(100 + 69, 50).red;  // the middle of the band
    EXPECT_GT(between, 130);
    EXPECT_LT(between, 140);
}

// Columns and rows where the inside ends: what size and roundness make of the picture's shape.
void expectInside(const VignetteSettings& settings, unsigned acrossX, unsigned acrossY) {
    HostPicture picture = greyPicture(1000, 500, 100);
    apply(picture, settings);
    EXPECT_EQ(picture.pixel(500 + acrossX, 250).red, 200);
    EXPECT_LT(picture.pixel(500 + acrossX + 1, 250).red, 200);
    EXPECT_EQ(picture.pixel(500 - acrossX, 250).red, 200);
    EXPECT_EQ(picture.pixel(500, 250 + acrossY).red, 200);
    EXPECT_LT(picture.pixel(500, 250 + acrossY + 1).red, 200);
    EXPECT_EQ(picture.pixel(500, 250 - acrossY).red, 200);
}

TEST(Vignette, FollowsThePictureOrMakesACircle) {
    expectInside({0, 0, 50, 0, 0, 100}, 100, 50);
    expectInside({0, 0, 50, 0, 100, 100}, 50, 50);
    expectInside({0, 0, 50, 0, 50, 100}, 75, 50);
    expectInside({0, 0, 50, 0, -100, 100}, 100, 50);  // a negative roundness does nothing
    expectInside({0, 0, 50, 25, 0, 100}, 200, 100);
}

TEST(Vignette, DarkensTheBorderToBlack) {
    HostPicture picture = greyPicture(100, 60, 200);
    apply(picture, {-100, 0, 50, 0, 0, 0});
    EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{0, 0, 0, 77}));
    EXPECT_EQ(picture.pixel(99, 30), (_tagMyRGBQUAD{0, 0, 0, 77}));
    EXPECT_EQ(picture.pixel(50, 30), (_tagMyRGBQUAD{200, 200, 200, 77}));
}

TEST(Vignette, ProtectsOrSuppressesHighlightsOfTheBorder) {
    const auto corner = [](float highlights) {
        HostPicture picture = greyPicture(100, 60, 200);
        apply(picture, {-50, 0, highlights, 0, 0, 0});
        return int{picture.pixel(0, 0).red};
    };
    // 100 without; l = +-0.5 x (1 - 100 / 255) = +-0.3039: 255 - (255 -+ 30.39) x 155 / 255.
    EXPECT_EQ(corner(50), 100);
    EXPECT_EQ(corner(100), 118);
    EXPECT_EQ(corner(0), 81);
}

TEST(Vignette, OfOnePixelIsAllInside) {
    HostPicture picture = greyPicture(1, 1, 60);
    apply(picture, {-100, 50, 50, 50, 50, 100});
    EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{120, 120, 120, 77}));
}

// Each setting moves the mask; a mix-up of two of them would show here.
TEST(Vignette, FollowsItsFormulaForEverySetting) {
    constexpr VignetteSettings settings[] = {
        {-100, 50, 50, 50, 0, 0},    {-60, 100, 100, 0, 30, 40},    {80, 0, 0, 20, 100, -50},
        {100, 30, 20, 100, 60, 100}, {-40, -80, 70, 10, 0, 10},     {30, 200, 90, -40, -20, 5},
        {-100, 40, 50, -25, 0, 20},  {500, 60, 300, 30, 250, -400},
    };
    for (const VignetteSettings& s : settings) {
        for (const auto& [width, height] :
             {std::pair{90u, 61u}, {45u, 80u}, {1u, 20u}, {20u, 1u}}) {
            HostPicture picture(width, height, 32, IMAGE_FORMAT_RGBA);
            picture.fillRandom(12);
            HostPicture expected(picture);
            apply(picture, s);
            keladjust::test::vignetteModel(*expected.image(), s);
            EXPECT_EQ(picture.bytes(), expected.bytes()) << s.amount << ", " << width;
        }
    }
}

TEST(Vignette, KeepsCountOfColumnsInWidePictures) {
    // Wider than the runs in which rows are taken.
    const VignetteSettings settings{-80, 60, 80, 30, 0, 30};
    HostPicture picture(5001, 3, 24, IMAGE_FORMAT_RGB);
    picture.fillRandom(1);
    HostPicture expected(picture);
    apply(picture, settings);
    keladjust::test::vignetteModel(*expected.image(), settings);
    EXPECT_EQ(picture.bytes(), expected.bytes());
}

}  // namespace
