#include "engine/PictureRows.h"

#include <gtest/gtest.h>

#include <vector>

#include "engine/HookEffect.h"

namespace {

using Bytes = std::vector<unsigned char>;

_ImageParam padded(Bytes& bytes, std::uint32_t width, std::uint32_t height,
                   Ogre::PixelFormat format) {
    return {bytes.data(), true, width, height, 0, format, bytes.size()};
}

TEST(UploadBox, TakesTightRowsAsTheyAre) {
    Bytes bytes(2 * 4 * 3);
    Bytes tight;
    const Ogre::PixelBox box = keladjust::uploadBox(padded(bytes, 2, 3, Ogre::PF_A8R8G8B8), tight);
    EXPECT_EQ(box.data, bytes.data());
    EXPECT_EQ(box.rowPitch, 2u);
    EXPECT_TRUE(tight.empty());
}

TEST(UploadBox, SkipsPaddingOfWholePixels) {
    Bytes bytes(8 * 2);
    Bytes tight;
    const Ogre::PixelBox box = keladjust::uploadBox(padded(bytes, 5, 2, Ogre::PF_L8), tight);
    EXPECT_EQ(box.data, bytes.data());
    EXPECT_EQ(box.rowPitch, 8u);
    EXPECT_TRUE(tight.empty());
}

TEST(UploadBox, CopiesRowsWhosePaddingIsNoWholePixel) {
    Bytes bytes{1, 2, 3, 99, 4, 5, 6, 99};
    Bytes tight;
    const Ogre::PixelBox box = keladjust::uploadBox(padded(bytes, 1, 2, Ogre::PF_R8G8B8), tight);
    EXPECT_EQ(box.data, tight.data());
    EXPECT_EQ(box.rowPitch, 1u);
    EXPECT_EQ(tight, (Bytes{1, 2, 3, 4, 5, 6}));
}

TEST(StoreRender, GivesEveryFormatItsOwnOrderAndLeavesPadding) {
    const Bytes render{1, 2, 3, 4, 5, 6, 7, 8};  // blue, green, red, alpha
    Bytes pixels(8, 99);
    keladjust::storeRender(render.data(), 2, 1, Ogre::PF_R8G8B8, pixels.data());
    EXPECT_EQ(pixels, (Bytes{1, 2, 3, 5, 6, 7, 99, 99}));
    keladjust::storeRender(render.data(), 2, 1, Ogre::PF_B8G8R8, pixels.data());
    EXPECT_EQ(pixels, (Bytes{3, 2, 1, 7, 6, 5, 99, 99}));
    pixels.assign(8, 99);
    keladjust::storeRender(render.data(), 1, 2, Ogre::PF_L8, pixels.data());
    EXPECT_EQ(pixels, (Bytes{3, 99, 99, 99, 7, 99, 99, 99}));
}

TEST(IsRenderable, OnlyWhereDepthAndFormatGoTogether) {
    EXPECT_TRUE(keladjust::isRenderable(Ogre::PF_A8R8G8B8, 4));
    EXPECT_TRUE(keladjust::isRenderable(Ogre::PF_A8B8G8R8, 4));
    EXPECT_TRUE(keladjust::isRenderable(Ogre::PF_R8G8B8, 3));
    EXPECT_TRUE(keladjust::isRenderable(Ogre::PF_B8G8R8, 3));
    EXPECT_TRUE(keladjust::isRenderable(Ogre::PF_L8, 1));
    EXPECT_FALSE(keladjust::isRenderable(Ogre::PF_R8G8B8, 2));
    EXPECT_FALSE(keladjust::isRenderable(Ogre::PF_L8, 4));
    EXPECT_FALSE(keladjust::isRenderable(Ogre::PF_A8R8G8B8, 3));
    EXPECT_FALSE(keladjust::isRenderable(Ogre::PF_UNKNOWN, 4));
}

TEST(EffectInputs, KnowThePaddingOfTheirRows) {
    keladjust::test::HookEffect effect;
    unsigned char pixel = 0;
    effect.setInputImage(&pixel, 5, 3, 0, Ogre::PF_R8G8B8);
    const _ImageParam* picture = effect.input(0);
    ASSERT_NE(picture, nullptr);
    EXPECT_EQ(picture->data, &pixel);
    EXPECT_TRUE(picture->changed);
    EXPECT_EQ(picture->rowBytes(), 16u);
    EXPECT_EQ(picture->byteSize, 48u);
    EXPECT_EQ(effect.input(1), nullptr);

    effect.setInputImage(&pixel, 5, 3, 0, Ogre::PF_UNKNOWN);
    EXPECT_EQ(effect.inputCount(), 1u);
    EXPECT_EQ(effect.input(0)->byteSize, 0u);
}

TEST(EffectInputs, TakeSeveralOfOnePicture) {
    keladjust::test::HookEffect effect;
    unsigned char pixel = 0;
    effect.setInputImages(&pixel, 2, 2, 2, 0u, static_cast<std::uint32_t>(Ogre::PF_A8R8G8B8), 3u,
                          static_cast<std::uint32_t>(Ogre::PF_L8));
    EXPECT_EQ(effect.inputCount(), 2u);
    EXPECT_EQ(effect.input(0)->byteSize, 16u);
    EXPECT_EQ(effect.input(3)->byteSize, 8u);
    EXPECT_EQ(effect.input(3)->index, 3u);
    effect.removeInput(0);
    EXPECT_EQ(effect.inputCount(), 1u);
}

TEST(FlipVertical, TurnsRowsUpsideDownAndLeavesTheMiddleOne) {
    keladjust::test::HookEffect effect;
    Bytes three{1, 1, 1, 1, 2, 2, 2, 2, 3, 3, 3, 3};
    effect.flipVertical(three.data(), 1, 3);
    EXPECT_EQ(three, (Bytes{3, 3, 3, 3, 2, 2, 2, 2, 1, 1, 1, 1}));
    Bytes wide{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
    effect.flipVertical(wide.data(), 2, 2);
    EXPECT_EQ(wide, (Bytes{9, 10, 11, 12, 13, 14, 15, 16, 1, 2, 3, 4, 5, 6, 7, 8}));
    effect.flipVertical(wide.data(), 4, 1);
    EXPECT_EQ(wide[0], 9);
}

TEST(ParameterKeys, GoByKindThenName) {
    EXPECT_LT((_CommDataType{0, "b"}), (_CommDataType{1, "a"}));
    EXPECT_LT((_CommDataType{1, "a"}), (_CommDataType{1, "b"}));
    EXPECT_EQ((_CommDataType{1, "a"}), (_CommDataType{1, "a"}));
}

}  // namespace
