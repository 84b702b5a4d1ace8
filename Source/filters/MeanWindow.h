#ifndef KELADJUST_FILTERS_MEANWINDOW_H
#define KELADJUST_FILTERS_MEANWINDOW_H

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

    /// Has no row yet.
    explicit MeanWindow(std::size_t width);

    void enter(const std::uint8_t* row);
    void leave(const std::uint8_t* row);

    /// The truncated means about every byte of the middle row.
    void means(std::uint8_t* out);

private:
    std::size_t width_;
    std::uint32_t rows_ = 0;
    std::vector<std::uint16_t> columns_;
    std::vector<std::uint16_t> triples_;
};

}  // namespace keladjust

#endif
