// A round trip through the 8-bit HSL of CxImage that restores the lightness, over a span.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/spans/Lightness.cpp"
#include <hwy/foreach_target.h>

#include "filters/spans/SpanVectors-inl.h"
#include "filters/spans/Spans.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

// The whole quotient of whole numbers below 2^16: the float quotient of these never rounds up to
// the next whole number, which is at least 1 / 510 away.
HWY_INLINE Ints quotient(Ints dividend, Ints divisor) {
    return truncateInRange(hn::Div(toFloats(dividend), toFloats(divisor)));
}

struct HueSaturation {
    Ints hue;
    Ints saturation;
};

// As CxImage::RGBtoHSL(), less the lightness.
HWY_INLINE HueSaturation hueAndSaturation(const Channels<Ints>& c) {
    const Ints largest = largestOf(c);
    const Ints smallest = smallestOf(c);
    const Ints sum = hn::Add(largest, smallest);
    const Ints delta = hn::Sub(largest, smallest);
    const Ints halfDelta = hn::ShiftRight<1>(delta);
    const auto grey = hn::Eq(delta, constant(std::int32_t{0}));
    // Any divisor will do for greys: what they get is replaced below.
    const Ints safeDelta = hn::IfThenElse(grey, constant(std::int32_t{1}), delta);

    // (sum + 1) * 255 / 510 is above 127 from a sum of 255 on.
    const auto light = hn::Gt(sum, constant(std::int32_t{254}));
    const Ints span = hn::IfThenElse(light, hn::Sub(constant(std::int32_t{510}), sum), sum);
    const Ints safeSpan = hn::Max(span, constant(std::int32_t{1}));
    const Ints saturation = quotient(
        hn::Add(hn::Mul(delta, constant(std::int32_t{255})), hn::ShiftRight<1>(span)), safeSpan);

    const auto share = [&](Ints channel) HWY_ATTR {
        const Ints distance = hn::Sub(largest, channel);
        return quotient(hn::Add(hn::Mul(distance, constant(std::int32_t{42})), halfDelta),
                        safeDelta);
    };
    const Channels<Ints> shares = mapChannels(c, share);
    const Ints redSector = hn::Sub(shares.blue, shares.green);
    const Ints greenSector = hn::Add(constant(std::int32_t{85}), hn::Sub(shares.red, shares.blue));
    const Ints blueSector = hn::Add(constant(std::int32_t{170}), hn::Sub(shares.green, shares.red));
    const Ints hue =
        hn::IfThenElse(hn::Eq(c.red, largest), redSector,
                       hn::IfThenElse(hn::Eq(c.green, largest), greenSector, blueSector));
    // A negative hue of the red sector wraps to the top of the circle.
    const Ints wrapped = hn::And(hue, constant(std::int32_t{255}));
    return {hn::IfThenElse(grey, constant(std::int32_t{170}), wrapped),
            hn::IfThenZeroElse(grey, saturation)};
}

// As CxImage::HueToRGB() for hues of -120..480 degrees.
HWY_INLINE Floats channelAtHue(Floats m1, Floats m2, Floats hue) {
    const Floats turn = constant(360.0f);
    hue = hn::IfThenElse(hn::Gt(hue, turn), hn::Sub(hue, turn),
                         hn::IfThenElse(hn::Lt(hue, constant(0.0f)), hn::Add(hue, turn), hue));
    const Floats rise = hn::Sub(m2, m1);
    const Floats way =
        hn::IfThenElse(hn::Lt(hue, constant(60.0f)), hue, hn::Sub(constant(240.0f), hue));
    const Floats slope = hn::Add(m1, hn::Div(hn::Mul(rise, way), constant(60.0f)));
    const FloatMask plateau = hn::And(hn::Ge(hue, constant(60.0f)), hn::Lt(hue, constant(180.0f)));
    return hn::IfThenElse(hn::Ge(hue, constant(240.0f)), m1, hn::IfThenElse(plateau, m2, slope));
}

// As CxImage::HSLtoRGB(). Without saturation m1 and m2 come out as the lightness itself, so greys
// need no branch.
HWY_INLINE Channels<Ints> toBytes(const HueSaturation& c, Ints lightnessByte) {
    const Floats white = constant(255.0f);
    const Floats hue = hn::Div(hn::Mul(toFloats(c.hue), constant(360.0f)), white);
    const Floats saturation = hn::Div(toFloats(c.saturation), white);
    const Floats lightness = hn::Div(toFloats(lightnessByte), white);
    const Floats product = hn::Mul(lightness, saturation);
    const Floats dark = hn::Mul(lightness, hn::Add(constant(1.0f), saturation));
    const Floats light = hn::Sub(hn::Add(lightness, saturation), product);
    const Floats m2 = hn::IfThenElse(hn::Le(lightness, constant(0.5f)), dark, light);
    const Floats m1 = hn::Sub(hn::Mul(constant(2.0f), lightness), m2);
    const auto channel = [&](Floats channelHue) HWY_ATTR {
        return truncateInRange(hn::Mul(channelAtHue(m1, m2, channelHue), white));
    };
    return {channel(hn::Add(hue, constant(120.0f))), channel(hue),
            channel(hn::Sub(hue, constant(120.0f)))};
}

void restoreLightness(PixelSpan& span, const PixelSpan& original) {
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Ints> before = loadIntChannels(original, i);
        const Ints lightness = hn::ShiftRight<1>(hn::Add(largestOf(before), smallestOf(before)));
        storeClamped(toBytes(hueAndSaturation(loadIntChannels(span, i)), lightness), span, i);
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
