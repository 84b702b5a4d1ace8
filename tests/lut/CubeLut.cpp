// The lattice object by itself.

#include "lut/CubeLut.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "support/StageSettings.h"

namespace {

using keladjust::CubeLut;
using keladjust::test::identity;

std::unique_ptr<CubeLut> builtLut() {
    auto lut = std::make_unique<CubeLut>();
    lut->build();
    return lut;
}

TEST(CubeLut, IsEmptyUntilItIsBuilt) {
    const auto lut = std::make_unique<CubeLut>();
    EXPECT_EQ(lut->dimension(), 0u);
    EXPECT_EQ(lut->count(), 0u);
    EXPECT_EQ(lut->grid(), nullptr);
    EXPECT_EQ(lut->bytePoints(), nullptr);
    EXPECT_EQ(lut->state(), CubeLut::State::idle);
    EXPECT_EQ(static_cast<int>(lut->state()), 2);
    EXPECT_EQ(lut->point(31, 31, 31), (CubeLut::Point{0, 0, 0}));
}

TEST(CubeLut, BakesNothingBeforeItIsBuilt) {
    const auto lut = std::make_unique<CubeLut>();
    EXPECT_EQ(lut->bake(identity), nullptr);
    EXPECT_EQ(lut->point(31, 31, 31), (CubeLut::Point{0, 0, 0}));
    EXPECT_EQ(lut->state(), CubeLut::State::idle);
}

TEST(CubeLut, BuildingAgainKeepsTheLattice) {
    const auto lut = builtLut();
    _AdjustParam brighter = identity;
    brighter.exposure = 30;
    const float* const baked = lut->bake(brighter);
    const float before = baked[3 * 100];
    lut->build();
    EXPECT_EQ(lut->grid(), baked);
    EXPECT_EQ(baked[3 * 100], before);
}

TEST(CubeLut, LaysTheLatticeOutInTilesOfRed) {
    EXPECT_EQ(CubeLut::entryOf(0, 0, 1), 1u);
    EXPECT_EQ(CubeLut::entryOf(1, 0, 0), 32u);
    EXPECT_EQ(CubeLut::entryOf(0, 1, 0), 256u);
    EXPECT_EQ(CubeLut::entryOf(8, 0, 0), 8192u);
    EXPECT_EQ(CubeLut::entryOf(31, 31, 31), 32767u);
}

TEST(CubeLut, StartsAsTheIdentity) {
    const auto lut = builtLut();
    EXPECT_EQ(lut->dimension(), 32u);
    EXPECT_EQ(lut->count(), 32768u);
    for (unsigned r = 0; r < 32; ++r) {
        for (unsigned g = 0; g < 32; ++g) {
            for (unsigned b = 0; b < 32; ++b) {
                const float* const entry = lut->grid() + 3 * CubeLut::entryOf(r, g, b);
                ASSERT_EQ(entry[0], static_cast<float>(r) / 31.0f);
                ASSERT_EQ(entry[1], static_cast<float>(g) / 31.0f);
                ASSERT_EQ(entry[2], static_cast<float>(b) / 31.0f);
            }
        }
    }
}

TEST(CubeLut, PointsHoldBlueFirstUntilTheFirstBake) {
    const auto lut = builtLut();
    // 3 x 255 / 31 = 24.677, 2 x 255 / 31 = 16.452, 255 / 31 = 8.226
    EXPECT_EQ(lut->point(1, 2, 3),
              (CubeLut::Point{765.0f / 31.0f, 510.0f / 31.0f, 255.0f / 31.0f}));
    EXPECT_EQ(lut->bytePoints()[CubeLut::entryOf(1, 2, 3)], (CubeLut::BytePoint{24, 16, 8}));
}

TEST(CubeLut, BakeLeavesRedFirstPointsInBytesScale) {
    const auto lut = builtLut();
    lut->bake(identity);
    EXPECT_EQ(lut->point(1, 2, 3), (CubeLut::Point{1.0f / 31.0f * 255.0f, 2.0f / 31.0f * 255.0f,
                                                   3.0f / 31.0f * 255.0f}));
    EXPECT_EQ(lut->bytePoints()[CubeLut::entryOf(1, 2, 3)], (CubeLut::BytePoint{24, 16, 8}));
    EXPECT_EQ(lut->bytePoints()[32767], (CubeLut::BytePoint{255, 255, 255}));
    EXPECT_EQ(lut->state(), CubeLut::State::idle);
}

TEST(CubeLut, IndexTablesGiveTheLatticeCoordinateOfAByte) {
    const auto lut = builtLut();
    const float step = 255.0f / 31.0f;
    for (unsigned value = 0; value < 256; ++value) {
        const auto byte = static_cast<std::uint8_t>(value);
        const float x = static_cast<float>(value) / step;
        ASSERT_EQ(lut->indexInteger(byte), std::floor(x)) << value;
        ASSERT_EQ(lut->indexFraction(byte), x - std::floor(x)) << value;
    }
    EXPECT_EQ(lut->indexInteger(0), 0.0f);
    EXPECT_EQ(lut->indexInteger(128), 15.0f);  // 15.56
    EXPECT_NEAR(lut->indexFraction(128), 0.56f, 0.01f);
}

}  // namespace
