#ifndef KELADJUST_TESTS_MODELS_SHARPEN_SHARPEN_H
#define KELADJUST_TESTS_MODELS_SHARPEN_SHARPEN_H

#include <keladjust/CxImage.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "models/RawPixels.h"
#include "models/Scalars.h"

namespace keladjust::test {

/// At 8, 24 and 32 bits.
inline void sharpenModel(CxImage& image, float setting) {
    if (setting == 0 || image.height < 3) return;
    const std::vector<std::uint8_t> source = pixelsOf(image);
    const std::ptrdiff_t step = image.bytesPerPixel;
    const auto width = static_cast<std::ptrdiff_t>(image.width);
    const auto height = static_cast<std::ptrdiff_t>(image.height);
    const float k = setting / 255.0f;
    const auto at = [&](std::ptrdiff_t x, std::ptrdiff_t y, std::ptrdiff_t c) -> int {
        // Left of a row lies the end of the row above.
        if (x < 0)
            return source[static_cast<std::size_t>((y - 1) * image.effWidth + (width + x) * step +
                                                   c)];
        return source[static_cast<std::size_t>(y * image.effWidth + x * step + c)];
    };
    for (std::ptrdiff_t y = 1; y < height - 1; ++y) {
        for (std::ptrdiff_t x = 1; x < width - 1; ++x) {
            for (std::ptrdiff_t c = 0; c < std::min<std::ptrdiff_t>(3, step); ++c) {
                const int centre = at(x - 1, y, c);
                const int d = 4 * centre - at(x - 2, y, c) - at(x, y, c) - at(x - 1, y - 1, c) -
                              at(x - 1, y + 1, c);
                image.pBits[y * image.effWidth + x * step + c] = static_cast<std::uint8_t>(
                    clampByte(static_cast<float>(d) * k + static_cast<float>(centre)));
            }
        }
    }
}

}  // namespace keladjust::test

#endif
