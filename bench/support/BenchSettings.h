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

/// The eleven sliders, three colour ranges and the vignette: what a preview shows while somebody
/// works on a picture.
inline _AdjustParam previewSettings() {
    _AdjustParam p = elevenSettings();
    p.range[KELADJUST_RANGE_RED] = {330, 30, 10, 20, -15};
    p.range[KELADJUST_RANGE_ORANGE] = {0, 60, -5, 15, 10};
    p.range[KELADJUST_RANGE_BLUE] = {210, 270, 5, 30, -20};
    p.vignetteAmount = -40;
    p.vignetteSize = 50;
    p.vignetteFeather = 50;
    p.vignetteHighlights = 50;
    return p;
}

}  // namespace keladjust::bench

#endif
