#include "platform/LargePages.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <vector>

namespace {

using namespace keladjust::platform;

TEST(LargePages, LeaveMemoryAsItIs) {
    // More than two pages of the usual two megabytes, and parts that begin and end anywhere.
    std::vector<std::uint32_t> numbers((5 << 20) / sizeof(std::uint32_t));
    std::iota(numbers.begin(), numbers.end(), 1u);
    const std::vector<std::uint32_t> before(numbers);
    preferLargePages(numbers.data(), numbers.size() * sizeof(std::uint32_t));
    preferLargePages(numbers.data() + 1, 1);
    preferLargePages(numbers.data() + 5, (3 << 20) + 7);
    preferLargePages(nullptr, 0);
    EXPECT_TRUE(numbers == before);
}

TEST(LargePages, BackArraysOfAnySize) {
    for (const std::size_t count : {std::size_t{0}, std::size_t{1}, std::size_t{9} << 20}) {
        const auto bytes = makeLargeArray<std::uint8_t>(count);
        std::fill_n(bytes.get(), count, std::uint8_t{7});
        EXPECT_EQ(std::count(bytes.get(), bytes.get() + count, 7),
                  static_cast<std::ptrdiff_t>(count));
    }
}

}  // namespace
