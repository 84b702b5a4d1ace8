#include "walks/ByteScale.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using keladjust::ByteScale;
using keladjust::byteScaleOf;
using keladjust::ByteTable;
using keladjust::clampToByte;

ByteTable productsWith(float factor) {
    ByteTable table;
    for (unsigned in = 0; in < 256; ++in) table[in] = clampToByte(static_cast<float>(in) * factor);
    return table;
}

void expectTable(const ByteScale& scale, const ByteTable& table, float factor) {
    for (unsigned in = 0; in < 256; ++in) {
        ASSERT_EQ(scale(static_cast<std::uint8_t>(in)), table[in]) << factor << ", " << in;
    }
}

TEST(ByteScale, IsTheProductForEveryByte) {
    for (const float factor :
         {0.0f, 0.7071068f, 1.0f, 1.4142135f, 1.5f, 1.7320508f, 2.0f, 3.1415927f}) {
        const ByteTable table = productsWith(factor);
        const auto scale = byteScaleOf(table);
        ASSERT_TRUE(scale) << factor;
        expectTable(*scale, table, factor);
    }
}

TEST(ByteScale, IsNoneWhereNoFactorGivesTheTable) {
    // Just below 21 / 80: the product with 80 is rounded up to 21, the one with 240 not to 63.
    const ByteTable table = productsWith(0.2625f);
    ASSERT_EQ(table[80], 21);
    ASSERT_EQ(table[240], 62);
    EXPECT_FALSE(byteScaleOf(table));
}

TEST(ByteScale, IsNeverAnotherTable) {
    int found = 0;
    for (int step = 0; step <= 20000; ++step) {
        const float factor = static_cast<float>(step) / 8000.0f;
        const ByteTable table = productsWith(factor);
        if (const auto scale = byteScaleOf(table)) {
            expectTable(*scale, table, factor);
            ++found;
        }
    }
    EXPECT_GT(found, 19000);  // the fast way is the usual one
}

}  // namespace
