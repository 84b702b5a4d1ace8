#ifndef KELADJUST_BENCH_SUPPORT_BENCHSETTINGS_H
#define KELADJUST_BENCH_SUPPORT_BENCHSETTINGS_H

#include <keladjust/keladjust.h>

namespace keladjust::bench {

/// The eleven global sliders at strengths that a user might choose.
inline _AdjustParam elevenSettings() {
    _AdjustParam p{};
    p.temperature = 9000;
    p.tint = 30;
    p.exposure = 10;
    p.brightness = 10;
    p.contrast = 20;
    p.vibrance = 40;
    p.saturation = 20;
    p.highlights = -40;
    p.shadows = 35;
    p.whites = 20;
    p.blacks = -15;
    return p;
}

/// Those and a change of every colour range: all that a colour table can hold.
inline _AdjustParam everyTableSetting() {
    _AdjustParam p = elevenSettings();
    float centre = 0;
    for (_AdjustColourRange& range : p.range) {
        range = {centre, centre + 60, 10, 20, -15};
        centre += 40;
    }
    return p;
}

/// A vignette, beside other settings.
inline void addVignette(_AdjustParam& p) {
    p.vignetteAmount = -40;
    p.vignetteSize = 50;
    p.vignetteFeather = 50;
    p.vignetteHighlights = 50;
}

/// The eleven sliders, three colour ranges and the vignette: what a preview shows while somebody
/// works on a picture.
inline _AdjustParam previewSettings() {
    _AdjustParam p = elevenSettings();
    p.range[KELADJUST_RANGE_RED] = {330, 30, 10, 20, -15};
    p.range[KELADJUST_RANGE_ORANGE] = {0, 60, -5, 15, 10};
    p.range[KELADJUST_RANGE_BLUE] = {210, 270, 5, 30, -20};
    addVignette(p);
    return p;
}

/// Every slider of a stage that looks at one pixel at a time, three for each colour range.
inline _AdjustParam everyPixelSetting() {
    _AdjustParam p = everyTableSetting();
    addVignette(p);
    return p;
}

/// A look that somebody may have saved: the eleven sliders, one colour range, clarity, sharpness,
/// haze and the vignette.
inline _AdjustParam lookSettings() {
    _AdjustParam p = elevenSettings();
    p.range[KELADJUST_RANGE_ORANGE] = {0, 60, -5, 15, 10};
    addVignette(p);
    p.clarity = 40;
    p.sharpen = 60;
    p.dehaze = 30;
    return p;
}

}  // namespace keladjust::bench

#endif
