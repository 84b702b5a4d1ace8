#ifndef KELADJUST_TESTS_MODELS_GRAIN_GRAIN_H
#define KELADJUST_TESTS_MODELS_GRAIN_GRAIN_H

#include <keladjust/CxImage.h>

#include <cstddef>
#include <cstdint>

#include "models/RawPixels.h"
#include "models/Scalars.h"

namespace keladjust::test {

inline void grainModel(CxImage& image, float amount, float size) {
    if (amount == 0 || size == 0) return;
    std::uint32_t state = 0;
    const auto draw = [&] {
        state = state * 214013 + 2531011;
        return static_cast<int>(state >> 16 & 0x7FFF);
    };
    const float s = size / 100.0f * (amount / 100.0f);
    forEachRawPixel(image, [&](std::uint8_t* pixel, std::size_t, std::size_t channels) {
        draw();
        int sum = 0;
        for (int i = 0; i < 4; ++i) sum += draw();
        const float z = static_cast<float>(sum * 5.28596089837e-5 - 3.46410161514);
        const float n = z * s * 127.0f;
        for (std::size_t c = 0; c < channels; ++c) {
            pixel[c] = static_cast<std::uint8_t>(clampByte(static_cast<float>(pixel[c]) + n));
        }
    });
}

}  // namespace keladjust::test

#endif
