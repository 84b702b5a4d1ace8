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

}  // namespace keladjust::bench

#endif
