#ifndef KELADJUST_FILTERS_LENS_ROWWINDOW_H
#define KELADJUST_FILTERS_LENS_ROWWINDOW_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>

#include "filters/lens/LensSources.h"
#include "platform/LargePages.h"
#include "walks/HaloBands.h"

namespace keladjust {

/// The rows within reach of a row, as they were before its band began to change from its first row
/// to its last. They travel along with the row, in a ring that is small enough for a cache and
/// whose places vectors can compute, so that a change in place needs no copy of the picture.
///
/// All windows are to be made before any band begins to change. What they see below their bands is
/// the bands' halo; what they see above is in the ring from the start.
class RowWindow {
public:
    /// @param reach how many rows above and below its own a row of the band fetches from
    RowWindow(const OriginalRows& rows, Reach reach, const HaloBands::Band& band)
        : rows_(rows),
          reach_(reach),
          band_(band),
          begin_(band.begin() - std::min(band.begin(), reach.above)),
          filled_(begin_),
          capacity_(capacityFor(rows.height, reach, band.begin(), band.end())),
          ringFirst_(begin_),
          ring_(platform::makeLargeArray<std::uint8_t>(capacity_ * rows.bytes)) {
        while (filled_ < std::min(band.begin() + reach.below, rows.height)) take(rows_[filled_]);
    }

    /// How many rows' memory a window takes.
    static std::size_t rowsFor(std::size_t height, Reach reach, std::size_t begin,
                               std::size_t end) {
        return capacityFor(height, reach, begin, end) + std::min(reach.below, height - end);
    }

    /// Moves on to `row`, the next one to change; to be called before that changes.
    void moveTo(std::size_t row) {
        while (filled_ < std::min(row + reach_.below + 1, rows_.height)) take(band_.row(filled_));
        top_ = std::max(row - std::min(row, reach_.above), begin_);
        while (top_ >= ringFirst_ + capacity_) ringFirst_ += capacity_;
    }

    const std::uint8_t* bytes() const { return ring_.get(); }

    /// Where the rows lie, in units of which a row has `stride`.
    RowRing ring(std::size_t stride) const {
        return {static_cast<std::int32_t>(ringFirst_), static_cast<std::int32_t>(capacity_),
                static_cast<std::int32_t>(stride), static_cast<std::int32_t>(top_),
                static_cast<std::int32_t>(filled_ - 1)};
    }

private:
    static std::size_t capacityFor(std::size_t height, Reach reach, std::size_t begin,
                                   std::size_t end) {
        const std::size_t ever =
            std::min(end + reach.below, height) - (begin - std::min(begin, reach.above));
        return std::min(reach.above + 1 + reach.below, ever);
    }

    void take(const std::uint8_t* row) {
        const std::size_t slot = (filled_ - begin_) % capacity_;
        std::memcpy(ring_.get() + slot * rows_.bytes, row, rows_.bytes);
        ++filled_;
    }

    OriginalRows rows_;
    Reach reach_;
    HaloBands::Band band_;
    std::size_t begin_;      ///< the first row that it ever holds
    std::size_t filled_;     ///< the row behind its last
    std::size_t capacity_;   ///< rows that it has room for
    std::size_t ringFirst_;  ///< the row at the beginning of the ring, now or once
    std::size_t top_ = 0;    ///< the first row within reach
    std::unique_ptr<std::uint8_t[]> ring_;
};

}  // namespace keladjust

#endif
