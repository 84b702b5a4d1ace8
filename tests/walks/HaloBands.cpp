// Rows that several threads change in place while each sees its neighbours' as they were.

#include "walks/HaloBands.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

namespace {

using keladjust::ByteRows;
using keladjust::HaloBands;
using keladjust::Reach;

// Rows of three bytes and one of padding; every byte of row y is y.
struct Rows {
    explicit Rows(std::size_t height) : bytes(4 * height) {
        for (std::size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<std::uint8_t>(i / 4);
    }
    ByteRows rows() { return {bytes.data(), 4, 3, bytes.size() / 4}; }
    std::vector<std::uint8_t> bytes;
};

// Overwrites every row of each band after it has looked at all rows within reach.
void expectOriginals(HaloBands& bands, ByteRows rows, Reach reach) {
    bands.run([&](const HaloBands::Band& band) {
        const std::size_t first = band.begin() - std::min(band.begin(), reach.above);
        const std::size_t end = std::min(band.end() + reach.below, rows.height);
        for (int pass = 0; pass < 2; ++pass) {
            for (std::size_t y = first; y < end; ++y) {
                const bool own = y >= band.begin() && y < band.end();
                const auto expected = static_cast<std::uint8_t>(own && pass == 1 ? 200 : y);
                EXPECT_EQ(band.row(y)[0], expected) << "row " << y << " of band " << band.index();
                EXPECT_EQ(band.row(y)[2], expected);
            }
            for (std::size_t y = band.begin(); y < band.end(); ++y) {
                for (std::size_t i = 0; i < 3; ++i) rows[y][i] = 200;
            }
        }
    });
}

TEST(HaloBands, SeeNeighboursAsTheyWere) {
    for (const std::size_t count : {1u, 2u, 3u, 7u}) {
        for (const Reach reach : {Reach{0, 0}, Reach{1, 1}, Reach{0, 9}, Reach{50, 50}}) {
            Rows rows(20);
            HaloBands bands(rows.rows(), 20, count,
                            [&](std::size_t, std::size_t) { return reach; });
            EXPECT_EQ(bands.count(), count);
            expectOriginals(bands, rows.rows(), reach);
            for (std::size_t i = 0; i < rows.bytes.size(); ++i) {
                EXPECT_EQ(rows.bytes[i], i % 4 == 3 ? i / 4 : 200) << "padding stays";
            }
        }
    }
}

TEST(HaloBands, SplitTheChangedRowsAndSeeTheRest) {
    Rows rows(20);
    HaloBands bands(rows.rows(), 12, 3, [](std::size_t, std::size_t) { return Reach{7, 7}; });
    std::size_t next = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(bands.band(i).begin(), next);
        next = bands.band(i).end();
    }
    EXPECT_EQ(next, 12u);
    bands.keepHalo(2);
    EXPECT_EQ(bands.band(2).row(18)[1], 18) << "six rows below the last that changes";
}

}  // namespace
