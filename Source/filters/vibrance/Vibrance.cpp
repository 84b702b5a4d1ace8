// Vibrance: saturation for dull colours. Pixels and table colours have arithmetic of their own.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/vibrance/Vibrance.cpp"
#include <hwy/foreach_target.h>

#include "filters/vibrance/Vibrance.h"

#include <cmath>

#include "walks/PixelVectors-inl.h"
#include "walks/StageForms.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

void stretchPixels(PackedSpan& span, float amount) {
    const bool isModest = std::fabs(amount) < 1e6f;  // else numbers may not fit into 32 bits
    const Ints whole = constant(std::int32_t{256});
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Ints> c = loadIntChannels(span, i);
        const Ints largest = largestOf(c);
        const Ints lightness = hn::ShiftRight<1>(hn::Add(smallestOf(c), largest));
        // The smallest channel is never above the lightness, so only the largest one counts.
        const Ints half = hn::ShiftRight<1>(hn::Sub(largest, lightness));
        // Minus that as a byte: dull pixels gain most, and greyish ones (half of 0) nothing,
        // because there the byte wraps to 0.
        const Ints dullness = hn::And(hn::Sub(whole, half), constant(std::int32_t{255}));
        const Floats product = hn::Mul(toFloats(dullness), constant(amount));
        const Ints extra = isModest ? truncateInRange(product) : truncateToInts(product);
        const Ints gain = hn::Add(whole, extra);
        const Ints base = hn::Mul(lightness, hn::Sub(whole, gain));
        storeClamped(
            mapChannels(c,
                        [&](Ints channel) HWY_ATTR {
                            return hn::ShiftRight<8>(hn::Add(hn::Mul(channel, gain), base));
                        }),
            span, i);
    });
}

void stretchColours(ColourRun& run, float amount) {
    const UnitColours colours(run);
    forEachColour(colours, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = colours.load(i);
        const Floats one = constant(1.0f);
        const Floats half = constant(0.5f);
        const Floats lightness =
            hn::Mul(hn::Add(UnitColours::smallestOf(c), UnitColours::largestOf(c)), half);
        const Channels<Floats> above = mapChannels(
            c, [&](Floats channel) HWY_ATTR { return clampTo(1.0f, hn::Sub(channel, lightness)); });
        const Floats colourfulness = hn::Mul(hn::Add(smallestOf(above), largestOf(above)), half);
        const Floats gain = hn::Add(hn::Mul(hn::Sub(one, colourfulness), constant(amount)), one);
        const Floats offset = hn::Mul(hn::Sub(one, gain), lightness);
        const auto stretched = [&](Floats channel)
                                   HWY_ATTR { return hn::Add(hn::Mul(gain, channel), offset); };
        colours.store(mapChannels(c, stretched), i);
    });
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(stretchPixels);
HWY_EXPORT(stretchColours);

VibranceKernel::VibranceKernel(float vibrance)
    : active_(vibrance != 0.0f), amount_(vibrance / 100.0f * 0.8f) {}

void VibranceKernel::run(PackedSpan& span) const {
    HWY_DYNAMIC_DISPATCH(stretchPixels)(span, amount_);
}

void VibranceKernel::change(ColourRun& run) const {
    HWY_DYNAMIC_DISPATCH(stretchColours)(run, amount_);
}

}  // namespace keladjust

CxImage* vibranceAdjustment(CxImage* image, float vibrance) {
    return keladjust::applyKernel<keladjust::VibranceKernel>(image, vibrance);
}

float* lut3d_vibranceAdjustment(float* lut, unsigned long count, int stride, float vibrance) {
    return keladjust::applyColourKernel<keladjust::VibranceKernel>(lut, count, stride, vibrance);
}

#endif
