// Colour tables: the stages on tables of a host's own, with strides of 3 and 5 (two digests), the
// library's bakes, and the bytes of its cube files but for the platform's line ends.

#include <gtest/gtest.h>
#include <keladjust/keladjust.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include "golden/Records.h"
#include "golden/Results.h"
#include "support/ColourSweep.h"
#include "support/OddNumbers.h"
#include "support/StageSettings.h"
#include "support/TemporaryFolder.h"

namespace keladjust::test {

namespace {

std::vector<float> tableWithStride(std::size_t stride) {
    std::vector<Floats> entries = tableEntries();
    entries.push_back({quietNan, 0.5f, 0.25f});
    entries.push_back({infinity, 0.5f, -infinity});
    std::vector<float> table(entries.size() * stride, 42.0f);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        std::copy(entries[i].begin(), entries[i].end(),
                  table.begin() + static_cast<std::ptrdiff_t>(i * stride));
    }
    return table;
}

template <class Stage, class... Settings>
void addTableCall(Results& results, const char* name, Stage stage, Settings... settings) {
    std::vector<std::uint64_t> digests;
    for (const std::size_t stride : {3u, 5u}) {
        std::vector<float> table = tableWithStride(stride);
        stage(table.data(), static_cast<unsigned long>(table.size() / stride),
              static_cast<int>(stride), settings...);
        digests.push_back(Digest().add(table).value());
    }
    results.add(callText(name, settings...), digests);
}

void addStage(Results& results, const char* name,
              float* (*stage)(float*, unsigned long, int, float)) {
    for (const float setting : {100.0f, 30.0f, 5.0f, -60.0f, -100.0f, 300.0f, 1e30f, 1e-42f,
                                infinity, -infinity, quietNan}) {
        addTableCall(results, name, stage, setting);
    }
}

void addStages(Results& results) {
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    for (const std::int32_t kelvin : {1700, 9000, 11501, 14000, 24400, 0, -1, least, most}) {
        addTableCall(results, "lut3d_temperatureAdjustment", lut3d_temperatureAdjustment, kelvin);
    }
    addStage(results, "lut3d_tintAdjustment", lut3d_tintAdjustment);
    addStage(results, "lut3d_exposureAdjustment", lut3d_exposureAdjustment);
    addStage(results, "lut3d_brightnessAdjustment", lut3d_brightnessAdjustment);
    addStage(results, "lut3d_contrastAdjustment", lut3d_contrastAdjustment);
    addStage(results, "lut3d_vibranceAdjustment", lut3d_vibranceAdjustment);
    addStage(results, "lut3d_saturationAdjustment", lut3d_saturationAdjustment);
    addStage(results, "lut3d_hdrHighlight", lut3d_hdrHighlight);
    addStage(results, "lut3d_hdrShadow", lut3d_hdrShadow);
    addStage(results, "lut3d_hdrWhiteLevel", lut3d_hdrWhiteLevel);
    addStage(results, "lut3d_hdrBlackLevel", lut3d_hdrBlackLevel);

    struct Band {
        float minDegree;
        float maxDegree;
    };
    for (const auto& [low, high] : {Band{330, 30}, {60, 180}, {0, 360}, {300, 0}, {quietNan, 90}}) {
        for (const float value : {60.0f, -100.0f, quietNan}) {
            addTableCall(results, "lut3d_adjustHueFilter", lut3d_adjustHueFilter, low, high, value);
            addTableCall(results, "lut3d_adjustSaturationFilter", lut3d_adjustSaturationFilter, low,
                         high, value);
            addTableCall(results, "lut3d_adjustBrightnessFilter", lut3d_adjustBrightnessFilter, low,
                         high, value);
        }
        addTableCall(results, "lut3d_doHSLAdjustFilter", lut3d_doHSLAdjustFilter, low, high, 20.0f,
                     30.0f, -40.0f);
        addTableCall(results, "lut3d_doHSLAdjustFilter", lut3d_doHSLAdjustFilter, low, high,
                     -650.0f, 1e30f, 300.0f);
    }
}

std::string textOf(const std::filesystem::path& file) {
    std::ostringstream text;
    text << std::ifstream(file).rdbuf();  // in text mode, so that line ends are one character
    return text.str();
}

// The table exists only between initOgreRunTime, which need not find an engine, and releaseOgre.
void addBakes(Results& results) {
    initOgreRunTime(nullptr, nullptr);
    const TemporaryFolder folder;
    const std::filesystem::path file = folder / "table.cube";
    std::vector<NamedSettings> records = goldenRecords();
    for (const auto& [name, settings] : records) {
        const float* const table = getLut3dData(settings);
        ASSERT_NE(table, nullptr);
        results.add("getLut3dData, " + name, Digest().add({table, 32768 * 3}).value());
        ASSERT_TRUE(writeLut3DFile(settings, file.string().c_str()));
        const std::string text = textOf(file);
        results.add("writeLut3DFile, " + name,
                    Digest()
                        .add({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()})
                        .value());
    }
    releaseOgre();
}

}  // namespace

Results tableResults() {
    Results results;
    addStages(results);
    addBakes(results);
    return results;
}

}  // namespace keladjust::test
