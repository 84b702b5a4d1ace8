// The look-up-table forms of the stages over a run of table colours. Unless they say otherwise they
// give for any floats, NaN and infinities included, what their formulas give in that order.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/spans/ColourRuns.cpp"
#include <hwy/foreach_target.h>

#include "filters/spans/Spans.h"
#include "walks/HslVectors-inl.h"
#include "walks/PixelVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

// Calls `changed(colour)` for every vector of colours.
template <class Changed>
HWY_INLINE void changeColours(ColourRun& run, Changed changed) {
    for (std::size_t i = 0; i < run.count; i += hn::Lanes(FloatTag())) {
        storeChannels(changed(loadChannels(run, i)), run, i);
    }
}

// The same for every vector of one channel.
template <class Changed>
HWY_INLINE void changeEveryChannel(ColourRun& run, Changed changed) {
    changeColours(run, [&](const Channels<Floats>& c) HWY_ATTR { return mapChannels(c, changed); });
}

// As std::max() and std::min() compare a list in this order.
HWY_INLINE Floats firstLargestOf(const Channels<Floats>& c) {
    const Floats largest = hn::IfThenElse(hn::Lt(c.red, c.green), c.green, c.red);
    return hn::IfThenElse(hn::Lt(largest, c.blue), c.blue, largest);
}
HWY_INLINE Floats firstSmallestOf(const Channels<Floats>& c) {
    const Floats smallest = hn::IfThenElse(hn::Lt(c.green, c.red), c.green, c.red);
    return hn::IfThenElse(hn::Lt(c.blue, smallest), c.blue, smallest);
}

HWY_INLINE Floats clampToUnit(Floats values) {
    return clampTo(1.0f, values);
}

bool isWithinUnit(const ColourRun& run) {
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

void multiplyColours(ColourRun& run, float factor) {
    changeEveryChannel(run, [&](Floats channel) HWY_ATTR {
        return clampToUnit(hn::Mul(channel, constant(factor)));
    });
}

void offsetColours(ColourRun& run, float offset) {
    changeEveryChannel(run, [&](Floats channel) HWY_ATTR {
        return clampToUnit(hn::Add(channel, constant(offset)));
    });
}

void squeezeColours(ColourRun& run, float low, float range) {
    changeEveryChannel(run, [&](Floats channel) HWY_ATTR {
        return hn::Sub(hn::Mul(channel, constant(range)), constant(low));
    });
}

void stretchColours(ColourRun& run, float low, float high, float range) {
    changeEveryChannel(run, [&](Floats channel) HWY_ATTR {
        const Floats stretched = hn::Div(hn::Sub(channel, constant(low)), constant(range));
        const Floats capped =
            hn::IfThenElse(hn::Gt(channel, constant(high)), constant(1.0f), stretched);
        return hn::IfThenZeroElse(hn::Le(channel, constant(low)), capped);
    });
}

void blendColours(ColourRun& run, const spans::ColourBlend& colour) {
    changeColours(run, [&](const Channels<Floats>& c) HWY_ATTR {
        const auto blend = [&](Floats channel, float share) HWY_ATTR {
            const Floats product = hn::Mul(constant(share), channel);
            return clampToUnit(hn::Add(hn::Mul(constant(1.0f - colour.strength), channel),
                                       hn::Mul(product, constant(colour.strength))));
        };
        const Channels<Floats> blended{blend(c.red, colour.red), blend(c.green, colour.green),
                                       blend(c.blue, colour.blue)};
        const Hsl hsl =
            toHsl(blended, [](Floats sixths) HWY_ATTR { return hn::Div(sixths, constant(6.0f)); });
        const Floats lightness = hn::Mul(hn::Add(largestOf(c), smallestOf(c)), constant(0.5f));
        const Floats turn = hn::Div(hsl.hue, constant(360.0f));
        return mapChannels(toRgb(placesOf(turn), hsl.saturation, lightness), clampToUnit);
    });
}

void shiftColoursTint(ColourRun& run, float factor) {
    changeColours(run, [&](const Channels<Floats>& c) HWY_ATTR {
        const Floats redAndGreen =
            hn::Add(hn::Mul(c.red, constant(0.3f)), hn::Mul(c.green, constant(0.59f)));
        const Floats grey = hn::Add(redAndGreen, hn::Mul(c.blue, constant(0.11f)));
        const Floats shift = hn::Mul(grey, constant(factor));
        return Channels<Floats>{clampToUnit(hn::Add(c.red, shift)),
                                clampToUnit(hn::Sub(c.green, shift)),
                                clampToUnit(hn::Add(c.blue, shift))};
    });
}

void stretchColoursVibrance(ColourRun& run, float amount) {
    changeColours(run, [&](const Channels<Floats>& c) HWY_ATTR {
        const Floats one = constant(1.0f);
        const Floats half = constant(0.5f);
        const Floats lightness = hn::Mul(hn::Add(firstSmallestOf(c), firstLargestOf(c)), half);
        const Channels<Floats> above = mapChannels(
            c, [&](Floats channel) HWY_ATTR { return clampToUnit(hn::Sub(channel, lightness)); });
        const Floats colourfulness = hn::Mul(hn::Add(smallestOf(above), largestOf(above)), half);
        const Floats gain = hn::Add(hn::Mul(hn::Sub(one, colourfulness), constant(amount)), one);
        const Floats offset = hn::Mul(hn::Sub(one, gain), lightness);
        return mapChannels(c, [&](Floats channel) HWY_ATTR {
            return clampToUnit(hn::Add(hn::Mul(gain, channel), offset));
        });
    });
}

void stretchColoursSaturation(ColourRun& run, float amount) {
    const Floats one = constant(1.0f);
    const Floats half = constant(0.5f);
    changeColours(run, [&](const Channels<Floats>& c) HWY_ATTR {
        const Floats largest = firstLargestOf(c);
        const Floats smallest = firstSmallestOf(c);
        const Floats delta = hn::Sub(largest, smallest);
        const Floats sum = hn::Add(largest, smallest);
        const Floats lightness = hn::Mul(sum, half);
        const FloatMask grey = hn::Eq(delta, constant(0.0f));
        const auto fromLightness = [&](Floats channel, Floats start, Floats factor) HWY_ATTR {
            const Floats moved = hn::Add(start, hn::Mul(hn::Sub(channel, lightness), factor));
            return hn::IfThenElse(grey, channel, clampToUnit(moved));
        };
        if (!(amount >= 0.0f)) {
            return mapChannels(c, [&](Floats channel) HWY_ATTR {
                return fromLightness(channel, lightness, constant(1.0f + amount));
            });
        }
        const Floats room =
            hn::IfThenElse(hn::Lt(lightness, half), sum, hn::Sub(constant(2.0f), sum));
        const Floats saturation = hn::Div(delta, room);
        // Once the colour would leave the gamut it goes just to its edge.
        const FloatMask leaves = hn::Ge(hn::Add(saturation, constant(amount)), one);
        const Floats rest = hn::IfThenElse(leaves, saturation, constant(1.0f - amount));
        const Floats factor = hn::Sub(hn::Div(one, rest), one);
        return mapChannels(
            c, [&](Floats channel) HWY_ATTR { return fromLightness(channel, channel, factor); });
    });
}

// Screens a channel with itself: towards the end of the scale for k > 0, away from it for k < 0.
HWY_INLINE Floats liftUnit(Floats c, Floats k) {
    const Floats one = constant(1.0f);
    return hn::Sub(one, hn::Mul(hn::Sub(one, hn::Mul(k, c)), hn::Sub(one, c)));
}

void liftColours(ColourRun& run, spans::Tones tones, float amount) {
    const bool isBright = tones == spans::Tones::bright;
    changeColours(run, [&](const Channels<Floats>& c) HWY_ATTR {
        const Floats largest = firstLargestOf(c);
        const Floats tone = isBright ? largest : hn::Sub(constant(1.0f), largest);
        const Floats k = hn::Mul(tone, constant(amount));
        return mapChannels(
            c, [&](Floats channel) HWY_ATTR { return clampToUnit(liftUnit(channel, k)); });
    });
}

void liftColoursTwice(ColourRun& run, float amount) {
    changeColours(run, [&](const Channels<Floats>& c) HWY_ATTR {
        const Floats k = hn::Mul(firstLargestOf(c), constant(amount));
        const FloatMask brightens = hn::Gt(k, constant(0.0f));
        return mapChannels(c, [&](Floats channel) HWY_ATTR {
            const Floats once = liftUnit(channel, k);
            return clampToUnit(hn::IfThenElse(brightens, liftUnit(once, k), once));
        });
    });
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(isWithinUnit);
HWY_EXPORT(multiplyColours);
HWY_EXPORT(offsetColours);
HWY_EXPORT(squeezeColours);
HWY_EXPORT(stretchColours);
HWY_EXPORT(blendColours);
HWY_EXPORT(shiftColoursTint);
HWY_EXPORT(stretchColoursVibrance);
HWY_EXPORT(stretchColoursSaturation);
HWY_EXPORT(liftColours);
HWY_EXPORT(liftColoursTwice);

bool spans::isWithinUnit(const ColourRun& run) {
    return HWY_DYNAMIC_DISPATCH(isWithinUnit)(run);
}
void spans::multiply(ColourRun& run, float factor) {
    HWY_DYNAMIC_DISPATCH(multiplyColours)(run, factor);
}
void spans::offset(ColourRun& run, float amount) {
    HWY_DYNAMIC_DISPATCH(offsetColours)(run, amount);
}
void spans::squeeze(ColourRun& run, float low, float range) {
    HWY_DYNAMIC_DISPATCH(squeezeColours)(run, low, range);
}
void spans::stretch(ColourRun& run, float low, float high, float range) {
    HWY_DYNAMIC_DISPATCH(stretchColours)(run, low, high, range);
}
void spans::blendKeepingLightness(ColourRun& run, const ColourBlend& colour) {
    HWY_DYNAMIC_DISPATCH(blendColours)(run, colour);
}
void spans::shiftTint(ColourRun& run, float factor) {
    HWY_DYNAMIC_DISPATCH(shiftColoursTint)(run, factor);
}
void spans::stretchVibrance(ColourRun& run, float amount) {
    HWY_DYNAMIC_DISPATCH(stretchColoursVibrance)(run, amount);
}
void spans::stretchSaturation(ColourRun& run, float amount) {
    HWY_DYNAMIC_DISPATCH(stretchColoursSaturation)(run, amount);
}
void spans::lift(ColourRun& run, Tones tones, float amount) {
    HWY_DYNAMIC_DISPATCH(liftColours)(run, tones, amount);
}
void spans::liftTwice(ColourRun& run, float amount) {
    HWY_DYNAMIC_DISPATCH(liftColoursTwice)(run, amount);
}

}  // namespace keladjust
#endif
