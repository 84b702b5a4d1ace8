#include "pictures/ContactSheet.h"

#include <gtest/gtest.h>

#include "pictures/Comparison.h"
#include "pictures/DigitFont.h"
#include "pictures/Downscale.h"
#include "support/Pictures.h"

namespace {

using namespace keladjust::app;
using namespace keladjust::test;

TEST(Downscale, TakesTheMeanOfEachBlock) {
    Photo photo(5, 2, ChannelLayout::grey);
    const unsigned char rows[2][5] = {{10, 20, 0, 0, 7}, {30, 40, 0, 3, 8}};
    for (std::uint32_t y = 0; y < 2; ++y) std::copy_n(rows[y], 5, photo.row(y));
    const Photo small = downscaled(photo, 3);
    ASSERT_EQ(small.width(), 3u);
    ASSERT_EQ(small.height(), 1u);
    EXPECT_EQ(*small.pixel(0, 0), 25);
    EXPECT_EQ(*small.pixel(1, 0), 1);
    EXPECT_EQ(*small.pixel(2, 0), 8);
}

TEST(Downscale, CopiesWhatIsSmallEnough) {
    const Photo photo = noise(30, 20, ChannelLayout::bgra, true);
    expectSamePixels(downscaled(photo, 30), photo);
}

TEST(Comparison, StandsSideBySideWithAWhiteGap) {
    const Photo before = noise(6, 3, ChannelLayout::bgra);
    const Photo after = noise(6, 3, ChannelLayout::bgra, true);
    const Photo both = sideBySide(before, after);
    ASSERT_EQ(both.width(), 12 + comparisonGap);
    ASSERT_EQ(both.height(), 3u);
    EXPECT_EQ(both.pixel(5, 2)[0], before.pixel(5, 2)[0]);
    EXPECT_EQ(both.pixel(6 + comparisonGap, 2)[1], after.pixel(0, 2)[1]);
    for (std::uint32_t x = 6; x < 6 + comparisonGap; ++x) {
        for (int channel = 0; channel < 4; ++channel) EXPECT_EQ(both.pixel(x, 1)[channel], 255);
    }
}

TEST(ContactSheet, GoesThroughTheWholeRange) {
    const auto values = sheetValues(*findSetting("exposure"));
    EXPECT_EQ(values, (std::vector<double>{-100, -75, -50, -25, 0, 25, 50, 75, 100}));
    const auto degrees = sheetValues(*findSetting("temperature"));
    EXPECT_EQ(degrees.front(), 1700);
    EXPECT_EQ(degrees.back(), static_cast<double>(findSetting("temperature")->highest));
    for (const double degree : degrees) EXPECT_EQ(degree, static_cast<int>(degree));
}

TEST(ContactSheet, AdjustsEveryCopyByItsOwnValue) {
    const Photo photo = noise(90, 60, ChannelLayout::bgra);
    Adjuster adjuster(GpuUse::never);
    _AdjustParam record = usualRecord();
    record.saturation = -100;
    const Photo sheet = contactSheet(photo, *findSetting("exposure"), record, adjuster);
    const std::uint32_t cellWidth = photo.width() + 2 * sheetMargin;
    const std::uint32_t cellHeight = photo.height() + labelHeight + 3 * sheetMargin;
    ASSERT_EQ(sheet.width(), sheetColumns * cellWidth);
    ASSERT_EQ(sheet.height(), sheetRows * cellHeight);

    double previous = -1;
    for (std::uint32_t cell = 0; cell < sheetColumns * sheetRows; ++cell) {
        Photo copy(photo.width(), photo.height(), ChannelLayout::bgra);
        for (std::uint32_t y = 0; y < copy.height(); ++y) {
            std::copy_n(sheet.pixel(cell % sheetColumns * cellWidth + sheetMargin,
                                    cell / sheetColumns * cellHeight + sheetMargin + y),
                        copy.width() * 4, copy.row(y));
        }
        EXPECT_GT(meanBrightness(copy), previous) << cell;
        previous = meanBrightness(copy);
        const auto colour = meanColour(copy);
        EXPECT_NEAR(colour[0], colour[2], 0.01) << "the other settings apply too";
    }
}

TEST(DigitFont, DrawsInBlackAndStaysInside) {
    Photo photo(40, labelHeight, ChannelLayout::grey);
    std::fill_n(photo.row(0), photo.stride() * photo.height(), static_cast<unsigned char>(255));
    drawNumber(photo, "-12.5", 0, 0);
    // The bar of the minus: two pixels high in the middle of the line.
    for (std::uint32_t x = 0; x < 10; ++x) {
        EXPECT_EQ(*photo.pixel(x, 6), 0);
        EXPECT_EQ(*photo.pixel(x, 7), 0);
        EXPECT_EQ(*photo.pixel(x, 5), 255);
        EXPECT_EQ(*photo.pixel(x, 8), 255);
    }
    EXPECT_LT(meanBrightness(photo), 255 * 0.9);
}

}  // namespace
