#ifndef KELADJUST_TESTS_MODELS_VIBRANCEHUE_H
#define KELADJUST_TESTS_MODELS_VIBRANCEHUE_H

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "arithmetic/Angle.h"
#include "models/Scalars.h"

/// Vibrance, and the rotation about the grey axis.
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

// The bytes of a pixel in memory order.
inline Bytes hueModel(float angle, Bytes bytes) {
    const double x = angle * 3.141592653589793 / 180;
    const auto c = static_cast<float>(cosineOf(x));
    const auto s = static_cast<float>(sineOf(x));
    const float t = (1.0f - c) * 0.33333334f;
    const float u = std::sqrt(0.33333334f) * s;
    auto f = [&](std::size_t i) { return static_cast<float>(bytes[i]); };
    bytes[0] = clampByte(f(0) * ((1.0f - c) / 3.0f + c) + f(1) * (t - u) + f(2) * (t + u));
    bytes[1] = clampByte(f(1) * (t + c) + f(0) * (t + u) + f(2) * (t - u));
    bytes[2] = clampByte(f(1) * (t + u) + f(0) * (t - u) + f(2) * (t + c));
    return bytes;
}

}  // namespace keladjust::test

#endif
