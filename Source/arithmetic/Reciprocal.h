#ifndef KELADJUST_ARITHMETIC_RECIPROCAL_H
#define KELADJUST_ARITHMETIC_RECIPROCAL_H

namespace keladjust {

/// The reciprocal of a whole number in two parts: the float next to it, and what that lacks.
///
/// A number times `high` plus the rounded product with `low`, in one more rounding, is the rounded
/// quotient for nearly every divisor (N. Brisebarre and J.-M. Muller, "Correctly Rounded
/// Multiplication by Arbitrary Precision Constants", 2008). Which numbers it holds for depends on
/// their mantissas alone, as long as nothing leaves the normal range; for the divisors in use it
/// has been tested with every one (tests/arithmetic/Reciprocal.cpp).
template <int divisor>
struct Reciprocal {
    static constexpr float high = 1.0f / static_cast<float>(divisor);
    static constexpr float low = static_cast<float>(1.0 / divisor - static_cast<double>(high));
};

}  // namespace keladjust

#endif
