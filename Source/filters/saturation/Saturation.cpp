// Global saturation.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/saturation/Saturation.cpp"
#include <hwy/foreach_target.h>

#include "filters/saturation/Saturation.h"

#include "walks/PixelVectors-inl.h"
#include "walks/StageForms.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

// A colour between its smallest and its largest channel.
template <class Colours>
struct Extent {
    explicit HWY_INLINE Extent(const Channels<Floats>& c)
        : largest(Colours::largestOf(c)),
          smallest(Colours::smallestOf(c)),
          delta(hn::Sub(largest, smallest)),
          sum(hn::Add(largest, smallest)),
          lightness(hn::Mul(sum, constant(0.5f))),
          isGrey(hn::Eq(delta, constant(0.0f))) {}

    Floats largest;
    Floats smallest;
    Floats delta;
    Floats sum;
    // Of bytes just halved, where the formula goes to 0..1 and back: for all 511 sums the same.
    Floats lightness;
    FloatMask isGrey;
};

// How far from 1 the factor of a colour is that moves away from its lightness.
template <class Colours>
class Stretch {
public:
    explicit HWY_INLINE Stretch(float amount)
        : amount_(amount), inside_(1.0f - amount), insideFactor_(1.0f / inside_ - 1.0f) {}

    HWY_INLINE Floats factor(const Extent<Colours>& e) const {
        const Floats one = constant(1.0f);
        if constexpr (Colours::areBytes) {
            // The smaller one is the sum where the lightness is below a half.
            const Floats span = hn::Min(e.sum, hn::Sub(constant(510.0f), e.sum));
            // Most pixels are far from the edge of the gamut. The saturation as the formula rounds
            // it is at most a 60000th above this quotient, a pixel's that is no grey at least
            // 1 / 255: a thousandth is room enough to tell.
            const FloatMask isFar = hn::Le(e.delta, hn::Mul(span, constant(inside_ * 0.999f)));
            if (HWY_LIKELY(hn::AllTrue(FloatTag(), isFar))) return constant(insideFactor_);
        }
        const Floats sum = Colours::perWhite(e.sum);
        const Floats saturation =
            hn::Div(Colours::perWhite(e.delta), hn::Min(sum, hn::Sub(constant(2.0f), sum)));
        // Once the colour would leave the gamut it goes just to its edge.
        const FloatMask leaves = hn::Ge(hn::Add(saturation, constant(amount_)), one);
        // Of bytes below 255: no saturation but a grey's is less than 1 / 255.
        return hn::Sub(hn::Div(one, hn::IfThenElse(leaves, saturation, constant(inside_))), one);
    }

private:
    float amount_;
    float inside_;
    float insideFactor_;
};

// Greys stay just as they are, whatever the arithmetic makes of them.

template <class Colours>
HWY_INLINE void moveAway(Colours colours, float amount) {
    const Stretch<Colours> stretch(amount);
    forEachColour(colours, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = colours.load(i);
        const Extent<Colours> e(c);
        const Floats factor = hn::IfThenZeroElse(e.isGrey, stretch.factor(e));
        const auto moved = [&](Floats channel) HWY_ATTR {
            const Floats distance = hn::Sub(channel, e.lightness);
            return hn::Add(channel, hn::Mul(distance, factor));
        };
        if constexpr (Colours::areBytes) {
            colours.storeInRange(mapChannels(c, moved), i);  // a factor of 0 leaves greys alone
        } else {
            colours.storeWhere(hn::Not(e.isGrey), mapChannels(c, moved), c, i);
        }
    });
}

template <class Colours>
HWY_INLINE void moveTowards(Colours colours, float amount) {
    const Floats factor = hn::Add(constant(1.0f), constant(amount));
    forEachColour(colours, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = colours.load(i);
        const Extent<Colours> e(c);
        const auto moved = [&](Floats channel) HWY_ATTR {
            const Floats distance = hn::Sub(channel, e.lightness);
            return hn::Add(e.lightness, hn::Mul(distance, factor));
        };
        colours.storeWhere(hn::Not(e.isGrey), mapChannels(c, moved), c, i);
    });
}

template <class Colours>
HWY_INLINE void stretch(Colours colours, float amount) {
    if (amount >= 0.0f) {
        moveAway(colours, amount);
    } else {
        moveTowards(colours, amount);
    }
}

void stretchPixels(PackedSpan& span, float amount) {
    stretch(BytePixels(span), amount);
}
void stretchColours(ColourRun& run, float amount) {
    stretch(UnitColours(run), amount);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(stretchPixels);
HWY_EXPORT(stretchColours);

SaturationKernel::SaturationKernel(float saturation)
    : active_(saturation != 0.0f), amount_(saturation / 100.0f) {}

void SaturationKernel::run(PackedSpan& span) const {
    HWY_DYNAMIC_DISPATCH(stretchPixels)(span, amount_);
}

void SaturationKernel::change(ColourRun& run) const {
    HWY_DYNAMIC_DISPATCH(stretchColours)(run, amount_);
}

}  // namespace keladjust

CxImage* saturationAdjustment(CxImage* image, float saturation) {
    return keladjust::applyKernel<keladjust::SaturationKernel>(image, saturation);
}

float* lut3d_saturationAdjustment(float* lut, unsigned long count, int stride, float saturation) {
    return keladjust::applyColourKernel<keladjust::SaturationKernel>(lut, count, stride,
                                                                     saturation);
}

#endif
