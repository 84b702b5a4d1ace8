// Brightness: a gain for positive settings, an offset for negative ones.

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "filters/exposure/Brightness.cpp"
#include <hwy/foreach_target.h>

#include "filters/exposure/Brightness.h"

#include <cstdint>

#include "arithmetic/Rounding.h"
#include "walks/PixelVectors-inl.h"
#include "walks/StageForms.h"

HWY_BEFORE_NAMESPACE();
namespace keladjust {
namespace HWY_NAMESPACE {
namespace {

void brightenColours(ColourRun& run, float value) {
    const UnitColours colours(run);
    if (value > 0.0f) {
        changeEveryChannel(
            colours, [&](Floats channel) HWY_ATTR { return hn::Mul(channel, constant(value)); });
    } else {
        changeEveryChannel(
            colours, [&](Floats channel) HWY_ATTR { return hn::Add(channel, constant(value)); });
    }
}

}  // namespace
}  // namespace HWY_NAMESPACE
}  // namespace keladjust
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace keladjust {

HWY_EXPORT(brightenColours);

namespace {

// The value is used by its own sign, not by that of the setting: a positive one multiplies, any
// other is added. Far below -100 the offset's formula turns positive and so becomes a gain.
float brightnessGain(float setting) {
    return setting / 100.0f + 1.0f;
}
float brightnessOffsetByte(float setting) {
    return (1.0f / (setting / 253.0f + 0.99f) - 1.0f) * -255.0f * 0.6f;
}
float brightnessOffsetUnit(float setting) {
    return (1.0f - 1.0f / (setting / 253.0f + 0.99f)) * 0.6f;
}
float brighten(float channel, float value) {
    return value > 0.0f ? channel * value : channel + value;
}

}  // namespace

BrightnessKernel::BrightnessKernel(float setting)
    : active_(setting != 0.0f),
      unitValue_(setting > 0.0f ? brightnessGain(setting) : brightnessOffsetUnit(setting)) {
    const float value = setting > 0.0f ? brightnessGain(setting) : brightnessOffsetByte(setting);
    fill([value](std::uint8_t channel) {
        return clampToByte(brighten(static_cast<float>(channel), value));
    });
}

void BrightnessKernel::change(ColourRun& run) const {
    HWY_DYNAMIC_DISPATCH(brightenColours)(run, unitValue_);
}

}  // namespace keladjust

CxImage* brightnessAdjustment(CxImage* image, float brightness) {
    return keladjust::exportedForm(image, [&](const keladjust::Picture& picture) {
        const keladjust::BrightnessKernel kernel(brightness);
        if (kernel.active()) keladjust::mapRawWalk(picture, *kernel.table());
    });
}

float* lut3d_brightnessAdjustment(float* lut, unsigned long count, int stride, float brightness) {
    return keladjust::applyColourKernel<keladjust::BrightnessKernel>(lut, count, stride,
                                                                     brightness);
}

#endif
