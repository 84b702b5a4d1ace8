#ifndef KELADJUST_TESTS_MODELS_GPU_ADJUSTMENT_H
#define KELADJUST_TESTS_MODELS_GPU_ADJUSTMENT_H

#include <keladjust/keladjust.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "models/Scalars.h"
#include "models/saturation/Saturation.h"
#include "models/temperature/Temperature.h"
#include "models/tonal/TonalRanges.h"

/// What the adjustment program makes of one colour. Stages that it shares with the colour table are
/// the table's models.
namespace keladjust::test::gpu {

template <class Function>
Floats eachUnit(Floats colour, Function function) {
    for (float& c : colour) c = clampUnit(function(c));
    return colour;
}

inline float middle(Floats c) {
    return (std::min({c[0], c[1], c[2]}) + std::max({c[0], c[1], c[2]})) / 2.0f;
}

// Not clamped.
inline Floats tint(float setting, Floats c) {
    const float v =
        setting * 100.0f / 225.0f / 255.0f * (0.3f * c[0] + 0.59f * c[1] + 0.11f * c[2]);
    return {c[0] + v, c[1] - v, c[2] + v};
}

inline Floats brightness(float setting, Floats colour) {
    const float f =
        setting > 0 ? 1.0f + setting / 100.0f : (1.0f - 1.0f / (0.99f + setting / 253.0f)) * 0.6f;
    return eachUnit(colour, [f](float c) { return f > 0 ? c * f : c + f; });
}

inline Floats contrast(float setting, Floats colour) {
    const float strength = setting > 0 ? 1.0f / (1.0f - setting / 255.0f) - 1.0f : setting / 255.0f;
    const bool infinite = setting == 255;
    int low = infinite ? 0 : static_cast<int>(strength * 100.0f / 2.0f);
    int high = 255 - low;
    if (high < low || infinite) {
        low = 120;
        high = 127;
    } else if (low < -127) {
        low = -120;
    }
    const auto unit = [](int level) { return static_cast<float>(level) / 255.0f; };
    const float scale = unit(255 - 2 * std::abs(low));
    return eachUnit(colour, [&](float c) {
        if (low <= 0) return c * scale - unit(low);
        return c <= unit(low) ? 0.0f : c > unit(high) ? 1.0f : (c - unit(low)) / scale;
    });
}

inline Floats vibrance(float setting, Floats colour) {
    const float luma = middle(colour);
    const float mask = middle(eachUnit(colour, [luma](float c) { return c - luma; }));
    const float radio = 1.0f + setting / 100.0f * 0.8f * (1.0f - mask);
    return eachUnit(colour, [&](float c) { return c * radio + luma * (1.0f - radio); });
}

inline Floats adjustment(const _AdjustParam& p, Floats c) {
    const auto unit = [](float v) { return v; };
    if (p.temperature != 11500) c = temperatureTableModel(p.temperature, c);
    if (p.tint != 0) c = tint(p.tint, c);
    if (p.exposure != 0) {
        const float gain = std::exp2(p.exposure / 50.0f * 0.6f);
        c = eachUnit(c, [gain](float v) { return v * gain; });
    }
    if (p.brightness != 0) c = brightness(p.brightness, c);
    if (p.contrast != 0) c = contrast(p.contrast, c);
    if (p.vibrance != 0) c = vibrance(p.vibrance, c);
    if (p.saturation != 0) c = eachUnit(saturationModel(p.saturation, c, 1.0f), unit);
    if (p.highlights != 0) c = tonalTableModel(highlights, p.highlights, c);
    if (p.shadows != 0) c = tonalTableModel(shadows, p.shadows, c);
    if (p.whites != 0) c = tonalTableModel(whites, p.whites, c);
    if (p.blacks != 0) c = tonalTableModel(blacks, p.blacks, c);
    return c;
}

}  // namespace keladjust::test::gpu

#endif
