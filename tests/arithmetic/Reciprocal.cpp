// Quotients by constants as two multiplications: the same floats as divisions.

#include "arithmetic/Reciprocal.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "arithmetic/BitCast.h"

namespace {

template <int divisor>
void expectEveryQuotient() {
    using R = keladjust::Reciprocal<divisor>;
    constexpr std::uint32_t mantissas = 1u << 23;
    std::uint32_t wrong = 0;
    std::uint32_t inexact = 0;
    for (std::uint32_t mantissa = 0; mantissa < mantissas; ++mantissa) {
        const auto number =
            keladjust::bitCast<float>(keladjust::bitCast<std::uint32_t>(1.0f) | mantissa);
        // In double precision the product is exact, and so is the sum, unless the check says not:
        // what is left is the one rounding of a fused step.
        const double product = static_cast<double>(number) * static_cast<double>(R::high);
        const auto rest = static_cast<double>(number * R::low);
        const double sum = product + rest;
        if (sum - product != rest) ++inexact;
        if (static_cast<float>(sum) != number / static_cast<float>(divisor)) ++wrong;
    }
    EXPECT_EQ(wrong, 0u) << divisor;
    EXPECT_EQ(inexact, 0u) << divisor;
}

// Every divisor that a kernel divides by this way.
TEST(Reciprocal, GivesTheRoundedQuotientOfEveryMantissa) {
    expectEveryQuotient<3>();
    expectEveryQuotient<6>();
    expectEveryQuotient<60>();
    expectEveryQuotient<255>();
    expectEveryQuotient<360>();
}

}  // namespace
