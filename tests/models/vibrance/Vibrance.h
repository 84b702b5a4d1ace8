#ifndef KELADJUST_TESTS_MODELS_VIBRANCE_VIBRANCE_H
#define KELADJUST_TESTS_MODELS_VIBRANCE_VIBRANCE_H

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "models/Scalars.h"

namespace keladjust::test {

inline Bytes vibranceModel(float vibrance, Bytes in) {
    const float a = vibrance / 100.0f * 0.8f;
    const int lightness = (std::min({in[0], in[1], in[2]}) + std::max({in[0], in[1], in[2]})) >> 1;
    int smallest = 255;
    int largest = 0;
    for (const int c : in) {
        const int d = std::clamp(c - lightness, 0, 255);
        smallest = std::min(smallest, d);
        largest = std::max(largest, d);
    }
    const int m = (smallest + largest) >> 1;
    const int n = m == 0 ? 0 : 256 - m;
    const auto k = static_cast<long long>(256 + std::trunc(static_cast<float>(n) * a));
    Bytes out{};
    for (std::size_t i = 0; i < 3; ++i) {
        out[i] = static_cast<int>(
            std::clamp<long long>((in[i] * k + lightness * (256 - k)) >> 8, 0, 255));
    }
    return out;
}

}  // namespace keladjust::test

#endif
