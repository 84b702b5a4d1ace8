// Highlights, shadows, whites and blacks over a span.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/tonal/TonalPixels.cpp"
#include <hwy/foreach_target.h>

#include <cmath>

#include "filters/spans/Spans.h"
#include "walks/PixelVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

// Screens a channel with itself: towards white for k > 0, away from it for k < 0.
template <class Quotient>
HWY_INLINE Floats screen(Floats c, Floats k, Quotient perWhite) {
    const Floats white = constant(255.0f);
    return hn::Sub(white, perWhite(hn::Mul(hn::Sub(white, hn::Mul(k, c)), hn::Sub(white, c))));
}

// Of amounts with which nothing leaves the range of whole numbers.
struct TameLift {
    HWY_INLINE Floats operator()(Floats c, Floats k) const { return screen(c, k, quotientBy<255>); }
    HWY_INLINE Ints whole(Floats value) const { return truncateInRange(value); }
};

// Of any amounts: numbers may even leave the range of floats, after which only a true division goes
// on.
struct AnyLift {
    HWY_INLINE Floats operator()(Floats c, Floats k) const {
        return screen(c, k, [](Floats value) HWY_ATTR { return hn::Div(value, constant(255.0f)); });
    }
    HWY_INLINE Ints whole(Floats value) const { return truncateToInts(value); }
};

HWY_INLINE Floats coefficient(spans::Tones tones, const Channels<Floats>& c, float amount) {
    const Floats brightness = quotientBy<255>(largestOf(c));
    if (tones == spans::Tones::bright) return hn::Mul(brightness, constant(amount));
    return hn::Mul(hn::Sub(constant(1.0f), brightness), constant(amount));
}

// Stores what `lifted(channel, k)` makes of the channels.
template <class Lifted>
HWY_INLINE void liftSpan(PackedSpan& span, spans::Tones tones, float amount, Lifted lifted) {
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = loadFloatChannels(span, i);
        const Floats k = coefficient(tones, c, amount);
        storeClamped(mapChannels(c, [&](Floats channel) HWY_ATTR { return lifted(channel, k); }),
                     span, i);
    });
}

template <class Lift>
HWY_INLINE void wrapLifted(PackedSpan& span, spans::Tones tones, float amount, Lift lift) {
    // The low byte of the whole number.
    liftSpan(span, tones, amount, [&](Floats channel, Floats k) HWY_ATTR {
        return hn::And(lift.whole(lift(channel, k)), constant(std::int32_t{255}));
    });
}

template <class Lift>
HWY_INLINE void clampLifted(PackedSpan& span, spans::Tones tones, float amount, Lift lift) {
    liftSpan(span, tones, amount,
             [&](Floats channel, Floats k) HWY_ATTR { return lift.whole(lift(channel, k)); });
}

// Pixels between the first time and the second.
struct LiftedRun {
    alignas(64) float red[runLength];
    alignas(64) float green[runLength];
    alignas(64) float blue[runLength];
    alignas(64) float k[runLength];
};

template <class Lift>
HWY_INLINE void clampLiftedTwice(PackedSpan& span, float amount, Lift lift) {
    // Where it brightens; coefficients have the sign of the amount, or are zero, with which a
    // second time changes no whole number.
    if (!(amount > 0.0f)) {
        clampLifted(span, spans::Tones::bright, amount, lift);
        return;
    }
    const FloatTag tag;
    LiftedRun run;
    for (std::size_t first = 0; first < span.count; first += runLength) {
        forEachVectorOfRun(span, first, [&](std::size_t i) HWY_ATTR {
            const Channels<Floats> c = loadFloatChannels(span, i);
            const Floats k = coefficient(spans::Tones::bright, c, amount);
            hn::Store(lift(c.red, k), tag, run.red + (i - first));
            hn::Store(lift(c.green, k), tag, run.green + (i - first));
            hn::Store(lift(c.blue, k), tag, run.blue + (i - first));
            hn::Store(k, tag, run.k + (i - first));
        });
        forEachVectorOfRun(span, first, [&](std::size_t i) HWY_ATTR {
            const Channels<Floats> once{hn::Load(tag, run.red + (i - first)),
                                        hn::Load(tag, run.green + (i - first)),
                                        hn::Load(tag, run.blue + (i - first))};
            const Floats k = hn::Load(tag, run.k + (i - first));
            const auto again = [&](Floats channel)
                                   HWY_ATTR { return lift.whole(lift(channel, k)); };
            storeClamped(mapChannels(once, again), span, i);
        });
    }
}

void liftWrapping(PackedSpan& span, spans::Tones tones, float amount) {
    if (std::fabs(amount) < 1e6f) {
        wrapLifted(span, tones, amount, TameLift());
    } else {
        wrapLifted(span, tones, amount, AnyLift());
    }
}

void liftClamped(PackedSpan& span, spans::Tones tones, float amount) {
    if (std::fabs(amount) < 1e6f) {
        clampLifted(span, tones, amount, TameLift());
    } else {
        clampLifted(span, tones, amount, AnyLift());
    }
}

void liftTwice(PackedSpan& span, float amount) {
    if (std::fabs(amount) < 100.0f) {
        clampLiftedTwice(span, amount, TameLift());
    } else {
        clampLiftedTwice(span, amount, AnyLift());
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(liftWrapping);
HWY_EXPORT(liftClamped);
HWY_EXPORT(liftTwice);

void spans::liftWrapping(PackedSpan& span, Tones tones, float amount) {
    HWY_DYNAMIC_DISPATCH(liftWrapping)(span, tones, amount);
}
void spans::liftClamped(PackedSpan& span, Tones tones, float amount) {
    HWY_DYNAMIC_DISPATCH(liftClamped)(span, tones, amount);
}
void spans::liftTwice(PackedSpan& span, float amount) {
    HWY_DYNAMIC_DISPATCH(liftTwice)(span, amount);
}

}  // namespace keladjust
#endif
