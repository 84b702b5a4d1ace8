#ifndef KELADJUST_TESTS_MODELS_BLUR_CLARITY_H
#define KELADJUST_TESTS_MODELS_BLUR_CLARITY_H

#include <keladjust/CxImage.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "models/RawPixels.h"
#include "models/Scalars.h"
#include "models/blur/StackBlur.h"

namespace keladjust::test {

inline void clarityModel(CxImage& image, float setting) {
    if (setting == 0) return;
    const std::vector<std::uint8_t> sharp = pixelsOf(image);
    const double strength = std::fabs(static_cast<double>(setting));
    if (strength > 2 && strength < 254) {
        blurImageModel(image, setting > 0 ? static_cast<int>(setting * 0.5f) : 2);
    }
    const float factor = setting / 200.0f;
    forEachRawPixel(image, [&](std::uint8_t* pixel, std::size_t, std::size_t channels) {
        for (std::size_t c = 0; c < channels; ++c) {
            const float s = sharp[static_cast<std::size_t>(pixel - image.pBits) + c];
            const float b = pixel[c];
            pixel[c] = static_cast<std::uint8_t>(clampByte((s - b) * factor + s));
        }
    });
}

}  // namespace keladjust::test

#endif
