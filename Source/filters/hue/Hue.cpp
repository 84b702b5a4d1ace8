// Hue: a rotation about the grey axis.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/hue/Hue.cpp"
#include <hwy/foreach_target.h>

#include <keladjust/CxImage.h>

#include <cmath>
#include <cstdint>

#include "arithmetic/Angle.h"
#include "filters/hue/HueMatrix.h"
#include "walks/PixelVectors-inl.h"
#include "walks/RawWalk.h"
#include "walks/StageForms.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

void rotateHue(PackedSpan& span, const HueMatrix& matrix) {
    const Floats m00 = constant(matrix.m00);
    const Floats diagonal = constant(matrix.diagonal);
    const Floats minus = constant(matrix.minus);
    const Floats plus = constant(matrix.plus);
    // Nothing in the matrix exceeds 2, so that no sum is large.
    const auto sumOf = [](Floats a, Floats b, Floats c)
                           HWY_ATTR { return hn::Add(hn::Add(a, b), c); };
    forEachVector(span, [&](std::size_t i) HWY_ATTR {
        const Channels<Floats> c = loadFloatChannels(span, i);
        const Ints blue = clampInRangeToBytes(
            sumOf(hn::Mul(c.blue, m00), hn::Mul(c.green, minus), hn::Mul(c.red, plus)));
        const Floats newBlue = toFloats(blue);
        const Ints green = clampInRangeToBytes(
            sumOf(hn::Mul(c.green, diagonal), hn::Mul(newBlue, plus), hn::Mul(c.red, minus)));
        const Floats newGreen = toFloats(green);
        const Ints red = truncateInRange(
            sumOf(hn::Mul(newGreen, plus), hn::Mul(newBlue, minus), hn::Mul(c.red, diagonal)));
        storeClamped(Channels<Ints>{red, green, blue}, span, i);
    });
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(rotateHue);

namespace {

HueMatrix hueMatrix(float angle) {
    const double radians = static_cast<double>(angle) * 3.141592653589793 / 180.0;
    const float cosine = static_cast<float>(cosineOf(radians));
    const float sine = static_cast<float>(sineOf(radians));
    const float third = (1.0f - cosine) * 0.33333334f;
    const float skew = std::sqrt(0.33333334f) * sine;
    return {(1.0f - cosine) / 3.0f + cosine, third + cosine, third - skew, third + skew};
}

void rotateRawWalk(const RawWalk& walk, const HueMatrix& matrix) {
    if (walk.channels < 3) return;
    changePackedRuns(walk, [&](PackedSpan& span) {
        HWY_DYNAMIC_DISPATCH(rotateHue)(span, matrix);
    });
}

}  // namespace

}  // namespace keladjust

CxImage* hueAdjustment(CxImage* image, float angle) {
    return keladjust::exportedForm(image, [&](const keladjust::Picture& picture) {
        if (angle == 0.0f) return;
        keladjust::rotateRawWalk(keladjust::rawWalkOf(picture), keladjust::hueMatrix(angle));
    });
}

#endif
