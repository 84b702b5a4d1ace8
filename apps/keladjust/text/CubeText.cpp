#include "text/CubeText.h"

#include <array>
#include <charconv>
#include <cstddef>

namespace keladjust::app {

namespace {

void append(std::string& text, float value, char end) {
    // The largest float has 39 digits before the point.
    std::array<char, 64> digits{};
    const auto last = std::to_chars(digits.data(), digits.data() + digits.size(), value,
                                    std::chars_format::fixed, 8)
                          .ptr;
    text.append(digits.data(), last);
    text += end;
}

}  // namespace

std::string cubeRedFastest(const float* table) {
    std::string text =
        "LUT_3D_SIZE 32\n"
        "DOMAIN_MIN 0.0 0.0 0.0\n"
        "DOMAIN_MAX 1.0 1.0 1.0\n";
    for (int blue = 0; blue < cubeSize; ++blue) {
        for (int green = 0; green < cubeSize; ++green) {
            for (int red = 0; red < cubeSize; ++red) {
                const int index = 8192 * (red / 8) + 256 * green + 32 * (red % 8) + blue;
                const float* colour = table + 3 * static_cast<std::ptrdiff_t>(index);
                append(text, colour[0], ' ');
                append(text, colour[1], ' ');
                append(text, colour[2], '\n');
            }
        }
    }
    return text;
}

}  // namespace keladjust::app
