// Hue, saturation and lightness of one band of hues at a time.

#include "filters/colour-ranges/ColourRanges.h"

#include "arithmetic/Rounding.h"
#include "filters/colour-ranges/HslColour.h"
#include "filters/spans/Spans.h"
#include "walks/StageForms.h"

namespace keladjust {

namespace {

HslColour shiftHue(HslColour hsl, float shift) {
    float hue = hsl.hue + shift;
    if (hue < 0.0f) {
        hue = hue + 360.0f;
    } else if (hue > 360.0f) {
        hue = hue - 360.0f;
    }
    return {hue, hsl.saturation, hsl.lightness};
}

HslColour scaleSaturation(HslColour hsl, float ratio) {
    return {hsl.hue, clamp01(hsl.saturation * (1.0f + ratio)), hsl.lightness};
}

HslColour scaleLightness(HslColour hsl, float ratio) {
    return {hsl.hue, hsl.saturation, clamp01(hsl.lightness * (1.0f + ratio))};
}

// The unchanged side of the mix makes the round trip as well.
Colour blend(HslColour current, HslColour changed, float weight) {
    const Colour from = toRgb(current);
    const Colour to = toRgb(changed);
    const auto mix = [weight](float a, float b) { return (1.0f - weight) * a + weight * b; };
    return {mix(from.red, to.red), mix(from.green, to.green), mix(from.blue, to.blue)};
}

bool changesAnything(float hue, float saturation, float brightness) {
    return hue != 0.0f || saturation != 0.0f || brightness != 0.0f;
}

}  // namespace

float HueBand::weight(float hue) const {
    if (wraps()) {
        if (hue >= min_) return (hue - min_) / (360.0f - min_);
        if (hue <= max_) return max_ == 0.0f ? 1.0f : 1.0f - hue / max_;
        return 0.0f;
    }
    if (hue > min_ && hue < max_) {
        const float distance = (hue - min_) * 2.0f / (max_ - min_);
        return distance <= 1.0f ? distance : 2.0f - distance;
    }
    return 0.0f;
}

ColourRangeKernel::ColourRangeKernel(float minDegree, float maxDegree, float hue, float saturation,
                                     float brightness)
    : active_(changesAnything(hue, saturation, brightness)),
      band_(minDegree, maxDegree),
      change_(hue, saturation, brightness) {}

void ColourRangeKernel::run(PackedSpan& span) const {
    spans::changeColourRange(span, band_, change_);
}

void ColourRangeKernel::change(ColourRun& run) const {
    if (spans::isWithinUnit(run)) {
        spans::changeColourRange(run, band_, change_);
    } else {
        mapColours(run, [this](Colour c) { return changed(c); });
    }
}

Colour ColourRangeKernel::changed(Colour c) const {
    HslColour hsl = toHsl(c);
    const float weight = band_.weight(hsl.hue);
    const auto step = [&](float amount, HslColour (*changedHsl)(HslColour, float)) {
        if (amount == 0.0f) return;
        c = mapChannels(blend(hsl, changedHsl(hsl, amount), weight), clamp01);
        hsl = toHsl(c);
    };
    step(change_.shift, shiftHue);
    step(change_.saturationRatio, scaleSaturation);
    step(change_.lightnessRatio, scaleLightness);
    return c;
}

}  // namespace keladjust

CxImage* doHSLAdjustFilter(CxImage* image, float minDegree, float maxDegree, float hue,
                           float saturation, float brightness) {
    return keladjust::applyKernel<keladjust::ColourRangeKernel>(image, minDegree, maxDegree, hue,
                                                                saturation, brightness);
}
CxImage* adjustHueFilter(CxImage* image, float minDegree, float maxDegree, float hue) {
    return doHSLAdjustFilter(image, minDegree, maxDegree, hue, 0.0f, 0.0f);
}
CxImage* adjustSaturationFilter(CxImage* image, float minDegree, float maxDegree,
                                float saturation) {
    return doHSLAdjustFilter(image, minDegree, maxDegree, 0.0f, saturation, 0.0f);
}
CxImage* adjustBrightnessFilter(CxImage* image, float minDegree, float maxDegree,
                                float brightness) {
    return doHSLAdjustFilter(image, minDegree, maxDegree, 0.0f, 0.0f, brightness);
}

float* lut3d_doHSLAdjustFilter(float* lut, unsigned long count, int stride, float minDegree,
                               float maxDegree, float hue, float saturation, float brightness) {
    return keladjust::applyColourKernel<keladjust::ColourRangeKernel>(
        lut, count, stride, minDegree, maxDegree, hue, saturation, brightness);
}
float* lut3d_adjustHueFilter(float* lut, unsigned long count, int stride, float minDegree,
                             float maxDegree, float hue) {
    return lut3d_doHSLAdjustFilter(lut, count, stride, minDegree, maxDegree, hue, 0.0f, 0.0f);
}
float* lut3d_adjustSaturationFilter(float* lut, unsigned long count, int stride, float minDegree,
                                    float maxDegree, float saturation) {
    return lut3d_doHSLAdjustFilter(lut, count, stride, minDegree, maxDegree, 0.0f, saturation,
                                   0.0f);
}
float* lut3d_adjustBrightnessFilter(float* lut, unsigned long count, int stride, float minDegree,
                                    float maxDegree, float brightness) {
    return lut3d_doHSLAdjustFilter(lut, count, stride, minDegree, maxDegree, 0.0f, 0.0f,
                                   brightness);
}
