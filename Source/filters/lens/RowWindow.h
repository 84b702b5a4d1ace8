#ifndef KELADJUST_FILTERS_LENS_ROWWINDOW_H
#define KELADJUST_FILTERS_LENS_ROWWINDOW_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "filters/lens/LensSources.h"
#include "platform/LargePages.h"

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
/// first to its last. They travel along with the row, in a ring that is small enough for a cache,
/// so that a change in place needs no copy of the picture.
///
/// All windows are to be made before any band begins to change; each keeps what it needs of its
/// neighbours.
class RowWindow {
public:
    RowWindow(const OriginalRows& rows, RowReach reach, std::size_t begin, std::size_t end)
        : rows_(rows),
          reach_(reach),
          end_(end),
          begin_(begin - std::min(begin, reach.up)),
          filled_(begin_),
          capacity_(capacityFor(rows.height, reach, begin, end)),
          ringFirst_(begin_),
          ring_(platform::makeLargeArray<std::uint8_t>(capacity_ * rows.bytes)) {
        const std::size_t behind = std::min(end + reach.down, rows.height);
        neighbours_ = std::make_unique_for_overwrite<std::uint8_t[]>((behind - end) * rows.bytes);
        for (std::size_t y = end; y < behind; ++y) copy(y, neighbours_.get(), y - end);
        while (filled_ < std::min(begin + reach.down, rows.height)) take();
    }

    /// How many rows' memory a window takes.
    static std::size_t rowsFor(std::size_t height, RowReach reach, std::size_t begin,
                               std::size_t end) {
        return capacityFor(height, reach, begin, end) + std::min(reach.down, height - end);
    }

    /// Moves on to `row`, the next one to change; to be called before that changes.
    void moveTo(std::size_t row) {
        while (filled_ < std::min(row + reach_.down + 1, rows_.height)) take();
        top_ = std::max(row - std::min(row, reach_.up), begin_);
        while (top_ >= ringFirst_ + capacity_) ringFirst_ += capacity_;
    }

    const std::uint8_t* bytes() const { return ring_.get(); }

    /// Where the rows lie, in units of which a row has `stride`.
    rows::RowRing ring(std::size_t stride) const {
        return {static_cast<std::int32_t>(ringFirst_), static_cast<std::int32_t>(capacity_),
                static_cast<std::int32_t>(stride), static_cast<std::int32_t>(top_),
                static_cast<std::int32_t>(filled_ - 1)};
    }

private:
    static std::size_t capacityFor(std::size_t height, RowReach reach, std::size_t begin,
                                   std::size_t end) {
        const std::size_t ever =
            std::min(end + reach.down, height) - (begin - std::min(begin, reach.up));
        return std::min(reach.up + 1 + reach.down, ever);
    }

    void take() {
        const std::size_t slot = (filled_ - begin_) % capacity_;
        if (filled_ < end_) {
            copy(filled_, ring_.get(), slot);
        } else {
            std::memcpy(ring_.get() + slot * rows_.bytes,
                        neighbours_.get() + (filled_ - end_) * rows_.bytes, rows_.bytes);
        }
        ++filled_;
    }

    void copy(std::size_t row, std::uint8_t* to, std::size_t slot) const {
        std::memcpy(to + slot * rows_.bytes, rows_.first + row * rows_.stride, rows_.bytes);
    }

    OriginalRows rows_;
    RowReach reach_;
    std::size_t end_;
    std::size_t begin_;      ///< the first row that it ever holds
    std::size_t filled_;     ///< the row behind its last
    std::size_t capacity_;   ///< rows that it has room for
    std::size_t ringFirst_;  ///< the row at the beginning of the ring, now or once
    std::size_t top_ = 0;    ///< the first row within reach
    std::unique_ptr<std::uint8_t[]> ring_;
    std::unique_ptr<std::uint8_t[]> neighbours_;  ///< rows below the band
};

}  // namespace keladjust

#endif
