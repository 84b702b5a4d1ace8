#ifndef KELADJUST_FILTERS_ROWWINDOW_H
#define KELADJUST_FILTERS_ROWWINDOW_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

namespace keladjust {

/// Rows of a picture as they were: the first `bytes` of each, `stride` apart.
struct OriginalRows {
    const std::uint8_t* first;
    std::size_t stride;
    std::size_t bytes;
    std::size_t height;
};

/// How many rows above and below its own a row fetches from.
struct RowReach {
    std::size_t up = 0;
    std::size_t down = 0;
};

/// The rows within reach of a row, as they were before a band of rows began to change from its
/// first to its last. They travel along with the row, one behind the other in memory that is small
/// enough for a cache, so that a change in place needs no copy of the picture.
///
/// All windows are to be made before any band begins to change; each keeps what it needs of its
/// neighbours.
class RowWindow {
public:
    RowWindow(const OriginalRows& rows, RowReach reach, std::size_t begin, std::size_t end)
        : rows_(rows),
          reach_(reach),
          end_(end),
          base_(begin - std::min(begin, reach.up)),
          filled_(base_),
          capacity_(roomFor(reach)),
          window_(std::make_unique_for_overwrite<std::uint8_t[]>(capacity_ * rows.bytes)) {
        const std::size_t behind = std::min(end + reach.down, rows.height);
        neighbours_ = std::make_unique_for_overwrite<std::uint8_t[]>((behind - end) * rows.bytes);
        for (std::size_t y = end; y < behind; ++y) copy(y, neighbours_.get(), end);
        while (filled_ < std::min(begin + reach.down, rows.height)) take();
    }

    /// How many rows' memory a window takes.
    static std::size_t rowsFor(RowReach reach) { return roomFor(reach) + reach.down; }

    /// Moves on to `row`, the next one to change; to be called before that changes.
    void moveTo(std::size_t row) {
        while (filled_ < std::min(row + reach_.down + 1, rows_.height)) take();
    }

    /// Where row `firstRow()` begins; the others follow without a gap.
    const std::uint8_t* begin() const { return window_.get(); }
    std::size_t firstRow() const { return base_; }

private:
    static std::size_t roomFor(RowReach reach) { return 2 * (reach.up + 1 + reach.down); }

    void take() {
        if (filled_ - base_ == capacity_) {
            // The older half is out of reach.
            const std::size_t half = capacity_ / 2;
            std::memmove(window_.get(), window_.get() + half * rows_.bytes, half * rows_.bytes);
            base_ += half;
        }
        if (filled_ < end_) {
            copy(filled_, window_.get(), base_);
        } else {
            std::memcpy(window_.get() + (filled_ - base_) * rows_.bytes,
                        neighbours_.get() + (filled_ - end_) * rows_.bytes, rows_.bytes);
        }
        ++filled_;
    }

    void copy(std::size_t row, std::uint8_t* to, std::size_t firstOfTo) const {
        std::memcpy(to + (row - firstOfTo) * rows_.bytes, rows_.first + row * rows_.stride,
                    rows_.bytes);
    }

    OriginalRows rows_;
    RowReach reach_;
    std::size_t end_;
    std::size_t base_;      ///< the first row in the window
    std::size_t filled_;    ///< the row behind its last
    std::size_t capacity_;  ///< rows that it has room for
    std::unique_ptr<std::uint8_t[]> window_;
    std::unique_ptr<std::uint8_t[]> neighbours_;  ///< rows below the band
};

}  // namespace keladjust

#endif
