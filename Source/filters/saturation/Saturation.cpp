// Global saturation.

#include "filters/saturation/Saturation.h"

#include "filters/spans/Spans.h"
#include "walks/StageForms.h"

namespace keladjust {

SaturationKernel::SaturationKernel(float saturation)
    : active_(saturation != 0.0f), amount_(saturation / 100.0f) {}

void SaturationKernel::run(PackedSpan& span) const {
    spans::stretchSaturation(span, amount_);
}

void SaturationKernel::change(ColourRun& run) const {
    spans::stretchSaturation(run, amount_);
}

}  // namespace keladjust

CxImage* saturationAdjustment(CxImage* image, float saturation) {
    return keladjust::applyKernel<keladjust::SaturationKernel>(image, saturation);
}

float* lut3d_saturationAdjustment(float* lut, unsigned long count, int stride, float saturation) {
    return keladjust::applyColourKernel<keladjust::SaturationKernel>(lut, count, stride,
                                                                     saturation);
}
