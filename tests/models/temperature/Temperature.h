#ifndef KELADJUST_TESTS_MODELS_TEMPERATURE_TEMPERATURE_H
#define KELADJUST_TESTS_MODELS_TEMPERATURE_TEMPERATURE_H

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "models/Scalars.h"
#include "models/temperature/BlackBody.h"

namespace keladjust::test {

inline double kelvinOf(double setting) {
    return setting < 11500 ? 26000 - setting : std::max(18100 - setting, 1700.0);
}

inline float strengthOf(double setting) {
    const float d = 1.0f - static_cast<float>(kelvinOf(setting)) / 11500.0f;
    return std::fabs(d) * 1.7f;
}

// 8-bit HSL, written for this test: hue, saturation, lightness.
inline Bytes byteHslOf(Bytes rgb) {
    const int lo = std::min({rgb[0], rgb[1], rgb[2]});
    const int hi = std::max({rgb[0], rgb[1], rgb[2]});
    const int sum = hi + lo;
    const int d = hi - lo;
    const int l = (sum + 1) * 255 / 510;
    if (d == 0) return {170, 0, l};
    const int s = l <= 127 ? (d * 255 + sum / 2) / sum : (d * 255 + (510 - sum) / 2) / (510 - sum);
    const auto part = [&](int c) { return ((hi - c) * 42 + d / 2) / d; };
    const int h = rgb[0] == hi   ? part(rgb[2]) - part(rgb[1])
                  : rgb[1] == hi ? 85 + part(rgb[0]) - part(rgb[2])
                                 : 170 + part(rgb[1]) - part(rgb[0]);
    return {h & 255, s, l};
}

inline Bytes byteRgbOf(Bytes hsl) {
    const float h = static_cast<float>(hsl[0]) * 360.0f / 255.0f;
    const float s = static_cast<float>(hsl[1]) / 255.0f;
    const float l = static_cast<float>(hsl[2]) / 255.0f;
    const float m2 = s == 0 ? l : l <= 0.5f ? l * (1.0f + s) : l + s - l * s;
    const float m1 = s == 0 ? l : 2.0f * l - m2;
    const auto channel = [&](float hue) {
        if (s == 0) return static_cast<int>(l * 255.0f);
        if (hue > 360)
            hue -= 360.0f;
        else if (hue < 0)
            hue += 360.0f;
        const float v = hue < 60    ? m1 + (m2 - m1) * hue / 60.0f
                        : hue < 180 ? m2
                        : hue < 240 ? m1 + (m2 - m1) * (240.0f - hue) / 60.0f
                                    : m1;
        return static_cast<int>(v * 255.0f);
    };
    return {channel(h + 120.0f), channel(h), channel(h - 120.0f)};
}

inline Bytes temperatureModel(double setting, Bytes in) {
    const BlackBody body = blackBody(kelvinOf(setting));
    const float t = strengthOf(setting);
    Bytes blended{};
    for (std::size_t c = 0; c < 3; ++c) {
        const auto p = static_cast<float>(in[c]);
        const auto colour = static_cast<float>(static_cast<int>(body.rgb[c] * 255.0));
        const float m = std::trunc((p / 255.0f) * (colour / 255.0f) * 255.0f);
        blended[c] = clampByte(p * (1.0f - t) + m * t);
    }
    Bytes hsl = byteHslOf(blended);
    const auto [lo, hi] = std::minmax({in[0], in[1], in[2]});
    hsl[2] = (lo + hi) >> 1;
    return byteRgbOf(hsl);
}

inline Floats temperatureTableModel(double setting, Floats in) {
    const BlackBody body = blackBody(kelvinOf(setting));
    const float t = strengthOf(setting);
    Floats c{};
    for (std::size_t i = 0; i < 3; ++i) {
        c[i] = clampUnit((1.0f - t) * in[i] + static_cast<float>(body.rgb[i]) * in[i] * t);
    }
    const float hi = std::max({c[0], c[1], c[2]});
    const float lo = std::min({c[0], c[1], c[2]});
    const float d = hi - lo;
    float h = 240.0f;
    float s = 0.0f;
    if (hi != lo) {
        const float l = (hi + lo) * 0.5f;
        s = l < 0.5f ? d / (hi + lo) : d / (2.0f - hi - lo);
        h = c[0] == hi   ? (c[1] - c[2]) / d
            : c[1] == hi ? (c[2] - c[0]) / d + 2.0f
                         : (c[0] - c[1]) / d + 4.0f;
        h /= 6.0f;
        if (h < 0) h += 1.0f;
        h *= 360.0f;
    }
    const float l = (std::max({in[0], in[1], in[2]}) + std::min({in[0], in[1], in[2]})) * 0.5f;
    if (s == 0) return {clampUnit(l), clampUnit(l), clampUnit(l)};
    const float q = l < 0.5f ? l * (1.0f + s) : l + s - l * s;
    const float p = 2.0f * l - q;
    const float turn = h / 360.0f;
    const auto channel = [&](float x) {
        return clampUnit(x < 0.16666667f  ? p + (q - p) * 6.0f * x
                         : x < 0.5f       ? q
                         : x < 0.6666667f ? p + (q - p) * (0.6666667f - x) * 6.0f
                                          : p);
    };
    const float red = turn + 0.33333334f;
    const float blue = turn - 0.33333334f;
    return {channel(red > 1 ? red - 1.0f : red), channel(turn),
            channel(blue < 0 ? blue + 1.0f : blue)};
}

}  // namespace keladjust::test

#endif
