#ifndef KELADJUST_TESTS_MODELS_GPU_LENS_H
#define KELADJUST_TESTS_MODELS_GPU_LENS_H

#include <keladjust/keladjust.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

#include "models/gpu/Texture.h"

/// What the lens program makes of one texel. Places are from the middle of the picture, in sides.
namespace keladjust::test::gpu {

struct Place {
    float x, y;
};

/// `place`, moved along its own direction to the length that `reach` gives for its own.
template <class Reach>
Place moved(Place place, Reach reach) {
    const float length = std::sqrt(place.x * place.x + place.y * place.y);
    if (length == 0) return {0, 0};
    const float factor = reach(length) / length;
    return {place.x * factor, place.y * factor};
}

inline Place distorted(float d, Place place) {
    if (d == 0) return place;
    const float unit = d < 0 ? 1.0f : std::sqrt(0.5f);
    return moved(place, [&](float length) {
        const float n = length / unit;
        return unit * (n + d * std::pow(n, d > 0 ? 3.0f : 6.0f)) / (d > 0 ? d + 1.0f : 1.0f);
    });
}

inline Place fringed(float f, float stretch, float margin, Place place) {
    const Place to = moved(place, [&](float length) {
        return stretch * (length + f * std::pow(length, 10.0f)) * (1.0f + f * 0.03f);
    });
    const auto inside = [&](float v) {
        return std::min(std::max(v + 0.5f, 0.0f), 1.0f - margin) - 0.5f;
    };
    return {inside(to.x), inside(to.y)};
}

/// With alpha.
inline std::array<float, 4> lens(const _AdjustParam& p, const Texture& picture, int x, int y) {
    const float d = p.distortion / 100.0f;
    const float f = p.fringing / 100.0f;
    const float off = f * 0.03f;
    const auto width = static_cast<float>(picture.width());
    const auto height = static_cast<float>(picture.height());
    const Place here{(static_cast<float>(x) + 0.5f) / width - 0.5f,
                     (static_cast<float>(y) + 0.5f) / height - 0.5f};
    const auto texel = [&](Place place) {
        const Place from = distorted(d, place);
        return picture.texel(static_cast<int>(std::floor((from.x + 0.5f) * width)),
                             static_cast<int>(std::floor((from.y + 0.5f) * height)));
    };
    std::array<float, 4> out = texel(here);
    if (f == 0) return out;
    const float margin = (f > 0 ? 2.0f : 1.0f) / std::max(width, height);
    const float stretch[] = {1.0f + off, 1.0f, 1.0f - off};
    for (std::size_t c = 0; c < 3; ++c) {
        out[c] = texel(fringed(f, stretch[c], margin, here))[c];
    }
    return out;
}

}  // namespace keladjust::test::gpu

#endif
