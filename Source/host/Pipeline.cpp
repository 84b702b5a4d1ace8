#include "host/Pipeline.h"

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "ImageFormat/Geometry.h"
#include "ImageFormat/PixelSpan.h"
#include "ImageFormat/RawWalk.h"
#include "filters/BrightnessContrast.h"
#include "filters/ColourRanges.h"
#include "filters/ExposureTonalRanges.h"
#include "filters/Saturation.h"
#include "filters/StageForms.h"
#include "filters/TemperatureTint.h"
#include "filters/VibranceHue.h"
#include "filters/Vignette.h"

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
    KernelPointer (*kernel)(const CxImage&, const _AdjustParam&) = nullptr;
    Addressing addressing = Addressing::pixels;
};

/// A stage whose image form `form` and whose kernel take one setting.
template <auto form, class Kernel, auto setting>
constexpr Stage perPixel(Addressing addressing = Addressing::pixels) {
    return {[](CxImage* image, const _AdjustParam& p) { return form(image, p.*setting); },
            [](const CxImage&, const _AdjustParam& p) -> KernelPointer {
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
            [](const CxImage&, const _AdjustParam& p) -> KernelPointer {
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
            [](const CxImage& image, const _AdjustParam& p) -> KernelPointer {
                return std::make_unique<VignetteKernel>(
                    image.width, image.height, p.vignetteAmount, p.vignetteFeather,
                    p.vignetteHighlights, p.vignetteSize, p.vignetteRoundness, p.vignetteExposure);
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
class Pass {
public:
    explicit Pass(CxImage& image) : image_(image), layout_(layoutOf(image)) {}

    void add(KernelPointer kernel) {
        // Two tables are one where nothing happens to a lane between them: it is stored whole, or
        // it is one of three alike.
        const bool followsTable = !kernels_.empty() && kernels_.back()->table() != nullptr;
        const bool lanesPass = storesLanesWhole(layout_) || layout_ == PixelLayout::gray8;
        if (lanesPass && followsTable && kernel->table() != nullptr) {
            kernels_.back() =
                std::make_unique<ComposedTable>(*kernels_.back()->table(), *kernel->table());
        } else {
            kernels_.push_back(std::move(kernel));
        }
    }

    void run() {
        if (kernels_.empty()) return;
        std::vector<const PixelKernel*> kernels;
        kernels.reserve(kernels_.size());
        for (const KernelPointer& kernel : kernels_) kernels.push_back(kernel.get());
        runKernels(image_, kernels);
        kernels_.clear();
    }

private:
    CxImage& image_;
    PixelLayout layout_;
    std::vector<KernelPointer> kernels_;
};

bool canShareAPass(const Stage& stage, const CxImage& image) {
    if (stage.kernel == nullptr || !hasPixels(&image)) return false;
    return stage.addressing == Addressing::pixels || rawWalkMeetsPixels(image);
}

CxImage* runStages(CxImage* image, const _AdjustParam& parameters) {
    if (image == nullptr) return image;
    Pass pass(*image);
    for (const Stage& stage : stages) {
        if (canShareAPass(stage, *image)) {
            KernelPointer kernel = stage.kernel(*image, parameters);
            if (kernel->active()) pass.add(std::move(kernel));
        } else {
            pass.run();
            stage.run(image, parameters);
        }
    }
    pass.run();
    return image;
}

}  // namespace

CxImage* runCpuPipeline(CxImage* image, const _AdjustParam& parameters) noexcept {
    return exportedForm(image, [&] { runStages(image, parameters); });
}

}  // namespace keladjust
