#ifndef KELADJUST_ARITHMETIC_ROUNDING_H
#define KELADJUST_ARITHMETIC_ROUNDING_H

#include <cstdint>
#include <limits>

/// How stages turn floats into bytes and whole numbers: the same for every value there is, NaN and
/// infinities included, on every machine.
namespace keladjust {

/// Clamped to 0..1; NaN gives 0.
inline float clamp01(float value) {
    return value > 0.0f ? (value < 1.0f ? value : 1.0f) : 0.0f;
}

/// Clamped to 0..255 and truncated; NaN gives 0.
inline std::uint8_t clampToByte(float value) {
    if (!(value > 0.0f)) return 0;
    if (value >= 255.0f) return 255;
    return static_cast<std::uint8_t>(static_cast<int>(value));
}

/// Clamped to 0..255.
inline std::uint8_t clampToByte(std::int32_t value) {
    return static_cast<std::uint8_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

/// Truncated toward zero, saturating at the ends of 32 bits; NaN gives 0.
inline std::int32_t truncateToInt(float value) {
    constexpr float limit = 2147483648.0f;  // 2^31, exact in single precision
    if (value >= limit) return std::numeric_limits<std::int32_t>::max();
    if (value <= -limit) return std::numeric_limits<std::int32_t>::min();
    if (value != value) return 0;
    return static_cast<std::int32_t>(value);
}

/// 32-bit arithmetic that wraps.
inline std::int32_t wrap(std::uint32_t value) {
    return static_cast<std::int32_t>(value);
}
inline std::int32_t wrappingAdd(std::int32_t a, std::int32_t b) {
    return wrap(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
inline std::int32_t wrappingSubtract(std::int32_t a, std::int32_t b) {
    return wrap(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}
inline std::int32_t wrappingMultiply(std::int32_t a, std::int32_t b) {
    return wrap(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

}  // namespace keladjust

#endif
