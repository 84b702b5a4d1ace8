// Pictures that the engine has no texture for: too large, without a size, without pixels. Each has
// its words, in the log or in an exception, and leaves no texture behind.

#include <OgreException.h>
#include <OgreHardwarePixelBuffer.h>
#include <OgreResourceGroupManager.h>
#include <OgreTextureManager.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "engine/RunningEngine.h"
#include "support/TemporaryFolder.h"

namespace {

using keladjust::test::copyProgram;
using keladjust::test::RunningEngine;

/// A texture's pixels, of which there is only the number of bytes.
class NoPixels : public Ogre::HardwarePixelBuffer {
public:
    NoPixels(std::uint32_t width, std::uint32_t height, std::size_t bytes)
        : HardwarePixelBuffer(width, height, 1, Ogre::PF_A8R8G8B8, HBU_DYNAMIC, true, false) {
        mSizeInBytes = bytes;
    }
    void blitFromMemory(const Ogre::PixelBox&, const Ogre::Box&) override { std::abort(); }
    void blitToMemory(const Ogre::Box&, const Ogre::PixelBox&) override { std::abort(); }

protected:
    Ogre::PixelBox lockImpl(const Ogre::Box&, LockOptions) override { std::abort(); }
    void unlockImpl() override { std::abort(); }
};

/// A texture of any size, also of one that no driver has. Nobody looks at its pixels.
class SizedTexture : public Ogre::Texture {
public:
    SizedTexture(std::uint32_t width, std::uint32_t height, std::size_t bytes)
        : Texture(Ogre::TextureManager::getSingletonPtr(), "sized", 0,
                  Ogre::ResourceGroupManager::DEFAULT_RESOURCE_GROUP_NAME),
          pixels_(new NoPixels(width, height, bytes)) {
        mWidth = width;
        mHeight = height;
    }
    const Ogre::HardwarePixelBufferSharedPtr& getBuffer(std::size_t, std::size_t) override {
        return pixels_;
    }

protected:
    void createInternalResourcesImpl() override {}
    void freeInternalResourcesImpl() override {}

private:
    Ogre::HardwarePixelBufferSharedPtr pixels_;
};

Ogre::TexturePtr textureOf(std::uint32_t width, std::uint32_t height, std::size_t bytes) {
    return Ogre::TexturePtr(new SizedTexture(width, height, bytes));
}

class UploadRefusals : public RunningEngine {
protected:
    void SetUp() override {
        RunningEngine::SetUp();
        maximum = KelOgreBase::maximumTextureSize();
        tooLarge =
            "dimension is large max texture size " + std::to_string(maximum) + "of supported";
    }

    /// Runs `upload`, which is to raise that with the place that it comes from.
    template <class Upload>
    static void expectRaised(const std::string& message, Upload upload) {
        try {
            upload();
            ADD_FAILURE() << "not raised: " << message;
        } catch (const Ogre::InvalidParametersException& raised) {
            EXPECT_EQ(raised.getDescription(), message);
            EXPECT_EQ(raised.getSource(), "KelOgrePicturePlane::setPictruePlaneImage");
            EXPECT_STREQ(raised.getFile(), "KelOgrePicturePlane");
        }
    }

    std::uint32_t maximum = 0;
    std::string tooLarge;
};

TEST_F(UploadRefusals, OfPixelsWithoutASizeRaise) {
    onThread([this] {
        KelOgrePicturePlane plane(false);
        unsigned char pixel[4] = {};
        for (const auto& [width, height] : {std::pair{0u, 1u}, {1u, 0u}, {0u, 0u}}) {
            const _ImageParam picture{pixel, true, width, height, 0, Ogre::PF_A8R8G8B8, 4};
            expectRaised("You had not set image's size!",
                         [&] { plane.setPictruePlaneImage(picture, 0); });
        }
        EXPECT_EQ(plane.textureCount(), 0u);
    });
}

TEST_F(UploadRefusals, OfNoPixelsAreLoggedBeforeTheSizeIsLookedAt) {
    onThread([this] {
        KelOgrePicturePlane plane(false);
        const _ImageParam nothing{nullptr, true, 0, 0, 0, Ogre::PF_A8R8G8B8, 0};
        EXPECT_FALSE(plane.setPictruePlaneImage(nothing, 0));
    });
    EXPECT_EQ(log.countExact("Image data is NULL!"), 1);
}

TEST_F(UploadRefusals, OfPixelsThatAreTooManyAreLogged) {
    onThread([this] {
        KelOgrePicturePlane plane(false);
        unsigned char pixel[4] = {};
        for (const auto& [width, height] :
             {std::pair{maximum + 1, 1u}, {1u, maximum + 1}, {maximum + 1, maximum + 1}}) {
            const _ImageParam picture{pixel, true, width, height, 0, Ogre::PF_A8R8G8B8, 4};
            EXPECT_FALSE(plane.setPictruePlaneImage(picture, 0));
        }
        EXPECT_EQ(plane.textureCount(), 0u);
    });
    EXPECT_EQ(log.countExact(tooLarge), 3);
}

TEST_F(UploadRefusals, OfTexturesWithoutASizeAreLoggedAndRaise) {
    onThread([this] {
        KelOgrePicturePlane plane(false);
        for (const auto& [width, height] : {std::pair{0u, 1u}, {1u, 0u}, {0u, 0u}}) {
            log.clear();
            expectRaised("This texture's size is zero!",
                         [&, w = width, h = height] { plane.setTexture(textureOf(w, h, 4), 0); });
            EXPECT_EQ(log.countExact("Image data is NULL!"), 1);
        }
        EXPECT_EQ(plane.textureCount(), 0u);
    });
}

TEST_F(UploadRefusals, OfTexturesThatAreEmptyOrTooLargeAreLogged) {
    onThread([this] {
        KelOgrePicturePlane plane(false);
        EXPECT_FALSE(plane.setTexture(textureOf(1, 1, 0), 0));
        EXPECT_EQ(log.countExact("Image data is NULL!"), 1);
        EXPECT_FALSE(plane.setTexture(textureOf(maximum + 1, 1, 4), 0));
        EXPECT_FALSE(plane.setTexture(textureOf(1, maximum + 1, 4), 0));
        EXPECT_EQ(log.countExact(tooLarge), 2);
        EXPECT_EQ(log.countExact("Image data is NULL!"), 1);
        EXPECT_EQ(plane.textureCount(), 0u);
    });
}

TEST_F(UploadRefusals, OfAnEffectNameTheSideThatIsTooLong) {
    KelOgreEffectBase& effect = *effectWith(copyProgram);
    const std::string limit = std::to_string(maximum) + "of supported";
    const keladjust::test::TemporaryFolder folder;
    const auto pictureFile = [&folder](const char* name, std::uint32_t width,
                                       std::uint32_t height) {
        const std::string path = (folder / name).string();
        std::ofstream(path, std::ios::binary) << "P5\n"
                                              << width << ' ' << height << "\n255\n"
                                              << std::string(width * height, 'g');
        return path;
    };
    onThread([&] {
        effect.setInputTexture(textureOf(maximum + 1, maximum + 1, 4), 0);
        EXPECT_EQ(log.countExact("Picture width is large max texture size" + limit), 1);
        EXPECT_EQ(log.count("Picture height"), 0) << "the width is told first, and alone";
        effect.setInputTexture(textureOf(maximum, maximum + 1, 4), 0);
        EXPECT_EQ(log.countExact("Picture height is large max texture size" + limit), 1);
        EXPECT_EQ(effect.inputCount(), 0u);

        effect.setInputImageFile(pictureFile("wide.pgm", maximum + 1, 1).c_str(), 0);
        EXPECT_EQ(log.countExact("Picture width is large max texture size" + limit), 2)
            << log.all();
        effect.setInputImageFile(pictureFile("high.pgm", 1, maximum + 1).c_str(), 0);
        EXPECT_EQ(log.countExact("Picture height is large max texture size" + limit), 2);
        EXPECT_EQ(effect.inputCount(), 0u);

        effect.setInputTexture(textureOf(maximum, maximum, 4), 0);
        effect.setInputImageFile(pictureFile("widest.pgm", maximum, 1).c_str(), 1);
        EXPECT_EQ(effect.inputCount(), 2u) << log.all();
        effect.removeInput(0);
    });
}

// A texture that a driver took once may still be refused when it is drawn from.
TEST_F(UploadRefusals, OfATextureSpareTheResult) {
    KelOgreEffectBase& effect = *effectWith(copyProgram);
    effect.setRenderSize(1, 1);
    onThread([&] { effect.setInputTexture(textureOf(0, 1, 4), 0); });
    unsigned char pixel[4] = {1, 2, 3, 4};
    EXPECT_EQ(thread->render(&effect, pixel, nullptr, 4, nullptr, 20), 1);
    EXPECT_EQ(pixel[0], 1);
    EXPECT_EQ(pixel[3], 4);
    EXPECT_EQ(effect.failure(), "This texture's size is zero!");
    EXPECT_EQ(log.countExact("Image data is NULL!"), 1);
    onThread([&] { effect.removeInput(0); });
}

}  // namespace
