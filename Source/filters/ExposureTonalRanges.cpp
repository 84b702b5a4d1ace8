// Exposure, highlights, shadows, whites and blacks.

#include "filters/ExposureTonalRanges.h"

#include <cmath>
#include <cstdint>

#include "filters/Rounding.h"
#include "filters/StageForms.h"
#include "filters/spans/Spans.h"

namespace keladjust {

namespace {

// The power is taken in double and narrowed once, so that C libraries agree on it.
float exposureFactor(float exposure) {
    return static_cast<float>(std::pow(2.0, static_cast<double>(exposure / 50.0f * 0.6f)));
}

// The amounts that the four tonal sliders stand for. Shadows and blacks are lopsided, each the
// other way: what opens shadows acts strongly, what opens blacks weakly.
float highlightAmount(float setting) {
    return setting / 100.0f;
}
float whiteAmount(float setting) {
    return setting / 100.0f;
}
float shadowAmount(float setting) {
    return setting > 0.0f ? setting / 100.0f * 2.0f : setting / 100.0f * 0.5f;
}
float blackAmount(float setting) {
    return setting > 0.0f ? setting / 100.0f * 0.5f : setting / 100.0f * 2.0f;
}

// Screens a channel with itself: towards the end of the scale for k > 0, away from it for k < 0.
float lift(float c, float k) {
    return 1.0f - (1.0f - k * c) * (1.0f - c) / 1.0f;
}

// The coefficient of bright pixels and of dark ones.
float brightCoefficient(float largest, float amount) {
    return largest * amount;
}
float darkCoefficient(float largest, float amount) {
    return (1.0f - largest) * amount;
}

class ExposureFormula {
public:
    explicit ExposureFormula(float exposure)
        : active_(exposure != 0.0f), factor_(exposureFactor(exposure)) {}
    bool active() const { return active_; }
    Colour operator()(Colour c) const {
        return mapChannels(c, [this](float channel) { return clamp01(channel * factor_); });
    }

private:
    bool active_;
    float factor_;
};

// What the tonal formulas share: an amount, a coefficient from the largest channel, one lift.
template <float (*amountOf)(float), float (*coefficientOf)(float, float)>
class TonalFormula {
public:
    explicit TonalFormula(float setting) : active_(setting != 0.0f), amount_(amountOf(setting)) {}
    bool active() const { return active_; }
    Colour operator()(Colour c) const {
        const float k = coefficientOf(largestOf(c), amount_);
        return mapChannels(c, [k](float channel) { return clamp01(lift(channel, k)); });
    }

private:
    bool active_;
    float amount_;
};
using HighlightFormula = TonalFormula<highlightAmount, brightCoefficient>;
using ShadowFormula = TonalFormula<shadowAmount, darkCoefficient>;
using BlackLevelFormula = TonalFormula<blackAmount, darkCoefficient>;

class WhiteLevelFormula {
public:
    explicit WhiteLevelFormula(float level) : active_(level != 0.0f), amount_(whiteAmount(level)) {}
    bool active() const { return active_; }
    Colour operator()(Colour c) const {
        const float k = brightCoefficient(largestOf(c), amount_);
        return mapChannels(c, [k](float channel) {
            const float once = lift(channel, k);
            return clamp01(k > 0.0f ? lift(once, k) : once);
        });
    }

private:
    bool active_;
    float amount_;
};

}  // namespace

ExposureKernel::ExposureKernel(float exposure) : active_(exposure != 0.0f) {
    const float factor = exposureFactor(exposure);
    fill([factor](std::uint8_t value) { return clampToByte(static_cast<float>(value) * factor); });
}

HighlightKernel::HighlightKernel(float highlight)
    : active_(highlight != 0.0f), amount_(highlightAmount(highlight)) {}

void HighlightKernel::run(PackedSpan& span) const {
    spans::liftWrapping(span, spans::Tones::bright, amount_);
}

ShadowKernel::ShadowKernel(float shadow) : active_(shadow != 0.0f), amount_(shadowAmount(shadow)) {}

void ShadowKernel::run(PackedSpan& span) const {
    spans::liftWrapping(span, spans::Tones::dark, amount_);
}

WhiteLevelKernel::WhiteLevelKernel(float level)
    : active_(level != 0.0f), amount_(whiteAmount(level)) {}

void WhiteLevelKernel::run(PackedSpan& span) const {
    spans::liftTwice(span, amount_);
}

BlackLevelKernel::BlackLevelKernel(float level)
    : active_(level != 0.0f), amount_(blackAmount(level)) {}

void BlackLevelKernel::run(PackedSpan& span) const {
    spans::liftClamped(span, spans::Tones::dark, amount_);
}

}  // namespace keladjust

CxImage* exposureAdjustment(CxImage* image, float exposure) {
    return keladjust::applyKernel<keladjust::ExposureKernel>(image, exposure);
}
CxImage* hdrHighlight(CxImage* image, float highlight) {
    return keladjust::applyKernel<keladjust::HighlightKernel>(image, highlight);
}
CxImage* hdrShadow(CxImage* image, float shadow) {
    return keladjust::applyKernel<keladjust::ShadowKernel>(image, shadow);
}
CxImage* hdrWhiteLevel(CxImage* image, float level) {
    return keladjust::applyKernel<keladjust::WhiteLevelKernel>(image, level);
}
CxImage* hdrBlackLevel(CxImage* image, float level) {
    return keladjust::applyKernel<keladjust::BlackLevelKernel>(image, level);
}

float* lut3d_exposureAdjustment(float* lut, unsigned long count, int stride, float exposure) {
    return keladjust::applyFormula<keladjust::ExposureFormula>(lut, count, stride, exposure);
}
float* lut3d_hdrHighlight(float* lut, unsigned long count, int stride, float highlight) {
    return keladjust::applyFormula<keladjust::HighlightFormula>(lut, count, stride, highlight);
}
float* lut3d_hdrShadow(float* lut, unsigned long count, int stride, float shadow) {
    return keladjust::applyFormula<keladjust::ShadowFormula>(lut, count, stride, shadow);
}
float* lut3d_hdrWhiteLevel(float* lut, unsigned long count, int stride, float level) {
    return keladjust::applyFormula<keladjust::WhiteLevelFormula>(lut, count, stride, level);
}
float* lut3d_hdrBlackLevel(float* lut, unsigned long count, int stride, float level) {
    return keladjust::applyFormula<keladjust::BlackLevelFormula>(lut, count, stride, level);
}
