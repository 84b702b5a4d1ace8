// Saturation, vibrance and tint over a span.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/saturation/SaturationPixels.cpp"
#include <hwy/foreach_target.h>

#include <cmath>

#include "filters/spans/Spans.h"
#include "walks/PixelVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

// A pixel between its smallest and its largest channel.
struct Extent {
    explicit HWY_INLINE Extent(const Channels<Floats>& c)
        : largest(largestOf(c)),
          smallest(smallestOf(c)),
          sum(hn::Add(largest, smallest)),
          lightness(hn::Mul(sum, constant(0.5f))),
          isGrey(hn::Eq(largest, smallest)) {}

    Floats largest;
    Floats smallest;
    Floats sum;
    Floats
        lightness;  ///< halved, where the formula goes to 0..1 and back: for all 511 sums the same
    FloatMask isGrey;
};

// How far from 1 the factor of a pixel is that moves away from its lightness.
class Stretch {
public:
    explicit Stretch(float amount)
        : amount_(amount), inside_(1.0f - amount), insideFactor_(1.0f / inside_ - 1.0f) {}

    HWY_INLINE Floats factor(const Extent& e) const {
        const Floats delta = hn::Sub(e.largest, e.smallest);
        // The smaller one is the sum where the lightness is below a half.
        const Floats span = hn::Min(e.sum, hn::Sub(constant(510.0f), e.sum));
        // Most pixels are far from the edge of the gamut. The saturation as the formula rounds it
        // is at most a 60000th above this quotient, a pixel's that is no grey at least 1 / 255: a
        // thousandth is room enough to tell.
        const FloatMask isFar = hn::Le(delta, hn::Mul(span, constant(inside_ * 0.999f)));
        if (HWY_LIKELY(hn::AllTrue(FloatTag(), isFar))) return constant(insideFactor_);

        const Floats one = constant(1.0f);
        const Floats sum = quotientBy<255>(e.sum);
        const Floats saturation =
            hn::Div(quotientBy<255>(delta), hn::Min(sum, hn::Sub(constant(2.0f), sum)));
        // Once the pixel would leave the gamut it goes just to its edge.
        const FloatMask leaves = hn::Ge(hn::Add(saturation, constant(amount_)), one);
        // Below 255: no saturation but a grey's is less than 1 / 255.
        return hn::Sub(hn::Div(one, hn::IfThenElse(leaves, saturation, constant(inside_))), one);
    }

private:
    float amount_;
    float inside_;
    float insideFactor_;
};

// Greys stay just as they are, because nothing is added to them.
void moveAway(PackedSpan& span, float amount) {
    const Stretch stretch(amount);
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = loadFloatChannels(span, i);
        const Extent e(c);
        const Floats factor = hn::IfThenZeroElse(e.isGrey, stretch.factor(e));
        storeClamped(
            mapChannels(c,
                        [&](Floats channel) HWY_ATTR {
                            const Floats distance = hn::Sub(channel, e.lightness);
                            return truncateInRange(hn::Add(channel, hn::Mul(distance, factor)));
                        }),
            span, i);
    });
}

// Greys stay just as they are, whatever the arithmetic makes of them.
void moveTowards(PackedSpan& span, float amount) {
    const Floats factor = hn::Add(constant(1.0f), constant(amount));
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = loadFloatChannels(span, i);
        const Extent e(c);
        storeClamped(mapChannels(c,
                                 [&](Floats channel) HWY_ATTR {
                                     const Floats distance = hn::Sub(channel, e.lightness);
                                     const Floats moved =
                                         hn::Add(e.lightness, hn::Mul(distance, factor));
                                     return clampToBytes(hn::IfThenElse(e.isGrey, channel, moved));
                                 }),
                     span, i);
    });
}

void stretchSaturation(PackedSpan& span, float amount) {
    if (amount >= 0.0f) {
        moveAway(span, amount);
    } else {
        moveTowards(span, amount);
    }
}

void shiftTint(PackedSpan& span, std::int32_t strength) {
    const Ints with = constant(strength);
    const Ints against = hn::Sub(constant(std::int32_t{0}), with);
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Ints> c = loadIntChannels(span, i);
        const Ints grey =
            hn::ShiftRight<10>(hn::Add(hn::Add(hn::Mul(c.green, constant(std::int32_t{601})),
                                               hn::Mul(c.red, constant(std::int32_t{306}))),
                                       hn::Mul(c.blue, constant(std::int32_t{117}))));
        // 32-bit products that wrap.
        const Ints shift = hn::ShiftRight<8>(hn::Mul(grey, with));
        const Ints counter = hn::ShiftRight<8>(hn::Mul(grey, against));
        storeClamped(Channels<Ints>{hn::Add(c.red, shift), hn::Add(c.green, counter),
                                    hn::Add(c.blue, shift)},
                     span, i);
    });
}

void stretchVibrance(PackedSpan& span, float amount) {
    const bool isTame = std::fabs(amount) < 1e6f;  // else numbers may not fit into 32 bits
    const Ints whole = constant(std::int32_t{256});
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Ints> c = loadIntChannels(span, i);
        const Ints largest = largestOf(c);
        const Ints lightness = hn::ShiftRight<1>(hn::Add(smallestOf(c), largest));
        // The smallest channel is never above the lightness, so only the largest one counts.
        const Ints half = hn::ShiftRight<1>(hn::Sub(largest, lightness));
        // Minus that as a byte: dull pixels gain most, and greyish ones (half of 0) nothing,
        // because there the byte wraps to 0.
        const Ints dullness = hn::And(hn::Sub(whole, half), constant(std::int32_t{255}));
        const Floats product = hn::Mul(toFloats(dullness), constant(amount));
        const Ints extra = isTame ? truncateInRange(product) : truncateToInts(product);
        const Ints gain = hn::Add(whole, extra);
        const Ints base = hn::Mul(lightness, hn::Sub(whole, gain));
        storeClamped(
            mapChannels(c,
                        [&](Ints channel) HWY_ATTR {
                            return hn::ShiftRight<8>(hn::Add(hn::Mul(channel, gain), base));
                        }),
            span, i);
    });
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(stretchSaturation);
HWY_EXPORT(shiftTint);
HWY_EXPORT(stretchVibrance);

void spans::stretchSaturation(PackedSpan& span, float amount) {
    HWY_DYNAMIC_DISPATCH(stretchSaturation)(span, amount);
}
void spans::shiftTint(PackedSpan& span, std::int32_t strength) {
    HWY_DYNAMIC_DISPATCH(shiftTint)(span, strength);
}
void spans::stretchVibrance(PackedSpan& span, float amount) {
    HWY_DYNAMIC_DISPATCH(stretchVibrance)(span, amount);
}

}  // namespace keladjust
#endif
