// Saturation, vibrance and tint over a span.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/spans/Saturation.cpp"
#include <hwy/foreach_target.h>

#include "filters/spans/SpanVectors-inl.h"
#include "filters/spans/Spans.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

void stretchSaturation(PixelSpan& span, float amount) {
    const Floats white = constant(255.0f);
    const Floats one = constant(1.0f);
    const Floats s = constant(amount);
    const bool away = amount >= 0.0f;
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = loadFloatChannels(span, i);
        const Floats largest = largestOf(c);
        const Floats smallest = smallestOf(c);
        const Floats sum = quotientBy<255>(hn::Add(largest, smallest));
        const Floats halfSum = hn::Mul(sum, constant(0.5f));
        const Floats lightness = hn::Mul(halfSum, white);
        Floats factor = hn::Add(one, s);
        if (away) {
            const Floats delta = quotientBy<255>(hn::Sub(largest, smallest));
            const Floats saturation = hn::Div(
                delta,
                hn::IfThenElse(hn::Lt(halfSum, constant(0.5f)), sum, hn::Sub(constant(2.0f), sum)));
            // Once the pixel would leave the gamut it goes just to its edge.
            const Floats a =
                hn::IfThenElse(hn::Ge(hn::Add(saturation, s), one), saturation, hn::Sub(one, s));
            factor = hn::Sub(hn::Div(one, a), one);
        }
        // Greys stay just as they are, whatever the arithmetic makes of them.
        const FloatMask grey = hn::Eq(largest, smallest);
        storeClamped(mapChannels(c,
                                 [&](Floats channel) HWY_ATTR {
                                     const Floats distance = hn::Sub(channel, lightness);
                                     const Floats moved = hn::Add(away ? channel : lightness,
                                                                  hn::Mul(distance, factor));
                                     return clampToBytes(hn::IfThenElse(grey, channel, moved));
                                 }),
                     span, i);
    });
}

void shiftTint(PixelSpan& span, std::int32_t strength) {
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

void stretchVibrance(PixelSpan& span, float amount) {
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
        const Ints extra = truncateToInts(hn::Mul(toFloats(dullness), constant(amount)));
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

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(stretchSaturation);
HWY_EXPORT(shiftTint);
HWY_EXPORT(stretchVibrance);

void spans::stretchSaturation(PixelSpan& span, float amount) {
    HWY_DYNAMIC_DISPATCH(stretchSaturation)(span, amount);
}
void spans::shiftTint(PixelSpan& span, std::int32_t strength) {
    HWY_DYNAMIC_DISPATCH(shiftTint)(span, strength);
}
void spans::stretchVibrance(PixelSpan& span, float amount) {
    HWY_DYNAMIC_DISPATCH(stretchVibrance)(span, amount);
}

}  // namespace keladjust
#endif
