#ifndef KELADJUST_TESTS_MODELS_RAWPIXELS_H
#define KELADJUST_TESTS_MODELS_RAWPIXELS_H

#include <keladjust/CxImage.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace keladjust::test {

/// A copy of the buffer.
inline std::vector<std::uint8_t> pixelsOf(const CxImage& image) {
    return {image.pBits, image.pBits + image.size};
}

/// Calls `body(pixel, i, channels)` for pixel after pixel along the buffer, ignoring the padding of
/// rows: `channels` bytes from `pixel` on may change.
template <class Body>
void forEachRawPixel(CxImage& image, Body body) {
    const std::size_t step = image.bpp / 8;
    const std::size_t count = std::size_t{image.width} * image.height;
    for (std::size_t i = 0; i < count; ++i) {
        body(image.pBits + i * step, i, std::min<std::size_t>(3, step));
    }
}

/// `map(byte)` for every channel byte along the buffer.
template <class Map>
void mapRawPixels(CxImage& image, Map map) {
    forEachRawPixel(image, [&](std::uint8_t* pixel, std::size_t, std::size_t channels) {
        for (std::size_t c = 0; c < channels; ++c) {
            pixel[c] = static_cast<std::uint8_t>(map(pixel[c]));
        }
    });
}

}  // namespace keladjust::test

#endif
