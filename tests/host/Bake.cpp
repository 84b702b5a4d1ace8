// Colour tables of any size, in the host's memory.

#include <gtest/gtest.h>
#include <keladjust/keladjust.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <thread>
#include <vector>

#include "support/StageSettings.h"

namespace {

using keladjust::test::everyGpuStage;
using keladjust::test::identity;

std::vector<float> bake(const _AdjustParam& record, int dimension, bool redFastest) {
    const auto edge = static_cast<std::size_t>(dimension);
    std::vector<float> points(3 * edge * edge * edge, -1.0f);
    EXPECT_TRUE(keladjustBake(&record, sizeof record, dimension, redFastest, points.data()));
    return points;
}

// The table's stages one after another, by the functions that do one each.
void adjustTriples(std::vector<float>& points, const _AdjustParam& p) {
    const auto count = static_cast<unsigned long>(points.size() / 3);
    float* lut = points.data();
    lut3d_temperatureAdjustment(lut, count, 3, p.temperature);
    lut3d_tintAdjustment(lut, count, 3, p.tint);
    lut3d_exposureAdjustment(lut, count, 3, p.exposure);
    lut3d_brightnessAdjustment(lut, count, 3, p.brightness);
    lut3d_contrastAdjustment(lut, count, 3, p.contrast);
    lut3d_vibranceAdjustment(lut, count, 3, p.vibrance);
    lut3d_saturationAdjustment(lut, count, 3, p.saturation);
    lut3d_hdrHighlight(lut, count, 3, p.highlights);
    lut3d_hdrShadow(lut, count, 3, p.shadows);
    lut3d_hdrWhiteLevel(lut, count, 3, p.whites);
    lut3d_hdrBlackLevel(lut, count, 3, p.blacks);
    for (const _AdjustColourRange& r : p.range) {
        lut3d_doHSLAdjustFilter(lut, count, 3, r.minDegree, r.maxDegree, r.hue, r.saturation,
                                r.brightness);
    }
}

// Every colour i / (n - 1), before any stage.
std::vector<float> lattice(int dimension, bool redFastest) {
    std::vector<float> points;
    const auto level = [&](int i) {
        return static_cast<float>(i) / static_cast<float>(dimension - 1);
    };
    for (int slow = 0; slow < dimension; ++slow) {
        for (int green = 0; green < dimension; ++green) {
            for (int fast = 0; fast < dimension; ++fast) {
                points.push_back(level(redFastest ? fast : slow));
                points.push_back(level(green));
                points.push_back(level(redFastest ? slow : fast));
            }
        }
    }
    return points;
}

TEST(Bake, GivesEveryLevelAtIdentity) {
    for (const int dimension : {2, 3, 17, 32, 33, 65}) {
        for (const bool redFastest : {false, true}) {
            EXPECT_TRUE(bake(identity, dimension, redFastest) == lattice(dimension, redFastest))
                << dimension;
        }
    }
}

TEST(Bake, IsTheStagesOneByOne) {
    const _AdjustParam record = everyGpuStage().settings;
    for (const int dimension : {2, 7, 33}) {
        for (const bool redFastest : {false, true}) {
            std::vector<float> expected = lattice(dimension, redFastest);
            adjustTriples(expected, record);
            EXPECT_TRUE(bake(record, dimension, redFastest) == expected) << dimension;
        }
    }
}

TEST(Bake, HoldsTheColoursOfTheLibrarysOwnTable) {
    const _AdjustParam record = everyGpuStage().settings;
    releaseOgre();
    ASSERT_FALSE(initOgreRunTime("/nowhere/", "/nowhere/"));
    const float* const tiled = getLut3dData(record);
    ASSERT_NE(tiled, nullptr);
    const std::vector<float> points = bake(record, 32, false);
    for (std::size_t red = 0; red < 32; ++red) {
        for (std::size_t green = 0; green < 32; ++green) {
            for (std::size_t blue = 0; blue < 32; ++blue) {
                const float* const point = &points[3 * ((red * 32 + green) * 32 + blue)];
                const float* const tile =
                    tiled + 3 * (8192 * (red / 8) + 256 * green + 32 * (red % 8) + blue);
                ASSERT_TRUE(std::equal(point, point + 3, tile)) << red << green << blue;
            }
        }
    }
    releaseOgre();
}

TEST(Bake, WritesNothingBehindItsPoints) {
    for (const int dimension : {2, 5, 16, 31}) {
        const auto count = static_cast<std::size_t>(3 * dimension * dimension * dimension);
        std::vector<float> points(count + 8, -7.0f);
        ASSERT_TRUE(keladjustBake(&identity, sizeof identity, dimension, true, points.data()));
        EXPECT_EQ(std::count(points.begin(), points.end(), -7.0f), 8) << dimension;
    }
}

TEST(Bake, RefusesWhatItCannotBakeAndWritesNothing) {
    std::vector<float> points(3 * 8, -7.0f);
    const std::vector<float> before = points;
    for (const int dimension : {-2147483647 - 1, -1, 0, 1, 257, 2147483647}) {
        EXPECT_FALSE(keladjustBake(&identity, sizeof identity, dimension, true, points.data()));
    }
    EXPECT_FALSE(keladjustBake(nullptr, sizeof identity, 2, true, points.data()));
    EXPECT_FALSE(keladjustBake(&identity, sizeof identity, 2, true, nullptr));
    EXPECT_EQ(points, before);
}

TEST(Bake, TakesTheLargestTable) {
    const std::vector<float> points = bake(identity, 256, true);
    for (const std::size_t i : {0u, 1u, 255u}) {
        EXPECT_EQ(points[3 * i], static_cast<float>(i) / 255.0f);
    }
    EXPECT_EQ(std::vector<float>(points.end() - 3, points.end()), (std::vector<float>{1, 1, 1}));
}

TEST(Bake, TakesRecordsOfOlderAndNewerHosts) {
    _AdjustParam record = identity;
    record.exposure = 20;
    record.range[KELADJUST_RANGE_RED] = {300, 60, 0, 50, 0};
    _AdjustParam known = identity;
    known.exposure = 20;
    std::vector<float> points(3 * 125);
    ASSERT_TRUE(keladjustBake(&record, 3 * 4, 5, false, points.data()));
    EXPECT_EQ(points, bake(known, 5, false));
    ASSERT_TRUE(keladjustBake(&record, 0, 5, false, points.data()));
    EXPECT_EQ(points, bake(identity, 5, false));

    std::array<_AdjustParam, 2> longer{record, _AdjustParam{}};
    ASSERT_TRUE(keladjustBake(longer.data(), sizeof longer, 5, false, points.data()));
    EXPECT_EQ(points, bake(record, 5, false));
    longer[1].luminanceNoiseReduction = 1;
    EXPECT_FALSE(keladjustBake(longer.data(), sizeof longer, 5, false, points.data()));
    EXPECT_EQ(points, bake(record, 5, false));
}

}  // namespace
