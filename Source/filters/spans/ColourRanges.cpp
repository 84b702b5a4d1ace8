// The steps of a colour range over a span.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/spans/ColourRanges.cpp"
#include <hwy/foreach_target.h>

#include <cmath>

#include "filters/spans/SpanVectors-inl.h"
#include "filters/spans/Spans.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

struct Hsl {
    Floats hue;
    Floats saturation;
    Floats lightness;
};

// The vector form of keladjust::toHsl(), for channels in 0..1.
HWY_INLINE Hsl toHsl(const Channels<Floats>& c) {
    const Floats largest = largestOf(c);
    const Floats smallest = smallestOf(c);
    const Floats delta = hn::Sub(largest, smallest);
    const Floats sum = hn::Add(largest, smallest);
    const Floats lightness = hn::Mul(sum, constant(0.5f));
    const Floats room = hn::Sub(hn::Sub(constant(2.0f), largest), smallest);
    const Floats saturation =
        hn::Div(delta, hn::IfThenElse(hn::Lt(lightness, constant(0.5f)), sum, room));

    const FloatMask redLargest = hn::Eq(c.red, largest);
    const FloatMask greenLargest = hn::Eq(c.green, largest);
    const Floats difference = hn::IfThenElse(
        redLargest, hn::Sub(c.green, c.blue),
        hn::IfThenElse(greenLargest, hn::Sub(c.blue, c.red), hn::Sub(c.red, c.green)));
    const Floats share = hn::Div(difference, delta);
    // Nothing is added for red, so that a share of -0 stays what it is.
    const Floats sixths = hn::IfThenElse(
        redLargest, share,
        hn::Add(hn::IfThenElse(greenLargest, constant(2.0f), constant(4.0f)), share));
    Floats turn = quotientBy<6>(sixths);
    turn = hn::IfThenElse(hn::Lt(turn, constant(0.0f)), hn::Add(turn, constant(1.0f)), turn);

    const FloatMask grey = hn::Eq(largest, smallest);
    return {hn::IfThenElse(grey, constant(0.6666667f * 360.0f), hn::Mul(turn, constant(360.0f))),
            hn::IfThenZeroElse(grey, saturation), hn::IfThenElse(grey, c.red, lightness)};
}

// The vector form of keladjust::toRgb() in two halves: what depends on saturation and lightness,
// and what depends on the hue.
struct Bounds {
    Floats p;
    Floats q;
};

HWY_INLINE Bounds boundsOf(Floats saturation, Floats lightness) {
    const Floats dark = hn::Mul(lightness, hn::Add(constant(1.0f), saturation));
    const Floats light = hn::Sub(hn::Add(lightness, saturation), hn::Mul(lightness, saturation));
    const Floats q = hn::IfThenElse(hn::Lt(lightness, constant(0.5f)), dark, light);
    return {hn::Sub(hn::Mul(constant(2.0f), lightness), q), q};
}

HWY_INLINE Channels<Floats> turnsOf(Floats turn) {
    const Floats one = constant(1.0f);
    const Floats red = hn::Add(turn, constant(0.33333334f));
    const Floats blue = hn::Sub(turn, constant(0.33333334f));
    return {hn::IfThenElse(hn::Gt(red, one), hn::Sub(red, one), red), turn,
            hn::IfThenElse(hn::Lt(blue, constant(0.0f)), hn::Add(blue, one), blue)};
}

HWY_INLINE Channels<Floats> toRgb(const Channels<Floats>& turns, Floats saturation,
                                  Floats lightness) {
    const Bounds bounds = boundsOf(saturation, lightness);
    const Floats rise = hn::Sub(bounds.q, bounds.p);
    // A hue that is not finite must not reach a grey.
    const FloatMask grey = hn::Eq(saturation, constant(0.0f));
    const auto channel = [&](Floats turn) HWY_ATTR {
        const Floats up = hn::Mul(hn::Mul(rise, constant(6.0f)), turn);
        const Floats down =
            hn::Mul(hn::Mul(rise, hn::Sub(constant(0.6666667f), turn)), constant(6.0f));
        const Floats high = hn::IfThenElse(
            hn::Lt(turn, constant(0.5f)), bounds.q,
            hn::IfThenElse(hn::Lt(turn, constant(0.6666667f)), hn::Add(bounds.p, down), bounds.p));
        const Floats value =
            hn::IfThenElse(hn::Lt(turn, constant(0.16666667f)), hn::Add(bounds.p, up), high);
        return hn::IfThenElse(grey, lightness, value);
    };
    return mapChannels(turns, channel);
}

// The vector form of HueBand::weight().
HWY_INLINE Floats weightOf(const HueBand& band, Floats hue) {
    const Floats low = constant(band.minDegree());
    const Floats high = constant(band.maxDegree());
    const Floats one = constant(1.0f);
    if (band.wraps()) {
        const Floats rising = hn::Div(hn::Sub(hue, low), hn::Sub(constant(360.0f), low));
        const Floats falling = band.maxDegree() == 0.0f ? one : hn::Sub(one, hn::Div(hue, high));
        return hn::IfThenElse(hn::Ge(hue, low), rising,
                              hn::IfThenElseZero(hn::Le(hue, high), falling));
    }
    const Floats distance = hn::Div(hn::Mul(hn::Sub(hue, low), constant(2.0f)), hn::Sub(high, low));
    const Floats triangle =
        hn::IfThenElse(hn::Le(distance, one), distance, hn::Sub(constant(2.0f), distance));
    return hn::IfThenElseZero(hn::And(hn::Gt(hue, low), hn::Lt(hue, high)), triangle);
}

HWY_INLINE Floats shiftHue(Floats hue, float shift) {
    const Floats turn = constant(360.0f);
    const Floats shifted = hn::Add(hue, constant(shift));
    return hn::IfThenElse(hn::Lt(shifted, constant(0.0f)), hn::Add(shifted, turn),
                          hn::IfThenElse(hn::Gt(shifted, turn), hn::Sub(shifted, turn), shifted));
}

HWY_INLINE Floats scale(Floats component, float ratio) {
    return clampTo(1.0f, hn::Mul(component, constant(1.0f + ratio)));
}

HWY_INLINE Channels<Floats> bytesToUnit(const Channels<Ints>& bytes) {
    return mapChannels(bytes, [](Ints byte) HWY_ATTR { return quotientBy<255>(toFloats(byte)); });
}

// Mixes by weight and stores as bytes.
HWY_INLINE Channels<Ints> mix(const Channels<Floats>& from, const Channels<Floats>& to,
                              Floats weight) {
    const Floats rest = hn::Sub(constant(1.0f), weight);
    const auto channel = [&](Floats a, Floats b) HWY_ATTR {
        const Floats mixed = hn::Add(hn::Mul(rest, a), hn::Mul(weight, b));
        return clampToBytes(hn::Mul(mixed, constant(255.0f)));
    };
    return {channel(from.red, to.red), channel(from.green, to.green), channel(from.blue, to.blue)};
}

// Stores as bytes what a round trip made of them: never more than a rounding outside 0..1.
HWY_INLINE Channels<Ints> unitToBytes(const Channels<Floats>& c) {
    return mapChannels(c, [](Floats channel) HWY_ATTR {
        return truncateInRange(hn::Mul(channel, constant(255.0f)));
    });
}

// A run of pixels between the halves of a step.
struct Run {
    alignas(64) float hue[runLength];
    alignas(64) float saturation[runLength];
    alignas(64) float lightness[runLength];
    alignas(64) float weight[runLength];
};

HWY_INLINE void store(const Hsl& hsl, Run& run, std::size_t i) {
    hn::Store(hsl.hue, FloatTag(), run.hue + i);
    hn::Store(hsl.saturation, FloatTag(), run.saturation + i);
    hn::Store(hsl.lightness, FloatTag(), run.lightness + i);
}

HWY_INLINE Hsl loadHsl(const Run& run, std::size_t i) {
    return {hn::Load(FloatTag(), run.hue + i), hn::Load(FloatTag(), run.saturation + i),
            hn::Load(FloatTag(), run.lightness + i)};
}

// Mixes the pixels with what `changed(hsl, turns)` makes of them; both sides make the round trip.
template <class Changed>
HWY_INLINE void mixRun(const Run& run, bool passesOutside, PixelSpan& span, std::size_t first,
                       Changed changed) {
    forEachVectorOfRun(span, first, [&](std::size_t i) HWY_ATTR {
        const Hsl hsl = loadHsl(run, i - first);
        const Floats weight = hn::Load(FloatTag(), run.weight + (i - first));
        const Channels<Floats> turns = turnsOf(quotientBy<360>(hsl.hue));
        const Channels<Floats> unchanged = toRgb(turns, hsl.saturation, hsl.lightness);
        const FloatMask outside = hn::Eq(weight, constant(0.0f));
        if (passesOutside && hn::AllTrue(FloatTag(), outside)) {
            storeClamped(unitToBytes(unchanged), span, i);
        } else {
            storeClamped(mix(unchanged, changed(hsl, turns), weight), span, i);
        }
    });
}

void changeColourRange(PixelSpan& span, const HueBand& band, const RangeChange& change) {
    // Outside the band only the round trip counts, unless a mad shift makes what is mixed in with
    // weight 0 no number.
    const bool passesOutside = std::isfinite(change.shift);
    Run run;
    for (std::size_t first = 0; first < span.count; first += runLength) {
        const auto convert = [&]() HWY_ATTR {
            forEachVectorOfRun(span, first, [&](std::size_t i) HWY_ATTR {
                store(toHsl(bytesToUnit(loadIntChannels(span, i))), run, i - first);
            });
        };
        convert();
        forEachVectorOfRun(span, first, [&](std::size_t i) HWY_ATTR {
            const Floats hue = hn::Load(FloatTag(), run.hue + (i - first));
            hn::Store(weightOf(band, hue), FloatTag(), run.weight + (i - first));
        });
        // Each step works on the bytes that the last one stored.
        bool isCurrent = true;
        const auto step = [&](float amount, auto changed) HWY_ATTR {
            if (amount == 0.0f) return;
            if (!isCurrent) convert();
            isCurrent = false;
            mixRun(run, passesOutside, span, first, changed);
        };
        step(change.shift, [&](const Hsl& hsl, const Channels<Floats>&) HWY_ATTR {
            const Floats hue = shiftHue(hsl.hue, change.shift);
            return toRgb(turnsOf(hn::Div(hue, constant(360.0f))), hsl.saturation, hsl.lightness);
        });
        step(change.saturationRatio, [&](const Hsl& hsl, const Channels<Floats>& turns) HWY_ATTR {
            return toRgb(turns, scale(hsl.saturation, change.saturationRatio), hsl.lightness);
        });
        step(change.lightnessRatio, [&](const Hsl& hsl, const Channels<Floats>& turns) HWY_ATTR {
            return toRgb(turns, hsl.saturation, scale(hsl.lightness, change.lightnessRatio));
        });
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(changeColourRange);

void spans::changeColourRange(PixelSpan& span, const HueBand& band, const RangeChange& change) {
    HWY_DYNAMIC_DISPATCH(changeColourRange)(span, band, change);
}

}  // namespace keladjust
#endif
