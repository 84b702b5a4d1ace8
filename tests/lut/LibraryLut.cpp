// The colour table as hosts fetch it and have it written.

#include <gtest/gtest.h>
#include <keladjust/keladjust.h>

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "support/OddNumbers.h"
#include "support/StageSettings.h"

namespace {

using keladjust::test::identity;
using keladjust::test::infinity;
using keladjust::test::quietNan;

namespace fs = std::filesystem;

constexpr std::size_t floats = 32768 * 3;
class LibraryLut : public testing::Test {
protected:
    LibraryLut() { initOgreRunTime(nullptr, nullptr); }
    ~LibraryLut() override {
        setMaxThreads(0);
        releaseOgre();
    }
};

std::vector<float> identityTable() {
    std::vector<float> table(floats);
    for (unsigned i = 0; i < 32768; ++i) {
        const unsigned tileRow = i / 8192;
        const unsigned green = i / 256 % 32;
        const unsigned tileColumn = i % 256 / 32;
        const unsigned blue = i % 32;
        table[3 * i] = static_cast<float>(8 * tileRow + tileColumn) / 31.0f;
        table[3 * i + 1] = static_cast<float>(green) / 31.0f;
        table[3 * i + 2] = static_cast<float>(blue) / 31.0f;
    }
    return table;
}

std::vector<float> baked(const _AdjustParam& parameters) {
    const float* const table = getLut3dData(parameters);
    return table == nullptr ? std::vector<float>() : std::vector<float>(table, table + floats);
}

// Comparing floats would take two NaN for different.
bool sameBits(const std::vector<float>& a, const std::vector<float>& b) {
    return a.size() == b.size() && std::memcmp(a.data(), b.data(), a.size() * sizeof(float)) == 0;
}

_AdjustParam everySetting() {
    _AdjustParam p{};
    p.temperature = 9000;
    p.tint = 20;
    p.exposure = 15;
    p.brightness = -10;
    p.contrast = 25;
    p.vibrance = 40;
    p.saturation = -20;
    p.highlights = -30;
    p.shadows = 35;
    p.whites = 10;
    p.blacks = -15;
    for (int i = 0; i < KELADJUST_RANGE_COUNT; ++i) {
        const auto at = static_cast<float>(i);
        p.range[i] = {45 * at, 45 * at + 60, 10 - 3 * at, 20 - 5 * at, 15 * at - 40};
    }
    p.range[KELADJUST_RANGE_RED].minDegree = 330;
    p.range[KELADJUST_RANGE_RED].maxDegree = 30;
    return p;
}

// Stage after stage over a table of the test's own.
std::vector<float> stageByStage(const _AdjustParam& p) {
    std::vector<float> table = identityTable();
    float* const lut = table.data();
    lut3d_temperatureAdjustment(lut, 32768, 3, p.temperature);
    lut3d_tintAdjustment(lut, 32768, 3, p.tint);
    lut3d_exposureAdjustment(lut, 32768, 3, p.exposure);
    lut3d_brightnessAdjustment(lut, 32768, 3, p.brightness);
    lut3d_contrastAdjustment(lut, 32768, 3, p.contrast);
    lut3d_vibranceAdjustment(lut, 32768, 3, p.vibrance);
    lut3d_saturationAdjustment(lut, 32768, 3, p.saturation);
    lut3d_hdrHighlight(lut, 32768, 3, p.highlights);
    lut3d_hdrShadow(lut, 32768, 3, p.shadows);
    lut3d_hdrWhiteLevel(lut, 32768, 3, p.whites);
    lut3d_hdrBlackLevel(lut, 32768, 3, p.blacks);
    for (const _AdjustColourRange& r : p.range) {
        if (r.hue == 0 && r.saturation == 0 && r.brightness == 0) continue;
        lut3d_doHSLAdjustFilter(lut, 32768, 3, r.minDegree, r.maxDegree, r.hue, r.saturation,
                                r.brightness);
    }
    return table;
}

TEST(LibraryLutLife, IsNullBeforeInitAndAfterRelease) {
    releaseOgre();
    EXPECT_EQ(getLut3dData(identity), nullptr);
    initOgreRunTime(nullptr, nullptr);
    EXPECT_NE(getLut3dData(identity), nullptr);
    releaseOgre();
    EXPECT_EQ(getLut3dData(identity), nullptr);
    releaseOgre();
    EXPECT_EQ(getLut3dData(identity), nullptr);
    initOgreRunTime(nullptr, nullptr);
    EXPECT_NE(getLut3dData(identity), nullptr);
    releaseOgre();
}

TEST_F(LibraryLut, IdentitySettingsGiveTheIdentity) {
    const float* const table = getLut3dData(identity);
    ASSERT_NE(table, nullptr);
    const auto entry = [table](std::size_t i) {
        return std::vector<float>(table + 3 * i, table + 3 * i + 3);
    };
    EXPECT_EQ(entry(0), (std::vector<float>{0, 0, 0}));
    EXPECT_EQ(entry(1), (std::vector<float>{0, 0, 1.0f / 31.0f}));
    EXPECT_EQ(entry(32), (std::vector<float>{1.0f / 31.0f, 0, 0}));
    EXPECT_EQ(entry(256), (std::vector<float>{0, 1.0f / 31.0f, 0}));
    EXPECT_EQ(entry(8192), (std::vector<float>{8.0f / 31.0f, 0, 0}));
    EXPECT_EQ(entry(32767), (std::vector<float>{1, 1, 1}));
    EXPECT_TRUE(sameBits(baked(identity), identityTable()));
}

TEST_F(LibraryLut, EveryBakeStartsAfresh) {
    float* const first = getLut3dData(everySetting());
    _AdjustParam brighter = identity;
    brighter.exposure = 30;
    EXPECT_EQ(getLut3dData(brighter), first);
    EXPECT_TRUE(sameBits(baked(brighter), stageByStage(brighter)));
}

TEST_F(LibraryLut, InitAgainKeepsTheTable) {
    float* const table = getLut3dData(identity);
    initOgreRunTime(nullptr, nullptr);
    EXPECT_EQ(getLut3dData(identity), table);
}

TEST_F(LibraryLut, SpatialSettingsHaveNoPart) {
    std::vector<_AdjustParam> settings;
    const auto with = [&settings](float _AdjustParam::*setting) {
        settings.push_back(identity);
        settings.back().*setting = 40;
    };
    with(&_AdjustParam::clarity);
    with(&_AdjustParam::sharpen);
    with(&_AdjustParam::vignetteAmount);
    with(&_AdjustParam::vignetteSize);
    with(&_AdjustParam::vignetteRoundness);
    with(&_AdjustParam::vignetteFeather);
    with(&_AdjustParam::vignetteExposure);
    with(&_AdjustParam::vignetteHighlights);
    with(&_AdjustParam::distortion);
    with(&_AdjustParam::fringing);
    with(&_AdjustParam::dehaze);
    with(&_AdjustParam::diffuse);
    with(&_AdjustParam::colourNoiseReduction);
    with(&_AdjustParam::luminanceNoiseReduction);
    for (const _AdjustParam& p : settings) EXPECT_TRUE(sameBits(baked(p), identityTable()));
}

TEST_F(LibraryLut, StagesRunInTheOrderOfThePipeline) {
    EXPECT_TRUE(sameBits(baked(everySetting()), stageByStage(everySetting())));
}

TEST_F(LibraryLut, EachSettingReachesItsStage) {
    const _AdjustParam all = everySetting();
    std::vector<_AdjustParam> settings;
    settings.push_back(identity);
    settings.back().temperature = all.temperature;
    for (float _AdjustParam::*setting :
         {&_AdjustParam::tint, &_AdjustParam::exposure, &_AdjustParam::brightness,
          &_AdjustParam::contrast, &_AdjustParam::vibrance, &_AdjustParam::saturation,
          &_AdjustParam::highlights, &_AdjustParam::shadows, &_AdjustParam::whites,
          &_AdjustParam::blacks}) {
        settings.push_back(identity);
        settings.back().*setting = all.*setting;
    }
    for (std::size_t i = 0; i < KELADJUST_RANGE_COUNT; ++i) {
        settings.push_back(identity);
        settings.back().range[i] = all.range[i];
    }
    for (std::size_t i = 0; i < settings.size(); ++i) {
        EXPECT_TRUE(sameBits(baked(settings[i]), stageByStage(settings[i]))) << i;
        EXPECT_FALSE(sameBits(baked(settings[i]), identityTable())) << i;
    }
}

TEST_F(LibraryLut, RangesWithoutChangesAreLeftOut) {
    _AdjustParam p = identity;
    for (_AdjustColourRange& range : p.range) range = {10, 200, 0, 0, 0};
    EXPECT_TRUE(sameBits(baked(p), identityTable()));
}

TEST_F(LibraryLut, AnySettingHasAResult) {
    for (const float value : {quietNan, infinity, -infinity, 1e30f, -1e30f}) {
        _AdjustParam p = identity;
        p.tint = p.exposure = p.brightness = p.contrast = p.vibrance = value;
        p.saturation = p.highlights = p.shadows = p.whites = p.blacks = value;
        p.range[2] = {0, 360, value, 0, 0};
        p.range[5] = {value, 100, 10, value, value};
        EXPECT_TRUE(sameBits(baked(p), stageByStage(p))) << value;
    }
}

TEST_F(LibraryLut, ThreadsDoNotShow) {
    const std::vector<float> expected = stageByStage(everySetting());
    for (const int threads : {1, 2, 3, 16}) {
        setMaxThreads(threads);
        EXPECT_TRUE(sameBits(baked(everySetting()), expected)) << threads;
    }
}

TEST_F(LibraryLut, TheCallersRoundingModeDoesNotShow) {
    const std::vector<float> expected = baked(everySetting());
    std::fesetround(FE_UPWARD);
    const std::vector<float> rounded = baked(everySetting());
    const int mode = std::fegetround();
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(mode, FE_UPWARD);
    EXPECT_TRUE(sameBits(rounded, expected));
}

class LibraryLutFile : public testing::Test {
protected:
    LibraryLutFile()
        : path_(fs::temp_directory_path() /
                ("keladjust-lut-" + std::to_string(std::random_device()()) + ".cube")) {}
    ~LibraryLutFile() override {
        releaseOgre();
        fs::remove(path_);
    }

    std::vector<std::string> lines() const {
        std::ifstream file(path_);
        std::vector<std::string> result;
        std::string line;
        while (std::getline(file, line)) result.push_back(line);
        return result;
    }

    bool write(const _AdjustParam& parameters) const {
        return writeLut3DFile(parameters, path_.string().c_str());
    }

    // The data lines that a table stands for, written with the plainest means there are.
    static std::vector<std::string> expectedLines(const std::vector<float>& table) {
        std::vector<std::string> result;
        for (std::size_t r = 0; r < 32; ++r) {
            for (std::size_t g = 0; g < 32; ++g) {
                for (std::size_t b = 0; b < 32; ++b) {
                    const float* const entry =
                        table.data() + 3 * (r / 8 * 8192 + g * 256 + r % 8 * 32 + b);
                    const auto value = [entry](std::size_t c) {
                        const float point = entry[c] * 255.0f;
                        return static_cast<double>(point / 255.0f);
                    };
                    char line[64];
                    std::snprintf(line, sizeof line, "%.8f %.8f %.8f", value(0), value(1),
                                  value(2));
                    result.emplace_back(line);
                }
            }
        }
        return result;
    }

    fs::path path_;
};

TEST_F(LibraryLutFile, HoldsTheHeaderAndOneLineForEachColour) {
    initOgreRunTime(nullptr, nullptr);
    ASSERT_TRUE(write(identity));
    const std::vector<std::string> text = lines();
    ASSERT_EQ(text.size(), 8u + 32768u);
    EXPECT_EQ(text[2], "");
    EXPECT_EQ(text[6], "");
    EXPECT_EQ(text[8], "0.00000000 0.00000000 0.00000000");
    EXPECT_EQ(text[9], "0.00000000 0.00000000 0.03225806");
    EXPECT_EQ(text[10], "0.00000000 0.00000000 0.06451613");
    EXPECT_EQ(text[8 + 32], "0.00000000 0.03225806 0.00000000");
    EXPECT_EQ(text[8 + 1024], "0.03225806 0.00000000 0.00000000");
    EXPECT_EQ(text.back(), "1.00000000 1.00000000 1.00000000");
}

TEST_F(LibraryLutFile, EveryLineIsTheBakedColour) {
    initOgreRunTime(nullptr, nullptr);
    ASSERT_TRUE(write(everySetting()));
    std::vector<std::string> text = lines();
    ASSERT_EQ(text.size(), 8u + 32768u);
    text.erase(text.begin(), text.begin() + 8);
    EXPECT_EQ(text, expectedLines(stageByStage(everySetting())));
}

TEST_F(LibraryLutFile, WritingAgainLeavesOnlyTheSecondBake) {
    initOgreRunTime(nullptr, nullptr);
    ASSERT_TRUE(write(everySetting()));
    ASSERT_TRUE(write(identity));
    std::vector<std::string> text = lines();
    ASSERT_EQ(text.size(), 8u + 32768u);
    text.erase(text.begin(), text.begin() + 8);
    EXPECT_EQ(text, expectedLines(identityTable()));
}

TEST_F(LibraryLutFile, IsOfZerosWithoutInit) {
    releaseOgre();
    ASSERT_TRUE(write(everySetting()));
    const std::vector<std::string> text = lines();
    ASSERT_EQ(text.size(), 8u + 32768u);
    EXPECT_TRUE(std::all_of(text.begin() + 8, text.end(), [](const std::string& line) {
        return line == "0.00000000 0.00000000 0.00000000";
    }));
}

TEST_F(LibraryLutFile, BadPathsAreReportedOnStandardOutput) {
    initOgreRunTime(nullptr, nullptr);
    const std::string missing = (path_ / "missing" / "table.cube").string();
    testing::internal::CaptureStdout();
    EXPECT_FALSE(writeLut3DFile(identity, nullptr));
    EXPECT_FALSE(writeLut3DFile(identity, missing.c_str()));
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Path cannot be NULL!\nCannot open the path file!\n");
}

}  // namespace
