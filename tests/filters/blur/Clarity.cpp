#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>

#include "models/blur/StackBlur.h"
#include "support/HostPicture.h"

namespace {

using keladjust::test::blurModel;
using keladjust::test::HostPicture;

TEST(Clarity, UpToSetting2LeavesThePictureAsItWas) {
    for (const float setting : {0.0f, 1.0f, -1.0f, 2.0f, -2.0f}) {
        HostPicture picture(31, 12, 24, IMAGE_FORMAT_RGB);
        const auto before = picture.fillRandom(6).bytes();
        EXPECT_EQ(clarity(picture.image(), setting), picture.image());
        EXPECT_EQ(picture.bytes(), before) << setting;
    }
}

// What clarity makes of the blur of a radius: the slider's strength and reach.
void expectClarityOfRadius(float setting, int radius, float factor) {
    HostPicture picture(80, 60, 32, IMAGE_FORMAT_BGRA);
    picture.fillRandom(11);
    HostPicture blurred(picture);
    blurModel(blurred.bits(), 80, 60, 4, radius);
    const auto sharp = picture.bytes();
    clarity(picture.image(), setting);
    for (std::size_t i = 0; i < sharp.size(); ++i) {
        const float s = sharp[i];
        const float v = (s - static_cast<float>(blurred.bits()[i])) * factor + s;
        const int expected = i % 4 == 3 ? sharp[i] : static_cast<int>(std::clamp(v, 0.0f, 255.0f));
        ASSERT_EQ(picture.bits()[i], expected) << setting << ", byte " << i;
    }
}

TEST(Clarity, ReachesHalfItsSettingAndAlways2WhenNegative) {
    expectClarityOfRadius(3.0f, 1, 0.015f);
    expectClarityOfRadius(100.0f, 50, 0.5f);
    expectClarityOfRadius(-50.0f, 2, -0.25f);
    expectClarityOfRadius(-100.0f, 2, -0.5f);
}

TEST(Clarity, LeavesTheEndOfAPaddedPictureBlurred) {
    // Rows of 15 bytes in 16: the walk over 25 pixels ends 5 bytes before the buffer.
    HostPicture picture(5, 5, 24, IMAGE_FORMAT_BGR);
    picture.fillRandom(2);
    HostPicture blurred(picture);
    blurModel(blurred.bits(), 5, 5, 3, 20);
    clarity(picture.image(), 40.0f);
    for (std::size_t i = 75; i < 80; ++i) EXPECT_EQ(picture.bits()[i], blurred.bits()[i]) << i;
    EXPECT_TRUE(picture.guardsIntact());
}

}  // namespace
