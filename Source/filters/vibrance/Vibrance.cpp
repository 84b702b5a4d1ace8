// Vibrance: saturation for dull colours. Hue: a rotation about the grey axis.

#include "filters/vibrance/Vibrance.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "arithmetic/Angle.h"
#include "arithmetic/Rounding.h"
#include "filters/spans/Spans.h"
#include "platform/Parallel.h"
#include "walks/RawWalk.h"
#include "walks/StageForms.h"
#include "walks/ThreadShare.h"

namespace keladjust {

namespace {

float vibranceAmount(float vibrance) {
    return vibrance / 100.0f * 0.8f;
}

// Rotation about the grey axis.
spans::HueMatrix hueMatrix(float angle) {
    const double radians = static_cast<double>(angle) * 3.141592653589793 / 180.0;
    const float cosine = static_cast<float>(cosineOf(radians));
    const float sine = static_cast<float>(sineOf(radians));
    const float third = (1.0f - cosine) * 0.33333334f;
    const float skew = std::sqrt(0.33333334f) * sine;
    return {(1.0f - cosine) / 3.0f + cosine, third + cosine, third - skew, third + skew};
}

void rotateRawWalk(CxImage& image, const spans::HueMatrix& matrix) {
    const RawWalk walk = rawWalkOf(image);
    if (walk.channels < 3) return;
    platform::parallelBands(walk.count, platform::bandCount(walk.count, pixelsPerThread),
                            [&](std::size_t, std::size_t begin, std::size_t end) {
                                changeRuns(walk, begin, end, [&](std::size_t, PixelSpan& span) {
                                    spans::rotateHue(span, matrix);
                                });
                            });
}

}  // namespace

VibranceKernel::VibranceKernel(float vibrance)
    : active_(vibrance != 0.0f), amount_(vibranceAmount(vibrance)) {}

void VibranceKernel::run(PackedSpan& span) const {
    spans::stretchVibrance(span, amount_);
}

void VibranceKernel::change(ColourRun& run) const {
    spans::stretchVibrance(run, amount_);
}

}  // namespace keladjust

CxImage* vibranceAdjustment(CxImage* image, float vibrance) {
    return keladjust::applyKernel<keladjust::VibranceKernel>(image, vibrance);
}

CxImage* hueAdjustment(CxImage* image, float angle) {
    return keladjust::exportedForm(image, [&] {
        if (image == nullptr || angle == 0.0f) return;
        keladjust::rotateRawWalk(*image, keladjust::hueMatrix(angle));
    });
}

float* lut3d_vibranceAdjustment(float* lut, unsigned long count, int stride, float vibrance) {
    return keladjust::applyColourKernel<keladjust::VibranceKernel>(lut, count, stride, vibrance);
}
