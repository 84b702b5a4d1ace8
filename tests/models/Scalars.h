#ifndef KELADJUST_TESTS_MODELS_SCALARS_H
#define KELADJUST_TESTS_MODELS_SCALARS_H

#include <array>
#include <cstdint>

/// The formulas of the stages in a few lines each, written apart from the library: what tests
/// expect and what benchmarks compare with. Those of a colour alone return the new one. Those that
/// look at neighbours, at positions or at the whole picture are done the plainest way, in place.
namespace keladjust::test {

/// Red, green, blue: 0..255 and 0..1.
using Bytes = std::array<int, 3>;
using Floats = std::array<float, 3>;

/// NaN gives the lower bound.
inline int clampByte(double value) {
    return value > 0 ? (value < 255 ? static_cast<int>(value) : 255) : 0;
}
inline float clampUnit(float value) {
    return value > 0 ? (value < 1 ? value : 1.0f) : 0.0f;
}

/// Truncated to 32 bits, and held at their ends; NaN gives 0.
inline std::int32_t wholeOf(float value) {
    if (value != value) return 0;
    if (value >= 2147483648.0f) return INT32_MAX;
    return value <= -2147483648.0f ? INT32_MIN : static_cast<std::int32_t>(value);
}

}  // namespace keladjust::test

#endif
