#ifndef KELADJUST_PLATFORM_TURNS_H
#define KELADJUST_PLATFORM_TURNS_H

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>

#include "platform/CallScope.h"
#include "platform/Parallel.h"

namespace keladjust::platform {

/// Items that the threads of parallelBands() take a few at a time: first those of their own band,
/// which lie together, then what others have left of theirs. Nobody is done long before the others,
/// whatever an item takes and a thread is kept from.
class Turns {
public:
    /// @param bands    at most mostThreads
    /// @param together items of a turn, at least 1
    Turns(std::size_t count, std::size_t bands, std::size_t together)
        : count_(count), bands_(bands), together_(together) {
        for (std::size_t band = 0; band < bands; ++band) next_[band].item = beginOf(band);
    }

    /// Calls `body(item)` for items that nobody else has had, until none is left or the call is
    /// cancelled; the thread works on `band`.
    template <class Body>
    void take(std::size_t band, const Body& body) {
        // Of the thread's own: a count for all would go from core to core.
        std::size_t done = 0;
        const std::size_t share = count_ / bands_ + 1;
        for (std::size_t i = 0; i < bands_; ++i) {
            const std::size_t from = (band + i) % bands_;
            const std::size_t end = beginOf(from + 1);
            std::size_t item;
            while ((item = next_[from].item.fetch_add(together_)) < end) {
                for (const std::size_t stop = std::min(item + together_, end); item < stop;
                     ++item) {
                    if (checkpoint(std::min(done++, share), share)) return;
                    body(item);
                }
            }
        }
    }

private:
    // On cache lines of their own.
    struct alignas(64) Next {
        std::atomic<std::size_t> item{0};
    };

    std::size_t beginOf(std::size_t band) const { return count_ * band / bands_; }

    std::size_t count_;
    std::size_t bands_;
    std::size_t together_;
    std::array<Next, mostThreads> next_;
};

}  // namespace keladjust::platform

#endif
