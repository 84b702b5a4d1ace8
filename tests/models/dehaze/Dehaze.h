#ifndef KELADJUST_TESTS_MODELS_DEHAZE_DEHAZE_H
#define KELADJUST_TESTS_MODELS_DEHAZE_DEHAZE_H

#include <keladjust/CxImage.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "models/RawPixels.h"
#include "models/Scalars.h"

namespace keladjust::test {

/// Means of 15 x 15 pixels, of those that the picture has, from sums over all that is above and
/// left.
inline std::vector<std::uint8_t> meanModel(const std::vector<std::uint8_t>& map, int width,
                                           int height) {
    const auto at = [width](int x, int y) { return static_cast<std::size_t>(y * (width + 1) + x); };
    std::vector<unsigned> sums(at(width, height) + 1);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            sums[at(x + 1, y + 1)] = sums[at(x, y + 1)] + sums[at(x + 1, y)] - sums[at(x, y)] +
                                     map[static_cast<std::size_t>(y * width + x)];
        }
    }
    std::vector<std::uint8_t> means;
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int left = std::max(x - 7, 0), right = std::min(x + 8, width);
            const int top = std::max(y - 7, 0), bottom = std::min(y + 8, height);
            const unsigned sum = sums[at(right, bottom)] - sums[at(left, bottom)] -
                                 sums[at(right, top)] + sums[at(left, top)];
            means.push_back(static_cast<std::uint8_t>(
                sum / static_cast<unsigned>((right - left) * (bottom - top))));
        }
    }
    return means;
}

inline void dehazeModel(CxImage& image, float setting) {
    if (setting == 0) return;
    if (!(setting > 0)) {
        const float t = setting / 100.0f;
        mapRawPixels(image, [&](int in) {
            return clampByte((static_cast<float>(in) - t * 255.0f) / (1.0f - t));
        });
        return;
    }
    std::vector<std::uint8_t> minimum;
    int brightest = 0;
    unsigned long long sum = 0;
    forEachRawPixel(image, [&](std::uint8_t* pixel, std::size_t, std::size_t channels) {
        if (channels == 0) return;
        minimum.push_back(*std::min_element(pixel, pixel + channels));
        brightest = std::max<int>(brightest, *std::max_element(pixel, pixel + channels));
        sum += minimum.back();
    });
    if (minimum.empty()) return;
    const std::vector<std::uint8_t> mean =
        meanModel(minimum, static_cast<int>(image.width), static_cast<int>(image.height));
    const float m = static_cast<float>(sum / minimum.size());
    float k = m * (setting / 100.0f * 1.6f) / 255.0f;
    if (k > 0.9f) k = 0.9f;
    const float light =
        static_cast<float>(*std::max_element(mean.begin(), mean.end()) + brightest) * 0.5f;
    forEachRawPixel(image, [&](std::uint8_t* pixel, std::size_t i, std::size_t channels) {
        const int veil = std::min<int>(minimum[i], clampByte(static_cast<float>(mean[i]) * k));
        for (std::size_t c = 0; c < channels; ++c) {
            pixel[c] = static_cast<std::uint8_t>(clampByte(
                static_cast<float>(pixel[c] - veil) / (1.0f - static_cast<float>(veil) / light)));
        }
    });
}

}  // namespace keladjust::test

#endif
