#include "text/EightDecimals.h"

#include <array>
#include <charconv>

namespace keladjust::app {

void appendEightDecimals(std::string& text, float value) {
    // The largest float has 39 digits before the point.
    std::array<char, 64> digits{};
    const auto last = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                    std::chars_format::fixed, 8)
                          .ptr;
    text.append(digits.data(), last);
}

}  // namespace keladjust::app
