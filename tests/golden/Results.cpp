#include "golden/Results.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <ostream>
#include <sstream>

#include "arithmetic/BitCast.h"
#include "platform/FloatingPoint.h"

namespace keladjust::test {

Digest& Digest::add(std::span<const std::uint8_t> bytes) {
    for (const std::uint8_t byte : bytes) value_ = (value_ ^ byte) * 0x100000001b3;
    return *this;
}

Digest& Digest::add(std::span<const float> values) {
    for (const float value : values) {
        const std::uint32_t bits = std::isnan(value) ? 0x7fc00000 : bitCast<std::uint32_t>(value);
        for (int shift = 0; shift < 32; shift += 8) {
            const auto byte = static_cast<std::uint8_t>(bits >> shift);
            add({&byte, 1});
        }
    }
    return *this;
}

namespace {

std::string formatted(const char* format, int decimals, double number) {
    char text[64];
    std::snprintf(text, sizeof text, format, decimals, number);
    return text;
}

// As std::to_chars() writes it, which not every standard library has for floating-point numbers.
template <class ReadsBack>
std::string shortestText(double number, ReadsBack readsBack) {
    constexpr int mostDecimals = 16;
    int decimals = 0;
    while (decimals < mostDecimals && !readsBack(formatted("%.*e", decimals, number))) ++decimals;
    const std::string scientific = formatted("%.*e", decimals, number);
    if (!std::isfinite(number)) return scientific;
    const int exponent = std::atoi(scientific.c_str() + scientific.find('e') + 1);
    const std::string fixed = formatted("%.*f", std::max(0, decimals - exponent), number);
    return fixed.size() <= scientific.size() ? fixed : scientific;
}

}  // namespace

std::string numberText(int number) {
    return std::to_string(number);
}

std::string numberText(unsigned number) {
    return std::to_string(number);
}

std::string numberText(float number) {
    const volatile float given = number;  // which is not to be widened before the mode is usual
    const platform::DefaultFloatingPoint scope;
    return shortestText(static_cast<double>(given), [number](const std::string& text) {
        return std::strtof(text.c_str(), nullptr) == number;
    });
}

std::string numberText(double number) {
    const platform::DefaultFloatingPoint scope;
    return shortestText(number, [number](const std::string& text) {
        return std::strtod(text.c_str(), nullptr) == number;
    });
}

std::string callText(const std::string& name, const std::vector<std::string>& settings) {
    std::string text = name;
    const char* separator = "(";
    for (const std::string& setting : settings) {
        text += separator;
        text += setting;
        separator = ", ";
    }
    return text + ')';
}

void Results::add(std::string name, std::span<const std::uint64_t> digests) {
    std::ostringstream text;
    text << std::hex << std::setfill('0');
    for (const std::uint64_t digest : digests) text << ' ' << std::setw(16) << digest;
    results_.push_back({std::move(name), text.str().substr(1)});
}

// A section starts with its title in brackets and ends with an empty line; between a name and its
// digests stand two blanks or more.
Results Results::read(const std::filesystem::path& file, const std::string& title) {
    Results section;
    std::ifstream stream(file);
    std::string line;
    while (std::getline(stream, line) && line != "[" + title + "]") {
    }
    while (std::getline(stream, line) && !line.empty()) {
        const std::size_t gap = line.find("  ");
        const std::size_t digests = line.find_first_not_of(' ', gap);
        if (digests == std::string::npos) return {};
        section.results_.push_back({line.substr(0, gap), line.substr(digests)});
    }
    return section;
}

void Results::write(std::ostream& file, const std::string& title) const {
    file << "\n[" << title << "]\n" << std::left;
    for (const Result& result : results_) {
        file << std::setw(60) << result.name << "  " << result.digests << "\n";
    }
}

}  // namespace keladjust::test
