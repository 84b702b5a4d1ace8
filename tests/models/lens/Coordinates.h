#ifndef KELADJUST_TESTS_MODELS_LENS_COORDINATES_H
#define KELADJUST_TESTS_MODELS_LENS_COORDINATES_H

#include <algorithm>
#include <cstdint>

namespace keladjust::test {

/// What 16 bits keep of a coordinate, truncated.
inline int shortOf(float value) {
    if (value != value) return 0;
    const auto whole =
        static_cast<long long>(std::clamp(static_cast<double>(value), -2147483648.0, 2147483647.0));
    return static_cast<std::int16_t>(static_cast<std::uint64_t>(whole) & 0xFFFF);
}

}  // namespace keladjust::test

#endif
