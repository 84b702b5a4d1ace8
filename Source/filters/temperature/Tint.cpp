// Tint: red and blue against green. Pixels and table colours have arithmetic of their own.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/temperature/Tint.cpp"
#include <hwy/foreach_target.h>

#include "filters/temperature/Tint.h"

#include "arithmetic/Rounding.h"
#include "walks/PixelVectors-inl.h"
#include "walks/StageForms.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

void shiftPixels(PackedSpan& span, std::int32_t strength) {
    const Ints with = constant(strength);
    const Ints against = hn::Sub(constant(std::int32_t{0}), with);
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Ints> c = loadIntChannels(span, i);
        const Ints grey =
            hn::ShiftRight<10>(hn::Add(hn::Add(hn::Mul(c.green, constant(std::int32_t{601})),
                                               hn::Mul(c.red, constant(std::int32_t{306}))),
                                       hn::Mul(c.blue, constant(std::int32_t{117}))));
        // 32-bit products that wrap.
        const Ints shift = hn::ShiftRight<8>(hn::Mul(grey, with));
        const Ints counter = hn::ShiftRight<8>(hn::Mul(grey, against));
        storeClamped(Channels<Ints>{hn::Add(c.red, shift), hn::Add(c.green, counter),
                                    hn::Add(c.blue, shift)},
                     span, i);
    });
}

void shiftColours(ColourRun& run, std::int32_t strength) {
    const Floats factor = constant(static_cast<float>(strength) / 255.0f);
    const UnitColours colours(run);
    forEachColour(colours, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = colours.load(i);
        const Floats redAndGreen =
            hn::Add(hn::Mul(c.red, constant(0.3f)), hn::Mul(c.green, constant(0.59f)));
        const Floats grey = hn::Add(redAndGreen, hn::Mul(c.blue, constant(0.11f)));
        const Floats shift = hn::Mul(grey, factor);
        colours.store({hn::Add(c.red, shift), hn::Sub(c.green, shift), hn::Add(c.blue, shift)}, i);
    });
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(shiftPixels);
HWY_EXPORT(shiftColours);

// The strength floors, so that small negative tints act and small positive ones do not.
TintKernel::TintKernel(float tint)
    : active_(tint != 0.0f), strength_(truncateToInt(tint * 100.0f) >> 8) {}

void TintKernel::run(PackedSpan& span) const {
    HWY_DYNAMIC_DISPATCH(shiftPixels)(span, strength_);
}

void TintKernel::change(ColourRun& run) const {
    HWY_DYNAMIC_DISPATCH(shiftColours)(run, strength_);
}

}  // namespace keladjust

CxImage* tintAdjustment(CxImage* image, float tint) {
    return keladjust::applyKernel<keladjust::TintKernel>(image, tint);
}

float* lut3d_tintAdjustment(float* lut, unsigned long count, int stride, float tint) {
    return keladjust::applyColourKernel<keladjust::TintKernel>(lut, count, stride, tint);
}

#endif
