// The vignette over a span.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/spans/Vignette.cpp"
#include <hwy/foreach_target.h>

#include <cmath>

#include "filters/spans/SpanVectors-inl.h"
#include "filters/spans/Spans.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

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
    const Doubles y = hn::Sub(hn::Sub(angle, constant(quarterTurn)), constant(restOfQuarterTurn));
    const Doubles square = hn::Mul(y, y);
    Doubles series = constant(1.0 / 51090942171709440000.0);
    for (const double reciprocal : reciprocals) {
        series = hn::Add(hn::Mul(series, square), constant(reciprocal));
    }
    return hn::Neg(hn::Add(hn::Mul(hn::Mul(y, square), series), y));
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
            value = static_cast<float>(std::cos(static_cast<double>(value)));
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
HWY_INLINE Floats maskInBand(const spans::VignetteBand& band, Floats dx, Floats dy,
                             FloatMask inBand) {
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

// Channels between border and inside, and highlights protected where the border has a share. Not a
// number, from absurd settings, ends as black.
HWY_INLINE Channels<Ints> shade(const spans::VignetteShade& shade, const Channels<Floats>& c,
                                Floats mask) {
    const Floats one = constant(1.0f);
    const Floats white = constant(255.0f);
    const Floats border =
        hn::Mul(hn::Sub(one, hn::Sub(hn::Mul(constant(2.0f), mask), one)), constant(0.5f));
    const Floats inside = hn::Mul(mask, constant(shade.innerFactor));
    const Channels<Floats> blended = mapChannels(c, [&](Floats channel) HWY_ATTR {
        return hn::Add(hn::Mul(hn::Mul(constant(shade.outerFactor), channel), border),
                       hn::Mul(inside, channel));
    });
    const FloatMask isInside = hn::Eq(mask, one);
    if (hn::AllTrue(FloatTag(), isInside)) return mapChannels(blended, clampToBytes);
    const Floats sum = hn::Add(hn::Add(blended.red, blended.green), blended.blue);
    const Floats grey = hn::Div(hn::Div(sum, constant(3.0f)), white);
    const Floats rest = hn::Sub(one, mask);
    const Floats lift =
        hn::Mul(hn::Mul(hn::Mul(rest, rest), constant(shade.highlights)), hn::Sub(one, grey));
    return mapChannels(blended, [&](Floats channel) HWY_ATTR {
        const Floats product =
            hn::Mul(hn::Sub(white, hn::Mul(lift, channel)), hn::Sub(white, channel));
        const Floats screened = hn::Sub(white, hn::Div(product, white));
        return clampToBytes(hn::IfThenElse(isInside, channel, screened));
    });
}

void applyVignette(PackedSpan& span, const spans::VignetteRow& row, const spans::VignetteBand& band,
                   const spans::VignetteShade& look) {
    const FloatTag tag;
    const Floats zero = constant(0.0f);
    const Floats one = constant(1.0f);
    const Floats dy = constant(row.distance);
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Floats inner = hn::Add(hn::LoadU(tag, row.columns.inner + i), constant(row.inner));
        const Floats outer = hn::Add(hn::LoadU(tag, row.columns.outer + i), constant(row.outer));
        const FloatMask isInside = hn::Le(hn::Sub(inner, one), zero);
        const FloatMask isOutside = hn::Ge(hn::Sub(outer, one), zero);
        const FloatMask inBand = hn::Not(hn::Or(isInside, isOutside));
        Floats mask = hn::IfThenElseZero(isInside, one);
        if (!hn::AllFalse(tag, inBand)) {
            const Floats dx = hn::LoadU(tag, row.columns.distance + i);
            mask = hn::IfThenElse(inBand, maskInBand(band, dx, dy, inBand), mask);
        }
        storeClamped(shade(look, loadFloatChannels(span, i), mask), span, i);
    });
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(applyVignette);

void spans::applyVignette(PackedSpan& span, const VignetteRow& row, const VignetteBand& band,
                          const VignetteShade& shade) {
    HWY_DYNAMIC_DISPATCH(applyVignette)(span, row, band, shade);
}

}  // namespace keladjust
#endif
