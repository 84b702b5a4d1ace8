#include "pictures/SoftwareDriver.h"

#include <algorithm>
#include <string>

namespace keladjust::app {

namespace {

/// What the names of such drivers hold, in lower case.
constexpr std::string_view marks[] = {
    "llvmpipe",    "softpipe", "swrast", "swiftshader",
    "gdi generic", "software", "swr (",  "microsoft basic render"};

// By hand, because the C library's version depends on the locale.
char lowerCase(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace

bool rendersOnCpu(std::string_view driver) {
    std::string name(driver);
    std::ranges::transform(name, name.begin(), lowerCase);
    return std::ranges::any_of(
        marks, [&](std::string_view mark) { return name.find(mark) != std::string::npos; });
}

}  // namespace keladjust::app
