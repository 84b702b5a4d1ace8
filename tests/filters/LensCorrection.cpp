#include <keladjust/keladjust.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <utility>
#include <vector>

#include "models/SpatialStages.h"
#include "support/HostPicture.h"
#include "support/OddNumbers.h"

namespace {

using keladjust::test::distortionModel;
using keladjust::test::fringingModel;
using keladjust::test::HostPicture;
using keladjust::test::infinity;

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

TEST(Fringing, KeepsTheCentre) {
    for (const float setting : {100.0f, -100.0f, 40.0f}) {
        HostPicture picture(41, 31, 32, IMAGE_FORMAT_BGRA);
        picture.fillRandom(3);
        HostPicture before(picture);
        EXPECT_EQ(fringingFilter(picture.image(), setting), picture.image());
        EXPECT_EQ(picture.pixel(20, 15), before.pixel(20, 15));
    }
}

// The last column and row of red, green and blue come from this far inside, wherever the rays lead.
void expectMargin(float setting, int margin) {
    HostPicture picture(20, 20, 32, IMAGE_FORMAT_BGRA);
    for (unsigned y = 0; y < 20; ++y) {
        for (unsigned x = 0; x < 20; ++x) {
            const auto column = static_cast<std::uint8_t>(x);
            const auto row = static_cast<std::uint8_t>(y);
            picture.setPixel(x, y, {column, column, column, row});
        }
    }
    fringingFilter(picture.image(), setting);
    int largestColumn = 0;
    int largestRow = 0;
    for (unsigned y = 0; y < 20; ++y) {
        for (unsigned x = 0; x < 20; ++x) {
            const _tagMyRGBQUAD p = picture.pixel(x, y);
            largestColumn = std::max<int>({largestColumn, p.red, p.green, p.blue});
            largestRow = std::max<int>(largestRow, p.alpha);
        }
    }
    EXPECT_EQ(largestColumn, 20 - margin) << setting;
    EXPECT_EQ(largestRow, 20 - margin) << setting;
}

TEST(Fringing, StaysInsideTheRightAndBottomEdges) {
    expectMargin(100.0f, 2);
    expectMargin(1000.0f, 2);
    expectMargin(-10000.0f, 1);  // weaker negative settings draw everything inwards
}

TEST(Fringing, FetchesColoursFromDifferentPlacesAndAlphaWithGreen) {
    HostPicture picture(200, 3, 32, IMAGE_FORMAT_BGRA);
    for (unsigned x = 0; x < 200; ++x) {
        const auto column = static_cast<std::uint8_t>(x);
        for (unsigned y = 0; y < 3; ++y) picture.setPixel(x, y, {column, column, column, column});
    }
    fringingFilter(picture.image(), 100.0f);
    const _tagMyRGBQUAD p = picture.pixel(170, 1);
    // 70 columns from the centre: moved 1.03-fold, red 1.03 times as far, blue 0.97 times.
    EXPECT_EQ(p.green, 172);
    EXPECT_EQ(p.red, 174);
    EXPECT_EQ(p.blue, 169);
    EXPECT_EQ(p.alpha, p.green);
}

TEST(Fringing, FindsNothingInPicturesWithoutAnInside) {
    // One column and a margin of two: no place is inside, and what is outside reads as black.
    HostPicture picture(1, 9, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(2);
    fringingFilter(picture.image(), 50.0f);
    EXPECT_EQ(picture.bytes(), std::vector<std::uint8_t>(36));
}

TEST(Fringing, CutsCoordinatesOfHugePicturesTo16Bits) {
    HostPicture picture(70000, 2, 24, IMAGE_FORMAT_RGB);
    picture.fillRandom(6);
    HostPicture expected(picture);
    fringingFilter(picture.image(), -20.0f);
    fringingModel(*expected.image(), -20.0f);
    EXPECT_EQ(picture.bytes(), expected.bytes());
}

// The last rows of a tall picture all fetch from below themselves, but for the very last, which
// stops at the margin above it; of many bands the last one holds no other rows.
TEST(Fringing, StaysInsideTheBottomEdgeInTheLastOfManyBands) {
    setMaxThreads(64);
    HostPicture picture(64, 32000, 8, IMAGE_FORMAT_GRAY);
    picture.fillRandom(5);
    HostPicture expected(picture);
    fringingFilter(picture.image(), 20.0f);
    fringingModel(*expected.image(), 20.0f);
    EXPECT_TRUE(picture.bytes() == expected.bytes());
    setMaxThreads(0);
}

// Nothing of a call is in the next: each bends its picture by its own size and setting.
TEST(LensCorrection, FollowsSizeAndSettingOfEveryCall) {
    struct Call {
        unsigned width, height;
        float setting;
    };
    constexpr Call calls[] = {{40, 30, 50}, {40, 30, 50}, {30, 40, 50}, {40, 30, 50},
                              {40, 30, 51}, {40, 31, 51}, {41, 31, 51}, {41, 31, -51}};
    for (const auto& [stage, model] :
         {std::pair{&distortFilter, &distortionModel}, {&fringingFilter, &fringingModel}}) {
        for (const Call& call : calls) {
            HostPicture picture(call.width, call.height, 32, IMAGE_FORMAT_RGBA);
            picture.fillRandom(8);
            HostPicture expected(picture);
            stage(picture.image(), call.setting);
            model(*expected.image(), call.setting);
            EXPECT_EQ(picture.bytes(), expected.bytes()) << call.width << ", " << call.setting;
        }
    }
}

// A band of rows fetches from those of others, which change meanwhile; few rows are within reach of
// a weak setting, and nearly all of a strong one.
TEST(LensCorrection, FetchesFromOtherBandsAsTheyWere) {
    constexpr std::pair<unsigned, unsigned> sizes[] = {{300, 700}, {701, 301}, {4500, 75}};
    for (const auto& [stage, model] :
         {std::pair{&distortFilter, &distortionModel}, {&fringingFilter, &fringingModel}}) {
        for (const auto& [width, height] : sizes) {
            for (const float setting : {1.0f, 30.0f, 100.0f, -20.0f, -100.0f, 1000.0f, -1500.0f}) {
                HostPicture original(width, height, 24, IMAGE_FORMAT_BGR);
                original.fillRandom(width);
                HostPicture expected(original);
                model(*expected.image(), setting);
                for (const int threads : {1, 2, 3, 16}) {
                    setMaxThreads(threads);
                    HostPicture picture(original);
                    stage(picture.image(), setting);
                    EXPECT_TRUE(picture.bytes() == expected.bytes())
                        << width << " x " << height << ", " << setting << ", " << threads
                        << " threads";
                    EXPECT_TRUE(picture.guardsIntact());
                }
            }
        }
    }
    setMaxThreads(0);
}

TEST(LensCorrection, AtZeroChangesNothing) {
    HostPicture picture(30, 20, 24, IMAGE_FORMAT_BGR);
    const auto before = picture.fillRandom(1).bytes();
    EXPECT_EQ(distortFilter(picture.image(), 0.0f), picture.image());
    EXPECT_EQ(fringingFilter(picture.image(), -0.0f), picture.image());
    EXPECT_EQ(picture.bytes(), before);
}

TEST(Fringing, OfASinglePixelAtAnEndlessSettingIsThePixel) {
    // Nothing times infinity is no number, which the lower bound stands for: the pixel itself.
    HostPicture picture(1, 1, 32, IMAGE_FORMAT_BGRA);
    picture.setPixel(0, 0, {10, 20, 30, 40});
    fringingFilter(picture.image(), infinity);
    EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{10, 20, 30, 40}));
}

}  // namespace
