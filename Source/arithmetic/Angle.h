#ifndef KELADJUST_ARITHMETIC_ANGLE_H
#define KELADJUST_ARITHMETIC_ANGLE_H

namespace keladjust {

/// Sine and cosine of an angle in radians below 2^128, which is more than any float is. C libraries
/// would not do: to some, those of large angles are noise. NaN for NaN and infinities.
double sineOf(double angle) noexcept;
double cosineOf(double angle) noexcept;

}  // namespace keladjust

#endif
