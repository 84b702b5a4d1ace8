// What counts as a picture with pixels.

#include "walks/Picture.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/HostPicture.h"

namespace {

using keladjust::pictureOf;
using keladjust::PixelLayout;
using keladjust::test::HostPicture;

TEST(Picture, TakesTheMeasuresOfItsImage) {
    HostPicture host(5, 3, 24, IMAGE_FORMAT_RGB);
    const auto picture = pictureOf(host.image());
    ASSERT_TRUE(picture.has_value());
    EXPECT_EQ(picture->first, host.bits());
    EXPECT_EQ(picture->width, 5u);
    EXPECT_EQ(picture->height, 3u);
    EXPECT_EQ(picture->bytesPerPixel, 3u);
    EXPECT_EQ(picture->bitsPerPixel, 24u);
    EXPECT_EQ(picture->layout, PixelLayout::rgb24);
    EXPECT_EQ(picture->stride, 16u) << "fifteen bytes of pixels and one of padding";
    EXPECT_EQ(picture->size(), 48u);
    EXPECT_EQ(picture->pixels(), 15u);
    EXPECT_EQ(picture->row(2), host.bits() + 32);
}

TEST(Picture, IsNoneWithoutPixels) {
    EXPECT_FALSE(pictureOf(nullptr).has_value());
    CxImage empty;
    EXPECT_FALSE(pictureOf(&empty).has_value());
    unsigned char* noBits = nullptr;
    CxImage withoutBits(&noBits, 10, 10, 32, IMAGE_FORMAT_BGRA);
    EXPECT_FALSE(pictureOf(&withoutBits).has_value());
    unsigned char byte = 0;
    unsigned char* bits = &byte;
    CxImage noHeight(&bits, 5, 0, 32, IMAGE_FORMAT_BGRA);
    EXPECT_FALSE(pictureOf(&noHeight).has_value());
    // 2^30 columns of 32 bits wrap to rows of no bytes: the buffer holds none of these pixels.
    CxImage wrapping(&bits, 1u << 30, 1, 32, IMAGE_FORMAT_BGRA);
    EXPECT_FALSE(pictureOf(&wrapping).has_value());
}

TEST(Picture, OfAPairWithoutAMeaningHasNoLayout) {
    HostPicture host(4, 2, 32, IMAGE_FORMAT_RGB);
    const auto picture = pictureOf(host.image());
    ASSERT_TRUE(picture.has_value());
    EXPECT_EQ(picture->layout, PixelLayout::none);
    EXPECT_EQ(picture->bytesPerPixel, 4u) << "the raw walk still has bytes to step over";
}

}  // namespace
