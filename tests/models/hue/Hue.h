#ifndef KELADJUST_TESTS_MODELS_HUE_HUE_H
#define KELADJUST_TESTS_MODELS_HUE_HUE_H

#include <cmath>
#include <cstddef>

#include "arithmetic/Angle.h"
#include "models/Scalars.h"

/// The rotation about the grey axis.
namespace keladjust::test {

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
