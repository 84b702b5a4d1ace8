// What the engine does under Direct3D 9, with a render system in its place that takes notes and
// draws negatives.

#include <OgreRenderWindow.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "engine/KelOgreEffectBase.h"
#include "engine/KelOgreRenderThread.h"
#include "engine/LogCapture.h"
#include "engine/Md5.h"
#include "engine/RenderSystemOptions.h"
#include "support/HostPicture.h"

namespace {

namespace fs = std::filesystem;

class Direct3D : public testing::Test {
protected:
    Direct3D() {
        prefix = (fs::temp_directory_path() / ("keladjust-d3d-" + std::to_string(getpid()) + "-"))
                     .string();
        std::ofstream(prefix + "plugins.cfg") << "PluginFolder=" KELADJUST_RECORDING_FOLDER "\n";
        thread = std::make_unique<KelOgreRenderThread>(prefix.c_str(), prefix.c_str(), nullptr, 1u);
    }
    ~Direct3D() override { fs::remove(prefix + "plugins.cfg"); }

    keladjust::test::LogCapture log;
    std::string prefix;
    std::unique_ptr<KelOgreRenderThread> thread;
};

TEST_F(Direct3D, LoadsTheRenderSystemAndSetsItsOptions) {
    ASSERT_TRUE(thread->isEngineInitialised()) << log.all();
    std::size_t place = 0;
    const std::string all = log.all();
    for (const auto& [name, value] : keladjust::renderSystemOptions(1, 640, 480)) {
        place = all.find("recorded: " + name + " = " + value + "\n", place);
        ASSERT_NE(place, std::string::npos) << name;
        ++place;
    }
    EXPECT_EQ(log.count("recorded: Floating-point mode = Fastest"), 2);
    EXPECT_TRUE(log.has("recorded: window Kel DX9 Render Window on the desktop"));
}

TEST_F(Direct3D, TakesNoLimitFromTheDevice) {
    ASSERT_TRUE(thread->isEngineInitialised()) << log.all();
    EXPECT_EQ(KelOgreBase::maximumTextureSize(), 16384u);
    EXPECT_EQ(thread->engine()->driverVersion().major, 9);
    EXPECT_EQ(thread->engine()->driverVersion().minor, 18);
    EXPECT_TRUE(thread->engine()->isIntelGpu());
    EXPECT_TRUE(thread->engine()->isPixelBufferCapable());
    EXPECT_FALSE(thread->engine()->isWindowHidden());  // its option "Hidden Window" is "No"
}

TEST_F(Direct3D, ReadsBackByTheEngineAlone) {
    ASSERT_TRUE(thread->isEngineInitialised()) << log.all();
    auto* effect = static_cast<KelOgreEffectBase*>(thread->createEffect("KelOgreEffectBase"));
    ASSERT_NE(effect, nullptr);
    EXPECT_EQ(effect->readBackMode(), KelOgreEffectBase::readBackByEngine);
    for (const auto mode :
         {KelOgreEffectBase::readBackDirectly, KelOgreEffectBase::readBackThroughBuffer}) {
        effect->setReadBackMode(mode);
        EXPECT_EQ(effect->readBackMode(), KelOgreEffectBase::readBackByEngine);
    }
}

TEST_F(Direct3D, RendersThroughHlsl) {
    ASSERT_TRUE(thread->isEngineInitialised()) << log.all();
    auto* effect = static_cast<KelOgreEffectBase*>(thread->createEffect("KelOgreEffectBase"));
    ASSERT_NE(effect, nullptr);
    const char* const program = "a fragment program in HLSL";
    effect->setShaderSource(program, 1, 1);
    effect->setShaderTarget(1, "ps_2_a");
    effect->setShaderEntryPoint(1, "negative");
    struct Case {
        unsigned width, height, bpp;
        _ImagePixelFormat format;
        Ogre::PixelFormat engineFormat;
    };
    for (const Case& each : {Case{5, 3, 32, IMAGE_FORMAT_BGRA, Ogre::PF_A8R8G8B8},
                             Case{5, 3, 24, IMAGE_FORMAT_RGB, Ogre::PF_B8G8R8},
                             Case{7, 4, 8, IMAGE_FORMAT_GRAY, Ogre::PF_L8}}) {
        log.clear();
        keladjust::test::HostPicture picture(each.width, each.height, each.bpp, each.format);
        picture.fillRandom(1);
        keladjust::test::HostPicture expected(picture);
        for (unsigned y = 0; y < each.height; ++y) {
            for (unsigned x = 0; x < each.width; ++x) {
                const _tagMyRGBQUAD c = picture.pixel(x, y);
                const auto inverse = [](unsigned char v) {
                    return static_cast<unsigned char>(255 - v);
                };
                expected.setPixel(x, y,
                                  {inverse(c.blue), inverse(c.green), inverse(c.red), c.alpha});
            }
        }
        effect->setInputImage(picture.bits(), each.width, each.height, 0, each.engineFormat);
        effect->setRenderSize(each.width, each.height);
        EXPECT_EQ(thread->render(effect, nullptr, picture.bits(), each.bpp / 8, nullptr, 20), 1);
        EXPECT_EQ(effect->failure(), "") << log.all();
        EXPECT_EQ(picture.bytes(), expected.bytes());
        EXPECT_TRUE(picture.guardsIntact());
        EXPECT_EQ(log.countExact("recorded: program defaultVertexProgram_HLSL, vs_1_1, vs_main"),
                  1);
        EXPECT_EQ(log.countExact("recorded: program " + keladjust::md5Hex(program) +
                                 "_FRAG_HLSL, ps_2_a, negative"),
                  1);
        EXPECT_EQ(
            log.countExact("recorded: draws " + effect->picturePlane()->texture(0)->getName() +
                           " on " + effect->renderTexture()->getName()),
            1)
            << log.all();
    }
    EXPECT_FALSE(effect->picturePlane()->pixelBufferSwitch());
    EXPECT_EQ(effect->readBackMode(), KelOgreEffectBase::readBackByEngine);
}

// The device is not asked what it can take.
TEST_F(Direct3D, RefusesWhatIsLargerThanItsLimit) {
    ASSERT_TRUE(thread->isEngineInitialised()) << log.all();
    auto* effect = static_cast<KelOgreEffectBase*>(thread->createEffect("KelOgreEffectBase"));
    ASSERT_NE(effect, nullptr);
    effect->setShaderSource("a fragment program in HLSL", 1, 1);
    for (const std::uint32_t width : {16384u, 16385u}) {
        keladjust::test::HostPicture picture(width, 1, 8, IMAGE_FORMAT_GRAY);
        const auto before = picture.fillRandom(1).bytes();
        effect->setInputImage(picture.bits(), width, 1, 0, Ogre::PF_L8);
        effect->setRenderSize(width, 1);
        thread->render(effect, nullptr, picture.bits(), 1, nullptr, 20);
        EXPECT_EQ(picture.bytes() == before, width == 16385);
    }
    EXPECT_EQ(log.countExact("dimension is large max texture size 16384of supported"), 1);
}

}  // namespace
