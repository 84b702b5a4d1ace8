// Highlights, shadows, whites and blacks.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/tonal/TonalRanges.cpp"
#include <hwy/foreach_target.h>

#include "filters/tonal/TonalRanges.h"

#include <cmath>

#include "walks/PixelVectors-inl.h"
#include "walks/StageForms.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

// Where the coefficient of a stage is large.
enum class Tones { bright, dark };

// Screens a channel with itself: towards white for k > 0, away from it for k < 0.
template <class Colours, class Quotient>
HWY_INLINE Floats screen(Floats c, Floats k, Quotient perWhite) {
    const Floats white = Colours::white();
    return hn::Sub(white, perWhite(hn::Mul(hn::Sub(white, hn::Mul(k, c)), hn::Sub(white, c))));
}

// Of amounts with which nothing leaves the range of whole numbers.
template <class Colours>
struct ModestLift {
    HWY_INLINE Floats operator()(Floats c, Floats k) const {
        return screen<Colours>(c, k, Colours::perWhite);
    }
    HWY_INLINE Ints whole(Floats value) const { return truncateInRange(value); }
};

// Of bytes by any amounts: numbers may even leave the range of floats, after which only a true
// division goes on.
struct AnyByteLift {
    HWY_INLINE Floats operator()(Floats c, Floats k) const {
        return screen<BytePixels>(
            c, k, [](Floats value) HWY_ATTR { return hn::Div(value, constant(255.0f)); });
    }
    HWY_INLINE Ints whole(Floats value) const { return truncateToInts(value); }
};

template <class Colours>
HWY_INLINE Floats coefficient(Tones tones, const Channels<Floats>& c, float amount) {
    const Floats brightness = Colours::perWhite(Colours::largestOf(c));
    if (tones == Tones::bright) return hn::Mul(brightness, constant(amount));
    return hn::Mul(hn::Sub(constant(1.0f), brightness), constant(amount));
}

// Calls `lifted(i, c, k)` for the colours and coefficient of every vector.
template <class Colours, class Lifted>
HWY_INLINE void forEachCoefficient(Colours colours, Tones tones, float amount, Lifted lifted) {
    forEachColour(colours, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = colours.load(i);
        lifted(i, c, coefficient<Colours>(tones, c, amount));
    });
}

// Stores the low byte of whole numbers.
template <class Lift>
HWY_INLINE void wrapLifted(PackedSpan& span, Tones tones, float amount, Lift lift) {
    forEachCoefficient(BytePixels(span), tones, amount,
                       [&](std::size_t i, const Channels<Floats>& c, Floats k) HWY_ATTR {
                           const auto lowByte = [&](Floats channel) HWY_ATTR {
                               return hn::And(lift.whole(lift(channel, k)),
                                              constant(std::int32_t{255}));
                           };
                           storeClamped(mapChannels(c, lowByte), span, i);
                       });
}

template <class Lift>
HWY_INLINE void clampLifted(PackedSpan& span, Tones tones, float amount, Lift lift) {
    forEachCoefficient(BytePixels(span), tones, amount,
                       [&](std::size_t i, const Channels<Floats>& c, Floats k) HWY_ATTR {
                           const auto whole = [&](Floats channel)
                                                  HWY_ATTR { return lift.whole(lift(channel, k)); };
                           storeClamped(mapChannels(c, whole), span, i);
                       });
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
        clampLifted(span, Tones::bright, amount, lift);
        return;
    }
    const FloatTag tag;
    LiftedRun run;
    for (std::size_t first = 0; first < span.count; first += runLength) {
        forEachVectorOfRun(span, first, [&](std::size_t i) HWY_ATTR {
            const Channels<Floats> c = loadFloatChannels(span, i);
            const Floats k = coefficient<BytePixels>(Tones::bright, c, amount);
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

// Calls `work(lift)` with the lift that does for amounts up to `most`, or for any.
template <class Work>
HWY_INLINE void withLift(float amount, float most, Work work) {
    if (std::fabs(amount) < most) {
        work(ModestLift<BytePixels>());
    } else {
        work(AnyByteLift());
    }
}

void liftHighlights(PackedSpan& span, float amount) {
    withLift(amount, 1e6f,
             [&](auto lift) HWY_ATTR { wrapLifted(span, Tones::bright, amount, lift); });
}
void liftShadows(PackedSpan& span, float amount) {
    withLift(amount, 1e6f,
             [&](auto lift) HWY_ATTR { wrapLifted(span, Tones::dark, amount, lift); });
}
void liftWhites(PackedSpan& span, float amount) {
    withLift(amount, 100.0f, [&](auto lift) HWY_ATTR { clampLiftedTwice(span, amount, lift); });
}
void liftBlacks(PackedSpan& span, float amount) {
    withLift(amount, 1e6f,
             [&](auto lift) HWY_ATTR { clampLifted(span, Tones::dark, amount, lift); });
}

HWY_INLINE void liftColours(ColourRun& run, Tones tones, float amount) {
    const ModestLift<UnitColours> lift;
    const UnitColours colours(run);
    forEachCoefficient(
        colours, tones, amount, [&](std::size_t i, const Channels<Floats>& c, Floats k) HWY_ATTR {
            const auto lifted = [&](Floats channel) HWY_ATTR { return lift(channel, k); };
            colours.store(mapChannels(c, lifted), i);
        });
}
void liftBrightColours(ColourRun& run, float amount) {
    liftColours(run, Tones::bright, amount);
}
void liftDarkColours(ColourRun& run, float amount) {
    liftColours(run, Tones::dark, amount);
}
void liftColoursTwice(ColourRun& run, float amount) {
    const ModestLift<UnitColours> lift;
    const UnitColours colours(run);
    forEachCoefficient(colours, Tones::bright, amount,
                       [&](std::size_t i, const Channels<Floats>& c, Floats k) HWY_ATTR {
                           const FloatMask brightens = hn::Gt(k, constant(0.0f));
                           const auto lifted = [&](Floats channel) HWY_ATTR {
                               const Floats once = lift(channel, k);
                               return hn::IfThenElse(brightens, lift(once, k), once);
                           };
                           colours.store(mapChannels(c, lifted), i);
                       });
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(liftHighlights);
HWY_EXPORT(liftShadows);
HWY_EXPORT(liftWhites);
HWY_EXPORT(liftBlacks);
HWY_EXPORT(liftBrightColours);
HWY_EXPORT(liftDarkColours);
HWY_EXPORT(liftColoursTwice);

// The amounts that the sliders stand for. Shadows and blacks are lopsided, each the other way: what
// opens shadows acts strongly, what opens blacks weakly.

HighlightKernel::HighlightKernel(float highlight)
    : active_(highlight != 0.0f), amount_(highlight / 100.0f) {}

void HighlightKernel::run(PackedSpan& span) const {
    HWY_DYNAMIC_DISPATCH(liftHighlights)(span, amount_);
}
void HighlightKernel::change(ColourRun& run) const {
    HWY_DYNAMIC_DISPATCH(liftBrightColours)(run, amount_);
}

ShadowKernel::ShadowKernel(float shadow)
    : active_(shadow != 0.0f),
      amount_(shadow > 0.0f ? shadow / 100.0f * 2.0f : shadow / 100.0f * 0.5f) {}

void ShadowKernel::run(PackedSpan& span) const {
    HWY_DYNAMIC_DISPATCH(liftShadows)(span, amount_);
}
void ShadowKernel::change(ColourRun& run) const {
    HWY_DYNAMIC_DISPATCH(liftDarkColours)(run, amount_);
}

WhiteLevelKernel::WhiteLevelKernel(float level) : active_(level != 0.0f), amount_(level / 100.0f) {}

void WhiteLevelKernel::run(PackedSpan& span) const {
    HWY_DYNAMIC_DISPATCH(liftWhites)(span, amount_);
}
void WhiteLevelKernel::change(ColourRun& run) const {
    HWY_DYNAMIC_DISPATCH(liftColoursTwice)(run, amount_);
}

BlackLevelKernel::BlackLevelKernel(float level)
    : active_(level != 0.0f),
      amount_(level > 0.0f ? level / 100.0f * 0.5f : level / 100.0f * 2.0f) {}

void BlackLevelKernel::run(PackedSpan& span) const {
    HWY_DYNAMIC_DISPATCH(liftBlacks)(span, amount_);
}
void BlackLevelKernel::change(ColourRun& run) const {
    HWY_DYNAMIC_DISPATCH(liftDarkColours)(run, amount_);
}

}  // namespace keladjust

CxImage* hdrHighlight(CxImage* image, float highlight) {
    return keladjust::applyKernel<keladjust::HighlightKernel>(image, highlight);
}
CxImage* hdrShadow(CxImage* image, float shadow) {
    return keladjust::applyKernel<keladjust::ShadowKernel>(image, shadow);
}
CxImage* hdrWhiteLevel(CxImage* image, float level) {
    return keladjust::applyKernel<keladjust::WhiteLevelKernel>(image, level);
}
CxImage* hdrBlackLevel(CxImage* image, float level) {
    return keladjust::applyKernel<keladjust::BlackLevelKernel>(image, level);
}

float* lut3d_hdrHighlight(float* lut, unsigned long count, int stride, float highlight) {
    return keladjust::applyColourKernel<keladjust::HighlightKernel>(lut, count, stride, highlight);
}
float* lut3d_hdrShadow(float* lut, unsigned long count, int stride, float shadow) {
    return keladjust::applyColourKernel<keladjust::ShadowKernel>(lut, count, stride, shadow);
}
float* lut3d_hdrWhiteLevel(float* lut, unsigned long count, int stride, float level) {
    return keladjust::applyColourKernel<keladjust::WhiteLevelKernel>(lut, count, stride, level);
}
float* lut3d_hdrBlackLevel(float* lut, unsigned long count, int stride, float level) {
    return keladjust::applyColourKernel<keladjust::BlackLevelKernel>(lut, count, stride, level);
}

#endif
