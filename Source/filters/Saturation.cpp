// Global saturation.

#include "filters/Saturation.h"

#include "filters/Rounding.h"
#include "filters/StageForms.h"
#include "filters/spans/Spans.h"

namespace keladjust {

namespace {

class SaturationFormula {
public:
    explicit SaturationFormula(float saturation)
        : active_(saturation != 0.0f), amount_(saturation / 100.0f) {}
    bool active() const { return active_; }
    Colour operator()(Colour c) const {
        const float largest = largestOf(c);
        const float smallest = smallestOf(c);
        const float delta = largest - smallest;
        if (delta == 0.0f) return c;
        const float sum = largest + smallest;
        const float lightness = sum * 0.5f;
        if (!(amount_ >= 0.0f)) {
            return mapChannels(c, [this, lightness](float channel) {
                return clamp01(lightness + (channel - lightness) * (1.0f + amount_));
            });
        }
        const float saturation = lightness < 0.5f ? delta / sum : delta / (2.0f - sum);
        // Once the colour would leave the gamut it goes just to its edge.
        const float a = saturation + amount_ >= 1.0f ? saturation : 1.0f - amount_;
        const float factor = 1.0f / a - 1.0f;
        return mapChannels(c, [lightness, factor](float channel) {
            return clamp01(channel + (channel - lightness) * factor);
        });
    }

private:
    bool active_;
    float amount_;
};

}  // namespace

SaturationKernel::SaturationKernel(float saturation)
    : active_(saturation != 0.0f), amount_(saturation / 100.0f) {}

void SaturationKernel::run(PackedSpan& span) const {
    spans::stretchSaturation(span, amount_);
}

}  // namespace keladjust

CxImage* saturationAdjustment(CxImage* image, float saturation) {
    return keladjust::applyKernel<keladjust::SaturationKernel>(image, saturation);
}

float* lut3d_saturationAdjustment(float* lut, unsigned long count, int stride, float saturation) {
    return keladjust::applyFormula<keladjust::SaturationFormula>(lut, count, stride, saturation);
}
