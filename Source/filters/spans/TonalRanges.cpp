// Highlights, shadows, whites and blacks over a span.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/spans/TonalRanges.cpp"
#include <hwy/foreach_target.h>

#include <cmath>

#include "filters/spans/SpanVectors-inl.h"
#include "filters/spans/Spans.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

// Screens a channel with itself: towards white for k > 0, away from it for k < 0.
struct Lift {
    // Strong amounts may leave the range of whole numbers, or that of floats, after which only a
    // true division goes on.
    explicit Lift(float amount) : isTame(std::fabs(amount) < 1e6f) {}

    HWY_INLINE Floats operator()(Floats c, Floats k) const {
        const Floats white = constant(255.0f);
        const Floats product = hn::Mul(hn::Sub(white, hn::Mul(k, c)), hn::Sub(white, c));
        return hn::Sub(white, isTame ? quotientBy<255>(product) : hn::Div(product, white));
    }

    bool isTame;
};

HWY_INLINE Floats coefficient(spans::Tones tones, const Channels<Floats>& c, float amount) {
    const Floats brightness = quotientBy<255>(largestOf(c));
    if (tones == spans::Tones::bright) return hn::Mul(brightness, constant(amount));
    return hn::Mul(hn::Sub(constant(1.0f), brightness), constant(amount));
}

// The low byte of the whole number.
HWY_INLINE Ints wrapToBytes(Floats values, const Lift& lift) {
    const Ints whole = lift.isTame ? truncateInRange(values) : truncateToInts(values);
    return hn::And(whole, constant(std::int32_t{255}));
}

void liftWrapping(PixelSpan& span, spans::Tones tones, float amount) {
    const Lift lift(amount);
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = loadFloatChannels(span, i);
        const Floats k = coefficient(tones, c, amount);
        storeClamped(mapChannels(c, [&](Floats channel)
                                        HWY_ATTR { return wrapToBytes(lift(channel, k), lift); }),
                     span, i);
    });
}

void liftClamped(PixelSpan& span, spans::Tones tones, float amount) {
    const Lift lift(amount);
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = loadFloatChannels(span, i);
        const Floats k = coefficient(tones, c, amount);
        storeClamped(
            mapChannels(c, [&](Floats channel) HWY_ATTR { return clampToBytes(lift(channel, k)); }),
            span, i);
    });
}

void liftTwice(PixelSpan& span, float amount) {
    const Lift lift(amount);
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = loadFloatChannels(span, i);
        const Floats k = coefficient(spans::Tones::bright, c, amount);
        const FloatMask brightens = hn::Gt(k, constant(0.0f));
        storeClamped(
            mapChannels(c,
                        [&](Floats channel) HWY_ATTR {
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
