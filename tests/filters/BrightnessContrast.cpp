#include <gtest/gtest.h>

#include "support/HostPicture.h"

namespace {

using keladjust::test::everyByte;
using keladjust::test::HostPicture;

TEST(Brightness, Setting50MultipliesByOneAndAHalfAndSaturates) {
    HostPicture picture = everyByte();
    EXPECT_EQ(brightnessAdjustment(picture.image(), 50.0f), picture.image());
    EXPECT_EQ(picture.pixel(3, 0).red, 4);  // 4.5, truncated
    EXPECT_EQ(picture.pixel(170, 0).red, 255);
    EXPECT_EQ(picture.pixel(171, 0).red, 255);
    EXPECT_EQ(picture.pixel(171, 0).alpha, 255);
}

}  // namespace
