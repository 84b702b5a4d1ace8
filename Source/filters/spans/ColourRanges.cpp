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

// The vector form of keladjust::toHsl() for a colour with these largest and smallest channels.
template <class Quotient>
HWY_INLINE Hsl toHsl(const Channels<Floats>& c, Floats largest, Floats smallest, Quotient sixthOf) {
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
    Floats turn = sixthOf(sixths);
    turn = hn::IfThenElse(hn::Lt(turn, constant(0.0f)), hn::Add(turn, constant(1.0f)), turn);

    const FloatMask grey = hn::Eq(largest, smallest);
    return {hn::IfThenElse(grey, constant(0.6666667f * 360.0f), hn::Mul(turn, constant(360.0f))),
            hn::IfThenZeroElse(grey, saturation), hn::IfThenElse(grey, c.red, lightness)};
}

HWY_INLINE Hsl bytesToHsl(const Channels<Ints>& bytes) {
    const Channels<Floats> c =
        mapChannels(bytes, [](Ints byte) HWY_ATTR { return quotientBy<255>(toFloats(byte)); });
    return toHsl(c, largestOf(c), smallestOf(c), quotientBy<6>);
}

// Of any floats, which std::max() and std::min() compare in this order.
HWY_INLINE Hsl floatsToHsl(const Channels<Floats>& c) {
    Floats largest = hn::IfThenElse(hn::Lt(c.red, c.green), c.green, c.red);
    largest = hn::IfThenElse(hn::Lt(largest, c.blue), c.blue, largest);
    Floats smallest = hn::IfThenElse(hn::Lt(c.green, c.red), c.green, c.red);
    smallest = hn::IfThenElse(hn::Lt(c.blue, smallest), c.blue, smallest);
    return toHsl(c, largest, smallest,
                 [](Floats sixths) HWY_ATTR { return hn::Div(sixths, constant(6.0f)); });
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

// Mixes by weight.
HWY_INLINE Channels<Floats> mix(const Channels<Floats>& from, const Channels<Floats>& to,
                                Floats weight) {
    const Floats rest = hn::Sub(constant(1.0f), weight);
    const auto channel = [&](Floats a, Floats b)
                             HWY_ATTR { return hn::Add(hn::Mul(rest, a), hn::Mul(weight, b)); };
    return {channel(from.red, to.red), channel(from.green, to.green), channel(from.blue, to.blue)};
}

// Stores as bytes what a round trip made of them: never more than a rounding outside 0..1.
HWY_INLINE Channels<Ints> unitToBytes(const Channels<Floats>& c) {
    return mapChannels(c, [](Floats channel) HWY_ATTR {
        return truncateInRange(hn::Mul(channel, constant(255.0f)));
    });
}

HWY_INLINE Channels<Ints> mixToBytes(const Channels<Floats>& mixed) {
    return mapChannels(mixed, [](Floats channel) HWY_ATTR {
        return clampToBytes(hn::Mul(channel, constant(255.0f)));
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
HWY_INLINE void mixRun(const Run& run, bool passesOutside, PackedSpan& span, std::size_t first,
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
            storeClamped(mixToBytes(mix(unchanged, changed(hsl, turns), weight)), span, i);
        }
    });
}

void changeColourRange(PackedSpan& span, const HueBand& band, const RangeChange& change) {
    // Outside the band only the round trip counts, unless a mad shift makes what is mixed in with
    // weight 0 no number.
    const bool passesOutside = std::isfinite(change.shift);
    Run run;
    for (std::size_t first = 0; first < span.count; first += runLength) {
        const auto convert = [&]() HWY_ATTR {
            forEachVectorOfRun(span, first, [&](std::size_t i) HWY_ATTR {
                store(bytesToHsl(loadIntChannels(span, i)), run, i - first);
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

// The same for colours whose channels are floats, which the steps hand on as they are.
HWY_INLINE Channels<Floats> changedColours(Channels<Floats> c, const HueBand& band,
                                           const RangeChange& change) {
    Hsl hsl = floatsToHsl(c);
    const Floats weight = weightOf(band, hsl.hue);
    const auto colourOf = [](Floats hue, Floats saturation, Floats lightness) HWY_ATTR {
        return toRgb(turnsOf(hn::Div(hue, constant(360.0f))), saturation, lightness);
    };
    const auto mixWith = [&](const Channels<Floats>& changed) HWY_ATTR {
        const Channels<Floats> from = colourOf(hsl.hue, hsl.saturation, hsl.lightness);
        c = mapChannels(mix(from, changed, weight),
                        [](Floats channel) HWY_ATTR { return clampTo(1.0f, channel); });
        hsl = floatsToHsl(c);
    };
    if (change.shift != 0.0f) {
        mixWith(colourOf(shiftHue(hsl.hue, change.shift), hsl.saturation, hsl.lightness));
    }
    if (change.saturationRatio != 0.0f) {
        const Floats saturation = scale(hsl.saturation, change.saturationRatio);
        mixWith(colourOf(hsl.hue, saturation, hsl.lightness));
    }
    if (change.lightnessRatio != 0.0f) {
        const Floats lightness = scale(hsl.lightness, change.lightnessRatio);
        mixWith(colourOf(hsl.hue, hsl.saturation, lightness));
    }
    return c;
}

void changeTableRange(float* lut, std::size_t count, std::ptrdiff_t stride, const HueBand& band,
                      const RangeChange& change) {
    const FloatTag tag;
    alignas(64) float red[runLength] = {};
    alignas(64) float green[runLength] = {};
    alignas(64) float blue[runLength] = {};
    for (std::size_t first = 0; first < count; first += runLength) {
        const std::size_t length = HWY_MIN(runLength, count - first);
        float* const entries = lut + static_cast<std::ptrdiff_t>(first) * stride;
        float* entry = entries;
        for (std::size_t i = 0; i < length; ++i, entry += stride) {
            red[i] = entry[0];
            green[i] = entry[1];
            blue[i] = entry[2];
        }
        for (std::size_t i = 0; i < length; i += hn::Lanes(tag)) {
            const Channels<Floats> c{hn::Load(tag, red + i), hn::Load(tag, green + i),
                                     hn::Load(tag, blue + i)};
            const Channels<Floats> changed = changedColours(c, band, change);
            hn::Store(changed.red, tag, red + i);
            hn::Store(changed.green, tag, green + i);
            hn::Store(changed.blue, tag, blue + i);
        }
        entry = entries;
        for (std::size_t i = 0; i < length; ++i, entry += stride) {
            entry[0] = red[i];
            entry[1] = green[i];
            entry[2] = blue[i];
        }
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(changeColourRange);
HWY_EXPORT(changeTableRange);

void spans::changeColourRange(PackedSpan& span, const HueBand& band, const RangeChange& change) {
    HWY_DYNAMIC_DISPATCH(changeColourRange)(span, band, change);
}
void spans::changeTableRange(float* lut, std::size_t count, std::ptrdiff_t stride,
                             const HueBand& band, const RangeChange& change) {
    HWY_DYNAMIC_DISPATCH(changeTableRange)(lut, count, stride, band, change);
}

}  // namespace keladjust
#endif
