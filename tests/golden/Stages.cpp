// Every stage on pictures, at usual settings, at the ends of its range and at absurd ones. The four
// digests of a line are for pictures of 8, 16, 24 and 32 bits.

#include <gtest/gtest.h>
#include <keladjust/CxImage.h>

#include <cstdint>
#include <initializer_list>
#include <limits>

#include "golden/DigestByDepth.h"
#include "golden/Results.h"
#include "support/EveryStage.h"
#include "support/OddNumbers.h"

namespace keladjust::test {

namespace {

template <class Stage, class... Settings>
void addCall(Results& results, const char* name, Stage stage, Settings... settings) {
    results.add(callText(name, settings...),
                digestByDepth([&](CxImage* image) { return stage(image, settings...); }));
}

void addStage(Results& results, const char* name, CxImage* (*stage)(CxImage*, float),
              std::initializer_list<float> settings) {
    for (const float setting : settings) addCall(results, name, stage, setting);
    for (const float setting : {1e30f, -1e30f, 1e-42f, infinity, -infinity, quietNan}) {
        addCall(results, name, stage, setting);
    }
}

void addColourRangeStages(Results& results) {
    struct Band {
        float minDegree;
        float maxDegree;
    };
    for (const auto& [low, high] : {Band{330, 30}, {60, 180}, {210, 270}, {0, 360}, {300, 0}}) {
        for (const float value : {60.0f, -100.0f, quietNan}) {
            addCall(results, "adjustHueFilter", adjustHueFilter, low, high, value);
            addCall(results, "adjustSaturationFilter", adjustSaturationFilter, low, high, value);
            addCall(results, "adjustBrightnessFilter", adjustBrightnessFilter, low, high, value);
        }
        addCall(results, "doHSLAdjustFilter", doHSLAdjustFilter, low, high, 20.0f, 30.0f, -40.0f);
        addCall(results, "doHSLAdjustFilter", doHSLAdjustFilter, low, high, -650.0f, 1e30f, 300.0f);
    }
    for (const float bound : {quietNan, infinity, -90.0f, 1e30f}) {
        addCall(results, "doHSLAdjustFilter", doHSLAdjustFilter, bound, 90.0f, 20.0f, 30.0f, 40.0f);
        addCall(results, "doHSLAdjustFilter", doHSLAdjustFilter, 90.0f, bound, 20.0f, 30.0f, 40.0f);
    }
}

void addVignettes(Results& results) {
    const auto vignette = [&](float amount, float feather, float highlights, float size,
                              float roundness, float exposure) {
        addCall(results, "vignetteAdjustFilter", vignetteAdjustFilter, amount, feather, highlights,
                size, roundness, exposure);
    };
    vignette(-80, 60, 50, 40, 0, 0);
    vignette(70, 100, 80, 20, 60, 0);
    vignette(0, 30, 50, 60, -40, 80);
    vignette(-60, 50, 90, 30, 100, -50);
    vignette(-100, 0, 0, 100, 100, 100);
    vignette(100, 0, 100, 0, 0, -100);
    for (const float odd : {1e30f, -infinity, quietNan}) {
        vignette(odd, 60, 50, 40, 30, 0);
        vignette(-80, odd, 50, 40, 30, 0);
        vignette(-80, 60, odd, 40, 30, 0);
        vignette(-80, 60, 50, odd, 30, 0);
        vignette(-80, 60, 50, 40, odd, 0);
        vignette(-80, 60, 50, 40, 30, odd);
    }
}

void addColourStrips(Results& results) {
    struct Size {
        int width;
        int height;
    };
    for (const auto& [width, height] : {Size{300, 2}, {400, 1}, {0, 5}, {-3, 5}}) {
        CxImage* strip = createTemperateColor(width, height);
        ASSERT_NE(strip, nullptr);
        Digest digest;
        digest.add({strip->GetBits(), static_cast<std::size_t>(strip->GetSize())});
        results.add(callText("createTemperateColor", width, height), digest.value());
        releaseCxImage(strip);
    }
}

// What has joined the catalogue since, behind the first 65 slots.
void addLaterStages(Results& results) {
    for (const Stage& stage : stages) {
        if (stage.firstSlot < 65) continue;
        for (const float strength : {1.0f, 0.3f, -0.6f, -1.0f, 1e30f, -1e30f, quietNan}) {
            const _AdjustParam record = stageAlone(stage, strength);
            results.add(callText(stage.name.c_str(), strength),
                        digestByDepth([&](CxImage* image) { return stage.run(image, record); }));
        }
    }
}

}  // namespace

Results stageResults() {
    Results results;
    constexpr std::int32_t least = std::numeric_limits<std::int32_t>::min();
    constexpr std::int32_t most = std::numeric_limits<std::int32_t>::max();
    for (const std::int32_t kelvin :
         {1700, 2000, 6600, 9000, 11501, 14000, 24400, 40000, 0, -1, least, most}) {
        addCall(results, "temperatureAdjustment", temperatureAdjustment, kelvin);
    }
    addStage(results, "tintAdjustment", tintAdjustment, {100, 40, -60, -100});
    addStage(results, "exposureAdjustment", exposureAdjustment, {100, 20, -70, -100});
    addStage(results, "brightnessAdjustment", brightnessAdjustment, {100, 10, -60, -100});
    addStage(results, "contrastAdjustment", contrastAdjustment,
             {5, 85, 170, 80, 255, 256, -80, -100, -300});
    addStage(results, "vibranceAdjustment", vibranceAdjustment, {100, 70, -30, -100});
    addStage(results, "hueAdjustment", hueAdjustment, {30, 180, 360, -90, 1000});
    addStage(results, "saturationAdjustment", saturationAdjustment, {100, 60, -30, -100, -300});
    addStage(results, "hdrHighlight", hdrHighlight, {100, 80, -50, -100, 300});
    addStage(results, "hdrShadow", hdrShadow, {100, 80, -50, -100, 300});
    addStage(results, "hdrWhiteLevel", hdrWhiteLevel, {100, 30, -80, -100});
    addStage(results, "hdrBlackLevel", hdrBlackLevel, {100, 30, -80, -100});
    addColourRangeStages(results);
    addVignettes(results);
    addStage(results, "clarity", clarity, {1, 2, 3, 40, 100, 252, 254, -1, -50, -300});
    addStage(results, "sharpen", sharpen, {60, 255, 400, -80});
    addStage(results, "distortFilter", distortFilter, {100, 30, 1, -50, -100, -250});
    addStage(results, "fringingFilter", fringingFilter, {100, 30, -20, -100, 900});
    addStage(results, "dehaze", dehaze, {100, 30, 5, -30, -100});
    addStage(results, "diffuse", diffuse, {100, 20, 720, -50, -720});
    addStage(results, "deNoiseRGB", deNoiseRGB, {1, 20, 50, 100, -10});
    addStage(results, "deNoiseLumiance", deNoiseLumiance, {1, 20, 50, 100, -10});
    for (const float amount : {100.0f, 10.0f, -40.0f, 1e30f, infinity, quietNan}) {
        for (const float size : {60.0f, 0.0f, 100.0f}) {
            addCall(results, "addNoiseFilter", addNoiseFilter, amount, size);
        }
    }
    for (const float size : {1e30f, -infinity, quietNan}) {
        addCall(results, "addNoiseFilter", addNoiseFilter, 50.0f, size);
    }
    addStage(results, "whiteBalanceAdjustment", whiteBalanceAdjustment, {100, 5, 450, 600, -1});
    addColourStrips(results);
    addLaterStages(results);
    return results;
}

}  // namespace keladjust::test
