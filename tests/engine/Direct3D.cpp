// What the engine does under Direct3D 9, up to where that render system would draw.

#include <OgreRenderWindow.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "engine/KelOgreEffectBase.h"
#include "engine/KelOgreRenderThread.h"
#include "engine/LogCapture.h"
#include "engine/RenderSystemOptions.h"

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

}  // namespace
