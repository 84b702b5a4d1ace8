// Contrast: a window of the channel range stretched over all of it, or the range squeezed towards
// its middle.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/contrast/Contrast.cpp"
#include <hwy/foreach_target.h>

#include "filters/contrast/Contrast.h"

#include <cstdint>

#include "arithmetic/Rounding.h"
#include "walks/PixelVectors-inl.h"
#include "walks/StageForms.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

// A range made out of all of the scale; unclamped.
void squeezeColours(ColourRun& run, const ContrastWindow<float>& window) {
    const UnitColours colours(run);
    forEachColour(colours, [&](std::size_t i) HWY_ATTR {
        const auto squeezed = [&](Floats channel) HWY_ATTR {
            return hn::Sub(hn::Mul(channel, constant(window.range)), constant(window.low));
        };
        colours.storeAny(mapChannels(colours.load(i), squeezed), i);
    });
}

// All of the scale made out of the part between low and high.
void stretchColours(ColourRun& run, const ContrastWindow<float>& window) {
    const UnitColours colours(run);
    forEachColour(colours, [&](std::size_t i) HWY_ATTR {
        const auto stretched = [&](Floats channel) HWY_ATTR {
            const Floats inside =
                hn::Div(hn::Sub(channel, constant(window.low)), constant(window.range));
            const Floats capped =
                hn::IfThenElse(hn::Gt(channel, constant(window.high)), constant(1.0f), inside);
            return hn::IfThenZeroElse(hn::Le(channel, constant(window.low)), capped);
        };
        colours.storeAny(mapChannels(colours.load(i), stretched), i);
    });
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(squeezeColours);
HWY_EXPORT(stretchColours);

namespace {

// How far the window lies from the ends of the channel range, before rounding.
float contrastMargin(float setting) {
    return (setting > 0.0f ? 1.0f / (1.0f - setting / 255.0f) - 1.0f : setting / 255.0f) * 100.0f *
           0.5f;
}

// Windows turned inside out or too wide are replaced by fixed ones.
template <class Number>
constexpr ContrastWindow<Number> insideOut{120, 127, 15};
template <class Number>
constexpr ContrastWindow<Number> tooWide{-120, 127, 15};

ContrastWindow<std::int32_t> byteWindow(float setting) {
    const std::int32_t low = truncateToInt(contrastMargin(setting));
    const std::int32_t high = wrappingSubtract(255, low);
    if (high < low) return insideOut<std::int32_t>;
    if (low < -127) return tooWide<std::int32_t>;
    return {low, high, low < 0 ? 2 * low + 255 : 255 - 2 * low};
}

std::uint8_t stretchByte(std::uint8_t value, ContrastWindow<std::int32_t> window) {
    const std::int32_t c = value;
    if (window.low < 1) return static_cast<std::uint8_t>(c * window.range / 255 - window.low);
    if (c <= window.low) return 0;
    if (c > window.high) return 255;
    return static_cast<std::uint8_t>((c - window.low) * 255 / window.range);
}

ContrastWindow<float> unitWindow(float setting) {
    const float low = contrastMargin(setting);
    const float high = 255.0f - low;
    ContrastWindow<float> window{low, high, low < 0.0f ? 2.0f * low + 255.0f : 255.0f - 2.0f * low};
    if (high < low) {
        window = insideOut<float>;
    } else if (low < -127.0f) {
        window = tooWide<float>;
    }
    return {window.low / 255.0f, window.high / 255.0f, window.range / 255.0f};
}

}  // namespace

ContrastKernel::ContrastKernel(float setting)
    : active_(setting != 0.0f), unitWindow_(unitWindow(setting)) {
    const ContrastWindow<std::int32_t> window = byteWindow(setting);
    fill([window](std::uint8_t channel) { return stretchByte(channel, window); });
}

void ContrastKernel::change(ColourRun& run) const {
    if (unitWindow_.low > 0.0f) {
        HWY_DYNAMIC_DISPATCH(stretchColours)(run, unitWindow_);
    } else {
        HWY_DYNAMIC_DISPATCH(squeezeColours)(run, unitWindow_);
    }
}

}  // namespace keladjust

CxImage* contrastAdjustment(CxImage* image, float contrast) {
    return keladjust::applyKernel<keladjust::ContrastKernel>(image, contrast);
}

float* lut3d_contrastAdjustment(float* lut, unsigned long count, int stride, float contrast) {
    return keladjust::applyColourKernel<keladjust::ContrastKernel>(lut, count, stride, contrast);
}

#endif
