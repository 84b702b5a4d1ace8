#ifndef KELADJUST_WALKS_HALOBANDS_H
#define KELADJUST_WALKS_HALOBANDS_H

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "platform/CallScope.h"
#include "platform/Parallel.h"
#include "platform/UnsetArray.h"
#include "walks/Picture.h"

namespace keladjust {

/// Equally long rows of bytes, one below the other, to read.
struct OriginalRows {
    const std::uint8_t* first;
    std::size_t stride;
    std::size_t bytes;  ///< of a row that count; padding may follow
    std::size_t height;

    const std::uint8_t* operator[](std::size_t y) const { return first + y * stride; }
};

/// The same, to change.
struct ByteRows {
    std::uint8_t* first;
    std::size_t stride;
    std::size_t bytes;
    std::size_t height;

    std::uint8_t* operator[](std::size_t y) const { return first + y * stride; }
    operator OriginalRows() const { return {first, stride, bytes, height}; }
};

inline ByteRows rowsOf(const Picture& picture) {
    return {picture.first, picture.stride, picture.width * picture.bytesPerPixel, picture.height};
}

/// How many rows above and below its own a stage sees.
struct Reach {
    std::size_t above;
    std::size_t below;
};

/// Rows that are changed in place by several threads while each needs its neighbours' as they were:
/// what a band sees of the others, its halo, is put aside before any begins. The constructor
/// allocates all that is needed.
class HaloBands {
public:
    /// Bands of the first `changed` rows, each with the reach `reachOf(begin, end)` of its rows.
    template <class ReachOf>
    HaloBands(const OriginalRows& rows, std::size_t changed, std::size_t bands, ReachOf reachOf)
        : rows_(rows), changed_(changed), halos_(bands) {
        for (std::size_t i = 0; i < bands; ++i) {
            const std::size_t begin = beginOf(i);
            const std::size_t end = beginOf(i + 1);
            const Reach reach = reachOf(begin, end);
            Halo& halo = halos_[i];
            halo.above = reach.above < begin ? reach.above : begin;
            halo.below = reach.below < rows.height - end ? reach.below : rows.height - end;
            halo.bytes =
                platform::makeUnsetArray<std::uint8_t>((halo.above + halo.below) * rows.bytes);
        }
    }

    /// Bands of all rows, the same reach on both sides.
    /// @param grain rows that make a thread worth its start, at least 1
    HaloBands(const OriginalRows& rows, std::size_t reach, std::size_t grain)
        : HaloBands(rows, rows.height, platform::bandCount(rows.height, grain),
                    [reach](std::size_t, std::size_t) {
                        return Reach{reach, reach};
                    }) {}

    std::size_t count() const { return halos_.size(); }

    /// The rows of one thread.
    class Band {
    public:
        Band(const HaloBands& bands, std::size_t index)
            : bands_(bands),
              index_(index),
              begin_(bands.beginOf(index)),
              end_(bands.beginOf(index + 1)) {}

        std::size_t index() const { return index_; }
        std::size_t begin() const { return begin_; }
        std::size_t end() const { return end_; }

        /// A row within reach: one of the band's own as it is now, another one as it was before any
        /// band began.
        const std::uint8_t* row(std::size_t y) const {
            if (y >= begin_ && y < end_) return bands_.rows_[y];
            const Halo& halo = bands_.halos_[index_];
            const std::size_t kept = y < begin_ ? y + halo.above - begin_ : halo.above + (y - end_);
            return halo.bytes.get() + kept * bands_.rows_.bytes;
        }

    private:
        const HaloBands& bands_;
        std::size_t index_;
        std::size_t begin_;
        std::size_t end_;
    };

    Band band(std::size_t index) const { return {*this, index}; }

    /// Puts the halos aside, then calls `body(band)` for every band, each on a thread of its own.
    template <class Body>
    void run(const Body& body) {
        for (std::size_t i = 0; i < count(); ++i) keepHalo(i);
        runKept(body);
    }

    /// The two halves of run(), for who has more to do between them.
    void keepHalo(std::size_t index);
    template <class Body>
    void runKept(const Body& body) const {
        platform::parallelBands(count(), count(),
                                [&](std::size_t, std::size_t begin, std::size_t end) {
                                    for (std::size_t i = begin; i < end; ++i) body(band(i));
                                });
    }

private:
    /// The rows above a band, then those below it.
    struct Halo {
        std::size_t above = 0;
        std::size_t below = 0;
        std::unique_ptr<std::uint8_t[]> bytes;
    };

    std::size_t beginOf(std::size_t index) const { return changed_ * index / count(); }

    OriginalRows rows_;
    std::size_t changed_;
    std::vector<Halo> halos_;
};

/// Calls `body(y)` for the rows of a band, unless the call is cancelled.
template <class Body>
void forEachRow(const HaloBands::Band& band, Body body) {
    for (std::size_t y = band.begin(); y < band.end(); ++y) {
        if (platform::checkpoint(y - band.begin(), band.end() - band.begin())) return;
        body(y);
    }
}

}  // namespace keladjust

#endif
