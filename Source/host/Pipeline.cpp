#include "host/Pipeline.h"

#include <array>
#include <cstddef>
#include <iterator>
#include <memory>
#include <new>
#include <utility>

#include "ImageFormat/PixelSpan.h"
#include "filters/colour-ranges/ColourRanges.h"
#include "filters/contrast/Contrast.h"
#include "filters/exposure/Brightness.h"
#include "filters/exposure/Exposure.h"
#include "filters/saturation/Saturation.h"
#include "filters/temperature/Temperature.h"
#include "filters/temperature/Tint.h"
#include "filters/tonal/TonalRanges.h"
#include "filters/vibrance/Vibrance.h"
#include "filters/vignette/Vignette.h"
#include "walks/RawWalk.h"
#include "walks/StageForms.h"

namespace keladjust {

namespace {

using KernelPointer = std::unique_ptr<PixelKernel>;

/// How the image form of a stage finds its pixels.
enum class Addressing {
    pixels,   ///< by row and column
    rawWalk,  ///< along the buffer, ignoring the padding of rows
};

/// One row of the pipeline. A stage with a kernel can share a pass with its neighbours.
struct Stage {
    CxImage* (*run)(CxImage*, const _AdjustParam&);
    KernelPointer (*kernel)(const Picture&, const _AdjustParam&) = nullptr;
    Addressing addressing = Addressing::pixels;
};

/// A stage whose image form `form` and whose kernel take one setting.
template <auto form, class Kernel, auto setting>
constexpr Stage perPixel(Addressing addressing = Addressing::pixels) {
    return {[](CxImage* image, const _AdjustParam& p) { return form(image, p.*setting); },
            [](const Picture&, const _AdjustParam& p) -> KernelPointer {
                return std::make_unique<Kernel>(p.*setting);
            },
            addressing};
}

/// A stage that sees the whole picture.
template <auto form, auto setting>
constexpr Stage spatial() {
    return {[](CxImage* image, const _AdjustParam& p) { return form(image, p.*setting); }};
}

template <std::size_t place>
constexpr Stage colourRange() {
    return {[](CxImage* image, const _AdjustParam& p) {
                const _AdjustColourRange& r = p.range[place];
                return doHSLAdjustFilter(image, r.minDegree, r.maxDegree, r.hue, r.saturation,
                                         r.brightness);
            },
            [](const Picture&, const _AdjustParam& p) -> KernelPointer {
                const _AdjustColourRange& r = p.range[place];
                return std::make_unique<ColourRangeKernel>(r.minDegree, r.maxDegree, r.hue,
                                                           r.saturation, r.brightness);
            }};
}

constexpr Stage vignette() {
    return {[](CxImage* image, const _AdjustParam& p) {
                return vignetteAdjustFilter(image, p.vignetteAmount, p.vignetteFeather,
                                            p.vignetteHighlights, p.vignetteSize,
                                            p.vignetteRoundness, p.vignetteExposure);
            },
            [](const Picture& picture, const _AdjustParam& p) -> KernelPointer {
                return std::make_unique<VignetteKernel>(
                    static_cast<unsigned>(picture.width), static_cast<unsigned>(picture.height),
                    p.vignetteAmount, p.vignetteFeather, p.vignetteHighlights, p.vignetteSize,
                    p.vignetteRoundness, p.vignetteExposure);
            }};
}

using P = _AdjustParam;

constexpr Stage stages[] = {
    perPixel<temperatureAdjustment, TemperatureKernel, &P::temperature>(),
    perPixel<tintAdjustment, TintKernel, &P::tint>(),
    perPixel<exposureAdjustment, ExposureKernel, &P::exposure>(),
    perPixel<brightnessAdjustment, BrightnessKernel, &P::brightness>(Addressing::rawWalk),
    perPixel<contrastAdjustment, ContrastKernel, &P::contrast>(),
    perPixel<vibranceAdjustment, VibranceKernel, &P::vibrance>(),
    perPixel<saturationAdjustment, SaturationKernel, &P::saturation>(),
    perPixel<hdrHighlight, HighlightKernel, &P::highlights>(),
    perPixel<hdrShadow, ShadowKernel, &P::shadows>(),
    perPixel<hdrWhiteLevel, WhiteLevelKernel, &P::whites>(),
    perPixel<hdrBlackLevel, BlackLevelKernel, &P::blacks>(),
    colourRange<KELADJUST_RANGE_RED>(),
    colourRange<KELADJUST_RANGE_ORANGE>(),
    colourRange<KELADJUST_RANGE_YELLOW>(),
    colourRange<KELADJUST_RANGE_GREEN>(),
    colourRange<KELADJUST_RANGE_MAGENTA>(),
    colourRange<KELADJUST_RANGE_PURPLE>(),
    colourRange<KELADJUST_RANGE_BLUE>(),
    colourRange<KELADJUST_RANGE_AQUA>(),
    vignette(),
    spatial<clarity, &P::clarity>(),
    spatial<sharpen, &P::sharpen>(),
    spatial<distortFilter, &P::distortion>(),
    spatial<fringingFilter, &P::fringing>(),
    spatial<dehaze, &P::dehaze>(),
    spatial<diffuse, &P::diffuse>(),
    spatial<deNoiseRGB, &P::colourNoiseReduction>(),
    spatial<deNoiseLumiance, &P::luminanceNoiseReduction>(),
};

/// Neighbouring per-pixel stages that wait for their common pass.
class CommonPass {
public:
    explicit CommonPass(const Picture& picture) : picture_(picture) {}

    void add(KernelPointer kernel) {
        // Two tables are one where nothing happens to a lane between them: it is stored whole, or
        // it is one of three alike.
        const bool followsTable = count_ > 0 && kernels_[count_ - 1]->table() != nullptr;
        const PixelLayout layout = picture_.layout;
        const bool lanesPass = storesLanesWhole(layout) || layout == PixelLayout::gray8;
        if (lanesPass && followsTable && kernel->table() != nullptr) {
            KernelPointer& last = kernels_[count_ - 1];
            last = std::make_unique<ComposedTable>(*last->table(), *kernel->table());
        } else {
            kernels_[count_++] = std::move(kernel);
        }
    }

    void run() {
        std::array<const PixelKernel*, std::size(stages)> kernels;
        for (std::size_t i = 0; i < count_; ++i) kernels[i] = kernels_[i].get();
        runKernels(picture_, {kernels.data(), count_});
        count_ = 0;
    }

private:
    const Picture& picture_;
    std::array<KernelPointer, std::size(stages)> kernels_;
    std::size_t count_ = 0;
};

bool canShareAPass(const Stage& stage, const Picture& picture) {
    if (stage.kernel == nullptr) return false;
    return stage.addressing == Addressing::pixels || rawWalkMeetsPixels(picture);
}

/// Puts the stage into the pass, if it can be there; false if it runs by itself.
bool joinPass(const Stage& stage, const Picture& picture, const _AdjustParam& parameters,
              CommonPass& pass) {
    if (!canShareAPass(stage, picture)) return false;
    try {
        KernelPointer kernel = stage.kernel(picture, parameters);
        if (kernel->active()) pass.add(std::move(kernel));
        return true;
    } catch (const std::bad_alloc&) {
        return false;  // by itself it may need less, or passes the picture on
    }
}

void runStages(CxImage* image, const Picture& picture, const _AdjustParam& parameters) {
    CommonPass pass(picture);
    for (const Stage& stage : stages) {
        if (joinPass(stage, picture, parameters, pass)) continue;
        pass.run();
        stage.run(image, parameters);
    }
    pass.run();
}

}  // namespace

CxImage* runCpuPipeline(CxImage* image, const _AdjustParam& parameters) noexcept {
    return exportedForm(image,
                        [&](const Picture& picture) { runStages(image, picture, parameters); });
}

}  // namespace keladjust
