#ifndef KELADJUST_TESTS_MODELS_DENOISE_FLOWGRAPH_H
#define KELADJUST_TESTS_MODELS_DENOISE_FLOWGRAPH_H

#include <keladjust/CxImage.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "models/Scalars.h"
#include "models/denoise/Denoise.h"
#include "models/temperature/Temperature.h"

/// Noise reduction by the flow graph of the fast transform, one number at a time: the order of
/// operations that results are kept by, to the byte. That it is the transform, the direct one
/// shows.
namespace keladjust::test {

using Line = std::array<float, 8>;

/// Coefficients without their scales.
inline Line flowForward(const Line& x) {
    const float cosPi4 = 0.70710678f;
    const float s07 = x[0] + x[7], s16 = x[1] + x[6], s25 = x[2] + x[5], s34 = x[3] + x[4];
    const float d07 = x[0] - x[7], d16 = x[1] - x[6], d25 = x[2] - x[5], d34 = x[3] - x[4];
    const float evenTurn = ((s16 - s25) + (s07 - s34)) * cosPi4;
    const float low = d34 + d25, middle = (d25 + d16) * cosPi4, high = d16 + d07;
    const float turn = (low - high) * 0.38268343f;
    const float turnedLow = low * 0.54119610f + turn, turnedHigh = high * 1.30656296f + turn;
    const float plus = d07 + middle, minus = d07 - middle;
    return {(s07 + s34) + (s16 + s25), plus + turnedHigh,         (s07 - s34) + evenTurn,
            minus - turnedLow,         (s07 + s34) - (s16 + s25), minus + turnedLow,
            (s07 - s34) - evenTurn,    plus - turnedHigh};
}

/// The transpose.
inline Line flowBack(const Line& x) {
    const float cosPi4 = 0.70710678f;
    const float outer = x[0] + x[4], inner = x[0] - x[4];
    const float innerTilt = (x[2] - x[6]) * cosPi4, outerTilt = (x[2] + x[6]) + innerTilt;
    const float s07 = outer + outerTilt, s34 = outer - outerTilt;
    const float s16 = inner + innerTilt, s25 = inner - innerTilt;
    const float minus = x[5] + x[3], turnedLow = x[5] - x[3];
    const float plus = x[1] + x[7], turnedHigh = x[1] - x[7];
    const float middle = (plus - minus) * cosPi4;
    const float turn = (turnedLow + turnedHigh) * 0.38268343f;
    const float low = turnedLow * 0.54119610f + turn, high = turnedHigh * 1.30656296f - turn;
    const float d34 = low, d25 = low + middle, d16 = middle + high, d07 = (plus + minus) + high;
    return {s07 + d07, s16 + d16, s25 + d25, s34 + d34, s34 - d34, s25 - d25, s16 - d16, s07 - d07};
}

/// The filtered values of a plane with unpadded rows; the last 8 rows and columns mean nothing.
inline std::vector<std::uint8_t> flowGraphModel(const std::vector<std::uint8_t>& plane,
                                                std::size_t width, std::size_t height,
                                                float sigma) {
    constexpr float scales[8] = {1.0f, 0.72095982f, 0.76536686f, 0.85043009f,
                                 1.0f, 1.27275858f, 1.84775907f, 3.62450979f};
    constexpr float squaredScales[8] = {1.0f, 0.51978306f, 0.58578644f, 0.72323135f,
                                        1.0f, 1.61991440f, 3.41421356f, 13.13707118f};
    const auto lastScale = static_cast<float>(0.3535534 * 0.3535534 * 0.3535534 * 0.3535534);
    std::vector<std::uint8_t> result(plane.size());
    if (width <= 8 || height <= 8) return result;
    const std::size_t columns = width - 8;
    const std::size_t rows = height - 8;

    // Along rows, wherever a block may begin.
    std::vector<Line> transforms(height * columns);
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < columns; ++x) {
            Line samples;
            for (std::size_t i = 0; i < 8; ++i) samples[i] = plane[y * width + x + i];
            Line& out = transforms[y * columns + x] = flowForward(samples);
            for (std::size_t u = 0; u < 8; ++u) out[u] *= scales[u];
        }
    }
    // Down columns and back; blocks add up from the top.
    std::vector<Line> sums(height * columns);
    for (std::size_t y = 0; y < rows; ++y) {
        for (std::size_t x = 0; x < columns; ++x) {
            for (std::size_t u = 0; u < 8; ++u) {
                Line column;
                for (std::size_t k = 0; k < 8; ++k)
                    column[k] = transforms[(y + k) * columns + x][u];
                column = flowForward(column);
                for (std::size_t k = 0; k < 8; ++k) {
                    const float threshold = 8.0f * (3.0f * sigma) / scales[k];
                    column[k] = std::fabs(column[k]) < threshold ? 0 : column[k] * squaredScales[k];
                }
                column = flowBack(column);
                for (std::size_t k = 0; k < 8; ++k) sums[(y + k) * columns + x][u] += column[k];
            }
        }
    }
    // Back along rows; a pixel takes from the blocks left of it, the leftmost first.
    for (std::size_t y = 0; y < rows; ++y) {
        std::vector<Line> parts(columns);
        for (std::size_t x = 0; x < columns; ++x) {
            Line scaled = sums[y * columns + x];
            for (std::size_t u = 0; u < 8; ++u) scaled[u] *= scales[u] * lastScale;
            parts[x] = flowBack(scaled);
        }
        for (std::size_t x = 0; x < columns; ++x) {
            float sum = 0;
            for (std::size_t n = std::min<std::size_t>(x, 7) + 1; n-- > 0;) sum += parts[x - n][n];
            const auto blocks = [](std::size_t at) {
                return static_cast<float>(std::min<std::size_t>(at + 1, 8));
            };
            result[y * width + x] =
                static_cast<std::uint8_t>(clampByte(sum / (blocks(x) * blocks(y))));
        }
    }
    return result;
}

/// The stages: the filter on the planes of red, green and blue, or of hue, saturation and
/// lightness. Grey pictures, and pairs of depth and format without a meaning, stay as they are.
inline void denoiseModel(CxImage& image, float setting, bool hsl) {
    const unsigned bytes = image.bytesPerPixel;
    const bool isRgb = image.format == IMAGE_FORMAT_RGB || image.format == IMAGE_FORMAT_BGR;
    const bool isRgba = image.format == IMAGE_FORMAT_RGBA || image.format == IMAGE_FORMAT_BGRA;
    if (setting == 0 || !((isRgb && (bytes == 2 || bytes == 3)) || (isRgba && bytes == 4))) return;
    const std::size_t width = image.width;
    const std::size_t height = image.height;
    const std::size_t stride = (width + 3) / 4 * 4;
    const auto pixel = [&](std::size_t x, std::size_t y) {
        return image.GetPixelColor(static_cast<int>(x), static_cast<int>(y), true);
    };

    std::vector<std::uint8_t> planes[3];
    for (std::size_t i = 0; i < 3; ++i) {
        std::vector<std::uint8_t>& plane = planes[i];
        plane.resize(stride * height);
        std::vector<std::uint8_t> tight;
        for (std::size_t y = 0; y < height; ++y) {
            for (std::size_t x = 0; x < width; ++x) {
                const _tagMyRGBQUAD p = pixel(x, y);
                const Bytes rgb{p.red, p.green, p.blue};
                tight.push_back(static_cast<std::uint8_t>((hsl ? byteHslOf(rgb) : rgb)[i]));
                plane[y * stride + x] = tight.back();
            }
        }
        writeInPlaceModel(plane, width, height, stride,
                          flowGraphModel(tight, width, height, setting * 0.15f));
    }
    for (std::size_t y = 0; y < height; ++y) {
        for (std::size_t x = 0; x < width; ++x) {
            const std::size_t at = y * stride + x;
            const Bytes joined{planes[0][at], planes[1][at], planes[2][at]};
            const Bytes rgb = hsl ? byteRgbOf(joined) : joined;
            image.SetPixelColor(
                static_cast<int>(x), static_cast<int>(y),
                {static_cast<std::uint8_t>(rgb[2]), static_cast<std::uint8_t>(rgb[1]),
                 static_cast<std::uint8_t>(rgb[0]), pixel(x, y).alpha});
        }
    }
}

}  // namespace keladjust::test

#endif
