#include "pictures/Orientation.h"

#include <algorithm>

namespace keladjust::app {

namespace {

/// EXIF names the side of the scene that the stored row 0 and column 0 show. From that follow three
/// flips, applied to the target's coordinates in this order.
struct Turn {
    bool transpose;
    bool fromRight;
    bool fromBottom;
};

constexpr Turn turns[9] = {
    {},                     // 0: not defined
    {false, false, false},  // 1: top, left
    {false, true, false},   // 2: top, right
    {false, true, true},    // 3: bottom, right
    {false, false, true},   // 4: bottom, left
    {true, false, false},   // 5: left, top
    {true, false, true},    // 6: right, top
    {true, true, true},     // 7: right, bottom
    {true, true, false},    // 8: left, bottom
};

}  // namespace

Photo upright(Photo stored, int orientation) {
    if (orientation < 2 || orientation > 8) return stored;
    const Turn turn = turns[orientation];
    Photo turned(turn.transpose ? stored.height() : stored.width(),
                 turn.transpose ? stored.width() : stored.height(), stored.layout());
    turned.hasAlpha = stored.hasAlpha;
    turned.notices = std::move(stored.notices);

    const std::size_t size = stored.bytesPerPixel();
    for (std::uint32_t y = 0; y < turned.height(); ++y) {
        for (std::uint32_t x = 0; x < turned.width(); ++x) {
            std::uint32_t column = turn.transpose ? y : x;
            std::uint32_t row = turn.transpose ? x : y;
            if (turn.fromRight) column = stored.width() - 1 - column;
            if (turn.fromBottom) row = stored.height() - 1 - row;
            std::copy_n(stored.pixel(column, row), size, turned.pixel(x, y));
        }
    }
    return turned;
}

}  // namespace keladjust::app
