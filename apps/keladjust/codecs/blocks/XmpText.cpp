#include "codecs/blocks/XmpText.h"

#include <algorithm>

namespace keladjust::app {

namespace {

constexpr std::string_view spaces = " \t\r\n";
constexpr std::string_view digits = "0123456789";

/// Where the property's value starts if its name ends at `position`; npos if it is another's.
std::size_t valueAfter(std::string_view xmp, std::size_t position) {
    std::size_t next = xmp.find_first_not_of(spaces, position);
    if (next == std::string_view::npos) return next;
    if (xmp[next] == '=') {
        next = xmp.find_first_not_of(spaces, next + 1);
        const bool quoted =
            next != std::string_view::npos && (xmp[next] == '"' || xmp[next] == '\'');
        return quoted ? next + 1 : std::string_view::npos;
    }
    return xmp[next] == '>' ? next + 1 : std::string_view::npos;
}

}  // namespace

void replaceXmpNumber(std::string& xmp, std::string_view property, std::uint32_t value) {
    const std::string number = std::to_string(value);
    std::size_t position = 0;
    while ((position = xmp.find(property, position)) != std::string::npos) {
        position += property.size();
        const std::size_t start = valueAfter(xmp, position);
        if (start == std::string::npos) continue;
        const std::size_t first = xmp.find_first_not_of(spaces, start);
        if (first == std::string::npos) return;
        const std::size_t end = std::min(xmp.find_first_not_of(digits, first), xmp.size());
        if (end > first) xmp.replace(first, end - first, number);
        position = first;
    }
}

void removeXmpElement(std::string& xmp, std::string_view element) {
    const std::string start = '<' + std::string(element);
    const std::string end = "</" + std::string(element) + '>';
    std::size_t position = 0;
    while ((position = xmp.find(start, position)) != std::string::npos) {
        const std::size_t last = xmp.find(end, position);
        if (last == std::string::npos) return;
        xmp.erase(position, last + end.size() - position);
    }
}

}  // namespace keladjust::app
