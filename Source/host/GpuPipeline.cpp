#include "host/GpuPipeline.h"

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <string>
#include <vector>

#include "filters/StageForms.h"

namespace keladjust {

namespace {

using P = _AdjustParam;

constexpr std::int32_t neutralTemperature = 11500;

/// A setting under the name that a program has for it.
struct Uniform {
    const char* name;
    float P::*setting;
};

constexpr Uniform basicAdjustUniforms[] = {
    {"tint", &P::tint},
    {"exposure", &P::exposure},
    {"brightness", &P::brightness},
    {"contrast", &P::contrast},
    {"vib", &P::vibrance},
    {"sat", &P::saturation},
    {"highLight", &P::highlights},
    {"shadow", &P::shadows},
    {"whiteLevel", &P::whites},
    {"blackLevel", &P::blacks},
};

constexpr Uniform vignetteUniforms[] = {
    {"amount", &P::vignetteAmount},       {"size", &P::vignetteSize},
    {"roundness", &P::vignetteRoundness}, {"feather", &P::vignetteFeather},
    {"exposure", &P::vignetteExposure},   {"highlights", &P::vignetteHighlights},
};

constexpr const char* rangeWords[KELADJUST_RANGE_COUNT] = {
    "Red", "Orange", "Yellow", "Green", "Magenta", "Purple", "Blue", "Aqua",
};

// NaN differs from everything, so that it counts as a setting.
bool isSet(float value) {
    return value != 0.0f;
}

bool changesTones(const P& p) {
    return p.temperature != neutralTemperature ||
           std::any_of(std::begin(basicAdjustUniforms), std::end(basicAdjustUniforms),
                       [&p](const Uniform& uniform) { return isSet(p.*uniform.setting); });
}

// Sharpening and the shape of the vignette do not start the effect by themselves.
bool changesRanges(const P& p) {
    return isSet(p.vignetteAmount) || isSet(p.vignetteExposure) ||
           std::any_of(std::begin(p.range), std::end(p.range), [](const _AdjustColourRange& range) {
               return isSet(range.hue) || isSet(range.saturation) || isSet(range.brightness);
           });
}

constexpr const char* rangeUniformEndings[] = {"_degreeMinVal", "_degreeMaxVal", "_hueVal",
                                               "_satVal", "_brightnessVal"};
constexpr float _AdjustColourRange::*rangeSettings[] = {
    &_AdjustColourRange::minDegree, &_AdjustColourRange::maxDegree, &_AdjustColourRange::hue,
    &_AdjustColourRange::saturation, &_AdjustColourRange::brightness};

/// The renders of one adjustment.
class Renders {
public:
    Renders(const GpuEngine& engine, CxImage& image, std::string* reason)
        : engine_(engine), image_(image), reason_(reason) {}

    /// Renders the picture, if it can be, with these uniforms after the picture's own.
    void render(GpuEffect effect, std::initializer_list<EngineInt> ints,
                const std::vector<EngineFloat>& floats) {
        std::vector<EngineInt> allInts{{"Sample", 0}};
        allInts.insert(allInts.end(), ints);
        EngineReason failure;
        // A render may have found the window closed: the engine is down then, effects and all.
        if (!engine_.isRunning()) {
            failure.set("The engine has stopped");
        } else if (engine_.file.module->render(
                       {effect, image_.GetBits(), image_.GetWidth(), image_.GetHeight(),
                        image_.GetBpp(), image_.getFormat(), allInts.data(),
                        static_cast<std::uint32_t>(allInts.size()), floats.data(),
                        static_cast<std::uint32_t>(floats.size())},
                       failure)) {
            return;
        }
        if (reason_ != nullptr && reason_->empty()) *reason_ = failure.text;
    }

private:
    const GpuEngine& engine_;
    CxImage& image_;
    std::string* reason_;
};

template <std::size_t count>
void append(std::vector<EngineFloat>& floats, const Uniform (&uniforms)[count], const P& p) {
    for (const Uniform& uniform : uniforms) floats.push_back({uniform.name, p.*uniform.setting});
}

void renderBasicAdjust(Renders& renders, const P& p) {
    std::vector<EngineFloat> floats;
    append(floats, basicAdjustUniforms, p);
    renders.render(basicAdjustEffect, {{"temperature", p.temperature}}, floats);
}

void renderRanges(Renders& renders, const CxImage& image, const P& p) {
    std::vector<EngineFloat> floats{{"sharpeness", p.sharpen}};
    std::string names[KELADJUST_RANGE_COUNT][std::size(rangeSettings)];
    for (int i = 0; i < KELADJUST_RANGE_COUNT; ++i) {
        for (std::size_t j = 0; j < std::size(rangeSettings); ++j) {
            names[i][j] = std::string(rangeWords[i]) + rangeUniformEndings[j];
            floats.push_back({names[i][j].c_str(), p.range[i].*rangeSettings[j]});
        }
    }
    append(floats, vignetteUniforms, p);
    renders.render(rangeEffect,
                   {{"imageWidth", static_cast<std::int32_t>(image.GetWidth())},
                    {"imageHeight", static_cast<std::int32_t>(image.GetHeight())}},
                   floats);
}

void runStages(CxImage* image, const P& p, const GpuEngine& engine, std::string* reason) {
    if (image == nullptr) return;
    Renders renders(engine, *image, reason);
    if (changesTones(p)) renderBasicAdjust(renders, p);
    clarity(image, p.clarity);
    if (changesRanges(p)) renderRanges(renders, *image, p);
    // Clarity works on either side of the colour ranges; sharpening once more than they did.
    clarity(image, p.clarity);
    sharpen(image, p.sharpen);
    distortFilter(image, p.distortion);
    fringingFilter(image, p.fringing);
    dehaze(image, p.dehaze);
    diffuse(image, p.diffuse);
    deNoiseRGB(image, p.colourNoiseReduction);
    deNoiseLumiance(image, p.luminanceNoiseReduction);
}

}  // namespace

CxImage* runGpuPipeline(CxImage* image, const _AdjustParam& parameters, const GpuEngine& engine,
                        std::string* reason) noexcept {
    if (reason != nullptr) reason->clear();
    return exportedForm(image, [&] { runStages(image, parameters, engine, reason); });
}

}  // namespace keladjust
