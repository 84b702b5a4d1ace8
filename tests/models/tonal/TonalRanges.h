#ifndef KELADJUST_TESTS_MODELS_TONAL_TONALRANGES_H
#define KELADJUST_TESTS_MODELS_TONAL_TONALRANGES_H

#include <keladjust/keladjust.h>

#include <algorithm>
#include <cstddef>

#include "models/Scalars.h"

/// Highlights, shadows, whites and blacks.
namespace keladjust::test {

inline float lift(float c, float k, float scale) {
    return scale - (scale - k * c) * (scale - c) / scale;
}

struct Tonal {
    CxImage* (*image)(CxImage*, float);
    float* (*table)(float*, unsigned long, int, float);
    bool dark;       // weighted by 1 - M rather than M
    bool doubled;    // a positive lift is done twice
    bool wraps;      // low byte rather than clamp
    float positive;  // strength of positive and negative settings
    float negative;
};
inline constexpr Tonal highlights{hdrHighlight, lut3d_hdrHighlight, false, false, true, 1.0f, 1.0f};
inline constexpr Tonal shadows{hdrShadow, lut3d_hdrShadow, true, false, true, 2.0f, 0.5f};
inline constexpr Tonal whites{hdrWhiteLevel, lut3d_hdrWhiteLevel, false, true, false, 1.0f, 1.0f};
inline constexpr Tonal blacks{hdrBlackLevel, lut3d_hdrBlackLevel, true, false, false, 0.5f, 2.0f};

inline float coefficient(const Tonal& tonal, float setting, float largest, float scale) {
    const float a = setting / 100.0f * (setting > 0 ? tonal.positive : tonal.negative);
    return (tonal.dark ? 1.0f - largest / scale : largest / scale) * a;
}

inline Bytes tonalModel(const Tonal& tonal, float setting, Bytes in) {
    const float k =
        coefficient(tonal, setting, static_cast<float>(std::max({in[0], in[1], in[2]})), 255.0f);
    Bytes out{};
    for (std::size_t c = 0; c < 3; ++c) {
        float v = lift(static_cast<float>(in[c]), k, 255.0f);
        if (tonal.doubled && k > 0) v = lift(v, k, 255.0f);
        out[c] = tonal.wraps ? wholeOf(v) & 255 : clampByte(v);
    }
    return out;
}

inline Floats tonalTableModel(const Tonal& tonal, float setting, Floats in) {
    const float k = coefficient(tonal, setting, std::max({in[0], in[1], in[2]}), 1.0f);
    Floats out{};
    for (std::size_t c = 0; c < 3; ++c) {
        float v = lift(in[c], k, 1.0f);
        if (tonal.doubled && k > 0) v = lift(v, k, 1.0f);
        out[c] = clampUnit(v);
    }
    return out;
}

}  // namespace keladjust::test

#endif
