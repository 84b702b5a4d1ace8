#include "models/lens/Fringing.h"

#include <gtest/gtest.h>
#include <keladjust/keladjust.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "support/HostPicture.h"
#include "support/OddNumbers.h"

namespace {

using keladjust::test::fringingModel;
using keladjust::test::HostPicture;
using keladjust::test::infinity;

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

TEST(Fringing, OfASinglePixelAtAnEndlessSettingIsThePixel) {
    // Nothing times infinity is no number, which the lower bound stands for: the pixel itself.
    HostPicture picture(1, 1, 32, IMAGE_FORMAT_BGRA);
    picture.setPixel(0, 0, {10, 20, 30, 40});
    fringingFilter(picture.image(), infinity);
    EXPECT_EQ(picture.pixel(0, 0), (_tagMyRGBQUAD{10, 20, 30, 40}));
}

}  // namespace
