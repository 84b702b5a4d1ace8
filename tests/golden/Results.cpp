#include "golden/Results.h"

#include <bit>
#include <cmath>
#include <fstream>
#include <iomanip>
#include <ostream>
#include <sstream>

namespace keladjust::test {

Digest& Digest::add(std::span<const std::uint8_t> bytes) {
    for (const std::uint8_t byte : bytes) value_ = (value_ ^ byte) * 0x100000001b3;
    return *this;
}

Digest& Digest::add(std::span<const float> values) {
    for (const float value : values) {
        const std::uint32_t bits =
            std::isnan(value) ? 0x7fc00000 : std::bit_cast<std::uint32_t>(value);
        for (int shift = 0; shift < 32; shift += 8) {
            const auto byte = static_cast<std::uint8_t>(bits >> shift);
            add({&byte, 1});
        }
    }
    return *this;
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
