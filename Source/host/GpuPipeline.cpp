#include "host/GpuPipeline.h"

#include <OgrePixelFormat.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>

#include "engine/KelOgreEffectBase.h"
#include "engine/KelOgreRenderThread.h"
#include "walks/StageForms.h"

namespace keladjust {

namespace {

using P = _AdjustParam;

constexpr std::int32_t neutralTemperature = 11500;
// What a render may take; the pipeline does not ask whether it did.
constexpr std::uint32_t evaluateMilliseconds = 20;

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

std::uint32_t enginePixelFormat(_ImagePixelFormat format) {
    switch (format) {
        case IMAGE_FORMAT_GRAY:
            return Ogre::PF_L8;
        case IMAGE_FORMAT_RGB:
            return Ogre::PF_B8G8R8;
        case IMAGE_FORMAT_BGR:
            return Ogre::PF_R8G8B8;
        case IMAGE_FORMAT_RGBA:
            return Ogre::PF_A8B8G8R8;
        case IMAGE_FORMAT_BGRA:
            return Ogre::PF_A8R8G8B8;
        default:
            return Ogre::PF_UNKNOWN;
    }
}

void setPicture(KelOgreEffectBase& effect, CxImage& image) {
    effect.setInputImage(image.GetBits(), image.GetWidth(), image.GetHeight(), 0,
                         enginePixelFormat(image.getFormat()));
    effect.setRenderSize(image.GetWidth(), image.GetHeight());
    effect.setParameter(fragmentProgram, "Sample", 0);
}

void setFloat(KelOgreEffectBase& effect, const std::string& name, float value) {
    effect.setParameter(fragmentProgram, name.c_str(), value);
}

void render(const GpuEngine& engine, KelOgreEffectBase& effect, CxImage& image) {
    engine.thread->render(&effect, nullptr, image.GetBits(), image.GetBpp() / 8, nullptr,
                          evaluateMilliseconds);
}

void renderBasicAdjust(const GpuEngine& engine, CxImage& image, const P& p) {
    KelOgreEffectBase& effect = *engine.basicAdjust;
    setPicture(effect, image);
    effect.setParameter(fragmentProgram, "temperature", p.temperature);
    for (const Uniform& uniform : basicAdjustUniforms) {
        setFloat(effect, uniform.name, p.*uniform.setting);
    }
    render(engine, effect, image);
}

void renderRanges(const GpuEngine& engine, CxImage& image, const P& p) {
    KelOgreEffectBase& effect = *engine.range;
    setPicture(effect, image);
    effect.setParameter(fragmentProgram, "imageWidth", static_cast<std::int32_t>(image.GetWidth()));
    effect.setParameter(fragmentProgram, "imageHeight",
                        static_cast<std::int32_t>(image.GetHeight()));
    setFloat(effect, "sharpeness", p.sharpen);
    for (int i = 0; i < KELADJUST_RANGE_COUNT; ++i) {
        const std::string word = rangeWords[i];
        const _AdjustColourRange& range = p.range[i];
        setFloat(effect, word + "_degreeMinVal", range.minDegree);
        setFloat(effect, word + "_degreeMaxVal", range.maxDegree);
        setFloat(effect, word + "_hueVal", range.hue);
        setFloat(effect, word + "_satVal", range.saturation);
        setFloat(effect, word + "_brightnessVal", range.brightness);
    }
    for (const Uniform& uniform : vignetteUniforms) {
        setFloat(effect, uniform.name, p.*uniform.setting);
    }
    render(engine, effect, image);
}

void runStages(CxImage* image, const P& p, const GpuEngine& engine) {
    if (image == nullptr) return;
    if (changesTones(p) && engine.isRunning()) renderBasicAdjust(engine, *image, p);
    clarity(image, p.clarity);
    // The first render may have found the window closed: the engine is down then, effects and all.
    if (changesRanges(p) && engine.isRunning()) renderRanges(engine, *image, p);
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

CxImage* runGpuPipeline(CxImage* image, const _AdjustParam& parameters,
                        const GpuEngine& engine) noexcept {
    guarded([&] { runStages(image, parameters, engine); });
    return image;
}

}  // namespace keladjust
