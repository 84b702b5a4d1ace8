#ifndef KELADJUST_TESTS_MODELS_GPU_RANGEVIGNETTE_H
#define KELADJUST_TESTS_MODELS_GPU_RANGEVIGNETTE_H

#include <keladjust/keladjust.h>

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "models/Scalars.h"
#include "models/colour-ranges/ColourRanges.h"
#include "models/gpu/Texture.h"

/// What the range program makes of one texel.
namespace keladjust::test::gpu {

inline Floats sharpened(const _AdjustParam& p, const Texture& picture, int x, int y) {
    Floats out = picture.at(x, y);
    for (std::size_t c = 0; c < 3; ++c) {
        const float around = picture.at(x - 1, y)[c] + picture.at(x + 1, y)[c] +
                             picture.at(x, y - 1)[c] + picture.at(x, y + 1)[c];
        out[c] = clampUnit(out[c] + (4.0f * out[c] - around) * (p.sharpen / 255.0f));
    }
    return out;
}

inline Floats ranges(const _AdjustParam& p, Floats c) {
    for (const _AdjustColourRange& r : p.range) {
        c = rangeModel({r.minDegree, r.maxDegree, r.hue, r.saturation, r.brightness}, c, clampUnit,
                       MixedWith::colour);
    }
    return c;
}

inline float vignetteMask(const _AdjustParam& p, int width, int height, int x, int y) {
    const auto cx = static_cast<float>(width / 2);
    const auto cy = static_cast<float>(height / 2);
    const float dx = std::fabs(static_cast<float>(x) + 0.5f - cx);
    const float dy = std::fabs(static_cast<float>(y) + 0.5f - cy);

    float a = 0.2f * cx * (1.0f + 4.0f * (p.vignetteSize / 100.0f));
    float b = 0.2f * cy * (1.0f + 4.0f * (p.vignetteSize / 100.0f));
    const float shortening = std::max(std::fabs(a - b) * (p.vignetteRoundness / 100.0f), 0.0f);
    if (a != b) (a > b ? a : b) -= shortening;
    const float band = p.vignetteFeather / 100.0f * (std::max(a, b) / 2.0f) + 3.0f;

    const auto square = [](float v) { return v * v; };
    const auto beyond = [&](float w, float h) { return square(dx / w) + square(dy / h) - 1.0f; };
    if (beyond(a, b) <= 0) return 1.0f;
    if (beyond(a + band, b + band) >= 0) return 0.0f;
    const float q = square(dy / (dx + 0.000001f));
    const float xx = 1.0f / (q / square(b + band) + 1.0f / square(a + band));
    const float depth = band - (std::sqrt(xx + q * xx) - std::hypot(dx, dy));
    return 0.5f * (1.0f + std::cos(depth * 3.14159265358979323846f / band));
}

inline Floats vignette(const _AdjustParam& p, float mask, Floats colour) {
    const float am = p.vignetteAmount / 100.0f;
    const float hi = (2.0f * (p.vignetteHighlights / 100.0f) - 1.0f) * std::fabs(am);
    const float gain = std::exp2(p.vignetteExposure / 100.0f);
    for (float& c : colour) c = c * (mask * gain) + (1.0f + am) * c * (1.0f - mask);
    const float mean = (colour[0] + colour[1] + colour[2]) / 3.0f;
    const float k = (1.0f - mask) * (1.0f - mask) * hi * (1.0f - mean);
    for (float& c : colour) c = clampUnit(mask < 1 ? 1.0f - (1.0f - k * c) * (1.0f - c) : c);
    return colour;
}

/// The colour ranges and the vignette, which the combined program has too.
inline Floats rangesAndVignette(const _AdjustParam& p, const Texture& picture, int x, int y,
                                Floats c) {
    c = ranges(p, c);
    if (p.vignetteAmount == 0 && p.vignetteExposure == 0) return c;
    return vignette(p, vignetteMask(p, picture.width(), picture.height(), x, y), c);
}

inline Floats rangeProgram(const _AdjustParam& p, const Texture& picture, int x, int y) {
    return rangesAndVignette(p, picture, x, y,
                             p.sharpen != 0 ? sharpened(p, picture, x, y) : picture.at(x, y));
}

}  // namespace keladjust::test::gpu

#endif
