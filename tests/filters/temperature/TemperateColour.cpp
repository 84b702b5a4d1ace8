#include <gtest/gtest.h>
#include <keladjust/CxImage.h>
#include <keladjust/keladjust.h>

#include <climits>
#include <utility>

#include "models/temperature/BlackBody.h"
#include "support/HostPicture.h"

namespace {

using keladjust::test::BlackBody;
using keladjust::test::blackBody;

TEST(CreateTemperateColor, Covers30000DownwardsInStepsOf100) {
    CxImage* strip = createTemperateColor(300, 2);
    ASSERT_NE(strip, nullptr);
    EXPECT_EQ(strip->GetWidth(), 300u);
    EXPECT_EQ(strip->GetHeight(), 2u);
    EXPECT_EQ(strip->GetBpp(), 24u);
    EXPECT_EQ(strip->getFormat(), IMAGE_FORMAT_BGR);
    for (int x = 0; x < 300; ++x) {
        const BlackBody body = blackBody(30000 - 100 * x);
        for (int y = 0; y < 2; ++y) {
            const _tagMyRGBQUAD p = strip->GetPixelColor(x, y, true);
            EXPECT_EQ(p.red, static_cast<int>(body.rgb[0] * 255)) << x;
            EXPECT_EQ(p.green, static_cast<int>(body.rgb[1] * 255)) << x;
            EXPECT_EQ(p.blue, static_cast<int>(body.rgb[2] * 255)) << x;
        }
    }
    // Column 290 is 1000 K; below it the scale ends.
    for (int x = 291; x < 300; ++x) {
        EXPECT_EQ(strip->GetPixelColor(x, 0, true), strip->GetPixelColor(290, 0, true));
    }
    releaseCxImage(strip);
}

TEST(CreateTemperateColor, OfNoSizeIsEmpty) {
    for (const auto& [width, height] : {std::pair{0, 5}, std::pair{5, 0}, std::pair{-1, 5},
                                        std::pair{5, -1}, std::pair{INT_MAX, INT_MAX}}) {
        CxImage* strip = createTemperateColor(width, height);
        ASSERT_NE(strip, nullptr);
        EXPECT_EQ(strip->GetBits(), nullptr);
        EXPECT_EQ(strip->GetWidth(), 0u);
        EXPECT_EQ(strip->getFormat(), IMAGE_FORMAT_UNKNOWN);
        releaseCxImage(strip);
    }
}

}  // namespace
