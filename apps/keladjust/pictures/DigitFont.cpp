#include "pictures/DigitFont.h"

#include <algorithm>
#include <array>

namespace keladjust::app {

namespace {

constexpr std::uint32_t glyphWidth = 5;
constexpr std::uint32_t glyphHeight = 7;
constexpr std::uint32_t scale = labelHeight / glyphHeight;
constexpr std::uint32_t advance = (glyphWidth + 1) * scale;

struct Glyph {
    char letter;
    std::array<const char*, glyphHeight> rows;
};

constexpr Glyph glyphs[] = {
    {'0', {" ### ", "#   #", "#  ##", "# # #", "##  #", "#   #", " ### "}},
    {'1', {"  #  ", " ##  ", "  #  ", "  #  ", "  #  ", "  #  ", " ### "}},
    {'2', {" ### ", "#   #", "    #", "   # ", "  #  ", " #   ", "#####"}},
    {'3', {"#####", "   # ", "  #  ", "   # ", "    #", "#   #", " ### "}},
    {'4', {"   # ", "  ## ", " # # ", "#  # ", "#####", "   # ", "   # "}},
    {'5', {"#####", "#    ", "#### ", "    #", "    #", "#   #", " ### "}},
    {'6', {"  ## ", " #   ", "#    ", "#### ", "#   #", "#   #", " ### "}},
    {'7', {"#####", "    #", "   # ", "  #  ", " #   ", " #   ", " #   "}},
    {'8', {" ### ", "#   #", "#   #", " ### ", "#   #", "#   #", " ### "}},
    {'9', {" ### ", "#   #", "#   #", " ####", "    #", "   # ", " ##  "}},
    {'-', {"     ", "     ", "     ", "#####", "     ", "     ", "     "}},
    {'.', {"     ", "     ", "     ", "     ", "     ", " ##  ", " ##  "}},
};

void blacken(Photo& photo, std::uint32_t x, std::uint32_t y) {
    if (x >= photo.width() || y >= photo.height()) return;
    unsigned char* pixel = photo.pixel(x, y);
    std::fill_n(pixel, std::min<std::size_t>(photo.bytesPerPixel(), 3),
                static_cast<unsigned char>(0));
}

void drawGlyph(Photo& photo, const Glyph& glyph, std::uint32_t left, std::uint32_t top) {
    for (std::uint32_t y = 0; y < glyphHeight * scale; ++y) {
        for (std::uint32_t x = 0; x < glyphWidth * scale; ++x) {
            if (glyph.rows[y / scale][x / scale] == '#') blacken(photo, left + x, top + y);
        }
    }
}

}  // namespace

void drawNumber(Photo& photo, std::string_view text, std::uint32_t left, std::uint32_t top) {
    for (const char letter : text) {
        const auto* glyph = std::ranges::find(glyphs, letter, &Glyph::letter);
        if (glyph != std::end(glyphs)) drawGlyph(photo, *glyph, left, top);
        left += advance;
    }
}

}  // namespace keladjust::app
