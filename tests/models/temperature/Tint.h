#ifndef KELADJUST_TESTS_MODELS_TEMPERATURE_TINT_H
#define KELADJUST_TESTS_MODELS_TEMPERATURE_TINT_H

#include <algorithm>
#include <cmath>

#include "models/Scalars.h"

namespace keladjust::test {

inline Bytes tintModel(float tint, Bytes in) {
    const double scaled = tint * 100.0f;  // the product in single precision
    const auto k = static_cast<long long>(std::floor(std::trunc(scaled) / 256.0));
    const long long grey = (in[1] * 601 + in[0] * 306 + in[2] * 117) >> 10;
    const auto byte = [](long long v) {
        return static_cast<int>(std::clamp<long long>(v, 0, 255));
    };
    return {byte(in[0] + (grey * k >> 8)), byte(in[1] + (grey * -k >> 8)),
            byte(in[2] + (grey * k >> 8))};
}

}  // namespace keladjust::test

#endif
