#include "text/XmlText.h"

#include <cstddef>
#include <cstdint>

namespace keladjust::app {

namespace {

constexpr const char* replacement = "\xEF\xBF\xBD";

/// How many bytes the first character has; 0 if they are not one that XML can hold.
std::size_t characterLength(std::string_view text) {
    const auto first = static_cast<unsigned char>(text.front());
    if (first < 0x80) {
        const bool control = (first < 0x20 && first != '\t' && first != '\n') || first == 0x7F;
        return control ? 0 : 1;
    }
    const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (length == 0 || first > 0xF4 || text.size() < length) return 0;
    std::uint32_t code = first & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if ((next & 0xC0) != 0x80) return 0;
        code = (code << 6) | (next & 0x3Fu);
    }
    const bool shorterFormExists = length == 3 ? code < 0x800 : length == 4 && code < 0x10000;
    const bool surrogate = code >= 0xD800 && code < 0xE000;
    const bool beyondUnicode = code > 0x10FFFF;
    const bool noCharacter = code == 0xFFFE || code == 0xFFFF;
    return shorterFormExists || surrogate || beyondUnicode || noCharacter ? 0 : length;
}

std::string_view entityOf(char letter) {
    switch (letter) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        case '"':
            return "&quot;";
        default:
            return {};
    }
}

}  // namespace

std::string xmlText(std::string_view text) {
    std::string xml;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        const std::string_view entity = entityOf(text.front());
        if (length == 0) {
            xml += replacement;
        } else if (!entity.empty()) {
            xml += entity;
        } else {
            xml += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return xml;
}

}  // namespace keladjust::app
