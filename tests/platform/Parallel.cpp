#include "platform/Parallel.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cfenv>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using keladjust::platform::bandCount;
using keladjust::platform::parallelBands;
using keladjust::platform::setThreadLimit;

TEST(ParallelBands, CoverEveryItemOnce) {
    for (const std::size_t count : {0u, 1u, 5u, 16u, 1000u}) {
        for (const std::size_t bands : {1u, 2u, 3u, 16u}) {
            std::vector<std::atomic<int>> visits(count);
            std::vector<std::atomic<int>> bandVisits(bands);
            parallelBands(count, bands, [&](std::size_t band, std::size_t begin, std::size_t end) {
                ++bandVisits[band];
                for (std::size_t i = begin; i < end; ++i) ++visits[i];
            });
            for (const auto& visit : visits) EXPECT_EQ(visit, 1);
            for (const auto& visit : bandVisits) EXPECT_LE(visit, 1);
        }
    }
}

TEST(ParallelBands, PassTheFirstExceptionOnAfterAllHaveEnded) {
    std::atomic<int> ended{0};
    EXPECT_THROW(parallelBands(4, 4,
                               [&](std::size_t band, std::size_t, std::size_t) {
                                   ++ended;
                                   if (band >= 2) throw std::runtime_error("band");
                               }),
                 std::runtime_error);
    EXPECT_EQ(ended, 4);
}

TEST(ParallelBands, WorkersRoundToNearestWhateverTheCallerDoes) {
    std::fesetround(FE_UPWARD);
    std::atomic<int> nearest{0};
    parallelBands(3, 3, [&](std::size_t, std::size_t, std::size_t) {
        if (std::fegetround() == FE_TONEAREST) ++nearest;
    });
    const int after = std::fegetround();
    std::fesetround(FE_TONEAREST);
    EXPECT_EQ(nearest, 3);
    EXPECT_EQ(after, FE_UPWARD);
}

TEST(BandCount, StaysWithinTheLimitAndTheGrain) {
    setThreadLimit(4);
    EXPECT_EQ(bandCount(1000, 10), 4u);
    EXPECT_EQ(bandCount(25, 10), 2u);
    EXPECT_EQ(bandCount(5, 10), 1u);
    EXPECT_EQ(bandCount(0, 10), 1u);
    setThreadLimit(1);
    EXPECT_EQ(bandCount(1000, 1), 1u);
    setThreadLimit(-3);
    EXPECT_GE(bandCount(1000, 1), 1u);
    setThreadLimit(0);
}

}  // namespace
