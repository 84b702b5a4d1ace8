#ifndef KELADJUST_TESTS_MODELS_VIBRANCE_VIBRANCE_H
#define KELADJUST_TESTS_MODELS_VIBRANCE_VIBRANCE_H

#include <algorithm>
#include <cstddef>
#include <cstdint>

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
    // From here on integers wrap at 32 bits.
    const std::uint32_t k = 256 + static_cast<std::uint32_t>(wholeOf(static_cast<float>(n) * a));
    Bytes out{};
    for (std::size_t i = 0; i < 3; ++i) {
        const std::uint32_t mixed = static_cast<std::uint32_t>(in[i]) * k +
                                    static_cast<std::uint32_t>(lightness) * (256 - k);
        out[i] = std::clamp(static_cast<std::int32_t>(mixed) >> 8, 0, 255);
    }
    return out;
}

inline Floats vibranceTableModel(float vibrance, Floats in) {
    const float a = vibrance / 100.0f * 0.8f;
    const auto lightnessOf = [](Floats c) {
        return (std::min({c[0], c[1], c[2]}) + std::max({c[0], c[1], c[2]})) * 0.5f;
    };
    const float lightness = lightnessOf(in);
    Floats differences = in;
    for (float& c : differences) c = clampUnit(c - lightness);
    const float f = (1.0f - lightnessOf(differences)) * a + 1.0f;
    const float o = (1.0f - f) * lightness;
    for (float& c : in) c = clampUnit(f * c + o);
    return in;
}

}  // namespace keladjust::test

#endif
