// Global saturation.

#include "filters/Saturation.h"

#include <algorithm>
#include <cstdint>

#include "filters/Rounding.h"
#include "filters/StageForms.h"

namespace keladjust {

namespace {

// The change of a pixel on a scale of `scale`: its lightness and how far channels move from it.
struct Stretch {
    // `largest` differs from `smallest`.
    Stretch(float largest, float smallest, float scale, float amount) {
        const float delta = (largest - smallest) / scale;
        const float sum = (largest + smallest) / scale;
        const float halfSum = sum * 0.5f;
        const float saturation = halfSum < 0.5f ? delta / sum : delta / (2.0f - sum);
        lightness = halfSum * scale;
        away = amount >= 0.0f;
        if (away) {
            // Once the pixel would leave the gamut it goes just to its edge.
            const float a = saturation + amount >= 1.0f ? saturation : 1.0f - amount;
            factor = 1.0f / a - 1.0f;
        } else {
            factor = 1.0f + amount;
        }
    }

    float operator()(float channel) const {
        const float distance = channel - lightness;
        return away ? channel + distance * factor : lightness + distance * factor;
    }

    float lightness;
    float factor;
    bool away;
};

class SaturationFormula {
public:
    explicit SaturationFormula(float saturation)
        : active_(saturation != 0.0f), amount_(saturation / 100.0f) {}
    bool active() const { return active_; }
    Colour operator()(Colour c) const {
        const float largest = largestOf(c);
        const float smallest = smallestOf(c);
        if (largest - smallest == 0.0f) return c;
        const Stretch stretch(largest, smallest, 1.0f, amount_);
        return mapChannels(c, [&](float channel) { return clamp01(stretch(channel)); });
    }

private:
    bool active_;
    float amount_;
};

}  // namespace

SaturationKernel::SaturationKernel(float saturation)
    : active_(saturation != 0.0f), amount_(saturation / 100.0f) {}

void SaturationKernel::run(PixelSpan& span) const {
    for (std::size_t i = 0; i < span.count; ++i) {
        const std::uint8_t largest = std::max({span.red[i], span.green[i], span.blue[i]});
        const std::uint8_t smallest = std::min({span.red[i], span.green[i], span.blue[i]});
        if (largest == smallest) continue;
        const Stretch stretch(static_cast<float>(largest), static_cast<float>(smallest), 255.0f,
                              amount_);
        span.red[i] = clampToByte(stretch(static_cast<float>(span.red[i])));
        span.green[i] = clampToByte(stretch(static_cast<float>(span.green[i])));
        span.blue[i] = clampToByte(stretch(static_cast<float>(span.blue[i])));
    }
}

}  // namespace keladjust

CxImage* saturationAdjustment(CxImage* image, float saturation) {
    return keladjust::applyKernel<keladjust::SaturationKernel>(image, saturation);
}

float* lut3d_saturationAdjustment(float* lut, unsigned long count, int stride, float saturation) {
    return keladjust::applyFormula<keladjust::SaturationFormula>(lut, count, stride, saturation);
}
