#ifndef KELADJUST_TESTS_SUPPORT_STAGESETTINGS_H
#define KELADJUST_TESTS_SUPPORT_STAGESETTINGS_H

#include <keladjust/keladjust.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "filters/Stages.h"

namespace keladjust::test {

/// The record that changes nothing.
inline constexpr _AdjustParam identity = [] {
    _AdjustParam settings{};
    settings.temperature = 11500;
    return settings;
}();

/// Settings that change every picture, with either program of the engine's and between them.
inline _AdjustParam someSettings() {
    _AdjustParam p = identity;
    p.exposure = 30;
    p.saturation = 20;
    p.range[KELADJUST_RANGE_RED] = {330, 30, 10, 20, -10};
    p.clarity = 10;
    return p;
}

/// A record of settings with a name to report it by.
struct NamedSettings {
    std::string name;
    _AdjustParam settings;
};

inline std::ostream& operator<<(std::ostream& out, const NamedSettings& named) {
    return out << named.name;
}

/// Everything at identity but what `change(settings)` sets.
template <class Change>
NamedSettings only(std::string name, Change change) {
    _AdjustParam settings = identity;
    change(settings);
    return {std::move(name), settings};
}

inline NamedSettings only(std::string name, float _AdjustParam::*setting, float value) {
    return only(std::move(name), [&](_AdjustParam& p) { p.*setting = value; });
}

/// Sets the slot of one of a stage's settings.
inline void setSlot(_AdjustParam& record, const Stage& stage, std::size_t place, float value) {
    char* const slot =
        reinterpret_cast<char*>(&record) + 4 * (static_cast<std::size_t>(stage.firstSlot) + place);
    if (stage.settings()[place].isInteger) {
        const auto whole = static_cast<std::int32_t>(value);
        std::memcpy(slot, &whole, sizeof whole);
    } else {
        std::memcpy(slot, &value, sizeof value);
    }
}

/// The bounds that photo editors give the eight ranges.
inline void setRangeBounds(_AdjustParam& p) {
    constexpr float bounds[KELADJUST_RANGE_COUNT][2] = {
        {330, 30}, {0, 60}, {30, 90}, {60, 180}, {270, 330}, {240, 300}, {210, 270}, {150, 210}};
    for (int i = 0; i < KELADJUST_RANGE_COUNT; ++i) {
        p.range[i].minDegree = bounds[i][0];
        p.range[i].maxDegree = bounds[i][1];
    }
}

/// Each stage of the adjustment program alone, in both directions.
inline std::vector<NamedSettings> adjustmentStages() {
    // Where other values than usual show more: ends, and either side of where a formula bends.
    static const std::map<std::string, std::vector<int>> tellingValues = {
        {"temperature", {2000, 9000, 11600, 14000, 20000}},
        {"tint", {100, -60}},
        {"exposure", {100, -70}},
        {"brightness", {60, -60}},
        {"vibrance", {100, -100}},
        {"saturation", {60, -60}},
    };
    std::vector<NamedSettings> all;
    for (const Stage& stage : stages) {
        if (stage.program != Program::tone) continue;
        const auto telling = tellingValues.find(stage.name.c_str());
        const std::vector<int> values =
            telling != tellingValues.end() ? telling->second : std::vector<int>{80, -80};
        for (const int value : values) {
            all.push_back(
                only(std::string(stage.name.c_str()) + " " + std::to_string(value),
                     [&](_AdjustParam& p) { setSlot(p, stage, 0, static_cast<float>(value)); }));
        }
    }
    return all;
}

/// Each stage of the range program alone.
inline std::vector<NamedSettings> rangeStages() {
    using P = _AdjustParam;
    std::vector<NamedSettings> all;
    std::size_t i = 0;
    for (const Stage& stage : stages) {
        if (stage.wing != Wing::range) continue;
        const auto range = [&](const std::string& change, float hue, float sat, float bright) {
            all.push_back(only(std::string(stage.name.c_str()) + " " + change, [&](P& p) {
                setRangeBounds(p);
                p.range[i].hue = hue;
                p.range[i].saturation = sat;
                p.range[i].brightness = bright;
            }));
        };
        range("hue 60", 60, 0, 0);
        range("hue -100", -100, 0, 0);
        range("saturation 80", 0, 80, 0);
        range("brightness -90", 0, 0, -90);
        range("all three", 35, -50, 100);
        ++i;
    }
    all.push_back(only("shifts beyond the circle", [](P& p) {
        setRangeBounds(p);
        p.range[KELADJUST_RANGE_GREEN].hue = 420;
        p.range[KELADJUST_RANGE_BLUE].hue = -650;
    }));
    const auto vignette = [&](const char* name, float amount, float size, float roundness,
                              float feather, float exposure, float protection) {
        all.push_back(only(name, [&](P& p) {
            p.vignetteAmount = amount;
            p.vignetteSize = size;
            p.vignetteRoundness = roundness;
            p.vignetteFeather = feather;
            p.vignetteExposure = exposure;
            p.vignetteHighlights = protection;
        }));
    };
    vignette("dark vignette", -80, 40, 0, 60, 0, 50);
    vignette("bright vignette", 70, 20, 60, 100, 0, 80);
    vignette("vignette exposure", 0, 60, -40, 30, 80, 50);
    vignette("vignette with all settings", -60, 30, 100, 50, -50, 90);
    return all;
}

/// Every stage of both programs at once, at strengths that a user might choose.
inline NamedSettings everyGpuStage() {
    return only("all together", [](_AdjustParam& p) {
        p.temperature = 12500;
        p.tint = 8;
        p.exposure = 10;
        p.brightness = -5;
        p.contrast = 15;
        p.vibrance = 20;
        p.saturation = 10;
        p.highlights = -30;
        p.shadows = 25;
        p.whites = 10;
        p.blacks = -10;
        setRangeBounds(p);
        float step = 5;
        for (_AdjustColourRange& r : p.range) {
            r.hue = step;
            r.saturation = 20 - step;
            r.brightness = 2 * step;
            step = -step * 1.1f;
        }
        p.vignetteAmount = -30;
        p.vignetteSize = 40;
        p.vignetteFeather = 60;
        p.vignetteRoundness = 20;
        p.vignetteExposure = 10;
        p.vignetteHighlights = 60;
    });
}

/// Every stage there is at once, those after the programs included.
inline NamedSettings everyStage() {
    NamedSettings named = everyGpuStage();
    named.name = "every stage";
    _AdjustParam& p = named.settings;
    p.clarity = 15;
    p.sharpen = 30;
    p.distortion = 5;
    p.fringing = 10;
    p.dehaze = 10;
    p.diffuse = 3;
    p.colourNoiseReduction = 10;
    p.luminanceNoiseReduction = 10;
    return named;
}

}  // namespace keladjust::test

#endif
