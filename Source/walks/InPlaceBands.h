#ifndef KELADJUST_WALKS_INPLACEBANDS_H
#define KELADJUST_WALKS_INPLACEBANDS_H

#include <cstddef>
#include <cstdint>
#include <vector>

#include "platform/Parallel.h"

namespace keladjust {

/// Equally long rows of bytes, one below the other.
struct ByteRows {
    std::uint8_t* first;
    std::size_t stride;
    std::size_t bytes;  ///< of a row that count; padding may follow
    std::size_t height;

    std::uint8_t* operator[](std::size_t y) const { return first + y * stride; }
};

/// Rows that are changed in place by several threads while each needs its neighbours' as they were.
/// The constructor allocates all that is needed.
class InPlaceBands {
public:
    /// @param reach how many rows beyond its own a band sees on either side
    /// @param grain rows that make a thread worth its start, at least 1
    InPlaceBands(const ByteRows& rows, std::size_t reach, std::size_t grain);

    std::size_t count() const { return seen_.size(); }

    /// The rows of one thread.
    class Band {
    public:
        Band(const InPlaceBands& bands, std::size_t index)
            : bands_(bands),
              index_(index),
              begin_(bands.beginOf(index)),
              end_(bands.beginOf(index + 1)) {}

        std::size_t index() const { return index_; }
        std::size_t begin() const { return begin_; }
        std::size_t end() const { return end_; }

        /// A row within reach: one of the band's own as it is now, another one as it was
        /// before any band began.
        const std::uint8_t* row(std::size_t y) const;

    private:
        const InPlaceBands& bands_;
        std::size_t index_;
        std::size_t begin_;
        std::size_t end_;
    };

    /// Puts aside what bands see of one another, then calls `body(band)` for every band, each on a
    /// thread of its own.
    template <class Body>
    void run(const Body& body) {
        keepSeenRows();
        platform::parallelBands(count(), count(),
                                [&](std::size_t, std::size_t begin, std::size_t end) {
                                    for (std::size_t i = begin; i < end; ++i) body(Band(*this, i));
                                });
    }

private:
    void keepSeenRows();
    std::size_t above(const Band& band) const;
    std::size_t below(const Band& band) const;
    std::size_t beginOf(std::size_t index) const { return rows_.height * index / count(); }

    ByteRows rows_;
    std::size_t reach_;
    std::vector<std::vector<std::uint8_t>> seen_;  // by each band: rows above its own, then below
};

}  // namespace keladjust

#endif
