// Hue, saturation and lightness in single precision (A. R. Smith, "Color Gamut Transform Pairs",
// 1978, in its bi-hexcone form), in vectors. Included once for every instruction set, like the
// kernels that use it; hence the guard that toggles.

#if defined(KELADJUST_WALKS_HSLVECTORS_INL_H) == defined(HWY_TARGET_TOGGLE)
#ifdef KELADJUST_WALKS_HSLVECTORS_INL_H
#undef KELADJUST_WALKS_HSLVECTORS_INL_H
#else
#define KELADJUST_WALKS_HSLVECTORS_INL_H
#endif

#include "walks/PixelVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

/// What numbers colours are made of. Those within 0..1 take fewer steps.
struct UnitNumbers {
    static constexpr bool any = false;
};
struct AnyNumbers {
    static constexpr bool any = true;
};

/// True only if all channels lie within 0..1.
HWY_INLINE bool isWithinUnit(const ColourRun& run) {
    for (std::size_t i = 0; i < run.count; i += hn::Lanes(FloatTag())) {
        const Channels<Floats> c = loadChannels(run, i);
        const auto isWithin = [](Floats channel) HWY_ATTR {
            return hn::And(hn::Ge(channel, constant(0.0f)), hn::Le(channel, constant(1.0f)));
        };
        const FloatMask within =
            hn::And(isWithin(c.red), hn::And(isWithin(c.green), isWithin(c.blue)));
        if (!hn::AllTrue(FloatTag(), within)) return false;
    }
    return true;
}

struct Hsl {
    Floats hue;         ///< degrees, 0..360
    Floats saturation;  ///< 0..1 of colours in 0..1
    Floats lightness;
};

/// To HSL; `sixthOf` divides by 6. Zeros may lose their signs, which shows in no sum and no clamped
/// channel.
template <class Numbers, class Quotient>
HWY_INLINE Hsl toHsl(const Channels<Floats>& c, Quotient sixthOf) {
    const Floats largest = Numbers::any ? UnitColours::largestOf(c) : largestOf(c);
    const Floats smallest = Numbers::any ? UnitColours::smallestOf(c) : smallestOf(c);
    const Floats delta = hn::Sub(largest, smallest);
    const Floats sum = hn::Add(largest, smallest);
    Floats lightness = hn::Mul(sum, constant(0.5f));  // of a grey its channels' own, exactly
    const Floats room = hn::Sub(hn::Sub(constant(2.0f), largest), smallest);
    const Floats saturation =
        hn::Div(delta, hn::IfThenElse(hn::Lt(lightness, constant(0.5f)), sum, room));

    const FloatMask redLargest = hn::Eq(c.red, largest);
    const FloatMask greenLargest = hn::Eq(c.green, largest);
    const Floats difference = hn::IfThenElse(
        redLargest, hn::Sub(c.green, c.blue),
        hn::IfThenElse(greenLargest, hn::Sub(c.blue, c.red), hn::Sub(c.red, c.green)));
    const Floats sector = hn::IfThenZeroElse(
        redLargest, hn::IfThenElse(greenLargest, constant(2.0f), constant(4.0f)));
    const Floats turn = sixthOf(hn::Add(sector, hn::Div(difference, delta)));
    const Floats wrapped =
        hn::Add(turn, hn::IfThenElseZero(hn::Lt(turn, constant(0.0f)), constant(1.0f)));

    const FloatMask grey = hn::Eq(largest, smallest);  // whose quotients may be no numbers
    if constexpr (Numbers::any) lightness = hn::IfThenElse(grey, c.red, lightness);
    return {hn::IfThenElse(grey, constant(0.6666667f * 360.0f), hn::Mul(wrapped, constant(360.0f))),
            hn::IfThenZeroElse(grey, saturation), lightness};
}

/// Where a channel stands on its way around the circle: `high`, on a slope of rise x `first` x
/// `second` above the low bound, or low, with a `first` of 0.
struct ChannelPlace {
    FloatMask high;
    FloatMask low;  ///< of any numbers, whose rise may be none
    Floats first;
    Floats second;
};

// The order of the factors is that of the formula on either slope.
HWY_INLINE ChannelPlace placeAt(Floats turn) {
    const Floats six = constant(6.0f);
    const FloatMask rises = hn::Lt(turn, constant(0.16666667f));
    const Floats toEnd = hn::Max(hn::Sub(constant(0.6666667f), turn), constant(0.0f));
    return {hn::AndNot(rises, hn::Lt(turn, constant(0.5f))),
            hn::Not(hn::Lt(turn, constant(0.6666667f))), hn::IfThenElse(rises, six, toEnd),
            hn::IfThenElse(rises, turn, six)};
}

// By the sign bit, which takes no comparison.
HWY_INLINE Floats ifNegative(Floats values, Floats yes, Floats no) {
#if HWY_TARGET == HWY_SSSE3
    // Highway 1.0's function chooses by every bit there.
    return hn::IfThenElse(hn::Lt(values, constant(0.0f)), yes, no);
#else
    return hn::IfNegativeThenElse(values, yes, no);
#endif
}

/// The half of the way back to RGB that depends on the hue, in turns. Unit numbers stand for turns
/// that are numbers or infinite.
template <class Numbers>
HWY_INLINE Channels<ChannelPlace> placesOf(Floats turn) {
    const Floats one = constant(1.0f);
    const Floats red = hn::Add(turn, constant(0.33333334f));
    const Floats redWrapped = hn::Sub(red, one);
    const Floats blue = hn::Sub(turn, constant(0.33333334f));
    const Floats blueWrapped = hn::Add(blue, one);
    if constexpr (Numbers::any) {
        return {placeAt(hn::IfThenElse(hn::Gt(red, one), redWrapped, red)), placeAt(turn),
                placeAt(hn::IfThenElse(hn::Lt(blue, constant(0.0f)), blueWrapped, blue))};
    } else {
        // At 0 as at 1 a channel is low.
        return {placeAt(ifNegative(redWrapped, red, redWrapped)), placeAt(turn),
                placeAt(ifNegative(blue, blueWrapped, blue))};
    }
}

/// The other half. Of unit numbers a grey comes out as its lightness unless a place is infinite, of
/// any numbers always.
template <class Numbers>
HWY_INLINE Channels<Floats> toRgb(const Channels<ChannelPlace>& places, Floats saturation,
                                  Floats lightness) {
    const Floats dark = hn::Mul(lightness, hn::Add(constant(1.0f), saturation));
    const Floats light = hn::Sub(hn::Add(lightness, saturation), hn::Mul(lightness, saturation));
    const Floats q = hn::IfThenElse(hn::Lt(lightness, constant(0.5f)), dark, light);
    const Floats p = hn::Sub(hn::Add(lightness, lightness), q);
    const Floats rise = hn::Sub(q, p);
    return mapChannels(places, [&](const ChannelPlace& place) HWY_ATTR {
        const Floats slope = hn::Mul(hn::Mul(rise, place.first), place.second);
        const Floats channel = hn::IfThenElse(place.high, q, hn::Add(p, slope));
        if constexpr (Numbers::any) {
            const FloatMask grey = hn::Eq(saturation, constant(0.0f));
            return hn::IfThenElse(grey, lightness, hn::IfThenElse(place.low, p, channel));
        } else {
            return channel;
        }
    });
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#endif
