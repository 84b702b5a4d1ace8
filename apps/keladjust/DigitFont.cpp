#include "DigitFont.h"

#include <algorithm>
#include <array>

namespace keladjust::app {
namespace {

constexpr std::uint32_t GLYPH_WIDTH = 5;
constexpr std::uint32_t GLYPH_HEIGHT = 7;
constexpr std::uint32_t SCALE = LABEL_HEIGHT / GLYPH_HEIGHT;
constexpr std::uint32_t ADVANCE = (GLYPH_WIDTH + 1) * SCALE;

struct Glyph {
    char letter;
    std::array<const char*, GLYPH_HEIGHT> rows;
};

constexpr Glyph GLYPHS[] = {
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
    for (std::uint32_t y = 0; y < GLYPH_HEIGHT * SCALE; ++y) {
        for (std::uint32_t x = 0; x < GLYPH_WIDTH * SCALE; ++x) {
            if (glyph.rows[y / SCALE][x / SCALE] == '#') blacken(photo, left + x, top + y);
        }
    }
}

}  // namespace

void drawNumber(Photo& photo, std::string_view text, std::uint32_t left, std::uint32_t top) {
    for (const char letter : text) {
        const auto* glyph = std::ranges::find(GLYPHS, letter, &Glyph::letter);
        if (glyph != std::end(GLYPHS)) drawGlyph(photo, *glyph, left, top);
        left += ADVANCE;
    }
}

}  // namespace keladjust::app
