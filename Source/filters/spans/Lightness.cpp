// A round trip through the 8-bit HSL of CxImage that restores the lightness, over a span.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/spans/Lightness.cpp"
#include <hwy/foreach_target.h>

#include "filters/spans/SpanVectors-inl.h"
#include "filters/spans/Spans.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

// Which channel a pixel's hue lies around.
struct Largest {
    FloatMask red;
    FloatMask green;

    HWY_INLINE Floats pick(Floats ifRed, Floats ifGreen, Floats ifBlue) const {
        return hn::IfThenElse(red, ifRed, hn::IfThenElse(green, ifGreen, ifBlue));
    }
};

struct HueSaturation {
    Floats hue;  ///< whole numbers of 0..255
    Floats saturation;
};

// As CxImage::RGBtoHSL(), less the lightness. Numbers are small enough to be exact. Halves that the
// formula truncates keep their fraction here, because less than a whole in a dividend changes no
// whole quotient; quotients that are not whole lie 1 / 1020 and more from the next that is, far
// more than they are rounded by.
HWY_INLINE HueSaturation hueAndSaturation(const Channels<Floats>& c) {
    const Floats zero = constant(0.0f);
    const Floats one = constant(1.0f);
    const Floats half = constant(0.5f);
    const Floats largest = largestOf(c);
    const Floats smallest = smallestOf(c);
    const Floats sum = hn::Add(largest, smallest);
    const Floats delta = hn::Sub(largest, smallest);
    const FloatMask grey = hn::Eq(delta, zero);

    // (sum + 1) * 255 / 510 is above 127 from a sum of 255 on.
    const FloatMask light = hn::Gt(sum, constant(254.0f));
    const Floats span = hn::IfThenElse(light, hn::Sub(constant(510.0f), sum), sum);
    // Greys have a saturation of 0 whatever they are divided by.
    const Floats dividend = hn::Add(hn::Mul(delta, constant(255.0f)), hn::Mul(span, half));
    const Floats saturation = hn::Trunc(hn::Div(dividend, hn::Max(span, one)));

    // One reciprocal serves two quotients. It is not exact, so dividends must not be multiples of
    // the divisor: they get another quarter.
    const Floats perDelta = hn::Div(one, hn::Max(delta, one));
    const Floats halfDelta = hn::Add(hn::Mul(delta, half), constant(0.25f));
    const auto share = [&](Floats channel) HWY_ATTR {
        const Floats distance = hn::Sub(largest, channel);
        return hn::Trunc(hn::Mul(hn::Add(hn::Mul(distance, constant(42.0f)), halfDelta), perDelta));
    };
    const Largest is{hn::Eq(c.red, largest), hn::Eq(c.green, largest)};
    const Floats ahead = share(is.pick(c.blue, c.red, c.green));
    const Floats behind = share(is.pick(c.green, c.blue, c.red));
    const Floats hue =
        hn::Add(is.pick(zero, constant(85.0f), constant(170.0f)), hn::Sub(ahead, behind));
    // A negative hue of the red sector wraps to the top of the circle.
    const Floats wrapped = hn::IfThenElse(hn::Lt(hue, zero), hn::Add(hue, constant(256.0f)), hue);
    return {hn::IfThenElse(grey, constant(170.0f), wrapped), hn::IfThenZeroElse(grey, saturation)};
}

// Where a channel stands on its way around the circle, as CxImage::HueToRGB() has it.
struct Station {
    explicit HWY_INLINE Station(Floats hue)
        : rises(hn::Lt(hue, constant(60.0f))),
          high(hn::Lt(hue, constant(180.0f))),
          onSlope(hn::Or(rises, hn::AndNot(high, hn::Lt(hue, constant(240.0f))))),
          way(hn::IfThenElse(rises, hue, hn::Sub(constant(240.0f), hue))) {}

    FloatMask rises;
    FloatMask high;
    FloatMask onSlope;
    Floats way;  ///< along the slope
};

// As CxImage::HSLtoRGB(). Without saturation m1 and m2 come out as the lightness itself, so greys
// need no branch.
HWY_INLINE Channels<Ints> toBytes(const HueSaturation& c, Floats lightnessByte) {
    const Floats white = constant(255.0f);
    const Floats turn = constant(360.0f);
    const Floats hue = quotientBy<255>(hn::Mul(c.hue, turn));
    const Floats saturation = quotientBy<255>(c.saturation);
    const Floats lightness = quotientBy<255>(lightnessByte);
    const Floats product = hn::Mul(lightness, saturation);
    const Floats dark = hn::Mul(lightness, hn::Add(constant(1.0f), saturation));
    const Floats light = hn::Sub(hn::Add(lightness, saturation), product);
    const Floats m2 = hn::IfThenElse(hn::Le(lightness, constant(0.5f)), dark, light);
    const Floats m1 = hn::Sub(hn::Mul(constant(2.0f), lightness), m2);

    const Floats redHue = hn::Add(hue, constant(120.0f));
    const Floats blueHue = hn::Sub(hue, constant(120.0f));
    const Station red(hn::IfThenElse(hn::Gt(redHue, turn), hn::Sub(redHue, turn), redHue));
    const Station green(hue);
    const Station blue(
        hn::IfThenElse(hn::Lt(blueHue, constant(0.0f)), hn::Add(blueHue, turn), blueHue));
    // At each of the 256 hues one channel is on a slope, or none.
    const Floats way =
        hn::IfThenElse(red.onSlope, red.way, hn::IfThenElse(green.onSlope, green.way, blue.way));
    const Floats slope = hn::Add(m1, quotientBy<60>(hn::Mul(hn::Sub(m2, m1), way)));

    const auto byteOf = [white](Floats value)
                            HWY_ATTR { return truncateInRange(hn::Mul(value, white)); };
    const auto channel = [&](const Station& station) HWY_ATTR {
        const Floats level = hn::IfThenElse(station.high, m2, m1);
        return byteOf(hn::IfThenElse(station.onSlope, slope, level));
    };
    return {channel(red), channel(green), channel(blue)};
}

void takeLightness(const PackedSpan& span, float* lightness) {
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Ints> c = loadIntChannels(span, i);
        const Ints mean = hn::ShiftRight<1>(hn::Add(largestOf(c), smallestOf(c)));
        hn::Store(toFloats(mean), FloatTag(), lightness + i);
    });
}

void restoreLightness(PackedSpan& span, const float* lightness) {
    alignas(64) float hues[runLength];
    alignas(64) float saturations[runLength];
    const FloatTag tag;
    for (std::size_t first = 0; first < span.count; first += runLength) {
        forEachVectorOfRun(span, first, [&](std::size_t i) HWY_ATTR {
            const HueSaturation c = hueAndSaturation(loadFloatChannels(span, i));
            hn::Store(c.hue, tag, hues + (i - first));
            hn::Store(c.saturation, tag, saturations + (i - first));
        });
        forEachVectorOfRun(span, first, [&](std::size_t i) HWY_ATTR {
            const HueSaturation c{hn::Load(tag, hues + (i - first)),
                                  hn::Load(tag, saturations + (i - first))};
            storeClamped(toBytes(c, hn::Load(tag, lightness + i)), span, i);
        });
    }
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(takeLightness);
HWY_EXPORT(restoreLightness);

void spans::takeLightness(const PackedSpan& span, float* lightness) {
    HWY_DYNAMIC_DISPATCH(takeLightness)(span, lightness);
}
void spans::restoreLightness(PackedSpan& span, const float* lightness) {
    HWY_DYNAMIC_DISPATCH(restoreLightness)(span, lightness);
}

}  // namespace keladjust
#endif
