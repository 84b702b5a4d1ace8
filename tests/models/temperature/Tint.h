#ifndef KELADJUST_TESTS_MODELS_TEMPERATURE_TINT_H
#define KELADJUST_TESTS_MODELS_TEMPERATURE_TINT_H

#include <algorithm>
#include <cstdint>

#include "models/Scalars.h"

namespace keladjust::test {

// In 256ths, rounded down; the product is taken in single precision.
inline std::int32_t tintStrength(float tint) {
    return wholeOf(tint * 100.0f) >> 8;
}

inline Bytes tintModel(float tint, Bytes in) {
    const long long k = tintStrength(tint);
    const long long grey = (in[1] * 601 + in[0] * 306 + in[2] * 117) >> 10;
    const auto byte = [](long long v) {
        return static_cast<int>(std::clamp<long long>(v, 0, 255));
    };
    return {byte(in[0] + (grey * k >> 8)), byte(in[1] + (grey * -k >> 8)),
            byte(in[2] + (grey * k >> 8))};
}

inline Floats tintTableModel(float tint, Floats in) {
    const float f = static_cast<float>(tintStrength(tint)) / 255.0f;
    const float grey = in[0] * 0.3f + in[1] * 0.59f + in[2] * 0.11f;
    return {clampUnit(in[0] + grey * f), clampUnit(in[1] - grey * f), clampUnit(in[2] + grey * f)};
}

}  // namespace keladjust::test

#endif
