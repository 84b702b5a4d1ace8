// Hue rotation over a span.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/hue/HuePixels.cpp"
#include <hwy/foreach_target.h>

#include "filters/spans/Spans.h"
#include "walks/PixelVectors-inl.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {

void rotateHue(PixelSpan& span, const spans::HueMatrix& matrix) {
    const Floats m00 = constant(matrix.m00);
    const Floats diagonal = constant(matrix.diagonal);
    const Floats minus = constant(matrix.minus);
    const Floats plus = constant(matrix.plus);
    const auto sumOf = [](Floats a, Floats b, Floats c)
                           HWY_ATTR { return clampToBytes(hn::Add(hn::Add(a, b), c)); };
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = loadFloatChannels(span, i);
        const Ints blue =
            sumOf(hn::Mul(c.blue, m00), hn::Mul(c.green, minus), hn::Mul(c.red, plus));
        const Floats newBlue = toFloats(blue);
        const Ints green =
            sumOf(hn::Mul(c.green, diagonal), hn::Mul(newBlue, plus), hn::Mul(c.red, minus));
        const Floats newGreen = toFloats(green);
        const Ints red =
            sumOf(hn::Mul(newGreen, plus), hn::Mul(newBlue, minus), hn::Mul(c.red, diagonal));
        storeClamped(Channels<Ints>{red, green, blue}, span, i);
    });
}

}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(rotateHue);

void spans::rotateHue(PixelSpan& span, const HueMatrix& matrix) {
    HWY_DYNAMIC_DISPATCH(rotateHue)(span, matrix);
}

}  // namespace keladjust
#endif
