#include "host/GpuPipeline.h"

#include <cstdint>
#include <initializer_list>
#include <new>
#include <vector>

#include "filters/Stage.h"
#include "host/Pipeline.h"
#include "host/Uniforms.h"
#include "platform/CallScope.h"
#include "walks/StageForms.h"

namespace keladjust {

namespace {

/// The renders of one adjustment.
class Renders {
public:
    Renders(const GpuEngine& engine, CxImage& image, const _AdjustParam& record)
        : engine_(engine), image_(image), record_(record) {}

    /// Renders the picture with the uniforms of a program, after some of the picture's own.
    /// @return false, and why, if it was not rendered and is as it was
    bool render(GpuEffect effect, Program program, std::initializer_list<EngineInt> ofPicture,
                EngineReason& reason) const noexcept {
        try {
            return tryToRender(effect, program, ofPicture, reason);
        } catch (const std::bad_alloc&) {
            // The later stages may need less.
            reason.set("memory is short");
            return false;
        }
    }

    bool renderTones(EngineReason& reason) const {
        return render(basicAdjustEffect, Program::tone, {}, reason);
    }
    bool renderRanges(EngineReason& reason) const {
        return render(rangeEffect, Program::range,
                      {{"imageWidth", static_cast<std::int32_t>(image_.GetWidth())},
                       {"imageHeight", static_cast<std::int32_t>(image_.GetHeight())}},
                      reason);
    }

private:
    bool tryToRender(GpuEffect effect, Program program, std::initializer_list<EngineInt> ofPicture,
                     EngineReason& reason) const {
        // A render may have found the window closed: the engine is down then, effects and all.
        if (!engine_.isRunning()) {
            reason.set("The engine has stopped");
            return false;
        }
        std::vector<EngineInt> ints{{"Sample", 0}};
        ints.insert(ints.end(), ofPicture);
        for (const auto& uniform : integerUniforms(program, record_)) {
            ints.push_back({uniform.name, uniform.value});
        }
        std::vector<EngineFloat> floats;
        for (const auto& uniform : floatUniforms(program, record_)) {
            floats.push_back({uniform.name, uniform.value});
        }
        return engine_.file.module->render(
            {effect, image_.GetBits(), image_.GetWidth(), image_.GetHeight(), image_.GetBpp(),
             image_.getFormat(), ints.data(), static_cast<std::uint32_t>(ints.size()),
             floats.data(), static_cast<std::uint32_t>(floats.size())},
            reason);
    }

    const GpuEngine& engine_;
    CxImage& image_;
    const _AdjustParam& record_;
};

// False at a refused render, which is the end if nothing may go on without it.
bool renderStages(CxImage& image, const _AdjustParam& record, const GpuEngine& engine,
                  bool goesOnWithout, EngineReason& reason) {
    const Renders renders(engine, image, record);
    if (startsProgram(Program::tone, record)) {
        if (!renders.renderTones(reason) && !goesOnWithout) return false;
    }
    // Clarity works on either side of the colour ranges; sharpening once more than they did.
    if (!platform::isCancelled()) clarity(&image, record.clarity);
    if (startsProgram(Program::range, record) && !platform::isCancelled()) {
        if (!renders.renderRanges(reason) && !goesOnWithout) return false;
    }
    return true;
}

// What is rendered stands for this part of the progress.
constexpr float renderedShare = 0.3f;

bool runStages(CxImage& image, const _AdjustParam& record, const GpuEngine& engine,
               bool goesOnWithout, EngineReason& reason) {
    {
        const platform::ProgressPart part(0.0f, renderedShare);
        if (!renderStages(image, record, engine, goesOnWithout, reason)) return false;
    }
    const platform::ProgressPart part(renderedShare, 1.0f);
    runSpatialStages(image, record);
    return true;
}

}  // namespace

CxImage* runGpuPipeline(CxImage* image, const _AdjustParam& parameters, const GpuEngine& engine,
                        EngineReason* reason) noexcept {
    EngineReason refusal;
    guarded([&] {
        if (image == nullptr || runStages(*image, parameters, engine, reason == nullptr, refusal)) {
            refusal = {};
        } else if (refusal.text[0] == '\0') {
            refusal.set("the picture was not rendered");
        }
    });
    if (reason != nullptr) *reason = refusal;
    return image;
}

}  // namespace keladjust
