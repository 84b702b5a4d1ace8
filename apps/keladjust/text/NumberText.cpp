#include "text/NumberText.h"

#include <array>
#include <charconv>
#include <limits>

namespace keladjust::app {

std::string numberText(double value) {
    std::array<char, 32> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value).ptr;
    return std::string(text.data(), end);
}

std::string numberText(double value, int decimals) {
    std::array<char, 400> text{};  // the largest number has 309 digits
    const auto end = std::to_chars(text.data(), text.data() + text.size(), value,
                                   std::chars_format::fixed, decimals)
                         .ptr;
    return std::string(text.data(), end);
}

std::optional<double> numberFromText(std::string_view text) {
    if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
    double value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (end != text.data() + text.size() || text.empty()) return std::nullopt;
    if (error == std::errc::result_out_of_range) return std::numeric_limits<double>::infinity();
    if (error != std::errc()) return std::nullopt;
    return value;
}

}  // namespace keladjust::app
