#ifndef KELADJUST_TESTS_MODELS_LENS_DISTORTION_H
#define KELADJUST_TESTS_MODELS_LENS_DISTORTION_H

#include <keladjust/CxImage.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "models/RawPixels.h"
#include "models/lens/Coordinates.h"

namespace keladjust::test {

inline void distortionModel(CxImage& image, float setting) {
    if (setting == 0) return;
    const std::vector<std::uint8_t> source = pixelsOf(image);
    const float d = setting / 100.0f;
    const auto W = static_cast<float>(image.width);
    const auto H = static_cast<float>(image.height);
    const auto cx = static_cast<float>(image.width / 2);
    const auto cy = static_cast<float>(image.height / 2);
    const float R = std::sqrt(cy * cy + cx * cx);
    const float nW = d < 0 ? W : R;
    const float nH = d < 0 ? H : R;
    const float scale = d < 0 ? 1.0f : 1.0f / (d + 1.0f);
    const long long step = image.bpp / 8;
    for (long long i = 0; i < static_cast<long long>(image.width) * image.height; ++i) {
        const float ny = (static_cast<float>(i / image.width) - cy) / nH;
        const float nx = (static_cast<float>(i % image.width) - cx) / nW;
        const float len = std::sqrt(ny * ny + nx * nx);
        const float ux = len == 0 ? 0 : nx / len;
        const float uy = len == 0 ? 0 : ny / len;
        const float p = d > 0 ? len * len * len : len * len * len * len * len * len;
        const float nd = (p * d + len) * scale;
        const long long sx = shortOf(nd * ux * nW + cx);
        const long long sy = shortOf(nd * uy * nH + cy);
        for (long long c = 0; c < step; ++c) {
            const long long at = sy * step * image.width + sx + c;
            if (at >= 0 && at < static_cast<long long>(source.size())) {
                image.pBits[i * step + c] = source[static_cast<std::size_t>(at)];
            }
        }
    }
}

}  // namespace keladjust::test

#endif
