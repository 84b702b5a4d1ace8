// Exposure: one factor for every channel.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/exposure/Exposure.cpp"
#include <hwy/foreach_target.h>

#include "filters/exposure/Exposure.h"

#include <cmath>
#include <cstdint>

#include "arithmetic/Rounding.h"
#include "walks/PixelVectors-inl.h"
#include "walks/StageForms.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

void exposeColours(ColourRun& run, float factor) {
    changeEveryChannel(UnitColours(run),
                       [&](Floats channel) HWY_ATTR { return hn::Mul(channel, constant(factor)); });
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(exposeColours);

namespace {

// The power is taken in double and narrowed once, so that C libraries agree on it.
float exposureFactor(float exposure) {
    return static_cast<float>(std::pow(2.0, static_cast<double>(exposure / 50.0f * 0.6f)));
}

}  // namespace

ExposureKernel::ExposureKernel(float exposure)
    : active_(exposure != 0.0f), factor_(exposureFactor(exposure)) {
    fill([this](std::uint8_t value) { return clampToByte(static_cast<float>(value) * factor_); });
}

void ExposureKernel::change(ColourRun& run) const {
    HWY_DYNAMIC_DISPATCH(exposeColours)(run, factor_);
}

}  // namespace keladjust

CxImage* exposureAdjustment(CxImage* image, float exposure) {
    return keladjust::applyKernel<keladjust::ExposureKernel>(image, exposure);
}

float* lut3d_exposureAdjustment(float* lut, unsigned long count, int stride, float exposure) {
    return keladjust::applyColourKernel<keladjust::ExposureKernel>(lut, count, stride, exposure);
}

#endif
