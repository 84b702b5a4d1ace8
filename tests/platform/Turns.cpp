// Items that threads take in turns: each once, whoever comes.

#include "platform/Turns.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

using keladjust::platform::CallScope;
using keladjust::platform::Turns;

TEST(Turns, TakeEveryItemOnce) {
    for (const std::size_t count : {0, 1, 7, 100}) {
        for (const std::size_t most : {1, 2, 3, 8}) {
            const std::size_t bands = std::min(most, keladjust::platform::mostThreads);
            for (const std::size_t together : {1, 3, 200}) {
                std::vector<std::atomic<int>> taken(count);
                Turns turns(count, bands, together);
                keladjust::platform::parallelBands(
                    bands, bands, [&](std::size_t band, std::size_t, std::size_t) {
                        turns.take(band, [&](std::size_t item) { ++taken[item]; });
                    });
                for (const std::atomic<int>& times : taken) EXPECT_EQ(times, 1);
            }
        }
    }
}

TEST(Turns, BeginWithTheirOwnBandAndHelpTheOthers) {
    Turns turns(7, 2, 2);  // 0 to 2 and 3 to 6
    std::vector<std::size_t> order;
    turns.take(1, [&](std::size_t item) { order.push_back(item); });
    EXPECT_EQ(order, (std::vector<std::size_t>{3, 4, 5, 6, 0, 1, 2}));
    turns.take(0, [&](std::size_t item) { order.push_back(item); });
    EXPECT_EQ(order.size(), 7u);
}

TEST(Turns, EndWhenTheCallIsCancelled) {
    bool cancels = false;
    CallScope call(
        1,
        [](void* user, float) -> std::int32_t { return *static_cast<const bool*>(user) ? 1 : 0; },
        &cancels);
    Turns turns(7, 1, 2);
    std::size_t taken = 0;
    turns.take(0, [&](std::size_t) {
        ++taken;
        cancels = true;
        call.tell(0.5f);
    });
    EXPECT_EQ(taken, 1u);
}

}  // namespace
