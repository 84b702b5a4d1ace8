#ifndef KELADJUST_FILTERS_DEHAZE_MEANWINDOW_H
#define KELADJUST_FILTERS_DEHAZE_MEANWINDOW_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace keladjust {

/// A window of 15 x 15 bytes, cropped at the borders of its map, on the way down the map: rows
/// enter below and leave above, and means come from the sums of columns.
class MeanWindow {
public:
    /// Half of the window, without its middle.
    static constexpr std::size_t reach = 7;

    explicit MeanWindow(std::size_t width);

    /// Begins above `row`, the first one that the window is moved to.
    void beginAt(std::size_t row) { top_ = bottom_ = row - std::min(row, reach); }

    /// Moves down to `row`, of `height` rows of the map. Each comes from `entering(y)` when it
    /// comes within reach and from `leaving(y)` when it goes out of it.
    template <class Entering, class Leaving>
    void moveTo(std::size_t row, std::size_t height, Entering entering, Leaving leaving) {
        const std::size_t bottom = std::min(row + reach + 1, height);
        while (bottom_ < bottom && top_ + reach < row) {
            exchange(entering(bottom_), leaving(top_));
            ++bottom_;
            ++top_;
        }
        for (; bottom_ < bottom; ++bottom_) enter(entering(bottom_));
        for (; top_ + reach < row; ++top_) leave(leaving(top_));
    }

    /// The truncated means about every byte of the middle row.
    void means(std::uint8_t* out);

private:
    void enter(const std::uint8_t* row);
    void leave(const std::uint8_t* row);
    void exchange(const std::uint8_t* entering, const std::uint8_t* leaving);

    std::size_t width_;
    std::size_t top_ = 0;
    std::size_t bottom_ = 0;  // one past its last row
    std::vector<std::uint16_t> columns_;
    std::vector<std::uint16_t> triples_;
};

}  // namespace keladjust

#endif
