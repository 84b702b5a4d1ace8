// Highlights, shadows, whites and blacks over a span.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/spans/TonalRanges.cpp"
#include <hwy/foreach_target.h>

#include "filters/spans/SpanVectors-inl.h"
#include "filters/spans/Spans.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

// Screens a channel with itself: towards white for k > 0, away from it for k < 0.
HWY_INLINE Floats lift(Floats c, Floats k) {
    const Floats white = constant(255.0f);
    const Floats product = hn::Mul(hn::Sub(white, hn::Mul(k, c)), hn::Sub(white, c));
    return hn::Sub(white, hn::Div(product, white));
}

HWY_INLINE Floats coefficient(spans::Tones tones, const Channels<Floats>& c, float amount) {
    const Floats brightness = hn::Div(largestOf(c), constant(255.0f));
    if (tones == spans::Tones::bright) return hn::Mul(brightness, constant(amount));
    return hn::Mul(hn::Sub(constant(1.0f), brightness), constant(amount));
}

void liftWrapping(PixelSpan& span, spans::Tones tones, float amount) {
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = loadFloatChannels(span, i);
        const Floats k = coefficient(tones, c, amount);
        storeClamped(mapChannels(c,
                                 [k](Floats channel) HWY_ATTR {
                                     const Ints whole = truncateToInts(lift(channel, k));
                                     return hn::And(whole, constant(std::int32_t{255}));
                                 }),
                     span, i);
    });
}

void liftClamped(PixelSpan& span, spans::Tones tones, float amount) {
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = loadFloatChannels(span, i);
        const Floats k = coefficient(tones, c, amount);
        storeClamped(
            mapChannels(c, [k](Floats channel) HWY_ATTR { return clampToBytes(lift(channel, k)); }),
            span, i);
    });
}

void liftTwice(PixelSpan& span, float amount) {
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = loadFloatChannels(span, i);
        const Floats k = coefficient(spans::Tones::bright, c, amount);
        const FloatMask brightens = hn::Gt(k, constant(0.0f));
        storeClamped(
            mapChannels(c,
                        [k, brightens](Floats channel) HWY_ATTR {
                            const Floats once = lift(channel, k);
                            return clampToBytes(hn::IfThenElse(brightens, lift(once, k), once));
                        }),
            span, i);
    });
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(liftWrapping);
HWY_EXPORT(liftClamped);
HWY_EXPORT(liftTwice);

void spans::liftWrapping(PixelSpan& span, Tones tones, float amount) {
    HWY_DYNAMIC_DISPATCH(liftWrapping)(span, tones, amount);
}
void spans::liftClamped(PixelSpan& span, Tones tones, float amount) {
    HWY_DYNAMIC_DISPATCH(liftClamped)(span, tones, amount);
}
void spans::liftTwice(PixelSpan& span, float amount) {
    HWY_DYNAMIC_DISPATCH(liftTwice)(span, amount);
}

}  // namespace keladjust
#endif
