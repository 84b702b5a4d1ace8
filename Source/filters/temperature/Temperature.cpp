// Temperature: a blend with the colour of a black body that keeps the lightness, of pixels that of
// the 8-bit HSL of CxImage, of table colours that of HSL in single precision.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/temperature/Temperature.cpp"
#include <hwy/foreach_target.h>

#include "filters/temperature/Temperature.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

#include "filters/temperature/BlackBody.h"
#include "walks/HslVectors-inl.h"
#include "walks/StageForms.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

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

// As CxImage::RGBtoHSL(), less the lightness. Numbers are small enough to be exact, where steps are
// fused as well. Halves that the formula truncates keep their fraction here, because less than a
// whole in a dividend changes no whole quotient; quotients that are not whole lie 1 / 1020 and more
// from the next that is, far more than they are rounded by.
HWY_INLINE HueSaturation hueAndSaturation(const Channels<Floats>& c) {
    const Floats zero = constant(0.0f);
    const Floats half = constant(0.5f);
    const Floats largest = largestOf(c);
    const Floats smallest = smallestOf(c);
    const Floats sum = hn::Add(largest, smallest);
    const Floats delta = hn::Sub(largest, smallest);
    const FloatMask grey = hn::Eq(delta, zero);  // whose quotients may be no numbers

    // (sum + 1) * 255 / 510 is above 127 from a sum of 255 on, where the difference is the smaller.
    const Floats span = hn::Min(sum, hn::Sub(constant(510.0f), sum));
    const Floats dividend = hn::MulAdd(delta, constant(255.0f), hn::Mul(span, half));
    const Floats saturation = hn::Trunc(hn::Div(dividend, span));

    // One reciprocal serves two quotients. It is not exact, so dividends must not be multiples of
    // the divisor: they get another quarter.
    const Floats perDelta = hn::Div(constant(1.0f), delta);
    const Floats halfDelta = hn::MulAdd(delta, half, constant(0.25f));
    const auto share = [&](Floats channel) HWY_ATTR {
        const Floats distance = hn::Sub(largest, channel);
        return hn::Trunc(hn::Mul(hn::MulAdd(distance, constant(42.0f), halfDelta), perDelta));
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

// How many degrees each channel is above the bottom of its way around the circle, as
// CxImage::HueToRGB() has it: on a slope between 0 and 60, low before and high beyond. The two
// sides of each are the formula's own differences, so a slope is its number to the bit. None of the
// 256 hues lies just at 60.
HWY_INLINE Channels<Floats> heights(Floats hue) {
    const Floats slopeEnds = constant(240.0f);
    const Floats redHue = hn::Add(hue, constant(120.0f));
    const Floats blueHue = hn::Sub(hue, constant(120.0f));
    return {hn::Max(hn::Sub(redHue, constant(360.0f)), hn::Sub(slopeEnds, redHue)),
            hn::Min(hue, hn::Sub(slopeEnds, hue)), hn::Min(blueHue, hn::Sub(slopeEnds, blueHue))};
}

HWY_INLINE Floats middleOf(const Channels<Floats>& c) {
    return hn::Max(hn::Min(c.red, c.green), hn::Min(hn::Max(c.red, c.green), c.blue));
}

// As CxImage::HSLtoRGB(). Without saturation m1 and m2 come out as the lightness itself, so greys
// need no branch.
HWY_INLINE Channels<Ints> toBytes(const HueSaturation& c, Floats lightnessByte) {
    const Floats hue = quotientBy<255>(hn::Mul(c.hue, constant(360.0f)));
    const Floats saturation = quotientBy<255>(c.saturation);
    const Floats lightness = quotientBy<255>(lightnessByte);
    const Floats product = hn::Mul(lightness, saturation);
    const Floats dark = hn::Mul(lightness, hn::Add(constant(1.0f), saturation));
    const Floats light = hn::Sub(hn::Add(lightness, saturation), product);
    const Floats m2 = hn::IfThenElse(hn::Le(lightness, constant(0.5f)), dark, light);
    const Floats m1 = hn::Sub(hn::Mul(constant(2.0f), lightness), m2);

    // At each hue one channel is high, one low and one on a slope, or at an end of it.
    const Channels<Floats> height = heights(hue);
    const Floats slope = hn::Add(m1, quotientBy<60>(hn::Mul(hn::Sub(m2, m1), middleOf(height))));
    return mapChannels(height, [&](Floats degrees) HWY_ATTR {
        const Floats raised = hn::IfThenElse(hn::Gt(degrees, constant(0.0f)), slope, m1);
        const Floats value = hn::IfThenElse(hn::Gt(degrees, constant(60.0f)), m2, raised);
        return truncateInRange(hn::Mul(value, constant(255.0f)));
    });
}

// A channel multiplied by a colour's share, as a whole number.
HWY_INLINE Floats productOf(Floats channel, float share) {
    const Floats shared = hn::Mul(quotientBy<255>(channel), constant(share));
    return hn::Trunc(hn::Mul(shared, constant(255.0f)));
}

HWY_INLINE Floats mix(Floats channel, Floats product, float strength) {
    return hn::Add(hn::Mul(channel, constant(1.0f - strength)),
                   hn::Mul(product, constant(strength)));
}

// Channels mixed with their products, as bytes.
struct AnyBlend {
    HWY_INLINE Channels<Floats> operator()(const Channels<Floats>& c,
                                           const ColourBlend& colour) const {
        const auto blend = [&](Floats channel, float share) HWY_ATTR {
            const Floats mixed = mix(channel, productOf(channel, share), colour.strength);
            return hn::Trunc(hn::Min(hn::Max(mixed, constant(0.0f)), constant(255.0f)));
        };
        return {blend(c.red, colour.red), blend(c.green, colour.green), blend(c.blue, colour.blue)};
    }
};

// Of strengths up to 1, with which nothing leaves the bytes, and a colour full of red or of blue:
// the product with that share is each of the 256 channels itself.
template <bool fullOfRed>
struct ModestBlend {
    HWY_INLINE Channels<Floats> operator()(const Channels<Floats>& c,
                                           const ColourBlend& colour) const {
        const auto blend = [&](Floats channel, Floats product) HWY_ATTR {
            return hn::Trunc(mix(channel, product, colour.strength));
        };
        return {blend(c.red, fullOfRed ? c.red : productOf(c.red, colour.red)),
                blend(c.green, productOf(c.green, colour.green)),
                blend(c.blue, fullOfRed ? productOf(c.blue, colour.blue) : c.blue)};
    }
};

HWY_INLINE Floats byteLightnessOf(const Channels<Floats>& c) {
    return hn::Trunc(hn::Mul(hn::Add(largestOf(c), smallestOf(c)), constant(0.5f)));
}

// A run of pixels between the rounds.
struct BlendedRun {
    alignas(64) float red[runLength];
    alignas(64) float green[runLength];
    alignas(64) float blue[runLength];
    alignas(64) float hue[runLength];
    alignas(64) float saturation[runLength];
    alignas(64) float lightness[runLength];  ///< before the blend
};

template <class Blend>
HWY_INLINE void blendSpan(PackedSpan& span, const ColourBlend& colour, Blend blend) {
    const FloatTag tag;
    BlendedRun run;
    for (std::size_t first = 0; first < span.count; first += runLength) {
        forEachVectorOfRun(span, first, [&](std::size_t i) HWY_ATTR {
            const Channels<Floats> c = loadFloatChannels(span, i);
            const Channels<Floats> blended = blend(c, colour);
            hn::Store(blended.red, tag, run.red + (i - first));
            hn::Store(blended.green, tag, run.green + (i - first));
            hn::Store(blended.blue, tag, run.blue + (i - first));
            hn::Store(byteLightnessOf(c), tag, run.lightness + (i - first));
        });
        forEachVectorOfRun(span, first, [&](std::size_t i) HWY_ATTR {
            const HueSaturation c = hueAndSaturation({hn::Load(tag, run.red + (i - first)),
                                                      hn::Load(tag, run.green + (i - first)),
                                                      hn::Load(tag, run.blue + (i - first))});
            hn::Store(c.hue, tag, run.hue + (i - first));
            hn::Store(c.saturation, tag, run.saturation + (i - first));
        });
        forEachVectorOfRun(span, first, [&](std::size_t i) HWY_ATTR {
            const HueSaturation c{hn::Load(tag, run.hue + (i - first)),
                                  hn::Load(tag, run.saturation + (i - first))};
            storeClamped(toBytes(c, hn::Load(tag, run.lightness + (i - first))), span, i);
        });
    }
}

void blendPixels(PackedSpan& span, const ColourBlend& colour) {
    if (colour.strength <= 1.0f && colour.red == 1.0f) {
        blendSpan(span, colour, ModestBlend<true>());
    } else if (colour.strength <= 1.0f && colour.blue == 1.0f) {
        blendSpan(span, colour, ModestBlend<false>());
    } else {
        blendSpan(span, colour, AnyBlend());
    }
}

template <class Numbers>
HWY_INLINE void blendRun(UnitColours colours, const ColourBlend& colour) {
    forEachColour(colours, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = colours.load(i);
        const auto blend = [&](Floats channel, float share) HWY_ATTR {
            const Floats product = hn::Mul(constant(share), channel);
            return clampTo(1.0f, hn::Add(hn::Mul(constant(1.0f - colour.strength), channel),
                                         hn::Mul(product, constant(colour.strength))));
        };
        const Channels<Floats> blended{blend(c.red, colour.red), blend(c.green, colour.green),
                                       blend(c.blue, colour.blue)};
        const Hsl hsl = toHsl<UnitNumbers>(
            blended, [](Floats sixths) HWY_ATTR { return hn::Div(sixths, constant(6.0f)); });
        const Floats lightness =
            hn::Mul(hn::Add(UnitColours::largestOf(c), UnitColours::smallestOf(c)), constant(0.5f));
        const Floats turn = hn::Div(hsl.hue, constant(360.0f));
        colours.store(toRgb<Numbers>(placesOf<Numbers>(turn), hsl.saturation, lightness), i);
    });
}

void blendColours(ColourRun& run, const ColourBlend& colour) {
    if (isWithinUnit(run)) {
        blendRun<UnitNumbers>(UnitColours(run), colour);
    } else {
        blendRun<AnyNumbers>(UnitColours(run), colour);
    }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(blendPixels);
HWY_EXPORT(blendColours);

namespace {

constexpr long identityTemperature = 11500;

// The black body of a setting and how strongly pixels are drawn to it. The scale jumps at its
// identity: just below it stands 14501 kelvin, just above 6599.
struct Warmth {
    explicit Warmth(std::int64_t temperature) {
        // Where the difference would leave 64 bits it saturates.
        constexpr std::int64_t lowest = 26000 - std::numeric_limits<std::int64_t>::max();
        if (temperature < identityTemperature) {
            kelvin = 26000 - std::max(temperature, lowest);
        } else {
            kelvin = std::max<std::int64_t>(18100 - temperature, 1700);
        }
        const float distance = 1.0f - static_cast<float>(kelvin) / 11500.0f;
        strength = static_cast<float>(std::fabs(static_cast<double>(distance))) * 1.7f;
    }

    std::int64_t kelvin;
    float strength;  // not limited: 2.14 at a setting of 0
};

}  // namespace

TemperatureKernel::TemperatureKernel(long temperature)
    : active_(temperature != identityTemperature) {
    const Warmth warmth(temperature);
    const BlackBody body(warmth.kelvin);
    const auto shareOf = [](double channel) {
        return static_cast<float>(BlackBody::toByte(channel)) / 255.0f;
    };
    blend_ = {shareOf(body.red), shareOf(body.green), shareOf(body.blue), warmth.strength};
    exactBlend_ = {static_cast<float>(body.red), static_cast<float>(body.green),
                   static_cast<float>(body.blue), warmth.strength};
}

void TemperatureKernel::run(PackedSpan& span) const {
    HWY_DYNAMIC_DISPATCH(blendPixels)(span, blend_);
}

void TemperatureKernel::change(ColourRun& run) const {
    HWY_DYNAMIC_DISPATCH(blendColours)(run, exactBlend_);
}

}  // namespace keladjust

CxImage* temperatureAdjustment(CxImage* image, long temperature) {
    return keladjust::applyKernel<keladjust::TemperatureKernel>(image, temperature);
}

float* lut3d_temperatureAdjustment(float* lut, unsigned long count, int stride, long temperature) {
    return keladjust::applyColourKernel<keladjust::TemperatureKernel>(lut, count, stride,
                                                                      temperature);
}

#endif
