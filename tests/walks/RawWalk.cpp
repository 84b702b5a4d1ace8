#include "walks/RawWalk.h"

#include <gtest/gtest.h>

#include "support/HostPicture.h"

namespace {

using keladjust::pictureOf;
using keladjust::rawWalkMeetsPixels;
using keladjust::rawWalkOf;
using keladjust::test::HostPicture;

TEST(RawWalk, CountsThePixelsAndIgnoresPadding) {
    HostPicture picture(5, 3, 24, IMAGE_FORMAT_RGB);
    const keladjust::RawWalk walk = rawWalkOf(*pictureOf(picture.image()));
    EXPECT_EQ(walk.first, picture.bits());
    EXPECT_EQ(walk.count, 15u);
    EXPECT_EQ(walk.step, 3u);
    EXPECT_EQ(walk.channels, 3u);
}

TEST(RawWalk, MeetsPixelsOnlyInRowsWithoutPadding) {
    const auto meets = [](unsigned width, unsigned bpp, _ImagePixelFormat format) {
        HostPicture picture(width, 3, bpp, format);
        return rawWalkMeetsPixels(*pictureOf(picture.image()));
    };
    EXPECT_TRUE(meets(5, 32, IMAGE_FORMAT_BGRA));
    EXPECT_TRUE(meets(4, 24, IMAGE_FORMAT_RGB));
    EXPECT_TRUE(meets(4, 8, IMAGE_FORMAT_GRAY));
    EXPECT_FALSE(meets(5, 24, IMAGE_FORMAT_RGB));
    EXPECT_FALSE(meets(5, 8, IMAGE_FORMAT_GRAY));
    EXPECT_FALSE(meets(4, 16, IMAGE_FORMAT_RGB)) << "bytes of a word are no channels";
    EXPECT_FALSE(meets(4, 24, IMAGE_FORMAT_BGRA)) << "pixel access refuses this pair";
}

}  // namespace
