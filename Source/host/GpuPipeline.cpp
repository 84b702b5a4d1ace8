#include "host/GpuPipeline.h"

#include <OgrePixelFormat.h>

#include <cstdint>

#include "engine/KelOgreEffectBase.h"
#include "engine/KelOgreRenderThread.h"
#include "filters/Stage.h"
#include "host/Pipeline.h"
#include "host/Uniforms.h"
#include "platform/CallScope.h"
#include "walks/StageForms.h"

namespace keladjust {

namespace {

// What a render may take; the pipeline does not ask whether it did.
constexpr std::uint32_t evaluateMilliseconds = 20;

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

void setUniforms(KelOgreEffectBase& effect, Program program, const _AdjustParam& record) {
    for (const auto& uniform : integerUniforms(program, record)) {
        effect.setParameter(fragmentProgram, uniform.name, uniform.value);
    }
    for (const auto& uniform : floatUniforms(program, record)) {
        effect.setParameter(fragmentProgram, uniform.name, uniform.value);
    }
}

bool render(const GpuEngine& engine, KelOgreEffectBase& effect, CxImage& image) {
    return engine.thread->render(&effect, nullptr, image.GetBits(), image.GetBpp() / 8, nullptr,
                                 evaluateMilliseconds) != 0;
}

bool renderTones(const GpuEngine& engine, CxImage& image, const _AdjustParam& record) {
    KelOgreEffectBase& effect = *engine.basicAdjust;
    setPicture(effect, image);
    setUniforms(effect, Program::tone, record);
    return render(engine, effect, image);
}

bool renderRanges(const GpuEngine& engine, CxImage& image, const _AdjustParam& record) {
    KelOgreEffectBase& effect = *engine.range;
    setPicture(effect, image);
    effect.setParameter(fragmentProgram, "imageWidth", static_cast<std::int32_t>(image.GetWidth()));
    effect.setParameter(fragmentProgram, "imageHeight",
                        static_cast<std::int32_t>(image.GetHeight()));
    setUniforms(effect, Program::range, record);
    return render(engine, effect, image);
}

// False at a refused render, which is the end if nothing may go on without it.
bool renderStages(CxImage& image, const _AdjustParam& record, const GpuEngine& engine,
                  bool goesOnWithout) {
    if (startsProgram(Program::tone, record)) {
        const bool rendered = engine.isRunning() && renderTones(engine, image, record);
        if (!rendered && !goesOnWithout) return false;
    }
    // Clarity works on either side of the colour ranges; sharpening once more than they did.
    if (!platform::isCancelled()) clarity(&image, record.clarity);
    // The first render may have found the window closed: the engine is down then, effects and all.
    if (startsProgram(Program::range, record) && !platform::isCancelled()) {
        const bool rendered = engine.isRunning() && renderRanges(engine, image, record);
        if (!rendered && !goesOnWithout) return false;
    }
    return true;
}

// What is rendered stands for this part of the progress.
constexpr float renderedShare = 0.3f;

bool runStages(CxImage& image, const _AdjustParam& record, const GpuEngine& engine,
               bool goesOnWithout) {
    {
        const platform::ProgressPart part(0.0f, renderedShare);
        if (!renderStages(image, record, engine, goesOnWithout)) return false;
    }
    const platform::ProgressPart part(renderedShare, 1.0f);
    runSpatialStages(image, record);
    return true;
}

}  // namespace

CxImage* runGpuPipeline(CxImage* image, const _AdjustParam& parameters, const GpuEngine& engine,
                        std::string* reason) noexcept {
    guarded([&] {
        if (image == nullptr || runStages(*image, parameters, engine, reason == nullptr)) return;
        *reason = "the engine refused to render the picture";
    });
    return image;
}

}  // namespace keladjust
