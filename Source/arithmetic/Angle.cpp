#include "arithmetic/Angle.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace keladjust {

namespace {

constexpr double quarterTurn = 1.5707963267948966;

// The nearest multiple of a quarter turn, of which the last two bits count, and what is left.
struct Reduced {
    unsigned quadrant;
    double rest;
};

// 2 / pi in 320 bits behind the binary point, the last ones first.
constexpr int pointAt = 320;
constexpr std::array<std::uint32_t, 10> twoOverPi = {
    0x424DD2E0, 0xB7246E3A, 0xDEBBC561, 0xFE5163AB, 0x3C439041,
    0xDB629599, 0xF534DDC0, 0xFC2757D1, 0x4E441529, 0xA2F9836E,
};
using Product = std::array<std::uint32_t, 12>;

Product timesTwoOverPi(std::uint64_t significand) {
    Product product{};
    for (std::size_t half = 0; half < 2; ++half) {
        const std::uint64_t factor = significand >> (32 * half) & 0xFFFFFFFF;
        std::uint64_t carry = 0;
        for (std::size_t i = 0; i < twoOverPi.size(); ++i) {
            carry += factor * twoOverPi[i] + product[i + half];
            product[i + half] = static_cast<std::uint32_t>(carry);
            carry >>= 32;
        }
        product[twoOverPi.size() + half] = static_cast<std::uint32_t>(carry);
    }
    return product;
}

std::uint64_t bitsFrom(const Product& product, int position) {
    std::uint64_t bits = 0;
    for (int i = 63; i >= 0; --i) {
        const auto at = static_cast<unsigned>(position + i);
        const std::uint32_t limb = at / 32 < product.size() ? product[at / 32] : 0;
        bits = bits << 1 | (limb >> at % 32 & 1);
    }
    return bits;
}

// M. Payne, R. Hanek, "Radian Reduction for Trigonometric Functions" (1983): only those bits of the
// quotient by a quarter turn are needed that stand about its binary point.
Reduced reduce(double magnitude) {
    int exponent = 0;
    const double fraction = std::frexp(magnitude, &exponent);
    const auto significand = static_cast<std::uint64_t>(std::ldexp(fraction, 53));
    const Product quotient = timesTwoOverPi(significand);
    const int point = pointAt - (exponent - 53);
    auto quadrant = static_cast<unsigned>(bitsFrom(quotient, point) & 3);
    std::uint64_t high = bitsFrom(quotient, point - 64);
    std::uint64_t low = bitsFrom(quotient, point - 128);
    const bool above = high >> 63 != 0;  // nearer to the next quarter turn
    if (above) {
        ++quadrant;
        high = ~high;
        low = ~low;
    }
    const double rest =
        std::ldexp(static_cast<double>(high), -64) + std::ldexp(static_cast<double>(low), -128);
    return {quadrant, (above ? -rest : rest) * quarterTurn};
}

// Taylor's series for at most an eighth of a turn, as far as a double shows them.
double seriesOfSine(double x) {
    const double z = x * x;
    double sum = 0.0;
    for (int n = 17; n > 1; n -= 2) sum = (1.0 + sum) * -z / (n * (n - 1));
    return x + x * sum;
}

double seriesOfCosine(double x) {
    const double z = x * x;
    double sum = 0.0;
    for (int n = 18; n > 0; n -= 2) sum = (1.0 + sum) * -z / (n * (n - 1));
    return 1.0 + sum;
}

}  // namespace

double sineOf(double angle) noexcept {
    if (!std::isfinite(angle)) return std::numeric_limits<double>::quiet_NaN();
    const double magnitude = std::fabs(angle);
    if (magnitude < quarterTurn / 2) return seriesOfSine(angle);
    const auto [quadrant, rest] = reduce(magnitude);
    const double value = (quadrant & 1) != 0 ? seriesOfCosine(rest) : seriesOfSine(rest);
    const bool negative = ((quadrant & 2) != 0) != std::signbit(angle);
    return negative ? -value : value;
}

double cosineOf(double angle) noexcept {
    if (!std::isfinite(angle)) return std::numeric_limits<double>::quiet_NaN();
    const double magnitude = std::fabs(angle);
    if (magnitude < quarterTurn / 2) return seriesOfCosine(angle);
    const auto [quadrant, rest] = reduce(magnitude);
    const double value = (quadrant & 1) != 0 ? seriesOfSine(rest) : seriesOfCosine(rest);
    const bool negative = ((quadrant + 1) & 2) != 0;
    return negative ? -value : value;
}

}  // namespace keladjust
