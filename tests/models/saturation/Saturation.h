#ifndef KELADJUST_TESTS_MODELS_SATURATION_SATURATION_H
#define KELADJUST_TESTS_MODELS_SATURATION_SATURATION_H

#include <algorithm>

#include "models/Scalars.h"

/// Global saturation, of bytes and in tables.
namespace keladjust::test {

// One pixel on a scale of `scale`, unclamped.
inline Floats saturationModel(float setting, Floats in, float scale) {
    const float s = setting / 100.0f;
    const float hi = std::max({in[0], in[1], in[2]});
    const float lo = std::min({in[0], in[1], in[2]});
    const float delta = (hi - lo) / scale;
    if (delta == 0) return in;
    const float sum = (hi + lo) / scale;
    const float sat = sum * 0.5f < 0.5f ? delta / sum : delta / (2.0f - sum);
    const float lightness = sum * 0.5f * scale;
    for (float& c : in) {
        if (s >= 0) {
            const float f = 1.0f / (sat + s >= 1 ? sat : 1.0f - s) - 1.0f;
            c = c + (c - lightness) * f;
        } else {
            c = lightness + (c - lightness) * (1.0f + s);
        }
    }
    return in;
}

inline Bytes saturationModel(float setting, Bytes in) {
    const Floats out = saturationModel(
        setting,
        Floats{static_cast<float>(in[0]), static_cast<float>(in[1]), static_cast<float>(in[2])},
        255.0f);
    return {clampByte(out[0]), clampByte(out[1]), clampByte(out[2])};
}

/// Greys stay as they are, outside 0..1, too, where NaN may be one of the channels.
inline Floats saturationTableModel(float setting, Floats in) {
    if (std::max({in[0], in[1], in[2]}) - std::min({in[0], in[1], in[2]}) == 0) return in;
    const Floats out = saturationModel(setting, in, 1.0f);
    return {clampUnit(out[0]), clampUnit(out[1]), clampUnit(out[2])};
}

}  // namespace keladjust::test

#endif
