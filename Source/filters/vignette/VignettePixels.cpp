// The vignette over a span.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/vignette/VignettePixels.cpp"
#include <hwy/foreach_target.h>

#include "filters/vignette/VignettePixels.h"

#include <cmath>
#include <cstring>

#include "arithmetic/Angle.h"
#include "walks/DoubleVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

constexpr float pi = 3.1415927f;

// The angles for which the series below is as good as its numbers.
constexpr double quarterTurn = 1.57079632679489662;
constexpr double farthestFromQuarter = 1.8;

// By the sine's Taylor series about a quarter turn. For every single-precision angle in range the
// result, narrowed, is that of an exact cosine.
HWY_INLINE Doubles cosine(Doubles angle) {
    constexpr double restOfQuarterTurn = 6.123233995736766e-17;
    constexpr double reciprocals[] = {-1.0 / 121645100408832000.0,
                                      1.0 / 355687428096000.0,
                                      -1.0 / 1307674368000.0,
                                      1.0 / 6227020800.0,
                                      -1.0 / 39916800.0,
                                      1.0 / 362880.0,
                                      -1.0 / 5040.0,
                                      1.0 / 120.0,
                                      -1.0 / 6.0};
    const Doubles y = minus(minus(angle, constant(quarterTurn)), constant(restOfQuarterTurn));
    const Doubles square = times(y, y);
    Doubles series = constant(1.0 / 51090942171709440000.0);
    for (const double reciprocal : reciprocals) {
        series = plus(times(series, square), constant(reciprocal));
    }
    return negated(plus(times(times(y, square), series), y));
}

HWY_INLINE Floats cosine(Floats angle) {
    const FloatTag tag;
    const Floats fromQuarter = hn::Abs(hn::Sub(angle, constant(static_cast<float>(quarterTurn))));
    const FloatMask inRange =
        hn::Le(fromQuarter, constant(static_cast<float>(farthestFromQuarter)));
    if (!hn::AllTrue(tag, inRange)) {  // from absurd settings only
        HWY_ALIGN float angles[HWY_LANES(float)];
        hn::Store(angle, tag, angles);
        for (float& value : angles) {
            value = static_cast<float>(cosineOf(static_cast<double>(value)));
        }
        return hn::Load(tag, angles);
    }
    return throughDouble(angle, [](Doubles wide) HWY_ATTR { return cosine(wide); });
}

HWY_INLINE Floats square(Floats value) {
    return hn::Mul(value, value);
}

// A cosine of the way from the outer ellipse towards the centre, measured along the line through
// both; for the pixels that `inBand` names.
HWY_INLINE Floats maskInBand(const VignetteBand& band, Floats dx, Floats dy, FloatMask inBand) {
    const Floats one = constant(1.0f);
    const Floats width = constant(band.width);
    const Floats slope = square(hn::Div(dy, hn::Add(dx, constant(0.000001f))));
    const Floats x = hn::Div(one, hn::Add(hn::Div(slope, square(constant(band.outerHeight))),
                                          hn::Div(one, square(constant(band.outerWidth)))));
    const Floats ellipse = hn::Sqrt(hn::Add(hn::Mul(x, slope), x));
    const Floats distance = hn::Sqrt(hn::Add(square(dx), square(dy)));
    const Floats way = hn::Sub(width, hn::Sub(ellipse, distance));
    const Floats angle = hn::Div(hn::Mul(way, constant(pi)), width);
    return hn::Mul(hn::Add(cosine(hn::IfThenElseZero(inBand, angle)), one), constant(0.5f));
}

void vignetteMasks(const VignetteBand& band, const float* distances, float rowDistance,
                   std::size_t count, float* masks) {
    const FloatTag tag;
    const std::size_t lanes = hn::Lanes(tag);
    const Floats dy = constant(rowDistance);
    for (std::size_t i = 0; i < count; i += lanes) {
        const std::size_t part = HWY_MIN(lanes, count - i);
        const Floats dx = hn::LoadU(tag, distances + i);
        HWY_ALIGN float values[HWY_LANES(float)];
        hn::Store(maskInBand(band, dx, dy, hn::FirstN(tag, part)), tag, values);
        std::memcpy(masks + i, values, part * sizeof(float));
    }
}

// The masks of the vector that begins at column i, in the lanes that are in the band.
HWY_INLINE Floats loadMasks(const VignetteRow& row, std::ptrdiff_t i) {
    const FloatTag tag;
    const auto lanes = static_cast<std::ptrdiff_t>(hn::Lanes(tag));
    if (i + lanes <= row.centre + 1) return hn::LoadU(tag, row.masks + (i - row.firstMask));
    const std::ptrdiff_t mirrored = 2 * row.centre - i;
    if (i >= row.centre) {
        return hn::Reverse(tag, hn::LoadU(tag, row.masks + (mirrored - lanes + 1 - row.firstMask)));
    }
    HWY_ALIGN float values[HWY_LANES(float)];
    for (std::ptrdiff_t k = 0; k < lanes; ++k) {
        values[k] = row.masks[HWY_MIN(i + k, mirrored - k) - row.firstMask];
    }
    return hn::Load(tag, values);
}

// Factors of the sliders' size, or 0. What is multiplied by 0 for them, and added, changes nothing,
// every number is small enough for stores that saturate, and what is divided is 0 or not tiny.
struct ModestLook {
    static constexpr bool isModest = true;

    template <int divisor>
    static HWY_INLINE Floats quotient(Floats values) {
        return quotientBy<divisor>(values);
    }
};
struct AnyLook {
    static constexpr bool isModest = false;

    template <int divisor>
    static HWY_INLINE Floats quotient(Floats values) {
        return hn::Div(values, constant(static_cast<float>(divisor)));
    }
};

bool isModest(const VignetteShade& look) {
    const auto isFactor = [](float factor) {
        return factor == 0.0f || (factor >= 1e-6f && factor <= 2.0f);
    };
    return isFactor(look.outerFactor) && isFactor(look.innerFactor) &&
           std::fabs(look.highlights) <= 1.0f;
}

// Protects highlights where the border has a share. Not a number, from absurd settings, ends as
// black.
template <class Look>
HWY_INLINE Channels<Floats> screened(const Channels<Floats>& c, Floats lift) {
    const Floats white = constant(255.0f);
    return mapChannels(c, [&](Floats channel) HWY_ATTR {
        const Floats product =
            hn::Mul(hn::Sub(white, hn::Mul(lift, channel)), hn::Sub(white, channel));
        return hn::Sub(white, Look::template quotient<255>(product));
    });
}

// How dark the three channels are together.
template <class Look>
HWY_INLINE Floats darknessOf(const Channels<Floats>& c) {
    const Floats sum = hn::Add(hn::Add(c.red, c.green), c.blue);
    const Floats grey = Look::template quotient<255>(Look::template quotient<3>(sum));
    return hn::Sub(constant(1.0f), grey);
}

// Channels between border and inside.
template <class Look>
HWY_INLINE Channels<Ints> shade(const VignetteShade& look, const Channels<Floats>& c, Floats mask) {
    const Floats one = constant(1.0f);
    const Floats border =
        hn::Mul(hn::Sub(one, hn::Sub(hn::Mul(constant(2.0f), mask), one)), constant(0.5f));
    const Floats inside = hn::Mul(mask, constant(look.innerFactor));
    const Channels<Floats> blended = mapChannels(c, [&](Floats channel) HWY_ATTR {
        return hn::Add(hn::Mul(hn::Mul(constant(look.outerFactor), channel), border),
                       hn::Mul(inside, channel));
    });
    const Floats rest = hn::Sub(one, mask);
    const Floats lift =
        hn::Mul(hn::Mul(hn::Mul(rest, rest), constant(look.highlights)), darknessOf<Look>(blended));
    const Channels<Floats> lifted = screened<Look>(blended, lift);
    const FloatMask isInside = hn::Eq(mask, one);
    return {clampToBytes(hn::IfThenElse(isInside, blended.red, lifted.red)),
            clampToBytes(hn::IfThenElse(isInside, blended.green, lifted.green)),
            clampToBytes(hn::IfThenElse(isInside, blended.blue, lifted.blue))};
}

// The same of a modest look for a mask of 1 and of 0.

HWY_INLINE void storeSmall(const Channels<Floats>& c, PackedSpan& span, std::size_t i) {
    storeClamped(mapChannels(c, truncateInRange<Floats>), span, i);
}

HWY_INLINE Channels<Floats> scaled(const Channels<Floats>& c, float factor) {
    return mapChannels(c,
                       [&](Floats channel) HWY_ATTR { return hn::Mul(constant(factor), channel); });
}

HWY_INLINE Channels<Floats> shadeInside(const VignetteShade& look, const Channels<Floats>& c) {
    return scaled(c, look.innerFactor);
}
HWY_INLINE Channels<Floats> shadeOutside(const VignetteShade& look, const Channels<Floats>& c) {
    const Channels<Floats> border = scaled(c, look.outerFactor);
    return screened<ModestLook>(border,
                                hn::Mul(constant(look.highlights), darknessOf<ModestLook>(border)));
}

template <class Look>
void shadeSpan(PackedSpan& span, const VignetteRow& row, const VignetteShade& look) {
    const FloatTag tag;
    const Floats zero = constant(0.0f);
    const Floats one = constant(1.0f);
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = loadFloatChannels(span, i);
        const Floats inner = hn::Add(hn::LoadU(tag, row.columns.inner + i), constant(row.inner));
        const FloatMask isInside = hn::Le(hn::Sub(inner, one), zero);
        if (Look::isModest && hn::AllTrue(tag, isInside)) {
            storeSmall(shadeInside(look, c), span, i);
            return;
        }
        const Floats outer = hn::Add(hn::LoadU(tag, row.columns.outer + i), constant(row.outer));
        const FloatMask isOutside = hn::AndNot(isInside, hn::Ge(hn::Sub(outer, one), zero));
        if (Look::isModest && hn::AllTrue(tag, isOutside)) {
            storeSmall(shadeOutside(look, c), span, i);
            return;
        }
        const FloatMask inBand = hn::Not(hn::Or(isInside, isOutside));
        Floats mask = hn::IfThenElseZero(isInside, one);
        if (!hn::AllFalse(tag, inBand)) {
            mask = hn::IfThenElse(inBand, loadMasks(row, static_cast<std::ptrdiff_t>(i)), mask);
        }
        storeClamped(shade<Look>(look, c, mask), span, i);
    });
}

void applyVignette(PackedSpan& span, const VignetteRow& row, const VignetteShade& look) {
    (isModest(look) ? shadeSpan<ModestLook> : shadeSpan<AnyLook>)(span, row, look);
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(applyVignette);
HWY_EXPORT(vignetteMasks);

void applyVignette(PackedSpan& span, const VignetteRow& row, const VignetteShade& shade) {
    HWY_DYNAMIC_DISPATCH(applyVignette)(span, row, shade);
}
void vignetteMasks(const VignetteBand& band, const float* distances, float rowDistance,
                   std::size_t count, float* masks) {
    HWY_DYNAMIC_DISPATCH(vignetteMasks)(band, distances, rowDistance, count, masks);
}

}  // namespace keladjust
#endif
