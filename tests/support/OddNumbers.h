#ifndef KELADJUST_TESTS_SUPPORT_ODDNUMBERS_H
#define KELADJUST_TESTS_SUPPORT_ODDNUMBERS_H

#include <limits>

namespace keladjust::test {

inline constexpr float infinity = std::numeric_limits<float>::infinity();
inline constexpr float quietNan = std::numeric_limits<float>::quiet_NaN();

}  // namespace keladjust::test

#endif
