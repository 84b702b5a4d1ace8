// A round trip through the 8-bit HSL of CxImage that restores the lightness, over a span.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/spans/Lightness.cpp"
#include <hwy/foreach_target.h>

#include "filters/spans/SpanVectors-inl.h"
#include "filters/spans/Spans.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

// Of numbers that 32 bits hold.
HWY_INLINE Floats truncated(Floats values) {
    return toFloats(truncateInRange(values));
}

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

// As CxImage::RGBtoHSL(), less the lightness. Numbers are whole and small enough to be exact;
// truncated quotients are those of the whole numbers, because a quotient is 1 / 510 away from the
// next whole number if it is not one.
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
    const Floats rounding = truncated(hn::Mul(span, half));
    // Greys have a saturation of 0 whatever they are divided by.
    const Floats saturation =
        truncated(hn::Div(hn::Add(hn::Mul(delta, constant(255.0f)), rounding), hn::Max(span, one)));

    // One reciprocal serves two quotients: taken from the middle between two multiples of a step,
    // they stay clear of whole numbers by more than it rounds.
    const Floats perDelta = hn::Div(one, hn::Max(delta, one));
    const Floats middle = hn::Add(truncated(hn::Mul(delta, half)), half);
    const auto share = [&](Floats channel) HWY_ATTR {
        const Floats distance = hn::Sub(largest, channel);
        return truncated(hn::Mul(hn::Add(hn::Mul(distance, constant(42.0f)), middle), perDelta));
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

void restoreLightness(PixelSpan& span, const PixelSpan& original) {
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Ints> before = loadIntChannels(original, i);
        const Ints lightness = hn::ShiftRight<1>(hn::Add(largestOf(before), smallestOf(before)));
        storeClamped(toBytes(hueAndSaturation(loadFloatChannels(span, i)), toFloats(lightness)),
                     span, i);
    });
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(restoreLightness);

void spans::restoreLightness(PixelSpan& span, const PixelSpan& original) {
    HWY_DYNAMIC_DISPATCH(restoreLightness)(span, original);
}

}  // namespace keladjust
#endif
