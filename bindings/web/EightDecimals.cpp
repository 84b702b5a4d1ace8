// The library of the module's compiler writes such numbers in the older way alone, which is exact
// there as well.

#include "text/EightDecimals.h"

#include <array>
#include <cstddef>
#include <cstdio>

namespace keladjust::app {

void appendEightDecimals(std::string& text, float value) {
    // The largest float has 39 digits before the point.
    std::array<char, 64> digits{};
    const int length =
        std::snprintf(digits.data(), digits.size(), "%.8f", static_cast<double>(value));
    text.append(digits.data(), static_cast<std::size_t>(length));
}

}  // namespace keladjust::app
