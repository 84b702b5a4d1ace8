#ifndef KELADJUST_TESTS_SUPPORT_STAGESETTINGS_H
#define KELADJUST_TESTS_SUPPORT_STAGESETTINGS_H

#include <keladjust/keladjust.h>

#include <ostream>
#include <string>
#include <vector>

namespace keladjust::test {

/// The record that changes nothing.
inline constexpr _AdjustParam identity = [] {
    _AdjustParam settings{};
    settings.temperature = 11500;
    return settings;
}();

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
    using P = _AdjustParam;
    const auto temperature = [](int value) {
        return only("temperature " + std::to_string(value),
                    [value](P& p) { p.temperature = value; });
    };
    return {
        temperature(2000),
        temperature(9000),
        temperature(11600),
        temperature(14000),
        temperature(20000),
        only("tint 100", &P::tint, 100),
        only("tint -60", &P::tint, -60),
        only("exposure 100", &P::exposure, 100),
        only("exposure -70", &P::exposure, -70),
        only("brightness 60", &P::brightness, 60),
        only("brightness -60", &P::brightness, -60),
        only("contrast 80", &P::contrast, 80),
        only("contrast -80", &P::contrast, -80),
        only("vibrance 100", &P::vibrance, 100),
        only("vibrance -100", &P::vibrance, -100),
        only("saturation 60", &P::saturation, 60),
        only("saturation -60", &P::saturation, -60),
        only("highlights 80", &P::highlights, 80),
        only("highlights -80", &P::highlights, -80),
        only("shadows 80", &P::shadows, 80),
        only("shadows -80", &P::shadows, -80),
        only("whites 80", &P::whites, 80),
        only("whites -80", &P::whites, -80),
        only("blacks 80", &P::blacks, 80),
        only("blacks -80", &P::blacks, -80),
    };
}

/// Each stage of the range program alone.
inline std::vector<NamedSettings> rangeStages() {
    using P = _AdjustParam;
    constexpr const char* names[KELADJUST_RANGE_COUNT] = {"red",     "orange", "yellow", "green",
                                                          "magenta", "purple", "blue",   "aqua"};
    std::vector<NamedSettings> stages;
    for (int i = 0; i < KELADJUST_RANGE_COUNT; ++i) {
        const std::string name = names[i];
        const auto range = [&](const std::string& change, float hue, float sat, float bright) {
            stages.push_back(only(name + " " + change, [&](P& p) {
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
    }
    stages.push_back(only("shifts beyond the circle", [](P& p) {
        setRangeBounds(p);
        p.range[KELADJUST_RANGE_GREEN].hue = 420;
        p.range[KELADJUST_RANGE_BLUE].hue = -650;
    }));
    const auto vignette = [&](const char* name, float amount, float size, float roundness,
                              float feather, float exposure, float protection) {
        stages.push_back(only(name, [&](P& p) {
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
    return stages;
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
