#include "engine/SoftwareRenderer.h"

#include <algorithm>
#include <iterator>
#include <string>

namespace keladjust {

namespace {

// In lower case; drivers differ in how they write themselves.
constexpr std::string_view softwareNames[] = {
    "llvmpipe",
    "softpipe",
    "swrast",
    "swiftshader",
    "software rasterizer",
    "software renderer",
    "gdi generic",
    "microsoft basic render",
    "lavapipe",
    "openswr",
};

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return lower;
}

}  // namespace

bool isSoftwareRenderer(std::string_view renderer, std::string_view vendor) {
    const std::string names = lowerCase(renderer) + '\n' + lowerCase(vendor);
    return std::any_of(
        std::begin(softwareNames), std::end(softwareNames),
        [&names](std::string_view name) { return names.find(name) != std::string::npos; });
}

}  // namespace keladjust
