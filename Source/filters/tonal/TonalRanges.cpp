// Exposure, highlights, shadows, whites and blacks.

#include "filters/tonal/TonalRanges.h"
#include "filters/exposure/Exposure.h"

#include <cmath>
#include <cstdint>

#include "arithmetic/Rounding.h"
#include "filters/spans/Spans.h"
#include "walks/StageForms.h"

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

}  // namespace

ExposureKernel::ExposureKernel(float exposure)
    : active_(exposure != 0.0f), factor_(exposureFactor(exposure)) {
    fill([this](std::uint8_t value) { return clampToByte(static_cast<float>(value) * factor_); });
}

void ExposureKernel::change(ColourRun& run) const {
    spans::multiply(run, factor_);
}

HighlightKernel::HighlightKernel(float highlight)
    : active_(highlight != 0.0f), amount_(highlightAmount(highlight)) {}

void HighlightKernel::run(PackedSpan& span) const {
    spans::liftWrapping(span, spans::Tones::bright, amount_);
}

void HighlightKernel::change(ColourRun& run) const {
    spans::lift(run, spans::Tones::bright, amount_);
}

ShadowKernel::ShadowKernel(float shadow) : active_(shadow != 0.0f), amount_(shadowAmount(shadow)) {}

void ShadowKernel::run(PackedSpan& span) const {
    spans::liftWrapping(span, spans::Tones::dark, amount_);
}

void ShadowKernel::change(ColourRun& run) const {
    spans::lift(run, spans::Tones::dark, amount_);
}

WhiteLevelKernel::WhiteLevelKernel(float level)
    : active_(level != 0.0f), amount_(whiteAmount(level)) {}

void WhiteLevelKernel::run(PackedSpan& span) const {
    spans::liftTwice(span, amount_);
}

void WhiteLevelKernel::change(ColourRun& run) const {
    spans::liftTwice(run, amount_);
}

BlackLevelKernel::BlackLevelKernel(float level)
    : active_(level != 0.0f), amount_(blackAmount(level)) {}

void BlackLevelKernel::run(PackedSpan& span) const {
    spans::liftClamped(span, spans::Tones::dark, amount_);
}

void BlackLevelKernel::change(ColourRun& run) const {
    spans::lift(run, spans::Tones::dark, amount_);
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
    return keladjust::applyColourKernel<keladjust::ExposureKernel>(lut, count, stride, exposure);
}
float* lut3d_hdrHighlight(float* lut, unsigned long count, int stride, float highlight) {
    return keladjust::applyColourKernel<keladjust::HighlightKernel>(lut, count, stride, highlight);
}
float* lut3d_hdrShadow(float* lut, unsigned long count, int stride, float shadow) {
    return keladjust::applyColourKernel<keladjust::ShadowKernel>(lut, count, stride, shadow);
}
float* lut3d_hdrWhiteLevel(float* lut, unsigned long count, int stride, float level) {
    return keladjust::applyColourKernel<keladjust::WhiteLevelKernel>(lut, count, stride, level);
}
float* lut3d_hdrBlackLevel(float* lut, unsigned long count, int stride, float level) {
    return keladjust::applyColourKernel<keladjust::BlackLevelKernel>(lut, count, stride, level);
}
