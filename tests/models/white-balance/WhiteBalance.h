#ifndef KELADJUST_TESTS_MODELS_WHITE_BALANCE_WHITEBALANCE_H
#define KELADJUST_TESTS_MODELS_WHITE_BALANCE_WHITEBALANCE_H

#include <keladjust/CxImage.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "models/RawPixels.h"

namespace keladjust::test {

inline void whiteBalanceModel(CxImage& image, float amount) {
    if (amount == 0) return;
    const auto forEachPixel = [&](auto body) {
        for (int y = 0; y < static_cast<int>(image.height); ++y) {
            for (int x = 0; x < static_cast<int>(image.width); ++x) {
                _tagMyRGBQUAD p = image.GetPixelColor(x, y, true);
                body(p);
                image.SetPixelColor(x, y, p);
            }
        }
    };
    const std::vector<std::uint8_t> original = pixelsOf(image);
    const auto restore = [&] { std::copy(original.begin(), original.end(), image.pBits); };
    int histogram[768] = {};
    forEachPixel([&](_tagMyRGBQUAD& p) { ++histogram[p.blue + p.green + p.red]; });
    restore();  // reading and writing 16 bits changes them
    const float wanted = static_cast<float>(image.width * image.height) * (amount / 500.0f);
    int threshold = 767;
    float counted = 0;
    for (; threshold >= 0; --threshold) {
        counted += static_cast<float>(histogram[threshold]);
        if (counted > wanted) break;
    }
    threshold = std::max(threshold, 0);
    long long total[3] = {};
    long long count = 0;
    forEachPixel([&](_tagMyRGBQUAD& p) {
        if (p.blue + p.green + p.red <= threshold) return;
        total[0] += p.red;
        total[1] += p.green;
        total[2] += p.blue;
        ++count;
    });
    restore();
    const auto balanced = [&](int channel, long long sum) {
        const long long average = sum == 0 ? 0 : sum / count;
        const long long value = average != 0 ? channel * 255 / average : channel;
        return static_cast<std::uint8_t>(std::min<long long>(value, 255));
    };
    forEachPixel([&](_tagMyRGBQUAD& p) {
        p.red = balanced(p.red, total[0]);
        p.green = balanced(p.green, total[1]);
        p.blue = balanced(p.blue, total[2]);
    });
}

}  // namespace keladjust::test

#endif
